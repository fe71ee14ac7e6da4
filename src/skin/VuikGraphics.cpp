#include "zcmod/VuikGraphics.h"

#include <cstdint>
#include <vector>

#include "core/PixelMath.h"
#include "frame/DibSection.h"
#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikLib.h"

using namespace zcmod;

namespace {

// The rows of one picture part taken in place from a section: a rectangle of the section's pixels.
struct PartRows {
    SectionPixels pixels;
    int left = 0;
    int top = 0;

    // The row `y` of the part as 24-bit blue, green, red: in place for a 24-bit section, else copied to `scratch`.
    const uint8_t* Row24(int y, int width, std::vector<uint8_t>& scratch) const
    {
        const uint8_t* row = pixels.Row(top + y) + static_cast<ptrdiff_t>(left) * pixels.bytesPerPixel;
        if (pixels.bytesPerPixel == 3)
            return row;
        scratch.resize(static_cast<size_t>(width) * 3);
        for (int x = 0; x < width; ++x) {
            scratch[3 * x] = row[4 * x];
            scratch[3 * x + 1] = row[4 * x + 1];
            scratch[3 * x + 2] = row[4 * x + 2];
        }
        return scratch.data();
    }
};

// `source` of `bitmap` in place, when the bitmap is a 24- or 32-bit section holding all of it.
bool TakePart(HBITMAP bitmap, const RECT& source, PartRows& part)
{
    if (!GetSectionPixels(bitmap, part.pixels))
        return false;
    part.left = source.left;
    part.top = source.top;
    return source.left >= 0 && source.top >= 0 && source.right <= part.pixels.width &&
           source.bottom <= part.pixels.height;
}

// The blend of one row of `width` pixels into `target`, whose pixels have `targetBytes` bytes (3 or 4; a
// fourth byte is set to 0, as a 24-bit picture copied onto a 32-bit one gets it).
void BlendRow(const uint8_t* image, const uint8_t* mask, uint8_t* target, int targetBytes, int width,
              std::vector<uint8_t>& scratch)
{
    if (targetBytes == 3) {
        AlphaBlendBytes(image, mask, target, target, static_cast<size_t>(width) * 3);
        return;
    }
    scratch.resize(static_cast<size_t>(width) * 3);
    for (int x = 0; x < width; ++x) {
        scratch[3 * x] = target[4 * x];
        scratch[3 * x + 1] = target[4 * x + 1];
        scratch[3 * x + 2] = target[4 * x + 2];
    }
    AlphaBlendBytes(image, mask, scratch.data(), scratch.data(), scratch.size());
    for (int x = 0; x < width; ++x) {
        target[4 * x] = scratch[3 * x];
        target[4 * x + 1] = scratch[3 * x + 1];
        target[4 * x + 2] = scratch[3 * x + 2];
        target[4 * x + 3] = 0;
    }
}

// The blend of the two parts onto `target` at (x, y), row by row.
void BlendParts(const PartRows& image, const PartRows& mask, const SectionPixels& target, int x, int y, int width,
                int height)
{
    std::vector<uint8_t> imageRow, maskRow, scratch;
    for (int row = 0; row < height; ++row) {
        uint8_t* out = target.Row(y + row) + static_cast<ptrdiff_t>(x) * target.bytesPerPixel;
        BlendRow(image.Row24(row, width, imageRow), mask.Row24(row, width, maskRow), out, target.bytesPerPixel, width,
                 scratch);
    }
}

// The section that `dc` draws on, when drawing there is a plain copy to its memory: a memory context without
// a clip region, mirroring or transform, whose logical rectangle `dest` lies inside the bitmap. `x` and `y`
// get the rectangle's place in the bitmap.
bool DrawsStraightOn(HDC dc, const RECT& dest, SectionPixels& target, int& x, int& y)
{
    if (GetObjectType(dc) != OBJ_MEMDC || GetMapMode(dc) != MM_TEXT || GetGraphicsMode(dc) != GM_COMPATIBLE)
        return false;
    RegionHandle clip(CreateRectRgn(0, 0, 0, 0));
    if (!clip || GetClipRgn(dc, clip.Get()) != 0)
        return false;
    if (!GetSectionPixels(static_cast<HBITMAP>(GetCurrentObject(dc, OBJ_BITMAP)), target))
        return false;
    POINT corners[2] = {{dest.left, dest.top}, {dest.right, dest.bottom}};
    if (!LPtoDP(dc, corners, 2) || corners[1].x - corners[0].x != dest.right - dest.left ||
        corners[1].y - corners[0].y != dest.bottom - dest.top)
        return false;
    x = corners[0].x;
    y = corners[0].y;
    return x >= 0 && y >= 0 && corners[1].x <= target.width && corners[1].y <= target.height;
}

// Bits a pixel of what `dc` draws on.
int TargetDepth(HDC dc)
{
    if (GetObjectType(dc) == OBJ_MEMDC) {
        BITMAP bm = {};
        if (GetObjectW(GetCurrentObject(dc, OBJ_BITMAP), sizeof(bm), &bm))
            return bm.bmBitsPixel * bm.bmPlanes;
        return 0;
    }
    return GetDeviceCaps(dc, BITSPIXEL) * GetDeviceCaps(dc, PLANES);
}

RECT MakeRect(int x, int y, int width, int height)
{
    RECT r = {x, y, x + width, y + height};
    return r;
}

// A masked picture drawn without a stretch; false when the long way has to do it.
bool DrawMaskedInPlace(HDC hdc, CVuikBitmap* bitmap, const RECT& dest, const RECT& source)
{
    // Without a stretch, the parts of picture and mask are rectangles of their sections, and the blend can read
    // them where they are: the same bytes as the copies, the read-back, BlendBitmap and the write, with fewer
    // passes. A stretch, a mirrored context, a picture that is not a section or a target of fewer than 24 bits
    // goes the long way.
    const int w = dest.right - dest.left;
    const int h = dest.bottom - dest.top;
    if (w < 1 || h < 1 || w != source.right - source.left || h != source.bottom - source.top ||
        GetLayout(hdc) != 0 || TargetDepth(hdc) < 24)
        return false;
    PartRows image, mask;
    if (!TakePart(bitmap->GetPrimary(), source, image) || !TakePart(bitmap->GetMask(), source, mask))
        return false;

    // A section drawn on without clip or transform is blended where it is.
    SectionPixels target;
    int x = 0, y = 0;
    if (DrawsStraightOn(hdc, dest, target, x, y)) {
        BlendParts(image, mask, target, x, y, w, h);
        return true;
    }
    // Anything else: read back what the context shows into a 24-bit section, blend there, copy it back.
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), w, -h, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    BitmapHandle background(CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    MemoryDC dc(CreateCompatibleDC(hdc));
    if (!background || !bits || !dc)
        return false;
    SelectGuard select(dc.Get(), background.Get());
    BitBlt(dc.Get(), 0, 0, w, h, hdc, dest.left, dest.top, SRCCOPY);
    SectionPixels pixels;
    if (!GetSectionPixels(background.Get(), pixels))
        return false;
    BlendParts(image, mask, pixels, 0, 0, w, h);
    BitBlt(hdc, dest.left, dest.top, w, h, dc.Get(), 0, 0, SRCCOPY);
    return true;
}

}  // namespace

