// The GIF block walk and the one-image files cut out of an animated GIF.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ImageFixtures.h"
#include "image/core/GifStructure.h"

using namespace zcmod;
using namespace zcmod_test;

namespace {

using Bytes = std::vector<uint8_t>;

// Writes GIF files block by block. The global table has two entries: (10, 20, 30) and (40, 50, 60).
struct GifBuilder {
    Bytes b;

    explicit GifBuilder(uint8_t backgroundIndex = 0, uint16_t width = 16, uint16_t height = 12)
    {
        const std::string sig = "GIF89a";
        b.assign(sig.begin(), sig.end());
        Le16(width);
        Le16(height);
        b.insert(b.end(), {0xF0, backgroundIndex, 0x00, 10, 20, 30, 40, 50, 60});
    }
    void Le16(uint16_t v)
    {
        b.push_back(static_cast<uint8_t>(v));
        b.push_back(static_cast<uint8_t>(v >> 8));
    }
    GifBuilder& Loop(uint16_t n, const char* id = "NETSCAPE2.0")
    {
        b.insert(b.end(), {0x21, 0xFF, 0x0B});
        b.insert(b.end(), id, id + 11);
        b.insert(b.end(), {0x03, 0x01});
        Le16(n);
        b.push_back(0x00);
        return *this;
    }
    GifBuilder& Control(uint8_t packed, uint16_t delay, uint8_t transparent)
    {
        b.insert(b.end(), {0x21, 0xF9, 0x04, packed});
        Le16(delay);
        b.insert(b.end(), {transparent, 0x00});
        return *this;
    }
    GifBuilder& Comment(const std::string& text)
    {
        b.insert(b.end(), {0x21, 0xFE, static_cast<uint8_t>(text.size())});
        b.insert(b.end(), text.begin(), text.end());
        b.push_back(0x00);
        return *this;
    }
    // An image whose LZW data is two sub-blocks of junk: the walk does not decode it.
    GifBuilder& Image(uint16_t left, uint16_t top, uint16_t w, uint16_t h, const Bytes& localTable = {})
    {
        b.push_back(0x2C);
        Le16(left);
        Le16(top);
        Le16(w);
        Le16(h);
        uint8_t flags = 0;
        if (!localTable.empty()) {
            flags = 0x80;  // two entries: size field 0
            EXPECT_EQ(localTable.size(), 6u);
        }
        b.push_back(flags);
        b.insert(b.end(), localTable.begin(), localTable.end());
        b.insert(b.end(), {0x02, 0x03, 0x84, 0x8F, 0x09, 0x01, 0x05, 0x00});
        return *this;
    }
    GifBuilder& Trailer()
    {
        b.push_back(0x3B);
        return *this;
    }
};

struct Walk {
    std::unique_ptr<ZBUGIFFileStruct> info{new ZBUGIFFileStruct};
    uint32_t background = 0xDEADBEEF;
    int loop = -7;
    unsigned count = 0;

    explicit Walk(const Bytes& file, size_t size = SIZE_MAX)
    {
        count = WalkGifStructure(file.data(), size == SIZE_MAX ? file.size() : size, *info, background, loop);
    }
};

Bytes FrameFile(const Bytes& file, const ZBUGIFFileStruct& info, unsigned index)
{
    const size_t size = GifFrameFileSize(file.size(), info, index);
    Bytes out(size, 0);
    if (size == 0 || !BuildGifFrameFile(file.data(), file.size(), info, index, out.data(), out.size()))
        return Bytes();
    return out;
}

}  // namespace

TEST(GifWalk, LoopCountIsTheFileValuePlusOne)
{
    EXPECT_EQ(Walk(GifBuilder().Image(0, 0, 1, 1).Trailer().b).loop, 1);
    EXPECT_EQ(Walk(GifBuilder().Loop(0).Image(0, 0, 1, 1).Trailer().b).loop, 1);
    EXPECT_EQ(Walk(GifBuilder().Loop(5).Image(0, 0, 1, 1).Trailer().b).loop, 6);
    EXPECT_EQ(Walk(GifBuilder().Loop(65535).Image(0, 0, 1, 1).Trailer().b).loop, 65536);
    // The identifier is not compared: any application block of that shape counts.
    EXPECT_EQ(Walk(GifBuilder().Loop(3, "ANIMEXTS1.0").Image(0, 0, 1, 1).Trailer().b).loop, 4);
    // A first sub-block that is not 3 bytes starting with 1 is no loop count.
    GifBuilder other;
    other.b.insert(other.b.end(), {0x21, 0xFF, 0x0B, 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', '1', '.', '0', 0x03, 0x02,
                                   0x09, 0x00, 0x00});
    EXPECT_EQ(Walk(other.Image(0, 0, 1, 1).Trailer().b).loop, 1);
}

