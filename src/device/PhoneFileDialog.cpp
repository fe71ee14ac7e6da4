// The phone file dialog: the platform's open and save dialogs with the phones' namespace, a hook that checks
// a save and tells the listener, the folder kinds of the data layer, and CNFileDialog.
#include "zcmod/PhoneFileDialog.h"

#include <commctrl.h>
#include <dlgs.h>
#include <msxml2.h>
#include <shlobj.h>

#include <cwchar>
#include <vector>

#include "device/PhoneFileSetup.h"
#include "device/core/PhonePaths.h"
#include "frame/Handles.h"
#include "zcmod/ResourceIds.h"
#include "frame/Win32Util.h"

using namespace zcmod;
using namespace zcmod::phonefile;

namespace {

// --- folder.xml ----------------------------------------------------------------------------------------------

// COM for the time of one call, on a thread that may or may not have it already.
class ComScope {
public:
    ComScope() : m_ok(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComScope()
    {
        if (m_ok)
            CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    bool m_ok;
};

template <class T>
class ComPtr {
public:
    ComPtr() = default;
    ~ComPtr()
    {
        if (m_p)
            m_p->Release();
    }
    ComPtr(const ComPtr&) = delete;
    ComPtr& operator=(const ComPtr&) = delete;
    T* operator->() const { return m_p; }
    T* Get() const { return m_p; }
    T** Put() { return &m_p; }

private:
    T* m_p = nullptr;
};

// The attributes of folder.xml's root element that the dialog reads.
struct FolderXml {
    bool read = false;  // the file could be loaded and has a root element
    bool hasName = false;
    std::wstring name;
    std::wstring forbidden;
};

std::wstring Attribute(IXMLDOMElement* element, const wchar_t* name, bool& present)
{
    present = false;
    VARIANT value;
    VariantInit(&value);
    BSTR attribute = SysAllocString(name);
    std::wstring text;
    if (attribute && element->getAttribute(attribute, &value) == S_OK && value.vt == VT_BSTR) {
        present = true;
        text.assign(value.bstrVal, SysStringLen(value.bstrVal));
    }
    VariantClear(&value);
    SysFreeString(attribute);
    return text;
}

FolderXml ReadFolderXml(const std::wstring& file)
{
    FolderXml result;
    ComScope com;
    CLSID clsid;
    if (FAILED(CLSIDFromProgID(L"Msxml2.DOMDocument.3.0", &clsid)))
        return result;
    ComPtr<IXMLDOMDocument> document;
    if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                                reinterpret_cast<void**>(document.Put()))))
        return result;
    document->put_async(VARIANT_FALSE);
    VARIANT source;
    VariantInit(&source);
    source.vt = VT_BSTR;
    source.bstrVal = SysAllocString(file.c_str());
    VARIANT_BOOL loaded = VARIANT_FALSE;
    const HRESULT status = source.bstrVal ? document->load(source, &loaded) : E_OUTOFMEMORY;
    VariantClear(&source);
    if (status != S_OK || loaded != VARIANT_TRUE)
        return result;
    ComPtr<IXMLDOMElement> root;
    if (document->get_documentElement(root.Put()) != S_OK || !root.Get())
        return result;
    result.read = true;
    result.name = Attribute(root.Get(), L"Name", result.hasName);
    bool present = false;
    result.forbidden = Attribute(root.Get(), L"Forbidden", present);
    return result;
}

bool FileExists(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsUnderDataRoot(const std::wstring& path)
{
    const std::wstring root = DataRoot();
    return !root.empty() && phonepath::StartsWithNoCase(path, root);
}

std::wstring WithSeparator(std::wstring folder)
{
    if (!folder.empty() && folder.back() != L'\\')
        folder += L'\\';
    return folder;
}

// --- the dialog in progress ----------------------------------------------------------------------------------

struct DialogState {
    bool m_bSaveDialog = false;
    bool m_bOverwritePrompt = false;
    bool m_bMultiSelect = false;
    bool m_bFileMustExist = false;
    bool m_bRightToLeft = false;
    bool callerTitle = false;
    LPOFNHOOKPROC callerHook = nullptr;
    HWND frame = nullptr;
    WNDPROC frameProc = nullptr;
    HWND okButton = nullptr;
    WNDPROC okButtonProc = nullptr;
    wchar_t okButtonText[256] = {};
    std::wstring shellFolder;  // the first folder when it is a shell path ("::{...}"), not a folder of a disk
};
DialogState g_dialog;  // one dialog at a time, on the caller's thread

LRESULT CALLBACK FrameProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC previous = g_dialog.frameProc;
    if (message == WM_COMMAND && m_pListener)
        m_pListener->OnCommand(wParam, lParam);
    return previous ? CallWindowProcW(previous, hwnd, message, wParam, lParam)
                    : DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK OkButtonProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC previous = g_dialog.okButtonProc;
    return previous ? CallWindowProcW(previous, hwnd, message, wParam, lParam)
                    : DefWindowProcW(hwnd, message, wParam, lParam);
}

