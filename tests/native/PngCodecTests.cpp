// PNG through libpng: libpng's own PNG suite, hostile and truncated input, and the 24-bit writer.
#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include <dirent.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <regex>
#include <string>
#include <vector>

#include "ImageFixtures.h"
#include "image/core/PngCodec.h"

using namespace zcmod;
using namespace zcmod_test;

namespace {

using Bytes = std::vector<uint8_t>;

const std::string kSuite = ZCMOD_PNGSUITE_DIR;

std::string SuiteFile(const std::string& name)
{
    return kSuite + "/" + name;
}

// The picture as libpng itself expands it: palette and grey to RGB, 16 bits to their high byte, alpha (or
// tRNS turned into alpha) kept apart. A second route through the library, to check ours against.
struct Reference {
    int width = 0;
    int height = 0;
    Bytes rgb;    // top-down red, green, blue
    Bytes alpha;  // empty without an alpha channel
};

bool ReadReference(const std::string& path, Reference& ref)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file)
        return false;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    volatile bool ok = false;
    if (!setjmp(png_jmpbuf(png))) {
        png_init_io(png, file);
        png_read_png(png, info, PNG_TRANSFORM_EXPAND | PNG_TRANSFORM_STRIP_16 | PNG_TRANSFORM_GRAY_TO_RGB, nullptr);
        ref.width = static_cast<int>(png_get_image_width(png, info));
        ref.height = static_cast<int>(png_get_image_height(png, info));
        const int channels = png_get_channels(png, info);
        png_bytepp rows = png_get_rows(png, info);
        for (int y = 0; y < ref.height; ++y)
            for (int x = 0; x < ref.width; ++x) {
                const png_bytep p = rows[y] + x * channels;
                ref.rgb.insert(ref.rgb.end(), p, p + 3);
                if (channels == 4)
                    ref.alpha.push_back(p[3]);
            }
        ok = channels == 3 || channels == 4;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return ok;
}

std::vector<std::string> SuiteNames()
{
    std::vector<std::string> names;
    if (DIR* dir = opendir(kSuite.c_str())) {
        while (dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".png") == 0)
                names.push_back(name);
        }
        closedir(dir);
    }
    return names;
}

Bytes At(const PngImage& image, int x, int y)
{
    const size_t i = (static_cast<size_t>(y) * image.width + x) * 3;
    return Bytes(image.pixels.begin() + i, image.pixels.begin() + i + 3);
}

uint8_t PlaneAt(const PngImage& image, int x, int y)
{
    const size_t i = (static_cast<size_t>(y) * image.width + x) * 3;
    EXPECT_EQ(image.plane[i], image.plane[i + 1]);
    EXPECT_EQ(image.plane[i], image.plane[i + 2]);
    return image.plane[i];
}

PngStatus DecodeFile(const std::string& path, PngImage& image)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file)
        return PngStatus::NotPng;
    const PngStatus status = DecodePngFile(file, image);
    std::fclose(file);
    return status;
}

PngStatus DecodeBytes(const Bytes& bytes, PngImage& image)
{
    return DecodePngMemory(bytes.data(), bytes.size(), image);
}

Bytes Chunk(const char* type, const Bytes& data)
{
    Bytes out = {static_cast<uint8_t>(data.size() >> 24), static_cast<uint8_t>(data.size() >> 16),
                 static_cast<uint8_t>(data.size() >> 8), static_cast<uint8_t>(data.size())};
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), data.begin(), data.end());
    uLong crc = crc32(0, reinterpret_cast<const Bytef*>(type), 4);
    if (!data.empty())  // a null buffer would make crc32 return its initial value
        crc = crc32(crc, data.data(), static_cast<uInt>(data.size()));
    for (int s = 24; s >= 0; s -= 8)
        out.push_back(static_cast<uint8_t>(crc >> s));
    return out;
}

Bytes HeaderOnly(uint32_t width, uint32_t height, uint8_t depth, uint8_t colorType)
{
    Bytes file = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    const Bytes ihdr = {static_cast<uint8_t>(width >> 24),
                        static_cast<uint8_t>(width >> 16),
                        static_cast<uint8_t>(width >> 8),
                        static_cast<uint8_t>(width),
                        static_cast<uint8_t>(height >> 24),
                        static_cast<uint8_t>(height >> 16),
                        static_cast<uint8_t>(height >> 8),
                        static_cast<uint8_t>(height),
                        depth,
                        colorType,
                        0,
                        0,
                        0};
    const Bytes c = Chunk("IHDR", ihdr);
    file.insert(file.end(), c.begin(), c.end());
    return file;
}

}  // namespace

