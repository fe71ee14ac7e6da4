// The static family's label and picture control, CVuikStaticCtrl, with its four interchangeable skins:
//   CVuikStaticBitmapSkin    one bitmap, stretched to the control or at its own size;
//   CVuikStaticIconSkin      an icon at the top left;
//   CVuikStaticGradientSkin  a horizontal gradient between two colours;
//   CVuikStaticChromeSkin    a nine-piece frame.
// Without a valid skin the control is a label: it draws its window text, transparent over what its parent
// paints, in the colour given by SetTextColor (0xCECECE when disabled).
//
//   CVuikStaticCtrl label;
//   label.SetTextColor(RGB(32, 38, 46));              // allowed before the window exists
//   label.Create(parent, RECT{10, 10, 210, 30}, 100, WS_CHILD | WS_VISIBLE | SS_CENTER, 0);
//   SetWindowTextW(label.m_hWnd, L"Connected");
#pragma once

#include <windows.h>

#include <cstddef>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikBitmap;

struct CVuikStaticBitmapSkinDef {
    UINT m_nBitmapId;  // 0: none
    int m_bStretch;    // 0: at its own size from (0, 0); else stretched to the control
    int m_bNoMirror;   // non-zero: not mirrored in a right-to-left layout
};

struct CVuikStaticIconSkinDef {
    HINSTANCE m_hInstance;
    const wchar_t* m_pszIconName;  // a name, or an id made with MAKEINTRESOURCEW, as LoadIconW takes it
    void* m_pReserved;             // read by nothing
};

struct CVuikStaticGradientSkinDef {
    COLORREF m_crLeft;   // 0x00BBGGRR
    COLORREF m_crRight;  // 0x00BBGGRR
};

// Nine bitmap ids, in this order.
struct CVuikStaticChromeSkinDef {
    UINT m_nTopLeftId, m_nTopId, m_nTopRightId;
    UINT m_nBottomLeftId, m_nBottomId, m_nBottomRightId;
    UINT m_nLeftId, m_nCenterId, m_nRightId;
};

// One bitmap. Valid only when the bitmap loaded: a def with id 0 is not valid.
class ZCMOD_API CVuikStaticBitmapSkin : public CVuikBaseSkinImpl<CVuikStaticBitmapSkin, CVuikStaticBitmapSkinDef> {
public:
    CVuikStaticBitmapSkin();
    virtual ~CVuikStaticBitmapSkin();

    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    CVuikBitmap* GetBitmap() const { return m_pBitmap; }

    // Replaces the def that skins constructed from now on start with.
    static void SetDefaultSkinDef(CVuikStaticBitmapSkinDef def);
    static CVuikStaticBitmapSkinDef m_DefaultSkinDef;

protected:
    CVuikBitmap* m_pBitmap;
};

// An icon of a module, drawn at (0, 0). Always valid; without an icon it draws nothing.
class ZCMOD_API CVuikStaticIconSkin : public CVuikBaseSkinImpl<CVuikStaticIconSkin, CVuikStaticIconSkinDef> {
public:
    CVuikStaticIconSkin();
    virtual ~CVuikStaticIconSkin();

    // Loads the icon and keeps a copy of its own, which Unload destroys.
    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    HICON GetIcon() const { return m_hIcon; }

    static void SetDefaultSkinDef(CVuikStaticIconSkinDef def);
    static CVuikStaticIconSkinDef m_DefaultSkinDef;

protected:
    HICON m_hIcon;
};

// A horizontal gradient, one solid column per pixel (see controls/core/StaticLayout.h for the colours of
// the columns, which for a left colour numerically above the right one wrap round on purpose). Two equal
// colours fill the whole. Always valid; Load and Unload do nothing.
class ZCMOD_API CVuikStaticGradientSkin
    : public CVuikBaseSkinImpl<CVuikStaticGradientSkin, CVuikStaticGradientSkinDef> {
public:
    CVuikStaticGradientSkin();
    virtual ~CVuikStaticGradientSkin();

    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    static void SetDefaultSkinDef(CVuikStaticGradientSkinDef def);
    static CVuikStaticGradientSkinDef m_DefaultSkinDef;
};

