// The message box page: a button per kind of box opens it, and the answer shows under the buttons. When the
// page opens it runs one box by itself, takes a picture of it off the screen and closes it, so the page (and
// its screenshot) always shows what a box looks like in the theme and layout in use.
#include <windows.h>

#include <memory>
#include <string>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "art/ButtonArt.h"
#include "art/StaticArt.h"
#include "PushButtons.h"

using namespace gallery;

namespace {

const int kMargin = 24;
const int kButtonWidth = 150;
const int kButtonHeight = 28;
const wchar_t kPanelClass[] = L"ZcmodGalleryMessageBoxPanel";

struct Kind {
    const wchar_t* label;
    const wchar_t* text;
    UINT type;
    bool older;  // CVuikMessageBox with the gallery's skins
};

const Kind kKinds[] = {
    {L"OK", L"The contacts were copied to the phone.", MB_OK | MB_ICONINFORMATION, false},
    {L"OK, Cancel", L"Send the message to 3 recipients?", MB_OKCANCEL | MB_ICONQUESTION, false},
    {L"Yes, No, Cancel", L"Save the changes to the contact before closing?", MB_YESNOCANCEL | MB_ICONWARNING, false},
    {L"Yes, No", L"Delete the message from the phone?", MB_YESNO | MB_ICONQUESTION, false},
    {L"Cancel only", L"Waiting for the phone to answer.", MB_VUIK_CANCELONLY, false},
    {L"No icon", L"A box without an icon starts its text at the margin.", MB_OKCANCEL, false},
    {L"Older box", L"The application-skinned box, with the gallery's button faces.", MB_YESNO, true},
};

const wchar_t* Answer(int result)
{
    switch (result) {
        case IDOK: return L"OK";
        case IDCANCEL: return L"Cancel";
        case IDYES: return L"Yes";
        case IDNO: return L"No";
        default: return L"(none)";
    }
}

class MessageBoxPage : public GalleryPage {
public:
    ~MessageBoxPage() override
    {
        if (m_picture)
            DeleteObject(m_picture);
    }
    const wchar_t* Title() const override { return L"Message boxes"; }

    void Enter(HWND host) override
    {
        m_host = host;
        RegisterPanel();
        RECT area;
        GetClientRect(host, &area);
        const int rows = (static_cast<int>(sizeof(kKinds) / sizeof(kKinds[0])) + 3) / 4;
        // Right to left, the platform lays the panel's buttons and its answer out from the right.
        m_panel = CreateWindowExW(CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0, kPanelClass, nullptr, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0,
                                  area.right, kMargin + rows * (kButtonHeight + 8) + 40, host, nullptr,
                                  GetModuleHandleW(nullptr), this);
        for (size_t i = 0; i < sizeof(kKinds) / sizeof(kKinds[0]); ++i) {
            const int column = static_cast<int>(i % 4), row = static_cast<int>(i / 4);
            const int x = kMargin + column * (kButtonWidth + 10), y = kMargin + row * (kButtonHeight + 8);
            m_pushButtons.Add(m_panel, kKinds[i].label, x, y, kButtonWidth, kButtonHeight, static_cast<int>(100 + i));
        }
        SetUpOlderBox();
        TakePicture();
    }

    void Leave() override
    {
        m_pushButtons.Clear();
        if (m_panel)
            DestroyWindow(m_panel);
        m_panel = nullptr;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        HBRUSH brush = CreateSolidBrush(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW));
        FillRect(dc, &area, brush);
        DeleteObject(brush);
        RECT panel = {0, 0, 0, 0};
        if (m_panel)
            GetClientRect(m_panel, &panel);
        const int top = panel.bottom + 8;
        const bool rtl = CVuikLib::IsLayoutRTL() != 0;
        const wchar_t* heading = L"The box as it opens (a picture taken when the page opened):";
        SIZE extent = {0, 0};
        GetTextExtentPoint32W(dc, heading, lstrlenW(heading), &extent);
        Text(dc, rtl ? area.right - kMargin - extent.cx : kMargin, top, heading, DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
        if (!m_picture)
            return;
        BITMAP bm = {};
        GetObjectW(m_picture, sizeof(bm), &bm);
        HDC memory = CreateCompatibleDC(dc);
        HGDIOBJ old = SelectObject(memory, m_picture);
        BitBlt(dc, rtl ? area.right - kMargin - bm.bmWidth : kMargin, top + 28, bm.bmWidth, bm.bmHeight, memory, 0, 0,
               SRCCOPY);
        SelectObject(memory, old);
        DeleteDC(memory);
    }

