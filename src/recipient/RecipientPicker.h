// CSeRecipentDlg: the recipient picker of the recipient box's buttons. It reads every contact of the connected
// phones item by item through the content access interface (each item a vCard, turned into fields by the
// versit converter), lists one line per address the address filter lets through, narrows the list by the text
// in its filter box, and gives back the ones the user checks as a recipient text. It hears of phones that come
// and go from the device list and reads the contacts again.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>
#include <vector>

#include "device/ServiceTypes.h"
#include "zcmod/DkhDialog.h"

class CSeRecipentDlg : public CDkhDialog, public IDMAPIDeviceNotify {
public:
    // Binds to the phone service for the dialog's life (device management, content access, versit conversion).
    CSeRecipentDlg();
    virtual ~CSeRecipentDlg();

    // The row's text, without direction marks; recipients in it that the list shows start out checked.
    void SetText(const std::wstring& text) { m_strText = text; }
    // After OK: the checked recipients, each followed by "; ", to replace the row's text.
    const std::wstring& GetText() const { return m_strText; }
    void SetAddressFilter(long filter) { m_lAddressFilter = filter; }

    // The entries of `all` whose name has a word beginning with `filter`, or whose address begins with it,
    // ignoring case; all of them for an empty filter.
    static std::vector<std::wstring> Filter(const std::vector<std::wstring>& all, const std::wstring& filter);
    // Every contact of the phone `serial` as contact strings, one per e-mail address (filter bit 1) and number
    // (bit 2), read item by item; appended to `lines`. False when the phone can't be read.
    static bool ReadPhone(const wchar_t* serial, long addressFilter, std::vector<std::wstring>& lines);

    // A phone came or went (on a thread of the service): the open dialog reads its contacts again.
    HRESULT STDMETHODCALLTYPE DeviceNotify(DWORD status, const wchar_t* serial) override;

protected:
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    INT_PTR OnInitDialog() override;
    void OnDestroy() override;
    void OnOK() override;

private:
    void ReadContacts();
    void Refill();

    std::wstring m_strText;
    long m_lAddressFilter;
    void* m_hDeviceManager;              // the device list this dialog listens to
    std::atomic<HWND> m_hNotifyTarget;   // where a device notification is posted; null while closed
    std::vector<std::wstring> m_all;     // every contact of the phones, read at the start and on each change
    std::vector<std::wstring> m_shown;
    std::vector<std::wstring> m_chosen;  // kept across filter changes and re-reads
};
