// CSearchEngineControl: the recipient box of a message editor. Up to three stacked rows, each a picker button
// and a rich edit box in which recipients are typed. Two seconds after the last key the text around the caret
// is looked up in the phones' contacts and completed inline or offered in a drop-down list; ';', Enter or
// leaving the box finishes the recipient (its contact string, "; " behind it, underlined when known, in
// italics when malformed). The box grows with its text and tells its listeners. Each box keeps its own windows,
// rows and list, so that several boxes can live in one process; the search settings (limits, address filter,
// highlighting, line limit) are shared by all of them.
//
//     CSearchEngineControl box(instance);
//     RECT where = {10, 10, 410, 70};
//     box.Create(nullptr, WS_CHILD | WS_VISIBLE, where, parent, 100, 1);
//     box.RegisterNotifyIF(&layout);                // layout.OnResize() when the box grows or shrinks
//     wchar_t to[1024];
//     box.GetRecipients(nullptr, 0) < 1024 && box.GetRecipients(to, 0);   // "040123;bob@example.com"
//     HWND typing = box.GetEditBox(0);              // the first row's rich edit box
//
// The rules of recipient text are static and work on plain strings, except ExtractName, GetContacts,
// ValidateInput, Highlight and Underline, which read or mark an edit box. The contact search over the
// connected phones keeps a cache: a search touches a phone only when the cache cannot answer.
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

// Told when the recipient box changes its height.
class ISearchEngineNotify {
public:
    virtual void OnResize() = 0;

protected:
    ~ISearchEngineNotify() {}
};

class CVuikWindowBackgroundSkin;
class CVuikStaticCtrl;
class CVuikCommonButtonCtrl;
class CVuikEditCtrl;

// Owns the window background skin of a recipient box: made from its default def and loaded from the
// application's resources; unloaded and deleted with the manager.
class ZCMOD_API CSeSkinManager {
public:
    CSeSkinManager();
    virtual ~CSeSkinManager();
    CSeSkinManager(const CSeSkinManager&) = delete;
    CSeSkinManager& operator=(const CSeSkinManager&) = delete;

    // Makes and loads the skin with `instance` as the resource instance for the time of the load; 1.
    int Initialize(HINSTANCE instance);
    CVuikWindowBackgroundSkin* GetBackgroundSkin() const { return m_pBackgroundSkin; }

private:
    CVuikWindowBackgroundSkin* m_pBackgroundSkin;
};

class ZCMOD_API CSearchEngineControl {
public:
    // Binds to the phone service (device management, content access, versit conversion) and reads the
    // user's name order once; the destructor destroys the windows, closes the device list, every connection
    // and the service. `instance` is the application's; null is the process module.
    explicit CSearchEngineControl(HINSTANCE instance = nullptr);
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

    // ---- The box ----------------------------------------------------------------------------------------
    // Makes `count` rows (1 to 3) in a host window, a child `id` of `parent` at `rect` with `style`; the
    // drop-down list is a child of `parent`. 0 when the rich edit library or a window can't be had.
    int Create(void* reserved, unsigned long style, RECT rect, HWND parent, unsigned id, int count);

    // Per row; an index out of range does nothing and gives 0 (-1 for GetRecipientMode).
    int SetRecipientMode(long mode, int index);
    long GetRecipientMode(int index);
    // A text that begins with ';' is added behind the existing recipients; any other replaces them.
    int SetText(const wchar_t* text, int index);
    // Length in characters; a null buffer asks only for it, a buffer must hold the text and its terminator.
    int GetText(wchar_t* buffer, int index);
    // The bare addresses, separated by ';' (names that aren't contacts pass as they are); length as GetText.
    int GetRecipients(wchar_t* buffer, int index);
    // Checks every recipient of the row (and marks it); *result is 0 when one fails.
    int Validate(int formal, int contact, int* result, int index);
    int SetFocusToEditBox(int index);
    LRESULT SendMessageToEditBox(UINT message, WPARAM wParam, LPARAM lParam, int index);

    int HasFocus();
    void SetThreeDimLook(long look);
    long GetThreeDimLook() const { return m_lThreeDimLook; }
    void SetFont(HFONT font);
    void GetHostWindowRect(RECT& rect);
    void SetHostWindowRect(RECT rect);
    void RegisterNotifyIF(ISearchEngineNotify* listener);
    void UnregisterNotifyIF(ISearchEngineNotify* listener);
    // Non-zero hides the drop-down list, 0 shows it.
    void HideContactListBox(int hide);

