#include "TestSupport.h"

#include <atomic>
#include <thread>

namespace zcmod_test {

const wchar_t kMachineSuiteKey[] = L"Software\\Wow6432Node\\Zelvo\\DeskHub";
const wchar_t kUserSuiteKey[] = L"Software\\Zelvo\\DeskHub";
const wchar_t kBuildNumberKey[] = L"SOFTWARE\\Wow6432node\\Zelvo";
const wchar_t kStandInKey[] = L"Software\\ZCMOD Stand-ins\\DKHL64";

std::wstring BinDir()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring dir(path);
    return dir.substr(0, dir.find_last_of(L'\\'));
}

namespace {

HKEY Create(HKEY hive, const wchar_t* key)
{
    HKEY h = nullptr;
    RegCreateKeyExW(hive, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &h, nullptr);
    return h;
}

}  // namespace

void SetRawString(HKEY hive, const wchar_t* key, const wchar_t* name, const void* data, DWORD bytes)
{
    HKEY h = Create(hive, key);
    RegSetValueExW(h, name, 0, REG_SZ, static_cast<const BYTE*>(data), bytes);
    RegCloseKey(h);
}

void SetString(HKEY hive, const wchar_t* key, const wchar_t* name, const std::wstring& value)
{
    SetRawString(hive, key, name, value.c_str(), static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

void SetDword(HKEY hive, const wchar_t* key, const wchar_t* name, DWORD value)
{
    HKEY h = Create(hive, key);
    RegSetValueExW(h, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
    RegCloseKey(h);
}

void SetMultiString(HKEY hive, const wchar_t* key, const wchar_t* name, const std::vector<std::wstring>& values)
{
    std::wstring data;
    for (const auto& v : values) {
        data += v;
        data.push_back(L'\0');
    }
    data.push_back(L'\0');
    HKEY h = Create(hive, key);
    RegSetValueExW(h, name, 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(data.data()),
                   static_cast<DWORD>(data.size() * sizeof(wchar_t)));
    RegCloseKey(h);
}

void DeleteValue(HKEY hive, const wchar_t* key, const wchar_t* name)
{
    HKEY h = nullptr;
    if (RegOpenKeyExW(hive, key, 0, KEY_ALL_ACCESS, &h) == ERROR_SUCCESS) {
        RegDeleteValueW(h, name);
        RegCloseKey(h);
    }
}

void DeleteTree(HKEY hive, const wchar_t* key)
{
    RegDeleteTreeW(hive, key);
    RegDeleteKeyW(hive, key);
}

SuiteRegistry::SuiteRegistry() { Clean(); }

SuiteRegistry::~SuiteRegistry() { Clean(); }

void SuiteRegistry::Clean()
{
    DeleteTree(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Zelvo");
    DeleteTree(HKEY_CURRENT_USER, L"Software\\Zelvo");
    DeleteTree(HKEY_CURRENT_USER, kStandInKey);
}

void SuiteRegistry::SetLanguage(const std::wstring& code)
{
    SetString(HKEY_LOCAL_MACHINE, kMachineSuiteKey, L"Current Language", code);
}

void SuiteRegistry::SetUserTheme(const std::wstring& theme)
{
    SetString(HKEY_CURRENT_USER, kUserSuiteKey, L"Theme", theme);
}

void SuiteRegistry::SetMachineTheme(const std::wstring& theme)
{
    SetString(HKEY_LOCAL_MACHINE, kMachineSuiteKey, L"Current Resource", theme);
}

void SuiteRegistry::SetBuildNumber(const std::wstring& text)
{
    SetString(HKEY_LOCAL_MACHINE, kBuildNumberKey, L"DeskHubBuildNumber", text);
}

ProcessResult RunProcess(const std::wstring& exe, const std::wstring& args, const std::wstring& extraPath)
{
    ProcessResult result;
    SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0))
        return result;
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);

    // The child's environment: ours, with PATH extended.
    std::wstring env;
    wchar_t* block = GetEnvironmentStringsW();
    for (const wchar_t* p = block; *p; p += wcslen(p) + 1) {
        std::wstring entry(p);
        if (!extraPath.empty() && _wcsnicmp(entry.c_str(), L"PATH=", 5) == 0)
            entry = L"PATH=" + extraPath + L";" + entry.substr(5);
        env += entry;
        env.push_back(L'\0');
    }
    env.push_back(L'\0');
    FreeEnvironmentStringsW(block);

    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd;
    startup.hStdError = writeEnd;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process = {};
    std::wstring commandLine = L"\"" + exe + L"\" " + args;
    const BOOL started = CreateProcessW(exe.c_str(), &commandLine[0], nullptr, nullptr, TRUE,
                                        CREATE_UNICODE_ENVIRONMENT, &env[0], nullptr, &startup, &process);
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

namespace {

std::vector<MessageBoxWatcher::Box>* g_boxes = nullptr;
HHOOK g_hook = nullptr;

BOOL CALLBACK FindIcon(HWND child, LPARAM found)
{
    wchar_t cls[32] = {};
    GetClassNameW(child, cls, 32);
    if (!_wcsicmp(cls, L"Static") && (GetWindowLongW(child, GWL_STYLE) & SS_ICON))
        *reinterpret_cast<bool*>(found) = true;
    return TRUE;
}

LRESULT CALLBACK CbtHook(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HCBT_ACTIVATE && g_boxes) {
        HWND box = reinterpret_cast<HWND>(wParam);
        wchar_t cls[32] = {};
        GetClassNameW(box, cls, 32);
        if (!wcscmp(cls, L"#32770")) {
            MessageBoxWatcher::Box record;
            wchar_t text[512] = {};
            GetWindowTextW(box, text, 512);
            record.caption = text;
            text[0] = 0;
            GetDlgItemTextW(box, 0xFFFF, text, 512);
            record.text = text;
            EnumChildWindows(box, FindIcon, reinterpret_cast<LPARAM>(&record.hasErrorIcon));
            g_boxes->push_back(record);
            PostMessageW(box, WM_COMMAND, IDOK, 0);
        }
    }
    return CallNextHookEx(g_hook, code, wParam, lParam);
}

}  // namespace

struct WatcherState {
    std::vector<MessageBoxWatcher::Box> boxes;
    std::atomic<bool> stop{false};
    std::thread watchdog;
};

static WatcherState* g_state = nullptr;

MessageBoxWatcher::MessageBoxWatcher()
{
    g_state = new WatcherState();
    g_boxes = &g_state->boxes;
    g_hook = SetWindowsHookExW(WH_CBT, CbtHook, nullptr, GetCurrentThreadId());
    g_state->watchdog = std::thread([] {
        for (int i = 0; i < 200 && !g_state->stop; ++i) {
            Sleep(50);
            if (i >= 100) {  // after 5 s, anything still open is closed by force
                HWND box = FindWindowW(L"#32770", nullptr);
                if (box)
                    PostMessageW(box, WM_CLOSE, 0, 0);
            }
        }
    });
}

MessageBoxWatcher::~MessageBoxWatcher()
{
    g_state->stop = true;
    g_state->watchdog.join();
    UnhookWindowsHookEx(g_hook);
    g_hook = nullptr;
    g_boxes = nullptr;
    delete g_state;
    g_state = nullptr;
}

const std::vector<MessageBoxWatcher::Box>& MessageBoxWatcher::Boxes() const { return g_state->boxes; }

}  // namespace zcmod_test
