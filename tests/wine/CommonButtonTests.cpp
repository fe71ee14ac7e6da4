// The common (icon) button and the check and radio button, on the shipped themes' pictures.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "ButtonTestIds.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "MessageSequence.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikCheckButtonCtrl.h"
#include "zcmod/VuikCommonButtonCtrl.h"

using namespace msgseq;
using namespace testskin;

namespace {

// Looks forced from outside, for the pictures of every state.
struct ForcedCommonButton : CVuikCommonButtonCtrl {
    int forced = -1;
    int GetGraphicalState() override { return forced >= 0 ? forced : CVuikCommonButtonCtrl::GetGraphicalState(); }
};
struct HoverCheckButton : CVuikCheckButtonCtrl {  // the hover look without a mouse
    void SetHover(bool on) { m_bHover = on; }
};

class CommonCheckButtons : public ::testing::Test {
protected:
    void SetUp() override
    {
        UseTheme(L"Default");
        m_parent = m_rec.CreateParent("parent", RECT{100, 100, 420, 300});
        SetForegroundWindow(m_parent);
        Recorder::Pump(20);
    }
    void TearDown() override
    {
        input::LeftUp();
        Recorder::Pump(20);
        if (m_parent)
            DestroyWindow(m_parent);
    }
    void UseTheme(const wchar_t* theme)
    {
        m_registry.SetMachineTheme(theme);
        ASSERT_TRUE(ZCMOD_GetCommonZGR()) << "the theme module " << theme;
    }
    // A dialog-like button of the platform's, to be taken over.
    HWND Native(const wchar_t* text, DWORD style, RECT r, UINT id = 50, bool visible = true)
    {
        return CreateWindowExW(0, L"Button", text, WS_CHILD | (visible ? WS_VISIBLE : 0) | style, r.left, r.top,
                               r.right - r.left, r.bottom - r.top, m_parent, reinterpret_cast<HMENU>(UINT_PTR(id)),
                               nullptr, nullptr);
    }

