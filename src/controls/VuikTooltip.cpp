#include "zcmod/VuikTooltip.h"

#include <commctrl.h>
#include <objidl.h>  // PROPID, which a lean windows.h leaves out

#include <gdiplus.h>

#include <cwchar>
#include <new>

#include "frame/GdiPlus.h"
#include "frame/Handles.h"
#include "zcmod/ResHandler.h"
#include "zcmod/VuikLib.h"

using zcmod::SelectGuard;
using zcmod::WindowDC;

namespace {

const Gdiplus::ARGB kGradientTop = 0xFFF8F8F8;
const Gdiplus::ARGB kGradientBottom = 0xFFE7E7E7;
// The TOOLINFO of the tooltip messages, all fields up to lpReserved.
const UINT kToolInfoSize = 72;
static_assert(sizeof(TOOLINFOW) == kToolInfoSize, "TOOLINFOW has its full size on x64");

HWND ManagerWindow(HWND topLevel)
{
    return topLevel ? static_cast<HWND>(GetPropW(topLevel, VUIK_PROP_TOOLTIP_WINDOW)) : nullptr;
}

int* ManagerCount(HWND topLevel)
{
    return topLevel ? static_cast<int*>(GetPropW(topLevel, VUIK_PROP_TOOLTIP_COUNT)) : nullptr;
}

wchar_t* CopyText(const wchar_t* text)
{
    const size_t length = wcslen(text);
    wchar_t* copy = new (std::nothrow) wchar_t[length + 1];
    if (copy)
        wmemcpy(copy, text, length + 1);
    return copy;
}

void FillGradient(HDC dc, const RECT& area)
{
    if (!zcmod::EnsureGdiPlus())
        return;
    using namespace Gdiplus;
    using namespace Gdiplus::DllExports;
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    if (width <= 0 || height <= 0)
        return;
    GpGraphics* graphics = nullptr;
    if (GdipCreateFromHDC(dc, &graphics) != Ok)
        return;
    const GpRect bounds(area.left, area.top, width, height);
    GpLineGradient* brush = nullptr;
    // Top to bottom, the gradient at 90 degrees; the vertical mode says so without the angle arithmetic,
    // which some GDI+ implementations scale by the width.
    if (GdipCreateLineBrushFromRectI(&bounds, kGradientTop, kGradientBottom, LinearGradientModeVertical, WrapModeTile,
                                     &brush) == Ok) {
        GdipFillRectangleI(graphics, brush, area.left, area.top, width, height);
        GdipDeleteBrush(brush);
    }
    GdipDeleteGraphics(graphics);
}

}  // namespace

CVuikTooltip::CVuikTooltip() : m_hTopLevel(nullptr), m_hInstance(nullptr), m_hFont(nullptr), m_pszText(nullptr)
{
    LOGFONTW font;
    DkhLoadFont(&font);  // registers the suite's fonts once and names the face
    font.lfHeight = 14;
    font.lfWeight = 500;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = 5;
    m_hFont = CreateFontIndirectW(&font);
}

CVuikTooltip::~CVuikTooltip()
{
    delete[] m_pszText;
    m_pszText = nullptr;
    if (m_hFont)
        DeleteObject(m_hFont);
    m_hFont = nullptr;
}

bool CVuikTooltip::InitializeTooltipManager(HWND hwnd)
{
    m_hTopLevel = hwnd ? GetAncestor(hwnd, GA_ROOT) : nullptr;
    if (!m_hTopLevel)
        return false;
    HWND existing = ManagerWindow(m_hTopLevel);
    if (existing && IsWindow(existing))
        return true;

    m_hInstance = CVuikLib::GetInstance() ? CVuikLib::GetInstance() : GetModuleHandleW(nullptr);
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    HWND tip = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, TTS_NOPREFIX, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                               CW_USEDEFAULT, m_hTopLevel, nullptr, m_hInstance, nullptr);
    if (!tip)
        return false;
    // The shadow is a class style: it reaches every tooltip of the process.
    SetClassLongPtrW(tip, GCL_STYLE, GetClassLongPtrW(tip, GCL_STYLE) | CS_DROPSHADOW);
    SetWindowPos(tip, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    // A count left behind by a manager whose window died with its owner is replaced.
    delete ManagerCount(m_hTopLevel);
    RemovePropW(m_hTopLevel, VUIK_PROP_TOOLTIP_COUNT);
    int* count = new (std::nothrow) int(0);
    if (!count || !SetPropW(m_hTopLevel, VUIK_PROP_TOOLTIP_WINDOW, tip) ||
        !SetPropW(m_hTopLevel, VUIK_PROP_TOOLTIP_COUNT, count)) {
        delete count;
        RemovePropW(m_hTopLevel, VUIK_PROP_TOOLTIP_WINDOW);
        RemovePropW(m_hTopLevel, VUIK_PROP_TOOLTIP_COUNT);
        DestroyWindow(tip);
        return false;
    }
    return true;
}

