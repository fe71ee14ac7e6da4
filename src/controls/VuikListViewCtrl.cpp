#include "zcmod/VuikListViewCtrl.h"

#include <commctrl.h>
#include <objidl.h>  // PROPID, which a lean windows.h leaves out

#include <gdiplus.h>

#include <new>

#include "controls/NotchedBorder.h"
#include "frame/GdiPlus.h"
#include "frame/Handles.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikGraphics.h"

using zcmod::SelectGuard;

namespace {

// The style bits the list keeps: all but both scroll bars, LVS_NOSCROLL and bit 1 of the view type.
const LONG_PTR kKeptStyle = 0xFFCFDFFD;
// WS_BORDER, LVS_OWNERDRAWFIXED and LVS_REPORT.
const LONG_PTR kAddedStyle = 0x800401;
const int kHeaderTextCapacity = 260;

HFONT SuiteFont(int height)
{
    LOGFONTW font;
    DkhLoadFont(&font);  // registers the suite's fonts once and names the face
    font.lfHeight = height;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = 5;  // ClearType
    return CreateFontIndirectW(&font);
}

// A solid rectangle or a vertical gradient over it, in GDI+ colours.
void FillArea(Gdiplus::GpGraphics* graphics, int x, int y, int width, int height, DWORD top, DWORD bottom)
{
    using namespace Gdiplus;
    using namespace Gdiplus::DllExports;
    if (width <= 0 || height <= 0)
        return;
    GpBrush* brush = nullptr;
    if (top == bottom) {
        GpSolidFill* solid = nullptr;
        if (GdipCreateSolidFill(top, &solid) == Ok)
            brush = solid;
    } else {
        const GpRect bounds(x, y, width, height);
        GpLineGradient* gradient = nullptr;
        // Top to bottom: the gradient at 90 degrees.
        if (GdipCreateLineBrushFromRectI(&bounds, top, bottom, LinearGradientModeVertical, WrapModeTile,
                                         &gradient) == Ok)
            brush = gradient;
    }
    if (!brush)
        return;
    GdipFillRectangleI(graphics, brush, x, y, width, height);
    GdipDeleteBrush(brush);
}

}  // namespace

// ---- The list's skin ------------------------------------------------------------------------------------------

CVuikListViewSkinDef CVuikListViewSkin::m_DefaultSkinDef = {0xFFFFFFFF, 0xFF656464, 0xFFADADAD, 4};

CVuikListViewSkin::CVuikListViewSkin() { m_SkinDef = m_DefaultSkinDef; }

CVuikListViewSkin::~CVuikListViewSkin() {}

void CVuikListViewSkin::Load() {}

void CVuikListViewSkin::Unload() {}

void CVuikListViewSkin::Validate() { m_nStatus = StatusValid; }

void CVuikListViewSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (window && graphics)
        zcmod::DrawNotchedBorder(*graphics, window->m_hWnd, width, height, m_SkinDef.m_crBorderTop,
                                 m_SkinDef.m_crBorderBottom);
}

void CVuikListViewSkin::SetDefaultSkinDef(CVuikListViewSkinDef def) { m_DefaultSkinDef = def; }

// ---- The header's skin ----------------------------------------------------------------------------------------

CVuikListViewHeaderSkinDef CVuikListViewHeaderSkin::m_DefaultSkinDef = {0xFFFFFFFF, 0xFFF4F4F5, 0xFFD2D2D2, 8, 10};

CVuikListViewHeaderSkin::CVuikListViewHeaderSkin()
    : m_hFont(SuiteFont(19)), m_hTextFont(SuiteFont(15)), m_crText(DkhLoadColor(nullptr, ZGR_COLOR_LISTVIEW_HEADER_TEXT))
{
    m_SkinDef = m_DefaultSkinDef;
}

CVuikListViewHeaderSkin::~CVuikListViewHeaderSkin()
{
    if (m_hFont)
        DeleteObject(m_hFont);
    if (m_hTextFont)
        DeleteObject(m_hTextFont);
}

void CVuikListViewHeaderSkin::Load() {}

void CVuikListViewHeaderSkin::Unload() {}

void CVuikListViewHeaderSkin::Validate() { m_nStatus = StatusValid; }

void CVuikListViewHeaderSkin::SetDefaultSkinDef(CVuikListViewHeaderSkinDef def) { m_DefaultSkinDef = def; }

// ---- The control ----------------------------------------------------------------------------------------------

CVuikListViewCtrl::CVuikListViewCtrl()
    : m_pHeaderSkin(nullptr), m_hHeader(nullptr), m_pfnHeaderProc(nullptr), m_pListSkin(nullptr)
{
    m_pfnWindowProc = WindowProc;
}

CVuikListViewCtrl::~CVuikListViewCtrl()
{
    // The header's procedure stays while the object lives; a header that outlives the object gets its own
    // back, so that it never calls into a destroyed object.
    if (m_hHeader && IsWindow(m_hHeader) &&
        reinterpret_cast<WNDPROC>(GetWindowLongPtrW(m_hHeader, GWLP_WNDPROC)) == HeaderProc && m_pfnHeaderProc) {
        SetWindowLongPtrW(m_hHeader, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnHeaderProc));
        SetWindowLongPtrW(m_hHeader, GWLP_USERDATA, 0);
    }
    if (m_hWnd && IsWindow(m_hWnd))
        UnsubclassWindow(0);
    SetSkin(nullptr);
    delete m_pListSkin;
    m_pListSkin = nullptr;
    delete m_pHeaderSkin;
    m_pHeaderSkin = nullptr;
}

