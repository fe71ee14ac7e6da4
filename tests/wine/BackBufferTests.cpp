// The back buffer: built only in a paint, published as "PROP_BACKBUFFER", found up the parents past one that
// hasn't painted, forced out of a named background, mirrored whole in a right-to-left layout, and dropped by
// WM_VUIK_INVALIDATE_BACKBUFFER without a repaint. Pixels are read from the screen or from the buffers.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "Golden.h"
#include "MessageSequence.h"
#include "TestSkinIds.h"
#include "TestSkins.h"

using namespace msgseq;
using namespace testskin;

namespace {

const DWORD kRed = 0xFF0000;
const DWORD kBlue = 0x0000FF;
const DWORD kGreen = 0x00FF00;
const DWORD kYellow = 0xFFFF00;
const RECT kTopRect = {100, 100, 300, 200};

// Builds `panel`'s buffer outside a paint, on a context of its window, as a paint would, and reads it.
Capture Build(CTestPanel& panel)
{
    RECT client;
    GetClientRect(panel.m_hWnd, &client);
    HDC dc = GetDC(panel.m_hWnd);
    CVuikGraphics graphics(dc);
    panel.DeleteBackBuffer();
    panel.CreateBackBuffer(client.right, client.bottom, &graphics);
    ReleaseDC(panel.m_hWnd, dc);
    return ReadBitmap(panel.GetBackBuffer());
}

TEST(BackBuffer, BuiltOnlyInAPaintAndKeptUntilDropped)
{
    LibraryState lib;
    Recorder rec;
    CTestSkin skin(kRedBlue);
    CTestPanel panel, empty;
    HWND hwnd = panel.CreatePanel(nullptr, kTopRect, &skin);
    ASSERT_TRUE(hwnd);
    rec.Watch(hwnd, "panel");
    rec.Only({WM_PAINT});
    // Parts with an empty source or destination build nothing.
    Canvas target(20, 20);
    const RECT client = {0, 0, 200, 100};
    panel.DrawBackBufferPart(target, client, RECT{0, 0, 0, 10}, RECT{0, 0, 10, 10});
    panel.DrawBackBufferPart(target, client, RECT{0, 0, 10, 10}, RECT{5, 5, 10, 5});
    EXPECT_FALSE(panel.GetBackBuffer());
    EXPECT_FALSE(GetPropW(hwnd, L"PROP_BACKBUFFER"));

    UpdateWindow(hwnd);
    ASSERT_TRUE(panel.GetBackBuffer());
    EXPECT_EQ(GetPropW(hwnd, L"PROP_BACKBUFFER"), panel.GetBackBuffer());
    EXPECT_EQ(skin.m_nDraws, 1);
    EXPECT_EQ(CaptureWindow(hwnd).At(10, 50), kRed);

    // A later paint without a change is a copy.
    InvalidateRect(hwnd, nullptr, TRUE);
    UpdateWindow(hwnd);
    EXPECT_EQ(skin.m_nDraws, 1);

    // Dropped, not invalidated: the old picture stays until something repaints.
    skin.SetSkinDef(SkinDef{RGB(0, 255, 0), RGB(0, 255, 0)});
    rec.Clear();
    EXPECT_EQ(SendMessageW(hwnd, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0), 0);
    EXPECT_FALSE(panel.GetBackBuffer());
    EXPECT_FALSE(GetPropW(hwnd, L"PROP_BACKBUFFER"));
    RECT update;
    EXPECT_FALSE(GetUpdateRect(hwnd, &update, FALSE));
    Recorder::Pump(30);
    EXPECT_EQ(rec.Count(WM_PAINT), 0);
    EXPECT_EQ(CaptureWindow(hwnd).At(10, 50), kRed);
    InvalidateRect(hwnd, nullptr, FALSE);
    UpdateWindow(hwnd);
    EXPECT_EQ(skin.m_nDraws, 2);
    EXPECT_EQ(CaptureWindow(hwnd).At(10, 50), kGreen);

    // Dropping twice, or with a leftover property, is harmless.
    SetPropW(hwnd, L"PROP_BACKBUFFER", reinterpret_cast<HANDLE>(1));
    panel.DeleteBackBuffer();
    panel.DeleteBackBuffer();
    EXPECT_FALSE(GetPropW(hwnd, L"PROP_BACKBUFFER"));
    // A part builds a dropped buffer: here 10 x 10 of the right half stretched to 20 x 20.
    skin.SetSkinDef(kRedBlue);
    panel.DrawBackBufferPart(target, client, RECT{150, 40, 160, 50}, RECT{0, 0, 20, 20});
    EXPECT_EQ(skin.m_nDraws, 3);
    EXPECT_EQ(target.Read().At(15, 15), kBlue);
    DestroyWindow(hwnd);

    // A window of no size has no buffer, and its paint copies nothing.
    ASSERT_TRUE(empty.CreatePanel(nullptr, RECT{0, 0, 0, 0}, &skin));
    UpdateWindow(empty.m_hWnd);
    HDC dc = GetDC(empty.m_hWnd);
    empty.DrawBackBuffer(dc, RECT{0, 0, 0, 0}, RECT{0, 0, 0, 0});
    ReleaseDC(empty.m_hWnd, dc);
    EXPECT_FALSE(empty.GetBackBuffer());
    DestroyWindow(empty.m_hWnd);
}

// A red and blue top panel that has painted, with a child `child` at `rect` that has not.
class Nested : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(top.CreatePanel(nullptr, kTopRect, &topSkin));
        ASSERT_TRUE(child.CreatePanel(top.m_hWnd, RECT{50, 20, 150, 80}, &middleSkin));
        ValidateRect(child.m_hWnd, nullptr);
        UpdateWindow(top.m_hWnd);
    }
    void TearDown() override { DestroyWindow(top.m_hWnd); }

    LibraryState lib;
    Recorder rec;
    CTestSkin topSkin{kRedBlue}, middleSkin{SkinDef{RGB(0, 255, 0), RGB(255, 255, 0)}}, clearSkin;
    CTestPanel top, child, inner;
};

