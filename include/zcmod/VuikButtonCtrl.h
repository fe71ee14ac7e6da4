// The button family: the plain skinned push, check and radio button. A platform "Button" window is
// subclassed and turned owner-drawn; its look comes entirely from a CVuikButtonSkin, which holds one
// CVuikButtonStateSkin per EButtonState. A state skin draws a three-piece background (left end, tiled middle,
// right end), an optional glyph or looping frame animation, and the window text.
//
//   CVuikButtonSkin skin;                 // the application's: it must outlive the controls that use it
//   CVuikButtonSkinDef def = skin;        // starts from CVuikButtonSkin::m_DefaultSkinDef
//   def.m_States[ButtonNormal].m_nLeftBitmapId = IDB_LEFT; ...
//   skin.SetSkinDef(def);
//   skin.Load();                          // from CVuikLib's resource instance
//   CVuikButtonCtrl button;
//   button.Create(parent, rect, IDOK, WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, 0);
//   button.SetSkin(&skin);
//
// The parent reflects WM_DRAWITEM to the button (a CVuikWindowImpl parent does so by itself).
#pragma once

#include <windows.h>

#include <list>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikBitmap;
class CVuikGraphics;

// Sent (posted) to the other members of a radio group when one of them is checked.
#define WM_VUIK_RADIOINFO 0x500

// What one state of a button looks like. A plain record, assigned field by field.
struct CVuikButtonStateSkinDef {
    enum {
        AlignCaption = 1,  // caption only
        AlignImage = 2,    // image only, centred
        AlignLeft = 4,     // image at the left of the caption
        AlignTop = 8,      // image above
        AlignRight = 16,   // image at the right
        AlignBottom = 32,  // image below
    };

    int m_nImageAlign;
    int m_nOffsetX;  // added to caption and image rectangles
    int m_nOffsetY;
    UINT m_nLeftBitmapId;  // 0: none
    UINT m_nMiddleBitmapId;
    UINT m_nRightBitmapId;
    COLORREF m_crText;
    HFONT m_hFont;  // empty: DEFAULT_GUI_FONT, taken on the first draw and kept here
    UINT m_nImageBitmapId;
    UINT m_nFirstFrameId;  // a run of consecutive bitmap ids, both ends inclusive
    UINT m_nLastFrameId;
    int m_nFrameTime;  // milliseconds between frames
};

enum EButtonState { ButtonNormal = 0, ButtonPressed = 1, ButtonHover = 2, ButtonDisabled = 3 };

struct CVuikButtonSkinDef {
    CVuikButtonStateSkinDef m_States[4];  // in the order of EButtonState
};

class ZCMOD_API CVuikButtonStateSkin : public CVuikBaseSkinImpl<CVuikButtonStateSkin, CVuikButtonStateSkinDef> {
public:
    CVuikButtonStateSkin();
    virtual ~CVuikButtonStateSkin();

    // Left, middle, right and image from CVuikLib's resource instance, then the frame run (a frame that doesn't
    // load is skipped without a gap), then Validate.
    virtual void Load();
    virtual void Unload();
    // Invalid when an id is set and its picture is missing, or a frame run is set and no frame loaded or the
    // frame time is below 1.
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    // Where the last draw put the caption and the image (or the frames), in left-to-right coordinates.
    RECT GetCaptionRect() const { return m_rcCaption; }
    RECT GetImageRect() const { return m_rcImage; }
    UINT GetFrameCount() const { return static_cast<UINT>(m_Frames.size()); }
    // Frame `frameIndex` at the image rectangle's corner, unscaled; nothing for an index past the end.
    void DrawFrame(CVuikWindow* window, CVuikGraphics* graphics, UINT frameIndex);

