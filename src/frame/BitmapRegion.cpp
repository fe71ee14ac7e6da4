#include "frame/BitmapRegion.h"

#include <cstdlib>

#include "core/PixelMath.h"

namespace zcmod {

namespace {

constexpr DWORD kRectsPerRecord = 2000;

// Makes a region of the record's rectangles and adds it to `region` (or makes it the region); then empties the
// record and its bound.
void FlushRecord(RGNDATA* area, DWORD& count, RECT& bound, HRGN& region)
{
    area->rdh.nCount = count;
    area->rdh.nRgnSize = count * sizeof(RECT);
    area->rdh.rcBound = bound;
    // The header is 32 bytes, two rectangles' worth.
    HRGN part = ExtCreateRegion(nullptr, (count + 2) * sizeof(RECT), area);
    if (part) {
        if (!region) {
            region = part;
        } else {
            CombineRgn(region, region, part, RGN_OR);
            DeleteObject(part);
        }
    }
    count = 0;
    SetRect(&bound, 0, 0, 0, 0);
}

}  // namespace

HRGN RegionFromPixelRuns(int width, int height, RegionPixelReader read, const void* picture, uint32_t colour,
                         uint32_t tolerance, LastRecord last)
{
    if (!read || width < 1 || height < 1)
        return nullptr;
    auto* area = static_cast<RGNDATA*>(calloc(1, sizeof(RGNDATAHEADER) + kRectsPerRecord * sizeof(RECT)));
    if (!area)
        return nullptr;
    area->rdh.dwSize = sizeof(RGNDATAHEADER);
    area->rdh.iType = RDH_RECTANGLES;
    RECT* rects = reinterpret_cast<RECT*>(area->Buffer);
    DWORD count = 0;
    RECT bound = {0, 0, 0, 0};
    HRGN region = nullptr;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            // A run of pixels that do not match the colour becomes one rectangle; the walk goes on from the
            // run's last pixel.
            int end = x;
            while (end < width && !TestColorMatch(read(picture, end, y), colour, tolerance))
                ++end;
            if (end > x) {
                SetRect(&rects[count++], x, y, end, y + 1);
                if (x < bound.left)
                    bound.left = x;
                if (y < bound.top)
                    bound.top = y;
                if (end - 1 > bound.right)
                    bound.right = end - 1;
                if (y > bound.bottom)
                    bound.bottom = y;
                x = end - 1;
            }
            const bool lastPixel = y == height - 1 && x == width - 1;
            if (count == kRectsPerRecord || (lastPixel && (count > 0 || last == LastRecord::AlwaysFlush)))
                FlushRecord(area, count, bound, region);
        }
    }
    free(area);
    return region;
}

}  // namespace zcmod
