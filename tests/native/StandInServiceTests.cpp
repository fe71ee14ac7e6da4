// The stand-in connectivity service's portable part: vCards as address books and phones write them, the
// search patterns of the content access interface, the contact generator.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "service/core/Contact.h"

using namespace zcmod_standin;

namespace {

std::string ReadCorpus(const std::string& name)
{
    std::ifstream file(std::string(ZCMOD_FUZZ_DIR) + "/corpus/vcard/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::u16string U(const char* utf8)
{
    return Utf8ToUtf16Lossy(utf8);
}

using Lines = std::vector<std::string>;

// The fields of one class as "subtype=value" lines, for readable comparisons.
Lines Fields(const Contact& c, uint32_t fieldClass)
{
    Lines out;
    for (const Field& f : c.fields)
        if (f.fieldClass == fieldClass)
            out.push_back(std::to_string(f.subType) + "=" + Utf16ToUtf8(f.value));
    return out;
}

}  // namespace

// Files as real programs write them: 2.1 from a phone (quoted-printable with soft breaks, also inside a
// multi-byte sequence, bare types), from desktop mail in Windows-1252 and in UTF-16; 3.0 from address books
// and web mail (groups, escapes, folded lines, cards with a name only, a last card without END, a card inside
// a card that is no contact of its own). A file's first row gives its number of cards.
TEST(StandInVCard, FilesAsRealProgramsWriteThem)
{
    const uint32_t personal = CA_FIELD_CLASS_PERSONAL, number = CA_FIELD_CLASS_NUMBER, address = CA_FIELD_CLASS_ADDRESS;
    const struct {
        const char* file;
        size_t card;
        uint32_t fieldClass;
        Lines fields;
        size_t cards = 0;
    } cases[] = {
        // clang-format off
        {"phone_export_21.vcf", 0, personal, {"2=Jürgen", "4=Müller",
            "1024=Erster Kontakt auf der Messe in Köln, bitte wegen des Angebots zurückrufen."}, 3},
        {"phone_export_21.vcf", 0, number, {"4=+49 170 1234567", "2=+49 30 123456", "5=+49 30 654321"}},
        {"phone_export_21.vcf", 1, personal, {"2=Иван", "4=Иванов"}},
        {"desktop_mail_21_cp1252.vcf", 0, personal,
            {"2=François", "4=Dubois", "128=Northwind, Ventes", "256=Responsable de compte"}, 1},
        {"desktop_mail_21_cp1252.vcf", 0, address,
            {"515=12 rue de la Paix, Bâtiment B, Paris, 75002, France", "259=f.dubois@northwind.example"}},
        {"unicode_export_21_utf16.vcf", 0, personal, {"2=Hiroshi", "4=Tanaka"}, 1},
        {"address_book_30.vcf", 0, personal, {"2=Søren", "4=Sørensen", "64=Søs", "128=Kestrel & Sons",
            "1024=Met at the conference, call about the contract\nSecond line"}, 1},
        {"address_book_30.vcf", 0, address,
            {"259=soren@kestrel.example", "261=s.sorensen@work.example", "514=Nørregade 10, København, 1165, Denmark"}},
        {"web_mail_30.vcf", 0, address, {"260=ann.lee@example.com", "261=alee@work.example"}, 4},
        {"web_mail_30.vcf", 1, personal, {"2=Łukasz", "4=Dąbrowski"}},
        {"web_mail_30.vcf", 1, address, {"769=https://example.pl/~lukasz"}},
        {"web_mail_30.vcf", 2, personal, {"1=Pizza Place"}},
        {"web_mail_30.vcf", 3, number, {"1=+1 555 0199"}},
        {"agent_21.vcf", 0, number, {"3=+44 20 7946 0000"}, 1},
        // clang-format on
    };
    for (const auto& c : cases) {
        const std::vector<Contact> parsed = ParseVCards(ReadCorpus(c.file));
        if (c.cards)
            EXPECT_EQ(parsed.size(), c.cards) << c.file;
        ASSERT_LT(c.card, parsed.size()) << c.file;
        EXPECT_EQ(Fields(parsed[c.card], c.fieldClass), c.fields) << c.file << " card " << c.card;
    }
}

// A file cut inside a quoted-printable escape keeps what came before it; bytes that are not UTF-8, with no
// charset named, are read as Windows-1252. (Input of any shape is the fuzzer's.)
TEST(StandInVCard, CutAndUnlabelledInputIsReadAsFarAsItGoes)
{
    const std::vector<Contact> cut = ParseVCards("BEGIN:VCARD\nN;ENCODING=QUOTED-PRINTABLE:Lee;=C3=A9=\n");
    ASSERT_EQ(cut.size(), 1u);
    EXPECT_EQ(Fields(cut[0], CA_FIELD_CLASS_PERSONAL), (Lines{"2=é", "4=Lee"}));
    EXPECT_EQ(Fields(ParseVCards("BEGIN:VCARD\nN:M\xFCller;J\x80\nEND:VCARD")[0], CA_FIELD_CLASS_PERSONAL),
              (Lines{"2=J€", "4=Müller"}));
}

// The generator that fills virtual phones gives the same for a seed. What the stand-in writes (the vCards of
// CAReadItem) of generated, sample and awkward contacts reads back the same in both versions.
TEST(StandInVCard, GeneratedAndWrittenCardsReadBackInBothVersions)
{
    std::vector<Contact> contacts = GenerateContacts(400, 42);
    EXPECT_EQ(contacts, GenerateContacts(400, 42));
    EXPECT_NE(contacts, GenerateContacts(400, 43));
    for (const char* name : {"phone_export_21.vcf", "address_book_30.vcf", "desktop_mail_21_cp1252.vcf"})
        for (const Contact& c : ParseVCards(ReadCorpus(name)))
            contacts.push_back(c);
    Contact awkward;
    awkward.fields = {{CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, U("O'Brien; Jr, \\ \"=x\" ") + u"x"},
                      {CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NOTE,
                       U("line one\nline two: a very long line that goes on well past seventy-five octets äöü")},
                      {CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL, U("a=b@example.com")}};
    contacts.push_back(awkward);
    for (VCardVersion version : {VCardVersion::V21, VCardVersion::V30}) {
        std::string all;
        for (const Contact& c : contacts)
            all += WriteVCard(c, version);
        const std::vector<Contact> back = ParseVCards(all);
        ASSERT_EQ(back.size(), contacts.size());
        for (size_t i = 0; i < back.size(); ++i)
            ASSERT_EQ(back[i], contacts[i]) << i << "\n" << WriteVCard(contacts[i], version);
    }
}

// The field classes and subtypes of a search reach the patterns through the service (the Wine search test).
TEST(StandInSearch, PatternsAsTheContactSearchSendsThem)
{
    const struct {
        const char* value;
        const char* pattern;
        bool match;
    } cases[] = {
        // clang-format off
        {"ANNABEL", "ann%", true}, {"Joanna", "ann%", false}, {"Ann Leeds", "% lee%", true},
        {"Annalee", "% lee%", false}, {"Ann", "ann", true}, {"Anna", "ann", false}, {"", "%", true},
        {"", "a%", false}, {"abc", "%%c", true}, {"Müller", "MÜL%", true}, {"Łukasz", "ł%", true},
        {"Иван", "ив%", true}, {"a%b", "a%b", true}, {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaab", "%a%a%a%a%a%a%c", false},
        // clang-format on
    };
    for (const auto& c : cases)
        EXPECT_EQ(MatchPattern(U(c.value), U(c.pattern)), c.match) << c.value << " ~ " << c.pattern;
}
