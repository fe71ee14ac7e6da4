// The skinned file dialog: the platform's open and save dialogs run with our hook and bars, each driven from
// a second thread with a watchdog; results, the structure passed back, the one-dialog-at-a-time rule, a
// caller's own template, and the bars keeping their sizes as the dialog grows.
#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DeviceTestSupport.h"
#include "DrivenModal.h"
#include "FileDlgTestIds.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "PhoneShellSupport.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "static_pieces.h"
#include "zcmod/VuikFileDlg.h"

using namespace testskin;
using zcmod_test::Cancel;
using zcmod_test::RunFileDialog;

namespace {

// Pieces of the test program with three different sizes, so that a bar in the wrong place shows: the top bar
// is HBAR_START_H high, the strip VBAR_MIDDLE_H, the side bar HBAR_START_W wide.
const CVuikFileDlgSkinDef kTestDef = {
    {1, IDB_HBAR_START, IDB_HBAR_MIDDLE, IDB_HBAR_END},
    {1, IDB_VBAR_START, IDB_VBAR_MIDDLE, IDB_VBAR_END},
    {1, IDB_HBAR_START, IDB_HBAR_MIDDLE, IDB_HBAR_END},
    {0, IDB_HBAR_START, IDB_HBAR_MIDDLE, IDB_HBAR_END},
};
const int kTop = HBAR_START_H, kStrip = VBAR_MIDDLE_H, kSide = HBAR_START_W;

// Sizes the platform function was called with, recorded around the real open dialog.
std::vector<DWORD> g_sizes;
BOOL WINAPI RecordingOpen(LPOPENFILENAMEW ofn)
{
    g_sizes.push_back(ofn->lStructSize);
    return ::GetOpenFileNameW(ofn);
}

class VuikFileDlg : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_lib = std::make_unique<LibraryState>();
        m_skin.SetSkinDef(kTestDef);
        m_skin.Load();
        CVuikFileDlg::SetDefaultSkin(&m_skin);
        g_sizes.clear();
        m_ofn = zcmod_test::Ofn(m_file, MAX_PATH);
    }
    void TearDown() override
    {
        CVuikFileDlg::SetDefaultSkin(nullptr);
        m_lib.reset();
    }
    std::unique_ptr<LibraryState> m_lib;
    CVuikFileDlgSkin m_skin;
    OPENFILENAMEW m_ofn;
    wchar_t m_file[MAX_PATH] = {};
};

