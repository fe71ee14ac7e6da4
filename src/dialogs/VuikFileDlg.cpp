#include "zcmod/VuikFileDlg.h"

#include <cderr.h>
#include <commctrl.h>
#include <dlgs.h>

#include <algorithm>
#include <cstring>

#include "controls/CommonSkinSetup.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"

namespace {

const DWORD kChromeStyle = 0x56000007;  // child, visible, clipping siblings and children
const DWORD kTemplateStyle = WS_CHILD | WS_CLIPSIBLINGS | DS_CONTROL | DS_SETFONT | DS_3DLOOK;
const WORD kStaticAtom = 0x0082;
const UINT kSetControlText = 0x468;  // CDM_SETCONTROLTEXT
const int kStripTitleId = 1000;

RECT WindowRectIn(HWND window, HWND in)
{
    RECT r = {};
    if (window && GetWindowRect(window, &r))
        MapWindowPoints(nullptr, in, reinterpret_cast<POINT*>(&r), 2);
    return r;
}

// Asks `bar` to paint the piece of itself that lies under `control` onto the control's context.
void PaintUnder(HWND bar, HWND control, HDC dc)
{
    RECT own = {}, under = {};
    if (!bar || !GetClientRect(control, &own) || !GetClientRect(bar, &under))
        return;
    MapWindowPoints(bar, control, reinterpret_cast<POINT*>(&under), 2);
    PAINTSTRUCT paint = {};
    paint.hdc = dc;
    if (IntersectRect(&paint.rcPaint, &own, &under))
        SendMessageW(bar, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(control), reinterpret_cast<LPARAM>(&paint));
}

// The theme's text colour, which its bars are drawn to carry; the platform's button text without a theme.
COLORREF LabelColour()
{
    COLORREF colour = GetSysColor(COLOR_BTNTEXT);
    if (CStrColorLoader* loader = CCommonModuleState::Get().m_pColorLoader)
        loader->LoadColor(ZCMOD_GetCommonZGR(), ZGR_COLOR_TEXT, &colour);
    return colour;
}

void WriteText(WORD*& at, const wchar_t* text)
{
    do
        *at++ = static_cast<WORD>(*text);
    while (*text++);
}

}  // namespace

// ---- Skin -----------------------------------------------------------------------------------------------------

CVuikFileDlgSkinDef CVuikFileDlgSkin::m_DefaultSkinDef = {
    {1, ZGR_BMP_FILEDLG_TOP_LEFT, ZGR_BMP_FILEDLG_TOP_MIDDLE, ZGR_BMP_FILEDLG_TOP_RIGHT},
    {1, ZGR_BMP_FILEDLG_STRIP_LEFT, ZGR_BMP_FILEDLG_STRIP_MIDDLE, ZGR_BMP_FILEDLG_STRIP_RIGHT},
    {1, ZGR_BMP_FILEDLG_TITLE_LEFT, ZGR_BMP_FILEDLG_TITLE_MIDDLE, ZGR_BMP_FILEDLG_TITLE_RIGHT},
    {0, ZGR_BMP_FILEDLG_SIDE_TOP, ZGR_BMP_FILEDLG_SIDE_MIDDLE, ZGR_BMP_FILEDLG_SIDE_BOTTOM},
};

CVuikFileDlgSkin::CVuikFileDlgSkin()
{
    const CVuikBarStaticSkinDef bar = CVuikBarStaticSkin::m_DefaultSkinDef;
    m_TopBarSkin.SetSkinDef(bar);
    m_SideBarSkin.SetSkinDef(bar);
    m_StripSkin.SetSkinDef(bar);
    m_StripTitleSkin.SetSkinDef(bar);
    SetSkinDef(m_DefaultSkinDef);
}

CVuikFileDlgSkin::~CVuikFileDlgSkin() {}

void CVuikFileDlgSkin::SetSkinDef(CVuikFileDlgSkinDef def)
{
    m_SkinDef = def;
    m_TopBarSkin.SetSkinDef(def.m_TopBar);
    m_StripSkin.SetSkinDef(def.m_Strip);
    m_StripTitleSkin.SetSkinDef(def.m_StripTitle);
    m_SideBarSkin.SetSkinDef(def.m_SideBar);
}

