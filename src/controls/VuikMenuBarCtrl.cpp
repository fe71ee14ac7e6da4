#include "zcmod/VuikMenuBarCtrl.h"

#include <objidl.h>  // PROPID, which a lean windows.h leaves out

#include <gdiplus.h>

#include <cmath>
#include <cwchar>
#include <new>
#include <string>
#include <vector>

#include "frame/GdiPlus.h"
#include "frame/Handles.h"
#include "frame/Win32Util.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/ResHandler.h"
#include "zcmod/VuikGraphics.h"

using zcmod::MemoryDC;
using zcmod::SelectGuard;
using zcmod::WindowDC;

namespace {

const int kBarHeight = 30;
const UINT kBarId = 0xFFF;
const UINT kFirstButtonId = 0x1000;
const int kFirstButtonX = 11;
const int kButtonGap = 6;
const int kButtonY = 5;
const int kItemHeight = 18;
const int kSeparatorHeight = 8;
const UINT kMeasureFlags = DT_CALCRECT | DT_VCENTER | DT_SINGLELINE;  // 0x424
const UINT kShortcutFlags = DT_RIGHT | DT_VCENTER | DT_SINGLELINE;    // 0x26

// The language code of the suite's settings; null when none is set.
const wchar_t* LanguageCode()
{
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    return handler ? handler->GetLanguageName() : nullptr;
}

bool IsChinese(const wchar_t* code)
{
    return code && (zcmod::EqualNoCase(code, L"chi-tc") || zcmod::EqualNoCase(code, L"chi-hk") ||
                    zcmod::EqualNoCase(code, L"chi-sc"));
}

bool IsThai(const wchar_t* code) { return code && zcmod::EqualNoCase(code, L"tha"); }

HFONT MakeFont(int height, int weight)
{
    LOGFONTW font;
    DkhLoadFont(&font);  // registers the suite's fonts once and names the face
    font.lfHeight = height;
    font.lfWeight = weight;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = 5;  // CLEARTYPE_QUALITY
    return CreateFontIndirectW(&font);
}

COLORREF ToColorRef(DWORD argb)
{
    return RGB((argb >> 16) & 0xFF, (argb >> 8) & 0xFF, argb & 0xFF);
}

// GDI+ drawing on a context it does not own; every call is a no-op when GDI+ can't start.
class GdiPlusPainter {
public:
    explicit GdiPlusPainter(HDC dc) : m_graphics(nullptr)
    {
        if (dc && zcmod::EnsureGdiPlus())
            Gdiplus::DllExports::GdipCreateFromHDC(dc, &m_graphics);
    }
    ~GdiPlusPainter()
    {
        if (m_graphics)
            Gdiplus::DllExports::GdipDeleteGraphics(m_graphics);
    }
    GdiPlusPainter(const GdiPlusPainter&) = delete;
    GdiPlusPainter& operator=(const GdiPlusPainter&) = delete;

    void Fill(int x, int y, int width, int height, DWORD argb)
    {
        using namespace Gdiplus::DllExports;
        if (!m_graphics || width <= 0 || height <= 0 || (argb >> 24) == 0)
            return;
        Gdiplus::GpSolidFill* brush = nullptr;
        if (GdipCreateSolidFill(argb, &brush) == Gdiplus::Ok) {
            GdipFillRectangleI(m_graphics, brush, x, y, width, height);
            GdipDeleteBrush(brush);
        }
    }
    // Top to bottom. The vertical mode says "90 degrees" without the angle arithmetic, which some GDI+
    // implementations scale by the rectangle's shape.
    void Gradient(int width, int height, DWORD top, DWORD bottom)
    {
        using namespace Gdiplus::DllExports;
        if (!m_graphics || width <= 0 || height <= 0 || ((top >> 24) == 0 && (bottom >> 24) == 0))
            return;
        const Gdiplus::GpRect bounds(0, 0, width, height);
        Gdiplus::GpLineGradient* brush = nullptr;
        if (GdipCreateLineBrushFromRectI(&bounds, top, bottom, Gdiplus::LinearGradientModeVertical,
                                         Gdiplus::WrapModeTile, &brush) == Gdiplus::Ok) {
            GdipFillRectangleI(m_graphics, brush, 0, 0, width, height);
            GdipDeleteBrush(brush);
        }
    }
    void Triangle(const POINT (&points)[3], DWORD argb)
    {
        using namespace Gdiplus::DllExports;
        if (!m_graphics)
            return;
        Gdiplus::GpPoint p[3] = {{points[0].x, points[0].y}, {points[1].x, points[1].y}, {points[2].x, points[2].y}};
        Gdiplus::GpSolidFill* brush = nullptr;
        if (GdipCreateSolidFill(argb, &brush) == Gdiplus::Ok) {
            GdipFillPolygonI(m_graphics, brush, p, 3, Gdiplus::FillModeAlternate);
            GdipDeleteBrush(brush);
        }
    }

private:
    Gdiplus::GpGraphics* m_graphics;
};

// One menu item as the drawing and measuring code needs it.
struct MenuItem {
    bool found = false;
    UINT type = 0;
    HMENU submenu = nullptr;
    std::wstring text;
};

MenuItem ReadItem(HMENU menu, UINT position)
{
    MenuItem item;
    wchar_t buffer[512] = {};
    MENUITEMINFOW info = {};
    info.cbSize = sizeof(info);
    info.fMask = MIIM_FTYPE | MIIM_SUBMENU | MIIM_STRING;
    info.dwTypeData = buffer;
    info.cch = sizeof(buffer) / sizeof(buffer[0]) - 1;
    if (!GetMenuItemInfoW(menu, position, TRUE, &info))
        return item;
    item.found = true;
    item.type = info.fType;
    item.submenu = info.hSubMenu;
    item.text = buffer;
    return item;
}

// The item of `menu` whose id is `id`; an item that opens a submenu may be known by the submenu's handle.
// With `deep`, submenus are searched too, depth first.
MenuItem FindItem(HMENU menu, UINT id, bool deep, int depth = 0)
{
    const int count = menu ? GetMenuItemCount(menu) : 0;
    for (int i = 0; i < count; ++i) {
        MENUITEMINFOW info = {};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_ID | MIIM_SUBMENU;
        if (!GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info))
            continue;
        if (info.wID == id || (info.hSubMenu && static_cast<UINT>(reinterpret_cast<UINT_PTR>(info.hSubMenu)) == id))
            return ReadItem(menu, static_cast<UINT>(i));
    }
    if (deep && depth < 16) {
        for (int i = 0; i < count; ++i) {
            HMENU sub = GetSubMenu(menu, i);
            if (!sub)
                continue;
            MenuItem found = FindItem(sub, id, true, depth + 1);
            if (found.found)
                return found;
        }
    }
    return MenuItem();
}

