// CVuikFileDlg: the platform's open and save dialogs with the suite's skin around them. The platform
// dialog runs with a hook and a small child template of our own; the child grows to cover the dialog,
// paints a top bar, a strip with a title and a side bar behind the standard controls, and moves the folder
// combo, its label and the toolbar into the strip.
//
//   CVuikFileDlg::SetDefaultSkin(CVuikFileDlg::GetThemeSkin());   // or a CVuikFileDlgSkin of your own
//   OPENFILENAMEW ofn = {sizeof(ofn)};
//   ... fill ofn as for the platform call ...
//   if (CVuikFileDlg::GetOpenFileNameW(&ofn)) { ... ofn.lpstrFile ... }
//
// One dialog at a time: the object constructed last is the one the hook serves.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBarStaticCtrl.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikStaticCtrl.h"
#include "zcmod/VuikWindowImpl.h"

// The four bars, each a horizontal or vertical three-piece bar.
struct CVuikFileDlgSkinDef {
    CVuikBarStaticSkinDef m_TopBar;
    CVuikBarStaticSkinDef m_Strip;
    CVuikBarStaticSkinDef m_StripTitle;
    CVuikBarStaticSkinDef m_SideBar;
};

// Its def's four bars, each in a bar skin of its own. Valid when all four are. Draw paints nothing: the
// bars are windows that paint themselves.
class ZCMOD_API CVuikFileDlgSkin : public CVuikBaseSkinImpl<CVuikFileDlgSkin, CVuikFileDlgSkinDef> {
public:
    // The bars start from the bar skin's default def, then take m_DefaultSkinDef (the theme's pieces).
    CVuikFileDlgSkin();

    virtual void Load();
    virtual void Unload();
    virtual bool IsValid();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    virtual void Validate();
    virtual ~CVuikFileDlgSkin();
    virtual void SetSkinDef(CVuikFileDlgSkinDef def);

    static void SetDefaultSkinDef(CVuikFileDlgSkinDef def);
    static CVuikFileDlgSkinDef m_DefaultSkinDef;

    CVuikBarStaticSkin m_TopBarSkin;
    CVuikBarStaticSkin m_SideBarSkin;
    CVuikBarStaticSkin m_StripSkin;
    CVuikBarStaticSkin m_StripTitleSkin;
};

class ZCMOD_API CVuikFileDlg : public CVuikWindowImpl<CVuikFileDlgSkin> {
    typedef CVuikWindowImpl<CVuikFileDlgSkin> Base;

public:
    typedef BOOL(WINAPI* DialogFunction)(LPOPENFILENAMEW);

    // `function` is the platform call to run (::GetOpenFileNameW or ::GetSaveFileNameW); `ofn` is copied by
    // its own size (at most 168 bytes). The new object becomes the one the hook serves.
    CVuikFileDlg(DialogFunction function, OPENFILENAMEW* ofn);
    virtual ~CVuikFileDlg();

    // Stand-ins for the platform calls: the same structure, the same result, with the skin around the dialog.
    // The caller's lStructSize is left as it was.
    static BOOL GetOpenFileNameW(OPENFILENAMEW* ofn);
    static BOOL GetSaveFileNameW(OPENFILENAMEW* ofn);

    // 1 when a file was chosen, 2 when the user cancelled, -1 on failure (another object has taken over, no
    // skin, or the platform refused).
    int DoModal();
    // Copies the structure as the dialog left it into `ofn`, by the size `ofn` gives.
    void GetData(OPENFILENAMEW* ofn);
    // CDM_SETCONTROLTEXT to the standard dialog; `text` is passed on unchanged.
    void SetControlText(int id, const char* text);

    static void SetDefaultSkin(CVuikFileDlgSkin* skin);
    // The library's own skin: the bar pieces of the present theme (the common graphics module), loaded
    // afresh at each call so that it follows a change of theme. Lives as long as the library.
    static CVuikFileDlgSkin* GetThemeSkin();
    virtual void SetSkin(CVuikFileDlgSkin* skin);
    using Base::Create;
    // The dialog is never created directly: nothing, always.
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle);

    static UINT_PTR CALLBACK OFNHookProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK WindowProcParent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // The chrome's windows, for those who want to look at them.
    HWND GetTopBar() const { return m_TopBar.m_hWnd; }
    HWND GetSideBar() const { return m_SideBar.m_hWnd; }
    HWND GetStrip() const { return m_Strip.m_hWnd; }
    HWND GetStripTitle() const { return m_StripTitle.m_hWnd; }
    HWND GetStandardDialog() const { return m_hWndParent; }

    enum { RepaintTimer = 1234, StructSizeLarge = 168, StructSizeSmall = 152 };

    static CVuikFileDlg* m_pInstance;
    static CVuikFileDlgSkin* m_pDefaultSkin;
    static WNDPROC m_pfnSuperWndProcParent;

protected:
    virtual LRESULT OnInitDialog(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnNotify(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnTimer(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnActivate(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    using Base::OnPaint;

    static bool IsWin2000();
    static bool IsWin95();

    CVuikStaticGradientSkin m_BackgroundSkin;
    CVuikStaticCtrl m_Background;
    CVuikBarStaticCtrl m_TopBar;
    CVuikBarStaticCtrl m_SideBar;
    CVuikBarStaticCtrl m_Strip;
    CVuikBarStaticCtrl m_StripTitle;
    DialogFunction m_pfnDialogFunction;
    union {
        OPENFILENAMEW m_ofn;
        unsigned char m_ofnArea[StructSizeLarge];
    };
    HWND m_hWndParent;
    HWND m_hWndToolbar;
    int m_nItemX;
    int m_nItemY;
    int m_nStc32X;
    int m_nStc32Y;

private:
    HGLOBAL CreateDialogTemplate();
    static int PutItemToTemplate(WORD* item, const RECT& rect, DWORD style, WORD id, WORD classAtom);
    static WORD* lpwAlign(WORD* pointer);
    // Moves a control of the standard dialog so that it sits vertically centred in the strip.
    void CentreInStrip(HWND control);
    void PlaceInStrip();
    int BarHeight(const CVuikBarStaticCtrl& bar) const;
    int BarWidth(const CVuikBarStaticCtrl& bar) const;
    static BOOL Run(DialogFunction function, OPENFILENAMEW* ofn);
};