TEST(GifWalk, ImagesBlocksAndTheirRecords)
{
    GifBuilder gif(1);
    gif.Comment("hello").Control(0x08 | 0x01, 10, 1);
    const size_t first = gif.b.size();
    gif.Image(0, 0, 16, 12);
    gif.Loop(2).Control(0x0C, 250, 0);
    const size_t second = gif.b.size();
    gif.Image(4, 2, 6, 4, {1, 2, 3, 7, 8, 9});
    // A plain-text block and an unknown extension, both skipped along their chains.
    gif.b.insert(gif.b.end(), {0x21, 0x01, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 'h', 'i', 0});
    gif.b.insert(gif.b.end(), {0x21, 0x42, 2, 0xAA, 0xBB, 1, 0xCC, 0});
    const size_t third = gif.b.size();
    gif.Image(9, 7, 5, 3);
    gif.Trailer();
    gif.b.insert(gif.b.end(), {0x2C, 0, 0});  // nothing after the trailer is read

    Walk w(gif.b);
    ASSERT_EQ(w.count, 3u);
    EXPECT_EQ(w.loop, 3);
    EXPECT_EQ(w.background, 0x003C3228u);  // entry 1 as 0x00BBGGRR
    const ZBUGIFFileStruct& info = *w.info;
    EXPECT_EQ(info.imageOffset[0], first);
    EXPECT_EQ(info.imageOffset[1], second);
    EXPECT_EQ(info.imageOffset[2], third);
    EXPECT_EQ(info.imageLength[0], 18u);  // descriptor 10, code size 1, chain 6, terminator 1
    EXPECT_EQ(info.imageLength[1], 24u);  // and a local table of 6
    EXPECT_EQ(info.imageLength[2], 18u);
    EXPECT_EQ(info.disposal[0], 2u);
    EXPECT_EQ(info.delay[0], 10u);
    EXPECT_EQ(info.controlBytes[0], 0x01000A09u);      // flags, delay low, delay high, index: little-endian
    EXPECT_EQ(info.transparentColor[0], 0x0028323Cu);  // entry 1 as 0x00RRGGBB
    EXPECT_EQ(info.disposal[1], 3u);
    EXPECT_EQ(info.delay[1], 250u);
    EXPECT_EQ(info.transparentColor[1], 0xFFFFFFFFu);
    EXPECT_EQ(info.controlBytes[2], 0u);
    EXPECT_EQ(info.transparentColor[2], 0xFFFFFFFFu);

    // A zero byte where a block should start ends the walk as the trailer does.
    GifBuilder stop;
    stop.Image(0, 0, 1, 1).b.push_back(0x00);
    stop.Image(0, 0, 1, 1);
    EXPECT_EQ(Walk(stop.b).count, 1u);
}

TEST(GifWalk, SecondControlBlockWinsButKeepsAnEarlierTransparentIndex)
{
    GifBuilder gif;
    gif.Control(0x04 | 0x01, 5, 0).Control(0x08, 40, 9).Image(0, 0, 2, 2).Image(0, 0, 2, 2).Trailer();
    Walk w(gif.b);
    ASSERT_EQ(w.count, 2u);
    EXPECT_EQ(w.info->disposal[0], 2u);
    EXPECT_EQ(w.info->delay[0], 40u);
    EXPECT_EQ(w.info->controlBytes[0], 0x09002808u);
    EXPECT_EQ(w.info->transparentColor[0], 0x000A141Eu);  // index 0 of the first block, as 0x00RRGGBB
    EXPECT_EQ(w.info->delay[1], 0u);

    // A control block of another length moves on by its length and walks no chain.
    GifBuilder odd;
    odd.b.insert(odd.b.end(), {0x21, 0xF9, 0x06, 0x04, 0x11, 0x00, 0x00, 0xEE, 0xEE, 0x00});
    odd.Image(0, 0, 1, 1).Image(0, 0, 1, 1).Trailer();
    Walk o(odd.b);
    ASSERT_EQ(o.count, 2u);
    EXPECT_EQ(o.info->delay[0], 0x11u);
    EXPECT_EQ(o.info->disposal[0], 1u);
}