// The character after the first "&" that is not part of "&&"; 0 when there is none.
wchar_t MnemonicOf(const wchar_t* text)
{
    for (const wchar_t* p = text; p && *p; ++p) {
        if (*p != L'&')
            continue;
        if (p[1] == L'&') {
            ++p;
            continue;
        }
        return p[1];
    }
    return 0;
}

wchar_t Upper(wchar_t c)
{
    return static_cast<wchar_t>(reinterpret_cast<UINT_PTR>(CharUpperW(reinterpret_cast<LPWSTR>(static_cast<UINT_PTR>(c)))));
}

// The popup menu windows of this thread, the deepest (topmost) first.
std::vector<HWND> OpenMenuWindows()
{
    std::vector<HWND> windows;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND hwnd, LPARAM param) -> BOOL {
            wchar_t name[16] = {};
            if (IsWindowVisible(hwnd) && GetClassNameW(hwnd, name, 16) && wcscmp(name, L"#32768") == 0)
                reinterpret_cast<std::vector<HWND>*>(param)->push_back(hwnd);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&windows));
    return windows;
}

// True when the highlighted item of `menu` opens a submenu and is enabled.
bool HighlightedItemOpensSubmenu(HMENU menu)
{
    const int count = menu ? GetMenuItemCount(menu) : 0;
    for (int i = 0; i < count; ++i) {
        MENUITEMINFOW info = {};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_STATE | MIIM_SUBMENU;
        if (GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info) && (info.fState & MFS_HILITE))
            return info.hSubMenu && !(info.fState & MFS_DISABLED);
    }
    return false;
}

}  // namespace

// ---- CVuikMenuBarSkin -----------------------------------------------------------------------------------------

CVuikMenuBarSkinDef CVuikMenuBarSkin::m_DefaultSkinDef = {
    0x00000000,  // bar: transparent
    0x505050,    // item text (GDI)
    0xCECECE,    // disabled item text (GDI)
    0xFFDADADA,  // separator
    0xFFFFFFFF,  // item
    0xFF73BEFF,  // selected item
    0xFFE5E5E5,  // selected item with a submenu
    0xFF595959,  // arrow
    0xFFBDBDBD,  // arrow of a disabled item
};

CVuikMenuBarSkin::CVuikMenuBarSkin() : m_hFont(nullptr) { m_SkinDef = m_DefaultSkinDef; }

CVuikMenuBarSkin::~CVuikMenuBarSkin() { Unload(); }

void CVuikMenuBarSkin::SetDefaultSkinDef(CVuikMenuBarSkinDef def) { m_DefaultSkinDef = def; }

void CVuikMenuBarSkin::Load()
{
    Unload();
    const wchar_t* code = LanguageCode();
    m_hFont = MakeFont(IsChinese(code) ? 15 : IsThai(code) ? 16 : 13, FW_NORMAL);
    Validate();
}

void CVuikMenuBarSkin::Unload()
{
    if (m_hFont)
        DeleteObject(m_hFont);
    m_hFont = nullptr;
}

void CVuikMenuBarSkin::Validate() { m_nStatus = StatusValid; }

void CVuikMenuBarSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    GdiPlusPainter painter(*graphics);
    painter.Fill(0, 0, width, height, m_SkinDef.m_crBar);
}

// ---- Button skins ---------------------------------------------------------------------------------------------

CVuikMenuBarButtonSkinDef CVuikMenuBarButtonSkin::m_DefaultSkinDef = {{
    {0x00000000, 0x00000000, 0xFFFFFFFF},  // Normal: the strip shows through, white text
    {0xFFE5E5E5, 0xFFE5E5E5, 0xFF000000},  // Hover
    {0xFFA1E6FF, 0xFF5ABCEF, 0xFF000000},  // Open
}};

CVuikMenuBarButtonStateSkin::CVuikMenuBarButtonStateSkin() { m_SkinDef = CVuikMenuBarButtonStateSkinDef{0, 0, 0}; }

CVuikMenuBarButtonStateSkin::~CVuikMenuBarButtonStateSkin() {}

void CVuikMenuBarButtonStateSkin::Load() { Validate(); }

