// The skinned combo box with the shipped themes' pieces. Pixels are read from the screen.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "Golden.h"
#include "HandleCounter.h"
#include "wine/TestSkins.h"
#include "wine/TestSupport.h"
#include "zcmod/ResHandler.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikComboBoxCtrl.h"

namespace {

using msgseq::input;
using msgseq::Recorder;
using testskin::Capture;
using testskin::Rgb;

const COLORREF kIconColours[] = {RGB(200, 30, 30), RGB(30, 160, 30), RGB(30, 30, 200)};
const std::vector<const wchar_t*> kPhones = {L"Nokia 6230i", L"Sony Ericsson K750", L"Motorola RAZR V3",
                                             L"Samsung D500", L"Siemens S65"};

// The combo's state fields, for pictures of a state that input can't hold still (pressed opens the list).
class CProbeCombo : public CVuikComboBoxCtrl {
public:
    void Force(EComboBoxState state, bool focus)
    {
        m_eState = state;
        m_bFocus = focus;
        DeleteBackBuffer();
        InvalidateRect(m_hWnd, nullptr, FALSE);
        UpdateWindow(m_hWnd);
        Recorder::Pump(20);  // the screen shows what was drawn once the window's surface is flushed
    }
};

// The parent counts selection changes and, as a plain parent does, doesn't hand owner drawing back.
WNDPROC g_parentProc = nullptr;
int g_selChanges = 0;
LRESULT CALLBACK LoggingParent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && HIWORD(wParam) == CBN_SELCHANGE)
        ++g_selChanges;
    if (message == WM_DRAWITEM)
        return TRUE;
    return CallWindowProcW(g_parentProc, hwnd, message, wParam, lParam);
}

class ComboBox : public ::testing::Test {
public:
    void SetUp() override
    {
        INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_USEREX_CLASSES};
        InitCommonControlsEx(&classes);
        m_font = CreateFontW(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0,
                             L"Tahoma");
        m_images = ImageList_Create(16, 16, ILC_COLOR24, 3, 0);
        for (COLORREF colour : kIconColours) {
            HBITMAP bitmap = testskin::MakeSection(16, 16, [&](int, int) { return Rgb(colour); });
            ImageList_Add(m_images, bitmap, nullptr);
            DeleteObject(bitmap);
        }
    }
    void TearDown() override
    {
        Destroy();
        DeleteObject(m_font);
        ImageList_Destroy(m_images);
        SetCursorPos(0, 0);
    }

    // The combo on a panel, 220 wide; a ComboBoxEx32 gives item i the icon i % 3 and an indent of i.
    void Make(const std::vector<const wchar_t*>& items, bool ex = false, bool rtl = false, int select = 0)
    {
        Destroy();
        HWND panel = m_panel.Open(RECT{60, 60, 300, 260}, rtl);
        ASSERT_TRUE(panel);
        g_selChanges = 0;
        g_parentProc = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(panel, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(LoggingParent)));
        const DWORD style = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST |
                            (ex ? 0 : CBS_OWNERDRAWFIXED | CBS_HASSTRINGS);
        m_outer = CreateWindowExW(0, ex ? WC_COMBOBOXEXW : WC_COMBOBOXW, L"", style, 10, 10, 220, 150, panel,
                                  reinterpret_cast<HMENU>(7), GetModuleHandleW(nullptr), nullptr);
        ASSERT_TRUE(m_outer);
        SendMessageW(m_outer, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), 0);
        if (ex) {
            SendMessageW(m_outer, CBEM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(m_images));
            for (size_t i = 0; i < items.size(); ++i) {
                COMBOBOXEXITEMW item = {};
                item.mask = CBEIF_TEXT | CBEIF_IMAGE | CBEIF_SELECTEDIMAGE | CBEIF_INDENT;
                item.iItem = static_cast<INT_PTR>(i);
                item.pszText = const_cast<wchar_t*>(items[i]);
                item.iImage = item.iSelectedImage = static_cast<int>(i % 3);
                item.iIndent = static_cast<int>(i);
                SendMessageW(m_outer, CBEM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
            }
        }
        ASSERT_TRUE(m_combo.SubclassWindow(m_outer));
        ASSERT_EQ(m_combo.GetComboBoxEx(), ex ? m_outer : nullptr);
        if (!ex)
            for (const wchar_t* item : items)
                m_combo.AddItem(item);
        m_combo.SetCurSel(select);
        m_panel.Paint();
    }
    void Destroy()
    {
        if (m_combo.m_hWnd && IsWindow(m_combo.m_hWnd))
            SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, FALSE, 0);
        m_panel.Close();
        m_outer = nullptr;
        m_combo.UnsubclassWindow(1);
        m_combo.m_hWnd = nullptr;
    }

    Capture Closed() const { return testskin::CaptureOnScreen(m_combo.m_hWnd); }
    bool Dropped() const { return SendMessageW(m_combo.m_hWnd, CB_GETDROPPEDSTATE, 0, 0) != 0; }
    static POINT ScreenOf(HWND hwnd, int x, int y)
    {
        POINT p = {x, y};
        MapWindowPoints(hwnd, nullptr, &p, 1);
        return p;
    }
    static RECT ItemRect(HWND list, int i)
    {
        RECT item = {};
        SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
        return item;
    }

    testskin::LibraryState m_library;
    testskin::ThemedPanel m_panel;
    HFONT m_font = nullptr;
    HIMAGELIST m_images = nullptr;
    HWND m_outer = nullptr;
    CProbeCombo m_combo;
};

