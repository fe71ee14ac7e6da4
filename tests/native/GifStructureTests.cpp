// The GIF block walk and the one-image files cut out of an animated GIF.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "image/core/GifStructure.h"

using namespace zcmod;

namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint32_t>;

// Writes GIF files block by block: a 16 x 12 screen whose global table has two entries, (10, 20, 30) and
// (40, 50, 60).
struct GifBuilder {
    Bytes b;
    static uint8_t Lo(int v) { return static_cast<uint8_t>(v); }
    static uint8_t Hi(int v) { return static_cast<uint8_t>(v >> 8); }
    explicit GifBuilder(uint8_t background = 0)
        : b{'G', 'I', 'F', '8', '9', 'a', 16, 0, 12, 0, 0xF0, background, 0, 10, 20, 30, 40, 50, 60}
    {
    }
    GifBuilder& Add(const Bytes& bytes)
    {
        b.insert(b.end(), bytes.begin(), bytes.end());
        return *this;
    }
    GifBuilder& Loop(uint16_t n)
    {
        return Add({0x21, 0xFF, 0x0B, 'N', 'E', 'T', 'S', 'C', 'A', 'P', 'E', '2', '.', '0', 3, 1, Lo(n), Hi(n), 0});
    }
    GifBuilder& Control(uint8_t packed, uint16_t delay, uint8_t transparent)
    {
        return Add({0x21, 0xF9, 4, packed, Lo(delay), Hi(delay), transparent, 0});
    }
    GifBuilder& Comment() { return Add({0x21, 0xFE, 5, 'h', 'e', 'l', 'l', 'o', 0}); }
    // An image whose LZW data is two sub-blocks of junk: the walk does not decode it. A local table has two
    // entries (6 bytes).
    GifBuilder& Image(uint16_t left, uint16_t top, uint16_t w, uint16_t h, const Bytes& localTable = {})
    {
        Add({0x2C, Lo(left), Hi(left), Lo(top), Hi(top), Lo(w), Hi(w), Lo(h), Hi(h),
             Lo(localTable.empty() ? 0 : 0x80)});
        return Add(localTable).Add({0x02, 0x03, 0x84, 0x8F, 0x09, 0x01, 0x05, 0x00});
    }
    GifBuilder& Trailer() { return Add({0x3B}); }
};

struct Walk {
    std::unique_ptr<ZBUGIFFileStruct> info{new ZBUGIFFileStruct};
    uint32_t background = 0xDEADBEEF;
    int loop = -7;
    unsigned count = 0;

    explicit Walk(const Bytes& file) { count = WalkGifStructure(file.data(), file.size(), *info, background, loop); }
    // The first `n` entries of one of the record's arrays.
    static Words First(const uint32_t* column, size_t n) { return Words(column, column + n); }
};

Bytes FrameFile(const Bytes& file, const ZBUGIFFileStruct& info, unsigned index)
{
    Bytes out(GifFrameFileSize(file.size(), info, index), 0);
    if (out.empty() || !BuildGifFrameFile(file.data(), file.size(), info, index, out.data(), out.size()))
        return Bytes();
    return out;
}

}  // namespace

TEST(GifWalk, LoopCountIsTheFileValuePlusOne)
{
    // (No block and a block of 0 giving 1 are the image store's, on ImageMagick's files.)
    EXPECT_EQ(Walk(GifBuilder().Loop(65535).Image(0, 0, 1, 1).Trailer().b).loop, 65536);
    // The identifier is not compared: any application block of that shape counts; one whose first sub-block
    // is not 3 bytes starting with 1 is no loop count.
    const Bytes anim = {0x21, 0xFF, 0x0B, 'A', 'N', 'I', 'M', 'E', 'X', 'T', 'S', '1', '.', '0', 3, 1, 3, 0, 0};
    EXPECT_EQ(Walk(GifBuilder().Add(anim).Image(0, 0, 1, 1).b).loop, 4);
    const Bytes other = {0x21, 0xFF, 0x0B, 'X', 'X', 'X', 'X', 'X', 'X', 'X', 'X', '1', '.', '0', 3, 2, 9, 0, 0};
    EXPECT_EQ(Walk(GifBuilder().Add(other).Image(0, 0, 1, 1).b).loop, 1);
}

