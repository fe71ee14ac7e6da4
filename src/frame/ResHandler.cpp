#include "zcmod/ResHandler.h"

#include <cwchar>

#include "frame/Handles.h"
#include "frame/Win32Util.h"
#include "frame/core/ColorString.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/DKHLInfoReader.h"

namespace {

const wchar_t kMachineKeyFormat[] = L"Software\\Wow6432Node\\%ls\\DeskHub\\";
const wchar_t kUserKeyFormat[] = L"Software\\%ls\\DeskHub\\";
const DWORD kSuiteValueCapacity = 260;  // bytes, as every caller passes it

CResHandler* ResHandler() { return CCommonModuleState::Get().m_pResHandler; }

}  // namespace

CResHandler::CResHandler()
    : m_hLanguage(nullptr), m_hGraphics(nullptr), m_pszLanguage(nullptr), m_szTheme(), m_szLanguagePath(),
      m_szGraphicsPath()
{
}

CResHandler::~CResHandler()
{
    if (m_hLanguage)
        FreeLibrary(m_hLanguage);
    if (m_hGraphics)
        FreeLibrary(m_hGraphics);
    free(m_pszLanguage);
}

int CResHandler::ReadSuiteValue(HKEY hive, const wchar_t* valueName, wchar_t* buffer, DWORD capacity)
{
    // The settings library is loaded and freed on every call: nothing is cached here.
    wchar_t folder[MAX_PATH];
    CDKHL2InfoReader settings;
    if (zcmod::GetModuleFolder(zcmod::LibraryModule(), folder, MAX_PATH))
        settings.ReadDKHL(folder);
    const wchar_t* format = hive == HKEY_LOCAL_MACHINE ? kMachineKeyFormat : kUserKeyFormat;
    const wchar_t* maker = settings.GetUIManufacturer();
    if (!buffer || !valueName || !maker || !*maker || capacity == 0)
        return 0;

    wchar_t keyPath[MAX_PATH];
    const int n = swprintf(keyPath, MAX_PATH, format, maker);
    if (n < 0 || n >= MAX_PATH)
        return 0;
    return zcmod::ReadRegistryString(hive, keyPath, KEY_READ, valueName, buffer, capacity) == ERROR_SUCCESS ? 1 : 0;
}

HMODULE CResHandler::LoadResourceModule(const wchar_t* subfolder, const wchar_t* stem, const wchar_t* extension,
                                        wchar_t* pathBuffer, size_t pathCapacity)
{
    if (!pathBuffer || pathCapacity == 0)
        return nullptr;
    pathBuffer[0] = 0;
    if (!stem || !*stem || !extension || !*extension)
        return nullptr;
    // <folder of the library> + subfolder + "\ZCMOD_" + stem + "." + extension. The subfolders end in a
    // backslash already, so the path has a doubled one before the file name; the platform reads it as one.
    if (!zcmod::GetModuleFolder(zcmod::LibraryModule(), pathBuffer, pathCapacity))
        return nullptr;
    bool fits = zcmod::AppendString(pathBuffer, pathCapacity, subfolder) &&
                zcmod::AppendString(pathBuffer, pathCapacity, L"\\ZCMOD_") &&
                zcmod::AppendString(pathBuffer, pathCapacity, stem);
    if (fits && extension[0] != L'.')
        fits = zcmod::AppendString(pathBuffer, pathCapacity, L".");
    fits = fits && zcmod::AppendString(pathBuffer, pathCapacity, extension);
    if (!fits)
        return nullptr;
    return LoadLibraryExW(pathBuffer, nullptr, LOAD_LIBRARY_AS_DATAFILE);
}

HMODULE CResHandler::GetLanguageModule()
{
    if (m_hLanguage)
        return m_hLanguage;
    wchar_t code[kSuiteValueCapacity / sizeof(wchar_t) + 1] = {};
    if (!ReadSuiteValue(HKEY_LOCAL_MACHINE, L"Current Language", code, kSuiteValueCapacity))
        return nullptr;
    if (code[0]) {
        wchar_t* copy = _wcsdup(code);
        if (copy) {
            free(m_pszLanguage);
            m_pszLanguage = copy;
        }
    }
    wchar_t path[MAX_PATH];
    m_hLanguage = LoadResourceModule(L"\\Lang\\", code, L"zlr", path, MAX_PATH);
    if (m_hLanguage)
        zcmod::CopyString(m_szLanguagePath, MAX_PATH, path);
    return m_hLanguage;
}

