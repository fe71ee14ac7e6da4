// The device selection object and its window.
#include "device/DeviceSelection.h"

#include <windowsx.h>

#include <algorithm>
#include <atomic>
#include <cwchar>

#include "device/ConnectivityApi.h"
#include "frame/Win32Util.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/Utils.h"
#include "zcmod/VuikLib.h"

namespace zcmod::device {

namespace {

DeviceSelection* g_selection = nullptr;
// The window that the service's thread posts to; cleared before the window goes.
std::atomic<HWND> g_notifyWindow{nullptr};

constexpr int kMargin = 12;
constexpr int kButtonWidth = 96;
constexpr int kButtonHeight = 26;
constexpr int kWindowWidth = 440;
constexpr int kWindowHeight = 330;

enum ColorIndex { Text, TextDisabled, Background, Accent, Highlight, Border, ColorCount };
const UINT kColorIds[ColorCount] = {ZGR_COLOR_TEXT,   ZGR_COLOR_TEXT_DISABLED, ZGR_COLOR_WINDOW,
                                    ZGR_COLOR_ACCENT, ZGR_COLOR_HIGHLIGHT,     ZGR_COLOR_BORDER};
const COLORREF kFallbackColors[ColorCount] = {RGB(32, 32, 32),    RGB(150, 150, 150), RGB(255, 255, 255),
                                              RGB(0, 120, 215),   RGB(204, 228, 247), RGB(200, 200, 200)};

std::wstring LoadText(UINT id)
{
    wchar_t text[512] = {};
    ZCMOD_LoadString(id, text, 512);
    return text;
}

std::wstring Copy(const wchar_t* text)
{
    return text ? std::wstring(text) : std::wstring();
}

}  // namespace

// --- Lifetime -------------------------------------------------------------------------------------------------

DeviceSelection* DeviceSelection::Acquire()
{
    if (!g_selection)
        g_selection = new DeviceSelection();
    ++g_selection->m_references;
    g_selection->m_ending = false;
    return g_selection;
}

DeviceSelection* DeviceSelection::Current()
{
    return g_selection;
}

void DeviceSelection::Release()
{
    if (--m_references > 0)
        return;
    m_ending = true;  // a running modal loop sees this and ends; it deletes the object then
    if (g_selection == this)
        g_selection = nullptr;
    if (!m_inModal)
        delete this;
}

DeviceSelection::~DeviceSelection()
{
    Destroy();
}

void DeviceSelection::Destroy()
{
    HWND mine = m_window;  // a newer object may own the notifications already
    g_notifyWindow.compare_exchange_strong(mine, nullptr);
    if (m_dm) {
        service::LNKARegisterNotifyCallback(m_dm, API_UNREGISTER, &DeviceSelection::ServiceCallback);
        service::LNKACloseDM(m_dm);
        m_dm = nullptr;
    }
    for (; m_serviceStarts > 0; --m_serviceStarts)
        service::DMAPI_Terminate(0);
    if (m_window) {
        SetWindowLongPtrW(m_window, GWLP_USERDATA, 0);
        DestroyWindow(m_window);
        m_window = nullptr;
    }
    for (HGDIOBJ* object : {reinterpret_cast<HGDIOBJ*>(&m_font), reinterpret_cast<HGDIOBJ*>(&m_boldFont),
                            reinterpret_cast<HGDIOBJ*>(&m_background)})
        if (*object) {
            DeleteObject(*object);
            *object = nullptr;
        }
}

long DeviceSelection::Start()
{
    if (m_window)
        return 0;
    if (!ZCMOD_GetCommonZLR())
        return kNoLanguage;
    const HMODULE graphics = ZCMOD_GetCommonZGR();
    if (!graphics)
        return kNoGraphics;
    for (int i = 0; i < ColorCount; ++i) {
        const COLORREF color = DkhLoadColor(graphics, kColorIds[i]);
        m_colors[i] = color == CLR_INVALID ? kFallbackColors[i] : color;
    }
    if (!BuildWindow()) {
        Destroy();
        return static_cast<long>(0x80004005L);
    }
    // The service: its absence is no failure here; the list simply stays empty.
    Connect();
    ReadDevices();
    Refill(0, false);
    return 0;
}

DeviceSelection::Connection DeviceSelection::Connect()
{
    DWORD count = 0;
    if (m_dm && service::LNKAGetDeviceCount(m_dm, &count) == 0)
        return Connection::Kept;
    // A session from before the service went away is stale: a new one, with its registration, replaces it.
    if (m_dm) {
        service::LNKACloseDM(m_dm);
        m_dm = nullptr;
    }
    HRESULT result = 0;
    if (m_serviceStarts == 0 || service::DMAPI_GetAPIVersion() == service::kNotInitialised) {
        ++m_serviceStarts;  // each start, failed or not, has its end
        result = service::DMAPI_Initialize(service::kDmapiVersion, 0);
    }
    if (result >= 0)
        result = service::LNKAOpenDM(&m_dm);
    if (result == 0) {
        g_notifyWindow = m_window;
        result = service::LNKARegisterNotifyCallback(m_dm, API_REGISTER, &DeviceSelection::ServiceCallback);
    }
    m_status = result;
    return result == 0 ? Connection::Made : Connection::Failed;
}

HRESULT CALLBACK DeviceSelection::ServiceCallback(DWORD status, const wchar_t*)
{
    switch (status & 0xFFFF) {
        case DEVICE_LIST_UPDATED:
        case DEVICE_ADDED:
        case DEVICE_REMOVED:
        case DEVICE_UPDATED:
            if (HWND window = g_notifyWindow.load())
                PostMessageW(window, kMsgDevicesChanged, status, 0);
            break;
        default:
            break;
    }
    return 0;
}

void DeviceSelection::AddTarget(HWND window, UINT message)
{
    RemoveTarget(window);
    m_targets.push_back(Target{window, message});
}

void DeviceSelection::RemoveTarget(HWND window)
{
    m_targets.erase(std::remove_if(m_targets.begin(), m_targets.end(),
                                   [window](const Target& target) { return target.window == window; }),
                    m_targets.end());
}

// --- Devices --------------------------------------------------------------------------------------------------

void DeviceSelection::ReadDevices()
{
    m_records.clear();
    if (!m_dm)
        return;
    DWORD count = 0;
    if (service::LNKAGetDeviceCount(m_dm, &count) != 0)
        return;
    std::vector<LNKA_DEVICE> devices;
    HRESULT result = LNKA_E_BUFFER_TOO_SMALL;
    // The list may grow between the two calls: the service then says how many it needs.
    for (int attempt = 0; attempt < 3 && result == LNKA_E_BUFFER_TOO_SMALL; ++attempt) {
        devices.assign(count, LNKA_DEVICE());
        result = service::LNKAGetDevices(m_dm, &count, devices.empty() ? nullptr : devices.data());
    }
    if (result != 0)
        return;
    count = std::min<DWORD>(count, static_cast<DWORD>(devices.size()));
    std::vector<Capability> capabilities;
    for (DWORD i = 0; i < count; ++i) {
        const LNKA_DEVICE& device = devices[i];
        for (DWORD c = 0; device.pItems && c < device.dwNumberOfItems; ++c) {
            const LNKA_CONNECTION_INFO& connection = device.pItems[c];
            DeviceRecord record;
            record.friendlyName = Copy(device.pstrFriendlyName);
            record.model = Copy(device.pstrModel);
            record.manufacturer = Copy(device.pstrManufacturer);
            record.serial = Copy(device.pstrSerialNumber);
            record.flags = device.dwDeviceFlags;
            record.connectionName = Copy(connection.pstrDeviceName);
            record.mediaText = Copy(connection.pstrMediaText);
            record.id = connection.dwDeviceID;
            record.media = connection.dwMedia;
            m_records.push_back(record);
        }
        // The capability text, once per device.
        Capability capability;
        capability.serial = Copy(device.pstrSerialNumber);
        LNKA_DEVICE_INFO* info = nullptr;
        if (service::LNKAGetDeviceInfo(reinterpret_cast<service::Arg>(m_dm),
                                       reinterpret_cast<service::Arg>(device.pstrSerialNumber),
                                       LNKA_DEVICE_INFO_CAPABILITIES, reinterpret_cast<service::Arg>(&info)) == 0 &&
            info) {
            if (info->dwSize == sizeof(LNKA_DEVICE_INFO) && info->pstrText)
                capability.text.Parse(info->pstrText);
            service::LNKAFreeDeviceInfoStructure(LNKA_DEVICE_INFO_CAPABILITIES, reinterpret_cast<service::Arg>(info));
        }
        capability.phoneType = capability.text.PhoneTypeOf(Copy(device.pstrManufacturer), Copy(device.pstrModel));
        capabilities.push_back(std::move(capability));
    }
    m_capabilities = std::move(capabilities);
    service::LNKAFreeDeviceStructure(count, devices.data());
}

bool DeviceSelection::Passes(const DeviceRecord& record, const wchar_t* filter) const
{
    if (!filter)
        return false;
    for (const Capability& capability : m_capabilities)
        if (capability.serial == record.serial)
            return PassesFilter(capability.text, capability.phoneType, record.serial, filter);
    return PassesFilter(CapabilityText(), L"", record.serial, filter);
}

int DeviceSelection::CountPassing(const wchar_t* filter) const
{
    if (!filter || m_status != 0)
        return 0;
    return static_cast<int>(std::count_if(m_records.begin(), m_records.end(),
                                          [&](const DeviceRecord& record) { return Passes(record, filter); }));
}

const DeviceRecord* DeviceSelection::Find(DWORD id) const
{
    for (const DeviceRecord& record : m_records)
        if (record.id == id)
            return &record;
    return nullptr;
}

long DeviceSelection::SelectedId(DWORD& id) const
{
    if (!m_list)
        return kNoSelection;
    const LRESULT row = SendMessageW(m_list, LB_GETCURSEL, 0, 0);
    if (row == LB_ERR)
        return kNoSelection;
    id = static_cast<DWORD>(SendMessageW(m_list, LB_GETITEMDATA, row, 0));
    return 0;
}

std::wstring DeviceSelection::RememberedPhoneKey() const
{
    return L"SOFTWARE\\" + std::wstring(CUtils::GetUIManufacturerName()) + L"\\LaunchApplication";
}

// Fills the list from the records. The row of `keepId` stays selected if `keepSelection` and it is still
// shown; with nothing selected, the phone chosen last time ("selectedPhone") is.
void DeviceSelection::Refill(DWORD keepId, bool keepSelection)
{
    if (!m_list)
        return;
    for (DeviceRecord& record : m_records)
        record.supported = Passes(record, m_filter.c_str());
    SendMessageW(m_list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(m_list, LB_RESETCONTENT, 0, 0);
    LRESULT selectRow = LB_ERR;
    for (const DeviceRecord& record : m_records) {
        if (m_hideUnsupported && !record.supported)
            continue;
        const LRESULT row = SendMessageW(m_list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(record.friendlyName.c_str()));
        if (row < 0)
            continue;
        SendMessageW(m_list, LB_SETITEMDATA, row, record.id);
        if (keepSelection && record.id == keepId)
            selectRow = row;
    }
    if (selectRow == LB_ERR && !keepSelection) {
        wchar_t remembered[MAX_PATH] = {};
        if (CUtils::ReadSelectedPhone(RememberedPhoneKey().c_str(), remembered, MAX_PATH) == ERROR_SUCCESS &&
            remembered[0]) {
            const LRESULT rows = SendMessageW(m_list, LB_GETCOUNT, 0, 0);
            for (LRESULT row = 0; row < rows && selectRow == LB_ERR; ++row) {
                const DeviceRecord* record = Find(static_cast<DWORD>(SendMessageW(m_list, LB_GETITEMDATA, row, 0)));
                if (record && record->supported && record->serial == remembered)
                    selectRow = row;
            }
        }
    }
    SendMessageW(m_list, LB_SETCURSEL, selectRow, 0);
    SendMessageW(m_list, WM_SETREDRAW, TRUE, 0);
    const bool empty = SendMessageW(m_list, LB_GETCOUNT, 0, 0) == 0;
    ShowWindow(m_list, empty ? SW_HIDE : SW_SHOW);
    ShowWindow(m_empty, empty ? SW_SHOW : SW_HIDE);
    InvalidateRect(m_list, nullptr, TRUE);
    UpdateButtons();
}

void DeviceSelection::Refresh()
{
    const size_t before = m_records.size();
    DWORD selected = 0;
    const bool hadSelection = SelectedId(selected) == 0;
    ReadDevices();
    const bool stillThere = hadSelection && Find(selected) != nullptr;
    Refill(selected, stillThere);
    LPARAM change = kListSameLength;
    if (hadSelection && !stillThere)
        change = kSelectedGone;
    else if (m_records.size() > before)
        change = kListGrew;
    else if (m_records.size() < before)
        change = kListShrank;
    const std::vector<Target> targets = m_targets;
    for (const Target& target : targets)
        PostMessageW(target.window, target.message, m_records.size(), change);
}

long DeviceSelection::ChooseSilently(const wchar_t* filter)
{
    if (!m_list)
        return kNoSelection;
    m_filter = Copy(filter);
    Refill(0, false);
    const DeviceRecord* single = nullptr;
    int passing = 0;
    for (const DeviceRecord& record : m_records)
        if (record.supported && ++passing == 1)
            single = &record;
    if (passing != 1)
        return kNoSelection;
    return ChooseById(single->id, filter, m_hideUnsupported) == 1 ? 0 : kNoSelection;
}

long DeviceSelection::ChooseById(DWORD id, const wchar_t* filter, int hide)
{
    if (!m_list)
        return kNoSelection;
    m_filter = Copy(filter);
    m_hideUnsupported = hide != 0;
    const DeviceRecord* record = Find(id);
    if (!record)
        return kNoSelection;
    if (!Passes(*record, filter))
        return 0;
    Refill(id, true);
    const LRESULT rows = SendMessageW(m_list, LB_GETCOUNT, 0, 0);
    for (LRESULT row = 0; row < rows; ++row)
        if (static_cast<DWORD>(SendMessageW(m_list, LB_GETITEMDATA, row, 0)) == id)
            SendMessageW(m_list, LB_SETCURSEL, row, 0);
    UpdateButtons();
    return 1;
}

// --- Modal loop -----------------------------------------------------------------------------------------------

long DeviceSelection::RunModal(unsigned long mode, const wchar_t* filter, int hide)
{
    if (!m_window || m_inModal)
        return kNoSelection;
    // The service may have gone away and come back since the list was read.
    if (Connect() == Connection::Made)
        Refresh();
    SendMessageW(m_window, kMsgSetMode, 0, static_cast<LPARAM>(mode));
    m_hadSelection = SelectedId(m_openedWith) == 0;
    SendMessageW(m_window, kMsgSetFilter, 0, reinterpret_cast<LPARAM>(filter ? filter : L""));
    SendMessageW(m_window, kMsgHideUnsupported, hide ? 1 : 0, 0);

    // Centred on the application window, or on its screen.
    m_owner = nullptr;
    for (const Target& target : m_targets)
        if (IsWindow(target.window) && GetWindowThreadProcessId(target.window, nullptr) == GetCurrentThreadId()) {
            m_owner = target.window;
            break;
        }
    RECT around = {};
    if (!m_owner || !GetWindowRect(m_owner, &around) || IsIconic(m_owner))
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &around, 0);
    if (m_owner)
        EnableWindow(m_owner, FALSE);
    RECT own = {};
    GetWindowRect(m_window, &own);
    const int width = own.right - own.left, height = own.bottom - own.top;
    SetWindowPos(m_window, HWND_TOP, around.left + ((around.right - around.left) - width) / 2,
                 around.top + std::max<int>(0, ((around.bottom - around.top) - height) / 2), 0, 0,
                 SWP_NOSIZE | SWP_SHOWWINDOW);
    SetForegroundWindow(m_window);
    SetFocus(IsWindowVisible(m_list) ? m_list : GetDlgItem(m_window, kCmdCancel));

    m_inModal = true;
    long result = kNoSelection;
    bool quit = false;
    int quitCode = 0;
    MSG message;
    while (!m_ending) {
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            Sleep(1);
            continue;
        }
        if (message.message == WM_QUIT) {
            quit = true;
            quitCode = static_cast<int>(message.wParam);
            break;
        }
        if (message.message == kMsgEndModal && message.hwnd == m_window) {
            result = message.wParam == 1 ? 0 : kNoSelection;
            break;
        }
        if (!IsDialogMessageW(m_window, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    m_inModal = false;
    if (m_owner && IsWindow(m_owner)) {
        EnableWindow(m_owner, TRUE);
    }
    if (m_window)
        ShowWindow(m_window, SW_HIDE);
    if (m_owner && IsWindow(m_owner)) {
        SetActiveWindow(m_owner);
        SetFocus(m_owner);
    }
    if (quit)
        PostQuitMessage(quitCode);  // the application's loop must see it too
    if (m_ending) {
        if (g_selection != this)
            delete this;
        return kNoSelection;
    }
    if (result != 0) {
        // Cancelled: the device that was current stays selected.
        Refill(m_openedWith, m_hadSelection);
        if (!m_hadSelection)
            SendMessageW(m_list, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        return kNoSelection;
    }
    DWORD chosen = 0;
    if (SelectedId(chosen) == 0) {
        if (const DeviceRecord* record = Find(chosen)) {
            HKEY key = nullptr;
            if (RegCreateKeyExW(HKEY_CURRENT_USER, RememberedPhoneKey().c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                nullptr, &key, nullptr) == ERROR_SUCCESS) {
                RegSetValueExW(key, L"selectedPhone", 0, REG_SZ, reinterpret_cast<const BYTE*>(record->serial.c_str()),
                               static_cast<DWORD>((record->serial.size() + 1) * sizeof(wchar_t)));
                RegCloseKey(key);
            }
        }
    }
    return 0;
}

void DeviceSelection::Accept()
{
    DWORD id = 0;
    const DeviceRecord* record = SelectedId(id) == 0 ? Find(id) : nullptr;
    if (!record || !record->supported) {
        MessageBeep(MB_OK);
        return;
    }
    PostMessageW(m_window, kMsgEndModal, 1, 0);
}

void DeviceSelection::UpdateButtons()
{
    if (!m_window)
        return;
    DWORD id = 0;
    const DeviceRecord* record = SelectedId(id) == 0 ? Find(id) : nullptr;
    EnableWindow(GetDlgItem(m_window, kCmdAccept), record && record->supported);
}

// --- Window ---------------------------------------------------------------------------------------------------

bool DeviceSelection::BuildWindow()
{
    const HINSTANCE instance = zcmod::LibraryModule();
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    if (!GetClassInfoExW(instance, kSelectionWindowClass, &windowClass)) {
        windowClass.cbSize = sizeof(windowClass);
        windowClass.lpfnWndProc = &DeviceSelection::WindowProc;
        windowClass.hInstance = instance;
        windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        windowClass.lpszClassName = kSelectionWindowClass;
        if (!RegisterClassExW(&windowClass))
            return false;
    }
    LOGFONTW font = {};
    DkhLoadFont(&font);
    font.lfHeight = -13;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    m_font = CreateFontIndirectW(&font);
    font.lfWeight = FW_BOLD;
    m_boldFont = CreateFontIndirectW(&font);
    m_background = CreateSolidBrush(m_colors[Background]);
    if (!m_font || !m_boldFont || !m_background)
        return false;

    const DWORD rtl = CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0;
    m_window = CreateWindowExW(WS_EX_DLGMODALFRAME | WS_EX_CONTROLPARENT | rtl, kSelectionWindowClass,
                               LoadText(ZLR_STR_DEVSEL_CAPTION).c_str(),
                               WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN, 0, 0, kWindowWidth,
                               kWindowHeight, nullptr, nullptr, instance, this);
    if (!m_window)
        return false;
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));

    const auto child = [&](const wchar_t* className, const std::wstring& text, DWORD style, int id, DWORD exStyle = 0) {
        HWND control = CreateWindowExW(exStyle | (rtl ? WS_EX_RTLREADING : 0u), className, text.c_str(), WS_CHILD | WS_VISIBLE | style, 0, 0, 10, 10,
                                       m_window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
        if (control)
            SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
        return control;
    };
    child(L"STATIC", LoadText(ZLR_STR_DEVSEL_PROMPT), SS_LEFT | SS_NOPREFIX, kPromptId);
    m_list = child(L"LISTBOX", L"",
                   WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_OWNERDRAWFIXED | LBS_HASSTRINGS | LBS_NOINTEGRALHEIGHT,
                   kDeviceListId, WS_EX_CLIENTEDGE);
    m_empty = child(L"STATIC", LoadText(ZLR_STR_DEVSEL_EMPTY), SS_CENTER | SS_NOPREFIX, kEmptyTextId);
    child(L"BUTTON", LoadText(ZLR_STR_DEVSEL_REFRESH), WS_TABSTOP | BS_PUSHBUTTON, kCmdRefresh);
    HWND connections = child(L"BUTTON", LoadText(ZLR_STR_DEVSEL_CONNECTIONS), WS_TABSTOP | BS_PUSHBUTTON,
                             kCmdConnectionManager);
    child(L"BUTTON", LoadText(ZLR_STR_DEVSEL_OK), WS_TABSTOP | BS_DEFPUSHBUTTON, kCmdAccept);
    child(L"BUTTON", LoadText(ZLR_STR_DEVSEL_CANCEL), WS_TABSTOP | BS_PUSHBUTTON, kCmdCancel);
    if (!m_list || !m_empty)
        return false;
    // The connection manager comes with the service, beside this library; without it the button is off.
    wchar_t folder[MAX_PATH] = {};
    const bool haveFolder = zcmod::GetModuleFolder(zcmod::LibraryModule(), folder, MAX_PATH);
    const std::wstring manager = std::wstring(folder) + L"\\ConnectionManager.exe";
    EnableWindow(connections, haveFolder && GetFileAttributesW(manager.c_str()) != INVALID_FILE_ATTRIBUTES);
    Layout();
    return true;
}

void DeviceSelection::Layout()
{
    RECT client = {};
    GetClientRect(m_window, &client);
    const int width = client.right - client.left, height = client.bottom - client.top;
    const int buttonsTop = height - kMargin - kButtonHeight;
    const auto place = [&](int id, int x, int y, int w, int h) {
        SetWindowPos(GetDlgItem(m_window, id), nullptr, x, y, w, h, SWP_NOZORDER | SWP_NOACTIVATE);
    };
    place(kPromptId, kMargin, kMargin, width - 2 * kMargin, 18);
    const int listTop = kMargin + 24, listHeight = buttonsTop - kMargin - listTop;
    place(kDeviceListId, kMargin, listTop, width - 2 * kMargin, listHeight);
    place(kEmptyTextId, kMargin + 16, listTop + listHeight / 3, width - 2 * kMargin - 32, listHeight / 2);
    place(kCmdRefresh, kMargin, buttonsTop, kButtonWidth - 10, kButtonHeight);
    place(kCmdConnectionManager, kMargin + kButtonWidth - 4, buttonsTop, kButtonWidth + 10, kButtonHeight);
    place(kCmdAccept, width - kMargin - 2 * kButtonWidth - 8, buttonsTop, kButtonWidth, kButtonHeight);
    place(kCmdCancel, width - kMargin - kButtonWidth, buttonsTop, kButtonWidth, kButtonHeight);
    SendMessageW(m_list, LB_SETITEMHEIGHT, 0, m_rowHeight);
}

void DeviceSelection::DrawRow(const DRAWITEMSTRUCT& item)
{
    HDC dc = item.hDC;
    const RECT& rect = item.rcItem;
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    const DeviceRecord* record =
        item.itemID == static_cast<UINT>(-1) ? nullptr : Find(static_cast<DWORD>(item.itemData));
    const COLORREF fill = selected ? m_colors[Highlight] : m_colors[Background];
    const COLORREF old = SetBkColor(dc, fill);
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
    SetBkColor(dc, old);
    if (record) {
        if (selected) {
            RECT bar = {rect.left, rect.top, rect.left + 4, rect.bottom};
            SetBkColor(dc, m_colors[Accent]);
            ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &bar, nullptr, 0, nullptr);
        }
        const COLORREF strong = record->supported ? m_colors[Text] : m_colors[TextDisabled];
        SetBkMode(dc, TRANSPARENT);
        RECT name = {rect.left + 12, rect.top + 3, rect.right - 8, rect.top + 21};
        RECT detail = {rect.left + 12, rect.top + 21, rect.right - 8, rect.bottom - 2};
        HGDIOBJ previous = SelectObject(dc, m_boldFont);
        SetTextColor(dc, strong);
        const UINT reading = CVuikLib::IsLayoutRTL() ? DT_RTLREADING : 0;
        DrawTextW(dc, record->friendlyName.c_str(), -1, &name,
                  DT_LEFT | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX | reading);
        SelectObject(dc, m_font);
        std::wstring text = record->manufacturer + L" " + record->model + L"  \x00B7  " + record->mediaText;
        if (!record->supported)
            text += L"  \x00B7  " + LoadText(ZLR_STR_DEVSEL_UNSUPPORTED);
        SetTextColor(dc, m_colors[TextDisabled]);
        DrawTextW(dc, text.c_str(), -1, &detail, DT_LEFT | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX | reading);
        SelectObject(dc, previous);
        RECT line = {rect.left + 8, rect.bottom - 1, rect.right - 8, rect.bottom};
        SetBkColor(dc, m_colors[Border]);
        ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &line, nullptr, 0, nullptr);
    }
    if (item.itemState & ODS_FOCUS)
        DrawFocusRect(dc, &rect);
}

LRESULT CALLBACK DeviceSelection::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<DeviceSelection*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self && self->m_window == window)
        return self->Handle(message, wParam, lParam);
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT DeviceSelection::Handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
        case kMsgDevicesChanged:
            Refresh();
            return 0;
        case kMsgHideUnsupported: {
            DWORD id = 0;
            const bool selected = SelectedId(id) == 0;
            m_hideUnsupported = wParam != 0;
            Refill(id, selected);
            return 0;
        }
        case kMsgSetMode:
            m_mode = static_cast<unsigned long>(lParam);
            return 0;
        case kMsgSetFilter: {
            DWORD id = 0;
            const bool selected = SelectedId(id) == 0;
            m_filter = Copy(reinterpret_cast<const wchar_t*>(lParam));
            Refill(id, selected);
            return 0;
        }
        case DM_GETDEFID:
            return MAKELRESULT(kCmdAccept, DC_HASDEFID);
        case WM_COMMAND:
            switch (LOWORD(wParam)) {
                case kCmdAccept:
                case IDOK:
                    Accept();
                    return 0;
                case kCmdCancel:
                case IDCANCEL:
                    PostMessageW(m_window, kMsgEndModal, 0, 0);
                    return 0;
                case kCmdConnectionManager: {
                    wchar_t folder[MAX_PATH] = {};
                    if (zcmod::GetModuleFolder(zcmod::LibraryModule(), folder, MAX_PATH)) {
                        const std::wstring path = std::wstring(folder) + L"\\ConnectionManager.exe";
                        HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                                  FILE_ATTRIBUTE_NORMAL, nullptr);
                        if (file != INVALID_HANDLE_VALUE) {
                            CloseHandle(file);
                            STARTUPINFOW startup = {};
                            startup.cb = sizeof(startup);
                            PROCESS_INFORMATION process = {};
                            std::wstring commandLine = L"\"" + path + L"\"";
                            if (CreateProcessW(path.c_str(), &commandLine[0], nullptr, nullptr, FALSE, 0, nullptr,
                                               folder, &startup, &process)) {
                                CloseHandle(process.hThread);
                                CloseHandle(process.hProcess);
                            }
                        }
                    }
                    return 0;
                }
                case kCmdHelp:
                    MessageBoxW(m_window, LoadText(ZLR_STR_DEVSEL_HELP_TEXT).c_str(),
                                LoadText(ZLR_STR_DEVSEL_CAPTION).c_str(),
                                MB_OK | MB_ICONINFORMATION | (CVuikLib::IsLayoutRTL() ? MB_RTLREADING | MB_RIGHT : 0));
                    return 0;
                case kCmdRefresh:
                    // The service answers with a notification; a stale session is renewed and read at once.
                    if (!m_dm || service::LNKARefreshDeviceList(m_dm, 0) != 0) {
                        if (Connect() != Connection::Failed)
                            Refresh();
                    }
                    return 0;
                case kDeviceListId:
                    if (HIWORD(wParam) == LBN_SELCHANGE)
                        UpdateButtons();
                    else if (HIWORD(wParam) == LBN_DBLCLK)
                        Accept();
                    return 0;
                default:
                    break;
            }
            break;
        case WM_HELP:
            SendMessageW(m_window, WM_COMMAND, kCmdHelp, 0);
            return TRUE;
        case WM_CLOSE:
            PostMessageW(m_window, kMsgEndModal, 0, 0);
            return 0;
        case WM_MEASUREITEM:
            reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = m_rowHeight;
            return TRUE;
        case WM_DRAWITEM:
            if (wParam == kDeviceListId) {
                DrawRow(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
                return TRUE;
            }
            break;
        case WM_ERASEBKGND: {
            RECT client = {};
            GetClientRect(m_window, &client);
            FillRect(reinterpret_cast<HDC>(wParam), &client, m_background);
            return 1;
        }
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN: {
            HDC dc = reinterpret_cast<HDC>(wParam);
            SetTextColor(dc, reinterpret_cast<HWND>(lParam) == m_empty ? m_colors[TextDisabled] : m_colors[Text]);
            SetBkColor(dc, m_colors[Background]);
            return reinterpret_cast<LRESULT>(m_background);
        }
        default:
            break;
    }
    return DefWindowProcW(m_window, message, wParam, lParam);
}

}  // namespace zcmod::device
