// The codecs' adapters with real files: animated GIFs made by ImageMagick composed into the stores, libpng's PNG
// suite, WBMP and OTA files of our own writing, damaged files. The decoders' rules are the native tests'.
#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <sstream>
#include <tuple>

#include "ImageTestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

using Bytes = std::vector<uint8_t>;
const uint32_t kBack = 0x123456;  // the caller's background, 0x00RRGGBB as read back
const COLORREF kBackRef = RGB(0x12, 0x34, 0x56);

// A GIF of `images` 1 x 1 images on a 1 x 1 screen (global table: red, blue), with a looping block that says
// `loops`; image i has a delay of i % 7.
Bytes TinyAnimation(int images, int loops)
{
    Bytes gif = {'G',  'I',  'F',  '8', '9', 'a', 1,   0,   1,   0,   0x80, 0,   0,   0xFF, 0, 0, 0, 0, 0xFF,
                 0x21, 0xFF, 0x0B, 'N', 'E', 'T', 'S', 'C', 'A', 'P', 'E',  '2', '.', '0',  3, 1, 0, 0, 0};
    gif[35] = static_cast<uint8_t>(loops);
    gif[36] = static_cast<uint8_t>(loops >> 8);
    // A control block and an image: the delay stands at 4 of these 23 bytes.
    const Bytes image = {0x21, 0xF9, 4, 0, 0, 0, 0, 0, 0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0, 2, 2, 0x44, 0x01, 0};
    for (int i = 0; i < images; ++i) {
        gif.insert(gif.end(), image.begin(), image.end());
        gif[gif.size() - 19] = static_cast<uint8_t>(i % 7);
    }
    gif.push_back(0x3B);
    return gif;
}

// Compares pixels of a frame: each entry is x, y and the colour 0x00RRGGBB.
void ExpectPixels(const Pixels& frame, std::initializer_list<std::array<uint32_t, 3>> expected)
{
    for (const auto& e : expected)
        EXPECT_EQ(frame.At(e[0], e[1]), e[2]) << "at " << e[0] << "," << e[1];
}

}  // namespace

// ---- GIF ----------------------------------------------------------------------------------------------------------

TEST(ImageGif, ImageMagickAnimationComposesWithDisposalDelaysAndLoops)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 40, 16, 12, 0x999999));  // same size, still removed
    util.SetGIFBkColor(kBackRef);
    // The index of the load plays no part: an animation fills the store from frame 0, and nothing lands at 7.
    EXPECT_EQ(util.NLoadBitmap(DataFile("anim_disposal.gif").c_str(), BT_IMAGE, 7), nullptr);
    ASSERT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 3);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 40), nullptr);
    EXPECT_EQ(util.GetLoopCount(), 5);  // -loop 5: ImageMagick's block says 4 repeats
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, i), 100 * (i + 1));
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 16);
    EXPECT_EQ(util.GetBitmapHeight(BT_IMAGE), 12);

    ExpectPixels(ReadFrame(util, BT_IMAGE, 0), {{0, 0, 0xFF0000}, {15, 11, 0xFF0000}});
    // Frame 0 was disposed to the background: frame 1 is background with the green 6 x 4 at (4, 2).
    ExpectPixels(ReadFrame(util, BT_IMAGE, 1),
                 {{0, 0, kBack}, {3, 2, kBack}, {4, 2, 0x00FF00}, {9, 5, 0x00FF00}, {10, 5, kBack}});
    // Frame 1's disposal 3 acts as 2: its rectangle is background under the blue 5 x 3 at (9, 7).
    ExpectPixels(ReadFrame(util, BT_IMAGE, 2),
                 {{4, 2, kBack}, {9, 5, kBack}, {9, 7, 0x0000FF}, {13, 9, 0x0000FF}, {14, 9, kBack}, {8, 7, kBack}});

    // Disposal 3 is 2 in a file of its own, and the transparent pixels of the next image show the background.
    ASSERT_NE(util.NLoadBitmap(DataFile("wine/image/dispose_previous.gif").c_str(), BT_BACKGROUND, 0), nullptr);
    ASSERT_EQ(util.GetNumberOfBitmaps(BT_BACKGROUND), 3);
    EXPECT_EQ(util.GetLoopCount(), 1);  // no looping block
    ExpectPixels(ReadFrame(util, BT_BACKGROUND, 1), {{0, 0, 0xFF0000}, {2, 2, 0x00FF00}});
    // The lime frame's rectangle is background, never the red it covered; the blue frame's transparent left half
    // shows the background too (the second fill), not red.
    ExpectPixels(ReadFrame(util, BT_BACKGROUND, 2), {{2, 2, kBack}, {5, 5, kBack}, {6, 2, kBack}, {7, 5, kBack},
                                                     {8, 2, 0x0000FF}, {9, 5, 0x0000FF}, {10, 2, 0xFF0000},
                                                     {0, 7, 0xFF0000}});
}

