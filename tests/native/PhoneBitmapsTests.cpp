// The one-bit phone formats: WBMP and OTA, read and written.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "ImageFixtures.h"
#include "image/core/PhoneBitmaps.h"

using namespace zcmod;
using namespace zcmod_test;

namespace {

using Bytes = std::vector<uint8_t>;

int RandomZero()
{
    return 0;
}
int RandomMax()
{
    return 32767;
}

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
};

bool DecodeWbmp(const Bytes& file, Bytes& pixels, int& width, int& height)
{
    size_t offset = 0;
    return ParseWbmpHeader(file.data(), file.size(), width, height, offset) &&
           DecodeWbmpRows(file.data(), file.size(), width, height, offset, pixels);
}

}  // namespace

TEST(Wbmp, MultiByteIntegers)
{
    const struct {
        uint32_t value;
        Bytes bytes;
    } cases[] = {
        {0, {0x00}},
        {127, {0x7F}},
        {128, {0x81, 0x00}},
        {16383, {0xFF, 0x7F}},
        {16384, {0x81, 0x80, 0x00}},
        {0xFFFFFFFFu, {0x8F, 0xFF, 0xFF, 0xFF, 0x7F}},
    };
    for (const auto& c : cases) {
        Bytes out;
        WriteMultiByteInt(c.value, out);
        EXPECT_EQ(out, c.bytes) << c.value;
        size_t pos = 0;
        uint32_t back = 0;
        EXPECT_TRUE(ReadMultiByteInt(out.data(), out.size(), pos, 5, back));
        EXPECT_EQ(back, c.value);
        EXPECT_EQ(pos, out.size());
    }
    size_t pos = 0;
    uint32_t value = 0;
    const Bytes three = {0x81, 0x80, 0x00};
    EXPECT_FALSE(ReadMultiByteInt(three.data(), three.size(), pos, 2, value));
    pos = 0;
    EXPECT_FALSE(ReadMultiByteInt(three.data(), 2, pos, 5, value));  // runs off the end
    pos = 3;
    EXPECT_FALSE(ReadMultiByteInt(three.data(), 3, pos, 5, value));
}

TEST(Wbmp, HeaderLimits)
{
    int w = 0, h = 0;
    size_t offset = 0;
    // 1 x 1 is written as 5 bytes, and the reader asks for 6.
    Frame one(1, 1, 255);
    const Bytes tiny = EncodeWbmp(one.pixels.data(), 1, 1, one.stride, RandomZero);
    EXPECT_EQ(tiny, (Bytes{0, 0, 1, 1, 0x80}));
    EXPECT_FALSE(ParseWbmpHeader(tiny.data(), tiny.size(), w, h, offset));
    Bytes padded = tiny;
    padded.push_back(0);
    EXPECT_TRUE(ParseWbmpHeader(padded.data(), padded.size(), w, h, offset));
    EXPECT_EQ(w, 1);
    EXPECT_EQ(offset, 4u);

    // Width 16,384 needs a three-byte integer: written, and refused.
    Frame wide(16384, 1, 0);
    const Bytes big = EncodeWbmp(wide.pixels.data(), 16384, 1, wide.stride, RandomZero);
    ASSERT_EQ(big.size(), 2u + 3 + 1 + 2048);
    EXPECT_EQ(Bytes(big.begin(), big.begin() + 6), (Bytes{0, 0, 0x81, 0x80, 0x00, 0x01}));
    EXPECT_FALSE(ParseWbmpHeader(big.data(), big.size(), w, h, offset));
    // 16,383 is the largest that two bytes hold.
    const Bytes largest = {0, 0, 0xFF, 0x7F, 0x01, 0, 0, 0};
    EXPECT_TRUE(ParseWbmpHeader(largest.data(), largest.size(), w, h, offset));
    EXPECT_EQ(w, 16383);

    EXPECT_FALSE(ParseWbmpHeader(Bytes{1, 0, 1, 1, 0, 0}.data(), 6, w, h, offset));  // type byte
    EXPECT_FALSE(ParseWbmpHeader(Bytes{0, 1, 1, 1, 0, 0}.data(), 6, w, h, offset));  // fixed header
    EXPECT_FALSE(ParseWbmpHeader(Bytes{0, 0, 0, 1, 0, 0}.data(), 6, w, h, offset));  // width 0
    EXPECT_FALSE(ParseWbmpHeader(Bytes{0, 0, 1, 0, 0, 0}.data(), 6, w, h, offset));  // height 0
    EXPECT_FALSE(ParseWbmpHeader(Bytes{0, 0, 0x81, 0x81, 0x81, 0}.data(), 6, w, h, offset));
    EXPECT_FALSE(ParseWbmpHeader(nullptr, 6, w, h, offset));
}

