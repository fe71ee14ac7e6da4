#include "device/core/PhonePaths.h"

namespace zcmod {
namespace phonepath {

const wchar_t kPhoneFoldersRoot[] =
    L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{416651E4-9C3C-11D9-8BDE-F66BAD1E3F3A}";
const wchar_t kMirrorFolderName[] = L"CFD Temp Folder";

namespace {

wchar_t FoldAscii(wchar_t c)
{
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

// The components of `text` between "\" separators, in order; empty components are kept.
template <typename F>
bool EachComponent(const std::wstring& text, F&& visit)
{
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(L'\\', start);
        if (!visit(text.substr(start, end == std::wstring::npos ? std::wstring::npos : end - start)))
            return false;
        if (end == std::wstring::npos)
            return true;
        start = end + 1;
    }
}

bool IsReservedDeviceName(const std::wstring& name)
{
    // The platform reserves these names in every folder, with any extension behind them.
    std::wstring stem;
    for (wchar_t c : name) {
        if (c == L'.')
            break;
        stem.push_back(FoldAscii(c));
    }
    while (!stem.empty() && stem.back() == L' ')
        stem.pop_back();
    static const wchar_t* const kNames[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
    for (const wchar_t* reserved : kNames)
        if (stem == reserved)
            return true;
    return stem.size() == 4 && (stem.compare(0, 3, L"COM") == 0 || stem.compare(0, 3, L"LPT") == 0) &&
           stem[3] >= L'0' && stem[3] <= L'9';
}

}  // namespace

bool StartsWithNoCase(const std::wstring& text, const std::wstring& prefix)
{
    if (prefix.size() > text.size())
        return false;
    for (std::size_t i = 0; i < prefix.size(); ++i)
        if (FoldAscii(text[i]) != FoldAscii(prefix[i]))
            return false;
    return true;
}

bool EqualsNoCase(const std::wstring& a, const std::wstring& b)
{
    return a.size() == b.size() && StartsWithNoCase(a, b);
}

bool IsInMirror(const std::wstring& path, const std::wstring& mirrorFolder)
{
    return !mirrorFolder.empty() && StartsWithNoCase(path, mirrorFolder) &&
           (path.size() == mirrorFolder.size() || path[mirrorFolder.size()] == L'\\' ||
            mirrorFolder.back() == L'\\');
}

std::wstring MirrorToPhonePath(const std::wstring& path, const std::wstring& mirrorFolder)
{
    if (!IsInMirror(path, mirrorFolder))
        return std::wstring();
    std::size_t start = mirrorFolder.size();
    if (start < path.size() && path[start] == L'\\')
        ++start;
    std::wstring rest = path.substr(start);
    if (rest.empty())
        return std::wstring();
    // serial\X\... : a one-character second component is a drive of the phone.
    const std::size_t first = rest.find(L'\\');
    if (first != std::wstring::npos) {
        const std::size_t second = rest.find(L'\\', first + 1);
        const std::size_t length = (second == std::wstring::npos ? rest.size() : second) - first - 1;
        if (length == 1)
            rest.insert(first + 2, L":");
    }
    return std::wstring(kPhoneFoldersRoot) + L"\\" + rest;
}

bool IsSafeComponent(const std::wstring& name)
{
    if (name.empty() || name == L"." || name == L"..")
        return false;
    for (wchar_t c : name) {
        if (c < 0x20 || c == L'/' || c == L'\\' || c == L':' || c == L'*' || c == L'?' || c == L'"' ||
            c == L'<' || c == L'>' || c == L'|')
            return false;
    }
    // The platform drops trailing dots and blanks, so "..." or ". " would name the folder above.
    const wchar_t last = name.back();
    if (last == L'.' || last == L' ')
        return false;
    return !IsReservedDeviceName(name);
}

std::wstring PhoneToMirrorPath(const std::wstring& phonePath, const std::wstring& tempPath)
{
    const std::wstring root(kPhoneFoldersRoot);
    if (tempPath.empty() || !StartsWithNoCase(phonePath, root))
        return std::wstring();
    std::wstring rest = phonePath.substr(root.size());
    if (rest.empty())
        return std::wstring();
    if (rest[0] != L'\\')
        return std::wstring();  // another namespace that only begins like ours
    rest.erase(0, 1);
    // The phone's drive keeps its ":" on the phone side: "serial\C:\folder". Only there may a ":" stand.
    // A separator at the very end names the same folder and is let through.
    const std::wstring checked = rest.back() == L'\\' ? rest.substr(0, rest.size() - 1) : rest;
    bool safe = !checked.empty();
    int index = 0;
    EachComponent(checked, [&](const std::wstring& component) {
        std::wstring name = component;
        if (index == 1 && name.size() == 2 && name[1] == L':')
            name.pop_back();
        safe = safe && IsSafeComponent(name);
        ++index;
        return safe;
    });
    if (!safe)
        return std::wstring();
    std::wstring mirror = tempPath;
    if (mirror.back() != L'\\')
        mirror += L'\\';
    mirror += kMirrorFolderName;
    mirror += L'\\';
    mirror += rest;
    const std::size_t colon = mirror.rfind(L':');
    if (colon != std::wstring::npos && colon != 1)
        mirror.erase(colon, 1);
    return mirror;
}

PhoneFile SplitMirrorPath(const std::wstring& path, const std::wstring& mirrorFolder)
{
    PhoneFile file;
    const std::wstring phone = MirrorToPhonePath(path, mirrorFolder);
    if (phone.empty())
        return file;
    const std::wstring rest = phone.substr(kPhoneFoldersRootLength + 1);
    const std::size_t serialEnd = rest.find(L'\\');
    if (serialEnd == std::wstring::npos) {
        file.serial = rest;
        return file;
    }
    file.serial = rest.substr(0, serialEnd);
    const std::size_t last = rest.rfind(L'\\');
    file.folder = rest.substr(serialEnd, last - serialEnd);
    file.fileName = rest.substr(last + 1);
    return file;
}

std::wstring ParentFolder(const std::wstring& path)
{
    const std::size_t last = path.rfind(L'\\');
    return last == std::wstring::npos ? path : path.substr(0, last);
}

int FolderTypeFromName(const std::wstring& name)
{
    static const struct {
        const wchar_t* name;
        int type;
    } kFolders[] = {
        {L"Contacts", 2},      {L"Messaging", 4},       {L"Messages", 4}, {L"Text Messages", 4},
        {L"My Messages", 4},   {L"Retrieved Files", 0}, {L"Calendar", 8},
    };
    for (const auto& folder : kFolders)
        if (EqualsNoCase(name, folder.name))
            return folder.type;
    return StartsWithNoCase(name, L"My ") ? 0 : -1;
}

bool ForbidsAdding(const std::wstring& forbidden)
{
    return forbidden.find(L'A') != std::wstring::npos;
}

std::wstring FileTitle(const std::wstring& path)
{
    const std::size_t slash = path.rfind(L'\\');
    const std::size_t start = slash == std::wstring::npos ? 0 : slash + 1;
    std::size_t end = path.rfind(L'.');
    if (end == std::wstring::npos || end < start)
        end = path.size();
    const std::size_t length = end - start;
    return length >= 1 && length <= 63 ? path.substr(start, length) : std::wstring();
}

std::wstring FilterForDialog(const std::wstring& filter)
{
    std::wstring result = filter;
    for (wchar_t& c : result)
        if (c == L'|')
            c = L'\0';
    result.push_back(L'\0');
    result.push_back(L'\0');
    return result;
}

uint32_t MapServiceResult(uint32_t result)
{
    static const struct {
        uint32_t service;
        uint32_t suite;
    } kResults[] = {
        {0, 0},
        {0x80100020u, 0x80004252u},
        {0x80200006u, 0x80004250u},
        {0x80300001u, 0x80004360u},
        {0x80400001u, 0x80006002u},
        {0x80400002u, 0x80006002u},
        {0x80400003u, 0x8000600Fu},
        {0x80400004u, 0x80006003u},
        {0x80400006u, 0x80004361u},
        {0x80400007u, 0x80006005u},
        {0x80400008u, 0x8000434Du},
    };
    for (const auto& entry : kResults)
        if (entry.service == result)
            return entry.suite;
    return 0x80004255u;
}

}  // namespace phonepath
}  // namespace zcmod
