#include "MessageSequence.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "zcmod/VuikMessages.h"

namespace msgseq {

namespace {

const wchar_t kParentClass[] = L"MsgSeqRecordingParent";
Recorder* g_active = nullptr;

const UINT kNoise[] = {WM_GETICON,    WM_NCHITTEST,   WM_SETCURSOR, WM_GETOBJECT,     WM_IME_SETCONTEXT,
                       WM_IME_NOTIFY, WM_NCMOUSEMOVE, WM_GETTEXT,   WM_GETTEXTLENGTH, WM_NCMOUSELEAVE};

struct Name {
    UINT message;
    const char* name;
};
const Name kNames[] = {
    {WM_CREATE, "WM_CREATE"},
    {WM_DESTROY, "WM_DESTROY"},
    {WM_MOVE, "WM_MOVE"},
    {WM_SIZE, "WM_SIZE"},
    {WM_ACTIVATE, "WM_ACTIVATE"},
    {WM_SETFOCUS, "WM_SETFOCUS"},
    {WM_KILLFOCUS, "WM_KILLFOCUS"},
    {WM_ENABLE, "WM_ENABLE"},
    {WM_SETTEXT, "WM_SETTEXT"},
    {WM_PAINT, "WM_PAINT"},
    {WM_ERASEBKGND, "WM_ERASEBKGND"},
    {WM_SHOWWINDOW, "WM_SHOWWINDOW"},
    {WM_MOUSEACTIVATE, "WM_MOUSEACTIVATE"},
    {WM_WINDOWPOSCHANGING, "WM_WINDOWPOSCHANGING"},
    {WM_WINDOWPOSCHANGED, "WM_WINDOWPOSCHANGED"},
    {WM_NOTIFY, "WM_NOTIFY"},
    {WM_NCPAINT, "WM_NCPAINT"},
    {WM_NCDESTROY, "WM_NCDESTROY"},
    {WM_DRAWITEM, "WM_DRAWITEM"},
    {WM_KEYDOWN, "WM_KEYDOWN"},
    {WM_KEYUP, "WM_KEYUP"},
    {WM_CHAR, "WM_CHAR"},
    {WM_COMMAND, "WM_COMMAND"},
    {WM_TIMER, "WM_TIMER"},
    {WM_UPDATEUISTATE, "WM_UPDATEUISTATE"},
    {WM_MOUSEMOVE, "WM_MOUSEMOVE"},
    {WM_LBUTTONDOWN, "WM_LBUTTONDOWN"},
    {WM_LBUTTONUP, "WM_LBUTTONUP"},
    {WM_LBUTTONDBLCLK, "WM_LBUTTONDBLCLK"},
    {WM_CAPTURECHANGED, "WM_CAPTURECHANGED"},
    {WM_MOUSELEAVE, "WM_MOUSELEAVE"},
    {BM_GETCHECK, "BM_GETCHECK"},
    {BM_SETCHECK, "BM_SETCHECK"},
    {BM_GETSTATE, "BM_GETSTATE"},
    {BM_SETSTATE, "BM_SETSTATE"},
    {WM_VUIK_REPAINT, "WM_VUIK_REPAINT"},
    {WM_VUIK_INVALIDATE_BACKBUFFER, "WM_VUIK_INVALIDATE_BACKBUFFER"},
    {WM_VUIK_AFTERPAINT, "WM_VUIK_AFTERPAINT"},
};

void RegisterParentClass()
{
    static bool registered = false;
    if (registered)
        return;
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    wc.style = CS_DBLCLKS;
    wc.lpfnWndProc = DefWindowProcW;  // replaced per window: the class must exist before the recorder does
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    wc.lpszClassName = kParentClass;
    registered = RegisterClassExW(&wc) != 0;
}

}  // namespace

std::string MessageName(UINT message)
{
    for (const Name& n : kNames)
        if (n.message == message)
            return n.name;
    char text[16];
    std::snprintf(text, sizeof(text), "0x%04X", message);
    return text;
}

Recorder::Recorder() : m_hook(nullptr), m_retrieved(), m_haveRetrieved(false)
{
    g_active = this;
    m_hook = SetWindowsHookExW(WH_GETMESSAGE, GetMessageHook, nullptr, GetCurrentThreadId());
}

Recorder::~Recorder()
{
    for (const Watched& w : m_windows) {
        if (!IsWindow(w.hwnd))
            continue;
        if (w.previous && reinterpret_cast<WNDPROC>(GetWindowLongPtrW(w.hwnd, GWLP_WNDPROC)) == SubclassProc)
            SetWindowLongPtrW(w.hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(w.previous));
    }
    for (const Watched& w : m_windows)
        if (!w.previous && IsWindow(w.hwnd) &&
            reinterpret_cast<WNDPROC>(GetWindowLongPtrW(w.hwnd, GWLP_WNDPROC)) == ParentProc)
            DestroyWindow(w.hwnd);
    if (m_hook)
        UnhookWindowsHookEx(m_hook);
    if (g_active == this)
        g_active = nullptr;
}

int Recorder::Watch(HWND hwnd, const char* name)
{
    WNDPROC previous = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(hwnd, GWLP_WNDPROC));
    m_windows.push_back({hwnd, name, previous});
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(SubclassProc));
    return static_cast<int>(m_windows.size() - 1);
}

