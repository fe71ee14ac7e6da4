// Helpers of the image toolkit's native tests: the fixture files of tests/data.
#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
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

}  // namespace zcmod_test