TEST(GifWalk, TransparentColourLookups)
{
    // Local table: the entry comes from it.
    GifBuilder local;
    local.Control(0x01, 0, 1).Image(0, 0, 1, 1, {1, 2, 3, 0xAB, 0xCD, 0xEF}).Trailer();
    Walk l(local.b);
    ASSERT_EQ(l.count, 1u);
    EXPECT_EQ(l.info->transparentColor[0], 0x00ABCDEFu);
    // An entry past the end of the file leaves the index standing; the image still counts.
    GifBuilder far;
    far.Control(0x01, 0, 200).Image(0, 0, 1, 1).Trailer();
    Walk f(far.b);
    ASSERT_EQ(f.count, 1u);
    EXPECT_EQ(f.info->transparentColor[0], 200u);
    // An index past the global table but inside the file reads whatever bytes stand there (the header of the
    // control block: 0x21, 0xF9, 0x04 for index 2).
    GifBuilder past;
    past.Control(0x01, 0, 2).Image(0, 0, 1, 1).Trailer();
    EXPECT_EQ(Walk(past.b).info->transparentColor[0], 0x0021F904u);
}

TEST(GifWalk, At512ImagesTheWalkStopsAndCounts511)
{
    GifBuilder gif;
    gif.Loop(0);
    for (int i = 0; i < 600; ++i)
        gif.Control(0x04, static_cast<uint16_t>(i), 0).Image(0, 0, 1, 1);
    gif.Trailer();
    Walk w(gif.b);
    EXPECT_EQ(w.count, 511u);
    EXPECT_EQ(w.info->delay[510], 510u);
    EXPECT_EQ(w.info->delay[511], 511u);  // the 512th image was parsed
    EXPECT_NE(w.info->imageLength[511], 0u);
    EXPECT_EQ(kGifMaxImages, 511u);
}

TEST(GifWalk, TruncatedFilesKeepTheImagesCompleteSoFar)
{
    GifBuilder gif;
    gif.Loop(1).Control(0x08, 10, 0).Image(0, 0, 4, 4).Comment("between").Control(0x08, 20, 0);
    gif.Image(1, 1, 2, 2, {1, 2, 3, 4, 5, 6}).Control(0x08, 30, 0).Image(2, 2, 1, 1).Trailer();
    Walk full(gif.b);
    ASSERT_EQ(full.count, 3u);
    for (size_t cut = 0; cut <= gif.b.size(); ++cut) {
        // Only the exact bytes: an address sanitizer sees any read past the cut.
        Bytes part(gif.b.begin(), gif.b.begin() + static_cast<std::ptrdiff_t>(cut));
        Walk w(part);
        unsigned expected = 0;
        for (unsigned i = 0; i < full.count; ++i)
            if (full.info->imageOffset[i] + full.info->imageLength[i] <= cut)
                ++expected;
        EXPECT_EQ(w.count, expected) << "cut at " << cut;
        for (unsigned i = 0; i < w.count; ++i)
            EXPECT_FALSE(FrameFile(part, *w.info, i).empty()) << "cut at " << cut << ", image " << i;
    }
    // The header alone, and nothing at all.
    EXPECT_EQ(Walk(Bytes(gif.b.begin(), gif.b.begin() + 11)).count, 0u);
    uint32_t background = 1;
    int loop = 0;
    ZBUGIFFileStruct info;
    EXPECT_EQ(WalkGifStructure(nullptr, 100, info, background, loop), 0u);
    EXPECT_EQ(loop, 1);
}

