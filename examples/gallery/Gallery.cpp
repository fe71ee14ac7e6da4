// The ZCMOD gallery: one page per family of what the library offers, drawn with the library itself.
//
//   gallery.exe                      interactive: pick a page from the list
//   gallery.exe --screenshots DIR    headless: writes DIR\NN-<page>.png for every page, then exits;
//                                    exits 1 if a page fails its own checks (see GalleryPage::Verify)
//   gallery.exe --rtl                right-to-left layout
//
// It starts the library the way a client of the suite must: CVuikLib::Init with its instances, the layout
// and auto scale before any skin loads, fault reporting, and ZCMOD_Finalize at the end. Its main window wears
// the library's drawn frame (CVuikWindowBackgroundCtrl): the view, a child over the whole window, carries the
// caption with its buttons, the page list and the page itself; the footer names the page.
#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "Screenshot.h"

// Where the library has its menu bar, the gallery's pages and themes are chosen from one.
#if defined(__has_include)
#if __has_include(<zcmod/VuikMenuBarCtrl.h>)
#define GALLERY_MENU_BAR 1
#endif
#endif

namespace {

const wchar_t kMainClass[] = L"ZcmodGallery";
const wchar_t kHostClass[] = L"ZcmodGalleryPage";
const wchar_t kViewClass[] = L"ZcmodGalleryView";
const int kListWidth = 200;
const UINT_PTR kTickTimer = 1;
// The caption's icon, drawn by art/appicon.py into the gallery's resources.
const DWORD kAppIconId = 7600;
// Commands of the menu: a page by its index, a theme.
const UINT kPageCommand = 1000;
const UINT kThemeDefault = 1100;
const UINT kThemeGraphite = 1101;

struct Gallery {
    std::vector<std::unique_ptr<GalleryPage>> pages;
    size_t current = 0;
    HWND main = nullptr;
    HWND view = nullptr;
    HWND list = nullptr;
    HWND host = nullptr;
    bool rtl = false;
    std::unique_ptr<CVuikWindowBackgroundSkin> frameSkin;
    std::unique_ptr<CVuikWindowBackgroundCtrl> frame;
};

Gallery g_gallery;

GalleryPage* CurrentPage()
{
    return g_gallery.current < g_gallery.pages.size() ? g_gallery.pages[g_gallery.current].get() : nullptr;
}

void MarkMenu();

void ShowPage(size_t index)
{
    if (index >= g_gallery.pages.size())
        return;
    if (GalleryPage* old = CurrentPage())
        old->Leave();
    g_gallery.current = index;
    SendMessageW(g_gallery.list, LB_SETCURSEL, index, 0);
    g_gallery.pages[index]->Enter(g_gallery.host);
    InvalidateRect(g_gallery.host, nullptr, FALSE);
    // The footer names the page.
    if (g_gallery.view)
        InvalidateRect(g_gallery.view, nullptr, FALSE);
    MarkMenu();
}

HMENU Menu() { return g_gallery.frame ? g_gallery.frame->GetMenuHandle() : nullptr; }

// The menu's marks: the page shown and the theme in use.
void MarkMenu()
{
    HMENU menu = Menu();
    if (!menu)
        return;
    const UINT pages = static_cast<UINT>(g_gallery.pages.size());
    CheckMenuRadioItem(GetSubMenu(menu, 0), 0, pages - 1, static_cast<UINT>(g_gallery.current), MF_BYPOSITION);
    wchar_t theme[64] = {};
    LoadStringW(ZCMOD_GetCommonZGR(), ZGR_STR_THEME_NAME, theme, 64);
    CheckMenuRadioItem(GetSubMenu(menu, 1), kThemeDefault, kThemeGraphite,
                       lstrcmpiW(theme, L"Graphite") == 0 ? kThemeGraphite : kThemeDefault, MF_BYCOMMAND);
}

// 0xAARRGGBB, opaque, of a COLORREF.
DWORD Opaque(COLORREF colour)
{
    return 0xFF000000u | GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour);
}

