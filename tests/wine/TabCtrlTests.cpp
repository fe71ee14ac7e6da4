// The skinned tab control with the gallery's pieces of both themes. Pixels are read from the screen, where a
// right-to-left window shows mirrored.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Golden.h"
#include "HandleCounter.h"
#include "TabArt.h"
#include "wine/TestSkinIds.h"
#include "wine/TestSkins.h"
#include "zcmod/VuikTabCtrl.h"

namespace {

using testskin::Capture;
using testskin::Rgb;

// The gallery's pieces of each shipped theme (as testskin::kThemes), and their text colour.
const struct {
    UINT firstId;
    COLORREF text;
} kArt[] = {{IDB_GALLERY_TAB_DEFAULT, RGB(0x20, 0x26, 0x2e)}, {IDB_GALLERY_TAB_GRAPHITE, RGB(0xe8, 0xec, 0xf1)}};

const std::vector<const wchar_t*> kThree = {L"General", L"Display", L"Phone"};
const std::vector<const wchar_t*> kFive = {L"General", L"Display", L"Phone", L"Advanced", L"About"};

// What the parent hears from the tab control: selection changes and requests for the strip.
struct ParentLog {
    WNDPROC previous = nullptr;
    HWND tab = nullptr;
    int selChanges = 0;
    std::vector<RECT> strips;
};
ParentLog g_log;

LRESULT CALLBACK LoggingParent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NOTIFY && reinterpret_cast<NMHDR*>(lParam)->code == TCN_SELCHANGE)
        ++g_log.selChanges;
    if (message == WM_VUIK_REPAINT && reinterpret_cast<HWND>(wParam) == g_log.tab)
        g_log.strips.push_back(reinterpret_cast<PAINTSTRUCT*>(lParam)->rcPaint);
    return CallWindowProcW(g_log.previous, hwnd, message, wParam, lParam);
}

class TabCtrl : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_font = CreateFontW(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0,
                             L"Tahoma");
        m_bold = CreateFontW(-12, 0, 0, 0, FW_BOLD, 0, 0, 0, DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0,
                             L"Tahoma");
        UseTheme(0);
    }
    void TearDown() override
    {
        m_panel.Close();  // takes the tab control with it
        DeleteObject(m_font);
        DeleteObject(m_bold);
        g_log = ParentLog();
    }

    void UseTheme(int theme)
    {
        m_theme = theme;
        m_panel.UseTheme(testskin::kThemes[theme]);
        m_skin.SetSkinDef(Def());
        m_skin.Load();
        ASSERT_TRUE(m_skin.IsValid()) << theme;
    }
    CVuikTabSkinDef Def() const
    {
        CVuikTabSkinDef def = {};
        for (int i = 0; i < TAB_PIECE_COUNT; ++i)
            def.m_nFrameBitmapIds[i] = i == IDB_GALLERY_TAB_SPARE ? 0 : kArt[m_theme].firstId + i;
        def.m_crText = def.m_crSelectedText = kArt[m_theme].text;
        def.m_hFont = m_font;
        def.m_hSelectedFont = m_bold;
        return def;
    }

    // A panel in the strip's colour at (60, 60) with the tab control filling it, painted.
    void Make(const std::vector<const wchar_t*>& names, int width, int height, DWORD style = 0, bool rtl = false,
              int select = 0)
    {
        HWND panel = m_panel.Open(RECT{60, 60, 60 + width, 60 + height}, rtl);
        ASSERT_TRUE(panel);
        g_log = ParentLog();
        g_log.previous = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(panel, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(LoggingParent)));
        ASSERT_TRUE(m_tabs.Create(panel, RECT{0, 0, width, height}, 7, WS_CHILD | WS_VISIBLE | style,
                                  rtl ? WS_EX_LAYOUTRTL : 0));
        g_log.tab = m_tabs.m_hWnd;
        SendMessageW(m_tabs.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), 0);
        m_tabs.SetItemSize(SIZE{0, 24});
        for (size_t i = 0; i < names.size(); ++i)
            m_tabs.InsertItem(static_cast<int>(i), names[i]);
        m_tabs.SetSkin(&m_skin);
        m_tabs.SetCurSel(select);
        m_panel.Paint();
    }

    Capture Screen() const { return testskin::CaptureOnScreen(m_tabs.m_hWnd); }
    RECT Item(int i) const
    {
        RECT r = {};
        m_tabs.GetItemRect(i, &r);
        return r;
    }
    // The point (x, y) of the control's client area, on the screen and in Screen().
    POINT ToScreen(int x, int y) const
    {
        POINT p = {x, y};
        MapWindowPoints(m_tabs.m_hWnd, nullptr, &p, 1);
        return p;
    }
    // The selected tab's accent bar, from the piece itself.
    uint32_t Accent() { return m_skin.GetPiece(TAB_PIECE_SELECTED_MIDDLE)->GetPixel(0, 0); }
    // The screen at the top of tab i's middle, where a selected tab shows its accent bar.
    uint32_t TopOf(const Capture& c, int i) const
    {
        const RECT r = Item(i);
        RECT window;
        GetWindowRect(m_tabs.m_hWnd, &window);
        const POINT p = ToScreen((r.left + r.right) / 2, m_tabs.GetRowCount() > 1 ? r.top - 3 : r.top);
        return c.At(p.x - window.left, p.y - window.top);
    }

    testskin::LibraryState m_library;  // pictures from the test program, left to right
    testskin::ThemedPanel m_panel;
    int m_theme = 0;
    HFONT m_font = nullptr;
    HFONT m_bold = nullptr;
    CVuikTabSkin m_skin;
    CVuikTabCtrl m_tabs;
};

