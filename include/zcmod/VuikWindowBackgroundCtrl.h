// CVuikWindowBackgroundCtrl: a drawn frame for a top-level window. The view, a child covering the whole
// client area of the top-level window (or, for a dialog, the dialog itself), is painted with the caption bar,
// an optional menu strip, the client, a footer band and a rounded frame; the control owns the caption
// buttons and the application icon button, turns the window's native menu into a menu bar, and takes over
// the top-level window's non-client behaviour with CustomCaptionProc (hit tests that make the caption band
// draggable, the maximise and restore rules of a window without WS_CAPTION, the system menu, the veil of an
// inactive window).
//
//   CVuikWindowBackgroundSkin skin;                 // the default look; must outlive the control
//   CVuikWindowBackgroundCtrl frame;
//   frame.SetSkin(&skin);
//   frame.SubclassWindow(view, topLevel, nullptr,
//                        CVuikWindowBackgroundCtrl::CAPTION_CLOSE | CVuikWindowBackgroundCtrl::CAPTION_MINIMIZE |
//                        CVuikWindowBackgroundCtrl::CAPTION_MAXIMIZE);
//
// Sizes are fixed pixels: caption 30, menu strip 30, footer 49. WM_DESTROY of the top-level window undoes
// the take-over by itself; the control's destructor frees the buttons and the view's static brush.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikCaptionButtonCtrl;
class CVuikMenuBarCtrl;

// Properties of the top-level window while it wears a drawn frame.
#define VUIK_PROP_WINBG_ORGPROC L"__DeskHubCVuikWindowBackgroundOrgWinproc"
#define VUIK_PROP_WINBG_ISDIALOG L"__DeskHubCVuikWindowBackgroundCaptionIsDialog"
#define VUIK_PROP_WINBG_VIEW L"__DeskHubCVuikWindowBackgroundViewWindow"

// The look of the frame. Colours 1 to 9 are 0xAARRGGBB (drawn by GDI+); the caption text is a COLORREF.
struct CVuikWindowBackgroundSkinDef {
    DWORD m_bMenuBarVisible;  // a menu strip lies under the caption
    DWORD m_crClient;
    DWORD m_crCaption;       // caption and menu strip
    DWORD m_crReserved;      // not read
    DWORD m_crMenuLine1;     // first line at the top of the menu strip
    DWORD m_crMenuLine2;     // second line
    DWORD m_crFooterLine;    // line above the footer
    DWORD m_crFooterTop;     // footer gradient, top
    DWORD m_crFooterBottom;  // footer gradient, bottom
    DWORD m_crFrame;         // the rounded frame
    DWORD m_crCaptionText;   // COLORREF
};

class ZCMOD_API CVuikWindowBackgroundSkin
    : public CVuikBaseSkinImpl<CVuikWindowBackgroundSkin, CVuikWindowBackgroundSkinDef> {
public:
    // Takes the default def and loads (which makes the caption font).
    CVuikWindowBackgroundSkin();
    virtual ~CVuikWindowBackgroundSkin();

    // Makes the caption font if there is none: "Zelvo Sans Wide", height 17, weight 400.
    virtual void Load();
    // Deletes the font.
    virtual void Unload();
    // Valid when the font exists; otherwise the status stays as it was.
    virtual void Validate();
    // Caption, menu strip, client, footer, frame, the veil of an inactive window and the caption text.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // Declares the menu strip; a menu bar being present doesn't declare it by itself.
    virtual void SetMenuBarVisible(int visible);

    HFONT GetFont() const { return m_hFont; }

    static void SetDefaultSkinDef(const CVuikWindowBackgroundSkinDef& def);
    static CVuikWindowBackgroundSkinDef m_DefaultSkinDef;

protected:
    HFONT m_hFont;

private:
    CVuikWindowBackgroundSkin(const CVuikWindowBackgroundSkin&);
    CVuikWindowBackgroundSkin& operator=(const CVuikWindowBackgroundSkin&);
};

// The application icon of the caption: a bitmap `nBitmapId` of the module `hInstance`. The first word is
// not read.
struct CAPTIONAPPICONDATA {
    DWORD dwReserved;
    HINSTANCE hInstance;
    DWORD nBitmapId;
};

