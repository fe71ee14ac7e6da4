// CPNGAnimation: the worker that steps through the frames and draws them on the target window, and the calls
// that start, stop and tear it down.
#include "zcmod/PNGAnimation.h"

#include <new>

#include "frame/Handles.h"

using namespace zcmod;

namespace {

// BitBlt's copy that never mirrors the source, whatever the layout of the window's context.
const DWORD kCopyNoMirror = SRCCOPY | NOMIRRORBITMAP;

}  // namespace

CPNGAnimation::CPNGAnimation()
    : m_phWnd(nullptr),
      m_phBitmaps(nullptr),
      m_bRunning(true),
      m_bPlayOnce(false),
      m_ptOrigin(),
      m_nDelay(0),
      m_nFrames(0),
      m_nFrame(0),
      m_nDirection(0),
      m_hStopEvent(nullptr),
      m_nLastError(ErrorNone),
      m_bAnimating(false),
      m_hThread(nullptr),
      m_hWakeEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_nWorkers(0)
{
}

CPNGAnimation::CPNGAnimation(const CPNGAnimation& other)
    : m_phWnd(other.m_phWnd),
      m_phBitmaps(other.m_phBitmaps),
      m_bRunning(other.m_bRunning),
      m_bPlayOnce(other.m_bPlayOnce),
      m_ptOrigin(other.m_ptOrigin),
      m_nDelay(other.m_nDelay),
      m_nFrames(other.m_nFrames),
      m_nFrame(other.m_nFrame),
      m_nDirection(other.m_nDirection),
      m_hStopEvent(other.m_hStopEvent),
      m_nLastError(other.m_nLastError),
      m_bAnimating(other.m_bAnimating),
      m_hThread(other.m_hThread),
      m_hWakeEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_nWorkers(0)
{
}

CPNGAnimation& CPNGAnimation::operator=(const CPNGAnimation& other)
{
    if (this == &other)
        return *this;
    m_phWnd = other.m_phWnd;
    m_phBitmaps = other.m_phBitmaps;
    m_bRunning = other.m_bRunning;
    m_bPlayOnce = other.m_bPlayOnce;
    m_ptOrigin = other.m_ptOrigin;
    m_nDelay = other.m_nDelay;
    m_nFrames = other.m_nFrames;
    m_nFrame = other.m_nFrame;
    m_nDirection = other.m_nDirection;
    m_hStopEvent = other.m_hStopEvent;
    m_nLastError = other.m_nLastError;
    m_bAnimating = other.m_bAnimating;
    m_hThread = other.m_hThread;
    return *this;
}

CPNGAnimation::~CPNGAnimation()
{
    DeleteAnimation();
    // A worker that outlived its stop (a one-pass worker, the one a PlayOnce left running, or one whose stop
    // timed out) still reads this object: wake it and let it leave before the memory goes.
    m_bRunning = false;
    if (m_hWakeEvent)
        SetEvent(m_hWakeEvent);
    while (InterlockedCompareExchange(&m_nWorkers, 0, 0) != 0)
        Sleep(1);
    if (m_hWakeEvent)
        CloseHandle(m_hWakeEvent);
}

// ---- Setters ----------------------------------------------------------------------------------------------------

bool CPNGAnimation::SetAnimationMembers(int frames, int delay, int direction)
{
    m_nFrames = frames;
    m_nDelay = delay;
    m_nDirection = direction;
    if (frames == 0) {
        m_nLastError = ErrorNoFrames;
        return false;
    }
    InitializeBitmaps();
    return false;
}

bool CPNGAnimation::InitializeBitmaps()
{
    HBITMAP* array = m_nFrames > 0 ? new (std::nothrow) HBITMAP[m_nFrames]() : nullptr;
    if (!array) {
        m_nLastError = ErrorNoMemory;
        return false;
    }
    // A worker reads the array without a lock: while one may run, the old array is left to it.
    if (InterlockedCompareExchange(&m_nWorkers, 0, 0) == 0)
        FreeArray();
    m_phBitmaps = array;
    return false;
}

void CPNGAnimation::FreeArray()
{
    delete[] m_phBitmaps;
    m_phBitmaps = nullptr;
}

void CPNGAnimation::SetAnimationCoordinates(POINT origin)
{
    m_ptOrigin = origin;
}

bool CPNGAnimation::SetDestinationWindow(HWND* window)
{
    if (!window) {
        m_nLastError = ErrorNullWindow;
        return false;
    }
    m_phWnd = window;
    return true;
}

bool CPNGAnimation::SetBitmapHandles(int index, HBITMAP bitmap)
{
    if (!bitmap) {
        m_nLastError = ErrorNullBitmap;
        return false;
    }
    if (index < 0 || index >= m_nFrames || !m_phBitmaps) {
        m_nLastError = ErrorFrameOutOfRange;
        return false;
    }
    m_phBitmaps[index] = bitmap;
    m_nLastError = ErrorNone;
    return true;
}

bool CPNGAnimation::SetStartupFrame(int frame)
{
    if (frame > m_nFrames - 1) {
        m_nLastError = ErrorFrameTooHigh;
        return false;
    }
    m_nFrame = frame;
    m_nLastError = ErrorNone;
    return true;
}

// ---- Getters ----------------------------------------------------------------------------------------------------

HBITMAP CPNGAnimation::GetLastBitmapHandle()
{
    const int frame = m_nFrame;
    if (!m_phBitmaps || frame < 0 || frame >= m_nFrames)
        return nullptr;
    return m_phBitmaps[frame];
}

int CPNGAnimation::GetLastBitmapIndex()
{
    return m_nFrame;
}

bool CPNGAnimation::GetAnimationState()
{
    return m_bAnimating;
}

