// The skinned combo box with the shipped themes' pieces: choosing by mouse and keyboard through the drop-down
// the library draws, a ComboBoxEx32's icon and indent, the tooltip of a long item, pixel goldens of the closed
// control in its states, and handle hygiene over many drop-downs. Pixels are read from the screen.
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

using testskin::Capture;
using msgseq::input;
using msgseq::Recorder;

uint32_t Rgb(COLORREF c)
{
    return (GetRValue(c) << 16) | (GetGValue(c) << 8) | GetBValue(c);
}

const uint32_t kListSelected = 0x73BEFF;  // 0xFFBE73 as the platform's COLORREF
const uint32_t kListNormal = 0xFFFFFF;
const COLORREF kIconColours[] = {RGB(200, 30, 30), RGB(30, 160, 30), RGB(30, 30, 200)};

struct Theme {
    const wchar_t* name;
    const char* tag;
    COLORREF window;
};
const Theme kDefault = {L"Default", "Default", RGB(0xf2, 0xf5, 0xf9)};
const Theme kGraphite = {L"Graphite", "Graphite", RGB(0x23, 0x27, 0x2e)};

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
        msgseq::Recorder::Pump(20);  // the screen shows what was drawn once the window's surface is flushed
    }
};

// What the parent hears: selection changes.
struct ParentLog {
    WNDPROC previous = nullptr;
    int selChanges = 0;
};
ParentLog g_log;

LRESULT CALLBACK LoggingParent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_COMMAND && HIWORD(wParam) == CBN_SELCHANGE)
        ++g_log.selChanges;
    // A parent of the plain kind, that doesn't hand owner drawing back to its children.
    if (message == WM_DRAWITEM)
        return TRUE;
    return CallWindowProcW(g_log.previous, hwnd, message, wParam, lParam);
}

class ComboBox : public ::testing::Test {
protected:
    void SetUp() override
    {
        INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_USEREX_CLASSES};
        InitCommonControlsEx(&classes);
        m_font = CreateFontW(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, NONANTIALIASED_QUALITY, 0,
                             L"Tahoma");
        UseTheme(kDefault);
    }
    void TearDown() override
    {
        Destroy();
        DeleteObject(m_font);
        if (m_images)
            ImageList_Destroy(m_images);
        g_log = ParentLog();
        SetCursorPos(0, 0);
    }
    void UseTheme(const Theme& theme)
    {
        m_theme = theme;
        m_registry.SetMachineTheme(theme.name);
        m_panelSkin.SetSkinDef({theme.window, theme.window});
    }

    // A panel in the theme's window colour at (60, 60) holding the combo at (10, 10), 220 wide.
    void Make(const std::vector<const wchar_t*>& items, DWORD style = CBS_DROPDOWNLIST, bool ex = false,
              bool rtl = false, int select = 0)
    {
        Destroy();
        m_panel.SetSkin(&m_panelSkin);
        m_panel.Create(msgseq::PlainClass(), nullptr, RECT{60, 60, 300, 260}, L"", 0,
                       WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, rtl ? WS_EX_LAYOUTRTL : 0, nullptr);
        ASSERT_TRUE(m_panel.m_hWnd);
        g_log = ParentLog();
        g_log.previous = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(m_panel.m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(LoggingParent)));
        const DWORD all = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | style;
        if (ex) {
            m_outer = CreateWindowExW(0, WC_COMBOBOXEXW, L"", all, 10, 10, 220, 150, m_panel.m_hWnd,
                                      reinterpret_cast<HMENU>(7), GetModuleHandleW(nullptr), nullptr);
            ASSERT_TRUE(m_outer);
            SendMessageW(m_outer, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), 0);
            MakeImages();
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
            ASSERT_TRUE(m_combo.SubclassWindow(m_outer));
            ASSERT_EQ(m_combo.GetComboBoxEx(), m_outer);
        } else {
            m_outer = CreateWindowExW(0, WC_COMBOBOXW, L"", all | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS, 10, 10, 220,
                                      150, m_panel.m_hWnd, reinterpret_cast<HMENU>(7), GetModuleHandleW(nullptr),
                                      nullptr);
            ASSERT_TRUE(m_outer);
            SendMessageW(m_outer, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), 0);
            ASSERT_TRUE(m_combo.SubclassWindow(m_outer));
            for (const wchar_t* item : items)
                m_combo.AddItem(item);
        }
        m_combo.SetCurSel(select);
        SetForegroundWindow(m_panel.m_hWnd);
        RedrawWindow(m_panel.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        msgseq::Recorder::Pump(20);
    }
    void MakeImages()
    {
        if (m_images)
            return;
        m_images = ImageList_Create(16, 16, ILC_COLOR24, 3, 0);
        for (COLORREF colour : kIconColours) {
            uint32_t* bits = nullptr;
            HBITMAP bitmap = testskin::MakeSection(16, 16, [&](int, int) { return Rgb(colour); }, &bits);
            ImageList_Add(m_images, bitmap, nullptr);
            DeleteObject(bitmap);
        }
    }
    void Destroy()
    {
        if (m_combo.m_hWnd && IsWindow(m_combo.m_hWnd))
            SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, FALSE, 0);
        m_panel.DeleteBackBuffer();
        if (m_panel.m_hWnd && IsWindow(m_panel.m_hWnd))
            DestroyWindow(m_panel.m_hWnd);
        m_panel.m_hWnd = m_outer = nullptr;
        m_combo.UnsubclassWindow(1);
        m_combo.m_hWnd = nullptr;
    }

    Capture Closed() const { return testskin::CaptureOnScreen(m_combo.m_hWnd); }
    bool Dropped() const { return SendMessageW(m_combo.m_hWnd, CB_GETDROPPEDSTATE, 0, 0) != 0; }
    POINT ScreenOf(HWND hwnd, int x, int y) const
    {
        POINT p = {x, y};
        MapWindowPoints(hwnd, nullptr, &p, 1);
        return p;
    }
    // A click where `target` is under the mouse: the click waits until the screen has the window there.
    void Click(POINT screen, HWND target)
    {
        msgseq::input::MoveTo(screen);
        EXPECT_TRUE(Recorder::PumpUntil([&] { return WindowFromPoint(screen) == target; })) << "the window isn't there";
        msgseq::input::LeftDown();
        msgseq::Recorder::Pump(10);
        msgseq::input::LeftUp();
    }
    uint32_t Piece(int state, int which, int x, int y)
    {
        CVuikComboBoxStateSkin* s = m_combo.GetSkin()->GetStateSkin(state);
        CVuikBitmap* b = which == 0 ? s->m_pLeft : which == 1 ? s->m_pMiddle : s->m_pRight;
        return testskin::ReadBitmap(b->GetPrimary()).At(x, y);
    }

    zcmod_test::SuiteRegistry m_registry;
    testskin::LibraryState m_library;
    Theme m_theme = kDefault;
    HFONT m_font = nullptr;
    HIMAGELIST m_images = nullptr;
    testskin::CTestSkin m_panelSkin;
    testskin::CTestPanel m_panel;
    HWND m_outer = nullptr;
    CProbeCombo m_combo;
};

