// The menu bar's page: a small application window (caption, menu strip, client area) with a
// CVuikMenuBarCtrl made from an ordinary menu: File, Edit, View and Help with mnemonics, shortcuts after a
// tab, a submenu, checked and radio items, a disabled item and separators. The menu texts are Hebrew when the
// language is, and the window reads right to left in a right-to-left layout.
//
// On entering, the page takes a short tour by itself: it opens File, Edit and View by the path of their
// Alt mnemonics, moves a selection down, and copies each open popup as the screen shows it; the copies are
// drawn beside the window, so that the screenshot of the page shows the popups too.
#include <windows.h>

#include <memory>
#include <string>

#include <zcmod/VuikGraphics.h>
#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"

using namespace gallery;

namespace {

const wchar_t kFrameClass[] = L"ZcmodGalleryMenuFrame";
const int kFrameX = 20, kFrameY = 60, kFrameWidth = 560, kFrameHeight = 250;
const UINT_PTR kTourStep = 40;

// The popups the page copies: which menu, and how far the selection moves down first.
const struct {
    int menu;
    int downs;
    const wchar_t* caption;
} kTour[] = {{0, 2, L"File, the selection moved down twice:"},
             {1, 0, L"Edit, with a disabled item:"},
             {2, 0, L"View, checked and radio items:"}};
const int kShots = 3;

struct Texts {
    const wchar_t* file[4];
    const wchar_t* fileItems[8];
    const wchar_t* editItems[5];
    const wchar_t* viewItems[5];
    const wchar_t* helpItems[2];
    const wchar_t* caption;
    const wchar_t* hint;
    const wchar_t* last;
};

const Texts kEnglish = {
    {L"&File", L"&Edit", L"&View", L"&Help"},
    {L"&New\tCtrl+N", L"&Open...\tCtrl+O", L"&Save\tCtrl+S", L"&Recent files", L"notes.txt", L"contacts.vcf",
     L"E&xit\tAlt+F4", nullptr},
    {L"&Undo\tCtrl+Z", L"&Redo\tCtrl+Y", L"Cu&t\tCtrl+X", L"&Copy\tCtrl+C", L"&Paste\tCtrl+V"},
    {L"&Toolbar", L"&Status bar", L"&Large icons", L"S&mall icons", L"&Details"},
    {L"&Contents\tF1", L"&About ZCMOD"},
    L"Notes - ZCMOD",
    L"Alt with a letter opens a menu; Left and Right move across the bar.",
    L"Last command: ",
};

const Texts kHebrew = {
    {L"&קובץ", L"&עריכה", L"&תצוגה", L"ע&זרה"},
    {L"&חדש\tCtrl+N", L"&פתיחה...\tCtrl+O", L"&שמירה\tCtrl+S", L"קבצים &אחרונים", L"notes.txt", L"contacts.vcf",
     L"&יציאה\tAlt+F4", nullptr},
    {L"&ביטול\tCtrl+Z", L"&ביצוע חוזר\tCtrl+Y", L"&גזירה\tCtrl+X", L"ה&עתקה\tCtrl+C", L"ה&דבקה\tCtrl+V"},
    {L"&סרגל כלים", L"&שורת מצב", L"סמלים &גדולים", L"סמלים &קטנים", L"&פרטים"},
    {L"&תוכן\tF1", L"&אודות ZCMOD"},
    L"פתקים - ZCMOD",
    L"Alt עם אות פותח תפריט; חיצים ימינה ושמאלה עוברים בין התפריטים.",
    L"הפקודה האחרונה: ",
};

HMENU MakeMenu(const Texts& t)
{
    HMENU file = CreatePopupMenu();
    AppendMenuW(file, MF_STRING, 101, t.fileItems[0]);
    AppendMenuW(file, MF_STRING, 102, t.fileItems[1]);
    AppendMenuW(file, MF_STRING, 103, t.fileItems[2]);
    AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
    HMENU recent = CreatePopupMenu();
    AppendMenuW(recent, MF_STRING, 111, t.fileItems[4]);
    AppendMenuW(recent, MF_STRING, 112, t.fileItems[5]);
    AppendMenuW(file, MF_POPUP, reinterpret_cast<UINT_PTR>(recent), t.fileItems[3]);
    AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(file, MF_STRING, 104, t.fileItems[6]);
    HMENU edit = CreatePopupMenu();
    AppendMenuW(edit, MF_STRING, 201, t.editItems[0]);
    AppendMenuW(edit, MF_STRING | MF_GRAYED, 202, t.editItems[1]);
    AppendMenuW(edit, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(edit, MF_STRING, 203, t.editItems[2]);
    AppendMenuW(edit, MF_STRING, 204, t.editItems[3]);
    AppendMenuW(edit, MF_STRING, 205, t.editItems[4]);
    HMENU view = CreatePopupMenu();
    AppendMenuW(view, MF_STRING | MF_CHECKED, 301, t.viewItems[0]);
    AppendMenuW(view, MF_STRING | MF_CHECKED, 302, t.viewItems[1]);
    AppendMenuW(view, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(view, MF_STRING, 303, t.viewItems[2]);
    AppendMenuW(view, MF_STRING, 304, t.viewItems[3]);
    AppendMenuW(view, MF_STRING, 305, t.viewItems[4]);
    CheckMenuRadioItem(view, 303, 305, 303, MF_BYCOMMAND);
    HMENU help = CreatePopupMenu();
    AppendMenuW(help, MF_STRING, 401, t.helpItems[0]);
    AppendMenuW(help, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(help, MF_STRING, 402, t.helpItems[1]);
    HMENU bar = CreateMenu();
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), t.file[0]);
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(edit), t.file[1]);
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(view), t.file[2]);
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(help), t.file[3]);
    return bar;
}

