// The bitmap primitives of CVuikLib and the paint primitives: CVuikBitmap, CVuikGraphics and
// CVuikResourceManager, checked by the pixels they make.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "Golden.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

using namespace zcmod_test;
using namespace testskin;

namespace {

constexpr UINT kColumns = 900;  // RGBA 10 x 10: red 20x + 5, green 20y + 5, blue 100; mask 25x
constexpr UINT kOpaque = 901;   // RGB 3 x 2, no mask
constexpr UINT kMissing = 949;

uint32_t ColumnsPixel(int x, int y)
{
    return static_cast<uint32_t>((20 * x + 5) << 16 | (20 * y + 5) << 8 | 100);
}
uint32_t ColumnsMask(int x, int)
{
    return 0x010101u * static_cast<uint32_t>(25 * x);
}
// Whether `bitmap` shows the columns picture and its mask, as drawn or turned round.
bool ShowsColumns(CVuikBitmap* bitmap, bool turned)
{
    auto at = [turned](int x) { return turned ? 9 - x : x; };
    return ReadBitmap(bitmap->GetPrimary()).Is([&](int x, int y) { return ColumnsPixel(at(x), y); }) &&
           ReadBitmap(bitmap->GetMask()).Is([&](int x, int y) { return ColumnsMask(at(x), y); });
}
HBITMAP MakeSolid(int w, int h, uint32_t rgb)
{
    return MakeSection(w, h, [rgb](int, int) { return rgb; });
}

uint32_t Blend(uint32_t mask, uint32_t under, uint32_t image)
{
    uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t m = mask >> shift & 0xFF, u = under >> shift & 0xFF, i = image >> shift & 0xFF;
        result |= ((u * m + (255 - m) * i) >> 8) << shift;
    }
    return result;
}

HMODULE TestTheme()
{
    static HMODULE theme =
        LoadLibraryExW((BinDir() + L"\\Resource\\ZCMOD_Test.zgr").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    return theme;
}

// Deletes the GDI objects it was handed at the end of the scope.
struct Trash {
    std::vector<HGDIOBJ> objects;
    ~Trash()
    {
        for (HGDIOBJ o : objects)
            DeleteObject(o);
    }
    template <class H>
    H operator()(H object)
    {
        objects.push_back(object);
        return object;
    }
};

}  // namespace

TEST(SkinPrimitives, BlendThroughTheMask)
{
    auto maskOf = [](int x, int y) { return static_cast<uint32_t>((x * 70) << 16 | (y * 120) << 8 | 128); };
    auto underOf = [](int x, int y) { return static_cast<uint32_t>(0x102030 + x * 0x010000 + y * 0x40); };
    auto imageOf = [](int x, int y) { return static_cast<uint32_t>(0xF0E0D0 - x * 0x100 - y * 0x1F0000); };
    // Widths whose rows are (4) and aren't (3) a multiple of 4 bytes: the spare bytes change nothing.
    for (int w : {3, 4}) {
        Trash trash;
        HBITMAP mask = trash(MakeSection(w, 2, maskOf)), under = trash(MakeSection(w, 2, underOf)),
                image = trash(MakeSection(w, 2, imageOf)), large = trash(MakeSection(w + 2, 5, underOf));
        EXPECT_TRUE(ReadBitmap(trash(CVuikLib::BlendBitmap(mask, under, image))).Is([&](int x, int y) {
            return Blend(maskOf(x, y), underOf(x, y), imageOf(x, y));
        })) << "width "
            << w;
        // Over a colour (COLORREF), and over the part of a larger background at an offset.
        EXPECT_TRUE(
            ReadBitmap(trash(CVuikLib::BlendBitmapColor(mask, image, RGB(0x11, 0x22, 0x33)))).Is([&](int x, int y) {
                return Blend(maskOf(x, y), 0x112233, imageOf(x, y));
            }));
        EXPECT_TRUE(
            ReadBitmap(trash(CVuikLib::BlendBitmapOffset(mask, large, image, POINT{2, 3}))).Is([&](int x, int y) {
                return Blend(maskOf(x, y), underOf(x + 2, y + 3), imageOf(x, y));
            }));
        for (POINT past : {POINT{3, 3}, POINT{2, 4}})
            EXPECT_EQ(CVuikLib::BlendBitmapOffset(mask, large, image, past), nullptr);
        EXPECT_EQ(CVuikLib::BlendBitmap(mask, under, nullptr), nullptr);
        EXPECT_EQ(CVuikLib::BlendBitmap(nullptr, under, image), nullptr);
    }
}

