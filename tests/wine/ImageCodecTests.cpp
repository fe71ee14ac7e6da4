// The codecs' adapters with real files: animated GIFs made by ImageMagick, WBMP files made by ImageMagick and
// netpbm, libpng's PNG suite, and WBMP and OTA files of our own writing.
#include <gtest/gtest.h>

#include <objbase.h>

#include <fstream>
#include <memory>
#include <sstream>

#include "ImageTestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

const uint32_t kBack = 0x123456;  // 0x00RRGGBB as read back
const COLORREF kBackRef = RGB(0x12, 0x34, 0x56);

// A GIF of `images` 1 x 1 images on a 1 x 1 screen, with a looping block that says `loops`.
std::vector<uint8_t> TinyAnimation(int images, int loops)
{
    std::vector<uint8_t> gif = {'G',  'I', 'F', '8',  '9', 'a', 1, 0, 1,   0,
                                0x80, 0,   0,   0xFF, 0,   0,   0, 0, 0xFF};  // global table: red, blue
    const uint8_t loop[] = {0x21,
                            0xFF,
                            0x0B,
                            'N',
                            'E',
                            'T',
                            'S',
                            'C',
                            'A',
                            'P',
                            'E',
                            '2',
                            '.',
                            '0',
                            3,
                            1,
                            static_cast<uint8_t>(loops & 0xFF),
                            static_cast<uint8_t>(loops >> 8),
                            0};
    gif.insert(gif.end(), loop, loop + sizeof(loop));
    for (int i = 0; i < images; ++i) {
        const uint8_t control[] = {0x21, 0xF9, 4, 0, static_cast<uint8_t>(i % 7), 0, 0, 0};
        const uint8_t image[] = {0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0, 2, 2, 0x44, 0x01, 0};
        gif.insert(gif.end(), control, control + sizeof(control));
        gif.insert(gif.end(), image, image + sizeof(image));
    }
    gif.push_back(0x3B);
    return gif;
}

std::vector<std::string> ReadPbm(const std::wstring& path, int& width, int& height)
{
    std::vector<uint8_t> bytes = ReadBytes(path);
    std::istringstream in(std::string(bytes.begin(), bytes.end()));
    std::string magic;
    in >> magic >> width >> height;
    std::vector<std::string> rows(height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            char c;
            in >> c;
            rows[y].push_back(c);
        }
    return rows;
}

}  // namespace

// ---- GIF ----------------------------------------------------------------------------------------------------------

TEST(ImageGif, ImageMagickAnimationComposesWithDisposalDelaysAndLoops)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 40, 16, 12, 0x999999));  // same size, still removed
    util.SetGIFBkColor(kBackRef);
    // The index of the load plays no part: an animation fills the store from frame 0.
    HBITMAP first = util.NLoadBitmap(DataFile("anim_disposal.gif").c_str(), BT_IMAGE, 7);
    EXPECT_EQ(first, nullptr);  // nothing lands at 7
    ASSERT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 3);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 40), nullptr);
    EXPECT_EQ(util.GetLoopCount(), 5);  // -loop 5: ImageMagick's block says 4 repeats
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 0), 100);
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 1), 200);
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 2), 300);
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 16);
    EXPECT_EQ(util.GetBitmapHeight(BT_IMAGE), 12);

    const Pixels f0 = ReadFrame(util, BT_IMAGE, 0);
    const Pixels f1 = ReadFrame(util, BT_IMAGE, 1);
    const Pixels f2 = ReadFrame(util, BT_IMAGE, 2);
    EXPECT_EQ(f0.At(0, 0), 0xFF0000u);
    EXPECT_EQ(f0.At(15, 11), 0xFF0000u);
    // Frame 0 was disposed to the background: frame 1 is background with the green 6 x 4 at (4, 2).
    EXPECT_EQ(f1.At(0, 0), kBack);
    EXPECT_EQ(f1.At(3, 2), kBack);
    EXPECT_EQ(f1.At(4, 2), 0x00FF00u);
    EXPECT_EQ(f1.At(9, 5), 0x00FF00u);
    EXPECT_EQ(f1.At(10, 5), kBack);
    // Frame 1's disposal 3 acts as 2: its rectangle is background under the blue 5 x 3 at (9, 7).
    EXPECT_EQ(f2.At(4, 2), kBack);
    EXPECT_EQ(f2.At(9, 5), kBack);
    EXPECT_EQ(f2.At(9, 7), 0x0000FFu);
    EXPECT_EQ(f2.At(13, 9), 0x0000FFu);
    EXPECT_EQ(f2.At(14, 9), kBack);
    EXPECT_EQ(f2.At(8, 7), kBack);
}

