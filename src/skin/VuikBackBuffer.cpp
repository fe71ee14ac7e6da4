#include "zcmod/VuikBackBuffer.h"

#include "frame/Handles.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"

using zcmod::MemoryDC;
using zcmod::SelectGuard;

namespace {

bool IsEmptyRect(const RECT& r)
{
    return r.left == r.right || r.top == r.bottom;
}

HBITMAP BufferOf(HWND hwnd)
{
    return static_cast<HBITMAP>(GetPropW(hwnd, VUIK_PROP_BACKBUFFER));
}

}  // namespace

CVuikBackBuffer::CVuikBackBuffer(CVuikBackBufferClient* client)
    : m_pClient(client), m_hBackBuffer(nullptr), m_hBackground(nullptr), m_hPublishedOn(nullptr)
{
}

CVuikBackBuffer::~CVuikBackBuffer()
{
    // The client is gone by now (it derives from this class or holds it): only what this object recorded is
    // used here.
    if (m_hBackBuffer)
        DeleteObject(m_hBackBuffer);
    m_hBackBuffer = nullptr;
    if (m_hPublishedOn && IsWindow(m_hPublishedOn))
        RemovePropW(m_hPublishedOn, VUIK_PROP_BACKBUFFER);
}

void CVuikBackBuffer::CreateBackBuffer(int width, int height, CVuikGraphics* graphics)
{
    if (width <= 0 || height <= 0)
        return;
    if (m_hBackBuffer)
        DeleteBackBuffer();
    HDC screen = graphics ? static_cast<HDC>(*graphics) : nullptr;
    m_hBackBuffer = CreateCompatibleBitmap(screen, width, height);
    if (m_hBackBuffer) {
        // The background: whatever the ancestor's buffer shows under this window.
        MemoryDC dc(CreateCompatibleDC(screen));
        if (dc) {
            SelectGuard select(dc.Get(), m_hBackBuffer);
            const RECT all = {0, 0, width, height};
            DrawParentBackBuffer(dc.Get(), all);
        }
    }
    {
        MemoryDC dc(CreateCompatibleDC(screen));
        SelectGuard select(dc.Get(), m_hBackBuffer);
        CVuikGraphics drawing(dc.Get());
        if (m_pClient)
            m_pClient->Draw(&drawing, width, height);
    }
    // Drawing is laid out left to right: in a right-to-left layout the whole buffer, background and drawing
    // together, is turned round once it is out of the context.
    if (!m_hBackBuffer)
        return;
    if (CVuikLib::IsLayoutRTL())
        CVuikLib::MirrorBitmap(m_hBackBuffer);
    HWND hwnd = m_pClient ? m_pClient->GetHWND() : nullptr;
    if (hwnd && SetPropW(hwnd, VUIK_PROP_BACKBUFFER, m_hBackBuffer))
        m_hPublishedOn = hwnd;
}

void CVuikBackBuffer::DeleteBackBuffer()
{
    if (m_hBackBuffer) {
        DeleteObject(m_hBackBuffer);
        m_hBackBuffer = nullptr;
    }
    HWND hwnd = m_pClient ? m_pClient->GetHWND() : nullptr;
    if (hwnd && GetPropW(hwnd, VUIK_PROP_BACKBUFFER))
        RemovePropW(hwnd, VUIK_PROP_BACKBUFFER);
    if (m_hPublishedOn && m_hPublishedOn != hwnd && IsWindow(m_hPublishedOn))
        RemovePropW(m_hPublishedOn, VUIK_PROP_BACKBUFFER);
    m_hPublishedOn = nullptr;
}

bool CVuikBackBuffer::BuildOnDemand(HDC hdc, const RECT& client)
{
    // Building at the moment of a paint is the only way a buffer comes into being.
    if (!m_hBackBuffer) {
        DeleteBackBuffer();
        CVuikGraphics graphics(hdc);
        CreateBackBuffer(client.right - client.left, client.bottom - client.top, &graphics);
    }
    return m_hBackBuffer != nullptr;
}

void CVuikBackBuffer::DrawBackBuffer(HDC hdc, RECT client, RECT area)
{
    // A buffer that couldn't be made leaves the screen as it is; the next paint tries again.
    if (!BuildOnDemand(hdc, client))
        return;
    MemoryDC dc(CreateCompatibleDC(hdc));
    if (!dc)
        return;
    SelectGuard select(dc.Get(), m_hBackBuffer);
    BitBlt(hdc, area.left, area.top, area.right - area.left, area.bottom - area.top, dc.Get(), area.left, area.top,
           SRCCOPY);
}

void CVuikBackBuffer::DrawBackBufferPart(HDC hdc, RECT client, RECT source, RECT dest)
{
    if (IsEmptyRect(source) || IsEmptyRect(dest))
        return;
    // A buffer that couldn't be made leaves the screen as it is; the next paint tries again.
    if (!BuildOnDemand(hdc, client))
        return;
    MemoryDC dc(CreateCompatibleDC(hdc));
    if (!dc)
        return;
    SelectGuard select(dc.Get(), m_hBackBuffer);
    const int sw = source.right - source.left;
    const int sh = source.bottom - source.top;
    const int dw = dest.right - dest.left;
    const int dh = dest.bottom - dest.top;
    if (sw == dw && sh == dh) {
        BitBlt(hdc, dest.left, dest.top, dw, dh, dc.Get(), source.left, source.top, SRCCOPY);
        return;
    }
    const int oldMode = SetStretchBltMode(hdc, HALFTONE);
    SetBrushOrgEx(hdc, 0, 0, nullptr);
    StretchBlt(hdc, dest.left, dest.top, dw, dh, dc.Get(), source.left, source.top, sw, sh, SRCCOPY);
    if (oldMode)
        SetStretchBltMode(hdc, oldMode);
}

void CVuikBackBuffer::DrawParentBackBuffer(HDC hdc, RECT area)
{
    HWND self = m_pClient ? m_pClient->GetHWND() : nullptr;
    RECT mapped = area;
    HWND found = nullptr;
    HBITMAP bitmap = nullptr;
    if (!m_hBackground) {
        // The nearest ancestor with a live buffer: a parent that hasn't painted yet is passed over.
        for (HWND w = self ? GetParent(self) : nullptr; w; w = GetParent(w)) {
            bitmap = BufferOf(w);
            if (bitmap) {
                found = w;
                break;
            }
        }
    } else if (IsWindow(m_hBackground)) {
        // Only the named window counts; one that hasn't painted is made to paint, which builds its buffer.
        found = m_hBackground;
        bitmap = BufferOf(found);
        if (!bitmap) {
            InvalidateRect(found, nullptr, TRUE);
            UpdateWindow(found);
            bitmap = BufferOf(found);
        }
    }
    if (!bitmap)
        return;
    MapWindowPoints(self, found, reinterpret_cast<POINT*>(&mapped), 2);
    MemoryDC dc(CreateCompatibleDC(hdc));
    if (!dc)
        return;
    SelectGuard select(dc.Get(), bitmap);
    BitBlt(hdc, area.left, area.top, area.right - area.left, area.bottom - area.top, dc.Get(), mapped.left, mapped.top,
           SRCCOPY);
}
