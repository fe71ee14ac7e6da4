#include "zcmod/VuikComboBoxCtrl.h"

#include <vector>

#include "controls/ControlOfWindow.h"
#include "controls/core/ControlText.h"
#include "frame/Handles.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

CVuikComboBoxSkinDef CVuikComboBoxSkin::m_DefaultSkinDef = {{
    {ZGR_BMP_COMBO_NORMAL_LEFT, ZGR_BMP_COMBO_NORMAL_MIDDLE, ZGR_BMP_COMBO_NORMAL_RIGHT, 0},
    {ZGR_BMP_COMBO_PRESSED_LEFT, ZGR_BMP_COMBO_PRESSED_MIDDLE, ZGR_BMP_COMBO_PRESSED_RIGHT, 0},
    {ZGR_BMP_COMBO_HOVER_LEFT, ZGR_BMP_COMBO_HOVER_MIDDLE, ZGR_BMP_COMBO_HOVER_RIGHT, 0},
    {ZGR_BMP_COMBO_DISABLED_LEFT, ZGR_BMP_COMBO_DISABLED_MIDDLE, ZGR_BMP_COMBO_DISABLED_RIGHT, 0},
}};

namespace {

using zcmod::BitmapHandle;
using zcmod::MemoryDC;
using zcmod::SelectGuard;

// Left aligned, centred vertically on one line, with an ellipsis where it doesn't fit.
const UINT kTextFormat = DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS;
// The item buffer of a ComboBoxEx32's item.
const int kItemTextCapacity = 1000;
// What CBEM_GETITEMW fills: text, image, selected image, indent.
const UINT kItemMask = CBEIF_TEXT | CBEIF_IMAGE | CBEIF_SELECTEDIMAGE | CBEIF_INDENT;
// The drop-down list's item colours.
const COLORREF kListSelected = 0xFFBE73;
const COLORREF kListNormal = 0xFFFFFF;
// Where the text of an item begins, and the indent of one level of a ComboBoxEx32.
const int kTextInset = 5;
const int kIndentStep = 10;
const int kIconGap = 5;

int Width(const CVuikBitmap* b)
{
    return b ? b->GetWidth() : 0;
}

int Height(const CVuikBitmap* b)
{
    return b ? b->GetHeight() : 0;
}

// The control's picture reaches the screen turned round once: in a right-to-left layout (the buffer is
// mirrored) or in a mirrored window (the platform mirrors what is copied to it).
bool ShownMirrored(HWND hwnd)
{
    return CVuikLib::IsLayoutRTL() || (hwnd && (GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL));
}

// The pictures come in as drawn: a right-to-left load turns them round, and the mirror flag turns them back,
// since the whole picture is turned once on its way to the screen.
int MirrorFlag()
{
    return CVuikLib::IsLayoutRTL() ? 1 : 0;
}

// One item of a ComboBoxEx32: its text, image and indent.
struct ExItem {
    std::wstring text;
    int image = -1;
    int indent = 0;
};

bool GetExItem(HWND comboEx, int index, ExItem* item)
{
    if (!comboEx || index < 0)
        return false;
    std::vector<wchar_t> buffer(kItemTextCapacity + 1, L'\0');
    COMBOBOXEXITEMW info = {};
    info.mask = kItemMask;
    info.iItem = index;
    info.pszText = buffer.data();
    info.cchTextMax = kItemTextCapacity;
    if (!SendMessageW(comboEx, CBEM_GETITEMW, 0, reinterpret_cast<LPARAM>(&info)))
        return false;
    buffer[kItemTextCapacity] = L'\0';
    // The platform may answer with a pointer of its own instead of filling the buffer.
    item->text = info.pszText ? info.pszText : L"";
    item->image = info.iImage;
    item->indent = info.iIndent;
    return true;
}

std::wstring GetComboText(HWND combo, int index)
{
    const LRESULT length = SendMessageW(combo, CB_GETLBTEXTLEN, static_cast<WPARAM>(index), 0);
    if (length == CB_ERR || length < 1)
        return std::wstring();
    std::vector<wchar_t> buffer(static_cast<size_t>(length) + 1, L'\0');
    const LRESULT got = SendMessageW(combo, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(buffer.data()));
    if (got == CB_ERR || got < 0)
        return std::wstring();
    return std::wstring(buffer.data(), static_cast<size_t>(got) <= static_cast<size_t>(length) ? static_cast<size_t>(got) : static_cast<size_t>(length));
}

HFONT WindowFont(HWND hwnd)
{
    HFONT font = reinterpret_cast<HFONT>(SendMessageW(hwnd, WM_GETFONT, 0, 0));
    return font ? font : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
}

// The icon of a ComboBoxEx32's item at (x, vertically centred in [top, bottom) or at top); its width, 0 without.
int DrawExIcon(HWND comboEx, HDC dc, int image, int x, int top, int bottom, bool centred)
{
    HIMAGELIST images = reinterpret_cast<HIMAGELIST>(SendMessageW(comboEx, CBEM_GETIMAGELIST, 0, 0));
    if (!images || image < 0)
        return 0;
    int cx = 0, cy = 0;
    if (!ImageList_GetIconSize(images, &cx, &cy))
        return 0;
    const int y = centred ? top + ((bottom - top) - cy) / 2 : top;
    ImageList_Draw(images, image, dc, x, y, ILD_TRANSPARENT);
    return cx;
}

// The control whose buffer is being drawn (see ControlOfWindow).
CVuikComboBoxCtrl* g_pDrawing = nullptr;

CVuikComboBoxCtrl* AsCombo(CVuikWindow* window) { return zcmod::ControlOfWindow(window, g_pDrawing); }

}  // namespace

