// PNG files and memory blocks into the stores (with the transparency plane of 8-bit RGBA files), the PNG and
// BMP writers, and the JPEG setting that nothing writes with.
#include <cstdio>
#include <cstring>
#include <new>
#include <vector>

#include "frame/Handles.h"
#include "image/NBitmapInternal.h"
#include "image/core/PngCodec.h"
#include "zcmod/NBitmapUtil.h"

using namespace zcmod;

namespace {

const unsigned char kPngSignature[8] = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};

// A frame made before the decode, into whose memory the rows of an 8-bit RGB file are read directly: the
// section is bottom-up, so file row y is its scan line height - 1 - y. This is the frame CreateBitmapFromData
// would make from the decoded pixels, without the pixels' copy in between.
class SectionRows : public PngRowTarget {
public:
    uint8_t* const* Rows(int width, int height) override
    {
        int stride = 0;
        int size = 0;
        if (!FrameGeometry(width, height, stride, size))
            return nullptr;
        void* bits = nullptr;
        m_section.Reset(CreateSection24(width, height, &bits));
        if (!m_section || !bits) {
            m_section.Reset(nullptr);
            return nullptr;
        }
        GdiFlush();
        m_rows.resize(static_cast<size_t>(height));
        for (int y = 0; y < height; ++y)
            m_rows[static_cast<size_t>(y)] = static_cast<uint8_t*>(bits) + static_cast<size_t>(height - 1 - y) * stride;
        m_width = width;
        m_height = height;
        return m_rows.data();
    }

    // The frame, when the rows went into it and it has this geometry; the caller owns it then.
    HBITMAP Take(int width, int height)
    {
        return width == m_width && height == m_height ? m_section.Release() : nullptr;
    }

private:
    BitmapHandle m_section;
    std::vector<uint8_t*> m_rows;
    int m_width = 0;
    int m_height = 0;
};

}  // namespace

HBITMAP CNBitmapUtil::LoadPNGFile(const wchar_t* file, BitmapType type, int index)
{
    FILE* f = file ? _wfopen(file, L"rb") : nullptr;
    if (!f)
        return SetError(ZBU_FILE_OPEN, nullptr);
    unsigned char signature[8] = {};
    if (fread(signature, 1, sizeof(signature), f) != sizeof(signature) ||
        memcmp(signature, kPngSignature, sizeof(signature)) != 0 || fseek(f, 0, SEEK_SET) != 0) {
        fclose(f);
        return nullptr;
    }
    PngImage* image = new (std::nothrow) PngImage;
    HBITMAP frame = nullptr;
    if (image) {
        SectionRows section;
        image->target = &section;
        PngStatus status = PngStatus::LibraryFailed;
        try {
            status = DecodePngFile(f, *image);
        } catch (...) {
            status = PngStatus::LibraryFailed;
        }
        frame = LoadPNG(static_cast<int>(status), image, type, index);
        delete image;
    } else {
        m_eLastError = ZBU_PNG_FAILED;
    }
    fclose(f);
    return frame;
}

HBITMAP CNBitmapUtil::LoadPNGFromMem(unsigned char* data, ULONGLONG size, BitmapType type, int index)
{
    // Not a PNG: no error, so that the caller tries its other route.
    if (!data || size < sizeof(kPngSignature) || memcmp(data, kPngSignature, sizeof(kPngSignature)) != 0)
        return nullptr;
    if (size > static_cast<ULONGLONG>(SIZE_MAX))
        return SetError(ZBU_PNG_FAILED, nullptr);
    PngImage* image = new (std::nothrow) PngImage;
    if (!image)
        return SetError(ZBU_PNG_FAILED, nullptr);
    SectionRows section;
    image->target = &section;
    PngStatus status = PngStatus::LibraryFailed;
    try {
        status = DecodePngMemory(data, static_cast<size_t>(size), *image);
    } catch (...) {
        status = PngStatus::LibraryFailed;
    }
    HBITMAP frame = LoadPNG(static_cast<int>(status), image, type, index);
    delete image;
    return frame;
}

