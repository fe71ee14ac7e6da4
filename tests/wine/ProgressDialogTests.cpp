// The progress dialog: every modal run ends with the work and returns its result cut to 32 bits, whatever
// the work's length (none at all, or over before the dialog exists); no thread, kernel handle or GDI/USER
// object outlives a run; the close button, Escape and WM_CLOSE do nothing while the work runs; the work thread's
// texts reach the window; pixel goldens in both themes and layouts. Every modal run is guarded by a watchdog
// that ends the dialog and releases the work, and fails the test, rather than hang the suite.
#include <windows.h>

#include <tlhelp32.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

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

// Released by the watchdog when it fires: work that waits on it stops waiting.
HANDLE ReleaseEvent()
{
    static HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

// Fails the test if a run takes longer than `ms` since the last Kick: it ends every progress dialog of the
// test's thread and releases waiting work, so that DoModal comes back.
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
                  SetEvent(ReleaseEvent());
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
        ResetEvent(ReleaseEvent());
    }
    ~Watchdog()
    {
        m_stop = true;
        m_thread.join();
        ResetEvent(ReleaseEvent());
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

// The process's kernel handles, from the system's handle table (GetProcessHandleCount answers 0 under Wine).
DWORD HandleCount()
{
    struct Entry {
        ULONG process;
        BYTE type, flags;
        USHORT value;
        void* object;
        ACCESS_MASK access;
    };
    struct Table {
        ULONG count;
        Entry entries[1];
    };
    typedef LONG(WINAPI * Query)(int, void*, ULONG, ULONG*);
    static const Query query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<BYTE> buffer(1 << 20);
    ULONG needed = 0;
    while (query && query(16, buffer.data(), static_cast<ULONG>(buffer.size()), &needed) == LONG(0xC0000004))
        buffer.resize(buffer.size() * 2);
    const Table* table = reinterpret_cast<const Table*>(buffer.data());
    DWORD count = 0;
    for (ULONG i = 0; query && i < table->count; ++i)
        count += table->entries[i].process == GetCurrentProcessId();
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
    if (work->ms)
        WaitForSingleObject(ReleaseEvent(), work->ms);
    if (work->returned)
        SetEvent(work->returned);
    return work->result;
}

// A progress dialog that the test can look into: it notes when WM_INITDIALOG came and counts the IDCANCEL
// commands that reach the dialog, through a subclass over the frame's.
class ProbeDlg : public Progress {
public:
    ProbeDlg(const wchar_t* caption, const wchar_t* text) : Progress(caption, text) {}
    std::atomic<bool> initialised{false};
    std::atomic<int> cancels{0};
    HANDLE holdInit = nullptr;  // set: WM_INITDIALOG waits for it first
    bool fixFrame = false;      // stop the animation and paint frame 4 for a stable picture
    RECT Animation() const { return m_rcAnimation; }

protected:
    BOOL OnInitDialog() override
    {
        if (holdInit)
            WaitForSingleObject(holdInit, 5000);
        const BOOL result = Progress::OnInitDialog();
        SetPropW(m_hWnd, L"ProbeDlg", this);
        m_previous = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountCancels)));
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

private:
    static LRESULT CALLBACK CountCancels(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        ProbeDlg* self = static_cast<ProbeDlg*>(GetPropW(hwnd, L"ProbeDlg"));
        if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)
            ++self->cancels;
        const WNDPROC previous = self->m_previous;
        if (message == WM_NCDESTROY)
            RemovePropW(hwnd, L"ProbeDlg");
        return CallWindowProcW(previous, hwnd, message, wParam, lParam);
    }
    WNDPROC m_previous = nullptr;
};

// The dialog's client area as the screen shows it. A copy from the window's own context would come out
// turned round for a mirrored window.
Capture ClientOnScreen(HWND hwnd)
{
    RECT client;
    GetClientRect(hwnd, &client);
    MapWindowPoints(hwnd, nullptr, reinterpret_cast<POINT*>(&client), 2);
    if (client.left > client.right)
        std::swap(client.left, client.right);
    return CaptureScreen(client);
}

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
        {"high half cut off", {150, 0x123456789ABCDEF0LL, nullptr}, false, 0x9ABCDEF0},
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
        EXPECT_FALSE(watchdog.Fired());
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
    const int runs = 200;
    int wrong = 0;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < runs && !watchdog.Fired(); ++i) {
        Progress dialog(L"Working", L"Please wait...");
        wrong += !run(dialog);
        if (i % 25 == 0)
            wrong += !run(dialog);  // a second run on the same object starts afresh
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("[          ] %d progress dialogs in %.1f s\n", runs, seconds);

    EXPECT_FALSE(watchdog.Fired());
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(counter.Live(), objects) << counter.Live().ToString();
    // The animation's worker signals its end a moment before its thread is gone.
    WaitUntil([&] { return ThreadCount() <= threads; }, 1000);
    EXPECT_EQ(ThreadCount(), threads);
    // A handle a run would show as two hundred; the platform may still open one or two of its own on the way.
    EXPECT_LE(HandleCount(), handles + 2);
}

// ---- The window while the work runs --------------------------------------------------------------------------

