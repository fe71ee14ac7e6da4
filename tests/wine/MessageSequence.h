// Message-sequence checks in the manner of Wine's conformance tests. A Recorder logs the messages of the
// windows it watches (a recording subclass in front of a window under test, or a window of its recording
// parent class), each entry with its window, message, sent or posted, and parameters. A test then compares
// the log with a table of expected entries, whose parameters are compared only where they matter; on a
// mismatch both sequences are printed with the first difference marked.
//
//   msgseq::Recorder rec;
//   HWND parent = rec.CreateParent("parent", {0, 0, 200, 100});
//   ... create the control as a child of parent ...
//   rec.Watch(button, "button");
//   rec.Only({WM_COMMAND, BM_SETSTATE, BM_SETCHECK});
//   ... drive it ...
//   EXPECT_TRUE(rec.Matches({{1, BM_SETSTATE, msgseq::sent | msgseq::wparam, 1},
//                            {0, WM_COMMAND, msgseq::posted | msgseq::wparam, 7}}));
//
// Window indices follow the order in which windows were watched or created (0 first); -1 matches any.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace msgseq {

enum Flags : unsigned {
    sent = 0x01,    // delivered by a send (expected: must have been sent)
    posted = 0x02,  // taken from the queue (expected: must have been posted or be a queue message)
    wparam = 0x04,  // expected: compare wParam
    lparam = 0x08,  // expected: compare lParam
};

struct Expected {
    int window;
    UINT message;
    unsigned flags;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

// A parent's answer to a message: return true and set *result to answer it, false to let it go on.
using Handler = std::function<bool(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result)>;

class Recorder {
public:
    Recorder();
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // Puts a recording procedure in front of `hwnd`'s present one; returns the window's index.
    int Watch(HWND hwnd, const char* name);
    // Creates a visible window of PlainClass() (a top-level popup when `parent` is null, else a child) that
    // records, then asks the handler, then DefWindowProcW. Its creation is not recorded.
    HWND CreateParent(const char* name, const RECT& rect, HWND parent = nullptr);
    void SetHandler(Handler handler) { m_handler = std::move(handler); }

    // Records only these messages from now on (an empty list: everything but the noise of the window
    // system), and starts the log afresh.
    void Only(std::initializer_list<UINT> messages)
    {
        m_only = messages;
        m_entries.clear();
    }
    void Clear() { m_entries.clear(); }
    // Number of recorded `message` entries of window `index` (-1: any window).
    int Count(UINT message, int index = -1) const;
    ::testing::AssertionResult Matches(const std::vector<Expected>& expected) const;

    // Dispatches what is in the queue, for at least `milliseconds`.
    static void Pump(DWORD milliseconds = 0);
    // Dispatches until `done` holds or `milliseconds` have passed; false on time-out. The watchdog of a wait.
    static bool PumpUntil(const std::function<bool()>& done, DWORD milliseconds = 3000);

private:
    struct Watched {
        HWND hwnd;
        std::string name;
        WNDPROC previous;  // null for windows of the recording class
    };
    static LRESULT CALLBACK Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK GetMessageHook(int code, WPARAM wParam, LPARAM lParam);
    int IndexOf(HWND hwnd) const;
    std::string Describe(const Expected& e, bool recorded) const;

    std::vector<Watched> m_windows;
    std::vector<Expected> m_entries;  // recorded: window index, message, sent or posted, both parameters
    std::vector<UINT> m_only;
    Handler m_handler;
    HHOOK m_hook;
    MSG m_retrieved = {};  // the queue message being dispatched, until the first window procedure sees it
    bool m_haveRetrieved = false;
};

// A plain registered window class (DefWindowProcW, double clicks, the window colour) for test windows.
const wchar_t* PlainClass();
// The name of a message for the printouts (the toolkit's, the buttons', the common ones), else its number.
std::string MessageName(UINT message);

// Real input through SendInput; the cursor position is in screen coordinates.
struct input {
    static void MoveTo(POINT screen);
    static void LeftDown() { Mouse(MOUSEEVENTF_LEFTDOWN); }
    static void LeftUp() { Mouse(MOUSEEVENTF_LEFTUP); }
    static void Key(WORD vk, bool up);
    // A key pressed and let go, with Shift held around it when `shift` says so.
    static void Press(WORD vk, bool shift = false);
    // Each character typed as the key (and Shift) that makes it.
    static void Type(const std::wstring& text);
    // A left click at a point of the screen.
    static void Click(POINT screen);
    // The centre of a window on the screen.
    static POINT Centre(HWND hwnd);
    static void Mouse(DWORD flags, LONG dx = 0, LONG dy = 0);
};

}  // namespace msgseq