TEST(Wbmp, RowsMustAllBeThere)
{
    // 8 x 2 needs 2 data bytes; each row starts on a byte and a set bit is white.
    Bytes file = {0, 0, 8, 2, 0xA5, 0x0F};
    Bytes pixels;
    int w = 0, h = 0;
    ASSERT_TRUE(DecodeWbmp(file, pixels, w, h));
    ASSERT_EQ(pixels.size(), 8u * 2 * 3);
    const int expected[16] = {1, 0, 1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1};
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(pixels[3 * i], expected[i] ? 255 : 0) << i;

    file.push_back(0x77);  // more is ignored
    EXPECT_TRUE(DecodeWbmp(file, pixels, w, h));
    file.resize(5);
    EXPECT_FALSE(DecodeWbmp(file, pixels, w, h));
    file.resize(4);  // both data bytes missing: the header alone is too short, and so are the rows
    EXPECT_FALSE(DecodeWbmp(file, pixels, w, h));
    EXPECT_FALSE(DecodeWbmpRows(file.data(), file.size(), 8, 2, 4, pixels));
    EXPECT_FALSE(DecodeWbmpRows(file.data(), file.size(), 8, 2, 99, pixels));  // offset past the end
}

TEST(Wbmp, EncoderAlignsRowsAndDrawsThresholds)
{
    // 10 x 2: each row takes two bytes, the second filled with zeros at the low end.
    Frame frame(10, 2, 255);
    frame.Set(0, 0, 0);
    frame.Set(9, 1, 0);
    const Bytes out = EncodeWbmp(frame.pixels.data(), 10, 2, frame.stride, RandomLcg);
    EXPECT_EQ(out, (Bytes{0, 0, 10, 2, 0x7F, 0xC0, 0xFF, 0x80}));

    // A grey of 100: the threshold is random() / 255, white only if it is under every channel.
    Frame grey(8, 1, 100);
    EXPECT_EQ(EncodeWbmp(grey.pixels.data(), 8, 1, grey.stride, RandomZero).back(), 0xFF);
    EXPECT_EQ(EncodeWbmp(grey.pixels.data(), 8, 1, grey.stride, RandomMax).back(), 0x00);
    // A channel of 129 or more never fails a draw, one of 0 always does.
    Frame light(8, 1, 129);
    EXPECT_EQ(EncodeWbmp(light.pixels.data(), 8, 1, light.stride, RandomMax).back(), 0xFF);

    // Two saves of a grey picture differ.
    Frame mid(64, 8, 64);
    g_seed = 1;
    const Bytes first = EncodeWbmp(mid.pixels.data(), 64, 8, mid.stride, RandomLcg);
    const Bytes second = EncodeWbmp(mid.pixels.data(), 64, 8, mid.stride, RandomLcg);
    EXPECT_EQ(first.size(), second.size());
    EXPECT_NE(first, second);

    EXPECT_TRUE(EncodeWbmp(nullptr, 8, 1, 24, RandomZero).empty());
    EXPECT_TRUE(EncodeWbmp(mid.pixels.data(), 8, 1, 23, RandomZero).empty());  // rows shorter than the width
    EXPECT_TRUE(EncodeWbmp(mid.pixels.data(), 0, 1, 24, RandomZero).empty());
}