TEST(SkinPrimitives, TilesAndColourFills)
{
    Trash trash;
    auto tileOf = [](int x, int y) { return static_cast<uint32_t>(0x400000 + x * 0x0A0000 + y * 0x10 + 1); };
    // 10 x 5 into 25 x 12: tiles 10, 10 and 5 wide, rows repeated at 0, 5 and 10, the last 2 high.
    HBITMAP tiled = trash(CVuikLib::TileBitmap(trash(MakeSection(10, 5, tileOf)), SIZE{25, 12}));
    EXPECT_TRUE(ReadBitmap(tiled).Is([&](int x, int y) { return tileOf(x % 10, y % 5); }));
    // 10 x 30 into 20 x 100: the height 30 is compared with the width 20, so the tile is 100 high and copied
    // once; rows past the bitmap's 30 don't repeat it.
    Capture p = ReadBitmap(trash(CVuikLib::TileBitmap(trash(MakeSection(10, 30, tileOf)), SIZE{20, 100})));
    ASSERT_EQ(p.height, 100);
    for (int i = 0; i < 20 * 30; ++i)
        ASSERT_EQ(p.At(i % 20, i / 20), tileOf(i % 10, i / 20)) << i;
    for (int y : {30, 60, 99})
        EXPECT_NE(p.At(0, y), tileOf(0, y % 30)) << y;
    // Without a bitmap the result is made and left as it is.
    EXPECT_EQ(ReadBitmap(trash(CVuikLib::TileBitmap(nullptr, SIZE{3, 2}))).width, 3);
    EXPECT_TRUE(ReadBitmap(trash(CVuikLib::CreateColorBitmap(RGB(1, 2, 3), SIZE{4, 3}))).Is([](int, int) {
        return 0x010203u;
    }));
}

TEST(SkinPrimitives, RegionsOfThePixelsThatDontMatch)
{
    Trash trash;
    // The colour is given as the pixel stands in memory (blue low), not as a COLORREF. A picture wholly of
    // it gives an empty region, not none.
    HBITMAP one = trash(MakeSolid(1, 1, 0x010203));
    HRGN region = trash(CVuikLib::BitmapToRegion(one, 0x010203, 0));
    RECT box = {};
    ASSERT_NE(region, nullptr);
    EXPECT_EQ(GetRgnBox(region, &box), NULLREGION);
    EXPECT_TRUE(PtInRegion(trash(CVuikLib::BitmapToRegion(one, RGB(1, 2, 3), 0)), 0, 0));
    EXPECT_EQ(CVuikLib::BitmapToRegion(nullptr, 0, 0), nullptr);
    // The colour match is the core's rule (its table is in the native tests); the library's entry reaches it.
    EXPECT_EQ(CVuikLib::TestColorMatch(0, 1, 0x100), 1);
    EXPECT_EQ(CVuikLib::TestColorMatch(1, 0, 0x100), 0);
    // The walk over the runs (full records of 2,000 combined) is shared with the image store's regions, whose
    // test holds it.
}

