// The phone file dialog: the platform's open and save dialogs with the phones' folders shown beside the
// computer's (through the suite's shell namespace extension), and the transfer of a chosen file between the
// phone and its local mirror under the temporary folder.
//
//   CNFileDialog dialog(TRUE, L"jpg", nullptr, OFN_HIDEREADONLY, L"Pictures|*.jpg;*.png|", hwnd);
//   if (dialog.DoModal() == 1) {
//       const wchar_t* path = dialog.GetPathName();          // a file of the computer or of the mirror
//       if (CNFileDialog::GetFolderType(path) == CFD_FOLDER_PHONE)
//           CNFileDialog::DownloadFile(path, hwnd);          // brings the phone's file into the mirror
//   }
#pragma once

#include <windows.h>

#include <commdlg.h>

#include "zcmod/Export.h"

// What CFD_GetFolderType answers.
enum CFD_FOLDER_TYPE {
    CFD_FOLDER_UNKNOWN = -1,  // a data-layer folder of an unknown kind, or an unreadable folder.xml
    CFD_FOLDER_NONE = 0,      // an ordinary folder
    CFD_FOLDER_PHONE = 1,     // a phone folder, or a path of the mirror
    CFD_FOLDER_CONTACTS = 2,
    CFD_FOLDER_MESSAGES = 4,
    CFD_FOLDER_CALENDAR = 8,
};

// Hears what happens in a phone file dialog. The defaults do nothing; OnFileNameOK and OnIncludeItem let the
// name and the item through.
class ZCMOD_API CFileDialogListener {
public:
    virtual ~CFileDialogListener();
    virtual int OnFileNameOK(HWND dialog, OFNOTIFYW* notify);  // 0 refuses the chosen name
    virtual void OnFolderChange(HWND dialog, OFNOTIFYW* notify);
    virtual void OnHelp(HWND dialog, OFNOTIFYW* notify);
    virtual unsigned OnShareViolation(HWND dialog, OFNOTIFYW* notify);  // non-zero: the answer to give
    virtual void OnInitDone(HWND dialog, OFNOTIFYW* notify);
    virtual void OnFileNameChange(HWND dialog, OFNOTIFYW* notify);
    virtual void OnTypeChange(HWND dialog, OFNOTIFYW* notify);
    virtual int OnIncludeItem(HWND dialog, OFNOTIFYEXW* notify);  // 0 hides the item
    virtual void OnCommand(WPARAM wParam, LPARAM lParam);
};

// The platform's calls with the phone folders; 0 also when the library's resources cannot be loaded.
ZCMOD_EXTERN_C ZCMOD_API BOOL CFD_GetOpenFileName(OPENFILENAMEW* ofn);
ZCMOD_EXTERN_C ZCMOD_API BOOL CFD_GetSaveFileName(OPENFILENAMEW* ofn);
// Copies the file of a mirror path from the phone into the mirror, or from the mirror to the phone, with the
// platform's progress window over `parent`. 0 on success, else one of the suite's 0x8000xxxx codes.
ZCMOD_EXTERN_C ZCMOD_API HRESULT CFD_DownloadFile(const wchar_t* mirrorPath, HWND parent);
ZCMOD_EXTERN_C ZCMOD_API HRESULT CFD_UploadFile(const wchar_t* mirrorPath, HWND parent);
// The kind of folder a path is (CFD_FOLDER_TYPE).
ZCMOD_EXTERN_C ZCMOD_API int CFD_GetFolderType(const wchar_t* path);
// The listener of the dialogs to come (not owned), and whether a dialog may open inside a phone folder
// (bit 0).
ZCMOD_EXTERN_C ZCMOD_API void CFD_SetListener(CFileDialogListener* listener);
ZCMOD_EXTERN_C ZCMOD_API void CFD_EnablePhoneFolders(unsigned long flags);
// Kept for callers of earlier versions: does nothing and answers 1.
ZCMOD_EXTERN_C ZCMOD_API BOOL CFD_SetApplicationImage(HBITMAP image);

// An open or save dialog as an object, which listens to itself.
class ZCMOD_API CNFileDialog : public CFileDialogListener {
public:
    // `filter` separates its parts with "|"; `flags` are the platform's OFN_ flags.
    CNFileDialog(int open, const wchar_t* defExt = nullptr, const wchar_t* fileName = nullptr,
                 unsigned long flags = 0, const wchar_t* filter = nullptr, HWND parent = nullptr);
    ~CNFileDialog() override;
    CNFileDialog(const CNFileDialog&) = delete;
    CNFileDialog& operator=(const CNFileDialog&) = delete;

    // 1 when a file was chosen, 2 on cancel.
    virtual INT_PTR DoModal();

    const wchar_t* GetPathName() const { return m_szFileName; }
    const wchar_t* GetFileName() const;
    const wchar_t* GetFileExt() const;
    // The chosen file's name without its extension, when it has 1 to 63 characters; else empty.
    const wchar_t* GetFileNameTitle() const { return m_szFileTitle; }
    BOOL GetReadOnlyPref() const { return (m_ofn.Flags & OFN_READONLY) != 0; }
    void EnablePhoneFolders(unsigned long flags) { CFD_EnablePhoneFolders(flags); }
    BOOL SetApplicationImage(HBITMAP image) { return CFD_SetApplicationImage(image); }

    static int GetFolderType(const wchar_t* path) { return CFD_GetFolderType(path); }
    static HRESULT UploadFile(const wchar_t* mirrorPath, HWND parent) { return CFD_UploadFile(mirrorPath, parent); }
    static HRESULT DownloadFile(const wchar_t* mirrorPath, HWND parent)
    {
        return CFD_DownloadFile(mirrorPath, parent);
    }

    OPENFILENAMEW m_ofn;

protected:
    int m_bOpen;
    wchar_t m_szFileName[MAX_PATH];
    wchar_t m_szFileTitle[64];

private:
    wchar_t* m_pszFilter;  // the filter with its "|" made NULs
    wchar_t* m_pszDefExt;
};