// The drawn frames in the theme's colours. A light theme keeps the library's own look; under a dark one the
// client takes the theme's window colour and the footer a gradient just above it, with the theme's border as
// its line, so that no light strip stays under a dark page. Set as the default too: the message boxes make
// their frames from it, and their text takes the theme's colour.
void ApplyThemeToFrames()
{
    static const CVuikWindowBackgroundSkinDef light = CVuikWindowBackgroundSkin::m_DefaultSkinDef;
    CVuikWindowBackgroundSkinDef def = light;
    if (gallery::DarkTheme()) {
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF raised = RGB(GetRValue(window) + 10, GetGValue(window) + 11, GetBValue(window) + 12);
        def.m_crClient = Opaque(window);
        def.m_crFooterLine = Opaque(DkhLoadColor(nullptr, ZGR_COLOR_BORDER));
        def.m_crFooterTop = Opaque(raised);
        def.m_crFooterBottom = Opaque(window);
    }
    CVuikWindowBackgroundSkin::SetDefaultSkinDef(def);
    CVuikCommonMessageBox::SetTextColor(DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
    if (!g_gallery.frameSkin)
        return;
    def.m_bMenuBarVisible = static_cast<CVuikWindowBackgroundSkinDef>(*g_gallery.frameSkin).m_bMenuBarVisible;
    g_gallery.frameSkin->SetSkinDef(def);
    if (g_gallery.view)
        SendMessageW(g_gallery.view, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0);
}

#ifdef GALLERY_MENU_BAR
HMENU MakeMenu()
{
    HMENU bar = CreateMenu();
    HMENU pages = CreatePopupMenu();
    for (size_t i = 0; i < g_gallery.pages.size(); ++i)
        AppendMenuW(pages, MF_STRING, kPageCommand + i, g_gallery.pages[i]->Title());
    HMENU themes = CreatePopupMenu();
    AppendMenuW(themes, MF_STRING, kThemeDefault, L"&Default");
    AppendMenuW(themes, MF_STRING, kThemeGraphite, L"&Graphite");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(pages), L"&Pages");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(themes), L"&Theme");
    return bar;
}

// The user's theme is a value of the suite's settings; the library's next look at its graphics module loads
// the new one. The frame's buttons and the page then take their pictures anew.
void SwitchTheme(const wchar_t* theme)
{
    const std::wstring key = std::wstring(L"Software\\") + CUtils::GetUIManufacturerName() + L"\\DeskHub";
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"Theme", REG_SZ, theme,
                    static_cast<DWORD>((wcslen(theme) + 1) * sizeof(wchar_t)));
    ZCMOD_GetCommonZGR();
    ApplyThemeToFrames();
    g_gallery.frame->ReloadCaptionButtons();
    ShowPage(g_gallery.current);
    RedrawWindow(g_gallery.main, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}
#endif

bool MenuStripShown()
{
    return g_gallery.frameSkin &&
           static_cast<CVuikWindowBackgroundSkinDef>(*g_gallery.frameSkin).m_bMenuBarVisible != 0;
}

// The list and the page between the caption and the footer of the drawn frame, the list on the reading side.
void LayOut(int width, int height)
{
    const int top =
        CVuikWindowBackgroundCtrl::CaptionHeight + (MenuStripShown() ? CVuikWindowBackgroundCtrl::MenuBarHeight : 0);
    const int bottom = height - CVuikWindowBackgroundCtrl::FooterHeight - 1;
    const int listLeft = g_gallery.rtl ? width - 1 - kListWidth : 1;
    const int hostLeft = g_gallery.rtl ? 1 : 1 + kListWidth;
    MoveWindow(g_gallery.list, listLeft, top, kListWidth, bottom - top, TRUE);
    MoveWindow(g_gallery.host, hostLeft, top, width - 2 - kListWidth, bottom - top, TRUE);
}

