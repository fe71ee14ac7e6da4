#include "core/PixelMath.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__x86_64__) || defined(_M_X64)
#define ZCMOD_PIXEL_SSE2 1
#include <immintrin.h>
#else
#define ZCMOD_PIXEL_SSE2 0
#endif

#if ZCMOD_PIXEL_SSE2 && (defined(__GNUC__) || defined(__clang__))
#define ZCMOD_TARGET_AVX2 __attribute__((target("avx2")))
#else
#define ZCMOD_TARGET_AVX2
#endif

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

// A sample position of the resize, in single precision as the arithmetic is defined: its whole part, the first
// sample's weight in hundredths, trunc((1 - fraction) * 100), and the wave of its fraction when noise is on.
struct Sample {
    int32_t whole;
    int32_t weight;
    float wave;
};

Sample SampleAt(float position, bool dither)
{
    const int32_t whole = TruncToInt(position);
    const float fraction = position - static_cast<float>(whole);
    return Sample{whole, TruncToInt((1.0f - fraction) * 100.0f), dither ? Wave(fraction) : 0.0f};
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
        const Sample sample = SampleAt(fx, dither);
        column.ix = sample.whole;
        column.wx = sample.weight;
        column.wave = sample.wave;
        fx += stepX;
    }

    float fy = static_cast<float>(srcY);
    for (int y = 0; y < dstH; ++y) {
        // Rows below the destination would all be dropped, and nothing they compute is carried on.
        if (y >= destination.height)
            break;
        const Sample sample = SampleAt(fy, dither);
        const int32_t iy = sample.whole, wy = sample.weight;
        const float waveY = sample.wave;

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

#if ZCMOD_PIXEL_SSE2

// v / 100 in each 16-bit lane, exact for every v up to 25,500 (255 * 100), the largest mix of two weights.
inline __m128i Div100(__m128i v)
{
    return _mm_srli_epi16(_mm_mulhi_epu16(v, _mm_set1_epi16(static_cast<short>(41944))), 6);
}

// The three bytes of the pixels at `a` and `b` in 16-bit lanes 0 to 2 and 4 to 6; lanes 3 and 7 are 0. Reads
// four bytes at each.
inline __m128i LoadPair(const uint8_t* a, const uint8_t* b)
{
    int32_t va, vb;
    memcpy(&va, a, 4);
    memcpy(&vb, b, 4);
    const __m128i both = _mm_and_si128(_mm_unpacklo_epi32(_mm_cvtsi32_si128(va), _mm_cvtsi32_si128(vb)),
                                       _mm_set1_epi32(0x00FFFFFF));
    return _mm_unpacklo_epi8(both, _mm_setzero_si128());
}

// The fade of the bytes in lanes 0 to 2 by `factor`, which must lie in -32,768 to 32,767: min(255, (c * factor)
// >> 8), of which the low 8 bits are kept. The products fit 32 bits and the shifted ones 16.
inline __m128i FadeLanes(__m128i c, int32_t factor)
{
    const __m128i f = _mm_set1_epi16(static_cast<short>(factor));
    const __m128i products = _mm_unpacklo_epi16(_mm_mullo_epi16(c, f), _mm_mulhi_epi16(c, f));
    const __m128i shifted = _mm_packs_epi32(_mm_srai_epi32(products, 8), _mm_setzero_si128());
    return _mm_and_si128(_mm_min_epi16(shifted, _mm_set1_epi16(255)), _mm_set1_epi16(0xFF));
}

// Whether a fade factor, before its truncation, truncates to -32,768 to 32,767 (false for NaN).
inline bool FitsLanes(float factor)
{
    return factor > -32769.0f && factor < 32768.0f;
}

// The truncated mean of the differences between lanes 0 to 2 and lanes 4 to 6, all of them bytes, lanes 3 and
// 7 zero: packed to bytes, the first four against the next four in one sum of absolute differences.
inline uint32_t MeanOfHalves(__m128i v)
{
    const __m128i bytes = _mm_packus_epi16(v, _mm_setzero_si128());
    const __m128i first = _mm_cvtsi32_si128(_mm_cvtsi128_si32(bytes));
    const __m128i second = _mm_srli_si128(bytes, 4);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_sad_epu8(first, second))) / 3;
}

