// The plain skinned buttons (CVuikButtonCtrl, CVuikButtonCtrl2) on a skinned panel that reflects their owner
// drawing. (The window base's own state logic is tested with its test button.)
#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include "ButtonTestIds.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "MessageSequence.h"
#include "TestSkins.h"
#include "zcmod/VuikButtonCtrl.h"

using namespace msgseq;
using namespace testskin;

namespace {

const uint32_t kGreen = 0x00FF00, kCyan = 0x00FFFF, kOrange = 0xFF8000;

CVuikButtonStateSkinDef Def(UINT left, UINT middle, UINT right, UINT image = 0, int align = 1)
{
    CVuikButtonStateSkinDef d = CVuikButtonSkin::GetDefaultSkinDef().m_States[ButtonNormal];
    d.m_nLeftBitmapId = left;
    d.m_nMiddleBitmapId = middle;
    d.m_nRightBitmapId = right;
    d.m_nImageBitmapId = image;
    d.m_nImageAlign = align;
    d.m_nOffsetX = d.m_nOffsetY = 0;
    return d;
}
CVuikButtonStateSkinDef Frames(UINT last, int time)
{
    CVuikButtonStateSkinDef d = Def(0, IDB_BUTTON_MIDDLE, 0, IDB_BUTTON_GLYPH, 2);
    d.m_nFirstFrameId = IDB_BUTTON_FRAME_FIRST;
    d.m_nLastFrameId = last;
    d.m_nFrameTime = time;
    return d;
}

// Each state told apart at column 1, the centre (the glyph) and the last column.
CVuikButtonSkinDef FourLooks()
{
    CVuikButtonSkinDef def;
    def.m_States[ButtonNormal] = Def(0, IDB_BUTTON_MIDDLE, 0);
    def.m_States[ButtonPressed] = Def(IDB_BUTTON_LEFT, IDB_BUTTON_MIDDLE, IDB_BUTTON_RIGHT);
    def.m_States[ButtonHover] = Def(0, 0, IDB_BUTTON_RIGHT);
    def.m_States[ButtonDisabled] = Def(0, IDB_BUTTON_MIDDLE, 0, IDB_BUTTON_GLYPH, 2);
    return def;
}

class ButtonFamily : public ::testing::Test {
public:
    void SetUp() override
    {
        m_panelSkin.SetSkinDef(SkinDef{RGB(0x28, 0x3C, 0x50), RGB(200, 200, 200)});
        ASSERT_TRUE(m_panel.CreatePanel(nullptr, RECT{100, 100, 400, 260}, &m_panelSkin));
        m_rec.Watch(m_panel.m_hWnd, "panel");
        SetForegroundWindow(m_panel.m_hWnd);
        m_skin.SetSkinDef(FourLooks());
        m_skin.Load();
        ASSERT_TRUE(m_skin.IsValid());
        Recorder::Pump(20);
    }
    void TearDown() override
    {
        input::LeftUp();
        Recorder::Pump(20);
        DestroyWindow(m_panel.m_hWnd);
    }

    HWND Add(CVuikButtonCtrlBase& button, UINT id, DWORD style, RECT rect = {20, 20, 61, 40},
             DWORD visible = WS_VISIBLE)
    {
        HWND hwnd = button.Create(m_panel.m_hWnd, rect, id, WS_CHILD | visible | style, 0);
        button.SetSkin(&m_skin);
        if (visible)
            UpdateWindow(hwnd);
        return hwnd;
    }
    void MoveAway() const { MoveOver(m_panel.m_hWnd, 250, 120); }