void Subclass(HWND frame)
{
    g_dialog.frame = frame;
    g_dialog.frameProc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(frame, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(FrameProc)));
    if (g_dialog.m_bSaveDialog) {
        g_dialog.okButton = GetDlgItem(frame, IDOK);
        if (g_dialog.okButton) {
            GetWindowTextW(g_dialog.okButton, g_dialog.okButtonText, 256);
            g_dialog.okButtonProc = reinterpret_cast<WNDPROC>(
                SetWindowLongPtrW(g_dialog.okButton, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(OkButtonProc)));
        }
    }
}

void Unsubclass()
{
    if (g_dialog.okButton && g_dialog.okButtonProc) {
        SetWindowLongPtrW(g_dialog.okButton, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_dialog.okButtonProc));
        SetWindowTextW(g_dialog.okButton, g_dialog.okButtonText);
    }
    if (g_dialog.frame && g_dialog.frameProc)
        SetWindowLongPtrW(g_dialog.frame, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_dialog.frameProc));
    g_dialog.frame = g_dialog.okButton = nullptr;
    g_dialog.frameProc = g_dialog.okButtonProc = nullptr;
}

std::wstring DialogText(HWND frame, UINT message)
{
    wchar_t buffer[MAX_PATH * 2] = {};
    const LRESULT length = SendMessageW(frame, message, MAX_PATH * 2, reinterpret_cast<LPARAM>(buffer));
    return length > 0 ? std::wstring(buffer, wcsnlen(buffer, MAX_PATH * 2)) : std::wstring();
}

std::wstring WithFileName(std::wstring text, const std::wstring& path)
{
    const size_t slash = path.rfind(L'\\');
    const std::wstring name = slash == std::wstring::npos ? path : path.substr(slash + 1);
    for (size_t at = text.find(L"%1"); at != std::wstring::npos; at = text.find(L"%1", at + name.size()))
        text.replace(at, 2, name);
    return text;
}

// Whether the shell view of the dialog has a selected item.
bool HasSelectedItem(HWND frame)
{
    HWND view = GetDlgItem(frame, lst2);
    HWND list = view ? FindWindowExW(view, nullptr, WC_LISTVIEWW, nullptr) : nullptr;
    return list && SendMessageW(list, LVM_GETSELECTEDCOUNT, 0, 0) > 0;
}

// The checks of a save; false refuses the chosen name (the user has been told why).
bool SaveChecksPass(HWND frame)
{
    const std::wstring folder = DialogText(frame, CDM_GETFOLDERPATH);
    bool forbidden = false;
    if (IsUnderDataRoot(folder)) {
        const FolderXml xml = ReadFolderXml(WithSeparator(folder) + L"folder.xml");
        forbidden = xml.read && phonepath::ForbidsAdding(xml.forbidden);
    } else if (IsInMirror(folder) && !HasSelectedItem(frame)) {
        forbidden = true;
    }
    if (forbidden) {
        ShowMessage(frame, LoadText(ZLR_STR_FD_FORBIDDEN), MB_ICONWARNING);
        return false;
    }
    const std::wstring file = DialogText(frame, CDM_GETFILEPATH);
    if (g_dialog.m_bOverwritePrompt && FileExists(file) &&
        ShowMessage(frame, WithFileName(LoadText(ZLR_STR_FD_OVERWRITE), file), MB_YESNO | MB_ICONWARNING) != IDYES)
        return false;
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY) &&
        (attributes & FILE_ATTRIBUTE_READONLY)) {
        ShowMessage(frame, WithFileName(LoadText(ZLR_STR_FD_READ_ONLY), file), MB_ICONWARNING);
        return false;
    }
    return true;
}

