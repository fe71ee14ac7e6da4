// The first page: what the library frame knows. Module paths, strings, the theme's colours as swatches, the
// suite's font at the heights its consumers use, scale, layout and build number.
#include <cwchar>
#include <vector>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"

using namespace gallery;

namespace {

struct NamedColor {
    UINT id;
    const wchar_t* name;
};

const NamedColor kColors[] = {
    {ZGR_COLOR_TEXT, L"Text"},          {ZGR_COLOR_TEXT_DISABLED, L"Disabled text"},
    {ZGR_COLOR_WINDOW, L"Window"},      {ZGR_COLOR_CAPTION_TEXT, L"Caption text"},
    {ZGR_COLOR_CAPTION, L"Caption"},    {ZGR_COLOR_ACCENT, L"Accent"},
    {ZGR_COLOR_HIGHLIGHT, L"Highlight"}, {ZGR_COLOR_BORDER, L"Border"},
};

struct FontUse {
    int height;
    int weight;
    const wchar_t* who;
};

// The heights at which the library's own controls and dialogs draw the suite's font.
const FontUse kFontUses[] = {
    {12, FW_BOLD, L"menu bar buttons"},
    {13, FW_NORMAL, L"menu bar"},
    {14, FW_NORMAL, L"check buttons, tooltips"},
    {15, FW_NORMAL, L"progress dialog, list headers, device selection"},
    {17, FW_NORMAL, L"window frames, message boxes"},
    {19, FW_NORMAL, L"list view headers"},
    {20, FW_NORMAL, L"about dialog"},
};

std::wstring LoadLanguageString(UINT id)
{
    wchar_t text[256] = {};
    ZCMOD_LoadString(id, text, 256);
    return text;
}

std::wstring VersionText(HMODULE module)
{
    DWORD v[4] = {};
    if (!module || !CUtils::GetModuleVersion(module, v))
        return L"(none)";
    return Format(L"%lu.%lu.%lu.%lu", v[0], v[1], v[2], v[3]);
}

class FramePage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Library frame"; }

    void Paint(HDC dc, const RECT& area) override
    {
        m_faces.clear();
        HMODULE graphics = ZCMOD_GetCommonZGR();
        HMODULE language = ZCMOD_GetCommonZLR();
        CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        const COLORREF border = DkhLoadColor(nullptr, ZGR_COLOR_BORDER);
        m_accent = accent;
        m_haveGraphics = graphics != nullptr;

        Swatch(dc, area, window, window);
        const int left = area.left + 24;
        int y = area.top + 16;

        y = WithFont(dc, 22, FW_BOLD, [&](HDC d) { return Text(d, left, y, L"The library frame", accent); });
        y += 6;

        // Resource modules and their strings.
        y = WithFont(dc, 15, FW_BOLD, [&](HDC d) { return Text(d, left, y, L"Resource modules", text); });
        y = WithFont(dc, 14, FW_NORMAL, [&](HDC d) {
            const wchar_t* code = handler ? handler->GetLanguageName() : nullptr;
            int yy = Text(d, left, y,
                          Format(L"Language \"%ls\": %ls", code ? code : L"(none)",
                                 handler && language ? handler->GetLanguageModulePath() : L"not loaded"),
                          text);
            yy = Text(d, left, yy,
                      Format(L"Theme \"%ls\": %ls", handler && graphics ? handler->GetThemeName() : L"(none)",
                             handler && graphics ? handler->GetGraphicsModulePath() : L"not loaded"),
                      text);
            const std::wstring version = LoadLanguageString(ZLR_STR_VERSION);
            yy = Text(d, left, yy,
                      Format(L"Strings: language \"%ls\", suite \"%ls\", version word \"%ls\"",
                             LoadLanguageString(ZLR_STR_LANGUAGE_NAME).c_str(),
                             LoadLanguageString(ZLR_STR_SUITE_NAME).c_str(),
                             version.size() > 3 ? version.c_str() + 3 : L""),
                      text);
            return Text(d, left, yy,
                        Format(L"Versions: zcmod.dll %ls, theme module %ls",
                               VersionText(GetModuleHandleW(L"zcmod.dll")).c_str(), VersionText(graphics).c_str()),
                        text);
        });
        y += 10;

        // The theme's colours.
        y = WithFont(dc, 15, FW_BOLD, [&](HDC d) { return Text(d, left, y, L"Colours of the theme", text); });
        WithFont(dc, 13, FW_NORMAL, [&](HDC d) {
            int x = left;
            for (const NamedColor& c : kColors) {
                const COLORREF color = DkhLoadColor(nullptr, c.id);
                RECT swatch = {x, y, x + 96, y + 40};
                Swatch(d, swatch, color, border);
                Text(d, x, y + 44, c.name, text);
                Text(d, x, y + 60, Format(L"%u,%u,%u", GetRValue(color), GetGValue(color), GetBValue(color)), text);
                x += 108;
            }
            return 0;
        });
        y += 90;

        // The suite's font at its consumers' heights.
        y = WithFont(dc, 15, FW_BOLD, [&](HDC d) { return Text(d, left, y, L"Zelvo Sans Wide", text); });
        for (const FontUse& use : kFontUses) {
            y = WithFont(dc, use.height, use.weight, [&](HDC d) {
                const std::wstring face = SelectedFace(d);
                return Text(d, left, y,
                            Format(L"%d px%ls \x2014 %ls \x2014 The quick brown fox jumps over the lazy dog (%ls)",
                                   use.height, use.weight >= FW_BOLD ? L" bold" : L"", use.who, face.c_str()),
                            text);
            });
        }
        y += 10;

        // The process.
        y = WithFont(dc, 15, FW_BOLD, [&](HDC d) { return Text(d, left, y, L"Process", text); });
        WithFont(dc, 14, FW_NORMAL, [&](HDC d) {
            int yy = Text(d, left, y,
                          Format(L"Scale %.4f x %.4f, auto scale %ls; layout %lu (%ls)", CVuikLib::GetScaleX(),
                                 CVuikLib::GetScaleY(), CVuikLib::GetAutoScale() ? L"on" : L"off",
                                 CVuikLib::GetLayout(), CVuikLib::IsLayoutRTL() ? L"right to left" : L"left to right"),
                          text);
            const wchar_t* build = CUtils::GetCachedBuildNumber();
            return Text(d, left, yy,
                        Format(L"Build number \"%ls\"; manufacturer \"%ls\"; Windows XP rule %ls",
                               *build ? build : L"(none)", CUtils::GetUIManufacturerName(),
                               CVuikLib::IsWindowsXP() ? L"yes" : L"no"),
                        text);
        });
    }

    std::wstring Verify() override
    {
        if (!m_haveGraphics)
            return L"the theme module did not load";
        if (m_accent == 0)
            return L"the theme's accent colour came out black";
        for (const std::wstring& face : m_faces)
            if (face != L"Zelvo Sans Wide")
                return L"text was drawn in \"" + face + L"\", not in \"Zelvo Sans Wide\"";
        return m_faces.empty() ? L"no text was drawn" : L"";
    }

private:
    template <class Draw>
    int WithFont(HDC dc, int height, int weight, Draw draw)
    {
        HFONT font = SuiteFont(height, weight);
        HGDIOBJ old = SelectObject(dc, font);
        m_faces.push_back(SelectedFace(dc));
        const int result = draw(dc);
        SelectObject(dc, old);
        DeleteObject(font);
        return result;
    }

    std::vector<std::wstring> m_faces;
    COLORREF m_accent = 0;
    bool m_haveGraphics = false;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeFramePage() { return std::make_unique<FramePage>(); }