void CVuikFileDlgSkin::Load()
{
    m_TopBarSkin.Load();
    m_StripSkin.Load();
    m_StripTitleSkin.Load();
    m_SideBarSkin.Load();
}

void CVuikFileDlgSkin::Unload()
{
    m_TopBarSkin.Unload();
    m_StripSkin.Unload();
    m_StripTitleSkin.Unload();
    m_SideBarSkin.Unload();
}

void CVuikFileDlgSkin::Validate()
{
    m_TopBarSkin.Validate();
    m_StripSkin.Validate();
    m_StripTitleSkin.Validate();
    m_SideBarSkin.Validate();
    m_nStatus = IsValid() ? StatusValid : StatusInvalid;
}

bool CVuikFileDlgSkin::IsValid()
{
    return m_TopBarSkin.IsValid() && m_SideBarSkin.IsValid() && m_StripSkin.IsValid() && m_StripTitleSkin.IsValid();
}

void CVuikFileDlgSkin::Draw(CVuikWindow*, CVuikGraphics*, int, int) {}

void CVuikFileDlgSkin::SetDefaultSkinDef(CVuikFileDlgSkinDef def) { m_DefaultSkinDef = def; }

// ---- Dialog ---------------------------------------------------------------------------------------------------

CVuikFileDlg* CVuikFileDlg::m_pInstance = nullptr;
CVuikFileDlgSkin* CVuikFileDlg::m_pDefaultSkin = nullptr;
WNDPROC CVuikFileDlg::m_pfnSuperWndProcParent = nullptr;

CVuikFileDlg::CVuikFileDlg(DialogFunction function, OPENFILENAMEW* ofn)
    : m_pfnDialogFunction(function),
      m_hWndParent(nullptr),
      m_hWndToolbar(nullptr),
      m_nItemX(32),
      m_nItemY(32),
      m_nStc32X(0),
      m_nStc32Y(0)
{
    m_pfnWindowProc = WindowProc;
    std::memset(m_ofnArea, 0, sizeof(m_ofnArea));
    if (ofn)
        std::memcpy(m_ofnArea, ofn, std::min<size_t>(ofn->lStructSize, sizeof(m_ofnArea)));
    m_pInstance = this;
}

CVuikFileDlg::~CVuikFileDlg()
{
    if (m_pInstance == this)
        m_pInstance = nullptr;
}

HWND CVuikFileDlg::Create(HWND, const RECT&, UINT, DWORD, DWORD) { return nullptr; }

void CVuikFileDlg::SetDefaultSkin(CVuikFileDlgSkin* skin) { m_pDefaultSkin = skin; }

CVuikFileDlgSkin* CVuikFileDlg::GetThemeSkin()
{
    static CVuikFileDlgSkin skin;
    zcmod::ThemeResourceScope theme;
    skin.SetSkinDef(CVuikFileDlgSkin::m_DefaultSkinDef);
    skin.Load();
    return &skin;
}

void CVuikFileDlg::SetSkin(CVuikFileDlgSkin* skin)
{
    m_pSkin = skin;
    m_TopBar.SetSkin(skin ? &skin->m_TopBarSkin : nullptr);
    m_SideBar.SetSkin(skin ? &skin->m_SideBarSkin : nullptr);
    m_Strip.SetSkin(skin ? &skin->m_StripSkin : nullptr);
    m_StripTitle.SetSkin(skin ? &skin->m_StripTitleSkin : nullptr);
}

void CVuikFileDlg::GetData(OPENFILENAMEW* ofn)
{
    if (ofn)
        std::memcpy(ofn, m_ofnArea, std::min<size_t>(ofn->lStructSize, sizeof(m_ofnArea)));
}

void CVuikFileDlg::SetControlText(int id, const char* text)
{
    if (m_hWnd)
        SendMessageW(GetParent(m_hWnd), kSetControlText, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(text));
}

