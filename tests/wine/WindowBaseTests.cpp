// The window base under real input: the button routing, capture and hover, Space, the auto-check bit tests,
// the group walk, focus, subclassing, owner-draw forwarding and what each message does to the back buffer.
#include <windows.h>

#include <gtest/gtest.h>

#include "MessageSequence.h"
#include "TestSkinIds.h"
#include "TestSkins.h"

using namespace msgseq;
using namespace testskin;

namespace {

const RECT kParentRect = {120, 120, 420, 320};

// A top-level recording parent (window 0), made the foreground window, with skinned buttons on it.
class ButtonTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_parent = m_rec.CreateParent("parent", kParentRect);
        ASSERT_TRUE(m_parent);
        SetForegroundWindow(m_parent);
        Recorder::Pump(30);
    }
    void TearDown() override
    {
        input::LeftUp();
        Recorder::Pump(20);
    }

    // A button at `rect` (parent coordinates) with a valid skin, watched by the recorder.
    HWND Add(CTestButton& button, UINT id, DWORD style, const char* name = "button", RECT rect = {20, 20, 100, 60})
    {
        HWND hwnd = button.Create(m_parent, rect, id, WS_CHILD | WS_VISIBLE | style, 0);
        button.SetSkin(&m_skin);
        if (hwnd)
            m_rec.Watch(hwnd, name);
        return hwnd;
    }
    static POINT Outside() { return POINT{kParentRect.right - 10, kParentRect.bottom - 10}; }
    static void Step(POINT p)
    {
        input::MoveTo(p);
        Recorder::Pump(30);
    }
    static void Press(bool down)
    {
        down ? input::LeftDown() : input::LeftUp();
        Recorder::Pump(down ? 30 : 40);
    }

    LibraryState m_lib;
    CTestSkin m_skin;
    Recorder m_rec;
    HWND m_parent = nullptr;
};

// Off and released: no command, the pushed look let go. Off and back: one command with the low 16 bits of
// the id and no notification code.
TEST_F(ButtonTest, PressDragOffAndBack)
{
    CTestButton button;
    HWND hwnd = Add(button, 0x12345, BS_PUSHBUTTON);
    ASSERT_TRUE(hwnd);
    Step(input::Centre(hwnd));
    m_rec.Only({WM_LBUTTONDOWN, WM_LBUTTONUP, BM_SETSTATE, BM_SETCHECK, WM_COMMAND});
    Press(true);
    EXPECT_EQ(GetCapture(), hwnd);
    EXPECT_EQ(button.State() & 4, 4);
    Step(Outside());
    EXPECT_EQ(button.State() & 4, 0) << "sliding off a held button releases its look";
    Press(false);
    EXPECT_EQ(m_rec.Count(WM_COMMAND), 0);
    EXPECT_EQ(button.State(), 8) << "focused by the press, not pushed";
    EXPECT_FALSE(GetCapture());

    Recorder::Pump(GetDoubleClickTime());  // the next press is no double click
    Step(input::Centre(hwnd));
    m_rec.Only({WM_LBUTTONUP, BM_SETSTATE, WM_COMMAND});
    Press(true);
    Step(Outside());
    Step(input::Centre(hwnd));
    EXPECT_EQ(button.State() & 4, 4) << "sliding back pushes it again";
    Press(false);
    EXPECT_TRUE(m_rec.Matches({{1, BM_SETSTATE, sent | wparam, 1},
                               {1, BM_SETSTATE, sent | wparam, 0},
                               {1, BM_SETSTATE, sent | wparam, 1},
                               {1, WM_LBUTTONUP, posted},
                               {1, BM_SETSTATE, sent | wparam, 0},
                               {0, WM_COMMAND, posted | wparam | lparam, 0x2345, reinterpret_cast<LPARAM>(hwnd)}}));
}

