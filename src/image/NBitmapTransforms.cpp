// The operations of CNBitmapUtil that make new pixels from stored frames: frames from raw pixels, scaling, the
// layered blend with its kept buffers, tiling, colour fills, regions, mirroring, and window transfers.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "frame/BitmapRegion.h"
#include "frame/DibSection.h"
#include "frame/Handles.h"
#include "image/NBitmapInternal.h"
#include "core/PixelMath.h"
#include "zcmod/NBitmapUtil.h"

using namespace zcmod;

namespace {

// The class-wide source and destination descriptions of GetPixel, PutPixel, ResizeDither and
// BitmapToRegion: working variables of one call, which is why those can't run on two threads at once.
PixelView s_source;
PixelView s_destination;

PixelView DescribeStore(const CNBitmapUtil::CNBitmap* record, void* buffer, size_t bytes)
{
    PixelView view;
    if (record && record->m_pInfo) {
        const BITMAPINFOHEADER& header = record->m_pInfo->bmiHeader;
        view.width = header.biWidth;
        view.height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
        view.stride = record->m_nStride;
    }
    view.buffer = static_cast<uint8_t*>(buffer);
    view.size = bytes;
    return view;
}

int HeightOf(const BITMAPINFO* info)
{
    const LONG height = info->bmiHeader.biHeight;
    return height < 0 ? -height : height;
}

// The pixels of `frame` when it is a bottom-up 24-bit section with the geometry of `record`'s header, so that
// its memory is the padded bottom-up layout of the store's transfers; null otherwise.
uint8_t* InPlaceRows(HBITMAP frame, const CNBitmapUtil::CNBitmap* record)
{
    SectionPixels pixels;
    if (!record || !record->m_pInfo || !GetSectionPixels(frame, pixels) || pixels.bytesPerPixel != 3 ||
        pixels.topDown)
        return nullptr;
    const BITMAPINFOHEADER& header = record->m_pInfo->bmiHeader;
    if (pixels.width != header.biWidth || pixels.height != HeightOf(record->m_pInfo) ||
        pixels.stride != record->m_nStride ||
        static_cast<int64_t>(pixels.stride) * pixels.height != record->m_nSize)
        return nullptr;
    return pixels.bits;
}

int SetOf(int set)
{
    return set == 0 ? 0 : 4;
}

}  // namespace

// ---- Frames from pixels and handles -----------------------------------------------------------------------------

int CNBitmapUtil::CreateBitmapFromData(int width, int height, char* data, CNBitmap* record, int index)
{
    // Null data stands for all zero bytes, which a new section already holds (the public form refuses null).
    if (!record || !IsFrameIndex(index))
        return 0;
    BITMAPINFO* info = NewInfo24(width, height);
    if (!info)
        return 0;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap || !bits) {
        if (bitmap)
            DeleteObject(bitmap);
        m_eLastError = ZBU_GDI_FAILED;
        FreeInfo(info);
        return 0;
    }
    // Image row y is scan line height - y - 1 of the section.
    int stride = 0;
    int size = 0;
    FrameGeometry(width, height, stride, size);
    const size_t rowBytes = static_cast<size_t>(width) * 3;
    GdiFlush();
    auto* target = static_cast<unsigned char*>(bits);
    for (int y = 0; data && y < height; ++y)
        memcpy(target + static_cast<size_t>(height - y - 1) * stride, data + rowBytes * y, rowBytes);

    if (record->m_hBitmap[index] && record->m_hBitmap[index] != bitmap)
        DeleteObject(record->m_hBitmap[index]);
    record->m_hBitmap[index] = bitmap;
    AdoptInfo(record, info);
    return 1;
}

int CNBitmapUtil::CreateBitmapFromData(int width, int height, char* data, BitmapType type, int index)
{
    if (width < 1)
        return SetError(ZBU_BAD_ARG1, 0);
    if (height < 1)
        return SetError(ZBU_BAD_ARG2, 0);
    if (!data)
        return SetError(ZBU_BAD_ARG3, 0);
    DeleteBitmap(type, index);
    return CreateBitmapFromData(width, height, data, GetBitmapObject(type), index);
}

