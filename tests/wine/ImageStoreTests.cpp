// CNBitmapUtil as a container and a loader: records, the replace rule, the dispatch by extension, the pixel
// layouts, resources, saving, settings and the error word.
#include <gtest/gtest.h>

#include <memory>

#include "ImageTestSupport.h"
#include "TestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

uint32_t Gradient(int x, int y)
{
    return static_cast<uint32_t>((x * 16) << 16 | (y * 16) << 8 | ((x + y) * 8));
}

// The test theme module, loaded as data, with the image resources 800 to 806.
class TestTheme {
public:
    TestTheme()
        : m_module(
              LoadLibraryExW((BinDir() + L"\\Resource\\ZCMOD_Test.zgr").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE))
    {
    }
    ~TestTheme()
    {
        if (m_module)
            FreeLibrary(m_module);
    }
    HINSTANCE Get() const { return m_module; }

private:
    HMODULE m_module;
};

}  // namespace

TEST(ImageStore, FreshObjectDefaultsAndEmptyStores)
{
    TestBitmapUtil util;
    EXPECT_EQ(util.GetLastError(), ZBU_OK);
    EXPECT_EQ(util.GetLoopCount(), 0);
    EXPECT_EQ(util.SetGIFBkColor(0x123456), 0xFFFFFFFFu);
    EXPECT_EQ(util.SetJPEGCompressionFactor(100), 50);
    EXPECT_EQ(util.SetJPEGCompressionFactor(101), -1);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.SetJPEGCompressionFactor(-1), -1);  // read as unsigned: far above 100
    EXPECT_EQ(util.SetJPEGCompressionFactor(0), 100);
    EXPECT_TRUE(util.SetGIFErrorDiffusion(false));
    EXPECT_FALSE(util.SetGIFErrorDiffusion(true));
    EXPECT_EQ(util.SetLoopCount(4), 0);
    EXPECT_EQ(util.GetLoopCount(), 4);

    for (int t = 0; t < 8; ++t) {
        const auto type = static_cast<BitmapType>(t);
        EXPECT_NE(util.GetBitmapObject(type), nullptr);
        EXPECT_EQ(util.GetNumberOfBitmaps(type), 0);
        EXPECT_EQ(util.GetFirstBitmapIndex(type), 0);
        EXPECT_EQ(util.GetFirstImageIndex(util.GetBitmapObject(type)), -1);
        EXPECT_EQ(util.GetBitmapInfo(type), nullptr);
    }
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
    // A type outside 0 to 7 has no record: no handle and no error.
    util.SetLoopCount(0);
    EXPECT_EQ(util.SetFrameDelay(BT_IMAGE, 3, 40), 0);  // an empty slot takes a delay
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 3), 40);
    EXPECT_EQ(util.GetBitmapHandle(static_cast<BitmapType>(8), 0), nullptr);
    EXPECT_EQ(util.GetBitmapSize(static_cast<BitmapType>(8)), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_STORE);
    EXPECT_EQ(util.WideToMulti(L"x", nullptr, 0), 0);
    EXPECT_EQ(util.MultiToWide("x", nullptr, 0), 0);
}

TEST(ImageStore, HeaderRecordDescribesTwentyFourBitFrames)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 5, 7, 3, Gradient));
    const BITMAPINFO* info = util.GetBitmapInfo(BT_IMAGE);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->bmiHeader.biSize, 40u);
    EXPECT_EQ(info->bmiHeader.biWidth, 7);
    EXPECT_EQ(info->bmiHeader.biHeight, 3);
    EXPECT_EQ(info->bmiHeader.biBitCount, 24);
    EXPECT_EQ(info->bmiHeader.biCompression, static_cast<DWORD>(BI_RGB));
    EXPECT_EQ(info->bmiHeader.biSizeImage, 0u);
    const auto* record = util.GetBitmapObject(BT_IMAGE);
    EXPECT_EQ(record->m_nStride, 24);  // 21 rounded up to 4
    EXPECT_EQ(record->m_nSize, 72);
    EXPECT_EQ(util.GetBitmapSize(BT_IMAGE), 72);
    EXPECT_EQ(util.GetFirstBitmapIndex(BT_IMAGE), 5);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 1);
}

