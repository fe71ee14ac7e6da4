#include "Screenshot.h"

#include <png.h>

#include <cstdio>
#include <vector>

namespace gallery {

namespace {

// Written with libpng directly, so that the screenshots do not depend on the library under display.
bool WritePng(std::FILE* file, const std::vector<unsigned char>& rgb, int width, int height)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!png || !info) {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    std::vector<png_bytep> rows(height);
    for (int y = 0; y < height; ++y)
        rows[y] = const_cast<png_bytep>(rgb.data() + static_cast<size_t>(y) * width * 3);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

}  // namespace

bool SaveWindowPng(HWND window, const std::wstring& path, std::wstring& error)
{
    RECT client = {};
    GetClientRect(window, &client);
    const int width = client.right;
    const int height = client.bottom;
    if (width <= 0 || height <= 0) {
        error = L"the window has no size";
        return false;
    }
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HDC screen = GetDC(window);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP dib = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    bool ok = false;
    if (memory && dib && bits) {
        HGDIOBJ old = SelectObject(memory, dib);
        ok = BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY) != FALSE;
        GdiFlush();
        SelectObject(memory, old);
    }
    std::vector<unsigned char> rgb;
    if (ok) {
        rgb.resize(static_cast<size_t>(width) * height * 3);
        const unsigned char* p = static_cast<const unsigned char*>(bits);
        for (size_t i = 0, n = static_cast<size_t>(width) * height; i < n; ++i) {
            rgb[i * 3 + 0] = p[i * 4 + 2];
            rgb[i * 3 + 1] = p[i * 4 + 1];
            rgb[i * 3 + 2] = p[i * 4 + 0];
        }
    }
    if (dib)
        DeleteObject(dib);
    if (memory)
        DeleteDC(memory);
    ReleaseDC(window, screen);
    if (!ok) {
        error = L"the window could not be copied";
        return false;
    }
    std::FILE* file = _wfopen(path.c_str(), L"wb");
    if (!file) {
        error = L"cannot create " + path;
        return false;
    }
    ok = WritePng(file, rgb, width, height);
    std::fclose(file);
    if (!ok)
        error = L"the PNG library failed on " + path;
    return ok;
}

}  // namespace gallery