int CNBitmapUtil::CreateBitmapFromHandle(HBITMAP source, BitmapType type, int index)
{
    int width = 0;
    int height = 0;
    if (!BitmapSize(source, width, height))
        return 0;
    CNBitmap* record = GetBitmapObject(type);
    if (!record || !IsFrameIndex(index))
        return 0;
    DeleteBitmap(record, index);
    BitmapHandle section(CreateSection24(width, height, nullptr));
    if (!section)
        return 0;
    WindowDC screen(nullptr);
    CopyBitmapPiece(screen.Get(), section.Get(), 0, 0, width, height, source, 0, 0);
    record->m_hBitmap[index] = section.Release();
    AdoptInfo(record, NewInfo24(width, height));
    return 1;
}

HBITMAP CNBitmapUtil::CreateBitmapFromBitmapSection(int x, int y, int width, int height, HBITMAP source)
{
    WindowDC desktop(GetDesktopWindow());
    if (!desktop || !source)
        return nullptr;
    BitmapHandle made(CreateCompatibleBitmap(desktop.Get(), width, height));
    if (!made || !CopyBitmapPiece(desktop.Get(), made.Get(), 0, 0, width, height, source, x, y))
        return nullptr;
    return made.Release();
}

int CNBitmapUtil::Clone(BitmapType from, int fromIndex, BitmapType to, int toIndex)
{
    m_eLastError = ZBU_OK;
    CNBitmap* source = GetBitmapObject(from);
    if (!source || !source->m_pInfo || !FrameOf(source, fromIndex))
        return SetError(ZBU_NO_BITMAP, 0);
    if (from == to && fromIndex == toIndex)
        return SetError(ZBU_OPERATION_FAILED, 0);
    const int width = source->m_pInfo->bmiHeader.biWidth;
    const int height = HeightOf(source->m_pInfo);
    PrepareStore(to, width, height);
    char* pixels = GetBitmapDataNAAlloc(from, fromIndex);
    if (!pixels)
        return SetError(ZBU_NO_STORE, 0);
    const int made = CreateBitmapFromData(width, height, pixels, to, toIndex);
    free(pixels);
    if (made)
        m_eLastError = ZBU_OK;
    return made;
}

// ---- Scaling ----------------------------------------------------------------------------------------------------

int CNBitmapUtil::Resize(BitmapType type, int index, int width, int height, int mode)
{
    if (type < BT_IMAGE || type > BT_RESULT)
        return 0;
    if (width < 1)
        return SetError(ZBU_BAD_ARG2, 0);
    if (height < 1)
        return SetError(ZBU_BAD_ARG3, 0);
    CNBitmap* source = GetBitmapObject(type);
    HBITMAP sourceFrame = FrameOf(source, index);
    if (!sourceFrame || !source->m_pInfo)
        return SetError(ZBU_NO_BITMAP, 0);
    int stride = 0;
    int size = 0;
    if (!FrameGeometry(width, height, stride, size))
        return SetError(ZBU_GDI_FAILED, 0);
    const BitmapType target = static_cast<BitmapType>(type + 4);
    CNBitmap* record = PrepareStore(target, width, height);
    if (!record)
        return 0;

    WindowDC screen(nullptr);
    MemoryDC from(CreateCompatibleDC(screen.Get()));
    MemoryDC to(CreateCompatibleDC(screen.Get()));
    if (!from || !to)
        return SetError(ZBU_GDI_FAILED, 0);
    SelectGuard selectFrom(from.Get(), sourceFrame);
    if (!record->m_hBitmap[index]) {
        // A new frame takes the format of the source.
        HBITMAP made = CreateCompatibleBitmap(from.Get(), width, height);
        if (!made)
            return SetError(ZBU_GDI_FAILED, 0);
        record->m_hBitmap[index] = made;
        if (!record->m_pInfo)
            AdoptInfo(record, CreateBitmapInfoStruct(made));
    }
    bool stretched = false;
    {
        SelectGuard selectTo(to.Get(), record->m_hBitmap[index]);
        if (mode == 1) {
            SetStretchBltMode(to.Get(), HALFTONE);
            SetBrushOrgEx(to.Get(), 0, 0, nullptr);
        } else {
            SetStretchBltMode(to.Get(), COLORONCOLOR);
        }
        stretched = StretchBlt(to.Get(), 0, 0, width, height, from.Get(), 0, 0, source->m_pInfo->bmiHeader.biWidth,
                               HeightOf(source->m_pInfo), SRCCOPY) != FALSE;
    }
    if (!stretched)
        m_eLastError = ZBU_GDI_FAILED;
    return stretched ? 1 : 0;
}