// Lanes 0 to 2 plus lanes 4 to 6, divided by 100.
inline __m128i MixHalves(__m128i v)
{
    return Div100(_mm_add_epi16(v, _mm_srli_si128(v, 8)));
}

#endif

}  // namespace

namespace {

// Everything one resize works out before its rows: sample offsets and weights per column and per row, and the
// edge ratios and noise spans of the fades.
struct DitherPlan {
    const PixelView* source = nullptr;
    PixelView* destination = nullptr;
    const uint8_t* noiseTable = nullptr;
    bool dither = false;
    int edgeDivisor = 0;
    int noiseBase = 0;
    int columns = 0;
    int rows = 0;
    int dstW = 0;
    std::vector<FastColumn> table;
    struct Row {
        const uint8_t* top;
        const uint8_t* bottom;
        uint32_t wy;
        float wave;
    };
    std::vector<Row> rowTable;
    uint64_t farthest = 0;  // the largest sample offset of a row
    // d / edgeDivisor for every mean difference d, and noiseBase - noise for every noise byte, as the
    // reference computes them.
    float ratio[256];
    float span[256];

    // Builds the plan; false when the call needs the reference (weights outside 0 to 100, which only hostile
    // rectangles give, or views whose buffers are smaller than their geometry).
    bool Make(const PixelView& src, PixelView& dst, int srcX, int srcY, int srcW, int srcH, int width, int height,
              int divisor, int base, const uint8_t* noise)
    {
        source = &src;
        destination = &dst;
        noiseTable = noise;
        edgeDivisor = divisor;
        noiseBase = base;
        dstW = width;
        dither = divisor != 0 && base != 0 && noise != nullptr;
        if (width < 1 || height < 1 || !Holds(src, src.width, src.height))
            return false;
        columns = width < dst.width ? width : dst.width;
        rows = height < dst.height ? height : dst.height;
        if (columns < 1 || rows < 1 || !Holds(dst, columns, rows))
            return false;

        const float stepX = static_cast<float>(srcW) / static_cast<float>(width);
        const float stepY = static_cast<float>(srcH) / static_cast<float>(height);
        table.resize(static_cast<size_t>(columns));
        float fx = static_cast<float>(srcX);
        for (FastColumn& column : table) {
            const Sample sample = SampleAt(fx, dither);
            if (sample.weight < 0 || sample.weight > 100)
                return false;
            column.left = static_cast<uint32_t>(3 * Clamp(sample.whole, src.width - 1));
            column.right = static_cast<uint32_t>(3 * Clamp(static_cast<int64_t>(sample.whole) + 1, src.width - 1));
            column.wx = static_cast<uint32_t>(sample.weight);
            column.wave = sample.wave;
            farthest = column.right > farthest ? column.right : farthest;
            fx += stepX;
        }
        rowTable.resize(static_cast<size_t>(rows));
        float fy = static_cast<float>(srcY);
        for (Row& row : rowTable) {
            const Sample sample = SampleAt(fy, dither);
            if (sample.weight < 0 || sample.weight > 100)
                return false;
            const int64_t stride = src.stride;
            row.top = src.buffer + stride * Clamp(sample.whole, src.height - 1);
            row.bottom = src.buffer + stride * Clamp(static_cast<int64_t>(sample.whole) + 1, src.height - 1);
            row.wy = static_cast<uint32_t>(sample.weight);
            row.wave = sample.wave;
            fy += stepY;
        }
        if (dither)
            for (int i = 0; i < 256; ++i) {
                ratio[i] = static_cast<float>(i) / static_cast<float>(edgeDivisor);
                span[i] = static_cast<float>(static_cast<int64_t>(noiseBase) - i);
            }
        return true;
    }

    // Whether four bytes read at every sample offset of the source row at `row` stay in the buffer.
    bool RowReadsFour(const uint8_t* row) const
    {
        return static_cast<uint64_t>(row - source->buffer) + farthest + 4 <= source->size;
    }

    uint8_t* Out(int y, int x) const
    {
        return destination->buffer + static_cast<int64_t>(destination->stride) * y + 3 * static_cast<int64_t>(x);
    }

