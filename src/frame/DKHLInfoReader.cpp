#include "zcmod/DKHLInfoReader.h"

#include <cstdlib>
#include <cwchar>
#include <new>

#include "frame/Win32Util.h"

namespace {

const wchar_t kLibraryName[] = L"DKHL64.dll";

typedef const wchar_t*(__cdecl* StringFn)();
typedef unsigned short(__cdecl* VariantFn)();

template <class Fn>
Fn Lookup(HMODULE module, const char* name)
{
    return module ? reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

const wchar_t* CallString(HMODULE module, const char* name)
{
    StringFn fn = Lookup<StringFn>(module, name);
    return fn ? fn() : nullptr;
}

// <folder> + "\" (unless it ends in one) + "DKHL64.dll".
bool BuildLibraryPath(const wchar_t* folder, wchar_t* path, size_t capacity)
{
    if (!zcmod::CopyString(path, capacity, folder))
        return false;
    const size_t len = std::wcslen(path);
    if ((len == 0 || path[len - 1] != L'\\') && !zcmod::AppendString(path, capacity, L"\\"))
        return false;
    return zcmod::AppendString(path, capacity, kLibraryName);
}

}  // namespace

CDKHL2InfoReader::CDKHL2InfoReader() : m_hModule(nullptr) {}

CDKHL2InfoReader::~CDKHL2InfoReader()
{
    if (m_hModule)
        FreeLibrary(m_hModule);
}

int CDKHL2InfoReader::ReadDKHL(const wchar_t* folder)
{
    if (m_hModule) {
        FreeLibrary(m_hModule);
        m_hModule = nullptr;
    }
    wchar_t path[MAX_PATH] = {};
    if (folder) {
        if (!BuildLibraryPath(folder, path, MAX_PATH))
            path[0] = 0;
    } else {
        wchar_t own[MAX_PATH];
        if (!zcmod::GetModuleFolder(zcmod::LibraryModule(), own, MAX_PATH))
            return -1;
        if (!BuildLibraryPath(own, path, MAX_PATH))
            path[0] = 0;
    }
    if (!path[0])
        return -10;
    m_hModule = LoadLibraryW(path);
    return m_hModule ? 0 : -2;
}

unsigned short CDKHL2InfoReader::DKHL_GetVariantID()
{
    VariantFn fn = Lookup<VariantFn>(m_hModule, "DKHL_GetVariantID");
    return fn ? fn() : 0;
}

const wchar_t* CDKHL2InfoReader::GetUIManufacturer() { return CallString(m_hModule, "GetUIManufacturer"); }

const wchar_t* CDKHL2InfoReader::GetFirstPhoneManufacturer()
{
    return CallString(m_hModule, "GetFirstPhoneManufacturer");
}

const wchar_t* CDKHL2InfoReader::GetNextPhoneManufacturer() { return CallString(m_hModule, "GetNextPhoneManufacturer"); }

const wchar_t* CDKHL2InfoReader::GetDKHL() { return CallString(m_hModule, "GetDKHL"); }

int CDKHL2InfoReader::GetNumberOfPhoneManufacturers()
{
    StringFn first = Lookup<StringFn>(m_hModule, "GetFirstPhoneManufacturer");
    StringFn next = Lookup<StringFn>(m_hModule, "GetNextPhoneManufacturer");
    if (!first || !next)
        return 0;
    int count = 0;
    for (const wchar_t* name = first(); name && *name; name = next())
        ++count;
    return count;
}

CDKHLInfoReader::CDKHLInfoReader() : m_pfnGetDKHL(nullptr), m_hModule(nullptr), m_pszDKHL(nullptr)
{
    wchar_t folder[MAX_PATH];
    if (zcmod::GetModuleFolder(nullptr, folder, MAX_PATH))
        Load(folder, true);
    else
        Load(nullptr, false);
}

CDKHLInfoReader::CDKHLInfoReader(const wchar_t* folder) : m_pfnGetDKHL(nullptr), m_hModule(nullptr), m_pszDKHL(nullptr)
{
    Load(folder, false);
}

CDKHLInfoReader::~CDKHLInfoReader()
{
    free(m_pszDKHL);
    if (m_hModule)
        FreeLibrary(m_hModule);
}

void CDKHLInfoReader::Load(const wchar_t* folder, bool fallBackToBareName)
{
    wchar_t path[MAX_PATH];
    if (folder && *folder) {
        if (BuildLibraryPath(folder, path, MAX_PATH))
            m_hModule = LoadLibraryW(path);
        if (!m_hModule && fallBackToBareName)
            m_hModule = LoadLibraryW(kLibraryName);
    } else {
        m_hModule = LoadLibraryW(kLibraryName);
    }
    m_pfnGetDKHL = Lookup<GetDKHLFn>(m_hModule, "GetDKHL");
}

const wchar_t* CDKHLInfoReader::GetDKHL()
{
    if (!m_pszDKHL && m_pfnGetDKHL) {
        const wchar_t* name = m_pfnGetDKHL();
        if (name)
            m_pszDKHL = _wcsdup(name);
    }
    return m_pszDKHL;
}

CDKHLInfoReader2::CDKHLInfoReader2() : CDKHLInfoReader(), m_pfnGetVariantID(nullptr), m_pVariantID(nullptr)
{
    m_pfnGetVariantID = Lookup<GetVariantIDFn>(m_hModule, "DKHL_GetVariantID");
}

CDKHLInfoReader2::CDKHLInfoReader2(const wchar_t* folder)
    : CDKHLInfoReader(folder), m_pfnGetVariantID(nullptr), m_pVariantID(nullptr)
{
    m_pfnGetVariantID = Lookup<GetVariantIDFn>(m_hModule, "DKHL_GetVariantID");
}

CDKHLInfoReader2::~CDKHLInfoReader2() { delete m_pVariantID; }

unsigned short CDKHLInfoReader2::GetVariantID()
{
    if (!m_pVariantID) {
        if (!m_pfnGetVariantID)
            return 0xFFFF;
        m_pVariantID = new (std::nothrow) unsigned short(m_pfnGetVariantID());
        if (!m_pVariantID)
            return 0xFFFF;
    }
    return *m_pVariantID;
}
