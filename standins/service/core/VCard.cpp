// vCard 2.1 and 3.0 reading and writing, and the UTF conversions they need.
#include <algorithm>
#include <cstring>

#include "Contact.h"

namespace zcmod_standin {

std::u16string Contact::Get(uint32_t fieldClass, uint32_t subType) const
{
    for (const Field& field : fields)
        if (field.fieldClass == fieldClass && field.subType == subType)
            return field.value;
    return {};
}

// --- Text -----------------------------------------------------------------------------------------------------

namespace {

void AppendCodePoint(std::u16string& out, uint32_t cp)
{
    if (cp >= 0x10000) {
        cp -= 0x10000;
        out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
        out.push_back(static_cast<char16_t>(cp));
    }
}

// One UTF-8 sequence at `i`; false for an invalid or cut-off one (overlong forms and surrogates included).
bool NextUtf8(std::string_view bytes, size_t& i, uint32_t& cp)
{
    const auto b0 = static_cast<unsigned char>(bytes[i]);
    size_t length = 0;
    uint32_t min = 0;
    if (b0 < 0x80) {
        cp = b0;
        ++i;
        return true;
    } else if ((b0 & 0xE0) == 0xC0) {
        length = 2, cp = b0 & 0x1F, min = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
        length = 3, cp = b0 & 0x0F, min = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
        length = 4, cp = b0 & 0x07, min = 0x10000;
    } else {
        return false;
    }
    if (bytes.size() - i < length)
        return false;
    for (size_t k = 1; k < length; ++k) {
        const auto b = static_cast<unsigned char>(bytes[i + k]);
        if ((b & 0xC0) != 0x80)
            return false;
        cp = (cp << 6) | (b & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return false;
    i += length;
    return true;
}

// Windows-1252 bytes 0x80 to 0x9F; the rest is ISO-8859-1.
const char16_t kCp1252High[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::u16string DecodeSingleByte(std::string_view bytes, bool cp1252)
{
    std::u16string out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        out.push_back(cp1252 && b >= 0x80 && b < 0xA0 ? kCp1252High[b - 0x80] : static_cast<char16_t>(b));
    }
    return out;
}

}  // namespace

bool DecodeUtf8(std::string_view bytes, std::u16string& out)
{
    out.clear();
    out.reserve(bytes.size());
    for (size_t i = 0; i < bytes.size();) {
        uint32_t cp = 0;
        if (!NextUtf8(bytes, i, cp))
            return false;
        AppendCodePoint(out, cp);
    }
    return true;
}

std::u16string Utf8ToUtf16Lossy(std::string_view bytes)
{
    std::u16string out;
    for (size_t i = 0; i < bytes.size();) {
        uint32_t cp = 0;
        if (NextUtf8(bytes, i, cp)) {
            AppendCodePoint(out, cp);
        } else {
            out.push_back(0xFFFD);
            ++i;
        }
    }
    return out;
}

std::string Utf16ToUtf8(std::u16string_view text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t cp = text[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = 0xFFFD;
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

std::u16string AsciiToUtf16(std::string_view text)
{
    return std::u16string(text.begin(), text.end());
}

// --- Reading --------------------------------------------------------------------------------------------------

namespace {

std::string Upper(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return out;
}

std::string_view Trim(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

// A stream with a UTF-16 byte order mark is turned into UTF-8 first; a UTF-8 mark is dropped.
std::string NormaliseEncoding(std::string_view bytes)
{
    if (bytes.size() >= 3 && std::memcmp(bytes.data(), "\xEF\xBB\xBF", 3) == 0)
        return std::string(bytes.substr(3));
    if (bytes.size() >= 2 &&
        (std::memcmp(bytes.data(), "\xFF\xFE", 2) == 0 || std::memcmp(bytes.data(), "\xFE\xFF", 2) == 0)) {
        const bool little = bytes[0] == '\xFF';
        std::u16string text;
        for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
            const auto lo = static_cast<unsigned char>(bytes[little ? i : i + 1]);
            const auto hi = static_cast<unsigned char>(bytes[little ? i + 1 : i]);
            text.push_back(static_cast<char16_t>(lo | (hi << 8)));
        }
        return Utf16ToUtf8(text);
    }
    return std::string(bytes);
}

std::vector<std::string_view> PhysicalLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' || text[i] == '\n') {
            lines.push_back(text.substr(start, i - start));
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
            start = i + 1;
        }
    }
    if (start < text.size())
        lines.push_back(text.substr(start));
    return lines;
}

// The position of the first ':' outside double quotes, or npos.
size_t FindValueColon(std::string_view line)
{
    bool quoted = false;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"')
            quoted = !quoted;
        else if (line[i] == ':' && !quoted)
            return i;
    }
    return std::string_view::npos;
}

bool IsQuotedPrintable(std::string_view line)
{
    const size_t colon = FindValueColon(line);
    if (colon == std::string_view::npos)
        return false;
    return Upper(line.substr(0, colon)).find("QUOTED-PRINTABLE") != std::string::npos;
}

// Physical lines to content lines: a line that begins with a blank or a tab continues the one before (the
// blank goes), and a quoted-printable value whose line ends in '=' goes on in the next line (soft break).
std::vector<std::string> ContentLines(std::string_view text)
{
    const std::vector<std::string_view> physical = PhysicalLines(text);
    std::vector<std::string> lines;
    for (size_t i = 0; i < physical.size(); ++i) {
        std::string_view line = physical[i];
        if (!line.empty() && (line[0] == ' ' || line[0] == '\t') && !lines.empty()) {
            lines.back().append(line.substr(1));
            continue;
        }
        lines.emplace_back(line);
        // Soft line breaks: the '=' stays for the decoder to drop along with the break.
        while (!lines.back().empty() && lines.back().back() == '=' && i + 1 < physical.size() &&
               Upper(physical[i + 1].substr(0, 9)) != "END:VCARD" && IsQuotedPrintable(lines.back())) {
            lines.back().append("\n");
            lines.back().append(physical[++i]);
        }
    }
    return lines;
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

std::string DecodeQuotedPrintable(std::string_view value)
{
    std::string out;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '=') {
            out.push_back(value[i]);
            continue;
        }
        if (i + 1 < value.size() && value[i + 1] == '\n') {  // a soft line break
            ++i;
            continue;
        }
        if (i + 2 < value.size() && HexValue(value[i + 1]) >= 0 && HexValue(value[i + 2]) >= 0) {
            out.push_back(static_cast<char>(HexValue(value[i + 1]) * 16 + HexValue(value[i + 2])));
            i += 2;
            continue;
        }
        if (i + 1 == value.size())  // a final '=' without a following line
            continue;
        out.push_back('=');
    }
    return out;
}

struct Property {
    std::string name;                // upper case, without group
    std::vector<std::string> types;  // upper case, from TYPE= and bare 2.1 parameters
    std::string charset;             // upper case
    bool quotedPrintable = false;
    bool base64 = false;
    std::string_view rawValue;
};

void AddTypes(std::string_view list, std::vector<std::string>& types)
{
    size_t start = 0;
    while (start <= list.size()) {
        size_t comma = list.find(',', start);
        if (comma == std::string_view::npos)
            comma = list.size();
        std::string_view type = Trim(list.substr(start, comma - start));
        if (type.size() >= 2 && type.front() == '"' && type.back() == '"')
            type = type.substr(1, type.size() - 2);
        if (!type.empty())
            types.push_back(Upper(type));
        start = comma + 1;
    }
}

bool ParseProperty(std::string_view line, Property& property)
{
    const size_t colon = FindValueColon(line);
    if (colon == std::string_view::npos)
        return false;
    property.rawValue = line.substr(colon + 1);
    std::string_view head = line.substr(0, colon);
    // Parameters, split at ';' outside quotes.
    std::vector<std::string_view> parts;
    bool quoted = false;
    size_t start = 0;
    for (size_t i = 0; i <= head.size(); ++i) {
        if (i < head.size() && head[i] == '"')
            quoted = !quoted;
        if (i == head.size() || (head[i] == ';' && !quoted)) {
            parts.push_back(head.substr(start, i - start));
            start = i + 1;
        }
    }
    std::string_view name = Trim(parts[0]);
    const size_t dot = name.rfind('.');
    if (dot != std::string_view::npos)
        name = name.substr(dot + 1);
    property.name = Upper(name);
    for (size_t i = 1; i < parts.size(); ++i) {
        const std::string_view part = Trim(parts[i]);
        const size_t equals = part.find('=');
        const std::string key = Upper(Trim(part.substr(0, equals)));
        const std::string_view value =
            equals == std::string_view::npos ? std::string_view() : Trim(part.substr(equals + 1));
        if (equals == std::string_view::npos) {  // 2.1 bare parameters
            if (key == "QUOTED-PRINTABLE")
                property.quotedPrintable = true;
            else if (key == "BASE64" || key == "B")
                property.base64 = true;
            else
                property.types.push_back(key);
        } else if (key == "TYPE") {
            AddTypes(value, property.types);
        } else if (key == "ENCODING") {
            const std::string encoding = Upper(value);
            property.quotedPrintable = encoding == "QUOTED-PRINTABLE";
            property.base64 = encoding == "BASE64" || encoding == "B";
        } else if (key == "CHARSET") {
            property.charset = Upper(value);
            if (property.charset.size() >= 2 && property.charset.front() == '"')
                property.charset = property.charset.substr(1, property.charset.size() - 2);
        }
    }
    return !property.name.empty();
}

bool HasType(const Property& property, const char* type)
{
    return std::find(property.types.begin(), property.types.end(), type) != property.types.end();
}

std::u16string DecodeText(std::string_view bytes, const std::string& charset)
{
    if (charset == "ISO-8859-1" || charset == "LATIN1" || charset == "ISO_8859-1")
        return DecodeSingleByte(bytes, false);
    if (charset == "WINDOWS-1252" || charset == "CP1252")
        return DecodeSingleByte(bytes, true);
    // UTF-8, US-ASCII, none or unknown: UTF-8 when valid, else the usual single-byte code page of the
    // programs that leave the charset out.
    std::u16string text;
    if (DecodeUtf8(bytes, text))
        return text;
    return DecodeSingleByte(bytes, true);
}

// Splits a structured value at ';' and unescapes each component (\\, \;, \, and \n).
std::vector<std::u16string> Components(std::u16string_view value, bool structured)
{
    std::vector<std::u16string> parts(1);
    for (size_t i = 0; i < value.size(); ++i) {
        const char16_t c = value[i];
        if (c == u'\\' && i + 1 < value.size()) {
            const char16_t next = value[++i];
            if (next == u'n' || next == u'N')
                parts.back().push_back(u'\n');
            else if (next == u';' || next == u',' || next == u'\\' || next == u':')
                parts.back().push_back(next);
            else
                parts.back().append({u'\\', next});
        } else if (c == u';' && structured) {
            parts.emplace_back();
        } else {
            parts.back().push_back(c);
        }
    }
    return parts;
}

std::u16string TrimText(std::u16string text)
{
    const auto blank = [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; };
    while (!text.empty() && blank(text.back()))
        text.pop_back();
    size_t start = 0;
    while (start < text.size() && blank(text[start]))
        ++start;
    return text.substr(start);
}

std::u16string Join(const std::vector<std::u16string>& parts, size_t first, size_t last, std::u16string_view glue)
{
    std::u16string out;
    for (size_t i = first; i < last && i < parts.size(); ++i) {
        const std::u16string part = TrimText(parts[i]);
        if (part.empty())
            continue;
        if (!out.empty())
            out += glue;
        out += part;
    }
    return out;
}

uint32_t NumberType(const Property& p)
{
    if (HasType(p, "CELL"))
        return CA_NUMBER_MOBILE;
    if (HasType(p, "FAX"))
        return CA_NUMBER_FAX;
    if (HasType(p, "PAGER"))
        return CA_NUMBER_PAGER;
    if (HasType(p, "CAR"))
        return CA_NUMBER_CAR;
    if (HasType(p, "HOME"))
        return CA_NUMBER_HOME;
    if (HasType(p, "WORK"))
        return CA_NUMBER_WORK;
    return CA_NUMBER_GENERAL;
}

// A card being read: fields by class, the formatted name kept aside until the end shows whether the card has
// a structured name.
struct CardBuilder {
    std::vector<Field> personal, numbers, addresses;
    std::u16string formattedName;
    bool hasNameParts = false;

