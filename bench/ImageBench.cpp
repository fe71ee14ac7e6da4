// Benchmarks of the image toolkit: what a user waits for, each against a reference timed in the same run on
// the same input.
//   PNG load            CNBitmapUtil::NLoadBitmap of a PNG file  vs  a bare libpng decode of the file
//   animated GIF load   NLoadBitmap (every frame composed)       vs  IWICBitmapDecoder decoding every frame
//   ResizeDither        megapixels written per second             vs  StretchBlt HALFTONE of the same sizes
//   AlphaBlendBitmaps   megapixels blended per second (mode 0)    vs  memcpy of the same bytes
#include <wincodec.h>
#include <windows.h>
#include <olectl.h>

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "Bench.h"
#include "ImportPatch.h"
#include "zcmod/NBitmapUtil.h"

using namespace bench;

namespace {

// A picture with edges and smooth areas, so that codecs and filters have real work.
bool MakePicture(CNBitmapUtil& util, BitmapType type, int width, int height)
{
    std::vector<char> data(static_cast<size_t>(width) * height * 3);
    unsigned seed = 12345;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            seed = seed * 1103515245 + 12345;
            char* p = &data[(static_cast<size_t>(y) * width + x) * 3];
            const bool ring = ((x - width / 2) * (x - width / 2) + (y - height / 2) * (y - height / 2)) / 900 % 2;
            p[0] = static_cast<char>(ring ? x * 255 / width : 40);
            p[1] = static_cast<char>(y * 255 / height);
            p[2] = static_cast<char>(((x ^ y) & 0x3F) + ((seed >> 16) & 0x0F));
        }
    return util.CreateBitmapFromData(width, height, data.data(), type, 0) == 1;
}

bool LibpngDecode(const std::wstring& path)
{
    FILE* f = _wfopen(path.c_str(), L"rb");
    if (!f)
        return false;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    bool ok = false;
    if (png && info && !setjmp(png_jmpbuf(png))) {
        png_init_io(png, f);
        png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
        ok = png_get_rows(png, info) != nullptr;
    }
    png_destroy_read_struct(png ? &png : nullptr, info ? &info : nullptr, nullptr);
    fclose(f);
    return ok;
}

template <class T>
struct Com {
    T* p = nullptr;
    ~Com()
    {
        if (p)
            p->Release();
    }
    T** operator&() { return &p; }
    T* operator->() const { return p; }
};

int WicDecodeAll(IWICImagingFactory* factory, const std::wstring& path)
{
    Com<IWICBitmapDecoder> decoder;
    if (FAILED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                                  &decoder)))
        return 0;
    UINT count = 0;
    decoder->GetFrameCount(&count);
    std::vector<BYTE> pixels;
    int decoded = 0;
    for (UINT i = 0; i < count; ++i) {
        Com<IWICBitmapFrameDecode> frame;
        Com<IWICFormatConverter> converter;
        if (FAILED(decoder->GetFrame(i, &frame)) || FAILED(factory->CreateFormatConverter(&converter)) ||
            FAILED(converter->Initialize(frame.p, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                         WICBitmapPaletteTypeCustom)))
            continue;
        UINT w = 0, h = 0;
        converter->GetSize(&w, &h);
        pixels.resize(static_cast<size_t>(w) * h * 4);
        if (SUCCEEDED(converter->CopyPixels(nullptr, w * 4, static_cast<UINT>(pixels.size()), pixels.data())))
            ++decoded;
    }
    return decoded;
}

void PngLoad(std::vector<Row>& rows)
{
    // A 1024 x 768 RGB file of ours, decoded into a store and by libpng alone.
    CNBitmapUtil util;
    const std::wstring png = TempFile(L"zcmod_bench.png");
    if (MakePicture(util, BT_IMAGE, 1024, 768) && util.SaveBitmap(png.c_str(), BF_PNG, BT_IMAGE, 0) > 0) {
        const TimingPair t = TimeBoth([&] { return util.NLoadBitmap(png.c_str(), BT_BACKGROUND, 0) != nullptr; },
                                      [&] { return LibpngDecode(png); });
        AddTimes(rows, "PNG load", "1024x768 RGB8", t.ours, t.reference, "libpng");
    }
    DeleteFileW(png.c_str());
}

// Time spent in zcmod.dll's calls to OleLoadPicture, counted through its import table.
using OleLoadPictureFunction = HRESULT(WINAPI*)(LPSTREAM, LONG, BOOL, REFIID, LPVOID*);
OleLoadPictureFunction g_realOleLoadPicture = nullptr;
double g_oleSeconds = 0;
int g_oleCalls = 0;

