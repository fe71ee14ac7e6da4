// Holds the fast pixel arithmetic against its reference: every form of the byte blend, and the fast dithering
// resize, on buffers, sizes and rectangles taken from the input. Any difference aborts.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "core/PixelMath.h"

using namespace zcmod;

namespace {

// Reads the input front to back; past its end every value is 0.
struct Reader {
    const uint8_t* data;
    size_t size;
    size_t at = 0;
    uint8_t Byte() { return at < size ? data[at++] : 0; }
    int Int(int lo, int span) { return lo + (Byte() | Byte() << 8) % span; }
};

void CheckBlend(Reader& in)
{
    const size_t length = static_cast<size_t>(in.Int(0, 300));
    const size_t offset = in.Byte() % 8;
    std::vector<uint8_t> image(length + offset), alpha(length + offset), background(length + offset);
    for (size_t i = 0; i < length + offset; ++i) {
        image[i] = in.Byte();
        alpha[i] = in.Byte();
        background[i] = in.Byte();
    }
    std::vector<uint8_t> expected(length + offset);
    AlphaBlendBytesScalar(image.data() + offset, alpha.data() + offset, background.data() + offset,
                          expected.data() + offset, length);
    for (const BlendForm& form : BlendForms()) {
        std::vector<uint8_t> result(length + offset);
        form.blend(image.data() + offset, alpha.data() + offset, background.data() + offset, result.data() + offset,
                   length);
        if (result != expected)
            abort();
    }
}

void CheckResize(Reader& in)
{
    PixelView source;
    source.width = in.Int(0, 40);
    source.height = in.Int(0, 40);
    source.stride = source.width * 3 + in.Int(-2, 8);
    std::vector<uint8_t> sourceBytes(static_cast<size_t>(in.Int(0, 4000)));
    for (auto& b : sourceBytes)
        b = in.Byte();
    source.buffer = sourceBytes.data();
    source.size = sourceBytes.size();

    PixelView fast;
    fast.width = in.Int(-1, 50);
    fast.height = in.Int(-1, 50);
    fast.stride = (fast.width > 0 ? fast.width : 0) * 3 + in.Int(-2, 8);
    const size_t destinationBytes = static_cast<size_t>(in.Int(0, 8000));
    std::vector<uint8_t> fastBytes(destinationBytes, 0x33), referenceBytes(destinationBytes, 0x33);
    fast.buffer = fastBytes.data();
    fast.size = fastBytes.size();
    PixelView reference = fast;
    reference.buffer = referenceBytes.data();

    const int srcX = in.Int(-50, 100), srcY = in.Int(-50, 100);
    const int srcW = in.Int(-50, 100), srcH = in.Int(-50, 100);
    const int dstW = in.Int(-2, 60), dstH = in.Int(-2, 60);
    const int edgeDivisor = in.Int(-8, 16), noiseBase = in.Int(-300, 900);
    static const std::vector<uint8_t> table = [] {
        std::vector<uint8_t> t(kNoiseTableSize);
        for (size_t i = 0; i < t.size(); ++i)
            t[i] = static_cast<uint8_t>(i * 131 + 17);
        return t;
    }();
    ResizeDitherPixelsReference(source, reference, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase,
                                table.data());
    // Every form, and the one the processor chooses, must give the reference's bytes.
    static const std::vector<ResizeForm> forms = ResizeDitherForms();
    for (size_t k = 0; k <= forms.size(); ++k) {
        std::fill(fastBytes.begin(), fastBytes.end(), 0x33);
        if (k < forms.size())
            forms[k].resize(source, fast, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase, table.data());
        else
            ResizeDitherPixels(source, fast, srcX, srcY, srcW, srcH, dstW, dstH, edgeDivisor, noiseBase, table.data());
        if (fastBytes != referenceBytes)
            abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Reader in{data, size};
    if (in.Byte() & 1)
        CheckBlend(in);
    else
        CheckResize(in);
    return 0;
}
