// The drawn window frame: which caption buttons the flags make and where they stand, the maximise and
// restore rules, the caption text, the veil of an inactive window, the hit tests, the region after a resize,
// the modal loops of moving, sizing and the system menu (driven by a timer that is also their watchdog), pixel
// goldens and handle hygiene.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "DeviceTestSupport.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "TestSkinIds.h"
#include "TestSkins.h"
#include "controls/VuikCaptionButtonCtrl.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikWindowBackgroundCtrl.h"
#include "zcmod/VuikMenuBarCtrl.h"

using namespace testskin;
using namespace zcmod_test;
typedef CVuikWindowBackgroundCtrl Frame;

namespace {

const DWORD kAll = Frame::CAPTION_CLOSE | Frame::CAPTION_MINIMIZE | Frame::CAPTION_MAXIMIZE;
int g_closes = 0, g_cancels = 0;

// The application's window: it keeps its one child, the view, over the whole client area.
LRESULT CALLBACK AppProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_SIZE) {
        if (HWND view = GetWindow(hwnd, GW_CHILD))
            MoveWindow(view, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
        return 0;
    }
    if (message == WM_CLOSE) {
        ++g_closes;
        return 0;
    }
    if (message == WM_COMMAND && wParam == IDCANCEL)
        ++g_cancels;
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

const wchar_t* AppClass()
{
    static const ATOM atom = [] {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = AppProc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.lpszClassName = L"ZcmodTestFramedApp";
        return RegisterClassW(&wc);
    }();
    return atom ? L"ZcmodTestFramedApp" : nullptr;
}

void Pump(DWORD ms = 50) { msgseq::Recorder::Pump(ms); }

// A top-level window with a view child and the drawn frame over both; a dialog's frame is over the top-level
// window itself. The window's native menu, if given, becomes the frame's menu bar.
struct Framed {
    explicit Framed(DWORD flags, const wchar_t* title = L"", RECT r = {60, 60, 460, 320},
                    const CAPTIONAPPICONDATA* icon = nullptr, bool settle = true, HMENU menu = nullptr)
    {
        top = CreateWindowExW(0, AppClass(), title, WS_OVERLAPPEDWINDOW | WS_VISIBLE, r.left, r.top, r.right - r.left,
                              r.bottom - r.top, nullptr, menu, GetModuleHandleW(nullptr), nullptr);
        RECT client;
        GetClientRect(top, &client);
        view = (flags & Frame::CAPTION_ISDIALOG)
                   ? top
                   : CreateWindowExW(0, L"Static", nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, client.right,
                                     client.bottom, top, nullptr, GetModuleHandleW(nullptr), nullptr);
        skin.SetMenuBarVisible(menu ? 1 : 0);
        frame.SetSkin(&skin);
        subclassed = frame.SubclassWindow(view, top, icon, flags);
        if (settle) {
            SetForegroundWindow(top);
            Pump();
        }
    }
    ~Framed() { DestroyWindow(top); }
    HWND Button(UINT id) const { return GetDlgItem(view, id); }
    RECT ButtonRect(UINT id) const
    {
        RECT r = {};
        GetWindowRect(Button(id), &r);
        MapWindowPoints(nullptr, view, reinterpret_cast<POINT*>(&r), 2);
        return r;
    }
    CVuikCaptionButtonSkinDef Def(UINT id) const
    {
        auto* button = reinterpret_cast<CVuikCaptionButtonCtrl*>(GetWindowLongPtrW(Button(id), GWLP_USERDATA));
        return *button->GetOwnSkin();
    }
    // What the screen shows of the whole window; pixels cut off by the window's region read as 0.
    Capture Shot() const
    {
        RedrawWindow(top, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        Pump(100);
        Capture c = CaptureWindow(view);
        return CutToRegion(c, top);
    }

    CVuikWindowBackgroundSkin skin;
    Frame frame;
    HWND top = nullptr, view = nullptr;
    BOOL subclassed = FALSE;
};

// Keys posted one per tick of a thread timer, which the modal loops dispatch themselves. A loop still running
// five seconds after the last key is the watchdog's: it is sent Escape and cancelled, and counted as hung.
struct KeyScript {
    static inline HWND target;
    static inline std::vector<WPARAM> keys;
    static inline size_t next;
    static inline int idleTicks;
    static inline bool hung;
    static inline std::wstring seenMenuText;
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
    {
        if (next == 0 && seenMenuText.empty()) {
            wchar_t text[64] = {};
            GetMenuStringW(GetSystemMenu(target, FALSE), SC_CLOSE, text, 64, MF_BYCOMMAND);
            seenMenuText = text;
        }
        if (next < keys.size()) {
            const WPARAM key = keys[next++];
            PostMessageW(target, WM_KEYDOWN, key, 1);
            PostMessageW(target, WM_KEYUP, key, 0xC0000001);
        } else if (++idleTicks * 60 > 5000) {
            hung = true;
            PostMessageW(target, WM_KEYDOWN, VK_ESCAPE, 0);
            PostMessageW(target, WM_CANCELMODE, 0, 0);
        }
    }
};

class WindowBackground : public ::testing::Test {
protected:
    void SetUpResources(const wchar_t* language, const wchar_t* theme)
    {
        m_resources.reset();
        m_resources.reset(new FreshResources(m_registry, language, theme));
    }
    void SetUp() override
    {
        SetUpResources(L"eng", L"Default");
    }
    LibraryState m_library;
    SuiteRegistry m_registry;
    std::unique_ptr<FreshResources> m_resources;
};

// ---- Buttons and layout --------------------------------------------------------------------------------------

TEST_F(WindowBackground, CaptionFlagsMakeTheirButtonsInARowFromTheRight)
{
    const CAPTIONAPPICONDATA icon = {0, GetModuleHandleW(nullptr), IDB_TEST_BADGE};
    struct Case {
        DWORD flags;
        UINT closeNormal;  // 0: no close button
        bool maximize, minimize, appIcon;
    } cases[] = {
        {0, 0, false, false, false},
        {Frame::CAPTION_CLOSE, ZGR_BMP_CAPTION_CLOSE_ALONE_NORMAL, false, false, false},
        {Frame::CAPTION_MINIMIZE, ZGR_BMP_CAPTION_CLOSE_BESIDE_NORMAL, false, true, false},
        {Frame::CAPTION_CLOSE | Frame::CAPTION_HELP, ZGR_BMP_CAPTION_CLOSE_BESIDE_NORMAL, false, false, false},
        {kAll, ZGR_BMP_CAPTION_CLOSE_BESIDE_NORMAL, true, true, false},
        {Frame::CAPTION_CLOSE | Frame::CAPTION_MAXIMIZE | Frame::CAPTION_APPICON, ZGR_BMP_CAPTION_CLOSE_BESIDE_NORMAL,
         true, false, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "flags 0x" << std::hex << c.flags);
        Framed w(c.flags, L"", RECT{60, 60, 460, 320}, &icon);
        ASSERT_TRUE(w.subclassed);
        EXPECT_EQ(w.Button(0x8001) != nullptr, c.closeNormal != 0);
        EXPECT_EQ(w.Button(0x8002) != nullptr, c.maximize);
        EXPECT_EQ(w.Button(0x8003) != nullptr, c.minimize);
        EXPECT_EQ(w.Button(0x8004) != nullptr, c.appIcon);
        if (!c.closeNormal)
            continue;
        EXPECT_EQ(w.Def(0x8001).m_States[0].m_nBitmapId, c.closeNormal);
        // Right to left from 15 pixels before the edge, each button against the next, all at y 1.
        RECT client;
        GetClientRect(w.view, &client);
        int right = client.right - 15;
        for (UINT id : {0x8001u, 0x8002u, 0x8003u}) {
            if (!w.Button(id))
                continue;
            const RECT r = w.ButtonRect(id);
            EXPECT_EQ(r.right, right) << "button " << std::hex << id;
            EXPECT_EQ(r.top, 1);
            right = r.left;
        }
        if (c.appIcon) {
            const RECT r = w.ButtonRect(0x8004);
            EXPECT_EQ(r.left, 10);
            EXPECT_EQ(r.top, 15 - (r.bottom - r.top) / 2);
        }
    }
    // No frame over a view that isn't the window's child, unless it is a dialog. No menu, no bar.
    Framed plain(kAll);
    EXPECT_EQ(plain.frame.GetMenuBar(), nullptr);
    HWND other = CreateWindowExW(0, L"Static", nullptr, WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    CVuikWindowBackgroundSkin skin;
    Frame stranger;
    stranger.SetSkin(&skin);
    EXPECT_FALSE(stranger.SubclassWindow(other, plain.top, nullptr, kAll));
    EXPECT_FALSE(stranger.SubclassWindow(plain.view, plain.top, nullptr, kAll)) << "one frame per window";
    DestroyWindow(other);
}

// A change of theme reaches the caption buttons' pictures: the glyphs differ between the themes.
TEST_F(WindowBackground, CaptionButtonsFollowAChangeOfTheme)
{
    Framed w(kAll);
    // The maximise button's normal picture drawn on the caption's colour.
    auto look = [&] {
        auto* button = reinterpret_cast<CVuikCaptionButtonCtrl*>(GetWindowLongPtrW(w.Button(0x8002), GWLP_USERDATA));
        CVuikBitmap* normal = button->GetOwnSkin()->State(0).GetBitmap();
        Canvas canvas(30, 22);
        canvas.Fill([](int, int) { return 0x373737u; });
        CVuikGraphics graphics(canvas);
        if (normal)
            graphics.DrawImage(normal, 0, 0);
        return canvas.Read().pixels;
    };
    const std::vector<uint32_t> before = look();
    m_registry.SetUserTheme(L"Graphite");
    w.frame.ReloadCaptionButtons();
    EXPECT_NE(look(), before);
    EXPECT_EQ(CVuikResourceManager::GetReferenceCount(ZCMOD_GetCommonZGR(), ZGR_BMP_CAPTION_MAXIMIZE_NORMAL, 0), 1);
    EXPECT_EQ(w.ButtonRect(0x8001).right, w.ButtonRect(0x8001).left + 40) << "laid out again";
}

// ---- Maximise and restore ------------------------------------------------------------------------------------

TEST_F(WindowBackground, MaximiseAndRestoreRules)
{
    enum Act { DoubleClick, SysMaximize, SysRestore, Command, Minimize };
    const struct {
        HWND Framed::*target;
        UINT message;
        WPARAM wParam;
    } kActs[] = {{&Framed::top, WM_NCLBUTTONDBLCLK, HTCAPTION}, {&Framed::top, WM_SYSCOMMAND, SC_MAXIMIZE},
                 {&Framed::top, WM_SYSCOMMAND, SC_RESTORE},    {&Framed::view, WM_COMMAND, 0x8002},
                 {&Framed::view, WM_COMMAND, 0x8003}};
    struct Case {
        const char* name;
        DWORD flags;
        std::vector<std::pair<Act, bool>> steps;  // the action, and whether the window is zoomed after it
    } cases[] = {
        {"double click toggles", kAll, {{DoubleClick, true}, {DoubleClick, false}, {DoubleClick, true}}},
        {"SC_MAXIMIZE never restores", kAll, {{SysMaximize, true}, {SysMaximize, true}, {SysRestore, false}}},
        {"the caption button's command toggles", kAll, {{Command, true}, {Command, false}}},
        {"without a maximise button only restores",
         Frame::CAPTION_CLOSE,
         {{Command, false}, {DoubleClick, false}, {SysMaximize, false}}},
        {"restored from minimised", kAll, {{Minimize, false}, {Command, false}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Framed w(c.flags);
        for (size_t i = 0; i < c.steps.size(); ++i) {
            const auto& act = kActs[c.steps[i].first];
            SendMessageW(w.*act.target, act.message, act.wParam, 0);
            Pump(30);
            EXPECT_EQ(IsZoomed(w.top) != 0, c.steps[i].second) << "step " << i;
            EXPECT_EQ(IsIconic(w.top) != 0, c.steps[i].first == Minimize) << "step " << i;
            if (!w.Button(0x8002))
                continue;
            // A maximised frame covers the work area, not the taskbar; its button shows the restore look.
            const bool zoomed = IsZoomed(w.top) != 0;
            RECT r, work;
            GetWindowRect(w.top, &r);
            SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
            if (zoomed) {
                EXPECT_TRUE(EqualRect(&r, &work));
            }
            wchar_t text[32] = {};
            GetWindowTextW(w.Button(0x8002), text, 32);
            EXPECT_STREQ(text, zoomed ? L"Restore Down" : L"Maximize") << "step " << i;
            EXPECT_EQ(w.Def(0x8002).m_States[0].m_nBitmapId,
                      static_cast<UINT>(zoomed ? ZGR_BMP_CAPTION_RESTORE_NORMAL : ZGR_BMP_CAPTION_MAXIMIZE_NORMAL));
        }
    }
}

// ---- Caption text, hit tests, region --------------------------------------------------------------------------

// Over a window the view lets the mouse through to the top-level window, which answers caption or client; over
// a dialog both are one window. Either way the platform's caption and borders are gone, and the close button
// posts WM_CLOSE to a window and IDCANCEL to a dialog.
TEST_F(WindowBackground, HitTestsStyleAndCloseOfAWindowAndOfADialog)
{
    for (bool dialog : {false, true}) {
        SCOPED_TRACE(dialog ? "dialog" : "window");
        g_closes = g_cancels = 0;
        Framed w(kAll | (dialog ? Frame::CAPTION_ISDIALOG : 0));
        ASSERT_TRUE(w.subclassed);
        const struct {
            int y;  // in the top-level window's client area
            LRESULT topLevel;
        } points[] = {{2, HTCAPTION}, {30, HTCAPTION}, {31, HTCLIENT}, {200, HTCLIENT}};
        for (const auto& p : points) {
            POINT at = {100, p.y};
            ClientToScreen(w.top, &at);
            EXPECT_EQ(SendMessageW(w.top, WM_NCHITTEST, 0, MAKELPARAM(at.x, at.y)), p.topLevel) << "y " << p.y;
            if (!dialog) {
                EXPECT_EQ(SendMessageW(w.view, WM_NCHITTEST, 0, MAKELPARAM(at.x, at.y)), HTTRANSPARENT) << "y " << p.y;
            }
        }
        RECT client, window;
        GetClientRect(w.top, &client);
        GetWindowRect(w.top, &window);
        EXPECT_EQ(client.right, window.right - window.left) << "no non-client area";
        EXPECT_EQ(GetWindowLongW(w.top, GWL_STYLE) & WS_CAPTION, 0);
        EXPECT_EQ(GetPropW(w.top, VUIK_PROP_WINBG_ISDIALOG) != nullptr, dialog);

        SendMessageW(w.view, WM_COMMAND, 0x8001, 0);
        EXPECT_EQ(g_closes + g_cancels, 0) << "posted, not sent";
        Pump(30);
        EXPECT_EQ(g_closes, dialog ? 0 : 1);
        EXPECT_EQ(g_cancels, dialog ? 1 : 0);
    }
}

// The text set on the top-level window reaches the drawn caption without any repaint of ours (the goldens show
// the caption, active and veiled). A window whose region was taken away gets none back at the next resize (the
// goldens and the modal sizing show the region of a window that has one).
TEST_F(WindowBackground, TitleTextReachesTheCaptionAndAResizeGivesNoRegionBack)
{
    Framed w(kAll);
    const auto textPixels = [&] {
        const Capture c = CaptureWindow(w.view);
        int n = 0;
        for (int y = 5; y < 25; ++y)
            for (int x = 5; x < 100; ++x)
                n += Near(c.At(x, y), 0xFFFFFF, 60) ? 1 : 0;
        return n;
    };
    w.Shot();
    EXPECT_EQ(textPixels(), 0);
    SetWindowTextW(w.top, L"Messages");
    Pump(150);
    EXPECT_GT(textPixels(), 20);

    SetWindowRgn(w.top, nullptr, TRUE);
    SetWindowPos(w.top, nullptr, 0, 0, 600, 420, SWP_NOMOVE | SWP_NOZORDER);
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    EXPECT_EQ(GetWindowRgn(w.top, region), ERROR);
    DeleteObject(region);
}

// ---- Modal loops ---------------------------------------------------------------------------------------------

TEST_F(WindowBackground, MovingSizingAndTheSystemMenuDrivenFromInside)
{
    struct Case {
        const char* name;
        UINT message;  // sent to the top-level window
        WPARAM wParam;
        std::vector<WPARAM> keys;
        int dx, dwidth;  // expected change of the left edge and of the width
        bool zoomed;
    } cases[] = {
        {"move", WM_SYSCOMMAND, SC_MOVE, {VK_RIGHT, VK_RIGHT, VK_RETURN}, 16, 0, false},
        {"size", WM_SYSCOMMAND, SC_SIZE, {VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RETURN}, 0, 16, false},
        {"system menu, maximise", WM_NCRBUTTONDOWN, HTCAPTION, {'X'}, 0, 0, true},
        {"icon's system menu, dismissed", WM_COMMAND, 0x8004, {VK_ESCAPE}, 0, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Framed w(kAll);
        RECT before, after;
        GetWindowRect(w.top, &before);
        KeyScript::target = w.top;
        KeyScript::keys = c.keys;
        KeyScript::next = 0;
        KeyScript::idleTicks = 0;
        KeyScript::hung = false;
        KeyScript::seenMenuText.clear();
        const UINT_PTR timer = SetTimer(nullptr, 0, 60, KeyScript::Tick);
        SendMessageW(c.message == WM_COMMAND ? w.view : w.top, c.message, c.wParam, 0);
        EXPECT_FALSE(KeyScript::hung) << "the loop had to be broken off";
        KillTimer(nullptr, timer);
        Pump(50);
        EXPECT_EQ(KeyScript::next, c.keys.size()) << "the loop ended before its keys";
        GetWindowRect(w.top, &after);
        EXPECT_EQ(IsZoomed(w.top) != 0, c.zoomed);
        if (!c.zoomed) {
            EXPECT_EQ(after.left - before.left, c.dx);
            EXPECT_EQ((after.right - after.left) - (before.right - before.left), c.dwidth);
        }
        if (c.message != WM_SYSCOMMAND) {
            EXPECT_EQ(KeyScript::seenMenuText, L"&Close\tAlt+F4") << "the menu's texts come from the language";
        }
        if (c.dwidth) {
            // The region came along with the modal sizing.
            HRGN region = CreateRectRgn(0, 0, 0, 0);
            ASSERT_NE(GetWindowRgn(w.top, region), ERROR);
            EXPECT_TRUE(PtInRegion(region, after.right - after.left - 2, 100));
            DeleteObject(region);
        }
    }
}

// ---- The menu bar --------------------------------------------------------------------------------------------

TEST_F(WindowBackground, NativeMenuBecomesAMenuBarUnderTheCaption)
{
    for (DWORD layout : {0ul, static_cast<DWORD>(LAYOUT_RTL)}) {
        SCOPED_TRACE(layout ? "right to left" : "left to right");
        CVuikLib::SetLayout(layout);
        HMENU menu = CreateMenu();
        HMENU file = CreatePopupMenu();
        AppendMenuW(file, MF_STRING, 42, L"&Open");
        AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(file), L"&File");
        Framed w(kAll, L"", RECT{60, 60, 460, 360}, nullptr, true, menu);
        ASSERT_TRUE(w.subclassed);
        EXPECT_EQ(GetMenu(w.top), nullptr) << "the native menu is taken off";
        EXPECT_EQ(w.frame.GetMenuHandle(), menu);
        ASSERT_TRUE(w.frame.GetMenuBar());
        HWND bar = w.frame.GetMenuBar()->m_hWnd;
        ASSERT_TRUE(IsWindow(bar));
        EXPECT_EQ(GetParent(bar), w.view);
        // Right to left, the bar is mirrored by the platform, as it expects; the view stays as it was.
        EXPECT_EQ((GetWindowLongW(bar, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0, layout != 0);
        EXPECT_EQ(GetWindowLongW(w.view, GWL_EXSTYLE) & WS_EX_LAYOUTRTL, 0);
        SetWindowPos(w.top, nullptr, 0, 0, 480, 320, SWP_NOMOVE | SWP_NOZORDER);
        RECT r;
        GetWindowRect(bar, &r);
        MapWindowPoints(nullptr, w.view, reinterpret_cast<POINT*>(&r), 2);
        EXPECT_EQ(r.left, 0);
        EXPECT_EQ(r.top, 30);
        EXPECT_EQ(r.right, 480) << "the bar follows the view's width";
        EXPECT_EQ(r.bottom, 60);
        // Alt and the mnemonic go through the bar's accelerators; a plain key doesn't.
        MSG plain = {bar, WM_KEYDOWN, 'F', 0, 0, {}};
        MSG alt = {bar, WM_SYSKEYDOWN, 'F', 1 << 29, 0, {}};  // the context bit: Alt is held
        EXPECT_EQ(w.frame.TranslateMenuAccelerator(&plain), 0);
        EXPECT_EQ(w.frame.TranslateMenuAccelerator(nullptr), 0);
        BYTE keys[256] = {}, held[256] = {};
        GetKeyboardState(keys);
        memcpy(held, keys, sizeof(held));
        held[VK_MENU] = 0x80;  // Alt is down, as the accelerator asks
        SetKeyboardState(held);
        EXPECT_NE(w.frame.TranslateMenuAccelerator(&alt), 0);
        SetKeyboardState(keys);
        MSG open;
        while (PeekMessageW(&open, bar, 0, 0, PM_REMOVE)) {
        }  // the popup it asked to open stays closed
        // The strip under the caption: its two lines, then the caption's fill.
        UpdateWindow(w.top);
        Pump(100);
        const Capture c = CaptureWindow(w.view);
        EXPECT_TRUE(Near(c.At(300, 30), 0x232323, 2)) << std::hex << c.At(300, 30);
        EXPECT_TRUE(Near(c.At(300, 31), 0x5A5A5A, 2)) << std::hex << c.At(300, 31);
        EXPECT_TRUE(Near(c.At(300, 59), 0x373737, 2)) << std::hex << c.At(300, 59);
        EXPECT_TRUE(Near(c.At(300, 61), 0xFFFFFF, 0)) << std::hex << c.At(300, 61);
    }
}

// ---- Pixels and handles --------------------------------------------------------------------------------------

TEST_F(WindowBackground, GoldenFramesInBothThemesAndLayouts)
{
    for (const Look& c : kLooks) {
        SetUpResources(c.Language(), c.theme);
        CVuikLib::SetLayout(c.rtl ? LAYOUT_RTL : 0);
        const std::string suffix = c.Suffix();
        SCOPED_TRACE(suffix);
        Framed w(kAll, c.rtl ? L"\x05D4\x05D5\x05D3\x05E2\x05D5\x05EA" : L"Messages", RECT{40, 40, 360, 240});
        const Capture active = w.Shot();
        EXPECT_TRUE(MatchesGolden("winbg_active_" + suffix, active.width, active.height, active.pixels.data()));
        HWND other = CreateWindowExW(0, AppClass(), L"", WS_POPUP | WS_VISIBLE, 700, 600, 50, 50, nullptr, nullptr,
                                     GetModuleHandleW(nullptr), nullptr);
        SetForegroundWindow(other);
        Pump(100);
        const Capture inactive = w.Shot();
        EXPECT_TRUE(MatchesGolden("winbg_inactive_" + suffix, inactive.width, inactive.height, inactive.pixels.data()));
        DestroyWindow(other);
        SetForegroundWindow(w.top);
        SendMessageW(w.top, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
        Pump(100);
        // The top of a maximised frame: the caption with its restore button.
        Capture zoomed = w.Shot();
        zoomed.height = 60;
        zoomed.pixels.resize(static_cast<size_t>(zoomed.width) * zoomed.height);
        EXPECT_TRUE(MatchesGolden("winbg_maximised_" + suffix, zoomed.width, zoomed.height, zoomed.pixels.data()));
    }
}

TEST_F(WindowBackground, NoHandleLeftOverFramingAndClosingWindows)
{
    HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    const CAPTIONAPPICONDATA icon = {0, GetModuleHandleW(nullptr), IDB_TEST_BADGE};
    const auto cycle = [&] {
        Framed w(kAll | Frame::CAPTION_APPICON, L"Cycle", RECT{60, 60, 360, 260}, &icon, false);
        // A static on the view asks for the view's brush.
        CreateWindowExW(0, L"Static", L"label", WS_CHILD | WS_VISIBLE, 20, 80, 100, 20, w.view, nullptr, nullptr,
                        nullptr);
        SendMessageW(w.top, WM_NCACTIVATE, FALSE, 0);
        UpdateWindow(w.top);
        SendMessageW(w.top, WM_SYSCOMMAND, SC_MAXIMIZE, 0);
        SendMessageW(w.top, WM_SYSCOMMAND, SC_RESTORE, 0);
    };
    cycle();
    const HandleCounter::Counts before = counter.Live();
    for (int i = 0; i < 100; ++i)
        cycle();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " against " << before.ToString();
}

}  // namespace