// The message that asks an explorer-style file dialog for its shell browser (answered through the dialog's
// message result).
constexpr UINT kGetShellBrowser = WM_USER + 7;

// A platform dialog that takes only folders of a disk as its first folder (Wine's checks the path with
// PathFileExists and drops the rest) opens elsewhere when the first folder is the phones' shell path. Once it
// is ready it is browsed there through its shell browser; a path that no longer parses (a phone gone) gives
// the nearest level above it that does. A dialog already there is left as it is.
void OpenShellFolder(HWND frame)
{
    std::wstring path = g_dialog.shellFolder;
    PIDLIST_ABSOLUTE target = nullptr;
    while (!path.empty() && FAILED(SHParseDisplayName(path.c_str(), nullptr, &target, 0, nullptr))) {
        const size_t slash = path.rfind(L'\\');
        path.erase(slash == std::wstring::npos ? 0 : slash);
    }
    if (!target)
        return;
    const LRESULT size = SendMessageW(frame, CDM_GETFOLDERIDLIST, 0, 0);
    std::vector<BYTE> current(size > 0 ? static_cast<size_t>(size) : 0);
    const bool there = size > 0 &&
                       SendMessageW(frame, CDM_GETFOLDERIDLIST, static_cast<WPARAM>(size),
                                    reinterpret_cast<LPARAM>(current.data())) == size &&
                       ILIsEqual(reinterpret_cast<PCIDLIST_ABSOLUTE>(current.data()), target);
    // The dialog keeps the browser; it is not counted for the caller.
    IShellBrowser* browser =
        there ? nullptr : reinterpret_cast<IShellBrowser*>(SendMessageW(frame, kGetShellBrowser, 0, 0));
    if (browser)
        browser->BrowseObject(target, SBSP_ABSOLUTE);
    CoTaskMemFree(target);
}

UINT_PTR OnNotify(HWND dialog, OFNOTIFYW* notify)
{
    HWND frame = GetParent(dialog);
    CFileDialogListener* listener = m_pListener;
    switch (notify->hdr.code) {
    case CDN_INITDONE:
        if (!g_dialog.shellFolder.empty())
            OpenShellFolder(frame);
        if (!g_dialog.callerTitle)
            SetWindowTextW(frame,
                           LoadText(g_dialog.m_bSaveDialog ? ZLR_STR_FD_SAVE_TITLE : ZLR_STR_FD_OPEN_TITLE).c_str());
        if (listener)
            listener->OnInitDone(dialog, notify);
        return 0;
    case CDN_SELCHANGE:
        if (listener)
            listener->OnFileNameChange(dialog, notify);
        return 0;
    case CDN_FOLDERCHANGE:
        if (listener)
            listener->OnFolderChange(dialog, notify);
        return 0;
    case CDN_FILEOK: {
        bool accept = !g_dialog.m_bSaveDialog || SaveChecksPass(frame);
        if (accept && listener)
            accept = listener->OnFileNameOK(dialog, notify) != 0;
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT, accept ? 0 : 1);
        return accept ? 0 : 1;
    }
    case CDN_SHAREVIOLATION: {
        const unsigned answer = listener ? listener->OnShareViolation(dialog, notify) : 0;
        if (answer)
            SetWindowLongPtrW(dialog, DWLP_MSGRESULT, static_cast<LONG_PTR>(answer));
        return answer ? 1 : 0;
    }
    case CDN_HELP:
        if (listener)
            listener->OnHelp(dialog, notify);
        return 0;
    case CDN_TYPECHANGE:
        if (listener)
            listener->OnTypeChange(dialog, notify);
        return 0;
    case CDN_INCLUDEITEM: {
        const int include = listener ? listener->OnIncludeItem(dialog, reinterpret_cast<OFNOTIFYEXW*>(notify)) : 1;
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT, include);
        return static_cast<UINT_PTR>(include);
    }
    default:
        return 0;
    }
}