TEST(Wbmp, BlackAndWhiteRoundTripExactly)
{
    // A tall, narrow picture: 1 pixel a row is 1 byte of output against 4 bytes of frame.
    Frame tall(1, 300, 255);
    for (int y = 0; y < 300; y += 3)
        tall.Set(0, y, 0);
    const Bytes file = EncodeWbmp(tall.pixels.data(), 1, 300, tall.stride, RandomLcg);
    EXPECT_EQ(file.size(), 2u + 1 + 2 + 300);
    Bytes pixels;
    int w = 0, h = 0;
    ASSERT_TRUE(DecodeWbmp(file, pixels, w, h));
    EXPECT_EQ(w, 1);
    EXPECT_EQ(h, 300);
    EXPECT_EQ(pixels, tall.Tight());
}

TEST(Wbmp, FilesWrittenByNetpbmAndImageMagick)
{
    const PbmPicture glyph = ReadPlainPbm(FixturePath("glyph_13x5.pbm"));
    ASSERT_EQ(glyph.width, 13);
    for (const char* name : {"glyph_13x5_netpbm.wbmp", "glyph_13x5_magick.wbmp"}) {
        const Bytes file = ReadFileBytes(FixturePath(name));
        Bytes pixels;
        int w = 0, h = 0;
        ASSERT_TRUE(DecodeWbmp(file, pixels, w, h)) << name;
        EXPECT_EQ(w, 13);
        EXPECT_EQ(h, 5);
        EXPECT_EQ(pixels, glyph.pixels) << name;
        // Our encoder writes a pure black-and-white picture byte for byte as netpbm does.
        const Bytes frame = ToBottomUp(glyph.pixels, 13, 5, 40);
        EXPECT_EQ(EncodeWbmp(frame.data(), 13, 5, 40, RandomLcg), file) << name;
    }

    const PbmPicture wide = ReadPlainPbm(FixturePath("glyph_200x3.pbm"));
    ASSERT_EQ(wide.width, 200);
    const Bytes file = ReadFileBytes(FixturePath("wide_200x3_magick.wbmp"));
    ASSERT_GE(file.size(), 4u);
    EXPECT_EQ(file[2], 0x81);  // two-byte width
    Bytes pixels;
    int w = 0, h = 0;
    ASSERT_TRUE(DecodeWbmp(file, pixels, w, h));
    EXPECT_EQ(w, 200);
    EXPECT_EQ(h, 3);
    EXPECT_EQ(pixels, wide.pixels);
}

TEST(Ota, SizesAndHeader)
{
    Frame logo(72, 14, 255);
    logo.Set(0, 0, 0);
    logo.Set(71, 13, 0);
    const Bytes file = EncodeOta(logo.pixels.data(), 72, 14, logo.stride, RandomLcg);
    ASSERT_EQ(file.size(), 130u);  // 4 + 126
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 4), (Bytes{0, 72, 14, 1}));
    EXPECT_EQ(file[4], 0x80);  // a set bit is black
    EXPECT_EQ(file[129], 0x01);
    Bytes pixels;
    int w = 0, h = 0;
    ASSERT_TRUE(DecodeOta(file.data(), file.size(), pixels, w, h));
    EXPECT_EQ(w, 72);
    EXPECT_EQ(h, 14);
    EXPECT_EQ(pixels, logo.Tight());

    Frame limit(256, 1, 0);
    EXPECT_TRUE(EncodeOta(limit.pixels.data(), 256, 1, limit.stride, RandomZero).empty());
    EXPECT_TRUE(EncodeOta(limit.pixels.data(), 1, 256, 4, RandomZero).empty());
    EXPECT_EQ(EncodeOta(limit.pixels.data(), 255, 1, limit.stride, RandomZero).size(), 4u + 32);

    // Thresholds: rand() / 255 lies in 0 to 128, and a channel at most that is black.
    Frame grey(8, 1, 128);
    EXPECT_EQ(EncodeOta(grey.pixels.data(), 8, 1, grey.stride, RandomMax)[4], 0xFF);
    EXPECT_EQ(EncodeOta(grey.pixels.data(), 8, 1, grey.stride, RandomZero)[4], 0x00);
    Frame light(8, 1, 129);
    EXPECT_EQ(EncodeOta(light.pixels.data(), 8, 1, light.stride, RandomMax)[4], 0x00);
}

