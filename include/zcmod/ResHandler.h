// Language and theme resources: finding the modules, strings, colours and the suite's fonts.
#pragma once

#include <windows.h>

#include <map>
#include <utility>

#include "zcmod/Export.h"

// Finds and loads the language module (Lang\ZCMOD_<code>.zlr) and the graphics module
// (Resource\ZCMOD_<theme>.zgr) beside the library's own file, from the suite's settings.
class ZCMOD_API CResHandler {
public:
    CResHandler();
    virtual ~CResHandler();

    CResHandler(const CResHandler&) = delete;
    CResHandler& operator=(const CResHandler&) = delete;

    // Reads a value of the suite's settings: under HKLM "Software\Wow6432Node\<maker>\DeskHub\", under any
    // other hive "Software\<maker>\DeskHub\", <maker> being the settings library's UI manufacturer.
    // `capacity` is in bytes. Returns 1 when the value was read, else 0.
    int ReadSuiteValue(HKEY hive, const wchar_t* valueName, wchar_t* buffer, DWORD capacity);

    // Builds <library folder><subfolder>\ZCMOD_<stem>.<extension> in `pathBuffer` (of `pathCapacity` wide
    // characters) and loads it as a data file.
    HMODULE LoadResourceModule(const wchar_t* subfolder, const wchar_t* stem, const wchar_t* extension,
                               wchar_t* pathBuffer, size_t pathCapacity = MAX_PATH);

    // The language is chosen once per process; the first successful load is kept.
    HMODULE GetLanguageModule();
    // Runs in full on every call, so that a theme picked while an application runs is seen by its next
    // paint. A handle handed out earlier is freed by a theme change: take it anew for each use.
    HMODULE GetGraphicsModule();
    // The language code as it stands in the registry, or null.
    const wchar_t* GetLanguageName();
    // True when the user's "Theme" value can be read and equals the loaded theme exactly, with case.
    bool IsCurrentTheme();

    // The files of the loaded modules, and the loaded theme's name; empty strings when none is loaded.
    const wchar_t* GetLanguageModulePath() const { return m_szLanguagePath; }
    const wchar_t* GetGraphicsModulePath() const { return m_szGraphicsPath; }
    const wchar_t* GetThemeName() const { return m_szTheme; }

protected:
    HMODULE m_hLanguage;
    HMODULE m_hGraphics;
    wchar_t* m_pszLanguage;
    wchar_t m_szTheme[256];
    wchar_t m_szLanguagePath[MAX_PATH];
    wchar_t m_szGraphicsPath[MAX_PATH];
};

// Caches colours read from string resources "r,g,b", keyed by module and id.
class ZCMOD_API CStrColorLoader {
public:
    CStrColorLoader();
    virtual ~CStrColorLoader();

    // Writes the colour (0x00BBGGRR) to `result`. A missing or empty string leaves `result` alone and caches
    // nothing; any string with characters is parsed and cached, even one without digits.
    void LoadColor(HMODULE module, UINT id, COLORREF* result);

    // Number of cached colours.
    size_t GetCachedCount() const;

private:
    std::map<std::pair<HMODULE, UINT>, COLORREF> m_colors;
};

// Returns 1 when both the graphics and the language module can be loaded. Otherwise shows the library's one
// message of its own ("ZCMOD is unable to load the resources.") and returns 0: the caller then gives up.
ZCMOD_API int EnsureCommonResources();

ZCMOD_EXTERN_C ZCMOD_API HMODULE ZCMOD_GetCommonZGR();
ZCMOD_EXTERN_C ZCMOD_API HMODULE ZCMOD_GetCommonZLR();
// LoadStringW on the language module; an empty language module means the application's own module.
ZCMOD_EXTERN_C ZCMOD_API int ZCMOD_LoadString(UINT id, wchar_t* buffer, int capacity);
// Kept for old callers: always returns an empty handle and looks at nothing.
ZCMOD_EXTERN_C ZCMOD_API HFONT ZCMOD_CreateFontIndirect(const LOGFONTW* font);
// A colour of `module`, or of the graphics module when `module` is empty; 0 (black) when missing.
ZCMOD_EXTERN_C ZCMOD_API COLORREF DkhLoadColor(HMODULE module, UINT id);
// Registers the suite's fonts on first use (also for an empty pointer) and fills `font` with the face
// "Zelvo Sans Wide". Height and weight stay 0: the caller sets them and calls CreateFontIndirectW.
ZCMOD_EXTERN_C ZCMOD_API void DkhLoadFont(LOGFONTW* font);