int CNBitmapUtil::ResizeRelative(BitmapType type, int index, int percentWidth, int percentHeight, int mode)
{
    if (percentWidth < 1)
        return SetError(ZBU_BAD_ARG2, 0);
    if (percentHeight < 1)
        return SetError(ZBU_BAD_ARG3, 0);
    const float width = (static_cast<float>(percentWidth) / 100.0f) * static_cast<float>(GetBitmapWidth(type));
    const float height = (static_cast<float>(percentHeight) / 100.0f) * static_cast<float>(GetBitmapHeight(type));
    // Out-of-range products become an invalid size, which Resize refuses.
    const int w = width < static_cast<float>(INT_MAX) ? static_cast<int>(width) : -1;
    const int h = height < static_cast<float>(INT_MAX) ? static_cast<int>(height) : -1;
    return Resize(type, index, w, h, mode);
}

int CNBitmapUtil::ResizeDither(BitmapType type, int index, int srcX, int srcY, int srcWidth, int srcHeight,
                               int dstWidth, int dstHeight, int edgeDivisor, int noiseBase)
{
    if (type < BT_IMAGE || type > BT_RESULT)
        return 0;
    const BitmapType target = static_cast<BitmapType>(type + 4);
    CNBitmap* source = GetBitmapObject(type);
    if (!GetBitmapObject(target) || !FrameOf(source, 0))
        return 0;
    if (!source->m_pInfo || source->m_nSize < 1)
        return SetError(ZBU_NO_BITMAP, 0);

    // The source frame, padded top-down, with ten spare bytes.
    const size_t sourceBytes = static_cast<size_t>(source->m_nSize) + 10;
    auto* sourcePixels = static_cast<char*>(calloc(1, sourceBytes));
    if (!sourcePixels)
        return 0;
    GetBitmapData(type, index, sourcePixels);

    // The destination frame; four spare bytes a row take the 32-bit stores.
    char* destinationPixels = nullptr;
    unsigned char* noise = nullptr;
    do {
        if (dstWidth < 1 || dstHeight < 1) {
            m_eLastError = dstWidth < 1 ? ZBU_BAD_ARG1 : ZBU_BAD_ARG2;
            break;
        }
        const long long rowBytes = static_cast<long long>(dstWidth) * 3 + 4;
        if (rowBytes * dstHeight > INT_MAX)
            break;
        size_t destinationBytes = static_cast<size_t>(rowBytes * dstHeight);
        destinationPixels = static_cast<char*>(calloc(1, destinationBytes));
        // The frame starts as the zero pixels of the buffer, as the public CreateBitmapFromData makes it from
        // them; a new section is all zero already, so they are not copied.
        if (!destinationPixels)
            break;
        DeleteBitmap(target, index);
        if (!CreateBitmapFromData(dstWidth, dstHeight, nullptr, GetBitmapObject(target), index))
            break;
        CNBitmap* destination = GetBitmapObject(target);
        // The destination is described by its store's header, which may be larger than dstW x dstH when the
        // store kept another geometry: the buffer then grows to the store's frame so that every write and the
        // final transfer stay inside it.
        if (destination->m_pInfo && static_cast<size_t>(destination->m_nSize) > destinationBytes) {
            auto* larger = static_cast<char*>(realloc(destinationPixels, static_cast<size_t>(destination->m_nSize)));
            if (!larger)
                break;
            memset(larger + destinationBytes, 0, static_cast<size_t>(destination->m_nSize) - destinationBytes);
            destinationPixels = larger;
            destinationBytes = static_cast<size_t>(destination->m_nSize);
        }
        s_source = DescribeStore(source, sourcePixels, sourceBytes);
        s_destination = DescribeStore(destination, destinationPixels, destinationBytes);
        if (s_destination.width > 0 && s_destination.height > 0)
            WritePixel(s_destination, 0, 0, 0);

        noise = static_cast<unsigned char*>(malloc(kNoiseTableSize));
        if (!noise)
            break;
        FillNoiseTable(noise, rand);
        ResizeDitherPixels(s_source, s_destination, srcX, srcY, srcWidth, srcHeight, dstWidth, dstHeight, edgeDivisor,
                           noiseBase, noise);
        SetBitmapData(target, index, destinationPixels);
    } while (false);

    free(noise);
    free(destinationPixels);
    free(sourcePixels);
    s_source = PixelView();
    s_destination = PixelView();
    return 0;
}

