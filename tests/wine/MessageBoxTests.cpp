// The skinned message boxes, run modally on the test thread and driven from a second thread: which buttons
// each type keeps, what each click and key returns, the layout rules measured from outside, right to left,
// pixel goldens and handle hygiene. Every run has a watchdog that closes a box left open and fails the test.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "ButtonTestIds.h"
#include "DeviceTestSupport.h"
#include "DrivenModal.h"
#include "Golden.h"
#include "HandleCounter.h"
#include "TestSkinIds.h"
#include "TestSkins.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikButtonCtrl.h"
#include "zcmod/VuikMessageBox.h"
#include "zcmod/VuikWindowBackgroundCtrl.h"

using namespace testskin;
using namespace zcmod_test;

namespace {

// What the helper thread saw of a box, in the box's client coordinates (as its layout reads them).
struct Seen {
    HWND box = nullptr;
    RECT window = {}, client = {}, text = {}, row = {};
    std::map<UINT, RECT> buttons;  // live buttons by id; `row` holds them all
    std::map<UINT, std::wstring> buttonTexts;
    std::wstring message, title;
    LONG_PTR textExStyle = 0;
    UINT defaultId = 0;
    bool hasIcon = false, sawText = false;
};

RECT ClientRectOf(HWND child, HWND box)
{
    RECT r;
    GetWindowRect(child, &r);
    MapWindowPoints(nullptr, box, reinterpret_cast<POINT*>(&r), 2);
    if (r.left > r.right)
        std::swap(r.left, r.right);
    return r;
}

Seen Look(HWND box)
{
    Seen s;
    s.box = box;
    GetWindowRect(box, &s.window);
    GetClientRect(box, &s.client);
    wchar_t buffer[2048] = {};
    GetWindowTextW(box, buffer, 2048);
    s.title = buffer;
    const DWORD def = static_cast<DWORD>(SendMessageW(box, DM_GETDEFID, 0, 0));
    s.defaultId = HIWORD(def) == DC_HASDEFID ? LOWORD(def) : 0;
    for (HWND child = GetWindow(box, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        wchar_t cls[32] = {};
        GetClassNameW(child, cls, 32);
        const UINT id = GetDlgCtrlID(child);
        if (lstrcmpiW(cls, L"Button") == 0 && (id == IDOK || id == IDCANCEL || id == IDYES || id == IDNO)) {
            s.buttons[id] = ClientRectOf(child, box);
            UnionRect(&s.row, &s.row, &s.buttons[id]);
            GetWindowTextW(child, buffer, 2048);
            s.buttonTexts[id] = buffer;
        } else if (lstrcmpiW(cls, L"Static") == 0 && id == 0) {
            // Children follow their creation: the text's static, then the icon's.
            if (!s.sawText) {
                s.sawText = true;
                s.text = ClientRectOf(child, box);
                GetWindowTextW(child, buffer, 2048);
                s.message = buffer;
                s.textExStyle = GetWindowLongPtrW(child, GWL_EXSTYLE);
            } else {
                s.hasIcon = true;
            }
        }
    }
    return s;
}

// A real click from the helper thread: the cursor comes to the middle of `target` (the last step small, so
// that the button sees it come), and the left button goes down and up there.
void PostClick(HWND target)
{
    SetForegroundWindow(GetAncestor(target, GA_ROOT));
    const POINT c = msgseq::input::Centre(target);
    msgseq::input::MoveTo(POINT{c.x - 3, c.y - 2});
    Sleep(40);
    msgseq::input::Click(c);
}

// How a run ends: a click on a button, a key, the close button of the frame, or WM_CLOSE.
enum Action { Click, Escape, Enter, CloseButton, CloseMessage };

void Act(const Seen& s, Action action, UINT id)
{
    switch (action) {
        case Click: PostClick(GetDlgItem(s.box, id)); break;
        case Escape:
        case Enter:
            SetForegroundWindow(s.box);
            msgseq::input::Press(action == Escape ? VK_ESCAPE : VK_RETURN);
            break;
        case CloseButton:
            if (HWND close = GetDlgItem(s.box, CVuikWindowBackgroundCtrl::CommandClose))
                PostClick(close);
            else
                PostMessageW(s.box, WM_SYSCOMMAND, SC_CLOSE, 0);
            break;
        case CloseMessage: PostMessageW(s.box, WM_CLOSE, 0, 0); break;
    }
}

// Runs `show` here while the shared runner's thread waits for the box, looks at it (`look`), then ends it by
// `action`; its watchdog fails a run whose box doesn't end in 5 seconds.
struct BoxRun {
    int result = 0;
    Seen seen;
};

BoxRun RunBox(const std::function<int()>& show, Action action, UINT id = 0,
              const std::function<void(const Seen&)>& look = nullptr)
{
    BoxRun run;
    run.result = RunModal(
        show, IsDialogClass,
        [&](HWND box) {
            run.seen = Look(box);
            if (look)
                look(run.seen);
            Act(run.seen, action, id);
        },
        5);
    return run;
}

// The box once it has faded in and painted.
Capture Settled(HWND box)
{
    Sleep(300);
    return CaptureWindow(box);
}

int Width(const RECT& r) { return r.right - r.left; }
int Height(const RECT& r) { return r.bottom - r.top; }

// The extent of one line of `text` in the suite's font of `height` and `weight`, or without a height in the
// window caption's font.
SIZE Measure(const wchar_t* text, int height = 0, int weight = 0)
{
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = 500;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, 500, &metrics, 0);
    LOGFONTW lf = metrics.lfCaptionFont;
    if (height) {
        DkhLoadFont(&lf);
        lf.lfHeight = height;
        lf.lfWeight = weight;
        lf.lfCharSet = DEFAULT_CHARSET;
    }
    HFONT font = CreateFontIndirectW(&lf);
    HDC dc = GetDC(nullptr);
    HGDIOBJ old = SelectObject(dc, font);
    RECT r = {0, 0, 0, 0};
    DrawTextW(dc, text, -1, &r, DT_CALCRECT);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    DeleteObject(font);
    return SIZE{r.right, r.bottom};
}

class MessageBoxes : public ::testing::Test {
protected:
    void SetUpResources(const wchar_t* language, const wchar_t* theme)
    {
        m_resources.reset();
        m_resources.reset(new FreshResources(m_registry, language, theme));
    }
    void SetUp() override
    {
        SetUpResources(L"eng", L"Default");
        // The application's skins of the older box: the test program's button pieces, a stretched background.
        CVuikButtonSkinDef def = m_buttonSkin;
        for (CVuikButtonStateSkinDef& state : def.m_States) {
            state.m_nLeftBitmapId = IDB_BUTTON_LEFT;
            state.m_nMiddleBitmapId = IDB_BUTTON_MIDDLE;
            state.m_nRightBitmapId = IDB_BUTTON_RIGHT;
        }
        m_buttonSkin.SetSkinDef(def);
        m_buttonSkin.Load();
        m_backgroundSkin.SetSkinDef(CVuikStaticBitmapSkinDef{IDB_TEST_BADGE, 1, 0});
        m_backgroundSkin.Load();
        CVuikMessageBox::SetButtonSkin(&m_buttonSkin);
        CVuikMessageBox::SetBackgroundSkin(&m_backgroundSkin);
        CVuikMessageBox::SetTextColor(RGB(0, 0, 0));
        CVuikMessageBox::SetButtonCaptions(nullptr, 0, 0, 0, 0);
    }
    void TearDown() override
    {
        CVuikMessageBox::SetButtonSkin(nullptr);
        CVuikMessageBox::SetBackgroundSkin(nullptr);
    }
    static std::function<int()> Common(const wchar_t* text, const wchar_t* title, UINT type)
    {
        return [=] { return CVuikCommonMessageBox::Show(nullptr, text, title, type); };
    }
    static std::function<int()> Plain(const wchar_t* text, const wchar_t* title, UINT type)
    {
        return [=] { return CVuikMessageBox::Show(nullptr, text, title, type); };
    }

