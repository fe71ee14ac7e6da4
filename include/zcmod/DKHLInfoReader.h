// Readers of the suite's settings library, DKHL64.dll, which knows the installation's variant and the
// manufacturers. Each reader looks for the library in its own place:
//   CDKHL2InfoReader  beside this library (or in a given folder),
//   CDKHLInfoReader   beside the executable, then by the platform's search (or in a given folder).
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class ZCMOD_API CDKHL2InfoReader {
public:
    CDKHL2InfoReader();
    ~CDKHL2InfoReader();

    CDKHL2InfoReader(const CDKHL2InfoReader&) = delete;
    CDKHL2InfoReader& operator=(const CDKHL2InfoReader&) = delete;

    // Loads <folder>\DKHL64.dll, or DKHL64.dll beside this library when `folder` is null. Any module
    // already held is freed first. 0 on success, -1 if this library's file name can't be got, -2 if the
    // load fails, -10 if the path came out empty.
    int ReadDKHL(const wchar_t* folder = nullptr);

    // The exports' answers, looked up anew on each call; 0 or null when the export is missing.
    unsigned short DKHL_GetVariantID();
    const wchar_t* GetUIManufacturer();
    const wchar_t* GetFirstPhoneManufacturer();
    const wchar_t* GetNextPhoneManufacturer();
    const wchar_t* GetDKHL();
    // Counts the phone manufacturers (moves the library's own list position); 0 if an export is missing.
    int GetNumberOfPhoneManufacturers();

    HMODULE GetModule() const { return m_hModule; }

private:
    HMODULE m_hModule;
};

class ZCMOD_API CDKHLInfoReader {
public:
    // Loads DKHL64.dll beside the executable, or by bare name if that fails.
    CDKHLInfoReader();
    // Loads <folder>\DKHL64.dll; with an empty folder, the bare name alone.
    explicit CDKHLInfoReader(const wchar_t* folder);
    virtual ~CDKHLInfoReader();

    // Copying copies all fields: two copies would free one module, so they are not destroyed side by side.
    CDKHLInfoReader(const CDKHLInfoReader&) = default;
    CDKHLInfoReader& operator=(const CDKHLInfoReader&) = default;

    // The installation's name, asked for once and cached; null if unknown.
    const wchar_t* GetDKHL();

    HMODULE GetModule() const { return m_hModule; }

protected:
    typedef const wchar_t*(__cdecl* GetDKHLFn)();

    GetDKHLFn m_pfnGetDKHL;
    HMODULE m_hModule;
    wchar_t* m_pszDKHL;

private:
    void Load(const wchar_t* folder, bool fallBackToBareName);
};

class ZCMOD_API CDKHLInfoReader2 : public CDKHLInfoReader {
public:
    CDKHLInfoReader2();
    explicit CDKHLInfoReader2(const wchar_t* folder);
    ~CDKHLInfoReader2() override;

    CDKHLInfoReader2(const CDKHLInfoReader2&) = default;
    CDKHLInfoReader2& operator=(const CDKHLInfoReader2&) = default;

    // The variant id, asked for once and cached; 0xFFFF if the export is missing.
    unsigned short GetVariantID();

protected:
    typedef unsigned short(__cdecl* GetVariantIDFn)();

    GetVariantIDFn m_pfnGetVariantID;
    unsigned short* m_pVariantID;
};
