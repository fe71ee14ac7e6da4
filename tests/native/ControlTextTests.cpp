// The step bar's layout arithmetic, with the counts a wizard should never send, and the tooltip text rule of
// the combo box's list.
#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "controls/core/ControlText.h"

using zcmod::LayoutStepBar;
using zcmod::StepBarLayout;

namespace {

// The shipped bar: 400 wide, a start and an end piece 6 wide, a filling tile 1 wide.
StepBarLayout Shipped(int steps, int current, int width = 400)
{
    return LayoutStepBar(steps, current, width, 400, 6, 1, 6, true);
}

int FilledTo(const StepBarLayout& layout)
{
    return layout.tiles.empty() ? -1 : layout.tiles.back().x + layout.tiles.back().width;
}

TEST(StepBarLayout, FillsSeparatesAndCloses)
{
    const struct {
        const char* what;
        int steps, current, width;
        int filledTo;  // -1: no tile
        bool end;
        size_t separators;
    } cases[] = {
        {"no steps", 0, 0, 400, -1, true, 0},
        {"at the start", 4, 0, 400, -1, false, 3},
        {"half way", 4, 2, 400, 200, false, 3},
        {"all done", 4, 4, 400, 394, true, 3},
        {"past the end", 4, 9, 400, 394, true, 3},
        {"below the start", 4, -1, 400, -1, false, 3},
        {"far below", 4, INT_MIN, 400, -1, false, 3},
        {"far past", 4, INT_MAX, 400, 394, true, 3},
        {"uneven", 3, 1, 400, 133, false, 2},
        {"more steps than columns", 1000, 999, 400, -1, false, 1},
        {"all the steps there are", INT_MAX, INT_MAX, 400, -1, true, 1},
        {"negative count", -3, 0, 400, -1, true, 0},
        {"narrow window", 4, 3, 250, 244, false, 2},
        {"wide window: steps of the empty bar", 4, 1, 800, 100, false, 3},
        {"no window", 4, 4, 0, -1, true, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const StepBarLayout layout = Shipped(c.steps, c.current, c.width);
        EXPECT_EQ(FilledTo(layout), c.filledTo);
        EXPECT_EQ(layout.end, c.end);
        EXPECT_EQ(layout.separators.size(), c.separators);
        for (const auto& tile : layout.tiles) {
            ASSERT_GE(tile.x, 6);
            ASSERT_LE(tile.x + tile.width, layout.endX) << "a tile under the end piece";
        }
    }
}

TEST(StepBarLayout, WideTilesAreCutAtTheEndPiece)
{
    // Tiles 8 wide from column 6 reach 30; the last is cut to the 4 columns before the end piece at 34.
    const StepBarLayout layout = LayoutStepBar(2, 2, 40, 40, 6, 8, 6, true);
    ASSERT_EQ(layout.tiles.size(), 4u);
    EXPECT_EQ(layout.tiles.back().x, 30);
    EXPECT_EQ(layout.tiles.back().width, 4);
    // Without an end piece the filling runs to the window's edge and nothing closes it.
    const StepBarLayout open = LayoutStepBar(2, 2, 40, 40, 6, 7, 0, false);
    EXPECT_EQ(FilledTo(open), 40);
    EXPECT_FALSE(open.end);
}

TEST(ComboTipText, AmpersandRunsCollapseToOne)
{
    const struct {
        const wchar_t* in;
        const wchar_t* out;
    } cases[] = {{L"A&&&&B", L"A&B"}, {L"A&&B", L"A&B"}, {L"A&B", L"A&B"}, {L"&&&", L"&"}, {L"&&x&&", L"&x&"},
                 {L"", L""}, {L"no prefix", L"no prefix"}};
    for (const auto& c : cases) {
        std::wstring text = c.in;
        zcmod::CollapseAmpersandRuns(text);
        EXPECT_EQ(text, c.out);
    }
}

}  // namespace
