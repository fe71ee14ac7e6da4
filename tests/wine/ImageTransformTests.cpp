// The transforms of CNBitmapUtil: frames from pixels, clones, scaling, the blend and its kept buffers, tiles,
// fills, regions, mirrors, and transfers to and from real windows.
#include <gtest/gtest.h>

#include "ImageTestSupport.h"
#include "TestSkins.h"
#include "image/NBitmapUtilEx.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

uint32_t PixelOf(HDC dc, int x, int y)
{
    return testskin::Rgb(GetPixel(dc, x, y));
}

}  // namespace

TEST(ImageTransform, FramesFromDataHandlesSectionsAndClones)
{
    TestBitmapUtil util;
    char data[12] = {};
    EXPECT_RESULT_ERROR(util, util.CreateBitmapFromData(0, 1, data, BT_IMAGE, 0), 0, ZBU_BAD_ARG1);
    EXPECT_RESULT_ERROR(util, util.CreateBitmapFromData(1, 0, data, BT_IMAGE, 0), 0, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.CreateBitmapFromData(1, 1, nullptr, BT_IMAGE, 0), 0, ZBU_BAD_ARG3);
    // A size whose frame would not fit in 32 bits is refused, not allocated.
    EXPECT_EQ(util.CreateBitmapFromData(0x40000000, 0x40000000, data, BT_IMAGE, 0), 0);

    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 1, 6, 5, Gradient));
    HBITMAP section = util.CreateBitmapFromBitmapSection(2, 1, 3, 2, util.GetBitmapHandle(BT_IMAGE, 1));
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 1);  // touches no store
    ASSERT_EQ(util.CreateBitmapFromHandle(section, BT_RESULT, 4), 1);
    DeleteObject(section);
    const Pixels p = ReadFrame(util, BT_RESULT, 4);
    ASSERT_EQ(p.width, 3);
    EXPECT_EQ(p.At(0, 0), Gradient(2, 1));
    EXPECT_EQ(p.At(2, 1), Gradient(4, 2));
    EXPECT_EQ(util.CreateBitmapFromHandle(nullptr, BT_RESULT, 4), 0);

    // A clone copies the pixels but not the delay.
    ASSERT_TRUE(MakeFrame(util, BT_ALPHA, 2, 7, 4, Gradient));
    util.SetFrameDelay(BT_ALPHA, 2, 90);
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 0, 3, 3, 0));
    EXPECT_RESULT_ERROR(util, util.Clone(BT_ALPHA, 2, BT_ALPHA, 2), 0, ZBU_OPERATION_FAILED);
    EXPECT_RESULT_ERROR(util, util.Clone(BT_ALPHA, 3, BT_BACKGROUND, 1), 0, ZBU_NO_BITMAP);
    EXPECT_RESULT_ERROR(util, util.Clone(BT_ALPHA, 2, BT_BACKGROUND, 1), 1, ZBU_OK);
    EXPECT_EQ(util.GetBitmapHandle(BT_BACKGROUND, 0), nullptr);  // other geometry: replaced
    EXPECT_EQ(util.GetFrameDelay(BT_BACKGROUND, 1), 0);
    const Pixels clone = ReadFrame(util, BT_BACKGROUND, 1);
    for (int i = 0; i < 28; ++i)
        ASSERT_EQ(clone.At(i % 7, i / 7), Gradient(i % 7, i / 7)) << i;
    ASSERT_EQ(util.Clone(BT_ALPHA, 2, BT_ALPHA, 3), 1);  // within one store
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_ALPHA), 2);
}

