// The recipient box of CSearchEngineControl: the host window with its rows of picker button and rich edit box,
// the typing timer and search, inline completion, the drop-down list, finishing a recipient, marking known and
// malformed ones, and growing with the text.
#include <windows.h>

#include <commctrl.h>
#include <richedit.h>

#include <algorithm>
#include <cwctype>
#include <memory>
#include <new>

#include "recipient/RecipientPicker.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/SearchEngineControl.h"
#include "zcmod/VuikCommonButtonCtrl.h"
#include "zcmod/VuikEditCtrl.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikStaticCtrl.h"

short CSearchEngineControl::m_sMaxLines = 3;
unsigned CSearchEngineControl::m_iControlIDs[3][2] = {{1001, 1002}, {1003, 1004}, {1005, 1006}};
UINT CSearchEngineControl::m_nSearchDelay = 2000;

namespace {

constexpr UINT_PTR kSearchTimer = 1;
constexpr UINT kListChosen = 0x464;  // an item of the drop-down list was chosen; wParam its index
constexpr UINT kFinishLater = WM_APP + 1;  // posted at a focus loss: finish the recipient
constexpr int kListId = 0x75FC;
constexpr int kRowStep = 55;
constexpr int kGap = 5;
// WS_BORDER leaves the one-pixel frame on which the row's skinned border is drawn.
constexpr DWORD kEditStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | WS_TABSTOP | WS_VSCROLL |
                             WS_BORDER | ES_MULTILINE | ES_AUTOVSCROLL;
constexpr DWORD kButtonStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_TABSTOP;
constexpr DWORD kListStyle = WS_CHILD | WS_BORDER | WS_VSCROLL | LBS_NOTIFY | LBS_HASSTRINGS;
const UINT kLabelIds[3] = {ZLR_STR_RECIPIENT_TO, ZLR_STR_RECIPIENT_CC, ZLR_STR_RECIPIENT_BCC};
// Every window of a box carries its box under this property: the procedures are shared by all boxes.
const wchar_t kBoxProperty[] = L"ZCMOD.SearchEngineControl";

CSearchEngineControl* BoxOf(HWND hwnd) { return static_cast<CSearchEngineControl*>(GetPropW(hwnd, kBoxProperty)); }

// Puts `proc` in front of the window's procedure and marks the window as the box's; the earlier procedure.
WNDPROC TakeOver(HWND hwnd, CSearchEngineControl* box, WNDPROC proc)
{
    SetPropW(hwnd, kBoxProperty, box);
    return reinterpret_cast<WNDPROC>(SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(proc)));
}

// Gives the window its earlier procedure back as it goes, and the mark.
LRESULT LetGo(HWND hwnd, WNDPROC& previous, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC proc = previous;
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(proc));
    RemovePropW(hwnd, kBoxProperty);
    previous = nullptr;
    return CallWindowProcW(proc, hwnd, message, wParam, lParam);
}

// A row's edit object: no window of its own (the row's rich edit box keeps the box's procedure), but the edit
// skin of the toolkit, whose border the box draws on the rich edit box's one-pixel frame.
class CSeRowEditCtrl : public CVuikEditCtrl {
public:
    CSeRowEditCtrl()
    {
        m_pSkin = new (std::nothrow) CVuikEditSkin();
        if (m_pSkin) {
            m_pSkin->Load();
            m_pSkin->Validate();
        }
        SetSkin(m_pSkin);
    }

    // The border of the window `edit`: a one-pixel frame along its edges, the skin's border gradient from top
    // to bottom. Drawn over the frame that WS_BORDER leaves, after the platform's non-client paint.
    void DrawFrame(HWND edit) const
    {
        RECT r;
        if (!m_pSkin || !GetWindowRect(edit, &r))
            return;
        HDC dc = GetDCEx(edit, nullptr, DCX_WINDOW | DCX_CACHE);
        if (!dc)
            return;
        DrawFrame(dc, RECT{1, 1, r.right - r.left - 1, r.bottom - r.top - 1});
        ReleaseDC(edit, dc);
    }

    // A one-pixel frame just outside `edit`: the top row in the top colour, the bottom row in the bottom colour,
    // the sides blending from one to the other.
    void DrawFrame(HDC dc, RECT edit) const
    {
        const CVuikEditSkinDef def = *m_pSkin;
        const int left = edit.left - 1, top = edit.top - 1, right = edit.right, bottom = edit.bottom;
        const int span = std::max(bottom - top, 1);
        for (int y = top; y <= bottom; ++y) {
            COLORREF colour = 0;
            for (int shift = 0; shift < 24; shift += 8) {
                const int from = (def.m_crBorderTop >> (16 - shift)) & 0xFF;
                const int to = (def.m_crBorderBottom >> (16 - shift)) & 0xFF;
                colour |= static_cast<COLORREF>(from + (to - from) * (y - top) / span) << shift;
            }
            if (y == top || y == bottom) {
                HBRUSH line = CreateSolidBrush(colour);
                RECT row = {left, y, right + 1, y + 1};
                FillRect(dc, &row, line);
                DeleteObject(line);
            } else {
                SetPixelV(dc, left, y, colour);
                SetPixelV(dc, right, y, colour);
            }
        }
    }
};

bool LanguageIsRtl()
{
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    return CRTLHelper::IsRTL(handler ? handler->GetLanguageName() : nullptr) != 0;
}

std::wstring EditText(HWND edit)
{
    const int length = GetWindowTextLengthW(edit);
    if (length <= 0)
        return L"";
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(edit, &text[0], length + 1)));
    return text;
}