BOOL CVuikFileDlg::Run(DialogFunction function, OPENFILENAMEW* ofn)
{
    if (!ofn)
        return FALSE;
    const DWORD size = ofn->lStructSize;
    CVuikFileDlg dialog(function, ofn);
    const int result = dialog.DoModal();
    // Back by the caller's own size: the inner copy may have been run at a larger one.
    dialog.GetData(ofn);
    ofn->lStructSize = size;
    return result == 1;
}

BOOL CVuikFileDlg::GetOpenFileNameW(OPENFILENAMEW* ofn) { return Run(::GetOpenFileNameW, ofn); }
BOOL CVuikFileDlg::GetSaveFileNameW(OPENFILENAMEW* ofn) { return Run(::GetSaveFileNameW, ofn); }

bool CVuikFileDlg::IsWin2000()
{
    OSVERSIONINFOEXW info = {};
    info.dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXW);
    if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info))) {
        info.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
        if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info)))
            return false;
    }
    return info.dwPlatformId == VER_PLATFORM_WIN32_NT && info.dwMajorVersion >= 5;
}

bool CVuikFileDlg::IsWin95()
{
    OSVERSIONINFOW info = {};
    info.dwOSVersionInfoSize = sizeof(info);
    if (!GetVersionExW(&info))
        return false;
    return info.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS && info.dwMajorVersion == 4 && info.dwMinorVersion == 0;
}

WORD* CVuikFileDlg::lpwAlign(WORD* pointer)
{
    const ULONG_PTR at = reinterpret_cast<ULONG_PTR>(pointer);
    return reinterpret_cast<WORD*>((at + 3) & ~static_cast<ULONG_PTR>(3));
}

int CVuikFileDlg::PutItemToTemplate(WORD* item, const RECT& rect, DWORD style, WORD id, WORD classAtom)
{
    WORD* at = item;
    *reinterpret_cast<DWORD*>(at) = style;
    at += 2;
    *reinterpret_cast<DWORD*>(at) = 0;  // extended style
    at += 2;
    *at++ = static_cast<WORD>(rect.left);
    *at++ = static_cast<WORD>(rect.top);
    *at++ = static_cast<WORD>(rect.right);
    *at++ = static_cast<WORD>(rect.bottom);
    *at++ = id;
    *at++ = 0xFFFF;
    *at++ = classAtom;
    *at++ = 0;  // title
    at = lpwAlign(at);
    *at++ = 0;  // creation data
    return static_cast<int>(at - item);
}

// A child dialog in the platform's word-oriented form, holding only stc32, the item the standard dialog
// lays its controls out around.
HGLOBAL CVuikFileDlg::CreateDialogTemplate()
{
    HGLOBAL block = GlobalAlloc(GMEM_ZEROINIT, 1024);
    if (!block)
        return nullptr;
    WORD* at = static_cast<WORD*>(GlobalLock(block));
    if (!at) {
        GlobalFree(block);
        return nullptr;
    }
    *reinterpret_cast<DWORD*>(at) = kTemplateStyle;
    at += 2;
    *reinterpret_cast<DWORD*>(at) = 0;
    at += 2;
    *at++ = 1;    // one item
    *at++ = 0;    // x
    *at++ = 0;    // y
    *at++ = 100;  // cx
    *at++ = 100;  // cy
    *at++ = 0;    // menu
    *at++ = 0;    // class
    *at++ = 0;    // title
    at = lpwAlign(at);
    *at++ = 8;
    WriteText(at, L"Ms Sans Serif");
    at = lpwAlign(at);
    *reinterpret_cast<DWORD*>(at) = WS_CHILD;
    at += 2;
    *reinterpret_cast<DWORD*>(at) = 0;
    at += 2;
    *at++ = static_cast<WORD>(m_nItemX);
    *at++ = static_cast<WORD>(m_nItemY);
    *at++ = 0;
    *at++ = 0;
    *at++ = stc32;
    *at++ = 0xFFFF;
    *at++ = kStaticAtom;
    *at++ = 0;  // title
    at = lpwAlign(at);
    *at++ = 0;  // creation data
    GlobalUnlock(block);
    return block;
}