    LibraryState m_library;
    SuiteRegistry m_registry;
    std::unique_ptr<FreshResources> m_resources;
    CVuikButtonSkin m_buttonSkin;
    CVuikStaticBitmapSkin m_backgroundSkin;
};

// ---- Buttons, results and keys --------------------------------------------------------------------------------

TEST_F(MessageBoxes, EachTypeKeepsItsButtonsAndReturnsTheChoice)
{
    const std::vector<UINT> all = {IDOK, IDCANCEL, IDYES, IDNO};
    struct Case {
        bool common;
        UINT type;
        std::vector<UINT> buttons;  // live, in order of x
        UINT defaultId;
        Action action;
        UINT id;
        int result;
    } cases[] = {
        {true, MB_OK, {IDOK}, IDOK, Click, IDOK, IDOK},
        {true, MB_OKCANCEL, {IDOK, IDCANCEL}, IDOK, Click, IDCANCEL, IDCANCEL},
        {true, MB_YESNOCANCEL, {IDYES, IDNO, IDCANCEL}, IDYES, Click, IDNO, IDNO},
        {true, MB_YESNO, {IDYES, IDNO}, IDYES, Click, IDYES, IDYES},
        {true, MB_VUIK_CANCELONLY, {IDCANCEL}, IDCANCEL, Click, IDCANCEL, IDCANCEL},
        {true, MB_YESNO, {IDYES, IDNO}, IDYES, Escape, 0, IDCANCEL},  // Escape is Cancel, even without one
        {true, MB_YESNOCANCEL, {IDYES, IDNO, IDCANCEL}, IDYES, Enter, 0, IDYES},
        {true, MB_YESNO, {IDYES, IDNO}, IDYES, CloseButton, 0, IDCANCEL},
        {true, MB_OKCANCEL, {IDOK, IDCANCEL}, IDOK, CloseMessage, 0, IDCANCEL},
        {true, MB_ABORTRETRYIGNORE, all, 0, Click, IDOK, IDOK},  // every button stays where the template put it
        {false, MB_YESNOCANCEL, {IDYES, IDNO, IDCANCEL}, IDYES, Click, IDCANCEL, IDCANCEL},
        {false, MB_YESNO, {IDYES, IDNO}, IDYES, Enter, 0, IDYES},
        {false, MB_OKCANCEL, {IDOK, IDCANCEL}, IDOK, Escape, 0, IDCANCEL},
        {false, MB_YESNO, {IDYES, IDNO}, IDYES, CloseButton, 0, IDCANCEL},
        {false, MB_VUIK_CANCELONLY, all, 0, Click, IDOK, IDOK},  // a lone Cancel is the common box's only
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.common ? "common" : "plain") << " type " << c.type << " action "
                                        << c.action << " id " << c.id);
        const auto show = c.common ? Common(L"Delete the message?", L"Messages", c.type)
                                   : Plain(L"Delete the message?", L"Messages", c.type);
        BoxRun run = RunBox(show, c.action, c.id);
        EXPECT_EQ(run.result, c.result);
        std::vector<UINT> live;
        for (const auto& b : run.seen.buttons)
            live.push_back(b.first);
        std::vector<UINT> expected = c.buttons;
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(live, expected);
        // Row order: left to right as listed. Without a row, the box names no default (the dialog may).
        if (c.defaultId) {
            EXPECT_EQ(run.seen.defaultId, c.defaultId);
            for (size_t i = 1; i < c.buttons.size(); ++i)
                EXPECT_LT(run.seen.buttons[c.buttons[i - 1]].left, run.seen.buttons[c.buttons[i]].left);
        }
    }
}