    void Add(std::vector<Field>& list, uint32_t fieldClass, uint32_t subType, std::u16string value)
    {
        value = TrimText(std::move(value));
        if (!value.empty())
            list.push_back(Field{fieldClass, subType, std::move(value)});
    }

    void Take(const Property& p)
    {
        if (p.base64)
            return;  // pictures and sounds
        std::string bytes = p.quotedPrintable ? DecodeQuotedPrintable(p.rawValue) : std::string(p.rawValue);
        std::u16string text;
        for (char16_t c : DecodeText(bytes, p.charset)) {  // line ends inside a value become "\n"
            if (c == u'\n' && !text.empty() && text.back() == u'\r')
                text.back() = u'\n';
            else
                text.push_back(c == u'\r' ? u'\n' : c);
        }
        const std::u16string value = Components(text, false)[0];
        const std::string& name = p.name;
        if (name == "N") {
            const std::vector<std::u16string> n = Components(text, true);
            const size_t before = personal.size();
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, n.size() > 1 ? n[1] : u"");
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, n[0]);
            hasNameParts = hasNameParts || personal.size() > before;
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_MIDDLE_NAME, n.size() > 2 ? n[2] : u"");
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_TITLE, n.size() > 3 ? n[3] : u"");
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_SUFFIX, n.size() > 4 ? n[4] : u"");
        } else if (name == "FN") {
            formattedName = TrimText(value);
        } else if (name == "NICKNAME") {
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NICKNAME, value);
        } else if (name == "ORG") {
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_COMPANY, Join(Components(text, true), 0, 16, u", "));
        } else if (name == "TITLE") {
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_JOB_TITLE, value);
        } else if (name == "BDAY") {
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_BIRTHDAY, value);
        } else if (name == "NOTE") {
            Add(personal, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NOTE, value);
        } else if (name == "TEL") {
            Add(numbers, CA_FIELD_CLASS_NUMBER, NumberType(p), value);
        } else if (name == "EMAIL") {
            const uint32_t type = HasType(p, "HOME")   ? CA_ADDRESS_EMAIL_HOME
                                  : HasType(p, "WORK") ? CA_ADDRESS_EMAIL_WORK
                                                       : CA_ADDRESS_EMAIL;
            Add(addresses, CA_FIELD_CLASS_ADDRESS, type, value);
        } else if (name == "ADR") {
            const uint32_t type = HasType(p, "HOME")   ? CA_ADDRESS_POSTAL_HOME
                                  : HasType(p, "WORK") ? CA_ADDRESS_POSTAL_WORK
                                                       : CA_ADDRESS_POSTAL;
            Add(addresses, CA_FIELD_CLASS_ADDRESS, type, Join(Components(text, true), 0, 7, u", "));
        } else if (name == "URL") {
            Add(addresses, CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_URL, value);
        }
    }

    Contact Finish()
    {
        Contact contact;
        if (!hasNameParts && !formattedName.empty())
            contact.fields.push_back(Field{CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NAME, formattedName});
        for (auto* list : {&personal, &numbers, &addresses})
            contact.fields.insert(contact.fields.end(), list->begin(), list->end());
        return contact;
    }
};

}  // namespace

