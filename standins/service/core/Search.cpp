// The search conditions of the content access interface.
#include "Contact.h"

namespace zcmod_standin {

namespace {

// Case folding for the scripts that phone books hold most: ASCII, Latin-1, Latin Extended-A, Greek, Cyrillic.
char16_t Fold(char16_t c)
{
    if ((c >= u'A' && c <= u'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) || (c >= 0x391 && c <= 0x3A9) ||
        (c >= 0x410 && c <= 0x42F))
        return static_cast<char16_t>(c + 32);
    if (c >= 0x400 && c <= 0x40F)
        return static_cast<char16_t>(c + 80);
    if (c >= 0x100 && c <= 0x17F && c != 0x130 && c != 0x131 && c != 0x138 && c != 0x149 && c != 0x17F) {
        // Latin Extended-A pairs: even upper, odd lower, except 0x139 to 0x148 and 0x179 to 0x17E (odd upper).
        const bool oddUpper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
        if (oddUpper ? (c & 1) : !(c & 1))
            return static_cast<char16_t>(c + 1);
    }
    return c;
}

}  // namespace

bool MatchPattern(std::u16string_view value, std::u16string_view pattern)
{
    // Greedy walk with one backtracking point: the last '%' seen and where its run ended in `value`.
    size_t v = 0, p = 0;
    size_t starP = std::u16string_view::npos, starV = 0;
    while (v < value.size()) {
        if (p < pattern.size() && pattern[p] == u'%') {
            starP = p++;
            starV = v;
        } else if (p < pattern.size() && Fold(pattern[p]) == Fold(value[v])) {
            ++p, ++v;
        } else if (starP != std::u16string_view::npos) {
            p = starP + 1;
            v = ++starV;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'%')
        ++p;
    return p == pattern.size();
}

bool MatchesCondition(const Contact& contact, uint32_t fieldClass, uint32_t subType, std::u16string_view pattern)
{
    for (const Field& field : contact.fields)
        if ((fieldClass == CA_FIELD_CLASS_ANY || field.fieldClass == fieldClass) &&
            (subType == CA_FIELD_SUBTYPE_ANY || field.subType == subType) && MatchPattern(field.value, pattern))
            return true;
    return false;
}

}  // namespace zcmod_standin
