// Fuzzes the dialog template reader: it never reads past the bytes it is given, and the right-to-left flip
// changes one bit of the extended style, where the reader finds it, and nothing else.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "frame/core/DialogTemplate.h"

using namespace zcmod;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // An exact-size copy, so that AddressSanitizer sees a read past the end.
    std::vector<uint8_t> bytes(data, data + size);
    DialogTemplateInfo before;
    const bool parsed = ParseDialogTemplate(bytes.data(), bytes.size(), before);
    const DialogTemplateKind kind = GetDialogTemplateKind(bytes.data(), bytes.size());
    if (parsed != (before.kind != DialogTemplateKind::Invalid) || (parsed && before.kind != kind))
        std::abort();

    const bool flipped = SetDialogTemplateRtl(bytes.data(), bytes.size());
    if (flipped != (kind != DialogTemplateKind::Invalid))
        std::abort();
    for (size_t i = 0; i < size; ++i) {
        const bool styleByte = flipped && i == DialogExStyleOffset(kind) + 2;
        if (!styleByte && bytes[i] != data[i])
            std::abort();
        if (styleByte && bytes[i] != (data[i] | 0x40))
            std::abort();
    }
    DialogTemplateInfo after;
    if (ParseDialogTemplate(bytes.data(), bytes.size(), after) != parsed)
        std::abort();
    if (parsed && (after.exStyle != (before.exStyle | kLayoutRtlExStyle) || after.items.size() != before.items.size()))
        std::abort();
    return 0;
}
