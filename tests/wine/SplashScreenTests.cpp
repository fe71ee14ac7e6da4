// CVuikSplashScreen and CVuikWindowFader under Xvfb. The splash composes itself over a capture of the desktop,
// so the screen shows its blend and its cut, and that is what is checked. Xvfb has no compositor: a window's
// layered alpha does not show, so the fader's alpha values are watched where zcmod.dll hands them to the
// platform (its import table), with a clock of the test's own in place of GetTickCount and Sleep, and the screen
// is checked for what it can show.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "HandleCounter.h"
#include "ImageTestSupport.h"
#include "ImportWatch.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/NBitmapUtil.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikSplashScreen.h"

namespace {

using testskin::Canvas;
using testskin::Capture;
using zcmod_test::Near;

// ---- Watching zcmod.dll's calls ---------------------------------------------------------------------------------

struct Calls {
    std::vector<int> alphas;               // SetLayeredWindowAttributes, in order
    std::vector<uint32_t> screenAtAlpha;   // the screen at the fading window's centre after each of them
    std::vector<DWORD> sleeps;
    std::vector<std::pair<DWORD, DWORD>> animations;  // AnimateWindow: time, flags
    int invalidations = 0;
    DWORD clock = 100000;
    DWORD tickStep = 0;  // how far the clock moves at every reading: time spent between two readings
    HWND foreground = nullptr;
    POINT watch = {-1, -1};
};
Calls g_calls;

uint32_t ScreenPixel(POINT at)
{
    return testskin::CaptureScreen(RECT{at.x, at.y, at.x + 1, at.y + 1}).At(0, 0);
}

decltype(&SetLayeredWindowAttributes) g_realSetLayered;
decltype(&AnimateWindow) g_realAnimate;
BOOL WINAPI WatchSetLayered(HWND hwnd, COLORREF key, BYTE alpha, DWORD flags)
{
    EXPECT_EQ(flags, static_cast<DWORD>(LWA_ALPHA));
    EXPECT_EQ(key, 0u);
    g_calls.alphas.push_back(alpha);
    const BOOL result = g_realSetLayered(hwnd, key, alpha, flags);
    if (g_calls.watch.x >= 0) {
        // The platform brings a window's pixels to the screen when its thread looks at its messages.
        UpdateWindow(hwnd);
        msgseq::Recorder::Pump(60);
        g_calls.screenAtAlpha.push_back(ScreenPixel(g_calls.watch));
    }
    return result;
}
DWORD WINAPI FakeTickCount()
{
    const DWORD now = g_calls.clock;
    g_calls.clock += g_calls.tickStep;
    return now;
}
void WINAPI FakeSleep(DWORD ms)
{
    g_calls.sleeps.push_back(ms);
    g_calls.clock += ms;
}
BOOL WINAPI WatchInvalidate(HWND hwnd, const RECT* rect, BOOL erase)
{
    ++g_calls.invalidations;
    return InvalidateRect(hwnd, rect, erase);
}
HWND WINAPI FakeForeground()
{
    return g_calls.foreground;
}
BOOL WINAPI WatchAnimate(HWND hwnd, DWORD time, DWORD flags)
{
    g_calls.animations.emplace_back(time, flags);
    return g_realAnimate(hwnd, time, flags);
}

// `over` drawn with `alpha` (0 to 255) over `under`, both 0x00RRGGBB.
uint32_t Blend(uint32_t over, uint32_t under, int alpha)
{
    uint32_t out = 0;
    for (int shift = 0; shift < 24; shift += 8)
        out |= static_cast<uint32_t>((((over >> shift) & 0xFF) * alpha + ((under >> shift) & 0xFF) * (255 - alpha)) /
                                     255)
               << shift;
    return out;
}

// ---- A backdrop of known pixels over the whole screen ----------------------------------------------------------

// The backdrop's pattern; a test changes `g_backdropBlue` to change what lies under a window already shown.
int g_backdropBlue = 0x60;
uint32_t BackdropColour(int x, int y, int blue = g_backdropBlue)
{
    return (static_cast<uint32_t>(x * 7 % 256) << 16) | (static_cast<uint32_t>(y * 5 % 256) << 8) |
           static_cast<uint32_t>(blue);
}

LRESULT CALLBACK BackdropProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_PAINT) {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(hwnd, &ps);
        RECT r;
        GetClientRect(hwnd, &r);
        Canvas pattern(r.right, r.bottom, [](int x, int y) { return BackdropColour(x, y); });
        BitBlt(dc, 0, 0, r.right, r.bottom, pattern, 0, 0, SRCCOPY);
        EndPaint(hwnd, &ps);
        return 0;
    }
    if (message == WM_ERASEBKGND)
        return 1;
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

