// CSeRecipentDlg: the recipient picker of the recipient box's buttons. It lists the contacts of the connected
// phones that the contact search finds for the text in its filter box (every contact while the filter is
// empty), and gives back the ones the user selects as a recipient text.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "zcmod/DkhDialog.h"

class CSeRecipentDlg : public CDkhDialog {
public:
    CSeRecipentDlg();

    // The row's text, without direction marks; recipients in it that the list shows start out selected.
    void SetText(const std::wstring& text) { m_strText = text; }
    // After OK: the chosen recipients, each followed by "; ", to replace the row's text.
    const std::wstring& GetText() const { return m_strText; }
    void SetAddressFilter(long filter) { m_lAddressFilter = filter; }

    // The entries of `all` whose name has a word beginning with `filter`, or whose address begins with it,
    // ignoring case; all of them for an empty filter.
    static std::vector<std::wstring> Filter(const std::vector<std::wstring>& all, const std::wstring& filter);

protected:
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    INT_PTR OnInitDialog() override;
    void OnOK() override;

private:
    void Refill();

    std::wstring m_strText;
    long m_lAddressFilter;
    std::vector<std::wstring> m_all;    // every contact of the phones, read when the dialog opens
    std::vector<std::wstring> m_shown;
    std::vector<std::wstring> m_chosen;  // kept across filter changes
};
