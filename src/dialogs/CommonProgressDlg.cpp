#include "zcmod/CommonProgressDlg.h"

#include <cstring>
#include <cwchar>
#include <new>
#include <vector>

#include "frame/Handles.h"
#include "frame/Win32Util.h"
#include "frame/core/DialogTemplate.h"
#include "zcmod/VuikMessages.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikLib.h"

namespace {

// What the work thread reads: the event to set at the end, and the work.
struct WorkRecord {
    HANDLE event;
    CCommonProgressDlg::WorkFunction function;
    void* argument;
};

// What the watch thread reads; it frees the record itself.
struct WatchRecord {
    HWND dialog;
    HANDLE event;
};

wchar_t* CopyText(const wchar_t* text)
{
    if (!text)
        return nullptr;
    const size_t length = wcslen(text);
    wchar_t* copy = new (std::nothrow) wchar_t[length + 1];
    if (copy)
        std::memcpy(copy, text, (length + 1) * sizeof(wchar_t));
    return copy;
}

// A colour of the theme, or `fallback` when there is no colour loader or the theme lacks it.
COLORREF ThemeColor(UINT id, COLORREF fallback)
{
    COLORREF colour = fallback;
    if (CStrColorLoader* loader = CCommonModuleState::Get().m_pColorLoader)
        loader->LoadColor(ZCMOD_GetCommonZGR(), id, &colour);
    return colour;
}

class LockGuard {
public:
    explicit LockGuard(CRITICAL_SECTION* lock) : m_lock(lock) { EnterCriticalSection(m_lock); }
    ~LockGuard() { LeaveCriticalSection(m_lock); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    CRITICAL_SECTION* m_lock;
};

// Keeps `rect` (a window's rectangle) inside `area`, moving it and never resizing it.
void KeepInside(RECT& rect, const RECT& area)
{
    const LONG width = rect.right - rect.left, height = rect.bottom - rect.top;
    if (rect.right > area.right)
        rect.left = area.right - width;
    if (rect.left < area.left)
        rect.left = area.left;
    if (rect.bottom > area.bottom)
        rect.top = area.bottom - height;
    if (rect.top < area.top)
        rect.top = area.top;
    rect.right = rect.left + width;
    rect.bottom = rect.top + height;
}

}  // namespace

CCommonProgressDlg::CCommonProgressDlg(const wchar_t* caption, const wchar_t* text)
    : m_hWnd(nullptr),
      m_hModeless(nullptr),
      m_hFont(nullptr),
      m_rcAnimation(),
      m_pszText(CopyText(text)),
      m_pszCaption(CopyText(caption)),
      m_hDoneEvent(nullptr),
      m_hWatchThread(nullptr),
      m_bControlsUsed(false),
      m_pTemplateCopy(nullptr)
{
    InitializeCriticalSection(&m_lock);
    m_leftSkin.SetSkinDef(CVuikStaticBitmapSkin::m_DefaultSkinDef);
    m_rightSkin.SetSkinDef(CVuikStaticBitmapSkin::m_DefaultSkinDef);
}

CCommonProgressDlg::~CCommonProgressDlg()
{
    DestroyModeless();
    // A modeless dialog's watch thread may still wait on an event that its user never set.
    if (m_hWatchThread && m_hDoneEvent)
        SetEvent(m_hDoneEvent);
    JoinWatch();
    m_animation.StopAnimation();
    m_animation.DeleteAnimation();
    delete[] m_pszText;
    delete[] m_pszCaption;
    if (m_hFont)
        DeleteObject(m_hFont);
    if (m_hDoneEvent)
        CloseHandle(m_hDoneEvent);
    m_bitmaps.Clear();
    m_leftSkin.Unload();
    m_rightSkin.Unload();
    m_backgroundSkin.Unload();
    delete[] m_pTemplateCopy;
    DeleteCriticalSection(&m_lock);
}

void CCommonProgressDlg::ReplaceText(wchar_t** slot, const wchar_t* text)
{
    // The buffer has room for the terminator: a buffer of exactly the text's length can hold no text with
    // the bounded copy, so every non-empty text would be lost.
    wchar_t* copy = CopyText(text);
    wchar_t* old = nullptr;
    {
        LockGuard lock(&m_lock);
        old = *slot;
        *slot = copy;
    }
    delete[] old;
}

void CCommonProgressDlg::SetWindowCaption(const wchar_t* text)
{
    ReplaceText(&m_pszCaption, text);
    HWND dialog = m_hWnd;
    if (dialog && IsWindow(dialog))
        SetWindowTextW(dialog, text ? text : L"");
}

void CCommonProgressDlg::SetProgressText(const wchar_t* text)
{
    ReplaceText(&m_pszText, text);
    HWND dialog = m_hWnd;
    if (dialog && IsWindow(dialog))
        InvalidateRect(dialog, nullptr, TRUE);
}

int CCommonProgressDlg::GetProgressText(wchar_t* buffer, int size)
{
    if (!buffer || size < 1)
        return 0;
    LockGuard lock(&m_lock);
    int copied = 0;
    if (m_pszText)
        for (; copied < size - 1 && m_pszText[copied]; ++copied)
            buffer[copied] = m_pszText[copied];
    buffer[copied] = L'\0';
    return copied;
}

const DLGTEMPLATE* CCommonProgressDlg::PrepareTemplate()
{
    // The window itself is never mirrored by the system: the frame, the statics and the animation turn their
    // drawings round themselves in a right-to-left layout, and a mirrored window would turn them back.
    // OnInitDialog mirrors the places of the controls instead.
    HINSTANCE module = zcmod::LibraryModule();
    DLGTEMPLATE* flipped = CRTLHelper::FlipDialog(module, MAKEINTRESOURCEW(ZCMOD_DLG_PROGRESS), 0);
    if (!flipped)
        return flipped;
    // A flip elsewhere marks the loaded template for the rest of the process; the dialog then gets a copy
    // with the mark taken off.
    HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(ZCMOD_DLG_PROGRESS), RT_DIALOG);
    const DWORD size = resource ? SizeofResource(module, resource) : 0;
    const auto* bytes = reinterpret_cast<const uint8_t*>(flipped);
    const zcmod::DialogTemplateKind kind = zcmod::GetDialogTemplateKind(bytes, size);
    if (kind == zcmod::DialogTemplateKind::Invalid)
        return flipped;
    const size_t offset = zcmod::DialogExStyleOffset(kind);
    DWORD exStyle = 0;
    std::memcpy(&exStyle, bytes + offset, sizeof(exStyle));
    if (!(exStyle & zcmod::kLayoutRtlExStyle))
        return flipped;
    delete[] m_pTemplateCopy;
    m_pTemplateCopy = new (std::nothrow) BYTE[size];
    if (!m_pTemplateCopy)
        return flipped;
    std::memcpy(m_pTemplateCopy, bytes, size);
    exStyle &= ~static_cast<DWORD>(zcmod::kLayoutRtlExStyle);
    std::memcpy(m_pTemplateCopy + offset, &exStyle, sizeof(exStyle));
    return reinterpret_cast<const DLGTEMPLATE*>(m_pTemplateCopy);
}

