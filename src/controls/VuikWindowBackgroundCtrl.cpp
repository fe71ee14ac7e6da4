#include "zcmod/VuikWindowBackgroundCtrl.h"

#include <objidl.h>  // PROPID, which a lean windows.h leaves out

#include <gdiplus.h>

#include <map>

#include "controls/VuikCaptionButtonCtrl.h"
#include "frame/GdiPlus.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikMessages.h"

// The menu bar is a family of its own; where it is built, the native menu of a framed window becomes one.
#if defined(__has_include)
#if __has_include("zcmod/VuikMenuBarCtrl.h")
#include "zcmod/VuikMenuBarCtrl.h"
#define ZCMOD_WINBG_MENUBAR 1
#endif
#endif

const DWORD CVuikWindowBackgroundCtrl::CAPTION_CLOSE;
const DWORD CVuikWindowBackgroundCtrl::CAPTION_MINIMIZE;
const DWORD CVuikWindowBackgroundCtrl::CAPTION_MAXIMIZE;
const DWORD CVuikWindowBackgroundCtrl::CAPTION_HELP;
const DWORD CVuikWindowBackgroundCtrl::CAPTION_APPICON;
const DWORD CVuikWindowBackgroundCtrl::CAPTION_USEFAKERTL;
const DWORD CVuikWindowBackgroundCtrl::CAPTION_ISDIALOG;
const int CVuikWindowBackgroundCtrl::CaptionHeight;
const int CVuikWindowBackgroundCtrl::MenuBarHeight;
const int CVuikWindowBackgroundCtrl::FooterHeight;
const UINT CVuikWindowBackgroundCtrl::CommandClose;
const UINT CVuikWindowBackgroundCtrl::CommandMaximize;
const UINT CVuikWindowBackgroundCtrl::CommandMinimize;
const UINT CVuikWindowBackgroundCtrl::CommandAppIcon;

namespace {

const int kCaption = CVuikWindowBackgroundCtrl::CaptionHeight;
const int kMenuStrip = CVuikWindowBackgroundCtrl::MenuBarHeight;
const int kFooter = CVuikWindowBackgroundCtrl::FooterHeight;
const int kButtonMargin = 15;  // from the right edge to the caption buttons
const int kCaptionTextMargin = 5;
const Gdiplus::ARGB kVeil = 0x48FFFFFF;  // over the caption of an inactive window
const int kTextCapacity = 20;            // the caption buttons' strings

// The solid WM_CTLCOLORSTATIC brush of each view, shared by its statics.
std::map<HWND, HBRUSH>& BrushMap()
{
    static std::map<HWND, HBRUSH> map;
    return map;
}

void FreeBrush(HWND view)
{
    std::map<HWND, HBRUSH>& map = BrushMap();
    std::map<HWND, HBRUSH>::iterator it = map.find(view);
    if (it == map.end())
        return;
    if (it->second)
        DeleteObject(it->second);
    map.erase(it);
}

COLORREF ArgbToColorRef(DWORD argb)
{
    return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF);
}

bool IsLive(CVuikCaptionButtonCtrl* button)
{
    return button && button->m_hWnd && IsWindow(button->m_hWnd);
}

bool IsDialogFrame(HWND topLevel)
{
    return topLevel && GetPropW(topLevel, VUIK_PROP_WINBG_ISDIALOG) != nullptr;
}

