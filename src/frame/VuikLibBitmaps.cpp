// The bitmap primitives of CVuikLib: blending through a mask, tiling, colour fills, regions, mirroring and icon
// conversion. Stateless: each call has its own contexts, and what it returns belongs to the caller.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "frame/BitmapRegion.h"
#include "frame/Handles.h"
#include "core/PixelMath.h"
#include "zcmod/NBitmapUtil.h"
#include "zcmod/VuikLib.h"

using namespace zcmod;

namespace {

// The image toolkit's header record rule, shared rather than written twice.
struct InfoStructMaker : CNBitmapUtil {
    using CNBitmapUtil::CreateBitmapInfoStruct;
};

struct InfoDeleter {
    void operator()(BITMAPINFO* info) const { free(info); }
};
struct BufferDeleter {
    void operator()(BYTE* buffer) const { free(buffer); }
};

template <class T, class Deleter>
class Owned {
public:
    explicit Owned(T* p = nullptr) : m_p(p) {}
    ~Owned()
    {
        if (m_p)
            Deleter()(m_p);
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    T* Get() const { return m_p; }

private:
    T* m_p;
};
using InfoPtr = Owned<BITMAPINFO, InfoDeleter>;
using BufferPtr = Owned<BYTE, BufferDeleter>;

bool MeasureBitmap(HBITMAP bitmap, BITMAP& bm)
{
    bm = BITMAP();
    return bitmap && GetObjectW(bitmap, sizeof(bm), &bm) != 0;
}

// The desktop window's device context, which every bitmap made here is compatible with.
class DesktopDC : public WindowDC {
public:
    DesktopDC() : WindowDC(GetDesktopWindow()) {}
};

// A bitmap of `size` compatible with the desktop, filled with `colour`; null on failure.
HBITMAP CreateFilledBitmap(HDC desktop, int width, int height, COLORREF colour)
{
    BitmapHandle bitmap(CreateCompatibleBitmap(desktop, width, height));
    if (!bitmap)
        return nullptr;
    BitmapDC dc(desktop, bitmap.Get());
    BrushHandle brush(CreateSolidBrush(colour));
    if (!dc || !brush)
        return nullptr;
    RECT all = {0, 0, width, height};
    FillRect(dc.Get(), &all, brush.Get());
    return bitmap.Release();
}

// Both halves of the mirrors: a compatible copy of `bitmap` flipped left to right through a right-to-left
// context. `flipped` receives it; the result is 1 on success, 0 for a failure, and -1 when the screen
// context can't be had (which MirrorBitmap reports as success, having done nothing).
int MakeMirrored(HBITMAP bitmap, BitmapHandle& flipped, bool copyBack)
{
    BITMAP bm;
    if (!bitmap || GetObjectType(bitmap) != OBJ_BITMAP || !MeasureBitmap(bitmap, bm))
        return 0;
    WindowDC screen(nullptr);
    if (!screen)
        return -1;
    MemoryDC source(CreateCompatibleDC(screen.Get()));
    MemoryDC target(CreateCompatibleDC(screen.Get()));
    if (!source || !target)
        return 0;
    // A monochrome bitmap (an icon's mask) goes through a monochrome copy, so that no colour conversion
    // depends on the contexts' text and background colours.
    BitmapHandle temporary(bm.bmPlanes * bm.bmBitsPixel == 1
                               ? CreateBitmap(bm.bmWidth, bm.bmHeight, 1, 1, nullptr)
                               : CreateCompatibleBitmap(screen.Get(), bm.bmWidth, bm.bmHeight));
    if (!temporary)
        return 0;
    // A bitmap selected into another context can't be selected here: report that rather than a mirror of the
    // context's stock bitmap.
    HGDIOBJ oldSource = SelectObject(source.Get(), bitmap);
    if (!oldSource)
        return 0;
    HGDIOBJ oldTarget = SelectObject(target.Get(), temporary.Get());
    SetLayout(target.Get(), LAYOUT_RTL);
    BitBlt(target.Get(), 0, 0, bm.bmWidth, bm.bmHeight, source.Get(), 0, 0, SRCCOPY);
    SetLayout(target.Get(), 0);
    if (copyBack)
        BitBlt(source.Get(), 0, 0, bm.bmWidth, bm.bmHeight, target.Get(), 0, 0, SRCCOPY);
    SelectObject(target.Get(), oldTarget);
    SelectObject(source.Get(), oldSource);
    flipped = std::move(temporary);
    return 1;
}

// The icon's two bitmaps, deleted on scope exit; Ok() when the icon had a colour bitmap to measure.
class IconParts {
public:
    explicit IconParts(HICON icon)
    {
        ICONINFO info = {};
        if (icon && GetIconInfo(icon, &info)) {
            m_mask.Reset(info.hbmMask);
            m_colour.Reset(info.hbmColor);
        }
        m_ok = m_colour && MeasureBitmap(m_colour.Get(), m_bm);
    }
    bool Ok() const { return m_ok; }
    int Width() const { return m_bm.bmWidth; }
    int Height() const { return m_bm.bmHeight; }

private:
    BitmapHandle m_mask;
    BitmapHandle m_colour;
    BITMAP m_bm = {};
    bool m_ok = false;
};

}  // namespace

void CVuikLib::BlenderFunc(BYTE* mask, BYTE* under, BYTE* image, BYTE* result, DWORD size)
{
    // The mask is the blend's alpha and `under` its background: a mask byte of 0 gives the image, 255 the
    // background, both divided by 256.
    AlphaBlendBytes(image, mask, under, result, size);
}

BITMAPINFO* CVuikLib::CreateBitmapInfoStruct(HBITMAP bitmap)
{
    return InfoStructMaker::CreateBitmapInfoStruct(bitmap);
}

HBITMAP CVuikLib::BlendBitmap(HBITMAP mask, HBITMAP under, HBITMAP image)
{
    DesktopDC desktop;
    InfoPtr info(CreateBitmapInfoStruct(image));
    if (!info.Get())
        return nullptr;
    BITMAPINFOHEADER& header = info.Get()->bmiHeader;
    header.biBitCount = 24;
    const int width = header.biWidth;
    const int height = header.biHeight;
    // Rows are rounded down to a multiple of 4 and given 4 bytes more, so a row that is already a multiple of
    // 4 gets 4 spare bytes; the platform's own stride doesn't change, and the blend runs over all of it.
    const uint64_t rowBytes = 3ull * static_cast<uint64_t>(width);
    const uint64_t bytes64 = (rowBytes - rowBytes % 4 + 4) * static_cast<uint64_t>(height);
    if (bytes64 > UINT32_MAX)
        return nullptr;
    const DWORD bytes = static_cast<DWORD>(bytes64);
    const size_t filled = static_cast<size_t>((rowBytes + 3) / 4 * 4) * static_cast<size_t>(height);

    BitmapHandle result(CreateCompatibleBitmap(desktop.Get(), width, height));
    if (!result)
        return nullptr;
    BufferPtr imageBits(static_cast<BYTE*>(malloc(bytes)));
    BufferPtr maskBits(static_cast<BYTE*>(malloc(bytes)));
    BufferPtr underBits(static_cast<BYTE*>(malloc(bytes)));
    BufferPtr resultBits(static_cast<BYTE*>(malloc(bytes)));
    if (!imageBits.Get() || !maskBits.Get() || !underBits.Get() || !resultBits.Get())
        return nullptr;
    // The spare bytes past the last row are never written by the reads: give the blend defined input there.
    for (BYTE* bits : {imageBits.Get(), maskBits.Get(), underBits.Get()})
        memset(bits + filled, 0, bytes - filled);
    // A failed read drops the new bitmap with the rest (the holder deletes it): nothing has been drawn in it.
    if (!GetDIBits(desktop.Get(), image, 0, height, imageBits.Get(), info.Get(), DIB_RGB_COLORS) ||
        !GetDIBits(desktop.Get(), mask, 0, height, maskBits.Get(), info.Get(), DIB_RGB_COLORS) ||
        !GetDIBits(desktop.Get(), under, 0, height, underBits.Get(), info.Get(), DIB_RGB_COLORS))
        return nullptr;
    BlenderFunc(maskBits.Get(), underBits.Get(), imageBits.Get(), resultBits.Get(), bytes);
    SetDIBits(desktop.Get(), result.Get(), 0, height, resultBits.Get(), info.Get(), DIB_RGB_COLORS);
    return result.Release();
}

HBITMAP CVuikLib::BlendBitmapOffset(HBITMAP mask, HBITMAP under, HBITMAP image, POINT offset)
{
    BITMAP imageBm, underBm;
    if (!MeasureBitmap(image, imageBm) || !MeasureBitmap(under, underBm))
        return nullptr;
    if (static_cast<int64_t>(offset.y) + imageBm.bmHeight > underBm.bmHeight ||
        static_cast<int64_t>(offset.x) + imageBm.bmWidth > underBm.bmWidth)
        return nullptr;
    DesktopDC desktop;
    BitmapHandle part(CreateCompatibleBitmap(desktop.Get(), imageBm.bmWidth, imageBm.bmHeight));
    if (!part)
        return nullptr;
    CopyBitmapPiece(desktop.Get(), part.Get(), 0, 0, imageBm.bmWidth, imageBm.bmHeight, under, offset.x, offset.y);
    return BlendBitmap(mask, part.Get(), image);
}

HBITMAP CVuikLib::BlendBitmapColor(HBITMAP mask, HBITMAP image, DWORD colour)
{
    BITMAP bm;
    if (!MeasureBitmap(image, bm))
        return nullptr;
    DesktopDC desktop;
    BitmapHandle filled(CreateFilledBitmap(desktop.Get(), bm.bmWidth, bm.bmHeight, colour));
    if (!filled)
        return nullptr;
    return BlendBitmap(mask, filled.Get(), image);
}

HBITMAP CVuikLib::TileBitmap(HBITMAP bitmap, const SIZE& size)
{
    DesktopDC desktop;
    // The result exists whatever happens next; a failure returns it as far as it got.
    HBITMAP result = CreateCompatibleBitmap(desktop.Get(), size.cx, size.cy);
    BITMAP bm;
    if (!result || !MeasureBitmap(bitmap, bm))
        return result;
    const int tileWidth = bm.bmWidth < size.cx ? bm.bmWidth : size.cx;
    // The tile's height is compared with the target's *width*: a bitmap shorter than the target is wide keeps
    // its height whatever the target's height, and a taller one is copied once at the target's height.
    const int tileHeight = bm.bmHeight > size.cx ? size.cy : bm.bmHeight;

    BitmapDC source(desktop.Get(), bitmap);
    BitmapDC target(desktop.Get(), result);
    // The first row of tiles, the last one cut at the target's width; at least one copy.
    int x = 0;
    do {
        const int w = size.cx - x < tileWidth ? size.cx - x : tileWidth;
        BitBlt(target.Get(), x, 0, w, tileHeight, source.Get(), 0, 0, SRCCOPY);
        x += tileWidth;
    } while (tileWidth > 0 && x < size.cx);
    const int rowWidth = x < size.cx ? x : size.cx;
    // Then that row, down the target.
    if (tileHeight != size.cy) {
        int y = 0;
        do {
            const int h = size.cy - y < tileHeight ? size.cy - y : tileHeight;
            BitBlt(target.Get(), 0, y, rowWidth, h, target.Get(), 0, 0, SRCCOPY);
            y += tileHeight;
        } while (tileHeight > 0 && y < size.cy);
    }
    return result;
}

HBITMAP CVuikLib::CreateColorBitmap(DWORD colour, SIZE size)
{
    HWND desktopWindow = GetDesktopWindow();
    if (!desktopWindow)
        return nullptr;
    WindowDC desktop(desktopWindow);
    if (!desktop)
        return nullptr;
    HBITMAP bitmap = CreateCompatibleBitmap(desktop.Get(), size.cx, size.cy);
    MemoryDC dc(CreateCompatibleDC(desktop.Get()));
    // Without a bitmap or a context the bitmap comes back as the platform gave it, unfilled.
    if (!bitmap || !dc)
        return bitmap;
    BrushHandle brush(CreateSolidBrush(colour));
    SelectGuard select(dc.Get(), bitmap);
    RECT all = {0, 0, size.cx, size.cy};
    FillRect(dc.Get(), &all, brush.Get());
    return bitmap;
}

HRGN CVuikLib::BitmapToRegion(HBITMAP bitmap, DWORD colour, DWORD tolerance)
{
    BITMAP bm;
    if (!MeasureBitmap(bitmap, bm) || bm.bmWidth < 1 || bm.bmHeight < 1)
        return nullptr;
    const uint64_t bytes = 4ull * static_cast<uint64_t>(bm.bmWidth) * static_cast<uint64_t>(bm.bmHeight);
    if (bytes > UINT32_MAX)
        return nullptr;
    BufferPtr pixels(static_cast<BYTE*>(malloc(static_cast<size_t>(bytes))));
    if (!pixels.Get())
        return nullptr;
    // 32 bits a pixel, top-down (negative height).
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = bm.bmWidth;
    info.bmiHeader.biHeight = -bm.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    WindowDC screen(nullptr);
    if (!GetDIBits(screen.Get(), bitmap, 0, bm.bmHeight, pixels.Get(), &info, DIB_RGB_COLORS))
        return nullptr;
    struct Picture {
        const BYTE* bits;
        int width;
    } picture = {pixels.Get(), bm.bmWidth};
    // Each pixel is tested as it stands in memory: blue in the low byte, red in the third, the fourth as read.
    // A picture wholly of the colour still gives a region, an empty one.
    return RegionFromPixelRuns(
        bm.bmWidth, bm.bmHeight,
        [](const void* p, int x, int y) {
            const auto* pic = static_cast<const Picture*>(p);
            uint32_t pixel;
            memcpy(&pixel, pic->bits + (static_cast<size_t>(y) * pic->width + x) * 4, sizeof(pixel));
            return pixel;
        },
        &picture, colour, tolerance, LastRecord::AlwaysFlush);
}

int CVuikLib::TestColorMatch(DWORD pixel, DWORD colour, DWORD tolerance)
{
    return zcmod::TestColorMatch(pixel, colour, tolerance);
}

HBITMAP CVuikLib::CreateMirroredBitmap(HBITMAP bitmap)
{
    BitmapHandle flipped;
    return MakeMirrored(bitmap, flipped, false) == 1 ? flipped.Release() : nullptr;
}

int CVuikLib::MirrorBitmap(HBITMAP bitmap)
{
    BitmapHandle flipped;
    // Without a screen context nothing is done, and that counts as success.
    return MakeMirrored(bitmap, flipped, true) != 0 ? 1 : 0;
}

HICON CVuikLib::CreateMirroredIcon(HICON icon)
{
    MemoryDC colourDC(CreateCompatibleDC(nullptr));
    MemoryDC maskDC(CreateCompatibleDC(nullptr));
    if (!colourDC || !maskDC)
        return nullptr;
    IconParts parts(icon);
    if (!parts.Ok())
        return nullptr;
    const int w = parts.Width();
    const int h = parts.Height();
    WindowDC screen(nullptr);
    BitmapHandle colour(CreateCompatibleBitmap(screen.Get(), w, h));
    BitmapHandle mask(CreateBitmap(w, h, 1, 1, nullptr));
    if (!colour || !mask)
        return nullptr;
    {
        SelectGuard selectColour(colourDC.Get(), colour.Get());
        SelectGuard selectMask(maskDC.Get(), mask.Get());
        DrawIconEx(colourDC.Get(), 0, 0, icon, w, h, 0, nullptr, DI_IMAGE);
        DrawIconEx(maskDC.Get(), 0, 0, icon, w, h, 0, nullptr, DI_MASK);
    }
    // Image and mask are drawn as they are and then turned round by a blit through a right-to-left context:
    // not every platform mirrors DrawIconEx into such a context, while every one mirrors a blit.
    BitmapHandle flipped;
    if (MakeMirrored(colour.Get(), flipped, true) != 1 || MakeMirrored(mask.Get(), flipped, true) != 1)
        return nullptr;
    ICONINFO info = {};
    info.fIcon = TRUE;
    info.hbmMask = mask.Get();
    info.hbmColor = colour.Get();
    return CreateIconIndirect(&info);
}

HBITMAP CVuikLib::IconToBitmap(HICON icon, UINT flags)
{
    IconParts parts(icon);
    if (!parts.Ok())
        return nullptr;
    WindowDC screen(nullptr);
    BitmapHandle bitmap(CreateCompatibleBitmap(screen.Get(), parts.Width(), parts.Height()));
    MemoryDC dc(CreateCompatibleDC(screen.Get()));
    if (!bitmap || !dc)
        return nullptr;
    SelectGuard select(dc.Get(), bitmap.Get());
    DrawIconEx(dc.Get(), 0, 0, icon, parts.Width(), parts.Height(), 0, nullptr, flags);
    return bitmap.Release();
}
