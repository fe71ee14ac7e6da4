// The skin framework's page: a family of skinned buttons (a state skin per state, a composite skin over
// them, and a control on CVuikButtonImpl) in every state, left to right and right to left side by side, on a
// skinned panel, each with a tooltip. The pictures are the gallery's own resources (skin/make_skin.sh).
//
// The library's layout flag is process-wide and read when a picture loads and when a buffer is built; to show
// both directions at once, each control here builds its buffer under the layout of its side (an application
// sets the layout once, before its first skin loads).
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include <zcmod/VuikBitmap.h>
#include <zcmod/VuikGraphics.h>
#include <zcmod/VuikResourceManager.h>
#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "skin/SkinArt.h"

using namespace gallery;

namespace {

enum { kNormal, kHover, kPushed, kChecked, kDisabled, kStates };
const wchar_t* const kStateNames[kStates] = {L"Normal", L"Hover", L"Pushed", L"Checked", L"Disabled"};
const int kButtonWidth = 150;
const int kButtonHeight = 34;
const int kLeftColumn = 30;
const int kRightColumn = 330;
const int kTop = 80;
const int kRowStep = 52;

// ---- The skin family -------------------------------------------------------------------------------------

struct CGalleryButtonStateSkinDef {
    UINT m_nFaceBitmapId;
    UINT m_nGlyphBitmapId;
};

// One state: the face stretched over the button, the glyph near its leading edge.
class CGalleryButtonStateSkin : public CVuikBaseSkinImpl<CGalleryButtonStateSkin, CGalleryButtonStateSkinDef> {
public:
    CGalleryButtonStateSkin() : m_pFace(nullptr), m_pGlyph(nullptr) { m_SkinDef = CGalleryButtonStateSkinDef{0, 0}; }
    ~CGalleryButtonStateSkin() { Unload(); }

    void Load() override
    {
        Unload();
        if (m_SkinDef.m_nFaceBitmapId)
            CVuikResourceManager::LoadBitmapW(&m_pFace, CVuikLib::GetResourceInstance(), m_SkinDef.m_nFaceBitmapId, 0,
                                              nullptr);
        if (m_SkinDef.m_nGlyphBitmapId)
            CVuikResourceManager::LoadBitmapW(&m_pGlyph, CVuikLib::GetResourceInstance(), m_SkinDef.m_nGlyphBitmapId, 0,
                                              nullptr);
        Validate();
    }
    void Unload() override
    {
        if (m_pFace)
            CVuikResourceManager::UnloadBitmap(&m_pFace);
        if (m_pGlyph)
            CVuikResourceManager::UnloadBitmap(&m_pGlyph);
        m_pFace = m_pGlyph = nullptr;
    }
    void Validate() override
    {
        m_nStatus = StatusValid;
        if ((m_SkinDef.m_nFaceBitmapId && !m_pFace) || (m_SkinDef.m_nGlyphBitmapId && !m_pGlyph))
            m_nStatus = StatusInvalid;
    }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        if (m_pFace)
            graphics->DrawImage(m_pFace, RECT{0, 0, width, height});
        if (m_pGlyph)
            graphics->DrawImage(m_pGlyph, 18, (height - m_pGlyph->GetHeight()) / 2);
    }

private:
    CVuikBitmap* m_pFace;
    CVuikBitmap* m_pGlyph;
};

struct CGalleryButtonSkinDef {
    CGalleryButtonStateSkinDef m_States[kStates];
};

class CGalleryButton;

