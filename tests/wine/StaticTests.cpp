// The static family on the screen: labels (colour map, flags from the style, vertical placement), the four
// skins of CVuikStaticCtrl, the bar across and downwards, the animation's timing, what the controls answer for
// their children, goldens in both layouts, and handle hygiene. Controls sit on a skinned panel whose colour
// shows wherever a control leaves its background to its parent. Pixels are 0xRRGGBB.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

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

const uint32_t kPanel = 0xF0F0F0;  // the panel as it shows

const CVuikStaticChromeSkinDef kChrome = {IDB_CHROME_TL, IDB_CHROME_T, IDB_CHROME_TR, IDB_CHROME_BL, IDB_CHROME_B,
                                         IDB_CHROME_BR, IDB_CHROME_L, IDB_CHROME_C, IDB_CHROME_R};
const CVuikBarStaticSkinDef kBar = {1, IDB_HBAR_START, IDB_HBAR_MIDDLE, IDB_HBAR_END};

struct Point {
    int x, y;
    uint32_t colour;
};

class StaticFamily : public ::testing::TestWithParam<DWORD> {
protected:
    // The panel in the layout the test asks for (left to right unless a parameterised test says otherwise).
    void Open(DWORD layout = 0)
    {
        m_lib = std::make_unique<LibraryState>(layout);
        ASSERT_TRUE(m_panel.CreatePanel(nullptr, RECT{100, 100, 420, 260}, &m_panelSkin));
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
    static ::testing::AssertionResult Shows(HWND hwnd, const std::vector<Point>& points, bool mirrored = false)
    {
        const Capture c = CaptureWindow(hwnd);
        for (const Point& p : points) {
            const int x = mirrored ? c.width - 1 - p.x : p.x;
            if (c.At(x, p.y) != p.colour)
                return ::testing::AssertionFailure()
                       << "at " << x << "," << p.y << ": " << std::hex << c.At(x, p.y) << " not " << p.colour;
        }
        return ::testing::AssertionSuccess();
    }

    std::unique_ptr<LibraryState> m_lib;
    CTestSkin m_panelSkin{SkinDef{RGB(0xF0, 0xF0, 0xF0), RGB(0xF0, 0xF0, 0xF0)}};
    CTestPanel m_panel;
};

// ---- Labels ---------------------------------------------------------------------------------------------------

// The label's picture against DrawTextW with the flags its style must give, in the same font and the colour
// the process-wide map gives it (black when absent, grey when disabled whatever was set), on the panel.
TEST_F(StaticFamily, LabelLaysOutItsTextByStyleAndVerticalAlignment)
{
    Open();
    HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    const wchar_t* kWrapping = L"Several words that will not fit on one line of this label";
    struct Case {
        const char* name;
        DWORD style;
        CVuikStaticCtrl::EVerticalAlignment vertical;
        const wchar_t* text;
        UINT flags;  // what DrawTextW must be given
        int lines;   // for the vertical placement: lines of text the label shows
        COLORREF set = kNone;
        bool enabled = true;
    } cases[] = {
        {"left wraps", SS_LEFT, CVuikStaticCtrl::VA_TOP, kWrapping, DT_WORDBREAK, 0},
        {"right wraps", SS_RIGHT, CVuikStaticCtrl::VA_TOP, kWrapping, DT_RIGHT | DT_WORDBREAK, 0},
        {"no word wrap is one centred line", SS_LEFTNOWORDWRAP, CVuikStaticCtrl::VA_TOP, kWrapping,
         DT_VCENTER | DT_SINGLELINE, 0},
        {"prefix underlines", SS_LEFT, CVuikStaticCtrl::VA_TOP, L"&File && more", DT_WORDBREAK, 0},
        {"no prefix keeps ampersands", SS_LEFT | SS_NOPREFIX, CVuikStaticCtrl::VA_TOP, L"&File && more",
         DT_WORDBREAK | DT_NOPREFIX, 0},
        {"bottom", SS_LEFT, CVuikStaticCtrl::VA_BOTTOM, L"Bottom line", DT_WORDBREAK, 1},
        {"centre of two lines", SS_CENTER, CVuikStaticCtrl::VA_CENTER, kWrapping, DT_CENTER | DT_WORDBREAK, 2},
        {"disabled is grey", SS_LEFT, CVuikStaticCtrl::VA_TOP, L"WWWW MMMM", DT_WORDBREAK, 0, RGB(0xC0, 0, 0), false},
    };
    const int w = 200, h = 70;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CVuikStaticCtrl label;
        if (c.set != kNone)
            label.SetTextColor(c.set);
        ASSERT_TRUE(label.Create(m_panel.m_hWnd, RECT{10, 10, 10 + w, 10 + h}, 1, WS_CHILD | WS_VISIBLE | c.style, 0));
        SendMessageW(label.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        SetWindowTextW(label.m_hWnd, c.text);
        label.SetVerticalAlignment(c.vertical);
        EnableWindow(label.m_hWnd, c.enabled);
        Paint();

        Canvas expected(w, h, [](int, int) { return kPanel; });
        HGDIOBJ old = SelectObject(expected, font);
        SetBkMode(expected, TRANSPARENT);
        SetTextColor(expected, !c.enabled ? RGB(0xCE, 0xCE, 0xCE) : c.set == kNone ? 0 : c.set);
        TEXTMETRICW tm;
        GetTextMetricsW(expected, &tm);
        RECT area = {0, 0, w, h};
        if (c.vertical == CVuikStaticCtrl::VA_BOTTOM)
            area.top = h - c.lines * tm.tmHeight;
        else if (c.vertical == CVuikStaticCtrl::VA_CENTER)
            area = RECT{0, h / 2 - c.lines * tm.tmHeight / 2, w, h / 2 + c.lines * tm.tmHeight / 2};
        DrawTextW(expected, c.text, -1, &area, c.flags);
        SelectObject(expected, old);
        const Capture want = expected.Read(), got = CaptureWindow(label.m_hWnd);
        EXPECT_TRUE(got.Is([&](int x, int y) { return want.At(x, y); }));
        if (c.lines) {
            EXPECT_EQ(label.GetTextHeight(), c.lines * tm.tmHeight);
        }
        DestroyWindow(label.m_hWnd);
    }
}

TEST_F(StaticFamily, AlignmentMeasuringAndColourMessages)
{
    Open();
    CVuikStaticCtrl label;
    ASSERT_TRUE(label.Create(m_panel.m_hWnd, RECT{10, 10, 110, 40}, 1, WS_CHILD | WS_VISIBLE | SS_RIGHT | SS_NOPREFIX, 0));
    SetWindowTextW(label.m_hWnd, L"Text");
    Paint();
    label.SetTextAlignment(SS_CENTER);
    EXPECT_EQ(GetWindowLongW(label.m_hWnd, GWL_STYLE) & (3 | SS_NOPREFIX), SS_CENTER | SS_NOPREFIX);
    RECT pending;
    EXPECT_FALSE(GetUpdateRect(label.m_hWnd, &pending, FALSE)) << "SetTextAlignment doesn't repaint";
    // Measuring takes a paint's context; what was waiting to be painted still is afterwards.
    InvalidateRect(label.m_hWnd, nullptr, TRUE);
    EXPECT_GT(label.GetTextHeight(), 0);
    EXPECT_TRUE(GetUpdateRect(label.m_hWnd, &pending, FALSE));

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

// ---- Skins ----------------------------------------------------------------------------------------------------

// The picture skins on small controls, read left to right; right to left the whole picture is turned round.
// (The goldens pin the nine-piece frame in both layouts.)
TEST_P(StaticFamily, PicturesStretchedAtTheirOwnSizeOrMissing)
{
    Open(GetParam());
    EXPECT_FALSE(CVuikStaticChromeSkin().IsValid()) << "the default frame names no piece";
    CVuikStaticCtrl picture, missing;
    CVuikStaticBitmapSkin stretched, own, absent;
    stretched.SetSkinDef(CVuikStaticBitmapSkinDef{IDB_HBAR_START, 1, 0});
    own.SetSkinDef(CVuikStaticBitmapSkinDef{IDB_HBAR_START, 0, 0});
    absent.SetSkinDef(CVuikStaticBitmapSkinDef{IDB_TEST_MISSING, 1, 0});
    for (CVuikStaticBitmapSkin* s : {&stretched, &own, &absent})
        s->Load();
    EXPECT_FALSE(absent.IsValid());
    ASSERT_TRUE(picture.Create(m_panel.m_hWnd, RECT{60, 10, 100, 22}, 2, WS_CHILD | WS_VISIBLE, 0));
    ASSERT_TRUE(missing.Create(m_panel.m_hWnd, RECT{110, 10, 150, 22}, 3, WS_CHILD | WS_VISIBLE, 0));
    SetWindowTextW(missing.m_hWnd, L"");
    missing.SetSkin(&absent);
    picture.SetSkin(&stretched);
    Paint();

    const bool rtl = GetParam() == LAYOUT_RTL;
    // Stretched over the whole control; at its own size at the top left, the rest the panel's.
    EXPECT_TRUE(Shows(picture.m_hWnd, {{0, 0, HBAR_START_RGB}, {39, 11, HBAR_START_RGB}}, rtl));
    picture.SetSkin(&own);
    SendMessageW(picture.m_hWnd, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0);
    UpdateWindow(picture.m_hWnd);
    EXPECT_TRUE(Shows(picture.m_hWnd,
                      {{0, 0, HBAR_START_RGB}, {4, 5, HBAR_START_RGB}, {5, 2, kPanel}, {2, 6, kPanel}},
                      rtl));
    EXPECT_TRUE(Shows(missing.m_hWnd, {{20, 6, kPanel}})) << "an invalid skin shows the label, here empty";
}

// Across: start, tiles of the middle (each beginning with its dark column, the last cut short), end. Downwards:
// start, the middle stretched (its two halves stay halves), end. A zero middle leaves the panel between.
TEST_P(StaticFamily, BarLayoutsAndSizeToContent)
{
    Open(GetParam());
    const bool rtl = GetParam() == LAYOUT_RTL;
    // (The golden pins the tiles across, in both layouts.)
    struct Case {
        const char* name;
        CVuikBarStaticSkinDef def;
        RECT rect;
        SIZE sized;  // the client size after SizeToContent
        std::vector<Point> points;
    } cases[] = {
        {"across", {1, IDB_HBAR_START, IDB_HBAR_MIDDLE, IDB_HBAR_END}, {10, 10, 40, 30}, {30, HBAR_START_H},
         {{4, 3, HBAR_START_RGB}, {7, 3, HBAR_MIDDLE_RGB2}, {27, 3, HBAR_END_RGB}, {29, 5, HBAR_END_RGB}}},
        {"across without a middle", {1, IDB_HBAR_START, 0, IDB_HBAR_END}, {10, 10, 40, 30}, {30, HBAR_START_H},
         {{4, 3, HBAR_START_RGB}, {5, 3, kPanel}, {26, 3, kPanel}, {27, 3, HBAR_END_RGB}}},
        // The middle's halves (4 rows each) stretched to 16 rows each; tiled they would alternate every 4.
        {"downwards",
         {0, IDB_VBAR_START, IDB_VBAR_MIDDLE, IDB_VBAR_END},
         {10, 10, 30, 50},
         {VBAR_START_W, 40},
         {{3, 4, VBAR_START_RGB},
          {3, 7, VBAR_MIDDLE_RGB},
          {3, 11, VBAR_MIDDLE_RGB},
          {3, 17, VBAR_MIDDLE_RGB},
          {3, 25, VBAR_MIDDLE_RGB2},
          {3, 31, VBAR_MIDDLE_RGB2},
          {3, 35, VBAR_MIDDLE_RGB2},
          {3, 37, VBAR_END_RGB},
          {3, 39, VBAR_END_RGB}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CVuikBarStaticSkin skin;
        skin.SetSkinDef(c.def);
        skin.Load();
        ASSERT_TRUE(skin.IsValid());
        CVuikBarStaticCtrl bar;
        ASSERT_TRUE(bar.Create(m_panel.m_hWnd, c.rect, 1, WS_CHILD | WS_VISIBLE, 0));
        bar.SetSkin(&skin);
        bar.SizeToContent();
        RECT client;
        GetClientRect(bar.m_hWnd, &client);
        EXPECT_EQ(client.right, c.sized.cx);
        EXPECT_EQ(client.bottom, c.sized.cy);
        Paint();
        EXPECT_TRUE(Shows(bar.m_hWnd, c.points, rtl));
        DestroyWindow(bar.m_hWnd);
    }
    CVuikBarStaticSkin broken;
    broken.SetSkinDef(CVuikBarStaticSkinDef{1, IDB_HBAR_START, IDB_TEST_MISSING, 0});
    broken.Load();
    EXPECT_FALSE(broken.IsValid()) << "a set id without its bitmap";
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
    struct Case {
        const char* name;
        HWND parent;
        POINT childAt;      // the child's place in the parent
        uint32_t expected;  // what a child's 2 x 2 piece then shows
        std::function<void()> before;
    } cases[] = {
        {"frame centre", framed.m_hWnd, {18, 10}, CHROME_C_RGB, [] {}},
        {"frame corner", framed.m_hWnd, {0, 0}, CHROME_TL_RGB, [] {}},
        {"label gives nothing", label.m_hWnd, {5, 5}, 0xFFFFFF, [] {}},
        {"bar end", barCtrl.m_hWnd, {27, 2}, HBAR_END_RGB, [] {}},
        {"invalid bar gives nothing", barCtrl.m_hWnd, {27, 2}, 0xFFFFFF, [&] { barCtrl.SetSkin(&brokenBar); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        c.before();
        HWND child = CreateWindowExW(0, L"Static", L"", WS_CHILD, c.childAt.x, c.childAt.y, 2, 2, c.parent, nullptr,
                                     nullptr, nullptr);
        Canvas target(2, 2, [](int, int) { return 0xFFFFFFu; });
        PAINTSTRUCT paint = {};
        paint.hdc = target;
        paint.rcPaint = RECT{0, 0, 2, 2};
        SendMessageW(c.parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(child), reinterpret_cast<LPARAM>(&paint));
        EXPECT_EQ(target.Read().At(1, 1), c.expected);
        DestroyWindow(child);
    }
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
    EXPECT_EQ(skin.GetFrameCount(), 3);
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
    EXPECT_TRUE(Shows(ani.m_hWnd, {{4, 4, frames[0]}})) << "the first frame at once, before any message";
    next(0);
    EXPECT_GE(GetTickCount() - started, DWORD(kFrameTime - 10)) << "the second frame only after the frame time";
    EXPECT_EQ(ani.GetCurrentFrame(), 1u);
    EXPECT_TRUE(Shows(ani.m_hWnd, {{4, 4, frames[1]}}));
    next(1);
    next(2);
    EXPECT_EQ(ani.GetCurrentFrame(), 0u) << "wraps after the last frame";
    next(0);

    ani.StopAnimation();
    const UINT stopped = ani.GetCurrentFrame();
    ASSERT_EQ(stopped, 1u);
    Recorder::Pump(3 * kFrameTime);
    EXPECT_EQ(ani.GetCurrentFrame(), stopped);
    EXPECT_TRUE(Shows(ani.m_hWnd, {{4, 4, frames[stopped]}})) << "the frame stays shown";

    // A new start shows the first frame again at once. Then the skin turns invalid while running: the next
    // tick neither draws nor re-arms, so the run has ended even once the skin is good again.
    ani.StartAnimation();
    EXPECT_TRUE(Shows(ani.m_hWnd, {{4, 4, frames[0]}}));
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

TEST_P(StaticFamily, Goldens)
{
    Open(GetParam());
    const std::string layout = GetParam() == LAYOUT_RTL ? "rtl" : "ltr";
    CVuikStaticCtrl label, gradient, frame;
    CVuikBarStaticCtrl bar;
    CVuikStaticGradientSkin gradientSkin;  // the default pair
    CVuikStaticChromeSkin chrome;
    CVuikBarStaticSkin barSkin;
    chrome.SetSkinDef(kChrome);
    barSkin.SetSkinDef(kBar);
    for (CVuikBaseSkin* s : std::initializer_list<CVuikBaseSkin*>{&gradientSkin, &chrome, &barSkin})
        s->Load();
    label.SetTextColor(RGB(0x20, 0x40, 0x90));
    ASSERT_TRUE(label.Create(m_panel.m_hWnd, RECT{10, 10, 130, 50}, 1, WS_CHILD | WS_VISIBLE | SS_CENTER, 0));
    SendMessageW(label.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    SetWindowTextW(label.m_hWnd, L"Centred label over two lines");
    ASSERT_TRUE(gradient.Create(m_panel.m_hWnd, RECT{10, 60, 130, 80}, 2, WS_CHILD | WS_VISIBLE, 0));
    ASSERT_TRUE(frame.Create(m_panel.m_hWnd, RECT{140, 10, 200, 50}, 3, WS_CHILD | WS_VISIBLE, 0));
    ASSERT_TRUE(bar.Create(m_panel.m_hWnd, RECT{140, 60, 200, 70}, 4, WS_CHILD | WS_VISIBLE, 0));
    gradient.SetSkin(&gradientSkin);
    frame.SetSkin(&chrome);
    bar.SetSkin(&barSkin);
    Paint();
    for (auto [name, hwnd] : {std::make_pair("label", label.m_hWnd), std::make_pair("gradient", gradient.m_hWnd),
                              std::make_pair("chrome", frame.m_hWnd), std::make_pair("bar", bar.m_hWnd)}) {
        const Capture c = CaptureWindow(hwnd);
        EXPECT_TRUE(zcmod_test::MatchesGolden(std::string("static_") + name + "_" + layout, c.width, c.height,
                                              c.pixels.data()));
    }
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
    // One create, paint and destroy of a class: the label and picture with each skin in turn, the bar, the
    // animation with its timer running.
    auto cycle = [&](int kind, int i) {
        CVuikStaticCtrl s;
        CVuikBarStaticCtrl b;
        CVuikAniStaticCtrl a;
        HWND hwnd = kind == 0   ? s.Create(parent, rect, 1, WS_CHILD | WS_VISIBLE, 0)
                    : kind == 1 ? b.Create(parent, rect, 1, WS_CHILD | WS_VISIBLE, 0)
                                : a.Create(parent, rect, 1, WS_CHILD | WS_VISIBLE, 0);
        if (kind == 0) {
            s.SetSkin(labelSkins[i % 4]);
            SetWindowTextW(hwnd, L"Label");
            SendMessageW(hwnd, WM_CTLCOLORSTATIC, 0, 0);
        }
        if (kind == 1)
            b.SetSkin(&barSkin);
        if (kind == 2) {
            a.SetSkin(&aniSkin);
            a.StartAnimation();
        } else {
            SendMessageW(hwnd, WM_PAINT, 0, 0);
        }
        DestroyWindow(hwnd);
    };
    for (int kind = 0; kind < 3; ++kind) {
        SCOPED_TRACE(kind);
        for (int i = 0; i < 4; ++i)
            cycle(kind, i);
        const auto before = counter.Live();
        for (int i = 0; i < 1000; ++i)
            cycle(kind, i);
        EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    }

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
