// The recipient text rules, natively, through tables of lines in both directions. The recipient text fuzzer
// holds the offsets and pieces of any line (surrogates, lone halves) to the text they come from.
#include <gtest/gtest.h>

#include <tuple>

#include "recipient/core/RecipientText.h"

using namespace zcmod;

namespace {

const Text16 kLro(1, char16_t(0x202D));
const Text16 kPdf(1, char16_t(0x202C));

// A search over a fixed list: by name on the name's prefix, by address on the address exactly.
RecipientSearch FixedSearch(std::vector<Text16> contacts, std::vector<std::pair<Text16, bool>>* asked = nullptr)
{
    return [contacts, asked](Text16& text, bool byName, std::vector<Text16>& results) {
        if (asked)
            asked->emplace_back(text, byName);
        for (const Text16& c : contacts) {
            Text16 name, address;
            GetNameAndAddress(c, name, address, true);
            if (byName ? IsSearchedName(text, name) : address == text)
                results.push_back(c);
        }
        return results.empty() ? 0 : 1;
    };
}

}  // namespace

TEST(RecipientText, PhoneAndEmailForms)
{
    for (const char16_t* text : {u"", u"   ", u"+358 (40) 123-45w6", u"*#pw"})
        EXPECT_EQ(IsValidPhoneNumber(text), 1) << testing::PrintToString(Text16(text));
    for (const char16_t* text : {u"12P", u"a@b"})
        EXPECT_EQ(IsValidPhoneNumber(text), 0) << testing::PrintToString(Text16(text));
    // Only the first dot is looked at for a doubling; U+0080 is the last character allowed.
    for (const char16_t* text : {u"ann.lee@example.com", u"a.b..c@d.e", u"a@b.c.", u".a@b.c", u"\u0080@b.c"})
        EXPECT_EQ(IsValidEmailAddress(text), 1) << testing::PrintToString(Text16(text));
    for (const char16_t* text : {u"", u"a@b", u"a@.b", u"a@b.", u"@b.c", u"a@b.c@d", u"a.@b.c", u"a..b@c.d", u"a@b..c",
                                 u"\u00e4@b.c", u"a\U0001F600@b.c"})
        EXPECT_EQ(IsValidEmailAddress(text), 0) << testing::PrintToString(Text16(text));
}

// Splitting a line into name and address, and swapping the name's first word behind the rest.
TEST(RecipientText, SplittingAndSwappingContacts)
{
    const Text16 wrapped = u"Ann Lee <" + kLro + u"040123" + kPdf + u">";
    const struct {
        Text16 input;
        bool rtl;
        Text16 name, address, swapped;
    } cases[] = {
        {u"Ann Lee <040123>", false, u"Ann Lee", u"040123", u"Lee Ann <040123>"},
        {u"040123", false, u"", u"040123", u" <040123>"},
        {u"Ann", false, u"Ann", u"", u"Ann"},
        {u"Ann Lee>", false, u"Ann Lee>", u"", u"Lee> Ann"},
        {u"<a@b.c>", false, u"", u"a@b.c", u" <a@b.c>"},
        {u"(12)", false, u"", u"(12)", u" <(12)>"},
        {u"  Ann   Mary Lee  <  1  >  ", false, u"Ann   Mary Lee", u"1", u"Mary Lee Ann <1>"},
        {u"a<b <c>", false, u"a<b", u"c", u"a<b <c>"},  // the last '<' opens the address
        {u"\u05d0\u05d1 <1>", true, u"\u05d0\u05d1", u"1", u"\u05d0\u05d1 <1>"},
        // Under a left-to-right language the marks are ordinary characters.
        {wrapped, false, u"Ann Lee", (kLro + u"040123" + kPdf), (u"Lee Ann <" + kLro + u"040123" + kPdf + u">")},
        {wrapped, true, u"Ann Lee", u"040123", u"Lee Ann <040123>"},
        // A trailing mark hides the '>' only when marks are not stripped.
        {(u"Ann <1>" + kPdf), true, u"Ann", u"1", u"Ann <1>"},
        {(u"Ann <1>" + kPdf), false, (u"Ann <1>" + kPdf), u"", (u"<1>" + kPdf + u" Ann")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.input));
        Text16 name = u"stale", address = u"stale";
        GetNameAndAddress(c.input, name, address, c.rtl);
        EXPECT_EQ(name, c.name);
        EXPECT_EQ(address, c.address);
        EXPECT_EQ(SwapNameWords(c.input, c.rtl), c.swapped);
    }
}