int CVuikFileDlg::DoModal()
{
    if (m_pInstance != this || !m_pfnDialogFunction)
        return -1;
    if (!m_pSkin)
        SetSkin(m_pDefaultSkin);
    if (!m_pSkin)
        return -1;

    HGLOBAL dialogTemplate = CreateDialogTemplate();
    m_ofn.lStructSize = IsWin2000() ? StructSizeLarge : StructSizeSmall;
    m_ofn.Flags |= OFN_EXPLORER | OFN_ENABLESIZING;
    if (dialogTemplate || m_ofn.lpTemplateName) {
        if (!m_ofn.lpTemplateName) {
            m_ofn.hInstance = static_cast<HINSTANCE>(dialogTemplate);
            m_ofn.Flags |= OFN_ENABLEHOOK | OFN_ENABLETEMPLATEHANDLE;
        } else {
            m_ofn.Flags |= OFN_ENABLEHOOK | OFN_ENABLETEMPLATE;
        }
        m_ofn.lpfnHook = OFNHookProc;
    }
    BOOL result = m_pfnDialogFunction(&m_ofn);
    if (!result && CommDlgExtendedError() == CDERR_STRUCTSIZE) {
        m_ofn.lStructSize = StructSizeSmall;
        result = m_pfnDialogFunction(&m_ofn);
    }
    if (dialogTemplate)
        GlobalFree(dialogTemplate);
    if (result)
        return 1;
    return CommDlgExtendedError() == 0 ? 2 : -1;
}

// ---- Hook and window procedures -------------------------------------------------------------------------------

UINT_PTR CALLBACK CVuikFileDlg::OFNHookProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikFileDlg* self = m_pInstance;
    if (!self)
        return 0;
    if (message == WM_INITDIALOG && !self->m_hWnd) {
        self->SubclassWindow(hwnd);
        self->m_hWndParent = GetParent(hwnd);
    }
    if (message == WM_NCDESTROY && self->m_hWnd == hwnd)
        self->UnsubclassWindow(1);
    if (!self->m_hWnd)
        return 0;
    return static_cast<UINT_PTR>(WindowProc(hwnd, message, wParam, lParam));
}

LRESULT CALLBACK CVuikFileDlg::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikFileDlg* self = reinterpret_cast<CVuikFileDlg*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (self && self->m_hWnd != hwnd)
        self = nullptr;
    if (self) {
        switch (message) {
            case WM_INITDIALOG: return self->OnInitDialog(hwnd, message, wParam, lParam);
            case WM_DESTROY: return self->OnDestroy(hwnd, message, wParam, lParam);
            case WM_SIZE: return self->OnSize(hwnd, message, wParam, lParam);
            case WM_PAINT: return self->OnPaint(hwnd, message, wParam, lParam);
            case WM_ERASEBKGND: return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
            case WM_NOTIFY: return self->OnNotify(hwnd, message, wParam, lParam);
            case WM_TIMER: return self->OnTimer(hwnd, message, wParam, lParam);
            case WM_NCDESTROY: {
                // The platform's own dialog procedure still has its clean-up to do.
                WNDPROC super = self->m_pfnSuperWindowProc;
                self->UnsubclassWindow(1);
                return super ? CallWindowProcW(super, hwnd, message, wParam, lParam)
                             : DefWindowProcW(hwnd, message, wParam, lParam);
            }
            default: break;
        }
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK CVuikFileDlg::WindowProcParent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_ACTIVATE && wParam == 1 && m_pInstance && m_pInstance->m_hWnd)
        m_pInstance->OnActivate(hwnd, message, wParam, lParam);
    // The toolbar's background is the strip under it, drawn by the strip itself.
    if (message == WM_NOTIFY && m_pInstance && m_pInstance->m_hWndToolbar) {
        NMCUSTOMDRAW* draw = reinterpret_cast<NMCUSTOMDRAW*>(lParam);
        if (draw && draw->hdr.hwndFrom == m_pInstance->m_hWndToolbar && draw->hdr.code == static_cast<UINT>(NM_CUSTOMDRAW) &&
            draw->dwDrawStage == CDDS_PREERASE) {
            PaintUnder(m_pInstance->m_Strip.m_hWnd, draw->hdr.hwndFrom, draw->hdc);
            PaintUnder(m_pInstance->m_StripTitle.m_hWnd, draw->hdr.hwndFrom, draw->hdc);
            return CDRF_SKIPDEFAULT;
        }
    }
    if (message == WM_CTLCOLORSTATIC && GetDlgCtrlID(reinterpret_cast<HWND>(lParam)) == stc4) {
        // The label shows the strip (and its title) through: nothing of the dialog is painted under it. Its
        // rectangle reaches under the folder list beside it, which is left out: the strip would cover the
        // list's icon where the list leaves its indentation unpainted.
        const HWND label = reinterpret_cast<HWND>(lParam);
        if (const HWND folders = GetDlgItem(hwnd, cmb2)) {
            RECT r = {};
            GetWindowRect(folders, &r);
            MapWindowPoints(nullptr, label, reinterpret_cast<POINT*>(&r), 2);
            ExcludeClipRect(reinterpret_cast<HDC>(wParam), r.left, r.top, r.right, r.bottom);
        }
        if (m_pInstance) {
            PaintUnder(m_pInstance->m_Strip.m_hWnd, label, reinterpret_cast<HDC>(wParam));
            PaintUnder(m_pInstance->m_StripTitle.m_hWnd, label, reinterpret_cast<HDC>(wParam));
        }
        SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
        SetTextColor(reinterpret_cast<HDC>(wParam), LabelColour());
        return reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH));
    }
    return m_pfnSuperWndProcParent ? CallWindowProcW(m_pfnSuperWndProcParent, hwnd, message, wParam, lParam)
                                   : DefWindowProcW(hwnd, message, wParam, lParam);
}

