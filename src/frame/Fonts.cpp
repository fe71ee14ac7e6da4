#include "frame/Fonts.h"

#include <windows.h>

#include <cstring>

#include "frame/Handles.h"
#include "zcmod/ResHandler.h"

namespace zcmod {

namespace {

// Resource ids of the four fonts, in the order in which their slots are filled.
const WORD kFontIds[4] = {34004, 34003, 34001, 34002};

HANDLE g_fontSlots[4] = {};
bool g_fontsRegistered = false;

HANDLE RegisterFontResource(HMODULE module, WORD id)
{
    HRSRC info = FindResourceW(module, MAKEINTRESOURCEW(id), L"TTF");
    if (!info)
        return nullptr;
    HGLOBAL resource = LoadResource(module, info);
    const DWORD size = SizeofResource(module, info);
    const void* bytes = resource ? LockResource(resource) : nullptr;
    HANDLE registration = nullptr;
    if (bytes && size > 0) {
        // The registration gets its own zeroed copy, freed again once the font is registered.
        GlobalMemory copy(GlobalAlloc(GPTR, size));
        if (copy) {
            std::memcpy(copy.Get(), bytes, size);
            DWORD fonts = 0;
            registration = AddFontMemResourceEx(copy.Get(), size, nullptr, &fonts);
        }
    }
    if (resource)
        FreeResource(resource);
    return registration;
}

}  // namespace

void RegisterSkinFonts()
{
    if (g_fontsRegistered)
        return;
    HMODULE module = ZCMOD_GetCommonZGR();
    for (int slot = 0; slot < 4; ++slot)
        g_fontSlots[slot] = module ? RegisterFontResource(module, kFontIds[slot]) : nullptr;
    g_fontsRegistered = true;
}

void RemoveSkinFonts()
{
    for (HANDLE registration : g_fontSlots)
        if (registration)
            RemoveFontMemResourceEx(registration);
}

}  // namespace zcmod

void DkhLoadFont(LOGFONTW* font)
{
    zcmod::RegisterSkinFonts();
    if (!font)
        return;
    std::memset(font, 0, sizeof(*font));
    wcscpy_s(font->lfFaceName, LF_FACESIZE, L"Zelvo Sans Wide");
    font->lfCharSet = DEFAULT_CHARSET;
    font->lfOutPrecision = 0;
    font->lfClipPrecision = 0;
    font->lfQuality = CLEARTYPE_QUALITY;
    font->lfPitchAndFamily = 0;
}
