// The wizard's step bar with the shipped themes' pieces (its layout arithmetic is checked natively). Pixels are
// read from the screen.
#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "Golden.h"
#include "wine/TestSkins.h"
#include "wine/TestSupport.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikStepBarCtrl.h"

namespace {

using testskin::Capture;

class StepBar : public ::testing::Test {
protected:
    void SetUp() override
    {
        // The application's class, as the Create path needs it.
        WNDCLASSEXW wc = {};
        wc.cbSize = sizeof(wc);
        wc.style = CS_GLOBALCLASS;
        wc.lpfnWndProc = DefWindowProcW;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.lpszClassName = L"StepBar";
        RegisterClassExW(&wc);
        m_panel.UseTheme(testskin::kThemes[0]);
    }

    // A bar at (10, 10) of the panel, made by Create or by taking over a bordered static.
    void Make(int steps, int current, bool subclass = false, bool rtl = false)
    {
        m_bar.reset();
        HWND panel = m_panel.Open(RECT{60, 60, 500, 120}, rtl);
        m_bar.reset(new CVuikStepBarCtrl);
        if (subclass)
            ASSERT_TRUE(m_bar->SubclassWindow(CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | WS_BORDER, 10,
                                                              10, 50, 50, panel, nullptr, nullptr, nullptr)));
        else
            ASSERT_TRUE(m_bar->Create(panel, RECT{10, 10, 60, 60}, 9, WS_CHILD | WS_VISIBLE, 0));
        m_bar->SetNumberOfSteps(steps);
        for (int i = 0; i < current; ++i)
            m_bar->NextStep();
        for (int i = 0; i > current; --i)
            m_bar->PreviousStep();
        m_panel.Paint();
    }
    Capture Shown() const { return testskin::CaptureOnScreen(m_bar->m_hWnd); }
    uint32_t Piece(CVuikBitmap* CVuikStepBarStateSkin::*piece, int x, int y)
    {
        return testskin::ReadBitmap((m_bar->GetSkin()->GetStateSkin(0)->*piece)->GetPrimary()).At(x, y);
    }
    void Repaint()
    {
        UpdateWindow(m_bar->m_hWnd);
        msgseq::Recorder::Pump(20);
    }

    testskin::ThemedPanel m_panel;
    std::unique_ptr<CVuikStepBarCtrl> m_bar;
};

// A taken-over window loses its border (the goldens take every other bar over: it shows what a created bar
// shows); Create needs the application's class.
TEST_F(StepBar, TakenOverBarLosesItsBorderAndCreateNeedsTheClass)
{
    Make(4, 2, true);
    EXPECT_EQ(GetWindowLongPtrW(m_bar->m_hWnd, GWL_STYLE) & WS_BORDER, 0);
    CVuikStepBarCtrl other;
    EXPECT_FALSE(other.CVuikWindowImpl<CVuikStepBarSkin>::Create(L"StepBarMissing", m_panel.Hwnd(),
                                                                 RECT{0, 0, 10, 10}, L"", 1, WS_CHILD, 0, nullptr));
}

// The step operations only store: the picture moves on the repaint command; other commands change nothing.
TEST_F(StepBar, StepsShowOnlyAfterTheRepaintCommand)
{
    Make(4, 1);
    const int y = 6;
    const uint32_t fill = Piece(&CVuikStepBarStateSkin::m_pMiddle, 0, y);
    ASSERT_TRUE(testskin::Near(Shown().At(150, y), Piece(&CVuikStepBarStateSkin::m_pBackground, 150, y), 3));
    m_bar->NextStep();
    Repaint();
    EXPECT_NE(Shown().At(150, y), fill) << "NextStep painted by itself";
    EXPECT_EQ(SendMessageW(m_bar->m_hWnd, WM_COMMAND, 0, MAKELPARAM(12367, BN_CLICKED)), 1);
    Repaint();
    EXPECT_EQ(Shown().At(150, y), fill);
    m_bar->PreviousStep();
    EXPECT_EQ(SendMessageW(m_bar->m_hWnd, WM_COMMAND, 0, MAKELPARAM(12366, BN_CLICKED)), 1);
    Repaint();
    EXPECT_EQ(Shown().At(150, y), fill);
}

// Several counts stacked, one golden per theme and layout; every other bar is a taken-over static.
TEST_F(StepBar, Goldens)
{
    const int shapes[][2] = {{4, 0}, {4, 1}, {4, 3}, {4, 4}, {5, 2}, {0, 0}};
    for (const testskin::Theme& theme : testskin::kThemes)
        for (bool rtl : {false, true}) {
            m_panel.UseTheme(theme);
            testskin::LibraryState layout(rtl ? 1 : 0);
            const std::string name = std::string("stepbar_") + theme.tag + (rtl ? "_rtl" : "_ltr");
            SCOPED_TRACE(name);
            testskin::Strip strip;
            for (size_t i = 0; i < sizeof(shapes) / sizeof(shapes[0]); ++i) {
                Make(shapes[i][0], shapes[i][1], i % 2 == 1, rtl);
                strip.Add(Shown());
            }
            EXPECT_TRUE(zcmod_test::MatchesGolden(name, strip.width, strip.height, strip.pixels.data()));
        }
}

}  // namespace
