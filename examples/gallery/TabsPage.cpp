// The tab control's page: a settings dialog of the kind the suite's applications show, with a skinned tab
// control whose pages hold plain platform controls, and a narrow one whose tabs take several rows. The pieces
// are the gallery's own (art/tabs.py), one set per theme; the page takes the set of the current theme.
//
// The sheets hold skinned combo boxes: plain ones, and a ComboBoxEx32 whose folders show their icons and
// their depth in the list. The drop-down lists are drawn by the library; an item too long for the list shows
// whole in a tooltip beside it.
//
// Right to left, the page's panel is a mirrored window (WS_EX_LAYOUTRTL), which its children inherit: the
// platform lays out the tabs and the controls from the right, and the tab control needs nothing more.
#include <windows.h>

#include <commctrl.h>

#include <cwchar>
#include <memory>
#include <string>
#include <vector>

#include <zcmod/VuikGraphics.h>
#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "TabArt.h"
#include "PushButtons.h"

using namespace gallery;

namespace {

const wchar_t kPanelClass[] = L"ZcmodGalleryTabsPanel";
const wchar_t kSheetClass[] = L"ZcmodGalleryTabsSheet";
const wchar_t kBrushProp[] = L"ZcmodGalleryBrush";
const UINT kMainTabsId = 40;
const UINT kRowsTabsId = 41;

// The page's background: one colour, the theme's window colour.
struct CPanelSkinDef {
    COLORREF m_crFill;
};

class CPanelSkin : public CVuikBaseSkinImpl<CPanelSkin, CPanelSkinDef> {
public:
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        HBRUSH brush = CreateSolidBrush(m_SkinDef.m_crFill);
        const RECT all = {0, 0, width, height};
        FillRect(*graphics, &all, brush);
        DeleteObject(brush);
    }
};

class CPanel : public CVuikWindowImpl<CPanelSkin> {};

bool IsGraphite()
{
    wchar_t name[64] = {};
    HMODULE zgr = ZCMOD_GetCommonZGR();
    if (zgr)
        LoadStringW(zgr, ZGR_STR_THEME_NAME, name, 64);
    return std::wcscmp(name, L"Graphite") == 0;
}

// Panel and sheets answer their controls' colour questions with their own background and the theme's text.
LRESULT CALLBACK ContainerProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

struct Sheet {
    const wchar_t* tab;
    HWND window;
};

class TabsPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Tab control"; }

    void Enter(HWND host) override
    {
        Leave();
        Register();
        s_page = this;
        INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_USEREX_CLASSES | ICC_TAB_CLASSES};
        InitCommonControlsEx(&classes);
        const bool graphite = IsGraphite();
        const UINT first = graphite ? IDB_GALLERY_TAB_GRAPHITE : IDB_GALLERY_TAB_DEFAULT;
        m_text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        m_font = SuiteFont(14);
        m_bold = SuiteFont(14, FW_BOLD);
        m_title = SuiteFont(20, FW_BOLD);

        CVuikTabSkinDef def = {};
        for (int i = 0; i < TAB_PIECE_COUNT; ++i)
            def.m_nFrameBitmapIds[i] = i == IDB_GALLERY_TAB_SPARE ? 0 : first + i;
        def.m_crText = def.m_crSelectedText = m_text;
        def.m_hFont = m_font;
        def.m_hSelectedFont = m_bold;
        m_skin.SetSkinDef(def);
        m_skin.Load();

        const DWORD mirrored = CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0;
        RECT area;
        GetClientRect(host, &area);
        m_panelSkin.SetSkinDef(CPanelSkinDef{DkhLoadColor(nullptr, ZGR_COLOR_WINDOW)});
        m_panel.SetSkin(&m_panelSkin);
        m_panel.Create(kPanelClass, host, area, L"", 1, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, mirrored, nullptr);
        m_panelBrush = CreateSolidBrush(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW));
        SetPropW(m_panel.m_hWnd, kBrushProp, m_panelBrush);

        Label(m_panel.m_hWnd, L"Settings", 30, 18, 400, 28, m_title);
        Label(m_panel.m_hWnd,
              L"A skinned tab control over plain controls. Click a tab or use the arrow keys.", 30, 46, 560, 20,
              m_font);

        // The dialog's tab control and its sheets.
        m_tabs.Create(m_panel.m_hWnd, RECT{30, 80, 560, 420}, kMainTabsId,
                      WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS, 0);
        SendMessageW(m_tabs.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(m_bold), FALSE);
        m_tabs.SetItemSize(SIZE{0, 24});
        m_tabs.SetSkin(&m_skin);
        m_sheets = {{L"General", nullptr}, {L"Display", nullptr}, {L"Phone", nullptr}, {L"Advanced", nullptr}};
        for (size_t i = 0; i < m_sheets.size(); ++i)
            m_tabs.InsertItem(static_cast<int>(i), m_sheets[i].tab);
        RECT inside = {30, 80, 560, 420};
        m_tabs.AdjustRect(FALSE, &inside);
        InflateRect(&inside, -6, -6);
        m_sheetBrush = CreateSolidBrush(
            static_cast<COLORREF>(SendMessageW(m_tabs.m_hWnd, WM_VUIK_TAB_GETBKCLR, 0, 0)));
        for (Sheet& sheet : m_sheets) {
            sheet.window = CreateWindowExW(0, kSheetClass, L"", WS_CHILD | WS_CLIPSIBLINGS, inside.left, inside.top,
                                           inside.right - inside.left, inside.bottom - inside.top, m_panel.m_hWnd,
                                           nullptr, GetModuleHandleW(nullptr), nullptr);
            SetPropW(sheet.window, kBrushProp, m_sheetBrush);
            // Above the tab control, which leaves its siblings on top alone (WS_CLIPSIBLINGS).
            SetWindowPos(sheet.window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        }
        FillSheets();
        // The combo boxes' corners show the tab control's panel behind them.
        for (auto& combo : m_combos)
            combo->SetBackground(m_tabs.m_hWnd);
        // The dialog's own buttons are the suite's; the sheets keep the platform's controls.
        m_pushButtons.Add(m_panel.m_hWnd, L"OK", 300, 432, 80, 28, IDOK);
        m_pushButtons.Add(m_panel.m_hWnd, L"Cancel", 390, 432, 80, 28, IDCANCEL);
        m_pushButtons.Add(m_panel.m_hWnd, L"Apply", 480, 432, 80, 28, kApplyButton);

        // A narrow one whose tabs take several rows: the selected tab's row comes to the front.
        Label(m_panel.m_hWnd, L"Several rows", 600, 80, 260, 20, m_bold);
        m_rows.Create(m_panel.m_hWnd, RECT{600, 104, 870, 300}, kRowsTabsId,
                      WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS | TCS_MULTILINE, 0);
        SendMessageW(m_rows.m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(m_bold), FALSE);
        m_rows.SetItemSize(SIZE{0, 24});
        m_rows.SetSkin(&m_skin);
        const wchar_t* rows[] = {L"Contacts", L"Messages", L"Calendar", L"Pictures", L"Music", L"Files", L"Notes"};
        for (int i = 0; i < 7; ++i)
            m_rows.InsertItem(i, rows[i]);
        m_rows.SetCurSel(5);
        RECT rowsInside = {600, 104, 870, 300};
        m_rows.AdjustRect(FALSE, &rowsInside);
        InflateRect(&rowsInside, -8, -8);
        m_rowsSheet = CreateWindowExW(0, kSheetClass, L"", WS_CHILD | WS_VISIBLE, rowsInside.left, rowsInside.top,
                                      rowsInside.right - rowsInside.left, rowsInside.bottom - rowsInside.top,
                                      m_panel.m_hWnd, nullptr, GetModuleHandleW(nullptr), nullptr);
        SetPropW(m_rowsSheet, kBrushProp, m_sheetBrush);
        SetWindowPos(m_rowsSheet, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        Label(m_rowsSheet, L"Files: what the phone shares, by folder. The selected tab's row is in front.", 0, 0,
              rowsInside.right - rowsInside.left, 60, m_font);
        ShowSheet(0);
    }

    void Leave() override
    {
        m_pushButtons.Clear();
        if (m_panel.m_hWnd && IsWindow(m_panel.m_hWnd)) {
            RemovePropW(m_panel.m_hWnd, kBrushProp);
            for (Sheet& sheet : m_sheets)
                if (sheet.window)
                    RemovePropW(sheet.window, kBrushProp);
            if (m_rowsSheet)
                RemovePropW(m_rowsSheet, kBrushProp);
            DestroyWindow(m_panel.m_hWnd);
        }
        m_panel.DeleteBackBuffer();
        m_panel.m_hWnd = m_tabs.m_hWnd = m_rows.m_hWnd = m_rowsSheet = nullptr;
        m_sheets.clear();
        m_combos.clear();
        if (m_icons) {
            ImageList_Destroy(m_icons);
            m_icons = nullptr;
        }
        m_skin.Unload();
        for (HGDIOBJ* object : {reinterpret_cast<HGDIOBJ*>(&m_font), reinterpret_cast<HGDIOBJ*>(&m_bold),
                                reinterpret_cast<HGDIOBJ*>(&m_title), reinterpret_cast<HGDIOBJ*>(&m_panelBrush),
                                reinterpret_cast<HGDIOBJ*>(&m_sheetBrush)})
            if (*object) {
                DeleteObject(*object);
                *object = nullptr;
            }
        if (s_page == this)
            s_page = nullptr;
    }

    void Paint(HDC, const RECT&) override {}  // the panel covers the page

    std::wstring Verify() override
    {
        if (!m_skin.IsValid())
            return L"the tab skin isn't valid: the gallery's tab pieces didn't load";
        if (!IsWindow(m_tabs.m_hWnd) || !IsWindow(m_rows.m_hWnd))
            return L"a tab control wasn't created";
        if (m_rows.GetRowCount() < 2)
            return L"the narrow tab control shows one row";
        if (!m_tabs.GetBackBuffer() || !m_rows.GetBackBuffer())
            return L"a tab control didn't paint with its skin";
        for (auto& combo : m_combos)
            if (!combo->SkinIsValid())
                return L"a combo box has no valid skin: the theme's combo pieces didn't load";
        if (m_combos.empty() || !m_combos[0]->GetBackBuffer())
            return L"the first combo box didn't paint with its skin";
        // The sheet of the selected tab is the one shown, and its colour is the tab control's panel.
        const int selected = m_tabs.GetCurSel();
        for (size_t i = 0; i < m_sheets.size(); ++i)
            if ((IsWindowVisible(m_sheets[i].window) != FALSE) != (static_cast<int>(i) == selected))
                return Format(L"sheet %u is shown wrongly", static_cast<unsigned>(i));
        RECT r;
        GetClientRect(m_tabs.m_hWnd, &r);
        HDC dc = GetDC(m_tabs.m_hWnd);
        const COLORREF inside = GetPixel(dc, r.right / 2, r.bottom - 8);
        ReleaseDC(m_tabs.m_hWnd, dc);
        if (inside != static_cast<COLORREF>(SendMessageW(m_tabs.m_hWnd, WM_VUIK_TAB_GETBKCLR, 0, 0)))
            return Format(L"the panel shows %06x, not the colour the control reports", static_cast<unsigned>(inside));
        return L"";
    }

    // The panel's notifications: a new selection shows its sheet.
    bool OnNotify(const NMHDR* header)
    {
        if (header->hwndFrom != m_tabs.m_hWnd || header->code != TCN_SELCHANGE)
            return false;
        ShowSheet(m_tabs.GetCurSel());
        return true;
    }
    COLORREF TextColour() const { return m_text; }

    static TabsPage* s_page;

private:
    static constexpr int kApplyButton = 0x3021;
    gallery::PushButtons m_pushButtons;
    static void Register()
    {
        WindowClass(kPanelClass, ContainerProc);
        WindowClass(kSheetClass, ContainerProc);
    }

    HWND Label(HWND parent, const wchar_t* text, int x, int y, int w, int h, HFONT font)
    {
        HWND label = CreateWindowExW(0, L"STATIC", text, WS_CHILD | WS_VISIBLE, x, y, w, h, parent, nullptr,
                                     GetModuleHandleW(nullptr), nullptr);
        SendMessageW(label, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        return label;
    }
    HWND Control(HWND parent, const wchar_t* cls, const wchar_t* text, DWORD style, int x, int y, int w, int h,
                 DWORD exStyle = 0)
    {
        HWND control = CreateWindowExW(exStyle, cls, text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, x, y, w, h,
                                       parent, nullptr, GetModuleHandleW(nullptr), nullptr);
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
        return control;
    }
    HWND Check(HWND parent, const wchar_t* text, int x, int y, bool on, DWORD style = BS_AUTOCHECKBOX)
    {
        HWND box = Control(parent, L"BUTTON", text, style, x, y, 400, 22);
        SendMessageW(box, BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
        return box;
    }

    void FillSheets()
    {
        HWND general = m_sheets[0].window;
        Label(general, L"Phone name", 10, 12, 120, 20, m_font);
        Control(general, L"EDIT", L"Sample phone", ES_AUTOHSCROLL, 140, 8, 240, 24, WS_EX_CLIENTEDGE);
        Check(general, L"Connect when the phone is attached", 10, 50, true);
        Check(general, L"Show a notification for new messages", 10, 78, true);
        Check(general, L"Start with the computer", 10, 106, false);
        Label(general, L"Phone model", 10, 146, 120, 20, m_font);
        Combo(general, 140, 142, 240,
              {L"Nokia 6230i", L"Sony Ericsson K750i", L"Motorola RAZR V3",
               L"Samsung SGH-D500 with the long name that the list can't show whole", L"Siemens S65"},
              0);
        Label(general, L"Save pictures in", 10, 184, 120, 20, m_font);
        FolderCombo(general, 140, 180, 240);

        HWND display = m_sheets[1].window;
        Label(display, L"Theme", 10, 12, 200, 20, m_bold);
        Check(display, L"Follow the system", 20, 38, false, BS_AUTORADIOBUTTON | WS_GROUP);
        Check(display, L"Default (light)", 20, 62, !IsGraphite(), BS_AUTORADIOBUTTON);
        Check(display, L"Graphite (dark)", 20, 86, IsGraphite(), BS_AUTORADIOBUTTON);
        Check(display, L"Larger text", 10, 124, false);
        Label(display, L"Language", 10, 164, 120, 20, m_font);
        Combo(display, 140, 160, 200, {L"English", L"\x05E2\x05D1\x05E8\x05D9\x05EA (Hebrew)", L"Tom && Jerry's"}, 0);

        HWND phone = m_sheets[2].window;
        Label(phone, L"Connect through", 10, 12, 200, 20, m_bold);
        Check(phone, L"USB cable", 20, 38, true, BS_AUTORADIOBUTTON | WS_GROUP);
        Check(phone, L"Bluetooth", 20, 62, false, BS_AUTORADIOBUTTON);
        Control(phone, L"BUTTON", L"Search for phones", BS_PUSHBUTTON, 10, 100, 160, 28);

        HWND advanced = m_sheets[3].window;
        Label(advanced, L"Transfer folder", 10, 12, 120, 20, m_font);
        Control(advanced, L"EDIT", L"C:\\Users\\Public\\Phone", ES_AUTOHSCROLL, 140, 8, 240, 24, WS_EX_CLIENTEDGE);
        Control(advanced, L"BUTTON", L"Browse...", BS_PUSHBUTTON, 390, 8, 90, 26);
        Check(advanced, L"Keep a log of transfers", 10, 50, false);
        Check(advanced, L"Convert pictures for the phone", 10, 78, true);
        Label(advanced, L"Picture size", 10, 118, 120, 20, m_font);
        Combo(advanced, 140, 114, 240, {L"As taken", L"The phone's screen", L"640 x 480", L"320 x 240"}, 1);
    }

    // A skinned drop-down list of `items` with `select` chosen.
    void Combo(HWND parent, int x, int y, int w, const std::vector<const wchar_t*>& items, int select)
    {
        HWND box = Control(parent, L"COMBOBOX", L"", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL,
                           x, y, w, 160);
        m_combos.push_back(std::make_unique<CVuikComboBoxCtrl>());
        CVuikComboBoxCtrl& combo = *m_combos.back();
        combo.SubclassWindow(box);
        for (const wchar_t* item : items)
            combo.AddItem(item);
        combo.SetCurSel(select);
    }

    // A ComboBoxEx32 of the phone's folders: an icon each, and their depth as an indent in the list.
    void FolderCombo(HWND parent, int x, int y, int w)
    {
        HWND box = Control(parent, WC_COMBOBOXEXW, L"", CBS_DROPDOWNLIST | WS_VSCROLL, x, y, w, 180);
        const COLORREF colours[] = {RGB(0x3a, 0x8d, 0xde), RGB(0xe8, 0xa3, 0x3d), RGB(0x5c, 0xb8, 0x5c)};
        m_icons = ImageList_Create(16, 16, ILC_COLOR24 | ILC_MASK, 3, 0);
        for (COLORREF colour : colours) {
            // A folder: a tab on top of a rounded body, on a transparent ground.
            HDC screen = GetDC(nullptr);
            HDC dc = CreateCompatibleDC(screen);
            HBITMAP picture = CreateCompatibleBitmap(screen, 16, 16);
            ReleaseDC(nullptr, screen);
            HGDIOBJ old = SelectObject(dc, picture);
            const RECT all = {0, 0, 16, 16};
            HBRUSH magenta = CreateSolidBrush(RGB(255, 0, 255));
            FillRect(dc, &all, magenta);
            DeleteObject(magenta);
            HBRUSH body = CreateSolidBrush(colour);
            HPEN edge = CreatePen(PS_SOLID, 1, RGB(GetRValue(colour) / 2, GetGValue(colour) / 2, GetBValue(colour) / 2));
            HGDIOBJ oldBrush = SelectObject(dc, body);
            HGDIOBJ oldPen = SelectObject(dc, edge);
            RoundRect(dc, 1, 2, 8, 6, 2, 2);
            RoundRect(dc, 1, 4, 15, 14, 3, 3);
            SelectObject(dc, oldBrush);
            SelectObject(dc, oldPen);
            DeleteObject(body);
            DeleteObject(edge);
            SelectObject(dc, old);
            DeleteDC(dc);
            ImageList_AddMasked(m_icons, picture, RGB(255, 0, 255));
            DeleteObject(picture);
        }
        SendMessageW(box, CBEM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(m_icons));
        const struct {
            const wchar_t* text;
            int image, indent;
        } folders[] = {{L"Phone memory", 0, 0},  {L"Pictures", 1, 1}, {L"Camera", 1, 2},
                       {L"Music", 2, 1},        {L"Memory card", 0, 0}, {L"Pictures", 1, 1}};
        for (size_t i = 0; i < sizeof(folders) / sizeof(folders[0]); ++i) {
            COMBOBOXEXITEMW item = {};
            item.mask = CBEIF_TEXT | CBEIF_IMAGE | CBEIF_SELECTEDIMAGE | CBEIF_INDENT;
            item.iItem = static_cast<INT_PTR>(i);
            item.pszText = const_cast<wchar_t*>(folders[i].text);
            item.iImage = item.iSelectedImage = folders[i].image;
            item.iIndent = folders[i].indent;
            SendMessageW(box, CBEM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        }
        m_combos.push_back(std::make_unique<CVuikComboBoxCtrl>());
        m_combos.back()->SubclassWindow(box);
        m_combos.back()->SetCurSel(2);
    }

    void ShowSheet(int index)
    {
        for (size_t i = 0; i < m_sheets.size(); ++i)
            ShowWindow(m_sheets[i].window, static_cast<int>(i) == index ? SW_SHOW : SW_HIDE);
    }

    CVuikTabSkin m_skin;
    CPanelSkin m_panelSkin;
    CPanel m_panel;
    CVuikTabCtrl m_tabs;
    CVuikTabCtrl m_rows;
    std::vector<Sheet> m_sheets;
    std::vector<std::unique_ptr<CVuikComboBoxCtrl>> m_combos;
    HIMAGELIST m_icons = nullptr;
    HWND m_rowsSheet = nullptr;
    COLORREF m_text = 0;
    HFONT m_font = nullptr;
    HFONT m_bold = nullptr;
    HFONT m_title = nullptr;
    HBRUSH m_panelBrush = nullptr;
    HBRUSH m_sheetBrush = nullptr;
};

TabsPage* TabsPage::s_page = nullptr;

LRESULT CALLBACK ContainerProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
            if (HBRUSH brush = static_cast<HBRUSH>(GetPropW(hwnd, kBrushProp))) {
                HDC dc = reinterpret_cast<HDC>(wParam);
                LOGBRUSH info = {};
                GetObjectW(brush, sizeof(info), &info);
                SetBkColor(dc, info.lbColor);
                SetTextColor(dc, TabsPage::s_page ? TabsPage::s_page->TextColour() : GetSysColor(COLOR_WINDOWTEXT));
                return reinterpret_cast<LRESULT>(brush);
            }
            break;
        case WM_ERASEBKGND:
            if (HBRUSH brush = static_cast<HBRUSH>(GetPropW(hwnd, kBrushProp))) {
                RECT r;
                GetClientRect(hwnd, &r);
                FillRect(reinterpret_cast<HDC>(wParam), &r, brush);
                return 1;
            }
            break;
        case WM_NOTIFY:
            if (TabsPage::s_page && TabsPage::s_page->OnNotify(reinterpret_cast<NMHDR*>(lParam)))
                return 0;
            break;
        default:
            break;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

}  // namespace

std::unique_ptr<GalleryPage> MakeTabsPage()
{
    return std::make_unique<TabsPage>();
}
