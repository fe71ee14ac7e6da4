// PNG through libpng: libpng's own PNG suite, hostile and truncated input, and the 24-bit writer.
#include <gtest/gtest.h>
#include <png.h>

#include <dirent.h>
#include <algorithm>
#include <cstdio>
#include <regex>
#include <string>
#include <vector>

#include "ImageFixtures.h"
#include "image/core/PngCodec.h"

using namespace zcmod;
using namespace zcmod_test;

namespace {

using Bytes = std::vector<uint8_t>;

std::string SuiteFile(const std::string& name)
{
    return std::string(ZCMOD_PNGSUITE_DIR) + "/" + name;
}

// The picture as libpng itself expands it: palette and grey to RGB, 16 bits to their high byte, alpha (or
// tRNS turned into alpha) kept apart. A second route through the library, to check ours against.
bool ReadReference(const std::string& path, int& width, int& height, Bytes& rgb, Bytes& alpha)
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
        width = static_cast<int>(png_get_image_width(png, info));
        height = static_cast<int>(png_get_image_height(png, info));
        const int channels = png_get_channels(png, info);
        png_bytepp rows = png_get_rows(png, info);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const png_bytep p = rows[y] + x * channels;
                rgb.insert(rgb.end(), p, p + 3);
                if (channels == 4)
                    alpha.push_back(p[3]);
            }
        ok = channels == 3 || channels == 4;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return ok;
}

Bytes At(const Bytes& pixels, int width, int x, int y)
{
    const size_t i = (static_cast<size_t>(y) * width + x) * 3;
    return Bytes(pixels.begin() + i, pixels.begin() + i + 3);
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

// Rows in a buffer of the test's, bottom-up with a padding byte after each row as a frame lays them out, or none
// when refusing.
struct RowsInBuffer : PngRowTarget {
    bool refuse = false;
    int calls = 0;
    int width = 0;
    int height = 0;
    Bytes buffer;
    std::vector<uint8_t*> rows;

    uint8_t* const* Rows(int w, int h) override
    {
        ++calls;
        if (refuse)
            return nullptr;
        width = w, height = h;
        buffer.assign(static_cast<size_t>(w * 3 + 1) * h, 0xEE);
        rows.resize(static_cast<size_t>(h));
        for (int y = 0; y < h; ++y)
            rows[static_cast<size_t>(y)] = buffer.data() + static_cast<size_t>(h - 1 - y) * (w * 3 + 1);
        return rows.data();
    }
    // The rows in the file's order without their padding, which must be untouched.
    Bytes Tight() const
    {
        Bytes tight;
        for (int y = 0; y < height; ++y) {
            const uint8_t* row = rows[static_cast<size_t>(y)];
            tight.insert(tight.end(), row, row + width * 3);
            EXPECT_EQ(row[width * 3], 0xEE) << "padding of row " << y;
        }
        return tight;
    }
};

}  // namespace

TEST(PngSuite, EveryFileFollowsTheDepthTable)
{
    std::vector<std::string> names;
    if (DIR* dir = opendir(ZCMOD_PNGSUITE_DIR)) {
        while (dirent* entry = readdir(dir))
            if (std::regex_search(entry->d_name, std::regex("\\.png$")))
                names.push_back(entry->d_name);
        closedir(dir);
    }
    ASSERT_GE(names.size(), 40u) << "the PNG suite is missing (scripts/bootstrap.sh makes it)";
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

        PngImage image, fromFile;
        const PngStatus status = DecodeBytes(ReadFileBytes(SuiteFile(name)), image);
        EXPECT_EQ(DecodeFile(SuiteFile(name), fromFile), status);
        EXPECT_EQ(fromFile.pixels, image.pixels);
        EXPECT_EQ(fromFile.plane, image.plane);
        // With rows of the caller's: 8-bit RGB (interlaced too) goes into them with the same bytes, from a file
        // and from memory; every other layout, and a caller who gives no rows, gets `pixels` as before.
        RowsInBuffer target, refusing, fileTarget;
        refusing.refuse = true;
        PngImage placed, refused, placedFromFile;
        placed.target = &target, refused.target = &refusing, placedFromFile.target = &fileTarget;
        EXPECT_EQ(DecodeBytes(ReadFileBytes(SuiteFile(name)), placed), status);
        EXPECT_EQ(DecodeBytes(ReadFileBytes(SuiteFile(name)), refused), status);
        EXPECT_EQ(DecodeFile(SuiteFile(name), placedFromFile), status);
        EXPECT_EQ(refused.pixels, image.pixels);
        if (colorType == 2 && depth == 8) {
            EXPECT_TRUE(placed.inTarget && placedFromFile.inTarget && !refused.inTarget);
            EXPECT_TRUE(placed.pixels.empty());
            EXPECT_EQ(target.Tight(), image.pixels);
            EXPECT_EQ(fileTarget.Tight(), image.pixels);
            EXPECT_EQ(refusing.calls, 1);
        } else {
            EXPECT_FALSE(placed.inTarget);
            EXPECT_EQ(placed.pixels, image.pixels);
            EXPECT_EQ(placed.plane, image.plane);
            EXPECT_EQ(target.calls + refusing.calls + fileTarget.calls, 0);
        }
        EXPECT_EQ(image.bytesPerPixel, b);
        if (b < 1) {
            EXPECT_EQ(status, PngStatus::TooShallow);
            EXPECT_EQ(image.width, 32);  // width and height are known
            EXPECT_TRUE(image.pixels.empty());
            continue;
        }
        ASSERT_EQ(status, PngStatus::Ok);
        int width = 0, height = 0;
        Bytes rgb, alpha;
        ASSERT_TRUE(ReadReference(SuiteFile(name), width, height, rgb, alpha));
        ASSERT_EQ(image.width, width);
        ASSERT_EQ(image.height, height);
        ASSERT_EQ(image.pixels.size(), rgb.size());
        EXPECT_EQ(image.plane.empty(), b != 4);
        if (colorType == 4 && depth == 16) {
            // Four bytes per pixel are read as if they were R, G, B, A: grey 0x28F5 and alpha 0x318D give blue
            // 0x31, green 0xF5, red 0x28 and a plane of 255 - 0x8D in all three bytes.
            EXPECT_EQ(At(image.pixels, width, 5, 3), (Bytes{0x31, 0xF5, 0x28}));
            EXPECT_EQ(At(image.plane, width, 5, 3), Bytes(3, 255 - 0x8D));
            continue;
        }
        // Everything else is the library's expansion, reversed to blue, green, red, with tRNS ignored.
        size_t mismatches = 0;
        for (size_t i = 0; i < rgb.size(); i += 3)
            mismatches +=
                image.pixels[i] != rgb[i + 2] || image.pixels[i + 1] != rgb[i + 1] || image.pixels[i + 2] != rgb[i];
        EXPECT_EQ(mismatches, 0u);
        if (b == 4) {
            ASSERT_EQ(alpha.size(), rgb.size() / 3);
            for (size_t i = 0; i < alpha.size(); ++i)
                ASSERT_EQ(image.plane[3 * i], 255 - alpha[i]) << i;
        }
        ++checked;
    }
    EXPECT_GE(checked, 25);
}

