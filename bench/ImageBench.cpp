// The image toolkit's benchmark: what a user waits for, each as a ratio against a reference timed in the
// same run on the same input.
//   PNG load            CNBitmapUtil::NLoadBitmap of a PNG file  vs  a bare libpng decode of the file
//   animated GIF load   NLoadBitmap (every frame composed)       vs  IWICBitmapDecoder decoding every frame
//   ResizeDither        megapixels written per second             vs  StretchBlt HALFTONE of the same sizes
//   AlphaBlendBitmaps   megapixels blended per second (mode 0)    vs  memcpy of the same bytes
// Usage: zcmod_bench [--gif FILE] [--seconds S]
#include <wincodec.h>
#include <windows.h>

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "zcmod/NBitmapUtil.h"

namespace {

double g_seconds = 0.4;  // measuring time per case and side

double Now()
{
    static LARGE_INTEGER frequency = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return f;
    }();
    LARGE_INTEGER t;
    QueryPerformanceCounter(&t);
    return static_cast<double>(t.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Seconds per call: one warm-up call, then batches until the time is used, keeping the fastest batch.
double Time(const std::function<bool()>& body)
{
    if (!body())
        return -1.0;
    double best = 1e30;
    const double end = Now() + g_seconds;
    int batch = 1;
    do {
        const double start = Now();
        for (int i = 0; i < batch; ++i)
            body();
        const double per = (Now() - start) / batch;
        best = std::min(best, per);
        if (per * batch < 0.02)
            batch *= 2;
    } while (Now() < end);
    return best;
}

std::wstring TempFile(const wchar_t* name)
{
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name;
}

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

struct Row {
    std::string name;
    std::string input;
    std::string ours;
    std::string reference;
    std::string ratio;
};

std::string Format(const char* format, double value)
{
    char text[64];
    snprintf(text, sizeof(text), format, value);
    return text;
}

void Print(const std::vector<Row>& rows)
{
    printf("| case | input | zcmod | reference | ratio |\n|---|---|---|---|---|\n");
    for (const Row& r : rows)
        printf("| %s | %s | %s | %s | %s |\n", r.name.c_str(), r.input.c_str(), r.ours.c_str(), r.reference.c_str(),
               r.ratio.c_str());
}

}  // namespace

int wmain(int argc, wchar_t** argv)
{
    std::wstring gif;
    for (int i = 1; i < argc; ++i) {
        if (wcscmp(argv[i], L"--gif") == 0 && i + 1 < argc)
            gif = argv[++i];
        else if (wcscmp(argv[i], L"--seconds") == 0 && i + 1 < argc)
            g_seconds = _wtof(argv[++i]);
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    std::vector<Row> rows;

    // PNG load: a 1024 x 768 RGB file of ours, decoded into a store and by libpng alone.
    {
        CNBitmapUtil util;
        const std::wstring png = TempFile(L"zcmod_bench.png");
        if (MakePicture(util, BT_IMAGE, 1024, 768) && util.SaveBitmap(png.c_str(), BF_PNG, BT_IMAGE, 0) > 0) {
            const double ours = Time([&] { return util.NLoadBitmap(png.c_str(), BT_BACKGROUND, 0) != nullptr; });
            const double reference = Time([&] { return LibpngDecode(png); });
            rows.push_back({"PNG load", "1024x768 RGB8", Format("%.2f ms", ours * 1e3),
                            Format("%.2f ms libpng", reference * 1e3), Format("%.2f", ours / reference)});
        }
        DeleteFileW(png.c_str());
    }

    // Animated GIF load: every frame composed into a store, against the imaging component decoding every
    // frame (without composition).
    if (!gif.empty()) {
        Com<IWICImagingFactory> factory;
        CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                         reinterpret_cast<void**>(&factory));
        CNBitmapUtil util;
        int frames = 0;
        const double ours = Time([&] {
            util.NLoadBitmap(gif.c_str(), BT_IMAGE, 0);
            frames = util.GetNumberOfBitmaps(BT_IMAGE);
            return frames > 1;
        });
        int wicFrames = 0;
        const double reference = factory.p ? Time([&] { return (wicFrames = WicDecodeAll(factory.p, gif)) > 1; }) : -1;
        std::string input = std::to_string(util.GetBitmapWidth(BT_IMAGE)) + "x" +
                            std::to_string(util.GetBitmapHeight(BT_IMAGE)) + ", " + std::to_string(frames) + " frames";
        if (ours > 0 && reference > 0)
            rows.push_back({"animated GIF load", input, Format("%.2f ms", ours * 1e3),
                            Format("%.2f ms WIC", reference * 1e3), Format("%.2f", ours / reference)});
        else
            rows.push_back({"animated GIF load", input, "failed", "failed", "-"});
    }

    // ResizeDither with noise, 1024 x 768 to 1280 x 960, against a HALFTONE StretchBlt of the same sizes.
    {
        CNBitmapUtil util;
        if (MakePicture(util, BT_IMAGE, 1024, 768)) {
            const int w = 1280, h = 960;
            const double ours = Time([&] {
                util.ResizeDither(BT_IMAGE, 0, 0, 0, 1023, 767, w, h, 4, 200);
                return util.GetBitmapHandle(BT_IMAGE_RESIZED, 0) != nullptr;
            });
            HDC screen = GetDC(nullptr);
            HDC from = CreateCompatibleDC(screen);
            HDC to = CreateCompatibleDC(screen);
            HBITMAP target = CreateCompatibleBitmap(screen, w, h);
            HGDIOBJ oldFrom = SelectObject(from, util.GetBitmapHandle(BT_IMAGE, 0));
            HGDIOBJ oldTo = SelectObject(to, target);
            SetStretchBltMode(to, HALFTONE);
            SetBrushOrgEx(to, 0, 0, nullptr);
            const double reference = Time([&] { return StretchBlt(to, 0, 0, w, h, from, 0, 0, 1023, 767, SRCCOPY); });
            SelectObject(from, oldFrom);
            SelectObject(to, oldTo);
            DeleteObject(target);
            DeleteDC(from);
            DeleteDC(to);
            ReleaseDC(nullptr, screen);
            const double mp = w * static_cast<double>(h) / 1e6;
            rows.push_back({"ResizeDither (noise on)", "1024x768 to 1280x960", Format("%.1f MP/s", mp / ours),
                            Format("%.1f MP/s StretchBlt HALFTONE", mp / reference), Format("%.2f", ours / reference)});
        }
    }

    // AlphaBlendBitmaps, mode 0 on one frame with the kept buffers, against memcpy of the same bytes.
    {
        CNBitmapUtil util;
        const int w = 640, h = 480;
        if (MakePicture(util, BT_IMAGE, w, h) && MakePicture(util, BT_ALPHA, w, h) &&
            MakePicture(util, BT_BACKGROUND, w, h)) {
            const double ours = Time([&] { return util.AlphaBlendBitmaps(0, 0, 0) == h; });
            util.AlphaBlendBitmaps(1, 0, 0);
            const size_t bytes = static_cast<size_t>(util.GetBitmapSize(BT_IMAGE));
            std::vector<unsigned char> a(bytes, 1), b(bytes);
            const double reference = Time([&] {
                memcpy(b.data(), a.data(), bytes);
                return b[bytes / 2] == 1;
            });
            const double mp = w * static_cast<double>(h) / 1e6;
            rows.push_back({"AlphaBlendBitmaps (mode 0)", "640x480", Format("%.1f MP/s", mp / ours),
                            Format("%.1f MP/s memcpy", mp / reference), Format("%.2f", ours / reference)});
        }
    }

    Print(rows);
    printf("\nratio = zcmod time / reference time (below 1: zcmod is faster)\n");
    CoUninitialize();
    return rows.empty() ? 1 : 0;
}
