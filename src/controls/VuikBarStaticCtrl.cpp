#include "zcmod/VuikBarStaticCtrl.h"

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "controls/core/StaticLayout.h"
#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

using zcmod::WindowDC;

namespace {

const DWORD kOwnerDrawBits = 0xD;
const UINT kReflectedCtlColorStatic = 0x2138;

zcmod::PieceSize SizeOf(const CVuikBitmap* piece)
{
    return piece ? zcmod::PieceSize{piece->GetWidth(), piece->GetHeight()} : zcmod::PieceSize{0, 0};
}

}  // namespace

// ---- Skin -----------------------------------------------------------------------------------------------------

CVuikBarStaticSkinDef CVuikBarStaticSkin::m_DefaultSkinDef = {1, 0, 0, 0};

CVuikBarStaticSkin::CVuikBarStaticSkin() : m_pStart(nullptr), m_pMiddle(nullptr), m_pEnd(nullptr)
{
    m_SkinDef = m_DefaultSkinDef;
}

CVuikBarStaticSkin::~CVuikBarStaticSkin()
{
    Unload();
}

void CVuikBarStaticSkin::SetDefaultSkinDef(CVuikBarStaticSkinDef def)
{
    m_DefaultSkinDef = def;
}

void CVuikBarStaticSkin::Load()
{
    Unload();
    HINSTANCE module = CVuikLib::GetResourceInstance();
    if (m_SkinDef.m_nStartBitmapId)
        CVuikResourceManager::LoadBitmapW(&m_pStart, module, m_SkinDef.m_nStartBitmapId, 0, nullptr);
    if (m_SkinDef.m_nMiddleBitmapId)
        CVuikResourceManager::LoadBitmapW(&m_pMiddle, module, m_SkinDef.m_nMiddleBitmapId, 0, nullptr);
    if (m_SkinDef.m_nEndBitmapId)
        CVuikResourceManager::LoadBitmapW(&m_pEnd, module, m_SkinDef.m_nEndBitmapId, 0, nullptr);
    Validate();
}

void CVuikBarStaticSkin::Unload()
{
    for (CVuikBitmap** piece : {&m_pStart, &m_pMiddle, &m_pEnd}) {
        if (*piece)
            CVuikResourceManager::UnloadBitmap(piece);
        *piece = nullptr;
    }
}

void CVuikBarStaticSkin::Validate()
{
    const bool missing = (m_SkinDef.m_nStartBitmapId && !m_pStart) || (m_SkinDef.m_nMiddleBitmapId && !m_pMiddle) ||
                         (m_SkinDef.m_nEndBitmapId && !m_pEnd);
    m_nStatus = missing ? StatusInvalid : StatusValid;
}

SIZE CVuikBarStaticSkin::GetLargestPiece() const
{
    SIZE largest = {0, 0};
    for (const CVuikBitmap* piece : {m_pStart, m_pMiddle, m_pEnd}) {
        const zcmod::PieceSize s = SizeOf(piece);
        largest.cx = std::max<LONG>(largest.cx, s.width);
        largest.cy = std::max<LONG>(largest.cy, s.height);
    }
    return largest;
}

void CVuikBarStaticSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    const std::vector<zcmod::BarTile> tiles = zcmod::BarLayout(IsHorizontal(), SizeOf(m_pStart), SizeOf(m_pMiddle),
                                                               SizeOf(m_pEnd), width, height);
    for (const zcmod::BarTile& tile : tiles) {
        CVuikBitmap* piece = tile.piece == zcmod::BarStart ? m_pStart : tile.piece == zcmod::BarEnd ? m_pEnd : m_pMiddle;
        const RECT dest = {tile.dest.left, tile.dest.top, tile.dest.right, tile.dest.bottom};
        const RECT source = {0, 0, tile.sourceWidth, tile.sourceHeight};
        graphics->DrawImage(piece, dest, source);
    }
}

// ---- Control --------------------------------------------------------------------------------------------------

