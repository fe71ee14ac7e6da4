#include "zcmod/VuikStaticCtrl.h"

#include <map>
#include <string>
#include <vector>

#include "controls/core/StaticLayout.h"
#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

using zcmod::BrushHandle;
using zcmod::RegionHandle;
using zcmod::SelectGuard;

namespace {

// The reflected form of WM_CTLCOLORSTATIC.
const UINT kReflectedCtlColorStatic = 0x2138;
const COLORREF kDisabledText = 0xCECECE;

// The text colours of all labels of the process, by object.
std::map<const CVuikStaticCtrl*, COLORREF>& TextColours()
{
    static std::map<const CVuikStaticCtrl*, COLORREF> colours;
    return colours;
}

void LoadPicture(CVuikBitmap** slot, UINT id, int mirror)
{
    if (id)
        CVuikResourceManager::LoadBitmapW(slot, CVuikLib::GetResourceInstance(), id, mirror, nullptr);
}

void UnloadPicture(CVuikBitmap** slot)
{
    if (*slot)
        CVuikResourceManager::UnloadBitmap(slot);
    *slot = nullptr;
}

std::wstring WindowText(HWND hwnd)
{
    const int length = GetWindowTextLengthW(hwnd);
    if (length <= 0)
        return std::wstring();
    std::vector<wchar_t> text(static_cast<size_t>(length) + 1);
    const int got = GetWindowTextW(hwnd, text.data(), length + 1);
    return std::wstring(text.data(), got > 0 ? static_cast<size_t>(got) : 0);
}

}  // namespace

// ---- Bitmap ---------------------------------------------------------------------------------------------------

CVuikStaticBitmapSkinDef CVuikStaticBitmapSkin::m_DefaultSkinDef = {0, 1, 0};

CVuikStaticBitmapSkin::CVuikStaticBitmapSkin() : m_pBitmap(nullptr)
{
    m_SkinDef = m_DefaultSkinDef;
}

CVuikStaticBitmapSkin::~CVuikStaticBitmapSkin()
{
    Unload();
}

void CVuikStaticBitmapSkin::SetDefaultSkinDef(CVuikStaticBitmapSkinDef def)
{
    m_DefaultSkinDef = def;
}

void CVuikStaticBitmapSkin::Load()
{
    Unload();
    LoadPicture(&m_pBitmap, m_SkinDef.m_nBitmapId, CVuikLib::GetLayout() == 1 && !m_SkinDef.m_bNoMirror);
    Validate();
}

void CVuikStaticBitmapSkin::Unload()
{
    UnloadPicture(&m_pBitmap);
}

void CVuikStaticBitmapSkin::Validate()
{
    m_nStatus = m_pBitmap ? StatusValid : StatusInvalid;
}

void CVuikStaticBitmapSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics || !m_pBitmap || !m_pBitmap->GetPrimary())
        return;
    if (m_SkinDef.m_bStretch)
        graphics->DrawImage(m_pBitmap, 0, 0, width, height);
    else
        graphics->DrawImage(m_pBitmap, 0, 0);
}

// ---- Icon -----------------------------------------------------------------------------------------------------

CVuikStaticIconSkinDef CVuikStaticIconSkin::m_DefaultSkinDef = {nullptr, nullptr, nullptr};

CVuikStaticIconSkin::CVuikStaticIconSkin() : m_hIcon(nullptr)
{
    m_SkinDef = m_DefaultSkinDef;
}

CVuikStaticIconSkin::~CVuikStaticIconSkin()
{
    Unload();
}

void CVuikStaticIconSkin::SetDefaultSkinDef(CVuikStaticIconSkinDef def)
{
    m_DefaultSkinDef = def;
}

void CVuikStaticIconSkin::Load()
{
    Unload();
    // A loaded icon is shared and never destroyed; the skin keeps a copy of its own.
    HICON shared = m_SkinDef.m_pszIconName ? LoadIconW(m_SkinDef.m_hInstance, m_SkinDef.m_pszIconName) : nullptr;
    if (shared)
        m_hIcon = CopyIcon(shared);
    Validate();
}

