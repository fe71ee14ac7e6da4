// The step bar of a wizard with the shipped themes' pieces: what the bar shows for a count of steps and a
// current step (none, some, all, past the end, below the start), that the step operations only store until
// the application repaints, both ways of making one, and pixel goldens. Pixels are read from the screen.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>
#include <vector>

#include "Golden.h"
#include "wine/TestSkins.h"
#include "wine/TestSupport.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikStepBarCtrl.h"

namespace {

using testskin::Capture;

const wchar_t kStepBarClass[] = L"StepBar";

// A pixel of a piece as it was loaded (0x00RRGGBB).
uint32_t Pixel(CVuikBitmap* piece, int x, int y)
{
    return testskin::ReadBitmap(piece->GetPrimary()).At(x, y);
}

struct Theme {
    const wchar_t* name;
    const char* tag;
    COLORREF window;
};
const Theme kDefault = {L"Default", "Default", RGB(0xf2, 0xf5, 0xf9)};
const Theme kGraphite = {L"Graphite", "Graphite", RGB(0x23, 0x27, 0x2e)};

// The application's class, as the Create path needs it.
void RegisterStepBarClass()
{
    static bool registered = false;
    if (registered)
        return;
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    wc.style = CS_GLOBALCLASS;
    wc.lpfnWndProc = DefWindowProcW;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = kStepBarClass;
    registered = RegisterClassExW(&wc) != 0;
}

class StepBar : public ::testing::Test {
protected:
    void SetUp() override
    {
        RegisterStepBarClass();
        UseTheme(kDefault);
    }
    void TearDown() override { Destroy(); }
    void UseTheme(const Theme& theme)
    {
        m_theme = theme;
        m_registry.SetMachineTheme(theme.name);
        m_panelSkin.SetSkinDef({theme.window, theme.window});
    }

    // A panel in the window colour at (60, 60) with a bar at (10, 10), made by Create or by taking over a
    // bordered static.
    void Make(int steps, int current, bool subclass = false, bool rtl = false)
    {
        Destroy();
        m_panel.SetSkin(&m_panelSkin);
        m_panel.Create(msgseq::PlainClass(), nullptr, RECT{60, 60, 500, 120}, L"", 0,
                       WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, rtl ? WS_EX_LAYOUTRTL : 0, nullptr);
        ASSERT_TRUE(m_panel.m_hWnd);
        m_bar.reset(new CVuikStepBarCtrl);
        if (subclass) {
            HWND plain = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | WS_BORDER, 10, 10, 50, 50,
                                         m_panel.m_hWnd, nullptr, GetModuleHandleW(nullptr), nullptr);
            ASSERT_TRUE(m_bar->SubclassWindow(plain));
        } else {
            ASSERT_TRUE(m_bar->Create(m_panel.m_hWnd, RECT{10, 10, 60, 60}, 9, WS_CHILD | WS_VISIBLE, 0));
        }
        m_bar->SetNumberOfSteps(steps);
        for (int i = 0; i < current; ++i)
            m_bar->NextStep();
        for (int i = 0; i > current; --i)
            m_bar->PreviousStep();
        SetForegroundWindow(m_panel.m_hWnd);
        RedrawWindow(m_panel.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        msgseq::Recorder::Pump(20);
    }
    void Destroy()
    {
        m_panel.DeleteBackBuffer();
        if (m_panel.m_hWnd && IsWindow(m_panel.m_hWnd))
            DestroyWindow(m_panel.m_hWnd);
        m_panel.m_hWnd = nullptr;
        m_bar.reset();
    }
    Capture Shown() const
    {
        RECT r;
        GetWindowRect(m_bar->m_hWnd, &r);
        testskin::Canvas canvas(r.right - r.left, r.bottom - r.top);
        HDC screen = GetDC(nullptr);
        BitBlt(canvas, 0, 0, r.right - r.left, r.bottom - r.top, screen, r.left, r.top, SRCCOPY);
        ReleaseDC(nullptr, screen);
        return canvas.Read();
    }
    CVuikStepBarStateSkin* Pieces() { return m_bar->GetSkin()->GetStateSkin(0); }

