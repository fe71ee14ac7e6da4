// PNG through libpng: reading into the toolkit's pixels and transparency plane, and writing 24-bit files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace zcmod {

enum class PngStatus {
    Ok,
    NotPng,           // the 8 signature bytes are wrong: no error is reported
    NoReadStruct,     // the library could not start: no error is reported
    LibraryFailed,    // no info structure, or the library signalled an error (ZBU_PNG_FAILED)
    TooShallow        // fewer than 8 bits per pixel (ZBU_BAD_FORMAT); width and height are known
};

// Memory of the caller's that the rows of an 8-bit RGB file may be decoded into directly (a frame's own pixels),
// which spares the copy through `pixels`.
class PngRowTarget {
public:
    virtual ~PngRowTarget() = default;
    // Called once the header is read, for an 8-bit RGB file only: `height` row pointers in the file's order, each
    // with room for 3 * width bytes, or null to have the rows go into `pixels` as for any other layout. The rows
    // are written as blue, green, red, exactly as `pixels` would hold them.
    virtual uint8_t* const* Rows(int width, int height) = 0;
};

// A decoded PNG: tight top-down blue, green, red rows, and for an 8-bit RGBA file the transparency plane
// (255 - alpha in all three bytes). The file's bytes per pixel decide the conversion:
//   1 palette: the entry's colours; 1 grey: the byte three times; 2: the first byte three times;
//   3: bytes 2, 1, 0; 4: bytes 2, 1, 0 and the plane from byte 3; 6 and 8: the high bytes 4, 2, 0.
// No transformation is asked of the library: tRNS, gamma and background chunks play no part.
struct PngImage {
    int width = 0;
    int height = 0;
    int bytesPerPixel = 0;
    std::vector<uint8_t> pixels;
    std::vector<uint8_t> plane;  // empty unless bytesPerPixel is 4
    PngRowTarget* target = nullptr;  // set by the caller before decoding; kept by the decoders
    bool inTarget = false;           // the rows were decoded into the target, and `pixels` is empty
};

// Decodes a PNG held in memory. A read past the end of the block is an error of the library's.
PngStatus DecodePngMemory(const uint8_t* data, size_t size, PngImage& image);
// Decodes a PNG file from its start (signature included).
PngStatus DecodePngFile(std::FILE* file, PngImage& image);

// Writes an 8-bit RGB PNG (no interlace, sBIT 8,8,8) from padded bottom-up pixels: row r of the file is
// buffer row height - 1 - r, rows `stride` bytes apart. False on any failure of the library.
bool EncodePngFile(std::FILE* file, const uint8_t* pixels, int width, int height, int stride);

}  // namespace zcmod