void CVuikStaticIconSkin::Unload()
{
    if (m_hIcon)
        DestroyIcon(m_hIcon);
    m_hIcon = nullptr;
}

void CVuikStaticIconSkin::Validate()
{
    m_nStatus = StatusValid;
}

void CVuikStaticIconSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int, int)
{
    if (graphics && m_hIcon)
        DrawIcon(*graphics, 0, 0, m_hIcon);
}

// ---- Gradient -------------------------------------------------------------------------------------------------

CVuikStaticGradientSkinDef CVuikStaticGradientSkin::m_DefaultSkinDef = {0xFFF0E6, 0x231400};

CVuikStaticGradientSkin::CVuikStaticGradientSkin()
{
    m_SkinDef = m_DefaultSkinDef;
}

CVuikStaticGradientSkin::~CVuikStaticGradientSkin() {}

void CVuikStaticGradientSkin::SetDefaultSkinDef(CVuikStaticGradientSkinDef def)
{
    m_DefaultSkinDef = def;
}

void CVuikStaticGradientSkin::Load() {}
void CVuikStaticGradientSkin::Unload() {}

void CVuikStaticGradientSkin::Validate()
{
    m_nStatus = StatusValid;
}

void CVuikStaticGradientSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    HDC dc = *graphics;
    if (m_SkinDef.m_crLeft == m_SkinDef.m_crRight) {
        const RECT all = {0, 0, width, height};
        BrushHandle brush(CreateSolidBrush(m_SkinDef.m_crLeft));
        if (brush)
            FillRect(dc, &all, brush.Get());
        return;
    }
    const std::vector<std::uint32_t> columns = zcmod::GradientColumns(m_SkinDef.m_crLeft, m_SkinDef.m_crRight, width);
    for (int x = 0; x < static_cast<int>(columns.size()); ++x) {
        const RECT column = {x, 0, x + 1, height};
        BrushHandle brush(CreateSolidBrush(columns[x]));
        if (brush)
            FillRect(dc, &column, brush.Get());
    }
}

// ---- Chrome ---------------------------------------------------------------------------------------------------

CVuikStaticChromeSkinDef CVuikStaticChromeSkin::m_DefaultSkinDef = {0, 0, 0, 0, 0, 0, 0, 0, 0};

CVuikStaticChromeSkin::CVuikStaticChromeSkin() : m_pBitmaps()
{
    m_SkinDef = m_DefaultSkinDef;
}

CVuikStaticChromeSkin::~CVuikStaticChromeSkin()
{
    Unload();
}

void CVuikStaticChromeSkin::SetDefaultSkinDef(CVuikStaticChromeSkinDef def)
{
    m_DefaultSkinDef = def;
}

void CVuikStaticChromeSkin::Load()
{
    Unload();
    const UINT ids[PieceCount] = {m_SkinDef.m_nTopLeftId,    m_SkinDef.m_nTopId,    m_SkinDef.m_nTopRightId,
                                  m_SkinDef.m_nBottomLeftId, m_SkinDef.m_nBottomId, m_SkinDef.m_nBottomRightId,
                                  m_SkinDef.m_nLeftId,       m_SkinDef.m_nCenterId, m_SkinDef.m_nRightId};
    for (int i = 0; i < PieceCount; ++i)
        LoadPicture(&m_pBitmaps[i], ids[i], 0);
    Validate();
}

void CVuikStaticChromeSkin::Unload()
{
    for (CVuikBitmap*& piece : m_pBitmaps)
        UnloadPicture(&piece);
}

void CVuikStaticChromeSkin::Validate()
{
    m_nStatus = StatusValid;
    for (CVuikBitmap* piece : m_pBitmaps)
        if (!piece)
            m_nStatus = StatusInvalid;
}

void CVuikStaticChromeSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    zcmod::PieceSize sizes[PieceCount];
    for (int i = 0; i < PieceCount; ++i)
        sizes[i] = m_pBitmaps[i] ? zcmod::PieceSize{m_pBitmaps[i]->GetWidth(), m_pBitmaps[i]->GetHeight()}
                                 : zcmod::PieceSize{0, 0};
    zcmod::Box places[PieceCount];
    zcmod::ChromeLayout(sizes, width, height, places);
    for (zcmod::ChromePiece piece : zcmod::ChromeDrawOrder) {
        const zcmod::Box& b = places[piece];
        if (m_pBitmaps[piece] && b.Width() > 0 && b.Height() > 0)
            graphics->DrawImage(m_pBitmaps[piece], RECT{b.left, b.top, b.right, b.bottom});
    }
}

// ---- The control ----------------------------------------------------------------------------------------------

CVuikStaticCtrl::CVuikStaticCtrl() : m_hBrush(nullptr), m_eVerticalAlignment(VA_TOP), m_pStaticSkin(nullptr)
{
    m_pfnWindowProc = WindowProc;
}

CVuikStaticCtrl::~CVuikStaticCtrl()
{
    if (m_hBrush)
        DeleteObject(m_hBrush);
    m_hBrush = nullptr;
}

HWND CVuikStaticCtrl::Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                             DWORD style, DWORD exStyle, LPVOID param)
{
    return Base::Create(className, parent, rect, title, id, style, exStyle, param);
}

HWND CVuikStaticCtrl::Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle)
{
    return Create(L"Static", parent, rect, L"", id, style, exStyle, nullptr);
}

void CVuikStaticCtrl::SetSkin(CVuikStaticBitmapSkin* skin)
{
    m_pSkin = skin;
    m_pStaticSkin = skin;
}

void CVuikStaticCtrl::SetSkin(CVuikBaseSkin* skin)
{
    m_pSkin = dynamic_cast<CVuikStaticBitmapSkin*>(skin);
    m_pStaticSkin = skin;
}

bool CVuikStaticCtrl::SkinIsValid()
{
    return m_pStaticSkin ? m_pStaticSkin->IsValid() : false;
}

void CVuikStaticCtrl::Draw(CVuikGraphics* graphics, int width, int height)
{
    if (m_pStaticSkin)
        m_pStaticSkin->Draw(this, graphics, width, height);
}

void CVuikStaticCtrl::SetTextColor(COLORREF colour)
{
    TextColours()[this] = colour;
}

COLORREF CVuikStaticCtrl::TextColour() const
{
    const auto found = TextColours().find(this);
    return found == TextColours().end() ? 0 : found->second;
}

void CVuikStaticCtrl::SetTextAlignment(DWORD align)
{
    if (!m_hWnd || !IsWindow(m_hWnd))
        return;
    const DWORD style = static_cast<DWORD>(GetWindowLongW(m_hWnd, GWL_STYLE));
    SetWindowLongW(m_hWnd, GWL_STYLE, static_cast<LONG>((style & ~3u) | align));
}

int CVuikStaticCtrl::GetTextHeight()
{
    if (!m_hWnd || !IsWindow(m_hWnd))
        return 0;
    const UINT flags = zcmod::LabelTextFlags(static_cast<DWORD>(GetWindowLongW(m_hWnd, GWL_STYLE))) | DT_CALCRECT;
    RECT r = {};
    GetClientRect(m_hWnd, &r);
    const std::wstring text = WindowText(m_hWnd);
    // The context comes from a paint of its own. Outside a paint that would validate what is waiting to be
    // painted, so the waiting area is invalidated again afterwards.
    RegionHandle waiting(CreateRectRgn(0, 0, 0, 0));
    const bool pending = waiting && GetUpdateRgn(m_hWnd, waiting.Get(), FALSE) > NULLREGION;
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(m_hWnd, &paint);
    int height = 0;
    if (dc) {
        HFONT font = reinterpret_cast<HFONT>(SendMessageW(m_hWnd, WM_GETFONT, 0, 0));
        SelectGuard select(dc, font);
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &r, flags);
        height = r.bottom - r.top;
    }
    EndPaint(m_hWnd, &paint);
    if (pending)
        InvalidateRgn(m_hWnd, waiting.Get(), TRUE);
    return height;
}

