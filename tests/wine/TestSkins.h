// Skins and controls of the window base tests, drawn with plain GDI where no picture is needed:
//   CTestStateSkin   a leaf: a fill, a mark over the left quarter (to see mirroring) and a masked picture
//                    in the middle, each optional; it counts its draws, which are the builds of a buffer;
//   CTestButtonSkin  a composite of four state skins (normal, pushed, hover, checked), picked through a
//                    checked cast of the window to CTestButton;
//   CTestPanelSkin   a background: left half and right half in two colours;
//   CTestButton      a control on CVuikButtonImpl over a "Button" window; CTestPanel on CVuikWindowImpl.
#pragma once

#include <windows.h>

#include <vector>

#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikButtonImpl.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"
#include "zcmod/VuikWindowImpl.h"

namespace testskin {

const COLORREF kNone = CLR_INVALID;

inline void Fill(HDC dc, int left, int top, int right, int bottom, COLORREF colour)
{
    if (colour == kNone)
        return;
    const RECT r = {left, top, right, bottom};
    HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &r, brush);
    DeleteObject(brush);
}

struct StateDef {
    COLORREF fill;
    COLORREF mark;
    UINT pictureId;
};

class CTestStateSkin : public CVuikBaseSkinImpl<CTestStateSkin, StateDef> {
public:
    CTestStateSkin() : m_pPicture(nullptr), m_nDraws(0) { m_SkinDef = StateDef{kNone, kNone, 0}; }
    ~CTestStateSkin() { Unload(); }

    void Load() override
    {
        Unload();
        if (m_SkinDef.pictureId)
            CVuikResourceManager::LoadBitmapW(&m_pPicture, CVuikLib::GetResourceInstance(), m_SkinDef.pictureId, 0,
                                              nullptr);
        Validate();
    }
    void Unload() override
    {
        if (m_pPicture)
            CVuikResourceManager::UnloadBitmap(&m_pPicture);
        m_pPicture = nullptr;
    }
    void Validate() override { m_nStatus = (m_SkinDef.pictureId && !m_pPicture) ? StatusInvalid : StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        ++m_nDraws;
        HDC dc = *graphics;
        Fill(dc, 0, 0, width, height, m_SkinDef.fill);
        Fill(dc, 0, 0, width / 4, height, m_SkinDef.mark);
        if (m_pPicture)
            graphics->DrawImage(m_pPicture, (width - m_pPicture->GetWidth()) / 2,
                                (height - m_pPicture->GetHeight()) / 2);
    }

    CVuikBitmap* m_pPicture;
    int m_nDraws;
};

enum { StateNormal, StatePushed, StateHover, StateChecked, StateCount };

struct ButtonDef {
    StateDef states[StateCount];
};

class CTestButtonSkin : public CVuikBaseSkinImpl<CTestButtonSkin, ButtonDef> {
public:
    CTestButtonSkin()
    {
        for (int i = 0; i < StateCount; ++i)
            m_SkinDef.states[i] = StateDef{kNone, kNone, 0};
        SetSkinDef(m_SkinDef);
    }
    void SetSkinDef(ButtonDef def) override
    {
        m_SkinDef = def;
        for (int i = 0; i < StateCount; ++i)
            m_States[i].SetSkinDef(def.states[i]);
    }
    void Load() override
    {
        for (CTestStateSkin& s : m_States)
            s.Load();
    }
    void Unload() override
    {
        for (CTestStateSkin& s : m_States)
            s.Unload();
    }
    void Validate() override
    {
        for (CTestStateSkin& s : m_States)
            s.Validate();
    }
    bool IsValid() override
    {
        for (CTestStateSkin& s : m_States)
            if (!s.IsValid())
                return false;
        return true;
    }
    void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height) override;

    int Draws() const
    {
        int n = 0;
        for (const CTestStateSkin& s : m_States)
            n += s.m_nDraws;
        return n;
    }

    CTestStateSkin m_States[StateCount];
};

class CTestButton : public CVuikButtonImpl<CTestButtonSkin> {
    typedef CVuikWindowImpl<CTestButtonSkin> Window;

public:
    using CVuikButtonImpl<CTestButtonSkin>::Create;
    HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle) override
    {
        HWND hwnd = Window::Create(L"Button", parent, rect, L"", id, style, exStyle, nullptr);
        if (hwnd)
            m_nCtrlId = GetDlgCtrlID(hwnd);
        return hwnd;
    }
    BOOL SubclassWindow(HWND hwnd) override
    {
        const BOOL ok = Window::SubclassWindow(hwnd);
        if (ok)
            m_nCtrlId = GetDlgCtrlID(hwnd);
        return ok;
    }
    void SizeToContent() override { ++m_nSizeToContent; }
    LRESULT OnPaint(HWND hwnd, UINT, WPARAM, LPARAM) override
    {
        PAINTSTRUCT paint;
        if (!BeginPaint(hwnd, &paint))
            return 0;
        RECT client;
        GetClientRect(hwnd, &client);
        if (SkinIsValid())
            DrawBackBuffer(paint.hdc, client, paint.rcPaint);
        else
            DrawPlaceHolder(paint.hdc);
        EndPaint(hwnd, &paint);
        ++m_nPaints;
        return 0;
    }

    int GraphicalState() const
    {
        if (m_nState & StatePushed)
            return testskin::StatePushed;
        if (m_nState & StateCheckMask)
            return testskin::StateChecked;
        return m_bHover ? testskin::StateHover : testskin::StateNormal;
    }
    LONGLONG State() const { return m_nState; }
    bool Hover() const { return m_bHover; }
    bool Tracking() const { return m_bTracking; }
    WNDPROC SuperWindowProc() const { return m_pfnSuperWindowProc; }
    WNDPROC OwnWindowProc() const { return m_pfnWindowProc; }

    int m_nSizeToContent = 0;
    int m_nPaints = 0;
};