// The user chooses with the mouse, with the keyboard and with an arrow key on the closed control, which shows
// each choice; the list (a golden) draws the hovered item in the highlight and a ComboBoxEx32's icons 10 pixels a
// level in.
TEST_F(ComboBox, ChoosesWithMouseAndKeyboard)
{
    for (bool ex : {false, true}) {
        SCOPED_TRACE(ex ? "ComboBoxEx32" : "ComboBox");
        Make(kPhones, ex);
        ASSERT_TRUE(m_combo.GetSkin() && m_combo.SkinIsValid());
        const Capture first = Closed();

        // A click on the arrow opens the list (once the window is under the mouse), one on the third chooses.
        RECT r;
        GetClientRect(m_combo.m_hWnd, &r);
        const POINT arrow = ScreenOf(m_combo.m_hWnd, r.right - 8, r.bottom / 2);
        input::MoveTo(arrow);
        EXPECT_TRUE(Recorder::PumpUntil([&] { return WindowFromPoint(arrow) == m_combo.m_hWnd; }));
        input::Click(arrow);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return Dropped(); })) << "the list didn't open";
        HWND list = m_combo.GetList();
        const RECT item = ItemRect(list, 2);
        input::MoveTo(ScreenOf(list, item.left + 40, (item.top + item.bottom) / 2));
        ASSERT_TRUE(Recorder::PumpUntil([&] { return SendMessageW(list, LB_GETCURSEL, 0, 0) == 2; }));
        Recorder::Pump(30);
        const Capture open = testskin::CaptureOnScreen(list);
        EXPECT_TRUE(zcmod_test::MatchesGolden(ex ? "combo_list_ex" : "combo_list", open.width, open.height,
                                              open.pixels.data()));
        input::LeftDown();
        input::LeftUp();
        ASSERT_TRUE(Recorder::PumpUntil([&] { return !Dropped(); })) << "the list didn't close";
        Recorder::Pump(30);
        EXPECT_EQ(m_combo.GetCurSel(), 2);
        EXPECT_EQ(g_selChanges, 1);
        const Capture chosen = Closed();
        EXPECT_FALSE(chosen.pixels == first.pixels) << "the closed control still shows the first item";

        // F4 opens, two steps down, Enter chooses and closes.
        SetFocus(m_combo.m_hWnd);
        input::Press(VK_F4);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return Dropped(); }));
        for (WORD key : {VK_DOWN, VK_DOWN, VK_RETURN})
            input::Press(key);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return !Dropped(); }));
        Recorder::Pump(30);
        EXPECT_EQ(m_combo.GetCurSel(), 4);
        const Capture last = Closed();
        EXPECT_FALSE(last.pixels == chosen.pixels);

        // An arrow key on the closed control chooses without opening, and the picture follows.
        input::Press(VK_UP);
        EXPECT_TRUE(Recorder::PumpUntil([&] { return m_combo.GetCurSel() == 3; }));
        Recorder::Pump(30);
        EXPECT_FALSE(Dropped());
        EXPECT_FALSE(Closed().pixels == last.pixels) << "the closed control didn't repaint the new choice";
    }
}

// The mouse over the closed control gives the hover look, and a focused one at rest looks the same; the top
// line, in the outline's colour, tells the look.
TEST_F(ComboBox, HoverAndFocusLookAlike)
{
    Make(kPhones);
    RECT r;
    GetClientRect(m_combo.m_hWnd, &r);
    const auto topLine = [&](int state) {
        return testskin::ReadBitmap(m_combo.GetSkin()->GetStateSkin(state)->m_pMiddle->GetPrimary()).At(1, 0);
    };
    const uint32_t normal = topLine(COMBOBOX_STATE_NORMAL), hover = topLine(COMBOBOX_STATE_HOVER);
    ASSERT_NE(normal, hover);
    const struct {
        void (*act)(ComboBox&);
        EComboBoxState state;
        uint32_t look;
    } steps[] = {
        {[](ComboBox& t) { SetFocus(t.m_panel.Hwnd()); }, COMBOBOX_STATE_NORMAL, normal},
        {[](ComboBox& t) { input::MoveTo(ScreenOf(t.m_combo.m_hWnd, 40, 12)); }, COMBOBOX_STATE_HOVER, hover},
        {[](ComboBox& t) { input::MoveTo(ScreenOf(t.m_panel.Hwnd(), 5, 180)); }, COMBOBOX_STATE_NORMAL, normal},
        // A focused combo at rest looks like one under the mouse.
        {[](ComboBox& t) { SetFocus(t.m_combo.m_hWnd); }, COMBOBOX_STATE_NORMAL, hover},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(&step - steps);
        step.act(*this);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return m_combo.GetState() == step.state; }));
        Recorder::Pump(20);
        EXPECT_EQ(Closed().At(r.right / 2, 0), step.look);
    }
    EXPECT_TRUE(m_combo.HasFocus());
}