TEST(ImageStore, HeaderRecordOfABitmapReservesColourBitsXorTwoEntries)
{
    // 1, 4 and 8 bits per pixel reserve 3, 6 and 10 palette entries (not 2, 16, 256); deeper bitmaps none.
    const struct {
        UINT bits;
        DWORD entries;
    } cases[] = {{1, 3}, {4, 6}, {8, 10}, {32, 0}};
    for (const auto& c : cases) {
        HBITMAP bitmap = CreateBitmap(9, 4, 1, c.bits, nullptr);
        ASSERT_NE(bitmap, nullptr) << c.bits;
        BITMAPINFO* info = TestBitmapUtil::CreateBitmapInfoStruct(bitmap);
        ASSERT_NE(info, nullptr);
        EXPECT_EQ(info->bmiHeader.biClrUsed, c.entries) << c.bits;
        EXPECT_EQ(info->bmiHeader.biBitCount, 24);
        EXPECT_EQ(info->bmiHeader.biWidth, 9);
        EXPECT_EQ(info->bmiHeader.biHeight, 4);
        EXPECT_EQ(info->bmiHeader.biPlanes, 1);
        free(info);
        DeleteObject(bitmap);
    }
    EXPECT_EQ(TestBitmapUtil::CreateBitmapInfoStruct(nullptr), nullptr);
}

TEST(ImageStore, ReplaceRuleAcrossGeometries)
{
    TestBitmapUtil util;
    ScratchFolder scratch;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 50, 50, 0x102030));
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 1, 50, 50, 0x405060));
    const std::wstring small = scratch.File(L"small.bmp");
    const std::wstring large = scratch.File(L"large.bmp");
    ASSERT_GT(util.SaveBitmap(small.c_str(), BF_BMP, BT_IMAGE, 0), 0);
    TestBitmapUtil other;
    ASSERT_TRUE(MakeSolid(other, BT_IMAGE, 0, 100, 100, 0x00FF00));
    ASSERT_GT(other.SaveBitmap(large.c_str(), BF_BMP, BT_IMAGE, 0), 0);

    // 50 x 50 at another index keeps the frames there.
    ASSERT_NE(util.NLoadBitmap(small.c_str(), BT_IMAGE, 7), nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 3);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 1).At(10, 10), 0x405060u);

    // 100 x 100 removes every frame of the old geometry, whatever their index.
    CNBitmapUtil::CNBitmap* before = util.GetBitmapObject(BT_IMAGE);
    ASSERT_NE(util.NLoadBitmap(large.c_str(), BT_IMAGE, 2), nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 1);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 7), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 100);
    EXPECT_EQ(util.GetBitmapObject(BT_IMAGE)->m_nSize, 100 * 300);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 2).At(99, 99), 0x00FF00u);
    (void)before;

    // Deleting the last frame frees the header: the store then takes any size.
    HBITMAP last = util.GetBitmapHandle(BT_IMAGE, 2);
    EXPECT_EQ(util.DeleteBitmap(BT_IMAGE, 2), last);
    EXPECT_EQ(util.GetBitmapInfo(BT_IMAGE), nullptr);
    EXPECT_EQ(util.GetBitmapObject(BT_IMAGE)->m_nSize, 100 * 300);  // stride and size stay
    EXPECT_EQ(util.DeleteBitmap(BT_IMAGE, 2), nullptr);
    ASSERT_NE(util.NLoadBitmap(small.c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 50);
}