TEST(RecipientText, ContactStringsAndDirectionMarks)
{
    EXPECT_EQ(CreateContactString(u" Ann ", u"1", false), u" Ann  <1>");
    EXPECT_EQ(CreateContactString(u"Ann", u"1", true), u"Ann <" + kLro + u"1" + kPdf + u">");

    // Only the five marks go, and only in right-to-left mode.
    const Text16 marked = u"\u200Da\u200Fb\u202Ac\u202Cd\u202De\u200E\u202B\u202E";
    Text16 text = marked;
    RemoveDirectionControls(text, false);
    EXPECT_EQ(text, marked);
    RemoveDirectionControls(text, true);
    EXPECT_EQ(text, u"abcde\u200E\u202B\u202E");

    Text16 tabs = u" \tA b\t ";
    TrimBlanks(tabs);
    EXPECT_EQ(tabs, u"\tA b\t");
}

TEST(RecipientText, NameComparisonAndOrder)
{
    EXPECT_EQ(IsSearchedName(u"an", u"Ann Lee"), 1);
    EXPECT_EQ(IsSearchedName(u"Ann Lee ", u"Ann Lee"), 0);
    EXPECT_EQ(IsSearchedName(u"", u""), 1);
    EXPECT_EQ(IsSearchedName(u"\u00e5S", u"\u00c5sa"), 1);
    EXPECT_EQ(IsSearchedName(u"\u0430\u043d", u"\u0410\u041d\u043d\u0430"), 1);
    EXPECT_EQ(IsSearchedName(u"\u00d7", u"\u00f7"), 0);  // multiplication and division signs are no pair
    EXPECT_EQ(IsSearchedName(u"le", u"Ann Lee", u"Lee Ann"), 1);
    EXPECT_EQ(IsSearchedName(u"x", u"Ann Lee", u"Lee Ann"), 0);

    EXPECT_EQ(WstrCompare(u"Ann", u"Ann"), 0);
    EXPECT_EQ(WstrCompare(u"Ann <1>", u"Ann <2>"), 1);  // the address counts
    EXPECT_EQ(WstrCompare(u"ann", u"Bob"), 0);          // by code unit: lower case after upper case
    EXPECT_EQ(WstrCompare(u"Ann", u"Ann Lee"), 1);
}

TEST(RecipientText, RecipientUnderTheCaret)
{
    const struct {
        Text16 text;
        int32_t caret;
        int result;
        Text16 out;
        int32_t start, end;
    } cases[] = {
        {u"a; b; c", 2, 1, u"b", 3, 4},  // right behind the ';' after "a"
        {u"a; b; c", 99, 1, u"c", 6, 7},  // a caret past the end stands at the end
        {u"a; b; c", -5, 1, u"a", 0, 1},
        {u"   ", 1, 0, u"", 0, 0},
        {u"", 0, 0, u"", 0, 0},
        {u";a", 2, 1, u";a", 0, 2},  // position 0 is never a separator
        {u"a;;b", 2, 0, u"", 0, 0},
        {u"ab  ; c", 1, 1, u"ab  ", 0, 4},  // trailing blanks stay
        {u"a;", 2, 0, u"", 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text) + " at " + std::to_string(c.caret));
        Text16 out = u"untouched";
        int32_t start = -1, end = -1;
        EXPECT_EQ(ExtractName(c.text, c.caret, out, &start, &end), c.result);
        EXPECT_EQ(out, c.result ? c.out : Text16(u"untouched"));
        EXPECT_EQ(start, c.result ? c.start : -1);
        EXPECT_EQ(end, c.result ? c.end : -1);
    }
    Text16 out;
    EXPECT_EQ(ExtractName(u"a; b", 3, out, nullptr, nullptr), 1);
}