// --- State skin ------------------------------------------------------------------------------------------

CVuikComboBoxStateSkin::CVuikComboBoxStateSkin()
    : m_pLeft(nullptr), m_pMiddle(nullptr), m_pRight(nullptr), m_crText(0), m_crDisabledText(0xCECECE), m_rcCaption()
{
    m_SkinDef = CVuikComboBoxSkin::m_DefaultSkinDef.m_StateDefs[0];
}

CVuikComboBoxStateSkin::~CVuikComboBoxStateSkin()
{
    Unload();
}

void CVuikComboBoxStateSkin::Load()
{
    Load(false);
}

void CVuikComboBoxStateSkin::Load(bool fromCommonResource)
{
    Unload();
    HINSTANCE module = fromCommonResource ? ZCMOD_GetCommonZGR() : CVuikLib::GetResourceInstance();
    const int mirror = MirrorFlag();
    if (module) {
        if (m_SkinDef.m_nLeftBitmapId)
            CVuikResourceManager::LoadBitmapW(&m_pLeft, module, m_SkinDef.m_nLeftBitmapId, mirror, nullptr);
        if (m_SkinDef.m_nMiddleBitmapId)
            CVuikResourceManager::LoadBitmapW(&m_pMiddle, module, m_SkinDef.m_nMiddleBitmapId, mirror, nullptr);
        if (m_SkinDef.m_nRightBitmapId)
            CVuikResourceManager::LoadBitmapW(&m_pRight, module, m_SkinDef.m_nRightBitmapId, mirror, nullptr);
    }
    m_crText = 0;
    m_crDisabledText = 0xCECECE;
    if (fromCommonResource && module) {
        // A theme names the colour of text on its control faces; a dark theme needs it.
        wchar_t probe[32];
        if (LoadStringW(module, ZGR_COLOR_TEXT, probe, 32) > 0)
            m_crText = DkhLoadColor(module, ZGR_COLOR_TEXT);
        if (LoadStringW(module, ZGR_COLOR_TEXT_DISABLED, probe, 32) > 0)
            m_crDisabledText = DkhLoadColor(module, ZGR_COLOR_TEXT_DISABLED);
    }
    Validate();
}

void CVuikComboBoxStateSkin::Unload()
{
    for (CVuikBitmap** slot : {&m_pLeft, &m_pMiddle, &m_pRight})
        if (*slot)
            CVuikResourceManager::UnloadBitmap(slot);
}

void CVuikComboBoxStateSkin::Validate()
{
    m_nStatus = StatusValid;
    if ((m_SkinDef.m_nLeftBitmapId && !m_pLeft) || (m_SkinDef.m_nMiddleBitmapId && !m_pMiddle) ||
        (m_SkinDef.m_nRightBitmapId && !m_pRight))
        m_nStatus = StatusInvalid;
}

void CVuikComboBoxStateSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    m_rcCaption.left = Width(m_pLeft);
    m_rcCaption.top = 0;
    m_rcCaption.right = width - Width(m_pRight);
    m_rcCaption.bottom = height;
    DrawBackground(window, graphics, width, height);
    HWND hwnd = window ? window->m_hWnd : nullptr;
    if (!hwnd)
        return;
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    if (GetComboBoxInfo(hwnd, &info) && info.hwndItem && info.hwndItem != hwnd) {
        // The edit part paints itself over the face.
        InvalidateRect(info.hwndItem, nullptr, TRUE);
        return;
    }
    DrawCaption(window, graphics, width, height);
}

void CVuikComboBoxStateSkin::DrawBackground(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!m_pLeft && !m_pMiddle && !m_pRight) {
        // Nothing to draw: the parent paints what lies behind.
        HWND hwnd = window ? window->m_hWnd : nullptr;
        HWND parent = hwnd ? GetParent(hwnd) : nullptr;
        if (parent) {
            PAINTSTRUCT paint = {};
            paint.hdc = *graphics;
            paint.rcPaint.right = width;
            paint.rcPaint.bottom = height;
            SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
        }
        return;
    }
    const int left = Width(m_pLeft);
    const int right = width - Width(m_pRight);
    if (m_pLeft)
        graphics->DrawImage(m_pLeft, 0, 0);
    if (m_pRight)
        graphics->DrawImage(m_pRight, right, 0);
    if (m_pMiddle && right > left)
        graphics->DrawImage(m_pMiddle, left, 0, right - left, Height(m_pMiddle));
}