std::vector<Contact> ParseVCards(std::string_view bytes)
{
    const std::string text = NormaliseEncoding(bytes);
    std::vector<Contact> contacts;
    CardBuilder card;
    int depth = 0;  // cards inside a card (2.1 AGENT) are skipped
    for (const std::string& line : ContentLines(text)) {
        Property property;
        if (!ParseProperty(line, property))
            continue;
        const std::string value = Upper(Trim(property.rawValue));
        if (property.name == "BEGIN" && value == "VCARD") {
            if (depth++ == 0)
                card = CardBuilder();
        } else if (property.name == "END" && value == "VCARD") {
            if (depth > 0 && --depth == 0)
                contacts.push_back(card.Finish());
        } else if (depth == 1) {
            card.Take(property);
        }
    }
    if (depth > 0)
        contacts.push_back(card.Finish());
    return contacts;
}

// --- Writing --------------------------------------------------------------------------------------------------

namespace {

std::string Escape30(std::u16string_view value)
{
    std::string out;
    for (char c : Utf16ToUtf8(value)) {
        if (c == '\\' || c == ';' || c == ',')
            out.push_back('\\'), out.push_back(c);
        else if (c == '\n')
            out += "\\n";
        else if (c != '\r')
            out.push_back(c);
    }
    return out;
}

// Folds a 3.0 line at 75 octets, never inside a UTF-8 sequence.
void AppendFolded(std::string& out, const std::string& line)
{
    size_t column = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        const bool continuation = (static_cast<unsigned char>(line[i]) & 0xC0) == 0x80;
        if (column >= 75 && !continuation) {
            out += "\r\n ";
            column = 1;
        }
        out.push_back(line[i]);
        ++column;
    }
    out += "\r\n";
}

