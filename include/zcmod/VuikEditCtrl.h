// CVuikEditCtrl: a platform edit control whose border is drawn by the toolkit and whose background is its
// parent's. The edit keeps painting its own text; the control takes over only the erase, which asks the parent
// for the piece of its look under the edit, and the non-client paint, which copies a border from the back
// buffer (a vertical gradient on a path with small notched corners).
//
//   CVuikEditCtrl edit;
//   edit.SubclassWindow(GetDlgItem(dialog, IDC_NAME));   // the control makes and owns its skin
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

// Colours are 0xAARRGGBB, as the GDI+ layer takes them.
struct CVuikEditSkinDef {
    DWORD m_crFill;          // kept for applications; the control does not read it
    DWORD m_crBorderTop;     // top colour of the border's gradient
    DWORD m_crBorderBottom;  // bottom colour of the border's gradient
    int m_nCornerRadius;     // kept for applications; the control does not read it
};

// The value of CVuikEditCtrl::GetGraphicalState.
enum EEditBoxState { EditBoxDisabled = 0, EditBoxEnabled = 1 };

class ZCMOD_API CVuikEditSkin : public CVuikBaseSkinImpl<CVuikEditSkin, CVuikEditSkinDef> {
public:
    // Starts with a copy of m_DefaultSkinDef.
    CVuikEditSkin();
    virtual ~CVuikEditSkin();

    // The skin has no pictures: Load and Unload do nothing, and Validate always succeeds.
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    // The border of `window` on a w x h picture of the whole window; nothing without a window.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    // Reaches only skins made afterwards.
    static void SetDefaultSkinDef(CVuikEditSkinDef def);
    static CVuikEditSkinDef m_DefaultSkinDef;
};

class ZCMOD_API CVuikEditCtrl : public CVuikWindowImpl<CVuikEditSkin> {
public:
    CVuikEditCtrl();
    // Lets the window go (its earlier procedure back, if it still runs this one) and deletes the skin.
    virtual ~CVuikEditCtrl();

    // Takes over an edit control: adds WS_CLIPSIBLINGS, WS_CLIPCHILDREN and WS_BORDER, so that there is a
    // non-client border to draw on, and attaches a skin of its own made from the default def. 1 on success.
    virtual BOOL SubclassWindow(HWND window);

    // Enabled or disabled, as last seen by the non-client paint. The border looks the same in both.
    virtual EEditBoxState GetGraphicalState();
    // The parent paints the edit's background on the erase context; returns 1.
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Copies the buffer (built at the window's size) over the border; returns 0, so the platform's border
    // is not drawn.
    virtual LRESULT OnNCPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // The parent's piece under the whole window, border included. A parent that keeps no back buffer is asked
    // to erase its background onto the buffer instead.
    virtual void DrawParentBackBuffer(HDC hdc, RECT area);

    // WM_ERASEBKGND and WM_NCPAINT to the handlers above, the rest to the edit's own procedure.
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    CVuikEditSkin* m_pSkin;  // the skin this control made and owns; also attached through SetSkin
    EEditBoxState m_eState;
};