void CVuikTooltip::DestroyTooltipManager()
{
    if (!m_hTopLevel)
        return;
    HWND tip = ManagerWindow(m_hTopLevel);
    if (tip && IsWindow(tip))
        DestroyWindow(tip);
    RemovePropW(m_hTopLevel, VUIK_PROP_TOOLTIP_WINDOW);
    int* count = ManagerCount(m_hTopLevel);
    if (count && *count == 0) {
        delete count;
        RemovePropW(m_hTopLevel, VUIK_PROP_TOOLTIP_COUNT);
    }
}

void CVuikTooltip::SetTooltip(HWND hwnd, const wchar_t* text)
{
    if (!hwnd || !IsWindow(hwnd) || !InitializeTooltipManager(hwnd))
        return;
    delete[] m_pszText;
    m_pszText = nullptr;
    if (!text) {
        UnregisterToolWindow(hwnd);
        return;
    }
    m_pszText = CopyText(text);
    // A registered control asks for the text at each show: nothing more to do.
    if (GetPropW(hwnd, VUIK_PROP_TOOLTIP_CLASS) && GetPropW(hwnd, VUIK_PROP_TOOLTIP_ORGPROC))
        return;
    RegisterToolWindow(hwnd);
}

bool CVuikTooltip::RegisterToolWindow(HWND hwnd)
{
    HWND tip = ManagerWindow(m_hTopLevel);
    int* count = ManagerCount(m_hTopLevel);
    if (!tip || !count)
        return false;
    const LONG_PTR previous = GetWindowLongPtrW(hwnd, GWLP_WNDPROC);
    if (!previous || !SetPropW(hwnd, VUIK_PROP_TOOLTIP_CLASS, this) ||
        !SetPropW(hwnd, VUIK_PROP_TOOLTIP_ORGPROC, reinterpret_cast<HANDLE>(previous))) {
        RemovePropW(hwnd, VUIK_PROP_TOOLTIP_CLASS);
        return false;
    }
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(TooltipNotificationProc));

    TOOLINFOW tool = {};
    tool.cbSize = kToolInfoSize;
    tool.uFlags = TTF_SUBCLASS | (CVuikLib::IsLayoutRTL() ? TTF_RTLREADING : 0);
    tool.hwnd = hwnd;
    tool.uId = static_cast<UINT_PTR>(GetDlgCtrlID(hwnd));
    tool.hinst = m_hInstance;
    tool.lpszText = LPSTR_TEXTCALLBACKW;
    GetClientRect(hwnd, &tool.rect);
    if (!SendMessageW(tip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool))) {
        // A control whose registration failed keeps its own procedure and doesn't count.
        SetWindowLongPtrW(hwnd, GWLP_WNDPROC, previous);
        RemovePropW(hwnd, VUIK_PROP_TOOLTIP_CLASS);
        RemovePropW(hwnd, VUIK_PROP_TOOLTIP_ORGPROC);
        return false;
    }
    ++*count;
    return true;
}

