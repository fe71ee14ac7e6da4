// The skinned tab control: a platform "SysTabControl32" window that keeps the items, the selection and the
// layout of rows, painted completely by CVuikTabSkin from 18 pieces (panel edges and corners, tab ends and
// middles, separators). Several rows are supported; the platform moves the selected tab's row to the front,
// next to the panel, and the skin draws the rows behind it a little lower so they are seen to lie behind.
//
//   CVuikTabSkin skin;                       // the application's, outliving the control
//   skin.SetSkinDef(def);                    // 18 bitmap ids of its own module, colours and fonts
//   skin.Load();
//   CVuikTabCtrl tabs;
//   tabs.Create(parent, rect, IDC_TABS, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0);
//   tabs.SetSkin(&skin);
//   tabs.InsertItem(0, L"General");
//
// Right to left needs nothing of its own: a window with WS_EX_LAYOUTRTL is mirrored by the platform, tabs,
// hit testing and drawing alike.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikBitmap;

// The indexes of the 18 pieces in m_nFrameBitmapIds.
enum ETabPiece {
    TAB_PIECE_BASE = 0,             // loaded and validated, not drawn
    TAB_PIECE_LEFT = 1,             // panel's left side
    TAB_PIECE_BOTTOM_LEFT = 2,      // panel's corner
    TAB_PIECE_TOP_RIGHT = 3,        // panel's corner; the end of a selected last tab of several rows
    TAB_PIECE_RIGHT = 4,            // panel's right side
    TAB_PIECE_BOTTOM_RIGHT = 5,     // panel's corner
    TAB_PIECE_BOTTOM = 6,           // panel's bottom side
    TAB_PIECE_SPARE = 7,            // loaded only
    TAB_PIECE_TOP = 8,              // panel's top side
    TAB_PIECE_SELECTED_LEFT = 9,    // left end of a selected first tab
    TAB_PIECE_SELECTED_MIDDLE = 10, // middle of a selected tab; its bottom right pixel is the panel's colour
    TAB_PIECE_SELECTED_RIGHT = 11,  // right end of a selected last tab
    TAB_PIECE_LEFT_END = 12,        // left end of an unselected first tab
    TAB_PIECE_MIDDLE = 13,          // middle of an unselected tab
    TAB_PIECE_RIGHT_END = 14,       // right end of an unselected last tab
    TAB_PIECE_INTO_SELECTED = 15,   // between an unselected tab and the selected one to its right
    TAB_PIECE_OUT_OF_SELECTED = 16, // between the selected tab and the unselected one to its right
    TAB_PIECE_SEPARATOR = 17,       // between two unselected tabs
    TAB_PIECE_COUNT = 18
};

// One tab as a paint sees it; made anew for each paint.
class ZCMOD_API CTabItem {
public:
    CTabItem() : m_bSelected(false), m_bFirst(false), m_bLast(false), m_bInSelectedRow(false), m_nIndex(0), m_rcItem() {}
    virtual ~CTabItem() {}

    bool m_bSelected;
    bool m_bFirst;          // first in its row
    bool m_bLast;           // last in its row
    bool m_bInSelectedRow;  // in the row of the selected tab, the front row
    int m_nIndex;
    RECT m_rcItem;          // TCM_GETITEMRECT
    std::wstring m_strText;
};

// What a tab control looks like: the application fills it; the library holds no default pieces.
struct CVuikTabSkinDef {
    UINT m_nFrameBitmapIds[TAB_PIECE_COUNT];  // 0: none
    COLORREF m_crText;                        // labels of unselected tabs
    HFONT m_hFont;                            // not owned; empty: the context's font
    COLORREF m_crSelectedText;                // label of the selected tab
    HFONT m_hSelectedFont;                    // not owned
};

class ZCMOD_API CVuikTabSkin : public CVuikBaseSkinImpl<CVuikTabSkin, CVuikTabSkinDef> {
public:
    // Copies m_DefaultSkinDef (all zero unless the application set one); no pictures.
    CVuikTabSkin();
    virtual ~CVuikTabSkin();