// Clicks and arrow keys switch tabs; the selection, the parent's notification and the picture agree, also
// right to left (tab 0 on the right).
TEST_F(TabCtrl, SwitchesByClickAndArrowKeys)
{
    for (DWORD style : {0, TCS_MULTILINE})
        for (bool rtl : {false, true}) {
            SCOPED_TRACE(testing::Message() << (style ? "several rows" : "one row") << (rtl ? ", right to left" : ""));
            Make(kFive, style ? 220 : 420, 150, style, rtl);
            ASSERT_EQ(m_tabs.GetRowCount(), style ? 2 : 1);
            EXPECT_EQ(TopOf(Screen(), 0), Accent());

            const RECT r = Item(2);
            msgseq::input::Click(ToScreen((r.left + r.right) / 2, (r.top + r.bottom) / 2));
            msgseq::Recorder::Pump(60);
            EXPECT_EQ(m_tabs.GetCurSel(), 2);
            EXPECT_EQ(g_log.selChanges, 1);
            Capture shown = Screen();
            EXPECT_EQ(TopOf(shown, 2), Accent());
            EXPECT_NE(TopOf(shown, 0), Accent()) << "the old selection still shows";

            SetFocus(m_tabs.m_hWnd);
            for (WORD key : {VK_RIGHT, VK_LEFT, VK_LEFT}) {
                const int before = m_tabs.GetCurSel();
                msgseq::input::Press(key);
                msgseq::Recorder::Pump(60);
                const int now = m_tabs.GetCurSel();
                EXPECT_EQ(now, before + (key == VK_RIGHT ? 1 : -1));
                shown = Screen();
                EXPECT_EQ(TopOf(shown, now), Accent()) << "tab " << now;
                EXPECT_NE(TopOf(shown, before), Accent()) << "tab " << before;
            }
            EXPECT_EQ(g_log.selChanges, 4);
            SetCursorPos(0, 0);
        }
}

// Moving the selection (and the first paint) asks the parent for the strip from the top to tab 0's bottom; a
// paint without a change doesn't.
TEST_F(TabCtrl, SelectionChangeRepaintsTheStripThroughTheParent)
{
    Make(kFive, 220, 150, TCS_MULTILINE, false, 0);
    const struct {
        int select;  // -1: repaint only
        size_t strips;
    } steps[] = {{-2, 1}, {-1, 0}, {2, 1}, {-1, 0}, {4, 1}, {4, 0}, {1, 1}};
    for (const auto& s : steps) {
        SCOPED_TRACE(s.select);
        if (s.select >= -1) {
            g_log.strips.clear();
            if (s.select >= 0)
                m_tabs.SetCurSel(s.select);
            InvalidateRect(m_tabs.m_hWnd, nullptr, FALSE);
            UpdateWindow(m_tabs.m_hWnd);
        }
        ASSERT_EQ(g_log.strips.size(), s.strips);
        if (s.strips) {
            const RECT strip = g_log.strips[0], expected = {0, 0, 220, Item(0).bottom};
            EXPECT_TRUE(EqualRect(&strip, &expected)) << strip.right << " " << strip.bottom;
        }
    }
}