TEST(ImageGif, DisposalThreeIsTwoAndTransparentPixelsShowTheBackground)
{
    for (const char* name : {"wine/image/dispose_previous.gif", "wine/image/dispose_background.gif"}) {
        SCOPED_TRACE(name);
        TestBitmapUtil util;
        util.SetGIFBkColor(kBackRef);
        ASSERT_NE(util.NLoadBitmap(DataFile(name).c_str(), BT_BACKGROUND, 0), nullptr);
        ASSERT_EQ(util.GetNumberOfBitmaps(BT_BACKGROUND), 3);
        const Pixels f1 = ReadFrame(util, BT_BACKGROUND, 1);
        const Pixels f2 = ReadFrame(util, BT_BACKGROUND, 2);
        EXPECT_EQ(f1.At(0, 0), 0xFF0000u);
        EXPECT_EQ(f1.At(2, 2), 0x00FF00u);
        // The lime frame's rectangle is background, never the red it covered.
        EXPECT_EQ(f2.At(2, 2), kBack);
        EXPECT_EQ(f2.At(5, 5), kBack);
        // The blue frame's transparent left half shows the background (the second fill), not red.
        EXPECT_EQ(f2.At(6, 2), kBack);
        EXPECT_EQ(f2.At(7, 5), kBack);
        EXPECT_EQ(f2.At(8, 2), 0x0000FFu);
        EXPECT_EQ(f2.At(9, 5), 0x0000FFu);
        EXPECT_EQ(f2.At(10, 2), 0xFF0000u);
        EXPECT_EQ(f2.At(0, 7), 0xFF0000u);
        EXPECT_EQ(util.GetLoopCount(), 1);  // no looping block
    }
}