void CVuikMenuBarButtonStateSkin::Validate() { m_nStatus = StatusValid; }

void CVuikMenuBarButtonStateSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    GdiPlusPainter painter(*graphics);
    painter.Gradient(width, height, m_SkinDef.m_crTop, m_SkinDef.m_crBottom);
}

void CVuikMenuBarButtonStateSkin::DrawLabel(HDC dc, const RECT& rect, const wchar_t* text, HFONT font)
{
    if (!dc || !text)
        return;
    SelectGuard select(dc, font);
    const int oldMode = SetBkMode(dc, TRANSPARENT);
    const COLORREF oldColour = SetTextColor(dc, ToColorRef(m_SkinDef.m_crText));
    RECT r = rect;
    DrawTextW(dc, text, -1, &r, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    SetTextColor(dc, oldColour);
    SetBkMode(dc, oldMode);
}

CVuikMenuBarButtonSkin::CVuikMenuBarButtonSkin() : m_pszText(nullptr), m_hFont(nullptr)
{
    CVuikMenuBarButtonSkin::SetSkinDef(m_DefaultSkinDef);
}

CVuikMenuBarButtonSkin::~CVuikMenuBarButtonSkin()
{
    Unload();
    delete[] m_pszText;
}

void CVuikMenuBarButtonSkin::SetDefaultSkinDef(CVuikMenuBarButtonSkinDef def) { m_DefaultSkinDef = def; }

void CVuikMenuBarButtonSkin::SetSkinDef(CVuikMenuBarButtonSkinDef def)
{
    m_SkinDef = def;
    for (int i = 0; i < 3; ++i)
        m_StateSkins[i].SetSkinDef(def.m_States[i]);
}

void CVuikMenuBarButtonSkin::Load()
{
    Unload();
    const wchar_t* code = LanguageCode();
    if (IsChinese(code))
        m_hFont = MakeFont(15, FW_NORMAL);
    else if (IsThai(code))
        m_hFont = MakeFont(16, FW_NORMAL);
    else
        m_hFont = MakeFont(12, FW_BOLD);
    for (CVuikMenuBarButtonStateSkin& state : m_StateSkins)
        state.Load();
}

void CVuikMenuBarButtonSkin::Unload()
{
    for (CVuikMenuBarButtonStateSkin& state : m_StateSkins)
        state.Unload();
    if (m_hFont)
        DeleteObject(m_hFont);
    m_hFont = nullptr;
}

void CVuikMenuBarButtonSkin::Validate()
{
    for (CVuikMenuBarButtonStateSkin& state : m_StateSkins)
        state.Validate();
}

bool CVuikMenuBarButtonSkin::IsValid()
{
    for (CVuikMenuBarButtonStateSkin& state : m_StateSkins)
        if (!state.IsValid())
            return false;
    return true;
}

void CVuikMenuBarButtonSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    CVuikMenuBarButtonCtrl* button = dynamic_cast<CVuikMenuBarButtonCtrl*>(window);
    int state = button ? button->GetButtonState() : MENUBAR_BUTTON_NORMAL;
    if (state < 0 || state > 2)
        state = MENUBAR_BUTTON_NORMAL;
    m_StateSkins[state].Draw(window, graphics, width, height);
    const RECT all = {0, 0, width, height};
    m_StateSkins[state].DrawLabel(*graphics, all, GetText(), m_hFont);
}

void CVuikMenuBarButtonSkin::SetText(const wchar_t* text)
{
    delete[] m_pszText;
    m_pszText = nullptr;
    if (!text)
        return;
    const size_t length = wcslen(text);
    m_pszText = new (std::nothrow) wchar_t[length + 1];
    if (m_pszText)
        wmemcpy(m_pszText, text, length + 1);
}

// ---- CVuikMenuBarButtonCtrl -------------------------------------------------------------------------------------

CVuikMenuBarButtonCtrl::CVuikMenuBarButtonCtrl() : m_pOwnSkin(nullptr), m_nDrawnState(MENUBAR_BUTTON_NORMAL) {}

CVuikMenuBarButtonCtrl::~CVuikMenuBarButtonCtrl()
{
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);
    DeleteBackBuffer();
    SetSkin(nullptr);
    delete m_pOwnSkin;
}

SIZE CVuikMenuBarButtonCtrl::MeasureText(HWND parent, const wchar_t* text) const
{
    SIZE size = {0, 0};
    WindowDC parentDC(parent);
    WindowDC screenDC(nullptr);
    HDC dc = parentDC ? parentDC.Get() : screenDC.Get();
    if (!dc)
        return size;
    SelectGuard select(dc, m_pOwnSkin ? m_pOwnSkin->GetFont() : nullptr);
    RECT r = {0, 0, 0, 0};
    DrawTextW(dc, text ? text : L"", -1, &r, DT_CALCRECT | DT_SINGLELINE);
    size.cx = r.right - r.left;
    size.cy = r.bottom - r.top;
    return size;
}