    std::wstring Verify() override
    {
        if (!m_picture)
            return L"no picture of a box was taken";
        return m_pictureResult == IDCANCEL ? L"" : L"the box that was pictured did not end with Cancel";
    }

private:
    static LRESULT CALLBACK PanelProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* self = reinterpret_cast<MessageBoxPage*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        switch (message) {
            case WM_NCCREATE:
                SetWindowLongPtrW(hwnd, GWLP_USERDATA,
                                  reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
                break;
            case WM_ERASEBKGND: {
                RECT r;
                GetClientRect(hwnd, &r);
                HBRUSH brush = CreateSolidBrush(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW));
                FillRect(reinterpret_cast<HDC>(wParam), &r, brush);
                DeleteObject(brush);
                return 1;
            }
            case WM_PAINT: {
                PAINTSTRUCT ps;
                HDC dc = BeginPaint(hwnd, &ps);
                if (self) {
                    RECT r;
                    GetClientRect(hwnd, &r);
                    Text(dc, kMargin, r.bottom - 30, L"Answer: " + self->m_answer, DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
                }
                EndPaint(hwnd, &ps);
                return 0;
            }
            case WM_COMMAND:
                if (self && HIWORD(wParam) == BN_CLICKED && LOWORD(wParam) >= 100) {
                    const Kind& kind = kKinds[LOWORD(wParam) - 100];
                    const int result = kind.older ? CVuikMessageBox::Show(hwnd, kind.text, L"Desk Hub", kind.type)
                                                  : CVuikCommonMessageBox::Show(hwnd, kind.text, L"Desk Hub",
                                                                                kind.type);
                    self->m_answer = Answer(result);
                    InvalidateRect(hwnd, nullptr, TRUE);
                    return 0;
                }
                break;
            default:
                break;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    static void RegisterPanel()
    {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = PanelProc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.lpszClassName = kPanelClass;
        RegisterClassW(&wc);
    }

    // The older box wears the gallery's button face and the static page's card for a background.
    void SetUpOlderBox()
    {
        const UINT dark = DarkTheme() ? IDB_GALLERY_DARK_OFFSET : 0;
        CVuikButtonSkinDef def = CVuikButtonSkin::GetDefaultSkinDef();
        for (int s = 0; s < 4; ++s) {
            def.m_States[s].m_nLeftBitmapId = IDB_GALLERY_FACE + dark + s * 3;
            def.m_States[s].m_nMiddleBitmapId = IDB_GALLERY_FACE + dark + s * 3 + 1;
            def.m_States[s].m_nRightBitmapId = IDB_GALLERY_FACE + dark + s * 3 + 2;
            def.m_States[s].m_crText = DkhLoadColor(nullptr, s == ButtonDisabled ? ZGR_COLOR_TEXT_DISABLED
                                                                                  : ZGR_COLOR_TEXT);
        }
        m_buttonSkin.Unload();
        m_buttonSkin.SetSkinDef(def);
        m_buttonSkin.Load();
        const UINT card = IDB_GALLERY_STATIC_BASE + (DarkTheme() ? IDB_GALLERY_STATIC_THEME_STEP : 0) +
                          IDB_GALLERY_STATIC_CARD + 7;  // the card's centre, stretched
        m_backgroundSkin.Unload();
        m_backgroundSkin.SetSkinDef(CVuikStaticBitmapSkinDef{card, 1, 0});
        m_backgroundSkin.Load();
        CVuikMessageBox::SetButtonSkin(&m_buttonSkin);
        CVuikMessageBox::SetBackgroundSkin(&m_backgroundSkin);
        CVuikMessageBox::SetTextColor(DkhLoadColor(nullptr, ZGR_COLOR_TEXT));
    }

    // Runs a Yes, No, Cancel box; a thread timer finds it, copies it off the screen and presses Escape.
    void TakePicture()
    {
        if (m_picture)
            DeleteObject(m_picture);
        m_picture = nullptr;
        s_self = this;
        s_ticks = 0;
        const UINT_PTR timer = SetTimer(nullptr, 0, 150, Snap);
        m_pictureResult = CVuikCommonMessageBox::Show(m_host, kKinds[2].text, L"Desk Hub", kKinds[2].type);
        KillTimer(nullptr, timer);
        s_self = nullptr;
    }

    static void CALLBACK Snap(HWND, UINT, UINT_PTR, DWORD)
    {
        HWND box = nullptr;
        EnumThreadWindows(
            GetCurrentThreadId(),
            [](HWND hwnd, LPARAM out) -> BOOL {
                wchar_t cls[16] = {};
                GetClassNameW(hwnd, cls, 16);
                if (IsWindowVisible(hwnd) && lstrcmpW(cls, L"#32770") == 0) {
                    *reinterpret_cast<HWND*>(out) = hwnd;
                    return FALSE;
                }
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&box));
        if (!box || !s_self)
            return;
        // Two ticks, so that the box and its buttons have painted.
        if (++s_ticks < 2)
            return;
        UpdateWindow(box);
        RECT r;
        GetWindowRect(box, &r);
        HDC screen = GetDC(nullptr);
        HDC memory = CreateCompatibleDC(screen);
        HBITMAP picture = CreateCompatibleBitmap(screen, r.right - r.left, r.bottom - r.top);
        HGDIOBJ old = SelectObject(memory, picture);
        BitBlt(memory, 0, 0, r.right - r.left, r.bottom - r.top, screen, r.left, r.top, SRCCOPY);
        SelectObject(memory, old);
        DeleteDC(memory);
        ReleaseDC(nullptr, screen);
        s_self->m_picture = picture;
        s_self = nullptr;
        PostMessageW(box, WM_KEYDOWN, VK_ESCAPE, 1);
    }

    static MessageBoxPage* s_self;
    static int s_ticks;
    gallery::PushButtons m_pushButtons;
    HWND m_host = nullptr;
    HWND m_panel = nullptr;
    HBITMAP m_picture = nullptr;
    int m_pictureResult = 0;
    std::wstring m_answer = L"(none yet)";
    CVuikButtonSkin m_buttonSkin;
    CVuikStaticBitmapSkin m_backgroundSkin;
};

MessageBoxPage* MessageBoxPage::s_self = nullptr;
int MessageBoxPage::s_ticks = 0;

}  // namespace

std::unique_ptr<GalleryPage> MakeMessageBoxPage() { return std::unique_ptr<GalleryPage>(new MessageBoxPage); }
