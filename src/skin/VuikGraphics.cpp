#include "zcmod/VuikGraphics.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

#include "core/PixelMath.h"
#include "frame/DibSection.h"
#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikLib.h"

using namespace zcmod;

namespace {

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

// Bits a pixel of a bitmap, 0 if it can't be measured.
int BitmapDepth(HBITMAP bitmap)
{
    BITMAP bm = {};
    return bitmap && GetObjectW(bitmap, sizeof(bm), &bm) ? bm.bmBitsPixel * bm.bmPlanes : 0;
}

// Whether the first row of the section `dc` draws on is the top row. The description of a section does not
// say (its height is positive either way), so ask the context: mark the first byte of the first row in memory
// so that it differs from the last row's, read the pixel at the device's origin, and put the byte back.
// False with `known` false when the context can't tell.
bool FirstRowIsTop(HDC dc, const SectionPixels& target, bool& known)
{
    known = true;
    if (target.height < 2)
        return true;
    uint8_t* first = target.bits;
    const uint8_t* last = target.bits + static_cast<ptrdiff_t>(target.stride) * (target.height - 1);
    const uint8_t saved = first[0];
    const uint8_t mark = static_cast<uint8_t>(~last[0]);
    first[0] = mark;
    POINT origin = {0, 0};
    DPtoLP(dc, &origin, 1);
    const COLORREF seen = GetPixel(dc, origin.x, origin.y);
    first[0] = saved;
    known = seen != CLR_INVALID;
    return known && GetBValue(seen) == mark;
}

// The section that `dc` draws on, when drawing there is a plain copy to its memory: a memory context without a
// clip region, mirroring or transform, whose logical rectangle `dest` lies inside the bitmap. `x` and `y` get
// the rectangle's place in the bitmap.
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
    if (x < 0 || y < 0 || corners[1].x > target.width || corners[1].y > target.height)
        return false;
    bool known = false;
    target.topDown = FirstRowIsTop(dc, target, known);
    return known;
}

// Image, mask and background of one masked draw, one above the other in a 24-bit top-down section of w x 3h,
// selected into a context of its own; `bits` receives its rows.
struct Scratch {
    BitmapHandle bitmap;
    MemoryDC dc;
    uint8_t* bits = nullptr;
    HGDIOBJ old = nullptr;

    Scratch(HDC reference, int w, int h)
    {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), w, -3 * h, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
        void* memory = nullptr;
        bitmap.Reset(CreateDIBSection(reference, &info, DIB_RGB_COLORS, &memory, nullptr, 0));
        dc.Reset(CreateCompatibleDC(reference));
        bits = static_cast<uint8_t*>(memory);
        if (bitmap && dc)
            old = SelectObject(dc.Get(), bitmap.Get());
    }
    ~Scratch()
    {
        if (old)
            SelectObject(dc.Get(), old);
    }
    bool Ok() const { return bits && old; }
};

// `source` of a picture that is a section, its rows in place, when `from` (a spare memory context) tells
// which way up they lie.
bool TakeRows(HDC from, HBITMAP picture, const RECT& source, SectionPixels& rows)
{
    if (!GetSectionPixels(picture, rows) || source.left < 0 || source.top < 0 || source.right > rows.width ||
        source.bottom > rows.height)
        return false;
    HGDIOBJ old = SelectObject(from, picture);
    if (!old)
        return false;
    bool known = false;
    rows.topDown = FirstRowIsTop(from, rows, known);
    SelectObject(from, old);
    return known;
}

// A row of `width` pixels of `bytes` bytes each, as blue, green, red: in place for 3, else copied to `row`.
const uint8_t* Row24(const uint8_t* pixels, int bytes, int width, std::vector<uint8_t>& row)
{
    if (bytes == 3)
        return pixels;
    row.resize(3 * static_cast<size_t>(width));
    for (int i = 0; i < width; ++i)
        memcpy(&row[3 * static_cast<size_t>(i)], pixels + 4 * static_cast<size_t>(i), 3);
    return row.data();
}

