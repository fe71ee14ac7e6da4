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
        {L"partial", true, kFunctionNotFound, PartialServiceDir()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::wstring(c.path ? c.path : L"(none)") + (c.searchServiceDir ? L" +search" : L""));
        if (c.path)
            registry.SetPath(L"VCAPI64", std::wstring(c.path) == L"partial"
                                             ? PartialServiceDir() + L"\\VersitConverter64.dll"
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

TEST_F(Connectivity, ServiceAbsentThenAnInitializeOnACountAboveZeroRetries)
{
    registry.SetPath(L"DMAPI64", L"C:\\nowhere\\LinkAPI64.dll");
    EXPECT_EQ(DMAPI_Initialize(kDmapiVersion, 0), kLibraryNotFound);
    HLNKADM dm = nullptr;
    EXPECT_EQ(LNKAOpenDM(&dm), kNotInitialised);
    DWORD count = 7;
    EXPECT_EQ(LNKAGetDeviceCount(dm, &count), kNotInitialised);
    EXPECT_EQ(count, 7u);
    // A stub call does not load; an Initialize does, the count being above 0 with no library.
    registry.UseStandIns();
    EXPECT_EQ(LNKAOpenDM(&dm), kNotInitialised);
    EXPECT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    EXPECT_EQ(LNKAOpenDM(&dm), S_OK);
    EXPECT_EQ(LNKACloseDM(dm), S_OK);
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_TRUE(DmLoaded()) << "two Initialize calls, one Terminate";
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_FALSE(DmLoaded());
    EXPECT_EQ(GetModuleHandleW(L"LinkAPI64.dll"), nullptr);
}

TEST_F(Connectivity, CountsAndTheTwoInterfacesOfOneLibrary)
{
    registry.UseStandIns();
    EXPECT_EQ(FSAPI_Terminate(0), kNotInitialised) << "Terminate without Initialize";
    EXPECT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    EXPECT_EQ(DMAPI_Initialize(99, 0), S_OK) << "loaded already: the version is not looked at";
    EXPECT_EQ(FSAPI_Terminate(0), kNotInitialised);
    EXPECT_TRUE(DmLoaded());
    EXPECT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    EXPECT_EQ(FSAPI_GetAPIVersion(), 30);
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_EQ(DMAPI_Terminate(0), S_OK);
    EXPECT_FALSE(DmLoaded());
    EXPECT_EQ(FSAPI_GetAPIVersion(), 30) << "each interface holds its own handle";
    EXPECT_EQ(FSAPI_Terminate(0), S_OK);
    EXPECT_EQ(GetModuleHandleW(L"LinkAPI64.dll"), nullptr);
}

TEST_F(Connectivity, StartResultNegativeFreesTheLibraryPositiveIsSuccess)
{
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
}

TEST_F(Connectivity, MissingFunctionsOfALibrary)
{
    registry.UseStandIns();
    registry.SetPath(L"VCAPI64", PartialServiceDir() + L"\\VersitConverter64.dll");
    EXPECT_EQ(VCAPI_Initialize(kVcapiVersion, 0), kFunctionNotFound);
    EXPECT_EQ(ValidateVersitData(nullptr, nullptr), kFunctionNotFound);
    CA_DATA_VERSIT versit = {sizeof(versit), 0, nullptr};
    EXPECT_EQ(FreeVersitData(&versit), S_OK) << "the library without its start function stays and works";
    EXPECT_EQ(ConvertToVersit2(0, 0, 0, 0, 0, 0), LNKA_E_NOT_SUPPORTED);
    EXPECT_EQ(VCAPI_Terminate(0), S_OK) << "without an end function the library is freed all the same";
    EXPECT_EQ(FreeVersitData(&versit), kNotInitialised);
    EXPECT_EQ(GetModuleHandleW(L"VersitConverter64.dll"), nullptr);
}

// "Options" bit 0 set as a 32-bit number turns the monitor off; any other type counts as 0.
TEST_F(Connectivity, OptionsBit0OnlyAsANumberStopsFollowingTheService)
{
    const struct {
        DWORD type;
        const char* text;
        DWORD number;
        bool follows;
    } cases[] = {{REG_DWORD, nullptr, 1, false},
                 {REG_DWORD, nullptr, 3, false},
                 {REG_DWORD, nullptr, 2, true},
                 {REG_SZ, "1", 0, true},
                 {REG_BINARY, "\1\0\0\0", 0, true}};
    registry.UseStandIns();
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.type) + " " + std::to_string(c.number));
        if (c.type == REG_SZ)
            SetValue(HKEY_LOCAL_MACHINE, kApiKeyW, L"Options", REG_SZ, L"1", 2 * sizeof(wchar_t));
        else if (c.type == REG_BINARY)
            SetValue(HKEY_LOCAL_MACHINE, kApiKeyW, L"Options", REG_BINARY, c.text, 4);
        else
            registry.SetOptions(c.number);
        ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
        Sleep(50);  // the monitor opens the events
        SignalServiceEvent(kUnloadEventName);
        if (c.follows) {
            EXPECT_TRUE(WaitUntil([] { return !DmLoaded(); }));
            SignalServiceEvent(kLoadEventName);
            EXPECT_TRUE(WaitUntil(DmLoaded));
        } else {
            Sleep(300);
            EXPECT_TRUE(DmLoaded());
            SignalServiceEvent(kLoadEventName);
        }
        EXPECT_EQ(DMAPI_Terminate(0), S_OK);
        EXPECT_FALSE(DmLoaded());
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