#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4275)  // a DLL interface derived from a header-only template
#endif

class ZCMOD_API CVuikWindowBackgroundCtrl : public CVuikWindowImpl<CVuikWindowBackgroundSkin> {
    typedef CVuikWindowImpl<CVuikWindowBackgroundSkin> Base;

public:
    // Caption flags of SubclassWindow.
    static const DWORD CAPTION_CLOSE = 0x01;
    static const DWORD CAPTION_MINIMIZE = 0x02;
    static const DWORD CAPTION_MAXIMIZE = 0x04;
    static const DWORD CAPTION_HELP = 0x08;  // counts as a further button for the close look; none is made
    static const DWORD CAPTION_APPICON = 0x10;
    static const DWORD CAPTION_USEFAKERTL = 0x20;  // declared for callers; nothing reads it
    static const DWORD CAPTION_ISDIALOG = 0x40;

    // Sizes of the drawn frame, in pixels.
    static const int CaptionHeight = 30;
    static const int MenuBarHeight = 30;
    static const int FooterHeight = 49;

    // Command ids of the caption buttons, sent to the view as WM_COMMAND.
    static const UINT CommandClose = 0x8001;
    static const UINT CommandMaximize = 0x8002;
    static const UINT CommandMinimize = 0x8003;
    static const UINT CommandAppIcon = 0x8004;

    CVuikWindowBackgroundCtrl();
    // Frees the caption buttons, the menu bar and the view's static brush. The windows' procedures are
    // given back when the top-level window is destroyed.
    virtual ~CVuikWindowBackgroundCtrl();

    using Base::SubclassWindow;
    // Puts the drawn frame on `topLevel` with `view` as the painted child, and makes the buttons of `flags`
    // (with CAPTION_APPICON, the icon of `appIcon`). `view` must be a child of `topLevel`, unless
    // CAPTION_ISDIALOG is given (then a dialog passes itself as both). Non-zero on success.
    virtual BOOL SubclassWindow(HWND view, HWND topLevel, const CAPTIONAPPICONDATA* appIcon, DWORD flags);

    // The native menu that the menu bar shows, or empty.
    HMENU GetMenuHandle();
    // For the application's message loop: the menu bar's keyboard accelerators (Alt and a letter). Non-zero
    // when the message was translated.
    int TranslateMenuAccelerator(MSG* msg);

    // After a change of theme: the caption buttons take their pictures from the new graphics module.
    void ReloadCaptionButtons();

    // Put on the top-level window: no non-client area, the caption band as HTCAPTION, the system menu on a
    // right click, maximise and restore through the view's commands, the veil on activation changes.
    static LRESULT CALLBACK CustomCaptionProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // The view's procedure.
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    HWND GetTopLevel() const { return m_hTopLevel; }
    CVuikMenuBarCtrl* GetMenuBar() const { return m_pMenuBar; }

protected:
    using Base::Create;
    virtual HWND Create(HWND parent, const RECT& rect, DWORD style, DWORD exStyle);

    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    using Base::OnPaint;
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnCommand(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnInvalidateBackbuffer(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // Whether the frame (the view of a dialog, else the top-level window) is the foreground window.
    bool IsFrameActive() const;
    // The left edge of the leftmost caption button, or -1 with none; the width of the icon's picture, or 0.
    int CaptionButtonsLeft() const;
    int AppIconWidth() const;

    HWND m_hTopLevel;
    CVuikMenuBarCtrl* m_pMenuBar;
    CVuikCaptionButtonCtrl* m_pCloseButton;
    CVuikCaptionButtonCtrl* m_pMaximizeButton;
    CVuikCaptionButtonCtrl* m_pMinimizeButton;
    CVuikCaptionButtonCtrl* m_pAppIconButton;

    friend class CVuikWindowBackgroundSkin;

private:
    void MakeButtons(HWND view, const CAPTIONAPPICONDATA* appIcon, DWORD flags);
    void UpdateMaximizeLook();
    void FitToWorkArea();
    LRESULT OnCtlColorStatic(HWND hwnd);
};

#ifdef _MSC_VER
#pragma warning(pop)
#endif