TEST_F(ButtonTest, SpaceKeepsPushedThroughAutoRepeatAndClicksOnKeyUp)
{
    CTestButton button;
    HWND hwnd = Add(button, 9, BS_AUTOCHECKBOX);
    SetFocus(hwnd);
    Recorder::Pump(20);
    // The parent asks for the check value when the command arrives: it must see the final one.
    LRESULT checkAtCommand = -1;
    m_rec.SetHandler([&](HWND, UINT message, WPARAM, LPARAM lParam, LRESULT*) {
        if (message == WM_COMMAND)
            checkAtCommand = SendMessageW(reinterpret_cast<HWND>(lParam), BM_GETCHECK, 0, 0);
        return false;
    });
    m_rec.Only({WM_KEYDOWN, WM_KEYUP, BM_SETSTATE, BM_SETCHECK, WM_COMMAND});
    std::vector<Expected> expected;
    for (int i = 0; i < 3; ++i) {
        input::Key(VK_SPACE, false);
        Recorder::Pump(30);
        EXPECT_EQ(button.State() & 4, 4);
        expected.push_back({1, WM_KEYDOWN, posted | wparam, VK_SPACE});
        expected.push_back({1, BM_SETSTATE, sent | wparam, 1});
    }
    EXPECT_EQ(m_rec.Count(WM_COMMAND), 0);
    input::Key(VK_SPACE, true);
    Recorder::Pump(40);
    expected.insert(expected.end(), {{1, WM_KEYUP, posted | wparam, VK_SPACE},
                                     {1, BM_SETCHECK, sent | wparam, 1},
                                     {1, BM_SETSTATE, sent | wparam, 0},
                                     {0, WM_COMMAND, posted | wparam, 9}});
    EXPECT_TRUE(m_rec.Matches(expected));
    EXPECT_EQ(checkAtCommand, 1);
    EXPECT_EQ(button.State(), 8 | 1) << "focus and checked, no longer pushed";
    // Other keys go on to the earlier procedure.
    EXPECT_EQ(SendMessageW(hwnd, WM_KEYDOWN, VK_RETURN, 0), 0);
    EXPECT_EQ(SendMessageW(hwnd, WM_KEYUP, 'A', 0), 0);
    EXPECT_EQ(button.State(), 8 | 1);
}

// The auto-check step tests bits of the style, not the button type; a double click is a press and a release.
TEST_F(ButtonTest, ClickChecksByStyleBits)
{
    CTestButton twice;
    HWND twiceHwnd = Add(twice, 3, BS_AUTOCHECKBOX);
    Step(input::Centre(twiceHwnd));
    m_rec.Only({WM_LBUTTONDOWN, WM_LBUTTONUP, WM_COMMAND});
    SendMessageW(twiceHwnd, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(40, 20));
    Recorder::Pump(20);
    EXPECT_TRUE(m_rec.Matches({{1, WM_LBUTTONDOWN, sent | lparam, 0, MAKELPARAM(40, 20)},
                               {1, WM_LBUTTONUP, sent | lparam, 0, MAKELPARAM(40, 20)},
                               {0, WM_COMMAND, posted | wparam, 3}}));
    EXPECT_EQ(SendMessageW(twiceHwnd, BM_GETCHECK, 0, 0), 1);
    DestroyWindow(twiceHwnd);

    const struct {
        DWORD style;
        WPARAM before;
        LRESULT after;
    } cases[] = {
        {BS_AUTOCHECKBOX, 0, 1},    {BS_AUTOCHECKBOX, 1, 0}, {BS_AUTOCHECKBOX, 2, 1},  // 2: bit 0 clear
        {BS_OWNERDRAW, 0, 1},       {BS_OWNERDRAW, 1, 0},    {BS_AUTORADIOBUTTON, 1, 1}, {BS_RADIOBUTTON, 0, 1},
        {BS_AUTORADIOBUTTON, 2, 1}, {BS_PUSHBUTTON, 0, 0},   {BS_CHECKBOX, 0, 0},
    };
    for (const auto& c : cases) {
        CTestButton button;
        HWND hwnd = Add(button, 5, c.style);
        SendMessageW(hwnd, BM_SETCHECK, c.before, 0);
        m_rec.Clear();
        Step(input::Centre(hwnd));
        Press(true);
        Press(false);
        EXPECT_EQ(SendMessageW(hwnd, BM_GETCHECK, 0, 0), c.after) << "style " << c.style << " from " << c.before;
        EXPECT_EQ(m_rec.Count(WM_COMMAND, 0), 1) << "style " << c.style;
        EXPECT_EQ(button.State() & 4, 0);
        DestroyWindow(hwnd);
    }
}

