// CVuikCommonButtonCtrl: the suite's icon button, in three fixed sizes and seven looks, with its pictures out
// of the theme (the common graphics module) and an icon of the application's on top. It needs no skin from
// the application: Create and SubclassWindow make and own one.
//
//   CVuikCommonButtonCtrl close;
//   close.Create(parent, rect, IDC_CLOSE, WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, CommonButtonSmall);
//   close.SetButtonIcon(IDB_CLOSE, -1, FALSE);   // from CVuikLib's resource instance; -1: the same when disabled
//   close.SetTooltip(L"Close");
//
// The button shows no text, but keeps one: WM_SETTEXT, WM_GETTEXT and WM_GETTEXTLENGTH are answered from a
// buffer of its own, so GetWindowText still reads what a dialog template gave it.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikButtonImpl.h"

class CVuikBitmap;
class CVuikGraphics;
class CVuikCommonButtonCtrl;

// The look of one state: a background at its own size and an icon centred on it.
struct CVuikCommonButtonStateSkinDef {
    UINT m_nBitmapId;
    UINT m_nIconId;  // 0: none
    int m_nIconOffsetX;
    int m_nIconOffsetY;
    int m_bIconNoMirror;  // non-zero: the icon keeps its drawn direction right to left
};

enum ECommonButtonState {
    CommonDisabled = 0,
    CommonNormal = 1,
    CommonHover = 2,
    CommonPressed = 3,
    CommonFocused = 4,
    CommonFocusedHover = 5,
    CommonFocusedPressed = 6,
    CommonStateCount = 7
};

enum ECommonButtonSize { CommonButtonSmall = 0, CommonButtonMedium = 1, CommonButtonLarge = 2 };

struct CVuikCommonButtonSkinDef {
    CVuikCommonButtonStateSkinDef m_States[CommonStateCount];  // in the order of ECommonButtonState
};

class ZCMOD_API CVuikCommonButtonStateSkin
    : public CVuikBaseSkinImpl<CVuikCommonButtonStateSkin, CVuikCommonButtonStateSkinDef> {
public:
    CVuikCommonButtonStateSkin();
    virtual ~CVuikCommonButtonStateSkin();

    // The background (never mirrored) and the icon from CVuikLib's resource instance, then Validate.
    virtual void Load();
    virtual void Unload();
    // Invalid when an id is set and its picture is missing.
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    void DrawBackground(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    void DrawIcon(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // Reloads the icon from the present resource instance (at SetButtonIcon, the application's), mirrored
    // with the layout unless m_bIconNoMirror is set; then validates again.
    virtual void LoadIconW();
    virtual void UnloadIcon();
    virtual void SetIconDef(UINT iconId, int noMirror);

    CVuikBitmap* GetBackgroundBitmap() const { return m_pBackground; }
    CVuikBitmap* GetIconBitmap() const { return m_pIcon; }

protected:
    CVuikBitmap* m_pBackground;
    CVuikBitmap* m_pIcon;

private:
    CVuikCommonButtonStateSkin(const CVuikCommonButtonStateSkin&);
    CVuikCommonButtonStateSkin& operator=(const CVuikCommonButtonStateSkin&);
};

class ZCMOD_API CVuikCommonButtonSkin : public CVuikBaseSkinImpl<CVuikCommonButtonSkin, CVuikCommonButtonSkinDef> {
public:
    // Starts from m_DefaultMediumSkinDef.
    CVuikCommonButtonSkin();
    virtual ~CVuikCommonButtonSkin();

    virtual void SetSkinDef(CVuikCommonButtonSkinDef def);
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    // All seven state skins must be valid.
    virtual bool IsValid();
    // The state skin of the window's GetGraphicalState; nothing for an empty window.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // State 0 gets `disabledIconId` (-1: the same as `iconId`), states 1 to 6 `iconId`; all seven reload.
    virtual void SetButtonIcon(UINT iconId, UINT disabledIconId, int noMirror);

    CVuikCommonButtonStateSkin& GetStateSkin(int state) { return m_StateSkins[state]; }

    // The theme's pictures of the three sizes: backgrounds 5030-5036, 5037-5043 and 5044-5050, no icon, the
    // icon one pixel right and down in the two pressed states.
    static CVuikCommonButtonSkinDef m_DefaultSmallSkinDef;
    static CVuikCommonButtonSkinDef m_DefaultMediumSkinDef;
    static CVuikCommonButtonSkinDef m_DefaultLargeSkinDef;
    static CVuikCommonButtonSkinDef GetDefaultSkinDef(ECommonButtonSize size);

protected:
    CVuikCommonButtonStateSkin m_StateSkins[CommonStateCount];
};

class ZCMOD_API CVuikCommonButtonCtrl : public CVuikButtonImpl<CVuikCommonButtonSkin> {
    typedef CVuikButtonImpl<CVuikCommonButtonSkin> Base;

public:
    CVuikCommonButtonCtrl();
    // Destroys the window, then the skin it made and the kept text.
    virtual ~CVuikCommonButtonCtrl();

    using Base::Create;
    using Base::OnPaint;
    using Base::SubclassWindow;
    // A "Button" window with the theme's skin of `size`, sized to it.
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle, ECommonButtonSize size);
    // Takes over a dialog's button: its text moves into the control, the button type bits go, and the skin of
    // `size` is made and applied. 1 on success.
    virtual BOOL SubclassWindow(HWND hwnd, ECommonButtonSize size);
    // Puts the kept text back into the window before letting it go.
    virtual HWND UnsubclassWindow(int force);
    // The size of state 4's background (0 by 0 without one).
    virtual void SizeToContent();
    virtual void SetButtonIcon(UINT iconId, UINT disabledIconId, int noMirror);
    virtual int GetGraphicalState();
    virtual LRESULT OnGetText(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnGetTextLength(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Keeps the text and answers 1; nothing is redrawn, since the button shows no text.
    virtual LRESULT OnSetText(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    // Makes, loads and attaches the skin of `size` with the theme as the resource instance, then sizes.
    void SetUpSkin(ECommonButtonSize size);
    static int StateFromFlags(bool enabled, LONGLONG state, bool over);

    int m_eGraphicalState;
    DWORD m_dwReserved;  // 1 from construction
    wchar_t* m_pszText;
    CVuikCommonButtonSkin* m_pOwnSkin;
};
