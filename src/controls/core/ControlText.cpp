#include "controls/core/ControlText.h"

#include <cstdint>

namespace zcmod {

StepBarLayout LayoutStepBar(int steps, int current, int width, int backgroundWidth, int leftWidth, int tileWidth,
                            int rightWidth, bool hasRight)
{
    StepBarLayout layout;
    if (width < 0)
        width = 0;
    layout.segment = steps > 0 && backgroundWidth > 0 ? backgroundWidth / steps : 0;
    layout.endX = hasRight ? width - rightWidth : width;
    layout.end = hasRight && current >= steps;

    // The filling, in 64 bits: a large count times the segment must not wrap round.
    const int64_t wanted = static_cast<int64_t>(layout.segment) * current;
    const int64_t fill = wanted < width ? wanted : width;
    if (tileWidth > 0)
        for (int64_t x = leftWidth > 0 ? leftWidth : 0; x < fill; x += tileWidth) {
            const int64_t w = tileWidth < layout.endX - x ? tileWidth : layout.endX - x;
            if (w <= 0)
                break;
            layout.tiles.push_back(StepBarTile{static_cast<int>(x), static_cast<int>(w)});
        }

    // Separators at each step's start inside the window. Steps narrower than a column all start at 0, where
    // one separator stands for them all.
    if (layout.segment == 0) {
        if (steps > 1)
            layout.separators.push_back(0);
    } else {
        for (int64_t i = 1; i < steps && i * layout.segment < width; ++i)
            layout.separators.push_back(static_cast<int>(i * layout.segment));
    }
    return layout;
}

void CollapseAmpersandRuns(std::wstring& text)
{
    for (size_t at = text.find(L"&&"); at != std::wstring::npos; at = text.find(L"&&", at))
        text.erase(at, 1);
}

}  // namespace zcmod