// The footer's text, written after the frame has copied its picture to the screen.
void PaintFooter(HWND view, HDC dc)
{
    const GalleryPage* page = CurrentPage();
    if (!page)
        return;
    RECT r;
    GetClientRect(view, &r);
    r.top = r.bottom - CVuikWindowBackgroundCtrl::FooterHeight;
    InflateRect(&r, -16, 0);
    wchar_t text[160];
    swprintf(text, 160, L"%ls  \x2022  %u / %u", page->Title(), static_cast<unsigned>(g_gallery.current + 1),
             static_cast<unsigned>(g_gallery.pages.size()));
    HGDIOBJ old = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, DkhLoadColor(nullptr, ZGR_COLOR_TEXT_DISABLED));
    DrawTextW(dc, text, -1, &r,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | (g_gallery.rtl ? DT_RIGHT | DT_RTLREADING : DT_LEFT));
    SelectObject(dc, old);
}

LRESULT CALLBACK ViewProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_SIZE:
        LayOut(LOWORD(lParam), HIWORD(lParam));
        return 0;
    case WM_VUIK_AFTERPAINT:
        PaintFooter(hwnd, reinterpret_cast<HDC>(wParam));
        return 0;
    case WM_CTLCOLORLISTBOX: {
        // The page list takes the theme's window and text colours; one brush, made again when the theme's
        // window colour changes.
        static HBRUSH brush = nullptr;
        static COLORREF brushColour = CLR_INVALID;
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        if (!brush || window != brushColour) {
            if (brush)
                DeleteObject(brush);
            brush = CreateSolidBrush(window);
            brushColour = window;
        }
        HDC dc = reinterpret_cast<HDC>(wParam);
        SetTextColor(dc, DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        SetBkColor(dc, window);
        return reinterpret_cast<LRESULT>(brush);
    }
    case WM_COMMAND:
        if (reinterpret_cast<HWND>(lParam) == g_gallery.list && HIWORD(wParam) == LBN_SELCHANGE) {
            const LRESULT index = SendMessageW(g_gallery.list, LB_GETCURSEL, 0, 0);
            if (index >= 0)
                ShowPage(static_cast<size_t>(index));
            return 0;
        }
        break;
    default:
        break;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK HostProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT: {
        PAINTSTRUCT ps;
        HDC dc = BeginPaint(hwnd, &ps);
        RECT area;
        GetClientRect(hwnd, &area);
        // Drawn into a buffer first, so that a page never flickers.
        HDC buffer = CreateCompatibleDC(dc);
        HBITMAP bitmap = CreateCompatibleBitmap(dc, area.right, area.bottom);
        HGDIOBJ old = SelectObject(buffer, bitmap);
        if (GalleryPage* page = CurrentPage())
            page->Paint(buffer, area);
        BitBlt(dc, 0, 0, area.right, area.bottom, buffer, 0, 0, SRCCOPY);
        SelectObject(buffer, old);
        DeleteObject(bitmap);
        DeleteDC(buffer);
        EndPaint(hwnd, &ps);
        return 0;
    }
    case WM_TIMER:
        if (wParam == kTickTimer) {
            if (GalleryPage* page = CurrentPage())
                if (page->Tick())
                    InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        }
        break;
    default:
        break;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK MainProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_CREATE: {
        HINSTANCE instance = reinterpret_cast<CREATESTRUCTW*>(lParam)->hInstance;
        g_gallery.view = CreateWindowExW(0, kViewClass, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 100,
                                         100, hwnd, nullptr, instance, nullptr);
        g_gallery.list = CreateWindowExW(g_gallery.rtl ? WS_EX_RIGHT | WS_EX_RTLREADING : 0, L"LISTBOX", nullptr,
                                         WS_CHILD | WS_VISIBLE | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, 0, 0,
                                         kListWidth, 100, g_gallery.view, nullptr, instance, nullptr);
        SendMessageW(g_gallery.list, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
        for (const auto& page : g_gallery.pages)
            SendMessageW(g_gallery.list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(page->Title()));
        g_gallery.host = CreateWindowExW(0, kHostClass, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, kListWidth,
                                         0, 100, 100, g_gallery.view, nullptr, instance, nullptr);
        SetTimer(g_gallery.host, kTickTimer, 50, nullptr);
        return 0;
    }
    case WM_SIZE:
        MoveWindow(g_gallery.view, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
        return 0;
#ifdef GALLERY_MENU_BAR
    case WM_COMMAND:
        // The menu bar's commands.
        if (LOWORD(wParam) >= kPageCommand && LOWORD(wParam) < kPageCommand + g_gallery.pages.size()) {
            ShowPage(LOWORD(wParam) - kPageCommand);
            return 0;
        }
        if (LOWORD(wParam) == kThemeDefault || LOWORD(wParam) == kThemeGraphite) {
            SwitchTheme(LOWORD(wParam) == kThemeGraphite ? L"Graphite" : L"Default");
            return 0;
        }
        break;
#endif
    case WM_DESTROY:
        if (GalleryPage* page = CurrentPage())
            page->Leave();
        PostQuitMessage(0);
        return 0;
    default:
        break;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

// Lets the window system and the page's timer run for `milliseconds`.
void Pump(DWORD milliseconds)
{
    const DWORD end = GetTickCount() + milliseconds;
    MSG msg;
    while (static_cast<LONG>(end - GetTickCount()) > 0) {
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            if (GalleryPage* page = CurrentPage())
                if (page->PreTranslate(&msg))
                    continue;
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        Sleep(10);
    }
}

std::wstring FileNameFor(size_t index, const wchar_t* title)
{
    std::wstring name;
    for (const wchar_t* p = title; *p; ++p) {
        if ((*p >= L'a' && *p <= L'z') || (*p >= L'0' && *p <= L'9'))
            name.push_back(*p);
        else if (*p >= L'A' && *p <= L'Z')
            name.push_back(static_cast<wchar_t>(*p - L'A' + L'a'));
        else if (!name.empty() && name.back() != L'-')
            name.push_back(L'-');
    }
    wchar_t prefix[8];
    swprintf(prefix, 8, L"%02u-", static_cast<unsigned>(index + 1));
    return prefix + name + L".png";
}

// The colour of the caption band's top rows, which no text or button reaches.
COLORREF CaptionColour()
{
    HDC dc = GetDC(g_gallery.main);
    RECT r;
    GetClientRect(g_gallery.main, &r);
    const COLORREF colour = GetPixel(dc, r.right / 2, 2);
    ReleaseDC(g_gallery.main, dc);
    return colour;
}

// One more picture with another window in front: the frame's caption pales while the window is inactive.
int TakeInactiveScreenshot(const std::wstring& folder, size_t index)
{
    const COLORREF active = CaptionColour();
    HWND other = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"", WS_POPUP | WS_VISIBLE | WS_BORDER, 1200, 960, 60,
                                 40, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    SetForegroundWindow(other);
    Pump(300);
    const COLORREF inactive = CaptionColour();
    const std::wstring path = folder + L"\\" + FileNameFor(index, L"Inactive window");
    std::wstring error;
    int failures = 0;
    if (!gallery::SaveWindowPng(g_gallery.main, path, error)) {
        std::fprintf(stderr, "gallery: %ls\n", error.c_str());
        ++failures;
    } else if (active == inactive || GetRValue(inactive) <= GetRValue(active)) {
        std::fprintf(stderr, "gallery: the inactive caption is not paler (%06lx, active %06lx)\n",
                     static_cast<unsigned long>(inactive), static_cast<unsigned long>(active));
        ++failures;
    } else {
        std::printf("gallery: %ls\n", path.c_str());
    }
    DestroyWindow(other);
    SetForegroundWindow(g_gallery.main);
    Pump(200);
    return failures;
}

int TakeScreenshots(const std::wstring& folder)
{
    CreateDirectoryW(folder.c_str(), nullptr);
    int failures = 0;
    for (size_t i = 0; i < g_gallery.pages.size(); ++i) {
        ShowPage(i);
        UpdateWindow(g_gallery.main);
        Pump(400);
        RedrawWindow(g_gallery.main, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Pump(100);
        const std::wstring path = folder + L"\\" + FileNameFor(i, g_gallery.pages[i]->Title());
        std::wstring error;
        if (!gallery::SaveWindowPng(g_gallery.main, path, error)) {
            std::fprintf(stderr, "gallery: %ls\n", error.c_str());
            ++failures;
            continue;
        }
        const std::wstring problem = g_gallery.pages[i]->Verify();
        if (!problem.empty()) {
            std::fprintf(stderr, "gallery: page \"%ls\": %ls\n", g_gallery.pages[i]->Title(), problem.c_str());
            ++failures;
        } else {
            std::printf("gallery: %ls\n", path.c_str());
        }
    }
    failures += TakeInactiveScreenshot(folder, g_gallery.pages.size());
    std::fflush(stdout);
    return failures ? 1 : 0;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int show)
{
    std::wstring screenshots;
    bool rtl = false;
    int argc = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    for (int i = 1; argv && i < argc; ++i) {
        const std::wstring arg = argv[i];
        if (arg == L"--screenshots" && i + 1 < argc)
            screenshots = argv[++i];
        else if (arg == L"--rtl")
            rtl = true;
    }
    LocalFree(argv);
    g_gallery.rtl = rtl;

    // The client's side of the library's start.
    CVuikLib::Init(instance, instance);
    CVuikLib::SetLayout(rtl ? LAYOUT_RTL : 0);
    CVuikLib::SetAutoScale(false);
    DkhInitializeWER();

    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    wc.lpfnWndProc = HostProc;
    wc.hInstance = instance;
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.lpszClassName = kHostClass;
    RegisterClassExW(&wc);
    wc.lpfnWndProc = ViewProc;
    wc.lpszClassName = kViewClass;
    RegisterClassExW(&wc);
    wc.lpfnWndProc = MainProc;
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    wc.lpszClassName = kMainClass;
    wc.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    RegisterClassExW(&wc);

    g_gallery.pages = MakeGalleryPages();
#ifdef GALLERY_MENU_BAR
    HMENU menu = MakeMenu();
#else
    HMENU menu = nullptr;
#endif
    g_gallery.main = CreateWindowExW(0, kMainClass, L"ZCMOD gallery", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                                     CW_USEDEFAULT, CW_USEDEFAULT, 1180, 760, nullptr, menu, instance, nullptr);
    if (!g_gallery.main)
        return 1;
    // The drawn frame, with the gallery's icon in its caption.
    g_gallery.frameSkin.reset(new CVuikWindowBackgroundSkin());
    g_gallery.frame.reset(new CVuikWindowBackgroundCtrl());
    g_gallery.frame->SetSkin(g_gallery.frameSkin.get());
    // The window's menu becomes a menu bar on a strip under the caption.
    g_gallery.frameSkin->SetMenuBarVisible(menu != nullptr);
    ApplyThemeToFrames();
    const CAPTIONAPPICONDATA icon = {0, instance, kAppIconId};
    g_gallery.frame->SubclassWindow(g_gallery.view, g_gallery.main, &icon,
                                    CVuikWindowBackgroundCtrl::CAPTION_CLOSE | CVuikWindowBackgroundCtrl::CAPTION_MINIMIZE |
                                        CVuikWindowBackgroundCtrl::CAPTION_MAXIMIZE |
                                        CVuikWindowBackgroundCtrl::CAPTION_APPICON);
    ShowWindow(g_gallery.main, screenshots.empty() ? show : SW_SHOWNORMAL);
    ShowPage(0);

    int result = 0;
    if (!screenshots.empty()) {
        result = TakeScreenshots(screenshots);
        DestroyWindow(g_gallery.main);
    } else {
        MSG msg;
        while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
            if (g_gallery.frame->TranslateMenuAccelerator(&msg))
                continue;
            if (GalleryPage* page = CurrentPage())
                if (page->PreTranslate(&msg))
                    continue;
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
    }
    g_gallery.pages.clear();
    g_gallery.frame.reset();
    g_gallery.frameSkin.reset();
    ZCMOD_Finalize();
    return result;
}