TEST_F(ProgressDialog, CloseButtonEscapeAndCloseDoNothingWhileWorkRuns)
{
    enum Action { ClickClose, Escape, Close };
    struct Case {
        const char* name;
        Action action;
    } cases[] = {{"close button", ClickClose}, {"Escape", Escape}, {"WM_CLOSE", Close}};
    Watchdog watchdog(5000);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ProbeDlg dialog(L"Working", L"Please wait...");
        bool aliveAfter = false, foundButton = false;
        watchdog.Kick();
        EXPECT_EQ(RunWithWindow(dialog,
                                [&](HWND hwnd) -> LONGLONG {
                                    Sleep(100);
                                    if (c.action == ClickClose) {
                                        HWND button = GetDlgItem(hwnd, CVuikWindowBackgroundCtrl::CommandClose);
                                        foundButton = button != nullptr;
                                        if (button)
                                            msgseq::input::Click(msgseq::input::Centre(button));
                                    } else if (c.action == Escape) {
                                        PostMessageW(hwnd, WM_KEYDOWN, VK_ESCAPE, 0);
                                        PostMessageW(hwnd, WM_KEYUP, VK_ESCAPE, 0);
                                    } else {
                                        PostMessageW(hwnd, WM_CLOSE, 0, 0);
                                    }
                                    Sleep(300);
                                    aliveAfter = IsWindow(hwnd) && IsWindowVisible(hwnd);
                                    return 42;
                                }),
                  42);
        EXPECT_TRUE(aliveAfter);
        // The action did reach the dialog as a cancel: it was ignored, not lost.
        EXPECT_GE(dialog.cancels.load(), 1);
        EXPECT_EQ(foundButton, c.action == ClickClose);
        EXPECT_FALSE(watchdog.Fired());
    }
}

TEST_F(ProgressDialog, WorkThreadTextsReachTheWindowBelowTheAnimationUnclipped)
{
    Watchdog watchdog(5000);
    ProbeDlg dialog(nullptr, nullptr);
    wchar_t textRead[80] = {}, caption[40] = {};
    int inkBefore = -1, inkAfter = -1, inkPastPlaceholder = -1;
    EXPECT_EQ(RunWithWindow(dialog,
                            [&](HWND hwnd) -> LONGLONG {
                                const RECT place = dialog.Animation();
                                auto shoot = [&] {
                                    Sleep(250);
                                    return ClientOnScreen(hwnd);
                                };
                                // Pixels of the band under the placeholder that differ, from `fromX` to the right edge.
                                auto changed = [&](const Capture& before, const Capture& after, int fromX) {
                                    int count = 0;
                                    for (int y = place.bottom; y < place.bottom + 16; ++y)
                                        for (int x = fromX; x < after.width; ++x)
                                            count += before.At(x, y) != after.At(x, y);
                                    return count;
                                };
                                const Capture still = shoot();
                                inkBefore =
                                    changed(still, shoot(), 0);  // nothing changes by itself under the animation
                                dialog.SetProgressText(L"Copying pictures to the phone: 3 of 12");
                                const Capture written = shoot();
                                dialog.SetWindowCaption(L"Desk Hub");
                                inkAfter = changed(still, written, 0);
                                inkPastPlaceholder = changed(still, written, place.right);
                                dialog.GetProgressText(textRead, 80);
                                GetWindowTextW(hwnd, caption, 40);
                                return 1;
                            }),
              1);
    EXPECT_FALSE(watchdog.Fired());
    EXPECT_EQ(inkBefore, 0);
    EXPECT_GT(inkAfter, 100);
    EXPECT_GT(inkPastPlaceholder, 0);  // the text runs on past the placeholder's right edge
    EXPECT_STREQ(textRead, L"Copying pictures to the phone: 3 of 12");
    EXPECT_STREQ(caption, L"Desk Hub");
}

// ---- Pixels ------------------------------------------------------------------------------------------------------

TEST_F(ProgressDialog, GoldenDialogInBothThemesAndLayouts)
{
    for (const Look& look : kLooks) {
        SetUpResources(look.Language(), look.theme);
        CVuikLib::SetLayout(look.rtl ? LAYOUT_RTL : 0);
        SCOPED_TRACE(look.Suffix());
        SetCursorPos(0, 0);
        ProbeDlg dialog(look.rtl ? L"\x05D4\x05E2\x05D1\x05E8\x05EA \x05EA\x05DE\x05D5\x05E0\x05D5\x05EA" : L"Copying",
                        look.rtl ? L"\x05D0\x05E0\x05D0 \x05D4\x05DE\x05EA\x05DF..." : L"Please wait...");
        dialog.fixFrame = true;
        Watchdog watchdog(5000);
        Capture shot;
        ASSERT_EQ(RunWithWindow(dialog,
                                [&](HWND hwnd) -> LONGLONG {
                                    Sleep(400);
                                    shot = ClientOnScreen(hwnd);
                                    return 1;
                                }),
                  1);
        EXPECT_FALSE(watchdog.Fired());
        EXPECT_TRUE(MatchesGolden("progress_" + look.Suffix(), shot.width, shot.height, shot.pixels.data()));
    }
}

}  // namespace
