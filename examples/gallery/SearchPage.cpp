// The contact search: a search field over the phones' contacts. Each change of the text is looked up through
// CSearchEngineControl::SearchValues, which asks the phones only when its cache cannot answer; the page shows
// the contacts found and how long the lookup took, so that a second search of the same text shows the cache.
#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <string>
#include <vector>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"

using namespace gallery;

namespace {

class SearchPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Contact search"; }

    void Enter(HWND host) override
    {
        m_font = SuiteFont(15);
        // The field takes the theme's window and text colours; the host asks the page for them while it is shown.
        m_host = host;
        m_fieldText = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        m_fieldColour = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        m_fieldBrush = CreateSolidBrush(m_fieldColour);
        SetWindowSubclass(host, HostProc, 1, reinterpret_cast<DWORD_PTR>(this));
        m_control = std::make_unique<CSearchEngineControl>();
        m_edit = CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL,
                                 24, 96, 360, 26, host, nullptr, GetModuleHandleW(nullptr), nullptr);
        SendMessageW(m_edit, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
        // In a screenshot run the page types a name by itself.
        SetWindowTextW(m_edit, wcsstr(GetCommandLineW(), L"--screenshots") ? L"an" : L"");
        SetFocus(m_edit);
    }

    void Leave() override
    {
        if (m_edit)
            DestroyWindow(m_edit);
        m_edit = nullptr;
        if (m_host)
            RemoveWindowSubclass(m_host, HostProc, 1);
        m_host = nullptr;
        if (m_fieldBrush)
            DeleteObject(m_fieldBrush);
        m_fieldBrush = nullptr;
        m_control.reset();
        if (m_font)
            DeleteObject(m_font);
        m_font = nullptr;
        m_searched.clear();
        m_found.clear();
    }

    // Searches again when the text has changed since the last look.
    bool Tick() override
    {
        wchar_t text[256] = {};
        GetWindowTextW(m_edit, text, 256);
        if (m_searched == text && m_looked)
            return false;
        m_searched = text;
        m_looked = true;
        std::wstring typed = text;
        m_found.clear();
        LARGE_INTEGER frequency, start, end;
        QueryPerformanceFrequency(&frequency);
        QueryPerformanceCounter(&start);
        CSearchEngineControl::SearchValues(typed, true, m_found);
        QueryPerformanceCounter(&end);
        m_milliseconds = 1e3 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
        return true;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF dim = DkhLoadColor(nullptr, ZGR_COLOR_TEXT_DISABLED);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        Swatch(dc, area, window, window);
        HFONT heading = SuiteFont(22, FW_BOLD), plain = SuiteFont(14);
        HGDIOBJ old = SelectObject(dc, heading);
        const int left = area.left + 24;
        int y = Text(dc, left, area.top + 16, L"Contact search", accent) + 4;
        SelectObject(dc, plain);
        Text(dc, left, y,
             L"Type the beginning of a name: the phones are asked once, and the cache answers every later keystroke.",
             dim);
        y = 136;
        y = Text(dc, left, y,
                 m_searched.empty() ? std::wstring(L"Nothing typed yet.")
                                    : Format(L"%zu contacts for \"%ls\" in %.2f ms", m_found.size(), m_searched.c_str(),
                                             m_milliseconds),
                 text) + 8;
        for (size_t i = 0; i < m_found.size() && y < area.bottom - 20; ++i)
            y = Text(dc, left + 12, y, m_found[i], text) + 2;
        SelectObject(dc, old);
        DeleteObject(heading);
        DeleteObject(plain);
    }

    std::wstring Verify() override
    {
        Tick();
        return m_found.empty() ? L"no contact of the sample phone was found for \"an\"" : L"";
    }

private:
    static LRESULT CALLBACK HostProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data)
    {
        const SearchPage* page = reinterpret_cast<SearchPage*>(data);
        if (message == WM_CTLCOLOREDIT && reinterpret_cast<HWND>(lParam) == page->m_edit) {
            HDC dc = reinterpret_cast<HDC>(wParam);
            SetTextColor(dc, page->m_fieldText);
            SetBkColor(dc, page->m_fieldColour);
            return reinterpret_cast<LRESULT>(page->m_fieldBrush);
        }
        return DefSubclassProc(hwnd, message, wParam, lParam);
    }

    std::unique_ptr<CSearchEngineControl> m_control;
    HWND m_host = nullptr;
    HWND m_edit = nullptr;
    HBRUSH m_fieldBrush = nullptr;
    COLORREF m_fieldColour = 0;
    COLORREF m_fieldText = 0;
    HFONT m_font = nullptr;
    std::wstring m_searched;
    bool m_looked = false;
    std::vector<std::wstring> m_found;
    double m_milliseconds = 0;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeSearchPage() { return std::make_unique<SearchPage>(); }
