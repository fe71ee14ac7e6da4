// The recipient picker: a filter box over a list of the phones' contacts, with OK and Cancel.
#include "recipient/RecipientPicker.h"

#include <commctrl.h>

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_set>

#include "device/ConnectivityApi.h"
#include "device/core/ContactFieldTypes.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/SearchEngineControl.h"

using namespace zcmod::service;

namespace {

// Posted to the open dialog when a phone came or went.
constexpr UINT kDevicesChanged = WM_APP + 7;

bool IsEmail(DWORD subType)
{
    return subType == CA_ADDRESS_EMAIL || subType == CA_ADDRESS_EMAIL_HOME || subType == CA_ADDRESS_EMAIL_WORK;
}

// The ids of a folder and of the folders below it.
void CollectIds(HCA ca, const CA_FOLDER_INFO& folder, int depth, std::vector<DWORD>& ids)
{
    CA_ID_LIST* list = nullptr;
    if (CAGetIDList(ca, folder.dwFolderId, 0, &list) == S_OK && list) {
        for (DWORD i = 0; list->pdwIds && i < list->dwCount; ++i)
            ids.push_back(list->pdwIds[i]);
        CAFreeIdListStructure(list);
    }
    // A hostile folder tree ends here rather than on the stack.
    for (DWORD i = 0; depth < 8 && folder.pSubFolders && i < folder.dwSubFolderCount; ++i)
        CollectIds(ca, folder.pSubFolders[i], depth + 1, ids);
}

}  // namespace

CSeRecipentDlg::CSeRecipentDlg()
    : CDkhDialog(IDD_ZCMOD_RECIPIENTS), m_lAddressFilter(3), m_hDeviceManager(nullptr), m_hNotifyTarget(nullptr)
{
    DMAPI_Initialize(kDmapiVersion, 0);
    CAAPI_Initialize(kCaapiVersion, 0);
    VCAPI_Initialize(kVcapiVersion, 0);
}

CSeRecipentDlg::~CSeRecipentDlg()
{
    OnDestroy();  // a dialog that never opened, or whose window went without WM_DESTROY
    VCAPI_Terminate(0);
    CAAPI_Terminate(0);
    DMAPI_Terminate(0);
}

bool CSeRecipentDlg::ReadPhone(const wchar_t* serial, long addressFilter, std::vector<std::wstring>& lines)
{
    DWORD target = CA_TARGET_CONTACTS;
    HCA ca = nullptr;
    if (!serial || DAOpenCA(serial, &target, 0, &ca) != S_OK || !ca)
        return false;
    CA_FOLDER_INFO* folder = nullptr;
    std::vector<DWORD> ids;
    if (CAGetFolderInfo(ca, &folder) == S_OK && folder) {
        CollectIds(ca, *folder, 0, ids);
        CAFreeFolderInfoStructure(folder);
    }
    HCAOPERATION operation = nullptr;
    if (!ids.empty() && CABeginOperation(ca, 0, &operation) == S_OK && operation) {
        for (DWORD id : ids) {
            CA_DATA_VERSIT versit = {sizeof(CA_DATA_VERSIT), 0, nullptr};
            if (CAReadItem(operation, id, 0, CA_DATA_FORMAT_VERSIT, &versit) != S_OK)
                continue;
            ContactItem item = {};
            item.dwSize = sizeof(ContactItem);
            if (ConvertFromVersit(&versit, CA_DATA_FORMAT_STRUCT, &item) == S_OK) {
                const std::wstring name = CSearchEngineControl::BuildContactName(&item);
                for (BYTE i = 0; (addressFilter & 1) && item.pAddresses && i < item.bAddressCount; ++i)
                    if (IsEmail(item.pAddresses[i].dwFieldSubType) && item.pAddresses[i].pstrValue)
                        lines.push_back(CSearchEngineControl::CreateContactString(name, item.pAddresses[i].pstrValue));
                for (BYTE i = 0; (addressFilter & 2) && item.pNumbers && i < item.bNumberCount; ++i)
                    if (item.pNumbers[i].pstrValue)
                        lines.push_back(CSearchEngineControl::CreateContactString(name, item.pNumbers[i].pstrValue));
                FreeConverterData(CA_DATA_FORMAT_STRUCT, &item);
            }
            CAFreeItemData(ca, CA_DATA_FORMAT_VERSIT, &versit);
        }
        CAEndOperation(operation);
    }
    DACloseCA(ca);
    return true;
}

