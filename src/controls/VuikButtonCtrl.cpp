#include "zcmod/VuikButtonCtrl.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "controls/CompositeSkin.h"
#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikMessages.h"
#include "zcmod/VuikResourceManager.h"

using namespace zcmod;

namespace {

// The platform button's answer to this message would carry a focus flag in bit 16; a platform button answers 0.
const UINT kFocusQuery = 0x439;
const UINT kCaptionFlags = DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS;  // 0x8025
const UINT kMeasureFlags = DT_CALCRECT | DT_CENTER | DT_VCENTER | DT_SINGLELINE;   // 0x425
const int kMaxMeasuredText = 256;

void Load(CVuikBitmap** slot, UINT id)
{
    if (id)
        CVuikResourceManager::LoadBitmapW(slot, CVuikLib::GetResourceInstance(), id, 0, nullptr);
}

void Unload(CVuikBitmap** slot)
{
    if (*slot)
        CVuikResourceManager::UnloadBitmap(slot);
    *slot = nullptr;
}

int WidthOf(const CVuikBitmap* bitmap) { return bitmap ? bitmap->GetWidth() : 0; }

std::wstring WindowText(HWND hwnd, int limit = -1)
{
    int length = GetWindowTextLengthW(hwnd);
    if (length <= 0)
        return std::wstring();
    if (limit >= 0)
        length = std::min(length, limit);
    std::vector<wchar_t> text(static_cast<size_t>(length) + 1);
    const int got = GetWindowTextW(hwnd, text.data(), length + 1);
    return std::wstring(text.data(), static_cast<size_t>(std::max(got, 0)));
}

CVuikButtonStateSkinDef MakeDefaultStateDef(COLORREF text, int offset)
{
    CVuikButtonStateSkinDef def = {};
    def.m_nImageAlign = CVuikButtonStateSkinDef::AlignCaption;
    def.m_nOffsetX = offset;
    def.m_nOffsetY = offset;
    def.m_crText = text;
    def.m_hFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    return def;
}

// The first of the left, middle and right pieces that exists.
CVuikBitmap* FirstPiece(const CVuikButtonStateSkin& skin)
{
    if (skin.GetLeftBitmap())
        return skin.GetLeftBitmap();
    return skin.GetMiddleBitmap() ? skin.GetMiddleBitmap() : skin.GetRightBitmap();
}

}  // namespace

// ---- CVuikButtonStateSkin ----------------------------------------------------------------------------------------

CVuikButtonStateSkin::CVuikButtonStateSkin()
    : m_pLeft(nullptr),
      m_pMiddle(nullptr),
      m_pRight(nullptr),
      m_pImage(nullptr),
      m_dwReserved(0),
      m_hRegion(nullptr),
      m_rcCaption(),
      m_rcImage()
{
}

CVuikButtonStateSkin::~CVuikButtonStateSkin() { Unload(); }

void CVuikButtonStateSkin::Load()
{
    Unload();
    ::Load(&m_pLeft, m_SkinDef.m_nLeftBitmapId);
    ::Load(&m_pMiddle, m_SkinDef.m_nMiddleBitmapId);
    ::Load(&m_pRight, m_SkinDef.m_nRightBitmapId);
    ::Load(&m_pImage, m_SkinDef.m_nImageBitmapId);
    const UINT first = m_SkinDef.m_nFirstFrameId;
    const UINT last = m_SkinDef.m_nLastFrameId;
    if (first && last && first <= last) {
        for (UINT id = first;; ++id) {
            CVuikBitmap* frame = nullptr;
            if (CVuikResourceManager::LoadBitmapW(&frame, CVuikLib::GetResourceInstance(), id, 0, nullptr) && frame)
                m_Frames.push_back(frame);
            if (id == last)  // also ends a run that reaches the largest id
                break;
        }
    }
    Validate();
}

void CVuikButtonStateSkin::Unload()
{
    ::Unload(&m_pLeft);
    ::Unload(&m_pMiddle);
    ::Unload(&m_pRight);
    ::Unload(&m_pImage);
    while (!m_Frames.empty()) {
        CVuikBitmap* frame = m_Frames.front();
        m_Frames.pop_front();
        CVuikResourceManager::UnloadBitmap(&frame);
    }
}

