// The GIF reader's block walk and the one-image files it cuts out of an animated GIF. Not an LZW decoder:
// each image is handed to the platform's picture decoder as a GIF of its own.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zcmod/NBitmapTypes.h"

namespace zcmod {

// Images of one file at most: the 512th image is parsed and not counted.
constexpr unsigned kGifMaxImages = 511;

// Zeroes the record, with every transparent colour 0xFFFFFFFF.
void ClearGifFileStruct(ZBUGIFFileStruct& info);

// Walks the blocks of a GIF file and fills `info`, which it clears first (ClearGifFileStruct). `background`
// gets the global table's background entry as 0x00BBGGRR (0 when that entry lies past the end of the data);
// `loopCount` is set to 1 and then to n + 1 by a looping application block that says n.
// Returns the number of images found (at most 511). The walk never reads outside [data, data + size): a
// truncated or hostile file ends the walk, keeping the images complete so far.
unsigned WalkGifStructure(const uint8_t* data, size_t size, ZBUGIFFileStruct& info, uint32_t& background,
                          int& loopCount);

// Size of the one-image GIF of image `index`: prefix (the bytes before image 0) + the image + 2.
// 0 when the record's offsets do not lie inside the file.
size_t GifFrameFileSize(size_t size, const ZBUGIFFileStruct& info, unsigned index);

// Writes the one-image GIF of image `index` into `out` (GifFrameFileSize bytes, zeroed by the caller): the
// prefix, with the four data bytes of its first graphic control extension replaced by the image's own for
// an index above 0, then the image's bytes and the trailer 0x3B.
bool BuildGifFrameFile(const uint8_t* data, size_t size, const ZBUGIFFileStruct& info, unsigned index,
                       uint8_t* out, size_t outSize);

// The image's rectangle as its descriptor states it, read from a one-image GIF made above.
struct GifRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};
GifRect GifFrameRect(const uint8_t* frameFile, size_t frameSize, size_t prefixSize);

// The logical screen's size, the 16-bit values at offsets 6 and 8; 0 when the file is shorter.
int GifScreenWidth(const uint8_t* data, size_t size);
int GifScreenHeight(const uint8_t* data, size_t size);

}  // namespace zcmod