using testskin::CaptureScreen;
using msgseq::Recorder;

class SplashFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = BackdropProc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.lpszClassName = L"ZcmodTestBackdrop";
        RegisterClassW(&wc);
        m_screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
        m_backdrop = CreateWindowExW(0, wc.lpszClassName, L"", WS_POPUP | WS_VISIBLE, 0, 0, m_screen.right,
                                     m_screen.bottom, nullptr, nullptr, wc.hInstance, nullptr);
        Recorder::Pump(150);
        m_theme = LoadLibraryExW((zcmod_test::BinDir() + L"\\Resource\\ZCMOD_Default.zgr").c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE);
        m_tests = LoadLibraryExW((zcmod_test::BinDir() + L"\\Resource\\ZCMOD_Test.zgr").c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(m_theme, nullptr);
        ASSERT_NE(m_tests, nullptr);
        g_calls = Calls();
    }
    void TearDown() override
    {
        DestroyWindow(m_backdrop);
        UnregisterClassW(L"ZcmodTestBackdrop", GetModuleHandleW(nullptr));
        g_backdropBlue = 0x60;
        FreeLibrary(m_theme);
        FreeLibrary(m_tests);
    }

    RECT m_screen = {};
    HWND m_backdrop = nullptr;
    HMODULE m_theme = nullptr;
    HMODULE m_tests = nullptr;
};

struct SplashObject : CVuikSplashScreen {
    using CVuikSplashScreen::CVuikSplashScreen;
    using CVuikSplashScreen::m_hWnd;
    using CVuikSplashScreen::m_hWndOwner;
};

// ---- Splash screen ---------------------------------------------------------------------------------------------

