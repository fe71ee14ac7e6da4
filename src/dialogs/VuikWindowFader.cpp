// CVuikWindowFader: steps a window's layered alpha in 20 ms steps, on the calling thread.
#include "zcmod/VuikSplashScreen.h"

#include "dialogs/core/FadeSteps.h"

using namespace zcmod;

CVuikWindowFader::CVuikWindowFader() : m_bLayered(0)
{
    m_bLayered = IsWin2000XP();
}

CVuikWindowFader::~CVuikWindowFader() {}

int CVuikWindowFader::IsWin2000XP()
{
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
    if (!GetVersionExW(&version))
        return 0;
    return version.dwPlatformId == VER_PLATFORM_WIN32_NT && version.dwMajorVersion >= 5 ? 1 : 0;
}

void CVuikWindowFader::SetWindowToLayered(HWND window)
{
    if (!m_bLayered)
        return;
    const LONG style = GetWindowLongW(window, GWL_EXSTYLE);
    if (!(style & WS_EX_LAYERED))
        SetWindowLongW(window, GWL_EXSTYLE, style ^ WS_EX_LAYERED);
}

void CVuikWindowFader::FadeIn(HWND window, unsigned int time)
{
    SetWindowToLayered(window);
    Fade(window, 0, time);
}

void CVuikWindowFader::FadeOut(HWND window, unsigned int time)
{
    SetWindowToLayered(window);
    Fade(window, 1, time);
}

void CVuikWindowFader::FadeInOut(HWND window, unsigned int hold, unsigned int timeIn, unsigned int timeOut)
{
    FadeIn(window, timeIn);
    Sleep(hold);
    FadeOut(window, timeOut);
}

void CVuikWindowFader::FadeOutIn(HWND window, unsigned int hold, unsigned int timeIn, unsigned int timeOut)
{
    FadeOut(window, timeOut);
    Sleep(hold);
    FadeIn(window, timeIn);
}

void CVuikWindowFader::Fade(HWND window, unsigned int direction, unsigned int time)
{
    const FadePlan plan = PlanFade(time);
    RECT own = {};
    GetWindowRect(window, &own);

    if (!m_bLayered) {
        // No alpha to step: the window appears before the wait or disappears after it.
        if (direction == 0) {
            ShowWindow(window, SW_SHOW);
            UpdateWindow(window);
            Sleep(time);
            UpdateWindow(window);
        } else {
            UpdateWindow(window);
            Sleep(time);
            ShowWindow(window, SW_HIDE);
        }
        return;
    }

    int alpha = direction == 0 ? 0 : 255;
    ShowWindow(window, SW_SHOW);
    for (unsigned step = 0; step < plan.steps; ++step) {
        const DWORD start = GetTickCount();
        alpha = ClampAlpha(alpha);
        // The wait is taken before the step draws, so drawing lengthens the fade.
        const unsigned wait = StepWait(start, plan.stepTime, GetTickCount());
        HWND foreground = GetForegroundWindow();
        if (foreground != window) {
            // A window in front that overlaps this one may have left stale pixels in it. Only the left edge of
            // the overlap is looked at: an empty overlap and one at the screen's left edge both give 0.
            RECT front = {};
            RECT overlap = {};
            if (foreground)
                GetWindowRect(foreground, &front);
            IntersectRect(&overlap, &front, &own);
            if (overlap.left != 0)
                InvalidateRect(window, nullptr, TRUE);
        }
        SetLayeredWindowAttributes(window, 0, static_cast<BYTE>(alpha), LWA_ALPHA);
        UpdateWindow(window);
        alpha = NextAlpha(alpha, direction, plan.change);
        if (wait)
            Sleep(wait);
    }
    SetLayeredWindowAttributes(window, 0, direction == 0 ? 255 : 0, LWA_ALPHA);
    InvalidateRect(window, nullptr, TRUE);
    UpdateWindow(window);
}
