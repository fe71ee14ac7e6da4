// The four loaders of the connectivity service: one implementation, four tables of names.
#include "device/ConnectivityApi.h"

#include <atomic>
#include <new>

namespace zcmod::service {
namespace {

struct ApiNames {
    const char* pathValue;       // value under kApiKey with the library's path
    const char* defaultLibrary;  // loaded by the platform's search order when the path gives nothing
    const char* start;
    const char* end;
};

constexpr ApiNames kDmapi = {"DMAPI64", "LinkAPI64.dll", "DMAPI_Initialize", "DMAPI_Terminate"};
constexpr ApiNames kFsapi = {"FSAPI64", "LinkAPI64.dll", "FSAPI_Initialize", "FSAPI_Terminate"};
constexpr ApiNames kVcapi = {"VCAPI64", "VersitConverter64.dll", "VCAPI_Initialize", "VCAPI_Terminate"};
constexpr ApiNames kCaapi = {"CAAPI64", "DAAPI64.dll", "CAAPI_Initialize", "CAAPI_Terminate"};

using StartFunction = HRESULT(WINAPI*)(DWORD, DWORD);
using EndFunction = HRESULT(WINAPI*)(DWORD);

constexpr DWORD kMonitorStopTimeout = 1000;

// Takes a reference on the module at `library` if it is still loaded; null otherwise. The loader checks the
// address under its own lock, so a module freed meanwhile is refused rather than touched.
HMODULE PinLibrary(HMODULE library)
{
    HMODULE pinned = nullptr;
    if (library &&
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(library), &pinned))
        return pinned;
    return nullptr;
}

template <class F>
F Resolve(HMODULE library, const char* name)
{
    return reinterpret_cast<F>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// One interface's state. No lock guards it: Initialize and Terminate run on one thread at a time; the monitor
// thread and the stubs meet only on the library handle, which is atomic.
class ServiceLoader {
public:
    explicit constexpr ServiceLoader(const ApiNames& names) : m_names(names) {}

    HRESULT Initialize(DWORD version, DWORD reserved)
    {
        // Counted first and never undone: every Initialize, failed or not, needs its Terminate.
        ++m_refs;
        if (m_library.load())
            return S_OK;
        HMODULE library = FindLibrary();
        if (!library)
            return kLibraryNotFound;
        m_library.store(library);
        const auto start = Resolve<StartFunction>(library, m_names.start);
        if (!start)
            return kFunctionNotFound;  // the library stays: stubs work on it
        m_version.store(version);
        const HRESULT result = start(version, reserved);
        if (result < 0) {
            if (HMODULE own = m_library.exchange(nullptr))
                FreeLibrary(own);
            return result;
        }
        StopMonitor();
        if (!(ReadOptions() & 1))
            StartMonitor();
        return S_OK;
    }

    HRESULT Terminate(DWORD reserved)
    {
        if (m_refs == 0)
            return kNotInitialised;
        if (--m_refs > 0)
            return S_OK;
        Unload(reserved);
        if (StopMonitor())
            Unload(0);  // a load event handled while we were stopping brought the library back
        return S_OK;
    }

    // A stub. The name is resolved at each call: after a reload no address of the old library may survive.
    //
    // The monitor thread may unload the library at any moment. The stub therefore takes its own reference on
    // the library before resolving the name and keeps it for the length of the call, so that an unload racing
    // the call only drops the monitor's reference: the code stays mapped until the call has returned, and the
    // FreeLibrary below is then the one that unmaps it. A library already unloaded when the stub looks is
    // refused by PinLibrary, as if the handle had been null.
    template <class... Args>
    HRESULT Call(const char* name, Args... args)
    {
        HMODULE pinned = PinLibrary(m_library.load());
        if (!pinned)
            return kNotInitialised;
        const auto function = Resolve<HRESULT(WINAPI*)(Args...)>(pinned, name);
        const HRESULT result = function ? function(args...) : kFunctionNotFound;
        FreeLibrary(pinned);
        return result;
    }

private:
    struct MonitorContext {
        ServiceLoader* loader;
        HANDLE ownStop;    // the thread's own handle to the stop event
        HANDLE stopEvent;  // the loader's handle, to see it cleared
    };

    // The configured path, then the default name. Null if neither loads.
    HMODULE FindLibrary() const
    {
        HMODULE library = nullptr;
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kApiKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
            char path[MAX_PATH + 1] = {};
            DWORD size = MAX_PATH;
            const LONG status =
                RegQueryValueExA(key, m_names.pathValue, nullptr, nullptr, reinterpret_cast<BYTE*>(path), &size);
            RegCloseKey(key);
            if (status == ERROR_SUCCESS && path[0])
                library = LoadLibraryA(path);
        }
        if (!library)
            library = LoadLibraryA(m_names.defaultLibrary);
        return library;
    }

    // "Options" counts only as a 32-bit number; anything else is 0.
    static DWORD ReadOptions()
    {
        DWORD options = 0;
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kApiKey, 0, KEY_READ, &key) == ERROR_SUCCESS) {
            DWORD type = 0;
            DWORD value = 0;
            DWORD size = sizeof(value);
            if (RegQueryValueExA(key, "Options", nullptr, &type, reinterpret_cast<BYTE*>(&value), &size) ==
                    ERROR_SUCCESS &&
                type == REG_DWORD && size == sizeof(value))
                options = value;
            RegCloseKey(key);
        }
        return options;
    }

    // Takes the library away: clears the handle first, so that new stubs see none, then ends and frees it.
    void Unload(DWORD reserved)
    {
        if (HMODULE library = m_library.exchange(nullptr)) {
            if (const auto end = Resolve<EndFunction>(library, m_names.end))
                end(reserved);
            FreeLibrary(library);
        }
    }

    void StartMonitor()
    {
        HANDLE stop = CreateEventA(nullptr, TRUE, FALSE, nullptr);
        HANDLE ownStop = nullptr;
        if (!stop)
            return;
        if (!DuplicateHandle(GetCurrentProcess(), stop, GetCurrentProcess(), &ownStop, 0, FALSE,
                             DUPLICATE_SAME_ACCESS)) {
            CloseHandle(stop);
            return;
        }
        auto* context = new (std::nothrow) MonitorContext{this, ownStop, stop};
        HANDLE thread =
            context ? CreateThread(nullptr, 0, &ServiceLoader::MonitorThread, context, 0, nullptr) : nullptr;
        if (!thread) {
            delete context;
            CloseHandle(ownStop);
            CloseHandle(stop);
            return;
        }
        m_stopEvent.store(stop);
        m_thread = thread;
    }

    // Signals the monitor and waits for it at most kMonitorStopTimeout; the handles are closed and cleared
    // whether it ended in time or not. True if a monitor ended in time.
    bool StopMonitor()
    {
        if (!m_thread)
            return false;
        HANDLE stop = m_stopEvent.exchange(nullptr);
        if (stop)
            SetEvent(stop);
        const bool ended = WaitForSingleObject(m_thread, kMonitorStopTimeout) == WAIT_OBJECT_0;
        CloseHandle(m_thread);
        m_thread = nullptr;
        if (stop)
            CloseHandle(stop);
        return ended;
    }

    static DWORD WINAPI MonitorThread(void* parameter)
    {
        auto* context = static_cast<MonitorContext*>(parameter);
        context->loader->Monitor(context->ownStop, context->stopEvent);
        CloseHandle(context->ownStop);
        delete context;
        return 0;
    }

    static HANDLE OpenOrCreateEvent(const char* name)
    {
        HANDLE event = OpenEventA(EVENT_ALL_ACCESS, FALSE, name);
        return event ? event : CreateEventA(nullptr, TRUE, FALSE, name);
    }

    void Monitor(HANDLE ownStop, HANDLE stopEvent)
    {
        HANDLE unload = OpenOrCreateEvent(kUnloadEventName);
        HANDLE load = OpenOrCreateEvent(kLoadEventName);
        if (unload && load) {
            ResetEvent(unload);
            ResetEvent(load);
            // The order of the handles is the order of priority when several are signalled.
            const HANDLE events[3] = {ownStop, unload, load};
            for (;;) {
                const DWORD which = WaitForMultipleObjects(3, events, FALSE, INFINITE);
                if (which == WAIT_OBJECT_0 || m_stopEvent.load() != stopEvent)
                    break;
                if (which == WAIT_OBJECT_0 + 1) {
                    UnloadForService();
                    if (!ResetEvent(unload))
                        break;
                } else if (which == WAIT_OBJECT_0 + 2) {
                    LoadForService();
                    if (!ResetEvent(load))
                        break;
                } else {
                    break;
                }
            }
        }
        if (unload)
            CloseHandle(unload);
        if (load)
            CloseHandle(load);
    }

    // The service is going away. Without an end function the library stays.
    void UnloadForService()
    {
        HMODULE pinned = PinLibrary(m_library.load());
        if (!pinned)
            return;
        HMODULE library = m_library.load();
        if (library == pinned && Resolve<EndFunction>(pinned, m_names.end))
            Unload(0);
        FreeLibrary(pinned);
    }

    // The service is back. A failure of the start function is not noticed.
    void LoadForService()
    {
        if (m_library.load())
            return;
        HMODULE library = FindLibrary();
        if (!library)
            return;
        if (const auto start = Resolve<StartFunction>(library, m_names.start))
            start(m_version.load(), 0);
        HMODULE expected = nullptr;
        if (!m_library.compare_exchange_strong(expected, library))
            FreeLibrary(library);
    }

    const ApiNames& m_names;
    std::atomic<HMODULE> m_library{nullptr};
    std::atomic<DWORD> m_version{0};
    LONG m_refs = 0;
    std::atomic<HANDLE> m_stopEvent{nullptr};
    HANDLE m_thread = nullptr;
};

