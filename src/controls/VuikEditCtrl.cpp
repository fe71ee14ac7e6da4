#include "zcmod/VuikEditCtrl.h"

#include <new>

#include "controls/NotchedBorder.h"
#include "zcmod/VuikGraphics.h"

CVuikEditSkinDef CVuikEditSkin::m_DefaultSkinDef = {0xFFF7F7F7, 0xFF656464, 0xFFADADAD, 4};

CVuikEditSkin::CVuikEditSkin() { m_SkinDef = m_DefaultSkinDef; }

CVuikEditSkin::~CVuikEditSkin() {}

void CVuikEditSkin::Load() {}

void CVuikEditSkin::Unload() {}

void CVuikEditSkin::Validate() { m_nStatus = StatusValid; }

void CVuikEditSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (window && graphics)
        zcmod::DrawNotchedBorder(*graphics, window->m_hWnd, width, height, m_SkinDef.m_crBorderTop,
                                 m_SkinDef.m_crBorderBottom);
}

void CVuikEditSkin::SetDefaultSkinDef(CVuikEditSkinDef def) { m_DefaultSkinDef = def; }

CVuikEditCtrl::CVuikEditCtrl() : m_pSkin(nullptr), m_eState(EditBoxEnabled) { m_pfnWindowProc = WindowProc; }

CVuikEditCtrl::~CVuikEditCtrl()
{
    // The window may outlive this object: it gets its earlier procedure back before the skin goes.
    if (m_hWnd && IsWindow(m_hWnd))
        UnsubclassWindow(0);
    SetSkin(nullptr);
    delete m_pSkin;
    m_pSkin = nullptr;
}

BOOL CVuikEditCtrl::SubclassWindow(HWND window)
{
    if (!CVuikWindowImpl<CVuikEditSkin>::SubclassWindow(window))
        return 0;
    SetWindowLongPtrW(window, GWL_STYLE,
                      GetWindowLongPtrW(window, GWL_STYLE) | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | WS_BORDER);
    if (!m_pSkin) {
        // Without a skin the platform's look stays.
        m_pSkin = new (std::nothrow) CVuikEditSkin();
        if (m_pSkin)
            m_pSkin->Load();
    }
    SetSkin(m_pSkin);
    return 1;
}

EEditBoxState CVuikEditCtrl::GetGraphicalState() { return m_eState; }

LRESULT CVuikEditCtrl::OnEraseBkgnd(HWND hwnd, UINT, WPARAM wParam, LPARAM)
{
    HWND parent = GetParent(hwnd);
    if (parent && IsWindow(parent)) {
        PAINTSTRUCT paint = {};
        paint.hdc = reinterpret_cast<HDC>(wParam);
        GetClientRect(hwnd, &paint.rcPaint);
        SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
    }
    return 1;
}

namespace {

// The thickness of a window's non-client border on each axis, taken as even on both sides.
SIZE BorderOf(HWND hwnd, RECT* whole)
{
    RECT window = {}, client = {};
    GetWindowRect(hwnd, &window);
    GetClientRect(hwnd, &client);
    *whole = RECT{0, 0, window.right - window.left, window.bottom - window.top};
    return SIZE{(whole->right - client.right) / 2, (whole->bottom - client.bottom) / 2};
}

}  // namespace

LRESULT CVuikEditCtrl::OnNCPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    m_eState = IsWindowEnabled(hwnd) ? EditBoxEnabled : EditBoxDisabled;
    HDC dc = GetDCEx(hwnd, nullptr, DCX_WINDOW | DCX_CACHE);
    if (!dc)
        return 0;
    RECT whole;
    const SIZE border = BorderOf(hwnd, &whole);
    // The client area is the edit's own: only the border is copied, so that a frame-only repaint doesn't
    // cover the text.
    ExcludeClipRect(dc, border.cx, border.cy, whole.right - border.cx, whole.bottom - border.cy);
    if (SkinIsValid()) {
        // A buffer made before a resize has the old size: the border moves with the window's edges.
        BITMAP bm = {};
        if (m_hBackBuffer && GetObjectW(m_hBackBuffer, sizeof(bm), &bm) &&
            (bm.bmWidth != whole.right || bm.bmHeight != whole.bottom))
            DeleteBackBuffer();
        DrawBackBuffer(dc, whole, whole);
    } else {
        // The placeholder in window coordinates: a box with one diagonal.
        const int r = whole.right - 1, b = whole.bottom - 1;
        MoveToEx(dc, 0, 0, nullptr);
        LineTo(dc, r, 0);
        LineTo(dc, r, b);
        LineTo(dc, 0, b);
        LineTo(dc, 0, 0);
        LineTo(dc, r, b);
    }
    ReleaseDC(hwnd, dc);
    return 0;
}

void CVuikEditCtrl::DrawParentBackBuffer(HDC hdc, RECT area)
{
    if (!m_hWnd)
        return;
    RECT whole;
    const SIZE border = BorderOf(m_hWnd, &whole);
    bool ancestorBuffer = m_hBackground != nullptr;
    for (HWND w = GetParent(m_hWnd); w && !ancestorBuffer; w = GetParent(w))
        ancestorBuffer = GetPropW(w, VUIK_PROP_BACKBUFFER) != nullptr;
    if (ancestorBuffer) {
        // The buffer covers the whole window, the base maps client coordinates: `area` moves into the client's
        // coordinates, and the context's origin moves the other way, so the copy lands where `area` says.
        RECT inClient = area;
        OffsetRect(&inClient, -border.cx, -border.cy);
        POINT old;
        SetViewportOrgEx(hdc, border.cx, border.cy, &old);
        CVuikWindowImpl<CVuikEditSkin>::DrawParentBackBuffer(hdc, inClient);
        SetViewportOrgEx(hdc, old.x, old.y, nullptr);
        return;
    }
    // No ancestor has a buffer yet. A plain parent paints its own erase, shifted so that its client area lands
    // where the edit lies on it; a skinned parent that hasn't painted yet answers WM_VUIK_REPAINT, which builds
    // its buffer, over that.
    HWND parent = GetParent(m_hWnd);
    if (!parent) {
        // A top-level edit: its ring shows the window colour, as the edit's own background does.
        FillRect(hdc, &area, GetSysColorBrush(COLOR_WINDOW));
        return;
    }
    POINT corner = {-border.cx, -border.cy};
    MapWindowPoints(m_hWnd, parent, &corner, 1);
    POINT old;
    SetViewportOrgEx(hdc, -corner.x, -corner.y, &old);
    SendMessageW(parent, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hdc), 0);
    SetViewportOrgEx(hdc, border.cx, border.cy, nullptr);
    PAINTSTRUCT paint = {};
    paint.hdc = hdc;
    paint.rcPaint = area;
    OffsetRect(&paint.rcPaint, -border.cx, -border.cy);
    SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(m_hWnd), reinterpret_cast<LPARAM>(&paint));
    SetViewportOrgEx(hdc, old.x, old.y, nullptr);
}

LRESULT CALLBACK CVuikEditCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikEditCtrl* self = static_cast<CVuikEditCtrl*>(FromHandle(hwnd));
    if (self) {
        switch (message) {
            case WM_ERASEBKGND:
                return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
            case WM_NCPAINT:
                return self->OnNCPaint(hwnd, message, wParam, lParam);
            default:
                return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
        }
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}