// The older box takes the button words from the string ids the application names. Without skins it is the
// platform's box; null texts are empty.
TEST_F(MessageBoxes, OlderBoxTakesTheCaptionsGivenFallsBackAndTakesNullTexts)
{
    SetUpResources(L"heb", L"Default");
    CVuikMessageBox::SetButtonCaptions(ZCMOD_GetCommonZLR(), ZLR_STR_MSGBOX_OK, ZLR_STR_MSGBOX_CANCEL,
                                       ZLR_STR_MSGBOX_YES, ZLR_STR_MSGBOX_NO);
    BoxRun run = RunBox(Plain(L"?", L"T", MB_YESNO), Click, IDNO);
    EXPECT_EQ(run.result, IDNO);
    EXPECT_EQ(run.seen.buttonTexts[IDNO], L"\x05DC\x05D0");

    CVuikMessageBox::SetBackgroundSkin(nullptr);
    run = RunBox(Plain(L"Platform text", L"Platform", MB_OKCANCEL), Click, IDCANCEL);
    EXPECT_EQ(run.result, IDCANCEL);
    // The platform's box has its text in the static 0xFFFF; ours has no such static.
    EXPECT_FALSE(run.seen.sawText);
    CVuikMessageBox::SetBackgroundSkin(&m_backgroundSkin);
    for (bool common : {true, false}) {
        run = RunBox(common ? Common(nullptr, nullptr, MB_OK) : Plain(nullptr, nullptr, MB_OK), Click, IDOK);
        EXPECT_EQ(run.result, IDOK);
        EXPECT_EQ(run.seen.title, L"");
    }
}

