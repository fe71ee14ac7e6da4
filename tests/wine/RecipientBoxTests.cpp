// The recipient box under real keyboard and mouse input against a stand-in phone with contacts: completion
// after the typing pause, finishing and marking recipients, the drop-down list, Tab order, growing rows, paste,
// right-to-left text, the picker, goldens of both themes and layouts, and what many lives of the box leave behind.
#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>
#include <richedit.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "DeviceTestSupport.h"
#include "DrivenModal.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "MessageSequence.h"
#include "TestSkins.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/SearchEngineControl.h"

using namespace zcmod_test;
using msgseq::input;
using msgseq::Recorder;

namespace {

std::string Card(const std::string& family, const std::string& given, const std::string& line)
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + family + ";" + given + ";;;\r\nFN:" + given + " " + family + "\r\n" +
           line + "\r\nEND:VCARD\r\n";
}

void Type(const std::wstring& text)
{
    input::Type(text);
    Recorder::Pump(30);
}

RECT Rect(HWND hwnd)
{
    RECT r = {};
    GetWindowRect(hwnd, &r);
    return r;
}

struct Listener : ISearchEngineNotify {
    int calls = 0;
    void OnResize() override { ++calls; }
};

// The parent counts the forward steps the box asks of its dialog.
int g_nextControlSteps = 0;
LRESULT CALLBACK ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    g_nextControlSteps += message == WM_NEXTDLGCTL;
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

class RecipientBox : public ::testing::Test {
protected:
    void SetUp() override
    {
        // The installed suite's language and theme, read by a resource handler of the test's own.
        suite.SetMachineTheme(L"Default");
        resources = std::make_unique<FreshResources>(suite, L"eng");
        service.UseStandIns();
        CSearchEngineControl::SetSearchLimit(1);
        CSearchEngineControl::SetResultLimit(0);
        CSearchEngineControl::SetAddressFilter(3);
        CSearchEngineControl::SetMaxLines(3);
        CSearchEngineControl::SetSearchDelay(150);
        // A phone of a new serial for each test, and no serials remembered from the last: the contact cache
        // then answers nothing that an earlier test taught it.
        static int phone = 0;
        phoneId = L"p" + std::to_wstring(++phone);
        AddPhone(phoneId, cards);
    }
    void AddPhone(const std::wstring& id, const std::string& vcards)
    {
        CSearchEngineControl::m_vecDeviceSerials.clear();
        phones.New(id);
        const std::wstring file = phones.Folder(id) + L"-cards.vcf";
        std::ofstream(file.c_str(), std::ios::binary) << vcards;
        ASSERT_EQ(phones.Ctl(L"contacts " + id + L" \"" + file + L"\"").exitCode, 0u);
    }
    void TearDown() override
    {
        Destroy();
        Recorder::Pump(20);
        CSearchEngineControl::SetSearchDelay(2000);
        CSearchEngineControl::SetAddressFilter(3);
        TerminateAllInterfaces();
        // This test's phones are gone: the next search must not ask the cache about them.
        CSearchEngineControl::m_vecDeviceSerials.clear();
        resources.reset();
    }

