// The virtual phones on disk and what the stand-in libraries share.
#include "PhoneService.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace zcmod_standin {

namespace {

std::string ReadFileBytes(const std::wstring& path)
{
    std::string bytes;
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return bytes;
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(file, &size) && size.QuadPart > 0 && size.QuadPart < (256LL << 20)) {
        bytes.resize(static_cast<size_t>(size.QuadPart));
        DWORD got = 0;
        if (!ReadFile(file, &bytes[0], static_cast<DWORD>(bytes.size()), &got, nullptr))
            got = 0;
        bytes.resize(got);
    }
    CloseHandle(file);
    return bytes;
}

bool WriteFileBytes(const std::wstring& path, const std::string& bytes)
{
    // Written beside and renamed over, so that a reader never sees half a file.
    const std::wstring temporary = path + L".new";
    HANDLE file =
        CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const bool ok =
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) && written == bytes.size();
    CloseHandle(file);
    return ok && MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING);
}

std::wstring Utf8ToWide(const std::string& text)
{
    return ToWide(Utf8ToUtf16Lossy(text));
}

std::string WideToUtf8(const std::wstring& text)
{
    return Utf16ToUtf8(ToU16(text.c_str()));
}

std::wstring ModuleFolder(const void* anchor)
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(anchor), &module);
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return L".";
    std::wstring folder(path, length);
    return folder.substr(0, folder.find_last_of(L'\\'));
}

const struct {
    DWORD media;
    const wchar_t* name;
} kMedia[] = {{LNKA_MEDIA_USB, L"usb"},
              {LNKA_MEDIA_BLUETOOTH, L"bluetooth"},
              {LNKA_MEDIA_IRDA, L"irda"},
              {LNKA_MEDIA_SERIAL, L"serial"}};

}  // namespace

std::wstring ToWide(const std::u16string& text)
{
    return std::wstring(text.begin(), text.end());
}

std::u16string ToU16(const wchar_t* text)
{
    return text ? std::u16string(text, text + std::wcslen(text)) : std::u16string();
}

DWORD PhoneInfo::DeviceId() const
{
    DWORD hash = 2166136261u;
    for (wchar_t c : serial)
        hash = (hash ^ static_cast<DWORD>(c)) * 16777619u;
    return (hash & 0x7FFFFFFF) | 1;
}

const wchar_t* MediaName(DWORD media)
{
    for (const auto& m : kMedia)
        if (m.media == media)
            return m.name;
    return L"usb";
}

DWORD MediaFromName(const std::wstring& name)
{
    for (const auto& m : kMedia)
        if (_wcsicmp(m.name, name.c_str()) == 0)
            return m.media;
    return 0;
}

std::wstring PhonesRoot(const void* anchor)
{
    wchar_t root[MAX_PATH + 1] = {};
    DWORD size = MAX_PATH * sizeof(wchar_t);
    DWORD type = 0;
    if (RegGetValueW(HKEY_CURRENT_USER, kServiceKey, L"PhonesRoot", RRF_RT_REG_SZ, &type, root, &size) ==
            ERROR_SUCCESS &&
        root[0]) {
        std::wstring path(root);
        while (path.size() > 3 && (path.back() == L'\\' || path.back() == L'/'))
            path.pop_back();
        return path;
    }
    return ModuleFolder(anchor) + L"\\phones";
}

bool ReadPhone(const std::wstring& folder, PhoneInfo& phone)
{
    const std::string bytes = ReadFileBytes(folder + L"\\phone.ini");
    if (bytes.empty())
        return false;
    phone = PhoneInfo();
    phone.folder = folder;
    phone.id = folder.substr(folder.find_last_of(L'\\') + 1);
    size_t start = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    while (start < bytes.size()) {
        size_t end = bytes.find('\n', start);
        if (end == std::string::npos)
            end = bytes.size();
        std::string line = bytes.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const size_t equals = line.find('=');
        if (equals == std::string::npos || line[0] == '#' || line[0] == ';')
            continue;
        const std::string key = line.substr(0, equals);
        const std::wstring value = Utf8ToWide(line.substr(equals + 1));
        if (key == "serial")
            phone.serial = value;
        else if (key == "name")
            phone.name = value;
        else if (key == "model")
            phone.model = value;
        else if (key == "manufacturer")
            phone.manufacturer = value;
        else if (key == "attached")
            phone.attached = value == L"1";
        else if (key == "media")
            phone.media = MediaFromName(value) ? MediaFromName(value) : LNKA_MEDIA_USB;
        else if (key == "copydelay")
            phone.copyDelay = static_cast<DWORD>(std::wcstoul(value.c_str(), nullptr, 10));
        else if (key == "finddelay")
            phone.findDelay = static_cast<DWORD>(std::wcstoul(value.c_str(), nullptr, 10));
    }
    return !phone.serial.empty();
}