void CVuikGraphics::DrawImage(CVuikBitmap* bitmap, int x, int y)
{
    if (!bitmap)
        return;
    DrawImage(bitmap, MakeRect(x, y, bitmap->GetWidth(), bitmap->GetHeight()),
              MakeRect(0, 0, bitmap->GetWidth(), bitmap->GetHeight()));
}

void CVuikGraphics::DrawImage(CVuikBitmap* bitmap, int x, int y, int width, int height)
{
    if (!bitmap)
        return;
    DrawImage(bitmap, MakeRect(x, y, width, height), MakeRect(0, 0, bitmap->GetWidth(), bitmap->GetHeight()));
}

void CVuikGraphics::DrawImage(CVuikBitmap* bitmap, RECT dest)
{
    if (!bitmap)
        return;
    DrawImage(bitmap, dest, MakeRect(0, 0, bitmap->GetWidth(), bitmap->GetHeight()));
}

void CVuikGraphics::DrawImage(CVuikBitmap* bitmap, RECT dest, int x, int y, int width, int height)
{
    DrawImage(bitmap, dest, MakeRect(x, y, width, height));
}

void CVuikGraphics::DrawImage(CVuikBitmap* bitmap, RECT dest, RECT source)
{
    if (!bitmap || !bitmap->GetPrimary() || bitmap->GetWidth() == 0 || bitmap->GetHeight() == 0)
        return;
    const int w = dest.right - dest.left;
    const int h = dest.bottom - dest.top;
    if (bitmap->GetMask() && DrawMaskedInPlace(m_hDC, bitmap, dest, source))
        return;
    // The stretch comes first, so the mask is applied at the target's size.
    BitmapHandle part(CopyBitmapPart(bitmap->GetPrimary(), source, w, h));
    BitmapHandle maskPart;
    if (bitmap->GetMask())
        maskPart.Reset(CopyBitmapPart(bitmap->GetMask(), source, w, h));
    if (maskPart) {
        // The blend's background is what the context shows there now.
        BitmapHandle background(CreateCompatibleBitmap(m_hDC, w, h));
        {
            MemoryDC dc(CreateCompatibleDC(m_hDC));
            SelectGuard select(dc.Get(), background.Get());
            MyStretchBlt(dc.Get(), 0, 0, w, h, m_hDC, dest.left, dest.top, w, h, SRCCOPY);
        }
        BitmapHandle blended(CVuikLib::BlendBitmap(maskPart.Get(), background.Get(), part.Get()));
        MemoryDC dc(CreateCompatibleDC(m_hDC));
        SelectGuard select(dc.Get(), blended.Get());
        MyStretchBlt(m_hDC, dest.left, dest.top, w, h, dc.Get(), 0, 0, w, h, SRCCOPY);
    } else {
        // No mask, or it couldn't be copied: the picture is drawn unmasked.
        MemoryDC dc(CreateCompatibleDC(m_hDC));
        SelectGuard select(dc.Get(), part.Get());
        MyStretchBlt(m_hDC, dest.left, dest.top, w, h, dc.Get(), 0, 0, w, h, SRCCOPY);
    }
}

