#include "zcmod/RTLHelper.h"

#include <cstring>
#include <map>
#include <new>
#include <vector>

#include "frame/Handles.h"
#include "frame/core/DialogTemplate.h"

const wchar_t* const CRTLHelper::m_RTLLAngIDS[2] = {L"heb", L"ara"};

namespace {

// Sets the right-to-left bit in a loaded template. The resources of a module mapped as an image are read-only
// pages: they are opened for the one write, which the system turns into a private copy of the page. A module
// mapped as a data file can't be opened so; its flipped template is a copy kept for the rest of the process.
uint8_t* FlipInPlace(uint8_t* bytes, DWORD size)
{
    const zcmod::DialogTemplateKind kind = zcmod::GetDialogTemplateKind(bytes, size);
    uint8_t* style = bytes + zcmod::DialogExStyleOffset(kind);
    DWORD current = 0;
    std::memcpy(&current, style, sizeof(current));
    if (current & zcmod::kLayoutRtlExStyle)
        return bytes;
    DWORD oldProtect = 0;
    if (VirtualProtect(style, sizeof(DWORD), PAGE_READWRITE, &oldProtect) ||
        VirtualProtect(style, sizeof(DWORD), PAGE_WRITECOPY, &oldProtect)) {
        zcmod::SetDialogTemplateRtl(bytes, size);
        VirtualProtect(style, sizeof(DWORD), oldProtect, &oldProtect);
        return bytes;
    }
    static std::map<const uint8_t*, std::vector<uint8_t>> copies;
    std::vector<uint8_t>& copy = copies[bytes];
    if (copy.empty()) {
        copy.assign(bytes, bytes + size);
        zcmod::SetDialogTemplateRtl(copy.data(), copy.size());
    }
    return copy.data();
}

}  // namespace

CRTLHelper::CRTLHelper(const wchar_t* language) : m_nRTL(IsRTL(language)) {}

CRTLHelper::~CRTLHelper() = default;

void CRTLHelper::Initialize(const wchar_t* language) { m_nRTL = IsRTL(language); }

int CRTLHelper::IsRTL(const wchar_t* language)
{
    if (!language)
        return 0;
    for (const wchar_t* code : m_RTLLAngIDS)
        if (_wcsicmp(language, code) == 0)
            return 1;
    return 0;
}

DLGTEMPLATE* CRTLHelper::FlipDialog(HINSTANCE module, const wchar_t* name) const
{
    return FlipDialog(module, name, m_nRTL);
}

DLGTEMPLATE* CRTLHelper::FlipDialog(HINSTANCE module, UINT id) const
{
    return FlipDialog(module, MAKEINTRESOURCEW(id), m_nRTL);
}

DLGTEMPLATE* CRTLHelper::FlipDialog(HINSTANCE module, const wchar_t* name, int rtl)
{
    HRSRC resource = FindResourceW(module, name, RT_DIALOG);
    if (!resource)
        return nullptr;
    HGLOBAL loaded = LoadResource(module, resource);
    if (!loaded)
        return nullptr;
    auto* bytes = static_cast<uint8_t*>(LockResource(loaded));
    const DWORD size = SizeofResource(module, resource);
    if (!bytes || zcmod::GetDialogTemplateKind(bytes, size) == zcmod::DialogTemplateKind::Invalid)
        return nullptr;
    if (rtl)
        bytes = FlipInPlace(bytes, size);
    return reinterpret_cast<DLGTEMPLATE*>(bytes);
}

wchar_t* CRTLHelper::GetLangID(HKEY key, const wchar_t* subKey, const wchar_t* value)
{
    constexpr DWORD kCharacters = 260;
    if (!subKey || !*subKey || !value || !*value)
        return nullptr;
    zcmod::RegKey opened;
    if (RegOpenKeyExW(key, subKey, 0, KEY_QUERY_VALUE, opened.Put()) != ERROR_SUCCESS)
        return nullptr;
    wchar_t* room = new (std::nothrow) wchar_t[kCharacters];
    if (!room)
        return nullptr;
    // The capacity is 260 bytes, as the settings were always read; one character more keeps the text ended.
    DWORD bytes = kCharacters;
    if (RegQueryValueExW(opened.Get(), value, nullptr, nullptr, reinterpret_cast<BYTE*>(room), &bytes) !=
        ERROR_SUCCESS) {
        delete[] room;
        return nullptr;
    }
    room[bytes / sizeof(wchar_t) < kCharacters ? bytes / sizeof(wchar_t) : kCharacters - 1] = L'\0';
    return room;
}

int CRTLHelper::IsMidEastEnabled() { return GetSystemMetrics(SM_MIDEASTENABLED); }