CVuikBarStaticCtrl::CVuikBarStaticCtrl()
{
    m_pfnWindowProc = WindowProc;
}

HWND CVuikBarStaticCtrl::Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                                DWORD style, DWORD exStyle, LPVOID param)
{
    return Base::Create(className, parent, rect, title, id, style, exStyle, param);
}

HWND CVuikBarStaticCtrl::Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle)
{
    return Create(L"Static", parent, rect, L"", id, style | kOwnerDrawBits, exStyle, nullptr);
}

BOOL CVuikBarStaticCtrl::SubclassWindow(HWND window)
{
    if (!Base::SubclassWindow(window))
        return 0;
    const DWORD style = static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE));
    SetWindowLongW(window, GWL_STYLE, static_cast<LONG>((style & ~kOwnerDrawBits) | WS_CLIPSIBLINGS));
    return 1;
}

void CVuikBarStaticCtrl::SizeToContent()
{
    if (!m_hWnd || !m_pSkin)
        return;
    const SIZE largest = m_pSkin->GetLargestPiece();
    RECT client = {};
    GetClientRect(m_hWnd, &client);
    const UINT flags = SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE;
    if (!m_pSkin->IsHorizontal()) {
        if (largest.cx >= 1)
            SetWindowPos(m_hWnd, nullptr, 0, 0, largest.cx, client.bottom, flags);
    } else if (largest.cy >= 1) {
        SetWindowPos(m_hWnd, nullptr, 0, 0, client.right, largest.cy, flags);
    }
}

LRESULT CALLBACK CVuikBarStaticCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikBarStaticCtrl* self = static_cast<CVuikBarStaticCtrl*>(FromHandle(hwnd));
    if (!self)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_DESTROY:
            self->DeleteBackBuffer();
            break;
        case WM_SIZE:
            return self->OnSize(hwnd, message, wParam, lParam);
        case WM_PAINT:
            return self->OnPaint(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_CTLCOLORSTATIC:
        case kReflectedCtlColorStatic:
            // Static children show the bar through them.
            SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
            return reinterpret_cast<LRESULT>(GetStockObject(NULL_BRUSH));
        case WM_COMMAND:
            return SendMessageW(GetParent(hwnd), WM_COMMAND, wParam, lParam);
        case WM_DRAWITEM:
        case OCM_DRAWITEM:
            return self->OnDrawItem(hwnd, message, wParam, lParam);
        case WM_VUIK_INVALIDATE_BACKBUFFER:
            InvalidateRect(hwnd, nullptr, TRUE);
            self->DeleteBackBuffer();
            return 0;
        case WM_VUIK_REPAINT:
            return self->OnRepaint(hwnd, message, wParam, lParam);
        default:
            break;
    }
    return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikBarStaticCtrl::OnEraseBkgnd(HWND, UINT, WPARAM, LPARAM)
{
    return 1;
}

LRESULT CVuikBarStaticCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, &paint);
    if (!dc)
        return 0;
    RECT client = {};
    GetClientRect(hwnd, &client);
    if (SkinIsValid())
        DrawBackBuffer(dc, client, paint.rcPaint);
    else
        DrawPlaceHolder(dc);
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikBarStaticCtrl::OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikBarStaticCtrl::OnRepaint(HWND hwnd, UINT, WPARAM wParam, LPARAM lParam)
{
    PAINTSTRUCT* paint = reinterpret_cast<PAINTSTRUCT*>(lParam);
    if (!paint || !SkinIsValid())
        return 0;
    RECT mapped = paint->rcPaint;
    MapWindowPoints(reinterpret_cast<HWND>(wParam), hwnd, reinterpret_cast<POINT*>(&mapped), 2);
    RECT client = {};
    GetClientRect(hwnd, &client);
    WindowDC unused(hwnd);
    DrawBackBufferPart(paint->hdc, client, mapped, paint->rcPaint);
    return 0;
}
