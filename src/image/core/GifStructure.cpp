#include "image/core/GifStructure.h"

#include <cstring>

namespace zcmod {

namespace {

constexpr unsigned kGifSlots = 512;
constexpr uint32_t kNoTransparency = 0xFFFFFFFFu;

uint32_t Le16(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8;
}

uint32_t Le32(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
}

// Follows a sub-block chain that starts at `q`: each block is a length byte and that many bytes, and a zero
// length ends the chain. On success `q` is the terminator's offset; false if the chain runs past the end.
bool SkipSubBlocks(const uint8_t* data, size_t size, size_t& q)
{
    while (q < size) {
        const uint8_t length = data[q];
        if (length == 0)
            return true;
        q += 1 + static_cast<size_t>(length);
    }
    return false;
}

// Bytes of a colour table whose size field (the low 3 bits of a flags byte) is `flags`.
size_t ColorTableBytes(uint8_t flags)
{
    return 3 * (static_cast<size_t>(1) << ((flags & 7u) + 1));
}

}  // namespace

void ClearGifFileStruct(ZBUGIFFileStruct& info)
{
    std::memset(&info, 0, sizeof(info));
    for (unsigned i = 0; i < kGifSlots; ++i)
        info.transparentColor[i] = kNoTransparency;
}

unsigned WalkGifStructure(const uint8_t* data, size_t size, ZBUGIFFileStruct& info, uint32_t& background,
                          int& loopCount)
{
    ClearGifFileStruct(info);
    background = 0;
    loopCount = 1;
    // The record keeps 32-bit offsets: anything past 4 GiB is not part of the walk.
    if (size > 0xFFFFFFFFu)
        size = 0xFFFFFFFFu;
    if (!data || size < 12)
        return 0;

    // The global colour table is taken to be there whatever the flags say, with its size from byte 10.
    const size_t globalTable = 13;
    size_t pos = globalTable + ColorTableBytes(data[10]);

    // The background entry; an entry past the end of the data reads as black.
    const size_t entry = globalTable + 3 * static_cast<size_t>(data[11]);
    if (entry + 3 <= size)
        background = static_cast<uint32_t>(data[entry]) | static_cast<uint32_t>(data[entry + 1]) << 8 |
                     static_cast<uint32_t>(data[entry + 2]) << 16;

    unsigned count = 0;
    while (pos < size) {
        const uint8_t introducer = data[pos];
        if (introducer == 0x2C) {
            // An image: descriptor, optional local table, LZW code size, data chain, terminator.
            const size_t start = pos;
            const uint32_t transparent = info.transparentColor[count];
            info.imageOffset[count] = static_cast<uint32_t>(start);
            if (pos + 10 > size)
                return count;
            const uint8_t flags = data[pos + 9];
            pos += 10;
            const bool localTable = (flags & 0x80u) != 0;
            if (transparent != kNoTransparency) {
                // The palette index becomes 0x00RRGGBB; an entry outside the data leaves the index standing.
                const size_t tableStart = localTable ? pos : globalTable;
                const uint64_t at = static_cast<uint64_t>(tableStart) + 3ull * transparent;
                if (at + 3 <= size)
                    info.transparentColor[count] =
                        static_cast<uint32_t>(data[at]) << 16 | static_cast<uint32_t>(data[at + 1]) << 8 | data[at + 2];
            }
            if (localTable)
                pos += ColorTableBytes(flags);
            pos += 1;  // LZW minimum code size
            size_t q = pos;
            if (!SkipSubBlocks(data, size, q))
                return count;  // image data cut short: not counted
            pos = q + 1;
            info.imageLength[count] = static_cast<uint32_t>(pos - start);
            ++count;
            if (count == kGifSlots)
                return kGifMaxImages;  // the 512th image is parsed and not counted
        } else if (introducer == 0x21) {
            if (pos + 3 > size)
                return count;
            const uint8_t label = data[pos + 1];
            const uint8_t length = data[pos + 2];
            size_t q;
            if (label == 0xF9) {
                // Graphic control, of any length: the four data bytes describe the next image. No chain.
                if (pos + 7 > size)
                    return count;
                const uint8_t packed = data[pos + 3];
                info.controlBytes[count] = Le32(data + pos + 3);
                info.disposal[count] = (packed >> 2) & 7u;
                info.delay[count] = Le16(data + pos + 4);
                if (packed & 1u)
                    info.transparentColor[count] = data[pos + 6];
                pos += 4 + static_cast<size_t>(length);
                continue;
            }
            if (label == 0x01 && length == 12) {
                q = pos + 15;  // plain text: header and its 12 bytes, then the chain
            } else if (label == 0xFF && length == 11) {
                // Application block: any identifier whose first sub-block is 3 bytes starting with 1 is taken
                // as a loop count.
                q = pos + 14;
                if (q < size && data[q] == 3) {
                    if (q + 3 >= size)
                        return count;  // the 3-byte sub-block runs past the end
                    if (data[q + 1] == 1)
                        loopCount = static_cast<int>(Le16(data + q + 2)) + 1;
                }
            } else if (label == 0xFE) {
                q = pos + 2;  // comment: the chain starts at once
            } else {
                q = pos + 3 + static_cast<size_t>(length);
            }
            if (!SkipSubBlocks(data, size, q))
                return count;
            pos = q + 1;
        } else {
            return count;  // the trailer, or anything else
        }
    }
    return count;
}

size_t GifFrameFileSize(size_t size, const ZBUGIFFileStruct& info, unsigned index)
{
    if (index >= kGifSlots)
        return 0;
    const uint64_t prefix = info.imageOffset[0];
    const uint64_t offset = info.imageOffset[index];
    const uint64_t length = info.imageLength[index];
    if (length == 0 || prefix > size || offset + length > size)
        return 0;
    return static_cast<size_t>(prefix + length + 2);
}

bool BuildGifFrameFile(const uint8_t* data, size_t size, const ZBUGIFFileStruct& info, unsigned index, uint8_t* out,
                       size_t outSize)
{
    const size_t frameSize = GifFrameFileSize(size, info, index);
    if (!data || !out || frameSize == 0 || outSize < frameSize)
        return false;
    const size_t prefix = info.imageOffset[0];
    const size_t length = info.imageLength[index];
    std::memcpy(out, data, prefix);
    if (index > 0) {
        // Frame i's delay, disposal and transparency in place of those of the prefix's first control block.
        for (size_t k = 0; k + 3 <= prefix; ++k) {
            if (out[k] == 0x21 && out[k + 1] == 0xF9 && out[k + 2] == 0x04) {
                if (k + 7 <= prefix) {
                    const uint32_t control = info.controlBytes[index];
                    out[k + 3] = static_cast<uint8_t>(control);
                    out[k + 4] = static_cast<uint8_t>(control >> 8);
                    out[k + 5] = static_cast<uint8_t>(control >> 16);
                    out[k + 6] = static_cast<uint8_t>(control >> 24);
                }
                break;
            }
        }
    }
    std::memcpy(out + prefix, data + info.imageOffset[index], length);
    out[prefix + length] = 0x3B;
    out[prefix + length + 1] = 0;
    return true;
}

GifRect GifFrameRect(const uint8_t* frameFile, size_t frameSize, size_t prefixSize)
{
    GifRect rect;
    if (!frameFile || prefixSize > frameSize || frameSize - prefixSize < 9)
        return rect;
    const uint8_t* d = frameFile + prefixSize;
    rect.left = static_cast<int>(Le16(d + 1));
    rect.top = static_cast<int>(Le16(d + 3));
    rect.width = static_cast<int>(Le16(d + 5));
    rect.height = static_cast<int>(Le16(d + 7));
    return rect;
}

int GifScreenWidth(const uint8_t* data, size_t size)
{
    return data && size >= 8 ? static_cast<int>(Le16(data + 6)) : 0;
}

int GifScreenHeight(const uint8_t* data, size_t size)
{
    return data && size >= 10 ? static_cast<int>(Le16(data + 8)) : 0;
}

}  // namespace zcmod
