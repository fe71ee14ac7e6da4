#include "controls/core/StaticLayout.h"

#include <algorithm>

namespace zcmod {

namespace {

// DT_* values, which this folder may not take from the platform's headers.
const std::uint32_t kRight = 0x2, kCenter = 0x1, kVCenter = 0x4, kWordBreak = 0x10, kSingleLine = 0x20,
                    kNoPrefix = 0x800;
const std::uint32_t kStaticNoPrefix = 0x80;
// SS_EDITCONTROL asks for an edit control's wrapping, which also breaks a word longer than a line.
const std::uint32_t kStaticEditControl = 0x2000, kEditControl = 0x2000;

}  // namespace

std::uint32_t LabelTextFlags(std::uint32_t style)
{
    std::uint32_t flags;
    if (style & 2)
        flags = kRight | kVCenter | kWordBreak;
    else if (style & 1)
        flags = kCenter | kVCenter | kWordBreak;
    else if (style & 0xB)
        flags = kVCenter | kSingleLine;
    else
        flags = kVCenter | kWordBreak;
    if (style & kStaticNoPrefix)
        flags |= kNoPrefix;
    if ((style & kStaticEditControl) && (flags & kWordBreak))
        flags |= kEditControl;
    return flags;
}

Box PlaceLabelText(Box area, int alignment, int textHeight)
{
    if (alignment == LabelBottom) {
        area.top = std::max(area.top, area.bottom - textHeight);
    } else if (alignment == LabelCentre) {
        const int middle = (area.top + area.bottom) / 2;
        area.top = std::max(area.top, middle - textHeight / 2);
        area.bottom = std::min(area.bottom, middle + textHeight / 2);
    }
    return area;
}

std::vector<std::uint32_t> GradientColumns(std::uint32_t left, std::uint32_t right, int width)
{
    std::vector<std::uint32_t> columns;
    if (width < 1)
        return columns;
    auto channel = [](std::uint32_t colour, int shift) { return static_cast<double>((colour >> shift) & 0xFF); };
    const std::uint32_t start = std::min(left, right);
    double value[3], step[3];
    for (int c = 0; c < 3; ++c) {
        value[c] = channel(start, 8 * c);
        step[c] = (channel(right, 8 * c) - channel(left, 8 * c)) / width;
    }
    columns.reserve(static_cast<size_t>(width));
    for (int x = 0; x < width; ++x) {
        std::uint32_t colour = 0;
        for (int c = 0; c < 3; ++c) {
            // Truncated toward zero, then the low byte: a channel that ran below 0 or above 255 wraps.
            const auto whole = static_cast<std::int64_t>(value[c]);
            colour |= (static_cast<std::uint32_t>(whole) & 0xFF) << (8 * c);
            value[c] += step[c];
        }
        columns.push_back(colour);
    }
    return columns;
}

const ChromePiece ChromeDrawOrder[ChromePieceCount] = {ChromeTopLeft,    ChromeTop,    ChromeTopRight,
                                                       ChromeLeft,       ChromeCenter, ChromeRight,
                                                       ChromeBottomLeft, ChromeBottom, ChromeBottomRight};

void ChromeLayout(const PieceSize (&p)[ChromePieceCount], int width, int height, Box (&out)[ChromePieceCount])
{
    const PieceSize tl = p[ChromeTopLeft], top = p[ChromeTop], tr = p[ChromeTopRight];
    const PieceSize bl = p[ChromeBottomLeft], bottom = p[ChromeBottom], br = p[ChromeBottomRight];
    const PieceSize left = p[ChromeLeft], right = p[ChromeRight];
    out[ChromeTopLeft] = {0, 0, tl.width, tl.height};
    out[ChromeTop] = {tl.width, 0, width - tr.width, top.height};
    out[ChromeTopRight] = {width - tr.width, 0, width, tr.height};
    out[ChromeLeft] = {0, tl.height, left.width, height - bl.height};
    // The centre and the bottom edge both end where the bottom left corner begins.
    out[ChromeCenter] = {left.width, top.height, width - right.width, height - bl.height};
    out[ChromeRight] = {width - right.width, tr.height, width, height - br.height};
    out[ChromeBottomLeft] = {0, height - bl.height, bl.width, height};
    out[ChromeBottom] = {bl.width, height - bl.height, width - br.width, height - bl.height + bottom.height};
    out[ChromeBottomRight] = {width - br.width, height - br.height, width, height};
}

std::vector<BarTile> BarLayout(bool horizontal, PieceSize start, PieceSize middle, PieceSize end, int width,
                               int height)
{
    auto present = [](PieceSize s) { return s.width > 0 && s.height > 0; };
    std::vector<BarTile> tiles;
    if (present(start))
        tiles.push_back({BarStart, {0, 0, start.width, start.height}, start.width, start.height});
    if (horizontal) {
        if (present(end))
            tiles.push_back({BarEnd, {width - end.width, 0, width, end.height}, end.width, end.height});
        if (!present(middle))
            return tiles;
        const int runEnd = present(end) ? width - end.width : width;
        for (int x = present(start) ? start.width : 0; x < runEnd; x += middle.width) {
            const int w = std::min(middle.width, runEnd - x);
            tiles.push_back({BarMiddle, {x, 0, x + w, middle.height}, w, middle.height});
        }
    } else {
        if (present(end))
            tiles.push_back({BarEnd, {0, height - end.height, end.width, height}, end.width, end.height});
        const int startHeight = present(start) ? start.height : 0;
        const int endHeight = present(end) ? end.height : 0;
        const int stretch = height - endHeight - startHeight;
        if (present(middle) && stretch > 0)
            tiles.push_back({BarMiddle, {0, startHeight, middle.width, startHeight + stretch}, middle.width,
                             middle.height});
    }
    return tiles;
}

}  // namespace zcmod
