// The device selection object: one per process. It keeps the list of connected devices (one row per
// connection), follows the service's device notifications, tells the watched windows with the registered
// message, decides with the capability text which devices pass a filter, and owns the device selection
// window with its modal loop.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "device/ServiceTypes.h"
#include "device/core/DeviceCapabilities.h"

namespace zcmod::device {

// Private messages of the selection window.
constexpr UINT kMsgDevicesChanged = 0x464;  // the service's list changed: refresh
constexpr UINT kMsgHideUnsupported = 0x465;  // wParam: hide rows that don't pass the filter; refill
constexpr UINT kMsgSetMode = 0x466;          // lParam: the selection mode
constexpr UINT kMsgEndModal = 0x467;         // wParam 1: accepted, 0: cancelled
constexpr UINT kMsgSetFilter = 0x468;        // lParam: the filter text (const wchar_t*); refill

constexpr int kDeviceListId = 0x71;
constexpr int kPromptId = 0x72;
constexpr int kEmptyTextId = 0x73;
constexpr WORD kCmdAccept = 0x7D1;
constexpr WORD kCmdCancel = 0x7D3;
constexpr WORD kCmdConnectionManager = 0x7D5;
constexpr WORD kCmdHelp = 0x7D7;
constexpr WORD kCmdRefresh = 0x7D9;

// lParam of the notification.
constexpr LPARAM kSelectedGone = 1;
constexpr LPARAM kListGrew = 2;
constexpr LPARAM kListShrank = 3;
constexpr LPARAM kListSameLength = 4;

// Results of the selection object.
constexpr long kNoFilterText = -14;
constexpr long kNoSelection = -5;
constexpr long kNotSupported = -6;
constexpr long kNoGraphics = -13;
constexpr long kNoLanguage = -11;

constexpr wchar_t kSelectionWindowClass[] = L"ZCMODDeviceSelection";

// One connection of a device.
struct DeviceRecord {
    std::wstring friendlyName, model, connectionName, mediaText, serial, manufacturer;
    DWORD id = 0;
    DWORD media = 0;
    DWORD flags = 0;
    bool supported = true;  // passes the window's filter
};

class DeviceSelection {
public:
    // The process's object, made on first use; Release gives the reference back.
    static DeviceSelection* Acquire();
    // The process's object if there is one, else null.
    static DeviceSelection* Current();
    // Marks the object as ending; it goes when the last holder has released it and no modal loop runs.
    void Release();

    // Takes the resources, binds to the service and builds the window. 0 or a negative code.
    long Start();
    bool Started() const { return m_window != nullptr; }
    // The service's failure, if it could not be reached (then no device is ever seen).
    HRESULT Status() const { return m_status; }

    // A watched window: it gets `message` after each refresh.
    void AddTarget(HWND window, UINT message);
    void RemoveTarget(HWND window);

    // Devices that pass `filter`; 0 for a null filter or when the service failed.
    int CountPassing(const wchar_t* filter) const;
    // The number of supported devices the wrapper saw last, for the title bar.
    int LastSupportedCount() const { return m_lastSupported; }
    void SetLastSupportedCount(int count) { m_lastSupported = count; }

    // Shows the window modally and waits for it; 0 with the chosen row selected, or kNoSelection.
    long RunModal(unsigned long mode, const wchar_t* filter, int hide);
    bool InModal() const { return m_inModal; }
    // Selects the single row that passes `filter`; kNoSelection if there is not exactly one.
    long ChooseSilently(const wchar_t* filter);
    // Selects the row of `id` if it passes `filter`: 1, 0 (not supported) or kNoSelection (no such row).
    long ChooseById(DWORD id, const wchar_t* filter, int hide);
    // The id of the selected row; kNoSelection if none.
    long SelectedId(DWORD& id) const;
    const DeviceRecord* Find(DWORD id) const;

    HWND Window() const { return m_window; }

private:
    DeviceSelection() = default;
    ~DeviceSelection();
    DeviceSelection(const DeviceSelection&) = delete;
    DeviceSelection& operator=(const DeviceSelection&) = delete;

    static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static HRESULT CALLBACK ServiceCallback(DWORD status, const wchar_t* serial);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);

    enum class Connection { Kept, Made, Failed };
    Connection Connect();
    bool BuildWindow();
    void Layout();
    void ReadDevices();
    void Refresh();  // on kMsgDevicesChanged
    void Refill(DWORD keepId, bool keepSelection);
    bool Passes(const DeviceRecord& record, const wchar_t* filter) const;
    void UpdateButtons();
    void Accept();
    void DrawRow(const DRAWITEMSTRUCT& item);
    void Destroy();
    std::wstring RememberedPhoneKey() const;

    struct Capability {
        std::wstring serial;
        std::wstring phoneType;
        CapabilityText text;
    };
    struct Target {
        HWND window;
        UINT message;
    };

    int m_references = 0;
    bool m_ending = false;
    bool m_inModal = false;
    HRESULT m_status = 0;
    HLNKADM m_dm = nullptr;
    int m_serviceStarts = 0;  // DMAPI_Initialize calls, each ended by a DMAPI_Terminate

    HWND m_window = nullptr;
    HWND m_list = nullptr;
    HWND m_empty = nullptr;
    HFONT m_font = nullptr;
    HFONT m_boldFont = nullptr;
    HBRUSH m_background = nullptr;
    COLORREF m_colors[8] = {};
    int m_rowHeight = 40;

    std::vector<DeviceRecord> m_records;
    std::vector<Capability> m_capabilities;
    std::vector<Target> m_targets;
    std::wstring m_filter;
    bool m_hideUnsupported = false;
    unsigned long m_mode = 2;
    int m_lastSupported = 0;
    HWND m_owner = nullptr;
    DWORD m_openedWith = 0;
    bool m_hadSelection = false;
};

}  // namespace zcmod::device
