#include "zcmod/VuikLib.h"

#include "frame/Handles.h"

HINSTANCE CVuikLib::m_hInst = nullptr;
HINSTANCE CVuikLib::m_hInstRes = nullptr;
bool CVuikLib::m_IsWindows9x = false;
bool CVuikLib::m_IsWindowsXP = false;
bool CVuikLib::m_IsAutoScale = false;
double CVuikLib::m_ScaleX = 1.0;
double CVuikLib::m_ScaleY = 1.0;
DWORD CVuikLib::m_dwLayout = 0;

void CVuikLib::Init(HINSTANCE hInst, HINSTANCE hInstRes)
{
    m_hInst = hInst;
    m_hInstRes = hInstRes;
    CheckOS();

    zcmod::WindowDC screen(nullptr);
    const int dpiX = GetDeviceCaps(screen.Get(), LOGPIXELSX);
    const int dpiY = GetDeviceCaps(screen.Get(), LOGPIXELSY);
    m_ScaleX = dpiX / 96.0;
    m_ScaleY = dpiY / 96.0;
    if (dpiX != 96) {
        // The design's reference font is 7 pixels wide and 16 high: scale by the system font's cell.
        LOGFONTW font = {};
        GetObjectW(GetStockObject(SYSTEM_FONT), sizeof(font), &font);
        m_ScaleX = font.lfWidth / 7.0;
        m_ScaleY = font.lfHeight * 0.0625;
    }
}

void CVuikLib::CheckOS()
{
    OSVERSIONINFOW info = {};
    info.dwOSVersionInfoSize = sizeof(info);
#if defined(_MSC_VER)
#pragma warning(suppress : 4996)  // GetVersionExW is what tells the flags apart, deprecation or not
#endif
    GetVersionExW(&info);
    m_IsWindows9x = info.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS;
    // Major and minor are tested separately, so 5.1 and 6.1 count and 6.0 and 10.0 do not.
    m_IsWindowsXP = info.dwMajorVersion >= 5 && info.dwMinorVersion >= 1;
}

HINSTANCE CVuikLib::GetInstance() { return m_hInst; }
void CVuikLib::SetInstance(HINSTANCE hInst) { m_hInst = hInst; }
HINSTANCE CVuikLib::GetResourceInstance() { return m_hInstRes; }
void CVuikLib::SetResourceInstance(HINSTANCE hInstRes) { m_hInstRes = hInstRes; }
bool CVuikLib::IsWindows9x() { return m_IsWindows9x; }
bool CVuikLib::IsWindowsXP() { return m_IsWindowsXP; }
void CVuikLib::SetAutoScale(bool autoScale) { m_IsAutoScale = autoScale; }
bool CVuikLib::GetAutoScale() { return m_IsAutoScale; }
double CVuikLib::GetScaleX() { return m_ScaleX; }
double CVuikLib::GetScaleY() { return m_ScaleY; }

DWORD CVuikLib::SetLayout(DWORD layout)
{
    const DWORD previous = m_dwLayout;
    m_dwLayout = layout;
    return previous;
}

DWORD CVuikLib::GetLayout() { return m_dwLayout; }
int CVuikLib::IsLayoutRTL() { return m_dwLayout == LAYOUT_RTL ? 1 : 0; }
