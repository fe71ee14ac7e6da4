#include "zcmod/CommonAboutDlg.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <vector>

#include "frame/Handles.h"
#include "frame/core/DialogTemplate.h"
#include "frame/Win32Util.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/Utils.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikCommonButtonCtrl.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikMessages.h"

const wchar_t* const CCommonAboutDlg::kInstanceProperty = L"__DeskHubCCommonAboutDlgInstance";
const int CCommonAboutDlg::kWidth;
const int CCommonAboutDlg::kHeight;

namespace {

constexpr int kVersionCapacity = 260;
constexpr DWORD kCaptionFlags = CVuikWindowBackgroundCtrl::CAPTION_CLOSE | CVuikWindowBackgroundCtrl::CAPTION_ISDIALOG;
constexpr COLORREF kFooterColor = 0xA1A1A0;

const wchar_t* LanguageName()
{
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    return handler ? handler->GetLanguageName() : nullptr;
}

HFONT MakeSuiteFont(int height)
{
    LOGFONTW font;
    DkhLoadFont(&font);
    font.lfHeight = height;
    font.lfWeight = FW_NORMAL;
    return CreateFontIndirectW(&font);
}

// A copy of string `id` of `module` in a buffer of its own length, however long; an empty one when missing.
// Null only when memory runs out.
wchar_t* LoadOwnedString(int (*load)(HINSTANCE, UINT, wchar_t*, int), HINSTANCE module, UINT id)
{
    const int length = load(module, id, nullptr, 0);
    wchar_t* text = new (std::nothrow) wchar_t[length + 1];
    if (text)
        load(module, id, text, length + 1);
    return text;
}

void FreeBitmap(CVuikBitmap*& bitmap)
{
    delete bitmap;
    bitmap = nullptr;
}

void FreeText(wchar_t*& text)
{
    delete[] text;
    text = nullptr;
}

// A picture of `module`, or null when it has none.
CVuikBitmap* LoadPicture(HINSTANCE module, UINT id)
{
    if (!module || !id)
        return nullptr;
    CVuikBitmap* bitmap = new (std::nothrow) CVuikBitmap;
    if (!bitmap)
        return nullptr;
    bitmap->LoadFromRes(module, id);
    if (!bitmap->GetPrimary())
        FreeBitmap(bitmap);
    return bitmap;
}

// One line of text at (x, y): measured first, then drawn in the measured rectangle, so it is never cut.
// `reading` is DT_RTLREADING for a right-to-left language, so that its punctuation and numbers fall in place.
RECT DrawLineAt(HDC dc, const wchar_t* text, int x, int y, UINT reading)
{
    RECT rect = {0, 0, 0, 0};
    DrawTextW(dc, text, -1, &rect, DT_CALCRECT | DT_SINGLELINE | reading);
    OffsetRect(&rect, x, y);
    DrawTextW(dc, text, -1, &rect, DT_SINGLELINE | reading);
    return rect;
}

}  // namespace

CCommonAboutDlg::CCommonAboutDlg()
    : m_pBackground(nullptr),
      m_pOkButton(nullptr),
      m_hWnd(nullptr),
      m_hParent(nullptr),
      m_hStringModule(nullptr),
      m_hIconModule(nullptr),
      m_hProductFont(nullptr),
      m_hVersionFont(nullptr),
      m_hLegalFont(nullptr),
      m_pszVersion(nullptr),
      m_pszLegal(nullptr),
      m_pszTitle(nullptr),
      m_pszProduct(nullptr),
      m_pszFooter(nullptr),
      m_pBanner(nullptr),
      m_pMaker(nullptr),
      m_pProduct(nullptr),
      m_hIconData(nullptr),
      m_nIconId(0),
      m_bParamsSet(false)
{
    LoadGlobalResources();
    CreateFonts();
}

CCommonAboutDlg::~CCommonAboutDlg()
{
    delete m_pOkButton;
    m_pOkButton = nullptr;
    delete m_pBackground;
    m_pBackground = nullptr;
    FreeApplicationResources();
    FreeGlobalResources();
    DestroyFonts();
}

