// Pixel arithmetic of the image toolkit: the byte blend, the colour helpers and the dithering resize.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "core/PixelMath.h"

using namespace zcmod;

namespace {

using Bytes = std::vector<uint8_t>;

struct Image {
    int width;
    int height;
    int stride;
    Bytes bytes;

    // Rows of `rowBytes`; a destination as the toolkit makes one has width * 3 + 4, so every 32-bit store fits.
    Image(int w, int h, int rowBytes = 0, uint8_t fill = 0)
        : width(w), height(h), stride(rowBytes ? rowBytes : w * 3 + 4), bytes(static_cast<size_t>(stride) * h, fill)
    {
    }
    PixelView View() { return PixelView{width, height, bytes.data(), stride, bytes.size()}; }
    uint8_t* At(int x, int y) { return &bytes[static_cast<size_t>(stride) * y + 3 * x]; }
    void Set(int x, int y, uint8_t b, uint8_t g, uint8_t r) { At(x, y)[0] = b, At(x, y)[1] = g, At(x, y)[2] = r; }
    Bytes Pixel(int x, int y) { return Bytes(At(x, y), At(x, y) + 3); }
    // Runs the resize from `source` into this image.
    void Resize(Image& source, int srcX, int srcY, int srcW, int srcH, int dstW, int dstH, int edgeDivisor,
                int noiseBase, const uint8_t* table)
    {
        PixelView view = View();
        ResizeDitherPixels(source.View(), view, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase, table);
    }
};

Image EdgySource()
{
    Image src(5, 4, 16);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            src.Set(x, y, static_cast<uint8_t>(x * 60), static_cast<uint8_t>(y * 80 + x * 7),
                    static_cast<uint8_t>((x + y) % 2 ? 250 : 10));
    return src;
}

Bytes RandomTable(unsigned seed)
{
    Bytes table(kNoiseTableSize);
    for (auto& v : table) {
        seed = seed * 1103515245u + 12345u;
        v = static_cast<uint8_t>(seed >> 16);
    }
    return table;
}

}  // namespace

TEST(PixelMath, MixFadeDifferenceAndColourMatch)
{
    // Blue: (255 * 75 + 0 * 25) / 100 = 191; red: (0 * 75 + 255 * 25) / 100 = 63. The top byte is dropped.
    EXPECT_EQ(MixColors(0xAAFF0000u, 0xBB0000FFu, 25), 0x003F00BFu);
    EXPECT_EQ(MixColors(0x00102030u, 0x00405060u, 100), 0x00102030u);
    EXPECT_EQ(MixColors(0x00102030u, 0x00405060u, 0), 0x00405060u);

    EXPECT_EQ(FadeColor(0x00FFFFFFu, 255), 0x00FEFEFEu);  // 255 * 255 >> 8 = 254
    EXPECT_EQ(FadeColor(0xFF010203u, 512), 0x00020406u);
    EXPECT_EQ(FadeColor(0x00808080u, 1024), 0x00FFFFFFu);  // capped at 255
    // Negative factors shift arithmetically and keep the low 8 bits: 100 * -10 >> 8 = -4 -> 0xFC.
    EXPECT_EQ(FadeColor(0x00000064u, -10), 0x000000FCu);
    EXPECT_EQ(FadeColor(0x00000001u, -1), 0x000000FFu);  // -1 >> 8 is -1, not 0

    EXPECT_EQ(GetColorDifRatio(0x00102030u, 0x00302010u), 21);  // (32 + 0 + 32) / 3
    EXPECT_EQ(GetColorDifRatio(0xFF000000u, 0x00000002u), 0);   // top byte ignored, 2 / 3 truncated

    // A negative difference d counts as |d| - 1: one level wider below the colour than above. Each byte has its
    // own limit; zero tolerance compares all 32 bits, any other ignores the top byte.
    EXPECT_EQ(TestColorMatch(5, 4, 0x010101), 1);
    EXPECT_EQ(TestColorMatch(6, 4, 0x010101), 0);
    EXPECT_EQ(TestColorMatch(2, 4, 0x010101), 1);  // d = -2 counts as 1
    EXPECT_EQ(TestColorMatch(1, 4, 0x010101), 0);
    EXPECT_EQ(TestColorMatch(0x050000, 0, 0x050000), 1);
    EXPECT_EQ(TestColorMatch(0x050001, 0, 0x050000), 0);
    EXPECT_EQ(TestColorMatch(0x050000, 1, 0x050000), 1);
    EXPECT_EQ(TestColorMatch(0xFF000004u, 4, 0), 0);
    EXPECT_EQ(TestColorMatch(4, 4, 0), 1);
    EXPECT_EQ(TestColorMatch(0xFF000004u, 4, 0x010000), 1);
}

