#include "zcmod/VuikTabCtrl.h"

#include <algorithm>
#include <vector>

#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

CVuikTabSkinDef CVuikTabSkin::m_DefaultSkinDef;

namespace {

// Tabs of rows behind the front one reach this much lower, under the row in front of them.
const int kBackRowExtra = 6;
// Unselected tabs start this much below the top of their rectangle: the selected one stands higher.
const int kUnselectedDrop = 4;
// The label buffer of one tab.
const int kTextCapacity = 256;
// Centred on one line, with an ellipsis where it doesn't fit.
const UINT kTextFormat = DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS;

DWORD SwapRedBlue(DWORD colour)
{
    return (colour & 0xFF00FF00u) | ((colour & 0xFFu) << 16) | ((colour >> 16) & 0xFFu);
}

int Width(const CVuikBitmap* b)
{
    return b ? b->GetWidth() : 0;
}

int Height(const CVuikBitmap* b)
{
    return b ? b->GetHeight() : 0;
}

RECT Rect(int left, int top, int right, int bottom)
{
    RECT r = {left, top, right, bottom};
    return r;
}

// Every tab of the control, in the order in which they are painted: rows from the top down (ascending
// bottom), and in their own order inside a row.
std::vector<CTabItem> CollectTabs(HWND hwnd)
{
    std::vector<CTabItem> tabs;
    const int count = static_cast<int>(SendMessageW(hwnd, TCM_GETITEMCOUNT, 0, 0));
    const int selected = static_cast<int>(SendMessageW(hwnd, TCM_GETCURSEL, 0, 0));
    if (count <= 0)
        return tabs;
    std::vector<RECT> rects(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        RECT& r = rects[static_cast<size_t>(i)];
        if (!SendMessageW(hwnd, TCM_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&r)))
            r = Rect(0, 0, 0, 0);
    }
    const bool hasSelection = selected >= 0 && selected < count;
    const LONG selectedBottom = hasSelection ? rects[static_cast<size_t>(selected)].bottom : 0;
    tabs.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        CTabItem& tab = tabs[static_cast<size_t>(i)];
        tab.m_nIndex = i;
        tab.m_rcItem = rects[static_cast<size_t>(i)];
        tab.m_bSelected = i == selected;
        tab.m_bInSelectedRow = hasSelection && tab.m_rcItem.bottom == selectedBottom;
        tab.m_bFirst = i == 0 || rects[static_cast<size_t>(i - 1)].bottom != tab.m_rcItem.bottom;
        tab.m_bLast = i == count - 1 || rects[static_cast<size_t>(i + 1)].bottom != tab.m_rcItem.bottom;
        wchar_t text[kTextCapacity] = {};
        TCITEMW item = {};
        item.mask = TCIF_TEXT;
        item.pszText = text;
        item.cchTextMax = kTextCapacity;
        if (SendMessageW(hwnd, TCM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item))) {
            text[kTextCapacity - 1] = 0;
            // The control may answer with a pointer of its own instead of filling the buffer.
            tab.m_strText = item.pszText ? item.pszText : L"";
        }
    }
    std::stable_sort(tabs.begin(), tabs.end(),
                     [](const CTabItem& a, const CTabItem& b) { return a.m_rcItem.bottom < b.m_rcItem.bottom; });
    return tabs;
}

}  // namespace

// ---- CVuikTabSkin ------------------------------------------------------------------------------------------

CVuikTabSkin::CVuikTabSkin() : m_crBackground(0xF0E6E6)
{
    m_SkinDef = m_DefaultSkinDef;
    std::fill(m_pFrameBitmaps, m_pFrameBitmaps + TAB_PIECE_COUNT, nullptr);
}

CVuikTabSkin::~CVuikTabSkin()
{
    Unload();
}

void CVuikTabSkin::Load()
{
    Unload();
    // The pieces stay as drawn: a right-to-left tab control is mirrored by the platform, pieces and all. The
    // flag turns back what a load in a right-to-left layout turns round.
    const int mirror = CVuikLib::IsLayoutRTL() ? 1 : 0;
    for (int i = 0; i < TAB_PIECE_COUNT; ++i)
        if (m_SkinDef.m_nFrameBitmapIds[i])
            CVuikResourceManager::LoadBitmapW(&m_pFrameBitmaps[i], CVuikLib::GetResourceInstance(),
                                              m_SkinDef.m_nFrameBitmapIds[i], mirror, nullptr);
    Validate();
}

