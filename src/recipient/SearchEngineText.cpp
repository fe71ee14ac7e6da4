// The recipient text rules of CSearchEngineControl: thin wrappers of the portable rules, which take the
// right-to-left decision from the current language and the text and caret from the edit box.
#include <richedit.h>

#include "recipient/core/RecipientText.h"
#include "zcmod/VuikMessageBox.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/SearchEngineControl.h"

using zcmod::FromText16;
using zcmod::Text16;
using zcmod::ToText16;

long CSearchEngineControl::m_lAddressFilter = CSearchEngineControl::kFilterBoth;
long CSearchEngineControl::m_lFormalValidityChecking = 1;
long CSearchEngineControl::m_lHighlighting = 1;
bool CSearchEngineControl::m_bApplySearchLimit = true;

namespace {

bool LanguageIsRtl()
{
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    return CRTLHelper::IsRTL(handler ? handler->GetLanguageName() : nullptr) != 0;
}

// The contact search, seen through UTF-16 text.
zcmod::RecipientSearch InstalledSearch(bool unlimited)
{
    return [unlimited](Text16& text, bool byName, std::vector<Text16>& results) {
        std::wstring wide = FromText16(text);
        std::vector<std::wstring> found;
        // Checking a finished name must see every contact, also below the shortest searched length; the limit
        // is on again afterwards.
        if (unlimited)
            CSearchEngineControl::m_bApplySearchLimit = false;
        const int result = CSearchEngineControl::SearchValues(wide, byName, found);
        if (unlimited)
            CSearchEngineControl::m_bApplySearchLimit = true;
        for (const std::wstring& entry : found)
            results.push_back(ToText16(entry));
        return result;
    };
}

Text16 WindowText(HWND edit)
{
    if (!edit || !IsWindow(edit))
        return Text16();
    const int length = GetWindowTextLengthW(edit);
    if (length <= 0)
        return Text16();
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(edit, &text[0], length + 1)));
    return ToText16(text);
}

void ShowRecipientMessage(HWND edit, UINT id)
{
    wchar_t text[260] = {};
    wchar_t caption[260] = {};
    ZCMOD_LoadString(id, text, 260);
    ZCMOD_LoadString(ZLR_STR_SUITE_NAME, caption, 260);
    CVuikCommonMessageBox::Show(edit, text, caption, MB_OK | MB_ICONERROR);
    if (edit && IsWindow(edit))
        SetFocus(edit);
}

}  // namespace

int CSearchEngineControl::IsValidPhoneNumber(std::wstring text) { return zcmod::IsValidPhoneNumber(ToText16(text)); }

int CSearchEngineControl::IsValidEmailAddress(std::wstring text)
{
    return zcmod::IsValidEmailAddress(ToText16(text));
}

void CSearchEngineControl::GetNameAndAddress(std::wstring input, std::wstring& name, std::wstring& address)
{
    Text16 name16;
    Text16 address16;
    zcmod::GetNameAndAddress(ToText16(input), name16, address16, LanguageIsRtl());
    name = FromText16(name16);
    address = FromText16(address16);
}

void CSearchEngineControl::RemoveUnicodeControlCharacters(std::wstring& text)
{
    if (!LanguageIsRtl())
        return;
    Text16 text16 = ToText16(text);
    zcmod::RemoveDirectionControls(text16, true);
    text = FromText16(text16);
}

std::wstring CSearchEngineControl::CreateContactString(std::wstring name, std::wstring address)
{
    return FromText16(zcmod::CreateContactString(ToText16(name), ToText16(address), LanguageIsRtl()));
}

int CSearchEngineControl::IsSearchedName(std::wstring searched, std::wstring name)
{
    return zcmod::IsSearchedName(ToText16(searched), ToText16(name));
}

int CSearchEngineControl::IsSearchedName(std::wstring searched, std::wstring name1, std::wstring name2)
{
    return zcmod::IsSearchedName(ToText16(searched), ToText16(name1), ToText16(name2));
}

int CSearchEngineControl::WstrCompare(std::wstring a, std::wstring b)
{
    return zcmod::WstrCompare(ToText16(a), ToText16(b));
}

void CSearchEngineControl::TrimBlanks(std::wstring& text)
{
    Text16 text16 = ToText16(text);
    zcmod::TrimBlanks(text16);
    text = FromText16(text16);
}

std::wstring CSearchEngineControl::SwapNameWords(std::wstring contact)
{
    return FromText16(zcmod::SwapNameWords(ToText16(contact), LanguageIsRtl()));
}

int CSearchEngineControl::ExtractName(HWND edit, std::wstring& out, int* start, int* end)
{
    const Text16 text = WindowText(edit);
    if (text.empty())
        return 0;
    DWORD selectionStart = 0;
    DWORD selectionEnd = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&selectionStart), reinterpret_cast<LPARAM>(&selectionEnd));
    Text16 out16;
    int32_t first = 0;
    int32_t last = 0;
    const int32_t caret = selectionStart > INT32_MAX ? INT32_MAX : static_cast<int32_t>(selectionStart);
    if (!zcmod::ExtractName(text, caret, out16, &first, &last))
        return 0;
    out = FromText16(out16);
    if (start)
        *start = first;
    if (end)
        *end = last;
    return 1;
}

int CSearchEngineControl::CheckNumberOrEmail(std::wstring& input, std::wstring& output)
{
    Text16 input16 = ToText16(input);
    Text16 output16;
    const int result = zcmod::CheckNumberOrEmail(input16, output16, LanguageIsRtl(), InstalledSearch(false));
    input = FromText16(input16);
    output = FromText16(output16);
    return result;
}

int CSearchEngineControl::ValidateInput(HWND edit, std::wstring text, int start, int end, int formal, int contact,
                                        int showMessage)
{
    const zcmod::RecipientVerdict verdict = zcmod::JudgeRecipient(
        ToText16(text), formal, contact, static_cast<int32_t>(m_lAddressFilter), LanguageIsRtl(), InstalledSearch(true));
    if (!verdict.checked)
        return 1;
    if (showMessage) {
        for (uint32_t message : verdict.messages)
            if (message)
                ShowRecipientMessage(edit, message);
    }
    if (m_lHighlighting)
        Highlight(edit, start, end, verdict.result);
    return verdict.result;
}

void CSearchEngineControl::GetContacts(HWND edit, std::vector<RecipientLocation>& contacts)
{
    std::vector<zcmod::RecipientSpan> spans;
    zcmod::GetContacts(WindowText(edit), LanguageIsRtl(), spans);
    contacts.clear();
    for (const zcmod::RecipientSpan& span : spans)
        contacts.push_back(RecipientLocation{FromText16(span.text), span.start, span.end});
}

void CSearchEngineControl::Highlight(HWND edit, int start, int end, int valid)
{
    if (!edit || !IsWindow(edit))
        return;
    CHARRANGE saved = {};
    SendMessageW(edit, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&saved));
    CHARRANGE range = {start, end};
    SendMessageW(edit, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
    CHARFORMAT2W format = {};
    format.cbSize = sizeof(format);
    format.dwMask = CFM_ITALIC;
    format.dwEffects = valid ? 0 : CFE_ITALIC;
    SendMessageW(edit, EM_SETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
    SendMessageW(edit, WM_SETREDRAW, TRUE, 0);
    CHARRANGE none = {-1, 0};
    SendMessageW(edit, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&none));
    SendMessageW(edit, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&saved));
}
