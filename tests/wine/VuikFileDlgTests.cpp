// The skinned file dialog: the platform's open and save dialogs run with our hook and bars, each driven from
// a second thread with a watchdog; results, the structure passed back, the one-dialog-at-a-time rule, a
// caller's own template, and the bars keeping their sizes as the dialog is resized.
#include <gtest/gtest.h>

#include <windows.h>

#include <dlgs.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "DeviceTestSupport.h"
#include "DrivenModal.h"
#include "FileDlgTestIds.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "static_pieces.h"
#include "zcmod/VuikFileDlg.h"

using namespace testskin;

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

HWND FindFileDialog(DWORD thread)
{
    HWND found = nullptr;
    for (int i = 0; i < 500 && !found; ++i) {
        EnumThreadWindows(
            thread,
            [](HWND hwnd, LPARAM data) {
                if (IsWindowVisible(hwnd) && GetDlgItem(hwnd, cmb2)) {
                    *reinterpret_cast<HWND*>(data) = hwnd;
                    return FALSE;
                }
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&found));
        if (!found)
            Sleep(10);
    }
    return found;
}

// Runs `call` on this thread while `steps` drives its dialog from another, under a watchdog.
template <class Call>
auto RunDriven(Call call, const std::function<void(HWND)>& steps) -> decltype(call())
{
    return zcmod_test::RunDriven(call, [&](DWORD self) {
        HWND dialog = FindFileDialog(self);
        if (!dialog)
            return;
        Sleep(100);  // let CDN_INITDONE and the first paint pass
        steps(dialog);
    });
}

void Cancel(HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); }

