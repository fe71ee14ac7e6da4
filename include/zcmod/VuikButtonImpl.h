// CVuikButtonImpl<Skin>: what every clickable skinned control shares: capture, hover, focus, keyboard, check
// and pressed state, and a tooltip. Header-only: applications instantiate it for skins of their own; a
// concrete control supplies OnPaint and SizeToContent and sets m_nCtrlId.
//
// m_nState follows the platform's button state word: bits 0 and 1 the check value (0, 1, 2), 4 pushed,
// 8 focus. Hover ends with a TME_LEAVE request (user32's TrackMouseEvent, which comctl32's _TrackMouseEvent
// forwards to). Every change of look drops the back buffer and invalidates the window with erase ("refresh").
// A click posts WM_COMMAND with the low 16 bits of m_nCtrlId to the parent, so that the parent sees the
// final check value.
#pragma once

#include <windows.h>

#include "zcmod/VuikTooltip.h"
#include "zcmod/VuikWindowImpl.h"

template <class Skin>
class CVuikButtonImpl : public CVuikWindowImpl<Skin> {
    typedef CVuikWindowImpl<Skin> Base;

public:
    enum : LONGLONG { StateCheckMask = 3, StatePushed = 4, StateFocus = 8 };

    CVuikButtonImpl() : m_nState(0), m_nCtrlId(0), m_bHover(false), m_bTracking(false)
    {
        this->m_pfnWindowProc = WindowProc;
    }

    // Destroys the window if it still exists, then releases the buffer; the tooltip lets its text and font go.
    virtual ~CVuikButtonImpl()
    {
        if (this->m_hWnd && IsWindow(this->m_hWnd))
            DestroyWindow(this->m_hWnd);
        this->DeleteBackBuffer();
    }

    using Base::Create;
    using Base::OnPaint;

    virtual void SizeToContent() = 0;
    // For concrete controls to replace: the base form creates nothing.
    virtual HWND Create(HWND, const RECT&, UINT, DWORD, DWORD) { return nullptr; }

    // Sets the bits of `flag` when `on` and not all of them are set; clears them when all are set and not `on`.
    virtual void SetStateFlag(LONGLONG flag, int on)
    {
        const bool all = (m_nState & flag) == flag;
        if (all && !on)
            m_nState &= ~flag;
        else if (!all && on)
            m_nState |= flag;
    }

    virtual LRESULT OnPaint(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) = 0;

    // The button's background comes from its parent at once: its buffer is dropped and the parent paints the
    // piece under it on the erase context.
    virtual LRESULT OnEraseBkgnd(HWND hwnd, UINT, WPARAM wParam, LPARAM)
    {
        this->DeleteBackBuffer();
        HWND parent = GetParent(hwnd);
        if (parent && IsWindow(parent)) {
            PAINTSTRUCT paint = {};
            paint.hdc = reinterpret_cast<HDC>(wParam);
            GetClientRect(hwnd, &paint.rcPaint);
            SendMessageW(parent, WM_VUIK_REPAINT, reinterpret_cast<WPARAM>(hwnd), reinterpret_cast<LPARAM>(&paint));
        }
        return 1;
    }

    // A release with the capture ours: a click if the cursor is still over this window, then the look let go.
    virtual LRESULT OnLButtonUp(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        if (GetCapture() != hwnd)
            return 0;
        ReleaseCapture();
        if (m_bTracking) {
            TRACKMOUSEEVENT track = {sizeof(track), TME_CANCEL | TME_LEAVE, hwnd, 0};
            if (TrackMouseEvent(&track))
                m_bTracking = false;
        }
        m_bHover = false;
        if (CursorIsOver(hwnd)) {
            AutoCheck(hwnd);
            PostCommand(hwnd);
        }
        SendMessageW(hwnd, BM_SETSTATE, 0, 0);
        return 0;
    }

    virtual LRESULT OnLButtonDown(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        SetCapture(hwnd);
        SendMessageW(hwnd, BM_SETSTATE, 1, 0);
        SetFocus(hwnd);
        return 0;
    }

    virtual LRESULT OnLButtonDblClick(HWND hwnd, UINT, WPARAM wParam, LPARAM lParam)
    {
        SendMessageW(hwnd, WM_LBUTTONDOWN, wParam, lParam);
        SendMessageW(hwnd, WM_LBUTTONUP, wParam, lParam);
        return 0;
    }