void CSeRecipentDlg::ReadContacts()
{
    m_all.clear();
    HLNKADM dm = static_cast<HLNKADM>(m_hDeviceManager);
    DWORD count = 0;
    if (!dm || LNKAGetDeviceCount(dm, &count) != S_OK || count == 0)
        return;
    std::unique_ptr<LNKA_DEVICE[]> devices(new (std::nothrow) LNKA_DEVICE[count]());
    DWORD got = count;
    if (!devices || LNKAGetDevices(dm, &got, devices.get()) != S_OK)
        return;
    got = std::min(got, count);
    std::vector<std::wstring> lines;
    for (DWORD d = 0; d < got; ++d)
        ReadPhone(devices[d].pstrSerialNumber, m_lAddressFilter, lines);
    LNKAFreeDeviceStructure(got, devices.get());
    // One line per contact string, in the order of the search results.
    std::unordered_set<std::wstring> seen;
    for (std::wstring& line : lines)
        if (seen.insert(line).second)
            m_all.push_back(std::move(line));
    std::sort(m_all.begin(), m_all.end(), [](const std::wstring& a, const std::wstring& b) {
        return CSearchEngineControl::WstrCompare(a, b) == 1;
    });
}

HRESULT STDMETHODCALLTYPE CSeRecipentDlg::DeviceNotify(DWORD status, const wchar_t*)
{
    const DWORD what = status & 0xFFFF;
    if (what == DEVICE_ADDED || what == DEVICE_REMOVED || what == DEVICE_LIST_UPDATED)
        if (HWND target = m_hNotifyTarget.load())
            PostMessageW(target, kDevicesChanged, 0, 0);
    return S_OK;
}

void CSeRecipentDlg::OnDestroy()
{
    m_hNotifyTarget = nullptr;
    if (m_hDeviceManager) {
        HLNKADM dm = static_cast<HLNKADM>(m_hDeviceManager);
        LNKARegisterDMNotifyIF(dm, API_UNREGISTER, this);
        LNKACloseDM(dm);
        m_hDeviceManager = nullptr;
    }
    CDkhDialog::OnDestroy();
}

std::vector<std::wstring> CSeRecipentDlg::Filter(const std::vector<std::wstring>& all, const std::wstring& filter)
{
    if (filter.empty())
        return all;
    std::vector<std::wstring> shown;
    for (const std::wstring& contact : all) {
        std::wstring name, address;
        CSearchEngineControl::GetNameAndAddress(contact, name, address);
        bool match = CSearchEngineControl::IsSearchedName(filter, address) != 0;
        for (size_t word = 0; !match && word < name.size(); word = name.find(L' ', word)) {
            while (word < name.size() && name[word] == L' ')
                ++word;
            match = word < name.size() && CSearchEngineControl::IsSearchedName(filter, name.substr(word));
        }
        if (match)
            shown.push_back(contact);
    }
    return shown;
}

INT_PTR CSeRecipentDlg::OnInitDialog()
{
    CDkhDialog::OnInitDialog();
    HWND list = GetDlgItem(m_hWnd, IDC_ZCMOD_RECIPIENTS_LIST);
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_CHECKBOXES);
    RECT r;
    GetClientRect(list, &r);
    LVCOLUMNW column = {};
    column.mask = LVCF_WIDTH;
    column.cx = r.right - r.left - GetSystemMetrics(SM_CXVSCROLL);
    ListView_InsertColumn(list, 0, &column);
    HLNKADM dm = nullptr;
    if (LNKAOpenDM(&dm) == S_OK && dm) {
        m_hDeviceManager = dm;
        m_hNotifyTarget = m_hWnd;
        LNKARegisterDMNotifyIF(dm, API_REGISTER, this);
    }
    ReadContacts();
    // What the row already holds starts out chosen. Each recipient ends at its ';': a contact's "Name <address>"
    // in ">; ", any other recipient in "; ".
    size_t from = 0;
    while (from < m_strText.size()) {
        size_t cut = m_strText.find(L';', from);
        if (cut == std::wstring::npos)
            cut = m_strText.size();
        std::wstring piece = m_strText.substr(from, cut - from);
        CSearchEngineControl::TrimBlanks(piece);
        if (!piece.empty())
            m_chosen.push_back(piece);
        from = cut + 1;
    }
    Refill();
    CenterDialog();
    SetFocus(GetDlgItem(m_hWnd, IDC_ZCMOD_RECIPIENTS_FILTER));
    return 0;
}

