// Stand-in for LinkAPI64.dll: device management (DMAPI) and file system (FSAPI) over the virtual phones.
//
// Device changes: a watcher thread, running while either interface is initialised, waits for the device
// change signal of the controller (PhoneService.h), compares the phones with what it saw before and tells the
// callbacks and interfaces registered in this process: DEVICE_ADDED, DEVICE_REMOVED, DEVICE_UPDATED (a new
// friendly name) and, after LNKARefreshDeviceList, DEVICE_LIST_UPDATED. They are called on the watcher thread.
#include <algorithm>
#include <cwchar>
#include <utility>

#include "PhoneService.h"

#define LNKA_EXPORT extern "C" __declspec(dllexport) HRESULT WINAPI

using namespace zcmod_standin;

namespace {

InterfaceState g_dm(DMAPI_VERSION_30);
InterfaceState g_fs(FSAPI_VERSION_30);

std::wstring Root()
{
    return PhonesRoot(reinterpret_cast<const void*>(&Root));
}

// --- Sessions -------------------------------------------------------------------------------------------------

struct DmSession {
    std::vector<DMNOTIFYPROC> callbacks;
    std::vector<IDMAPIDeviceNotify*> interfaces;
};

struct FsSession {
    PhoneInfo phone;
    std::vector<FSNOTIFYPROC> callbacks;
    std::vector<IFSAPINotify*> interfaces;
    std::atomic<bool> cancel{false};
};

struct FindState {
    std::vector<std::wstring> folders, files;
    std::wstring localFolder;
    size_t nextFolder = 0, nextFile = 0;
    std::shared_ptr<FsSession> session;
};

HandleTable<DmSession> g_dmSessions;
HandleTable<FsSession> g_fsSessions;
HandleTable<FindState> g_finds;

// Held while notifications are delivered and while registrations change, so that an interface removed from
// the lists is never called afterwards. Recursive: a callback may register or unregister on the watcher thread.
std::recursive_mutex g_dispatch;

template <class List, class Item>
HRESULT Register(List& list, DWORD state, Item item)
{
    std::lock_guard<std::recursive_mutex> lock(g_dispatch);
    const auto found = std::find(list.begin(), list.end(), item);
    if (state == API_REGISTER) {
        if (found == list.end())
            list.push_back(item);
        return LNKA_OK;
    }
    if (state == API_UNREGISTER && found != list.end()) {
        list.erase(found);
        return LNKA_OK;
    }
    return LNKA_E_INVALID_PARAMETER;
}

void Dispatch(DWORD status, const std::wstring& serial)
{
    std::lock_guard<std::recursive_mutex> lock(g_dispatch);
    for (const auto& session : g_dmSessions.All()) {
        const auto callbacks = session->callbacks;
        const auto interfaces = session->interfaces;
        for (DMNOTIFYPROC callback : callbacks)
            callback(status, serial.c_str());
        for (IDMAPIDeviceNotify* notify : interfaces)
            notify->DeviceNotify(status, serial.c_str());
    }
    if (status == DEVICE_LIST_UPDATED)
        return;
    for (const auto& session : g_fsSessions.All()) {
        if (session->phone.serial != serial)
            continue;
        const auto interfaces = session->interfaces;
        for (IFSAPINotify* notify : interfaces)
            notify->DeviceNotify(status, serial.c_str());
    }
}

// --- Watcher --------------------------------------------------------------------------------------------------

struct Seen {
    bool attached;
    std::wstring name;
};

std::map<std::wstring, Seen> Snapshot(const std::wstring& root)
{
    std::map<std::wstring, Seen> seen;
    for (const PhoneInfo& phone : ListPhones(root))
        seen[phone.serial] = Seen{phone.attached, phone.name};
    return seen;
}

struct Watcher {
    HANDLE thread = nullptr;
    HANDLE stop = nullptr;
    HANDLE wake = nullptr;  // the registration's event, also set by LNKARefreshDeviceList
    std::wstring root;
};

std::mutex g_watcherMutex;
Watcher g_watcher;
std::atomic<bool> g_refreshRequested{false};

DWORD WINAPI WatcherThread(void* parameter)
{
    // The thread holds a reference on this library and gives it back as it ends, so that a library freed
    // without its Terminate never runs this thread's code unmapped.
    HMODULE self = static_cast<HMODULE>(parameter);
    std::wstring root;
    HANDLE stop = nullptr;
    {
        std::lock_guard<std::mutex> lock(g_watcherMutex);
        root = g_watcher.root;
        stop = g_watcher.stop;
    }
    {
        WatcherRegistration registration(root);
        {
            std::lock_guard<std::mutex> lock(g_watcherMutex);
            g_watcher.wake = registration.Event();
        }
        std::map<std::wstring, Seen> before = Snapshot(root);
        const HANDLE events[2] = {stop, registration.Event()};
        while (registration.Event() && WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
            std::map<std::wstring, Seen> now = Snapshot(root);
            for (const auto& [serial, seen] : now) {
                const auto old = before.find(serial);
                const bool was = old != before.end() && old->second.attached;
                if (seen.attached && !was)
                    Dispatch(DEVICE_ADDED, serial);
                else if (!seen.attached && was)
                    Dispatch(DEVICE_REMOVED, serial);
                else if (seen.attached && old->second.name != seen.name)
                    Dispatch(DEVICE_UPDATED, serial);
            }
            for (const auto& [serial, seen] : before)
                if (seen.attached && now.find(serial) == now.end())
                    Dispatch(DEVICE_REMOVED, serial);
            if (g_refreshRequested.exchange(false))
                Dispatch(DEVICE_LIST_UPDATED, L"");
            before = std::move(now);
        }
        std::lock_guard<std::mutex> lock(g_watcherMutex);
        g_watcher.wake = nullptr;
    }
    FreeLibraryAndExitThread(self, 0);
}

void StartWatcher()
{
    std::lock_guard<std::mutex> lock(g_watcherMutex);
    if (g_watcher.thread)
        return;
    HMODULE self = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&WatcherThread), &self))
        return;
    g_watcher.root = Root();
    g_watcher.stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    g_watcher.thread = g_watcher.stop ? CreateThread(nullptr, 0, WatcherThread, self, 0, nullptr) : nullptr;
    if (!g_watcher.thread) {
        if (g_watcher.stop)
            CloseHandle(g_watcher.stop);
        g_watcher.stop = nullptr;
        FreeLibrary(self);
    }
}

