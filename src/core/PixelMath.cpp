#include "core/PixelMath.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace zcmod {

namespace {

constexpr uint32_t kNoiseIndexWrap = 131072;  // the index runs over even entries 0 to 131,070

// Float to int the way the x86 conversion instruction does it: truncation toward zero, and the "integer
// indefinite" value INT32_MIN for NaN and for values outside the int range. The result is then the same in
// every build, and a hostile rectangle or factor never reaches an undefined conversion.
int32_t TruncToInt(float v)
{
    if (!(v >= -2147483648.0f && v < 2147483648.0f))
        return INT32_MIN;
    return static_cast<int32_t>(v);
}

// Arithmetic shift right by 8 (rounds toward minus infinity), written out so that it does not depend on how
// the compiler shifts negative values.
int64_t ShiftRight8(int64_t v)
{
    return v >= 0 ? v >> 8 : -((-v + 255) >> 8);
}

// One byte faded: min(255, (c * factor) >> 8), of which the low 8 bits are kept.
uint8_t FadeByte(uint8_t c, int32_t factor)
{
    int64_t v = ShiftRight8(static_cast<int64_t>(c) * factor);
    if (v > 255)
        v = 255;
    return static_cast<uint8_t>(static_cast<uint64_t>(v) & 0xFFu);
}

// (a * wa + b * wb) / 100 with truncating division, cut to 8 bits.
uint8_t MixByte(uint8_t a, int64_t wa, uint8_t b, int64_t wb)
{
    const int64_t v = (static_cast<int64_t>(a) * wa + static_cast<int64_t>(b) * wb) / 100;
    return static_cast<uint8_t>(static_cast<uint64_t>(v) & 0xFFu);
}

struct Bgr {
    uint8_t c[3];  // blue, green, red
};

// Truncating mean of the three absolute byte differences.
int MeanDifference(const Bgr& a, const Bgr& b)
{
    int sum = 0;
    for (int k = 0; k < 3; ++k)
        sum += a.c[k] > b.c[k] ? a.c[k] - b.c[k] : b.c[k] - a.c[k];
    return sum / 3;
}

int Clamp(int64_t v, int hi)
{
    if (v < 0)
        return 0;
    return v > hi ? hi : static_cast<int>(v);
}

// The source pixel at (x, y), with the coordinates clamped into the image so that an edge pixel stands for
// the ones past it. A view without pixels reads as black.
Bgr SourcePixel(const PixelView& view, int64_t x, int64_t y)
{
    Bgr p{{0, 0, 0}};
    if (view.width < 1 || view.height < 1)
        return p;
    const uint32_t v = ReadPixel(view, Clamp(x, view.width - 1), Clamp(y, view.height - 1));
    p.c[0] = static_cast<uint8_t>(v);
    p.c[1] = static_cast<uint8_t>(v >> 8);
    p.c[2] = static_cast<uint8_t>(v >> 16);
    return p;
}

// sin(fraction * 3.14159), taken in double and kept as a float: the wave that weights the noise of a fade.
float Wave(float fraction)
{
    return static_cast<float>(std::sin(static_cast<double>(fraction) * 3.14159));
}

// The fade factor of one direction: trunc(255 - (d / edgeDivisor) * wave * (noiseBase - noise)), multiplied
// left to right in single precision. Each product is a statement of its own so that no compiler fuses a
// multiply and an add.
int32_t EdgeFactor(int d, int edgeDivisor, float wave, int noiseBase, uint8_t noise)
{
    const float ratio = static_cast<float>(d) / static_cast<float>(edgeDivisor);
    const float noiseSpan = static_cast<float>(static_cast<int64_t>(noiseBase) - noise);
    float product = ratio * wave;
    product = product * noiseSpan;
    const float factor = 255.0f - product;
    return TruncToInt(factor);
}

// What one output column takes from the source: every row steps through the same x positions.
struct Column {
    int32_t ix;
    int32_t wx;
    float wave;
};

}  // namespace