// Each stub reaches its function by name and passes its arguments: called with zeros and nulls, every one
// gets an answer of the stand-in (an error, never a crash) and none is missing.
TEST_F(Connectivity, EveryStubReachesAnExportOfTheStandIns)
{
    registry.UseStandIns();
    ASSERT_EQ(DMAPI_Initialize(kDmapiVersion, 0), S_OK);
    ASSERT_EQ(FSAPI_Initialize(kFsapiVersion, 0), S_OK);
    ASSERT_EQ(VCAPI_Initialize(kVcapiVersion, 0), S_OK);
    ASSERT_EQ(CAAPI_Initialize(kCaapiVersion, 0), S_OK);
#define STUB(name, count, supported)                                                  \
    {                                                                                 \
#name, ArgCount(&name), count, supported, [] { return CallWithZeros(&name); } \
    }
    const struct {
        const char* name;
        size_t args, expectedArgs;
        bool supported;
        HRESULT (*call)();
    } stubs[] = {
        STUB(DMAPI_GetAPIVersion, 0, true),
        STUB(LNKAOpenDM, 1, true),
        STUB(LNKACloseDM, 1, true),
        STUB(LNKASetDeviceListOption, 3, false),
        STUB(LNKAGetDeviceCount, 2, true),
        STUB(LNKAGetDevices, 3, true),
        STUB(LNKAGetDevice, 3, true),
        STUB(LNKAFreeDeviceStructure, 2, true),
        STUB(LNKARefreshDeviceList, 2, true),
        STUB(LNKARenameFriendlyName, 3, true),
        STUB(LNKARegisterNotifyCallback, 3, true),
        STUB(LNKARegisterDMNotifyIF, 3, true),
        STUB(LNKASearchDevices, 6, false),
        STUB(LNKAFreeConnectionInfoStructures, 2, false),
        STUB(LNKAChangeDeviceTrustedState, 5, false),
        STUB(LNKAGetDeviceInfo, 4, false),
        STUB(LNKAFreeDeviceInfoStructure, 2, false),
        STUB(LNKAModemConfig, 6, false),
        STUB(LNKAFreeModemConfigData, 2, false),
        STUB(LNKAGetDeviceServiceInfo, 4, false),
        STUB(LNKAFreeDeviceServiceInfoStructure, 1, false),
        STUB(LNKAInstallDeviceService, 5, false),
        STUB(FSAPI_GetAPIVersion, 0, true),
        STUB(LNKAOpenFS, 4, true),
        STUB(LNKACloseFS, 1, true),
        STUB(LNKARegisterFSNotifyCallback, 3, true),
        STUB(LNKARegisterFSNotifyIF, 3, true),
        STUB(LNKARefreshDeviceMemoryValues, 1, true),
        STUB(LNKAGetMemoryTypes, 2, false),
        STUB(LNKAGetMemoryValues, 5, false),
        STUB(LNKASetCurrentFolder, 2, false),
        STUB(LNKAGetCurrentFolder, 2, false),
        STUB(LNKAFindBegin, 4, true),
        STUB(LNKAFindNextFolder, 2, true),
        STUB(LNKAFindNextFile, 2, true),
        STUB(LNKAFindEnd, 1, true),
        STUB(LNKACreateFolder, 3, true),
        STUB(LNKADeleteFolder, 4, true),
        STUB(LNKARenameFolder, 4, true),
        STUB(LNKAGetFolderInfo, 6, true),
        STUB(LNKAMoveFolder, 5, false),
        STUB(LNKACopyFolder, 5, false),
        STUB(LNKAGetFileInfo, 4, true),
        STUB(LNKAGetFileMetadata, 6, false),
        STUB(LNKADeleteFile, 3, true),
        STUB(LNKAMoveFile, 5, false),
        STUB(LNKACopyFile, 5, true),
        STUB(LNKARenameFile, 4, true),
        STUB(LNKAReadFile, 5, false),
        STUB(LNKAWriteFile, 4, false),
        STUB(LNKAReadFileInBlocks, 6, false),
        STUB(LNKAWriteFileInBlocks, 6, false),
        STUB(LNKACancel, 1, true),
        STUB(LNKAFreeFileInfoStructure, 1, true),
        STUB(LNKAFreeFolderInfoStructure, 1, true),
        STUB(LNKAFreeFolderContentStructure, 1, false),
        STUB(LNKAAllocFileDataMemory, 1, false),
        STUB(LNKAFreeFileDataMemory, 1, false),
        STUB(LNKAFreeFileMetadataStructure, 2, false),
        STUB(LNKAInstallApplication, 6, false),
        STUB(LNKAListApplications, 4, false),
        STUB(LNKAUninstallApplication, 4, false),
        STUB(LNKAFreeApplicationInfoStructures, 2, false),
        STUB(LNKAConvertFile, 4, false),
        STUB(LNKAGetConvertFileTypes, 3, false),
        STUB(LNKAFreeConvertFileTypes, 2, false),
        STUB(VCAPI_GetAPIVersion, 0, true),
        STUB(ConvertToVersit, 3, true),
        STUB(ConvertFromVersit, 3, true),
        STUB(FreeConverterData, 2, true),
        STUB(FreeVersitData, 1, true),
        STUB(ValidateVersitData, 2, true),
        STUB(ConvertToVersit2, 6, false),
        STUB(CAGetAPIVersion, 0, true),
        STUB(DAOpenCA, 4, true),
        STUB(DACloseCA, 1, true),
        STUB(CAGetFolderInfo, 2, true),
        STUB(CAGetFolderInfo2, 3, false),
        STUB(CAFreeFolderInfoStructure, 1, true),
        STUB(CAGetIDList, 4, true),
        STUB(CAGetIDList2, 4, false),
        STUB(CAFreeIdListStructure, 1, true),
        STUB(CABeginOperation, 3, true),
        STUB(CAReadItem, 5, true),
        STUB(CAWriteItem, 5, false),
        STUB(CADeleteItem, 3, false),
        STUB(CAWriteField, 4, false),
        STUB(CADeleteField, 4, false),
        STUB(CACommitOperations, 2, false),
        STUB(CAEndOperation, 1, true),
        STUB(CAFreeItemData, 3, true),
        STUB(CARegisterNotifyCallback, 3, false),
        STUB(CARegisterOperationCallback, 3, false),
        STUB(CARegisterNotifyIF, 3, false),
        STUB(CARegisterOperationNotifyIF, 3, false),
        STUB(CAFindBegin, 4, true),
        STUB(CAFindNext, 3, true),
        STUB(CAFindEnd, 1, true),
        STUB(CAGetFolderPath, 3, false),
        STUB(CACreateFolder, 3, false),
        STUB(CADeleteFolder, 2, false),
        STUB(CARenameFolder, 3, false),
        STUB(CAGetContentCapability, 4, false),
        STUB(CAFreeContentCapability, 3, false),
        STUB(CAChangeLogReadBegin, 4, false),
        STUB(CAChangeLogReadNext, 2, false),
        STUB(CAChangeLogReadEnd, 2, false),
        STUB(CAFreeChangeLogItem, 2, false),
    };
#undef STUB
    EXPECT_EQ(std::size(stubs), 21u + 43u + 6u + 34u + 4u);
    for (const auto& stub : stubs) {
        SCOPED_TRACE(stub.name);
        EXPECT_EQ(stub.args, stub.expectedArgs);
        const HRESULT result = stub.call();
        EXPECT_NE(result, kFunctionNotFound);
        EXPECT_NE(result, kNotInitialised);
        if (stub.supported)
            EXPECT_NE(result, LNKA_E_NOT_SUPPORTED);
        else
            EXPECT_EQ(result, LNKA_E_NOT_SUPPORTED);
    }
}