    // The noise index after the columns past the destination's width, which are dropped but use noise.
    uint32_t SkipDropped(uint32_t n) const
    {
        if (dither && columns < dstW)
            n = static_cast<uint32_t>((n + 2ull * static_cast<uint64_t>(dstW - columns)) % kNoiseIndexWrap);
        return n;
    }
};

// The row's edge ratios times its wave, as the first fade multiplies them.
void RowRatios(const DitherPlan& plan, const DitherPlan::Row& row, float* rowRatio)
{
    for (int i = 0; i < 256; ++i)
        rowRatio[i] = plan.ratio[i] * row.wave;
}

// Output pixels x0 to x1 of row y, one at a time; `n` is the noise index of pixel x0, and the one after x1 is
// returned.
uint32_t MixPixels(const DitherPlan& plan, int y, const float* rowRatio, int x0, int x1, uint32_t n)
{
    const DitherPlan::Row& row = plan.rowTable[static_cast<size_t>(y)];
    const uint32_t wy = row.wy;
    const uint32_t vy = 100 - wy;
    const bool dither = plan.dither;
    const float* ratio = plan.ratio;
    const float* span = plan.span;
    const uint8_t* noiseTable = plan.noiseTable;
    uint8_t* out = plan.Out(y, x0);
#if ZCMOD_PIXEL_SSE2
    // The vector form reads four bytes a pixel: where the last one may lie past the buffer, the row goes the
    // scalar way.
    if (plan.RowReadsFour(row.top) && plan.RowReadsFour(row.bottom)) {
        // Lanes 0 to 3 weigh by wy, lanes 4 to 7 by 100 - wy.
        const __m128i rowWeights =
            _mm_set_epi16(static_cast<short>(vy), static_cast<short>(vy), static_cast<short>(vy),
                          static_cast<short>(vy), static_cast<short>(wy), static_cast<short>(wy),
                          static_cast<short>(wy), static_cast<short>(wy));
        for (int x = x0; x < x1; ++x, out += 3) {
            const FastColumn& column = plan.table[static_cast<size_t>(x)];
            const __m128i a = LoadPair(row.top + column.left, row.bottom + column.left);    // p00 | p01
            const __m128i b = LoadPair(row.top + column.right, row.bottom + column.right);  // p10 | p11
            const __m128i topBottom =
                Div100(_mm_add_epi16(_mm_mullo_epi16(a, _mm_set1_epi16(static_cast<short>(column.wx))),
                                     _mm_mullo_epi16(b, _mm_set1_epi16(static_cast<short>(100 - column.wx)))));
            __m128i colour = MixHalves(_mm_mullo_epi16(topBottom, rowWeights));
            uint32_t c0, c1, c2;
            if (dither) {
                const uint32_t d1 = MeanOfHalves(topBottom);
                float product = rowRatio[d1] * span[noiseTable[n]];
                const float g1 = 255.0f - product;
                // left = (p01 (100 - wy) + p00 wy) / 100, right the same of p11 and p10.
                const __m128i left = MixHalves(_mm_mullo_epi16(a, rowWeights));
                const __m128i right = MixHalves(_mm_mullo_epi16(b, rowWeights));
                const uint32_t d2 = MeanOfHalves(_mm_unpacklo_epi64(left, right));
                product = ratio[d2] * column.wave;
                product = product * span[noiseTable[n + 1]];
                const float g2 = 255.0f - product;
                n += 2;
                if (n > kNoiseIndexWrap - 1)
                    n = 0;
                if (FitsLanes(g1) && FitsLanes(g2)) {
                    // In range, the truncation is the plain conversion.
                    colour = FadeLanes(FadeLanes(colour, static_cast<int32_t>(g1)), static_cast<int32_t>(g2));
                    const uint32_t packed = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(colour, colour)));
                    c0 = packed & 0xFF, c1 = packed >> 8 & 0xFF, c2 = packed >> 16 & 0xFF;
                } else {
                    const int32_t f1 = TruncToInt(g1), f2 = TruncToInt(g2);
                    const uint32_t packed = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(colour, colour)));
                    c0 = Fade(Fade(packed & 0xFF, f1), f2);
                    c1 = Fade(Fade(packed >> 8 & 0xFF, f1), f2);
                    c2 = Fade(Fade(packed >> 16 & 0xFF, f1), f2);
                }
            } else {
                const uint32_t packed = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(colour, colour)));
                c0 = packed & 0xFF, c1 = packed >> 8 & 0xFF, c2 = packed >> 16 & 0xFF;
            }
            out[0] = static_cast<uint8_t>(c0);
            out[1] = static_cast<uint8_t>(c1);
            out[2] = static_cast<uint8_t>(c2);
        }
        return n;
    }
