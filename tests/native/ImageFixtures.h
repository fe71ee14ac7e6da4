// Helpers of the image toolkit's native tests: reading fixture files and plain PBM pictures.
#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace zcmod_test {

inline std::string FixturePath(const std::string& name)
{
    return std::string(ZCMOD_SOURCE_DIR) + "/tests/data/" + name;
}

inline std::vector<uint8_t> ReadFileBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A plain PBM (P1): 1 is black. Returns tight top-down 24-bit pixels, black 0 and white 255.
struct PbmPicture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;
};

inline PbmPicture ReadPlainPbm(const std::string& path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::string magic;
    PbmPicture pbm;
    text >> magic >> pbm.width >> pbm.height;
    if (magic != "P1")
        return PbmPicture();
    for (int i = 0; i < pbm.width * pbm.height; ++i) {
        char c = 0;
        text >> c;  // digits may be run together or separated by blanks
        const uint8_t value = c == '1' ? 0 : 255;
        pbm.pixels.insert(pbm.pixels.end(), 3, value);
    }
    return pbm;
}

// Tight top-down pixels as the encoders take them: padded bottom-up rows of `stride` bytes.
inline std::vector<uint8_t> ToBottomUp(const std::vector<uint8_t>& tight, int width, int height, int stride)
{
    std::vector<uint8_t> out(static_cast<size_t>(stride) * height, 0);
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < width * 3; ++i)
            out[static_cast<size_t>(height - 1 - y) * stride + i] = tight[static_cast<size_t>(y) * width * 3 + i];
    return out;
}

}  // namespace zcmod_test