TEST(SkinPrimitives, MirrorsOfBitmapsAndIcons)
{
    Trash trash;
    auto colourOf = [](int x, int y) { return static_cast<uint32_t>(x * 0x200000 + y * 0x30 + 7); };
    auto flippedOf = [&](int x, int y) { return colourOf(4 - x, y); };
    HBITMAP bitmap = trash(MakeSection(5, 3, colourOf));
    EXPECT_TRUE(ReadBitmap(trash(CVuikLib::CreateMirroredBitmap(bitmap))).Is(flippedOf));
    EXPECT_TRUE(ReadBitmap(bitmap).Is(colourOf));
    // Turning a bitmap round in place is what every picture's load does under right to left: the right-to-left
    // goldens of the skinned families hold it.
    EXPECT_EQ(CVuikLib::MirrorBitmap(reinterpret_cast<HBITMAP>(trash(CreateSolidBrush(0)))), 0);
    EXPECT_EQ(CVuikLib::MirrorBitmap(nullptr), 0);
    EXPECT_EQ(CVuikLib::CreateMirroredBitmap(nullptr), nullptr);

    // An icon whose left two columns are transparent: mirrored, its image and its mask turn round.
    const BYTE maskRows[] = {0xC0, 0, 0xC0, 0, 0xC0, 0};  // rows of two bytes, the leftmost pixel highest
    ICONINFO info = {TRUE, 0, 0, trash(CreateBitmap(5, 3, 1, 1, maskRows)), bitmap};
    HICON icon = CreateIconIndirect(&info);
    HICON mirrored = CVuikLib::CreateMirroredIcon(icon);
    ASSERT_NE(mirrored, nullptr);
    EXPECT_TRUE(ReadBitmap(trash(CVuikLib::IconToBitmap(mirrored, DI_IMAGE))).Is(flippedOf));
    EXPECT_TRUE(ReadBitmap(trash(CVuikLib::IconToBitmap(mirrored, DI_MASK))).Is([](int x, int) {
        return x >= 3 ? 0xFFFFFFu : 0u;
    }));
    EXPECT_TRUE(ReadBitmap(trash(CVuikLib::IconToBitmap(icon, DI_IMAGE))).Is(colourOf));
    EXPECT_EQ(CVuikLib::IconToBitmap(nullptr, DI_NORMAL), nullptr);
    EXPECT_EQ(CVuikLib::CreateMirroredIcon(nullptr), nullptr);
    DestroyIcon(icon);
    DestroyIcon(mirrored);
}

TEST(SkinPrimitives, ManagerSharesPicturesByKey)
{
    HMODULE theme = TestTheme();
    ASSERT_NE(theme, nullptr);
    auto count = [&](UINT id, int mirror) { return CVuikResourceManager::GetReferenceCount(theme, id, mirror); };
    CVuikBitmap *a = nullptr, *b = nullptr, *flipped = nullptr, *missing = nullptr;
    // Two slots, one object with a count of 2; a full slot is refused and the count stays.
    ASSERT_TRUE(CVuikResourceManager::LoadBitmapW(&a, theme, kColumns, 0, L"ignored"));
    ASSERT_TRUE(CVuikResourceManager::LoadBitmapW(&b, theme, kColumns, 0, nullptr));
    EXPECT_EQ(a, b);
    EXPECT_FALSE(CVuikResourceManager::LoadBitmapW(&b, theme, kOpaque, 0, nullptr));
    EXPECT_EQ(b, a);
    EXPECT_EQ(count(kColumns, 0), 2);
    // Mirror flag 1 is another picture, with its own count, turned round.
    ASSERT_TRUE(CVuikResourceManager::LoadBitmapW(&flipped, theme, kColumns, 1, nullptr));
    EXPECT_NE(flipped, a);
    EXPECT_EQ(count(kColumns, 1), 1);
    EXPECT_TRUE(ShowsColumns(flipped, true));
    // An unknown picture, an empty slot pointer and a picture that isn't the manager's are refused.
    EXPECT_FALSE(CVuikResourceManager::LoadBitmapW(&missing, theme, kMissing, 0, nullptr));
    EXPECT_EQ(missing, nullptr);
    EXPECT_EQ(count(kMissing, 0), 0);
    EXPECT_FALSE(CVuikResourceManager::LoadBitmapW(nullptr, theme, kColumns, 0, nullptr));
    CVuikBitmap own;
    CVuikBitmap* ownSlot = &own;
    EXPECT_FALSE(CVuikResourceManager::UnloadBitmap(&ownSlot));
    EXPECT_EQ(ownSlot, &own);
    EXPECT_FALSE(CVuikResourceManager::UnloadBitmap(&missing));
    // Releases (that the last one deletes the picture, the handle-hygiene tests of the skinned families show).
    EXPECT_TRUE(CVuikResourceManager::UnloadBitmap(&a));
    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(count(kColumns, 0), 1);
    EXPECT_TRUE(CVuikResourceManager::UnloadBitmap(&b));
    EXPECT_TRUE(CVuikResourceManager::UnloadBitmap(&flipped));
    EXPECT_EQ(count(kColumns, 0) + count(kColumns, 1), 0);
}

