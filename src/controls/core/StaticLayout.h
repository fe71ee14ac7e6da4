// The arithmetic of the static family, without a window: label flags from a static's style, the vertical
// placement of a label's text, the colours of a gradient's columns and where the pieces of a nine-piece
// frame and of a three-piece bar go. The controls draw what these work out.
#pragma once

#include <cstdint>
#include <vector>

namespace zcmod {

struct Box {
    int left, top, right, bottom;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool operator==(const Box& o) const
    {
        return left == o.left && top == o.top && right == o.right && bottom == o.bottom;
    }
};

struct PieceSize {
    int width, height;
};

// The text-drawing flags (DT_*) of a label with this window style: right, centred, single line or left,
// each word-wrapped except the single line, and no prefix processing with SS_NOPREFIX; SS_EDITCONTROL
// wraps as an edit control does, breaking a word longer than a line.
std::uint32_t LabelTextFlags(std::uint32_t style);

// The vertical placements of a label's text.
enum LabelVerticalAlignment { LabelTop = 0, LabelBottom = 1, LabelCentre = 2 };

// The rectangle a label's text is drawn in: `area` with its top (and, centred, its bottom) moved so that
// text of `textHeight` sits at the bottom or in the middle, never beyond `area`.
Box PlaceLabelText(Box area, int alignment, int textHeight);

// The colour (0x00BBGGRR) of each of the `width` one-pixel columns of a horizontal gradient from `left`
// to `right`. The run starts at the numerically smaller colour and every channel, kept as a double, moves
// by (right channel - left channel) / width per column; a column takes the low eight bits of each channel
// truncated to an integer. When `left` is the greater value the run starts at `right` and moves further
// away from `left`, wrapping modulo 256: that is how the default pair is meant to look. Empty for a
// width below 1.
std::vector<std::uint32_t> GradientColumns(std::uint32_t left, std::uint32_t right, int width);

// Nine-piece frame pieces, in the order of their bitmap ids.
enum ChromePiece {
    ChromeTopLeft, ChromeTop, ChromeTopRight, ChromeBottomLeft, ChromeBottom, ChromeBottomRight,
    ChromeLeft, ChromeCenter, ChromeRight, ChromePieceCount
};

// Where each piece is stretched to (whole source each), in the order of drawing given by ChromeDrawOrder.
void ChromeLayout(const PieceSize (&pieces)[ChromePieceCount], int width, int height, Box (&out)[ChromePieceCount]);
extern const ChromePiece ChromeDrawOrder[ChromePieceCount];

// One placement of a piece of a bar: `dest` receives the source rectangle (0, 0, sourceWidth, sourceHeight).
enum BarPiece { BarStart, BarMiddle, BarEnd };
struct BarTile {
    BarPiece piece;
    Box dest;
    int sourceWidth, sourceHeight;
};

// The pieces of a three-piece bar, in drawing order: the start piece, the end piece, then the middle. A
// piece of zero size is absent. Horizontal: start at the left, end at the right, the middle tiled between
// them at its own size, the last tile cut to what is left (the left part of the source). Vertical: start at
// the top, end at the bottom, the middle stretched between them at its own width.
std::vector<BarTile> BarLayout(bool horizontal, PieceSize start, PieceSize middle, PieceSize end, int width,
                               int height);

}  // namespace zcmod
