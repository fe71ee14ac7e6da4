// CCSDWrapper and CCSDWrapperImpl: device selection for an application window.
#include "device/CSDWrapperImpl.h"

#include <cwchar>
#include <vector>

#include "device/DeviceSelection.h"

using zcmod::device::DeviceSelection;

namespace {

constexpr wchar_t kNotifyMessageName[] = L"Desk Hub CSD notify message.";
constexpr wchar_t kOriginalProcProperty[] = L"__DeskHubCCSDWrapperImplOrgWinproc";
constexpr wchar_t kInstanceProperty[] = L"__DeskHubCCSDWrapperImplInstancePtr";

constexpr long kNotInitialized = static_cast<long>(0x80004003L);
constexpr long kInvalidArgument = static_cast<long>(0x80070057L);
constexpr long kFailed = static_cast<long>(0x80004005L);

// A bounded copy: what doesn't fit is cut, never written past the field.
void CopyField(wchar_t (&field)[CCSDWrapperImpl::kTextSize], const std::wstring& text)
{
    const size_t n = text.size() < CCSDWrapperImpl::kTextSize ? text.size() : CCSDWrapperImpl::kTextSize - 1;
    wmemcpy(field, text.c_str(), n);
    field[n] = 0;
}

DeviceSelection* Selection()
{
    return DeviceSelection::Current();
}

}  // namespace

// --- CCSDWrapperImpl ------------------------------------------------------------------------------------------

CCSDWrapperImpl::CCSDWrapperImpl()
    : m_window(nullptr),
      m_notifyMessage(0),
      m_selectionMode(2),
      m_hideUnsupported(0),
      m_deviceCount(0),
      m_haveSelection(false)
{
    ClearDevice();
    m_supportedDevices[0] = 0;
}

CCSDWrapperImpl::~CCSDWrapperImpl()
{
    Terminate();
}

long CCSDWrapperImpl::Initialize(HWND window)
{
    if (!window)
        return kInvalidArgument;
    if (!IsWindow(window) || (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) || window == m_window ||
        GetPropW(window, kOriginalProcProperty) || GetPropW(window, kInstanceProperty))
        return kFailed;
    // Watching another window: the first one is let go.
    if (m_window)
        Terminate();

    DeviceSelection* selection = DeviceSelection::Acquire();
    const long started = selection->Start();
    if (started != 0) {
        selection->Release();
        return started;
    }
    m_notifyMessage = RegisterWindowMessageW(kNotifyMessageName);
    if (!m_notifyMessage) {
        selection->Release();
        return kFailed;
    }
    m_haveSelection = true;
    selection->AddTarget(window, m_notifyMessage);

    SetLastError(0);
    const LONG_PTR original = GetWindowLongPtrW(window, GWLP_WNDPROC);
    if (!SetPropW(window, kInstanceProperty, this) ||
        !SetPropW(window, kOriginalProcProperty, reinterpret_cast<HANDLE>(original)) ||
        !SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CCSDWrapperImpl::WatchProc))) {
        RemovePropW(window, kInstanceProperty);
        RemovePropW(window, kOriginalProcProperty);
        selection->RemoveTarget(window);
        m_haveSelection = false;
        selection->Release();
        return kFailed;
    }
    m_window = window;
    return 0;
}

void CCSDWrapperImpl::Terminate()
{
    // The selection object first, so that no notification arrives while the window is let go.
    if (m_haveSelection) {
        if (DeviceSelection* selection = Selection()) {
            selection->RemoveTarget(m_window);
            selection->Release();
        }
        m_haveSelection = false;
    }
    if (m_window && IsWindow(m_window)) {
        if (HANDLE original = GetPropW(m_window, kOriginalProcProperty))
            SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original));
        RemovePropW(m_window, kOriginalProcProperty);
        RemovePropW(m_window, kInstanceProperty);
    }
    m_window = nullptr;
}