// The composite: one state skin per state, picked by the control's graphical state.
class CGalleryButtonSkin : public CVuikBaseSkinImpl<CGalleryButtonSkin, CGalleryButtonSkinDef> {
public:
    CGalleryButtonSkin() { UseArt(false); }
    // The light pictures, or the dark theme's.
    void UseArt(bool dark)
    {
        const UINT offset = dark ? IDB_GALLERY_SKIN_DARK_OFFSET : 0;
        const UINT faces[kStates] = {IDB_GALLERY_NORMAL, IDB_GALLERY_HOVER, IDB_GALLERY_PUSHED, IDB_GALLERY_CHECKED,
                                     IDB_GALLERY_DISABLED};
        for (int i = 0; i < kStates; ++i)
            m_SkinDef.m_States[i] = CGalleryButtonStateSkinDef{faces[i] + offset, IDB_GALLERY_ARROW + offset};
        SetSkinDef(m_SkinDef);
    }
    void SetSkinDef(CGalleryButtonSkinDef def) override
    {
        m_SkinDef = def;
        for (int i = 0; i < kStates; ++i)
            m_StateSkins[i].SetSkinDef(def.m_States[i]);
    }
    void Load() override
    {
        for (CGalleryButtonStateSkin& s : m_StateSkins)
            s.Load();
    }
    void Unload() override
    {
        for (CGalleryButtonStateSkin& s : m_StateSkins)
            s.Unload();
    }
    void Validate() override
    {
        for (CGalleryButtonStateSkin& s : m_StateSkins)
            s.Validate();
    }
    bool IsValid() override
    {
        for (CGalleryButtonStateSkin& s : m_StateSkins)
            if (!s.IsValid())
                return false;
        return true;
    }
    void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height) override;

private:
    CGalleryButtonStateSkin m_StateSkins[kStates];
};

class CGalleryButton : public CVuikButtonImpl<CGalleryButtonSkin> {
public:
    explicit CGalleryButton(bool rtl) : m_bRtl(rtl) {}

    using CVuikButtonImpl<CGalleryButtonSkin>::Create;
    HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle) override
    {
        HWND hwnd =
            CVuikWindowImpl<CGalleryButtonSkin>::Create(L"Button", parent, rect, L"", id, style, exStyle, nullptr);
        if (hwnd)
            m_nCtrlId = GetDlgCtrlID(hwnd);
        return hwnd;
    }
    void SizeToContent() override {}
    LRESULT OnPaint(HWND hwnd, UINT, WPARAM, LPARAM) override
    {
        PAINTSTRUCT paint;
        if (!BeginPaint(hwnd, &paint))
            return 0;
        RECT client;
        GetClientRect(hwnd, &client);
        if (SkinIsValid())
            DrawBackBuffer(paint.hdc, client, paint.rcPaint);
        else
            DrawPlaceHolder(paint.hdc);
        EndPaint(hwnd, &paint);
        return 0;
    }
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(m_bRtl);
        CVuikButtonImpl<CGalleryButtonSkin>::CreateBackBuffer(width, height, graphics);
    }

    int GraphicalState() const
    {
        if (m_hWnd && !IsWindowEnabled(m_hWnd))
            return kDisabled;
        if (m_nState & StatePushed)
            return kPushed;
        if (m_nState & StateCheckMask)
            return kChecked;
        return m_bHover ? kHover : kNormal;
    }
    // Shows the hover look without a mouse, for the still picture of the page.
    void ShowHover()
    {
        m_bHover = true;
        Refresh(m_hWnd);
    }

private:
    bool m_bRtl;
};

void CGalleryButtonSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    const CGalleryButton* button = dynamic_cast<CGalleryButton*>(window);
    m_StateSkins[button ? button->GraphicalState() : kNormal].Draw(window, graphics, width, height);
}

// The page's background: a vertical gradient (which looks the same mirrored) with the labels, always built
// left to right so that its text reads.
struct CGalleryPanelSkinDef {
    COLORREF m_crTop;
    COLORREF m_crBottom;
    COLORREF m_crTitle;
    COLORREF m_crText;
    COLORREF m_crNote;
};