void CVuikTabSkin::Unload()
{
    for (CVuikBitmap*& piece : m_pFrameBitmaps)
        if (piece)
            CVuikResourceManager::UnloadBitmap(&piece);
}

void CVuikTabSkin::Validate()
{
    m_nStatus = StatusValid;
    for (int i = 0; i < TAB_PIECE_COUNT; ++i)
        if (i != TAB_PIECE_SPARE && i != TAB_PIECE_TOP && !m_pFrameBitmaps[i])
            m_nStatus = StatusInvalid;
}

DWORD CVuikTabSkin::GetBackgroundColor()
{
    CVuikBitmap* middle = m_pFrameBitmaps[TAB_PIECE_SELECTED_MIDDLE];
    m_crBackground = middle ? middle->GetPixel(middle->GetWidth() - 1, middle->GetHeight() - 1) : 0xFFFFFFFF;
    return m_crBackground;
}

void CVuikTabSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!window || !graphics || !window->m_hWnd)
        return;
    HWND hwnd = window->m_hWnd;
    HDC dc = *graphics;
    CVuikBitmap* const* p = m_pFrameBitmaps;
    const std::vector<CTabItem> tabs = CollectTabs(hwnd);

    // Measure: the strip of tabs runs from `top` to `bottom`, where the panel begins.
    int top = 0;
    int bottom = 0;
    if (!tabs.empty()) {
        top = tabs.front().m_rcItem.top;
        bottom = tabs.front().m_rcItem.bottom;
        for (const CTabItem& tab : tabs) {
            top = std::min<int>(top, tab.m_rcItem.top);
            bottom = std::max<int>(bottom, tab.m_rcItem.bottom);
        }
    }
    bool multi = false;
    for (const CTabItem& tab : tabs)
        if (tab.m_nIndex == static_cast<int>(tabs.size()) - 1)
            multi = tab.m_rcItem.bottom - tab.m_rcItem.top < bottom - top;

    // The panel, each piece from its whole picture.
    const int W = width;
    const int H = height;
    graphics->DrawImage(p[TAB_PIECE_TOP],
                        Rect(0, bottom - 1, W - Width(p[TAB_PIECE_TOP_RIGHT]), bottom - 1 + Height(p[TAB_PIECE_TOP])));
    graphics->DrawImage(p[TAB_PIECE_LEFT],
                        Rect(0, bottom - 1, Width(p[TAB_PIECE_LEFT]), H - Height(p[TAB_PIECE_BOTTOM_LEFT])));
    graphics->DrawImage(p[TAB_PIECE_TOP_RIGHT], W - Width(p[TAB_PIECE_TOP_RIGHT]), multi ? bottom - 3 : bottom - 1);
    graphics->DrawImage(p[TAB_PIECE_BOTTOM_LEFT], 0, H - Height(p[TAB_PIECE_BOTTOM_LEFT]));
    graphics->DrawImage(p[TAB_PIECE_BOTTOM], Rect(Width(p[TAB_PIECE_BOTTOM_LEFT]), H - Height(p[TAB_PIECE_BOTTOM]),
                                                  W - Width(p[TAB_PIECE_BOTTOM_RIGHT]), H));
    graphics->DrawImage(p[TAB_PIECE_BOTTOM_RIGHT], W - Width(p[TAB_PIECE_BOTTOM_RIGHT]),
                        H - Height(p[TAB_PIECE_BOTTOM_RIGHT]));
    graphics->DrawImage(p[TAB_PIECE_RIGHT],
                        Rect(W - Width(p[TAB_PIECE_RIGHT]), bottom - 3 + Height(p[TAB_PIECE_TOP_RIGHT]), W,
                             H - Height(p[TAB_PIECE_BOTTOM_RIGHT])));

    // The interior, in the colour of the selected tab's middle, so that the selected tab and the panel are one.
    const DWORD raw = GetBackgroundColor();
    m_crBackground = SwapRedBlue(raw);
    RECT interior;
    GetClientRect(hwnd, &interior);
    interior.left += Width(p[TAB_PIECE_LEFT]);
    interior.top = bottom + 1;
    interior.right -= Width(p[TAB_PIECE_RIGHT]);
    interior.bottom -= Height(p[TAB_PIECE_BOTTOM]);
    if (raw != 0xFFFFFFFF && interior.right > interior.left && interior.bottom > interior.top) {
        zcmod::BrushHandle brush(CreateSolidBrush(m_crBackground));
        if (brush)
            FillRect(dc, &interior, brush.Get());
    }

    // The tabs, row by row from the top.
    for (size_t n = 0; n < tabs.size(); ++n) {
        const CTabItem& tab = tabs[n];
        const RECT& r = tab.m_rcItem;
        const int x = r.left - 2;
        const int y = multi ? r.top - 3 : r.top;
        const int extra = tab.m_bInSelectedRow ? 0 : kBackRowExtra;
        // The tab painted after this one in the same row, if it is the selected one.
        const bool nextSelected =
            !tab.m_bLast && n + 1 < tabs.size() && tabs[n + 1].m_bSelected;
        if (!tab.m_bSelected) {
            SetTextColor(dc, m_SkinDef.m_crText);
            const int uy = y + kUnselectedDrop;
            int lw = Width(p[TAB_PIECE_SEPARATOR]) / 2;
            if (tab.m_bFirst) {
                CVuikBitmap* left = p[TAB_PIECE_LEFT_END];
                graphics->DrawImage(left, Rect(x, uy, 2 * x + Width(left), uy + Height(left) + extra));
                lw = Width(left);
            }
            int right;
            if (tab.m_bLast)
                right = r.right - Width(p[TAB_PIECE_RIGHT_END]);
            else if (nextSelected)
                right = r.right - Width(p[TAB_PIECE_INTO_SELECTED]) / 2;
            else
                right = r.right - Width(p[TAB_PIECE_SEPARATOR]) / 2;
            CVuikBitmap* middle = p[TAB_PIECE_MIDDLE];
            graphics->DrawImage(middle, Rect(x + lw, uy, right, uy + Height(middle) + extra));
            CVuikBitmap* end = tab.m_bLast ? p[TAB_PIECE_RIGHT_END]
                                           : nextSelected ? p[TAB_PIECE_INTO_SELECTED] : p[TAB_PIECE_SEPARATOR];
            const int ey = (!tab.m_bLast && nextSelected) ? y : uy;
            graphics->DrawImage(end, Rect(right, ey, right + Width(end), ey + Height(end) + extra));
        } else {
            SetTextColor(dc, m_SkinDef.m_crSelectedText);
            int lw = Width(p[TAB_PIECE_INTO_SELECTED]) / 2;
            if (tab.m_bFirst) {
                CVuikBitmap* left = p[TAB_PIECE_SELECTED_LEFT];
                graphics->DrawImage(left, Rect(x, y, x + Width(left) + 2, y + Height(left)));
                lw = Width(left);
            }
            const int right = tab.m_bLast ? r.right - Width(p[TAB_PIECE_SELECTED_RIGHT])
                                          : r.right - Width(p[TAB_PIECE_OUT_OF_SELECTED]) / 2;
            CVuikBitmap* middle = p[TAB_PIECE_SELECTED_MIDDLE];
            graphics->DrawImage(middle, Rect(x + lw, y, right, y + Height(middle)));
            if (!tab.m_bLast)
                graphics->DrawImage(p[TAB_PIECE_OUT_OF_SELECTED], right, y);
            else if (!multi)
                graphics->DrawImage(p[TAB_PIECE_SELECTED_RIGHT], right, y);
            else
                graphics->DrawImage(p[TAB_PIECE_TOP_RIGHT], r.right - Width(p[TAB_PIECE_TOP_RIGHT]) + 2, y);
        }
    }

    // The labels, in index order, in the colour the last tab above left behind. A right-to-left window is
    // mirrored on its way to the screen: its labels go into the buffer mirrored, so that they read right.
    const bool rtl = (GetWindowLongW(hwnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0;
    if (!rtl) {
        DrawLabels(dc, tabs, GetFocus() == hwnd, 0);
        return;
    }
    zcmod::MemoryDC mirrored(CreateCompatibleDC(dc));
    zcmod::BitmapHandle picture(CreateCompatibleBitmap(dc, width, height));
    if (!mirrored || !picture)
        return;
    {
        zcmod::SelectGuard select(mirrored.Get(), picture.Get());
        BitBlt(mirrored.Get(), 0, 0, width, height, dc, 0, 0, SRCCOPY);
    }
    CVuikLib::MirrorBitmap(picture.Get());
    {
        zcmod::SelectGuard select(mirrored.Get(), picture.Get());
        SetTextColor(mirrored.Get(), GetTextColor(dc));
        DrawLabels(mirrored.Get(), tabs, GetFocus() == hwnd, width);
    }
    CVuikLib::MirrorBitmap(picture.Get());
    zcmod::SelectGuard select(mirrored.Get(), picture.Get());
    BitBlt(dc, 0, 0, width, height, mirrored.Get(), 0, 0, SRCCOPY);
}

void CVuikTabSkin::DrawLabels(HDC dc, const std::vector<CTabItem>& tabs, bool focused, int mirrorWidth)
{
    std::vector<const CTabItem*> byIndex(tabs.size(), nullptr);
    for (const CTabItem& tab : tabs)
        byIndex[static_cast<size_t>(tab.m_nIndex)] = &tab;
    const int oldMode = SetBkMode(dc, TRANSPARENT);
    HGDIOBJ oldFont = GetCurrentObject(dc, OBJ_FONT);
    for (const CTabItem* tab : byIndex) {
        RECT r = tab->m_rcItem;
        HFONT font = tab->m_bSelected ? m_SkinDef.m_hSelectedFont : m_SkinDef.m_hFont;
        if (font)
            SelectObject(dc, font);
        if (tab->m_bSelected)
            OffsetRect(&r, 0, -2);
        if (tab->m_nIndex == 0)
            r.left = 0;
        if (mirrorWidth)
            r = Rect(mirrorWidth - r.right, r.top, mirrorWidth - r.left, r.bottom);
        DrawTextW(dc, tab->m_strText.c_str(), static_cast<int>(tab->m_strText.size()), &r, kTextFormat);
        if (tab->m_bSelected && focused) {
            InflateRect(&r, -3, -3);
            DrawFocusRect(dc, &r);
        }
    }
    SelectObject(dc, oldFont);
    SetBkMode(dc, oldMode);
}

// ---- CVuikTabCtrl ------------------------------------------------------------------------------------------

CVuikTabCtrl::CVuikTabCtrl() : m_nLastSel(-1)
{
    m_pfnWindowProc = WindowProc;
}

CVuikTabCtrl::~CVuikTabCtrl() {}

HWND CVuikTabCtrl::Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle)
{
    INITCOMMONCONTROLSEX init = {sizeof(init), ICC_TAB_CLASSES};
    InitCommonControlsEx(&init);
    m_nLastSel = -1;
    return CVuikWindowImpl<CVuikTabSkin>::Create(GetWndClassName(), parent, rect, L"", id,
                                                 style | TCS_OWNERDRAWFIXED, exStyle, nullptr);
}

