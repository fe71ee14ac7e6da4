// Helpers of the Wine tests: registry keys that a test sets up and removes, the runtime folder, child
// processes, and a watcher that records and closes message boxes.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace zcmod_test {

// The folder of the test executable, which is also the folder of zcmod.dll (no trailing backslash).
std::wstring BinDir();

// Registry keys the suite reads for the manufacturer "Zelvo" (the stand-in settings library's default).
extern const wchar_t kMachineSuiteKey[];  // HKLM Software\Wow6432Node\Zelvo\DeskHub
extern const wchar_t kUserSuiteKey[];     // HKCU Software\Zelvo\DeskHub
extern const wchar_t kBuildNumberKey[];   // HKLM SOFTWARE\Wow6432node\Zelvo
extern const wchar_t kStandInKey[];       // HKCU Software\ZCMOD Stand-ins\DKHL64

void SetString(HKEY hive, const wchar_t* key, const wchar_t* name, const std::wstring& value);
// Writes `bytes` bytes of `data` as a REG_SZ, terminated or not, as the caller chooses.
void SetRawString(HKEY hive, const wchar_t* key, const wchar_t* name, const void* data, DWORD bytes);
void SetDword(HKEY hive, const wchar_t* key, const wchar_t* name, DWORD value);
void SetMultiString(HKEY hive, const wchar_t* key, const wchar_t* name, const std::vector<std::wstring>& values);
void DeleteValue(HKEY hive, const wchar_t* key, const wchar_t* name);
void DeleteTree(HKEY hive, const wchar_t* key);

// Removes the suite's and the stand-in's keys when made and again when destroyed, so that each test starts
// from no settings and leaves none behind.
class SuiteRegistry {
public:
    SuiteRegistry();
    ~SuiteRegistry();
    SuiteRegistry(const SuiteRegistry&) = delete;
    SuiteRegistry& operator=(const SuiteRegistry&) = delete;

    // The language and theme values the library reads.
    void SetLanguage(const std::wstring& code);
    void SetUserTheme(const std::wstring& theme);
    void SetMachineTheme(const std::wstring& theme);
    void SetBuildNumber(const std::wstring& text);

private:
    void Clean();
};

// Runs `exe` with `args`, with `extraPath` put in front of PATH, and returns its exit code and its output.
struct ProcessResult {
    DWORD exitCode = 0xFFFFFFFF;
    std::string output;
};
ProcessResult RunProcess(const std::wstring& exe, const std::wstring& args, const std::wstring& extraPath = L"");

// Records every message box (dialog class #32770) that the thread shows and closes it at once; a watchdog
// closes any that the hook missed, so that a test never hangs.
class MessageBoxWatcher {
public:
    MessageBoxWatcher();
    ~MessageBoxWatcher();
    MessageBoxWatcher(const MessageBoxWatcher&) = delete;
    MessageBoxWatcher& operator=(const MessageBoxWatcher&) = delete;

    struct Box {
        std::wstring caption;
        std::wstring text;
        bool hasErrorIcon = false;
    };
    const std::vector<Box>& Boxes() const;
};

}  // namespace zcmod_test
