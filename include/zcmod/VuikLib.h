// CVuikLib: the toolkit's process-wide state. Never instantiated; every member is static.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class ZCMOD_API CVuikLib {
public:
    // Stores the application's instance (passed to every control's window creation) and the instance that
    // holds its skin bitmaps, reads the operating system flags and measures the display scale. May be
    // called again; each call repeats all of it. Nothing in the library calls it for the client.
    static void Init(HINSTANCE hInst, HINSTANCE hInstRes);

    static HINSTANCE GetInstance();
    static void SetInstance(HINSTANCE hInst);
    static HINSTANCE GetResourceInstance();
    static void SetResourceInstance(HINSTANCE hInstRes);

    static bool IsWindows9x();
    // True for 5.1 and 6.1, false for 5.0, 6.0 and 10.0: major and minor are tested separately.
    static bool IsWindowsXP();

    // Whether loaded skin bitmaps are resized by the scale factors. Set before the first skin loads.
    static void SetAutoScale(bool autoScale);
    static bool GetAutoScale();
    static double GetScaleX();
    static double GetScaleY();

    // Stores the layout flag and returns the previous one; nothing already drawn or loaded changes.
    // Set before the first skin loads.
    static DWORD SetLayout(DWORD layout);
    static DWORD GetLayout();
    // Right-to-left exactly when the layout flag equals 1 (LAYOUT_RTL).
    static int IsLayoutRTL();

    // ---- Bitmap primitives. Stateless; every bitmap, region or icon they return belongs to the caller. ----

    // The image over the background through the mask, byte by byte: a mask byte of 0 shows the image, 255 the
    // background, with the divide by 256 of BlenderFunc. All three are read at the image's size.
    static HBITMAP BlendBitmap(HBITMAP mask, HBITMAP under, HBITMAP image);
    // The same against the part of `under` that starts at `offset`; empty if the image would pass its edge.
    static HBITMAP BlendBitmapOffset(HBITMAP mask, HBITMAP under, HBITMAP image, POINT offset);
    // The same over a solid colour (COLORREF).
    static HBITMAP BlendBitmapColor(HBITMAP mask, HBITMAP image, DWORD colour);
    // Tiles `bitmap` over `size`. The tile's height is compared with the target's width (see the .cpp).
    static HBITMAP TileBitmap(HBITMAP bitmap, const SIZE& size);
    static HBITMAP CreateColorBitmap(DWORD colour, SIZE size);
    // A region of every pixel that does not match `colour` within `tolerance`; both are given in the byte
    // order of a 32-bit pixel in memory (blue in the low byte), not as a COLORREF.
    static HRGN BitmapToRegion(HBITMAP bitmap, DWORD colour, DWORD tolerance);
    // 1 when the pixel matches: all 32 bits for a zero tolerance, else each of the three low bytes within its
    // limit, a negative difference counting one less.
    static int TestColorMatch(DWORD pixel, DWORD colour, DWORD tolerance);
    static HBITMAP CreateMirroredBitmap(HBITMAP bitmap);
    // Flips the bitmap left to right in place; 1 on success.
    static int MirrorBitmap(HBITMAP bitmap);
    static HICON CreateMirroredIcon(HICON icon);
    static HBITMAP IconToBitmap(HICON icon, UINT flags);

protected:
    static void CheckOS();

    // result[i] = (under[i] * mask[i] + (255 - mask[i]) * image[i]) >> 8 for every byte below `size`.
    static void BlenderFunc(BYTE* mask, BYTE* under, BYTE* image, BYTE* result, DWORD size);
    // A 24-bit header record for a bitmap, with the toolkit's palette-size rule; null on failure.
    static BITMAPINFO* CreateBitmapInfoStruct(HBITMAP bitmap);

    static HINSTANCE m_hInst;
    static HINSTANCE m_hInstRes;
    static bool m_IsWindows9x;
    static bool m_IsWindowsXP;
    static bool m_IsAutoScale;
    static double m_ScaleX;
    static double m_ScaleY;
    static DWORD m_dwLayout;

private:
    CVuikLib() = delete;
};

// Releases what the library holds: the image stores, the resource modules, the colour cache, the dialog map
// and the font registrations. Safe to call twice; it runs again by itself at process exit.
ZCMOD_EXTERN_C ZCMOD_API void ZCMOD_Finalize();
