// The recipient picker: a filter box over a list of the phones' contacts, with OK and Cancel.
#include "recipient/RecipientPicker.h"

#include <commctrl.h>

#include <algorithm>
#include <string>

#include "zcmod/ResourceIds.h"
#include "zcmod/SearchEngineControl.h"

CSeRecipentDlg::CSeRecipentDlg() : CDkhDialog(IDD_ZCMOD_RECIPIENTS), m_lAddressFilter(3) {}

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
    const long filter = CSearchEngineControl::m_lAddressFilter;
    CSearchEngineControl::m_lAddressFilter = m_lAddressFilter;
    CSearchEngineControl::ListContacts(m_all);
    CSearchEngineControl::m_lAddressFilter = filter;
    // What the row already holds starts out chosen.
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
    // The chosen contacts replace the row's text: those it held and kept, then the new ones.
    std::wstring text;
    for (const std::wstring& contact : m_chosen)
        text += (text.empty() ? L"" : L"; ") + contact;
    m_strText = text.empty() ? text : text + L"; ";
    CDkhDialog::OnOK();
}