#endif
    for (int x = x0; x < x1; ++x, out += 3) {
        const FastColumn& column = plan.table[static_cast<size_t>(x)];
        const uint8_t* p00 = row.top + column.left;
        const uint8_t* p10 = row.top + column.right;
        const uint8_t* p01 = row.bottom + column.left;
        const uint8_t* p11 = row.bottom + column.right;
        const uint32_t wx = column.wx;
        const uint32_t vx = 100 - wx;
        // The three channels written out, so that every value stays in a register.
        const uint32_t t0 = (p00[0] * wx + p10[0] * vx) / 100;
        const uint32_t t1 = (p00[1] * wx + p10[1] * vx) / 100;
        const uint32_t t2 = (p00[2] * wx + p10[2] * vx) / 100;
        const uint32_t b0 = (p01[0] * wx + p11[0] * vx) / 100;
        const uint32_t b1 = (p01[1] * wx + p11[1] * vx) / 100;
        const uint32_t b2 = (p01[2] * wx + p11[2] * vx) / 100;
        uint32_t c0 = (t0 * wy + b0 * vy) / 100;
        uint32_t c1 = (t1 * wy + b1 * vy) / 100;
        uint32_t c2 = (t2 * wy + b2 * vy) / 100;
        if (dither) {
            const uint32_t d1 = Mean3(t0, t1, t2, b0, b1, b2);
            float product = rowRatio[d1] * span[noiseTable[n]];
            const int32_t f1 = TruncToInt(255.0f - product);
            c0 = Fade(c0, f1);
            c1 = Fade(c1, f1);
            c2 = Fade(c2, f1);
            const uint32_t l0 = (p01[0] * vy + p00[0] * wy) / 100;
            const uint32_t l1 = (p01[1] * vy + p00[1] * wy) / 100;
            const uint32_t l2 = (p01[2] * vy + p00[2] * wy) / 100;
            const uint32_t r0 = (p11[0] * vy + p10[0] * wy) / 100;
            const uint32_t r1 = (p11[1] * vy + p10[1] * wy) / 100;
            const uint32_t r2 = (p11[2] * vy + p10[2] * wy) / 100;
            const uint32_t d2 = Mean3(l0, l1, l2, r0, r1, r2);
            product = ratio[d2] * column.wave;
            product = product * span[noiseTable[n + 1]];
            const int32_t f2 = TruncToInt(255.0f - product);
            c0 = Fade(c0, f2);
            c1 = Fade(c1, f2);
            c2 = Fade(c2, f2);
            n += 2;
            if (n > kNoiseIndexWrap - 1)
                n = 0;
        }
        out[0] = static_cast<uint8_t>(c0);
        out[1] = static_cast<uint8_t>(c1);
        out[2] = static_cast<uint8_t>(c2);
    }
    return n;
}

// The zero fourth byte of the row's last 32-bit store, where it lies in the buffer.
void EndRow(const DitherPlan& plan, int y)
{
    uint8_t* end = plan.Out(y, plan.columns);
    if (static_cast<size_t>(end - plan.destination->buffer) < plan.destination->size)
        *end = 0;
}

void ResizePixelByPixel(const DitherPlan& plan)
{
    float rowRatio[256];
    uint32_t n = 0;
    for (int y = 0; y < plan.rows; ++y) {
        if (plan.dither)
            RowRatios(plan, plan.rowTable[static_cast<size_t>(y)], rowRatio);
        n = MixPixels(plan, y, rowRatio, 0, plan.columns, n);
        EndRow(plan, y);
        n = plan.SkipDropped(n);
    }
}