TEST(ImageStore, ExtensionDispatch)
{
    TestBitmapUtil util;
    ScratchFolder scratch;
    const std::vector<uint8_t> jpeg = ReadBytes(DataFile("wine/image/still.jpg"));
    ASSERT_FALSE(jpeg.empty());
    for (const wchar_t* name : {L"x.JPG", L"x.jpg", L"x.jpeg", L"x.gi", L"x"})
        WriteBytes(scratch.File(name), jpeg);

    // The three-letter extension, any case, takes the picture route.
    for (const wchar_t* name : {L"x.JPG", L"x.jpg"}) {
        HBITMAP frame = util.NLoadBitmap(scratch.File(name).c_str(), BT_IMAGE, 0);
        ASSERT_NE(frame, nullptr) << name;
        EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 16);
        EXPECT_EQ(util.GetBitmapHeight(BT_IMAGE), 8);
        EXPECT_TRUE(Near(ReadFrame(util, BT_IMAGE, 0).At(8, 4), 0xC86432, 6));
    }
    // .jpeg reads as "jpe": the WBMP and OTA decoders refuse it, and the error is the OTA decoder's.
    util.SetLoopCount(0);
    EXPECT_EQ(util.NLoadBitmap(scratch.File(L"x.jpeg").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);

    // Short or missing extensions load nothing and leave the error as it was.
    util.SetJPEGCompressionFactor(200);
    ASSERT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.NLoadBitmap(scratch.File(L"x.gi").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.NLoadBitmap(scratch.File(L"x").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.NLoadBitmap(static_cast<const wchar_t*>(nullptr), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);

    // A failing picture route (a missing .bmp) sets no error either.
    util.SetJPEGCompressionFactor(200);
    EXPECT_EQ(util.NLoadBitmap(scratch.File(L"missing.bmp").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
}

TEST(ImageStore, BmpRoutePixelsAndBackgroundFill)
{
    TestBitmapUtil util;
    ASSERT_NE(util.NLoadBitmap(DataFile("wine/image/still.bmp").c_str(), BT_BACKGROUND, 4), nullptr);
    const Pixels p = ReadFrame(util, BT_BACKGROUND, 4);
    ASSERT_EQ(p.width, 5);
    ASSERT_EQ(p.height, 3);
    EXPECT_EQ(p.At(0, 0), 0xFF0000u);
    EXPECT_EQ(p.At(1, 0), 0x00FF00u);
    EXPECT_EQ(p.At(2, 0), 0x0000FFu);
    EXPECT_EQ(p.At(4, 0), 0x000000u);
    EXPECT_EQ(p.At(2, 1), 0x46505Au);
    EXPECT_EQ(p.At(1, 2), 0xFA8007u);
    EXPECT_EQ(p.At(4, 2), 0xFFFF00u);
    EXPECT_EQ(util.GetFrameDelay(BT_BACKGROUND, 4), 0);
}

TEST(ImageStore, StillGifTakesThePictureRouteWithDelayZero)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 4, 4, 0x111111));
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 9, 4, 4, 0x222222));
    ASSERT_NE(util.NLoadBitmap(DataFile("still.gif").c_str(), BT_IMAGE, 3), nullptr);
    // One image: the store is not emptied as by an animation, and the frame lands at the asked index.
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 3);
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 3), 0);
    EXPECT_EQ(util.GetLoopCount(), 1);  // the block walk ran and found no looping block
    EXPECT_TRUE(Near(ReadFrame(util, BT_IMAGE, 3).At(1, 1), 0x000080, 2));
}