TEST_F(SplashFixture, SplashBlendsOverTheDesktopAndIsCutToItsShape)
{
    zcmod_test::TestBitmapUtil picture;
    ASSERT_NE(picture.NLoadBitmap(m_theme, ZGR_PNG_SPLASH, BT_IMAGE, 0), nullptr);
    const zcmod_test::Pixels image = zcmod_test::ReadFrame(picture, BT_IMAGE, 0);
    const zcmod_test::Pixels plane = zcmod_test::ReadFrame(picture, BT_ALPHA, 0);
    ASSERT_EQ(plane.width, image.width);

    zcmod_test::ImportPatches patches;
    patches.Add("user32.dll", "AnimateWindow", &WatchAnimate, &g_realAnimate);
    SplashObject splash(m_theme, ZGR_PNG_SPLASH);
    ASSERT_EQ(splash.Show(300), 1);
    EXPECT_EQ(splash.Show(300), 0) << "a splash shows once";
    Recorder::Pump(100);

    // Centred, owned by the invisible window, which never shows; the object on its property.
    RECT placed;
    GetWindowRect(splash.m_hWnd, &placed);
    const RECT expected = {(m_screen.right - image.width) / 2, (m_screen.bottom - image.height) / 2,
                           (m_screen.right - image.width) / 2 + image.width,
                           (m_screen.bottom - image.height) / 2 + image.height};
    EXPECT_TRUE(EqualRect(&placed, &expected));
    EXPECT_EQ(GetWindow(splash.m_hWnd, GW_OWNER), splash.m_hWndOwner);
    EXPECT_FALSE(IsWindowVisible(splash.m_hWndOwner));
    EXPECT_TRUE(IsWindowVisible(splash.m_hWnd));
    EXPECT_EQ(GetPropW(splash.m_hWnd, L"__DeskHubCVuikSplashScreenClassPtr"), static_cast<HANDLE>(&splash));
    WNDCLASSW wc = {};
    ASSERT_TRUE(GetClassInfoW(GetModuleHandleW(nullptr), L"CVuikSplashScreenWindow", &wc));
    EXPECT_EQ(wc.style, static_cast<UINT>(CS_GLOBALCLASS | CS_CLASSDC));

    // The screen, after the desktop under the splash has changed: through the cut (alpha 0 to 2) the desktop
    // as it is now, everywhere else the picture blended over what the desktop showed when it appeared.
    const int blueAtShow = g_backdropBlue;
    g_backdropBlue = 0xE0;
    RedrawWindow(m_backdrop, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    Recorder::Pump(100);
    const Capture shown = CaptureScreen(expected);
    int cut = 0, partial = 0, wrong = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const int alpha = 255 - (plane.At(x, y) & 0xFF);  // the plane holds 255 - alpha
            const int sx = expected.left + x, sy = expected.top + y;
            cut += alpha <= 2;
            partial += alpha > 2 && alpha < 255;
            const uint32_t want =
                alpha <= 2 ? BackdropColour(sx, sy) : Blend(image.At(x, y), BackdropColour(sx, sy, blueAtShow), alpha);
            if (!Near(shown.At(x, y), want, 3) && ++wrong <= 5)
                ADD_FAILURE() << "pixel " << x << "," << y << " alpha " << alpha << ": " << std::hex << shown.At(x, y)
                              << " not " << want;
        }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(cut, 1000);      // the corners and the margin around the shadow
    EXPECT_GT(partial, 1000);  // the soft shadow and the anti-aliased edges

    splash.Hide(120);
    Recorder::Pump(100);
    EXPECT_FALSE(IsWindowVisible(splash.m_hWnd));
    EXPECT_TRUE(IsWindow(splash.m_hWnd)) << "the windows stay until the object goes";
    const Capture after = CaptureScreen(expected);
    EXPECT_EQ(after.At(image.width / 2, image.height / 2),
              BackdropColour(expected.left + image.width / 2, expected.top + image.height / 2));
    const std::vector<std::pair<DWORD, DWORD>> animations = {{300, AW_BLEND}, {120, AW_BLEND | AW_HIDE}};
    EXPECT_EQ(g_calls.animations, animations);
}

TEST_F(SplashFixture, SplashEdgeCases)
{
    zcmod_test::ImportPatches patches;
    patches.Add("user32.dll", "AnimateWindow", &WatchAnimate, &g_realAnimate);
    {
        // Hide before Show: nothing at all.
        SplashObject splash(m_theme, ZGR_PNG_SPLASH);
        EXPECT_EQ(splash.Hide(50), 0);
        EXPECT_EQ(splash.m_hWnd, nullptr);
        EXPECT_TRUE(g_calls.animations.empty());
    }
    {
        // A picture without alpha: no cut, and the bare picture on the screen.
        zcmod_test::TestBitmapUtil picture;
        ASSERT_NE(picture.NLoadBitmap(m_tests, 800, BT_IMAGE, 0), nullptr);
        const zcmod_test::Pixels image = zcmod_test::ReadFrame(picture, BT_IMAGE, 0);
        SplashObject splash(m_tests, 800);
        ASSERT_EQ(splash.Show(0), 1);
        Recorder::Pump(100);
        HRGN region = CreateRectRgn(0, 0, 0, 0);
        EXPECT_EQ(GetWindowRgn(splash.m_hWnd, region), ERROR);
        DeleteObject(region);
        RECT placed;
        GetWindowRect(splash.m_hWnd, &placed);
        const Capture shown = CaptureScreen(placed);
        ASSERT_EQ(shown.width, image.width);
        EXPECT_TRUE(shown.Is([&](int x, int y) { return image.At(x, y) & 0xFFFFFF; }));
    }
    {
        // No picture: a window of no size, and no fault.
        SplashObject splash(m_tests, 949);
        splash.Show(0);
        RECT placed = {};
        GetWindowRect(splash.m_hWnd, &placed);
        EXPECT_TRUE(IsRectEmpty(&placed));
    }
    // The last object to go took the windows and the class names with it.
    WNDCLASSW wc;
    EXPECT_FALSE(GetClassInfoW(GetModuleHandleW(nullptr), L"CVuikSplashScreenWindow", &wc));
    EXPECT_FALSE(GetClassInfoW(GetModuleHandleW(nullptr), L"CVuikSplashScreenInvisibleWindow", &wc));
    EXPECT_EQ(FindWindowExW(nullptr, nullptr, L"CVuikSplashScreenWindow", nullptr), nullptr);
}

