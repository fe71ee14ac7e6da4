// The step bar's page: a wizard of the kind the suite's applications show to set up a phone, with a step bar
// over its pages and Back and Next buttons (skinned push buttons on the gallery's button face) that move it. The bar reports nothing and checks no bounds: the
// wizard keeps its buttons within the steps, moves the bar and asks it to repaint. A second, smaller bar is a
// static of the page's own taken over with SubclassWindow.
//
// The library registers no window class for the bar: this application registers "StepBar" (CS_GLOBALCLASS,
// so that the library's Create finds it whatever instance it names).
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include <zcmod/VuikGraphics.h>
#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"
#include "art/ButtonArt.h"

using namespace gallery;

namespace {

const wchar_t kPanelClass[] = L"ZcmodGalleryWizardPanel";
const wchar_t kBrushProp[] = L"ZcmodGalleryBrush";
const UINT kBackId = 60;
const UINT kNextId = 61;
const UINT kStepBarId = 62;

struct CPanelSkinDef {
    COLORREF m_crFill;
};

class CPanelSkin : public CVuikBaseSkinImpl<CPanelSkin, CPanelSkinDef> {
public:
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        HBRUSH brush = CreateSolidBrush(m_SkinDef.m_crFill);
        const RECT all = {0, 0, width, height};
        FillRect(*graphics, &all, brush);
        DeleteObject(brush);
    }
};

class CPanel : public CVuikWindowImpl<CPanelSkin> {};

struct Step {
    const wchar_t* title;
    const wchar_t* text;
};
const Step kSteps[] = {
    {L"Connect the phone", L"Attach the phone with its cable, or turn on Bluetooth on the phone and the computer."},
    {L"Choose the phone", L"The phones that answered are listed. Choose the one to set up."},
    {L"What to keep in step", L"Contacts, messages and the calendar are copied both ways each time the phone is attached."},
    {L"Ready", L"The phone is set up. Finish closes the wizard."},
};
const int kStepCount = sizeof(kSteps) / sizeof(kSteps[0]);

LRESULT CALLBACK PanelProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

// A push button drawn left to right in a window that is not mirrored, whatever the page's direction: its face
// is the same both ways round, and its caption reads either way.
class WizardButton : public CVuikButtonCtrl {
public:
    void CreateBackBuffer(int width, int height, CVuikGraphics* graphics) override
    {
        const DWORD layout = CVuikLib::SetLayout(0);
        CVuikButtonCtrl::CreateBackBuffer(width, height, graphics);
        CVuikLib::SetLayout(layout);
    }
};

class WizardPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Step bar"; }

    void Enter(HWND host) override
    {
        Leave();
        Register();
        s_page = this;
        m_text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        m_font = SuiteFont(14);
        m_bold = SuiteFont(16, FW_BOLD);
        m_title = SuiteFont(20, FW_BOLD);
        m_brush = CreateSolidBrush(window);
        LoadButtonSkin(window);

        const DWORD mirrored = CVuikLib::IsLayoutRTL() ? WS_EX_LAYOUTRTL : 0;
        RECT area;
        GetClientRect(host, &area);
        m_panelSkin.SetSkinDef(CPanelSkinDef{window});
        m_panel.SetSkin(&m_panelSkin);
        m_panel.Create(kPanelClass, host, area, L"", 1, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, mirrored, nullptr);
        SetPropW(m_panel.m_hWnd, kBrushProp, m_brush);

        Label(L"Set up a phone", 30, 18, 500, 28, m_title);
        Label(L"A wizard with a step bar: Back and Next move it, and the wizard repaints it.", 30, 46, 620, 20,
              m_font);

        m_bar.Create(m_panel.m_hWnd, RECT{30, 84, 430, 96}, kStepBarId, WS_CHILD | WS_VISIBLE, 0);
        m_bar.SetNumberOfSteps(kStepCount);
        m_bar.SetToolTipText(L"How far the set-up has come");
        m_stepTitle = Label(L"", 30, 112, 500, 24, m_bold);
        m_stepText = Label(L"", 30, 140, 520, 60, m_font);
        m_back = Button(L"< Back", 250, 220, kBackId);
        m_next = Button(L"Next >", 340, 220, kNextId);

        // A smaller bar made of a static: the other way of making one. It shows the wizard's progress too.
        Label(L"The same bar, taken over from a static", 30, 290, 400, 20, m_font);
        HWND plain = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | WS_BORDER, 30, 316, 50, 20,
                                     m_panel.m_hWnd, nullptr, GetModuleHandleW(nullptr), nullptr);
        m_small.SubclassWindow(plain);
        m_small.SetNumberOfSteps(kStepCount);
        // One step in, so that the page shows a filled bar at once.
        Move(+1);
    }

    void Leave() override
    {
        if (m_panel.m_hWnd && IsWindow(m_panel.m_hWnd)) {
            RemovePropW(m_panel.m_hWnd, kBrushProp);
            DestroyWindow(m_panel.m_hWnd);
        }
        m_panel.DeleteBackBuffer();
        m_panel.m_hWnd = m_bar.m_hWnd = m_small.m_hWnd = nullptr;
        m_buttons.clear();
        m_buttonSkin.Unload();
        for (HGDIOBJ* object : {reinterpret_cast<HGDIOBJ*>(&m_font), reinterpret_cast<HGDIOBJ*>(&m_bold),
                                reinterpret_cast<HGDIOBJ*>(&m_title), reinterpret_cast<HGDIOBJ*>(&m_brush)})
            if (*object) {
                DeleteObject(*object);
                *object = nullptr;
            }
        if (s_page == this)
            s_page = nullptr;
    }

    void Paint(HDC, const RECT&) override {}  // the panel covers the page

    std::wstring Verify() override
    {
        if (!IsWindow(m_bar.m_hWnd))
            return L"the step bar wasn't created: is the class \"StepBar\" registered?";
        if (!m_bar.SkinIsValid() || !m_small.SkinIsValid())
            return L"a step bar has no valid skin: the theme's step bar pieces didn't load";
        if (!m_bar.GetBackBuffer())
            return L"the step bar didn't paint with its skin";
        if (m_bar.GetCurrentStep() != 1 || m_small.GetCurrentStep() != 1)
            return Format(L"the bars stand at steps %d and %d, not 1", m_bar.GetCurrentStep(), m_small.GetCurrentStep());
        return L"";
    }

    bool OnCommand(WORD id)
    {
        if (id == kBackId)
            Move(-1);
        else if (id == kNextId)
            Move(+1);
        else
            return false;
        return true;
    }
    COLORREF TextColour() const { return m_text; }

    static WizardPage* s_page;