TEST_F(ButtonTest, CheckingARadioUnchecksTheRestOfItsGroupOnly)
{
    CTestButton a, b, c, push, next;
    HWND ha = Add(a, 1, BS_AUTORADIOBUTTON | WS_GROUP, "a", {10, 10, 90, 30});
    HWND hb = Add(b, 2, BS_AUTORADIOBUTTON, "b", {10, 40, 90, 60});
    HWND hc = Add(c, 3, BS_RADIOBUTTON, "c", {10, 70, 90, 90});
    // A platform radio button of the same group, and a push button, which the walk skips by its style.
    HWND native = CreateWindowExW(0, L"Button", L"n", WS_CHILD | WS_VISIBLE | BS_RADIOBUTTON, 10, 100, 80, 20, m_parent,
                                  reinterpret_cast<HMENU>(4), GetModuleHandleW(nullptr), nullptr);
    m_rec.Watch(native, "native");
    Add(push, 5, BS_PUSHBUTTON, "push", {10, 130, 90, 150});
    HWND hn = Add(next, 6, BS_AUTORADIOBUTTON | WS_GROUP, "next", {110, 10, 190, 30});
    for (HWND checked : {hb, hn, native})
        SendMessageW(checked, BM_SETCHECK, 1, 0);
    m_rec.Only({BM_SETCHECK});

    SendMessageW(ha, BM_SETCHECK, 1, 0);
    EXPECT_TRUE(m_rec.Matches({{1, BM_SETCHECK, sent | wparam, 1},
                               {2, BM_SETCHECK, sent | wparam, 0},
                               {3, BM_SETCHECK, sent | wparam, 0},
                               {4, BM_SETCHECK, sent | wparam, 0}}));
    EXPECT_EQ(SendMessageW(hb, BM_GETCHECK, 0, 0), 0);
    EXPECT_EQ(SendMessageW(hn, BM_GETCHECK, 0, 0), 1) << "another group is left alone";

    // The indeterminate value sets its bit and walks nothing.
    SendMessageW(hb, BM_SETCHECK, 1, 0);
    m_rec.Clear();
    SendMessageW(hc, BM_SETCHECK, 2, 0);
    EXPECT_TRUE(m_rec.Matches({{3, BM_SETCHECK, sent | wparam, 2}}));
    EXPECT_EQ(c.State() & 3, 2);
    EXPECT_EQ(SendMessageW(hb, BM_GETCHECK, 0, 0), 1);

    // A disabled radio isn't in the platform's cycle: the walk still ends.
    EnableWindow(ha, FALSE);
    SendMessageW(ha, BM_SETCHECK, 1, 0);
    EXPECT_EQ(SendMessageW(hb, BM_GETCHECK, 0, 0), 0);
}

TEST_F(ButtonTest, FocusAndHover)
{
    CTestButton button, other;
    HWND hwnd = Add(button, 1, BS_PUSHBUTTON);
    HWND hother = Add(other, 2, BS_PUSHBUTTON, "other", {120, 20, 200, 60});
    SetFocus(hwnd);
    EXPECT_EQ(button.State(), 8);
    SetFocus(hother);
    EXPECT_EQ(button.State(), 0);
    EXPECT_EQ(other.State(), 8);
    SendMessageW(hwnd, WM_SETFOCUS, reinterpret_cast<WPARAM>(hwnd), 0);
    EXPECT_EQ(button.State(), 0) << "a focus message naming the window itself changes nothing";
    SendMessageW(hother, WM_KILLFOCUS, reinterpret_cast<WPARAM>(hother), 0);
    EXPECT_EQ(other.State(), 8);
    DestroyWindow(hother);

    m_rec.Only({WM_MOUSELEAVE});
    Step(input::Centre(hwnd));
    EXPECT_TRUE(button.Hover());
    EXPECT_TRUE(button.Tracking());
    Step(Outside());
    // The leave is noticed by the window system's tracking timer (the hover time): wait for it, bounded.
    for (int i = 0; i < 100 && button.Hover(); ++i)
        Recorder::Pump(20);
    EXPECT_TRUE(m_rec.Matches({{1, WM_MOUSELEAVE, posted}}));
    EXPECT_FALSE(button.Hover());
    EXPECT_FALSE(button.Tracking());
}

