// Device selection and the title bar: the gallery's main window is watched by a CCSDWrapper, and a
// CTitleBarHelper keeps the title of a small mock application caption as virtual phones come and go. The
// controller (phonectl.exe beside the gallery) plugs and unplugs them, in another process, as a user would.
//
// In a screenshot run the page takes a short tour by itself: the sample phone chosen silently, a second phone
// plugged in, the selection window opened and driven by keys (a picture of it is kept for the page), the
// chosen phone pulled, an unknown phone alone, the sample phone back.
#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "PushButtons.h"

using namespace gallery;

namespace {

constexpr int kChooseButton = 101;
constexpr int kPlugButton = 102;
constexpr int kUnplugButton = 103;
constexpr UINT_PTR kDriveTimer = 7;
constexpr int kButtonTop = 138;  // the row of buttons under the mock caption
constexpr int kButtonHeight = 28;
constexpr wchar_t kPanelClass[] = L"ZCMODGalleryDevicePanel";
constexpr wchar_t kSelectionClass[] = L"ZCMODDeviceSelection";

std::wstring ExeFolder()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path);
    return folder.substr(0, folder.find_last_of(L'\\'));
}

// Runs the controller and waits for it.
bool PhoneCtl(const std::wstring& args)
{
    const std::wstring exe = ExeFolder() + L"\\phonectl.exe";
    std::wstring command = L"\"" + exe + L"\" " + args;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(exe.c_str(), &command[0], nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                        &startup, &process))
        return false;
    WaitForSingleObject(process.hProcess, 15000);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code == 0;
}

bool PumpUntil(const std::function<bool()>& done, DWORD timeoutMs = 4000)
{
    const DWORD start = GetTickCount();
    MSG message;
    while (!done()) {
        if (GetTickCount() - start > timeoutMs)
            return false;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(5);
    }
    return true;
}

// The title helper, keeping a history of the titles it wrote and why.
class HistoryTitle : public CTitleBarHelper {
public:
    void OnDeviceAttached(const wchar_t* manufacturer, const wchar_t* model, const wchar_t* friendlyName,
                          const wchar_t* connectionName, const wchar_t* serial) override
    {
        CTitleBarHelper::OnDeviceAttached(manufacturer, model, friendlyName, connectionName, serial);
        Note(Format(L"OnDeviceAttached(%ls, %ls, %ls, %ls)", manufacturer, model, friendlyName, connectionName));
    }
    void OnUnsupportedDeviceAttached() override
    {
        CTitleBarHelper::OnUnsupportedDeviceAttached();
        Note(L"OnUnsupportedDeviceAttached()");
    }
    void OnDeviceDetached(const wchar_t* manufacturer) override
    {
        CTitleBarHelper::OnDeviceDetached(manufacturer);
        Note(Format(L"OnDeviceDetached(%ls)", manufacturer));
    }
    void Note(const std::wstring& why)
    {
        wchar_t title[1100] = {};
        GetWindowTextW(m_hWnd, title, 1100);
        history.push_back({why, title});
        if (history.size() > 9)
            history.erase(history.begin());
    }
    struct Entry {
        std::wstring why, title;
    };
    std::vector<Entry> history;
};

