#include "HandleCounter.h"

#include <commctrl.h>

#include <map>
#include <mutex>
#include <set>
#include <utility>

#include "ImportPatch.h"

namespace zcmod_test {
namespace {

using Kind = HandleCounter::Kind;

// GDI objects, USER objects and image lists are numbered in separate tables, so the same value can name a
// bitmap and a window at once: objects are keyed by their table as well as their handle.
enum Space { GdiSpace, UserSpace, ImageListSpace };

Space SpaceOf(Kind kind)
{
    switch (kind) {
        case HandleCounter::Icon:
        case HandleCounter::Window:
        case HandleCounter::Hook: return UserSpace;
        case HandleCounter::ImageList: return ImageListSpace;
        default: return GdiSpace;
    }
}

// Live objects by table and handle; timers by (window, id). One table for the process: only one counter is live.
struct Table {
    std::mutex lock;
    std::map<std::pair<Space, void*>, Kind> objects;
    std::set<std::pair<HWND, UINT_PTR>> timers;
    bool active = false;

    void Add(void* handle, Kind kind)
    {
        if (!handle)
            return;
        std::lock_guard<std::mutex> guard(lock);
        if (active)
            objects[{SpaceOf(kind), handle}] = kind;
    }
    void Remove(void* handle, Space space)
    {
        std::lock_guard<std::mutex> guard(lock);
        objects.erase({space, handle});
    }
};
Table g_table;

// One replaced import: its DLL, its name, the replacement and where the original address is kept.
struct ImportHook {
    const char* dll;
    const char* name;
    void* replacement;
    void** original;
};

template <typename F>
F Real(void* original)
{
    return reinterpret_cast<F>(original);
}

#define ZCMOD_ORIGINAL(name) void* g_##name = nullptr
// Creating functions whose result is the new object.
#define ZCMOD_CREATOR(name, kind, ret, params, args)                                                         \
    ZCMOD_ORIGINAL(name);                                                                                     \
    ret WINAPI My##name params                                                                                \
    {                                                                                                         \
        ret result = Real<ret(WINAPI*) params>(g_##name) args;                                               \
        g_table.Add(reinterpret_cast<void*>(result), HandleCounter::kind);                                   \
        return result;                                                                                        \
    }
// Freeing functions that take the object as their first argument.
#define ZCMOD_FREER(name, space, ret, params, args, handle)                                                  \
    ZCMOD_ORIGINAL(name);                                                                                     \
    ret WINAPI My##name params                                                                                \
    {                                                                                                         \
        ret result = Real<ret(WINAPI*) params>(g_##name) args;                                               \
        if (result)                                                                                           \
            g_table.Remove(reinterpret_cast<void*>(handle), space);                                          \
        return result;                                                                                        \
    }

ZCMOD_CREATOR(CreateCompatibleBitmap, Bitmap, HBITMAP, (HDC dc, int w, int h), (dc, w, h))
ZCMOD_CREATOR(CreateDIBSection, Bitmap, HBITMAP,
              (HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section, DWORD offset),
              (dc, info, usage, bits, section, offset))
ZCMOD_CREATOR(CreateBitmap, Bitmap, HBITMAP, (int w, int h, UINT planes, UINT bits, const void* data),
              (w, h, planes, bits, data))
ZCMOD_CREATOR(CreateBitmapIndirect, Bitmap, HBITMAP, (const BITMAP* bm), (bm))
ZCMOD_CREATOR(CreateDIBitmap, Bitmap, HBITMAP,
              (HDC dc, const BITMAPINFOHEADER* header, DWORD init, const void* bits, const BITMAPINFO* info,
               UINT usage),
              (dc, header, init, bits, info, usage))
ZCMOD_CREATOR(LoadBitmapW, Bitmap, HBITMAP, (HINSTANCE module, LPCWSTR name), (module, name))
ZCMOD_CREATOR(CreateCompatibleDC, DC, HDC, (HDC dc), (dc))
ZCMOD_CREATOR(CreateDCW, DC, HDC, (LPCWSTR driver, LPCWSTR device, LPCWSTR port, const DEVMODEW* mode),
              (driver, device, port, mode))
ZCMOD_CREATOR(GetDC, DC, HDC, (HWND hwnd), (hwnd))
ZCMOD_CREATOR(GetWindowDC, DC, HDC, (HWND hwnd), (hwnd))
ZCMOD_CREATOR(GetDCEx, DC, HDC, (HWND hwnd, HRGN clip, DWORD flags), (hwnd, clip, flags))
ZCMOD_CREATOR(CreateSolidBrush, Brush, HBRUSH, (COLORREF colour), (colour))
ZCMOD_CREATOR(CreateBrushIndirect, Brush, HBRUSH, (const LOGBRUSH* brush), (brush))
ZCMOD_CREATOR(CreatePatternBrush, Brush, HBRUSH, (HBITMAP bitmap), (bitmap))
ZCMOD_CREATOR(CreateHatchBrush, Brush, HBRUSH, (int hatch, COLORREF colour), (hatch, colour))
ZCMOD_CREATOR(CreatePen, Pen, HPEN, (int style, int width, COLORREF colour), (style, width, colour))
ZCMOD_CREATOR(ExtCreatePen, Pen, HPEN,
              (DWORD style, DWORD width, const LOGBRUSH* brush, DWORD count, const DWORD* styles),
              (style, width, brush, count, styles))
ZCMOD_CREATOR(CreateFontIndirectW, Font, HFONT, (const LOGFONTW* font), (font))
ZCMOD_CREATOR(CreateFontW, Font, HFONT,
              (int h, int w, int e, int o, int weight, DWORD i, DWORD u, DWORD s, DWORD cs, DWORD op, DWORD cp,
               DWORD q, DWORD pf, LPCWSTR face),
              (h, w, e, o, weight, i, u, s, cs, op, cp, q, pf, face))
ZCMOD_CREATOR(CreateRectRgn, Region, HRGN, (int l, int t, int r, int b), (l, t, r, b))
ZCMOD_CREATOR(CreateRectRgnIndirect, Region, HRGN, (const RECT* rect), (rect))
ZCMOD_CREATOR(CreateRoundRectRgn, Region, HRGN, (int l, int t, int r, int b, int w, int h), (l, t, r, b, w, h))
ZCMOD_CREATOR(CreateEllipticRgn, Region, HRGN, (int l, int t, int r, int b), (l, t, r, b))
ZCMOD_CREATOR(CreatePolygonRgn, Region, HRGN, (const POINT* points, int count, int mode), (points, count, mode))
ZCMOD_CREATOR(ExtCreateRegion, Region, HRGN, (const XFORM* xform, DWORD count, const RGNDATA* data),
              (xform, count, data))
ZCMOD_CREATOR(CopyIcon, Icon, HICON, (HICON icon), (icon))
ZCMOD_CREATOR(CreateIconIndirect, Icon, HICON, (ICONINFO* info), (info))
ZCMOD_CREATOR(CreateWindowExW, Window, HWND,
              (DWORD ex, LPCWSTR cls, LPCWSTR name, DWORD style, int x, int y, int w, int h, HWND parent,
               HMENU menu, HINSTANCE inst, LPVOID param),
              (ex, cls, name, style, x, y, w, h, parent, menu, inst, param))
ZCMOD_CREATOR(CreateDialogIndirectParamW, Window, HWND,
              (HINSTANCE inst, LPCDLGTEMPLATEW tpl, HWND parent, DLGPROC proc, LPARAM param),
              (inst, tpl, parent, proc, param))
ZCMOD_CREATOR(CreateDialogParamW, Window, HWND,
              (HINSTANCE inst, LPCWSTR tpl, HWND parent, DLGPROC proc, LPARAM param),
              (inst, tpl, parent, proc, param))
ZCMOD_CREATOR(SetWindowsHookExW, Hook, HHOOK, (int id, HOOKPROC proc, HINSTANCE module, DWORD thread),
              (id, proc, module, thread))
ZCMOD_CREATOR(ImageList_Create, ImageList, HIMAGELIST, (int w, int h, UINT flags, int initial, int grow),
              (w, h, flags, initial, grow))
ZCMOD_CREATOR(ImageList_Duplicate, ImageList, HIMAGELIST, (HIMAGELIST list), (list))

ZCMOD_FREER(DeleteObject, GdiSpace, BOOL, (HGDIOBJ object), (object), object)
ZCMOD_FREER(DeleteDC, GdiSpace, BOOL, (HDC dc), (dc), dc)
ZCMOD_FREER(ReleaseDC, GdiSpace, int, (HWND hwnd, HDC dc), (hwnd, dc), dc)
ZCMOD_FREER(DestroyIcon, UserSpace, BOOL, (HICON icon), (icon), icon)
ZCMOD_FREER(DestroyWindow, UserSpace, BOOL, (HWND hwnd), (hwnd), hwnd)
ZCMOD_FREER(UnhookWindowsHookEx, UserSpace, BOOL, (HHOOK hook), (hook), hook)
ZCMOD_FREER(ImageList_Destroy, ImageListSpace, BOOL, (HIMAGELIST list), (list), list)

// LoadImageW and CopyImage make bitmaps or icons, as their type says.
ZCMOD_ORIGINAL(LoadImageW);
HANDLE WINAPI MyLoadImageW(HINSTANCE module, LPCWSTR name, UINT type, int w, int h, UINT flags)
{
    HANDLE result = Real<decltype(&MyLoadImageW)>(g_LoadImageW)(module, name, type, w, h, flags);
    // Shared icons and cursors are the system's to free.
    if (type == IMAGE_BITMAP || !(flags & LR_SHARED))
        g_table.Add(result, type == IMAGE_BITMAP ? HandleCounter::Bitmap : HandleCounter::Icon);
    return result;
}
ZCMOD_ORIGINAL(CopyImage);
HANDLE WINAPI MyCopyImage(HANDLE image, UINT type, int w, int h, UINT flags)
{
    HANDLE result = Real<decltype(&MyCopyImage)>(g_CopyImage)(image, type, w, h, flags);
    if (result && result != image)
        g_table.Add(result, type == IMAGE_BITMAP ? HandleCounter::Bitmap : HandleCounter::Icon);
    if (result && result != image && (flags & LR_COPYDELETEORG))
        g_table.Remove(image, type == IMAGE_BITMAP ? GdiSpace : UserSpace);
    return result;
}

// A region given to a window is the window's from then on.
ZCMOD_ORIGINAL(SetWindowRgn);
int WINAPI MySetWindowRgn(HWND hwnd, HRGN region, BOOL redraw)
{
    const int result = Real<decltype(&MySetWindowRgn)>(g_SetWindowRgn)(hwnd, region, redraw);
    if (result && region)
        g_table.Remove(region, GdiSpace);
    return result;
}

ZCMOD_ORIGINAL(SetTimer);
UINT_PTR WINAPI MySetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc)
{
    const UINT_PTR result = Real<decltype(&MySetTimer)>(g_SetTimer)(hwnd, id, elapse, proc);
    if (result) {
        std::lock_guard<std::mutex> guard(g_table.lock);
        if (g_table.active)
            g_table.timers.insert({hwnd, hwnd ? id : result});
    }
    return result;
}
ZCMOD_ORIGINAL(KillTimer);
BOOL WINAPI MyKillTimer(HWND hwnd, UINT_PTR id)
{
    const BOOL result = Real<decltype(&MyKillTimer)>(g_KillTimer)(hwnd, id);
    std::lock_guard<std::mutex> guard(g_table.lock);
    g_table.timers.erase({hwnd, id});
    return result;
}

#define ZCMOD_HOOK(dll, name) {dll, #name, reinterpret_cast<void*>(My##name), &g_##name}
const ImportHook kHooks[] = {
    ZCMOD_HOOK("gdi32.dll", CreateCompatibleBitmap), ZCMOD_HOOK("gdi32.dll", CreateDIBSection),
    ZCMOD_HOOK("gdi32.dll", CreateBitmap), ZCMOD_HOOK("gdi32.dll", CreateBitmapIndirect),
    ZCMOD_HOOK("gdi32.dll", CreateDIBitmap), ZCMOD_HOOK("user32.dll", LoadBitmapW),
    ZCMOD_HOOK("gdi32.dll", CreateCompatibleDC), ZCMOD_HOOK("gdi32.dll", CreateDCW),
    ZCMOD_HOOK("user32.dll", GetDC), ZCMOD_HOOK("user32.dll", GetWindowDC), ZCMOD_HOOK("user32.dll", GetDCEx),
    ZCMOD_HOOK("gdi32.dll", CreateSolidBrush), ZCMOD_HOOK("gdi32.dll", CreateBrushIndirect),
    ZCMOD_HOOK("gdi32.dll", CreatePatternBrush), ZCMOD_HOOK("gdi32.dll", CreateHatchBrush),
    ZCMOD_HOOK("gdi32.dll", CreatePen), ZCMOD_HOOK("gdi32.dll", ExtCreatePen),
    ZCMOD_HOOK("gdi32.dll", CreateFontIndirectW), ZCMOD_HOOK("gdi32.dll", CreateFontW),
    ZCMOD_HOOK("gdi32.dll", CreateRectRgn), ZCMOD_HOOK("gdi32.dll", CreateRectRgnIndirect),
    ZCMOD_HOOK("gdi32.dll", CreateRoundRectRgn), ZCMOD_HOOK("gdi32.dll", CreateEllipticRgn),
    ZCMOD_HOOK("gdi32.dll", CreatePolygonRgn), ZCMOD_HOOK("gdi32.dll", ExtCreateRegion),
    ZCMOD_HOOK("user32.dll", CopyIcon), ZCMOD_HOOK("user32.dll", CreateIconIndirect),
    ZCMOD_HOOK("user32.dll", CreateWindowExW), ZCMOD_HOOK("user32.dll", CreateDialogIndirectParamW),
    ZCMOD_HOOK("user32.dll", CreateDialogParamW), ZCMOD_HOOK("user32.dll", SetWindowsHookExW),
    ZCMOD_HOOK("comctl32.dll", ImageList_Create), ZCMOD_HOOK("comctl32.dll", ImageList_Duplicate),
    ZCMOD_HOOK("gdi32.dll", DeleteObject), ZCMOD_HOOK("gdi32.dll", DeleteDC), ZCMOD_HOOK("user32.dll", ReleaseDC),
    ZCMOD_HOOK("user32.dll", DestroyIcon), ZCMOD_HOOK("user32.dll", DestroyWindow),
    ZCMOD_HOOK("user32.dll", UnhookWindowsHookEx), ZCMOD_HOOK("comctl32.dll", ImageList_Destroy),
    ZCMOD_HOOK("user32.dll", LoadImageW), ZCMOD_HOOK("user32.dll", CopyImage),
    ZCMOD_HOOK("user32.dll", SetWindowRgn), ZCMOD_HOOK("user32.dll", SetTimer),
    ZCMOD_HOOK("user32.dll", KillTimer),
};

const char* const kNames[HandleCounter::KindCount] = {"bitmaps", "DCs",     "brushes", "pens",  "fonts",     "regions",
                                                      "icons",   "windows", "timers",  "hooks", "image lists"};

}  // namespace

long HandleCounter::Counts::Total() const
{
    long total = 0;
    for (long value : n)
        total += value;
    return total;
}

bool HandleCounter::Counts::operator==(const Counts& other) const
{
    for (int i = 0; i < KindCount; ++i)
        if (n[i] != other.n[i])
            return false;
    return true;
}

std::string HandleCounter::Counts::ToString() const
{
    std::string text;
    for (int i = 0; i < KindCount; ++i)
        if (n[i])
            text += (text.empty() ? "" : ", ") + std::string(kNames[i]) + " " + std::to_string(n[i]);
    return text.empty() ? "none" : text;
}

HandleCounter::HandleCounter(HMODULE module) : m_module(module)
{
    {
        std::lock_guard<std::mutex> guard(g_table.lock);
        g_table.objects.clear();
        g_table.timers.clear();
        g_table.active = true;
    }
    for (const ImportHook& hook : kHooks) {
        if (void* old = PatchImport(m_module, hook.dll, hook.name, hook.replacement)) {
            *hook.original = old;
            ++m_patched;
        }
    }
}

HandleCounter::~HandleCounter()
{
    for (const ImportHook& hook : kHooks)
        if (*hook.original)
            PatchImport(m_module, hook.dll, hook.name, *hook.original);
    std::lock_guard<std::mutex> guard(g_table.lock);
    g_table.active = false;
    g_table.objects.clear();
    g_table.timers.clear();
}

HandleCounter::Counts HandleCounter::Live() const
{
    std::lock_guard<std::mutex> guard(g_table.lock);
    // A window that is gone took its timers with it, whoever destroyed it.
    for (auto it = g_table.objects.begin(); it != g_table.objects.end();)
        it = it->second == Window && !IsWindow(static_cast<HWND>(it->first.second)) ? g_table.objects.erase(it) : ++it;
    for (auto it = g_table.timers.begin(); it != g_table.timers.end();)
        it = it->first && !IsWindow(it->first) ? g_table.timers.erase(it) : ++it;
    Counts counts;
    for (const auto& entry : g_table.objects)
        ++counts.n[entry.second];
    counts.n[Timer] = static_cast<long>(g_table.timers.size());
    return counts;
}

}  // namespace zcmod_test
