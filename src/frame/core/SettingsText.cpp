#include "frame/core/SettingsText.h"

#include <climits>
#include <cstring>
#include <cwchar>

namespace zcmod {

namespace {

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

wchar_t Upper(wchar_t c) { return (c >= L'a' && c <= L'z') ? static_cast<wchar_t>(c - L'a' + L'A') : c; }

std::wstring ToUpper(const wchar_t* text)
{
    std::wstring s(text ? text : L"");
    for (wchar_t& c : s)
        c = Upper(c);
    return s;
}

}  // namespace

int ParseLeadingInt(const wchar_t* text)
{
    if (!text)
        return 0;
    while (*text == L' ' || (*text >= L'\t' && *text <= L'\r'))
        ++text;
    bool negative = false;
    if (*text == L'+' || *text == L'-')
        negative = *text++ == L'-';
    long long value = 0;
    for (; IsDigit(*text); ++text) {
        value = value * 10 + (*text - L'0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;  // saturate; the clamp below decides the sign
    }
    if (negative)
        return value > static_cast<long long>(INT_MAX) ? INT_MIN : static_cast<int>(-value);
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

int ParseBuildNumberParts(const wchar_t* text, int result[3])
{
    result[0] = result[1] = result[2] = 0;
    if (!text)
        return 0;
    int count = 0;
    const wchar_t* p = text;
    while (*p && count < 3) {
        while (*p == L'.')
            ++p;
        if (!*p)
            break;
        result[count++] = ParseLeadingInt(p);
        while (*p && *p != L'.')
            ++p;
    }
    return count;
}

bool TakeNumberAfterWord(const wchar_t* text, const wchar_t* word, std::wstring& number)
{
    number.clear();
    if (!text || !word || !*word)
        return false;
    const std::wstring t = ToUpper(text);
    const std::wstring w = ToUpper(word);
    std::size_t at = t.find(w);
    if (at == std::wstring::npos)
        return false;
    std::size_t i = at + w.size();
    while (i < t.size() && !IsDigit(t[i]))
        ++i;
    if (i == t.size())
        return false;
    std::size_t end = i;
    while (end < t.size() && (IsDigit(t[end]) || t[end] == L'.' || t[end] == L','))
        ++end;
    number = t.substr(i, end - i);
    return true;
}

void SplitTrailingVersion(const wchar_t* text, std::wstring& version, std::wstring& build)
{
    version.clear();
    build.clear();
    if (!text)
        return;
    const std::wstring t(text);
    std::size_t p = t.size();
    while (p > 0 && IsDigit(t[p - 1]))
        --p;
    build = t.substr(p);
    std::size_t end = p;  // the characters that are not digits before the build are dropped
    while (end > 0 && !IsDigit(t[end - 1]))
        --end;
    std::size_t start = end;
    while (start > 0 && (IsDigit(t[start - 1]) || t[start - 1] == L'.'))
        --start;
    version = t.substr(start, end - start);
}

bool ContainsAllWords(const wchar_t* text, const wchar_t* const* words, std::size_t count)
{
    if (!text)
        return false;
    const std::wstring t = ToUpper(text);
    for (std::size_t i = 0; i < count; ++i)
        if (t.find(words[i]) == std::wstring::npos)
            return false;
    return true;
}

bool BuildFaultReporterPath(const wchar_t* windowsDir, std::size_t dirLen, wchar_t* out, std::size_t outCapacity)
{
    static const wchar_t kTail[] = L"\\System32\\FaultRep.dll";
    const std::size_t tailLen = sizeof(kTail) / sizeof(kTail[0]) - 1;
    if (!out || outCapacity == 0)
        return false;
    out[0] = 0;
    if (!windowsDir || dirLen == 0 || dirLen > 237 || dirLen + tailLen + 1 > outCapacity)
        return false;
    std::wmemcpy(out, windowsDir, dirLen);
    std::wmemcpy(out + dirLen, kTail, tailLen + 1);
    return true;
}

bool CopyIfFits(const std::wstring& text, wchar_t* out, std::size_t capacity)
{
    if (!out || text.size() + 1 > capacity)
        return false;
    std::wmemcpy(out, text.c_str(), text.size() + 1);
    return true;
}

}  // namespace zcmod
