// What the README's examples take from the application around them: they are written as pieces of one. An
// example that uses a new name of its own fails the package test until the name is added here.
#pragma once

#include <windows.h>

extern HINSTANCE instance;                                 // the application's module
extern HWND parent, panel, dialog, edit, view, frame, mainWindow, wizard, sheet, owner;  // windows the examples use
extern HWND m_hWnd;                                        // the window of the class an example is part of
extern HBITMAP backdrop;                                   // a picture to blend over
extern HFONT font, boldFont;                               // fonts that outlive the skins using them
// Resources and control ids of the application.
constexpr UINT IDB_MY_FACE = 100, IDB_MY_TAB_FIRST = 110, IDB_FACE_LEFT = 120, IDB_FACE_MIDDLE = 121,
               IDB_FACE_RIGHT = 122, IDB_FACE_MIDDLE_PRESSED = 123, IDB_ICON_CLOSE = 124, IDB_TL = 130, IDB_T = 131,
               IDB_TR = 132, IDB_BL = 133, IDB_B = 134, IDB_BR = 135, IDB_L = 136, IDB_C = 137, IDB_R = 138,
               IDB_BUSY_1 = 140, IDB_BUSY_8 = 147, IDB_MY_ICON = 150;
constexpr int IDC_TABS = 1001, IDC_NAME = 1002, IDC_CONTACTS = 1003, IDC_SEND = 1004, IDC_CLOSE = 1005,
              IDC_REMEMBER = 1006, IDC_TITLE = 1007, IDC_CARD = 1008, IDC_BUSY = 1009, IDD_MY_DIALOG = 101,
              IDR_MAIN = 102, IDC_STEPS = 1010, IDC_RECIPIENTS = 1011;
constexpr UINT IDS_OK = 200, IDS_CANCEL = 201, IDS_YES = 202, IDS_NO = 203, IDS_ABOUT_TITLE = 204,
               IDS_PRODUCT_NAME = 205, IDS_ABOUT_FOOTER = 206, IDB_CAPTION_ICON = 207;
extern HMODULE languageModule;           // the application's own strings
extern CVuikButtonSkin buttonSkin;       // skins of the application's, loaded
extern CVuikStaticBitmapSkin backgroundSkin;
extern CVuikWindowBackgroundSkin g_frameSkin;  // the skin of the application's drawn frame
INT_PTR CALLBACK MyDialogProc(HWND, UINT, WPARAM, LPARAM);
void DeleteMessage();
void OpenPicture(const wchar_t* file);
int CopyToPhone(const std::wstring& file);
void LoadTheApplication();