TEST(ImageGif, TransparencyOverAKeptFrameAndTheFilesOwnBackground)
{
    TestBitmapUtil util;
    ASSERT_NE(util.NLoadBitmap(DataFile("anim_transparent.gif").c_str(), BT_IMAGE, 0), nullptr);
    ASSERT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 2);
    EXPECT_EQ(util.GetLoopCount(), 1);  // says 0: for ever
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 0), 70);
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 1), 90);
    const Pixels f1 = ReadFrame(util, BT_IMAGE, 1);
    EXPECT_EQ(f1.At(0, 0), 0xFFFF00u);  // transparent white shows frame 0's yellow
    EXPECT_EQ(f1.At(3, 3), 0x000000u);

    // Without a colour of the caller's, the file's background entry fills the first frame around a smaller
    // image: a 2 x 1 screen whose background is entry 1 (blue), with a red 1 x 1 image at the left.
    ScratchFolder scratch;
    std::vector<uint8_t> gif = TinyAnimation(2, 1);
    gif[6] = 2;
    gif[11] = 1;
    WriteBytes(scratch.File(L"bg.gif"), gif);
    TestBitmapUtil own;
    ASSERT_NE(own.NLoadBitmap(scratch.File(L"bg.gif").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(ReadFrame(own, BT_IMAGE, 0).At(0, 0), 0xFF0000u);
    EXPECT_EQ(ReadFrame(own, BT_IMAGE, 0).At(1, 0), 0x0000FFu);
    // A colour of the caller's wins over the file's.
    own.SetGIFBkColor(RGB(0, 255, 0));
    ASSERT_NE(own.NLoadBitmap(scratch.File(L"bg.gif").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(ReadFrame(own, BT_IMAGE, 1).At(1, 0), 0x00FF00u);
}

TEST(ImageGif, LoopCountsAndTheFrameCap)
{
    ScratchFolder scratch;
    TestBitmapUtil util;
    const std::wstring loops = scratch.File(L"loops.gif");
    WriteBytes(loops, TinyAnimation(2, 0));
    ASSERT_NE(util.NLoadBitmap(loops.c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLoopCount(), 1);
    WriteBytes(loops, TinyAnimation(2, 300));
    ASSERT_NE(util.NLoadBitmap(loops.c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLoopCount(), 301);
    ASSERT_NE(util.NLoadBitmap(DataFile("wine/image/noloop.gif").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLoopCount(), 1);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 2);

    // 600 images give 511 frames: the 512th is parsed and not counted.
    const std::vector<uint8_t> many = TinyAnimation(600, 1);
    CNBitmapUtil::CGIFFileStruct info;
    unsigned long background = 0;
    EXPECT_EQ(util.GetGIFFileStructure(const_cast<uint8_t*>(many.data()), static_cast<unsigned>(many.size()), &info,
                                       &background),
              511u);
    EXPECT_EQ(background, 0x0000FFul);  // entry 0, red, as a COLORREF
    const std::wstring big = scratch.File(L"many.gif");
    WriteBytes(big, many);
    ASSERT_NE(util.NLoadBitmap(big.c_str(), BT_ALPHA, 0), nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_ALPHA), 511);
    EXPECT_EQ(util.GetBitmapHandle(BT_ALPHA, 511), nullptr);
    EXPECT_EQ(util.GetFrameDelay(BT_ALPHA, 510), (510 % 7) * 10);
    EXPECT_EQ(util.GetLoopCount(), 2);
}

TEST(ImageGif, TruncatedAndHostileFilesFailQuietly)
{
    ScratchFolder scratch;
    TestBitmapUtil util;
    std::vector<uint8_t> gif = TinyAnimation(3, 1);
    const std::wstring path = scratch.File(L"cut.gif");
    for (size_t cut : {size_t(0), size_t(5), size_t(13), size_t(30), gif.size() / 2, gif.size() - 2}) {
        WriteBytes(path, std::vector<uint8_t>(gif.begin(), gif.begin() + cut));
        util.NLoadBitmap(path.c_str(), BT_IMAGE, 0);  // any result but a crash
    }
    // A screen of 65535 x 65535 can't be made: no frame is composed, and the file goes on to the picture
    // route, which decodes the first image alone.
    gif[6] = gif[7] = gif[8] = gif[9] = 0xFF;
    WriteBytes(path, gif);
    util.NLoadBitmap(path.c_str(), BT_IMAGE, 0);
    EXPECT_LE(util.GetNumberOfBitmaps(BT_IMAGE), 1);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 1), nullptr);
    // A chain length that points past the end.
    std::vector<uint8_t> chain = TinyAnimation(2, 1);
    chain[chain.size() - 5] = 0xF0;
    WriteBytes(path, chain);
    util.NLoadBitmap(path.c_str(), BT_IMAGE, 0);
}

// ---- WBMP and OTA -------------------------------------------------------------------------------------------------

TEST(ImageWbmp, FilesWrittenByImageMagickAndNetpbmLoad)
{
    struct Case {
        const char* wbmp;
        const char* pbm;
    };
    for (const Case& c :
         {Case{"glyph_13x5_netpbm.wbmp", "glyph_13x5.pbm"}, Case{"glyph_13x5_magick.wbmp", "glyph_13x5.pbm"},
          Case{"wide_200x3_magick.wbmp", "glyph_200x3.pbm"}}) {
        SCOPED_TRACE(c.wbmp);
        int width = 0;
        int height = 0;
        const std::vector<std::string> rows = ReadPbm(DataFile(c.pbm), width, height);
        TestBitmapUtil util;
        ASSERT_NE(util.NLoadBitmap(DataFile(c.wbmp).c_str(), BT_IMAGE, 2), nullptr);
        const Pixels p = ReadFrame(util, BT_IMAGE, 2);
        ASSERT_EQ(p.width, width);
        ASSERT_EQ(p.height, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(p.At(x, y), rows[y][x] == '1' ? 0u : 0xFFFFFFu) << x << "," << y;
    }
}

TEST(ImageWbmp, HeaderAndSizeLimits)
{
    ScratchFolder scratch;
    TestBitmapUtil util;
    const std::wstring path = scratch.File(L"x.dat");
    auto load = [&](const std::vector<uint8_t>& bytes) {
        WriteBytes(path, bytes);
        return util.NLoadBitmap(path.c_str(), BT_IMAGE, 0);
    };
    // 8 x 2 with its two rows: loads through a made-up extension.
    EXPECT_NE(load({0, 0, 8, 2, 0xF0, 0x0F}), nullptr);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 0).At(0, 0), 0xFFFFFFu);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 0).At(0, 1), 0u);

    // A store of another geometry is emptied before the rows are found missing.
    util.DeleteBitmap(BT_IMAGE, 0);
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 5, 3, 3, 0x777777));
    EXPECT_EQ(load({0, 0, 8, 2}), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 5), nullptr);

    // Three-byte sizes are refused (width 16,384 is how such a file starts).
    std::vector<uint8_t> wide = {0, 0, 0x81, 0x80, 0x00, 1};
    wide.resize(6 + 2048, 0xFF);
    EXPECT_EQ(load(wide), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
    // 16,383 x 1 is the widest accepted.
    std::vector<uint8_t> widest = {0, 0, 0xFF, 0x7F, 1};
    widest.resize(5 + 2048, 0xFF);
    EXPECT_NE(load(widest), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 16383);
    // Hostile: 16,383 x 16,383 with no rows; a zero width; a first byte that is not 0.
    EXPECT_EQ(load({0, 0, 0xFF, 0x7F, 0xFF, 0x7F}), nullptr);
    EXPECT_EQ(load({0, 0, 0, 3, 0xFF, 0xFF}), nullptr);
    EXPECT_EQ(load({1, 0, 8, 1, 0xFF, 0xFF}), nullptr);

    // Our writer's 1 x 1 file has 5 bytes: the WBMP decoder refuses it and the OTA decoder fails to build a
    // frame of width 0.
    TestBitmapUtil writer;
    ASSERT_TRUE(MakeSolid(writer, BT_IMAGE, 0, 1, 1, 0xFFFFFF));
    const std::wstring one = scratch.File(L"one.wbmp");
    ASSERT_EQ(writer.SaveBitmap(one.c_str(), BF_WBMP, BT_IMAGE, 0), 5);
    EXPECT_EQ(util.NLoadBitmap(one.c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
    // A missing file: the OTA decoder's verdict.
    EXPECT_EQ(util.NLoadBitmap(scratch.File(L"none.dat").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_FILE_OPEN);
}

TEST(ImageWbmp, WriterOutputIsExactForBlackAndWhiteAndRandomForGrey)
{
    ScratchFolder scratch;
    TestBitmapUtil util;
    // 9 x 70: rows of two bytes; a thin picture whose output outgrows a size taken from the pixel bytes.
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 9, 70, [](int x, int y) { return (x + y) % 3 ? 0xFFFFFFu : 0u; }));
    const std::wstring path = scratch.File(L"pattern.wbmp");
    ASSERT_EQ(util.SaveBitmap(path.c_str(), BF_WBMP, BT_IMAGE, 0), 4 + 70 * 2);
    TestBitmapUtil back;
    ASSERT_NE(back.NLoadBitmap(path.c_str(), BT_IMAGE, 0), nullptr);
    const Pixels p = ReadFrame(back, BT_IMAGE, 0);
    for (int y = 0; y < 70; ++y)
        for (int x = 0; x < 9; ++x)
            ASSERT_EQ(p.At(x, y), (x + y) % 3 ? 0xFFFFFFu : 0u);

    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 64, 64, 0x404040));
    const std::wstring a = scratch.File(L"a.wbmp");
    const std::wstring b = scratch.File(L"b.wbmp");
    ASSERT_GT(util.SaveBitmap(a.c_str(), BF_WBMP, BT_IMAGE, 0), 0);
    ASSERT_GT(util.SaveBitmap(b.c_str(), BF_WBMP, BT_IMAGE, 0), 0);
    EXPECT_NE(ReadBytes(a), ReadBytes(b));

    // Width 16,384 is written with three-byte integers, which the decoder refuses.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 16384, 1, 0));
    const std::wstring wide = scratch.File(L"wide.wbmp");
    ASSERT_EQ(util.SaveBitmap(wide.c_str(), BF_WBMP, BT_IMAGE, 0), 2 + 3 + 1 + 2048);
    EXPECT_EQ(back.NLoadBitmap(wide.c_str(), BT_IMAGE, 0), nullptr);
}

