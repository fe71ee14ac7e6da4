// What the README's examples take from the application around them: they are written as pieces of one.
#pragma once

#include <windows.h>

extern HWND parent;        // the window a control is placed on
extern HBITMAP backdrop;   // a picture to blend over
constexpr UINT IDB_MY_FACE = 100;  // a bitmap resource of the application
