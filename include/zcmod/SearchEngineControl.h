// CSearchEngineControl: the recipient box of a message editor. This header holds, for now, the rules of
// recipient text that the box, the contact search and the recipient picker share; they are static and work on
// plain strings, except ExtractName, GetContacts, ValidateInput and Highlight, which read or mark an edit box.
// It also holds the contact search over the connected phones, with its cache: a search touches a phone only
// when the cache cannot answer.
//
//     CSearchEngineControl control;                 // binds to the phone service for its lifetime
//     std::wstring typed = L"ann";
//     std::vector<std::wstring> found;               // "Ann Lee <040123>", ...
//     if (CSearchEngineControl::SearchValues(typed, true, found)) { ... }
//
// A line holds recipients separated by ';'. Each is a phone number, an e-mail address, a name being typed, or
// a finished contact "Name <address>". Under a right-to-left language the address of a contact is wrapped in
// U+202D ... U+202C, so that it reads left to right inside right-to-left text; the rules strip those marks
// again before comparing.
//
//     std::wstring name, address;
//     CSearchEngineControl::GetNameAndAddress(L"Ann Lee <040123>", name, address);  // "Ann Lee", "040123"
//     std::wstring contact = CSearchEngineControl::CreateContactString(L"Bob", L"bob@example.com");
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "zcmod/Export.h"

// One recipient of the box's text: its text, the offset of its first character and that of the ';' behind it.
struct RecipientLocation {
    std::wstring m_strText;
    int m_nStart;
    int m_nEnd;
};

class ZCMOD_API CSearchEngineControl {
public:
    // Binds to the phone service (device management, content access, versit conversion) and reads the
    // user's name order once; the destructor closes the device list, every connection and the service.
    CSearchEngineControl();
    virtual ~CSearchEngineControl();
    CSearchEngineControl(const CSearchEngineControl&) = delete;
    CSearchEngineControl& operator=(const CSearchEngineControl&) = delete;

    // The contacts of every connected phone whose name (`byName`) or number begins with `text`, as contact
    // strings sorted by WstrCompare. 1 when there are results to use, else 0.
    static int SearchValues(std::wstring& text, bool byName, std::vector<std::wstring>& results);
    // Searches the phone `serial` and remembers the answer in the cache; adds to `results`.
    static void SearchValues2(const wchar_t* serial, std::wstring& text, bool byName,
                              std::vector<std::wstring>& results);
    // Makes the connection of `serial` the current one: 0, or 0x80100010 when it can't be opened.
    static HRESULT CheckConnection(std::wstring serial);
    // Connections are closed by the connection map; this answers 0x80100010 and does nothing.
    static HRESULT CloseConnection();

    static short GetSearchLimit() { return m_sSearchLimit; }
    static void SetSearchLimit(short limit) { m_sSearchLimit = limit; }
    static short GetResultLimit() { return m_sResultLimit; }
    static void SetResultLimit(short limit) { m_sResultLimit = limit; }
    static long GetAddressFilter() { return m_lAddressFilter; }
    static void SetAddressFilter(long filter) { m_lAddressFilter = filter; }
    // Address filter bits of m_lAddressFilter.
    enum { kFilterEmail = 1, kFilterPhone = 2, kFilterBoth = 3 };

    // 1 when every character is one of "0123456789#+pw* -()"; the empty text counts as a number.
    static int IsValidPhoneNumber(std::wstring text);
    // 1 for a text of the form local@domain.part, all of it at most U+0080.
    static int IsValidEmailAddress(std::wstring text);
    // Splits "Name <address>", a bare address or a bare name; both parts trimmed of blanks.
    static void GetNameAndAddress(std::wstring input, std::wstring& name, std::wstring& address);
    // Strips the direction marks U+200D, U+200F, U+202A, U+202C and U+202D under a right-to-left language.
    static void RemoveUnicodeControlCharacters(std::wstring& text);
    // name + " <" + address + ">", the address wrapped in direction marks under a right-to-left language.
    static std::wstring CreateContactString(std::wstring name, std::wstring address);
    // 1 when `name` (or either name) begins with `searched`, ignoring case.
    static int IsSearchedName(std::wstring searched, std::wstring name);
    static int IsSearchedName(std::wstring searched, std::wstring name1, std::wstring name2);
    // The order of search results: 1 when `a` sorts before `b` by character value, else 0.
    static int WstrCompare(std::wstring a, std::wstring b);
    // Removes leading and trailing blanks (U+0020 only).
    static void TrimBlanks(std::wstring& text);
    // "First Rest <address>" becomes "Rest First <address>".
    static std::wstring SwapNameWords(std::wstring contact);

    // The recipient around the caret of `edit`: 1 with its text and offsets (each pointer may be null), or 0.
    static int ExtractName(HWND edit, std::wstring& out, int* start, int* end);
    // Turns typed text into a finished contact from the phones' contacts: 1 with it in `output`, else 0 with
    // `output` = `input`. `input` loses its direction marks.
    static int CheckNumberOrEmail(std::wstring& input, std::wstring& output);
    // Judges one recipient, `formal` by its form under m_lAddressFilter and `contact` by its name among the
    // contacts; marks the range start..end valid or invalid when m_lHighlighting is set, and with
    // `showMessage` tells the user what is wrong. Returns 1 when it passes.
    static int ValidateInput(HWND edit, std::wstring text, int start, int end, int formal, int contact,
                             int showMessage);
    // Cuts the whole text of `edit` into recipients.
    static void GetContacts(HWND edit, std::vector<RecipientLocation>& contacts);
    // Sets the characters start..end of the rich edit box upright (`valid`) or in italics, keeping the selection.
    static void Highlight(HWND edit, int start, int end, int valid);

    static long m_lAddressFilter;           // 1 e-mail, 2 phone, 3 both; default 3
    static long m_lFormalValidityChecking;  // default 1
    static long m_lHighlighting;            // default 1
    static bool m_bApplySearchLimit;        // default true; cleared while a name is checked against the contacts
    static short m_sSearchLimit;            // shortest text searched by name; default 1
    static short m_sResultLimit;            // most entries offered in the list, 0 or less for all; default 0
    static int m_iNameOrder;                // 1: given name first; else family name first
    static void* m_hConnection;             // the content access connection in use
    static std::wstring m_strCurrentConnectionImei;    // the serial m_hConnection belongs to
    static void* m_hDeviceManager;                      // the device list, opened on first need
    static std::vector<std::wstring> m_vecDeviceSerials;  // the serials of the last enumeration with devices

protected:
    // The contact's name in the user's order: one personal field alone, else given and family name.
    static std::wstring BuildContactName(const void* contactItem);
    // The device list's notifications: a phone removed closes this thread's connection to it.
    static HRESULT CALLBACK DeviceNotify(DWORD status, const wchar_t* serial);
};
