// The menu bar: a platform menu shown as a row of drawn buttons on a 30-pixel strip. Each top-level item
// becomes a CVuikMenuBarButtonCtrl; the drop-downs stay the platform's popup menus, with every item turned
// owner-drawn and painted here. Keyboard navigation across the bar (left and right, with wrap-around) and
// sliding from one open menu to the next with the mouse are rebuilt with a WH_MSGFILTER hook, since the
// platform gives them only to a native menu bar. Alt with a top-level mnemonic opens that menu through the
// bar's accelerator table: the application's message loop calls TranslateMenuAccelerator.
//
//   CVuikMenuBarCtrl bar;
//   bar.Create(LoadMenuW(instance, MAKEINTRESOURCEW(IDR_MAIN)), view, POINT{0, 30}, frame);
//   ...
//   while (GetMessageW(&msg, nullptr, 0, 0) > 0)
//       if (!bar.TranslateMenuAccelerator(&msg)) { TranslateMessage(&msg); DispatchMessageW(&msg); }
//
// Commands chosen in a popup reach the host as WM_COMMAND, as do the menu messages (WM_INITMENUPOPUP and
// the others) so that the host can check and enable items before they show.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikButtonImpl.h"
#include "zcmod/VuikWindowImpl.h"

// Private messages of the bar.
// Posted by the bar to itself: open the popup of button wParam (its index); lParam the button object.
#define WM_VUIK_MENUBAR_OPENPOPUP 0x7E8
// Sent by a button to the bar: the left button went down on it; wParam the button object.
#define WM_VUIK_MENUBAR_BUTTONDOWN 0x7E9
// Sent by a button to the bar: the left button went up; the bar does not handle it.
#define WM_VUIK_MENUBAR_BUTTONUP 0x7EA
// Sent by a button to the bar: the mouse moved over it; wParam the button object.
#define WM_VUIK_MENUBAR_BUTTONMOVE 0x7EB

// The bar's colours. GDI+ colours are 0xAARRGGBB; the two item text colours are GDI colours (0x00BBGGRR).
struct CVuikMenuBarSkinDef {
    DWORD m_crBar;               // bar fill; transparent by default, so the strip beneath shows
    DWORD m_crItemText;          // GDI
    DWORD m_crItemDisabledText;  // GDI
    DWORD m_crSeparator;
    DWORD m_crItem;
    DWORD m_crItemSelected;
    DWORD m_crItemSelectedPopup;  // a selected item that opens a submenu
    DWORD m_crArrow;
    DWORD m_crArrowDisabled;
};

// The bar's skin: its colours and the font of the popup items ("Zelvo Sans Wide", height 13; 15 for the
// Chinese languages, 16 for Thai). Load makes the font for the current language.
class ZCMOD_API CVuikMenuBarSkin : public CVuikBaseSkinImpl<CVuikMenuBarSkin, CVuikMenuBarSkinDef> {
public:
    CVuikMenuBarSkin();
    virtual ~CVuikMenuBarSkin();

    virtual void Load();
    virtual void Unload();
    // No pictures: a loaded bar skin is always valid.
    virtual void Validate();
    // Fills the whole bar with m_crBar.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    static void SetDefaultSkinDef(CVuikMenuBarSkinDef def);
    const CVuikMenuBarSkinDef& GetSkinDef() const { return m_SkinDef; }

    static CVuikMenuBarSkinDef m_DefaultSkinDef;
    HFONT m_hFont;
};

// One look of a bar button: a vertical gradient and the text colour, all 0xAARRGGBB.
struct CVuikMenuBarButtonStateSkinDef {
    DWORD m_crTop;
    DWORD m_crBottom;
    DWORD m_crText;
};

class ZCMOD_API CVuikMenuBarButtonStateSkin
    : public CVuikBaseSkinImpl<CVuikMenuBarButtonStateSkin, CVuikMenuBarButtonStateSkinDef> {
public:
    CVuikMenuBarButtonStateSkin();
    virtual ~CVuikMenuBarButtonStateSkin();

    virtual void Load();
    virtual void Validate();
    // The gradient from top to bottom over the whole button.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // The label centred in `rect`, in this state's text colour.
    void DrawLabel(HDC dc, const RECT& rect, const wchar_t* text, HFONT font);
};

// The button states, in the order of the skin's state skins.
enum EMenuBarButtonState { MENUBAR_BUTTON_NORMAL = 0, MENUBAR_BUTTON_HOVER = 1, MENUBAR_BUTTON_OPEN = 2 };

struct CVuikMenuBarButtonSkinDef {
    CVuikMenuBarButtonStateSkinDef m_States[3];
};

// A bar button's skin: the three state skins, the button's text and its font ("Zelvo Sans Wide" 12 bold;
// 15 regular for the Chinese languages, 16 regular for Thai).
class ZCMOD_API CVuikMenuBarButtonSkin : public CVuikBaseSkinImpl<CVuikMenuBarButtonSkin, CVuikMenuBarButtonSkinDef> {
public:
    CVuikMenuBarButtonSkin();
    virtual ~CVuikMenuBarButtonSkin();

    virtual void SetSkinDef(CVuikMenuBarButtonSkinDef def);
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual bool IsValid();
    // The state of `window` (a CVuikMenuBarButtonCtrl; any other window draws Normal): its gradient and label.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    // A copy of `text`; null clears it.
    void SetText(const wchar_t* text);
    const wchar_t* GetText() const { return m_pszText ? m_pszText : L""; }
    HFONT GetFont() const { return m_hFont; }

