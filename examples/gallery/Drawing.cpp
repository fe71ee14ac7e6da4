#include "Drawing.h"

#include <cstdarg>
#include <cwchar>

#include <zcmod/zcmod.h>

namespace gallery {

HFONT SuiteFont(int height, int weight)
{
    LOGFONTW font;
    DkhLoadFont(&font);
    font.lfHeight = height;
    font.lfWeight = weight;
    return CreateFontIndirectW(&font);
}

std::wstring SelectedFace(HDC dc)
{
    wchar_t face[LF_FACESIZE] = {};
    GetTextFaceW(dc, LF_FACESIZE, face);
    return face;
}

int Text(HDC dc, int x, int y, const std::wstring& text, COLORREF color)
{
    SetTextColor(dc, color);
    SetBkMode(dc, TRANSPARENT);
    SIZE size = {};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    TextOutW(dc, x, y, text.c_str(), static_cast<int>(text.size()));
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    return y + metrics.tmHeight + 2;
}

void Swatch(HDC dc, const RECT& rect, COLORREF fill, COLORREF frame)
{
    HBRUSH brush = CreateSolidBrush(fill);
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
    brush = CreateSolidBrush(frame);
    FrameRect(dc, &rect, brush);
    DeleteObject(brush);
}

std::wstring Format(const wchar_t* format, ...)
{
    wchar_t buffer[1024];
    va_list args;
    va_start(args, format);
    vswprintf(buffer, 1024, format, args);
    va_end(args);
    return buffer;
}

void FillThemed(HDC dc, const RECT& rect, UINT colourId)
{
    HBRUSH brush = CreateSolidBrush(DkhLoadColor(nullptr, colourId));
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
}

const wchar_t* WindowClass(const wchar_t* name, WNDPROC proc, UINT style)
{
    const HINSTANCE module = GetModuleHandleW(nullptr);
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    if (!GetClassInfoExW(module, name, &wc)) {
        wc.style = style;
        wc.lpfnWndProc = proc;
        wc.hInstance = module;
        wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        wc.lpszClassName = name;
        RegisterClassExW(&wc);
    }
    return name;
}

}  // namespace gallery