HWND Recorder::CreateParent(const char* name, const RECT& rect, HWND parent, DWORD style, DWORD exStyle)
{
    RegisterParentClass();
    if (!style)
        style = (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE | WS_CLIPCHILDREN;
    HWND hwnd = CreateWindowExW(exStyle, kParentClass, nullptr, style, rect.left, rect.top, rect.right - rect.left,
                                rect.bottom - rect.top, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (!hwnd)
        return nullptr;
    // Recording starts once the window is known by its index: its creation isn't part of any sequence.
    m_windows.push_back({hwnd, name, nullptr});
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(ParentProc));
    return hwnd;
}

int Recorder::Name(HWND hwnd, const char* name)
{
    m_windows.push_back({hwnd, name, nullptr});
    return static_cast<int>(m_windows.size() - 1);
}

HWND Recorder::Window(int index) const
{
    return index >= 0 && index < static_cast<int>(m_windows.size()) ? m_windows[index].hwnd : nullptr;
}

int Recorder::IndexOf(HWND hwnd) const
{
    // The latest entry first: a handle of a destroyed window may come back for a new one.
    for (size_t i = m_windows.size(); i-- > 0;)
        if (m_windows[i].hwnd == hwnd)
            return static_cast<int>(i);
    return -1;
}

int Recorder::Count(UINT message, int index) const
{
    int count = 0;
    for (const Entry& e : m_entries)
        if (e.message == message && (index < 0 || e.hwnd == Window(index)))
            ++count;
    return count;
}

void Recorder::Record(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    unsigned flags = sent;
    if (m_haveRetrieved && m_retrieved.hwnd == hwnd && m_retrieved.message == message && m_retrieved.wParam == wParam &&
        m_retrieved.lParam == lParam) {
        flags = posted;
        m_haveRetrieved = false;
    }
    if (m_only.empty()) {
        if (std::find(std::begin(kNoise), std::end(kNoise), message) != std::end(kNoise))
            return;
    } else if (std::find(m_only.begin(), m_only.end(), message) == m_only.end()) {
        return;
    }
    m_entries.push_back({hwnd, message, flags, wParam, lParam});
}

LRESULT CALLBACK Recorder::GetMessageHook(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HC_ACTION && wParam == PM_REMOVE && g_active && lParam) {
        g_active->m_retrieved = *reinterpret_cast<const MSG*>(lParam);
        g_active->m_haveRetrieved = true;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK Recorder::SubclassProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    Recorder* self = g_active;
    WNDPROC previous = nullptr;
    if (self) {
        const int index = self->IndexOf(hwnd);
        if (index >= 0)
            previous = self->m_windows[index].previous;
        self->Record(hwnd, message, wParam, lParam);
    }
    if (!previous)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    return CallWindowProcW(previous, hwnd, message, wParam, lParam);
}

LRESULT CALLBACK Recorder::ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    Recorder* self = g_active;
    if (self) {
        self->Record(hwnd, message, wParam, lParam);
        LRESULT result = 0;
        if (self->m_handler && self->m_handler(hwnd, message, wParam, lParam, &result))
            return result;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

void Recorder::Pump(DWORD milliseconds)
{
    const DWORD end = GetTickCount() + milliseconds;
    MSG msg;
    do {
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        if (milliseconds)
            Sleep(5);
    } while (static_cast<LONG>(end - GetTickCount()) > 0);
}

std::string Recorder::Describe(const Entry& e) const
{
    const int index = IndexOf(e.hwnd);
    std::ostringstream text;
    text << (index >= 0 ? m_windows[index].name : "?") << ' ' << MessageName(e.message) << ' '
         << ((e.flags & posted) ? "posted" : "sent") << " w=" << std::hex << static_cast<unsigned long long>(e.wParam)
         << " l=" << static_cast<unsigned long long>(e.lParam);
    return text.str();
}

std::string Recorder::Describe(const Expected& e) const
{
    std::ostringstream text;
    text << (e.window >= 0 && e.window < static_cast<int>(m_windows.size()) ? m_windows[e.window].name : "*") << ' '
         << MessageName(e.message);
    if (e.flags & sent)
        text << " sent";
    if (e.flags & posted)
        text << " posted";
    text << std::hex;
    if (e.flags & wparam)
        text << " w=" << static_cast<unsigned long long>(e.wParam);
    if (e.flags & lparam)
        text << " l=" << static_cast<unsigned long long>(e.lParam);
    if (e.flags & optional)
        text << " (optional)";
    return text.str();
}

::testing::AssertionResult Recorder::Matches(const std::vector<Expected>& expected) const
{
    auto same = [this](const Expected& e, const Entry& a) {
        if (e.window >= 0 && Window(e.window) != a.hwnd)
            return false;
        if (e.message != a.message)
            return false;
        if ((e.flags & sent) && !(a.flags & sent))
            return false;
        if ((e.flags & posted) && !(a.flags & posted))
            return false;
        if ((e.flags & wparam) && e.wParam != a.wParam)
            return false;
        return !(e.flags & lparam) || e.lParam == a.lParam;
    };
    size_t i = 0;
    size_t j = 0;
    while (i < expected.size() && j < m_entries.size()) {
        if (same(expected[i], m_entries[j])) {
            ++i;
            ++j;
        } else if (expected[i].flags & optional) {
            ++i;
        } else {
            break;
        }
    }
    while (i < expected.size() && (expected[i].flags & optional))
        ++i;
    if (i == expected.size() && j == m_entries.size())
        return ::testing::AssertionSuccess();

    // Side by side, the failing pair marked; rows before it are the matched prefix.
    std::ostringstream out;
    out << "message sequence differs at expected #" << i << ", recorded #" << j << "\n";
    const size_t rows = std::max(expected.size(), m_entries.size());
    char line[256];
    std::snprintf(line, sizeof(line), "    %-46s | %s\n", "expected", "recorded");
    out << line;
    for (size_t r = 0; r < rows; ++r) {
        const std::string left = r < expected.size() ? Describe(expected[r]) : "";
        const std::string right = r < m_entries.size() ? Describe(m_entries[r]) : "";
        const bool marked = r == std::min(i, j) || (i != j && r == std::max(i, j));
        std::snprintf(line, sizeof(line), "%s%2u %-46s | %s\n", marked ? ">" : " ", static_cast<unsigned>(r),
                      left.c_str(), right.c_str());
        out << line;
    }
    return ::testing::AssertionFailure() << out.str();
}

namespace input {

void MoveTo(POINT screen)
{
    SetCursorPos(screen.x, screen.y);
    INPUT in = {};
    in.type = INPUT_MOUSE;
    const int w = GetSystemMetrics(SM_CXSCREEN) - 1;
    const int h = GetSystemMetrics(SM_CYSCREEN) - 1;
    in.mi.dx = w > 0 ? MulDiv(screen.x, 65535, w) : 0;
    in.mi.dy = h > 0 ? MulDiv(screen.y, 65535, h) : 0;
    in.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    SendInput(1, &in, sizeof(in));
}

void LeftDown()
{
    INPUT in = {};
    in.type = INPUT_MOUSE;
    in.mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    SendInput(1, &in, sizeof(in));
}

void LeftUp()
{
    INPUT in = {};
    in.type = INPUT_MOUSE;
    in.mi.dwFlags = MOUSEEVENTF_LEFTUP;
    SendInput(1, &in, sizeof(in));
}

void Key(WORD vk, bool up)
{
    INPUT in = {};
    in.type = INPUT_KEYBOARD;
    in.ki.wVk = vk;
    in.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    SendInput(1, &in, sizeof(in));
}

}  // namespace input

}  // namespace msgseq
