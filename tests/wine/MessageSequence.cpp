#include "MessageSequence.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "zcmod/VuikMessages.h"

namespace msgseq {

namespace {

Recorder* g_active = nullptr;

const UINT kNoise[] = {WM_GETICON,    WM_NCHITTEST,   WM_SETCURSOR, WM_GETOBJECT,     WM_IME_SETCONTEXT,
                       WM_IME_NOTIFY, WM_NCMOUSEMOVE, WM_GETTEXT,   WM_GETTEXTLENGTH, WM_NCMOUSELEAVE};

// The messages named in the printouts (the common ones, the buttons', the toolkit's), and their names.
#define NAMED_MESSAGES(...)              \
    const UINT kNamed[] = {__VA_ARGS__}; \
    const char kNames[] = #__VA_ARGS__;
NAMED_MESSAGES(WM_CREATE, WM_DESTROY, WM_MOVE, WM_SIZE, WM_ACTIVATE, WM_SETFOCUS, WM_KILLFOCUS, WM_ENABLE, WM_SETTEXT,
               WM_PAINT, WM_ERASEBKGND, WM_SHOWWINDOW, WM_MOUSEACTIVATE, WM_WINDOWPOSCHANGING, WM_WINDOWPOSCHANGED,
               WM_NOTIFY, WM_NCPAINT, WM_NCDESTROY, WM_DRAWITEM, WM_KEYDOWN, WM_KEYUP, WM_CHAR, WM_COMMAND, WM_TIMER,
               WM_UPDATEUISTATE, WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_CAPTURECHANGED,
               WM_MOUSELEAVE, BM_GETCHECK, BM_SETCHECK, BM_GETSTATE, BM_SETSTATE, OCM_DRAWITEM, WM_VUIK_REPAINT,
               WM_VUIK_INVALIDATE_BACKBUFFER, WM_VUIK_AFTERPAINT)
#undef NAMED_MESSAGES

}  // namespace

const wchar_t* PlainClass()
{
    static const ATOM atom = [] {
        WNDCLASSEXW wc = {};
        wc.cbSize = sizeof(wc);
        wc.style = CS_DBLCLKS;
        wc.lpfnWndProc = DefWindowProcW;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
        wc.lpszClassName = L"ZcmodTestPlain";
        return RegisterClassExW(&wc);
    }();
    return atom ? L"ZcmodTestPlain" : nullptr;
}

std::string MessageName(UINT message)
{
    std::istringstream names(kNames);
    std::string name;
    for (UINT named : kNamed)
        if (std::getline(names >> std::ws, name, ',') && named == message)
            return name;
    char text[16];
    std::snprintf(text, sizeof(text), "0x%04X", message);
    return text;
}

Recorder::Recorder() : m_hook(SetWindowsHookExW(WH_GETMESSAGE, GetMessageHook, nullptr, GetCurrentThreadId()))
{
    g_active = this;
}

// Gives watched windows their procedure back (unless someone subclassed behind us) and destroys the windows
// of the recording class.
Recorder::~Recorder()
{
    for (const Watched& w : m_windows) {
        if (!IsWindow(w.hwnd) || reinterpret_cast<WNDPROC>(GetWindowLongPtrW(w.hwnd, GWLP_WNDPROC)) != Proc)
            continue;
        if (w.previous)
            SetWindowLongPtrW(w.hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(w.previous));
        else
            DestroyWindow(w.hwnd);
    }
    if (m_hook)
        UnhookWindowsHookEx(m_hook);
    if (g_active == this)
        g_active = nullptr;
}

int Recorder::Watch(HWND hwnd, const char* name)
{
    m_windows.push_back({hwnd, name, reinterpret_cast<WNDPROC>(GetWindowLongPtrW(hwnd, GWLP_WNDPROC))});
    SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Proc));
    return static_cast<int>(m_windows.size() - 1);
}