// ---- The blend --------------------------------------------------------------------------------------------------

void CNBitmapUtil::DeleteAlphaBlendBuffers()
{
    free(m_pBlendImage);
    free(m_pBlendAlpha);
    free(m_pBlendBackground);
    free(m_pBlendResult);
    m_pBlendImage = m_pBlendAlpha = m_pBlendBackground = m_pBlendResult = nullptr;
    m_nBlendBytes = 0;
    m_nBlendFrame = -1;
    m_nBlendRows = 0;
    m_nBlendSet = 0;
}

void CNBitmapUtil::AlphaBlendFunction(unsigned char* image, unsigned char* alpha, unsigned char* background,
                                      unsigned char* result, int count)
{
    if (!image) {
        m_eLastError = ZBU_BAD_ARG1;
        return;
    }
    if (!alpha) {
        m_eLastError = ZBU_BAD_ARG2;
        return;
    }
    if (!background) {
        m_eLastError = ZBU_BAD_ARG3;
        return;
    }
    if (!result) {
        m_eLastError = ZBU_BAD_ARG4;
        return;
    }
    if (count > 0)
        AlphaBlendBytes(image, alpha, background, result, static_cast<size_t>(count));
}

int CNBitmapUtil::AlphaBlendBitmaps(int mode, int set, int index)
{
    if (m_nBlendSet != set) {
        DeleteAlphaBlendBuffers();
        m_nBlendSet = set;
    }
    int result = -1;
    const int base = SetOf(set);
    CNBitmap* image = m_pStore[base];
    CNBitmap* alpha = m_pStore[base + 1];
    CNBitmap* background = m_pStore[base + 2];

    if (mode != 1) {
        do {
            HBITMAP imageFrame = FrameOf(image, index);
            HBITMAP alphaFrame = FrameOf(alpha, index);
            HBITMAP backgroundFrame = FrameOf(background, index);
            // Missing image or transparency frames are reported and blended as they read.
            if (!imageFrame)
                m_eLastError = ZBU_NO_IMAGE_FRAME;
            if (!alphaFrame)
                m_eLastError = ZBU_NO_ALPHA_FRAME;
            if (!backgroundFrame) {
                m_eLastError = ZBU_NO_BACKGROUND_FRAME;
                break;
            }
            if (!image || !alpha || !image->m_pInfo || image->m_nSize < 1 || image->m_nSize != alpha->m_nSize ||
                image->m_nSize != background->m_nSize || !alpha->m_pInfo || !background->m_pInfo)
                break;

            const int rows = HeightOf(image->m_pInfo);
            const size_t bytes = static_cast<size_t>(image->m_nStride % 16) * static_cast<size_t>(rows) + 16 +
                                 static_cast<size_t>(image->m_nSize);
            bool fresh = false;
            if (m_pBlendImage && m_nBlendBytes != bytes) {
                // The stores changed geometry since the buffers were made.
                const int keepSet = m_nBlendSet;
                DeleteAlphaBlendBuffers();
                m_nBlendSet = keepSet;
            }
            if (!m_pBlendImage) {
                fresh = true;
                m_nBlendRows = rows;
                m_pBlendImage = static_cast<unsigned char*>(calloc(1, bytes));
                m_pBlendAlpha = static_cast<unsigned char*>(calloc(1, bytes));
                m_pBlendBackground = static_cast<unsigned char*>(calloc(1, bytes));
                m_pBlendResult = static_cast<unsigned char*>(calloc(1, bytes));
                m_nBlendBytes = bytes;
                if (!m_pBlendImage || !m_pBlendAlpha || !m_pBlendBackground || !m_pBlendResult) {
                    const int keepSet = m_nBlendSet;
                    DeleteAlphaBlendBuffers();
                    m_nBlendSet = keepSet;
                    break;
                }
            }

            CNBitmap* resultStore = m_pStore[base + 3];
            if (!resultStore)
                break;
            if (resultStore->m_nSize != image->m_nSize) {
                FreeRecord(resultStore);
                resultStore = NewRecord();
                m_pStore[base + 3] = resultStore;
                if (!resultStore)
                    break;
            }
            if (!FrameOf(resultStore, index)) {
                // A 24-bit section like the image's frames, so that the blend can write it in place.
                void* bits = nullptr;
                HBITMAP made = CreateSection24(image->m_pInfo->bmiHeader.biWidth, rows, &bits);
                if (!made)
                    break;
                resultStore->m_hBitmap[index] = made;
                if (!resultStore->m_pInfo) {
                    resultStore->m_pInfo = CopyInfo(image->m_pInfo);
                    resultStore->m_nStride = image->m_nStride;
                    resultStore->m_nSize = image->m_nSize;
                }
            }
            if (!resultStore->m_pInfo)
                break;

            // Repeated blends of one frame read only the background again.
            if (index != m_nBlendFrame || fresh) {
                ReadRows(imageFrame, image->m_pInfo, 0, rows, m_pBlendImage, false);
                ReadRows(alphaFrame, alpha->m_pInfo, 0, HeightOf(alpha->m_pInfo), m_pBlendAlpha, false);
            }
            // Where background and result are sections laid out as the buffers are, the blend reads the one and
            // writes the other in place: one pass over the pixels and no transfer. The kept buffers then hold
            // the image and the transparency only.
            const size_t bytesToBlend = static_cast<size_t>(image->m_nSize);
            uint8_t* backgroundBits = InPlaceRows(backgroundFrame, image);
            uint8_t* resultBits = InPlaceRows(resultStore->m_hBitmap[index], image);
            if (backgroundBits && resultBits && HeightOf(resultStore->m_pInfo) == rows) {
                AlphaBlendBytes(m_pBlendImage, m_pBlendAlpha, backgroundBits, resultBits, bytesToBlend);
                result = rows;
                break;
            }
            ReadRows(backgroundFrame, background->m_pInfo, 0, HeightOf(background->m_pInfo), m_pBlendBackground, false);
            AlphaBlendBytes(m_pBlendImage, m_pBlendAlpha, m_pBlendBackground, m_pBlendResult, bytesToBlend);
            result = WriteRows(resultStore->m_hBitmap[index], resultStore->m_pInfo, 0, HeightOf(resultStore->m_pInfo),
                               m_pBlendResult, false);
        } while (false);
        if (mode == 0) {
            m_nBlendFrame = index;
            return result;
        }
    }
    DeleteAlphaBlendBuffers();
    m_nBlendFrame = index;
    return result;
}