double Seconds()
{
    LARGE_INTEGER t, f;
    QueryPerformanceCounter(&t);
    QueryPerformanceFrequency(&f);
    return static_cast<double>(t.QuadPart) / static_cast<double>(f.QuadPart);
}

// IPicture::Render of the picture objects, timed through their (shared) table of methods.
using RenderFunction = HRESULT(STDMETHODCALLTYPE*)(IPicture*, HDC, LONG, LONG, LONG, LONG, OLE_XPOS_HIMETRIC,
                                                    OLE_YPOS_HIMETRIC, OLE_XSIZE_HIMETRIC, OLE_YSIZE_HIMETRIC,
                                                    LPCRECT);
RenderFunction g_realRender = nullptr;
void** g_renderTable = nullptr;
double g_renderSeconds = 0;

HRESULT STDMETHODCALLTYPE TimedRender(IPicture* picture, HDC dc, LONG x, LONG y, LONG cx, LONG cy,
                                      OLE_XPOS_HIMETRIC sx, OLE_YPOS_HIMETRIC sy, OLE_XSIZE_HIMETRIC sw,
                                      OLE_YSIZE_HIMETRIC sh, LPCRECT bounds)
{
    const double start = Seconds();
    const HRESULT result = g_realRender(picture, dc, x, y, cx, cy, sx, sy, sw, sh, bounds);
    g_renderSeconds += Seconds() - start;
    return result;
}

// IPicture::Release, where the picture object frees what it decoded.
using ReleaseFunction = ULONG(STDMETHODCALLTYPE*)(IPicture*);
ReleaseFunction g_realRelease = nullptr;
double g_releaseSeconds = 0;

ULONG STDMETHODCALLTYPE TimedRelease(IPicture* picture)
{
    const double start = Seconds();
    const ULONG result = g_realRelease(picture);
    g_releaseSeconds += Seconds() - start;
    return result;
}

void PatchEntry(void** table, int index, void* replacement)
{
    DWORD protect = 0;
    VirtualProtect(&table[index], sizeof(void*), PAGE_READWRITE, &protect);
    table[index] = replacement;
    VirtualProtect(&table[index], sizeof(void*), protect, &protect);
}

HRESULT WINAPI TimedOleLoadPicture(LPSTREAM stream, LONG size, BOOL runmode, REFIID iid, LPVOID* object)
{
    const double start = Seconds();
    const HRESULT result = g_realOleLoadPicture(stream, size, runmode, iid, object);
    g_oleSeconds += Seconds() - start;
    ++g_oleCalls;
    if (SUCCEEDED(result) && object && *object && IsEqualIID(iid, IID_IPicture)) {
        // Render is the ninth entry: the three of IUnknown, then get_Handle, get_hPal, get_Type, get_Width,
        // get_Height.
        void** table = *static_cast<void***>(*object);
        if (table[8] != reinterpret_cast<void*>(TimedRender)) {
            g_realRender = reinterpret_cast<RenderFunction>(table[8]);
            g_realRelease = reinterpret_cast<ReleaseFunction>(table[2]);
            g_renderTable = table;
            PatchEntry(table, 8, reinterpret_cast<void*>(TimedRender));
            PatchEntry(table, 2, reinterpret_cast<void*>(TimedRelease));
        }
    }
    return result;
}

