// The loaders of the connectivity service: finding the library, reference counts, the start and end
// functions, "Options", the monitor of the service's two global events, and the stubs.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "ServiceTestSupport.h"

using namespace zcmod_test;
using namespace zcmod::service;

namespace {

class Connectivity : public ::testing::Test {
protected:
    void SetUp() override { registry.UseStandIns(); }
    void TearDown() override { TerminateAllInterfaces(); }
    ServiceRegistry registry;
};

std::wstring LoadedFolder(const wchar_t* name)
{
    HMODULE module = GetModuleHandleW(name);
    wchar_t path[MAX_PATH] = {};
    if (!module || !GetModuleFileNameW(module, path, MAX_PATH))
        return L"";
    const std::wstring file(path);
    return file.substr(0, file.find_last_of(L'\\'));
}

bool DmLoaded()
{
    return DMAPI_GetAPIVersion() == 30;
}

template <class R, class... A>
R CallWithZeros(R (*function)(A...))
{
    return function(A{}...);
}

// Calls each stub with zeros and nulls: the stand-in answers (an error, never a crash), with
// LNKA_E_NOT_SUPPORTED exactly when it doesn't serve the function.
void CheckStubs(bool served, std::initializer_list<std::pair<const char*, HRESULT (*)()>> stubs)
{
    for (const auto& [name, call] : stubs) {
        SCOPED_TRACE(name);
        const HRESULT result = call();
        EXPECT_NE(result, kFunctionNotFound);
        EXPECT_NE(result, kNotInitialised);
        EXPECT_EQ(result == LNKA_E_NOT_SUPPORTED, !served);
    }
}

}  // namespace

TEST_F(Connectivity, LibraryFromTheConfiguredPathElseTheDefaultNameSilently)
{
    const std::wstring nowhere = L"C:\\no such folder\\VersitConverter64.dll";
    const struct {
        std::wstring path;      // "VCAPI64"; empty: no value
        bool searchServiceDir;  // the default name can be found
        HRESULT result;
        std::wstring folder;  // of the loaded library; empty: none
    } cases[] = {
        {L"", false, kLibraryNotFound, L""},
        {L"", true, S_OK, ServiceDir()},
        {nowhere, false, kLibraryNotFound, L""},
        {nowhere, true, S_OK, ServiceDir()},
        // The configured library wins over the default one; it lacks the start function and stays.
        {ServiceDir(L"service-partial") + L"\\VersitConverter64.dll", true, kFunctionNotFound,
         ServiceDir(L"service-partial")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path + (c.searchServiceDir ? L" +search" : L""));
        DeleteValue(HKEY_LOCAL_MACHINE, kApiKeyW, L"VCAPI64");
        if (!c.path.empty())
            registry.SetPath(L"VCAPI64", c.path);
        SetDllDirectoryW(c.searchServiceDir ? ServiceDir().c_str() : nullptr);
        EXPECT_EQ(VCAPI_Initialize(kVcapiVersion, 0), c.result);
        EXPECT_EQ(LoadedFolder(L"VersitConverter64.dll"), c.folder);
        EXPECT_EQ(VCAPI_GetAPIVersion(), c.folder.empty() ? kNotInitialised : 10);
        if (c.result == kFunctionNotFound) {
            EXPECT_EQ(ValidateVersitData(nullptr, nullptr), kFunctionNotFound) << "a stub says its function is missing";
        }
        EXPECT_EQ(VCAPI_Terminate(0), S_OK) << "every Initialize, failed or not, has its Terminate";
        EXPECT_EQ(VCAPI_Terminate(0), kNotInitialised);
        EXPECT_EQ(LoadedFolder(L"VersitConverter64.dll"), L"");
    }
}