void StopWatcherIfIdle()
{
    HANDLE thread = nullptr, stop = nullptr;
    {
        std::lock_guard<std::mutex> lock(g_watcherMutex);
        if (g_dm.IsInitialized() || g_fs.IsInitialized() || !g_watcher.thread)
            return;
        thread = std::exchange(g_watcher.thread, nullptr);
        stop = std::exchange(g_watcher.stop, nullptr);
    }
    SetEvent(stop);
    // Not from the watcher itself, which may end the service from a callback.
    if (GetThreadId(thread) != GetCurrentThreadId())
        WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    CloseHandle(stop);
}

// --- Records --------------------------------------------------------------------------------------------------

const wchar_t* MediaText(DWORD media)
{
    switch (media) {
        case LNKA_MEDIA_BLUETOOTH:
            return L"Bluetooth";
        case LNKA_MEDIA_IRDA:
            return L"Infrared";
        case LNKA_MEDIA_SERIAL:
            return L"Serial cable";
        default:
            return L"USB cable";
    }
}

void FreeDevice(LNKA_DEVICE& device)
{
    HeapRelease(device.pstrSerialNumber);
    HeapRelease(device.pstrFriendlyName);
    HeapRelease(device.pstrModel);
    HeapRelease(device.pstrManufacturer);
    if (device.pItems) {
        for (DWORD i = 0; i < device.dwNumberOfItems; ++i) {
            HeapRelease(device.pItems[i].pstrDeviceName);
            HeapRelease(device.pItems[i].pstrMediaText);
        }
        HeapRelease(device.pItems);
    }
    device = LNKA_DEVICE();
}

HRESULT FillDevice(const PhoneInfo& phone, LNKA_DEVICE& device)
{
    device = LNKA_DEVICE();
    device.pstrSerialNumber = HeapString(phone.serial);
    device.pstrFriendlyName = HeapString(phone.name);
    device.pstrModel = HeapString(phone.model);
    device.pstrManufacturer = HeapString(phone.manufacturer);
    device.pItems = static_cast<LNKA_CONNECTION_INFO*>(HeapZeroed(sizeof(LNKA_CONNECTION_INFO)));
    if (device.pItems) {
        device.dwNumberOfItems = 1;
        LNKA_CONNECTION_INFO& item = device.pItems[0];
        item.dwSize = sizeof(LNKA_CONNECTION_INFO);
        item.dwMedia = phone.media;
        item.dwDeviceID = phone.DeviceId();
        item.dwState = 1;
        std::wstring name = MediaName(phone.media);
        std::transform(name.begin(), name.end(), name.begin(), ::towupper);
        item.pstrDeviceName = HeapString(name);
        item.pstrMediaText = HeapString(MediaText(phone.media));
    }
    if (!device.pstrSerialNumber || !device.pstrFriendlyName || !device.pstrModel || !device.pstrManufacturer ||
        !device.pItems || !device.pItems[0].pstrDeviceName || !device.pItems[0].pstrMediaText) {
        FreeDevice(device);
        return LNKA_E_OUT_OF_MEMORY;
    }
    return LNKA_OK;
}

std::vector<PhoneInfo> AttachedPhones()
{
    std::vector<PhoneInfo> phones = ListPhones(Root());
    phones.erase(std::remove_if(phones.begin(), phones.end(), [](const PhoneInfo& p) { return !p.attached; }),
                 phones.end());
    return phones;
}

// --- File system helpers ----------------------------------------------------------------------------------------

