// Private window messages of the skin framework, in the application range.
#pragma once

#include <windows.h>

// Asks a window for the piece of its back buffer that lies under a child. wParam: the child; lParam: a
// PAINTSTRUCT whose hdc and rcPaint (in the child's coordinates) are filled in.
#define WM_VUIK_REPAINT 0x7FFE
// Drops the window's back buffer. Nothing is invalidated by this message alone. wParam and lParam: 0.
#define WM_VUIK_INVALIDATE_BACKBUFFER 0x7FFD
// Sent by a window background control to itself after copying its buffer to the screen and before
// EndPaint, so that a dialog can add to the picture. wParam: the device context of the paint.
#define WM_VUIK_AFTERPAINT 0x7FFC

// The reflected form of WM_DRAWITEM (OCM__BASE + WM_DRAWITEM), which the platform headers may lack.
#ifndef OCM_DRAWITEM
#define OCM_DRAWITEM (WM_USER + 0x1C00 + WM_DRAWITEM)
#endif