// Terminate without Initialize; the service absent: the count stays up, stubs answer "not initialised" without
// loading, and an Initialize on a count above 0 retries; counts of two interfaces on one library.
TEST_F(Connectivity, CountsAndTheServiceAbsent)
{
    EXPECT_EQ(DMAPI_Terminate(0), kNotInitialised);
    registry.SetPath(L"DMAPI64", L"C:\\nowhere\\LinkAPI64.dll");
    EXPECT_EQ(DMAPI_Initialize(kDmapiVersion, 0), kLibraryNotFound);
    HLNKADM dm = nullptr;
    DWORD count = 7;
    EXPECT_EQ(LNKAGetDeviceCount(dm, &count), kNotInitialised);
    EXPECT_EQ(count, 7u);
    registry.UseStandIns();
    EXPECT_EQ(LNKAOpenDM(&dm), kNotInitialised);
    EXPECT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    EXPECT_EQ(DMAPI_Initialize(99, 0), S_OK) << "loaded already: the version is not looked at";
    EXPECT_EQ(FSAPI_Terminate(0), kNotInitialised);
    EXPECT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    EXPECT_EQ(LNKAOpenDM(&dm), S_OK);
    EXPECT_EQ(LNKACloseDM(dm), S_OK);
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_TRUE(DmLoaded()) << "three Initialize calls, two Terminate";
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_FALSE(DmLoaded());
    EXPECT_EQ(FSAPI_GetAPIVersion(), 30) << "each interface holds its own handle";
    EXPECT_EQ(FSAPI_Terminate(0), S_OK);
    EXPECT_EQ(GetModuleHandleW(L"LinkAPI64.dll"), nullptr);
}

// A negative start result frees the library but counts as a start; a positive one is success.
TEST_F(Connectivity, StartResults)
{
    registry.SetHook(L"InitializeResult", 0x80070005);
    EXPECT_EQ(CAAPI_Initialize(kCaapiVersion, 0), static_cast<HRESULT>(0x80070005));
    EXPECT_EQ(GetModuleHandleW(L"DAAPI64.dll"), nullptr);
    registry.SetHook(L"InitializeResult", 1);
    EXPECT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    EXPECT_EQ(CAGetAPIVersion(), 30);
    EXPECT_EQ(CAAPI_Terminate(0), S_OK);
    EXPECT_EQ(CAGetAPIVersion(), 30) << "the failed start was counted too";
    EXPECT_EQ(CAAPI_Terminate(0), S_OK);
    EXPECT_EQ(GetModuleHandleW(L"DAAPI64.dll"), nullptr);
}

