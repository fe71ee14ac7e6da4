// The menu bar, driven with real input while its popup runs the platform's modal menu loop: a script of
// steps runs on a thread timer inside that loop, and a watchdog ends any menu and fails the test instead of
// letting the suite hang. Keyboard wrap across the bar, Alt mnemonics, the mouse sliding and the nudged mouse
// that keeps keyboard mode, the click on the open button, the hook gone on every way out, the owner-drawn
// items, the language's fonts, goldens of the bar and of open popups, and handle counts over many popups.
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DeviceTestSupport.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "zcmod/VuikMenuBarCtrl.h"

using namespace testskin;
using msgseq::input;
using msgseq::Recorder;
using zcmod_test::HandleCounter;

namespace {

// Opens the bar's protected state.
class CTestMenuBar : public CVuikMenuBarCtrl {
public:
    bool KeyboardMode() const { return m_bKeyboardMode; }
    bool IgnoreNextDown() const { return m_bIgnoreNextDown; }
    int ActiveIndex() const { return IndexOf(m_pActiveButton); }
};

const COLORREF kStrip = RGB(0x37, 0x37, 0x37);
const UINT WM_TEST_CLOSE_POPUP = WM_APP + 7;
const POINT kAway = {300, 500};  // on no window of the tests

std::vector<HWND> PopupWindows()
{
    std::vector<HWND> found;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND hwnd, LPARAM param) -> BOOL {
            wchar_t name[16] = {};
            if (IsWindowVisible(hwnd) && GetClassNameW(hwnd, name, 16) && wcscmp(name, L"#32768") == 0)
                reinterpret_cast<std::vector<HWND>*>(param)->push_back(hwnd);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// A window as the screen shows it (a popup over the bar left out). A window of a right-to-left layout has a
// mirrored context; the copy goes to a context mirrored the same way, so that no mirroring happens between them.
Capture CaptureShown(HWND hwnd)
{
    RECT client;
    GetClientRect(hwnd, &client);
    Canvas canvas(client.right, client.bottom);
    HDC dc = GetDC(hwnd);
    const bool rtl = (GetWindowLongW(hwnd, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0;
    if (rtl)
        SetLayout(canvas, LAYOUT_RTL);
    BitBlt(canvas, 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    if (rtl)
        SetLayout(canvas, 0);
    ReleaseDC(hwnd, dc);
    return canvas.Read();
}

// Runs steps on a thread timer, inside whatever modal loop is running, until each has said it is done; a
// watchdog fails the script and ends any menu. Once finished, the timer keeps ending menus that open.
class Script {
public:
    using Step = std::function<bool()>;

    explicit Script(CVuikMenuBarCtrl* bar) : m_bar(bar)
    {
        s_current = this;
        m_tick = SetTimer(nullptr, 0, 30, Tick);
    }
    ~Script()
    {
        KillTimer(nullptr, m_tick);
        s_current = nullptr;
    }
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

    // True when every step finished before the watchdog. The application's loop: the bar's accelerators first.
    bool Run(std::vector<Step> steps)
    {
        m_steps = std::move(steps);
        m_index = 0;
        m_done = m_failed = false;
        m_stepStart = m_runStart = GetTickCount();
        MSG msg;
        while (!m_done && GetMessageW(&msg, nullptr, 0, 0)) {  // the tick ends the run, by its watchdog at the latest
            if (m_bar && m_bar->TranslateMenuAccelerator(&msg))
                continue;
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        Recorder::Pump(30);  // a request to open that is still queued is ended by the tick
        return m_done && !m_failed;
    }
    size_t FailedStep() const { return m_index; }
    DWORD Elapsed() const { return GetTickCount() - m_stepStart; }
    void SetBar(CVuikMenuBarCtrl* bar) { m_bar = bar; }

    static inline Script* s_current = nullptr;

private:
    // Runs the steps that are ready; the watchdog ends any menu and fails the script once its time is up.
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
    {
        Script* s = s_current;
        if (!s)
            return;
        if (!s->m_done && GetTickCount() - s->m_runStart > 6000)
            s->m_failed = s->m_done = true;
        if (s->m_done) {
            if (!PopupWindows().empty())
                EndMenu();
            return;
        }
        while (s->m_index < s->m_steps.size() && s->m_steps[s->m_index]()) {
            ++s->m_index;
            s->m_stepStart = GetTickCount();
        }
        if (s->m_index >= s->m_steps.size())
            s->m_done = true;
    }
    CVuikMenuBarCtrl* m_bar;
    std::vector<Step> m_steps;
    size_t m_index = 0;
    bool m_done = false;
    bool m_failed = false;
    DWORD m_stepStart = 0, m_runStart = 0;
    UINT_PTR m_tick = 0;
};

using Step = Script::Step;
Step Do(std::function<void()> action)
{
    return [action] {
        action();
        return true;
    };
}
// Waits for a state, but at most `limit`: a wrong state then shows in the test's own comparison.
Step Settle(std::function<bool()> condition, DWORD limit = 2000)
{
    return [condition, limit] { return condition() || Script::s_current->Elapsed() >= limit; };
}
Step Pause(DWORD milliseconds)
{
    return [milliseconds] { return Script::s_current->Elapsed() >= milliseconds; };
}
Step Press(WORD vk)
{
    return Do([vk] { input::Press(vk); });
}
Step ClickAt(std::function<POINT()> where)
{
    return Do([where] { input::Click(where()); });
}

// The suite's window: a frame with a dark strip (a panel of its own buffer), the bar on it at y 30, and a
// host that records what the bar passes on.
class MenuBar : public ::testing::Test {
public:
    void SetUp() override { registry.SetUserTheme(L"Test"); }
    // Also between the cases of a table: the next Build starts afresh.
    void TearDown() override
    {
        bar.reset();
        if (frame.m_hWnd)
            DestroyWindow(frame.m_hWnd);
        frame.DeleteBackBuffer();
        frame.m_hWnd = nullptr;
        if (menu)
            DestroyMenu(menu);
        menu = nullptr;
        if (host)
            DestroyWindow(host);
        host = nullptr;
    }

    // File (with a submenu), Edit (a greyed item), View (a check and a radio pair) and Help.
    static HMENU MakeMenu()
    {
        struct Item {
            UINT flags;
            UINT_PTR id;
            const wchar_t* text;
        };
        const auto popup = [](std::initializer_list<Item> items, HMENU menu = CreatePopupMenu()) {
            for (const Item& item : items)
                AppendMenuW(menu, item.flags, item.id, item.text);
            return menu;
        };
        const auto sub = [](HMENU menu) { return reinterpret_cast<UINT_PTR>(menu); };
        HMENU recent = popup({{MF_STRING, 111, L"notes.txt"}, {MF_STRING, 112, L"contacts.vcf"}});
        HMENU view = popup({{MF_STRING | MF_CHECKED, 301, L"&Toolbar"}, {MF_SEPARATOR, 0, nullptr},
                            {MF_STRING, 302, L"&Large icons"}, {MF_STRING, 303, L"&Small icons"}});
        CheckMenuRadioItem(view, 302, 303, 302, MF_BYCOMMAND);
        return popup({{MF_POPUP, sub(popup({{MF_STRING, 101, L"&New\tCtrl+N"},
                                            {MF_STRING, 102, L"&Open...\tCtrl+O"},
                                            {MF_SEPARATOR, 0, nullptr},
                                            {MF_POPUP, sub(recent), L"&Recent files"},
                                            {MF_SEPARATOR, 0, nullptr},
                                            {MF_STRING, 103, L"E&xit\tAlt+F4"}})),
                       L"&File"},
                      {MF_POPUP,
                       sub(popup({{MF_STRING, 201, L"&Undo\tCtrl+Z"}, {MF_STRING | MF_GRAYED, 202, L"&Redo\tCtrl+Y"}})),
                       L"&Edit"},
                      {MF_POPUP, sub(view), L"&View"},
                      {MF_POPUP, sub(popup({{MF_STRING, 401, L"&About"}})), L"&Help"}},
                     CreateMenu());
    }

    // The frame at a fixed place on the screen, right to left when `exStyle` says so, and the bar on it.
    void Build(DWORD exStyle = 0)
    {
        frame.SetSkin(&strip);
        ASSERT_TRUE(frame.Create(msgseq::PlainClass(), nullptr, RECT{40, 40, 440, 160}, L"", 0,
                                 WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, exStyle, nullptr));
        host = recorder.CreateParent("host", RECT{600, 40, 700, 100});
        recorder.SetHandler([](HWND, UINT message, WPARAM, LPARAM, LRESULT* result) {
            if (message != WM_TEST_CLOSE_POPUP)
                return false;
            // Inside the menu loop: the popup paints its items, then the menu ends.
            for (HWND popup : PopupWindows())
                UpdateWindow(popup);
            EndMenu();
            *result = 0;
            return true;
        });
        menu = MakeMenu();
        bar = std::make_unique<CTestMenuBar>();
        ASSERT_TRUE(bar->Create(menu, frame.m_hWnd, POINT{0, 30}, host));
        SetForegroundWindow(frame.m_hWnd);
        SetActiveWindow(frame.m_hWnd);
        RedrawWindow(frame.m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        Recorder::Pump(20);
    }

    HWND Button(int i) const { return bar->GetButton(i)->m_hWnd; }
    std::function<POINT()> ButtonCentre(int i) const
    {
        return [this, i] { return input::Centre(Button(i)); };
    }
    Step OpenIs(int index) const
    {
        return [this, index] { return bar->ActiveIndex() == index && !PopupWindows().empty(); };
    }
    Step Closed() const
    {
        return [this] { return !CVuikMenuBarCtrl::IsPopupOpen() && bar->ActiveIndex() < 0 && PopupWindows().empty(); };
    }

    // A menu opened by a click on button `start` (-1: by the first of `middle`), moved by `middle`, and the state
    // it settles in: the active button (-1: closed), the popup windows open and the keyboard mode.
    struct Move {
        const char* name;
        int start;
        std::vector<Step> middle;
        int active;
        size_t windows;
        bool keyboard;
    };
    void Drive(const std::vector<Move>& cases)
    {
        for (const Move& c : cases) {
            SCOPED_TRACE(c.name);
            Script script(bar.get());
            input::MoveTo(kAway);
            std::vector<Step> steps;
            if (c.start >= 0)
                steps = {ClickAt(ButtonCentre(c.start)), OpenIs(c.start), Pause(60)};
            steps.insert(steps.end(), c.middle.begin(), c.middle.end());
            int seenActive = -2;
            size_t seenWindows = 0;
            bool keyboard = false;
            LRESULT checked = -1;
            steps.insert(steps.end(),
                         {Settle([&] { return bar->ActiveIndex() == c.active && PopupWindows().size() == c.windows; }),
                          Pause(200), Do([&] {
                              seenActive = bar->ActiveIndex();
                              seenWindows = PopupWindows().size();
                              keyboard = bar->KeyboardMode();
                              if (c.active >= 0)
                                  checked = SendMessageW(Button(c.active), BM_GETCHECK, 0, 0);
                          }),
                          Do([] { input::MoveTo(kAway); }), Pause(60), Press(VK_ESCAPE), Press(VK_ESCAPE), Closed()});
            ASSERT_TRUE(script.Run(steps)) << "stopped at step " << script.FailedStep();
            EXPECT_EQ(seenActive, c.active);
            EXPECT_EQ(seenWindows, c.windows);
            EXPECT_EQ(keyboard, c.keyboard);
            if (c.active >= 0) {
                EXPECT_EQ(checked, 1) << "the open menu's button shows Open";
                EXPECT_EQ(SendMessageW(Button(c.active), BM_GETCHECK, 0, 0), 0) << "the closed menu's button is let go";
            }
            // Whatever happened, nothing opens afterwards by itself.
            Recorder::Pump(150);
            EXPECT_FALSE(CVuikMenuBarCtrl::IsPopupOpen());
            EXPECT_FALSE(bar->IgnoreNextDown()) << "the closing click was the one to ignore";
        }
    }

    zcmod_test::SuiteRegistry registry;
    LibraryState lib;
    CTestSkin strip{SkinDef{kStrip, kStrip}};
    CTestPanel frame;
    Recorder recorder;
    HWND host = nullptr;
    HMENU menu = nullptr;
    std::unique_ptr<CTestMenuBar> bar;
};

// Alt with the letter after a lone "&" (upper-cased) opens that button's menu; "&&" is no mnemonic.
TEST_F(MenuBar, AcceleratorTableFromMnemonics)
{
    const struct {
        std::vector<const wchar_t*> texts;
        std::vector<std::pair<WORD, WORD>> keys;  // Alt with (key, button)
    } cases[] = {
        {{L"&File", L"&edit"}, {{'F', 0}, {'E', 1}}},
        {{L"Sales && &Marketing"}, {{'M', 0}}},
        {{L"R&&D", L"No letter", L"Tools&9"}, {{'9', 2}}},
        {{L"Plain"}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.texts[0])));
        HMENU source = CreateMenu();
        for (const wchar_t* text : c.texts)
            AppendMenuW(source, MF_POPUP, reinterpret_cast<UINT_PTR>(CreatePopupMenu()), text);
        CTestMenuBar one;
        ASSERT_TRUE(one.Create(source, GetDesktopWindow(), POINT{0, 0}, nullptr));
        HACCEL table = one.GetAcceleratorTable();
        std::vector<ACCEL> got(table ? CopyAcceleratorTableW(table, nullptr, 0) : 0);
        if (!got.empty())
            CopyAcceleratorTableW(table, got.data(), static_cast<int>(got.size()));
        std::vector<std::pair<WORD, WORD>> keys;
        for (const ACCEL& a : got) {
            EXPECT_EQ(a.fVirt, FALT | FVIRTKEY);
            keys.emplace_back(a.key, a.cmd);
        }
        EXPECT_EQ(keys, c.keys);
        DestroyWindow(one.m_hWnd);
        DestroyMenu(source);
    }
}

// Left and right move across the bar with wrap-around; inside a drop-down they open and close submenus. Alt
// with a top-level mnemonic opens that menu, through the accelerator table and the synthetic click (the
// cursor far from the bar). The open menu's button shows Open, and is let go when the menu closes.
TEST_F(MenuBar, KeyboardMovesAcrossTheBar)
{
    Build();
    const auto keys = [](std::initializer_list<WORD> list) {
        std::vector<Step> steps;
        for (WORD key : list)
            steps.insert(steps.end(), {Press(key), Pause(90)});
        return steps;
    };
    const std::vector<Step> altE = {Do([] {
        input::Key(VK_MENU, false);
        input::Press('E');
        input::Key(VK_MENU, true);
    })};
    // A move across the bar is keyboard mode.
    Drive({
        {"left from the first wraps to the last", 0, keys({VK_LEFT}), 3, 1, true},
        {"right from the last wraps to the first", 3, keys({VK_RIGHT}), 0, 1, true},
        {"right from the second, then twice left", 1, keys({VK_RIGHT, VK_LEFT, VK_LEFT}), 0, 1, true},
        {"right on an item with a submenu opens it", 0, keys({VK_DOWN, VK_DOWN, VK_DOWN, VK_RIGHT}), 0, 2, false},
        // A left in the submenu that moved across the bar would end on the third button.
        {"left closes the submenu, then moves on", 0, keys({VK_DOWN, VK_DOWN, VK_DOWN, VK_RIGHT, VK_LEFT, VK_LEFT}),
         3, 1, true},
        {"Alt E", -1, altE, 1, 1, false},  // the letters' table has a test of its own
    });
}

// The mouse over another button slides the open menu there; a click on the open button closes it for good;
// a click on another button opens that one. After a keyboard move, a nudge of the mouse keeps the keyboard's
// menu, a real move gives the menu back to the mouse.
TEST_F(MenuBar, MouseSlidesClicksAndNudges)
{
    Build();
    // The mouse `dx` pixels right of button i's centre.
    const auto beside = [this](int i, int dx) {
        return [this, i, dx] {
            const POINT p = input::Centre(Button(i));
            return POINT{p.x + dx, p.y};
        };
    };
    const auto rightThenMove = [&](int dx) {
        return std::vector<Step>{Press(VK_RIGHT), OpenIs(1), Pause(60), Do([=] { input::MoveTo(beside(0, dx)()); })};
    };
    Drive({
        {"sliding to the third button", 0, {Do([=] { input::MoveTo(beside(2, 0)()); })}, 2, 1, false},
        // Five pixels aside, so that the two clicks make no double click.
        {"a click on the open button closes it and leaves it closed", 0, {ClickAt(beside(0, 5))}, -1, 0, false},
        // The way there slides the menu over; the click then closes it, as on a native menu bar.
        {"a click on another button", 0, {ClickAt(beside(1, 0))}, -1, 0, false},
        {"a two-pixel nudge after a key keeps the keyboard's menu", 0, rightThenMove(2), 1, 1, true},
        {"a six-pixel move after a key takes the menu back", 0, rightThenMove(6), 0, 1, false},
    });
}

// However a popup ends, the message-filter hook goes with it, and the button is let go. (Escape and the
// closing clicks end every case of the tables above, and the popup cycles of the handle test end the loop by
// EndMenu with the hooks counted.)
TEST_F(MenuBar, HookRemovedOnEveryWayOut)
{
    enum Way { ChooseItem, DestroyWindowDuring, DeleteBarDuring };
    const struct {
        const char* name;
        Way way;
    } cases[] = {{"an item chosen by its letter", ChooseItem},
                 {"the window destroyed", DestroyWindowDuring},
                 {"the bar deleted", DeleteBarDuring}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Build();
        HandleCounter counter;
        const long hooks = counter.Live()[HandleCounter::Hook];
        long hooksOpen = -1;
        Script script(bar.get());
        recorder.Only({WM_COMMAND, WM_INITMENUPOPUP, WM_ENTERMENULOOP, WM_EXITMENULOOP});
        std::vector<Step> steps = {ClickAt(ButtonCentre(1)), OpenIs(1), Pause(60),
                                   Do([&] { hooksOpen = counter.Live()[HandleCounter::Hook]; })};
        switch (c.way) {
            case ChooseItem:
                steps.push_back(Press('U'));  // the "&Undo" item's letter, though the items are owner-drawn
                break;
            case DestroyWindowDuring:
                steps.push_back(Do([&] { DestroyWindow(frame.m_hWnd); }));
                break;
            case DeleteBarDuring:
                steps.push_back(Do([&] {
                    script.SetBar(nullptr);
                    bar.reset();
                }));
                break;
        }
        steps.push_back(Step([] { return !CVuikMenuBarCtrl::IsPopupOpen() && PopupWindows().empty(); }));
        ASSERT_TRUE(script.Run(steps)) << "stopped at step " << script.FailedStep();
        EXPECT_EQ(hooksOpen, hooks + 1);
        EXPECT_EQ(counter.Live()[HandleCounter::Hook], hooks);
        if (bar && IsWindow(bar->m_hWnd)) {
            EXPECT_LT(bar->ActiveIndex(), 0);
            EXPECT_EQ(SendMessageW(Button(1), BM_GETCHECK, 0, 0), 0);
            // The host heard the loop and the popup, and the chosen command.
            EXPECT_EQ(recorder.Count(WM_ENTERMENULOOP), 1);
            EXPECT_EQ(recorder.Count(WM_EXITMENULOOP), 1);
            EXPECT_GE(recorder.Count(WM_INITMENUPOPUP), 1);
            EXPECT_EQ(recorder.Count(WM_COMMAND), c.way == ChooseItem ? 1 : 0);
        }
        TearDown();
    }
}

// The Chinese and Thai languages get a larger, regular button font and a larger item font.
TEST_F(MenuBar, FontsFollowTheLanguage)
{
    const struct {
        const wchar_t* code;
        LONG itemHeight, buttonHeight, buttonWeight;
    } cases[] = {{L"eng", 13, 12, FW_BOLD},      {L"chi-tc", 15, 15, FW_NORMAL}, {L"CHI-HK", 15, 15, FW_NORMAL},
                 {L"chi-sc", 15, 15, FW_NORMAL}, {L"THA", 16, 16, FW_NORMAL},    {L"chi", 13, 12, FW_BOLD}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.code)));
        zcmod_test::FreshResources language(registry, c.code);  // the language is chosen once per handler
        CVuikMenuBarSkin items;
        CVuikMenuBarButtonSkin buttons;
        items.Load();
        buttons.Load();
        // Neither the face (a fallback under Wine) nor the character set (any set, for Chinese and Thai) shows in
        // the goldens. Items and buttons make their fonts alike.
        LOGFONTW a = {}, b = {};
        ASSERT_TRUE(GetObjectW(items.m_hFont, sizeof(a), &a));
        ASSERT_TRUE(GetObjectW(buttons.GetFont(), sizeof(b), &b));
        EXPECT_STREQ(b.lfFaceName, L"Zelvo Sans Wide");
        EXPECT_EQ(b.lfCharSet, DEFAULT_CHARSET);
        EXPECT_EQ(a.lfHeight, c.itemHeight);
        EXPECT_EQ(a.lfWeight, FW_NORMAL);
        EXPECT_EQ(b.lfHeight, c.buttonHeight);
        EXPECT_EQ(b.lfWeight, c.buttonWeight);
    }
}

// Pictures of the bar and of open popups, left to right and right to left. The bar's colours do not come
// from the theme, so one theme stands for both.
TEST_F(MenuBar, Goldens)
{
    const struct {
        const char* name;
        DWORD layout;
        int open;         // -1: the bar alone
        int downPresses;  // keys that move the selection in the popup before the picture
        int hover = -1;   // the button under the mouse, for the bar alone
    } cases[] = {
        // Right to left, the bar with File open shows every button mirrored: no picture of the idle bar is needed.
        {"menubar_bar_ltr", 0, -1, 0},          {"menubar_hover_ltr", 0, -1, 0, 1},
        {"menubar_file_open_ltr", 0, 0, 1},     {"menubar_file_open_rtl", LAYOUT_RTL, 0, 1},
        {"menubar_view_open_ltr", 0, 2, 0},     {"menubar_file_submenu_ltr", 0, 0, 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CVuikLib::SetLayout(c.layout);
        input::MoveTo(kAway);  // no button hovered
        Recorder::Pump(30);
        Build(c.layout ? WS_EX_LAYOUTRTL : 0);
        Capture barPicture, popupPicture;
        if (c.open >= 0) {
            Script script(bar.get());
            std::vector<Step> steps = {Do([&] { PostMessageW(bar->m_hWnd, WM_COMMAND, MAKEWPARAM(c.open, 1), 0); }),
                                       OpenIs(c.open), Pause(60)};
            for (int i = 0; i < c.downPresses; ++i)
                steps.insert(steps.end(), {Press(VK_DOWN), Pause(60)});
            steps.insert(steps.end(), {Do([&] {
                                           std::vector<HWND> popups = PopupWindows();
                                           for (HWND p : popups)
                                               UpdateWindow(p);
                                           barPicture = CaptureShown(bar->m_hWnd);
                                           popupPicture = CaptureShown(popups.back());
                                       }),
                                       Press(VK_ESCAPE), Closed()});
            ASSERT_TRUE(script.Run(steps)) << "stopped at step " << script.FailedStep();
            EXPECT_TRUE(zcmod_test::MatchesGolden(std::string(c.name) + "_popup", popupPicture.width,
                                                  popupPicture.height, popupPicture.pixels.data()));
        } else {
            if (c.hover >= 0) {
                input::MoveTo(input::Centre(Button(c.hover)));
                Recorder::Pump(60);
                UpdateWindow(bar->m_hWnd);
            }
            barPicture = CaptureShown(bar->m_hWnd);
            input::MoveTo(kAway);
        }
        EXPECT_TRUE(zcmod_test::MatchesGolden(std::string(c.name) + "_bar", barPicture.width, barPicture.height,
                                              barPicture.pixels.data()));
        TearDown();
    }
}

// Two hundred popups opened, painted and closed leave no handle, hook or timer behind.
TEST_F(MenuBar, HandlesFlatOverManyPopups)
{
    Build();
    input::MoveTo(kAway);  // a pointer resting on the bar would open the buttons it hovers as well
    HandleCounter counter;
    const auto cycle = [&](int i) {
        const int index = i % 4;
        // The close request is queued first: the popup shows, the loop dispatches it, it paints and ends.
        PostMessageW(host, WM_TEST_CLOSE_POPUP, 0, 0);
        PostMessageW(bar->m_hWnd, WM_VUIK_MENUBAR_OPENPOPUP, index, reinterpret_cast<LPARAM>(bar->GetButton(index)));
        Recorder::Pump();
    };
    Script script(bar.get());  // ends any menu that the cycles would leave open
    // Warm-up: each button's buffer is made once, and each kind of item is drawn once.
    for (int i = 0; i < 4; ++i)
        cycle(i);
    Recorder::Pump(50);
    const HandleCounter::Counts before = counter.Live();
    recorder.Only({WM_ENTERMENULOOP});
    for (int i = 0; i < 200; ++i)
        cycle(i);
    Recorder::Pump(50);
    EXPECT_EQ(recorder.Count(WM_ENTERMENULOOP), 200);
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " / " << before.ToString();
    EXPECT_FALSE(CVuikMenuBarCtrl::IsPopupOpen());
}

}  // namespace