HWND CVuikMenuBarButtonCtrl::Create(HWND parent, RECT* rect, const wchar_t* text, UINT id)
{
    if (!parent || !rect || (m_hWnd && IsWindow(m_hWnd)))
        return nullptr;
    if (!m_pOwnSkin) {
        m_pOwnSkin = new (std::nothrow) CVuikMenuBarButtonSkin();
        if (!m_pOwnSkin)
            return nullptr;
    }
    m_pOwnSkin->Load();
    m_pOwnSkin->SetText(text);
    SetSkin(m_pOwnSkin);

    // Measured on the parent's context (the button has no window yet), or the screen's.
    const SIZE size = MeasureText(parent, text);
    const RECT r = {rect->left, rect->top, rect->left + size.cx + 10, rect->top + size.cy + 8};
    HWND hwnd = CVuikWindowImpl<CVuikMenuBarButtonSkin>::Create(L"Button", parent, r, text ? text : L"", id,
                                                                 0x50000000, WS_EX_NOPARENTNOTIFY, nullptr);
    if (!hwnd)
        return nullptr;
    m_nCtrlId = static_cast<UINT>(GetDlgCtrlID(hwnd));
    *rect = r;
    return hwnd;
}

void CVuikMenuBarButtonCtrl::SizeToContent()
{
    if (!m_hWnd || !m_pOwnSkin)
        return;
    const int length = GetWindowTextLengthW(m_hWnd);
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    GetWindowTextW(m_hWnd, &text[0], length + 1);
    text.resize(static_cast<size_t>(length));
    m_pOwnSkin->SetText(text.c_str());
    const SIZE size = MeasureText(GetParent(m_hWnd), text.c_str());
    SetWindowPos(m_hWnd, nullptr, 0, 0, size.cx + 10, size.cy + 8, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

EMenuBarButtonState CVuikMenuBarButtonCtrl::GetButtonState() const
{
    if (m_nState & StateCheckMask)
        return MENUBAR_BUTTON_OPEN;
    return m_bHover ? MENUBAR_BUTTON_HOVER : MENUBAR_BUTTON_NORMAL;
}

LRESULT CVuikMenuBarButtonCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    // A look that changed since the buffer was built: every change refreshes, this is the safety net.
    const int state = GetButtonState();
    if (state != m_nDrawnState) {
        DeleteBackBuffer();
        m_nDrawnState = state;
    }
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    if (SkinIsValid()) {
        RECT client;
        GetClientRect(hwnd, &client);
        DrawBackBuffer(paint.hdc, client, paint.rcPaint);
    } else {
        DrawPlaceHolder(paint.hdc);
    }
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikMenuBarButtonCtrl::OnLButtonDown(HWND hwnd, UINT, WPARAM, LPARAM)
{
    HWND bar = GetParent(hwnd);
    if (bar)
        SendMessageW(bar, WM_VUIK_MENUBAR_BUTTONDOWN, reinterpret_cast<WPARAM>(this), 0);
    return 0;
}

LRESULT CVuikMenuBarButtonCtrl::OnLButtonUp(HWND hwnd, UINT, WPARAM, LPARAM)
{
    HWND bar = GetParent(hwnd);
    if (bar)
        SendMessageW(bar, WM_VUIK_MENUBAR_BUTTONUP, reinterpret_cast<WPARAM>(this), 0);
    return 0;
}

LRESULT CVuikMenuBarButtonCtrl::OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    Base::OnMouseMove(hwnd, message, wParam, lParam);
    HWND bar = GetParent(hwnd);
    if (bar)
        SendMessageW(bar, WM_VUIK_MENUBAR_BUTTONMOVE, reinterpret_cast<WPARAM>(this), 0);
    return 0;
}

// ---- CVuikMenuBarCtrl -----------------------------------------------------------------------------------------

HHOOK CVuikMenuBarCtrl::s_hHook = nullptr;
CVuikMenuBarCtrl* CVuikMenuBarCtrl::s_pHookBar = nullptr;

CVuikMenuBarCtrl::CVuikMenuBarCtrl()
    : m_hHost(nullptr),
      m_ppButtons(nullptr),
      m_pActiveButton(nullptr),
      m_hSourceMenu(nullptr),
      m_nButtonCount(0),
      m_hAccel(nullptr),
      m_bIgnoreNextDown(false),
      m_bKeyboardMode(false),
      m_ptKeyboard(),
      m_pOwnSkin(nullptr),
      m_bMovingOn(false)
{
    m_pfnWindowProc = WindowProc;
}

CVuikMenuBarCtrl::~CVuikMenuBarCtrl()
{
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);  // ends an open popup of this bar (OnDestroy)
    if (s_pHookBar == this) {
        UnhookWindowsHookEx(s_hHook);
        s_hHook = nullptr;
        s_pHookBar = nullptr;
    }
    for (int i = 0; i < m_nButtonCount; ++i)
        delete m_ppButtons[i];
    delete[] m_ppButtons;
    m_ppButtons = nullptr;
    m_nButtonCount = 0;
    if (m_hAccel)
        DestroyAcceleratorTable(m_hAccel);
    m_hAccel = nullptr;
    DeleteBackBuffer();
    SetSkin(nullptr);
    delete m_pOwnSkin;
}

bool CVuikMenuBarCtrl::IsPopupOpen() { return s_hHook != nullptr; }

CVuikMenuBarButtonCtrl* CVuikMenuBarCtrl::GetButton(int index) const
{
    return index >= 0 && index < m_nButtonCount ? m_ppButtons[index] : nullptr;
}

int CVuikMenuBarCtrl::IndexOf(const CVuikMenuBarButtonCtrl* button) const
{
    for (int i = 0; button && i < m_nButtonCount; ++i)
        if (m_ppButtons[i] == button)
            return i;
    return -1;
}

HWND CVuikMenuBarCtrl::Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                              DWORD style, DWORD exStyle, LPVOID param)
{
    return Base::Create(className, parent, rect, title, id, style, exStyle, param);
}

