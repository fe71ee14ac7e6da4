// CVuikTooltip: a drawn tooltip for any control (gradient background, the suite's font, a size fitted to
// the text, a drop shadow). All the controls of one top-level window share one platform tooltip window, the
// tooltip manager, which lives while at least one of them has a tip. Its handle and a count of registered
// controls are properties of the top-level window.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

#define VUIK_PROP_TOOLTIP_WINDOW L"__DeskHubCVuikTooltipControlWindowHandle"
#define VUIK_PROP_TOOLTIP_COUNT L"__DeskHubCVuikTooltipControlCount"
#define VUIK_PROP_TOOLTIP_CLASS L"__DeskHubCVuikTooltipClassPtr"
#define VUIK_PROP_TOOLTIP_ORGPROC L"__DeskHubCVuikTooltipOrgWinproc"

class ZCMOD_API CVuikTooltip {
public:
    // Makes the tip's font ("Zelvo Sans Wide", height 14, weight 500), registering the suite's fonts first.
    CVuikTooltip();
    virtual ~CVuikTooltip();

    // Sets or replaces the tip of `hwnd`; null text removes it. A control already registered only gets the new
    // text, which the next show asks for.
    void SetTooltip(HWND hwnd, const wchar_t* text);
    // Removes the tip of `hwnd`; the last removal of a top-level window destroys its shared tooltip window.
    void UnregisterToolWindow(HWND hwnd);

    // The procedure put on a registered control: routes the tooltip's notifications to its tip object.
    static LRESULT CALLBACK TooltipNotificationProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    const wchar_t* GetText() const { return m_pszText; }
    HFONT GetFont() const { return m_hFont; }

protected:
    // NM_CUSTOMDRAW: the gradient and the text drawn after the platform has painted nothing.
    virtual LRESULT OnTTNCustomDraw(WPARAM wParam, LPARAM lParam);
    // TTN_SHOW: sizes the tip to the text plus 20 pixels each way, above the cursor near the work area's bottom.
    virtual LRESULT OnTTNShow(WPARAM wParam, LPARAM lParam);
    // TTN_GETDISPINFOW: the present text.
    virtual LRESULT OnTTNGetDispInfo(WPARAM wParam, LPARAM lParam);

    HWND m_hTopLevel;
    HINSTANCE m_hInstance;
    HFONT m_hFont;
    wchar_t* m_pszText;

    // Taken when the library loads (COLORREF); the gradient runs from 0xFFF8F8F8 to 0xFFE7E7E7 (ARGB).
    static COLORREF m_crTextColor;

private:
    bool InitializeTooltipManager(HWND hwnd);
    void DestroyTooltipManager();
    bool RegisterToolWindow(HWND hwnd);

    CVuikTooltip(const CVuikTooltip&);
    CVuikTooltip& operator=(const CVuikTooltip&);
};