// ---- Chrome ---------------------------------------------------------------------------------------------------

int CVuikFileDlg::BarHeight(const CVuikBarStaticCtrl& bar) const
{
    RECT r = {};
    if (bar.m_hWnd)
        GetClientRect(bar.m_hWnd, &r);
    return r.bottom;
}

int CVuikFileDlg::BarWidth(const CVuikBarStaticCtrl& bar) const
{
    RECT r = {};
    if (bar.m_hWnd)
        GetClientRect(bar.m_hWnd, &r);
    return r.right;
}

void CVuikFileDlg::CentreInStrip(HWND control)
{
    if (!control || !m_hWnd)
        return;
    HWND container = GetParent(control);
    RECT r = WindowRectIn(control, m_hWnd);
    const int height = r.bottom - r.top;
    POINT top = {r.left, (BarHeight(m_Strip) - height) / 2 + BarHeight(m_TopBar)};
    MapWindowPoints(m_hWnd, container, &top, 1);
    MoveWindow(control, top.x, top.y, r.right - r.left, height, TRUE);
}

void CVuikFileDlg::PlaceInStrip()
{
    CentreInStrip(GetDlgItem(m_hWndParent, cmb2));
    CentreInStrip(GetDlgItem(m_hWndParent, stc4));
    CentreInStrip(m_hWndToolbar);
}

