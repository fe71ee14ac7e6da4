#include "zcmod/VuikCommonButtonCtrl.h"

#include <cwchar>
#include <new>

#include "controls/CommonSkinSetup.h"
#include "controls/CompositeSkin.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

namespace {

// The theme's backgrounds of one size, states 0 to 6 from `first` on; the icon moves one pixel right and down
// while the button is pressed.
CVuikCommonButtonSkinDef MakeDefaultDef(UINT first)
{
    CVuikCommonButtonSkinDef def = {};
    for (int i = 0; i < CommonStateCount; ++i) {
        def.m_States[i].m_nBitmapId = first + i;
        if (i == CommonPressed || i == CommonFocusedPressed) {
            def.m_States[i].m_nIconOffsetX = 1;
            def.m_States[i].m_nIconOffsetY = 1;
        }
    }
    return def;
}

wchar_t* CopyText(const wchar_t* text)
{
    const size_t length = text ? wcslen(text) : 0;
    wchar_t* copy = new (std::nothrow) wchar_t[length + 1];
    if (copy) {
        if (length)
            wmemcpy(copy, text, length);
        copy[length] = 0;
    }
    return copy;
}

}  // namespace

CVuikCommonButtonSkinDef CVuikCommonButtonSkin::m_DefaultSmallSkinDef = MakeDefaultDef(ZGR_BMP_COMMON_BUTTON_SMALL);
CVuikCommonButtonSkinDef CVuikCommonButtonSkin::m_DefaultMediumSkinDef = MakeDefaultDef(ZGR_BMP_COMMON_BUTTON_MEDIUM);
CVuikCommonButtonSkinDef CVuikCommonButtonSkin::m_DefaultLargeSkinDef = MakeDefaultDef(ZGR_BMP_COMMON_BUTTON_LARGE);

// ---- CVuikCommonButtonStateSkin ----------------------------------------------------------------------------------

CVuikCommonButtonStateSkin::CVuikCommonButtonStateSkin() : m_pBackground(nullptr), m_pIcon(nullptr) {}

CVuikCommonButtonStateSkin::~CVuikCommonButtonStateSkin() { Unload(); }

void CVuikCommonButtonStateSkin::Load()
{
    Unload();
    if (m_SkinDef.m_nBitmapId)
        CVuikResourceManager::LoadBitmapW(&m_pBackground, CVuikLib::GetResourceInstance(), m_SkinDef.m_nBitmapId, 0,
                                          nullptr);
    LoadIconW();
}

void CVuikCommonButtonStateSkin::Unload()
{
    if (m_pBackground)
        CVuikResourceManager::UnloadBitmap(&m_pBackground);
    m_pBackground = nullptr;
    UnloadIcon();
}

void CVuikCommonButtonStateSkin::Validate()
{
    m_nStatus = StatusValid;
    if ((m_SkinDef.m_nBitmapId && !m_pBackground) || (m_SkinDef.m_nIconId && !m_pIcon))
        m_nStatus = StatusInvalid;
}

void CVuikCommonButtonStateSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    DrawBackground(window, graphics, width, height);
    DrawIcon(window, graphics, width, height);
}

void CVuikCommonButtonStateSkin::DrawBackground(CVuikWindow*, CVuikGraphics* graphics, int, int)
{
    // At its own size: a window larger than the picture shows its parent's background in the rest.
    if (graphics && m_pBackground)
        graphics->DrawImage(m_pBackground, 0, 0);
}

void CVuikCommonButtonStateSkin::DrawIcon(CVuikWindow*, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics || !m_pIcon)
        return;
    // Each half truncated by itself.
    const int x = width / 2 - m_pIcon->GetWidth() / 2 + m_SkinDef.m_nIconOffsetX;
    const int y = m_SkinDef.m_nIconOffsetY - m_pIcon->GetHeight() / 2 + height / 2;
    graphics->DrawImage(m_pIcon, x, y);
}

void CVuikCommonButtonStateSkin::LoadIconW()
{
    UnloadIcon();
    if (m_SkinDef.m_nIconId) {
        // Right to left a picture turns round as it loads and the buffer turns it again: flag 1 makes the icon
        // follow the layout, flag 0 keeps it as drawn.
        const int mirror = (CVuikLib::IsLayoutRTL() && !m_SkinDef.m_bIconNoMirror) ? 1 : 0;
        CVuikResourceManager::LoadBitmapW(&m_pIcon, CVuikLib::GetResourceInstance(), m_SkinDef.m_nIconId, mirror,
                                          nullptr);
    }
    Validate();
}

void CVuikCommonButtonStateSkin::UnloadIcon()
{
    if (m_pIcon)
        CVuikResourceManager::UnloadBitmap(&m_pIcon);
    m_pIcon = nullptr;
}