int CNBitmapUtil::AlphaBlendBitmapsBGPos(int mode, int x, int y, int set, int index)
{
    if (x < 0)
        return SetError(ZBU_BAD_ARG2, -1);
    if (y < 0)
        return SetError(ZBU_BAD_ARG3, -1);
    const int base = SetOf(set);
    CNBitmap* image = m_pStore[base];
    CNBitmap* background = m_pStore[base + 2];
    if (!image || !image->m_pInfo || !background || !background->m_pInfo)
        return SetError(ZBU_NO_BITMAP, -1);
    if (image->m_nStride > background->m_nStride || image->m_nSize > background->m_nSize)
        return AlphaBlendBitmaps(mode, set, index);

    // A background of the image's size, cut from the larger one at (x, y), stands in for the store.
    CNBitmap* piece = NewRecord();
    if (!piece)
        return -1;
    piece->m_pInfo = CopyInfo(image->m_pInfo);
    piece->m_nStride = image->m_nStride;
    piece->m_nSize = image->m_nSize;
    HBITMAP backgroundFrame = FrameOf(background, index);
    if (piece->m_pInfo && backgroundFrame) {
        const int width = image->m_pInfo->bmiHeader.biWidth;
        const int height = HeightOf(image->m_pInfo);
        WindowDC screen(nullptr);
        HBITMAP made = CreateCompatibleBitmap(screen.Get(), width, height);
        if (made)
            CopyBitmapPiece(screen.Get(), made, 0, 0, width, height, backgroundFrame, x, y);
        if (made && IsFrameIndex(index))
            piece->m_hBitmap[index] = made;
        else if (made)
            DeleteObject(made);
    }
    m_pStore[base + 2] = piece;
    const int result = AlphaBlendBitmaps(mode, set, index);
    m_pStore[base + 2] = background;
    FreeRecord(piece);
    return result;
}