TEST(ImageGif, TransparencyOverAKeptFrameTheFilesOwnBackgroundAndAFullStore)
{
    TestBitmapUtil util;
    ASSERT_NE(util.NLoadBitmap(DataFile("anim_transparent.gif").c_str(), BT_IMAGE, 0), nullptr);
    ASSERT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 2);
    EXPECT_EQ(util.GetLoopCount(), 1);  // says 0: for ever
    // Transparent white shows frame 0's yellow.
    ExpectPixels(ReadFrame(util, BT_IMAGE, 1), {{0, 0, 0xFFFF00}, {3, 3, 0x000000}});

    // Without a colour of the caller's, the file's background entry fills the first frame around a smaller
    // image: a 2 x 1 screen whose background is entry 1 (blue), with a red 1 x 1 image at the left.
    ScratchFolder scratch;
    Bytes gif = TinyAnimation(2, 1);
    gif[6] = 2;
    gif[11] = 1;
    TestBitmapUtil own;
    ASSERT_NE(own.NLoadBitmap(scratch.Write(L"bg.gif", gif).c_str(), BT_IMAGE, 0), nullptr);
    ExpectPixels(ReadFrame(own, BT_IMAGE, 0), {{0, 0, 0xFF0000}, {1, 0, 0x0000FF}});

    // 600 images give 511 frames: the 512th is parsed and not counted.
    ASSERT_NE(util.NLoadBitmap(scratch.Write(L"many.gif", TinyAnimation(600, 1)).c_str(), BT_ALPHA, 0), nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_ALPHA), 511);
    EXPECT_EQ(util.GetBitmapHandle(BT_ALPHA, 511), nullptr);
    EXPECT_EQ(util.GetFrameDelay(BT_ALPHA, 510), (510 % 7) * 10);
    EXPECT_EQ(util.GetLoopCount(), 2);
}

// ---- WBMP and OTA -------------------------------------------------------------------------------------------------