#if ZCMOD_PIXEL_SSE2

// The AVX2 form works on blocks of 16 output pixels with each channel in its own register, one 16-bit lane a
// pixel. The source pixels a block samples are gathered once per source row into planes (blue, green, red of
// the left sample, then of the right sample, one byte a column), which the output rows above and below that
// source row share.
constexpr int kBlock = 16;

struct SourcePlanes {
    const uint8_t* row = nullptr;  // the source row these planes hold, null for none
    std::vector<uint8_t> bytes;    // six planes of `width` bytes
    int width = 0;
    const uint8_t* Plane(int k) const { return bytes.data() + static_cast<size_t>(k) * width; }
};

// Offsets and weights of the columns as the blocks load them.
struct ColumnPlanes {
    std::vector<int32_t> left, right;
    std::vector<uint16_t> wx;
    std::vector<float> wave;
};

ZCMOD_TARGET_AVX2 void FillPlanes(const DitherPlan& plan, const ColumnPlanes& columns, const uint8_t* row,
                                  SourcePlanes& planes)
{
    planes.row = row;
    const int width = planes.width;
    uint8_t* out[6];
    for (int k = 0; k < 6; ++k)
        out[k] = planes.bytes.data() + static_cast<size_t>(k) * width;
    int x = 0;
    if (plan.RowReadsFour(row)) {
        // Eight pixels of four bytes by one gather, their blue, green and red bytes then sorted into three runs.
        const __m256i sort = _mm256_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, -1, -1, -1, -1, 0, 4, 8, 12, 1,
                                              5, 9, 13, 2, 6, 10, 14, -1, -1, -1, -1);
        const __m256i halves = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
        const int* base = reinterpret_cast<const int*>(row);
        for (; x + 8 <= plan.columns; x += 8)
            for (int side = 0; side < 2; ++side) {
                const int32_t* offsets = (side ? columns.right : columns.left).data() + x;
                const __m256i pixels = _mm256_i32gather_epi32(
                    base, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(offsets)), 1);
                // Blues of pixels 0 to 7, then greens, then reds.
                const __m256i sorted = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(pixels, sort), halves);
                const __m128i blueGreen = _mm256_castsi256_si128(sorted);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out[3 * side] + x), blueGreen);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out[3 * side + 1] + x), _mm_srli_si128(blueGreen, 8));
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out[3 * side + 2] + x),
                                 _mm256_extracti128_si256(sorted, 1));
            }
    }
    for (; x < plan.columns; ++x)
        for (int k = 0; k < 3; ++k) {
            out[k][x] = row[columns.left[static_cast<size_t>(x)] + k];
            out[3 + k][x] = row[columns.right[static_cast<size_t>(x)] + k];
        }
}

ZCMOD_TARGET_AVX2 inline __m256i Div100x16(__m256i v)
{
    return _mm256_srli_epi16(_mm256_mulhi_epu16(v, _mm256_set1_epi16(static_cast<short>(41944))), 6);
}

// (a * wa + b * wb) / 100 in each lane.
ZCMOD_TARGET_AVX2 inline __m256i Mix16(__m256i a, __m256i wa, __m256i b, __m256i wb)
{
    return Div100x16(_mm256_add_epi16(_mm256_mullo_epi16(a, wa), _mm256_mullo_epi16(b, wb)));
}

ZCMOD_TARGET_AVX2 inline __m256i Load16(const uint8_t* p)
{
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}

// The truncated mean of the three absolute differences; the sum is at most 765, where s * 21846 >> 16 is s / 3.
ZCMOD_TARGET_AVX2 inline __m256i MeanDifference16(const __m256i* a, const __m256i* b)
{
    const __m256i sum = _mm256_add_epi16(
        _mm256_add_epi16(_mm256_abs_epi16(_mm256_sub_epi16(a[0], b[0])), _mm256_abs_epi16(_mm256_sub_epi16(a[1], b[1]))),
        _mm256_abs_epi16(_mm256_sub_epi16(a[2], b[2])));
    return _mm256_mulhi_epu16(sum, _mm256_set1_epi16(21846));
}

