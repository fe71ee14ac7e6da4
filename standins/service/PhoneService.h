// The stand-in connectivity service's shared part: the virtual phones on disk, the records it hands out, the
// device change signal between the controller and the service's watcher threads, handle tables and test hooks.
//
// Results: the codes of device/ServiceTypes.h. Every function that the library never calls returns
// LNKA_E_NOT_SUPPORTED, E_NOTIMPL (0x80004001), whatever its arguments.
//
// The phones root is HKCU "Software\ZCMOD Stand-ins\Service" value "PhonesRoot" (REG_SZ), or else the folder
// "phones" beside the stand-in's own file. It holds one folder per phone:
//
//   <root>\<phone>\phone.ini      UTF-8 "key=value" lines: serial, name (friendly name), model, manufacturer,
//                                 attached (1 or 0), media (usb, bluetooth, irda or serial), copydelay
//                                 (milliseconds slept per transferred block, to make a copy slow on purpose),
//                                 finddelay (milliseconds slept by each contact search, a slow phone)
//   <root>\<phone>\capabilities.txt  UTF-8, the phone's capability text (device/core/DeviceCapabilities.h);
//                                 a phone without one is a phone the suite doesn't know
//   <root>\<phone>\contacts.vcf   the phone's contacts, vCard 2.1 or 3.0
//   <root>\<phone>\files\         the phone's file system; a top folder with a one-letter name is a drive
//                                 ("files\C\Pictures" is "\C:\Pictures" on the phone)
//   <root>\.watchers\             one empty file per running watcher thread, named after its event
//
// Test hooks, read from the same key when an interface's Initialize or Terminate runs:
//   "InitializeResult" (REG_DWORD)  returned by every *_Initialize instead of 0
//   "TerminateDelay"   (REG_DWORD)  milliseconds that every *_Terminate waits before it returns
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/Contact.h"
#include "device/ServiceTypes.h"

// An export of a function that the library never calls: its arguments are pointer-sized, its answer
// LNKA_E_NOT_SUPPORTED.
#define STANDIN_NOT_SUPPORTED(name, ...)                              \
    extern "C" __declspec(dllexport) HRESULT WINAPI name(__VA_ARGS__) \
    {                                                                 \
        return LNKA_E_NOT_SUPPORTED;                                  \
    }
#define STANDIN_ARGS_1 UINT_PTR
#define STANDIN_ARGS_2 UINT_PTR, UINT_PTR
#define STANDIN_ARGS_3 UINT_PTR, UINT_PTR, UINT_PTR
#define STANDIN_ARGS_4 UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR
#define STANDIN_ARGS_5 UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR
#define STANDIN_ARGS_6 UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR, UINT_PTR

namespace zcmod_standin {

constexpr wchar_t kServiceKey[] = L"Software\\ZCMOD Stand-ins\\Service";

// --- Phones ---------------------------------------------------------------------------------------------------
struct PhoneInfo {
    std::wstring folder;  // full path of the phone's folder
    std::wstring id;      // the folder's name, by which the controller knows the phone
    std::wstring serial;
    std::wstring name;
    std::wstring model;
    std::wstring manufacturer;
    bool attached = false;
    DWORD media = LNKA_MEDIA_USB;
    DWORD copyDelay = 0;
    DWORD findDelay = 0;

