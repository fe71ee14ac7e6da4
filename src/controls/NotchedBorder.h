// The border that the edit and list view skins draw round a window: a one-pixel GDI+ pen made from a vertical
// gradient, on a closed path of four small arcs, one in each corner, as large as the non-client border.
#pragma once

#include <windows.h>

namespace zcmod {

// Draws on `dc`, a picture of the whole w x h window `hwnd`, from `top` to `bottom` (0xAARRGGBB). The border's
// thickness is half of what the window's size exceeds its client size by, on each axis.
void DrawNotchedBorder(HDC dc, HWND hwnd, int width, int height, DWORD top, DWORD bottom);

}  // namespace zcmod