void CVuikComboBoxStateSkin::DrawCaption(CVuikWindow* window, CVuikGraphics* graphics, int, int)
{
    CVuikComboBoxCtrl* combo = AsCombo(window);
    HWND hwnd = window ? window->m_hWnd : nullptr;
    if (!hwnd)
        return;
    const int selected = static_cast<int>(SendMessageW(hwnd, CB_GETCURSEL, 0, 0));
    if (selected < 0)
        return;
    HWND comboEx = combo ? combo->GetComboBoxEx() : nullptr;
    ExItem item;
    if (comboEx) {
        if (!GetExItem(comboEx, selected, &item))
            return;
    } else {
        item.text = GetComboText(hwnd, selected);
        if (item.text.empty())
            return;
    }
    const int w = m_rcCaption.right - m_rcCaption.left;
    const int h = m_rcCaption.bottom - m_rcCaption.top;
    if (w <= 0 || h <= 0)
        return;

    // Text must reach the screen the right way round. When the whole picture is turned round on its way
    // there, the caption is drawn on a piece of its own, turned round before and after, so that the turn
    // on the way out puts it back; it then stands at the right, beside the arrow that the turn puts at the left.
    HDC target = *graphics;
    const COLORREF colour = IsWindowEnabled(hwnd) ? m_crText : m_crDisabledText;
    HFONT font = WindowFont(hwnd);
    auto content = [&](HDC dc, RECT area, bool fromRight) {
        const int oldMode = SetBkMode(dc, TRANSPARENT);
        const COLORREF oldColour = SetTextColor(dc, colour);
        SelectGuard selectFont(dc, font);
        UINT format = kTextFormat;
        if (CVuikLib::IsLayoutRTL())
            format |= DT_RTLREADING;
        HIMAGELIST images = comboEx ? reinterpret_cast<HIMAGELIST>(SendMessageW(comboEx, CBEM_GETIMAGELIST, 0, 0)) : nullptr;
        int cx = 0, cy = 0;
        const bool icon = images && item.image >= 0 && ImageList_GetIconSize(images, &cx, &cy);
        if (fromRight) {
            // The icon stands before the text, at the right.
            // The last glyph may reach a column past its advance: not clipped, the ellipsis already cuts.
            format |= DT_RIGHT | DT_NOCLIP;
            area.right -= 1;
            if (icon) {
                DrawExIcon(comboEx, dc, item.image, area.right - cx, area.top, area.bottom, true);
                area.right -= cx + kIconGap;
            }
        } else if (icon) {
            DrawExIcon(comboEx, dc, item.image, area.left, area.top, area.bottom, true);
            area.left += cx + kIconGap;
        }
        if (!item.text.empty())
            DrawTextW(dc, item.text.c_str(), static_cast<int>(item.text.size()), &area, format);
        SetTextColor(dc, oldColour);
        SetBkMode(dc, oldMode);
    };
    if (!ShownMirrored(hwnd)) {
        content(target, m_rcCaption, false);
        return;
    }
    MemoryDC pieceDC(CreateCompatibleDC(target));
    BitmapHandle piece(CreateCompatibleBitmap(target, w, h));
    if (!pieceDC || !piece)
        return;
    {
        SelectGuard select(pieceDC.Get(), piece.Get());
        BitBlt(pieceDC.Get(), 0, 0, w, h, target, m_rcCaption.left, m_rcCaption.top, SRCCOPY);
    }
    CVuikLib::MirrorBitmap(piece.Get());
    {
        SelectGuard select(pieceDC.Get(), piece.Get());
        content(pieceDC.Get(), RECT{0, 0, w, h}, true);
    }
    CVuikLib::MirrorBitmap(piece.Get());
    SelectGuard select(pieceDC.Get(), piece.Get());
    BitBlt(target, m_rcCaption.left, m_rcCaption.top, w, h, pieceDC.Get(), 0, 0, SRCCOPY);
}

// --- Skin -------------------------------------------------------------------------------------------------

CVuikComboBoxSkin::CVuikComboBoxSkin()
{
    SetSkinDef(m_DefaultSkinDef);
}

CVuikComboBoxSkin::~CVuikComboBoxSkin()
{
    Unload();
}

void CVuikComboBoxSkin::SetSkinDef(CVuikComboBoxSkinDef def)
{
    m_SkinDef = def;
    for (int i = 0; i < 4; ++i)
        m_StateSkins[i].SetSkinDef(def.m_StateDefs[i]);
}

void CVuikComboBoxSkin::Load()
{
    Load(false);
}

void CVuikComboBoxSkin::Load(bool fromCommonResource)
{
    for (int i = 0; i < 4; ++i)
        m_StateSkins[i].Load(fromCommonResource);
}

void CVuikComboBoxSkin::Unload()
{
    for (int i = 0; i < 4; ++i)
        m_StateSkins[i].Unload();
}