const std::vector<const wchar_t*> kPhones = {L"Nokia 6230i", L"Sony Ericsson K750", L"Motorola RAZR V3",
                                             L"Samsung D500", L"Siemens S65"};

// The user opens the list and chooses, once with the mouse and once with the keyboard; the list's items are
// the library's (the selected one in its highlight), and the closed control shows the choice afterwards.
TEST_F(ComboBox, ChoosesWithMouseAndKeyboard)
{
    const struct {
        const char* what;
        bool ex;
    } cases[] = {{"ComboBox", false}, {"ComboBoxEx32", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Make(kPhones, CBS_DROPDOWNLIST, c.ex);
        ASSERT_TRUE(m_combo.GetSkin() && m_combo.SkinIsValid());
        const Capture first = Closed();

        // Mouse: a click on the arrow opens the list, a click on the third item chooses it.
        RECT r;
        GetClientRect(m_combo.m_hWnd, &r);
        Click(ScreenOf(m_combo.m_hWnd, r.right - 8, r.bottom / 2), m_combo.m_hWnd);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return Dropped(); })) << "the list didn't open";
        HWND list = m_combo.GetList();
        RECT item;
        SendMessageW(list, LB_GETITEMRECT, 2, reinterpret_cast<LPARAM>(&item));
        msgseq::input::MoveTo(ScreenOf(list, item.left + 40, (item.top + item.bottom) / 2));
        ASSERT_TRUE(Recorder::PumpUntil([&] { return SendMessageW(list, LB_GETCURSEL, 0, 0) == 2; }));
        msgseq::Recorder::Pump(30);
        const Capture open = testskin::CaptureOnScreen(list);
        EXPECT_EQ(open.At(2, (item.top + item.bottom) / 2), kListSelected) << "the hovered item isn't highlighted";
        EXPECT_EQ(open.At(2, item.top - 4), kListNormal);
        msgseq::input::LeftDown();
        msgseq::input::LeftUp();
        ASSERT_TRUE(Recorder::PumpUntil([&] { return !Dropped(); })) << "the list didn't close";
        msgseq::Recorder::Pump(30);
        EXPECT_EQ(m_combo.GetCurSel(), 2);
        EXPECT_EQ(g_log.selChanges, 1);
        const Capture chosen = Closed();
        EXPECT_FALSE(chosen.pixels == first.pixels) << "the closed control still shows the first item";

        // Keyboard: F4 opens, two steps down, Enter chooses and closes.
        SetFocus(m_combo.m_hWnd);
        input::Press(VK_F4);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return Dropped(); }));
        input::Press(VK_DOWN);
        input::Press(VK_DOWN);
        input::Press(VK_RETURN);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return !Dropped(); }));
        msgseq::Recorder::Pump(30);
        EXPECT_EQ(m_combo.GetCurSel(), 4);
        const Capture last = Closed();
        EXPECT_FALSE(last.pixels == chosen.pixels);

        // Keyboard on the closed control: an arrow key chooses without opening, and the picture follows.
        input::Press(VK_UP);
        EXPECT_TRUE(Recorder::PumpUntil([&] { return m_combo.GetCurSel() == 3; }));
        msgseq::Recorder::Pump(30);
        EXPECT_FALSE(Dropped());
        EXPECT_FALSE(Closed().pixels == last.pixels) << "the closed control didn't repaint the new choice";
    }
}

