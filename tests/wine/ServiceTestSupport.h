// Helpers of the tests of the connectivity loaders and the stand-in service: the service's registry settings,
// a phones folder of the test's own, the controller, the two global events.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "ImageTestSupport.h"
#include "TestSupport.h"
#include "device/ConnectivityApi.h"

namespace zcmod_test {

constexpr wchar_t kApiKeyW[] = L"SOFTWARE\\Desk Link Service\\API";
constexpr wchar_t kStandInServiceKey[] = L"Software\\ZCMOD Stand-ins\\Service";

inline std::wstring ServiceDir(const wchar_t* kind = L"service")
{
    return BinDir() + L"\\standins\\" + kind;
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
    // A hook of the stand-in (PhoneService.h): "InitializeResult", "TerminateDelay".
    void SetHook(const wchar_t* name, DWORD value) { SetDword(HKEY_CURRENT_USER, kStandInServiceKey, name, value); }

private:
    static void Clean()
    {
        DeleteTree(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Desk Link Service");
        DeleteTree(HKEY_CURRENT_USER, kStandInServiceKey);
    }
};

// The stand-in's shell namespace extension (the phones under My Computer), registered for the life of the
// object through the DLL's own DllRegisterServer and removed again with DllUnregisterServer.
class PhoneFoldersRegistration {
public:
    PhoneFoldersRegistration() : m_module(LoadLibraryW((ServiceDir() + L"\\PhoneFolders64.dll").c_str())),
                                 m_registered(Call("DllRegisterServer") == S_OK)
    {
    }
    ~PhoneFoldersRegistration()
    {
        Call("DllUnregisterServer");
        FreeLibrary(m_module);
    }
    PhoneFoldersRegistration(const PhoneFoldersRegistration&) = delete;
    PhoneFoldersRegistration& operator=(const PhoneFoldersRegistration&) = delete;
    bool Registered() const { return m_registered; }
    HRESULT Call(const char* name) const
    {
        using Entry = HRESULT(WINAPI*)();
        const auto entry =
            m_module ? reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(m_module, name))) : nullptr;
        return entry ? entry() : E_FAIL;
    }

private:
    HMODULE m_module;
    bool m_registered;
};

// Removes a folder with all it holds.
inline void RemoveTree(const std::wstring& folder)
{
    const std::wstring from = folder + L'\0';  // a list of one name, ended by a second null
    SHFILEOPSTRUCTW operation = {};
    operation.wFunc = FO_DELETE;
    operation.pFrom = from.c_str();
    operation.fFlags = FOF_NO_UI;
    SHFileOperationW(&operation);
}

// The stand-in's phones root for this test, a fresh folder set in the registry and removed with all it holds;
// the controller works on it.
class Phones {
public:
    Phones()
    {
        wchar_t temp[MAX_PATH];
        GetTempPathW(MAX_PATH, temp);
        m_path = temp + (L"zcmod-phones-" + std::to_wstring(GetCurrentProcessId()));
        RemoveTree(m_path);
        CreateDirectoryW(m_path.c_str(), nullptr);
        SetString(HKEY_CURRENT_USER, kStandInServiceKey, L"PhonesRoot", m_path);
    }
    ~Phones() { RemoveTree(m_path); }
    Phones(const Phones&) = delete;
    Phones& operator=(const Phones&) = delete;

    ProcessResult Ctl(const std::wstring& args) const
    {
        return RunProcess(BinDir() + L"\\phonectl.exe", L"--root \"" + m_path + L"\" " + args, BinDir());
    }
    // Creates a phone and gives its serial.
    std::wstring New(const std::wstring& id, const std::wstring& options = L"") const
    {
        const ProcessResult made = Ctl(L"new " + id + L" " + options);
        const size_t blank = made.output.find(' ');
        if (made.exitCode != 0 || blank == std::string::npos)
            return L"";
        const std::string serial = made.output.substr(blank + 1, made.output.find_first_of("\r\n") - blank - 1);
        return std::wstring(serial.begin(), serial.end());
    }
    std::wstring Folder(const std::wstring& id) const { return m_path + L"\\" + id; }

private:
    std::wstring m_path;
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

// Sets a named event of manual reset, made if no process holds it (else the one they hold).
inline void SignalServiceEvent(const char* name)
{
    HANDLE event = CreateEventA(nullptr, TRUE, FALSE, name);
    SetEvent(event);
    CloseHandle(event);
}

// Ends whatever a test left initialised, so that the next test in the same process starts from nothing.
inline void TerminateAllInterfaces()
{
    using namespace zcmod::service;
    for (HRESULT (*terminate)(DWORD) : {DMAPI_Terminate, FSAPI_Terminate, VCAPI_Terminate, CAAPI_Terminate})
        while (terminate(0) == S_OK) {
        }
}

}  // namespace zcmod_test
