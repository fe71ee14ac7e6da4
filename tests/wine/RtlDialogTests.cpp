// Right-to-left support and the dialog base under Wine: the language table, template flips on real templates of
// both layouts (the layout bit set, nothing else changed), the settings reader, CDkhDialog's map, colours and
// brushes in a modal loop, and the recipient rules on a real rich edit box.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>
#include <richedit.h>

#include <functional>
#include <vector>

#include "HandleCounter.h"
#include "RtlDialogIds.h"
#include "TestSkins.h"
#include "TestSupport.h"
#include "frame/core/DialogTemplate.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/DkhDialog.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/SearchEngineControl.h"

using namespace zcmod_test;

namespace {

HINSTANCE TestModule() { return GetModuleHandleW(nullptr); }

std::vector<uint8_t> TemplateBytes(HINSTANCE module, UINT id, const DLGTEMPLATE* loaded)
{
    HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(id), RT_DIALOG);
    const DWORD size = resource ? SizeofResource(module, resource) : 0;
    const auto* bytes = reinterpret_cast<const uint8_t*>(loaded);
    return std::vector<uint8_t>(bytes, bytes + size);
}

INT_PTR CALLBACK QuietDialogProc(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

}  // namespace

TEST(RtlHelper, LanguageCodes)
{
    const struct {
        const wchar_t* code;
        int rtl;
    } cases[] = {{L"heb", 1}, {L"HEB", 1}, {L"Ara", 1}, {L"aRA", 1}, {L"eng", 0}, {L"he", 0},
                 {L"hebr", 0}, {L"arab", 0}, {L"", 0}, {nullptr, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code ? c.code : L"(null)");
        EXPECT_EQ(CRTLHelper::IsRTL(c.code), c.rtl);
        CRTLHelper helper(c.code);
        EXPECT_EQ(helper.IsRTL(), c.rtl);
        helper.Initialize(c.rtl ? L"eng" : L"ara");
        EXPECT_EQ(helper.IsRTL(), 1 - c.rtl);
    }
}