BOOL CVuikTabCtrl::SubclassWindow(HWND window)
{
    if (!CVuikWindowImpl<CVuikTabSkin>::SubclassWindow(window))
        return 0;
    m_nLastSel = -1;
    SetWindowLongPtrW(window, GWL_STYLE, GetWindowLongPtrW(window, GWL_STYLE) | TCS_OWNERDRAWFIXED);
    SetMinTabWidth(50);
    SIZE size = {0, 24};
    SetItemSize(size);
    return 1;
}

void CVuikTabCtrl::CreateBackBuffer(int width, int height, CVuikGraphics* graphics)
{
    // Drawn left to right and never turned round here: in a right-to-left window the platform mirrors the
    // control as it reaches the screen, as it mirrors the tabs' places and their hit testing.
    const DWORD layout = CVuikLib::SetLayout(0);
    CVuikWindowImpl<CVuikTabSkin>::CreateBackBuffer(width, height, graphics);
    CVuikLib::SetLayout(layout);
}

LRESULT CVuikTabCtrl::OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    // The buffer covers the whole window; without a skin the platform draws its own tabs.
    if (!SkinIsValid())
        return CallSuperWindowProc(hwnd, message, wParam, lParam);
    return 1;
}

LRESULT CVuikTabCtrl::OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!SkinIsValid())
        return CallSuperWindowProc(hwnd, message, wParam, lParam);
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    RECT client;
    GetClientRect(hwnd, &client);
    const int selected = GetCurSel();
    if (selected != m_nLastSel) {
        m_nLastSel = selected;
        DeleteBackBuffer();
        // A selected tab stands higher than the others: what lay behind the old one comes from the parent,
        // from the top of the client area down to the bottom of the first tab.
        HWND parent = GetParent(hwnd);
        RECT first = {};
        GetItemRect(0, &first);
        if (parent) {
            PAINTSTRUCT strip = paint;
            strip.rcPaint = Rect(client.left, client.top, client.right, first.bottom);
            SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&strip));
        }
    }
    DrawBackBuffer(paint.hdc, client, paint.rcPaint);
    EndPaint(hwnd, &paint);
    return 0;
}

