// CCSDWrapperImpl: what CCSDWrapper forwards to. It subclasses the watched application window, turns the
// selection object's notifications into listener calls and keeps the current device's five strings.
#pragma once

#include <windows.h>

#include <set>

#include "zcmod/CSDWrapper.h"

class CCSDWrapperImpl {
public:
    CCSDWrapperImpl();
    ~CCSDWrapperImpl();
    CCSDWrapperImpl(const CCSDWrapperImpl&) = delete;
    CCSDWrapperImpl& operator=(const CCSDWrapperImpl&) = delete;

    long Initialize(HWND window);
    void Terminate();
    void AddListener(CCSDWrapperListener* listener);
    void RemoveListener(CCSDWrapperListener* listener);
    void SetSelectionMode(unsigned long mode) { m_selectionMode = mode; }
    void SetSupportedDevices(const wchar_t* filter);
    void SetHideUnsupported(int hide) { m_hideUnsupported = hide; }
    long SelectDevice(int silent);
    long SelectDevice(unsigned long deviceId, int hide);
    int GetSupportedDeviceCount();
    int GetDeviceCount() const { return m_deviceCount; }

    static constexpr size_t kTextSize = 260;

    HWND m_window;
    std::set<CCSDWrapperListener*> m_listeners;
    wchar_t m_manufacturer[kTextSize];
    wchar_t m_model[kTextSize];
    wchar_t m_friendlyName[kTextSize];
    wchar_t m_connectionName[kTextSize];
    wchar_t m_serial[kTextSize];
    UINT m_notifyMessage;
    unsigned long m_selectionMode;
    wchar_t m_supportedDevices[1024];
    int m_hideUnsupported;
    int m_deviceCount;

private:
    static LRESULT CALLBACK WatchProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    int HandleNotification(WPARAM count, LPARAM change);
    long ReadSelectedDevice();
    long ReadDevice(unsigned long id);
    long SelectSilentlyOrDetach();
    void ClearDevice();
    void CallAttached();
    void CallUnsupported();
    void CallDetached();

    bool m_haveSelection;  // holds a reference on the process's selection object
};
