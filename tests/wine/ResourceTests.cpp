// Language and theme resources: finding the modules from the settings, strings, colours, fonts, and the one
// message the library shows of its own.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

// The name of the module's file, as a test compares modules by identity and not by handle.
std::wstring ThemeName(HMODULE module)
{
    wchar_t text[64] = {};
    if (!module || LoadStringW(module, ZGR_STR_THEME_NAME, text, 64) <= 0)
        return L"";
    return text;
}

class Resources : public ::testing::Test {
protected:
    SuiteRegistry registry;
};

}  // namespace

TEST_F(Resources, LanguageModuleComesFromCurrentLanguageAndIsKept)
{
    registry.SetLanguage(L"tst");
    CResHandler handler;
    HMODULE first = handler.GetLanguageModule();
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(handler.GetLanguageName(), L"tst");
    wchar_t text[64];
    ASSERT_GT(LoadStringW(first, ZLR_STR_LANGUAGE_NAME, text, 64), 0);
    EXPECT_STREQ(text, L"Testish");

    // The language is chosen once per process.
    registry.SetLanguage(L"eng");
    EXPECT_EQ(handler.GetLanguageModule(), first);
    EXPECT_STREQ(handler.GetLanguageName(), L"tst");
}

TEST_F(Resources, MissingLanguageSettingGivesNoModuleAndNoName)
{
    CResHandler handler;
    EXPECT_EQ(handler.GetLanguageModule(), nullptr);
    EXPECT_EQ(handler.GetLanguageName(), nullptr);
    registry.SetLanguage(L"xyz");  // a code without a file
    EXPECT_EQ(handler.GetLanguageModule(), nullptr);
    EXPECT_STREQ(handler.GetLanguageName(), L"xyz");
}

TEST_F(Resources, UserThemeWinsAndMachineThemeIsTheFallBack)
{
    registry.SetMachineTheme(L"Other");
    CResHandler handler;
    EXPECT_EQ(ThemeName(handler.GetGraphicsModule()), L"Other");
    EXPECT_FALSE(handler.IsCurrentTheme()) << "no user theme is set";

    registry.SetUserTheme(L"Test");
    EXPECT_EQ(ThemeName(handler.GetGraphicsModule()), L"Test");
    EXPECT_TRUE(handler.IsCurrentTheme());
}

TEST_F(Resources, ThemeNameDifferingOnlyInCaseDoesNotReload)
{
    registry.SetUserTheme(L"Test");
    CResHandler handler;
    HMODULE module = handler.GetGraphicsModule();
    ASSERT_NE(module, nullptr);
    registry.SetUserTheme(L"TEST");
    EXPECT_EQ(handler.GetGraphicsModule(), module);
    EXPECT_FALSE(handler.IsCurrentTheme()) << "IsCurrentTheme compares with case";
}

TEST_F(Resources, ThemeChangeReloadsAndDropsCachedColours)
{
    registry.SetUserTheme(L"Test");
    EXPECT_EQ(DkhLoadColor(nullptr, 700), RGB(12, 34, 56));
    EXPECT_GT(CCommonModuleState::Get().m_pColorLoader->GetCachedCount(), 0u);

    registry.SetUserTheme(L"Other");
    EXPECT_EQ(ThemeName(ZCMOD_GetCommonZGR()), L"Other");
    EXPECT_EQ(CCommonModuleState::Get().m_pColorLoader->GetCachedCount(), 0u);
    EXPECT_EQ(DkhLoadColor(nullptr, 700), RGB(4, 5, 6));
}

TEST_F(Resources, ThemeWithoutFileLeavesNoModuleAndTheOldOneIsGone)
{
    registry.SetUserTheme(L"Test");
    CResHandler handler;
    ASSERT_NE(handler.GetGraphicsModule(), nullptr);
    registry.SetUserTheme(L"Missing");
    EXPECT_EQ(handler.GetGraphicsModule(), nullptr);
    // No fall-back to another theme; the next call tries again and finds it once it is back.
    registry.SetUserTheme(L"Test");
    EXPECT_EQ(ThemeName(handler.GetGraphicsModule()), L"Test");
}

