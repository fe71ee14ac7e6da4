// The static family's arithmetic at the edges the Wine golden of the family does not show: style bits beyond the
// plain alignments, text taller than its area, falling gradients, bars without ends or too short for a middle.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "controls/core/StaticLayout.h"

using namespace zcmod;

TEST(StaticLayout, LabelFlagsFollowTheFirstMatchingStyleBit)
{
    const struct {
        std::uint32_t style, flags;
    } cases[] = {
        {0x3, 0x16},          // right wins over centre
        {0xB, 0x16},          // SS_SIMPLE has bit 1: right, wrapped
        {0x8, 0x24},          // bit 3 alone: one line
        {0x81 | 0x100, 0x815},
        {0x50000000, 0x14},   // window bits don't count
        {0x2000, 0x2014},     // SS_EDITCONTROL: an edit control's wrapping
        {0x200C, 0x24},       // and nothing for a single line
    };
    for (const auto& c : cases)
        EXPECT_EQ(LabelTextFlags(c.style), c.flags) << std::hex << c.style;
}

TEST(StaticLayout, TextPlacementStaysInsideTheArea)
{
    const Box area = {0, 10, 100, 70};
    EXPECT_EQ(PlaceLabelText(area, LabelBottom, 200), area);
    EXPECT_EQ(PlaceLabelText(area, LabelCentre, 17), (Box{0, 32, 100, 48})) << "each half truncated";
    EXPECT_EQ(PlaceLabelText(area, LabelCentre, 500), area);
}

TEST(StaticLayout, GradientColumns)
{
    EXPECT_TRUE(GradientColumns(0, 0xFFFFFF, 0).empty());
    EXPECT_TRUE(GradientColumns(0, 0xFFFFFF, -5).empty());
    // Rising: 0x000000 to 0x0000FF (red) over 4 columns in steps of 63.75.
    EXPECT_EQ(GradientColumns(0x000000, 0x0000FF, 4), (std::vector<std::uint32_t>{0x00, 0x3F, 0x7F, 0xBF}));
    // Falling, numerically: starts at the right colour and moves on by the same (negative) step, wrapping.
    EXPECT_EQ(GradientColumns(0x0000FF, 0x000000, 4), (std::vector<std::uint32_t>{0x00, 0xC1, 0x81, 0x41}));
    // Numerically lower on the left although its red is higher: an ordinary run from left to right.
    EXPECT_EQ(GradientColumns(0x0000FF, 0x010000, 2), (std::vector<std::uint32_t>{0x0000FF, 0x00007F}));
}

TEST(StaticLayout, BarPieces)
{
    // Without ends the middle runs over the whole width, the last tile cut.
    const std::vector<BarTile> t = BarLayout(true, {0, 0}, {4, 6}, {0, 0}, 10, 6);
    ASSERT_EQ(t.size(), 3u);
    EXPECT_EQ(t[2].dest, (Box{8, 0, 10, 6}));
    // Too short for the middle: only the ends.
    EXPECT_EQ(BarLayout(false, {6, 5}, {6, 8}, {6, 3}, 6, 8).size(), 2u);
}
