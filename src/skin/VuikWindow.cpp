#include "zcmod/VuikWindow.h"

#include "zcmod/VuikLib.h"

HWND CVuikWindow::Create(const wchar_t* className, HWND parent, const RECT& rect, const wchar_t* title, UINT id,
                         DWORD style, DWORD exStyle, LPVOID param)
{
    m_hWnd = CreateWindowExW(exStyle, className, title, style, rect.left, rect.top, rect.right - rect.left,
                             rect.bottom - rect.top, parent, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)),
                             CVuikLib::GetInstance(), param);
    return m_hWnd;
}