HWND Recorder::CreateParent(const char* name, const RECT& rect, HWND parent)
{
    const DWORD style = (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE | WS_CLIPCHILDREN;
    HWND hwnd = CreateWindowExW(0, PlainClass(), nullptr, style, rect.left, rect.top, rect.right - rect.left,
                                rect.bottom - rect.top, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (hwnd) {
        m_windows.push_back({hwnd, name, nullptr});
        SetWindowLongPtrW(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Proc));
    }
    return hwnd;
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
    return static_cast<int>(std::count_if(m_entries.begin(), m_entries.end(), [&](const Expected& e) {
        return e.message == message && (index < 0 || e.window == index);
    }));
}

LRESULT CALLBACK Recorder::GetMessageHook(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HC_ACTION && wParam == PM_REMOVE && g_active && lParam) {
        g_active->m_retrieved = *reinterpret_cast<const MSG*>(lParam);
        g_active->m_haveRetrieved = true;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// Records the message, then hands it to the window's earlier procedure, or, for a window of the recording
// class, to the handler and DefWindowProcW.
LRESULT CALLBACK Recorder::Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    Recorder* self = g_active;
    const int index = self ? self->IndexOf(hwnd) : -1;
    if (index < 0)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    unsigned flags = sent;
    const MSG& r = self->m_retrieved;
    if (self->m_haveRetrieved && r.hwnd == hwnd && r.message == message && r.wParam == wParam && r.lParam == lParam) {
        flags = posted;
        self->m_haveRetrieved = false;
    }
    const std::vector<UINT>& only = self->m_only;
    if (only.empty() ? std::find(std::begin(kNoise), std::end(kNoise), message) == std::end(kNoise)
                     : std::find(only.begin(), only.end(), message) != only.end())
        self->m_entries.push_back({index, message, flags, wParam, lParam});
    if (WNDPROC previous = self->m_windows[index].previous)
        return CallWindowProcW(previous, hwnd, message, wParam, lParam);
    LRESULT result = 0;
    if (self->m_handler && self->m_handler(hwnd, message, wParam, lParam, &result))
        return result;
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

bool Recorder::PumpUntil(const std::function<bool()>& done, DWORD milliseconds)
{
    const DWORD start = GetTickCount();
    while (!done()) {
        if (GetTickCount() - start > milliseconds)
            return false;
        Pump(10);
    }
    return true;
}

std::string Recorder::Describe(const Expected& e, bool recorded) const
{
    std::ostringstream text;
    text << (e.window >= 0 && e.window < static_cast<int>(m_windows.size()) ? m_windows[e.window].name : "*") << ' '
         << MessageName(e.message) << ((e.flags & sent) ? " sent" : "") << ((e.flags & posted) ? " posted" : "")
         << std::hex;
    if (recorded || (e.flags & wparam))
        text << " w=" << static_cast<unsigned long long>(e.wParam);
    if (recorded || (e.flags & lparam))
        text << " l=" << static_cast<unsigned long long>(e.lParam);
    return text.str();
}

::testing::AssertionResult Recorder::Matches(const std::vector<Expected>& expected) const
{
    auto same = [](const Expected& e, const Expected& a) {
        return (e.window < 0 || e.window == a.window) && e.message == a.message &&
               (e.flags & a.flags & (sent | posted)) == (e.flags & (sent | posted)) &&
               (!(e.flags & wparam) || e.wParam == a.wParam) && (!(e.flags & lparam) || e.lParam == a.lParam);
    };
    size_t i = 0;
    while (i < expected.size() && i < m_entries.size() && same(expected[i], m_entries[i]))
        ++i;
    if (i == expected.size() && i == m_entries.size())
        return ::testing::AssertionSuccess();
    // Both sequences, the first entry that differs marked.
    std::ostringstream out;
    out << "message sequence differs at #" << i << "\nexpected:\n";
    for (size_t r = 0; r < expected.size(); ++r)
        out << (r == i ? " > " : "   ") << Describe(expected[r], false) << "\n";
    out << "recorded:\n";
    for (size_t r = 0; r < m_entries.size(); ++r)
        out << (r == i ? " > " : "   ") << Describe(m_entries[r], true) << "\n";
    return ::testing::AssertionFailure() << out.str();
}

void input::MoveTo(POINT screen)
{
    SetCursorPos(screen.x, screen.y);
    const int w = GetSystemMetrics(SM_CXSCREEN) - 1, h = GetSystemMetrics(SM_CYSCREEN) - 1;
    Mouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, w > 0 ? MulDiv(screen.x, 65535, w) : 0,
          h > 0 ? MulDiv(screen.y, 65535, h) : 0);
}

void input::Mouse(DWORD flags, LONG dx, LONG dy)
{
    INPUT in = {};
    in.type = INPUT_MOUSE;
    in.mi = {dx, dy, 0, flags, 0, 0};
    SendInput(1, &in, sizeof(in));
}

void input::Key(WORD vk, bool up)
{
    INPUT in = {};
    in.type = INPUT_KEYBOARD;
    in.ki = {vk, 0, static_cast<DWORD>(up ? KEYEVENTF_KEYUP : 0), 0, 0};
    SendInput(1, &in, sizeof(in));
}

void input::Press(WORD vk, bool shift)
{
    if (shift)
        Key(VK_SHIFT, false);
    Key(vk, false);
    Key(vk, true);
    if (shift)
        Key(VK_SHIFT, true);
}

void input::Type(const std::wstring& text)
{
    for (wchar_t c : text) {
        const SHORT scan = VkKeyScanW(c);
        Press(LOBYTE(scan), (scan & 0x100) != 0);
    }
}

POINT input::Centre(HWND hwnd)
{
    RECT r = {};
    GetWindowRect(hwnd, &r);
    return POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2};
}

void input::Click(POINT screen)
{
    MoveTo(screen);
    LeftDown();
    LeftUp();
}

}  // namespace msgseq
