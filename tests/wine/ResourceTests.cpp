// Language and theme resources: finding the modules from the settings, strings, colours, fonts, and the one
// message the library shows of its own.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

namespace {

// The name of the module's theme, as a test compares modules by identity and not by handle.
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

TEST_F(Resources, LanguageModuleComesFromCurrentLanguageOnce)
{
    CResHandler handler;
    EXPECT_EQ(handler.GetLanguageModule(), nullptr);
    EXPECT_EQ(handler.GetLanguageName(), nullptr);
    registry.SetLanguage(L"xyz");  // a code without a file
    EXPECT_EQ(handler.GetLanguageModule(), nullptr);
    EXPECT_STREQ(handler.GetLanguageName(), L"xyz");

    registry.SetLanguage(L"tst");
    HMODULE first = handler.GetLanguageModule();
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(handler.GetLanguageName(), L"tst");  // that it is that language's module, the strings' test shows
    // The language is chosen once per process.
    registry.SetLanguage(L"eng");
    EXPECT_EQ(handler.GetLanguageModule(), first);
    EXPECT_STREQ(handler.GetLanguageName(), L"tst");
}

TEST_F(Resources, ThemeSettingsAndTheirCaseRules)
{
    // The installation's theme when the user has none; the user's wins.
    registry.SetMachineTheme(L"Other");
    CResHandler handler;
    EXPECT_EQ(ThemeName(handler.GetGraphicsModule()), L"Other");
    EXPECT_FALSE(handler.IsCurrentTheme()) << "no user theme is set";
    registry.SetUserTheme(L"Test");
    HMODULE module = handler.GetGraphicsModule();
    EXPECT_EQ(ThemeName(module), L"Test");
    EXPECT_TRUE(handler.IsCurrentTheme());

    // A name that differs in case only causes no reload, though IsCurrentTheme compares with case.
    registry.SetUserTheme(L"TEST");
    EXPECT_EQ(handler.GetGraphicsModule(), module);
    EXPECT_FALSE(handler.IsCurrentTheme());
    // No theme setting at all keeps what is loaded.
    DeleteValue(HKEY_LOCAL_MACHINE, kMachineSuiteKey, L"Current Resource");
    DeleteValue(HKEY_CURRENT_USER, kUserSuiteKey, L"Theme");
    EXPECT_EQ(handler.GetGraphicsModule(), module);
}

TEST_F(Resources, ModulePathsAndSuiteValuesStayInsideTheirBuffers)
{
    CResHandler handler;
    wchar_t path[MAX_PATH];
    HMODULE module = handler.LoadResourceModule(L"\\Resource\\", L"Test", L".zgr", path);
    ASSERT_NE(module, nullptr);
    FreeLibrary(module);
    EXPECT_EQ(std::wstring(path), BinDir() + L"\\Resource\\\\ZCMOD_Test.zgr");
    module = handler.LoadResourceModule(L"\\Lang\\", L"tst", L"zlr", path);  // a dot is added where missing
    ASSERT_NE(module, nullptr);
    FreeLibrary(module);
    EXPECT_EQ(std::wstring(path), BinDir() + L"\\Lang\\\\ZCMOD_tst.zlr");
    EXPECT_EQ(handler.LoadResourceModule(L"\\Lang\\", L"", L"zlr", path), nullptr);
    EXPECT_STREQ(path, L"");
    EXPECT_EQ(handler.LoadResourceModule(L"\\Lang\\", L"tst", nullptr, path), nullptr);
    wchar_t tiny[8];  // a path that doesn't fit its buffer is refused, not cut short
    EXPECT_EQ(handler.LoadResourceModule(L"\\Lang\\", L"tst", L"zlr", tiny, 8), nullptr);

    // 129 characters and a terminator fill the 260 bytes the callers pass; 130 don't fit, terminated or not.
    wchar_t buffer[300];
    registry.SetUserTheme(std::wstring(129, L'a'));
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 1);
    EXPECT_EQ(wcslen(buffer), 129u);
    registry.SetUserTheme(std::wstring(130, L'a'));
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 0);
    SetValue(HKEY_CURRENT_USER, kUserSuiteKey, L"Theme", REG_SZ, std::wstring(130, L'b').data(), 260);
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 0);
    // Nothing is written past the capacity.
    registry.SetUserTheme(L"0123456789012345678901234567890123456789");
    wmemset(buffer, 0xCCCC, 300);
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 20), 0);
    EXPECT_EQ(std::wstring(buffer + 10, 290), std::wstring(290, 0xCCCC));
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
    registry.SetStandIn(L"UIManufacturer", L"Acme");
    SetString(HKEY_CURRENT_USER, L"Software\\Acme\\DeskHub", L"Theme", L"Other");
    SetString(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Acme\\DeskHub", L"Current Language", L"tst");
    CResHandler handler;
    EXPECT_EQ(ThemeName(handler.GetGraphicsModule()), L"Other");
    EXPECT_NE(handler.GetLanguageModule(), nullptr);
    DeleteTree(HKEY_CURRENT_USER, L"Software\\Acme");
    DeleteTree(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\Acme");
    // An empty manufacturer name gives up.
    registry.SetStandIn(L"UIManufacturer", L"");
    wchar_t buffer[130];
    EXPECT_EQ(handler.ReadSuiteValue(HKEY_CURRENT_USER, L"Theme", buffer, 260), 0);
}

// Strings come from the language module, the version and the colours from the theme's; only colour strings that
// are found are cached.
TEST_F(Resources, StringsVersionAndColoursComeFromTheModules)
{
    registry.SetLanguage(L"tst");
    wchar_t text[64] = {};
    EXPECT_EQ(ZCMOD_LoadString(ZLR_STR_SUITE_NAME, text, 64), 8);
    EXPECT_STREQ(text, L"Test Hub");
    EXPECT_EQ(ZCMOD_LoadString(ZLR_STR_SUITE_NAME, nullptr, 5), 0);
    EXPECT_EQ(ZCMOD_LoadString(12345, text, 64), 0);

    registry.SetUserTheme(L"Test");
    HMODULE module = ZCMOD_GetCommonZGR();
    DWORD version[4] = {};
    ASSERT_TRUE(CUtils::GetModuleVersion(module, version));
    EXPECT_EQ(std::vector<DWORD>(version, version + 4), (std::vector<DWORD>{7, 6, 5, 4}));
    EXPECT_FALSE(CUtils::GetModuleVersion(nullptr, version));
    // The parse rules are the native colour string test's; the string is read through 20 characters.
    EXPECT_EQ(DkhLoadColor(nullptr, 709), RGB(100, 100, 100));
    EXPECT_EQ(DkhLoadColor(module, ZGR_COLOR_TEXT), RGB(10, 20, 30));

    // A missing string leaves the result alone and caches nothing; a string without digits is 0, cached.
    CStrColorLoader loader;
    COLORREF color = 0x12345678;
    loader.LoadColor(module, 705, &color);
    EXPECT_EQ(color, 0x12345678u);
    EXPECT_EQ(loader.GetCachedCount(), 0u);
    for (int pass = 0; pass < 2; ++pass) {  // the second answer comes from the cache
        color = 1;
        loader.LoadColor(module, 704, &color);
        EXPECT_EQ(color, 0u);
        EXPECT_EQ(loader.GetCachedCount(), 1u);
    }
    EXPECT_EQ(DkhLoadColor(nullptr, 705), 0u);

    // A theme change reloads the module and drops the cached colours.
    EXPECT_GT(CCommonModuleState::Get().m_pColorLoader->GetCachedCount(), 0u);
    registry.SetUserTheme(L"Other");
    EXPECT_EQ(ThemeName(ZCMOD_GetCommonZGR()), L"Other");
    EXPECT_EQ(CCommonModuleState::Get().m_pColorLoader->GetCachedCount(), 0u);
    EXPECT_EQ(DkhLoadColor(nullptr, 700), RGB(4, 5, 6));
}

TEST_F(Resources, FontsRegisterOnFirstUseEvenForAnEmptyPointer)
{
    registry.SetUserTheme(L"Test");
    HDC dc = CreateCompatibleDC(nullptr);
    auto faceOf = [dc](const LOGFONTW& font) {
        HFONT hfont = CreateFontIndirectW(&font);
        HGDIOBJ old = SelectObject(dc, hfont);
        wchar_t face[LF_FACESIZE] = {};
        GetTextFaceW(dc, LF_FACESIZE, face);
        DeleteObject(SelectObject(dc, old));
        return std::wstring(face);
    };
    // Heights differ between the two looks because the platform reuses a font made from an identical description.
    LOGFONTW font = {};
    wcscpy(font.lfFaceName, L"Zelvo Sans Wide");
    font.lfHeight = 21;
    EXPECT_NE(faceOf(font), L"Zelvo Sans Wide");
    DkhLoadFont(nullptr);
    font.lfHeight = 23;
    EXPECT_EQ(faceOf(font), L"Zelvo Sans Wide");
    DeleteDC(dc);

    // The description: the face, DEFAULT_CHARSET and CLEARTYPE_QUALITY, all else cleared (height and weight too).
    memset(&font, 0x5A, sizeof(font));
    DkhLoadFont(&font);
    LOGFONTW expected = {};
    wcscpy(expected.lfFaceName, L"Zelvo Sans Wide");
    expected.lfCharSet = DEFAULT_CHARSET;
    expected.lfQuality = CLEARTYPE_QUALITY;
    EXPECT_EQ(memcmp(&font, &expected, sizeof(font)), 0);
    EXPECT_EQ(ZCMOD_CreateFontIndirect(&font), nullptr);
    EXPECT_EQ(ZCMOD_CreateFontIndirect(nullptr), nullptr);
}

TEST_F(Resources, MissingModulesShowOneMessageOnlyFromEnsureCommonResources)
{
    MessageBoxCloser closer;
    registry.SetUserTheme(L"Test");
    wchar_t text[16] = L"unchanged";
    EXPECT_EQ(ZCMOD_LoadString(ZLR_STR_SUITE_NAME, text, 16), 0) << "no language: the test program's strings";
    EXPECT_EQ(EnsureCommonResources(), 0) << "the language module alone is missing";
    registry.SetLanguage(L"tst");
    registry.SetUserTheme(L"Missing");
    // A theme without a file leaves no module: the loaded one goes, with no fall-back. Everywhere else an empty
    // module gives empty strings, black colours and no message; the next call tries the theme again.
    EXPECT_EQ(ZCMOD_GetCommonZGR(), nullptr);
    EXPECT_EQ(DkhLoadColor(nullptr, ZGR_COLOR_TEXT), 0u);
    LOGFONTW font;
    DkhLoadFont(&font);
    EXPECT_EQ(closer.closed, 1);
    EXPECT_EQ(EnsureCommonResources(), 0);
    registry.SetUserTheme(L"Test");
    EXPECT_EQ(EnsureCommonResources(), 1);
    ASSERT_EQ(closer.boxes.size(), 2u);
    for (const MessageBoxCloser::Box& box : closer.boxes) {
        EXPECT_EQ(box.caption, L"ZCMOD");
        EXPECT_EQ(box.text, L"ZCMOD is unable to load the resources.\nPlease reinstall Desk Hub.");
        EXPECT_TRUE(box.icon) << "MB_ICONERROR";
    }
}
