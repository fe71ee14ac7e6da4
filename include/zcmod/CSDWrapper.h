// Device selection: CCSDWrapper keeps an application window informed of the phone it works with. It watches
// the connected devices, picks one by itself when the choice is clear, asks the user through the device
// selection window when it is not, and tells its listeners.
//
//   class CMyWindow : public CCSDWrapperListener { ... };   // or a CTitleBarHelper
//   CCSDWrapper wrapper;
//   wrapper.SetSupportedDevices(L"Object=Contacts");       // the capability filter (DeviceCapabilities.h)
//   wrapper.AddListener(&listener);
//   if (wrapper.Initialize(hwndMain) == 0)
//       wrapper.SelectDevice(1);                            // silently, if one phone is there
//   ...
//   wrapper.SelectDevice(0);                                // the user chooses in the selection window
//   wrapper.Terminate();
//
// Everything runs on the application window's thread; the service's notifications reach it as the posted
// registered message "Desk Hub CSD notify message.".
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

// The listener of device changes. The strings belong to the caller and are valid only during the call.
class ZCMOD_API CCSDWrapperListener {
public:
    virtual void OnDeviceAttached(const wchar_t* manufacturer, const wchar_t* model, const wchar_t* friendlyName,
                                  const wchar_t* connectionName, const wchar_t* serial) = 0;
    virtual void OnUnsupportedDeviceAttached() = 0;
    virtual void OnDeviceDetached(const wchar_t* manufacturer) = 0;
};

class CCSDWrapperImpl;

// Results: 0 success; 0x80004003 not initialised; 0x80070057 null window; 0x80004005 the message, the
// selection object or the window failed; -14 no filter text, -5 no selection, -6 device not supported,
// -13 graphics resources missing, -11 language resources missing.
class ZCMOD_API CCSDWrapper {
public:
    CCSDWrapper();
    virtual ~CCSDWrapper();
    CCSDWrapper(const CCSDWrapper&) = delete;
    CCSDWrapper& operator=(const CCSDWrapper&) = delete;

    // Begins watching `window`, a top-level window of this thread not watched yet.
    long Initialize(HWND window);
    // Stops watching; the window's procedure is put back.
    void Terminate();

    // Listeners are not owned and are called in the order of their addresses; adding twice keeps one.
    void AddListener(CCSDWrapperListener* listener);
    void RemoveListener(CCSDWrapperListener* listener);

    // Stored; they take effect at the next selection. The filter text is copied into 1024 characters.
    void SetSelectionMode(unsigned long mode);
    void SetSupportedDevices(const wchar_t* filter);
    void SetHideUnsupported(int hide);

    // silent != 0: takes the single device that passes the filter; 0: shows the selection window modally.
    long SelectDevice(int silent);
    // Takes the device of this connection id if its capabilities pass the filter.
    long SelectDevice(unsigned long deviceId, int hide);

    // Devices that pass the filter, or -1 on failure.
    int GetSupportedDeviceCount();
    // The device count of the last notification.
    int GetDeviceCount();

    // The registered message of the notifications, "Desk Hub CSD notify message.".
    static const wchar_t* NotifyMessageName();

private:
    CCSDWrapperImpl* m_pImpl;
};
