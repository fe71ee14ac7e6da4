// CCommonAboutDlg: the suite's about box. The application names its strings and its product picture; the dialog
// adds the suite's banner, the maker's mark, the version line (maker, the word for "Version", build number) and
// the legal text, all painted on the drawn window frame, with one OK button.
//
//   tagABOUTBOXPARAMS params = {};
//   params.m_hStringModule = appInstance;      // title, product name and footer strings live here
//   params.m_hIconModule = appInstance;        // the product picture and the caption icon live here
//   params.m_hParent = mainWindow;
//   params.m_nTitleId = IDS_ABOUT_TITLE;
//   params.m_nProductId = IDS_PRODUCT_NAME;    // its picture is the bitmap of the same id
//   params.m_nFooterId = IDS_ABOUT_FOOTER;
//   params.m_nIconId = IDB_CAPTION_ICON;       // 0: no caption icon
//   CCommonAboutDlg about;
//   about.SetAboutBoxParams(&params);
//   about.DoModal();                           // 1 (OK) or 2 (the frame's close button, Escape)
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikWindowBackgroundCtrl.h"

class CVuikBitmap;
class CVuikCommonButtonCtrl;

// What the application gives the about box. Pointer-sized words first, then the ids.
struct tagABOUTBOXPARAMS {
    void* m_pReserved;        // not read
    void* m_hIconData;        // goes unread into the first word of the caption icon's data
    HINSTANCE m_hStringModule;  // the module of the three strings
    HINSTANCE m_hIconModule;    // the module of the caption icon and the product picture
    HWND m_hParent;             // the dialog's owner
    UINT m_nTitleId;            // string: the window title
    UINT m_nProductId;          // string: the product name; also the bitmap id of the product picture
    UINT m_nFooterId;           // string: the grey line at the bottom
    UINT m_nIconId;             // bitmap: the caption icon; 0 for none
};
typedef tagABOUTBOXPARAMS ABOUTBOXPARAMS;

class ZCMOD_API CCommonAboutDlg {
public:
    // Makes the frame's skin, loads the version line, the legal text and the suite's pictures, and makes
    // the fonts.
    CCommonAboutDlg();
    // Frees every string, picture and font.
    virtual ~CCommonAboutDlg();

    CCommonAboutDlg(const CCommonAboutDlg&) = delete;
    CCommonAboutDlg& operator=(const CCommonAboutDlg&) = delete;

    // Takes the application's strings and picture; what an earlier call left is freed first. A null `params`
    // is ignored.
    void SetAboutBoxParams(const tagABOUTBOXPARAMS* params);
    // Shows the box modally over the parent of the params: the id that closed it (1 OK, 2 the frame's close
    // button or Escape), or -1 before SetAboutBoxParams or when the template can't be had.
    INT_PTR DoModal();

    HWND GetSafeHwnd() const { return m_hWnd; }
    // What the box shows, for callers that want to log or test it; never null.
    const wchar_t* GetVersionText() const { return m_pszVersion ? m_pszVersion : L""; }
    const wchar_t* GetLegalText() const { return m_pszLegal ? m_pszLegal : L""; }
    const wchar_t* GetTitleText() const { return m_pszTitle ? m_pszTitle : L""; }
    const wchar_t* GetProductText() const { return m_pszProduct ? m_pszProduct : L""; }
    const wchar_t* GetFooterText() const { return m_pszFooter ? m_pszFooter : L""; }
    // The fonts: 0 product name, 1 version and footer, 2 legal text; null out of range.
    HFONT GetFont(int index) const;

    // Window property of the dialog that holds the object.
    static const wchar_t* const kInstanceProperty;
    // The dialog's size in pixels, whatever the template says.
    static const int kWidth = 537;
    static const int kHeight = 380;

protected:
    virtual INT_PTR OnCommand(WPARAM wParam, LPARAM lParam);
    virtual INT_PTR OnInitDialog();
    virtual INT_PTR OnCustomPaint(HDC dc);

    void LoadGlobalResources();
    void FreeGlobalResources();
    void CreateFonts();
    void DestroyFonts();
    // Reads string `id` of `module` straight from its string table, whatever the thread's language: the
    // buffer (of `capacity` characters, the end included) is cleared, the string copied if it fits, and its
    // length returned; 0 when the module has no such string.
    static int LoadStringEx(HINSTANCE module, UINT id, wchar_t* buffer, int capacity);
    void FreeApplicationResources();
    static INT_PTR CALLBACK AboutBoxDlgProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Whether the language of the library's language module reads right to left.
    static int IsRTL();
    // Right to left, either the window is mirrored by its template (a right-to-left language in a left-to-right
    // layout of the library) or the box mirrors its own drawing (a right-to-left layout of the library).
    static bool MirrorsWindow();
    static bool MirrorsDrawing();
    // Centres the box over its parent, or over the desktop without a parent or with a minimised one, kept
    // on the nearest monitor.
    void CenterAboutBox();
    // Moves `rect`, keeping its size, so that its left and top lie on the monitor nearest to it.
    static void ClipToMonitor(RECT& rect);

    // The frame of the present box: made for each box, since a frame takes one window in its life.
    CVuikWindowBackgroundCtrl* m_pBackground;
    CVuikWindowBackgroundSkin m_BackgroundSkin;
    CVuikCommonButtonCtrl* m_pOkButton;
    HWND m_hWnd;
    HWND m_hParent;
    HINSTANCE m_hStringModule;
    HINSTANCE m_hIconModule;
    HFONT m_hProductFont;
    HFONT m_hVersionFont;
    HFONT m_hLegalFont;
    wchar_t* m_pszVersion;
    wchar_t* m_pszLegal;
    wchar_t* m_pszTitle;
    wchar_t* m_pszProduct;
    wchar_t* m_pszFooter;
    CVuikBitmap* m_pBanner;
    CVuikBitmap* m_pMaker;
    CVuikBitmap* m_pProduct;
    void* m_hIconData;
    UINT m_nIconId;
    bool m_bParamsSet;
};