INT_PTR CCommonProgressDlg::DoModal(WorkFunction function, void* argument, HWND parent)
{
    if (m_hDoneEvent)
        CloseHandle(m_hDoneEvent);
    m_hDoneEvent = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    if (!m_hDoneEvent)
        return -1;

    WorkRecord* work = new (std::nothrow) WorkRecord{m_hDoneEvent, function, argument};
    HANDLE worker = work ? CreateThread(nullptr, 0, ModalDialogThread, work, 0, nullptr) : nullptr;
    if (!worker) {
        // Without a work thread nothing would ever end the dialog.
        delete work;
        CloseHandle(m_hDoneEvent);
        m_hDoneEvent = nullptr;
        return -1;
    }

    const DLGTEMPLATE* dialogTemplate = PrepareTemplate();
    const INT_PTR shown = dialogTemplate ? DialogBoxIndirectParamW(zcmod::LibraryModule(), dialogTemplate, parent,
                                                                   CommonDialogProc, reinterpret_cast<LPARAM>(this))
                                         : -1;

    // The dialog ends after the work has set the event, so the work thread is at most a few instructions
    // from its end; a dialog that ended otherwise (its owner destroyed) waits here for the work, whose record
    // and result are still needed.
    WaitForSingleObject(worker, INFINITE);
    DWORD code = 0;
    const BOOL read = GetExitCodeThread(worker, &code);
    CloseHandle(worker);
    delete work;
    if (shown == -1 && !m_hWatchThread) {
        // The dialog never came up: the event is still set and nobody watches it.
        CloseHandle(m_hDoneEvent);
        m_hDoneEvent = nullptr;
        return read ? static_cast<INT_PTR>(code) : -1;
    }
    JoinWatch();
    CloseHandle(m_hDoneEvent);
    m_hDoneEvent = nullptr;
    return read ? static_cast<INT_PTR>(code) : -1;
}

