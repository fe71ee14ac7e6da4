// Animated GIF files into a store: the block walk finds the images, each one is cut out as a one-image GIF,
// decoded by the platform's picture object and composed over the frame before it at the logical-screen size.
#include <ole2.h>
#include <olectl.h>

#include <cstring>

#include "frame/DibSection.h"
#include "frame/Handles.h"
#include "image/NBitmapInternal.h"
#include "image/core/GifStructure.h"
#include "zcmod/NBitmapUtil.h"

using namespace zcmod;

unsigned CNBitmapUtil::GetGIFFileStructure(unsigned char* data, unsigned int size, CGIFFileStruct* info,
                                           unsigned long* background)
{
    if (!data || !info)
        return 0;
    uint32_t colour = 0;
    const unsigned count = WalkGifStructure(data, size, *info, colour, m_nLoopCount);
    if (background)
        *background = colour;
    return count;
}

HBITMAP CNBitmapUtil::LoadGifPicture(void* memory, unsigned long size, BitmapType type)
{
    // The record is large (six arrays of 512 words) and lives for this load only.
    CGIFFileStruct info;
    ClearGifFileStruct(info);
    HGLOBAL block = static_cast<HGLOBAL>(memory);
    auto* data = static_cast<unsigned char*>(block ? GlobalLock(block) : nullptr);
    if (!data)
        return nullptr;
    unsigned long fileBackground = 0;
    const unsigned count = GetGIFFileStructure(data, size, &info, &fileBackground);
    if (count < 2 || !GetBitmapObject(type)) {
        GlobalUnlock(block);
        return nullptr;
    }
    // An animation takes the whole store, from frame 0, whatever was there.
    FreeRecord(GetBitmapObject(type));
    CNBitmap* record = NewRecord();
    SetBitmapObject(type, record);
    HBITMAP first = nullptr;
    if (record) {
        const unsigned long background = m_crGIFBkColor != 0xFFFFFFFF ? m_crGIFBkColor : fileBackground;
        first = LoadGIFFileImages(record, data, size, count, info, background);
    }
    GlobalUnlock(block);
    return first;
}

namespace {

void FillWithColour(HDC dc, const RECT& rect, HBRUSH brush)
{
    if (brush && rect.right > rect.left && rect.bottom > rect.top)
        FillRect(dc, &rect, brush);
}

// A frame in the screen's format: a 32-bit section where the screen has 32 bits a pixel, which is the format
// of a bitmap compatible with it, so that the frame before can be copied in as memory; else a compatible
// bitmap.
HBITMAP ScreenFrame(HDC screen, int width, int height)
{
    if (GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES) == 32) {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        if (HBITMAP section = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0))
            return section;
    }
    return CreateCompatibleBitmap(screen, width, height);
}

// `from` copied whole into `to` when both are sections of one layout, as a BitBlt of all of it would copy it.
bool CopySection(HBITMAP from, HBITMAP to)
{
    SectionPixels source, target;
    if (!GetSectionPixels(from, source) || !GetSectionPixels(to, target) || source.width != target.width ||
        source.height != target.height || source.stride != target.stride ||
        source.bytesPerPixel != target.bytesPerPixel)
        return false;
    memcpy(target.bits, source.bits, static_cast<size_t>(source.stride) * static_cast<size_t>(source.height));
    return true;
}

template <class T>
void ReleaseCom(T*& p)
{
    if (p) {
        p->Release();
        p = nullptr;
    }
}

}  // namespace

