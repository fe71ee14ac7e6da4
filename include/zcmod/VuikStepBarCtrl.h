// The step bar of a wizard: how far the user has come through a fixed number of steps, as an empty bar
// divided by separators and filled from its start up to the current step. A picture only: the application
// sets the number of steps and moves it forward and back, and repaints it.
//
//   CVuikStepBarCtrl steps;                  // the pictures come from the theme module, ids 5205-5209
//   steps.Create(wizard, rect, IDC_STEPS, WS_CHILD | WS_VISIBLE, 0);   // class "StepBar": the application's
//   steps.SetNumberOfSteps(4);
//   steps.NextStep();
//   InvalidateRect(steps.m_hWnd, nullptr, TRUE);
//
// The step operations store only: they test no bounds and paint nothing. A count past the end keeps counting
// and a negative one shows no filling. The library registers no window class: Create needs "StepBar"
// registered by the application (CS_GLOBALCLASS, or with CVuikLib's instance); SubclassWindow takes any window.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikBitmap;

enum EStepBarState { STEPBAR_STATE_NORMAL = 0 };

struct CVuikStepBarStateSkinDef {
    int m_nImageAlign;            // stored, not read
    UINT m_nBackgroundBitmapId;   // the empty bar
    UINT m_nLeftBitmapId;         // the filling's start
    UINT m_nMiddleBitmapId;       // the filling, tiled
    UINT m_nRightBitmapId;        // the filling's end, when every step is done
    UINT m_nSeparatorBitmapId;    // between two steps
    COLORREF m_crText;            // stored, not drawn
    HFONT m_hFont;                // stored, not drawn
};

struct CVuikStepBarSkinDef {
    CVuikStepBarStateSkinDef m_StateDefs[1];
};

class ZCMOD_API CVuikStepBarStateSkin : public CVuikBaseSkinImpl<CVuikStepBarStateSkin, CVuikStepBarStateSkinDef> {
public:
    CVuikStepBarStateSkin();
    virtual ~CVuikStepBarStateSkin();

    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    // The bar of `window`, a CVuikStepBarCtrl, with its count of steps and its current step.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // From the theme module (ZCMOD_GetCommonZGR) when `fromCommonResource`, else from CVuikLib's resource
    // instance; the pictures keep the way they are drawn.
    virtual void Load(bool fromCommonResource);

    RECT GetCaptionRect() const { return m_rcCaption; }
    RECT GetImageRect() const { return m_rcImage; }

    CVuikBitmap* m_pBackground;
    CVuikBitmap* m_pLeft;
    CVuikBitmap* m_pMiddle;
    CVuikBitmap* m_pRight;
    CVuikBitmap* m_pSeparator;

protected:
    void DrawBackground(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // Fills an empty font of the def with the default GUI font; the bar draws no text.
    void DrawCaption(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // As a button's: the outline of the two ends and the caption rectangle; not called by Draw.
    void SetupRegion(HWND hwnd, RECT rect, CVuikGraphics* graphics);

    HRGN m_hRegion;
    RECT m_rcCaption;
    RECT m_rcImage;

private:
    CVuikStepBarStateSkin(const CVuikStepBarStateSkin&);
    CVuikStepBarStateSkin& operator=(const CVuikStepBarStateSkin&);
};

class ZCMOD_API CVuikStepBarSkin : public CVuikBaseSkinImpl<CVuikStepBarSkin, CVuikStepBarSkinDef> {
public:
    CVuikStepBarSkin();
    virtual ~CVuikStepBarSkin();

    virtual void Load();
    virtual void Unload();
    virtual bool IsValid();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    virtual void Validate();
    virtual void SetSkinDef(CVuikStepBarSkinDef def);
    virtual void Load(bool fromCommonResource);

    CVuikStepBarStateSkin* GetStateSkin(int index) { return index == 0 ? &m_StateSkins[0] : nullptr; }

    static void SetDefaultSkinDef(CVuikStepBarSkinDef def) { m_DefaultSkinDef = def; }
    static CVuikStepBarSkinDef m_DefaultSkinDef;

protected:
    CVuikStepBarStateSkin m_StateSkins[1];

private:
    CVuikStepBarSkin(const CVuikStepBarSkin&);
    CVuikStepBarSkin& operator=(const CVuikStepBarSkin&);
};

class ZCMOD_API CVuikStepBarCtrl : public CVuikWindowImpl<CVuikStepBarSkin> {
public:
    CVuikStepBarCtrl();
    virtual ~CVuikStepBarCtrl();

    using CVuikWindowImpl<CVuikStepBarSkin>::OnPaint;

    // Sets or replaces the tip shown over the bar.
    virtual void SetToolTipText(const wchar_t* text);
    // A child of the application's class "StepBar"; the default skin from the theme module, sized to it.
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle);
    // Takes over any window: WS_BORDER goes, the default skin comes. 1 on success, else 0.
    virtual BOOL SubclassWindow(HWND hwnd);
    // The size of the empty bar (or of the filling's tile or end, whichever exists first); 0 by 0 without.
    virtual void SizeToContent();
    // Resets the static default def to the theme's pictures, makes the control's skin if it has none, and
    // loads it from the theme module.
    virtual void SetButtonSkin();
    virtual void SetNumberOfSteps(int steps) { m_nStepCount = steps; }
    virtual void NextStep() { ++m_nCurrentStep; }
    virtual void PreviousStep() { --m_nCurrentStep; }

    virtual LRESULT OnCreate(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnDrawItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseLeave(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // WM_COMMAND with BN_CLICKED (1) and 12367 in lParam repaints the bar; always 1.
    virtual LRESULT OnCommand(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    int GetStepCount() const { return m_nStepCount; }
    int GetCurrentStep() const { return m_nCurrentStep; }
    EStepBarState GetState() const { return m_eState; }
    HWND GetToolTip() const { return m_hToolTip; }
    // Hands a mouse message to the tooltip.
    void RelayEvent(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // The buffer is drawn left to right; in a mirrored window the platform turns it round.
    virtual void CreateBackBuffer(int width, int height, CVuikGraphics* graphics);
    // CVuikBackBufferClient: the skin's picture of this bar.
    virtual void Draw(CVuikGraphics* graphics, int width, int height);

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    using CVuikWindowImpl<CVuikStepBarSkin>::Create;

    EStepBarState m_eState;
    EStepBarState m_ePrevState;
    DWORD m_dwStyle;
    HWND m_hToolTip;
    bool m_bTracking;
    bool m_bCaptured;
    int m_nCurrentStep;
    int m_nStepCount;
    CVuikStepBarSkin* m_pOwnSkin;  // the skin SetButtonSkin made, if any
};