    DWORD DeviceId() const;  // the service's number for the phone's connection, from its serial
};

// The phones root of the module that contains `anchor` (an address in it): the registry's, else beside it.
std::wstring PhonesRoot(const void* anchor);
std::vector<PhoneInfo> ListPhones(const std::wstring& root);  // sorted by folder name
bool ReadPhone(const std::wstring& folder, PhoneInfo& phone);
bool WritePhone(const PhoneInfo& phone);
// The phone with this serial (attached or not); false if none.
bool FindPhone(const std::wstring& root, const wchar_t* serial, PhoneInfo& phone);
std::vector<Contact> ReadContacts(const PhoneInfo& phone);
bool WriteContacts(const PhoneInfo& phone, const std::vector<Contact>& contacts, VCardVersion version);
// The capability text; false if the phone has none. An empty text removes the file.
bool ReadCapabilityText(const PhoneInfo& phone, std::wstring& text);
bool WriteCapabilityText(const PhoneInfo& phone, const std::wstring& text);
// What a phone of this manufacturer and model can do, as `new` gives it.
std::wstring DefaultCapabilityText(const PhoneInfo& phone);
const wchar_t* MediaName(DWORD media);
DWORD MediaFromName(const std::wstring& name);

// A phone path ("\C:\Pictures", "Pictures\2024", "\") as a folder under the phone's "files". False for a path
// that would leave it: "..", ".", a drive or a root inside, characters that no file name may hold.
bool PhonePathToLocal(const PhoneInfo& phone, const wchar_t* phonePath, std::wstring& local);
bool IsValidName(const wchar_t* name);
// Deletes a folder with all it holds; false if the folder itself remains.
bool DeleteFolderTree(const std::wstring& folder);

// --- Device change signal -------------------------------------------------------------------------------------
// Wakes every watcher registered under `root`, in any process.
void SignalDeviceChange(const std::wstring& root);

// A registration: an auto-reset event of this process, named in a file under <root>\.watchers.
class WatcherRegistration {
public:
    explicit WatcherRegistration(const std::wstring& root);
    ~WatcherRegistration();
    WatcherRegistration(const WatcherRegistration&) = delete;
    WatcherRegistration& operator=(const WatcherRegistration&) = delete;
    HANDLE Event() const { return m_event; }

private:
    HANDLE m_event = nullptr;
    std::wstring m_file;
};

// --- Records handed out ---------------------------------------------------------------------------------------
// Memory given to callers comes from the process heap and goes back through the service's free calls.
wchar_t* HeapString(const std::wstring& text);
void* HeapZeroed(size_t bytes);
void HeapRelease(void* memory);

// A contact into a ContactItem (arrays on the heap) and back; FreeContactItem leaves the item zeroed but for
// its size.
HRESULT FillContactItem(const Contact& contact, ContactItem* item);
void FreeContactItem(ContactItem* item);
bool ReadContactItem(const ContactItem* item, Contact& contact);

std::wstring ToWide(const std::u16string& text);
std::u16string ToU16(const wchar_t* text);

// --- Handle tables --------------------------------------------------------------------------------------------
// Handles are numbers, never pointers: a stale or foreign handle is refused, also after the library was
// unloaded and loaded again.
uintptr_t NewHandleValue();

template <class T>
class HandleTable {
public:
    template <class H>
    H Add(std::shared_ptr<T> object)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const uintptr_t value = NewHandleValue();
        m_objects[value] = std::move(object);
        return reinterpret_cast<H>(value);
    }
    template <class H>
    std::shared_ptr<T> Get(H handle)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_objects.find(reinterpret_cast<uintptr_t>(handle));
        return found == m_objects.end() ? nullptr : found->second;
    }
    template <class H>
    std::shared_ptr<T> Remove(H handle)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_objects.find(reinterpret_cast<uintptr_t>(handle));
        if (found == m_objects.end())
            return nullptr;
        std::shared_ptr<T> object = std::move(found->second);
        m_objects.erase(found);
        return object;
    }
    std::vector<std::shared_ptr<T>> All()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        std::vector<std::shared_ptr<T>> all;
        for (auto& entry : m_objects)
            all.push_back(entry.second);
        return all;
    }
    void Clear()
    {
        std::map<uintptr_t, std::shared_ptr<T>> gone;
        std::lock_guard<std::mutex> lock(m_mutex);
        gone.swap(m_objects);
    }

private:
    std::mutex m_mutex;
    std::map<uintptr_t, std::shared_ptr<T>> m_objects;
};

// --- Interface state and test hooks ---------------------------------------------------------------------------
// The start and end functions of one interface: a count of Initialize calls, and the test hooks above.
class InterfaceState {
public:
    explicit InterfaceState(DWORD version) : m_version(version) {}
    HRESULT Initialize(DWORD version);  // the count goes up unless a test hook makes it fail
    HRESULT Terminate();                // LNKA_E_NOT_INITIALIZED without a matching Initialize
    bool IsInitialized() const { return m_count > 0; }
    DWORD Version() const { return m_version; }

private:
    DWORD m_version;
    std::atomic<LONG> m_count{0};
};

DWORD ReadServiceDword(const wchar_t* name, DWORD fallback);

}  // namespace zcmod_standin
