// The stand-in connectivity service through the loaders, as the library will use it: the device list and its
// notifications, the phone's file system with copies, progress and cancel, the contacts with the searches
// that the contact search sends, versit conversion, and the controller that drives it from another process.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "ServiceTestSupport.h"

using namespace zcmod_test;
using namespace zcmod::service;

namespace {

using Event = std::pair<DWORD, std::wstring>;
using Events = std::vector<Event>;

class DeviceRecorder : public IDMAPIDeviceNotify {
public:
    HRESULT STDMETHODCALLTYPE DeviceNotify(DWORD status, const wchar_t* serial) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_events.emplace_back(status, serial ? serial : L"(null)");
        return S_OK;
    }
    Events WaitFor(size_t count)
    {
        WaitUntil([&] {
            std::lock_guard<std::mutex> lock(m_mutex);
            return m_events.size() >= count;
        });
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_events;
    }

private:
    std::mutex m_mutex;
    Events m_events;
};

DeviceRecorder* g_callbackRecorder = nullptr;
HRESULT CALLBACK RecordingCallback(DWORD status, const wchar_t* serial)
{
    return g_callbackRecorder->DeviceNotify(status, serial);
}

class Service : public ::testing::Test {
protected:
    void SetUp() override { registry.UseStandIns(); }
    void TearDown() override { TerminateAllInterfaces(); }
    ServiceRegistry registry;
    Phones phones;
};