    zcmod_test::SuiteRegistry m_registry;
    testskin::LibraryState m_library;
    Theme m_theme = kDefault;
    testskin::CTestSkin m_panelSkin;
    testskin::CTestPanel m_panel;
    std::unique_ptr<CVuikStepBarCtrl> m_bar;
};

// What the bar shows, left to right, in the middle row: the filling up to the current step's share of the
// empty bar's width, the separators between steps, and the end piece once every step is done.
TEST_F(StepBar, FillsUpToTheCurrentStep)
{
    const struct {
        const char* what;
        int n, c;
        int filledTo;  // columns before this show the filling; -1: none at all
        bool end;      // the end piece closes the bar
    } cases[] = {
        {"no steps", 0, 0, -1, true},
        {"at the start", 4, 0, -1, false},
        {"half way", 4, 2, 200, false},
        {"all done", 4, 4, 400, true},
        {"past the end", 4, 6, 400, true},
        {"below the start", 4, -1, -1, false},
        {"uneven steps", 3, 1, 133, false},
    };
    for (bool subclass : {false, true}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.what) + (subclass ? ", subclassed" : ", created"));
            Make(c.n, c.c, subclass);
            EXPECT_EQ(m_bar->GetStepCount(), c.n);
            EXPECT_EQ(m_bar->GetCurrentStep(), c.c);
            CVuikStepBarStateSkin* p = Pieces();
            ASSERT_TRUE(p->m_pBackground && p->m_pLeft && p->m_pMiddle && p->m_pRight && p->m_pSeparator);
            const int width = p->m_pBackground->GetWidth(), y = p->m_pBackground->GetHeight() / 2;
            const Capture shown = Shown();
            ASSERT_EQ(shown.width, width) << "the bar takes the empty bar's size";
            ASSERT_EQ(shown.height, p->m_pBackground->GetHeight());
            const uint32_t fill = Pixel(p->m_pMiddle, 0, y);
            const uint32_t gap = Pixel(p->m_pSeparator, 0, y);
            const int seg = c.n > 0 ? width / c.n : 0;
            for (int x = 10; x < width - 10; ++x) {
                bool separator = false;
                for (int i = 1; i < c.n; ++i)
                    separator = separator || (x >= i * seg && x < i * seg + p->m_pSeparator->GetWidth());
                const uint32_t at = shown.At(x, y);
                if (separator)
                    ASSERT_EQ(at, gap) << "x " << x;
                else if (x < c.filledTo)
                    ASSERT_EQ(at, fill) << "x " << x;
                else
                    ASSERT_NE(at, fill) << "x " << x;
            }
            // The end piece is blended onto the bar through its mask: a step off in a channel is the same.
            EXPECT_EQ(testskin::Near(shown.At(width - 3, y), Pixel(p->m_pRight, 3, y), 3), c.end);
        }
    }
}

// The step operations only store: the picture moves when the application repaints, here with the command
// the bar answers by repainting itself.
TEST_F(StepBar, StepsShowOnlyAfterTheRepaintCommand)
{
    Make(4, 1);
    const int y = 6;
    const uint32_t fill = Pixel(Pieces()->m_pMiddle, 0, y);
    ASSERT_TRUE(testskin::Near(Shown().At(150, y), Pixel(Pieces()->m_pBackground, 150, y), 3));
    m_bar->NextStep();
    UpdateWindow(m_bar->m_hWnd);
    msgseq::Recorder::Pump(20);
    EXPECT_NE(Shown().At(150, y), fill) << "NextStep painted by itself";
    EXPECT_EQ(SendMessageW(m_bar->m_hWnd, WM_COMMAND, 0, MAKELPARAM(12367, BN_CLICKED)), 1);
    UpdateWindow(m_bar->m_hWnd);
    msgseq::Recorder::Pump(20);
    EXPECT_EQ(Shown().At(150, y), fill);
    // Any other command is answered the same, and changes nothing.
    m_bar->PreviousStep();
    EXPECT_EQ(SendMessageW(m_bar->m_hWnd, WM_COMMAND, 0, MAKELPARAM(12366, BN_CLICKED)), 1);
    UpdateWindow(m_bar->m_hWnd);
    msgseq::Recorder::Pump(20);
    EXPECT_EQ(Shown().At(150, y), fill);
}

// Taking over a window clears its border; the Create path needs the application's class.
TEST_F(StepBar, SubclassClearsBorderAndCreateNeedsTheClass)
{
    Make(3, 1, true);
    EXPECT_EQ(GetWindowLongPtrW(m_bar->m_hWnd, GWL_STYLE) & WS_BORDER, 0);
    RECT r;
    GetClientRect(m_bar->m_hWnd, &r);
    EXPECT_EQ(r.right, Pieces()->m_pBackground->GetWidth()) << "the border's columns are gone from the client";
    UnregisterClassW(L"StepBarMissing", GetModuleHandleW(nullptr));
    CVuikStepBarCtrl other;
    EXPECT_FALSE(other.CVuikWindowImpl<CVuikStepBarSkin>::Create(L"StepBarMissing", m_panel.m_hWnd,
                                                                 RECT{0, 0, 10, 10}, L"", 1, WS_CHILD, 0, nullptr));
}

// The bar in both themes and layouts: one golden each, several counts stacked.
TEST_F(StepBar, Goldens)
{
    const int shapes[][2] = {{4, 0}, {4, 1}, {4, 3}, {4, 4}, {5, 2}, {0, 0}};
    for (const Theme* theme : {&kDefault, &kGraphite})
        for (bool rtl : {false, true}) {
            UseTheme(*theme);
            testskin::LibraryState layout(rtl ? 1 : 0);
            const std::string name = std::string("stepbar_") + theme->tag + (rtl ? "_rtl" : "_ltr");
            SCOPED_TRACE(name);
            std::vector<uint32_t> strip;
            int width = 0, height = 0;
            for (const auto& s : shapes) {
                Make(s[0], s[1], false, rtl);
                const Capture c = Shown();
                width = c.width;
                height += c.height;
                strip.insert(strip.end(), c.pixels.begin(), c.pixels.end());
            }
            EXPECT_TRUE(zcmod_test::MatchesGolden(name, width, height, strip.data()));
        }
}

}  // namespace