TEST(PixelMath, PixelStoresAre32BitAndStayInsideTheBuffer)
{
    // A tight 2 x 1 view of 6 bytes, followed by a guard byte: the second pixel's 32-bit store would need a
    // seventh byte, so it stores its three colour bytes and skips only the fourth.
    Image tight(2, 1, 7, 0xAA);
    PixelView view = tight.View();
    view.stride = 6;
    view.size = 6;
    EXPECT_EQ(WritePixel(view, 0, 0, 0x00332211u), 1);
    EXPECT_EQ(tight.bytes, (Bytes{0x11, 0x22, 0x33, 0x00, 0xAA, 0xAA, 0xAA}));
    EXPECT_EQ(WritePixel(view, 1, 0, 0x00665544u), 1);
    EXPECT_EQ(tight.bytes, (Bytes{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0xAA}));
    EXPECT_EQ(WritePixel(view, -1, 0, 0), 0);
    EXPECT_EQ(WritePixel(view, 0, 1, 0), 0);
    view.size = 5;  // the second pixel's colour no longer fits: nothing is written
    EXPECT_EQ(WritePixel(view, 1, 0, 0x00998877u), 0);
    EXPECT_EQ(tight.bytes[4], 0x55);
    view.size = 6;

    EXPECT_EQ(ReadPixel(view, 0, 0), 0x00332211u);
    EXPECT_EQ(ReadPixel(view, 1, 0), 0x00665544u);
    EXPECT_EQ(ReadPixel(view, 2, 0), 0u);
    EXPECT_EQ(ReadPixel(view, 0, -1), 0u);
    view.size = 5;  // the first pixel still fits, the second no longer does
    EXPECT_EQ(ReadPixel(view, 1, 0), 0u);
    PixelView empty;
    EXPECT_EQ(ReadPixel(empty, 0, 0), 0u);
    EXPECT_EQ(WritePixel(empty, 0, 0, 1), 0);

    static int next;
    next = 0;
    Bytes table(kNoiseTableSize);
    FillNoiseTable(table.data(), [] { return (next++ * 97) % 32768; });  // random() / 128
    for (size_t i : {size_t(0), size_t(1), size_t(337), kNoiseTableSize - 1})
        EXPECT_EQ(table[i], ((i * 97) % 32768) / 128) << i;
}

TEST(ResizeDither, BilinearHundredthsComputedByHand)
{
    // 2 x 2 to 3 x 3: step 2/3 in single precision. Columns and rows take ix 0, 0, 1 with weights 100,
    // trunc(33.33) = 33 and trunc(66.67) = 66; the last ones read past the edge and are clamped to it.
    Image src(2, 2, 8);
    src.Set(1, 0, 100, 200, 250);
    src.Set(0, 1, 50, 50, 50);
    src.Set(1, 1, 250, 0, 100);
    Image dst(3, 3);
    dst.Resize(src, 0, 0, 2, 2, 3, 3, 0, 0, nullptr);

    EXPECT_EQ(dst.Pixel(0, 0), (Bytes{0, 0, 0}));
    EXPECT_EQ(dst.Pixel(2, 2), (Bytes{250, 0, 100}));  // all four samples are the clamped corner
    // (1, 1), blue: top (0 * 33 + 100 * 67) / 100 = 67, bottom (50 * 33 + 250 * 67) / 100 = 184,
    // (67 * 33 + 184 * 67) / 100 = 145. Green: 134, 16 -> 54. Red: 167, 83 -> 110.
    EXPECT_EQ(dst.Pixel(1, 1), (Bytes{145, 54, 110}));
    // (1, 0): wy 100, so the top mix alone: blue 6700 / 100, green 13400 / 100, red 16750 / 100.
    EXPECT_EQ(dst.Pixel(1, 0), (Bytes{67, 134, 167}));
    // (0, 2): ix 0 with wx 100, iy 1 with its p01 clamped: the left column's bottom pixel.
    EXPECT_EQ(dst.Pixel(0, 2), (Bytes{50, 50, 50}));
    // (2, 0): ix 1, wx 66, p10 clamped: (100 * 66 + 100 * 34) / 100 and so on.
    EXPECT_EQ(dst.Pixel(2, 0), (Bytes{100, 200, 250}));
}