inline void CTestButtonSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    const CTestButton* button = dynamic_cast<CTestButton*>(window);
    const int state = button ? button->GraphicalState() : StateNormal;
    m_States[state].Draw(window, graphics, width, height);
}

struct PanelDef {
    COLORREF left;
    COLORREF right;
};

class CTestPanelSkin : public CVuikBaseSkinImpl<CTestPanelSkin, PanelDef> {
public:
    CTestPanelSkin() : m_nDraws(0) { m_SkinDef = PanelDef{RGB(255, 0, 0), RGB(0, 0, 255)}; }
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        ++m_nDraws;
        Fill(*graphics, 0, 0, width / 2, height, m_SkinDef.left);
        Fill(*graphics, width / 2, 0, width, height, m_SkinDef.right);
    }
    int m_nDraws;
};

// A plain window class for panels: the window base does all of the painting.
inline const wchar_t* PanelClass()
{
    static ATOM atom = 0;
    if (!atom) {
        WNDCLASSEXW wc = {};
        wc.cbSize = sizeof(wc);
        wc.style = CS_DBLCLKS;
        wc.lpfnWndProc = DefWindowProcW;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.lpszClassName = L"ZcmodTestPanel";
        atom = RegisterClassExW(&wc);
    }
    return L"ZcmodTestPanel";
}

class CTestPanel : public CVuikWindowImpl<CTestPanelSkin> {
public:
    // A top-level popup when `parent` is null, else a child; visible either way.
    HWND CreatePanel(HWND parent, const RECT& rect, UINT id = 0)
    {
        const DWORD style = (parent ? WS_CHILD : WS_POPUP) | WS_VISIBLE | WS_CLIPCHILDREN;
        return Create(PanelClass(), parent, rect, L"", id, style, 0, nullptr);
    }
};

}  // namespace testskin

namespace testskin {

// What a window shows on the screen, captured with BitBlt from its DC into a 32-bit DIB.
struct Capture {
    int width = 0;
    int height = 0;
    std::vector<DWORD> pixels;
    // 0x00RRGGBB, or 0xFFFFFFFF outside.
    DWORD At(int x, int y) const
    {
        return x < 0 || y < 0 || x >= width || y >= height ? 0xFFFFFFFF
                                                           : pixels[static_cast<size_t>(y) * width + x] & 0xFFFFFF;
    }
};

// The pixels of a bitmap (a back buffer, say), or of a window's client area as shown.
inline Capture ReadBitmap(HBITMAP bitmap)
{
    Capture c;
    BITMAP bm = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof(bm), &bm))
        return c;
    c.width = bm.bmWidth;
    c.height = bm.bmHeight;
    c.pixels.assign(static_cast<size_t>(c.width) * c.height, 0);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = c.width;
    info.bmiHeader.biHeight = -c.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    HDC screen = GetDC(nullptr);
    GetDIBits(screen, bitmap, 0, c.height, c.pixels.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    return c;
}

inline Capture CaptureWindow(HWND hwnd)
{
    RECT client;
    GetClientRect(hwnd, &client);
    HDC dc = GetDC(hwnd);
    HDC memory = CreateCompatibleDC(dc);
    HBITMAP bitmap = CreateCompatibleBitmap(dc, client.right, client.bottom);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
    ReleaseDC(hwnd, dc);
    Capture c = ReadBitmap(bitmap);
    DeleteObject(bitmap);
    return c;
}

// Channels of two 0x00RRGGBB colours differ by at most `tolerance`.
inline bool Near(DWORD a, DWORD b, int tolerance)
{
    for (int shift = 0; shift < 24; shift += 8) {
        const int d = static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF);
        if (d > tolerance || d < -tolerance)
            return false;
    }
    return true;
}

// 0x00RRGGBB of a COLORREF, for comparing with captures.
inline DWORD Rgb(COLORREF c)
{
    return (GetRValue(c) << 16) | (GetGValue(c) << 8) | GetBValue(c);
}

// Sets the library's instances to the test program (its pictures are resources of the program) and a
// layout, and puts the old values back.
class LibraryState {
public:
    explicit LibraryState(DWORD layout = 0)
        : m_inst(CVuikLib::GetInstance()), m_res(CVuikLib::GetResourceInstance()), m_layout(CVuikLib::GetLayout())
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
    }
    LibraryState(const LibraryState&) = delete;
    LibraryState& operator=(const LibraryState&) = delete;

private:
    HINSTANCE m_inst;
    HINSTANCE m_res;
    DWORD m_layout;
};

}  // namespace testskin
