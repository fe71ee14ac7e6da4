// The stand-in connectivity service through the loaders, serving the calls the library makes: the device list
// and its notifications from the controller in another process, a refused copy, the contacts with the searches
// that the contact search sends. (The recipient picker's reads are its own tests'.)
#include <gtest/gtest.h>

#include <algorithm>
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

// Starts device management and opens a session.
HLNKADM OpenDm()
{
    HLNKADM dm = nullptr;
    EXPECT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    EXPECT_EQ(LNKAOpenDM(&dm), S_OK);
    return dm;
}

class Service : public ::testing::Test {
protected:
    void SetUp() override { registry.UseStandIns(); }
    void TearDown() override { TerminateAllInterfaces(); }
    ServiceRegistry registry;
    Phones phones;
};

}  // namespace

// The second application of the test below, run by it as a process of its own: it loads the service, says
// that it listens, and prints the device notifications it hears, until it has heard four or ten seconds have
// passed. Skipped unless run so.
TEST(ServiceSecondApplication, DISABLED_PrintsWhatItHears)
{
    if (!GetEnvironmentVariableW(L"ZCMOD_TEST_SECOND_APPLICATION", nullptr, 0))
        GTEST_SKIP() << "run by Service.DeviceListAndItsNotificationsReachTwoApplications";
    HLNKADM dm = OpenDm();
    DeviceRecorder recorder;
    ASSERT_EQ(LNKARegisterDMNotifyIF(dm, API_REGISTER, &recorder), S_OK);
    SignalServiceEvent("zcmod-test-second-application");
    WaitUntil([&] { return recorder.WaitFor(0).size() >= 4; }, 10000);
    for (const auto& e : recorder.WaitFor(0))
        printf("heard %lu %ls\n", static_cast<unsigned long>(e.first), e.second.c_str());
    fflush(stdout);
    LNKARegisterDMNotifyIF(dm, API_UNREGISTER, &recorder);
    LNKACloseDM(dm);
    TerminateAllInterfaces();
}

TEST_F(Service, DeviceListAndItsNotificationsReachTwoApplications)
{
    const std::wstring anna = phones.New(L"anna");
    const std::wstring ben = phones.New(L"ben", L"--detached");
    ASSERT_FALSE(anna.empty() || ben.empty());
    HLNKADM dm = OpenDm();
    ASSERT_TRUE(dm);

    // A detached phone isn't listed.
    LNKA_DEVICE devices[2] = {};
    DWORD count = 2;
    ASSERT_EQ(LNKAGetDevices(dm, &count, devices), S_OK);
    ASSERT_EQ(count, 1u);
    EXPECT_STREQ(devices[0].pstrSerialNumber, anna.c_str());
    EXPECT_EQ(LNKAFreeDeviceStructure(count, devices), S_OK);

    // A second application in a process of its own, listening with the library's loaders and the service.
    HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, L"zcmod-test-second-application");
    SetEnvironmentVariableW(L"ZCMOD_TEST_SECOND_APPLICATION", L"1");
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

    // The controller's changes reach a registered interface and a registered callback alike, and the other
    // application; once unregistered, the listeners hear nothing more.
    DeviceRecorder viaInterface, viaCallback;
    g_callbackRecorder = &viaCallback;
    EXPECT_EQ(LNKARegisterDMNotifyIF(dm, API_REGISTER, &viaInterface), S_OK);
    EXPECT_EQ(LNKARegisterNotifyCallback(dm, API_REGISTER, RecordingCallback), S_OK);
    const std::wstring steps[] = {L"attach ben", L"rename anna \"Anna 2\"", L"detach anna", L"remove " + ben};
    for (size_t i = 0; i < std::size(steps) && listening; ++i) {
        EXPECT_EQ(phones.Ctl(steps[i]).exitCode, 0u);
        viaInterface.WaitFor(i + 1);
    }
    const Events expected = {
        {DEVICE_ADDED, ben}, {DEVICE_UPDATED, anna}, {DEVICE_REMOVED, anna}, {DEVICE_REMOVED, ben}};
    EXPECT_EQ(LNKARegisterDMNotifyIF(dm, API_UNREGISTER, &viaInterface), S_OK);
    EXPECT_EQ(LNKARegisterNotifyCallback(dm, API_UNREGISTER, RecordingCallback), S_OK);
    EXPECT_EQ(phones.Ctl(L"attach anna").exitCode, 0u);
    Sleep(300);
    other.join();
    ASSERT_TRUE(listening) << "the second application did not start listening: " << second.output;
    EXPECT_EQ(viaInterface.WaitFor(0), expected);
    EXPECT_EQ(viaCallback.WaitFor(0), expected);
    std::string lines;
    for (const auto& [status, serial] : expected)
        lines += "heard " + std::to_string(status) + " " + std::string(serial.begin(), serial.end()) + "\n";
    second.output.erase(std::remove(second.output.begin(), second.output.end(), '\r'), second.output.end());
    EXPECT_NE(second.output.find(lines), std::string::npos) << second.output;
    EXPECT_EQ(second.exitCode, 0u);
    EXPECT_EQ(LNKACloseDM(dm), S_OK);
}

namespace {

HRESULT CALLBACK RefuseTheTransfer(DWORD, DWORD, DWORD64)
{
    return LNKA_E_CANCELLED;
}

}  // namespace

