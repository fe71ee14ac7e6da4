// The arithmetic of a window fade: its steps and the wait of one step.
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
        {39, 1, 39, 256},
        {40, 2, 20, 128},       // 255 / 2 + 1 = 128.5, truncated
        {59, 2, 29, 128},
        {1000, 50, 20, 6},      // 6.1
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

}  // namespace
