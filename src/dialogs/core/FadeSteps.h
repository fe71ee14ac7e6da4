// The arithmetic of a window fade and of the splash screen's place, apart from any window.
#pragma once

namespace zcmod {

// How a fade of `time` milliseconds is cut into steps: one step per 20 ms, at least one; each step lasts
// `stepTime` ms and moves the alpha by `change`, which is trunc(255 / steps + 1) in single precision, so
// that the last steps reach the end value before the finishing set.
struct FadePlan {
    unsigned steps;
    unsigned stepTime;
    int change;
};
FadePlan PlanFade(unsigned time);

// The alpha of the next step: fading in (direction 0) adds `change` while under 255, fading out subtracts it
// while above 0. The result may leave 0 to 255; ClampAlpha brings it back before it is used.
int NextAlpha(int alpha, unsigned direction, int change);
int ClampAlpha(int alpha);

// The wait of a step whose tick count was `start`, read again as `now`: only 1 to 999 ms is slept; any
// other value, a negative one too, means no wait.
unsigned StepWait(unsigned start, unsigned stepTime, unsigned now);

// The top-left corner that centres a picture of width x height in a screen rectangle, truncating:
// x = (right - width - left) / 2, y = (bottom - height - top) / 2.
void CentredOrigin(int left, int top, int right, int bottom, int width, int height, int& x, int& y);

}  // namespace zcmod