uint32_t MixColors(uint32_t a, uint32_t b, int percent)
{
    uint32_t out = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint8_t ca = static_cast<uint8_t>(a >> shift);
        const uint8_t cb = static_cast<uint8_t>(b >> shift);
        out |= static_cast<uint32_t>(MixByte(cb, 100 - static_cast<int64_t>(percent), ca, percent)) << shift;
    }
    return out;
}

uint32_t FadeColor(uint32_t color, int factor)
{
    uint32_t out = 0;
    for (int shift = 0; shift < 24; shift += 8)
        out |= static_cast<uint32_t>(FadeByte(static_cast<uint8_t>(color >> shift), factor)) << shift;
    return out;
}

int GetColorDifRatio(uint32_t a, uint32_t b)
{
    int sum = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const int ca = static_cast<int>((a >> shift) & 0xFFu);
        const int cb = static_cast<int>((b >> shift) & 0xFFu);
        sum += ca > cb ? ca - cb : cb - ca;
    }
    return sum / 3;
}

int TestColorMatch(uint32_t pixel, uint32_t color, uint32_t tolerance)
{
    if (tolerance == 0)
        return pixel == color ? 1 : 0;
    for (int shift = 0; shift < 24; shift += 8) {
        int32_t d = static_cast<int32_t>((pixel >> shift) & 0xFFu) - static_cast<int32_t>((color >> shift) & 0xFFu);
        if (d & (1 << 27))  // set exactly for a negative difference: the complement is |d| - 1
            d = ~d;
        if (d > static_cast<int32_t>((tolerance >> shift) & 0xFFu))
            return 0;
    }
    return 1;
}

namespace {

// Offset of the pixel (x, y) in the view's buffer when `bytes` bytes from there lie inside it, else -1.
int64_t PixelOffset(const PixelView& view, int x, int y, int64_t bytes)
{
    if (!view.buffer || x < 0 || y < 0 || x >= view.width || y >= view.height)
        return -1;
    const int64_t offset = static_cast<int64_t>(view.stride) * y + 3 * static_cast<int64_t>(x);
    if (offset < 0 || static_cast<uint64_t>(offset) + static_cast<uint64_t>(bytes) > view.size)
        return -1;
    return offset;
}

}  // namespace

uint32_t ReadPixel(const PixelView& view, int x, int y)
{
    const int64_t offset = PixelOffset(view, x, y, 3);
    if (offset < 0)
        return 0;
    const uint8_t* p = view.buffer + offset;
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16;
}

int WritePixel(PixelView& view, int x, int y, uint32_t color)
{
    const int64_t offset = PixelOffset(view, x, y, 3);
    if (offset < 0)
        return 0;
    // A 32-bit little-endian store: the fourth byte, zero, is overwritten by the next pixel of the row. The last
    // pixel of a buffer whose rows have no padding has no fourth byte inside it: that byte alone is skipped.
    uint8_t* p = view.buffer + offset;
    p[0] = static_cast<uint8_t>(color);
    p[1] = static_cast<uint8_t>(color >> 8);
    p[2] = static_cast<uint8_t>(color >> 16);
    if (static_cast<uint64_t>(offset) + 4 <= view.size)
        p[3] = 0;
    return 1;
}

void FillNoiseTable(uint8_t* table, int (*random)())
{
    if (!table || !random)
        return;
    for (size_t i = 0; i < kNoiseTableSize; ++i)
        table[i] = static_cast<uint8_t>(random() / 128);
}

