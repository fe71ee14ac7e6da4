// Benchmarks of the paint primitives, each against a reference timed in the same run on the same input:
//   BlenderFunc          megabytes blended per second        vs  memcpy of the same buffers
//   masked DrawImage     one 256 x 256 picture with a mask   vs  AlphaBlend (per-pixel alpha) of the same size
#include <windows.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "Bench.h"
#include "core/PixelMath.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"

using namespace bench;

namespace {

struct Lib : CVuikLib {
    using CVuikLib::BlenderFunc;
};

void BlenderRate(std::vector<Row>& rows)
{
    const DWORD bytes = 1 << 20;
    std::vector<BYTE> mask(bytes), under(bytes), image(bytes), result(bytes);
    for (DWORD i = 0; i < bytes; ++i) {
        mask[i] = static_cast<BYTE>(i * 7);
        under[i] = static_cast<BYTE>(i >> 3);
        image[i] = static_cast<BYTE>(i * 13 + 5);
    }
    const TimingPair t = TimeBoth(
        [&] {
            Lib::BlenderFunc(mask.data(), under.data(), image.data(), result.data(), bytes);
            return result[bytes / 2] != 0 || image[bytes / 2] == 0;
        },
        [&] {
            memcpy(result.data(), image.data(), bytes);
            return result[bytes / 2] == image[bytes / 2];
        });
    AddRates(rows, "BlenderFunc", "1 MiB", t.ours, t.reference, bytes / 1e6, "MB/s", "memcpy");
    // Each form of the blend this processor runs, the same buffers, for the record: BlenderFunc uses the last.
    for (const zcmod::BlendForm& form : zcmod::BlendForms()) {
        const TimingPair f = TimeBoth(
            [&] {
                form.blend(image.data(), mask.data(), under.data(), result.data(), bytes);
                return true;
            },
            [&] {
                memcpy(result.data(), image.data(), bytes);
                return true;
            });
        AddRates(rows, std::string("byte blend, ") + form.name, "1 MiB", f.ours, f.reference, bytes / 1e6, "MB/s",
                 "memcpy");
    }
}

// A 32-bit top-down section filled by `colour(x, y)`; the pixels in `bits`.
HBITMAP Section(int w, int h, uint32_t (*colour)(int, int), uint32_t** bits = nullptr)
{
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), w, -h, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* memory = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &memory, nullptr, 0);
    for (int i = 0; bitmap && i < w * h; ++i)
        static_cast<uint32_t*>(memory)[i] = colour(i % w, i / w);
    if (bits)
        *bits = static_cast<uint32_t*>(memory);
    return bitmap;
}

void MaskedDraw(std::vector<Row>& rows)
{
    const int size = 256;
    HBITMAP canvas = Section(size, size, [](int x, int y) { return static_cast<uint32_t>(x << 8 | y); });
    HDC target = CreateCompatibleDC(nullptr);
    HGDIOBJ oldTarget = SelectObject(target, canvas);

    // A picture with a soft mask, drawn at its own size.
    CVuikBitmap picture;
    picture.Attach(Section(size, size, [](int x, int y) { return static_cast<uint32_t>(x << 16 | (x ^ y) << 8); }));
    picture.AttachMask(
        Section(size, size, [](int x, int y) { return 0x010101u * static_cast<uint32_t>((x + y) / 2); }));
    CVuikGraphics graphics(target);

    // The platform's per-pixel alpha blend of a premultiplied picture of the same size.
    HBITMAP source = Section(size, size, [](int x, int y) {
        const uint32_t a = static_cast<uint32_t>(255 - (x + y) / 2);
        return a << 24 | (x * a / 255) << 16 | ((x ^ y) * a / 255) << 8;
    });
    HDC from = CreateCompatibleDC(nullptr);
    HGDIOBJ oldFrom = SelectObject(from, source);
    const BLENDFUNCTION blend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    const TimingPair t = TimeBoth(
        [&] {
            graphics.DrawImage(&picture, 0, 0);
            return true;
        },
        [&] { return AlphaBlend(target, 0, 0, size, size, from, 0, 0, size, size, blend) != 0; });

    SelectObject(from, oldFrom);
    DeleteDC(from);
    DeleteObject(source);
    SelectObject(target, oldTarget);
    DeleteDC(target);
    DeleteObject(canvas);
    DeleteObject(picture.Detach());
    DeleteObject(picture.DetachMask());
    AddTimes(rows, "masked DrawImage", "256x256", t.ours, t.reference, "AlphaBlend");
}

}  // namespace

ZCMOD_BENCH_CASE("20-skin-blender", BlenderRate);
ZCMOD_BENCH_CASE("21-skin-masked-draw", MaskedDraw);
