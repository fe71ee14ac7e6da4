// Right to left, the plain dialogs and recipient text: the library's system information dialog (template 105)
// in English as written and in Hebrew flipped by CRTLHelper, side by side, each run by a CDkhDialog in the
// theme's dialog colours; and a line of recipients in a rich edit box, cut up and judged by the recipient rules,
// malformed ones in italics.
//
// The templates are popups; to show them inside the page, the page takes a copy of each and makes it a child.
#include <windows.h>

#include <richedit.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"

using namespace gallery;

namespace {

const int kTop = 56;
const int kDialogGap = 24;
const UINT_PTR kRecipientEdit = 300;

std::wstring LanguageCode()
{
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    const wchar_t* code = handler ? handler->GetLanguageName() : nullptr;
    return code ? code : L"";
}

// A plain dialog of the library shown in the page: its rich edit box tells where it comes from.
class PreviewDialog : public CDkhDialog {
public:
    explicit PreviewDialog(std::wstring info) : CDkhDialog(IDD_ZCMOD_SYSTEM_INFORMATION), m_info(std::move(info))
    {
        LoadRichEdit();
    }
    ~PreviewDialog() override
    {
        if (m_hWnd)
            DestroyWindow(m_hWnd);
    }

    // Creates the dialog as a child of `host` from `bytes`, a copy of the template.
    HWND Create(HWND host, std::vector<uint8_t>& bytes, int x, int y)
    {
        HWND dialog = CreateDialogIndirectParamW(GetModuleHandleW(L"zcmod.dll"),
                                                 reinterpret_cast<DLGTEMPLATE*>(bytes.data()), host,
                                                 DialogProcStatic, reinterpret_cast<LPARAM>(this));
        if (dialog) {
            SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            ShowWindow(dialog, SW_SHOWNA);
        }
        return dialog;
    }

protected:
    INT_PTR OnInitDialog() override
    {
        CDkhDialog::OnInitDialog();
        // The template's "RICHEDIT" class is an ANSI window: give it the text as UTF-16 explicitly.
        SETTEXTEX set = {ST_DEFAULT, 1200};
        SendDlgItemMessageW(m_hWnd, IDC_ZCMOD_SYSTEM_INFORMATION_TEXT, EM_SETTEXTEX, reinterpret_cast<WPARAM>(&set),
                            reinterpret_cast<LPARAM>(m_info.c_str()));
        return 0;
    }
    // A preview never closes by a button.
    void OnOK() override {}
    void OnCancel() override {}

private:
    std::wstring m_info;
};

// A copy of template 105 of the language `language`, made a captionless child, and flipped when `rtl`.
std::vector<uint8_t> ChildTemplate(WORD language, bool rtl)
{
    HMODULE library = GetModuleHandleW(L"zcmod.dll");
    HRSRC resource = FindResourceExW(library, RT_DIALOG, MAKEINTRESOURCEW(IDD_ZCMOD_SYSTEM_INFORMATION), language);
    HGLOBAL loaded = resource ? LoadResource(library, resource) : nullptr;
    const auto* data = static_cast<const uint8_t*>(loaded ? LockResource(loaded) : nullptr);
    if (!data)
        return {};
    std::vector<uint8_t> bytes(data, data + SizeofResource(library, resource));
    if (bytes.size() < 16 || bytes[2] != 0xFF || bytes[3] != 0xFF)
        return {};
    // The extended layout: extended style at byte 8, style at byte 12.
    DWORD exStyle = 0;
    DWORD style = 0;
    memcpy(&exStyle, &bytes[8], 4);
    memcpy(&style, &bytes[12], 4);
    style = (style & ~(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME)) | WS_CHILD | WS_BORDER;
    memcpy(&bytes[12], &style, 4);
    if (rtl) {
        // What CRTLHelper::FlipDialog does in the loaded resource, here in the page's copy.
        exStyle |= WS_EX_LAYOUTRTL;
        memcpy(&bytes[8], &exStyle, 4);
    }
    return bytes;
}

struct Judged {
    RecipientLocation where;
    std::wstring name;
    std::wstring address;
    int valid = 0;
};

class RtlPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Right to left and dialogs"; }

