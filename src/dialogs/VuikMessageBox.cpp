// The skinned message boxes. Both run one in-memory template, four buttons (ids 1, 6, 7, 2) that are kept,
// moved or destroyed by the type, and lay everything out at WM_INITDIALOG from the measured title and text.
#include "zcmod/VuikMessageBox.h"

#include <cstring>
#include <cwchar>

#include "controls/CommonSkinSetup.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikButtonCtrl.h"
#include "zcmod/VuikCommonButtonCtrl.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikWindowBackgroundCtrl.h"

namespace {

const size_t kTemplateBytes = 1024;
const int kMargin = 21;  // the text's distance from the frame, and the icon's
// The text's static: a visible child that wraps as the text was measured, an overlong word broken too.
const DWORD kTextStyle = WS_CHILD | WS_VISIBLE | SS_LEFT | SS_EDITCONTROL;

// The four buttons in template order, and where the template puts them (dialog units).
const WORD kButtonIds[4] = {IDOK, IDYES, IDNO, IDCANCEL};
const short kButtonX[4] = {4, 122, 179, 65};

int SlotOf(UINT id)
{
    switch (id) {
        case IDOK: return 0;
        case IDCANCEL: return 1;
        case IDYES: return 2;
        case IDNO: return 3;
        default: return -1;
    }
}

// The buttons a type shows, left to right (in layout order), and its default id. `loneCancel`: whether 7
// means a lone Cancel. Returns the count, or 0 for a type whose buttons all stay as the template put them.
int ButtonRow(UINT type, bool loneCancel, WORD row[3], WORD* defaultId)
{
    switch (type & 0xF) {
        case MB_OK: row[0] = IDOK; *defaultId = IDOK; return 1;
        case MB_OKCANCEL: row[0] = IDOK; row[1] = IDCANCEL; *defaultId = IDOK; return 2;
        case MB_YESNOCANCEL:
            row[0] = IDYES; row[1] = IDNO; row[2] = IDCANCEL; *defaultId = IDYES; return 3;
        case MB_YESNO: row[0] = IDYES; row[1] = IDNO; *defaultId = IDYES; return 2;
        case MB_VUIK_CANCELONLY:
            if (loneCancel) {
                row[0] = IDCANCEL;
                *defaultId = IDCANCEL;
                return 1;
            }
            break;
        default: break;
    }
    *defaultId = 0;
    return 0;
}

wchar_t* CopyText(const wchar_t* text)
{
    if (!text)
        text = L"";
    const size_t length = wcslen(text);
    wchar_t* copy = new wchar_t[length + 1];
    std::memcpy(copy, text, (length + 1) * sizeof(wchar_t));
    return copy;
}

void WriteWords(WORD*& at, const wchar_t* text)
{
    do {
        *at++ = static_cast<WORD>(*text);
    } while (*text++);
}

// The template both boxes run: four push buttons on a 188 by 62 frame in 8 point "Ms Sans Serif".
void BuildTemplate(LPDLGTEMPLATEW block, DWORD exStyle,
                   int (*putItem)(LPDLGITEMTEMPLATEW, POINT, SIZE, DWORD, WORD, WORD))
{
    block->style = 0x80C800C0;
    block->dwExtendedStyle = exStyle;
    block->cdit = 4;
    block->x = 0;
    block->y = 0;
    block->cx = 188;
    block->cy = 62;
    WORD* at = reinterpret_cast<WORD*>(block + 1);
    *at++ = 0;  // no menu
    *at++ = 0;  // the dialog class
    *at++ = 0;  // no title
    *at++ = 8;  // point size
    WriteWords(at, L"Ms Sans Serif");
    for (int i = 0; i < 4; ++i) {
        ULONG_PTR address = reinterpret_cast<ULONG_PTR>(at);
        at = reinterpret_cast<WORD*>((address + 3) & ~static_cast<ULONG_PTR>(3));
        const POINT point = {kButtonX[i], 44};
        const SIZE size = {57, 14};
        at += putItem(reinterpret_cast<LPDLGITEMTEMPLATEW>(at), point, size, 0x50010000, kButtonIds[i], 0x0080);
    }
}

int WriteItem(LPDLGITEMTEMPLATEW item, POINT point, SIZE size, DWORD style, WORD id, WORD classAtom)
{
    item->style = style;
    item->dwExtendedStyle = 0;
    item->x = static_cast<short>(point.x);
    item->y = static_cast<short>(point.y);
    item->cx = static_cast<short>(size.cx);
    item->cy = static_cast<short>(size.cy);
    item->id = id;
    WORD* at = reinterpret_cast<WORD*>(item + 1);
    *at++ = 0xFFFF;
    *at++ = classAtom;
    *at++ = 0;  // no title
    *at++ = 0;  // no creation data
    return static_cast<int>(at - reinterpret_cast<WORD*>(item));
}

// The measured extent of `text` in `font`: one line, or word-broken within `limit` when wider than it.
// `rect` comes in with its top left set and leaves with the measured extent.
void MeasureText(HDC dc, HFONT font, const wchar_t* text, int limit, RECT* rect)
{
    HGDIOBJ old = SelectObject(dc, font);
    RECT r = *rect;
    r.right = r.left;
    r.bottom = r.top;
    DrawTextW(dc, text, -1, &r, DT_CALCRECT);
    if (r.right - r.left > limit) {
        r.right = r.left + limit;
        r.bottom = r.top;
        // An edit control's rule breaks a word longer than the limit as well, so that an unbroken text
        // wraps instead of pushing the box wider than the limit.
        DrawTextW(dc, text, -1, &r, DT_CALCRECT | DT_WORDBREAK | DT_EDITCONTROL);
        if (r.right > r.left + limit)
            r.right = r.left + limit;
    }
    SelectObject(dc, old);
    *rect = r;
}

SIZE MeasureTitle(HDC dc, HFONT font, const wchar_t* title)
{
    HGDIOBJ old = SelectObject(dc, font);
    RECT r = {0, 0, 0, 0};
    DrawTextW(dc, title, -1, &r, DT_CALCRECT);
    SelectObject(dc, old);
    const SIZE size = {r.right - r.left, r.bottom - r.top};
    return size;
}

// Centres like a plain top-level window: over a visible, not minimised owner, else on the work area; then
// kept inside the work area.
void CentreDialog(HWND dialog)
{
    RECT window;
    GetWindowRect(dialog, &window);
    const int width = window.right - window.left;
    const int height = window.bottom - window.top;
    HWND owner = GetWindow(dialog, GW_OWNER);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(owner ? owner : dialog, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const RECT work = monitor.rcWork;
    RECT around = work;
    if (owner && IsWindowVisible(owner) && !IsIconic(owner))
        GetWindowRect(owner, &around);
    int x = around.left + ((around.right - around.left) - width) / 2;
    int y = around.top + ((around.bottom - around.top) - height) / 2;
    if (x + width > work.right)
        x = work.right - width;
    if (y + height > work.bottom)
        y = work.bottom - height;
    if (x < work.left)
        x = work.left;
    if (y < work.top)
        y = work.top;
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Resize(HWND dialog, int current, int wanted, int height, RECT* rect)
{
    if (current < wanted)
        SetWindowPos(dialog, nullptr, 0, 0, wanted, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    if (rect)
        GetClientRect(dialog, rect);
}

int WindowHeight(HWND hwnd)
{
    RECT r;
    GetWindowRect(hwnd, &r);
    return r.bottom - r.top;
}

// Sets the extended layout bit that a right-to-left box must have.
void EnsureLayoutRtl(HWND dialog)
{
    const LONG_PTR ex = GetWindowLongPtrW(dialog, GWL_EXSTYLE);
    if (!(ex & WS_EX_LAYOUTRTL))
        SetWindowLongPtrW(dialog, GWL_EXSTYLE, ex | WS_EX_LAYOUTRTL);
}

// Places the row: `count` buttons `bw` wide, 5 apart, starting at `x`; the others of the four are destroyed.
template <class Button>
void PlaceRow(HWND dialog, Button* const buttons[4], const WORD row[3], int count, int x, int y, int bw,
              int bh, WORD defaultId)
{
    bool used[4] = {false, false, false, false};
    for (int i = 0; i < count; ++i)
        used[SlotOf(row[i])] = true;
    for (int slot = 0; slot < 4; ++slot) {
        HWND button = buttons[slot] ? buttons[slot]->m_hWnd : nullptr;
        if (!used[slot] && button && IsWindow(button))
            DestroyWindow(button);
    }
    for (int i = 0; i < count; ++i) {
        HWND button = GetDlgItem(dialog, row[i]);
        if (button)
            SetWindowPos(button, nullptr, x + i * (bw + 5), y, bw, bh, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    SendMessageW(dialog, DM_SETDEFID, defaultId, 0);
}

// Builds a box's template in fresh memory and runs `run(block)`, the modal dialog of one box object;
// `failure` when the memory can't be had.
template <class Run>
int RunFromTemplate(void (*fill)(LPDLGTEMPLATEW, DWORD), DWORD exStyle, int failure, Run run)
{
    HGLOBAL memory = GlobalAlloc(GMEM_ZEROINIT, kTemplateBytes);
    if (!memory)
        return failure;
    LPDLGTEMPLATEW block = static_cast<LPDLGTEMPLATEW>(GlobalLock(memory));
    if (!block) {
        GlobalFree(memory);
        return failure;
    }
    fill(block, exStyle);
    GlobalUnlock(memory);
    const INT_PTR result = run(block);
    GlobalFree(memory);
    return static_cast<int>(result);
}

// The box object of a dialog: kept in DWLP_USER from WM_INITDIALOG on, which comes with it as lParam.
template <class Box>
Box* BoxOf(HWND hwnd, UINT message, LPARAM lParam)
{
    if (message != WM_INITDIALOG)
        return reinterpret_cast<Box*>(GetWindowLongPtrW(hwnd, DWLP_USER));
    Box* box = reinterpret_cast<Box*>(lParam);
    if (box)
        SetWindowLongPtrW(hwnd, DWLP_USER, lParam);
    return box;
}

// A command from one of the four buttons ends the dialog with its id.
BOOL EndOnButton(HWND dialog, WPARAM wParam)
{
    const UINT id = LOWORD(wParam);
    if (SlotOf(id) < 0)
        return FALSE;
    EndDialog(dialog, id);
    return TRUE;
}

template <class Button>
void DestroyButtons(Button* const buttons[4])
{
    for (int i = 0; i < 4; ++i) {
        HWND button = buttons[i]->m_hWnd;
        if (button && IsWindow(button))
            DestroyWindow(button);
    }
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------
// CVuikMessageBox

CVuikButtonSkin* CVuikMessageBox::m_pButtonSkin = nullptr;
CVuikStaticBitmapSkin* CVuikMessageBox::m_pBackgroundSkin = nullptr;
COLORREF CVuikMessageBox::m_clrText = RGB(0, 0, 0);
HINSTANCE CVuikMessageBox::m_hLanguageModule = nullptr;
UINT CVuikMessageBox::m_uOk = 0;
UINT CVuikMessageBox::m_uCancel = 0;
UINT CVuikMessageBox::m_uYes = 0;
UINT CVuikMessageBox::m_uNo = 0;

void CVuikMessageBox::SetButtonCaptions(HINSTANCE module, UINT ok, UINT cancel, UINT yes, UINT no)
{
    m_hLanguageModule = module;
    m_uOk = ok;
    m_uCancel = cancel;
    m_uYes = yes;
    m_uNo = no;
}

void CVuikMessageBox::CMessageBoxBackground::CreateBackBuffer(int width, int height, CVuikGraphics* graphics)
{
    CVuikWindowImpl<CVuikStaticBitmapSkin>::CreateBackBuffer(width, height, graphics);
    if (!m_hBackBuffer || !m_pIcon || !m_pIcon->GetPrimary())
        return;
    HDC screen = graphics ? static_cast<HDC>(*graphics) : nullptr;
    HDC dc = CreateCompatibleDC(screen);
    if (!dc)
        return;
    HGDIOBJ old = SelectObject(dc, m_hBackBuffer);
    CVuikGraphics drawing(dc);
    drawing.DrawImage(m_pIcon, kMargin, kMargin);
    SelectObject(dc, old);
    DeleteDC(dc);
}

CVuikMessageBox::CVuikMessageBox(const wchar_t* text, const wchar_t* caption, UINT type)
    : m_hWnd(nullptr),
      m_pszText(CopyText(text)),
      m_pszCaption(CopyText(caption)),
      m_uType(type),
      m_hHollowBrush(nullptr),
      m_hMessageFont(nullptr)
{
    wcscpy(m_szOk, L"OK");
    wcscpy(m_szCancel, L"Cancel");
    wcscpy(m_szYes, L"Yes");
    wcscpy(m_szNo, L"No");
    SetRectEmpty(&m_rcText);
    for (int i = 0; i < 4; ++i)
        m_pButtons[i] = new CVuikButtonCtrl;
}

CVuikMessageBox::~CVuikMessageBox()
{
    for (int i = 0; i < 4; ++i)
        delete m_pButtons[i];
    delete m_Background.m_pIcon;
    m_Background.m_pIcon = nullptr;
    if (m_hHollowBrush)
        DeleteObject(m_hHollowBrush);
    if (m_hMessageFont)
        DeleteObject(m_hMessageFont);
    delete[] m_pszText;
    delete[] m_pszCaption;
}

int CVuikMessageBox::Show(HWND parent, const wchar_t* text, const wchar_t* caption, UINT type)
{
    if (!m_pBackgroundSkin || !m_pButtonSkin)
        return MessageBoxW(parent, text, caption, type);
    return RunFromTemplate(CreateDialogTemplate, CVuikLib::IsLayoutRTL() ? (WS_EX_LAYOUTRTL | WS_EX_RTLREADING) : 0,
                           0, [&](LPCDLGTEMPLATEW block) {
                               CVuikMessageBox box(text, caption, type);
                               return DialogBoxIndirectParamW(CVuikLib::GetInstance(), block, parent, DialogProc,
                                                              reinterpret_cast<LPARAM>(&box));
                           });
}

void CVuikMessageBox::CreateDialogTemplate(LPDLGTEMPLATEW block, DWORD exStyle)
{
    BuildTemplate(block, exStyle, PutItemToTemplate);
}

int CVuikMessageBox::PutItemToTemplate(LPDLGITEMTEMPLATEW item, POINT point, SIZE size, DWORD style, WORD id,
                                       WORD classAtom)
{
    return WriteItem(item, point, size, style, id, classAtom);
}

INT_PTR CALLBACK CVuikMessageBox::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikMessageBox* box = BoxOf<CVuikMessageBox>(hwnd, message, lParam);
    switch (message) {
        case WM_INITDIALOG:
            if (!box)
                return FALSE;
            box->m_hWnd = hwnd;
            return box->OnInitDialog();
        case WM_COMMAND:
            return box ? box->OnCommand(wParam, lParam) : FALSE;
        case WM_CLOSE:
            return box ? box->OnClose() : FALSE;
        case WM_DRAWITEM:
            if (!box)
                return FALSE;
            box->OnDrawItem(wParam, lParam);
            SetWindowLongPtrW(hwnd, DWLP_MSGRESULT, 1);
            return TRUE;
        case WM_CTLCOLORSTATIC:
            return box ? reinterpret_cast<INT_PTR>(
                             box->OnCtlColorStatic(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam)))
                       : FALSE;
        default: return FALSE;
    }
}

BOOL CVuikMessageBox::OnCommand(WPARAM wParam, LPARAM) { return EndOnButton(m_hWnd, wParam); }

BOOL CVuikMessageBox::OnClose()
{
    EndDialog(m_hWnd, IDCANCEL);
    FreeResources();
    return TRUE;
}

void CVuikMessageBox::FreeResources() { DestroyButtons(m_pButtons); }

void CVuikMessageBox::LoadStrings()
{
    if (!m_hLanguageModule)
        return;
    LoadStringW(m_hLanguageModule, m_uOk, m_szOk, 255);
    LoadStringW(m_hLanguageModule, m_uCancel, m_szCancel, 255);
    LoadStringW(m_hLanguageModule, m_uYes, m_szYes, 255);
    LoadStringW(m_hLanguageModule, m_uNo, m_szNo, 255);
}

void CVuikMessageBox::CreateButtons()
{
    const wchar_t* captions[4] = {m_szOk, m_szCancel, m_szYes, m_szNo};
    const UINT ids[4] = {IDOK, IDCANCEL, IDYES, IDNO};
    for (int i = 0; i < 4; ++i) {
        HWND item = GetDlgItem(m_hWnd, ids[i]);
        if (!item || !m_pButtons[i]->SubclassWindow(item))
            continue;
        SetWindowTextW(item, captions[i]);
        m_pButtons[i]->SetSkin(m_pButtonSkin);
        m_pButtons[i]->SizeToContent();
        EnableWindow(item, TRUE);
    }
}

void CVuikMessageBox::SetDialogIcon()
{
    delete m_Background.m_pIcon;
    m_Background.m_pIcon = nullptr;
    if (!(m_uType & 0xF0))
        return;
    // Only a user icon comes from the library's module; the others are asked of no module, where the
    // bitmap is not found, and the box shows none.
    HINSTANCE module = (m_uType & 0xF0) == MB_USERICON ? CVuikLib::GetInstance() : nullptr;
    if (!module)
        return;
    CVuikBitmap* icon = new CVuikBitmap;
    icon->LoadFromRes(module, ZGR_BMP_MESSAGE_ICON);
    if (!icon->GetPrimary()) {
        delete icon;
        return;
    }
    if (CVuikLib::IsLayoutRTL())
        icon->Mirror();
    m_Background.m_pIcon = icon;
}

void CVuikMessageBox::ResizeDialog(int current, int wanted, int height, RECT* rect)
{
    Resize(m_hWnd, current, wanted, height, rect);
}

BOOL CVuikMessageBox::OnInitDialog()
{
    const bool rtl = CVuikLib::IsLayoutRTL() != 0;
    const int half = GetSystemMetrics(SM_CXSCREEN) / 2;
    if (rtl)
        EnsureLayoutRtl(m_hWnd);

    // The buttons and the background. The background's buffer is painted whole, so it must leave the
    // children's areas alone.
    SetWindowLongPtrW(m_hWnd, GWL_STYLE, GetWindowLongPtrW(m_hWnd, GWL_STYLE) | WS_CLIPCHILDREN);
    m_Background.SetSkin(m_pBackgroundSkin);
    m_Background.SubclassWindow(m_hWnd);
    LoadStrings();
    CreateButtons();
    RECT client, buttonRect = {0, 0, 0, 0};
    GetClientRect(m_hWnd, &client);
    if (HWND first = GetDlgItem(m_hWnd, IDOK))
        GetClientRect(first, &buttonRect);
    const int bw = buttonRect.right, bh = buttonRect.bottom;

    HDC dc = GetDC(m_hWnd);
    // The title, in the caption font, beside the caption buttons.
    NONCLIENTMETRICSW metrics;
    std::memset(&metrics, 0, sizeof(metrics));
    metrics.cbSize = 500;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, 500, &metrics, 0);
    HFONT captionFont = CreateFontIndirectW(&metrics.lfCaptionFont);
    const SIZE title = MeasureTitle(dc, captionFont, m_pszCaption);
    DeleteObject(captionFont);
    const int minWidth = GetSystemMetrics(SM_CXSIZE) + 42 + title.cx;

    if (m_hMessageFont)
        DeleteObject(m_hMessageFont);
    m_hMessageFont = CreateFontIndirectW(&metrics.lfMessageFont);

    SetDialogIcon();
    CVuikBitmap* icon = m_Background.m_pIcon;
    const int iconWidth = icon ? icon->GetWidth() : 0;
    m_rcText.top = kMargin;
    m_rcText.left = icon ? iconWidth + 42 : kMargin;
    MeasureText(dc, m_hMessageFont, m_pszText, icon ? half - 63 : half - 42, &m_rcText);
    ReleaseDC(m_hWnd, dc);
    const int textWidth = m_rcText.right - m_rcText.left;
    const int textHeight = m_rcText.bottom - m_rcText.top;

    int width = icon ? iconWidth + 63 + textWidth : textWidth + 42;
    if (width < minWidth)
        width = minWidth;
    const int height = textHeight + title.cy + bh + 63;
    SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    GetClientRect(m_hWnd, &client);

    // The button row, centred.
    WORD row[3], defaultId;
    const int count = ButtonRow(m_uType, false, row, &defaultId);
    if (count > 0) {
        const int wanted = count * bw + (count + 1) * 21;
        ResizeDialog(client.right, wanted, WindowHeight(m_hWnd), &client);
        const int x = (client.right - count * bw - (count - 1) * 5) / 2;
        PlaceRow(m_hWnd, m_pButtons, row, count, x, client.bottom - bh - 10, bw, bh, defaultId);
    }
    CentreDialog(m_hWnd);

    GetClientRect(m_hWnd, &client);
    m_rcText.right = client.right;
    m_Text.SetTextColor(m_clrText);
    m_Text.Create(m_hWnd, m_rcText, 0, kTextStyle, rtl ? WS_EX_RTLREADING : 0);
    SetWindowTextW(m_Text.m_hWnd, m_pszText);
    SendMessageW(m_Text.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(m_hMessageFont), FALSE);
    ShowWindow(m_Text.m_hWnd, SW_SHOW);

    SetWindowPos(m_hWnd, m_Text.m_hWnd, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
    SetWindowTextW(m_hWnd, m_pszCaption);
    return TRUE;
}

BOOL CVuikMessageBox::OnDrawItem(WPARAM wParam, LPARAM lParam)
{
    const int slot = SlotOf(static_cast<UINT>(wParam));
    if (slot < 0 || !m_pButtons[slot]->m_hWnd)
        return FALSE;
    HWND button = m_pButtons[slot]->m_hWnd;
    WNDPROC proc = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(button, GWLP_WNDPROC));
    return proc ? static_cast<BOOL>(CallWindowProcW(proc, button, WM_DRAWITEM, wParam, lParam)) : FALSE;
}

HBRUSH CVuikMessageBox::OnCtlColorStatic(HDC hdc, HWND)
{
    SetBkMode(hdc, TRANSPARENT);
    ::SetTextColor(hdc, m_clrText);
    if (!m_hHollowBrush) {
        LOGBRUSH hollow = {BS_HOLLOW, 0, 0};
        m_hHollowBrush = CreateBrushIndirect(&hollow);
    }
    return m_hHollowBrush;
}

// ---------------------------------------------------------------------------------------------------------------
// CVuikCommonMessageBox

CVuikWindowBackgroundSkin* CVuikCommonMessageBox::m_pBackgroundSkin = nullptr;
CVuikStaticBitmapSkin* CVuikCommonMessageBox::m_pIconSkin = nullptr;
HINSTANCE CVuikCommonMessageBox::m_hLanguageModule = nullptr;
COLORREF CVuikCommonMessageBox::m_clrText = RGB(0, 0, 0);

CVuikCommonMessageBox::CVuikCommonMessageBox(const wchar_t* text, const wchar_t* caption, UINT type)
    : m_hWnd(nullptr),
      m_pBackground(new CVuikWindowBackgroundCtrl),
      m_pszText(CopyText(text)),
      m_pszCaption(CopyText(caption)),
      m_uType(type),
      m_hMessageFont(nullptr),
      m_pszIcon(nullptr)
{
    SetRectEmpty(&m_rcText);
    for (int i = 0; i < 4; ++i)
        m_pButtons[i] = new CVuikCommonButtonCtrl;
    m_pBackgroundSkin = new CVuikWindowBackgroundSkin;
    m_pIconSkin = new CVuikStaticBitmapSkin;
    m_hLanguageModule = ZCMOD_GetCommonZLR();
}

CVuikCommonMessageBox::~CVuikCommonMessageBox()
{
    for (int i = 0; i < 4; ++i)
        delete m_pButtons[i];
    delete m_pBackground;
    delete m_pBackgroundSkin;
    m_pBackgroundSkin = nullptr;
    delete m_pIconSkin;
    m_pIconSkin = nullptr;
    if (m_hMessageFont)
        DeleteObject(m_hMessageFont);
    delete[] m_pszText;
    delete[] m_pszCaption;
}

int CVuikCommonMessageBox::Show(HWND parent, const wchar_t* text, const wchar_t* caption, UINT type)
{
    return RunFromTemplate(CreateDialogTemplate, CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0, -1,
                           [&](LPCDLGTEMPLATEW block) {
                               CVuikCommonMessageBox box(text, caption, type);
                               return DialogBoxIndirectParamW(CVuikLib::GetInstance(), block, parent, DialogProc,
                                                              reinterpret_cast<LPARAM>(&box));
                           });
}

void CVuikCommonMessageBox::CreateDialogTemplate(LPDLGTEMPLATEW block, DWORD exStyle)
{
    BuildTemplate(block, exStyle, PutItemToTemplate);
}

int CVuikCommonMessageBox::PutItemToTemplate(LPDLGITEMTEMPLATEW item, POINT point, SIZE size, DWORD style,
                                             WORD id, WORD classAtom)
{
    return WriteItem(item, point, size, style, id, classAtom);
}

INT_PTR CALLBACK CVuikCommonMessageBox::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikCommonMessageBox* box = BoxOf<CVuikCommonMessageBox>(hwnd, message, lParam);
    switch (message) {
        case WM_INITDIALOG:
            if (!box)
                return FALSE;
            box->m_hWnd = hwnd;
            return box->OnInitDialog();
        case WM_COMMAND:
            return box ? box->OnCommand(wParam, lParam) : FALSE;
        case WM_CLOSE:
            return box ? box->OnClose() : FALSE;
        default: return FALSE;
    }
}

BOOL CVuikCommonMessageBox::OnCommand(WPARAM wParam, LPARAM) { return EndOnButton(m_hWnd, wParam); }

BOOL CVuikCommonMessageBox::OnClose()
{
    EndDialog(m_hWnd, IDCANCEL);
    FreeResources();
    return TRUE;
}

void CVuikCommonMessageBox::FreeResources() { DestroyButtons(m_pButtons); }

void CVuikCommonMessageBox::CreateButtons()
{
    m_pBackground->SetSkin(m_pBackgroundSkin);
    m_pBackground->SubclassWindow(m_hWnd, m_hWnd, nullptr,
                                  CVuikWindowBackgroundCtrl::CAPTION_CLOSE | CVuikWindowBackgroundCtrl::CAPTION_ISDIALOG);
    // Slots follow ids 1, 2, 6, 7; each button's (normal, disabled) icons and its text.
    const UINT ids[4] = {IDOK, IDCANCEL, IDYES, IDNO};
    const UINT icons[4][2] = {{ZGR_BMP_MSGBOX_OK, ZGR_BMP_MSGBOX_OK_DISABLED},
                              {ZGR_BMP_MSGBOX_CANCEL, ZGR_BMP_MSGBOX_CANCEL_DISABLED},
                              {ZGR_BMP_MSGBOX_OK, ZGR_BMP_MSGBOX_OK_DISABLED},
                              {ZGR_BMP_MSGBOX_NO, ZGR_BMP_MSGBOX_NO_DISABLED}};
    const UINT texts[4] = {ZLR_STR_MSGBOX_OK, ZLR_STR_MSGBOX_CANCEL, ZLR_STR_MSGBOX_YES, ZLR_STR_MSGBOX_NO};
    for (int i = 0; i < 4; ++i) {
        HWND item = GetDlgItem(m_hWnd, ids[i]);
        if (!item || !m_pButtons[i]->SubclassWindow(item, CommonButtonMedium))
            continue;
        m_pButtons[i]->SetButtonIcon(icons[i][0], icons[i][1], FALSE);
        wchar_t text[256] = L"";
        ZCMOD_LoadString(texts[i], text, 256);
        SetWindowTextW(item, text);
        m_pButtons[i]->SetTooltip(text);
    }
}

void CVuikCommonMessageBox::SetDialogIcon()
{
    switch (m_uType & 0xF0) {
        case MB_ICONHAND: m_pszIcon = IDI_HAND; break;
        case MB_ICONQUESTION: m_pszIcon = IDI_QUESTION; break;
        case MB_ICONEXCLAMATION: m_pszIcon = IDI_EXCLAMATION; break;
        case MB_ICONASTERISK: m_pszIcon = IDI_ASTERISK; break;
        default: m_pszIcon = nullptr; break;
    }
}

void CVuikCommonMessageBox::ResizeDialog(int current, int wanted, int height, RECT* rect)
{
    Resize(m_hWnd, current, wanted, height, rect);
}

BOOL CVuikCommonMessageBox::OnInitDialog()
{
    zcmod::ThemeResourceScope theme;
    const bool rtl = CVuikLib::IsLayoutRTL() != 0;
    const int half = GetSystemMetrics(SM_CXSCREEN) / 2;
    if (rtl)
        EnsureLayoutRtl(m_hWnd);

    CreateButtons();
    RECT client, buttonRect = {0, 0, 0, 0};
    GetClientRect(m_hWnd, &client);
    if (HWND first = GetDlgItem(m_hWnd, IDOK))
        GetClientRect(first, &buttonRect);
    const int bw = buttonRect.right, bh = buttonRect.bottom;

    HDC dc = GetDC(m_hWnd);
    // The title in the frame's caption font, beside the close button.
    LOGFONTW font = {};
    DkhLoadFont(&font);
    font.lfHeight = 17;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    HFONT captionFont = CreateFontIndirectW(&font);
    const SIZE title = MeasureTitle(dc, captionFont, m_pszCaption);
    DeleteObject(captionFont);
    CVuikBitmap close;
    close.LoadFromRes(CVuikLib::GetResourceInstance(), ZGR_BMP_CAPTION_CLOSE_BESIDE_NORMAL);
    const int minWidth = close.GetWidth() + 42 + title.cx;

    font.lfHeight = 15;
    font.lfWeight = FW_MEDIUM;
    if (m_hMessageFont)
        DeleteObject(m_hMessageFont);
    m_hMessageFont = CreateFontIndirectW(&font);

    SetDialogIcon();
    const bool icon = m_pszIcon != nullptr;
    const int iconWidth = GetSystemMetrics(SM_CXICON);
    m_rcText.top = kMargin;
    m_rcText.left = icon ? iconWidth + 42 : kMargin;
    MeasureText(dc, m_hMessageFont, m_pszText, icon ? half - 63 : half - 42, &m_rcText);
    ReleaseDC(m_hWnd, dc);
    const int textWidth = m_rcText.right - m_rcText.left;
    const int textHeight = m_rcText.bottom - m_rcText.top;

    int width = icon ? iconWidth + 84 + textWidth : textWidth + 63;
    if (width < minWidth)
        width = minWidth;
    // The text's height counts twice: the caption band and the footer take the room of a second one.
    const int height = 2 * textHeight + title.cy + bh + 63;
    SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    GetClientRect(m_hWnd, &client);

    // The button row, at the right end of the footer band.
    WORD row[3], defaultId;
    const int count = ButtonRow(m_uType, true, row, &defaultId);
    if (count > 0) {
        const int wanted = count * bw + (count + 1) * 21;
        ResizeDialog(client.right, wanted, WindowHeight(m_hWnd), &client);
        const int x = client.right - count * bw - (15 + 5 * count);
        PlaceRow(m_hWnd, m_pButtons, row, count, x, client.bottom - bh - 1, bw, bh, defaultId);
    }
    CentreDialog(m_hWnd);

    GetClientRect(m_hWnd, &client);
    OffsetRect(&m_rcText, 0, CVuikWindowBackgroundCtrl::CaptionHeight);
    m_rcText.right = client.right;
    m_Text.SetTextColor(m_clrText);
    m_Text.Create(m_hWnd, m_rcText, 0, kTextStyle, rtl ? WS_EX_RTLREADING : 0);
    SetWindowTextW(m_Text.m_hWnd, m_pszText);
    SendMessageW(m_Text.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(m_hMessageFont), FALSE);
    ShowWindow(m_Text.m_hWnd, SW_SHOW);

    if (icon) {
        const CVuikStaticBitmapSkinDef def = {ZGR_BMP_MESSAGE_ICON, 1, 1};
        m_pIconSkin->SetSkinDef(def);
        m_pIconSkin->Load();
        CVuikBitmap* picture = m_pIconSkin->GetBitmap();
        if (picture) {
            const RECT at = {kMargin, m_rcText.top, kMargin + picture->GetWidth(),
                             m_rcText.top + picture->GetHeight()};
            m_Icon.Create(m_hWnd, at, 0, WS_CHILD | WS_VISIBLE, 0);
            m_Icon.SetSkin(m_pIconSkin);
        }
    }

    SetWindowPos(m_hWnd, m_Text.m_hWnd, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
    SetWindowTextW(m_hWnd, m_pszCaption);
    return TRUE;
}
