// CVuikSplashScreen: a picture with soft edges in the middle of the screen, composed over what the desktop
// shows at that moment and cut to the picture's shape. CVuikWindowFader: fades a window in or out by stepping
// its layered alpha.
//
//   CVuikSplashScreen splash(ZCMOD_GetCommonZGR(), ZGR_PNG_SPLASH);   // a 32-bit PNG gives the soft edges
//   splash.Show(400);                 // blends in over 400 ms; once per object
//   ... start the application ...
//   splash.Hide(300);                 // blends out; the windows stay until the object goes
//
//   CVuikWindowFader fader;
//   fader.FadeIn(window, 250);        // shows the window and raises its alpha over 250 ms
//   fader.FadeOut(window, 250);       // leaves it shown at alpha 0
//
// Both run on the calling thread and block it for the whole effect, with no message loop of their own.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class CNBitmapUtil;

class ZCMOD_API CVuikSplashScreen {
public:
    // Registers the window classes and loads picture `id` of `module` (null: the process's own module). A PNG
    // with alpha gives the soft edges; a picture without alpha is shown as it is, uncut.
    CVuikSplashScreen(HINSTANCE module, unsigned int id);
    virtual ~CVuikSplashScreen();
    // Copies are flat: both objects then share the picture and the windows. Don't copy a splash screen.
    CVuikSplashScreen(const CVuikSplashScreen& other) = default;
    CVuikSplashScreen& operator=(const CVuikSplashScreen& other) = default;

    // Makes the windows, composes the picture over the desktop and blends the window in over `time` ms.
    // 1 on success; 0 when the windows could not be made or the splash was shown already.
    int Show(unsigned int time);
    // Composes the picture over the desktop as it is now, blends the window out over `time` ms and hides it.
    // Nothing happens before Show. Always returns 0.
    int Hide(unsigned int time);

    virtual LRESULT OnPaint(WPARAM wParam, LPARAM lParam);
    // Paints the picture into the context in wParam, if any; returns 1.
    virtual LRESULT OnEraseBkGnd(WPARAM wParam, LPARAM lParam);

protected:
    CNBitmapUtil* m_pBitmap;  // owned; the picture, its transparency plane and the composition
    HWND m_hWndOwner;         // the invisible owner of the splash window
    HWND m_hWnd;              // the splash window

private:
    HBITMAP LoadBitmapW(HINSTANCE module, unsigned int id);
    int CreateSplashWindow();
    static void RegisterWndClass();
    static LRESULT CALLBACK SplashScreenProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    int AlphablendBitmaps();
    int SetRegion(int redraw);
    // Copies the composition (or the bare picture when there is none) to (0, 0) of `dc`.
    void PaintPicture(HDC dc);
};

class ZCMOD_API CVuikWindowFader {
public:
    CVuikWindowFader();
    virtual ~CVuikWindowFader();

    // Makes the window layered if it is not, shows it and raises its alpha from 0 to 255 over `time` ms.
    void FadeIn(HWND window, unsigned int time);
    // Lowers the alpha from 255 to 0 over `time` ms; the window stays shown, at alpha 0.
    void FadeOut(HWND window, unsigned int time);
    // FadeIn with timeIn, a pause of `hold` ms, FadeOut with timeOut.
    void FadeInOut(HWND window, unsigned int hold, unsigned int timeIn, unsigned int timeOut);
    // FadeOut with timeOut, a pause of `hold` ms, FadeIn with timeIn (the parameters keep FadeInOut's order).
    void FadeOutIn(HWND window, unsigned int hold, unsigned int timeIn, unsigned int timeOut);

protected:
    int m_bLayered;  // 1 if the platform has layered windows; without them a fade only shows or hides

private:
    void SetWindowToLayered(HWND window);
    int IsWin2000XP();
    // direction 0 fades in, 1 fades out.
    void Fade(HWND window, unsigned int direction, unsigned int time);
};
