// Small helpers of the frame: the library's own module, bounded wide-string building, registry strings.
#pragma once

#include <windows.h>

#include <cstddef>

namespace zcmod {

// The library's own module handle, as the loader gave it to the entry function (not CVuikLib's instance).
HMODULE LibraryModule();
void SetLibraryModule(HMODULE module);

// The folder of a module's file (null: the executable), without a trailing backslash. False if the name
// can't be got or does not fit.
bool GetModuleFolder(HMODULE module, wchar_t* folder, size_t capacity);

// Bounded string building: each returns false, and leaves a terminated (possibly shortened) string, when
// the result would not fit in `capacity` wide characters.
bool CopyString(wchar_t* dst, size_t capacity, const wchar_t* src);
bool AppendString(wchar_t* dst, size_t capacity, const wchar_t* src);

// Reads a string value (REG_SZ or REG_EXPAND_SZ) of an open key into `buffer`, with `capacityBytes` given to
// the registry as it stands. The result is always terminated: a value that fills the buffer without a
// terminator is refused. On failure `buffer` holds an empty string (when it has room) and the status is
// returned; ERROR_SUCCESS otherwise.
LONG ReadRegistryString(HKEY key, const wchar_t* valueName, wchar_t* buffer, DWORD capacityBytes,
                        DWORD* type = nullptr);

// Opens `subKey` of `hive` with `access` and reads a string value from it, as above.
LONG ReadRegistryString(HKEY hive, const wchar_t* subKey, REGSAM access, const wchar_t* valueName, wchar_t* buffer,
                        DWORD capacityBytes);

// Case-insensitive comparison of two whole strings (ordinal, as the file system compares names).
bool EqualNoCase(const wchar_t* a, const wchar_t* b);

}  // namespace zcmod