TEST(ImageTransform, ResizeAndResizeDitherFillTheResizedStores)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_ALPHA, 0, 3, 2, Gradient));
    EXPECT_RESULT_ERROR(util, util.Resize(BT_ALPHA, 0, 0, 4, 0), 0, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.Resize(BT_ALPHA, 0, 4, 0, 0), 0, ZBU_BAD_ARG3);
    EXPECT_RESULT_ERROR(util, util.Resize(BT_ALPHA, 1, 4, 4, 0), 0, ZBU_NO_BITMAP);
    EXPECT_EQ(util.Resize(BT_ALPHA_RESIZED, 0, 4, 4, 0), 0);

    // Nearest pixel: each source pixel becomes 2 x 2.
    ASSERT_EQ(util.Resize(BT_ALPHA, 0, 6, 4, 0), 1);
    HBITMAP first = util.GetBitmapHandle(BT_ALPHA_RESIZED, 0);
    const Pixels p = ReadFrame(util, BT_ALPHA_RESIZED, 0);
    ASSERT_EQ(p.height, 4);
    EXPECT_EQ(p.At(5, 3), Gradient(2, 1));
    EXPECT_EQ(p.At(3, 1), Gradient(1, 0));
    // The same size again draws over the same frame; smooth mode still works.
    ASSERT_EQ(util.Resize(BT_ALPHA, 0, 6, 4, 1), 1);
    EXPECT_EQ(util.GetBitmapHandle(BT_ALPHA_RESIZED, 0), first);
    // Relative sizes are of the source; another size replaces the record.
    ASSERT_EQ(util.ResizeRelative(BT_ALPHA, 0, 200, 50, 0), 1);
    EXPECT_EQ(util.GetBitmapWidth(BT_ALPHA_RESIZED), 6);
    EXPECT_EQ(util.GetBitmapHeight(BT_ALPHA_RESIZED), 1);
    EXPECT_RESULT_ERROR(util, util.ResizeRelative(BT_ALPHA, 0, 0, 50, 0), 0, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.ResizeRelative(BT_ALPHA, 0, 10, 0, 0), 0, ZBU_BAD_ARG3);
    EXPECT_RESULT_ERROR(util, util.Resize(BT_ALPHA, 0, 0x7FFFFFFF, 0x7FFFFFFF, 0), 0, ZBU_GDI_FAILED);

    // ResizeDither scales frame 0's store into the resized one. The arithmetic is the portable core's; this shows
    // the class feeds it the frames and the noise.
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 2, 1, [](int x, int) { return x ? 0xC86432u : 0u; }));
    EXPECT_EQ(util.ResizeDither(BT_IMAGE, 0, 0, 0, 2, 1, 4, 1, 0, 0), 0);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE_RESIZED, 0).At(1, 0), 0x643219u);  // halfway, at a step of 0.5
    // The edge divisor reaches the core: with one, each of the two fades takes a level off a flat picture.
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 0, 20, 20, 0x808080));
    util.ResizeDither(BT_BACKGROUND, 0, 0, 0, 19, 19, 37, 29, 4, 300);
    EXPECT_EQ(util.GetBitmapWidth(BT_BACKGROUND_RESIZED), 37);
    EXPECT_EQ(ReadFrame(util, BT_BACKGROUND_RESIZED, 0).At(36, 28), 0x7E7E7Eu);
    // Only frame 0 is tested for existence; resized stores can't be a source.
    TestBitmapUtil other;
    ASSERT_TRUE(MakeSolid(other, BT_IMAGE, 1, 4, 4, 0xFFFFFF));
    other.ResizeDither(BT_IMAGE, 1, 0, 0, 4, 4, 8, 8, 0, 0);
    other.ResizeDither(BT_IMAGE_RESIZED, 0, 0, 0, 4, 4, 8, 8, 0, 0);
    EXPECT_EQ(other.GetNumberOfBitmaps(BT_IMAGE_RESIZED), 0);
    // A destination store that keeps a larger geometry, rectangles past the edge and hostile sizes end quietly.
    util.DeleteBitmap(BT_IMAGE_RESIZED, 0);
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE_RESIZED, 5, 50, 40, 0x0000FF));
    util.ResizeDither(BT_IMAGE, 0, 0, 0, 2, 1, 3, 2, 3, 100);
    EXPECT_NE(util.GetBitmapHandle(BT_IMAGE_RESIZED, 0), nullptr);
    util.ResizeDither(BT_BACKGROUND, 0, 15, 15, 40, 40, 30, 30, 1, 1);
    EXPECT_EQ(util.ResizeDither(BT_BACKGROUND, 0, 0, 0, 19, 19, 0x7FFFFFFF, 0x7FFFFFFF, 0, 0), 0);
}