TEST(ResizeDither, EdgeFadeByHandAndFlatAreasLoseOneLevelPerFade)
{
    // 2 x 1 to 4 x 1, fx = 0, 0.5, 1, 1.5. The one row has fracY 0, so sin(0) makes f1 255 everywhere.
    Image src(2, 1, 8);
    src.Set(1, 0, 90, 90, 90);
    Bytes table(kNoiseTableSize, 0);
    // Pixel 1 uses table[2] for f1 and table[3] for f2. d2 = 90, edgeDivisor 10, sin(0.5 * 3.14159) is 1.0f:
    // f2 = trunc(255 - 9 * 1 * (100 - table[3])).
    table[3] = 90;  // f2 = 165: colour 45 -> 45 * 255 >> 8 = 44 -> 44 * 165 >> 8 = 28
    Image dst(4, 1);
    dst.Resize(src, 0, 0, 2, 1, 4, 1, 10, 100, table.data());
    EXPECT_EQ(dst.Pixel(0, 0), (Bytes{0, 0, 0}));
    EXPECT_EQ(dst.Pixel(1, 0), (Bytes{28, 28, 28}));
    // Pixels 2 and 3 are flat (90 and the clamped 90): two fades of 255/256 take 90 to 89 to 88.
    EXPECT_EQ(dst.Pixel(2, 0), (Bytes{88, 88, 88}));
    EXPECT_EQ(dst.Pixel(3, 0), (Bytes{88, 88, 88}));
    // A negative factor keeps the low 8 bits: f2 = 255 - 9 * 60 = -285; 44 * -285 >> 8 = -49 -> 207.
    table[3] = 40;
    dst.Resize(src, 0, 0, 2, 1, 4, 1, 10, 100, table.data());
    EXPECT_EQ(dst.Pixel(1, 0), (Bytes{207, 207, 207}));

    // A flat source shows no noise whatever the table says, and still loses a level per fade.
    Image flat(3, 3, 12);
    for (int i = 0; i < 9; ++i)
        flat.Set(i % 3, i / 3, 100, 150, 200);
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<uint8_t>(i * 31 + 7);
    Image out(5, 4);
    out.Resize(flat, 0, 0, 3, 3, 5, 4, 1, 255, table.data());
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(out.Pixel(i % 5, i / 5), (Bytes{98, 148, 198})) << i;
}

TEST(ResizeDither, NoiseIndexAndTheEdgeDivisorZero)
{
    Image src = EdgySource();
    const Bytes a = RandomTable(1);
    const Bytes b = RandomTable(2);
    // With edgeDivisor 0 the table plays no part; the same call with a divisor does add noise.
    Image plain(7, 9), withA(7, 9), withB(7, 9), dithered(7, 9);
    plain.Resize(src, 0, 0, 4, 3, 7, 9, 0, 0, nullptr);
    withA.Resize(src, 0, 0, 4, 3, 7, 9, 0, 200, a.data());
    withB.Resize(src, 0, 0, 4, 3, 7, 9, 0, 200, b.data());
    dithered.Resize(src, 0, 0, 4, 3, 7, 9, 3, 200, a.data());
    EXPECT_EQ(plain.bytes, withA.bytes);
    EXPECT_EQ(plain.bytes, withB.bytes);
    EXPECT_NE(plain.bytes, dithered.bytes);

    // The noise index moves by 2 per computed pixel, written or not: a destination narrower than dstW shows in
    // its later rows exactly what a wide enough one shows there.
    Image wide(9, 3), narrow(4, 3);
    wide.Resize(src, 0, 0, 4, 3, 9, 3, 2, 180, a.data());
    narrow.Resize(src, 0, 0, 4, 3, 9, 3, 2, 180, a.data());
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(narrow.Pixel(i % 4, i / 4), wide.Pixel(i % 4, i / 4)) << i;
}