TEST(PngSuite, EveryFileFollowsTheTable)
{
    const std::vector<std::string> names = SuiteNames();
    ASSERT_GE(names.size(), 40u) << "the PNG suite is missing at " << kSuite << " (scripts/bootstrap.sh makes it)";
    const std::regex kind("([0-9])[a-z]([0-9]{2})\\.png$");
    int checked = 0;
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        std::smatch m;
        ASSERT_TRUE(std::regex_search(name, m, kind));
        const int colorType = std::stoi(m[1]);
        const int depth = std::stoi(m[2]);
        const int channels = colorType == 2 ? 3 : colorType == 4 ? 2 : colorType == 6 ? 4 : 1;
        const int b = depth * channels / 8;

        const Bytes bytes = ReadFileBytes(SuiteFile(name));
        PngImage image;
        const PngStatus status = DecodeBytes(bytes, image);
        PngImage fromFile;
        EXPECT_EQ(DecodeFile(SuiteFile(name), fromFile), status);
        EXPECT_EQ(fromFile.pixels, image.pixels);
        EXPECT_EQ(fromFile.plane, image.plane);
        EXPECT_EQ(image.bytesPerPixel, b);
        if (b < 1) {
            EXPECT_EQ(status, PngStatus::TooShallow);
            EXPECT_EQ(image.width, 32);  // width and height are known
            EXPECT_TRUE(image.pixels.empty());
            continue;
        }
        ASSERT_EQ(status, PngStatus::Ok);
        Reference ref;
        ASSERT_TRUE(ReadReference(SuiteFile(name), ref));
        ASSERT_EQ(image.width, ref.width);
        ASSERT_EQ(image.height, ref.height);
        ASSERT_EQ(image.pixels.size(), static_cast<size_t>(ref.width) * ref.height * 3);
        EXPECT_EQ(image.plane.empty(), b != 4);
        if (colorType == 4 && depth == 16)
            continue;  // four bytes per pixel read as RGBA bytes: checked on its own below
        // Everything else is the library's expansion, reversed to blue, green, red, with tRNS ignored.
        size_t mismatches = 0;
        for (size_t i = 0; i < ref.rgb.size(); i += 3)
            if (image.pixels[i] != ref.rgb[i + 2] || image.pixels[i + 1] != ref.rgb[i + 1] ||
                image.pixels[i + 2] != ref.rgb[i])
                ++mismatches;
        EXPECT_EQ(mismatches, 0u);
        if (b == 4) {
            ASSERT_EQ(ref.alpha.size(), static_cast<size_t>(ref.width) * ref.height);
            for (size_t i = 0; i < ref.alpha.size(); ++i)
                ASSERT_EQ(image.plane[3 * i], 255 - ref.alpha[i]) << i;
        }
        ++checked;
    }
    EXPECT_GE(checked, 25);
}