void CVuikButtonStateSkin::Validate()
{
    m_nStatus = StatusValid;
    const struct {
        UINT id;
        CVuikBitmap* bitmap;
    } pieces[] = {{m_SkinDef.m_nLeftBitmapId, m_pLeft},
                  {m_SkinDef.m_nMiddleBitmapId, m_pMiddle},
                  {m_SkinDef.m_nRightBitmapId, m_pRight},
                  {m_SkinDef.m_nImageBitmapId, m_pImage}};
    for (const auto& piece : pieces)
        if (piece.id && !piece.bitmap)
            m_nStatus = StatusInvalid;
    const bool frameRun = m_SkinDef.m_nFirstFrameId || m_SkinDef.m_nLastFrameId;
    if (frameRun && (m_Frames.empty() || m_SkinDef.m_nFrameTime < 1))
        m_nStatus = StatusInvalid;
}

void CVuikButtonStateSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    m_rcCaption = RECT{0, 0, width, height};
    if (m_pLeft)
        m_rcCaption.left += m_pLeft->GetWidth();
    if (m_pRight)
        m_rcCaption.right -= m_pRight->GetWidth();
    m_rcImage = m_rcCaption;
    RECT focus = m_rcCaption;
    InflateRect(&focus, 0, -2);

    HWND hwnd = window ? window->m_hWnd : nullptr;
    const RECT all = {0, 0, width, height};
    SetupRegion(hwnd, all, graphics);
    DrawBackground(window, graphics, width, height);
    if (m_SkinDef.m_nImageAlign != CVuikButtonStateSkinDef::AlignCaption && m_pImage)
        DrawImage(window, graphics, width, height);
    if (m_SkinDef.m_nImageAlign != CVuikButtonStateSkinDef::AlignImage)
        DrawCaption(window, graphics, width, height);
    if (hwnd && GetFocus() == hwnd) {
        CVuikButtonCtrlBase* button = dynamic_cast<CVuikButtonCtrlBase*>(window);
        if (button && button->QueryFocusReactive())
            DrawFocusRect(*graphics, &focus);
    }
}

void CVuikButtonStateSkin::DrawBackground(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!m_pLeft && !m_pMiddle && !m_pRight) {
        // Nothing of its own: the parent paints what lies under the button.
        HWND hwnd = window ? window->m_hWnd : nullptr;
        HWND parent = hwnd ? GetParent(hwnd) : nullptr;
        if (parent) {
            PAINTSTRUCT paint = {};
            paint.hdc = *graphics;
            paint.rcPaint = RECT{0, 0, width, height};
            SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
        }
        return;
    }
    int start = 0;
    int end = width;
    if (m_pLeft) {
        graphics->DrawImage(m_pLeft, 0, 0);
        start = m_pLeft->GetWidth();
    }
    if (m_pRight) {
        end = width - m_pRight->GetWidth();
        graphics->DrawImage(m_pRight, end, 0);
    }
    const int tile = WidthOf(m_pMiddle);
    if (tile <= 0)
        return;
    const int tileHeight = m_pMiddle->GetHeight();
    for (int x = start; x < end; x += tile) {
        // The last tile shows the left part of the picture, never a scaled one.
        const int w = std::min(tile, end - x);
        graphics->DrawImage(m_pMiddle, RECT{x, 0, x + w, tileHeight}, RECT{0, 0, w, tileHeight});
    }
}

void CVuikButtonStateSkin::DrawImage(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!m_pImage)
        return;
    const int w = m_pImage->GetWidth();
    const int h = m_pImage->GetHeight();
    RECT& r = m_rcImage;
    // Each half is truncated by itself.
    switch (m_SkinDef.m_nImageAlign) {
        case CVuikButtonStateSkinDef::AlignImage:
            r.left = width / 2 - w / 2;
            r.top = height / 2 - h / 2;
            r.right = r.left + w;
            r.bottom = r.top + h;
            break;
        case CVuikButtonStateSkinDef::AlignLeft:
            r.top = height / 2 - h / 2;
            r.right = r.left + w;
            r.bottom = r.top + h;
            break;
        case CVuikButtonStateSkinDef::AlignTop:
            r.left = width / 2 - w / 2;
            r.right = r.left + w;
            r.bottom = r.top + h;
            break;
        case CVuikButtonStateSkinDef::AlignRight:
            r.left = r.right - w;
            r.top = height / 2 - h / 2;
            r.bottom = r.top + h;
            break;
        case CVuikButtonStateSkinDef::AlignBottom:
            r.left = width / 2 - w / 2;
            r.top = height - h;
            r.right = r.left + w;
            r.bottom = r.top + h;
            break;
        default:
            break;
    }
    OffsetRect(&r, m_SkinDef.m_nOffsetX, m_SkinDef.m_nOffsetY);
    // Only the sides are kept off the end pieces, which squeezes the image; top and bottom are free.
    if (m_pLeft && r.left < m_pLeft->GetWidth())
        r.left = m_pLeft->GetWidth();
    if (m_pRight && r.right > width - m_pRight->GetWidth())
        r.right = width - m_pRight->GetWidth();
    // With frames the rectangle only tells OnTimer where they go.
    if (m_Frames.empty())
        graphics->DrawImage(m_pImage, r);
}

