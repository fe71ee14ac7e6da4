#include "frame/BTStackInfo.h"

#include <cstdio>
#include <string>

#include "frame/Handles.h"
#include "frame/Win32Util.h"
#include "frame/core/SettingsText.h"
#include "zcmod/Utils.h"

namespace {

const unsigned kTextCapacity = 260;

// The BlueSoleil version: the name of the first subkey of its key, read once per process.
wchar_t g_blueSoleilVersion[kTextCapacity] = {};

bool OpenMachineKey(const wchar_t* path, zcmod::RegKey& key)
{
    return RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, key.Put()) == ERROR_SUCCESS;
}

bool ReadText(HKEY key, const wchar_t* name, wchar_t (&text)[kTextCapacity])
{
    return zcmod::ReadRegistryString(key, name, text, sizeof(text)) == ERROR_SUCCESS;
}

bool FirstSubkeyName(HKEY key, wchar_t* name, DWORD capacity)
{
    DWORD length = capacity;
    return RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

}  // namespace

CBTStackInfo::CBTStackInfo()
{
    wchar_t scratch[kTextCapacity];
    GetBlueSoleilVersion(scratch, kTextCapacity);
}

CBTStackInfo::~CBTStackInfo() = default;

int CBTStackInfo::GetStackVersion(int kind, wchar_t* version, wchar_t* build, unsigned capacity)
{
    switch (kind) {
    case Digianswer:
        return GetDigianswerVersion(version, build, capacity);
    case WidComm:
        return GetWidCommVersion(version, build, capacity);
    case Microsoft:
        return GetMicrosoftVersion(version, build, capacity);
    case Toshiba:
        return GetToshibaVersion(version, capacity);
    case BlueSoleil:
        return GetBlueSoleilVersion(version, capacity);
    default:
        return 0;
    }
}

int CBTStackInfo::GetDigianswerVersion(wchar_t* version, wchar_t* build, unsigned capacity)
{
    zcmod::RegKey key;
    if (!OpenMachineKey(L"SOFTWARE\\Digianswer", key))
        return 0;
    wchar_t subkey[kTextCapacity];
    if (!FirstSubkeyName(key.Get(), subkey, kTextCapacity))
        return 0;
    wchar_t text[kTextCapacity];
    if (!ReadText(key.Get(), L"Version", text))
        return 0;
    std::wstring number;
    if (!zcmod::TakeNumberAfterWord(text, L"VERSION", number))
        return 0;
    zcmod::CopyIfFits(number, version, capacity);
    if (zcmod::TakeNumberAfterWord(text, L"BUILD", number))
        zcmod::CopyIfFits(number, build, capacity);
    return 1;
}

int CBTStackInfo::GetWidCommVersion(wchar_t* version, wchar_t* build, unsigned capacity)
{
    zcmod::RegKey key;
    if (!OpenMachineKey(L"SOFTWARE\\WidComm\\Install", key))
        return 0;
    wchar_t text[kTextCapacity];
    if (!ReadText(key.Get(), L"BTWVERS", text) && !ReadText(key.Get(), L"VERSION", text) &&
        !ReadText(key.Get(), L"DisplayName", text))
        return 0;
    std::wstring v, b;
    zcmod::SplitTrailingVersion(text, v, b);
    if (b.size() < kTextCapacity)
        zcmod::CopyIfFits(b, build, capacity);
    if (v.size() < kTextCapacity)
        zcmod::CopyIfFits(v, version, capacity);
    return 1;
}

int CBTStackInfo::GetMicrosoftVersion(wchar_t* version, wchar_t* build, unsigned capacity)
{
    zcmod::ModuleHandle module(LoadLibraryW(L"bthserv.dll"));
    if (!module)
        module.Reset(LoadLibraryW(L"bthci.dll"));
    if (!module)
        return 0;
    DWORD parts[4] = {};
    if (!CUtils::GetModuleVersion(module.Get(), parts))
        return 0;
    wchar_t text[64];
    swprintf(text, 64, L"%i.%i.%i", static_cast<int>(parts[0]), static_cast<int>(parts[1]), static_cast<int>(parts[2]));
    zcmod::CopyIfFits(text, version, capacity);
    swprintf(text, 64, L"%i", static_cast<int>(parts[3]));
    zcmod::CopyIfFits(text, build, capacity);
    return 1;
}

int CBTStackInfo::GetToshibaVersion(wchar_t* version, unsigned capacity)
{
    zcmod::RegKey uninstall;
    if (!OpenMachineKey(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall", uninstall))
        return 0;
    static const wchar_t* const kWords[] = {L"TOSHIBA", L"BLUETOOTH", L"STACK"};
    wchar_t name[kTextCapacity];
    for (DWORD index = 0;; ++index) {
        DWORD length = kTextCapacity;
        const LONG status = RegEnumKeyExW(uninstall.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS)
            return 0;
        if (status != ERROR_SUCCESS)
            continue;  // a name too long for the buffer: not one of ours
        zcmod::RegKey entry;
        if (RegOpenKeyExW(uninstall.Get(), name, 0, KEY_READ, entry.Put()) != ERROR_SUCCESS)
            continue;
        wchar_t text[kTextCapacity];
        if (!ReadText(entry.Get(), L"DisplayName", text) || !zcmod::ContainsAllWords(text, kWords, 3))
            continue;
        if (!ReadText(entry.Get(), L"DisplayVersion", text))
            return 0;
        zcmod::CopyIfFits(text, version, capacity);
        return 1;
    }
}

int CBTStackInfo::GetBlueSoleilVersion(wchar_t* version, unsigned capacity)
{
    if (!g_blueSoleilVersion[0]) {
        zcmod::RegKey key;
        if (!OpenMachineKey(L"SOFTWARE\\IVT Corporation\\BlueSoleil", key) ||
            !FirstSubkeyName(key.Get(), g_blueSoleilVersion, kTextCapacity)) {
            g_blueSoleilVersion[0] = 0;
            return 0;
        }
    }
    zcmod::CopyIfFits(g_blueSoleilVersion, version, capacity);
    return 1;
}
