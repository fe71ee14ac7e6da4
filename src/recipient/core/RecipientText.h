// The text rules of the recipient box: one line of recipients separated by ';', each a bare phone number, a bare
// e-mail address, a name being typed or a finished contact "Name <address>".
//
// All of it works on UTF-16 code units (Text16), whatever the width of wchar_t on the platform, so that every
// offset is an index into the edit box's own text. ToText16 and FromText16 convert at the edge. Nothing here
// reads a window: the callers pass the text, the caret, the right-to-left decision and the contact search.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zcmod {

using Text16 = std::u16string;

// wchar_t text as UTF-16: unchanged where wchar_t is 16 bits; encoded, with surrogate pairs above U+FFFF, where
// it is 32 bits. A value that is no code point becomes U+FFFD; a lone surrogate value stays one code unit.
Text16 ToText16(const std::wstring& text);
Text16 ToText16(const wchar_t* text);
// The reverse. Where wchar_t is 32 bits a well-formed pair becomes one character and a lone surrogate stays.
std::wstring FromText16(const Text16& text);

// One recipient found in the text: its text, and the offsets of its first code unit and of the ';' behind it.
struct RecipientSpan {
    Text16 text;
    int32_t start = 0;
    int32_t end = 0;
};

// Searches the contacts: fills `results` with contact strings and returns 1 when there are results to use.
using RecipientSearch = std::function<int(Text16& text, bool byName, std::vector<Text16>& results)>;

// The characters a phone number may hold: "0123456789#+pw* -()".
bool IsPhoneAlphabet(char16_t c);
// 1 when every character is in the phone alphabet; the empty text is a phone number.
int IsValidPhoneNumber(const Text16& text);
// 1 when the text passes the e-mail rules (one '@', a non-empty local part and domain, a dot inside the domain,
// nothing above U+0080, no ".." right after the first dot, no ".@").
int IsValidEmailAddress(const Text16& text);

// Removes leading and trailing U+0020 only.
void TrimBlanks(Text16& text);
// True for U+200D, U+200F, U+202A, U+202C and U+202D, the marks that wrap addresses in right-to-left mode.
bool IsDirectionControl(char16_t c);
// Strips the direction marks in place; does nothing when `rtl` is false.
void RemoveDirectionControls(Text16& text, bool rtl);

// name + " <" + address + ">", the address wrapped in U+202D ... U+202C when `rtl` is true. No trimming.
Text16 CreateContactString(const Text16& name, const Text16& address, bool rtl);
// Splits "Name <address>", a bare address or a bare name; both parts come back trimmed.
void GetNameAndAddress(const Text16& input, Text16& name, Text16& address, bool rtl);
// Swaps the first word of the name with the rest: "Ann Lee <1>" gives "Lee Ann <1>".
Text16 SwapNameWords(const Text16& contact, bool rtl);

// Case folding for name comparison: ASCII, Latin-1, Latin Extended-A, basic Greek and Cyrillic.
char16_t FoldCase(char16_t c);
// 1 when `name` begins with `searched`, ignoring case.
int IsSearchedName(const Text16& searched, const Text16& name);
// 1 when either name begins with `searched`.
int IsSearchedName(const Text16& searched, const Text16& name1, const Text16& name2);
// The strict order of search results: 1 when `a` orders before `b` by code unit, 0 otherwise.
int WstrCompare(const Text16& a, const Text16& b);

// The recipient around the caret. A caret outside the text is taken as its nearest end. Returns 1 and sets
// `out`, `*start` and `*end` (when not null); returns 0 and leaves them alone when there is none.
int ExtractName(const Text16& text, int32_t caret, Text16& out, int32_t* start, int32_t* end);
// Cuts the whole text into recipients; offsets refer to the text after trimming and stripping.
void GetContacts(const Text16& text, bool rtl, std::vector<RecipientSpan>& contacts);
// Turns typed text into a finished contact through the search: by address when it looks like one, then by
// name. Returns 1 with the first result in `output`; otherwise 0 with `output` = `input`.
int CheckNumberOrEmail(Text16& input, Text16& output, bool rtl, const RecipientSearch& search);

// Language string ids of the validity messages.
enum : uint32_t {
    kMsgPhoneOnly = 0x8344,
    kMsgEmailOnly = 0x8345,
    kMsgPhoneOrEmail = 0x8346,
    kMsgUnknownContact = 0x8347,
};

// The verdict on one recipient, and the messages that a failure shows, in order (0 for none).
struct RecipientVerdict {
    int result = 1;
    bool checked = false;  // false when neither check was asked for: nothing is marked
    uint32_t messages[2] = {0, 0};
};
// Judges one recipient: the form check by `addressFilter` (1 e-mail, 2 phone, 3 either, others nothing) on its
// address, and the known-contact check through `search` by name on its name.
RecipientVerdict JudgeRecipient(const Text16& text, int formal, int contact, int32_t addressFilter, bool rtl,
                                const RecipientSearch& search);

}  // namespace zcmod
