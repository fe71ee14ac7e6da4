#include "zcmod/VuikStepBarCtrl.h"

#include <commctrl.h>

#include "controls/ControlOfWindow.h"
#include "controls/core/ControlText.h"
#include "frame/Handles.h"
#include "zcmod/ResHandler.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

CVuikStepBarSkinDef CVuikStepBarSkin::m_DefaultSkinDef = {{{1, ZGR_BMP_STEPBAR_BACKGROUND, ZGR_BMP_STEPBAR_LEFT,
                                                            ZGR_BMP_STEPBAR_MIDDLE, ZGR_BMP_STEPBAR_RIGHT,
                                                            ZGR_BMP_STEPBAR_SEPARATOR, 0, nullptr}}};

namespace {

// The command that repaints the bar: BN_CLICKED in the high word and this in the low word of lParam.
const WORD kRepaintCommand = 12367;

int Width(const CVuikBitmap* b)
{
    return b ? b->GetWidth() : 0;
}

// The control whose buffer is being drawn (see ControlOfWindow).
CVuikStepBarCtrl* g_pDrawing = nullptr;

CVuikStepBarCtrl* AsStepBar(CVuikWindow* window) { return zcmod::ControlOfWindow(window, g_pDrawing); }

}  // namespace

// --- State skin ------------------------------------------------------------------------------------------

CVuikStepBarStateSkin::CVuikStepBarStateSkin()
    : m_pBackground(nullptr), m_pLeft(nullptr), m_pMiddle(nullptr), m_pRight(nullptr), m_pSeparator(nullptr),
      m_hRegion(nullptr), m_rcCaption(), m_rcImage()
{
    m_SkinDef = CVuikStepBarSkin::m_DefaultSkinDef.m_StateDefs[0];
}

CVuikStepBarStateSkin::~CVuikStepBarStateSkin()
{
    Unload();
}

void CVuikStepBarStateSkin::Load()
{
    Load(false);
}

void CVuikStepBarStateSkin::Load(bool fromCommonResource)
{
    Unload();
    HINSTANCE module = fromCommonResource ? ZCMOD_GetCommonZGR() : CVuikLib::GetResourceInstance();
    // A right-to-left load turns the pictures round and the flag turns them back: the whole bar is turned
    // once on its way to the screen.
    const int mirror = CVuikLib::IsLayoutRTL() ? 1 : 0;
    const struct {
        CVuikBitmap** slot;
        UINT id;
    } pieces[] = {{&m_pBackground, m_SkinDef.m_nBackgroundBitmapId}, {&m_pLeft, m_SkinDef.m_nLeftBitmapId},
                  {&m_pMiddle, m_SkinDef.m_nMiddleBitmapId}, {&m_pRight, m_SkinDef.m_nRightBitmapId},
                  {&m_pSeparator, m_SkinDef.m_nSeparatorBitmapId}};
    if (module)
        for (const auto& piece : pieces)
            if (piece.id)
                CVuikResourceManager::LoadBitmapW(piece.slot, module, piece.id, mirror, nullptr);
    Validate();
}

void CVuikStepBarStateSkin::Unload()
{
    for (CVuikBitmap** slot : {&m_pBackground, &m_pLeft, &m_pMiddle, &m_pRight, &m_pSeparator})
        if (*slot)
            CVuikResourceManager::UnloadBitmap(slot);
}

void CVuikStepBarStateSkin::Validate()
{
    m_nStatus = StatusValid;
    if ((m_SkinDef.m_nBackgroundBitmapId && !m_pBackground) || (m_SkinDef.m_nLeftBitmapId && !m_pLeft) ||
        (m_SkinDef.m_nMiddleBitmapId && !m_pMiddle) || (m_SkinDef.m_nRightBitmapId && !m_pRight) ||
        (m_SkinDef.m_nSeparatorBitmapId && !m_pSeparator))
        m_nStatus = StatusInvalid;
}

void CVuikStepBarStateSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    DrawBackground(window, graphics, width, height);
}