TEST(GifWalk, ImagesBlocksAndTheirRecords)
{
    GifBuilder gif(1);
    gif.Comment().Control(0x08 | 0x01, 10, 1);
    const uint32_t first = static_cast<uint32_t>(gif.b.size());
    gif.Image(0, 0, 16, 12).Loop(2).Control(0x0C, 250, 0);
    const uint32_t second = static_cast<uint32_t>(gif.b.size());
    // Then a plain-text block and an unknown extension, both skipped along their chains.
    gif.Image(4, 2, 6, 4, {1, 2, 3, 7, 8, 9}).Add({0x21, 0x01, 12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 'h', 'i', 0});
    const uint32_t third = static_cast<uint32_t>(gif.Add({0x21, 0x42, 2, 0xAA, 0xBB, 1, 0xCC, 0}).b.size());
    gif.Image(9, 7, 5, 3).Trailer().Add({0x2C, 0, 0});  // nothing after the trailer is read

    Walk w(gif.b);
    ASSERT_EQ(w.count, 3u);
    EXPECT_EQ(w.loop, 3);
    EXPECT_EQ(w.background, 0x003C3228u);  // entry 1 as 0x00BBGGRR
    const ZBUGIFFileStruct& info = *w.info;
    EXPECT_EQ(Walk::First(info.imageOffset, 3), (Words{first, second, third}));
    // Descriptor 10, code size 1, chain 6, terminator 1; and a local table of 6.
    EXPECT_EQ(Walk::First(info.imageLength, 3), (Words{18, 24, 18}));
    EXPECT_EQ(Walk::First(info.disposal, 2), (Words{2, 3}));
    EXPECT_EQ(Walk::First(info.delay, 2), (Words{10, 250}));
    // Flags, delay low, delay high, index: little-endian; nothing for the image without a control block.
    EXPECT_EQ(Walk::First(info.controlBytes, 3), (Words{0x01000A09, 0x0000FA0C, 0}));
    // Entry 1 as 0x00RRGGBB where a transparent index was given.
    EXPECT_EQ(Walk::First(info.transparentColor, 3), (Words{0x0028323C, 0xFFFFFFFF, 0xFFFFFFFF}));

    // A zero byte where a block should start ends the walk as the trailer does.
    EXPECT_EQ(Walk(GifBuilder().Image(0, 0, 1, 1).Add({0}).Image(0, 0, 1, 1).b).count, 1u);
}

TEST(GifWalk, ControlBlocksAndTransparentColourLookups)
{
    // The second control block before an image wins, but a transparent index set by the first stays.
    Walk w(GifBuilder().Control(0x04 | 0x01, 5, 0).Control(0x08, 40, 9).Image(0, 0, 2, 2).Image(0, 0, 2, 2).b);
    ASSERT_EQ(w.count, 2u);
    EXPECT_EQ(w.info->disposal[0], 2u);
    EXPECT_EQ(Walk::First(w.info->delay, 2), (Words{40, 0}));
    EXPECT_EQ(w.info->controlBytes[0], 0x09002808u);
    EXPECT_EQ(w.info->transparentColor[0], 0x000A141Eu);  // index 0 of the first block, as 0x00RRGGBB

    // A control block of another length moves on by its length and walks no chain.
    Walk o(GifBuilder().Add({0x21, 0xF9, 0x06, 0x04, 0x11, 0x00, 0x00, 0xEE, 0xEE, 0x00}).Image(0, 0, 1, 1).b);
    ASSERT_EQ(o.count, 1u);
    EXPECT_EQ(o.info->delay[0], 0x11u);
    EXPECT_EQ(o.info->disposal[0], 1u);

    // A local table gives the entry; an entry past the end of the file leaves the index standing; an index past
    // the global table but inside the file reads whatever bytes stand there (0x21, 0xF9, 0x04 for index 2).
    EXPECT_EQ(
        Walk(GifBuilder().Control(1, 0, 1).Image(0, 0, 1, 1, {1, 2, 3, 0xAB, 0xCD, 0xEF}).b).info->transparentColor[0],
        0x00ABCDEFu);
    EXPECT_EQ(Walk(GifBuilder().Control(1, 0, 200).Image(0, 0, 1, 1).b).info->transparentColor[0], 200u);
    EXPECT_EQ(Walk(GifBuilder().Control(1, 0, 2).Image(0, 0, 1, 1).b).info->transparentColor[0], 0x0021F904u);
}

TEST(GifWalk, TruncatedFilesKeepTheImagesCompleteSoFar)
{
    GifBuilder gif;
    gif.Loop(1).Control(0x08, 10, 0).Image(0, 0, 4, 4).Comment().Control(0x08, 20, 0);
    gif.Image(1, 1, 2, 2, {1, 2, 3, 4, 5, 6}).Control(0x08, 30, 0).Image(2, 2, 1, 1).Trailer();
    Walk full(gif.b);
    ASSERT_EQ(full.count, 3u);
    for (size_t cut = 0; cut <= gif.b.size(); ++cut) {
        // Only the exact bytes: an address sanitizer sees any read past the cut.
        Bytes part(gif.b.begin(), gif.b.begin() + static_cast<std::ptrdiff_t>(cut));
        Walk w(part);
        unsigned expected = 0;
        for (unsigned i = 0; i < full.count; ++i)
            expected += full.info->imageOffset[i] + full.info->imageLength[i] <= cut;
        EXPECT_EQ(w.count, expected) << "cut at " << cut;
    }
    uint32_t background = 1;
    int loop = 0;
    EXPECT_EQ(WalkGifStructure(nullptr, 100, *full.info, background, loop), 0u);
    EXPECT_EQ(loop, 1);
}

