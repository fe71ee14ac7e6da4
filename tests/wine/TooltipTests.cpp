// The tooltip: one shared platform window per top-level window with a count of its controls, text changes
// without a new registration, the last removal destroying the window, the notifications routed to the tip
// object, the size fitted to unwrapped text, the flip above the cursor, and the gradient.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <string>

#include "Golden.h"
#include "MessageSequence.h"
#include "TestSkins.h"
#include "zcmod/VuikTooltip.h"

using namespace testskin;

namespace {

// Opens the protected notification handlers.
class CTestTooltip : public CVuikTooltip {
public:
    using CVuikTooltip::OnTTNCustomDraw;
    using CVuikTooltip::OnTTNShow;
};

HWND Manager(HWND top)
{
    return static_cast<HWND>(GetPropW(top, L"__DeskHubCVuikTooltipControlWindowHandle"));
}
int Count(HWND top)
{
    const int* count = static_cast<const int*>(GetPropW(top, L"__DeskHubCVuikTooltipControlCount"));
    return count ? *count : -1;
}
HWND Popup(const RECT& r, HWND parent = nullptr)
{
    return CreateWindowExW(0, L"Static", L"", (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE, r.left, r.top,
                           r.right - r.left, r.bottom - r.top, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
}

// A top-level window with two skinned buttons.
struct Controls {
    explicit Controls(int x) : top(Popup(RECT{x, 100, x + 200, 200}))
    {
        a.Create(top, RECT{10, 10, 90, 40}, 11, WS_CHILD | WS_VISIBLE, 0);
        b.Create(top, RECT{100, 10, 190, 40}, 12, WS_CHILD | WS_VISIBLE, 0);
        a.SetSkin(&skin);
        b.SetSkin(&skin);
    }
    ~Controls() { DestroyWindow(top); }
    HWND top;
    CTestSkin skin;
    CTestButton a, b;
};

TEST(Tooltip, OneSharedWindowPerTopLevelWithItsCount)
{
    LibraryState lib;
    Controls one(100), two(400);
    one.a.SetTooltip(L"first");
    one.b.SetTooltip(L"second");
    two.a.SetTooltip(L"other window");
    const HWND manager = Manager(one.top);
    ASSERT_TRUE(manager && IsWindow(manager));
    EXPECT_NE(Manager(two.top), manager);
    EXPECT_EQ(Count(one.top), 2);
    EXPECT_EQ(Count(two.top), 1);
    EXPECT_EQ(SendMessageW(manager, TTM_GETTOOLCOUNT, 0, 0), 2);
    EXPECT_EQ(GetWindow(manager, GW_OWNER), one.top);
    EXPECT_TRUE(GetClassLongPtrW(manager, GCL_STYLE) & CS_DROPSHADOW);
    EXPECT_TRUE(GetPropW(one.a.m_hWnd, L"__DeskHubCVuikTooltipOrgWinproc"));

    // A new text is no new registration: the next show asks for it. A notification from another window isn't
    // the tip's: it goes on to the control's own procedure.
    const LONG_PTR proc = GetWindowLongPtrW(one.a.m_hWnd, GWLP_WNDPROC);
    one.a.SetTooltip(L"changed");
    EXPECT_EQ(Count(one.top), 2);
    EXPECT_EQ(SendMessageW(manager, TTM_GETTOOLCOUNT, 0, 0), 2);
    EXPECT_EQ(GetWindowLongPtrW(one.a.m_hWnd, GWLP_WNDPROC), proc);
    for (HWND from : {manager, two.top}) {
        NMTTDISPINFOW info = {};
        info.hdr.hwndFrom = from;
        info.hdr.code = TTN_GETDISPINFOW;
        SendMessageW(one.a.m_hWnd, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&info));
        EXPECT_STREQ(info.lpszText, from == manager ? L"changed" : nullptr);
    }

    // The control still behaves as a button under the tip's procedure.
    SendMessageW(one.a.m_hWnd, BM_SETSTATE, 1, 0);
    EXPECT_EQ(one.a.State() & 4, 4);

    // The last removal destroys the shared window and its properties; the next tip makes a new one.
    one.a.SetTooltip(nullptr);
    EXPECT_EQ(Count(one.top), 1);
    EXPECT_TRUE(IsWindow(manager));
    EXPECT_FALSE(GetPropW(one.a.m_hWnd, L"__DeskHubCVuikTooltipOrgWinproc"));
    one.a.SetTooltip(nullptr);
    EXPECT_EQ(Count(one.top), 1) << "removing a tip that isn't there counts nothing";
    DestroyWindow(one.b.m_hWnd);  // OnDestroy unregisters
    EXPECT_FALSE(IsWindow(manager));
    EXPECT_EQ(Manager(one.top), nullptr);
    EXPECT_EQ(Count(one.top), -1);
    SendMessageW(one.a.m_hWnd, BM_SETSTATE, 0, 0);
    EXPECT_EQ(one.a.State() & 4, 0) << "the button works after its tip went";
    one.a.SetTooltip(L"again");
    EXPECT_TRUE(IsWindow(Manager(one.top)));
    EXPECT_NE(Manager(one.top), manager);
    EXPECT_EQ(Count(one.top), 1);
}

TEST(Tooltip, ARealHoverShowsTheTipWithItsText)
{
    // The mouse moved over a control by SendInput: the tip control's timer shows the shared window with the
    // control's text, and moving away hides it. Each wait has a watchdog that fails rather than hangs.
    LibraryState lib;
    Controls one(100);
    one.a.SetTooltip(L"first");
    one.b.SetTooltip(L"second");
    const HWND manager = Manager(one.top);
    ASSERT_TRUE(manager);
    SetForegroundWindow(one.top);
    auto waitFor = [&](bool visible) {
        return msgseq::Recorder::PumpUntil([&] { return (IsWindowVisible(manager) != FALSE) == visible; }, 5000);
    };
    msgseq::input::MoveTo(POINT{30, 30});
    ASSERT_TRUE(waitFor(false));
    RECT r;
    GetWindowRect(one.b.m_hWnd, &r);
    msgseq::input::MoveTo(POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2});
    ASSERT_TRUE(waitFor(true)) << "no tip within 5 seconds of the hover";
    wchar_t text[64] = {};
    GetWindowTextW(manager, text, 64);
    EXPECT_STREQ(text, L"second");
    msgseq::input::MoveTo(POINT{30, 30});
    EXPECT_TRUE(waitFor(false)) << "the tip stays after the mouse left";
}

// The show fits the size to unwrapped text and flips above the cursor near the bottom; the custom draw paints
// the gradient and centred text.
TEST(Tooltip, ShowAndCustomDraw)
{
    LibraryState lib;
    HWND top = Popup(RECT{100, 100, 300, 200});
    HWND control = Popup(RECT{0, 0, 50, 20}, top);
    HWND tipWindow = Popup(RECT{100, 300, 110, 310});
    CTestTooltip tip;
    NMHDR header = {tipWindow, 0, static_cast<UINT>(TTN_SHOW)};
    auto show = [&](const std::wstring& text, int x, int y) {
        tip.SetTooltip(control, text.c_str());
        SetWindowPos(tipWindow, nullptr, x, y, 10, 10, SWP_NOZORDER | SWP_NOACTIVATE);
        EXPECT_EQ(tip.OnTTNShow(0, reinterpret_cast<LPARAM>(&header)), 1);
        RECT r;
        GetWindowRect(tipWindow, &r);
        return r;
    };
    const RECT one = show(L"Tip", 100, 300);
    EXPECT_EQ(one.left, 100);
    EXPECT_EQ(one.top, 300);
    const int height = one.bottom - one.top, lineHeight = height - 20;
    ASSERT_GT(lineHeight, 5);
    // Lines end only at line breaks: three lines are three times as high, and a long line stays one line.
    const RECT three = show(L"Tip\nsecond line\nthird", 100, 300);
    EXPECT_EQ(three.bottom - three.top - 20, 3 * lineHeight);
    const RECT wide = show(std::wstring(200, L'w') + L" " + std::wstring(200, L'w'), 100, 300);
    EXPECT_EQ(wide.bottom - wide.top, height);
    EXPECT_GT(wide.right - wide.left, 1000);

    // Near the bottom of the work area (within 5 pixels) the tip goes above the cursor; exactly fitting stays.
    RECT work;
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    SetCursorPos(150, work.bottom - 40);
    POINT cursor;
    GetCursorPos(&cursor);
    const struct {
        int top, shown;
    } cases[] = {{work.bottom - 30, cursor.y - height},
                 {work.bottom - 5 - height, work.bottom - 5 - height},
                 {work.bottom - 3 - height, cursor.y - height}};
    for (const auto& c : cases) {
        const RECT r = show(L"Tip", 120, c.top);
        EXPECT_EQ(r.top, c.shown) << c.top;
        EXPECT_EQ(r.left, 120);
    }

    // The custom draw: the gradient, lighter at the top, and the text in the middle (the white fill between the
    // two stages is clipped away).
    tip.SetTooltip(control, L"ii");
    SetWindowPos(tipWindow, nullptr, 100, 300, 80, 40, SWP_NOZORDER | SWP_NOACTIVATE);  // a client area of 80 x 40
    Canvas canvas(80, 40);
    NMTTCUSTOMDRAW draw = {};
    draw.nmcd.hdr = {tipWindow, 0, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.hdc = canvas;
    draw.nmcd.dwDrawStage = CDDS_PREPAINT;
    EXPECT_EQ(tip.OnTTNCustomDraw(0, reinterpret_cast<LPARAM>(&draw)), CDRF_NOTIFYPOSTPAINT);
    const RECT all = {0, 0, 80, 40};
    FillRect(canvas, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    draw.nmcd.dwDrawStage = CDDS_POSTPAINT;
    EXPECT_EQ(tip.OnTTNCustomDraw(0, reinterpret_cast<LPARAM>(&draw)), CDRF_SKIPDEFAULT);
    draw.nmcd.dwDrawStage = CDDS_ITEMPREPAINT;
    EXPECT_EQ(tip.OnTTNCustomDraw(0, reinterpret_cast<LPARAM>(&draw)), 0);
    const Capture c = canvas.Read();
    EXPECT_TRUE(zcmod_test::MatchesGolden("tooltip_face", c.width, c.height, c.pixels.data()));
    tip.SetTooltip(control, nullptr);
    DestroyWindow(tipWindow);
    DestroyWindow(top);
}

}  // namespace