HWND CVuikMenuBarCtrl::Create(HMENU menu, HWND parent, POINT point, HWND host)
{
    if (!parent || !IsWindow(parent) || (m_hWnd && IsWindow(m_hWnd)))
        return nullptr;
    RECT client = {};
    GetClientRect(parent, &client);
    const RECT rect = {point.x, point.y, point.x + (client.right - client.left), point.y + kBarHeight};
    if (!Create(L"Static", parent, rect, L"VuikMenuBarCtrl", kBarId, 0x50000000, 0, nullptr))
        return nullptr;

    if (!m_pOwnSkin)
        m_pOwnSkin = new (std::nothrow) CVuikMenuBarSkin();
    if (m_pOwnSkin)
        m_pOwnSkin->Load();
    SetSkin(m_pOwnSkin);

    m_hSourceMenu = menu;
    const int count = menu ? GetMenuItemCount(menu) : 0;
    if (count > 0) {
        m_ppButtons = new (std::nothrow) CVuikMenuBarButtonCtrl*[count];
        if (m_ppButtons) {
            m_nButtonCount = count;
            for (int i = 0; i < count; ++i)
                m_ppButtons[i] = nullptr;
        }
    }
    int x = kFirstButtonX;
    for (int i = 0; i < m_nButtonCount; ++i) {
        const MenuItem item = ReadItem(menu, static_cast<UINT>(i));
        if (const wchar_t letter = MnemonicOf(item.text.c_str()))
            UpdateAcceleratorTable(letter, i);
        // A button that can't be made leaves a gap; the others stay.
        CVuikMenuBarButtonCtrl* button = new (std::nothrow) CVuikMenuBarButtonCtrl();
        if (button) {
            RECT r = {x, kButtonY, x, kButtonY};
            if (button->Create(m_hWnd, &r, item.text.c_str(), kFirstButtonId + static_cast<UINT>(i))) {
                m_ppButtons[i] = button;
                x = r.right + kButtonGap;
            } else {
                delete button;
            }
        }
        if (item.submenu)
            SetMenuItemsToOwnerDrawn(item.submenu, 0);
    }
    m_hHost = host ? host : parent;
    return m_hWnd;
}

int CVuikMenuBarCtrl::TranslateMenuAccelerator(MSG* msg)
{
    if (!msg || !m_hWnd || !m_hAccel)
        return 0;
    return TranslateAcceleratorW(m_hWnd, m_hAccel, msg);
}

void CVuikMenuBarCtrl::UpdateAcceleratorTable(wchar_t letter, int index)
{
    const int count = m_hAccel ? CopyAcceleratorTableW(m_hAccel, nullptr, 0) : 0;
    std::vector<ACCEL> entries(static_cast<size_t>(count) + 1);
    if (count > 0)
        CopyAcceleratorTableW(m_hAccel, entries.data(), count);
    ACCEL& added = entries[static_cast<size_t>(count)];
    added.fVirt = FALT | FVIRTKEY;  // 0x11
    added.key = static_cast<WORD>(Upper(letter));
    added.cmd = static_cast<WORD>(index);
    HACCEL table = CreateAcceleratorTableW(entries.data(), count + 1);
    if (!table)
        return;  // the old table stays
    if (m_hAccel)
        DestroyAcceleratorTable(m_hAccel);
    m_hAccel = table;
}

void CVuikMenuBarCtrl::SetMenuItemsToOwnerDrawn(HMENU menu, int level)
{
    const int count = menu ? GetMenuItemCount(menu) : 0;
    for (int i = 0; i < count; ++i) {
        MENUITEMINFOW info = {};
        info.cbSize = sizeof(info);
        info.fMask = MIIM_FTYPE | MIIM_SUBMENU;
        if (!GetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info))
            continue;
        HMENU sub = info.hSubMenu;
        // The other type bits (separator, radio check) stay: the drawing reads them.
        info.fMask = MIIM_FTYPE | MIIM_DATA;
        info.fType |= MFT_OWNERDRAW;
        info.dwItemData = static_cast<ULONG_PTR>(level);
        SetMenuItemInfoW(menu, static_cast<UINT>(i), TRUE, &info);
        if (sub && level < 16)
            SetMenuItemsToOwnerDrawn(sub, 1);
    }
}