void CVuikCommonButtonStateSkin::SetIconDef(UINT iconId, int noMirror)
{
    m_SkinDef.m_nIconId = iconId;
    m_SkinDef.m_bIconNoMirror = noMirror;
}

// ---- CVuikCommonButtonSkin ---------------------------------------------------------------------------------------

CVuikCommonButtonSkin::CVuikCommonButtonSkin() { SetSkinDef(m_DefaultMediumSkinDef); }

CVuikCommonButtonSkin::~CVuikCommonButtonSkin() {}

CVuikCommonButtonSkinDef CVuikCommonButtonSkin::GetDefaultSkinDef(ECommonButtonSize size)
{
    switch (size) {
        case CommonButtonSmall:
            return m_DefaultSmallSkinDef;
        case CommonButtonLarge:
            return m_DefaultLargeSkinDef;
        default:
            return m_DefaultMediumSkinDef;
    }
}

void CVuikCommonButtonSkin::SetSkinDef(CVuikCommonButtonSkinDef def)
{
    m_SkinDef = def;
    zcmod::SetEachDef(m_StateSkins, def.m_States);
}

void CVuikCommonButtonSkin::Load() { zcmod::LoadEach(m_StateSkins); }

void CVuikCommonButtonSkin::Unload() { zcmod::UnloadEach(m_StateSkins); }

void CVuikCommonButtonSkin::Validate() { zcmod::ValidateEach(m_StateSkins); }

bool CVuikCommonButtonSkin::IsValid() { return zcmod::AllValid(m_StateSkins); }

void CVuikCommonButtonSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    CVuikCommonButtonCtrl* button = dynamic_cast<CVuikCommonButtonCtrl*>(window);
    if (!button)
        return;
    const int state = button->GetGraphicalState();
    // A derived control's answer out of range draws nothing rather than reading past the states.
    if (state >= 0 && state < CommonStateCount)
        m_StateSkins[state].Draw(window, graphics, width, height);
}

void CVuikCommonButtonSkin::SetButtonIcon(UINT iconId, UINT disabledIconId, int noMirror)
{
    const UINT disabled = disabledIconId == static_cast<UINT>(-1) ? iconId : disabledIconId;
    for (int i = 0; i < CommonStateCount; ++i) {
        const UINT id = i == CommonDisabled ? disabled : iconId;
        m_SkinDef.m_States[i].m_nIconId = id;
        m_SkinDef.m_States[i].m_bIconNoMirror = noMirror;
        m_StateSkins[i].SetIconDef(id, noMirror);
    }
    for (CVuikCommonButtonStateSkin& s : m_StateSkins)
        s.LoadIconW();
}

// ---- CVuikCommonButtonCtrl ---------------------------------------------------------------------------------------

CVuikCommonButtonCtrl::CVuikCommonButtonCtrl()
    : m_eGraphicalState(CommonNormal), m_dwReserved(1), m_pszText(nullptr), m_pOwnSkin(nullptr)
{
    m_pfnWindowProc = WindowProc;
}

CVuikCommonButtonCtrl::~CVuikCommonButtonCtrl()
{
    // The window goes first, so that nothing paints with the skin once it is gone.
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);
    SetSkin(nullptr);
    delete m_pOwnSkin;
    m_pOwnSkin = nullptr;
    delete[] m_pszText;
    m_pszText = nullptr;
}

void CVuikCommonButtonCtrl::SetUpSkin(ECommonButtonSize size)
{
    zcmod::ThemeResourceScope theme;
    SetSkin(nullptr);
    delete m_pOwnSkin;
    m_pOwnSkin = new (std::nothrow) CVuikCommonButtonSkin();
    if (!m_pOwnSkin)
        return;  // no skin: the button paints its placeholder
    m_pOwnSkin->SetSkinDef(CVuikCommonButtonSkin::GetDefaultSkinDef(size));
    m_pOwnSkin->Load();
    SetSkin(m_pOwnSkin);
    SizeToContent();
}

HWND CVuikCommonButtonCtrl::Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle,
                                   ECommonButtonSize size)
{
    HWND hwnd = CVuikWindowImpl<CVuikCommonButtonSkin>::Create(L"Button", parent, rect, L"", id, style, exStyle,
                                                                nullptr);
    if (!hwnd || !IsWindow(hwnd))
        return hwnd;
    if (!m_pszText)
        m_pszText = CopyText(L"");
    SetUpSkin(size);
    m_nCtrlId = GetDlgCtrlID(hwnd);
    return hwnd;
}

