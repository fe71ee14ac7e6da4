// The stand-in connectivity service through the loaders, serving the calls the library makes: the device list
// and its notifications from the controller in another process, copies with progress and cancel, the contacts
// with the searches that the contact search sends and the reads of the recipient picker.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ServiceTestSupport.h"

using namespace zcmod_test;
using namespace zcmod::service;

namespace {

using Events = std::vector<std::pair<DWORD, std::wstring>>;

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

}  // namespace

TEST_F(Service, DeviceListAndItsNotificationsFromTheController)
{
    const std::wstring anna = phones.New(L"anna", L"--name \"Anna's phone\" --model Z200 --media bluetooth");
    const std::wstring ben = phones.New(L"ben", L"--detached --manufacturer Orbix");
    ASSERT_FALSE(anna.empty() || ben.empty());
    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    HLNKADM dm = nullptr;
    ASSERT_EQ(LNKAOpenDM(&dm), S_OK);

    // The records as the device selection and the contact search read them; a detached phone isn't listed.
    DWORD count = 0;
    ASSERT_EQ(LNKAGetDeviceCount(dm, &count), S_OK);
    EXPECT_EQ(count, 1u);
    LNKA_DEVICE devices[2] = {};
    count = 2;
    ASSERT_EQ(LNKAGetDevices(dm, &count, devices), S_OK);
    ASSERT_EQ(count, 1u);
    EXPECT_STREQ(devices[0].pstrSerialNumber, anna.c_str());
    EXPECT_STREQ(devices[0].pstrFriendlyName, L"Anna's phone");
    EXPECT_STREQ(devices[0].pstrModel, L"Z200");
    ASSERT_EQ(devices[0].dwNumberOfItems, 1u);
    EXPECT_EQ(devices[0].pItems[0].dwMedia, static_cast<DWORD>(LNKA_MEDIA_BLUETOOTH));
    EXPECT_EQ(LNKAFreeDeviceStructure(count, devices), S_OK);

    // The controller's changes reach a registered interface and a registered callback alike.
    DeviceRecorder viaInterface, viaCallback;
    g_callbackRecorder = &viaCallback;
    ASSERT_EQ(LNKARegisterDMNotifyIF(dm, API_REGISTER, &viaInterface), S_OK);
    ASSERT_EQ(LNKARegisterNotifyCallback(dm, API_REGISTER, RecordingCallback), S_OK);
    const wchar_t* steps[] = {L"attach ben", L"rename anna \"Anna 2\"", L"detach anna"};
    for (size_t i = 0; i < std::size(steps); ++i) {
        ASSERT_EQ(phones.Ctl(steps[i]).exitCode, 0u) << steps[i];
        viaInterface.WaitFor(i + 1);
    }
    ASSERT_EQ(phones.Ctl(L"remove " + ben).exitCode, 0u);
    const Events expected = {
        {DEVICE_ADDED, ben}, {DEVICE_UPDATED, anna}, {DEVICE_REMOVED, anna}, {DEVICE_REMOVED, ben}};
    EXPECT_EQ(viaInterface.WaitFor(4), expected);
    EXPECT_EQ(viaCallback.WaitFor(4), expected);

    // Unregistered listeners hear nothing more.
    ASSERT_EQ(LNKARegisterDMNotifyIF(dm, API_UNREGISTER, &viaInterface), S_OK);
    ASSERT_EQ(LNKARegisterNotifyCallback(dm, API_UNREGISTER, RecordingCallback), S_OK);
    ASSERT_EQ(phones.Ctl(L"attach anna").exitCode, 0u);
    Sleep(300);
    EXPECT_EQ(viaInterface.WaitFor(0).size(), 4u);
    EXPECT_EQ(viaCallback.WaitFor(0).size(), 4u);
    EXPECT_EQ(LNKACloseDM(dm), S_OK);
}