// A nine-piece frame: corners at their own size, edges and centre stretched between them. The pieces are
// never mirrored as they load. Valid only when all nine loaded.
class ZCMOD_API CVuikStaticChromeSkin : public CVuikBaseSkinImpl<CVuikStaticChromeSkin, CVuikStaticChromeSkinDef> {
public:
    enum { PieceCount = 9 };

    CVuikStaticChromeSkin();
    virtual ~CVuikStaticChromeSkin();

    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    static void SetDefaultSkinDef(CVuikStaticChromeSkinDef def);
    static CVuikStaticChromeSkinDef m_DefaultSkinDef;

protected:
    // In the order of the def's ids.
    CVuikBitmap* m_pBitmaps[PieceCount];
};

// A label, or a picture when a valid skin is attached. Any of the four static skins may be attached.
//
// The text colour does not live in the object: a process-wide map goes from the object's address to its
// colour, so SetTextColor works before the window exists. An absent entry reads as black. The entry stays
// when the window goes (an object made later at the same address finds it), and the map belongs to the
// thread of the controls: it is not locked.
class ZCMOD_API CVuikStaticCtrl : public CVuikWindowImpl<CVuikStaticBitmapSkin> {
    typedef CVuikWindowImpl<CVuikStaticBitmapSkin> Base;

public:
    enum EVerticalAlignment { VA_TOP = 0, VA_BOTTOM = 1, VA_CENTER = 2 };

    CVuikStaticCtrl();
    // Deletes the hollow brush if the window never got WM_DESTROY; the window itself is not destroyed.
    virtual ~CVuikStaticCtrl();

    // A window of class "Static" with the given style, taken over; its text is set afterwards.
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle);
    // SubclassWindow (the base's) takes over an existing window and leaves its style as it is.

    // Attaches any static skin (or none). Not owned; nothing is repainted.
    virtual void SetSkin(CVuikStaticBitmapSkin* skin);
    void SetSkin(CVuikBaseSkin* skin);
    void SetSkin(std::nullptr_t) { SetSkin(static_cast<CVuikBaseSkin*>(nullptr)); }
    CVuikBaseSkin* GetStaticSkin() const { return m_pStaticSkin; }
    virtual bool SkinIsValid();
    virtual void Draw(CVuikGraphics* graphics, int width, int height);

    // None of these three repaints.
    void SetTextColor(COLORREF colour);
    // Replaces the two low style bits (SS_LEFT, SS_CENTER, SS_RIGHT) with `align`.
    void SetTextAlignment(DWORD align);
    void SetVerticalAlignment(EVerticalAlignment alignment) { m_eVerticalAlignment = alignment; }
    EVerticalAlignment GetVerticalAlignment() const { return m_eVerticalAlignment; }

    // The height of the window text laid out as a paint lays it out, over the client rectangle, in the
    // window's font.
    int GetTextHeight();

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    using Base::OnPaint;

protected:
    virtual HWND Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                        DWORD style, DWORD exStyle, LPVOID param);
    virtual LRESULT OnDestroy(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Asks the parent for what lies under the window (WM_VUIK_REPAINT on the erase context).
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // A child asks for what lies under it: the piece of this control's buffer, when a skin is attached.
    virtual LRESULT OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // Transparent background and this control's text colour for a static child; the hollow brush.
    virtual LRESULT OnCtlColor(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    HBRUSH m_hBrush;
    EVerticalAlignment m_eVerticalAlignment;

private:
    COLORREF TextColour() const;
    // The skin as its interface: any of the four. m_pSkin holds it too when it is a bitmap skin.
    CVuikBaseSkin* m_pStaticSkin;
};
