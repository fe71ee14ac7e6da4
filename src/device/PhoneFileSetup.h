// State and helpers that the phone file dialog and the phone file transfers share: the common set-up at the
// head of every entry point, the mirror folder, the data root, the language's direction and texts.
#pragma once

#include <windows.h>

#include <string>

class CFileDialogListener;

namespace zcmod::phonefile {

// Runs the set-up while it has not succeeded: the desktop's layout, the library's resources (their failure
// shows the library's message and gives 0), and the data layer's root from the registry. 1 otherwise.
int EnsureSetup();

// The long form of the temporary path with "CFD Temp Folder" appended, without a separator at the end;
// computed once.
const std::wstring& MirrorFolder();
// The temporary path, long form, with its separator.
const std::wstring& TempPath();
// The data layer's root folder, empty when the registry names none.
std::wstring DataRoot();

// True when `path` (its long form; when it does not exist, its folder's) lies in the mirror folder.
bool IsInMirror(const std::wstring& path);

// True when the language is written right to left.
bool IsRightToLeft();

// A text of the language module; empty when it has none.
std::wstring LoadText(UINT id);

// Shows a message over `owner` with the suite's name as caption.
int ShowMessage(HWND owner, const std::wstring& text, UINT flags);

// The process-wide listener and phone-folder switch.
extern CFileDialogListener* m_pListener;
extern unsigned long m_dwPhoneFolders;

}  // namespace zcmod::phonefile