// ---- Layout ---------------------------------------------------------------------------------------------------

// What the goldens can't pin: the common box as wide as its title asks, a long word broken within half the
// desktop, the height from text, title and row, the text past an icon of any kind; the older box's row centred
// under the text, with only the application's own icon.
TEST_F(MessageBoxes, LayoutFollowsTheMeasuredTitleAndText)
{
    const int half = GetSystemMetrics(SM_CXSCREEN) / 2;
    const std::wstring unbroken(400, L'W');
    struct Case {
        bool common;
        const wchar_t* text;
        const wchar_t* title;
        UINT type;
        bool titleDecides;  // the box is as wide as its title asks
        bool wraps;
    } cases[] = {
        {true, L"Saved.", L"Notes", MB_OK, false, false},
        {true, L"", L"Messages", MB_OKCANCEL, false, false},
        {true, L"Hi", L"A title far wider than the text of the message, with room to spare", MB_OK, true, false},
        {true, unbroken.c_str(), L"Long", MB_OK, false, true},
        {true, unbroken.c_str(), L"Long", MB_YESNO | MB_ICONWARNING, false, true},
        {false, L"Saved.", L"Notes", MB_OK, false, false},
        {false, L"Delete the message from the phone?", L"Messages", MB_YESNOCANCEL, false, false},
        {false, L"", L"Empty", MB_YESNO, false, false},
        {false, unbroken.c_str(), L"Long", MB_OKCANCEL, false, true},
        // Only a user icon, from the application's module (the test program's 16-pixel badge).
        {false, L"With the application's icon", L"Icon", MB_OK | MB_USERICON, false, false},
        {false, L"No platform icon", L"Icon", MB_OK | MB_ICONQUESTION, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << (c.common ? "common" : "plain") << " type " << c.type << " title "
                                        << std::string(c.title, c.title + wcslen(c.title)));
        BoxRun run = RunBox(c.common ? Common(c.text, c.title, c.type) : Plain(c.text, c.title, c.type), Escape);
        const Seen& s = run.seen;
        const int n = static_cast<int>(s.buttons.size());
        ASSERT_GT(n, 0);
        const int bw = Width(s.buttons.begin()->second), bh = Height(s.row);
        EXPECT_EQ(s.message, c.text);
        if (!c.common) {
            // The row: centred, 5 apart (its height and distance from the bottom are the goldens').
            EXPECT_EQ(Width(s.row), n * bw + (n - 1) * 5);
            EXPECT_EQ(s.row.left, (s.client.right - n * bw - (n - 1) * 5) / 2);
            EXPECT_EQ(s.text.left, (c.type & 0xF0) == MB_USERICON ? 16 + 42 : 21);
            EXPECT_EQ(Height(s.window), Height(s.text) + Measure(c.title).cy + bh + 63);
            EXPECT_LE(Width(s.window), std::max(half - 42 + 42, n * bw + (n + 1) * 21 + 1));
            EXPECT_GE(Width(s.window), GetSystemMetrics(SM_CXSIZE) + 42 + Measure(c.title).cx);
            continue;
        }
        // The row and the icon's place are the goldens'; the text starts past the icon of any kind.
        const bool icon = (c.type & 0xF0) != 0;
        EXPECT_EQ(s.hasIcon, icon);
        EXPECT_EQ(s.text.left, icon ? GetSystemMetrics(SM_CXICON) + 42 : 21);
        // Height: twice the text, the title, the buttons and 63.
        const SIZE title = Measure(c.title, 17, FW_NORMAL);
        EXPECT_EQ(Height(s.window), 2 * Height(s.text) + title.cy + bh + 63);
        const int minWidth = 40 + 42 + title.cx;  // the close button's picture is 40 wide
        EXPECT_GE(Width(s.window), minWidth);
        EXPECT_GE(Width(s.window), n * bw + (n + 1) * 21);
        if (c.titleDecides) {
            EXPECT_EQ(Width(s.window), minWidth);
        }
        // The limit is half the desktop less the margins (the unbroken golden shows the word broken over lines).
        if (c.wraps) {
            EXPECT_LE(Width(s.window), icon ? GetSystemMetrics(SM_CXICON) + 84 + half - 63 : half - 42 + 63);
        }
    }
}

