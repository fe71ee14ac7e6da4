// Portable arithmetic and text rules of the skinned controls: where the step bar's pieces go, and the text a
// combo box's tooltip shows. Nothing here draws or reads a window.
#pragma once

#include <string>
#include <vector>

namespace zcmod {

// A tile of the step bar's filling: its column and its width, taken from the left of the tile picture.
struct StepBarTile {
    int x = 0;
    int width = 0;
};

// Where the step bar's pieces go in a window `width` wide, for `steps` steps with `current` of them done. The
// steps divide the empty bar's width (`backgroundWidth`), not the window's: a wider or narrower window does
// not rescale them. The filling starts after the start piece (`leftWidth`) and is tiled up to the current
// step's share, never past the end piece's place; the end piece closes the bar once current >= steps. Nothing
// is checked: a count of no steps, past the end or below the start gives what the arithmetic gives, bounded by
// the window.
struct StepBarLayout {
    int segment = 0;               // the empty bar's width / steps, 0 without steps
    bool end = false;              // the end piece is drawn, at endX
    int endX = 0;
    std::vector<StepBarTile> tiles;
    std::vector<int> separators;   // columns of the separators between steps
};

StepBarLayout LayoutStepBar(int steps, int current, int width, int backgroundWidth, int leftWidth, int tileWidth,
                            int rightWidth, bool hasRight);

// A tooltip shows text without prefixes: every run of ampersands becomes one.
void CollapseAmpersandRuns(std::wstring& text);

}  // namespace zcmod
