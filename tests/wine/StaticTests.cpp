// The static family on the screen: labels (colour map, flags from the style, vertical placement), the four
// skins of CVuikStaticCtrl, the bar across and downwards, the animation's timing, what the controls answer for
// their children, goldens in both layouts, and handle hygiene. Controls sit on a skinned panel whose colour
// shows wherever a control leaves its background to its parent. Pixels are 0xRRGGBB.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Golden.h"
#include "HandleCounter.h"
#include "MessageSequence.h"
#include "TestSkinIds.h"
#include "TestSkins.h"
#include "static_pieces.h"
#include "zcmod/VuikAniStaticCtrl.h"
#include "zcmod/VuikBarStaticCtrl.h"
#include "zcmod/VuikStaticCtrl.h"

using namespace msgseq;
using namespace testskin;

namespace {

const CVuikStaticChromeSkinDef kChrome = {IDB_CHROME_TL, IDB_CHROME_T, IDB_CHROME_TR, IDB_CHROME_BL, IDB_CHROME_B,
                                         IDB_CHROME_BR, IDB_CHROME_L, IDB_CHROME_C, IDB_CHROME_R};
const CVuikBarStaticSkinDef kBar = {1, IDB_HBAR_START, IDB_HBAR_MIDDLE, IDB_HBAR_END};

class StaticFamily : public ::testing::TestWithParam<DWORD> {
protected:
    // The panel in the layout the test asks for (left to right unless a parameterised test says otherwise).
    void Open(DWORD layout = 0)
    {
        m_lib = std::make_unique<LibraryState>(layout);
        ASSERT_TRUE(m_panel.CreatePanel(nullptr, RECT{100, 100, 600, 330}, &m_panelSkin));
    }
    void TearDown() override
    {
        if (m_panel.m_hWnd)
            DestroyWindow(m_panel.m_hWnd);
        m_lib.reset();
    }
    void Paint()
    {
        RedrawWindow(m_panel.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    }
    std::unique_ptr<LibraryState> m_lib;
    CTestSkin m_panelSkin{SkinDef{RGB(0xF0, 0xF0, 0xF0), RGB(0xF0, 0xF0, 0xF0)}};
    CTestPanel m_panel;
};

// ---- Labels ---------------------------------------------------------------------------------------------------

TEST_F(StaticFamily, AlignmentMeasuringAndColourMessages)
{
    Open();
    CVuikStaticCtrl label;
    ASSERT_TRUE(label.Create(m_panel.m_hWnd, RECT{10, 10, 110, 40}, 1, WS_CHILD | WS_VISIBLE | SS_RIGHT | SS_NOPREFIX, 0));
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    SendMessageW(label.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    SetWindowTextW(label.m_hWnd, L"Text");
    Paint();
    label.SetTextAlignment(SS_CENTER);
    EXPECT_EQ(GetWindowLongW(label.m_hWnd, GWL_STYLE) & (3 | SS_NOPREFIX), SS_CENTER | SS_NOPREFIX);
    RECT pending;
    EXPECT_FALSE(GetUpdateRect(label.m_hWnd, &pending, FALSE)) << "SetTextAlignment doesn't repaint";
    // Measuring takes a paint's context, in the label's font; what was waiting to be painted still is afterwards.
    Canvas measure(4, 4);
    SelectObject(measure, font);
    TEXTMETRICW tm;
    GetTextMetricsW(measure, &tm);
    InvalidateRect(label.m_hWnd, nullptr, TRUE);
    EXPECT_EQ(label.GetTextHeight(), tm.tmHeight);
    EXPECT_TRUE(GetUpdateRect(label.m_hWnd, &pending, FALSE));
    SetWindowTextW(label.m_hWnd, L"Two\nlines");
    EXPECT_EQ(label.GetTextHeight(), 2 * tm.tmHeight);

    // The colour messages give transparency, the text colour and one hollow brush, made once.
    label.SetTextColor(RGB(1, 2, 3));
    for (UINT message : {UINT(WM_CTLCOLORSTATIC), UINT(0x2138)}) {
        Canvas dc(4, 4);
        SetBkMode(dc, OPAQUE);
        const HBRUSH brush = reinterpret_cast<HBRUSH>(SendMessageW(label.m_hWnd, message, reinterpret_cast<WPARAM>(
                                                                                             static_cast<HDC>(dc)), 0));
        LOGBRUSH lb = {};
        ASSERT_TRUE(brush && GetObjectW(brush, sizeof(lb), &lb));
        EXPECT_EQ(lb.lbStyle, static_cast<UINT>(BS_HOLLOW));
        EXPECT_EQ(GetBkMode(dc), TRANSPARENT);
        EXPECT_EQ(GetTextColor(dc), RGB(1, 2, 3));
        EXPECT_EQ(brush, reinterpret_cast<HBRUSH>(SendMessageW(label.m_hWnd, message,
                                                               reinterpret_cast<WPARAM>(static_cast<HDC>(dc)), 0)))
            << "made once";
    }
}

INSTANTIATE_TEST_SUITE_P(Layouts, StaticFamily, ::testing::Values(DWORD(0), DWORD(LAYOUT_RTL)),
                         [](const ::testing::TestParamInfo<DWORD>& info) {
                             return std::string(info.param == LAYOUT_RTL ? "RightToLeft" : "LeftToRight");
                         });

// Create makes the bar and the animation owner-drawn; taking a window over clears those bits for the bar
// and adds clipping to the animation.
TEST_F(StaticFamily, StylesOfCreateAndSubclassDiffer)
{
    Open();
    const DWORD base = WS_CHILD | SS_CENTER;
    auto plain = [&] { return CreateWindowExW(0, L"Static", L"", base, 0, 0, 10, 10, m_panel.m_hWnd, nullptr, nullptr, nullptr); };
    auto style = [](HWND h) { return static_cast<DWORD>(GetWindowLongW(h, GWL_STYLE)); };
    CVuikBarStaticCtrl createdBar, takenBar;
    CVuikAniStaticCtrl createdAni, takenAni;
    CVuikStaticCtrl takenLabel;
    ASSERT_TRUE(createdBar.Create(m_panel.m_hWnd, RECT{0, 0, 10, 10}, 1, base, 0));
    ASSERT_TRUE(createdAni.Create(m_panel.m_hWnd, RECT{0, 0, 10, 10}, 2, base, 0));
    ASSERT_TRUE(takenBar.SubclassWindow(plain()));
    ASSERT_TRUE(takenAni.SubclassWindow(plain()));
    ASSERT_TRUE(takenLabel.SubclassWindow(plain()));
    EXPECT_FALSE(takenLabel.SubclassWindow(plain())) << "already has a live window";
    EXPECT_EQ(style(createdBar.m_hWnd), base | SS_OWNERDRAW);
    EXPECT_EQ(style(createdAni.m_hWnd), base | SS_OWNERDRAW);
    EXPECT_EQ(style(takenBar.m_hWnd), (base & ~0xDu) | WS_CLIPSIBLINGS);
    EXPECT_EQ(style(takenAni.m_hWnd), base | 0x600000Du);
    EXPECT_EQ(style(takenLabel.m_hWnd), base);
    // Once the windows are gone the controls' calls do nothing.
    DestroyWindow(m_panel.m_hWnd);
    m_panel.m_hWnd = nullptr;
    takenLabel.SetTextAlignment(SS_RIGHT);
    EXPECT_EQ(takenLabel.GetTextHeight(), 0);
    takenAni.StartAnimation();
    takenAni.SizeToContent();
    createdBar.SizeToContent();
    EXPECT_EQ(takenAni.GetCurrentFrame(), 0u);
}

// A child of each control asks for what lies under it; the label without a skin and a bar with an invalid
// one give nothing. The bar also passes its children's commands to its own parent.
TEST_F(StaticFamily, ControlsAnswerTheirChildrenAndTheBarForwardsCommands)
{
    Open();
    CVuikStaticChromeSkin chrome;
    chrome.SetSkinDef(kChrome);
    chrome.Load();
    CVuikBarStaticSkin bar, brokenBar;
    bar.SetSkinDef(kBar);
    brokenBar.SetSkinDef(CVuikBarStaticSkinDef{1, IDB_TEST_MISSING, 0, 0});
    bar.Load();
    brokenBar.Load();
    CVuikStaticCtrl framed, label;
    CVuikBarStaticCtrl barCtrl;
    ASSERT_TRUE(framed.Create(m_panel.m_hWnd, RECT{10, 10, 50, 40}, 1, WS_CHILD | WS_VISIBLE, 0));
    ASSERT_TRUE(label.Create(m_panel.m_hWnd, RECT{60, 10, 100, 40}, 2, WS_CHILD | WS_VISIBLE, 0));
    ASSERT_TRUE(barCtrl.Create(m_panel.m_hWnd, RECT{110, 10, 140, 16}, 3, WS_CHILD | WS_VISIBLE, 0));
    framed.SetSkin(&chrome);
    barCtrl.SetSkin(&bar);
    Paint();
    // What a 2 x 2 child at (x, y) of `parent` is given to show.
    const auto under = [](HWND parent, int x, int y) {
        HWND child = CreateWindowExW(0, L"Static", L"", WS_CHILD, x, y, 2, 2, parent, nullptr, nullptr, nullptr);
        Canvas target(2, 2, [](int, int) { return 0xFFFFFFu; });
        PAINTSTRUCT paint = {};
        paint.hdc = target;
        paint.rcPaint = RECT{0, 0, 2, 2};
        SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(child), reinterpret_cast<LPARAM>(&paint));
        DestroyWindow(child);
        return target.Read().At(1, 1);
    };
    EXPECT_EQ(under(framed.m_hWnd, 18, 10), CHROME_C_RGB) << "frame centre";
    EXPECT_EQ(under(framed.m_hWnd, 0, 0), CHROME_TL_RGB) << "frame corner";
    EXPECT_EQ(under(label.m_hWnd, 5, 5), 0xFFFFFFu) << "the label gives nothing";
    EXPECT_EQ(under(barCtrl.m_hWnd, 27, 2), HBAR_END_RGB) << "bar end";
    barCtrl.SetSkin(&brokenBar);
    EXPECT_EQ(under(barCtrl.m_hWnd, 27, 2), 0xFFFFFFu) << "an invalid bar gives nothing";
    Recorder rec;
    rec.Watch(m_panel.m_hWnd, "panel");
    rec.Only({WM_COMMAND});
    SendMessageW(barCtrl.m_hWnd, WM_COMMAND, MAKEWPARAM(7, BN_CLICKED), 0x1234);
    EXPECT_TRUE(rec.Matches({{0, WM_COMMAND, sent | wparam | lparam, MAKEWPARAM(7, BN_CLICKED), 0x1234}}));
}

// ---- Animation ------------------------------------------------------------------------------------------------

TEST_F(StaticFamily, AnimationShowsFramesOnTimeStopsAndEndsWithAnInvalidSkin)
{
    Open();
    const int kFrameTime = 60;
    const uint32_t frames[] = {FRAME_1_RGB, FRAME_2_RGB, FRAME_3_RGB};
    CVuikAniStaticSkin skin;
    const CVuikAniStaticSkinDef good = {IDB_FRAME_1, IDB_FRAME_3 + 1, kFrameTime, 1};  // one id beyond: dropped
    skin.SetSkinDef(good);
    skin.Load();
    ASSERT_TRUE(skin.IsValid());
    CVuikAniStaticCtrl ani;
    ani.StartAnimation();  // no window yet: nothing
    ASSERT_TRUE(ani.Create(m_panel.m_hWnd, RECT{10, 10, 30, 30}, 1, WS_CHILD | WS_VISIBLE, 0));
    ani.StartAnimation();  // no skin: nothing
    ani.SetSkin(&skin);
    ani.SizeToContent();
    RECT client;
    GetClientRect(ani.m_hWnd, &client);
    EXPECT_EQ(client.right, FRAME_1_W);
    Paint();

    const auto next = [&](UINT from) { Recorder::PumpUntil([&] { return ani.GetCurrentFrame() != from; }, 2000); };
    const DWORD started = GetTickCount();
    ani.StartAnimation();
    EXPECT_EQ(CaptureWindow(ani.m_hWnd).At(4, 4), frames[0]) << "the first frame at once, before any message";
    next(0);
    EXPECT_GE(GetTickCount() - started, DWORD(kFrameTime - 10)) << "the second frame only after the frame time";
    EXPECT_EQ(ani.GetCurrentFrame(), 1u);
    EXPECT_EQ(CaptureWindow(ani.m_hWnd).At(4, 4), frames[1]);
    next(1);
    next(2);
    EXPECT_EQ(ani.GetCurrentFrame(), 0u) << "wraps after the last frame";
    next(0);

    ani.StopAnimation();
    const UINT stopped = ani.GetCurrentFrame();
    ASSERT_EQ(stopped, 1u);
    Recorder::Pump(3 * kFrameTime);
    EXPECT_EQ(ani.GetCurrentFrame(), stopped);
    EXPECT_EQ(CaptureWindow(ani.m_hWnd).At(4, 4), frames[stopped]) << "the frame stays shown";

    // A new start shows the first frame again at once. Then the skin turns invalid while running: the next
    // tick neither draws nor re-arms, so the run has ended even once the skin is good again.
    ani.StartAnimation();
    EXPECT_EQ(CaptureWindow(ani.m_hWnd).At(4, 4), frames[0]);
    skin.SetSkinDef(CVuikAniStaticSkinDef{IDB_TEST_MISSING, IDB_TEST_MISSING, kFrameTime, 1});
    skin.Load();
    Recorder rec;
    rec.Watch(ani.m_hWnd, "ani");
    rec.Only({WM_TIMER});
    Recorder::PumpUntil([&] { return rec.Count(WM_TIMER) > 0; }, 2000);
    ASSERT_EQ(rec.Count(WM_TIMER), 1);
    skin.SetSkinDef(good);
    skin.Load();
    Recorder::Pump(4 * kFrameTime);
    EXPECT_EQ(rec.Count(WM_TIMER), 1) << "no tick after the one that found the skin invalid";
    EXPECT_EQ(ani.GetCurrentFrame(), 0u);
    DestroyWindow(ani.m_hWnd);
}

// ---- Goldens --------------------------------------------------------------------------------------------------

// Every look of the family on one panel, in both layouts. The labels show the flags their styles give, their
// vertical placement and colours (the one set; grey when disabled, whatever was set). Then the nine-piece frame,
// the gradient's default pair, a picture stretched, at its own size and missing (the label shows, here empty),
// and bars: across, without a middle, and downwards (the middle stretched, its halves staying halves, not
// tiled), the last two sized to their content.
TEST_P(StaticFamily, Golden)
{
    Open(GetParam());
    const wchar_t* kWrapping = L"Several words that will not fit on one line of this label";
    const struct {
        DWORD style;
        CVuikStaticCtrl::EVerticalAlignment vertical;
        const wchar_t* text;
        COLORREF colour;
        bool enabled;
    } labels[] = {
        {SS_LEFT, CVuikStaticCtrl::VA_TOP, kWrapping, kNone, true},
        {SS_RIGHT, CVuikStaticCtrl::VA_TOP, kWrapping, kNone, true},
        {SS_LEFTNOWORDWRAP, CVuikStaticCtrl::VA_TOP, kWrapping, kNone, true},  // one line, centred
        {SS_LEFT, CVuikStaticCtrl::VA_TOP, L"&File && more", kNone, true},      // underlined
        {SS_LEFT | SS_NOPREFIX, CVuikStaticCtrl::VA_TOP, L"&File && more", kNone, true},
        {SS_LEFT, CVuikStaticCtrl::VA_BOTTOM, L"Bottom line", kNone, true},
        {SS_CENTER, CVuikStaticCtrl::VA_CENTER, kWrapping, RGB(0x20, 0x40, 0x90), true},
        {SS_LEFT, CVuikStaticCtrl::VA_TOP, L"WWWW MMMM", RGB(0xC0, 0, 0), false},
    };
    CVuikStaticCtrl labelCtrls[8];
    for (int i = 0; i < 8; ++i) {
        if (labels[i].colour != kNone)
            labelCtrls[i].SetTextColor(labels[i].colour);
        const int x = 10 + i % 3 * 160, y = 60 + i / 3 * 55;
        HWND hwnd = labelCtrls[i].Create(m_panel.m_hWnd, RECT{x, y, x + 150, y + 50}, 10 + i,
                                         WS_CHILD | WS_VISIBLE | labels[i].style, 0);
        ASSERT_TRUE(hwnd);
        SendMessageW(hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
        SetWindowTextW(hwnd, labels[i].text);
        labelCtrls[i].SetVerticalAlignment(labels[i].vertical);
        EnableWindow(hwnd, labels[i].enabled);
    }

    CVuikStaticChromeSkin chrome;
    CVuikStaticGradientSkin gradient;  // the default pair
    CVuikStaticBitmapSkin pictures[3];
    chrome.SetSkinDef(kChrome);
    pictures[0].SetSkinDef(CVuikStaticBitmapSkinDef{IDB_HBAR_MIDDLE, 1, 0});  // a dark column at its left
    pictures[1].SetSkinDef(CVuikStaticBitmapSkinDef{IDB_HBAR_START, 0, 0});
    pictures[2].SetSkinDef(CVuikStaticBitmapSkinDef{IDB_TEST_MISSING, 1, 0});
    const std::pair<CVuikBaseSkin*, RECT> skinned[] = {{&chrome, {10, 10, 70, 50}},
                                                        {&gradient, {80, 10, 200, 30}},
                                                        {&pictures[0], {80, 36, 120, 48}},
                                                        {&pictures[1], {130, 36, 170, 48}},
                                                        {&pictures[2], {180, 36, 220, 48}}};
    CVuikStaticCtrl skinnedCtrls[5];
    for (int i = 0; i < 5; ++i) {
        skinned[i].first->Load();
        ASSERT_TRUE(skinnedCtrls[i].Create(m_panel.m_hWnd, skinned[i].second, 20 + i, WS_CHILD | WS_VISIBLE, 0));
        skinnedCtrls[i].SetSkin(skinned[i].first);
    }
    EXPECT_FALSE(pictures[2].IsValid());

    CVuikBarStaticSkin bars[4];
    bars[0].SetSkinDef(kBar);
    bars[1].SetSkinDef(CVuikBarStaticSkinDef{1, IDB_HBAR_START, 0, IDB_HBAR_END});
    bars[2].SetSkinDef(CVuikBarStaticSkinDef{0, IDB_VBAR_START, IDB_VBAR_MIDDLE, IDB_VBAR_END});
    bars[3].SetSkinDef(CVuikBarStaticSkinDef{1, IDB_HBAR_START, IDB_TEST_MISSING, 0});
    const RECT barsAt[] = {{230, 10, 290, 20}, {230, 30, 260, 50}, {300, 10, 320, 50}};
    CVuikBarStaticCtrl barCtrls[3];
    for (int i = 0; i < 3; ++i) {
        bars[i].Load();
        ASSERT_TRUE(barCtrls[i].Create(m_panel.m_hWnd, barsAt[i], 30 + i, WS_CHILD | WS_VISIBLE, 0));
        barCtrls[i].SetSkin(&bars[i]);
        if (i > 0)
            barCtrls[i].SizeToContent();
    }
    bars[3].Load();
    EXPECT_FALSE(bars[3].IsValid()) << "a set id without its bitmap";

    // In front, and every message the window system sent meanwhile handled before the paint and after it.
    SetForegroundWindow(m_panel.m_hWnd);
    Recorder::Pump(50);
    Paint();
    Recorder::Pump(20);
    const Capture c = CaptureOnScreen(m_panel.m_hWnd);
    EXPECT_TRUE(zcmod_test::MatchesGolden(GetParam() == LAYOUT_RTL ? "static_family_rtl" : "static_family_ltr",
                                          c.width, c.height, c.pixels.data()));
}

// ---- Handles --------------------------------------------------------------------------------------------------

TEST_F(StaticFamily, ChangesAndCyclesLeaveNoHandleBehind)
{
    m_lib = std::make_unique<LibraryState>();
    CVuikStaticGradientSkin gradient;
    CVuikStaticChromeSkin chrome;
    CVuikStaticIconSkin icon;
    CVuikBarStaticSkin barSkin;
    CVuikAniStaticSkin aniSkin;
    chrome.SetSkinDef(kChrome);
    icon.SetSkinDef(CVuikStaticIconSkinDef{nullptr, IDI_APPLICATION, nullptr});
    barSkin.SetSkinDef(kBar);
    aniSkin.SetSkinDef(CVuikAniStaticSkinDef{IDB_FRAME_1, IDB_FRAME_3, 10, 1});
    for (CVuikBaseSkin* s : std::initializer_list<CVuikBaseSkin*>{&gradient, &chrome, &barSkin, &aniSkin})
        s->Load();

    zcmod_test::HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    icon.Load();  // its copy of the icon is made under the counter's eyes, and given back at the end
    // A hidden parent: the paints are sent, not waited for, and nothing reaches the screen.
    HWND parent = CreateWindowExW(0, PlainClass(), L"", WS_POPUP, 0, 0, 200, 100, nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(parent);
    // Small controls: the bar draws two tiles, the gradient 20 columns.
    const RECT rect = {10, 10, 30, 24};
    CVuikBaseSkin* labelSkins[] = {nullptr, &gradient, &chrome, &icon};
    // One life of each class, painted: the label with each skin in turn, the bar, the animation with its
    // timer running.
    auto lives = [&](int count) {
        for (int i = 0; i < count; ++i) {
            CVuikStaticCtrl label;
            CVuikBarStaticCtrl bar;
            CVuikAniStaticCtrl ani;
            label.Create(parent, rect, 1, WS_CHILD | WS_VISIBLE, 0);
            bar.Create(parent, rect, 2, WS_CHILD | WS_VISIBLE, 0);
            ani.Create(parent, rect, 3, WS_CHILD | WS_VISIBLE, 0);
            label.SetSkin(labelSkins[i % 4]);
            SetWindowTextW(label.m_hWnd, L"Label");
            SendMessageW(label.m_hWnd, WM_CTLCOLORSTATIC, 0, 0);
            bar.SetSkin(&barSkin);
            ani.SetSkin(&aniSkin);
            ani.StartAnimation();
            for (HWND hwnd : {label.m_hWnd, bar.m_hWnd}) {
                SendMessageW(hwnd, WM_PAINT, 0, 0);
                DestroyWindow(hwnd);
            }
            DestroyWindow(ani.m_hWnd);
        }
    };
    lives(4);
    const auto beforeLives = counter.Live();
    lives(300);
    EXPECT_EQ(counter.Live(), beforeLives) << counter.Live().ToString();

    // 10,000 changes on living controls, five to a round: colour, enabling, skin, text, an animation tick.
    CVuikStaticCtrl label;
    CVuikAniStaticCtrl ani;
    label.Create(parent, rect, 1, WS_CHILD | WS_VISIBLE, 0);
    ani.Create(parent, RECT{70, 10, 90, 30}, 2, WS_CHILD | WS_VISIBLE, 0);
    ani.SetSkin(&aniSkin);
    auto round = [&](int i) {
        label.SetTextColor(RGB(i & 0xFF, 0, 0));
        EnableWindow(label.m_hWnd, i % 3 != 0);
        label.SetSkin(labelSkins[i % 4]);
        SendMessageW(label.m_hWnd, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0);
        SetWindowTextW(label.m_hWnd, i % 2 ? L"One" : L"Two words");
        SendMessageW(label.m_hWnd, WM_PAINT, 0, 0);
        SendMessageW(ani.m_hWnd, WM_TIMER, CVuikAniStaticCtrl::AnimationTimerId, 0);
        ani.StopAnimation();
    };
    round(1999);
    const auto before = counter.Live();
    for (int i = 0; i < 2000; ++i)
        round(i);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    DestroyWindow(parent);
    icon.Unload();
}

}  // namespace
