// Owning holders for platform handles and scoped guards, so that every path releases what it made.
// A holder never converts to a raw handle by itself: Get() says where the handle is used.
#pragma once

#include <windows.h>

#include <utility>

namespace zcmod {

template <class Traits>
class UniqueHandle {
public:
    using Type = typename Traits::Type;

    UniqueHandle() noexcept : m_h(nullptr) {}
    explicit UniqueHandle(Type h) noexcept : m_h(h) {}
    ~UniqueHandle() { Reset(); }

    UniqueHandle(UniqueHandle&& other) noexcept : m_h(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept
    {
        if (this != &other)
            Reset(other.Release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;

    Type Get() const noexcept { return m_h; }
    explicit operator bool() const noexcept { return m_h != nullptr; }

    // Gives the handle up without closing it.
    Type Release() noexcept { return std::exchange(m_h, nullptr); }

    void Reset(Type h = nullptr) noexcept
    {
        Type old = std::exchange(m_h, h);
        if (old)
            Traits::Close(old);
    }

    // Address for functions that return a handle through a pointer; closes the current one first.
    Type* Put() noexcept
    {
        Reset();
        return &m_h;
    }

private:
    Type m_h;
};

struct ModuleTraits {
    using Type = HMODULE;
    static void Close(Type h) { FreeLibrary(h); }
};
struct RegKeyTraits {
    using Type = HKEY;
    static void Close(Type h) { RegCloseKey(h); }
};
struct MemoryDCTraits {
    using Type = HDC;
    static void Close(Type h) { DeleteDC(h); }
};
template <class T>
struct GdiObjectTraits {
    using Type = T;
    static void Close(Type h) { DeleteObject(h); }
};
struct GlobalMemoryTraits {
    using Type = HGLOBAL;
    static void Close(Type h) { GlobalFree(h); }
};
struct KernelHandleTraits {
    using Type = HANDLE;
    static void Close(Type h) { CloseHandle(h); }
};

using ModuleHandle = UniqueHandle<ModuleTraits>;
using RegKey = UniqueHandle<RegKeyTraits>;
using MemoryDC = UniqueHandle<MemoryDCTraits>;
using BitmapHandle = UniqueHandle<GdiObjectTraits<HBITMAP>>;
using BrushHandle = UniqueHandle<GdiObjectTraits<HBRUSH>>;
using FontHandle = UniqueHandle<GdiObjectTraits<HFONT>>;
using RegionHandle = UniqueHandle<GdiObjectTraits<HRGN>>;
using GlobalMemory = UniqueHandle<GlobalMemoryTraits>;

// The device context of a window (or of the screen for a null window), released on scope exit.
class WindowDC {
public:
    explicit WindowDC(HWND hwnd) noexcept : m_hwnd(hwnd), m_hdc(GetDC(hwnd)) {}
    ~WindowDC()
    {
        if (m_hdc)
            ReleaseDC(m_hwnd, m_hdc);
    }
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;

    HDC Get() const noexcept { return m_hdc; }
    explicit operator bool() const noexcept { return m_hdc != nullptr; }

private:
    HWND m_hwnd;
    HDC m_hdc;
};

// Selects an object into a device context and puts the previous one back on scope exit.
class SelectGuard {
public:
    SelectGuard(HDC hdc, HGDIOBJ obj) noexcept : m_hdc(hdc), m_old(hdc && obj ? SelectObject(hdc, obj) : nullptr) {}
    ~SelectGuard()
    {
        if (m_old)
            SelectObject(m_hdc, m_old);
    }
    SelectGuard(const SelectGuard&) = delete;
    SelectGuard& operator=(const SelectGuard&) = delete;

    // False when nothing was selected (no context, no object, or the platform refused it).
    explicit operator bool() const noexcept { return m_old != nullptr; }

private:
    HDC m_hdc;
    HGDIOBJ m_old;
};

// A memory context compatible with `compatible` with `bitmap` selected into it for the scope; false when
// either could not be had (a bitmap selected into another context can't be selected here).
class BitmapDC {
public:
    BitmapDC(HDC compatible, HBITMAP bitmap) noexcept
        : m_dc(CreateCompatibleDC(compatible)), m_select(m_dc.Get(), bitmap)
    {
    }
    BitmapDC(const BitmapDC&) = delete;
    BitmapDC& operator=(const BitmapDC&) = delete;

    HDC Get() const noexcept { return m_dc.Get(); }
    explicit operator bool() const noexcept { return m_dc && m_select; }

private:
    MemoryDC m_dc;       // made first and deleted last,
    SelectGuard m_select;  // so that the bitmap is taken out before the context goes
};

// Copies the width x height piece of `from` at (sx, sy) to (x, y) of `to`, through two memory contexts
// compatible with `compatible`. True when the copy was made.
inline bool CopyBitmapPiece(HDC compatible, HBITMAP to, int x, int y, int width, int height, HBITMAP from, int sx,
                            int sy) noexcept
{
    BitmapDC source(compatible, from);
    BitmapDC target(compatible, to);
    return source && target && BitBlt(target.Get(), x, y, width, height, source.Get(), sx, sy, SRCCOPY) != FALSE;
}

// Saves a device context's state and restores it on scope exit.
class SaveDCGuard {
public:
    explicit SaveDCGuard(HDC hdc) noexcept : m_hdc(hdc), m_saved(hdc ? SaveDC(hdc) : 0) {}
    ~SaveDCGuard()
    {
        if (m_saved)
            RestoreDC(m_hdc, m_saved);
    }
    SaveDCGuard(const SaveDCGuard&) = delete;
    SaveDCGuard& operator=(const SaveDCGuard&) = delete;

private:
    HDC m_hdc;
    int m_saved;
};

}  // namespace zcmod
