// Small helpers of the gallery's pages: drawing, window classes, the library's layout.
#pragma once

#include <windows.h>

#include <string>

#include <zcmod/VuikLib.h>

namespace gallery {

// A font of the suite ("Zelvo Sans Wide") at `height` pixels and `weight`, made the way every consumer of
// the library makes one.
HFONT SuiteFont(int height, int weight = FW_NORMAL);

// The face actually selected into `dc`.
std::wstring SelectedFace(HDC dc);

// Text at (x, y) in the current font; returns the y below it.
int Text(HDC dc, int x, int y, const std::wstring& text, COLORREF color);

// Fills `rect` with a colour of the theme (ZGR_COLOR_WINDOW and the like).
void FillThemed(HDC dc, const RECT& rect, UINT colourId);

// Whether the theme in use is a dark one (its window colour is dark).
bool DarkTheme();

// A filled rectangle with a one-pixel frame.
void Swatch(HDC dc, const RECT& rect, COLORREF fill, COLORREF frame);

std::wstring Format(const wchar_t* format, ...);

// The whole of `bitmap` at (x, y).
void DrawBitmap(HDC dc, int x, int y, HBITMAP bitmap);

// A picture of `window`, frame included, as the screen shows it (not mirrored once more for a right-to-left
// window); the caller deletes it.
HBITMAP SnapshotWindow(HWND window);

// What the screen shows in `rect` (screen coordinates), overlapping windows included; the caller deletes it.
HBITMAP CopyScreen(const RECT& rect);

// Whether the library's language reads right to left (the gallery's pages then speak Hebrew).
bool RightToLeftLanguage();

// The visible file dialog of this thread, or null.
HWND VisibleFileDialog();

// Registers a window class of the gallery's module under `name`, once (arrow cursor, `proc`, `style`), and
// returns the name.
const wchar_t* WindowClass(const wchar_t* name, WNDPROC proc = DefWindowProcW, UINT style = 0);

// Sets the library's layout for the life of the object: a page builds a left-to-right panel or a
// right-to-left column whatever the application's layout is.
class LayoutScope {
public:
    explicit LayoutScope(bool rtl) : m_old(CVuikLib::SetLayout(rtl ? LAYOUT_RTL : 0)) {}
    ~LayoutScope() { CVuikLib::SetLayout(m_old); }
    LayoutScope(const LayoutScope&) = delete;
    LayoutScope& operator=(const LayoutScope&) = delete;

private:
    DWORD m_old;
};

}  // namespace gallery
