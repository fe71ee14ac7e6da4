// The one-bit phone formats: WBMP and OTA, read and written.
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <vector>

#include "ImageFixtures.h"
#include "image/core/PhoneBitmaps.h"

using namespace zcmod;
using namespace zcmod_test;

namespace {

using Bytes = std::vector<uint8_t>;

RandomSource kZero = [] { return 0; };
RandomSource kMax = [] { return 32767; };
unsigned g_seed = 1;
int RandomLcg()
{
    g_seed = g_seed * 1103515245u + 12345u;
    return static_cast<int>((g_seed >> 16) & 0x7FFF);
}

// A bottom-up buffer of one colour, rows padded to 4 bytes as the toolkit's frames are.
struct Frame {
    int width;
    int height;
    int stride;
    Bytes pixels;
    Frame(int w, int h, uint8_t value) : width(w), height(h), stride((w * 3 + 3) & ~3), pixels(stride * h, value) {}
    // Image row y (top-down) is buffer row height - 1 - y.
    void Set(int x, int y, uint8_t value)
    {
        uint8_t* p = &pixels[static_cast<size_t>(height - 1 - y) * stride + 3 * x];
        p[0] = p[1] = p[2] = value;
    }
    Bytes Tight() const
    {
        Bytes out;
        for (int y = 0; y < height; ++y) {
            const uint8_t* row = &pixels[static_cast<size_t>(height - 1 - y) * stride];
            out.insert(out.end(), row, row + width * 3);
        }
        return out;
    }
    Bytes Wbmp(RandomSource r = RandomLcg) const { return EncodeWbmp(pixels.data(), width, height, stride, r); }
    Bytes Ota(RandomSource r = RandomLcg) const { return EncodeOta(pixels.data(), width, height, stride, r); }
};

// A decoded file: whether it was accepted, its size and its tight top-down pixels.
struct Decoded {
    bool ok = false;
    int width = -1;
    int height = -1;
    Bytes pixels;
};

Decoded ReadWbmp(const Bytes& file)
{
    Decoded d;
    size_t offset = 0;
    d.ok = ParseWbmpHeader(file.data(), file.size(), d.width, d.height, offset) &&
           DecodeWbmpRows(file.data(), file.size(), d.width, d.height, offset, d.pixels);
    return d;
}

Decoded ReadOta(const Bytes& file)
{
    Decoded d;
    d.ok = DecodeOta(file.data(), file.size(), d.pixels, d.width, d.height);
    return d;
}

}  // namespace

TEST(Wbmp, MultiByteIntegersAndHeaderLimits)
{
    // Multi-byte integers: 7-bit groups, most significant first, at most 5 written and as many read as allowed.
    Bytes out;
    WriteMultiByteInt(~0u, out);
    EXPECT_EQ(out, (Bytes{0x8F, 0xFF, 0xFF, 0xFF, 0x7F}));
    size_t pos = 0;
    uint32_t value = 0;
    const Bytes three = {0x81, 0x80, 0x00};
    EXPECT_FALSE(ReadMultiByteInt(three.data(), three.size(), pos, 2, value));
    EXPECT_FALSE(ReadMultiByteInt(three.data(), 2, pos = 0, 5, value));  // runs off the end
    EXPECT_FALSE(ReadMultiByteInt(three.data(), 3, pos = 3, 5, value));

    // 1 x 1 is written as 5 bytes, and the reader asks for 6.
    int w = 0, h = 0;
    size_t offset = 0;
    Bytes tiny = Frame(1, 1, 255).Wbmp(kZero);
    EXPECT_EQ(tiny, (Bytes{0, 0, 1, 1, 0x80}));
    EXPECT_FALSE(ParseWbmpHeader(tiny.data(), tiny.size(), w, h, offset));
    tiny.push_back(0);
    EXPECT_TRUE(ParseWbmpHeader(tiny.data(), tiny.size(), w, h, offset));
    EXPECT_EQ(offset, 4u);
    // Width 16,384 needs a three-byte integer: written, and refused. 16,383 is the largest that two bytes hold.
    const Bytes big = Frame(16384, 1, 0).Wbmp(kZero);
    EXPECT_EQ(Bytes(big.begin(), big.begin() + 6), (Bytes{0, 0, 0x81, 0x80, 0x00, 0x01}));
    EXPECT_FALSE(ParseWbmpHeader(big.data(), big.size(), w, h, offset));
    EXPECT_TRUE(ParseWbmpHeader(Bytes{0, 0, 0xFF, 0x7F, 0x01, 0}.data(), 6, w, h, offset));
    EXPECT_EQ(w, 16383);
    // Type byte, fixed header, width 0, height 0, an overlong width, no data.
    for (const Bytes& file : {Bytes{1, 0, 1, 1, 0, 0}, Bytes{0, 1, 1, 1, 0, 0}, Bytes{0, 0, 0, 1, 0, 0},
                              Bytes{0, 0, 1, 0, 0, 0}, Bytes{0, 0, 0x81, 0x81, 0x81, 0}})
        EXPECT_FALSE(ParseWbmpHeader(file.data(), file.size(), w, h, offset));
    EXPECT_FALSE(ParseWbmpHeader(nullptr, 6, w, h, offset));
}

