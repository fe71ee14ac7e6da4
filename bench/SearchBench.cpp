// The recipient search on a stand-in phone of 10,000 contacts: a first search, which asks the phone, against
// one bare pass of the phone's own find over the same store; a search the cache answers; and the text work of
// a keystroke on the user's thread (cutting the recipient around the caret of a rich edit box).
#include <richedit.h>

#include <cwchar>
#include <functional>
#include <string>
#include <vector>

#include "Bench.h"
#include "BenchPhone.h"
#include "device/ServiceTypes.h"
#include "zcmod/SearchEngineControl.h"

using namespace bench;

namespace {

// Seconds of one call.
double Once(const std::function<void()>& body)
{
    LARGE_INTEGER frequency, start, end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    body();
    QueryPerformanceCounter(&end);
    return static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

void SearchCases(std::vector<Row>& rows)
{
    const std::wstring serial = MakeBenchPhone(L"big", L"3580000000010000");
    if (serial.empty()) {
        rows.push_back({"recipient search", "10,000 contacts", "no phone", "-", "-"});
        return;
    }
    CSearchEngineControl control;

    // The reference: one pass of the phone's own find for a given name, straight through the service.
    HMODULE daapi = LoadLibraryW((BinDir() + L"\\standins\\service\\DAAPI64.dll").c_str());
    using Open = HRESULT(WINAPI*)(const wchar_t*, DWORD*, DWORD, HCA*);
    using Begin = HRESULT(WINAPI*)(HCA, DWORD, const ContactItem*, HCAFIND*);
    using Next = HRESULT(WINAPI*)(HCAFIND, DWORD, ContactItem*);
    using Free = HRESULT(WINAPI*)(HCA, DWORD, void*);
    using End = HRESULT(WINAPI*)(HCAFIND);
    using Close = HRESULT(WINAPI*)(HCA);
    using Init = HRESULT(WINAPI*)(DWORD, DWORD);
    auto get = [daapi](const char* name) { return reinterpret_cast<void*>(GetProcAddress(daapi, name)); };
    auto init = reinterpret_cast<Init>(get("CAAPI_Initialize"));
    auto open = reinterpret_cast<Open>(get("DAOpenCA"));
    auto begin = reinterpret_cast<Begin>(get("CAFindBegin"));
    auto next = reinterpret_cast<Next>(get("CAFindNext"));
    auto release = reinterpret_cast<Free>(get("CAFreeItemData"));
    auto end = reinterpret_cast<End>(get("CAFindEnd"));
    auto close = reinterpret_cast<Close>(get("DACloseCA"));
    HCA ca = nullptr;
    DWORD target = 1;
    const bool bare = init && open && begin && next && release && end && close && init(30, 0) == S_OK &&
                      open(serial.c_str(), &target, 1, &ca) == S_OK;
    const double onePass = !bare ? Timing() : Time([&] {
        ContactField field = {sizeof(ContactField), 0, 1, 2, const_cast<wchar_t*>(L"qz%")};
        ContactItem condition = {};
        condition.dwSize = sizeof(condition);
        condition.bPersonalCount = 1;
        condition.pPersonal = &field;
        HCAFIND find = nullptr;
        if (begin(ca, 0, &condition, &find) != S_OK)
            return false;
        ContactItem item = {};
        item.dwSize = sizeof(item);
        while (next(find, 1, &item) == S_OK) {
            release(ca, 1, &item);
            item = ContactItem();
            item.dwSize = sizeof(item);
        }
        end(find);
        return true;
    });
    if (ca)
        close(ca);

    // A first search: a text not asked before and no extension of one, so the cache sends it to the phone (six
    // passes over the store). It finds nothing; the search of a text with many hits is timed once below.
    int fresh = 0;
    const double first = Time([&] {
        wchar_t text[16];
        swprintf(text, 16, L"qz%06d", fresh++);
        std::wstring typed = text;
        std::vector<std::wstring> found;
        CSearchEngineControl::SearchValues(typed, true, found);
        return true;
    });
    std::wstring known = L"ann";
    std::vector<std::wstring> warm;
    const double firstWithHits = Once([&] { CSearchEngineControl::SearchValues(known, true, warm); });
    const std::string hits = std::to_string(warm.size()) + " hits";
    std::wstring narrow = warm.empty() ? L"ann" : warm.front().substr(0, warm.front().find(L'<') - 1);
    std::vector<std::wstring> few;
    CSearchEngineControl::SearchValues(narrow, true, few);
    const double hit = Time([&] {
        std::vector<std::wstring> found;
        return CSearchEngineControl::SearchValues(known, true, found) == 1;
    });
    const double narrowHit = Time([&] {
        std::vector<std::wstring> found;
        return CSearchEngineControl::SearchValues(narrow, true, found) == 1;
    });
    AddTimes(rows, "recipient search, first, nothing found", "10,000 contacts", first, onePass,
             "(one bare find pass)");
    AddTimes(rows, "recipient search, first, \"ann\"", "10,000 contacts, " + hits, firstWithHits, onePass,
             "(one bare find pass)");
    AddTimes(rows, "recipient search, cache, \"ann\"", "10,000 contacts, " + hits, hit, firstWithHits,
             "(first search)");
    AddTimes(rows, "recipient search, cache, a whole name", "10,000 contacts, " + std::to_string(few.size()) + " hits",
             narrowHit, firstWithHits, "(first search)");

    // The keystroke's text work: the recipient around the caret of a line of 20 finished contacts.
    LoadLibraryW(L"Riched20.dll");
    HWND edit = CreateWindowExW(0, RICHEDIT_CLASSW, L"", WS_POPUP | ES_MULTILINE, 0, 0, 600, 100, nullptr, nullptr,
                                nullptr, nullptr);
    std::wstring line;
    for (int i = 0; i < 20; ++i)
        line += L"Contact Number" + std::to_wstring(i) + L" <04012345" + std::to_wstring(i) + L">; ";
    line += L"ann";
    SetWindowTextW(edit, line.c_str());
    SendMessageW(edit, EM_SETSEL, line.size(), line.size());
    const double keystroke = Time([&] {
        std::wstring name;
        int start = 0, stop = 0;
        return CSearchEngineControl::ExtractName(edit, name, &start, &stop) == 1;
    });
    DestroyWindow(edit);
    AddTimes(rows, "keystroke text work (recipient at the caret)", "line of 20 contacts", keystroke, hit,
             "(cache hit)");
}

}  // namespace

ZCMOD_BENCH_CASE("40-recipient-search", SearchCases);