LRESULT CALLBACK CVuikStaticCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikStaticCtrl* self = static_cast<CVuikStaticCtrl*>(FromHandle(hwnd));
    if (!self)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_DESTROY:
            return self->OnDestroy(hwnd, message, wParam, lParam);
        case WM_SIZE:
            return self->OnSize(hwnd, message, wParam, lParam);
        case WM_PAINT:
            return self->OnPaint(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_CTLCOLORSTATIC:
        case kReflectedCtlColorStatic:
            return self->OnCtlColor(hwnd, message, wParam, lParam);
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
            return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
    }
}

LRESULT CVuikStaticCtrl::OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_hBrush)
        DeleteObject(m_hBrush);
    m_hBrush = nullptr;
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikStaticCtrl::OnEraseBkgnd(HWND hwnd, UINT, WPARAM wParam, LPARAM)
{
    PAINTSTRUCT paint = {};
    paint.hdc = reinterpret_cast<HDC>(wParam);
    GetClientRect(hwnd, &paint.rcPaint);
    HWND parent = GetParent(hwnd);
    if (parent)
        SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
    return 1;
}

LRESULT CVuikStaticCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, &paint);
    if (!dc)
        return 0;
    RECT client = {};
    GetClientRect(hwnd, &client);
    if (SkinIsValid()) {
        DrawBackBuffer(dc, client, paint.rcPaint);
    } else {
        const DWORD style = static_cast<DWORD>(GetWindowLongW(hwnd, GWL_STYLE));
        const UINT flags = zcmod::LabelTextFlags(style);
        const COLORREF colour = IsWindowEnabled(hwnd) ? TextColour() : kDisabledText;
        HFONT font = reinterpret_cast<HFONT>(SendMessageW(hwnd, WM_GETFONT, 0, 0));
        zcmod::Box box = {client.left, client.top, client.right, client.bottom};
        if (m_eVerticalAlignment == VA_BOTTOM || m_eVerticalAlignment == VA_CENTER)
            box = zcmod::PlaceLabelText(box, m_eVerticalAlignment, GetTextHeight());
        RECT area = {box.left, box.top, box.right, box.bottom};
        const std::wstring text = WindowText(hwnd);
        const COLORREF oldColour = ::SetTextColor(dc, colour);
        const int oldMode = SetBkMode(dc, TRANSPARENT);
        {
            SelectGuard select(dc, font);
            DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &area, flags);
        }
        SetBkMode(dc, oldMode);
        ::SetTextColor(dc, oldColour);
    }
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikStaticCtrl::OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikStaticCtrl::OnRepaint(HWND hwnd, UINT, WPARAM wParam, LPARAM lParam)
{
    PAINTSTRUCT* paint = reinterpret_cast<PAINTSTRUCT*>(lParam);
    if (!m_pStaticSkin || !paint)
        return 0;
    RECT mapped = paint->rcPaint;
    MapWindowPoints(reinterpret_cast<HWND>(wParam), hwnd, reinterpret_cast<POINT*>(&mapped), 2);
    RECT client = {};
    GetClientRect(hwnd, &client);
    DrawBackBufferPart(paint->hdc, client, mapped, paint->rcPaint);
    return 0;
}

LRESULT CVuikStaticCtrl::OnCtlColor(HWND, UINT, WPARAM wParam, LPARAM)
{
    HDC dc = reinterpret_cast<HDC>(wParam);
    SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, TextColour());
    if (!m_hBrush) {
        LOGBRUSH hollow = {BS_HOLLOW, 0, 0};
        m_hBrush = CreateBrushIndirect(&hollow);
    }
    return reinterpret_cast<LRESULT>(m_hBrush);
}