    void Enter(HWND host) override
    {
        Leave();
        m_host = host;
        RECT area;
        GetClientRect(host, &area);
        const bool rtl = CRTLHelper::IsRTL(LanguageCode().c_str()) != 0;
        m_english = std::make_unique<PreviewDialog>(L"Language \"" + LanguageCode() + L"\"; right to left: " +
                                                    (rtl ? L"yes" : L"no") +
                                                    L".\r\nThis is template 105 of zcmod.dll, run by CDkhDialog.");
        m_hebrew = std::make_unique<PreviewDialog>(L"שפה \"" + LanguageCode() + L"\"; מימין לשמאל: " +
                                                   (rtl ? L"כן" : L"לא") +
                                                   L".\r\nזוהי תבנית 105 של zcmod.dll, בהפעלת CDkhDialog.");
        m_englishBytes = ChildTemplate(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), false);
        m_hebrewBytes = ChildTemplate(MAKELANGID(LANG_HEBREW, SUBLANG_DEFAULT), true);
        m_englishWindow = m_englishBytes.empty() ? nullptr : m_english->Create(host, m_englishBytes, 24, kTop + 24);
        RECT placed = {};
        if (m_englishWindow)
            GetWindowRect(m_englishWindow, &placed);
        const int width = placed.right - placed.left;
        m_dialogBottom = kTop + 24 + (placed.bottom - placed.top);
        m_hebrewWindow =
            m_hebrewBytes.empty() ? nullptr : m_hebrew->Create(host, m_hebrewBytes, 24 + width + kDialogGap, kTop + 24);