HFONT CCommonAboutDlg::GetFont(int index) const
{
    switch (index) {
        case 0: return m_hProductFont;
        case 1: return m_hVersionFont;
        case 2: return m_hLegalFont;
        default: return nullptr;
    }
}

void CCommonAboutDlg::LoadGlobalResources()
{
    if (!m_pszVersion) {
        // "<maker> <the word for Version> <build number>". String 95 starts with three characters of its own.
        m_pszVersion = new (std::nothrow) wchar_t[kVersionCapacity];
        if (m_pszVersion) {
            wchar_t word[kVersionCapacity] = {};
            const int length = ZCMOD_LoadString(ZLR_STR_VERSION, word, kVersionCapacity);
            zcmod::CopyString(m_pszVersion, kVersionCapacity, CUtils::GetUIManufacturerName());
            zcmod::AppendString(m_pszVersion, kVersionCapacity, L" ");
            zcmod::AppendString(m_pszVersion, kVersionCapacity, length > 3 ? word + 3 : L"");
            zcmod::AppendString(m_pszVersion, kVersionCapacity, L" ");
            zcmod::AppendString(m_pszVersion, kVersionCapacity, CUtils::GetCachedBuildNumber());
        }
    }
    if (!m_pszLegal) {
        HINSTANCE language = ZCMOD_GetCommonZLR();
        const int first = LoadStringEx(language, ZLR_STR_ABOUT_LEGAL_FIRST, nullptr, 0);
        const int second = LoadStringEx(language, ZLR_STR_ABOUT_LEGAL_SECOND, nullptr, 0);
        const int capacity = first + 1 + second + 1;
        m_pszLegal = new (std::nothrow) wchar_t[capacity];
        if (m_pszLegal) {
            LoadStringEx(language, ZLR_STR_ABOUT_LEGAL_FIRST, m_pszLegal, first + 1);
            m_pszLegal[first] = L' ';
            LoadStringEx(language, ZLR_STR_ABOUT_LEGAL_SECOND, m_pszLegal + first + 1, second + 1);
        }
    }
    HINSTANCE graphics = ZCMOD_GetCommonZGR();
    if (!m_pBanner)
        m_pBanner = LoadPicture(graphics, ZGR_BMP_ABOUT_BANNER);
    if (!m_pMaker) {
        m_pMaker = LoadPicture(graphics, ZGR_BMP_ABOUT_MAKER);
        // Pictures come out of LoadFromRes turned already in a right-to-left layout of the library, and the
        // box's mirrored context turns them back as they are drawn. The maker's mark, which carries lettering, is
        // turned here when only the context turns it: a right-to-left language in a left-to-right layout.
        if (m_pMaker && MirrorsWindow()) {
            CVuikLib::MirrorBitmap(m_pMaker->GetPrimary());
            if (m_pMaker->GetMask())
                CVuikLib::MirrorBitmap(m_pMaker->GetMask());
        }
    }
}

void CCommonAboutDlg::FreeGlobalResources()
{
    FreeText(m_pszVersion);
    FreeText(m_pszLegal);
    FreeBitmap(m_pBanner);
    FreeBitmap(m_pMaker);
}

void CCommonAboutDlg::CreateFonts()
{
    DestroyFonts();
    // The version line is a little larger for the Chinese languages, and larger still when no language is
    // known at all (no language module could be had).
    const wchar_t* language = LanguageName();
    int versionHeight = 12;
    if (!language)
        versionHeight = 20;
    else if (_wcsicmp(language, L"chi-tc") == 0 || _wcsicmp(language, L"chi-hk") == 0 ||
             _wcsicmp(language, L"chi-sc") == 0)
        versionHeight = 14;
    m_hProductFont = MakeSuiteFont(20);
    m_hVersionFont = MakeSuiteFont(versionHeight);
    m_hLegalFont = MakeSuiteFont(15);
}

void CCommonAboutDlg::DestroyFonts()
{
    for (HFONT* font : {&m_hProductFont, &m_hVersionFont, &m_hLegalFont}) {
        if (*font)
            DeleteObject(*font);
        *font = nullptr;
    }
}

