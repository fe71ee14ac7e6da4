// The skinned edit and list view under real input, in both themes and layouts.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <string>

#include "Golden.h"
#include "HandleCounter.h"
#include "MessageSequence.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikEditCtrl.h"
#include "zcmod/VuikListViewCtrl.h"

using namespace msgseq;
using namespace testskin;

namespace {

COLORREF ThemeColour(UINT id) { return DkhLoadColor(nullptr, id); }

void InsertColumn(HWND list, int index, const wchar_t* text, int width, int format)
{
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    column.fmt = format;
    column.cx = width;
    column.pszText = const_cast<wchar_t*>(text);
    ListView_InsertColumn(list, index, &column);
}

void InsertItem(HWND list, int index, const wchar_t* text)
{
    LVITEMW item = {};
    item.mask = LVIF_TEXT;
    item.iItem = index;
    item.pszText = const_cast<wchar_t*>(text);
    ListView_InsertItem(list, &item);
}

// The theme of a look for the test's life, with the layout; the suite's settings go when it ends.
class ThemeScope {
public:
    explicit ThemeScope(const Look& look) : m_lib(look.rtl ? LAYOUT_RTL : 0)
    {
        m_registry.SetMachineTheme(look.theme);
        m_registry.SetUserTheme(look.theme);
        ZCMOD_GetCommonZGR();
    }

private:
    zcmod_test::SuiteRegistry m_registry;
    LibraryState m_lib;
};

// ---- Edit ------------------------------------------------------------------------------------------------

class EditCtrlTest : public ::testing::Test {
protected:
    void TearDown() override { Recorder::Pump(20); }
};

// An application that lets its picture show under the text answers WM_CTLCOLOREDIT with a hollow brush.
LRESULT CALLBACK HollowEdits(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CTLCOLOREDIT) {
        SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
        SetTextColor(reinterpret_cast<HDC>(wParam), DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        return reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH));
    }
    return CallWindowProcW(reinterpret_cast<WNDPROC>(GetPropW(hwnd, L"test.proc")), hwnd, message, wParam, lParam);
}

// Typed text shows in the border's gradient over the parent's picture, in the client area and in the ring the
// notched border leaves out (the golden); disabled, the border stays.
TEST_F(EditCtrlTest, TypingKeepsTheBorderAndShowsTheParent)
{
    for (const Look& look : kLooks) {
        SCOPED_TRACE(look.Suffix());
        ThemeScope theme(look);
        CTestSkin panelSkin(SkinDef{ThemeColour(ZGR_COLOR_WINDOW), ThemeColour(ZGR_COLOR_HIGHLIGHT)});
        CTestPanel panel;
        HWND parent = panel.CreatePanel(nullptr, RECT{150, 150, 450, 250}, &panelSkin);
        ASSERT_TRUE(parent);
        SetPropW(parent, L"test.proc", reinterpret_cast<HANDLE>(GetWindowLongPtrW(parent, GWLP_WNDPROC)));
        SetWindowLongPtrW(parent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HollowEdits));
        if (look.rtl)
            SetWindowLongPtrW(parent, GWL_EXSTYLE, GetWindowLongPtrW(parent, GWL_EXSTYLE) | WS_EX_LAYOUTRTL);
        // As a dialog makes an edit with a border: a client edge.
        HWND hwnd = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", L"", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 50, 30, 200,
                                    26, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
        CVuikEditCtrl edit;
        ASSERT_TRUE(edit.SubclassWindow(hwnd));
        EXPECT_EQ(GetWindowLongPtrW(hwnd, GWL_STYLE) & 0x6800000, 0x6800000);
        SendMessageW(hwnd, WM_NCPAINT, 1, 0);  // a border painted before the parent ever did builds its buffer
        SetForegroundWindow(parent);
        SetFocus(hwnd);
        input::Type(L"hello world");
        Recorder::Pump(60);
        wchar_t text[32] = {};
        GetWindowTextW(hwnd, text, 32);
        EXPECT_STREQ(text, L"hello world");
        SetFocus(parent);  // no blinking caret in the pictures
        RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_UPDATENOW);
        Recorder::Pump(20);
        const Capture c = CaptureOnScreen(hwnd);
        ASSERT_EQ(c.width, 200);
        EXPECT_TRUE(zcmod_test::MatchesGolden("edit_" + look.Suffix(), c.width, c.height, c.pixels.data()));

        EXPECT_EQ(edit.GetGraphicalState(), EditBoxEnabled);
        EnableWindow(hwnd, FALSE);
        RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
        EXPECT_EQ(edit.GetGraphicalState(), EditBoxDisabled);
        const Capture d = CaptureOnScreen(hwnd);
        for (int x = 0; x < c.width; ++x)
            ASSERT_EQ(d.At(x, 1), c.At(x, 1)) << x;
        DestroyWindow(parent);
    }
}

