// The stand-in's shell namespace extension through the platform's shell: registered under My Computer, the
// attached phones and their files listed, every path it hands out inside the mirror (also for hostile names
// on a phone), and the platform's open dialog browsing a phone and giving back a mirror path that
// CFD_DownloadFile fills.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "DrivenModal.h"
#include "PhoneShellSupport.h"
#include "ServiceTestSupport.h"
#include "zcmod/PhoneFileDialog.h"

using namespace zcmod_test;

namespace {

const std::wstring kRoot = L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{416651E4-9C3C-11D9-8BDE-F66BAD1E3F3A}";
// Names that a phone's file system may hold but a mirror must not.
const wchar_t* const kHostile[] = {L"con", L"NUL.txt", L"com1", L"dots.", L"blank "};

struct Pidl {
    PIDLIST_ABSOLUTE p = nullptr;
    ~Pidl() { CoTaskMemFree(p); }
};
template <class T>
struct Com {
    T* p = nullptr;
    ~Com()
    {
        if (p)
            p->Release();
    }
    T* operator->() const { return p; }
};

// The folder of a shell path, bound from the desktop.
bool Bind(const std::wstring& path, Com<IShellFolder>& folder, Pidl& pidl)
{
    if (FAILED(SHParseDisplayName(path.c_str(), nullptr, &pidl.p, 0, nullptr)))
        return false;
    Com<IShellFolder> desktop;
    SHGetDesktopFolder(&desktop.p);
    return SUCCEEDED(desktop->BindToObject(pidl.p, nullptr, IID_IShellFolder, reinterpret_cast<void**>(&folder.p)));
}
// "name|path" of each item of the shell folder at `path`: its display name and the path the platform gives
// for it.
std::vector<std::wstring> List(const std::wstring& path, SHCONTF flags)
{
    Com<IShellFolder> folder;
    Pidl at;
    if (!Bind(path, folder, at))
        return {L"<not bound>"};
    std::vector<std::wstring> items;
    Com<IEnumIDList> list;
    if (folder->EnumObjects(nullptr, flags, &list.p) != S_OK)
        return items;
    PITEMID_CHILD item = nullptr;
    while (list->Next(1, &item, nullptr) == S_OK) {
        PIDLIST_ABSOLUTE full = ILCombine(at.p, item);
        wchar_t name[MAX_PATH] = L"<failed>", itemPath[MAX_PATH] = L"<none>";
        STRRET ret = {};
        if (SUCCEEDED(folder->GetDisplayNameOf(item, SHGDN_NORMAL, &ret)))
            StrRetToBufW(&ret, item, name, MAX_PATH);
        SHGetPathFromIDListW(full, itemPath);
        items.push_back(std::wstring(name) + L"|" + itemPath);
        CoTaskMemFree(full);
        CoTaskMemFree(item);
    }
    return items;
}

class PhoneFolders : public ::testing::Test {
protected:
    void SetUp() override
    {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        ASSERT_TRUE(registration.Registered());
        suite.SetLanguage(L"eng");
        suite.SetMachineTheme(L"Default");
        service.UseStandIns();
        serial = phones.New(L"p1", L"--name \"Work phone\" --files 0");
        ASSERT_FALSE(serial.empty());
        files = phones.Folder(L"p1") + L"\\files";
        MakeFolders(files + L"\\C\\Docs");
        MakeFolders(files + L"\\C\\Music");
        MakeFolders(files + L"\\D");
        WriteText(files + L"\\C\\Docs\\note.txt", "twelve bytes");
        WriteText(files + L"\\C\\Docs\\b.jpg", "jpg");
        detached = phones.New(L"p2");
        phones.Ctl(L"detach p2");
    }
    void TearDown() override
    {
        TerminateAllInterfaces();
        for (const wchar_t* name : kHostile)  // the phones folder goes with the fixture only without them
            DeleteFileW((L"\\\\?\\" + files + L"\\C\\Docs\\" + name).c_str());
        SetCurrentDirectoryW(BinDir().c_str());  // the dialog leaves the process in the folder it opened
        RemoveTree(MirrorFolder());
        CoUninitialize();
    }
    PhoneFoldersRegistration registration;
    SuiteRegistry suite;
    ServiceRegistry service;
    Phones phones;
    std::wstring serial, detached, files;
};

// Only attached phones and the files of theirs that a mirror can hold are listed, each with its path in the
// mirror; parsing refuses whatever could lead out of it.
TEST_F(PhoneFolders, AttachedPhonesAndTheirFilesWithMirrorPathsNeverLeaveTheMirror)
{
    // Hostile names made through the long-path form, which passes them to the file system as they are, and a
    // phone whose serial would climb out of the mirror.
    for (const wchar_t* name : kHostile)
        WriteText(L"\\\\?\\" + files + L"\\C\\Docs\\" + name, "x");
    const std::wstring evil = phones.Folder(L"evil");
    MakeFolders(evil + L"\\files\\C");
    WriteText(evil + L"\\phone.ini", "serial=..\nname=Evil\nattached=1\n");

    const std::wstring mirror = MirrorFolder() + L"\\" + serial, below = kRoot + L"\\" + serial;
    const struct {
        std::wstring path;
        SHCONTF flags;
        std::vector<std::wstring> items;
    } cases[] = {
        {kRoot, SHCONTF_FOLDERS | SHCONTF_NONFOLDERS, {L"Work phone|" + mirror}},  // not the detached or evil one
        {below, SHCONTF_FOLDERS, {L"C:|" + mirror + L"\\C", L"D:|" + mirror + L"\\D", L"E:|" + mirror + L"\\E"}},
        {below + L"\\C:",
         SHCONTF_FOLDERS | SHCONTF_NONFOLDERS,
         {L"Docs|" + mirror + L"\\C\\Docs", L"Documents|" + mirror + L"\\C\\Documents",
          L"Music|" + mirror + L"\\C\\Music", L"Pictures|" + mirror + L"\\C\\Pictures",
          L"Sounds|" + mirror + L"\\C\\Sounds"}},
        {below + L"\\C:\\Docs",
         SHCONTF_FOLDERS | SHCONTF_NONFOLDERS,
         {L"b.jpg|" + mirror + L"\\C\\Docs\\b.jpg", L"note.txt|" + mirror + L"\\C\\Docs\\note.txt"}},
        {below + L"\\C:\\Docs", SHCONTF_FOLDERS, {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(List(c.path, c.flags), c.items) << c.path.c_str();
    // The folders of a path handed out exist in the mirror, so that the file system can follow it.
    EXPECT_NE(GetFileAttributesW((mirror + L"\\C\\Docs").c_str()), INVALID_FILE_ATTRIBUTES);

    // Parsing refuses what could lead elsewhere (the name rules themselves are the path rules' own), what is not
    // on the phone, a file taken for a folder, and the detached phone.
    const std::wstring refused[] = {below + L"\\C:\\..\\..\\..\\escape.txt",
                                    kRoot + L"\\..",
                                    below + L"\\C:\\Docs\\con",
                                    below + L"\\C:\\Docs\\none.txt",
                                    below + L"\\C:\\Docs\\note.txt\\x",
                                    kRoot + L"\\" + detached};
    for (const std::wstring& refusedPath : refused) {
        Pidl pidl;
        EXPECT_FALSE(SUCCEEDED(SHParseDisplayName(refusedPath.c_str(), nullptr, &pidl.p, 0, nullptr)))
            << refusedPath.c_str();
    }
    // An item id of the phone root holding a climbing name, as a caller could forge it, gives no path.
    Com<IShellFolder> root;
    Pidl rootAt, phone;
    ASSERT_TRUE(Bind(kRoot, root, rootAt));
    ASSERT_EQ(SHParseDisplayName(below.c_str(), nullptr, &phone.p, 0, nullptr), S_OK);
    const BYTE* id = reinterpret_cast<const BYTE*>(ILFindLastID(phone.p));
    std::vector<BYTE> forged(id, id + 16);  // the id's head, up to its name
    for (wchar_t c : std::wstring(L"..\0\0", 4))
        forged.insert(forged.end(), reinterpret_cast<BYTE*>(&c), reinterpret_cast<BYTE*>(&c) + 2);
    const WORD forgedSize = static_cast<WORD>(forged.size());
    std::memcpy(forged.data(), &forgedSize, 2);
    forged.insert(forged.end(), {0, 0});
    STRRET ret = {};
    EXPECT_FALSE(
        SUCCEEDED(root->GetDisplayNameOf(reinterpret_cast<PCUITEMID_CHILD>(forged.data()), SHGDN_FORPARSING, &ret)));
    // A phone that goes away takes its folder with it.
    phones.Ctl(L"detach p1");
    EXPECT_TRUE(List(kRoot, SHCONTF_FOLDERS).empty());
}

// --- the platform's open dialog on a phone, driven from a second thread --------------------------------------

HWND FileList(HWND dialog)
{
    HWND view = FindWindowExW(dialog, nullptr, L"SHELLDLL_DefView", nullptr);
    return view ? FindWindowExW(view, nullptr, WC_LISTVIEWW, nullptr) : nullptr;
}
// The texts of the dialog's file list.
std::vector<std::wstring> ListTexts(HWND dialog)
{
    std::vector<std::wstring> texts;
    HWND list = FileList(dialog);
    const int count = list ? static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)) : 0;
    for (int i = 0; i < count; ++i) {
        wchar_t text[MAX_PATH] = {};
        ListView_GetItemText(list, i, 0, text, MAX_PATH);
        texts.push_back(text);
    }
    return texts;
}
// Waits for `text` in the file list and double-clicks it with the mouse messages a user's click gives.
bool DoubleClick(HWND dialog, const std::wstring& text)
{
    int index = -1;
    WaitUntil([&] {
        const std::vector<std::wstring> texts = ListTexts(dialog);
        for (size_t i = 0; i < texts.size(); ++i)
            if (texts[i] == text)
                index = static_cast<int>(i);
        return index >= 0;
    });
    if (index < 0)
        return false;
    Sleep(200);  // the new view fills its list while it is being shown
    HWND list = FileList(dialog);
    RECT rect = {LVIR_LABEL, 0, 0, 0};
    SendMessageW(list, LVM_GETITEMRECT, index, reinterpret_cast<LPARAM>(&rect));
    const LPARAM at = MAKELPARAM((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    for (UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageW(list, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, at);
    return true;
}

// Without a first folder the user walks in from the desktop: My Computer, the phones, the phone, its drive and
// folder, and a double-click on the file.
TEST_F(PhoneFolders, OpenDialogBrowsesThePhoneAndTheFileComesDown)
{
    const std::wstring docs = MirrorFolder() + L"\\" + serial + L"\\C\\Docs";
    wchar_t file[MAX_PATH] = {};
    OPENFILENAMEW ofn = Ofn(file, MAX_PATH, OFN_FILEMUSTEXIST);

    std::vector<std::wstring> shown;
    std::wstring missing;
    const BOOL chosen = RunFileDialog(
        [&] { return CFD_GetOpenFileName(&ofn); },
        [&](HWND dialog) {
            // The first entry of "Look in" is the desktop; from there the user walks in.
            HWND combo = GetDlgItem(dialog, cmb2);
            SendMessageW(combo, CB_SETCURSEL, 0, 0);
            PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(cmb2, CBN_SELENDOK), reinterpret_cast<LPARAM>(combo));
            for (const wchar_t* step : {L"My Computer", L"Phones", L"Work phone", L"C:", L"Docs"})
                if (!DoubleClick(dialog, step)) {
                    missing = step;
                    return Cancel(dialog);
                }
            WaitUntil([&] { return ListTexts(dialog).size() == 2; });
            shown = ListTexts(dialog);
            if (!DoubleClick(dialog, L"note.txt"))
                Cancel(dialog);
        });
    EXPECT_EQ(missing, L"") << "not in the dialog's list on the way in";
    EXPECT_EQ(shown, (std::vector<std::wstring>{L"b.jpg", L"note.txt"}));
    ASSERT_TRUE(chosen);
    EXPECT_EQ(std::wstring(file), docs + L"\\note.txt");
    EXPECT_EQ(CFD_DownloadFile(file, nullptr), S_OK);
    EXPECT_EQ(ReadText(file), "twelve bytes");
}

// A folder of the mirror as first folder opens the dialog on the phone (or at the phones when opening inside a
// phone is not enabled), without the user walking in; a folder gone from the phone gives the level above it.
TEST_F(PhoneFolders, MirrorFolderAsFirstFolderOpensOnThePhone)
{
    const std::wstring phone = MirrorFolder() + L"\\" + serial;
    MakeFolders(phone + L"\\C\\Docs");
    const struct {
        unsigned long phoneFolders;
        std::wstring first, folder;
        std::vector<std::wstring> shown;
    } cases[] = {
        {1, phone + L"\\C\\Docs", phone + L"\\C\\Docs", {L"b.jpg", L"note.txt"}},
        {0, phone + L"\\C\\Docs", kRoot, {L"Work phone"}},  // no folder of a disk: the shell path
        {1, phone + L"\\C\\Gone", phone + L"\\C", {L"Docs", L"Documents", L"Music", L"Pictures", L"Sounds"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.first.c_str() << " " << c.phoneFolders);
        CFD_EnablePhoneFolders(c.phoneFolders);
        wchar_t file[MAX_PATH] = {}, folder[MAX_PATH] = {};
        OPENFILENAMEW ofn = Ofn(file, MAX_PATH);
        ofn.lpstrInitialDir = c.first.c_str();
        std::vector<std::wstring> shown;
        EXPECT_FALSE(RunFileDialog([&] { return CFD_GetOpenFileName(&ofn); },
                                   [&](HWND dialog) {
                                       WaitUntil([&] { return ListTexts(dialog) == c.shown; });
                                       shown = ListTexts(dialog);
                                       SendMessageW(dialog, CDM_GETFOLDERPATH, MAX_PATH,
                                                    reinterpret_cast<LPARAM>(folder));
                                       Cancel(dialog);
                                   }));
        EXPECT_EQ(shown, c.shown);
        EXPECT_EQ(_wcsicmp(folder, c.folder.c_str()), 0) << folder;
        EXPECT_EQ(ofn.lpstrInitialDir, c.first.c_str()) << "the caller's first folder did not come back";
    }
    CFD_EnablePhoneFolders(0);
}

}  // namespace