bool WritePhone(const PhoneInfo& phone)
{
    std::string text = "serial=" + WideToUtf8(phone.serial) + "\r\nname=" + WideToUtf8(phone.name) +
                       "\r\nmodel=" + WideToUtf8(phone.model) + "\r\nmanufacturer=" + WideToUtf8(phone.manufacturer) +
                       "\r\nattached=" + (phone.attached ? "1" : "0") +
                       "\r\nmedia=" + WideToUtf8(MediaName(phone.media)) +
                       "\r\ncopydelay=" + std::to_string(phone.copyDelay) +
                       "\r\nfinddelay=" + std::to_string(phone.findDelay) + "\r\n";
    CreateDirectoryW(phone.folder.c_str(), nullptr);
    return WriteFileBytes(phone.folder + L"\\phone.ini", text);
}

std::vector<PhoneInfo> ListPhones(const std::wstring& root)
{
    std::vector<PhoneInfo> phones;
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((root + L"\\*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
        return phones;
    do {
        if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) || data.cFileName[0] == L'.')
            continue;
        PhoneInfo phone;
        if (ReadPhone(root + L"\\" + data.cFileName, phone))
            phones.push_back(std::move(phone));
    } while (FindNextFileW(find, &data));
    FindClose(find);
    std::sort(phones.begin(), phones.end(), [](const PhoneInfo& a, const PhoneInfo& b) { return a.id < b.id; });
    return phones;
}

bool FindPhone(const std::wstring& root, const wchar_t* serial, PhoneInfo& phone)
{
    if (!serial || !*serial)
        return false;
    for (PhoneInfo& candidate : ListPhones(root))
        if (candidate.serial == serial) {
            phone = std::move(candidate);
            return true;
        }
    return false;
}

std::vector<Contact> ReadContacts(const PhoneInfo& phone)
{
    return ParseVCards(ReadFileBytes(phone.folder + L"\\contacts.vcf"));
}

bool WriteContacts(const PhoneInfo& phone, const std::vector<Contact>& contacts, VCardVersion version)
{
    std::string cards;
    for (const Contact& contact : contacts)
        cards += WriteVCard(contact, version);
    return WriteFileBytes(phone.folder + L"\\contacts.vcf", cards);
}

bool ReadCapabilityText(const PhoneInfo& phone, std::wstring& text)
{
    const std::string bytes = ReadFileBytes(phone.folder + L"\\capabilities.txt");
    text = Utf8ToWide(bytes.compare(0, 3, "\xEF\xBB\xBF") == 0 ? bytes.substr(3) : bytes);
    return !bytes.empty();
}

bool WriteCapabilityText(const PhoneInfo& phone, const std::wstring& text)
{
    const std::wstring path = phone.folder + L"\\capabilities.txt";
    if (text.empty())
        return DeleteFileW(path.c_str()) || GetLastError() == ERROR_FILE_NOT_FOUND;
    return WriteFileBytes(path, WideToUtf8(text));
}

std::wstring DefaultCapabilityText(const PhoneInfo& phone)
{
    const std::wstring type = phone.manufacturer + L" " + phone.model;
    return L"PhoneType=" + type + L"\r\n[" + type + L"]\r\nManufacturer=" + phone.manufacturer + L"\r\nModel=" +
           phone.model +
           L"\r\nMemType=Phone,Card\r\nFolderNLen=64\r\nFileNLen=128\r\nCaseSenN=0\r\n"
           L"Object=Contacts,Files,Pictures\r\nName-Ext=jpg,png,gif,bmp,mid,mp3,txt\r\nConversion=vcf\r\n";
}

