// Device selection through the DLL: the listener calls for each change of the device list, made by the
// controller in another process; the selection window driven by posted keys; the title bar helper.
#include <gtest/gtest.h>

#include "DeviceTestSupport.h"
#include "HandleCounter.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/TitleBarHelper.h"

using namespace zcmod_test;

namespace {

constexpr wchar_t kFilter[] = L"Object=Contacts";
constexpr wchar_t kRememberedKey[] = L"SOFTWARE\\Zelvo\\LaunchApplication";

class DeviceSelection : public ::testing::Test {
protected:
    void SetUp() override { service.UseStandIns(); }

    // Starts watching the application window with the listener and the contacts filter.
    void Start()
    {
        wrapper.SetSupportedDevices(kFilter);
        wrapper.AddListener(&recorder);
        ASSERT_EQ(wrapper.Initialize(app.Get()), 0);
    }
    // Plugs, unplugs or makes a phone with the controller and waits for the listener calls to reach `count`.
    void Ctl(const std::wstring& args, size_t count)
    {
        ASSERT_EQ(phones.Ctl(args).exitCode, 0u) << std::string(args.begin(), args.end());
        ASSERT_TRUE(recorder.WaitFor(count)) << "after " << std::string(args.begin(), args.end()) << ": "
                                             << recorder.calls.size() << " calls";
    }
    std::wstring Attached(const std::wstring& name, const std::wstring& serial) const
    {
        return L"attached " + name + L" USB " + serial;
    }

    SuiteRegistry suite;
    FreshResources resources{suite, L"eng"};
    ServiceRegistry service;
    Phones phones;
    AppWindow app;
    CallRecorder recorder;
    CTitleBarHelper title;  // a second listener where a test adds it
    CCSDWrapper wrapper;
};

using Calls = std::vector<std::wstring>;

}  // namespace

// Null or child windows, a window watched already and missing modules are refused.
TEST_F(DeviceSelection, RefusesWhatItCannotWatch)
{
    EXPECT_EQ(wrapper.SelectDevice(1), static_cast<long>(0x80004003L));
    EXPECT_EQ(wrapper.SelectDevice(7ul, 0), static_cast<long>(0x80004003L));
    EXPECT_EQ(wrapper.GetSupportedDeviceCount(), -1);
    EXPECT_EQ(wrapper.Initialize(nullptr), static_cast<long>(0x80070057L));
    HWND child = CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 5, 5, app.Get(), nullptr, nullptr, nullptr);
    EXPECT_EQ(wrapper.Initialize(child), static_cast<long>(0x80004005L));
    DestroyWindow(child);

    ASSERT_EQ(wrapper.Initialize(app.Get()), 0);
    EXPECT_NE(GetPropW(app.Get(), L"__DeskHubCCSDWrapperImplInstancePtr"), nullptr);
    EXPECT_EQ(wrapper.Initialize(app.Get()), static_cast<long>(0x80004005L)) << "watched already";
    CCSDWrapper other;
    EXPECT_EQ(other.Initialize(app.Get()), static_cast<long>(0x80004005L)) << "another wrapper's window";
    const LONG_PTR watching = GetWindowLongPtrW(app.Get(), GWLP_WNDPROC);
    wrapper.Terminate();
    EXPECT_NE(GetWindowLongPtrW(app.Get(), GWLP_WNDPROC), watching);
    EXPECT_EQ(GetPropW(app.Get(), L"__DeskHubCCSDWrapperImplInstancePtr"), nullptr);
    EXPECT_EQ(GetPropW(app.Get(), L"__DeskHubCCSDWrapperImplOrgWinproc"), nullptr);
    EXPECT_EQ(wrapper.SelectDevice(1), static_cast<long>(0x80004003L));

    // Without its modules the start fails, leaving nothing on the window.
    {
        FreshResources resources(suite, L"xyz");
        EXPECT_EQ(wrapper.Initialize(app.Get()), -11) << "no language module";
    }
    ASSERT_EQ(wrapper.Initialize(app.Get()), 0);
    wrapper.Terminate();
    EXPECT_EQ(SelectionWindow(), nullptr) << "the failed start holds on to the window";
    {
        FreshResources resources(suite, L"eng", L"NoSuchTheme");
        suite.SetMachineTheme(L"NoSuchTheme");
        EXPECT_EQ(wrapper.Initialize(app.Get()), -13) << "no theme module";
    }
    EXPECT_EQ(GetPropW(app.Get(), L"__DeskHubCCSDWrapperImplInstancePtr"), nullptr);
}

