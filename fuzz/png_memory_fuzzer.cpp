// Fuzzes the PNG reader on memory blocks.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "image/core/PngCodec.h"

using namespace zcmod;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    PngImage image;
    const PngStatus status = DecodePngMemory(data, size, image);
    if (status == PngStatus::Ok) {
        const size_t count = static_cast<size_t>(image.width) * static_cast<size_t>(image.height);
        if (image.width < 1 || image.width > 16384 || image.height < 1 || image.height > 16384 ||
            image.pixels.size() != count * 3 || image.plane.size() != (image.bytesPerPixel == 4 ? count * 3 : 0))
            std::abort();
    } else if (!image.pixels.empty() || !image.plane.empty()) {
        std::abort();
    }
    return 0;
}