// ---- Tiles, fills, regions, mirrors -----------------------------------------------------------------------------

int CNBitmapUtil::CreateTiledBitmap(int width, int height, BitmapType type, int index)
{
    if (width < 1)
        return SetError(ZBU_BAD_ARG1, 0);
    if (height < 1)
        return SetError(ZBU_BAD_ARG2, 0);
    CNBitmap* source = GetBitmapObject(type);
    HBITMAP tile = FrameOf(source, index);
    if (!tile || !source->m_pInfo)
        return SetError(ZBU_NO_BITMAP, 0);
    const int tileWidth = source->m_pInfo->bmiHeader.biWidth;
    const int tileHeight = HeightOf(source->m_pInfo);
    DeleteBitmap(BT_RESULT, index);
    CNBitmap* record = PrepareStore(BT_RESULT, width, height);
    int stride = 0;
    int size = 0;
    if (!record || tileWidth < 1 || tileHeight < 1 || !FrameGeometry(width, height, stride, size))
        return SetError(ZBU_GDI_FAILED, 0);
    WindowDC screen(nullptr);
    BitmapHandle made(CreateCompatibleBitmap(screen.Get(), width, height));
    MemoryDC from(CreateCompatibleDC(screen.Get()));
    MemoryDC to(CreateCompatibleDC(screen.Get()));
    if (!made || !from || !to)
        return SetError(ZBU_GDI_FAILED, 0);
    bool copied = false;
    {
        SelectGuard selectFrom(from.Get(), tile);
        SelectGuard selectTo(to.Get(), made.Get());
        // The tile at the origin, then the covered area doubled along each axis: the same pixels as a copy
        // of the tile at every multiple of its size, in a number of copies that grows with the logarithm.
        copied = BitBlt(to.Get(), 0, 0, tileWidth, tileHeight, from.Get(), 0, 0, SRCCOPY) != FALSE;
        if (copied) {
            for (long long covered = tileWidth; covered < width; covered *= 2)
                BitBlt(to.Get(), static_cast<int>(covered), 0, static_cast<int>(covered), tileHeight, to.Get(), 0, 0,
                       SRCCOPY);
            for (long long covered = tileHeight; covered < height; covered *= 2)
                BitBlt(to.Get(), 0, static_cast<int>(covered), width, static_cast<int>(covered), to.Get(), 0, 0,
                       SRCCOPY);
        }
    }
    if (!copied)
        return SetError(ZBU_GDI_FAILED, 0);
    record->m_hBitmap[index] = made.Release();
    if (!record->m_pInfo)
        AdoptInfo(record, CreateBitmapInfoStruct(record->m_hBitmap[index]));
    return 1;
}

int CNBitmapUtil::CreateColorBackground(unsigned long color, int set, int index)
{
    const int base = SetOf(set);
    CNBitmap* image = m_pStore[base];
    if (!FrameOf(image, index) || !image->m_pInfo)
        return SetError(ZBU_NO_BITMAP, 0);
    const int width = image->m_pInfo->bmiHeader.biWidth;
    const int height = HeightOf(image->m_pInfo);
    if (width < 1 || height < 1)
        return SetError(ZBU_OPERATION_FAILED, 0);
    CNBitmap* background = m_pStore[base + 2];
    if (!background)
        return 0;
    DeleteBitmap(background, index);
    WindowDC screen(nullptr);
    HBITMAP made = CreateCompatibleBitmap(screen.Get(), width, height);
    if (!made)
        return 0;
    background->m_hBitmap[index] = made;
    // The header is made anew from this frame, also when other frames of the store still use the old one.
    FreeInfo(background->m_pInfo);
    background->m_pInfo = nullptr;
    AdoptInfo(background, CreateBitmapInfoStruct(made));

    MemoryDC dc(CreateCompatibleDC(screen.Get()));
    BrushHandle brush(CreateSolidBrush(static_cast<COLORREF>(color)));
    if (!dc || !brush)
        return 0;
    SelectGuard select(dc.Get(), made);
    RECT all = {0, 0, width, height};
    return FillRect(dc.Get(), &all, brush.Get());
}

