// Helpers of the image toolkit's Wine tests: a CNBitmapUtil that opens its protected parts, paths of the
// fixture files as Wine sees them, pixel reading and making, and scratch folders.
#pragma once

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "zcmod/NBitmapUtil.h"

namespace zcmod_test {

class TestBitmapUtil : public CNBitmapUtil {
public:
    using CNBitmapUtil::CreateBitmapInfoStruct;
    using CNBitmapUtil::EncodeSaveGIF;
    using CNBitmapUtil::EncodeSaveJPEG;
    using CNBitmapUtil::GetBitmapDataAlloc;
    using CNBitmapUtil::GetBitmapDataNAAlloc;
    using CNBitmapUtil::GetBitmapObject;
    using CNBitmapUtil::GetFirstImageIndex;
    using CNBitmapUtil::GetPixel;
    using CNBitmapUtil::LoadBitmapFromRes;
    using CNBitmapUtil::LoadPNGFromMem;
    using CNBitmapUtil::LoadWBMPFile;
    using CNBitmapUtil::m_nBlendFrame;
    using CNBitmapUtil::m_nBlendSet;
    using CNBitmapUtil::m_pBlendImage;
    using CNBitmapUtil::PutPixel;
};

// A call's result and the error word it leaves in `util`, checked together.
#define EXPECT_RESULT_ERROR(util, call, result, error) \
    do {                                               \
        EXPECT_EQ((call), (result));                   \
        EXPECT_EQ((util).GetLastError(), (error));     \
    } while (0)

// "Z:" + a Linux path with '/' turned into '\\'.
inline std::wstring WinePath(const std::string& linuxPath)
{
    std::wstring path = L"Z:";
    for (char c : linuxPath)
        path.push_back(c == '/' ? L'\\' : static_cast<wchar_t>(static_cast<unsigned char>(c)));
    return path;
}
// A file of the repository's tests/data folder (relative path with '/'), and one of libpng's PNG suite.
inline std::wstring DataFile(const std::string& relative)
{
    return WinePath(ZCMOD_TEST_DATA_DIR "/" + relative);
}
inline std::wstring PngSuiteFile(const std::string& name)
{
    return WinePath(ZCMOD_PNGSUITE_DIR "/" + name);
}

inline std::vector<uint8_t> ReadBytes(const std::wstring& path)
{
    std::vector<uint8_t> bytes;
    if (FILE* f = _wfopen(path.c_str(), L"rb")) {
        for (int c = fgetc(f); c != EOF; c = fgetc(f))
            bytes.push_back(static_cast<uint8_t>(c));
        fclose(f);
    }
    return bytes;
}
inline void WriteBytes(const std::wstring& path, const std::vector<uint8_t>& bytes)
{
    if (FILE* f = _wfopen(path.c_str(), L"wb")) {
        fwrite(bytes.data(), 1, bytes.size(), f);
        fclose(f);
    }
}

// A fresh folder under the temporary folder, removed with its files at the end.
class ScratchFolder {
public:
    ScratchFolder()
    {
        wchar_t temp[MAX_PATH];
        GetTempPathW(MAX_PATH, temp);
        static int counter = 0;
        m_path = temp + (L"zcmod-image-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++counter));
        CreateDirectoryW(m_path.c_str(), nullptr);
    }
    ~ScratchFolder()
    {
        WIN32_FIND_DATAW found;
        HANDLE find = FindFirstFileW(File(L"*").c_str(), &found);
        for (BOOL more = find != INVALID_HANDLE_VALUE; more; more = FindNextFileW(find, &found))
            DeleteFileW(File(found.cFileName).c_str());
        if (find != INVALID_HANDLE_VALUE)
            FindClose(find);
        RemoveDirectoryW(m_path.c_str());
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    std::wstring File(const std::wstring& name) const { return m_path + L"\\" + name; }
    // Writes `bytes` to the file `name` and returns its path.
    std::wstring Write(const std::wstring& name, const std::vector<uint8_t>& bytes) const
    {
        WriteBytes(File(name), bytes);
        return File(name);
    }

private:
    std::wstring m_path;
};

// A frame's pixels in the tight top-down layout (GetBitmapDataNA), and one pixel of it as 0x00RRGGBB.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> bytes;
    uint32_t At(int x, int y) const
    {
        if (x < 0 || y < 0 || x >= width || y >= height)
            return 0xFFFFFFFF;
        const uint8_t* p = &bytes[(static_cast<size_t>(y) * width + x) * 3];
        return p[0] | (p[1] << 8) | (static_cast<uint32_t>(p[2]) << 16);
    }
};
inline Pixels ReadFrame(CNBitmapUtil& util, BitmapType type, int index)
{
    Pixels pixels;
    if (!util.GetBitmapHandle(type, index))
        return pixels;
    pixels.width = util.GetBitmapWidth(type);
    pixels.height = util.GetBitmapHeight(type);
    pixels.bytes.assign(static_cast<size_t>(pixels.width) * pixels.height * 3, 0);
    if (!util.GetBitmapDataNA(type, index, reinterpret_cast<char*>(pixels.bytes.data())))
        pixels = Pixels();
    return pixels;
}

// Makes frame `index` of `type` (w x h) from a function of the position giving 0x00RRGGBB.
template <class F>
bool MakeFrame(CNBitmapUtil& util, BitmapType type, int index, int w, int h, F colour)
{
    std::vector<char> data(static_cast<size_t>(w) * h * 3);
    for (size_t i = 0; i < data.size() / 3; ++i) {
        const uint32_t c = colour(static_cast<int>(i % w), static_cast<int>(i / w));
        data[3 * i] = static_cast<char>(c & 0xFF);
        data[3 * i + 1] = static_cast<char>((c >> 8) & 0xFF);
        data[3 * i + 2] = static_cast<char>((c >> 16) & 0xFF);
    }
    return util.CreateBitmapFromData(w, h, data.data(), type, index) == 1;
}
// 0x00RRGGBB that differs at every (x, y) of a frame up to 12 x 8, in every channel.
inline uint32_t Gradient(int x, int y)
{
    return static_cast<uint32_t>((x * 20 + 5) << 16 | (y * 30 + 7) << 8 | (x * y + 1));
}
inline bool MakeSolid(CNBitmapUtil& util, BitmapType type, int index, int w, int h, uint32_t rgb)
{
    return MakeFrame(util, type, index, w, h, [rgb](int, int) { return rgb; });
}

// Channels of two 0x00RRGGBB colours differ by at most `tolerance`.
inline bool Near(uint32_t a, uint32_t b, int tolerance)
{
    for (int shift = 0; shift < 24; shift += 8)
        if (std::abs(static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF)) > tolerance)
            return false;
    return true;
}

}  // namespace zcmod_test