CHARRANGE Selection(HWND edit)
{
    CHARRANGE range = {};
    SendMessageW(edit, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    return range;
}

void Select(HWND edit, LONG from, LONG to)
{
    CHARRANGE range = {from, to};
    SendMessageW(edit, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

void Replace(HWND edit, const std::wstring& text)
{
    SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring Label(int mode)
{
    wchar_t text[260] = {};
    ZCMOD_LoadString(kLabelIds[(mode >= 0 && mode < 3) ? mode : 0], text, 260);
    return text;
}

// Where the typed text stands inside a contact string, ignoring case; 0 when it isn't there.
size_t FoldedFind(const std::wstring& contact, const std::wstring& typed)
{
    std::wstring a = contact, b = typed;
    for (wchar_t& c : a)
        c = static_cast<wchar_t>(std::towlower(c));
    for (wchar_t& c : b)
        c = static_cast<wchar_t>(std::towlower(c));
    const size_t at = a.find(b);
    return at == std::wstring::npos ? 0 : at;
}

// Wraps every "<...>" span of a picked text in direction marks, so that the addresses read left to right.
std::wstring WrapAddresses(const std::wstring& text)
{
    std::wstring out;
    out.reserve(text.size() + 52);
    bool inside = false;
    for (wchar_t c : text) {
        if (c == L'<' && !inside) {
            out += L"<\x202D";
            inside = true;
        } else if (c == L'>' && inside) {
            out += L"\x202C>";
            inside = false;
        } else {
            out += c;
        }
    }
    return out;
}

// A window's rectangle in the coordinates of `host`, left and right in order also in a mirrored host.
RECT RectIn(HWND window, HWND host)
{
    RECT r;
    GetWindowRect(window, &r);
    MapWindowPoints(nullptr, host, reinterpret_cast<POINT*>(&r), 2);
    if (r.left > r.right)
        std::swap(r.left, r.right);
    return r;
}

}  // namespace

// ---- Life --------------------------------------------------------------------------------------------------

HWND CSearchEngineControl::GetHostWindow() const { return m_wndHostWindow ? m_wndHostWindow->m_hWnd : nullptr; }

HWND CSearchEngineControl::GetEditBox(int index) const
{
    return index >= 0 && index < 3 ? m_hEditBox[index] : nullptr;
}

HWND CSearchEngineControl::GetButton(int index) const
{
    return index >= 0 && index < 3 && m_ctrlButton && m_ctrlButton[index] ? m_ctrlButton[index]->m_hWnd : nullptr;
}

int CSearchEngineControl::RowOfEdit(HWND hwnd) const
{
    for (int i = 0; i < 3; ++i)
        if (hwnd && m_hEditBox[i] == hwnd)
            return i;
    return -1;
}

int CSearchEngineControl::RowOfButton(HWND hwnd) const
{
    for (int i = 0; i < 3; ++i)
        if (hwnd && GetButton(i) == hwnd)
            return i;
    return -1;
}

void CSearchEngineControl::DestroyBox()
{
    if (m_nSearchTimer) {
        for (HWND edit : m_hEditBox)
            if (edit)
                KillTimer(edit, kSearchTimer);
        m_nSearchTimer = 0;
    }
    // The host goes with its rows; the list is a child of the application's window.
    if (m_wndHostWindow) {
        if (m_wndHostWindow->m_hWnd && IsWindow(m_wndHostWindow->m_hWnd))
            DestroyWindow(m_wndHostWindow->m_hWnd);
        delete m_wndHostWindow;
        m_wndHostWindow = nullptr;
    }
    if (m_wndContactListBox && IsWindow(m_wndContactListBox))
        DestroyWindow(m_wndContactListBox);
    m_wndContactListBox = nullptr;
    if (m_ctrlButton) {
        for (int i = 0; i < 3; ++i)
            delete m_ctrlButton[i];
        delete[] m_ctrlButton;
        m_ctrlButton = nullptr;
    }
    if (m_ctrlEditBox) {
        for (int i = 0; i < 3; ++i)
            delete m_ctrlEditBox[i];
        delete[] m_ctrlEditBox;
        m_ctrlEditBox = nullptr;
    }
    for (int i = 0; i < 3; ++i) {
        m_hEditBox[i] = nullptr;
        m_pfnEditProc[i] = m_pfnButtonProc[i] = nullptr;
        m_sLineCount[i] = 1;
    }
    m_pfnHostProc = m_pfnListProc = nullptr;
    if (m_hRichEditModule) {
        FreeLibrary(m_hRichEditModule);
        m_hRichEditModule = nullptr;
    }
    m_FoundContacts.clear();
    m_pNotify.clear();
    if (m_hFont) {
        DeleteObject(m_hFont);
        m_hFont = nullptr;
    }
    if (m_hLabelFont) {
        DeleteObject(m_hLabelFont);
        m_hLabelFont = nullptr;
    }
    m_bDisableChange = m_bDisableSelChange = 0;
}

int CSearchEngineControl::Create(void* /*reserved*/, unsigned long style, RECT rect, HWND parent, unsigned id,
                                 int count)
{
    DestroyBox();
    m_iControlCount = std::max(1, std::min(count, 3));
    m_hRichEditModule = LoadLibraryW(L"Riched20.dll");
    if (!m_hRichEditModule)
        return 0;
    if (rect.bottom - rect.top < 60)
        rect.bottom = rect.top + m_iControlCount * 60;
    if (rect.right - rect.left < 330)
        rect.right = rect.left + 330;
    const bool rtl = LanguageIsRtl();
    const HINSTANCE instance = m_hInstance ? m_hInstance : GetModuleHandleW(nullptr);

    m_wndHostWindow = new (std::nothrow) CVuikStaticCtrl();
    HWND host = m_wndHostWindow
                    ? m_wndHostWindow->Create(parent, rect, id,
                                              ((style | WS_CHILD | WS_CLIPCHILDREN) & ~SS_TYPEMASK) | SS_NOTIFY, 0)
                    : nullptr;
    if (!host) {
        DestroyBox();
        return 0;
    }
    m_pfnHostProc = TakeOver(host, this, HostWindowProc);
    m_ctrlButton = new (std::nothrow) CVuikCommonButtonCtrl*[3]();
    m_ctrlEditBox = new (std::nothrow) CVuikEditCtrl*[3]();
    if (!m_ctrlButton || !m_ctrlEditBox) {
        DestroyBox();
        return 0;
    }

    const DWORD rowExStyle = rtl ? (WS_EX_NOPARENTNOTIFY | WS_EX_LAYOUTRTL | WS_EX_RTLREADING) : WS_EX_NOPARENTNOTIFY;
    DWORD editExStyle = rowExStyle;
    m_iBorderWidth = 0;
    if (m_lThreeDimLook) {
        editExStyle |= WS_EX_CLIENTEDGE;
        m_iBorderWidth = 2 * GetSystemMetrics(SM_CXEDGE);
    }
    m_nEditcontrolWidth = (rect.right - rect.left) - m_iButtonWidth - kGap;

    for (int i = 0; i < m_iControlCount; ++i) {
        const std::wstring label = (m_lRecipientMode[i] >= 0 && m_lRecipientMode[i] < 3) ? Label(m_lRecipientMode[i])
                                                                                        : std::wstring();
        // The picker button of the row: the suite's large icon button, centred in its cell, its pictures and
        // icon out of the theme.
        m_ctrlButton[i] = new (std::nothrow) CVuikCommonButtonCtrl();
        const HINSTANCE resources = CVuikLib::GetResourceInstance();
        CVuikLib::SetResourceInstance(ZCMOD_GetCommonZGR());
        RECT cell = {0, i * kRowStep, m_iButtonWidth, i * kRowStep + m_iButtonHeight};
        HWND button = m_ctrlButton[i] ? m_ctrlButton[i]->Create(host, cell, m_iControlIDs[i][1], kButtonStyle,
                                                                rowExStyle, CommonButtonLarge)
                                      : nullptr;
        if (button) {
            m_ctrlButton[i]->SetButtonIcon(ZGR_BMP_RECIPIENT_PICKER, ZGR_BMP_RECIPIENT_PICKER_DISABLED, FALSE);
            RECT made;
            GetClientRect(button, &made);
            if (made.right <= 0 || made.bottom <= 0) {
                // A theme without the button's pictures: the button keeps its whole cell.
                made = {0, 0, m_iButtonWidth, m_iButtonHeight};
                SetWindowPos(button, nullptr, 0, 0, made.right, made.bottom,
                             SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
            }
            SetWindowPos(button, nullptr, (m_iButtonWidth - made.right) / 2,
                         cell.top + (m_iButtonHeight - made.bottom) / 2, 0, 0,
                         SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            SetWindowTextW(button, label.c_str());
            m_ctrlButton[i]->SetTooltip(label.c_str());
        }
        CVuikLib::SetResourceInstance(resources);
        if (button)
            m_pfnButtonProc[i] = TakeOver(button, this, ButtonProc);

        m_ctrlEditBox[i] = new (std::nothrow) CSeRowEditCtrl();
        const int buttonBottom = i * kRowStep + m_iButtonHeight;
        HWND edit = CreateWindowExW(editExStyle, L"RichEdit20W", L"", kEditStyle, m_iButtonWidth + kGap,
                                    buttonBottom - 27, m_nEditcontrolWidth, 23, host,
                                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(m_iControlIDs[i][0])), instance,
                                    nullptr);
        if (!edit) {
            DestroyBox();
            return 0;
        }
        m_hEditBox[i] = edit;
        m_pfnEditProc[i] = TakeOver(edit, this, RichEditProc);
        SendMessageW(edit, EM_SETEVENTMASK, 0, ENM_CHANGE | ENM_SCROLL | ENM_SELCHANGE);
        SendMessageW(edit, EM_SETMARGINS, EC_RIGHTMARGIN, MAKELPARAM(0, 5));
        SendMessageW(edit, EM_SETTEXTMODE, TM_RICHTEXT, 0);
        // The theme's window and text colours, for typed text and for text set later alike.
        SendMessageW(edit, EM_SETBKGNDCOLOR, 0, static_cast<LPARAM>(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW)));
        CHARFORMAT2W colour = {};
        colour.cbSize = sizeof(colour);
        colour.dwMask = CFM_COLOR;
        colour.crTextColor = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        SendMessageW(edit, EM_SETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&colour));
        SendMessageW(edit, EM_SETCHARFORMAT, SCF_ALL, reinterpret_cast<LPARAM>(&colour));
        m_sLineCount[i] = 1;
    }

    m_wndContactListBox = CreateWindowExW(rtl ? (WS_EX_LAYOUTRTL | WS_EX_RTLREADING) : 0, L"ListBox", L"", kListStyle,
                                          m_iButtonWidth + kGap, m_iButtonHeight + 2, m_nEditcontrolWidth, 60, parent,
                                          reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kListId)), instance, nullptr);
    if (m_wndContactListBox)
        m_pfnListProc = TakeOver(m_wndContactListBox, this, ListBoxProc);

    LOGFONTW description = {};
    DkhLoadFont(&description);
    description.lfHeight = 14;
    description.lfWeight = FW_NORMAL;
    HFONT font = CreateFontIndirectW(&description);
    SetFont(font);
    if (font)
        DeleteObject(font);
    return 1;
}

