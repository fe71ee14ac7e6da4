// Skinned message boxes: drop-in replacements for MessageBoxW with the same arguments and results.
//
// CVuikCommonMessageBox needs nothing from the application: the drawn window frame, the theme's icon buttons
// and the language module's button texts.
//
//   if (CVuikCommonMessageBox::Show(owner, L"Delete the message?", L"Messages", MB_YESNO | MB_ICONQUESTION) ==
//       IDYES) { ... }
//
// CVuikMessageBox wears the application's skins: set them once, before the first box. Without both skins it
// shows the platform's box.
//
//   CVuikMessageBox::SetButtonSkin(&buttonSkin);          // a loaded CVuikButtonSkin, kept by the application
//   CVuikMessageBox::SetBackgroundSkin(&backgroundSkin);  // a loaded CVuikStaticBitmapSkin
//   CVuikMessageBox::SetTextColor(RGB(32, 38, 46));
//   CVuikMessageBox::SetButtonCaptions(languageModule, IDS_OK, IDS_CANCEL, IDS_YES, IDS_NO);
//   CVuikMessageBox::Show(owner, L"Saved.", L"Notes", MB_OK);
//
// The low four bits of the type choose the buttons: MB_OK, MB_OKCANCEL, MB_YESNOCANCEL, MB_YESNO, and 7, a
// lone Cancel (the common box only). The result is the id of the button pressed (IDOK, IDCANCEL, IDYES,
// IDNO); Escape, the close button and WM_CLOSE give IDCANCEL whatever the buttons.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikStaticCtrl.h"

class CVuikBitmap;
class CVuikButtonCtrl;
class CVuikButtonSkin;
class CVuikCommonButtonCtrl;
class CVuikWindowBackgroundCtrl;
class CVuikWindowBackgroundSkin;

// The button set of the type's low four bits that this library reads as a lone Cancel.
#define MB_VUIK_CANCELONLY 0x00000007L

#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4275)
#endif

class ZCMOD_API CVuikMessageBox {
public:
    // The platform's MessageBoxW when the button or background skin is missing; 0 when the template's memory
    // can't be had.
    static int Show(HWND parent, const wchar_t* text, const wchar_t* caption, UINT type);

    static void SetButtonSkin(CVuikButtonSkin* skin) { m_pButtonSkin = skin; }
    static void SetBackgroundSkin(CVuikStaticBitmapSkin* skin) { m_pBackgroundSkin = skin; }
    static void SetTextColor(COLORREF colour) { m_clrText = colour; }
    // String ids of `module` for the four captions (255 characters at most); a null module keeps "OK",
    // "Cancel", "Yes" and "No".
    static void SetButtonCaptions(HINSTANCE module, UINT ok, UINT cancel, UINT yes, UINT no);

    // The dialog's background: the background skin, and the box's icon at (21, 21) on top of it.
    class ZCMOD_API CMessageBoxBackground : public CVuikWindowImpl<CVuikStaticBitmapSkin> {
    public:
        CMessageBoxBackground() : m_pIcon(nullptr) {}
        virtual void CreateBackBuffer(int width, int height, CVuikGraphics* graphics);
        CVuikBitmap* m_pIcon;  // owned by the box
    };

    // The window of the box while it runs; for tests and hooks.
    HWND GetHWND() const { return m_hWnd; }
    const RECT& GetTextRect() const { return m_rcText; }

protected:
    CVuikMessageBox(const wchar_t* text, const wchar_t* caption, UINT type);
    virtual ~CVuikMessageBox();