TEST(PngSuite, PixelValuesOfTheTable)
{
    PngImage image;
    // 8-bit palette: the entries' colours (values as ImageMagick reports them).
    ASSERT_EQ(DecodeFile(SuiteFile("basn3p08.png"), image), PngStatus::Ok);
    EXPECT_EQ(image.bytesPerPixel, 1);
    EXPECT_EQ(At(image, 0, 0), (Bytes{0, 0, 1}));
    EXPECT_EQ(At(image, 6, 1), (Bytes{0, 10, 17}));
    EXPECT_EQ(At(image, 31, 31), (Bytes{255, 254, 255}));
    EXPECT_TRUE(image.plane.empty());

    // 8-bit grey with alpha: opaque grey.
    ASSERT_EQ(DecodeFile(SuiteFile("basn4a08.png"), image), PngStatus::Ok);
    EXPECT_EQ(image.bytesPerPixel, 2);
    EXPECT_EQ(At(image, 5, 3), (Bytes{230, 230, 230}));
    EXPECT_EQ(At(image, 0, 0), (Bytes{255, 255, 255}));  // alpha 0 there, and no plane
    EXPECT_TRUE(image.plane.empty());

    // 8-bit RGBA: the plane is 255 - alpha.
    ASSERT_EQ(DecodeFile(SuiteFile("basn6a08.png"), image), PngStatus::Ok);
    EXPECT_EQ(image.bytesPerPixel, 4);
    EXPECT_EQ(At(image, 0, 0), (Bytes{8, 0, 255}));
    EXPECT_EQ(PlaneAt(image, 0, 0), 255);  // alpha 0
    EXPECT_EQ(PlaneAt(image, 5, 0), 255 - 41);
    EXPECT_EQ(At(image, 10, 9), (Bytes{6, 255, 224}));
    EXPECT_EQ(PlaneAt(image, 10, 9), 255 - 82);

    // 16-bit RGBA: the high bytes, and the alpha is dropped.
    ASSERT_EQ(DecodeFile(SuiteFile("basn6a16.png"), image), PngStatus::Ok);
    EXPECT_EQ(image.bytesPerPixel, 8);
    EXPECT_EQ(At(image, 2, 3), (Bytes{0x00, 0xF6, 0xFF}));  // (65535, 63107, 0, 8457)
    EXPECT_TRUE(image.plane.empty());

    // 16-bit grey: the high byte three times.
    ASSERT_EQ(DecodeFile(SuiteFile("basn0g16.png"), image), PngStatus::Ok);
    EXPECT_EQ(At(image, 5, 3), (Bytes{0x33, 0x33, 0x33}));  // 13056

    // 16-bit grey with alpha has 4 bytes per pixel and is read as if they were R, G, B, A:
    // grey 0x28F5 and alpha 0x318D give blue 0x31, green 0xF5, red 0x28 and a plane of 255 - 0x8D.
    ASSERT_EQ(DecodeFile(SuiteFile("basn4a16.png"), image), PngStatus::Ok);
    EXPECT_EQ(image.bytesPerPixel, 4);
    EXPECT_EQ(At(image, 5, 3), (Bytes{0x31, 0xF5, 0x28}));
    EXPECT_EQ(PlaneAt(image, 5, 3), 255 - 0x8D);

    // tRNS plays no part: a palette file with a transparent entry is opaque, with no plane.
    ASSERT_EQ(DecodeFile(SuiteFile("ftbwn3p08.png"), image), PngStatus::Ok);
    EXPECT_EQ(image.bytesPerPixel, 1);
    EXPECT_TRUE(image.plane.empty());
    ASSERT_EQ(DecodeFile(SuiteFile("ftbrn2c08.png"), image), PngStatus::Ok);
    EXPECT_EQ(image.bytesPerPixel, 3);
    EXPECT_TRUE(image.plane.empty());

    // Fewer than 8 bits per pixel: refused, the size known.
    ASSERT_EQ(DecodeFile(SuiteFile("basn3p04.png"), image), PngStatus::TooShallow);
    EXPECT_EQ(image.width, 32);
    EXPECT_EQ(image.height, 32);
}

TEST(PngMemory, SignatureTruncationAndHostileHeaders)
{
    PngImage image;
    EXPECT_EQ(DecodeBytes(Bytes{'G', 'I', 'F', '8', '9', 'a', 0, 0, 0}, image), PngStatus::NotPng);
    EXPECT_EQ(DecodePngMemory(nullptr, 100, image), PngStatus::NotPng);
    EXPECT_EQ(DecodeBytes(Bytes{0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A}, image), PngStatus::NotPng);

    // Every cut of a real file fails in the library (or has no signature), and never reads past the end.
    const Bytes full = ReadFileBytes(SuiteFile("basn6a08.png"));
    ASSERT_GT(full.size(), 100u);
    for (size_t cut = 0; cut < full.size(); cut += (cut < 120 ? 1 : 37)) {
        const Bytes part(full.begin(), full.begin() + static_cast<std::ptrdiff_t>(cut));
        const PngStatus status = DecodeBytes(part, image);
        EXPECT_EQ(status, cut < 8 ? PngStatus::NotPng : PngStatus::LibraryFailed) << cut;
        EXPECT_TRUE(image.pixels.empty());
    }
    // A damaged image chunk fails on its CRC.
    Bytes damaged = full;
    damaged[damaged.size() - 30] ^= 0x55;
    EXPECT_EQ(DecodeBytes(damaged, image), PngStatus::LibraryFailed);

    // Headers that ask for more than the user limits, or far more than the data could hold.
    EXPECT_EQ(DecodeBytes(HeaderOnly(16385, 1, 8, 2), image), PngStatus::LibraryFailed);
    EXPECT_EQ(DecodeBytes(HeaderOnly(1, 16385, 8, 2), image), PngStatus::LibraryFailed);
    EXPECT_EQ(DecodeBytes(HeaderOnly(16384, 16384, 16, 6), image), PngStatus::LibraryFailed);
    EXPECT_EQ(DecodeBytes(HeaderOnly(0x7FFFFFFF, 1, 8, 0), image), PngStatus::LibraryFailed);
}

