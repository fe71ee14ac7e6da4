// Colours kept as text in string resources: "red,green,blue" in decimal.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zcmod {

// Parses one decimal component starting at `s` (up to `end`): digits are read until the first non-digit.
// The running value is held in 16 bits, so it wraps at 65536; a value above 255 afterwards becomes 255.
std::uint8_t ParseColorComponent(const wchar_t* s, const wchar_t* end);

// Parses "r,g,b" into 0x00BBGGRR. Red starts at the first character; green behind the first comma and blue
// behind the second, each 0 when its comma is missing. `len` is the number of characters in `text`.
std::uint32_t ParseColorString(const wchar_t* text, std::size_t len);

}  // namespace zcmod