TEST(SkinPrimitives, LoadScalesAndMirrorsAsTheLibrarySays)
{
    LibraryState restore;
    HMODULE theme = TestTheme();
    // {auto scale, x, y, size}: both scales must differ from 1.
    const double cases[][4] = {{0, 1.25, 1.25, 10}, {1, 1.25, 1.0, 10}, {1, 1.0, 1.25, 10}, {1, 1.25, 1.25, 12}};
    for (const auto& c : cases) {
        CVuikLib::SetAutoScale(c[0] != 0);
        Lib::m_ScaleX = c[1];
        Lib::m_ScaleY = c[2];
        CVuikBitmap bitmap;
        bitmap.LoadFromRes(theme, kColumns);
        EXPECT_EQ((std::vector<int>{bitmap.GetWidth(), bitmap.GetHeight(), ReadBitmap(bitmap.GetMask()).width}),
                  std::vector<int>(3, static_cast<int>(c[3])));
        EXPECT_EQ(bitmap.IsScaled(), c[3] == 12);
    }
    CVuikLib::SetAutoScale(false);

    // Left to right the picture is as drawn. Right to left it is turned round with its mask (the right-to-left
    // goldens of every skinned family show that), and mirror flag 1 turns it back.
    CVuikBitmap plain;
    plain.LoadFromRes(theme, kColumns);
    EXPECT_TRUE(ShowsColumns(&plain, false));
    CVuikLib::SetLayout(LAYOUT_RTL);
    CVuikBitmap* kept = nullptr;
    ASSERT_TRUE(CVuikResourceManager::LoadBitmapW(&kept, theme, kColumns, 1, nullptr));
    EXPECT_TRUE(ShowsColumns(kept, false));
    CVuikResourceManager::UnloadBitmap(&kept);
    CVuikLib::SetLayout(0);

    // GetPixel reads the padded top-down copy (rows of 32 bytes here) at 3x + 4y, whatever the width.
    EXPECT_EQ(plain.GetPixel(8, 26), ColumnsPixel(0, 4));   // byte 128: the first pixel of row 4
    EXPECT_EQ(plain.GetPixel(105, 0), ColumnsPixel(9, 9));  // byte 315: the last pixel of the last row
    EXPECT_EQ(plain.GetPixel(106, 0), 0xFFFFFFFFu);         // byte 318: its last byte would be past the copy
    EXPECT_EQ(plain.GetPixel(-1, 0), 0xFFFFFFFFu);
    EXPECT_EQ(CVuikBitmap().GetPixel(0, 0), 0xFFFFFFFFu);

    // A load replaces what the object showed: a picture without alpha has no mask, a missing one no primary.
    plain.LoadFromRes(theme, kOpaque);
    EXPECT_EQ(plain.GetWidth(), 3);
    EXPECT_EQ(plain.GetMask(), nullptr);
    plain.LoadFromRes(theme, kMissing);
    EXPECT_EQ(plain.GetPrimary(), nullptr);
}