UINT_PTR CALLBACK HookProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    UINT_PTR result = 0;
    if (message == WM_INITDIALOG) {
        Subclass(GetParent(dialog));
    } else if (message == WM_DESTROY) {
        Unsubclass();
    } else if (message == WM_NOTIFY) {
        OFNOTIFYW* notify = reinterpret_cast<OFNOTIFYW*>(lParam);
        if (notify && notify->hdr.code >= CDN_LAST && notify->hdr.code <= CDN_FIRST)
            result = OnNotify(dialog, notify);
    }
    // The caller's own hook sees everything after this one; a refusal of either stands.
    if (g_dialog.callerHook) {
        const UINT_PTR own = g_dialog.callerHook(dialog, message, wParam, lParam);
        if (message == WM_NOTIFY && result)
            return result;
        return own;
    }
    return result;
}

// The library's child template, copied so that its extended style can carry the right-to-left layout.
HGLOBAL MirroredTemplate()
{
    HRSRC resource = FindResourceW(LibraryModule(), MAKEINTRESOURCEW(ZCMOD_DLG_FILE_DIALOG), RT_DIALOG);
    HGLOBAL loaded = resource ? LoadResource(LibraryModule(), resource) : nullptr;
    const DWORD size = resource ? SizeofResource(LibraryModule(), resource) : 0;
    const BYTE* source = loaded ? static_cast<const BYTE*>(LockResource(loaded)) : nullptr;
    if (!source || size < 16)
        return nullptr;
    HGLOBAL copy = GlobalAlloc(GMEM_MOVEABLE, size);
    BYTE* target = copy ? static_cast<BYTE*>(GlobalLock(copy)) : nullptr;
    if (!target) {
        if (copy)
            GlobalFree(copy);
        return nullptr;
    }
    memcpy(target, source, size);
    // An extended template begins with version 1 and 0xFFFF; its extended style stands at byte 8, a plain
    // template's at byte 4.
    const bool extended = reinterpret_cast<const WORD*>(target)[0] == 1 && reinterpret_cast<const WORD*>(target)[1] == 0xFFFF;
    DWORD* exStyle = reinterpret_cast<DWORD*>(target + (extended ? 8 : 4));
    *exStyle |= WS_EX_LAYOUTRTL;
    GlobalUnlock(copy);
    return copy;
}

// The fields of the caller's structure that the dialog changes for the time of the call.
struct SavedFields {
    DWORD flags;
    HINSTANCE instance;
    LPCWSTR templateName;
    LPOFNHOOKPROC hook;
    LPCWSTR initialDir;
    LPCWSTR defExt;
};

