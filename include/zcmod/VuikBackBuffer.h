// The back buffer: a window's cached finished look, published as the window property "PROP_BACKBUFFER" so
// that its children can copy what lies behind them. A buffer is built only in a paint; every change of look
// drops it, and the next paint builds it again from the ancestor's buffer and the client's drawing.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikMessages.h"

class CVuikGraphics;

// The window property that holds the bitmap of a live buffer.
#define VUIK_PROP_BACKBUFFER L"PROP_BACKBUFFER"

// What a back buffer draws for: implemented by every window class of the toolkit.
class ZCMOD_API CVuikBackBufferClient {
public:
    virtual HWND GetHWND() = 0;
    // Paints the client's whole look, left to right, on `graphics`.
    virtual void Draw(CVuikGraphics* graphics, int width, int height) = 0;

protected:
    ~CVuikBackBufferClient() {}
};

class ZCMOD_API CVuikBackBuffer {
public:
    // `client` is not owned and must outlive the buffer's use.
    explicit CVuikBackBuffer(CVuikBackBufferClient* client);
    // Deletes the bitmap and removes the property from the window it was set on.
    virtual ~CVuikBackBuffer();

    // Builds the buffer: the ancestor's piece first, then the client's drawing, mirrored as a whole in a
    // right-to-left layout; then publishes it. Nothing for a zero (or negative) size. `graphics` stands for a
    // context compatible with the screen.
    virtual void CreateBackBuffer(int width, int height, CVuikGraphics* graphics);
    // Deletes the bitmap, and removes the property from the client's window if it has one.
    virtual void DeleteBackBuffer();
    // Copies `area` of the buffer to the same place on `hdc`, building the buffer at the size of `client`
    // first if there is none.
    virtual void DrawBackBuffer(HDC hdc, RECT client, RECT area);
    // Copies (or stretches, in HALFTONE mode) `source` of the buffer to `dest` of `hdc`; nothing at all, not
    // even a build, when either rectangle is empty.
    virtual void DrawBackBufferPart(HDC hdc, RECT client, RECT source, RECT dest);
    // Copies what lies behind `area` of the client's window (in its coordinates) to `area` of `hdc`.
    virtual void DrawParentBackBuffer(HDC hdc, RECT area);

    // The window whose buffer lies behind this one, taken at the next build. Empty: the nearest ancestor with
    // a live buffer. A named window without a buffer is made to paint first.
    void SetBackground(HWND background) { m_hBackground = background; }
    HWND GetBackground() const { return m_hBackground; }

protected:
    CVuikBackBufferClient* m_pClient;
    HBITMAP m_hBackBuffer;
    HWND m_hBackground;

private:
    // Builds the buffer at the size of `client` on a context like `hdc` if there is none; true when there is one.
    bool BuildOnDemand(HDC hdc, const RECT& client);

    // The window the property was last set on: removed from there even after the client let its window go.
    HWND m_hPublishedOn;

    CVuikBackBuffer(const CVuikBackBuffer&);
    CVuikBackBuffer& operator=(const CVuikBackBuffer&);
};