// Children of the view are placed left to right; in a right-to-left layout the drawn frame is turned round as
// a whole, and so are their places, unless the platform mirrors the view itself.
bool MirrorsChildren(HWND view)
{
    return CVuikLib::IsLayoutRTL() && !(GetWindowLongW(view, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
}

// A button's rectangle in the view's left-to-right drawing coordinates.
RECT DrawingRect(HWND view, HWND button)
{
    RECT r = {};
    GetWindowRect(button, &r);
    MapWindowPoints(nullptr, view, reinterpret_cast<POINT*>(&r), 2);
    if (r.left > r.right) {  // a mirrored view maps its rectangles right to left
        const LONG t = r.left;
        r.left = r.right;
        r.right = t;
    }
    if (MirrorsChildren(view)) {
        RECT client;
        GetClientRect(view, &client);
        const LONG left = client.right - r.right;
        r.right = client.right - r.left;
        r.left = left;
    }
    return r;
}

void Place(HWND view, HWND button, int x, int y)
{
    RECT r;
    GetWindowRect(button, &r);
    const int width = r.right - r.left;
    if (MirrorsChildren(view)) {
        RECT client;
        GetClientRect(view, &client);
        x = client.right - x - width;
    }
    SetWindowPos(button, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

int ButtonWidth(CVuikCaptionButtonCtrl* button)
{
    RECT r;
    GetWindowRect(button->m_hWnd, &r);
    return r.right - r.left;
}

void RenewRoundRegion(HWND frame)
{
    RECT r;
    if (!GetWindowRect(frame, &r))
        return;
    HRGN region = CreateRoundRectRgn(0, 0, r.right - r.left + 1, r.bottom - r.top + 1, 4, 4);
    if (region && !SetWindowRgn(frame, region, TRUE))
        DeleteObject(region);
}

// The six system commands get their texts from the language module; then the menu of the active window is
// tracked at the cursor, and the chosen command (0 for none) returned.
UINT TrackSystemMenu(HWND owner)
{
    static const struct {
        UINT command, text;
    } kItems[] = {
        {SC_CLOSE, ZLR_STR_SYSMENU_CLOSE},       {SC_RESTORE, ZLR_STR_SYSMENU_RESTORE},
        {SC_SIZE, ZLR_STR_SYSMENU_SIZE},         {SC_MINIMIZE, ZLR_STR_SYSMENU_MINIMIZE},
        {SC_MAXIMIZE, ZLR_STR_SYSMENU_MAXIMIZE}, {SC_MOVE, ZLR_STR_SYSMENU_MOVE},
    };
    HWND active = GetActiveWindow();
    HMENU menu = GetSystemMenu(active ? active : owner, FALSE);
    if (!menu)
        return 0;
    for (size_t i = 0; i < sizeof(kItems) / sizeof(kItems[0]); ++i) {
        wchar_t text[64] = {};
        if (ZCMOD_LoadString(kItems[i].text, text, 64) <= 0)
            continue;
        MENUITEMINFOW item = {};
        item.cbSize = sizeof(item);
        item.fMask = MIIM_STRING;
        item.dwTypeData = text;
        SetMenuItemInfoW(menu, kItems[i].command, FALSE, &item);
    }
    // What can be done in the window's present state.
    const bool zoomed = IsZoomed(owner) != 0, iconic = IsIconic(owner) != 0;
    EnableMenuItem(menu, SC_RESTORE, MF_BYCOMMAND | ((zoomed || iconic) ? MF_ENABLED : MF_GRAYED));
    EnableMenuItem(menu, SC_MOVE, MF_BYCOMMAND | (zoomed ? MF_GRAYED : MF_ENABLED));
    EnableMenuItem(menu, SC_SIZE, MF_BYCOMMAND | ((zoomed || iconic) ? MF_GRAYED : MF_ENABLED));
    EnableMenuItem(menu, SC_MINIMIZE, MF_BYCOMMAND | (iconic ? MF_GRAYED : MF_ENABLED));
    EnableMenuItem(menu, SC_MAXIMIZE, MF_BYCOMMAND | (zoomed ? MF_GRAYED : MF_ENABLED));
    POINT cursor = {};
    GetCursorPos(&cursor);
    return static_cast<UINT>(TrackPopupMenu(menu, TPM_RETURNCMD, cursor.x, cursor.y, 0, owner, nullptr));
}

// Text drawn into a left-to-right buffer that is later turned round as a whole: the piece under the text is
// turned round here first, the text written on it, and the piece turned back, so that the text reads right
// after the buffer is mirrored.
void DrawCaptionText(HDC dc, const wchar_t* text, RECT r, bool rtl)
{
    const UINT flags = DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS;
    if (!rtl) {
        DrawTextW(dc, text, -1, &r, flags);
        return;
    }
    const int w = r.right - r.left, h = r.bottom - r.top;
    if (w <= 0 || h <= 0)
        return;
    HDC piece = CreateCompatibleDC(dc);
    HBITMAP bitmap = CreateCompatibleBitmap(dc, w, h);
    if (piece && bitmap) {
        HGDIOBJ oldBitmap = SelectObject(piece, bitmap);
        HGDIOBJ oldFont = SelectObject(piece, GetCurrentObject(dc, OBJ_FONT));
        SetBkMode(piece, TRANSPARENT);
        SetTextColor(piece, GetTextColor(dc));
        StretchBlt(piece, w - 1, 0, -w, h, dc, r.left, r.top, w, h, SRCCOPY);
        RECT local = {0, 0, w, h};
        DrawTextW(piece, text, -1, &local, flags | DT_RIGHT | DT_RTLREADING);
        StretchBlt(dc, r.left + w - 1, r.top, -w, h, piece, 0, 0, w, h, SRCCOPY);
        SelectObject(piece, oldFont);
        SelectObject(piece, oldBitmap);
    }
    if (bitmap)
        DeleteObject(bitmap);
    if (piece)
        DeleteDC(piece);
}

}  // namespace

// ---- Skin ----------------------------------------------------------------------------------------------------

CVuikWindowBackgroundSkinDef CVuikWindowBackgroundSkin::m_DefaultSkinDef = {
    0,          0xFFFFFFFF, 0xFF373737, 0xFFFFFFFF, 0xFF232323, 0xFF5A5A5A,
    0xFFD5D5D5, 0xFFF8F8F8, 0xFFE7E7E7, 0xFF262626, 0x00FFFFFF,
};

void CVuikWindowBackgroundSkin::SetDefaultSkinDef(const CVuikWindowBackgroundSkinDef& def)
{
    m_DefaultSkinDef = def;
}

CVuikWindowBackgroundSkin::CVuikWindowBackgroundSkin() : m_hFont(nullptr)
{
    m_SkinDef = m_DefaultSkinDef;
    Load();
}

CVuikWindowBackgroundSkin::~CVuikWindowBackgroundSkin()
{
    Unload();
}

void CVuikWindowBackgroundSkin::Load()
{
    if (!m_hFont) {
        LOGFONTW font = {};
        DkhLoadFont(&font);
        font.lfHeight = 17;
        font.lfWeight = FW_NORMAL;
        font.lfCharSet = DEFAULT_CHARSET;
        font.lfQuality = CLEARTYPE_QUALITY;
        m_hFont = CreateFontIndirectW(&font);
    }
    Validate();
}

void CVuikWindowBackgroundSkin::Unload()
{
    if (m_hFont) {
        DeleteObject(m_hFont);
        m_hFont = nullptr;
    }
}

void CVuikWindowBackgroundSkin::Validate()
{
    if (m_hFont)
        m_nStatus = StatusValid;
}

void CVuikWindowBackgroundSkin::SetMenuBarVisible(int visible)
{
    m_SkinDef.m_bMenuBarVisible = visible ? 1 : 0;
}

void CVuikWindowBackgroundSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int w, int h)
{
    using namespace Gdiplus;
    using namespace Gdiplus::DllExports;
    if (!graphics || w <= 0 || h <= 0 || !zcmod::EnsureGdiPlus())
        return;
    HDC dc = *graphics;
    const CVuikWindowBackgroundSkinDef& def = m_SkinDef;
    const int top = def.m_bMenuBarVisible ? kCaption + kMenuStrip : kCaption;
    CVuikWindowBackgroundCtrl* ctrl = dynamic_cast<CVuikWindowBackgroundCtrl*>(window);

    GpGraphics* g = nullptr;
    if (GdipCreateFromHDC(dc, &g) != Ok)
        return;
    auto fill = [g](ARGB colour, int x, int y, int width, int height) {
        GpSolidFill* brush = nullptr;
        if (GdipCreateSolidFill(colour, &brush) == Ok) {
            GdipFillRectangleI(g, brush, x, y, width, height);
            GdipDeleteBrush(brush);
        }
    };
    auto line = [g](ARGB colour, int x1, int y1, int x2, int y2) {
        GpPen* pen = nullptr;
        if (GdipCreatePen1(colour, 1.0f, UnitPixel, &pen) == Ok) {
            GdipDrawLineI(g, pen, x1, y1, x2, y2);
            GdipDeletePen(pen);
        }
    };

    fill(def.m_crCaption, 0, 0, w, kCaption);
    if (def.m_bMenuBarVisible) {
        fill(def.m_crCaption, 0, kCaption, w, kMenuStrip);
        line(def.m_crMenuLine1, 0, kCaption, w, kCaption);
        line(def.m_crMenuLine2, 0, kCaption + 1, w, kCaption + 1);
    }
    fill(def.m_crClient, 0, top, w, h - top);

    line(def.m_crFooterLine, 0, h - kFooter - 1, w, h - kFooter - 1);
    const Rect footer(0, h - kFooter, w, kFooter);
    GpLineGradient* gradient = nullptr;
    if (GdipCreateLineBrushFromRectWithAngleI(&footer, def.m_crFooterTop, def.m_crFooterBottom, 90.0f, FALSE,
                                              WrapModeTile, &gradient) == Ok) {
        GdipFillRectangleI(g, gradient, 0, h - kFooter, w, kFooter);
        GdipDeleteBrush(gradient);
    }

    GpPen* frame = nullptr;
    if (GdipCreatePen1(def.m_crFrame, 1.0f, UnitPixel, &frame) == Ok) {
        GdipSetPenMode(frame, PenAlignmentInset);
        GdipDrawRectangleI(g, frame, 0, 0, w - 1, h - 1);
        GdipDrawLineI(g, frame, 0, 2, 2, 0);
        GdipDrawLineI(g, frame, w - 3, 0, w - 1, 2);
        GdipDrawLineI(g, frame, 0, h - 3, 2, h - 1);
        GdipDrawLineI(g, frame, w - 3, h - 1, w - 1, h - 3);
        GdipDeletePen(frame);
    }

    if (ctrl && !ctrl->IsFrameActive())
        fill(kVeil, 0, 0, w, top);
    GdipDeleteGraphics(g);

    HWND topLevel = ctrl ? ctrl->m_hTopLevel : nullptr;
    const int length = topLevel ? GetWindowTextLengthW(topLevel) : 0;
    if (length <= 0 || !m_hFont)
        return;
    wchar_t* text = new wchar_t[length + 1];
    GetWindowTextW(topLevel, text, length + 1);
    RECT r = {kCaptionTextMargin, 0, w - kCaptionTextMargin, kCaption};
    const int icon = ctrl->AppIconWidth();
    const int buttons = ctrl->CaptionButtonsLeft();
    // A view that the platform mirrors itself (a right-to-left dialog) shows this drawing as it is drawn,
    // while its buttons stand mirrored: the title goes between them and the icon, from the right, unturned.
    const bool shownAsDrawn = CVuikLib::IsLayoutRTL() && (GetWindowLongW(ctrl->m_hWnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    if (shownAsDrawn) {
        if (icon > 0)
            r.right = w - icon - kButtonMargin;
        if (buttons >= 0)
            r.left = w - buttons + kCaptionTextMargin;
    } else {
        if (icon > 0)
            r.left = icon + kButtonMargin;
        if (buttons >= 0)
            r.right = buttons - kCaptionTextMargin;
    }
    HGDIOBJ oldFont = SelectObject(dc, m_hFont);
    const COLORREF oldColour = SetTextColor(dc, def.m_crCaptionText);
    const int oldMode = SetBkMode(dc, TRANSPARENT);
    if (shownAsDrawn)
        DrawTextW(dc, text, -1, &r, DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_RIGHT | DT_RTLREADING);
    else
        DrawCaptionText(dc, text, r, CVuikLib::IsLayoutRTL() != 0);
    SetBkMode(dc, oldMode);
    SetTextColor(dc, oldColour);
    SelectObject(dc, oldFont);
    delete[] text;
}

// ---- Control -------------------------------------------------------------------------------------------------

CVuikWindowBackgroundCtrl::CVuikWindowBackgroundCtrl()
    : m_hTopLevel(nullptr),
      m_pMenuBar(nullptr),
      m_pCloseButton(nullptr),
      m_pMaximizeButton(nullptr),
      m_pMinimizeButton(nullptr),
      m_pAppIconButton(nullptr)
{
    m_pfnWindowProc = WindowProc;
}

CVuikWindowBackgroundCtrl::~CVuikWindowBackgroundCtrl()
{
    delete m_pCloseButton;
    delete m_pMaximizeButton;
    delete m_pMinimizeButton;
    delete m_pAppIconButton;
#ifdef ZCMOD_WINBG_MENUBAR
    delete m_pMenuBar;
#endif
    m_pMenuBar = nullptr;
    if (m_hWnd)
        FreeBrush(m_hWnd);
}

HWND CVuikWindowBackgroundCtrl::Create(HWND parent, const RECT& rect, DWORD style, DWORD exStyle)
{
    return Base::Create(L"Static", parent, rect, L"", 0, style | WS_CHILD | WS_CLIPCHILDREN, exStyle, nullptr);
}

BOOL CVuikWindowBackgroundCtrl::SubclassWindow(HWND view, HWND topLevel, const CAPTIONAPPICONDATA* appIcon, DWORD flags)
{
    if (!view || !topLevel || !IsWindow(view) || !IsWindow(topLevel))
        return 0;
    if (!(flags & CAPTION_ISDIALOG) && GetParent(view) != topLevel)
        return 0;
    // One frame per window, and one window per control.
    if (GetPropW(topLevel, VUIK_PROP_WINBG_ORGPROC) || (m_hWnd && IsWindow(m_hWnd)))
        return 0;

    m_hTopLevel = topLevel;
    const LONG_PTR original = GetWindowLongPtrW(topLevel, GWLP_WNDPROC);
    SetPropW(topLevel, VUIK_PROP_WINBG_ORGPROC, reinterpret_cast<HANDLE>(original));
    SetPropW(topLevel, VUIK_PROP_WINBG_ISDIALOG,
             reinterpret_cast<HANDLE>(static_cast<INT_PTR>((flags & CAPTION_ISDIALOG) ? 1 : 0)));
    SetPropW(topLevel, VUIK_PROP_WINBG_VIEW, view);
    SetWindowLongPtrW(topLevel, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CustomCaptionProc));
    SetWindowLongPtrW(topLevel, GWL_STYLE, GetWindowLongPtrW(topLevel, GWL_STYLE) & ~static_cast<LONG_PTR>(WS_CAPTION));
    // The client area grows over what was the native frame.
    SetWindowPos(topLevel, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    RenewRoundRegion(topLevel);

    if (!Base::SubclassWindow(view))
        return 0;
    if (flags)
        MakeButtons(view, appIcon, flags);

    RECT r;
    GetClientRect(view, &r);
    SetWindowPos(view, nullptr, 0, 0, r.right - 1, r.bottom, SWP_NOZORDER | SWP_NOMOVE | SWP_FRAMECHANGED);
    SetWindowPos(view, nullptr, 0, 0, r.right, r.bottom, SWP_NOZORDER | SWP_NOMOVE | SWP_FRAMECHANGED);

#ifdef ZCMOD_WINBG_MENUBAR
    if (HMENU menu = GetMenu(topLevel)) {
        m_pMenuBar = new CVuikMenuBarCtrl();
        POINT at = {0, kCaption};
        // The bar is laid out right to left by the platform: over a view that the frame mirrors itself, it is
        // made a mirrored window of its own, its buttons with it.
        const LONG viewStyle = GetWindowLongW(view, GWL_EXSTYLE);
        const bool mirrorBar = MirrorsChildren(view);
        if (mirrorBar)
            SetWindowLongW(view, GWL_EXSTYLE, viewStyle | WS_EX_LAYOUTRTL);
        HWND bar = m_pMenuBar->Create(menu, view, at, topLevel);
        if (mirrorBar)
            SetWindowLongW(view, GWL_EXSTYLE, viewStyle);
        if (bar && m_pMenuBar->m_hWnd)
            SetMenu(topLevel, nullptr);
        GetClientRect(view, &r);
        SendMessageW(view, WM_SIZE, SIZE_RESTORED, MAKELPARAM(r.right, r.bottom));
    }
#endif
    return 1;
}

void CVuikWindowBackgroundCtrl::MakeButtons(HWND view, const CAPTIONAPPICONDATA* appIcon, DWORD flags)
{
    const RECT origin = {0, 1, 0, 1};
    wchar_t text[kTextCapacity];
    auto make = [&](int kind, UINT textId) -> CVuikCaptionButtonCtrl* {
        CVuikCaptionButtonCtrl* button = new CVuikCaptionButtonCtrl();
        if (!button->Create(view, kind, origin)) {
            delete button;
            return nullptr;
        }
        if (textId) {
            text[0] = 0;
            ZCMOD_LoadString(textId, text, kTextCapacity);
            button->SetTooltip(text);
            SetWindowTextW(button->m_hWnd, text);
        }
        return button;
    };
    const bool others = (flags & (CAPTION_MINIMIZE | CAPTION_MAXIMIZE | CAPTION_HELP)) != 0;
    const bool alone = (flags & CAPTION_CLOSE) && !others;
    m_pCloseButton =
        make(alone ? CVuikCaptionButtonCtrl::KindCloseAlone : CVuikCaptionButtonCtrl::KindClose, ZLR_STR_CAPTION_CLOSE);
    if (flags & CAPTION_MAXIMIZE)
        m_pMaximizeButton = make(CVuikCaptionButtonCtrl::KindMaximize, ZLR_STR_CAPTION_MAXIMIZE);
    if (flags & CAPTION_MINIMIZE)
        m_pMinimizeButton = make(CVuikCaptionButtonCtrl::KindMinimize, ZLR_STR_CAPTION_MINIMIZE);
    if ((flags & CAPTION_APPICON) && appIcon) {
        m_pAppIconButton = make(CVuikCaptionButtonCtrl::KindAppIcon, 0);
        if (m_pAppIconButton)
            m_pAppIconButton->LoadIcon(appIcon->hInstance, appIcon->nBitmapId);
    }
}

HMENU CVuikWindowBackgroundCtrl::GetMenuHandle()
{
#ifdef ZCMOD_WINBG_MENUBAR
    if (m_pMenuBar)
        return m_pMenuBar->GetSourceMenu();
#endif
    return nullptr;
}

int CVuikWindowBackgroundCtrl::TranslateMenuAccelerator(MSG* msg)
{
#ifdef ZCMOD_WINBG_MENUBAR
    if (m_pMenuBar && msg)
        return m_pMenuBar->TranslateMenuAccelerator(msg);
#else
    (void)msg;
#endif
    return 0;
}

void CVuikWindowBackgroundCtrl::ReloadCaptionButtons()
{
    CVuikCaptionButtonCtrl* const buttons[] = {m_pCloseButton, m_pMaximizeButton, m_pMinimizeButton};
    for (CVuikCaptionButtonCtrl* button : buttons)
        if (IsLive(button)) {
            button->LoadDef(*button->GetOwnSkin());
            button->DeleteBackBuffer();
            InvalidateRect(button->m_hWnd, nullptr, TRUE);
        }
    if (m_hWnd && IsWindow(m_hWnd)) {
        RECT r;
        GetClientRect(m_hWnd, &r);
        SendMessageW(m_hWnd, WM_SIZE, SIZE_RESTORED, MAKELPARAM(r.right, r.bottom));
        InvalidateRect(m_hWnd, nullptr, TRUE);
    }
}

bool CVuikWindowBackgroundCtrl::IsFrameActive() const
{
    HWND frame = IsDialogFrame(m_hTopLevel) ? m_hWnd : m_hTopLevel;
    return frame && GetForegroundWindow() == frame;
}

int CVuikWindowBackgroundCtrl::CaptionButtonsLeft() const
{
    CVuikCaptionButtonCtrl* const order[] = {m_pMinimizeButton, m_pMaximizeButton, m_pCloseButton};
    for (CVuikCaptionButtonCtrl* button : order)
        if (IsLive(button))
            return DrawingRect(m_hWnd, button->m_hWnd).left;
    return -1;
}

int CVuikWindowBackgroundCtrl::AppIconWidth() const
{
    if (!IsLive(m_pAppIconButton))
        return 0;
    CVuikBitmap* normal = m_pAppIconButton->GetOwnSkin()->State(CVuikCaptionButtonSkin::StateNormal).GetBitmap();
    return normal ? normal->GetWidth() : 0;
}

LRESULT CALLBACK CVuikWindowBackgroundCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikWindowBackgroundCtrl* self = static_cast<CVuikWindowBackgroundCtrl*>(FromHandle(hwnd));
    if (!self || self->m_hWnd != hwnd)
        return Base::WindowProc(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_DESTROY:
            return self->OnDestroy(hwnd, message, wParam, lParam);
        case WM_SIZE:
            return self->OnSize(hwnd, message, wParam, lParam);
        case WM_PAINT:
            return self->OnPaint(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_COMMAND:
            return self->OnCommand(hwnd, message, wParam, lParam);
        case WM_VUIK_INVALIDATE_BACKBUFFER:
            return self->OnInvalidateBackbuffer(hwnd, message, wParam, lParam);
        case WM_VUIK_REPAINT:
            return self->OnRepaint(hwnd, message, wParam, lParam);
        case WM_CTLCOLORSTATIC:
            return self->OnCtlColorStatic(hwnd);
        case WM_NCHITTEST: {
            const LRESULT hit = self->CallSuperWindowProc(hwnd, message, wParam, lParam);
            if (hit != HTCLIENT)
                return hit;
            return IsDialogFrame(self->m_hTopLevel) ? HTCLIENT : HTTRANSPARENT;
        }
        case WM_SETTEXT:
            if (IsDialogFrame(self->m_hTopLevel)) {
                WNDPROC original = reinterpret_cast<WNDPROC>(GetPropW(self->m_hTopLevel, VUIK_PROP_WINBG_ORGPROC));
                if (original)
                    CallWindowProcW(original, hwnd, message, wParam, lParam);
            }
            InvalidateRect(hwnd, nullptr, TRUE);
            self->DeleteBackBuffer();
            return 0;
        default:
            break;
    }
    return Base::WindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikWindowBackgroundCtrl::OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

// The view's background comes from its parent, as a static's does.
LRESULT CVuikWindowBackgroundCtrl::OnEraseBkgnd(HWND hwnd, UINT, WPARAM wParam, LPARAM)
{
    HWND parent = GetParent(hwnd);
    if (parent && (GetWindowLongW(hwnd, GWL_STYLE) & WS_CHILD)) {
        PAINTSTRUCT paint = {};
        paint.hdc = reinterpret_cast<HDC>(wParam);
        GetClientRect(hwnd, &paint.rcPaint);
        SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
    }
    return 1;
}

LRESULT CVuikWindowBackgroundCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    if (SkinIsValid())
        OnPaint(&paint);
    else
        DrawPlaceHolder(paint.hdc);
    SendMessageW(hwnd, WM_VUIK_AFTERPAINT, reinterpret_cast<WPARAM>(paint.hdc), 0);
    EndPaint(hwnd, &paint);
    return 0;
}

void CVuikWindowBackgroundCtrl::UpdateMaximizeLook()
{
    if (!IsLive(m_pMaximizeButton))
        return;
    const bool zoomed = m_hTopLevel && IsZoomed(m_hTopLevel);
    wchar_t wanted[kTextCapacity] = {}, present[kTextCapacity] = {};
    ZCMOD_LoadString(zoomed ? ZLR_STR_CAPTION_RESTORE : ZLR_STR_CAPTION_MAXIMIZE, wanted, kTextCapacity);
    GetWindowTextW(m_pMaximizeButton->m_hWnd, present, kTextCapacity);
    const CVuikCaptionButtonSkinDef def =
        zoomed ? CVuikCaptionButtonCtrl::m_RestoreDef
               : CVuikCaptionButtonCtrl::DefaultDef(CVuikCaptionButtonCtrl::KindMaximize);
    const CVuikCaptionButtonSkinDef current = *m_pMaximizeButton->GetOwnSkin();
    if (lstrcmpW(wanted, present) == 0 && current.m_States[0].m_nBitmapId == def.m_States[0].m_nBitmapId)
        return;
    m_pMaximizeButton->DeleteBackBuffer();
    SetWindowTextW(m_pMaximizeButton->m_hWnd, wanted);
    m_pMaximizeButton->SetTooltip(wanted);
    m_pMaximizeButton->LoadDef(def);
}

LRESULT CVuikWindowBackgroundCtrl::OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DeleteBackBuffer();
    RECT client;
    GetClientRect(hwnd, &client);
    const int width = client.right;

    int next = width - kButtonMargin;  // left edge of the button to the right of the one being placed
    if (IsLive(m_pCloseButton)) {
        next = width - ButtonWidth(m_pCloseButton) - kButtonMargin;
        Place(hwnd, m_pCloseButton->m_hWnd, next, 1);
    }
    if (IsLive(m_pMaximizeButton)) {
        UpdateMaximizeLook();
        next -= ButtonWidth(m_pMaximizeButton);
        Place(hwnd, m_pMaximizeButton->m_hWnd, next, 1);
    }
    if (IsLive(m_pMinimizeButton)) {
        next -= ButtonWidth(m_pMinimizeButton);
        Place(hwnd, m_pMinimizeButton->m_hWnd, next, 1);
    }
    if (IsLive(m_pAppIconButton)) {
        RECT r;
        GetWindowRect(m_pAppIconButton->m_hWnd, &r);
        Place(hwnd, m_pAppIconButton->m_hWnd, 10, kCaption / 2 - (r.bottom - r.top) / 2);
    }
#ifdef ZCMOD_WINBG_MENUBAR
    if (m_pMenuBar && m_pMenuBar->m_hWnd)
        SetWindowPos(m_pMenuBar->m_hWnd, nullptr, 0, kCaption, width, kMenuStrip, SWP_NOZORDER | SWP_NOACTIVATE);
#endif
    // The corners stay cut at any size, if the frame was given its region.
    HWND frame = IsDialogFrame(m_hTopLevel) ? hwnd : m_hTopLevel;
    if (frame) {
        HRGN probe = CreateRectRgn(0, 0, 0, 0);
        if (probe) {
            const int kind = GetWindowRgn(frame, probe);
            DeleteObject(probe);
            if (kind != ERROR)
                RenewRoundRegion(frame);
        }
    }
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikWindowBackgroundCtrl::OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return Base::OnRepaint(hwnd, message, wParam, lParam);
}

void CVuikWindowBackgroundCtrl::FitToWorkArea()
{
    RECT r;
    GetWindowRect(m_hTopLevel, &r);
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    HMONITOR monitor = MonitorFromRect(&r, MONITOR_DEFAULTTONEAREST);
    if (!monitor || !GetMonitorInfoW(monitor, &info))
        return;
    // A frame without WS_CAPTION would cover the taskbar when maximised.
    const RECT& work = info.rcWork;
    SetWindowPos(m_hTopLevel, nullptr, work.left, work.top, work.right - work.left, work.bottom - work.top,
                 SWP_NOZORDER);
    InvalidateRect(m_hTopLevel, nullptr, FALSE);
    UpdateWindow(m_hTopLevel);
}

LRESULT CVuikWindowBackgroundCtrl::OnCommand(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND top = m_hTopLevel;
    if (!top || !IsWindow(top))
        return CallSuperWindowProc(hwnd, message, wParam, lParam);
    switch (LOWORD(wParam)) {
        case CommandClose:
            if (IsDialogFrame(top))
                PostMessageW(top, WM_COMMAND, IDCANCEL, reinterpret_cast<LPARAM>(GetDlgItem(top, IDCANCEL)));
            else
                PostMessageW(top, WM_CLOSE, 0, 0);
            return 0;
        case CommandMaximize:
            if (HIWORD(wParam) == 0 && (IsZoomed(top) || IsIconic(top))) {
                ShowWindow(top, SW_RESTORE);
                if (IsZoomed(top))
                    FitToWorkArea();
            } else if (IsLive(m_pMaximizeButton)) {
                ShowWindow(top, SW_MAXIMIZE);
                FitToWorkArea();
            }
            return 0;
        case CommandMinimize:
            ShowWindow(top, SW_MINIMIZE);
            return 0;
        case CommandAppIcon:
            if (const UINT command = TrackSystemMenu(top))
                SendMessageW(top, WM_SYSCOMMAND, command, 0);
            return 0;
        default:
            break;
    }
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

// The veil comes or goes: the view and the pieces of it that its caption buttons and menu bar show.
LRESULT CVuikWindowBackgroundCtrl::OnInvalidateBackbuffer(HWND hwnd, UINT, WPARAM, LPARAM)
{
    InvalidateRect(hwnd, nullptr, TRUE);
    DeleteBackBuffer();
    CVuikCaptionButtonCtrl* const buttons[] = {m_pCloseButton, m_pMaximizeButton, m_pMinimizeButton, m_pAppIconButton};
    for (CVuikCaptionButtonCtrl* button : buttons)
        if (IsLive(button)) {
            button->DeleteBackBuffer();
            InvalidateRect(button->m_hWnd, nullptr, TRUE);
        }
#ifdef ZCMOD_WINBG_MENUBAR
    if (m_pMenuBar && m_pMenuBar->m_hWnd) {
        InvalidateRect(m_pMenuBar->m_hWnd, nullptr, TRUE);
        m_pMenuBar->DeleteBackBuffer();
    }
#endif
    return 0;
}

LRESULT CVuikWindowBackgroundCtrl::OnCtlColorStatic(HWND hwnd)
{
    std::map<HWND, HBRUSH>& map = BrushMap();
    std::map<HWND, HBRUSH>::iterator it = map.find(hwnd);
    if (it == map.end())
        it = map.insert(std::make_pair(hwnd, m_pSkin
                                                 ? CreateSolidBrush(ArgbToColorRef(
                                                       static_cast<CVuikWindowBackgroundSkinDef>(*m_pSkin).m_crClient))
                                                 : static_cast<HBRUSH>(nullptr)))
                 .first;
    return reinterpret_cast<LRESULT>(it->second);
}

// ---- The top-level window ------------------------------------------------------------------------------------

LRESULT CALLBACK CVuikWindowBackgroundCtrl::CustomCaptionProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    WNDPROC original = reinterpret_cast<WNDPROC>(GetPropW(hwnd, VUIK_PROP_WINBG_ORGPROC));
    if (!original)
        return 0;
    HWND view = static_cast<HWND>(GetPropW(hwnd, VUIK_PROP_WINBG_VIEW));
    switch (message) {
        case WM_DESTROY:
            SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original));
            RemovePropW(hwnd, VUIK_PROP_WINBG_ORGPROC);
            RemovePropW(hwnd, VUIK_PROP_WINBG_ISDIALOG);
            RemovePropW(hwnd, VUIK_PROP_WINBG_VIEW);
            return CallWindowProcW(original, hwnd, message, wParam, lParam);
        case WM_SETTEXT:
            CallWindowProcW(original, hwnd, message, wParam, lParam);
            if (view)
                SendMessageW(view, WM_SETTEXT, wParam, lParam);
            return 0;
        case WM_NCCALCSIZE:
            return wParam == 1 ? WVR_REDRAW : 0;
        case WM_NCHITTEST: {
            const LRESULT hit = CallWindowProcW(original, hwnd, message, wParam, lParam);
            if (hit != HTCLIENT)
                return hit;
            POINT cursor = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
            ScreenToClient(hwnd, &cursor);
            return cursor.y <= CaptionHeight ? HTCAPTION : HTCLIENT;
        }
        case WM_NCACTIVATE:
            if (view)
                SendMessageW(view, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0);
            return 1;
        case WM_NCLBUTTONDBLCLK:
            if (view)
                SendMessageW(view, WM_COMMAND, CommandMaximize, 0);
            return 0;
        case WM_NCRBUTTONDOWN:
            if (const UINT command = TrackSystemMenu(hwnd))
                SendMessageW(hwnd, WM_SYSCOMMAND, command, 0);
            return 0;
        case WM_SYSCOMMAND:
            if (view && (wParam & 0xFFF0) == SC_MAXIMIZE) {
                SendMessageW(view, WM_COMMAND, MAKEWPARAM(CommandMaximize, 1), 0);
                return 0;
            }
            if (view && (wParam & 0xFFF0) == SC_RESTORE) {
                SendMessageW(view, WM_COMMAND, CommandMaximize, 0);
                return 0;
            }
            break;
        default:
            break;
    }
    return CallWindowProcW(original, hwnd, message, wParam, lParam);
}