TEST(SkinPrimitives, AttachDetachAndSnapshots)
{
    Trash trash;
    CVuikBitmap bitmap;
    bitmap.LoadFromRes(TestTheme(), kOpaque);
    HBITMAP loaded = bitmap.GetPrimary();
    // Attach deletes the present primary, the store's frame included, and takes the new one.
    HBITMAP own = trash(MakeSolid(4, 6, 0x123456));
    bitmap.Attach(own);
    EXPECT_EQ(GetObjectType(loaded), 0u);
    EXPECT_EQ(bitmap.GetWidth(), 4);
    EXPECT_EQ(bitmap.Detach(), own);
    EXPECT_EQ(bitmap.GetPrimary(), nullptr);
    EXPECT_EQ(bitmap.GetHeight(), 0);

    // A snapshot of a context into the background store: reused at one size, replaced at another.
    Canvas dc(8, 8, [](int x, int y) { return static_cast<uint32_t>(x << 16 | y << 8); });
    EXPECT_EQ(bitmap.GetBackgroundStaticDC(dc, 0, 0, 0, 3, 0, 0), nullptr);
    EXPECT_EQ(bitmap.GetLastError(), ZBU_BAD_ARG4);
    EXPECT_EQ(bitmap.GetBackgroundStaticDC(dc, 0, 0, 3, 0, 0, 0), nullptr);
    EXPECT_EQ(bitmap.GetLastError(), ZBU_BAD_ARG5);
    HBITMAP shot = bitmap.GetBackgroundStaticDC(dc, 2, 3, 4, 2, 0, 1);
    EXPECT_EQ(shot, bitmap.GetBitmapHandle(BT_BACKGROUND, 1));
    EXPECT_TRUE(ReadBitmap(shot).Is([](int x, int y) { return static_cast<uint32_t>((x + 2) << 16 | (y + 3) << 8); }));
    EXPECT_EQ(bitmap.GetBackgroundStaticDC(dc, 0, 0, 4, 2, 0, 1), shot);
    EXPECT_EQ(ReadBitmap(shot).At(0, 0), 0u);
    bitmap.GetBackgroundStaticDC(dc, 0, 0, 6, 2, 0, 0);
    EXPECT_EQ(bitmap.GetBitmapHandle(BT_BACKGROUND, 1), nullptr);
}

// Each overload on a striped target, apart from the others: at the picture's own size, stretched to a size, into
// a rectangle, a part of it given as a rectangle and as x, y, width and height; a black and a white pixel
// stretched with HALFTONE into a run of greys; a grey mask stretched with its picture to 8 x 6 over the stripes.
// Nothing is drawn for no object, no primary or an empty rectangle: the stripes show there in the golden.
TEST(SkinPrimitives, DrawImageStretchesThenMasks)
{
    Trash trash;
    Canvas target(24, 16, [](int x, int) { return x % 2 ? 0xC8C8C8u : 0u; });
    CVuikGraphics graphics(target);
    auto pictureOf = [](int x, int y) { return static_cast<uint32_t>(0x300000 * (x + 1) + 0x40 * (y + 1)); };
    CVuikBitmap picture, pair, masked, empty;
    picture.Attach(trash(MakeSection(4, 2, pictureOf)));
    graphics.DrawImage(&picture, 1, 1);
    graphics.DrawImage(&picture, 6, 0, 8, 4);
    graphics.DrawImage(&picture, RECT{15, 0, 21, 3});
    graphics.DrawImage(&picture, RECT{22, 0, 24, 1}, RECT{2, 1, 4, 2});
    graphics.DrawImage(&picture, RECT{22, 2, 23, 4}, 1, 0, 1, 2);
    pair.Attach(trash(MakeSection(2, 1, [](int x, int) { return x ? 0xFFFFFFu : 0u; })));
    graphics.DrawImage(&pair, 0, 5, 12, 2);
    masked.Attach(trash(MakeSolid(2, 2, 0x3264C8)));
    masked.AttachMask(MakeSolid(2, 2, 0x808080));
    graphics.DrawImage(&masked, 14, 6, 8, 6);
    graphics.DrawImage(nullptr, 0, 8);
    graphics.DrawImage(nullptr, RECT{0, 8, 4, 12}, RECT{0, 0, 4, 4});
    graphics.DrawImage(&empty, RECT{0, 8, 4, 12});
    graphics.DrawImage(&masked, RECT{6, 8, 6, 12});
    const Capture c = target.Read();
    EXPECT_TRUE(MatchesGolden("skin_draw_image", c.width, c.height, c.pixels.data()));
}

