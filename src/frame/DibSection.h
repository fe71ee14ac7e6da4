// Direct access to the pixels of a DIB section: the frames of the image stores and the pictures of the skins
// are sections, so their rows can be read and written in place instead of through GetDIBits and SetDIBits.
#pragma once

#include <windows.h>

#include <cstdint>

namespace zcmod {

// The memory of a section with 24 or 32 bits a pixel and no colour masks but the usual ones.
struct SectionPixels {
    uint8_t* bits = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0;        // bytes from one row in memory to the next
    int bytesPerPixel = 0;  // 3 or 4
    bool topDown = false;  // the first row in memory is the top row

    // The row `y` counted from the top.
    uint8_t* Row(int y) const
    {
        const int memoryRow = topDown ? y : height - 1 - y;
        return bits + static_cast<ptrdiff_t>(stride) * memoryRow;
    }
};

// Fills `pixels` when `bitmap` is such a section, after flushing the drawing calls queued for it; false for
// any other bitmap, which then has to go through the platform's transfers.
bool GetSectionPixels(HBITMAP bitmap, SectionPixels& pixels);

// The scan lines `start` to `start + lines - 1`, counted from the bottom as GetDIBits counts them, of a 24-bit
// section whose size is the header's, copied to or from `bits` in the header's row layout (top-down when
// `topDown`). Returns the lines copied, or -1 when the bitmap or the request does not allow it and the
// platform's transfer must do the work. Both give the same bytes.
int CopySectionRows(HBITMAP bitmap, const BITMAPINFOHEADER& header, int start, int lines, void* bits, bool topDown,
                    bool toSection);

}  // namespace zcmod
