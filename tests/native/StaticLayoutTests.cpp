// The static family's arithmetic: label flags, text placement, gradient columns and bar pieces (the frame's
// pieces are checked on the screen by the Wine tests).
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
        {0x0, 0x14},          // left: word-wrapped
        {0x1, 0x15},          // centre
        {0x2, 0x16},          // right
        {0x3, 0x16},          // right wins over centre
        {0xB, 0x16},          // SS_SIMPLE has bit 1: right, wrapped
        {0xC, 0x24},          // left without word wrap: one line
        {0x8, 0x24},
        {0x80, 0x814},        // no prefix
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
    EXPECT_EQ(PlaceLabelText(area, LabelTop, 16), area);
    EXPECT_EQ(PlaceLabelText(area, LabelBottom, 16), (Box{0, 54, 100, 70}));
    EXPECT_EQ(PlaceLabelText(area, LabelBottom, 200), area);
    EXPECT_EQ(PlaceLabelText(area, LabelCentre, 16), (Box{0, 32, 100, 48}));
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
    // The default pair over 16 columns, as the skin draws it.
    const std::vector<std::uint32_t> d = GradientColumns(0xFFF0E6, 0x231400, 16);
    ASSERT_EQ(d.size(), 16u);
    EXPECT_EQ(d[0], 0x231400u);
    EXPECT_EQ(d[1], 0x1506F2u);
    EXPECT_EQ(d[2], 0x07F9E4u);
}

TEST(StaticLayout, BarPieces)
{
    // Across: tiles from the start piece's width to the end piece's left edge, the last one cut.
    std::vector<BarTile> t = BarLayout(true, {5, 6}, {4, 6}, {3, 6}, 30, 10);
    ASSERT_EQ(t.size(), 2u + 6u);
    EXPECT_EQ(t[0].dest, (Box{0, 0, 5, 6}));
    EXPECT_EQ(t[1].piece, BarEnd);
    EXPECT_EQ(t[1].dest, (Box{27, 0, 30, 6}));
    EXPECT_EQ(t[2].dest, (Box{5, 0, 9, 6}));
    EXPECT_EQ(t.back().dest, (Box{25, 0, 27, 6}));
    EXPECT_EQ(t.back().sourceWidth, 2);
    // Without ends the middle runs over the whole width; without a middle there is a gap.
    t = BarLayout(true, {0, 0}, {4, 6}, {0, 0}, 10, 6);
    ASSERT_EQ(t.size(), 3u);
    EXPECT_EQ(t[2].dest, (Box{8, 0, 10, 6}));
    EXPECT_EQ(BarLayout(true, {5, 6}, {0, 0}, {3, 6}, 30, 6).size(), 2u);
    // Downwards: the middle is stretched between the ends at its own width, once.
    t = BarLayout(false, {6, 5}, {6, 8}, {6, 3}, 6, 40);
    ASSERT_EQ(t.size(), 3u);
    EXPECT_EQ(t[1].dest, (Box{0, 37, 6, 40}));
    EXPECT_EQ(t[2].dest, (Box{0, 5, 6, 37}));
    EXPECT_EQ(t[2].sourceHeight, 8);
    // Too short for the middle: only the ends.
    EXPECT_EQ(BarLayout(false, {6, 5}, {6, 8}, {6, 3}, 6, 8).size(), 2u);
}