void CVuikStepBarStateSkin::DrawBackground(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    CVuikStepBarCtrl* bar = AsStepBar(window);
    const int n = bar ? bar->GetStepCount() : 0;
    const int c = bar ? bar->GetCurrentStep() : 0;
    const zcmod::StepBarLayout layout =
        zcmod::LayoutStepBar(n, c, width, Width(m_pBackground), Width(m_pLeft), Width(m_pMiddle), Width(m_pRight),
                             m_pRight != nullptr);
    if (m_pBackground)
        graphics->DrawImage(m_pBackground, 0, 0);
    if (m_pLeft)
        graphics->DrawImage(m_pLeft, 0, 0);
    if (layout.end)
        graphics->DrawImage(m_pRight, layout.endX, 0);
    for (const zcmod::StepBarTile& tile : layout.tiles) {
        RECT dest = {tile.x, 0, tile.x + tile.width, m_pMiddle->GetHeight()};
        graphics->DrawImage(m_pMiddle, dest, 0, 0, tile.width, m_pMiddle->GetHeight());
    }
    if (m_pSeparator)
        for (int x : layout.separators)
            graphics->DrawImage(m_pSeparator, x, 0);

    if (!m_pLeft && !m_pMiddle && !m_pRight) {
        HWND hwnd = window ? window->m_hWnd : nullptr;
        HWND parent = hwnd ? GetParent(hwnd) : nullptr;
        if (parent) {
            PAINTSTRUCT paint = {};
            paint.hdc = *graphics;
            paint.rcPaint.right = width;
            paint.rcPaint.bottom = height;
            SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
        }
    }
}

void CVuikStepBarStateSkin::DrawCaption(CVuikWindow*, CVuikGraphics*, int, int)
{
    if (!m_SkinDef.m_hFont)
        m_SkinDef.m_hFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
}

void CVuikStepBarStateSkin::SetupRegion(HWND hwnd, RECT, CVuikGraphics*)
{
    if (!hwnd || !m_pLeft || !m_pRight || !m_pLeft->GetPrimary() || !m_pRight->GetPrimary())
        return;
    zcmod::RegionHandle left(CVuikLib::BitmapToRegion(m_pLeft->GetPrimary(), 0xFFFFFF, 0));
    zcmod::RegionHandle right(CVuikLib::BitmapToRegion(m_pRight->GetPrimary(), 0xFFFFFF, 0));
    zcmod::RegionHandle middle(CreateRectRgnIndirect(&m_rcCaption));
    if (!left || !right || !middle)
        return;
    const int offset = m_pLeft->GetWidth() - m_rcCaption.left + m_rcCaption.right;
    OffsetRgn(CVuikLib::IsLayoutRTL() ? left.Get() : right.Get(), offset, 0);
    HRGN combined = CreateRectRgn(0, 0, 0, 0);
    if (!combined)
        return;
    CombineRgn(combined, left.Get(), right.Get(), RGN_OR);
    CombineRgn(combined, combined, middle.Get(), RGN_OR);
    // The window owns the region from here on.
    if (!SetWindowRgn(hwnd, combined, TRUE))
        DeleteObject(combined);
    m_hRegion = combined;
}

// --- Skin -------------------------------------------------------------------------------------------------

CVuikStepBarSkin::CVuikStepBarSkin()
{
    SetSkinDef(m_DefaultSkinDef);
}

CVuikStepBarSkin::~CVuikStepBarSkin()
{
    Unload();
}

void CVuikStepBarSkin::SetSkinDef(CVuikStepBarSkinDef def)
{
    m_SkinDef = def;
    m_StateSkins[0].SetSkinDef(def.m_StateDefs[0]);
}

void CVuikStepBarSkin::Load()
{
    Load(false);
}

void CVuikStepBarSkin::Load(bool fromCommonResource)
{
    m_StateSkins[0].Load(fromCommonResource);
}

void CVuikStepBarSkin::Unload()
{
    m_StateSkins[0].Unload();
}

void CVuikStepBarSkin::Validate()
{
    m_StateSkins[0].Validate();
}

bool CVuikStepBarSkin::IsValid()
{
    return m_StateSkins[0].IsValid();
}

void CVuikStepBarSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    // One state only; a window of another kind draws it too.
    m_StateSkins[0].Draw(window, graphics, width, height);
}

// --- Control ------------------------------------------------------------------------------------------------

CVuikStepBarCtrl::CVuikStepBarCtrl()
    : m_eState(STEPBAR_STATE_NORMAL), m_ePrevState(STEPBAR_STATE_NORMAL), m_dwStyle(0), m_hToolTip(nullptr),
      m_bTracking(false), m_bCaptured(false), m_nCurrentStep(0), m_nStepCount(0), m_pOwnSkin(nullptr)
{
    m_pfnWindowProc = WindowProc;
}