void ResizeDitherPixelsReference(const PixelView& source, PixelView& destination, int srcX, int srcY, int srcW,
                                 int srcH, int dstW, int dstH, int edgeDivisor, int noiseBase,
                                 const uint8_t* noiseTable)
{
    // Without a table there is no noise to fade by: the scale is then a plain bilinear one.
    const bool dither = edgeDivisor != 0 && noiseBase != 0 && noiseTable != nullptr;

    if (destination.width > 0 && destination.height > 0)
        WritePixel(destination, 0, 0, 0);
    if (dstW < 1 || dstH < 1)
        return;

    const float stepX = static_cast<float>(srcW) / static_cast<float>(dstW);
    const float stepY = static_cast<float>(srcH) / static_cast<float>(dstH);
    uint32_t n = 0;

    // Columns past the destination's width are dropped, so only the ones inside it are worked out, once.
    const int columns = dstW < destination.width ? dstW : destination.width;
    std::vector<Column> table(static_cast<size_t>(columns > 0 ? columns : 0));
    float fx = static_cast<float>(srcX);
    for (Column& column : table) {
        column.ix = TruncToInt(fx);
        const float fracX = fx - static_cast<float>(column.ix);
        column.wx = TruncToInt((1.0f - fracX) * 100.0f);
        column.wave = dither ? Wave(fracX) : 0.0f;
        fx += stepX;
    }

    float fy = static_cast<float>(srcY);
    for (int y = 0; y < dstH; ++y) {
        // Rows below the destination would all be dropped, and nothing they compute is carried on.
        if (y >= destination.height)
            break;
        const int32_t iy = TruncToInt(fy);
        const float fracY = fy - static_cast<float>(iy);
        const int32_t wy = TruncToInt((1.0f - fracY) * 100.0f);
        const float waveY = dither ? Wave(fracY) : 0.0f;

        for (int x = 0; x < dstW; ++x) {
            if (x >= columns) {
                // The rest of the row is dropped; only the noise index moves on, 2 per pixel, as it would.
                if (dither)
                    n = static_cast<uint32_t>((n + 2ull * static_cast<uint64_t>(dstW - x)) % kNoiseIndexWrap);
                break;
            }
            const int32_t ix = table[x].ix;
            const int32_t wx = table[x].wx;

            const Bgr p00 = SourcePixel(source, ix, iy);
            const Bgr p10 = SourcePixel(source, static_cast<int64_t>(ix) + 1, iy);
            const Bgr p01 = SourcePixel(source, ix, static_cast<int64_t>(iy) + 1);
            const Bgr p11 = SourcePixel(source, static_cast<int64_t>(ix) + 1, static_cast<int64_t>(iy) + 1);

            const int64_t wx64 = wx;
            const int64_t wy64 = wy;
            Bgr top;
            Bgr bottom;
            Bgr colour;
            for (int k = 0; k < 3; ++k) {
                top.c[k] = MixByte(p00.c[k], wx64, p10.c[k], 100 - wx64);
                bottom.c[k] = MixByte(p01.c[k], wx64, p11.c[k], 100 - wx64);
                colour.c[k] = MixByte(top.c[k], wy64, bottom.c[k], 100 - wy64);
            }

            if (dither) {
                const int d1 = MeanDifference(top, bottom);
                const int32_t f1 = EdgeFactor(d1, edgeDivisor, waveY, noiseBase, noiseTable[n]);
                for (int k = 0; k < 3; ++k)
                    colour.c[k] = FadeByte(colour.c[k], f1);

                Bgr left;
                Bgr right;
                for (int k = 0; k < 3; ++k) {
                    left.c[k] = MixByte(p01.c[k], 100 - wy64, p00.c[k], wy64);
                    right.c[k] = MixByte(p11.c[k], 100 - wy64, p10.c[k], wy64);
                }
                const int d2 = MeanDifference(left, right);
                const int32_t f2 = EdgeFactor(d2, edgeDivisor, table[x].wave, noiseBase, noiseTable[n + 1]);
                for (int k = 0; k < 3; ++k)
                    colour.c[k] = FadeByte(colour.c[k], f2);

                n += 2;
                if (n > kNoiseIndexWrap - 1)
                    n = 0;
            }

            const uint32_t value = static_cast<uint32_t>(colour.c[0]) | static_cast<uint32_t>(colour.c[1]) << 8 |
                                   static_cast<uint32_t>(colour.c[2]) << 16;
            WritePixel(destination, x, y, value);
        }
        fy += stepY;
    }
}

}  // namespace zcmod