    // The box in a parent of its own; `mirrored` gives the parent a right-to-left layout, as a right-to-left
    // application's windows have.
    void Make(int rows = 1, bool mirrored = false)
    {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = ParentProc;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
        wc.lpszClassName = L"RecipientBoxParent";
        RegisterClassW(&wc);
        parent = CreateWindowExW(mirrored ? WS_EX_LAYOUTRTL : 0, L"RecipientBoxParent", L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 40, 40, 480,
                                 320, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        SetForegroundWindow(parent);
        box = std::make_unique<CSearchEngineControl>(GetModuleHandleW(nullptr));
        RECT where = {10, 10, 420, 10 + rows * 60};
        ASSERT_TRUE(box->Create(nullptr, WS_CHILD | WS_VISIBLE, where, parent, 100, rows));
        edit = box->GetEditBox(0);
        list = box->GetContactListBox();
        box->SetFocusToEditBox(0);
        Recorder::Pump(30);
    }
    void Destroy()
    {
        box.reset();
        if (parent)
            DestroyWindow(parent);
        parent = nullptr;
    }
    std::wstring Text(int row = 0)
    {
        std::wstring text(static_cast<size_t>(box->GetText(nullptr, row)) + 1, L'\0');
        text.resize(static_cast<size_t>(box->GetText(&text[0], row)));
        return text;
    }
    CHARRANGE Selection()
    {
        CHARRANGE range = {};
        SendMessageW(edit, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
        return range;
    }
    // The effects shared by every character of start..end (underline, italics); the caret stays.
    DWORD Effects(LONG start, LONG end)
    {
        const CHARRANGE saved = Selection();
        CHARRANGE range = {start, end};
        SendMessageW(edit, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
        CHARFORMAT2W format = {};
        format.cbSize = sizeof(format);
        SendMessageW(edit, EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
        SendMessageW(edit, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&saved));
        return format.dwEffects & format.dwMask & (CFE_UNDERLINE | CFE_ITALIC);
    }
    // The items on offer, none while the list is hidden.
    int Listed() { return IsWindowVisible(list) ? static_cast<int>(SendMessageW(list, LB_GETCOUNT, 0, 0)) : 0; }
    void WaitForSearch() { Recorder::Pump(CSearchEngineControl::GetSearchDelay() + 150); }

    SuiteRegistry suite;
    std::unique_ptr<FreshResources> resources;
    ServiceRegistry service;
    Phones phones;
    std::string cards = Card("Smith", "John", "TEL:555") + Card("Lee", "Ann", "TEL:040123") +
                        Card("Lee", "Ann", "EMAIL:ann@lee.org") + Card("Jones", "Mary Ann", "TEL:777");
    std::wstring phoneId;
    HWND parent = nullptr;
    HWND edit = nullptr;
    HWND list = nullptr;
    std::unique_ptr<CSearchEngineControl> box;
};

// Each key comes 150 ms after the one before, inside the pause: a search that ran after an earlier key's pause
// would complete the text or offer the list while it is still being typed.
TEST_F(RecipientBox, TypingCompletesOnlyAfterThePauseThatFollowsTheLastKey)
{
    const wchar_t kLeft = 0x2190, kDelete = 0x7F;  // keys in the typed text
    const struct {
        const wchar_t* typed;
        const wchar_t* text;  // after the pause
        CHARRANGE selected;
        int listed;  // items on offer, 0 for a hidden list
    } cases[] = {
        // One contact: completed inline, the part that wasn't typed selected so that typing on replaces it.
        {L"smit", L"Smith John <555>", {4, 16}, 0},
        // Several: the first completes, selected whole, and all are offered.
        {L"ann", L"Ann Lee <040123>", {0, 16}, 3},
        // Nothing found: the text stays and nothing is offered.
        {L"zq", L"zq", {2, 2}, 0},
        // Delete inside a name, Backspace at its end: the list is offered, the text left as the user made it.
        {L"anxn\x2190\x2190\x7F", L"ann", {2, 2}, 3},
        {L"annz\b", L"ann", {3, 3}, 3},
    };
    CSearchEngineControl::SetSearchDelay(400);
    Make();
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.typed)));
        box->HideContactListBox(1);
        SetWindowTextW(edit, L"");
        for (const wchar_t key : std::wstring(c.typed)) {
            key == kLeft ? input::Press(VK_LEFT) : key == kDelete ? input::Press(VK_DELETE) : key == L'\b' ? input::Press(VK_BACK) : Type(std::wstring(1, key));
            Recorder::Pump(120);
            EXPECT_EQ(Text().find(L'<'), std::wstring::npos);
            EXPECT_EQ(Listed(), 0);
        }
        Recorder::Pump(150);
        EXPECT_EQ(Text().find(L'<'), std::wstring::npos);  // 300 ms after the last key: still waiting
        WaitForSearch();
        EXPECT_EQ(Text(), c.text);
        EXPECT_EQ(Selection().cpMin, c.selected.cpMin);
        EXPECT_EQ(Selection().cpMax, c.selected.cpMax);
        EXPECT_EQ(Listed(), c.listed);
    }
    // Escape leaves the list up; Down offers the next contact on the recipient's place.
    input::Press(VK_ESCAPE);
    Recorder::Pump(50);
    EXPECT_EQ(Listed(), 3);
    input::Press(VK_DOWN);
    Recorder::Pump(30);
    EXPECT_EQ(Text(), L"Ann Lee <ann@lee.org>");
    EXPECT_EQ(Listed(), 3);
}

