// CTitleBarHelper: the window title in the suite's form.
#include "zcmod/TitleBarHelper.h"

#include <cwchar>

#include "device/DeviceSelection.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"

namespace {

constexpr size_t kField = 260;
constexpr size_t kTitle = 1024;

void LoadField(wchar_t (&field)[kField], UINT id)
{
    field[0] = 0;
    if (ZCMOD_LoadString(id, field, static_cast<int>(kField)) <= 0)
        field[0] = 0;
}

// Copies `text` if it fits with its terminator; a longer or missing text is refused and the field kept.
bool SetField(wchar_t (&field)[kField], const wchar_t* text)
{
    if (!text)
        return false;
    const size_t length = wcsnlen(text, kField);
    if (length >= kField)
        return false;
    wmemcpy(field, text, length + 1);
    return true;
}

void Append(wchar_t* title, size_t& used, const wchar_t* text)
{
    while (*text && used + 1 < kTitle)
        title[used++] = *text++;
    title[used] = 0;
}

// The attached format with the device name put in: only the first "%s" is replaced, any other '%' is
// copied as it stands, so that a translation can't make the formatting read past its argument.
void FormatAttached(const wchar_t* format, const wchar_t* name, wchar_t* out, size_t capacity)
{
    size_t used = 0;
    bool placed = false;
    for (const wchar_t* c = format; *c && used + 1 < capacity; ++c) {
        if (!placed && c[0] == L'%' && c[1] == L's') {
            for (const wchar_t* n = name; *n && used + 1 < capacity; ++n)
                out[used++] = *n;
            placed = true;
            ++c;
        } else if (c[0] == L'%' && c[1] == L'%') {
            out[used++] = L'%';
            ++c;
        } else {
            out[used++] = *c;
        }
    }
    out[used] = 0;
}

}  // namespace

CTitleBarHelper::CTitleBarHelper()
    : m_nDeviceState(0), m_hWnd(nullptr), m_bShowFilename(0), m_bShowApplicationName(1), m_bShowDeviceStatus(1)
{
    wcscpy(m_szSeparator, L" - ");
    m_szFilename[0] = m_szApplicationName[0] = m_szDeviceName[0] = m_szDeviceManufacturer[0] = 0;
    LoadField(m_szAttachedFormat, ZLR_STR_TITLE_ATTACHED);
    LoadField(m_szNoDevice, ZLR_STR_TITLE_NO_DEVICE);
    LoadField(m_szUnsupported, ZLR_STR_TITLE_UNSUPPORTED);
}

CTitleBarHelper::~CTitleBarHelper() {}

void CTitleBarHelper::OnDeviceAttached(const wchar_t* manufacturer, const wchar_t*, const wchar_t* friendlyName,
                                       const wchar_t*, const wchar_t*)
{
    if (!SetField(m_szDeviceName, friendlyName ? friendlyName : L""))
        m_szDeviceName[0] = 0;
    if (!SetField(m_szDeviceManufacturer, manufacturer ? manufacturer : L""))
        m_szDeviceManufacturer[0] = 0;
    m_nDeviceState = 2;
    Update();
}

void CTitleBarHelper::OnUnsupportedDeviceAttached()
{
    m_nDeviceState = 1;
    Update();
}

void CTitleBarHelper::OnDeviceDetached(const wchar_t*)
{
    m_nDeviceState = 0;
    m_szDeviceName[0] = 0;  // the manufacturer stays
    Update();
}

int CTitleBarHelper::SetWindow(HWND window)
{
    if (!window || !IsWindow(window))
        return 0;
    m_hWnd = window;
    return 1;
}

void CTitleBarHelper::ShowFilename(int show)
{
    m_bShowFilename = show;
}

void CTitleBarHelper::ShowApplicationName(int show)
{
    m_bShowApplicationName = show;
}

void CTitleBarHelper::ShowDeviceStatus(int show)
{
    m_bShowDeviceStatus = show;
}

void CTitleBarHelper::SetSeparator(const wchar_t* separator, int update)
{
    SetField(m_szSeparator, separator);
    if (update)
        Update();
}

void CTitleBarHelper::SetFilename(const wchar_t* fileName, int update)
{
    SetField(m_szFilename, fileName);
    if (update)
        Update();
}

void CTitleBarHelper::SetApplicationName(const wchar_t* applicationName, int update)
{
    SetField(m_szApplicationName, applicationName);
    if (update)
        Update();
}

void CTitleBarHelper::Update()
{
    if (!m_hWnd || !IsWindow(m_hWnd))
        return;
    wchar_t title[kTitle] = {};
    size_t used = 0;
    if (m_bShowFilename)
        Append(title, used, m_szFilename);
    if (m_bShowApplicationName) {
        if (used)
            Append(title, used, m_szSeparator);
        Append(title, used, m_szApplicationName);
    }
    if (m_bShowDeviceStatus) {
        if (used)
            Append(title, used, m_szSeparator);
        if (m_nDeviceState == 2) {
            wchar_t status[kField * 2];
            FormatAttached(m_szAttachedFormat, m_szDeviceName, status, kField * 2);
            Append(title, used, status);
        } else if (m_nDeviceState == 1) {
            Append(title, used, m_szUnsupported);
        } else {
            const zcmod::device::DeviceSelection* selection = zcmod::device::DeviceSelection::Current();
            if (selection && selection->LastSupportedCount() >= 2) {
                wchar_t choose[kField] = {};
                LoadField(choose, ZLR_STR_TITLE_CHOOSE);
                Append(title, used, choose);
            } else {
                Append(title, used, m_szNoDevice);
            }
        }
    }
    SetWindowTextW(m_hWnd, title);
}
