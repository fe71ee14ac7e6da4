// The library frame: process-wide state, start and stop.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

TEST(VuikLib, StateBeforeInitIsNeutralAndInitIsExactAt96Dpi)
{
    // Nothing in the library calls Init for the client: a fresh process has scale 1 and no instance.
    EXPECT_EQ(CVuikLib::GetScaleX(), 1.0);
    EXPECT_EQ(CVuikLib::GetScaleY(), 1.0);
    EXPECT_EQ(CVuikLib::IsLayoutRTL(), 0);
    EXPECT_EQ(CVuikLib::GetInstance(), nullptr);

    HINSTANCE app = GetModuleHandleW(nullptr);
    HINSTANCE res = GetModuleHandleW(L"zcmod.dll");
    CVuikLib::Init(app, res);
    EXPECT_EQ(CVuikLib::GetInstance(), app);
    EXPECT_EQ(CVuikLib::GetResourceInstance(), res);
    HDC screen = GetDC(nullptr);
    ASSERT_EQ(GetDeviceCaps(screen, LOGPIXELSX), 96) << "the test prefix runs at 96 dots per inch";
    ReleaseDC(nullptr, screen);
    EXPECT_EQ(CVuikLib::GetScaleX(), 1.0);
    EXPECT_EQ(CVuikLib::GetScaleY(), 1.0);

    // Only the layout 1 is right-to-left; SetLayout answers the former value.
    EXPECT_EQ(CVuikLib::SetLayout(1), 0u);
    EXPECT_EQ(CVuikLib::IsLayoutRTL(), 1);
    EXPECT_EQ(CVuikLib::SetLayout(2), 1u);
    EXPECT_EQ(CVuikLib::IsLayoutRTL(), 0);
}

TEST(VuikLib, WindowsXPFlagAndTheScaleAwayFrom96Dpi)
{
    // A probe process of its own for each Windows version: 5.1 and 6.1 count as XP; 5.0 and 6.0 do not,
    // although 6.0 is the later version.
    const wchar_t kWineVersionKey[] = L"Software\\Wine\\AppDefaults\\zcmod_probe.exe";
    const std::wstring probe = BinDir() + L"\\probe\\zcmod_probe.exe";
    const struct {
        const wchar_t* wine;
        const char* expected;
    } versions[] = {
        {L"win2k", "version=5.0 9x=0 xp=0"},
        {L"winxp64", "version=5.2 9x=0 xp=1"},
        {L"vista", "version=6.0 9x=0 xp=0"},
        {L"win7", "version=6.1 9x=0 xp=1"},
    };
    for (const auto& v : versions) {
        SetString(HKEY_CURRENT_USER, kWineVersionKey, L"Version", v.wine);
        const ProcessResult r = RunProcess(probe, L"os", BinDir());
        EXPECT_NE(r.output.find(v.expected), std::string::npos) << r.output;
    }
    DeleteTree(HKEY_CURRENT_USER, kWineVersionKey);

    // At 120 dots per inch the scale is the system font's width / 7 and height / 16, not 1.25.
    const wchar_t kDesktop[] = L"Control Panel\\Desktop";
    SetDword(HKEY_CURRENT_USER, kDesktop, L"LogPixels", 120);
    const ProcessResult r = RunProcess(probe, L"scale", BinDir());
    DeleteValue(HKEY_CURRENT_USER, kDesktop, L"LogPixels");
    int dpi = 0;
    long width = 0, height = 0;
    double sx = 0, sy = 0;
    ASSERT_EQ(sscanf(r.output.c_str(), "dpi=%d font=%ldx%ld scale=%lf,%lf", &dpi, &width, &height, &sx, &sy), 5)
        << r.output;
    ASSERT_EQ(dpi, 120) << r.output;
    EXPECT_DOUBLE_EQ(sx, width / 7.0);
    EXPECT_DOUBLE_EQ(sy, height * 0.0625);
}

TEST(CommonModuleState, IsBuiltAtLoadAndFinalizeIsSafeTwice)
{
    CCommonModuleState& state = CCommonModuleState::Get();
    ASSERT_NE(state.m_pResHandler, nullptr);
    EXPECT_NE(state.m_pDialogMap, nullptr);
    EXPECT_NE(state.m_pDataRoot, nullptr);
    for (CNBitmapUtil* pool : state.m_pBitmapPool) {
        ASSERT_NE(pool, nullptr);
        EXPECT_EQ(pool->GetNumberOfBitmaps(BT_IMAGE), 0);
    }
    // ResetColorLoader replaces the loader by an empty one, but only if one exists.
    ASSERT_NE(state.m_pColorLoader, nullptr);
    state.ResetColorLoader();
    ASSERT_NE(state.m_pColorLoader, nullptr);
    EXPECT_EQ(state.m_pColorLoader->GetCachedCount(), 0u);

    // Finalize twice: the second pass (and the one at process exit) finds nothing to do.
    for (int pass = 0; pass < 2; ++pass) {
        ZCMOD_Finalize();
        EXPECT_EQ(state.m_pResHandler, nullptr);
        EXPECT_EQ(state.m_pColorLoader, nullptr);
        EXPECT_EQ(state.m_pDialogMap, nullptr);
        EXPECT_EQ(state.m_pDataRoot, nullptr);
        for (CNBitmapUtil* pool : state.m_pBitmapPool)
            EXPECT_EQ(pool, nullptr);
    }
    state.ResetColorLoader();
    EXPECT_EQ(state.m_pColorLoader, nullptr);
    // What follows Finalize fails quietly instead of following an empty pointer.
    EXPECT_EQ(DkhLoadColor(nullptr, ZGR_COLOR_TEXT), 0u);
    EXPECT_EQ(ZCMOD_GetCommonZGR(), nullptr);
}
