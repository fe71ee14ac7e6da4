// The static family's page: labels in each alignment and a disabled one, a picture at its own size and
// stretched, an icon, gradients, a nine-piece card with labels on it, a busy spinner, and bars across and
// downwards. The pictures are the gallery's own (art/statics.py), drawn for both themes; the page picks the
// set of the theme in use from its window colour. Right to left, the page is laid out from the right.
#include <windows.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <zcmod/VuikGraphics.h>
#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "art/StaticArt.h"

using namespace gallery;

namespace {

const int kMargin = 24;
const int kLabelWidth = 200;
const int kLabelHeight = 56;

bool IsDark(COLORREF c)
{
    return GetRValue(c) * 299 + GetGValue(c) * 587 + GetBValue(c) * 114 < 128 * 1000;
}

struct Heading {
    int x, y, width;
    std::wstring text;
};

// The page's background: the theme's window colour, the section headings, and a thin frame round each label
// so that its alignment shows. Built left to right whatever the layout, so that its text reads; the places
// are already mirrored for a right-to-left page.
struct CPanelSkinDef {
    COLORREF m_crWindow, m_crText, m_crFrame;
};

class CPanelSkin : public CVuikBaseSkinImpl<CPanelSkin, CPanelSkinDef> {
public:
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        HDC dc = *graphics;
        const RECT all = {0, 0, width, height};
        HBRUSH window = CreateSolidBrush(m_SkinDef.m_crWindow);
        FillRect(dc, &all, window);
        DeleteObject(window);
        HBRUSH frame = CreateSolidBrush(m_SkinDef.m_crFrame);
        for (const RECT& r : m_frames)
            FrameRect(dc, &r, frame);
        DeleteObject(frame);
        HFONT font = SuiteFont(16, FW_BOLD);
        HGDIOBJ old = SelectObject(dc, font);
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, m_SkinDef.m_crText);
        for (const Heading& h : m_headings) {
            RECT r = {h.x, h.y, h.x + h.width, h.y + 22};
            DrawTextW(dc, h.text.c_str(), -1, &r, (m_rtl ? DT_RIGHT : DT_LEFT) | DT_SINGLELINE | DT_NOPREFIX);
        }
        SelectObject(dc, old);
        DeleteObject(font);
    }

    std::vector<Heading> m_headings;
    std::vector<RECT> m_frames;
    bool m_rtl = false;
};

class CPanel : public CVuikWindowImpl<CPanelSkin> {
public:
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(false);
        CVuikWindowImpl<CPanelSkin>::CreateBackBuffer(width, height, graphics);
    }
};

class StaticsPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Statics"; }

    void Enter(HWND host) override
    {
        Leave();
        RECT area;
        GetClientRect(host, &area);
        m_width = area.right;
        m_rtl = CVuikLib::IsLayoutRTL() != 0;
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        m_window = window;
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        const UINT base = IDB_GALLERY_STATIC_BASE + (IsDark(window) ? IDB_GALLERY_STATIC_THEME_STEP : 0);
        m_font = SuiteFont(14);
        LoadSkins(base, window, accent);

        m_panelSkin.SetSkinDef(CPanelSkinDef{window, text, DkhLoadColor(nullptr, ZGR_COLOR_BORDER)});
        m_panelSkin.m_rtl = m_rtl;
        m_panel = std::make_unique<CPanel>();
        m_panel->SetSkin(&m_panelSkin);
        m_panel->Create(WindowClass(L"ZcmodGalleryStaticPanel"), host, area, L"", 1, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, nullptr);
        HWND panel = m_panel->m_hWnd;

        // Labels: each alignment, and a disabled one whatever its colour says.
        int y = kMargin;
        Head(kMargin, y, 600, L"Labels: text over the parent's background");
        y += 28;
        struct LabelSpec {
            DWORD style;
            CVuikStaticCtrl::EVerticalAlignment vertical;
            const wchar_t* text;
            bool enabled;
        } labels[] = {
            {SS_LEFT, CVuikStaticCtrl::VA_TOP, L"Left, at the top", true},
            {SS_CENTER, CVuikStaticCtrl::VA_CENTER, L"Centred both ways, and wrapped onto a second line", true},
            {SS_RIGHT, CVuikStaticCtrl::VA_BOTTOM, L"Right, at the bottom", true},
            {SS_CENTER, CVuikStaticCtrl::VA_CENTER, L"Disabled: always grey", false},
        };
        for (int i = 0; i < 4; ++i) {
            const RECT r = Place(kMargin + i * (kLabelWidth + 16), y, kLabelWidth, kLabelHeight);
            m_panelSkin.m_frames.push_back(RECT{r.left - 1, r.top - 1, r.right + 1, r.bottom + 1});
            CVuikStaticCtrl* label = Label(panel, r, labels[i].style, labels[i].text, text);
            label->SetVerticalAlignment(labels[i].vertical);
            EnableWindow(label->m_hWnd, labels[i].enabled);
        }

        // Pictures: a bitmap at its own size and stretched, an icon, two gradients.
        y += kLabelHeight + 28;
        Head(kMargin, y, 900, L"Pictures: bitmap (own size, stretched), icon, gradients (theme colours, the default pair)");
        y += 28;
        Skinned(panel, Place(kMargin, y, 48, 48), &m_ownSize);
        Skinned(panel, Place(kMargin + 64, y, 96, 48), &m_stretched);
        Skinned(panel, Place(kMargin + 176, y + 8, 32, 32), &m_icon);
        Skinned(panel, Place(kMargin + 232, y + 4, 300, 40), &m_themeGradient);
        Skinned(panel, Place(kMargin + 548, y + 4, 300, 40), &m_defaultGradient);

        // The card: a nine-piece frame with labels on it; the spinner; the bars.
        y += 48 + 28;
        Head(kMargin, y, 900, L"Nine-piece frame with labels on it, animation, bars across and downwards");
        y += 28;
        CVuikStaticCtrl* card = Skinned(panel, Place(kMargin, y, 300, 120), &m_card);
        m_cardWindow = card->m_hWnd;
        SetWindowLongW(card->m_hWnd, GWL_STYLE, GetWindowLongW(card->m_hWnd, GWL_STYLE) | WS_CLIPCHILDREN);
        Label(card->m_hWnd, Local(RECT{16, 16, 284, 40}, 300), SS_LEFT, L"Phone connected", text)
            ->SetVerticalAlignment(CVuikStaticCtrl::VA_CENTER);
        Label(card->m_hWnd, Local(RECT{16, 44, 284, 104}, 300), SS_LEFT,
              L"The card is a static with a chrome skin; these labels ask it for what lies under them.", text);

        m_spinner = std::make_unique<CVuikAniStaticCtrl>();
        const RECT spin = Place(kMargin + 324, y + 44, 32, 32);
        m_spinner->Create(panel, spin, 20, WS_CHILD | WS_VISIBLE, 0);
        m_spinner->SetSkin(&m_spinnerSkin);
        m_spinner->SizeToContent();
        m_spinner->StartAnimation();

        m_across = std::make_unique<CVuikBarStaticCtrl>();
        m_across->Create(panel, Place(kMargin + 380, y, 420, 0), 21, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0);
        m_across->SetSkin(&m_acrossSkin);
        m_across->SizeToContent();
        for (int i = 0; i < 3; ++i) {
            const wchar_t* names[] = {L"Messages", L"Contacts", L"Pictures"};
            Label(m_across->m_hWnd, Local(RECT{16 + i * 130, 6, 16 + i * 130 + 120, 24}, 420), SS_CENTER, names[i],
                  text);
        }
        m_down = std::make_unique<CVuikBarStaticCtrl>();
        m_down->Create(panel, Place(kMargin + 820, y, 28, 150), 22, WS_CHILD | WS_VISIBLE, 0);
        m_down->SetSkin(&m_downSkin);
        m_down->SizeToContent();
        CVuikStaticCtrl* note = Label(panel, Place(kMargin + 380, y + 44, 420, 60), SS_LEFT,
                                      L"The bar across tiles its middle piece between its ends; the bar downwards "
                                      L"stretches it.",
                                      text);
        note->SetVerticalAlignment(CVuikStaticCtrl::VA_TOP);
    }

    void Leave() override
    {
        if (m_spinner)
            m_spinner->StopAnimation();
        if (m_panel && m_panel->m_hWnd)
            DestroyWindow(m_panel->m_hWnd);  // and every control on it
        m_statics.clear();
        m_spinner.reset();
        m_across.reset();
        m_down.reset();
        m_panel.reset();
        m_panelSkin.m_headings.clear();
        m_panelSkin.m_frames.clear();
        for (CVuikBaseSkin* s : Skins())
            s->Unload();
        if (m_font)
            DeleteObject(m_font);
        m_font = nullptr;
    }

    void Paint(HDC, const RECT&) override {}  // the panel covers the page

    std::wstring Verify() override
    {
        for (CVuikBaseSkin* s : Skins())
            if (!s->IsValid())
                return L"a skin of the page isn't valid: its pictures didn't load";
        if (m_spinnerSkin.GetFrameCount() != IDB_GALLERY_STATIC_SPINNER_FRAMES)
            return L"the spinner lacks frames";
        if (!m_panel || !IsWindow(m_panel->m_hWnd) || !m_spinner || !IsWindow(m_spinner->m_hWnd))
            return L"the page's windows weren't created";
        RECT r;
        GetClientRect(m_across->m_hWnd, &r);
        if (r.bottom != 28)
            return L"the bar across didn't take its pieces' height";
        GetClientRect(m_down->m_hWnd, &r);
        if (r.right != 28)
            return L"the bar downwards didn't take its pieces' width";
        // The card's rounded corner lets the page show through (within the blend's rounding); its left edge is
        // its own border.
        HDC dc = GetDC(m_cardWindow);
        const COLORREF corner = GetPixel(dc, 0, 0), edge = GetPixel(dc, 0, 60);
        ReleaseDC(m_cardWindow, dc);
        auto likePage = [this](COLORREF c, int tolerance) {
            return std::abs(GetRValue(c) - GetRValue(m_window)) <= tolerance &&
                   std::abs(GetGValue(c) - GetGValue(m_window)) <= tolerance &&
                   std::abs(GetBValue(c) - GetBValue(m_window)) <= tolerance;
        };
        if (!likePage(corner, 2) || likePage(edge, 20))
            return L"the card doesn't sit on the page: " + Format(L"%06x %06x", corner, edge);
        return L"";
    }

