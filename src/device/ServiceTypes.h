// Records, interfaces and codes of the connectivity service, as its libraries exchange them with their
// callers. The layouts are the interface: the static assertions at the end hold them to their sizes and
// offsets. Shared by the library's loaders and by the stand-in service.
#pragma once

#include <windows.h>

#include <cstddef>

#include "device/core/ContactFieldTypes.h"

// --- Handles ------------------------------------------------------------------------------------------------
// Opaque, pointer-sized. The service checks each one it is given: a stale or foreign handle gets an error.
struct LNKA_DM_HANDLE__;
struct LNKA_FS_HANDLE__;
struct CA_HANDLE__;
struct CA_FIND_HANDLE__;
struct CA_OPERATION_HANDLE__;
typedef LNKA_DM_HANDLE__* HLNKADM;
typedef LNKA_FS_HANDLE__* HLNKAFS;
typedef CA_HANDLE__* HCA;
typedef CA_FIND_HANDLE__* HCAFIND;
typedef CA_OPERATION_HANDLE__* HCAOPERATION;

// --- Result codes -------------------------------------------------------------------------------------------
// 0 is success. The loaders add 0x80100004, 0x80100100 and 0x80100101 of their own.
#define LNKA_OK 0x00000000L
#define LNKA_E_NOT_SUPPORTED static_cast<HRESULT>(0x80004001L)  // E_NOTIMPL: a function the service lacks
#define LNKA_E_INVALID_PARAMETER static_cast<HRESULT>(0x80070057L)
#define LNKA_E_INVALID_HANDLE static_cast<HRESULT>(0x80070006L)
#define LNKA_E_BUFFER_TOO_SMALL static_cast<HRESULT>(0x8007007AL)
#define LNKA_E_OUT_OF_MEMORY static_cast<HRESULT>(0x8007000EL)
#define LNKA_E_NOT_INITIALIZED static_cast<HRESULT>(0x80100002L)  // the interface's Initialize was not called
#define LNKA_E_CANCELLED static_cast<HRESULT>(0x80100020L)        // LNKACancel, or a notification refused
#define LNKA_E_DEVICE_NOT_CONNECTED static_cast<HRESULT>(0x80200006L)
#define LNKA_E_MEDIA_NOT_AVAILABLE static_cast<HRESULT>(0x80300001L)
#define LNKA_E_FILE_NOT_FOUND static_cast<HRESULT>(0x80400001L)
#define LNKA_E_FOLDER_NOT_FOUND static_cast<HRESULT>(0x80400002L)
#define LNKA_E_ALREADY_EXISTS static_cast<HRESULT>(0x80400003L)
#define LNKA_E_ACCESS_DENIED static_cast<HRESULT>(0x80400004L)
#define LNKA_E_INVALID_NAME static_cast<HRESULT>(0x80400006L)
#define LNKA_E_MEMORY_FULL static_cast<HRESULT>(0x80400007L)
#define LNKA_E_FOLDER_NOT_EMPTY static_cast<HRESULT>(0x80400008L)
#define LNKA_E_NO_MORE_ITEMS static_cast<HRESULT>(0x80500001L)  // a find, an enumeration has ended
#define CA_E_ITEM_NOT_FOUND static_cast<HRESULT>(0x80500002L)

// --- Versions -----------------------------------------------------------------------------------------------
#define DMAPI_VERSION_30 30
#define FSAPI_VERSION_30 30
#define CAAPI_VERSION_30 30
#define VCAPI_VERSION_10 10

// --- Registration states of the Register* calls ---------------------------------------------------------------
#define API_REGISTER 0x10
#define API_UNREGISTER 0x20

// --- Device management --------------------------------------------------------------------------------------
// Media of a connection; LNKAOpenFS and DAOpenCA take a mask of acceptable ones.
#define LNKA_MEDIA_USB 0x01
#define LNKA_MEDIA_BLUETOOTH 0x02
#define LNKA_MEDIA_IRDA 0x04
#define LNKA_MEDIA_SERIAL 0x08

