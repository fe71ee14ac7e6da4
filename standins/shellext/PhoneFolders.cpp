// The shell namespace extension of the stand-in phone service: each attached virtual phone is a folder under
// My Computer ("::{20D04FE0-...}\::{416651E4-...}\<serial>"), with the phone's files tree below it.
//
// Every phone item is also a file system item: its parsing path is its place in the local mirror of the phone
// ("%TEMP%\CFD Temp Folder\<serial>\C\Pictures\a.jpg"), the folders of which are made as they are handed out.
// So the platform's file dialog, which asks a folder for its path, ends inside the mirror, and the library
// then carries the chosen file with CFD_DownloadFile / CFD_UploadFile.
//
// Names read from a phone (serials, folder and file names) pass the library's own rules of phone paths
// (device/core/PhonePaths.h): a name that could lead out of the mirror is neither shown nor parsed.
//
// The item ids of this folder are its own: a byte count, a tag, the kind, the size and the names.
#include <windows.h>

#include <olectl.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "PhoneService.h"
#include "device/core/PhonePaths.h"

namespace {

using zcmod::phonepath::IsSafeComponent;

// {416651E4-9C3C-11D9-8BDE-F66BAD1E3F3A}
const CLSID kClsidPhoneFolders = {0x416651E4, 0x9C3C, 0x11D9, {0x8B, 0xDE, 0xF6, 0x6B, 0xAD, 0x1E, 0x3F, 0x3A}};
const wchar_t kClsidText[] = L"{416651E4-9C3C-11D9-8BDE-F66BAD1E3F3A}";
const wchar_t kFolderName[] = L"Phones";
const wchar_t kNameSpaceKey[] =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MyComputer\\NameSpace\\";

HMODULE g_module = nullptr;
std::atomic<LONG> g_objects{0};
std::atomic<LONG> g_locks{0};

// --- Item ids -------------------------------------------------------------------------------------------------
enum ItemKind : BYTE { kPhone = 1, kFolder = 2, kFile = 3 };
constexpr DWORD kTag = 0x46505A43;  // "CZPF"

// Layout, unaligned: WORD cb, DWORD tag, BYTE kind, BYTE spare, ULONGLONG size, WCHAR name[] NUL,
// WCHAR label[] NUL (the phone's friendly name; empty for files and folders). A zero WORD ends the list.
constexpr size_t kHeader = 2 + 4 + 1 + 1 + 8;

struct Item {
    ItemKind kind = kFile;
    ULONGLONG size = 0;
    std::wstring name;   // serial of a phone, else the name on the phone
    std::wstring label;  // friendly name of a phone
};

PITEMID_CHILD MakeItem(const Item& item)
{
    const size_t chars = item.name.size() + 1 + item.label.size() + 1;
    const size_t cb = kHeader + chars * sizeof(wchar_t);
    if (cb > 0xFFF0)
        return nullptr;
    BYTE* bytes = static_cast<BYTE*>(CoTaskMemAlloc(cb + 2));
    if (!bytes)
        return nullptr;
    const WORD size = static_cast<WORD>(cb);
    std::memcpy(bytes, &size, 2);
    std::memcpy(bytes + 2, &kTag, 4);
    bytes[6] = item.kind;
    bytes[7] = 0;
    std::memcpy(bytes + 8, &item.size, 8);
    std::memcpy(bytes + kHeader, item.name.c_str(), (item.name.size() + 1) * sizeof(wchar_t));
    std::memcpy(bytes + kHeader + (item.name.size() + 1) * sizeof(wchar_t), item.label.c_str(),
                (item.label.size() + 1) * sizeof(wchar_t));
    std::memset(bytes + cb, 0, 2);
    return reinterpret_cast<PITEMID_CHILD>(bytes);
}

// The first item of `pidl`, if it is one of ours and well formed.
bool ReadItem(PCUIDLIST_RELATIVE pidl, Item& item)
{
    if (!pidl)
        return false;
    const BYTE* bytes = reinterpret_cast<const BYTE*>(pidl);
    WORD cb = 0;
    DWORD tag = 0;
    std::memcpy(&cb, bytes, 2);
    if (cb < kHeader + 2 * sizeof(wchar_t) || (cb - kHeader) % sizeof(wchar_t) != 0)
        return false;
    std::memcpy(&tag, bytes + 2, 4);
    if (tag != kTag || bytes[6] < kPhone || bytes[6] > kFile)
        return false;
    item.kind = static_cast<ItemKind>(bytes[6]);
    std::memcpy(&item.size, bytes + 8, 8);
    std::wstring text((cb - kHeader) / sizeof(wchar_t), L'\0');
    std::memcpy(&text[0], bytes + kHeader, cb - kHeader);
    const size_t end = text.find(L'\0');
    if (end == std::wstring::npos || text.back() != L'\0')
        return false;
    item.name = text.substr(0, end);
    item.label = text.substr(end + 1, text.size() - end - 2);
    return !item.name.empty();
}

PCUIDLIST_RELATIVE NextItem(PCUIDLIST_RELATIVE pidl)
{
    WORD cb = 0;
    std::memcpy(&cb, pidl, 2);
    return reinterpret_cast<PCUIDLIST_RELATIVE>(reinterpret_cast<const BYTE*>(pidl) + cb);
}
bool IsEmpty(PCUIDLIST_RELATIVE pidl)
{
    WORD cb = 0;
    if (pidl)
        std::memcpy(&cb, pidl, 2);
    return cb == 0;
}
bool IsSingle(PCUIDLIST_RELATIVE pidl) { return !IsEmpty(pidl) && IsEmpty(NextItem(pidl)); }

HRESULT ReturnString(const std::wstring& text, STRRET* out)
{
    out->uType = STRRET_WSTR;
    return SHStrDupW(text.c_str(), &out->pOleStr);
}

// --- Places ---------------------------------------------------------------------------------------------------
std::wstring LongTempPath()
{
    wchar_t temp[MAX_PATH + 1] = {}, longer[MAX_PATH + 1] = {};
    if (!GetTempPathW(MAX_PATH, temp))
        return std::wstring();
    if (!GetLongPathNameW(temp, longer, MAX_PATH))
        return temp;
    return longer;
}

// Where a folder of this extension stands: nowhere (the root), or a phone and the names below its files.
struct Place {
    std::wstring serial;
    std::vector<std::wstring> names;

