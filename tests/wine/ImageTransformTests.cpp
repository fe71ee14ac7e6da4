// The transforms of CNBitmapUtil: frames from pixels, clones, scaling, the blend and its kept buffers, tiles,
// fills, regions, mirrors, and transfers to and from real windows.
#include <gtest/gtest.h>

#include "ImageTestSupport.h"
#include "image/NBitmapUtilEx.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

uint32_t Gradient(int x, int y)
{
    return static_cast<uint32_t>((x * 20 + 5) << 16 | (y * 30 + 7) << 8 | (x * y + 1));
}

// A visible top-level window painted with one colour, for transfers to and from the screen.
class TestWindow {
public:
    TestWindow(int width, int height, COLORREF fill)
    {
        m_hwnd = CreateWindowExW(WS_EX_TOPMOST, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 40, 40, width, height, nullptr,
                                 nullptr, GetModuleHandleW(nullptr), nullptr);
        Pump();
        Fill(fill);
    }
    ~TestWindow() { DestroyWindow(m_hwnd); }
    HWND Get() const { return m_hwnd; }
    void Fill(COLORREF colour)
    {
        HDC dc = GetDC(m_hwnd);
        HBRUSH brush = CreateSolidBrush(colour);
        RECT all;
        GetClientRect(m_hwnd, &all);
        FillRect(dc, &all, brush);
        DeleteObject(brush);
        ReleaseDC(m_hwnd, dc);
        GdiFlush();
    }
    // The window's pixel at (x, y), captured with BitBlt into a 32-bit DIB, as 0x00RRGGBB.
    uint32_t Capture(int x, int y) const
    {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), 1, -1, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        HBITMAP dib = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        HDC window = GetDC(m_hwnd);
        HDC memory = CreateCompatibleDC(window);
        HGDIOBJ old = SelectObject(memory, dib);
        BitBlt(memory, 0, 0, 1, 1, window, x, y, SRCCOPY);
        GdiFlush();
        const uint32_t pixel = *static_cast<uint32_t*>(bits) & 0xFFFFFF;
        SelectObject(memory, old);
        DeleteDC(memory);
        ReleaseDC(m_hwnd, window);
        DeleteObject(dib);
        return pixel;
    }

private:
    static void Pump()
    {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&msg);
    }
    HWND m_hwnd;
};

int RegionRects(HRGN region)
{
    const DWORD bytes = GetRegionData(region, 0, nullptr);
    std::vector<char> data(bytes);
    GetRegionData(region, bytes, reinterpret_cast<RGNDATA*>(data.data()));
    return static_cast<int>(reinterpret_cast<RGNDATA*>(data.data())->rdh.nCount);
}

}  // namespace

TEST(ImageTransform, FramesFromDataAndHandles)
{
    TestBitmapUtil util;
    char data[12] = {};
    EXPECT_EQ(util.CreateBitmapFromData(0, 1, data, BT_IMAGE, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.CreateBitmapFromData(1, 0, data, BT_IMAGE, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.CreateBitmapFromData(1, 1, nullptr, BT_IMAGE, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG3);
    // A size whose frame would not fit in 32 bits is refused, not allocated.
    EXPECT_EQ(util.CreateBitmapFromData(0x40000000, 0x40000000, data, BT_IMAGE, 0), 0);

    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 1, 6, 5, Gradient));
    HBITMAP section = util.CreateBitmapFromBitmapSection(2, 1, 3, 2, util.GetBitmapHandle(BT_IMAGE, 1));
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 1);  // touches no store
    ASSERT_EQ(util.CreateBitmapFromHandle(section, BT_RESULT, 4), 1);
    DeleteObject(section);
    const Pixels p = ReadFrame(util, BT_RESULT, 4);
    ASSERT_EQ(p.width, 3);
    EXPECT_EQ(p.At(0, 0), Gradient(2, 1));
    EXPECT_EQ(p.At(2, 1), Gradient(4, 2));
    EXPECT_EQ(util.CreateBitmapFromHandle(nullptr, BT_RESULT, 4), 0);
}