// 255 - ((d / divisor) * wave) * span for eight pixels, in the reference's order of single-precision steps.
ZCMOD_TARGET_AVX2 inline __m256 FadeFactor(__m128i d, __m256 divisor, __m256 wave, __m128i noise, __m256 base)
{
    const __m256 ratio = _mm256_div_ps(_mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(d)), divisor);
    const __m256 span = _mm256_sub_ps(base, _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(noise)));
    const __m256 product = _mm256_mul_ps(_mm256_mul_ps(ratio, wave), span);
    return _mm256_sub_ps(_mm256_set1_ps(255.0f), product);
}

// Whether every factor truncates to -16,384 to 16,383, where twice it fits a 16-bit lane.
ZCMOD_TARGET_AVX2 inline bool FitsHalfLanes(__m256 factor)
{
    const __m256 inside = _mm256_and_ps(_mm256_cmp_ps(factor, _mm256_set1_ps(-16385.0f), _CMP_GT_OQ),
                                        _mm256_cmp_ps(factor, _mm256_set1_ps(16384.0f), _CMP_LT_OQ));
    return _mm256_movemask_ps(inside) == 0xFF;
}

// Twice the truncated factors of pixels 0 to 7 (`low`) and 8 to 15 (`high`) in 16-bit lanes, in pixel order.
ZCMOD_TARGET_AVX2 inline __m256i DoubledFactors(__m256 low, __m256 high)
{
    const __m256i packed = _mm256_packs_epi32(_mm256_cvttps_epi32(low), _mm256_cvttps_epi32(high));
    return _mm256_slli_epi16(_mm256_permute4x64_epi64(packed, 0xD8), 1);
}

// min(255, (c * factor) >> 8), low 8 bits kept, with twice the factor given: the high half of (c * 128) *
// (2 * factor) is (c * factor) >> 8, rounded toward minus infinity.
ZCMOD_TARGET_AVX2 inline __m256i Fade16(__m256i c, __m256i doubledFactor)
{
    const __m256i faded = _mm256_mulhi_epi16(_mm256_slli_epi16(c, 7), doubledFactor);
    return _mm256_and_si256(_mm256_min_epi16(faded, _mm256_set1_epi16(255)), _mm256_set1_epi16(0xFF));
}

// Shuffles that lay three planes of 16 bytes out as 16 pixels of blue, green, red: for output part `part` (16
// bytes) and channel `channel`, the plane byte that goes to each place, or -1.
struct Interleave {
    alignas(16) int8_t mask[3][3][16];
    Interleave()
    {
        for (int part = 0; part < 3; ++part)
            for (int channel = 0; channel < 3; ++channel)
                for (int i = 0; i < 16; ++i) {
                    const int at = part * 16 + i;
                    mask[part][channel][i] = static_cast<int8_t>(at % 3 == channel ? at / 3 : -1);
                }
    }
};