// The session's phone, read again: a detached phone ends every operation.
HRESULT CheckFs(HLNKAFS fs, std::shared_ptr<FsSession>& session)
{
    if (!g_fs.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    session = g_fsSessions.Get(fs);
    if (!session)
        return LNKA_E_INVALID_HANDLE;
    PhoneInfo now;
    if (!ReadPhone(session->phone.folder, now) || !now.attached || now.serial != session->phone.serial)
        return LNKA_E_DEVICE_NOT_CONNECTED;
    return LNKA_OK;
}

bool IsFolder(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsFile(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// A folder on the phone and a name in it, as a local path. The folder must exist.
HRESULT PhoneItem(const FsSession& session, const wchar_t* folder, const wchar_t* name, std::wstring& local)
{
    std::wstring parent;
    if (!PhonePathToLocal(session.phone, folder ? folder : L"\\", parent))
        return LNKA_E_INVALID_NAME;
    if (!IsFolder(parent))
        return LNKA_E_FOLDER_NOT_FOUND;
    if (!name) {
        local = parent;
        return LNKA_OK;
    }
    if (!IsValidName(name))
        return LNKA_E_INVALID_NAME;
    local = parent + L"\\" + name;
    return LNKA_OK;
}

LNKA_FILE_INFO* MakeFileInfo(const std::wstring& local, const std::wstring& shownName)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(local.c_str(), GetFileExInfoStandard, &data))
        return nullptr;
    auto* info = static_cast<LNKA_FILE_INFO*>(HeapZeroed(sizeof(LNKA_FILE_INFO)));
    if (!info)
        return nullptr;
    info->dwSize = sizeof(LNKA_FILE_INFO);
    info->dwAttributes = ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? LNKA_FILE_ATTRIBUTE_FOLDER : 0) |
                         ((data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) ? LNKA_FILE_ATTRIBUTE_READONLY : 0);
    info->ftModified = data.ftLastWriteTime;
    info->qwFileSize = (static_cast<DWORD64>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
    info->pstrName = HeapString(shownName);
    if (!info->pstrName) {
        HeapRelease(info);
        return nullptr;
    }
    return info;
}

// Tells the session's listeners how far a transfer is; true if one of them refused (stop the transfer).
bool Progress(FsSession& session, DWORD state, DWORD percent, DWORD64 bytes)
{
    std::vector<FSNOTIFYPROC> callbacks;
    std::vector<IFSAPINotify*> interfaces;
    {
        std::lock_guard<std::recursive_mutex> lock(g_dispatch);
        callbacks = session.callbacks;
        interfaces = session.interfaces;
    }
    bool refused = false;
    for (FSNOTIFYPROC callback : callbacks)
        refused = callback(state, percent, bytes) == LNKA_E_CANCELLED || refused;
    for (IFSAPINotify* notify : interfaces)
        refused = notify->FileProgress(state, percent, bytes) == LNKA_E_CANCELLED || refused;
    return refused;
}

HRESULT CopyWithProgress(FsSession& session, const std::wstring& source, const std::wstring& destination)
{
    HANDLE in = CreateFileW(source.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
    if (in == INVALID_HANDLE_VALUE)
        return LNKA_E_FILE_NOT_FOUND;
    const DWORD destinationAttributes = GetFileAttributesW(destination.c_str());
    if (destinationAttributes != INVALID_FILE_ATTRIBUTES && (destinationAttributes & FILE_ATTRIBUTE_READONLY)) {
        CloseHandle(in);
        return LNKA_E_ACCESS_DENIED;
    }
    // Written beside the target and renamed over it at the end: a failed transfer leaves the old file.
    const std::wstring partial = destination + L".partial";
    HANDLE out = CreateFileW(partial.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (out == INVALID_HANDLE_VALUE) {
        CloseHandle(in);
        return LNKA_E_ACCESS_DENIED;
    }
    LARGE_INTEGER size = {};
    GetFileSizeEx(in, &size);
    const DWORD64 total = static_cast<DWORD64>(size.QuadPart);
    const DWORD block = static_cast<DWORD>(std::min<DWORD64>(65536, std::max<DWORD64>(4096, total / 20)));
    std::vector<char> buffer(block);
    DWORD64 done = 0;
    HRESULT result = LNKA_OK;
    session.cancel = false;
    for (;;) {
        if (session.cancel.exchange(false)) {
            result = LNKA_E_CANCELLED;
            break;
        }
        PhoneInfo now;
        if (!ReadPhone(session.phone.folder, now) || !now.attached) {
            Progress(session, LNKA_PROGRESS_ABORTED, total ? static_cast<DWORD>(done * 100 / total) : 0, done);
            result = LNKA_E_DEVICE_NOT_CONNECTED;
            break;
        }
        if (now.copyDelay)
            Sleep(now.copyDelay);
        DWORD got = 0;
        if (!ReadFile(in, buffer.data(), block, &got, nullptr)) {
            result = LNKA_E_ACCESS_DENIED;
            break;
        }
        DWORD written = 0;
        if (got && (!WriteFile(out, buffer.data(), got, &written, nullptr) || written != got)) {
            result = LNKA_E_MEMORY_FULL;
            break;
        }
        done += got;
        const bool end = got < block || done >= total;
        const DWORD percent = total ? static_cast<DWORD>(done * 100 / total) : 100;
        if (Progress(session, LNKA_PROGRESS_RUNNING, end ? 100 : percent, done)) {
            result = LNKA_E_CANCELLED;
            break;
        }
        if (end)
            break;
    }
    CloseHandle(in);
    CloseHandle(out);
    if (result == LNKA_OK && !MoveFileExW(partial.c_str(), destination.c_str(), MOVEFILE_REPLACE_EXISTING))
        result = LNKA_E_ACCESS_DENIED;
    if (result != LNKA_OK)
        DeleteFileW(partial.c_str());
    return result;
}

}  // namespace

// --- Device management ----------------------------------------------------------------------------------------

LNKA_EXPORT DMAPI_Initialize(DWORD version, DWORD)
{
    const HRESULT result = g_dm.Initialize(version);
    if (result == LNKA_OK)
        StartWatcher();
    return result;
}

LNKA_EXPORT DMAPI_Terminate(DWORD)
{
    const HRESULT result = g_dm.Terminate();
    if (!g_dm.IsInitialized()) {
        std::lock_guard<std::recursive_mutex> lock(g_dispatch);
        g_dmSessions.Clear();
    }
    StopWatcherIfIdle();
    return result;
}

LNKA_EXPORT DMAPI_GetAPIVersion()
{
    return DMAPI_VERSION_30;
}

LNKA_EXPORT LNKAOpenDM(HLNKADM* dm)
{
    if (!g_dm.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    if (!dm)
        return LNKA_E_INVALID_PARAMETER;
    *dm = g_dmSessions.Add<HLNKADM>(std::make_shared<DmSession>());
    return LNKA_OK;
}

LNKA_EXPORT LNKACloseDM(HLNKADM dm)
{
    std::lock_guard<std::recursive_mutex> lock(g_dispatch);
    return g_dmSessions.Remove(dm) ? LNKA_OK : LNKA_E_INVALID_HANDLE;
}

LNKA_EXPORT LNKAGetDeviceCount(HLNKADM dm, DWORD* count)
{
    if (!g_dmSessions.Get(dm))
        return LNKA_E_INVALID_HANDLE;
    if (!count)
        return LNKA_E_INVALID_PARAMETER;
    *count = static_cast<DWORD>(AttachedPhones().size());
    return LNKA_OK;
}

// `*count` entries are there; the service fills as many as there are devices and says how many. Too few
// entries: nothing is filled and `*count` says how many are needed.
LNKA_EXPORT LNKAGetDevices(HLNKADM dm, DWORD* count, LNKA_DEVICE* devices)
{
    if (!g_dmSessions.Get(dm))
        return LNKA_E_INVALID_HANDLE;
    if (!count || (*count && !devices))
        return LNKA_E_INVALID_PARAMETER;
    const std::vector<PhoneInfo> phones = AttachedPhones();
    if (*count < phones.size()) {
        *count = static_cast<DWORD>(phones.size());
        return LNKA_E_BUFFER_TOO_SMALL;
    }
    for (size_t i = 0; i < phones.size(); ++i) {
        if (FillDevice(phones[i], devices[i]) != LNKA_OK) {
            for (size_t k = 0; k < i; ++k)
                FreeDevice(devices[k]);
            return LNKA_E_OUT_OF_MEMORY;
        }
    }
    *count = static_cast<DWORD>(phones.size());
    return LNKA_OK;
}

LNKA_EXPORT LNKAGetDevice(HLNKADM dm, const wchar_t* serial, LNKA_DEVICE* device)
{
    if (!g_dmSessions.Get(dm))
        return LNKA_E_INVALID_HANDLE;
    if (!serial || !device)
        return LNKA_E_INVALID_PARAMETER;
    PhoneInfo phone;
    if (!FindPhone(Root(), serial, phone) || !phone.attached)
        return LNKA_E_DEVICE_NOT_CONNECTED;
    return FillDevice(phone, *device);
}

LNKA_EXPORT LNKAFreeDeviceStructure(DWORD count, LNKA_DEVICE* devices)
{
    if (count && !devices)
        return LNKA_E_INVALID_PARAMETER;
    for (DWORD i = 0; i < count; ++i)
        FreeDevice(devices[i]);
    return LNKA_OK;
}

LNKA_EXPORT LNKARefreshDeviceList(HLNKADM dm, DWORD)
{
    if (!g_dmSessions.Get(dm))
        return LNKA_E_INVALID_HANDLE;
    std::lock_guard<std::mutex> lock(g_watcherMutex);
    g_refreshRequested = true;
    if (g_watcher.wake)
        SetEvent(g_watcher.wake);
    return LNKA_OK;
}

LNKA_EXPORT LNKARenameFriendlyName(HLNKADM dm, const wchar_t* serial, const wchar_t* name)
{
    if (!g_dmSessions.Get(dm))
        return LNKA_E_INVALID_HANDLE;
    if (!serial || !name || !*name || std::wcslen(name) > 255 || std::wcspbrk(name, L"\r\n"))
        return LNKA_E_INVALID_PARAMETER;
    const std::wstring root = Root();
    PhoneInfo phone;
    if (!FindPhone(root, serial, phone) || !phone.attached)
        return LNKA_E_DEVICE_NOT_CONNECTED;
    phone.name = name;
    if (!WritePhone(phone))
        return LNKA_E_ACCESS_DENIED;
    SignalDeviceChange(root);
    return LNKA_OK;
}

LNKA_EXPORT LNKARegisterNotifyCallback(HLNKADM dm, DWORD state, DMNOTIFYPROC callback)
{
    const auto session = g_dmSessions.Get(dm);
    if (!session)
        return LNKA_E_INVALID_HANDLE;
    return callback ? Register(session->callbacks, state, callback) : LNKA_E_INVALID_PARAMETER;
}

LNKA_EXPORT LNKARegisterDMNotifyIF(HLNKADM dm, DWORD state, IDMAPIDeviceNotify* notify)
{
    const auto session = g_dmSessions.Get(dm);
    if (!session)
        return LNKA_E_INVALID_HANDLE;
    return notify ? Register(session->interfaces, state, notify) : LNKA_E_INVALID_PARAMETER;
}

// LNKA_DEVICE_INFO_CAPABILITIES: the phone's capability text. A phone without one: LNKA_E_NOT_SUPPORTED.
LNKA_EXPORT LNKAGetDeviceInfo(HLNKADM dm, const wchar_t* serial, DWORD infoType, LNKA_DEVICE_INFO** info)
{
    if (!g_dmSessions.Get(dm))
        return LNKA_E_INVALID_HANDLE;
    if (!serial || !info)
        return LNKA_E_INVALID_PARAMETER;
    if (infoType != LNKA_DEVICE_INFO_CAPABILITIES)
        return LNKA_E_NOT_SUPPORTED;
    PhoneInfo phone;
    if (!FindPhone(Root(), serial, phone) || !phone.attached)
        return LNKA_E_DEVICE_NOT_CONNECTED;
    std::wstring text;
    if (!ReadCapabilityText(phone, text))
        return LNKA_E_NOT_SUPPORTED;
    auto* result = static_cast<LNKA_DEVICE_INFO*>(HeapZeroed(sizeof(LNKA_DEVICE_INFO)));
    if (!result)
        return LNKA_E_OUT_OF_MEMORY;
    result->dwSize = sizeof(LNKA_DEVICE_INFO);
    result->dwInfoType = infoType;
    result->pstrText = HeapString(text);
    if (!result->pstrText) {
        HeapRelease(result);
        return LNKA_E_OUT_OF_MEMORY;
    }
    *info = result;
    return LNKA_OK;
}

LNKA_EXPORT LNKAFreeDeviceInfoStructure(DWORD infoType, LNKA_DEVICE_INFO* info)
{
    if (!info || infoType != LNKA_DEVICE_INFO_CAPABILITIES || info->dwSize != sizeof(LNKA_DEVICE_INFO))
        return LNKA_E_INVALID_PARAMETER;
    HeapRelease(info->pstrText);
    HeapRelease(info);
    return LNKA_OK;
}

STANDIN_NOT_SUPPORTED(LNKASetDeviceListOption, HLNKADM, DWORD, DWORD)
STANDIN_NOT_SUPPORTED(LNKASearchDevices, STANDIN_ARGS_6)
STANDIN_NOT_SUPPORTED(LNKAFreeConnectionInfoStructures, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(LNKAChangeDeviceTrustedState, STANDIN_ARGS_5)
STANDIN_NOT_SUPPORTED(LNKAModemConfig, STANDIN_ARGS_6)
STANDIN_NOT_SUPPORTED(LNKAFreeModemConfigData, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(LNKAGetDeviceServiceInfo, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(LNKAFreeDeviceServiceInfoStructure, STANDIN_ARGS_1)
STANDIN_NOT_SUPPORTED(LNKAInstallDeviceService, STANDIN_ARGS_5)

// --- File system ----------------------------------------------------------------------------------------------

LNKA_EXPORT FSAPI_Initialize(DWORD version, DWORD)
{
    const HRESULT result = g_fs.Initialize(version);
    if (result == LNKA_OK)
        StartWatcher();
    return result;
}

LNKA_EXPORT FSAPI_Terminate(DWORD)
{
    const HRESULT result = g_fs.Terminate();
    if (!g_fs.IsInitialized()) {
        std::lock_guard<std::recursive_mutex> lock(g_dispatch);
        g_fsSessions.Clear();
        g_finds.Clear();
    }
    StopWatcherIfIdle();
    return result;
}

LNKA_EXPORT FSAPI_GetAPIVersion()
{
    return FSAPI_VERSION_30;
}

// `media`, if given and not 0, is a mask of the acceptable media; it receives the one used.
LNKA_EXPORT LNKAOpenFS(const wchar_t* serial, DWORD* media, HLNKAFS* fs, DWORD* deviceId)
{
    if (!g_fs.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    if (!serial || !fs)
        return LNKA_E_INVALID_PARAMETER;
    auto session = std::make_shared<FsSession>();
    if (!FindPhone(Root(), serial, session->phone) || !session->phone.attached)
        return LNKA_E_DEVICE_NOT_CONNECTED;
    if (media && *media && !(*media & session->phone.media))
        return LNKA_E_MEDIA_NOT_AVAILABLE;
    CreateDirectoryW((session->phone.folder + L"\\files").c_str(), nullptr);
    if (media)
        *media = session->phone.media;
    if (deviceId)
        *deviceId = session->phone.DeviceId();
    *fs = g_fsSessions.Add<HLNKAFS>(std::move(session));
    return LNKA_OK;
}

LNKA_EXPORT LNKACloseFS(HLNKAFS fs)
{
    std::lock_guard<std::recursive_mutex> lock(g_dispatch);
    return g_fsSessions.Remove(fs) ? LNKA_OK : LNKA_E_INVALID_HANDLE;
}

LNKA_EXPORT LNKARegisterFSNotifyCallback(HLNKAFS fs, DWORD state, FSNOTIFYPROC callback)
{
    const auto session = g_fsSessions.Get(fs);
    if (!session)
        return LNKA_E_INVALID_HANDLE;
    return callback ? Register(session->callbacks, state, callback) : LNKA_E_INVALID_PARAMETER;
}

LNKA_EXPORT LNKARegisterFSNotifyIF(HLNKAFS fs, DWORD state, IFSAPINotify* notify)
{
    const auto session = g_fsSessions.Get(fs);
    if (!session)
        return LNKA_E_INVALID_HANDLE;
    return notify ? Register(session->interfaces, state, notify) : LNKA_E_INVALID_PARAMETER;
}

LNKA_EXPORT LNKARefreshDeviceMemoryValues(HLNKAFS fs)
{
    std::shared_ptr<FsSession> session;
    return CheckFs(fs, session);
}

// Lists a phone folder. At the top, one-letter folders are the phone's drives and are shown as "C:".
LNKA_EXPORT LNKAFindBegin(HLNKAFS fs, const wchar_t* folder, DWORD, HLNKAFIND* find)
{
    std::shared_ptr<FsSession> session;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!find)
        return LNKA_E_INVALID_PARAMETER;
    auto state = std::make_shared<FindState>();
    if (const HRESULT status = PhoneItem(*session, folder, nullptr, state->localFolder))
        return status;
    const bool top = state->localFolder == session->phone.folder + L"\\files";
    WIN32_FIND_DATAW data;
    HANDLE handle = FindFirstFileW((state->localFolder + L"\\*").c_str(), &data);
    if (handle != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring name = data.cFileName;
            if (name == L"." || name == L".." || (name.size() > 8 && name.substr(name.size() - 8) == L".partial"))
                continue;
            if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
                state->folders.push_back(name);
            else
                state->files.push_back(name);
        } while (FindNextFileW(handle, &data));
        FindClose(handle);
    }
    std::sort(state->folders.begin(), state->folders.end());
    std::sort(state->files.begin(), state->files.end());
    if (top)
        for (std::wstring& name : state->folders)
            if (name.size() == 1)
                name += L":";
    state->session = session;
    *find = g_finds.Add<HLNKAFIND>(std::move(state));
    return LNKA_OK;
}

namespace {

HRESULT FindNext(HLNKAFIND find, LNKA_FILE_INFO** info, bool folders)
{
    if (!g_fs.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    const auto state = g_finds.Get(find);
    if (!state)
        return LNKA_E_INVALID_HANDLE;
    if (!info)
        return LNKA_E_INVALID_PARAMETER;
    *info = nullptr;
    std::vector<std::wstring>& names = folders ? state->folders : state->files;
    size_t& next = folders ? state->nextFolder : state->nextFile;
    while (next < names.size()) {
        std::wstring local = names[next];
        if (!local.empty() && local.back() == L':')
            local.pop_back();
        *info = MakeFileInfo(state->localFolder + L"\\" + local, names[next]);
        ++next;
        if (*info)
            return LNKA_OK;  // an entry removed since the find began is passed over
    }
    return LNKA_E_NO_MORE_ITEMS;
}

}  // namespace

LNKA_EXPORT LNKAFindNextFolder(HLNKAFIND find, LNKA_FILE_INFO** info)
{
    return FindNext(find, info, true);
}
LNKA_EXPORT LNKAFindNextFile(HLNKAFIND find, LNKA_FILE_INFO** info)
{
    return FindNext(find, info, false);
}

LNKA_EXPORT LNKAFindEnd(HLNKAFIND find)
{
    return g_finds.Remove(find) ? LNKA_OK : LNKA_E_INVALID_HANDLE;
}

LNKA_EXPORT LNKACreateFolder(HLNKAFS fs, const wchar_t* parent, const wchar_t* name)
{
    std::shared_ptr<FsSession> session;
    std::wstring local;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!name)
        return LNKA_E_INVALID_PARAMETER;
    if (const HRESULT status = PhoneItem(*session, parent, name, local))
        return status;
    if (GetFileAttributesW(local.c_str()) != INVALID_FILE_ATTRIBUTES)
        return LNKA_E_ALREADY_EXISTS;
    return CreateDirectoryW(local.c_str(), nullptr) ? LNKA_OK : LNKA_E_ACCESS_DENIED;
}

// Options bit 0: delete what the folder holds too.
LNKA_EXPORT LNKADeleteFolder(HLNKAFS fs, const wchar_t* parent, const wchar_t* name, DWORD options)
{
    std::shared_ptr<FsSession> session;
    std::wstring local;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!name)
        return LNKA_E_INVALID_PARAMETER;
    if (const HRESULT status = PhoneItem(*session, parent, name, local))
        return status;
    if (!IsFolder(local))
        return LNKA_E_FOLDER_NOT_FOUND;
    if (options & 1)
        return DeleteFolderTree(local) ? LNKA_OK : LNKA_E_ACCESS_DENIED;
    return RemoveDirectoryW(local.c_str()) ? LNKA_OK : LNKA_E_FOLDER_NOT_EMPTY;
}

namespace {

HRESULT Rename(HLNKAFS fs, const wchar_t* parent, const wchar_t* name, const wchar_t* newName, bool folder)
{
    std::shared_ptr<FsSession> session;
    std::wstring from, to;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!name || !newName)
        return LNKA_E_INVALID_PARAMETER;
    if (const HRESULT status = PhoneItem(*session, parent, name, from))
        return status;
    if (const HRESULT status = PhoneItem(*session, parent, newName, to))
        return status;
    if (folder ? !IsFolder(from) : !IsFile(from))
        return folder ? LNKA_E_FOLDER_NOT_FOUND : LNKA_E_FILE_NOT_FOUND;
    if (GetFileAttributesW(to.c_str()) != INVALID_FILE_ATTRIBUTES)
        return LNKA_E_ALREADY_EXISTS;
    return MoveFileW(from.c_str(), to.c_str()) ? LNKA_OK : LNKA_E_ACCESS_DENIED;
}

}  // namespace

LNKA_EXPORT LNKARenameFolder(HLNKAFS fs, const wchar_t* parent, const wchar_t* name, const wchar_t* newName)
{
    return Rename(fs, parent, name, newName, true);
}

LNKA_EXPORT LNKARenameFile(HLNKAFS fs, const wchar_t* folder, const wchar_t* name, const wchar_t* newName)
{
    return Rename(fs, folder, name, newName, false);
}

// The folder `name` in `parent`, or `parent` itself when `name` is null.
LNKA_EXPORT LNKAGetFolderInfo(HLNKAFS fs, const wchar_t* parent, const wchar_t* name, DWORD, LNKA_FOLDER_INFO** info,
                              UINT_PTR)
{
    std::shared_ptr<FsSession> session;
    std::wstring local;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!info)
        return LNKA_E_INVALID_PARAMETER;
    *info = nullptr;
    if (const HRESULT status = PhoneItem(*session, parent, name, local))
        return status;
    if (!IsFolder(local))
        return LNKA_E_FOLDER_NOT_FOUND;
    auto* result = static_cast<LNKA_FOLDER_INFO*>(HeapZeroed(sizeof(LNKA_FOLDER_INFO)));
    if (!result)
        return LNKA_E_OUT_OF_MEMORY;
    result->dwSize = sizeof(LNKA_FOLDER_INFO);
    result->dwAttributes = LNKA_FILE_ATTRIBUTE_FOLDER;
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((local + L"\\*").c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            if (std::wcscmp(data.cFileName, L".") && std::wcscmp(data.cFileName, L".."))
                ++((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? result->dwFolders : result->dwFiles);
        } while (FindNextFileW(find, &data));
        FindClose(find);
    }
    const std::wstring base = session->phone.folder + L"\\files";
    std::wstring path = local.substr(base.size());
    if (path.empty())
        path = L"\\";
    else if (path.size() >= 2 && (path.size() == 2 || path[2] == L'\\'))
        path.insert(2, L":");
    result->pstrPath = HeapString(path);
    result->pstrName = HeapString(name ? name : path.substr(path.find_last_of(L'\\') + 1));
    if (!result->pstrPath || !result->pstrName) {
        HeapRelease(result->pstrPath);
        HeapRelease(result->pstrName);
        HeapRelease(result);
        return LNKA_E_OUT_OF_MEMORY;
    }
    *info = result;
    return LNKA_OK;
}

LNKA_EXPORT LNKAGetFileInfo(HLNKAFS fs, const wchar_t* folder, const wchar_t* name, LNKA_FILE_INFO** info)
{
    std::shared_ptr<FsSession> session;
    std::wstring local;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!name || !info)
        return LNKA_E_INVALID_PARAMETER;
    *info = nullptr;
    if (const HRESULT status = PhoneItem(*session, folder, name, local))
        return status;
    if (!IsFile(local))
        return LNKA_E_FILE_NOT_FOUND;
    *info = MakeFileInfo(local, name);
    return *info ? LNKA_OK : LNKA_E_OUT_OF_MEMORY;
}

LNKA_EXPORT LNKADeleteFile(HLNKAFS fs, const wchar_t* folder, const wchar_t* name)
{
    std::shared_ptr<FsSession> session;
    std::wstring local;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!name)
        return LNKA_E_INVALID_PARAMETER;
    if (const HRESULT status = PhoneItem(*session, folder, name, local))
        return status;
    const DWORD attributes = GetFileAttributesW(local.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY))
        return LNKA_E_FILE_NOT_FOUND;
    if (attributes & FILE_ATTRIBUTE_READONLY)
        return LNKA_E_ACCESS_DENIED;
    return DeleteFileW(local.c_str()) ? LNKA_OK : LNKA_E_ACCESS_DENIED;
}

