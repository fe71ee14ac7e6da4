// The progress dialog: every modal run ends with the work and returns its result cut to 32 bits, whatever
// the work's length (none at all, or over before the dialog exists); no thread, kernel handle or GDI/USER
// object outlives a run; the close button, Escape and WM_CLOSE do nothing while the work runs; pixel goldens in
// both themes and layouts, with texts from the work thread. Every modal run is guarded by a watchdog that ends
// the dialog and fails the test, rather than hang the suite.
#include <windows.h>

#include <tlhelp32.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "DeviceTestSupport.h"
#include "DrivenModal.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "TestSkins.h"
#include "zcmod/CommonProgressDlg.h"
#include "zcmod/ResourceIds.h"

using namespace testskin;
using namespace zcmod_test;

namespace {

typedef CCommonProgressDlg Progress;

// Fails the test if a run takes longer than `ms` since the last Kick, and ends every progress dialog of the
// test's thread so that DoModal comes back (the work of every test here ends by itself).
class Watchdog {
public:
    explicit Watchdog(DWORD ms)
        : m_thread([this, ms, ui = GetCurrentThreadId()] {
              for (DWORD idle = 0; !m_stop; Sleep(10)) {
                  idle = m_kicked.exchange(false) ? 0 : idle + 10;
                  if (idle < ms)
                      continue;
                  idle = 0;
                  m_fired = true;
                  ADD_FAILURE() << "a progress dialog did not end in " << ms << " ms";
                  EnumThreadWindows(
                      ui,
                      [](HWND hwnd, LPARAM) {
                          if (GetPropW(hwnd, ZCMOD_PROP_PROGRESS_INSTANCE))
                              PostMessageW(hwnd, Progress::WM_PROGRESS_DONE, 0, 0);
                          return TRUE;
                      },
                      0);
              }
          })
    {
    }
    ~Watchdog()
    {
        m_stop = true;
        m_thread.join();
    }
    void Kick() { m_kicked = true; }
    bool Fired() const { return m_fired; }

private:
    std::atomic<bool> m_stop{false}, m_kicked{false}, m_fired{false};
    std::thread m_thread;
};

int ThreadCount()
{
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof(entry);
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        if (entry.th32OwnerProcessID == GetCurrentProcessId())
            ++count;
    CloseHandle(snapshot);
    return count;
}

// The process's kernel handles, those that the system answers for; handle values are multiples of 4, handed out
// lowest first (GetProcessHandleCount answers 0 under Wine).
DWORD HandleCount()
{
    DWORD count = 0, flags = 0;
    for (ULONG_PTR value = 4; value < 0x4000; value += 4)
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) ? 1 : 0;
    return count;
}

// Work that sleeps the milliseconds given and returns a 64-bit value, setting `returned` (if any) as it does.
struct TimedWork {
    DWORD ms;
    LONGLONG result;
    HANDLE returned;
};
LONGLONG RunTimed(void* argument)
{
    const TimedWork* work = static_cast<const TimedWork*>(argument);
    Sleep(work->ms);
    if (work->returned)
        SetEvent(work->returned);
    return work->result;
}

// A progress dialog that the test can look into: it notes when WM_INITDIALOG came.
class ProbeDlg : public Progress {
public:
    ProbeDlg(const wchar_t* caption, const wchar_t* text) : Progress(caption, text) {}
    std::atomic<bool> initialised{false};
    HANDLE holdInit = nullptr;  // set: WM_INITDIALOG waits for it first
    bool fixFrame = false;      // stop the animation and paint frame 4 for a stable picture

protected:
    BOOL OnInitDialog() override
    {
        if (holdInit)
            WaitForSingleObject(holdInit, 5000);
        const BOOL result = Progress::OnInitDialog();
        if (fixFrame)
            m_animation.StopAnimation();
        initialised = true;
        return result;
    }
    LRESULT OnCustomPaint(HDC dc) override
    {
        const LRESULT result = Progress::OnCustomPaint(dc);
        if (fixFrame)
            if (HBITMAP frame = m_bitmaps.GetBitmapHandle(BT_RESULT, 4)) {
                BITMAP info = {};
                GetObjectW(frame, sizeof(info), &info);
                HDC memory = CreateCompatibleDC(dc);
                HGDIOBJ old = SelectObject(memory, frame);
                BitBlt(dc, m_rcAnimation.left, m_rcAnimation.top, info.bmWidth, info.bmHeight, memory, 0, 0, SRCCOPY);
                SelectObject(memory, old);
                DeleteDC(memory);
            }
        return result;
    }
};