    static void SetDefaultSkinDef(CVuikMenuBarButtonSkinDef def);
    static CVuikMenuBarButtonSkinDef m_DefaultSkinDef;

protected:
    CVuikMenuBarButtonStateSkin m_StateSkins[3];
    wchar_t* m_pszText;
    HFONT m_hFont;

private:
    CVuikMenuBarButtonSkin(const CVuikMenuBarButtonSkin&);
    CVuikMenuBarButtonSkin& operator=(const CVuikMenuBarButtonSkin&);
};

// One top-level item of the bar. It owns its skin. A press or a mouse move over it is reported to the bar
// (WM_VUIK_MENUBAR_BUTTONDOWN, WM_VUIK_MENUBAR_BUTTONMOVE); it takes neither capture nor focus, so the
// application's focus stays where it was. It shows Open while checked (its popup is open), Hover while the
// mouse is over it, else Normal.
class ZCMOD_API CVuikMenuBarButtonCtrl : public CVuikButtonImpl<CVuikMenuBarButtonSkin> {
    typedef CVuikButtonImpl<CVuikMenuBarButtonSkin> Base;

public:
    CVuikMenuBarButtonCtrl();
    virtual ~CVuikMenuBarButtonCtrl();

    using Base::Create;
    using Base::OnPaint;
    // Makes and loads the skin, measures `text` in its font on the parent's context, and creates the button
    // at (rect->left, rect->top), (text width + 10) by (text height + 8). The final rectangle goes back in
    // `rect`. Returns the window, or nothing.
    virtual HWND Create(HWND parent, RECT* rect, const wchar_t* text, UINT id);

    // Fits the window to the present text (the window text, which is also copied into the skin).
    virtual void SizeToContent();
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnLButtonDown(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnLButtonUp(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseMove(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // The look the next paint shows.
    EMenuBarButtonState GetButtonState() const;
    const wchar_t* GetText() const { return m_pOwnSkin ? m_pOwnSkin->GetText() : L""; }

protected:
    // The text's size in the skin's font: measured on the parent's context, or the screen's.
    SIZE MeasureText(HWND parent, const wchar_t* text) const;

    CVuikMenuBarButtonSkin* m_pOwnSkin;
    int m_nDrawnState;
};

class ZCMOD_API CVuikMenuBarCtrl : public CVuikWindowImpl<CVuikMenuBarSkin> {
    typedef CVuikWindowImpl<CVuikMenuBarSkin> Base;

public:
    CVuikMenuBarCtrl();
    // Ends an open popup of this bar, destroys the bar's window, its buttons, its skin and its accelerators.
    virtual ~CVuikMenuBarCtrl();

    using Base::OnPaint;

protected:
    // The platform window: a "Static" taken over by the bar's procedure.
    virtual HWND Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                        DWORD style, DWORD exStyle, LPVOID param);

public:
    // Makes the bar over `parent` at `point`, as wide as the parent's client area and 30 high, with one
    // button per top-level item of `menu` (which stays the caller's). Commands and menu messages go to
    // `host`, or to the parent when `host` is empty. Returns the bar's window, or nothing.
    virtual HWND Create(HMENU menu, HWND parent, POINT point, HWND host);

    HMENU GetSourceMenu() const { return m_hSourceMenu; }
    // Alt with a top-level mnemonic: TranslateAcceleratorW with the bar's window and table, when both exist.
    int TranslateMenuAccelerator(MSG* msg);

    int GetButtonCount() const { return m_nButtonCount; }
    CVuikMenuBarButtonCtrl* GetButton(int index) const;
    // The button whose popup is open, or null.
    CVuikMenuBarButtonCtrl* GetActiveButton() const { return m_pActiveButton; }
    HACCEL GetAcceleratorTable() const { return m_hAccel; }
    HWND GetHost() const { return m_hHost; }

    // True while a popup of some bar of the process is open (the message-filter hook is installed).
    static bool IsPopupOpen();

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

protected:
    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Sees each menu message before the host does; non-zero passes it on.
    virtual LRESULT OnFilterMenuMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual void OnAcceleratorCommand(int index);
    virtual LRESULT OnDrawItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMeasureItem(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual void OnMouseDownOnBarButton(CVuikMenuBarButtonCtrl* button);
    virtual void OnMouseMoveOnBarButton(CVuikMenuBarButtonCtrl* button);
    virtual void OnOpenPopup(int index, CVuikMenuBarButtonCtrl* button);

    // Adds Alt+letter (upper case) for command `index` to the table, which is made anew one entry longer.
    void UpdateAcceleratorTable(wchar_t letter, int index);
    // Every item of `menu` becomes owner-drawn with `level` as its item data; submenus get level 1.
    void SetMenuItemsToOwnerDrawn(HMENU menu, int level);
    int IndexOf(const CVuikMenuBarButtonCtrl* button) const;
    // WM_MENUCHAR in an owner-drawn popup: the item whose "&" letter was typed.
    LRESULT OnMenuChar(WPARAM wParam, LPARAM lParam);

    static LRESULT CALLBACK MessageFilterProc(int code, WPARAM wParam, LPARAM lParam);
    // The hook's side of the bar: left and right across the bar, and the mouse sliding between buttons.
    void FilterMessage(const MSG* msg);

    HWND m_hHost;
    CVuikMenuBarButtonCtrl** m_ppButtons;
    CVuikMenuBarButtonCtrl* m_pActiveButton;
    HMENU m_hSourceMenu;
    int m_nButtonCount;
    HACCEL m_hAccel;
    bool m_bIgnoreNextDown;
    bool m_bKeyboardMode;
    POINT m_ptKeyboard;
    CVuikMenuBarSkin* m_pOwnSkin;
    // The bar itself is ending the open popup to open another one.
    bool m_bMovingOn;

    // The open popup's hook and bar: one popup at a time in the process.
    static HHOOK s_hHook;
    static CVuikMenuBarCtrl* s_pHookBar;
};
