// CPNGAnimation: the result codes of its operations, the order in which the worker draws the frames, the stop
// (also when the window is gone or the delay is long) and that no thread, event or GDI object stays behind.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <mutex>
#include <set>
#include <vector>

#include "HandleCounter.h"
#include "ImportWatch.h"
#include "TestSkins.h"
#include "zcmod/PNGAnimation.h"

namespace {

using testskin::CaptureWindow;

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

// What zcmod.dll does, from any thread: the animation's draws (the source bitmap, place and size), and the
// threads and events it has made and not closed.
struct Draw {
    HBITMAP source;
    int x, y, width, height;
};
std::mutex g_lock;
std::vector<Draw> g_draws;
std::set<HANDLE> g_kernel;
decltype(&BitBlt) g_bitBlt;
decltype(&CreateThread) g_createThread;
decltype(&CreateEventW) g_createEvent;
decltype(&CloseHandle) g_closeHandle;

BOOL WINAPI WatchBitBlt(HDC to, int x, int y, int w, int h, HDC from, int sx, int sy, DWORD rop)
{
    if (rop == (SRCCOPY | NOMIRRORBITMAP)) {
        std::lock_guard<std::mutex> lock(g_lock);
        g_draws.push_back(Draw{static_cast<HBITMAP>(GetCurrentObject(from, OBJ_BITMAP)), x, y, w, h});
    }
    return g_bitBlt(to, x, y, w, h, from, sx, sy, rop);
}
HANDLE Made(HANDLE h)
{
    std::lock_guard<std::mutex> lock(g_lock);
    g_kernel.insert(h);
    return h;
}
HANDLE WINAPI WatchCreateThread(LPSECURITY_ATTRIBUTES sa, SIZE_T stack, LPTHREAD_START_ROUTINE start, LPVOID p,
                                DWORD flags, LPDWORD id)
{
    return Made(g_createThread(sa, stack, start, p, flags, id));
}
HANDLE WINAPI WatchCreateEvent(LPSECURITY_ATTRIBUTES sa, BOOL manual, BOOL initial, LPCWSTR name)
{
    return Made(g_createEvent(sa, manual, initial, name));
}
BOOL WINAPI WatchCloseHandle(HANDLE h)
{
    {
        std::lock_guard<std::mutex> lock(g_lock);
        g_kernel.erase(h);
    }
    return g_closeHandle(h);
}

class PNGAnimationTest : public ::testing::Test {
protected:
    static constexpr int kFrames = 4;

    void SetUp() override
    {
        m_patches.Add("gdi32.dll", "BitBlt", &WatchBitBlt, &g_bitBlt);
        m_patches.Add("kernel32.dll", "CreateThread", &WatchCreateThread, &g_createThread);
        m_patches.Add("kernel32.dll", "CreateEventW", &WatchCreateEvent, &g_createEvent);
        m_patches.Add("kernel32.dll", "CloseHandle", &WatchCloseHandle, &g_closeHandle);
        Forget();
        g_kernel.clear();
        // One colour per frame; frame 2 is larger than the others, but all are drawn at the size of frame 0.
        for (int i = 0; i < kFrames; ++i)
            m_frames[i] = testskin::MakeSection(i == 2 ? 16 : 8, i == 2 ? 16 : 8, [i](int, int) { return Colour(i); });
        MakeWindow();
    }
    void TearDown() override
    {
        DestroyWindow(m_window);
        for (HBITMAP b : m_frames)
            DeleteObject(b);
    }
    static uint32_t Colour(int frame) { return 0x203040u * static_cast<uint32_t>(frame + 1); }
    void MakeWindow()
    {
        m_window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 40, 40, 64, 64, nullptr, nullptr,
                                   nullptr, nullptr);
        UpdateWindow(m_window);
    }
    static void Forget()
    {
        std::lock_guard<std::mutex> lock(g_lock);
        g_draws.clear();
    }

    // Four frames, the window and the origin (5, 6).
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
        std::lock_guard<std::mutex> lock(g_lock);
        std::vector<int> order;
        for (const Draw& d : g_draws)
            for (int i = 0; i < kFrames; ++i)
                if (d.source == m_frames[i])
                    order.push_back(i);
        return order;
    }
    bool PumpUntilDrawn(size_t count)
    {
        return msgseq::Recorder::PumpUntil([&] { return Drawn().size() >= count; }, 5000);
    }

    zcmod_test::ImportPatches m_patches;
    HBITMAP m_frames[kFrames] = {};
    HWND m_window = nullptr;
};

