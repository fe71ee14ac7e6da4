// Started by the tests in a process of its own; prints what it is asked about and exits 0.
//   probe os       the operating system flags after CVuikLib::Init
//   probe scale    the scale after CVuikLib::Init, in a DPI-aware process
//   probe dkhl2    the file that CDKHL2InfoReader::ReadDKHL() loads (beside the DLL)
//   probe dkhl     the file that CDKHLInfoReader() loads (beside the executable, then by search)
//   probe dkhl-bare the file that CDKHLInfoReader(L"") loads (by search only)
#include <windows.h>

#include <cstdio>
#include <cwchar>

#include "zcmod/DKHLInfoReader.h"
#include "zcmod/VuikLib.h"

namespace {

void PrintModule(HMODULE module)
{
    wchar_t path[MAX_PATH] = L"(none)";
    if (module)
        GetModuleFileNameW(module, path, MAX_PATH);
    std::printf("%ls\n", path);
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc < 2)
        return 2;
    const wchar_t* what = argv[1];
    if (!std::wcscmp(what, L"os")) {
        CVuikLib::Init(GetModuleHandleW(nullptr), nullptr);
        OSVERSIONINFOW info = {};
        info.dwOSVersionInfoSize = sizeof(info);
        GetVersionExW(&info);
        std::printf("version=%lu.%lu 9x=%d xp=%d\n", info.dwMajorVersion, info.dwMinorVersion,
                    CVuikLib::IsWindows9x() ? 1 : 0, CVuikLib::IsWindowsXP() ? 1 : 0);
    } else if (!std::wcscmp(what, L"scale")) {
        SetProcessDPIAware();
        CVuikLib::Init(GetModuleHandleW(nullptr), nullptr);
        HDC screen = GetDC(nullptr);
        const int dpiX = GetDeviceCaps(screen, LOGPIXELSX);
        ReleaseDC(nullptr, screen);
        LOGFONTW font = {};
        GetObjectW(GetStockObject(SYSTEM_FONT), sizeof(font), &font);
        std::printf("dpi=%d font=%ldx%ld scale=%.6f,%.6f\n", dpiX, font.lfWidth, font.lfHeight,
                    CVuikLib::GetScaleX(), CVuikLib::GetScaleY());
    } else if (!std::wcscmp(what, L"dkhl2")) {
        CDKHL2InfoReader reader;
        const int result = reader.ReadDKHL();
        std::printf("result=%d ", result);
        PrintModule(reader.GetModule());
    } else if (!std::wcscmp(what, L"dkhl")) {
        CDKHLInfoReader reader;
        PrintModule(reader.GetModule());
    } else if (!std::wcscmp(what, L"dkhl-bare")) {
        CDKHLInfoReader reader(L"");
        PrintModule(reader.GetModule());
    } else {
        return 2;
    }
    std::fflush(stdout);
    return 0;
}