TEST(SkinPrimitives, MaskedDrawWithoutStretchBlendsEveryPixelByTheRule)
{
    // A masked draw without a stretch blends through sections it reads and writes directly. Every pixel of
    // every kind of target (sections of 24 and 32 bits either way up, one with a clip region, a bitmap
    // compatible with the screen) and of every kind of picture must come out as the rule says. Odd sizes, a part
    // of the picture, an offset in the target, and a second draw over the first.
    Trash trash;
    auto pictureOf = [](int x, int y) { return static_cast<uint32_t>((x * 37) << 16 | (y * 53) << 8 | 255); };
    auto maskOf = [](int x, int y) { return static_cast<uint32_t>(0x010101u * ((x * 29 + y * 71) & 0xFF) ^ 0x7F00); };
    auto under = [](int x, int y) { return static_cast<uint32_t>((x * 11) << 16 | (y * 13) << 8 | 200); };
    const int w = 7, h = 5, tw = 11, th = 9;
    HDC screen = GetDC(nullptr);
    // A bitmap of `bits` bits a pixel (0: compatible with the screen; negative: top-down) painted with `colour`.
    auto make = [&](int bits, int width, int height, const Colour& colour) {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, bits < 0 ? -height : height, 1,
                          static_cast<WORD>(bits < 0 ? -bits : bits), BI_RGB, 0, 0, 0, 0, 0};
        HBITMAP bitmap = trash(bits ? CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0)
                                    : CreateCompatibleBitmap(screen, width, height));
        HDC dc = CreateCompatibleDC(screen);
        HGDIOBJ old = SelectObject(dc, bitmap);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)  // RGB keeps the low byte of each part
                SetPixelV(dc, x, y, RGB(colour(x, y) >> 16, colour(x, y) >> 8, colour(x, y)));
        SelectObject(dc, old);
        DeleteDC(dc);
        return bitmap;
    };
    // What the two draws below must leave.
    std::vector<uint32_t> expected(tw * th);
    for (int i = 0; i < tw * th; ++i)
        expected[i] = under(i % tw, i / tw);
    for (int y = 0; y < h - 2; ++y)
        for (int x = 0; x < w - 1; ++x)
            expected[(2 + y) * tw + 3 + x] = Blend(maskOf(1 + x, 1 + y), expected[(2 + y) * tw + 3 + x], pictureOf(1 + x, 1 + y));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            expected[y * tw + x] = Blend(maskOf(x, y), expected[y * tw + x], pictureOf(x, y));

    const struct {
        int bits;  // as for the pictures
        bool clip;
    } targets[] = {{-32, false}, {32, false}, {24, false}, {-24, false}, {-32, true}, {0, false}};
    for (int pictureBits : {24, 32, -24, -32, 0})
        for (const auto& t : targets) {
            CVuikBitmap masked;
            masked.Attach(make(pictureBits, w, h, pictureOf));
            masked.AttachMask(make(pictureBits, w, h, maskOf));
            HBITMAP canvas = make(t.bits, tw, th, under);
            HDC dc = CreateCompatibleDC(screen);
            HGDIOBJ old = SelectObject(dc, canvas);
            HRGN clip = trash(CreateRectRgn(0, 0, 9, 9));
            if (t.clip)
                SelectClipRgn(dc, clip);
            CVuikGraphics graphics(dc);
            graphics.DrawImage(&masked, RECT{3, 2, 3 + w - 1, 2 + h - 2}, RECT{1, 1, w, h - 1});
            graphics.DrawImage(&masked, 0, 0);
            SelectObject(dc, old);
            DeleteDC(dc);
            EXPECT_TRUE(ReadBitmap(canvas).Is([&](int x, int y) { return expected[y * tw + x]; }))
                << pictureBits << "-bit picture on a " << t.bits << "-bit target" << (t.clip ? ", clipped" : "");
        }
    ReleaseDC(nullptr, screen);
}
