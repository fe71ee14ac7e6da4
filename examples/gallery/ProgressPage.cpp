// The progress dialog's page: a button that copies a dozen (pretend) pictures to the phone on a work thread
// while CCommonProgressDlg shows; the work counts its steps in the dialog's text and returns how many it
// copied, which the page then shows. The texts come from the language module.
//
// In a screenshot run the page presses its button by itself and the work copies the dialog from the screen
// half-way through, so that the page's picture shows the running dialog beside the button.
#include <windows.h>

#include <cwchar>
#include <memory>
#include <string>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "PushButtons.h"

using namespace gallery;

namespace {

const wchar_t kPanelClass[] = L"ZcmodGalleryProgressPanel";
const int kPanelX = 20, kPanelY = 60, kPanelWidth = 260, kPanelHeight = 40;
const int kButtonId = 100;
const int kSteps = 12;

std::wstring LanguageText(UINT id, const wchar_t* fallback)
{
    wchar_t text[128] = {};
    return ZCMOD_LoadString(id, text, 128) > 0 ? std::wstring(text) : std::wstring(fallback);
}

bool ScreenshotRun() { return wcsstr(GetCommandLineW(), L"--screenshots") != nullptr; }

// What the work thread knows: the dialog (for its text), how long a step takes, and where to put its copy
// of the screen.
struct Job {
    CCommonProgressDlg* dialog = nullptr;
    std::wstring stepFormat;
    DWORD stepMs = 250;
    bool copyDialog = false;
    HBITMAP copy = nullptr;
    SIZE copySize = {0, 0};
};

// The dialog's window as the screen shows it, in a new bitmap.
HBITMAP CopyFromScreen(HWND hwnd, SIZE* size)
{
    RECT r;
    GetWindowRect(hwnd, &r);
    size->cx = r.right - r.left;
    size->cy = r.bottom - r.top;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, size->cx, size->cy);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, size->cx, size->cy, screen, r.left, r.top, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

// The work: runs on its own thread and touches no window but through the dialog's text.
LONGLONG CopyPictures(void* argument)
{
    Job* job = static_cast<Job*>(argument);
    int copied = 0;
    for (int step = 1; step <= kSteps; ++step) {
        wchar_t text[128];
        std::swprintf(text, 128, job->stepFormat.c_str(), step, kSteps);
        job->dialog->SetProgressText(text);
        Sleep(job->stepMs);
        ++copied;
        if (job->copyDialog && step == kSteps / 2 && job->dialog->GetSafeHwnd()) {
            Sleep(300);  // the dialog has painted the new text and the animation has moved on
            job->copy = CopyFromScreen(job->dialog->GetSafeHwnd(), &job->copySize);
        }
    }
    return copied;
}

class ProgressPage : public GalleryPage {
public:
    ~ProgressPage() override
    {
        Leave();
        if (m_job.copy)
            DeleteObject(m_job.copy);
    }
    const wchar_t* Title() const override { return L"Progress dialog"; }

    void Enter(HWND host) override
    {
        Leave();
        m_host = host;
        WNDCLASSEXW wc = {};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = PanelProc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
        wc.lpszClassName = kPanelClass;
        RegisterClassExW(&wc);
        const DWORD exStyle = CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0;
        m_panel = CreateWindowExW(exStyle, kPanelClass, L"", WS_CHILD | WS_VISIBLE, kPanelX, kPanelY, kPanelWidth,
                                  kPanelHeight, host, nullptr, GetModuleHandleW(nullptr), nullptr);
        SetWindowLongPtrW(m_panel, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        m_button = m_pushButtons.Add(m_panel, L"Copy 12 pictures to the phone", 0, 0, kPanelWidth, kPanelHeight,
                                     kButtonId);
        // A screenshot run presses the button once the page is up.
        if (ScreenshotRun() && !m_ran)
            PostMessageW(m_button, BM_CLICK, 0, 0);
    }

    void Leave() override
    {
        m_pushButtons.Clear();
        if (m_panel)
            DestroyWindow(m_panel);
        m_panel = m_button = nullptr;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        FillThemed(dc, area, ZGR_COLOR_WINDOW);
        HFONT title = SuiteFont(20, FW_BOLD);
        HFONT body = SuiteFont(13);
        HGDIOBJ old = SelectObject(dc, title);
        SetBkMode(dc, TRANSPARENT);
        Text(dc, 20, 16, L"CCommonProgressDlg: a waiting window while work runs", DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        SelectObject(dc, body);
        int y = kPanelY + kPanelHeight + 16;
        const COLORREF ink = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        y = Text(dc, 20, y, L"The work runs on its own thread and counts its steps in the", ink);
        y = Text(dc, 20, y, L"dialog's text; DoModal returns what it returned. The close", ink);
        y = Text(dc, 20, y, L"button does nothing while the work runs.", ink);
        y += 10;
        y = Text(dc, 20, y,
                 m_ran ? Format(L"Last run: DoModal returned %lld pictures copied.", static_cast<long long>(m_result))
                       : std::wstring(L"Press the button to run it."),
                 DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        if (m_job.copy) {
            y = Text(dc, 20, y + 24, L"The dialog half-way through:", ink) + 6;
            HDC memory = CreateCompatibleDC(dc);
            HGDIOBJ was = SelectObject(memory, m_job.copy);
            BitBlt(dc, 20, y, m_job.copySize.cx, m_job.copySize.cy, memory, 0, 0, SRCCOPY);
            SelectObject(memory, was);
            DeleteDC(memory);
        }
        SelectObject(dc, old);
        DeleteObject(title);
        DeleteObject(body);
    }

    std::wstring Verify() override
    {
        if (!m_ran)
            return L"the progress dialog did not run";
        if (m_result != kSteps)
            return Format(L"DoModal returned %lld, not %d", static_cast<long long>(m_result), kSteps);
        if (ScreenshotRun() && !m_job.copy)
            return L"the running dialog was not captured";
        return L"";
    }

private:
    void Run()
    {
        if (m_running)
            return;
        m_running = true;
        CCommonProgressDlg dialog(LanguageText(ZLR_STR_SUITE_NAME, L"Desk Hub").c_str(),
                                  LanguageText(ZLR_STR_PROGRESS_WAIT, L"Please wait...").c_str());
        if (m_job.copy)
            DeleteObject(m_job.copy);
        m_job = Job();
        m_job.dialog = &dialog;
        m_job.stepFormat = LanguageText(ZLR_STR_PROGRESS_STEP, L"Step %d of %d");
        m_job.copyDialog = ScreenshotRun();
        m_job.stepMs = ScreenshotRun() ? 60 : 250;
        m_result = dialog.DoModal(CopyPictures, &m_job, GetAncestor(m_host, GA_ROOT));
        m_job.dialog = nullptr;
        m_ran = true;
        m_running = false;
        InvalidateRect(m_host, nullptr, FALSE);
    }

    static LRESULT CALLBACK PanelProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* page = reinterpret_cast<ProgressPage*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (page && message == WM_COMMAND && LOWORD(wParam) == kButtonId && HIWORD(wParam) == BN_CLICKED) {
            page->Run();
            return 0;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    gallery::PushButtons m_pushButtons;
    HWND m_host = nullptr;
    HWND m_panel = nullptr;
    HWND m_button = nullptr;
    Job m_job;
    INT_PTR m_result = 0;
    bool m_ran = false;
    bool m_running = false;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeProgressPage() { return std::make_unique<ProgressPage>(); }