TEST(ImageStore, PixelLayoutsAgree)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 0, 5, 3, Gradient));
    const int stride = 16;
    std::vector<char> padded(static_cast<size_t>(stride) * 3, 0x55);
    ASSERT_TRUE(util.GetBitmapData(BT_IMAGE, 0, padded.data()));
    const Pixels tight = ReadFrame(util, BT_IMAGE, 0);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x) {
            const auto* p = reinterpret_cast<const uint8_t*>(&padded[y * stride + x * 3]);
            EXPECT_EQ(static_cast<uint32_t>(p[0] | p[1] << 8 | p[2] << 16), Gradient(x, y)) << x << "," << y;
            EXPECT_EQ(tight.At(x, y), Gradient(x, y));
        }
    // The header's height is positive again after the top-down transfer.
    EXPECT_EQ(util.GetBitmapInfo(BT_IMAGE)->bmiHeader.biHeight, 3);

    // Writing in one layout reads back in the other; the tight buffer is exactly width * 3 * height.
    std::vector<char> exact(5 * 3 * 3);
    for (size_t i = 0; i < exact.size(); ++i)
        exact[i] = static_cast<char>(i * 7);
    ASSERT_TRUE(util.SetBitmapDataNA(BT_IMAGE, 0, exact.data()));
    ASSERT_TRUE(util.GetBitmapData(BT_IMAGE, 0, padded.data()));
    EXPECT_EQ(padded[stride * 2 + 3], exact[2 * 15 + 3]);
    EXPECT_EQ(padded[14], exact[14]);
    ASSERT_TRUE(util.SetBitmapData(BT_IMAGE, 0, padded.data()));
    std::unique_ptr<char, decltype(&free)> back(util.GetBitmapDataNAAlloc(BT_IMAGE, 0), free);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(memcmp(back.get(), exact.data(), exact.size()), 0);

    // Checks in their order.
    EXPECT_FALSE(util.GetBitmapData(BT_IMAGE, 0, nullptr));
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_FALSE(util.GetBitmapDataNA(BT_ALPHA, 0, padded.data()));
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
    EXPECT_FALSE(util.SetBitmapData(static_cast<BitmapType>(9), 0, padded.data()));
    EXPECT_EQ(util.GetLastError(), ZBU_NO_STORE);
    EXPECT_EQ(util.GetBitmapDataAlloc(BT_ALPHA, 0), nullptr);
    // Frame indexes outside 0 to 511 behave as empty slots.
    EXPECT_FALSE(util.GetBitmapData(BT_IMAGE, 512, padded.data()));
    EXPECT_FALSE(util.GetBitmapDataNA(BT_IMAGE, -1, padded.data()));
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 100000), nullptr);
    EXPECT_EQ(util.DeleteBitmap(BT_IMAGE, -5), nullptr);
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 512), 0);
    EXPECT_EQ(util.SetFrameDelay(BT_IMAGE, -1, 5), 0);
    EXPECT_EQ(util.CreateBitmapFromData(2, 2, exact.data(), BT_IMAGE, 512), 0);
    EXPECT_EQ(util.NLoadBitmap(DataFile("wine/image/still.bmp").c_str(), BT_IMAGE, 600), nullptr);
    EXPECT_EQ(util.AlphaBlendBitmaps(2, 0, 600), -1);
    EXPECT_EQ(util.AlphaBlendBitmapsBGPos(2, 0, 0, 0, -3), -1);
    EXPECT_EQ(util.CreateTiledBitmap(4, 4, BT_IMAGE, -1), 0);
    EXPECT_EQ(util.Resize(BT_IMAGE, 512, 2, 2, 0), 0);
    EXPECT_EQ(util.Clone(BT_IMAGE, 0, BT_RESULT, 512), 0);
    EXPECT_EQ(util.GetBackgroundStatic(nullptr, 0, 0, 2, 2, 0, 512), nullptr);
    EXPECT_EQ(util.MirrorSection(BT_IMAGE, 512, 0, 0, 2, 2, 1, 0), 0);
    EXPECT_EQ(util.CreateColorBackground(0, 0, 700), 0);
    EXPECT_EQ(util.SaveBitmap(L"x.bmp", BF_BMP, BT_IMAGE, 512), 0);
}