LRESULT CVuikTabCtrl::OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikTabCtrl::OnGetBkclr(HWND, UINT, WPARAM, LPARAM)
{
    if (!m_pSkin)
        return 0;
    return static_cast<LRESULT>(SwapRedBlue(m_pSkin->GetBackgroundColor()));
}

LRESULT CVuikTabCtrl::OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return CVuikWindowImpl<CVuikTabSkin>::OnRepaint(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK CVuikTabCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikTabCtrl* self =
        static_cast<CVuikTabCtrl*>(reinterpret_cast<CVuikWindowImpl<CVuikTabSkin>*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA)));
    if (!self)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_DESTROY:
            self->DeleteBackBuffer();
            break;
        case WM_SIZE:
            return self->OnSize(hwnd, message, wParam, lParam);
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            self->DeleteBackBuffer();
            InvalidateRect(hwnd, nullptr, TRUE);
            UpdateWindow(hwnd);
            break;
        case WM_PAINT:
            InvalidateRect(hwnd, nullptr, FALSE);
            return self->OnPaint(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_VUIK_TAB_GETBKCLR:
            return self->OnGetBkclr(hwnd, message, wParam, lParam);
        case WM_VUIK_INVALIDATE_BACKBUFFER:
            self->DeleteBackBuffer();
            return 0;
        case WM_VUIK_REPAINT:
            return self->OnRepaint(hwnd, message, wParam, lParam);
        case TCM_INSERTITEMA:
        case TCM_INSERTITEMW:
        case TCM_SETITEMA:
        case TCM_SETITEMW:
        case TCM_DELETEITEM:
        case TCM_DELETEALLITEMS:
        case TCM_SETITEMSIZE:
        case TCM_SETPADDING:
        case TCM_HIGHLIGHTITEM:
        case WM_SETFONT: {
            // The platform repaints what these change; the buffer must not show the old tabs.
            const LRESULT result = self->CallSuperWindowProc(hwnd, message, wParam, lParam);
            self->DeleteBackBuffer();
            return result;
        }
        default:
            break;
    }
    return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
}

