// Helpers of the device selection and title bar tests: a fresh resource handler in a chosen language, an
// application window, a listener that records its calls, and a driver for the selection window's modal loop.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "MessageSequence.h"
#include "ServiceTestSupport.h"
#include "device/DeviceSelection.h"
#include "zcmod/CSDWrapper.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/ResHandler.h"

namespace zcmod_test {

// Puts a new resource handler in the process's state for the life of this object, so that the language and
// the theme are read again from the settings given here, whatever an earlier test loaded.
class FreshResources {
public:
    FreshResources(SuiteRegistry& registry, const wchar_t* language, const wchar_t* theme = L"Default")
    {
        registry.SetLanguage(language);
        registry.SetUserTheme(theme);
        CCommonModuleState& state = CCommonModuleState::Get();
        m_old = state.m_pResHandler;
        state.m_pResHandler = new CResHandler();
        state.ResetColorLoader();
    }
    ~FreshResources()
    {
        CCommonModuleState& state = CCommonModuleState::Get();
        delete state.m_pResHandler;
        state.m_pResHandler = m_old;
        state.ResetColorLoader();
    }
    FreshResources(const FreshResources&) = delete;
    FreshResources& operator=(const FreshResources&) = delete;

private:
    CResHandler* m_old = nullptr;
};

inline std::wstring LanguageString(UINT id)
{
    wchar_t text[512] = {};
    ZCMOD_LoadString(id, text, 512);
    return text;
}

// A plain top-level window of the test's thread.
class AppWindow {
public:
    AppWindow()
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"ZCMODTestAppWindow";
        RegisterClassW(&windowClass);
        m_window = CreateWindowExW(0, L"ZCMODTestAppWindow", L"App", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 500,
                                   400, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    }
    ~AppWindow() { DestroyWindow(m_window); }
    HWND Get() const { return m_window; }
    std::wstring Title() const
    {
        wchar_t text[1100] = {};
        GetWindowTextW(m_window, text, 1100);
        return text;
    }

private:
    HWND m_window = nullptr;
};

// Dispatches this thread's messages until `done` holds or `timeoutMs` has passed.
inline bool PumpUntil(const std::function<bool()>& done, DWORD timeoutMs = 8000)
{
    return msgseq::Recorder::PumpUntil(done, timeoutMs);
}

// Records listener calls as "attached <friendly name> <connection> <serial>", "unsupported",
// "detached <manufacturer>".
class CallRecorder : public CCSDWrapperListener {
public:
    void OnDeviceAttached(const wchar_t* manufacturer, const wchar_t*, const wchar_t* friendlyName,
                          const wchar_t* connectionName, const wchar_t* serial) override
    {
        calls.push_back(L"attached " + std::wstring(friendlyName) + L" " + connectionName + L" " + serial +
                        (manufacturer[0] ? L"" : L" (no manufacturer)"));
    }
    void OnUnsupportedDeviceAttached() override { calls.push_back(L"unsupported"); }
    void OnDeviceDetached(const wchar_t* manufacturer) override { calls.push_back(L"detached " + std::wstring(manufacturer)); }

    bool WaitFor(size_t count) { return PumpUntil([&] { return calls.size() >= count; }); }
    std::vector<std::wstring> calls;
};

inline HWND SelectionWindow()
{
    return FindWindowW(zcmod::device::kSelectionWindowClass, nullptr);
}

// Runs a modal SelectDevice(0) while `drive` works the shown window from another thread. A watchdog ends the
// loop after `timeoutMs` and the result says so, rather than hang the suite.
struct ModalRun {
    long result = 0;
    bool timedOut = false;
};
inline ModalRun RunSelectionWindow(CCSDWrapper& wrapper, const std::function<void(HWND window, HWND list)>& drive,
                                   DWORD timeoutMs = 15000)
{
    ModalRun run;
    std::atomic<bool> finished{false};
    std::atomic<bool> timedOut{false};
    std::thread driver([&] {
        HWND window = nullptr;
        const bool visible = WaitUntil(
            [&] {
                window = SelectionWindow();
                return finished || (window && IsWindowVisible(window));
            },
            timeoutMs);
        if (visible && !finished)
            drive(window, GetDlgItem(window, zcmod::device::kDeviceListId));
        if (!WaitUntil([&] { return finished.load(); }, timeoutMs)) {
            timedOut = true;
            PostMessageW(SelectionWindow(), zcmod::device::kMsgEndModal, 0, 0);
        }
    });
    run.result = wrapper.SelectDevice(0);
    finished = true;
    driver.join();
    run.timedOut = timedOut;
    return run;
}

inline void PostKey(HWND window, WPARAM key)
{
    PostMessageW(window, WM_KEYDOWN, key, 1);
    PostMessageW(window, WM_KEYUP, key, 0xC0000001);
}

// Asked from the driver thread while the modal loop runs on the test's thread.
inline int ListRows(HWND list)
{
    DWORD_PTR rows = 0;
    if (!SendMessageTimeoutW(list, LB_GETCOUNT, 0, 0, SMTO_BLOCK, 2000, &rows))
        return -1;
    return static_cast<int>(rows);
}

}  // namespace zcmod_test