TEST(ResizeDither, HostileRectanglesStayInsideBothBuffers)
{
    Image src = EdgySource();
    const Bytes table = RandomTable(3);
    // Sizes and positions at the ends of int; the fuzzer takes the smaller ones.
    const int cases[][6] = {{-1000000000, -5, 2147483647, 3, 6, 5},
                            {3, 2, -2147483647 - 1, -7, 6, 5},
                            {2147483647, 2147483647, 1, 1, 6, 5},
                            {-3, -3, 40, 40, 100000, 100000}};
    for (const auto& c : cases) {
        // A tight destination followed by a guard byte: the last pixel has no room for its fourth byte.
        Image dst(6, 5, 18, 0xEE);
        dst.bytes.push_back(0xEE);
        PixelView view = dst.View();
        view.size = dst.bytes.size() - 1;
        ResizeDitherPixels(src.View(), view, c[0], c[1], c[2], c[3], c[4], c[5], 1, 300, table.data());
        EXPECT_EQ(dst.bytes.back(), 0xEE);
    }
    // A source without pixels reads as black.
    PixelView none;
    Image dst(2, 2);
    PixelView view = dst.View();
    ResizeDitherPixels(none, view, 0, 0, 1, 1, 2, 2, 0, 0, nullptr);
    EXPECT_EQ(dst.Pixel(1, 1), (Bytes{0, 0, 0}));
}

namespace {

// A random buffer of `n` bytes, with a fill pattern that reaches 0 and 255 often.
Bytes RandomBytes(std::mt19937& random, size_t n)
{
    Bytes bytes(n);
    for (auto& b : bytes) {
        const unsigned r = random();
        b = static_cast<uint8_t>(r % 5 == 0 ? (r & 8 ? 255 : 0) : r >> 8);
    }
    return bytes;
}

}  // namespace

TEST(PixelMath, EveryBlendFormEqualsTheReference)
{
    // Lengths around the vector widths and unaligned starts: each form's tail and body must give the bytes of
    // the byte-by-byte reference.
    std::mt19937 random(7);
    const std::vector<BlendForm> forms = BlendForms();
    ASSERT_GE(forms.size(), 1u);
    for (size_t length : {size_t(0), size_t(1), size_t(3), size_t(15), size_t(16), size_t(17), size_t(31),
                          size_t(33), size_t(64), size_t(1000), size_t(4099)})
        for (size_t offset : {size_t(0), size_t(1), size_t(7)}) {
            const Bytes image = RandomBytes(random, length + offset);
            const Bytes alpha = RandomBytes(random, length + offset);
            const Bytes background = RandomBytes(random, length + offset);
            Bytes expected(length + offset, 0x5A);
            AlphaBlendBytesScalar(image.data() + offset, alpha.data() + offset, background.data() + offset,
                                  expected.data() + offset, length);
            for (const BlendForm& form : forms) {
                Bytes result(length + offset, 0x5A);
                form.blend(image.data() + offset, alpha.data() + offset, background.data() + offset,
                           result.data() + offset, length);
                EXPECT_EQ(result, expected) << form.name << " length " << length << " offset " << offset;
            }
            Bytes chosen(length + offset, 0x5A);
            AlphaBlendBytes(image.data() + offset, alpha.data() + offset, background.data() + offset,
                            chosen.data() + offset, length);
            EXPECT_EQ(chosen, expected);
        }
    // A null pointer blends nothing.
    uint8_t untouched[1] = {42};
    const uint8_t one[1] = {200};
    AlphaBlendBytes(nullptr, one, one, untouched, 1);
    AlphaBlendBytes(one, one, one, nullptr, 1);
    EXPECT_EQ(untouched[0], 42);
    // Every image, alpha and background byte (all 2^24 triples), through each form, against the formula written
    // out: (image * (255 - alpha) + background * alpha) >> 8, so that 255 comes out 254 for every alpha.
    Bytes image, alpha;
    for (int i = 0; i < 256; ++i)
        for (int a = 0; a < 256; ++a) {
            image.push_back(static_cast<uint8_t>(i));
            alpha.push_back(static_cast<uint8_t>(a));
        }
    for (int b = 0; b < 256; ++b) {
        const Bytes background(image.size(), static_cast<uint8_t>(b));
        for (const BlendForm& form : forms) {
            Bytes result(image.size());
            form.blend(image.data(), alpha.data(), background.data(), result.data(), image.size());
            for (size_t k = 0; k < result.size(); ++k)
                if (result[k] != (image[k] * (255u - alpha[k]) + static_cast<unsigned>(b) * alpha[k]) >> 8)
                    FAIL() << form.name << ": image " << int(image[k]) << " alpha " << int(alpha[k])
                           << " background " << b << " gives " << int(result[k]);
        }
    }
}