TEST_F(Nested, SearchGoesPastAParentThatHasNotPainted)
{
    ASSERT_TRUE(inner.CreatePanel(child.m_hWnd, RECT{10, 10, 90, 50}, &clearSkin));  // x 60..140 of the top
    ValidateRect(inner.m_hWnd, nullptr);
    ASSERT_TRUE(top.GetBackBuffer());
    ASSERT_FALSE(child.GetBackBuffer());
    Capture pixels = Build(inner);
    EXPECT_EQ(pixels.At(5, 5), kRed) << "the top panel's left half, through the mapped corner";
    EXPECT_EQ(pixels.At(75, 35), kBlue);

    // Once the middle panel has painted, it is the nearest.
    InvalidateRect(child.m_hWnd, nullptr, TRUE);
    UpdateWindow(child.m_hWnd);
    pixels = Build(inner);
    EXPECT_EQ(pixels.At(5, 5), kGreen);
    EXPECT_EQ(pixels.At(75, 35), kYellow);
}

TEST_F(Nested, SetBackgroundForcesOnePaintOfThatWindowOnly)
{
    ValidateRect(top.m_hWnd, nullptr);
    top.DeleteBackBuffer();
    child.SetSkin(&clearSkin);
    rec.Watch(top.m_hWnd, "top");
    rec.Only({WM_PAINT});
    topSkin.m_nDraws = 0;

    child.SetBackground(top.m_hWnd);
    EXPECT_EQ(Build(child).At(5, 5), kRed);
    EXPECT_EQ(rec.Count(WM_PAINT), 1);
    EXPECT_EQ(topSkin.m_nDraws, 1);
    Build(child);
    EXPECT_EQ(rec.Count(WM_PAINT), 1) << "once painted, the named window's buffer is used as it is";

    // Only the named window is looked at: a plain window without a buffer gives nothing, although the top
    // panel above it has one.
    HWND plain = rec.CreateParent("plain", RECT{100, 50, 190, 95}, top.m_hWnd);
    ASSERT_TRUE(inner.CreatePanel(plain, RECT{0, 0, 40, 40}, &clearSkin));
    ValidateRect(inner.m_hWnd, nullptr);
    inner.SetBackground(plain);
    rec.Clear();
    const DWORD corner = Build(inner).At(5, 5);
    EXPECT_EQ(rec.Count(WM_PAINT, 1), 1) << "the named window was made to paint";
    EXPECT_NE(corner, kBlue);
    EXPECT_NE(corner, kRed);
}