RECT ClientOf(HWND hwnd)
{
    RECT r = {};
    GetClientRect(hwnd, &r);
    return r;
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
        ZeroMemory(&m_ofn, sizeof(m_ofn));
        m_ofn.lStructSize = sizeof(m_ofn);
        m_ofn.lpstrFile = m_file;
        m_ofn.nMaxFile = MAX_PATH;
        m_ofn.lpstrFilter = L"All files\0*.*\0";
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

TEST_F(VuikFileDlg, CancelGivesTwoAndTheCallersSizeBack)
{
    struct Case {
        const char* name;
        BOOL (*call)(OPENFILENAMEW*);
        DWORD size;
    } cases[] = {
        {"open, full size", CVuikFileDlg::GetOpenFileNameW, sizeof(OPENFILENAMEW)},
        {"save, full size", CVuikFileDlg::GetSaveFileNameW, sizeof(OPENFILENAMEW)},
        {"open, older size", CVuikFileDlg::GetOpenFileNameW, OPENFILENAME_SIZE_VERSION_400W},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        m_ofn.lStructSize = c.size;
        m_ofn.Flags = 0;
        std::atomic<bool> skinned{false};
        EXPECT_FALSE(RunDriven([&] { return c.call(&m_ofn); }, [&](HWND dialog) {
            CVuikFileDlg* dlg = CVuikFileDlg::m_pInstance;
            skinned = dlg && IsWindow(dlg->GetTopBar()) && IsWindow(dlg->GetSideBar()) &&
                      dlg->GetStandardDialog() == dialog;
            Cancel(dialog);
        }));
        EXPECT_TRUE(skinned) << "the hook did not build its bars inside the dialog";
        EXPECT_EQ(m_ofn.lStructSize, c.size);
        EXPECT_EQ(m_ofn.Flags & (OFN_EXPLORER | OFN_ENABLESIZING | OFN_ENABLEHOOK),
                  static_cast<DWORD>(OFN_EXPLORER | OFN_ENABLESIZING | OFN_ENABLEHOOK));
        EXPECT_EQ(CVuikFileDlg::m_pInstance, nullptr);
    }
}

TEST_F(VuikFileDlg, ChosenFileGivesOneWithThePath)
{
    wchar_t temp[MAX_PATH], longer[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    GetLongPathNameW(temp, longer, MAX_PATH);
    const std::wstring path = std::wstring(longer) + L"zcmod-filedlg-" + std::to_wstring(GetCurrentProcessId()) + L".txt";
    std::ofstream(path.c_str()) << "x";
    m_ofn.Flags = OFN_FILEMUSTEXIST;
    EXPECT_TRUE(RunDriven([&] { return CVuikFileDlg::GetOpenFileNameW(&m_ofn); }, [&](HWND dialog) {
        SendMessageW(GetDlgItem(dialog, cmb13) ? GetDlgItem(dialog, cmb13) : GetDlgItem(dialog, edt1), WM_SETTEXT, 0,
                     reinterpret_cast<LPARAM>(path.c_str()));
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
    }));
    EXPECT_EQ(std::wstring(m_file), path);
    EXPECT_EQ(m_ofn.lStructSize, sizeof(OPENFILENAMEW));
    DeleteFileW(path.c_str());
}

// The larger structure is tried first; the platform refuses it and the smaller one is used.
TEST_F(VuikFileDlg, RefusedSizeIsRetriedSmaller)
{
    CVuikFileDlg dlg(RecordingOpen, &m_ofn);
    EXPECT_EQ(RunDriven([&] { return dlg.DoModal(); }, Cancel), 2);
    ASSERT_FALSE(g_sizes.empty());
    EXPECT_EQ(g_sizes.front(), 168u);
    EXPECT_EQ(g_sizes.back(), 152u);
    OPENFILENAMEW out = {};
    out.lStructSize = sizeof(out);
    dlg.GetData(&out);
    EXPECT_EQ(out.lpstrFile, m_file);
}

TEST_F(VuikFileDlg, OnlyTheLatestObjectRunsAndASkinIsNeeded)
{
    {
        CVuikFileDlg first(RecordingOpen, &m_ofn);
        CVuikFileDlg second(RecordingOpen, &m_ofn);
        EXPECT_EQ(first.DoModal(), -1);
        EXPECT_TRUE(g_sizes.empty()) << "the first object ran a dialog";
        EXPECT_EQ(RunDriven([&] { return second.DoModal(); }, Cancel), 2);
    }
    EXPECT_EQ(CVuikFileDlg::m_pInstance, nullptr);

    g_sizes.clear();
    CVuikFileDlg::SetDefaultSkin(nullptr);
    CVuikFileDlg bare(RecordingOpen, &m_ofn);
    EXPECT_EQ(bare.DoModal(), -1);
    EXPECT_TRUE(g_sizes.empty()) << "a dialog ran without a skin";
}

TEST_F(VuikFileDlg, CallersTemplateIsUsedAndHooked)
{
    m_ofn.hInstance = GetModuleHandleW(nullptr);
    m_ofn.lpTemplateName = MAKEINTRESOURCEW(IDD_FILEDLG_CALLER);
    std::atomic<bool> ownLabel{false}, skinned{false};
    EXPECT_FALSE(RunDriven([&] { return CVuikFileDlg::GetOpenFileNameW(&m_ofn); }, [&](HWND dialog) {
        CVuikFileDlg* dlg = CVuikFileDlg::m_pInstance;
        skinned = dlg && IsWindow(dlg->GetTopBar());
        HWND hook = dlg ? GetParent(GetParent(dlg->GetTopBar())) : nullptr;
        ownLabel = hook && GetParent(hook) == dialog && GetDlgItem(hook, IDC_FILEDLG_CALLER_LABEL);
        Cancel(dialog);
    }));
    EXPECT_TRUE(ownLabel);
    EXPECT_TRUE(skinned);
    EXPECT_EQ(m_ofn.hInstance, GetModuleHandleW(nullptr));
    EXPECT_EQ(m_ofn.Flags & (OFN_ENABLETEMPLATE | OFN_ENABLETEMPLATEHANDLE), static_cast<DWORD>(OFN_ENABLETEMPLATE));
}

TEST_F(VuikFileDlg, ResizingKeepsTheBarsThickness)
{
    struct Size {
        int width, height;
    } sizes[] = {{700, 520}, {560, 420}, {820, 600}};
    struct Seen {
        RECT hook, top, strip, side, title;
    };
    std::vector<Seen> seen;
    EXPECT_FALSE(RunDriven([&] { return CVuikFileDlg::GetOpenFileNameW(&m_ofn); }, [&](HWND dialog) {
        CVuikFileDlg* dlg = CVuikFileDlg::m_pInstance;
        if (!dlg)
            return Cancel(dialog);
        for (const Size& s : sizes) {
            SetWindowPos(dialog, nullptr, 0, 0, s.width, s.height, SWP_NOMOVE | SWP_NOZORDER);
            Sleep(50);
            HWND hook = GetParent(GetParent(dlg->GetTopBar()));
            seen.push_back({ClientOf(hook), ClientOf(dlg->GetTopBar()), ClientOf(dlg->GetStrip()),
                            ClientOf(dlg->GetSideBar()), ClientOf(dlg->GetStripTitle())});
        }
        Cancel(dialog);
    }));
    ASSERT_EQ(seen.size(), 3u);
    for (size_t i = 0; i < seen.size(); ++i) {
        SCOPED_TRACE(i);
        const Seen& s = seen[i];
        EXPECT_EQ(s.top.bottom, kTop);
        EXPECT_EQ(s.strip.bottom, kStrip);
        EXPECT_EQ(s.side.right, kSide);
        EXPECT_EQ(s.top.right, s.hook.right);
        EXPECT_EQ(s.strip.right, s.hook.right);
        EXPECT_EQ(s.title.right, s.hook.right - kSide);
        EXPECT_EQ(s.side.bottom, s.hook.bottom - kTop - kStrip);
    }
    EXPECT_NE(seen[0].hook.right, seen[1].hook.right) << "the dialog did not resize";
}

// Bars, back buffers, the repaint timer and the parent's procedure all go with the dialog.
TEST_F(VuikFileDlg, DialogsLeaveNothingBehind)
{
    zcmod_test::HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    auto cycle = [&] {
        EXPECT_FALSE(RunDriven([&] { return CVuikFileDlg::GetOpenFileNameW(&m_ofn); }, [](HWND dialog) {
            SetWindowPos(dialog, nullptr, 0, 0, 640, 480, SWP_NOMOVE | SWP_NOZORDER);  // sets the timer
            Cancel(dialog);
        }));
    };
    cycle();
    const auto before = counter.Live();
    for (int i = 0; i < 3; ++i)
        cycle();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    EXPECT_EQ(CVuikFileDlg::m_pfnSuperWndProcParent, nullptr);
}

// Both themes carry the default skin's twelve pieces, and the strip is deep enough for its title.
TEST_F(VuikFileDlg, BothThemesCarryTheBars)
{
    for (const wchar_t* theme : {L"Default", L"Graphite"}) {
        SCOPED_TRACE(testing::Message() << theme);
        HMODULE module = LoadLibraryExW((zcmod_test::BinDir() + L"\\Resource\\ZCMOD_" + theme + L".zgr").c_str(),
                                        nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(module, nullptr);
        CVuikLib::SetResourceInstance(module);
        CVuikFileDlgSkin skin;  // the library's default def
        skin.Load();
        EXPECT_TRUE(skin.IsValid());
        EXPECT_GE(skin.m_StripSkin.GetLargestPiece().cy, skin.m_StripTitleSkin.GetLargestPiece().cy);
        EXPECT_GT(skin.m_SideBarSkin.GetLargestPiece().cx, 0);
        skin.Unload();
        FreeLibrary(module);
    }
}

// The open dialog in both themes and layouts against reviewed pictures: the theme's bars around the platform's
// controls, on a folder of fixed names so that nothing of the machine shows, the focus on OK (no caret).
TEST_F(VuikFileDlg, Golden)
{
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    const std::wstring folder = std::wstring(temp) + L"zcmod-filedlg-golden",
                       names[] = {L"\\notes.txt", L"\\report.txt"};
    CreateDirectoryW(folder.c_str(), nullptr);
    CreateDirectoryW((folder + L"\\Photos").c_str(), nullptr);
    for (const std::wstring& name : names)
        std::ofstream((folder + name).c_str()) << "x";
    m_ofn.lpstrInitialDir = folder.c_str();
    zcmod_test::SuiteRegistry registry;
    for (const wchar_t* theme : {L"Default", L"Graphite"})
        for (const wchar_t* language : {L"eng", L"heb"}) {
            const std::string name = std::string("filedlg_open_") + (theme[0] == L'D' ? "Default" : "Graphite") +
                                     (language[0] == L'h' ? "_rtl" : "_ltr");
            SCOPED_TRACE(name);
            zcmod_test::FreshResources resources(registry, language, theme);  // as an application of the suite
            CVuikLib::SetLayout(language[0] == L'h' ? 1 : 0);
            CVuikFileDlg::SetDefaultSkin(CVuikFileDlg::GetThemeSkin());
            Capture shown;
            RunDriven([&] { return CVuikFileDlg::GetOpenFileNameW(&m_ofn); }, [&](HWND dialog) {
                SetWindowPos(dialog, nullptr, 0, 0, 600, 420, SWP_NOMOVE | SWP_NOZORDER);
                SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(dialog, IDOK)), TRUE);
                Sleep(400);  // the repaint timer and the view's list have run
                shown = CaptureWindow(dialog);
                Cancel(dialog);
            });
            EXPECT_TRUE(zcmod_test::MatchesGolden(name, shown.width, shown.height, shown.pixels.data(), 8));
            CVuikFileDlg::SetDefaultSkin(nullptr);
        }
    for (const std::wstring& name : names)
        DeleteFileW((folder + name).c_str());
    RemoveDirectoryW((folder + L"\\Photos").c_str());
    RemoveDirectoryW(folder.c_str());
}

}  // namespace
