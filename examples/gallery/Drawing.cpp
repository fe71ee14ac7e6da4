#include "Drawing.h"

#include <dlgs.h>

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

void DrawBitmap(HDC dc, int x, int y, HBITMAP bitmap)
{
    BITMAP info = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof(info), &info))
        return;
    HDC memory = CreateCompatibleDC(dc);
    HGDIOBJ previous = SelectObject(memory, bitmap);
    BitBlt(dc, x, y, info.bmWidth, info.bmHeight, memory, 0, 0, SRCCOPY);
    SelectObject(memory, previous);
    DeleteDC(memory);
}

HBITMAP SnapshotWindow(HWND window)
{
    RECT rect = {};
    GetWindowRect(window, &rect);
    HDC source = GetWindowDC(window);
    SetLayout(source, 0);  // the pixels as the screen shows them
    HDC memory = CreateCompatibleDC(source);
    HBITMAP snapshot = CreateCompatibleBitmap(source, rect.right - rect.left, rect.bottom - rect.top);
    HGDIOBJ previous = SelectObject(memory, snapshot);
    BitBlt(memory, 0, 0, rect.right - rect.left, rect.bottom - rect.top, source, 0, 0, SRCCOPY);
    SelectObject(memory, previous);
    DeleteDC(memory);
    ReleaseDC(window, source);
    return snapshot;
}

HBITMAP CopyScreen(const RECT& rect)
{
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, rect.left, rect.top, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

bool RightToLeftLanguage()
{
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    const wchar_t* code = handler ? handler->GetLanguageName() : nullptr;
    return code && CRTLHelper::IsRTL(code);
}

HWND VisibleFileDialog()
{
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND hwnd, LPARAM param) -> BOOL {
            if (IsWindowVisible(hwnd) && GetDlgItem(hwnd, cmb2)) {
                *reinterpret_cast<HWND*>(param) = hwnd;
                return FALSE;
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

bool DarkTheme()
{
    const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
    return GetRValue(window) + GetGValue(window) + GetBValue(window) < 3 * 128;
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