TEST_F(Resources, NoThemeSettingKeepsWhatIsLoaded)
{
    registry.SetUserTheme(L"Test");
    CResHandler handler;
    HMODULE module = handler.GetGraphicsModule();
    ASSERT_NE(module, nullptr);
    DeleteValue(HKEY_CURRENT_USER, kUserSuiteKey, L"Theme");
    EXPECT_EQ(handler.GetGraphicsModule(), module);
}

TEST_F(Resources, ModulePathIsBesideTheLibrary)
{
    CResHandler handler;
    wchar_t path[MAX_PATH];
    HMODULE module = handler.LoadResourceModule(L"\\Resource\\", L"Test", L".zgr", path);
    ASSERT_NE(module, nullptr);
    FreeLibrary(module);
    EXPECT_EQ(std::wstring(path), BinDir() + L"\\Resource\\\\ZCMOD_Test.zgr");

    module = handler.LoadResourceModule(L"\\Lang\\", L"tst", L"zlr", path);
    ASSERT_NE(module, nullptr);
    FreeLibrary(module);
    EXPECT_EQ(std::wstring(path), BinDir() + L"\\Lang\\\\ZCMOD_tst.zlr");

    EXPECT_EQ(handler.LoadResourceModule(L"\\Lang\\", L"", L"zlr", path), nullptr);
    EXPECT_STREQ(path, L"");
    EXPECT_EQ(handler.LoadResourceModule(L"\\Lang\\", L"tst", nullptr, path), nullptr);
    // A path that doesn't fit its buffer is refused, not cut short.
    wchar_t tiny[8];
    EXPECT_EQ(handler.LoadResourceModule(L"\\Lang\\", L"tst", L"zlr", tiny, 8), nullptr);
}

TEST_F(Resources, SuiteValuesNeverOverflowTheirBuffer)
{
    CResHandler handler;
    wchar_t buffer[300];

    // 129 characters and a terminator fill the 260 bytes the callers pass; 130 don't fit.
    registry.SetUserTheme(std::wstring(129, L'a'));
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 1);
    EXPECT_EQ(wcslen(buffer), 129u);
    registry.SetUserTheme(std::wstring(130, L'a'));
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 0);

    // A value without its terminator that fills the buffer exactly is refused too.
    const std::wstring unterminated(130, L'b');
    SetRawString(HKEY_CURRENT_USER, kUserSuiteKey, L"Theme", unterminated.data(), 260);
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 0);

    // Nothing is written past the capacity.
    registry.SetUserTheme(L"0123456789012345678901234567890123456789");
    wmemset(buffer, 0xCCCC, 300);
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 20), 0);
    for (int i = 10; i < 300; ++i)
        ASSERT_EQ(buffer[i], 0xCCCC) << i;

    // An overlong theme value falls back to the installation's theme.
    registry.SetUserTheme(std::wstring(400, L'x'));
    registry.SetMachineTheme(L"Test");
    EXPECT_EQ(ThemeName(handler.GetGraphicsModule()), L"Test");

    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, nullptr, buffer, 260), 0);
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", nullptr, 260), 0);
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 0), 0);
}