HRGN CNBitmapUtil::BitmapToRegion(BitmapType type, int index, unsigned long color, unsigned long tolerance)
{
    const int width = GetBitmapWidth(type);
    const int height = GetBitmapHeight(type);
    char* pixels = width > 0 && height > 0 ? GetBitmapDataAlloc(type, index) : nullptr;
    if (!pixels)
        return nullptr;
    CNBitmap* record = GetBitmapObject(type);
    s_source = DescribeStore(record, pixels, static_cast<size_t>(record->m_nSize));
    // The padded top-down pixels through the class-wide source description; a picture wholly of the colour
    // gives no region at all.
    HRGN region = RegionFromPixelRuns(
        width, height,
        [](const void* view, int x, int y) { return ReadPixel(*static_cast<const PixelView*>(view), x, y); }, &s_source,
        static_cast<uint32_t>(color), static_cast<uint32_t>(tolerance), LastRecord::SkipIfEmpty);
    s_source = PixelView();
    free(pixels);
    return region;
}

int CNBitmapUtil::MirrorSection(BitmapType type, int index, int x, int y, int width, int height, int flipX, int flipY)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record)
        return 0;
    HBITMAP frame = FrameOf(record, index);
    if (!frame)
        return 0;
    BitmapHandle section(CreateSection24(width, height, nullptr));
    if (!section)
        return 0;
    WindowDC screen(nullptr);
    MemoryDC frameDC(CreateCompatibleDC(screen.Get()));
    MemoryDC sectionDC(CreateCompatibleDC(screen.Get()));
    if (!frameDC || !sectionDC)
        return 0;
    SelectGuard selectFrame(frameDC.Get(), frame);
    SelectGuard selectSection(sectionDC.Get(), section.Get());
    const BOOL stretched =
        StretchBlt(sectionDC.Get(), (width - 1) * flipX, (height - 1) * flipY, flipX == 1 ? -width : width,
                   flipY == 1 ? -height : height, frameDC.Get(), x, y, width, height, SRCCOPY);
    const BOOL copied = stretched && BitBlt(frameDC.Get(), x, y, width, height, sectionDC.Get(), 0, 0, SRCCOPY);
    return stretched && copied ? 1 : 0;
}

// ---- Windows ----------------------------------------------------------------------------------------------------

HBITMAP CNBitmapUtil::GetBackgroundStatic(HWND window, int x, int y, int width, int height, int set, int index)
{
    if (width < 1)
        return SetError(ZBU_BAD_ARG4, nullptr);
    if (height < 1)
        return SetError(ZBU_BAD_ARG5, nullptr);
    const BitmapType target = static_cast<BitmapType>(SetOf(set) + 2);
    if (!IsFrameIndex(index))
        return nullptr;
    CNBitmap* record = PrepareStore(target, width, height);
    if (!record)
        return nullptr;
    WindowDC windowDC(window);
    if (!windowDC)
        return nullptr;
    if (!record->m_hBitmap[index]) {
        HBITMAP made = CreateCompatibleBitmap(windowDC.Get(), width, height);
        if (!made)
            return nullptr;
        record->m_hBitmap[index] = made;
    }
    if (!record->m_pInfo)
        AdoptInfo(record, CreateBitmapInfoStruct(record->m_hBitmap[index]));
    MemoryDC dc(CreateCompatibleDC(windowDC.Get()));
    if (dc) {
        SelectGuard select(dc.Get(), record->m_hBitmap[index]);
        BitBlt(dc.Get(), 0, 0, width, height, windowDC.Get(), x, y, SRCCOPY);
    }
    return record->m_hBitmap[index];
}

namespace {

// The checks that SetBitmapStatic and SetBitmapStaticAlpha share, in their order.
ZBUError CheckStaticArgs(int x, int y, int width, int height, int srcX, int srcY, HBITMAP frame)
{
    if (x < 0)
        return ZBU_BAD_ARG2;
    if (y < 0)
        return ZBU_BAD_ARG3;
    if (width < 1)
        return ZBU_BAD_ARG4;
    if (height < 1)
        return ZBU_BAD_ARG5;
    if (srcX < 0)
        return ZBU_BAD_ARG7;
    if (srcY < 0)
        return ZBU_BAD_ARG8;
    if (!frame)
        return ZBU_NO_FRAME;
    return ZBU_OK;
}

}  // namespace