void CVuikComboBoxSkin::Validate()
{
    for (int i = 0; i < 4; ++i)
        m_StateSkins[i].Validate();
}

bool CVuikComboBoxSkin::IsValid()
{
    return m_StateSkins[0].IsValid() && m_StateSkins[1].IsValid();
}

void CVuikComboBoxSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    CVuikComboBoxCtrl* combo = AsCombo(window);
    int index = COMBOBOX_STATE_NORMAL;
    if (combo) {
        index = combo->GetState();
        // A focused combo at rest looks like one under the mouse.
        if (index == COMBOBOX_STATE_NORMAL && combo->HasFocus())
            index = COMBOBOX_STATE_HOVER;
    }
    if (index < 0 || index > 2)
        index = COMBOBOX_STATE_NORMAL;
    m_StateSkins[index].Draw(window, graphics, width, height);
}

// --- Drop-down list -----------------------------------------------------------------------------------------

CVuikComboBoxListCtrl::CVuikComboBoxListCtrl()
    : m_hWnd(nullptr), m_pfnPrevWindowProc(nullptr), m_pPrevUserData(0), m_hToolTip(nullptr), m_ToolInfo()
{
}

CVuikComboBoxListCtrl::~CVuikComboBoxListCtrl()
{
    UnsubclassWindow(1);
}

bool CVuikComboBoxListCtrl::SubclassWindow(HWND list)
{
    if (m_hWnd || !list || !IsWindow(list))
        return false;
    const LONG_PTR previous = SetWindowLongPtrW(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(WindowProc));
    if (!previous)
        return false;
    m_hWnd = list;
    m_pfnPrevWindowProc = reinterpret_cast<WNDPROC>(previous);
    m_pPrevUserData = SetWindowLongPtrW(list, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));

    DWORD exStyle = WS_EX_TOPMOST;
    if (CVuikLib::IsLayoutRTL())
        exStyle |= WS_EX_LAYOUTRTL | WS_EX_RTLREADING;
    m_hToolTip = CreateWindowExW(exStyle, TOOLTIPS_CLASSW, nullptr, TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
                                 CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, list, nullptr, CVuikLib::GetInstance(),
                                 nullptr);
    if (m_hToolTip) {
        m_ToolInfo = TOOLINFOW();
        m_ToolInfo.cbSize = sizeof(m_ToolInfo);
        m_ToolInfo.uFlags = TTF_TRACK | TTF_TRANSPARENT;
        m_ToolInfo.hwnd = list;
        m_ToolInfo.hinst = CVuikLib::GetInstance();
        m_strTipText.clear();
        m_ToolInfo.lpszText = const_cast<wchar_t*>(L"");
        ::SendMessageW(m_hToolTip, TTM_SETMAXTIPWIDTH, 0, 32767);
        ::SendMessageW(m_hToolTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&m_ToolInfo));
        RECT margin = {0, 0, 0, 0};
        ::SendMessageW(m_hToolTip, TTM_SETMARGIN, 0, reinterpret_cast<LPARAM>(&margin));
        SetWindowLongPtrW(m_hToolTip, GWL_STYLE, GetWindowLongPtrW(m_hToolTip, GWL_STYLE) & ~static_cast<LONG_PTR>(WS_BORDER));
        SetFont(GetFont(), TRUE);
    }
    return true;
}

HWND CVuikComboBoxListCtrl::UnsubclassWindow(int force)
{
    if (!m_hWnd)
        return nullptr;
    HWND list = m_hWnd;
    if (IsWindow(list)) {
        if (!force && reinterpret_cast<WNDPROC>(GetWindowLongPtrW(list, GWLP_WNDPROC)) != WindowProc)
            return nullptr;
        KillTimer(list, m_toolTipTimerID);
        if (reinterpret_cast<WNDPROC>(GetWindowLongPtrW(list, GWLP_WNDPROC)) == WindowProc)
            SetWindowLongPtrW(list, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnPrevWindowProc));
        if (GetWindowLongPtrW(list, GWLP_USERDATA) == reinterpret_cast<LONG_PTR>(this))
            SetWindowLongPtrW(list, GWLP_USERDATA, m_pPrevUserData);
    }
    if (m_hToolTip && IsWindow(m_hToolTip))
        DestroyWindow(m_hToolTip);
    m_hToolTip = nullptr;
    m_hWnd = nullptr;
    m_strTipText.clear();
    return list;
}

LRESULT CVuikComboBoxListCtrl::SendMessageW(UINT message, WPARAM wParam, LPARAM lParam)
{
    return m_hWnd ? ::SendMessageW(m_hWnd, message, wParam, lParam) : 0;
}

HFONT CVuikComboBoxListCtrl::GetFont()
{
    return reinterpret_cast<HFONT>(SendMessageW(WM_GETFONT, 0, 0));
}

void CVuikComboBoxListCtrl::SetFont(HFONT font, BOOL redraw)
{
    if (m_hToolTip)
        ::SendMessageW(m_hToolTip, WM_SETFONT, reinterpret_cast<WPARAM>(font), redraw);
}

