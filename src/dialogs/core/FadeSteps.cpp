#include "dialogs/core/FadeSteps.h"

namespace zcmod {

FadePlan PlanFade(unsigned time)
{
    FadePlan plan;
    plan.steps = time / 20;
    if (plan.steps < 1)
        plan.steps = 1;
    plan.stepTime = time / plan.steps;
    plan.change = static_cast<int>(255.0f / static_cast<float>(plan.steps) + 1.0f);
    return plan;
}

int NextAlpha(int alpha, unsigned direction, int change)
{
    if (direction == 0)
        return alpha < 255 ? alpha + change : alpha;
    return alpha > 0 ? alpha - change : alpha;
}

int ClampAlpha(int alpha)
{
    return alpha < 0 ? 0 : (alpha > 255 ? 255 : alpha);
}

unsigned StepWait(unsigned start, unsigned stepTime, unsigned now)
{
    // Computed in the tick counter's own 32-bit arithmetic, read as signed: a clock that moved on by more
    // than the step gives a negative wait.
    const int wait = static_cast<int>(start + stepTime - now);
    return wait >= 1 && wait <= 999 ? static_cast<unsigned>(wait) : 0;
}

void CentredOrigin(int left, int top, int right, int bottom, int width, int height, int& x, int& y)
{
    x = (right - width - left) / 2;
    y = (bottom - height - top) / 2;
}

}  // namespace zcmod