// ---- Pixels and handles ---------------------------------------------------------------------------------------

TEST_F(MessageBoxes, GoldenBoxesInBothThemesAndLayouts)
{
    for (const testskin::Look& c : kLooks) {
        SetUpResources(c.Language(), c.theme);
        CVuikLib::SetLayout(c.rtl ? LAYOUT_RTL : 0);
        const std::string suffix = c.Suffix();
        SCOPED_TRACE(suffix);
        const wchar_t* text = c.rtl ? L"\x05DC\x05DE\x05D7\x05D5\x05E7 \x05D0\x05EA \x05D4\x05D4\x05D5\x05D3\x05E2\x05D4?"
                                    : L"Delete the message from the phone?";
        const wchar_t* title = c.rtl ? L"\x05D4\x05D5\x05D3\x05E2\x05D5\x05EA" : L"Messages";
        Capture common, plain;
        BoxRun run = RunBox(Common(text, title, MB_YESNOCANCEL | MB_ICONQUESTION), Escape, 0,
                            [&](const Seen& s) { common = Settled(s.box); });
        EXPECT_TRUE(MatchesGolden("msgbox_common_" + suffix, common.width, common.height, common.pixels.data()));
        // The mirrored picture does not show the reading order of this text, nor the words of the icon buttons
        // (their text and tips).
        EXPECT_EQ((run.seen.textExStyle & WS_EX_RTLREADING) != 0, c.rtl);
        EXPECT_EQ(run.seen.buttonTexts[IDYES], LanguageString(ZLR_STR_MSGBOX_YES));
        EXPECT_EQ(run.seen.buttonTexts[IDNO], LanguageString(ZLR_STR_MSGBOX_NO));
        EXPECT_EQ(run.seen.buttonTexts[IDCANCEL], LanguageString(ZLR_STR_MSGBOX_CANCEL));
        if (!c.rtl && c.theme == std::wstring(L"Default")) {
            // A word longer than the limit is broken over lines, as it was measured.
            const std::wstring unbroken(160, L'W');
            Capture wrapped;
            RunBox(Common(unbroken.c_str(), L"Long", MB_OK), Escape, 0, [&](const Seen& s) { wrapped = Settled(s.box); });
            EXPECT_TRUE(MatchesGolden("msgbox_common_unbroken", wrapped.width, wrapped.height, wrapped.pixels.data()));
        }
        // The older box wears only the application's skins: the theme changes nothing of it.
        if (c.theme != std::wstring(L"Default"))
            continue;
        CVuikMessageBox::SetTextColor(RGB(255, 255, 255));  // over the test's dark background
        run = RunBox(Plain(text, title, MB_OKCANCEL), Escape, 0, [&](const Seen& s) { plain = Settled(s.box); });
        EXPECT_EQ((run.seen.textExStyle & WS_EX_RTLREADING) != 0, c.rtl);
        EXPECT_TRUE(MatchesGolden("msgbox_plain_" + std::string(c.rtl ? "rtl" : "ltr"), plain.width, plain.height,
                                  plain.pixels.data()));
    }
}

TEST_F(MessageBoxes, NoHandleLeftOverRepeatedBoxes)
{
    HandleCounter counter;
    ASSERT_GT(counter.Patched(), 0);
    const auto cycle = [&] {
        RunBox(Common(L"Again?", L"Cycle", MB_YESNOCANCEL | MB_ICONQUESTION), Click, IDNO);
        RunBox(Plain(L"Again?", L"Cycle", MB_YESNOCANCEL), CloseMessage);
    };
    cycle();
    const HandleCounter::Counts before = counter.Live();
    for (int i = 0; i < 15; ++i)
        cycle();
    EXPECT_EQ(counter.Live(), before) << counter.Live().ToString() << " against " << before.ToString();
}

}  // namespace
