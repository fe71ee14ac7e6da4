// The animation page: the theme's progress animation played by CPNGAnimation forward, backward and once, each
// on a window of its own; the suite's splash screen over the desktop; and a window faded in and out.
//
// The frames are PNG with alpha in the theme's graphics module. As the progress dialog does, the page blends
// each frame over the window colour first (the animation copies whole frames), and mirrors it in a
// right-to-left layout. Opening the page shows the splash and fades a window once, and keeps what the screen
// showed of the splash, so that the still picture of the page carries it; the buttons run both again.
#include <windows.h>

#include <memory>
#include <string>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "PushButtons.h"

using namespace gallery;

namespace {

const wchar_t kTargetClass[] = L"ZcmodGalleryAnimationTarget";
const wchar_t kFadedClass[] = L"ZcmodGalleryFadedWindow";
const wchar_t kAnimationProp[] = L"ZcmodGalleryAnimation";
enum { kSplashButton = 4101, kFadeButton, kOnceButton };
enum { kLoop, kBackward, kOnce, kPlayers };
const wchar_t* const kPlayerNames[kPlayers] = {L"Looping forward, 150 ms", L"Looping backward, 90 ms",
                                               L"One pass (button below)"};
const int kLeft = 24;
const int kPlayersTop = 92;
const int kPlayerStep = 64;
const int kSplashTop = 372;
const int kNotesLeft = kLeft + 500;  // right of the splash's picture and its margin

// A window that a CPNGAnimation draws on; when it is painted, it shows the frame last drawn.
LRESULT CALLBACK TargetProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_PAINT) {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(hwnd, &ps);
        RECT r;
        GetClientRect(hwnd, &r);
        HBRUSH brush = CreateSolidBrush(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW));
        FillRect(dc, &r, brush);
        DeleteObject(brush);
        auto* animation = static_cast<CPNGAnimation*>(GetPropW(hwnd, kAnimationProp));
        HBITMAP frame = animation ? animation->GetLastBitmapHandle() : nullptr;
        if (frame) {
            HDC memory = CreateCompatibleDC(dc);
            HGDIOBJ old = SelectObject(memory, frame);
            BitBlt(dc, 0, 0, r.right, r.bottom, memory, 0, 0, SRCCOPY);
            SelectObject(memory, old);
            DeleteDC(memory);
        }
        EndPaint(hwnd, &ps);
        return 0;
    }
    if (message == WM_ERASEBKGND)
        return 1;
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