TEST(Wbmp, RowsMustAllBeThereAndTheEncoderAlignsThem)
{
    // 8 x 2 needs 2 data bytes, and more is ignored. (Bit order, polarity and row alignment are pinned by the
    // files of Netpbm and ImageMagick below.)
    Bytes file = {0, 0, 8, 2, 0xA5, 0x0F, 0x77};
    Decoded d = ReadWbmp(file);
    ASSERT_TRUE(d.ok);
    file.resize(5);
    EXPECT_FALSE(ReadWbmp(file).ok);
    file.resize(4);  // both data bytes missing: the header alone is too short, and so are the rows
    EXPECT_FALSE(ReadWbmp(file).ok);
    EXPECT_FALSE(DecodeWbmpRows(file.data(), file.size(), 8, 2, 4, d.pixels));
    EXPECT_FALSE(DecodeWbmpRows(file.data(), file.size(), 8, 2, 99, d.pixels));  // offset past the end

    // A grey of 100: the threshold is random() / 255, white only if it is under every channel. A channel of 129
    // or more never fails a draw. Two saves of a grey picture differ.
    EXPECT_EQ(Frame(8, 1, 100).Wbmp(kZero).back(), 0xFF);
    EXPECT_EQ(Frame(8, 1, 100).Wbmp(kMax).back(), 0x00);
    EXPECT_EQ(Frame(8, 1, 129).Wbmp(kMax).back(), 0xFF);
    const Frame mid(64, 8, 64);
    EXPECT_NE(mid.Wbmp(), mid.Wbmp());
    EXPECT_TRUE(EncodeWbmp(nullptr, 8, 1, 24, kZero).empty());
    EXPECT_TRUE(EncodeWbmp(mid.pixels.data(), 8, 1, 23, kZero).empty());  // rows shorter than the width
    EXPECT_TRUE(EncodeWbmp(mid.pixels.data(), 0, 1, 24, kZero).empty());
}

TEST(Wbmp, FilesWrittenByNetpbmAndImageMagick)
{
    for (const char* name : {"glyph_13x5_netpbm.wbmp", "glyph_13x5_magick.wbmp", "wide_200x3_magick.wbmp"}) {
        SCOPED_TRACE(name);
        // The plain PBM (P1, 1 is black) that each was made from.
        const Bytes pbm = ReadFileBytes(FixturePath(name[0] == 'w' ? "glyph_200x3.pbm" : "glyph_13x5.pbm"));
        std::istringstream text(std::string(pbm.begin(), pbm.end()));
        std::string magic;
        int w = 0, h = 0;
        text >> magic >> w >> h;
        ASSERT_GE(w, 13);
        Frame picture(w, h, 255);
        for (int i = 0; i < w * h; ++i) {
            char c = 0;
            text >> c;  // digits may be run together or separated by blanks
            if (c == '1')
                picture.Set(i % w, i / w, 0);
        }
        const Bytes file = ReadFileBytes(FixturePath(name));
        const Decoded d = ReadWbmp(file);
        ASSERT_TRUE(d.ok);
        EXPECT_EQ(d.width, w);
        EXPECT_EQ(d.height, h);
        EXPECT_EQ(d.pixels, picture.Tight());
        // Our encoder writes a pure black-and-white picture byte for byte as they do.
        EXPECT_EQ(picture.Wbmp(), file);
    }
}

