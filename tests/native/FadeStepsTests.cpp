// The arithmetic of a window fade and of the splash screen's place.
#include <gtest/gtest.h>

#include "dialogs/core/FadeSteps.h"

namespace {

TEST(FadeSteps, PlanOfAFade)
{
    struct Case {
        unsigned time, steps, stepTime;
        int change;
    } cases[] = {
        {0, 1, 0, 256},         // no time: one step that jumps past the end
        {19, 1, 19, 256},
        {39, 1, 39, 256},
        {40, 2, 20, 128},       // 255 / 2 + 1 = 128.5, truncated
        {59, 2, 29, 128},
        {1000, 50, 20, 6},      // 6.1
        {1010, 50, 20, 6},
        {255 * 20, 255, 20, 2}, // 255 / 255 + 1 is exactly 2
        {0xFFFFFFFFu, 214748364, 20, 1},
    };
    for (const Case& c : cases) {
        const zcmod::FadePlan plan = zcmod::PlanFade(c.time);
        EXPECT_EQ(plan.steps, c.steps) << c.time;
        EXPECT_EQ(plan.stepTime, c.stepTime) << c.time;
        EXPECT_EQ(plan.change, c.change) << c.time;
    }
}

TEST(FadeSteps, AlphaMovesOnlyTowardsItsEndAndIsClampedBeforeUse)
{
    EXPECT_EQ(zcmod::NextAlpha(252, 0, 6), 258);
    EXPECT_EQ(zcmod::NextAlpha(258, 0, 6), 258);
    EXPECT_EQ(zcmod::NextAlpha(255, 0, 6), 255);
    EXPECT_EQ(zcmod::NextAlpha(3, 1, 6), -3);
    EXPECT_EQ(zcmod::NextAlpha(0, 1, 6), 0);
    EXPECT_EQ(zcmod::NextAlpha(0, 7, 6), 0) << "any direction but 0 fades out";
    EXPECT_EQ(zcmod::ClampAlpha(-3), 0);
    EXPECT_EQ(zcmod::ClampAlpha(264), 255);
}

TEST(FadeSteps, WaitOfAStep)
{
    struct Case {
        unsigned start, stepTime, now, wait;
    } cases[] = {
        {1000, 20, 1000, 20}, {1000, 20, 1019, 1},  {1000, 20, 1020, 0}, {1000, 20, 1025, 0},
        {1000, 2000, 1000, 0}, {1000, 999, 1000, 999},
        {0xFFFFFFF0u, 20, 0xFFFFFFF8u, 12},  // the tick counter wraps within a step
        {1000, 20, 0, 0},                    // a second read far behind the first: no wait of a second
    };
    for (const Case& c : cases)
        EXPECT_EQ(zcmod::StepWait(c.start, c.stepTime, c.now), c.wait) << c.start << " " << c.now;
}

TEST(FadeSteps, CentredOriginTruncates)
{
    int x = 0, y = 0;
    zcmod::CentredOrigin(0, 0, 1280, 1024, 441, 260, x, y);
    EXPECT_EQ(x, 419);
    EXPECT_EQ(y, 382);
    zcmod::CentredOrigin(-100, 0, 1180, 1024, 0, 0, x, y);  // a desktop that starts left of 0
    EXPECT_EQ(x, 640);
    zcmod::CentredOrigin(0, 0, 100, 100, 301, 200, x, y);   // a picture larger than the screen
    EXPECT_EQ(x, -100);
    EXPECT_EQ(y, -50);
}

}  // namespace