TEST(PngMemory, PaletteIndexPastTheEntriesIsBlack)
{
    // A 2 x 1 palette image with one palette entry and the indexes 0 and 5.
    Bytes file = HeaderOnly(2, 1, 8, 3);
    const Bytes plte = Chunk("PLTE", {10, 20, 30});
    file.insert(file.end(), plte.begin(), plte.end());
    const Bytes raw = {0, 0, 5};  // filter 0, then the two indexes
    uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
    Bytes packed(packedSize);
    ASSERT_EQ(compress(packed.data(), &packedSize, raw.data(), static_cast<uLong>(raw.size())), Z_OK);
    packed.resize(packedSize);
    const Bytes idat = Chunk("IDAT", packed);
    const Bytes iend = Chunk("IEND", {});
    file.insert(file.end(), idat.begin(), idat.end());
    file.insert(file.end(), iend.begin(), iend.end());
    PngImage image;
    ASSERT_EQ(DecodeBytes(file, image), PngStatus::Ok);
    EXPECT_EQ(At(image, 0, 0), (Bytes{30, 20, 10}));
    EXPECT_EQ(At(image, 1, 0), (Bytes{0, 0, 0}));
}

TEST(PngWrite, RgbFileFromBottomUpRows)
{
    // 3 x 2, rows padded to 12 bytes, the last buffer row first in the file.
    const Bytes buffer = {
        1,  2,  3,  4,  5,  6,  7,  8,  9,  0xEE, 0xEE, 0xEE,  // image row 1
        10, 20, 30, 40, 50, 60, 70, 80, 90, 0xEE, 0xEE, 0xEE,  // image row 0
    };
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ASSERT_TRUE(EncodePngFile(file, buffer.data(), 3, 2, 12));
    std::fflush(file);
    std::rewind(file);
    PngImage image;
    ASSERT_EQ(DecodePngFile(file, image), PngStatus::Ok);
    std::rewind(file);
    Bytes written;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        written.push_back(static_cast<uint8_t>(c));
    std::fclose(file);

    EXPECT_EQ(image.width, 3);
    EXPECT_EQ(image.height, 2);
    EXPECT_EQ(image.bytesPerPixel, 3);
    EXPECT_EQ(image.pixels, (Bytes{10, 20, 30, 40, 50, 60, 70, 80, 90, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    // IHDR says 8-bit RGB without interlace, and an sBIT chunk of 8, 8, 8 follows.
    ASSERT_GT(written.size(), 33u);
    EXPECT_EQ(written[24], 8);
    EXPECT_EQ(written[25], 2);
    EXPECT_EQ(written[28], 0);
    const Bytes sbit = {0, 0, 0, 3, 's', 'B', 'I', 'T', 8, 8, 8};
    EXPECT_NE(std::search(written.begin(), written.end(), sbit.begin(), sbit.end()), written.end());

    std::FILE* other = std::tmpfile();
    ASSERT_NE(other, nullptr);
    EXPECT_FALSE(EncodePngFile(other, buffer.data(), 0, 2, 12));
    EXPECT_FALSE(EncodePngFile(other, buffer.data(), 3, 2, 8));  // rows shorter than the width
    EXPECT_FALSE(EncodePngFile(other, nullptr, 3, 2, 12));
    EXPECT_FALSE(EncodePngFile(nullptr, buffer.data(), 3, 2, 12));
    std::fclose(other);
}