// ---- Per row ------------------------------------------------------------------------------------------------

int CSearchEngineControl::SetRecipientMode(long mode, int index)
{
    if (index < 0 || index >= m_iControlCount)
        return 0;
    m_lRecipientMode[index] = mode;
    if (GetButton(index)) {
        SetWindowTextW(GetButton(index), Label(static_cast<int>(mode)).c_str());
        InvalidateRect(GetHostWindow(), nullptr, TRUE);
    }
    return 1;
}

long CSearchEngineControl::GetRecipientMode(int index)
{
    return index < 0 || index >= m_iControlCount ? -1 : m_lRecipientMode[index];
}

int CSearchEngineControl::SetText(const wchar_t* text, int index)
{
    if (index < 0 || index >= m_iControlCount || !m_hEditBox[index] || !text)
        return 0;
    HWND edit = m_hEditBox[index];
    if (text[0] == L';') {
        const LONG length = GetWindowTextLengthW(edit);
        Select(edit, length, length);
        Replace(edit, text + 1);
        SendMessageW(edit, WM_CHAR, L';', 0);
    } else {
        SetWindowTextW(edit, text);
    }
    VerifyNames(edit);
    return 1;
}

int CSearchEngineControl::GetText(wchar_t* buffer, int index)
{
    if (index < 0 || index >= m_iControlCount || !m_hEditBox[index])
        return 0;
    const std::wstring text = EditText(m_hEditBox[index]);
    if (buffer)
        std::copy(text.c_str(), text.c_str() + text.size() + 1, buffer);
    return static_cast<int>(text.size());
}

int CSearchEngineControl::GetRecipients(wchar_t* buffer, int index)
{
    if (index < 0 || index >= m_iControlCount || !m_hEditBox[index])
        return 0;
    std::wstring text = EditText(m_hEditBox[index]);
    RemoveUnicodeControlCharacters(text);
    std::wstring out;
    size_t from = 0;
    while (from <= text.size()) {
        size_t cut = text.find(L';', from);
        if (cut == std::wstring::npos)
            cut = text.size();
        std::wstring piece = text.substr(from, cut - from);
        piece.erase(0, piece.find_first_not_of(L' ') == std::wstring::npos ? piece.size()
                                                                           : piece.find_first_not_of(L' '));
        const size_t open = piece.rfind(L'<'), close = piece.rfind(L'>');
        if (open != std::wstring::npos && close != std::wstring::npos && close > open)
            piece = piece.substr(open + 1, close - open - 1);
        out += piece + L";";
        from = cut + 1;
    }
    TrimBlanks(out);
    while (!out.empty() && out.back() == L';') {
        out.pop_back();
        TrimBlanks(out);
    }
    if (buffer)
        std::copy(out.c_str(), out.c_str() + out.size() + 1, buffer);
    return static_cast<int>(out.size());
}

int CSearchEngineControl::Validate(int formal, int contact, int* result, int index)
{
    if (index < 0 || index >= m_iControlCount || !m_hEditBox[index] || !result)
        return 0;
    *result = 1;
    if (formal || contact) {
        std::vector<RecipientLocation> recipients;
        GetContacts(m_hEditBox[index], recipients);
        for (const RecipientLocation& r : recipients)
            if (!ValidateInput(m_hEditBox[index], r.m_strText, r.m_nStart, r.m_nEnd, formal, contact, 0))
                *result = 0;
    }
    return 1;
}

