// phonectl: the controller of the stand-in connectivity service's virtual phones.
//
//   phonectl [--root DIR] list
//   phonectl [--root DIR] new <phone> [--contacts N] [--files N] [--seed N] [--serial S] [--name TEXT]
//                             [--model TEXT] [--manufacturer TEXT] [--media usb|bluetooth|irda|serial]
//                             [--version 2.1|3.0] [--copydelay MS] [--finddelay MS] [--detached]
//                             [--unsupported]
//   phonectl [--root DIR] attach|plug|detach|unplug|remove <phone>
//   phonectl [--root DIR] contacts <phone> <file.vcf> [--append]
//                                         the phone's contacts from a vCard file, read card by card through
//                                         the versit converter (VersitConverter64.dll)
//   phonectl [--root DIR] caps <phone> <file>|-   the phone's capability text from a UTF-8 file; - for none,
//                                         which makes it a phone the suite doesn't know ("unsupported")
//   phonectl [--root DIR] slow <phone> <MS>       each contact search on the phone takes MS milliseconds
//   phonectl [--root DIR] rename <phone> <friendly name>
//   phonectl [--root DIR] signal          tell the running services to look at the phones again
//   phonectl stop | start                 signal the service's unload or load event
//
// <phone> is the phone's folder name or its serial. The phones root is --root, else the stand-in's registry
// value, else "phones" beside this program. Exit code 0 on success, 1 on failure, 2 for a usage error.
#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

#include "PhoneService.h"

using namespace zcmod_standin;

namespace {

constexpr wchar_t kUnloadEvent[] = L"Global\\9D14093C-8B2C-49aa-A328-35C1BDB2BC15";
constexpr wchar_t kLoadEvent[] = L"Global\\8427ACED-9495-4cb7-A13D-B98012DF6654";

int Usage()
{
    std::fwprintf(stderr,
                  L"usage: phonectl [--root DIR] list | new <phone> [options] | attach <phone> | detach <phone> |\n"
                  L"       remove <phone> | rename <phone> <name> | contacts <phone> <file> [--append] |\n"
                  L"       caps <phone> <file>|- | slow <phone> <ms> | signal | stop | start\n");
    return 2;
}

int Fail(const wchar_t* what, const std::wstring& detail)
{
    std::fwprintf(stderr, L"phonectl: %ls%ls\n", what, detail.c_str());
    return 1;
}

bool FindByIdOrSerial(const std::wstring& root, const std::wstring& key, PhoneInfo& phone)
{
    for (PhoneInfo& candidate : ListPhones(root))
        if (_wcsicmp(candidate.id.c_str(), key.c_str()) == 0 || candidate.serial == key) {
            phone = std::move(candidate);
            return true;
        }
    return false;
}

int SignalGlobal(const wchar_t* name)
{
    HANDLE event = OpenEventW(EVENT_MODIFY_STATE, FALSE, name);
    if (!event)
        event = CreateEventW(nullptr, TRUE, FALSE, name);
    if (!event || !SetEvent(event))
        return Fail(L"cannot signal ", name);
    CloseHandle(event);
    return 0;
}

bool WriteBytes(const std::wstring& path, const std::string& bytes)
{
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const bool ok =
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) && written == bytes.size();
    CloseHandle(file);
    return ok;
}

// A small file tree: pictures, sounds and documents on the phone's memory (C) and music on its card (E).
bool MakeFiles(const std::wstring& folder, unsigned count, uint32_t seed)
{
    static const struct {
        const wchar_t* folder;
        const wchar_t* pattern;
    } kKinds[] = {{L"C\\Pictures", L"IMG_%04u.jpg"},
                  {L"C\\Sounds", L"Ringtone %u.mid"},
                  {L"C\\Documents", L"Note %u.txt"},
                  {L"E\\Music", L"Track %02u.mp3"}};
    const std::wstring files = folder + L"\\files";
    CreateDirectoryW(files.c_str(), nullptr);
    CreateDirectoryW((files + L"\\C").c_str(), nullptr);
    CreateDirectoryW((files + L"\\E").c_str(), nullptr);
    for (const auto& kind : kKinds)
        CreateDirectoryW((files + L"\\" + kind.folder).c_str(), nullptr);
    uint32_t state = seed ? seed : 1;
    for (unsigned i = 0; i < count; ++i) {
        const auto& kind = kKinds[i % 4];
        wchar_t name[64];
        std::swprintf(name, 64, kind.pattern, i / 4 + 1);
        state = state * 1664525u + 1013904223u;
        std::string bytes(1024 + state % (63 * 1024), '\0');
        for (char& b : bytes) {
            state = state * 1664525u + 1013904223u;
            b = static_cast<char>(state >> 24);
        }
        if (!WriteBytes(files + L"\\" + kind.folder + L"\\" + name, bytes))
            return false;
    }
    return true;
}