namespace zcmod {

namespace {

// Floor of v / 256 for any sign, the arithmetic shift written so that it doesn't depend on the compiler.
inline int64_t FloorShift8(int64_t v)
{
    return v >= 0 ? v >> 8 : ~(~v >> 8);
}

inline uint8_t Fade(uint32_t c, int32_t factor)
{
    int64_t v = FloorShift8(static_cast<int64_t>(c) * factor);
    if (v > 255)
        v = 255;
    return static_cast<uint8_t>(static_cast<uint64_t>(v) & 0xFFu);
}

inline uint32_t Mean3(uint32_t a0, uint32_t a1, uint32_t a2, uint32_t b0, uint32_t b1, uint32_t b2)
{
    const uint32_t d0 = a0 > b0 ? a0 - b0 : b0 - a0;
    const uint32_t d1 = a1 > b1 ? a1 - b1 : b1 - a1;
    const uint32_t d2 = a2 > b2 ? a2 - b2 : b2 - a2;
    return (d0 + d1 + d2) / 3;
}

// Whether `rows` rows of `columns` pixels of the view lie in its buffer.
bool Holds(const PixelView& view, int64_t columns, int64_t rows)
{
    return view.buffer && view.width > 0 && view.height > 0 && view.stride >= 3 * static_cast<int64_t>(view.width) &&
           static_cast<int64_t>(view.stride) * (rows - 1) + 3 * columns <= static_cast<int64_t>(view.size);
}

struct FastColumn {
    uint32_t left;   // byte offset of the sample column ix, clamped into the image
    uint32_t right;  // and of ix + 1
    uint32_t wx;
    float wave;
};

}  // namespace

void ResizeDitherPixels(const PixelView& source, PixelView& destination, int srcX, int srcY, int srcW, int srcH,
                        int dstW, int dstH, int edgeDivisor, int noiseBase, const uint8_t* noiseTable)
{
    // The same arithmetic as the reference, arranged for speed: sample offsets and weights per column and per
    // row, edge ratios from a table of the 256 possible differences, and no 64-bit mixes where the weights are
    // hundredths. Anything unusual (weights outside 0 to 100, which only hostile rectangles give, or views whose
    // buffers are smaller than their geometry) goes to the reference.
    const bool dither = edgeDivisor != 0 && noiseBase != 0 && noiseTable != nullptr;
    if (dstW < 1 || dstH < 1 || !Holds(source, source.width, source.height)) {
        ResizeDitherPixelsReference(source, destination, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase,
                                    noiseTable);
        return;
    }
    const int columns = dstW < destination.width ? dstW : destination.width;
    const int rows = dstH < destination.height ? dstH : destination.height;
    if (columns < 1 || rows < 1 || !Holds(destination, columns, rows)) {
        ResizeDitherPixelsReference(source, destination, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase,
                                    noiseTable);
        return;
    }

    const float stepX = static_cast<float>(srcW) / static_cast<float>(dstW);
    const float stepY = static_cast<float>(srcH) / static_cast<float>(dstH);
    std::vector<FastColumn> table(static_cast<size_t>(columns));
    float fx = static_cast<float>(srcX);
    for (FastColumn& column : table) {
        const int32_t ix = TruncToInt(fx);
        const float fracX = fx - static_cast<float>(ix);
        const int32_t wx = TruncToInt((1.0f - fracX) * 100.0f);
        if (wx < 0 || wx > 100) {
            ResizeDitherPixelsReference(source, destination, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor,
                                        noiseBase, noiseTable);
            return;
        }
        column.left = static_cast<uint32_t>(3 * Clamp(ix, source.width - 1));
        column.right = static_cast<uint32_t>(3 * Clamp(static_cast<int64_t>(ix) + 1, source.width - 1));
        column.wx = static_cast<uint32_t>(wx);
        column.wave = dither ? Wave(fracX) : 0.0f;
        fx += stepX;
    }
    struct FastRow {
        const uint8_t* top;
        const uint8_t* bottom;
        uint32_t wy;
        float wave;
    };
    std::vector<FastRow> rowTable(static_cast<size_t>(rows));
    float fy = static_cast<float>(srcY);
    for (FastRow& row : rowTable) {
        const int32_t iy = TruncToInt(fy);
        const float fracY = fy - static_cast<float>(iy);
        const int32_t wy = TruncToInt((1.0f - fracY) * 100.0f);
        if (wy < 0 || wy > 100) {
            ResizeDitherPixelsReference(source, destination, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor,
                                        noiseBase, noiseTable);
            return;
        }
        row.top = source.buffer + static_cast<int64_t>(source.stride) * Clamp(iy, source.height - 1);
        row.bottom = source.buffer + static_cast<int64_t>(source.stride) * Clamp(static_cast<int64_t>(iy) + 1,
                                                                                source.height - 1);
        row.wy = static_cast<uint32_t>(wy);
        row.wave = dither ? Wave(fracY) : 0.0f;
        fy += stepY;
    }

    // d / edgeDivisor for every mean difference d, and noiseBase - noise for every noise byte, as the
    // reference computes them.
    float ratio[256];
    float span[256];
    if (dither)
        for (int i = 0; i < 256; ++i) {
            ratio[i] = static_cast<float>(i) / static_cast<float>(edgeDivisor);
            span[i] = static_cast<float>(static_cast<int64_t>(noiseBase) - i);
        }

    WritePixel(destination, 0, 0, 0);
    uint32_t n = 0;
    float rowRatio[256];
    for (int y = 0; y < rows; ++y) {
        const FastRow& row = rowTable[static_cast<size_t>(y)];
        const uint32_t wy = row.wy;
        uint8_t* out = destination.buffer + static_cast<int64_t>(destination.stride) * y;
        if (dither)
            for (int i = 0; i < 256; ++i)
                rowRatio[i] = ratio[i] * row.wave;
        for (int x = 0; x < columns; ++x, out += 3) {
            const FastColumn& column = table[static_cast<size_t>(x)];
            const uint8_t* p00 = row.top + column.left;
            const uint8_t* p10 = row.top + column.right;
            const uint8_t* p01 = row.bottom + column.left;
            const uint8_t* p11 = row.bottom + column.right;
            const uint32_t wx = column.wx;
            uint32_t top[3], bottom[3], colour[3];
            for (int k = 0; k < 3; ++k) {
                top[k] = (p00[k] * wx + p10[k] * (100 - wx)) / 100;
                bottom[k] = (p01[k] * wx + p11[k] * (100 - wx)) / 100;
                colour[k] = (top[k] * wy + bottom[k] * (100 - wy)) / 100;
            }
            if (dither) {
                const uint32_t d1 = Mean3(top[0], top[1], top[2], bottom[0], bottom[1], bottom[2]);
                float product = rowRatio[d1] * span[noiseTable[n]];
                const int32_t f1 = TruncToInt(255.0f - product);
                uint32_t left[3], right[3];
                for (int k = 0; k < 3; ++k) {
                    colour[k] = Fade(colour[k], f1);
                    left[k] = (p01[k] * (100 - wy) + p00[k] * wy) / 100;
                    right[k] = (p11[k] * (100 - wy) + p10[k] * wy) / 100;
                }
                const uint32_t d2 = Mean3(left[0], left[1], left[2], right[0], right[1], right[2]);
                product = ratio[d2] * column.wave;
                product = product * span[noiseTable[n + 1]];
                const int32_t f2 = TruncToInt(255.0f - product);
                for (int k = 0; k < 3; ++k)
                    colour[k] = Fade(colour[k], f2);
                n += 2;
                if (n > kNoiseIndexWrap - 1)
                    n = 0;
            }
            out[0] = static_cast<uint8_t>(colour[0]);
            out[1] = static_cast<uint8_t>(colour[1]);
            out[2] = static_cast<uint8_t>(colour[2]);
        }
        // The zero fourth byte of the row's last 32-bit store, where it lies in the buffer.
        if (static_cast<size_t>(out - destination.buffer) < destination.size)
            *out = 0;
        if (dither && columns < dstW)
            n = static_cast<uint32_t>((n + 2ull * static_cast<uint64_t>(dstW - columns)) % kNoiseIndexWrap);
    }
}

}  // namespace zcmod