int CPNGAnimation::GetLastError()
{
    return m_nLastError;
}

// ---- Starting and stopping --------------------------------------------------------------------------------------

HANDLE CPNGAnimation::StartWorker()
{
    if (m_hWakeEvent)
        ResetEvent(m_hWakeEvent);
    InterlockedIncrement(&m_nWorkers);
    DWORD id = 0;
    HANDLE thread = CreateThread(nullptr, 0, AnimationThread, this, 0, &id);
    if (!thread)
        InterlockedDecrement(&m_nWorkers);
    return thread;
}

bool CPNGAnimation::StartAnimation()
{
    if (m_hThread) {
        m_nLastError = ErrorThreadHeld;
        return false;
    }
    if (!m_bAnimating) {
        m_bRunning = true;
        if (!m_hStopEvent)
            m_hStopEvent = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        HANDLE thread = StartWorker();
        m_bAnimating = true;
        m_hThread = thread;
    }
    m_nLastError = ErrorNone;
    return true;
}

bool CPNGAnimation::RemoveThread()
{
    m_bRunning = false;
    if (m_hWakeEvent)
        SetEvent(m_hWakeEvent);
    if (m_hThread) {
        // A looping worker signals the event as it leaves, a one-pass worker nothing; the worker's own handle
        // tells both apart from a worker that is still on its way out, so the wait is on that. It ends after
        // StopTimeout at the latest; a worker that has not left by then is left to end on its own.
        WaitForSingleObject(m_hThread, StopTimeout);
    }
    m_bAnimating = false;
    if (m_hStopEvent) {
        CloseHandle(m_hStopEvent);
        m_hStopEvent = nullptr;
    }
    return true;
}

bool CPNGAnimation::StopAnimation()
{
    if (!m_hThread) {
        m_nLastError = ErrorNoThread;
        return false;
    }
    RemoveThread();
    CloseHandle(m_hThread);
    m_hThread = nullptr;
    m_nLastError = ErrorNone;
    return true;
}

bool CPNGAnimation::PlayOnce()
{
    if (m_hThread) {
        m_bRunning = false;
        m_bAnimating = false;
        CloseHandle(m_hThread);
        m_hThread = nullptr;
    }
    m_bRunning = true;
    m_bPlayOnce = true;
    HANDLE thread = StartWorker();
    m_bAnimating = true;
    m_hThread = thread;
    m_nLastError = ErrorNone;
    return true;
}

bool CPNGAnimation::DeleteAnimation()
{
    bool result = true;
    if (m_hThread) {
        RemoveThread();
        CloseHandle(m_hThread);
        m_hThread = nullptr;
        m_nLastError = ErrorNone;
    } else {
        // No worker to wait for; the rest of the tear-down still runs.
        m_nLastError = ErrorNoThread;
        result = false;
        m_bAnimating = false;
        if (m_hStopEvent) {
            CloseHandle(m_hStopEvent);
            m_hStopEvent = nullptr;
        }
    }
    if (InterlockedCompareExchange(&m_nWorkers, 0, 0) == 0)
        FreeArray();
    else
        m_phBitmaps = nullptr;  // a worker left behind still reads it: it is lost rather than freed under it
    m_bRunning = false;
    return result;
}

// ---- The worker -------------------------------------------------------------------------------------------------

unsigned long WINAPI CPNGAnimation::AnimationThread(void* parameter)
{
    CPNGAnimation* self = static_cast<CPNGAnimation*>(parameter);
    {
        WindowDC desktop(GetDesktopWindow());
        MemoryDC memory(CreateCompatibleDC(desktop.Get()));
        if (self->m_phBitmaps) {
            // The window is read once: a later change of the caller's variable goes unseen.
            HWND window = self->m_phWnd ? *self->m_phWnd : nullptr;
            BITMAP first = {};
            if (self->m_phBitmaps[0])
                GetObjectW(self->m_phBitmaps[0], sizeof(first), &first);
            do {
                const int frames = self->m_nFrames;
                int frame = self->m_nFrame;
                if (self->m_nDirection == 0) {
                    if (frame < frames - 1) {
                        ++frame;
                    } else {
                        frame = 0;
                        if (self->m_bPlayOnce)
                            self->m_bRunning = false;
                    }
                } else if (frame <= 0) {
                    // A negative start counts as the start of the list rather than walking away from it.
                    frame = frames - 1;
                    if (self->m_bPlayOnce)
                        self->m_bRunning = false;
                } else {
                    --frame;
                }
                self->m_nFrame = frame;

                HBITMAP* bitmaps = self->m_phBitmaps;
                HBITMAP bitmap = bitmaps && frame >= 0 && frame < frames ? bitmaps[frame] : nullptr;
                if (bitmap && memory && IsWindow(window)) {
                    WindowDC target(window);
                    if (target) {
                        SelectGuard select(memory.Get(), bitmap);
                        if (select)
                            BitBlt(target.Get(), self->m_ptOrigin.x, self->m_ptOrigin.y, first.bmWidth,
                                   first.bmHeight, memory.Get(), 0, 0, kCopyNoMirror);
                    }
                }
                const int delay = self->m_nDelay;
                if (self->m_hWakeEvent)
                    WaitForSingleObject(self->m_hWakeEvent, delay > 0 ? static_cast<DWORD>(delay) : 0);
                else
                    Sleep(delay > 0 ? static_cast<DWORD>(delay) : 0);
            } while (self->m_bRunning);
        }
    }
    if (!self->m_bPlayOnce && self->m_hStopEvent)
        SetEvent(self->m_hStopEvent);
    // The last touch of the object: from here on it may be gone.
    InterlockedDecrement(&self->m_nWorkers);
    return 0;
}
