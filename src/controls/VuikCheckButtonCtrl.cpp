#include "zcmod/VuikCheckButtonCtrl.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "controls/CommonSkinSetup.h"
#include "controls/CompositeSkin.h"
#include "frame/Handles.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

using namespace zcmod;

namespace {

const COLORREF kText = 0x505050;
const COLORREF kTextDisabled = 0xCECECE;
const int kTextGap = 4;

CVuikCheckButtonSkinDef MakeDefaultDef(UINT first)
{
    CVuikCheckButtonSkinDef def = {};
    for (int i = 0; i < CheckStateCount; ++i) {
        def.m_States[i].m_nBitmapId = first + i;
        def.m_States[i].m_crText = (i == CheckUncheckedDisabled || i == CheckCheckedDisabled) ? kTextDisabled : kText;
    }
    return def;
}

std::wstring WindowText(HWND hwnd)
{
    const int length = GetWindowTextLengthW(hwnd);
    if (length <= 0)
        return std::wstring();
    std::vector<wchar_t> text(static_cast<size_t>(length) + 1);
    const int got = GetWindowTextW(hwnd, text.data(), length + 1);
    return std::wstring(text.data(), static_cast<size_t>(std::max(got, 0)));
}

}  // namespace

CVuikCheckButtonSkinDef CVuikCheckButtonSkin::m_DefaultCheckSkinDef = MakeDefaultDef(ZGR_BMP_CHECK_BOX);
CVuikCheckButtonSkinDef CVuikCheckButtonSkin::m_DefaultRadioSkinDef = MakeDefaultDef(ZGR_BMP_RADIO_BUTTON);

// ---- CVuikCheckButtonStateSkin -----------------------------------------------------------------------------------

CVuikCheckButtonStateSkin::CVuikCheckButtonStateSkin() : m_pBitmap(nullptr), m_hFont(nullptr)
{
    LOGFONTW font;
    DkhLoadFont(&font);  // registers the suite's fonts once and names the face
    font.lfHeight = 14;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfQuality = CLEARTYPE_QUALITY;
    m_hFont = CreateFontIndirectW(&font);
}

CVuikCheckButtonStateSkin::~CVuikCheckButtonStateSkin()
{
    Unload();
    if (m_hFont)
        DeleteObject(m_hFont);
    m_hFont = nullptr;
}

void CVuikCheckButtonStateSkin::Load()
{
    Unload();
    if (m_SkinDef.m_nBitmapId)
        CVuikResourceManager::LoadBitmapW(&m_pBitmap, CVuikLib::GetResourceInstance(), m_SkinDef.m_nBitmapId,
                                          CVuikLib::IsLayoutRTL() ? 1 : 0, nullptr);
    Validate();
}

void CVuikCheckButtonStateSkin::Unload()
{
    if (m_pBitmap)
        CVuikResourceManager::UnloadBitmap(&m_pBitmap);
    m_pBitmap = nullptr;
}

void CVuikCheckButtonStateSkin::Validate()
{
    m_nStatus = (m_SkinDef.m_nBitmapId && !m_pBitmap) ? StatusInvalid : StatusValid;
}

void CVuikCheckButtonStateSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    if (!graphics)
        return;
    DrawCheck(window, graphics, width, height);
    DrawTextW(window, graphics, width, height);
    HWND hwnd = window ? window->m_hWnd : nullptr;
    if (hwnd && (SendMessageW(hwnd, BM_GETSTATE, 0, 0) & BST_FOCUS)) {
        const RECT all = {0, 0, width, height};
        DrawFocusRect(*graphics, &all);
    }
}

void CVuikCheckButtonStateSkin::DrawCheck(CVuikWindow* window, CVuikGraphics* graphics, int, int)
{
    // The layout is asked and not used: a mirrored window puts the mark on the right by itself.
    if (CVuikCheckButtonCtrl* button = dynamic_cast<CVuikCheckButtonCtrl*>(window))
        (void)button->GetLayout();
    if (graphics && m_pBitmap)
        graphics->DrawImage(m_pBitmap, 1, 1);
}

void CVuikCheckButtonStateSkin::DrawTextW(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    HWND hwnd = window ? window->m_hWnd : nullptr;
    if (!graphics || !hwnd)
        return;
    const CVuikCheckButtonCtrl* button = dynamic_cast<CVuikCheckButtonCtrl*>(window);
    const bool multiline = button && button->IsMultiline();
    RECT r = {(m_pBitmap ? m_pBitmap->GetWidth() : 0) + kTextGap, 0, std::abs(width), std::abs(height)};
    UINT flags = DT_WORDBREAK;
    if (multiline)
        OffsetRect(&r, 0, 4);
    else
        flags |= DT_VCENTER | DT_SINGLELINE;
    const std::wstring text = WindowText(hwnd);
    HDC dc = *graphics;
    const COLORREF oldColour = SetTextColor(dc, m_SkinDef.m_crText);
    const int oldMode = SetBkMode(dc, TRANSPARENT);
    {
        SelectGuard font(dc, m_hFont);
        ::DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &r, flags);
    }
    SetBkMode(dc, oldMode);
    SetTextColor(dc, oldColour);
}

// ---- CVuikCheckButtonSkin ----------------------------------------------------------------------------------------

CVuikCheckButtonSkin::CVuikCheckButtonSkin() { SetSkinDef(m_DefaultCheckSkinDef); }

CVuikCheckButtonSkin::~CVuikCheckButtonSkin() {}

