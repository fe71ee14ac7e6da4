#include "frame/GdiPlus.h"

#include <windows.h>

#include <objidl.h>  // PROPID, which a lean windows.h leaves out

#include <gdiplus.h>

#include <mutex>

namespace zcmod {

namespace {

std::mutex g_gdiPlusLock;
ULONG_PTR g_gdiPlusToken = 0;
bool g_gdiPlusStarted = false;

}  // namespace

bool EnsureGdiPlus()
{
    std::lock_guard<std::mutex> lock(g_gdiPlusLock);
    if (g_gdiPlusStarted)
        return true;
    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok)
        return false;
    g_gdiPlusToken = token;
    g_gdiPlusStarted = true;
    return true;
}

void ShutdownGdiPlus()
{
    std::lock_guard<std::mutex> lock(g_gdiPlusLock);
    if (!g_gdiPlusStarted)
        return;
    Gdiplus::GdiplusShutdown(g_gdiPlusToken);
    g_gdiPlusToken = 0;
    g_gdiPlusStarted = false;
}

}  // namespace zcmod
