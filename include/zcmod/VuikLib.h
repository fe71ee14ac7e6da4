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

protected:
    static void CheckOS();

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
