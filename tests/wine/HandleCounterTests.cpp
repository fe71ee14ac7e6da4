// The handle counter that every control family's hygiene test stands on: it must see a deliberate leak, and
// see it go when the library frees the object.
#include <gtest/gtest.h>

#include "HandleCounter.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikLib.h"
#include "wine/TestSkinIds.h"

namespace {

TEST(HandleCounter, SeesWhatTheLibraryCreatesAndFrees)
{
    zcmod_test::HandleCounter counter;
    ASSERT_GE(counter.Patched(), 10);  // the DLL creates and frees through its imports
    const auto before = counter.Live();

    // A picture loaded by the library and freed by it leaves nothing behind.
    {
        CVuikBitmap picture;
        picture.LoadFromRes(GetModuleHandleW(nullptr), IDB_TEST_BADGE);
        ASSERT_NE(picture.GetPrimary(), nullptr);
        EXPECT_GE(counter.Live()[zcmod_test::HandleCounter::Bitmap], before[zcmod_test::HandleCounter::Bitmap] + 1);
    }
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();

    // A region the library makes for its caller and the caller forgets is one region more.
    CVuikBitmap picture;
    picture.LoadFromRes(GetModuleHandleW(nullptr), IDB_TEST_BADGE);
    const auto loaded = counter.Live();
    HRGN leaked = picture.PrimaryToRegion(0xFFFFFF, 0);
    ASSERT_NE(leaked, nullptr);
    const auto after = counter.Live();
    EXPECT_EQ(after[zcmod_test::HandleCounter::Region], loaded[zcmod_test::HandleCounter::Region] + 1)
        << after.ToString();
    EXPECT_EQ(after.Total(), loaded.Total() + 1) << after.ToString();
    DeleteObject(leaked);
}

}  // namespace