HBITMAP CNBitmapUtil::LoadPNG(int status, PngImage* image, BitmapType type, int index)
{
    switch (static_cast<PngStatus>(status)) {
        case PngStatus::NotPng:
        case PngStatus::NoReadStruct:
            return nullptr;
        case PngStatus::LibraryFailed:
            m_eLastError = ZBU_PNG_FAILED;
            return nullptr;
        case PngStatus::TooShallow:
        case PngStatus::Ok:
            break;
    }
    // The store takes the picture's geometry before its depth is judged.
    CNBitmap* record = PrepareStore(type, image->width, image->height);
    if (static_cast<PngStatus>(status) == PngStatus::TooShallow || image->bytesPerPixel < 1)
        return SetError(ZBU_BAD_FORMAT, nullptr);
    if (!record || !IsFrameIndex(index))
        return nullptr;
    const size_t expected = static_cast<size_t>(image->width) * static_cast<size_t>(image->height) * 3;
    if (image->inTarget && image->target) {
        // The rows are in a frame already: it takes the place CreateBitmapFromData would give a new one.
        auto* rows = dynamic_cast<SectionRows*>(image->target);
        HBITMAP made = rows ? rows->Take(image->width, image->height) : nullptr;
        BITMAPINFO* info = made ? NewInfo24(image->width, image->height) : nullptr;
        if (!info) {
            if (made)
                DeleteObject(made);
            return nullptr;
        }
        if (record->m_hBitmap[index] && record->m_hBitmap[index] != made)
            DeleteObject(record->m_hBitmap[index]);
        record->m_hBitmap[index] = made;
        AdoptInfo(record, info);
        return made;
    }
    if (image->pixels.size() < expected)
        return nullptr;
    HBITMAP frame = nullptr;
    if (CreateBitmapFromData(image->width, image->height, reinterpret_cast<char*>(image->pixels.data()), record, index))
        frame = record->m_hBitmap[index];
    // An 8-bit RGBA image loaded as the image brings its transparency plane along at the same index.
    if (image->bytesPerPixel == 4 && type == BT_IMAGE) {
        if (image->plane.size() < expected ||
            !CreateBitmapFromData(image->width, image->height, reinterpret_cast<char*>(image->plane.data()), BT_ALPHA,
                                  index))
            m_eLastError = ZBU_BAD_FORMAT;
    }
    return frame;
}

int CNBitmapUtil::EncodeSavePNG(char* pixels, CNBitmap* record, const wchar_t* file)
{
    if (!pixels || !record || !record->m_pInfo || !file)
        return 0;
    FILE* f = _wfopen(file, L"wb");
    if (!f)
        return 0;
    const BITMAPINFOHEADER& header = record->m_pInfo->bmiHeader;
    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    bool encoded = false;
    try {
        encoded = EncodePngFile(f, reinterpret_cast<const uint8_t*>(pixels), header.biWidth, height, record->m_nStride);
    } catch (...) {
        encoded = false;
    }
    fclose(f);
    if (!encoded)
        return 0;
    f = _wfopen(file, L"rb");
    if (!f)
        return SetError(ZBU_FILE_OPEN, 0);
    long length = 0;
    if (fseek(f, 0, SEEK_END) == 0)
        length = ftell(f);
    fclose(f);
    return length > 0 ? static_cast<int>(length) : 0;
}

int CNBitmapUtil::EncodeSaveBMP(char* pixels, CNBitmap* record, const wchar_t* file)
{
    if (!pixels || !record || !record->m_pInfo || !file)
        return 0;
    const unsigned size = static_cast<unsigned>(record->m_nSize);
    unsigned char fileHeader[14] = {'B', 'M'};
    const unsigned fileSize = size + 54;
    const unsigned pixelOffset = sizeof(BITMAPINFOHEADER) + 14;
    for (int i = 0; i < 4; ++i) {
        fileHeader[2 + i] = static_cast<unsigned char>(fileSize >> (8 * i));
        fileHeader[10 + i] = static_cast<unsigned char>(pixelOffset >> (8 * i));
    }
    FILE* f = _wfopen(file, L"wb");
    if (!f)
        return SetError(ZBU_WRITE_FAILED, 0);
    size_t written = fwrite(fileHeader, 1, sizeof(fileHeader), f);
    written += fwrite(&record->m_pInfo->bmiHeader, 1, sizeof(BITMAPINFOHEADER), f);
    written += fwrite(pixels, 1, size, f);
    fclose(f);
    if (written != static_cast<size_t>(size) + 54)
        return SetError(ZBU_WRITE_FAILED, 0);
    return static_cast<int>(written);
}

int CNBitmapUtil::EncodeSaveJPEG(char*, CNBitmap*, const wchar_t*)
{
    // JPEG is read by the platform's decoder only; there is no writer.
    m_eLastError = ZBU_BAD_FORMAT;
    return 0;
}

int CNBitmapUtil::SetJPEGCompressionFactor(int factor)
{
    if (static_cast<unsigned>(factor) > 100)
        return SetError(ZBU_BAD_ARG1, -1);
    const int former = m_nJPEGFactor;
    m_nJPEGFactor = factor;
    return former;
}
