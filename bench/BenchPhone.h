// The stand-in phone of the recipient benchmarks: the library pointed at the stand-in service beside the
// program, an installed suite's language and theme, and one phone of 10,000 generated contacts in a phones
// folder of the benchmark's own, made by the controller.
#pragma once

#include <windows.h>

#include <string>

#include "Bench.h"

namespace bench {

inline std::wstring BinDir()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring dir(path);
    return dir.substr(0, dir.find_last_of(L'\\'));
}

inline void SetRegistryString(HKEY hive, const wchar_t* key, const wchar_t* name, const std::wstring& value)
{
    HKEY h = nullptr;
    RegCreateKeyExW(hive, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &h, nullptr);
    RegSetValueExW(h, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(h);
}

// Runs a command line and waits for it; true when it exits with 0.
inline bool RunCommand(const std::wstring& commandLine)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    std::wstring line = commandLine;
    if (!CreateProcessW(nullptr, &line[0], nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                        &process))
        return false;
    WaitForSingleObject(process.hProcess, 120000);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code == 0;
}

// Makes the phone `id` with the given serial (any earlier one of that name is removed first); gives the serial,
// empty on failure.
inline std::wstring MakeBenchPhone(const std::wstring& id, const std::wstring& serial)
{
    const std::wstring service = BinDir() + L"\\standins\\service\\";
    const wchar_t* api = L"SOFTWARE\\Desk Link Service\\API";
    SetRegistryString(HKEY_LOCAL_MACHINE, api, L"DMAPI64", service + L"LinkAPI64.dll");
    SetRegistryString(HKEY_LOCAL_MACHINE, api, L"FSAPI64", service + L"LinkAPI64.dll");
    SetRegistryString(HKEY_LOCAL_MACHINE, api, L"VCAPI64", service + L"VersitConverter64.dll");
    SetRegistryString(HKEY_LOCAL_MACHINE, api, L"CAAPI64", service + L"DAAPI64.dll");
    // An installed suite: the language and theme the library reads (the direction of the text comes from them).
    const wchar_t* suite = L"Software\\Wow6432Node\\Zelvo\\DeskHub";
    SetRegistryString(HKEY_LOCAL_MACHINE, suite, L"Current Language", L"eng");
    SetRegistryString(HKEY_LOCAL_MACHINE, suite, L"Current Resource", L"Default");
    const std::wstring root = TempFile(L"zcmod-bench-phones");
    CreateDirectoryW(root.c_str(), nullptr);
    SetRegistryString(HKEY_CURRENT_USER, L"Software\\ZCMOD Stand-ins\\Service", L"PhonesRoot", root);
    const std::wstring ctl = L"\"" + BinDir() + L"\\phonectl.exe\" --root \"" + root + L"\" ";
    RunCommand(ctl + L"remove " + id);
    return RunCommand(ctl + L"new " + id + L" --contacts 10000 --serial " + serial) ? serial : std::wstring();
}

}  // namespace bench
