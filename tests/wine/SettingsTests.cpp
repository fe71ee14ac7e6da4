// Readers of the machine's surroundings: the settings library, the suite's build number and selected phone,
// the Bluetooth stack, the fault reporter.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "frame/BTStackInfo.h"
#include "frame/core/SettingsText.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

std::wstring ModulePath(HMODULE module)
{
    wchar_t path[MAX_PATH] = {};
    return module && GetModuleFileNameW(module, path, MAX_PATH) ? path : L"";
}

std::wstring PartialDir() { return BinDir() + L"\\standins\\partial"; }

class Settings : public ::testing::Test {
protected:
    SuiteRegistry registry;
};

}  // namespace

TEST_F(Settings, ReadDKHLWithAndWithoutTrailingBackslashLoadsTheSameFile)
{
    CDKHL2InfoReader a, b;
    EXPECT_EQ(a.ReadDKHL(BinDir().c_str()), 0);
    EXPECT_EQ(b.ReadDKHL((BinDir() + L"\\").c_str()), 0);
    EXPECT_EQ(ModulePath(a.GetModule()), BinDir() + L"\\DKHL64.dll");
    EXPECT_EQ(ModulePath(a.GetModule()), ModulePath(b.GetModule()));

    CDKHL2InfoReader own;
    EXPECT_EQ(own.ReadDKHL(), 0);
    EXPECT_EQ(ModulePath(own.GetModule()), BinDir() + L"\\DKHL64.dll");

    CDKHL2InfoReader none;
    EXPECT_EQ(none.ReadDKHL(L"C:\\no such folder"), -2);
    EXPECT_EQ(none.GetModule(), nullptr);
    EXPECT_EQ(none.GetUIManufacturer(), nullptr);
    EXPECT_EQ(none.DKHL_GetVariantID(), 0);
    EXPECT_EQ(none.GetNumberOfPhoneManufacturers(), 0);
}

TEST_F(Settings, ReadDKHLTwiceFreesTheFirstModule)
{
    CDKHL2InfoReader reader;
    ASSERT_EQ(reader.ReadDKHL(PartialDir().c_str()), 0);
    HMODULE first = reader.GetModule();
    EXPECT_EQ(ModulePath(first), PartialDir() + L"\\DKHL64.dll");
    ASSERT_EQ(reader.ReadDKHL(BinDir().c_str()), 0);
    EXPECT_EQ(ModulePath(reader.GetModule()), BinDir() + L"\\DKHL64.dll");
    EXPECT_EQ(ModulePath(first), L"") << "the first module is no longer loaded";
}

TEST_F(Settings, AnswersOfTheSettingsLibrary)
{
    SetString(HKEY_CURRENT_USER, kStandInKey, L"UIManufacturer", L"Acme");
    SetString(HKEY_CURRENT_USER, kStandInKey, L"Installation", L"Desk Hub Test");
    SetDword(HKEY_CURRENT_USER, kStandInKey, L"VariantID", 7);
    SetMultiString(HKEY_CURRENT_USER, kStandInKey, L"PhoneManufacturers", {L"Zelvo", L"Orbix", L"Kestrel"});
    CDKHL2InfoReader reader;
    ASSERT_EQ(reader.ReadDKHL(), 0);
    EXPECT_STREQ(reader.GetUIManufacturer(), L"Acme");
    EXPECT_STREQ(reader.GetDKHL(), L"Desk Hub Test");
    EXPECT_EQ(reader.DKHL_GetVariantID(), 7);
    EXPECT_EQ(reader.GetNumberOfPhoneManufacturers(), 3);
    EXPECT_STREQ(reader.GetFirstPhoneManufacturer(), L"Zelvo");
    EXPECT_STREQ(reader.GetNextPhoneManufacturer(), L"Orbix");

    SetMultiString(HKEY_CURRENT_USER, kStandInKey, L"PhoneManufacturers", {});
    EXPECT_EQ(reader.GetNumberOfPhoneManufacturers(), 0);
}