// The mouse on a long item shows its whole text (ampersands collapsed) at the item's start; none on an item
// that fits, and the tip goes when the mouse leaves the list.
TEST_F(ComboBox, LongItemShowsTipBesideIt)
{
    Make({L"Short", L"Tom &&&& Jerry: a name much too long for the list to show it whole", L"A&&B", L"Fits"});
    SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, TRUE, 0);
    ASSERT_TRUE(Recorder::PumpUntil([&] { return Dropped(); }));
    HWND list = m_combo.GetList();
    HWND tip = m_combo.GetListCtrl().GetToolTip();
    ASSERT_TRUE(tip);
    const auto hover = [&](int index) {
        const RECT item = ItemRect(list, index);
        input::MoveTo(ScreenOf(list, item.left + 20, (item.top + item.bottom) / 2));
        Recorder::Pump(60);
        return Recorder::PumpUntil([&] { return IsWindowVisible(tip) != FALSE; }, index == 1 ? 2000 : 100);
    };
    EXPECT_FALSE(hover(0)) << "a short item got a tip";
    ASSERT_TRUE(hover(1)) << "no tip for the long item";
    EXPECT_EQ(m_combo.GetListCtrl().GetTipText(), L"Tom & Jerry: a name much too long for the list to show it whole");
    RECT shown;
    GetWindowRect(tip, &shown);
    const RECT item = ItemRect(list, 1);
    const POINT start = ScreenOf(list, item.left, item.top);
    EXPECT_EQ(shown.left, start.x + 3);
    EXPECT_EQ(shown.top, start.y);
    EXPECT_FALSE(hover(3)) << "the tip stayed on an item that fits";
    ASSERT_TRUE(hover(1));
    input::MoveTo(ScreenOf(m_panel.Hwnd(), 5, 5));
    EXPECT_TRUE(Recorder::PumpUntil([&] { return !IsWindowVisible(tip); }, 1000)) << "the tip outlived the mouse";
}

// The closed control's states stacked, one golden per theme and layout.
TEST_F(ComboBox, Goldens)
{
    const struct {
        EComboBoxState state;
        bool focus, disabled, empty, ex;
    } states[] = {{COMBOBOX_STATE_NORMAL, false, false, false, false}, {COMBOBOX_STATE_HOVER, false, false, false, false},
                  {COMBOBOX_STATE_PRESSED, false, false, false, false}, {COMBOBOX_STATE_NORMAL, true, false, false, false},
                  {COMBOBOX_STATE_NORMAL, false, true, false, false},  {COMBOBOX_STATE_NORMAL, false, false, true, false},
                  {COMBOBOX_STATE_NORMAL, false, false, false, true}};
    for (const testskin::Theme& theme : testskin::kThemes)
        for (bool rtl : {false, true}) {
            m_panel.UseTheme(theme);
            testskin::LibraryState layout(rtl ? 1 : 0);
            const std::string name = std::string("combo_states_") + theme.tag + (rtl ? "_rtl" : "_ltr");
            SCOPED_TRACE(name);
            testskin::Strip strip;
            for (const auto& s : states) {
                Make(kPhones, s.ex, rtl, s.empty ? -1 : 1);
                EnableWindow(m_outer, !s.disabled);
                SetFocus(m_panel.Hwnd());
                m_combo.Force(s.state, s.focus);
                strip.Add(Closed());
            }
            EXPECT_TRUE(zcmod_test::MatchesGolden(name, strip.width, strip.height, strip.pixels.data()));
        }
}

// Four hundred drop-downs, some with the tip, leave nothing behind.
TEST_F(ComboBox, DropDownCyclesLeaveNoHandles)
{
    Make({L"Short", L"An item long enough to need the tooltip beside the list, every time", L"Third"});
    HWND list = m_combo.GetList();
    zcmod_test::HandleCounter counter;
    auto cycle = [&](bool tip) {
        SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, TRUE, 0);
        UpdateWindow(list);
        if (tip) {
            const RECT item = ItemRect(list, 1);
            SendMessageW(list, WM_MOUSEMOVE, 0, MAKELPARAM(item.left + 10, item.top + 2));
        }
        SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, FALSE, 0);
        UpdateWindow(m_combo.m_hWnd);
        // The tip's timer ends it once the list is gone.
        SendMessageW(list, WM_TIMER, CVuikComboBoxListCtrl::m_toolTipTimerID, 0);
    };
    cycle(true);
    cycle(false);
    const auto before = counter.Live();
    for (int i = 0; i < 400; ++i)
        cycle(i % 10 == 0);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
}

}  // namespace
