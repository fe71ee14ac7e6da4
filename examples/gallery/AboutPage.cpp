// The about box: a button opens CCommonAboutDlg with the gallery's own title, name, footer and picture. In a
// screenshot run the page opens the box by itself, keeps a picture of it as it showed, and closes it.
#include <windows.h>

#include <memory>

#include "AboutPageIds.h"
#include "Drawing.h"
#include "GalleryPage.h"
#include "zcmod/CommonAboutDlg.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "PushButtons.h"

namespace {

using gallery::DrawBitmap;
using gallery::Format;
using gallery::RightToLeftLanguage;
using gallery::SnapshotWindow;
using gallery::SuiteFont;
using gallery::Swatch;
using gallery::Text;

constexpr wchar_t kPanelClass[] = L"GalleryAboutPanel";
constexpr UINT kOpenMessage = WM_APP + 40;
constexpr UINT_PTR kCaptureTimer = 41;
constexpr int kOpenButton = 100;

class AboutPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"About box"; }

    void Enter(HWND host) override
    {
        m_host = host;
        WNDCLASSW panelClass = {};
        panelClass.lpfnWndProc = PanelProc;
        panelClass.hInstance = GetModuleHandleW(nullptr);
        panelClass.lpszClassName = kPanelClass;
        panelClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        RegisterClassW(&panelClass);
        m_panel = CreateWindowExW(0, kPanelClass, L"", WS_CHILD | WS_VISIBLE, 24, 84, 240, 30, host, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
        SetWindowLongPtrW(m_panel, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        m_pushButtons.Add(m_panel,
                          RightToLeftLanguage() ? L"\x05D0\x05D5\x05D3\x05D5\x05EA..." : L"About Desk Hub Gallery...",
                          0, 0, 240, 30, kOpenButton);
        if (wcsstr(GetCommandLineW(), L"--screenshots"))
            PostMessageW(m_panel, kOpenMessage, 1, 0);
    }

    void Leave() override
    {
        m_pushButtons.Clear();
        if (m_panel)
            DestroyWindow(m_panel);
        m_panel = nullptr;
        if (m_snapshot)
            DeleteObject(m_snapshot);
        m_snapshot = nullptr;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF dim = DkhLoadColor(nullptr, ZGR_COLOR_TEXT_DISABLED);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        Swatch(dc, area, window, window);
        const int left = area.left + 24;
        HFONT heading = SuiteFont(22, FW_BOLD), bold = SuiteFont(15, FW_BOLD), plain = SuiteFont(14);
        HGDIOBJ old = SelectObject(dc, heading);
        int y = Text(dc, left, area.top + 16, L"About box", accent) + 4;
        SelectObject(dc, plain);
        Text(dc, left, y,
             L"CCommonAboutDlg: the application's title, name, footer and picture; the suite's banner, version line "
             L"and legal text.",
             dim);
        y = area.top + 130;
        if (m_snapshot) {
            SelectObject(dc, bold);
            y = Text(dc, left, y, Format(L"The box as the button opened it (closed with %d)", static_cast<int>(m_result)), text) + 6;
            DrawBitmap(dc, left, y, m_snapshot);
        }
        SelectObject(dc, old);
        DeleteObject(heading);
        DeleteObject(bold);
        DeleteObject(plain);
    }

    std::wstring Verify() override
    {
        if (!m_snapshot)
            return L"the about box was not seen";
        if (m_result != IDOK)
            return Format(L"the about box closed with %d, not by its OK button", static_cast<int>(m_result));
        if (m_version.find(L"Zelvo") != 0)
            return L"the version line does not start with the maker: " + m_version;
        return L"";
    }

private:
    // Opens the box; with `capture`, a timer of its modal loop keeps a picture of it and presses its OK button.
    void Open(bool capture)
    {
        const bool hebrew = RightToLeftLanguage();
        tagABOUTBOXPARAMS params = {};
        params.m_hStringModule = params.m_hIconModule = GetModuleHandleW(nullptr);
        params.m_hParent = GetAncestor(m_host, GA_ROOT);
        params.m_nTitleId = hebrew ? IDS_GALLERY_ABOUT_TITLE_HEB : IDS_GALLERY_ABOUT_TITLE;
        params.m_nProductId = hebrew ? IDS_GALLERY_ABOUT_PRODUCT_HEB : IDS_GALLERY_ABOUT_PRODUCT;
        params.m_nFooterId = hebrew ? IDS_GALLERY_ABOUT_FOOTER_HEB : IDS_GALLERY_ABOUT_FOOTER;
        params.m_nIconId = 7600;  // the gallery's caption icon (art/appicon.py)
        CCommonAboutDlg about;
        about.SetAboutBoxParams(&params);
        m_version = about.GetVersionText();
        m_open = &about;
        if (capture)
            SetTimer(m_panel, kCaptureTimer, 300, nullptr);
        m_result = about.DoModal();
        KillTimer(m_panel, kCaptureTimer);
        m_open = nullptr;
        InvalidateRect(m_host, nullptr, FALSE);
    }

    void Capture()
    {
        HWND box = m_open ? m_open->GetSafeHwnd() : nullptr;
        if (!box || !IsWindowVisible(box))
            return;
        KillTimer(m_panel, kCaptureTimer);
        RedrawWindow(box, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        if (m_snapshot)
            DeleteObject(m_snapshot);
        m_snapshot = SnapshotWindow(box);
        // As a user would: the OK button, clicked.
        if (HWND ok = GetDlgItem(box, IDOK))
            SendMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(ok));
    }

    static LRESULT CALLBACK PanelProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* self = reinterpret_cast<AboutPage*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self) {
            if (message == WM_COMMAND && LOWORD(wParam) == kOpenButton && HIWORD(wParam) == BN_CLICKED) {
                self->Open(false);
                return 0;
            }
            if (message == kOpenMessage) {
                self->Open(wParam != 0);
                return 0;
            }
            if (message == WM_TIMER && wParam == kCaptureTimer) {
                self->Capture();
                return 0;
            }
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    gallery::PushButtons m_pushButtons;
    HWND m_host = nullptr;
    HWND m_panel = nullptr;
    HBITMAP m_snapshot = nullptr;
    CCommonAboutDlg* m_open = nullptr;
    INT_PTR m_result = 0;
    std::wstring m_version;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeAboutPage() { return std::make_unique<AboutPage>(); }