    bool IsRoot() const { return serial.empty(); }
    Place Child(const Item& item) const
    {
        Place child = *this;
        if (IsRoot())
            child.serial = item.name;
        else
            child.names.push_back(item.name);
        return child;
    }
    // A top folder of a phone with a one-letter name is a drive: "C" on disk, "C:" on the phone.
    static bool IsDrive(const Place& parent, const std::wstring& name)
    {
        return !parent.IsRoot() && parent.names.empty() && name.size() == 1 && iswalpha(name[0]);
    }
    std::wstring PhonePath() const
    {
        std::wstring path = std::wstring(zcmod::phonepath::kPhoneFoldersRoot) + L"\\" + serial;
        for (size_t i = 0; i < names.size(); ++i)
            path += L"\\" + names[i] + (i == 0 && names[i].size() == 1 ? L":" : L"");
        return path;
    }
    // The place in the mirror; empty when a name could leave it.
    std::wstring MirrorPath() const
    {
        const std::wstring temp = LongTempPath();
        if (IsRoot()) {
            std::wstring path = temp;
            if (!path.empty() && path.back() != L'\\')
                path += L'\\';
            return path + zcmod::phonepath::kMirrorFolderName;
        }
        return zcmod::phonepath::PhoneToMirrorPath(PhonePath(), temp);
    }
    // The attached phone of this place, and the folder of the virtual phone's files it stands for.
    bool Local(std::wstring& local) const
    {
        zcmod_standin::PhoneInfo phone;
        if (IsRoot() || !IsSafeComponent(serial) ||
            !zcmod_standin::FindPhone(zcmod_standin::PhonesRoot(&g_module), serial.c_str(), phone) ||
            !phone.attached)
            return false;
        local = phone.folder + L"\\files";
        for (const std::wstring& name : names) {
            if (!IsSafeComponent(name))
                return false;
            local += L"\\" + name;
        }
        return true;
    }
};

// Makes each level of `path` that does not exist yet.
bool MakeFolders(const std::wstring& path)
{
    if (path.empty())
        return false;
    for (size_t at = path.find(L'\\', 3); at != std::wstring::npos; at = path.find(L'\\', at + 1))
        CreateDirectoryW(path.substr(0, at).c_str(), nullptr);
    CreateDirectoryW(path.c_str(), nullptr);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// What a place holds: the attached phones at the root, else the safe names of the phone's folder.
std::vector<Item> ListItems(const Place& place, SHCONTF flags)
{
    std::vector<Item> items;
    if (place.IsRoot()) {
        if (!(flags & SHCONTF_FOLDERS))
            return items;
        for (const zcmod_standin::PhoneInfo& phone :
             zcmod_standin::ListPhones(zcmod_standin::PhonesRoot(&g_module))) {
            if (phone.attached && IsSafeComponent(phone.serial))
                items.push_back(Item{kPhone, 0, phone.serial, phone.name.empty() ? phone.serial : phone.name});
        }
        return items;
    }
    std::wstring local;
    if (!place.Local(local))
        return items;
    WIN32_FIND_DATAW found;
    HANDLE find = FindFirstFileW((local + L"\\*").c_str(), &found);
    if (find == INVALID_HANDLE_VALUE)
        return items;
    do {
        const std::wstring name = found.cFileName;
        if (!IsSafeComponent(name))
            continue;  // also "." and ".."
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN) && !(flags & SHCONTF_INCLUDEHIDDEN))
            continue;
        const bool folder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (folder ? !(flags & SHCONTF_FOLDERS) : !(flags & SHCONTF_NONFOLDERS))
            continue;
        const ULONGLONG size = (static_cast<ULONGLONG>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
        items.push_back(Item{folder ? kFolder : kFile, folder ? 0 : size, name, L""});
    } while (FindNextFileW(find, &found));
    FindClose(find);
    std::sort(items.begin(), items.end(), [](const Item& a, const Item& b) {
        if (a.kind != b.kind)
            return a.kind == kFolder;
        return lstrcmpiW(a.name.c_str(), b.name.c_str()) < 0;
    });
    return items;
}

// The item of `name` in `place`, read afresh from the phone; false if there is none or the name is unsafe.
bool FindItem(const Place& place, const std::wstring& name, Item& item)
{
    if (place.IsRoot()) {
        zcmod_standin::PhoneInfo phone;
        if (!IsSafeComponent(name) ||
            !zcmod_standin::FindPhone(zcmod_standin::PhonesRoot(&g_module), name.c_str(), phone) ||
            !phone.attached || phone.serial != name)
            return false;
        item = Item{kPhone, 0, phone.serial, phone.name.empty() ? phone.serial : phone.name};
        return true;
    }
    std::wstring onDisk = name;
    if (place.names.empty() && onDisk.size() == 2 && onDisk[1] == L':')
        onDisk.pop_back();  // "C:" is the drive folder "C"
    std::wstring local;
    if (!IsSafeComponent(onDisk) || !place.Local(local))
        return false;
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW((local + L"\\" + onDisk).c_str(), GetFileExInfoStandard, &data))
        return false;
    const bool folder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    item = Item{folder ? kFolder : kFile,
                folder ? 0 : (static_cast<ULONGLONG>(data.nFileSizeHigh) << 32) | data.nFileSizeLow, onDisk, L""};
    return true;
}