TEST_F(PNGAnimationTest, ResultCodesOfEachOperation)
{
    const HBITMAP b = m_frames[0];
    using Step = std::function<bool(Animation&)>;
    struct Case {
        const char* name;
        bool fourFrames;  // SetAnimationMembers(4, 100, 0) first
        Step run;
        bool result;
        int code;
        Step after = nullptr;  // what else must hold afterwards, if anything
    };
    const Case cases[] = {
        {"members: false even on success", false, [](Animation& a) { return a.SetAnimationMembers(4, 9, 0); }, false, 0},
        {"members: no frames, delay and direction kept", false,
         [](Animation& a) { return a.SetAnimationMembers(0, 70, 1); }, false, 6,
         [](Animation& a) { return a.m_nDelay == 70 && a.m_nDirection == 1 && !a.GetLastBitmapHandle(); }},
        {"members: no array can be made for a negative count", false,
         [](Animation& a) { return a.SetAnimationMembers(-1, 9, 0); }, false, 5,
         [=](Animation& a) { return a.m_phBitmaps == nullptr && !a.SetBitmapHandles(0, b); }},
        {"bitmap: null", true, [](Animation& a) { return a.SetBitmapHandles(0, nullptr); }, false, 2},
        {"bitmap: index = frames", true, [=](Animation& a) { return a.SetBitmapHandles(4, b); }, false, 8},
        {"bitmap: index < 0", true, [=](Animation& a) { return a.SetBitmapHandles(-1, b); }, false, 8},
        {"bitmap: no array yet", false, [=](Animation& a) { return a.SetBitmapHandles(0, b); }, false, 8},
        {"bitmap and startup: the last index, which clears the code", true,
         [=](Animation& a) { return !a.SetBitmapHandles(-1, b) && a.SetBitmapHandles(3, b) && a.SetStartupFrame(3); },
         true, 0, [=](Animation& a) { return a.GetLastBitmapHandle() == b && a.GetLastBitmapIndex() == 3; }},
        {"startup: = frames", true, [](Animation& a) { return a.SetStartupFrame(4); }, false, 7},
        {"window: null pointer", false, [](Animation& a) { return a.SetDestinationWindow(nullptr); }, false, 4},
        {"stop: no worker", false, [](Animation& a) { return a.StopAnimation(); }, false, 3},
        {"delete: no worker, the array goes all the same, the bitmaps stay", true,
         [](Animation& a) { return a.DeleteAnimation(); }, false, 3,
         [=](Animation& a) { return a.m_phBitmaps == nullptr && GetObjectType(b) == OBJ_BITMAP; }},
        {"start: twice", false, [](Animation& a) { return a.StartAnimation() && a.StartAnimation(); }, false, 1,
         [](Animation& a) { return a.GetAnimationState(); }},
        {"start: after a stop", false,
         [](Animation& a) { return a.StartAnimation() && a.StopAnimation() && a.StartAnimation(); }, true, 0},
        {"play once: clears a stop's code", false, [](Animation& a) { return !a.StopAnimation() && a.PlayOnce(); },
         true, 0},
        {"start: after a pass, whose handle is still held", true,
         [](Animation& a) { return a.PlayOnce() && a.StartAnimation(); }, false, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Animation a;
        if (c.fourFrames)
            a.SetAnimationMembers(4, 100, 0);
        EXPECT_EQ(c.run(a), c.result);
        EXPECT_EQ(a.GetLastError(), c.code);
        EXPECT_TRUE(!c.after || c.after(a));
        a.StopAnimation();
    }
}

// One pass, or the first draws of a loop: the order of the frames drawn, and the frame left selected.
TEST_F(PNGAnimationTest, FrameOrderForwardBackwardOnceAndLooping)
{
    struct Case {
        int direction, start;
        bool once;
        std::vector<int> drawn;
        int last;  // GetLastBitmapIndex after a pass
    };
    const Case cases[] = {
        {0, 0, true, {1, 2, 3, 0}, 0},      // the start is drawn last
        {0, 2, true, {3, 0}, 0},
        {1, 0, true, {3}, 3},               // the wrap comes first: one frame and done
        {1, 3, true, {2, 1, 0, 3}, 3},
        {0, -2, true, {0, 1, 2, 3, 0}, 0},  // a negative start walks up to the list before drawing
        {7, 1, true, {0, 3}, 3},            // any direction other than 0 is backward
        {0, 0, false, {1, 2, 3, 0, 1, 2}, -1},
        {1, 1, false, {0, 3, 2, 1, 0, 3}, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "direction " << c.direction << " start " << c.start << " once " << c.once);
        Forget();
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
            EXPECT_TRUE(a.GetAnimationState()) << "the pass is over, the state stays until a stop";
            EXPECT_TRUE(a.StopAnimation());
            EXPECT_FALSE(a.GetAnimationState());
            // The window shows the frame the pass ended on, at the origin, at the size of frame 0.
            const testskin::Capture shown = CaptureWindow(m_window);
            EXPECT_EQ(shown.At(5, 6), Colour(c.last));
            EXPECT_EQ(shown.At(12, 13), Colour(c.last));
            EXPECT_NE(shown.At(13, 14), Colour(c.last));
        } else {
            ASSERT_TRUE(a.StartAnimation());
            ASSERT_TRUE(PumpUntilDrawn(c.drawn.size()));
            EXPECT_TRUE(a.StopAnimation());
            const std::vector<int> drawn = Drawn();
            EXPECT_EQ(std::vector<int>(drawn.begin(), drawn.begin() + c.drawn.size()), c.drawn);
            EXPECT_EQ(a.GetLastBitmapIndex(), drawn.back()) << "a stopped loop keeps the last drawn frame";
        }
        std::lock_guard<std::mutex> lock(g_lock);
        for (const Draw& d : g_draws)
            EXPECT_TRUE(d.x == 5 && d.y == 6 && d.width == 8 && d.height == 8);
    }
}