bool IsValidName(const wchar_t* name)
{
    if (!name || !*name || std::wcslen(name) > 255)
        return false;
    if (std::wcscmp(name, L".") == 0 || std::wcscmp(name, L"..") == 0)
        return false;
    for (const wchar_t* c = name; *c; ++c)
        if (*c < 32 || std::wcschr(L"\\/:*?\"<>|", *c))
            return false;
    return true;
}

bool PhonePathToLocal(const PhoneInfo& phone, const wchar_t* phonePath, std::wstring& local)
{
    if (!phonePath)
        return false;
    local = phone.folder + L"\\files";
    const std::wstring path(phonePath);
    size_t start = 0;
    bool first = true;
    while (start <= path.size()) {
        size_t end = path.find_first_of(L"\\/", start);
        if (end == std::wstring::npos)
            end = path.size();
        std::wstring part = path.substr(start, end - start);
        start = end + 1;
        if (part.empty())
            continue;
        // A drive: "C:" as the first component.
        if (first && part.size() == 2 && part[1] == L':' && iswalpha(part[0]))
            part.pop_back();
        first = false;
        if (!IsValidName(part.c_str()))
            return false;
        local += L"\\" + part;
    }
    return local.size() < MAX_PATH;
}

bool DeleteFolderTree(const std::wstring& folder)
{
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((folder + L"\\*").c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = data.cFileName;
            if (name == L"." || name == L"..")
                continue;
            const std::wstring path = folder + L"\\" + name;
            if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
                DeleteFolderTree(path);
            else
                DeleteFileW(path.c_str());
        } while (FindNextFileW(find, &data));
        FindClose(find);
    }
    return RemoveDirectoryW(folder.c_str()) != FALSE;
}

// --- Device change signal -------------------------------------------------------------------------------------

namespace {

std::wstring WatcherFolder(const std::wstring& root)
{
    return root + L"\\.watchers";
}

std::wstring WatcherEventName(const std::wstring& registration)
{
    return L"Global\\ZCMOD Stand-in Phones " + registration;
}

}  // namespace