// What each message does to the back buffer: dropped, and repainted with or without erase.
TEST_F(ButtonTest, MessagesDropTheBufferAndRepaint)
{
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        bool drops, erases;
    } cases[] = {
        {WM_ENABLE, TRUE, 0, true, true},
        {WM_SIZE, 0, MAKELPARAM(80, 40), true, true},
        {BM_SETSTATE, 1, 0, true, true},
        {BM_SETCHECK, 1, 0, true, true},
        {WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"new"), true, true},
        {WM_UPDATEUISTATE, MAKEWPARAM(UIS_SET, UISF_HIDEFOCUS), 0, true, false},
        {WM_MOVE, 0, MAKELPARAM(20, 20), false, false},  // not routed: a move keeps the buffer
        {WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0, false, false},
    };
    CTestButton button;
    HWND hwnd = Add(button, 1, BS_PUSHBUTTON);
    m_rec.Only({WM_ERASEBKGND, WM_PAINT});
    for (const auto& c : cases) {
        SCOPED_TRACE(MessageName(c.message));
        RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        ASSERT_TRUE(button.GetBackBuffer());
        const int sizeToContent = button.m_nSizeToContent;
        m_rec.Clear();
        SendMessageW(hwnd, c.message, c.wParam, c.lParam);
        EXPECT_EQ(button.GetBackBuffer() == nullptr, c.drops);
        EXPECT_EQ(GetPropW(hwnd, L"PROP_BACKBUFFER") == nullptr, c.drops);
        UpdateWindow(hwnd);
        EXPECT_EQ(m_rec.Count(WM_PAINT), c.drops ? 1 : 0);
        EXPECT_EQ(m_rec.Count(WM_ERASEBKGND), c.erases ? 1 : 0);
        EXPECT_EQ(button.m_nSizeToContent - sizeToContent, c.message == WM_SETTEXT ? 1 : 0);
    }
    wchar_t text[8] = {};
    GetWindowTextW(hwnd, text, 8);
    EXPECT_STREQ(text, L"new") << "the text went on to the earlier procedure";
}

// The skin status: 0 until checked, IsValid validating once and kept over a new def, the base Validate giving 2.
TEST(SkinBase, StatusRules)
{
    LibraryState lib;
    struct Bare : CVuikBaseSkinImpl<Bare, int> {
    } bare;
    EXPECT_EQ(bare.GetStatus(), 0);
    EXPECT_FALSE(bare.IsValid()) << "a skin that doesn't override Validate is never valid";
    EXPECT_EQ(bare.GetStatus(), 2);

    struct Counting : CTestSkin {
        int validations = 0;
        void Validate() override
        {
            ++validations;
            CTestSkin::Validate();
        }
    } missing, plain;
    missing.SetSkinDef(SkinDef{kNone, kNone, kNone, IDB_TEST_MISSING});
    EXPECT_FALSE(missing.IsValid());
    EXPECT_EQ(missing.GetStatus(), 2);
    missing.SetSkinDef(SkinDef{});
    EXPECT_FALSE(missing.IsValid()) << "a new def counts from the next Load";
    EXPECT_EQ(missing.validations, 1) << "validated once, then the status answers";
    EXPECT_TRUE(plain.IsValid()) << "no ids: nothing can be missing";
}