LRESULT CVuikFileDlg::OnInitDialog(HWND hwnd, UINT, WPARAM, LPARAM)
{
    RECT client = {};
    GetClientRect(hwnd, &client);

    CVuikStaticGradientSkinDef face = {GetSysColor(COLOR_BTNFACE), GetSysColor(COLOR_BTNFACE)};
    m_BackgroundSkin.SetSkinDef(face);
    m_Background.SetSkin(&m_BackgroundSkin);
    m_Background.Create(hwnd, client, 0, kChromeStyle, 0);

    RECT rect = {0, 0, client.right, 0};
    m_TopBar.Create(m_Background.m_hWnd, rect, 0, kChromeStyle, 0);
    m_TopBar.SizeToContent();
    const int T = BarHeight(m_TopBar), B = BarWidth(m_TopBar);

    SetRect(&rect, 0, T, client.right, T);
    m_Strip.Create(m_Background.m_hWnd, rect, 0, kChromeStyle, 0);
    m_Strip.SizeToContent();
    const int S = BarHeight(m_Strip);

    SetRect(&rect, 0, 0, client.right, 0);
    m_StripTitle.Create(m_Strip.m_hWnd, rect, kStripTitleId, kChromeStyle, 0);
    m_StripTitle.SizeToContent();

    SetRect(&rect, 0, T + S, 0, std::max<int>(client.bottom, T + S));
    m_SideBar.Create(m_Background.m_hWnd, rect, 0, kChromeStyle, 0);
    m_SideBar.SizeToContent();
    const int W = BarWidth(m_SideBar);

    const int titleHeight = BarHeight(m_StripTitle);
    MoveWindow(m_StripTitle.m_hWnd, W, S / 2 - titleHeight / 2, B, titleHeight, TRUE);

    // Where the standard controls go: below the bars and right of the side bar, keeping the folder combo's
    // distance from the places bar.
    const RECT combo = WindowRectIn(GetDlgItem(m_hWndParent, cmb2), hwnd);
    HWND places = GetDlgItem(m_hWndParent, ctl1);
    const RECT placesRect = places ? WindowRectIn(places, hwnd) : combo;
    RECT margin = {0, 0, 0, 0};
    MapDialogRect(hwnd, &margin);
    m_nItemY = (combo.top - placesRect.top) + S + T + margin.top;
    m_nItemX = margin.left + W;

    HWND item = GetDlgItem(hwnd, stc32);
    if (item) {
        RECT area = client;
        if (m_ofn.lpTemplateName)
            area = WindowRectIn(item, hwnd);
        MoveWindow(item, m_nItemX, m_nItemY, std::max<int>(0, area.right - m_nItemX),
                   std::max<int>(0, area.bottom - m_nItemY), FALSE);
        m_nStc32X = m_nItemX;
        m_nStc32Y = m_nItemY;
    }

    if (m_hWndParent) {
        const LONG_PTR previous =
            SetWindowLongPtrW(m_hWndParent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WindowProcParent));
        if (previous)
            m_pfnSuperWndProcParent = reinterpret_cast<WNDPROC>(previous);
    }

    m_hWndToolbar = nullptr;
    for (HWND child = GetWindow(m_hWndParent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        wchar_t name[64] = {};
        GetClassNameW(child, name, 64);
        RECT r = {};
        GetClientRect(child, &r);
        if (lstrcmpW(name, L"ToolbarWindow32") == 0 && r.bottom < r.right) {
            m_hWndToolbar = child;
            break;
        }
    }
    if (m_hWndToolbar) {
        SetWindowLongW(m_hWndToolbar, GWL_STYLE,
                       (GetWindowLongW(m_hWndToolbar, GWL_STYLE) & ~TBSTYLE_FLAT) | TBSTYLE_CUSTOMERASE);
        // Not WS_EX_TRANSPARENT: a window that lets its lower siblings paint through is painted over by our
        // bars whenever they repaint after it. It draws the strip under its buttons instead (WindowProcParent).
    }
    PlaceInStrip();
    return 0;
}

LRESULT CVuikFileDlg::OnDestroy(HWND hwnd, UINT, WPARAM, LPARAM)
{
    KillTimer(hwnd, RepaintTimer);
    // The standard dialog outlives us by a moment: give it its own procedure back.
    if (m_hWndParent && m_pfnSuperWndProcParent &&
        reinterpret_cast<WNDPROC>(GetWindowLongPtrW(m_hWndParent, GWLP_WNDPROC)) == WindowProcParent) {
        SetWindowLongPtrW(m_hWndParent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWndProcParent));
        m_pfnSuperWndProcParent = nullptr;
    }
    return 0;
}

