// Files and folders of the file dialog and phone folder tests: the temporary folder by its long name, the
// phones' mirror in it, whole files written and read, and the structure a file dialog runs on.
#pragma once

#include <windows.h>

#include <commdlg.h>

#include <fstream>
#include <iterator>
#include <string>

namespace zcmod_test {

// The temporary folder by its long name (the dialogs give long paths back), with a trailing backslash.
inline std::wstring TempFolder()
{
    wchar_t temp[MAX_PATH], longer[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    GetLongPathNameW(temp, longer, MAX_PATH);
    return longer;
}
// Where the computer mirrors the phones' files.
inline std::wstring MirrorFolder()
{
    return TempFolder() + L"CFD Temp Folder";
}

// A whole file, its bytes held in a string.
inline void WriteText(const std::wstring& path, const std::string& bytes)
{
    std::ofstream(path.c_str(), std::ios::binary) << bytes;
}
inline std::string ReadText(const std::wstring& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
// `path` with every folder above it.
inline void MakeFolders(const std::wstring& path)
{
    for (size_t at = path.find(L'\\', 3); at != std::wstring::npos; at = path.find(L'\\', at + 1))
        CreateDirectoryW(path.substr(0, at).c_str(), nullptr);
    CreateDirectoryW(path.c_str(), nullptr);
}

// An open or save structure over `buffer` that shows all files.
inline OPENFILENAMEW Ofn(wchar_t* buffer, DWORD size, DWORD flags = 0)
{
    OPENFILENAMEW ofn = {};
    ofn.lStructSize = sizeof(ofn);
    ofn.lpstrFile = buffer;
    ofn.nMaxFile = size;
    ofn.lpstrFilter = L"All files\0*.*\0";
    ofn.Flags = flags;
    return ofn;
}

}  // namespace zcmod_test