    // With the capture: sliding off a held button releases its look, sliding back pushes it again. Without:
    // hover on, a mouse-leave request in force, and a refresh.
    virtual LRESULT OnMouseMove(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        if (GetCapture() == hwnd) {
            const bool inside = CursorIsOver(hwnd);
            if (inside != m_bHover) {
                m_bHover = inside;
                SendMessageW(hwnd, BM_SETSTATE, inside ? 1 : 0, 0);
            }
            return 0;
        }
        if (!m_bHover)
            m_bHover = true;
        if (!m_bTracking) {
            TRACKMOUSEEVENT track = {sizeof(track), TME_LEAVE, hwnd, 0};
            if (TrackMouseEvent(&track))
                m_bTracking = true;
        }
        Refresh(hwnd);
        return 0;
    }

    virtual LRESULT OnMouseLeave(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        m_bHover = false;
        m_bTracking = false;
        Refresh(hwnd);
        return 0;
    }

    virtual LRESULT OnSize(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        Refresh(hwnd);
        return 0;
    }
    // Not routed: WM_MOVE isn't in the table, so moving a button doesn't drop its buffer by itself.
    virtual LRESULT OnMove(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        Refresh(hwnd);
        return 0;
    }

    virtual LRESULT OnSetFocus(HWND hwnd, UINT, WPARAM wParam, LPARAM)
    {
        if (reinterpret_cast<HWND>(wParam) != hwnd) {
            SetStateFlag(StateFocus, 1);
            Refresh(hwnd);
        }
        return 0;
    }
    virtual LRESULT OnKillFocus(HWND hwnd, UINT, WPARAM wParam, LPARAM)
    {
        if (reinterpret_cast<HWND>(wParam) != hwnd) {
            SetStateFlag(StateFocus, 0);
            Refresh(hwnd);
        }
        return 0;
    }

    // Space pushes the button (through the auto-repeat too); any other key returns 1 and goes on to the
    // earlier procedure.
    virtual LRESULT OnKeyDown(HWND hwnd, UINT, WPARAM wParam, LPARAM)
    {
        if (wParam != VK_SPACE)
            return 1;
        SendMessageW(hwnd, BM_SETSTATE, 1, 0);
        return 0;
    }
    // Space clicks on key up only: the command is posted first, then the auto-check, then the look let go.
    virtual LRESULT OnKeyUp(HWND hwnd, UINT, WPARAM wParam, LPARAM)
    {
        if (wParam != VK_SPACE)
            return 1;
        PostCommand(hwnd);
        AutoCheck(hwnd);
        SendMessageW(hwnd, BM_SETSTATE, 0, 0);
        return 0;
    }

    virtual LRESULT OnEnable(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        Refresh(hwnd);
        return 0;
    }

    virtual LRESULT OnSetText(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        const LRESULT result = this->CallSuperWindowProc(hwnd, message, wParam, lParam);
        SizeToContent();
        Refresh(hwnd);
        return result;
    }

    // Repaints without erase, so the parent's background isn't laid down first.
    virtual LRESULT OnUpdateUIState(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        const LRESULT result = this->CallSuperWindowProc(hwnd, message, wParam, lParam);
        this->DeleteBackBuffer();
        InvalidateRect(hwnd, nullptr, FALSE);
        return result;
    }

    // The check value becomes wParam. Checking (1) a radio-like button unchecks the others of its group.
    virtual LRESULT OnSetCheck(HWND hwnd, UINT, WPARAM wParam, LPARAM)
    {
        m_nState &= ~static_cast<LONGLONG>(StateCheckMask);
        SetStateFlag(static_cast<LONGLONG>(wParam), 1);
        const LONG style = GetWindowLongW(hwnd, GWL_STYLE);
        if ((style & 9) == 9 && wParam == 1) {
            HWND parent = GetParent(hwnd);
            // The walk ends when it comes back to this window, or to the first window it found (a disabled or
            // hidden button is no member of the platform's cycle), or after a bounded number of steps.
            HWND first = GetNextDlgGroupItem(parent, hwnd, FALSE);
            HWND w = first;
            for (int steps = 0; w && w != hwnd && steps < 4096; ++steps) {
                const LONG other = GetWindowLongW(w, GWL_STYLE);
                if ((other & 4) || (other & 9) == 9)
                    SendMessageW(w, BM_SETCHECK, 0, 0);
                w = GetNextDlgGroupItem(parent, w, FALSE);
                if (w == first)
                    break;
            }
        }
        Refresh(hwnd);
        return 0;
    }
    virtual LRESULT OnGetCheck(HWND, UINT, WPARAM, LPARAM) { return static_cast<LRESULT>(m_nState & StateCheckMask); }
    virtual LRESULT OnSetState(HWND hwnd, UINT, WPARAM wParam, LPARAM)
    {
        SetStateFlag(StatePushed, wParam != 0);
        Refresh(hwnd);
        return 0;
    }
    virtual LRESULT OnGetState(HWND, UINT, WPARAM, LPARAM) { return static_cast<LRESULT>(m_nState); }
    // The tip goes; the message doesn't go on to the earlier procedure.
    virtual LRESULT OnDestroy(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        m_Tooltip.UnregisterToolWindow(hwnd);
        return 0;
    }