LRESULT CVuikFileDlg::OnSize(HWND hwnd, UINT, WPARAM, LPARAM lParam)
{
    const int width = LOWORD(lParam), height = HIWORD(lParam);
    const UINT flags = SWP_NOMOVE | SWP_NOZORDER;
    const int T = BarHeight(m_TopBar), S = BarHeight(m_Strip), W = BarWidth(m_SideBar);
    if (m_Background.m_hWnd)
        SetWindowPos(m_Background.m_hWnd, nullptr, 0, 0, width, height, flags);
    if (m_TopBar.m_hWnd)
        SetWindowPos(m_TopBar.m_hWnd, nullptr, 0, 0, width, T, flags);
    if (m_Strip.m_hWnd)
        SetWindowPos(m_Strip.m_hWnd, nullptr, 0, 0, width, S, flags);
    if (m_StripTitle.m_hWnd)
        SetWindowPos(m_StripTitle.m_hWnd, nullptr, 0, 0, std::max(0, width - W), BarHeight(m_StripTitle), flags);
    if (m_SideBar.m_hWnd)
        SetWindowPos(m_SideBar.m_hWnd, nullptr, 0, 0, W, std::max(0, height - S - T), flags);
    SetTimer(hwnd, RepaintTimer, 1, nullptr);
    return 0;
}

LRESULT CVuikFileDlg::OnActivate(HWND, UINT, WPARAM, LPARAM)
{
    if (m_hWnd)
        SetTimer(m_hWnd, RepaintTimer, 1, nullptr);
    return 0;
}

LRESULT CVuikFileDlg::OnTimer(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (wParam != RepaintTimer)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    KillTimer(hwnd, RepaintTimer);
    if (m_hWndToolbar) {
        RECT r = WindowRectIn(m_hWndToolbar, hwnd);
        InvalidateRect(hwnd, &r, TRUE);
    }
    InvalidateRect(GetDlgItem(m_hWndParent, cmb2), nullptr, FALSE);
    InvalidateRect(GetDlgItem(m_hWndParent, stc4), nullptr, FALSE);
    if (m_hWndToolbar)
        InvalidateRect(m_hWndToolbar, nullptr, FALSE);
    return 0;
}

LRESULT CVuikFileDlg::OnNotify(HWND hwnd, UINT, WPARAM, LPARAM lParam)
{
    const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
    if (!header)
        return 0;
    if (header->code == static_cast<UINT>(CDN_FOLDERCHANGE)) {
        SetTimer(hwnd, RepaintTimer, 1, nullptr);
    } else if (header->code == static_cast<UINT>(CDN_INITDONE) && m_hWndParent) {
        // The standard dialog has laid its controls out by now: bring ours back into the strip, then centre
        // the dialog over its owner, or on the work area.
        PlaceInStrip();
        RECT dialog = {}, over = {};
        GetWindowRect(m_hWndParent, &dialog);
        HWND owner = GetWindow(m_hWndParent, GW_OWNER);
        if (!owner || !GetWindowRect(owner, &over) || !IsWindowVisible(owner))
            SystemParametersInfoW(SPI_GETWORKAREA, 0, &over, 0);
        const int w = dialog.right - dialog.left, h = dialog.bottom - dialog.top;
        SetWindowPos(m_hWndParent, nullptr, over.left + (over.right - over.left - w) / 2,
                     over.top + (over.bottom - over.top - h) / 2, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return 0;
}

LRESULT CVuikFileDlg::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    RECT mine = {}, parent = {};
    GetClientRect(hwnd, &mine);
    GetClientRect(m_hWndParent, &parent);
    if (!EqualRect(&mine, &parent)) {
        MoveWindow(hwnd, 0, 0, parent.right, parent.bottom, TRUE);
        InvalidateRect(hwnd, nullptr, FALSE);
        if (m_hWndToolbar) {
            InvalidateRect(m_hWndToolbar, nullptr, FALSE);
            UpdateWindow(m_hWndToolbar);
        }
    } else {
        if (m_hWndToolbar) {
            InvalidateRect(m_hWndToolbar, nullptr, FALSE);
            UpdateWindow(m_hWndToolbar);
        }
        HWND label = GetDlgItem(m_hWndParent, stc4);
        if (label) {
            InvalidateRect(label, nullptr, FALSE);
            UpdateWindow(label);
        }
    }
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikFileDlg::OnEraseBkgnd(HWND, UINT, WPARAM, LPARAM)
{
    if (m_Background.m_hWnd)
        InvalidateRect(m_Background.m_hWnd, nullptr, TRUE);
    return 1;
}