LRESULT CALLBACK CCSDWrapperImpl::WatchProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto original = reinterpret_cast<WNDPROC>(GetPropW(window, kOriginalProcProperty));
    auto* self = static_cast<CCSDWrapperImpl*>(GetPropW(window, kInstanceProperty));
    if (self && self->m_notifyMessage && message == self->m_notifyMessage && self->HandleNotification(wParam, lParam))
        return 1;
    return original ? CallWindowProcW(original, window, message, wParam, lParam) : 0;
}

void CCSDWrapperImpl::AddListener(CCSDWrapperListener* listener)
{
    if (listener)
        m_listeners.insert(listener);
}

void CCSDWrapperImpl::RemoveListener(CCSDWrapperListener* listener)
{
    m_listeners.erase(listener);
}

void CCSDWrapperImpl::SetSupportedDevices(const wchar_t* filter)
{
    // Cut to the buffer rather than written past it; no text is an empty filter.
    const size_t length = filter ? wcsnlen(filter, 1023) : 0;
    if (length)
        wmemcpy(m_supportedDevices, filter, length);
    m_supportedDevices[length] = 0;
}

int CCSDWrapperImpl::GetSupportedDeviceCount()
{
    DeviceSelection* selection = m_haveSelection ? Selection() : nullptr;
    return selection ? selection->CountPassing(m_supportedDevices) : -1;
}

// --- Listener calls -------------------------------------------------------------------------------------------
// Each goes over a copy of the set: a listener may add or remove listeners while it is called.

void CCSDWrapperImpl::CallAttached()
{
    const std::vector<CCSDWrapperListener*> listeners(m_listeners.begin(), m_listeners.end());
    for (CCSDWrapperListener* listener : listeners)
        if (m_listeners.count(listener))
            listener->OnDeviceAttached(m_manufacturer, m_model, m_friendlyName, m_connectionName, m_serial);
}

void CCSDWrapperImpl::CallUnsupported()
{
    const std::vector<CCSDWrapperListener*> listeners(m_listeners.begin(), m_listeners.end());
    for (CCSDWrapperListener* listener : listeners)
        if (m_listeners.count(listener))
            listener->OnUnsupportedDeviceAttached();
}

void CCSDWrapperImpl::CallDetached()
{
    wchar_t manufacturer[kTextSize];
    wmemcpy(manufacturer, m_manufacturer, kTextSize);
    const std::vector<CCSDWrapperListener*> listeners(m_listeners.begin(), m_listeners.end());
    for (CCSDWrapperListener* listener : listeners)
        if (m_listeners.count(listener))
            listener->OnDeviceDetached(manufacturer);
}

void CCSDWrapperImpl::ClearDevice()
{
    m_manufacturer[0] = m_model[0] = m_friendlyName[0] = m_connectionName[0] = m_serial[0] = 0;
}

// --- Notifications --------------------------------------------------------------------------------------------

long CCSDWrapperImpl::SelectSilentlyOrDetach()
{
    const long result = SelectDevice(1);
    if (result < 0)
        CallDetached();
    return result;
}

int CCSDWrapperImpl::HandleNotification(WPARAM count, LPARAM change)
{
    m_deviceCount = static_cast<int>(count);
    DeviceSelection* selection = m_haveSelection ? Selection() : nullptr;
    const int all = selection ? selection->CountPassing(L"") : 0;
    const int supported = selection ? selection->CountPassing(m_supportedDevices) : 0;
    if (selection)
        selection->SetLastSupportedCount(supported);
    const bool noDevice = m_connectionName[0] == 0;
    switch (change) {
        case zcmod::device::kSelectedGone:
            if (supported == 1) {
                SelectSilentlyOrDetach();
            } else if (supported == 0 && all != 0) {
                CallUnsupported();
                ClearDevice();
            } else {
                CallDetached();
                ClearDevice();
            }
            break;
        case zcmod::device::kListGrew:
            if (!noDevice)
                break;
            if (supported == 1)
                SelectSilentlyOrDetach();
            else if (supported == 0)
                CallUnsupported();
            else if (ReadSelectedDevice() == 0)
                CallAttached();
            break;
        case zcmod::device::kListShrank:
            if (!noDevice)
                break;
            if (supported == 1)
                SelectSilentlyOrDetach();
            else if (supported == 0 && all == 0)
                CallDetached();
            else if (supported == 0)
                CallUnsupported();
            break;
        default:
            break;
    }
    return 1;
}