BOOL RunDialog(OPENFILENAMEW* ofn, bool save)
{
    if (!EnsureSetup() || !ofn)
        return FALSE;
    g_dialog = DialogState();
    g_dialog.m_bSaveDialog = save;
    g_dialog.m_bRightToLeft = IsRightToLeft();
    g_dialog.callerTitle = ofn->lpstrTitle && *ofn->lpstrTitle;
    const SavedFields saved = {ofn->Flags, ofn->hInstance, ofn->lpTemplateName, ofn->lpfnHook, ofn->lpstrInitialDir,
                               ofn->lpstrDefExt};

    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#endif
    GetVersionExW(&version);
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
    const bool vista = version.dwPlatformId == VER_PLATFORM_WIN32_NT && version.dwMajorVersion == 6 &&
                       version.dwMinorVersion == 0;

    if (ofn->lpstrDefExt && ofn->lpstrDefExt[0] == L'.')
        ofn->lpstrDefExt = ofn->lpstrDefExt + 1;
    if (save) {
        g_dialog.m_bOverwritePrompt = (ofn->Flags & OFN_OVERWRITEPROMPT) != 0;
        ofn->Flags &= ~static_cast<DWORD>(OFN_OVERWRITEPROMPT);
    } else {
        g_dialog.m_bMultiSelect = (ofn->Flags & OFN_ALLOWMULTISELECT) != 0;
        g_dialog.m_bFileMustExist = (ofn->Flags & OFN_FILEMUSTEXIST) != 0;
        ofn->Flags &= ~static_cast<DWORD>(OFN_FILEMUSTEXIST);
    }

    // The initial folder: a folder of the mirror opens as the phone's, a folder of the data layer in the
    // phones' namespace.
    std::wstring initialDir;
    if (ofn->lpstrInitialDir && *ofn->lpstrInitialDir) {
        const std::wstring given = ofn->lpstrInitialDir;
        const std::wstring phonePath = IsInMirror(given) ? phonepath::MirrorToPhonePath(given, MirrorFolder()) : L"";
        if (!phonePath.empty())
            initialDir = (m_dwPhoneFolders & 1) ? phonePath : std::wstring(phonepath::kPhoneFoldersRoot);
        else if (IsUnderDataRoot(given))
            initialDir = std::wstring(phonepath::kPhoneFoldersRoot) + given.substr(DataRoot().size());
        if (!initialDir.empty())
            ofn->lpstrInitialDir = initialDir.c_str();
    }
    if (ofn->lpstrInitialDir && ofn->lpstrInitialDir[0] == L':' && ofn->lpstrInitialDir[1] == L':')
        g_dialog.shellFolder = ofn->lpstrInitialDir;
    if (ofn->lpstrInitialDir && *ofn->lpstrInitialDir && ofn->lpstrFile) {
        // The folder is the initial directory's business: the name box keeps only the name.
        const std::wstring file = ofn->lpstrFile;
        const size_t slash = file.rfind(L'\\');
        if (slash != std::wstring::npos)
            wmemmove(ofn->lpstrFile, ofn->lpstrFile + slash + 1, file.size() - slash);
    }

    if ((ofn->Flags & OFN_ENABLEHOOK) && ofn->lpfnHook)
        g_dialog.callerHook = ofn->lpfnHook;
    const bool callerTemplate = (ofn->Flags & (OFN_ENABLETEMPLATE | OFN_ENABLETEMPLATEHANDLE)) != 0;
    HGLOBAL mirrored = nullptr;
    if (!callerTemplate) {
        ofn->hInstance = LibraryModule();
        ofn->lpTemplateName = MAKEINTRESOURCEW(ZCMOD_DLG_FILE_DIALOG);
    }
    ofn->Flags |= OFN_EXPLORER | OFN_ENABLESIZING | OFN_ENABLEHOOK | OFN_ENABLETEMPLATE;
    ofn->lpfnHook = HookProc;
    if (g_dialog.m_bRightToLeft && !callerTemplate && (mirrored = MirroredTemplate()) != nullptr) {
        ofn->hInstance = static_cast<HINSTANCE>(mirrored);
        ofn->Flags = (ofn->Flags & ~static_cast<DWORD>(OFN_ENABLETEMPLATE)) | OFN_ENABLETEMPLATEHANDLE;
    }
    if (vista && ofn->lpstrFile) {
        if (wchar_t* dot = wcsrchr(ofn->lpstrFile, L'.'))
            *dot = L'\0';
        ofn->Flags |= OFN_NOVALIDATE;
    }

    const BOOL result = save ? GetSaveFileNameW(ofn) : GetOpenFileNameW(ofn);

    if (mirrored)
        GlobalFree(mirrored);
    // What the caller set comes back; what the platform answered stays.
    ofn->Flags = (saved.flags & ~static_cast<DWORD>(OFN_READONLY)) | (ofn->Flags & OFN_READONLY);
    ofn->hInstance = saved.instance;
    ofn->lpTemplateName = saved.templateName;
    ofn->lpfnHook = saved.hook;
    ofn->lpstrInitialDir = saved.initialDir;
    ofn->lpstrDefExt = saved.defExt;
    g_dialog.callerHook = nullptr;
    return result;
}

}  // namespace

// --- exports ---------------------------------------------------------------------------------------------------

CFileDialogListener::~CFileDialogListener() = default;
int CFileDialogListener::OnFileNameOK(HWND, OFNOTIFYW*) { return 1; }
void CFileDialogListener::OnFolderChange(HWND, OFNOTIFYW*) {}
void CFileDialogListener::OnHelp(HWND, OFNOTIFYW*) {}
unsigned CFileDialogListener::OnShareViolation(HWND, OFNOTIFYW*) { return 0; }
void CFileDialogListener::OnInitDone(HWND, OFNOTIFYW*) {}
void CFileDialogListener::OnFileNameChange(HWND, OFNOTIFYW*) {}
void CFileDialogListener::OnTypeChange(HWND, OFNOTIFYW*) {}
int CFileDialogListener::OnIncludeItem(HWND, OFNOTIFYEXW*) { return 1; }
void CFileDialogListener::OnCommand(WPARAM, LPARAM) {}

BOOL CFD_GetOpenFileName(OPENFILENAMEW* ofn) { return RunDialog(ofn, false); }
BOOL CFD_GetSaveFileName(OPENFILENAMEW* ofn) { return RunDialog(ofn, true); }

