#include "zcmod/VuikAniStaticCtrl.h"

#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

using zcmod::WindowDC;

namespace {

// SS_OWNERDRAW, and with WS_CLIPCHILDREN and WS_CLIPSIBLINGS for a window taken over.
const DWORD kCreateStyle = 0xD;
const DWORD kSubclassStyle = 0x600000D;
const UINT kLastResourceId = 0xFFFF;

}  // namespace

// ---- Skin -----------------------------------------------------------------------------------------------------

CVuikAniStaticSkinDef CVuikAniStaticSkin::m_DefaultSkinDef = {0, 0, 500, 1};

CVuikAniStaticSkin::CVuikAniStaticSkin()
{
    m_SkinDef = m_DefaultSkinDef;
}

CVuikAniStaticSkin::~CVuikAniStaticSkin()
{
    Unload();
}

void CVuikAniStaticSkin::SetDefaultSkinDef(CVuikAniStaticSkinDef def)
{
    m_DefaultSkinDef = def;
}

void CVuikAniStaticSkin::Load()
{
    Unload();
    const int mirror = CVuikLib::GetLayout() == 1 && !m_SkinDef.m_bNoMirror;
    const UINT last = m_SkinDef.m_nLastFrameId < kLastResourceId ? m_SkinDef.m_nLastFrameId : kLastResourceId;
    for (UINT id = m_SkinDef.m_nFirstFrameId; id != 0 && id <= last; ++id) {
        CVuikBitmap* frame = nullptr;
        if (CVuikResourceManager::LoadBitmapW(&frame, CVuikLib::GetResourceInstance(), id, mirror, nullptr) && frame)
            m_Frames.push_back(frame);
    }
    Validate();
}

void CVuikAniStaticSkin::Unload()
{
    for (CVuikBitmap*& frame : m_Frames)
        CVuikResourceManager::UnloadBitmap(&frame);
    m_Frames.clear();
}

void CVuikAniStaticSkin::Validate()
{
    const bool noIds = m_SkinDef.m_nFirstFrameId == 0 && m_SkinDef.m_nLastFrameId == 0;
    m_nStatus = noIds || m_SkinDef.m_nFrameTime < 1 || m_Frames.empty() ? StatusInvalid : StatusValid;
}

CVuikBitmap* CVuikAniStaticSkin::GetFrame(int index) const
{
    return index >= 0 && index < GetFrameCount() ? m_Frames[static_cast<size_t>(index)] : nullptr;
}

void CVuikAniStaticSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int, int)
{
    if (!window || !graphics || !window->m_hWnd)
        return;
    HWND hwnd = window->m_hWnd;
    RECT area = {};
    GetClientRect(hwnd, &area);
    if (CVuikLib::IsLayoutRTL())
        area.left -= 1;
    PAINTSTRUCT paint = {};
    paint.hdc = *graphics;
    paint.rcPaint = area;
    if (HWND parent = GetParent(hwnd))
        SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
    const CVuikAniStaticCtrl* control = dynamic_cast<CVuikAniStaticCtrl*>(window);
    const UINT current = control ? control->GetCurrentFrame() : 0;
    if (current < m_Frames.size() && m_Frames[current])
        graphics->DrawImage(m_Frames[current], area);
}

// ---- Control --------------------------------------------------------------------------------------------------

CVuikAniStaticCtrl::CVuikAniStaticCtrl() : m_nCurrentFrame(0), m_nTimer(0)
{
    m_pfnWindowProc = WindowProc;
}

CVuikAniStaticCtrl::~CVuikAniStaticCtrl()
{
    if (m_nTimer && m_hWnd && IsWindow(m_hWnd))
        KillTimer(m_hWnd, AnimationTimerId);
    m_nTimer = 0;
}

HWND CVuikAniStaticCtrl::Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                                DWORD style, DWORD exStyle, LPVOID param)
{
    return Base::Create(className, parent, rect, title, id, style, exStyle, param);
}

HWND CVuikAniStaticCtrl::Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle)
{
    return Create(L"Static", parent, rect, L"", id, style | kCreateStyle, exStyle, nullptr);
}

BOOL CVuikAniStaticCtrl::SubclassWindow(HWND window)
{
    if (!Base::SubclassWindow(window))
        return 0;
    SetWindowLongW(window, GWL_STYLE, GetWindowLongW(window, GWL_STYLE) | static_cast<LONG>(kSubclassStyle));
    return 1;
}