// Every piece but the spare and the top edge must be there; without them the platform paints, no buffer kept.
TEST_F(TabCtrl, APieceMissingLeavesThePaintToThePlatform)
{
    const struct {
        int piece;
        bool valid;
    } cases[] = {{TAB_PIECE_SPARE, true}, {TAB_PIECE_TOP, true}, {TAB_PIECE_BASE, false},
                 {TAB_PIECE_SELECTED_MIDDLE, false}, {TAB_PIECE_SEPARATOR, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.piece);
        CVuikTabSkinDef def = Def();
        def.m_nFrameBitmapIds[c.piece] = IDB_TEST_MISSING;
        CVuikTabSkin skin;
        skin.SetSkinDef(def);
        skin.Load();
        EXPECT_EQ(skin.IsValid(), c.valid);
        Make(kThree, 300, 100);
        m_tabs.SetSkin(&skin);
        SendMessageW(m_tabs.m_hWnd, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0);
        InvalidateRect(m_tabs.m_hWnd, nullptr, TRUE);
        UpdateWindow(m_tabs.m_hWnd);
        EXPECT_EQ(m_tabs.GetBackBuffer() != nullptr, c.valid);
        m_panel.Close();
    }
}

// One row and several, in both themes and layouts, one tab alone and none.
TEST_F(TabCtrl, Goldens)
{
    const struct {
        const char* name;
        const std::vector<const wchar_t*>* names;
        DWORD style;
        int width;
        int select;
    } shapes[] = {{"one_row", &kThree, 0, 300, 1}, {"rows", &kFive, TCS_MULTILINE, 220, 4}};
    for (int theme : {0, 1}) {
        UseTheme(theme);
        for (const auto& s : shapes)
            for (bool rtl : {false, true}) {
                const std::string name =
                    std::string("tabs_") + s.name + "_" + testskin::kThemes[theme].tag + (rtl ? "_rtl" : "_ltr");
                SCOPED_TRACE(name);
                Make(*s.names, s.width, 110, s.style, rtl, s.select);
                const Capture shown = Screen();
                EXPECT_TRUE(zcmod_test::MatchesGolden(name, shown.width, shown.height, shown.pixels.data()));
            }
    }
    UseTheme(0);
    Make({L"Only"}, 160, 80);
    Capture shown = Screen();
    EXPECT_TRUE(zcmod_test::MatchesGolden("tabs_single_Default_ltr", shown.width, shown.height, shown.pixels.data()));
    // Without tabs the panel fills the control from the top; the control reports the panel's colour (none
    // without a skin).
    Make({}, 200, 100, 0, false, -1);
    shown = Screen();
    EXPECT_TRUE(zcmod_test::MatchesGolden("tabs_none_Default_ltr", shown.width, shown.height, shown.pixels.data()));
    EXPECT_EQ(Rgb(static_cast<COLORREF>(SendMessageW(m_tabs.m_hWnd, WM_VUIK_TAB_GETBKCLR, 0, 0))), shown.At(100, 50));
    m_tabs.SetSkin(nullptr);
    EXPECT_EQ(SendMessageW(m_tabs.m_hWnd, WM_VUIK_TAB_GETBKCLR, 0, 0), 0);
}

// Two hundred tab controls made, painted and destroyed, and many selection changes, leave nothing behind.
TEST_F(TabCtrl, CreateSwitchDestroyLeavesNoHandles)
{
    Make({}, 220, 120);
    HWND parent = m_panel.Hwnd();
    zcmod_test::HandleCounter counter;
    auto cycle = [&](int switches) {
        CVuikTabCtrl tabs;
        ASSERT_TRUE(tabs.Create(parent, RECT{0, 0, 220, 120}, 8, WS_CHILD | WS_VISIBLE | TCS_MULTILINE, 0));
        tabs.SetSkin(&m_skin);
        for (int i = 0; i < 5; ++i)
            tabs.InsertItem(i, kFive[static_cast<size_t>(i)]);
        SetFocus(tabs.m_hWnd);
        UpdateWindow(tabs.m_hWnd);
        for (int i = 0; i < switches; ++i) {
            tabs.SetCurSel(i % 5);
            UpdateWindow(tabs.m_hWnd);
        }
        DestroyWindow(tabs.m_hWnd);
    };
    cycle(5);
    const auto before = counter.Live();
    for (int i = 0; i < 200; ++i)
        cycle(0);
    cycle(300);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
}

}  // namespace