    LibraryState m_lib;
    CTestSkin m_panelSkin;
    CTestPanel m_panel;
    CVuikButtonSkin m_skin;
    Recorder m_rec;
};

// Where the glyph goes, by its code, after the offsets, with its sides kept off the end pieces. The pieces are
// drawn at their own height (20 rows), not stretched to the button's. (The golden pins the middle's tiling.)
TEST_F(ButtonFamily, ImagePlacementByCode)
{
    const int w = 41, h = 21;  // glyph 8 x 6; left end 4, right end 6 wide
    const struct {
        int align, dx, dy;
        bool ends;
        RECT image, caption;
    } cases[] = {
        {2, 0, 0, false, {16, 7, 24, 13}, {0, 0, 41, 21}},
        {4, 0, 0, true, {4, 7, 12, 13}, {12, 0, 35, 21}},
        {8, 0, 0, true, {16, 0, 24, 6}, {4, 6, 35, 21}},
        {16, 0, 0, true, {27, 7, 35, 13}, {4, 0, 27, 21}},
        {32, 0, 0, false, {16, 15, 24, 21}, {0, 0, 41, 15}},
        {4, -3, 2, true, {4, 9, 9, 15}, {6, 2, 32, 23}},    // pushed left into the end: squeezed, not moved
        {16, 5, 0, true, {32, 7, 35, 13}, {9, 0, 37, 21}},  // and right
        {1, 0, 0, true, {4, 0, 35, 21}, {4, 0, 35, 21}},    // caption only: no image placed
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "code " << c.align << " dx " << c.dx);
        CVuikButtonStateSkin skin;
        CVuikButtonStateSkinDef def = c.ends ? Def(IDB_BUTTON_LEFT, IDB_BUTTON_MIDDLE, IDB_BUTTON_RIGHT,
                                                   IDB_BUTTON_GLYPH, c.align)
                                             : Def(0, 0, 0, IDB_BUTTON_GLYPH, c.align);
        def.m_nOffsetX = c.dx;
        def.m_nOffsetY = c.dy;
        skin.SetSkinDef(def);
        skin.Load();
        Canvas canvas(w, h, [](int, int) { return 0x123456u; });
        CVuikGraphics graphics(canvas);
        skin.Draw(nullptr, &graphics, w, h);
        EXPECT_EQ(canvas.Read().At(2, 20), 0x123456u) << "pieces at their own height";
        const RECT image = skin.GetImageRect(), caption = skin.GetCaptionRect();
        EXPECT_TRUE(EqualRect(&image, &c.image)) << image.left << "," << image.top << "," << image.right << ","
                                                 << image.bottom;
        EXPECT_TRUE(EqualRect(&caption, &c.caption)) << caption.left << "," << caption.top << "," << caption.right
                                                     << "," << caption.bottom;
    }
}

