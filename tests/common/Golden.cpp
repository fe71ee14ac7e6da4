#include "Golden.h"

#include <png.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#ifndef ZCMOD_GOLDEN_DIR
#error "ZCMOD_GOLDEN_DIR names the folder of the golden pictures"
#endif

namespace zcmod_test {
namespace {

std::string GoldenPath(const std::string& name, const char* suffix)
{
    // The tests run under Wine, where the Linux root is the drive Z:.
    return std::string("Z:") + ZCMOD_GOLDEN_DIR + "/" + name + suffix;
}

// Writes 8-bit RGB rows.
bool WritePng(const std::string& path, int width, int height, const std::vector<uint8_t>& rgb)
{
    png_image image;
    std::memset(&image, 0, sizeof(image));
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    const bool ok = png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
    png_image_free(&image);
    return ok;
}

bool ReadPng(const std::string& path, int& width, int& height, std::vector<uint8_t>& rgb)
{
    png_image image;
    std::memset(&image, 0, sizeof(image));
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return false;
    image.format = PNG_FORMAT_RGB;
    rgb.resize(PNG_IMAGE_SIZE(image));
    const bool ok = png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr) != 0;
    width = static_cast<int>(image.width);
    height = static_cast<int>(image.height);
    png_image_free(&image);
    return ok;
}

std::vector<uint8_t> ToRgb(int width, int height, const uint32_t* pixels)
{
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
    for (size_t i = 0; i < static_cast<size_t>(width) * height; ++i) {
        rgb[i * 3] = static_cast<uint8_t>(pixels[i] >> 16);
        rgb[i * 3 + 1] = static_cast<uint8_t>(pixels[i] >> 8);
        rgb[i * 3 + 2] = static_cast<uint8_t>(pixels[i]);
    }
    return rgb;
}

}  // namespace

::testing::AssertionResult MatchesGolden(const std::string& name, int width, int height, const uint32_t* pixels,
                                         int tolerance)
{
    if (width <= 0 || height <= 0 || !pixels)
        return ::testing::AssertionFailure() << name << ": nothing was captured";
    const std::vector<uint8_t> actual = ToRgb(width, height, pixels);
    const std::string goldenPath = GoldenPath(name, ".png");
    const char* update = std::getenv("ZCMOD_UPDATE_GOLDENS");
    if (update && std::strcmp(update, "1") == 0) {
        if (!WritePng(goldenPath, width, height, actual))
            return ::testing::AssertionFailure() << "cannot write " << goldenPath;
        std::remove(GoldenPath(name, ".actual.png").c_str());
        std::remove(GoldenPath(name, ".diff.png").c_str());
        return ::testing::AssertionSuccess();
    }

    int goldenWidth = 0, goldenHeight = 0;
    std::vector<uint8_t> golden;
    std::string problem;
    long differing = 0;
    std::vector<uint8_t> diff(actual.size());
    if (!ReadPng(goldenPath, goldenWidth, goldenHeight, golden)) {
        problem = "no golden picture (scripts/update-goldens.sh writes it)";
    } else if (goldenWidth != width || goldenHeight != height) {
        problem = "size " + std::to_string(width) + "x" + std::to_string(height) + ", golden " +
                  std::to_string(goldenWidth) + "x" + std::to_string(goldenHeight);
    } else {
        for (size_t i = 0; i < actual.size(); i += 3) {
            bool same = true;
            for (size_t c = 0; c < 3; ++c)
                same = same && std::abs(actual[i + c] - golden[i + c]) <= tolerance;
            for (size_t c = 0; c < 3; ++c)
                diff[i + c] = same ? static_cast<uint8_t>(actual[i + c] / 4 + 96) : (c == 0 ? 255 : 0);
            differing += same ? 0 : 1;
        }
        if (differing == 0) {
            std::remove(GoldenPath(name, ".actual.png").c_str());
            std::remove(GoldenPath(name, ".diff.png").c_str());
            return ::testing::AssertionSuccess();
        }
        problem = std::to_string(differing) + " pixels differ";
    }
    WritePng(GoldenPath(name, ".actual.png"), width, height, actual);
    if (differing)
        WritePng(GoldenPath(name, ".diff.png"), width, height, diff);
    return ::testing::AssertionFailure() << name << ": " << problem << "; see " << GoldenPath(name, ".actual.png");
}

}  // namespace zcmod_test
