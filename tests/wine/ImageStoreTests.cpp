// CNBitmapUtil as a container and a loader: records, the replace rule, the dispatch by extension, the pixel
// layouts, resources, saving, and the error word.
#include <gtest/gtest.h>

#include <memory>

#include "ImageTestSupport.h"
#include "TestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

TEST(ImageStore, EmptyStoresTheJpegFactorsRangeAndAFinalClear)
{
    TestBitmapUtil util;
    // The two first-index readers differ on purpose for an empty store.
    EXPECT_EQ(util.GetFirstBitmapIndex(BT_IMAGE), 0);
    EXPECT_EQ(util.GetFirstImageIndex(util.GetBitmapObject(BT_IMAGE)), -1);
    EXPECT_RESULT_ERROR(util, util.GetBitmapWidth(BT_IMAGE), 0, ZBU_NO_BITMAP);
    EXPECT_EQ(util.SetFrameDelay(BT_IMAGE, 3, 40), 0);  // an empty slot takes a delay
    // A type outside 0 to 7 has no record: no handle and no error; sizes say there is no store.
    EXPECT_EQ(util.GetBitmapHandle(static_cast<BitmapType>(8), 0), nullptr);
    EXPECT_RESULT_ERROR(util, util.GetBitmapSize(static_cast<BitmapType>(8)), 0, ZBU_NO_STORE);
    EXPECT_EQ(util.SetJPEGCompressionFactor(100), 50);
    EXPECT_RESULT_ERROR(util, util.SetJPEGCompressionFactor(101), -1, ZBU_BAD_ARG1);
    EXPECT_EQ(util.SetJPEGCompressionFactor(-1), -1);  // read as unsigned: far above 100

    // Clear is final: no record, so no load or frame.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 3, 3, 0xFFFFFF));
    util.Clear();
    EXPECT_EQ(util.GetBitmapObject(BT_RESULT_RESIZED), nullptr);
    for (const char* file :
         {"wine/image/still.bmp", "glyph_13x5_netpbm.wbmp", "wine/image/rgba.png", "anim_disposal.gif"})
        EXPECT_EQ(util.NLoadBitmap(DataFile(file).c_str(), BT_IMAGE, 0), nullptr) << file;
    EXPECT_EQ(util.CreateBitmapFromData(1, 1, const_cast<char*>("abc"), BT_IMAGE, 0), 0);
    EXPECT_EQ(util.AlphaBlendBitmaps(0, 0, 0), -1);
    util.Clear();  // twice is harmless
}

TEST(ImageStore, ReplaceRuleAcrossGeometries)
{
    TestBitmapUtil util, other;
    ScratchFolder scratch;
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 50, 50, 0x102030));
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 1, 50, 50, 0x405060));
    ASSERT_TRUE(MakeSolid(other, BT_IMAGE, 0, 100, 100, 0x00FF00));
    const std::wstring small = scratch.File(L"small.bmp");
    const std::wstring large = scratch.File(L"large.bmp");
    ASSERT_GT(util.SaveBitmap(small.c_str(), BF_BMP, BT_IMAGE, 0), 0);
    ASSERT_GT(other.SaveBitmap(large.c_str(), BF_BMP, BT_IMAGE, 0), 0);

    // 50 x 50 at another index keeps the frames there.
    ASSERT_NE(util.NLoadBitmap(small.c_str(), BT_IMAGE, 7), nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 3);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 1).At(10, 10), 0x405060u);
    // 100 x 100 removes every frame of the old geometry, whatever their index.
    ASSERT_NE(util.NLoadBitmap(large.c_str(), BT_IMAGE, 2), nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 1);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 7), nullptr);
    EXPECT_EQ(util.GetBitmapSize(BT_IMAGE), 100 * 300);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 2).At(99, 99), 0x00FF00u);

    // Deleting the last frame frees the header, though stride and size stay: the store then takes any size.
    HBITMAP last = util.GetBitmapHandle(BT_IMAGE, 2);
    EXPECT_EQ(util.DeleteBitmap(BT_IMAGE, 2), last);
    EXPECT_EQ(util.GetBitmapInfo(BT_IMAGE), nullptr);
    EXPECT_EQ(util.GetBitmapObject(BT_IMAGE)->m_nSize, 100 * 300);
    EXPECT_EQ(util.DeleteBitmap(BT_IMAGE, 2), nullptr);
    ASSERT_NE(util.NLoadBitmap(small.c_str(), BT_IMAGE, 0), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 50);
}