TEST(Ota, SizesThresholdsThePartialLastByteAndRefusals)
{
    // Whole round trips and the file sizes are the fuzzer's; the header and the polarity of a set bit (black) are
    // the image store's writer test's. The largest side is 255.
    EXPECT_TRUE(Frame(256, 1, 0).Ota().empty());
    EXPECT_TRUE(Frame(1, 256, 0).Ota().empty());
    EXPECT_EQ(Frame(255, 1, 0).Ota().size(), 4u + 32);
    // rand() / 255 lies in 0 to 128, and a channel at most that is black.
    EXPECT_EQ(Frame(8, 1, 128).Ota(kMax)[4], 0xFF);
    EXPECT_EQ(Frame(8, 1, 128).Ota(kZero)[4], 0x00);
    EXPECT_EQ(Frame(8, 1, 129).Ota(kMax)[4], 0x00);

    // 3 x 3: nine bits, the ninth is written at bit 0 of the second byte and read from bit 7.
    Frame nine(3, 3, 255);
    nine.Set(2, 2, 0);
    EXPECT_EQ(nine.Ota(kZero), (Bytes{0, 3, 3, 1, 0x00, 0x01}));
    EXPECT_EQ(ReadOta(nine.Ota(kZero)).pixels[3 * 8], 255);  // written black, read white
    EXPECT_EQ(ReadOta({0, 3, 3, 1, 0x00, 0x80}).pixels[3 * 8], 0);
    // The bit stream runs across rows: the first pixel of row 1 is bit 4 (mask 0x10) of byte 4.
    const Decoded across = ReadOta({0, 3, 3, 1, 0x10, 0x00});
    ASSERT_TRUE(across.ok);
    EXPECT_EQ(across.pixels[3 * 3], 0);
    EXPECT_EQ(across.pixels[3 * 4], 255);

    // 8,197 bytes are refused unread, even with a valid header; 8,196 are fine.
    Bytes large(8197, 0);
    large[1] = 8;
    large[2] = 8;
    large[3] = 1;
    EXPECT_FALSE(ReadOta(large).ok);
    large.resize(8196);
    EXPECT_TRUE(ReadOta(large).ok);
    // Byte 0 must be 0, byte 3 must be 1, and the bits must all be there (9 x 1 needs 2 data bytes).
    EXPECT_FALSE(ReadOta({1, 8, 1, 1, 0}).ok);
    EXPECT_FALSE(ReadOta({0, 8, 1, 2, 0}).ok);
    EXPECT_FALSE(ReadOta({0, 9, 1, 1, 0}).ok);
    EXPECT_TRUE(ReadOta({0, 9, 1, 1, 0, 0}).ok);
    // Width or height 0 fails, though the length test passes; a short file reads 0 for the missing bytes; a
    // WBMP of 1 x 1 read as OTA has width 0, height 1.
    const std::pair<Bytes, std::pair<int, int>> sizes[] = {
        {{0, 0, 1, 1}, {0, 1}}, {{0, 5, 0, 1}, {5, 0}}, {{0, 7}, {7, 0}}, {{0, 0, 1, 1, 0x80}, {0, 1}}};
    for (const auto& c : sizes) {
        const Decoded d = ReadOta(c.first);
        EXPECT_FALSE(d.ok);
        EXPECT_EQ(std::make_pair(d.width, d.height), c.second);
    }
    int w = 0, h = 0;
    EXPECT_FALSE(DecodeOta(nullptr, 0, large, w, h));
}