TEST_F(Settings, MissingExportsGiveTheirQuietResults)
{
    CDKHL2InfoReader reader;
    ASSERT_EQ(reader.ReadDKHL(PartialDir().c_str()), 0);
    EXPECT_EQ(reader.DKHL_GetVariantID(), 0);
    EXPECT_EQ(reader.GetNextPhoneManufacturer(), nullptr);
    EXPECT_EQ(reader.GetNumberOfPhoneManufacturers(), 0) << "counting needs both first and next";
    EXPECT_STREQ(reader.GetUIManufacturer(), L"Zelvo");

    CDKHLInfoReader2 partial(PartialDir().c_str());
    EXPECT_EQ(partial.GetVariantID(), 0xFFFF);
    EXPECT_STREQ(partial.GetDKHL(), L"Desk Hub");

    CDKHLInfoReader2 full(BinDir().c_str());
    SetDword(HKEY_CURRENT_USER, kStandInKey, L"VariantID", 3);
    EXPECT_EQ(full.GetVariantID(), 3);
    SetDword(HKEY_CURRENT_USER, kStandInKey, L"VariantID", 4);
    EXPECT_EQ(full.GetVariantID(), 3) << "asked for once and cached";
}

TEST_F(Settings, InfoReaderCachesTheInstallationName)
{
    CDKHLInfoReader reader(BinDir().c_str());
    const wchar_t* first = reader.GetDKHL();
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first, L"Desk Hub");
    SetString(HKEY_CURRENT_USER, kStandInKey, L"Installation", L"Changed");
    EXPECT_EQ(reader.GetDKHL(), first);

    CDKHLInfoReader missing(L"C:\\no such folder");
    EXPECT_EQ(missing.GetModule(), nullptr);
    EXPECT_EQ(missing.GetDKHL(), nullptr);
}

TEST_F(Settings, EachReaderLooksInItsOwnPlace)
{
    // The probe runs from bin\probe, which has its own DKHL64.dll, and finds zcmod.dll through PATH.
    const std::wstring probe = BinDir() + L"\\probe\\zcmod_probe.exe";
    const std::wstring bare = BinDir() + L"\\probe-bare\\zcmod_probe.exe";
    auto loaded = [](const ProcessResult& r) {
        std::string out = r.output;
        while (!out.empty() && (out.back() == '\n' || out.back() == '\r'))
            out.pop_back();
        for (char& c : out)
            c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
        return out;
    };
    const std::wstring binDir = BinDir();
    std::string bin(binDir.begin(), binDir.end());
    for (char& c : bin)
        c = static_cast<char>(tolower(static_cast<unsigned char>(c)));

    // Beside this library.
    EXPECT_EQ(loaded(RunProcess(probe, L"dkhl2", BinDir())), "result=0 " + bin + "\\dkhl64.dll");
    // Beside the executable.
    EXPECT_EQ(loaded(RunProcess(probe, L"dkhl", BinDir())), bin + "\\probe\\dkhl64.dll");
    // Beside the executable, or else by the platform's search (here through PATH).
    EXPECT_EQ(loaded(RunProcess(bare, L"dkhl", BinDir())), bin + "\\dkhl64.dll");
    // By the platform's search alone: the executable's folder comes first in it.
    EXPECT_EQ(loaded(RunProcess(probe, L"dkhl-bare", BinDir())), bin + "\\probe\\dkhl64.dll");
    EXPECT_EQ(loaded(RunProcess(bare, L"dkhl-bare", BinDir())), bin + "\\dkhl64.dll");
}