// --- The enumerator -------------------------------------------------------------------------------------------
class ItemEnumerator : public IEnumIDList {
public:
    explicit ItemEnumerator(std::vector<Item> items) : m_items(std::move(items)) { ++g_objects; }
    virtual ~ItemEnumerator() { --g_objects; }

    STDMETHODIMP QueryInterface(REFIID riid, void** out) override
    {
        if (!out)
            return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IEnumIDList)) {
            *out = static_cast<IEnumIDList*>(this);
            AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_refs; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const LONG refs = --m_refs;
        if (refs == 0)
            delete this;
        return refs;
    }
    STDMETHODIMP Next(ULONG count, PITEMID_CHILD* out, ULONG* fetched) override
    {
        if (!out || (count > 1 && !fetched))
            return E_INVALIDARG;
        ULONG given = 0;
        while (given < count && m_next < m_items.size()) {
            PITEMID_CHILD item = MakeItem(m_items[m_next++]);
            if (!item)
                continue;
            out[given++] = item;
        }
        if (fetched)
            *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG count) override
    {
        m_next = std::min(m_items.size(), m_next + count);
        return m_next < m_items.size() ? S_OK : S_FALSE;
    }
    STDMETHODIMP Reset() override
    {
        m_next = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(IEnumIDList** out) override
    {
        if (!out)
            return E_POINTER;
        ItemEnumerator* copy = new (std::nothrow) ItemEnumerator(m_items);
        if (!copy)
            return E_OUTOFMEMORY;
        copy->m_next = m_next;
        *out = copy;
        return S_OK;
    }

private:
    std::atomic<LONG> m_refs{1};
    std::vector<Item> m_items;
    size_t m_next = 0;
};

