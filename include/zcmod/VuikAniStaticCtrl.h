// CVuikAniStaticCtrl: a looping frame animation, one bitmap per frame from a run of resource ids, drawn over
// what the parent paints. The frames change on a timer between StartAnimation and StopAnimation.
//
//   CVuikAniStaticSkinDef def = CVuikAniStaticSkin::m_DefaultSkinDef;
//   def.m_nFirstFrameId = IDB_BUSY_1; def.m_nLastFrameId = IDB_BUSY_8; def.m_nFrameTime = 80;
//   CVuikAniStaticSkin skin; skin.SetSkinDef(def); skin.Load();
//   CVuikAniStaticCtrl busy; busy.Create(parent, rect, 101, WS_CHILD | WS_VISIBLE, 0);
//   busy.SetSkin(&skin); busy.SizeToContent(); busy.StartAnimation();
#pragma once

#include <windows.h>

#include <vector>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikBitmap;

struct CVuikAniStaticSkinDef {
    UINT m_nFirstFrameId;  // first bitmap id of the run
    UINT m_nLastFrameId;   // last bitmap id of the run, inclusive
    int m_nFrameTime;      // milliseconds per frame
    int m_bNoMirror;       // non-zero: frames are not mirrored in a right-to-left layout
};

// The frames of the run that loaded, in order. Valid when an id is set, the frame time is at least 1 and
// at least one frame loaded.
class ZCMOD_API CVuikAniStaticSkin : public CVuikBaseSkinImpl<CVuikAniStaticSkin, CVuikAniStaticSkinDef> {
public:
    CVuikAniStaticSkin();
    virtual ~CVuikAniStaticSkin();

    // Loads each id from first to last; ids that don't load are left out. Resource ids are 16-bit: the run
    // ends at 0xFFFF.
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    // Asks the parent for the background of the client rectangle, then stretches the control's current
    // frame over it.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    int GetFrameCount() const { return static_cast<int>(m_Frames.size()); }
    CVuikBitmap* GetFrame(int index) const;
    int GetFrameTime() const { return m_SkinDef.m_nFrameTime; }

    static void SetDefaultSkinDef(CVuikAniStaticSkinDef def);
    static CVuikAniStaticSkinDef m_DefaultSkinDef;

protected:
    std::vector<CVuikBitmap*> m_Frames;
};

class ZCMOD_API CVuikAniStaticCtrl : public CVuikWindowImpl<CVuikAniStaticSkin> {
    typedef CVuikWindowImpl<CVuikAniStaticSkin> Base;

public:
    enum { AnimationTimerId = 1000 };

    CVuikAniStaticCtrl();
    // Stops the timer if the window is still there; the window itself is not destroyed.
    virtual ~CVuikAniStaticCtrl();

    // A "Static" window, owner-drawn (SS_OWNERDRAW is added to `style`), taken over.
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle);
    // Takes over an existing window and makes it owner-drawn and clipping (SS_OWNERDRAW, WS_CLIPCHILDREN,
    // WS_CLIPSIBLINGS).
    virtual BOOL SubclassWindow(HWND window);
    // Stops the timer first.
    virtual HWND UnsubclassWindow(int force);

    // Shows the first frame at once and changes frames every frame time. Nothing without a window or a skin.
    void StartAnimation();
    // The current frame stays shown.
    void StopAnimation();
    // The window takes the size of the first frame.
    virtual void SizeToContent();
    UINT GetCurrentFrame() const { return m_nCurrentFrame; }

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    using Base::OnPaint;

protected:
    virtual HWND Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                        DWORD style, DWORD exStyle, LPVOID param);
    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // WM_PAINT, and WM_DRAWITEM sent back by the parent: the buffer, or the placeholder without a valid skin.
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // The next frame, and the timer set again; with an invalid skin neither, so the animation stops.
    virtual LRESULT OnTimer(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    UINT m_nCurrentFrame;
    UINT_PTR m_nTimer;

private:
    // Builds the buffer anew and copies it onto the window now.
    void Redraw();
};
