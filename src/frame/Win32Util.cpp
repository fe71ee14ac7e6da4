#include "frame/Win32Util.h"

#include <cwchar>

#include "frame/Handles.h"

namespace zcmod {

namespace {
HMODULE g_libraryModule = nullptr;
}

HMODULE LibraryModule() { return g_libraryModule; }

void SetLibraryModule(HMODULE module) { g_libraryModule = module; }

bool GetModuleFolder(HMODULE module, wchar_t* folder, size_t capacity)
{
    if (!folder || capacity == 0)
        return false;
    folder[0] = 0;
    const DWORD n = GetModuleFileNameW(module, folder, static_cast<DWORD>(capacity));
    if (n == 0 || n >= capacity) {
        folder[0] = 0;
        return false;
    }
    wchar_t* slash = std::wcsrchr(folder, L'\\');
    if (!slash) {
        folder[0] = 0;
        return false;
    }
    *slash = 0;
    return true;
}

bool CopyString(wchar_t* dst, size_t capacity, const wchar_t* src)
{
    if (!dst || capacity == 0)
        return false;
    dst[0] = 0;
    return AppendString(dst, capacity, src);
}

bool AppendString(wchar_t* dst, size_t capacity, const wchar_t* src)
{
    if (!dst || capacity == 0)
        return false;
    if (!src)
        return true;
    size_t len = std::wcslen(dst);
    for (; *src; ++src) {
        if (len + 1 >= capacity) {
            dst[len] = 0;
            return false;
        }
        dst[len++] = *src;
    }
    dst[len] = 0;
    return true;
}

LONG ReadRegistryString(HKEY key, const wchar_t* valueName, wchar_t* buffer, DWORD capacityBytes, DWORD* type)
{
    if (!buffer || capacityBytes < sizeof(wchar_t)) {
        return ERROR_INVALID_PARAMETER;
    }
    DWORD valueType = 0;
    DWORD size = capacityBytes;
    LONG status = RegQueryValueExW(key, valueName, nullptr, &valueType, reinterpret_cast<BYTE*>(buffer), &size);
    if (type)
        *type = valueType;
    if (status == ERROR_SUCCESS && valueType != REG_SZ && valueType != REG_EXPAND_SZ)
        status = ERROR_INVALID_DATA;
    if (status == ERROR_SUCCESS) {
        const DWORD chars = size / sizeof(wchar_t);
        const DWORD room = capacityBytes / sizeof(wchar_t);
        if (chars > 0 && buffer[chars - 1] == 0) {
            // stored with its terminator
        } else if (chars < room) {
            buffer[chars] = 0;
        } else {
            status = ERROR_MORE_DATA;  // fills the buffer with no room left for a terminator
        }
    }
    if (status != ERROR_SUCCESS)
        buffer[0] = 0;
    return status;
}

LONG ReadRegistryString(HKEY hive, const wchar_t* subKey, REGSAM access, const wchar_t* valueName, wchar_t* buffer,
                        DWORD capacityBytes)
{
    if (buffer && capacityBytes >= sizeof(wchar_t))
        buffer[0] = 0;
    RegKey key;
    LONG status = RegOpenKeyExW(hive, subKey, 0, access, key.Put());
    if (status != ERROR_SUCCESS)
        return status;
    return ReadRegistryString(key.Get(), valueName, buffer, capacityBytes);
}

bool EqualNoCase(const wchar_t* a, const wchar_t* b)
{
    if (!a || !b)
        return a == b;
    return CompareStringOrdinal(a, -1, b, -1, TRUE) == CSTR_EQUAL;
}

}  // namespace zcmod
