#include "zcmod/Utils.h"

#include <cstring>
#include <cwchar>
#include <vector>

#include "frame/Handles.h"
#include "frame/Win32Util.h"
#include "frame/core/SettingsText.h"
#include "zcmod/DKHLInfoReader.h"

namespace {

// The process-wide caches of CUtils.
wchar_t g_buildNumber[20] = {};
wchar_t g_uiManufacturer[MAX_PATH] = {};
bool g_uiManufacturerRead = false;

bool ReadFixedFileInfo(const void* block, DWORD result[4])
{
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block, L"\\", reinterpret_cast<void**>(&info), &length) || !info ||
        length < sizeof(VS_FIXEDFILEINFO) || info->dwSignature != 0xFEEF04BD)
        return false;
    result[0] = HIWORD(info->dwFileVersionMS);
    result[1] = LOWORD(info->dwFileVersionMS);
    result[2] = HIWORD(info->dwFileVersionLS);
    result[3] = LOWORD(info->dwFileVersionLS);
    return true;
}

// Version data of a module loaded as a data file, which has no file name the loader knows: read straight
// from its version resource, through a copy that the version functions may write into.
bool ReadVersionResource(HMODULE module, DWORD result[4])
{
    HRSRC info = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16) /* RT_VERSION */);
    if (!info)
        return false;
    HGLOBAL resource = LoadResource(module, info);
    const DWORD size = SizeofResource(module, info);
    const void* bytes = resource ? LockResource(resource) : nullptr;
    if (!bytes || size == 0)
        return false;
    std::vector<unsigned char> copy(static_cast<const unsigned char*>(bytes),
                                    static_cast<const unsigned char*>(bytes) + size);
    copy.resize(size * 2);  // room for the conversions VerQueryValueW may make in place
    return ReadFixedFileInfo(copy.data(), result);
}

}  // namespace

CUtils::CUtils() = default;

CUtils::~CUtils() = default;

int CUtils::GetModuleVersion(HMODULE module, DWORD result[4])
{
    if (!result)
        return 0;
    wchar_t path[MAX_PATH];
    const DWORD n = module ? GetModuleFileNameW(module, path, MAX_PATH) : 0;
    if (n > 0 && n < MAX_PATH) {
        DWORD handle = 0;
        const DWORD size = GetFileVersionInfoSizeW(path, &handle);
        if (size > 0) {
            std::vector<unsigned char> data(size);
            if (GetFileVersionInfoW(path, 0, size, data.data()) && ReadFixedFileInfo(data.data(), result))
                return 1;
        }
    }
    return module && ReadVersionResource(module, result) ? 1 : 0;
}

int CUtils::GetBuildNumber(wchar_t* buffer, DWORD capacity)
{
    if (!buffer || capacity < sizeof(wchar_t))
        return 0;
    buffer[0] = 0;
    const wchar_t* maker = GetUIManufacturerName();
    if (!*maker)
        return 0;
    wchar_t keyPath[MAX_PATH];
    const int n = swprintf(keyPath, MAX_PATH, L"SOFTWARE\\Wow6432node\\%ls", maker);
    if (n < 0 || n >= MAX_PATH)
        return 0;
    return zcmod::ReadRegistryString(HKEY_LOCAL_MACHINE, keyPath, KEY_QUERY_VALUE, L"DeskHubBuildNumber", buffer,
                                     capacity) == ERROR_SUCCESS
               ? 1
               : 0;
}

int CUtils::GetBuildNumberParts(int result[3])
{
    if (!result)
        return 0;
    result[0] = result[1] = result[2] = 0;
    wchar_t text[MAX_PATH];
    if (!GetBuildNumber(text, sizeof(text)))
        return 0;
    return zcmod::ParseBuildNumberParts(text, result);
}

const wchar_t* CUtils::GetCachedBuildNumber()
{
    // Capacity 20 bytes whatever the buffer's size: a build number of ten characters or more is not read.
    if (!g_buildNumber[0])
        GetBuildNumber(g_buildNumber, 20);
    return g_buildNumber;
}

const wchar_t* CUtils::GetUIManufacturerName()
{
    if (!g_uiManufacturerRead) {
        wchar_t folder[MAX_PATH];
        CDKHL2InfoReader settings;
        if (zcmod::GetModuleFolder(zcmod::LibraryModule(), folder, MAX_PATH) && settings.ReadDKHL(folder) == 0) {
            const wchar_t* name = settings.GetUIManufacturer();
            // Read once, and only from a library that answered; an overlong name is not taken.
            if (name && zcmod::CopyString(g_uiManufacturer, MAX_PATH, name))
                g_uiManufacturerRead = true;
            else
                g_uiManufacturer[0] = 0;
        }
    }
    return g_uiManufacturer;
}

LONG CUtils::ReadSelectedPhone(const wchar_t* keyPath, wchar_t* result, DWORD capacity)
{
    if (!result || capacity == 0)
        return ERROR_INVALID_PARAMETER;
    zcmod::RegKey key;
    LONG status = RegOpenKeyExW(HKEY_CURRENT_USER, keyPath, 0, KEY_READ, key.Put());
    if (status != ERROR_SUCCESS)
        return status;
    std::vector<wchar_t> value(capacity + 1, 0);
    DWORD type = 0;
    DWORD size = capacity * sizeof(wchar_t);
    status = RegQueryValueExW(key.Get(), L"selectedPhone", nullptr, &type, reinterpret_cast<BYTE*>(value.data()),
                              &size);
    if (status == ERROR_SUCCESS && type == REG_SZ) {
        value[size / sizeof(wchar_t)] = 0;  // room for it was reserved above
        if (!zcmod::CopyString(result, capacity, value.data()))
            return ERROR_MORE_DATA;
    }
    return status;
}
