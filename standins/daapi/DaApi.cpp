// Stand-in for DAAPI64.dll: content access (CAAPI) to the contacts of the virtual phones.
//
// A connection reads the phone's vCard file when it opens; its contacts have the ids 1, 2, ... in the file's
// order, in one folder (id 1, "Contacts"). Every call checks that the phone is still attached (at most every
// 50 milliseconds); once it is gone, calls on the connection fail with LNKA_E_DEVICE_NOT_CONNECTED. A slow
// phone ("finddelay" in its phone.ini, read when the connection opens) sleeps that long in each CAFindBegin.
#include <cstring>

#include "PhoneService.h"

#define CA_EXPORT extern "C" __declspec(dllexport) HRESULT WINAPI

using namespace zcmod_standin;

namespace {

InterfaceState g_ca(CAAPI_VERSION_30);

constexpr DWORD kContactsFolder = 1;
constexpr DWORD kAttachedCheckInterval = 50;

struct Connection {
    PhoneInfo phone;
    std::vector<Contact> contacts;
    std::mutex mutex;
    DWORD lastCheck = 0;
    bool gone = false;

    // False once the phone is detached.
    bool StillThere()
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (gone)
            return false;
        const DWORD now = GetTickCount();
        if (now - lastCheck < kAttachedCheckInterval && lastCheck)
            return true;
        lastCheck = now;
        PhoneInfo current;
        gone = !ReadPhone(phone.folder, current) || !current.attached || current.serial != phone.serial;
        return !gone;
    }
};

struct Operation {
    std::shared_ptr<Connection> connection;
};

struct Find {
    std::shared_ptr<Connection> connection;
    std::vector<size_t> matches;
    size_t next = 0;
};

HandleTable<Connection> g_connections;
HandleTable<Operation> g_operations;
HandleTable<Find> g_finds;

HRESULT CheckConnection(const std::shared_ptr<Connection>& connection)
{
    if (!g_ca.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    if (!connection)
        return LNKA_E_INVALID_HANDLE;
    return connection->StillThere() ? LNKA_OK : LNKA_E_DEVICE_NOT_CONNECTED;
}

HRESULT FillItem(const Contact& contact, DWORD format, void* data)
{
    if (format == CA_DATA_FORMAT_STRUCT) {
        auto* item = static_cast<ContactItem*>(data);
        if (item->dwSize != sizeof(ContactItem))
            return LNKA_E_INVALID_PARAMETER;
        return FillContactItem(contact, item);
    }
    if (format == CA_DATA_FORMAT_VERSIT) {
        auto* versit = static_cast<CA_DATA_VERSIT*>(data);
        if (versit->dwSize != sizeof(CA_DATA_VERSIT))
            return LNKA_E_INVALID_PARAMETER;
        const std::string text = WriteVCard(contact, VCardVersion::V21);
        versit->pbVersitObject = static_cast<BYTE*>(HeapZeroed(text.size()));
        if (!versit->pbVersitObject)
            return LNKA_E_OUT_OF_MEMORY;
        std::memcpy(versit->pbVersitObject, text.data(), text.size());
        versit->dwDataLength = static_cast<DWORD>(text.size());
        return LNKA_OK;
    }
    return LNKA_E_NOT_SUPPORTED;
}

// The condition of CAFindBegin: exactly one of the three counts is 1, its pointer at one field.
bool ReadCondition(const ContactItem* item, const ContactField*& field)
{
    if (!item || item->dwSize != sizeof(ContactItem))
        return false;
    const ContactField* candidates[3] = {item->pPersonal, item->pNumbers, item->pAddresses};
    const BYTE counts[3] = {item->bPersonalCount, item->bNumberCount, item->bAddressCount};
    field = nullptr;
    for (int i = 0; i < 3; ++i) {
        if (counts[i] == 0)
            continue;
        if (counts[i] != 1 || !candidates[i] || field)
            return false;
        field = candidates[i];
    }
    return field && field->dwSize == sizeof(ContactField) && field->pstrValue;
}

}  // namespace

CA_EXPORT CAAPI_Initialize(DWORD version, DWORD)
{
    return g_ca.Initialize(version);
}

CA_EXPORT CAAPI_Terminate(DWORD)
{
    const HRESULT result = g_ca.Terminate();
    if (!g_ca.IsInitialized()) {
        g_finds.Clear();
        g_operations.Clear();
        g_connections.Clear();
    }
    return result;
}

CA_EXPORT CAGetAPIVersion()
{
    return CAAPI_VERSION_30;
}

