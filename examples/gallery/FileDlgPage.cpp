// The skinned file dialog: buttons that open CVuikFileDlg's open and save dialogs, with the theme's bars
// around the platform's controls.
//
// On entering, a tour driven by a timer opens the open dialog, keeps a copy of it for the page and cancels
// it, then does the same with the save dialog.
#include <windows.h>

#include <dlgs.h>

#include <memory>
#include <string>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "PushButtons.h"

using namespace gallery;

namespace {

constexpr wchar_t kPanelClass[] = L"GalleryFileDlgPanel";
constexpr int kOpenId = 101, kSaveId = 102;
constexpr UINT kTourStep = 200;

struct Texts {
    const wchar_t* open;
    const wchar_t* save;
    const wchar_t* cancelled;
    const wchar_t* chosen;
};
const Texts kEnglish = {L"Open...", L"Save as...", L"Cancelled.", L"Chosen: "};
const Texts kHebrew = {L"\x05E4\x05EA\x05D9\x05D7\x05D4...", L"\x05E9\x05DE\x05D9\x05E8\x05D4 \x05D1\x05E9\x05DD...",
                       L"\x05D1\x05D5\x05D8\x05DC.", L"\x05E0\x05D1\x05D7\x05E8: "};
const Texts& PageTexts() { return RightToLeftLanguage() ? kHebrew : kEnglish; }

// What the screen shows of the window, frame included.
HBITMAP CopyWindow(HWND window, SIZE* size)
{
    RECT r;
    GetWindowRect(window, &r);
    *size = SIZE{r.right - r.left, r.bottom - r.top};
    return CopyScreen(r);
}

class FileDlgPage : public GalleryPage {
public:
    ~FileDlgPage() override { Leave(); }
    const wchar_t* Title() const override { return L"File dialog"; }

    void Enter(HWND host) override
    {
        Leave();
        m_host = host;
        s_page = this;
        m_skin = CVuikFileDlg::GetThemeSkin();
        CVuikFileDlg::SetDefaultSkin(m_skin);
        WNDCLASSEXW wc = {};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = PanelProc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.lpszClassName = kPanelClass;
        RegisterClassExW(&wc);
        m_panel = CreateWindowExW(0, kPanelClass, L"", WS_CHILD | WS_VISIBLE, 20, 60, 360, 40, host, nullptr,
                                  wc.hInstance, nullptr);
        m_open = m_pushButtons.Add(m_panel, PageTexts().open, 0, 4, 170, 30, kOpenId);
        m_save = m_pushButtons.Add(m_panel, PageTexts().save, 180, 4, 170, 30, kSaveId);
        m_step = m_ticks = 0;
        m_tour = SetTimer(nullptr, 0, kTourStep, TourProc);
    }