void CVuikComboBoxListCtrl::ReplaceAmpersand(std::wstring& text)
{
    zcmod::CollapseAmpersandRuns(text);
}

void CVuikComboBoxListCtrl::HideTip()
{
    if (m_hToolTip)
        ::SendMessageW(m_hToolTip, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&m_ToolInfo));
}

void CVuikComboBoxListCtrl::OnMouseMove(WPARAM, LPARAM lParam)
{
    if (!m_hToolTip)
        return;
    POINT p = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    RECT client;
    GetClientRect(m_hWnd, &client);
    if (!PtInRect(&client, p))
        return;
    const LRESULT hit = SendMessageW(LB_ITEMFROMPOINT, 0, MAKELPARAM(p.x, p.y));
    if (HIWORD(hit)) {
        HideTip();
        return;
    }
    const int index = LOWORD(hit);
    // The item's text: a ComboBoxEx32's list holds no strings of its own, its outer window has them.
    std::wstring text;
    HWND combo = GetWindow(m_hWnd, GW_OWNER);
    CVuikComboBoxCtrl* owner = nullptr;
    if (combo && reinterpret_cast<WNDPROC>(GetWindowLongPtrW(combo, GWLP_WNDPROC)) == CVuikComboBoxCtrl::WindowProc)
        owner = reinterpret_cast<CVuikComboBoxCtrl*>(GetWindowLongPtrW(combo, GWLP_USERDATA));
    ExItem item;
    if (owner && owner->GetComboBoxEx() && GetExItem(owner->GetComboBoxEx(), index, &item)) {
        text = item.text;
    } else {
        const LRESULT length = SendMessageW(LB_GETTEXTLEN, static_cast<WPARAM>(index), 0);
        if (length == LB_ERR || length < 0)
            return;
        std::vector<wchar_t> buffer(static_cast<size_t>(length) + 1, L'\0');
        if (SendMessageW(LB_GETTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(buffer.data())) == LB_ERR)
            return;
        buffer[static_cast<size_t>(length)] = L'\0';
        text = buffer.data();
    }
    ReplaceAmpersand(text);
    m_strTipText = text;
    m_ToolInfo.lpszText = const_cast<wchar_t*>(m_strTipText.c_str());
    RECT item_rect = {};
    SendMessageW(LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item_rect));
    POINT at = {CVuikLib::IsLayoutRTL() ? item_rect.right : item_rect.left, item_rect.top};
    ClientToScreen(m_hWnd, &at);

    SIZE extent = {};
    HDC dc = GetDC(m_hToolTip);
    if (dc) {
        HFONT font = reinterpret_cast<HFONT>(::SendMessageW(m_hToolTip, WM_GETFONT, 0, 0));
        SelectGuard select(dc, font ? font : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT)));
        GetTextExtentPoint32W(dc, m_strTipText.c_str(), static_cast<int>(m_strTipText.size()), &extent);
        ReleaseDC(m_hToolTip, dc);
    }
    if (extent.cx <= (item_rect.right - item_rect.left) - kTextInset) {
        HideTip();
        return;
    }
    SetWindowPos(m_hToolTip, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
    ::SendMessageW(m_hToolTip, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&m_ToolInfo));
    ::SendMessageW(m_hToolTip, TTM_TRACKPOSITION, 0, MAKELPARAM(at.x + 3, at.y));
    ::SendMessageW(m_hToolTip, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&m_ToolInfo));
    SetTimer(m_hWnd, m_toolTipTimerID, 80, nullptr);
}

void CVuikComboBoxListCtrl::OnTimer(WPARAM wParam, LPARAM)
{
    if (wParam != m_toolTipTimerID)
        return;
    POINT cursor;
    GetCursorPos(&cursor);
    ScreenToClient(m_hWnd, &cursor);
    RECT client;
    GetClientRect(m_hWnd, &client);
    if (!PtInRect(&client, cursor) || !(GetWindowLongPtrW(m_hWnd, GWL_STYLE) & WS_VISIBLE)) {
        KillTimer(m_hWnd, m_toolTipTimerID);
        HideTip();
    }
}

LRESULT CALLBACK CVuikComboBoxListCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikComboBoxListCtrl* self = reinterpret_cast<CVuikComboBoxListCtrl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!self || self->m_hWnd != hwnd)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    if (message == WM_MOUSEMOVE)
        self->OnMouseMove(wParam, lParam);
    else if (message == WM_TIMER)
        self->OnTimer(wParam, lParam);
    WNDPROC previous = self->m_pfnPrevWindowProc;
    if (message == WM_NCDESTROY)
        self->UnsubclassWindow(1);
    return previous ? CallWindowProcW(previous, hwnd, message, wParam, lParam)
                    : DefWindowProcW(hwnd, message, wParam, lParam);
}

// --- Control ------------------------------------------------------------------------------------------------

