// Fuzzes the GIF block walk and the one-image files cut from its record.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "image/core/GifStructure.h"

using namespace zcmod;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The record is large (12 KiB): keep it off the stack.
    std::unique_ptr<ZBUGIFFileStruct> info(new ZBUGIFFileStruct);
    uint32_t background = 0;
    int loopCount = 0;
    const unsigned count = WalkGifStructure(data, size, *info, background, loopCount);
    if (count > kGifMaxImages || loopCount < 1 || background > 0x00FFFFFFu)
        std::abort();
    GifScreenWidth(data, size);
    GifScreenHeight(data, size);
    for (unsigned i = 0; i < count; ++i) {
        // Every counted image lies inside the data, so its frame file can be built.
        if (static_cast<uint64_t>(info->imageOffset[i]) + info->imageLength[i] > size || info->disposal[i] > 7)
            std::abort();
        const size_t frameSize = GifFrameFileSize(size, *info, i);
        if (frameSize == 0)
            std::abort();
        std::vector<uint8_t> frame(frameSize, 0);
        if (!BuildGifFrameFile(data, size, *info, i, frame.data(), frame.size()))
            std::abort();
        if (frame[frameSize - 2] != 0x3B)
            std::abort();
        GifFrameRect(frame.data(), frame.size(), info->imageOffset[0]);
    }
    // A record that is not the walk's: the offsets are checked against the data, not trusted.
    if (size >= 8) {
        ZBUGIFFileStruct& own = *info;
        own.imageOffset[0] = static_cast<uint32_t>(data[0]) | static_cast<uint32_t>(data[1]) << 8;
        own.imageOffset[1] = static_cast<uint32_t>(data[2]) | static_cast<uint32_t>(data[3]) << 24;
        own.imageLength[1] = static_cast<uint32_t>(data[4]) | static_cast<uint32_t>(data[5]) << 8;
        own.controlBytes[1] = 0xA5A5A5A5u;
        const size_t frameSize = GifFrameFileSize(size, own, 1);
        if (frameSize != 0) {
            std::vector<uint8_t> frame(frameSize, 0);
            BuildGifFrameFile(data, size, own, 1, frame.data(), frame.size());
        }
    }
    return 0;
}