// One block of 16 output pixels from x of row y; false, with nothing written, where a fade factor lies outside
// the 16-bit form (the block then goes pixel by pixel).
ZCMOD_TARGET_AVX2 bool MixBlock(const DitherPlan& plan, const ColumnPlanes& columns, const SourcePlanes& top,
                                const SourcePlanes& bottom, const DitherPlan::Row& row, int x, uint32_t n,
                                uint8_t* out, const Interleave& interleave)
{
    const __m256i wx = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(columns.wx.data() + x));
    const __m256i vx = _mm256_sub_epi16(_mm256_set1_epi16(100), wx);
    const __m256i wy = _mm256_set1_epi16(static_cast<short>(row.wy));
    const __m256i vy = _mm256_set1_epi16(static_cast<short>(100 - row.wy));
    __m256i p00[3], p10[3], p01[3], p11[3], upper[3], lower[3], colour[3];
    for (int k = 0; k < 3; ++k) {
        p00[k] = Load16(top.Plane(k) + x);
        p10[k] = Load16(top.Plane(3 + k) + x);
        p01[k] = Load16(bottom.Plane(k) + x);
        p11[k] = Load16(bottom.Plane(3 + k) + x);
        upper[k] = Mix16(p00[k], wx, p10[k], vx);
        lower[k] = Mix16(p01[k], wx, p11[k], vx);
        colour[k] = Mix16(upper[k], wy, lower[k], vy);
    }
    if (plan.dither) {
        __m256i left[3], right[3];
        for (int k = 0; k < 3; ++k) {
            left[k] = Mix16(p01[k], vy, p00[k], wy);
            right[k] = Mix16(p11[k], vy, p10[k], wy);
        }
        const __m256i d1 = MeanDifference16(upper, lower);
        const __m256i d2 = MeanDifference16(left, right);
        // The noise of pixel i is entry n + 2i for the first fade and n + 2i + 1 for the second.
        const __m256i noise = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(plan.noiseTable + n));
        const __m256i noise1 = _mm256_and_si256(noise, _mm256_set1_epi16(0xFF));
        const __m256i noise2 = _mm256_srli_epi16(noise, 8);
        const __m256 divisor = _mm256_set1_ps(static_cast<float>(plan.edgeDivisor));
        const __m256 base = _mm256_set1_ps(static_cast<float>(plan.noiseBase));
        const __m256 waveY = _mm256_set1_ps(row.wave);
        const __m256 g1Low = FadeFactor(_mm256_castsi256_si128(d1), divisor, waveY, _mm256_castsi256_si128(noise1), base);
        const __m256 g1High = FadeFactor(_mm256_extracti128_si256(d1, 1), divisor, waveY,
                                         _mm256_extracti128_si256(noise1, 1), base);
        const __m256 g2Low = FadeFactor(_mm256_castsi256_si128(d2), divisor, _mm256_loadu_ps(columns.wave.data() + x),
                                        _mm256_castsi256_si128(noise2), base);
        const __m256 g2High = FadeFactor(_mm256_extracti128_si256(d2, 1), divisor,
                                         _mm256_loadu_ps(columns.wave.data() + x + 8),
                                         _mm256_extracti128_si256(noise2, 1), base);
        if (!FitsHalfLanes(g1Low) || !FitsHalfLanes(g1High) || !FitsHalfLanes(g2Low) || !FitsHalfLanes(g2High))
            return false;
        const __m256i f1 = DoubledFactors(g1Low, g1High);
        const __m256i f2 = DoubledFactors(g2Low, g2High);
        for (int k = 0; k < 3; ++k)
            colour[k] = Fade16(Fade16(colour[k], f1), f2);
    }
    // Each value is a byte now: 16 of each channel, then the three laid out as pixels.
    __m128i plane[3];
    for (int k = 0; k < 3; ++k)
        plane[k] = _mm_packus_epi16(_mm256_castsi256_si128(colour[k]), _mm256_extracti128_si256(colour[k], 1));
    for (int part = 0; part < 3; ++part) {
        __m128i bytes = _mm_setzero_si128();
        for (int k = 0; k < 3; ++k)
            bytes = _mm_or_si128(bytes, _mm_shuffle_epi8(plane[k], _mm_load_si128(reinterpret_cast<const __m128i*>(
                                                                       interleave.mask[part][k]))));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 16 * part), bytes);
    }
    return true;
}