int CSearchEngineControl::SetFocusToEditBox(int index)
{
    if (index < 0 || index >= m_iControlCount)
        index = 0;
    if (!m_hEditBox[index])
        return 0;
    SetFocus(m_hEditBox[index]);
    return 1;
}

LRESULT CSearchEngineControl::SendMessageToEditBox(UINT message, WPARAM wParam, LPARAM lParam, int index)
{
    if (index < 0 || index >= m_iControlCount || !m_hEditBox[index])
        return 0;
    return SendMessageW(m_hEditBox[index], message, wParam, lParam);
}

// ---- Whole box ----------------------------------------------------------------------------------------------

int CSearchEngineControl::HasFocus()
{
    const HWND focus = GetFocus();
    return focus && RowOfEdit(focus) >= 0 ? 1 : 0;
}

void CSearchEngineControl::SetThreeDimLook(long look)
{
    m_lThreeDimLook = look;
    for (int i = 0; i < m_iControlCount; ++i) {
        if (!m_hEditBox[i])
            continue;
        LONG_PTR ex = GetWindowLongPtrW(m_hEditBox[i], GWL_EXSTYLE);
        if (look) {
            ex |= WS_EX_CLIENTEDGE;
            m_iBorderWidth = 2 * GetSystemMetrics(SM_CXEDGE);
        } else {
            ex ^= WS_EX_CLIENTEDGE;
            m_iBorderWidth = 0;
        }
        SetWindowLongPtrW(m_hEditBox[i], GWL_EXSTYLE, ex);
        SetWindowPos(m_hEditBox[i], nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    }
    if (GetHostWindow())
        RedrawWindow(GetParent(GetHostWindow()), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void CSearchEngineControl::SetFont(HFONT font)
{
    if (!font)
        return;
    LOGFONTW description = {};
    if (!GetObjectW(font, sizeof(description), &description))
        return;
    if (m_hFont)
        DeleteObject(m_hFont);
    m_hFont = CreateFontIndirectW(&description);
    m_lFontHeight = description.lfHeight < 0 ? -description.lfHeight : description.lfHeight;
    for (int i = 0; i < m_iControlCount; ++i)
        if (m_hEditBox[i]) {
            SendMessageW(m_hEditBox[i], WM_SETFONT, reinterpret_cast<WPARAM>(m_hFont), TRUE);
            PlaceRow(i);
        }
    if (m_wndContactListBox)
        SendMessageW(m_wndContactListBox, WM_SETFONT, reinterpret_cast<WPARAM>(m_hFont), TRUE);
}

void CSearchEngineControl::GetHostWindowRect(RECT& rect)
{
    SetRectEmpty(&rect);
    if (!GetHostWindow())
        return;
    GetWindowRect(GetHostWindow(), &rect);
    MapWindowPoints(nullptr, GetParent(GetHostWindow()), reinterpret_cast<POINT*>(&rect), 2);
    if (rect.left > rect.right)
        std::swap(rect.left, rect.right);
}

void CSearchEngineControl::SetHostWindowRect(RECT rect)
{
    if (!GetHostWindow())
        return;
    m_nEditcontrolWidth = (rect.right - rect.left) - m_iButtonWidth - kGap;
    int bottom = 0;
    for (int i = 0; i < m_iControlCount; ++i) {
        PlaceRow(i);
        RECT r;
        GetWindowRect(m_hEditBox[i], &r);
        MapWindowPoints(nullptr, GetHostWindow(), reinterpret_cast<POINT*>(&r), 2);
        bottom = std::max(bottom, static_cast<int>(std::max(r.bottom, r.top)));
    }
    SetWindowPos(GetHostWindow(), nullptr, rect.left, rect.top, rect.right - rect.left,
                 std::min(bottom, static_cast<int>(rect.bottom - rect.top)), SWP_NOZORDER | SWP_NOACTIVATE);
}

void CSearchEngineControl::RegisterNotifyIF(ISearchEngineNotify* listener)
{
    if (listener && std::find(m_pNotify.begin(), m_pNotify.end(), listener) == m_pNotify.end())
        m_pNotify.push_back(listener);
}

void CSearchEngineControl::UnregisterNotifyIF(ISearchEngineNotify* listener)
{
    m_pNotify.erase(std::remove(m_pNotify.begin(), m_pNotify.end(), listener), m_pNotify.end());
}

void CSearchEngineControl::HideContactListBox(int hide)
{
    // Every caret move asks to hide the list: a hidden one is left alone.
    if (m_wndContactListBox && (!hide || IsWindowVisible(m_wndContactListBox)))
        ShowWindow(m_wndContactListBox, hide ? SW_HIDE : SW_SHOWNA);
}

void CSearchEngineControl::Underline(HWND edit, int start, int end, int remove)
{
    if (!edit || !IsWindow(edit))
        return;
    const CHARRANGE saved = Selection(edit);
    Select(edit, start, end);
    CHARFORMAT2W format = {};
    format.cbSize = sizeof(format);
    format.dwMask = CFM_UNDERLINE;
    format.dwEffects = remove ? 0 : CFE_UNDERLINE;
    SendMessageW(edit, EM_SETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
    Select(edit, -1, 0);
    Select(edit, saved.cpMin, saved.cpMax);
}

// ---- Typing ---------------------------------------------------------------------------------------------------

void CSearchEngineControl::StartSearchTimer(HWND edit, bool addressOnly)
{
    m_bAddressOnlyUpdate = addressOnly;
    // Setting the timer of the same id again replaces a running one: the search waits for the last key.
    m_nSearchTimer = SetTimer(edit, kSearchTimer, m_nSearchDelay, nullptr);
}

LRESULT CALLBACK CSearchEngineControl::RichEditProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CSearchEngineControl* box = BoxOf(hwnd);
    const int row = box ? box->RowOfEdit(hwnd) : -1;
    if (row < 0 || !box->m_pfnEditProc[row])
        return DefWindowProcW(hwnd, message, wParam, lParam);
    return box->OnEditMessage(row, hwnd, message, wParam, lParam);
}

LRESULT CSearchEngineControl::OnEditMessage(int row, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC previous = m_pfnEditProc[row];
    switch (message) {
    case WM_KILLFOCUS: {
        const LRESULT result = CallWindowProcW(previous, hwnd, message, wParam, lParam);
        // The recipient is finished once the focus change is over: a box that loses the focus because it
        // is going away is gone by then, and finishes nothing (no message may show while it is destroyed).
        if (reinterpret_cast<HWND>(wParam) != m_wndContactListBox)
            PostMessageW(hwnd, kFinishLater, 0, 0);
        return result;
    }
    case WM_KEYDOWN:
        switch (wParam) {
        case VK_BACK:
        case VK_DELETE: {
            m_bDisableChange = 1;
            const LRESULT result = CallWindowProcW(previous, hwnd, message, wParam, lParam);
            m_bDisableChange = 0;
            StartSearchTimer(hwnd, true);
            if (GetWindowTextLengthW(hwnd) == 0) {
                Underline(hwnd, 0, 0, 1);
                Highlight(hwnd, 0, 0, 1);
            }
            return result;
        }
        case VK_TAB:
            if (GetKeyState(VK_SHIFT) < 0) {
                if (GetButton(row))
                    SetFocus(GetButton(row));
            } else if (row + 1 < m_iControlCount && GetButton(row + 1)) {
                SetFocus(GetButton(row + 1));
            } else if (GetHostWindow()) {
                PostMessageW(GetParent(GetHostWindow()), WM_NEXTDLGCTL, 0, 0);
            }
            return 0;
        case VK_ESCAPE:
            return 0;
        case VK_UP:
        case VK_DOWN: {
            if (!m_wndContactListBox || !IsWindowVisible(m_wndContactListBox))
                return CallWindowProcW(previous, hwnd, message, wParam, lParam);
            const int index = wParam == VK_UP ? SelectUp() : SelectDown();
            if (index >= 0 && index < static_cast<int>(m_FoundContacts.size())) {
                // The contact on the recipient's place, selected whole, so that typing on replaces it.
                std::wstring name;
                int start = 0, end = 0;
                if (ExtractName(hwnd, name, &start, &end)) {
                    m_bDisableChange = m_bDisableSelChange = 1;
                    Select(hwnd, start, end);
                    Replace(hwnd, m_FoundContacts[static_cast<size_t>(index)]);
                    Select(hwnd, start, start + static_cast<LONG>(m_FoundContacts[static_cast<size_t>(index)].size()));
                    m_bDisableChange = m_bDisableSelChange = 0;
                }
            }
            return 0;
        }
        case VK_RETURN:
            FinishByEnter(hwnd);
            return 0;
        default:
            StartSearchTimer(hwnd, false);
            if ((wParam == 'V' && GetKeyState(VK_CONTROL) < 0) || (wParam == VK_INSERT && GetKeyState(VK_SHIFT) < 0))
                return SendMessageW(hwnd, WM_PASTE, 0, 0);
            return CallWindowProcW(previous, hwnd, message, wParam, lParam);
        }
    case WM_CHAR:
        if (wParam == L';') {
            FinishBySemicolon(hwnd, lParam);
            return 0;
        }
        if (wParam == L'\r' || wParam == L'\n' || wParam == L'\t' || wParam == 0x1B)
            return 0;  // handled as keys
        return CallWindowProcW(previous, hwnd, message, wParam, lParam);
    case kFinishLater:
        if (GetFocus() != hwnd)
            SendMessageW(hwnd, WM_KEYDOWN, VK_RETURN, 0);
        return 0;
    case WM_TIMER:
        if (wParam == kSearchTimer) {
            KillTimer(hwnd, kSearchTimer);
            UpdateContactList(hwnd, m_bAddressOnlyUpdate);
            m_nSearchTimer = 0;
            return 0;
        }
        break;
    case kListChosen: {
        if (wParam < m_FoundContacts.size()) {
            std::wstring name;
            int start = 0, end = 0;
            if (ExtractName(hwnd, name, &start, &end)) {
                m_bDisableChange = 1;
                Select(hwnd, start, end);
                Replace(hwnd, m_FoundContacts[wParam]);
                m_bDisableChange = 0;
            }
        }
        HideContactListBox(1);
        SendMessageW(hwnd, WM_KEYDOWN, VK_RETURN, 0);
        return 0;
    }
    case WM_GETDLGCODE:
        return CallWindowProcW(previous, hwnd, message, wParam, lParam) | DLGC_WANTALLKEYS | DLGC_WANTTAB;
    case WM_NCPAINT: {
        // The platform's frame and scroll bar, then the row's skinned border over the frame.
        const LRESULT result = CallWindowProcW(previous, hwnd, message, wParam, lParam);
        if (m_ctrlEditBox && m_ctrlEditBox[row])
            static_cast<CSeRowEditCtrl*>(m_ctrlEditBox[row])->DrawFrame(hwnd);
        return result;
    }
    case WM_PASTE: {
        // Recipients are plain text in the box's own format: a paste brings the clipboard's text only. The
        // change it makes is known to the host as a paste.
        const bool outer = !m_bPasting;
        m_bPasting = true;
        const LRESULT result = SendMessageW(hwnd, EM_PASTESPECIAL, CF_UNICODETEXT, 0);
        if (outer)
            m_bPasting = false;
        return result;
    }
    case WM_NCDESTROY:
        m_hEditBox[row] = nullptr;
        return LetGo(hwnd, m_pfnEditProc[row], message, wParam, lParam);
    default:
        break;
    }
    return CallWindowProcW(previous, hwnd, message, wParam, lParam);
}

void CSearchEngineControl::FinishByEnter(HWND edit)
{
    HideContactListBox(1);
    m_bApplySearchLimit = false;
    std::wstring name;
    int start = 0, end = 0;
    if (!ExtractName(edit, name, &start, &end)) {
        m_bApplySearchLimit = true;
        return;
    }
    std::wstring contact;
    if (CheckNumberOrEmail(name, contact)) {
        m_bDisableChange = 1;
        Select(edit, start, end);
        Replace(edit, contact);
        m_bDisableChange = 0;
        end += static_cast<int>(contact.size()) - (end - start);
    }
    const std::wstring text = EditText(edit);
    if (end < static_cast<int>(text.size()) && text[static_cast<size_t>(end)] == L';') {
        Select(edit, end + 2, end + 2);
    } else {
        m_bDisableChange = 1;
        Select(edit, end, end);
        Replace(edit, L"; ");
        m_bDisableChange = 0;
    }
    VerifyNames(edit);
    ValidateInput(edit, name, start, end, m_lFormalValidityChecking, 0, 1);
    m_bApplySearchLimit = true;
}

void CSearchEngineControl::FinishBySemicolon(HWND edit, LPARAM lParam)
{
    const int row = RowOfEdit(edit);
    const WNDPROC previous = row >= 0 ? m_pfnEditProc[row] : nullptr;
    if (!previous)
        return;
    HideContactListBox(1);
    const bool formal = m_lFormalValidityChecking != 0;
    if (formal) {
        CallWindowProcW(previous, edit, WM_CHAR, L';', lParam);
        const CHARRANGE at = Selection(edit);
        Select(edit, at.cpMin - 1, at.cpMin - 1);
    }
    std::wstring name;
    int start = 0, end = 0;
    const bool found = ExtractName(edit, name, &start, &end) != 0;
    if (found) {
        std::wstring contact;
        if (CheckNumberOrEmail(name, contact)) {
            m_bDisableChange = 1;
            Select(edit, start, end);
            Replace(edit, contact);
            m_bDisableChange = 0;
            end = start + static_cast<int>(contact.size());
        }
    }
    if (!formal) {
        CallWindowProcW(previous, edit, WM_CHAR, L';', lParam);
    } else {
        const CHARRANGE at = Selection(edit);
        Select(edit, at.cpMin + 1, at.cpMin + 1);
    }
    VerifyNames(edit);
    if (found)
        ValidateInput(edit, name, start, end, m_lFormalValidityChecking, 0, 1);
}

void CSearchEngineControl::UpdateContactList(HWND edit, bool addressOnly)
{
    std::wstring name;
    int start = 0, end = 0;
    if (!ExtractName(edit, name, &start, &end) || name.empty())
        return;
    std::vector<std::wstring> found;
    bool byName = true;
    if (!SearchValues(name, true, found)) {
        found.clear();
        byName = false;
        if (!SearchValues(name, false, found))
            return;
    }
    if (found.empty())
        return;
    m_FoundContacts = found;
    if (m_FoundContacts.size() == 1) {
        const std::wstring& contact = m_FoundContacts[0];
        const LONG length = static_cast<LONG>(contact.size());
        m_iNameLen = static_cast<int>(name.size());
        if (!addressOnly) {
            m_bDisableSelChange = 1;
            m_bDisableChange = 1;
            Select(edit, start, start + m_iNameLen);
            Replace(edit, contact);
            m_bDisableChange = 0;
            // The completed part stays selected, so that typing on replaces it.
            const size_t at = byName && IsSearchedName(name, contact) ? 0 : FoldedFind(contact, name);
            Select(edit, start + length, start + static_cast<LONG>(at) + m_iNameLen);
            m_bDisableSelChange = 0;
        } else {
            AddStrings();
            ShowContactListBox(edit);
        }
        return;
    }
    if (m_sResultLimit > 0 && m_FoundContacts.size() > static_cast<size_t>(m_sResultLimit))
        m_FoundContacts.resize(static_cast<size_t>(m_sResultLimit));
    AddStrings();
    ShowContactListBox(edit);
    if (!addressOnly) {
        const std::wstring& first = m_FoundContacts[0];
        m_bDisableSelChange = 1;
        m_bDisableChange = 1;
        Select(edit, start, end);
        Replace(edit, first);
        m_bDisableChange = 0;
        Select(edit, start, start + static_cast<LONG>(first.size()));
        m_iNameLen = static_cast<int>(first.size());
        m_bDisableSelChange = 0;
    }
}

void CSearchEngineControl::AddStrings()
{
    if (!m_wndContactListBox)
        return;
    SendMessageW(m_wndContactListBox, WM_SETREDRAW, FALSE, 0);
    SendMessageW(m_wndContactListBox, LB_RESETCONTENT, 0, 0);
    for (const std::wstring& contact : m_FoundContacts)
        if (SendMessageW(m_wndContactListBox, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                         reinterpret_cast<LPARAM>(contact.c_str())) == LB_ERR)
            SendMessageW(m_wndContactListBox, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(contact.c_str()));
    SendMessageW(m_wndContactListBox, LB_SETCURSEL, 0, 0);
    SendMessageW(m_wndContactListBox, WM_SETREDRAW, TRUE, 0);
}

void CSearchEngineControl::ShowContactListBox(HWND edit)
{
    if (!m_wndContactListBox)
        return;
    if (edit) {
        RECT r;
        GetWindowRect(edit, &r);
        POINT at = {LanguageIsRtl() ? r.right : r.left, r.bottom};
        ScreenToClient(GetParent(m_wndContactListBox), &at);
        SetWindowPos(m_wndContactListBox, HWND_TOP, at.x, at.y, m_nEditcontrolWidth, CalcListCtrlHeight(),
                     SWP_NOACTIVATE);
    }
    ShowWindow(m_wndContactListBox, SW_SHOWNA);
}

int CSearchEngineControl::CalcListCtrlHeight()
{
    RECT window, client;
    GetWindowRect(m_wndContactListBox, &window);
    GetClientRect(m_wndContactListBox, &client);
    const int frame = (window.bottom - window.top) - (client.bottom - client.top);
    const int items = static_cast<int>(SendMessageW(m_wndContactListBox, LB_GETCOUNT, 0, 0));
    const int item = static_cast<int>(SendMessageW(m_wndContactListBox, LB_GETITEMHEIGHT, 0, 0));
    return frame + item * std::min(std::max(items, 0), 5);
}

int CSearchEngineControl::CalcEditCtrlHeight(HWND edit)
{
    const int row = RowOfEdit(edit);
    if (!m_iSystemFontHeight) {
        // The system font doesn't change while the box lives: measured once.
        HDC dc = GetDC(nullptr);
        HGDIOBJ old = SelectObject(dc, GetStockObject(SYSTEM_FONT));
        TEXTMETRICW metrics = {};
        GetTextMetricsW(dc, &metrics);
        SelectObject(dc, old);
        ReleaseDC(nullptr, dc);
        m_iSystemFontHeight = metrics.tmHeight;
    }
    int h = m_iSystemFontHeight;
    if (m_lFontHeight < h)
        h = static_cast<int>(m_lFontHeight);
    return h / 2 + m_iBorderWidth + (row >= 0 ? m_sLineCount[row] : 1) * static_cast<int>(m_lFontHeight);
}

int CSearchEngineControl::SelectUp()
{
    const int current = static_cast<int>(SendMessageW(m_wndContactListBox, LB_GETCURSEL, 0, 0));
    const int index = std::max(current - 1, 0);
    SendMessageW(m_wndContactListBox, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
    return index;
}

int CSearchEngineControl::SelectDown()
{
    const int count = static_cast<int>(SendMessageW(m_wndContactListBox, LB_GETCOUNT, 0, 0));
    const int current = static_cast<int>(SendMessageW(m_wndContactListBox, LB_GETCURSEL, 0, 0));
    const int index = std::max(std::min(current + 1, count - 1), 0);
    SendMessageW(m_wndContactListBox, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
    return index;
}

// ---- The list -----------------------------------------------------------------------------------------------

HWND CSearchEngineControl::GetCurrentEditBox()
{
    if (!m_wndContactListBox)
        return nullptr;
    RECT list;
    GetWindowRect(m_wndContactListBox, &list);
    for (int i = 0; i < m_iControlCount; ++i) {
        if (!m_hEditBox[i])
            continue;
        RECT r;
        GetWindowRect(m_hEditBox[i], &r);
        if (r.bottom == list.top && (r.left == list.left || r.right == list.right))
            return m_hEditBox[i];
    }
    return nullptr;
}

LRESULT CALLBACK CSearchEngineControl::ListBoxProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CSearchEngineControl* box = BoxOf(hwnd);
    if (!box || !box->m_pfnListProc)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    return box->OnListMessage(hwnd, message, wParam, lParam);
}

LRESULT CSearchEngineControl::OnListMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC previous = m_pfnListProc;
    switch (message) {
    case WM_MOUSEMOVE:
        if (wParam & MK_LBUTTON) {
            const LRESULT result = CallWindowProcW(previous, hwnd, message, wParam, lParam);
            HWND edit = GetCurrentEditBox();
            const int index = static_cast<int>(SendMessageW(hwnd, LB_GETCURSEL, 0, 0));
            std::wstring name;
            int start = 0, end = 0;
            if (edit && index >= 0 && index < static_cast<int>(m_FoundContacts.size()) &&
                ExtractName(edit, name, &start, &end)) {
                // Dragging over the list shows the contact under the mouse on the recipient's place.
                const std::wstring& contact = m_FoundContacts[static_cast<size_t>(index)];
                m_bDisableChange = m_bDisableSelChange = 1;
                Select(edit, start, end);
                Replace(edit, contact);
                Select(edit, start, start + static_cast<LONG>(contact.size()));
                m_bDisableChange = m_bDisableSelChange = 0;
            }
            return result;
        }
        break;
    case WM_LBUTTONUP: {
        if (GetCapture() == hwnd)
            ReleaseCapture();
        HWND edit = GetCurrentEditBox();
        if (edit) {
            const LRESULT index = SendMessageW(hwnd, LB_GETCURSEL, 0, 0);
            SendMessageW(edit, kListChosen, static_cast<WPARAM>(index), 0);
            SetFocus(edit);
        }
        return 0;
    }
    case WM_NCDESTROY:
        if (m_wndContactListBox == hwnd)
            m_wndContactListBox = nullptr;
        return LetGo(hwnd, m_pfnListProc, message, wParam, lParam);
    default:
        break;
    }
    return CallWindowProcW(previous, hwnd, message, wParam, lParam);
}

// ---- Buttons and host ---------------------------------------------------------------------------------------

LRESULT CALLBACK CSearchEngineControl::ButtonProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CSearchEngineControl* box = BoxOf(hwnd);
    const int row = box ? box->RowOfButton(hwnd) : -1;
    if (row < 0 || !box->m_pfnButtonProc[row])
        return DefWindowProcW(hwnd, message, wParam, lParam);
    return box->OnButtonMessage(row, hwnd, message, wParam, lParam);
}

LRESULT CSearchEngineControl::OnButtonMessage(int row, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC previous = m_pfnButtonProc[row];
    switch (message) {
    case WM_GETDLGCODE:
        return DLGC_WANTMESSAGE | DLGC_BUTTON;
    case WM_KEYDOWN:
        if (wParam == VK_TAB) {
            if (GetKeyState(VK_SHIFT) >= 0) {
                if (m_hEditBox[row])
                    SetFocus(m_hEditBox[row]);
            } else if (row > 0 && m_hEditBox[row - 1]) {
                SetFocus(m_hEditBox[row - 1]);
            } else if (GetHostWindow()) {
                // The first row's button steps forward, like the last edit box.
                PostMessageW(GetParent(GetHostWindow()), WM_NEXTDLGCTL, 0, 0);
            }
            return 0;
        }
        break;
    case WM_CHAR:
        if (wParam == L'\t')
            return 0;
        break;
    case WM_NCDESTROY:
        return LetGo(hwnd, m_pfnButtonProc[row], message, wParam, lParam);
    default:
        break;
    }
    return CallWindowProcW(previous, hwnd, message, wParam, lParam);
}

void CSearchEngineControl::OpenPicker(int row)
{
    HWND edit = m_hEditBox[row];
    if (!edit)
        return;
    std::wstring text = EditText(edit);
    const bool rtl = LanguageIsRtl();
    if (rtl)
        RemoveUnicodeControlCharacters(text);
    std::unique_ptr<CSeRecipentDlg> picker(new CSeRecipentDlg());
    picker->SetText(text);
    picker->SetAddressFilter(m_lAddressFilter);
    if (picker->DoModal(GetHostWindow()) == 1 && IsWindow(edit)) {
        std::wstring picked = picker->GetText();
        if (rtl) {
            RemoveUnicodeControlCharacters(picked);
            picked = WrapAddresses(picked);
        }
        if (!picked.empty() && picked[0] == L';') {
            const LONG length = GetWindowTextLengthW(edit);
            Select(edit, length, length);
            Replace(edit, picked.substr(1));
            SendMessageW(edit, WM_CHAR, L';', 0);
        } else {
            SetWindowTextW(edit, picked.c_str());
        }
        VerifyNames(edit);
    }
}

void CSearchEngineControl::PaintHost(HWND hwnd)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, &paint);
    if (!m_hLabelFont) {
        LOGFONTW description = {};
        DkhLoadFont(&description);
        description.lfHeight = 15;
        description.lfWeight = 500;
        m_hLabelFont = CreateFontIndirectW(&description);
    }
    HGDIOBJ old = SelectObject(dc, m_hLabelFont);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
    for (int i = 0; i < m_iControlCount; ++i) {
        if (!GetButton(i))
            continue;
        // The label stands right of the button's cell, over the edit box.
        const RECT r = RectIn(GetButton(i), hwnd);
        const int cellTop = r.top - (m_iButtonHeight - (r.bottom - r.top)) / 2;
        const std::wstring label = Label(i);
        TextOutW(dc, m_iButtonWidth + kGap, cellTop + 3, label.c_str(), static_cast<int>(label.size()));
    }
    SelectObject(dc, old);
    EndPaint(hwnd, &paint);
}