// The blend of w x h pixels of `image` and `mask` from (left, top) into `target` at (x, y), row by row, each of
// them read and written where it lies. A 32-bit target gets 0 in its fourth bytes, as a 24-bit copy onto it
// gives.
void BlendRows(const SectionPixels& image, const SectionPixels& mask, int left, int top, const SectionPixels& target,
               int x, int y, int w, int h)
{
    const bool allFour = image.bytesPerPixel == 4 && mask.bytesPerPixel == 4 && target.bytesPerPixel == 4;
    std::vector<uint8_t> imageRow, maskRow, under;
    for (int row = 0; row < h; ++row) {
        const uint8_t* in = image.Row(top + row) + static_cast<ptrdiff_t>(left) * image.bytesPerPixel;
        const uint8_t* weights = mask.Row(top + row) + static_cast<ptrdiff_t>(left) * mask.bytesPerPixel;
        uint8_t* out = target.Row(y + row) + static_cast<ptrdiff_t>(x) * target.bytesPerPixel;
        if (allFour) {
            // The fourth bytes blend too, and are then set to 0.
            AlphaBlendBytes(in, weights, out, out, 4 * static_cast<size_t>(w));
            for (int i = 0; i < w; ++i)
                out[4 * i + 3] = 0;
            continue;
        }
        const uint8_t* in24 = Row24(in, image.bytesPerPixel, w, imageRow);
        const uint8_t* weights24 = Row24(weights, mask.bytesPerPixel, w, maskRow);
        if (target.bytesPerPixel == 3) {
            AlphaBlendBytes(in24, weights24, out, out, 3 * static_cast<size_t>(w));
            continue;
        }
        const uint8_t* under24 = Row24(out, 4, w, under);
        AlphaBlendBytes(in24, weights24, under24, under.data(), 3 * static_cast<size_t>(w));
        for (int i = 0; i < w; ++i) {
            memcpy(out + 4 * i, &under[3 * static_cast<size_t>(i)], 3);
            out[4 * i + 3] = 0;
        }
    }
}

// A masked picture drawn without a stretch, with the blend reading and writing memory directly: the same bytes
// as the copies, read-back, BlendBitmap and write of the long way. Where picture, mask and target are sections
// that can be reached directly (see DrawsStraightOn) nothing is copied; otherwise the parts, and the target's
// pixels unless it is such a section, go through one 24-bit section. False when the long way has to do it: a
// stretch, a mirrored context, a picture, mask or target of fewer than 24 bits.
bool DrawMaskedDirect(HDC hdc, CVuikBitmap* bitmap, const RECT& dest, const RECT& source)
{
    const int w = dest.right - dest.left;
    const int h = dest.bottom - dest.top;
    if (w < 1 || h < 1 || w != source.right - source.left || h != source.bottom - source.top ||
        static_cast<int64_t>(h) * 3 > INT_MAX / 4 / (w > 0 ? w : 1) || GetLayout(hdc) != 0 || TargetDepth(hdc) < 24 ||
        BitmapDepth(bitmap->GetPrimary()) < 24 || BitmapDepth(bitmap->GetMask()) < 24)
        return false;
    MemoryDC from(CreateCompatibleDC(hdc));
    if (!from)
        return false;
    SectionPixels target, image, mask;
    int x = 0, y = 0;
    const bool straight = DrawsStraightOn(hdc, dest, target, x, y);
    if (straight && TakeRows(from.Get(), bitmap->GetPrimary(), source, image) &&
        TakeRows(from.Get(), bitmap->GetMask(), source, mask)) {
        BlendRows(image, mask, source.left, source.top, target, x, y, w, h);
        return true;
    }

    Scratch scratch(hdc, w, h);
    if (!scratch.Ok())
        return false;
    // The two parts, as CopyBitmapPart copies them without a stretch.
    HGDIOBJ old = SelectObject(from.Get(), bitmap->GetPrimary());
    if (!old)
        return false;
    BitBlt(scratch.dc.Get(), 0, 0, w, h, from.Get(), source.left, source.top, SRCCOPY);
    const bool maskSelected = SelectObject(from.Get(), bitmap->GetMask()) != nullptr;
    if (maskSelected)
        BitBlt(scratch.dc.Get(), 0, h, w, h, from.Get(), source.left, source.top, SRCCOPY);
    SelectObject(from.Get(), old);
    if (!maskSelected)
        return false;
    const int stride = (3 * w + 3) / 4 * 4;
    const size_t part = static_cast<size_t>(stride) * static_cast<size_t>(h);
    if (straight) {
        GdiFlush();
        const SectionPixels imagePart = {scratch.bits, w, h, stride, 3, true};
        const SectionPixels maskPart = {scratch.bits + part, w, h, stride, 3, true};
        BlendRows(imagePart, maskPart, 0, 0, target, x, y, w, h);
        return true;
    }
    // Anything else: read back what the context shows, blend there, and copy the result back.
    BitBlt(scratch.dc.Get(), 0, 2 * h, w, h, hdc, dest.left, dest.top, SRCCOPY);
    GdiFlush();
    uint8_t* background = scratch.bits + 2 * part;
    AlphaBlendBytes(scratch.bits, scratch.bits + part, background, background, part);
    BitBlt(hdc, dest.left, dest.top, w, h, scratch.dc.Get(), 0, 2 * h, SRCCOPY);
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
    if (bitmap->GetMask() && DrawMaskedDirect(m_hDC, bitmap, dest, source))
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