// The erase of a button asks its parent for the piece under it, on the child's context; a parent without a
// valid skin leaves the area as it is.
TEST(BackBuffer, ButtonEraseAsksItsParentForTheBackground)
{
    LibraryState lib;
    Recorder rec;
    CTestSkin skin(kRedBlue), buttonSkin;
    struct : CTestSkin {
        void Validate() override { m_nStatus = StatusInvalid; }
    } never;
    CTestPanel panel;
    CTestButton button;
    ASSERT_TRUE(panel.CreatePanel(nullptr, kTopRect, &skin));
    ASSERT_TRUE(button.Create(panel.m_hWnd, RECT{80, 30, 120, 70}, 1, WS_CHILD | WS_VISIBLE, 0));
    button.SetSkin(&buttonSkin);
    RedrawWindow(panel.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    rec.Watch(panel.m_hWnd, "panel");
    rec.Watch(button.m_hWnd, "button");
    rec.Only({WM_PAINT, WM_ERASEBKGND, WM_VUIK_REPAINT});
    InvalidateRect(button.m_hWnd, nullptr, TRUE);
    UpdateWindow(button.m_hWnd);
    EXPECT_TRUE(rec.Matches({{1, WM_PAINT, sent},
                             {1, WM_ERASEBKGND, sent},
                             {0, WM_VUIK_REPAINT, sent | wparam, reinterpret_cast<WPARAM>(button.m_hWnd)}}));

    Canvas target(40, 40, [](int, int) { return 0xFFFFFFu; });
    PAINTSTRUCT paint = {};
    paint.hdc = target;
    paint.rcPaint = RECT{0, 0, 40, 40};
    SendMessageW(panel.m_hWnd, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(button.m_hWnd),
                 reinterpret_cast<LPARAM>(&paint));
    EXPECT_EQ(target.Read().At(5, 5), kRed);
    EXPECT_EQ(target.Read().At(35, 5), kBlue);
    panel.SetSkin(&never);
    target.Fill([](int, int) { return 0xFFFFFFu; });
    SendMessageW(panel.m_hWnd, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(button.m_hWnd),
                 reinterpret_cast<LPARAM>(&paint));
    EXPECT_EQ(target.Read().At(5, 5), 0xFFFFFFu);
    panel.SetSkin(&skin);
    DestroyWindow(panel.m_hWnd);
}

// A skinned window with children, as the screen shows it (the goldens): the panel's red and blue halves; a
// child over their border showing its green mark on its piece of the panel's background; a yellow picture whose
// transparent frame shows the panel; and the placeholder of a picture that did not load (a black box with one
// diagonal). Right to left, each buffer is mirrored whole after its background and its drawing: the panel's
// halves swap, and a child's piece of background turns round together with its own mark.
TEST(BackBuffer, SkinnedWindowShowsBackgroundsMarksPicturesAndPlaceholders)
{
    for (DWORD layout : {DWORD(0), DWORD(LAYOUT_RTL)}) {
        LibraryState lib(layout);
        CTestSkin panelSkin(kRedBlue), markSkin(SkinDef{kNone, kNone, RGB(0, 255, 0)}),
            badgeSkin(SkinDef{kNone, kNone, kNone, IDB_TEST_BADGE}),
            brokenSkin(SkinDef{kNone, kNone, kNone, IDB_TEST_MISSING});
        for (CTestSkin* skin : {&markSkin, &badgeSkin, &brokenSkin})
            skin->Load();
        ASSERT_TRUE(badgeSkin.IsValid()) << "the test program's own picture loads";
        ASSERT_FALSE(brokenSkin.IsValid());

        CTestPanel panel;
        CTestButton mark, badge, broken;
        ASSERT_TRUE(panel.CreatePanel(nullptr, kTopRect, &panelSkin));
        const auto add = [&](CTestButton& button, RECT rect, CTestSkin& skin) {
            button.SetSkin(&skin);
            return button.Create(panel.m_hWnd, rect, 1, WS_CHILD | WS_VISIBLE, 0) != nullptr;
        };
        ASSERT_TRUE(add(mark, RECT{80, 30, 120, 70}, markSkin) && add(badge, RECT{20, 20, 60, 60}, badgeSkin) &&
                    add(broken, RECT{140, 20, 180, 60}, brokenSkin));
        RedrawWindow(panel.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        Recorder::Pump(20);
        const Capture shown = CaptureOnScreen(panel.m_hWnd);
        EXPECT_TRUE(zcmod_test::MatchesGolden(layout ? "backbuffer_skinned_window_rtl" : "backbuffer_skinned_window_ltr",
                                              shown.width, shown.height, shown.pixels.data()));
        EXPECT_FALSE(broken.GetBackBuffer()) << "a control without a valid skin builds no buffer";
        DestroyWindow(panel.m_hWnd);
    }
}

}  // namespace