// One phone plugged in with none current is taken silently; an unsupported one only reports itself; pulling
// the current phone with another supported one there takes that one; the last one gone is a detach.
TEST_F(DeviceSelection, ListenerCallsAsPhonesComeAndGo)
{
    Start();
    EXPECT_EQ(wrapper.SelectDevice(1), -5) << "no phone";
    HWND window = SelectionWindow();
    EXPECT_TRUE(GetWindowLongPtrW(GetDlgItem(window, zcmod::device::kEmptyTextId), GWL_STYLE) & WS_VISIBLE)
        << "an empty list says how to connect a phone";
    const std::wstring a = phones.New(L"A", L"--name Alpha");
    ASSERT_TRUE(recorder.WaitFor(1));
    EXPECT_EQ(recorder.calls, Calls({Attached(L"Alpha", a)}));
    EXPECT_FALSE(IsWindowVisible(SelectionWindow())) << "a clear choice shows no window";

    // A second phone while one is current changes nothing; pulling the current one takes the other.
    const std::wstring b = phones.New(L"B", L"--name Beta");
    ASSERT_TRUE(PumpUntil([&] { return wrapper.GetDeviceCount() == 2; }));
    EXPECT_EQ(recorder.calls.size(), 1u);
    EXPECT_EQ(wrapper.GetSupportedDeviceCount(), 2);
    Ctl(L"unplug A", 2);
    EXPECT_EQ(recorder.calls.back(), Attached(L"Beta", b));

    // An unsupported phone is not chosen: its capability text doesn't pass the filter.
    phones.New(L"U", L"--name Unknown --unsupported");
    ASSERT_TRUE(PumpUntil([&] { return wrapper.GetDeviceCount() == 2; }));
    EXPECT_EQ(wrapper.GetSupportedDeviceCount(), 1);
    Ctl(L"unplug B", 3);
    EXPECT_EQ(recorder.calls.back(), L"unsupported");
    // The unsupported report cleared the current device's strings: the detach names no manufacturer.
    Ctl(L"unplug U", 4);
    EXPECT_EQ(recorder.calls.back(), L"detached ");
    EXPECT_EQ(wrapper.GetDeviceCount(), 0);

    // Only an unsupported phone: reported, never attached; by id it is refused.
    Ctl(L"plug U", 5);
    EXPECT_EQ(recorder.calls.back(), L"unsupported");
    EXPECT_EQ(wrapper.SelectDevice(1), -5);
    Ctl(L"plug A", 6);
    EXPECT_EQ(recorder.calls.back(), Attached(L"Alpha", a));
    // Losing a phone that isn't current says nothing; losing the current one names its manufacturer.
    ASSERT_EQ(phones.Ctl(L"unplug U").exitCode, 0u);
    ASSERT_TRUE(PumpUntil([&] { return wrapper.GetDeviceCount() == 1; }));
    Ctl(L"unplug A", 7);
    EXPECT_EQ(recorder.calls.back(), L"detached Zelvo");
}

TEST_F(DeviceSelection, SelectionByIdFollowsTheCapabilityText)
{
    const std::wstring a = phones.New(L"A", L"--name Alpha");
    phones.New(L"U", L"--name Unknown --unsupported");
    Start();
    HWND list = GetDlgItem(SelectionWindow(), zcmod::device::kDeviceListId);
    ASSERT_EQ(SendMessageW(list, LB_GETCOUNT, 0, 0), 2);
    const unsigned long idA = static_cast<unsigned long>(SendMessageW(list, LB_GETITEMDATA, 0, 0));
    const unsigned long idU = static_cast<unsigned long>(SendMessageW(list, LB_GETITEMDATA, 1, 0));
    EXPECT_EQ(wrapper.SelectDevice(idU, 0), -6);
    EXPECT_EQ(wrapper.SelectDevice(0xFFFFFFFEul, 0), -5);
    EXPECT_TRUE(recorder.calls.empty());
    EXPECT_EQ(wrapper.SelectDevice(idA, 0), 0);
    EXPECT_EQ(recorder.calls, Calls({Attached(L"Alpha", a)}));
    // The silent choice filters too: one of the two passes.
    EXPECT_EQ(wrapper.SelectDevice(1), 0);
    EXPECT_EQ(recorder.calls.size(), 2u);
}

