// What the README's examples take from the application around them: they are written as pieces of one.
#pragma once

#include <windows.h>

extern HINSTANCE instance;                       // the application's module
extern HWND parent, panel, dialog, edit;         // windows a control is placed on or works with
extern HBITMAP backdrop;                         // a picture to blend over
extern HFONT font, boldFont;                     // fonts that outlive the skins using them
constexpr UINT IDB_MY_FACE = 100, IDB_MY_TAB_FIRST = 110;  // bitmap resources of the application
constexpr int IDC_TABS = 1001, IDC_NAME = 1002, IDC_CONTACTS = 1003, IDD_MY_DIALOG = 101;
INT_PTR CALLBACK MyDialogProc(HWND, UINT, WPARAM, LPARAM);