DWORD WINAPI CCommonProgressDlg::ModalDialogThread(void* parameter)
{
    const WorkRecord* work = static_cast<const WorkRecord*>(parameter);
    const LONGLONG result = work->function ? work->function(work->argument) : 0;
    SetEvent(work->event);
    // The exit code holds 32 bits: the high half of the result is cut off here.
    return static_cast<DWORD>(result);
}

DWORD WINAPI CCommonProgressDlg::EventMonitorThread(void* parameter)
{
    WatchRecord* watch = static_cast<WatchRecord*>(parameter);
    WaitForSingleObject(watch->event, INFINITE);
    PostMessageW(watch->dialog, WM_PROGRESS_DONE, 0, 0);
    delete watch;
    return 0;
}

void CCommonProgressDlg::StartWatch(HWND dialog)
{
    JoinWatch();
    WatchRecord* watch = new (std::nothrow) WatchRecord{dialog, m_hDoneEvent};
    if (!watch)
        return;
    m_hWatchThread = CreateThread(nullptr, 0, EventMonitorThread, watch, 0, nullptr);
    if (!m_hWatchThread)
        delete watch;
}

void CCommonProgressDlg::JoinWatch()
{
    if (!m_hWatchThread)
        return;
    WaitForSingleObject(m_hWatchThread, INFINITE);
    CloseHandle(m_hWatchThread);
    m_hWatchThread = nullptr;
}

INT_PTR CALLBACK CCommonProgressDlg::CommonDialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CCommonProgressDlg* self = nullptr;
    if (message == WM_INITDIALOG) {
        self = reinterpret_cast<CCommonProgressDlg*>(lParam);
        if (!self)
            return 0;
        self->m_hWnd = hwnd;
        SetPropW(hwnd, ZCMOD_PROP_PROGRESS_INSTANCE, self);
    } else {
        self = static_cast<CCommonProgressDlg*>(GetPropW(hwnd, ZCMOD_PROP_PROGRESS_INSTANCE));
        if (!self)
            return 0;
    }
    switch (message) {
        case WM_INITDIALOG:
            return self->OnInitDialog();
        case WM_DESTROY:
            self->OnDestroy();
            return 0;
        case WM_PROGRESS_DONE:
            EndDialog(hwnd, 0);
            return 1;
        case WM_VUIK_AFTERPAINT:
            return self->OnCustomPaint(reinterpret_cast<HDC>(wParam));
        default:
            // WM_COMMAND with IDCANCEL from the frame's close button (and Escape) ends up here and is ignored:
            // the dialog lasts exactly as long as the work.
            return 0;
    }
}