size_t WatcherCount(const Phones& phones)
{
    size_t count = 0;
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((phones.Path() + L"\\.watchers\\*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE)
        return 0;
    do
        count += !(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
    while (FindNextFileW(find, &data));
    FindClose(find);
    return count;
}

}  // namespace

TEST_F(Service, DeviceListAndItsNotificationsFromTheController)
{
    const std::wstring anna = phones.New(L"anna", L"--name \"Anna's phone\" --model Z200 --media bluetooth");
    const std::wstring ben = phones.New(L"ben", L"--detached --manufacturer Orbix");
    ASSERT_FALSE(anna.empty());
    ASSERT_FALSE(ben.empty());
    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    HLNKADM dm = nullptr;
    ASSERT_EQ(LNKAOpenDM(&dm), S_OK);

    DWORD count = 0;
    ASSERT_EQ(LNKAGetDeviceCount(dm, &count), S_OK);
    EXPECT_EQ(count, 1u) << "a detached phone is not listed";
    count = 0;
    EXPECT_EQ(LNKAGetDevices(dm, &count, nullptr), LNKA_E_BUFFER_TOO_SMALL);
    EXPECT_EQ(count, 1u);
    LNKA_DEVICE devices[2] = {};
    count = 2;
    ASSERT_EQ(LNKAGetDevices(dm, &count, devices), S_OK);
    ASSERT_EQ(count, 1u);
    EXPECT_STREQ(devices[0].pstrSerialNumber, anna.c_str());
    EXPECT_STREQ(devices[0].pstrFriendlyName, L"Anna's phone");
    EXPECT_STREQ(devices[0].pstrModel, L"Z200");
    EXPECT_STREQ(devices[0].pstrManufacturer, L"Zelvo");
    ASSERT_EQ(devices[0].dwNumberOfItems, 1u);
    EXPECT_EQ(devices[0].pItems[0].dwMedia, static_cast<DWORD>(LNKA_MEDIA_BLUETOOTH));
    EXPECT_STREQ(devices[0].pItems[0].pstrDeviceName, L"BLUETOOTH");
    EXPECT_NE(devices[0].pItems[0].dwDeviceID, 0u);
    EXPECT_EQ(LNKAFreeDeviceStructure(count, devices), S_OK);
    EXPECT_EQ(devices[0].pstrSerialNumber, nullptr);
    EXPECT_EQ(devices[0].pItems, nullptr);
    EXPECT_EQ(LNKAGetDevice(dm, ben.c_str(), devices), LNKA_E_DEVICE_NOT_CONNECTED);

    DeviceRecorder viaInterface, viaCallback;
    g_callbackRecorder = &viaCallback;
    ASSERT_EQ(LNKARegisterDMNotifyIF(dm, API_REGISTER, &viaInterface), S_OK);
    ASSERT_EQ(LNKARegisterNotifyCallback(dm, API_REGISTER, RecordingCallback), S_OK);
    EXPECT_EQ(WatcherCount(phones), 1u);

    ASSERT_EQ(phones.Ctl(L"attach ben").exitCode, 0u);
    viaInterface.WaitFor(1);
    ASSERT_EQ(phones.Ctl(L"rename anna \"Anna 2\"").exitCode, 0u);
    viaInterface.WaitFor(2);
    ASSERT_EQ(LNKARenameFriendlyName(dm, ben.c_str(), L"Ben's"), S_OK);
    viaInterface.WaitFor(3);
    ASSERT_EQ(LNKARefreshDeviceList(dm, 0), S_OK);
    viaInterface.WaitFor(4);
    ASSERT_EQ(phones.Ctl(L"detach anna").exitCode, 0u);
    viaInterface.WaitFor(5);
    ASSERT_EQ(phones.Ctl(L"remove " + ben).exitCode, 0u);
    const Events expected = {{DEVICE_ADDED, ben},        {DEVICE_UPDATED, anna}, {DEVICE_UPDATED, ben},
                             {DEVICE_LIST_UPDATED, L""}, {DEVICE_REMOVED, anna}, {DEVICE_REMOVED, ben}};
    EXPECT_EQ(viaInterface.WaitFor(6), expected);
    EXPECT_EQ(viaCallback.WaitFor(6), expected);
    EXPECT_NE(phones.Ctl(L"list").output.find("Anna 2"), std::string::npos);

    // Unregistered listeners hear nothing more; a second removal is refused.
    ASSERT_EQ(LNKARegisterDMNotifyIF(dm, API_UNREGISTER, &viaInterface), S_OK);
    ASSERT_EQ(LNKARegisterNotifyCallback(dm, API_UNREGISTER, RecordingCallback), S_OK);
    EXPECT_EQ(LNKARegisterNotifyCallback(dm, API_UNREGISTER, RecordingCallback), LNKA_E_INVALID_PARAMETER);
    ASSERT_EQ(phones.Ctl(L"attach anna").exitCode, 0u);
    Sleep(300);
    EXPECT_EQ(viaInterface.WaitFor(0).size(), 6u);
    EXPECT_EQ(LNKACloseDM(dm), S_OK);
    EXPECT_EQ(LNKACloseDM(dm), LNKA_E_INVALID_HANDLE);
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_EQ(WatcherCount(phones), 0u) << "the watcher is gone with the last Terminate";
}

namespace {

// Records the progress of a transfer and acts at its first report.
class ProgressRecorder : public IFSAPINotify {
public:
    enum class Act { None, Cancel, Refuse, Detach };
    Act act = Act::None;
    HLNKAFS fs = nullptr;
    const Phones* phones = nullptr;
    std::vector<std::pair<DWORD, DWORD>> reports;  // state, percent
    DWORD64 lastBytes = 0;
    std::atomic<int> removed{0};

    HRESULT STDMETHODCALLTYPE FileProgress(DWORD state, DWORD percent, DWORD64 bytes) override
    {
        reports.emplace_back(state, percent);
        lastBytes = bytes;
        if (reports.size() > 1 || state != LNKA_PROGRESS_RUNNING)
            return S_OK;
        switch (act) {
            case Act::Cancel:
                LNKACancel(fs);
                break;
            case Act::Refuse:
                return LNKA_E_CANCELLED;
            case Act::Detach:
                phones->Ctl(L"detach files");
                break;
            case Act::None:
                break;
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DeviceNotify(DWORD status, const wchar_t*) override
    {
        removed += status == DEVICE_REMOVED;
        return S_OK;
    }
};

std::vector<std::wstring> List(HLNKAFS fs, const wchar_t* folder, bool folders, HRESULT* result = nullptr)
{
    std::vector<std::wstring> names;
    HLNKAFIND find = nullptr;
    const HRESULT begun = LNKAFindBegin(fs, folder, 0, &find);
    if (result)
        *result = begun;
    if (begun != S_OK)
        return names;
    LNKA_FILE_INFO* info = nullptr;
    while ((folders ? LNKAFindNextFolder(find, &info) : LNKAFindNextFile(find, &info)) == S_OK) {
        names.push_back(info->pstrName);
        LNKAFreeFileInfoStructure(info);
    }
    LNKAFindEnd(find);
    return names;
}

}  // namespace

TEST_F(Service, FileSystemFoldersCopiesProgressAndCancel)
{
    const std::wstring serial = phones.New(L"files", L"--files 8");
    ASSERT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    HLNKAFS fs = nullptr;
    DWORD media = LNKA_MEDIA_BLUETOOTH, id = 0;
    EXPECT_EQ(LNKAOpenFS(serial.c_str(), &media, &fs, &id), LNKA_E_MEDIA_NOT_AVAILABLE);
    media = LNKA_MEDIA_USB;
    ASSERT_EQ(LNKAOpenFS(serial.c_str(), &media, &fs, &id), S_OK);
    EXPECT_NE(id, 0u);
    EXPECT_EQ(LNKAOpenFS(L"000", &media, &fs, &id), LNKA_E_DEVICE_NOT_CONNECTED);

    EXPECT_EQ(List(fs, L"\\", true), (std::vector<std::wstring>{L"C:", L"E:"}));
    EXPECT_EQ(List(fs, L"\\C:\\Pictures", false), (std::vector<std::wstring>{L"IMG_0001.jpg", L"IMG_0002.jpg"}));
    EXPECT_EQ(List(fs, L"C:/Sounds", false).size(), 2u);
    const struct {
        const wchar_t* path;
        HRESULT result;
    } paths[] = {{L"\\..", LNKA_E_INVALID_NAME},
                 {L"\\C:\\..\\..", LNKA_E_INVALID_NAME},
                 {L"\\C:\\Pictures\\..", LNKA_E_INVALID_NAME},
                 {L"\\C:\\a:b", LNKA_E_INVALID_NAME},
                 {L"\\C:\\D:", LNKA_E_INVALID_NAME},
                 {L"\\nowhere", LNKA_E_FOLDER_NOT_FOUND}};
    for (const auto& p : paths) {
        HRESULT result = S_OK;
        List(fs, p.path, true, &result);
        EXPECT_EQ(result, p.result) << p.path;
    }

    // Folders and files.
    EXPECT_EQ(LNKACreateFolder(fs, L"\\C:", L"Trips"), S_OK);
    EXPECT_EQ(LNKACreateFolder(fs, L"\\C:", L"Trips"), LNKA_E_ALREADY_EXISTS);
    EXPECT_EQ(LNKACreateFolder(fs, L"\\C:", L"a\\b"), LNKA_E_INVALID_NAME);
    EXPECT_EQ(LNKARenameFolder(fs, L"\\C:", L"Trips", L"Travel"), S_OK);
    LNKA_FOLDER_INFO* folder = nullptr;
    ASSERT_EQ(LNKAGetFolderInfo(fs, L"\\C:", L"Pictures", 0, &folder, 0), S_OK);
    EXPECT_STREQ(folder->pstrPath, L"\\C:\\Pictures");
    EXPECT_EQ(folder->dwFiles, 2u);
    LNKAFreeFolderInfoStructure(folder);
    LNKA_FILE_INFO* file = nullptr;
    ASSERT_EQ(LNKAGetFileInfo(fs, L"\\C:\\Pictures", L"IMG_0001.jpg", &file), S_OK);
    const std::string picture = ReadWholeFile(phones.Folder(L"files") + L"\\files\\C\\Pictures\\IMG_0001.jpg");
    EXPECT_EQ(file->qwFileSize, picture.size());
    LNKAFreeFileInfoStructure(file);

    // Down and up, with progress.
    TempFolder pc(L"pc");
    ProgressRecorder progress;
    progress.fs = fs;
    progress.phones = &phones;
    ASSERT_EQ(LNKARegisterFSNotifyIF(fs, API_REGISTER, &progress), S_OK);
    ASSERT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"IMG_0001.jpg", L"\\C:\\Pictures", pc.Path().c_str()), S_OK);
    EXPECT_EQ(ReadWholeFile(pc.Path() + L"\\IMG_0001.jpg"), picture);
    ASSERT_GE(progress.reports.size(), 2u);
    EXPECT_TRUE(std::is_sorted(progress.reports.begin(), progress.reports.end()));
    EXPECT_EQ(progress.reports.back(), std::make_pair(static_cast<DWORD>(LNKA_PROGRESS_RUNNING), 100ul));
    EXPECT_EQ(progress.lastBytes, picture.size());
    ASSERT_EQ(LNKACopyFile(fs, LNKA_COPY_TO_DEVICE, L"IMG_0001.jpg", pc.Path().c_str(), L"\\C:\\Travel"), S_OK);
    EXPECT_EQ(ReadWholeFile(phones.Folder(L"files") + L"\\files\\C\\Travel\\IMG_0001.jpg"), picture);
    EXPECT_EQ(LNKACopyFile(fs, 0x13, L"IMG_0001.jpg", pc.Path().c_str(), L"\\C:"), LNKA_E_INVALID_PARAMETER);
    EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"none.jpg", L"\\C:", pc.Path().c_str()), LNKA_E_FILE_NOT_FOUND);
    EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"..\\x", L"\\C:", pc.Path().c_str()), LNKA_E_INVALID_NAME);

    // Stopped transfers leave the target as it was. A file of 50 blocks, so that a stop has blocks to stop.
    WriteWholeFile(phones.Folder(L"files") + L"\\files\\C\\Pictures\\big.bin", std::string(200000, 'b'));
    const std::wstring target = pc.Path() + L"\\big.bin";
    for (auto act : {ProgressRecorder::Act::Cancel, ProgressRecorder::Act::Refuse}) {
        WriteWholeFile(target, "old");
        progress.reports.clear();
        progress.act = act;
        EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"big.bin", L"\\C:\\Pictures", pc.Path().c_str()),
                  LNKA_E_CANCELLED);
        EXPECT_TRUE(ReadWholeFile(target) == "old") << "the target is left as it was";
        EXPECT_EQ(GetFileAttributesW((target + L".partial").c_str()), INVALID_FILE_ATTRIBUTES);
        EXPECT_LT(progress.reports.size(), 3u);
    }
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY);
    progress.act = ProgressRecorder::Act::None;
    EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"big.bin", L"\\C:\\Pictures", pc.Path().c_str()),
              LNKA_E_ACCESS_DENIED);
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL);

    // The phone goes away during a copy.
    progress.reports.clear();
    progress.act = ProgressRecorder::Act::Detach;
    EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"big.bin", L"\\C:\\Pictures", pc.Path().c_str()),
              LNKA_E_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(progress.reports.back().first, static_cast<DWORD>(LNKA_PROGRESS_ABORTED));
    EXPECT_TRUE(ReadWholeFile(target) == "old");
    EXPECT_EQ(LNKACreateFolder(fs, L"\\C:", L"More"), LNKA_E_DEVICE_NOT_CONNECTED);
    EXPECT_TRUE(WaitUntil([&] { return progress.removed == 1; })) << "the watcher tells the file system's listener";
    EXPECT_EQ(LNKARegisterFSNotifyIF(fs, API_UNREGISTER, &progress), S_OK);
    EXPECT_EQ(LNKACloseFS(fs), S_OK);
}