// Device notifications, in the low 16 bits of the status word of a callback or of IDMAPIDeviceNotify.
#define DEVICE_LIST_UPDATED 0  // the list was refreshed (LNKARefreshDeviceList)
#define DEVICE_ADDED 1         // a device was attached
#define DEVICE_REMOVED 2       // a device was detached
#define DEVICE_UPDATED 4       // a device's data changed, e.g. its friendly name

// One connection of a device (32 bytes).
struct LNKA_CONNECTION_INFO {
    DWORD dwSize;             // 32
    DWORD dwMedia;            // one LNKA_MEDIA_ value
    DWORD dwDeviceID;         // the service's number for this connection
    DWORD dwState;            // 1: the device is trusted on this connection
    wchar_t* pstrDeviceName;  // connection name, e.g. "USB"
    wchar_t* pstrMediaText;   // media text, e.g. "USB cable"
};

// One device (48 bytes): the array that LNKAGetDevices fills. The caller owns the array; the service owns what
// it puts in it until LNKAFreeDeviceStructure.
struct LNKA_DEVICE {
    wchar_t* pstrSerialNumber;  // may be null
    wchar_t* pstrFriendlyName;
    wchar_t* pstrModel;
    wchar_t* pstrManufacturer;
    DWORD dwDeviceFlags;    // reserved, 0
    DWORD dwNumberOfItems;  // connections
    LNKA_CONNECTION_INFO* pItems;
};

// The callback of LNKARegisterNotifyCallback: a status word and the device's serial.
typedef HRESULT(CALLBACK* DMNOTIFYPROC)(DWORD dwStatus, const wchar_t* pstrSerialNumber);

// The interface of LNKARegisterDMNotifyIF. Called on a thread of the service.
class IDMAPIDeviceNotify {
public:
    virtual HRESULT STDMETHODCALLTYPE DeviceNotify(DWORD dwStatus, const wchar_t* pstrSerialNumber) = 0;

protected:
    ~IDMAPIDeviceNotify() = default;
};

// What LNKAGetDeviceInfo tells about a device (freed by LNKAFreeDeviceInfoStructure with the same type).
#define LNKA_DEVICE_INFO_CAPABILITIES 1  // the device's capability text (device/core/DeviceCapabilities.h)

struct LNKA_DEVICE_INFO {
    DWORD dwSize;      // sizeof(LNKA_DEVICE_INFO)
    DWORD dwInfoType;  // LNKA_DEVICE_INFO_
    wchar_t* pstrText;
};

// --- File system --------------------------------------------------------------------------------------------
// Directions of LNKACopyFile.
#define LNKA_COPY_FROM_DEVICE 0x12  // phone to computer: source is a phone folder, destination a local one
#define LNKA_COPY_TO_DEVICE 0x14    // computer to phone

// States of IFSAPINotify::FileProgress.
#define LNKA_PROGRESS_RUNNING 0x1000  // percent and bytes of the file so far
#define LNKA_PROGRESS_ABORTED 0x2000  // the transfer cannot go on (the device went away)

// The interface of LNKARegisterFSNotifyIF. FileProgress answers LNKA_E_CANCELLED to stop a transfer.
class IFSAPINotify {
public:
    virtual HRESULT STDMETHODCALLTYPE FileProgress(DWORD dwState, DWORD dwPercent, DWORD64 qwBytes) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeviceNotify(DWORD dwStatus, const wchar_t* pstrSerialNumber) = 0;

protected:
    ~IFSAPINotify() = default;
};

// The callback of LNKARegisterFSNotifyCallback: the same as FileProgress.
typedef HRESULT(CALLBACK* FSNOTIFYPROC)(DWORD dwState, DWORD dwPercent, DWORD64 qwBytes);

#define LNKA_FILE_ATTRIBUTE_READONLY 0x01
#define LNKA_FILE_ATTRIBUTE_FOLDER 0x10