TEST_F(SplashFixture, SplashLeavesNoHandleBehind)
{
    zcmod_test::HandleCounter counter;
    auto cycle = [&] {
        CVuikSplashScreen splash(m_theme, ZGR_PNG_SPLASH);
        splash.Show(0);
        splash.Hide(0);
    };
    cycle();
    const auto before = counter.Live();
    for (int i = 0; i < 5; ++i)
        cycle();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
}

// ---- Fader --------------------------------------------------------------------------------------------------

struct Fader : CVuikWindowFader {
    using CVuikWindowFader::m_bLayered;
};

class FaderTest : public SplashFixture {
protected:
    void SetUp() override
    {
        SplashFixture::SetUp();
        m_patches.Add("user32.dll", "SetLayeredWindowAttributes", &WatchSetLayered, &g_realSetLayered);
        m_patches.Add("kernel32.dll", "GetTickCount", &FakeTickCount);
        m_patches.Add("kernel32.dll", "Sleep", &FakeSleep);
        m_patches.Add("user32.dll", "InvalidateRect", &WatchInvalidate);
        m_patches.Add("user32.dll", "GetForegroundWindow", &FakeForeground);
    }
    void TearDown() override
    {
        if (m_window)
            DestroyWindow(m_window);
        SplashFixture::TearDown();
    }
    HWND MakeWindow(DWORD exStyle = 0, bool visible = false)
    {
        if (m_window)
            DestroyWindow(m_window);
        m_window = CreateWindowExW(exStyle, L"STATIC", L"", WS_POPUP | (visible ? WS_VISIBLE : 0), 200, 150, 240,
                                   160, nullptr, nullptr, nullptr, nullptr);
        Recorder::Pump(50);
        g_calls = Calls();
        return m_window;
    }

    zcmod_test::ImportPatches m_patches;
    HWND m_window = nullptr;
};

std::vector<int> Ramp(int from, int step, int count, int end)
{
    std::vector<int> out;
    for (int k = 0; k < count; ++k)
        out.push_back(std::min(255, std::max(0, from + step * k)));
    out.push_back(end);
    return out;
}