// The second application of the test below, run by it as a process of its own: it loads the service, says
// that it listens, and prints the device notifications it hears, until it has heard `count` of them or ten
// seconds have passed. Skipped unless run so.
TEST(ServiceSecondApplication, DISABLED_PrintsWhatItHears)
{
    wchar_t count[16] = {};
    if (!GetEnvironmentVariableW(L"ZCMOD_TEST_SECOND_APPLICATION", count, 16))
        GTEST_SKIP() << "run by Service.TwoApplicationsHearTheSameNotifications";
    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    HLNKADM dm = nullptr;
    ASSERT_EQ(LNKAOpenDM(&dm), S_OK);
    DeviceRecorder recorder;
    ASSERT_EQ(LNKARegisterDMNotifyIF(dm, API_REGISTER, &recorder), S_OK);
    HANDLE ready = OpenEventW(EVENT_MODIFY_STATE, FALSE, L"zcmod-test-second-application");
    ASSERT_TRUE(ready);
    SetEvent(ready);
    CloseHandle(ready);
    WaitUntil([&] { return recorder.WaitFor(0).size() >= static_cast<size_t>(_wtoi(count)); }, 10000);
    for (const auto& e : recorder.WaitFor(0))
        printf("heard %lu %ls\n", static_cast<unsigned long>(e.first), e.second.c_str());
    fflush(stdout);
    LNKARegisterDMNotifyIF(dm, API_UNREGISTER, &recorder);
    LNKACloseDM(dm);
    TerminateAllInterfaces();
}

TEST_F(Service, TwoApplicationsHearTheSameNotifications)
{
    // Two processes load the library's loaders and the service; the controller's changes reach both.
    const std::wstring anna = phones.New(L"anna", L"--detached");
    ASSERT_FALSE(anna.empty());
    HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, L"zcmod-test-second-application");
    ASSERT_TRUE(ready);
    SetEnvironmentVariableW(L"ZCMOD_TEST_SECOND_APPLICATION", L"2");
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    ProcessResult second;
    std::thread other([&] {
        second = RunProcess(self,
                            L"--gtest_filter=ServiceSecondApplication.DISABLED_PrintsWhatItHears "
                            L"--gtest_also_run_disabled_tests",
                            BinDir());
    });
    const bool listening = WaitForSingleObject(ready, 20000) == WAIT_OBJECT_0;
    SetEnvironmentVariableW(L"ZCMOD_TEST_SECOND_APPLICATION", nullptr);
    CloseHandle(ready);

    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    HLNKADM dm = nullptr;
    ASSERT_EQ(LNKAOpenDM(&dm), S_OK);
    DeviceRecorder recorder;
    ASSERT_EQ(LNKARegisterDMNotifyIF(dm, API_REGISTER, &recorder), S_OK);
    if (listening) {
        ASSERT_EQ(phones.Ctl(L"attach anna").exitCode, 0u);
        ASSERT_EQ(phones.Ctl(L"detach anna").exitCode, 0u);
    }
    const Events expected = {{DEVICE_ADDED, anna}, {DEVICE_REMOVED, anna}};
    const Events heard = recorder.WaitFor(2);
    other.join();
    ASSERT_TRUE(listening) << "the second application did not start listening: " << second.output;
    EXPECT_EQ(heard, expected);
    const std::string lines = "heard " + std::to_string(DEVICE_ADDED) + " " + std::string(anna.begin(), anna.end()) +
                              "\nheard " + std::to_string(DEVICE_REMOVED) + " " +
                              std::string(anna.begin(), anna.end()) + "\n";
    second.output.erase(std::remove(second.output.begin(), second.output.end(), '\r'), second.output.end());
    EXPECT_NE(second.output.find(lines), std::string::npos) << second.output;
    EXPECT_EQ(second.exitCode, 0u);
    LNKARegisterDMNotifyIF(dm, API_UNREGISTER, &recorder);
    EXPECT_EQ(LNKACloseDM(dm), S_OK);
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
        if (reports.size() == 1 && state == LNKA_PROGRESS_RUNNING) {
            if (act == Act::Refuse)
                return LNKA_E_CANCELLED;
            if (act == Act::Cancel)
                LNKACancel(fs);
            if (act == Act::Detach)
                phones->Ctl(L"detach files");
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DeviceNotify(DWORD status, const wchar_t*) override
    {
        removed += status == DEVICE_REMOVED;
        return S_OK;
    }
};

}  // namespace