TEST(WindowBase, SubclassAndUnsubclassKeepTheChain)
{
    LibraryState lib;
    HWND hwnd = CreateWindowExW(0, L"Button", L"b", WS_POPUP | BS_PUSHBUTTON, 0, 0, 50, 20, nullptr, nullptr,
                                GetModuleHandleW(nullptr), nullptr);
    HWND other = CreateWindowExW(0, L"Button", L"o", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
    ASSERT_TRUE(hwnd && other);
    const LONG_PTR buttonProc = GetWindowLongPtrW(hwnd, GWLP_WNDPROC);
    const auto self = [](CTestButton& b) {
        return reinterpret_cast<LONG_PTR>(static_cast<CVuikWindowImpl<CTestSkin>*>(&b));
    };
    {
        CTestButton button;
        EXPECT_FALSE(button.SubclassWindow(nullptr));
        EXPECT_EQ(button.UnsubclassWindow(1), nullptr) << "no window yet";
        ASSERT_TRUE(button.SubclassWindow(hwnd));
        EXPECT_EQ(button.SuperWindowProc(), reinterpret_cast<WNDPROC>(buttonProc));
        EXPECT_EQ(GetWindowLongPtrW(hwnd, GWLP_USERDATA), self(button));
        EXPECT_FALSE(button.SubclassWindow(other)) << "the object already has a live window";
        EXPECT_EQ(button.m_hWnd, hwnd);
        EXPECT_EQ(GetWindowLongPtrW(other, GWLP_USERDATA), 0);

        // Someone else subclasses behind us: a polite unsubclass does nothing, and the chain still works.
        Recorder rec;
        rec.Watch(hwnd, "button");
        EXPECT_EQ(button.UnsubclassWindow(0), nullptr);
        EXPECT_EQ(button.m_hWnd, hwnd);
        SendMessageW(hwnd, BM_SETSTATE, 1, 0);
        EXPECT_EQ(button.State(), 4) << "messages still reach the object through the other subclass";
        EXPECT_EQ(rec.Count(BM_SETSTATE), 1);

        // Forced, it unhooks regardless (the other subclass with it), and the user data keeps the object.
        EXPECT_EQ(button.UnsubclassWindow(1), hwnd);
        EXPECT_EQ(button.m_hWnd, nullptr);
        EXPECT_EQ(GetWindowLongPtrW(hwnd, GWLP_WNDPROC), buttonProc);
        EXPECT_EQ(button.SuperWindowProc(), DefWindowProcW);
        EXPECT_EQ(GetWindowLongPtrW(hwnd, GWLP_USERDATA), self(button));
        SendMessageW(hwnd, BM_SETSTATE, 0, 0);
        EXPECT_EQ(button.State(), 4) << "the object no longer hears the window";
    }
    EXPECT_TRUE(IsWindow(hwnd)) << "an unsubclassed window outlives the object";
    DestroyWindow(hwnd);
    DestroyWindow(other);
}

TEST(WindowBase, CreateFailsCleanlyAndTheButtonDestroysItsWindow)
{
    LibraryState lib;
    CTestButton button;
    EXPECT_EQ(button.Create(L"NoSuchClassAnywhere", nullptr, RECT{0, 0, 10, 10}, L"", 0, WS_POPUP, 0, nullptr),
              nullptr);
    EXPECT_EQ(button.m_hWnd, nullptr);
    HWND hwnd = nullptr;
    {
        CTestButton owned;
        hwnd = owned.Create(nullptr, RECT{0, 0, 10, 10}, 0, WS_POPUP, 0);
        ASSERT_TRUE(hwnd);
        EXPECT_EQ(owned.OwnWindowProc(), reinterpret_cast<WNDPROC>(GetWindowLongPtrW(hwnd, GWLP_WNDPROC)));
    }
    EXPECT_FALSE(IsWindow(hwnd));
}

TEST(WindowBase, DrawItemGoesBackToTheChildsProcedure)
{
    LibraryState lib;
    Recorder rec;
    CTestSkin skin(kRedBlue);
    CTestPanel panel;
    ASSERT_TRUE(panel.CreatePanel(nullptr, RECT{0, 0, 100, 100}, &skin));
    HWND child = rec.CreateParent("child", RECT{10, 10, 50, 50}, panel.m_hWnd);
    SetWindowLongPtrW(child, GWLP_ID, 42);
    rec.Only({WM_DRAWITEM, OCM_DRAWITEM});
    DRAWITEMSTRUCT item = {};
    const LPARAM l = reinterpret_cast<LPARAM>(&item);
    SendMessageW(panel.m_hWnd, WM_DRAWITEM, 42, l);
    SendMessageW(panel.m_hWnd, OCM_DRAWITEM, 42, l);
    SendMessageW(panel.m_hWnd, WM_DRAWITEM, 43, l);  // no such child
    EXPECT_TRUE(rec.Matches(
        {{0, WM_DRAWITEM, sent | wparam | lparam, 42, l}, {0, WM_DRAWITEM, sent | wparam | lparam, 42, l}}));
    DestroyWindow(panel.m_hWnd);
}

}  // namespace