// Runs `dialog` with work that waits (up to 3 s) for the progress window and then runs `body` on it, on the
// work thread.
INT_PTR RunWithWindow(Progress& dialog, const std::function<LONGLONG(HWND)>& body)
{
    struct Job {
        DWORD ui;
        const std::function<LONGLONG(HWND)>* body;
    } job = {GetCurrentThreadId(), &body};
    const Progress::WorkFunction work = [](void* a) -> LONGLONG {
        const Job* job = static_cast<const Job*>(a);
        HWND hwnd = WaitForWindow(
            job->ui, [](HWND h) { return GetPropW(h, ZCMOD_PROP_PROGRESS_INSTANCE) != nullptr; }, 3000);
        return hwnd ? (*job->body)(hwnd) : 0;
    };
    return dialog.DoModal(work, &job, nullptr);
}

class ProgressDialog : public ::testing::Test {
protected:
    void SetUpResources(const wchar_t* language, const wchar_t* theme)
    {
        m_resources.reset();
        m_resources.reset(new FreshResources(m_registry, language, theme));
    }
    void SetUp() override { SetUpResources(L"eng", L"Default"); }
    LibraryState m_library;
    SuiteRegistry m_registry;
    std::unique_ptr<FreshResources> m_resources;
};

// ---- Threads and results -------------------------------------------------------------------------------------

TEST_F(ProgressDialog, EveryRunEndsWithItsWorkAndReturnsTheLow32Bits)
{
    struct Case {
        const char* name;
        TimedWork work;         // none: a null function
        bool finishBeforeInit;  // WM_INITDIALOG waits until the work has returned
        INT_PTR expected;
    } cases[] = {
        {"null function", {}, false, 0},
        {"-1 comes back as 0xFFFFFFFF, not as failure", {0, -1, nullptr}, false, 0xFFFFFFFF},
        {"work over before WM_INITDIALOG", {0, 0x0000000500000007LL, nullptr}, true, 7},
    };
    Watchdog watchdog(5000);
    for (Case& c : cases) {
        SCOPED_TRACE(c.name);
        ProbeDlg dialog(L"Working", L"Please wait...");
        if (c.finishBeforeInit)
            dialog.holdInit = c.work.returned = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        watchdog.Kick();
        EXPECT_EQ(dialog.DoModal(c.work.result ? RunTimed : nullptr, &c.work, nullptr), c.expected);
        EXPECT_TRUE(dialog.initialised);
        if (c.work.returned)
            CloseHandle(c.work.returned);
    }
}

TEST_F(ProgressDialog, RunsOfRandomLengthLeaveNoThreadOrHandleBehind)
{
    HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    std::mt19937_64 random(20261125);
    Watchdog watchdog(5000);
    auto run = [&](Progress& dialog) {
        TimedWork work = {static_cast<DWORD>(random() % 21), static_cast<LONGLONG>(random()), nullptr};
        watchdog.Kick();
        const INT_PTR result = dialog.DoModal(RunTimed, &work, nullptr);
        return result == static_cast<INT_PTR>(static_cast<uint32_t>(work.result));
    };
    {
        Progress warmUp(L"Working", L"Please wait...");  // fonts, resource modules and colours load once
        ASSERT_TRUE(run(warmUp));
        ASSERT_TRUE(run(warmUp));  // and what a second run on the same object makes once
    }
    const HandleCounter::Counts objects = counter.Live();
    const int threads = ThreadCount();
    const DWORD handles = HandleCount();

    // About 30 to 40 ms a run under Wine.
    int wrong = 0;
    for (int i = 0; i < 200 && !watchdog.Fired(); ++i) {
        Progress dialog(L"Working", L"Please wait...");
        wrong += !run(dialog);
        if (i % 25 == 0)
            wrong += !run(dialog);  // a second run on the same object starts afresh
    }

    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(counter.Live(), objects) << counter.Live().ToString();
    // The animation's worker signals its end a moment before its thread is gone.
    WaitUntil([&] { return ThreadCount() <= threads; }, 1000);
    EXPECT_EQ(ThreadCount(), threads);
    // A handle a run would show as two hundred; the platform may still open one or two of its own on the way.
    EXPECT_LE(HandleCount(), handles + 2);
}