void CVuikButtonStateSkin::DrawCaption(CVuikWindow* window, CVuikGraphics* graphics, int, int)
{
    if (m_pImage || !m_Frames.empty()) {
        switch (m_SkinDef.m_nImageAlign) {
            case CVuikButtonStateSkinDef::AlignLeft:
                m_rcCaption.left = m_rcImage.right;
                break;
            case CVuikButtonStateSkinDef::AlignTop:
                m_rcCaption.top = m_rcImage.bottom;
                break;
            case CVuikButtonStateSkinDef::AlignRight:
                m_rcCaption.right = m_rcImage.left;
                break;
            case CVuikButtonStateSkinDef::AlignBottom:
                m_rcCaption.bottom = m_rcImage.top;
                break;
            default:
                break;
        }
    }
    OffsetRect(&m_rcCaption, m_SkinDef.m_nOffsetX, m_SkinDef.m_nOffsetY);
    if (!m_SkinDef.m_hFont)
        m_SkinDef.m_hFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    HWND hwnd = window ? window->m_hWnd : nullptr;
    if (!hwnd)
        return;
    const std::wstring text = WindowText(hwnd);
    HDC dc = *graphics;
    const int oldMode = SetBkMode(dc, TRANSPARENT);
    const COLORREF oldColour = SetTextColor(dc, m_SkinDef.m_crText);
    {
        SelectGuard font(dc, m_SkinDef.m_hFont);
        RECT r = m_rcCaption;
        // Always centred, also right to left: the whole buffer is mirrored afterwards.
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &r, kCaptionFlags);
    }
    SetTextColor(dc, oldColour);
    SetBkMode(dc, oldMode);
}

void CVuikButtonStateSkin::SetupRegion(HWND hwnd, const RECT&, CVuikGraphics*)
{
    if (!hwnd || !m_pLeft || !m_pRight || !m_pLeft->GetPrimary() || !m_pRight->GetPrimary())
        return;
    RegionHandle left(CVuikLib::BitmapToRegion(m_pLeft->GetPrimary(), 0xFFFFFF, 0));
    RegionHandle right(CVuikLib::BitmapToRegion(m_pRight->GetPrimary(), 0xFFFFFF, 0));
    RegionHandle middle(CreateRectRgnIndirect(&m_rcCaption));
    RegionHandle combined(CreateRectRgn(0, 0, 0, 0));
    if (!left || !right || !middle || !combined)
        return;
    // The right end sits behind the caption. Right to left the window is mirrored, so the pieces trade places.
    const int offset = m_pLeft->GetWidth() - m_rcCaption.left + m_rcCaption.right;
    OffsetRgn(CVuikLib::IsLayoutRTL() ? left.Get() : right.Get(), offset, 0);
    CombineRgn(combined.Get(), left.Get(), middle.Get(), RGN_OR);
    CombineRgn(combined.Get(), combined.Get(), right.Get(), RGN_OR);
    {
        WindowDC dc(hwnd);
        if (dc)
            SelectClipRgn(dc.Get(), combined.Get());
    }
    // The window owns the region from here on, and deletes the one it had.
    m_hRegion = combined.Get();
    if (SetWindowRgn(hwnd, combined.Get(), TRUE))
        combined.Release();
    else
        m_hRegion = nullptr;
}

void CVuikButtonStateSkin::DrawFrame(CVuikWindow*, CVuikGraphics* graphics, UINT frameIndex)
{
    if (!graphics || frameIndex >= m_Frames.size())
        return;
    auto it = m_Frames.begin();
    std::advance(it, frameIndex);
    graphics->DrawImage(*it, m_rcImage.left, m_rcImage.top);
}