TEST(ImageTransform, CloneCopiesPixelsButNotTheDelay)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 2, 7, 4, Gradient));
    util.SetFrameDelay(BT_IMAGE, 2, 90);
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 0, 3, 3, 0));
    EXPECT_EQ(util.Clone(BT_IMAGE, 2, BT_IMAGE, 2), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_OPERATION_FAILED);
    EXPECT_EQ(util.Clone(BT_IMAGE, 3, BT_BACKGROUND, 1), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
    ASSERT_EQ(util.Clone(BT_IMAGE, 2, BT_BACKGROUND, 1), 1);
    EXPECT_EQ(util.GetLastError(), ZBU_OK);
    EXPECT_EQ(util.GetBitmapHandle(BT_BACKGROUND, 0), nullptr);  // other geometry: replaced
    EXPECT_EQ(util.GetFrameDelay(BT_BACKGROUND, 1), 0);
    const Pixels p = ReadFrame(util, BT_BACKGROUND, 1);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 7; ++x)
            ASSERT_EQ(p.At(x, y), Gradient(x, y));
    ASSERT_EQ(util.Clone(BT_IMAGE, 2, BT_IMAGE, 3), 1);  // within one store
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 2);
}

TEST(ImageTransform, ResizeIntoTheResizedStore)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_ALPHA, 0, 3, 2, Gradient));
    EXPECT_EQ(util.Resize(BT_ALPHA, 0, 0, 4, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.Resize(BT_ALPHA, 0, 4, 0, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG3);
    EXPECT_EQ(util.Resize(BT_ALPHA, 1, 4, 4, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
    EXPECT_EQ(util.Resize(BT_ALPHA_RESIZED, 0, 4, 4, 0), 0);

    ASSERT_EQ(util.Resize(BT_ALPHA, 0, 6, 4, 0), 1);
    HBITMAP first = util.GetBitmapHandle(BT_ALPHA_RESIZED, 0);
    ASSERT_NE(first, nullptr);
    Pixels p = ReadFrame(util, BT_ALPHA_RESIZED, 0);
    ASSERT_EQ(p.width, 6);
    ASSERT_EQ(p.height, 4);
    EXPECT_EQ(p.At(0, 0), Gradient(0, 0));  // nearest pixel: each source pixel becomes 2 x 2
    EXPECT_EQ(p.At(5, 3), Gradient(2, 1));
    EXPECT_EQ(p.At(3, 1), Gradient(1, 0));
    // The same size again draws over the same frame; smooth mode still works.
    ASSERT_EQ(util.Resize(BT_ALPHA, 0, 6, 4, 1), 1);
    EXPECT_EQ(util.GetBitmapHandle(BT_ALPHA_RESIZED, 0), first);
    // Relative sizes are of the source; another size replaces the record.
    ASSERT_EQ(util.ResizeRelative(BT_ALPHA, 0, 200, 50, 0), 1);
    EXPECT_EQ(util.GetBitmapWidth(BT_ALPHA_RESIZED), 6);
    EXPECT_EQ(util.GetBitmapHeight(BT_ALPHA_RESIZED), 1);
    EXPECT_EQ(util.ResizeRelative(BT_ALPHA, 0, 0, 50, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.ResizeRelative(BT_ALPHA, 0, 10, 0, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG3);
    // A hostile size fails cleanly.
    EXPECT_EQ(util.Resize(BT_ALPHA, 0, 0x7FFFFFFF, 0x7FFFFFFF, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_GDI_FAILED);
}

TEST(ImageTransform, ResizeDitherScalesARectangleBilinearly)
{
    TestBitmapUtil util;
    // Black, then rgb(200, 100, 50): four output pixels from two at a step of 0.5.
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 2, 1, [](int x, int) { return x ? 0xC86432u : 0u; }));
    EXPECT_EQ(util.ResizeDither(BT_IMAGE, 0, 0, 0, 2, 1, 4, 1, 0, 0), 0);
    Pixels p = ReadFrame(util, BT_IMAGE_RESIZED, 0);
    ASSERT_EQ(p.width, 4);
    EXPECT_EQ(p.At(0, 0), 0u);
    EXPECT_EQ(p.At(1, 0), 0x643219u);
    EXPECT_EQ(p.At(2, 0), 0xC86432u);

    // A flat picture stays flat without noise, and noise leaves it within the 255/256 fades.
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 0, 20, 20, 0x808080));
    util.ResizeDither(BT_BACKGROUND, 0, 0, 0, 19, 19, 37, 29, 0, 0);
    p = ReadFrame(util, BT_BACKGROUND_RESIZED, 0);
    ASSERT_EQ(p.width, 37);
    ASSERT_EQ(p.height, 29);
    for (int y = 0; y < 29; ++y)
        for (int x = 0; x < 37; ++x)
            ASSERT_EQ(p.At(x, y), 0x808080u);
    util.ResizeDither(BT_BACKGROUND, 0, 0, 0, 19, 19, 37, 29, 4, 300);
    p = ReadFrame(util, BT_BACKGROUND_RESIZED, 0);
    for (int y = 0; y < 29; ++y)
        for (int x = 0; x < 37; ++x)
            ASSERT_TRUE(Near(p.At(x, y), 0x7E7E7E, 2)) << std::hex << p.At(x, y);

    // Only frame 0 is tested for existence; resized stores can't be a source.
    TestBitmapUtil other;
    ASSERT_TRUE(MakeSolid(other, BT_IMAGE, 1, 4, 4, 0xFFFFFF));
    other.ResizeDither(BT_IMAGE, 1, 0, 0, 4, 4, 8, 8, 0, 0);
    EXPECT_EQ(other.GetNumberOfBitmaps(BT_IMAGE_RESIZED), 0);
    other.ResizeDither(BT_IMAGE_RESIZED, 0, 0, 0, 4, 4, 8, 8, 0, 0);
    EXPECT_EQ(other.GetNumberOfBitmaps(BT_IMAGE_RESIZED), 0);

    // A destination store that keeps a larger geometry is described by its header; nothing runs over.
    util.DeleteBitmap(BT_IMAGE_RESIZED, 0);
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE_RESIZED, 5, 50, 40, 0x0000FF));
    util.ResizeDither(BT_IMAGE, 0, 0, 0, 2, 1, 3, 2, 3, 100);
    EXPECT_NE(util.GetBitmapHandle(BT_IMAGE_RESIZED, 0), nullptr);
    // Source rectangles past the edge and hostile destination sizes end quietly.
    util.ResizeDither(BT_BACKGROUND, 0, 15, 15, 40, 40, 30, 30, 1, 1);
    EXPECT_EQ(util.ResizeDither(BT_BACKGROUND, 0, 0, 0, 19, 19, 0x7FFFFFFF, 0x7FFFFFFF, 0, 0), 0);
}