TEST_F(Settings, BuildNumberAndItsParts)
{
    registry.SetBuildNumber(L"7.2.1045.9");
    wchar_t text[64];
    ASSERT_EQ(CUtils::GetBuildNumber(text, sizeof(text)), 1);
    EXPECT_STREQ(text, L"7.2.1045.9");
    int parts[3];
    EXPECT_EQ(CUtils::GetBuildNumberParts(parts), 3);
    EXPECT_EQ(parts[0], 7);
    EXPECT_EQ(parts[1], 2);
    EXPECT_EQ(parts[2], 1045);
    // The capacity is in bytes.
    EXPECT_EQ(CUtils::GetBuildNumber(text, 10), 0);
    EXPECT_STREQ(text, L"");

    registry.SetBuildNumber(L"12");
    EXPECT_EQ(CUtils::GetBuildNumberParts(parts), 1);
    EXPECT_EQ(parts[0], 12);
    EXPECT_EQ(parts[1], 0);
}

TEST_F(Settings, CachedBuildNumberReadsTwentyBytesOnly)
{
    // Ten characters need 22 bytes with the terminator: not read, however much room the text has.
    registry.SetBuildNumber(L"1.2.3.4567");
    EXPECT_STREQ(CUtils::GetCachedBuildNumber(), L"");
    // Nine characters fit, and the text is then kept for the process.
    registry.SetBuildNumber(L"1.2.3.456");
    EXPECT_STREQ(CUtils::GetCachedBuildNumber(), L"1.2.3.456");
    registry.SetBuildNumber(L"9");
    EXPECT_STREQ(CUtils::GetCachedBuildNumber(), L"1.2.3.456");
}

TEST_F(Settings, ManufacturerNameIsReadOnceFromTheSettingsLibrary)
{
    SetString(HKEY_CURRENT_USER, kStandInKey, L"UIManufacturer", L"Acme");
    EXPECT_STREQ(CUtils::GetUIManufacturerName(), L"Acme");
    SetString(HKEY_CURRENT_USER, kStandInKey, L"UIManufacturer", L"Other");
    EXPECT_STREQ(CUtils::GetUIManufacturerName(), L"Acme");
}

TEST_F(Settings, SelectedPhoneIsCopiedOnlyFromAString)
{
    const wchar_t kKey[] = L"Software\\Zelvo\\LaunchApplication";
    wchar_t phone[32] = L"before";
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_FILE_NOT_FOUND);

    SetString(HKEY_CURRENT_USER, kKey, L"selectedPhone", L"Zelvo Z10");
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_SUCCESS);
    EXPECT_STREQ(phone, L"Zelvo Z10");

    SetDword(HKEY_CURRENT_USER, kKey, L"selectedPhone", 5);
    wcscpy(phone, L"kept");
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_SUCCESS);
    EXPECT_STREQ(phone, L"kept");

    // A name longer than the buffer is not copied.
    SetString(HKEY_CURRENT_USER, kKey, L"selectedPhone", std::wstring(40, L'n'));
    EXPECT_NE(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_SUCCESS);
    EXPECT_STREQ(phone, L"kept");
}

namespace {

class Bluetooth : public ::testing::Test {
protected:
    void TearDown() override
    {
        DeleteTree(HKEY_LOCAL_MACHINE, L"SOFTWARE\\WidComm");
        DeleteTree(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Digianswer");
        DeleteTree(HKEY_LOCAL_MACHINE, L"SOFTWARE\\IVT Corporation");
        DeleteTree(HKEY_LOCAL_MACHINE, kToshibaKey);
    }
    static constexpr const wchar_t* kToshibaKey =
        L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\ZcmodTestToshibaStack";
    wchar_t version[260] = L"none";
    wchar_t build[260] = L"none";
};

}  // namespace

TEST_F(Bluetooth, WidCommVersionAndBuildFromTheFirstValueThatExists)
{
    CBTStackInfo info;
    EXPECT_EQ(info.GetStackVersion(CBTStackInfo::WidComm, version, build, 260), 0);
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\WidComm\\Install", L"DisplayName",
              L"WIDCOMM Bluetooth Software 6.2.0.1700");
    ASSERT_EQ(info.GetStackVersion(CBTStackInfo::WidComm, version, build, 260), 1);
    EXPECT_STREQ(version, L"6.2.0");
    EXPECT_STREQ(build, L"1700");

    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\WidComm\\Install", L"BTWVERS", L"5.1.0.1100");
    ASSERT_EQ(info.GetStackVersion(CBTStackInfo::WidComm, version, build, 260), 1);
    EXPECT_STREQ(version, L"5.1.0");
    EXPECT_STREQ(build, L"1100");