    // Hands the text to the shared tooltip of the top-level window; null removes the tip.
    void SetTooltip(const wchar_t* text) { m_Tooltip.SetTooltip(this->m_hWnd, text); }

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        CVuikButtonImpl* self = static_cast<CVuikButtonImpl*>(Base::FromHandle(hwnd));
        if (!self)
            return DefWindowProcW(hwnd, message, wParam, lParam);
        switch (message) {
            case WM_DESTROY:
                return self->OnDestroy(hwnd, message, wParam, lParam);
            case WM_SIZE:
                return self->OnSize(hwnd, message, wParam, lParam);
            case WM_SETFOCUS:
                return self->OnSetFocus(hwnd, message, wParam, lParam);
            case WM_KILLFOCUS:
                return self->OnKillFocus(hwnd, message, wParam, lParam);
            case WM_ENABLE:
                return self->OnEnable(hwnd, message, wParam, lParam);
            case WM_SETTEXT:
                return self->OnSetText(hwnd, message, wParam, lParam);
            case WM_PAINT:
                return self->OnPaint(hwnd, message, wParam, lParam);
            case WM_ERASEBKGND:
                return self->OnEraseBkgnd(hwnd, message, wParam, lParam);
            case BM_GETCHECK:
                return self->OnGetCheck(hwnd, message, wParam, lParam);
            case BM_SETCHECK:
                return self->OnSetCheck(hwnd, message, wParam, lParam);
            case BM_GETSTATE:
                return self->OnGetState(hwnd, message, wParam, lParam);
            case BM_SETSTATE:
                return self->OnSetState(hwnd, message, wParam, lParam);
            case WM_KEYDOWN:
                if (self->OnKeyDown(hwnd, message, wParam, lParam) == 0)
                    return 0;
                break;
            case WM_KEYUP:
                if (self->OnKeyUp(hwnd, message, wParam, lParam) == 0)
                    return 0;
                break;
            case WM_UPDATEUISTATE:
                return self->OnUpdateUIState(hwnd, message, wParam, lParam);
            case WM_MOUSEMOVE:
                return self->OnMouseMove(hwnd, message, wParam, lParam);
            case WM_LBUTTONDOWN:
                return self->OnLButtonDown(hwnd, message, wParam, lParam);
            case WM_LBUTTONUP:
                return self->OnLButtonUp(hwnd, message, wParam, lParam);
            case WM_LBUTTONDBLCLK:
                return self->OnLButtonDblClick(hwnd, message, wParam, lParam);
            case WM_MOUSELEAVE:
                return self->OnMouseLeave(hwnd, message, wParam, lParam);
            case WM_VUIK_INVALIDATE_BACKBUFFER:
            case WM_VUIK_REPAINT:
                return 0;
            default:
                break;
        }
        return self->CallSuperWindowProc(hwnd, message, wParam, lParam);
    }

protected:
    // Drops the back buffer and invalidates the whole window with erase.
    void Refresh(HWND hwnd)
    {
        this->DeleteBackBuffer();
        InvalidateRect(hwnd, nullptr, TRUE);
    }

    static bool CursorIsOver(HWND hwnd)
    {
        POINT cursor;
        return GetCursorPos(&cursor) && WindowFromPoint(cursor) == hwnd;
    }

    void PostCommand(HWND hwnd)
    {
        HWND parent = GetParent(hwnd);
        if (parent && IsWindow(parent))
            PostMessageW(parent, WM_COMMAND, static_cast<WPARAM>(m_nCtrlId & 0xFFFF), reinterpret_cast<LPARAM>(hwnd));
    }

    // Bit tests on the low byte of the style, not a comparison of the button type: (style & 3) == 3 toggles
    // bit 0 of the check value; (style & 4) or (style & 9) == 9 checks; anything else does nothing.
    static void AutoCheck(HWND hwnd)
    {
        const LONG style = GetWindowLongW(hwnd, GWL_STYLE) & 0xFF;
        if ((style & 3) == 3) {
            const LRESULT check = SendMessageW(hwnd, BM_GETCHECK, 0, 0);
            SendMessageW(hwnd, BM_SETCHECK, (check & 1) ? 0 : 1, 0);
        } else if ((style & 4) != 0 || (style & 9) == 9) {
            SendMessageW(hwnd, BM_GETCHECK, 0, 0);
            SendMessageW(hwnd, BM_SETCHECK, 1, 0);
        }
    }

    LONGLONG m_nState;
    UINT m_nCtrlId;
    bool m_bHover;
    bool m_bTracking;
    CVuikTooltip m_Tooltip;
};