private:
    static void Register()
    {
        WindowClass(kPanelClass, PanelProc);
        // The application's class of the step bar.
        WindowClass(L"StepBar", DefWindowProcW, CS_GLOBALCLASS);
    }

    // The wizard moves its bars and asks them to repaint; the buttons keep the step within bounds.
    void Move(int delta)
    {
        for (CVuikStepBarCtrl* bar : {&m_bar, &m_small}) {
            if (delta > 0)
                bar->NextStep();
            else
                bar->PreviousStep();
            SendMessageW(bar->m_hWnd, WM_COMMAND, 0, MAKELPARAM(12367, BN_CLICKED));
        }
        const int step = m_bar.GetCurrentStep();
        const Step& shown = kSteps[step > 0 ? (step <= kStepCount ? step - 1 : kStepCount - 1) : 0];
        SetWindowTextW(m_stepTitle, Format(L"Step %d of %d: %ls", step, kStepCount, shown.title).c_str());
        SetWindowTextW(m_stepText, shown.text);
        EnableWindow(m_back, step > 1);
        EnableWindow(m_next, step < kStepCount);
    }

    HWND Label(const wchar_t* text, int x, int y, int w, int h, HFONT font)
    {
        HWND label = CreateWindowExW(0, L"STATIC", text, WS_CHILD | WS_VISIBLE, x, y, w, h, m_panel.m_hWnd, nullptr,
                                     GetModuleHandleW(nullptr), nullptr);
        SendMessageW(label, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        return label;
    }
    // The gallery's three-piece button face (art/buttons.py), light or dark with the theme.
    void LoadButtonSkin(COLORREF window)
    {
        const bool dark = GetRValue(window) + GetGValue(window) + GetBValue(window) < 3 * 128;
        CVuikButtonSkinDef def = CVuikButtonSkin::GetDefaultSkinDef();
        for (int s = 0; s < 4; ++s) {
            CVuikButtonStateSkinDef& d = def.m_States[s];
            const UINT first = IDB_GALLERY_FACE + s * 3 + (dark ? IDB_GALLERY_DARK_OFFSET : 0);
            d.m_nLeftBitmapId = first;
            d.m_nMiddleBitmapId = first + 1;
            d.m_nRightBitmapId = first + 2;
            d.m_nOffsetX = d.m_nOffsetY = s == ButtonPressed ? 1 : 0;
            d.m_crText = DkhLoadColor(nullptr, s == ButtonDisabled ? ZGR_COLOR_TEXT_DISABLED : ZGR_COLOR_TEXT);
            d.m_hFont = m_font;
        }
        // The face is the same both ways round: its pieces are taken as drawn.
        const DWORD layout = CVuikLib::SetLayout(0);
        m_buttonSkin.SetSkinDef(def);
        m_buttonSkin.Load();
        CVuikLib::SetLayout(layout);
    }
    HWND Button(const wchar_t* text, int x, int y, UINT id)
    {
        m_buttons.push_back(std::make_unique<WizardButton>());
        CVuikButtonCtrl& button = *m_buttons.back();
        HWND hwnd = button.Create(m_panel.m_hWnd, RECT{x, y, x + 90, y + 28}, id,
                                  WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, 0);
        // Placed by the mirrored page, drawn unmirrored.
        SetWindowLongPtrW(hwnd, GWL_EXSTYLE, GetWindowLongPtrW(hwnd, GWL_EXSTYLE) & ~static_cast<LONG_PTR>(WS_EX_LAYOUTRTL));
        button.SetSkin(&m_buttonSkin);
        SetWindowTextW(hwnd, text);
        return hwnd;
    }

    CPanelSkin m_panelSkin;
    CPanel m_panel;
    CVuikButtonSkin m_buttonSkin;
    std::vector<std::unique_ptr<CVuikButtonCtrl>> m_buttons;
    CVuikStepBarCtrl m_bar;
    CVuikStepBarCtrl m_small;
    HWND m_stepTitle = nullptr;
    HWND m_stepText = nullptr;
    HWND m_back = nullptr;
    HWND m_next = nullptr;
    COLORREF m_text = 0;
    HFONT m_font = nullptr;
    HFONT m_bold = nullptr;
    HFONT m_title = nullptr;
    HBRUSH m_brush = nullptr;
};

WizardPage* WizardPage::s_page = nullptr;

LRESULT CALLBACK PanelProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLORBTN:
            if (HBRUSH brush = static_cast<HBRUSH>(GetPropW(hwnd, kBrushProp))) {
                HDC dc = reinterpret_cast<HDC>(wParam);
                LOGBRUSH info = {};
                GetObjectW(brush, sizeof(info), &info);
                SetBkColor(dc, info.lbColor);
                SetTextColor(dc, WizardPage::s_page ? WizardPage::s_page->TextColour() : GetSysColor(COLOR_WINDOWTEXT));
                return reinterpret_cast<LRESULT>(brush);
            }
            break;
        case WM_COMMAND:
            if (HIWORD(wParam) == BN_CLICKED && WizardPage::s_page && WizardPage::s_page->OnCommand(LOWORD(wParam)))
                return 0;
            break;
        default:
            break;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

}  // namespace

std::unique_ptr<GalleryPage> MakeWizardPage()
{
    return std::make_unique<WizardPage>();
}