TEST_F(Service, CopiesWithProgressAndCancel)
{
    const std::wstring serial = phones.New(L"files", L"--files 8");
    ASSERT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    HLNKAFS fs = nullptr;
    DWORD media = LNKA_MEDIA_USB, id = 0;
    ASSERT_EQ(LNKAOpenFS(serial.c_str(), &media, &fs, &id), S_OK);
    const std::wstring drive = phones.Folder(L"files") + L"\\files\\";
    const std::vector<uint8_t> picture = ReadBytes(drive + L"C\\Pictures\\IMG_0001.jpg");
    ASSERT_FALSE(picture.empty());
    ScratchFolder scratch;
    std::wstring pc = scratch.File(L"");
    pc.pop_back();

    // Down and up, with progress.
    ProgressRecorder progress;
    progress.fs = fs;
    progress.phones = &phones;
    ASSERT_EQ(LNKARegisterFSNotifyIF(fs, API_REGISTER, &progress), S_OK);
    ASSERT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"IMG_0001.jpg", L"\\C:\\Pictures", pc.c_str()), S_OK);
    EXPECT_EQ(ReadBytes(scratch.File(L"IMG_0001.jpg")), picture);
    ASSERT_GE(progress.reports.size(), 2u);
    EXPECT_TRUE(std::is_sorted(progress.reports.begin(), progress.reports.end()));
    EXPECT_EQ(progress.reports.back(), std::make_pair(static_cast<DWORD>(LNKA_PROGRESS_RUNNING), 100ul));
    EXPECT_EQ(progress.lastBytes, picture.size());
    ASSERT_EQ(LNKACopyFile(fs, LNKA_COPY_TO_DEVICE, L"IMG_0001.jpg", pc.c_str(), L"\\E:"), S_OK);
    EXPECT_EQ(ReadBytes(drive + L"E\\IMG_0001.jpg"), picture);
    EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"none.jpg", L"\\C:", pc.c_str()), LNKA_E_FILE_NOT_FOUND);

    // Stopped transfers leave the target as it was. A file of 50 blocks, so that a stop has blocks to stop.
    WriteBytes(drive + L"C\\Pictures\\big.bin", std::vector<uint8_t>(200000, 'b'));
    const std::vector<uint8_t> old = {'o', 'l', 'd'};
    for (auto act : {ProgressRecorder::Act::Cancel, ProgressRecorder::Act::Refuse}) {
        scratch.Write(L"big.bin", old);
        progress.reports.clear();
        progress.act = act;
        EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"big.bin", L"\\C:\\Pictures", pc.c_str()), LNKA_E_CANCELLED);
        EXPECT_TRUE(ReadBytes(scratch.File(L"big.bin")) == old) << "the target is left as it was";
        EXPECT_EQ(GetFileAttributesW(scratch.File(L"big.bin.partial").c_str()), INVALID_FILE_ATTRIBUTES);
        EXPECT_LT(progress.reports.size(), 3u);
    }

    // The phone goes away during a copy; the file system's listener is told.
    progress.reports.clear();
    progress.act = ProgressRecorder::Act::Detach;
    EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"big.bin", L"\\C:\\Pictures", pc.c_str()),
              LNKA_E_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(progress.reports.back().first, static_cast<DWORD>(LNKA_PROGRESS_ABORTED));
    EXPECT_TRUE(ReadBytes(scratch.File(L"big.bin")) == old);
    EXPECT_TRUE(WaitUntil([&] { return progress.removed == 1; }));
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

using Names = std::set<std::wstring>;

// A search as the contact search sends it: one field in the personal (0), number (1) or address (2) slot, and
// the contacts it should find.
struct SearchCase {
    int slot;
    DWORD fieldClass, subType;
    const wchar_t* pattern;
    Names names;
};

Names Search(HCA ca, int slot, DWORD fieldClass, DWORD subType, const wchar_t* pattern)
{
    ContactField field = {sizeof(ContactField), 0, fieldClass, subType, const_cast<wchar_t*>(pattern)};
    ContactItem condition = {};
    condition.dwSize = sizeof(condition);
    (slot == 0 ? condition.bPersonalCount : slot == 1 ? condition.bNumberCount : condition.bAddressCount) = 1;
    (slot == 0 ? condition.pPersonal : slot == 1 ? condition.pNumbers : condition.pAddresses) = &field;
    Names names;
    HCAFIND find = nullptr;
    if (CAFindBegin(ca, 0, &condition, &find) != S_OK)
        return {L"(no search)"};
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

}  // namespace