CVuikStepBarCtrl::~CVuikStepBarCtrl()
{
    if (m_hToolTip && IsWindow(m_hToolTip))
        DestroyWindow(m_hToolTip);
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);
    DeleteBackBuffer();
    if (m_pSkin == m_pOwnSkin)
        m_pSkin = nullptr;
    delete m_pOwnSkin;
}

HWND CVuikStepBarCtrl::Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle)
{
    if (!CVuikWindowImpl<CVuikStepBarSkin>::Create(L"StepBar", parent, rect, L"", id, style, exStyle, nullptr))
        return nullptr;
    m_dwStyle = style | 0x10;
    SetButtonSkin();
    SizeToContent();
    return m_hWnd;
}

BOOL CVuikStepBarCtrl::SubclassWindow(HWND hwnd)
{
    if (!CVuikWindowImpl<CVuikStepBarSkin>::SubclassWindow(hwnd))
        return 0;
    m_dwStyle = static_cast<DWORD>(GetWindowLongPtrW(hwnd, GWL_STYLE) & 0xFF7FFFFF);
    SetWindowLongPtrW(hwnd, GWL_STYLE, m_dwStyle);
    SetWindowLongPtrW(hwnd, GWL_EXSTYLE, GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_NOPARENTNOTIFY));
    SetWindowPos(hwnd, nullptr, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    SetButtonSkin();
    SizeToContent();
    return 1;
}

void CVuikStepBarCtrl::SetButtonSkin()
{
    CVuikStepBarStateSkinDef& def = CVuikStepBarSkin::m_DefaultSkinDef.m_StateDefs[0];
    def.m_nImageAlign = 1;
    def.m_nBackgroundBitmapId = ZGR_BMP_STEPBAR_BACKGROUND;
    def.m_nLeftBitmapId = ZGR_BMP_STEPBAR_LEFT;
    def.m_nMiddleBitmapId = ZGR_BMP_STEPBAR_MIDDLE;
    def.m_nRightBitmapId = ZGR_BMP_STEPBAR_RIGHT;
    def.m_nSeparatorBitmapId = ZGR_BMP_STEPBAR_SEPARATOR;
    def.m_crText = GetSysColor(COLOR_BTNTEXT);
    def.m_hFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    CVuikStepBarSkin* skin = m_pSkin;
    if (!skin) {
        if (!m_pOwnSkin)
            m_pOwnSkin = new CVuikStepBarSkin;
        skin = m_pOwnSkin;
    }
    skin->SetSkinDef(CVuikStepBarSkin::m_DefaultSkinDef);
    skin->Load(true);
    SetSkin(skin);
    DeleteBackBuffer();
}

void CVuikStepBarCtrl::SizeToContent()
{
    if (!m_hWnd)
        return;
    CVuikStepBarStateSkin* state = m_pSkin ? m_pSkin->GetStateSkin(0) : nullptr;
    CVuikBitmap* first = nullptr;
    if (state)
        first = state->m_pBackground ? state->m_pBackground : state->m_pMiddle ? state->m_pMiddle : state->m_pRight;
    const int w = first ? first->GetWidth() : 0;
    const int h = first ? first->GetHeight() : 0;
    SetWindowPos(m_hWnd, nullptr, 0, 0, w, h, SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE);
}

void CVuikStepBarCtrl::SetToolTipText(const wchar_t* text)
{
    if (!m_hWnd)
        return;
    TOOLINFOW info = {};
    info.cbSize = sizeof(info);
    info.uFlags = TTF_IDISHWND;
    info.hwnd = GetParent(m_hWnd);
    info.uId = reinterpret_cast<UINT_PTR>(m_hWnd);
    info.lpszText = const_cast<wchar_t*>(text ? text : L"");
    if (!m_hToolTip) {
        m_hToolTip = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, 0, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                     CW_USEDEFAULT, m_hWnd, nullptr, CVuikLib::GetInstance(), nullptr);
        if (!m_hToolTip)
            return;
        SendMessageW(m_hToolTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info));
        if (IsWindow(m_hToolTip))
            SendMessageW(m_hToolTip, TTM_ACTIVATE, TRUE, 0);
        return;
    }
    SendMessageW(m_hToolTip, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&info));
}