TEST_F(Resources, SuiteKeysFollowTheSettingsLibrarysManufacturer)
{
    SetString(HKEY_CURRENT_USER, kStandInKey, L"UIManufacturer", L"Acme");
    SetString(HKEY_CURRENT_USER, L"Software\\Acme\\DeskHub", L"Theme", L"Other");
    SetString(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Acme\\DeskHub", L"Current Language", L"tst");
    CResHandler handler;
    EXPECT_EQ(ThemeName(handler.GetGraphicsModule()), L"Other");
    EXPECT_NE(handler.GetLanguageModule(), nullptr);
    DeleteTree(HKEY_CURRENT_USER, L"Software\\Acme");
    DeleteTree(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Acme");

    // An empty manufacturer name gives up.
    SetString(HKEY_CURRENT_USER, kStandInKey, L"UIManufacturer", L"");
    wchar_t buffer[130];
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 0);
}

TEST_F(Resources, ColourStringRules)
{
    registry.SetUserTheme(L"Test");
    EXPECT_EQ(DkhLoadColor(nullptr, 700), 0x0038220Cu);        // 12,34,56
    EXPECT_EQ(DkhLoadColor(nullptr, 701), RGB(255, 20, 0));    // 300 capped, blue missing
    EXPECT_EQ(DkhLoadColor(nullptr, 702), RGB(255, 1, 2));     // 70000 wraps to 4464, then capped
    EXPECT_EQ(DkhLoadColor(nullptr, 703), RGB(1, 1, 2));       // 65537 wraps to 1
    EXPECT_EQ(DkhLoadColor(nullptr, 704), 0u);                 // no digits
    EXPECT_EQ(DkhLoadColor(nullptr, 706), RGB(7, 0, 9));       // empty green
    EXPECT_EQ(DkhLoadColor(nullptr, 707), RGB(1, 2, 3));       // a fourth part is ignored
    EXPECT_EQ(DkhLoadColor(nullptr, 708), RGB(255, 255, 255));
    EXPECT_EQ(DkhLoadColor(nullptr, 709), RGB(100, 100, 100)); // read through a 20-character buffer
    EXPECT_EQ(DkhLoadColor(nullptr, 710), RGB(0, 8, 9));       // red starts at the blank
    EXPECT_EQ(DkhLoadColor(ZCMOD_GetCommonZGR(), ZGR_COLOR_TEXT), RGB(10, 20, 30));
}

TEST_F(Resources, EmptyStringIsCachedAndMissingOneIsNot)
{
    registry.SetUserTheme(L"Test");
    HMODULE module = ZCMOD_GetCommonZGR();
    ASSERT_NE(module, nullptr);
    CStrColorLoader loader;
    COLORREF color = 0x12345678;
    loader.LoadColor(module, 705, &color);
    EXPECT_EQ(color, 0x12345678u) << "a missing string leaves the result alone";
    EXPECT_EQ(loader.GetCachedCount(), 0u);

    loader.LoadColor(module, 704, &color);
    EXPECT_EQ(color, 0u);
    EXPECT_EQ(loader.GetCachedCount(), 1u);

    // A cached colour answers again without another entry.
    color = 1;
    loader.LoadColor(module, 704, &color);
    EXPECT_EQ(color, 0u);
    EXPECT_EQ(loader.GetCachedCount(), 1u);
    EXPECT_EQ(DkhLoadColor(nullptr, 705), 0u);
}

TEST_F(Resources, StringsComeFromTheLanguageModule)
{
    registry.SetLanguage(L"tst");
    wchar_t text[64] = {};
    EXPECT_EQ(ZCMOD_LoadString(ZLR_STR_SUITE_NAME, text, 64), 8);
    EXPECT_STREQ(text, L"Test Hub");
    // The platform's truncation: capacity 5 gives four characters.
    EXPECT_EQ(ZCMOD_LoadString(ZLR_STR_SUITE_NAME, text, 5), 4);
    EXPECT_STREQ(text, L"Test");
    EXPECT_EQ(ZCMOD_LoadString(ZLR_STR_SUITE_NAME, nullptr, 5), 0);
    EXPECT_EQ(ZCMOD_LoadString(12345, text, 64), 0);
    EXPECT_NE(ZCMOD_GetCommonZLR(), nullptr);
}

TEST_F(Resources, FontsRegisterOnFirstUseEvenForAnEmptyPointer)
{
    registry.SetUserTheme(L"Test");
    HDC dc = CreateCompatibleDC(nullptr);
    auto faceAt = [dc](int height) {
        LOGFONTW font = {};
        font.lfHeight = height;
        wcscpy(font.lfFaceName, L"Zelvo Sans Wide");
        HFONT hfont = CreateFontIndirectW(&font);
        HGDIOBJ old = SelectObject(dc, hfont);
        wchar_t face[LF_FACESIZE] = {};
        GetTextFaceW(dc, LF_FACESIZE, face);
        SelectObject(dc, old);
        DeleteObject(hfont);
        return std::wstring(face);
    };
    // Heights differ between the two looks because the platform reuses a font made from an identical
    // description.
    EXPECT_NE(faceAt(21), L"Zelvo Sans Wide");
    DkhLoadFont(nullptr);
    EXPECT_EQ(faceAt(23), L"Zelvo Sans Wide");

    LOGFONTW font;
    memset(&font, 0x5A, sizeof(font));
    DkhLoadFont(&font);
    EXPECT_STREQ(font.lfFaceName, L"Zelvo Sans Wide");
    EXPECT_EQ(font.lfHeight, 0);
    EXPECT_EQ(font.lfWeight, 0);
    EXPECT_EQ(font.lfCharSet, DEFAULT_CHARSET);
    EXPECT_EQ(font.lfQuality, CLEARTYPE_QUALITY);
    EXPECT_EQ(font.lfOutPrecision, 0);
    EXPECT_EQ(font.lfClipPrecision, 0);
    EXPECT_EQ(font.lfPitchAndFamily, 0);
    EXPECT_EQ(font.lfItalic, 0);

    // The consumer's pattern: set height and weight, create, select: the suite's face is drawn.
    font.lfHeight = 17;
    font.lfWeight = FW_BOLD;
    HFONT hfont = CreateFontIndirectW(&font);
    HGDIOBJ old = SelectObject(dc, hfont);
    wchar_t face[LF_FACESIZE] = {};
    GetTextFaceW(dc, LF_FACESIZE, face);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, old);
    DeleteObject(hfont);
    DeleteDC(dc);
    EXPECT_STREQ(face, L"Zelvo Sans Wide");
    EXPECT_GT(metrics.tmHeight, 12);
    EXPECT_GE(metrics.tmWeight, FW_BOLD);
}