// "Options" bit 0 set as a 32-bit number turns the monitor off; any other type counts as 0.
TEST_F(Connectivity, OptionsBit0OnlyAsANumberStopsFollowingTheService)
{
    const DWORD one = 1, two = 2, three = 3;
    const struct {
        DWORD type;
        const void* data;
        bool follows;
    } cases[] = {
        {REG_DWORD, &one, false}, {REG_DWORD, &three, false}, {REG_DWORD, &two, true}, {REG_SZ, L"1", true},
        {REG_BINARY, &one, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        SetValue(HKEY_LOCAL_MACHINE, kApiKeyW, L"Options", c.type, c.data, 4);
        ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
        Sleep(50);  // the monitor opens the events
        SignalServiceEvent(kUnloadEventName);
        EXPECT_EQ(WaitUntil([] { return !DmLoaded(); }, c.follows ? 5000 : 300), c.follows);
        SignalServiceEvent(kLoadEventName);
        EXPECT_TRUE(WaitUntil(DmLoaded));
        EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    }
}

// The end function blocks for 3 s on the monitor thread: Terminate waits for the monitor 1000 ms, no more.
TEST_F(Connectivity, AMonitorThatStopsSlowlyDoesNotHoldTerminate)
{
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    Sleep(50);
    registry.SetHook(L"TerminateDelay", 3000);
    SignalServiceEvent(kUnloadEventName);
    ASSERT_TRUE(WaitUntil([] { return CAGetAPIVersion() == kNotInitialised; }));
    const DWORD start = GetTickCount();
    EXPECT_EQ(CAAPI_Terminate(0), S_OK);
    const DWORD elapsed = GetTickCount() - start;
    EXPECT_GE(elapsed, 900u);
    EXPECT_LT(elapsed, 1600u);
    EXPECT_TRUE(WaitUntil([] { return GetModuleHandleW(L"DAAPI64.dll") == nullptr; }, 5000))
        << "the monitor frees the library once the end function returns";
}

// 1,000 unload and load cycles while another thread calls into the library: a call that found the library
// keeps it mapped until it returns.
TEST_F(Connectivity, StressUnloadAndLoadWhileAnotherThreadCallsStubs)
{
    Phones phones;
    const std::wstring serial = phones.New(L"stress", L"--contacts 50");
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    Sleep(50);
    std::atomic<bool> stop{false};
    std::atomic<long> calls{0}, served{0}, unexpected{0};
    std::thread caller([&] {
        while (!stop) {
            HCA ca = nullptr;
            DWORD target = CA_TARGET_CONTACTS;
            const HRESULT opened = DAOpenCA(serial.c_str(), &target, 0, &ca);
            ++calls;
            if (opened == S_OK) {
                ++served;
                DACloseCA(ca);
            } else if (opened != kNotInitialised && opened != LNKA_E_NOT_INITIALIZED) {
                ++unexpected;
            }
        }
    });
    int cycles = 0;
    for (; cycles < 1000; ++cycles) {
        SignalServiceEvent(kUnloadEventName);
        if (!WaitUntil([] { return CAGetAPIVersion() == kNotInitialised; }, 2000))
            break;
        SignalServiceEvent(kLoadEventName);
        if (!WaitUntil([] { return CAGetAPIVersion() == 30; }, 2000))
            break;
    }
    stop = true;
    caller.join();
    EXPECT_EQ(cycles, 1000);
    EXPECT_EQ(unexpected.load(), 0);
    EXPECT_GT(served.load(), 0) << "of " << calls.load() << " calls";
}

// Each stub of a function the stand-in serves reaches its export, which answers zeros and nulls with an
// error, never a crash.
TEST_F(Connectivity, EveryStubReachesAnExportOfTheStandIns)
{
    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    ASSERT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    ASSERT_EQ(VCAPI_Initialize(kVcapiVersion, 0), S_OK);
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
#define STUB(name) {#name, [] { return CallWithZeros(&name); }}
    CheckStubs(true, {
        STUB(DMAPI_GetAPIVersion), STUB(LNKAOpenDM), STUB(LNKACloseDM), STUB(LNKAGetDeviceCount), STUB(LNKAGetDevices),
        STUB(LNKAGetDevice), STUB(LNKAFreeDeviceStructure), STUB(LNKARefreshDeviceList), STUB(LNKARenameFriendlyName),
        STUB(LNKARegisterNotifyCallback), STUB(LNKARegisterDMNotifyIF), STUB(LNKAGetDeviceInfo),
        STUB(LNKAFreeDeviceInfoStructure), STUB(FSAPI_GetAPIVersion), STUB(LNKAOpenFS), STUB(LNKACloseFS),
        STUB(LNKARegisterFSNotifyCallback), STUB(LNKARegisterFSNotifyIF), STUB(LNKARefreshDeviceMemoryValues),
        STUB(LNKAFindBegin), STUB(LNKAFindNextFolder), STUB(LNKAFindNextFile), STUB(LNKAFindEnd),
        STUB(LNKACreateFolder), STUB(LNKADeleteFolder), STUB(LNKARenameFolder), STUB(LNKAGetFolderInfo),
        STUB(LNKAGetFileInfo), STUB(LNKADeleteFile), STUB(LNKACopyFile), STUB(LNKARenameFile), STUB(LNKACancel),
        STUB(LNKAFreeFileInfoStructure), STUB(LNKAFreeFolderInfoStructure), STUB(VCAPI_GetAPIVersion),
        STUB(ConvertToVersit), STUB(ConvertFromVersit), STUB(FreeConverterData), STUB(FreeVersitData),
        STUB(ValidateVersitData), STUB(CAGetAPIVersion), STUB(DAOpenCA), STUB(DACloseCA), STUB(CAGetFolderInfo),
        STUB(CAFreeFolderInfoStructure), STUB(CAGetIDList), STUB(CAFreeIdListStructure), STUB(CABeginOperation),
        STUB(CAReadItem), STUB(CAEndOperation), STUB(CAFreeItemData), STUB(CAFindBegin), STUB(CAFindNext),
        STUB(CAFindEnd)});
    // One of each library's functions that the stand-in answers alike without serving them.
    CheckStubs(false, {STUB(LNKASearchDevices), STUB(LNKAReadFile), STUB(ConvertToVersit2), STUB(CAWriteItem)});
#undef STUB
}
