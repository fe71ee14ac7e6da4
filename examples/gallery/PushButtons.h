// The pages' push buttons: the library's three-piece button (CVuikButtonCtrl) on the gallery's face pictures,
// in the theme's colours, so that no platform-grey button stands on a dark page. Each is a real "Button"
// window: its clicks reach its parent as WM_COMMAND, and BM_CLICK presses it. The button is owner-drawn, so its
// parent must hand it its WM_DRAWITEM, as the library's own windows do: the parents here are plain windows of
// the pages, so each is subclassed for that while it has buttons of this set.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include <zcmod/zcmod.h>

namespace gallery {

// The gallery's three-piece face (art/buttons.py) in the theme in use, each state in the theme's text colour and
// `font`, with `glyph` (0: none) at the caption's left.
CVuikButtonSkinDef FaceSkinDef(HFONT font, UINT glyph);

class PushButtons {
public:
    PushButtons() = default;
    ~PushButtons() { Clear(); }
    PushButtons(const PushButtons&) = delete;
    PushButtons& operator=(const PushButtons&) = delete;

    // A button on `parent`, as high as the face pictures and centred in the box; the skin is loaded for the
    // theme in use with the first button after a Clear.
    HWND Add(HWND parent, const wchar_t* text, int x, int y, int width, int height, int id);
    // Destroys the buttons that are still windows, and forgets the skin.
    void Clear();

private:
    static LRESULT CALLBACK ParentProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                       DWORD_PTR data);

    CVuikButtonSkin m_skin;
    std::vector<HWND> m_parents;
    HFONT m_font = nullptr;
    bool m_loaded = false;
    std::vector<std::unique_ptr<CVuikButtonCtrl>> m_buttons;
};

}  // namespace gallery
