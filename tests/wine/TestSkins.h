// Skins and controls of the skin framework's tests, drawn with plain GDI, and the reading of pixels:
//   CTestSkin    one skin for panels and buttons: a left and a right half in two colours, a mark over the left
//                quarter (to see mirroring) and a masked picture in the middle, each optional; it counts its
//                draws, which are the builds of a buffer;
//   CTestButton  a control on CVuikButtonImpl over a "Button" window; CTestPanel one on CVuikWindowImpl;
//   Capture      the pixels of a bitmap or of what a window shows; Canvas a memory context to draw on;
//   ThemedPanel  a top-level panel of a shipped theme's window colour, for the controls of the shipped themes.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ImageTestSupport.h"
#include "MessageSequence.h"
#include "TestSupport.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikButtonImpl.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"
#include "zcmod/VuikWindowImpl.h"

namespace testskin {

using zcmod_test::Near;

const COLORREF kNone = CLR_INVALID;

struct SkinDef {
    COLORREF left = kNone, right = kNone, mark = kNone;
    UINT pictureId = 0;
};
const SkinDef kRedBlue = {RGB(255, 0, 0), RGB(0, 0, 255)};

// Columns `left` to `right` of the whole height, unless the colour is kNone.
inline void Fill(HDC dc, int left, int right, int height, COLORREF colour)
{
    if (colour == kNone)
        return;
    const RECT r = {left, 0, right, height};
    HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &r, brush);
    DeleteObject(brush);
}

class CTestSkin : public CVuikBaseSkinImpl<CTestSkin, SkinDef> {
public:
    explicit CTestSkin(const SkinDef& def = {}) { m_SkinDef = def; }
    ~CTestSkin() { Unload(); }

    void Load() override
    {
        Unload();
        if (m_SkinDef.pictureId)
            CVuikResourceManager::LoadBitmapW(&m_pPicture, CVuikLib::GetResourceInstance(), m_SkinDef.pictureId, 0,
                                              nullptr);
        Validate();
    }
    void Unload() override { CVuikResourceManager::UnloadBitmap(&m_pPicture); }
    void Validate() override { m_nStatus = (m_SkinDef.pictureId && !m_pPicture) ? StatusInvalid : StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        ++m_nDraws;
        Fill(*graphics, 0, width / 2, height, m_SkinDef.left);
        Fill(*graphics, width / 2, width, height, m_SkinDef.right);
        Fill(*graphics, 0, width / 4, height, m_SkinDef.mark);
        if (m_pPicture)
            graphics->DrawImage(m_pPicture, (width - m_pPicture->GetWidth()) / 2,
                                (height - m_pPicture->GetHeight()) / 2);
    }

    CVuikBitmap* m_pPicture = nullptr;
    int m_nDraws = 0;
};

class CTestButton : public CVuikButtonImpl<CTestSkin> {
public:
    using CVuikButtonImpl<CTestSkin>::Create;
    using CVuikButtonImpl<CTestSkin>::OnPaint;
    HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle) override
    {
        HWND hwnd = CVuikWindowImpl<CTestSkin>::Create(L"Button", parent, rect, L"", id, style, exStyle, nullptr);
        m_nCtrlId = hwnd ? GetDlgCtrlID(hwnd) : 0;
        return hwnd;
    }
    void SizeToContent() override { ++m_nSizeToContent; }
    // The buffer when the skin is valid, else the placeholder.
    LRESULT OnPaint(HWND hwnd, UINT, WPARAM, LPARAM) override
    {
        PAINTSTRUCT paint;
        if (BeginPaint(hwnd, &paint)) {
            OnPaint(&paint);
            if (!SkinIsValid())
                DrawPlaceHolder(paint.hdc);
            EndPaint(hwnd, &paint);
        }
        return 0;
    }

    LONGLONG State() const { return m_nState; }
    bool Hover() const { return m_bHover; }
    bool Tracking() const { return m_bTracking; }
    WNDPROC SuperWindowProc() const { return m_pfnSuperWindowProc; }
    WNDPROC OwnWindowProc() const { return m_pfnWindowProc; }

    int m_nSizeToContent = 0;
};

class CTestPanel : public CVuikWindowImpl<CTestSkin> {
public:
    // A visible top-level popup when `parent` is null, else a child, with `skin`.
    HWND CreatePanel(HWND parent, const RECT& rect, CTestSkin* skin)
    {
        SetSkin(skin);
        const DWORD style = (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE | WS_CLIPCHILDREN;
        return Create(msgseq::PlainClass(), parent, rect, L"", 0, style, 0, nullptr);
    }
};

using Colour = std::function<uint32_t(int x, int y)>;

// Pixels top-down as 0x00RRGGBB; 0xFFFFFFFF outside.
struct Capture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;
    uint32_t At(int x, int y) const
    {
        return x < 0 || y < 0 || x >= width || y >= height ? 0xFFFFFFFF
                                                           : pixels[static_cast<size_t>(y) * width + x] & 0xFFFFFF;
    }
    // Every pixel as `expected` says; the first that isn't is reported.
    bool Is(const Colour& expected) const
    {
        for (int i = 0; i < width * height; ++i)
            if (At(i % width, i / width) != expected(i % width, i / width)) {
                ADD_FAILURE() << "pixel " << i % width << "," << i / width << ": " << std::hex
                              << At(i % width, i / width) << " not " << expected(i % width, i / width);
                return false;
            }
        return width > 0;
    }
};