// A listener that refuses a transfer stops it: the target is left as it was, with no partial file beside it.
// (Copies that go through, and an unplug during one, are the phone file dialog's tests.)
TEST_F(Service, ARefusedCopyLeavesTheTargetAsItWas)
{
    const std::wstring serial = phones.New(L"files", L"--files 8");
    ASSERT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    HLNKAFS fs = nullptr;
    DWORD media = LNKA_MEDIA_USB, id = 0;
    ASSERT_EQ(LNKAOpenFS(serial.c_str(), &media, &fs, &id), S_OK);
    ScratchFolder scratch;
    const std::vector<uint8_t> old = {'o', 'l', 'd'};
    scratch.Write(L"IMG_0001.jpg", old);
    std::wstring pc = scratch.File(L"");
    pc.pop_back();
    ASSERT_EQ(LNKARegisterFSNotifyCallback(fs, API_REGISTER, RefuseTheTransfer), S_OK);
    EXPECT_EQ(LNKACopyFile(fs, LNKA_COPY_FROM_DEVICE, L"IMG_0001.jpg", L"\\C:\\Pictures", pc.c_str()),
              LNKA_E_CANCELLED);
    EXPECT_TRUE(ReadBytes(scratch.File(L"IMG_0001.jpg")) == old) << "the target is left as it was";
    EXPECT_EQ(GetFileAttributesW(scratch.File(L"IMG_0001.jpg.partial").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(LNKACloseFS(fs), S_OK);
}

namespace {

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

// Begins a search as the contact search sends it: one field in the personal (0), number (1) or address (2) slot.
HCAFIND Begin(HCA ca, int slot, DWORD fieldClass, DWORD subType, const wchar_t* pattern)
{
    ContactField field = {sizeof(ContactField), 0, fieldClass, subType, const_cast<wchar_t*>(pattern)};
    ContactItem condition = {};
    condition.dwSize = sizeof(condition);
    (slot == 0 ? condition.bPersonalCount : slot == 1 ? condition.bNumberCount : condition.bAddressCount) = 1;
    (slot == 0 ? condition.pPersonal : slot == 1 ? condition.pNumbers : condition.pAddresses) = &field;
    HCAFIND find = nullptr;
    return CAFindBegin(ca, 0, &condition, &find) == S_OK ? find : nullptr;
}

// The names that a search finds.
Names Search(HCA ca, int slot, DWORD fieldClass, DWORD subType, const wchar_t* pattern)
{
    HCAFIND find = Begin(ca, slot, fieldClass, subType, pattern);
    if (!find)
        return {L"(no search)"};
    Names names;
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

// Searches as the contact search sends them, on a phone whose contact file of non-Latin, right-to-left and
// version 2.1 cards the controller loaded card by card through the converter (an empty card is refused). The
// pattern rules are the native search test's; here each slot, class and subtype reaches them, a slow phone
// takes its time, and a phone that goes away ends a running search with an error.
TEST_F(Service, ContactsSearchedAsTheLibraryAsks)
{
    const std::wstring serial = phones.New(L"loaded");
    const ProcessResult load =
        phones.Ctl(L"contacts loaded \"" + DataFile("../../standins/samples/contacts.vcf") + L"\"");
    EXPECT_NE(load.output.find("9 contacts loaded, 1 refused, 9 on the phone"), std::string::npos) << load.output;
    ASSERT_EQ(phones.Ctl(L"slow loaded 150").exitCode, 0u);
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    HCA ca = nullptr;
    DWORD target = CA_TARGET_CONTACTS;
    ASSERT_EQ(DAOpenCA(serial.c_str(), &target, 1, &ca), S_OK);

    const struct {
        int slot;
        DWORD fieldClass, subType;
        const wchar_t* pattern;
        Names names;
    } searches[] = {
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, L"דנ%", {L"דנה לוי"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"حد%", {L"ليلى حداد"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NAME, L"pizza%", {L"Pizza Place"}},
        {0, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, L"pizza%", {}},
        {1, CA_FIELD_CLASS_NUMBER, CA_FIELD_SUBTYPE_ANY, L"+353 1 555 0112", {L"Siobhán Brennan"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_FIELD_SUBTYPE_ANY, L"SIOBHAN@example.ie", {L"Siobhán Brennan"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_WORK, L"dana@work.example", {L"דנה לוי"}},
        {2, CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_HOME, L"dana@work.example", {}},
        {2, CA_FIELD_CLASS_ANY, CA_FIELD_SUBTYPE_ANY, L"+44 20 7946 0113", {L"Pizza Place"}},
    };
    for (const auto& c : searches) {
        const DWORD start = GetTickCount();
        EXPECT_EQ(Search(ca, c.slot, c.fieldClass, c.subType, c.pattern), c.names) << c.pattern << " " << c.subType;
        EXPECT_GE(GetTickCount() - start, 140u) << "the slow phone answered at once";
    }

    // The phone goes away during a search: the search ends with an error.
    HCAFIND find = Begin(ca, 2, CA_FIELD_CLASS_ANY, CA_FIELD_SUBTYPE_ANY, L"%");
    ASSERT_EQ(phones.Ctl(L"detach loaded").exitCode, 0u);
    Sleep(60);
    ContactItem item = {};
    item.dwSize = sizeof(item);
    EXPECT_EQ(CAFindNext(find, CA_DATA_FORMAT_STRUCT, &item), LNKA_E_DEVICE_NOT_CONNECTED);
    EXPECT_EQ(CAFindEnd(find), S_OK);
    EXPECT_EQ(DACloseCA(ca), S_OK);
}
