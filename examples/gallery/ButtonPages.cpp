// Two pages of buttons, each control in every state, left to right and right to left side by side, with
// tooltips, on a panel of the theme's window colour:
//   "Button family"            CVuikButtonCtrl and CVuikButtonCtrl2 on the gallery's own three-piece face,
//                              with a glyph, a frame animation and a button sized to its caption;
//   "Common and check buttons" the theme's icon buttons in three sizes and seven looks with the gallery's
//                              icons, and the check box and radio button in their six looks.
// The pictures are the gallery's resources (art/buttons.py), in a light and a dark variant for the theme.
//
// The library's layout flag is process-wide and read when a picture loads and when a buffer is built; to show
// both directions at once, each control here loads and builds under the layout of its side (an application
// sets the layout once, before its first skin loads).
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include <zcmod/VuikGraphics.h>
#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "PushButtons.h"
#include "art/ButtonArt.h"

using namespace gallery;

namespace {

const int kLeftColumn = 30;
const int kRightColumn = 480;

UINT Art(UINT id) { return id + (DarkTheme() ? IDB_GALLERY_DARK_OFFSET : 0); }

// ---- The panel: the theme's window colour and the page's labels, always built left to right --------------

struct PanelLabel {
    int x, y;
    std::wstring text;
    bool title;
};

struct CButtonPanelSkinDef {
    const std::vector<PanelLabel>* m_pLabels;
};

class CButtonPanelSkin : public CVuikBaseSkinImpl<CButtonPanelSkin, CButtonPanelSkinDef> {
public:
    CButtonPanelSkin() { m_SkinDef.m_pLabels = nullptr; }
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        HDC dc = *graphics;
        HBRUSH brush = CreateSolidBrush(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW));
        const RECT all = {0, 0, width, height};
        FillRect(dc, &all, brush);
        DeleteObject(brush);
        if (!m_SkinDef.m_pLabels)
            return;
        SetBkMode(dc, TRANSPARENT);
        HFONT title = SuiteFont(20, FW_BOLD);
        HFONT text = SuiteFont(14);
        for (const PanelLabel& label : *m_SkinDef.m_pLabels) {
            HGDIOBJ old = SelectObject(dc, label.title ? title : text);
            Text(dc, label.x, label.y, label.text,
                 DkhLoadColor(nullptr, label.title ? ZGR_COLOR_ACCENT : ZGR_COLOR_TEXT));
            SelectObject(dc, old);
        }
        DeleteObject(title);
        DeleteObject(text);
    }
};

class CButtonPanel : public CVuikWindowImpl<CButtonPanelSkin> {
public:
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(false);
        CVuikWindowImpl<CButtonPanelSkin>::CreateBackBuffer(width, height, graphics);
    }
};

// What both pages share: the panel, the labels and the check of the shared tooltip window.
class ButtonPageBase : public GalleryPage {
public:
    void Leave() override
    {
        Clear();
        if (m_panel && m_panel->m_hWnd)
            DestroyWindow(m_panel->m_hWnd);
        m_panel.reset();
        m_labels.clear();
    }
    void Paint(HDC, const RECT&) override {}  // the panel covers the page

protected:
    virtual void Clear() = 0;

    int m_otherTips = 0;

    HWND MakePanel(HWND host)
    {
        // Tips that other controls of the window have already (the frame's caption buttons).
        const int* others =
            static_cast<const int*>(GetPropW(GetAncestor(host, GA_ROOT), L"__DeskHubCVuikTooltipControlCount"));
        m_otherTips = others ? *others : 0;
        RECT area;
        GetClientRect(host, &area);
        m_panelSkin.SetSkinDef(CButtonPanelSkinDef{&m_labels});
        m_panel = std::make_unique<CButtonPanel>();
        m_panel->SetSkin(&m_panelSkin);
        return m_panel->Create(WindowClass(L"ZcmodGalleryButtonPanel"), host, area, L"", 1, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, nullptr);
    }
    void Label(int x, int y, const std::wstring& text, bool title = false) { m_labels.push_back({x, y, text, title}); }
    std::wstring CheckTooltips(int expected)
    {
        HWND top = GetAncestor(m_panel->m_hWnd, GA_ROOT);
        const int* count = static_cast<const int*>(GetPropW(top, L"__DeskHubCVuikTooltipControlCount"));
        if (!GetPropW(top, L"__DeskHubCVuikTooltipControlWindowHandle") || !count || *count != m_otherTips + expected)
            return Format(L"expected %d controls on the shared tooltip window", expected);
        return L"";
    }
    static COLORREF PixelOf(HWND hwnd, int x, int y)
    {
        HDC dc = GetDC(hwnd);
        const COLORREF c = GetPixel(dc, x, y);
        ReleaseDC(hwnd, dc);
        return c;
    }