    // Loads every piece from CVuikLib's resource instance, without a mirror flag, then validates.
    virtual void Load();
    virtual void Unload();
    // Valid when every piece but the spare (7) and the top edge (8) is there, whatever the ids say.
    virtual void Validate();
    // Paints the panel and the tabs of `window`, a tab control, asking it for its items.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    // The bottom right pixel of the selected middle piece (0x00RRGGBB, read the way CVuikBitmap::GetPixel
    // reads), stored in m_crBackground; 0xFFFFFFFF without that piece.
    DWORD GetBackgroundColor();
    CVuikBitmap* GetPiece(int index) const
    {
        return index >= 0 && index < TAB_PIECE_COUNT ? m_pFrameBitmaps[index] : nullptr;
    }

    // Reaches only skins constructed later.
    static void SetDefaultSkinDef(CVuikTabSkinDef def) { m_DefaultSkinDef = def; }
    static CVuikTabSkinDef m_DefaultSkinDef;

    CVuikBitmap* m_pFrameBitmaps[TAB_PIECE_COUNT];
    // 0xF0E6E6 until the first draw or GetBackgroundColor.
    DWORD m_crBackground;

protected:
    // The labels of `tabs` in index order; with `mirrorWidth`, at their places mirrored in that width.
    void DrawLabels(HDC dc, const std::vector<CTabItem>& tabs, bool focused, int mirrorWidth);

private:
    CVuikTabSkin(const CVuikTabSkin&);
    CVuikTabSkin& operator=(const CVuikTabSkin&);
};

// The private message that asks the control for the panel's colour (a COLORREF; 0 without a skin).
#define WM_VUIK_TAB_GETBKCLR 0x467

class ZCMOD_API CVuikTabCtrl : public CVuikWindowImpl<CVuikTabSkin> {
public:
    CVuikTabCtrl();
    virtual ~CVuikTabCtrl();

    static const wchar_t* GetWndClassName() { return WC_TABCONTROLW; }

    using CVuikWindowImpl<CVuikTabSkin>::OnPaint;
    using CVuikWindowImpl<CVuikTabSkin>::OnEraseBkgnd;
    using CVuikWindowImpl<CVuikTabSkin>::OnRepaint;

    // A "SysTabControl32" child with TCS_OWNERDRAWFIXED added to `style`. Item size and minimum width stay
    // the platform's: set them with SetItemSize and SetMinTabWidth.
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle);
    // Takes over an existing tab control: adds TCS_OWNERDRAWFIXED, a minimum tab width of 50 and tabs 24
    // pixels high. 1 on success, else 0.
    virtual BOOL SubclassWindow(HWND window);
    // The buffer is built left to right whatever the library's layout: see the top of this file.
    virtual void CreateBackBuffer(int width, int height, CVuikGraphics* graphics);

    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnGetBkclr(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // One TCM_* message each, with the platform's meaning.
    HIMAGELIST GetImageList() const;
    HIMAGELIST SetImageList(HIMAGELIST imageList);
    int GetItemCount() const;
    BOOL GetItem(int item, TCITEMW* info) const;
    BOOL SetItem(int item, TCITEMW* info);
    BOOL GetItemRect(int item, RECT* rect) const;
    int GetCurSel() const;
    int SetCurSel(int item);
    SIZE SetItemSize(SIZE size);
    void SetPadding(SIZE size);
    int GetRowCount() const;
    int GetCurFocus() const;
    void SetCurFocus(int item);
    BOOL SetItemExtra(int bytes);
    int SetMinTabWidth(int width);
    DWORD GetExtendedStyle() const;
    DWORD SetExtendedStyle(DWORD mask, DWORD style);
    BOOL GetUnicodeFormat() const;
    BOOL SetUnicodeFormat(BOOL unicode);
    int InsertItem(int item, TCITEMW* info);
    // A tab with a label only.
    int InsertItem(int item, const wchar_t* text);
    BOOL DeleteItem(int item);
    BOOL DeleteAllItems();
    // The display area from a window rectangle (`larger` 0), or the other way round.
    void AdjustRect(BOOL larger, RECT* rect) const;
    void RemoveImage(int image);
    int HitTest(TCHITTESTINFO* info) const;
    void DeselectAll(BOOL excludeFocus);
    BOOL HighlightItem(int item, BOOL highlight);

    int GetLastSel() const { return m_nLastSel; }

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    using CVuikWindowImpl<CVuikTabSkin>::Create;

    // The selection of the last paint: a change repaints the strip above the tabs through the parent.
    int m_nLastSel;

private:
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return m_hWnd ? SendMessageW(m_hWnd, message, wParam, lParam) : 0;
    }
};
