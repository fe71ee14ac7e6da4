// The device capability text and the device filter.
#include "device/core/DeviceCapabilities.h"

#include <cwctype>

namespace zcmod::device {

namespace {

std::wstring_view Trim(std::wstring_view text)
{
    size_t begin = 0, end = text.size();
    while (begin < end && (text[begin] == L' ' || text[begin] == L'\t' || text[begin] == 0xFEFF))
        ++begin;
    while (end > begin && (text[end - 1] == L' ' || text[end - 1] == L'\t' || text[end - 1] == L'\r'))
        --end;
    return text.substr(begin, end - begin);
}

std::wstring Fold(std::wstring_view text)
{
    std::wstring folded(text);
    for (wchar_t& c : folded)
        c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
    return folded;
}

// The next piece of `text` up to `separator`, and `text` moved behind it.
std::wstring_view NextPiece(std::wstring_view& text, wchar_t separator)
{
    const size_t at = text.find(separator);
    const std::wstring_view piece = text.substr(0, at);
    text = at == std::wstring_view::npos ? std::wstring_view() : text.substr(at + 1);
    return piece;
}

// A decimal number of at most nine digits; false for anything else.
bool ReadNumber(std::wstring_view text, long& number)
{
    text = Trim(text);
    if (text.empty() || text.size() > 9)
        return false;
    number = 0;
    for (wchar_t c : text) {
        if (c < L'0' || c > L'9')
            return false;
        number = number * 10 + (c - L'0');
    }
    return true;
}

bool ListHolds(std::wstring_view list, std::wstring_view item)
{
    const std::wstring wanted = Fold(Trim(item));
    while (!list.empty() || !wanted.empty()) {
        const std::wstring_view piece = Trim(NextPiece(list, L','));
        if (Fold(piece) == wanted)
            return true;
        if (list.empty())
            break;
    }
    return false;
}

}  // namespace

void CapabilityText::Parse(std::wstring_view text)
{
    m_phoneType.clear();
    m_entries.clear();
    if (text.size() > kMaxText)
        text = text.substr(0, kMaxText);
    Entry* entry = nullptr;
    bool beforeSections = true;
    while (!text.empty()) {
        const std::wstring_view line = Trim(NextPiece(text, L'\n'));
        if (line.empty() || line[0] == L';' || line[0] == L'#')
            continue;
        if (line[0] == L'[') {
            const size_t close = line.find(L']');
            if (close == std::wstring_view::npos) {
                entry = nullptr;  // a broken header: its lines belong to no entry
                continue;
            }
            entry = &m_entries[Fold(Trim(line.substr(1, close - 1)))];
            beforeSections = false;
            continue;
        }
        const size_t equals = line.find(L'=');
        if (equals == std::wstring_view::npos || equals == 0)
            continue;
        const std::wstring_view key = Trim(line.substr(0, equals));
        const std::wstring_view value = Trim(line.substr(equals + 1));
        if (beforeSections) {
            if (Fold(key) == Fold(kCapPhoneType))
                m_phoneType.assign(value);
        } else if (entry) {
            // The IMEI mark is matched ignoring case, the serial behind it exactly.
            std::wstring folded(key);
            const std::wstring lower = Fold(key);
            const size_t mark = lower.find(Fold(kCapImei));
            if (mark != std::wstring::npos)
                folded = lower.substr(0, mark) + kCapImei + std::wstring(Trim(key.substr(mark + 6)));
            else
                folded = lower;
            (*entry)[folded].assign(value);
        }
    }
}

std::wstring CapabilityText::PhoneTypeOf(std::wstring_view manufacturer, std::wstring_view model) const
{
    if (!m_phoneType.empty())
        return m_phoneType;
    std::wstring type(Trim(manufacturer));
    if (!type.empty() && !Trim(model).empty())
        type += L' ';
    type += Trim(model);
    return type;
}

bool CapabilityText::HasEntry(std::wstring_view phoneType) const
{
    return m_entries.count(Fold(Trim(phoneType))) != 0;
}

bool CapabilityText::Find(std::wstring_view phoneType, std::wstring_view key, std::wstring_view serial,
                              std::wstring& value) const
{
    const auto entry = m_entries.find(Fold(Trim(phoneType)));
    if (entry == m_entries.end() || Trim(key).empty())
        return false;
    const std::wstring folded = Fold(Trim(key));
    if (!serial.empty()) {
        const auto own = entry->second.find(folded + kCapImei + std::wstring(Trim(serial)));
        if (own != entry->second.end()) {
            value = own->second;
            return true;
        }
    }
    const auto shared = entry->second.find(folded);
    if (shared == entry->second.end())
        return false;
    value = shared->second;
    return true;
}

bool PassesFilter(const CapabilityText& capabilities, std::wstring_view phoneType, std::wstring_view serial,
                  std::wstring_view filter)
{
    if (Trim(filter).empty())
        return true;
    if (!capabilities.HasEntry(phoneType))
        return false;
    while (!filter.empty()) {
        const std::wstring_view clause = Trim(NextPiece(filter, L';'));
        if (clause.empty())
            continue;
        const size_t at = clause.find_first_of(L">=");
        std::wstring value;
        const std::wstring_view key = Trim(clause.substr(0, at));
        if (!capabilities.Find(phoneType, key, serial, value))
            return false;
        if (at == std::wstring_view::npos) {
            if (value.empty())
                return false;
        } else if (clause[at] == L'=') {
            if (!ListHolds(value, clause.substr(at + 1)))
                return false;
        } else {
            long wanted = 0, have = 0;
            if (at + 1 >= clause.size() || clause[at + 1] != L'=' || !ReadNumber(clause.substr(at + 2), wanted) ||
                !ReadNumber(value, have) || have < wanted)
                return false;
        }
    }
    return true;
}

}  // namespace zcmod::device