    zcmod_test::SuiteRegistry m_registry;
    LibraryState m_lib;
    Recorder m_rec;
    HWND m_parent = nullptr;
};

// Real input through the seven looks, each drawn from that state's picture. Pushed with the mouse off the
// button looks at rest; disabled wins over every flag.
TEST_F(CommonCheckButtons, CommonButtonStatesFollowInput)
{
    CVuikCommonButtonCtrl button;
    HWND hwnd = button.Create(m_parent, RECT{20, 20, 60, 60}, 7, WS_CHILD | WS_VISIBLE, 0, CommonButtonMedium);
    ASSERT_TRUE(hwnd);
    ASSERT_TRUE(button.SkinIsValid());
    CVuikCommonButtonSkin* skin = button.GetSkin();
    MoveOver(m_parent, 250, 150);
    const struct {
        void (*act)(HWND);
        int state;
        const char* what;
    } steps[] = {
        {[](HWND) {}, CommonNormal, "at rest"},
        {[](HWND h) { MoveOver(h, 16, 16); }, CommonHover, "over"},
        {[](HWND) { input::LeftDown(); Recorder::Pump(30); }, CommonFocusedPressed, "pressed (and focused)"},
        {[](HWND h) { MoveOver(GetParent(h), 250, 150); }, CommonFocused, "dragged off: at rest"},
        {[](HWND h) { MoveOver(h, 16, 16); }, CommonFocusedPressed, "back on"},
        {[](HWND) { input::LeftUp(); Recorder::Pump(40); }, CommonFocusedHover, "released over it"},
        // The leave is seen by the window system's tracking timer (the hover time, 400 ms).
        {[](HWND h) { MoveOver(GetParent(h), 250, 150); Recorder::Pump(600); }, CommonFocused, "mouse off"},
        {[](HWND) { input::Key(VK_SPACE, false); Recorder::Pump(30); }, CommonFocused, "Space held, mouse off: at rest"},
        {[](HWND) { input::Key(VK_SPACE, true); Recorder::Pump(30); }, CommonFocused, "Space released"},
        {[](HWND h) { MoveOver(h, 10, 10); }, CommonFocusedHover, "over, focused"},
        {[](HWND h) { SetFocus(GetParent(h)); }, CommonHover, "focus gone"},
        {[](HWND h) { SendMessageW(h, BM_SETSTATE, 1, 0); EnableWindow(h, FALSE); }, CommonDisabled, "disabled"},
    };
    for (const auto& step : steps) {
        step.act(hwnd);
        const Capture shown = Shown(hwnd);
        EXPECT_EQ(button.GetGraphicalState(), step.state) << step.what;
        // The state's picture as loaded; drawn through the mask's blend, an opaque pixel may come out one step off.
        CVuikBitmap* picture = skin->GetStateSkin(step.state).GetBackgroundBitmap();
        EXPECT_TRUE(zcmod_test::Near(shown.At(16, 4), ReadBitmap(picture->GetPrimary()).At(16, 4), 3)) << step.what;
    }
}

// A larger window than the theme's size shows its parent in the rest. A disabled icon of its own; right to left
// an icon turns unless told not to (the left piece's white corner shows which way it faces).
TEST_F(CommonCheckButtons, CommonButtonSizesAndIcons)
{
    {  // gone before the layout changes: the pictures it holds were loaded left to right
        CVuikCommonButtonCtrl button;
        HWND hwnd = button.Create(m_parent, RECT{10, 10, 100, 100}, 1, WS_CHILD | WS_VISIBLE, 0, CommonButtonSmall);
        EXPECT_EQ(CVuikLib::GetResourceInstance(), GetModuleHandleW(nullptr)) << "the resource instance is put back";
        MoveWindow(hwnd, 10, 10, 34, 24, TRUE);
        const Capture shown = Shown(hwnd);
        EXPECT_EQ(shown.At(29, 12), shown.At(32, 2)) << "the parent's, not the skin's";
        button.SetButtonIcon(IDB_BUTTON_GLYPH, IDB_BUTTON_LEFT, 0);
        const CVuikCommonButtonSkinDef def = *button.GetSkin();
        EXPECT_EQ(def.m_States[CommonDisabled].m_nIconId, static_cast<UINT>(IDB_BUTTON_LEFT));
        EXPECT_EQ(def.m_States[CommonFocusedHover].m_nIconId, static_cast<UINT>(IDB_BUTTON_GLYPH));
    }

    const struct {
        DWORD layout;
        int noMirror;
        bool whiteAtLeft;  // of the icon as shown
    } cases[] = {{0, 0, true}, {0, 1, true}, {1, 0, false}, {1, 1, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "layout " << c.layout << " no mirror " << c.noMirror);
        CVuikLib::SetLayout(c.layout);
        CVuikCommonButtonCtrl icon;
        HWND hwnd = icon.Create(m_parent, RECT{60, 10, 100, 50}, 2, WS_CHILD | WS_VISIBLE, 0, CommonButtonLarge);
        icon.SetButtonIcon(IDB_BUTTON_LEFT, static_cast<UINT>(-1), c.noMirror);
        const Capture shown = Shown(hwnd);
        // The 4 x 20 icon sits at x 18..21, y 10..29 of the 40 x 40 face.
        EXPECT_EQ(shown.At(18, 10) == 0xFFFFFF, c.whiteAtLeft);
        EXPECT_EQ(shown.At(21, 10) == 0xFFFFFF, !c.whiteAtLeft);
        DestroyWindow(hwnd);
        CVuikLib::SetLayout(0);
    }
}

// A taken-over common button keeps the text itself (the platform window holds none) and gives it back.
TEST_F(CommonCheckButtons, CommonButtonKeepsTheWindowText)
{
    HWND hwnd = Native(L"Close window", BS_PUSHBUTTON | BS_AUTORADIOBUTTON, RECT{10, 10, 90, 40});
    wchar_t text[64] = {};
    {
        CVuikCommonButtonCtrl button;
        ASSERT_TRUE(button.SubclassWindow(hwnd, CommonButtonSmall));
        EXPECT_EQ(GetWindowLongW(hwnd, GWL_STYLE) & 0xB, 0) << "the button type bits go (bit 2 stays)";
        EXPECT_TRUE(GetWindowLongW(hwnd, GWL_EXSTYLE) & WS_EX_NOPARENTNOTIFY);
        EXPECT_EQ(GetWindowTextW(hwnd, text, 64), 12);
        EXPECT_STREQ(text, L"Close window");
        EXPECT_EQ(InternalGetWindowText(hwnd, text, 64), 0) << "the platform window keeps no text";
        EXPECT_EQ(SendMessageW(hwnd, WM_GETTEXT, 6, reinterpret_cast<LPARAM>(text)), 12) << "the whole length";
        EXPECT_STREQ(text, L"Close");
        EXPECT_EQ(SendMessageW(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"Shut")), 1);
        EXPECT_EQ(GetWindowTextLengthW(hwnd), 4);
        EXPECT_EQ(InternalGetWindowText(hwnd, text, 64), 0);
        EXPECT_EQ(button.UnsubclassWindow(1), hwnd);
    }
    EXPECT_EQ(InternalGetWindowText(hwnd, text, 64), 4);
    EXPECT_STREQ(text, L"Shut");
}

