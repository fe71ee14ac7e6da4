// The library's binding to the four interfaces of the connectivity service: device management (DMAPI), file
// system (FSAPI), versit conversion (VCAPI) and content access (CAAPI). Each is a function library loaded at
// run time, on demand, from the path under HKLM "SOFTWARE\\Desk Link Service\\API\\" or by its default name;
// nothing links to it. Each interface follows the service through two machine-wide events: an unload event
// suspends it, a load event brings it back.
//
// The functions below are the library's internal interface, not exported from zcmod.dll. They carry the
// service's own names, with C++ linkage, in namespace zcmod::service. Each service function has a stub with
// its argument count; the stub returns the function's result, 0x80100004 while no library is loaded, or
// 0x80100101 when the library lacks the function. Arguments of functions the library never calls are
// pointer-sized integers.
#pragma once

#include <windows.h>

#include "device/ServiceTypes.h"

namespace zcmod::service {

// Results of the loaders; all other codes are the service's own.
constexpr HRESULT kNotInitialised = static_cast<HRESULT>(0x80100004L);
constexpr HRESULT kLibraryNotFound = static_cast<HRESULT>(0x80100100L);
constexpr HRESULT kFunctionNotFound = static_cast<HRESULT>(0x80100101L);

// The registry key of the four paths and of "Options" (bit 0 set: the interfaces don't follow the service).
constexpr char kApiKey[] = "SOFTWARE\\Desk Link Service\\API\\";

// The service's machine-wide events.
constexpr char kUnloadEventName[] = "Global\\9D14093C-8B2C-49aa-A328-35C1BDB2BC15";
constexpr char kLoadEventName[] = "Global\\8427ACED-9495-4cb7-A13D-B98012DF6654";

// Versions the library passes.
constexpr DWORD kDmapiVersion = 30;
constexpr DWORD kFsapiVersion = 30;
constexpr DWORD kVcapiVersion = 10;
constexpr DWORD kCaapiVersion = 30;

using Arg = UINT_PTR;

// --- Device management: "DMAPI64", default "LinkAPI64.dll" ---------------------------------------------------
HRESULT DMAPI_Initialize(DWORD version, DWORD reserved);
HRESULT DMAPI_Terminate(DWORD reserved);
HRESULT DMAPI_GetAPIVersion();

HRESULT LNKAOpenDM(HLNKADM* dm);
HRESULT LNKACloseDM(HLNKADM dm);
HRESULT LNKASetDeviceListOption(HLNKADM dm, DWORD option, DWORD value);
HRESULT LNKAGetDeviceCount(HLNKADM dm, DWORD* count);
HRESULT LNKAGetDevices(HLNKADM dm, DWORD* count, LNKA_DEVICE* devices);
HRESULT LNKAGetDevice(HLNKADM dm, const wchar_t* serial, LNKA_DEVICE* device);
HRESULT LNKAFreeDeviceStructure(DWORD count, LNKA_DEVICE* devices);
HRESULT LNKARefreshDeviceList(HLNKADM dm, DWORD flags);
HRESULT LNKARenameFriendlyName(HLNKADM dm, const wchar_t* serial, const wchar_t* name);
HRESULT LNKARegisterNotifyCallback(HLNKADM dm, DWORD state, DMNOTIFYPROC callback);
HRESULT LNKARegisterDMNotifyIF(HLNKADM dm, DWORD state, IDMAPIDeviceNotify* notify);
HRESULT LNKASearchDevices(Arg, Arg, Arg, Arg, Arg, Arg);
HRESULT LNKAFreeConnectionInfoStructures(Arg, Arg);
HRESULT LNKAChangeDeviceTrustedState(Arg, Arg, Arg, Arg, Arg);
HRESULT LNKAGetDeviceInfo(Arg, Arg, Arg, Arg);
HRESULT LNKAFreeDeviceInfoStructure(Arg, Arg);
HRESULT LNKAModemConfig(Arg, Arg, Arg, Arg, Arg, Arg);
HRESULT LNKAFreeModemConfigData(Arg, Arg);
HRESULT LNKAGetDeviceServiceInfo(Arg, Arg, Arg, Arg);
HRESULT LNKAFreeDeviceServiceInfoStructure(Arg);
HRESULT LNKAInstallDeviceService(Arg, Arg, Arg, Arg, Arg);

// --- File system: "FSAPI64", default "LinkAPI64.dll" ---------------------------------------------------------
HRESULT FSAPI_Initialize(DWORD version, DWORD reserved);
HRESULT FSAPI_Terminate(DWORD reserved);
HRESULT FSAPI_GetAPIVersion();

HRESULT LNKAOpenFS(const wchar_t* serial, DWORD* media, HLNKAFS* fs, DWORD* deviceId);
HRESULT LNKACloseFS(HLNKAFS fs);
HRESULT LNKARegisterFSNotifyCallback(HLNKAFS fs, DWORD state, FSNOTIFYPROC callback);
HRESULT LNKARegisterFSNotifyIF(HLNKAFS fs, DWORD state, IFSAPINotify* notify);
HRESULT LNKARefreshDeviceMemoryValues(HLNKAFS fs);
HRESULT LNKAGetMemoryTypes(Arg, Arg);
HRESULT LNKAGetMemoryValues(Arg, Arg, Arg, Arg, Arg);
HRESULT LNKASetCurrentFolder(Arg, Arg);
HRESULT LNKAGetCurrentFolder(Arg, Arg);
HRESULT LNKAFindBegin(HLNKAFS fs, const wchar_t* folder, DWORD options, HLNKAFIND* find);
HRESULT LNKAFindNextFolder(HLNKAFIND find, LNKA_FILE_INFO** info);
HRESULT LNKAFindNextFile(HLNKAFIND find, LNKA_FILE_INFO** info);
HRESULT LNKAFindEnd(HLNKAFIND find);
HRESULT LNKACreateFolder(HLNKAFS fs, const wchar_t* parent, const wchar_t* name);
HRESULT LNKADeleteFolder(HLNKAFS fs, const wchar_t* parent, const wchar_t* name, DWORD options);
HRESULT LNKARenameFolder(HLNKAFS fs, const wchar_t* parent, const wchar_t* name, const wchar_t* newName);
HRESULT LNKAGetFolderInfo(HLNKAFS fs, const wchar_t* parent, const wchar_t* name, DWORD options,
                          LNKA_FOLDER_INFO** info, Arg reserved);
HRESULT LNKAMoveFolder(Arg, Arg, Arg, Arg, Arg);
HRESULT LNKACopyFolder(Arg, Arg, Arg, Arg, Arg);
HRESULT LNKAGetFileInfo(HLNKAFS fs, const wchar_t* folder, const wchar_t* name, LNKA_FILE_INFO** info);
HRESULT LNKAGetFileMetadata(Arg, Arg, Arg, Arg, Arg, Arg);
HRESULT LNKADeleteFile(HLNKAFS fs, const wchar_t* folder, const wchar_t* name);
HRESULT LNKAMoveFile(Arg, Arg, Arg, Arg, Arg);
HRESULT LNKACopyFile(HLNKAFS fs, DWORD direction, const wchar_t* file, const wchar_t* source,
                     const wchar_t* destination);
HRESULT LNKARenameFile(HLNKAFS fs, const wchar_t* folder, const wchar_t* name, const wchar_t* newName);
HRESULT LNKAReadFile(Arg, Arg, Arg, Arg, Arg);
HRESULT LNKAWriteFile(Arg, Arg, Arg, Arg);
HRESULT LNKAReadFileInBlocks(Arg, Arg, Arg, Arg, Arg, Arg);
HRESULT LNKAWriteFileInBlocks(Arg, Arg, Arg, Arg, Arg, Arg);
HRESULT LNKACancel(HLNKAFS fs);
HRESULT LNKAFreeFileInfoStructure(LNKA_FILE_INFO* info);
HRESULT LNKAFreeFolderInfoStructure(LNKA_FOLDER_INFO* info);
HRESULT LNKAFreeFolderContentStructure(Arg);
HRESULT LNKAAllocFileDataMemory(Arg);
HRESULT LNKAFreeFileDataMemory(Arg);
HRESULT LNKAFreeFileMetadataStructure(Arg, Arg);
HRESULT LNKAInstallApplication(Arg, Arg, Arg, Arg, Arg, Arg);
HRESULT LNKAListApplications(Arg, Arg, Arg, Arg);
HRESULT LNKAUninstallApplication(Arg, Arg, Arg, Arg);
HRESULT LNKAFreeApplicationInfoStructures(Arg, Arg);
HRESULT LNKAConvertFile(Arg, Arg, Arg, Arg);
HRESULT LNKAGetConvertFileTypes(Arg, Arg, Arg);
HRESULT LNKAFreeConvertFileTypes(Arg, Arg);

// --- Versit conversion: "VCAPI64", default "VersitConverter64.dll" ------------------------------------------
HRESULT VCAPI_Initialize(DWORD version, DWORD reserved);
HRESULT VCAPI_Terminate(DWORD reserved);
HRESULT VCAPI_GetAPIVersion();

HRESULT ConvertToVersit(DWORD format, const void* data, CA_DATA_VERSIT* versit);
HRESULT ConvertFromVersit(const CA_DATA_VERSIT* versit, DWORD format, void* data);
HRESULT FreeConverterData(DWORD format, void* data);
HRESULT FreeVersitData(CA_DATA_VERSIT* versit);
HRESULT ValidateVersitData(const CA_DATA_VERSIT* versit, DWORD* format);
HRESULT ConvertToVersit2(Arg, Arg, Arg, Arg, Arg, Arg);

// --- Content access: "CAAPI64", default "DAAPI64.dll" ------------------------------------------------------
HRESULT CAAPI_Initialize(DWORD version, DWORD reserved);
HRESULT CAAPI_Terminate(DWORD reserved);
HRESULT CAGetAPIVersion();

HRESULT DAOpenCA(const wchar_t* serial, DWORD* target, DWORD media, HCA* ca);
HRESULT DACloseCA(HCA ca);
HRESULT CAGetFolderInfo(HCA ca, CA_FOLDER_INFO** info);
HRESULT CAGetFolderInfo2(Arg, Arg, Arg);
HRESULT CAFreeFolderInfoStructure(CA_FOLDER_INFO* info);
HRESULT CAGetIDList(HCA ca, DWORD folderId, DWORD options, CA_ID_LIST** list);
HRESULT CAGetIDList2(Arg, Arg, Arg, Arg);
HRESULT CAFreeIdListStructure(CA_ID_LIST* list);
HRESULT CABeginOperation(HCA ca, DWORD options, HCAOPERATION* operation);
HRESULT CAReadItem(HCAOPERATION operation, DWORD id, DWORD options, DWORD format, void* data);
HRESULT CAWriteItem(Arg, Arg, Arg, Arg, Arg);
HRESULT CADeleteItem(Arg, Arg, Arg);
HRESULT CAWriteField(Arg, Arg, Arg, Arg);
HRESULT CADeleteField(Arg, Arg, Arg, Arg);
HRESULT CACommitOperations(Arg, Arg);
HRESULT CAEndOperation(HCAOPERATION operation);
HRESULT CAFreeItemData(HCA ca, DWORD format, void* data);
HRESULT CARegisterNotifyCallback(Arg, Arg, Arg);
HRESULT CARegisterOperationCallback(Arg, Arg, Arg);
HRESULT CARegisterNotifyIF(Arg, Arg, Arg);
HRESULT CARegisterOperationNotifyIF(Arg, Arg, Arg);
HRESULT CAFindBegin(HCA ca, DWORD options, const ContactItem* condition, HCAFIND* find);
HRESULT CAFindNext(HCAFIND find, DWORD format, ContactItem* item);
HRESULT CAFindEnd(HCAFIND find);
HRESULT CAGetFolderPath(Arg, Arg, Arg);
HRESULT CACreateFolder(Arg, Arg, Arg);
HRESULT CADeleteFolder(Arg, Arg);
HRESULT CARenameFolder(Arg, Arg, Arg);
HRESULT CAGetContentCapability(Arg, Arg, Arg, Arg);
HRESULT CAFreeContentCapability(Arg, Arg, Arg);
HRESULT CAChangeLogReadBegin(Arg, Arg, Arg, Arg);
HRESULT CAChangeLogReadNext(Arg, Arg);
HRESULT CAChangeLogReadEnd(Arg, Arg);
HRESULT CAFreeChangeLogItem(Arg, Arg);

}  // namespace zcmod::service
