// The phone file dialog's path rules: mirror and phone paths both ways, hostile names from a phone, folder
// kinds, titles and result codes.
#include <gtest/gtest.h>

#include "device/core/PhonePaths.h"

using namespace zcmod::phonepath;

namespace {

const std::wstring kTemp = L"C:\\Users\\Ann\\AppData\\Local\\Temp\\";
const std::wstring kMirror = kTemp + L"CFD Temp Folder";
const std::wstring kRoot = std::wstring(kPhoneFoldersRoot) + L"\\";

TEST(PhonePaths, MirrorAndPhonePathsBothWays)
{
    struct Case {
        std::wstring mirror;  // relative to the mirror folder
        std::wstring phone;   // relative to the root and its separator
    } cases[] = {
        {L"\\3581234\\C\\Pictures\\cat.jpg", L"3581234\\C:\\Pictures\\cat.jpg"},
        {L"\\3581234\\C", L"3581234\\C:"},
        {L"\\3581234\\Memory card\\a.txt", L"3581234\\Memory card\\a.txt"},
        {L"\\3581234", L"3581234"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(MirrorToPhonePath(kMirror + c.mirror, kMirror), kRoot + c.phone);
        EXPECT_EQ(PhoneToMirrorPath(kRoot + c.phone, kTemp), kMirror + c.mirror);
    }
    // Case is ignored on the way in; outside the mirror or at its top there is no phone path.
    EXPECT_EQ(MirrorToPhonePath(L"c:\\users\\ann\\appdata\\local\\temp\\cfd temp folder\\s\\ab", kMirror),
              kRoot + L"s\\ab");
    for (const std::wstring& outside : {kTemp + L"other\\x", kMirror + L"X\\y", kMirror, kMirror + L"\\", std::wstring()})
        EXPECT_EQ(MirrorToPhonePath(outside, kMirror), L"") << outside.c_str();
    // The service's form of a file's place: the folder with its leading separator and the drive's ":".
    const PhoneFile file = SplitMirrorPath(kMirror + L"\\3581234\\C\\Pictures\\Trip\\cat.jpg", kMirror);
    EXPECT_EQ(file.serial + L"|" + file.folder + L"|" + file.fileName, L"3581234|\\C:\\Pictures\\Trip|cat.jpg");
}

TEST(PhonePaths, HostileNamesFromAPhoneNeverLeaveTheMirror)
{
    const wchar_t* hostile[] = {
        L"sn\\..\\..\\Windows\\x.dll", L"..", L"sn\\C:\\..\\x", L"sn\\C:\\a\\..", L"sn\\.\\x", L"sn\\\\x",
        L"sn\\C:\\D:\\x", L"sn\\C:x", L"sn\\C:\\CON", L"sn\\C:\\nul.txt", L"sn\\lpt1", L"sn\\com9.log",
        L"sn\\a/../../b", L"sn\\a\x01b", L"sn\\...", L"sn\\dir.", L"sn\\dir ", L"sn\\a*b", L"",
    };
    for (const wchar_t* name : hostile)
        EXPECT_EQ(PhoneToMirrorPath(kRoot + name, kTemp), L"") << name;
    // Only below our root, and not a namespace that merely begins like it.
    EXPECT_EQ(PhoneToMirrorPath(L"C:\\Windows\\x", kTemp), L"");
    EXPECT_EQ(PhoneToMirrorPath(std::wstring(kPhoneFoldersRoot) + L"X\\sn", kTemp), L"");
    // Names that only look alike are fine.
    for (const wchar_t* fine : {L"sn\\C:\\CONFIG", L"sn\\..a", L"sn\\a..b", L"sn\\com10", L"sn\\C:\\"})
        EXPECT_NE(PhoneToMirrorPath(kRoot + fine, kTemp), L"") << fine;
}

// Folder kinds, titles, filters and result codes; the file dialog's tests show the common cases (contacts,
// calendar, titles of 63 and 64 characters) through the dialog.
TEST(PhonePaths, FolderKindsTitlesAndResults)
{
    const std::pair<const wchar_t*, int> kinds[] = {{L"Messaging", 4},       {L"MESSAGES", 4}, {L"My Messages", 4},
                                                    {L"Retrieved Files", 0}, {L"My", -1},      {L"", -1}};
    for (const auto& kind : kinds)
        EXPECT_EQ(FolderTypeFromName(kind.first), kind.second) << kind.first;

    const std::pair<std::wstring, std::wstring> titles[] = {
        {L"C:\\a\\.txt", L""}, {L"C:\\a.b\\file", L"file"}, {L"C:\\a\\f.tar.gz", L"f.tar"}, {L"plain", L"plain"}};
    for (const auto& title : titles)
        EXPECT_EQ(FileTitle(title.first), title.second) << title.first.c_str();
    EXPECT_EQ(FilterForDialog(L"Text|*.txt|"), std::wstring(L"Text\0*.txt\0\0\0", 13));

    const std::pair<uint32_t, uint32_t> results[] = {
        {0, 0}, {0x80100020u, 0x80004252u}, {0x80400002u, 0x80006002u}, {0x80400008u, 0x8000434Du},
        {0x80400005u, 0x80004255u}, {1, 0x80004255u},
    };
    for (const auto& result : results)
        EXPECT_EQ(MapServiceResult(result.first), result.second) << std::hex << result.first;
}

}  // namespace
