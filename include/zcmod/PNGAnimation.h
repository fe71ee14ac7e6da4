// CPNGAnimation: plays a list of bitmaps on a window from a worker thread of its own, at a fixed delay,
// forward or backward, looping or once. It knows nothing of the pictures' format: the caller loads the frames
// (CNBitmapUtil is the usual way) and hands over their handles, which stay the caller's.
//
//   CPNGAnimation animation;
//   animation.SetAnimationMembers(11, 150, 0);          // frames, delay in ms, 0 forward (result always false)
//   for (int i = 0; i < 11; ++i)
//       animation.SetBitmapHandles(i, frames.GetBitmapHandle(BT_RESULT, i));
//   animation.SetDestinationWindow(&m_hWnd);           // the variable is read when the worker starts
//   animation.SetAnimationCoordinates(POINT{12, 40});
//   animation.StartAnimation();                        // or PlayOnce() for a single pass
//   ...
//   animation.StopAnimation();                         // waits for the worker at most 2,000 ms
//
// The first frame drawn is the one after the starting frame (SetStartupFrame), and every frame is drawn at the
// size of frame 0. A window that goes away is no error: the worker goes on until it is stopped.
//
// Threads: the worker shares the fields with the caller without a lock; call the members from one thread.
// Stop an animation before playing it once (PlayOnce over a running worker leaves the old worker running
// beside the new one). The destructor waits until every worker of the object has left.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class ZCMOD_API CPNGAnimation {
public:
    // GetLastError codes.
    enum {
        ErrorNone = 0,
        ErrorThreadHeld = 1,       // StartAnimation: a worker's handle is already held
        ErrorNullBitmap = 2,       // SetBitmapHandles: null bitmap
        ErrorNoThread = 3,         // StopAnimation, DeleteAnimation: no worker
        ErrorNullWindow = 4,       // SetDestinationWindow: null pointer
        ErrorNoMemory = 5,         // SetAnimationMembers: the array of handles could not be made
        ErrorNoFrames = 6,         // SetAnimationMembers: frame count 0
        ErrorFrameTooHigh = 7,     // SetStartupFrame: above the last frame
        ErrorFrameOutOfRange = 8   // SetBitmapHandles: index outside the frames
    };
    // How long a stop waits for the worker, in milliseconds.
    enum { StopTimeout = 2000 };

    CPNGAnimation();
    virtual ~CPNGAnimation();
    // Copies are flat: both objects then share the array and the handles, and both free them. Copy an
    // animation only before SetAnimationMembers, or hand the copy's array over by hand.
    CPNGAnimation(const CPNGAnimation& other);
    CPNGAnimation& operator=(const CPNGAnimation& other);

    // Stores frames, delay and direction (0 forward, any other value backward) and makes a new array of
    // `frames` empty handles. The former array is freed unless a worker may still be reading it. Frames 0 gives
    // code 6, a failed allocation code 5. Returns false in every case: the result is no verdict.
    bool SetAnimationMembers(int frames, int delay, int direction);
    void SetAnimationCoordinates(POINT origin);
    // Keeps the pointer: a variable filled later still counts, up to the moment a worker starts.
    bool SetDestinationWindow(HWND* window);
    bool SetBitmapHandles(int index, HBITMAP bitmap);
    // The frame to start from; the first frame drawn is the one after it. A negative value is accepted.
    bool SetStartupFrame(int frame);

    // Starts a looping worker. Code 1 and false while a worker's handle is held.
    bool StartAnimation();
    // Stops the worker, waiting at most StopTimeout; code 3 and false without one.
    bool StopAnimation();
    // Starts a worker that makes one pass and stops. From then on every start plays one pass.
    bool PlayOnce();
    // As StopAnimation, then frees the array of handles (not the bitmaps). Code 3 and false without a worker,
    // but the array is freed all the same.
    bool DeleteAnimation();

    // The handle of the frame last selected (to redraw it after a stop), or null without an array.
    HBITMAP GetLastBitmapHandle();
    int GetLastBitmapIndex();
    bool GetAnimationState();
    int GetLastError();

    // The worker's entry; its parameter is the object.
    static unsigned long WINAPI AnimationThread(void* parameter);

protected:
    HWND* m_phWnd;                // where the target window's handle is kept; the variable is the caller's
    HBITMAP* m_phBitmaps;         // one handle per frame; the array is owned here, the bitmaps are not
    volatile bool m_bRunning;     // cleared to make the worker leave its loop
    bool m_bPlayOnce;             // one pass only; never cleared once set
    POINT m_ptOrigin;             // where frames are drawn in the window
    int m_nDelay;                 // milliseconds per frame
    int m_nFrames;
    volatile int m_nFrame;        // the frame last selected, also the starting frame
    int m_nDirection;             // 0 forward, else backward
    HANDLE m_hStopEvent;          // auto-reset, signalled by a looping worker at its end
    int m_nLastError;
    bool m_bAnimating;            // what GetAnimationState reports
    HANDLE m_hThread;             // the worker

private:
    bool InitializeBitmaps();
    // The stop steps without closing the thread's handle.
    bool RemoveThread();
    HANDLE StartWorker();
    // Frees an array made here and clears the pointer.
    void FreeArray();

    // Not shared by copies: each object wakes and counts its own workers, so that a stop need not wait out a
    // frame's delay and the destructor never leaves a worker reading a freed object.
    HANDLE m_hWakeEvent;          // manual-reset, set by a stop to cut the worker's sleep short
    volatile LONG m_nWorkers;     // workers that may still read this object
};
