// Helpers of the tests of the connectivity loaders and the stand-in service: the service's registry settings,
// a phones folder of the test's own, the controller, the two global events.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "TestSupport.h"
#include "device/ConnectivityApi.h"

namespace zcmod_test {

constexpr wchar_t kApiKeyW[] = L"SOFTWARE\\Desk Link Service\\API";
constexpr wchar_t kStandInServiceKey[] = L"Software\\ZCMOD Stand-ins\\Service";

inline std::wstring ServiceDir()
{
    return BinDir() + L"\\standins\\service";
}
inline std::wstring PartialServiceDir()
{
    return BinDir() + L"\\standins\\service-partial";
}

// Removes the service's keys when made and when destroyed; points the four interfaces at the stand-ins.
class ServiceRegistry {
public:
    ServiceRegistry() { Clean(); }
    ~ServiceRegistry()
    {
        Clean();
        SetDllDirectoryW(nullptr);
    }
    ServiceRegistry(const ServiceRegistry&) = delete;
    ServiceRegistry& operator=(const ServiceRegistry&) = delete;

    void UseStandIns()
    {
        SetPath(L"DMAPI64", ServiceDir() + L"\\LinkAPI64.dll");
        SetPath(L"FSAPI64", ServiceDir() + L"\\LinkAPI64.dll");
        SetPath(L"VCAPI64", ServiceDir() + L"\\VersitConverter64.dll");
        SetPath(L"CAAPI64", ServiceDir() + L"\\DAAPI64.dll");
    }
    void SetPath(const wchar_t* value, const std::wstring& path)
    {
        SetString(HKEY_LOCAL_MACHINE, kApiKeyW, value, path);
    }
    void SetOptions(DWORD options) { SetDword(HKEY_LOCAL_MACHINE, kApiKeyW, L"Options", options); }
    // A hook of the stand-in (PhoneService.h): "InitializeResult", "TerminateDelay".
    void SetHook(const wchar_t* name, DWORD value) { SetDword(HKEY_CURRENT_USER, kStandInServiceKey, name, value); }

private:
    static void Clean()
    {
        DeleteTree(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Desk Link Service");
        DeleteTree(HKEY_CURRENT_USER, kStandInServiceKey);
    }
};

inline void RemoveTree(const std::wstring& folder)
{
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((folder + L"\\*").c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = data.cFileName;
            if (name == L"." || name == L"..")
                continue;
            const std::wstring path = folder + L"\\" + name;
            SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
                RemoveTree(path);
            else
                DeleteFileW(path.c_str());
        } while (FindNextFileW(find, &data));
        FindClose(find);
    }
    RemoveDirectoryW(folder.c_str());
}

// A folder of the test's own under the temporary folder, removed at the end.
class TempFolder {
public:
    explicit TempFolder(const wchar_t* kind)
    {
        wchar_t temp[MAX_PATH];
        GetTempPathW(MAX_PATH, temp);
        static unsigned counter = 0;
        m_path = std::wstring(temp) + L"zcmod-" + kind + L"-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                 std::to_wstring(++counter);
        RemoveTree(m_path);
        CreateDirectoryW(m_path.c_str(), nullptr);
    }
    ~TempFolder() { RemoveTree(m_path); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::wstring& Path() const { return m_path; }

private:
    std::wstring m_path;
};

// The stand-in's phones root for this test, set in the registry; the controller works on it.
class Phones : public TempFolder {
public:
    Phones() : TempFolder(L"phones") { SetString(HKEY_CURRENT_USER, kStandInServiceKey, L"PhonesRoot", Path()); }
    ProcessResult Ctl(const std::wstring& args) const
    {
        return RunProcess(BinDir() + L"\\phonectl.exe", L"--root \"" + Path() + L"\" " + args, BinDir());
    }
    // Creates a phone and gives its serial.
    std::wstring New(const std::wstring& id, const std::wstring& options = L"") const
    {
        const ProcessResult made = Ctl(L"new " + id + L" " + options);
        const size_t blank = made.output.find(' ');
        if (made.exitCode != 0 || blank == std::string::npos)
            return L"";
        std::string serial = made.output.substr(blank + 1);
        while (!serial.empty() && (serial.back() == '\n' || serial.back() == '\r'))
            serial.pop_back();
        return std::wstring(serial.begin(), serial.end());
    }
    std::wstring Folder(const std::wstring& id) const { return Path() + L"\\" + id; }
};

// Polls `done` until it holds or `timeoutMs` has passed.
inline bool WaitUntil(const std::function<bool()>& done, DWORD timeoutMs = 5000)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

inline void SignalServiceEvent(const char* name)
{
    HANDLE event = OpenEventA(EVENT_MODIFY_STATE, FALSE, name);
    if (!event)
        event = CreateEventA(nullptr, TRUE, FALSE, name);
    SetEvent(event);
    CloseHandle(event);
}

// Ends whatever a test left initialised, so that the next test in the same process starts from nothing.
inline void TerminateAllInterfaces()
{
    using namespace zcmod::service;
    while (DMAPI_Terminate(0) == S_OK) {
    }
    while (FSAPI_Terminate(0) == S_OK) {
    }
    while (VCAPI_Terminate(0) == S_OK) {
    }
    while (CAAPI_Terminate(0) == S_OK) {
    }
}

inline std::string ReadWholeFile(const std::wstring& path)
{
    std::string bytes;
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return bytes;
    char buffer[65536];
    DWORD got = 0;
    while (ReadFile(file, buffer, sizeof(buffer), &got, nullptr) && got)
        bytes.append(buffer, got);
    CloseHandle(file);
    return bytes;
}

inline void WriteWholeFile(const std::wstring& path, const std::string& bytes)
{
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
}

}  // namespace zcmod_test