ServiceLoader g_dmapi(kDmapi);
ServiceLoader g_fsapi(kFsapi);
ServiceLoader g_vcapi(kVcapi);
ServiceLoader g_caapi(kCaapi);

}  // namespace

// One stub: its parameter list, and the names of its arguments as passed on.
#define ZCMOD_STUB(loader, name, parameters, ...) \
    HRESULT name parameters                       \
    {                                             \
        return loader.Call(#name, __VA_ARGS__);   \
    }

// One stub a line.
// clang-format off
// --- Device management ----------------------------------------------------------------------------------------
HRESULT DMAPI_Initialize(DWORD version, DWORD reserved)
{
    return g_dmapi.Initialize(version, reserved);
}
HRESULT DMAPI_Terminate(DWORD reserved)
{
    return g_dmapi.Terminate(reserved);
}
HRESULT DMAPI_GetAPIVersion()
{
    return g_dmapi.Call("DMAPI_GetAPIVersion");
}

ZCMOD_STUB(g_dmapi, LNKAOpenDM, (HLNKADM* a), a)
ZCMOD_STUB(g_dmapi, LNKACloseDM, (HLNKADM a), a)
ZCMOD_STUB(g_dmapi, LNKASetDeviceListOption, (HLNKADM a, DWORD b, DWORD c), a, b, c)
ZCMOD_STUB(g_dmapi, LNKAGetDeviceCount, (HLNKADM a, DWORD* b), a, b)
ZCMOD_STUB(g_dmapi, LNKAGetDevices, (HLNKADM a, DWORD* b, LNKA_DEVICE* c), a, b, c)
ZCMOD_STUB(g_dmapi, LNKAGetDevice, (HLNKADM a, const wchar_t* b, LNKA_DEVICE* c), a, b, c)
ZCMOD_STUB(g_dmapi, LNKAFreeDeviceStructure, (DWORD a, LNKA_DEVICE* b), a, b)
ZCMOD_STUB(g_dmapi, LNKARefreshDeviceList, (HLNKADM a, DWORD b), a, b)
ZCMOD_STUB(g_dmapi, LNKARenameFriendlyName, (HLNKADM a, const wchar_t* b, const wchar_t* c), a, b, c)
ZCMOD_STUB(g_dmapi, LNKARegisterNotifyCallback, (HLNKADM a, DWORD b, DMNOTIFYPROC c), a, b, c)
ZCMOD_STUB(g_dmapi, LNKARegisterDMNotifyIF, (HLNKADM a, DWORD b, IDMAPIDeviceNotify* c), a, b, c)
ZCMOD_STUB(g_dmapi, LNKASearchDevices, (Arg a, Arg b, Arg c, Arg d, Arg e, Arg f), a, b, c, d, e, f)
ZCMOD_STUB(g_dmapi, LNKAFreeConnectionInfoStructures, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_dmapi, LNKAChangeDeviceTrustedState, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)
ZCMOD_STUB(g_dmapi, LNKAGetDeviceInfo, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_dmapi, LNKAFreeDeviceInfoStructure, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_dmapi, LNKAModemConfig, (Arg a, Arg b, Arg c, Arg d, Arg e, Arg f), a, b, c, d, e, f)
ZCMOD_STUB(g_dmapi, LNKAFreeModemConfigData, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_dmapi, LNKAGetDeviceServiceInfo, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_dmapi, LNKAFreeDeviceServiceInfoStructure, (Arg a), a)
ZCMOD_STUB(g_dmapi, LNKAInstallDeviceService, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)

// --- File system ----------------------------------------------------------------------------------------------
HRESULT FSAPI_Initialize(DWORD version, DWORD reserved)
{
    return g_fsapi.Initialize(version, reserved);
}
HRESULT FSAPI_Terminate(DWORD reserved)
{
    return g_fsapi.Terminate(reserved);
}
HRESULT FSAPI_GetAPIVersion()
{
    return g_fsapi.Call("FSAPI_GetAPIVersion");
}

ZCMOD_STUB(g_fsapi, LNKAOpenFS, (const wchar_t* a, DWORD* b, HLNKAFS* c, DWORD* d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKACloseFS, (HLNKAFS a), a)
ZCMOD_STUB(g_fsapi, LNKARegisterFSNotifyCallback, (HLNKAFS a, DWORD b, FSNOTIFYPROC c), a, b, c)
ZCMOD_STUB(g_fsapi, LNKARegisterFSNotifyIF, (HLNKAFS a, DWORD b, IFSAPINotify* c), a, b, c)
ZCMOD_STUB(g_fsapi, LNKARefreshDeviceMemoryValues, (HLNKAFS a), a)
ZCMOD_STUB(g_fsapi, LNKAGetMemoryTypes, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_fsapi, LNKAGetMemoryValues, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)
ZCMOD_STUB(g_fsapi, LNKASetCurrentFolder, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_fsapi, LNKAGetCurrentFolder, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_fsapi, LNKAFindBegin, (HLNKAFS a, const wchar_t* b, DWORD c, HLNKAFIND* d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAFindNextFolder, (HLNKAFIND a, LNKA_FILE_INFO** b), a, b)
ZCMOD_STUB(g_fsapi, LNKAFindNextFile, (HLNKAFIND a, LNKA_FILE_INFO** b), a, b)
ZCMOD_STUB(g_fsapi, LNKAFindEnd, (HLNKAFIND a), a)
ZCMOD_STUB(g_fsapi, LNKACreateFolder, (HLNKAFS a, const wchar_t* b, const wchar_t* c), a, b, c)
ZCMOD_STUB(g_fsapi, LNKADeleteFolder, (HLNKAFS a, const wchar_t* b, const wchar_t* c, DWORD d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKARenameFolder, (HLNKAFS a, const wchar_t* b, const wchar_t* c, const wchar_t* d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAGetFolderInfo,
           (HLNKAFS a, const wchar_t* b, const wchar_t* c, DWORD d, LNKA_FOLDER_INFO** e, Arg f), a, b, c, d, e, f)
ZCMOD_STUB(g_fsapi, LNKAMoveFolder, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)
ZCMOD_STUB(g_fsapi, LNKACopyFolder, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)
ZCMOD_STUB(g_fsapi, LNKAGetFileInfo, (HLNKAFS a, const wchar_t* b, const wchar_t* c, LNKA_FILE_INFO** d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAGetFileMetadata, (Arg a, Arg b, Arg c, Arg d, Arg e, Arg f), a, b, c, d, e, f)
ZCMOD_STUB(g_fsapi, LNKADeleteFile, (HLNKAFS a, const wchar_t* b, const wchar_t* c), a, b, c)
ZCMOD_STUB(g_fsapi, LNKAMoveFile, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)
ZCMOD_STUB(g_fsapi, LNKACopyFile, (HLNKAFS a, DWORD b, const wchar_t* c, const wchar_t* d, const wchar_t* e), a, b, c,
           d, e)
ZCMOD_STUB(g_fsapi, LNKARenameFile, (HLNKAFS a, const wchar_t* b, const wchar_t* c, const wchar_t* d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAReadFile, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)
ZCMOD_STUB(g_fsapi, LNKAWriteFile, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAReadFileInBlocks, (Arg a, Arg b, Arg c, Arg d, Arg e, Arg f), a, b, c, d, e, f)
ZCMOD_STUB(g_fsapi, LNKAWriteFileInBlocks, (Arg a, Arg b, Arg c, Arg d, Arg e, Arg f), a, b, c, d, e, f)
ZCMOD_STUB(g_fsapi, LNKACancel, (HLNKAFS a), a)
ZCMOD_STUB(g_fsapi, LNKAFreeFileInfoStructure, (LNKA_FILE_INFO* a), a)
ZCMOD_STUB(g_fsapi, LNKAFreeFolderInfoStructure, (LNKA_FOLDER_INFO* a), a)
ZCMOD_STUB(g_fsapi, LNKAFreeFolderContentStructure, (Arg a), a)
ZCMOD_STUB(g_fsapi, LNKAAllocFileDataMemory, (Arg a), a)
ZCMOD_STUB(g_fsapi, LNKAFreeFileDataMemory, (Arg a), a)
ZCMOD_STUB(g_fsapi, LNKAFreeFileMetadataStructure, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_fsapi, LNKAInstallApplication, (Arg a, Arg b, Arg c, Arg d, Arg e, Arg f), a, b, c, d, e, f)
ZCMOD_STUB(g_fsapi, LNKAListApplications, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAUninstallApplication, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAFreeApplicationInfoStructures, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_fsapi, LNKAConvertFile, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_fsapi, LNKAGetConvertFileTypes, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_fsapi, LNKAFreeConvertFileTypes, (Arg a, Arg b), a, b)

// --- Versit conversion ----------------------------------------------------------------------------------------
HRESULT VCAPI_Initialize(DWORD version, DWORD reserved)
{
    return g_vcapi.Initialize(version, reserved);
}
HRESULT VCAPI_Terminate(DWORD reserved)
{
    return g_vcapi.Terminate(reserved);
}
HRESULT VCAPI_GetAPIVersion()
{
    return g_vcapi.Call("VCAPI_GetAPIVersion");
}

ZCMOD_STUB(g_vcapi, ConvertToVersit, (DWORD a, const void* b, CA_DATA_VERSIT* c), a, b, c)
ZCMOD_STUB(g_vcapi, ConvertFromVersit, (const CA_DATA_VERSIT* a, DWORD b, void* c), a, b, c)
ZCMOD_STUB(g_vcapi, FreeConverterData, (DWORD a, void* b), a, b)
ZCMOD_STUB(g_vcapi, FreeVersitData, (CA_DATA_VERSIT* a), a)
ZCMOD_STUB(g_vcapi, ValidateVersitData, (const CA_DATA_VERSIT* a, DWORD* b), a, b)
ZCMOD_STUB(g_vcapi, ConvertToVersit2, (Arg a, Arg b, Arg c, Arg d, Arg e, Arg f), a, b, c, d, e, f)

// --- Content access -------------------------------------------------------------------------------------------
HRESULT CAAPI_Initialize(DWORD version, DWORD reserved)
{
    return g_caapi.Initialize(version, reserved);
}
HRESULT CAAPI_Terminate(DWORD reserved)
{
    return g_caapi.Terminate(reserved);
}
HRESULT CAGetAPIVersion()
{
    return g_caapi.Call("CAGetAPIVersion");
}

ZCMOD_STUB(g_caapi, DAOpenCA, (const wchar_t* a, DWORD* b, DWORD c, HCA* d), a, b, c, d)
ZCMOD_STUB(g_caapi, DACloseCA, (HCA a), a)
ZCMOD_STUB(g_caapi, CAGetFolderInfo, (HCA a, CA_FOLDER_INFO** b), a, b)
ZCMOD_STUB(g_caapi, CAGetFolderInfo2, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CAFreeFolderInfoStructure, (CA_FOLDER_INFO* a), a)
ZCMOD_STUB(g_caapi, CAGetIDList, (HCA a, DWORD b, DWORD c, CA_ID_LIST** d), a, b, c, d)
ZCMOD_STUB(g_caapi, CAGetIDList2, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_caapi, CAFreeIdListStructure, (CA_ID_LIST* a), a)
ZCMOD_STUB(g_caapi, CABeginOperation, (HCA a, DWORD b, HCAOPERATION* c), a, b, c)
ZCMOD_STUB(g_caapi, CAReadItem, (HCAOPERATION a, DWORD b, DWORD c, DWORD d, void* e), a, b, c, d, e)
ZCMOD_STUB(g_caapi, CAWriteItem, (Arg a, Arg b, Arg c, Arg d, Arg e), a, b, c, d, e)
ZCMOD_STUB(g_caapi, CADeleteItem, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CAWriteField, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_caapi, CADeleteField, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_caapi, CACommitOperations, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_caapi, CAEndOperation, (HCAOPERATION a), a)
ZCMOD_STUB(g_caapi, CAFreeItemData, (HCA a, DWORD b, void* c), a, b, c)
ZCMOD_STUB(g_caapi, CARegisterNotifyCallback, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CARegisterOperationCallback, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CARegisterNotifyIF, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CARegisterOperationNotifyIF, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CAFindBegin, (HCA a, DWORD b, const ContactItem* c, HCAFIND* d), a, b, c, d)
ZCMOD_STUB(g_caapi, CAFindNext, (HCAFIND a, DWORD b, ContactItem* c), a, b, c)
ZCMOD_STUB(g_caapi, CAFindEnd, (HCAFIND a), a)
ZCMOD_STUB(g_caapi, CAGetFolderPath, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CACreateFolder, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CADeleteFolder, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_caapi, CARenameFolder, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CAGetContentCapability, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_caapi, CAFreeContentCapability, (Arg a, Arg b, Arg c), a, b, c)
ZCMOD_STUB(g_caapi, CAChangeLogReadBegin, (Arg a, Arg b, Arg c, Arg d), a, b, c, d)
ZCMOD_STUB(g_caapi, CAChangeLogReadNext, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_caapi, CAChangeLogReadEnd, (Arg a, Arg b), a, b)
ZCMOD_STUB(g_caapi, CAFreeChangeLogItem, (Arg a, Arg b), a, b)

// clang-format on
#undef ZCMOD_STUB

}  // namespace zcmod::service