TEST(ImageStore, ExtensionDispatchAndAStillGifAtTheAskedIndex)
{
    TestBitmapUtil util;
    ScratchFolder scratch;
    const std::vector<uint8_t> jpeg = ReadBytes(DataFile("wine/image/still.jpg"));
    // The three-letter extension, any case, takes the picture route.
    for (const wchar_t* name : {L"x.JPG", L"x.jpg"}) {
        ASSERT_NE(util.NLoadBitmap(scratch.Write(name, jpeg).c_str(), BT_IMAGE, 0), nullptr) << name;
        EXPECT_EQ(util.GetBitmapWidth(BT_IMAGE), 16);
        EXPECT_TRUE(Near(ReadFrame(util, BT_IMAGE, 0).At(8, 4), 0xC86432, 6));
    }
    // A null name is refused. .jpeg reads as "jpe": the WBMP and OTA decoders refuse it, and the error is the
    // OTA decoder's. Short or missing extensions load nothing and leave the error as it was; so does a failing
    // picture route (a missing .bmp).
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(static_cast<const wchar_t*>(nullptr), BT_IMAGE, 0), nullptr,
                        ZBU_BAD_ARG1);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(scratch.Write(L"x.jpeg", jpeg).c_str(), BT_IMAGE, 0), nullptr,
                        ZBU_BAD_FORMAT);
    for (const wchar_t* name : {L"x.gi", L"x"})
        EXPECT_RESULT_ERROR(util, util.NLoadBitmap(scratch.Write(name, jpeg).c_str(), BT_IMAGE, 0), nullptr,
                            ZBU_BAD_FORMAT);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(scratch.File(L"missing.bmp").c_str(), BT_IMAGE, 0), nullptr,
                        ZBU_BAD_FORMAT);

    // (BMP files take this route in the save test's round trip.) One image: the store is not emptied as by an
    // animation, and the frame lands at the asked index with delay 0, after a block walk that found no loop.
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 4, 4, 0x111111));
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 9, 4, 4, 0x222222));
    ASSERT_NE(util.NLoadBitmap(DataFile("still.gif").c_str(), BT_IMAGE, 3), nullptr);
    EXPECT_EQ(util.GetNumberOfBitmaps(BT_IMAGE), 3);
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 3), 0);
    EXPECT_EQ(util.GetLoopCount(), 1);
    EXPECT_TRUE(Near(ReadFrame(util, BT_IMAGE, 3).At(1, 1), 0x000080, 2));
}

