#include "zcmod/VuikGraphics.h"

#include "frame/Handles.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikLib.h"

using namespace zcmod;

namespace {

RECT MakeRect(int x, int y, int width, int height)
{
    RECT r = {x, y, x + width, y + height};
    return r;
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
