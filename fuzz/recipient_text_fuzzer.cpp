// Fuzzes the recipient text rules with arbitrary UTF-16 lines and carets: every offset stays inside the line,
// the pieces are the text between the offsets, and a contact string built from two parts splits back into them.
//
// Input: byte 0 holds the flags (bit 0: right-to-left), bytes 1-2 the caret (signed, little-endian), the rest
// the line as UTF-16 code units; a U+0000 in the line splits it into a name and an address for the round trip.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "recipient/core/RecipientText.h"

using namespace zcmod;

namespace {

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

// Makes a part that a contact string must give back unchanged: no direction marks where they are stripped,
// no '<' in an address, no blanks at either end.
Text16 Normalized(Text16 part, bool rtl, bool address)
{
    RemoveDirectionControls(part, rtl);
    if (address)
        for (char16_t& c : part)
            if (c == u'<')
                c = u'[';
    TrimBlanks(part);
    return part;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 3)
        return 0;
    const bool rtl = data[0] & 1;
    const int32_t caret = static_cast<int16_t>(data[1] | (data[2] << 8));
    Text16 line;
    for (size_t i = 3; i + 1 < size; i += 2)
        line.push_back(static_cast<char16_t>(data[i] | (data[i + 1] << 8)));
    const int32_t length = static_cast<int32_t>(line.size());

    Text16 out;
    int32_t start = -1, end = -1;
    if (ExtractName(line, caret, out, &start, &end)) {
        Check(0 <= start && start < end && end <= length);
        Check(out == line.substr(static_cast<size_t>(start), static_cast<size_t>(end - start)));
        Check(end == length || line[static_cast<size_t>(end)] == u';');
    } else {
        Check(start == -1 && end == -1);
    }

    std::vector<RecipientSpan> spans;
    GetContacts(line, rtl, spans);
    Text16 stripped = line;
    TrimBlanks(stripped);
    RemoveDirectionControls(stripped, rtl);
    int32_t previous = -1;
    for (const RecipientSpan& span : spans) {
        Check(span.start == previous + 1 && span.start <= span.end);
        Check(span.end <= static_cast<int32_t>(stripped.size()));
        Check(span.text == stripped.substr(static_cast<size_t>(span.start), static_cast<size_t>(span.end - span.start)));
        previous = span.end;
    }

    const size_t cut = line.find(u'\0');
    const Text16 name = Normalized(line.substr(0, cut), rtl, false);
    const Text16 address = Normalized(cut == Text16::npos ? Text16() : line.substr(cut + 1), rtl, true);
    Text16 name2, address2;
    GetNameAndAddress(CreateContactString(name, address, rtl), name2, address2, rtl);
    Check(name2 == name && address2 == address);

    // Splitting anything gives trimmed parts, and swapping the words of a contact keeps its address.
    GetNameAndAddress(line, name2, address2, rtl);
    Check(name2.empty() || (name2.front() != u' ' && name2.back() != u' '));
    Check(address2.empty() || (address2.front() != u' ' && address2.back() != u' '));
    Text16 swappedName, swappedAddress;
    GetNameAndAddress(SwapNameWords(CreateContactString(name, address, rtl), rtl), swappedName, swappedAddress, rtl);
    Check(address.empty() || swappedAddress == address);
    Check(swappedName.size() <= name.size());

    (void)IsValidEmailAddress(line);
    (void)IsSearchedName(line, out);
    return 0;
}
