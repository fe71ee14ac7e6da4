// Generated address books for the controller's `new`: deterministic from a seed, of any size.
#include <cstdio>

#include "Contact.h"

namespace zcmod_standin {

namespace {

const char* const kFirstNames[] = {
    "Anna",  "Ann",    "Annabel",  "Ben",   "Carla",  "Chloé",      "David",    "Dorota", "Elif",   "Emma",
    "Erik",  "Fatima", "François", "Grace", "Hannah", "Hiroshi",    "Ingrid",   "Isabel", "Jakub",  "James",
    "Jean",  "Johan",  "John",     "Jonas", "José",   "Julia",      "Karin",    "Kofi",   "Laura",  "Leo",
    "Lucía", "Łukasz", "Maria",    "Mark",  "Mei",    "Mia",        "Mohammed", "Nadia",  "Niamh",  "Noah",
    "Olga",  "Omar",   "Paul",     "Priya", "Rafael", "Ruth",       "Sara",     "Søren",  "Sophie", "Tomás",
    "Ulla",  "Victor", "Wei",      "Yusuf", "Zoë",    "Anne Marie", "Mary Jane"};
const char* const kLastNames[] = {
    "Andersson", "Becker",       "Brown",  "Costa",  "Dąbrowski", "Dubois",   "Evans",    "Fischer",  "García",
    "Green",     "Hansen",       "Ito",    "Jensen", "Johnson",   "Kaya",     "Kowalski", "Larsen",   "Lee",
    "Leroy",     "López",        "Martin", "Meyer",  "Müller",    "Nagy",     "Novák",    "O'Brien",  "Okafor",
    "Patel",     "Pérez",        "Quinn",  "Rossi",  "Schmidt",   "Silva",    "Smith",    "Sørensen", "Tanaka",
    "Taylor",    "Van der Berg", "Walsh",  "Wang",   "Weber",     "Williams", "Wright",   "Yılmaz",   "Zhang"};
const char* const kSingleNames[] = {"Mum",    "Dad",  "Plumber",     "Taxi", "Dentist",
                                    "Office", "Gran", "Pizza Place", "Vet",  "Landlord"};
const char* const kCompanies[] = {"Acme Ltd",       "Northwind",  "Blue Harbour Logistics",
                                  "Kestrel & Sons", "Orbix GmbH", "Café Lumière"};
const char* const kDomains[] = {"example.com", "example.org", "example.net", "mail.example", "post.example"};

struct Random {
    uint32_t state;
    uint32_t Next()
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state;
    }
    uint32_t Below(uint32_t n) { return Next() % n; }
    template <size_t N>
    const char* Pick(const char* const (&list)[N])
    {
        return list[Below(N)];
    }
};

// Lower-case ASCII for an e-mail address: accents dropped, blanks and apostrophes left out.
std::string MailPart(const std::u16string& name)
{
    static const struct {
        char16_t from;
        char to;
    } kFold[] = {{u'é', 'e'}, {u'ç', 'c'}, {u'á', 'a'}, {u'í', 'i'}, {u'ó', 'o'}, {u'ö', 'o'}, {u'ø', 'o'},
                 {u'ü', 'u'}, {u'ë', 'e'}, {u'ł', 'l'}, {u'Ł', 'l'}, {u'ą', 'a'}, {u'ı', 'i'}, {u'Ø', 'o'}};
    std::string out;
    for (char16_t c : name) {
        if ((c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9'))
            out.push_back(static_cast<char>(c));
        else if (c >= u'A' && c <= u'Z')
            out.push_back(static_cast<char>(c - u'A' + 'a'));
        else
            for (const auto& f : kFold)
                if (f.from == c)
                    out.push_back(f.to);
    }
    return out;
}

std::u16string Number(Random& random, bool mobile)
{
    char text[32];
    if (mobile)
        std::snprintf(text, sizeof(text), "+44 7700 9%05u", static_cast<unsigned>(random.Below(100000)));
    else
        std::snprintf(text, sizeof(text), "+1 555 01%02u %04u", static_cast<unsigned>(random.Below(100)),
                      static_cast<unsigned>(random.Below(10000)));
    return AsciiToUtf16(text);
}

}  // namespace

std::vector<Contact> GenerateContacts(size_t count, uint32_t seed)
{
    Random random{seed ? seed : 0x9E3779B9u};
    std::vector<Contact> contacts;
    contacts.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        Contact c;
        const auto add = [&c](uint32_t fieldClass, uint32_t subType, std::u16string value) {
            c.fields.push_back(Field{fieldClass, subType, std::move(value)});
        };
        const uint32_t kind = random.Below(100);
        std::u16string first, last;
        if (kind < 5) {
            add(CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NAME, Utf8ToUtf16Lossy(random.Pick(kSingleNames)));
        } else {
            first = Utf8ToUtf16Lossy(random.Pick(kFirstNames));
            last = Utf8ToUtf16Lossy(random.Pick(kLastNames));
            add(CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, first);
            add(CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, last);
            if (kind >= 88)
                add(CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_COMPANY, Utf8ToUtf16Lossy(random.Pick(kCompanies)));
        }
        add(CA_FIELD_CLASS_NUMBER, CA_NUMBER_MOBILE, Number(random, true));
        if (random.Below(100) < 30)
            add(CA_FIELD_CLASS_NUMBER, random.Below(2) ? CA_NUMBER_HOME : CA_NUMBER_WORK, Number(random, false));
        const uint32_t mail = random.Below(100);
        if (mail < 75 && !first.empty()) {
            const std::string local = MailPart(first) + "." + MailPart(last);
            const std::string number = i % 7 == 0 ? std::to_string(i) : std::string();
            add(CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_HOME,
                AsciiToUtf16(local + number + "@" + random.Pick(kDomains)));
            if (mail < 15)
                add(CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_WORK,
                    AsciiToUtf16(MailPart(first).substr(0, 1) + MailPart(last) + "@work.example"));
        }
        contacts.push_back(std::move(c));
    }
    return contacts;
}

}  // namespace zcmod_standin
