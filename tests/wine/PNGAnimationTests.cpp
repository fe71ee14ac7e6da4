// CPNGAnimation: the result codes of its operations, the order in which the worker draws the frames, the stop
// (also when the window is gone or the delay is long) and that no thread or handle stays behind.
#include <gtest/gtest.h>
#include <windows.h>

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "HandleCounter.h"
#include "ImportPatch.h"
#include "TestSkins.h"
#include "zcmod/PNGAnimation.h"

namespace {

using testskin::CaptureWindow;
using testskin::MakeSection;

// The protected fields, for the checks that no getter reaches.
struct Animation : CPNGAnimation {
    using CPNGAnimation::m_hStopEvent;
    using CPNGAnimation::m_hThread;
    using CPNGAnimation::m_nDelay;
    using CPNGAnimation::m_nDirection;
    using CPNGAnimation::m_nFrames;
    using CPNGAnimation::m_phBitmaps;
    // A handle of the worker of our own, to see it end after the object has closed its handle.
    HANDLE DuplicateWorker() const
    {
        HANDLE copy = nullptr;
        DuplicateHandle(GetCurrentProcess(), m_hThread, GetCurrentProcess(), &copy, SYNCHRONIZE, FALSE, 0);
        return copy;
    }
};

// Every BitBlt that zcmod.dll makes with the animation's raster operation, from any thread.
struct Draw {
    HBITMAP source;
    int x, y, width, height;
};
std::mutex g_drawsLock;
std::vector<Draw> g_draws;
decltype(&BitBlt) g_realBitBlt = nullptr;

BOOL WINAPI RecordingBitBlt(HDC to, int x, int y, int w, int h, HDC from, int sx, int sy, DWORD rop)
{
    if (rop == (SRCCOPY | NOMIRRORBITMAP)) {
        std::lock_guard<std::mutex> lock(g_drawsLock);
        g_draws.push_back(Draw{static_cast<HBITMAP>(GetCurrentObject(from, OBJ_BITMAP)), x, y, w, h});
    }
    return g_realBitBlt(to, x, y, w, h, from, sx, sy, rop);
}

class PNGAnimationTest : public ::testing::Test {
protected:
    static constexpr int kFrames = 4;
    static constexpr COLORREF kColours[kFrames] = {0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF};  // 0x00RRGGBB

    void SetUp() override
    {
        HMODULE dll = GetModuleHandleW(L"zcmod.dll");
        g_realBitBlt = reinterpret_cast<decltype(&BitBlt)>(
            zcmod_test::PatchImport(dll, "gdi32.dll", "BitBlt", reinterpret_cast<void*>(RecordingBitBlt)));
        ASSERT_NE(g_realBitBlt, nullptr);
        g_draws.clear();
        for (int i = 0; i < kFrames; ++i) {
            // Frame 2 is larger than the others: every frame is drawn at the size of frame 0.
            const int side = i == 2 ? 16 : 8;
            const COLORREF c = kColours[i];
            m_frames[i] = MakeSection(side, side, [c](int, int) { return static_cast<uint32_t>(c); });
        }
        m_window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 40, 40, 64, 64, nullptr, nullptr,
                                   nullptr, nullptr);
        UpdateWindow(m_window);
    }
    void TearDown() override
    {
        zcmod_test::PatchImport(GetModuleHandleW(L"zcmod.dll"), "gdi32.dll", "BitBlt",
                                reinterpret_cast<void*>(g_realBitBlt));
        if (IsWindow(m_window))
            DestroyWindow(m_window);
        for (HBITMAP b : m_frames)
            DeleteObject(b);
    }

    // Four frames, the window and the origin (5, 6); the result of SetAnimationMembers is no verdict.
    void Prepare(Animation& a, int delay, int direction, int start)
    {
        a.SetAnimationMembers(kFrames, delay, direction);
        for (int i = 0; i < kFrames; ++i)
            ASSERT_TRUE(a.SetBitmapHandles(i, m_frames[i]));
        ASSERT_TRUE(a.SetDestinationWindow(&m_window));
        a.SetAnimationCoordinates(POINT{5, 6});
        ASSERT_TRUE(a.SetStartupFrame(start));
    }

    // The frames drawn so far, as indices.
    std::vector<int> Drawn()
    {
        std::lock_guard<std::mutex> lock(g_drawsLock);
        std::vector<int> order;
        for (const Draw& d : g_draws)
            for (int i = 0; i < kFrames; ++i)
                if (d.source == m_frames[i])
                    order.push_back(i);
        return order;
    }
    size_t DrawCount()
    {
        std::lock_guard<std::mutex> lock(g_drawsLock);
        return g_draws.size();
    }
    // Pumps this thread's messages until `done` or the watchdog's time is out.
    template <class F>
    bool PumpUntil(F done, DWORD limit = 5000)
    {
        const DWORD start = GetTickCount();
        while (!done()) {
            if (GetTickCount() - start > limit)
                return false;
            MSG msg;
            while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageW(&msg);
            Sleep(5);
        }
        return true;
    }