HBITMAP CNBitmapUtil::LoadGIFFileImages(CNBitmap* record, unsigned char* data, unsigned int size, unsigned int count,
                                        const CGIFFileStruct& info, unsigned long background)
{
    if (!record || !data)
        return nullptr;
    const int screenWidth = GifScreenWidth(data, size);
    const int screenHeight = GifScreenHeight(data, size);
    const size_t prefix = info.imageOffset[0];
    if (count > kGifMaxImages)
        count = kGifMaxImages;

    WindowDC screen(nullptr);
    MemoryDC canvas(CreateCompatibleDC(screen.Get()));
    MemoryDC previous(CreateCompatibleDC(screen.Get()));
    BrushHandle brush(CreateSolidBrush(static_cast<COLORREF>(background)));
    if (!screen || !canvas || !previous)
        return nullptr;

    RECT previousRect = {0, 0, 0, 0};
    for (unsigned i = 0; i < count; ++i) {
        const size_t frameSize = GifFrameFileSize(size, info, i);
        if (frameSize == 0)
            continue;
        GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, frameSize));
        if (!memory)
            continue;
        GifRect rect;
        bool built = false;
        if (auto* frameFile = static_cast<uint8_t*>(GlobalLock(memory.Get()))) {
            built = BuildGifFrameFile(data, size, info, i, frameFile, frameSize);
            rect = GifFrameRect(frameFile, frameSize, prefix);
            GlobalUnlock(memory.Get());
        }
        const RECT currentRect = {rect.left, rect.top, rect.left + rect.width, rect.top + rect.height};

        IStream* stream = nullptr;
        IPicture* picture = nullptr;
        if (built && SUCCEEDED(CreateStreamOnHGlobal(memory.Get(), FALSE, &stream)) &&
            SUCCEEDED(OleLoadPicture(stream, 0, FALSE, IID_IPicture, reinterpret_cast<void**>(&picture)))) {
            OLE_XSIZE_HIMETRIC himetricWidth = 0;
            OLE_YSIZE_HIMETRIC himetricHeight = 0;
            picture->get_Width(&himetricWidth);
            picture->get_Height(&himetricHeight);
            int stride = 0;
            int bytes = 0;
            BitmapHandle bitmap;
            if (FrameGeometry(screenWidth, screenHeight, stride, bytes))
                bitmap.Reset(ScreenFrame(screen.Get(), screenWidth, screenHeight));
            if (bitmap) {
                {
                    SelectGuard select(canvas.Get(), bitmap.Get());
                    if (i == 0) {
                        const RECT all = {0, 0, screenWidth, screenHeight};
                        FillWithColour(canvas.Get(), all, brush.Get());
                    } else {
                        // The frame before, then the disposal it asked for: 3 counts as 2, and the current
                        // image's own rectangle is filled as well, so that its transparent pixels show the
                        // background and never older content.
                        HBITMAP before = record->m_hBitmap[i - 1];
                        if (before && !CopySection(before, bitmap.Get())) {
                            SelectGuard selectBefore(previous.Get(), before);
                            BitBlt(canvas.Get(), 0, 0, screenWidth, screenHeight, previous.Get(), 0, 0, SRCCOPY);
                        }
                        const uint32_t disposal = info.disposal[i - 1];
                        if (disposal == 2 || disposal == 3) {
                            if (previousRect.right > previousRect.left)
                                FillWithColour(canvas.Get(), previousRect, brush.Get());
                            FillWithColour(canvas.Get(), currentRect, brush.Get());
                        }
                    }
                    picture->Render(canvas.Get(), rect.left, rect.top, rect.width, rect.height, 0, himetricHeight,
                                    himetricWidth, -himetricHeight, nullptr);
                }
                if (record->m_hBitmap[i])
                    DeleteObject(record->m_hBitmap[i]);
                record->m_hBitmap[i] = bitmap.Release();
                if (!record->m_pInfo)
                    AdoptInfo(record, CreateBitmapInfoStruct(record->m_hBitmap[i]));
                record->m_nDelay[i] = static_cast<int>(info.delay[i] * 10);
            }
        }
        ReleaseCom(picture);
        ReleaseCom(stream);
        previousRect = currentRect;
    }
    return record->m_hBitmap[0];
}

int CNBitmapUtil::EncodeSaveGIF(CNBitmap*, const wchar_t*, int)
{
    // There is no GIF writer.
    m_eLastError = ZBU_BAD_FORMAT;
    return 0;
}