std::wstring SerialFor(const std::wstring& id)
{
    unsigned long long hash = 1469598103934665603ull;
    for (wchar_t c : id)
        hash = (hash ^ c) * 1099511628211ull;
    wchar_t serial[32];
    std::swprintf(serial, 32, L"35%013llu", hash % 10000000000000ull);
    return serial;
}

int New(const std::wstring& root, const std::vector<std::wstring>& args)
{
    if (args.empty() || !IsValidName(args[0].c_str()) || args[0][0] == L'.')
        return Usage();
    PhoneInfo phone;
    phone.id = args[0];
    phone.folder = root + L"\\" + phone.id;
    phone.serial = SerialFor(phone.id);
    phone.name = phone.id;
    phone.model = L"Z100";
    phone.manufacturer = L"Zelvo";
    phone.attached = true;
    bool unsupported = false;
    unsigned long contacts = 0, files = 0, seed = 1;
    VCardVersion version = VCardVersion::V21;
    for (size_t i = 1; i < args.size(); ++i) {
        const std::wstring& option = args[i];
        if (option == L"--detached" || option == L"--unsupported") {
            (option == L"--detached" ? phone.attached : unsupported) = option != L"--detached";
            continue;
        }
        if (i + 1 >= args.size())
            return Usage();
        const std::wstring& value = args[++i];
        if (option == L"--contacts")
            contacts = std::wcstoul(value.c_str(), nullptr, 10);
        else if (option == L"--files")
            files = std::wcstoul(value.c_str(), nullptr, 10);
        else if (option == L"--seed")
            seed = std::wcstoul(value.c_str(), nullptr, 10);
        else if (option == L"--serial")
            phone.serial = value;
        else if (option == L"--name")
            phone.name = value;
        else if (option == L"--model")
            phone.model = value;
        else if (option == L"--manufacturer")
            phone.manufacturer = value;
        else if (option == L"--copydelay")
            phone.copyDelay = std::wcstoul(value.c_str(), nullptr, 10);
        else if (option == L"--finddelay")
            phone.findDelay = std::wcstoul(value.c_str(), nullptr, 10);
        else if (option == L"--media" && MediaFromName(value))
            phone.media = MediaFromName(value);
        else if (option == L"--version" && (value == L"2.1" || value == L"3.0"))
            version = value == L"3.0" ? VCardVersion::V30 : VCardVersion::V21;
        else
            return Usage();
    }
    if (phone.serial.empty())
        return Usage();
    CreateDirectoryW(root.c_str(), nullptr);
    if (!CreateDirectoryW(phone.folder.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
        return Fail(L"cannot create ", phone.folder);
    std::string cards;
    for (const Contact& contact : GenerateContacts(contacts, seed))
        cards += WriteVCard(contact, version);
    if (!WriteBytes(phone.folder + L"\\contacts.vcf", cards) || !MakeFiles(phone.folder, files, seed) ||
        !WriteCapabilityText(phone, unsupported ? std::wstring() : DefaultCapabilityText(phone)) || !WritePhone(phone))
        return Fail(L"cannot write the phone in ", phone.folder);
    SignalDeviceChange(root);
    std::wprintf(L"%ls %ls\n", phone.id.c_str(), phone.serial.c_str());
    return 0;
}

std::string ReadBytes(const std::wstring& path)
{
    std::string bytes;
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return bytes;
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(file, &size) && size.QuadPart > 0 && size.QuadPart < (64LL << 20)) {
        bytes.resize(static_cast<size_t>(size.QuadPart));
        DWORD got = 0;
        if (!ReadFile(file, &bytes[0], static_cast<DWORD>(bytes.size()), &got, nullptr))
            got = 0;
        bytes.resize(got);
    }
    CloseHandle(file);
    return bytes;
}

// The versit converter the library would load: the configured one, else the stand-in beside this program.
HMODULE LoadConverter()
{
    wchar_t path[MAX_PATH] = {};
    DWORD size = sizeof(path) - sizeof(wchar_t);
    if (RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Desk Link Service\\API", L"VCAPI64", RRF_RT_REG_SZ, nullptr, path,
                     &size) == ERROR_SUCCESS && path[0])
        if (HMODULE module = LoadLibraryW(path))
            return module;
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    std::wstring folder(self);
    folder = folder.substr(0, folder.find_last_of(L'\\'));
    if (HMODULE module = LoadLibraryW((folder + L"\\standins\\service\\VersitConverter64.dll").c_str()))
        return module;
    return LoadLibraryW(L"VersitConverter64.dll");
}