void CFD_SetListener(CFileDialogListener* listener) { m_pListener = listener; }
void CFD_EnablePhoneFolders(unsigned long flags) { m_dwPhoneFolders = flags; }
BOOL CFD_SetApplicationImage(HBITMAP) { return TRUE; }

int CFD_GetFolderType(const wchar_t* path)
{
    if (!EnsureSetup() || !path || !*path)
        return CFD_FOLDER_NONE;
    const std::wstring given = path;
    if (phonepath::StartsWithNoCase(given, phonepath::kPhoneFoldersRoot) || IsInMirror(given))
        return CFD_FOLDER_PHONE;
    const std::wstring root = DataRoot();
    if (!root.empty() && !phonepath::StartsWithNoCase(given, root))
        return CFD_FOLDER_NONE;
    const DWORD attributes = GetFileAttributesW(path);
    std::wstring folder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY)
                              ? WithSeparator(given)
                              : WithSeparator(phonepath::ParentFolder(given));
    // Upwards a level at a time: the topmost folder of the unbroken run that holds a folder.xml decides.
    std::wstring deciding;
    for (;;) {
        const bool here = FileExists(folder + L"folder.xml");
        if (here)
            deciding = folder;
        else if (!deciding.empty())
            break;
        const std::wstring trimmed = folder.substr(0, folder.size() - 1);
        const size_t slash = trimmed.rfind(L'\\');
        if (slash == std::wstring::npos)
            break;
        folder = trimmed.substr(0, slash + 1);
    }
    if (deciding.empty())
        return CFD_FOLDER_NONE;
    const FolderXml xml = ReadFolderXml(deciding + L"folder.xml");
    if (!xml.read || !xml.hasName)
        return CFD_FOLDER_UNKNOWN;
    return phonepath::FolderTypeFromName(xml.name);
}

// --- CNFileDialog ---------------------------------------------------------------------------------------------

CNFileDialog::CNFileDialog(int open, const wchar_t* defExt, const wchar_t* fileName, unsigned long flags,
                           const wchar_t* filter, HWND parent)
    : m_ofn(), m_bOpen(open), m_szFileName(), m_szFileTitle(), m_pszFilter(nullptr), m_pszDefExt(nullptr)
{
    m_pListener = this;
    if (fileName)
        lstrcpynW(m_szFileName, fileName, MAX_PATH);
    if (filter) {
        const std::wstring converted = phonepath::FilterForDialog(filter);
        m_pszFilter = new wchar_t[converted.size()];
        wmemcpy(m_pszFilter, converted.data(), converted.size());
    }
    if (defExt) {
        const size_t length = wcslen(defExt);
        m_pszDefExt = new wchar_t[length + 1];
        wmemcpy(m_pszDefExt, defExt, length + 1);
    }
    m_ofn.lStructSize = sizeof(m_ofn);
    m_ofn.hwndOwner = parent;
    m_ofn.lpstrFilter = m_pszFilter;
    m_ofn.nFilterIndex = 1;
    m_ofn.lpstrFile = m_szFileName;
    m_ofn.nMaxFile = MAX_PATH;
    m_ofn.lpstrDefExt = m_pszDefExt;
    m_ofn.Flags = flags;
}

CNFileDialog::~CNFileDialog()
{
    if (m_pListener == this)
        m_pListener = nullptr;
    delete[] m_pszFilter;
    delete[] m_pszDefExt;
}

INT_PTR CNFileDialog::DoModal()
{
    if (!EnsureSetup())
        return 2;
    m_szFileTitle[0] = L'\0';
    const BOOL chosen = m_bOpen ? CFD_GetOpenFileName(&m_ofn) : CFD_GetSaveFileName(&m_ofn);
    if (!chosen)
        return 2;
    const std::wstring title = phonepath::FileTitle(m_szFileName);
    lstrcpynW(m_szFileTitle, title.c_str(), 64);
    return 1;
}

const wchar_t* CNFileDialog::GetFileName() const
{
    const wchar_t* slash = wcsrchr(m_szFileName, L'\\');
    return slash ? slash + 1 : m_szFileName;
}

const wchar_t* CNFileDialog::GetFileExt() const
{
    const wchar_t* name = GetFileName();
    const wchar_t* dot = wcsrchr(name, L'.');
    return dot ? dot + 1 : name + wcslen(name);
}