// A plain parent that keeps no buffer shows through the ring by its own erase, also when the border paints
// first; an edit without a parent asks nobody: its ring shows the window colour.
TEST_F(EditCtrlTest, RingShowsAPlainParentOrTheWindowColour)
{
    LibraryState lib;
    Recorder rec;
    for (bool withParent : {true, false}) {
        SCOPED_TRACE(withParent ? "plain parent" : "no parent");
        HWND parent = withParent ? rec.CreateParent("p", RECT{150, 150, 450, 250}) : nullptr;
        HWND hwnd = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", L"text", (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE,
                                    parent ? 50 : 300, parent ? 30 : 300, 160, 26, parent, nullptr, nullptr, nullptr);
        CVuikEditCtrl edit;
        ASSERT_TRUE(edit.SubclassWindow(hwnd));
        SendMessageW(hwnd, WM_NCPAINT, 1, 0);
        RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_UPDATENOW);
        Recorder::Pump(20);
        const Capture c = CaptureOnScreen(hwnd);
        for (int x : {0, c.width - 1})
            EXPECT_EQ(c.At(x, c.height / 2), Rgb(GetSysColor(COLOR_WINDOW))) << std::hex << c.At(x, c.height / 2);
        EXPECT_TRUE(Near(c.At(c.width / 2, 1), 0x656464, 8)) << std::hex << c.At(c.width / 2, 1);
        DestroyWindow(parent ? parent : hwnd);
    }
}

// ---- List view -------------------------------------------------------------------------------------------