// ---- CVuikButtonSkin ---------------------------------------------------------------------------------------------

CVuikButtonSkin::CVuikButtonSkin() { SetSkinDef(m_DefaultSkinDef); }

CVuikButtonSkin::~CVuikButtonSkin() {}

void CVuikButtonSkin::SetDefaultSkinDef(const CVuikButtonSkinDef& def) { m_DefaultSkinDef = def; }

CVuikButtonSkinDef CVuikButtonSkin::GetDefaultSkinDef() { return m_DefaultSkinDef; }

void CVuikButtonSkin::SetSkinDef(CVuikButtonSkinDef def)
{
    m_SkinDef = def;
    zcmod::SetEachDef(m_StateSkins, def.m_States);
}

void CVuikButtonSkin::Load() { zcmod::LoadEach(m_StateSkins); }

void CVuikButtonSkin::Unload() { zcmod::UnloadEach(m_StateSkins); }

void CVuikButtonSkin::Validate() { zcmod::ValidateEach(m_StateSkins); }

bool CVuikButtonSkin::IsValid()
{
    return m_StateSkins[ButtonNormal].IsValid() && m_StateSkins[ButtonPressed].IsValid();
}

void CVuikButtonSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    const CVuikButtonCtrlBase* button = dynamic_cast<CVuikButtonCtrlBase*>(window);
    m_StateSkins[button ? (button->GetState() & 3) : ButtonNormal].Draw(window, graphics, width, height);
}

// m_DefaultSkinDef is one of the library's process-wide objects, defined in load order in frame/LoadOrder.cpp.
CVuikButtonSkinDef CVuikButtonSkin::MakeSystemSkinDef()
{
    CVuikButtonSkinDef def = {
        {MakeDefaultStateDef(GetSysColor(COLOR_BTNTEXT), 0), MakeDefaultStateDef(GetSysColor(COLOR_BTNTEXT), 2),
         MakeDefaultStateDef(GetSysColor(COLOR_BTNTEXT), 0), MakeDefaultStateDef(GetSysColor(COLOR_GRAYTEXT), 0)}};
    return def;
}

// ---- CVuikButtonCtrlBase -----------------------------------------------------------------------------------------

CVuikButtonCtrlBase::CVuikButtonCtrlBase()
    : m_eState(ButtonNormal),
      m_ePrevState(ButtonNormal),
      m_nButtonKind(KindPush),
      m_hToolTip(nullptr),
      m_dwConstant(1),
      m_bChecked(false),
      m_bHover(false),
      m_bPressed(false),
      m_hGdiObject(nullptr),
      m_bFocused(false),
      m_nFrame(0),
      m_nTimer(0),
      m_eTimerState(ButtonNormal)
{
    m_pfnWindowProc = WindowProc;
}

CVuikButtonCtrlBase::~CVuikButtonCtrlBase()
{
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);
    if (m_hGdiObject)
        DeleteObject(m_hGdiObject);
    m_hGdiObject = nullptr;
    if (m_hToolTip && IsWindow(m_hToolTip))
        DestroyWindow(m_hToolTip);
    m_hToolTip = nullptr;
    DeleteBackBuffer();
}

int CVuikButtonCtrlBase::Classify(LONG style)
{
    if ((style & 3) == 3)
        return KindCheck;
    if ((style & 9) == 9)
        return KindRadio;
    return KindPush;
}

HWND CVuikButtonCtrlBase::Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle)
{
    HWND hwnd = Base::Create(L"Button", parent, rect, L"", id, style, exStyle, nullptr);
    if (!hwnd)
        return nullptr;
    const LONG present = GetWindowLongW(hwnd, GWL_STYLE);
    m_nButtonKind = Classify(present);
    SetWindowLongW(hwnd, GWL_STYLE, present | BS_OWNERDRAW);
    return hwnd;
}

BOOL CVuikButtonCtrlBase::SubclassWindow(HWND hwnd)
{
    if (!Base::SubclassWindow(hwnd))
        return FALSE;
    const LONG style = GetWindowLongW(hwnd, GWL_STYLE);
    m_nButtonKind = Classify(style);
    SetWindowLongW(hwnd, GWL_STYLE, style | WS_CLIPSIBLINGS | WS_CLIPCHILDREN | BS_OWNERDRAW);
    SetWindowLongW(hwnd, GWL_EXSTYLE, GetWindowLongW(hwnd, GWL_EXSTYLE) & ~WS_EX_NOPARENTNOTIFY);
    return TRUE;
}