TEST_F(Resources, LegacyCreateFontIndirectIsAlwaysEmpty)
{
    LOGFONTW font;
    DkhLoadFont(&font);
    font.lfHeight = 12;
    EXPECT_EQ(ZCMOD_CreateFontIndirect(&font), nullptr);
    EXPECT_EQ(ZCMOD_CreateFontIndirect(nullptr), nullptr);
}

TEST_F(Resources, ModuleVersionOfADataFileModule)
{
    registry.SetUserTheme(L"Test");
    DWORD version[4] = {};
    ASSERT_TRUE(CUtils::GetModuleVersion(ZCMOD_GetCommonZGR(), version));
    EXPECT_EQ(version[0], 7u);
    EXPECT_EQ(version[1], 6u);
    EXPECT_EQ(version[2], 5u);
    EXPECT_EQ(version[3], 4u);
    EXPECT_TRUE(CUtils::GetModuleVersion(GetModuleHandleW(L"zcmod.dll"), version));
    EXPECT_EQ(version[0], 1u);
    EXPECT_FALSE(CUtils::GetModuleVersion(nullptr, version));
}

TEST_F(Resources, MissingModulesShowOneMessageOnlyFromEnsureCommonResources)
{
    MessageBoxWatcher watcher;
    registry.SetLanguage(L"tst");
    registry.SetUserTheme(L"Missing");

    // Everywhere else an empty module gives empty strings, black colours and no message.
    EXPECT_EQ(ZCMOD_GetCommonZGR(), nullptr);
    EXPECT_EQ(DkhLoadColor(nullptr, ZGR_COLOR_TEXT), 0u);
    LOGFONTW font;
    DkhLoadFont(&font);
    EXPECT_TRUE(watcher.Boxes().empty());

    EXPECT_EQ(EnsureCommonResources(), 0);
    ASSERT_EQ(watcher.Boxes().size(), 1u);
    EXPECT_EQ(watcher.Boxes()[0].caption, L"ZCMOD");
    EXPECT_EQ(watcher.Boxes()[0].text, L"ZCMOD is unable to load the resources.\nPlease reinstall Desk Hub.");
    EXPECT_TRUE(watcher.Boxes()[0].hasErrorIcon);

    registry.SetUserTheme(L"Test");
    EXPECT_EQ(EnsureCommonResources(), 1);
    EXPECT_EQ(watcher.Boxes().size(), 1u);
}

TEST_F(Resources, MissingLanguageAloneAlsoFailsEnsureCommonResources)
{
    MessageBoxWatcher watcher;
    registry.SetUserTheme(L"Test");
    wchar_t text[16] = L"unchanged";
    EXPECT_EQ(ZCMOD_LoadString(ZLR_STR_SUITE_NAME, text, 16), 0) << "the test program has no such string";
    EXPECT_TRUE(watcher.Boxes().empty());
    EXPECT_EQ(EnsureCommonResources(), 0);
    EXPECT_EQ(watcher.Boxes().size(), 1u);
}