HMODULE CResHandler::GetGraphicsModule()
{
    wchar_t theme[kSuiteValueCapacity / sizeof(wchar_t) + 1] = {};
    if (!ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", theme, kSuiteValueCapacity))
        ReadSuiteValue(HKEY_LOCAL_MACHINE, L"Current Resource", theme, kSuiteValueCapacity);
    if (!theme[0])
        return m_hGraphics;
    if (m_hGraphics && zcmod::EqualNoCase(theme, m_szTheme))
        return m_hGraphics;

    // The theme has changed, or nothing is loaded yet. Colours cached from the old module go with it.
    if (m_hGraphics) {
        FreeLibrary(m_hGraphics);
        m_hGraphics = nullptr;
        m_szGraphicsPath[0] = 0;
    }
    CCommonModuleState::Get().ResetColorLoader();
    wchar_t path[MAX_PATH];
    m_hGraphics = LoadResourceModule(L"\\Resource\\", theme, L"zgr", path, MAX_PATH);
    if (m_hGraphics) {
        zcmod::CopyString(m_szTheme, sizeof(m_szTheme) / sizeof(m_szTheme[0]), theme);
        zcmod::CopyString(m_szGraphicsPath, MAX_PATH, path);
    }
    return m_hGraphics;
}

const wchar_t* CResHandler::GetLanguageName()
{
    if (!m_pszLanguage)
        GetLanguageModule();
    return m_pszLanguage;
}

bool CResHandler::IsCurrentTheme()
{
    wchar_t theme[kSuiteValueCapacity / sizeof(wchar_t) + 1] = {};
    if (!ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", theme, kSuiteValueCapacity))
        return false;
    return std::wcscmp(theme, m_szTheme) == 0;
}

CStrColorLoader::CStrColorLoader() = default;

CStrColorLoader::~CStrColorLoader() = default;

void CStrColorLoader::LoadColor(HMODULE module, UINT id, COLORREF* result)
{
    const auto key = std::make_pair(module, id);
    auto it = m_colors.find(key);
    if (it != m_colors.end()) {
        if (result)
            *result = it->second;
        return;
    }
    wchar_t text[20];
    const int length = LoadStringW(module, id, text, 20);
    if (length <= 0)
        return;  // nothing cached: the next call looks again
    const COLORREF color = zcmod::ParseColorString(text, static_cast<size_t>(length));
    m_colors.emplace(key, color);
    if (result)
        *result = color;
}

size_t CStrColorLoader::GetCachedCount() const { return m_colors.size(); }

int EnsureCommonResources()
{
    CResHandler* handler = ResHandler();
    const bool haveGraphics = handler && handler->GetGraphicsModule();
    const bool haveLanguage = handler && handler->GetLanguageModule();
    if (!haveGraphics || !haveLanguage) {
        MessageBoxW(nullptr, L"ZCMOD is unable to load the resources.\nPlease reinstall Desk Hub.", L"ZCMOD",
                    MB_ICONERROR);
        return 0;
    }
    return 1;
}

HMODULE ZCMOD_GetCommonZGR()
{
    CResHandler* handler = ResHandler();
    return handler ? handler->GetGraphicsModule() : nullptr;
}

HMODULE ZCMOD_GetCommonZLR()
{
    CResHandler* handler = ResHandler();
    return handler ? handler->GetLanguageModule() : nullptr;
}

int ZCMOD_LoadString(UINT id, wchar_t* buffer, int capacity)
{
    if (!buffer)
        return 0;
    // An empty language module is passed on: the platform then reads the application's own strings.
    return LoadStringW(ZCMOD_GetCommonZLR(), id, buffer, capacity);
}

HFONT ZCMOD_CreateFontIndirect(const LOGFONTW* /*font*/) { return nullptr; }

COLORREF DkhLoadColor(HMODULE module, UINT id)
{
    CStrColorLoader* loader = CCommonModuleState::Get().m_pColorLoader;
    if (!loader)
        return 0;
    if (!module)
        module = ZCMOD_GetCommonZGR();
    // The theme change inside ZCMOD_GetCommonZGR may have replaced the loader.
    loader = CCommonModuleState::Get().m_pColorLoader;
    COLORREF color = 0;
    if (module && loader)
        loader->LoadColor(module, id, &color);
    return color;
}
