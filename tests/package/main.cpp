// A client of the installed library: initialises it, reads its frame, and shuts it down.
#include <windows.h>

#include <cstdio>

#include <zcmod/zcmod.h>

int main()
{
    CVuikLib::Init(GetModuleHandleW(nullptr), GetModuleHandleW(nullptr));
    CVuikLib::SetLayout(0);
    LOGFONTW font;
    DkhLoadFont(&font);
    const bool faceSet = wcscmp(font.lfFaceName, L"Zelvo Sans Wide") == 0;
    const bool scaled = CVuikLib::GetScaleX() > 0.0 && CVuikLib::GetScaleY() > 0.0;
    const bool noFont = ZCMOD_CreateFontIndirect(&font) == nullptr;
    ZCMOD_Finalize();
    std::printf("consumer: face=%d scale=%d legacy=%d\n", faceSet, scaled, noFont);
    return faceSet && scaled && noFont ? 0 : 1;
}