CVuikComboBoxCtrl::CVuikComboBoxCtrl()
    : m_hEdit(nullptr), m_hList(nullptr), m_hComboBoxEx(nullptr), m_eState(COMBOBOX_STATE_NORMAL),
      m_bTracking(false), m_bFocus(false), m_pOwnSkin(nullptr)
{
    m_pfnWindowProc = WindowProc;
}

CVuikComboBoxCtrl::~CVuikComboBoxCtrl()
{
    m_list.UnsubclassWindow(1);
    if (m_hWnd && IsWindow(m_hWnd))
        UnsubclassWindow(1);
    if (m_pSkin == m_pOwnSkin)
        m_pSkin = nullptr;
    delete m_pOwnSkin;
}

BOOL CVuikComboBoxCtrl::SubclassWindow(HWND hwnd)
{
    if (!hwnd || !IsWindow(hwnd) || (m_hWnd && IsWindow(m_hWnd)))
        return 0;
    // A ComboBoxEx32 answers with its inner combo, which is the one taken over.
    HWND inner = reinterpret_cast<HWND>(SendMessageW(hwnd, CBEM_GETCOMBOCONTROL, 0, 0));
    HWND comboEx = nullptr;
    if (inner && IsWindow(inner)) {
        comboEx = hwnd;
        hwnd = inner;
    }
    if (!CVuikWindowImpl<CVuikComboBoxSkin>::SubclassWindow(hwnd))
        return 0;
    m_hComboBoxEx = comboEx;
    m_eState = COMBOBOX_STATE_NORMAL;
    m_bTracking = false;
    m_bFocus = GetFocus() == hwnd;
    SetWindowLongPtrW(hwnd, GWL_STYLE,
                      GetWindowLongPtrW(hwnd, GWL_STYLE) | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | CBS_OWNERDRAWFIXED |
                          CBS_HASSTRINGS);
    SetWindowLongPtrW(hwnd, GWL_EXSTYLE, GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_NOPARENTNOTIFY));
    // A skin of the control's own making is loaded anew: the theme may have changed since the last window.
    if (!m_pSkin || m_pSkin == m_pOwnSkin) {
        if (!m_pOwnSkin)
            m_pOwnSkin = new CVuikComboBoxSkin;
        m_pOwnSkin->Load(true);
        SetSkin(m_pOwnSkin);
    }
    COMBOBOXINFO info = {};
    info.cbSize = sizeof(info);
    if (GetComboBoxInfo(hwnd, &info)) {
        m_hEdit = info.hwndItem != hwnd ? info.hwndItem : nullptr;
        m_hList = info.hwndList;
    }
    if (m_hList)
        m_list.SubclassWindow(m_hList);
    SizeToContent();
    return 1;
}

HWND CVuikComboBoxCtrl::UnsubclassWindow(int force)
{
    HWND hwnd = CVuikWindowImpl<CVuikComboBoxSkin>::UnsubclassWindow(force);
    if (hwnd) {
        m_list.UnsubclassWindow(1);
        // The window keeps this object in its user data (the base's rule), but nothing reaches it any more.
        m_hEdit = m_hList = m_hComboBoxEx = nullptr;
    }
    return hwnd;
}

void CVuikComboBoxCtrl::SizeToContent()
{
    if (!m_pSkin || !m_hWnd)
        return;
    CVuikComboBoxStateSkin* normal = m_pSkin->GetStateSkin(COMBOBOX_STATE_NORMAL);
    CVuikBitmap* first = normal->m_pLeft ? normal->m_pLeft : normal->m_pMiddle ? normal->m_pMiddle : normal->m_pRight;
    if (!first)
        return;
    const int h = first->GetHeight();
    RECT client;
    GetClientRect(m_hWnd, &client);
    const int w = client.right - client.left;
    RECT window;
    GetWindowRect(m_hWnd, &window);
    SetWindowPos(m_hWnd, nullptr, 0, 0, w, window.bottom - window.top, SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE);
    SendMessageW(m_hWnd, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), h - 6);
    if (m_hComboBoxEx)
        SendMessageW(m_hComboBoxEx, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), h - 6);
    if (!normal->m_pLeft || !normal->m_pRight)
        return;
    const UINT flags = SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE;
    if (m_hEdit)
        SetWindowPos(m_hEdit, nullptr, normal->m_pLeft->GetWidth(), 7, w - normal->m_pRight->GetWidth() - 10, 16, flags);
    if (m_hList)
        SetWindowPos(m_hList, nullptr, 0, h, w, 100, flags);
}

int CVuikComboBoxCtrl::AddItem(const wchar_t* text)
{
    return m_hWnd ? static_cast<int>(SendMessageW(m_hWnd, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text))) : CB_ERR;
}

int CVuikComboBoxCtrl::GetCurSel()
{
    return m_hWnd ? static_cast<int>(SendMessageW(m_hWnd, CB_GETCURSEL, 0, 0)) : CB_ERR;
}

