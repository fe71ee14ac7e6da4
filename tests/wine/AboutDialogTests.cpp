// The about box under Wine: the texts it reads and shows, the close paths by real input, right to
// left, its place on the screen, reviewed pictures in both themes and layouts, and handle hygiene.
#include <gtest/gtest.h>

#include <windows.h>

#include <functional>
#include <memory>
#include <string>

#include "AboutTestIds.h"
#include "DeviceTestSupport.h"
#include "DrivenModal.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "MessageSequence.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/CommonAboutDlg.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikLib.h"

using namespace zcmod_test;
using testskin::Capture;

namespace {

struct TestAboutDlg : CCommonAboutDlg {
    using CCommonAboutDlg::ClipToMonitor;
    using CCommonAboutDlg::LoadStringEx;
};

constexpr UINT kCaptionClose = 0x8001, kCaptionIcon = 0x8004;

tagABOUTBOXPARAMS Params(HWND parent, UINT product = IDS_ABOUT_TEST_PRODUCT, UINT icon = 0)
{
    tagABOUTBOXPARAMS params = {};
    params.m_hStringModule = params.m_hIconModule = GetModuleHandleW(nullptr);
    params.m_hParent = parent;
    params.m_nTitleId = IDS_ABOUT_TEST_TITLE;
    params.m_nProductId = product;
    params.m_nFooterId = IDS_ABOUT_TEST_FOOTER;
    params.m_nIconId = icon;
    return params;
}

// Runs the box modally while `drive`, on a second thread, gets it once shown; it must close the box. A
// watchdog fails the test and ends the box rather than hang.
INT_PTR RunModal(CCommonAboutDlg& about, const std::function<void(HWND)>& drive)
{
    const auto isAbout = [](HWND hwnd) { return GetPropW(hwnd, L"__DeskHubCCommonAboutDlgInstance") != nullptr; };
    return zcmod_test::RunModal([&] { return about.DoModal(); }, isAbout, drive, 10);
}

class AboutDialog : public testing::Test {
protected:
    void Use(const wchar_t* language, const wchar_t* theme = L"Default")
    {
        m_resources.reset();
        m_resources.reset(new FreshResources(m_registry, language, theme));
        CVuikLib::SetLayout(CRTLHelper::IsRTL(language) ? 1 : 0);
    }
    void SetUp() override
    {
        m_registry.SetBuildNumber(L"8.1.4");
        Use(L"eng");
    }
    void TearDown() override
    {
        CVuikLib::SetLayout(0);
        m_resources.reset();
    }
    SuiteRegistry m_registry;
    std::unique_ptr<FreshResources> m_resources;
    AppWindow m_app;
};

}  // namespace

TEST_F(AboutDialog, LoadStringExWalksTheTableWhateverTheLength)
{
    const HINSTANCE app = GetModuleHandleW(nullptr);
    const struct {
        HINSTANCE module;
        UINT id;
        int capacity;
        int length;
        const wchar_t* text;
    } cases[] = {
        {app, IDS_ABOUT_TEST_PRODUCT, 64, 16, L"Test Application"},
        {app, IDS_ABOUT_TEST_BLOCK_END, 64, 17, L"Last of its block"},
        {app, IDS_ABOUT_TEST_PRODUCT, 17, 16, L"Test Application"},  // just fits with its end
        {app, IDS_ABOUT_TEST_PRODUCT, 16, 16, L""},                  // doesn't fit: nothing copied
        {app, IDS_ABOUT_TEST_LONG, 0, 103, L""},
        {app, IDS_ABOUT_TEST_EMPTY, 64, 0, L""},
        {app, IDS_ABOUT_TEST_GAP, 64, 0, L""},
        {app, IDS_ABOUT_TEST_NO_BLOCK, 64, 0, L""},
        {nullptr, IDS_ABOUT_TEST_PRODUCT, 64, 0, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "id " << c.id << " capacity " << c.capacity);
        wchar_t buffer[64];
        wmemset(buffer, L'#', 64);
        EXPECT_EQ(TestAboutDlg::LoadStringEx(c.module, c.id, c.capacity ? buffer : nullptr, c.capacity), c.length);
        if (c.capacity) {
            EXPECT_STREQ(buffer, c.text);
            EXPECT_EQ(buffer[c.capacity - 1], L'\0') << "cleared to its end";
        }
    }
}

