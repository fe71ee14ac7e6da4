// The phone file dialog: buttons that open CNFileDialog for opening and saving, where the virtual phone of the
// demo shows up under My Computer, "Phones" (the stand-in's shell namespace extension). A file chosen on the
// phone comes back as a path of the local mirror and is carried with DownloadFile / UploadFile.
//
// On entering, a tour driven by a timer opens the open dialog, walks from the desktop into the phone's drive
// C: and keeps a copy of the dialog, with its "Look in" list open, for the page, then cancels it. Beside the
// buttons plays the clip of the transfer's progress window, from the theme (mirrored for a right-to-left
// language), in the platform's animation control as the progress window shows it.
#include <windows.h>

#include <commctrl.h>
#include <dlgs.h>

#include <cstdio>
#include <memory>
#include <string>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "PushButtons.h"

using namespace gallery;

namespace {

constexpr wchar_t kPanelClass[] = L"GalleryPhoneFilesPanel";
constexpr int kOpenId = 101, kSaveId = 102;
constexpr UINT kTourStep = 150;
// The way in from the desktop, as the dialog's list names it.
const wchar_t* const kWayIn[] = {L"My Computer", L"Phones", L"Sample phone", L"C:"};
constexpr int kWaySteps = sizeof(kWayIn) / sizeof(kWayIn[0]);

// The buttons and results in the language of the library.
struct Texts {
    const wchar_t* open;
    const wchar_t* save;
    const wchar_t* cancelled;
    const wchar_t* downloaded;  // path, result
    const wchar_t* uploaded;
};
const Texts kEnglish = {L"Open from the phone...", L"Save to the phone...", L"Cancelled.",
                        L"Downloaded %ls (0x%08lX)", L"Uploaded %ls (0x%08lX)"};
const Texts kHebrew = {L"\x05E4\x05EA\x05D9\x05D7\x05D4 \x05DE\x05D4\x05D8\x05DC\x05E4\x05D5\x05DF...",
                       L"\x05E9\x05DE\x05D9\x05E8\x05D4 \x05D1\x05D8\x05DC\x05E4\x05D5\x05DF...",
                       L"\x05D1\x05D5\x05D8\x05DC.",
                       L"\x05D4\x05D5\x05E8\x05D3: %ls (0x%08lX)", L"\x05D4\x05D5\x05E2\x05DC\x05D4: %ls (0x%08lX)"};
const Texts& PageTexts() { return RightToLeftLanguage() ? kHebrew : kEnglish; }

HWND FileList(HWND dialog)
{
    HWND view = FindWindowExW(dialog, nullptr, L"SHELLDLL_DefView", nullptr);
    return view ? FindWindowExW(view, nullptr, WC_LISTVIEWW, nullptr) : nullptr;
}
// Double-clicks the item `text` of the dialog's list with the mouse messages of a user's click; false while
// the list does not show it.
bool DoubleClick(HWND dialog, const wchar_t* text)
{
    HWND list = FileList(dialog);
    LVFINDINFOW find = {};
    find.flags = LVFI_STRING;
    find.psz = text;
    const int index = list ? static_cast<int>(SendMessageW(list, LVM_FINDITEMW, static_cast<WPARAM>(-1),
                                                           reinterpret_cast<LPARAM>(&find)))
                           : -1;
    if (index < 0)
        return false;
    RECT rect = {LVIR_LABEL, 0, 0, 0};
    SendMessageW(list, LVM_GETITEMRECT, index, reinterpret_cast<LPARAM>(&rect));
    const LPARAM at = MAKELPARAM((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    for (UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageW(list, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, at);
    return true;
}
// What the screen shows of the window, frame included, with the open list of its "Look in" box.
HBITMAP CopyDialogWithList(HWND dialog, HWND dropDown, SIZE* size)
{
    RECT r, list;
    GetWindowRect(dialog, &r);
    if (dropDown && IsWindowVisible(dropDown) && GetWindowRect(dropDown, &list))
        UnionRect(&r, &r, &list);
    *size = SIZE{r.right - r.left, r.bottom - r.top};
    return CopyScreen(r);
}

class PhoneFilesPage : public GalleryPage {
public:
    ~PhoneFilesPage() override { Leave(); }
    const wchar_t* Title() const override { return L"Phone files"; }

    void Enter(HWND host) override
    {
        Leave();
        m_host = host;
        s_page = this;
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
        m_pushButtons.Add(m_panel, PageTexts().save, 180, 4, 170, 30, kSaveId);
        INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_ANIMATE_CLASS};
        InitCommonControlsEx(&controls);
        m_clip = CreateWindowExW(0, ANIMATE_CLASSW, L"", WS_CHILD | WS_VISIBLE | ACS_AUTOPLAY, 400, 44, 272, 60,
                                 host, nullptr, wc.hInstance, nullptr);
        const bool rtl = &PageTexts() == &kHebrew;
        m_clipOpened = SendMessageW(m_clip, ACM_OPENW, reinterpret_cast<WPARAM>(ZCMOD_GetCommonZGR()),
                                    reinterpret_cast<LPARAM>(MAKEINTRESOURCEW(rtl ? ZGR_AVI_TRANSFER_RTL
                                                                                  : ZGR_AVI_TRANSFER))) != 0;
        CFD_EnablePhoneFolders(1);
        m_step = 0;
        m_ticks = 0;
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
        if (m_clip)
            DestroyWindow(m_clip);
        m_panel = m_open = m_clip = nullptr;
        if (m_shot)
            DeleteObject(m_shot);
        m_shot = nullptr;
        if (s_page == this)
            s_page = nullptr;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        FillThemed(dc, area, ZGR_COLOR_WINDOW);
        HFONT title = SuiteFont(20, FW_BOLD), body = SuiteFont(13);
        HGDIOBJ old = SelectObject(dc, title);
        SetBkMode(dc, TRANSPARENT);
        Text(dc, 20, 16, L"CNFileDialog: the phone in the platform's file dialog", DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        SelectObject(dc, body);
        int y = 110;
        y = Text(dc, 20, y, L"My Computer \x2192 Phones \x2192 Sample phone: a folder of the phone's files.",
                 DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        y = Text(dc, 20, y, L"A file chosen there is a path of the local mirror; DownloadFile brings its bytes.",
                 DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        if (!m_result.empty())
            y = Text(dc, 20, y + 4, m_result, DkhLoadColor(nullptr, ZGR_COLOR_ACCENT));
        if (m_shot) {
            HDC memory = CreateCompatibleDC(dc);
            HGDIOBJ was = SelectObject(memory, m_shot);
            BitBlt(dc, 20, y + 12, m_shotSize.cx, m_shotSize.cy, memory, 0, 0, SRCCOPY);
            SelectObject(memory, was);
            DeleteDC(memory);
        }
        SelectObject(dc, old);
        DeleteObject(title);
        DeleteObject(body);
    }

    std::wstring Verify() override
    {
        if (!m_clipOpened)
            return L"the theme's transfer clip did not open";
        if (!m_shot)
            return L"the open dialog on the phone was not captured";
        if (m_step <= kWaySteps + 2)
            return L"the dialog did not reach the phone's drive";
        return L"";
    }

private:
    void Open()
    {
        CNFileDialog dialog(TRUE, nullptr, nullptr, OFN_HIDEREADONLY, L"All files|*.*|", m_panel);
        if (dialog.DoModal() != 1)
            return Show(PageTexts().cancelled);
        const std::wstring path = dialog.GetPathName();
        if (CNFileDialog::GetFolderType(path.c_str()) != CFD_FOLDER_PHONE)
            return Show(L"Chosen: " + path);
        const HRESULT result = CNFileDialog::DownloadFile(path.c_str(), m_panel);
        Show(Format(PageTexts().downloaded, path.c_str(), static_cast<unsigned long>(result)));
    }
    void Save()
    {
        CNFileDialog dialog(FALSE, L"txt", L"note.txt", OFN_OVERWRITEPROMPT, L"Text|*.txt|", m_panel);
        if (dialog.DoModal() != 1)
            return Show(PageTexts().cancelled);
        const std::wstring path = dialog.GetPathName();
        if (FILE* file = _wfopen(path.c_str(), L"wb")) {
            std::fputs("Written by the ZCMOD gallery.\r\n", file);
            std::fclose(file);
        }
        if (CNFileDialog::GetFolderType(path.c_str()) != CFD_FOLDER_PHONE)
            return Show(L"Saved: " + path);
        const HRESULT result = CNFileDialog::UploadFile(path.c_str(), m_panel);
        Show(Format(PageTexts().uploaded, path.c_str(), static_cast<unsigned long>(result)));
    }
    void Show(const std::wstring& text)
    {
        m_result = text;
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
            if (LOWORD(wParam) == kOpenId)
                s_page->Open();
            else if (LOWORD(wParam) == kSaveId)
                s_page->Save();
            return 0;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    // Step 0 presses the open button; the later steps run inside the dialog's own loop: back to the desktop,
    // then one level of the way in per step, the "Look in" list opened, a copy of the dialog, and Cancel. Gives up
    // after 15 s.
    static void CALLBACK TourProc(HWND, UINT, UINT_PTR, DWORD)
    {
        PhoneFilesPage* page = s_page;
        if (!page)
            return;
        HWND dialog = VisibleFileDialog();
        if (++page->m_ticks > 100 || page->m_step > kWaySteps + 2) {
            if (dialog)
                PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            KillTimer(nullptr, page->m_tour);
            page->m_tour = 0;
            InvalidateRect(page->m_host, nullptr, FALSE);
            return;
        }
        if (page->m_step == 0) {
            if (!dialog)
                PostMessageW(page->m_open, BM_CLICK, 0, 0);
            else {
                HWND combo = GetDlgItem(dialog, cmb2);
                SendMessageW(combo, CB_SETCURSEL, 0, 0);
                PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(cmb2, CBN_SELENDOK), reinterpret_cast<LPARAM>(combo));
                ++page->m_step;
            }
            return;
        }
        if (!dialog)
            return;
        if (page->m_step <= kWaySteps) {
            if (DoubleClick(dialog, kWayIn[page->m_step - 1]))
                ++page->m_step;
            return;
        }
        // At the drive: wait for its folders, open "Look in" to show where the phone stands, keep the picture.
        HWND list = FileList(dialog);
        HWND combo = GetDlgItem(dialog, cmb2);
        if (page->m_step == kWaySteps + 1) {
            if (!list || SendMessageW(list, LVM_GETITEMCOUNT, 0, 0) == 0)
                return;
            SendMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
            ++page->m_step;
            return;
        }
        COMBOBOXINFO info = {};
        info.cbSize = sizeof(info);
        GetComboBoxInfo(combo, &info);
        RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
        if (info.hwndList)
            UpdateWindow(info.hwndList);
        page->m_shot = CopyDialogWithList(dialog, info.hwndList, &page->m_shotSize);
        SendMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
        ++page->m_step;
    }

    static PhoneFilesPage* s_page;
    gallery::PushButtons m_pushButtons;
    HWND m_host = nullptr, m_panel = nullptr, m_open = nullptr, m_clip = nullptr;
    bool m_clipOpened = false;
    UINT_PTR m_tour = 0;
    int m_step = 0, m_ticks = 0;
    HBITMAP m_shot = nullptr;
    SIZE m_shotSize = {0, 0};
    std::wstring m_result;
};

PhoneFilesPage* PhoneFilesPage::s_page = nullptr;

}  // namespace

std::unique_ptr<GalleryPage> MakePhoneFilesPage() { return std::make_unique<PhoneFilesPage>(); }
