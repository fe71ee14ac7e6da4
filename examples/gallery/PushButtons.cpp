#include "PushButtons.h"

#include <commctrl.h>

#include <algorithm>

#include "Drawing.h"
#include "art/ButtonArt.h"

namespace gallery {

namespace {

// The height of the face pictures (art/buttons.py). A button is that high, centred in the box it is given:
// the parents here publish no picture of their own to lay under a taller one.
const int kFaceHeight = 28;

// The library turns a button's buffer round whenever the process's layout is right to left, which is right for
// a button in a mirrored window only: the pages' buttons follow their own window's layout.
class PageButton : public CVuikButtonCtrl {
public:
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout((GetWindowLongW(m_hWnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0);
        CVuikButtonCtrl::CreateBackBuffer(width, height, graphics);
    }
};

}  // namespace

CVuikButtonSkinDef FaceSkinDef(HFONT font, UINT glyph)
{
    const UINT art = DarkTheme() ? IDB_GALLERY_DARK_OFFSET : 0;
    CVuikButtonSkinDef def = CVuikButtonSkin::GetDefaultSkinDef();
    for (int s = 0; s < 4; ++s) {
        CVuikButtonStateSkinDef& d = def.m_States[s];
        d.m_nLeftBitmapId = IDB_GALLERY_FACE + art + s * 3;
        d.m_nMiddleBitmapId = IDB_GALLERY_FACE + art + s * 3 + 1;
        d.m_nRightBitmapId = IDB_GALLERY_FACE + art + s * 3 + 2;
        d.m_nImageBitmapId = glyph ? glyph + art : 0;
        d.m_nImageAlign = glyph ? CVuikButtonStateSkinDef::AlignLeft : CVuikButtonStateSkinDef::AlignCaption;
        d.m_nOffsetX = d.m_nOffsetY = s == ButtonPressed ? 1 : 0;
        d.m_crText = DkhLoadColor(nullptr, s == ButtonDisabled ? ZGR_COLOR_TEXT_DISABLED : ZGR_COLOR_TEXT);
        d.m_hFont = font;
    }
    return def;
}

HWND PushButtons::Add(HWND parent, const wchar_t* text, int x, int y, int width, int height, int id)
{
    if (!m_loaded) {
        m_font = SuiteFont(14);
        const CVuikButtonSkinDef def = FaceSkinDef(m_font, 0);
        // Pictures are loaded as drawn: a mirrored button turns its whole buffer round.
        LayoutScope layout(false);
        m_skin.SetSkinDef(def);
        m_skin.Load();
        m_loaded = true;
    }
    auto button = std::make_unique<PageButton>();
    const int top = y + (height - kFaceHeight) / 2;
    HWND hwnd = button->Create(parent, RECT{x, top, x + width, top + kFaceHeight}, static_cast<UINT>(id),
                               WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, 0);
    if (!hwnd)
        return nullptr;
    button->SetSkin(&m_skin);
    SetWindowTextW(hwnd, text);
    if (std::find(m_parents.begin(), m_parents.end(), parent) == m_parents.end() &&
        SetWindowSubclass(parent, ParentProc, 1, reinterpret_cast<DWORD_PTR>(this)))
        m_parents.push_back(parent);
    m_buttons.push_back(std::move(button));
    return hwnd;
}

LRESULT CALLBACK PushButtons::ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                         DWORD_PTR data)
{
    if (message == WM_DRAWITEM && lParam) {
        const HWND item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)->hwndItem;
        const auto& buttons = reinterpret_cast<PushButtons*>(data)->m_buttons;
        for (const auto& button : buttons)
            if (button->m_hWnd == item) {
                const WNDPROC proc = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(item, GWLP_WNDPROC));
                return CallWindowProcW(proc, item, WM_DRAWITEM, wParam, lParam);
            }
    }
    if (message == WM_NCDESTROY)
        RemoveWindowSubclass(hwnd, ParentProc, 1);
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

void PushButtons::Clear()
{
    for (HWND parent : m_parents)
        if (IsWindow(parent))
            RemoveWindowSubclass(parent, ParentProc, 1);
    m_parents.clear();
    for (auto& button : m_buttons)
        if (button->m_hWnd && IsWindow(button->m_hWnd))
            DestroyWindow(button->m_hWnd);
    m_buttons.clear();
    if (m_loaded)
        m_skin.Unload();
    m_loaded = false;
    if (m_font)
        DeleteObject(m_font);
    m_font = nullptr;
}

}  // namespace gallery
