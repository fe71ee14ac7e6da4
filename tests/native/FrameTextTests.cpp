// Text rules of the frame, natively: colour strings, build numbers, Bluetooth version texts, fault path.
#include <gtest/gtest.h>

#include <climits>
#include <cwchar>
#include <string>

#include "frame/core/ColorString.h"
#include "frame/core/SettingsText.h"

using namespace zcmod;

namespace {
std::uint32_t Color(const wchar_t* s)
{
    return ParseColorString(s, std::wcslen(s));
}
}  // namespace

TEST(ColorString, ComponentsWrapAt65536BeforeTheCapAndMissingPartsAreZero)
{
    EXPECT_EQ(Color(L"12,34,56"), 0x0038220Cu);
    EXPECT_EQ(Color(L"300,20"), 0x000014FFu);     // capped, and no blue
    EXPECT_EQ(Color(L"70000,1,2"), 0x000201FFu);  // 70000 -> 4464 -> 255
    EXPECT_EQ(Color(L"65537,1,2"), 0x00020101u);  // 65537 -> 1
    EXPECT_EQ(Color(L"5"), 5u);                   // red alone
    EXPECT_EQ(Color(L"no digits"), 0u);
    EXPECT_EQ(Color(L"7,,9"), 0x00090007u);
    EXPECT_EQ(Color(L"1,2,3,4"), 0x00030201u);
    EXPECT_EQ(Color(L" 7,8,9"), 0x00090800u);    // red starts at the blank
    EXPECT_EQ(Color(L"7x,8y,9z"), 0x00090807u);  // digits stop at the first other character
    EXPECT_EQ(ParseColorString(nullptr, 4), 0u);
    EXPECT_EQ(ParseColorString(L"12,34,56", 4), 0x0000030Cu);  // the length bounds the scan
}

TEST(SettingsText, LeadingIntegersAndBuildNumberParts)
{
    EXPECT_EQ(ParseLeadingInt(L"  -12abc"), -12);
    EXPECT_EQ(ParseLeadingInt(L"+7"), 7);
    EXPECT_EQ(ParseLeadingInt(L"x1"), 0);
    EXPECT_EQ(ParseLeadingInt(L"99999999999999999999"), INT_MAX);
    EXPECT_EQ(ParseLeadingInt(L"-99999999999999999999"), INT_MIN);
    EXPECT_EQ(ParseLeadingInt(nullptr), 0);

    int parts[3];
    EXPECT_EQ(ParseBuildNumberParts(L"7.2.1045.9", parts), 3);
    EXPECT_EQ(parts[2], 1045);
    EXPECT_EQ(ParseBuildNumberParts(L"..3..4", parts), 2);  // empty parts are skipped
    EXPECT_EQ(parts[0], 3);
    EXPECT_EQ(parts[1], 4);
    EXPECT_EQ(parts[2], 0);
    EXPECT_EQ(ParseBuildNumberParts(L"", parts), 0);
    EXPECT_EQ(ParseBuildNumberParts(L"beta.2", parts), 2);
    EXPECT_EQ(parts[0], 0);
}

TEST(SettingsText, BluetoothVersionTexts)
{
    // The plain forms are read through the registry in the Wine Bluetooth test.
    std::wstring version, build;
    SplitTrailingVersion(L"1700", version, build);
    EXPECT_EQ(version + L" " + build, L" 1700");
    SplitTrailingVersion(L"no numbers", version, build);
    EXPECT_EQ(version + L" " + build, L" ");

    EXPECT_TRUE(TakeNumberAfterWord(L"Digianswer version: 4.10, build 331", L"VERSION", version));
    EXPECT_EQ(version, L"4.10,");  // commas belong to the number
    EXPECT_TRUE(TakeNumberAfterWord(L"Digianswer version: 4.10, build 331", L"build", build));
    EXPECT_EQ(build, L"331");
    EXPECT_FALSE(TakeNumberAfterWord(L"version unknown", L"VERSION", version));
    EXPECT_FALSE(TakeNumberAfterWord(L"release 4.1", L"VERSION", version));

    const wchar_t* const words[] = {L"TOSHIBA", L"BLUETOOTH", L"STACK"};
    EXPECT_TRUE(ContainsAllWords(L"toshiba bluetooth stack", words, 3));
    EXPECT_FALSE(ContainsAllWords(L"Toshiba Bluetooth", words, 3));
    EXPECT_FALSE(ContainsAllWords(nullptr, words, 3));

    wchar_t out[4] = L"old";
    EXPECT_FALSE(CopyIfFits(L"four", out, 4));  // no room for the terminator
    EXPECT_STREQ(out, L"old");
}

TEST(SettingsText, FaultReporterPathLengthRule)
{
    wchar_t out[260];
    EXPECT_TRUE(BuildFaultReporterPath(L"C:\\windows", 10, out, 260));
    EXPECT_STREQ(out, L"C:\\windows\\System32\\FaultRep.dll");
    // 237 characters and the 22 of the tail fill 260 with the terminator; one more is refused.
    ASSERT_TRUE(BuildFaultReporterPath(std::wstring(237, L'w').c_str(), 237, out, 260));
    EXPECT_EQ(std::wcslen(out), 259u);
    EXPECT_FALSE(BuildFaultReporterPath(std::wstring(238, L'w').c_str(), 238, out, 260));
    EXPECT_STREQ(out, L"");
    EXPECT_FALSE(BuildFaultReporterPath(L"", 0, out, 260));
    EXPECT_FALSE(BuildFaultReporterPath(L"C:\\windows", 10, out, 20)) << "never past the caller's buffer";
}