void CCommonProgressDlg::RenewControls()
{
    if (!m_bControlsUsed) {
        m_bControlsUsed = true;
        return;
    }
    m_background.~CVuikWindowBackgroundCtrl();
    new (&m_background) CVuikWindowBackgroundCtrl();
    m_leftImage.~CVuikStaticCtrl();
    new (&m_leftImage) CVuikStaticCtrl();
    m_rightImage.~CVuikStaticCtrl();
    new (&m_rightImage) CVuikStaticCtrl();
}

BOOL CCommonProgressDlg::OnInitDialog()
{
    HWND dialog = m_hWnd;
    RenewControls();
    {
        LockGuard lock(&m_lock);
        SetWindowTextW(dialog, m_pszCaption ? m_pszCaption : L"");
    }

    // The client takes the theme's window colour, over which the animation's frames are drawn; the rest of
    // the frame keeps the default look.
    CVuikWindowBackgroundSkinDef frameDef = CVuikWindowBackgroundSkin::m_DefaultSkinDef;
    const COLORREF defaultClient = RGB((frameDef.m_crClient >> 16) & 0xFF, (frameDef.m_crClient >> 8) & 0xFF,
                                       frameDef.m_crClient & 0xFF);
    const COLORREF ground = ThemeColor(ZGR_COLOR_WINDOW, defaultClient);
    frameDef.m_crClient = 0xFF000000u | (GetRValue(ground) << 16) | (GetGValue(ground) << 8) | GetBValue(ground);
    m_backgroundSkin.SetSkinDef(frameDef);
    m_backgroundSkin.Load();
    m_background.SetSkin(&m_backgroundSkin);
    m_background.SubclassWindow(dialog, dialog, nullptr, CVuikWindowBackgroundCtrl::CAPTION_ISDIALOG);

    if (!m_hFont) {
        LOGFONTW font = {};
        DkhLoadFont(&font);
        font.lfHeight = 15;
        font.lfWeight = 500;
        font.lfCharSet = DEFAULT_CHARSET;
        font.lfQuality = CLEARTYPE_QUALITY;
        m_hFont = CreateFontIndirectW(&font);
    }

    const HINSTANCE savedResources = CVuikLib::GetResourceInstance();
    CVuikLib::SetResourceInstance(ZCMOD_GetCommonZGR());
    CVuikStaticBitmapSkinDef side = CVuikStaticBitmapSkin::m_DefaultSkinDef;
    side.m_bStretch = 0;
    side.m_bNoMirror = 0;
    side.m_nBitmapId = ZGR_BMP_PROGRESS_LEFT;
    m_leftSkin.SetSkinDef(side);
    side.m_nBitmapId = ZGR_BMP_PROGRESS_RIGHT;
    m_rightSkin.SetSkinDef(side);
    m_leftSkin.Load();
    m_rightSkin.Load();
    if (HWND left = GetDlgItem(dialog, IDC_LEFT_IMAGE)) {
        m_leftImage.SubclassWindow(left);
        m_leftImage.SetSkin(&m_leftSkin);
    }
    if (HWND right = GetDlgItem(dialog, IDC_RIGHT_IMAGE)) {
        m_rightImage.SubclassWindow(right);
        m_rightImage.SetSkin(&m_rightSkin);
    }

    if (CVuikLib::IsLayoutRTL())
        MirrorControls();

    HWND placeholder = GetDlgItem(dialog, IDC_ANIMATION);
    SetRectEmpty(&m_rcAnimation);
    if (placeholder) {
        GetWindowRect(placeholder, &m_rcAnimation);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&m_rcAnimation), 2);
    }

    LoadAnimationFrames(CVuikLib::IsLayoutRTL() != 0, ground);
    m_animation.SetDestinationWindow(&m_hWnd);
    m_animation.SetAnimationCoordinates(POINT{m_rcAnimation.left, m_rcAnimation.top});
    if (placeholder)
        ShowWindow(placeholder, SW_HIDE);
    m_animation.StartAnimation();

    CVuikLib::SetResourceInstance(savedResources);
    CenterWindow(GetParent(dialog));
    StartWatch(dialog);
    return TRUE;
}