TEST(ImageTransform, PixelHelpers)
{
    EXPECT_EQ(TestBitmapUtil::TestColorMatch(0x05, 0x04, 0x010101), 1);
    EXPECT_EQ(TestBitmapUtil::TestColorMatch(0x06, 0x04, 0x010101), 0);
    EXPECT_EQ(TestBitmapUtil::TestColorMatch(0x03, 0x04, 0x010101), 1);
    EXPECT_EQ(TestBitmapUtil::TestColorMatch(0x02, 0x04, 0x010101), 1);
    EXPECT_EQ(TestBitmapUtil::TestColorMatch(0x01, 0x04, 0x010101), 0);
    EXPECT_EQ(TestBitmapUtil::TestColorMatch(0x01000004, 0x04, 0), 0);  // all 32 bits
    EXPECT_EQ(TestBitmapUtil::MixColors(0xFF0000, 0x0000FF, 25), 0x3F00BFu);
    char buffer[3 * 8] = {};
    EXPECT_EQ(TestBitmapUtil::PutPixel(1, 1, 0xABCDEF, buffer, 2, 2), 1);
    EXPECT_EQ(TestBitmapUtil::PutPixel(2, 0, 0xABCDEF, nullptr, 0, 0), 0);
    EXPECT_EQ(TestBitmapUtil::GetPixel(1, 1, buffer, 2, 2), 0xABCDEFul);
}

