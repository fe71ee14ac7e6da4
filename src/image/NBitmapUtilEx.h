// CNBitmapUtilEx: a CNBitmapUtil that remembers which frames stand mirrored and draws frames onto device
// contexts, mirroring them first on request. Internal: not exported, and nothing in the library makes one.
#pragma once

#include <windows.h>

#include "zcmod/NBitmapUtil.h"

class CNBitmapUtilEx : public CNBitmapUtil {
public:
    CNBitmapUtilEx();
    virtual ~CNBitmapUtilEx();

    CNBitmapUtilEx(const CNBitmapUtilEx&) = delete;
    CNBitmapUtilEx& operator=(const CNBitmapUtilEx&) = delete;

    // Mirrors the whole frame left to right; on success its flag is inverted. 1 or 0.
    int MirrorBitmap(BitmapType type, int index);
    // Whether the frame stands mirrored (its flag).
    int IsMirrored(BitmapType type, int index) const;

    // Draws the whole frame at (x, y). With `mirror` set, a frame that does not stand mirrored is mirrored
    // first; a request of 0 leaves a mirrored frame as it is. 0 for a null context or an empty frame.
    int DrawBitmap(HDC dc, int x, int y, BitmapType type, int index, int mirror);
    // The same, stretched into (x, y, width, height).
    int DrawBitmap(HDC dc, int x, int y, int width, int height, BitmapType type, int index, int mirror);
    // The same into a rectangle; 0 for a null rectangle.
    int DrawBitmap(HDC dc, const RECT* rect, BitmapType type, int index, int mirror);

private:
    bool PrepareDraw(HDC dc, BitmapType type, int index, int mirror);

    int m_bMirrored[8][512];
};
