// Pixel arithmetic of the image toolkit: the byte blend, colour helpers, and the dithering resize.
// Pixels are 24-bit blue, green, red. A colour assembled from a pixel is 0x00RRGGBB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zcmod {

// result = (image * (255 - alpha) + background * alpha) >> 8 for each byte, in unsigned 32-bit arithmetic.
// The shift divides by 256, so a byte of 255 comes out 254 for every alpha. Runs the fastest form this
// processor has; a null pointer blends nothing.
void AlphaBlendBytes(const uint8_t* image, const uint8_t* alpha, const uint8_t* background, uint8_t* result,
                     size_t count);
// The same blend byte by byte: the reference that every vector form must equal.
void AlphaBlendBytesScalar(const uint8_t* image, const uint8_t* alpha, const uint8_t* background, uint8_t* result,
                           size_t count);
// Every form of the blend that runs on this processor, the reference first, so that tests and the fuzzer can
// hold each against it.
struct BlendForm {
    const char* name;
    void (*blend)(const uint8_t* image, const uint8_t* alpha, const uint8_t* background, uint8_t* result,
                  size_t count);
};
std::vector<BlendForm> BlendForms();
// Whether this processor (and its system) runs AVX2 code.
bool ProcessorHasAvx2();

// Each of three bytes (b * (100 - percent) + a * percent) / 100; top byte zero.
uint32_t MixColors(uint32_t a, uint32_t b, int percent);
// Each of three bytes min(255, (c * factor) >> 8), keeping the low 8 bits; top byte zero.
uint32_t FadeColor(uint32_t color, int factor);
// The truncated mean of the three absolute byte differences.
int GetColorDifRatio(uint32_t a, uint32_t b);
// A zero tolerance asks for equality of all 32 bits. Otherwise each of the three low bytes must be within
// its limit, a negative difference d counting as |d| - 1 (one level wider below the colour than above).
int TestColorMatch(uint32_t pixel, uint32_t color, uint32_t tolerance);

// A pixel buffer as the toolkit's working descriptions hold it: rows `stride` bytes apart, top-down.
struct PixelView {
    int width = 0;
    int height = 0;
    uint8_t* buffer = nullptr;
    int stride = 0;
    size_t size = 0;  // bytes in `buffer`; no access goes past it
};

// blue | green << 8 | red << 16 at (x, y); 0 outside the view or the buffer.
uint32_t ReadPixel(const PixelView& view, int x, int y);
// Stores the colour as a 32-bit value (top byte zero) at stride * y + 3 * x when (x, y) is inside the view
// and its three bytes lie in the buffer, and returns 1; the fourth byte is written only where it lies in the
// buffer too. Else 0, and nothing is written.
int WritePixel(PixelView& view, int x, int y, uint32_t color);

// The noise of the dithering resize: 131,072 bytes, each random() / 128.
constexpr size_t kNoiseTableSize = 131072;
void FillNoiseTable(uint8_t* table, int (*random)());

// Scales the rectangle (srcX, srcY, srcW, srcH) of `source` to dstW x dstH into `destination` with bilinear
// mixing at hundredths, and, when both edgeDivisor and noiseBase are non-zero, a fade by noise weighted by
// the local edge strength. The arithmetic (single-precision steps and fractions, integer mixes, the
// 255/256 fades) is the toolkit's defined result. Source reads past the image's right or bottom edge take
// the edge pixel; writes outside the destination are dropped. A null noise table turns the fade off.
void ResizeDitherPixels(const PixelView& source, PixelView& destination, int srcX, int srcY, int srcW, int srcH,
                        int dstW, int dstH, int edgeDivisor, int noiseBase, const uint8_t* noiseTable);
// The same, pixel by pixel as the rule reads: the reference the fast form must equal byte for byte.
void ResizeDitherPixelsReference(const PixelView& source, PixelView& destination, int srcX, int srcY, int srcW,
                                 int srcH, int dstW, int dstH, int edgeDivisor, int noiseBase,
                                 const uint8_t* noiseTable);
// Every form of the resize that runs on this processor, the reference first, for tests and the fuzzer.
struct ResizeForm {
    const char* name;
    void (*resize)(const PixelView& source, PixelView& destination, int srcX, int srcY, int srcW, int srcH, int dstW,
                   int dstH, int edgeDivisor, int noiseBase, const uint8_t* noiseTable);
};
std::vector<ResizeForm> ResizeDitherForms();

}  // namespace zcmod