        // A line of recipients: two finished contacts, a bare address, a bare number and three malformed contacts.
        m_richEdit = LoadLibraryW(L"Riched20.dll");
        m_edit = CreateWindowExW(WS_EX_CLIENTEDGE, L"RichEdit20W", L"", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 24,
                                 m_dialogBottom + 48, area.right - 48, 26, host,
                                 reinterpret_cast<HMENU>(kRecipientEdit), nullptr, nullptr);
        LOGFONTW font;
        DkhLoadFont(&font);
        font.lfHeight = 15;
        m_font = CreateFontIndirectW(&font);
        SendMessageW(m_edit, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), 0);
        const std::wstring line = CSearchEngineControl::CreateContactString(L"Ann Lee", L"+358 40 123 4567") +
                                  L"; " + CSearchEngineControl::CreateContactString(L"\x05D3\x05E0\x05D4", L"dana@example.com") +
                                  L"; bob@example.com; 040 555 12; Zed <not an address>; Eve <12P>; Max <a..b@c.d>";
        SetWindowTextW(m_edit, line.c_str());
        std::vector<RecipientLocation> pieces;
        CSearchEngineControl::GetContacts(m_edit, pieces);
        m_judged.clear();
        for (const RecipientLocation& piece : pieces) {
            Judged judged;
            judged.where = piece;
            CSearchEngineControl::GetNameAndAddress(piece.m_strText, judged.name, judged.address);
            judged.valid = CSearchEngineControl::ValidateInput(m_edit, piece.m_strText, piece.m_nStart, piece.m_nEnd,
                                                               1, 0, 0);
            m_judged.push_back(judged);
        }
    }

    void Leave() override
    {
        m_english.reset();
        m_hebrew.reset();
        m_englishWindow = m_hebrewWindow = nullptr;
        if (m_edit)
            DestroyWindow(m_edit);
        m_edit = nullptr;
        if (m_font)
            DeleteObject(m_font);
        m_font = nullptr;
        if (m_richEdit)
            FreeLibrary(m_richEdit);
        m_richEdit = nullptr;
        m_host = nullptr;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        const COLORREF disabled = DkhLoadColor(nullptr, ZGR_COLOR_TEXT_DISABLED);
        Swatch(dc, area, window, window);
        const int left = area.left + 24;
        Font(dc, 22, FW_BOLD, [&] { Text(dc, left, area.top + 16, L"Right to left and plain dialogs", accent); });
        Font(dc, 14, FW_NORMAL, [&] {
            Text(dc, left, kTop, L"Template 105 in English, as written", text);
            Text(dc, m_hebrewWindow ? ChildLeft(m_hebrewWindow) : left + 420, kTop,
                 L"In Hebrew, flipped: every control mirrored", text);
        });
        Font(dc, 15, FW_BOLD, [&] { Text(dc, left, m_dialogBottom + 24, L"Recipient rules", text); });
        int y = m_dialogBottom + 84;
        Font(dc, 14, FW_NORMAL, [&] {
            if (CRTLHelper::IsRTL(LanguageCode().c_str())) {
                // The rules count offsets in the text without its direction marks, and each finished contact
                // in the box carries two: the italics of the box stand that many characters further left.
                Text(dc, left, y, L"Right to left: offsets count the text without the marks around addresses.",
                     text);
                y += 19;
            }
            for (const Judged& j : m_judged) {
                const std::wstring row =
                    Format(L"%3d..%-3d  %ls", j.where.m_nStart, j.where.m_nEnd, j.where.m_strText.c_str());
                Text(dc, left, y, row, j.valid ? text : disabled);
                Text(dc, left + 420, y,
                     Format(L"name \"%ls\", address \"%ls\": %ls", j.name.c_str(), j.address.c_str(),
                            j.valid ? L"valid" : L"malformed, in italics"),
                     j.valid ? text : disabled);
                y += 19;
            }
        });
    }

    std::wstring Verify() override
    {
        if (!m_englishWindow || !m_hebrewWindow)
            return L"the dialog templates could not be shown";
        if (!(GetWindowLongW(m_hebrewWindow, GWL_EXSTYLE) & WS_EX_LAYOUTRTL))
            return L"the Hebrew dialog is not laid out right to left";
        if (CDkhDialog::FromHandle(m_englishWindow) == nullptr)
            return L"the dialog map does not know the English dialog";
        // The OK button sits at the right in one and at the left in the other.
        RECT ok1, ok2, d1, d2;
        GetWindowRect(GetDlgItem(m_englishWindow, IDOK), &ok1);
        GetWindowRect(GetDlgItem(m_hebrewWindow, IDOK), &ok2);
        GetWindowRect(m_englishWindow, &d1);
        GetWindowRect(m_hebrewWindow, &d2);
        if (ok1.right - d1.left <= (d1.right - d1.left) / 2 || ok2.left - d2.left >= (d2.right - d2.left) / 2)
            return L"the OK button was not mirrored";
        int malformed = 0;
        for (const Judged& j : m_judged)
            malformed += !j.valid;
        if (m_judged.size() != 7 || malformed != 3)
            return Format(L"%u recipients with %d malformed, not 7 with 3", static_cast<unsigned>(m_judged.size()),
                          malformed);
        return L"";
    }

private:
    template <class Draw>
    static void Font(HDC dc, int height, int weight, Draw draw)
    {
        HFONT font = SuiteFont(height, weight);
        HGDIOBJ old = SelectObject(dc, font);
        draw();
        SelectObject(dc, old);
        DeleteObject(font);
    }
    int ChildLeft(HWND child) const
    {
        RECT r;
        GetWindowRect(child, &r);
        MapWindowPoints(nullptr, m_host, reinterpret_cast<POINT*>(&r), 2);
        return r.left < r.right ? r.left : r.right;
    }

    HWND m_host = nullptr;
    std::unique_ptr<PreviewDialog> m_english;
    std::unique_ptr<PreviewDialog> m_hebrew;
    std::vector<uint8_t> m_englishBytes;
    std::vector<uint8_t> m_hebrewBytes;
    HWND m_englishWindow = nullptr;
    HWND m_hebrewWindow = nullptr;
    int m_dialogBottom = kTop + 300;
    HMODULE m_richEdit = nullptr;
    HWND m_edit = nullptr;
    HFONT m_font = nullptr;
    std::vector<Judged> m_judged;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeRtlPage() { return std::make_unique<RtlPage>(); }