TEST_F(AboutDialog, ClosesByEveryPathWithItsId)
{
    CCommonAboutDlg early;
    EXPECT_EQ(early.DoModal(), -1) << "no params yet";

    enum How { OkButton, CaptionClose, Escape, Enter };
    const struct {
        How how;
        UINT icon;
        INT_PTR result;
    } cases[] = {{OkButton, 0, IDOK}, {CaptionClose, IDS_ABOUT_TEST_PRODUCT, IDCANCEL}, {Escape, 0, IDCANCEL},
                 {Enter, IDS_ABOUT_TEST_PRODUCT, IDOK}};
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.how));
        CCommonAboutDlg about;
        tagABOUTBOXPARAMS params = Params(m_app.Get(), IDS_ABOUT_TEST_PRODUCT, c.icon);
        about.SetAboutBoxParams(&params);
        HWND seen = nullptr;
        const INT_PTR result = RunModal(about, [&](HWND box) {
            seen = box;
            EXPECT_EQ(GetPropW(box, L"__DeskHubCCommonAboutDlgInstance"), static_cast<HANDLE>(&about));
            EXPECT_TRUE(GetClassLongPtrW(box, GCL_STYLE) & CS_DROPSHADOW) << "a shadow, which no capture shows";
            EXPECT_EQ(GetDlgItem(box, kCaptionIcon) != nullptr, c.icon != 0) << "the caption icon";
            HWND ok = GetDlgItem(box, IDOK);
            ASSERT_NE(ok, nullptr);
            switch (c.how) {
                case OkButton: msgseq::input::Click(msgseq::input::Centre(ok)); break;
                case CaptionClose: msgseq::input::Click(msgseq::input::Centre(GetDlgItem(box, kCaptionClose))); break;
                case Escape: msgseq::input::Press(VK_ESCAPE); break;
                case Enter: msgseq::input::Press(VK_RETURN); break;
            }
        });
        EXPECT_EQ(result, c.result);
        EXPECT_FALSE(IsWindow(seen));
        EXPECT_EQ(about.GetSafeHwnd(), nullptr);
    }
}

TEST_F(AboutDialog, CentresOverItsParentOrTheDesktopAndStaysOnTheMonitor)
{
    const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    const struct {
        RECT parent;
        bool minimised;
        POINT topLeft;  // where the box's top left corner is expected
    } cases[] = {
        {{100, 100, 900, 700}, false, {100 + (800 - 537) / 2, 100 + (600 - 380) / 2}},
        {{100, 100, 900, 700}, true, {(screen.right - 537) / 2, (screen.bottom - 380) / 2}},
        {{-300, -200, 100, 100}, false, {0, 0}},  // would hang off the top left: kept on the monitor
        {{screen.right - 100, screen.bottom - 100, screen.right + 300, screen.bottom + 100}, false,
         {screen.right - 537, screen.bottom - 380}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.parent.left << "," << c.parent.top << (c.minimised ? " minimised" : ""));
        MoveWindow(m_app.Get(), c.parent.left, c.parent.top, c.parent.right - c.parent.left,
                   c.parent.bottom - c.parent.top, TRUE);
        ShowWindow(m_app.Get(), c.minimised ? SW_MINIMIZE : SW_RESTORE);
        MoveWindow(m_app.Get(), c.parent.left, c.parent.top, c.parent.right - c.parent.left,
                   c.parent.bottom - c.parent.top, TRUE);
        CCommonAboutDlg about;
        tagABOUTBOXPARAMS params = Params(m_app.Get());
        about.SetAboutBoxParams(&params);
        RECT placed = {};
        RunModal(about, [&](HWND box) {
            GetWindowRect(box, &placed);
            PostMessageW(box, WM_COMMAND, IDOK, 0);
        });
        EXPECT_EQ(placed.left, c.topLeft.x);
        EXPECT_EQ(placed.top, c.topLeft.y);
    }
    ShowWindow(m_app.Get(), SW_RESTORE);

    // Too large for the monitor: the left and top edges stay on it.
    RECT huge = {-50, -60, screen.right + 500, screen.bottom + 400};
    TestAboutDlg::ClipToMonitor(huge);
    EXPECT_EQ(huge.left, 0);
    EXPECT_EQ(huge.top, 0);
    EXPECT_EQ(huge.right - huge.left, screen.right + 550) << "the size is kept";
}