// Copies `file` between a phone folder and a folder of the computer, replacing a file of that name. The
// listeners hear the progress; LNKACancel or a listener answering LNKA_E_CANCELLED stops it, and so does the
// phone going away. A stopped copy leaves the target as it was.
LNKA_EXPORT LNKACopyFile(HLNKAFS fs, DWORD direction, const wchar_t* file, const wchar_t* source,
                         const wchar_t* destination)
{
    std::shared_ptr<FsSession> session;
    if (const HRESULT status = CheckFs(fs, session))
        return status;
    if (!file || !source || !destination)
        return LNKA_E_INVALID_PARAMETER;
    if (!IsValidName(file))
        return LNKA_E_INVALID_NAME;
    std::wstring from, to;
    if (direction == LNKA_COPY_FROM_DEVICE) {
        if (const HRESULT status = PhoneItem(*session, source, file, from))
            return status;
        if (!IsFolder(destination))
            return LNKA_E_FOLDER_NOT_FOUND;
        to = std::wstring(destination) + L"\\" + file;
    } else if (direction == LNKA_COPY_TO_DEVICE) {
        if (!IsFolder(source))
            return LNKA_E_FOLDER_NOT_FOUND;
        from = std::wstring(source) + L"\\" + file;
        if (const HRESULT status = PhoneItem(*session, destination, file, to))
            return status;
    } else {
        return LNKA_E_INVALID_PARAMETER;
    }
    if (!IsFile(from))
        return LNKA_E_FILE_NOT_FOUND;
    return CopyWithProgress(*session, from, to);
}