// The cards of a vCard stream, each as its own text: from a BEGIN:VCARD line to the END:VCARD after it.
std::vector<std::string> SplitCards(const std::string& bytes)
{
    std::vector<std::string> cards;
    size_t start = std::string::npos, at = 0;
    while (at < bytes.size()) {
        size_t end = bytes.find('\n', at);
        if (end == std::string::npos)
            end = bytes.size();
        std::string line = bytes.substr(at, end - at);
        while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
            line.pop_back();
        for (char& c : line)
            c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
        if (line.rfind("\xEF\xBB\xBF", 0) == 0)
            line.erase(0, 3);
        if (line == "BEGIN:VCARD" && start == std::string::npos)
            start = at;
        else if (line == "END:VCARD" && start != std::string::npos) {
            cards.push_back(bytes.substr(start, end + 1 - start));
            start = std::string::npos;
        }
        at = end + 1;
    }
    return cards;
}

int LoadContacts(PhoneInfo& phone, const std::wstring& file, bool append)
{
    const std::string bytes = ReadBytes(file);
    if (bytes.empty())
        return Fail(L"cannot read ", file);
    HMODULE converter = LoadConverter();
    if (!converter)
        return Fail(L"no versit converter", L"");
    using Start = HRESULT(WINAPI*)(DWORD, DWORD);
    using End = HRESULT(WINAPI*)(DWORD);
    using FromVersit = HRESULT(WINAPI*)(const CA_DATA_VERSIT*, DWORD, void*);
    using FreeData = HRESULT(WINAPI*)(DWORD, void*);
    const auto start = reinterpret_cast<Start>(reinterpret_cast<void*>(GetProcAddress(converter, "VCAPI_Initialize")));
    const auto end = reinterpret_cast<End>(reinterpret_cast<void*>(GetProcAddress(converter, "VCAPI_Terminate")));
    const auto fromVersit = reinterpret_cast<FromVersit>(reinterpret_cast<void*>(GetProcAddress(converter, "ConvertFromVersit")));
    const auto freeData = reinterpret_cast<FreeData>(reinterpret_cast<void*>(GetProcAddress(converter, "FreeConverterData")));
    if (!fromVersit || !freeData) {
        FreeLibrary(converter);
        return Fail(L"the versit converter lacks its functions", L"");
    }
    if (start)
        start(VCAPI_VERSION_10, 0);
    std::vector<Contact> contacts = append ? ReadContacts(phone) : std::vector<Contact>();
    size_t loaded = 0, refused = 0;
    for (const std::string& card : SplitCards(bytes)) {
        CA_DATA_VERSIT versit = {sizeof(CA_DATA_VERSIT), static_cast<DWORD>(card.size()),
                                 reinterpret_cast<BYTE*>(const_cast<char*>(card.data()))};
        ContactItem item = {};
        item.dwSize = sizeof(ContactItem);
        Contact contact;
        if (fromVersit(&versit, CA_DATA_FORMAT_STRUCT, &item) == LNKA_OK) {
            if (ReadContactItem(&item, contact) && !contact.fields.empty()) {
                contacts.push_back(std::move(contact));
                ++loaded;
            } else {
                ++refused;
            }
            freeData(CA_DATA_FORMAT_STRUCT, &item);
        } else {
            ++refused;
        }
    }
    if (end)
        end(0);
    FreeLibrary(converter);
    if (!WriteContacts(phone, contacts, VCardVersion::V30))
        return Fail(L"cannot write the contacts of ", phone.folder);
    std::wprintf(L"%zu contacts loaded, %zu refused, %zu on the phone\n", loaded, refused, contacts.size());
    return 0;
}