    void Leave() override
    {
        if (m_tour)
            KillTimer(nullptr, m_tour);
        m_tour = 0;
        m_pushButtons.Clear();
        if (m_panel)
            DestroyWindow(m_panel);
        m_panel = m_open = m_save = nullptr;
        for (HBITMAP& shot : m_shots) {
            if (shot)
                DeleteObject(shot);
            shot = nullptr;
        }
        CVuikFileDlg::SetDefaultSkin(nullptr);
        m_skin = nullptr;
        if (s_page == this)
            s_page = nullptr;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        FillThemed(dc, area, ZGR_COLOR_WINDOW);
        HFONT title = SuiteFont(20, FW_BOLD), body = SuiteFont(13);
        HGDIOBJ old = SelectObject(dc, title);
        SetBkMode(dc, TRANSPARENT);
        Text(dc, 20, 16, L"CVuikFileDlg: the platform's open and save dialogs in the suite's skin",
             DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        SelectObject(dc, body);
        int y = 110;
        y = Text(dc, 20, y, L"A top band, a strip carrying the folder list and the toolbar, and a side bar.",
                 DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        if (!m_result.empty())
            y = Text(dc, 20, y + 4, m_result, DkhLoadColor(nullptr, ZGR_COLOR_ACCENT));
        if (m_shots[0]) {
            HDC memory = CreateCompatibleDC(dc);
            HGDIOBJ was = SelectObject(memory, m_shots[0]);
            BitBlt(dc, 20, y + 12, m_sizes[0].cx, m_sizes[0].cy, memory, 0, 0, SRCCOPY);
            SelectObject(memory, was);
            DeleteDC(memory);
        }
        SelectObject(dc, old);
        DeleteObject(title);
        DeleteObject(body);
    }

    std::wstring Verify() override
    {
        if (!m_skin || !m_skin->IsValid())
            return L"the theme lacks the file dialog's bars";
        if (!m_shots[0])
            return L"the open dialog was not captured";
        if (!m_shots[1])
            return L"the save dialog was not captured";
        return L"";
    }

private:
    void Run(bool save)
    {
        wchar_t file[MAX_PATH] = L"";
        if (save)
            lstrcpyW(file, L"note.txt");
        OPENFILENAMEW ofn = {};
        ofn.lStructSize = sizeof(ofn);
        ofn.hwndOwner = m_host;
        ofn.lpstrFile = file;
        ofn.nMaxFile = MAX_PATH;
        ofn.lpstrFilter = save ? L"Text\0*.txt\0" : L"All files\0*.*\0";
        ofn.Flags = OFN_HIDEREADONLY | (save ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
        const BOOL chosen = save ? CVuikFileDlg::GetSaveFileNameW(&ofn) : CVuikFileDlg::GetOpenFileNameW(&ofn);
        m_result = chosen ? std::wstring(PageTexts().chosen) + file : PageTexts().cancelled;
        InvalidateRect(m_host, nullptr, FALSE);
    }

    static LRESULT CALLBACK PanelProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_ERASEBKGND) {
            // The strip of buttons on the theme's window colour.
            RECT r;
            GetClientRect(hwnd, &r);
            FillThemed(reinterpret_cast<HDC>(wParam), r, ZGR_COLOR_WINDOW);
            return 1;
        }
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && s_page) {
            if (LOWORD(wParam) == kOpenId || LOWORD(wParam) == kSaveId)
                s_page->Run(LOWORD(wParam) == kSaveId);
            // The tour goes straight on to the save dialog, inside the same press.
            if (s_page->m_tour && s_page->m_step == 2) {
                ++s_page->m_step;
                s_page->m_wait = 0;
                s_page->Run(true);
            }
            return 0;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    // Step 0 presses the open button; steps 1 and 3 (inside the dialogs' own loops) wait a moment for the
    // dialog to settle, keep its picture and cancel it; the save dialog follows the open one directly. Gives
    // up after 12 s.
    static void CALLBACK TourProc(HWND, UINT, UINT_PTR, DWORD)
    {
        FileDlgPage* page = s_page;
        if (!page)
            return;
        HWND dialog = VisibleFileDialog();
        if (++page->m_ticks > 60 || page->m_step > 3) {
            if (dialog)
                PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            KillTimer(nullptr, page->m_tour);
            page->m_tour = 0;
            InvalidateRect(page->m_host, nullptr, FALSE);
            return;
        }
        const int which = page->m_step / 2;
        if (page->m_step % 2 == 0) {
            if (!dialog) {
                PostMessageW(which ? page->m_save : page->m_open, BM_CLICK, 0, 0);
                ++page->m_step;
                page->m_wait = 0;
            }
            return;
        }
        if (!dialog || ++page->m_wait < 4)
            return;
        // One tick after the redraw: the toolbar, drawn over the strip, paints after its neighbours.
        if (page->m_wait == 4)
            return (void)RedrawWindow(dialog, nullptr, nullptr,
                                      RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
        page->m_shots[which] = CopyWindow(dialog, &page->m_sizes[which]);
        PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        ++page->m_step;
    }

    static FileDlgPage* s_page;
    gallery::PushButtons m_pushButtons;
    HWND m_host = nullptr, m_panel = nullptr, m_open = nullptr, m_save = nullptr;
    UINT_PTR m_tour = 0;
    int m_step = 0, m_ticks = 0, m_wait = 0;
    CVuikFileDlgSkin* m_skin = nullptr;
    HBITMAP m_shots[2] = {nullptr, nullptr};
    SIZE m_sizes[2] = {{0, 0}, {0, 0}};
    std::wstring m_result;
};

FileDlgPage* FileDlgPage::s_page = nullptr;

}  // namespace

std::unique_ptr<GalleryPage> MakeFileDlgPage() { return std::make_unique<FileDlgPage>(); }