// The closed control: the mouse over it gives the hover look, a focused one at rest looks the same, and the
// mouse leaving gives the normal look back. The arrow piece's colours tell the state.
TEST_F(ComboBox, HoverAndFocusLookAlike)
{
    Make(kPhones);
    RECT r;
    GetClientRect(m_combo.m_hWnd, &r);
    const int arrowX = r.right / 2, y = 0;  // the top line, in the outline's colour of the state
    const uint32_t normal = Piece(COMBOBOX_STATE_NORMAL, 1, 1, 0), hover = Piece(COMBOBOX_STATE_HOVER, 1, 1, 0);
    ASSERT_NE(normal, hover);
    SetFocus(m_panel.m_hWnd);
    msgseq::Recorder::Pump(20);
    EXPECT_EQ(Closed().At(arrowX, y), normal);
    msgseq::input::MoveTo(ScreenOf(m_combo.m_hWnd, 40, 12));
    ASSERT_TRUE(Recorder::PumpUntil([&] { return m_combo.GetState() == COMBOBOX_STATE_HOVER; }));
    msgseq::Recorder::Pump(20);
    EXPECT_EQ(Closed().At(arrowX, y), hover);
    msgseq::input::MoveTo(ScreenOf(m_panel.m_hWnd, 5, 180));
    ASSERT_TRUE(Recorder::PumpUntil([&] { return m_combo.GetState() == COMBOBOX_STATE_NORMAL; }));
    msgseq::Recorder::Pump(20);
    EXPECT_EQ(Closed().At(arrowX, y), normal);
    SetFocus(m_combo.m_hWnd);
    msgseq::Recorder::Pump(20);
    EXPECT_TRUE(m_combo.HasFocus());
    EXPECT_EQ(Closed().At(arrowX, y), hover) << "a focused combo at rest looks like one under the mouse";
}

// A ComboBoxEx32 shows its item's icon in the closed control at the caption's start, without the indent; the
// list moves each item's icon in by 10 pixels a level.
TEST_F(ComboBox, ExIconClosedWithoutIndentListWithIt)
{
    for (int select : {0, 2}) {
        SCOPED_TRACE(select);
        Make(kPhones, CBS_DROPDOWNLIST, true, false, select);
        const int left = m_combo.GetSkin()->GetStateSkin(0)->m_pLeft->GetWidth();
        const Capture closed = Closed();
        RECT r;
        GetClientRect(m_combo.m_hWnd, &r);
        EXPECT_EQ(closed.At(left + 8, r.bottom / 2), Rgb(kIconColours[select % 3])) << "closed icon";
        EXPECT_NE(closed.At(left + 20 + 8, r.bottom / 2), Rgb(kIconColours[select % 3]));

        SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, TRUE, 0);
        ASSERT_TRUE(Recorder::PumpUntil([&] { return Dropped(); }));
        msgseq::Recorder::Pump(30);
        HWND list = m_combo.GetList();
        const Capture open = testskin::CaptureOnScreen(list);
        for (int i = 0; i < 3; ++i) {
            RECT item;
            SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
            const int x = item.left + 5 + 10 * i;
            EXPECT_EQ(open.At(x + 8, item.top + 4), Rgb(kIconColours[i])) << "item " << i;
            if (i) {
                EXPECT_NE(open.At(x - 2, item.top + 4), Rgb(kIconColours[i])) << "item " << i;
            }
        }
        SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, FALSE, 0);
        Recorder::PumpUntil([&] { return !Dropped(); });
    }
}