TEST(ImagePhoneFormats, TheStoreIsReplacedBeforeTheWbmpChecksAndBothWritersWork)
{
    ScratchFolder scratch;
    TestBitmapUtil util;
    auto load = [&](const Bytes& bytes) {
        return util.NLoadBitmap(scratch.Write(L"x.dat", bytes).c_str(), BT_IMAGE, 0);
    };
    // (A made-up extension reaching the WBMP decoder is the resource test's, through its temporary file.) A store
    // of another geometry is emptied before the rows are found missing (by the WBMP decoder itself: the OTA
    // decoder that a failed load falls through to replaces the store on its own).
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 5, 3, 3, 0x777777));
    EXPECT_RESULT_ERROR(util,
                        util.LoadWBMPFile(scratch.Write(L"x.dat", {0, 0, 16, 2, 0xFF, 0xFF}).c_str(), BT_IMAGE, 0),
                        nullptr, ZBU_BAD_FORMAT);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 5), nullptr);
    // 16,383 x 16,383 without rows is refused before anything that size is made.
    EXPECT_RESULT_ERROR(util, load({0, 0, 0xFF, 0x7F, 0xFF, 0x7F}), nullptr, ZBU_BAD_FORMAT);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(scratch.File(L"none.dat").c_str(), BT_IMAGE, 0), nullptr, ZBU_FILE_OPEN);

    // Our writer: a thin picture's output outgrows a size taken from the pixel bytes. Two saves of grey differ.
    const std::wstring one = scratch.File(L"one.wbmp");
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 9, 70, [](int x, int y) { return x == y % 9 ? 0u : 0xFFFFFFu; }));
    ASSERT_EQ(util.SaveBitmap(one.c_str(), BF_WBMP, BT_IMAGE, 0), 4 + 70 * 2);
    ASSERT_NE(util.NLoadBitmap(one.c_str(), BT_RESULT, 0), nullptr);
    ExpectPixels(ReadFrame(util, BT_RESULT, 0), {{6, 69, 0}, {7, 69, 0xFFFFFF}, {8, 8, 0}});
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 64, 64, 0x404040));
    const std::wstring grey = scratch.File(L"grey.wbmp");
    ASSERT_GT(util.SaveBitmap(one.c_str(), BF_WBMP, BT_IMAGE, 0), 0);
    ASSERT_GT(util.SaveBitmap(grey.c_str(), BF_WBMP, BT_IMAGE, 0), 0);
    EXPECT_NE(ReadBytes(one), ReadBytes(grey));

    // OTA (the decoding is the native test's): a wrong depth byte, after the replace rule has run on bytes 1 and 2.
    ASSERT_TRUE(MakeSolid(util, BT_RESULT, 9, 72, 14, 0x111111));
    const std::wstring bad = scratch.Write(L"x.ota", {0, 5, 5, 2, 0, 0, 0, 0});
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(bad.c_str(), BT_RESULT, 1), nullptr, ZBU_BAD_FORMAT);
    EXPECT_EQ(util.GetBitmapHandle(BT_RESULT, 9), nullptr);
    // The writer, black and white: the ninth bit of a 3 x 3 picture sits at the bottom of the second byte.
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 3, 3, [](int x, int y) { return x == y ? 0u : 0xFFFFFFu; }));
    const std::wstring out = scratch.File(L"diag.ota");
    ASSERT_EQ(util.SaveBitmap(out.c_str(), BF_OTA, BT_IMAGE, 0), 6);
    EXPECT_EQ(ReadBytes(out), (Bytes{0, 3, 3, 1, 0x88, 0x01}));
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 256, 2, 0));
    EXPECT_RESULT_ERROR(util, util.SaveBitmap(out.c_str(), BF_OTA, BT_IMAGE, 0), 0, ZBU_TOO_LARGE);
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
    const std::tuple<const wchar_t*, int, int> shapes[] = {
        {L"w13x5", 13, 5}, {L"w200x3", 200, 3}, {L"w1x9", 1, 9}, {L"w130x130", 130, 130}};
    for (const auto& [name, width, height] : shapes) {
        const int w = width;
        auto black = [w](int x, int y) { return (x * 7 + y * 3 + w) % 5 < 2; };
        TestBitmapUtil util;
        ASSERT_TRUE(
            MakeFrame(util, BT_IMAGE, 0, w, height, [&](int x, int y) { return black(x, y) ? 0u : 0xFFFFFFu; }));
        ASSERT_GT(util.SaveBitmap((dir + L"\\" + name + L".wbmp").c_str(), BF_WBMP, BT_IMAGE, 0), 0);
        std::ostringstream pbm;
        pbm << "P1\n" << w << " " << height << "\n";
        for (int i = 0; i < w * height; ++i)
            pbm << (black(i % w, i / w) ? '1' : '0') << (i % w + 1 < w ? " " : "\n");
        const std::string text = pbm.str();
        WriteBytes(dir + L"\\" + name + L".pbm", Bytes(text.begin(), text.end()));
    }
}

// ---- PNG ----------------------------------------------------------------------------------------------------------

