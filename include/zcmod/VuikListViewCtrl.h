// CVuikListViewCtrl: a platform list view forced into an owner-drawn report view, with its column header
// repainted by the toolkit (a vertical gradient, a bottom line, short column separators and left-aligned text
// in the suite's font). The rows stay with the owner of the list, which draws them on WM_DRAWITEM.
//
//   CVuikListViewCtrl list;
//   list.SubclassWindow(GetDlgItem(dialog, IDC_CONTACTS));  // report view, owner-drawn, skinned header
//   // ... the dialog answers WM_DRAWITEM for the list's rows
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

// Colours are 0xAARRGGBB, as the GDI+ layer takes them.
struct CVuikListViewSkinDef {
    DWORD m_crFill;          // kept for applications (an owner may paint its rows with it); not read here
    DWORD m_crBorderTop;     // top colour of the border's gradient
    DWORD m_crBorderBottom;  // bottom colour of the border's gradient
    int m_nCornerRadius;     // kept for applications; not read here
};

struct CVuikListViewHeaderSkinDef {
    DWORD m_crTop;           // the header's gradient, top
    DWORD m_crBottom;        // the header's gradient, bottom
    DWORD m_crLine;          // the bottom line and the column separators
    int m_nSeparatorHeight;  // length of a separator, centred on the header's height
    int m_nTextMargin;       // space before each column's text
};

// The list's own skin. Its border is that of CVuikEditSkin; the list keeps the platform's border, since no
// paint of the list reaches the skin.
class ZCMOD_API CVuikListViewSkin : public CVuikBaseSkinImpl<CVuikListViewSkin, CVuikListViewSkinDef> {
public:
    CVuikListViewSkin();
    virtual ~CVuikListViewSkin();

    // No pictures: Load and Unload do nothing, and Validate always succeeds.
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    static void SetDefaultSkinDef(CVuikListViewSkinDef def);
    static CVuikListViewSkinDef m_DefaultSkinDef;
};

class ZCMOD_API CVuikListViewHeaderSkin
    : public CVuikBaseSkinImpl<CVuikListViewHeaderSkin, CVuikListViewHeaderSkinDef> {
public:
    // Makes the two fonts ("Zelvo Sans Wide", heights 19 and 15) and takes the text colour from the graphics
    // module (ZGR_COLOR_LISTVIEW_HEADER_TEXT), or black without one.
    CVuikListViewHeaderSkin();
    virtual ~CVuikListViewHeaderSkin();

    virtual void Load();
    virtual void Unload();
    virtual void Validate();

    HFONT GetFont() const { return m_hFont; }
    HFONT GetTextFont() const { return m_hTextFont; }
    COLORREF GetTextColor() const { return m_crText; }

    static void SetDefaultSkinDef(CVuikListViewHeaderSkinDef def);
    static CVuikListViewHeaderSkinDef m_DefaultSkinDef;

protected:
    HFONT m_hFont;      // set on the header window: it gives the header its height
    HFONT m_hTextFont;  // the one the column texts are drawn with
    COLORREF m_crText;

private:
    CVuikListViewHeaderSkin(const CVuikListViewHeaderSkin&);
    CVuikListViewHeaderSkin& operator=(const CVuikListViewHeaderSkin&);
};

class ZCMOD_API CVuikListViewCtrl : public CVuikWindowImpl<CVuikListViewSkin> {
public:
    CVuikListViewCtrl();
    // Gives the list and its header their earlier procedures back if they still run these, and deletes the
    // skins.
    virtual ~CVuikListViewCtrl();

    // Takes over a list view: clears the scroll bar styles, LVS_NOSCROLL and bit 1 of the view, sets
    // WS_BORDER, LVS_OWNERDRAWFIXED and LVS_REPORT; skins the header (its font, its paint and erase); has the
    // new style take effect; attaches a list skin of its own. 1 on success.
    virtual BOOL SubclassWindow(HWND window);

    // The header's paint: for each column in item order its separator and its text.
    virtual LRESULT OnPaintHeader(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // The header's erase (wParam the context): gradient and bottom line; returns 1.
    virtual LRESULT OnEraseHeaderBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    HWND GetHeader() const { return m_hHeader; }
    CVuikListViewHeaderSkin* GetHeaderSkin() const { return m_pHeaderSkin; }

    // Every message goes on to the list view's own procedure.
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // On the header window: WM_PAINT and WM_ERASEBKGND to the handlers above, the rest to the header's own
    // procedure. The object is the header's user data.
    static LRESULT CALLBACK HeaderProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    CVuikListViewHeaderSkin* m_pHeaderSkin;
    HWND m_hHeader;
    WNDPROC m_pfnHeaderProc;
    CVuikListViewSkin* m_pListSkin;  // made and owned by the control; also attached through SetSkin
};