TEST_F(RecipientBox, FinishingMarksKnownUnknownAndMalformedRecipients)
{
    const struct {
        long filter;
        const wchar_t* typed;  // ends in the key that finishes
        const wchar_t* text;
        DWORD effects;  // of the finished recipient
        int messages;
    } cases[] = {
        {3, L"smi;", L"Smith John <555>;", CFE_UNDERLINE, 0},
        {3, L"smi\r", L"Smith John <555>; ", CFE_UNDERLINE, 0},
        {3, L"zed;", L"zed;", 0, 0},                   // a name that isn't a contact: passes, not underlined
        {3, L"040123;", L"Ann Lee <040123>;", CFE_UNDERLINE, 0},  // a number becomes its contact
        {1, L"555-12;", L"555-12;", CFE_ITALIC, 1},    // only e-mail wanted: a number is malformed
        {2, L"x@y.org\r", L"x@y.org; ", CFE_ITALIC, 1},
    };
    CSearchEngineControl::SetSearchDelay(5000);  // finished before any search
    Make();
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.typed)));
        CSearchEngineControl::SetAddressFilter(c.filter);
        SetWindowTextW(edit, L"");
        MessageBoxCloser closer;
        for (wchar_t ch : std::wstring(c.typed))
            ch == L'\r' ? input::Press(VK_RETURN) : Type(std::wstring(1, ch));
        Recorder::Pump(60);
        EXPECT_TRUE(Recorder::PumpUntil([&] { return closer.closed >= c.messages; }));
        EXPECT_EQ(Text(), c.text);
        const LONG length = static_cast<LONG>(Text().find(L';'));
        EXPECT_EQ(Effects(0, length), c.effects);
        EXPECT_EQ(closer.closed, c.messages);
        // The message gives the focus back (the window system may take a moment to reactivate the parent).
        EXPECT_TRUE(Recorder::PumpUntil([&] { return GetFocus() == edit; }, 2000));
        SetForegroundWindow(parent);
        SetFocus(edit);
    }
    wchar_t recipients[256] = {};
    SetWindowTextW(edit, L"Ann Lee <040123>; bob@x.org;  Zed ; ");
    EXPECT_EQ(box->GetRecipients(recipients, 0), 20);
    EXPECT_STREQ(recipients, L"040123;bob@x.org;Zed");
}

TEST_F(RecipientBox, TabAndShiftTabMoveBetweenRowsAndOut)
{
    Make(2);
    HWND edit1 = box->GetEditBox(1), button0 = box->GetButton(0), button1 = box->GetButton(1);
    const struct {
        HWND from;
        bool shift;
        HWND to;  // null: out of the box, by the parent's next-control step
    } cases[] = {
        {edit, false, button1}, {edit, true, button0},   {button0, false, edit},
        {button1, true, edit},  {edit1, false, nullptr}, {button0, true, nullptr},  // the first button steps forward
    };
    for (const auto& c : cases) {
        SetFocus(c.from);
        Recorder::Pump(20);
        g_nextControlSteps = 0;
        input::Press(VK_TAB, c.shift);
        Recorder::Pump(60);
        EXPECT_EQ(GetFocus(), c.to ? c.to : c.from);
        EXPECT_EQ(g_nextControlSteps, c.to ? 0 : 1);
    }
}

