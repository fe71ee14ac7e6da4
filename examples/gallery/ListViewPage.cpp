// The list view and edit page: a small contact form, edits whose border the library draws and under whose
// text the page shows through, and a contact list whose header the library repaints while the page, its
// owner, draws the rows. Everything sits on a skinned panel whose back buffer the edits copy from; in a
// right-to-left layout the panel is a mirrored window, so the form and the list turn round with it.
#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <string>
#include <vector>

#include <zcmod/VuikGraphics.h>
#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"

using namespace gallery;

namespace {

const int kListId = 300;
const wchar_t* const kContacts[][3] = {
    {L"Ada Lovelace", L"+44 20 7946 0018", L"ada@analytical.example"},
    {L"Alan Turing", L"+44 161 496 0754", L"alan@bletchley.example"},
    {L"Grace Hopper", L"+1 202 555 0147", L"grace@cobol.example"},
    {L"Edsger Dijkstra", L"+31 40 247 9111", L"edsger@eindhoven.example"},
    {L"Barbara Liskov", L"+1 617 555 0199", L"barbara@clu.example"},
    {L"Donald Knuth", L"+1 650 555 0123", L"don@taocp.example"},
    {L"Margaret Hamilton", L"+1 617 555 0142", L"margaret@apollo.example"},
    {L"A contact whose name is far too long for its column", L"+972 3 555 0100", L"long@name.example"},
};

COLORREF Theme(UINT id) { return DkhLoadColor(nullptr, id); }

// The panel's look: the theme's window colour, which reads the same both ways round.
struct CContactPanelSkinDef {
    COLORREF m_crBack;
};
class CContactPanelSkin : public CVuikBaseSkinImpl<CContactPanelSkin, CContactPanelSkinDef> {
public:
    CContactPanelSkin() { m_SkinDef.m_crBack = Theme(ZGR_COLOR_WINDOW); }
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        HBRUSH brush = CreateSolidBrush(m_SkinDef.m_crBack);
        const RECT all = {0, 0, width, height};
        FillRect(*graphics, &all, brush);
        DeleteObject(brush);
    }
};

class CContactPanel : public CVuikWindowImpl<CContactPanelSkin> {};

class ListViewPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"List view and edit"; }

    void Enter(HWND host) override
    {
        Leave();
        const bool rtl = CVuikLib::IsLayoutRTL() != 0;
        m_text = Theme(ZGR_COLOR_TEXT);
        m_window = Theme(ZGR_COLOR_WINDOW);
        m_highlight = Theme(ZGR_COLOR_HIGHLIGHT);
        m_windowBrush = CreateSolidBrush(m_window);
        m_panelSkin.SetSkinDef(CContactPanelSkinDef{m_window});
        m_font = SuiteFont(15);
        m_titleFont = SuiteFont(20, FW_BOLD);

        RECT area;
        GetClientRect(host, &area);
        m_panel = std::make_unique<CContactPanel>();
        m_panel->SetSkin(&m_panelSkin);
        m_panel->Create(WindowClass(L"ZcmodGalleryContactPanel"), host, area, L"", 1, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN,
                        rtl ? WS_EX_LAYOUTRTL : 0, nullptr);
        // The page is the owner of the list and the edits' parent: it answers for the rows and the colours
        // before the panel's own procedure.
        SetPropW(m_panel->m_hWnd, L"gallery.page", this);
        m_panelProc = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(m_panel->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(PanelProc)));

        Label(L"Contacts: skinned edits and a list view with a repainted header", 30, 16, 700, 28, m_titleFont);
        const wchar_t* labels[] = {L"Name", L"Phone", L"Note (disabled)"};
        const wchar_t* values[] = {L"Grace Hopper", L"+1 202 555 0147", L"Edits keep their drawn border"};
        for (int i = 0; i < 3; ++i) {
            Label(labels[i], 30, 66 + i * 40, 130, 24, m_font);
            HWND edit = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", values[i], WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL,
                                        170, 62 + i * 40, 300, 28, m_panel->m_hWnd, nullptr, GetModuleHandleW(nullptr),
                                        nullptr);
            SendMessageW(edit, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
            auto ctrl = std::make_unique<CVuikEditCtrl>();
            ctrl->SubclassWindow(edit);
            if (i == 2)
                EnableWindow(edit, FALSE);
            m_edits.push_back(std::move(ctrl));
        }

        m_list = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | WS_BORDER | LVS_REPORT | LVS_SINGLESEL |
                                                           LVS_SHOWSELALWAYS,
                                 30, 200, 660, 300, m_panel->m_hWnd, reinterpret_cast<HMENU>(kListId),
                                 GetModuleHandleW(nullptr), nullptr);
        SendMessageW(m_list, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
        if (DarkTheme())
            ListView_SetBkColor(m_list, m_window);  // under the rows too
        m_listCtrl = std::make_unique<CVuikListViewCtrl>();
        m_listCtrl->SubclassWindow(m_list);
        const struct {
            const wchar_t* text;
            int width;
        } columns[] = {{L"Name", 220}, {L"Phone", 170}, {L"E-mail", 240}};
        for (int i = 0; i < 3; ++i) {
            LVCOLUMNW column = {};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.cx = columns[i].width;
            column.pszText = const_cast<wchar_t*>(columns[i].text);
            ListView_InsertColumn(m_list, i, &column);
        }
        for (int i = 0; i < static_cast<int>(sizeof(kContacts) / sizeof(kContacts[0])); ++i) {
            LVITEMW item = {};
            item.mask = LVIF_TEXT;
            item.iItem = i;
            item.pszText = const_cast<wchar_t*>(kContacts[i][0]);
            ListView_InsertItem(m_list, &item);
            ListView_SetItemText(m_list, i, 1, const_cast<wchar_t*>(kContacts[i][1]));
            ListView_SetItemText(m_list, i, 2, const_cast<wchar_t*>(kContacts[i][2]));
        }
        ListView_SetItemState(m_list, 2, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        Label(L"Click a row or use the arrow keys: the page draws the rows, the library the header and borders.", 30,
              512, 700, 24, m_font);
    }

    void Leave() override
    {
        m_edits.clear();
        m_listCtrl.reset();
        if (m_panel && m_panel->m_hWnd) {
            SetWindowLongPtrW(m_panel->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_panelProc));
            RemovePropW(m_panel->m_hWnd, L"gallery.page");
            DestroyWindow(m_panel->m_hWnd);
        }
        m_panel.reset();
        for (HGDIOBJ* o : {reinterpret_cast<HGDIOBJ*>(&m_windowBrush), reinterpret_cast<HGDIOBJ*>(&m_font),
                           reinterpret_cast<HGDIOBJ*>(&m_titleFont)})
            if (*o) {
                DeleteObject(*o);
                *o = nullptr;
            }
        m_list = nullptr;
    }

    void Paint(HDC, const RECT&) override {}  // the panel covers the page

    std::wstring Verify() override
    {
        if (!m_panel || !m_list || m_edits.size() != 3 || !m_listCtrl->GetHeader())
            return L"the form or the list wasn't made";
        if (GetWindowLongPtrW(m_listCtrl->GetHeader(), GWLP_WNDPROC) !=
            reinterpret_cast<LONG_PTR>(&CVuikListViewCtrl::HeaderProc))
            return L"the list's header isn't repainted by the library";
        if ((GetWindowLongPtrW(m_list, GWL_STYLE) & (LVS_OWNERDRAWFIXED | LVS_TYPEMASK)) !=
            (LVS_OWNERDRAWFIXED | LVS_REPORT))
            return L"the list isn't an owner-drawn report view";
        // The header's bottom line, and the selected row in the highlight.
        RECT header;
        GetClientRect(m_listCtrl->GetHeader(), &header);
        if (Pixel(m_listCtrl->GetHeader(), 40, header.bottom - 1) != RGB(0xD2, 0xD2, 0xD2))
            return L"the header's bottom line is missing";
        RECT row = {};
        row.left = LVIR_BOUNDS;
        SendMessageW(m_list, LVM_GETITEMRECT, 2, reinterpret_cast<LPARAM>(&row));
        if (Pixel(m_list, row.right - 20, (row.top + row.bottom) / 2) != m_highlight)
            return L"the selected row isn't drawn in the highlight";
        return L"";
    }

