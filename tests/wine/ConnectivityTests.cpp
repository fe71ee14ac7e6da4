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
constexpr size_t ArgCount(R (*)(A...))
{
    return sizeof...(A);
}
template <class R, class... A>
R CallWithZeros(R (*function)(A...))
{
    return function(A{}...);
}

struct Stub {
    const char* name;
    size_t args, expectedArgs;
    HRESULT (*call)();
};

template <auto function>
Stub MakeStub(const char* name, size_t expectedArgs)
{
    return {name, ArgCount(function), expectedArgs, [] { return CallWithZeros(function); }};
}

// Calls each stub: the stand-in answers, with LNKA_E_NOT_SUPPORTED exactly when it doesn't serve the function.
// Gives the number of stubs.
template <class... Stubs>
size_t CheckStubs(bool served, const Stubs&... stubs)
{
    for (const Stub& stub : {stubs...}) {
        SCOPED_TRACE(stub.name);
        EXPECT_EQ(stub.args, stub.expectedArgs);
        const HRESULT result = stub.call();
        EXPECT_NE(result, kFunctionNotFound);
        EXPECT_NE(result, kNotInitialised);
        EXPECT_EQ(result == LNKA_E_NOT_SUPPORTED, !served);
    }
    return sizeof...(stubs);
}

}  // namespace