TEST(Ota, PartialLastByteSitsAtTheLowEnd)
{
    // 3 x 3: nine bits, the ninth is written at bit 0 of the second byte and read from bit 7.
    Frame frame(3, 3, 255);
    frame.Set(2, 2, 0);
    const Bytes file = EncodeOta(frame.pixels.data(), 3, 3, frame.stride, RandomZero);
    EXPECT_EQ(file, (Bytes{0, 3, 3, 1, 0x00, 0x01}));
    Bytes pixels;
    int w = 0, h = 0;
    ASSERT_TRUE(DecodeOta(file.data(), file.size(), pixels, w, h));
    EXPECT_EQ(pixels[3 * 8], 255);  // written black, read white
    const Bytes topBit = {0, 3, 3, 1, 0x00, 0x80};
    ASSERT_TRUE(DecodeOta(topBit.data(), topBit.size(), pixels, w, h));
    EXPECT_EQ(pixels[3 * 8], 0);
    // The bit stream runs across rows: the first pixel of row 1 is bit 4 (mask 0x10) of byte 4.
    const Bytes across = {0, 3, 3, 1, 0x10, 0x00};
    ASSERT_TRUE(DecodeOta(across.data(), across.size(), pixels, w, h));
    EXPECT_EQ(pixels[3 * 3], 0);
    EXPECT_EQ(pixels[3 * 4], 255);
}

TEST(Ota, DecoderRefusals)
{
    Bytes pixels;
    int w = 0, h = 0;
    // 8,197 bytes are refused unread, even with a valid header; 8,196 are fine.
    Bytes file(8197, 0);
    file[1] = 8;
    file[2] = 8;
    file[3] = 1;
    EXPECT_FALSE(DecodeOta(file.data(), file.size(), pixels, w, h));
    file.resize(8196);
    EXPECT_TRUE(DecodeOta(file.data(), file.size(), pixels, w, h));
    // Byte 0 must be 0 and byte 3 must be 1.
    EXPECT_FALSE(DecodeOta(Bytes{1, 8, 1, 1, 0}.data(), 5, pixels, w, h));
    EXPECT_FALSE(DecodeOta(Bytes{0, 8, 1, 2, 0}.data(), 5, pixels, w, h));
    // The bits must all be there: 9 x 1 needs 2 data bytes.
    EXPECT_FALSE(DecodeOta(Bytes{0, 9, 1, 1, 0}.data(), 5, pixels, w, h));
    EXPECT_TRUE(DecodeOta(Bytes{0, 9, 1, 1, 0, 0}.data(), 6, pixels, w, h));
    // Width or height 0 fails, though the length test passes.
    EXPECT_FALSE(DecodeOta(Bytes{0, 0, 1, 1}.data(), 4, pixels, w, h));
    EXPECT_EQ(w, 0);
    EXPECT_EQ(h, 1);
    EXPECT_FALSE(DecodeOta(Bytes{0, 5, 0, 1}.data(), 4, pixels, w, h));
    // Short files: the size reads as 0 where the bytes are missing.
    EXPECT_FALSE(DecodeOta(Bytes{0, 7}.data(), 2, pixels, w, h));
    EXPECT_EQ(w, 7);
    EXPECT_EQ(h, 0);
    EXPECT_FALSE(DecodeOta(nullptr, 0, pixels, w, h));

    // A WBMP of 1 x 1 read as OTA: width 0, height 1, depth 1, and no frame.
    EXPECT_FALSE(DecodeOta(Bytes{0, 0, 1, 1, 0x80}.data(), 5, pixels, w, h));
}