// Two phones: no silent choice, the window decides (the title bar asks for one). The phone chosen last time is
// preselected; the arrow keys move, Enter takes, Escape leaves the current device as it was; unsupported rows
// can't be taken.
TEST_F(DeviceSelection, TheWindowDecidesBetweenTwoPhones)
{
    const std::wstring a = phones.New(L"A", L"--name Alpha");
    const std::wstring b = phones.New(L"B", L"--name Beta");
    phones.New(L"U", L"--name Unknown --unsupported");
    SetString(HKEY_CURRENT_USER, kRememberedKey, L"selectedPhone", b);
    title.SetWindow(app.Get());
    title.SetApplicationName(L"Editor", 0);
    wrapper.AddListener(&title);
    Start();
    EXPECT_EQ(wrapper.SelectDevice(1), -5);
    EXPECT_FALSE(IsWindowVisible(SelectionWindow()));
    title.Update();
    EXPECT_EQ(app.Title(), L"Editor - Several phones connected - choose one");

    bool appDisabled = false;
    ModalRun run = RunSelectionWindow(wrapper, [&](HWND, HWND list) {
        appDisabled = !IsWindowEnabled(app.Get());
        PostKey(list, VK_RETURN);
    });
    ASSERT_FALSE(run.timedOut);
    EXPECT_TRUE(appDisabled);
    EXPECT_TRUE(IsWindowEnabled(app.Get()));
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(recorder.calls, Calls({Attached(L"Beta", b)})) << "preselected from selectedPhone";
    EXPECT_EQ(app.Title(), L"Editor - Connected to Beta") << "the title bar helper listens too";

    // Up to Alpha; the choice is remembered.
    run = RunSelectionWindow(wrapper, [&](HWND, HWND list) {
        PostKey(list, VK_UP);
        PostKey(list, VK_RETURN);
    });
    ASSERT_FALSE(run.timedOut);
    EXPECT_EQ(recorder.calls.back(), Attached(L"Alpha", a));
    wchar_t remembered[64] = {};
    DWORD size = sizeof(remembered);
    RegGetValueW(HKEY_CURRENT_USER, kRememberedKey, L"selectedPhone", RRF_RT_REG_SZ, nullptr, remembered, &size);
    EXPECT_EQ(std::wstring(remembered), a);

    // The unsupported row: Enter does nothing and OK is off; Escape ends with no choice.
    bool okEnabled = true;
    run = RunSelectionWindow(wrapper, [&](HWND window, HWND list) {
        PostKey(list, VK_END);
        PostKey(list, VK_RETURN);
        WaitUntil([&] { return !IsWindowEnabled(GetDlgItem(window, zcmod::device::kCmdAccept)); }, 3000);
        okEnabled = IsWindowEnabled(GetDlgItem(window, zcmod::device::kCmdAccept));
        PostKey(list, VK_ESCAPE);
    });
    ASSERT_FALSE(run.timedOut);
    EXPECT_FALSE(okEnabled);
    EXPECT_EQ(run.result, -5);
    EXPECT_EQ(recorder.calls.size(), 2u);

    // Hidden, the unsupported phone is not in the list. A phone plugged in while the window is up appears in it
    // and can be chosen at once.
    wrapper.SetHideUnsupported(1);
    std::wstring c;
    int rowsBefore = 0, rowsAfter = 0;
    run = RunSelectionWindow(wrapper, [&](HWND, HWND list) {
        rowsBefore = ListRows(list);
        c = phones.New(L"C", L"--name Gamma");
        WaitUntil([&] { return ListRows(list) == 3; });
        rowsAfter = ListRows(list);
        PostKey(list, VK_END);
        PostKey(list, VK_RETURN);
    });
    ASSERT_FALSE(run.timedOut);
    EXPECT_EQ(rowsBefore, 2);
    EXPECT_EQ(rowsAfter, 3);
    EXPECT_EQ(recorder.calls.back(), Attached(L"Gamma", c));
}