    HBITMAP m_frames[kFrames] = {};
    HWND m_window = nullptr;
};
constexpr COLORREF PNGAnimationTest::kColours[];

TEST_F(PNGAnimationTest, ResultCodesOfEachOperation)
{
    HBITMAP frame = m_frames[0];
    struct Case {
        const char* name;
        void (*setUp)(Animation&, HBITMAP);
        bool (*run)(Animation&, HBITMAP);
        bool result;
        int code;
    };
    auto four = [](Animation& a, HBITMAP) { a.SetAnimationMembers(4, 100, 0); };
    auto none = [](Animation&, HBITMAP) {};
    const Case cases[] = {
        {"members: false even on success", none, [](Animation& a, HBITMAP) { return a.SetAnimationMembers(4, 100, 0); },
         false, 0},
        {"members: no frames", none, [](Animation& a, HBITMAP) { return a.SetAnimationMembers(0, 70, 1); }, false, 6},
        {"bitmap: null", four, [](Animation& a, HBITMAP) { return a.SetBitmapHandles(0, nullptr); }, false, 2},
        {"bitmap: index = frames", four, [](Animation& a, HBITMAP b) { return a.SetBitmapHandles(4, b); }, false, 8},
        {"bitmap: index < 0", four, [](Animation& a, HBITMAP b) { return a.SetBitmapHandles(-1, b); }, false, 8},
        {"bitmap: no array yet", none, [](Animation& a, HBITMAP b) { return a.SetBitmapHandles(0, b); }, false, 8},
        {"bitmap: last index clears the code", four,
         [](Animation& a, HBITMAP b) { return a.SetBitmapHandles(-1, b) || a.SetBitmapHandles(3, b); }, true, 0},
        {"startup: = frames", four, [](Animation& a, HBITMAP) { return a.SetStartupFrame(4); }, false, 7},
        {"startup: last", four, [](Animation& a, HBITMAP) { return a.SetStartupFrame(3); }, true, 0},
        {"startup: negative passes", four, [](Animation& a, HBITMAP) { return a.SetStartupFrame(-2); }, true, 0},
        {"window: null pointer", none, [](Animation& a, HBITMAP) { return a.SetDestinationWindow(nullptr); }, false, 4},
        {"stop: no worker", none, [](Animation& a, HBITMAP) { return a.StopAnimation(); }, false, 3},
        {"delete: no worker", four, [](Animation& a, HBITMAP) { return a.DeleteAnimation(); }, false, 3},
        {"start: twice", none, [](Animation& a, HBITMAP) { return a.StartAnimation() && a.StartAnimation(); }, false,
         1},
        {"start: after a stop", none,
         [](Animation& a, HBITMAP) { return a.StartAnimation() && a.StopAnimation() && a.StartAnimation(); }, true, 0},
        {"play once: over a stop code", none,
         [](Animation& a, HBITMAP) { return !a.StopAnimation() && a.PlayOnce(); }, true, 0},
        {"start: after a pass, handle still held", four,
         [](Animation& a, HBITMAP) { return a.PlayOnce() && a.StartAnimation(); }, false, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Animation a;
        c.setUp(a, frame);
        EXPECT_EQ(c.run(a, frame), c.result);
        EXPECT_EQ(a.GetLastError(), c.code);
        a.StopAnimation();
    }
}

TEST_F(PNGAnimationTest, WhatTheSettersAndDeleteLeave)
{
    Animation a;
    a.SetAnimationMembers(0, 70, 1);  // no frames: delay and direction are stored anyway
    EXPECT_EQ(a.m_nDelay, 70);
    EXPECT_EQ(a.m_nDirection, 1);
    EXPECT_EQ(a.GetLastBitmapHandle(), nullptr);

    a.SetAnimationMembers(4, 100, 0);
    ASSERT_NE(a.m_phBitmaps, nullptr);
    ASSERT_TRUE(a.SetBitmapHandles(2, m_frames[2]));
    ASSERT_TRUE(a.SetStartupFrame(2));
    EXPECT_EQ(a.GetLastBitmapHandle(), m_frames[2]);
    EXPECT_EQ(a.GetLastBitmapIndex(), 2);

    EXPECT_FALSE(a.DeleteAnimation());  // no worker, and yet the array goes; the bitmaps stay the caller's
    EXPECT_EQ(a.m_phBitmaps, nullptr);
    EXPECT_EQ(a.GetLastBitmapHandle(), nullptr);
    EXPECT_NE(GetObjectType(m_frames[2]), 0u);
}

// One pass, or the first draws of a loop: the order of the frames drawn, and the frame left selected.
TEST_F(PNGAnimationTest, FrameOrderForwardBackwardOnceAndLooping)
{
    struct Case {
        int direction, start;
        bool once;
        std::vector<int> drawn;
        int last;  // GetLastBitmapIndex after a pass; -1 for loops
    };
    const Case cases[] = {
        {0, 0, true, {1, 2, 3, 0}, 0},        // the start is drawn last
        {0, 2, true, {3, 0}, 0},
        {1, 0, true, {3}, 3},                 // the wrap comes first: one frame and done
        {1, 3, true, {2, 1, 0, 3}, 3},
        {0, -2, true, {0, 1, 2, 3, 0}, 0},    // a negative start walks up to the list before drawing
        {7, 1, true, {0, 3}, 3},              // any direction other than 0 is backward
        {0, 0, false, {1, 2, 3, 0, 1, 2}, -1},
        {1, 1, false, {0, 3, 2, 1, 0, 3}, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "direction " << c.direction << " start " << c.start << " once "
                                        << c.once);
        {
            std::lock_guard<std::mutex> lock(g_drawsLock);
            g_draws.clear();
        }
        Animation a;
        Prepare(a, 15, c.direction, c.start);
        if (c.once) {
            ASSERT_TRUE(a.PlayOnce());
            HANDLE worker = a.DuplicateWorker();
            ASSERT_EQ(WaitForSingleObject(worker, 5000), WAIT_OBJECT_0);
            CloseHandle(worker);
            EXPECT_EQ(Drawn(), c.drawn);
            EXPECT_EQ(a.GetLastBitmapIndex(), c.last);
            EXPECT_EQ(a.GetLastBitmapHandle(), m_frames[c.last]);
            // The pass is over, and yet the state and the handle stay until a stop.
            EXPECT_TRUE(a.GetAnimationState());
            EXPECT_TRUE(a.StopAnimation());
            EXPECT_FALSE(a.GetAnimationState());
            // The window shows the frame the pass ended on, at the origin.
            const auto shown = CaptureWindow(m_window);
            EXPECT_EQ(shown.At(5, 6), kColours[c.last]);
            EXPECT_EQ(shown.At(12, 13), kColours[c.last]);
        } else {
            ASSERT_TRUE(a.StartAnimation());
            ASSERT_TRUE(PumpUntil([&] { return DrawCount() >= c.drawn.size(); }));
            EXPECT_TRUE(a.StopAnimation());
            const std::vector<int> drawn = Drawn();
            ASSERT_GE(drawn.size(), c.drawn.size());
            EXPECT_EQ(std::vector<int>(drawn.begin(), drawn.begin() + c.drawn.size()), c.drawn);
            EXPECT_EQ(a.GetLastBitmapIndex(), drawn.back());  // a stopped loop keeps the last drawn frame
        }
        std::lock_guard<std::mutex> lock(g_drawsLock);
        for (const Draw& d : g_draws) {  // all at the origin, all at the size of frame 0
            EXPECT_EQ(d.x, 5);
            EXPECT_EQ(d.y, 6);
            EXPECT_EQ(d.width, 8);
            EXPECT_EQ(d.height, 8);
        }
    }
}

TEST_F(PNGAnimationTest, StopWithinTwoSecondsAndTheWorkerEnds)
{
    struct Case {
        const char* name;
        int delay;
        bool destroyWindow;
        bool once;
        bool withArray;
    };
    const Case cases[] = {
        {"looping", 30, false, false, true},
        {"window destroyed while playing", 30, true, false, true},
        {"a frame's delay longer than the stop's wait", 10000, false, false, true},
        {"one pass still running", 10000, false, true, true},
        {"no array: the worker ends at once", 30, false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        if (!IsWindow(m_window))
            m_window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 40, 40, 64, 64, nullptr, nullptr,
                                       nullptr, nullptr);
        Animation a;
        if (c.withArray)
            Prepare(a, c.delay, 0, 0);
        else
            a.SetDestinationWindow(&m_window);
        ASSERT_TRUE(c.once ? a.PlayOnce() : a.StartAnimation());
        HANDLE worker = a.DuplicateWorker();
        ASSERT_NE(worker, nullptr);
        if (c.withArray) {
            ASSERT_TRUE(PumpUntil([&] { return DrawCount() > 0; }));
        }
        if (c.destroyWindow) {
            DestroyWindow(m_window);  // the variable still holds the old handle
            Sleep(100);               // the worker goes on without a window
            EXPECT_EQ(WaitForSingleObject(worker, 0), static_cast<DWORD>(WAIT_TIMEOUT));
        }
        if (!c.withArray) {
            EXPECT_EQ(WaitForSingleObject(worker, 5000), WAIT_OBJECT_0);
        }
        const DWORD start = GetTickCount();
        EXPECT_TRUE(a.StopAnimation());
        EXPECT_LE(GetTickCount() - start, 2000u);
        EXPECT_EQ(WaitForSingleObject(worker, 0), WAIT_OBJECT_0) << "the worker outlived its stop";
        EXPECT_EQ(a.m_hThread, nullptr);
        EXPECT_EQ(a.m_hStopEvent, nullptr);
        CloseHandle(worker);
        std::lock_guard<std::mutex> lock(g_drawsLock);
        g_draws.clear();
    }
}

TEST_F(PNGAnimationTest, DestroyingAPlayingObjectLetsItsWorkerLeaveFirst)
{
    HANDLE worker = nullptr;
    {
        Animation a;
        Prepare(a, 10000, 0, 0);
        ASSERT_TRUE(a.PlayOnce());
        worker = a.DuplicateWorker();
        ASSERT_TRUE(PumpUntil([&] { return DrawCount() > 0; }));
    }
    EXPECT_EQ(WaitForSingleObject(worker, 0), WAIT_OBJECT_0);
    CloseHandle(worker);
}

// Threads and events that zcmod.dll makes and has not closed (GetProcessHandleCount answers 0 under Wine).
std::mutex g_kernelLock;
std::set<HANDLE> g_kernel;
decltype(&CreateThread) g_realCreateThread;
decltype(&CreateEventW) g_realCreateEvent;
decltype(&CloseHandle) g_realCloseHandle;
HANDLE WINAPI CountCreateThread(LPSECURITY_ATTRIBUTES sa, SIZE_T stack, LPTHREAD_START_ROUTINE start, LPVOID p,
                                DWORD flags, LPDWORD id)
{
    HANDLE h = g_realCreateThread(sa, stack, start, p, flags, id);
    std::lock_guard<std::mutex> lock(g_kernelLock);
    g_kernel.insert(h);
    return h;
}
HANDLE WINAPI CountCreateEvent(LPSECURITY_ATTRIBUTES sa, BOOL manual, BOOL initial, LPCWSTR name)
{
    HANDLE h = g_realCreateEvent(sa, manual, initial, name);
    std::lock_guard<std::mutex> lock(g_kernelLock);
    g_kernel.insert(h);
    return h;
}
BOOL WINAPI CountCloseHandle(HANDLE h)
{
    {
        std::lock_guard<std::mutex> lock(g_kernelLock);
        g_kernel.erase(h);
    }
    return g_realCloseHandle(h);
}

TEST_F(PNGAnimationTest, LeavesNoHandleBehind)
{
    HMODULE dll = GetModuleHandleW(L"zcmod.dll");
    g_realCreateThread = reinterpret_cast<decltype(&CreateThread)>(
        zcmod_test::PatchImport(dll, "kernel32.dll", "CreateThread", reinterpret_cast<void*>(CountCreateThread)));
    g_realCreateEvent = reinterpret_cast<decltype(&CreateEventW)>(
        zcmod_test::PatchImport(dll, "kernel32.dll", "CreateEventW", reinterpret_cast<void*>(CountCreateEvent)));
    g_realCloseHandle = reinterpret_cast<decltype(&CloseHandle)>(
        zcmod_test::PatchImport(dll, "kernel32.dll", "CloseHandle", reinterpret_cast<void*>(CountCloseHandle)));
    ASSERT_TRUE(g_realCreateThread && g_realCreateEvent && g_realCloseHandle);
    g_kernel.clear();

    zcmod_test::HandleCounter counter;
    auto cycle = [&](int i) {
        Animation a;
        Prepare(a, 1, i % 2, 0);
        if (i % 3 == 2)
            a.PlayOnce();
        else
            a.StartAnimation();
        PumpUntil([&] { return DrawCount() > 0; });
        if (i % 4 == 0)
            a.StopAnimation();  // else the destructor stops it
        std::lock_guard<std::mutex> lock(g_drawsLock);
        g_draws.clear();
    };
    cycle(0);
    const auto before = counter.Live();
    for (int i = 0; i < 24; ++i)
        cycle(i);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    EXPECT_EQ(g_kernel.size(), 0u) << "threads or events left open";

    zcmod_test::PatchImport(dll, "kernel32.dll", "CreateThread", reinterpret_cast<void*>(g_realCreateThread));
    zcmod_test::PatchImport(dll, "kernel32.dll", "CreateEventW", reinterpret_cast<void*>(g_realCreateEvent));
    zcmod_test::PatchImport(dll, "kernel32.dll", "CloseHandle", reinterpret_cast<void*>(g_realCloseHandle));
}

}  // namespace