TEST(GifFrameFile, PrefixImageTrailerAndThePatchedControlBlock)
{
    GifBuilder gif;
    gif.Loop(0).Control(0x08, 10, 0).Image(0, 0, 16, 12).Control(0x0D, 0x1234, 7).Image(3, 4, 5, 6).Trailer();
    Walk w(gif.b);
    ASSERT_EQ(w.count, 2u);
    const size_t prefix = w.info->imageOffset[0];
    const size_t length0 = w.info->imageLength[0];
    const Bytes f0 = FrameFile(gif.b, *w.info, 0);
    ASSERT_EQ(f0.size(), prefix + length0 + 2);
    EXPECT_EQ(Bytes(f0.begin(), f0.end() - 2), Bytes(gif.b.begin(), gif.b.begin() + (prefix + length0)));
    EXPECT_EQ(Bytes(f0.end() - 2, f0.end()), (Bytes{0x3B, 0x00}));

    const Bytes f1 = FrameFile(gif.b, *w.info, 1);
    ASSERT_EQ(f1.size(), prefix + w.info->imageLength[1] + 2);
    // The prefix's control block (after the 19-byte loop block) now carries frame 1's bytes, little-endian.
    EXPECT_EQ(Bytes(f1.begin() + 38, f1.begin() + 46), (Bytes{0x21, 0xF9, 0x04, 0x0D, 0x34, 0x12, 7, 0}));
    EXPECT_EQ(f1[prefix], 0x2C);
    EXPECT_EQ(f1[f1.size() - 2], 0x3B);
    const GifRect r = GifFrameRect(f1.data(), f1.size(), prefix);
    EXPECT_EQ((std::vector<int>{r.left, r.top, r.width, r.height}), (std::vector<int>{3, 4, 5, 6}));

    // No control block in the prefix: nothing to patch.
    GifBuilder bare;
    Walk b(bare.Image(0, 0, 16, 12).Control(0x0D, 0x1234, 7).Image(3, 4, 5, 6).b);
    const Bytes g1 = FrameFile(bare.b, *b.info, 1);
    ASSERT_GT(g1.size(), 19u);
    EXPECT_EQ(Bytes(g1.begin(), g1.begin() + 19), Bytes(bare.b.begin(), bare.b.begin() + 19));

    // The first 0x21 0xF9 0x04 is taken wherever it stands, here in the global colour table; the fourth byte
    // lands on the introducer of the real control block at 19, and the rest of that is as it was.
    GifBuilder table;
    table.b[13] = 0x21;
    table.b[14] = 0xF9;
    table.b[15] = 0x04;
    Walk t(table.Control(0x08, 10, 0).Image(0, 0, 1, 1).Control(0x04, 0x0102, 0).Image(0, 0, 1, 1).b);
    const Bytes h1 = FrameFile(table.b, *t.info, 1);
    ASSERT_GT(h1.size(), 22u);
    EXPECT_EQ(Bytes(h1.begin() + 16, h1.begin() + 23), (Bytes{0x04, 0x02, 0x01, 0x00, 0xF9, 0x04, 0x08}));
}

TEST(GifFrameFile, RecordsOfTheCallersOwnAreChecked)
{
    GifBuilder gif;
    Walk w(gif.Control(0x08, 10, 0).Image(0, 0, 2, 2).Control(0x04, 20, 0).Image(0, 0, 2, 2).Trailer().b);
    const size_t n = gif.b.size();
    Bytes out(GifFrameFileSize(n, *w.info, 1), 0);
    ASSERT_FALSE(out.empty());
    EXPECT_FALSE(BuildGifFrameFile(gif.b.data(), n, *w.info, 1, out.data(), out.size() - 1));  // the output is short
    EXPECT_EQ(GifFrameFileSize(n, *w.info, 512), 0u);
    // An image that leaves the file.
    ZBUGIFFileStruct bad = *w.info;
    bad.imageOffset[1] = 0xFFFFFFF0u;
    EXPECT_EQ(GifFrameFileSize(n, bad, 1), 0u);
    EXPECT_FALSE(BuildGifFrameFile(gif.b.data(), n, bad, 1, out.data(), out.size()));
    // A prefix that ends inside the control block's data: the patch would leave the prefix, so none is made.
    bad = *w.info;
    bad.imageOffset[0] = 13 + 6 + 5;  // the block's 0x21, 0xF9, 0x04 and two data bytes
    Bytes frame(GifFrameFileSize(n, bad, 1), 0xEE);
    ASSERT_TRUE(BuildGifFrameFile(gif.b.data(), n, bad, 1, frame.data(), frame.size()));
    EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 24), Bytes(gif.b.begin(), gif.b.begin() + 24));
}
