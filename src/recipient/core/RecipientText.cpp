#include "recipient/core/RecipientText.h"

#include <algorithm>
#include <cstring>

namespace zcmod {

namespace {

constexpr char16_t kSeparator = u';';
constexpr char16_t kBlank = u' ';
constexpr char16_t kLeftToRightOverride = 0x202D;
constexpr char16_t kPopDirectionalFormatting = 0x202C;

template <class Wide>
Text16 EncodeUtf16(const Wide* text, size_t length)
{
    Text16 out;
    out.reserve(length);
    for (size_t i = 0; i < length; ++i) {
        const uint32_t c = static_cast<uint32_t>(text[i]);
        if (c <= 0xFFFF) {
            out.push_back(static_cast<char16_t>(c));
        } else if (c <= 0x10FFFF) {
            const uint32_t v = c - 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (v >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (v & 0x3FF)));
        } else {
            out.push_back(0xFFFD);
        }
    }
    return out;
}

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

}  // namespace

Text16 ToText16(const std::wstring& text) { return EncodeUtf16(text.data(), text.size()); }

Text16 ToText16(const wchar_t* text)
{
    if (!text)
        return Text16();
    size_t length = 0;
    while (text[length])
        ++length;
    return EncodeUtf16(text, length);
}

std::wstring FromText16(const Text16& text)
{
    std::wstring out;
    out.reserve(text.size());
    if (sizeof(wchar_t) == 2) {
        for (char16_t c : text)
            out.push_back(static_cast<wchar_t>(c));
        return out;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            const uint32_t v = 0x10000 + ((static_cast<uint32_t>(c) - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            out.push_back(static_cast<wchar_t>(v));
            ++i;
        } else {
            out.push_back(static_cast<wchar_t>(c));
        }
    }
    return out;
}

bool IsPhoneAlphabet(char16_t c)
{
    static const char16_t kAlphabet[] = u"0123456789#+pw* -()";
    for (const char16_t* p = kAlphabet; *p; ++p)
        if (*p == c)
            return true;
    return false;
}

int IsValidPhoneNumber(const Text16& text)
{
    return std::all_of(text.begin(), text.end(), IsPhoneAlphabet) ? 1 : 0;
}

int IsValidEmailAddress(const Text16& text)
{
    const size_t at = text.find(u'@');
    if (at == Text16::npos)
        return 0;
    if (text.find(u'@', at + 1) != Text16::npos)
        return 0;
    const Text16 domain = text.substr(at + 1);
    if (at == 0 || domain.empty())
        return 0;
    const size_t domainDot = domain.find(u'.');
    if (domainDot == Text16::npos || domainDot == 0 || domainDot == domain.size() - 1)
        return 0;
    for (char16_t c : text)
        if (c > 0x80)
            return 0;
    // Only the first dot of the whole address is looked at for a doubled dot.
    const size_t firstDot = text.find(u'.');
    if (firstDot + 1 < text.size() && text[firstDot + 1] == u'.')
        return 0;
    if (text.find(u".@") != Text16::npos)
        return 0;
    return 1;
}

void TrimBlanks(Text16& text)
{
    const size_t first = text.find_first_not_of(kBlank);
    if (first == Text16::npos) {
        text.clear();
        return;
    }
    const size_t last = text.find_last_not_of(kBlank);
    text = text.substr(first, last - first + 1);
}

bool IsDirectionControl(char16_t c)
{
    return c == 0x200D || c == 0x200F || c == 0x202A || c == 0x202C || c == 0x202D;
}

void RemoveDirectionControls(Text16& text, bool rtl)
{
    if (!rtl)
        return;
    text.erase(std::remove_if(text.begin(), text.end(), IsDirectionControl), text.end());
}

Text16 CreateContactString(const Text16& name, const Text16& address, bool rtl)
{
    Text16 result = name;
    result += u" <";
    if (rtl)
        result += kLeftToRightOverride;
    result += address;
    if (rtl)
        result += kPopDirectionalFormatting;
    result += u'>';
    return result;
}

void GetNameAndAddress(const Text16& input, Text16& name, Text16& address, bool rtl)
{
    Text16 copy = input;
    RemoveDirectionControls(copy, rtl);
    TrimBlanks(copy);
    if (!copy.empty() && copy.back() == u'>') {
        const size_t open = copy.rfind(u'<');
        if (open == Text16::npos) {
            name = copy;
            address.clear();
        } else {
            name = copy.substr(0, open);
            address = copy.substr(open + 1, copy.size() - 1 - (open + 1));
        }
    } else if (IsValidPhoneNumber(input) || IsValidEmailAddress(input)) {
        // The text as given decides, direction marks and blanks included.
        name.clear();
        address = input;
    } else {
        name = input;
        address.clear();
    }
    TrimBlanks(name);
    TrimBlanks(address);
}

Text16 SwapNameWords(const Text16& contact, bool rtl)
{
    Text16 name;
    Text16 address;
    GetNameAndAddress(contact, name, address, rtl);
    Text16 first = name;
    Text16 rest;
    const size_t blank = name.find(kBlank);
    if (blank != Text16::npos) {
        first = name.substr(0, blank);
        rest = name.substr(blank + 1);
    }
    TrimBlanks(first);
    TrimBlanks(rest);
    Text16 result = rest;
    if (!first.empty() && !rest.empty())
        result += kBlank;
    result += first;
    if (!address.empty()) {
        result += u" <";
        result += address;
        result += u'>';
    }
    return result;
}

char16_t FoldCase(char16_t c)
{
    if (c >= u'A' && c <= u'Z')
        return static_cast<char16_t>(c + 0x20);
    if (c < 0xC0)
        return c;
    if (c <= 0xDE)  // Latin-1 capitals, but not the multiplication sign
        return c == 0xD7 ? c : static_cast<char16_t>(c + 0x20);
    if (c >= 0x100 && c <= 0x137)  // Latin Extended-A, pairs from even capitals
        return (c & 1) ? c : static_cast<char16_t>(c + 1);
    if (c >= 0x139 && c <= 0x148)  // pairs from odd capitals
        return (c & 1) ? static_cast<char16_t>(c + 1) : c;
    if (c >= 0x14A && c <= 0x177)
        return (c & 1) ? c : static_cast<char16_t>(c + 1);
    if (c == 0x178)
        return 0xFF;
    if (c >= 0x179 && c <= 0x17E)
        return (c & 1) ? static_cast<char16_t>(c + 1) : c;
    if (c >= 0x391 && c <= 0x3AB && c != 0x3A2)  // Greek capitals
        return static_cast<char16_t>(c + 0x20);
    if (c >= 0x400 && c <= 0x40F)  // Cyrillic capitals with marks
        return static_cast<char16_t>(c + 0x50);
    if (c >= 0x410 && c <= 0x42F)
        return static_cast<char16_t>(c + 0x20);
    return c;
}

int IsSearchedName(const Text16& searched, const Text16& name)
{
    if (searched.size() > name.size())
        return 0;
    for (size_t i = 0; i < searched.size(); ++i)
        if (FoldCase(searched[i]) != FoldCase(name[i]))
            return 0;
    return 1;
}

int IsSearchedName(const Text16& searched, const Text16& name1, const Text16& name2)
{
    return IsSearchedName(searched, name1) || IsSearchedName(searched, name2) ? 1 : 0;
}

int WstrCompare(const Text16& a, const Text16& b) { return a.compare(b) < 0 ? 1 : 0; }

int ExtractName(const Text16& text, int32_t caret, Text16& out, int32_t* start, int32_t* end)
{
    if (text.empty())
        return 0;
    const int32_t length = static_cast<int32_t>(std::min<size_t>(text.size(), INT32_MAX));
    const int32_t s = std::clamp(caret, 0, length);

    // Position 0 is never looked at: a ';' that opens the text belongs to the first recipient.
    int32_t first = 0;
    for (int32_t i = s - 1; i >= 1; --i) {
        if (text[static_cast<size_t>(i)] == kSeparator) {
            first = i + 1;
            break;
        }
    }
    while (first < length && text[static_cast<size_t>(first)] == kBlank)
        ++first;
    int32_t last = s;
    while (last < length && text[static_cast<size_t>(last)] != kSeparator)
        ++last;
    if (first >= last)
        return 0;
    out = text.substr(static_cast<size_t>(first), static_cast<size_t>(last - first));
    if (start)
        *start = first;
    if (end)
        *end = last;
    return 1;
}

void GetContacts(const Text16& text, bool rtl, std::vector<RecipientSpan>& contacts)
{
    Text16 line = text;
    TrimBlanks(line);
    contacts.clear();
    if (line.empty())
        return;
    RemoveDirectionControls(line, rtl);
    if (line.empty() || line.back() != kSeparator)
        line += kSeparator;
    size_t pieceStart = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] != kSeparator)
            continue;
        RecipientSpan span;
        span.text = line.substr(pieceStart, i - pieceStart);
        span.start = static_cast<int32_t>(pieceStart);
        span.end = static_cast<int32_t>(i);
        contacts.push_back(std::move(span));
        pieceStart = i + 1;
    }
}