// Writes WBMP files and the PBM pictures they should show into the folder that the host-side check reads
// with ImageMagick. Run by the fixture test image.wbmp_written before that check.
TEST(ImageWbmpExport, WriteFilesForImageMagick)
{
    const char* folder = getenv("ZCMOD_WBMP_EXPORT_DIR");
    if (!folder)
        GTEST_SKIP() << "ZCMOD_WBMP_EXPORT_DIR is not set";
    const std::wstring dir = WinePath(folder);
    CreateDirectoryW(dir.c_str(), nullptr);
    struct Shape {
        const wchar_t* name;
        int width;
        int height;
    };
    for (const Shape& s :
         {Shape{L"w13x5", 13, 5}, Shape{L"w200x3", 200, 3}, Shape{L"w1x9", 1, 9}, Shape{L"w130x130", 130, 130}}) {
        TestBitmapUtil util;
        auto black = [&s](int x, int y) { return (x * 7 + y * 3 + s.width) % 5 < 2; };
        ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, s.width, s.height,
                              [&](int x, int y) { return black(x, y) ? 0u : 0xFFFFFFu; }));
        ASSERT_GT(util.SaveBitmap((dir + L"\\" + s.name + L".wbmp").c_str(), BF_WBMP, BT_IMAGE, 0), 0);
        std::ostringstream pbm;
        pbm << "P1\n" << s.width << " " << s.height << "\n";
        for (int y = 0; y < s.height; ++y) {
            for (int x = 0; x < s.width; ++x)
                pbm << (black(x, y) ? '1' : '0') << (x + 1 < s.width ? " " : "");
            pbm << "\n";
        }
        const std::string text = pbm.str();
        WriteBytes(dir + L"\\" + s.name + L".pbm", std::vector<uint8_t>(text.begin(), text.end()));
    }
}