// Whatever the style it was made with (one per look), the list becomes an owner-drawn report view with a border
// and a header. A click and the Down key select rows that its owner draws (the skin's fill, the theme's
// highlight for the selection), while the header stays painted; the golden pins the header (gradient, line,
// separators, clipped text in the skin's font) and the rows.
TEST(ListViewCtrlTest, AnyStyleBecomesAReportViewSelectedByMouseAndKeyboard)
{
    const DWORD styles[] = {LVS_ICON | WS_VSCROLL | WS_HSCROLL, LVS_LIST | LVS_NOSCROLL, LVS_SMALLICON | LVS_SINGLESEL,
                            LVS_REPORT};
    const struct {
        const wchar_t* text;
        int width, format;
    } columns[] = {{L"Name", 120, LVCFMT_LEFT},
                   {L"Phone", 110, LVCFMT_RIGHT},
                   {L"A note long enough to run past its column's edge", 90, LVCFMT_LEFT}};
    const wchar_t* names[] = {L"Ada Lovelace", L"Alan Turing", L"Grace Hopper", L"Edsger Dijkstra", L"Barbara Liskov"};
    for (size_t i = 0; i < 4; ++i) {
        const Look& look = kLooks[i];
        SCOPED_TRACE(look.Suffix());
        ThemeScope theme(look);
        Recorder rec;
        HWND owner = rec.CreateParent("owner", RECT{100, 100, 460, 300});
        if (look.rtl)
            SetWindowLongPtrW(owner, GWL_EXSTYLE, GetWindowLongPtrW(owner, GWL_EXSTYLE) | WS_EX_LAYOUTRTL);
        HWND list = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | styles[i], 10, 10, 340, 180, owner,
                                    nullptr, GetModuleHandleW(nullptr), nullptr);
        CVuikListViewCtrl ctrl;
        ASSERT_TRUE(ctrl.SubclassWindow(list));
        const LONG_PTR style = GetWindowLongPtrW(list, GWL_STYLE);
        EXPECT_EQ(style & (WS_VSCROLL | WS_HSCROLL | LVS_NOSCROLL | LVS_TYPEMASK | WS_BORDER | LVS_OWNERDRAWFIXED),
                  LVS_REPORT | WS_BORDER | LVS_OWNERDRAWFIXED);
        EXPECT_EQ(style & LVS_SINGLESEL, styles[i] & LVS_SINGLESEL);

        const CVuikListViewSkinDef listDef = *ctrl.GetSkin();
        const COLORREF fill = RGB(listDef.m_crFill >> 16 & 0xFF, listDef.m_crFill >> 8 & 0xFF, listDef.m_crFill & 0xFF);
        const COLORREF highlight = ThemeColour(ZGR_COLOR_HIGHLIGHT);
        rec.SetHandler([&](HWND, UINT message, WPARAM, LPARAM lParam, LRESULT* result) {
            if (message != WM_DRAWITEM)
                return false;
            const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
            HBRUSH brush = CreateSolidBrush((item->itemState & ODS_SELECTED) ? highlight : fill);
            FillRect(item->hDC, &item->rcItem, brush);
            DeleteObject(brush);
            wchar_t text[64] = {};
            ListView_GetItemText(item->hwndItem, item->itemID, 0, text, 64);
            RECT r = item->rcItem;
            r.left += 10;
            SetBkMode(item->hDC, TRANSPARENT);
            SetTextColor(item->hDC, RGB(20, 20, 20));
            DrawTextW(item->hDC, text, -1, &r, DT_VCENTER | DT_SINGLELINE);
            *result = TRUE;
            return true;
        });
        for (int c = 0; c < 3; ++c)
            InsertColumn(list, c, columns[c].text, columns[c].width, columns[c].format);
        for (int row = 0; row < 5; ++row)
            InsertItem(list, row, names[row]);
        SetForegroundWindow(owner);
        Recorder::Pump(40);
        // A click 40 pixels in from the list's leading edge, on the third row.
        RECT row = {LVIR_BOUNDS, 0, 0, 0};
        SendMessageW(list, LVM_GETITEMRECT, 2, reinterpret_cast<LPARAM>(&row));
        POINT at = {40, (row.top + row.bottom) / 2};
        ClientToScreen(list, &at);
        input::Click(at);
        Recorder::Pump(60);
        EXPECT_EQ(ListView_GetNextItem(list, -1, LVNI_SELECTED), 2);
        input::Key(VK_DOWN, false);
        input::Key(VK_DOWN, true);
        Recorder::Pump(60);
        EXPECT_EQ(ListView_GetNextItem(list, -1, LVNI_SELECTED), 3);
        RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
        Recorder::Pump(20);
        const Capture whole = CaptureOnScreen(list);
        EXPECT_TRUE(
            zcmod_test::MatchesGolden("listview_" + look.Suffix(), whole.width, whole.height, whole.pixels.data()));
        DestroyWindow(owner);
        Recorder::Pump(20);
    }
}

// Two hundred lives of a skinned edit and list view, filled, selected and painted, leave nothing behind.
TEST(ListViewEditHygiene, ManyLivesLeaveNothing)
{
    ThemeScope theme(kLooks[0]);
    zcmod_test::HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    HWND parent = CreateWindowExW(0, PlainClass(), L"", WS_POPUP | WS_VISIBLE, 100, 100, 300, 200, nullptr, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
    auto life = [parent](int i) {
        HWND e =
            CreateWindowExW(0, L"Edit", L"", WS_CHILD | WS_VISIBLE, 5, 5, 120, 24, parent, nullptr, nullptr, nullptr);
        HWND l = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE, 5, 40, 280, 150, parent, nullptr, nullptr,
                                 nullptr);
        {
            CVuikEditCtrl edit;
            CVuikListViewCtrl list;
            edit.SubclassWindow(e);
            list.SubclassWindow(l);
            InsertColumn(l, 0, L"Name", 100, LVCFMT_LEFT);
            for (int k = 0; k < 3; ++k) {
                SetWindowTextW(e, std::to_wstring(i * 10 + k).c_str());
                InsertItem(l, k, L"row");
                ListView_SetItemState(l, k, LVIS_SELECTED, LVIS_SELECTED);
                RedrawWindow(parent, nullptr, nullptr,
                             RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_UPDATENOW | RDW_ALLCHILDREN);
            }
            if (i % 2) {  // half of the lives end their windows before the objects, half the other way round
                DestroyWindow(e);
                DestroyWindow(l);
            }
        }
        DestroyWindow(e);
        DestroyWindow(l);
    };
    life(0);
    const auto before = counter.Live();
    for (int i = 1; i <= 200; ++i)
        life(i);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " / " << before.ToString();
    DestroyWindow(parent);
}

}  // namespace
