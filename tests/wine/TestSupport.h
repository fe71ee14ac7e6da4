// Helpers of the Wine tests: registry values that a test sets up and removes, the runtime folder, child
// processes, and message boxes answered from a second thread.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace zcmod_test {

// The folder of the test executable, which is also the folder of zcmod.dll (no trailing backslash).
inline std::wstring BinDir()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring dir(path);
    return dir.substr(0, dir.find_last_of(L'\\'));
}

// Registry keys the suite reads for the manufacturer "Zelvo" (the stand-in settings library's default).
constexpr wchar_t kMachineSuiteKey[] = L"Software\\Wow6432Node\\Zelvo\\DeskHub";
constexpr wchar_t kUserSuiteKey[] = L"Software\\Zelvo\\DeskHub";
constexpr wchar_t kStandInKey[] = L"Software\\ZCMOD Stand-ins\\DKHL64";  // HKCU: what the stand-in answers

// Writes `bytes` bytes of `data` as a value of `type`, creating the key.
inline void SetValue(HKEY hive, const wchar_t* key, const wchar_t* name, DWORD type, const void* data, DWORD bytes)
{
    HKEY h = nullptr;
    RegCreateKeyExW(hive, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &h, nullptr);
    RegSetValueExW(h, name, 0, type, static_cast<const BYTE*>(data), bytes);
    RegCloseKey(h);
}
inline void SetString(HKEY hive, const wchar_t* key, const wchar_t* name, const std::wstring& value)
{
    SetValue(hive, key, name, REG_SZ, value.c_str(), static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}
inline void SetDword(HKEY hive, const wchar_t* key, const wchar_t* name, DWORD value)
{
    SetValue(hive, key, name, REG_DWORD, &value, sizeof(value));
}
inline void DeleteValue(HKEY hive, const wchar_t* key, const wchar_t* name)
{
    RegDeleteKeyValueW(hive, key, name);
}
inline void DeleteTree(HKEY hive, const wchar_t* key)
{
    RegDeleteTreeW(hive, key);
    RegDeleteKeyW(hive, key);
}

// Removes the suite's and the stand-in's keys when made and again when destroyed, so that each test starts
// from no settings and leaves none behind; sets the values the library reads.
class SuiteRegistry {
public:
    SuiteRegistry() { Clean(); }
    ~SuiteRegistry() { Clean(); }
    SuiteRegistry(const SuiteRegistry&) = delete;
    SuiteRegistry& operator=(const SuiteRegistry&) = delete;

    void SetLanguage(const std::wstring& code)
    {
        SetString(HKEY_LOCAL_MACHINE, kMachineSuiteKey, L"Current Language", code);
    }
    void SetUserTheme(const std::wstring& theme) { SetString(HKEY_CURRENT_USER, kUserSuiteKey, L"Theme", theme); }
    void SetMachineTheme(const std::wstring& theme)
    {
        SetString(HKEY_LOCAL_MACHINE, kMachineSuiteKey, L"Current Resource", theme);
    }
    void SetBuildNumber(const std::wstring& text)
    {
        SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Wow6432node\\Zelvo", L"DeskHubBuildNumber", text);
    }
    // What the stand-in settings library answers to one of its questions.
    void SetStandIn(const wchar_t* name, const std::wstring& value)
    {
        SetString(HKEY_CURRENT_USER, kStandInKey, name, value);
    }

private:
    static void Clean()
    {
        DeleteTree(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Zelvo");
        DeleteTree(HKEY_CURRENT_USER, L"Software\\Zelvo");
        DeleteTree(HKEY_CURRENT_USER, kStandInKey);
    }
};

// Runs `exe` with `args`, with `extraPath` put in front of PATH; its exit code and its output.
struct ProcessResult {
    DWORD exitCode = 0xFFFFFFFF;
    std::string output;
};
inline ProcessResult RunProcess(const std::wstring& exe, const std::wstring& args, const std::wstring& extraPath)
{
    ProcessResult result;
    SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0))
        return result;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    // The child inherits our environment, with PATH extended while it starts.
    std::wstring path(32768, L'\0');
    path.resize(GetEnvironmentVariableW(L"PATH", &path[0], 32768));
    SetEnvironmentVariableW(L"PATH", (extraPath + L";" + path).c_str());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = writeEnd;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process = {};
    std::wstring commandLine = L"\"" + exe + L"\" " + args;
    const BOOL started =
        CreateProcessW(exe.c_str(), &commandLine[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    SetEnvironmentVariableW(L"PATH", path.c_str());
    CloseHandle(writeEnd);
    if (started) {
        char buffer[512];
        DWORD got = 0;
        while (ReadFile(readEnd, buffer, sizeof(buffer), &got, nullptr) && got > 0)
            result.output.append(buffer, got);
        WaitForSingleObject(process.hProcess, 30000);
        GetExitCodeProcess(process.hProcess, &result.exitCode);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    CloseHandle(readEnd);
    return result;
}

// Answers every message box (a visible window of the dialog class) of the thread that made it with OK, from a
// second thread, and records what each said; it is also the watchdog of a modal loop that nobody ends.
struct MessageBoxCloser {
    struct Box {
        std::wstring caption, text;
        bool icon = false;
    };
    std::vector<Box> boxes;      // read them once `closed` counts them
    std::atomic<int> closed{0};  // counted after the box is recorded
    std::atomic<bool> stop{false};
    std::thread worker{[this, thread = GetCurrentThreadId()] {
        for (; !stop; Sleep(20))
            EnumThreadWindows(
                thread, [](HWND hwnd, LPARAM self) { return reinterpret_cast<MessageBoxCloser*>(self)->Close(hwnd); },
                reinterpret_cast<LPARAM>(this));
    }};
    ~MessageBoxCloser()
    {
        stop = true;
        worker.join();
    }
    BOOL Close(HWND hwnd)
    {
        wchar_t text[512] = {};
        if (!IsWindowVisible(hwnd) || !GetClassNameW(hwnd, text, 512) || wcscmp(text, L"#32770") != 0)
            return TRUE;
        Box box;
        GetWindowTextW(hwnd, text, 512);
        box.caption = text;
        GetDlgItemTextW(hwnd, 0xFFFF, text, 512);  // the text of a box the platform makes
        box.text = text;
        auto findIcon = [](HWND child, LPARAM found) {
            *reinterpret_cast<bool*>(found) |= SendMessageW(child, STM_GETICON, 0, 0) != 0;
            return TRUE;
        };
        EnumChildWindows(hwnd, findIcon, reinterpret_cast<LPARAM>(&box.icon));
        boxes.push_back(box);
        ++closed;
        PostMessageW(hwnd, WM_COMMAND, IDOK, 0);
        Sleep(100);  // until the box is gone, so that it counts once
        return TRUE;
    }
};

}  // namespace zcmod_test