void CVuikButtonCtrlBase::SetToolTipText(const wchar_t* text)
{
    if (!m_hWnd)
        return;
    TOOLINFOW tool = {};
    tool.cbSize = sizeof(tool);
    tool.uFlags = TTF_IDISHWND;
    tool.hwnd = GetParent(m_hWnd);
    tool.uId = reinterpret_cast<UINT_PTR>(m_hWnd);
    tool.lpszText = const_cast<wchar_t*>(text ? text : L"");
    if (m_hToolTip && IsWindow(m_hToolTip)) {
        SendMessageW(m_hToolTip, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
        return;
    }
    m_hToolTip = CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, 0, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                                 CW_USEDEFAULT, m_hWnd, nullptr, CVuikLib::GetInstance(), nullptr);
    if (!m_hToolTip)
        return;
    if (!SendMessageW(m_hToolTip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool)))
        return;
    if (IsWindow(m_hToolTip))
        SendMessageW(m_hToolTip, TTM_ACTIVATE, TRUE, 0);
}

void CVuikButtonCtrlBase::RelayEvent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
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

LRESULT CALLBACK CVuikButtonCtrlBase::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikButtonCtrlBase* self = static_cast<CVuikButtonCtrlBase*>(FromHandle(hwnd));
    if (!self)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    switch (message) {
        case WM_CREATE:
            return self->OnCreate(hwnd, message, wParam, lParam);
        case WM_DESTROY:
            return self->OnDestroy(hwnd, message, wParam, lParam);
        case WM_SIZE:
            return self->OnSize(hwnd, message, wParam, lParam);
        case WM_SETFOCUS:
            return self->OnSetFocus(hwnd, message, wParam, lParam);
        case WM_KILLFOCUS:
            return self->OnKillFocus(hwnd, message, wParam, lParam);
        case WM_ERASEBKGND:
            return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
        case WM_DRAWITEM:
        case OCM_DRAWITEM:
            return self->OnDrawItem(hwnd, message, wParam, lParam);
        case BM_GETCHECK:
            return self->OnGetCheck(hwnd, message, wParam, lParam);
        case BM_SETCHECK:
            return self->OnSetCheck(hwnd, message, wParam, lParam);
        case WM_KEYDOWN:
            return self->OnKeyDown(hwnd, message, wParam, lParam);
        case WM_TIMER:
            return self->OnTimer(hwnd, message, wParam, lParam);
        case WM_MOUSEMOVE:
            return self->OnMouseMove(hwnd, message, wParam, lParam);
        case WM_LBUTTONDOWN:
            return self->OnLButtonDown(hwnd, message, wParam, lParam);
        case WM_LBUTTONUP:
            return self->OnLButtonUp(hwnd, message, wParam, lParam);
        case WM_LBUTTONDBLCLK:
            return self->OnLButtonDblClick(hwnd, message, wParam, lParam);
        case WM_MOUSELEAVE:
            return self->OnMouseLeave(hwnd, message, wParam, lParam);
        case WM_VUIK_RADIOINFO:
            return self->OnRadioInfo(hwnd, message, wParam, lParam);
        case WM_SETTEXT:
            self->DeleteBackBuffer();
            break;
        default:
            break;
    }
    return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikButtonCtrlBase::OnCreate(HWND, UINT, WPARAM, LPARAM) { return 0; }

LRESULT CVuikButtonCtrlBase::OnDestroy(HWND, UINT, WPARAM, LPARAM)
{
    if (m_hToolTip) {
        if (IsWindow(m_hToolTip))
            DestroyWindow(m_hToolTip);
        m_hToolTip = nullptr;
    }
    DeleteBackBuffer();
    return 0;
}

LRESULT CVuikButtonCtrlBase::OnEraseBkgnd(HWND, UINT, WPARAM, LPARAM) { return 1; }

void CVuikButtonCtrlBase::KillAnimation()
{
    if (m_nTimer && m_hWnd)
        KillTimer(m_hWnd, m_nTimer);
    m_nTimer = 0;
}

