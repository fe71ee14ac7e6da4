#include "ImageTestSupport.h"

#include <wincodec.h>

#include <cstdio>

#ifndef ZCMOD_TEST_DATA_DIR
#error ZCMOD_TEST_DATA_DIR must name the tests/data folder
#endif
#ifndef ZCMOD_PNGSUITE_DIR
#error ZCMOD_PNGSUITE_DIR must name the PNG suite folder
#endif

namespace zcmod_test {

std::wstring WinePath(const std::string& linuxPath)
{
    std::wstring path = L"Z:";
    for (char c : linuxPath)
        path.push_back(c == '/' ? L'\\' : static_cast<wchar_t>(static_cast<unsigned char>(c)));
    return path;
}

std::wstring DataFile(const std::string& relative)
{
    return WinePath(std::string(ZCMOD_TEST_DATA_DIR) + "/" + relative);
}

std::wstring PngSuiteFile(const std::string& name)
{
    return WinePath(std::string(ZCMOD_PNGSUITE_DIR) + "/" + name);
}

std::vector<std::string> PngSuiteNames()
{
    std::vector<std::string> names;
    WIN32_FIND_DATAW found;
    HANDLE find = FindFirstFileW((WinePath(ZCMOD_PNGSUITE_DIR) + L"\\*.png").c_str(), &found);
    if (find == INVALID_HANDLE_VALUE)
        return names;
    do {
        std::string name;
        for (const wchar_t* p = found.cFileName; *p; ++p)
            name.push_back(static_cast<char>(*p));
        names.push_back(name);
    } while (FindNextFileW(find, &found));
    FindClose(find);
    return names;
}

std::vector<uint8_t> ReadBytes(const std::wstring& path)
{
    std::vector<uint8_t> bytes;
    FILE* f = _wfopen(path.c_str(), L"rb");
    if (!f)
        return bytes;
    uint8_t buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof(buffer), f)) > 0)
        bytes.insert(bytes.end(), buffer, buffer + n);
    fclose(f);
    return bytes;
}

void WriteBytes(const std::wstring& path, const std::vector<uint8_t>& bytes)
{
    FILE* f = _wfopen(path.c_str(), L"wb");
    if (!f)
        return;
    if (!bytes.empty())
        fwrite(bytes.data(), 1, bytes.size(), f);
    fclose(f);
}

bool FileExists(const std::wstring& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

ScratchFolder::ScratchFolder()
{
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    static int counter = 0;
    m_path = std::wstring(temp) + L"zcmod-image-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
             std::to_wstring(++counter);
    CreateDirectoryW(m_path.c_str(), nullptr);
}

ScratchFolder::~ScratchFolder()
{
    WIN32_FIND_DATAW found;
    HANDLE find = FindFirstFileW((m_path + L"\\*").c_str(), &found);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
                DeleteFileW((m_path + L"\\" + found.cFileName).c_str());
        } while (FindNextFileW(find, &found));
        FindClose(find);
    }
    RemoveDirectoryW(m_path.c_str());
}

std::wstring ScratchFolder::File(const std::wstring& name) const
{
    return m_path + L"\\" + name;
}

uint32_t Pixels::At(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width || y >= height)
        return 0xFFFFFFFF;
    const uint8_t* p = &bytes[(static_cast<size_t>(y) * width + x) * 3];
    return p[0] | (p[1] << 8) | (static_cast<uint32_t>(p[2]) << 16);
}

Pixels ReadFrame(CNBitmapUtil& util, BitmapType type, int index)
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

bool Near(uint32_t a, uint32_t b, int tolerance)
{
    for (int shift = 0; shift < 24; shift += 8) {
        const int d = static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF);
        if (d > tolerance || d < -tolerance)
            return false;
    }
    return true;
}

namespace {

template <class T>
struct ComPtr {
    T* p = nullptr;
    ~ComPtr()
    {
        if (p)
            p->Release();
    }
    T** operator&() { return &p; }
    T* operator->() const { return p; }
};

}  // namespace

bool WicDecode(const std::wstring& path, int& width, int& height, std::vector<uint8_t>& bgra)
{
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    ComPtr<IWICFormatConverter> converter;
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                reinterpret_cast<void**>(&factory))))
        return false;
    if (FAILED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                                  &decoder)) ||
        FAILED(decoder->GetFrame(0, &frame)) || FAILED(factory->CreateFormatConverter(&converter)) ||
        FAILED(converter->Initialize(frame.p, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                     WICBitmapPaletteTypeCustom)))
        return false;
    UINT w = 0, h = 0;
    converter->GetSize(&w, &h);
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    bgra.assign(static_cast<size_t>(w) * h * 4, 0);
    return SUCCEEDED(converter->CopyPixels(nullptr, w * 4, static_cast<UINT>(bgra.size()), bgra.data()));
}

int WicDecodeAllFrames(const std::wstring& path)
{
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IWICBitmapDecoder> decoder;
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                reinterpret_cast<void**>(&factory))) ||
        FAILED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                                  &decoder)))
        return 0;
    UINT count = 0;
    decoder->GetFrameCount(&count);
    int decoded = 0;
    for (UINT i = 0; i < count; ++i) {
        ComPtr<IWICBitmapFrameDecode> frame;
        ComPtr<IWICFormatConverter> converter;
        if (FAILED(decoder->GetFrame(i, &frame)) || FAILED(factory->CreateFormatConverter(&converter)) ||
            FAILED(converter->Initialize(frame.p, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                         WICBitmapPaletteTypeCustom)))
            continue;
        UINT w = 0, h = 0;
        converter->GetSize(&w, &h);
        std::vector<uint8_t> bgra(static_cast<size_t>(w) * h * 4);
        if (SUCCEEDED(converter->CopyPixels(nullptr, w * 4, static_cast<UINT>(bgra.size()), bgra.data())))
            ++decoded;
    }
    return decoded;
}

}  // namespace zcmod_test