int List(const std::wstring& root)
{
    for (const PhoneInfo& phone : ListPhones(root))
        std::wprintf(L"%ls\t%ls\t%ls\t%ls\t%ls\t%ls\t%ls\n", phone.id.c_str(), phone.serial.c_str(),
                     phone.attached ? L"attached" : L"detached", phone.name.c_str(), phone.model.c_str(),
                     phone.manufacturer.c_str(), MediaName(phone.media));
    return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    std::vector<std::wstring> args(argv + 1, argv + argc);
    std::wstring root;
    if (args.size() >= 2 && args[0] == L"--root") {
        root = args[1];
        args.erase(args.begin(), args.begin() + 2);
    }
    if (args.empty())
        return Usage();
    if (root.empty())
        root = PhonesRoot(reinterpret_cast<const void*>(&Usage));
    const std::wstring command = args[0];
    args.erase(args.begin());

    if (command == L"stop" || command == L"start")
        return args.empty() ? SignalGlobal(command == L"stop" ? kUnloadEvent : kLoadEvent) : Usage();
    if (command == L"list")
        return args.empty() ? List(root) : Usage();
    if (command == L"signal") {
        SignalDeviceChange(root);
        return 0;
    }
    if (command == L"new")
        return New(root, args);
    if (args.empty())
        return Usage();
    PhoneInfo phone;
    if (!FindByIdOrSerial(root, args[0], phone))
        return Fail(L"no such phone: ", args[0]);
    const bool plug = command == L"attach" || command == L"plug";
    const bool unplug = command == L"detach" || command == L"unplug";
    if ((plug || unplug || command == L"remove") && args.size() == 1) {
        if (command == L"remove") {
            if (!DeleteFolderTree(phone.folder))
                return Fail(L"cannot remove ", phone.folder);
        } else {
            phone.attached = plug;
            if (!WritePhone(phone))
                return Fail(L"cannot write ", phone.folder);
        }
    } else if (command == L"contacts" && (args.size() == 2 || (args.size() == 3 && args[2] == L"--append"))) {
        const int result = LoadContacts(phone, args[1], args.size() == 3);
        if (result != 0)
            return result;
    } else if (command == L"caps" && args.size() == 2) {
        std::wstring text;
        if (args[1] != L"-") {
            std::string bytes = ReadBytes(args[1]);
            if (bytes.empty())
                return Fail(L"cannot read ", args[1]);
            if (bytes.rfind("\xEF\xBB\xBF", 0) == 0)
                bytes.erase(0, 3);
            text = ToWide(Utf8ToUtf16Lossy(bytes));
        }
        if (!WriteCapabilityText(phone, text))
            return Fail(L"cannot write the capabilities of ", phone.folder);
    } else if (command == L"slow" && args.size() == 2) {
        phone.findDelay = std::wcstoul(args[1].c_str(), nullptr, 10);
        if (!WritePhone(phone))
            return Fail(L"cannot write ", phone.folder);
    } else if (command == L"rename" && args.size() == 2 && !args[1].empty()) {
        phone.name = args[1];
        if (!WritePhone(phone))
            return Fail(L"cannot write ", phone.folder);
    } else {
        return Usage();
    }
    SignalDeviceChange(root);
    return 0;
}
