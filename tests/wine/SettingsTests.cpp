// Readers of the machine's surroundings: the settings library, the suite's build number and selected phone,
// the Bluetooth stack, the fault reporter.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "TestSupport.h"
#include "frame/BTStackInfo.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

std::wstring ModulePath(HMODULE module)
{
    wchar_t path[MAX_PATH] = {};
    return module && GetModuleFileNameW(module, path, MAX_PATH) ? path : L"";
}

std::wstring PartialDir()
{
    return BinDir() + L"\\standins\\partial";
}

class Settings : public ::testing::Test {
protected:
    SuiteRegistry registry;
};

}  // namespace

TEST_F(Settings, ReadDKHLLoadsFromTheFolderGivenAndFreesTheModuleBefore)
{
    // A folder with or without the closing backslash; a second read frees the first module.
    CDKHL2InfoReader a;
    ASSERT_EQ(a.ReadDKHL(PartialDir().c_str()), 0);
    EXPECT_EQ(ModulePath(a.GetModule()), PartialDir() + L"\\DKHL64.dll");
    HMODULE partial = a.GetModule();
    ASSERT_EQ(a.ReadDKHL((BinDir() + L"\\").c_str()), 0);
    EXPECT_EQ(ModulePath(a.GetModule()), BinDir() + L"\\DKHL64.dll");
    EXPECT_EQ(ModulePath(partial), L"") << "the first module is no longer loaded";

    CDKHL2InfoReader none;
    EXPECT_EQ(none.ReadDKHL(L"C:\\no such folder"), -2);
    EXPECT_EQ(none.GetModule(), nullptr);
    EXPECT_EQ(none.GetUIManufacturer(), nullptr);
    EXPECT_EQ(none.DKHL_GetVariantID(), 0);
    EXPECT_EQ(none.GetNumberOfPhoneManufacturers(), 0);
}

TEST_F(Settings, AnswersOfTheSettingsLibraryAndOfOneWithoutSomeExports)
{
    registry.SetStandIn(L"UIManufacturer", L"Acme");
    registry.SetStandIn(L"Installation", L"Desk Hub Test");
    SetDword(HKEY_CURRENT_USER, kStandInKey, L"VariantID", 7);
    const wchar_t phones[] = L"Zelvo\0Orbix\0Kestrel\0";
    SetValue(HKEY_CURRENT_USER, kStandInKey, L"PhoneManufacturers", REG_MULTI_SZ, phones, sizeof(phones));
    CDKHL2InfoReader reader;
    ASSERT_EQ(reader.ReadDKHL(), 0);
    EXPECT_STREQ(reader.GetDKHL(), L"Desk Hub Test");
    EXPECT_EQ(reader.DKHL_GetVariantID(), 7);
    EXPECT_EQ(reader.GetNumberOfPhoneManufacturers(), 3);
    // CUtils reads the manufacturer's name, through the reader, once.
    EXPECT_STREQ(CUtils::GetUIManufacturerName(), L"Acme");
    registry.SetStandIn(L"UIManufacturer", L"Other");
    EXPECT_STREQ(CUtils::GetUIManufacturerName(), L"Acme");
    SetValue(HKEY_CURRENT_USER, kStandInKey, L"PhoneManufacturers", REG_MULTI_SZ, L"\0", 2 * sizeof(wchar_t));
    EXPECT_EQ(reader.GetNumberOfPhoneManufacturers(), 0);

    // The partial stand-in lacks the variant and "next" exports.
    CDKHL2InfoReader partial;
    ASSERT_EQ(partial.ReadDKHL(PartialDir().c_str()), 0);
    EXPECT_EQ(partial.DKHL_GetVariantID(), 0);
    EXPECT_EQ(partial.GetNumberOfPhoneManufacturers(), 0) << "counting needs both first and next";
    EXPECT_EQ(CDKHLInfoReader2(PartialDir().c_str()).GetVariantID(), 0xFFFF);

    // CDKHLInfoReader2 asks for the variant once; CDKHLInfoReader keeps its first copy of the name.
    CDKHLInfoReader2 full(BinDir().c_str());
    EXPECT_EQ(full.GetVariantID(), 7);
    const wchar_t* name = full.GetDKHL();
    SetDword(HKEY_CURRENT_USER, kStandInKey, L"VariantID", 4);
    registry.SetStandIn(L"Installation", L"Changed");
    EXPECT_EQ(full.GetVariantID(), 7);
    EXPECT_EQ(full.GetDKHL(), name);
    EXPECT_STREQ(name, L"Desk Hub Test");
    CDKHLInfoReader missing(L"C:\\no such folder");
    EXPECT_EQ(missing.GetModule(), nullptr);
    EXPECT_EQ(missing.GetDKHL(), nullptr);
}