HWND CVuikAniStaticCtrl::UnsubclassWindow(int force)
{
    StopAnimation();
    return Base::UnsubclassWindow(force);
}

void CVuikAniStaticCtrl::Redraw()
{
    RECT client = {};
    GetClientRect(m_hWnd, &client);
    WindowDC dc(m_hWnd);
    if (dc)
        DrawBackBuffer(dc.Get(), client, client);
}

void CVuikAniStaticCtrl::StartAnimation()
{
    if (!m_hWnd || !IsWindow(m_hWnd) || !m_pSkin)
        return;
    m_nCurrentFrame = 0;
    DeleteBackBuffer();
    if (SkinIsValid())
        Redraw();
    m_nTimer = SetTimer(m_hWnd, AnimationTimerId, static_cast<UINT>(m_pSkin->GetFrameTime()), nullptr);
}

void CVuikAniStaticCtrl::StopAnimation()
{
    if (m_hWnd && IsWindow(m_hWnd))
        KillTimer(m_hWnd, AnimationTimerId);
    m_nTimer = 0;
}

void CVuikAniStaticCtrl::SizeToContent()
{
    CVuikBitmap* first = m_pSkin ? m_pSkin->GetFrame(0) : nullptr;
    if (!m_hWnd || !first)
        return;
    SetWindowPos(m_hWnd, nullptr, 0, 0, first->GetWidth(), first->GetHeight(),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CALLBACK CVuikAniStaticCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikAniStaticCtrl* self = static_cast<CVuikAniStaticCtrl*>(FromHandle(hwnd));
    if (!self)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_DESTROY:
            return self->OnDestroy(hwnd, message, wParam, lParam);
        case WM_SIZE:
            return self->OnSize(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_TIMER:
            return self->OnTimer(hwnd, message, wParam, lParam);
        case WM_PAINT:
        case WM_DRAWITEM:
            return self->OnPaint(hwnd, message, wParam, lParam);
        default:
            // The toolkit's own messages as every window base answers them; the rest to the earlier procedure.
            return Base::WindowProc(hwnd, message, wParam, lParam);
    }
}

LRESULT CVuikAniStaticCtrl::OnDestroy(HWND hwnd, UINT, WPARAM, LPARAM)
{
    KillTimer(hwnd, AnimationTimerId);
    m_nTimer = 0;
    DeleteBackBuffer();
    return 0;
}

LRESULT CVuikAniStaticCtrl::OnEraseBkgnd(HWND, UINT, WPARAM, LPARAM)
{
    return 1;
}

LRESULT CVuikAniStaticCtrl::OnPaint(HWND hwnd, UINT message, WPARAM, LPARAM lParam)
{
    RECT client = {};
    GetClientRect(hwnd, &client);
    const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (message == WM_DRAWITEM && item && item->hDC) {
        // The parent hands its drawing of the owner-drawn static back to this object.
        if (SkinIsValid())
            DrawBackBuffer(item->hDC, client, client);
        else
            DrawPlaceHolder(item->hDC);
        return TRUE;
    }
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, &paint);
    if (!dc)
        return 0;
    if (SkinIsValid())
        DrawBackBuffer(dc, client, paint.rcPaint);
    else
        DrawPlaceHolder(dc);
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikAniStaticCtrl::OnTimer(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (wParam != AnimationTimerId)
        return CallSuperWindowProc(hwnd, message, wParam, lParam);
    // Each tick arms the next one: an invalid skin ends the run here.
    KillTimer(hwnd, AnimationTimerId);
    m_nTimer = 0;
    if (!SkinIsValid())
        return 0;
    const UINT count = static_cast<UINT>(m_pSkin->GetFrameCount());
    m_nCurrentFrame = m_nCurrentFrame + 1 >= count ? 0 : m_nCurrentFrame + 1;
    DeleteBackBuffer();
    Redraw();
    m_nTimer = SetTimer(hwnd, AnimationTimerId, static_cast<UINT>(m_pSkin->GetFrameTime()), nullptr);
    return 0;
}

LRESULT CVuikAniStaticCtrl::OnSize(HWND, UINT, WPARAM, LPARAM)
{
    DeleteBackBuffer();
    return 0;
}