    const CVuikButtonStateSkinDef& GetDef() const { return m_SkinDef; }
    // The loaded pictures; empty where the def names none or it didn't load.
    CVuikBitmap* GetLeftBitmap() const { return m_pLeft; }
    CVuikBitmap* GetMiddleBitmap() const { return m_pMiddle; }
    CVuikBitmap* GetRightBitmap() const { return m_pRight; }
    CVuikBitmap* GetImageBitmap() const { return m_pImage; }

protected:
    void DrawBackground(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    void DrawImage(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    void DrawCaption(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // Shapes the window after its end pieces when both exist: the pieces' non-white pixels and the caption
    // rectangle between them. The window owns the region from then on.
    void SetupRegion(HWND hwnd, const RECT& rect, CVuikGraphics* graphics);

    CVuikBitmap* m_pLeft;
    CVuikBitmap* m_pMiddle;
    CVuikBitmap* m_pRight;
    CVuikBitmap* m_pImage;
    DWORD m_dwReserved;
    HRGN m_hRegion;
    RECT m_rcCaption;
    RECT m_rcImage;
    std::list<CVuikBitmap*> m_Frames;

private:
    CVuikButtonStateSkin(const CVuikButtonStateSkin&);
    CVuikButtonStateSkin& operator=(const CVuikButtonStateSkin&);
};

class ZCMOD_API CVuikButtonSkin : public CVuikBaseSkinImpl<CVuikButtonSkin, CVuikButtonSkinDef> {
public:
    // Starts from m_DefaultSkinDef.
    CVuikButtonSkin();
    virtual ~CVuikButtonSkin();

    // Reaches only skins constructed later.
    static void SetDefaultSkinDef(const CVuikButtonSkinDef& def);
    static CVuikButtonSkinDef GetDefaultSkinDef();
    // Caption only, no pictures, DEFAULT_GUI_FONT, the system's button text colour (grey text when disabled),
    // and a pressed caption two pixels right and down: the def the library starts with.
    static CVuikButtonSkinDef MakeSystemSkinDef();

    // Stores the def and hands each state skin its part.
    virtual void SetSkinDef(CVuikButtonSkinDef def);
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    // Asks only the Normal and Pressed state skins: a fault in the others shows only when that state is drawn.
    virtual bool IsValid();
    // The state skin of the control's present EButtonState (Normal for a window that is no button of this
    // family).
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    CVuikButtonStateSkin& GetStateSkin(EButtonState state) { return m_StateSkins[state & 3]; }

protected:
    CVuikButtonStateSkin m_StateSkins[4];

    // Built when the library loads, from the system's text colours and DEFAULT_GUI_FONT.
    static CVuikButtonSkinDef m_DefaultSkinDef;
};

// What CVuikButtonCtrl and CVuikButtonCtrl2 share: the fields, the handlers and the tooltip of the family.
// Classification by bits of the style: (style & 3) == 3 is an auto check button, else (style & 9) == 9 an
// auto radio button, else a push button; so a style that is already owner-drawn (0xB) classifies as a check.
class ZCMOD_API CVuikButtonCtrlBase : public CVuikWindowImpl<CVuikButtonSkin> {
    typedef CVuikWindowImpl<CVuikButtonSkin> Base;

public:
    enum { KindPush = 0, KindCheck = 2, KindRadio = 4 };
    enum { AnimationTimerId = 1000 };

    CVuikButtonCtrlBase();
    // Destroys the window if it still exists, then the tooltip window and the buffer.
    virtual ~CVuikButtonCtrlBase();

    using Base::Create;
    using Base::OnPaint;
    // A "Button" window, classified and made owner-drawn (the low style bits ORed with 0xB).
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle);
    // Takes over a dialog's button: classified, owner-drawn with WS_CLIPSIBLINGS and WS_CLIPCHILDREN, and
    // without WS_EX_NOPARENTNOTIFY.
    virtual BOOL SubclassWindow(HWND hwnd);
    // The button's own tooltip window, made on the first call; later calls replace the text.
    virtual void SetToolTipText(const wchar_t* text);

    EButtonState GetState() const { return m_eState; }
    int GetButtonKind() const { return m_nButtonKind; }
    // Hands any message to the tooltip (TTM_RELAYEVENT), with the point taken from lParam.
    void RelayEvent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    HWND GetToolTipWindow() const { return m_hToolTip; }

    // The drawing step's question whether to show the focus rectangle. CVuikButtonCtrl answers its flag; on
    // CVuikButtonCtrl2 the question lands on OnDestroy (see there).
    virtual bool QueryFocusReactive() = 0;

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    virtual LRESULT OnCreate(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnDrawItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseLeave(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSetFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnKillFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnKeyDown(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnLButtonDblClick(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnLButtonDown(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnLButtonUp(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnRadioInfo(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSetCheck(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnGetCheck(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnTimer(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    static int Classify(LONG style);
    // The check mark a click or Space gives: the negated mark for a check button, checked for a radio button.
    void ClickCheck(HWND hwnd);
    // Pushed look and cursor position disagree during a press: BM_SETSTATE puts the look right. True when it
    // was sent.
    bool SyncPushedWithCursor(HWND hwnd);
    void KillAnimation();

    EButtonState m_eState;
    EButtonState m_ePrevState;
    int m_nButtonKind;
    HWND m_hToolTip;
    DWORD m_dwConstant;  // 1 from construction
    bool m_bChecked;
    bool m_bHover;    // mouse-leave tracking is on
    bool m_bPressed;  // the left button went down here and hasn't come up
    HGDIOBJ m_hGdiObject;  // deleted by the destructor if set
    bool m_bFocused;
    UINT m_nFrame;
    UINT_PTR m_nTimer;
    EButtonState m_eTimerState;
};

// The button with a focus rectangle that can be turned off.
class ZCMOD_API CVuikButtonCtrl : public CVuikButtonCtrlBase {
public:
    CVuikButtonCtrl();

    // The window keeps its width and takes the height of the first of the Normal state's left, middle and
    // right pictures; with none of them, the Normal image's size; with no picture nothing changes.
    virtual void SizeToContent();
    // Drops the buffer and repaints with erase.
    virtual void SetFocusReactive(bool focusReactive);
    virtual bool GetFocusReactive();

    virtual bool QueryFocusReactive() { return GetFocusReactive(); }

protected:
    bool m_bFocusReactive;
};

// The button that can size itself to its caption. It never shows a focus rectangle: the drawing step's
// focus question reaches its OnDestroy, so each paint of a focused CVuikButtonCtrl2 destroys its tooltip
// window, drops its buffer and answers false. This belongs to the layout of its operations and is kept.
class ZCMOD_API CVuikButtonCtrl2 : public CVuikButtonCtrlBase {
public:
    enum { SizeHeight = 1, SizeWidth = 2, SizeKeepRight = 4 };

    CVuikButtonCtrl2();

    // Flag 1: the height becomes GetMinHeight. Flag 2: the width becomes GetMinWidth, at most `maxWidth`
    // unless that is -1. Flag 4 with flag 2: the right edge stays in place.
    virtual void SizeToContent(int flags, int maxWidth);
    // The height of the first of the Normal state's left, middle, right and image pictures, else 0.
    int GetMinHeight();
    // The window text's width (at most 256 characters) in the Normal font, plus the Normal left piece's width
    // and that same piece's height. 0 without a live window.
    int GetMinWidth();

    virtual bool QueryFocusReactive();
    // Deletes a buffer that the focus question dropped while it was being drawn, once it is out of the
    // drawing context (a selected bitmap can't be deleted).
    virtual void CreateBackBuffer(int width, int height, CVuikGraphics* graphics);

protected:
    DWORD m_dwReserved2;

private:
    HBITMAP m_hDroppedBuffer;
};