TEST(ImageStore, IsFileValidRules)
{
    ScratchFolder scratch;
    auto make = [&](const wchar_t* name, std::vector<uint8_t> bytes) {
        WriteBytes(scratch.File(name), bytes);
        return CNBitmapUtil::IsFileValid(scratch.File(name).c_str());
    };
    EXPECT_EQ(make(L"nine.txt", std::vector<uint8_t>(9, 'a')), 0);
    EXPECT_EQ(make(L"ten.txt", std::vector<uint8_t>(10, 'a')), 1);
    EXPECT_EQ(make(L"x.wbmp", std::vector<uint8_t>(10, 0)), 1);
    std::vector<uint8_t> gif = {'G', 'I', 'F', '8', '9', 'a', 0, 0, 0, 0, 0x3B};
    EXPECT_EQ(make(L"a.GIF", gif), 1);
    gif.back() = 0;
    EXPECT_EQ(make(L"b.gif", gif), 0);      // no trailer as its last byte
    EXPECT_EQ(make(L"b.gif.txt", gif), 1);  // not a gif name: only the length counts
    EXPECT_EQ(make(L"c.bmp", {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0}), 1);
    EXPECT_EQ(make(L"d.bmp", {'M', 'B', 0, 0, 0, 0, 0, 0, 0, 0}), 0);
    EXPECT_EQ(make(L"e.png", {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 7, 7}), 1);
    EXPECT_EQ(make(L"f.png", {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0B, 7, 7}), 0);
    EXPECT_EQ(make(L"g.jpeg", {0xFF, 0xD8, 0, 0, 0, 0, 0, 0, 0, 0}), 1);
    EXPECT_EQ(make(L"h.jpg", {0xFF, 0xD9, 0, 0, 0, 0, 0, 0, 0, 0}), 0);
    EXPECT_EQ(CNBitmapUtil::IsFileValid(scratch.File(L"missing.txt").c_str()), 0);
    EXPECT_EQ(CNBitmapUtil::IsFileValid(nullptr), 0);
    EXPECT_EQ(CNBitmapUtil::IsFileValid(DataFile("wine/image/still.jpg").c_str()), 1);
    EXPECT_EQ(CNBitmapUtil::IsFileValid(DataFile("anim_disposal.gif").c_str()), 1);
}