TEST(ImageOta, LimitsAndTheBitStream)
{
    ScratchFolder scratch;
    TestBitmapUtil util;
    const std::wstring path = scratch.File(L"x.ota");
    auto load = [&](const std::vector<uint8_t>& bytes) {
        WriteBytes(path, bytes);
        return util.NLoadBitmap(path.c_str(), BT_RESULT, 1);
    };
    // Our fixture: row 0 alternates black and white, row 1 is black, row 2 white; bits run across rows.
    ASSERT_NE(util.NLoadBitmap(DataFile("wine/image/glyph_10x3.ota").c_str(), BT_RESULT, 1), nullptr);
    const Pixels p = ReadFrame(util, BT_RESULT, 1);
    for (int x = 0; x < 10; ++x) {
        EXPECT_EQ(p.At(x, 0), x % 2 ? 0xFFFFFFu : 0u);
        EXPECT_EQ(p.At(x, 1), 0u);
        EXPECT_EQ(p.At(x, 2), 0xFFFFFFu);
    }
    // 72 x 14 needs 126 data bytes: 130 loads, 129 does not.
    std::vector<uint8_t> ota = {0, 72, 14, 1};
    ota.resize(130, 0);
    EXPECT_NE(load(ota), nullptr);
    ota.resize(129);
    EXPECT_EQ(load(ota), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
    // Longer than 8,196 bytes: refused unread, even with a valid header.
    ota.resize(8197, 0);
    EXPECT_EQ(load(ota), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
    ota.resize(8196);
    EXPECT_NE(load(ota), nullptr);
    // A wrong depth byte, after the replace rule has run on bytes 1 and 2.
    ASSERT_TRUE(MakeSolid(util, BT_RESULT, 9, 72, 14, 0x111111));
    EXPECT_EQ(load({0, 5, 5, 2, 0, 0, 0, 0}), nullptr);
    EXPECT_EQ(util.GetBitmapHandle(BT_RESULT, 9), nullptr);
    EXPECT_EQ(load({0, 5, 0, 1, 0, 0, 0, 0}), nullptr);  // height 0

    // The writer: 3 x 3 black and white; the ninth bit sits at the bottom of the second byte.
    TestBitmapUtil writer;
    ASSERT_TRUE(MakeFrame(writer, BT_IMAGE, 0, 3, 3, [](int x, int y) { return x == y ? 0u : 0xFFFFFFu; }));
    const std::wstring out = scratch.File(L"diag.ota");
    ASSERT_EQ(writer.SaveBitmap(out.c_str(), BF_OTA, BT_IMAGE, 0), 6);
    const std::vector<uint8_t> bytes = ReadBytes(out);
    ASSERT_EQ(bytes.size(), 6u);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 3);
    EXPECT_EQ(bytes[2], 3);
    EXPECT_EQ(bytes[3], 1);
    EXPECT_EQ(bytes[4], 0x88);  // 100 010 00
    EXPECT_EQ(bytes[5], 0x01);  // the last pixel, black, at the low end
    ASSERT_NE(util.NLoadBitmap(out.c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 0).At(2, 2), 0xFFFFFFu);  // read from the top bit: lost
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 0).At(1, 1), 0u);

    ASSERT_TRUE(MakeSolid(writer, BT_IMAGE, 0, 256, 2, 0));
    EXPECT_EQ(writer.SaveBitmap(out.c_str(), BF_OTA, BT_IMAGE, 0), 0);
    EXPECT_EQ(writer.GetLastError(), ZBU_TOO_LARGE);
}