    std::vector<PanelLabel> m_labels;
    CButtonPanelSkin m_panelSkin;
    std::unique_ptr<CButtonPanel> m_panel;
};

// ---- Button family ---------------------------------------------------------------------------------------

class GalleryButton : public CVuikButtonCtrl {
public:
    explicit GalleryButton(bool rtl) : m_bRtl(rtl) {}
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(m_bRtl);
        CVuikButtonCtrl::CreateBackBuffer(width, height, graphics);
    }
    void ShowHover()
    {
        m_bHover = true;
        InvalidateRect(m_hWnd, nullptr, TRUE);
    }

private:
    bool m_bRtl;
};

class GalleryButton2 : public CVuikButtonCtrl2 {
public:
    explicit GalleryButton2(bool rtl) : m_bRtl(rtl) {}
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(m_bRtl);
        CVuikButtonCtrl2::CreateBackBuffer(width, height, graphics);
    }

private:
    bool m_bRtl;
};

enum { kPush, kHover, kPressed, kChecked, kDisabled, kDisabledChecked, kRows };
const wchar_t* const kRowNames[kRows] = {L"Normal",  L"Hover (tracked mouse)", L"Pressed",
                                         L"Checked (a check button)", L"Disabled", L"Disabled and checked: Disabled"};

class ButtonFamilyPage : public ButtonPageBase {
public:
    const wchar_t* Title() const override { return L"Button family"; }

    void Enter(HWND host) override
    {
        Leave();
        m_font = SuiteFont(14);
        const CVuikButtonSkinDef def = FaceSkinDef(m_font, IDB_GALLERY_GLYPH);
        CVuikButtonSkinDef animated = def;
        animated.m_States[ButtonNormal].m_nFirstFrameId = Art(IDB_GALLERY_SPINNER_FIRST);
        animated.m_States[ButtonNormal].m_nLastFrameId = Art(IDB_GALLERY_SPINNER_LAST);
        animated.m_States[ButtonNormal].m_nFrameTime = 150;
        {
            LayoutScope layout(false);
            m_skin.SetSkinDef(def);
            m_skin.Load();
            m_animated.SetSkinDef(animated);
            m_animated.Load();
        }
        MakePanel(host);
        Label(kLeftColumn, 16, L"Button family: CVuikButtonCtrl and CVuikButtonCtrl2 on a three-piece skin", true);
        Label(kLeftColumn, 52, L"Left to right");
        Label(kRightColumn, 52, L"Right to left");
        const int top = 80, step = 40, width = 170, height = 28;
        for (int side = 0; side < 2; ++side) {
            const int x = side ? kRightColumn : kLeftColumn;
            for (int row = 0; row < kRows; ++row) {
                auto button = std::make_unique<GalleryButton>(side == 1);
                const bool check = row == kChecked || row == kDisabledChecked;
                HWND hwnd = button->Create(m_panel->m_hWnd, RECT{x, top + row * step, x + width, top + row * step + height},
                                           100 + side * 20 + row,
                                           WS_CHILD | WS_VISIBLE | WS_TABSTOP | (check ? BS_AUTOCHECKBOX : BS_PUSHBUTTON),
                                           side ? WS_EX_LAYOUTRTL : 0);
                button->SetSkin(&m_skin);
                SetWindowTextW(hwnd, check ? L"Keep a copy" : L"Send");
                button->SetToolTipText((std::wstring(kRowNames[row]) + (side ? L", right to left" : L", left to right"))
                                           .c_str());
                if (row == kHover)
                    button->ShowHover();
                if (row == kPressed)
                    SendMessageW(hwnd, BM_SETSTATE, 1, 0);
                if (check)
                    SendMessageW(hwnd, BM_SETCHECK, 1, 0);
                if (row == kDisabled || row == kDisabledChecked)
                    EnableWindow(hwnd, FALSE);
                m_buttons.push_back(std::move(button));
            }
            // A button sized to its caption, and one with a frame animation in its Normal state.
            auto sized = std::make_unique<GalleryButton2>(side == 1);
            const int y = top + kRows * step;
            HWND hwnd = sized->Create(m_panel->m_hWnd, RECT{x, y, x + 60, y + 10}, 140 + side,
                                      WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, side ? WS_EX_LAYOUTRTL : 0);
            sized->SetSkin(&m_skin);
            SetWindowTextW(hwnd, L"Sized to this caption");
            sized->SizeToContent(CVuikButtonCtrl2::SizeHeight | CVuikButtonCtrl2::SizeWidth, -1);
            sized->SetToolTipText(L"CVuikButtonCtrl2::SizeToContent(height | width)");
            m_sized.push_back(std::move(sized));
            auto spinner = std::make_unique<GalleryButton>(side == 1);
            hwnd = spinner->Create(m_panel->m_hWnd, RECT{x, y + step, x + width, y + step + height}, 150 + side,
                                   WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, side ? WS_EX_LAYOUTRTL : 0);
            spinner->SetSkin(&m_animated);
            SetWindowTextW(hwnd, L"Connecting");
            spinner->SetToolTipText(L"Four frames, 150 ms apart");
            m_buttons.push_back(std::move(spinner));
        }
        for (int row = 0; row < kRows; ++row)
            Label(kLeftColumn + width + 20, top + row * step + 6, kRowNames[row]);
        Label(kLeftColumn + width + 20, top + kRows * step + 6, L"CVuikButtonCtrl2, sized");
        Label(kLeftColumn + width + 20, top + (kRows + 1) * step + 6, L"Frame animation");
        Label(kLeftColumn, top + (kRows + 2) * step + 10,
              L"Right to left: windows with WS_EX_LAYOUTRTL, as a right-to-left application has them. Each buffer is");
        Label(kLeftColumn, top + (kRows + 2) * step + 30,
              L"mirrored whole and the window turns it back on the screen, so faces read as drawn. Hover for tips.");
    }