TEST(ImageTransform, PixelHelpersTheBlendFunctionAndABlendOverAPieceOfABackground)
{
    // The pixel rules are the portable core's (native tests); a width of 4 makes rows of exactly 12 bytes: the
    // class stores the last pixel of a row and not its fourth byte.
    char buffer[12 * 2 + 1] = {};
    buffer[24] = 0x55;
    EXPECT_EQ(TestBitmapUtil::PutPixel(3, 1, 0xABCDEF, buffer, 4, 2), 1);
    EXPECT_EQ(TestBitmapUtil::GetPixel(3, 1, buffer, 4, 2), 0xABCDEFul);
    EXPECT_EQ(buffer[24], 0x55);
    TestBitmapUtil util;
    unsigned char image[] = {200}, alpha[] = {64}, background[] = {100}, result[1];
    util.AlphaBlendFunction(image, alpha, background, result, 1);
    EXPECT_EQ(result[0], 174);  // (200 * 191 + 100 * 64) >> 8: image and background reach the blend in their order
    util.AlphaBlendFunction(image, nullptr, background, result, 1);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    util.AlphaBlendFunction(image, alpha, background, nullptr, 1);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG4);

    // A blend over a piece of a larger background.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 2, 2, 0));
    ASSERT_TRUE(MakeSolid(util, BT_ALPHA, 0, 2, 2, 0xFFFFFF));  // all background
    ASSERT_TRUE(MakeFrame(util, BT_BACKGROUND, 0, 6, 6, Gradient));
    EXPECT_RESULT_ERROR(util, util.AlphaBlendBitmapsBGPos(2, -1, 0, 0, 0), -1, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.AlphaBlendBitmapsBGPos(2, 0, -1, 0, 0), -1, ZBU_BAD_ARG3);
    EXPECT_RESULT_ERROR(util, util.AlphaBlendBitmapsBGPos(2, 0, 0, 1, 0), -1, ZBU_NO_BITMAP);
    CNBitmapUtil::CNBitmap* store = util.GetBitmapObject(BT_BACKGROUND);
    ASSERT_EQ(util.AlphaBlendBitmapsBGPos(2, 3, 2, 0, 0), 2);
    EXPECT_EQ(util.GetBitmapObject(BT_BACKGROUND), store);  // put back
    // The 2 x 2 piece at (3, 2), each byte faded by 255/256.
    const Pixels p = ReadFrame(util, BT_RESULT, 0);
    EXPECT_TRUE(Near(p.At(0, 0), Gradient(3, 2), 1) && p.At(0, 0) != Gradient(3, 2));
    EXPECT_TRUE(Near(p.At(1, 1), Gradient(4, 3), 1));
}

TEST(ImageTransform, AlphaBlendKeepsItsBuffersBetweenBlendsOfOneFrame)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 1, 5, 3, 0xC8C8C8));
    EXPECT_RESULT_ERROR(util, util.AlphaBlendBitmaps(0, 0, 1), -1, ZBU_NO_BACKGROUND_FRAME);  // nothing blended
    ASSERT_TRUE(MakeSolid(util, BT_ALPHA, 1, 5, 3, 0x808080));
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 1, 5, 3, 0x646464));
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 1).At(4, 2), 0x959595u);

    // The same frame again: only the background is read anew, from the kept buffers.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 1, 5, 3, 0x000000));       // goes unnoticed
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 1, 5, 3, 0xFFFFFF));  // is seen
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 1).At(0, 0), 0xE2E2E2u);  // (200*127 + 255*128) >> 8

    // Mode 1 only releases, and leaves the frame index; then the image is read again, and mode 2 blends and
    // releases.
    EXPECT_EQ(util.AlphaBlendBitmaps(1, 0, 1), -1);
    EXPECT_EQ(util.m_nBlendFrame, 1);
    ASSERT_EQ(util.AlphaBlendBitmaps(2, 0, 1), 3);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 1).At(0, 0), 0x7F7F7Fu);
    EXPECT_EQ(util.m_pBlendImage, nullptr);

    // A missing transparency frame is reported and the blend goes on; sizes that differ end it silently.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 2, 5, 3, 0xFFFFFF));
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 2, 5, 3, 0));
    EXPECT_RESULT_ERROR(util, util.AlphaBlendBitmaps(2, 0, 2), 3, ZBU_NO_ALPHA_FRAME);
    ASSERT_TRUE(MakeSolid(util, BT_ALPHA_RESIZED, 0, 4, 5, 0));
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE_RESIZED, 0, 5, 3, 0));
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND_RESIZED, 0, 5, 3, 0));
    util.SetJPEGCompressionFactor(300);
    EXPECT_RESULT_ERROR(util, util.AlphaBlendBitmaps(0, 1, 0), -1, ZBU_BAD_ARG1);
    EXPECT_EQ(util.m_nBlendSet, 1);

    // A set change releases the buffers of the other set; a load releases them too.
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    EXPECT_EQ(util.AlphaBlendBitmaps(0, 1, 0), -1);
    EXPECT_EQ(util.m_pBlendImage, nullptr);
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    util.NLoadBitmap(DataFile("wine/image/still.bmp").c_str(), BT_RESULT_RESIZED, 0);
    EXPECT_EQ(util.m_pBlendImage, nullptr);
    EXPECT_EQ(util.m_nBlendFrame, -1);

    // The image store changing geometry between mode-0 blends is noticed.
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    for (BitmapType type : {BT_IMAGE, BT_ALPHA, BT_BACKGROUND})
        for (int index : {1, 2})
            util.DeleteBitmap(type, index);
    for (BitmapType type : {BT_IMAGE, BT_ALPHA, BT_BACKGROUND})
        ASSERT_TRUE(MakeSolid(util, type, 1, 40, 30, type == BT_IMAGE ? 0xFFFFFF : 0));
    EXPECT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 30);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 1).At(39, 29), 0xFEFEFEu);
}