// The loaded template itself changes, in the layout bit of its extended style alone, and the platform makes a
// right-to-left dialog of it; the reader finds every item past the optional parts of either layout.
TEST(RtlHelper, FlipsTemplatesOfBothLayoutsInPlaceByTheLayoutBitAlone)
{
    // The classes the templates name: a dialog class of their own and a control class.
    WNDCLASSW wc = {};
    wc.hInstance = TestModule();
    wc.lpfnWndProc = DefWindowProcW;
    wc.lpszClassName = L"ZcmodRtlTestControl";
    RegisterClassW(&wc);
    wc.lpfnWndProc = DefDlgProcW;
    wc.cbWndExtra = DLGWINDOWEXTRA;
    wc.lpszClassName = L"ZcmodRtlTestDialog";
    RegisterClassW(&wc);
    const struct {
        UINT id;
        zcmod::DialogTemplateKind kind;
        size_t items;
    } cases[] = {{IDD_RTL_PLAIN, zcmod::DialogTemplateKind::Plain, 5},
                 {IDD_RTL_EXTENDED, zcmod::DialogTemplateKind::Extended, 4}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        DLGTEMPLATE* asLoaded = CRTLHelper::FlipDialog(TestModule(), MAKEINTRESOURCEW(c.id), 0);
        ASSERT_NE(asLoaded, nullptr);
        std::vector<uint8_t> original = TemplateBytes(TestModule(), c.id, asLoaded);
        const size_t layoutByte = zcmod::DialogExStyleOffset(c.kind) + 2;
        original[layoutByte] &= ~0x40;  // as written, should an earlier run in this process have flipped it
        zcmod::DialogTemplateInfo info;
        ASSERT_TRUE(zcmod::ParseDialogTemplate(original.data(), original.size(), info));
        ASSERT_EQ(info.kind, c.kind);
        EXPECT_EQ(info.typeface, u"MS Shell Dlg") << "the font's fields read in their order";
        ASSERT_EQ(info.items.size(), c.items);
        for (size_t i = 0; i < c.items; ++i)
            EXPECT_EQ(info.items[i].id, 2001u + i);

        std::vector<uint8_t> expected = original;
        expected[layoutByte] |= 0x40;
        DLGTEMPLATE* flipped = CRTLHelper::FlipDialog(TestModule(), MAKEINTRESOURCEW(c.id), 1);
        EXPECT_EQ(flipped, asLoaded) << "the loaded resource itself changes";
        EXPECT_EQ(TemplateBytes(TestModule(), c.id, flipped), expected);
        CRTLHelper::FlipDialog(TestModule(), MAKEINTRESOURCEW(c.id), 0);
        EXPECT_EQ(TemplateBytes(TestModule(), c.id, flipped), expected) << "nothing clears the bit again";

        HWND dialog = CreateDialogIndirectParamW(TestModule(), flipped, nullptr, QuietDialogProc, 0);
        ASSERT_NE(dialog, nullptr);
        EXPECT_TRUE(GetWindowLongW(dialog, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
        DestroyWindow(dialog);
    }
}

TEST(RtlHelper, MissingTemplatesAndDataFileModules)
{
    for (int rtl : {0, 1}) {
        EXPECT_EQ(CRTLHelper::FlipDialog(TestModule(), MAKEINTRESOURCEW(4321), rtl), nullptr);
        EXPECT_EQ(CRTLHelper::FlipDialog(TestModule(), L"NoSuchDialog", rtl), nullptr);
    }
    CRTLHelper hebrew(L"heb");
    EXPECT_EQ(hebrew.FlipDialog(TestModule(), 4321u), nullptr);

    // A module mapped as a data file: its templates can be flipped too.
    wchar_t temp[MAX_PATH];
    GetTempPathW(MAX_PATH, temp);
    const std::wstring copy = std::wstring(temp) + L"zcmod_rtl_datafile.dll";
    ASSERT_TRUE(CopyFileW((BinDir() + L"\\zcmod.dll").c_str(), copy.c_str(), FALSE));
    HMODULE data = LoadLibraryExW(copy.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(data, nullptr);
    DLGTEMPLATE* flipped = hebrew.FlipDialog(data, static_cast<UINT>(IDD_ZCMOD_SYSTEM_INFORMATION));
    ASSERT_NE(flipped, nullptr);
    zcmod::DialogTemplateInfo info;
    const std::vector<uint8_t> bytes = TemplateBytes(data, IDD_ZCMOD_SYSTEM_INFORMATION, flipped);
    ASSERT_TRUE(zcmod::ParseDialogTemplate(bytes.data(), bytes.size(), info));
    EXPECT_TRUE(info.exStyle & WS_EX_LAYOUTRTL);
    EXPECT_EQ(hebrew.FlipDialog(data, static_cast<UINT>(IDD_ZCMOD_SYSTEM_INFORMATION)), flipped);
    FreeLibrary(data);
    DeleteFileW(copy.c_str());
}

TEST(RtlHelper, LanguageIdFromTheRegistry)
{
    const wchar_t* key = L"Software\\ZCMOD Tests\\RtlHelper";
    const std::wstring fits(129, L'a');  // 260 bytes with its end
    SetString(HKEY_CURRENT_USER, key, L"Lang", L"heb");
    SetString(HKEY_CURRENT_USER, key, L"Fits", fits);
    SetString(HKEY_CURRENT_USER, key, L"Long", fits + L"a");
    const struct {
        const wchar_t* subKey;
        const wchar_t* value;
        const wchar_t* expected;
    } cases[] = {{key, L"Lang", L"heb"},      {key, L"Fits", fits.c_str()}, {key, L"Long", nullptr},
                 {key, L"Missing", nullptr}, {L"Software\\ZCMOD Tests\\None", L"Lang", nullptr},
                 {key, L"", nullptr},        {nullptr, L"Lang", nullptr},  {key, nullptr, nullptr}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value ? c.value : L"(null)");
        wchar_t* text = CRTLHelper::GetLangID(HKEY_CURRENT_USER, c.subKey, c.value);
        EXPECT_EQ(text != nullptr, c.expected != nullptr);
        if (text && c.expected) {
            EXPECT_STREQ(text, c.expected);
        }
        delete[] text;
    }
    DeleteTree(HKEY_CURRENT_USER, L"Software\\ZCMOD Tests\\RtlHelper");
}

namespace {

// A dialog of one of the library's templates that runs `step` once it is up; the step closes it, else the
// watchdog does after five seconds.
class ProbeDialog : public CDkhDialog {
public:
    explicit ProbeDialog(WORD id) : CDkhDialog(id) {}
    std::function<void(ProbeDialog&)> step;
    int closings = 0;
    bool watchdogFired = false;
    HBRUSH BackgroundBrush() const { return m_hBackgroundBrush; }
    HBRUSH NullBrush() const { return m_hNullBrush; }

protected:
    INT_PTR OnInitDialog() override
    {
        const INT_PTR result = CDkhDialog::OnInitDialog();
        SetTimer(m_hWnd, 1, 10, nullptr);
        SetTimer(m_hWnd, 2, 5000, nullptr);
        return result;
    }
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == WM_TIMER && wParam == 1) {
            KillTimer(m_hWnd, 1);
            if (step)
                step(*this);
            return 1;
        }
        if (message == WM_TIMER && wParam == 2) {
            watchdogFired = true;
            EndDialog(m_hWnd, -2);
        }
        return CDkhDialog::DialogProc(message, wParam, lParam);
    }
    void OnOK() override
    {
        ++closings;
        CDkhDialog::OnOK();
    }
    void OnCancel() override
    {
        ++closings;
        CDkhDialog::OnCancel();
    }
};

}  // namespace

