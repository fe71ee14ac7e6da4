// Fuzzes the WBMP reader, and writes back what it read: a black-and-white picture must come back exactly.
#include <algorithm>
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

// Reads a WBMP file into tight top-down pixels; false if the header or the rows are refused.
bool Read(const uint8_t* data, size_t size, int& width, int& height, std::vector<uint8_t>& pixels)
{
    size_t offset = 0;
    if (!ParseWbmpHeader(data, size, width, height, offset))
        return false;
    if (width < 1 || width > 16383 || height < 1 || height > 16383 || offset > size)
        std::abort();
    return DecodeWbmpRows(data, size, width, height, offset, pixels);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;
    if (!Read(data, size, width, height, pixels))
        return 0;
    if (pixels.size() != static_cast<size_t>(width) * height * 3)
        std::abort();
    // The encoder takes padded bottom-up rows, as the toolkit's frames are.
    const int stride = (width * 3 + 3) & ~3;
    std::vector<uint8_t> frame(static_cast<size_t>(stride) * height, 0);
    const size_t row = static_cast<size_t>(width) * 3;
    for (int y = 0; y < height; ++y)
        std::copy(pixels.data() + y * row, pixels.data() + (y + 1) * row, frame.data() + (height - 1 - y) * stride);
    const std::vector<uint8_t> file = EncodeWbmp(frame.data(), width, height, stride, Random);
    int w2 = 0;
    int h2 = 0;
    std::vector<uint8_t> again;
    // A picture of one data byte (one row of at most 8 pixels) is written in 5 bytes, shorter than the 6 the
    // reader asks for.
    if (!Read(file.data(), file.size(), w2, h2, again) && !(height == 1 && width <= 8 && file.size() == 5))
        std::abort();
    if (file.size() != 5 && (w2 != width || h2 != height || again != pixels))
        std::abort();
    return 0;
}
