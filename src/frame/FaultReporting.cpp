#include "zcmod/FaultReporting.h"

#include <windows.h>

#include "frame/Handles.h"
#include "frame/core/SettingsText.h"

namespace {

// Process-wide, as the filter may run on any thread while the process is failing.
wchar_t g_faultReporterPath[MAX_PATH];

typedef DWORD(WINAPI* ReportFaultFn)(EXCEPTION_POINTERS*, DWORD);

// Hands the fault to the platform's reporter. Returns 1 (the process ends without the platform's own
// handling) when the report was made, 0 otherwise.
LONG WINAPI FaultFilter(EXCEPTION_POINTERS* exception)
{
    wchar_t windowsDir[MAX_PATH];
    const UINT length = GetSystemWindowsDirectoryW(windowsDir, MAX_PATH);
    if (length == 0 || length >= MAX_PATH ||
        !zcmod::BuildFaultReporterPath(windowsDir, length, g_faultReporterPath, MAX_PATH))
        return 0;
    zcmod::ModuleHandle reporter(LoadLibraryW(g_faultReporterPath));
    if (!reporter)
        return 0;
    auto report = reinterpret_cast<ReportFaultFn>(reinterpret_cast<void*>(GetProcAddress(reporter.Get(), "ReportFault")));
    if (!report)
        return 0;
    report(exception, 0);
    return 1;
}

}  // namespace

int DkhInitializeWER()
{
    SetUnhandledExceptionFilter(FaultFilter);
    return 1;
}
