#include "frame/core/ColorString.h"

namespace zcmod {

std::uint8_t ParseColorComponent(const wchar_t* s, const wchar_t* end)
{
    std::uint16_t value = 0;  // 16 bits on purpose: "70000" wraps to 4464 before the cap applies
    for (; s < end && *s >= L'0' && *s <= L'9'; ++s)
        value = static_cast<std::uint16_t>(value * 10u + static_cast<unsigned>(*s - L'0'));
    return value > 255 ? 255 : static_cast<std::uint8_t>(value);
}

std::uint32_t ParseColorString(const wchar_t* text, std::size_t len)
{
    if (!text)
        return 0;
    const wchar_t* end = text + len;
    const wchar_t* green = nullptr;
    const wchar_t* blue = nullptr;
    for (const wchar_t* p = text; p < end; ++p) {
        if (*p != L',')
            continue;
        if (!green) {
            green = p + 1;
        } else {
            blue = p + 1;
            break;
        }
    }
    const std::uint32_t r = ParseColorComponent(text, end);
    const std::uint32_t g = green ? ParseColorComponent(green, end) : 0;
    const std::uint32_t b = blue ? ParseColorComponent(blue, end) : 0;
    return r | (g << 8) | (b << 16);
}

}  // namespace zcmod