int CVuikComboBoxCtrl::SetCurSel(int index)
{
    return m_hWnd ? static_cast<int>(SendMessageW(m_hWnd, CB_SETCURSEL, static_cast<WPARAM>(index), 0)) : CB_ERR;
}

int CVuikComboBoxCtrl::GetCount()
{
    return m_hWnd ? static_cast<int>(SendMessageW(m_hWnd, CB_GETCOUNT, 0, 0)) : CB_ERR;
}

int CVuikComboBoxCtrl::GetLBText(int index, wchar_t* buffer)
{
    if (!m_hWnd || !buffer)
        return CB_ERR;
    return static_cast<int>(SendMessageW(m_hWnd, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(buffer)));
}

int CVuikComboBoxCtrl::GetLBTextLen(int index)
{
    return m_hWnd ? static_cast<int>(SendMessageW(m_hWnd, CB_GETLBTEXTLEN, static_cast<WPARAM>(index), 0)) : CB_ERR;
}

void CVuikComboBoxCtrl::ResetContent()
{
    if (m_hWnd)
        SendMessageW(m_hWnd, CB_RESETCONTENT, 0, 0);
}

void CVuikComboBoxCtrl::SetFont(HFONT font, BOOL redraw)
{
    if (m_hEdit)
        SendMessageW(m_hEdit, WM_SETFONT, reinterpret_cast<WPARAM>(font), redraw);
    if (m_hWnd)
        SendMessageW(m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(font), redraw);
    m_list.SetFont(font, redraw);
}

void CVuikComboBoxCtrl::Draw(CVuikGraphics* graphics, int width, int height)
{
    CVuikComboBoxCtrl* outer = g_pDrawing;
    g_pDrawing = this;
    CVuikWindowImpl<CVuikComboBoxSkin>::Draw(graphics, width, height);
    g_pDrawing = outer;
}

void CVuikComboBoxCtrl::Refresh(BOOL erase)
{
    DeleteBackBuffer();
    if (m_hWnd)
        InvalidateRect(m_hWnd, nullptr, erase);
}

LRESULT CVuikComboBoxCtrl::CallQuietly(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    // A hidden combo has nothing to flash, and switching drawing back on would show it.
    const bool visible = (GetWindowLongPtrW(hwnd, GWL_STYLE) & WS_VISIBLE) != 0;
    if (visible)
        CallSuperWindowProc(hwnd, WM_SETREDRAW, FALSE, 0);
    const LRESULT result = CallSuperWindowProc(hwnd, message, wParam, lParam);
    if (visible && IsWindow(hwnd))
        CallSuperWindowProc(hwnd, WM_SETREDRAW, TRUE, 0);
    return result;
}

LRESULT CVuikComboBoxCtrl::OnCreate(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikComboBoxCtrl::OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    m_list.UnsubclassWindow(1);
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikComboBoxCtrl::OnEraseBkgnd(HWND, UINT, WPARAM, LPARAM)
{
    return 1;
}

LRESULT CVuikComboBoxCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    // The selection, focus and state are all in the picture: it is made anew for each paint.
    DeleteBackBuffer();
    if (SkinIsValid()) {
        RECT client;
        GetClientRect(hwnd, &client);
        // Drawn left to right here; a mirrored window turns it round on its way to the screen.
        const DWORD layout = (GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) ? CVuikLib::SetLayout(0) : CVuikLib::GetLayout();
        DrawBackBuffer(paint.hdc, client, paint.rcPaint);
        CVuikLib::SetLayout(layout);
    } else {
        DrawPlaceHolder(paint.hdc);
    }
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikComboBoxCtrl::OnMeasureItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikComboBoxCtrl::OnDrawItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DRAWITEMSTRUCT* item = reinterpret_cast<DRAWITEMSTRUCT*>(lParam);
    if (!item)
        return 0;
    if (item->CtlType != ODT_LISTBOX) {
        // The closed control's own item, handed back by a parent that reflects owner drawing: the picture
        // of the whole control shows it.
        if (item->CtlType == ODT_COMBOBOX && item->hwndItem == hwnd) {
            Refresh(FALSE);
            return TRUE;
        }
        return CallSuperWindowProc(hwnd, message, wParam, lParam);
    }
    if (!m_pSkin || !wParam)
        return 0;
    HDC dc = item->hDC;
    const bool selected = (item->itemState & ODS_SELECTED) != 0;
    const COLORREF fill = selected ? kListSelected : kListNormal;
    {
        zcmod::BrushHandle brush(CreateSolidBrush(fill));
        zcmod::UniqueHandle<zcmod::GdiObjectTraits<HPEN>> pen(CreatePen(PS_SOLID, 1, fill));
        SelectGuard selectBrush(dc, brush.Get());
        SelectGuard selectPen(dc, pen.Get());
        Rectangle(dc, item->rcItem.left, item->rcItem.top, item->rcItem.right, item->rcItem.bottom);
    }
    if (static_cast<int>(item->itemID) < 0)
        return TRUE;
    RECT area = item->rcItem;
    area.left += kTextInset;
    std::wstring text;
    if (m_hComboBoxEx) {
        ExItem ex;
        if (GetExItem(m_hComboBoxEx, static_cast<int>(item->itemID), &ex)) {
            area.left += kIndentStep * ex.indent;
            const int icon = DrawExIcon(m_hComboBoxEx, dc, ex.image, area.left, area.top, area.bottom, false);
            if (icon)
                area.left += icon + kIconGap;
            text = ex.text;
        }
    } else {
        text = GetComboText(hwnd, static_cast<int>(item->itemID));
    }
    if (!text.empty()) {
        const int oldMode = SetBkMode(dc, TRANSPARENT);
        const COLORREF oldColour = SetTextColor(dc, 0);
        UINT format = kTextFormat;
        if (CVuikLib::IsLayoutRTL())
            format |= DT_RTLREADING;
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &area, format);
        SetTextColor(dc, oldColour);
        SetBkMode(dc, oldMode);
    }
    return TRUE;
}