void CVuikCheckButtonSkin::SetSkinDef(CVuikCheckButtonSkinDef def)
{
    m_SkinDef = def;
    zcmod::SetEachDef(m_StateSkins, def.m_States);
}

void CVuikCheckButtonSkin::Load() { zcmod::LoadEach(m_StateSkins); }

void CVuikCheckButtonSkin::Unload() { zcmod::UnloadEach(m_StateSkins); }

void CVuikCheckButtonSkin::Validate() { zcmod::ValidateEach(m_StateSkins); }

bool CVuikCheckButtonSkin::IsValid() { return zcmod::AllValid(m_StateSkins); }

void CVuikCheckButtonSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    const CVuikCheckButtonCtrl* button = dynamic_cast<CVuikCheckButtonCtrl*>(window);
    int state = button ? button->GetGraphicalState() : 0;
    if (state < 0 || state >= CheckStateCount)
        state = 0;
    m_StateSkins[state].Draw(window, graphics, width, height);
}

// ---- CVuikCheckButtonCtrl ----------------------------------------------------------------------------------------

CVuikCheckButtonCtrl::CVuikCheckButtonCtrl()
    : m_eGraphicalState(CheckUnchecked), m_eLayout(CheckLayoutLeftToRight), m_bMultiline(false), m_pOwnSkin(nullptr)
{
}

CVuikCheckButtonCtrl::~CVuikCheckButtonCtrl()
{
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);
    SetSkin(nullptr);
    delete m_pOwnSkin;
    m_pOwnSkin = nullptr;
}

BOOL CVuikCheckButtonCtrl::SubclassWindow(HWND hwnd)
{
    const UINT id = hwnd && IsWindow(hwnd) ? GetDlgCtrlID(hwnd) : 0;
    if (!Base::SubclassWindow(hwnd))
        return FALSE;
    m_nCtrlId = id;
    const LONG style = GetWindowLongW(hwnd, GWL_STYLE);
    m_bMultiline = (style & BS_MULTILINE) != 0;
    SetWindowLongW(hwnd, GWL_STYLE, style | WS_CLIPSIBLINGS | WS_CLIPCHILDREN);
    SetWindowLongW(hwnd, GWL_EXSTYLE, GetWindowLongW(hwnd, GWL_EXSTYLE) | WS_EX_NOPARENTNOTIFY);

    ThemeResourceScope theme;
    SetSkin(nullptr);
    delete m_pOwnSkin;
    m_pOwnSkin = new (std::nothrow) CVuikCheckButtonSkin();
    if (!m_pOwnSkin)
        return TRUE;  // subclassed without a skin: the placeholder shows
    // Bit tests, as the button family classifies: 2, 3 and 6 are checks, 4, 5 and 9 radios.
    if ((style & 2) || (style & 3) == 3)
        m_pOwnSkin->SetSkinDef(CVuikCheckButtonSkin::m_DefaultCheckSkinDef);
    else if ((style & 4) || (style & 9) == 9)
        m_pOwnSkin->SetSkinDef(CVuikCheckButtonSkin::m_DefaultRadioSkinDef);
    m_pOwnSkin->Load();
    SetSkin(m_pOwnSkin);
    SizeToContent();
    return TRUE;
}

void CVuikCheckButtonCtrl::SizeToContent()
{
    if (!m_hWnd || !m_pSkin)
        return;
    CVuikCheckButtonStateSkin& unchecked = m_pSkin->GetStateSkin(CheckUnchecked);
    CVuikBitmap* mark = unchecked.GetBitmap();
    const int markWidth = mark ? mark->GetWidth() : 0;
    const int markHeight = mark ? mark->GetHeight() : 0;
    const std::wstring text = WindowText(m_hWnd);
    RECT r = {0, 0, 0, 0};
    UINT flags = DT_CALCRECT;
    if (m_bMultiline) {
        GetWindowRect(m_hWnd, &r);
        r.left += kTextGap + markWidth;
        flags |= DT_WORDBREAK;
    }
    {
        HDC dc = GetWindowDC(m_hWnd);
        if (dc) {
            SelectGuard font(dc, unchecked.GetFont());
            ::DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &r, flags);
        }
        ReleaseDC(m_hWnd, dc);
    }
    const int height = std::max(markHeight, static_cast<int>(r.bottom - r.top)) + (m_bMultiline ? 6 : 2);
    const int width = markWidth + static_cast<int>(r.right - r.left) + 10;
    m_eLayout = CVuikLib::IsLayoutRTL() ? CheckLayoutRightToLeft : CheckLayoutLeftToRight;
    SetWindowPos(m_hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOREDRAW | SWP_NOACTIVATE);
}

LRESULT CVuikCheckButtonCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    const bool enabled = IsWindowEnabled(hwnd) != FALSE;
    if (m_nState & BST_CHECKED)
        m_eGraphicalState = enabled ? CheckChecked + (m_bHover ? 1 : 0) : CheckCheckedDisabled;
    else
        m_eGraphicalState = enabled ? CheckUnchecked + (m_bHover ? 1 : 0) : CheckUncheckedDisabled;
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

void CVuikCheckButtonCtrl::SetCheck(int check)
{
    if (m_hWnd)
        SendMessageW(m_hWnd, BM_SETCHECK, static_cast<WPARAM>(check), 0);
}

int CVuikCheckButtonCtrl::GetCheck()
{
    return m_hWnd ? static_cast<int>(SendMessageW(m_hWnd, BM_GETCHECK, 0, 0)) : 0;
}
