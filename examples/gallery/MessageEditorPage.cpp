// The message editor page: the recipient box (To, Cc, Bcc) over the sample phone, which holds 10,000
// generated contacts and the sample contacts, with a subject and a message body below it that move down as the
// box grows. Typing a few letters of a name and waiting completes it from the phone; ';' or Enter finishes a
// recipient, known contacts are underlined, malformed addresses stand in italics.
#include <windows.h>

#include <commctrl.h>
#include <richedit.h>

#include <memory>
#include <string>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"

using namespace gallery;

namespace {

COLORREF Theme(UINT id) { return DkhLoadColor(nullptr, id); }

const wchar_t* PanelClass()
{
    static bool registered = false;
    if (!registered) {
        WNDCLASSEXW wc = {};
        wc.cbSize = sizeof(wc);
        wc.lpfnWndProc = DefWindowProcW;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.lpszClassName = L"ZcmodGalleryMessagePanel";
        registered = RegisterClassExW(&wc) != 0;
    }
    return L"ZcmodGalleryMessagePanel";
}

class MessageEditorPage : public GalleryPage, private ISearchEngineNotify {
public:
    const wchar_t* Title() const override { return L"Message editor"; }

    void Enter(HWND host) override
    {
        Leave();
        m_text = Theme(ZGR_COLOR_TEXT);
        m_window = Theme(ZGR_COLOR_WINDOW);
        m_windowBrush = CreateSolidBrush(m_window);
        m_font = SuiteFont(15);
        m_titleFont = SuiteFont(20, FW_BOLD);
        RECT area;
        GetClientRect(host, &area);
        // Mirrored in a right-to-left layout, so that the box's rows and the form turn round with it.
        m_panel = CreateWindowExW(CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0, PanelClass(), L"",
                                  WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, area.right, area.bottom, host, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
        SetPropW(m_panel, L"gallery.page", this);
        m_panelProc = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(m_panel, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(PanelProc)));

        Label(L"New message: the recipient box over a phone of 10,000 contacts", 30, 16, 700, 28, m_titleFont);
        m_box = std::make_unique<CSearchEngineControl>(GetModuleHandleW(nullptr));
        RECT where = {30, 56, 730, 56 + 3 * 60};
        m_box->Create(nullptr, WS_CHILD | WS_VISIBLE, where, m_panel, 200, 3);
        m_box->RegisterNotifyIF(this);
        const std::wstring to = CSearchEngineControl::CreateContactString(L"Siobhán Brennan", L"+353 85 555 0110") +
                                L"; " + CSearchEngineControl::CreateContactString(L"Zed Unknown", L"0501234567") +
                                L"; ";
        m_box->SetText(to.c_str(), 0);
        m_box->SetText(CSearchEngineControl::CreateContactString(L"Bob", L"5x5").c_str(), 1);
        int valid = 1;
        m_box->Validate(1, 0, &valid, 1);

        m_subjectLabel = Label(L"Subject", 30, 0, 100, 22, m_font);
        m_subject = Edit(L"Dinner on Friday", 0);
        m_body = Edit(L"Type a few letters of a name in the To row and wait two seconds: the box completes it from "
                      L"the phone. ';' or Enter finishes a recipient; known contacts are underlined, malformed "
                      L"addresses stand in italics. The buttons open the picker.",
                      ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL);
        OnResize();
    }

    void Leave() override
    {
        if (m_box) {
            m_box->UnregisterNotifyIF(this);
            m_box.reset();
        }
        if (m_panel) {
            SetWindowLongPtrW(m_panel, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_panelProc));
            RemovePropW(m_panel, L"gallery.page");
            DestroyWindow(m_panel);
            m_panel = nullptr;
        }
        for (HGDIOBJ* o : {reinterpret_cast<HGDIOBJ*>(&m_windowBrush), reinterpret_cast<HGDIOBJ*>(&m_font),
                           reinterpret_cast<HGDIOBJ*>(&m_titleFont)})
            if (*o) {
                DeleteObject(*o);
                *o = nullptr;
            }
    }

    void Paint(HDC, const RECT&) override {}  // the panel covers the page

    std::wstring Verify() override
    {
        if (!m_box || !m_box->GetHostWindow() || !m_box->GetEditBox(2))
            return L"the recipient box wasn't made";
        wchar_t recipients[256] = {};
        if (m_box->GetRecipients(nullptr, 0) >= 256 || !m_box->GetRecipients(recipients, 0) ||
            std::wstring(recipients) != L"+353 85 555 0110;0501234567")
            return L"the To row doesn't hold its two recipients";
        return L"";
    }

private:
    // The box grew or shrank: the subject and the body follow its bottom.
    void OnResize() override
    {
        if (!m_box || !m_subject)
            return;
        RECT box;
        m_box->GetHostWindowRect(box);
        const int top = box.bottom + 12;
        SetWindowPos(m_subjectLabel, nullptr, 30, top + 4, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        SetWindowPos(m_subject, nullptr, 135, top, 595, 26, SWP_NOZORDER);
        SetWindowPos(m_body, nullptr, 30, top + 40, 700, 200, SWP_NOZORDER);
    }

    HWND Label(const wchar_t* text, int x, int y, int w, int h, HFONT font)
    {
        HWND label = CreateWindowExW(0, L"Static", text, WS_CHILD | WS_VISIBLE | SS_LEFT | SS_NOPREFIX, x, y, w, h,
                                     m_panel, nullptr, GetModuleHandleW(nullptr), nullptr);
        SendMessageW(label, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        return label;
    }

    HWND Edit(const wchar_t* text, DWORD style)
    {
        HWND edit = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, 0, 0,
                                    100, 26, m_panel, nullptr, GetModuleHandleW(nullptr), nullptr);
        SendMessageW(edit, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
        return edit;
    }

    static LRESULT CALLBACK PanelProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* page = static_cast<MessageEditorPage*>(GetPropW(hwnd, L"gallery.page"));
        if (page) {
            switch (message) {
            case WM_ERASEBKGND: {
                RECT r;
                GetClientRect(hwnd, &r);
                FillRect(reinterpret_cast<HDC>(wParam), &r, page->m_windowBrush);
                return 1;
            }
            case WM_CTLCOLOREDIT:
            case WM_CTLCOLORSTATIC:
            case WM_CTLCOLORLISTBOX: {
                HDC dc = reinterpret_cast<HDC>(wParam);
                SetTextColor(dc, page->m_text);
                SetBkColor(dc, page->m_window);
                return reinterpret_cast<LRESULT>(page->m_windowBrush);
            }
            default:
                break;
            }
            return CallWindowProcW(page->m_panelProc, hwnd, message, wParam, lParam);
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    std::unique_ptr<CSearchEngineControl> m_box;
    HWND m_panel = nullptr;
    WNDPROC m_panelProc = nullptr;
    HWND m_subjectLabel = nullptr;
    HWND m_subject = nullptr;
    HWND m_body = nullptr;
    HBRUSH m_windowBrush = nullptr;
    HFONT m_font = nullptr;
    HFONT m_titleFont = nullptr;
    COLORREF m_text = 0;
    COLORREF m_window = 0;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeMessageEditorPage() { return std::make_unique<MessageEditorPage>(); }