bool IsPlainAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) {
        const auto b = static_cast<unsigned char>(c);
        return b >= 0x20 && b < 0x7F && c != '=';
    });
}

// A 2.1 property: ASCII values as they are, others quoted-printable in UTF-8 with soft breaks at 76.
void AppendProperty21(std::string& out, const std::string& head, const std::string& value)
{
    if (IsPlainAscii(value)) {
        out += head + ":" + value + "\r\n";
        return;
    }
    std::string line = head + ";CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:";
    size_t column = line.size();
    static const char kHex[] = "0123456789ABCDEF";
    for (char c : value) {
        const auto b = static_cast<unsigned char>(c);
        std::string piece;
        if (b >= 0x21 && b < 0x7F && c != '=' && c != ':')
            piece.assign(1, c);
        else
            piece = {'=', kHex[b >> 4], kHex[b & 15]};
        if (column + piece.size() > 75) {
            line += "=\r\n";
            column = 0;
        }
        line += piece;
        column += piece.size();
    }
    out += line + "\r\n";
}

std::string Escape21(std::u16string_view value)
{
    std::string out;
    for (char c : Utf16ToUtf8(value)) {
        if (c == ';' || c == '\\')
            out.push_back('\\');
        out.push_back(c);
    }
    return out;
}

const char* NumberTypeName(uint32_t subType)
{
    switch (subType) {
        case CA_NUMBER_HOME:
            return "HOME";
        case CA_NUMBER_WORK:
            return "WORK";
        case CA_NUMBER_MOBILE:
            return "CELL";
        case CA_NUMBER_FAX:
            return "FAX";
        case CA_NUMBER_PAGER:
            return "PAGER";
        case CA_NUMBER_CAR:
            return "CAR";
        default:
            return "VOICE";
    }
}

}  // namespace