// The style bits pick the check or radio marks and the height is the mark's plus 2; the focus rectangle goes
// round everything; multi-line text wraps and the button grows by its measuring.
TEST_F(CommonCheckButtons, CheckButtonStylesFocusAndSizing)
{
    const struct {
        DWORD style;
        UINT firstId;
    } cases[] = {
        {BS_CHECKBOX, 5100}, {BS_AUTOCHECKBOX, 5100}, {BS_AUTO3STATE, 5100}, {BS_RADIOBUTTON, 5106},
        {BS_3STATE, 5106},   {BS_AUTORADIOBUTTON, 5106}, {BS_PUSHBUTTON, 5100},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "style " << c.style);
        CVuikCheckButtonCtrl check;
        ASSERT_TRUE(check.SubclassWindow(Native(L"Remember me", c.style, RECT{10, 10, 200, 30})));
        const CVuikCheckButtonSkinDef def = *check.GetSkin();
        EXPECT_EQ(def.m_States[0].m_nBitmapId, c.firstId);
        EXPECT_TRUE(check.SkinIsValid());
        RECT r;
        GetClientRect(check.m_hWnd, &r);
        EXPECT_EQ(r.bottom, 16 + 2);
        EXPECT_GT(r.right, 16 + 10 + 40);
        const Capture unfocused = Shown(check.m_hWnd);
        SetFocus(check.m_hWnd);
        const Capture focused = Shown(check.m_hWnd);
        EXPECT_NE(focused.pixels, unfocused.pixels) << "the focus rectangle";
        EXPECT_EQ(focused.At(9, 9), unfocused.At(9, 9));
    }

    CVuikCheckButtonCtrl multi;
    ASSERT_TRUE(multi.SubclassWindow(Native(L"A longer text that wraps over several lines of the button",
                                            BS_AUTOCHECKBOX | BS_MULTILINE, RECT{10, 40, 130, 60})));
    EXPECT_TRUE(multi.IsMultiline());
    RECT r;
    GetClientRect(multi.m_hWnd, &r);
    EXPECT_GE(r.bottom, 2 * 17 + 6) << "wrapped over several lines of a 14-pixel font, plus 6";
    for (int i = 0, width = r.right; i < 3; ++i, width = r.right) {
        multi.SizeToContent();
        GetClientRect(multi.m_hWnd, &r);
        EXPECT_GE(r.right, width) << "measured in its own width, it never shrinks";
        EXPECT_LE(r.right, width + 6) << "and grows by at most 6";
    }
}

// Every look of both families, in both themes and layouts (right to left a check button mirrors whole).
TEST_F(CommonCheckButtons, Golden)
{
    DestroyWindow(m_parent);
    for (const Look& look : kLooks) {
        UseTheme(look.theme);
        CVuikLib::SetLayout(look.rtl);
        // The controls stand on a panel of the theme's window colour, whose buffer lies behind them.
        CTestSkin panelSkin(SkinDef{DkhLoadColor(nullptr, ZGR_COLOR_WINDOW), DkhLoadColor(nullptr, ZGR_COLOR_WINDOW)});
        CTestPanel panel;
        panel.CreatePanel(nullptr, RECT{100, 100, 460, 340}, &panelSkin);
        m_parent = panel.m_hWnd;
        UpdateWindow(m_parent);
        const int width = 7 * 44 + 4, height = 3 * 44 + 2 * 22 + 4;
        Sheet sheet(width, height, 0x808080);
        const auto paste = [&](HWND hwnd, int x0, int y0) { sheet.Paste(Shown(hwnd), x0, y0); };
        const ECommonButtonSize sizes[] = {CommonButtonSmall, CommonButtonMedium, CommonButtonLarge};
        for (int row = 0; row < 3; ++row)
            for (int state = 0; state < CommonStateCount; ++state) {
                ForcedCommonButton button;
                button.forced = state;
                HWND hwnd = button.Create(m_parent, RECT{4, 4, 44, 44}, 1, WS_CHILD | WS_VISIBLE, 0, sizes[row]);
                button.SetButtonIcon(IDB_BUTTON_GLYPH, static_cast<UINT>(-1), 0);
                paste(hwnd, 4 + state * 44, 4 + row * 44);
            }
        for (int kind = 0; kind < 2; ++kind)
            for (int state = 0; state < CheckStateCount; ++state) {
                HoverCheckButton check;
                HWND hwnd = Native(L"Tick", kind ? BS_AUTORADIOBUTTON : BS_AUTOCHECKBOX, RECT{4, 140, 60, 160});
                check.SubclassWindow(hwnd);
                check.SetCheck(state >= CheckCheckedDisabled ? 1 : 0);
                check.SetHover(state % 3 == 2);
                EnableWindow(hwnd, state % 3 != 0);
                MoveWindow(hwnd, 4, 140, 48, 20, FALSE);
                paste(hwnd, 4 + state * 50, 4 + 3 * 44 + kind * 22);
            }
        EXPECT_TRUE(zcmod_test::MatchesGolden("common_check_" + look.Suffix(), width, height, sheet.pixels.data(), 8));
        CVuikLib::SetLayout(0);
        DestroyWindow(m_parent);
        m_parent = nullptr;
    }
}