// The window that the fader fades: a card in the theme's colours.
LRESULT CALLBACK FadedProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_PAINT) {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(hwnd, &ps);
        RECT r;
        GetClientRect(hwnd, &r);
        Swatch(dc, r, DkhLoadColor(nullptr, ZGR_COLOR_CAPTION), DkhLoadColor(nullptr, ZGR_COLOR_BORDER));
        HFONT font = SuiteFont(22, FW_BOLD);
        HGDIOBJ old = SelectObject(dc, font);
        Text(dc, 20, 24, L"Desk Hub", DkhLoadColor(nullptr, ZGR_COLOR_CAPTION_TEXT));
        SelectObject(dc, old);
        DeleteObject(font);
        font = SuiteFont(14);
        old = SelectObject(dc, font);
        Text(dc, 20, 60, L"Faded in and out by CVuikWindowFader", DkhLoadColor(nullptr, ZGR_COLOR_CAPTION_TEXT));
        SelectObject(dc, old);
        DeleteObject(font);
        EndPaint(hwnd, &ps);
        return 0;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

class AnimationPage : public GalleryPage {
public:
    ~AnimationPage() override
    {
        Leave();
        if (m_splashShot)
            DeleteObject(m_splashShot);
    }

    const wchar_t* Title() const override { return L"Animation and splash"; }

    void Enter(HWND host) override
    {
        m_host = host;
        Register();
        LoadFrames();
        const HINSTANCE instance = GetModuleHandleW(nullptr);
        const int width = m_frames.GetBitmapWidth(BT_RESULT);
        const int height = m_frames.GetBitmapHeight(BT_RESULT);
        const int delays[kPlayers] = {150, 90, 60};
        const int directions[kPlayers] = {0, 1, 0};
        for (int i = 0; i < kPlayers; ++i) {
            m_targets[i] = CreateWindowExW(0, kTargetClass, nullptr, WS_CHILD | WS_VISIBLE, kLeft + 220,
                                           kPlayersTop + i * kPlayerStep, width, height, host, nullptr, instance,
                                           nullptr);
            m_players[i] = std::make_unique<CPNGAnimation>();
            CPNGAnimation& a = *m_players[i];
            SetPropW(m_targets[i], kAnimationProp, m_players[i].get());
            a.SetAnimationMembers(ZGR_PNG_ANIMATION_FRAMES, delays[i], directions[i]);
            for (int f = 0; f < ZGR_PNG_ANIMATION_FRAMES; ++f)
                a.SetBitmapHandles(f, m_frames.GetBitmapHandle(BT_RESULT, f));
            a.SetDestinationWindow(&m_targets[i]);
            a.SetAnimationCoordinates(POINT{0, 0});
            if (i != kOnce)
                a.StartAnimation();
        }
        m_players[kOnce]->PlayOnce();
        const int buttonTop = kPlayersTop + kPlayers * kPlayerStep;
        m_pushButtons.Add(m_host, L"Play once again", kLeft, buttonTop, 170, 28, kOnceButton);
        m_pushButtons.Add(m_host, L"Show the splash screen", kLeft + 180, buttonTop, 170, 28, kSplashButton);
        m_pushButtons.Add(m_host, L"Fade a window in and out", kLeft + 360, buttonTop, 170, 28, kFadeButton);
        // The page's buttons talk to the host: listen there while the page is shown (in the platform's chain of
        // subclasses, which the buttons' own use of the host shares).
        SetWindowSubclass(host, HostCommandProc, 1, reinterpret_cast<DWORD_PTR>(this));
        if (!m_splashShown) {
            RunSplash();
            RunFade();
        }
    }

    void Leave() override
    {
        if (!m_host)
            return;
        for (int i = 0; i < kPlayers; ++i) {
            if (m_players[i]) {
                m_players[i]->StopAnimation();
                m_players[i].reset();
            }
            if (m_targets[i])
                DestroyWindow(m_targets[i]);
            m_targets[i] = nullptr;
        }
        m_pushButtons.Clear();
        RemoveWindowSubclass(m_host, HostCommandProc, 1);
        m_host = nullptr;
    }

    bool Tick() override
    {
        if (!m_players[kLoop])
            return false;
        const int frame = m_players[kLoop]->GetLastBitmapIndex();
        if (frame != m_lastSeen)
            ++m_advances;
        m_lastSeen = frame;
        // The labels carry the frame numbers: redraw them now and then.
        return ++m_ticks % 5 == 0;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        Swatch(dc, area, window, window);
        HFONT title = SuiteFont(22, FW_BOLD);
        HFONT body = SuiteFont(13);
        HGDIOBJ old = SelectObject(dc, title);
        Text(dc, kLeft, 16, L"Animation and splash", accent);
        SelectObject(dc, body);
        Text(dc, kLeft, 50,
             Format(L"CPNGAnimation plays the theme's %d progress frames (ids %d to %d) from a worker thread%ls.",
                    ZGR_PNG_ANIMATION_FRAMES, ZGR_PNG_ANIMATION_FIRST, ZGR_PNG_ANIMATION_LAST,
                    CVuikLib::IsLayoutRTL() ? L", mirrored for right to left" : L""),
             text);
        for (int i = 0; i < kPlayers; ++i) {
            const int y = kPlayersTop + i * kPlayerStep;
            Text(dc, kLeft, y, kPlayerNames[i], text);
            if (m_players[i])
                Text(dc, kLeft, y + 18,
                     Format(L"frame %d, %ls", m_players[i]->GetLastBitmapIndex(),
                            m_players[i]->GetAnimationState() ? L"animating" : L"stopped"),
                     DkhLoadColor(nullptr, ZGR_COLOR_TEXT_DISABLED));
        }

        SelectObject(dc, title);
        Text(dc, kLeft, kSplashTop - 34, L"Splash screen and fader", accent);
        SelectObject(dc, body);
        Text(dc, kNotesLeft, kSplashTop,
             L"CVuikSplashScreen centres the theme's splash picture", text);
        Text(dc, kNotesLeft, kSplashTop + 18, L"on the screen, blended over what the desktop shows,", text);
        Text(dc, kNotesLeft, kSplashTop + 36, L"and cut where its alpha is 0 to 2.", text);
        Text(dc, kNotesLeft, kSplashTop + 66,
             m_splashShot ? Format(L"Left: the screen while it showed (Show: %d).", m_splashResult)
                          : std::wstring(L"The splash did not show."),
             text);
        Text(dc, kNotesLeft, kSplashTop + 96, L"CVuikWindowFader: fade in 300 ms, hold 400 ms,", text);
        Text(dc, kNotesLeft, kSplashTop + 114, L"fade out 300 ms, in 20 ms steps of the layered alpha.", text);
        if (m_fades)
            Text(dc, kNotesLeft, kSplashTop + 144,
                 Format(L"Faded %d time%ls; alpha after the fade in %d, after the fade out %d.", m_fades,
                        m_fades == 1 ? L"" : L"s", m_alphaIn, m_alphaOut),
                 text);
        if (m_splashShot) {
            // What lay around the splash on the screen, at full size.
            HDC memory = CreateCompatibleDC(dc);
            HGDIOBJ was = SelectObject(memory, m_splashShot);
            BitBlt(dc, kLeft, kSplashTop, m_shotSize.cx, m_shotSize.cy, memory, 0, 0, SRCCOPY);
            SelectObject(memory, was);
            DeleteDC(memory);
            const RECT frame = {kLeft - 1, kSplashTop - 1, kLeft + m_shotSize.cx + 1, kSplashTop + m_shotSize.cy + 1};
            HBRUSH border = CreateSolidBrush(DkhLoadColor(nullptr, ZGR_COLOR_BORDER));
            FrameRect(dc, &frame, border);
            DeleteObject(border);
        }
        SelectObject(dc, old);
        DeleteObject(title);
        DeleteObject(body);
    }

    std::wstring Verify() override
    {
        if (m_frames.GetNumberOfBitmaps(BT_RESULT) != ZGR_PNG_ANIMATION_FRAMES)
            return Format(L"%d of the %d animation frames were made", m_frames.GetNumberOfBitmaps(BT_RESULT),
                          ZGR_PNG_ANIMATION_FRAMES);
        if (m_advances < 2)
            return L"the looping animation did not advance";
        if (m_players[kOnce] && m_players[kOnce]->GetLastBitmapIndex() != 0)
            return Format(L"the single pass ended on frame %d, not 0", m_players[kOnce]->GetLastBitmapIndex());
        if (m_splashResult != 1 || !m_splashShot)
            return L"the splash screen did not show";
        if (m_fades < 1 || m_alphaIn != 255 || m_alphaOut != 0)
            return Format(L"the fade ended at alpha %d and %d, not 255 and 0", m_alphaIn, m_alphaOut);
        return L"";
    }

private:
    static void Register()
    {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = TargetProc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.lpszClassName = kTargetClass;
        RegisterClassW(&wc);
        wc.lpfnWndProc = FadedProc;
        wc.lpszClassName = kFadedClass;
        RegisterClassW(&wc);
    }

    // Each frame of the theme blended over the window colour, and mirrored for a right-to-left layout.
    void LoadFrames()
    {
        if (m_frames.GetNumberOfBitmaps(BT_RESULT) == ZGR_PNG_ANIMATION_FRAMES)
            return;
        HMODULE theme = ZCMOD_GetCommonZGR();
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        for (int f = 0; f < ZGR_PNG_ANIMATION_FRAMES; ++f) {
            if (!m_frames.NLoadBitmap(theme, ZGR_PNG_ANIMATION_FIRST + f, BT_IMAGE, f))
                continue;
            m_frames.CreateColorBackground(window, 0, f);
            m_frames.AlphaBlendBitmaps(2, 0, f);
            if (CVuikLib::IsLayoutRTL())
                m_frames.MirrorSection(BT_RESULT, f, 0, 0, m_frames.GetBitmapWidth(BT_RESULT),
                                       m_frames.GetBitmapHeight(BT_RESULT), 1, 0);
        }
    }


    static void PumpFor(DWORD ms)
    {
        const DWORD end = GetTickCount() + ms;
        while (static_cast<LONG>(end - GetTickCount()) > 0) {
            MSG msg;
            while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
                TranslateMessage(&msg);
                DispatchMessageW(&msg);
            }
            Sleep(10);
        }
    }

    // Shows the splash, keeps what the screen shows around it, and hides it again.
    void RunSplash()
    {
        m_splashShown = true;
        // The splash composes itself over what the screen shows: let this page reach the screen first.
        RedrawWindow(GetAncestor(m_host, GA_ROOT), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        PumpFor(200);
        CVuikSplashScreen splash(ZCMOD_GetCommonZGR(), ZGR_PNG_SPLASH);
        m_splashResult = splash.Show(400);
        PumpFor(700);
        HWND window = FindWindowW(L"CVuikSplashScreenWindow", nullptr);
        RECT r = {};
        if (window && GetWindowRect(window, &r) && !IsRectEmpty(&r)) {
            // A margin of desktop around the picture shows the soft edges against what lay beneath.
            InflateRect(&r, 12, 12);
            m_shotSize = SIZE{r.right - r.left, r.bottom - r.top};
            HDC screen = GetDC(nullptr);
            HDC memory = CreateCompatibleDC(screen);
            if (m_splashShot)
                DeleteObject(m_splashShot);
            m_splashShot = CreateCompatibleBitmap(screen, m_shotSize.cx, m_shotSize.cy);
            HGDIOBJ old = SelectObject(memory, m_splashShot);
            BitBlt(memory, 0, 0, m_shotSize.cx, m_shotSize.cy, screen, r.left, r.top, SRCCOPY);
            SelectObject(memory, old);
            DeleteDC(memory);
            ReleaseDC(nullptr, screen);
        }
        splash.Hide(300);
        if (m_host)
            InvalidateRect(m_host, nullptr, FALSE);
    }

    void RunFade()
    {
        RECT host;
        GetWindowRect(m_host, &host);
        const int width = 340, height = 110;
        HWND faded = CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kFadedClass, L"Desk Hub", WS_POPUP,
                                     (host.left + host.right - width) / 2, (host.top + host.bottom - height) / 2,
                                     width, height, m_host, nullptr, GetModuleHandleW(nullptr), nullptr);
        if (!faded)
            return;
        CVuikWindowFader fader;
        BYTE alpha = 0;
        fader.FadeIn(faded, 300);
        GetLayeredWindowAttributes(faded, nullptr, &alpha, nullptr);
        m_alphaIn = alpha;
        Sleep(400);
        fader.FadeOut(faded, 300);
        GetLayeredWindowAttributes(faded, nullptr, &alpha, nullptr);
        m_alphaOut = alpha;
        DestroyWindow(faded);  // a fade-out leaves the window shown at alpha 0
        ++m_fades;
        InvalidateRect(m_host, nullptr, FALSE);
    }

    static LRESULT CALLBACK HostCommandProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                            DWORD_PTR data)
    {
        auto* self = reinterpret_cast<AnimationPage*>(data);
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) {
            switch (LOWORD(wParam)) {
            case kOnceButton:
                // Stop before playing once again: a pass over a running worker would leave it running.
                self->m_players[kOnce]->StopAnimation();
                self->m_players[kOnce]->PlayOnce();
                return 0;
            case kSplashButton:
                self->RunSplash();
                return 0;
            case kFadeButton:
                self->RunFade();
                return 0;
            default:
                break;
            }
        }
        return DefSubclassProc(hwnd, message, wParam, lParam);
    }

    gallery::PushButtons m_pushButtons;
    HWND m_host = nullptr;
    CNBitmapUtil m_frames;
    std::unique_ptr<CPNGAnimation> m_players[kPlayers];
    HWND m_targets[kPlayers] = {};
    HBITMAP m_splashShot = nullptr;
    SIZE m_shotSize = {};
    int m_splashResult = 0;
    bool m_splashShown = false;
    int m_fades = 0;
    int m_alphaIn = -1;
    int m_alphaOut = -1;
    int m_lastSeen = -1;
    int m_advances = 0;
    int m_ticks = 0;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeAnimationPage() { return std::make_unique<AnimationPage>(); }