TEST_F(Service, ContactsReadAndSearchedAsTheLibraryAsks)
{
    const std::wstring serial = phones.New(L"contacts");
    WriteBytes(phones.Folder(L"contacts") + L"\\contacts.vcf",
               std::vector<uint8_t>(std::begin(kContacts), std::end(kContacts) - 1));
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    ASSERT_EQ(VCAPI_Initialize(kVcapiVersion, 0), S_OK);
    HCA ca = nullptr;
    DWORD target = CA_TARGET_CONTACTS;
    ASSERT_EQ(DAOpenCA(serial.c_str(), &target, 1, &ca), S_OK);
    ASSERT_NE(ca, nullptr);

    const SearchCase searches[] = {
        // The pattern rules are the native search test's; here each slot, class and subtype reaches them.
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"ann%", {L"Lee Annabel"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, L"ann%", {L"Ann Lee"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NAME, L"ann%", {L"Annex Office"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"ó%", {L"Dara Ó Briain"}},
        {1, CA_FIELD_CLASS_NUMBER, CA_FIELD_SUBTYPE_ANY, L"+44 7700 900001", {L"Ann Lee"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_FIELD_SUBTYPE_ANY, L"ANN.LEE@example.com", {L"Ann Lee"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_WORK, L"mary@work.example", {L"Mary Ann Smith"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_HOME, L"mary@work.example", {}},
        {2, CA_FIELD_CLASS_ANY, CA_FIELD_SUBTYPE_ANY, L"+1 555 0100", {L"Annex Office"}},
    };
    for (const auto& s : searches)
        EXPECT_EQ(Search(ca, s.slot, s.fieldClass, s.subType, s.pattern), s.names) << s.pattern << " " << s.subType;

    // The recipient picker's reads: the folder, the ids, and each item as a vCard that the converter turns into
    // the contact that the structure read gives.
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
        ASSERT_EQ(ConvertFromVersit(&versit, CA_DATA_FORMAT_STRUCT, &converted), S_OK);
        EXPECT_EQ(NameOf(converted), NameOf(item));
        ASSERT_EQ(converted.bNumberCount + converted.bAddressCount, item.bNumberCount + item.bAddressCount);
        for (BYTE k = 0; k < item.bAddressCount; ++k)
            EXPECT_STREQ(converted.pAddresses[k].pstrValue, item.pAddresses[k].pstrValue);
        EXPECT_EQ(FreeConverterData(CA_DATA_FORMAT_STRUCT, &converted), S_OK);
        EXPECT_EQ(CAFreeItemData(ca, CA_DATA_FORMAT_VERSIT, &versit), S_OK);
        EXPECT_EQ(CAFreeItemData(ca, CA_DATA_FORMAT_STRUCT, &item), S_OK);
    }
    EXPECT_EQ(CAEndOperation(op), S_OK);
    CAFreeIdListStructure(ids);
    CAFreeFolderInfoStructure(folder);

    // The phone goes away during a search: the search ends with an error.
    ContactField field = {sizeof(ContactField), 0, CA_FIELD_CLASS_ANY, 0, const_cast<wchar_t*>(L"%")};
    ContactItem condition = {}, item = {};
    condition.dwSize = item.dwSize = sizeof(ContactItem);
    condition.bAddressCount = 1;
    condition.pAddresses = &field;
    HCAFIND find = nullptr;
    ASSERT_EQ(CAFindBegin(ca, 0, &condition, &find), S_OK);
    ASSERT_EQ(phones.Ctl(L"detach contacts").exitCode, 0u);
    Sleep(60);
    EXPECT_EQ(CAFindNext(find, CA_DATA_FORMAT_STRUCT, &item), LNKA_E_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(CAFindEnd(find), S_OK);
    EXPECT_EQ(DACloseCA(ca), S_OK);
}

// A contact file of non-Latin and right-to-left names, loaded by the controller card by card through the
// converter; an empty card is refused. A slow phone takes its delay in each search.
TEST_F(Service, ContactsFromAFileAndASlowPhone)
{
    const std::wstring serial = phones.New(L"loaded");
    const std::wstring file = DataFile("../../standins/samples/contacts.vcf");
    const ProcessResult loaded = phones.Ctl(L"contacts loaded \"" + file + L"\"");
    ASSERT_EQ(loaded.exitCode, 0u) << loaded.output;
    EXPECT_NE(loaded.output.find("9 contacts loaded, 1 refused, 9 on the phone"), std::string::npos) << loaded.output;
    ASSERT_EQ(phones.Ctl(L"slow loaded 150").exitCode, 0u);

    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    HCA ca = nullptr;
    DWORD target = CA_TARGET_CONTACTS;
    ASSERT_EQ(DAOpenCA(serial.c_str(), &target, 1, &ca), S_OK);
    const SearchCase searches[] = {
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, L"דנ%", {L"דנה לוי"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"حد%", {L"ليلى حداد"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, L"аНН%", {L"Анна Иванова"}},  // case in Cyrillic
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"王", {L"芳 王"}},
    };
    for (const auto& s : searches) {
        const DWORD start = GetTickCount();
        EXPECT_EQ(Search(ca, s.slot, s.fieldClass, s.subType, s.pattern), s.names) << s.subType;
        EXPECT_GE(GetTickCount() - start, 140u) << "the slow phone answered at once";
    }
    EXPECT_EQ(DACloseCA(ca), S_OK);
}