int CheckNumberOrEmail(Text16& input, Text16& output, bool rtl, const RecipientSearch& search)
{
    RemoveDirectionControls(input, rtl);
    std::vector<Text16> results;
    // A search that says "found" but hands back nothing counts as a miss.
    auto found = [&](bool byName) {
        results.clear();
        return search && search(input, byName, results) && !results.empty();
    };
    if ((IsValidPhoneNumber(input) || IsValidEmailAddress(input)) && found(false)) {
        output = results.front();
        return 1;
    }
    if (found(true)) {
        output = results.front();
        return 1;
    }
    output = input;
    return 0;
}

RecipientVerdict JudgeRecipient(const Text16& text, int formal, int contact, int32_t addressFilter, bool rtl,
                                const RecipientSearch& search)
{
    RecipientVerdict verdict;
    if (!formal && !contact)
        return verdict;
    verdict.checked = true;
    int messageCount = 0;

    Text16 name;
    Text16 address;
    GetNameAndAddress(text, name, address, rtl);

    if (formal) {
        bool passes = true;
        uint32_t message = 0;
        switch (addressFilter) {
            case 3:
                passes = IsValidPhoneNumber(address) || IsValidEmailAddress(address);
                message = kMsgPhoneOrEmail;
                break;
            case 1:
                passes = IsValidEmailAddress(address) != 0;
                message = kMsgEmailOnly;
                break;
            case 2:
                passes = IsValidPhoneNumber(address) != 0;
                message = kMsgPhoneOnly;
                break;
            default:
                break;
        }
        if (!passes) {
            verdict.result = 0;
            verdict.messages[messageCount++] = message;
        }
    }

    if (contact && !name.empty()) {
        std::vector<Text16> results;
        Text16 searched = name;
        if (search)
            search(searched, true, results);
        bool known = false;
        for (const Text16& result : results) {
            Text16 resultName;
            Text16 resultAddress;
            GetNameAndAddress(result, resultName, resultAddress, rtl);
            if (resultName == name) {
                known = true;
                break;
            }
        }
        if (!known) {
            verdict.result = 0;
            verdict.messages[messageCount++] = kMsgUnknownContact;
        }
    }
    return verdict;
}

}  // namespace zcmod
