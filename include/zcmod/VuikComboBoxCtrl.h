// The skinned combo box: a platform "ComboBox" (or the inner combo of a "ComboBoxEx32") subclassed and made
// owner-drawn. The closed control is a three-piece stretch (left end, middle, right end with the arrow) in the
// state of the moment; the drop-down list's items are drawn by the control itself, with the item's icon and
// indent for a ComboBoxEx32, and a tracking tooltip shows an item that is too long for the list.
//
//   CVuikComboBoxCtrl combo;                 // the pictures come from the theme module, ids 5060-5071
//   combo.SubclassWindow(GetDlgItem(dialog, IDC_MODEL));
//   combo.AddItem(L"Nokia 6230i");
//   combo.SetCurSel(0);
//
// The drop-down list draws its own items only when the combo was made with CBS_OWNERDRAWFIXED and
// CBS_HASSTRINGS (a dialog template or CreateWindowExW): a list's owner-draw style is fixed when the platform
// creates it. A ComboBoxEx32 always is.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "zcmod/Export.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikBitmap;

enum EComboBoxState { COMBOBOX_STATE_NORMAL = 0, COMBOBOX_STATE_PRESSED = 1, COMBOBOX_STATE_HOVER = 2 };

struct CVuikComboBoxStateSkinDef {
    UINT m_nLeftBitmapId;
    UINT m_nMiddleBitmapId;
    UINT m_nRightBitmapId;
    UINT m_nReserved;  // no reader
};

// In the order: normal, pressed, hover (or focused), and a fourth set that is loaded but never drawn.
struct CVuikComboBoxSkinDef {
    CVuikComboBoxStateSkinDef m_StateDefs[4];
};

class ZCMOD_API CVuikComboBoxStateSkin : public CVuikBaseSkinImpl<CVuikComboBoxStateSkin, CVuikComboBoxStateSkinDef> {
public:
    CVuikComboBoxStateSkin();
    virtual ~CVuikComboBoxStateSkin();

    // From CVuikLib's resource instance.
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // From the theme module (ZCMOD_GetCommonZGR) when `fromCommonResource`, else from CVuikLib's resource
    // instance; never mirrored.
    virtual void Load(bool fromCommonResource);

    RECT GetCaptionRect() const { return m_rcCaption; }

    CVuikBitmap* m_pLeft;
    CVuikBitmap* m_pMiddle;
    CVuikBitmap* m_pRight;