TEST(ImageTransform, AlphaBlendArithmeticAndKeptBuffers)
{
    TestBitmapUtil util;
    unsigned char image[3] = {255, 0, 200}, alpha[3] = {0, 255, 128}, background[3] = {9, 255, 100}, result[3];
    util.AlphaBlendFunction(image, alpha, background, result, 3);
    EXPECT_EQ(result[0], 254);
    EXPECT_EQ(result[1], 254);
    EXPECT_EQ(result[2], 149);
    util.AlphaBlendFunction(image, nullptr, background, result, 3);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    util.AlphaBlendFunction(image, alpha, background, nullptr, 3);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG4);

    // No background frame: nothing is blended.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 1, 5, 3, 0xC8C8C8));
    EXPECT_EQ(util.AlphaBlendBitmaps(0, 0, 1), -1);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BACKGROUND_FRAME);

    ASSERT_TRUE(MakeSolid(util, BT_ALPHA, 1, 5, 3, 0x808080));
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 1, 5, 3, 0x646464));
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 1).At(4, 2), 0x959595u);
    unsigned char* kept = util.m_pBlendImage;
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(util.m_nBlendFrame, 1);

    // The same frame again: only the background is read anew, and no buffer is made.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 1, 5, 3, 0x000000));       // goes unnoticed
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 1, 5, 3, 0xFFFFFF));  // is seen
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    EXPECT_EQ(util.m_pBlendImage, kept);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 1).At(0, 0), 0xE2E2E2u);  // (200*127 + 255*128) >> 8

    // Mode 1 only releases, and leaves the frame index.
    EXPECT_EQ(util.AlphaBlendBitmaps(1, 0, 1), -1);
    EXPECT_EQ(util.m_pBlendImage, nullptr);
    EXPECT_EQ(util.m_nBlendFrame, 1);
    // Now the image is read again; mode 2 blends and releases.
    ASSERT_EQ(util.AlphaBlendBitmaps(2, 0, 1), 3);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 1).At(0, 0), 0x7F7F7Fu);
    EXPECT_EQ(util.m_pBlendImage, nullptr);

    // A missing transparency frame is reported and the blend goes on; sizes that differ end it silently.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 2, 5, 3, 0xFFFFFF));
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 2, 5, 3, 0));
    EXPECT_EQ(util.AlphaBlendBitmaps(2, 0, 2), 3);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_ALPHA_FRAME);
    ASSERT_TRUE(MakeSolid(util, BT_ALPHA_RESIZED, 0, 4, 5, 0));
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE_RESIZED, 0, 5, 3, 0));
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND_RESIZED, 0, 5, 3, 0));
    util.SetJPEGCompressionFactor(300);
    EXPECT_EQ(util.AlphaBlendBitmaps(0, 1, 0), -1);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.m_nBlendSet, 1);

    // A set change releases the buffers of the other set; a load releases them too.
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    ASSERT_NE(util.m_pBlendImage, nullptr);
    EXPECT_EQ(util.AlphaBlendBitmaps(0, 1, 0), -1);
    EXPECT_EQ(util.m_pBlendImage, nullptr);
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    util.NLoadBitmap(DataFile("wine/image/still.bmp").c_str(), BT_RESULT_RESIZED, 0);
    EXPECT_EQ(util.m_pBlendImage, nullptr);
    EXPECT_EQ(util.m_nBlendFrame, -1);

    // The image store changing geometry between mode-0 blends is noticed.
    ASSERT_EQ(util.AlphaBlendBitmaps(0, 0, 1), 3);
    TestBitmapUtil& u = util;
    u.DeleteBitmap(BT_IMAGE, 1);
    u.DeleteBitmap(BT_IMAGE, 2);
    u.DeleteBitmap(BT_ALPHA, 1);
    u.DeleteBitmap(BT_BACKGROUND, 1);
    u.DeleteBitmap(BT_BACKGROUND, 2);
    ASSERT_TRUE(MakeSolid(u, BT_IMAGE, 1, 40, 30, 0xFFFFFF));
    ASSERT_TRUE(MakeSolid(u, BT_ALPHA, 1, 40, 30, 0));
    ASSERT_TRUE(MakeSolid(u, BT_BACKGROUND, 1, 40, 30, 0));
    EXPECT_EQ(u.AlphaBlendBitmaps(0, 0, 1), 30);
    EXPECT_EQ(ReadFrame(u, BT_RESULT, 1).At(39, 29), 0xFEFEFEu);
}