LNKA_EXPORT LNKACancel(HLNKAFS fs)
{
    const auto session = g_fsSessions.Get(fs);
    if (!session)
        return LNKA_E_INVALID_HANDLE;
    session->cancel = true;
    return LNKA_OK;
}

LNKA_EXPORT LNKAFreeFileInfoStructure(LNKA_FILE_INFO* info)
{
    if (!info)
        return LNKA_E_INVALID_PARAMETER;
    HeapRelease(info->pstrName);
    HeapRelease(info);
    return LNKA_OK;
}

LNKA_EXPORT LNKAFreeFolderInfoStructure(LNKA_FOLDER_INFO* info)
{
    if (!info)
        return LNKA_E_INVALID_PARAMETER;
    HeapRelease(info->pstrName);
    HeapRelease(info->pstrPath);
    HeapRelease(info);
    return LNKA_OK;
}

STANDIN_NOT_SUPPORTED(LNKAGetMemoryTypes, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(LNKAGetMemoryValues, STANDIN_ARGS_5)
STANDIN_NOT_SUPPORTED(LNKASetCurrentFolder, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(LNKAGetCurrentFolder, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(LNKAMoveFolder, STANDIN_ARGS_5)
STANDIN_NOT_SUPPORTED(LNKACopyFolder, STANDIN_ARGS_5)
STANDIN_NOT_SUPPORTED(LNKAGetFileMetadata, STANDIN_ARGS_6)
STANDIN_NOT_SUPPORTED(LNKAMoveFile, STANDIN_ARGS_5)
STANDIN_NOT_SUPPORTED(LNKAReadFile, STANDIN_ARGS_5)
STANDIN_NOT_SUPPORTED(LNKAWriteFile, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(LNKAReadFileInBlocks, STANDIN_ARGS_6)
STANDIN_NOT_SUPPORTED(LNKAWriteFileInBlocks, STANDIN_ARGS_6)
STANDIN_NOT_SUPPORTED(LNKAFreeFolderContentStructure, STANDIN_ARGS_1)
STANDIN_NOT_SUPPORTED(LNKAAllocFileDataMemory, STANDIN_ARGS_1)
STANDIN_NOT_SUPPORTED(LNKAFreeFileDataMemory, STANDIN_ARGS_1)
STANDIN_NOT_SUPPORTED(LNKAFreeFileMetadataStructure, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(LNKAInstallApplication, STANDIN_ARGS_6)
STANDIN_NOT_SUPPORTED(LNKAListApplications, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(LNKAUninstallApplication, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(LNKAFreeApplicationInfoStructures, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(LNKAConvertFile, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(LNKAGetConvertFileTypes, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(LNKAFreeConvertFileTypes, STANDIN_ARGS_2)