// Hebrew under a left-to-right library layout: the language alone flips the template, so the OK button and the
// caption's close button change sides. (With the library's layout turned, the goldens pin the mirrored box.)
TEST_F(AboutDialog, RightToLeftLanguageFlipsTheTemplate)
{
    Use(L"heb");
    CVuikLib::SetLayout(0);
    CCommonAboutDlg about;
    tagABOUTBOXPARAMS params = Params(m_app.Get());
    about.SetAboutBoxParams(&params);
    RunModal(about, [&](HWND box) {
        EXPECT_TRUE(GetWindowLongW(box, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
        RECT frame, ok, close;
        GetWindowRect(box, &frame);
        GetWindowRect(GetDlgItem(box, IDOK), &ok);
        GetWindowRect(GetDlgItem(box, kCaptionClose), &close);
        EXPECT_EQ(ok.left - frame.left, 33) << "the OK button 33 pixels in from the left";
        EXPECT_LT(close.left - frame.left, (frame.right - frame.left) / 2);
        wchar_t text[16] = {};
        GetWindowTextW(GetDlgItem(box, IDOK), text, 16);
        EXPECT_STREQ(text, L"\x05D0\x05D9\x05E9\x05D5\x05E8") << "the OK button's name (its tip; drawn as a mark)";
        PostMessageW(box, WM_COMMAND, IDOK, 0);
    });
}

// The whole box in both themes and layouts, against reviewed pictures (the texts shown among them).
TEST_F(AboutDialog, Golden)
{
    for (const wchar_t* theme : {L"Default", L"Graphite"})
        for (const wchar_t* language : {L"eng", L"heb"}) {
            Use(language, theme);
            const std::string name = std::string("about_") + (theme[0] == L'D' ? "Default" : "Graphite") +
                                     (language[0] == L'h' ? "_rtl" : "_ltr");
            SCOPED_TRACE(name);
            // Params given again replace the earlier ones; a missing string reads as empty.
            CCommonAboutDlg about;
            tagABOUTBOXPARAMS params = Params(m_app.Get(), IDS_ABOUT_TEST_LONG);
            params.m_nFooterId = IDS_ABOUT_TEST_NO_BLOCK;
            about.SetAboutBoxParams(&params);
            EXPECT_STREQ(about.GetFooterText(), L"") << "a missing string reads as empty";
            params = Params(nullptr, IDS_ABOUT_TEST_PRODUCT, IDS_ABOUT_TEST_PRODUCT);
            about.SetAboutBoxParams(&params);
            RunModal(about, [&](HWND box) {
                Capture shown = testskin::CaptureOnScreen(box);
                testskin::CutToRegion(shown, box);
                EXPECT_TRUE(MatchesGolden(name, shown.width, shown.height, shown.pixels.data(), 8));
                PostMessageW(box, WM_COMMAND, IDOK, 0);
            });
        }
}

TEST_F(AboutDialog, FreesEverythingOverRepeatedUse)
{
    HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    const auto cycle = [&] {
        CCommonAboutDlg about;
        tagABOUTBOXPARAMS params = Params(m_app.Get(), IDS_ABOUT_TEST_PRODUCT, IDS_ABOUT_TEST_PRODUCT);
        about.SetAboutBoxParams(&params);
        about.SetAboutBoxParams(&params);
        RunModal(about, [](HWND box) { PostMessageW(box, WM_COMMAND, IDCANCEL, 0); });
        // The same object again, its box ended from outside.
        RunModal(about, [](HWND box) { EndDialog(box, IDOK); });
    };
    cycle();
    const auto before = counter.Live();
    for (int i = 0; i < 5; ++i)
        cycle();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " against " << before.ToString();
}