// An item that fits gets no tip; the mouse on a long one shows the whole text beside the item's start, with
// every run of ampersands as one.
TEST_F(ComboBox, LongItemShowsTipBesideIt)
{
    const std::vector<const wchar_t*> items = {
        L"Short", L"Tom &&&& Jerry: a name much too long for the list to show it whole", L"A&&B", L"Fits"};
    Make(items);
    SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, TRUE, 0);
    ASSERT_TRUE(Recorder::PumpUntil([&] { return Dropped(); }));
    HWND list = m_combo.GetList();
    HWND tip = m_combo.GetListCtrl().GetToolTip();
    ASSERT_TRUE(tip);
    auto hover = [&](int index) {
        RECT item;
        SendMessageW(list, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
        msgseq::input::MoveTo(ScreenOf(list, item.left + 20, (item.top + item.bottom) / 2));
        msgseq::Recorder::Pump(60);
        return item;
    };
    hover(0);
    EXPECT_FALSE(IsWindowVisible(tip)) << "a short item got a tip";
    const RECT item = hover(1);
    ASSERT_TRUE(Recorder::PumpUntil([&] { return IsWindowVisible(tip) != FALSE; })) << "no tip for the long item";
    EXPECT_EQ(m_combo.GetListCtrl().GetTipText(), L"Tom & Jerry: a name much too long for the list to show it whole");
    RECT shown;
    GetWindowRect(tip, &shown);
    const POINT start = ScreenOf(list, item.left, item.top);
    EXPECT_EQ(shown.left, start.x + 3);
    EXPECT_EQ(shown.top, start.y);
    hover(3);
    EXPECT_FALSE(IsWindowVisible(tip)) << "the tip stayed on an item that fits";
    // The tip goes when the mouse leaves the list.
    hover(1);
    ASSERT_TRUE(Recorder::PumpUntil([&] { return IsWindowVisible(tip) != FALSE; }));
    msgseq::input::MoveTo(ScreenOf(m_panel.m_hWnd, 5, 5));
    EXPECT_TRUE(Recorder::PumpUntil([&] { return !IsWindowVisible(tip); }, 1000)) << "the tip outlived the mouse";
}

// The closed control in its states, in both themes and both layouts: one golden each, the states stacked.
TEST_F(ComboBox, Goldens)
{
    for (const Theme* theme : {&kDefault, &kGraphite})
        for (bool rtl : {false, true}) {
            UseTheme(*theme);
            testskin::LibraryState layout(rtl ? 1 : 0);
            const std::string name = std::string("combo_states_") + theme->tag + (rtl ? "_rtl" : "_ltr");
            SCOPED_TRACE(name);
            std::vector<uint32_t> strip;
            int width = 0, height = 0;
            const struct {
                EComboBoxState state;
                bool focus, disabled, empty, ex;
            } states[] = {{COMBOBOX_STATE_NORMAL, false, false, false, false},
                          {COMBOBOX_STATE_HOVER, false, false, false, false},
                          {COMBOBOX_STATE_PRESSED, false, false, false, false},
                          {COMBOBOX_STATE_NORMAL, true, false, false, false},
                          {COMBOBOX_STATE_NORMAL, false, true, false, false},
                          {COMBOBOX_STATE_NORMAL, false, false, true, false},
                          {COMBOBOX_STATE_NORMAL, false, false, false, true}};
            for (const auto& s : states) {
                Make(kPhones, CBS_DROPDOWNLIST, s.ex, rtl, s.empty ? -1 : 1);
                EnableWindow(m_outer, !s.disabled);
                SetFocus(m_panel.m_hWnd);
                m_combo.Force(s.state, s.focus);
                const Capture c = Closed();
                width = c.width;
                height += c.height;
                strip.insert(strip.end(), c.pixels.begin(), c.pixels.end());
            }
            EXPECT_TRUE(zcmod_test::MatchesGolden(name, width, height, strip.data()));
        }
}

// A thousand drop-downs opened and closed, with the tip shown now and then, leave nothing of the library's.
TEST_F(ComboBox, DropDownCyclesLeaveNoHandles)
{
    Make({L"Short", L"An item long enough to need the tooltip beside the list, every time", L"Third"});
    HWND list = m_combo.GetList();
    zcmod_test::HandleCounter counter;
    auto cycle = [&](bool tip) {
        SendMessageW(m_combo.m_hWnd, CB_SHOWDROPDOWN, TRUE, 0);
        UpdateWindow(list);
        if (tip) {
            RECT item;
            SendMessageW(list, LB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
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
    for (int i = 0; i < 1000; ++i)
        cycle(i % 10 == 0);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
}

}  // namespace