BOOL CVuikCommonButtonCtrl::SubclassWindow(HWND hwnd, ECommonButtonSize size)
{
    const UINT id = hwnd && IsWindow(hwnd) ? GetDlgCtrlID(hwnd) : 0;
    if (!Base::SubclassWindow(hwnd))
        return FALSE;
    m_nCtrlId = id;
    // The text moves into the control: asked through the earlier procedure, then cleared there.
    const LRESULT length = CallSuperWindowProc(hwnd, WM_GETTEXTLENGTH, 0, 0);
    wchar_t* text = new (std::nothrow) wchar_t[length > 0 ? length + 1 : 1];
    if (text) {
        text[0] = 0;
        if (length > 0)
            CallSuperWindowProc(hwnd, WM_GETTEXT, static_cast<WPARAM>(length + 1), reinterpret_cast<LPARAM>(text));
        delete[] m_pszText;
        m_pszText = text;
        DefWindowProcW(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
    }
    SetWindowLongW(hwnd, GWL_STYLE,
                   (GetWindowLongW(hwnd, GWL_STYLE) & 0xFFFFFFF4) | WS_CLIPSIBLINGS | WS_CLIPCHILDREN);
    SetWindowLongW(hwnd, GWL_EXSTYLE, GetWindowLongW(hwnd, GWL_EXSTYLE) | WS_EX_NOPARENTNOTIFY);
    SetUpSkin(size);
    return TRUE;
}

HWND CVuikCommonButtonCtrl::UnsubclassWindow(int force)
{
    HWND hwnd = m_hWnd;
    HWND released = Base::UnsubclassWindow(force);
    if (!released)
        return nullptr;  // still ours: the text stays with the control
    DefWindowProcW(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(m_pszText ? m_pszText : L""));
    delete[] m_pszText;
    m_pszText = nullptr;
    return released;
}

void CVuikCommonButtonCtrl::SizeToContent()
{
    if (!m_hWnd)
        return;
    CVuikBitmap* background = m_pSkin ? m_pSkin->GetStateSkin(CommonFocused).GetBackgroundBitmap() : nullptr;
    const int width = background ? background->GetWidth() : 0;
    const int height = background ? background->GetHeight() : 0;
    SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE);
}

void CVuikCommonButtonCtrl::SetButtonIcon(UINT iconId, UINT disabledIconId, int noMirror)
{
    if (m_pSkin)
        m_pSkin->SetButtonIcon(iconId, disabledIconId, noMirror);
    DeleteBackBuffer();
    if (m_hWnd)
        InvalidateRect(m_hWnd, nullptr, FALSE);
}

int CVuikCommonButtonCtrl::StateFromFlags(bool enabled, LONGLONG state, bool over)
{
    if (!enabled)
        return CommonDisabled;
    const bool pushed = (state & StatePushed) != 0;
    const int base = (state & StateFocus) ? CommonFocused : CommonNormal;
    if (!over)
        return base;  // pushed with the mouse off the button looks at rest
    return base + (pushed ? 2 : 1);
}

int CVuikCommonButtonCtrl::GetGraphicalState() { return m_eGraphicalState; }

LRESULT CVuikCommonButtonCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    m_eGraphicalState = StateFromFlags(IsWindowEnabled(hwnd) != FALSE, m_nState, m_bHover);
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

LRESULT CVuikCommonButtonCtrl::OnSetText(HWND, UINT, WPARAM, LPARAM lParam)
{
    wchar_t* text = CopyText(reinterpret_cast<const wchar_t*>(lParam));
    if (!text)
        return 0;
    delete[] m_pszText;
    m_pszText = text;
    return 1;
}

LRESULT CVuikCommonButtonCtrl::OnGetText(HWND, UINT, WPARAM wParam, LPARAM lParam)
{
    const wchar_t* text = m_pszText ? m_pszText : L"";
    wchar_t* buffer = reinterpret_cast<wchar_t*>(lParam);
    if (buffer && wParam > 0)
        lstrcpynW(buffer, text, static_cast<int>(wParam > 0x7FFFFFFF ? 0x7FFFFFFF : wParam));
    // The whole length, whatever was copied.
    return static_cast<LRESULT>(wcslen(text));
}

LRESULT CVuikCommonButtonCtrl::OnGetTextLength(HWND, UINT, WPARAM, LPARAM)
{
    return static_cast<LRESULT>(m_pszText ? wcslen(m_pszText) : 0);
}

LRESULT CALLBACK CVuikCommonButtonCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikCommonButtonCtrl* self = static_cast<CVuikCommonButtonCtrl*>(
        static_cast<CVuikButtonImpl<CVuikCommonButtonSkin>*>(FromHandle(hwnd)));
    if (self && self->m_hWnd == hwnd) {
        if (message == WM_GETTEXT)
            return self->OnGetText(hwnd, message, wParam, lParam);
        if (message == WM_GETTEXTLENGTH)
            return self->OnGetTextLength(hwnd, message, wParam, lParam);
    }
    return Base::WindowProc(hwnd, message, wParam, lParam);
}