BOOL CVuikListViewCtrl::SubclassWindow(HWND window)
{
    if (!CVuikWindowImpl<CVuikListViewSkin>::SubclassWindow(window))
        return 0;
    SetWindowLongPtrW(window, GWL_STYLE, (GetWindowLongPtrW(window, GWL_STYLE) & kKeptStyle) | kAddedStyle);

    HWND header = reinterpret_cast<HWND>(SendMessageW(window, LVM_GETHEADER, 0, 0));
    if (header && !m_pHeaderSkin) {
        m_pHeaderSkin = new (std::nothrow) CVuikListViewHeaderSkin();
        if (m_pHeaderSkin)
            m_pHeaderSkin->Load();
    }
    // A header skin that can't be made leaves the platform's header.
    if (header && m_pHeaderSkin && header != m_hHeader) {
        SendMessageW(header, WM_SETFONT, reinterpret_cast<WPARAM>(m_pHeaderSkin->GetFont()), TRUE);
        SetWindowLongPtrW(header, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        const LONG_PTR previous = SetWindowLongPtrW(header, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(HeaderProc));
        if (previous) {
            m_hHeader = header;
            m_pfnHeaderProc = reinterpret_cast<WNDPROC>(previous);
        }
    }

    // The same size again, so that the new style takes effect: the frame is computed anew (the border in, the
    // scroll bars out), and the list lays itself out again with the header's font.
    RECT r;
    GetWindowRect(window, &r);
    SetWindowPos(window, nullptr, 0, 0, r.right - r.left, r.bottom - r.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOOWNERZORDER | SWP_FRAMECHANGED);

    if (!m_pListSkin) {
        m_pListSkin = new (std::nothrow) CVuikListViewSkin();
        if (m_pListSkin)
            m_pListSkin->Load();
    }
    SetSkin(m_pListSkin);
    return 1;
}

LRESULT CVuikListViewCtrl::OnEraseHeaderBkgnd(HWND hwnd, UINT, WPARAM wParam, LPARAM)
{
    HDC dc = reinterpret_cast<HDC>(wParam);
    RECT client;
    if (!m_pHeaderSkin || !dc || !GetClientRect(hwnd, &client) || !zcmod::EnsureGdiPlus())
        return 1;
    using namespace Gdiplus::DllExports;
    const CVuikListViewHeaderSkinDef def = *m_pHeaderSkin;
    Gdiplus::GpGraphics* graphics = nullptr;
    if (GdipCreateFromHDC(dc, &graphics) != Gdiplus::Ok)
        return 1;
    FillArea(graphics, 0, 0, client.right, client.bottom, def.m_crTop, def.m_crBottom);
    FillArea(graphics, 0, client.bottom - 1, client.right, 1, def.m_crLine, def.m_crLine);
    GdipDeleteGraphics(graphics);
    return 1;
}

LRESULT CVuikListViewCtrl::OnPaintHeader(HWND hwnd, UINT, WPARAM, LPARAM)
{
    const int count = static_cast<int>(SendMessageW(hwnd, HDM_GETITEMCOUNT, 0, 0));
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(hwnd, &paint);
    if (!dc)
        return 0;
    if (m_pHeaderSkin) {
        const CVuikListViewHeaderSkinDef def = *m_pHeaderSkin;
        // The separators go through GDI, which follows a mirrored header's layout as the text does.
        zcmod::BrushHandle line(CreateSolidBrush(
            RGB(def.m_crLine >> 16 & 0xFF, def.m_crLine >> 8 & 0xFF, def.m_crLine & 0xFF)));
        const int oldMode = SetBkMode(dc, TRANSPARENT);
        const COLORREF oldColour = SetTextColor(dc, m_pHeaderSkin->GetTextColor());
        SelectGuard font(dc, m_pHeaderSkin->GetTextFont());
        for (int i = 0; i < count; ++i) {
            RECT item = {};
            if (!SendMessageW(hwnd, HDM_GETITEMRECT, i, reinterpret_cast<LPARAM>(&item)))
                continue;
            const int mid = (item.bottom - item.top) / 2;
            const RECT separator = {item.right - 1, mid - def.m_nSeparatorHeight / 2, item.right,
                                    mid + def.m_nSeparatorHeight / 2};
            if (line)
                FillRect(dc, &separator, line.Get());
            wchar_t text[kHeaderTextCapacity] = {};
            HDITEMW info = {};
            info.mask = HDI_TEXT;
            info.pszText = text;
            info.cchTextMax = kHeaderTextCapacity;
            if (!SendMessageW(hwnd, HDM_GETITEMW, i, reinterpret_cast<LPARAM>(&info)))
                continue;
            text[kHeaderTextCapacity - 1] = L'\0';
            // Left-aligned whatever the column's format says; no sort arrow.
            RECT textArea = item;
            textArea.left += def.m_nTextMargin;
            DrawTextW(dc, text, -1, &textArea, DT_VCENTER | DT_SINGLELINE);
        }
        SetTextColor(dc, oldColour);
        SetBkMode(dc, oldMode);
    }
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CALLBACK CVuikListViewCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikListViewCtrl* self = static_cast<CVuikListViewCtrl*>(FromHandle(hwnd));
    return self ? self->CallSuperWindowProc(hwnd, message, wParam, lParam)
                : DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK CVuikListViewCtrl::HeaderProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikListViewCtrl* self = reinterpret_cast<CVuikListViewCtrl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!self || self->m_hHeader != hwnd || !self->m_pfnHeaderProc)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_PAINT:
            return self->OnPaintHeader(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseHeaderBkgnd(hwnd, message, wParam, lParam);
        default:
            return CallWindowProcW(self->m_pfnHeaderProc, hwnd, message, wParam, lParam);
    }
}
