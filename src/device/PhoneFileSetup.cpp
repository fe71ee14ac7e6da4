#include "device/PhoneFileSetup.h"

#include <cwchar>

#include "device/core/PhonePaths.h"
#include "frame/Handles.h"
#include "zcmod/VuikMessageBox.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/PhoneFileDialog.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"

namespace zcmod::phonefile {

CFileDialogListener* m_pListener = nullptr;
unsigned long m_dwPhoneFolders = 0;

namespace {

bool g_bSetUp = false;
DWORD g_dwDesktopLayout = 0;  // WS_EX_LAYOUTRTL of the desktop's window, or 0

// Reads "Root" of HKCU `key` when it is a string; false when the value cannot be read at all.
bool ReadRoot(const wchar_t* key, std::wstring& root, bool& isString)
{
    RegKey handle;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, KEY_READ, handle.Put()) != ERROR_SUCCESS)
        return false;
    BYTE buffer[0x208] = {};
    DWORD type = 0, size = sizeof(buffer) - sizeof(wchar_t);  // room for a terminator the value may lack
    if (RegQueryValueExW(handle.Get(), L"Root", nullptr, &type, buffer, &size) != ERROR_SUCCESS)
        return false;
    isString = type == REG_SZ;
    if (isString)
        root.assign(reinterpret_cast<const wchar_t*>(buffer), wcsnlen(reinterpret_cast<const wchar_t*>(buffer),
                                                                       size / sizeof(wchar_t)));
    return true;
}

std::wstring LongForm(const std::wstring& path)
{
    wchar_t buffer[MAX_PATH * 2];
    const DWORD length = GetLongPathNameW(path.c_str(), buffer, MAX_PATH * 2);
    return length && length < MAX_PATH * 2 ? std::wstring(buffer, length) : std::wstring();
}

}  // namespace

int EnsureSetup()
{
    if (g_bSetUp)
        return 1;
    if (HWND desktop = FindWindowW(L"Progman", nullptr))
        g_dwDesktopLayout = static_cast<DWORD>(GetWindowLongW(desktop, GWL_EXSTYLE)) & WS_EX_LAYOUTRTL;
    if (!EnsureCommonResources())
        return 0;
    std::wstring root;
    bool isString = false;
    if (ReadRoot(L"SOFTWARE\\DeskHub\\DataLayer", root, isString) ||
        ReadRoot(L"SOFTWARE\\Zelvo\\DataLayer", root, isString)) {
        if (std::wstring* dataRoot = CCommonModuleState::Get().m_pDataRoot) {
            if (isString)
                *dataRoot = root;
        }
        g_bSetUp = true;
    }
    // A machine without the data layer still gets its dialog; the set-up runs again at the next entry.
    return 1;
}

const std::wstring& TempPath()
{
    static const std::wstring temp = [] {
        wchar_t buffer[MAX_PATH + 1];
        const DWORD length = GetTempPathW(MAX_PATH + 1, buffer);
        std::wstring path = length && length <= MAX_PATH ? std::wstring(buffer, length) : std::wstring();
        const std::wstring longer = path.empty() ? path : LongForm(path);
        path = longer.empty() ? path : longer;
        if (!path.empty() && path.back() != L'\\')
            path += L'\\';
        return path;
    }();
    return temp;
}

const std::wstring& MirrorFolder()
{
    static const std::wstring mirror = TempPath().empty() ? std::wstring()
                                                          : TempPath() + phonepath::kMirrorFolderName;
    return mirror;
}

std::wstring DataRoot()
{
    const std::wstring* root = CCommonModuleState::Get().m_pDataRoot;
    return root ? *root : std::wstring();
}

bool IsInMirror(const std::wstring& path)
{
    std::wstring longer = LongForm(path);
    if (longer.empty())
        longer = LongForm(phonepath::ParentFolder(path));
    if (longer.empty())
        longer = path;  // neither exists yet: the path as it is written
    // Over the mirror folder's length, without case.
    const std::wstring& mirror = MirrorFolder();
    return !mirror.empty() && longer.size() >= mirror.size() &&
           CompareStringOrdinal(longer.c_str(), static_cast<int>(mirror.size()), mirror.c_str(),
                                static_cast<int>(mirror.size()), TRUE) == CSTR_EQUAL;
}

bool IsRightToLeft()
{
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    const wchar_t* code = handler ? handler->GetLanguageName() : nullptr;
    return CRTLHelper::IsRTL(code) != 0;
}

std::wstring LoadText(UINT id)
{
    wchar_t buffer[1024];
    const int length = ZCMOD_LoadString(id, buffer, 1024);
    return length > 0 ? std::wstring(buffer, static_cast<size_t>(length)) : std::wstring();
}

int ShowMessage(HWND owner, const std::wstring& text, UINT flags)
{
    const std::wstring caption = LoadText(ZLR_STR_SUITE_NAME);
    // The suite's own box; it mirrors with the library's layout, which follows the same language.
    return CVuikCommonMessageBox::Show(owner, text.c_str(), caption.c_str(), flags);
}

}  // namespace zcmod::phonefile