// The application window's look, as the window background draws it: a dark caption and menu strip with
// their two lines, and a white client area with a line of help and the last command.
struct FrameSkinDef {
    const Texts* texts;
    std::wstring* status;
};

class FrameSkin : public CVuikBaseSkinImpl<FrameSkin, FrameSkinDef> {
public:
    FrameSkin() : m_caption(SuiteFont(17)), m_body(SuiteFont(14)) { m_SkinDef = FrameSkinDef{&kEnglish, nullptr}; }
    ~FrameSkin()
    {
        DeleteObject(m_caption);
        DeleteObject(m_body);
    }
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        HDC dc = *graphics;
        const auto fill = [dc](int x, int y, int w, int h, COLORREF c) {
            const RECT r = {x, y, x + w, y + h};
            HBRUSH brush = CreateSolidBrush(c);
            FillRect(dc, &r, brush);
            DeleteObject(brush);
        };
        fill(0, 0, width, 60, RGB(0x37, 0x37, 0x37));
        fill(0, 30, width, 1, RGB(0x23, 0x23, 0x23));
        fill(0, 31, width, 1, RGB(0x5A, 0x5A, 0x5A));
        fill(0, 60, width, height - 60, RGB(0xFF, 0xFF, 0xFF));
        fill(0, height - 1, width, 1, RGB(0x88, 0x88, 0x88));
        fill(0, 0, 1, height, RGB(0x88, 0x88, 0x88));
        fill(width - 1, 0, 1, height, RGB(0x88, 0x88, 0x88));
        SetBkMode(dc, TRANSPARENT);
        HGDIOBJ old = SelectObject(dc, m_caption);
        SetTextColor(dc, RGB(0xFF, 0xFF, 0xFF));
        // Drawn left to right and shown as drawn: a right-to-left window sets its texts at the right.
        const UINT align = CVuikLib::IsLayoutRTL() ? DT_RIGHT | DT_RTLREADING : 0;
        RECT caption = {12, 0, width - 12, 30};
        DrawTextW(dc, m_SkinDef.texts->caption, -1, &caption, DT_VCENTER | DT_SINGLELINE | align);
        SelectObject(dc, m_body);
        SetTextColor(dc, RGB(0x50, 0x50, 0x50));
        RECT hint = {16, 80, width - 16, 110};
        DrawTextW(dc, m_SkinDef.texts->hint, -1, &hint, DT_SINGLELINE | DT_NOPREFIX | align);
        RECT last = {16, 110, width - 16, 140};
        const std::wstring status = std::wstring(m_SkinDef.texts->last) + (m_SkinDef.status ? *m_SkinDef.status : L"-");
        DrawTextW(dc, status.c_str(), -1, &last, DT_SINGLELINE | DT_NOPREFIX | align);
        SelectObject(dc, old);
    }

