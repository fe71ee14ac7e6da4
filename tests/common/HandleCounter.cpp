#include "HandleCounter.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <mutex>
#include <numeric>
#include <set>
#include <tuple>
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
    if (kind == HandleCounter::Icon || kind == HandleCounter::Window || kind == HandleCounter::Hook)
        return UserSpace;
    return kind == HandleCounter::ImageList ? ImageListSpace : GdiSpace;
}

// Live objects by table and handle; timers by (window, id). One table for the process: only one counter is live.
struct Table {
    std::mutex lock;
    std::map<std::pair<Space, void*>, Kind> objects;
    std::set<std::pair<HWND, UINT_PTR>> timers;
    bool active = false;

    void Add(void* handle, Kind kind)
    {
        std::lock_guard<std::mutex> guard(lock);
        if (handle && active)
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

// The original address of the import replaced under `Slot` (each entry of kHooks has a slot of its own).
template <int Slot>
void* g_original = nullptr;

// A creating function whose result is the new object.
template <int Slot, Kind kind, typename R, typename... A>
R WINAPI Created(A... args)
{
    const R result = reinterpret_cast<R(WINAPI*)(A...)>(g_original<Slot>)(args...);
    g_table.Add(reinterpret_cast<void*>(result), kind);
    return result;
}
template <int Slot, Kind kind, typename R, typename... A>
ImportHook Creator(const char* dll, const char* name, R(WINAPI*)(A...))
{
    return {dll, name, reinterpret_cast<void*>(&Created<Slot, kind, R, A...>), &g_original<Slot>};
}

// A freeing function that takes the object as its argument number `Arg`. A region handed to SetWindowRgn is
// the window's from then on, so that call frees it too.
template <int Slot, Space space, size_t Arg, typename R, typename... A>
R WINAPI Freed(A... args)
{
    const R result = reinterpret_cast<R(WINAPI*)(A...)>(g_original<Slot>)(args...);
    if (result)
        g_table.Remove(reinterpret_cast<void*>(std::get<Arg>(std::make_tuple(args...))), space);
    return result;
}
template <int Slot, Space space, size_t Arg, typename R, typename... A>
ImportHook Freer(const char* dll, const char* name, R(WINAPI*)(A...))
{
    return {dll, name, reinterpret_cast<void*>(&Freed<Slot, space, Arg, R, A...>), &g_original<Slot>};
}

// LoadImageW and CopyImage make bitmaps or icons, as their type says.
void* g_LoadImageW = nullptr;
HANDLE WINAPI MyLoadImageW(HINSTANCE module, LPCWSTR name, UINT type, int w, int h, UINT flags)
{
    HANDLE result = reinterpret_cast<decltype(&MyLoadImageW)>(g_LoadImageW)(module, name, type, w, h, flags);
    // Shared icons and cursors are the system's to free.
    if (type == IMAGE_BITMAP || !(flags & LR_SHARED))
        g_table.Add(result, type == IMAGE_BITMAP ? HandleCounter::Bitmap : HandleCounter::Icon);
    return result;
}
void* g_CopyImage = nullptr;
HANDLE WINAPI MyCopyImage(HANDLE image, UINT type, int w, int h, UINT flags)
{
    HANDLE result = reinterpret_cast<decltype(&MyCopyImage)>(g_CopyImage)(image, type, w, h, flags);
    if (!result || result == image)
        return result;
    g_table.Add(result, type == IMAGE_BITMAP ? HandleCounter::Bitmap : HandleCounter::Icon);
    if (flags & LR_COPYDELETEORG)
        g_table.Remove(image, type == IMAGE_BITMAP ? GdiSpace : UserSpace);
    return result;
}

// Timers are kept by window and id; one without a window by the id the system gave it.
void* g_SetTimer = nullptr;
UINT_PTR WINAPI MySetTimer(HWND hwnd, UINT_PTR id, UINT elapse, TIMERPROC proc)
{
    const UINT_PTR result = reinterpret_cast<decltype(&MySetTimer)>(g_SetTimer)(hwnd, id, elapse, proc);
    std::lock_guard<std::mutex> guard(g_table.lock);
    if (result && g_table.active)
        g_table.timers.insert({hwnd, hwnd ? id : result});
    return result;
}
void* g_KillTimer = nullptr;
BOOL WINAPI MyKillTimer(HWND hwnd, UINT_PTR id)
{
    const BOOL result = reinterpret_cast<decltype(&MyKillTimer)>(g_KillTimer)(hwnd, id);
    std::lock_guard<std::mutex> guard(g_table.lock);
    g_table.timers.erase({hwnd, id});
    return result;
}

// Each use takes a slot of its own. The table is packed by hand: the formatter would give each entry a line.
// clang-format off
#define ZCMOD_CREATOR(dll, name, kind) Creator<__COUNTER__, HandleCounter::kind>(#dll ".dll", #name, &::name)
#define ZCMOD_FREER(dll, name, space, arg) Freer<__COUNTER__, space, arg>(#dll ".dll", #name, &::name)
#define ZCMOD_OWN(name) (ImportHook{"user32.dll", #name, reinterpret_cast<void*>(My##name), &g_##name})
const ImportHook kHooks[] = {
    ZCMOD_CREATOR(gdi32, CreateCompatibleBitmap, Bitmap), ZCMOD_CREATOR(gdi32, CreateDIBSection, Bitmap),
    ZCMOD_CREATOR(gdi32, CreateBitmap, Bitmap), ZCMOD_CREATOR(gdi32, CreateBitmapIndirect, Bitmap),
    ZCMOD_CREATOR(gdi32, CreateDIBitmap, Bitmap), ZCMOD_CREATOR(user32, LoadBitmapW, Bitmap),
    ZCMOD_CREATOR(gdi32, CreateCompatibleDC, DC), ZCMOD_CREATOR(gdi32, CreateDCW, DC), ZCMOD_CREATOR(user32, GetDC, DC),
    ZCMOD_CREATOR(user32, GetWindowDC, DC), ZCMOD_CREATOR(user32, GetDCEx, DC),
    ZCMOD_CREATOR(gdi32, CreateSolidBrush, Brush), ZCMOD_CREATOR(gdi32, CreateBrushIndirect, Brush),
    ZCMOD_CREATOR(gdi32, CreatePatternBrush, Brush), ZCMOD_CREATOR(gdi32, CreateHatchBrush, Brush),
    ZCMOD_CREATOR(gdi32, CreatePen, Pen), ZCMOD_CREATOR(gdi32, ExtCreatePen, Pen),
    ZCMOD_CREATOR(gdi32, CreateFontIndirectW, Font), ZCMOD_CREATOR(gdi32, CreateFontW, Font),
    ZCMOD_CREATOR(gdi32, CreateRectRgn, Region), ZCMOD_CREATOR(gdi32, CreateRectRgnIndirect, Region),
    ZCMOD_CREATOR(gdi32, CreateRoundRectRgn, Region), ZCMOD_CREATOR(gdi32, CreateEllipticRgn, Region),
    ZCMOD_CREATOR(gdi32, CreatePolygonRgn, Region), ZCMOD_CREATOR(gdi32, ExtCreateRegion, Region),
    ZCMOD_CREATOR(user32, CopyIcon, Icon), ZCMOD_CREATOR(user32, CreateIconIndirect, Icon),
    ZCMOD_CREATOR(user32, CreateWindowExW, Window), ZCMOD_CREATOR(user32, CreateDialogIndirectParamW, Window),
    ZCMOD_CREATOR(user32, CreateDialogParamW, Window), ZCMOD_CREATOR(user32, SetWindowsHookExW, Hook),
    ZCMOD_CREATOR(comctl32, ImageList_Create, ImageList), ZCMOD_CREATOR(comctl32, ImageList_Duplicate, ImageList),
    ZCMOD_FREER(gdi32, DeleteObject, GdiSpace, 0), ZCMOD_FREER(gdi32, DeleteDC, GdiSpace, 0),
    ZCMOD_FREER(user32, ReleaseDC, GdiSpace, 1), ZCMOD_FREER(user32, SetWindowRgn, GdiSpace, 1),
    ZCMOD_FREER(user32, DestroyIcon, UserSpace, 0), ZCMOD_FREER(user32, DestroyWindow, UserSpace, 0),
    ZCMOD_FREER(user32, UnhookWindowsHookEx, UserSpace, 0),
    ZCMOD_FREER(comctl32, ImageList_Destroy, ImageListSpace, 0),
    ZCMOD_OWN(LoadImageW), ZCMOD_OWN(CopyImage), ZCMOD_OWN(SetTimer), ZCMOD_OWN(KillTimer),
};
// clang-format on

const char* const kNames[HandleCounter::KindCount] = {"bitmaps", "DCs",     "brushes", "pens",  "fonts",      "regions",
                                                      "icons",   "windows", "timers",  "hooks", "image lists"};

}  // namespace

long HandleCounter::Counts::Total() const
{
    return std::accumulate(std::begin(n), std::end(n), 0L);
}

bool HandleCounter::Counts::operator==(const Counts& other) const
{
    return std::equal(std::begin(n), std::end(n), std::begin(other.n));
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
