#include "image/core/PngCodec.h"

#include <png.h>

#include <cstdlib>
#include <cstring>

namespace zcmod {

namespace {

// Larger images are refused by the library before it allocates their rows.
constexpr png_uint_32 kMaxDimension = 16384;
// Deflate cannot expand a byte into more than about 1,032 bytes: an image whose pixel data could not fit in
// the input even at that ratio is bound to run out of data, so it is refused before its rows are allocated.
constexpr uint64_t kMaxInflateRatio = 1100;
constexpr uint64_t kInflateSlack = 65536;

// The memory reader's state: the block and the current position, which starts behind the signature.
struct MemoryReader {
    const uint8_t* data;
    size_t size;
    size_t pos;
};

void ReadFromMemory(png_structp png, png_bytep out, size_t count)
{
    MemoryReader* reader = static_cast<MemoryReader*>(png_get_io_ptr(png));
    if (!reader || count > reader->size - reader->pos)
        png_error(png, "read past the end of the PNG data");
    std::memcpy(out, reader->data + reader->pos, count);
    reader->pos += count;
}

uint32_t Be32(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 | static_cast<uint32_t>(p[2]) << 8 |
           static_cast<uint32_t>(p[3]);
}

// True when the header chunk, read from the first bytes of the file, asks for more pixel data than `total`
// bytes of file could ever inflate to. `head` holds the first `headSize` bytes (signature included).
bool HeaderAsksTooMuch(const uint8_t* head, size_t headSize, uint64_t total)
{
    if (headSize < 26 || std::memcmp(head + 12, "IHDR", 4) != 0)
        return false;  // the library will reject it on its own
    const uint64_t width = Be32(head + 16);
    const uint64_t height = Be32(head + 20);
    if (width > kMaxDimension || height > kMaxDimension)
        return false;  // the user limits refuse it
    // Samples per pixel by colour type: RGB 3, grey with alpha 2, RGBA 4, grey and palette 1.
    const uint8_t colorType = head[25];
    const uint64_t samples = colorType == 2 ? 3 : colorType == 4 ? 2 : colorType == 6 ? 4 : 1;
    const uint64_t bitDepth = head[24];
    const uint64_t rowBytes = (width * samples * bitDepth + 7) / 8;
    return rowBytes * height > total * kMaxInflateRatio + kInflateSlack;
}

// Converts the rows that the library read, by bytes per pixel; see PngImage. Pixels and plane are sized here.
// `bgr`: libpng already turned the colour samples of an RGB or RGBA image to blue, green, red order.
void ConvertRows(png_bytepp rows, png_colorp palette, int paletteCount, bool hasPalette, bool bgr, PngImage& image)
{
    const size_t w = static_cast<size_t>(image.width);
    const size_t h = static_cast<size_t>(image.height);
    const int b = image.bytesPerPixel;
    image.pixels.assign(w * h * 3, 0);
    if (b == 4)
        image.plane.assign(w * h * 3, 0);
    else
        image.plane.clear();
    // One loop per layout, so that the choice is made once a row and not once a pixel.
    for (size_t y = 0; y < h; ++y) {
        const uint8_t* p = rows[y];
        uint8_t* out = image.pixels.data() + y * w * 3;
        switch (b) {
            case 1:
            case 2:
                for (size_t x = 0; x < w; ++x, out += 3, p += b) {
                    if (!hasPalette) {
                        out[0] = out[1] = out[2] = p[0];  // the grey, or the high byte of 16-bit grey
                    } else if (p[0] < paletteCount && palette) {
                        out[0] = palette[p[0]].blue;
                        out[1] = palette[p[0]].green;
                        out[2] = palette[p[0]].red;
                    } else {
                        out[0] = out[1] = out[2] = 0;  // an index past the palette's entries gives black
                    }
                }
                break;
            case 3:
                if (bgr) {
                    memcpy(out, p, w * 3);
                    break;
                }
                for (size_t x = 0; x < w; ++x, out += 3, p += 3) {
                    out[0] = p[2];
                    out[1] = p[1];
                    out[2] = p[0];
                }
                break;
            case 4: {
                // RGBA (turned to BGRA) or, not turned, 16-bit grey with alpha taken byte by byte alike.
                const int blue = bgr ? 0 : 2, red = bgr ? 2 : 0;
                uint8_t* t = image.plane.data() + y * w * 3;
                for (size_t x = 0; x < w; ++x, out += 3, t += 3, p += 4) {
                    out[0] = p[blue];
                    out[1] = p[1];
                    out[2] = p[red];
                    t[0] = t[1] = t[2] = static_cast<uint8_t>(255 - p[3]);
                }
                break;
            }
            default: {  // 6 and 8: the high bytes of 16-bit samples; alpha is dropped
                const int blue = bgr ? 0 : 4, red = bgr ? 4 : 0;
                for (size_t x = 0; x < w; ++x, out += 3, p += b) {
                    out[0] = p[blue];
                    out[1] = p[2];
                    out[2] = p[red];
                }
                break;
            }
        }
    }
}

// Whether the first bytes of a file (signature included) name an 8-bit RGB image in their header chunk.
bool HeaderIsRgb8(const uint8_t* head, size_t headSize)
{
    return headSize >= 26 && std::memcmp(head + 12, "IHDR", 4) == 0 && head[24] == 8 && head[25] == 2;
}

// The layout the library read, and the conversion of its rows into `image`.
PngStatus TakeRows(png_structp png, png_infop info, png_bytepp rows, PngImage& image)
{
    const int colourType = png_get_color_type(png, info);
    const bool bgr = colourType == PNG_COLOR_TYPE_RGB || colourType == PNG_COLOR_TYPE_RGB_ALPHA;
    const png_uint_32 width = png_get_image_width(png, info);
    const png_uint_32 height = png_get_image_height(png, info);
    const int depth = png_get_bit_depth(png, info) * png_get_channels(png, info);
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.bytesPerPixel = depth / 8;
    image.pixels.clear();
    image.plane.clear();
    if (image.bytesPerPixel < 1)
        return PngStatus::TooShallow;
    if (!rows || (image.bytesPerPixel != 1 && image.bytesPerPixel != 2 && image.bytesPerPixel != 3 &&
                  image.bytesPerPixel != 4 && image.bytesPerPixel != 6 && image.bytesPerPixel != 8))
        return PngStatus::LibraryFailed;

    bool hasPalette = false;
    png_colorp palette = nullptr;
    int paletteCount = 0;
    if (image.bytesPerPixel <= 2 && png_get_valid(png, info, PNG_INFO_PLTE)) {
        hasPalette = true;
        png_get_PLTE(png, info, &palette, &paletteCount);
    }
    ConvertRows(rows, palette, paletteCount, hasPalette, bgr, image);
    return PngStatus::Ok;
}

// The common back end once the structures exist and the input is set up. Returns the status and fills
// `image`. No object with a destructor is live in this function: the library leaves it by longjmp.
// `rgb8`: the header names an 8-bit RGB image, whose rows may go straight into the image's target.
PngStatus ReadPng(png_structp png, png_infop info, bool rgb8, PngImage& image)
{
    if (setjmp(png_jmpbuf(png)))
        return PngStatus::LibraryFailed;
    png_set_sig_bytes(png, 8);
    png_set_user_limits(png, kMaxDimension, kMaxDimension);
    if (!rgb8 || !image.target) {
        // libpng turns RGB and RGBA samples to blue, green, red order while it reads the rows, which spares the
        // conversion a pass; it leaves grey and palette images alone.
        png_read_png(png, info, PNG_TRANSFORM_BGR, nullptr);
        return TakeRows(png, info, png_get_rows(png, info), image);
    }
    // The steps of png_read_png with the same transform, the rows being the target's where it gives them.
    png_read_info(png, info);
    png_set_bgr(png);
    (void)png_set_interlace_handling(png);
    png_read_update_info(png, info);
    const png_uint_32 width = png_get_image_width(png, info);
    const png_uint_32 height = png_get_image_height(png, info);
    uint8_t* const* targetRows = nullptr;
    if (png_get_color_type(png, info) == PNG_COLOR_TYPE_RGB && png_get_bit_depth(png, info) == 8 &&
        png_get_rowbytes(png, info) == static_cast<size_t>(width) * 3)
        targetRows = image.target->Rows(static_cast<int>(width), static_cast<int>(height));
    if (targetRows) {
        png_read_image(png, const_cast<png_bytepp>(targetRows));
        png_read_end(png, info);
        image.width = static_cast<int>(width);
        image.height = static_cast<int>(height);
        image.bytesPerPixel = 3;
        image.pixels.clear();
        image.plane.clear();
        image.inTarget = true;
        return PngStatus::Ok;
    }
    // Rows of the library's own, freed with its structures, as png_read_png makes them.
    png_bytepp rows = static_cast<png_bytepp>(png_malloc(png, height * sizeof(png_bytep)));
    for (png_uint_32 y = 0; y < height; ++y)
        rows[y] = nullptr;
    png_set_rows(png, info, rows);
    png_data_freer(png, info, PNG_DESTROY_WILL_FREE_DATA, PNG_FREE_ROWS);
    for (png_uint_32 y = 0; y < height; ++y)
        rows[y] = static_cast<png_bytep>(png_malloc(png, png_get_rowbytes(png, info)));
    png_read_image(png, rows);
    png_read_end(png, info);
    return TakeRows(png, info, rows, image);
}

// Empties the image, keeping its target.
void ClearImage(PngImage& image)
{
    PngRowTarget* target = image.target;
    image = PngImage();
    image.target = target;
}

bool HasPngSignature(const uint8_t* bytes, size_t size)
{
    return bytes && size >= 8 && png_sig_cmp(const_cast<png_bytep>(bytes), 0, 8) == 0;
}

// Creates the library's structures, lets `install` set up the input, reads, and destroys them again.
// `plausible` is false when the header asks for more than the input could hold: nothing is read then.
template <class Install>
PngStatus Decode(bool plausible, bool rgb8, Install install, PngImage& image)
{
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (!png)
        return PngStatus::NoReadStruct;
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return PngStatus::LibraryFailed;
    }
    PngStatus status = PngStatus::LibraryFailed;
    if (plausible) {
        install(png);
        status = ReadPng(png, info, rgb8, image);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    if (status != PngStatus::Ok && status != PngStatus::TooShallow)
        ClearImage(image);
    return status;
}

}  // namespace

PngStatus DecodePngMemory(const uint8_t* data, size_t size, PngImage& image)
{
    ClearImage(image);
    if (!HasPngSignature(data, size))
        return PngStatus::NotPng;
    MemoryReader reader{data, size, 8};
    return Decode(
        !HeaderAsksTooMuch(data, size, size), HeaderIsRgb8(data, size),
        [&reader](png_structp png) { png_set_read_fn(png, &reader, ReadFromMemory); }, image);
}

PngStatus DecodePngFile(std::FILE* file, PngImage& image)
{
    ClearImage(image);
    if (!file)
        return PngStatus::NotPng;
    uint8_t head[26];
    const size_t got = std::fread(head, 1, sizeof(head), file);
    if (!HasPngSignature(head, got))
        return PngStatus::NotPng;
    // The length of the file, for the plausibility test of the header; the read goes on behind the signature.
    uint64_t total = 0;
    if (std::fseek(file, 0, SEEK_END) == 0) {
        const long end = std::ftell(file);
        if (end > 0)
            total = static_cast<uint64_t>(end);
    }
    if (std::fseek(file, 8, SEEK_SET) != 0)
        return PngStatus::LibraryFailed;
    return Decode(
        total == 0 || !HeaderAsksTooMuch(head, got, total), HeaderIsRgb8(head, got), [file](png_structp png) { png_init_io(png, file); }, image);
}

namespace {

// Writes the image; `rows` has room for `height` pointers. No object with a destructor is live here.
bool WritePng(png_structp png, png_infop info, std::FILE* file, const uint8_t* pixels, int width, int height,
              int stride, png_bytep* rows)
{
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_color_8 bits;
    bits.red = 8;
    bits.green = 8;
    bits.blue = 8;
    bits.gray = 0;
    bits.alpha = 0;
    png_set_sBIT(png, info, &bits);
    png_write_info(png, info);
    png_set_bgr(png);
    // File row r is buffer row height - 1 - r: the buffer is bottom-up.
    for (int r = 0; r < height; ++r)
        rows[r] = const_cast<png_bytep>(pixels + static_cast<size_t>(height - 1 - r) * static_cast<size_t>(stride));
    png_write_image(png, rows);
    png_write_end(png, info);
    return true;
}

}  // namespace

bool EncodePngFile(std::FILE* file, const uint8_t* pixels, int width, int height, int stride)
{
    if (!file || !pixels || width < 1 || height < 1 || static_cast<int64_t>(stride) < 3 * static_cast<int64_t>(width))
        return false;
    png_bytep* rows = static_cast<png_bytep*>(std::malloc(sizeof(png_bytep) * static_cast<size_t>(height)));
    if (!rows)
        return false;
    bool ok = false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (png) {
        png_infop info = png_create_info_struct(png);
        if (info)
            ok = WritePng(png, info, file, pixels, width, height, stride, rows);
        png_destroy_write_struct(&png, info ? &info : nullptr);
    }
    std::free(rows);
    return ok;
}

}  // namespace zcmod
