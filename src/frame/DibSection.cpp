#include "frame/DibSection.h"

#include <cstring>

namespace zcmod {

bool GetSectionPixels(HBITMAP bitmap, SectionPixels& pixels)
{
    pixels = SectionPixels();
    DIBSECTION section = {};
    if (!bitmap || GetObjectW(bitmap, sizeof(section), &section) != static_cast<int>(sizeof(section)) ||
        !section.dsBm.bmBits)
        return false;
    const BITMAPINFOHEADER& header = section.dsBmih;
    const int bitsPerPixel = section.dsBm.bmBitsPixel;
    if (bitsPerPixel != 24 && bitsPerPixel != 32)
        return false;
    const bool standardMasks = header.biCompression == BI_BITFIELDS && bitsPerPixel == 32 &&
                               section.dsBitfields[0] == 0xFF0000 && section.dsBitfields[1] == 0xFF00 &&
                               section.dsBitfields[2] == 0xFF;
    if (header.biCompression != BI_RGB && !standardMasks)
        return false;
    if (section.dsBm.bmWidth < 1 || section.dsBm.bmHeight < 1)
        return false;
    GdiFlush();
    pixels.bits = static_cast<uint8_t*>(section.dsBm.bmBits);
    pixels.width = section.dsBm.bmWidth;
    pixels.height = section.dsBm.bmHeight;
    pixels.stride = section.dsBm.bmWidthBytes;
    pixels.bytesPerPixel = bitsPerPixel / 8;
    pixels.topDown = header.biHeight < 0;
    return true;
}

int CopySectionRows(HBITMAP bitmap, const BITMAPINFOHEADER& header, int start, int lines, void* bits, bool topDown,
                    bool toSection)
{
    if (!bits || lines < 1 || start < 0 || header.biBitCount != 24 || header.biCompression != BI_RGB)
        return -1;
    SectionPixels section;
    if (!GetSectionPixels(bitmap, section) || section.bytesPerPixel != 3)
        return -1;
    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    if (section.width != header.biWidth || section.height != height)
        return -1;
    // A top-down request is taken only whole; a bottom-up one may be any run of lines inside the picture.
    if (topDown ? start != 0 || lines < height : start > height - lines)
        return -1;
    if (topDown)
        lines = height;
    const size_t rowBytes = static_cast<size_t>(section.stride);
    auto* buffer = static_cast<uint8_t*>(bits);
    for (int i = 0; i < lines; ++i) {
        // Buffer row i holds the line counted `start + i` from the bottom, or, top-down, the i-th from the top.
        const int fromTop = topDown ? i : height - 1 - (start + i);
        uint8_t* row = section.Row(fromTop);
        if (toSection)
            memcpy(row, buffer + rowBytes * i, rowBytes);
        else
            memcpy(buffer + rowBytes * i, row, rowBytes);
    }
    return lines;
}

}  // namespace zcmod