TEST_F(Connectivity, LibraryFromTheConfiguredPathElseTheDefaultNameSilently)
{
    const struct {
        const wchar_t* path;    // "VCAPI64"; null: no value
        bool searchServiceDir;  // the default name can be found
        HRESULT result;
        std::wstring folder;  // of the loaded library; empty: none
    } cases[] = {
        {nullptr, false, kLibraryNotFound, L""},
        {nullptr, true, S_OK, ServiceDir()},
        {L"C:\\no such folder\\VersitConverter64.dll", false, kLibraryNotFound, L""},
        {L"C:\\no such folder\\VersitConverter64.dll", true, S_OK, ServiceDir()},
        // The configured library wins over the default one; it lacks the start function and stays.
        {L"partial", true, kFunctionNotFound, ServiceDir(L"service-partial")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::wstring(c.path ? c.path : L"(none)") + (c.searchServiceDir ? L" +search" : L""));
        if (c.path)
            registry.SetPath(L"VCAPI64", std::wstring(c.path) == L"partial"
                                             ? ServiceDir(L"service-partial") + L"\\VersitConverter64.dll"
                                             : std::wstring(c.path));
        SetDllDirectoryW(c.searchServiceDir ? ServiceDir().c_str() : nullptr);
        EXPECT_EQ(VCAPI_Initialize(kVcapiVersion, 0), c.result);
        EXPECT_EQ(LoadedFolder(L"VersitConverter64.dll"), c.folder);
        EXPECT_EQ(VCAPI_GetAPIVersion(), c.folder.empty() ? kNotInitialised : 10);
        EXPECT_EQ(VCAPI_Terminate(0), S_OK) << "every Initialize, failed or not, has its Terminate";
        EXPECT_EQ(VCAPI_Terminate(0), kNotInitialised);
        EXPECT_EQ(LoadedFolder(L"VersitConverter64.dll"), L"");
        DeleteValue(HKEY_LOCAL_MACHINE, kApiKeyW, L"VCAPI64");
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

TEST_F(Connectivity, StartResultsAndMissingFunctions)
{
    // A negative start result frees the library, a positive one is success.
    registry.UseStandIns();
    registry.SetHook(L"InitializeResult", 0x80070005);
    EXPECT_EQ(CAAPI_Initialize(kCaapiVersion, 0), static_cast<HRESULT>(0x80070005));
    EXPECT_EQ(GetModuleHandleW(L"DAAPI64.dll"), nullptr);
    EXPECT_EQ(CAGetAPIVersion(), kNotInitialised);
    registry.SetHook(L"InitializeResult", 1);
    EXPECT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    EXPECT_EQ(CAGetAPIVersion(), 30);
    EXPECT_EQ(CAAPI_Terminate(0), S_OK);
    EXPECT_EQ(CAGetAPIVersion(), 30) << "two Initialize calls counted";
    EXPECT_EQ(CAAPI_Terminate(0), S_OK);
    EXPECT_EQ(GetModuleHandleW(L"DAAPI64.dll"), nullptr);

    // A library without its start function stays and works; without an end function it is freed all the same.
    registry.SetPath(L"VCAPI64", ServiceDir(L"service-partial") + L"\\VersitConverter64.dll");
    EXPECT_EQ(VCAPI_Initialize(kVcapiVersion, 0), kFunctionNotFound);
    EXPECT_EQ(ValidateVersitData(nullptr, nullptr), kFunctionNotFound);
    CA_DATA_VERSIT versit = {sizeof(versit), 0, nullptr};
    EXPECT_EQ(FreeVersitData(&versit), S_OK);
    EXPECT_EQ(ConvertToVersit2(0, 0, 0, 0, 0, 0), LNKA_E_NOT_SUPPORTED);
    EXPECT_EQ(VCAPI_Terminate(0), S_OK);
    EXPECT_EQ(FreeVersitData(&versit), kNotInitialised);
    EXPECT_EQ(GetModuleHandleW(L"VersitConverter64.dll"), nullptr);
}

// "Options" bit 0 set as a 32-bit number turns the monitor off; any other type counts as 0.
TEST_F(Connectivity, OptionsBit0OnlyAsANumberStopsFollowingTheService)
{
    const DWORD one = 1, two = 2, three = 3;
    const struct {
        DWORD type;
        const void* data;
        bool follows;
    } cases[] = {{REG_DWORD, &one, false},
                 {REG_DWORD, &three, false},
                 {REG_DWORD, &two, true},
                 {REG_SZ, L"1", true},
                 {REG_BINARY, &one, true}};
    registry.UseStandIns();
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
        // The events were not reset by a monitor when there was none.
        for (const char* name : {kUnloadEventName, kLoadEventName}) {
            HANDLE event = OpenEventA(EVENT_ALL_ACCESS, FALSE, name);
            ResetEvent(event);
            CloseHandle(event);
        }
    }
}

TEST_F(Connectivity, StopAndStartFromTheControllerInAnotherProcess)
{
    registry.UseStandIns();
    Phones phones;
    const std::wstring serial = phones.New(L"anna", L"--contacts 3");
    ASSERT_FALSE(serial.empty());
    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
    HLNKADM dm = nullptr;
    ASSERT_EQ(LNKAOpenDM(&dm), S_OK);
    HCA ca = nullptr;
    DWORD target = CA_TARGET_CONTACTS;
    ASSERT_EQ(DAOpenCA(serial.c_str(), &target, 0, &ca), S_OK);
    Sleep(50);

    ASSERT_EQ(phones.Ctl(L"stop").exitCode, 0u);
    EXPECT_TRUE(WaitUntil([] {
        return !DmLoaded() && CAGetAPIVersion() == kNotInitialised && !GetModuleHandleW(L"LinkAPI64.dll") &&
               !GetModuleHandleW(L"DAAPI64.dll");
    }));
    DWORD count = 0;
    EXPECT_EQ(LNKAGetDeviceCount(dm, &count), kNotInitialised);

    ASSERT_EQ(phones.Ctl(L"start").exitCode, 0u);
    EXPECT_TRUE(WaitUntil([] { return DmLoaded() && CAGetAPIVersion() == 30; }));
    // Handles from before the suspension are stale: the service says so.
    EXPECT_EQ(LNKAGetDeviceCount(dm, &count), LNKA_E_INVALID_HANDLE);
    EXPECT_EQ(DACloseCA(ca), LNKA_E_INVALID_HANDLE);
    ASSERT_EQ(LNKAOpenDM(&dm), S_OK);
    EXPECT_EQ(LNKAGetDeviceCount(dm, &count), S_OK);
    EXPECT_EQ(count, 1u);
}

// The end function blocks for 3 s on the monitor thread: Terminate waits for the monitor 1000 ms, no more.
TEST_F(Connectivity, AMonitorThatStopsSlowlyDoesNotHoldTerminate)
{
    registry.UseStandIns();
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
    registry.UseStandIns();
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
                ContactField field = {sizeof(field), 0, CA_FIELD_CLASS_PERSONAL, 0, const_cast<wchar_t*>(L"a%")};
                ContactItem condition = {};
                condition.dwSize = sizeof(condition);
                condition.bPersonalCount = 1;
                condition.pPersonal = &field;
                HCAFIND find = nullptr;
                if (CAFindBegin(ca, 0, &condition, &find) == S_OK)
                    CAFindEnd(find);
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

// Each stub reaches its function by name and passes its arguments: called with zeros and nulls, every one gets
// an answer of the stand-in (an error, never a crash) and none is missing. The stand-in serves the first list
// and answers the second with LNKA_E_NOT_SUPPORTED.
TEST_F(Connectivity, EveryStubReachesAnExportOfTheStandIns)
{
    registry.UseStandIns();
    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    ASSERT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    ASSERT_EQ(VCAPI_Initialize(kVcapiVersion, 0), S_OK);
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
#define STUB(name, count) MakeStub<&name>(#name, count)
    const size_t served = CheckStubs(
        true, STUB(DMAPI_GetAPIVersion, 0), STUB(LNKAOpenDM, 1), STUB(LNKACloseDM, 1), STUB(LNKAGetDeviceCount, 2),
        STUB(LNKAGetDevices, 3), STUB(LNKAGetDevice, 3), STUB(LNKAFreeDeviceStructure, 2),
        STUB(LNKARefreshDeviceList, 2), STUB(LNKARenameFriendlyName, 3), STUB(LNKARegisterNotifyCallback, 3),
        STUB(LNKARegisterDMNotifyIF, 3), STUB(LNKAGetDeviceInfo, 4), STUB(LNKAFreeDeviceInfoStructure, 2),
        STUB(FSAPI_GetAPIVersion, 0), STUB(LNKAOpenFS, 4), STUB(LNKACloseFS, 1),
        STUB(LNKARegisterFSNotifyCallback, 3), STUB(LNKARegisterFSNotifyIF, 3), STUB(LNKARefreshDeviceMemoryValues, 1),
        STUB(LNKAFindBegin, 4), STUB(LNKAFindNextFolder, 2), STUB(LNKAFindNextFile, 2), STUB(LNKAFindEnd, 1),
        STUB(LNKACreateFolder, 3), STUB(LNKADeleteFolder, 4), STUB(LNKARenameFolder, 4), STUB(LNKAGetFolderInfo, 6),
        STUB(LNKAGetFileInfo, 4), STUB(LNKADeleteFile, 3), STUB(LNKACopyFile, 5), STUB(LNKARenameFile, 4),
        STUB(LNKACancel, 1), STUB(LNKAFreeFileInfoStructure, 1), STUB(LNKAFreeFolderInfoStructure, 1),
        STUB(VCAPI_GetAPIVersion, 0), STUB(ConvertToVersit, 3), STUB(ConvertFromVersit, 3), STUB(FreeConverterData, 2),
        STUB(FreeVersitData, 1), STUB(ValidateVersitData, 2), STUB(CAGetAPIVersion, 0), STUB(DAOpenCA, 4),
        STUB(DACloseCA, 1), STUB(CAGetFolderInfo, 2), STUB(CAFreeFolderInfoStructure, 1), STUB(CAGetIDList, 4),
        STUB(CAFreeIdListStructure, 1), STUB(CABeginOperation, 3), STUB(CAReadItem, 5), STUB(CAEndOperation, 1),
        STUB(CAFreeItemData, 3), STUB(CAFindBegin, 4), STUB(CAFindNext, 3), STUB(CAFindEnd, 1));
    const size_t unsupported = CheckStubs(
        false, STUB(LNKASetDeviceListOption, 3), STUB(LNKASearchDevices, 6), STUB(LNKAFreeConnectionInfoStructures, 2),
        STUB(LNKAChangeDeviceTrustedState, 5),
        STUB(LNKAModemConfig, 6), STUB(LNKAFreeModemConfigData, 2), STUB(LNKAGetDeviceServiceInfo, 4),
        STUB(LNKAFreeDeviceServiceInfoStructure, 1), STUB(LNKAInstallDeviceService, 5), STUB(LNKAGetMemoryTypes, 2),
        STUB(LNKAGetMemoryValues, 5), STUB(LNKASetCurrentFolder, 2), STUB(LNKAGetCurrentFolder, 2),
        STUB(LNKAMoveFolder, 5), STUB(LNKACopyFolder, 5), STUB(LNKAGetFileMetadata, 6), STUB(LNKAMoveFile, 5),
        STUB(LNKAReadFile, 5), STUB(LNKAWriteFile, 4), STUB(LNKAReadFileInBlocks, 6), STUB(LNKAWriteFileInBlocks, 6),
        STUB(LNKAFreeFolderContentStructure, 1), STUB(LNKAAllocFileDataMemory, 1), STUB(LNKAFreeFileDataMemory, 1),
        STUB(LNKAFreeFileMetadataStructure, 2), STUB(LNKAInstallApplication, 6), STUB(LNKAListApplications, 4),
        STUB(LNKAUninstallApplication, 4), STUB(LNKAFreeApplicationInfoStructures, 2), STUB(LNKAConvertFile, 4),
        STUB(LNKAGetConvertFileTypes, 3), STUB(LNKAFreeConvertFileTypes, 2), STUB(ConvertToVersit2, 6),
        STUB(CAGetFolderInfo2, 3), STUB(CAGetIDList2, 4), STUB(CAWriteItem, 5), STUB(CADeleteItem, 3),
        STUB(CAWriteField, 4), STUB(CADeleteField, 4), STUB(CACommitOperations, 2), STUB(CARegisterNotifyCallback, 3),
        STUB(CARegisterOperationCallback, 3), STUB(CARegisterNotifyIF, 3), STUB(CARegisterOperationNotifyIF, 3),
        STUB(CAGetFolderPath, 3), STUB(CACreateFolder, 3), STUB(CADeleteFolder, 2), STUB(CARenameFolder, 3),
        STUB(CAGetContentCapability, 4), STUB(CAFreeContentCapability, 3), STUB(CAChangeLogReadBegin, 4),
        STUB(CAChangeLogReadNext, 2), STUB(CAChangeLogReadEnd, 2), STUB(CAFreeChangeLogItem, 2));
#undef STUB
    EXPECT_EQ(served + unsupported, 21u + 43u + 6u + 34u + 4u);
}