// --- Icons ----------------------------------------------------------------------------------------------------
// The platform's own pictures: a removable drive for a phone, a drive, a folder, a document.
class ItemIcon : public IExtractIconW {
public:
    explicit ItemIcon(int resource) : m_resource(resource) { ++g_objects; }
    virtual ~ItemIcon() { --g_objects; }

    STDMETHODIMP QueryInterface(REFIID riid, void** out) override
    {
        if (!out)
            return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IExtractIconW)) {
            *out = static_cast<IExtractIconW*>(this);
            AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_refs; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const LONG refs = --m_refs;
        if (refs == 0)
            delete this;
        return refs;
    }
    STDMETHODIMP GetIconLocation(UINT, LPWSTR file, UINT chars, int* index, UINT* flags) override
    {
        if (!file || !index || !flags || chars < 12)
            return E_INVALIDARG;
        lstrcpynW(file, L"shell32.dll", chars);
        *index = -m_resource;
        *flags = 0;
        return S_OK;
    }
    STDMETHODIMP Extract(LPCWSTR, UINT, HICON*, HICON*, UINT) override { return S_FALSE; }  // the caller loads it

private:
    std::atomic<LONG> m_refs{1};
    int m_resource;
};

// --- The folder -----------------------------------------------------------------------------------------------
class PhoneFolder : public IShellFolder2, public IPersistFolder2 {
public:
    explicit PhoneFolder(Place place) : m_place(std::move(place)) { ++g_objects; }
    virtual ~PhoneFolder()
    {
        CoTaskMemFree(m_absolute);
        --g_objects;
    }

