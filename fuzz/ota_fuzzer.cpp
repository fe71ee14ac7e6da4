// Fuzzes the OTA reader, and writes back what it read. Black and white come back exactly, except the pixels
// of a partial last byte, which the writer puts at the low end and the reader takes from the top.
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::vector<uint8_t> pixels;
    int width = -1;
    int height = -1;
    const bool ok = DecodeOta(data, size, pixels, width, height);
    if (width < 0 || width > 255 || height < 0 || height > 255)
        std::abort();
    if (!ok)
        return 0;
    if (size > kOtaMaxFileSize || width == 0 || height == 0)
        std::abort();
    const size_t count = static_cast<size_t>(width) * height;
    if (pixels.size() != count * 3)
        std::abort();

    const int stride = (width * 3 + 3) & ~3;
    std::vector<uint8_t> frame(static_cast<size_t>(stride) * height, 0);
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < width * 3; ++i)
            frame[static_cast<size_t>(height - 1 - y) * stride + i] = pixels[static_cast<size_t>(y) * width * 3 + i];
    const std::vector<uint8_t> file = EncodeOta(frame.data(), width, height, stride, Random);
    if (file.size() != 4 + (count + 7) / 8)
        std::abort();
    std::vector<uint8_t> again;
    int w2 = 0;
    int h2 = 0;
    if (!DecodeOta(file.data(), file.size(), again, w2, h2) || w2 != width || h2 != height)
        std::abort();
    const size_t whole = count - count % 8;
    for (size_t i = 0; i < whole * 3; ++i)
        if (again[i] != pixels[i])
            std::abort();
    // The k tail pixels were stored in the low k bits; read from the top, tail pixel j finds pixel j + k - 8,
    // or a clear bit (white) where that is before the tail.
    const size_t k = count % 8;
    for (size_t j = 0; j < k; ++j) {
        const uint8_t expected = j + k >= 8 ? pixels[(whole + j + k - 8) * 3] : 255;
        if (again[(whole + j) * 3] != expected)
            std::abort();
    }
    return 0;
}