    // Caption colours: black and 0xCECECE, unless the theme module that the pictures came from names its text
    // colours (ZGR_COLOR_TEXT, ZGR_COLOR_TEXT_DISABLED).
    COLORREF m_crText;
    COLORREF m_crDisabledText;

protected:
    void DrawBackground(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    void DrawCaption(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    RECT m_rcCaption;

private:
    CVuikComboBoxStateSkin(const CVuikComboBoxStateSkin&);
    CVuikComboBoxStateSkin& operator=(const CVuikComboBoxStateSkin&);
};

class ZCMOD_API CVuikComboBoxSkin : public CVuikBaseSkinImpl<CVuikComboBoxSkin, CVuikComboBoxSkinDef> {
public:
    CVuikComboBoxSkin();
    virtual ~CVuikComboBoxSkin();

    virtual void Load();
    virtual void Unload();
    // Asks only the normal and pressed state skins.
    virtual bool IsValid();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    virtual void Validate();
    virtual void SetSkinDef(CVuikComboBoxSkinDef def);
    virtual void Load(bool fromCommonResource);

    CVuikComboBoxStateSkin* GetStateSkin(int index) { return index >= 0 && index < 4 ? &m_StateSkins[index] : nullptr; }

    static void SetDefaultSkinDef(CVuikComboBoxSkinDef def) { m_DefaultSkinDef = def; }
    static CVuikComboBoxSkinDef m_DefaultSkinDef;

protected:
    CVuikComboBoxStateSkin m_StateSkins[4];

private:
    CVuikComboBoxSkin(const CVuikComboBoxSkin&);
    CVuikComboBoxSkin& operator=(const CVuikComboBoxSkin&);
};

// The drop-down list: shows the whole text of an item that the list cuts off in a tooltip beside it.
class ZCMOD_API CVuikComboBoxListCtrl {
public:
    enum { m_toolTipTimerID = 1 };

    CVuikComboBoxListCtrl();
    virtual ~CVuikComboBoxListCtrl();

    // Takes over the list window and makes the tooltip; false if `list` isn't a window or is taken already.
    bool SubclassWindow(HWND list);
    // Gives the list its procedure back (with `force`, even when another one was put on top) and destroys the
    // tooltip; the list's handle, or null.
    HWND UnsubclassWindow(int force);

    LRESULT SendMessageW(UINT message, WPARAM wParam, LPARAM lParam);
    HFONT GetFont();
    void SetFont(HFONT font, BOOL redraw);

    HWND GetHWND() const { return m_hWnd; }
    HWND GetToolTip() const { return m_hToolTip; }
    const std::wstring& GetTipText() const { return m_strTipText; }

    // Collapses every run of ampersands to one: the tooltip shows text without prefixes.
    static void ReplaceAmpersand(std::wstring& text);

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    virtual void OnMouseMove(WPARAM wParam, LPARAM lParam);
    virtual void OnTimer(WPARAM wParam, LPARAM lParam);
    void HideTip();

    HWND m_hWnd;
    WNDPROC m_pfnPrevWindowProc;
    LONG_PTR m_pPrevUserData;
    HWND m_hToolTip;
    TOOLINFOW m_ToolInfo;
    std::wstring m_strTipText;

private:
    CVuikComboBoxListCtrl(const CVuikComboBoxListCtrl&);
    CVuikComboBoxListCtrl& operator=(const CVuikComboBoxListCtrl&);
};

class ZCMOD_API CVuikComboBoxCtrl : public CVuikWindowImpl<CVuikComboBoxSkin> {
public:
    CVuikComboBoxCtrl();
    virtual ~CVuikComboBoxCtrl();

    using CVuikWindowImpl<CVuikComboBoxSkin>::OnPaint;

    // Takes over a "ComboBox", or the inner combo of a "ComboBoxEx32" given here: adds WS_CLIPSIBLINGS,
    // WS_CLIPCHILDREN, CBS_OWNERDRAWFIXED and CBS_HASSTRINGS, makes and loads a skin from the theme module if
    // none is set, takes over the list and sizes the control to its pictures. 1 on success, else 0.
    virtual BOOL SubclassWindow(HWND hwnd);
    // Gives the combo and its list their procedures back; the combo's handle, or null.
    virtual HWND UnsubclassWindow(int force);

    // The height of the pictures, the items of the closed control 6 pixels lower, the edit part and the list
    // placed inside.
    virtual void SizeToContent();
    virtual int AddItem(const wchar_t* text);
    virtual int GetCurSel();
    virtual int SetCurSel(int index);
    virtual int GetCount();
    virtual int GetLBText(int index, wchar_t* buffer);
    virtual int GetLBTextLen(int index);
    virtual void ResetContent();
    virtual void SetFont(HFONT font, BOOL redraw);
    // CVuikBackBufferClient: the skin's picture of this control.
    virtual void Draw(CVuikGraphics* graphics, int width, int height);

    virtual LRESULT OnCreate(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnDrawItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMeasureItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseLeave(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSetFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnKillFocus(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnLButtonDown(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnLButtonUp(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnCommand(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    EComboBoxState GetState() const { return m_eState; }
    bool HasFocus() const { return m_bFocus; }
    HWND GetComboBoxEx() const { return m_hComboBoxEx; }
    HWND GetEdit() const { return m_hEdit; }
    HWND GetList() const { return m_hList; }
    CVuikComboBoxListCtrl& GetListCtrl() { return m_list; }

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    // Runs the platform's handling with drawing switched off, so that its own paint doesn't flash through.
    LRESULT CallQuietly(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Drops the buffer and invalidates.
    void Refresh(BOOL erase);

    HWND m_hEdit;
    HWND m_hList;
    HWND m_hComboBoxEx;
    CVuikComboBoxListCtrl m_list;
    EComboBoxState m_eState;
    bool m_bTracking;
    bool m_bFocus;
    CVuikComboBoxSkin* m_pOwnSkin;  // the skin SubclassWindow made, if any
};
