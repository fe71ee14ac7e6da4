// Pixel goldens: what a control shows, captured by BitBlt, against a reviewed PNG under tests/golden/.
//
//   EXPECT_TRUE(zcmod_test::MatchesGolden("button_normal_Default_ltr", w, h, pixels));
//
// A mismatch (or a missing golden) writes NAME.actual.png and NAME.diff.png beside the golden: the diff shows
// the picture dimmed, with every pixel that differs in red. Goldens are written only on purpose, by
// scripts/update-goldens.sh, which sets ZCMOD_UPDATE_GOLDENS=1; look at each one before committing it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace zcmod_test {

// `pixels` are top-down rows of 0x00RRGGBB (the top byte is ignored). A pixel matches when each of its
// channels is within `tolerance` of the golden's.
::testing::AssertionResult MatchesGolden(const std::string& name, int width, int height, const uint32_t* pixels,
                                         int tolerance = 2);

}  // namespace zcmod_test
