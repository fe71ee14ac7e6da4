// Which control a skin is drawing for, without a cast across module borders: an application's class derived
// from a control has type information of its own, so a dynamic_cast in the library may fail on it. The control
// being drawn names itself in `drawing` for the time of its paint; otherwise the window is recognised by its
// procedure and its user data.
#pragma once

#include <windows.h>

#include "zcmod/VuikWindow.h"

namespace zcmod {

template <class Ctrl>
Ctrl* ControlOfWindow(CVuikWindow* window, Ctrl* drawing)
{
    if (!window)
        return nullptr;
    if (window == static_cast<CVuikWindow*>(drawing))
        return drawing;
    HWND hwnd = window->m_hWnd;
    if (hwnd && IsWindow(hwnd) &&
        reinterpret_cast<WNDPROC>(GetWindowLongPtrW(hwnd, GWLP_WNDPROC)) == Ctrl::WindowProc &&
        GetWindowLongPtrW(hwnd, GWLP_USERDATA) == reinterpret_cast<LONG_PTR>(static_cast<Ctrl*>(window)))
        return static_cast<Ctrl*>(window);
    return nullptr;
}

}  // namespace zcmod