LRESULT CALLBACK CVuikMenuBarCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikMenuBarCtrl* self = static_cast<CVuikMenuBarCtrl*>(FromHandle(hwnd));
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
        case WM_DRAWITEM:
            return self->OnDrawItem(hwnd, message, wParam, lParam);
        case WM_MEASUREITEM:
            return self->OnMeasureItem(hwnd, message, wParam, lParam);
        case WM_COMMAND:
            if (HIWORD(wParam) == 0)
                return self->m_hHost ? SendMessageW(self->m_hHost, message, wParam, lParam) : 0;
            if (HIWORD(wParam) == 1) {
                self->OnAcceleratorCommand(LOWORD(wParam));
                return 0;
            }
            break;
        case WM_SYSCOMMAND:
            if (HIWORD(wParam) == 1) {
                self->OnAcceleratorCommand(LOWORD(wParam));
                return 0;
            }
            break;
        case WM_MENUCHAR:
            return self->OnMenuChar(wParam, lParam);
        case WM_INITMENUPOPUP:
        case WM_MENURBUTTONUP:
        case WM_MENUDRAG:
        case WM_MENUGETOBJECT:
        case WM_UNINITMENUPOPUP:
        case WM_MENUCOMMAND:
        case WM_ENTERMENULOOP:
        case WM_EXITMENULOOP:
            if (self->OnFilterMenuMessage(hwnd, message, wParam, lParam))
                return self->m_hHost ? SendMessageW(self->m_hHost, message, wParam, lParam) : 0;
            return 0;
        case WM_VUIK_INVALIDATE_BACKBUFFER:
            InvalidateRect(hwnd, nullptr, TRUE);
            self->DeleteBackBuffer();
            return 0;
        case WM_VUIK_REPAINT:
            return self->OnRepaint(hwnd, message, wParam, lParam);
        case WM_VUIK_MENUBAR_OPENPOPUP:
            self->OnOpenPopup(static_cast<int>(wParam), reinterpret_cast<CVuikMenuBarButtonCtrl*>(lParam));
            return 0;
        case WM_VUIK_MENUBAR_BUTTONDOWN:
            self->OnMouseDownOnBarButton(reinterpret_cast<CVuikMenuBarButtonCtrl*>(wParam));
            return 0;
        case WM_VUIK_MENUBAR_BUTTONMOVE:
            self->OnMouseMoveOnBarButton(reinterpret_cast<CVuikMenuBarButtonCtrl*>(wParam));
            return 0;
        default:
            break;
    }
    return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikMenuBarCtrl::OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    // A popup of this bar ends with its window: the hook goes now, and the loop that runs the popup finds
    // the bar gone when it returns.
    if (s_pHookBar == this) {
        UnhookWindowsHookEx(s_hHook);
        s_hHook = nullptr;
        s_pHookBar = nullptr;
        EndMenu();
    }
    m_pActiveButton = nullptr;
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikMenuBarCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    if (SkinIsValid()) {
        RECT client;
        GetClientRect(hwnd, &client);
        DrawBackBuffer(paint.hdc, client, paint.rcPaint);
    }
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikMenuBarCtrl::OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return Base::OnRepaint(hwnd, message, wParam, lParam);
}

LRESULT CVuikMenuBarCtrl::OnEraseBkgnd(HWND hwnd, UINT, WPARAM wParam, LPARAM)
{
    HWND parent = GetParent(hwnd);
    if (parent) {
        PAINTSTRUCT paint = {};
        paint.hdc = reinterpret_cast<HDC>(wParam);
        GetClientRect(hwnd, &paint.rcPaint);
        SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
    }
    return 1;
}

LRESULT CVuikMenuBarCtrl::OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikMenuBarCtrl::OnFilterMenuMessage(HWND, UINT message, WPARAM, LPARAM)
{
    if (message == WM_EXITMENULOOP && m_pActiveButton) {
        // A click on the open button closes the menu; the same click then reaches the button, and must not
        // open it again. A menu that the bar itself ends (a key or the mouse moving to another button), or
        // that Escape ends, has no such click coming: a cursor resting on the button must not eat the next one.
        POINT cursor;
        RECT rect;
        MSG pending;
        if (!m_bMovingOn && GetCursorPos(&cursor) && GetWindowRect(m_pActiveButton->m_hWnd, &rect) &&
            PtInRect(&rect, cursor) &&
            (PeekMessageW(&pending, nullptr, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_NOREMOVE | PM_NOYIELD) ||
             GetAsyncKeyState(VK_LBUTTON) < 0))
            m_bIgnoreNextDown = true;
        m_bMovingOn = false;
        SendMessageW(m_pActiveButton->m_hWnd, BM_SETCHECK, 0, 0);
        m_pActiveButton = nullptr;
    }
    return 1;
}

void CVuikMenuBarCtrl::OnAcceleratorCommand(int index)
{
    CVuikMenuBarButtonCtrl* button = GetButton(index);
    if (!button || !button->m_hWnd)
        return;
    RECT client;
    GetClientRect(button->m_hWnd, &client);
    const LPARAM centre = MAKELPARAM((client.left + client.right) / 2, (client.top + client.bottom) / 2);
    SendMessageW(button->m_hWnd, WM_LBUTTONDOWN, MK_LBUTTON, centre);
    SendMessageW(button->m_hWnd, WM_LBUTTONUP, 0, centre);
}

LRESULT CVuikMenuBarCtrl::OnMeasureItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    MEASUREITEMSTRUCT* measure = reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
    if (wParam != 0 || !measure || measure->CtlType != ODT_MENU)
        return CallSuperWindowProc(hwnd, message, wParam, lParam);
    if (measure->itemID == 0) {  // a separator
        measure->itemWidth = 0;
        measure->itemHeight = kSeparatorHeight;
        return TRUE;
    }
    const MenuItem item = FindItem(m_hSourceMenu, measure->itemID, true);
    int textWidth = 0;
    WindowDC screen(nullptr);
    if (screen) {
        SelectGuard select(screen.Get(), m_pSkin ? m_pSkin->m_hFont : nullptr);
        RECT r = {0, 0, 0, 0};
        DrawTextW(screen.Get(), item.text.c_str(), -1, &r, kMeasureFlags);
        textWidth = r.right - r.left;
    }
    measure->itemWidth = static_cast<UINT>(GetSystemMetrics(SM_CXMENUCHECK) + 8 + static_cast<int>(1.2 * textWidth));
    measure->itemHeight = kItemHeight;
    return TRUE;
}

