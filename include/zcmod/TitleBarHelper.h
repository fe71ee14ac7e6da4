// CTitleBarHelper keeps a window's title in the suite's form: file name, application name and the state of
// the phone, joined by a separator ("Report.txt - Editor - Connected to My Z100"). Added as a listener of a
// CCSDWrapper, it follows the phone by itself.
#pragma once

#include <windows.h>

#include "zcmod/CSDWrapper.h"
#include "zcmod/Export.h"

class ZCMOD_API CTitleBarHelper : public CCSDWrapperListener {
public:
    // Reads the three status texts from the language module.
    CTitleBarHelper();
    virtual ~CTitleBarHelper();

    void OnDeviceAttached(const wchar_t* manufacturer, const wchar_t* model, const wchar_t* friendlyName,
                          const wchar_t* connectionName, const wchar_t* serial) override;
    void OnUnsupportedDeviceAttached() override;
    void OnDeviceDetached(const wchar_t* manufacturer) override;

    // 1 and the window kept if it exists; else 0 and the old one stays.
    int SetWindow(HWND window);
    void ShowFilename(int show);
    void ShowApplicationName(int show);
    void ShowDeviceStatus(int show);
    // Copies the text (at most 259 characters; a longer one is refused and the old text kept) and updates
    // the title if `update` is non-zero.
    void SetSeparator(const wchar_t* separator, int update);
    void SetFilename(const wchar_t* fileName, int update);
    void SetApplicationName(const wchar_t* applicationName, int update);
    // Writes the title.
    void Update();

    // 0 no device, 1 unsupported device, 2 device attached.
    int m_nDeviceState;
    HWND m_hWnd;
    int m_bShowFilename;
    int m_bShowApplicationName;
    int m_bShowDeviceStatus;
    wchar_t m_szSeparator[260];
    wchar_t m_szFilename[260];
    wchar_t m_szApplicationName[260];
    wchar_t m_szAttachedFormat[260];
    wchar_t m_szNoDevice[260];
    wchar_t m_szUnsupported[260];
    wchar_t m_szDeviceName[260];
    wchar_t m_szDeviceManufacturer[260];
};
