// The recipient box on the user's thread, over a stand-in phone of 10,000 contacts: one keystroke, from its key
// messages to the box idle again (the rich edit's work, the box's timer restart and its resize check, but not
// the search, which waits for the pause), against the same keystroke in a bare rich edit box; and a last key with
// the work when the pause has passed (search answered by the cache, inline completion, the list filled and
// shown).
#include <richedit.h>

#include <string>
#include <vector>

#include "Bench.h"
#include "BenchPhone.h"
#include "zcmod/SearchEngineControl.h"

using namespace bench;

namespace {

void Pump()
{
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

// One key as the window system delivers it: down, the character, up; then the queue is worked off.
void Keystroke(HWND edit, WPARAM vk, wchar_t character)
{
    PostMessageW(edit, WM_KEYDOWN, vk, 1);
    PostMessageW(edit, WM_CHAR, character, 1);
    PostMessageW(edit, WM_KEYUP, vk, 0xC0000001);
    Pump();
}

std::wstring Line()
{
    std::wstring line;
    for (int i = 0; i < 10; ++i)
        line += L"Contact Number" + std::to_wstring(i) + L" <04012345" + std::to_wstring(i) + L">; ";
    return line + L"ann";
}

void RecipientBoxCases(std::vector<Row>& rows)
{
    if (MakeBenchPhone(L"box", L"3580000000020000").empty()) {
        rows.push_back({"recipient box keystroke", "10,000 contacts", "no phone", "-", "-"});
        return;
    }
    HWND parent = CreateWindowExW(0, L"Static", L"", WS_POPUP | WS_VISIBLE, 0, 0, 600, 300, nullptr, nullptr,
                                  nullptr, nullptr);
    CSearchEngineControl box(GetModuleHandleW(nullptr));
    RECT where = {0, 0, 560, 60};
    box.Create(nullptr, WS_CHILD | WS_VISIBLE, where, parent, 100, 1);
    HWND edit = box.GetEditBox(0);
    const std::wstring line = Line();
    SetWindowTextW(edit, line.c_str());
    SetFocus(edit);
    SendMessageW(edit, EM_SETSEL, line.size(), line.size());
    Pump();

    // A letter and its Backspace: two keystrokes, the text the same afterwards.
    const double typed = Time([&] {
        Keystroke(edit, 'E', L'e');
        Keystroke(edit, VK_BACK, L'\b');
        return true;
    });

    HWND bare = CreateWindowExW(0, RICHEDIT_CLASSW, L"", WS_CHILD | WS_VISIBLE | ES_MULTILINE | ES_AUTOVSCROLL, 0,
                                100, 505, 23, parent, nullptr, nullptr, nullptr);
    SetWindowTextW(bare, line.c_str());
    SetFocus(bare);
    SendMessageW(bare, EM_SETSEL, line.size(), line.size());
    const double plain = Time([&] {
        Keystroke(bare, 'E', L'e');
        Keystroke(bare, VK_BACK, L'\b');
        return true;
    });
    AddTimes(rows, "recipient box keystroke (key to idle, no search)", "10,000 contacts, 10 recipients", typed / 2,
             plain / 2, "(bare rich edit)");

    // The pause has passed: the search (from the cache after the first), the completion and the list.
    std::wstring warm = L"ann";
    std::vector<std::wstring> found;
    CSearchEngineControl::SearchValues(warm, true, found);
    SetFocus(edit);
    const std::wstring typing = line.substr(0, line.size() - 1);  // "...; an", the last 'n' still to come
    const double pause = Time([&] {
        SetWindowTextW(edit, typing.c_str());
        SendMessageW(edit, EM_SETSEL, typing.size(), typing.size());
        Keystroke(edit, 'N', L'n');
        SendMessageW(edit, WM_TIMER, 1, 0);
        Pump();
        return GetWindowTextLengthW(edit) > static_cast<int>(line.size());
    });
    AddTimes(rows, "recipient box, last key and the pause (cached search, completion, list)",
             "10,000 contacts, " + std::to_string(found.size()) + " hits", pause, typed / 2, "(one keystroke)");
    box.HideContactListBox(1);
    DestroyWindow(parent);
}

}  // namespace

ZCMOD_BENCH_CASE("41-recipient-box", RecipientBoxCases);
