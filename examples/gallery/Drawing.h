// Small drawing helpers of the gallery's pages.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

// A font of the suite ("Zelvo Sans Wide") at `height` pixels and `weight`, made the way every consumer of
// the library makes one.
HFONT SuiteFont(int height, int weight = FW_NORMAL);

// The face actually selected into `dc`.
std::wstring SelectedFace(HDC dc);

// Text at (x, y) in the current font; returns the y below it.
int Text(HDC dc, int x, int y, const std::wstring& text, COLORREF color);

// A filled rectangle with a one-pixel frame.
void Swatch(HDC dc, const RECT& rect, COLORREF fill, COLORREF frame);

std::wstring Format(const wchar_t* format, ...);

}  // namespace gallery