// Typed text grows the row a line at a time up to the line limit, then scrolls; the row below and the host
// follow, and listeners hear of each change. A paste by either key or by the paste message (an application's
// Edit menu) brings the clipboard's plain text (not its italic rich text), takes the lines it needs at once and
// is searched after the pause like typed text.
TEST_F(RecipientBox, TypedAndPastedTextGrowTheRowUpToTheLineLimit)
{
    CSearchEngineControl::SetSearchDelay(60000);
    Make(2);
    Listener listener;
    box->RegisterNotifyIF(&listener);
    box->RegisterNotifyIF(&listener);  // once only
    HWND edit1 = box->GetEditBox(1);
    auto height = [&] { return Rect(edit).bottom - Rect(edit).top; };
    const LONG gap = Rect(edit1).top - Rect(edit).bottom, oneLine = height();
    std::vector<LONG> heights;
    for (LRESULT lines = 1; lines < 5;) {
        Type(L"qwe rty ");
        if (SendMessageW(edit, EM_GETLINECOUNT, 0, 0) != lines) {
            lines = SendMessageW(edit, EM_GETLINECOUNT, 0, 0);
            heights.push_back(height());
            EXPECT_EQ(Rect(edit1).top - Rect(edit).bottom, gap);
        }
    }
    ASSERT_EQ(heights.size(), 4u);  // 2, 3, 4 and 5 lines
    EXPECT_LT(heights[0], heights[1]);
    EXPECT_EQ(heights[1], heights[2]);  // three lines at most: four and five scroll
    EXPECT_EQ(heights[2], heights[3]);
    EXPECT_TRUE(GetWindowLongW(edit, GWL_STYLE) & WS_VSCROLL);
    EXPECT_GT(SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0), 0);
    EXPECT_EQ(listener.calls, 2);
    box->UnregisterNotifyIF(&listener);
    EXPECT_EQ(Rect(box->GetHostWindow()).bottom, std::max(Rect(edit1).bottom, Rect(box->GetButton(1)).bottom));

    CSearchEngineControl::SetSearchDelay(150);
    enum { CtrlV, ShiftInsert, Message };
    const struct {
        int how;
        const char* clip;
        const wchar_t* searched;  // the text after the pause; null: a text of several lines
    } cases[] = {
        {Message, "smi", L"Smith John <555>"},  // the keys take the same way, shown by the texts of several lines
        {CtrlV, "a\r\nb\r\nc", nullptr},
        {ShiftInsert, "a\r\nb\r\nc\r\nd\r\ne", nullptr},  // five lines: three shown, scrolled to the caret
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.clip);
        SetWindowTextW(edit, L"");
        const std::string rtf = std::string("{\\rtf1\\ansi {\\i ") + c.clip + "}}";
        const std::wstring plain(c.clip, c.clip + strlen(c.clip));
        ASSERT_TRUE(OpenClipboard(parent));
        EmptyClipboard();
        for (const auto& data : {std::make_pair(RegisterClipboardFormatW(L"Rich Text Format"), rtf),
                                 std::make_pair(UINT(CF_UNICODETEXT), std::string(reinterpret_cast<const char*>(
                                     plain.c_str()), (plain.size() + 1) * sizeof(wchar_t)))}) {
            HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, data.second.size() + 1);
            memcpy(GlobalLock(memory), data.second.c_str(), data.second.size() + 1);
            GlobalUnlock(memory);
            SetClipboardData(data.first, memory);
        }
        CloseClipboard();
        if (c.how == Message) {
            SendMessageW(edit, WM_PASTE, 0, 0);
        } else if (c.how == ShiftInsert) {
            input::Press(VK_INSERT, true);
        } else {
            input::Key(VK_CONTROL, false);
            input::Press('V');
            input::Key(VK_CONTROL, true);
        }
        Recorder::Pump(60);
        const LRESULT lines = std::count(plain.begin(), plain.end(), L'\n') + 1;
        EXPECT_EQ(SendMessageW(edit, EM_GETLINECOUNT, 0, 0), lines);
        EXPECT_EQ(Effects(0, 1), 0u);  // the plain text, not the italic one
        EXPECT_EQ(height(), lines == 1 ? oneLine : heights[1]);
        EXPECT_EQ(Rect(edit1).top - Rect(edit).bottom, gap);
        EXPECT_EQ(SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0) > 0, lines > 3);  // scrolled to the caret
        if (c.searched) {
            EXPECT_EQ(Text(), plain);
            WaitForSearch();
            EXPECT_EQ(Text(), c.searched);
            box->HideContactListBox(1);
        }
    }
}

