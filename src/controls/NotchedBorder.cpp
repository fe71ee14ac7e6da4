#include "controls/NotchedBorder.h"

#include <objidl.h>  // PROPID, which a lean windows.h leaves out

#include <gdiplus.h>

#include "frame/GdiPlus.h"

namespace zcmod {

void DrawNotchedBorder(HDC dc, HWND hwnd, int width, int height, DWORD top, DWORD bottom)
{
    RECT client;
    if (!dc || !hwnd || width <= 0 || height <= 0 || !GetClientRect(hwnd, &client) || !EnsureGdiPlus())
        return;
    using namespace Gdiplus;
    using namespace Gdiplus::DllExports;
    const int bx = (width - client.right) / 2;
    const int by = (height - client.bottom) / 2;

    GpGraphics* graphics = nullptr;
    if (GdipCreateFromHDC(dc, &graphics) != Ok)
        return;
    const GpRect bounds(0, 0, width, height);
    GpLineGradient* brush = nullptr;
    GpPen* pen = nullptr;
    GpPath* path = nullptr;
    // Top to bottom is the gradient at 90 degrees; the vertical mode says so without the angle arithmetic,
    // which some GDI+ implementations scale by the width.
    if (GdipCreateLineBrushFromRectI(&bounds, top, bottom, LinearGradientModeVertical, WrapModeTile, &brush) == Ok &&
        GdipCreatePen2(brush, 1.0f, UnitWorld, &pen) == Ok && GdipCreatePath(FillModeAlternate, &path) == Ok) {
        // The arcs start where a rounded rectangle's would end, so each corner is a small notch turned
        // inwards rather than a rounding.
        const struct {
            int x, y;
            float start;
        } arcs[] = {{0, 0, 0.0f}, {0, height - by - 1, 270.0f}, {width - bx - 1, height - by - 1, 180.0f},
                    {width - bx - 1, 0, 90.0f}};
        for (const auto& arc : arcs)
            GdipAddPathArcI(path, arc.x, arc.y, bx, by, arc.start, 90.0f);
        GdipClosePathFigure(path);
        GdipDrawPath(graphics, pen, path);
    }
    if (path)
        GdipDeletePath(path);
    if (pen)
        GdipDeletePen(pen);
    if (brush)
        GdipDeleteBrush(brush);
    GdipDeleteGraphics(graphics);
}

}  // namespace zcmod