void CVuikStepBarCtrl::RelayEvent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!m_hToolTip)
        return;
    MSG msg = {};
    msg.hwnd = hwnd;
    msg.message = message;
    msg.wParam = wParam;
    msg.lParam = lParam;
    msg.pt.x = static_cast<short>(LOWORD(lParam));
    msg.pt.y = static_cast<short>(HIWORD(lParam));
    SendMessageW(m_hToolTip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&msg));
}

void CVuikStepBarCtrl::Draw(CVuikGraphics* graphics, int width, int height)
{
    CVuikStepBarCtrl* outer = g_pDrawing;
    g_pDrawing = this;
    CVuikWindowImpl<CVuikStepBarSkin>::Draw(graphics, width, height);
    g_pDrawing = outer;
}

void CVuikStepBarCtrl::CreateBackBuffer(int width, int height, CVuikGraphics* graphics)
{
    const bool mirroredWindow = m_hWnd && (GetWindowLongPtrW(m_hWnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    const DWORD layout = mirroredWindow ? CVuikLib::SetLayout(0) : CVuikLib::GetLayout();
    CVuikWindowImpl<CVuikStepBarSkin>::CreateBackBuffer(width, height, graphics);
    CVuikLib::SetLayout(layout);
}

LRESULT CVuikStepBarCtrl::OnCreate(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikStepBarCtrl::OnDestroy(HWND, UINT, WPARAM, LPARAM)
{
    if (m_hToolTip && IsWindow(m_hToolTip))
        DestroyWindow(m_hToolTip);
    m_hToolTip = nullptr;
    DeleteBackBuffer();
    return 0;
}

LRESULT CVuikStepBarCtrl::OnEraseBkgnd(HWND, UINT, WPARAM, LPARAM)
{
    return 1;
}

LRESULT CVuikStepBarCtrl::OnDrawItem(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    // The counters change without a message: the picture is made anew for each paint.
    DeleteBackBuffer();
    if (SkinIsValid()) {
        RECT client;
        GetClientRect(hwnd, &client);
        DrawBackBuffer(paint.hdc, client, paint.rcPaint);
    } else {
        DrawPlaceHolder(paint.hdc);
    }
    m_ePrevState = m_eState;
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikStepBarCtrl::OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    RelayEvent(hwnd, message, wParam, lParam);
    if (m_bCaptured && GetCapture() == hwnd)
        return 0;
    if (!m_bTracking) {
        TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, hwnd, 0};
        TrackMouseEvent(&track);
        // Once in the control's life: a leave does not clear it.
        m_bTracking = true;
        InvalidateRect(hwnd, nullptr, TRUE);
    }
    return 0;
}

LRESULT CVuikStepBarCtrl::OnMouseLeave(HWND hwnd, UINT, WPARAM, LPARAM)
{
    InvalidateRect(hwnd, nullptr, TRUE);
    return 0;
}

LRESULT CVuikStepBarCtrl::OnCommand(HWND hwnd, UINT, WPARAM, LPARAM lParam)
{
    if (HIWORD(lParam) == BN_CLICKED && LOWORD(lParam) == kRepaintCommand)
        InvalidateRect(hwnd, nullptr, TRUE);
    return 1;
}

LRESULT CALLBACK CVuikStepBarCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikStepBarCtrl* self = reinterpret_cast<CVuikStepBarCtrl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!self || self->m_hWnd != hwnd)
        return self ? self->CallSuperWindowProc(hwnd, message, wParam, lParam) : DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_CREATE:
            return self->OnCreate(hwnd, message, wParam, lParam);
        case WM_DESTROY:
            return self->OnDestroy(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_MOUSEMOVE:
            return self->OnMouseMove(hwnd, message, wParam, lParam);
        case WM_MOUSELEAVE:
            return self->OnMouseLeave(hwnd, message, wParam, lParam);
        case WM_COMMAND:
            return self->OnCommand(hwnd, message, wParam, lParam);
        case WM_PAINT:
        case WM_DRAWITEM:
            return self->OnDrawItem(hwnd, message, wParam, lParam);
        case WM_NCPAINT:
            return 1;
        case WM_SIZE:
            self->DeleteBackBuffer();
            break;
        case WM_VUIK_INVALIDATE_BACKBUFFER:
            self->DeleteBackBuffer();
            return 0;
        case WM_VUIK_REPAINT:
            return self->OnRepaint(hwnd, message, wParam, lParam);
        default:
            break;
    }
    return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
}