class CGalleryPanelSkin : public CVuikBaseSkinImpl<CGalleryPanelSkin, CGalleryPanelSkinDef> {
public:
    CGalleryPanelSkin() { UseColours(false); }
    // A light gradient with dark text, or a dark one a step above the theme's window with the theme's text.
    void UseColours(bool dark)
    {
        m_SkinDef = dark ? CGalleryPanelSkinDef{RGB(45, 51, 60), DkhLoadColor(nullptr, ZGR_COLOR_WINDOW),
                                                DkhLoadColor(nullptr, ZGR_COLOR_ACCENT),
                                                DkhLoadColor(nullptr, ZGR_COLOR_TEXT),
                                                DkhLoadColor(nullptr, ZGR_COLOR_TEXT_DISABLED)}
                         : CGalleryPanelSkinDef{RGB(250, 251, 253), RGB(214, 224, 238), RGB(28, 78, 140),
                                                RGB(60, 60, 60), RGB(90, 90, 90)};
    }
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        HDC dc = *graphics;
        for (int y = 0; y < height; y += 4) {
            const int t = height > 1 ? y * 255 / (height - 1) : 0;
            auto mix = [t](int a, int b) { return (a * (255 - t) + b * t) / 255; };
            HBRUSH brush = CreateSolidBrush(RGB(mix(GetRValue(m_SkinDef.m_crTop), GetRValue(m_SkinDef.m_crBottom)),
                                                mix(GetGValue(m_SkinDef.m_crTop), GetGValue(m_SkinDef.m_crBottom)),
                                                mix(GetBValue(m_SkinDef.m_crTop), GetBValue(m_SkinDef.m_crBottom))));
            const RECT band = {0, y, width, y + 4};
            FillRect(dc, &band, brush);
            DeleteObject(brush);
        }
        HFONT title = SuiteFont(20, FW_BOLD);
        HGDIOBJ old = SelectObject(dc, title);
        SetBkMode(dc, TRANSPARENT);
        Text(dc, kLeftColumn, 16, L"Skinned buttons: a state skin per state, one composite skin", m_SkinDef.m_crTitle);
        SelectObject(dc, old);
        DeleteObject(title);
        HFONT font = SuiteFont(14);
        old = SelectObject(dc, font);
        Text(dc, kLeftColumn, kTop - 24, L"Left to right", m_SkinDef.m_crText);
        Text(dc, kRightColumn, kTop - 24, L"Right to left", m_SkinDef.m_crText);
        for (int i = 0; i < kStates; ++i)
            Text(dc, kLeftColumn + kButtonWidth + 30, kTop + i * kRowStep + 8, kStateNames[i], m_SkinDef.m_crText);
        Text(dc, kLeftColumn, kTop + kStates * kRowStep + 10,
             L"Right to left, each buffer is mirrored whole: the glyph moves to the trailing edge.",
             m_SkinDef.m_crNote);
        Text(dc, kLeftColumn, kTop + kStates * kRowStep + 30, L"Hover a button for its tooltip.", m_SkinDef.m_crNote);
        SelectObject(dc, old);
        DeleteObject(font);
    }
};

class CGalleryPanel : public CVuikWindowImpl<CGalleryPanelSkin> {
public:
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(false);
        CVuikWindowImpl<CGalleryPanelSkin>::CreateBackBuffer(width, height, graphics);
    }
};

// ---- The page ------------------------------------------------------------------------------------------------

class SkinPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Skinned buttons"; }

    void Enter(HWND host) override
    {
        Leave();
        m_host = host;
        // Tips that other controls of the window have already (the frame's caption buttons).
        const int* before =
            static_cast<const int*>(GetPropW(GetAncestor(host, GA_ROOT), L"__DeskHubCVuikTooltipControlCount"));
        m_otherTips = before ? *before : 0;
        // The resource manager shares a picture between skins by module and id, so both sides draw the same
        // pictures: loaded left to right, and turned round with the whole buffer on the right-hand side.
        const bool dark = DarkTheme();
        m_panelSkin.UseColours(dark);
        {
            LayoutScope layout(false);
            for (CGalleryButtonSkin& skin : m_skins) {
                skin.UseArt(dark);
                skin.Load();
            }
        }
        RECT area;
        GetClientRect(host, &area);
        m_panel = std::make_unique<CGalleryPanel>();
        m_panel->SetSkin(&m_panelSkin);
        m_panel->Create(WindowClass(L"ZcmodGallerySkinPanel"), host, area, L"", 1, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, nullptr);
        for (int side = 0; side < 2; ++side)
            for (int i = 0; i < kStates; ++i) {
                auto button = std::make_unique<CGalleryButton>(side == 1);
                const int x = side ? kRightColumn : kLeftColumn;
                const int y = kTop + i * kRowStep;
                button->Create(m_panel->m_hWnd, RECT{x, y, x + kButtonWidth, y + kButtonHeight}, 100 + side * 10 + i,
                               WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_AUTOCHECKBOX, 0);
                button->SetSkin(&m_skins[side]);
                button->SetTooltip((std::wstring(kStateNames[i]) + (side ? L", right to left" : L", left to right") +
                                    L"\nA tip drawn by the library: gradient, suite font, no word wrap")
                                       .c_str());
                switch (i) {
                    case kHover:
                        button->ShowHover();
                        break;
                    case kPushed:
                        SendMessageW(button->m_hWnd, BM_SETSTATE, 1, 0);
                        break;
                    case kChecked:
                        SendMessageW(button->m_hWnd, BM_SETCHECK, 1, 0);
                        break;
                    case kDisabled:
                        EnableWindow(button->m_hWnd, FALSE);
                        break;
                    default:
                        break;
                }
                m_buttons.push_back(std::move(button));
            }
    }

    void Leave() override
    {
        m_buttons.clear();  // each destroys its window
        if (m_panel && m_panel->m_hWnd)
            DestroyWindow(m_panel->m_hWnd);
        m_panel.reset();
        m_host = nullptr;
    }

    void Paint(HDC, const RECT&) override {}  // the panel covers the page

    std::wstring Verify() override
    {
        for (CGalleryButtonSkin& skin : m_skins)
            if (!skin.IsValid())
                return L"a button skin isn't valid: the page's pictures didn't load";
        if (!m_panel || !IsWindow(m_panel->m_hWnd) || m_buttons.size() != 2 * kStates)
            return L"the panel or its buttons weren't created";
        for (const auto& b : m_buttons)
            if (!IsWindow(b->m_hWnd))
                return L"a button window is missing";
        // Every state looks different from every other at the face's middle, on both sides.
        for (int side = 0; side < 2; ++side)
            for (int i = 0; i < kStates; ++i)
                for (int j = i + 1; j < kStates; ++j)
                    if (PixelOf(side, i, kButtonWidth / 2, kButtonHeight / 2) ==
                        PixelOf(side, j, kButtonWidth / 2, kButtonHeight / 2))
                        return Format(L"states %ls and %ls look the same", kStateNames[i], kStateNames[j]);
        // Mirrored: the glyph sits at the leading edge on the left and at the trailing edge on the right.
        const int glyphX = 18 + 6;
        if (PixelOf(0, kNormal, glyphX, kButtonHeight / 2) == PixelOf(1, kNormal, glyphX, kButtonHeight / 2))
            return L"the right-to-left button is not mirrored";
        if (PixelOf(0, kNormal, glyphX, kButtonHeight / 2) !=
            PixelOf(1, kNormal, kButtonWidth - 1 - glyphX, kButtonHeight / 2))
            return L"the right-to-left glyph is not where the mirror puts it";
        HWND top = GetAncestor(m_panel->m_hWnd, GA_ROOT);
        const int* count = static_cast<const int*>(GetPropW(top, L"__DeskHubCVuikTooltipControlCount"));
        if (!GetPropW(top, L"__DeskHubCVuikTooltipControlWindowHandle") || !count ||
            *count != m_otherTips + 2 * kStates)
            return L"the buttons don't share one tooltip window";
        return L"";
    }

private:
    COLORREF PixelOf(int side, int state, int x, int y)
    {
        HWND hwnd = m_buttons[side * kStates + state]->m_hWnd;
        HDC dc = GetDC(hwnd);
        const COLORREF c = GetPixel(dc, x, y);
        ReleaseDC(hwnd, dc);
        return c;
    }

    HWND m_host = nullptr;
    CGalleryButtonSkin m_skins[2];  // left to right, right to left
    CGalleryPanelSkin m_panelSkin;
    std::unique_ptr<CGalleryPanel> m_panel;
    int m_otherTips = 0;
    std::vector<std::unique_ptr<CGalleryButton>> m_buttons;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeSkinPage()
{
    return std::make_unique<SkinPage>();
}