LRESULT CVuikMenuBarCtrl::OnDrawItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DRAWITEMSTRUCT* draw = reinterpret_cast<DRAWITEMSTRUCT*>(lParam);
    if (wParam != 0 || !draw || draw->CtlType != ODT_MENU)
        return Base::OnDrawItem(hwnd, message, wParam, lParam);
    if (!m_pSkin)
        return FALSE;
    const CVuikMenuBarSkinDef& def = m_pSkin->GetSkinDef();
    HDC dc = draw->hDC;
    const RECT item = draw->rcItem;
    const int width = item.right - item.left;
    const int height = item.bottom - item.top;
    const int mid = (item.top + item.bottom) / 2;
    const bool separator = draw->itemID == 0;
    const bool disabled = (draw->itemState & (ODS_DISABLED | ODS_GRAYED)) != 0;
    const bool selected = (draw->itemState & ODS_SELECTED) != 0;
    const MenuItem found =
        separator ? MenuItem() : FindItem(reinterpret_cast<HMENU>(draw->hwndItem), draw->itemID, false);
    const bool opensSubmenu = found.submenu != nullptr;

    DWORD background = def.m_crItem;
    if (!separator && !disabled && selected)
        background = opensSubmenu ? def.m_crItemSelectedPopup : def.m_crItemSelected;
    {
        GdiPlusPainter painter(dc);
        painter.Fill(item.left, item.top, width, height, background);
        if (separator)
            painter.Fill(item.left, mid, width, 1, def.m_crSeparator);
    }

    if (!separator) {
        const int checkWidth = GetSystemMetrics(SM_CXMENUCHECK);
        const int checkHeight = GetSystemMetrics(SM_CYMENUCHECK);
        if (draw->itemState & ODS_CHECKED) {
            // The platform's mark, black on the item's colour: drawn in a 1-bit bitmap, whose white becomes
            // the background colour and whose black the foreground.
            zcmod::BitmapHandle mark(CreateBitmap(checkWidth, checkHeight, 1, 1, nullptr));
            zcmod::BitmapDC markDC(dc, mark.Get());
            if (markDC) {
                RECT markRect = {0, 0, checkWidth, checkHeight};
                DrawFrameControl(markDC.Get(), &markRect, DFC_MENU,
                                 (found.type & MFT_RADIOCHECK) ? DFCS_MENUBULLET : DFCS_MENUCHECK);
                const COLORREF oldBack = SetBkColor(dc, ToColorRef(background));
                const COLORREF oldText = SetTextColor(dc, RGB(0, 0, 0));
                BitBlt(dc, item.left + 2, item.top + (height - checkHeight) / 2, checkWidth, checkHeight, markDC.Get(),
                       0, 0, SRCCOPY);
                SetTextColor(dc, oldText);
                SetBkColor(dc, oldBack);
            }
        }

        RECT text = {item.left + 4 + checkWidth, item.top, item.right - 4, item.bottom};
        SelectGuard select(dc, m_pSkin->m_hFont);
        const int oldMode = SetBkMode(dc, TRANSPARENT);
        const COLORREF oldColour = SetTextColor(dc, disabled ? def.m_crItemDisabledText : def.m_crItemText);
        const size_t tab = found.text.find(L'\t');
        const std::wstring label = found.text.substr(0, tab);
        DrawTextW(dc, label.c_str(), -1, &text, DT_VCENTER | DT_SINGLELINE);
        if (tab != std::wstring::npos) {
            const std::wstring shortcut = found.text.substr(tab + 1);
            DrawTextW(dc, shortcut.c_str(), -1, &text, kShortcutFlags);
        }
        SetTextColor(dc, oldColour);
        SetBkMode(dc, oldMode);

        if (opensSubmenu) {
            const POINT arrow[3] = {{item.right - 8, mid}, {item.right - 11, mid + 3}, {item.right - 11, mid - 3}};
            GdiPlusPainter painter(dc);
            painter.Triangle(arrow, disabled ? def.m_crArrowDisabled : def.m_crArrow);
        }
    }
    // The platform draws nothing more over the item, such as an arrow of its own.
    ExcludeClipRect(dc, item.left, item.top, item.right, item.bottom);
    return TRUE;
}

LRESULT CVuikMenuBarCtrl::OnMenuChar(WPARAM wParam, LPARAM lParam)
{
    // Owner-drawn items have no text the platform reads: the typed letter is matched here.
    HMENU menu = reinterpret_cast<HMENU>(lParam);
    const wchar_t typed = Upper(static_cast<wchar_t>(LOWORD(wParam)));
    const int count = menu ? GetMenuItemCount(menu) : 0;
    for (int i = 0; typed && i < count; ++i) {
        const MenuItem item = ReadItem(menu, static_cast<UINT>(i));
        const wchar_t letter = MnemonicOf(item.text.c_str());
        if (letter && Upper(letter) == typed)
            return MAKELRESULT(i, MNC_EXECUTE);
    }
    return m_hHost ? SendMessageW(m_hHost, WM_MENUCHAR, wParam, lParam) : 0;
}

void CVuikMenuBarCtrl::OnMouseDownOnBarButton(CVuikMenuBarButtonCtrl* button)
{
    if (m_bIgnoreNextDown) {
        m_bIgnoreNextDown = false;
        return;
    }
    if (button == m_pActiveButton)
        return;
    const int index = IndexOf(button);
    if (index >= 0)
        PostMessageW(m_hWnd, WM_VUIK_MENUBAR_OPENPOPUP, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(button));
}