namespace {

const char kContacts[] =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\nTEL;TYPE=CELL:+44 7700 900001\r\n"
    "EMAIL;TYPE=INTERNET,HOME:ann.lee@example.com\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Annabel;Lee\r\nTEL;HOME:+44 20 7946 0002\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Smith;Mary Ann;;;\r\nEMAIL;TYPE=INTERNET,WORK:mary@work.example\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nN:;;;;\r\nFN:Annex Office\r\nTEL;TYPE=WORK:+1 555 0100\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:2.1\r\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=C3=93 Briain;Dara\r\n"
    "EMAIL;INTERNET:dara@example.ie\r\nEND:VCARD\r\n";

// A contact's name as "first last", or its single name.
std::wstring NameOf(const ContactItem& item)
{
    std::wstring first, last, single;
    for (BYTE i = 0; i < item.bPersonalCount; ++i) {
        const ContactField& f = item.pPersonal[i];
        (f.dwFieldSubType == CA_PERSONAL_FIRST_NAME  ? first
         : f.dwFieldSubType == CA_PERSONAL_LAST_NAME ? last
                                                     : single) = f.pstrValue ? f.pstrValue : L"";
    }
    return first.empty() && last.empty() ? single : first + L" " + last;
}

std::set<std::wstring> Search(HCA ca, int slot, DWORD fieldClass, DWORD subType, const wchar_t* pattern,
                              HRESULT* result = nullptr)
{
    ContactField field = {sizeof(ContactField), 0, fieldClass, subType, const_cast<wchar_t*>(pattern)};
    ContactItem condition = {};
    condition.dwSize = sizeof(condition);
    (slot == 0 ? condition.bPersonalCount : slot == 1 ? condition.bNumberCount : condition.bAddressCount) = 1;
    (slot == 0 ? condition.pPersonal : slot == 1 ? condition.pNumbers : condition.pAddresses) = &field;
    std::set<std::wstring> names;
    HCAFIND find = nullptr;
    const HRESULT begun = CAFindBegin(ca, 0, &condition, &find);
    if (result)
        *result = begun;
    if (begun != S_OK)
        return names;
    ContactItem item = {};
    item.dwSize = sizeof(item);
    while (CAFindNext(find, CA_DATA_FORMAT_STRUCT, &item) == S_OK) {
        names.insert(NameOf(item));
        EXPECT_EQ(CAFreeItemData(ca, CA_DATA_FORMAT_STRUCT, &item), S_OK);
        EXPECT_EQ(item.pPersonal, nullptr);
    }
    EXPECT_EQ(CAFindEnd(find), S_OK);
    return names;
}

using Names = std::set<std::wstring>;

}  // namespace

