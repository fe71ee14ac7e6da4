// The clip of the phone file transfer's progress window: each theme carries it in both directions as AVI
// resources that the platform's animation control opens, shows frame by frame and plays to the end; drawn on
// a flat ground, the right-to-left clip the mirror of the other.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <string>

#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/ResourceIds.h"

using namespace testskin;

namespace {

// An animation control in a top-level window of its own, which records the control's notifications.
class ClipWindow {
public:
    ClipWindow()
    {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = Proc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.lpszClassName = L"ZcmodTestClipHost";
        RegisterClassW(&wc);
        m_host = CreateWindowExW(WS_EX_TOPMOST, wc.lpszClassName, L"", WS_POPUP | WS_VISIBLE, 40, 40, 400, 120,
                                 nullptr, nullptr, wc.hInstance, nullptr);
        SetWindowLongPtrW(m_host, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        m_clip = CreateWindowExW(0, ANIMATE_CLASSW, L"", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, m_host, nullptr,
                                 wc.hInstance, nullptr);
    }
    ~ClipWindow() { DestroyWindow(m_host); }
    ClipWindow(const ClipWindow&) = delete;
    ClipWindow& operator=(const ClipWindow&) = delete;

    bool Open(HMODULE module, UINT id)
    {
        return SendMessageW(m_clip, ACM_OPENW, reinterpret_cast<WPARAM>(module), reinterpret_cast<LPARAM>(MAKEINTRESOURCEW(id))) != 0;
    }
    Capture Frame(int frame)
    {
        SendMessageW(m_clip, ACM_PLAY, 1, MAKELPARAM(frame, frame));
        UpdateWindow(m_clip);
        return CaptureWindow(m_clip);
    }
    // Plays the clip once; true when the control said it stopped at its end within `ms`.
    bool PlaysThrough(DWORD ms)
    {
        m_started = m_stopped = false;
        if (!SendMessageW(m_clip, ACM_PLAY, 1, MAKELPARAM(0, 0xFFFF)))
            return false;
        for (const DWORD end = GetTickCount() + ms; !m_stopped && GetTickCount() < end;) {
            MSG msg;
            while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageW(&msg);
            Sleep(5);
        }
        return m_started && m_stopped;
    }

private:
    static LRESULT CALLBACK Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* self = reinterpret_cast<ClipWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (message == WM_COMMAND && self && reinterpret_cast<HWND>(lParam) == self->m_clip) {
            self->m_started = self->m_started || HIWORD(wParam) == ACN_START;
            self->m_stopped = self->m_stopped || (self->m_started && HIWORD(wParam) == ACN_STOP);
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
    HWND m_host = nullptr, m_clip = nullptr;
    bool m_started = false, m_stopped = false;
};

Capture Mirrored(const Capture& c)
{
    Capture m = c;
    for (int y = 0; y < c.height; ++y)
        for (int x = 0; x < c.width; ++x)
            m.pixels[static_cast<size_t>(y) * c.width + x] = c.At(c.width - 1 - x, y);
    return m;
}
bool Same(const Capture& a, const Capture& b)
{
    if (a.width != b.width || a.height != b.height)
        return false;
    for (int i = 0; i < a.width * a.height; ++i)
        if ((a.pixels[i] & 0xFFFFFF) != (b.pixels[i] & 0xFFFFFF))
            return false;
    return true;
}

TEST(TransferClip, BothThemesPlayBothDirections)
{
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_ANIMATE_CLASS};
    InitCommonControlsEx(&controls);
    for (const wchar_t* theme : {L"Default", L"Graphite"}) {
        SCOPED_TRACE(testing::Message() << theme);
        HMODULE module = LoadLibraryExW((zcmod_test::BinDir() + L"\\Resource\\ZCMOD_" + theme + L".zgr").c_str(),
                                        nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(module, nullptr);
        Capture first[2], middle[2];
        for (int rtl = 0; rtl < 2; ++rtl) {
            SCOPED_TRACE(rtl ? "right to left" : "left to right");
            ClipWindow clip;
            ASSERT_TRUE(clip.Open(module, rtl ? ZGR_AVI_TRANSFER_RTL : ZGR_AVI_TRANSFER));
            first[rtl] = clip.Frame(0);
            middle[rtl] = clip.Frame(8);
            ASSERT_GT(first[rtl].width, 100);
            // A flat ground, whose top-left pixel the control keys out when it draws transparently.
            const int w = first[rtl].width - 1, h = first[rtl].height - 1;
            for (uint32_t corner : {first[rtl].At(w, 0), first[rtl].At(0, h), first[rtl].At(w, h), middle[rtl].At(0, 0)})
                EXPECT_EQ(corner, first[rtl].At(0, 0));
            EXPECT_FALSE(Same(first[rtl], middle[rtl])) << "the frames do not move";
            EXPECT_TRUE(clip.PlaysThrough(10000)) << "the clip did not play to its end";
        }
        EXPECT_TRUE(Same(first[1], Mirrored(first[0])));
        EXPECT_TRUE(Same(middle[1], Mirrored(middle[0])));
        EXPECT_FALSE(Same(first[0], Mirrored(first[0]))) << "a symmetric picture shows no direction";
        FreeLibrary(module);
    }
}

}  // namespace