TEST(DkhDialog, MapColoursAndBrushesOfAModalDialog)
{
    SuiteRegistry registry;
    const struct {
        const wchar_t* theme;
        COLORREF background;
        COLORREF text;
        WPARAM closer;
        WORD dialogId;
        int controlId;
        const wchar_t* language;
        bool rtl;
    } cases[] = {{L"Test", RGB(201, 202, 203), RGB(11, 12, 13), IDOK, IDD_ZCMOD_SYSTEM_INFORMATION,
                  IDC_ZCMOD_SYSTEM_INFORMATION_TEXT, L"eng", false},
                 // A theme without the dialog colours gives black; the recipient picker's template, in Hebrew.
                 {L"Other", 0, 0, IDCANCEL, IDD_ZCMOD_RECIPIENTS, IDC_ZCMOD_RECIPIENTS_LIST, L"heb", true}};
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    CCommonModuleState& state = CCommonModuleState::Get();
    struct Restore {
        CCommonModuleState& state;
        CResHandler* handler;
        ~Restore() { state.m_pResHandler = handler; }
    } restore{state, state.m_pResHandler};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.theme);
        registry.SetUserTheme(c.theme);
        registry.SetLanguage(c.language);
        // The language is chosen once per handler: a fresh one for each case, the process's back afterwards.
        CResHandler handler;
        state.m_pResHandler = &handler;
        state.ResetColorLoader();
        HandleCounter counter;
        const HandleCounter::Counts before = counter.Live();

        ProbeDialog dialog(c.dialogId);
        ASSERT_TRUE(dialog.LoadRichEdit()) << "the template's RICHEDIT control needs riched32.dll";
        HWND seen = nullptr;
        HBRUSH brush = nullptr;
        dialog.step = [&](ProbeDialog& d) {
            seen = d.GetSafeHwnd();
            brush = d.BackgroundBrush();
            EXPECT_EQ(CDkhDialog::FromHandle(seen), &d);
            EXPECT_NE(GetDlgItem(seen, c.controlId), nullptr);
            EXPECT_EQ((GetWindowLongW(seen, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0, c.rtl);
            EXPECT_EQ(counter.Live()[HandleCounter::Brush], before[HandleCounter::Brush] + 1);

            // Colours by message: the brush returned, the text and background colours left on the DC.
            const struct {
                UINT message;
                HBRUSH brush;
                COLORREF text;
                COLORREF back;
            } colours[] = {
                {WM_CTLCOLORBTN, d.NullBrush(), RGB(255, 0, 0), RGB(1, 1, 1)},
                {WM_CTLCOLORDLG, brush, c.text, c.background},
                {WM_CTLCOLORSTATIC, brush, c.text, c.background},
                {WM_CTLCOLOREDIT, d.NullBrush(), RGB(1, 1, 1), RGB(1, 1, 1)},  // as every other kind
            };
            HDC dc = CreateCompatibleDC(nullptr);
            for (const auto& colour : colours) {
                SCOPED_TRACE(colour.message);
                SetTextColor(dc, RGB(1, 1, 1));
                SetBkColor(dc, RGB(1, 1, 1));
                const LRESULT result = SendMessageW(seen, colour.message, reinterpret_cast<WPARAM>(dc), 0);
                EXPECT_EQ(reinterpret_cast<HBRUSH>(result), colour.brush);
                EXPECT_EQ(GetTextColor(dc), colour.text);
                EXPECT_EQ(GetBkColor(dc), colour.back);
            }
            DeleteDC(dc);
            EXPECT_EQ(d.NullBrush(), GetStockObject(NULL_BRUSH));
            testskin::Canvas erased(8, 8);
            SendMessageW(seen, WM_ERASEBKGND, reinterpret_cast<WPARAM>(static_cast<HDC>(erased)), 0);
            EXPECT_EQ(GetPixel(erased, 3, 3), c.background);

            // A click carries its notification in the high word; only the whole word 1 or 2 closes.
            SendMessageW(seen, WM_COMMAND, MAKEWPARAM(IDOK, EN_CHANGE), 0);
            SendMessageW(seen, WM_COMMAND, MAKEWPARAM(IDCANCEL, 1), 0);
            EXPECT_EQ(d.closings, 0);
            PostMessageW(seen, WM_COMMAND, c.closer, 0);
        };
        const INT_PTR result = dialog.DoModal(nullptr);
        state.m_pResHandler = restore.handler;
        ASSERT_FALSE(dialog.watchdogFired) << "the dialog never closed";
        EXPECT_EQ(result, static_cast<INT_PTR>(c.closer));
        ASSERT_NE(seen, nullptr);
        EXPECT_EQ(CDkhDialog::FromHandle(seen), nullptr) << "WM_DESTROY leaves the map";
        EXPECT_EQ(dialog.GetSafeHwnd(), nullptr);
        EXPECT_EQ(dialog.BackgroundBrush(), nullptr);
        EXPECT_EQ(counter.Live(), before) << counter.Live().ToString();
    }
}

