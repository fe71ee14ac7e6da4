// Finding the windows of a modal loop from a second thread, and a modal dialog (a file dialog, a message box)
// run on the test's thread, driven from a second thread and guarded by a watchdog, with the steps a user takes
// in a file dialog.
#pragma once

#include <windows.h>

#include <dlgs.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace zcmod_test {

// A visible top-level window of `thread` for which `match` holds, waited for up to `ms`; null if none came.
inline HWND WaitForWindow(DWORD thread, const std::function<bool(HWND)>& match, int ms = 5000)
{
    struct Search {
        const std::function<bool(HWND)>* match;
        HWND found;
    } search = {&match, nullptr};
    for (int waited = 0; !search.found && waited <= ms; waited += 10) {
        EnumThreadWindows(
            thread,
            [](HWND hwnd, LPARAM data) {
                auto* s = reinterpret_cast<Search*>(data);
                if (IsWindowVisible(hwnd) && (*s->match)(hwnd))
                    s->found = hwnd;
                return s->found ? FALSE : TRUE;
            },
            reinterpret_cast<LPARAM>(&search));
        if (!search.found)
            Sleep(10);
    }
    return search.found;
}

// A window of the dialog class: a file dialog or a message box.
inline bool IsDialogClass(HWND hwnd)
{
    wchar_t cls[16] = {};
    GetClassNameW(hwnd, cls, 16);
    return lstrcmpW(cls, L"#32770") == 0;
}

// The platform's file dialog has its "Look in" box; a message box has none.
inline bool IsFileDialog(HWND hwnd)
{
    return GetDlgItem(hwnd, cmb2) != nullptr;
}

inline void Cancel(HWND dialog)
{
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
}

// Types into the file dialog's name box and presses OK.
inline void Enter(HWND dialog, const std::wstring& text)
{
    HWND box = GetDlgItem(dialog, cmb13) ? GetDlgItem(dialog, cmb13) : GetDlgItem(dialog, edt1);
    SendMessageW(box, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
}

// Runs `call` (which opens a modal window) on this thread while `steps`, on another, drives the first window
// of this thread that `match` knows, once it has shown, and ends it; after `seconds` a watchdog fails the test and
// ends the dialog by force, so that a stuck dialog does not hang the suite.
template <class Call>
auto RunModal(Call call, bool (*match)(HWND), const std::function<void(HWND)>& steps, int seconds = 20)
    -> decltype(call())
{
    const DWORD self = GetCurrentThreadId();
    std::atomic<bool> done{false};
    std::thread driver([&] {
        if (HWND window = WaitForWindow(self, match)) {
            Sleep(100);  // let the dialog's initialisation and first paint pass
            steps(window);
        }
    });
    std::thread watchdog([&] {
        for (int i = 0; i < seconds * 100 && !done; ++i)
            Sleep(10);
        if (!done)
            ADD_FAILURE() << "the dialog did not end in " << seconds << " s";
        // Cancel, then close, then end every dialog of this thread, until the call returns.
        for (LPARAM attempt = 0; attempt < 3 && !done; ++attempt) {
            EnumThreadWindows(
                self,
                [](HWND hwnd, LPARAM how) {
                    if (how == 0)
                        PostMessageW(hwnd, WM_COMMAND, IDCANCEL, 0);
                    else if (how == 1)
                        PostMessageW(hwnd, WM_CLOSE, 0, 0);
                    else if (IsDialogClass(hwnd))
                        EndDialog(hwnd, IDCANCEL);
                    return TRUE;
                },
                attempt);
            for (int i = 0; i < 200 && !done; ++i)
                Sleep(10);
        }
    });
    const auto result = call();
    done = true;
    driver.join();
    watchdog.join();
    return result;
}

template <class Call>
auto RunFileDialog(Call call, const std::function<void(HWND)>& steps) -> decltype(call())
{
    return RunModal(call, IsFileDialog, steps);
}

}  // namespace zcmod_test
