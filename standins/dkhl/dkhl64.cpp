// Stand-in for the suite's settings library, DKHL64.dll: the five exports the library looks up, answering
// from the registry so that tests, the demo and the controller can set them:
//   HKCU\Software\ZCMOD Stand-ins\DKHL64
//     "Installation"        REG_SZ        GetDKHL                 (default "Desk Hub")
//     "VariantID"           REG_DWORD     DKHL_GetVariantID       (default 1)
//     "UIManufacturer"      REG_SZ        GetUIManufacturer       (default "Zelvo")
//     "PhoneManufacturers"  REG_MULTI_SZ  Get{First,Next}PhoneManufacturer (default "Zelvo")
// Built a second time with DKHL_PARTIAL, which leaves out DKHL_GetVariantID and GetNextPhoneManufacturer.
#include <windows.h>

#include <cwchar>

#define DKHL_EXPORT extern "C" __declspec(dllexport)

namespace {

const wchar_t kKey[] = L"Software\\ZCMOD Stand-ins\\DKHL64";

wchar_t g_installation[256];
wchar_t g_manufacturer[256];
wchar_t g_phoneMakers[4096];
const wchar_t* g_nextMaker = nullptr;

// Reads a string (or multi-string) value; `fallback` (a multi-string for REG_MULTI_SZ) when absent.
void ReadValue(const wchar_t* name, wchar_t* buffer, DWORD chars, const wchar_t* fallback, size_t fallbackChars)
{
    HKEY key = nullptr;
    DWORD size = (chars - 2) * sizeof(wchar_t);
    std::wmemset(buffer, 0, chars);
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
        const LONG status = RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(buffer), &size);
        RegCloseKey(key);
        if (status == ERROR_SUCCESS)
            return;
        std::wmemset(buffer, 0, chars);
    }
    std::wmemcpy(buffer, fallback, fallbackChars);
}

}  // namespace

DKHL_EXPORT const wchar_t* GetDKHL()
{
    ReadValue(L"Installation", g_installation, 256, L"Desk Hub", 9);
    return g_installation;
}

#ifndef DKHL_PARTIAL
DKHL_EXPORT unsigned short DKHL_GetVariantID()
{
    HKEY key = nullptr;
    DWORD value = 1;
    DWORD size = sizeof(value);
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
        if (RegQueryValueExW(key, L"VariantID", nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size) !=
            ERROR_SUCCESS)
            value = 1;
        RegCloseKey(key);
    }
    return static_cast<unsigned short>(value);
}
#endif

DKHL_EXPORT const wchar_t* GetUIManufacturer()
{
    ReadValue(L"UIManufacturer", g_manufacturer, 256, L"Zelvo", 6);
    return g_manufacturer;
}

DKHL_EXPORT const wchar_t* GetFirstPhoneManufacturer()
{
    ReadValue(L"PhoneManufacturers", g_phoneMakers, 4096, L"Zelvo\0", 7);
    g_nextMaker = g_phoneMakers;
    if (!*g_nextMaker)
        return nullptr;
    const wchar_t* current = g_nextMaker;
    g_nextMaker += std::wcslen(g_nextMaker) + 1;
    return current;
}

#ifndef DKHL_PARTIAL
DKHL_EXPORT const wchar_t* GetNextPhoneManufacturer()
{
    if (!g_nextMaker || !*g_nextMaker)
        return nullptr;
    const wchar_t* current = g_nextMaker;
    g_nextMaker += std::wcslen(g_nextMaker) + 1;
    return current;
}
#endif