void CVuikMenuBarCtrl::OnMouseMoveOnBarButton(CVuikMenuBarButtonCtrl* button)
{
    if (!m_pActiveButton || button == m_pActiveButton || s_pHookBar != this)
        return;
    const int index = IndexOf(button);
    if (index < 0)
        return;
    m_bMovingOn = true;
    SendMessageW(m_hWnd, WM_CANCELMODE, 0, 0);
    PostMessageW(m_hWnd, WM_VUIK_MENUBAR_OPENPOPUP, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(button));
}

void CVuikMenuBarCtrl::OnOpenPopup(int index, CVuikMenuBarButtonCtrl* button)
{
    // One popup at a time in the process: a request that arrives while one is open is dropped.
    if (s_hHook || !button || IndexOf(button) != index || !button->m_hWnd)
        return;
    HMENU popup = GetSubMenu(m_hSourceMenu, index);
    if (!popup) {
        // A top-level item without a drop-down is a command of its own.
        const UINT id = GetMenuItemID(m_hSourceMenu, index);
        if (id != static_cast<UINT>(-1) && m_hHost)
            PostMessageW(m_hHost, WM_COMMAND, id, 0);
        return;
    }
    m_bMovingOn = false;
    RECT rect;
    GetWindowRect(button->m_hWnd, &rect);
    SendMessageW(button->m_hWnd, BM_SETCHECK, 1, 0);
    m_pActiveButton = button;
    HHOOK hook = SetWindowsHookExW(WH_MSGFILTER, MessageFilterProc, nullptr, GetCurrentThreadId());
    if (!hook) {
        SendMessageW(button->m_hWnd, BM_SETCHECK, 0, 0);
        m_pActiveButton = nullptr;
        return;
    }
    s_hHook = hook;
    s_pHookBar = this;
    HWND owner = m_hWnd;
    TrackPopupMenuEx(popup, 0, rect.left, rect.top + (rect.bottom - rect.top), owner, nullptr);
    // The bar may have been destroyed during the loop: its OnDestroy then removed the hook already, and
    // nothing of the object is touched here.
    if (s_pHookBar == this && s_hHook == hook) {
        UnhookWindowsHookEx(hook);
        s_hHook = nullptr;
        s_pHookBar = nullptr;
    }
}

LRESULT CALLBACK CVuikMenuBarCtrl::MessageFilterProc(int code, WPARAM wParam, LPARAM lParam)
{
    HHOOK hook = s_hHook;
    if (code < 0)
        return CallNextHookEx(hook, code, wParam, lParam);
    if (code == MSGF_MENU && s_pHookBar && lParam)
        s_pHookBar->FilterMessage(reinterpret_cast<const MSG*>(lParam));
    return CallNextHookEx(hook, code, wParam, lParam);
}

void CVuikMenuBarCtrl::FilterMessage(const MSG* msg)
{
    if (!m_pActiveButton || m_nButtonCount <= 0)
        return;
    if (msg->message == WM_KEYDOWN && (msg->wParam == VK_LEFT || msg->wParam == VK_RIGHT)) {
        // Inside the drop-down the keys keep their menu meaning: left closes an open submenu, right opens the
        // highlighted item's submenu. Otherwise they move across the bar.
        const std::vector<HWND> open = OpenMenuWindows();
        if (msg->wParam == VK_LEFT && open.size() > 1)
            return;
        if (msg->wParam == VK_RIGHT && !open.empty()) {
            HMENU deepest = reinterpret_cast<HMENU>(SendMessageW(open.front(), MN_GETHMENU, 0, 0));
            if (HighlightedItemOpensSubmenu(deepest))
                return;
        }
        const int active = IndexOf(m_pActiveButton);
        if (active < 0)
            return;
        const int step = msg->wParam == VK_LEFT ? -1 : 1;
        int next = active;
        for (int i = 0; i < m_nButtonCount; ++i) {
            next = (next + step + m_nButtonCount) % m_nButtonCount;
            if (m_ppButtons[next])
                break;  // a gap left by a button that couldn't be made is skipped
        }
        if (next == active)
            return;
        m_bMovingOn = true;
        SendMessageW(m_hWnd, WM_CANCELMODE, 0, 0);
        GetCursorPos(&m_ptKeyboard);
        m_bKeyboardMode = true;
        PostMessageW(m_hWnd, WM_VUIK_MENUBAR_OPENPOPUP, static_cast<WPARAM>(next),
                     reinterpret_cast<LPARAM>(m_ppButtons[next]));
        return;
    }
    if (msg->message != WM_MOUSEMOVE)
        return;
    POINT cursor;
    if (!GetCursorPos(&cursor))
        return;
    if (m_bKeyboardMode) {
        // A mouse at rest, or nudged, does not take the menu back from the keyboard.
        const double dx = cursor.x - m_ptKeyboard.x;
        const double dy = cursor.y - m_ptKeyboard.y;
        if (static_cast<int>(std::sqrt(dx * dx + dy * dy)) < 3)
            return;
        m_bKeyboardMode = false;
        m_ptKeyboard = POINT();
    }
    RECT rect;
    if (GetWindowRect(m_pActiveButton->m_hWnd, &rect) && PtInRect(&rect, cursor))
        return;
    for (int i = 0; i < m_nButtonCount; ++i) {
        CVuikMenuBarButtonCtrl* button = m_ppButtons[i];
        if (!button || !button->m_hWnd || !GetWindowRect(button->m_hWnd, &rect) || !PtInRect(&rect, cursor))
            continue;
        POINT local = cursor;
        ScreenToClient(button->m_hWnd, &local);
        SendMessageW(button->m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(local.x, local.y));
        break;
    }
}