// Every way to stop: the stop waits for the worker, within two seconds, and no thread, event or GDI object of
// any of them stays behind.
TEST_F(PNGAnimationTest, StopsWithinTwoSecondsAndNothingStaysBehind)
{
    zcmod_test::HandleCounter counter;
    const auto before = counter.Live();
    struct Case {
        const char* name;
        int delay;
        bool destroyWindow, once, withArray;
    };
    const Case cases[] = {
        {"window destroyed while playing", 30, true, false, true},
        {"a frame's delay longer than the stop's wait", 10000, false, false, true},
        {"one pass still running", 10000, false, true, true},
        {"no array: the worker ends at once", 30, false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Forget();
        if (!IsWindow(m_window))
            MakeWindow();
        Animation a;
        if (c.withArray)
            Prepare(a, c.delay, 0, 0);
        ASSERT_TRUE(c.once ? a.PlayOnce() : a.StartAnimation());
        HANDLE worker = a.DuplicateWorker();
        ASSERT_TRUE(PumpUntilDrawn(c.withArray ? 1 : 0));
        if (c.destroyWindow) {
            DestroyWindow(m_window);  // the worker holds the old handle and goes on without a window
            Sleep(100);
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
    }

    // An object destroyed while its workers sleep lets them leave before its memory goes: the one-pass worker
    // and the looping one that the PlayOnce over it left running without a handle.
    HANDLE workers[2] = {};
    {
        Animation a;
        Prepare(a, 10000, 0, 0);
        ASSERT_TRUE(a.StartAnimation());
        workers[0] = a.DuplicateWorker();
        ASSERT_TRUE(PumpUntilDrawn(1));
        ASSERT_TRUE(a.PlayOnce());
        workers[1] = a.DuplicateWorker();
        ASSERT_TRUE(PumpUntilDrawn(2));
    }
    for (HANDLE worker : workers) {
        // Past its last touch of the object it may still be on its way out of the thread.
        EXPECT_EQ(WaitForSingleObject(worker, 1000), WAIT_OBJECT_0);
        CloseHandle(worker);
    }
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    std::lock_guard<std::mutex> lock(g_lock);
    EXPECT_TRUE(g_kernel.empty()) << g_kernel.size() << " threads or events left open";
}

}  // namespace
