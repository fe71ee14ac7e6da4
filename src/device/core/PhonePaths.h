// The text rules of the phone file dialog: how a path in the local mirror of a phone's files turns into a
// path of the phone's shell folders and back, how such a path splits into device, folder and file, which kind
// of data-layer folder a "Name" stands for, and how the connectivity service's results map to the suite's.
// Pure text, no file system: the Windows side asks the file system and calls these.
//
// A name that comes from a phone never leaves the mirror folder: every phone path is checked component by
// component before it becomes a local path ("..", ".", empty components, a drive or root inside it, a
// reserved device name or a character that a file name cannot hold make it refused).
#pragma once

#include <cstdint>
#include <string>

namespace zcmod {
namespace phonepath {

// The shell path of the suite's namespace extension that shows the phones: "My Computer", then the phone
// folders. 81 characters; with the separator behind it, the 82 that a phone path begins with.
extern const wchar_t kPhoneFoldersRoot[];
constexpr std::size_t kPhoneFoldersRootLength = 81;
// The mirror folder's own name, appended to the temporary path.
extern const wchar_t kMirrorFolderName[];

// ASCII letters compared without case; every other character as it is.
bool StartsWithNoCase(const std::wstring& text, const std::wstring& prefix);
bool EqualsNoCase(const std::wstring& a, const std::wstring& b);

// True when `path` lies in `mirrorFolder` (the temporary path with "CFD Temp Folder"): it begins with it,
// without case, and either ends there or goes on with a separator.
bool IsInMirror(const std::wstring& path, const std::wstring& mirrorFolder);

// A path of the mirror as a phone path: the phone folders root, a separator, then what follows the mirror
// folder; a one-character second component is the phone's drive and gets its ":" back. Empty when `path` is
// not in the mirror, or names nothing below it.
std::wstring MirrorToPhonePath(const std::wstring& path, const std::wstring& mirrorFolder);

// A phone path as a path of the mirror: `tempPath` + "CFD Temp Folder" + what follows the root, with the last
// ":" deleted unless it stands at index 1. Empty when `phonePath` is not below the root, or when any component
// behind the root could lead outside the mirror (see the top of this file).
std::wstring PhoneToMirrorPath(const std::wstring& phonePath, const std::wstring& tempPath);

// True when one component of a phone path may become a local file or folder name.
bool IsSafeComponent(const std::wstring& name);

// A mirror path taken apart: device serial, the folder on the phone (with "\" in front) and the file name.
struct PhoneFile {
    std::wstring serial;
    std::wstring folder;
    std::wstring fileName;
};
// Empty parts when the path does not lie in the mirror.
PhoneFile SplitMirrorPath(const std::wstring& path, const std::wstring& mirrorFolder);

// The folder of a path: everything before its last "\" (the path itself when it has none).
std::wstring ParentFolder(const std::wstring& path);

// The kind of a data-layer folder by the "Name" of its folder.xml: 2 contacts, 4 messages, 8 calendar, 0 for
// "Retrieved Files" and names beginning with "My " (other than "My Messages"), -1 for any other name.
int FolderTypeFromName(const std::wstring& name);

// True when a folder.xml "Forbidden" value forbids adding files (it holds the letter A).
bool ForbidsAdding(const std::wstring& forbidden);

// The title of a chosen file: the text between the last "\" and the last "." behind it (to the end when there
// is no extension); kept only with 1 to 63 characters, else empty.
std::wstring FileTitle(const std::wstring& path);

// A filter of the form "Text|*.txt|All|*.*|" with each "|" made a NUL, as the platform's dialog takes it; the
// result always ends in two NULs.
std::wstring FilterForDialog(const std::wstring& filter);

// The connectivity service's result of a copy as the suite's result code.
uint32_t MapServiceResult(uint32_t result);

}  // namespace phonepath
}  // namespace zcmod