int CCommonAboutDlg::LoadStringEx(HINSTANCE module, UINT id, wchar_t* buffer, int capacity)
{
    if (buffer && capacity > 0)
        ZeroMemory(buffer, capacity * sizeof(wchar_t));
    if (!module)
        return 0;
    const wchar_t* block = MAKEINTRESOURCEW((id >> 4) + 1);
    HRSRC resource = FindResourceExW(module, RT_STRING, block, MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL));
    if (!resource)
        resource = FindResourceW(module, block, RT_STRING);
    HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    const WORD* walk = loaded ? static_cast<const WORD*>(LockResource(loaded)) : nullptr;
    if (!walk)
        return 0;
    // A block is sixteen length-prefixed strings; the walk stays inside the resource however it is made.
    const WORD* end = walk + SizeofResource(module, resource) / sizeof(WORD);
    for (UINT skip = id & 15; skip > 0; --skip) {
        if (walk >= end || *walk > end - walk - 1)
            return 0;
        walk += 1 + *walk;
    }
    if (walk >= end || *walk > end - walk - 1)
        return 0;
    const int length = *walk;
    if (buffer && length < capacity)
        CopyMemory(buffer, walk + 1, length * sizeof(wchar_t));
    return length;
}

void CCommonAboutDlg::FreeApplicationResources()
{
    FreeText(m_pszTitle);
    FreeText(m_pszProduct);
    FreeText(m_pszFooter);
    FreeBitmap(m_pProduct);
}

void CCommonAboutDlg::SetAboutBoxParams(const tagABOUTBOXPARAMS* params)
{
    if (!params)
        return;
    FreeApplicationResources();
    m_hParent = params->m_hParent;
    m_hStringModule = params->m_hStringModule;
    m_hIconModule = params->m_hIconModule;
    m_hIconData = params->m_hIconData;
    m_nIconId = params->m_nIconId;
    m_pProduct = LoadPicture(m_hIconModule, params->m_nProductId);
    m_pszTitle = LoadOwnedString(LoadStringEx, m_hStringModule, params->m_nTitleId);
    m_pszProduct = LoadOwnedString(LoadStringEx, m_hStringModule, params->m_nProductId);
    m_pszFooter = LoadOwnedString(LoadStringEx, m_hStringModule, params->m_nFooterId);
    m_bParamsSet = true;
}

int CCommonAboutDlg::IsRTL() { return CRTLHelper::IsRTL(LanguageName()); }

bool CCommonAboutDlg::MirrorsWindow() { return IsRTL() && !CVuikLib::IsLayoutRTL(); }

bool CCommonAboutDlg::MirrorsDrawing() { return CVuikLib::IsLayoutRTL() != 0; }

INT_PTR CCommonAboutDlg::DoModal()
{
    if (!m_bParamsSet)
        return -1;
    HINSTANCE module = zcmod::LibraryModule();
    // In a right-to-left layout of the library the drawn frame turns its own picture and its buttons round, so
    // the window stays unmirrored and the box mirrors what it paints itself (a mirrored window as well would turn
    // the frame back). A right-to-left language in a left-to-right layout flips the template.
    const int rtl = MirrorsWindow() ? 1 : 0;
    DLGTEMPLATE* flipped = CRTLHelper::FlipDialog(module, MAKEINTRESOURCEW(ZCMOD_DLG_ABOUT), rtl);
    HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(ZCMOD_DLG_ABOUT), RT_DIALOG);
    if (!flipped || !resource)
        return -1;
    // A flip stays in the loaded template for the life of the process: the box runs from a copy whose layout
    // bit is the present language's, so that a process that changes its language between boxes shows each
    // one the right way round.
    const auto* bytes = reinterpret_cast<const uint8_t*>(flipped);
    std::vector<uint8_t> copy(bytes, bytes + SizeofResource(module, resource));
    const zcmod::DialogTemplateKind kind = zcmod::GetDialogTemplateKind(copy.data(), copy.size());
    if (kind == zcmod::DialogTemplateKind::Invalid)
        return -1;
    DWORD exStyle = 0;
    std::memcpy(&exStyle, copy.data() + zcmod::DialogExStyleOffset(kind), sizeof(exStyle));
    exStyle = rtl ? (exStyle | zcmod::kLayoutRtlExStyle) : (exStyle & ~static_cast<DWORD>(zcmod::kLayoutRtlExStyle));
    std::memcpy(copy.data() + zcmod::DialogExStyleOffset(kind), &exStyle, sizeof(exStyle));
    const INT_PTR result = DialogBoxIndirectParamW(module, reinterpret_cast<DLGTEMPLATE*>(copy.data()), m_hParent,
                                                   AboutBoxDlgProc, reinterpret_cast<LPARAM>(this));
    // A box ended from outside (EndDialog by someone else) leaves its button object behind.
    delete m_pOkButton;
    m_pOkButton = nullptr;
    delete m_pBackground;
    m_pBackground = nullptr;
    m_hWnd = nullptr;
    return result;
}

