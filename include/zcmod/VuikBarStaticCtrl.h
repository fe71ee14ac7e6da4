// CVuikBarStaticCtrl: a three-piece bar, horizontal or vertical, that other controls may sit on. Across,
// the start and end pieces stand at the ends and the middle piece is tiled between them at its own size;
// downwards, the middle piece is stretched instead. A missing piece leaves its place to what the parent
// paints.
//
//   CVuikBarStaticSkinDef def = {1, IDB_BAR_LEFT, IDB_BAR_MIDDLE, IDB_BAR_RIGHT};
//   CVuikBarStaticSkin skin; skin.SetSkinDef(def); skin.Load();
//   CVuikBarStaticCtrl bar; bar.Create(parent, RECT{0, 0, 400, 0}, 102, WS_CHILD | WS_VISIBLE, 0);
//   bar.SetSkin(&skin); bar.SizeToContent();   // takes the pieces' height
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikWindowImpl.h"

class CVuikBitmap;

struct CVuikBarStaticSkinDef {
    int m_bHorizontal;        // 0 vertical, non-zero horizontal
    UINT m_nStartBitmapId;    // left or top piece
    UINT m_nMiddleBitmapId;   // the repeating piece
    UINT m_nEndBitmapId;      // right or bottom piece
};

// The three pieces, never mirrored as they load. Invalid when a non-zero id has no bitmap.
class ZCMOD_API CVuikBarStaticSkin : public CVuikBaseSkinImpl<CVuikBarStaticSkin, CVuikBarStaticSkinDef> {
public:
    CVuikBarStaticSkin();
    virtual ~CVuikBarStaticSkin();

    virtual void Load();
    virtual void Unload();
    virtual void Validate();
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);

    bool IsHorizontal() const { return m_SkinDef.m_bHorizontal != 0; }
    // The largest width and height of the pieces that loaded.
    SIZE GetLargestPiece() const;

    static void SetDefaultSkinDef(CVuikBarStaticSkinDef def);
    static CVuikBarStaticSkinDef m_DefaultSkinDef;

protected:
    CVuikBitmap* m_pStart;
    CVuikBitmap* m_pMiddle;
    CVuikBitmap* m_pEnd;
};

class ZCMOD_API CVuikBarStaticCtrl : public CVuikWindowImpl<CVuikBarStaticSkin> {
    typedef CVuikWindowImpl<CVuikBarStaticSkin> Base;

public:
    CVuikBarStaticCtrl();

    // A "Static" window, owner-drawn (SS_OWNERDRAW is added to `style`), taken over.
    virtual HWND Create(HWND parent, const RECT& rect, UINT id, DWORD style, DWORD exStyle);
    // Takes over an existing window; unlike Create, it clears the SS_OWNERDRAW bits and adds WS_CLIPSIBLINGS.
    virtual BOOL SubclassWindow(HWND window);

    // Across, the window takes the pieces' largest height; downwards, their largest width. The other side
    // stays as it is.
    virtual void SizeToContent();

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    using Base::OnPaint;

protected:
    virtual HWND Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                        DWORD style, DWORD exStyle, LPVOID param);
    // Paints nothing: the buffer covers the window.
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnSize(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    // A child asks for what lies under it: the piece of the bar's buffer, when the skin is valid.
    virtual LRESULT OnRepaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
};