TEST_F(Settings, EachReaderLooksInItsOwnPlace)
{
    // The probe runs from bin\probe, which has its own DKHL64.dll, and finds zcmod.dll through PATH.
    const std::wstring probe = BinDir() + L"\\probe\\zcmod_probe.exe";
    const std::wstring bare = BinDir() + L"\\probe-bare\\zcmod_probe.exe";
    auto lower = [](std::string s) {
        s.erase(s.find_last_not_of("\r\n") + 1);
        std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return static_cast<char>(tolower(c)); });
        return s;
    };
    const std::wstring dir = BinDir();
    const std::string bin = lower(std::string(dir.begin(), dir.end()));
    auto loaded = [&](const std::wstring& exe, const wchar_t* what) {
        return lower(RunProcess(exe, what, dir).output);
    };

    EXPECT_EQ(loaded(probe, L"dkhl2"), "result=0 " + bin + "\\dkhl64.dll");  // beside this library
    EXPECT_EQ(loaded(probe, L"dkhl"), bin + "\\probe\\dkhl64.dll");          // beside the executable
    EXPECT_EQ(loaded(bare, L"dkhl"), bin + "\\dkhl64.dll");                  // or else by the platform's search
    // An empty folder leaves it to the platform's search, not a path of its own.
    EXPECT_EQ(loaded(bare, L"dkhl-bare"), bin + "\\dkhl64.dll");
}

TEST_F(Settings, BuildNumberAndTheCachedCopyOfTwentyBytes)
{
    registry.SetBuildNumber(L"7.2.1045.9");
    wchar_t text[64];
    ASSERT_EQ(CUtils::GetBuildNumber(text, sizeof(text)), 1);
    EXPECT_STREQ(text, L"7.2.1045.9");
    int parts[3];  // how the text splits is the native settings text test's
    EXPECT_EQ(CUtils::GetBuildNumberParts(parts), 3);
    EXPECT_EQ(parts[2], 1045);
    // The capacity is in bytes.
    EXPECT_EQ(CUtils::GetBuildNumber(text, 10), 0);
    EXPECT_STREQ(text, L"");

    // Ten characters need 22 bytes with the terminator: not read, however much room the text has. Nine fit,
    // and the text is then kept for the process.
    registry.SetBuildNumber(L"1.2.3.4567");
    EXPECT_STREQ(CUtils::GetCachedBuildNumber(), L"");
    registry.SetBuildNumber(L"1.2.3.456");
    EXPECT_STREQ(CUtils::GetCachedBuildNumber(), L"1.2.3.456");
    registry.SetBuildNumber(L"9");
    EXPECT_STREQ(CUtils::GetCachedBuildNumber(), L"1.2.3.456");
}