    std::wstring Verify() override
    {
        if (!m_skin.IsValid() || !m_animated.IsValid())
            return L"a button skin isn't valid: the gallery's pictures didn't load";
        for (const auto& b : m_buttons)
            if (!IsWindow(b->m_hWnd) || !IsWindow(b->GetToolTipWindow()))
                return L"a button or its tooltip window is missing";
        // Normal, hover, pressed and disabled look different at the face's middle.
        const int rows[] = {kPush, kHover, kPressed, kDisabled};
        for (int i = 0; i < 4; ++i)
            for (int j = i + 1; j < 4; ++j)
                if (PixelOf(m_buttons[rows[i]]->m_hWnd, 120, 4) == PixelOf(m_buttons[rows[j]]->m_hWnd, 120, 4))
                    return Format(L"rows %ls and %ls look the same", kRowNames[rows[i]], kRowNames[rows[j]]);
        if (m_buttons[kDisabledChecked]->GetState() != ButtonDisabled)
            return L"a disabled checked button isn't drawn disabled";
        return L"";
    }

protected:
    void Clear() override
    {
        m_buttons.clear();
        m_sized.clear();
        m_skin.Unload();
        m_animated.Unload();
        if (m_font)
            DeleteObject(m_font);
        m_font = nullptr;
    }

private:
    HFONT m_font = nullptr;
    CVuikButtonSkin m_skin, m_animated;
    std::vector<std::unique_ptr<GalleryButton>> m_buttons;
    std::vector<std::unique_ptr<GalleryButton2>> m_sized;
};

// ---- Common and check buttons ------------------------------------------------------------------------------

class GalleryCommonButton : public CVuikCommonButtonCtrl {
public:
    GalleryCommonButton(bool rtl, int state) : m_bRtl(rtl), m_nShown(state) {}
    // The look to show, whatever the mouse does: the page is a still picture of every state.
    int GetGraphicalState() override { return m_nShown; }
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(m_bRtl);
        CVuikCommonButtonCtrl::CreateBackBuffer(width, height, graphics);
    }

private:
    bool m_bRtl;
    int m_nShown;
};

class GalleryCheckButton : public CVuikCheckButtonCtrl {
public:
    explicit GalleryCheckButton(bool rtl) : m_bRtl(rtl) {}
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        LayoutScope layout(m_bRtl);
        CVuikCheckButtonCtrl::CreateBackBuffer(width, height, graphics);
    }
    void ShowHover()
    {
        m_bHover = true;
        InvalidateRect(m_hWnd, nullptr, TRUE);
    }

private:
    bool m_bRtl;
};

const wchar_t* const kCommonStates[CommonStateCount] = {L"Disabled", L"Normal", L"Hover", L"Pressed",
                                                       L"Focused", L"Focused hover", L"Focused pressed"};