TEST(GifFrameFile, PrefixImageTrailerAndThePatchedControlBlock)
{
    GifBuilder gif;
    gif.Loop(0).Control(0x08, 10, 0).Image(0, 0, 16, 12);
    gif.Control(0x0D, 0x1234, 7).Image(3, 4, 5, 6).Trailer();
    Walk w(gif.b);
    ASSERT_EQ(w.count, 2u);
    const size_t prefix = w.info->imageOffset[0];

    const Bytes f0 = FrameFile(gif.b, *w.info, 0);
    ASSERT_EQ(f0.size(), prefix + w.info->imageLength[0] + 2);
    EXPECT_EQ(Bytes(f0.begin(), f0.begin() + static_cast<std::ptrdiff_t>(prefix + w.info->imageLength[0])),
              Bytes(gif.b.begin(), gif.b.begin() + static_cast<std::ptrdiff_t>(prefix + w.info->imageLength[0])));
    EXPECT_EQ(f0[f0.size() - 2], 0x3B);
    EXPECT_EQ(f0.back(), 0x00);

    const Bytes f1 = FrameFile(gif.b, *w.info, 1);
    ASSERT_EQ(f1.size(), prefix + w.info->imageLength[1] + 2);
    // The prefix's control block (after the 19-byte loop block) now carries frame 1's bytes, little-endian.
    const size_t gce = 19 + 19;
    EXPECT_EQ(Bytes(f1.begin() + gce, f1.begin() + gce + 8), (Bytes{0x21, 0xF9, 0x04, 0x0D, 0x34, 0x12, 7, 0}));
    EXPECT_EQ(f1[prefix], 0x2C);
    EXPECT_EQ(f1[f1.size() - 2], 0x3B);
    const GifRect r = GifFrameRect(f1.data(), f1.size(), prefix);
    EXPECT_EQ(r.left, 3);
    EXPECT_EQ(r.top, 4);
    EXPECT_EQ(r.width, 5);
    EXPECT_EQ(r.height, 6);
    EXPECT_EQ(GifScreenWidth(gif.b.data(), gif.b.size()), 16);
    EXPECT_EQ(GifScreenHeight(gif.b.data(), gif.b.size()), 12);
    EXPECT_EQ(GifScreenHeight(gif.b.data(), 9), 0);
    EXPECT_EQ(GifFrameRect(f1.data(), prefix + 8, prefix).width, 0);

    // No control block in the prefix: nothing to patch.
    GifBuilder bare;
    bare.Image(0, 0, 16, 12).Control(0x0D, 0x1234, 7).Image(3, 4, 5, 6).Trailer();
    Walk b(bare.b);
    ASSERT_EQ(b.count, 2u);
    const Bytes g1 = FrameFile(bare.b, *b.info, 1);
    EXPECT_EQ(Bytes(g1.begin(), g1.begin() + 19), Bytes(bare.b.begin(), bare.b.begin() + 19));

    // The first 0x21 0xF9 0x04 is taken wherever it stands, here in the global colour table.
    GifBuilder table;
    table.b[13] = 0x21;
    table.b[14] = 0xF9;
    table.b[15] = 0x04;
    table.Control(0x08, 10, 0).Image(0, 0, 1, 1).Control(0x04, 0x0102, 0).Image(0, 0, 1, 1).Trailer();
    Walk t(table.b);
    ASSERT_EQ(t.count, 2u);
    const Bytes h1 = FrameFile(table.b, *t.info, 1);
    EXPECT_EQ(Bytes(h1.begin() + 16, h1.begin() + 20), (Bytes{0x04, 0x02, 0x01, 0x00}));
    // The fourth byte lands on the introducer of the real control block at 19; the rest of it is as it was.
    EXPECT_EQ(h1[20], 0xF9);
    EXPECT_EQ(h1[22], 0x08);
}

