// CVuikBitmap: a loaded skin picture, a primary with an optional mask of the same size, scaled and mirrored as
// the library's settings ask. The mask weighs background against image per byte: black shows the image,
// white the background.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/NBitmapUtil.h"

class ZCMOD_API CVuikBitmap : public CNBitmapUtil {
public:
    CVuikBitmap();
    // Clears the primary and the mask first, then lets the stores free what they own: a bitmap given to
    // Attach and not taken back is not deleted.
    virtual ~CVuikBitmap();
    // Copies share their handles with the original.
    CVuikBitmap(const CVuikBitmap& other);
    CVuikBitmap& operator=(const CVuikBitmap& other);

    // Loads picture `id` of `module` (with its transparency plane as the mask, where it has one), resizes it by
    // the display scale when auto scale is on and both scales differ from 1, and mirrors it in a
    // right-to-left layout.
    void LoadFromRes(HINSTANCE module, UINT id);

    HBITMAP GetPrimary() const { return m_hPrimary; }
    HBITMAP GetMask() const { return m_hMask; }
    int GetWidth() const { return m_bmPrimary.bmWidth; }
    int GetHeight() const { return m_bmPrimary.bmHeight; }
    bool IsScaled() const { return m_nPrimaryType == BT_IMAGE_RESIZED; }

    // Deletes the present primary (whoever owns it) and takes `bitmap`.
    void Attach(HBITMAP bitmap);
    void AttachMask(HBITMAP bitmap);
    // Gives the handle up; the store is not told.
    HBITMAP Detach();
    HBITMAP DetachMask();
    // Flips primary and mask left to right, where present.
    void Mirror();

    // The three bytes at 3 * x + 4 * y of the primary's padded top-down pixels, or 0xFFFFFFFF.
    DWORD GetPixel(int x, int y);
    HRGN PrimaryToRegion(DWORD colour, DWORD tolerance);
    HRGN MaskToRegion(DWORD colour, DWORD tolerance);
    // A snapshot of part of `hdc` into frame `frame` of BT_BACKGROUND (or BT_BACKGROUND_RESIZED when
    // `resized` is not 0); the store owns the bitmap.
    HBITMAP GetBackgroundStaticDC(HDC hdc, int x, int y, int width, int height, int resized, int frame);

protected:
    void SetPrimary(HBITMAP bitmap);
    void SetMask(HBITMAP bitmap);
    void DeletePrimary();
    void DeleteMask();

    BitmapType m_nPrimaryType;
    HBITMAP m_hPrimary;
    BITMAP m_bmPrimary;
    BitmapType m_nMaskType;
    HBITMAP m_hMask;
    BITMAP m_bmMask;
};