const wchar_t* const kCheckStates[CheckStateCount] = {L"Unchecked, disabled", L"Unchecked", L"Unchecked, hover",
                                                     L"Checked, disabled",   L"Checked",   L"Checked, hover"};

class CommonCheckPage : public ButtonPageBase {
public:
    const wchar_t* Title() const override { return L"Common and check buttons"; }

    void Enter(HWND host) override
    {
        Leave();
        m_host = host;
        Label(kLeftColumn, 16, L"CVuikCommonButtonCtrl in three sizes, CVuikCheckButtonCtrl: the theme's pictures", true);
        Label(kLeftColumn, 48, L"Left to right");
        Label(kRightColumn, 48, L"Right to left");
        MakePanel(host);
        const struct {
            ECommonButtonSize size;
            UINT icon;
            int noMirror;
            const wchar_t* what;
        } rows[] = {
            {CommonButtonSmall, IDB_GALLERY_ICON_CLOSE, 0, L"small, close"},
            {CommonButtonMedium, IDB_GALLERY_ICON_PLUS, 0, L"medium, plus"},
            {CommonButtonLarge, IDB_GALLERY_ICON_ARROW, 0, L"large, arrow, noMirror 0: shown as drawn"},
            {CommonButtonLarge, IDB_GALLERY_ICON_ARROW_FIXED, 1, L"large, arrow, noMirror 1: follows the layout"},
        };
        const int top = 72, step = 48, cell = 48;
        for (int side = 0; side < 2; ++side)
            for (int s = 0; s < CommonStateCount; ++s)
                Label((side ? kRightColumn : kLeftColumn) + s * cell + 16, top + 4 * step - 6, std::to_wstring(s));
        Label(kLeftColumn, top + 4 * step + 14,
              L"0 disabled, 1 normal, 2 hover, 3 pressed, 4 focused, 5 focused hover, 6 focused pressed. Hover for tips.");
        Label(kRightColumn, top + 4 * step + 34, L"Windows with WS_EX_LAYOUTRTL turn the mirrored buffers back:");
        Label(kRightColumn, top + 4 * step + 52, L"the arrow with noMirror 1 (last row) follows the layout.");
        for (int side = 0; side < 2; ++side) {
            const int x0 = side ? kRightColumn : kLeftColumn;
            for (int r = 0; r < 4; ++r) {
                // Left to right the kept arrow is the plain one: a picture is shared by module, id and mirror
                // flag, and the right-to-left kept arrow must load under its own layout.
                const UINT icon = (side == 0 && rows[r].noMirror) ? IDB_GALLERY_ICON_ARROW : rows[r].icon;
                for (int s = 0; s < CommonStateCount; ++s) {
                    auto button = std::make_unique<GalleryCommonButton>(side == 1, s);
                    const int x = x0 + s * cell, y = top + r * step;
                    LayoutScope layout(side == 1);
                    HWND hwnd = button->Create(m_panel->m_hWnd, RECT{x, y, x + 40, y + 40}, 200 + side * 40 + r * 8 + s,
                                               WS_CHILD | WS_VISIBLE | WS_TABSTOP, side ? WS_EX_LAYOUTRTL : 0,
                                               rows[r].size);
                    button->SetButtonIcon(Art(icon), static_cast<UINT>(-1), rows[r].noMirror);
                    if (s == CommonDisabled)
                        EnableWindow(hwnd, FALSE);
                    button->SetTooltip((std::wstring(kCommonStates[s]) + L", " + rows[r].what).c_str());
                    m_common.push_back(std::move(button));
                }
            }
        }

        // The library's check and radio text is dark grey, made for a light window: on a dark theme the
        // application gives the theme's text colours, as it may for any def.
        static const CVuikCheckButtonSkinDef libraryCheck = CVuikCheckButtonSkin::m_DefaultCheckSkinDef;
        static const CVuikCheckButtonSkinDef libraryRadio = CVuikCheckButtonSkin::m_DefaultRadioSkinDef;
        CVuikCheckButtonSkin::m_DefaultCheckSkinDef = libraryCheck;
        CVuikCheckButtonSkin::m_DefaultRadioSkinDef = libraryRadio;
        if (DarkTheme())
            for (int s = 0; s < CheckStateCount; ++s) {
                const bool disabled = s == CheckUncheckedDisabled || s == CheckCheckedDisabled;
                const COLORREF text = DkhLoadColor(nullptr, disabled ? ZGR_COLOR_TEXT_DISABLED : ZGR_COLOR_TEXT);
                CVuikCheckButtonSkin::m_DefaultCheckSkinDef.m_States[s].m_crText = text;
                CVuikCheckButtonSkin::m_DefaultRadioSkinDef.m_States[s].m_crText = text;
            }
        const int checkTop = top + 4 * step + 80, checkStep = 26;
        for (int side = 0; side < 2; ++side) {
            const int x0 = side ? kRightColumn : kLeftColumn;
            for (int kind = 0; kind < 2; ++kind)
                for (int s = 0; s < CheckStateCount; ++s) {
                    const int x = x0 + kind * 210, y = checkTop + s * checkStep;
                    // Each radio button is a group of its own, so that the checked ones stay checked.
                    HWND native = CreateWindowExW(side ? WS_EX_LAYOUTRTL : 0, L"Button",
                                                  kind ? L"Radio button" : L"Check box",
                                                  WS_CHILD | WS_VISIBLE | WS_TABSTOP |
                                                      (kind ? BS_AUTORADIOBUTTON | WS_GROUP : BS_AUTOCHECKBOX),
                                                  x, y, 190, 20, m_panel->m_hWnd,
                                                  reinterpret_cast<HMENU>(static_cast<UINT_PTR>(400 + side * 40 + kind * 10 + s)),
                                                  GetModuleHandleW(nullptr), nullptr);
                    auto check = std::make_unique<GalleryCheckButton>(side == 1);
                    {
                        LayoutScope layout(side == 1);
                        check->SubclassWindow(native);
                    }
                    check->SetCheck(s >= CheckCheckedDisabled ? BST_CHECKED : BST_UNCHECKED);
                    if (s % 3 == 0)
                        EnableWindow(native, FALSE);
                    if (s % 3 == 2)
                        check->ShowHover();
                    check->SetTooltip(kCheckStates[s]);
                    m_checks.push_back(std::move(check));
                }
            HWND multi = CreateWindowExW(side ? WS_EX_LAYOUTRTL : 0, L"Button",
                                         L"A multi-line check box wraps its text and grows with each measure",
                                         WS_CHILD | WS_VISIBLE | BS_AUTOCHECKBOX | BS_MULTILINE, x0,
                                         checkTop + CheckStateCount * checkStep + 6, 200, 20, m_panel->m_hWnd,
                                         reinterpret_cast<HMENU>(static_cast<UINT_PTR>(490 + side)),
                                         GetModuleHandleW(nullptr), nullptr);
            auto check = std::make_unique<GalleryCheckButton>(side == 1);
            {
                LayoutScope layout(side == 1);
                check->SubclassWindow(multi);
            }
            check->SetTooltip(L"BS_MULTILINE");
            m_checks.push_back(std::move(check));
        }
    }

