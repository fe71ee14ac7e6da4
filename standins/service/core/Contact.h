// The stand-in service's portable model of a phone's contacts: a contact is a list of fields, each with the
// class and sub type of the content access interface (device/core/ContactFieldTypes.h) and a UTF-16 value.
// vCard reading and writing, the search conditions of the content access interface and the contact
// generator of the controller work on it. No <windows.h>: this code also builds natively, for tests and
// fuzzing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "device/core/ContactFieldTypes.h"

namespace zcmod_standin {

struct Field {
    uint32_t fieldClass = 0;
    uint32_t subType = 0;
    std::u16string value;

    bool operator==(const Field& other) const
    {
        return fieldClass == other.fieldClass && subType == other.subType && value == other.value;
    }
};

struct Contact {
    std::vector<Field> fields;  // personal information first, then numbers, then addresses

    bool operator==(const Contact& other) const { return fields == other.fields; }
    // The first value of a class and sub type; empty if none.
    std::u16string Get(uint32_t fieldClass, uint32_t subType) const;
};

// --- Text -----------------------------------------------------------------------------------------------------
// UTF-8 to UTF-16; false (and `out` undefined) if the bytes are not valid UTF-8.
bool DecodeUtf8(std::string_view bytes, std::u16string& out);
std::u16string Utf8ToUtf16Lossy(std::string_view bytes);  // invalid sequences become U+FFFD
std::string Utf16ToUtf8(std::u16string_view text);
std::u16string AsciiToUtf16(std::string_view text);

// --- vCard ----------------------------------------------------------------------------------------------------
// Reads every card of a vCard 2.1 or 3.0 stream as address books write them: folded lines, quoted-printable
// values with soft line breaks, CHARSET parameters (UTF-8, ISO-8859-1, Windows-1252, US-ASCII), TYPE
// parameters in either version's form, a UTF-8 or UTF-16 byte order mark. Unknown properties are skipped; a
// card cut off at the end of the stream is kept with what it has. Never reads outside `bytes`.
std::vector<Contact> ParseVCards(std::string_view bytes);

enum class VCardVersion { V21, V30 };
// One card, UTF-8, lines ended by CRLF; 2.1 writes non-ASCII values quoted-printable, 3.0 escapes and folds.
std::string WriteVCard(const Contact& contact, VCardVersion version = VCardVersion::V30);

// --- Search ---------------------------------------------------------------------------------------------------
// The content access interface's patterns: '%' stands for any run of characters (also none); everything
// else matches itself, ignoring case. "ann%" finds values beginning with "ann", "% ann%" values with a later
// word beginning with "ann", "ann" the value "ann" alone.
bool MatchPattern(std::u16string_view value, std::u16string_view pattern);

// A search condition: a field of `fieldClass` (0: any) and `subType` (0: any) whose value matches `pattern`.
bool MatchesCondition(const Contact& contact, uint32_t fieldClass, uint32_t subType, std::u16string_view pattern);

// --- Generator ------------------------------------------------------------------------------------------------
// `count` contacts with names, numbers and e-mail addresses drawn from `seed`: the same seed gives the same
// contacts. Most have a first and a last name, some one name only, some two numbers or no e-mail address, and
// a share of the names carry characters outside ASCII.
std::vector<Contact> GenerateContacts(size_t count, uint32_t seed);

}  // namespace zcmod_standin
