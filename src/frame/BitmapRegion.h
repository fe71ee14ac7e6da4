// Turning a picture into a window region: one walk over the pixels serves both CVuikLib::BitmapToRegion and
// CNBitmapUtil::BitmapToRegion, which differ only in how they read a pixel and in what a picture without a
// single region pixel gives.
#pragma once

#include <windows.h>

#include <cstdint>

namespace zcmod {

// The colour of pixel (x, y) of `picture`, as TestColorMatch compares it.
typedef uint32_t (*RegionPixelReader)(const void* picture, int x, int y);

// What the walk does with the record that is pending when the last pixel is reached.
enum class LastRecord {
    SkipIfEmpty,  // only a record with rectangles becomes a region: no such pixel at all gives null
    AlwaysFlush,  // the last record becomes a region even when empty: such a picture gives an empty region
};

// A region (owned by the caller) of every pixel of a width x height picture that does not match `colour`
// within `tolerance`. Each row's runs of such pixels become rectangles one row high, collected in a record of
// at most 2,000 rectangles whose bound starts at all zeros (so it always takes in the origin) and keeps the
// last pixel's right and bottom coordinates. A full record, and the one pending at the last pixel, become a
// region with ExtCreateRegion and are combined by RGN_OR. Null when memory runs out or nothing was flushed.
HRGN RegionFromPixelRuns(int width, int height, RegionPixelReader read, const void* picture, uint32_t colour,
                         uint32_t tolerance, LastRecord last);

}  // namespace zcmod