// ---- PNG ----------------------------------------------------------------------------------------------------------

TEST(ImagePng, EveryFileOfThePngSuiteLoadsOrIsRefusedByDepth)
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const std::vector<std::string> names = PngSuiteNames();
    ASSERT_GE(names.size(), 40u);
    int loaded = 0;
    int checkedAgainstReference = 0;
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        // Names tell the colour type and depth: ...n<type><depth>.png, for example basn6a16.
        const size_t n = name.rfind('n', name.size() - 7);
        ASSERT_NE(n, std::string::npos);
        const int colourType = name[n + 1] - '0';
        const int depth = std::stoi(name.substr(n + 3, 2));
        const int channels = colourType == 0 ? 1 : colourType == 2 ? 3 : colourType == 3 ? 1 : colourType == 4 ? 2 : 4;
        const int bytesPerPixel = channels * depth / 8;

        TestBitmapUtil util;
        util.SetJPEGCompressionFactor(500);  // an error of our own, to see whether the load replaces it
        HBITMAP frame = util.NLoadBitmap(PngSuiteFile(name).c_str(), BT_IMAGE, 0);
        if (bytesPerPixel < 1) {
            EXPECT_EQ(frame, nullptr);
            EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
            continue;
        }
        ASSERT_NE(frame, nullptr);
        ++loaded;
        // Only 8-bit RGBA brings a transparency plane.
        EXPECT_EQ(util.GetBitmapHandle(BT_ALPHA, 0) != nullptr, bytesPerPixel == 4);

        // 16-bit grey with alpha has four bytes a pixel and is read as if it were 8-bit RGBA: no reference.
        if (colourType == 4 && depth == 16)
            continue;
        int w = 0, h = 0;
        std::vector<uint8_t> reference;
        if (!WicDecode(PngSuiteFile(name), w, h, reference))
            continue;
        ++checkedAgainstReference;
        const Pixels p = ReadFrame(util, BT_IMAGE, 0);
        ASSERT_EQ(p.width, w);
        ASSERT_EQ(p.height, h);
        const Pixels plane = ReadFrame(util, BT_ALPHA, 0);
        for (int y = 0; y < h; y += 3)
            for (int x = 0; x < w; x += 5) {
                const uint8_t* r = &reference[(static_cast<size_t>(y) * w + x) * 4];
                uint32_t expected = static_cast<uint32_t>(r[2]) << 16 | r[1] << 8 | r[0];
                // Colour is the file's own: only the 16-bit high bytes are kept, and the alpha is not applied.
                ASSERT_TRUE(Near(p.At(x, y), expected, 1))
                    << x << "," << y << " " << std::hex << p.At(x, y) << " " << expected;
                if (bytesPerPixel == 4) {
                    const uint32_t t = 255 - r[3];
                    ASSERT_EQ(plane.At(x, y), t | t << 8 | t << 16);
                }
            }
    }
    EXPECT_GE(loaded, 30);
    EXPECT_GE(checkedAgainstReference, 20);
}

