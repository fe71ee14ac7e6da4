// CVuikCheckButtonCtrl: the suite's check box and radio button, with the mark out of the theme (the common
// graphics module) and the window text beside it in the suite's font. It always takes over a control of a
// dialog; the style says which of the two it is.
//
//   CVuikCheckButtonCtrl remember;
//   remember.SubclassWindow(GetDlgItem(dialog, IDC_REMEMBER));   // BS_AUTOCHECKBOX in the template
//   remember.SetCheck(BST_CHECKED);
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikButtonImpl.h"

class CVuikBitmap;
class CVuikGraphics;

struct CVuikCheckButtonStateSkinDef {
    UINT m_nBitmapId;
    COLORREF m_crText;
};

enum ECheckButtonState {
    CheckUncheckedDisabled = 0,
    CheckUnchecked = 1,
    CheckUncheckedHover = 2,
    CheckCheckedDisabled = 3,
    CheckChecked = 4,
    CheckCheckedHover = 5,
    CheckStateCount = 6
};

enum ECheckButtonLayout { CheckLayoutLeftToRight = 1, CheckLayoutRightToLeft = 2 };

struct CVuikCheckButtonSkinDef {
    CVuikCheckButtonStateSkinDef m_States[CheckStateCount];  // in the order of ECheckButtonState
};

class ZCMOD_API CVuikCheckButtonStateSkin
    : public CVuikBaseSkinImpl<CVuikCheckButtonStateSkin, CVuikCheckButtonStateSkinDef> {
public:
    // Makes the text font ("Zelvo Sans Wide", 14 pixels), registering the suite's fonts first.
    CVuikCheckButtonStateSkin();
    virtual ~CVuikCheckButtonStateSkin();

    // The mark from CVuikLib's resource instance; right to left it follows the layout.
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    // The mark, the text, and the focus rectangle round everything while the button has the focus.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // The mark at (1, 1), at its own size, whatever the layout (a mirrored window moves it to the right).
    void DrawCheck(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // The window text from 4 pixels past the mark to the window's edge.
    void DrawTextW(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    CVuikBitmap* GetBitmap() const { return m_pBitmap; }
    HFONT GetFont() const { return m_hFont; }

protected:
    CVuikBitmap* m_pBitmap;
    HFONT m_hFont;

private:
    CVuikCheckButtonStateSkin(const CVuikCheckButtonStateSkin&);
    CVuikCheckButtonStateSkin& operator=(const CVuikCheckButtonStateSkin&);
};

class ZCMOD_API CVuikCheckButtonSkin : public CVuikBaseSkinImpl<CVuikCheckButtonSkin, CVuikCheckButtonSkinDef> {
public:
    // Starts from m_DefaultCheckSkinDef.
    CVuikCheckButtonSkin();
    virtual ~CVuikCheckButtonSkin();

    virtual void SetSkinDef(CVuikCheckButtonSkinDef def);
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    // All six state skins must be valid.
    virtual bool IsValid();
    // The state skin of the check button's graphical state (state 0 for another window).
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    CVuikCheckButtonStateSkin& GetStateSkin(int state) { return m_StateSkins[state]; }

    // The theme's marks: check boxes 5100-5105, radio buttons 5106-5111; text 0x505050, disabled 0xCECECE.
    static CVuikCheckButtonSkinDef m_DefaultCheckSkinDef;
    static CVuikCheckButtonSkinDef m_DefaultRadioSkinDef;

protected:
    CVuikCheckButtonStateSkin m_StateSkins[CheckStateCount];
};

class ZCMOD_API CVuikCheckButtonCtrl : public CVuikButtonImpl<CVuikCheckButtonSkin> {
    typedef CVuikButtonImpl<CVuikCheckButtonSkin> Base;

public:
    CVuikCheckButtonCtrl();
    // Destroys the window, then the skin it made.
    virtual ~CVuikCheckButtonCtrl();

    using Base::OnPaint;
    using Base::SubclassWindow;
    // Takes over a dialog's button and makes the skin its style asks for: BS_CHECKBOX, BS_AUTOCHECKBOX and
    // BS_AUTO3STATE give check boxes, BS_RADIOBUTTON, BS_3STATE and BS_AUTORADIOBUTTON radio buttons (bit
    // tests of the style); BS_MULTILINE wraps the text. 1 on success.
    virtual BOOL SubclassWindow(HWND hwnd);
    // Fits the window round the mark and the text. A multi-line button is measured in its present width
    // and ends 6 pixels wider each time: that is how it has always behaved.
    virtual void SizeToContent();
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    void SetCheck(int check);
    int GetCheck();
    ECheckButtonLayout GetLayout() const { return m_eLayout; }
    int GetGraphicalState() const { return m_eGraphicalState; }
    bool IsMultiline() const { return m_bMultiline; }

protected:
    int m_eGraphicalState;
    ECheckButtonLayout m_eLayout;
    bool m_bMultiline;
    CVuikCheckButtonSkin* m_pOwnSkin;
};