private:
    HFONT m_caption;
    HFONT m_body;
};

class Frame : public CVuikWindowImpl<FrameSkin> {};

// The page's copy of a window as the screen shows it.
HBITMAP CopyWindow(HWND hwnd, SIZE* size)
{
    RECT r;
    GetClientRect(hwnd, &r);
    HDC dc = GetDC(hwnd);
    HDC memory = CreateCompatibleDC(dc);
    HBITMAP bitmap = CreateCompatibleBitmap(dc, r.right, r.bottom);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, r.right, r.bottom, dc, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
    ReleaseDC(hwnd, dc);
    *size = SIZE{r.right, r.bottom};
    return bitmap;
}

HWND OpenPopup()
{
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND hwnd, LPARAM param) -> BOOL {
            wchar_t name[16] = {};
            if (IsWindowVisible(hwnd) && GetClassNameW(hwnd, name, 16) && wcscmp(name, L"#32768") == 0) {
                *reinterpret_cast<HWND*>(param) = hwnd;
                return FALSE;
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

class MenuBarPage : public GalleryPage {
public:
    ~MenuBarPage() override { Leave(); }
    const wchar_t* Title() const override { return L"Menu bar"; }

    void Enter(HWND host) override
    {
        Leave();
        m_host = host;
        m_texts = RightToLeftLanguage() ? &kHebrew : &kEnglish;
        WindowClass(kFrameClass, FrameProc);
        m_skin = std::make_unique<FrameSkin>();
        m_skin->SetSkinDef(FrameSkinDef{m_texts, &m_status});
        m_frame = std::make_unique<Frame>();
        m_frame->SetSkin(m_skin.get());
        // An application of a right-to-left language lays its window out right to left.
        const DWORD exStyle = CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0;
        m_frame->Create(kFrameClass, host, RECT{kFrameX, kFrameY, kFrameX + kFrameWidth, kFrameY + kFrameHeight}, L"",
                        0, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, exStyle, nullptr);
        s_page = this;
        m_menu = MakeMenu(*m_texts);
        m_bar = std::make_unique<CVuikMenuBarCtrl>();
        m_bar->Create(m_menu, m_frame->m_hWnd, POINT{0, 30}, m_frame->m_hWnd);
        // The tour that copies the open popups.
        m_step = 0;
        m_tour = SetTimer(nullptr, 0, kTourStep, TourProc);
    }

    void Leave() override
    {
        if (m_tour)
            KillTimer(nullptr, m_tour);
        m_tour = 0;
        if (CVuikMenuBarCtrl::IsPopupOpen())
            EndMenu();
        m_bar.reset();
        if (m_frame && m_frame->m_hWnd)
            DestroyWindow(m_frame->m_hWnd);
        m_frame.reset();
        m_skin.reset();
        if (m_menu)
            DestroyMenu(m_menu);
        m_menu = nullptr;
        for (Shot& shot : m_shots) {
            if (shot.bitmap)
                DeleteObject(shot.bitmap);
            shot = Shot();
        }
        if (s_page == this)
            s_page = nullptr;
    }

    bool PreTranslate(MSG* msg) override { return m_bar && m_bar->TranslateMenuAccelerator(msg); }

    void Paint(HDC dc, const RECT& area) override
    {
        FillThemed(dc, area, ZGR_COLOR_WINDOW);
        HFONT title = SuiteFont(20, FW_BOLD);
        HFONT body = SuiteFont(13);
        HGDIOBJ old = SelectObject(dc, title);
        SetBkMode(dc, TRANSPARENT);
        Text(dc, 20, 16, L"CVuikMenuBarCtrl: a platform menu as a drawn bar", DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        SelectObject(dc, body);
        const int x = kFrameX + kFrameWidth + 30;
        int y = kFrameY;
        for (int i = 0; i < kShots; ++i) {
            y = Text(dc, x, y, kTour[i].caption, DkhLoadColor(nullptr, ZGR_COLOR_TEXT)) + 4;
            if (m_shots[i].bitmap) {
                HDC memory = CreateCompatibleDC(dc);
                HGDIOBJ was = SelectObject(memory, m_shots[i].bitmap);
                BitBlt(dc, x, y, m_shots[i].size.cx, m_shots[i].size.cy, memory, 0, 0, SRCCOPY);
                SelectObject(memory, was);
                DeleteDC(memory);
                y += m_shots[i].size.cy;
            }
            y += 16;
        }
        Text(dc, kFrameX, kFrameY + kFrameHeight + 20,
             L"Popups are the platform's, every item owner-drawn by the library; the bar's buttons are skinned.",
             DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        SelectObject(dc, old);
        DeleteObject(title);
        DeleteObject(body);
    }

    std::wstring Verify() override
    {
        if (!m_bar || !m_bar->m_hWnd || m_bar->GetButtonCount() != 4)
            return L"the menu bar was not made";
        for (const Shot& shot : m_shots)
            if (!shot.bitmap)
                return L"the open popups were not captured";
        if (CVuikMenuBarCtrl::IsPopupOpen())
            return L"a popup is still open";
        return L"";
    }

private:
    struct Shot {
        HBITMAP bitmap = nullptr;
        SIZE size = {0, 0};
    };

    static LRESULT CALLBACK FrameProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_COMMAND && HIWORD(wParam) == 0 && s_page && s_page->m_frame) {
            s_page->m_status = Format(L"%u", static_cast<unsigned>(LOWORD(wParam)));
            s_page->m_frame->DeleteBackBuffer();
            InvalidateRect(hwnd, nullptr, TRUE);
            RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
            return 0;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    // Opens each menu of the tour the way Alt with its letter does, moves the selection down where asked and
    // copies the popup. Runs inside the popups' own modal loops.
    static void CALLBACK TourProc(HWND, UINT, UINT_PTR, DWORD)
    {
        MenuBarPage* page = s_page;
        if (!page || !page->m_bar)
            return;
        HWND bar = page->m_bar->m_hWnd;
        HWND popup = OpenPopup();
        const int shot = page->m_step / 3;
        if (shot >= kShots) {
            if (!popup) {
                KillTimer(nullptr, page->m_tour);
                page->m_tour = 0;
                InvalidateRect(page->m_host, nullptr, FALSE);
            }
            return;
        }
        switch (page->m_step % 3) {
            case 0:
                if (!popup) {
                    PostMessageW(bar, WM_COMMAND, MAKEWPARAM(kTour[shot].menu, 1), 0);
                    ++page->m_step;
                }
                break;
            case 1:
                if (popup) {
                    for (int i = 0; i < kTour[shot].downs; ++i)
                        PostMessageW(popup, WM_KEYDOWN, VK_DOWN, 0);
                    ++page->m_step;
                }
                break;
            default:
                if (popup) {
                    UpdateWindow(popup);
                    page->m_shots[shot].bitmap = CopyWindow(popup, &page->m_shots[shot].size);
                    EndMenu();
                    ++page->m_step;
                }
                break;
        }
    }

    static MenuBarPage* s_page;
    HWND m_host = nullptr;
    const Texts* m_texts = &kEnglish;
    std::wstring m_status;
    std::unique_ptr<FrameSkin> m_skin;
    std::unique_ptr<Frame> m_frame;
    std::unique_ptr<CVuikMenuBarCtrl> m_bar;
    HMENU m_menu = nullptr;
    UINT_PTR m_tour = 0;
    int m_step = 0;
    Shot m_shots[kShots];
};

MenuBarPage* MenuBarPage::s_page = nullptr;

}  // namespace

std::unique_ptr<GalleryPage> MakeMenuBarPage() { return std::make_unique<MenuBarPage>(); }