int CNBitmapUtil::SetBitmapStatic(HWND window, int x, int y, int width, int height, BitmapType type, int index,
                                  int srcX, int srcY)
{
    HBITMAP frame = GetBitmapHandle(type, index);
    const ZBUError error = CheckStaticArgs(x, y, width, height, srcX, srcY, frame);
    if (error != ZBU_OK) {
        m_eLastError = error;
        return 0;
    }
    WindowDC windowDC(window);
    MemoryDC dc(CreateCompatibleDC(windowDC.Get()));
    if (!windowDC || !dc)
        return 0;
    SelectGuard select(dc.Get(), frame);
    return BitBlt(windowDC.Get(), x, y, width, height, dc.Get(), srcX, srcY, SRCCOPY) ? 1 : 0;
}

int CNBitmapUtil::SetBitmapStaticAlpha(HWND window, int x, int y, int width, int height, BitmapType type, int index,
                                       int srcX, int srcY, int alpha)
{
    HBITMAP frame = GetBitmapHandle(type, index);
    const ZBUError error = CheckStaticArgs(x, y, width, height, srcX, srcY, frame);
    if (error != ZBU_OK) {
        m_eLastError = error;
        return 0;
    }
    WindowDC windowDC(window);
    MemoryDC dc(CreateCompatibleDC(windowDC.Get()));
    if (!windowDC || !dc)
        return 0;
    SelectGuard select(dc.Get(), frame);
    BLENDFUNCTION blend = {AC_SRC_OVER, 0, static_cast<BYTE>(alpha & 0xFF), 0};
    if (!AlphaBlend(windowDC.Get(), x, y, width, height, dc.Get(), srcX, srcY, width, height, blend))
        return SetError(ZBU_OPERATION_FAILED, 0);
    return 1;
}

// ---- Pixel helpers ----------------------------------------------------------------------------------------------

unsigned long CNBitmapUtil::MixColors(unsigned long a, unsigned long b, int percent)
{
    return zcmod::MixColors(static_cast<uint32_t>(a), static_cast<uint32_t>(b), percent);
}

unsigned long CNBitmapUtil::FadeColor(unsigned long color, int factor)
{
    return zcmod::FadeColor(static_cast<uint32_t>(color), factor);
}

int CNBitmapUtil::Random(int n)
{
    if (n <= 0)
        return 0;
    const int divisor = 32767 / n;
    return divisor > 0 ? rand() / divisor : rand();
}

unsigned long CNBitmapUtil::GetPixel(int x, int y, char* buffer, int width, int height)
{
    if (buffer) {
        s_source.buffer = reinterpret_cast<uint8_t*>(buffer);
        s_source.width = width;
        s_source.height = height;
        s_source.stride = width > 0 ? ((width * 3 + 3) / 4) * 4 : 0;
        s_source.size = static_cast<size_t>(s_source.stride) * static_cast<size_t>(height > 0 ? height : 0);
    }
    return ReadPixel(s_source, x, y);
}

int CNBitmapUtil::PutPixel(int x, int y, unsigned long color, char* buffer, int width, int height)
{
    if (buffer) {
        s_destination.buffer = reinterpret_cast<uint8_t*>(buffer);
        s_destination.width = width;
        s_destination.height = height;
        s_destination.stride = width > 0 ? ((width * 3 + 3) / 4) * 4 : 0;
        s_destination.size = static_cast<size_t>(s_destination.stride) * static_cast<size_t>(height > 0 ? height : 0);
    }
    return WritePixel(s_destination, x, y, static_cast<uint32_t>(color));
}

int CNBitmapUtil::GetColorDifRatio(unsigned long a, unsigned long b)
{
    return zcmod::GetColorDifRatio(static_cast<uint32_t>(a), static_cast<uint32_t>(b));
}

int CNBitmapUtil::TestColorMatch(unsigned long pixel, unsigned long color, unsigned long tolerance)
{
    return zcmod::TestColorMatch(static_cast<uint32_t>(pixel), static_cast<uint32_t>(color),
                                 static_cast<uint32_t>(tolerance));
}