TEST(ImageTransform, TilesColourBackgroundsRegionsAndMirrors)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_ALPHA, 3, 5, 5, Gradient));
    EXPECT_RESULT_ERROR(util, util.CreateTiledBitmap(0, 5, BT_ALPHA, 3), 0, ZBU_BAD_ARG1);
    EXPECT_RESULT_ERROR(util, util.CreateTiledBitmap(5, 0, BT_ALPHA, 3), 0, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.CreateTiledBitmap(5, 5, BT_ALPHA, 4), 0, ZBU_NO_BITMAP);
    ASSERT_EQ(util.CreateTiledBitmap(12, 10, BT_ALPHA, 3), 1);
    Pixels p = ReadFrame(util, BT_RESULT, 3);
    ASSERT_EQ(p.width * p.height, 120);
    for (int i = 0; i < 120; ++i)
        ASSERT_EQ(p.At(i % 12, i / 12), Gradient(i % 12 % 5, i / 12 % 5)) << i;
    // A tile of one pixel over a large area stays quick.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 1, 1, 0x00AA00));
    ASSERT_EQ(util.CreateTiledBitmap(3000, 2000, BT_IMAGE, 0), 1);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 0).At(2999, 1999), 0x00AA00u);
    EXPECT_EQ(util.GetBitmapHandle(BT_RESULT, 3), nullptr);  // replaced: other geometry

    // A background of the image's size in one colour (a COLORREF); the other frames stay under the new header.
    EXPECT_RESULT_ERROR(util, util.CreateColorBackground(RGB(1, 2, 3), 0, 5), 0, ZBU_NO_BITMAP);
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 1, 8, 8, 0));
    EXPECT_NE(util.CreateColorBackground(RGB(10, 20, 30), 0, 0), 0);
    p = ReadFrame(util, BT_BACKGROUND, 0);
    ASSERT_EQ(p.width, 1);
    EXPECT_EQ(p.At(0, 0), 0x0A141Eu);
    EXPECT_NE(util.GetBitmapHandle(BT_BACKGROUND, 1), nullptr);

    // Regions cut away the colour.
    TestBitmapUtil regions;
    // A frame of the key colour with a 3 x 2 block of another colour at (2, 1).
    ASSERT_TRUE(MakeFrame(regions, BT_IMAGE, 0, 8, 5,
                          [](int x, int y) { return x >= 2 && x < 5 && y >= 1 && y < 3 ? 0x102030u : 0xFF00FFu; }));
    HRGN region = regions.BitmapToRegion(BT_IMAGE, 0, 0xFF00FF, 0);
    RECT box = {};
    GetRgnBox(region, &box);
    EXPECT_EQ((std::vector<LONG>{box.left, box.top, box.right, box.bottom}), (std::vector<LONG>{2, 1, 5, 3}));
    DeleteObject(region);
    // Wholly the colour, also within a tolerance that is one level wider below: null. No pixel of it: all.
    ASSERT_TRUE(MakeSolid(regions, BT_ALPHA, 0, 6, 4, 0x123456));
    EXPECT_EQ(regions.BitmapToRegion(BT_ALPHA, 0, 0x123456, 0), nullptr);
    EXPECT_EQ(regions.BitmapToRegion(BT_ALPHA, 0, 0x143658, 0x010101), nullptr);
    region = regions.BitmapToRegion(BT_ALPHA, 0, 0x103254, 0x010101);
    GetRgnBox(region, &box);
    EXPECT_EQ((std::vector<LONG>{box.left, box.top, box.right, box.bottom}), (std::vector<LONG>{0, 0, 6, 4}));
    DeleteObject(region);

    // More than 2,000 runs: parts are combined into one region.
    ASSERT_TRUE(MakeFrame(regions, BT_BACKGROUND, 0, 100, 50, [](int x, int y) { return (x + y) % 2 ? 0u : 0xFFFFFFu; }));
    region = regions.BitmapToRegion(BT_BACKGROUND, 0, 0xFFFFFF, 0);
    std::vector<char> data(GetRegionData(region, 0, nullptr));
    GetRegionData(region, static_cast<DWORD>(data.size()), reinterpret_cast<RGNDATA*>(data.data()));
    EXPECT_EQ(reinterpret_cast<RGNDATA*>(data.data())->rdh.nCount, 2500u);
    EXPECT_TRUE(PtInRegion(region, 98, 49));
    EXPECT_FALSE(PtInRegion(region, 99, 49));
    DeleteObject(region);
    EXPECT_RESULT_ERROR(regions, regions.BitmapToRegion(BT_RESULT, 0, 0, 0), nullptr, ZBU_NO_BITMAP);

    // Mirrored sections.
    TestBitmapUtil mirror;
    ASSERT_TRUE(MakeFrame(mirror, BT_IMAGE, 0, 4, 3, Gradient));
    ASSERT_EQ(mirror.MirrorSection(BT_IMAGE, 0, 0, 0, 4, 3, 1, 0), 1);
    EXPECT_EQ(ReadFrame(mirror, BT_IMAGE, 0).At(0, 2), Gradient(3, 2));
    ASSERT_EQ(mirror.MirrorSection(BT_IMAGE, 0, 1, 0, 2, 3, 1, 1), 1);  // both ways, on a part
    const Pixels both = ReadFrame(mirror, BT_IMAGE, 0);
    EXPECT_EQ(both.At(1, 0), Gradient(1, 2));
    EXPECT_EQ(both.At(2, 2), Gradient(2, 0));
    EXPECT_EQ(both.At(0, 0), Gradient(3, 0));
    EXPECT_EQ(mirror.MirrorSection(BT_IMAGE, 1, 0, 0, 4, 3, 1, 0), 0);

    // CNBitmapUtilEx mirrors a frame once on a drawing request and remembers it; a request of 0 does not undo it.
    CNBitmapUtilEx ex;
    ASSERT_TRUE(MakeFrame(ex, BT_IMAGE, 0, 3, 2, Gradient));
    testskin::Canvas memory(10, 10);
    EXPECT_EQ(ex.DrawBitmap(nullptr, 0, 0, BT_IMAGE, 0, 1), 0);
    EXPECT_EQ(ex.DrawBitmap(memory, 0, 0, BT_IMAGE, 1, 1), 0);
    EXPECT_EQ(ex.DrawBitmap(memory, nullptr, BT_IMAGE, 0, 1), 0);
    ASSERT_EQ(ex.DrawBitmap(memory, 1, 1, BT_IMAGE, 0, 1), 1);
    EXPECT_EQ(PixelOf(memory, 1, 1), Gradient(2, 0));
    ASSERT_EQ(ex.DrawBitmap(memory, 0, 0, 6, 4, BT_IMAGE, 0, 1), 1);
    const RECT rect = {4, 4, 7, 6};
    ASSERT_EQ(ex.DrawBitmap(memory, &rect, BT_IMAGE, 0, 0), 1);
    EXPECT_EQ(PixelOf(memory, 4, 4), Gradient(2, 0));
    EXPECT_EQ(ex.IsMirrored(BT_IMAGE, 0), 1);
    EXPECT_EQ(ex.MirrorBitmap(BT_IMAGE, 0), 1);
    EXPECT_EQ(ex.IsMirrored(BT_IMAGE, 0), 0);
}