// Cancelled, with a file chosen, or on the caller's own template: the hook builds its bars inside the
// dialog, and the caller's structure comes back with its own size and template.
TEST_F(VuikFileDlg, RunsSkinnedAndGivesTheCallersStructureBack)
{
    const std::wstring chosen =
        zcmod_test::TempFolder() + L"zcmod-filedlg-" + std::to_wstring(GetCurrentProcessId()) + L".txt";
    zcmod_test::WriteText(chosen, "x");
    struct Case {
        const char* name;
        BOOL (*call)(OPENFILENAMEW*);
        DWORD size;
        bool choose, callersTemplate;
    } cases[] = {
        {"save, full size", CVuikFileDlg::GetSaveFileNameW, sizeof(OPENFILENAMEW), false, false},
        {"open, older size", CVuikFileDlg::GetOpenFileNameW, OPENFILENAME_SIZE_VERSION_400W, false, false},
        {"open, a file chosen", CVuikFileDlg::GetOpenFileNameW, sizeof(OPENFILENAMEW), true, false},
        {"open, the caller's template", CVuikFileDlg::GetOpenFileNameW, sizeof(OPENFILENAMEW), false, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_file[0] = 0;
        m_ofn = zcmod_test::Ofn(m_file, MAX_PATH, c.choose ? OFN_FILEMUSTEXIST : 0);
        m_ofn.lStructSize = c.size;
        if (c.callersTemplate) {
            m_ofn.hInstance = GetModuleHandleW(nullptr);
            m_ofn.lpTemplateName = MAKEINTRESOURCEW(IDD_FILEDLG_CALLER);
        }
        std::atomic<bool> skinned{false}, ownLabel{false};
        EXPECT_EQ(RunFileDialog([&] { return c.call(&m_ofn); },
                                [&](HWND dialog) {
                                    CVuikFileDlg* dlg = CVuikFileDlg::m_pInstance;
                                    skinned = dlg && IsWindow(dlg->GetTopBar()) && IsWindow(dlg->GetSideBar()) &&
                                              dlg->GetStandardDialog() == dialog;
                                    HWND hook = dlg ? GetParent(GetParent(dlg->GetTopBar())) : nullptr;
                                    ownLabel =
                                        hook && GetParent(hook) == dialog && GetDlgItem(hook, IDC_FILEDLG_CALLER_LABEL);
                                    c.choose ? zcmod_test::Enter(dialog, chosen) : Cancel(dialog);
                                }),
                  c.choose);
        EXPECT_TRUE(skinned) << "the hook did not build its bars inside the dialog";
        EXPECT_EQ(ownLabel, c.callersTemplate);
        EXPECT_EQ(std::wstring(m_file), c.choose ? chosen : L"");
        EXPECT_EQ(m_ofn.lStructSize, c.size);
        // The caller's template by name, else the library's own in memory.
        EXPECT_EQ(m_ofn.Flags & (OFN_EXPLORER | OFN_ENABLESIZING | OFN_ENABLEHOOK | OFN_ENABLETEMPLATE |
                                 OFN_ENABLETEMPLATEHANDLE),
                  static_cast<DWORD>(OFN_EXPLORER | OFN_ENABLESIZING | OFN_ENABLEHOOK |
                                     (c.callersTemplate ? OFN_ENABLETEMPLATE : OFN_ENABLETEMPLATEHANDLE)));
        if (c.callersTemplate) {
            EXPECT_EQ(m_ofn.hInstance, GetModuleHandleW(nullptr));
        }
        EXPECT_EQ(CVuikFileDlg::m_pInstance, nullptr);
    }
    DeleteFileW(chosen.c_str());
}

// Only the latest object runs a dialog, and only with a skin; it tries the larger structure first, which the
// platform refuses, then the smaller one.
TEST_F(VuikFileDlg, OnlyTheLatestObjectRunsAndRetriesARefusedSizeSmaller)
{
    {
        CVuikFileDlg first(RecordingOpen, &m_ofn);
        CVuikFileDlg second(RecordingOpen, &m_ofn);
        EXPECT_EQ(first.DoModal(), -1);
        EXPECT_TRUE(g_sizes.empty()) << "the first object ran a dialog";
        EXPECT_EQ(RunFileDialog([&] { return second.DoModal(); }, Cancel), 2);
        ASSERT_FALSE(g_sizes.empty());
        EXPECT_EQ(g_sizes.front(), 168u);
        EXPECT_EQ(g_sizes.back(), 152u);
    }
    EXPECT_EQ(CVuikFileDlg::m_pInstance, nullptr);

    g_sizes.clear();
    CVuikFileDlg::SetDefaultSkin(nullptr);
    CVuikFileDlg bare(RecordingOpen, &m_ofn);
    EXPECT_EQ(bare.DoModal(), -1);
    EXPECT_TRUE(g_sizes.empty()) << "a dialog ran without a skin";
}

// Each run makes the dialog larger (which sets the repaint timer): its bars keep their thickness and reach its
// edges. Bars, back buffers, the timer and the parent's procedure all go with the dialog.
TEST_F(VuikFileDlg, GrownDialogsKeepTheBarsThicknessAndLeaveNothingBehind)
{
    zcmod_test::HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    auto cycle = [&] {
        RECT hook = {}, top = {}, strip = {}, side = {};
        EXPECT_FALSE(RunFileDialog([&] { return CVuikFileDlg::GetOpenFileNameW(&m_ofn); },
                                   [&](HWND dialog) {
                                       SetWindowPos(dialog, nullptr, 0, 0, 820, 600, SWP_NOMOVE | SWP_NOZORDER);
                                       Sleep(50);
                                       if (CVuikFileDlg* dlg = CVuikFileDlg::m_pInstance) {
                                           GetClientRect(GetParent(GetParent(dlg->GetTopBar())), &hook);
                                           GetClientRect(dlg->GetTopBar(), &top);
                                           GetClientRect(dlg->GetStrip(), &strip);
                                           GetClientRect(dlg->GetSideBar(), &side);
                                       }
                                       Cancel(dialog);
                                   }));
        EXPECT_GT(hook.right, 700) << "the dialog did not grow";
        EXPECT_EQ(top.bottom, kTop);
        EXPECT_EQ(strip.bottom, kStrip);
        EXPECT_EQ(side.right, kSide);
        EXPECT_EQ(top.right, hook.right);
        EXPECT_EQ(strip.right, hook.right);
        EXPECT_EQ(side.bottom, hook.bottom - kTop - kStrip);
    };
    cycle();
    const auto before = counter.Live();
    for (int i = 0; i < 3; ++i)
        cycle();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    EXPECT_EQ(CVuikFileDlg::m_pfnSuperWndProcParent, nullptr);
}

// The open dialog in both themes and layouts against reviewed pictures: the theme's bars (every piece of the
// default skin, which each theme must carry) around the platform's controls, on a folder of fixed names so that
// nothing of the machine shows, the focus on OK (no caret).
TEST_F(VuikFileDlg, Golden)
{
    const std::wstring folder = zcmod_test::TempFolder() + L"zcmod-filedlg-golden";
    zcmod_test::MakeFolders(folder + L"\\Photos");
    for (const wchar_t* name : {L"\\notes.txt", L"\\report.txt"})
        zcmod_test::WriteText(folder + name, "x");
    m_ofn.lpstrInitialDir = folder.c_str();
    zcmod_test::SuiteRegistry registry;
    for (const Look& look : kLooks) {
        SCOPED_TRACE(look.Suffix());
        zcmod_test::FreshResources resources(registry, look.Language(), look.theme);  // as an application of the suite
        CVuikLib::SetLayout(look.rtl ? LAYOUT_RTL : 0);
        CVuikFileDlg::SetDefaultSkin(CVuikFileDlg::GetThemeSkin());
        Capture shown;
        RunFileDialog([&] { return CVuikFileDlg::GetOpenFileNameW(&m_ofn); },
                      [&](HWND dialog) {
                          SetWindowPos(dialog, nullptr, 0, 0, 600, 420, SWP_NOMOVE | SWP_NOZORDER);
                          SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, IDOK)), TRUE);
                          Sleep(400);  // the repaint timer and the view's list have run
                          shown = CaptureWindow(dialog);
                          Cancel(dialog);
                      });
        EXPECT_TRUE(zcmod_test::MatchesGolden("filedlg_open_" + look.Suffix(), shown.width, shown.height,
                                              shown.pixels.data(), 8));
        CVuikFileDlg::SetDefaultSkin(nullptr);
    }
    zcmod_test::RemoveTree(folder);
}

}  // namespace
