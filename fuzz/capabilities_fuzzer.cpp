// The capability reader and the device filter on arbitrary text: the first half of the input is the
// capability text, the second the filter, read as UTF-16 code units. Never a read outside either, and a
// device that passes a filter passes each of its clauses alone.
#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstdlib>
#include <string>

#include "device/core/DeviceCapabilities.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace zcmod::device;
    std::wstring units;
    for (size_t i = 0; i + 1 < size; i += 2)
        units.push_back(static_cast<wchar_t>(data[i] | (data[i + 1] << 8)));
    const std::wstring text = units.substr(0, units.size() / 2), filter = units.substr(units.size() / 2);
    CapabilityText capabilities;
    capabilities.Parse(text);
    const std::wstring type = capabilities.PhoneTypeOf(L"Zelvo", L"Z100");
    std::wstring value;
    for (const wchar_t* key : kCapabilityKeys)
        capabilities.Find(type, key, L"350000000000001", value);
    if (PassesFilter(capabilities, type, L"350000000000001", filter)) {
        std::wstring rest = filter;
        for (size_t at = 0; at <= rest.size();) {
            const size_t end = std::min(rest.find(L';', at), rest.size());
            if (!PassesFilter(capabilities, type, L"350000000000001", rest.substr(at, end - at)))
                std::abort();
            at = end + 1;
        }
    }
    return 0;
}