TEST(ImagePng, RgbaPlaneGoesToAlphaOnlyFromImageStore)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_ALPHA, 0, 9, 9, 0x010101));  // another geometry: loses only frame 3
    ASSERT_NE(util.NLoadBitmap(DataFile("wine/image/rgba.png").c_str(), BT_IMAGE, 3), nullptr);
    const Pixels image = ReadFrame(util, BT_IMAGE, 3);
    EXPECT_EQ(image.At(0, 0), 0xFF0000u);
    EXPECT_EQ(image.At(1, 0), 0x00FF00u);  // alpha 0: the colour stays
    EXPECT_EQ(image.At(2, 1), 0x010203u);
    ASSERT_NE(util.GetBitmapHandle(BT_ALPHA, 3), nullptr);
    EXPECT_NE(util.GetBitmapHandle(BT_ALPHA, 0), nullptr);
    // The plane's frame is read through its own geometry here.
    std::vector<uint8_t> plane(3 * 2 * 3);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 3, -2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<uint8_t> padded(12 * 2);
    HDC screen = GetDC(nullptr);
    ASSERT_EQ(GetDIBits(screen, util.GetBitmapHandle(BT_ALPHA, 3), 0, 2, padded.data(), &info, DIB_RGB_COLORS), 2);
    ReleaseDC(nullptr, screen);
    EXPECT_EQ(padded[0], 0);         // alpha 255
    EXPECT_EQ(padded[3], 255);       // alpha 0
    EXPECT_EQ(padded[6], 127);       // alpha 128
    EXPECT_EQ(padded[12], 191);      // alpha 64
    EXPECT_EQ(padded[12 + 6], 254);  // alpha 1

    TestBitmapUtil other;
    ASSERT_NE(other.NLoadBitmap(DataFile("wine/image/rgba.png").c_str(), BT_BACKGROUND, 0), nullptr);
    EXPECT_EQ(other.GetNumberOfBitmaps(BT_ALPHA), 0);
}