TEST(ImagePng, OutcomesByDepthBrokenAndForeignBlocksAndThePlaneOfRgba)
{
    // The depth table is checked on every file natively; here each of the adapter's routes (16-bit samples too;
    // RGBA is rgba.png's below).
    const struct {
        const char* name;
        bool loads, alpha;
    } cases[] = {{"basn3p02.png", false, false}, {"basn0g08.png", true, false}, {"basn2c16.png", true, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TestBitmapUtil util;
        HBITMAP frame = util.NLoadBitmap(PngSuiteFile(c.name).c_str(), BT_IMAGE, 0);
        EXPECT_EQ(frame != nullptr, c.loads);
        EXPECT_EQ(util.GetLastError(), c.loads ? ZBU_OK : ZBU_BAD_FORMAT);
        EXPECT_EQ(util.GetBitmapHandle(BT_ALPHA, 0) != nullptr, c.alpha);
    }

    ScratchFolder scratch;
    TestBitmapUtil util;
    const Bytes good = ReadBytes(DataFile("wine/image/rgba.png"));
    ASSERT_GT(good.size(), 40u);
    // Not a PNG at all, as a block or as a .png file: null and no error, so that a resource goes on to its
    // temporary file.
    Bytes text(good.size(), 'x');
    util.SetJPEGCompressionFactor(500);
    EXPECT_RESULT_ERROR(util, util.LoadPNGFromMem(text.data(), text.size(), BT_IMAGE, 0), nullptr, ZBU_BAD_ARG1);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(scratch.Write(L"x.png", text).c_str(), BT_IMAGE, 0), nullptr,
                        ZBU_BAD_ARG1);
    // Cut short: the library's failure, from a block or a file.
    Bytes part(good.begin(), good.end() - 20);
    EXPECT_EQ(util.LoadPNGFromMem(part.data(), part.size(), BT_IMAGE, 0), nullptr);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(scratch.Write(L"x.png", part).c_str(), BT_IMAGE, 0), nullptr,
                        ZBU_PNG_FAILED);
    ASSERT_NE(util.LoadPNGFromMem(const_cast<uint8_t*>(good.data()), good.size(), BT_IMAGE, 0), nullptr);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(scratch.File(L"missing.png").c_str(), BT_IMAGE, 0), nullptr,
                        ZBU_FILE_OPEN);

    // An RGBA file's plane goes to the transparency store only from the image store.
    TestBitmapUtil rgba;
    ASSERT_TRUE(MakeSolid(rgba, BT_ALPHA, 0, 9, 9, 0x010101));  // another geometry: loses only frame 3
    ASSERT_NE(rgba.NLoadBitmap(DataFile("wine/image/rgba.png").c_str(), BT_IMAGE, 3), nullptr);
    // Alpha 0 keeps its colour.
    ExpectPixels(ReadFrame(rgba, BT_IMAGE, 3), {{0, 0, 0xFF0000}, {1, 0, 0x00FF00}, {2, 1, 0x010203}});
    ASSERT_NE(rgba.GetBitmapHandle(BT_ALPHA, 3), nullptr);
    EXPECT_NE(rgba.GetBitmapHandle(BT_ALPHA, 0), nullptr);
    // The plane's frame is read through its own geometry here: 255 - alpha.
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 3, -2, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    Bytes padded(12 * 2);
    HDC screen = GetDC(nullptr);
    ASSERT_EQ(GetDIBits(screen, rgba.GetBitmapHandle(BT_ALPHA, 3), 0, 2, padded.data(), &info, DIB_RGB_COLORS), 2);
    ReleaseDC(nullptr, screen);
    const int planes[][2] = {{0, 0}, {3, 255}, {6, 127}, {12, 191}, {18, 254}};  // alpha 255, 0, 128, 64, 1
    for (const auto& e : planes)
        EXPECT_EQ(padded[e[0]], e[1]) << e[0];

    TestBitmapUtil other;
    ASSERT_NE(other.NLoadBitmap(DataFile("wine/image/rgba.png").c_str(), BT_BACKGROUND, 0), nullptr);
    EXPECT_EQ(other.GetNumberOfBitmaps(BT_ALPHA), 0);
}

// ---- Damaged files ------------------------------------------------------------------------------------------------

TEST(ImageRobustness, AGifScreenTooLargeToMakeComposesNoFrame)
{
    // (Damaged files of every format, chains that run off the end among them, are the fuzzers' on the portable
    // decoders.) A GIF screen of 65535 x 65535 can't be made: no frame is composed, and the file goes on to the
    // picture route, which decodes the first image alone.
    ScratchFolder scratch;
    TestBitmapUtil util;
    Bytes gif = TinyAnimation(3, 1);
    gif[6] = gif[7] = gif[8] = gif[9] = 0xFF;
    util.NLoadBitmap(scratch.Write(L"huge.gif", gif).c_str(), BT_IMAGE, 0);
    EXPECT_LE(util.GetNumberOfBitmaps(BT_IMAGE), 1);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 1), nullptr);
}