INT_PTR CALLBACK CCommonAboutDlg::AboutBoxDlgProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CCommonAboutDlg* dialog = nullptr;
    if (message == WM_INITDIALOG) {
        dialog = reinterpret_cast<CCommonAboutDlg*>(lParam);
        if (!dialog)
            return 0;
        dialog->m_hWnd = hwnd;
        SetPropW(hwnd, kInstanceProperty, dialog);
        return dialog->OnInitDialog();
    }
    dialog = static_cast<CCommonAboutDlg*>(GetPropW(hwnd, kInstanceProperty));
    if (!dialog)
        return 0;
    switch (message) {
        case WM_COMMAND:
            return dialog->OnCommand(wParam, lParam);
        case WM_VUIK_AFTERPAINT:
            return dialog->OnCustomPaint(reinterpret_cast<HDC>(wParam));
        case WM_NCDESTROY:
            // The window goes: it no longer leads to the object.
            RemovePropW(hwnd, kInstanceProperty);
            return 0;
        default:
            return 0;
    }
}

INT_PTR CCommonAboutDlg::OnInitDialog()
{
    SetWindowTextW(m_hWnd, GetTitleText());
    SetClassLongPtrW(m_hWnd, GCL_STYLE, GetClassLongPtrW(m_hWnd, GCL_STYLE) | CS_DROPSHADOW);
    SetWindowPos(m_hWnd, nullptr, 0, 0, kWidth, kHeight, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);

    DWORD flags = kCaptionFlags;
    CAPTIONAPPICONDATA icon = {static_cast<DWORD>(reinterpret_cast<UINT_PTR>(m_hIconData)), m_hIconModule, m_nIconId};
    if (m_nIconId)
        flags |= CVuikWindowBackgroundCtrl::CAPTION_APPICON;
    delete m_pBackground;
    m_pBackground = new (std::nothrow) CVuikWindowBackgroundCtrl;
    if (m_pBackground) {
        m_pBackground->SetSkin(&m_BackgroundSkin);
        m_pBackground->SubclassWindow(m_hWnd, m_hWnd, m_nIconId ? &icon : nullptr, flags);
    }

    // The OK button takes its faces and its tick from the theme.
    HINSTANCE savedResources = CVuikLib::GetResourceInstance();
    CVuikLib::SetResourceInstance(ZCMOD_GetCommonZGR());
    RECT client;
    GetClientRect(m_hWnd, &client);
    RECT place = {client.right - 50, client.bottom - 50, client.right, client.bottom};
    OffsetRect(&place, -15, 0);
    m_pOkButton = new (std::nothrow) CVuikCommonButtonCtrl;
    if (m_pOkButton && !m_pOkButton->Create(m_hWnd, place, IDOK, 0x56000000, WS_EX_NOPARENTNOTIFY, CommonButtonMedium)) {
        delete m_pOkButton;
        m_pOkButton = nullptr;
    }
    if (m_pOkButton && MirrorsDrawing()) {
        // The button took its own size at the place's left edge: the mirror of that, in an unmirrored window.
        RECT made;
        GetWindowRect(m_pOkButton->m_hWnd, &made);
        SetWindowPos(m_pOkButton->m_hWnd, nullptr, client.right - place.left - (made.right - made.left), place.top, 0,
                     0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (m_pOkButton) {
        // A tick keeps its direction right to left.
        m_pOkButton->SetButtonIcon(ZGR_BMP_ABOUT_OK_ICON, ZGR_BMP_ABOUT_OK_ICON_DISABLED, TRUE);
        wchar_t text[64] = {};
        ZCMOD_LoadString(ZLR_STR_ABOUT_OK, text, 64);
        SetWindowTextW(m_pOkButton->m_hWnd, text);
        m_pOkButton->SetTooltip(text);
    }
    CVuikLib::SetResourceInstance(savedResources);

    CenterAboutBox();
    return 1;
}

INT_PTR CCommonAboutDlg::OnCommand(WPARAM wParam, LPARAM)
{
    const UINT id = LOWORD(wParam);
    if (id != IDOK && id != IDCANCEL)
        return 0;
    delete m_pOkButton;
    m_pOkButton = nullptr;
    EndDialog(m_hWnd, id);
    return 1;
}

INT_PTR CCommonAboutDlg::OnCustomPaint(HDC dc)
{
    if (!dc)
        return 0;
    RECT client;
    GetClientRect(m_hWnd, &client);
    const int width = client.right - client.left;
    const int height = client.bottom - client.top;
    zcmod::SaveDCGuard saved(dc);
    if (MirrorsDrawing())
        SetLayout(dc, LAYOUT_RTL);
    CVuikGraphics graphics(dc);
    if (m_pBanner)
        graphics.DrawImage(m_pBanner, 1, 30);
    if (m_pMaker)
        graphics.DrawImage(m_pMaker, 23, height - 23);
    if (m_pProduct)
        graphics.DrawImage(m_pProduct, 40, 70);

    const UINT reading = IsRTL() ? DT_RTLREADING : 0;
    SetTextColor(dc, RGB(255, 255, 255));
    SetBkMode(dc, TRANSPARENT);
    SelectObject(dc, m_hProductFont);
    const RECT name = DrawLineAt(dc, GetProductText(), 90, 70, reading);
    const int nameHeight = name.bottom - name.top;
    // The version line sits under the name: its x comes from the name's top and its y from the name's left,
    // which puts it at (70 + h, 90) for the name's place.
    SelectObject(dc, m_hVersionFont);
    DrawLineAt(dc, GetVersionText(), name.top + nameHeight, name.left, reading);

    SetTextColor(dc, kFooterColor);
    DrawLineAt(dc, GetFooterText(), 23, height - 43, reading);

    SetTextColor(dc, RGB(0, 0, 0));
    SelectObject(dc, m_hLegalFont);
    RECT legal = {client.left + 35, client.top + 200, width - 30, height - 70};
    DrawTextW(dc, GetLegalText(), -1, &legal, DT_WORDBREAK | reading);
    return 1;
}

void CCommonAboutDlg::CenterAboutBox()
{
    RECT box, over;
    GetWindowRect(m_hWnd, &box);
    if (m_hParent && IsWindow(m_hParent) && !IsIconic(m_hParent))
        GetWindowRect(m_hParent, &over);
    else
        GetWindowRect(GetDesktopWindow(), &over);
    const int width = box.right - box.left;
    const int height = box.bottom - box.top;
    RECT placed;
    placed.left = over.left + ((over.right - over.left) - width) / 2;
    placed.top = over.top + ((over.bottom - over.top) - height) / 2;
    placed.right = placed.left + width;
    placed.bottom = placed.top + height;
    ClipToMonitor(placed);
    SetWindowPos(m_hWnd, nullptr, placed.left, placed.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

void CCommonAboutDlg::ClipToMonitor(RECT& rect)
{
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    if (!GetMonitorInfoW(MonitorFromRect(&rect, MONITOR_DEFAULTTONEAREST), &info))
        return;
    const RECT& monitor = info.rcMonitor;
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    // Too large a box keeps its left and top edges on the monitor.
    int left = rect.left < monitor.right - width ? rect.left : monitor.right - width;
    int top = rect.top < monitor.bottom - height ? rect.top : monitor.bottom - height;
    if (left < monitor.left)
        left = monitor.left;
    if (top < monitor.top)
        top = monitor.top;
    rect.left = left;
    rect.top = top;
    rect.right = left + width;
    rect.bottom = top + height;
}