HBITMAP CVuikGraphics::CopyBitmapPart(HBITMAP bitmap, RECT source, int width, int height)
{
    BitmapHandle part(CreateCompatibleBitmap(m_hDC, width, height));
    MemoryDC from(CreateCompatibleDC(m_hDC));
    MemoryDC to(CreateCompatibleDC(m_hDC));
    if (!part || !from || !to)
        return part.Release();
    SelectGuard selectFrom(from.Get(), bitmap);
    SelectGuard selectTo(to.Get(), part.Get());
    MyStretchBlt(to.Get(), 0, 0, width, height, from.Get(), source.left, source.top, source.right - source.left,
                 source.bottom - source.top, SRCCOPY);
    return part.Release();
}

void CVuikGraphics::MyStretchBlt(HDC dest, int x, int y, int width, int height, HDC src, int sx, int sy, int sw, int sh,
                                 DWORD /*rop: always SRCCOPY*/)
{
    if (width == sw && height == sh) {
        BitBlt(dest, x, y, width, height, src, sx, sy, SRCCOPY);
        return;
    }
    const int oldMode = SetStretchBltMode(dest, HALFTONE);
    // HALFTONE needs the brush origin set after the mode.
    SetBrushOrgEx(dest, 0, 0, nullptr);
    StretchBlt(dest, x, y, width, height, src, sx, sy, sw, sh, SRCCOPY);
    if (oldMode)
        SetStretchBltMode(dest, oldMode);
}