// What LNKAFindNextFolder, LNKAFindNextFile and LNKAGetFileInfo give (freed by LNKAFreeFileInfoStructure).
struct LNKA_FILE_INFO {
    DWORD dwSize;        // sizeof(LNKA_FILE_INFO)
    DWORD dwAttributes;  // LNKA_FILE_ATTRIBUTE_
    FILETIME ftModified;
    DWORD64 qwFileSize;
    wchar_t* pstrName;
};

// What LNKAGetFolderInfo gives (freed by LNKAFreeFolderInfoStructure).
struct LNKA_FOLDER_INFO {
    DWORD dwSize;
    DWORD dwAttributes;
    DWORD dwFolders;  // sub-folders directly inside
    DWORD dwFiles;    // files directly inside
    wchar_t* pstrName;
    wchar_t* pstrPath;  // the folder's path on the phone, "\" first
};

struct LNKA_FIND__;
typedef LNKA_FIND__* HLNKAFIND;

// --- Content access -----------------------------------------------------------------------------------------
#define CA_TARGET_CONTACTS 1

// Formats of CAReadItem, CAFindNext, CAFreeItemData and the converter.
#define CA_DATA_FORMAT_STRUCT 1  // a CA_DATA_CONTACT (ContactItem)
#define CA_DATA_FORMAT_VERSIT 2  // a CA_DATA_VERSIT

// One field of a contact (24 bytes).
struct ContactField {
    DWORD dwSize;        // 24
    DWORD dwOptions;     // 0 when sent
    DWORD dwFieldClass;  // CA_FIELD_CLASS_
    DWORD dwFieldSubType;
    wchar_t* pstrValue;  // may be null in a returned field
};

// One contact (64 bytes), zeroed before each use. As a search condition: one count 1, its pointer at one field.
struct ContactItem {
    DWORD dwSize;  // 64
    BYTE bPersonalCount;
    ContactField* pPersonal;
    BYTE bNumberCount;
    ContactField* pNumbers;
    BYTE bAddressCount;
    ContactField* pAddresses;
    BYTE reserved[16];
};
typedef ContactItem CA_DATA_CONTACT;

// A versit object: a vCard's bytes.
struct CA_DATA_VERSIT {
    DWORD dwSize;  // 16
    DWORD dwDataLength;
    BYTE* pbVersitObject;
};

// The folders of a connection (CAGetFolderInfo, freed by CAFreeFolderInfoStructure).
struct CA_FOLDER_INFO {
    DWORD dwSize;
    DWORD dwFolderId;
    DWORD dwOptions;
    DWORD dwItemCount;
    wchar_t* pstrName;
    wchar_t* pstrPath;
    DWORD dwSubFolderCount;
    CA_FOLDER_INFO* pSubFolders;
};

// The items of a folder (CAGetIDList, freed by CAFreeIdListStructure).
struct CA_ID_LIST {
    DWORD dwSize;  // 16
    DWORD dwCount;
    DWORD* pdwIds;
};

static_assert(sizeof(LNKA_CONNECTION_INFO) == 32, "connection record");
static_assert(sizeof(LNKA_DEVICE) == 48, "device record");
static_assert(offsetof(LNKA_DEVICE, pstrSerialNumber) == 0, "the serial comes first");
static_assert(sizeof(ContactField) == 24 && offsetof(ContactField, pstrValue) == 16, "ContactField");
static_assert(sizeof(ContactItem) == 64, "ContactItem");
static_assert(offsetof(ContactItem, bPersonalCount) == 4 && offsetof(ContactItem, pPersonal) == 8, "ContactItem");
static_assert(offsetof(ContactItem, bNumberCount) == 16 && offsetof(ContactItem, pNumbers) == 24, "ContactItem");
static_assert(offsetof(ContactItem, bAddressCount) == 32 && offsetof(ContactItem, pAddresses) == 40, "ContactItem");
static_assert(sizeof(CA_DATA_VERSIT) == 16, "CA_DATA_VERSIT");
static_assert(sizeof(LNKA_DEVICE_INFO) == 16, "LNKA_DEVICE_INFO");