// --- Selection ------------------------------------------------------------------------------------------------

long CCSDWrapperImpl::ReadSelectedDevice()
{
    DeviceSelection* selection = Selection();
    DWORD id = 0;
    if (!selection || selection->SelectedId(id) != 0)
        return zcmod::device::kNoSelection;
    return ReadDevice(id);
}

long CCSDWrapperImpl::ReadDevice(unsigned long id)
{
    ClearDevice();
    DeviceSelection* selection = Selection();
    if (const zcmod::device::DeviceRecord* record = selection ? selection->Find(id) : nullptr) {
        CopyField(m_manufacturer, record->manufacturer);
        CopyField(m_model, record->model);
        CopyField(m_friendlyName, record->friendlyName);
        CopyField(m_connectionName, record->connectionName);
        CopyField(m_serial, record->serial);
    }
    return 0;
}

long CCSDWrapperImpl::SelectDevice(int silent)
{
    DeviceSelection* selection = m_haveSelection ? Selection() : nullptr;
    if (!selection)
        return kNotInitialized;
    wchar_t filter[1024];
    wmemcpy(filter, m_supportedDevices, 1024);
    long result;
    if (!silent) {
        result = selection->RunModal(m_selectionMode, filter, m_hideUnsupported);
        // The object may have been ended while the window was up.
        if (Selection() != selection || !m_haveSelection)
            return result < 0 ? result : kNotInitialized;
    } else {
        selection->SetLastSupportedCount(selection->CountPassing(filter));
        result = selection->ChooseSilently(filter);
    }
    if (result < 0)
        return result;
    result = ReadSelectedDevice();
    if (result == 0)
        CallAttached();
    return result;
}

long CCSDWrapperImpl::SelectDevice(unsigned long deviceId, int hide)
{
    DeviceSelection* selection = m_haveSelection ? Selection() : nullptr;
    if (!selection)
        return kNotInitialized;
    wchar_t filter[1024];
    wmemcpy(filter, m_supportedDevices, 1024);
    const long supported = selection->ChooseById(deviceId, filter, hide);
    if (supported == 0)
        return zcmod::device::kNotSupported;
    if (supported < 0)
        return supported;
    ReadDevice(deviceId);
    CallAttached();
    return 0;
}

// --- CCSDWrapper ----------------------------------------------------------------------------------------------

CCSDWrapper::CCSDWrapper() : m_pImpl(new CCSDWrapperImpl()) {}

CCSDWrapper::~CCSDWrapper()
{
    delete m_pImpl;
}

long CCSDWrapper::Initialize(HWND window)
{
    return m_pImpl->Initialize(window);
}

void CCSDWrapper::Terminate()
{
    m_pImpl->Terminate();
}

void CCSDWrapper::AddListener(CCSDWrapperListener* listener)
{
    m_pImpl->AddListener(listener);
}

void CCSDWrapper::RemoveListener(CCSDWrapperListener* listener)
{
    m_pImpl->RemoveListener(listener);
}

void CCSDWrapper::SetSelectionMode(unsigned long mode)
{
    m_pImpl->SetSelectionMode(mode);
}

void CCSDWrapper::SetSupportedDevices(const wchar_t* filter)
{
    m_pImpl->SetSupportedDevices(filter);
}

void CCSDWrapper::SetHideUnsupported(int hide)
{
    m_pImpl->SetHideUnsupported(hide);
}

long CCSDWrapper::SelectDevice(int silent)
{
    return m_pImpl->SelectDevice(silent);
}

long CCSDWrapper::SelectDevice(unsigned long deviceId, int hide)
{
    return m_pImpl->SelectDevice(deviceId, hide);
}

int CCSDWrapper::GetSupportedDeviceCount()
{
    return m_pImpl->GetSupportedDeviceCount();
}

int CCSDWrapper::GetDeviceCount()
{
    return m_pImpl->GetDeviceCount();
}

const wchar_t* CCSDWrapper::NotifyMessageName()
{
    return kNotifyMessageName;
}