TEST_F(RecipientBox, TheListShowsFiveAtATimeAndKeepsTheRecipientOpenWhileUsed)
{
    std::string kims;
    int number = 101;
    for (const char* family : {"Alpha", "Bravo", "Charlie", "Delta", "Echo", "Foxtrot", "Golf"})
        kims += Card(family, "Kim", "TEL:" + std::to_string(number++));
    AddPhone(L"kims", kims);
    Make();
    for (const int limit : {0, 2}) {  // 0: no limit
        CSearchEngineControl::SetResultLimit(static_cast<short>(limit));
        const int items = limit ? limit : 7;
        SetWindowTextW(edit, L"");
        Type(L"kim");
        WaitForSearch();
        EXPECT_EQ(Listed(), items);
        RECT client;
        GetClientRect(list, &client);
        EXPECT_EQ(client.bottom, SendMessageW(list, LB_GETITEMHEIGHT, 0, 0) * std::min(items, 5));
        EXPECT_EQ((GetWindowLongW(list, GWL_STYLE) & WS_VSCROLL) != 0, items > 5);
    }
    // Pressing on the second item takes the focus to the list: the recipient stays open (the item may show on
    // its place). Letting go chooses it.
    RECT item;
    SendMessageW(list, LB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&item));
    MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&item), 2);
    input::MoveTo({(item.left + item.right) / 2, (item.top + item.bottom) / 2});
    input::LeftDown();
    Recorder::Pump(60);
    EXPECT_EQ(GetFocus(), list);
    EXPECT_EQ(Text().find(L';'), std::wstring::npos) << testing::PrintToString(Text());
    input::LeftUp();
    Recorder::Pump(60);
    EXPECT_EQ(Text(), L"Kim Bravo <102>; ");
    EXPECT_EQ(GetFocus(), edit);
    EXPECT_EQ(Listed(), 0);
    // Losing the focus anywhere else finishes the recipient.
    Type(L"kim");
    SetFocus(parent);
    Recorder::Pump(60);
    EXPECT_EQ(Text(), L"Kim Bravo <102>; Kim Alpha <101>; ");
}