class DevicePage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Device selection"; }

    void Enter(HWND host) override
    {
        m_host = host;
        WNDCLASSW panelClass = {};
        panelClass.lpfnWndProc = &DevicePage::PanelProc;
        panelClass.hInstance = GetModuleHandleW(nullptr);
        panelClass.lpszClassName = kPanelClass;
        RegisterClassW(&panelClass);
        // A hidden window that stands for the application's title: the helper writes it, the page draws it.
        m_title = CreateWindowExW(0, kPanelClass, L"", WS_CHILD, 0, 0, 1, 1, host, nullptr, GetModuleHandleW(nullptr),
                                  nullptr);
        SetWindowLongPtrW(m_title, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        // The host forwards no commands to pages: the page listens there for its buttons' clicks while shown.
        SetWindowSubclass(host, HostProc, 1, reinterpret_cast<DWORD_PTR>(this));
        m_pushButtons.Add(host, L"Choose phone\x2026", 24, kButtonTop, 170, kButtonHeight, kChooseButton);
        m_pushButtons.Add(host, L"Plug work phone", 204, kButtonTop, 170, kButtonHeight, kPlugButton);
        m_pushButtons.Add(host, L"Unplug work phone", 384, kButtonTop, 170, kButtonHeight, kUnplugButton);

        m_helper = std::make_unique<HistoryTitle>();
        m_helper->SetWindow(m_title);
        m_helper->SetApplicationName(L"Contacts Editor", 0);
        m_helper->ShowFilename(1);
        m_helper->SetFilename(L"Family.vcf", 0);
        m_wrapper = std::make_unique<CCSDWrapper>();
        m_wrapper->SetSupportedDevices(L"Object=Contacts");
        m_wrapper->AddListener(m_helper.get());
        m_status = m_wrapper->Initialize(GetAncestor(host, GA_ROOT));
        m_helper->Update();
        m_helper->Note(L"start");
        if (m_status == 0 && m_wrapper->SelectDevice(1) != 0)
            m_helper->Note(L"SelectDevice(1): no clear choice");
        if (wcsstr(GetCommandLineW(), L"--screenshots"))
            Tour();
    }

    void Leave() override
    {
        if (m_wrapper)
            m_wrapper->Terminate();
        m_wrapper.reset();
        m_helper.reset();
        m_pushButtons.Clear();
        if (m_host)
            RemoveWindowSubclass(m_host, HostProc, 1);
        if (m_title)
            DestroyWindow(m_title);
        m_title = nullptr;
        if (m_snapshot)
            DeleteObject(m_snapshot);
        m_snapshot = nullptr;
    }

    bool Tick() override
    {
        const size_t seen = m_helper ? m_helper->history.size() : 0;
        const bool changed = seen != m_seen;
        m_seen = seen;
        return changed;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF dim = DkhLoadColor(nullptr, ZGR_COLOR_TEXT_DISABLED);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        const COLORREF caption = DkhLoadColor(nullptr, ZGR_COLOR_CAPTION);
        const COLORREF captionText = DkhLoadColor(nullptr, ZGR_COLOR_CAPTION_TEXT);
        const COLORREF border = DkhLoadColor(nullptr, ZGR_COLOR_BORDER);
        Swatch(dc, area, window, window);
        const int left = area.left + 24;
        HFONT heading = SuiteFont(22, FW_BOLD), bold = SuiteFont(15, FW_BOLD), plain = SuiteFont(14);
        HGDIOBJ old = SelectObject(dc, heading);
        int y = Text(dc, left, area.top + 16, L"Device selection and the title bar", accent) + 4;
        SelectObject(dc, plain);
        y = Text(dc, left, y,
                 m_status == 0 ? L"CCSDWrapper watches this window; CTitleBarHelper writes the caption below."
                               : Format(L"CCSDWrapper::Initialize failed: 0x%08lX", static_cast<unsigned long>(m_status)),
                 dim);
        // The mock caption of an application.
        RECT bar = {left, y + 8, area.right - 24, y + 42};
        Swatch(dc, bar, caption, border);
        wchar_t title[1100] = {};
        if (m_title)
            GetWindowTextW(m_title, title, 1100);
        SelectObject(dc, bold);
        Text(dc, bar.left + 12, bar.top + 8, title, captionText);
        // The history starts below the row of buttons under the caption.
        y = kButtonTop + kButtonHeight + 16;

        SelectObject(dc, bold);
        y = Text(dc, left, y, L"What the listener heard, and the title it wrote", text) + 2;
        SelectObject(dc, plain);
        if (m_helper)
            for (const HistoryTitle::Entry& entry : m_helper->history) {
                Text(dc, left, y, entry.why, dim);
                y = Text(dc, left + 420, y, entry.title, text) + 2;
            }
        y += 12;
        if (m_snapshot) {
            SelectObject(dc, bold);
            y = Text(dc, left, y, L"The device selection window, as the tour drove it", text) + 4;
            DrawBitmap(dc, left, y, m_snapshot);
        }
        SelectObject(dc, old);
        DeleteObject(heading);
        DeleteObject(bold);
        DeleteObject(plain);
    }

    std::wstring Verify() override
    {
        if (m_status != 0)
            return Format(L"the wrapper did not start: 0x%08lX", static_cast<unsigned long>(m_status));
        if (!m_snapshot)
            return L"the selection window was not seen";
        wchar_t title[1100] = {};
        GetWindowTextW(m_title, title, 1100);
        if (!wcsstr(title, L"Sample phone"))
            return L"the title does not name the sample phone at the end of the tour";
        return L"";
    }

private:
    static LRESULT CALLBACK PanelProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        auto* self = reinterpret_cast<DevicePage*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (self && message == WM_TIMER && wParam == kDriveTimer) {
            // A busy machine may open the selection window after the first tick: the timer waits for it.
            if (self->DriveSelectionWindow())
                KillTimer(window, kDriveTimer);
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    static LRESULT CALLBACK HostProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data)
    {
        const int id = LOWORD(wParam);
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED &&
            (id == kChooseButton || id == kPlugButton || id == kUnplugButton)) {
            reinterpret_cast<DevicePage*>(data)->Command(id);
            return 0;
        }
        return DefSubclassProc(hwnd, message, wParam, lParam);
    }

    void Command(int id)
    {
        if (!m_wrapper)
            return;
        if (id == kChooseButton) {
            if (m_wrapper->SelectDevice(0) != 0)
                m_helper->Note(L"the window was closed without a choice");
        } else if (id == kPlugButton) {
            if (!PhoneCtl(L"plug gallery-work"))
                PhoneCtl(L"new gallery-work --name \"Work phone\" --model Z300 --contacts 40 --seed 7");
        } else if (id == kUnplugButton) {
            PhoneCtl(L"unplug gallery-work");
        }
        InvalidateRect(m_host, nullptr, FALSE);
    }

    // Keeps a picture of the window, then moves to the work phone and takes it; false while there is no window.
    bool DriveSelectionWindow()
    {
        HWND window = FindWindowW(kSelectionClass, nullptr);
        if (!window || !IsWindowVisible(window))
            return false;
        HWND list = GetDlgItem(window, 0x71);
        const LRESULT rows = SendMessageW(list, LB_GETCOUNT, 0, 0);
        for (LRESULT row = 0; row < rows; ++row) {
            wchar_t name[260] = {};
            if (SendMessageW(list, LB_GETTEXTLEN, row, 0) < 260)
                SendMessageW(list, LB_GETTEXT, row, reinterpret_cast<LPARAM>(name));
            if (wcscmp(name, L"Work phone") == 0) {
                SendMessageW(list, LB_SETCURSEL, row, 0);
                SendMessageW(window, WM_COMMAND, MAKEWPARAM(0x71, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
            }
        }
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
        if (m_snapshot)
            DeleteObject(m_snapshot);
        m_snapshot = SnapshotWindow(window);
        PostMessageW(list, WM_KEYDOWN, VK_RETURN, 1);
        return true;
    }

    void Tour()
    {
        const auto waitForTitle = [&](size_t notes) {
            PumpUntil([&] { return m_helper->history.size() >= notes; });
        };
        PhoneCtl(L"new gallery-old --name \"Old phone\" --model X1 --manufacturer Orbix --detached --unsupported");
        if (!PhoneCtl(L"plug gallery-work"))
            PhoneCtl(L"new gallery-work --name \"Work phone\" --model Z300 --contacts 40 --seed 7");
        PumpUntil([&] { return m_wrapper->GetDeviceCount() >= 2; });
        m_helper->Note(L"Work phone plugged in: the current phone stays");
        SetTimer(m_title, kDriveTimer, 500, nullptr);
        m_wrapper->SelectDevice(0);
        size_t notes = m_helper->history.size();
        PhoneCtl(L"unplug gallery-work");
        waitForTitle(notes + 1);
        PhoneCtl(L"plug gallery-old");
        PumpUntil([&] { return m_wrapper->GetDeviceCount() >= 2; });
        notes = m_helper->history.size();
        PhoneCtl(L"unplug sample");
        waitForTitle(notes + 1);
        notes = m_helper->history.size();
        PhoneCtl(L"plug sample");
        waitForTitle(notes + 1);
        PhoneCtl(L"unplug gallery-old");
        PumpUntil([&] { return m_wrapper->GetDeviceCount() == 1; });
    }

    HWND m_host = nullptr;
    HWND m_title = nullptr;
    gallery::PushButtons m_pushButtons;
    HBITMAP m_snapshot = nullptr;
    std::unique_ptr<HistoryTitle> m_helper;
    std::unique_ptr<CCSDWrapper> m_wrapper;
    long m_status = 0;
    size_t m_seen = 0;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeDevicePage()
{
    return std::make_unique<DevicePage>();
}