TEST(GifFrameFile, RecordsOfTheCallersOwnAreChecked)
{
    GifBuilder gif;
    gif.Control(0x08, 10, 0).Image(0, 0, 2, 2).Control(0x04, 20, 0).Image(0, 0, 2, 2).Trailer();
    Walk w(gif.b);
    ASSERT_EQ(w.count, 2u);
    ZBUGIFFileStruct info = *w.info;
    Bytes out(4096, 0);

    EXPECT_EQ(GifFrameFileSize(gif.b.size(), info, 512), 0u);
    EXPECT_EQ(GifFrameFileSize(gif.b.size(), info, 2), 0u);  // no such image: length 0
    ZBUGIFFileStruct bad = info;
    bad.imageLength[1] = static_cast<uint32_t>(gif.b.size());
    EXPECT_EQ(GifFrameFileSize(gif.b.size(), bad, 1), 0u);
    EXPECT_FALSE(BuildGifFrameFile(gif.b.data(), gif.b.size(), bad, 1, out.data(), out.size()));
    bad = info;
    bad.imageOffset[1] = 0xFFFFFFF0u;
    EXPECT_FALSE(BuildGifFrameFile(gif.b.data(), gif.b.size(), bad, 1, out.data(), out.size()));
    bad = info;
    bad.imageOffset[0] = static_cast<uint32_t>(gif.b.size() + 1);
    EXPECT_EQ(GifFrameFileSize(gif.b.size(), bad, 1), 0u);

    // An output area shorter than the frame file is refused.
    const size_t size = GifFrameFileSize(gif.b.size(), info, 1);
    ASSERT_GT(size, 0u);
    EXPECT_FALSE(BuildGifFrameFile(gif.b.data(), gif.b.size(), info, 1, out.data(), size - 1));
    EXPECT_TRUE(BuildGifFrameFile(gif.b.data(), gif.b.size(), info, 1, out.data(), size));
    EXPECT_FALSE(BuildGifFrameFile(nullptr, gif.b.size(), info, 1, out.data(), size));

    // A prefix that ends inside the control block's data: the patch would leave the prefix, so none is made.
    ZBUGIFFileStruct cut = info;
    cut.imageOffset[0] = 13 + 6 + 5;  // the block's 0x21, 0xF9, 0x04 and two data bytes
    Bytes frame(GifFrameFileSize(gif.b.size(), cut, 1), 0xEE);
    ASSERT_TRUE(BuildGifFrameFile(gif.b.data(), gif.b.size(), cut, 1, frame.data(), frame.size()));
    EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 24), Bytes(gif.b.begin(), gif.b.begin() + 24));
}

TEST(GifFixtures, AnimationsWrittenByImageMagick)
{
    const Bytes disposal = ReadFileBytes(FixturePath("anim_disposal.gif"));
    ASSERT_FALSE(disposal.empty());
    Walk d(disposal);
    ASSERT_EQ(d.count, 3u);
    EXPECT_EQ(d.loop, 5);                  // "-loop 5" is written as 4 more plays
    EXPECT_EQ(d.background, 0x000000FFu);  // entry 0, red, as 0x00BBGGRR
    const unsigned disposals[] = {2, 3, 1};
    const unsigned delays[] = {10, 20, 30};
    const GifRect rects[] = {{0, 0, 16, 12}, {4, 2, 6, 4}, {9, 7, 5, 3}};
    const size_t prefix = d.info->imageOffset[0];
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_EQ(d.info->disposal[i], disposals[i]) << i;
        EXPECT_EQ(d.info->delay[i], delays[i]) << i;
        const Bytes frame = FrameFile(disposal, *d.info, i);
        ASSERT_FALSE(frame.empty()) << i;
        const GifRect r = GifFrameRect(frame.data(), frame.size(), prefix);
        EXPECT_EQ(r.left, rects[i].left) << i;
        EXPECT_EQ(r.top, rects[i].top) << i;
        EXPECT_EQ(r.width, rects[i].width) << i;
        EXPECT_EQ(r.height, rects[i].height) << i;
        EXPECT_EQ(frame[frame.size() - 2], 0x3B);
        // Each frame file's first control block carries that frame's delay.
        const uint8_t* gce = nullptr;
        for (size_t k = 0; k + 7 <= prefix; ++k)
            if (frame[k] == 0x21 && frame[k + 1] == 0xF9 && frame[k + 2] == 0x04) {
                gce = &frame[k];
                break;
            }
        ASSERT_NE(gce, nullptr);
        EXPECT_EQ(gce[4] | gce[5] << 8, static_cast<int>(delays[i])) << i;
    }
    EXPECT_EQ(GifScreenWidth(disposal.data(), disposal.size()), 16);
    EXPECT_EQ(GifScreenHeight(disposal.data(), disposal.size()), 12);

    const Bytes transparent = ReadFileBytes(FixturePath("anim_transparent.gif"));
    Walk t(transparent);
    ASSERT_EQ(t.count, 2u);
    EXPECT_EQ(t.loop, 1);  // loops for ever: the file says 0
    EXPECT_EQ(t.info->delay[0], 7u);
    EXPECT_EQ(t.info->delay[1], 9u);
    EXPECT_EQ(t.info->transparentColor[0], 0xFFFFFFFFu);
    // White made transparent: index 1 of the second image's local table, which holds black there.
    EXPECT_EQ(t.info->controlBytes[1] >> 24, 1u);
    EXPECT_EQ(t.info->transparentColor[1], 0x00000000u);

    const Bytes still = ReadFileBytes(FixturePath("still.gif"));
    EXPECT_EQ(Walk(still).count, 1u);
}