bool CVuikButtonCtrlBase::SyncPushedWithCursor(HWND hwnd)
{
    POINT cursor;
    if (!m_bPressed || GetCapture() != hwnd || !GetCursorPos(&cursor))
        return false;
    const bool over = WindowFromPoint(cursor) == hwnd;
    const bool pushed = (SendMessageW(hwnd, BM_GETSTATE, 0, 0) & BST_PUSHED) != 0;
    if (over == pushed)
        return false;
    SendMessageW(hwnd, BM_SETSTATE, over ? TRUE : FALSE, 0);
    return true;
}

LRESULT CVuikButtonCtrlBase::OnDrawItem(HWND hwnd, UINT, WPARAM, LPARAM lParam)
{
    const DRAWITEMSTRUCT* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    if (!item)
        return 0;
    // During a press the pushed look follows the cursor; the redraw that BM_SETSTATE causes paints.
    if (SyncPushedWithCursor(hwnd))
        return 0;

    if (item->itemState & ODS_DISABLED)
        m_eState = ButtonDisabled;
    else if ((item->itemState & ODS_SELECTED) || m_bChecked)
        m_eState = ButtonPressed;
    else if (m_bHover)
        m_eState = ButtonHover;
    else
        m_eState = ButtonNormal;

    const bool focus = (item->itemState & ODS_FOCUS) != 0;
    if (focus != m_bFocused) {
        DeleteBackBuffer();
        m_bFocused = focus;
    }
    if (m_eState != m_ePrevState) {
        KillAnimation();
        DeleteBackBuffer();
    }

    RECT client;
    GetClientRect(hwnd, &client);
    if (!SkinIsValid()) {
        DrawPlaceHolder(item->hDC);
    } else {
        DrawBackBuffer(item->hDC, client, item->rcItem);
        // The animation starts again from its first frame, one millisecond after the paint.
        if (m_pSkin && m_pSkin->GetStateSkin(m_eState).GetFrameCount() > 0) {
            m_nFrame = 0;
            m_eTimerState = m_eState;
            m_nTimer = SetTimer(hwnd, AnimationTimerId, 1, nullptr);
        }
    }
    m_ePrevState = m_eState;
    return 1;
}

LRESULT CVuikButtonCtrlBase::OnTimer(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (wParam != AnimationTimerId)
        return CallSuperWindowProc(hwnd, message, wParam, lParam);
    if (!m_pSkin || m_eTimerState != m_eState)
        return 0;
    CVuikButtonStateSkin& state = m_pSkin->GetStateSkin(m_eState);
    const UINT count = state.GetFrameCount();
    {
        WindowDC dc(hwnd);
        if (dc) {
            RECT client;
            GetClientRect(hwnd, &client);
            DrawBackBuffer(dc.Get(), client, client);
            CVuikGraphics graphics(dc.Get());
            state.DrawFrame(this, &graphics, m_nFrame);
        }
    }
    if (count == 0)
        return 0;
    m_nFrame = m_nFrame + 1 >= count ? 0 : m_nFrame + 1;
    m_nTimer = SetTimer(hwnd, AnimationTimerId, static_cast<UINT>(std::max(state.GetDef().m_nFrameTime, 1)),
                        nullptr);
    return 0;
}

LRESULT CVuikButtonCtrlBase::OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    RelayEvent(hwnd, message, wParam, lParam);
    if (m_bPressed && GetCapture() == hwnd) {
        if (SyncPushedWithCursor(hwnd))
            InvalidateRect(hwnd, nullptr, TRUE);
    } else if (!m_bHover) {
        TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, hwnd, 0};
        if (TrackMouseEvent(&track)) {
            m_bHover = true;
            InvalidateRect(hwnd, nullptr, TRUE);
        }
    }
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikButtonCtrlBase::OnMouseLeave(HWND hwnd, UINT, WPARAM, LPARAM)
{
    m_bHover = false;
    InvalidateRect(hwnd, nullptr, TRUE);
    return 0;
}

LRESULT CVuikButtonCtrlBase::OnSetFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (SendMessageW(hwnd, kFocusQuery, 0, 0) & 0x10000)
        m_bFocused = true;
    const LRESULT result = CallSuperWindowProc(hwnd, message, wParam, lParam);
    // A focused skinned button becomes its dialog's default.
    HWND parent = GetParent(hwnd);
    if (parent)
        SendMessageW(parent, DM_SETDEFID, static_cast<WPARAM>(GetDlgCtrlID(hwnd)), 0);
    return result;
}

