// Helpers of the image toolkit's Wine tests: a CNBitmapUtil that opens its protected parts, paths of the
// fixture files as Wine sees them, pixel reading, scratch folders, and a reference decoder (WIC).
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "zcmod/NBitmapUtil.h"

namespace zcmod_test {

class TestBitmapUtil : public CNBitmapUtil {
public:
    using CNBitmapUtil::CreateBitmapFromData;
    using CNBitmapUtil::CreateBitmapInfoStruct;
    using CNBitmapUtil::DeleteBitmap;
    using CNBitmapUtil::EncodeSaveGIF;
    using CNBitmapUtil::EncodeSaveJPEG;
    using CNBitmapUtil::GetBitmapDataAlloc;
    using CNBitmapUtil::GetBitmapDataNAAlloc;
    using CNBitmapUtil::GetBitmapObject;
    using CNBitmapUtil::GetFirstImageIndex;
    using CNBitmapUtil::GetGIFFileStructure;
    using CNBitmapUtil::GetNumberOfBitmaps;
    using CNBitmapUtil::GetPixel;
    using CNBitmapUtil::LoadBitmapFromFile;
    using CNBitmapUtil::LoadBitmapFromRes;
    using CNBitmapUtil::LoadPNGFromMem;
    using CNBitmapUtil::m_nBlendFrame;
    using CNBitmapUtil::m_nBlendSet;
    using CNBitmapUtil::m_pBlendImage;
    using CNBitmapUtil::m_pBlendResult;
    using CNBitmapUtil::m_pStore;
    using CNBitmapUtil::MixColors;
    using CNBitmapUtil::PutPixel;
    using CNBitmapUtil::TestColorMatch;
};

// A file of the repository's tests/data folder (relative path with '/'), as Wine sees it on drive Z:.
std::wstring DataFile(const std::string& relative);
// A file of libpng's PNG suite, as Wine sees it.
std::wstring PngSuiteFile(const std::string& name);
// The names of the files in libpng's PNG suite folder that end in .png.
std::vector<std::string> PngSuiteNames();
// "Z:" + a Linux path with '/' turned into '\\'.
std::wstring WinePath(const std::string& linuxPath);

std::vector<uint8_t> ReadBytes(const std::wstring& path);
void WriteBytes(const std::wstring& path, const std::vector<uint8_t>& bytes);
bool FileExists(const std::wstring& path);

// A fresh folder under the temporary folder, removed with its files at the end.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    std::wstring File(const std::wstring& name) const;
    const std::wstring& Path() const { return m_path; }

private:
    std::wstring m_path;
};

// A frame's pixels in the tight top-down layout (GetBitmapDataNA), and one pixel of it as 0x00RRGGBB.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> bytes;
    uint32_t At(int x, int y) const;
};
Pixels ReadFrame(CNBitmapUtil& util, BitmapType type, int index);

// Makes frame `index` of `type` (w x h) from a function of the position giving 0x00RRGGBB.
template <class F>
bool MakeFrame(CNBitmapUtil& util, BitmapType type, int index, int w, int h, F colour)
{
    std::vector<char> data(static_cast<size_t>(w) * h * 3);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const uint32_t c = colour(x, y);
            char* p = &data[(static_cast<size_t>(y) * w + x) * 3];
            p[0] = static_cast<char>(c & 0xFF);
            p[1] = static_cast<char>((c >> 8) & 0xFF);
            p[2] = static_cast<char>((c >> 16) & 0xFF);
        }
    return util.CreateBitmapFromData(w, h, data.data(), type, index) == 1;
}
inline bool MakeSolid(CNBitmapUtil& util, BitmapType type, int index, int w, int h, uint32_t rgb)
{
    return MakeFrame(util, type, index, w, h, [rgb](int, int) { return rgb; });
}

// Channels of two 0x00RRGGBB colours differ by at most `tolerance`.
bool Near(uint32_t a, uint32_t b, int tolerance);

// A reference decode by the platform's imaging component: 32-bit BGRA rows, top-down. False if it can't.
bool WicDecode(const std::wstring& path, int& width, int& height, std::vector<uint8_t>& bgra);
// Every frame of a file through the imaging component (no composition); the count of frames decoded.
int WicDecodeAllFrames(const std::wstring& path);

}  // namespace zcmod_test