TEST(ImagePng, BrokenAndForeignBlocks)
{
    ScratchFolder scratch;
    TestBitmapUtil util;
    const std::vector<uint8_t> good = ReadBytes(DataFile("wine/image/rgba.png"));
    ASSERT_GT(good.size(), 40u);
    // Not a PNG at all: no error, so that a resource goes on to its temporary file.
    std::vector<uint8_t> text(good.size(), 'x');
    util.SetJPEGCompressionFactor(500);
    EXPECT_EQ(util.LoadPNGFromMem(text.data(), text.size(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.LoadPNGFromMem(const_cast<uint8_t*>(good.data()), 4, BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    ASSERT_NE(util.LoadPNGFromMem(const_cast<uint8_t*>(good.data()), good.size(), BT_IMAGE, 0), nullptr);
    // Cut short or damaged: the library's failure.
    for (size_t cut : {size_t(20), size_t(40), good.size() - 20}) {
        std::vector<uint8_t> part(good.begin(), good.begin() + cut);
        EXPECT_EQ(util.LoadPNGFromMem(part.data(), part.size(), BT_IMAGE, 0), nullptr);
        const std::wstring path = scratch.File(L"cut.png");
        WriteBytes(path, part);
        EXPECT_EQ(util.NLoadBitmap(path.c_str(), BT_IMAGE, 0), nullptr);
        EXPECT_EQ(util.GetLastError(), ZBU_PNG_FAILED);
    }
    // A hostile size in the header: refused, never allocated.
    std::vector<uint8_t> huge = good;
    huge[16] = 0x7F;
    huge[20] = 0x7F;
    EXPECT_EQ(util.LoadPNGFromMem(huge.data(), huge.size(), BT_IMAGE, 0), nullptr);
    // A .png that is not a PNG: null and no error.
    const std::wstring fake = scratch.File(L"fake.png");
    WriteBytes(fake, text);
    util.SetJPEGCompressionFactor(500);
    EXPECT_EQ(util.NLoadBitmap(fake.c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.NLoadBitmap(scratch.File(L"missing.png").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_FILE_OPEN);
}

// ---- Damaged files ------------------------------------------------------------------------------------------------

TEST(ImageRobustness, MutatedFilesFailWithoutHarm)
{
    ScratchFolder scratch;
    struct Source {
        const char* file;
        const wchar_t* name;
    };
    const Source sources[] = {{"anim_disposal.gif", L"m.gif"},         {"wine/image/dispose_previous.gif", L"m.gif"},
                              {"wine/image/rgba.png", L"m.png"},       {"glyph_13x5_netpbm.wbmp", L"m.wbmp"},
                              {"wine/image/glyph_10x3.ota", L"m.ota"}, {"wine/image/still.bmp", L"m.bmp"}};
    unsigned seed = 20240601;
    auto next = [&seed] {
        seed = seed * 1664525u + 1013904223u;
        return seed >> 8;
    };
    TestBitmapUtil util;
    for (const Source& source : sources) {
        SCOPED_TRACE(source.file);
        const std::vector<uint8_t> original = ReadBytes(DataFile(source.file));
        ASSERT_FALSE(original.empty());
        const std::wstring path = scratch.File(source.name);
        for (int round = 0; round < 60; ++round) {
            std::vector<uint8_t> bytes = original;
            const int flips = 1 + static_cast<int>(next() % 4);
            for (int i = 0; i < flips; ++i)
                bytes[next() % bytes.size()] = static_cast<uint8_t>(next());
            if (next() % 3 == 0)
                bytes.resize(next() % bytes.size());
            WriteBytes(path, bytes);
            HBITMAP frame = util.NLoadBitmap(path.c_str(), BT_IMAGE, 1);
            // Whatever the verdict, the store stays consistent: a frame has a header that describes it.
            if (frame) {
                ASSERT_NE(util.GetBitmapInfo(BT_IMAGE), nullptr);
                ASSERT_GT(util.GetBitmapSize(BT_IMAGE), 0);
                std::unique_ptr<char, decltype(&free)> pixels(util.GetBitmapDataAlloc(BT_IMAGE, 1), free);
                ASSERT_NE(pixels, nullptr);
            }
            ASSERT_LE(util.GetNumberOfBitmaps(BT_IMAGE), 511);
        }
    }
}
