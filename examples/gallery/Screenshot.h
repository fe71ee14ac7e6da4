// Captures a window's client area and writes it as a PNG file.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

// Copies the client area from the window's device context (what the screen shows, children included) and
// writes it as an 8-bit RGB PNG. Returns false, with `error` set, on failure.
bool SaveWindowPng(HWND window, const std::wstring& path, std::wstring& error);

}  // namespace gallery