LRESULT CVuikComboBoxCtrl::OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!m_bTracking) {
        TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, hwnd, 0};
        m_bTracking = TrackMouseEvent(&track) != FALSE;
    }
    if (m_eState != COMBOBOX_STATE_HOVER) {
        m_eState = COMBOBOX_STATE_HOVER;
        Refresh(TRUE);
    }
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikComboBoxCtrl::OnMouseLeave(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    m_bTracking = false;
    if (m_eState != COMBOBOX_STATE_NORMAL) {
        m_eState = COMBOBOX_STATE_NORMAL;
        Refresh(TRUE);
    }
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikComboBoxCtrl::OnLButtonUp(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_eState != COMBOBOX_STATE_NORMAL) {
        m_eState = COMBOBOX_STATE_NORMAL;
        Refresh(TRUE);
    }
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikComboBoxCtrl::OnLButtonDown(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_bTracking) {
        TRACKMOUSEEVENT track = {sizeof(track), TME_CANCEL | TME_LEAVE, hwnd, 0};
        TrackMouseEvent(&track);
        m_bTracking = false;
    }
    if (m_eState != COMBOBOX_STATE_PRESSED) {
        m_eState = COMBOBOX_STATE_PRESSED;
        Refresh(TRUE);
    }
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikComboBoxCtrl::OnSetFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    m_bFocus = true;
    Refresh(TRUE);
    const LRESULT result = CallQuietly(hwnd, message, wParam, lParam);
    Refresh(TRUE);
    return result;
}

LRESULT CVuikComboBoxCtrl::OnKillFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    m_bFocus = false;
    Refresh(TRUE);
    const LRESULT result = CallQuietly(hwnd, message, wParam, lParam);
    Refresh(TRUE);
    return result;
}

LRESULT CVuikComboBoxCtrl::OnCommand(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    Refresh(TRUE);
    const LRESULT result = CallQuietly(hwnd, message, wParam, lParam);
    if (m_hList)
        InvalidateRect(m_hList, nullptr, FALSE);
    return result;
}

LRESULT CALLBACK CVuikComboBoxCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikComboBoxCtrl* self = reinterpret_cast<CVuikComboBoxCtrl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (!self || self->m_hWnd != hwnd)
        return self ? self->CallSuperWindowProc(hwnd, message, wParam, lParam) : DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_CREATE:
            return self->OnCreate(hwnd, message, wParam, lParam);
        case WM_DESTROY:
            return self->OnDestroy(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_PAINT:
            return self->OnPaint(hwnd, message, wParam, lParam);
        case WM_DRAWITEM:
        case OCM_DRAWITEM:
            return self->OnDrawItem(hwnd, WM_DRAWITEM, wParam, lParam);
        case WM_MEASUREITEM:
            return self->OnMeasureItem(hwnd, message, wParam, lParam);
        case WM_MOUSEMOVE:
            return self->OnMouseMove(hwnd, message, wParam, lParam);
        case WM_MOUSELEAVE:
            return self->OnMouseLeave(hwnd, message, wParam, lParam);
        case WM_SETFOCUS:
            return self->OnSetFocus(hwnd, message, wParam, lParam);
        case WM_KILLFOCUS:
            return self->OnKillFocus(hwnd, message, wParam, lParam);
        case WM_LBUTTONDOWN:
            return self->OnLButtonDown(hwnd, message, wParam, lParam);
        case WM_LBUTTONUP:
            return self->OnLButtonUp(hwnd, message, wParam, lParam);
        case WM_COMMAND:
            return self->OnCommand(hwnd, message, wParam, lParam);
        case CB_ADDSTRING:
        case CB_DELETESTRING:
        case CB_INSERTSTRING:
        case CB_RESETCONTENT:
        case CB_SETCURSEL:
        case CB_SETTOPINDEX:
            self->Refresh(TRUE);
            return self->CallQuietly(hwnd, message, wParam, lParam);
        case WM_ENABLE:
        case WM_SETFONT:
        case WM_SIZE:
            self->Refresh(TRUE);
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