TEST_F(Settings, SelectedPhoneIsCopiedOnlyFromAStringThatFits)
{
    const wchar_t kKey[] = L"Software\\Zelvo\\LaunchApplication";
    wchar_t phone[32] = L"before";
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_FILE_NOT_FOUND);
    SetString(HKEY_CURRENT_USER, kKey, L"selectedPhone", L"Zelvo Z10");
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_SUCCESS);
    EXPECT_STREQ(phone, L"Zelvo Z10");

    wcscpy(phone, L"kept");
    SetDword(HKEY_CURRENT_USER, kKey, L"selectedPhone", 5);
    EXPECT_EQ(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_SUCCESS);
    EXPECT_STREQ(phone, L"kept");
    SetString(HKEY_CURRENT_USER, kKey, L"selectedPhone", std::wstring(40, L'n'));
    EXPECT_NE(CUtils::ReadSelectedPhone(kKey, phone, 32), ERROR_SUCCESS);
    EXPECT_STREQ(phone, L"kept");
}

TEST(Bluetooth, EachStackKindReadsItsOwnKey)
{
    // The texts' parse rules are the native settings text test's; here, which key each kind reads.
    const wchar_t* const keys[] = {L"SOFTWARE\\WidComm", L"SOFTWARE\\Digianswer", L"SOFTWARE\\IVT Corporation",
                                   L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\ZcmodTestToshiba"};
    for (const wchar_t* key : keys)
        DeleteTree(HKEY_LOCAL_MACHINE, key);
    wchar_t version[260] = L"none";
    wchar_t build[260] = L"none";
    // "result version build" as one text.
    auto read = [&](CBTStackInfo& info, int kind, int capacity = 260) {
        const int result = info.GetStackVersion(kind, version, build, capacity);
        return std::to_wstring(result) + L" " + version + L" " + build;
    };
    CBTStackInfo info;  // finds no BlueSoleil to cache
    for (int kind : std::initializer_list<int>{0, 6, CBTStackInfo::WidComm, CBTStackInfo::Digianswer,
                                               CBTStackInfo::Toshiba, CBTStackInfo::BlueSoleil})
        EXPECT_EQ(read(info, kind), L"0 none none") << kind;

    // WidComm: "BTWVERS" before "DisplayName"; results that do not fit the caller's buffer are not copied.
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\WidComm\\Install", L"DisplayName", L"WIDCOMM 6.2.0.1700");
    EXPECT_EQ(read(info, CBTStackInfo::WidComm), L"1 6.2.0 1700");
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\WidComm\\Install", L"BTWVERS", L"5.1.0.1100");
    EXPECT_EQ(read(info, CBTStackInfo::WidComm), L"1 5.1.0 1100");
    wcscpy(version, L"old");
    EXPECT_EQ(read(info, CBTStackInfo::WidComm, 4), L"1 old 1100");

    // Digianswer needs a first subkey, and takes the numbers behind the words of its "Version".
    SetString(HKEY_LOCAL_MACHINE, keys[1], L"Version", L"Digianswer version 4.10 build 331");
    EXPECT_EQ(read(info, CBTStackInfo::Digianswer).substr(0, 1), L"0") << "no subkey yet";
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Digianswer\\Bluetooth", L"x", L"y");
    EXPECT_EQ(read(info, CBTStackInfo::Digianswer), L"1 4.10 331");

    // Toshiba: a display name in any case; the build stays as it is.
    SetString(HKEY_LOCAL_MACHINE, keys[3], L"DisplayName", L"toshiba bluetooth stack for windows");
    SetString(HKEY_LOCAL_MACHINE, keys[3], L"DisplayVersion", L"v9.10.12");
    EXPECT_EQ(read(info, CBTStackInfo::Toshiba), L"1 v9.10.12 331");

    // BlueSoleil: the first subkey's name, cached by the constructor.
    SetString(HKEY_LOCAL_MACHINE, L"SOFTWARE\\IVT Corporation\\BlueSoleil\\10.0.498.0", L"x", L"y");
    CBTStackInfo cached;
    for (const wchar_t* key : keys)
        DeleteTree(HKEY_LOCAL_MACHINE, key);
    EXPECT_EQ(read(cached, CBTStackInfo::BlueSoleil).substr(0, 13), L"1 10.0.498.0 ");
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
}
