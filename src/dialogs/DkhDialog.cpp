#include "zcmod/DkhDialog.h"

#include <map>

#include "frame/Win32Util.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"

namespace {

std::map<HWND, CDkhDialog*>* DialogMap() { return CCommonModuleState::Get().m_pDialogMap; }

}  // namespace

CDkhDialog::CDkhDialog(WORD nDialogId)
    : m_hWnd(nullptr),
      m_hParent(nullptr),
      m_hNullBrush(nullptr),
      m_hBackgroundBrush(nullptr),
      m_nDialogId(nDialogId),
      m_hRichEdit(nullptr)
{
}

CDkhDialog::~CDkhDialog()
{
    // An object that goes while its window lives must not stay in the map.
    if (m_hWnd) {
        if (auto* map = DialogMap())
            map->erase(m_hWnd);
    }
    if (m_hBackgroundBrush)
        DeleteObject(m_hBackgroundBrush);
    if (m_hRichEdit)
        FreeLibrary(m_hRichEdit);
}

INT_PTR CDkhDialog::DoModal(HWND parent)
{
    m_hParent = parent;
    if (!m_nDialogId)
        return -1;
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    const int rtl = CRTLHelper::IsRTL(handler ? handler->GetLanguageName() : nullptr);
    HINSTANCE module = zcmod::LibraryModule();
    DLGTEMPLATE* dialogTemplate = CRTLHelper::FlipDialog(module, MAKEINTRESOURCEW(m_nDialogId), rtl);
    if (!dialogTemplate)
        return -1;
    return DialogBoxIndirectParamW(module, dialogTemplate, parent, DialogProcStatic, reinterpret_cast<LPARAM>(this));
}

CDkhDialog* CDkhDialog::FromHandle(HWND hWnd)
{
    auto* map = DialogMap();
    if (!map)
        return nullptr;
    auto it = map->find(hWnd);
    return it == map->end() ? nullptr : it->second;
}

INT_PTR CALLBACK CDkhDialog::DialogProcStatic(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        auto* dialog = reinterpret_cast<CDkhDialog*>(lParam);
        if (!dialog)
            return 0;
        if (auto* map = DialogMap())
            (*map)[hWnd] = dialog;
        dialog->m_hWnd = hWnd;
        return dialog->DialogProc(message, wParam, lParam);
    }
    CDkhDialog* dialog = FromHandle(hWnd);
    return dialog ? dialog->DialogProc(message, wParam, lParam) : 0;
}

INT_PTR CDkhDialog::DialogProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    (void)lParam;
    switch (message) {
        case WM_INITDIALOG:
            return OnInitDialog();
        case WM_DESTROY:
            if (auto* map = DialogMap())
                map->erase(m_hWnd);
            m_hWnd = nullptr;
            OnDestroy();
            return 0;
        case WM_PAINT: {
            PAINTSTRUCT paint;
            HDC dc = BeginPaint(m_hWnd, &paint);
            const INT_PTR result = OnPaint(dc);
            EndPaint(m_hWnd, &paint);
            return result;
        }
        case WM_ERASEBKGND:
            return OnEraseBkgnd(reinterpret_cast<HDC>(wParam));
        case WM_COMMAND:
            // The whole wParam is compared: a notification code in the high word is not a click.
            if (wParam == IDOK) {
                OnOK();
                return 1;
            }
            if (wParam == IDCANCEL) {
                OnCancel();
                return 1;
            }
            return 0;
        default:
            if (message >= WM_CTLCOLOREDIT && message <= WM_CTLCOLORSTATIC)
                return reinterpret_cast<INT_PTR>(
                    OnCtlColor(message, reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam)));
            return 0;
    }
}

COLORREF CDkhDialog::LoadThemeColor(UINT id)
{
    COLORREF color = 0;
    if (CStrColorLoader* loader = CCommonModuleState::Get().m_pColorLoader)
        loader->LoadColor(ZCMOD_GetCommonZGR(), id, &color);
    return color;
}

INT_PTR CDkhDialog::OnInitDialog()
{
    m_hNullBrush = static_cast<HBRUSH>(GetStockObject(NULL_BRUSH));
    if (m_hBackgroundBrush)
        DeleteObject(m_hBackgroundBrush);
    m_hBackgroundBrush = CreateSolidBrush(LoadThemeColor(kBackgroundColorId));
    return 1;
}

HBRUSH CDkhDialog::OnCtlColor(UINT message, HDC dc, HWND /*control*/)
{
    switch (message) {
        case WM_CTLCOLORBTN:
            SetTextColor(dc, RGB(0xFF, 0, 0));
            return m_hNullBrush;
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSTATIC:
            SetBkColor(dc, LoadThemeColor(kBackgroundColorId));
            SetTextColor(dc, LoadThemeColor(kTextColorId));
            return m_hBackgroundBrush;
        default:
            return m_hNullBrush;
    }
}

INT_PTR CDkhDialog::OnEraseBkgnd(HDC dc)
{
    if (!m_hBackgroundBrush)
        m_hBackgroundBrush = CreateSolidBrush(LoadThemeColor(kBackgroundColorId));
    RECT client;
    GetClientRect(m_hWnd, &client);
    FillRect(dc, &client, m_hBackgroundBrush);
    return 1;
}

void CDkhDialog::OnDestroy()
{
    if (m_hBackgroundBrush) {
        DeleteObject(m_hBackgroundBrush);
        m_hBackgroundBrush = nullptr;
    }
}

void CDkhDialog::OnOK() { EndDialog(m_hWnd, IDOK); }

void CDkhDialog::OnCancel() { EndDialog(m_hWnd, IDCANCEL); }

INT_PTR CDkhDialog::OnPaint(HDC /*dc*/) { return 0; }

bool CDkhDialog::LoadRichEdit()
{
    if (m_hRichEdit)
        FreeLibrary(m_hRichEdit);
    m_hRichEdit = LoadLibraryW(L"riched32.dll");
    return m_hRichEdit != nullptr;
}

void CDkhDialog::ClipToMonitor(RECT& rect)
{
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    if (!GetMonitorInfoW(MonitorFromRect(&rect, MONITOR_DEFAULTTONEAREST), &info))
        return;
    const RECT& screen = info.rcMonitor;
    const LONG width = rect.right - rect.left;
    const LONG height = rect.bottom - rect.top;
    LONG left = rect.left;
    LONG top = rect.top;
    if (left > screen.right - width)
        left = screen.right - width;
    if (left < screen.left)
        left = screen.left;
    if (top > screen.bottom - height)
        top = screen.bottom - height;
    if (top < screen.top)
        top = screen.top;
    rect = {left, top, left + width, top + height};
}

void CDkhDialog::CenterDialog()
{
    if (!m_hWnd)
        return;
    RECT dialog;
    GetWindowRect(m_hWnd, &dialog);
    RECT over;
    if (m_hParent && IsWindow(m_hParent) && !IsIconic(m_hParent))
        GetWindowRect(m_hParent, &over);
    else
        GetWindowRect(GetDesktopWindow(), &over);
    const LONG width = dialog.right - dialog.left;
    const LONG height = dialog.bottom - dialog.top;
    const LONG left = over.left + ((over.right - over.left) - width) / 2;
    const LONG top = over.top + ((over.bottom - over.top) - height) / 2;
    RECT placed = {left, top, left + width, top + height};
    ClipToMonitor(placed);
    SetWindowPos(m_hWnd, nullptr, placed.left, placed.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