TEST(PngMemory, SignatureAndTruncation)
{
    PngImage image;
    EXPECT_EQ(DecodeBytes(Bytes{'G', 'I', 'F', '8', '9', 'a', 0, 0, 0}, image), PngStatus::NotPng);
    EXPECT_EQ(DecodePngMemory(nullptr, 100, image), PngStatus::NotPng);

    // Every cut of a real file fails in the library (or has no signature), and never reads past the end.
    const Bytes full = ReadFileBytes(SuiteFile("basn6a08.png"));
    ASSERT_GT(full.size(), 100u);
    for (size_t cut = 0; cut < full.size(); cut += (cut < 120 ? 1 : 37)) {
        const PngStatus status =
            DecodeBytes(Bytes(full.begin(), full.begin() + static_cast<std::ptrdiff_t>(cut)), image);
        EXPECT_EQ(status, cut < 8 ? PngStatus::NotPng : PngStatus::LibraryFailed) << cut;
        EXPECT_TRUE(image.pixels.empty());
    }
    // A damaged image chunk fails on its CRC.
    Bytes damaged = full;
    damaged[damaged.size() - 30] ^= 0x55;
    EXPECT_EQ(DecodeBytes(damaged, image), PngStatus::LibraryFailed);
    // So does every cut of an 8-bit RGB file decoded into rows of the caller's, and the image says so.
    const Bytes rgb = ReadFileBytes(SuiteFile("basn2c08.png"));
    RowsInBuffer target;
    for (size_t cut = 40; cut < rgb.size(); cut += 97) {
        PngImage placed;
        placed.target = &target;
        EXPECT_EQ(DecodeBytes(Bytes(rgb.begin(), rgb.begin() + static_cast<std::ptrdiff_t>(cut)), placed),
                  PngStatus::LibraryFailed)
            << cut;
        EXPECT_FALSE(placed.inTarget);
        EXPECT_EQ(placed.target, &target);
    }
}

TEST(PngWrite, RgbFileFromBottomUpRows)
{
    // 3 x 2, rows padded to 12 bytes, the last buffer row first in the file.
    const Bytes buffer = {1,  2,  3,  4,  5,  6,  7,  8,  9,  0xEE, 0xEE, 0xEE,   // image row 1
                          10, 20, 30, 40, 50, 60, 70, 80, 90, 0xEE, 0xEE, 0xEE};  // image row 0
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ASSERT_TRUE(EncodePngFile(file, buffer.data(), 3, 2, 12));
    std::rewind(file);
    Bytes written;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        written.push_back(static_cast<uint8_t>(c));
    PngImage image;
    ASSERT_EQ(DecodeBytes(written, image), PngStatus::Ok);
    EXPECT_EQ((std::vector<int>{image.width, image.height, image.bytesPerPixel}), (std::vector<int>{3, 2, 3}));
    EXPECT_EQ(image.pixels, (Bytes{10, 20, 30, 40, 50, 60, 70, 80, 90, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    // IHDR says no interlace, and an sBIT chunk of 8, 8, 8 follows.
    ASSERT_GT(written.size(), 33u);
    EXPECT_EQ(written[28], 0);
    const Bytes sbit = {0, 0, 0, 3, 's', 'B', 'I', 'T', 8, 8, 8};
    EXPECT_NE(std::search(written.begin(), written.end(), sbit.begin(), sbit.end()), written.end());

    EXPECT_FALSE(EncodePngFile(file, buffer.data(), 0, 2, 12));
    EXPECT_FALSE(EncodePngFile(file, buffer.data(), 3, 2, 8));  // rows shorter than the width
    EXPECT_FALSE(EncodePngFile(file, nullptr, 3, 2, 12));
    EXPECT_FALSE(EncodePngFile(nullptr, buffer.data(), 3, 2, 12));
    std::fclose(file);
}