    // Results that do not fit the caller's buffer are not copied.
    wcscpy(version, L"old");
    wcscpy(build, L"old");
    ASSERT_EQ(info.GetStackVersion(CBTStackInfo::WidComm, version, build, 4), 1);
    EXPECT_STREQ(version, L"old");
    EXPECT_STREQ(build, L"old");
}

TEST_F(Bluetooth, DigianswerNeedsASubkeyAndTakesTheNumbersBehindTheWords)
{
    CBTStackInfo info;
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Digianswer", L"Version", L"Digianswer version 4.10 build 331");
    EXPECT_EQ(info.GetStackVersion(CBTStackInfo::Digianswer, version, build, 260), 0) << "no subkey yet";
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Digianswer\\Bluetooth", L"x", L"y");
    ASSERT_EQ(info.GetStackVersion(CBTStackInfo::Digianswer, version, build, 260), 1);
    EXPECT_STREQ(version, L"4.10");
    EXPECT_STREQ(build, L"331");
}

TEST_F(Bluetooth, ToshibaMatchesItsDisplayNameInAnyCase)
{
    CBTStackInfo info;
    EXPECT_EQ(info.GetStackVersion(CBTStackInfo::Toshiba, version, build, 260), 0);
    SetString(HKEY_LOCAL_MACHINE, kToshibaKey, L"DisplayName", L"toshiba bluetooth stack for windows");
    SetString(HKEY_LOCAL_MACHINE, kToshibaKey, L"DisplayVersion", L"v9.10.12");
    ASSERT_EQ(info.GetStackVersion(CBTStackInfo::Toshiba, version, build, 260), 1);
    EXPECT_STREQ(version, L"v9.10.12");
    EXPECT_STREQ(build, L"none") << "the build stays as it is";
}

TEST_F(Bluetooth, BlueSoleilVersionIsTheFirstSubkeyAndIsCached)
{
    {
        CBTStackInfo info;
        EXPECT_EQ(info.GetStackVersion(CBTStackInfo::BlueSoleil, version, build, 260), 0);
    }
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\IVT Corporation\\BlueSoleil\\10.0.498.0", L"x", L"y");
    CBTStackInfo info;  // fills the cache
    DeleteTree(HKEY_LOCAL_MACHINE, L"SOFTWARE\\IVT Corporation");
    ASSERT_EQ(info.GetStackVersion(CBTStackInfo::BlueSoleil, version, build, 260), 1);
    EXPECT_STREQ(version, L"10.0.498.0");
}

TEST_F(Bluetooth, UnknownKindsGiveNothing)
{
    CBTStackInfo info;
    EXPECT_EQ(info.GetStackVersion(0, version, build, 260), 0);
    EXPECT_EQ(info.GetStackVersion(6, version, build, 260), 0);
    EXPECT_STREQ(version, L"none");
}

TEST(FaultReporting, FilterHandsTheFaultToTheReporter)
{
    EXPECT_EQ(DkhInitializeWER(), 1);
    LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(nullptr);
    ASSERT_NE(filter, nullptr);
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = EXCEPTION_ACCESS_VIOLATION;
    CONTEXT context = {};
    EXCEPTION_POINTERS pointers = {&record, &context};
    // FaultRep.dll with "ReportFault" is in the system folder: the report is made, and the filter says so.
    EXPECT_EQ(filter(&pointers), 1);

    wchar_t windows[MAX_PATH];
    GetSystemWindowsDirectoryW(windows, MAX_PATH);
    wchar_t path[MAX_PATH];
    ASSERT_TRUE(zcmod::BuildFaultReporterPath(windows, wcslen(windows), path, MAX_PATH));
    EXPECT_NE(GetFileAttributesW(path), INVALID_FILE_ATTRIBUTES) << "the path names the system's file";
}