LRESULT CALLBACK CSearchEngineControl::HostWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CSearchEngineControl* box = BoxOf(hwnd);
    if (!box || !box->m_pfnHostProc)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    return box->OnHostMessage(hwnd, message, wParam, lParam);
}

LRESULT CSearchEngineControl::OnHostMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC previous = m_pfnHostProc;
    switch (message) {
    case WM_ERASEBKGND: {
        RECT r;
        GetClientRect(hwnd, &r);
        HBRUSH brush = CreateSolidBrush(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW));
        FillRect(reinterpret_cast<HDC>(wParam), &r, brush);
        DeleteObject(brush);
        return 1;
    }
    case WM_PAINT:
        PaintHost(hwnd);
        return 0;
    case WM_NOTIFY: {
        const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header && header->code == EN_SELCHANGE && RowOfEdit(header->hwndFrom) >= 0) {
            if (!m_bDisableSelChange)
                HideContactListBox(1);
            return 0;
        }
        break;
    }
    case WM_COMMAND: {
        HWND from = reinterpret_cast<HWND>(lParam);
        const int code = HIWORD(wParam);
        const int buttonRow = RowOfButton(from);
        if (buttonRow >= 0 && code == BN_CLICKED) {
            OpenPicker(buttonRow);
            return 0;
        }
        if (RowOfEdit(from) >= 0) {
            if (code == EN_CHANGE) {
                if (m_bDisableChange) {
                    ResizeControl(from, false);
                } else if (m_bPasting) {
                    // Ctrl+V, Shift+Insert or a paste message: the host hears undo and paste, the row may grow by
                    // several lines at once, and the pasted text is searched after the pause.
                    SendMessageW(hwnd, WM_UNDO, 0, 0);
                    SendMessageW(hwnd, WM_PASTE, 0, 0);
                    ResizeControl(from, true);
                    StartSearchTimer(from, false);
                } else {
                    ResizeControl(from, false);
                }
                return 0;
            }
            if (code == EN_VSCROLL) {
                RedrawWindow(from, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
                return 0;
            }
        }
        break;
    }
    case WM_NCDESTROY:
        return LetGo(hwnd, m_pfnHostProc, message, wParam, lParam);
    default:
        break;
    }
    return CallWindowProcW(previous, hwnd, message, wParam, lParam);
}

