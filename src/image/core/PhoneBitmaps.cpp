#include "image/core/PhoneBitmaps.h"

namespace zcmod {

namespace {

constexpr uint8_t kBlack = 0;
constexpr uint8_t kWhite = 255;

void SetPixel(std::vector<uint8_t>& pixels, size_t index, uint8_t value)
{
    pixels[3 * index] = value;
    pixels[3 * index + 1] = value;
    pixels[3 * index + 2] = value;
}

// Bytes of one WBMP row: rows start on a byte.
size_t WbmpRowBytes(int width)
{
    return (static_cast<size_t>(width) + 7) / 8;
}

// Checks the encoders' common inputs: pixels present and rows long enough for the width.
bool ValidEncoderInput(const uint8_t* pixels, int width, int height, int stride, RandomSource random)
{
    return pixels && random && width > 0 && height > 0 && stride >= 0 &&
           static_cast<int64_t>(stride) >= 3 * static_cast<int64_t>(width);
}

// The first image row (the top one) is the last row of a bottom-up buffer.
const uint8_t* ImageRow(const uint8_t* pixels, int height, int stride, int row)
{
    return pixels + static_cast<size_t>(height - 1 - row) * static_cast<size_t>(stride);
}

}  // namespace

bool ReadMultiByteInt(const uint8_t* data, size_t size, size_t& pos, unsigned maxBytes, uint32_t& value)
{
    if (!data)
        return false;
    uint32_t v = 0;
    for (unsigned count = 0; count < maxBytes; ++count) {
        if (pos >= size)
            return false;
        const uint8_t b = data[pos++];
        v = (v << 7) | (b & 0x7Fu);
        if (!(b & 0x80u)) {
            value = v;
            return true;
        }
    }
    return false;  // still a continuation bit after the last byte allowed
}

void WriteMultiByteInt(uint32_t value, std::vector<uint8_t>& out)
{
    int groups = 1;
    while (groups < 5 && (value >> (7 * groups)) != 0)
        ++groups;
    for (int g = groups - 1; g >= 0; --g) {
        uint8_t b = static_cast<uint8_t>((value >> (7 * g)) & 0x7Fu);
        if (g > 0)
            b |= 0x80u;
        out.push_back(b);
    }
}

bool ParseWbmpHeader(const uint8_t* data, size_t size, int& width, int& height, size_t& dataOffset)
{
    if (!data || size < 6 || data[0] != 0 || data[1] != 0)
        return false;
    size_t pos = 2;
    uint32_t w = 0;
    uint32_t h = 0;
    if (!ReadMultiByteInt(data, size, pos, 2, w) || !ReadMultiByteInt(data, size, pos, 2, h))
        return false;
    if (w < 1 || h < 1)
        return false;
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    dataOffset = pos;
    return true;
}

bool DecodeWbmpRows(const uint8_t* data, size_t size, int width, int height, size_t dataOffset,
                    std::vector<uint8_t>& pixels)
{
    if (!data || width < 1 || height < 1 || dataOffset > size)
        return false;
    const size_t rowBytes = WbmpRowBytes(width);
    if ((size - dataOffset) / rowBytes < static_cast<size_t>(height))
        return false;
    pixels.assign(static_cast<size_t>(width) * static_cast<size_t>(height) * 3, kBlack);
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = data + dataOffset + static_cast<size_t>(y) * rowBytes;
        uint8_t mask = 0x80;
        size_t byte = 0;
        for (int x = 0; x < width; ++x) {
            if (row[byte] & mask)
                SetPixel(pixels, static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x), kWhite);
            mask >>= 1;
            if (!mask) {
                mask = 0x80;
                ++byte;
            }
        }
    }
    return true;
}

void ReadOtaSize(const uint8_t* data, size_t size, int& width, int& height)
{
    width = data && size > 1 ? data[1] : 0;
    height = data && size > 2 ? data[2] : 0;
}

bool DecodeOta(const uint8_t* data, size_t size, std::vector<uint8_t>& pixels, int& width, int& height)
{
    ReadOtaSize(data, size, width, height);
    if (!data || size > kOtaMaxFileSize || size < 4 || data[0] != 0 || data[3] != 1)
        return false;
    const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
    if (size < (count + 7) / 8 + 4)
        return false;
    if (width == 0 || height == 0)
        return false;
    pixels.assign(count * 3, kBlack);
    // One bit stream across the rows: the mask is not reset at a row's end.
    const uint8_t* bits = data + 4;
    uint8_t mask = 0x80;
    size_t byte = 0;
    for (size_t i = 0; i < count; ++i) {
        if (!(bits[byte] & mask))
            SetPixel(pixels, i, kWhite);
        mask >>= 1;
        if (!mask) {
            mask = 0x80;
            ++byte;
        }
    }
    return true;
}

std::vector<uint8_t> EncodeWbmp(const uint8_t* pixels, int width, int height, int stride, RandomSource random)
{
    std::vector<uint8_t> out;
    if (!ValidEncoderInput(pixels, width, height, stride, random))
        return out;
    out.reserve(2 + 10 + WbmpRowBytes(width) * static_cast<size_t>(height));
    out.push_back(0x00);
    out.push_back(0x00);
    WriteMultiByteInt(static_cast<uint32_t>(width), out);
    WriteMultiByteInt(static_cast<uint32_t>(height), out);
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = ImageRow(pixels, height, stride, y);
        unsigned acc = 0;
        int bits = 0;
        for (int x = 0; x < width; ++x) {
            acc <<= 1;
            // White only if every channel, blue first, lies above its own random threshold.
            bool white = true;
            for (int c = 0; c < 3 && white; ++c)
                white = random() / 255 < row[3 * x + c];
            if (white)
                acc |= 1;
            ++bits;
            if (bits == 8 || x == width - 1) {
                // A row's last byte is filled with zeros at the low end: rows start on a byte.
                out.push_back(static_cast<uint8_t>(acc << (8 - bits)));
                acc = 0;
                bits = 0;
            }
        }
    }
    return out;
}

std::vector<uint8_t> EncodeOta(const uint8_t* pixels, int width, int height, int stride, RandomSource random)
{
    std::vector<uint8_t> out;
    if (width >= 256 || height >= 256 || !ValidEncoderInput(pixels, width, height, stride, random))
        return out;
    const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
    out.reserve(4 + (count + 7) / 8);
    out.push_back(0x00);
    out.push_back(static_cast<uint8_t>(width));
    out.push_back(static_cast<uint8_t>(height));
    out.push_back(0x01);
    unsigned acc = 0;
    int bits = 0;
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = ImageRow(pixels, height, stride, y);
        for (int x = 0; x < width; ++x) {
            acc <<= 1;
            // Black as soon as one channel, blue first, is at most its random threshold.
            for (int c = 0; c < 3; ++c) {
                if (row[3 * x + c] <= random() / 255) {
                    acc |= 1;
                    break;
                }
            }
            if (++bits == 8) {
                out.push_back(static_cast<uint8_t>(acc));
                acc = 0;
                bits = 0;
            }
        }
    }
    // The last partial byte is stored as it stands, its bits at the low end; the reader takes them from the
    // top, so those pixels do not read back as written. That is the format as the toolkit writes it.
    if (bits > 0)
        out.push_back(static_cast<uint8_t>(acc));
    return out;
}

}  // namespace zcmod