TEST(ImageStore, SaveBitmapFormatsAndErrors)
{
    TestBitmapUtil util;
    ScratchFolder scratch;
    const std::wstring file = scratch.File(L"out.bin");
    EXPECT_EQ(util.SaveBitmap(file.c_str(), BF_BMP, BT_IMAGE, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_NO_BITMAP);
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 1, 1, 0x0A0B0C));
    EXPECT_EQ(util.SaveBitmap(nullptr, BF_BMP, BT_IMAGE, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    for (BitmapFormat refused : {BF_JPEG, BF_GIF}) {
        EXPECT_EQ(util.SaveBitmap(file.c_str(), refused, BT_IMAGE, 0), 0);
        EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
        EXPECT_FALSE(FileExists(file));
    }
    // An unknown format answers with the rows read and writes nothing.
    EXPECT_EQ(util.SaveBitmap(file.c_str(), static_cast<BitmapFormat>(9), BT_IMAGE, 0), 1);
    EXPECT_EQ(util.GetLastError(), ZBU_OK);
    EXPECT_FALSE(FileExists(file));
    EXPECT_EQ(util.EncodeSaveJPEG(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
    EXPECT_EQ(util.EncodeSaveGIF(nullptr, nullptr, 0), 0);

    // A 1 x 1 BMP is 58 bytes: the header pair and one row padded to 4.
    const std::wstring bmp = scratch.File(L"one.bmp");
    ASSERT_EQ(util.SaveBitmap(bmp.c_str(), BF_BMP, BT_IMAGE, 0), 58);
    const std::vector<uint8_t> bytes = ReadBytes(bmp);
    ASSERT_EQ(bytes.size(), 58u);
    EXPECT_EQ(bytes[0], 'B');
    EXPECT_EQ(bytes[1], 'M');
    EXPECT_EQ(bytes[2] | bytes[3] << 8, 58);
    EXPECT_EQ(bytes[10], 54);
    EXPECT_EQ(bytes[14], 40);
    EXPECT_EQ(bytes[28], 24);
    EXPECT_EQ(bytes[54], 0x0C);
    EXPECT_EQ(bytes[55], 0x0B);
    EXPECT_EQ(bytes[56], 0x0A);

    // BMP and PNG round trips are exact at 24 bits; the PNG writer answers with the file's length.
    ASSERT_TRUE(MakeFrame(util, BT_BACKGROUND, 2, 13, 6, Gradient));
    const std::wstring bmp2 = scratch.File(L"grad.bmp");
    const std::wstring png = scratch.File(L"grad.png");
    EXPECT_EQ(util.SaveBitmap(bmp2.c_str(), BF_BMP, BT_BACKGROUND, 2), 54 + 40 * 6);
    const int pngBytes = util.SaveBitmap(png.c_str(), BF_PNG, BT_BACKGROUND, 2);
    EXPECT_EQ(pngBytes, static_cast<int>(ReadBytes(png).size()));
    EXPECT_NE(pngBytes, 13 * 6 * 3);
    for (const std::wstring& path : {bmp2, png}) {
        TestBitmapUtil back;
        ASSERT_NE(back.NLoadBitmap(path.c_str(), BT_IMAGE, 0), nullptr);
        const Pixels p = ReadFrame(back, BT_IMAGE, 0);
        ASSERT_EQ(p.width, 13);
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 13; ++x)
                ASSERT_EQ(p.At(x, y), Gradient(x, y)) << x << "," << y;
    }
    // A file that can't be created.
    EXPECT_EQ(util.SaveBitmap(scratch.File(L"no\\such\\folder.bmp").c_str(), BF_BMP, BT_IMAGE, 0), 0);
    EXPECT_EQ(util.GetLastError(), ZBU_WRITE_FAILED);
}

TEST(ImageStore, ClearIsFinal)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 3, 3, 0xFFFFFF));
    util.Clear();
    for (int t = 0; t < 8; ++t)
        EXPECT_EQ(util.GetBitmapObject(static_cast<BitmapType>(t)), nullptr);
    EXPECT_EQ(util.NLoadBitmap(DataFile("wine/image/still.bmp").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.NLoadBitmap(DataFile("glyph_13x5_netpbm.wbmp").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.NLoadBitmap(DataFile("wine/image/rgba.png").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.NLoadBitmap(DataFile("anim_disposal.gif").c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.CreateBitmapFromData(1, 1, const_cast<char*>("abc"), BT_IMAGE, 0), 0);
    EXPECT_EQ(util.Resize(BT_IMAGE, 0, 2, 2, 0), 0);
    EXPECT_EQ(util.AlphaBlendBitmaps(0, 0, 0), -1);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 0);
    util.Clear();  // twice is harmless
}

TEST(ImageStore, LoadBitmapFromResourceByEachRoute)
{
    TestTheme theme;
    ASSERT_NE(theme.Get(), nullptr);
    TestBitmapUtil util;

    // A BITMAP resource.
    ASSERT_NE(util.NLoadBitmap(theme.Get(), 800, BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 5);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 0).At(3, 2), 0xC86432u);

    // A PNG in a named type, RGBA: the plane comes along in BT_ALPHA at the same index.
    util.SetJPEGCompressionFactor(999);
    ASSERT_NE(util.NLoadBitmap(theme.Get(), 801, BT_IMAGE, 6), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_OK);  // cleared because the frame exists
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 3);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 0), nullptr);  // replaced: other geometry
    EXPECT_EQ(ReadFrame(util, BT_ALPHA, 6).At(1, 0), 0xFFFFFFu);

    // A WBMP and an OTA picture in named types, through the temporary file.
    ASSERT_NE(util.NLoadBitmap(theme.Get(), 802, BT_BACKGROUND, 1), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_BACKGROUND), 13);
    ASSERT_NE(util.NLoadBitmap(theme.Get(), 805, BT_RESULT, 0), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_RESULT), 10);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 0).At(0, 0), 0x000000u);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 0).At(1, 0), 0xFFFFFFu);

    // A JPEG in a named type reaches only the WBMP and OTA decoders.
    EXPECT_EQ(util.NLoadBitmap(theme.Get(), 803, BT_IMAGE_RESIZED, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_FORMAT);
    // A numbered type is not searched; an empty resource has no bytes.
    EXPECT_EQ(util.NLoadBitmap(theme.Get(), 804, BT_IMAGE_RESIZED, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_RESOURCE_NOT_FOUND);
    EXPECT_EQ(util.NLoadBitmap(theme.Get(), 806, BT_IMAGE_RESIZED, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_RESOURCE_EMPTY);
    EXPECT_EQ(util.NLoadBitmap(theme.Get(), 4321, BT_IMAGE_RESIZED, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_RESOURCE_NOT_FOUND);

    // Argument checks, with the protected form's own numbering.
    EXPECT_EQ(util.NLoadBitmap(static_cast<HINSTANCE>(nullptr), 800, BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.NLoadBitmap(theme.Get(), 0, BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.LoadBitmapFromRes(theme.Get(), 800, static_cast<BitmapType>(12), 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    EXPECT_EQ(util.LoadBitmapFromRes(nullptr, 800, BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG2);
    EXPECT_EQ(util.LoadBitmapFromRes(theme.Get(), 0, BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG3);

    // The temporary files are removed again.
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    WIN32_FIND_DATAW found;
    HANDLE find = FindFirstFileW((std::wstring(temp) + L"ZBU*.tmp").c_str(), &found);
    EXPECT_EQ(find, INVALID_HANDLE_VALUE);
    if (find != INVALID_HANDLE_VALUE)
        FindClose(find);
}

TEST(ImageStore, LoadBitmapExportCopiesFromTheGraphicsModule)
{
    SuiteRegistry registry;
    registry.SetUserTheme(L"Test");
    HBITMAP copy = ZCMOD_LoadBitmap(800);
    ASSERT_NE(copy, nullptr);
    BITMAP bm = {};
    ASSERT_NE(GetObjectW(copy, sizeof(bm), &bm), 0);
    EXPECT_EQ(bm.bmWidth, 5);
    EXPECT_EQ(bm.bmHeight, 3);
    TestBitmapUtil util;
    ASSERT_EQ(util.CreateBitmapFromHandle(copy, BT_IMAGE, 0), 1);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 0).At(0, 0), 0xFF0000u);
    DeleteObject(copy);  // the caller's
    EXPECT_EQ(ZCMOD_LoadBitmap(4321), nullptr);
}

TEST(ImageStore, ModuleStateOwnsEightPools)
{
    CCommonModuleState& state = CCommonModuleState::Get();
    for (CNBitmapUtil* pool : state.m_pBitmapPool) {
        ASSERT_NE(pool, nullptr);
        EXPECT_EQ(pool->GetNumberOfBitmaps(BT_IMAGE), 0);
    }
}

TEST(ImageStore, SetBitmapShowsAFrameInAStatic)
{
    TestBitmapUtil util;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 2, 6, 4, 0x808080));
    HWND stat = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | SS_BITMAP, 0, 0, 10, 10, nullptr, nullptr,
                                GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(stat, nullptr);
    EXPECT_EQ(util.SetBitmap(stat, BT_IMAGE, 2), util.GetBitmapHandle(BT_IMAGE, 2));
    EXPECT_EQ(reinterpret_cast<HBITMAP>(SendMessageW(stat, STM_GETIMAGE, IMAGE_BITMAP, 0)),
              util.GetBitmapHandle(BT_IMAGE, 2));
    EXPECT_EQ(util.SetBitmap(stat, BT_IMAGE, 3), nullptr);
    EXPECT_EQ(util.SetBitmap(nullptr, BT_IMAGE, 2), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_BAD_ARG1);
    SendMessageW(stat, STM_SETIMAGE, IMAGE_BITMAP, 0);
    DestroyWindow(stat);
}