TEST(ResizeDither, FastFormEqualsTheReferenceOnRandomPictures)
{
    // Random sizes (1 pixel, odd widths, strides with and without padding), rectangles inside and past the
    // edges, up- and down-scaling, with and without noise, through every form. Destinations reach several
    // 16-pixel blocks with a tail, and small or negative edge divisors and large noise bases give fade factors
    // beyond 16 bits.
    std::mt19937 random(11);
    const Bytes table = RandomTable(5);
    const std::vector<ResizeForm> forms = ResizeDitherForms();
    for (int round = 0; round < 300; ++round) {
        const int sw = 1 + static_cast<int>(random() % 23), sh = 1 + static_cast<int>(random() % 17);
        Image src(sw, sh, sw * 3 + static_cast<int>(random() % 5));
        src.bytes = RandomBytes(random, src.bytes.size());
        const int dw = 1 + static_cast<int>(random() % (round % 2 ? 70 : 31)), dh = 1 + static_cast<int>(random() % 19);
        // Destinations a little larger or smaller than the scale's size, with tight or padded rows.
        const int vw = dw + static_cast<int>(random() % 5) - 2, vh = dh + static_cast<int>(random() % 5) - 2;
        const int stride = (vw > 0 ? vw : 1) * 3 + static_cast<int>(random() % 5);
        const int sx = static_cast<int>(random() % (sw + 2)) - 1, sy = static_cast<int>(random() % (sh + 2)) - 1;
        const int rw = static_cast<int>(random() % (sw + 3)), rh = static_cast<int>(random() % (sh + 3));
        const int divisor = random() % 3 == 0 ? 0 : static_cast<int>(random() % 9) - 2;
        const int noise = random() % 7 == 0 ? (1 << 24) + 300 - static_cast<int>(random() % 600)
                                            : static_cast<int>(random() % 600) - 100;
        Image reference(vw > 0 ? vw : 0, vh > 0 ? vh : 0, stride, 0x33);
        PixelView referenceView = reference.View();
        ResizeDitherPixelsReference(src.View(), referenceView, sx, sy, rw, rh, dw, dh, divisor, noise, table.data());
        for (const ResizeForm& form : forms) {
            Image fast(vw > 0 ? vw : 0, vh > 0 ? vh : 0, stride, 0x33);
            PixelView fastView = fast.View();
            form.resize(src.View(), fastView, sx, sy, rw, rh, dw, dh, divisor, noise, table.data());
            ASSERT_EQ(fast.bytes, reference.bytes)
                << form.name << ", round " << round << ": " << sw << "x" << sh << " (" << sx << ", " << sy << ", "
                << rw << ", " << rh << ") to " << dw << "x" << dh << " in " << vw << "x" << vh << ", divisor "
                << divisor << ", noise base " << noise;
        }
    }
    // Pictures large enough that the noise index wraps: inside a block (301 wide), and at the end of a block
    // and of a row (256 wide, 512 entries a row); the chosen form too.
    Image src(97, 61);
    src.bytes = RandomBytes(random, src.bytes.size());
    for (const int width : {301, 256}) {
        Image reference(width, 260, 0, 0x33);
        PixelView referenceView = reference.View();
        ResizeDitherPixelsReference(src.View(), referenceView, 0, 0, 96, 60, width, 260, 4, 200, table.data());
        for (const ResizeForm& form : forms) {
            Image fast(width, 260, 0, 0x33);
            PixelView fastView = fast.View();
            form.resize(src.View(), fastView, 0, 0, 96, 60, width, 260, 4, 200, table.data());
            EXPECT_EQ(fast.bytes, reference.bytes) << form.name << ", " << width << " wide";
        }
        Image chosen(width, 260, 0, 0x33);
        chosen.Resize(src, 0, 0, 96, 60, width, 260, 4, 200, table.data());
        EXPECT_EQ(chosen.bytes, reference.bytes) << width << " wide";
    }
}