TEST(DkhDialog, WithoutTemplateOrObject)
{
    ProbeDialog none(0);
    EXPECT_EQ(none.DoModal(nullptr), -1);
    ProbeDialog missing(4321);
    EXPECT_EQ(missing.DoModal(nullptr), -1);
    // Messages before WM_INITDIALOG, or of windows that are no dialog of ours, find no object and get 0.
    HWND stranger = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    for (UINT message : {WM_SETFONT, WM_COMMAND, WM_CTLCOLORSTATIC, WM_ERASEBKGND, WM_DESTROY})
        EXPECT_EQ(CDkhDialog::DialogProcStatic(stranger, message, IDOK, 0), 0);
    EXPECT_EQ(CDkhDialog::DialogProcStatic(stranger, WM_INITDIALOG, 0, 0), 0) << "no object given";
    EXPECT_EQ(CDkhDialog::FromHandle(stranger), nullptr);
    DestroyWindow(stranger);
}

TEST(RecipientRules, OnARichEditBox)
{
    HMODULE richEdit = LoadLibraryW(L"Riched20.dll");
    ASSERT_NE(richEdit, nullptr);
    HWND edit = CreateWindowExW(0, L"RichEdit20W", L"", WS_POPUP | ES_MULTILINE, 0, 0, 400, 40, nullptr, nullptr,
                                nullptr, nullptr);
    ASSERT_NE(edit, nullptr);
    // A surrogate pair takes two offsets in the box, and in the rules: the caret read from the box finds the
    // recipient at the offsets the highlighting below uses.
    SetWindowTextW(edit, L"Ann <1>; b\U0001F600b; 12");
    SendMessageW(edit, EM_SETSEL, 10, 10);
    std::wstring name;
    int start = -1, end = -1;
    EXPECT_EQ(CSearchEngineControl::ExtractName(edit, name, &start, &end), 1);
    EXPECT_EQ(name, L"b\U0001F600b");
    EXPECT_EQ(start, 9);
    EXPECT_EQ(end, 13);
    std::vector<RecipientLocation> contacts;
    CSearchEngineControl::GetContacts(edit, contacts);
    ASSERT_EQ(contacts.size(), 3u);
    EXPECT_EQ(contacts[1].m_nEnd, 13) << "the contact list's offsets count the pair as two as well";

    // A malformed recipient goes into italics, a good one back upright; the selection stays where it was.
    SendMessageW(edit, EM_SETSEL, 1, 2);
    auto italic = [&](int at) {
        SendMessageW(edit, EM_SETSEL, at, at + 1);
        CHARFORMAT2W format = {};
        format.cbSize = sizeof(format);
        SendMessageW(edit, EM_GETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
        return (format.dwEffects & CFE_ITALIC) != 0;
    };
    EXPECT_EQ(CSearchEngineControl::ValidateInput(edit, L"Bob <x y>", 9, 13, 1, 0, 0), 0);
    DWORD selStart = 0, selEnd = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&selStart), reinterpret_cast<LPARAM>(&selEnd));
    EXPECT_EQ(selStart, 1u);
    EXPECT_EQ(selEnd, 2u);
    EXPECT_TRUE(italic(9));
    EXPECT_TRUE(italic(12));
    EXPECT_FALSE(italic(13));
    EXPECT_FALSE(italic(8));
    EXPECT_EQ(CSearchEngineControl::ValidateInput(edit, L"b <1>", 9, 13, 1, 0, 0), 1);
    EXPECT_FALSE(italic(9));
    DestroyWindow(edit);
    FreeLibrary(richEdit);
}