    static short GetMaxLines() { return m_sMaxLines; }
    static void SetMaxLines(short lines) { m_sMaxLines = lines; }
    static long GetHighlighting() { return m_lHighlighting; }
    static void SetHighlighting(long on) { m_lHighlighting = on; }
    static long GetFormalValidityChecking() { return m_lFormalValidityChecking; }
    static void SetFormalValidityChecking(long on) { m_lFormalValidityChecking = on; }
    // How long the box waits after the last key before it searches; 2,000 ms unless set.
    static UINT GetSearchDelay() { return m_nSearchDelay; }
    static void SetSearchDelay(UINT milliseconds) { m_nSearchDelay = milliseconds; }

    // Windows of the box, for the application's layout and for tests: the host, a row's edit box and
    // button (null out of range), the drop-down list.
    HWND GetHostWindow() const;
    HWND GetEditBox(int index) const;
    HWND GetButton(int index) const;
    HWND GetContactListBox() const { return m_wndContactListBox; }

    // Sets the characters start..end single-underlined, or not when `remove` is non-zero, keeping the selection.
    static void Underline(HWND edit, int start, int end, int remove);

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

    static short m_sMaxLines;                // rows of text an edit box may grow to; default 3
    static unsigned m_iControlIDs[3][2];     // per row: edit box id, button id
    static UINT m_nSearchDelay;

protected:
    friend class CSeRecipentDlg;  // names the contacts it reads as the search does

    static LRESULT CALLBACK RichEditProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK ListBoxProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK ButtonProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK HostWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // The handlers of the four procedures, on the box that owns the window.
    LRESULT OnEditMessage(int row, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnListMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnButtonMessage(int row, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnHostMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    void UpdateContactList(HWND edit, bool addressOnly);
    void FinishByEnter(HWND edit);
    void FinishBySemicolon(HWND edit, LPARAM lParam);
    void AddStrings();
    void ShowContactListBox(HWND edit);
    int CalcListCtrlHeight();
    int CalcEditCtrlHeight(HWND edit);
    void ResizeControl(HWND edit, bool pasted);
    void VerifyNames(HWND edit);
    int SelectUp();
    int SelectDown();
    void StartSearchTimer(HWND edit, bool addressOnly);
    HWND GetCurrentEditBox();
    void OpenPicker(int row);
    void PlaceRow(int row);
    void PaintHost(HWND hwnd);
    int RowOfEdit(HWND hwnd) const;
    int RowOfButton(HWND hwnd) const;
    // Destroys the windows of the box and lets go of what they held.
    void DestroyBox();

    int m_iButtonWidth;
    int m_iButtonHeight;
    long m_lThreeDimLook;
    HINSTANCE m_hInstance;
    CSeSkinManager* m_pSkinManager;

    // The box's own state: its rows, windows and what is on offer.
    int m_iControlCount;                     // rows made by Create
    long m_lRecipientMode[3];                // each row's label: 0 "To", 1 "Cc", 2 "Bcc"
    short m_sLineCount[3];                   // each row's height in lines
    int m_nEditcontrolWidth;
    int m_iBorderWidth;
    long m_lFontHeight;
    int m_iSystemFontHeight;                 // the system font's height, measured once per box
    int m_iNameLen;                          // length of the typed part an inline completion replaced
    int m_bDisableChange;                    // set while the box itself changes the text
    int m_bDisableSelChange;                 // set while the box itself moves the selection
    std::vector<std::wstring> m_FoundContacts;
    std::vector<ISearchEngineNotify*> m_pNotify;
    CVuikStaticCtrl* m_wndHostWindow;        // the host of the rows, owned
    CVuikCommonButtonCtrl** m_ctrlButton;    // the picker button of each row, owned
    CVuikEditCtrl** m_ctrlEditBox;           // each row's skin and border, owned; holds no window
    HWND m_hEditBox[3];                      // each row's rich edit box
    WNDPROC m_pfnEditProc[3];
    WNDPROC m_pfnButtonProc[3];
    WNDPROC m_pfnHostProc;
    WNDPROC m_pfnListProc;
    HWND m_wndContactListBox;
    HFONT m_hFont;
    HFONT m_hLabelFont;                      // the labels' font, made on the first paint
    HMODULE m_hRichEditModule;
    UINT_PTR m_nSearchTimer;
    bool m_bAddressOnlyUpdate;
    bool m_bPasting;                         // set while the clipboard's text goes into a row

    // The contact's name in the user's order: one personal field alone, else given and family name.
    static std::wstring BuildContactName(const void* contactItem);
    // The device list's notifications: a phone removed closes this thread's connection to it.
    static HRESULT CALLBACK DeviceNotify(DWORD status, const wchar_t* serial);
};