LRESULT CVuikButtonCtrlBase::OnKillFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (GetCapture() == hwnd) {
        ReleaseCapture();
        m_bPressed = false;
    }
    if (SendMessageW(hwnd, kFocusQuery, 0, 0) & 0x10000)
        m_bFocused = false;
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

void CVuikButtonCtrlBase::ClickCheck(HWND hwnd)
{
    if (m_nButtonKind == KindCheck)
        SendMessageW(hwnd, BM_SETCHECK, m_bChecked ? BST_UNCHECKED : BST_CHECKED, 0);
    else if (m_nButtonKind == KindRadio)
        SendMessageW(hwnd, BM_SETCHECK, BST_CHECKED, 0);
}

LRESULT CVuikButtonCtrlBase::OnKeyDown(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_nButtonKind != KindPush && wParam == VK_SPACE)
        ClickCheck(hwnd);
    else if (wParam == VK_RETURN)
        SendMessageW(hwnd, BM_CLICK, 0, 0);
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikButtonCtrlBase::OnLButtonDblClick(HWND hwnd, UINT, WPARAM wParam, LPARAM lParam)
{
    // A double click is a second press.
    SendMessageW(hwnd, WM_LBUTTONDOWN, wParam, lParam);
    return 0;
}

LRESULT CVuikButtonCtrlBase::OnLButtonDown(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    RelayEvent(hwnd, message, wParam, lParam);
    if (m_bHover) {
        TRACKMOUSEEVENT track = {sizeof(track), TME_CANCEL | TME_LEAVE, hwnd, 0};
        if (TrackMouseEvent(&track))
            m_bHover = false;
    }
    const LRESULT result = CallSuperWindowProc(hwnd, message, wParam, lParam);
    m_bPressed = true;
    return result;
}

LRESULT CVuikButtonCtrlBase::OnLButtonUp(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_nButtonKind != KindPush) {
        POINT point = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
        ClientToScreen(hwnd, &point);
        if (WindowFromPoint(point) == hwnd)
            ClickCheck(hwnd);
    }
    // The tooltip hears the release twice; it is relayed so on purpose.
    RelayEvent(hwnd, message, wParam, lParam);
    RelayEvent(hwnd, message, wParam, lParam);
    m_bPressed = false;
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

LRESULT CVuikButtonCtrlBase::OnSetCheck(HWND hwnd, UINT, WPARAM wParam, LPARAM)
{
    // A push button never holds a check mark.
    m_bChecked = m_nButtonKind != KindPush && wParam != 0;
    if (m_nButtonKind == KindRadio && wParam != 0) {
        // The others of the group hear of it later, by posted messages.
        HWND parent = GetParent(hwnd);
        HWND first = GetNextDlgGroupItem(parent, hwnd, FALSE);
        for (HWND w = first; w && w != hwnd;) {
            PostMessageW(w, WM_VUIK_RADIOINFO, 0, 0);
            w = GetNextDlgGroupItem(parent, w, FALSE);
            if (w == first)  // a cycle that doesn't pass through this button (it is disabled or hidden)
                break;
        }
    }
    InvalidateRect(hwnd, nullptr, TRUE);
    return 0;
}

LRESULT CVuikButtonCtrlBase::OnGetCheck(HWND, UINT, WPARAM, LPARAM) { return m_bChecked ? BST_CHECKED : BST_UNCHECKED; }

LRESULT CVuikButtonCtrlBase::OnRadioInfo(HWND hwnd, UINT, WPARAM, LPARAM)
{
    if (m_bChecked) {
        m_bChecked = false;
        InvalidateRect(hwnd, nullptr, TRUE);
    }
    return 0;
}

LRESULT CVuikButtonCtrlBase::OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    DeleteBackBuffer();
    return CallSuperWindowProc(hwnd, message, wParam, lParam);
}

// ---- CVuikButtonCtrl ---------------------------------------------------------------------------------------------

CVuikButtonCtrl::CVuikButtonCtrl() : m_bFocusReactive(true) {}

