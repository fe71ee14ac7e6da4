// The contact search through the DLL against stand-in phones in the controller's keeping: what it finds, what
// the cache answers without asking the phone (shown by changing the phone behind the cache's back), the
// search limit, two phones, and phones or the whole service going away while searches run.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ServiceTestSupport.h"
#include "zcmod/SearchEngineControl.h"

using namespace zcmod_test;

namespace {

std::string Card(const std::string& family, const std::string& given, const std::vector<std::string>& lines)
{
    std::string card = "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + family + ";" + given + ";;;\r\nFN:" + given + " " +
                       family + "\r\n";
    for (const std::string& line : lines)
        card += line + "\r\n";
    return card + "END:VCARD\r\n";
}

class ContactSearch : public ::testing::Test {
protected:
    void SetUp() override
    {
        service.UseStandIns();
        CSearchEngineControl::SetSearchLimit(1);
        CSearchEngineControl::SetAddressFilter(3);
        // No serials remembered from an earlier test: the cache would answer for phones of that test.
        CSearchEngineControl::m_vecDeviceSerials.clear();
    }
    void TearDown() override { TerminateAllInterfaces(); }

    // A phone whose contacts are the given cards, or more cards for a phone made before.
    void Phone(const std::wstring& id, const std::string& cards, bool append = false)
    {
        if (!append)
            phones.New(id);
        const std::wstring file = phones.Folder(id) + L"-cards.vcf";
        std::ofstream(file.c_str(), std::ios::binary) << cards;
        EXPECT_EQ(phones.Ctl(L"contacts " + id + L" \"" + file + L"\"" + (append ? L" --append" : L"")).exitCode, 0u);
    }
    static std::vector<std::wstring> Find(std::wstring text, bool byName = true)
    {
        std::vector<std::wstring> found;
        CSearchEngineControl::SearchValues(text, byName, found);
        return found;
    }

    ServiceRegistry service;
    Phones phones;
    const std::string people = Card("Lee", "Ann", {"TEL;TYPE=CELL:040123", "EMAIL:ann@lee.org"}) +
                               Card("Smith", "John", {"TEL:555"}) + Card("Jones", "Mary Ann", {"TEL:777"});
};

TEST_F(ContactSearch, FindsNamesAtAnyWordAndNumbersByPrefix)
{
    Phone(L"a", people);
    CSearchEngineControl control;
    CSearchEngineControl::SetAddressFilter(1);  // e-mail only: the given names and the numbers are left out
    EXPECT_EQ(Find(L"john"), std::vector<std::wstring>());
    CSearchEngineControl::SetAddressFilter(3);
    // A later word matches too; the recipient box's typing test shows the first two of these and the count.
    const std::vector<std::wstring> expected = {L"Ann Lee <040123>", L"Ann Lee <ann@lee.org>", L"Mary Ann Jones <777>"};
    EXPECT_EQ(Find(L"ann"), expected);
    EXPECT_EQ(Find(L"ann l"), (std::vector<std::wstring>{L"Ann Lee <040123>", L"Ann Lee <ann@lee.org>"}));
    // A whole number; the cache holds the contact in both name orders, and an address is answered by both.
    EXPECT_EQ(Find(L"040123", false), (std::vector<std::wstring>{L"Ann Lee <040123>", L"Lee Ann <040123>"}));
    EXPECT_EQ(Find(L"040", false), std::vector<std::wstring>());
    EXPECT_EQ(Find(L""), std::vector<std::wstring>());
}

TEST_F(ContactSearch, TheCacheAnswersWhatItKnowsAndNoMore)
{
    Phone(L"a", people);
    auto control = std::make_unique<CSearchEngineControl>();
    EXPECT_EQ(Find(L"ann").size(), 3u);
    EXPECT_TRUE(Find(L"zed").empty());  // three characters: remembered as nothing
    EXPECT_TRUE(Find(L"qq").empty());   // two: asked again each time
    // The phone changes behind the cache's back; a new control reads it through a new connection.
    control.reset();
    Phone(L"a", Card("Alpha", "Zedd", {"TEL:1"}) + Card("Qqa", "Bob", {"TEL:2"}), true);
    control = std::make_unique<CSearchEngineControl>();
    EXPECT_TRUE(Find(L"zedd").empty());  // a longer text can't match where a shorter one failed
    EXPECT_EQ(Find(L"qq"), (std::vector<std::wstring>{L"Qqa Bob <2>"}));
    EXPECT_EQ(Find(L"ze"), (std::vector<std::wstring>{L"Zedd Alpha <1>"}));
    EXPECT_EQ(Find(L"zed"), (std::vector<std::wstring>{L"Zedd Alpha <1>"}));  // now found in the cache

    // Unplugged, the phone answers nothing, but the cache still does; by the swapped order too.
    phones.Ctl(L"detach a");
    EXPECT_EQ(Find(L"ann").size(), 3u);
    EXPECT_EQ(Find(L"lee"), (std::vector<std::wstring>{L"Lee Ann <040123>", L"Lee Ann <ann@lee.org>"}));

    CSearchEngineControl::SetSearchLimit(3);
    EXPECT_TRUE(Find(L"an").empty());  // below the limit: not even the cache is asked
    CSearchEngineControl::m_bApplySearchLimit = false;
    EXPECT_FALSE(Find(L"an").empty());
    CSearchEngineControl::m_bApplySearchLimit = true;
}

TEST_F(ContactSearch, TwoPhonesWithTheSameContactGiveOneEntryAndTheNameOrderIsTheUsers)
{
    SetDword(HKEY_CURRENT_USER, L"SOFTWARE\\Zelvo\\ContactsEditor\\Settings", L"NameOrder", 2);
    Phone(L"a", people);
    Phone(L"b", Card("Lee", "Ann", {"TEL;TYPE=CELL:040123"}));
    {
        CSearchEngineControl control;
        // Asked of both phones: the name in the user's order, one entry for the contact both hold.
        EXPECT_EQ(Find(L"040123", false), (std::vector<std::wstring>{L"Lee Ann <040123>"}));
    }
    DeleteTree(HKEY_CURRENT_USER, L"SOFTWARE\\Zelvo");
}

TEST_F(ContactSearch, PhonesAndTheServiceGoingAwayDuringSearches)
{
    Phone(L"a", people);
    Phone(L"b", people);
    CSearchEngineControl control;
    std::atomic<int> done{0};
    std::thread pull([&] {
        WaitUntil([&] { return done > 100; }, 20000);
        phones.Ctl(L"detach a");
        WaitUntil([&] { return done > 400; }, 20000);
        phones.Ctl(L"stop");  // the whole service unloads
        WaitUntil([&] { return done > 700; }, 20000);
        phones.Ctl(L"start");
    });
    for (int i = 0; i < 1000; ++i, ++done)
        Find(L"a" + std::to_wstring(i % 50), i % 3 != 0);
    pull.join();
    // After all that, a phone still attached is found again once the service is back.
    EXPECT_TRUE(WaitUntil([&] { return !Find(L"mary").empty(); }, 5000));
}

}  // namespace