std::string WriteVCard(const Contact& contact, VCardVersion version)
{
    const bool v21 = version == VCardVersion::V21;
    const auto escape = [v21](std::u16string_view value) { return v21 ? Escape21(value) : Escape30(value); };
    std::string out = v21 ? "BEGIN:VCARD\r\nVERSION:2.1\r\n" : "BEGIN:VCARD\r\nVERSION:3.0\r\n";
    const auto emit = [&](const std::string& head, const std::string& value) {
        if (v21)
            AppendProperty21(out, head, value);
        else
            AppendFolded(out, head + ":" + value);
    };
    const auto get = [&](uint32_t subType) { return contact.Get(CA_FIELD_CLASS_PERSONAL, subType); };
    const std::u16string first = get(CA_PERSONAL_FIRST_NAME), last = get(CA_PERSONAL_LAST_NAME);
    emit("N", escape(last) + ";" + escape(first) + ";" + escape(get(CA_PERSONAL_MIDDLE_NAME)) + ";" +
                  escape(get(CA_PERSONAL_TITLE)) + ";" + escape(get(CA_PERSONAL_SUFFIX)));
    std::u16string formatted = get(CA_PERSONAL_NAME);
    if (formatted.empty())
        formatted = first.empty() ? last : last.empty() ? first : first + u" " + last;
    emit("FN", escape(formatted));
    for (const Field& f : contact.fields) {
        const std::string value = escape(f.value);
        if (f.fieldClass == CA_FIELD_CLASS_PERSONAL) {
            if (f.subType == CA_PERSONAL_NICKNAME)
                emit("NICKNAME", value);
            else if (f.subType == CA_PERSONAL_COMPANY)
                emit("ORG", value);
            else if (f.subType == CA_PERSONAL_JOB_TITLE)
                emit("TITLE", value);
            else if (f.subType == CA_PERSONAL_BIRTHDAY)
                emit("BDAY", value);
            else if (f.subType == CA_PERSONAL_NOTE)
                emit("NOTE", value);
        } else if (f.fieldClass == CA_FIELD_CLASS_NUMBER) {
            emit(std::string(v21 ? "TEL;" : "TEL;TYPE=") + NumberTypeName(f.subType), value);
        } else if (f.fieldClass == CA_FIELD_CLASS_ADDRESS) {
            const char* type = f.subType == CA_ADDRESS_EMAIL_HOME || f.subType == CA_ADDRESS_POSTAL_HOME   ? "HOME"
                               : f.subType == CA_ADDRESS_EMAIL_WORK || f.subType == CA_ADDRESS_POSTAL_WORK ? "WORK"
                                                                                                           : nullptr;
            const std::string types = type ? std::string(v21 ? ";" : ";TYPE=") + type : std::string();
            if (f.subType >= CA_ADDRESS_EMAIL && f.subType <= CA_ADDRESS_EMAIL_WORK)
                emit((v21 ? "EMAIL;INTERNET" : "EMAIL;TYPE=INTERNET") +
                         (type ? (v21 ? ";" : ",") + std::string(type) : ""),
                     value);
            else if (f.subType >= CA_ADDRESS_POSTAL && f.subType <= CA_ADDRESS_POSTAL_WORK)
                emit("ADR" + types, ";;" + value + ";;;;");
            else if (f.subType == CA_ADDRESS_URL)
                emit("URL", value);
        }
    }
    out += "END:VCARD\r\n";
    return out;
}

}  // namespace zcmod_standin