TEST(ImageTransform, BlendOverAPieceOfALargerBackground)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 2, 2, 0));
    ASSERT_TRUE(MakeSolid(util, BT_ALPHA, 0, 2, 2, 0xFFFFFF));  // all background
    ASSERT_TRUE(MakeFrame(util, BT_BACKGROUND, 0, 6, 6, Gradient));
    EXPECT_EQ(util.AlphaBlendBitmapsBGPos(2, -1, 0, 0, 0), -1);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.AlphaBlendBitmapsBGPos(2, 0, -1, 0, 0), -1);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG3);
    EXPECT_EQ(util.AlphaBlendBitmapsBGPos(2, 0, 0, 1, 0), -1);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);

    CNBitmapUtil::CNBitmap* background = util.GetBitmapObject(BT_BACKGROUND);
    ASSERT_EQ(util.AlphaBlendBitmapsBGPos(2, 3, 2, 0, 0), 2);
    EXPECT_EQ(util.GetBitmapObject(BT_BACKGROUND), background);  // put back
    const Pixels p = ReadFrame(util, BT_RESULT, 0);
    auto faded = [](uint32_t c) {
        uint32_t out = 0;
        for (int s = 0; s < 24; s += 8)
            out |= (((c >> s) & 0xFF) * 255 >> 8) << s;
        return out;
    };
    EXPECT_EQ(p.At(0, 0), faded(Gradient(3, 2)));
    EXPECT_EQ(p.At(1, 1), faded(Gradient(4, 3)));
}

TEST(ImageTransform, TilesAndColourBackgrounds)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_ALPHA, 3, 5, 5, Gradient));
    EXPECT_EQ(util.CreateTiledBitmap(0, 5, BT_ALPHA, 3), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.CreateTiledBitmap(5, 0, BT_ALPHA, 3), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.CreateTiledBitmap(5, 5, BT_ALPHA, 4), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
    ASSERT_EQ(util.CreateTiledBitmap(12, 10, BT_ALPHA, 3), 1);
    Pixels p = ReadFrame(util, BT_RESULT, 3);
    ASSERT_EQ(p.width, 12);
    ASSERT_EQ(p.height, 10);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 12; ++x)
            ASSERT_EQ(p.At(x, y), Gradient(x % 5, y % 5)) << x << "," << y;
    // A tile of one pixel over a large area stays quick.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 1, 1, 0x00AA00));
    ASSERT_EQ(util.CreateTiledBitmap(3000, 2000, BT_IMAGE, 0), 1);
    p = ReadFrame(util, BT_RESULT, 0);
    EXPECT_EQ(p.At(2999, 1999), 0x00AA00u);
    EXPECT_EQ(util.GetBitmapHandle(BT_RESULT, 3), nullptr);  // replaced: other geometry

    // A background of the image's size in one colour (a COLORREF).
    EXPECT_EQ(util.CreateColorBackground(RGB(1, 2, 3), 0, 5), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
    ASSERT_TRUE(MakeSolid(util, BT_BACKGROUND, 1, 8, 8, 0));
    EXPECT_NE(util.CreateColorBackground(RGB(10, 20, 30), 0, 0), 0);
    p = ReadFrame(util, BT_BACKGROUND, 0);
    ASSERT_EQ(p.width, 1);
    EXPECT_EQ(p.At(0, 0), 0x0A141Eu);
    EXPECT_NE(util.GetBitmapHandle(BT_BACKGROUND, 1), nullptr);  // kept, under the new header
}