    std::wstring Verify() override
    {
        for (const auto& b : m_common)
            if (!IsWindow(b->m_hWnd) || !b->SkinIsValid())
                return L"a common button has no valid skin: the theme's pictures didn't load";
        for (const auto& c : m_checks)
            if (!IsWindow(c->m_hWnd) || !c->SkinIsValid())
                return L"a check button has no valid skin: the theme's pictures didn't load";
        // The seven looks of one size differ at the face's top edge.
        for (int i = 0; i < CommonStateCount; ++i)
            for (int j = i + 1; j < CommonStateCount; ++j)
                if (PixelOf(m_common[2 * CommonStateCount + i]->m_hWnd, 20, 1) ==
                        PixelOf(m_common[2 * CommonStateCount + j]->m_hWnd, 20, 1) &&
                    PixelOf(m_common[2 * CommonStateCount + i]->m_hWnd, 20, 20) ==
                        PixelOf(m_common[2 * CommonStateCount + j]->m_hWnd, 20, 20))
                    return Format(L"common states %d and %d look the same", i, j);
        return CheckTooltips(static_cast<int>(m_common.size() + m_checks.size()));
    }

protected:
    void Clear() override
    {
        m_common.clear();
        m_checks.clear();
    }

private:
    HWND m_host = nullptr;
    std::vector<std::unique_ptr<GalleryCommonButton>> m_common;
    std::vector<std::unique_ptr<GalleryCheckButton>> m_checks;
};

}  // namespace

std::unique_ptr<GalleryPage> MakeButtonFamilyPage()
{
    return std::make_unique<ButtonFamilyPage>();
}

std::unique_ptr<GalleryPage> MakeCommonCheckButtonsPage()
{
    return std::make_unique<CommonCheckPage>();
}