// Only Normal and Pressed count for validity; a frame run needs a frame and a frame time.
TEST_F(ButtonFamily, SkinValidity)
{
    CVuikButtonStateSkinDef noFrames = Frames(IDB_BUTTON_MISSING, 50);
    noFrames.m_nFirstFrameId = IDB_BUTTON_MISSING;
    const CVuikButtonStateSkinDef missing = Def(0, IDB_BUTTON_MISSING, 0), good = Def(0, IDB_BUTTON_MIDDLE, 0);
    const struct {
        CVuikButtonStateSkinDef normal, pressed, hover;
        bool valid;
        UINT hoverFrames;
    } cases[] = {
        {good, good, missing, true, 0},  // a fault in Hover shows only when Hover is drawn
        {missing, good, good, false, 0},
        {good, missing, good, false, 0},
        {good, good, Frames(IDB_BUTTON_FRAME_LAST + 20, 50), true, 3},
        {good, Frames(IDB_BUTTON_FRAME_LAST, 0), good, false, 0},
        {good, noFrames, good, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CVuikButtonSkin skin;
        CVuikButtonSkinDef def = skin;
        def.m_States[ButtonNormal] = c.normal;
        def.m_States[ButtonPressed] = c.pressed;
        def.m_States[ButtonHover] = c.hover;
        def.m_States[ButtonDisabled] = missing;
        skin.SetSkinDef(def);
        skin.Load();
        EXPECT_EQ(skin.IsValid(), c.valid);
        EXPECT_EQ(skin.GetStateSkin(ButtonHover).GetFrameCount(), c.hoverFrames);
    }
}

// Styles classify by bits and become owner-drawn; a push button never holds a check mark; taking over a
// button that is already owner-drawn makes a check button.
TEST_F(ButtonFamily, ClassificationAndCheckMarks)
{
    const struct {
        DWORD style;
        int kind;
        LRESULT checkAfterSet;
    } cases[] = {
        {BS_PUSHBUTTON, 0, 0},  {BS_DEFPUSHBUTTON, 0, 0},   {BS_CHECKBOX, 0, 0},    {BS_AUTOCHECKBOX, 2, 1},
        {BS_RADIOBUTTON, 0, 0}, {BS_AUTORADIOBUTTON, 4, 1}, {BS_AUTO3STATE, 0, 0},  {BS_OWNERDRAW, 2, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "style " << c.style);
        CVuikButtonCtrl button;
        HWND hwnd = Add(button, 7, c.style);
        EXPECT_EQ(button.GetButtonKind(), c.kind);
        EXPECT_EQ(GetWindowLongW(hwnd, GWL_STYLE) & 0xF, static_cast<LONG>((c.style | BS_OWNERDRAW) & 0xF));
        SendMessageW(hwnd, BM_SETCHECK, BST_CHECKED, 0);
        EXPECT_EQ(SendMessageW(hwnd, BM_GETCHECK, 0, 0), c.checkAfterSet);
        DestroyWindow(hwnd);
    }
    HWND plain = CreateWindowExW(0, L"Button", L"p", WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, 10, 60, 40, 20,
                                 m_panel.m_hWnd, reinterpret_cast<HMENU>(9), nullptr, nullptr);
    CVuikButtonCtrl first, second;
    ASSERT_TRUE(first.SubclassWindow(plain));
    EXPECT_EQ(first.GetButtonKind(), 0);
    EXPECT_EQ(GetWindowLongW(plain, GWL_STYLE) & (WS_CLIPSIBLINGS | WS_CLIPCHILDREN | 0xF),
              WS_CLIPSIBLINGS | WS_CLIPCHILDREN | BS_OWNERDRAW);
    first.UnsubclassWindow(1);
    ASSERT_TRUE(second.SubclassWindow(plain));
    EXPECT_EQ(second.GetButtonKind(), 2);
}

// Real mouse input: a release off the button neither clicks nor checks; a click does both. (The golden pins the
// look of each state.)
TEST_F(ButtonFamily, MouseStatesAndDragOff)
{
    CVuikButtonCtrl button;
    HWND hwnd = Add(button, 0x21, BS_AUTOCHECKBOX);
    MoveAway();
    m_rec.Only({WM_COMMAND});
    const struct {
        void (*act)(ButtonFamily&, HWND);
        EButtonState state;
        const char* what;
    } steps[] = {
        {[](ButtonFamily&, HWND h) { MoveOver(h, 20, 10); }, ButtonHover, "over"},
        {[](ButtonFamily&, HWND) { input::LeftDown(); Recorder::Pump(30); }, ButtonPressed, "pressed"},
        {[](ButtonFamily& t, HWND) { t.MoveAway(); }, ButtonNormal, "dragged off"},
        {[](ButtonFamily&, HWND) { input::LeftUp(); Recorder::Pump(40); }, ButtonNormal, "released off"},
        {[](ButtonFamily&, HWND h) { Recorder::Pump(GetDoubleClickTime()); MoveOver(h, 20, 10); }, ButtonHover, "back"},
        {[](ButtonFamily&, HWND) { input::LeftDown(); Recorder::Pump(30); }, ButtonPressed, "pressed over"},
        {[](ButtonFamily&, HWND) { input::LeftUp(); Recorder::Pump(40); }, ButtonPressed, "clicked: checked"},
    };
    for (const auto& step : steps) {
        step.act(*this, hwnd);
        EXPECT_EQ(button.GetState(), step.state) << step.what;
    }
    EXPECT_TRUE(m_rec.Matches({{0, WM_COMMAND, sent | wparam | lparam, MAKEWPARAM(0x21, BN_CLICKED),
                                reinterpret_cast<LPARAM>(hwnd)}})) << "one click: the release over the button";
}

// Checking a radio button clears the others of its group later, by posted messages; another group stays.
TEST_F(ButtonFamily, RadioGroupClearedByPostedMessages)
{
    CVuikButtonCtrl a, b, c, other;
    HWND ha = Add(a, 1, BS_AUTORADIOBUTTON | WS_GROUP, {10, 10, 50, 30});
    HWND hb = Add(b, 2, BS_AUTORADIOBUTTON, {10, 40, 50, 60});
    HWND hc = Add(c, 3, BS_AUTORADIOBUTTON, {10, 70, 50, 90});
    HWND ho = Add(other, 4, BS_AUTORADIOBUTTON | WS_GROUP, {60, 10, 100, 30});
    for (HWND h : {hb, hc, ho})
        SendMessageW(h, BM_SETCHECK, 1, 0);
    // Those checks told the others of their groups too: drop that news, so all three stay checked.
    MSG pending;
    while (PeekMessageW(&pending, nullptr, WM_VUIK_RADIOINFO, WM_VUIK_RADIOINFO, PM_REMOVE)) {
    }
    for (HWND h : {ha, hb, hc})
        m_rec.Watch(h, "radio");
    m_rec.Only({WM_VUIK_RADIOINFO});
    SendMessageW(ha, BM_SETCHECK, 1, 0);
    EXPECT_EQ(SendMessageW(hb, BM_GETCHECK, 0, 0), 1) << "not yet: the clear is posted";
    Recorder::Pump(20);
    EXPECT_TRUE(m_rec.Matches({{2, WM_VUIK_RADIOINFO, posted}, {3, WM_VUIK_RADIOINFO, posted}}));
    for (auto [h, checked] : {std::make_pair(ha, 1), std::make_pair(hb, 0), std::make_pair(hc, 0), std::make_pair(ho, 1)})
        EXPECT_EQ(SendMessageW(h, BM_GETCHECK, 0, 0), checked);
}

// CVuikButtonCtrl draws the focus rectangle while reactive; a focused CVuikButtonCtrl2's paint drops its
// tooltip window and buffer. One tooltip window, its text replaced in place; a release is relayed twice.
TEST_F(ButtonFamily, FocusRectangleTooltipAndTheSecondButtonsQuestion)
{
    CVuikButtonCtrl one;
    CVuikButtonCtrl2 two;
    HWND h1 = Add(one, 1, BS_PUSHBUTTON);
    HWND h2 = Add(two, 2, BS_PUSHBUTTON, {80, 20, 121, 40});
    one.SetToolTipText(L"first");
    two.SetToolTipText(L"two");
    HWND tip1 = one.GetToolTipWindow(), tip2 = two.GetToolTipWindow();
    ASSERT_TRUE(IsWindow(tip1) && IsWindow(tip2));
    one.SetToolTipText(L"second");
    EXPECT_EQ(one.GetToolTipWindow(), tip1) << "no new window for a new text";
    wchar_t text[32] = {};
    TOOLINFOW tool = {};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_IDISHWND;
    tool.hwnd = m_panel.m_hWnd;
    tool.uId = reinterpret_cast<UINT_PTR>(h1);
    tool.lpszText = text;
    SendMessageW(tip1, TTM_GETTEXTW, 32, reinterpret_cast<LPARAM>(&tool));
    EXPECT_STREQ(text, L"second");
    m_rec.Watch(tip1, "tip");
    m_rec.Only({TTM_RELAYEVENT});
    SendMessageW(h1, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    SendMessageW(h1, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(m_rec.Count(TTM_RELAYEVENT), 3) << "one for the press, two for the release";

    SetFocus(h1);
    Capture c = Shown(h1);
    EXPECT_TRUE(c.At(20, 2) != kGreen || c.At(21, 2) != kGreen) << "the focus rectangle runs two pixels inside the top";
    EXPECT_EQ(c.At(20, 1), kGreen);
    one.SetFocusReactive(false);
    c = Shown(h1);
    EXPECT_EQ(c.At(c.width / 2, 2), c.At(c.width / 2, 5)) << "no rectangle when not reactive";
    EXPECT_TRUE(IsWindow(tip1));

    SetFocus(h2);
    Shown(h2);
    EXPECT_FALSE(IsWindow(tip2)) << "the paint of a focused CVuikButtonCtrl2 destroys its tooltip window";
    EXPECT_EQ(two.GetToolTipWindow(), nullptr);
    EXPECT_EQ(two.GetBackBuffer(), nullptr);
}

// A state's frames follow each other one frame time apart, and a change of state starts again at the first.
TEST_F(ButtonFamily, FrameAnimationRestartsWithTheState)
{
    CVuikButtonSkinDef def = FourLooks();
    def.m_States[ButtonHover] = Frames(IDB_BUTTON_FRAME_LAST, 300);
    m_skin.SetSkinDef(def);
    m_skin.Load();
    CVuikButtonCtrl button;
    HWND hwnd = Add(button, 1, BS_PUSHBUTTON);
    const auto frameColour = [&] {
        const RECT r = m_skin.GetStateSkin(ButtonHover).GetImageRect();
        return CaptureWindow(hwnd).At(r.left + 2, r.top + 2);
    };
    MoveOver(hwnd, 20, 10);
    Recorder::Pump(60);
    EXPECT_EQ(button.GetState(), ButtonHover);
    EXPECT_EQ(frameColour(), kCyan) << "the first frame, a millisecond after the paint";
    Recorder::Pump(360);
    EXPECT_EQ(frameColour(), kOrange) << "the second, one frame time later";
    MoveAway();
    for (int i = 0; i < 100 && button.GetState() == ButtonHover; ++i)
        Recorder::Pump(20);
    MoveOver(hwnd, 20, 10);
    Recorder::Pump(60);
    EXPECT_EQ(frameColour(), kCyan) << "back in the state: the first frame again";
}

// CVuikButtonCtrl sizes to its pieces; CVuikButtonCtrl2 by its flags (minimum width: text plus the ends).
TEST_F(ButtonFamily, SizeToContent)
{
    CVuikButtonCtrl one;
    HWND h1 = Add(one, 1, BS_PUSHBUTTON, {10, 10, 110, 50});
    one.SizeToContent();
    RECT r;
    GetClientRect(h1, &r);
    EXPECT_EQ(r.right, 100) << "the width stays";
    EXPECT_EQ(r.bottom, 20) << "the middle piece's height";

    CVuikButtonCtrl2 two;
    HWND h2 = Add(two, 2, BS_PUSHBUTTON, {100, 60, 200, 100});
    SetWindowTextW(h2, L"Sized");
    EXPECT_EQ(two.GetMinHeight(), 20);
    const int text = two.GetMinWidth();
    EXPECT_GT(text, 10);
    CVuikButtonSkinDef def = FourLooks();
    def.m_States[ButtonNormal] = Def(IDB_BUTTON_LEFT, IDB_BUTTON_MIDDLE, IDB_BUTTON_RIGHT);
    CVuikButtonSkin ends;
    ends.SetSkinDef(def);
    ends.Load();
    two.SetSkin(&ends);
    EXPECT_EQ(two.GetMinWidth(), text + 4 + 20);
    const struct {
        int flags, maxWidth;
        RECT expected;  // in the panel
    } cases[] = {
        {1, -1, {100, 60, 200, 80}},      {2, -1, {100, 60, 100 + text + 24, 100}}, {2, 30, {100, 60, 130, 100}},
        {6, 30, {170, 60, 200, 100}},  // the right edge stays
        {4, -1, {100, 60, 200, 100}},  // 4 alone does nothing
    };
    for (const auto& c : cases) {
        MoveWindow(h2, 100, 60, 100, 40, FALSE);
        two.SizeToContent(c.flags, c.maxWidth);
        GetWindowRect(h2, &r);
        MapWindowPoints(nullptr, m_panel.m_hWnd, reinterpret_cast<POINT*>(&r), 2);
        EXPECT_TRUE(EqualRect(&r, &c.expected)) << "flags " << c.flags << ": " << r.left << "," << r.right;
    }
    two.SetSkin(&m_skin);
}

// The four looks side by side, in both layouts (the region cuts the pieces' white corners, mirrored too). The
// disabled one is also checked: disabled wins, as checked wins over normal in the second.
TEST_F(ButtonFamily, Golden)
{
    m_skin.Unload();  // the pictures load anew in each layout
    for (DWORD layout : {0u, 1u}) {
        CVuikLib::SetLayout(layout);
        CVuikButtonSkin skin;
        skin.SetSkinDef(FourLooks());
        skin.Load();
        CVuikButtonCtrl buttons[4];
        const int w = 41, h = 20;
        Sheet sheet(w * 4, h);
        for (int i = 0; i < 4; ++i) {
            HWND hwnd = Add(buttons[i], 10 + i, i % 2 ? BS_AUTOCHECKBOX : BS_PUSHBUTTON,
                            RECT{10 + i * 50, 20, 10 + i * 50 + w, 20 + h});
            buttons[i].SetSkin(&skin);
            SetWindowTextW(hwnd, L"Ok");
            SendMessageW(hwnd, BM_SETCHECK, i % 2, 0);
            EnableWindow(hwnd, i != 3);
        }
        MoveOver(buttons[2].m_hWnd, 20, 10);  // hover by a real move, for the leave tracking
        for (int i = 0; i < 4; ++i) {
            const Capture c = Shown(buttons[i].m_hWnd);
            ASSERT_EQ(c.width, w);
            sheet.Paste(c, i * w, 0);
        }
        MoveAway();
        EXPECT_TRUE(zcmod_test::MatchesGolden(layout ? "button_family_rtl" : "button_family_ltr", w * 4, h,
                                              sheet.pixels.data(), 8));
    }
}

// 10,000 changes of state and 1,000 lives leave nothing behind. Hidden buttons: a paint builds the buffer
// without the display; a build costs ~3 ms, so only some are painted. The second button of a life animates.
TEST_F(ButtonFamily, HandleHygiene)
{
    zcmod_test::HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    const auto paint = [](HWND hwnd) { SendMessageW(hwnd, WM_PAINT, 0, 0); };
    CVuikButtonCtrl one;
    CVuikButtonCtrl2 two;
    HWND kept[] = {Add(one, 1, BS_AUTOCHECKBOX, {20, 20, 61, 40}, 0), Add(two, 2, BS_AUTOCHECKBOX, {80, 20, 121, 40}, 0)};
    one.SetToolTipText(L"tip");
    two.SetToolTipText(L"tip");
    const auto changeStates = [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            HWND hwnd = kept[i & 1];
            const int step = i / 2 % 4;
            // A focused CVuikButtonCtrl2's paint drops its buffer; disabling takes the focus again.
            if (step == 1 && hwnd == kept[1])
                SetFocus(hwnd);
            SendMessageW(hwnd, BM_SETCHECK, step == 0, 0);
            SendMessageW(hwnd, BM_SETSTATE, step == 1, 0);
            EnableWindow(hwnd, step != 2);
            if (i % 10 >= 8)
                paint(hwnd);
        }
        for (HWND hwnd : kept)
            paint(hwnd);
    };
    changeStates(40);
    ASSERT_TRUE(one.GetBackBuffer() && two.GetBackBuffer()) << "a paint of a hidden button builds its buffer";
    auto before = counter.Live();
    changeStates(10000);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " / " << before.ToString();

    CVuikButtonSkinDef frames = FourLooks();
    frames.m_States[ButtonNormal] = Frames(IDB_BUTTON_FRAME_LAST, 100);
    CVuikButtonSkin animated;
    animated.SetSkinDef(frames);
    animated.Load();
    const auto lives = [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            CVuikButtonCtrl a;
            CVuikButtonCtrl2 b;
            HWND ha = Add(a, 3, BS_PUSHBUTTON, {10, 60, 51, 80}, 0);
            HWND hb = Add(b, 4, BS_AUTORADIOBUTTON, {60, 60, 101, 80}, 0);
            b.SetSkin(&animated);
            if (i % 10 == 0 || i + 1 == rounds) {
                paint(ha);
                paint(hb);
            }
            if (i % 50 == 0) {
                a.SetToolTipText(L"a");
                b.SetToolTipText(L"b");
            }
        }
    };
    lives(1);
    before = counter.Live();
    lives(1000);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " / " << before.ToString();
}

}  // namespace