TEST(ImageTransform, RegionsCutAwayTheColour)
{
    TestBitmapUtil util;
    // A frame of the key colour with a 3 x 2 block of another colour at (2, 1).
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 8, 5,
                          [](int x, int y) { return x >= 2 && x < 5 && y >= 1 && y < 3 ? 0x102030u : 0xFF00FFu; }));
    HRGN region = util.BitmapToRegion(BT_IMAGE, 0, 0xFF00FF, 0);
    ASSERT_NE(region, nullptr);
    RECT box;
    GetRgnBox(region, &box);
    EXPECT_EQ(box.left, 2);
    EXPECT_EQ(box.top, 1);
    EXPECT_EQ(box.right, 5);
    EXPECT_EQ(box.bottom, 3);
    EXPECT_TRUE(PtInRegion(region, 4, 2));
    EXPECT_FALSE(PtInRegion(region, 5, 2));
    DeleteObject(region);
    // Wholly the colour: null, also within a tolerance that is one level wider below the colour.
    ASSERT_TRUE(MakeSolid(util, BT_ALPHA, 0, 6, 4, 0x123456));
    EXPECT_EQ(util.BitmapToRegion(BT_ALPHA, 0, 0x123456, 0), nullptr);
    EXPECT_EQ(util.BitmapToRegion(BT_ALPHA, 0, 0x113355, 0x010101), nullptr);
    EXPECT_EQ(util.BitmapToRegion(BT_ALPHA, 0, 0x143658, 0x010101), nullptr);
    region = util.BitmapToRegion(BT_ALPHA, 0, 0x103254, 0x010101);
    EXPECT_NE(region, nullptr);
    DeleteObject(region);
    // No pixel of the colour: the whole frame.
    region = util.BitmapToRegion(BT_ALPHA, 0, 0, 0);
    ASSERT_NE(region, nullptr);
    GetRgnBox(region, &box);
    EXPECT_EQ(box.right, 6);
    EXPECT_EQ(box.bottom, 4);
    DeleteObject(region);

    // More than 2,000 runs: parts are combined into one region.
    ASSERT_TRUE(MakeFrame(util, BT_BACKGROUND, 0, 100, 50, [](int x, int y) { return (x + y) % 2 ? 0u : 0xFFFFFFu; }));
    region = util.BitmapToRegion(BT_BACKGROUND, 0, 0xFFFFFF, 0);
    ASSERT_NE(region, nullptr);
    EXPECT_EQ(RegionRects(region), 2500);
    EXPECT_TRUE(PtInRegion(region, 1, 0));
    EXPECT_FALSE(PtInRegion(region, 0, 0));
    EXPECT_TRUE(PtInRegion(region, 98, 49));
    EXPECT_FALSE(PtInRegion(region, 99, 49));
    DeleteObject(region);

    EXPECT_EQ(util.BitmapToRegion(BT_RESULT, 0, 0, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
}

TEST(ImageTransform, MirrorSections)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 4, 3, Gradient));
    ASSERT_EQ(util.MirrorSection(BT_IMAGE, 0, 0, 0, 4, 3, 1, 0), 1);
    Pixels p = ReadFrame(util, BT_IMAGE, 0);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            ASSERT_EQ(p.At(x, y), Gradient(3 - x, y)) << x << "," << y;
    ASSERT_EQ(util.MirrorSection(BT_IMAGE, 0, 1, 0, 2, 3, 1, 1), 1);
    p = ReadFrame(util, BT_IMAGE, 0);
    EXPECT_EQ(p.At(1, 0), Gradient(1, 2));
    EXPECT_EQ(p.At(2, 2), Gradient(2, 0));
    EXPECT_EQ(p.At(0, 0), Gradient(3, 0));
    EXPECT_EQ(util.MirrorSection(BT_IMAGE, 1, 0, 0, 4, 3, 1, 0), 0);
    EXPECT_EQ(util.MirrorSection(static_cast<BitmapType>(10), 0, 0, 0, 4, 3, 1, 0), 0);
}