private:
    static COLORREF Pixel(HWND hwnd, int x, int y)
    {
        HDC dc = GetDC(hwnd);
        const COLORREF c = GetPixel(dc, x, y);
        ReleaseDC(hwnd, dc);
        return c;
    }

    void Label(const wchar_t* text, int x, int y, int w, int h, HFONT font)
    {
        HWND label = CreateWindowExW(0, L"Static", text, WS_CHILD | WS_VISIBLE | SS_LEFT | SS_NOPREFIX, x, y, w, h,
                                     m_panel->m_hWnd, nullptr, GetModuleHandleW(nullptr), nullptr);
        SendMessageW(label, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }

    // The rows: the list skin's fill (or the highlight when selected), the contact's fields in the columns.
    void DrawRow(const DRAWITEMSTRUCT* item)
    {
        const CVuikListViewSkinDef def = *m_listCtrl->GetSkin();
        const bool selected = (item->itemState & ODS_SELECTED) != 0;
        // A dark theme's rows lie on its window colour, a light theme's on the list skin's fill.
        const COLORREF listFill = RGB(def.m_crFill >> 16 & 0xFF, def.m_crFill >> 8 & 0xFF, def.m_crFill & 0xFF);
        const COLORREF fill = selected ? m_highlight : DarkTheme() ? m_window : listFill;
        HBRUSH brush = CreateSolidBrush(fill);
        FillRect(item->hDC, &item->rcItem, brush);
        DeleteObject(brush);
        const int luminance = (GetRValue(fill) * 3 + GetGValue(fill) * 6 + GetBValue(fill)) / 10;
        SetTextColor(item->hDC, luminance < 128 ? RGB(255, 255, 255) : RGB(32, 38, 46));
        SetBkMode(item->hDC, TRANSPARENT);
        HGDIOBJ old = SelectObject(item->hDC, m_font);
        for (int column = 0; column < 3; ++column) {
            RECT cell = {};
            cell.top = column;
            cell.left = LVIR_LABEL;
            ListView_GetSubItemRect(item->hwndItem, item->itemID, column, LVIR_LABEL, &cell);
            if (column == 0)
                cell.right = cell.left + ListView_GetColumnWidth(item->hwndItem, 0);
            cell.left += 10;
            cell.right -= 4;
            wchar_t text[128] = {};
            ListView_GetItemText(item->hwndItem, item->itemID, column, text, 128);
            DrawTextW(item->hDC, text, -1, &cell, DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
        }
        SelectObject(item->hDC, old);
    }

    static LRESULT CALLBACK PanelProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* page = static_cast<ListViewPage*>(GetPropW(hwnd, L"gallery.page"));
        if (page) {
            switch (message) {
                case WM_DRAWITEM:
                    if (wParam == kListId) {
                        page->DrawRow(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
                        return TRUE;
                    }
                    break;
                case WM_CTLCOLOREDIT:
                case WM_CTLCOLORSTATIC: {
                    // Edits show the panel under their text; labels stand on the panel's colour.
                    HDC dc = reinterpret_cast<HDC>(wParam);
                    const bool disabled = !IsWindowEnabled(reinterpret_cast<HWND>(lParam));
                    SetTextColor(dc, disabled ? Theme(ZGR_COLOR_TEXT_DISABLED) : page->m_text);
                    SetBkMode(dc, TRANSPARENT);
                    return reinterpret_cast<LRESULT>(message == WM_CTLCOLOREDIT ? GetStockObject(NULL_BRUSH)
                                                                                 : page->m_windowBrush);
                }
                default:
                    break;
            }
            return CallWindowProcW(page->m_panelProc, hwnd, message, wParam, lParam);
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    CContactPanelSkin m_panelSkin;
    std::unique_ptr<CContactPanel> m_panel;
    WNDPROC m_panelProc = nullptr;
    std::vector<std::unique_ptr<CVuikEditCtrl>> m_edits;
    std::unique_ptr<CVuikListViewCtrl> m_listCtrl;
    HWND m_list = nullptr;
    COLORREF m_text = 0, m_window = 0, m_highlight = 0;
    HBRUSH m_windowBrush = nullptr;
    HFONT m_font = nullptr;
    HFONT m_titleFont = nullptr;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeListViewPage()
{
    return std::make_unique<ListViewPage>();
}