// 3,000 changes of state and 300 lives leave nothing behind (a leak shows hundreds of times). Hidden windows: a
// paint builds the buffer without the display. A kept control of each kind holds the theme's shared pictures.
TEST_F(CommonCheckButtons, HandleHygiene)
{
    zcmod_test::HandleCounter counter;
    CVuikCommonButtonCtrl common;
    HWND hc = common.Create(m_parent, RECT{10, 10, 40, 40}, 1, WS_CHILD, 0, CommonButtonSmall);
    common.SetTooltip(L"tip");
    CVuikCheckButtonCtrl check, radio;
    check.SubclassWindow(Native(L"check", BS_AUTOCHECKBOX, RECT{50, 10, 150, 30}, 2, false));
    radio.SubclassWindow(Native(L"radio", BS_AUTORADIOBUTTON, RECT{50, 40, 150, 60}, 3, false));
    HWND windows[] = {hc, check.m_hWnd, radio.m_hWnd};
    const auto changeStates = [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            HWND hwnd = windows[i % 3];
            const int step = i / 3 % 4;
            SendMessageW(hwnd, step == 1 ? WM_SETFOCUS : step == 3 ? WM_KILLFOCUS : WM_NULL, 0, 0);
            SendMessageW(hwnd, BM_SETCHECK, step == 0, 0);
            SendMessageW(hwnd, BM_SETSTATE, step == 1, 0);
            EnableWindow(hwnd, step != 2);
            if (i % 15 >= 12)  // one change in five is painted
                SendMessageW(hwnd, WM_PAINT, 0, 0);
        }
        for (HWND hwnd : windows)
            SendMessageW(hwnd, WM_PAINT, 0, 0);
    };
    changeStates(60);
    ASSERT_TRUE(common.SkinIsValid() && check.SkinIsValid() && radio.SkinIsValid());
    auto before = counter.Live();
    changeStates(3000);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " / " << before.ToString();

    const auto lives = [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            CVuikCommonButtonCtrl a;
            HWND ha = a.Create(m_parent, RECT{10, 60, 40, 90}, 4, WS_CHILD, 0, CommonButtonSmall);
            a.SetTooltip(L"a");
            CVuikCheckButtonCtrl b;
            b.SubclassWindow(Native(L"b", BS_AUTOCHECKBOX, RECT{50, 70, 150, 90}, 5, false));
            if (i % 10 == 0 || i + 1 == rounds) {
                SendMessageW(ha, WM_PAINT, 0, 0);
                SendMessageW(b.m_hWnd, WM_PAINT, 0, 0);
            }
        }
    };
    lives(1);
    changeStates(0);  // the kept controls' buffers built again before each count
    before = counter.Live();
    lives(300);
    changeStates(0);
    // At most as many of each kind: a shared working bitmap of the drawing code may have gone in between.
    const auto after = counter.Live();
    for (int kind = 0; kind < zcmod_test::HandleCounter::KindCount; ++kind)
        EXPECT_LE(after.n[kind], before.n[kind]) << after.ToString() << " / " << before.ToString();
}

}  // namespace