// ---- The window while the work runs ------------------------------------------------------------------------

// The English dialogs show the text they were made with; the Hebrew ones get theirs from the work thread while
// they are shown. Either text runs on past the animation's edge, unclipped. A caption set later reaches the
// window too. Then the close button (a real click), Escape or WM_CLOSE, one per look, does nothing while the
// work runs.
TEST_F(ProgressDialog, GoldenDialogInBothThemesAndLayoutsThatOnlyTheWorkEnds)
{
    enum Action { ClickClose, Escape, Close };
    const Action actions[] = {ClickClose, Escape, Close, ClickClose};
    const wchar_t* const hebrewText =
        L"\x05DE\x05E2\x05EA\x05D9\x05E7 \x05EA\x05DE\x05D5\x05E0\x05D5\x05EA: 3 \x05DE\x05EA\x05D5\x05DA 12";
    for (size_t i = 0; i < 4; ++i) {
        const Look& look = kLooks[i];
        SetUpResources(look.Language(), look.theme);
        CVuikLib::SetLayout(look.rtl ? LAYOUT_RTL : 0);
        SCOPED_TRACE(look.Suffix());
        SetCursorPos(0, 0);
        ProbeDlg dialog(look.rtl ? L"\x05D4\x05E2\x05D1\x05E8\x05EA \x05EA\x05DE\x05D5\x05E0\x05D5\x05EA" : L"Copying",
                        look.rtl ? nullptr : L"Copying pictures: 3 of 12");
        dialog.fixFrame = true;
        Watchdog watchdog(5000);
        Capture shot;
        wchar_t textRead[80] = {}, captionRead[40] = {};
        bool foundButton = false, aliveAfter = false;
        ASSERT_EQ(RunWithWindow(dialog,
                                [&](HWND hwnd) -> LONGLONG {
                                    if (look.rtl) {
                                        Sleep(300);  // the dialog has painted without a text
                                        dialog.SetProgressText(hebrewText);
                                    }
                                    Sleep(400);
                                    shot = CaptureOnScreen(hwnd);
                                    dialog.GetProgressText(textRead, 80);
                                    dialog.SetWindowCaption(L"Desk Hub");
                                    GetWindowTextW(hwnd, captionRead, 40);
                                    if (actions[i] == ClickClose) {
                                        HWND button = GetDlgItem(hwnd, CVuikWindowBackgroundCtrl::CommandClose);
                                        foundButton = button != nullptr;
                                        if (button)
                                            msgseq::input::Click(msgseq::input::Centre(button));
                                    } else if (actions[i] == Escape) {
                                        PostMessageW(hwnd, WM_KEYDOWN, VK_ESCAPE, 0);
                                        PostMessageW(hwnd, WM_KEYUP, VK_ESCAPE, 0);
                                    } else {
                                        PostMessageW(hwnd, WM_CLOSE, 0, 0);
                                    }
                                    Sleep(300);
                                    aliveAfter = IsWindow(hwnd) && IsWindowVisible(hwnd);
                                    return 1;
                                }),
                  1);
        EXPECT_STREQ(textRead, look.rtl ? hebrewText : L"Copying pictures: 3 of 12");
        EXPECT_STREQ(captionRead, L"Desk Hub");
        EXPECT_TRUE(MatchesGolden("progress_" + look.Suffix(), shot.width, shot.height, shot.pixels.data()));
        EXPECT_EQ(foundButton, actions[i] == ClickClose);
        EXPECT_TRUE(aliveAfter) << "the dialog ended before its work";
    }
}

}  // namespace
