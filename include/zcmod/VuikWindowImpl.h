// CVuikWindowImpl<Skin>: a platform window taken over by a static window procedure, with a skin, a back
// buffer and the routing of the toolkit's messages. The object is found from the window's user data.
// Header-only: applications instantiate it for skins of their own.
//
// A paint builds the back buffer if it is absent (the ancestor's piece, then the skin's Draw) and copies it
// to the screen; WM_VUIK_REPAINT from a child copies the piece of the buffer under it; WM_DRAWITEM goes back
// to the child's own window procedure.
#pragma once

#include <windows.h>

#include "zcmod/VuikBackBuffer.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikMessages.h"
#include "zcmod/VuikWindow.h"

class CVuikGraphics;

template <class Skin>
class CVuikWindowImpl : public CVuikWindow, public CVuikBackBuffer, public CVuikBackBufferClient {
public:
    CVuikWindowImpl()
        : CVuikBackBuffer(static_cast<CVuikBackBufferClient*>(this)),
          m_pfnSuperWindowProc(nullptr),
          m_pOldUserData(0),
          m_pfnWindowProc(WindowProc),
          m_pSkin(nullptr)
    {
    }

    // Releases the buffer; the window is not destroyed. A window still running this object's procedure is
    // given its earlier procedure back, so that it never calls into a destroyed object.
    virtual ~CVuikWindowImpl()
    {
        DeleteBackBuffer();
        if (m_hWnd && IsWindow(m_hWnd) && m_pfnWindowProc) {
            if (reinterpret_cast<WNDPROC>(GetWindowLongPtrW(m_hWnd, GWLP_WNDPROC)) == m_pfnWindowProc &&
                m_pfnSuperWindowProc)
                SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc));
            if (GetWindowLongPtrW(m_hWnd, GWLP_USERDATA) == reinterpret_cast<LONG_PTR>(this))
                SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, m_pOldUserData);
        }
    }

    // Creates the window with CVuikLib's instance and installs m_pfnWindowProc; the object goes into the
    // user data. Nothing when m_pfnWindowProc is empty or the window can't be taken over (then destroyed).
    virtual HWND Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                        DWORD style, DWORD exStyle, LPVOID param)
    {
        if (!m_pfnWindowProc)
            return nullptr;
        if (!CVuikWindow::Create(className, parent, rect, title, id, style, exStyle, param))
            return nullptr;
        const LONG_PTR previous = SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnWindowProc));
        if (!previous) {
            DestroyWindow(m_hWnd);
            m_hWnd = nullptr;
            return nullptr;
        }
        m_pfnSuperWindowProc = reinterpret_cast<WNDPROC>(previous);
        m_pOldUserData = SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        return m_hWnd;
    }

    // Plain store: nothing is repainted. The skin is not owned and must outlive the control.
    virtual void SetSkin(Skin* skin) { m_pSkin = skin; }
    virtual bool SkinIsValid() { return m_pSkin ? m_pSkin->IsValid() : false; }

    // Takes over an existing window: 1 on success; 0 if this object already has a live window, `window`
    // isn't one, or the procedure can't be installed (then nothing has changed).
    virtual BOOL SubclassWindow(HWND window)
    {
        if (m_hWnd && IsWindow(m_hWnd))
            return 0;
        if (!window || !IsWindow(window) || !m_pfnWindowProc)
            return 0;
        const LONG_PTR previous = SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnWindowProc));
        if (!previous)
            return 0;
        m_hWnd = window;
        m_pfnSuperWindowProc = reinterpret_cast<WNDPROC>(previous);
        m_pOldUserData = SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        return 1;
    }

    // Gives the window its earlier procedure back and returns it. With `force` 0 nothing happens (and nothing
    // is returned) when someone else has subclassed the window behind this object. The window's user data
    // keeps pointing to this object afterwards.
    virtual HWND UnsubclassWindow(int force)
    {
        if (!m_hWnd || !m_pfnWindowProc)
            return nullptr;
        if (!force && reinterpret_cast<WNDPROC>(GetWindowLongPtrW(m_hWnd, GWLP_WNDPROC)) != m_pfnWindowProc)
            return nullptr;
        if (!SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuperWindowProc)))
            return nullptr;
        m_pfnSuperWindowProc = DefWindowProcW;
        // The saved user data is deliberately not written back: the window keeps this object in it.
        HWND hwnd = m_hWnd;
        m_hWnd = nullptr;
        return hwnd;
    }

    // Draws the back buffer over the paint's area when the skin is valid; otherwise nothing here.
    virtual void OnPaint(PAINTSTRUCT* paint)
    {
        if (!paint)
            return;
        RECT client;
        GetClientRect(m_hWnd, &client);
        if (SkinIsValid())
            DrawBackBuffer(paint->hdc, client, paint->rcPaint);
    }

    // CVuikBackBufferClient
    virtual HWND GetHWND() { return m_hWnd; }
    virtual void Draw(CVuikGraphics* graphics, int width, int height)
    {
        if (m_pSkin)
            m_pSkin->Draw(this, graphics, width, height);
    }

    Skin* GetSkin() const { return m_pSkin; }
    HBITMAP GetBackBuffer() const { return m_hBackBuffer; }

    // The placeholder of a control without a valid skin: a box round the client area with one diagonal, from
    // the top left to the bottom right, in the context's present pen.
    void DrawPlaceHolder(HDC hdc)
    {
        RECT r;
        if (!GetClientRect(m_hWnd, &r))
            return;
        MoveToEx(hdc, r.left, r.top, nullptr);
        LineTo(hdc, r.right, r.top);
        LineTo(hdc, r.right, r.bottom);
        LineTo(hdc, r.left, r.bottom);
        LineTo(hdc, r.left, r.top);
        LineTo(hdc, r.right, r.bottom);
    }

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        CVuikWindowImpl* self = FromHandle(hwnd);
        switch (message) {
            case WM_PAINT:
                if (self)
                    return self->OnPaint(hwnd, message, wParam, lParam);
                break;
            case WM_ERASEBKGND:
                return 1;
            case WM_DRAWITEM:
            case OCM_DRAWITEM:
                if (self)
                    return self->OnDrawItem(hwnd, message, wParam, lParam);
                break;
            case WM_VUIK_INVALIDATE_BACKBUFFER:
                if (self)
                    return self->OnInvalidateBackBuffer(hwnd, message, wParam, lParam);
                break;
            case WM_VUIK_REPAINT:
                if (self)
                    return self->OnRepaint(hwnd, message, wParam, lParam);
                break;
            default:
                break;
        }
        return self ? self->CallSuperWindowProc(hwnd, message, wParam, lParam)
                    : DefWindowProcW(hwnd, message, wParam, lParam);
    }

    LRESULT OnEraseBkgnd(HWND, UINT, WPARAM, LPARAM) { return 1; }

    LRESULT OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
    {
        PAINTSTRUCT paint;
        if (!BeginPaint(hwnd, &paint))
            return 0;
        OnPaint(&paint);
        EndPaint(hwnd, &paint);
        return 0;
    }

    // A child asks for what lies under its rcPaint: the matching piece of this window's buffer goes onto the
    // child's context. A window without a valid skin leaves the child's area as it is.
    LRESULT OnRepaint(HWND hwnd, UINT, WPARAM wParam, LPARAM lParam)
    {
        PAINTSTRUCT* paint = reinterpret_cast<PAINTSTRUCT*>(lParam);
        if (!SkinIsValid() || !paint)
            return 0;
        RECT mapped = paint->rcPaint;
        MapWindowPoints(reinterpret_cast<HWND>(wParam), hwnd, reinterpret_cast<POINT*>(&mapped), 2);
        RECT client;
        GetClientRect(hwnd, &client);
        DrawBackBufferPart(paint->hdc, client, mapped, paint->rcPaint);
        return 0;
    }

    LRESULT OnInvalidateBackBuffer(HWND, UINT, WPARAM, LPARAM)
    {
        DeleteBackBuffer();
        return 0;
    }

    // Owner drawing goes back to the child's own procedure: the child with the id in wParam gets WM_DRAWITEM.
    LRESULT OnDrawItem(HWND, UINT, WPARAM wParam, LPARAM lParam)
    {
        HWND child = GetDlgItem(m_hWnd, static_cast<int>(static_cast<UINT>(wParam)));
        WNDPROC proc = child ? reinterpret_cast<WNDPROC>(GetWindowLongPtrW(child, GWLP_WNDPROC)) : nullptr;
        return proc ? CallWindowProcW(proc, child, WM_DRAWITEM, wParam, lParam) : 0;
    }

protected:
    static CVuikWindowImpl* FromHandle(HWND hwnd)
    {
        return reinterpret_cast<CVuikWindowImpl*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    }

    // The window's behaviour before the take-over.
    LRESULT CallSuperWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        return m_pfnSuperWindowProc ? CallWindowProcW(m_pfnSuperWindowProc, hwnd, message, wParam, lParam)
                                    : DefWindowProcW(hwnd, message, wParam, lParam);
    }

    WNDPROC m_pfnSuperWindowProc;
    LONG_PTR m_pOldUserData;
    WNDPROC m_pfnWindowProc;
    Skin* m_pSkin;

private:
    CVuikWindowImpl(const CVuikWindowImpl&);
    CVuikWindowImpl& operator=(const CVuikWindowImpl&);
};