TEST(ImageTransform, WindowTransfers)
{
    // A visible top-level window painted blue.
    HWND window = CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 40, 40, 64, 48, nullptr,
                                  nullptr, GetModuleHandleW(nullptr), nullptr);
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&msg);
    HDC dc = GetDC(window);
    HBRUSH blue = CreateSolidBrush(RGB(0, 0, 255));
    const RECT all = {0, 0, 64, 48};
    FillRect(dc, &all, blue);
    DeleteObject(blue);
    ASSERT_EQ(PixelOf(dc, 10, 10), 0x0000FFu);
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 8, 8, Gradient));

    // Checks in their order: the position errors come before the missing frame.
    EXPECT_RESULT_ERROR(util, util.SetBitmapStatic(window, -1, 0, 4, 4, BT_IMAGE, 5, 0, 0), 0, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.SetBitmapStatic(window, 0, -1, 4, 4, BT_IMAGE, 5, 0, 0), 0, ZBU_BAD_ARG3);
    EXPECT_RESULT_ERROR(util, util.SetBitmapStatic(window, 0, 0, 0, 4, BT_IMAGE, 5, 0, 0), 0, ZBU_BAD_ARG4);
    EXPECT_RESULT_ERROR(util, util.SetBitmapStatic(window, 0, 0, 4, 0, BT_IMAGE, 5, 0, 0), 0, ZBU_BAD_ARG5);
    EXPECT_RESULT_ERROR(util, util.SetBitmapStaticAlpha(window, 0, 0, 4, 4, BT_IMAGE, 5, -1, 0, 255), 0, ZBU_BAD_ARG7);
    EXPECT_RESULT_ERROR(util, util.SetBitmapStaticAlpha(window, 0, 0, 4, 4, BT_IMAGE, 5, 0, -1, 255), 0, ZBU_BAD_ARG8);
    EXPECT_RESULT_ERROR(util, util.SetBitmapStatic(window, 0, 0, 4, 4, BT_IMAGE, 5, 0, 0), 0, ZBU_NO_FRAME);
    // A frame drawn from (2, 1) onto the window at (10, 20).
    ASSERT_EQ(util.SetBitmapStatic(window, 10, 20, 6, 7, BT_IMAGE, 0, 2, 1), 1);
    EXPECT_EQ(PixelOf(dc, 10, 20), Gradient(2, 1));
    EXPECT_EQ(PixelOf(dc, 15, 26), Gradient(7, 7));
    EXPECT_EQ(PixelOf(dc, 16, 26), 0x0000FFu);

    // The window's pixels captured as a background of the blend.
    EXPECT_RESULT_ERROR(util, util.GetBackgroundStatic(window, 0, 0, 0, 4, 0, 0), nullptr, ZBU_BAD_ARG4);
    EXPECT_RESULT_ERROR(util, util.GetBackgroundStatic(window, 0, 0, 4, 0, 0, 0), nullptr, ZBU_BAD_ARG5);
    HBITMAP captured = util.GetBackgroundStatic(window, 8, 18, 8, 8, 0, 0);
    ASSERT_NE(captured, nullptr);
    EXPECT_EQ(util.GetBitmapHandle(BT_BACKGROUND, 0), captured);
    EXPECT_EQ(ReadFrame(util, BT_BACKGROUND, 0).At(0, 0), 0x0000FFu);
    EXPECT_EQ(ReadFrame(util, BT_BACKGROUND, 0).At(2, 2), Gradient(2, 1));
    // The same geometry reuses the frame; another replaces the store.
    EXPECT_EQ(util.GetBackgroundStatic(window, 0, 0, 8, 8, 0, 0), captured);
    ASSERT_NE(util.GetBackgroundStatic(window, 0, 0, 3, 3, 1, 2), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_BACKGROUND_RESIZED), 3);
    // Constant alpha: half of a white frame over blue.
    ASSERT_TRUE(MakeSolid(util, BT_RESULT, 0, 4, 4, 0xFFFFFF));
    ASSERT_EQ(util.SetBitmapStaticAlpha(window, 40, 30, 4, 4, BT_RESULT, 0, 0, 0, 0x180), 1);
    EXPECT_TRUE(Near(PixelOf(dc, 41, 31), 0x8080FF, 2)) << std::hex << PixelOf(dc, 41, 31);
    ReleaseDC(window, dc);
    DestroyWindow(window);
}