    // IUnknown
    STDMETHODIMP QueryInterface(REFIID riid, void** out) override
    {
        if (!out)
            return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IShellFolder) ||
            IsEqualIID(riid, IID_IShellFolder2))
            *out = static_cast<IShellFolder2*>(this);
        else if (IsEqualIID(riid, IID_IPersist) || IsEqualIID(riid, IID_IPersistFolder) ||
                 IsEqualIID(riid, IID_IPersistFolder2))
            *out = static_cast<IPersistFolder2*>(this);
        else {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_refs; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const LONG refs = --m_refs;
        if (refs == 0)
            delete this;
        return refs;
    }

    // IPersistFolder2
    STDMETHODIMP GetClassID(CLSID* clsid) override
    {
        if (!clsid)
            return E_POINTER;
        *clsid = kClsidPhoneFolders;
        return S_OK;
    }
    STDMETHODIMP Initialize(PCIDLIST_ABSOLUTE pidl) override
    {
        PIDLIST_ABSOLUTE copy = pidl ? ILClone(pidl) : nullptr;
        if (pidl && !copy)
            return E_OUTOFMEMORY;
        CoTaskMemFree(m_absolute);
        m_absolute = copy;
        return S_OK;
    }
    STDMETHODIMP GetCurFolder(PIDLIST_ABSOLUTE* pidl) override
    {
        if (!pidl)
            return E_POINTER;
        *pidl = m_absolute ? ILClone(m_absolute) : nullptr;
        return *pidl ? S_OK : S_FALSE;
    }

    // IShellFolder
    STDMETHODIMP ParseDisplayName(HWND window, IBindCtx* context, LPWSTR name, ULONG* eaten,
                                  PIDLIST_RELATIVE* pidl, ULONG* attributes) override
    {
        if (!pidl)
            return E_INVALIDARG;
        *pidl = nullptr;
        if (!name)
            return E_INVALIDARG;
        std::wstring text(name);
        while (!text.empty() && text[0] == L'\\')
            text.erase(0, 1);
        const size_t split = text.find(L'\\');
        const std::wstring first = text.substr(0, split);
        std::wstring rest = split == std::wstring::npos ? std::wstring() : text.substr(split + 1);
        Item item;
        if (first.empty() || !FindItem(m_place, first, item))
            return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
        PIDLIST_RELATIVE own = reinterpret_cast<PIDLIST_RELATIVE>(MakeItem(item));
        if (!own)
            return E_OUTOFMEMORY;
        HRESULT result = S_OK;
        if (!rest.empty()) {
            if (item.kind == kFile) {
                CoTaskMemFree(own);
                return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
            }
            PhoneFolder* child = ChildFolder(item);
            if (!child) {
                CoTaskMemFree(own);
                return E_OUTOFMEMORY;
            }
            PIDLIST_RELATIVE below = nullptr;
            result = child->ParseDisplayName(window, context, &rest[0], nullptr, &below, nullptr);
            child->Release();
            if (FAILED(result)) {
                CoTaskMemFree(own);
                return result;
            }
            PIDLIST_RELATIVE whole = ILCombine(reinterpret_cast<PCIDLIST_ABSOLUTE>(own), below);
            CoTaskMemFree(own);
            CoTaskMemFree(below);
            if (!whole)
                return E_OUTOFMEMORY;
            own = whole;
        }
        if (attributes && *attributes) {
            PCUITEMID_CHILD last = reinterpret_cast<PCUITEMID_CHILD>(ILFindLastID(own));
            Item lastItem;
            ReadItem(last, lastItem);
            *attributes &= Attributes(lastItem);
        }
        if (eaten)
            *eaten = static_cast<ULONG>(wcslen(name));
        *pidl = own;
        return S_OK;
    }
    STDMETHODIMP EnumObjects(HWND, SHCONTF flags, IEnumIDList** out) override
    {
        if (!out)
            return E_POINTER;
        *out = new (std::nothrow) ItemEnumerator(ListItems(m_place, flags));
        return *out ? S_OK : E_OUTOFMEMORY;
    }
    STDMETHODIMP BindToObject(PCUIDLIST_RELATIVE pidl, IBindCtx* context, REFIID riid, void** out) override
    {
        if (!out)
            return E_POINTER;
        *out = nullptr;
        Item item;
        if (!ReadItem(pidl, item) || item.kind == kFile)
            return E_INVALIDARG;
        PhoneFolder* child = ChildFolder(item);
        if (!child)
            return E_OUTOFMEMORY;
        PIDLIST_ABSOLUTE first = m_absolute ? ILCloneFirst(pidl) : nullptr;
        if (first) {
            PIDLIST_ABSOLUTE absolute = ILCombine(m_absolute, first);
            child->Initialize(absolute);
            CoTaskMemFree(absolute);
            CoTaskMemFree(first);
        }
        HRESULT result = IsEmpty(NextItem(pidl)) ? child->QueryInterface(riid, out)
                                                 : child->BindToObject(NextItem(pidl), context, riid, out);
        child->Release();
        return result;
    }
    STDMETHODIMP BindToStorage(PCUIDLIST_RELATIVE, IBindCtx*, REFIID, void** out) override
    {
        if (out)
            *out = nullptr;
        return E_NOTIMPL;
    }
    STDMETHODIMP CompareIDs(LPARAM column, PCUIDLIST_RELATIVE first, PCUIDLIST_RELATIVE second) override
    {
        Item a, b;
        if (!ReadItem(first, a) || !ReadItem(second, b))
            return E_INVALIDARG;
        int order = 0;
        if (a.kind != b.kind && (a.kind == kFile || b.kind == kFile))
            order = a.kind == kFile ? 1 : -1;
        else if ((column & SHCIDS_COLUMNMASK) == 1 && a.size != b.size)
            order = a.size < b.size ? -1 : 1;
        if (order == 0)
            order = lstrcmpiW(a.name.c_str(), b.name.c_str());
        if (order == 0)
            order = wcscmp(a.name.c_str(), b.name.c_str());
        if (order == 0) {
            const bool endA = IsEmpty(NextItem(first)), endB = IsEmpty(NextItem(second));
            if (endA || endB)
                order = endA == endB ? 0 : (endA ? -1 : 1);
            else
                return CompareIDs(column, NextItem(first), NextItem(second));
        }
        return MAKE_HRESULT(SEVERITY_SUCCESS, 0, static_cast<USHORT>(static_cast<short>(order < 0 ? -1 : order > 0)));
    }
    STDMETHODIMP CreateViewObject(HWND, REFIID riid, void** out) override
    {
        if (!out)
            return E_POINTER;
        *out = nullptr;
        if (!IsEqualIID(riid, IID_IShellView))
            return E_NOINTERFACE;
        SFV_CREATE create = {};
        create.cbSize = sizeof(create);
        create.pshf = static_cast<IShellFolder2*>(this);
        return SHCreateShellFolderView(&create, reinterpret_cast<IShellView**>(out));
    }
    STDMETHODIMP GetAttributesOf(UINT count, PCUITEMID_CHILD_ARRAY items, SFGAOF* attributes) override
    {
        if (!attributes)
            return E_POINTER;
        if (count == 0) {
            *attributes &= SFGAO_FOLDER | SFGAO_HASSUBFOLDER | SFGAO_BROWSABLE | SFGAO_FILESYSANCESTOR |
                           (m_place.IsRoot() ? 0 : SFGAO_FILESYSTEM);
            return S_OK;
        }
        if (!items)
            return E_INVALIDARG;
        SFGAOF all = ~0u;
        for (UINT i = 0; i < count; ++i) {
            Item item;
            if (!ReadItem(items[i], item))
                return E_INVALIDARG;
            all &= Attributes(item);
        }
        *attributes &= all;
        return S_OK;
    }
    STDMETHODIMP GetUIObjectOf(HWND, UINT count, PCUITEMID_CHILD_ARRAY items, REFIID riid, UINT*,
                               void** out) override
    {
        if (!out)
            return E_POINTER;
        *out = nullptr;
        if (count == 0 || !items)
            return E_INVALIDARG;
        // The selection as the shell passes it around: the file dialog reads the chosen items from it.
        if (IsEqualIID(riid, IID_IDataObject)) {
            if (!m_absolute)
                return E_FAIL;
            return CIDLData_CreateFromIDArray(m_absolute, count, reinterpret_cast<PCUIDLIST_RELATIVE_ARRAY>(items),
                                              reinterpret_cast<IDataObject**>(out));
        }
        Item item;
        if (count != 1 || !ReadItem(items[0], item))
            return E_INVALIDARG;
        if (!IsEqualIID(riid, IID_IExtractIconW))
            return E_NOINTERFACE;
        const int resource = item.kind == kPhone                               ? 8
                             : item.kind == kFile                              ? 1
                             : Place::IsDrive(m_place, item.name) ? 9
                                                                               : 4;
        *out = static_cast<IExtractIconW*>(new (std::nothrow) ItemIcon(resource));
        return *out ? S_OK : E_OUTOFMEMORY;
    }
    STDMETHODIMP GetDisplayNameOf(PCUITEMID_CHILD pidl, SHGDNF flags, STRRET* out) override
    {
        if (!out)
            return E_POINTER;
        std::memset(out, 0, sizeof(*out));
        const bool parsing = (flags & SHGDN_FORPARSING) != 0, inFolder = (flags & SHGDN_INFOLDER) != 0;
        if (IsEmpty(pidl)) {  // this folder itself
            if (!parsing)
                return ReturnString(m_place.IsRoot() ? kFolderName : Leaf(m_place), out);
            return MirrorName(m_place, true, out);
        }
        Item item;
        if (!ReadItem(pidl, item))
            return E_INVALIDARG;
        if (!IsSingle(pidl)) {
            if (item.kind == kFile)
                return E_INVALIDARG;
            PhoneFolder* child = ChildFolder(item);
            if (!child)
                return E_OUTOFMEMORY;
            const HRESULT result =
                child->GetDisplayNameOf(reinterpret_cast<PCUITEMID_CHILD>(NextItem(pidl)), flags, out);
            child->Release();
            return result;
        }
        const bool drive = Place::IsDrive(m_place, item.name);
        if (parsing && !inFolder)
            return MirrorName(m_place.Child(item), item.kind != kFile, out);
        if (item.kind == kPhone)
            return ReturnString(parsing ? item.name : item.label, out);
        return ReturnString(drive ? item.name + L":" : item.name, out);
    }
    STDMETHODIMP SetNameOf(HWND, PCUITEMID_CHILD, LPCWSTR, SHGDNF, PITEMID_CHILD* out) override
    {
        if (out)
            *out = nullptr;
        return E_NOTIMPL;
    }

    // IShellFolder2: two columns, the name and the size.
    STDMETHODIMP GetDefaultSearchGUID(GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP EnumSearches(IEnumExtraSearch** out) override
    {
        if (out)
            *out = nullptr;
        return E_NOTIMPL;
    }
    STDMETHODIMP GetDefaultColumn(DWORD, ULONG* sort, ULONG* display) override
    {
        if (sort)
            *sort = 0;
        if (display)
            *display = 0;
        return S_OK;
    }
    STDMETHODIMP GetDefaultColumnState(UINT column, SHCOLSTATEF* state) override
    {
        if (!state || column > 1)
            return E_INVALIDARG;
        *state = (column == 0 ? SHCOLSTATE_TYPE_STR : SHCOLSTATE_TYPE_INT) | SHCOLSTATE_ONBYDEFAULT;
        return S_OK;
    }
    STDMETHODIMP GetDetailsEx(PCUITEMID_CHILD, const SHCOLUMNID*, VARIANT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetDetailsOf(PCUITEMID_CHILD pidl, UINT column, SHELLDETAILS* details) override
    {
        if (!details || column > 1)
            return E_INVALIDARG;
        details->fmt = column == 0 ? LVCFMT_LEFT : LVCFMT_RIGHT;
        details->cxChar = column == 0 ? 30 : 12;
        if (!pidl)
            return ReturnString(column == 0 ? L"Name" : L"Size", &details->str);
        Item item;
        if (!ReadItem(pidl, item))
            return E_INVALIDARG;
        if (column == 0)
            return GetDisplayNameOf(pidl, SHGDN_INFOLDER, &details->str);
        if (item.kind != kFile)
            return ReturnString(L"", &details->str);
        wchar_t size[64] = {};
        StrFormatByteSizeW(static_cast<LONGLONG>(item.size), size, 64);
        return ReturnString(size, &details->str);
    }
    STDMETHODIMP MapColumnToSCID(UINT, SHCOLUMNID*) override { return E_NOTIMPL; }

private:
    PhoneFolder* ChildFolder(const Item& item) { return new (std::nothrow) PhoneFolder(m_place.Child(item)); }

    SFGAOF Attributes(const Item& item) const
    {
        if (item.kind == kFile)
            return SFGAO_FILESYSTEM | SFGAO_CANCOPY;
        return SFGAO_FOLDER | SFGAO_HASSUBFOLDER | SFGAO_BROWSABLE | SFGAO_FILESYSANCESTOR | SFGAO_FILESYSTEM;
    }
    static std::wstring Leaf(const Place& place)
    {
        if (place.names.empty())
            return place.serial;
        return place.names.size() == 1 && place.names[0].size() == 1 ? place.names[0] + L":" : place.names.back();
    }
    // The mirror path of a place; a folder's levels are made so that the file system can follow it, and for a
    // file its folder.
    static HRESULT MirrorName(const Place& place, bool folder, STRRET* out)
    {
        const std::wstring path = place.MirrorPath();
        if (path.empty())
            return E_FAIL;
        if (!MakeFolders(folder ? path : path.substr(0, path.find_last_of(L'\\'))))
            return E_FAIL;
        return ReturnString(path, out);
    }

    std::atomic<LONG> m_refs{1};
    Place m_place;
    PIDLIST_ABSOLUTE m_absolute = nullptr;
};

// --- Class factory and registration ---------------------------------------------------------------------------
class Factory : public IClassFactory {
public:
    STDMETHODIMP QueryInterface(REFIID riid, void** out) override
    {
        if (!out)
            return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
            *out = static_cast<IClassFactory*>(this);
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** out) override
    {
        if (!out)
            return E_POINTER;
        *out = nullptr;
        if (outer)
            return CLASS_E_NOAGGREGATION;
        PhoneFolder* folder = new (std::nothrow) PhoneFolder(Place());
        if (!folder)
            return E_OUTOFMEMORY;
        const HRESULT result = folder->QueryInterface(riid, out);
        folder->Release();
        return result;
    }
    STDMETHODIMP LockServer(BOOL lock) override
    {
        lock ? ++g_locks : --g_locks;
        return S_OK;
    }
};
Factory g_factory;

LSTATUS SetValue(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text)
{
    return RegSetKeyValueW(root, key.c_str(), name, REG_SZ, text.c_str(),
                           static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH) {
        g_module = instance;
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

__declspec(dllexport) HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID riid, void** out)
{
    if (!out)
        return E_POINTER;
    *out = nullptr;
    if (!IsEqualCLSID(clsid, kClsidPhoneFolders))
        return CLASS_E_CLASSNOTAVAILABLE;
    return g_factory.QueryInterface(riid, out);
}

__declspec(dllexport) HRESULT WINAPI DllCanUnloadNow()
{
    return g_objects == 0 && g_locks == 0 ? S_OK : S_FALSE;
}

// Registers the class for this machine and puts the phones under My Computer.
__declspec(dllexport) HRESULT WINAPI DllRegisterServer()
{
    wchar_t module[MAX_PATH] = {};
    if (!GetModuleFileNameW(g_module, module, MAX_PATH))
        return SELFREG_E_CLASS;
    const std::wstring clsid = std::wstring(L"Software\\Classes\\CLSID\\") + kClsidText;
    const SFGAOF attributes = SFGAO_FOLDER | SFGAO_HASSUBFOLDER | SFGAO_BROWSABLE | SFGAO_FILESYSANCESTOR;
    bool ok = SetValue(HKEY_LOCAL_MACHINE, clsid, nullptr, kFolderName) == ERROR_SUCCESS &&
              SetValue(HKEY_LOCAL_MACHINE, clsid + L"\\InprocServer32", nullptr, module) == ERROR_SUCCESS &&
              SetValue(HKEY_LOCAL_MACHINE, clsid + L"\\InprocServer32", L"ThreadingModel", L"Apartment") ==
                  ERROR_SUCCESS &&
              SetValue(HKEY_LOCAL_MACHINE, clsid + L"\\DefaultIcon", nullptr, L"shell32.dll,-8") == ERROR_SUCCESS &&
              RegSetKeyValueW(HKEY_LOCAL_MACHINE, (clsid + L"\\ShellFolder").c_str(), L"Attributes", REG_DWORD,
                              &attributes, sizeof(attributes)) == ERROR_SUCCESS &&
              SetValue(HKEY_LOCAL_MACHINE, std::wstring(kNameSpaceKey) + kClsidText, nullptr, kFolderName) ==
                  ERROR_SUCCESS;
    if (!ok)
        return SELFREG_E_CLASS;
    SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
    return S_OK;
}

__declspec(dllexport) HRESULT WINAPI DllUnregisterServer()
{
    const LSTATUS a = RegDeleteTreeW(HKEY_LOCAL_MACHINE, (std::wstring(kNameSpaceKey) + kClsidText).c_str());
    const LSTATUS b =
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, (std::wstring(L"Software\\Classes\\CLSID\\") + kClsidText).c_str());
    const bool gone = (a == ERROR_SUCCESS || a == ERROR_FILE_NOT_FOUND) &&
                      (b == ERROR_SUCCESS || b == ERROR_FILE_NOT_FOUND);
    return gone ? S_OK : SELFREG_E_CLASS;
}

}  // extern "C"