// `target` points at the content wanted: CA_TARGET_CONTACTS, the only one this service holds. `media` is a
// mask of acceptable media, 0 for any.
CA_EXPORT DAOpenCA(const wchar_t* serial, DWORD* target, DWORD media, HCA* ca)
{
    if (!g_ca.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    if (!serial || !target || !ca)
        return LNKA_E_INVALID_PARAMETER;
    if (*target != CA_TARGET_CONTACTS)
        return LNKA_E_NOT_SUPPORTED;
    auto connection = std::make_shared<Connection>();
    if (!FindPhone(PhonesRoot(reinterpret_cast<const void*>(&DAOpenCA)), serial, connection->phone) ||
        !connection->phone.attached)
        return LNKA_E_DEVICE_NOT_CONNECTED;
    if (media && !(media & connection->phone.media))
        return LNKA_E_MEDIA_NOT_AVAILABLE;
    connection->contacts = ReadContacts(connection->phone);
    connection->lastCheck = GetTickCount();
    *ca = g_connections.Add<HCA>(std::move(connection));
    return LNKA_OK;
}

CA_EXPORT DACloseCA(HCA ca)
{
    return g_connections.Remove(ca) ? LNKA_OK : LNKA_E_INVALID_HANDLE;
}

CA_EXPORT CAGetFolderInfo(HCA ca, CA_FOLDER_INFO** info)
{
    const auto connection = g_connections.Get(ca);
    if (const HRESULT status = CheckConnection(connection))
        return status;
    if (!info)
        return LNKA_E_INVALID_PARAMETER;
    auto* folder = static_cast<CA_FOLDER_INFO*>(HeapZeroed(sizeof(CA_FOLDER_INFO)));
    if (!folder)
        return LNKA_E_OUT_OF_MEMORY;
    folder->dwSize = sizeof(CA_FOLDER_INFO);
    folder->dwFolderId = kContactsFolder;
    folder->dwItemCount = static_cast<DWORD>(connection->contacts.size());
    folder->pstrName = HeapString(L"Contacts");
    folder->pstrPath = HeapString(L"\\");
    if (!folder->pstrName || !folder->pstrPath) {
        HeapRelease(folder->pstrName);
        HeapRelease(folder->pstrPath);
        HeapRelease(folder);
        return LNKA_E_OUT_OF_MEMORY;
    }
    *info = folder;
    return LNKA_OK;
}

CA_EXPORT CAFreeFolderInfoStructure(CA_FOLDER_INFO* info)
{
    if (!info)
        return LNKA_E_INVALID_PARAMETER;
    HeapRelease(info->pstrName);
    HeapRelease(info->pstrPath);
    HeapRelease(info);
    return LNKA_OK;
}

CA_EXPORT CAGetIDList(HCA ca, DWORD folderId, DWORD, CA_ID_LIST** list)
{
    const auto connection = g_connections.Get(ca);
    if (const HRESULT status = CheckConnection(connection))
        return status;
    if (!list)
        return LNKA_E_INVALID_PARAMETER;
    if (folderId != kContactsFolder)
        return LNKA_E_FOLDER_NOT_FOUND;
    auto* ids = static_cast<CA_ID_LIST*>(HeapZeroed(sizeof(CA_ID_LIST)));
    const size_t count = connection->contacts.size();
    DWORD* values = ids ? static_cast<DWORD*>(HeapZeroed(count * sizeof(DWORD))) : nullptr;
    if (!ids || !values) {
        HeapRelease(ids);
        return LNKA_E_OUT_OF_MEMORY;
    }
    for (size_t i = 0; i < count; ++i)
        values[i] = static_cast<DWORD>(i + 1);
    ids->dwSize = sizeof(CA_ID_LIST);
    ids->dwCount = static_cast<DWORD>(count);
    ids->pdwIds = values;
    *list = ids;
    return LNKA_OK;
}

CA_EXPORT CAFreeIdListStructure(CA_ID_LIST* list)
{
    if (!list)
        return LNKA_E_INVALID_PARAMETER;
    HeapRelease(list->pdwIds);
    HeapRelease(list);
    return LNKA_OK;
}

CA_EXPORT CABeginOperation(HCA ca, DWORD, HCAOPERATION* operation)
{
    const auto connection = g_connections.Get(ca);
    if (const HRESULT status = CheckConnection(connection))
        return status;
    if (!operation)
        return LNKA_E_INVALID_PARAMETER;
    *operation = g_operations.Add<HCAOPERATION>(std::make_shared<Operation>(Operation{connection}));
    return LNKA_OK;
}

// Reads the contact `id` as a ContactItem (CA_DATA_FORMAT_STRUCT) or as a vCard 2.1 (CA_DATA_FORMAT_VERSIT),
// freed by CAFreeItemData with the same format.
CA_EXPORT CAReadItem(HCAOPERATION operation, DWORD id, DWORD, DWORD format, void* data)
{
    if (!g_ca.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    const auto op = g_operations.Get(operation);
    if (!op)
        return LNKA_E_INVALID_HANDLE;
    if (const HRESULT status = CheckConnection(op->connection))
        return status;
    if (!data)
        return LNKA_E_INVALID_PARAMETER;
    if (id == 0 || id > op->connection->contacts.size())
        return CA_E_ITEM_NOT_FOUND;
    return FillItem(op->connection->contacts[id - 1], format, data);
}

CA_EXPORT CAEndOperation(HCAOPERATION operation)
{
    return g_operations.Remove(operation) ? LNKA_OK : LNKA_E_INVALID_HANDLE;
}

CA_EXPORT CAFreeItemData(HCA, DWORD format, void* data)
{
    if (!data)
        return LNKA_E_INVALID_PARAMETER;
    if (format == CA_DATA_FORMAT_STRUCT) {
        FreeContactItem(static_cast<ContactItem*>(data));
        return LNKA_OK;
    }
    if (format == CA_DATA_FORMAT_VERSIT) {
        auto* versit = static_cast<CA_DATA_VERSIT*>(data);
        HeapRelease(versit->pbVersitObject);
        versit->pbVersitObject = nullptr;
        versit->dwDataLength = 0;
        return LNKA_OK;
    }
    return LNKA_E_INVALID_PARAMETER;
}

// Begins a search by the condition in `condition`: one field whose class (0: any) and sub type (0: any) say
// which fields of a contact are compared with its value, a pattern in which '%' stands for any run of
// characters, compared ignoring case.
CA_EXPORT CAFindBegin(HCA ca, DWORD, const ContactItem* condition, HCAFIND* find)
{
    const auto connection = g_connections.Get(ca);
    if (const HRESULT status = CheckConnection(connection))
        return status;
    const ContactField* field = nullptr;
    if (!find || !ReadCondition(condition, field))
        return LNKA_E_INVALID_PARAMETER;
    if (connection->phone.findDelay)
        Sleep(connection->phone.findDelay);
    auto state = std::make_shared<Find>();
    state->connection = connection;
    const std::u16string pattern = ToU16(field->pstrValue);
    for (size_t i = 0; i < connection->contacts.size(); ++i)
        if (MatchesCondition(connection->contacts[i], field->dwFieldClass, field->dwFieldSubType, pattern))
            state->matches.push_back(i);
    *find = g_finds.Add<HCAFIND>(std::move(state));
    return LNKA_OK;
}

CA_EXPORT CAFindNext(HCAFIND find, DWORD format, ContactItem* item)
{
    if (!g_ca.IsInitialized())
        return LNKA_E_NOT_INITIALIZED;
    const auto state = g_finds.Get(find);
    if (!state)
        return LNKA_E_INVALID_HANDLE;
    if (const HRESULT status = CheckConnection(state->connection))
        return status;
    if (!item || format != CA_DATA_FORMAT_STRUCT)
        return LNKA_E_INVALID_PARAMETER;
    if (state->next >= state->matches.size())
        return LNKA_E_NO_MORE_ITEMS;
    return FillItem(state->connection->contacts[state->matches[state->next++]], format, item);
}

CA_EXPORT CAFindEnd(HCAFIND find)
{
    return g_finds.Remove(find) ? LNKA_OK : LNKA_E_INVALID_HANDLE;
}

STANDIN_NOT_SUPPORTED(CAGetFolderInfo2, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CAGetIDList2, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(CAWriteItem, STANDIN_ARGS_5)
STANDIN_NOT_SUPPORTED(CADeleteItem, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CAWriteField, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(CADeleteField, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(CACommitOperations, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(CARegisterNotifyCallback, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CARegisterOperationCallback, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CARegisterNotifyIF, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CARegisterOperationNotifyIF, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CAGetFolderPath, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CACreateFolder, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CADeleteFolder, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(CARenameFolder, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CAGetContentCapability, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(CAFreeContentCapability, STANDIN_ARGS_3)
STANDIN_NOT_SUPPORTED(CAChangeLogReadBegin, STANDIN_ARGS_4)
STANDIN_NOT_SUPPORTED(CAChangeLogReadNext, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(CAChangeLogReadEnd, STANDIN_ARGS_2)
STANDIN_NOT_SUPPORTED(CAFreeChangeLogItem, STANDIN_ARGS_2)