TEST_F(RecipientBox, RightToLeftTextWrapsAddressesInDirectionMarks)
{
    FreshResources hebrew(suite, L"heb");
    testskin::LibraryState library;
    Make();
    EXPECT_TRUE(GetWindowLongW(edit, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    EXPECT_TRUE(GetWindowLongW(list, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    Type(L"smi;");
    EXPECT_EQ(Text(), L"Smith John <\x202D" L"555\x202C>;");
    wchar_t recipients[64] = {};
    box->GetRecipients(recipients, 0);
    EXPECT_STREQ(recipients, L"555");
    Destroy();  // while the language is still Hebrew
}

// The picker button opens the list of the phone's contacts; the filter narrows it, a checked contact joins what
// the row held on OK, and Cancel changes nothing. The dialog is driven from a second thread, which also ends it
// should it stay open.
TEST_F(RecipientBox, ThePickerAddsCheckedContactsOnOk)
{
    Make();
    const struct {
        WORD key;
        const wchar_t* text;
    } cases[] = {{VK_RETURN, L"zed; John Smith <555>; "}, {VK_ESCAPE, L"zed; "}};
    for (const auto& c : cases) {
        box->SetText(L"zed; ", 0);
        std::atomic<int> listed{-1}, filtered{-1};
        std::atomic<bool> done{false}, emptied{false};
        std::thread driver([&] {
            HWND dialog = WaitForWindow(
                GetWindowThreadProcessId(parent, nullptr),
                [](HWND hwnd) { return GetDlgItem(hwnd, IDC_ZCMOD_RECIPIENTS_LIST) != nullptr; }, 10000);
            HWND contacts = GetDlgItem(dialog, IDC_ZCMOD_RECIPIENTS_LIST);
            auto count = [&] { return static_cast<int>(SendMessageW(contacts, LVM_GETITEMCOUNT, 0, 0)); };
            listed = count();
            // The phone goes and comes back while the picker is open: the list follows it.
            phones.Ctl(L"detach " + phoneId);
            emptied = WaitUntil([&] { return count() == 0; });
            phones.Ctl(L"attach " + phoneId);
            emptied = emptied && WaitUntil([&] { return count() == 4; });
            SendMessageW(GetDlgItem(dialog, IDC_ZCMOD_RECIPIENTS_FILTER), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"smi"));
            filtered = count();
            LVITEMW state = {};
            state.stateMask = LVIS_STATEIMAGEMASK;
            state.state = INDEXTOSTATEIMAGEMASK(2);
            SendMessageW(contacts, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&state));
            SetForegroundWindow(dialog);
            input::Press(c.key);
            for (int i = 0; i < 250 && IsWindow(dialog); ++i)
                Sleep(20);
            if (IsWindow(dialog))  // the watchdog: end it, the test fails on the text
                PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            done = true;
        });
        input::Click(input::Centre(box->GetButton(0)));
        EXPECT_TRUE(Recorder::PumpUntil([&] { return done.load(); }, 15000));
        driver.join();
        Recorder::Pump(50);
        EXPECT_EQ(listed, 4);  // every contact of the phone, one line per number and address, in the user's order
        EXPECT_TRUE(emptied);
        EXPECT_EQ(filtered, 1);
        EXPECT_EQ(Text(), c.text);
    }
    EXPECT_EQ(Effects(5, 21), static_cast<DWORD>(0));  // cancelled: "zed" alone, nothing underlined
}

// Two boxes in one window: each has its own rows, list and completion, and one outlives the other.
TEST_F(RecipientBox, TwoBoxesInOneWindowWorkApart)
{
    Make();
    auto other = std::make_unique<CSearchEngineControl>(GetModuleHandleW(nullptr));
    RECT where = {10, 200, 420, 260};
    ASSERT_TRUE(other->Create(nullptr, WS_CHILD | WS_VISIBLE, where, parent, 101, 1));
    other->SetFocusToEditBox(0);
    Type(L"ann");
    WaitForSearch();
    wchar_t text[64] = {};
    other->GetText(text, 0);
    EXPECT_STREQ(text, L"Ann Lee <040123>");
    EXPECT_TRUE(IsWindowVisible(other->GetContactListBox()));
    EXPECT_EQ(Listed(), 0);
    EXPECT_EQ(Text(), L"");
    EXPECT_EQ(other->HasFocus(), 1);
    EXPECT_EQ(box->HasFocus(), 0);
    other.reset();
    box->SetFocusToEditBox(0);
    Type(L"smi;");
    EXPECT_EQ(Text(), L"Smith John <555>;");
}

// One known, one unknown and one malformed recipient: underlined, plain, in italics; the theme's colours; the
// rows mirrored under a right-to-left language.
TEST_F(RecipientBox, GoldensOfBothThemesAndLayouts)
{
    const struct {
        const wchar_t* theme;
        const wchar_t* language;
        const char* name;
    } looks[] = {{L"Default", L"eng", "recipients_Default_ltr"},
                 {L"Default", L"heb", "recipients_Default_rtl"},
                 {L"Graphite", L"eng", "recipients_Graphite_ltr"},
                 {L"Graphite", L"heb", "recipients_Graphite_rtl"}};
    for (const auto& look : looks) {
        SCOPED_TRACE(look.name);
        SuiteRegistry registry;
        registry.SetMachineTheme(look.theme);
        FreshResources resources(registry, look.language, look.theme);
        testskin::LibraryState library;
        // A phone of its own: the contact strings the cache keeps are made in the language of their search.
        AddPhone(std::wstring(L"g") + look.theme + look.language, cards);
        input::MoveTo({1200, 1000});  // away from the buttons, which light up under the mouse
        Make(1, look.language[0] == L'h');
        const std::wstring text = CSearchEngineControl::CreateContactString(L"Smith John", L"555") + L"; " +
                                  CSearchEngineControl::CreateContactString(L"Zed Unknown", L"123") + L"; " +
                                  CSearchEngineControl::CreateContactString(L"Bob", L"5x5");
        SetFocus(parent);
        box->SetText(text.c_str(), 0);
        int valid = 1;
        box->Validate(1, 0, &valid, 0);
        EXPECT_EQ(valid, 0);
        Recorder::Pump(100);
        const testskin::Capture c = testskin::CaptureScreen(Rect(box->GetHostWindow()));
        EXPECT_TRUE(MatchesGolden(look.name, c.width, c.height, c.pixels.data()));
        Destroy();
    }
}

TEST_F(RecipientBox, ManyLivesLeaveNothingBehind)
{
    HandleCounter counter;
    MessageBoxCloser closer;
    auto life = [&] {
        Make(3);
        Type(L"smi;ann");
        WaitForSearch();
        input::Press(VK_RETURN);
        Recorder::Pump(50);
        // A malformed recipient still being typed when the box goes: destroying it shows no message.
        CSearchEngineControl::SetAddressFilter(1);
        Type(L"555");
        Recorder::Pump(20);
        Destroy();
        CSearchEngineControl::SetAddressFilter(3);
    };
    life();
    const HandleCounter::Counts before = counter.Live();
    for (int i = 0; i < 10; ++i)
        life();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    EXPECT_EQ(closer.closed, 0);
}

}  // namespace