TEST(ImageTransform, WindowTransfers)
{
    TestWindow window(64, 48, RGB(0, 0, 255));
    ASSERT_EQ(window.Capture(10, 10), 0x0000FFu);
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 8, 8, Gradient));

    // Checks in their order: the position errors come before the missing frame.
    EXPECT_EQ(util.SetBitmapStatic(window.Get(), -1, 0, 4, 4, BT_IMAGE, 5, 0, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.SetBitmapStatic(window.Get(), 0, -1, 4, 4, BT_IMAGE, 5, 0, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG3);
    EXPECT_EQ(util.SetBitmapStatic(window.Get(), 0, 0, 0, 4, BT_IMAGE, 5, 0, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG4);
    EXPECT_EQ(util.SetBitmapStatic(window.Get(), 0, 0, 4, 0, BT_IMAGE, 5, 0, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG5);
    EXPECT_EQ(util.SetBitmapStaticAlpha(window.Get(), 0, 0, 4, 4, BT_IMAGE, 5, -1, 0, 255), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG7);
    EXPECT_EQ(util.SetBitmapStaticAlpha(window.Get(), 0, 0, 4, 4, BT_IMAGE, 5, 0, -1, 255), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG8);
    EXPECT_EQ(util.SetBitmapStatic(window.Get(), 0, 0, 4, 4, BT_IMAGE, 5, 0, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_FRAME);

    // A frame drawn from (2, 1) onto the window at (10, 20).
    ASSERT_EQ(util.SetBitmapStatic(window.Get(), 10, 20, 6, 7, BT_IMAGE, 0, 2, 1), 1);
    EXPECT_EQ(window.Capture(10, 20), Gradient(2, 1));
    EXPECT_EQ(window.Capture(15, 26), Gradient(7, 7));
    EXPECT_EQ(window.Capture(16, 26), 0x0000FFu);

    // The window's pixels captured as a background of the blend.
    EXPECT_EQ(util.GetBackgroundStatic(window.Get(), 0, 0, 0, 4, 0, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG4);
    EXPECT_EQ(util.GetBackgroundStatic(window.Get(), 0, 0, 4, 0, 0, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG5);
    HBITMAP captured = util.GetBackgroundStatic(window.Get(), 8, 18, 8, 8, 0, 0);
    ASSERT_NE(captured, nullptr);
    EXPECT_EQ(util.GetBitmapHandle(BT_BACKGROUND, 0), captured);
    Pixels p = ReadFrame(util, BT_BACKGROUND, 0);
    EXPECT_EQ(p.At(0, 0), 0x0000FFu);
    EXPECT_EQ(p.At(2, 2), Gradient(2, 1));
    // The same geometry reuses the frame; another replaces the store.
    EXPECT_EQ(util.GetBackgroundStatic(window.Get(), 0, 0, 8, 8, 0, 0), captured);
    ASSERT_NE(util.GetBackgroundStatic(window.Get(), 0, 0, 3, 3, 1, 2), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_BACKGROUND_RESIZED), 3);

    // Constant alpha: half of a white frame over blue.
    ASSERT_TRUE(MakeSolid(util, BT_RESULT, 0, 4, 4, 0xFFFFFF));
    ASSERT_EQ(util.SetBitmapStaticAlpha(window.Get(), 40, 30, 4, 4, BT_RESULT, 0, 0, 0, 0x180), 1);
    EXPECT_TRUE(Near(window.Capture(41, 31), 0x8080FF, 2)) << std::hex << window.Capture(41, 31);
}

TEST(ImageTransform, ExtendedUtilRemembersMirroredFrames)
{
    CNBitmapUtilEx util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 3, 2, Gradient));
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP target = CreateCompatibleBitmap(screen, 10, 10);
    HGDIOBJ old = SelectObject(memory, target);
    EXPECT_EQ(util.DrawBitmap(nullptr, 0, 0, BT_IMAGE, 0, 1), 0);
    EXPECT_EQ(util.DrawBitmap(memory, 0, 0, BT_IMAGE, 1, 1), 0);
    EXPECT_EQ(util.DrawBitmap(memory, nullptr, BT_IMAGE, 0, 1), 0);

    ASSERT_EQ(util.DrawBitmap(memory, 1, 1, BT_IMAGE, 0, 1), 1);
    EXPECT_EQ(util.IsMirrored(BT_IMAGE, 0), 1);
    EXPECT_EQ(GetPixel(memory, 1, 1), RGB(45, 7, 1));  // Gradient(2, 0), mirrored to the left
    // A second request leaves a mirrored frame as it is; a request of 0 does not undo it.
    ASSERT_EQ(util.DrawBitmap(memory, 0, 0, 6, 4, BT_IMAGE, 0, 1), 1);
    EXPECT_EQ(util.IsMirrored(BT_IMAGE, 0), 1);
    RECT rect = {4, 4, 7, 6};
    ASSERT_EQ(util.DrawBitmap(memory, &rect, BT_IMAGE, 0, 0), 1);
    EXPECT_EQ(GetPixel(memory, 4, 4), RGB(45, 7, 1));
    EXPECT_EQ(util.MirrorBitmap(BT_IMAGE, 0), 1);
    EXPECT_EQ(util.IsMirrored(BT_IMAGE, 0), 0);
    SelectObject(memory, old);
    DeleteObject(target);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
}
