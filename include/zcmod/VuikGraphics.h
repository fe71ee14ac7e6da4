// CVuikGraphics: draws CVuikBitmap pictures on a device context it does not own, stretching with HALFTONE
// and masking through CVuikLib::BlendBitmap. Made on the stack for one drawing pass.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class CVuikBitmap;

class ZCMOD_API CVuikGraphics {
public:
    explicit CVuikGraphics(HDC hdc) : m_hDC(hdc) {}
    virtual ~CVuikGraphics() {}

    operator HDC() const { return m_hDC; }

    // At (x, y) at the picture's size.
    void DrawImage(CVuikBitmap* bitmap, int x, int y);
    // The whole picture into the rectangle.
    void DrawImage(CVuikBitmap* bitmap, int x, int y, int width, int height);
    void DrawImage(CVuikBitmap* bitmap, RECT dest);
    // `source` of the picture into `dest`: stretched first, then masked at the target size.
    void DrawImage(CVuikBitmap* bitmap, RECT dest, RECT source);
    void DrawImage(CVuikBitmap* bitmap, RECT dest, int x, int y, int width, int height);

protected:
    // A new bitmap (the caller's) of width x height compatible with m_hDC holding `source` of `bitmap`.
    HBITMAP CopyBitmapPart(HBITMAP bitmap, RECT source, int width, int height);
    // BitBlt when the sizes agree, else StretchBlt in HALFTONE mode; always SRCCOPY (`rop` is ignored).
    void MyStretchBlt(HDC dest, int x, int y, int width, int height, HDC src, int sx, int sy, int sw, int sh,
                      DWORD rop);

    HDC m_hDC;
};
