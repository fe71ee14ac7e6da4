// The caption buttons of a drawn window frame: close (alone or beside others), maximise with its restore
// look, minimise, and the application icon. Each is a "Button" window with a fixed command id, three state
// pictures (normal, hover, pressed) and no disabled look. They serve CVuikWindowBackgroundCtrl only.
#pragma once

#include <windows.h>

#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikButtonImpl.h"

struct CVuikCaptionButtonStateSkinDef {
    UINT m_nBitmapId;
};

// One state: its picture at its own size from the top left corner.
class CVuikCaptionButtonStateSkin
    : public CVuikBaseSkinImpl<CVuikCaptionButtonStateSkin, CVuikCaptionButtonStateSkinDef> {
public:
    CVuikCaptionButtonStateSkin();
    virtual ~CVuikCaptionButtonStateSkin();

    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    CVuikBitmap* GetBitmap() const { return m_pBitmap; }

protected:
    CVuikBitmap* m_pBitmap;
};

struct CVuikCaptionButtonSkinDef {
    CVuikCaptionButtonStateSkinDef m_States[3];  // normal, hover, pressed
};

class CVuikCaptionButtonSkin : public CVuikBaseSkinImpl<CVuikCaptionButtonSkin, CVuikCaptionButtonSkinDef> {
public:
    enum { StateNormal = 0, StateHover = 1, StatePressed = 2, StateCount = 3 };

    CVuikCaptionButtonSkin();
    virtual ~CVuikCaptionButtonSkin() {}

    virtual void SetSkinDef(CVuikCaptionButtonSkinDef def);
    virtual void Load();
    virtual void Unload();
    virtual bool IsValid();
    virtual void Validate();
    // Draws the state that the caption button reports; state 0 for any other window.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    CVuikCaptionButtonStateSkin& State(int index) { return m_StateSkins[index]; }

protected:
    CVuikCaptionButtonStateSkin m_StateSkins[StateCount];
};

class CVuikCaptionButtonCtrl : public CVuikButtonImpl<CVuikCaptionButtonSkin> {
    typedef CVuikButtonImpl<CVuikCaptionButtonSkin> Base;

public:
    enum EKind { KindCloseAlone = 0, KindClose = 1, KindMaximize = 2, KindMinimize = 3, KindAppIcon = 4 };

    CVuikCaptionButtonCtrl();
    // Frees the button's own skin (the base destroys the window).
    virtual ~CVuikCaptionButtonCtrl();

    using Base::Create;
    // A "Button" child of `parent` at the top left of `rect` with the kind's command id; its own skin from the
    // theme's graphics module, sized to the normal picture (except the application icon, loaded by the caller).
    virtual HWND Create(HWND parent, int kind, const RECT& rect);
    // The window takes the size of the normal picture.
    virtual void SizeToContent();
    // Pushed and over: pressed; pushed and not over: normal; over: hover; else normal.
    virtual int GetGraphicalState();
    using Base::OnPaint;
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    // Replaces the three pictures by `def` and loads them from the theme's graphics module.
    void LoadDef(const CVuikCaptionButtonSkinDef& def);
    // The same picture id for all three states from `module`.
    void LoadIcon(HINSTANCE module, UINT bitmapId);

    int GetKind() const { return m_nKind; }
    CVuikCaptionButtonSkin* GetOwnSkin() { return &m_Skin; }

    // The default pictures of each kind, and the restore look of the maximise button.
    static CVuikCaptionButtonSkinDef DefaultDef(int kind);
    static const CVuikCaptionButtonSkinDef m_RestoreDef;

protected:
    int m_nKind;
    CVuikCaptionButtonSkin m_Skin;
};