// ---- One message each -------------------------------------------------------------------------------------

HIMAGELIST CVuikTabCtrl::GetImageList() const
{
    return reinterpret_cast<HIMAGELIST>(Send(TCM_GETIMAGELIST));
}

HIMAGELIST CVuikTabCtrl::SetImageList(HIMAGELIST imageList)
{
    return reinterpret_cast<HIMAGELIST>(Send(TCM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(imageList)));
}

int CVuikTabCtrl::GetItemCount() const
{
    return static_cast<int>(Send(TCM_GETITEMCOUNT));
}

BOOL CVuikTabCtrl::GetItem(int item, TCITEMW* info) const
{
    return static_cast<BOOL>(Send(TCM_GETITEMW, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(info)));
}

BOOL CVuikTabCtrl::SetItem(int item, TCITEMW* info)
{
    return static_cast<BOOL>(Send(TCM_SETITEMW, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(info)));
}

BOOL CVuikTabCtrl::GetItemRect(int item, RECT* rect) const
{
    return static_cast<BOOL>(Send(TCM_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(rect)));
}

int CVuikTabCtrl::GetCurSel() const
{
    return static_cast<int>(Send(TCM_GETCURSEL));
}

int CVuikTabCtrl::SetCurSel(int item)
{
    return static_cast<int>(Send(TCM_SETCURSEL, static_cast<WPARAM>(item)));
}