ZCMOD_TARGET_AVX2 void ResizeByBlocks(const DitherPlan& plan)
{
    static const Interleave interleave;
    const int columns = plan.columns;
    const int blocks = columns / kBlock;
    ColumnPlanes columnPlanes;
    columnPlanes.left.resize(static_cast<size_t>(columns));
    columnPlanes.right.resize(static_cast<size_t>(columns));
    columnPlanes.wx.resize(static_cast<size_t>(columns));
    columnPlanes.wave.resize(static_cast<size_t>(columns));
    for (size_t x = 0; x < static_cast<size_t>(columns); ++x) {
        columnPlanes.left[x] = static_cast<int32_t>(plan.table[x].left);
        columnPlanes.right[x] = static_cast<int32_t>(plan.table[x].right);
        columnPlanes.wx[x] = static_cast<uint16_t>(plan.table[x].wx);
        columnPlanes.wave[x] = plan.table[x].wave;
    }
    // Two source rows in planes: an output row takes the one above it and the one below, and its successor
    // mostly one or both of the same.
    SourcePlanes slots[2];
    for (SourcePlanes& slot : slots) {
        slot.width = columns;
        slot.bytes.resize(static_cast<size_t>(columns) * 6);
    }
    auto planesOf = [&](const uint8_t* row, const SourcePlanes* keep) -> const SourcePlanes& {
        for (SourcePlanes& slot : slots)
            if (slot.row == row)
                return slot;
        SourcePlanes& slot = &slots[0] == keep ? slots[1] : slots[0];
        FillPlanes(plan, columnPlanes, row, slot);
        return slot;
    };

    float rowRatio[256];
    uint32_t n = 0;
    for (int y = 0; y < plan.rows; ++y) {
        const DitherPlan::Row& row = plan.rowTable[static_cast<size_t>(y)];
        const SourcePlanes& top = planesOf(row.top, nullptr);
        const SourcePlanes& bottom = planesOf(row.bottom, &top);
        bool ratios = false;  // rowRatio is filled for this row
        for (int b = 0; b < blocks; ++b) {
            const int x = b * kBlock;
            // A block whose noise would run past the end of the table, where the index wraps, goes pixel by pixel.
            const bool wraps = plan.dither && n + 2 * kBlock > kNoiseIndexWrap;
            if (!wraps && MixBlock(plan, columnPlanes, top, bottom, row, x, n, plan.Out(y, x), interleave)) {
                if (plan.dither)
                    n = (n + 2 * kBlock) % kNoiseIndexWrap;
                continue;
            }
            if (plan.dither && !ratios) {
                RowRatios(plan, row, rowRatio);
                ratios = true;
            }
            n = MixPixels(plan, y, rowRatio, x, x + kBlock, n);
        }
        if (blocks * kBlock < columns) {
            if (plan.dither && !ratios)
                RowRatios(plan, row, rowRatio);
            n = MixPixels(plan, y, rowRatio, blocks * kBlock, columns, n);
        }
        EndRow(plan, y);
        n = plan.SkipDropped(n);
    }
    _mm256_zeroupper();
}

// Whether the block form computes the fades of this call exactly: its noise spans are single-precision
// conversions of 32-bit integers, exact while noiseBase - noise stays within 2^24.
bool BlocksFit(const DitherPlan& plan)
{
    return !plan.dither || (plan.noiseBase > -(1 << 24) + 256 && plan.noiseBase < (1 << 24));
}

#endif

using ResizeFunction = void (*)(const PixelView&, PixelView&, int, int, int, int, int, int, int, int,
                                const uint8_t*);

template <bool blocks>
void ResizeWith(const PixelView& source, PixelView& destination, int srcX, int srcY, int srcW, int srcH, int dstW,
                int dstH, int edgeDivisor, int noiseBase, const uint8_t* noiseTable)
{
    DitherPlan plan;
    if (!plan.Make(source, destination, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase, noiseTable)) {
        ResizeDitherPixelsReference(source, destination, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase,
                                    noiseTable);
        return;
    }
    WritePixel(destination, 0, 0, 0);
#if ZCMOD_PIXEL_SSE2
    if (blocks && BlocksFit(plan)) {
        ResizeByBlocks(plan);
        return;
    }
#else
    (void)blocks;
#endif
    ResizePixelByPixel(plan);
}

}  // namespace

void ResizeDitherPixels(const PixelView& source, PixelView& destination, int srcX, int srcY, int srcW, int srcH,
                        int dstW, int dstH, int edgeDivisor, int noiseBase, const uint8_t* noiseTable)
{
    // The same arithmetic as the reference, arranged for speed: sample offsets and weights per column and per
    // row, and then blocks of 16 pixels a channel to a register where the processor has AVX2, else a pixel at a
    // time with its three channels in one register. Anything unusual goes to the reference.
    static const ResizeFunction resize = ProcessorHasAvx2() ? ResizeWith<true> : ResizeWith<false>;
    resize(source, destination, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase, noiseTable);
}

std::vector<ResizeForm> ResizeDitherForms()
{
    std::vector<ResizeForm> forms{{"reference", ResizeDitherPixelsReference}, {"pixels", ResizeWith<false>}};
    if (ProcessorHasAvx2())
        forms.push_back({"blocks", ResizeWith<true>});
    return forms;
}

}  // namespace zcmod