TEST(ImageStore, HeaderRecordsOfBitmapsAndFramesAndThePixelLayoutsAgree)
{
    // 1, 4 and 8 bits per pixel reserve 3, 6 and 10 palette entries (not 2, 16, 256); deeper bitmaps none.
    for (const auto& c : {std::make_pair(1u, 3u), std::make_pair(4u, 6u), std::make_pair(8u, 10u), {32u, 0u}}) {
        HBITMAP bitmap = CreateBitmap(9, 4, 1, c.first, nullptr);
        BITMAPINFO* info = TestBitmapUtil::CreateBitmapInfoStruct(bitmap);
        ASSERT_NE(info, nullptr) << c.first;
        EXPECT_EQ(info->bmiHeader.biClrUsed, c.second) << c.first;
        EXPECT_EQ(info->bmiHeader.biBitCount, 24);
        EXPECT_EQ(info->bmiHeader.biWidth, 9);
        free(info);
        DeleteObject(bitmap);
    }
    EXPECT_EQ(TestBitmapUtil::CreateBitmapInfoStruct(nullptr), nullptr);

    // A frame's header record.
    TestBitmapUtil util;
    ASSERT_TRUE(MakeFrame(util, BT_IMAGE, 5, 5, 3, Gradient));
    const BITMAPINFOHEADER expected = {sizeof(BITMAPINFOHEADER), 5, 3, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    const BITMAPINFOHEADER& header = util.GetBitmapInfo(BT_IMAGE)->bmiHeader;
    EXPECT_EQ(memcmp(&header, &expected, sizeof(expected)), 0);
    EXPECT_EQ(util.GetBitmapObject(BT_IMAGE)->m_nStride, 16);  // 15 rounded up to 4
    EXPECT_EQ(util.GetBitmapSize(BT_IMAGE), 48);
    EXPECT_EQ(util.GetFirstBitmapIndex(BT_IMAGE), 5);

    // Padded and tight top-down rows; the header's height is positive again after the transfer.
    std::vector<char> padded(16 * 3, 0x55);
    ASSERT_TRUE(util.GetBitmapData(BT_IMAGE, 5, padded.data()));
    EXPECT_EQ(memcmp(&header, &expected, sizeof(expected)), 0);
    const Pixels tight = ReadFrame(util, BT_IMAGE, 5);
    for (int i = 0; i < 15; ++i) {
        const auto* p = reinterpret_cast<const uint8_t*>(&padded[i / 5 * 16 + i % 5 * 3]);
        EXPECT_EQ(static_cast<uint32_t>(p[0] | p[1] << 8 | p[2] << 16), Gradient(i % 5, i / 5)) << i;
        EXPECT_EQ(tight.At(i % 5, i / 5), Gradient(i % 5, i / 5));
    }
    // Writing in one layout reads back in the other; the tight buffer is exactly width * 3 * height.
    std::vector<char> exact(5 * 3 * 3);
    for (size_t i = 0; i < exact.size(); ++i)
        exact[i] = static_cast<char>(i * 7);
    ASSERT_TRUE(util.SetBitmapDataNA(BT_IMAGE, 5, exact.data()));
    ASSERT_TRUE(util.GetBitmapData(BT_IMAGE, 5, padded.data()));
    EXPECT_EQ(padded[16 * 2 + 3], exact[2 * 15 + 3]);
    ASSERT_TRUE(util.SetBitmapData(BT_IMAGE, 5, padded.data()));
    std::unique_ptr<char, decltype(&free)> back(util.GetBitmapDataNAAlloc(BT_IMAGE, 5), free);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(memcmp(back.get(), exact.data(), exact.size()), 0);

    // Checks in their order.
    EXPECT_RESULT_ERROR(util, util.GetBitmapData(BT_IMAGE, 5, nullptr), FALSE, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.GetBitmapDataNA(BT_ALPHA, 0, padded.data()), FALSE, ZBU_NO_BITMAP);
    EXPECT_RESULT_ERROR(util, util.SetBitmapData(static_cast<BitmapType>(9), 0, padded.data()), FALSE, ZBU_NO_STORE);
    EXPECT_EQ(util.GetBitmapDataAlloc(BT_ALPHA, 0), nullptr);
    // Frame indexes outside 0 to 511 behave as empty slots: the shared frame lookup, then each writer's own check.
    EXPECT_FALSE(util.GetBitmapData(BT_IMAGE, 512, padded.data()));
    EXPECT_FALSE(util.SetBitmapDataNA(BT_IMAGE, -1, padded.data()));
    EXPECT_EQ(util.DeleteBitmap(BT_IMAGE, -5), nullptr);
    EXPECT_EQ(util.GetFrameDelay(BT_IMAGE, 512), 0);
    EXPECT_EQ(util.SetFrameDelay(BT_IMAGE, -1, 5), 0);
    EXPECT_EQ(util.CreateBitmapFromData(2, 2, exact.data(), BT_IMAGE, 512), 0);
    EXPECT_EQ(util.NLoadBitmap(DataFile("wine/image/still.bmp").c_str(), BT_IMAGE, 600), nullptr);
    EXPECT_EQ(util.AlphaBlendBitmapsBGPos(2, 0, 0, 0, -3), -1);
    EXPECT_EQ(util.GetBackgroundStatic(nullptr, 0, 0, 2, 2, 0, 512), nullptr);
    EXPECT_EQ(util.CreateColorBackground(0, 0, 700), 0);
    EXPECT_EQ(util.Clone(BT_IMAGE, 5, BT_RESULT, 512), 0);
    EXPECT_EQ(util.SaveBitmap(L"x.bmp", BF_BMP, BT_IMAGE, 512), 0);
}

TEST(ImageStore, IsFileValidRules)
{
    ScratchFolder scratch;
    using Bytes = std::vector<uint8_t>;
    auto valid = [&](const wchar_t* name, const Bytes& bytes) {
        return CNBitmapUtil::IsFileValid(scratch.Write(name, bytes).c_str());
    };
    EXPECT_EQ(valid(L"nine.txt", Bytes(9, 'a')), 0);
    EXPECT_EQ(valid(L"ten.wbmp", Bytes(10, 0)), 1);
    Bytes gif = {'G', 'I', 'F', '8', '9', 'a', 0, 0, 0, 0, 0x3B};
    EXPECT_EQ(valid(L"a.GIF", gif), 1);
    gif.back() = 0;
    EXPECT_EQ(valid(L"b.gif", gif), 0);      // no trailer as its last byte
    EXPECT_EQ(valid(L"b.gif.txt", gif), 1);  // not a gif name: only the length counts
    EXPECT_EQ(valid(L"c.bmp", {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0}), 1);
    EXPECT_EQ(valid(L"d.bmp", {'M', 'B', 0, 0, 0, 0, 0, 0, 0, 0}), 0);
    EXPECT_EQ(valid(L"e.png", {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 7, 7}), 1);
    EXPECT_EQ(valid(L"f.png", {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0B, 7, 7}), 0);
    EXPECT_EQ(valid(L"g.jpeg", {0xFF, 0xD8, 0, 0, 0, 0, 0, 0, 0, 0}), 1);
    EXPECT_EQ(valid(L"h.jpg", {0xFF, 0xD9, 0, 0, 0, 0, 0, 0, 0, 0}), 0);
    EXPECT_EQ(CNBitmapUtil::IsFileValid(scratch.File(L"missing.txt").c_str()), 0);
    EXPECT_EQ(CNBitmapUtil::IsFileValid(nullptr), 0);
}

TEST(ImageStore, SaveBitmapFormatsAndErrors)
{
    TestBitmapUtil util;
    ScratchFolder scratch;
    const std::wstring file = scratch.File(L"out.bin");
    EXPECT_RESULT_ERROR(util, util.SaveBitmap(file.c_str(), BF_BMP, BT_IMAGE, 0), 0, ZBU_NO_BITMAP);
    ASSERT_TRUE(MakeSolid(util, BT_IMAGE, 0, 1, 1, 0x0A0B0C));
    EXPECT_RESULT_ERROR(util, util.SaveBitmap(nullptr, BF_BMP, BT_IMAGE, 0), 0, ZBU_BAD_ARG1);
    // JPEG and GIF are refused; an unknown format answers with the rows read. Neither writes anything.
    EXPECT_RESULT_ERROR(util, util.SaveBitmap(file.c_str(), static_cast<BitmapFormat>(9), BT_IMAGE, 0), 1, ZBU_OK);
    for (BitmapFormat refused : {BF_JPEG, BF_GIF})
        EXPECT_RESULT_ERROR(util, util.SaveBitmap(file.c_str(), refused, BT_IMAGE, 0), 0, ZBU_BAD_FORMAT);
    EXPECT_EQ(GetFileAttributesW(file.c_str()), INVALID_FILE_ATTRIBUTES);
    util.SetJPEGCompressionFactor(200);
    EXPECT_RESULT_ERROR(util, util.EncodeSaveJPEG(nullptr, nullptr, nullptr), 0, ZBU_BAD_FORMAT);
    util.SetJPEGCompressionFactor(200);
    EXPECT_RESULT_ERROR(util, util.EncodeSaveGIF(nullptr, nullptr, 0), 0, ZBU_BAD_FORMAT);

    // A 1 x 1 BMP is 58 bytes and says so after "BM" (the platform's reader ignores that length).
    const std::wstring bmp = scratch.File(L"one.bmp");
    ASSERT_EQ(util.SaveBitmap(bmp.c_str(), BF_BMP, BT_IMAGE, 0), 58);
    std::vector<uint8_t> head = ReadBytes(bmp);
    head.resize(4);
    EXPECT_EQ(head, (std::vector<uint8_t>{'B', 'M', 58, 0}));
    // BMP and PNG round trips are exact at 24 bits (rows padded to 4 in the BMP); the PNG writer answers with the
    // file's length.
    ASSERT_TRUE(MakeFrame(util, BT_BACKGROUND, 2, 13, 6, Gradient));
    const std::wstring bmp2 = scratch.File(L"grad.bmp");
    const std::wstring png = scratch.File(L"grad.png");
    EXPECT_EQ(util.SaveBitmap(bmp2.c_str(), BF_BMP, BT_BACKGROUND, 2), 54 + 40 * 6);
    const int pngBytes = util.SaveBitmap(png.c_str(), BF_PNG, BT_BACKGROUND, 2);
    EXPECT_EQ(pngBytes, static_cast<int>(ReadBytes(png).size()));
    for (const std::wstring& path : {bmp2, png}) {
        TestBitmapUtil back;
        ASSERT_NE(back.NLoadBitmap(path.c_str(), BT_IMAGE, 0), nullptr);
        const Pixels p = ReadFrame(back, BT_IMAGE, 0);
        ASSERT_EQ(p.width, 13);
        for (int i = 0; i < 13 * 6; ++i)
            ASSERT_EQ(p.At(i % 13, i / 13), Gradient(i % 13, i / 13)) << i;
    }
    EXPECT_RESULT_ERROR(util, util.SaveBitmap(scratch.File(L"no\\such\\folder.bmp").c_str(), BF_BMP, BT_IMAGE, 0), 0,
                        ZBU_WRITE_FAILED);
}

TEST(ImageStore, LoadBitmapFromResourceByEachRouteTheExportAndSetBitmap)
{
    HMODULE theme =
        LoadLibraryExW((BinDir() + L"\\Resource\\ZCMOD_Test.zgr").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(theme, nullptr);
    TestBitmapUtil util;
    // A BITMAP resource.
    ASSERT_NE(util.NLoadBitmap(theme, 800, BT_IMAGE, 0), nullptr);
    EXPECT_EQ(ReadFrame(util, BT_IMAGE, 0).At(3, 2), 0xC86432u);
    // A PNG in a named type, RGBA: the plane comes along in BT_ALPHA at the same index, and the error is cleared
    // because the frame exists. The 5 x 3 frame of another geometry is gone.
    util.SetJPEGCompressionFactor(999);
    ASSERT_NE(util.NLoadBitmap(theme, 801, BT_IMAGE, 6), nullptr);
    EXPECT_EQ(util.GetLastError(), ZBU_OK);
    EXPECT_EQ(util.GetBitmapHandle(BT_IMAGE, 0), nullptr);
    EXPECT_EQ(ReadFrame(util, BT_ALPHA, 6).At(1, 0), 0xFFFFFFu);
    // A WBMP and an OTA picture in named types, through the temporary file.
    ASSERT_NE(util.NLoadBitmap(theme, 802, BT_BACKGROUND, 1), nullptr);
    EXPECT_EQ(util.GetBitmapWidth(BT_BACKGROUND), 13);
    ASSERT_NE(util.NLoadBitmap(theme, 805, BT_RESULT, 0), nullptr);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 0).At(0, 0), 0u);
    EXPECT_EQ(ReadFrame(util, BT_RESULT, 0).At(1, 0), 0xFFFFFFu);

    // A JPEG in a named type reaches only the WBMP and OTA decoders; a numbered type is not searched; an empty
    // resource has no bytes.
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(theme, 803, BT_IMAGE_RESIZED, 0), nullptr, ZBU_BAD_FORMAT);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(theme, 804, BT_IMAGE_RESIZED, 0), nullptr, ZBU_RESOURCE_NOT_FOUND);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(theme, 806, BT_IMAGE_RESIZED, 0), nullptr, ZBU_RESOURCE_EMPTY);
    // Argument checks, with the protected form's own numbering.
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(static_cast<HINSTANCE>(nullptr), 800, BT_IMAGE, 0), nullptr,
                        ZBU_BAD_ARG1);
    EXPECT_RESULT_ERROR(util, util.NLoadBitmap(theme, 0, BT_IMAGE, 0), nullptr, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.LoadBitmapFromRes(theme, 800, static_cast<BitmapType>(12), 0), nullptr,
                        ZBU_BAD_ARG1);
    EXPECT_RESULT_ERROR(util, util.LoadBitmapFromRes(nullptr, 800, BT_IMAGE, 0), nullptr, ZBU_BAD_ARG2);
    EXPECT_RESULT_ERROR(util, util.LoadBitmapFromRes(theme, 0, BT_IMAGE, 0), nullptr, ZBU_BAD_ARG3);
    FreeLibrary(theme);

    // The temporary files are removed again.
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    WIN32_FIND_DATAW found;
    HANDLE find = FindFirstFileW((std::wstring(temp) + L"ZBU*.tmp").c_str(), &found);
    EXPECT_EQ(find, INVALID_HANDLE_VALUE);
    if (find != INVALID_HANDLE_VALUE)
        FindClose(find);

    // The exported loader reads the user's theme; the copy is the caller's.
    SuiteRegistry registry;
    registry.SetUserTheme(L"Test");
    HBITMAP copy = ZCMOD_LoadBitmap(800);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(ZCMOD_LoadBitmap(4321), nullptr);
    ASSERT_EQ(util.CreateBitmapFromHandle(copy, BT_RESULT_RESIZED, 2), 1);
    DeleteObject(copy);
    EXPECT_EQ(util.GetBitmapWidth(BT_RESULT_RESIZED), 5);
    EXPECT_EQ(ReadFrame(util, BT_RESULT_RESIZED, 2).At(0, 0), 0xFF0000u);

    // SetBitmap shows a frame in a static control; the store keeps it.
    HWND stat = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | SS_BITMAP, 0, 0, 10, 10, nullptr, nullptr,
                                GetModuleHandleW(nullptr), nullptr);
    EXPECT_EQ(util.SetBitmap(stat, BT_RESULT_RESIZED, 2), util.GetBitmapHandle(BT_RESULT_RESIZED, 2));
    EXPECT_EQ(reinterpret_cast<HBITMAP>(SendMessageW(stat, STM_GETIMAGE, IMAGE_BITMAP, 0)),
              util.GetBitmapHandle(BT_RESULT_RESIZED, 2));
    EXPECT_EQ(util.SetBitmap(stat, BT_RESULT_RESIZED, 3), nullptr);
    EXPECT_RESULT_ERROR(util, util.SetBitmap(nullptr, BT_RESULT_RESIZED, 2), nullptr, ZBU_BAD_ARG1);
    SendMessageW(stat, STM_SETIMAGE, IMAGE_BITMAP, 0);
    DestroyWindow(stat);
}