inline Capture ReadBitmap(HBITMAP bitmap)
{
    Capture c;
    BITMAP bm = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof(bm), &bm))
        return c;
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), bm.bmWidth, -bm.bmHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    c.pixels.resize(static_cast<size_t>(bm.bmWidth) * bm.bmHeight);
    HDC screen = GetDC(nullptr);
    if (GetDIBits(screen, bitmap, 0, bm.bmHeight, c.pixels.data(), &info, DIB_RGB_COLORS) == bm.bmHeight) {
        c.width = bm.bmWidth;
        c.height = bm.bmHeight;
    }
    ReleaseDC(nullptr, screen);
    return c;
}

// A 32-bit top-down section of w x h pixels given by `colour`; `bits` receives its memory.
inline HBITMAP MakeSection(int w, int h, const Colour& colour, uint32_t** bits = nullptr)
{
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), w, -h, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* memory = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &memory, nullptr, 0);
    auto* pixels = static_cast<uint32_t*>(memory);
    for (int i = 0; bitmap && i < w * h; ++i)
        pixels[i] = colour(i % w, i / w);
    if (bits)
        *bits = pixels;
    return bitmap;
}

// A memory context with a section of its own selected: a target to draw on, whose pixels Read() gives.
class Canvas {
public:
    Canvas(
        int w, int h, const Colour& colour = [](int, int) { return 0u; })
        : m_width(w), m_height(h)
    {
        m_bitmap = MakeSection(w, h, colour, &m_bits);
        m_old = SelectObject(m_dc, m_bitmap);
    }
    ~Canvas()
    {
        SelectObject(m_dc, m_old);
        DeleteObject(m_bitmap);
        DeleteDC(m_dc);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    operator HDC() const { return m_dc; }
    Capture Read() const
    {
        GdiFlush();
        return Capture{m_width, m_height, std::vector<uint32_t>(m_bits, m_bits + m_width * m_height)};
    }
    void Fill(const Colour& colour)
    {
        GdiFlush();
        for (int i = 0; i < m_width * m_height; ++i)
            m_bits[i] = colour(i % m_width, i / m_width);
    }

private:
    HDC m_dc = CreateCompatibleDC(nullptr);
    uint32_t* m_bits = nullptr;
    HBITMAP m_bitmap;
    HGDIOBJ m_old;
    int m_width, m_height;
};

// A window's client area as it shows on the screen.
inline Capture CaptureWindow(HWND hwnd)
{
    RECT client = {};  // a window gone meanwhile gives an empty capture
    GetClientRect(hwnd, &client);
    Canvas canvas(client.right, client.bottom);
    HDC dc = GetDC(hwnd);
    BitBlt(canvas, 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    ReleaseDC(hwnd, dc);
    return canvas.Read();
}

// A window's client area as it shows after a paint of its own.
inline Capture Shown(HWND hwnd)
{
    RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    return CaptureWindow(hwnd);
}

// The mouse moved by real input to (x, y) of `hwnd`'s client area, and the move handled.
inline void MoveOver(HWND hwnd, int x, int y)
{
    POINT p = {x, y};
    ClientToScreen(hwnd, &p);
    msgseq::input::MoveTo(p);
    msgseq::Recorder::Pump(30);
}

// A rectangle of the screen as it shows.
inline Capture CaptureScreen(const RECT& r)
{
    Canvas canvas(r.right - r.left, r.bottom - r.top);
    HDC screen = GetDC(nullptr);
    BitBlt(canvas, 0, 0, r.right - r.left, r.bottom - r.top, screen, r.left, r.top, SRCCOPY);
    ReleaseDC(nullptr, screen);
    return canvas.Read();
}

// A whole window, frame and all, as the screen shows it.
inline Capture CaptureOnScreen(HWND hwnd)
{
    RECT r = {};
    GetWindowRect(hwnd, &r);
    return CaptureScreen(r);
}

// Pixels outside `hwnd`'s window region (the capture taken at its top left) read 0.
inline Capture& CutToRegion(Capture& c, HWND hwnd)
{
    HRGN region = CreateRectRgn(0, 0, 0, 0);
    if (GetWindowRgn(hwnd, region) != ERROR)
        for (int i = 0; i < c.width * c.height; ++i)
            if (!PtInRegion(region, i % c.width, i / c.width))
                c.pixels[i] = 0;
    DeleteObject(region);
    return c;
}

inline uint32_t Rgb(COLORREF c) { return (GetRValue(c) << 16) | (GetGValue(c) << 8) | GetBValue(c); }

// Captures of one width stacked from the top down: one golden for several states.
struct Strip {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    void Add(const Capture& c)
    {
        width = c.width;
        height += c.height;
        pixels.insert(pixels.end(), c.pixels.begin(), c.pixels.end());
    }
};

// A picture put together from captures, over a background colour: one golden for many controls.
struct Sheet {
    Sheet(int w, int h, uint32_t background = 0) : width(w), height(h), pixels(static_cast<size_t>(w) * h, background) {}
    // `c` with its top left at (x0, y0), cut at the sheet's edges.
    void Paste(const Capture& c, int x0, int y0)
    {
        for (int y = 0; y < c.height && y0 + y < height; ++y)
            for (int x = 0; x < c.width && x0 + x < width; ++x)
                pixels[static_cast<size_t>(y0 + y) * width + x0 + x] = c.At(x, y);
    }
    int width, height;
    std::vector<uint32_t> pixels;
};

// CVuikLib's protected parts.
struct Lib : CVuikLib {
    using CVuikLib::BlenderFunc;
    using CVuikLib::m_ScaleX;
    using CVuikLib::m_ScaleY;
};

// Points the library's instances at the test program (its pictures are resources of the program) and sets
// a layout; puts these, the auto scale and the scales back at the end.
class LibraryState {
public:
    explicit LibraryState(DWORD layout = 0)
    {
        CVuikLib::SetInstance(GetModuleHandleW(nullptr));
        CVuikLib::SetResourceInstance(GetModuleHandleW(nullptr));
        CVuikLib::SetLayout(layout);
    }
    ~LibraryState()
    {
        CVuikLib::SetInstance(m_inst);
        CVuikLib::SetResourceInstance(m_res);
        CVuikLib::SetLayout(m_layout);
        CVuikLib::SetAutoScale(m_autoScale);
        Lib::m_ScaleX = m_scaleX;
        Lib::m_ScaleY = m_scaleY;
    }
    LibraryState(const LibraryState&) = delete;
    LibraryState& operator=(const LibraryState&) = delete;

private:
    HINSTANCE m_inst = CVuikLib::GetInstance(), m_res = CVuikLib::GetResourceInstance();
    DWORD m_layout = CVuikLib::GetLayout();
    bool m_autoScale = CVuikLib::GetAutoScale();
    double m_scaleX = Lib::m_ScaleX, m_scaleY = Lib::m_ScaleY;
};

// The shipped themes and the window colour their controls stand on.
struct Theme {
    const wchar_t* name;
    const char* tag;
    COLORREF window;
};
const Theme kThemes[] = {{L"Default", "Default", RGB(0xf2, 0xf5, 0xf9)}, {L"Graphite", "Graphite", RGB(0x23, 0x27, 0x2e)}};

// The four looks a golden is reviewed in: each theme, left to right in English and mirrored in Hebrew.
struct Look {
    const wchar_t* theme;
    bool rtl;
    const wchar_t* Language() const { return rtl ? L"heb" : L"eng"; }
    // The end of the golden's name, "Default_ltr" and the like.
    std::string Suffix() const { return std::string(theme[0] == L'D' ? "Default" : "Graphite") + (rtl ? "_rtl" : "_ltr"); }
};
const Look kLooks[] = {{L"Default", false}, {L"Default", true}, {L"Graphite", false}, {L"Graphite", true}};

// A top-level popup in the window colour of the theme in use (the machine's, until the object goes), at a
// place on the screen, left to right or mirrored.
class ThemedPanel {
public:
    ThemedPanel() { UseTheme(kThemes[0]); }
    ~ThemedPanel() { Close(); }
    ThemedPanel(const ThemedPanel&) = delete;
    ThemedPanel& operator=(const ThemedPanel&) = delete;
    void UseTheme(const Theme& theme)
    {
        m_registry.SetMachineTheme(theme.name);
        m_skin.SetSkinDef({theme.window, theme.window});
    }
    HWND Open(const RECT& rect, bool rtl)
    {
        Close();
        m_panel.SetSkin(&m_skin);
        m_panel.Create(msgseq::PlainClass(), nullptr, rect, L"", 0, WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN,
                       rtl ? WS_EX_LAYOUTRTL : 0, nullptr);
        return m_panel.m_hWnd;
    }
    // In front, and painted with its children.
    void Paint()
    {
        SetForegroundWindow(m_panel.m_hWnd);
        RedrawWindow(m_panel.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        msgseq::Recorder::Pump(20);
    }
    void Close()
    {
        m_panel.DeleteBackBuffer();  // the object outlives its window
        if (m_panel.m_hWnd && IsWindow(m_panel.m_hWnd))
            DestroyWindow(m_panel.m_hWnd);
        m_panel.m_hWnd = nullptr;
    }
    HWND Hwnd() const { return m_panel.m_hWnd; }

private:
    zcmod_test::SuiteRegistry m_registry;
    CTestSkin m_skin;
    CTestPanel m_panel;
};

}  // namespace testskin