// The service stops and starts again: its notifications no longer come, and opening the window reads the list
// anew on a new session.
TEST_F(DeviceSelection, TheWindowReadsTheListAgainAfterTheServiceCameBack)
{
    phones.New(L"A");
    Start();
    ASSERT_EQ(wrapper.SelectDevice(1), 0);
    ASSERT_EQ(phones.Ctl(L"stop").exitCode, 0u);
    ASSERT_TRUE(PumpUntil([] { return GetModuleHandleW(L"LinkAPI64.dll") == nullptr; }));
    ASSERT_EQ(phones.Ctl(L"start").exitCode, 0u);
    ASSERT_TRUE(PumpUntil([] { return GetModuleHandleW(L"LinkAPI64.dll") != nullptr; }));
    phones.New(L"B");
    int rows = 0;
    const ModalRun run = RunSelectionWindow(wrapper, [&](HWND, HWND list) {
        rows = ListRows(list);
        PostKey(list, VK_ESCAPE);
    });
    ASSERT_FALSE(run.timedOut);
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(wrapper.GetSupportedDeviceCount(), 2);
    // Notifications come again on the new session.
    Ctl(L"unplug A", 2);
    EXPECT_EQ(recorder.calls.back().substr(0, 14), L"attached B USB");
}

TEST_F(DeviceSelection, NoHandleLeftOverOpeningAndClosingTheWindow)
{
    phones.New(L"A");
    phones.New(L"B");
    HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    const auto cycle = [&] {
        ASSERT_EQ(wrapper.Initialize(app.Get()), 0);
        const ModalRun run = RunSelectionWindow(wrapper, [&](HWND, HWND list) {
            PostKey(list, VK_DOWN);
            PostKey(list, VK_ESCAPE);
        });
        ASSERT_FALSE(run.timedOut);
        wrapper.Terminate();
    };
    cycle();
    const HandleCounter::Counts before = counter.Live();
    for (int i = 0; i < 5; ++i)
        cycle();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " against " << before.ToString();
    EXPECT_EQ(SelectionWindow(), nullptr) << "the window goes with the last wrapper";
}

// The title bar helper in both languages: file, application and phone state, the separator only between parts.
TEST(TitleBar, ShowsFileApplicationAndPhoneState)
{
    const struct {
        const wchar_t* language;
        const wchar_t* noDevice;
        const wchar_t* attached;  // with "Alpha"
        const wchar_t* unsupported;
    } cases[] = {
        {L"eng", L"No phone connected", L"Connected to Alpha", L"Unsupported phone connected"},
        {L"heb", L"אין טלפון מחובר", L"מחובר אל Alpha", L"מחובר טלפון שאינו נתמך"},
    };
    SuiteRegistry suite;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.language, c.language + 3));
        FreshResources resources(suite, c.language);
        AppWindow app;
        CTitleBarHelper helper;
        EXPECT_EQ(helper.SetWindow(nullptr), 0);
        ASSERT_EQ(helper.SetWindow(app.Get()), 1);
        helper.SetApplicationName(L"Editor", 1);
        EXPECT_EQ(app.Title(), std::wstring(L"Editor - ") + c.noDevice);

        helper.OnDeviceAttached(L"Zelvo", L"Z100", L"Alpha", L"USB", L"1");
        helper.ShowFilename(1);
        helper.SetFilename(L"Report.txt", 0);
        helper.SetSeparator(L" | ", 1);
        EXPECT_EQ(app.Title(), std::wstring(L"Report.txt | Editor | ") + c.attached);
        helper.OnUnsupportedDeviceAttached();
        EXPECT_EQ(app.Title(), std::wstring(L"Report.txt | Editor | ") + c.unsupported);
        helper.OnDeviceDetached(L"Zelvo");
        EXPECT_EQ(app.Title(), std::wstring(L"Report.txt | Editor | ") + c.noDevice);
        EXPECT_STREQ(helper.m_szDeviceManufacturer, L"Zelvo") << "the manufacturer stays";

        // All parts off gives an empty title, the phone state alone no separator.
        helper.SetFilename(L"", 0);
        helper.ShowDeviceStatus(0);
        helper.ShowApplicationName(0);
        helper.Update();
        EXPECT_EQ(app.Title(), L"");
        helper.ShowDeviceStatus(1);
        helper.Update();
        EXPECT_EQ(app.Title(), c.noDevice);
        // An overlong text is refused; the old one stays.
        helper.SetApplicationName(std::wstring(260, L'x').c_str(), 1);
        EXPECT_STREQ(helper.m_szApplicationName, L"Editor");
        // A destroyed window is left alone.
        DestroyWindow(app.Get());
        helper.Update();
    }
}