private:
    // A rectangle measured from the page's leading edge.
    RECT Place(int x, int y, int w, int h) const
    {
        const int left = m_rtl ? m_width - x - w : x;
        return RECT{left, y, left + w, y + h};
    }
    // A child's rectangle measured from the leading edge of a parent `width` wide.
    RECT Local(RECT r, int width) const
    {
        return m_rtl ? RECT{width - r.right, r.top, width - r.left, r.bottom} : r;
    }
    void Head(int x, int y, int w, const wchar_t* text)
    {
        const RECT r = Place(x, y, w, 22);
        m_panelSkin.m_headings.push_back(Heading{r.left, r.top, w, text});
    }
    CVuikStaticCtrl* Label(HWND parent, const RECT& r, DWORD style, const wchar_t* text, COLORREF colour)
    {
        auto label = std::make_unique<CVuikStaticCtrl>();
        label->SetTextColor(colour);
        // Right to left, a label's own layout is mirrored, so that its text starts from the right.
        label->Create(parent, r, 30, WS_CHILD | WS_VISIBLE | SS_NOPREFIX | style, m_rtl ? WS_EX_LAYOUTRTL : 0);
        SendMessageW(label->m_hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
        SetWindowTextW(label->m_hWnd, text);
        m_statics.push_back(std::move(label));
        return m_statics.back().get();
    }
    CVuikStaticCtrl* Skinned(HWND parent, const RECT& r, CVuikBaseSkin* skin)
    {
        auto s = std::make_unique<CVuikStaticCtrl>();
        s->Create(parent, r, 31, WS_CHILD | WS_VISIBLE, 0);
        s->SetSkin(skin);
        m_statics.push_back(std::move(s));
        return m_statics.back().get();
    }
    std::vector<CVuikBaseSkin*> Skins()
    {
        return {&m_ownSize, &m_stretched, &m_icon,  &m_themeGradient, &m_defaultGradient,
                &m_card,    &m_spinnerSkin, &m_acrossSkin, &m_downSkin};
    }
    void LoadSkins(UINT base, COLORREF window, COLORREF accent)
    {
        const UINT spinner = base + IDB_GALLERY_STATIC_SPINNER;
        m_ownSize.SetSkinDef(CVuikStaticBitmapSkinDef{spinner, 0, 0});
        m_stretched.SetSkinDef(CVuikStaticBitmapSkinDef{spinner + 2, 1, 0});
        m_icon.SetSkinDef(CVuikStaticIconSkinDef{nullptr, IDI_INFORMATION, nullptr});
        // Left below right, numerically, runs from left to right; the default pair wraps round on purpose.
        const COLORREF low = accent < window ? accent : window, high = accent < window ? window : accent;
        m_themeGradient.SetSkinDef(CVuikStaticGradientSkinDef{low, high});
        // Frame and bar pieces are never turned round: each keeps its own look while the whole picture is
        // mirrored, so right to left the left-hand pieces go where the right-hand ones were.
        const UINT card = base + IDB_GALLERY_STATIC_CARD;
        const UINT l = m_rtl ? 2 : 0, r = 2 - l;
        m_card.SetSkinDef(CVuikStaticChromeSkinDef{card + l, card + 1, card + r, card + 3 + l, card + 4, card + 3 + r,
                                                   card + 6 + l, card + 7, card + 6 + r});
        CVuikAniStaticSkinDef frames = CVuikAniStaticSkin::m_DefaultSkinDef;
        frames.m_nFirstFrameId = spinner;
        frames.m_nLastFrameId = spinner + IDB_GALLERY_STATIC_SPINNER_FRAMES - 1;
        frames.m_nFrameTime = 90;
        m_spinnerSkin.SetSkinDef(frames);
        const UINT across = base + IDB_GALLERY_STATIC_ACROSS, down = base + IDB_GALLERY_STATIC_DOWN;
        m_acrossSkin.SetSkinDef(CVuikBarStaticSkinDef{1, across + l, across + 1, across + r});
        m_downSkin.SetSkinDef(CVuikBarStaticSkinDef{0, down, down + 1, down + 2});
        for (CVuikBaseSkin* s : Skins())
            s->Load();
    }

    bool m_rtl = false;
    int m_width = 0;
    COLORREF m_window = 0;
    HWND m_cardWindow = nullptr;
    HFONT m_font = nullptr;
    CPanelSkin m_panelSkin;
    CVuikStaticBitmapSkin m_ownSize, m_stretched;
    CVuikStaticIconSkin m_icon;
    CVuikStaticGradientSkin m_themeGradient, m_defaultGradient;
    CVuikStaticChromeSkin m_card;
    CVuikAniStaticSkin m_spinnerSkin;
    CVuikBarStaticSkin m_acrossSkin, m_downSkin;
    std::unique_ptr<CPanel> m_panel;
    std::vector<std::unique_ptr<CVuikStaticCtrl>> m_statics;
    std::unique_ptr<CVuikAniStaticCtrl> m_spinner;
    std::unique_ptr<CVuikBarStaticCtrl> m_across, m_down;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeStaticsPage()
{
    return std::make_unique<StaticsPage>();
}