void CVuikButtonCtrl::SizeToContent()
{
    if (!m_hWnd || !m_pSkin)
        return;
    CVuikButtonStateSkin& normal = m_pSkin->GetStateSkin(ButtonNormal);
    RECT r;
    GetWindowRect(m_hWnd, &r);
    int width = r.right - r.left;
    int height;
    if (CVuikBitmap* piece = FirstPiece(normal)) {
        height = piece->GetHeight();
    } else if (CVuikBitmap* image = normal.GetImageBitmap()) {
        width = image->GetWidth();
        height = image->GetHeight();
    } else {
        return;
    }
    SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE);
}

void CVuikButtonCtrl::SetFocusReactive(bool focusReactive)
{
    m_bFocusReactive = focusReactive;
    DeleteBackBuffer();
    if (m_hWnd)
        InvalidateRect(m_hWnd, nullptr, TRUE);
}

bool CVuikButtonCtrl::GetFocusReactive() { return m_bFocusReactive; }

// ---- CVuikButtonCtrl2 --------------------------------------------------------------------------------------------

CVuikButtonCtrl2::CVuikButtonCtrl2() : m_dwReserved2(0), m_hDroppedBuffer(nullptr) {}

bool CVuikButtonCtrl2::QueryFocusReactive()
{
    // Where CVuikButtonCtrl answers GetFocusReactive, this button's OnDestroy stands: the question destroys the
    // tooltip window and drops the buffer, and its answer 0 reads as false. The buffer is being drawn on here:
    // it is taken out of the object first and deleted when the build has let go of it.
    if (m_hBackBuffer && !m_hDroppedBuffer) {
        m_hDroppedBuffer = m_hBackBuffer;
        m_hBackBuffer = nullptr;
    }
    return OnDestroy(m_hWnd, WM_DESTROY, 0, 0) != 0;
}

void CVuikButtonCtrl2::CreateBackBuffer(int width, int height, CVuikGraphics* graphics)
{
    CVuikButtonCtrlBase::CreateBackBuffer(width, height, graphics);
    if (m_hDroppedBuffer) {
        DeleteObject(m_hDroppedBuffer);
        m_hDroppedBuffer = nullptr;
    }
}

int CVuikButtonCtrl2::GetMinHeight()
{
    if (!m_pSkin)
        return 0;
    CVuikButtonStateSkin& normal = m_pSkin->GetStateSkin(ButtonNormal);
    if (CVuikBitmap* piece = FirstPiece(normal))
        return piece->GetHeight();
    if (CVuikBitmap* image = normal.GetImageBitmap())
        return image->GetHeight();
    return 0;
}

int CVuikButtonCtrl2::GetMinWidth()
{
    if (!m_hWnd || !IsWindow(m_hWnd))
        return 0;
    const std::wstring text = WindowText(m_hWnd, kMaxMeasuredText);
    HFONT font = nullptr;
    CVuikBitmap* left = nullptr;
    if (m_pSkin) {
        CVuikButtonStateSkin& normal = m_pSkin->GetStateSkin(ButtonNormal);
        font = normal.GetDef().m_hFont;
        left = normal.GetLeftBitmap();
    }
    if (!font)
        font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    RECT r = {0, 0, 0, 0};
    {
        MemoryDC dc(CreateCompatibleDC(nullptr));
        SelectGuard select(dc.Get(), font);
        DrawTextW(dc.Get(), text.c_str(), static_cast<int>(text.size()), &r, kMeasureFlags);
    }
    int width = std::abs(r.right - r.left);
    // The left piece's width and its height: the formula the family has always used.
    if (left)
        width += left->GetWidth() + left->GetHeight();
    return width;
}

void CVuikButtonCtrl2::SizeToContent(int flags, int maxWidth)
{
    if (!m_hWnd)
        return;
    RECT r;
    GetWindowRect(m_hWnd, &r);
    MapWindowPoints(nullptr, GetParent(m_hWnd), reinterpret_cast<POINT*>(&r), 2);
    int width = r.right - r.left;
    int height = r.bottom - r.top;
    int left = r.left;
    if (flags & SizeHeight)
        height = GetMinHeight();
    if (flags & SizeWidth) {
        width = GetMinWidth();
        if (maxWidth != -1 && width > maxWidth)
            width = maxWidth;
        if (flags & SizeKeepRight)
            left = r.right - width;
    }
    SetWindowPos(m_hWnd, nullptr, left, r.top, width, height, SWP_NOZORDER);
}