TEST_F(Service, ContactsReadAndSearchedAsTheContactSearchAsks)
{
    const std::wstring serial = phones.New(L"contacts");
    WriteWholeFile(phones.Folder(L"contacts") + L"\\contacts.vcf", kContacts);
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    ASSERT_EQ(VCAPI_Initialize(kVcapiVersion, 0), S_OK);
    HCA ca = nullptr;
    DWORD target = 2;
    EXPECT_EQ(DAOpenCA(serial.c_str(), &target, 1, &ca), LNKA_E_NOT_SUPPORTED);
    target = CA_TARGET_CONTACTS;
    EXPECT_EQ(DAOpenCA(L"unknown", &target, 1, &ca), LNKA_E_DEVICE_NOT_CONNECTED);
    ASSERT_EQ(DAOpenCA(serial.c_str(), &target, 1, &ca), S_OK);
    ASSERT_NE(ca, nullptr);

    const struct {
        int slot;
        DWORD fieldClass, subType;
        const wchar_t* pattern;
        Names names;
    } searches[] = {
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"ann%", {L"Lee Annabel"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, L"ann%", {L"Ann Lee"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NAME, L"ann%", {L"Annex Office"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, L"% ann%", {L"Mary Ann Smith"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"LEE%", {L"Ann Lee"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"ó%", {L"Dara Ó Briain"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"ann", {}},
        {1, CA_FIELD_CLASS_NUMBER, CA_FIELD_SUBTYPE_ANY, L"+44 7700 900001", {L"Ann Lee"}},
        {1, CA_FIELD_CLASS_NUMBER, CA_FIELD_SUBTYPE_ANY, L"+44", {}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_FIELD_SUBTYPE_ANY, L"ANN.LEE@example.com", {L"Ann Lee"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_WORK, L"mary@work.example", {L"Mary Ann Smith"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_HOME, L"mary@work.example", {}},
        {2, CA_FIELD_CLASS_ANY, CA_FIELD_SUBTYPE_ANY, L"+1 555 0100", {L"Annex Office"}},
    };
    for (const auto& s : searches)
        EXPECT_EQ(Search(ca, s.slot, s.fieldClass, s.subType, s.pattern), s.names) << s.pattern << " " << s.subType;
    HRESULT bad = S_OK;
    Search(ca, 0, CA_FIELD_CLASS_PERSONAL, 0, nullptr, &bad);
    EXPECT_EQ(bad, LNKA_E_INVALID_PARAMETER) << "a condition without a value";

    // The folder, the ids and the items, as structures and as vCards read back by the converter.
    CA_FOLDER_INFO* folder = nullptr;
    ASSERT_EQ(CAGetFolderInfo(ca, &folder), S_OK);
    EXPECT_EQ(folder->dwItemCount, 5u);
    CA_ID_LIST* ids = nullptr;
    ASSERT_EQ(CAGetIDList(ca, folder->dwFolderId, 0, &ids), S_OK);
    ASSERT_EQ(ids->dwCount, 5u);
    HCAOPERATION op = nullptr;
    ASSERT_EQ(CABeginOperation(ca, 0, &op), S_OK);
    for (DWORD i = 0; i < ids->dwCount; ++i) {
        ContactItem item = {}, converted = {};
        item.dwSize = converted.dwSize = sizeof(ContactItem);
        CA_DATA_VERSIT versit = {sizeof(versit), 0, nullptr};
        ASSERT_EQ(CAReadItem(op, ids->pdwIds[i], 0, CA_DATA_FORMAT_STRUCT, &item), S_OK);
        ASSERT_EQ(CAReadItem(op, ids->pdwIds[i], 0, CA_DATA_FORMAT_VERSIT, &versit), S_OK);
        DWORD format = 0;
        EXPECT_EQ(ValidateVersitData(&versit, &format), S_OK);
        ASSERT_EQ(ConvertFromVersit(&versit, CA_DATA_FORMAT_STRUCT, &converted), S_OK);
        EXPECT_EQ(NameOf(converted), NameOf(item));
        ASSERT_EQ(converted.bNumberCount + converted.bAddressCount, item.bNumberCount + item.bAddressCount);
        for (BYTE k = 0; k < item.bAddressCount; ++k)
            EXPECT_STREQ(converted.pAddresses[k].pstrValue, item.pAddresses[k].pstrValue);
        CA_DATA_VERSIT again = {sizeof(again), 0, nullptr};
        ASSERT_EQ(ConvertToVersit(CA_DATA_FORMAT_STRUCT, &item, &again), S_OK);
        EXPECT_EQ(std::string(reinterpret_cast<char*>(again.pbVersitObject), again.dwDataLength),
                  std::string(reinterpret_cast<char*>(versit.pbVersitObject), versit.dwDataLength));
        EXPECT_EQ(FreeVersitData(&again), S_OK);
        EXPECT_EQ(FreeConverterData(CA_DATA_FORMAT_STRUCT, &converted), S_OK);
        EXPECT_EQ(CAFreeItemData(ca, CA_DATA_FORMAT_VERSIT, &versit), S_OK);
        EXPECT_EQ(CAFreeItemData(ca, CA_DATA_FORMAT_STRUCT, &item), S_OK);
    }
    ContactItem none = {};
    none.dwSize = sizeof(none);
    EXPECT_EQ(CAReadItem(op, 6, 0, CA_DATA_FORMAT_STRUCT, &none), CA_E_ITEM_NOT_FOUND);
    CA_DATA_VERSIT empty = {sizeof(empty), 4, reinterpret_cast<BYTE*>(const_cast<char*>("junk"))};
    EXPECT_EQ(ValidateVersitData(&empty, nullptr), CA_E_ITEM_NOT_FOUND);
    EXPECT_EQ(CAEndOperation(op), S_OK);
    CAFreeIdListStructure(ids);
    CAFreeFolderInfoStructure(folder);

    // The phone goes away during a search: the search ends with an error.
    ContactField field = {sizeof(ContactField), 0, CA_FIELD_CLASS_ANY, 0, const_cast<wchar_t*>(L"%")};
    ContactItem condition = {};
    condition.dwSize = sizeof(condition);
    condition.bAddressCount = 1;
    condition.pAddresses = &field;
    HCAFIND find = nullptr;
    ASSERT_EQ(CAFindBegin(ca, 0, &condition, &find), S_OK);
    ASSERT_EQ(phones.Ctl(L"detach contacts").exitCode, 0u);
    Sleep(60);
    ContactItem item = {};
    item.dwSize = sizeof(item);
    EXPECT_EQ(CAFindNext(find, CA_DATA_FORMAT_STRUCT, &item), LNKA_E_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(CAFindEnd(find), S_OK);
    EXPECT_EQ(DACloseCA(ca), S_OK);
}

TEST_F(Service, APhoneOfTenThousandContactsMadeByTheController)
{
    const std::wstring serial = phones.New(L"big", L"--contacts 10000 --seed 5 --version 3.0");
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    HCA ca = nullptr;
    DWORD target = CA_TARGET_CONTACTS;
    ASSERT_EQ(DAOpenCA(serial.c_str(), &target, 1, &ca), S_OK);
    CA_FOLDER_INFO* folder = nullptr;
    ASSERT_EQ(CAGetFolderInfo(ca, &folder), S_OK);
    EXPECT_EQ(folder->dwItemCount, 10000u);
    CAFreeFolderInfoStructure(folder);
    const Names found = Search(ca, 0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, L"ann%");
    EXPECT_GE(found.size(), 4u) << "Anna, Ann, Annabel, Anne Marie with several last names";
    for (const std::wstring& name : found)
        EXPECT_EQ(_wcsnicmp(name.c_str(), L"ann", 3), 0) << name;
}