void CSeRecipentDlg::Refill()
{
    HWND list = GetDlgItem(m_hWnd, IDC_ZCMOD_RECIPIENTS_LIST);
    wchar_t filter[256] = {};
    GetDlgItemTextW(m_hWnd, IDC_ZCMOD_RECIPIENTS_FILTER, filter, 256);
    std::wstring text = filter;
    CSearchEngineControl::TrimBlanks(text);
    m_shown = Filter(m_all, text);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(list);
    for (size_t i = 0; i < m_shown.size(); ++i) {
        LVITEMW item = {};
        item.mask = LVIF_TEXT;
        item.iItem = static_cast<int>(i);
        item.pszText = const_cast<wchar_t*>(m_shown[i].c_str());
        ListView_InsertItem(list, &item);
        if (std::find(m_chosen.begin(), m_chosen.end(), m_shown[i]) != m_chosen.end())
            ListView_SetCheckState(list, static_cast<int>(i), TRUE);
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

INT_PTR CSeRecipentDlg::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kDevicesChanged) {
        // Several notifications may come for one change: one read answers them all.
        MSG pending;
        while (PeekMessageW(&pending, m_hWnd, kDevicesChanged, kDevicesChanged, PM_REMOVE)) {
        }
        ReadContacts();
        Refill();
        return 1;
    }
    if (message == WM_COMMAND && LOWORD(wParam) == IDC_ZCMOD_RECIPIENTS_FILTER && HIWORD(wParam) == EN_CHANGE) {
        Refill();
        return 1;
    }
    if (message == WM_NOTIFY) {
        const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header->idFrom == IDC_ZCMOD_RECIPIENTS_LIST && header->code == LVN_ITEMCHANGED) {
            const NMLISTVIEW* change = reinterpret_cast<const NMLISTVIEW*>(lParam);
            if (change->iItem >= 0 && static_cast<size_t>(change->iItem) < m_shown.size() &&
                (change->uChanged & LVIF_STATE) && ((change->uNewState ^ change->uOldState) & LVIS_STATEIMAGEMASK)) {
                const std::wstring& contact = m_shown[static_cast<size_t>(change->iItem)];
                const bool checked = ((change->uNewState & LVIS_STATEIMAGEMASK) >> 12) == 2;
                auto at = std::find(m_chosen.begin(), m_chosen.end(), contact);
                if (checked && at == m_chosen.end())
                    m_chosen.push_back(contact);
                else if (!checked && at != m_chosen.end())
                    m_chosen.erase(at);
            }
            return 1;
        }
        if (header->idFrom == IDC_ZCMOD_RECIPIENTS_LIST && header->code == NM_DBLCLK) {
            const int item = reinterpret_cast<const NMITEMACTIVATE*>(lParam)->iItem;
            if (item >= 0) {
                ListView_SetCheckState(header->hwndFrom, item, TRUE);
                OnOK();
            }
            return 1;
        }
    }
    return CDkhDialog::DialogProc(message, wParam, lParam);
}

void CSeRecipentDlg::OnOK()
{
    // The chosen contacts replace the row's text: those it held and kept, then the new ones, each "Name
    // <address>" closed by "; " (so ">; "), as the box itself finishes a recipient.
    std::wstring text;
    for (const std::wstring& contact : m_chosen)
        text += contact + L"; ";
    m_strText = text;
    CDkhDialog::OnOK();
}
