// Helpers shared by the source files of CNBitmapUtil: frame geometry with overflow checks, header records and
// scan-line transfers through a private copy of a store's header.
#pragma once

#include <windows.h>

#include <cstddef>

namespace zcmod {

constexpr int kFramesPerStore = 512;
constexpr int kStoreCount = 8;

inline bool IsFrameIndex(int index)
{
    return index >= 0 && index < kFramesPerStore;
}

// Bytes of one padded 24-bit row and of one padded frame. False when width or height is under 1 or the frame
// would not fit in a signed 32-bit size.
bool FrameGeometry(int width, int height, int& stride, int& size);

// A 44-byte header record of a 24-bit, bottom-up, uncompressed bitmap (header and 4 spare bytes). Null when
// the geometry is invalid or memory runs out. Free with FreeInfo.
BITMAPINFO* NewInfo24(int width, int height);
void FreeInfo(BITMAPINFO* info);
// Bytes in a header record: the header and its palette area (at least the 4 spare bytes).
size_t InfoBytes(const BITMAPINFO* info);

// Moves `lines` scan lines starting at scan line `start` (counted from the bottom) between `bitmap` and
// `bits` at 24 bits through a private copy of `info`, whose height is negated when `topDown` is set. The
// store's header is never written to. Returns the lines moved (GetDIBits / SetDIBits).
int ReadRows(HBITMAP bitmap, const BITMAPINFO* info, int start, int lines, void* bits, bool topDown);
int WriteRows(HBITMAP bitmap, const BITMAPINFO* info, int start, int lines, const void* bits, bool topDown);

// The width and height of a platform bitmap, false if it can't be measured.
bool BitmapSize(HBITMAP bitmap, int& width, int& height);

// A 24-bit DIB section of width x height; `bits` gets its pixels (bottom-up, padded rows). Null on failure.
HBITMAP CreateSection24(int width, int height, void** bits);

}  // namespace zcmod