// ---- Growing ------------------------------------------------------------------------------------------------

void CSearchEngineControl::PlaceRow(int row)
{
    HWND edit = m_hEditBox[row];
    HWND host = GetHostWindow();
    if (!edit || !host)
        return;
    const RECT r = RectIn(edit, host);
    SetWindowPos(edit, nullptr, r.left, r.top, m_nEditcontrolWidth, CalcEditCtrlHeight(edit),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void CSearchEngineControl::ResizeControl(HWND edit, bool pasted)
{
    const int row = RowOfEdit(edit);
    HWND host = GetHostWindow();
    if (row < 0 || !host)
        return;
    int lines = static_cast<int>(SendMessageW(edit, EM_GETLINECOUNT, 0, 0));
    if (pasted && lines > m_sMaxLines)
        lines = m_sMaxLines;
    // The usual key: the row keeps its height, and the edit box is redrawn; or the row stands at the line
    // limit and scrolls, and parent and edit box are redrawn. Nothing moves, so of the parent only the edit
    // box's place can have changed: that is what is redrawn of it. Both are invalidations without erase, which
    // join the paint that the rich edit box has pending for the key.
    const bool atLimit = lines > m_sMaxLines && m_sLineCount[row] == m_sMaxLines;
    if (lines == m_sLineCount[row] || atLimit) {
        if (atLimit) {
            const RECT place = RectIn(edit, host);
            InvalidateRect(host, &place, FALSE);
        }
        InvalidateRect(edit, nullptr, FALSE);
        return;
    }
    int gaps[3] = {};
    for (int i = 1; i < m_iControlCount; ++i)
        if (m_hEditBox[i] && m_hEditBox[i - 1])
            gaps[i] = RectIn(m_hEditBox[i], host).top - RectIn(m_hEditBox[i - 1], host).bottom;
    m_sLineCount[row] = static_cast<short>(std::max(1, std::min(lines, static_cast<int>(m_sMaxLines))));
    PlaceRow(row);
    if (m_wndContactListBox && IsWindowVisible(m_wndContactListBox))
        ShowContactListBox(edit);
    const RECT placed = RectIn(edit, host);
    m_nEditcontrolWidth = placed.right - placed.left;
    for (int i = row + 1; i < m_iControlCount; ++i) {
        if (!m_hEditBox[i])
            continue;
        const RECT above = RectIn(m_hEditBox[i - 1], host);
        const RECT mine = RectIn(m_hEditBox[i], host);
        const int top = above.bottom + gaps[i];
        SetWindowPos(m_hEditBox[i], nullptr, mine.left, top, m_nEditcontrolWidth, CalcEditCtrlHeight(m_hEditBox[i]),
                     SWP_NOZORDER | SWP_NOACTIVATE);
        if (HWND button = GetButton(i)) {
            const RECT r = RectIn(button, host);
            SetWindowPos(button, nullptr, r.left, r.top + (top - mine.top), 0, 0,
                         SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOSIZE);
        }
    }
    if (pasted && m_sMaxLines > 1) {
        SendMessageW(edit, EM_LINESCROLL, 0, -m_sMaxLines);
        SendMessageW(edit, EM_SCROLLCARET, 0, 0);
    }
    int bottom = 0;
    for (int i = 0; i < m_iControlCount; ++i) {
        if (m_hEditBox[i])
            bottom = std::max(bottom, static_cast<int>(RectIn(m_hEditBox[i], host).bottom));
        if (GetButton(i))
            bottom = std::max(bottom, static_cast<int>(RectIn(GetButton(i), host).bottom));
    }
    RECT hostWindow;
    GetWindowRect(host, &hostWindow);
    SetWindowPos(host, nullptr, 0, 0, hostWindow.right - hostWindow.left, bottom,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    const std::vector<ISearchEngineNotify*> listeners = m_pNotify;
    for (ISearchEngineNotify* listener : listeners)
        listener->OnResize();
    InvalidateRect(host, nullptr, TRUE);
}

// ---- Marking ------------------------------------------------------------------------------------------------

void CSearchEngineControl::VerifyNames(HWND edit)
{
    if (!edit || !IsWindow(edit))
        return;
    const std::wstring text = EditText(edit);
    const CHARRANGE saved = Selection(edit);
    Underline(edit, 0, static_cast<int>(text.size()), 1);
    if (text.empty())
        return;
    m_bDisableChange = 1;
    SendMessageW(edit, WM_SETREDRAW, FALSE, 0);
    size_t from = 0;
    while (from <= text.size()) {
        size_t cut = text.find(L';', from);
        if (cut == std::wstring::npos)
            cut = text.size();
        size_t first = from;
        while (first < cut && text[first] == L' ')
            ++first;
        while (first < cut && text[first] == L';')
            ++first;
        const std::wstring piece = text.substr(first, cut - first);
        if (!piece.empty()) {
            bool known = false;
            const size_t open = piece.rfind(L'<');
            if (open != std::wstring::npos && open > 0) {
                if (open >= 2) {
                    std::wstring name = piece.substr(0, open - 1);
                    std::vector<std::wstring> results;
                    SearchValues(name, true, results);
                    known = std::find(results.begin(), results.end(), piece) != results.end();
                }
            } else if (piece[0] == L'<') {
                std::wstring name, address, contact;
                GetNameAndAddress(piece, name, address);
                known = CheckNumberOrEmail(address, contact) != 0;
            }
            if (known)
                Underline(edit, static_cast<int>(first), static_cast<int>(cut), 0);
        }
        from = cut + 1;
    }
    Select(edit, saved.cpMin, saved.cpMax);
    SendMessageW(edit, WM_SETREDRAW, TRUE, 0);
    m_bDisableChange = 0;
    InvalidateRect(edit, nullptr, TRUE);
    UpdateWindow(edit);
}