void CVuikTooltip::UnregisterToolWindow(HWND hwnd)
{
    if (!hwnd)
        return;
    HANDLE original = GetPropW(hwnd, VUIK_PROP_TOOLTIP_ORGPROC);
    if (!original)
        return;  // never registered (or already removed): nothing to count down
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original));
    RemovePropW(hwnd, VUIK_PROP_TOOLTIP_CLASS);
    RemovePropW(hwnd, VUIK_PROP_TOOLTIP_ORGPROC);

    HWND top = m_hTopLevel ? m_hTopLevel : GetAncestor(hwnd, GA_ROOT);
    m_hTopLevel = top;
    HWND tip = ManagerWindow(top);
    if (tip && IsWindow(tip)) {
        // The tool was added with the control id; this asks for the window handle as the id, so the platform
        // doesn't find the tool and it stays until the shared window goes.
        TOOLINFOW tool = {};
        tool.cbSize = kToolInfoSize;
        tool.hwnd = hwnd;
        tool.uId = reinterpret_cast<UINT_PTR>(hwnd);
        SendMessageW(tip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
    int* count = ManagerCount(top);
    if (count && --*count <= 0) {
        *count = 0;
        DestroyTooltipManager();
    }
}

LRESULT CALLBACK CVuikTooltip::TooltipNotificationProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikTooltip* self = static_cast<CVuikTooltip*>(GetPropW(hwnd, VUIK_PROP_TOOLTIP_CLASS));
    WNDPROC original = reinterpret_cast<WNDPROC>(GetPropW(hwnd, VUIK_PROP_TOOLTIP_ORGPROC));
    if (message == WM_NOTIFY && self && lParam) {
        const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
        // Only the shared tooltip's notifications: a control's own children keep theirs.
        if (header->hwndFrom && header->hwndFrom == ManagerWindow(GetAncestor(hwnd, GA_ROOT))) {
            switch (header->code) {
                case TTN_GETDISPINFOW:
                    return self->OnTTNGetDispInfo(wParam, lParam);
                case TTN_SHOW:
                    return self->OnTTNShow(wParam, lParam);
                case NM_CUSTOMDRAW:
                    return self->OnTTNCustomDraw(wParam, lParam);
                default:
                    break;
            }
        }
    }
    return original ? CallWindowProcW(original, hwnd, message, wParam, lParam)
                    : DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CVuikTooltip::OnTTNGetDispInfo(WPARAM, LPARAM lParam)
{
    NMTTDISPINFOW* info = reinterpret_cast<NMTTDISPINFOW*>(lParam);
    if (info)
        info->lpszText = m_pszText;
    return 0;
}

LRESULT CVuikTooltip::OnTTNShow(WPARAM, LPARAM lParam)
{
    const NMHDR* header = reinterpret_cast<const NMHDR*>(lParam);
    HWND tip = header ? header->hwndFrom : nullptr;
    if (!tip || !IsWindow(tip))
        return 0;
    // No width limit and no word break: lines end only at line breaks.
    RECT text = {0, 0, 0, 0};
    {
        WindowDC dc(tip);
        SelectGuard font(dc.Get(), m_hFont);
        DrawTextW(dc.Get(), m_pszText ? m_pszText : L"", -1, &text, DT_CALCRECT);
    }
    const int width = text.right - text.left + 20;
    const int height = text.bottom - text.top + 20;
    RECT place;
    GetWindowRect(tip, &place);
    int top = place.top;
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    HMONITOR screen = MonitorFromWindow(tip, MONITOR_DEFAULTTONEAREST);
    if (screen && GetMonitorInfoW(screen, &monitor) && top + height > monitor.rcWork.bottom - 5) {
        POINT cursor = {};
        GetCursorPos(&cursor);
        top = cursor.y - height;
    }
    SetWindowPos(tip, nullptr, place.left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    return 1;  // the platform keeps this position
}

LRESULT CVuikTooltip::OnTTNCustomDraw(WPARAM, LPARAM lParam)
{
    NMTTCUSTOMDRAW* draw = reinterpret_cast<NMTTCUSTOMDRAW*>(lParam);
    if (!draw)
        return 0;
    HDC dc = draw->nmcd.hdc;
    RECT client = {};
    GetClientRect(draw->nmcd.hdr.hwndFrom, &client);
    switch (draw->nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
            // The platform paints nothing: the whole client area is out of the clip.
            ExcludeClipRect(dc, client.left, client.top, client.right, client.bottom);
            return CDRF_NOTIFYPOSTPAINT;
        case CDDS_POSTPAINT: {
            SelectClipRgn(dc, nullptr);
            FillGradient(dc, client);
            const COLORREF oldColour = SetTextColor(dc, m_crTextColor);
            SetBkMode(dc, TRANSPARENT);
            SelectGuard font(dc, m_hFont);
            const wchar_t* text = m_pszText ? m_pszText : L"";
            RECT place = {0, 0, 0, 0};
            DrawTextW(dc, text, -1, &place, DT_CALCRECT);
            OffsetRect(&place, client.left + (client.right - client.left - (place.right - place.left)) / 2,
                       client.top + (client.bottom - client.top - (place.bottom - place.top)) / 2);
            DrawTextW(dc, text, -1, &place, 0);
            SetTextColor(dc, oldColour);
            return CDRF_SKIPDEFAULT;
        }
        default:
            return 0;
    }
}
