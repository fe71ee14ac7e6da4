// The phone file dialog through the DLL: folder kinds of the data layer, files carried between a stand-in
// phone and the mirror, and the open and save dialogs driven from a second thread (with a watchdog), whose
// save checks refuse what they must.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "DrivenModal.h"
#include "PhoneShellSupport.h"
#include "ServiceTestSupport.h"
#include "TestSkins.h"
#include "zcmod/PhoneFileDialog.h"

using namespace zcmod_test;

namespace {

const std::wstring kMirror = MirrorFolder();

// The language and theme the messages come from, and a data layer in a folder of the test's own.
class PhoneFileDialog : public ::testing::Test {
protected:
    void SetUp() override
    {
        suite.SetLanguage(L"eng");
        suite.SetMachineTheme(L"Default");
        dataRoot = TempFolder() + L"zcmod-data-" + std::to_wstring(GetCurrentProcessId());
        RemoveTree(dataRoot);
        MakeFolders(dataRoot);
        SetString(HKEY_CURRENT_USER, L"SOFTWARE\\DeskHub\\DataLayer", L"Root", dataRoot);
        service.UseStandIns();
    }
    void TearDown() override
    {
        TerminateAllInterfaces();
        DeleteTree(HKEY_CURRENT_USER, L"SOFTWARE\\DeskHub");
        RemoveTree(dataRoot);
        RemoveTree(kMirror);
    }
    // A data-layer folder with a folder.xml of the given root element.
    std::wstring DataFolder(const std::wstring& relative, const std::string& rootElement)
    {
        const std::wstring folder = dataRoot + L"\\" + relative;
        MakeFolders(folder);
        if (!rootElement.empty())
            WriteText(folder + L"\\folder.xml", "<?xml version=\"1.0\"?>\n" + rootElement + "\n");
        return folder;
    }
    SuiteRegistry suite;
    ServiceRegistry service;
    Phones phones;
    std::wstring dataRoot;
};

TEST_F(PhoneFileDialog, FolderKinds)
{
    DataFolder(L"Contacts", "<Folder Name=\"contacts\"/>");
    DataFolder(L"Contacts\\Family", "");
    DataFolder(L"Msgs", "<Folder Name=\"Text Messages\"/>");
    DataFolder(L"Msgs\\Inbox", "<Folder Name=\"Inbox\"/>");  // the topmost of the run decides
    DataFolder(L"Cal", "<Folder Name=\"Calendar\"/>");
    DataFolder(L"Pics", "<Folder Name=\"My Pictures\"/>");  // any other "My " folder is a plain one
    DataFolder(L"NoName", "<Folder Forbidden=\"A\"/>");
    DataFolder(L"Broken", "<Folder Name=");
    DataFolder(L"Plain", "");
    WriteText(dataRoot + L"\\Cal\\day.vcs", "x");
    const struct {
        std::wstring path;
        int type;
    } cases[] = {
        {dataRoot + L"\\Contacts", CFD_FOLDER_CONTACTS},
        {dataRoot + L"\\Contacts\\Family\\", CFD_FOLDER_CONTACTS},
        {dataRoot + L"\\Msgs\\Inbox", CFD_FOLDER_MESSAGES},
        {dataRoot + L"\\Cal\\day.vcs", CFD_FOLDER_CALENDAR},
        {dataRoot + L"\\Pics", CFD_FOLDER_NONE},
        {dataRoot + L"\\NoName", CFD_FOLDER_UNKNOWN},
        {dataRoot + L"\\Broken", CFD_FOLDER_UNKNOWN},
        {dataRoot + L"\\Plain", CFD_FOLDER_NONE},
        {L"C:\\windows", CFD_FOLDER_NONE},
        {kMirror + L"\\123\\C\\a.jpg", CFD_FOLDER_PHONE},
        {L"", CFD_FOLDER_NONE},
        {L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{416651E4-9C3C-11D9-8BDE-F66BAD1E3F3A}", CFD_FOLDER_PHONE},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CFD_GetFolderType(c.path.c_str()), c.type) << c.path.c_str();
    EXPECT_EQ(CFD_GetFolderType(nullptr), CFD_FOLDER_NONE);
}

// A file written in the mirror goes up to the phone (the slow download below shows the way down).
TEST_F(PhoneFileDialog, UploadReachesThePhoneAndBadPathsWriteNothing)
{
    const std::wstring serial = phones.New(L"p1");
    ASSERT_FALSE(serial.empty());
    const std::wstring phoneDocs = phones.Folder(L"p1") + L"\\files\\C\\Docs";
    MakeFolders(phoneDocs);
    const std::wstring mirrorDocs = kMirror + L"\\" + serial + L"\\C\\Docs";
    MakeFolders(mirrorDocs);
    WriteText(mirrorDocs + L"\\reply.txt", "from the computer");
    EXPECT_EQ(CFD_UploadFile((mirrorDocs + L"\\reply.txt").c_str(), nullptr), S_OK);
    EXPECT_EQ(ReadText(phoneDocs + L"\\reply.txt"), "from the computer");

    // Missing on the phone, outside the mirror, or climbing out of it: a failure code, nothing written.
    const HRESULT failures[] = {
        CFD_DownloadFile((mirrorDocs + L"\\none.bin").c_str(), nullptr),
        CFD_DownloadFile(L"C:\\elsewhere\\x.bin", nullptr),
        CFD_DownloadFile((kMirror + L"\\" + serial + L"\\C\\..\\..\\..\\escape.bin").c_str(), nullptr),
        CFD_UploadFile(nullptr, nullptr),
    };
    for (HRESULT failure : failures)
        EXPECT_EQ(static_cast<uint32_t>(failure) & 0xFFFF0000u, 0x80000000u) << std::hex << failure;
    EXPECT_EQ(GetFileAttributesW((TempFolder() + L"escape.bin").c_str()), INVALID_FILE_ATTRIBUTES);
}

// A slow download plays the theme's clip in the progress window (its animation control's picture moves) and
// brings every block down in order; a phone unplugged during one leaves no file, whole or partial.
TEST_F(PhoneFileDialog, SlowDownloadPlaysTheClipAndAnUnplugLeavesNoPartialFile)
{
    const std::wstring serial = phones.New(L"slow", L"--copydelay 20");
    const std::wstring phoneFiles = phones.Folder(L"slow") + L"\\files\\C", target = kMirror + L"\\" + serial + L"\\C";
    std::string bytes;  // some 90 blocks of 20 ms, each different
    for (int i = 0; i < (6 << 20); ++i)
        bytes.push_back(static_cast<char>(i * 7 + i / 256));
    WriteText(phoneFiles + L"\\clip.bin", bytes);
    std::atomic<bool> moved{false}, done{false};
    std::thread watch([&] {
        for (; !done && !moved; Sleep(10)) {
            HWND clip = nullptr;
            EnumWindows(
                [](HWND top, LPARAM found) {
                    DWORD process = 0;
                    GetWindowThreadProcessId(top, &process);
                    if (process == GetCurrentProcessId() && !*reinterpret_cast<HWND*>(found))
                        *reinterpret_cast<HWND*>(found) = FindWindowExW(top, nullptr, ANIMATE_CLASSW, nullptr);
                    return TRUE;
                },
                reinterpret_cast<LPARAM>(&clip));
            if (!clip)
                continue;
            Sleep(300);  // the window has painted: what changes now is the clip
            const testskin::Capture before = testskin::CaptureWindow(clip);
            Sleep(250);
            // Both pictures of a window that still stands: one of a window that closed meanwhile differs too.
            const testskin::Capture after = testskin::CaptureWindow(clip);
            moved = IsWindow(clip) && before.width > 100 && after.width == before.width &&
                    after.height == before.height && before.pixels != after.pixels;
        }
    });
    EXPECT_EQ(CFD_DownloadFile((target + L"\\clip.bin").c_str(), nullptr), S_OK);
    done = true;
    watch.join();
    EXPECT_TRUE(moved);
    EXPECT_TRUE(ReadText(target + L"\\clip.bin") == bytes) << "the copy differs from the phone's file";

    // Some 250 blocks: the unplug, a controller process started on a busy machine, must come while the copy
    // runs; the copy stops there, so the size costs nothing when it does.
    WriteText(phoneFiles + L"\\big.bin", std::string(16 << 20, 'x'));
    std::thread unplug([&] {
        Sleep(150);
        phones.Ctl(L"detach slow");
    });
    const HRESULT result = CFD_DownloadFile((target + L"\\big.bin").c_str(), nullptr);
    unplug.join();
    EXPECT_EQ(static_cast<uint32_t>(result) & 0xFFFF0000u, 0x80000000u) << std::hex << result;
    EXPECT_EQ(GetFileAttributesW((target + L"\\big.bin").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetFileAttributesW((target + L"\\big.bin.partial").c_str()), INVALID_FILE_ATTRIBUTES);
}

// Records what the dialog tells its listener.
struct Recorder : CFileDialogListener {
    std::atomic<int> initDone{0}, folderChanges{0}, fileOks{0};
    void OnInitDone(HWND, OFNOTIFYW*) override { ++initDone; }
    void OnFolderChange(HWND, OFNOTIFYW*) override { ++folderChanges; }
    int OnFileNameOK(HWND, OFNOTIFYW*) override { return ++fileOks, 1; }
};

TEST_F(PhoneFileDialog, OpenCancelsOrGivesSeveralFiles)
{
    Recorder recorder;
    CFD_SetListener(&recorder);
    // A folder outside the data layer: its initial directory is taken as it is.
    const std::wstring folder = TempFolder() + L"zcmod-open-" + std::to_wstring(GetCurrentProcessId());
    MakeFolders(folder);
    WriteText(folder + L"\\a.txt", "a");
    WriteText(folder + L"\\b.txt", "b");
    wchar_t buffer[1024] = {};
    OPENFILENAMEW ofn = Ofn(buffer, 1024, OFN_FILEMUSTEXIST);
    const auto open = [&](const std::function<void(HWND)>& steps) {
        return RunFileDialog([&] { return CFD_GetOpenFileName(&ofn); }, steps);
    };

    wchar_t title[64] = {};
    EXPECT_FALSE(open([&](HWND dialog) {
        GetWindowTextW(dialog, title, 64);
        Cancel(dialog);
    }));
    EXPECT_STREQ(title, L"Open");
    EXPECT_EQ(recorder.initDone, 1);
    EXPECT_EQ(ofn.Flags, static_cast<DWORD>(OFN_FILEMUSTEXIST));  // the caller's structure comes back as it was
    EXPECT_EQ(ofn.lpfnHook, nullptr);

    ofn = Ofn(buffer, 1024, OFN_ALLOWMULTISELECT);
    ofn.lpstrInitialDir = folder.c_str();
    EXPECT_TRUE(open([&](HWND dialog) { Enter(dialog, L"\"a.txt\" \"b.txt\""); }));
    EXPECT_EQ(std::wstring(buffer), folder);
    const wchar_t* first = buffer + wcslen(buffer) + 1;
    EXPECT_STREQ(first, L"a.txt");
    EXPECT_STREQ(first + wcslen(first) + 1, L"b.txt");
    CFD_SetListener(nullptr);
    RemoveTree(folder);
}

TEST_F(PhoneFileDialog, SaveRefusesForbiddenFoldersAndReadOnlyFiles)
{
    Recorder recorder;
    CFD_SetListener(&recorder);
    const std::wstring locked = DataFolder(L"Locked", "<Folder Name=\"My Files\" Forbidden=\"DA\"/>");
    const std::wstring open = DataFolder(L"Open", "<Folder Name=\"My Files\" Forbidden=\"B\"/>");
    WriteText(open + L"\\old.txt", "old");
    SetFileAttributesW((open + L"\\old.txt").c_str(), FILE_ATTRIBUTE_READONLY);
    wchar_t buffer[MAX_PATH] = {};

    // Into `folder`, then the name; the message boxes that follow are read into `seen` and answered (yes to a
    // prompt); a dialog still open after `messages` of them was refused and is cancelled.
    std::vector<std::wstring> seen;
    auto save = [&](const std::wstring& folder, const std::wstring& name, DWORD flags, size_t messages) {
        buffer[0] = 0;
        seen.clear();
        OPENFILENAMEW ofn = Ofn(buffer, MAX_PATH, flags);
        return RunFileDialog([&] { return CFD_GetSaveFileName(&ofn); },
                             [&](HWND dialog) {
                                 wchar_t shown[MAX_PATH] = {};  // the dialog may open in the folder
                                 SendMessageW(dialog, CDM_GETFOLDERPATH, MAX_PATH, reinterpret_cast<LPARAM>(shown));
                                 const int changes = recorder.folderChanges;
                                 if (_wcsicmp(shown, folder.c_str()) != 0) {
                                     Enter(dialog, folder);
                                     WaitUntil([&] { return recorder.folderChanges > changes; });
                                 }
                                 Enter(dialog, name);
                                 for (size_t i = 0; i < messages; ++i) {
                                     HWND box = WaitForWindow(GetWindowThreadProcessId(dialog, nullptr), [](HWND h) {
                                         return IsDialogClass(h) && !IsFileDialog(h);
                                     });
                                     if (!box)
                                         break;
                                     // The platform's box has its text in the static 0xFFFF, the suite's in its
                                     // first static (id 0).
                                     wchar_t text[512] = {};
                                     if (!GetDlgItemTextW(box, 0xFFFF, text, 512))
                                         GetDlgItemTextW(box, 0, text, 512);
                                     seen.push_back(text);
                                     PostMessageW(box, WM_COMMAND, GetDlgItem(box, IDYES) ? IDYES : IDOK, 0);
                                     WaitUntil([&] { return !IsWindow(box); });
                                 }
                                 if (messages)
                                     Cancel(dialog);
                             });
    };
    EXPECT_FALSE(save(locked, L"new.txt", 0, 1));
    EXPECT_EQ(seen, std::vector<std::wstring>{L"Files cannot be saved in this folder.\nPlease choose another folder."});

    EXPECT_TRUE(save(open, L"new.txt", 0, 0));
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(std::wstring(buffer), open + L"\\new.txt");

    // A read-only target is refused, even when the overwrite prompt was answered yes.
    EXPECT_FALSE(save(open, L"old.txt", OFN_OVERWRITEPROMPT, 2));
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"old.txt already exists.\nDo you want to replace it?",
                                               L"old.txt is read-only.\nPlease save the file under another name."}));
    SetFileAttributesW((open + L"\\old.txt").c_str(), FILE_ATTRIBUTE_NORMAL);
    CFD_SetListener(nullptr);
}

TEST_F(PhoneFileDialog, FileDialogObjectKeepsTitlesOfUpTo63Characters)
{
    const std::wstring folder = DataFolder(L"Titles", "");
    const std::wstring name63(63, L'n'), name64(64, L'n');
    const struct {
        std::wstring name;
        std::wstring title;
    } cases[] = {{name63 + L".txt", name63}, {name64 + L".txt", L""}};
    for (const auto& c : cases) {
        WriteText(folder + L"\\" + c.name, "x");
        CNFileDialog dialog(TRUE, L".txt", nullptr, 0, L"Text|*.txt|", nullptr);
        EXPECT_EQ(RunFileDialog([&] { return dialog.DoModal(); }, [&](HWND d) { Enter(d, folder + L"\\" + c.name); }),
                  1);
        EXPECT_EQ(std::wstring(dialog.GetFileNameTitle()), c.title);
        EXPECT_EQ(std::wstring(dialog.GetFileName()), c.name);
        EXPECT_EQ(std::wstring(dialog.GetFileExt()), L"txt");
    }
}

}  // namespace
