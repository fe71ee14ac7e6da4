// CVuikWindow: the bare window of the toolkit, a handle and a way to create it.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class ZCMOD_API CVuikWindow {
public:
    CVuikWindow() : m_hWnd(nullptr) {}
    virtual ~CVuikWindow() {}

    // CreateWindowExW with CVuikLib's instance; the result is stored in m_hWnd and returned. `id` becomes
    // the child id (the menu handle argument).
    virtual HWND Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                        DWORD style, DWORD exStyle, LPVOID param);

    HWND m_hWnd;
};