SIZE CVuikTabCtrl::SetItemSize(SIZE size)
{
    const DWORD old = static_cast<DWORD>(Send(TCM_SETITEMSIZE, 0, MAKELPARAM(size.cx, size.cy)));
    SIZE result = {LOWORD(old), HIWORD(old)};
    return result;
}

void CVuikTabCtrl::SetPadding(SIZE size)
{
    Send(TCM_SETPADDING, 0, MAKELPARAM(size.cx, size.cy));
}

int CVuikTabCtrl::GetRowCount() const
{
    return static_cast<int>(Send(TCM_GETROWCOUNT));
}

int CVuikTabCtrl::GetCurFocus() const
{
    return static_cast<int>(Send(TCM_GETCURFOCUS));
}

void CVuikTabCtrl::SetCurFocus(int item)
{
    Send(TCM_SETCURFOCUS, static_cast<WPARAM>(item));
}

BOOL CVuikTabCtrl::SetItemExtra(int bytes)
{
    return static_cast<BOOL>(Send(TCM_SETITEMEXTRA, static_cast<WPARAM>(bytes)));
}

int CVuikTabCtrl::SetMinTabWidth(int width)
{
    return static_cast<int>(Send(TCM_SETMINTABWIDTH, 0, static_cast<LPARAM>(width)));
}

DWORD CVuikTabCtrl::GetExtendedStyle() const
{
    return static_cast<DWORD>(Send(TCM_GETEXTENDEDSTYLE));
}

DWORD CVuikTabCtrl::SetExtendedStyle(DWORD mask, DWORD style)
{
    return static_cast<DWORD>(Send(TCM_SETEXTENDEDSTYLE, mask, style));
}

BOOL CVuikTabCtrl::GetUnicodeFormat() const
{
    return static_cast<BOOL>(Send(TCM_GETUNICODEFORMAT));
}

BOOL CVuikTabCtrl::SetUnicodeFormat(BOOL unicode)
{
    return static_cast<BOOL>(Send(TCM_SETUNICODEFORMAT, static_cast<WPARAM>(unicode)));
}

int CVuikTabCtrl::InsertItem(int item, TCITEMW* info)
{
    return static_cast<int>(Send(TCM_INSERTITEMW, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(info)));
}

int CVuikTabCtrl::InsertItem(int item, const wchar_t* text)
{
    TCITEMW info = {};
    info.mask = TCIF_TEXT;
    info.pszText = const_cast<wchar_t*>(text ? text : L"");
    return InsertItem(item, &info);
}

BOOL CVuikTabCtrl::DeleteItem(int item)
{
    return static_cast<BOOL>(Send(TCM_DELETEITEM, static_cast<WPARAM>(item)));
}

BOOL CVuikTabCtrl::DeleteAllItems()
{
    return static_cast<BOOL>(Send(TCM_DELETEALLITEMS));
}

void CVuikTabCtrl::AdjustRect(BOOL larger, RECT* rect) const
{
    Send(TCM_ADJUSTRECT, static_cast<WPARAM>(larger), reinterpret_cast<LPARAM>(rect));
}

void CVuikTabCtrl::RemoveImage(int image)
{
    Send(TCM_REMOVEIMAGE, static_cast<WPARAM>(image));
}

int CVuikTabCtrl::HitTest(TCHITTESTINFO* info) const
{
    return static_cast<int>(Send(TCM_HITTEST, 0, reinterpret_cast<LPARAM>(info)));
}

void CVuikTabCtrl::DeselectAll(BOOL excludeFocus)
{
    Send(TCM_DESELECTALL, static_cast<WPARAM>(excludeFocus));
}

BOOL CVuikTabCtrl::HighlightItem(int item, BOOL highlight)
{
    return static_cast<BOOL>(Send(TCM_HIGHLIGHTITEM, static_cast<WPARAM>(item), MAKELPARAM(highlight, 0)));
}