void SignalDeviceChange(const std::wstring& root)
{
    const std::wstring folder = WatcherFolder(root);
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((folder + L"\\*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
        return;
    do {
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
            continue;
        HANDLE event = OpenEventW(EVENT_MODIFY_STATE, FALSE, WatcherEventName(data.cFileName).c_str());
        if (event) {
            SetEvent(event);
            CloseHandle(event);
        } else {
            DeleteFileW((folder + L"\\" + data.cFileName).c_str());  // its process is gone
        }
    } while (FindNextFileW(find, &data));
    FindClose(find);
}

WatcherRegistration::WatcherRegistration(const std::wstring& root)
{
    static std::atomic<unsigned> counter{0};
    wchar_t name[64];
    std::swprintf(name, 64, L"%lu-%u-%lu", GetCurrentProcessId(), ++counter, GetTickCount());
    m_event = CreateEventW(nullptr, FALSE, FALSE, WatcherEventName(name).c_str());
    CreateDirectoryW(root.c_str(), nullptr);
    CreateDirectoryW(WatcherFolder(root).c_str(), nullptr);
    m_file = WatcherFolder(root) + L"\\" + name;
    HANDLE file = CreateFileW(m_file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
}

WatcherRegistration::~WatcherRegistration()
{
    DeleteFileW(m_file.c_str());
    if (m_event)
        CloseHandle(m_event);
}

// --- Records --------------------------------------------------------------------------------------------------

wchar_t* HeapString(const std::wstring& text)
{
    auto* copy = static_cast<wchar_t*>(HeapZeroed((text.size() + 1) * sizeof(wchar_t)));
    if (copy)
        std::wmemcpy(copy, text.c_str(), text.size());
    return copy;
}

void* HeapZeroed(size_t bytes)
{
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes ? bytes : 1);
}

void HeapRelease(void* memory)
{
    if (memory)
        HeapFree(GetProcessHeap(), 0, memory);
}

namespace {

// The fields of one class as a heap array; at most 255, the width of the count.
ContactField* FieldArray(const Contact& contact, uint32_t fieldClass, BYTE& count, bool& failed)
{
    size_t n = 0;
    for (const Field& f : contact.fields)
        n += f.fieldClass == fieldClass;
    n = std::min<size_t>(n, 255);
    count = static_cast<BYTE>(n);
    if (n == 0)
        return nullptr;
    auto* array = static_cast<ContactField*>(HeapZeroed(n * sizeof(ContactField)));
    if (!array) {
        failed = true;
        count = 0;
        return nullptr;
    }
    size_t i = 0;
    for (const Field& f : contact.fields) {
        if (f.fieldClass != fieldClass || i == n)
            continue;
        ContactField& out = array[i++];
        out.dwSize = sizeof(ContactField);
        out.dwFieldClass = f.fieldClass;
        out.dwFieldSubType = f.subType;
        out.pstrValue = HeapString(ToWide(f.value));
        failed = failed || !out.pstrValue;
    }
    return array;
}

void FreeFieldArray(ContactField* array, BYTE count)
{
    if (!array)
        return;
    for (BYTE i = 0; i < count; ++i)
        HeapRelease(array[i].pstrValue);
    HeapRelease(array);
}

bool ReadFieldArray(const ContactField* array, BYTE count, uint32_t fieldClass, Contact& contact)
{
    if (count && !array)
        return false;
    for (BYTE i = 0; i < count; ++i) {
        if (array[i].dwSize != sizeof(ContactField))
            return false;
        if (array[i].pstrValue)
            contact.fields.push_back(Field{fieldClass, array[i].dwFieldSubType, ToU16(array[i].pstrValue)});
    }
    return true;
}

}  // namespace

HRESULT FillContactItem(const Contact& contact, ContactItem* item)
{
    bool failed = false;
    std::memset(item, 0, sizeof(*item));
    item->dwSize = sizeof(ContactItem);
    item->pPersonal = FieldArray(contact, CA_FIELD_CLASS_PERSONAL, item->bPersonalCount, failed);
    item->pNumbers = FieldArray(contact, CA_FIELD_CLASS_NUMBER, item->bNumberCount, failed);
    item->pAddresses = FieldArray(contact, CA_FIELD_CLASS_ADDRESS, item->bAddressCount, failed);
    if (failed) {
        FreeContactItem(item);
        return LNKA_E_OUT_OF_MEMORY;
    }
    return LNKA_OK;
}

void FreeContactItem(ContactItem* item)
{
    FreeFieldArray(item->pPersonal, item->bPersonalCount);
    FreeFieldArray(item->pNumbers, item->bNumberCount);
    FreeFieldArray(item->pAddresses, item->bAddressCount);
    std::memset(item, 0, sizeof(*item));
    item->dwSize = sizeof(ContactItem);
}

bool ReadContactItem(const ContactItem* item, Contact& contact)
{
    contact.fields.clear();
    return item && item->dwSize == sizeof(ContactItem) &&
           ReadFieldArray(item->pPersonal, item->bPersonalCount, CA_FIELD_CLASS_PERSONAL, contact) &&
           ReadFieldArray(item->pNumbers, item->bNumberCount, CA_FIELD_CLASS_NUMBER, contact) &&
           ReadFieldArray(item->pAddresses, item->bAddressCount, CA_FIELD_CLASS_ADDRESS, contact);
}

uintptr_t NewHandleValue()
{
    // A start that differs between loads of the library, so that a handle from before a reload is refused.
    static std::atomic<uintptr_t> next{(static_cast<uintptr_t>(GetTickCount() & 0xFFFFF) << 12) + 0x10000};
    return next.fetch_add(8);
}

// --- Interface state ------------------------------------------------------------------------------------------

DWORD ReadServiceDword(const wchar_t* name, DWORD fallback)
{
    DWORD value = 0;
    DWORD size = sizeof(value);
    if (RegGetValueW(HKEY_CURRENT_USER, kServiceKey, name, RRF_RT_REG_DWORD, nullptr, &value, &size) == ERROR_SUCCESS)
        return value;
    return fallback;
}

HRESULT InterfaceState::Initialize(DWORD)
{
    const HRESULT forced = static_cast<HRESULT>(ReadServiceDword(L"InitializeResult", 0));
    if (forced != 0)
        return forced;
    ++m_count;
    return LNKA_OK;
}

HRESULT InterfaceState::Terminate()
{
    if (const DWORD delay = ReadServiceDword(L"TerminateDelay", 0))
        Sleep(delay);
    LONG count = m_count.load();
    while (count > 0 && !m_count.compare_exchange_weak(count, count - 1)) {
    }
    return count > 0 ? LNKA_OK : LNKA_E_NOT_INITIALIZED;
}

}  // namespace zcmod_standin