TEST_F(FaderTest, AlphaStepsAndWaits)
{
    struct Case {
        const char* name;
        void (*run)(Fader&, HWND);
        DWORD tickStep;
        std::vector<int> alphas;
        std::vector<DWORD> sleeps;
        bool watchScreen = false;
    };
    const std::vector<DWORD> twenty50(50, 20);
    const Case cases[] = {
        {"out 1000: down by 6, held at 0", [](Fader& f, HWND w) { f.FadeOut(w, 1000); }, 0, Ramp(255, -6, 50, 0),
         twenty50},
        {"in 100: drawing time does not shorten the wait's start", [](Fader& f, HWND w) { f.FadeIn(w, 100); }, 7,
         {0, 52, 104, 156, 208, 255}, {13, 13, 13, 13, 13}},
        {"in 1000 behind time: 50 steps of 6, no wait at all", [](Fader& f, HWND w) { f.FadeIn(w, 1000); }, 25,
         Ramp(0, 6, 50, 255), {}},
        {"in-out: in 100, hold 40, out 60; the screen watched", [](Fader& f, HWND w) { f.FadeInOut(w, 40, 100, 60); },
         0, {0, 52, 104, 156, 208, 255, 255, 169, 83, 0}, {20, 20, 20, 20, 20, 40, 20, 20, 20}, true},
        {"out-in: out 60, hold 40, in 100", [](Fader& f, HWND w) { f.FadeOutIn(w, 40, 100, 60); }, 0,
         {255, 169, 83, 0, 0, 52, 104, 156, 208, 255}, {20, 20, 20, 40, 20, 20, 20, 20, 20}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HWND window = MakeWindow();
        g_calls.tickStep = c.tickStep;
        const POINT centre = {200 + 120, 150 + 80};
        const uint32_t desktop = BackdropColour(centre.x, centre.y);
        ASSERT_EQ(ScreenPixel(centre), desktop);
        g_calls.watch = c.watchScreen ? centre : POINT{-1, -1};
        Fader fader;
        ASSERT_EQ(fader.m_bLayered, 1);
        c.run(fader, window);
        EXPECT_EQ(g_calls.alphas, c.alphas);
        EXPECT_EQ(g_calls.sleeps, c.sleeps);
        // On a compositor the screen shows the window's colour blended over the desktop by each alpha; on
        // Xvfb, which has none, the window's own colour from the first step on. Never the bare desktop then.
        const uint32_t face = testskin::Rgb(GetSysColor(COLOR_BTNFACE));
        for (size_t i = 0; i < g_calls.screenAtAlpha.size(); ++i) {
            const uint32_t seen = g_calls.screenAtAlpha[i];
            EXPECT_TRUE(seen == face || Near(seen, Blend(face, desktop, g_calls.alphas[i]), 3))
                << "alpha " << g_calls.alphas[i] << ": " << std::hex << seen;
        }
        EXPECT_EQ(g_calls.screenAtAlpha.size(), c.watchScreen ? c.alphas.size() : 0u);
        EXPECT_TRUE(IsWindowVisible(window)) << "a fade-out leaves the window shown";
        EXPECT_TRUE(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_LAYERED);
    }
}

TEST_F(FaderTest, LayeredStyleAndThePlatformWithout)
{
    // A window that is layered already keeps the style (a toggle would take it away).
    HWND window = MakeWindow(WS_EX_LAYERED);
    Fader fader;
    fader.FadeIn(window, 40);
    EXPECT_TRUE(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_LAYERED);

    // Without layered windows: shown before the wait or hidden after it, no alpha.
    struct Case {
        bool in;
        bool visibleAfter;
    } cases[] = {{true, true}, {false, false}};
    for (const Case& c : cases) {
        window = MakeWindow(0, !c.in);
        Fader plain;
        plain.m_bLayered = 0;
        if (c.in)
            plain.FadeIn(window, 300);
        else
            plain.FadeOut(window, 300);
        EXPECT_TRUE(g_calls.alphas.empty());
        EXPECT_EQ(g_calls.sleeps, std::vector<DWORD>{300});
        EXPECT_EQ(IsWindowVisible(window) != FALSE, c.visibleAfter);
        EXPECT_FALSE(GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_LAYERED);
    }
}

TEST_F(FaderTest, AWindowInFrontThatOverlapsRepaintsEveryStep)
{
    HWND front = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    struct Case {
        const char* name;
        RECT frontRect;  // where the window in front stands; empty: the faded window is in front itself
        int invalidations;
    };
    // The faded window spans 200..440 x 150..310; a fade of 100 ms has five steps and a finish.
    const Case cases[] = {
        {"itself in front", {}, 1},
        {"overlapping on the right", {300, 100, 500, 200}, 6},
        {"apart", {600, 600, 700, 700}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        HWND window = MakeWindow();
        g_calls.foreground = window;
        if (!IsRectEmpty(&c.frontRect)) {
            MoveWindow(front, c.frontRect.left, c.frontRect.top, c.frontRect.right - c.frontRect.left,
                       c.frontRect.bottom - c.frontRect.top, FALSE);
            g_calls.foreground = front;
        }
        Fader fader;
        fader.FadeIn(window, 100);
        EXPECT_EQ(g_calls.invalidations, c.invalidations);
    }
    DestroyWindow(front);
}

}  // namespace
