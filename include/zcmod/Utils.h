// CUtils: readers of the suite's settings and of module versions.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class ZCMOD_API CUtils {
public:
    CUtils();
    virtual ~CUtils();

    // The file version of `module`: most significant high word, most significant low word, least
    // significant high word, least significant low word. Non-zero on success. Works on modules loaded as
    // data files too.
    static int GetModuleVersion(HMODULE module, DWORD result[4]);

    // Reads "DeskHubBuildNumber" under HKLM "SOFTWARE\Wow6432node\<maker>"; `capacity` in bytes.
    // 1 on success, else 0.
    static int GetBuildNumber(wchar_t* buffer, DWORD capacity);

    // Splits the build number on "." and converts up to three leading parts; the others are 0.
    // Returns the number of parts converted, 0 when there is no build number.
    static int GetBuildNumberParts(int result[3]);

    // The process-wide build number text, read while it is empty with a capacity of 20 bytes: a build number
    // of ten characters or more is not read, however much room the text has.
    static const wchar_t* GetCachedBuildNumber();

    // The process-wide UI manufacturer name from the settings library, got on first use; never null.
    static const wchar_t* GetUIManufacturerName();

    // Reads "selectedPhone" of `keyPath` under HKCU into `result` (of `capacity` wide characters) if it is
    // a REG_SZ. Returns the registry status, ERROR_INVALID_PARAMETER when `result` is empty.
    static LONG ReadSelectedPhone(const wchar_t* keyPath, wchar_t* result, DWORD capacity = MAX_PATH);
};
