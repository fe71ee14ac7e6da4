// A modal loop on the test's thread, driven from a second thread and guarded by a watchdog.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

namespace zcmod_test {

// Runs `call` (which enters a modal loop) on this thread while `drive`, given this thread's id, steps through
// it from another; a watchdog posts IDCANCEL to every window of this thread after `seconds`, so that a stuck
// dialog fails the test rather than hang the suite.
template <class Call>
auto RunDriven(Call call, const std::function<void(DWORD)>& drive, int seconds = 20) -> decltype(call())
{
    const DWORD self = GetCurrentThreadId();
    std::atomic<bool> done{false};
    std::thread driver([&] { drive(self); });
    std::thread watchdog([&] {
        for (int i = 0; i < seconds * 100 && !done; ++i)
            Sleep(10);
        if (!done) {
            ADD_FAILURE() << "the dialog did not end in " << seconds << " s";
            EnumThreadWindows(self, [](HWND hwnd, LPARAM) { return PostMessageW(hwnd, WM_COMMAND, IDCANCEL, 0), TRUE; },
                              0);
        }
    });
    const auto result = call();
    done = true;
    driver.join();
    watchdog.join();
    return result;
}

}  // namespace zcmod_test