void AnimatedGifLoad(std::vector<Row>& rows)
{
    // Every frame composed into a store, against the imaging component decoding every frame (without
    // composition).
    const std::wstring& gif = Settings().gif;
    if (gif.empty())
        return;
    Com<IWICImagingFactory> factory;
    CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                     reinterpret_cast<void**>(&factory));
    CNBitmapUtil util;
    int frames = 0;
    const TimingPair t = TimeBoth(
        [&] {
            util.NLoadBitmap(gif.c_str(), BT_IMAGE, 0);
            frames = util.GetNumberOfBitmaps(BT_IMAGE);
            return frames > 1;
        },
        [&] { return factory.p && WicDecodeAll(factory.p, gif) > 1; });
    const std::string input = std::to_string(util.GetBitmapWidth(BT_IMAGE)) + "x" +
                              std::to_string(util.GetBitmapHeight(BT_IMAGE)) + ", " + std::to_string(frames) +
                              " frames";
    AddTimes(rows, "animated GIF load", input, t.ours, t.reference, "WIC");

    // The library's own work beside the OLE picture object: loads timed again with the time inside
    // OleLoadPicture and inside the picture objects' Render and Release measured, in rounds; own work is the
    // rest of the load.
    g_realOleLoadPicture = reinterpret_cast<OleLoadPictureFunction>(zcmod_test::PatchImport(
        GetModuleHandleW(L"zcmod.dll"), "oleaut32.dll", "OleLoadPicture", reinterpret_cast<void*>(TimedOleLoadPicture)));
    if (!g_realOleLoadPicture)
        return;
    Timing own, ole, render, release;
    for (int round = 0; round < Settings().rounds; ++round) {
        double total = 0;
        g_oleSeconds = g_renderSeconds = g_releaseSeconds = 0;
        int loads = 0;
        const double end = Seconds() + Settings().seconds / Settings().rounds;
        do {
            const double start = Seconds();
            util.NLoadBitmap(gif.c_str(), BT_IMAGE, 0);
            total += Seconds() - start;
            ++loads;
        } while (Seconds() < end);
        own.rounds.push_back((total - g_oleSeconds - g_renderSeconds - g_releaseSeconds) / loads);
        ole.rounds.push_back(g_oleSeconds / loads);
        render.rounds.push_back(g_renderSeconds / loads);
        release.rounds.push_back(g_releaseSeconds / loads);
    }
    zcmod_test::PatchImport(GetModuleHandleW(L"zcmod.dll"), "oleaut32.dll", "OleLoadPicture",
                            reinterpret_cast<void*>(g_realOleLoadPicture));
    if (g_renderTable) {
        PatchEntry(g_renderTable, 8, reinterpret_cast<void*>(g_realRender));
        PatchEntry(g_renderTable, 2, reinterpret_cast<void*>(g_realRelease));
    }
    AddTimes(rows, "GIF load: own work beside the picture object", input, own, ole, "in OleLoadPicture");
    AddTimes(rows, "GIF load: the picture object's Render", input, render, ole, "in OleLoadPicture");
    AddTimes(rows, "GIF load: the picture object's Release", input, release, ole, "in OleLoadPicture");
}

void ResizeDitherRate(std::vector<Row>& rows)
{
    // With noise, 1024 x 768 to 1280 x 960, against a HALFTONE StretchBlt of the same sizes.
    CNBitmapUtil util;
    if (!MakePicture(util, BT_IMAGE, 1024, 768))
        return;
    const int w = 1280, h = 960;
    HDC screen = GetDC(nullptr);
    HDC from = CreateCompatibleDC(screen);
    HDC to = CreateCompatibleDC(screen);
    HBITMAP target = CreateCompatibleBitmap(screen, w, h);
    HGDIOBJ oldFrom = SelectObject(from, util.GetBitmapHandle(BT_IMAGE, 0));
    HGDIOBJ oldTo = SelectObject(to, target);
    SetStretchBltMode(to, HALFTONE);
    SetBrushOrgEx(to, 0, 0, nullptr);
    const TimingPair t = TimeBoth(
        [&] {
            util.ResizeDither(BT_IMAGE, 0, 0, 0, 1023, 767, w, h, 4, 200);
            return util.GetBitmapHandle(BT_IMAGE_RESIZED, 0) != nullptr;
        },
        [&] { return StretchBlt(to, 0, 0, w, h, from, 0, 0, 1023, 767, SRCCOPY) != 0; });
    SelectObject(from, oldFrom);
    SelectObject(to, oldTo);
    DeleteObject(target);
    DeleteDC(from);
    DeleteDC(to);
    ReleaseDC(nullptr, screen);
    AddRates(rows, "ResizeDither (noise on)", "1024x768 to 1280x960", t.ours, t.reference, w * double(h) / 1e6, "MP/s",
             "StretchBlt HALFTONE");
}

void AlphaBlendRate(std::vector<Row>& rows)
{
    // Mode 0 on one frame with the kept buffers, against memcpy of the same bytes.
    CNBitmapUtil util;
    const int w = 640, h = 480;
    if (!MakePicture(util, BT_IMAGE, w, h) || !MakePicture(util, BT_ALPHA, w, h) ||
        !MakePicture(util, BT_BACKGROUND, w, h))
        return;
    const size_t bytes = static_cast<size_t>(util.GetBitmapSize(BT_IMAGE));
    std::vector<unsigned char> a(bytes, 1), b(bytes);
    const TimingPair t = TimeBoth([&] { return util.AlphaBlendBitmaps(0, 0, 0) == h; },
                                  [&] {
                                      memcpy(b.data(), a.data(), bytes);
                                      return b[bytes / 2] == 1;
                                  });
    util.AlphaBlendBitmaps(1, 0, 0);
    AddRates(rows, "AlphaBlendBitmaps (mode 0)", "640x480", t.ours, t.reference, w * double(h) / 1e6, "MP/s",
             "memcpy");
}

}  // namespace

ZCMOD_BENCH_CASE("10-image-png", PngLoad);
ZCMOD_BENCH_CASE("11-image-gif", AnimatedGifLoad);
ZCMOD_BENCH_CASE("12-image-dither", ResizeDitherRate);
ZCMOD_BENCH_CASE("13-image-blend", AlphaBlendRate);
