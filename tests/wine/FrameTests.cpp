// The library frame: process-wide state, start and stop.
#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "zcmod/zcmod.h"

using namespace zcmod_test;

TEST(VuikLib, StateBeforeInitIsNeutral)
{
    // Nothing in the library calls Init for the client: a fresh process has scale 1 and no instance.
    EXPECT_EQ(CVuikLib::GetScaleX(), 1.0);
    EXPECT_EQ(CVuikLib::GetScaleY(), 1.0);
    EXPECT_EQ(CVuikLib::IsLayoutRTL(), 0);
    EXPECT_EQ(CVuikLib::GetInstance(), nullptr);
    EXPECT_EQ(CVuikLib::GetResourceInstance(), nullptr);
    EXPECT_FALSE(CVuikLib::GetAutoScale());
}

TEST(VuikLib, InitStoresInstancesAndScaleIsExactAt96Dpi)
{
    HINSTANCE app = GetModuleHandleW(nullptr);
    HINSTANCE res = GetModuleHandleW(L"zcmod.dll");
    CVuikLib::Init(app, res);
    EXPECT_EQ(CVuikLib::GetInstance(), app);
    EXPECT_EQ(CVuikLib::GetResourceInstance(), res);
    HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    ASSERT_EQ(dpi, 96) << "the test prefix runs at 96 dots per inch";
    EXPECT_EQ(CVuikLib::GetScaleX(), 1.0);
    EXPECT_EQ(CVuikLib::GetScaleY(), 1.0);

    // Init may be called again; it repeats everything.
    CVuikLib::Init(nullptr, nullptr);
    EXPECT_EQ(CVuikLib::GetInstance(), nullptr);
    EXPECT_EQ(CVuikLib::GetScaleX(), 1.0);
}

TEST(VuikLib, OnlyLayoutOneIsRightToLeft)
{
    EXPECT_EQ(CVuikLib::SetLayout(1), 0u);
    EXPECT_EQ(CVuikLib::IsLayoutRTL(), 1);
    EXPECT_EQ(CVuikLib::SetLayout(2), 1u);
    EXPECT_EQ(CVuikLib::IsLayoutRTL(), 0);
    EXPECT_EQ(CVuikLib::GetLayout(), 2u);
    EXPECT_EQ(CVuikLib::SetLayout(0), 2u);
    CVuikLib::SetAutoScale(true);
    EXPECT_TRUE(CVuikLib::GetAutoScale());
    CVuikLib::SetAutoScale(false);
}

namespace {

const wchar_t kWineVersionKey[] = L"Software\\Wine\\AppDefaults\\zcmod_probe.exe";

std::string ProbeOs(const wchar_t* wineVersion)
{
    SetString(HKEY_CURRENT_USER, kWineVersionKey, L"Version", wineVersion);
    ProcessResult r = RunProcess(BinDir() + L"\\probe\\zcmod_probe.exe", L"os", BinDir());
    DeleteTree(HKEY_CURRENT_USER, kWineVersionKey);
    EXPECT_EQ(r.exitCode, 0u) << r.output;
    return r.output;
}

}  // namespace

TEST(VuikLib, WindowsXPFlagTestsMajorAndMinorSeparately)
{
    // 5.1 and 6.1 count; 5.0 and 6.0 do not, although 6.0 is the later version.
    EXPECT_NE(ProbeOs(L"win2k").find("version=5.0 9x=0 xp=0"), std::string::npos);
    EXPECT_NE(ProbeOs(L"winxp64").find("version=5.2 9x=0 xp=1"), std::string::npos);
    EXPECT_NE(ProbeOs(L"vista").find("version=6.0 9x=0 xp=0"), std::string::npos);
    EXPECT_NE(ProbeOs(L"win7").find("version=6.1 9x=0 xp=1"), std::string::npos);
}

TEST(VuikLib, ScaleAwayFrom96DpiComesFromTheSystemFontCell)
{
    // At 120 dots per inch the scale is the system font's width / 7 and height / 16, not 1.25.
    const wchar_t kDesktop[] = L"Control Panel\\Desktop";
    SetDword(HKEY_CURRENT_USER, kDesktop, L"LogPixels", 120);
    ProcessResult r = RunProcess(BinDir() + L"\\probe\\zcmod_probe.exe", L"scale", BinDir());
    DeleteValue(HKEY_CURRENT_USER, kDesktop, L"LogPixels");
    ASSERT_EQ(r.exitCode, 0u) << r.output;
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
    EXPECT_NE(state.m_pResHandler, nullptr);
    EXPECT_NE(state.m_pColorLoader, nullptr);
    EXPECT_NE(state.m_pDialogMap, nullptr);
    EXPECT_NE(state.m_pDataRoot, nullptr);

    ZCMOD_Finalize();
    EXPECT_EQ(state.m_pResHandler, nullptr);
    EXPECT_EQ(state.m_pColorLoader, nullptr);
    EXPECT_EQ(state.m_pDialogMap, nullptr);
    EXPECT_EQ(state.m_pDataRoot, nullptr);
    for (CNBitmapUtil* pool : state.m_pBitmapPool)
        EXPECT_EQ(pool, nullptr);

    // The second pass (and the one at process exit) finds nothing to do.
    ZCMOD_Finalize();
    EXPECT_EQ(state.m_pResHandler, nullptr);
    // What follows Finalize fails quietly instead of following an empty pointer.
    EXPECT_EQ(DkhLoadColor(nullptr, ZGR_COLOR_TEXT), 0u);
    EXPECT_EQ(ZCMOD_GetCommonZGR(), nullptr);
}

TEST(CommonModuleState, ResetColorLoaderReplacesOnlyAnExistingLoader)
{
    CCommonModuleState& state = CCommonModuleState::Get();
    CStrColorLoader* before = state.m_pColorLoader;
    ASSERT_NE(before, nullptr);
    state.ResetColorLoader();
    EXPECT_NE(state.m_pColorLoader, nullptr);
    EXPECT_EQ(state.m_pColorLoader->GetCachedCount(), 0u);

    delete state.m_pColorLoader;
    state.m_pColorLoader = nullptr;
    state.ResetColorLoader();
    EXPECT_EQ(state.m_pColorLoader, nullptr);
}
