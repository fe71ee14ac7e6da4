// The stand-in connectivity service's portable part: vCards as address books write them, the search
// patterns of the content access interface, the contact generator.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

#include "service/core/Contact.h"

using namespace zcmod_standin;

namespace {

std::string ReadCorpus(const char* name)
{
    std::ifstream file(std::string(ZCMOD_FUZZ_DIR) + "/corpus/vcard/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::u16string U(const char* utf8)
{
    return Utf8ToUtf16Lossy(utf8);
}

// The fields of one class as "subtype=value" lines, for readable comparisons.
std::vector<std::string> Fields(const Contact& c, uint32_t fieldClass)
{
    std::vector<std::string> out;
    for (const Field& f : c.fields)
        if (f.fieldClass == fieldClass)
            out.push_back(std::to_string(f.subType) + "=" + Utf16ToUtf8(f.value));
    return out;
}

using Lines = std::vector<std::string>;

}  // namespace

TEST(StandInVCard, PhoneExport21QuotedPrintableWithSoftBreaksAndBareTypes)
{
    const std::vector<Contact> cards = ParseVCards(ReadCorpus("phone_export_21.vcf"));
    ASSERT_EQ(cards.size(), 3u);
    EXPECT_EQ(Fields(cards[0], CA_FIELD_CLASS_PERSONAL),
              (Lines{"2=Jürgen", "4=Müller",
                     "1024=Erster Kontakt auf der Messe in Köln, bitte wegen des Angebots "
                     "zurückrufen."}));
    EXPECT_EQ(Fields(cards[0], CA_FIELD_CLASS_NUMBER),
              (Lines{"4=+49 170 1234567", "2=+49 30 123456", "5=+49 30 654321"}));
    EXPECT_EQ(Fields(cards[0], CA_FIELD_CLASS_ADDRESS), (Lines{"260=juergen.mueller@example.de"}));
    // Soft breaks inside a multi-byte sequence, with no blank on the next line.
    EXPECT_EQ(Fields(cards[1], CA_FIELD_CLASS_PERSONAL), (Lines{"2=Иван", "4=Иванов"}));
    EXPECT_EQ(Fields(cards[1], CA_FIELD_CLASS_ADDRESS), (Lines{"259=ivan.ivanov@example.ru"}));
    // A given name alone, no formatted name.
    EXPECT_EQ(Fields(cards[2], CA_FIELD_CLASS_PERSONAL), (Lines{"2=Mum"}));
    EXPECT_EQ(Fields(cards[2], CA_FIELD_CLASS_NUMBER), (Lines{"4=07700 900123", "1=01632 960001"}));
}

TEST(StandInVCard, DesktopExportsInWindows1252AndUtf16)
{
    const std::vector<Contact> cp1252 = ParseVCards(ReadCorpus("desktop_mail_21_cp1252.vcf"));
    ASSERT_EQ(cp1252.size(), 1u);
    EXPECT_EQ(Fields(cp1252[0], CA_FIELD_CLASS_PERSONAL),
              (Lines{"2=François", "4=Dubois", "128=Northwind, Ventes", "256=Responsable de compte"}));
    EXPECT_EQ(Fields(cp1252[0], CA_FIELD_CLASS_NUMBER), (Lines{"3=+33 1 23 45 67 89", "4=+33 6 12 34 56 78"}));
    EXPECT_EQ(Fields(cp1252[0], CA_FIELD_CLASS_ADDRESS),
              (Lines{"515=12 rue de la Paix, Bâtiment B, Paris, 75002, France", "259=f.dubois@northwind.example"}));

    const std::vector<Contact> utf16 = ParseVCards(ReadCorpus("unicode_export_21_utf16.vcf"));
    ASSERT_EQ(utf16.size(), 1u);
    EXPECT_EQ(Fields(utf16[0], CA_FIELD_CLASS_PERSONAL), (Lines{"2=Hiroshi", "4=Tanaka"}));
    EXPECT_EQ(Fields(utf16[0], CA_FIELD_CLASS_ADDRESS), (Lines{"259=hiroshi.tanaka@example.jp"}));
}

TEST(StandInVCard, Version30GroupsEscapesFoldsAndNameOnlyCards)
{
    const std::vector<Contact> book = ParseVCards(ReadCorpus("address_book_30.vcf"));
    ASSERT_EQ(book.size(), 1u);
    EXPECT_EQ(Fields(book[0], CA_FIELD_CLASS_PERSONAL),
              (Lines{"2=Søren", "4=Sørensen", "64=Søs", "128=Kestrel & Sons",
                     "1024=Met at the conference, call about the contract\nSecond line"}));
    EXPECT_EQ(Fields(book[0], CA_FIELD_CLASS_NUMBER), (Lines{"4=+45 20 12 34 56", "2=+45 33 12 34 56"}));
    EXPECT_EQ(Fields(book[0], CA_FIELD_CLASS_ADDRESS),
              (Lines{"259=soren@kestrel.example", "261=s.sorensen@work.example",
                     "514=Nørregade 10, København, 1165, Denmark"}));

    const std::vector<Contact> web = ParseVCards(ReadCorpus("web_mail_30.vcf"));
    ASSERT_EQ(web.size(), 4u) << "the last card has no END and is kept";
    EXPECT_EQ(Fields(web[0], CA_FIELD_CLASS_ADDRESS), (Lines{"260=ann.lee@example.com", "261=alee@work.example"}));
    EXPECT_EQ(Fields(web[1], CA_FIELD_CLASS_PERSONAL), (Lines{"2=Łukasz", "4=Dąbrowski"})) << "folded in a sequence";
    EXPECT_EQ(Fields(web[1], CA_FIELD_CLASS_ADDRESS), (Lines{"769=https://example.pl/~lukasz"}));
    EXPECT_EQ(Fields(web[2], CA_FIELD_CLASS_PERSONAL), (Lines{"1=Pizza Place"})) << "no name parts: the FN";
    EXPECT_EQ(Fields(web[3], CA_FIELD_CLASS_NUMBER), (Lines{"1=+1 555 0199"}));

    const std::vector<Contact> agent = ParseVCards(ReadCorpus("agent_21.vcf"));
    ASSERT_EQ(agent.size(), 1u) << "a card inside a card is not a contact of its own";
    EXPECT_EQ(Fields(agent[0], CA_FIELD_CLASS_NUMBER), (Lines{"3=+44 20 7946 0000"}));
    EXPECT_EQ(Fields(agent[0], CA_FIELD_CLASS_ADDRESS), (Lines{"259=ann@example.com"}));
}

TEST(StandInVCard, HostileInputEndsCleanly)
{
    const char* inputs[] = {"",
                            "BEGIN:VCARD",
                            "BEGIN:VCARD\r\nN;ENCODING=QUOTED-PRINTABLE:=",
                            "END:VCARD\r\nEND:VCARD",
                            "BEGIN:VCARD\nN:;\nTEL;ENCODING=QUOTED-PRINTABLE:=4\nEMAIL;CHARSET=\"x:y\":a\n",
                            "\xFF\xFE",
                            "\xFE\xFF\x00",
                            "\xEF\xBB\xBF BEGIN:VCARD\n \n\t",
                            "BEGIN:VCARD\nFN:\xC3"};
    for (const char* input : inputs)
        ParseVCards(input);
    const std::vector<Contact> cut = ParseVCards("BEGIN:VCARD\nN;ENCODING=QUOTED-PRINTABLE:Lee;=C3=A9=\n");
    ASSERT_EQ(cut.size(), 1u);
    EXPECT_EQ(Fields(cut[0], CA_FIELD_CLASS_PERSONAL), (Lines{"2=é", "4=Lee"}));
    // Bytes that are not UTF-8 and no charset: read as Windows-1252.
    EXPECT_EQ(Fields(ParseVCards("BEGIN:VCARD\nN:M\xFCller;J\x80\nEND:VCARD")[0], CA_FIELD_CLASS_PERSONAL),
              (Lines{"2=J€", "4=Müller"}));
}

TEST(StandInVCard, WrittenCardsReadBackInBothVersions)
{
    std::vector<Contact> contacts = GenerateContacts(400, 7);
    for (const char* name : {"phone_export_21.vcf", "address_book_30.vcf", "desktop_mail_21_cp1252.vcf"})
        for (const Contact& c : ParseVCards(ReadCorpus(name)))
            contacts.push_back(c);
    Contact awkward;
    awkward.fields = {{CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, U("O'Brien; Jr, \\ \"=x\" ") + u"x"},
                      {CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NOTE,
                       U("line one\nline two: a very long line that "
                         "goes on well past seventy-five octets äöü")},
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
    // 3.0 lines are folded at 75 octets; 2.1 quoted-printable lines break softly at 76.
    for (VCardVersion version : {VCardVersion::V21, VCardVersion::V30}) {
        const std::string text = WriteVCard(awkward, version);
        size_t start = 0;
        while (start < text.size()) {
            const size_t end = text.find("\r\n", start);
            EXPECT_LE(end - start, 76u) << text.substr(start, end - start);
            start = end + 2;
        }
    }
}

TEST(StandInSearch, PatternsAsTheContactSearchSendsThem)
{
    const struct {
        const char* value;
        const char* pattern;
        bool match;
    } cases[] = {
        {"Anna", "ann%", true},
        {"ANNABEL", "ann%", true},
        {"Joanna", "ann%", false},
        {"Ann Lee", "% lee%", true},
        {"Ann Leeds", "% lee%", true},
        {"Annalee", "% lee%", false},
        {"Mary Ann Lee", "% ann%", true},
        {"Ann", "ann", true},
        {"Anna", "ann", false},
        {"", "%", true},
        {"", "a%", false},
        {"abc", "%%c", true},
        {"Müller", "MÜL%", true},
        {"Øster", "ø%", true},
        {"Łukasz", "ł%", true},
        {"Иван", "ив%", true},
        {"+44 7700", "+44%", true},
        {"a%b", "a%b", true},
        {"ann.lee@example.com", "ann.lee@example.com", true},
        {"ann.lee@example.com", "ann.lee", false},
        {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaab", "%a%a%a%a%a%a%c", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MatchPattern(U(c.value), U(c.pattern)), c.match) << c.value << " ~ " << c.pattern;

    Contact ann;
    ann.fields = {{CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, u"Ann"},
                  {CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, u"Lee"},
                  {CA_FIELD_CLASS_NUMBER, CA_NUMBER_MOBILE, u"+44 7700 900001"},
                  {CA_FIELD_CLASS_ADDRESS, CA_ADDRESS_EMAIL_HOME, u"ann@example.com"}};
    EXPECT_TRUE(MatchesCondition(ann, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME, u"an%"));
    EXPECT_FALSE(MatchesCondition(ann, CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME, u"an%"));
    EXPECT_TRUE(MatchesCondition(ann, CA_FIELD_CLASS_NUMBER, CA_FIELD_SUBTYPE_ANY, u"+44 7700 900001"));
    EXPECT_FALSE(MatchesCondition(ann, CA_FIELD_CLASS_ADDRESS, CA_FIELD_SUBTYPE_ANY, u"+44 7700 900001"));
    EXPECT_TRUE(MatchesCondition(ann, CA_FIELD_CLASS_ANY, CA_FIELD_SUBTYPE_ANY, u"ANN@EXAMPLE.COM"));
}

TEST(StandInGenerator, DeterministicVariedAndOfAnySize)
{
    const std::vector<Contact> a = GenerateContacts(10000, 42);
    ASSERT_EQ(a.size(), 10000u);
    EXPECT_EQ(a, GenerateContacts(10000, 42));
    EXPECT_NE(a, GenerateContacts(10000, 43));
    size_t single = 0, nonAscii = 0, noMail = 0, twoNumbers = 0;
    std::set<std::u16string> names;
    for (const Contact& c : a) {
        ASSERT_FALSE(Fields(c, CA_FIELD_CLASS_NUMBER).empty());
        single += !c.Get(CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_NAME).empty();
        noMail += Fields(c, CA_FIELD_CLASS_ADDRESS).empty();
        twoNumbers += Fields(c, CA_FIELD_CLASS_NUMBER).size() > 1;
        const std::u16string name = c.Get(CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_FIRST_NAME) + u" " +
                                    c.Get(CA_FIELD_CLASS_PERSONAL, CA_PERSONAL_LAST_NAME);
        nonAscii += std::any_of(name.begin(), name.end(), [](char16_t ch) { return ch > 0x7F; });
        names.insert(name);
    }
    EXPECT_GT(single, 200u);
    EXPECT_GT(noMail, 1000u);
    EXPECT_GT(twoNumbers, 1000u);
    EXPECT_GT(nonAscii, 1000u);
    EXPECT_GT(names.size(), 1000u);
}