void CCommonProgressDlg::MirrorControls()
{
    RECT client;
    GetClientRect(m_hWnd, &client);
    for (int id : {IDC_LEFT_IMAGE, IDC_RIGHT_IMAGE, IDC_ANIMATION}) {
        HWND control = GetDlgItem(m_hWnd, id);
        if (!control)
            continue;
        RECT r;
        GetWindowRect(control, &r);
        MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&r), 2);
        SetWindowPos(control, nullptr, client.right - r.right, r.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

void CCommonProgressDlg::LoadAnimationFrames(bool rtl, COLORREF ground)
{
    HMODULE graphics = ZCMOD_GetCommonZGR();
    const int frames = ZGR_PNG_ANIMATION_LAST - ZGR_PNG_ANIMATION_FIRST + 1;
    for (int i = 0; i < frames; ++i)
        m_bitmaps.NLoadBitmap(graphics, ZGR_PNG_ANIMATION_FIRST + i, BT_IMAGE, i);

    m_animation.StopAnimation();
    m_animation.SetAnimationMembers(AnimationCapacity, AnimationDelay, 0);
    for (int i = 0; i < frames; ++i) {
        if (!m_bitmaps.GetBitmapHandle(BT_IMAGE, i))
            continue;  // a missing frame stays empty: the animation skips it
        // The placeholder lies on the client, which is one colour: the frame is blended over that colour.
        m_bitmaps.CreateColorBackground(ground, 0, i);
        if (m_bitmaps.AlphaBlendBitmaps(2, 0, i) < 0)
            continue;
        const int width = m_bitmaps.GetBitmapWidth(BT_RESULT), height = m_bitmaps.GetBitmapHeight(BT_RESULT);
        // Drawn left to right, the frames run the other way in a right-to-left layout, as the controls do.
        if (rtl)
            m_bitmaps.MirrorSection(BT_RESULT, i, 0, 0, width, height, 1, 0);
        if (HBITMAP frame = m_bitmaps.GetBitmapHandle(BT_RESULT, i))
            m_animation.SetBitmapHandles(i, frame);
    }
}

void CCommonProgressDlg::OnDestroy()
{
    m_animation.StopAnimation();
    RemovePropW(m_hWnd, ZCMOD_PROP_PROGRESS_INSTANCE);
    m_hWnd = nullptr;
}

LRESULT CCommonProgressDlg::OnCustomPaint(HDC dc)
{
    if (!dc)
        return 1;
    // The frame has just painted over the animation's place: the frame last shown goes back at once rather
    // than at the animation's next tick, so that a new progress text doesn't make the animation blink.
    if (HBITMAP frame = m_animation.GetAnimationState() ? m_animation.GetLastBitmapHandle() : nullptr) {
        BITMAP info = {};
        if (GetObjectW(frame, sizeof(info), &info)) {
            zcmod::MemoryDC memory(CreateCompatibleDC(dc));
            if (memory) {
                zcmod::SelectGuard select(memory.Get(), frame);
                BitBlt(dc, m_rcAnimation.left, m_rcAnimation.top, info.bmWidth, info.bmHeight, memory.Get(), 0, 0,
                       SRCCOPY);
            }
        }
    }
    LockGuard lock(&m_lock);
    if (!m_pszText)
        return 1;
    const int saved = SaveDC(dc);
    SetBkMode(dc, TRANSPARENT);
    if (m_hFont)
        SelectObject(dc, m_hFont);
    SetTextColor(dc, ThemeColor(ZGR_COLOR_TEXT, 0));
    const bool rtl = CVuikLib::IsLayoutRTL() != 0;
    const UINT format = rtl ? (DT_RIGHT | DT_VCENTER | DT_SINGLELINE | DT_RTLREADING) : (DT_VCENTER | DT_SINGLELINE);
    RECT text = {0, 0, 0, 0};
    DrawTextW(dc, m_pszText, -1, &text, format | DT_CALCRECT);
    // Below the animation's place, from its leading edge (the right one in a right-to-left layout), as wide
    // as the text needs.
    const LONG x = rtl ? m_rcAnimation.right - (text.right - text.left) : m_rcAnimation.left;
    OffsetRect(&text, x - text.left, m_rcAnimation.bottom - text.top);
    // Not clipped to the measured box either: its height is the font's cell, which some faces overhang.
    DrawTextW(dc, m_pszText, -1, &text, format | DT_NOCLIP);
    RestoreDC(dc, saved);
    return 1;
}

void CCommonProgressDlg::CenterWindow(HWND parent)
{
    HWND hwnd = m_hWnd ? m_hWnd : m_hModeless;
    if (!hwnd || !IsWindow(hwnd))
        return;
    const LONG style = GetWindowLongW(hwnd, GWL_STYLE);
    if (!parent)
        parent = (style & WS_CHILD) ? GetParent(hwnd) : GetWindow(hwnd, GW_OWNER);
    if (parent && (!IsWindowVisible(parent) || IsIconic(parent)))
        parent = nullptr;

    RECT dialogRect;
    GetWindowRect(hwnd, &dialogRect);
    RECT area = {0, 0, 0, 0}, around = {0, 0, 0, 0};
    if (style & WS_CHILD) {
        HWND container = GetParent(hwnd);
        GetClientRect(container, &area);
        if (parent)
            GetClientRect(parent, &around);
        else
            around = area;
        MapWindowPoints(parent ? parent : container, container, reinterpret_cast<POINT*>(&around), 2);
        MapWindowPoints(nullptr, container, reinterpret_cast<POINT*>(&dialogRect), 2);
    } else {
        MONITORINFO info = {};
        info.cbSize = sizeof(info);
        HMONITOR monitor = MonitorFromWindow(parent ? parent : hwnd, MONITOR_DEFAULTTONEAREST);
        if (!monitor || !GetMonitorInfoW(monitor, &info))
            SystemParametersInfoW(SPI_GETWORKAREA, 0, &info.rcWork, 0);
        area = info.rcWork;
        if (parent)
            GetWindowRect(parent, &around);
        else
            around = area;
    }
    const LONG width = dialogRect.right - dialogRect.left, height = dialogRect.bottom - dialogRect.top;
    RECT placed;
    placed.left = (around.left + around.right) / 2 - width / 2;
    placed.top = (around.top + around.bottom) / 2 - height / 2;
    placed.right = placed.left + width;
    placed.bottom = placed.top + height;
    if (!(style & WS_CHILD))
        KeepInside(placed, area);
    SetWindowPos(hwnd, nullptr, placed.left, placed.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

HWND CCommonProgressDlg::CreateModeless(HWND parent)
{
    DestroyModeless();
    const DLGTEMPLATE* dialogTemplate = PrepareTemplate();
    if (!dialogTemplate)
        return nullptr;
    m_hModeless = CreateDialogIndirectParamW(zcmod::LibraryModule(), dialogTemplate, parent, CommonDialogProc,
                                             reinterpret_cast<LPARAM>(this));
    if (!m_hModeless)
        return nullptr;
    CenterWindow(parent);
    SetWindowPos(m_hModeless, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    ShowWindow(m_hModeless, SW_SHOW);
    return m_hModeless;
}

void CCommonProgressDlg::DestroyModeless()
{
    if (m_hModeless && IsWindow(m_hModeless))
        DestroyWindow(m_hModeless);
    m_hModeless = nullptr;
}
