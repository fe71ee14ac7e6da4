// CDkhDialog: the base of the suite's plain dialogs, which take their colours from the theme but not the skinned
// frame. It flips its template for right-to-left languages, finds its object through the process-wide dialog
// map of CCommonModuleState, and paints the background and static texts in the theme's dialog colours.
//
// A derived class sets m_nDialogId to a dialog template of the library's own resources and overrides what it
// needs; DoModal shows it:
//
//     class CSystemInfoDlg : public CDkhDialog {
//     public:
//         CSystemInfoDlg() : CDkhDialog(IDD_ZCMOD_SYSTEM_INFORMATION) { LoadRichEdit(); }
//     protected:
//         INT_PTR OnInitDialog() override { CDkhDialog::OnInitDialog(); CenterDialog(); return 1; }
//     };
//     CSystemInfoDlg().DoModal(parent);   // 1 for OK, 2 for Cancel
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class ZCMOD_API CDkhDialog {
public:
    // Colour ids of the theme's colour table.
    enum { kBackgroundColorId = 2, kTextColorId = 100 };

    explicit CDkhDialog(WORD nDialogId = 0);
    virtual ~CDkhDialog();

    CDkhDialog(const CDkhDialog&) = delete;
    CDkhDialog& operator=(const CDkhDialog&) = delete;

    // Runs the dialog modally over `parent` and returns its result (1 OK, 2 Cancel, or what EndDialog gave);
    // -1 when there is no template id or the template can't be found or created.
    INT_PTR DoModal(HWND parent);

    HWND GetSafeHwnd() const { return m_hWnd; }
    WORD GetDialogId() const { return m_nDialogId; }

    // The dialog procedure registered with the platform: at WM_INITDIALOG it enters the window in the dialog
    // map with the object in lParam; later messages go to the object found there, or get 0.
    static INT_PTR CALLBACK DialogProcStatic(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    // The object of a live dialog window, or null.
    static CDkhDialog* FromHandle(HWND hWnd);

    // Loads "riched32.dll" (freeing an earlier load first) for templates with a rich edit control.
    bool LoadRichEdit();

protected:
    virtual INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam);
    // Fills the client area with the background brush, making it if missing; returns 1.
    virtual INT_PTR OnEraseBkgnd(HDC dc);
    // Deletes the background brush.
    virtual void OnDestroy();
    virtual void OnCancel();
    virtual void OnOK();
    // Buttons: red text on the null brush. The dialog and statics: the theme's background and text colours on
    // the background brush. Others: the null brush.
    virtual HBRUSH OnCtlColor(UINT message, HDC dc, HWND control);
    // Paints nothing and returns 0: a derived class draws here, between BeginPaint and EndPaint.
    virtual INT_PTR OnPaint(HDC dc);
    // Takes the null brush and makes the background brush; returns 1.
    virtual INT_PTR OnInitDialog();

    // Centres the dialog over m_hParent, or over the screen when there is no parent or it is minimised, kept on
    // the nearest monitor.
    void CenterDialog();
    // Moves `rect`, keeping its size, so that it lies on the monitor nearest to it.
    static void ClipToMonitor(RECT& rect);
    // A colour of the theme's colour table, 0 (black) when it has none.
    static COLORREF LoadThemeColor(UINT id);

    HWND m_hWnd;
    HWND m_hParent;
    HBRUSH m_hNullBrush;
    HBRUSH m_hBackgroundBrush;
    WORD m_nDialogId;
    HMODULE m_hRichEdit;
};