    // Fills `block` (1,024 zeroed bytes) with the box's dialog template.
    static void CreateDialogTemplate(LPDLGTEMPLATEW block, DWORD exStyle);
    // Writes one item at `item` (4-byte aligned) and returns its length in 16-bit words.
    static int PutItemToTemplate(LPDLGITEMTEMPLATEW item, POINT point, SIZE size, DWORD style, WORD id,
                                 WORD classAtom);
    static INT_PTR CALLBACK DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    virtual void FreeResources();
    virtual void LoadStrings();
    virtual void CreateButtons();
    virtual void SetDialogIcon();
    // Widens the dialog to `wanted` (keeping `height`) only when `current` is less; then reads the client
    // rectangle into `rect` if given.
    virtual void ResizeDialog(int current, int wanted, int height, RECT* rect);
    virtual BOOL OnInitDialog();
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnClose();
    virtual BOOL OnDrawItem(WPARAM wParam, LPARAM lParam);
    virtual HBRUSH OnCtlColorStatic(HDC hdc, HWND control);

    static CVuikButtonSkin* m_pButtonSkin;
    static CVuikStaticBitmapSkin* m_pBackgroundSkin;
    static COLORREF m_clrText;
    static HINSTANCE m_hLanguageModule;
    static UINT m_uOk, m_uCancel, m_uYes, m_uNo;

    HWND m_hWnd;
    CMessageBoxBackground m_Background;
    CVuikStaticCtrl m_Text;
    CVuikButtonCtrl* m_pButtons[4];  // ids 1, 2, 6, 7
    wchar_t m_szOk[256], m_szCancel[256], m_szYes[256], m_szNo[256];
    wchar_t* m_pszText;
    wchar_t* m_pszCaption;
    UINT m_uType;
    RECT m_rcText;
    HBRUSH m_hHollowBrush;
    HFONT m_hMessageFont;

private:
    CVuikMessageBox(const CVuikMessageBox&);
    CVuikMessageBox& operator=(const CVuikMessageBox&);
};

class ZCMOD_API CVuikCommonMessageBox {
public:
    // -1 when the template's memory can't be had.
    static int Show(HWND parent, const wchar_t* text, const wchar_t* caption, UINT type);
    static void SetTextColor(COLORREF colour) { m_clrText = colour; }

    HWND GetHWND() const { return m_hWnd; }
    const RECT& GetTextRect() const { return m_rcText; }

protected:
    // Makes both static skins anew (one box at a time); the destructor frees them.
    CVuikCommonMessageBox(const wchar_t* text, const wchar_t* caption, UINT type);
    virtual ~CVuikCommonMessageBox();

    static void CreateDialogTemplate(LPDLGTEMPLATEW block, DWORD exStyle);
    static int PutItemToTemplate(LPDLGITEMTEMPLATEW item, POINT point, SIZE size, DWORD style, WORD id,
                                 WORD classAtom);
    static INT_PTR CALLBACK DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    virtual void FreeResources();
    virtual void CreateButtons();
    virtual void SetDialogIcon();
    virtual void ResizeDialog(int current, int wanted, int height, RECT* rect);
    virtual BOOL OnInitDialog();
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnClose();

    static CVuikWindowBackgroundSkin* m_pBackgroundSkin;
    static CVuikStaticBitmapSkin* m_pIconSkin;
    static HINSTANCE m_hLanguageModule;
    static COLORREF m_clrText;

    HWND m_hWnd;
    CVuikWindowBackgroundCtrl* m_pBackground;
    CVuikStaticCtrl m_Text;
    CVuikStaticCtrl m_Icon;
    CVuikCommonButtonCtrl* m_pButtons[4];  // ids 1, 2, 6, 7
    wchar_t* m_pszText;
    wchar_t* m_pszCaption;
    UINT m_uType;
    RECT m_rcText;
    HFONT m_hMessageFont;
    const wchar_t* m_pszIcon;  // IDI_HAND, IDI_QUESTION, IDI_EXCLAMATION, IDI_ASTERISK, or null

private:
    CVuikCommonMessageBox(const CVuikCommonMessageBox&);
    CVuikCommonMessageBox& operator=(const CVuikCommonMessageBox&);
};

#ifdef _MSC_VER
#pragma warning(pop)
#endif