TEST(RecipientText, CuttingTheWholeLine)
{
    const struct {
        Text16 text;
        bool rtl;
        std::vector<std::tuple<Text16, int, int>> pieces;
    } cases[] = {
        {u"  a; b;  ", false, {{u"a", 0, 1}, {u" b", 2, 4}}},
        {u"   ", false, {}},
        {u";", false, {{u"", 0, 0}}},
        {u"a;;b", false, {{u"a", 0, 1}, {u"", 2, 2}, {u"b", 3, 4}}},
        {(u"A <" + kLro + u"1" + kPdf + u">; b"), true, {{u"A <1>", 0, 5}, {u" b", 6, 8}}},
        {(u"A <" + kLro + u"1" + kPdf + u">"), false, {{u"A <" + kLro + u"1" + kPdf + u">", 0, 7}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << (&c - cases));
        std::vector<RecipientSpan> spans(3);
        GetContacts(c.text, c.rtl, spans);
        ASSERT_EQ(spans.size(), c.pieces.size());
        for (size_t i = 0; i < spans.size(); ++i) {
            EXPECT_EQ(spans[i].text, std::get<0>(c.pieces[i]));
            EXPECT_EQ(spans[i].start, std::get<1>(c.pieces[i]));
            EXPECT_EQ(spans[i].end, std::get<2>(c.pieces[i]));
        }
    }
}

TEST(RecipientText, FinishingTypedText)
{
    const std::vector<Text16> book = {CreateContactString(u"Ann Lee", u"040123", true),
                                      CreateContactString(u"Ann Lee", u"a@b.c", true),
                                      CreateContactString(u"Bob", u"777", true)};
    const struct {
        Text16 input;
        int result;
        Text16 output;
        std::vector<std::pair<Text16, bool>> asked;
    } cases[] = {
        {u"040123", 1, book[0], {{u"040123", false}}},
        {u"an", 1, book[0], {{u"an", true}}},  // not an address: only by name
        {u"999", 0, u"999", {{u"999", false}, {u"999", true}}},
        {kLro + u"777" + kPdf, 1, book[2], {{u"777", false}}},  // the marks go before the search
        {u"zed", 0, u"zed", {{u"zed", true}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << (&c - cases));
        std::vector<std::pair<Text16, bool>> asked;
        Text16 input = c.input, output = u"stale";
        EXPECT_EQ(CheckNumberOrEmail(input, output, true, FixedSearch(book, &asked)), c.result);
        EXPECT_EQ(output, c.output);
        EXPECT_EQ(asked, c.asked);
    }
    // A search that claims a hit but gives nothing is a miss; no search at all finds nothing.
    Text16 input = u"1", output;
    auto liar = [](Text16&, bool, std::vector<Text16>&) { return 1; };
    EXPECT_EQ(CheckNumberOrEmail(input, output, false, liar), 0);
    EXPECT_EQ(CheckNumberOrEmail(input, output, false, nullptr), 0);
    EXPECT_EQ(output, u"1");
}

TEST(RecipientText, JudgingOneRecipient)
{
    const std::vector<Text16> book = {CreateContactString(u"Ann Lee", u"040123", false),
                                      CreateContactString(u"Ann", u"a@b.c", false)};
    const struct {
        const char16_t* text;
        int formal, contact, filter;
        int result;
        bool checked;
        uint32_t first, second;
    } cases[] = {
        {u"x", 0, 0, 3, 1, false, 0, 0},
        {u"040123", 1, 0, 3, 1, true, 0, 0},
        {u"a@b.c", 1, 0, 2, 0, true, kMsgPhoneOnly, 0},
        {u"040123", 1, 0, 1, 0, true, kMsgEmailOnly, 0},
        {u"Bob <x y>", 1, 0, 3, 0, true, kMsgPhoneOrEmail, 0},
        {u"Bob", 1, 0, 3, 1, true, 0, 0},     // a bare name has an empty address: a phone number
        {u"Bob <x y>", 1, 0, 7, 1, true, 0, 0},  // an unknown filter checks nothing
        {u"Ann Lee <9>", 0, 1, 3, 1, true, 0, 0},
        {u"Ann <9>", 0, 1, 3, 1, true, 0, 0},  // names compare whole, so "Ann" is not "Ann Lee"
        {u"ann <9>", 0, 1, 3, 0, true, kMsgUnknownContact, 0},  // and with case
        {u"Ann Le <9>", 0, 1, 3, 0, true, kMsgUnknownContact, 0},
        {u"040123", 0, 1, 3, 1, true, 0, 0},  // no name: no contact check
        {u"Zed <x y>", 1, 1, 3, 0, true, kMsgPhoneOrEmail, kMsgUnknownContact},  // both run
        {u"Ann <x y>", 1, 1, 3, 0, true, kMsgPhoneOrEmail, 0},  // a known name doesn't save the form
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << (&c - cases));
        const RecipientVerdict v = JudgeRecipient(c.text, c.formal, c.contact, c.filter, false, FixedSearch(book));
        EXPECT_EQ(v.result, c.result);
        EXPECT_EQ(v.checked, c.checked);
        EXPECT_EQ(v.messages[0], c.first);
        EXPECT_EQ(v.messages[1], c.second);
    }
}

TEST(RecipientText, WideTextConvertsAsUtf16)
{
    const std::wstring wide = L"a\U0001F600\u05d0";
    const Text16 text = ToText16(wide);
    EXPECT_EQ(text, u"a\U0001F600\u05d0");
    EXPECT_EQ(text.size(), 4u);
    EXPECT_EQ(FromText16(text), wide);
    EXPECT_EQ(ToText16(static_cast<const wchar_t*>(nullptr)), u"");
    const Text16 lone = u"\xDC00x\xD800";
    EXPECT_EQ(ToText16(FromText16(lone)), lone);
}
