// CVuikSplashScreen: the splash window and its invisible owner, the composition of the picture over the desktop
// beneath it, and the region that cuts the window to the picture's shape.
#include "zcmod/VuikSplashScreen.h"

#include <new>

#include "dialogs/core/FadeSteps.h"
#include "frame/Handles.h"
#include "zcmod/NBitmapUtil.h"

using namespace zcmod;

namespace {

const wchar_t kSplashClass[] = L"CVuikSplashScreenWindow";
const wchar_t kOwnerClass[] = L"CVuikSplashScreenInvisibleWindow";
const wchar_t kObjectProperty[] = L"__DeskHubCVuikSplashScreenClassPtr";
// CS_CLASSDC | CS_GLOBALCLASS.
const UINT kClassStyle = 0x4040;
// The transparency plane holds 255 - alpha: white within 1 in each byte is alpha 0, 1 or 2, cut out.
const unsigned long kCutColour = 0xFFFFFF;
const unsigned long kCutTolerance = 0x010101;

HINSTANCE ProcessModule()
{
    return GetModuleHandleW(nullptr);
}

// Where a picture of the given size sits in the middle of the desktop.
POINT SplashOrigin(int width, int height)
{
    RECT desktop = {};
    GetWindowRect(GetDesktopWindow(), &desktop);
    POINT origin = {};
    int x = 0;
    int y = 0;
    CentredOrigin(desktop.left, desktop.top, desktop.right, desktop.bottom, width, height, x, y);
    origin.x = x;
    origin.y = y;
    return origin;
}

}  // namespace

CVuikSplashScreen::CVuikSplashScreen(HINSTANCE module, unsigned int id)
    : m_pBitmap(nullptr), m_hWndOwner(nullptr), m_hWnd(nullptr)
{
    RegisterWndClass();
    LoadBitmapW(module ? module : ProcessModule(), id);
}

CVuikSplashScreen::~CVuikSplashScreen()
{
    if (m_pBitmap) {
        m_pBitmap->Clear();
        delete m_pBitmap;
        m_pBitmap = nullptr;
    }
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);
    m_hWnd = nullptr;
    if (m_hWndOwner && IsWindow(m_hWndOwner))
        DestroyWindow(m_hWndOwner);
    m_hWndOwner = nullptr;
    UnregisterClassW(kSplashClass, ProcessModule());
    UnregisterClassW(kOwnerClass, ProcessModule());
}

void CVuikSplashScreen::RegisterWndClass()
{
    // A second object registers the same names; its registration fails harmlessly.
    WNDCLASSW wc = {};
    wc.style = kClassStyle;
    wc.lpfnWndProc = SplashScreenProc;
    wc.hInstance = ProcessModule();
    wc.lpszClassName = kSplashClass;
    RegisterClassW(&wc);
    wc.lpfnWndProc = DefWindowProcW;
    wc.lpszClassName = kOwnerClass;
    RegisterClassW(&wc);
}

HBITMAP CVuikSplashScreen::LoadBitmapW(HINSTANCE module, unsigned int id)
{
    if (!m_pBitmap)
        m_pBitmap = new (std::nothrow) CNBitmapUtil;
    if (!m_pBitmap)
        return nullptr;
    return m_pBitmap->NLoadBitmap(module, static_cast<int>(id), BT_IMAGE, 0);
}

int CVuikSplashScreen::Show(unsigned int time)
{
    if (!m_pBitmap)
        m_pBitmap = new (std::nothrow) CNBitmapUtil;
    if (!m_pBitmap)
        return 0;
    // Hide keeps the windows: a splash screen shows once per object.
    if (m_hWnd || m_hWndOwner)
        return 0;
    if (!CreateSplashWindow())
        return 0;
    const int animated = AnimateWindow(m_hWnd, time, AW_BLEND) ? 1 : 0;
    const int cut = SetRegion(0) ? 1 : 0;
    return animated & cut;
}

int CVuikSplashScreen::Hide(unsigned int time)
{
    if (m_hWnd && m_hWndOwner) {
        SetWindowRgn(m_hWnd, nullptr, FALSE);
        AlphablendBitmaps();
        AnimateWindow(m_hWnd, time, AW_BLEND | AW_HIDE);
        ShowWindow(m_hWnd, SW_HIDE);
    }
    return 0;
}

int CVuikSplashScreen::CreateSplashWindow()
{
    const int width = m_pBitmap->GetBitmapWidth(BT_IMAGE);
    const int height = m_pBitmap->GetBitmapHeight(BT_IMAGE);
    const POINT at = SplashOrigin(width, height);
    m_hWndOwner = CreateWindowExW(WS_EX_TOPMOST, kOwnerClass, nullptr, WS_POPUP, at.x, at.y, width, height, nullptr,
                                  nullptr, ProcessModule(), nullptr);
    if (!m_hWndOwner)
        return 0;
    m_hWnd = CreateWindowExW(WS_EX_TOPMOST, kSplashClass, nullptr, WS_POPUP, at.x, at.y, width, height, m_hWndOwner,
                             nullptr, ProcessModule(), this);
    if (!m_hWnd)
        return 0;
    AlphablendBitmaps();
    return 1;
}

int CVuikSplashScreen::AlphablendBitmaps()
{
    const int width = m_pBitmap->GetBitmapWidth(BT_IMAGE);
    const int height = m_pBitmap->GetBitmapHeight(BT_IMAGE);
    const POINT at = SplashOrigin(width, height);
    // What the desktop shows under the window's place, then the picture over it through its plane. A picture
    // without a plane leaves the result empty, and the bare picture is painted instead.
    m_pBitmap->GetBackgroundStatic(GetDesktopWindow(), at.x, at.y, width, height, 0, 0);
    m_pBitmap->AlphaBlendBitmaps(2, 0, 0);
    return m_pBitmap->GetBitmapHandle(BT_RESULT, 0) != nullptr;
}

int CVuikSplashScreen::SetRegion(int redraw)
{
    if (!m_pBitmap)
        return 0;
    HRGN region = nullptr;
    if (m_pBitmap->GetBitmapHandle(BT_ALPHA, 0))
        region = m_pBitmap->BitmapToRegion(BT_ALPHA, 0, kCutColour, kCutTolerance);
    // The window owns the region from here on, also when the call fails.
    if (SetWindowRgn(m_hWnd, region, redraw) != 0)
        return 1;
    if (region)
        DeleteObject(region);
    return 0;
}

void CVuikSplashScreen::PaintPicture(HDC dc)
{
    if (!dc || !m_pBitmap)
        return;
    HBITMAP picture = m_pBitmap->GetBitmapHandle(BT_RESULT, 0);
    if (!picture)
        picture = m_pBitmap->GetBitmapHandle(BT_IMAGE, 0);
    if (!picture)
        return;
    BitmapDC source(dc, picture);
    if (source)
        BitBlt(dc, 0, 0, m_pBitmap->GetBitmapWidth(BT_IMAGE), m_pBitmap->GetBitmapHeight(BT_IMAGE), source.Get(), 0,
               0, SRCCOPY);
}

LRESULT CVuikSplashScreen::OnPaint(WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(m_hWnd, &paint);
    PaintPicture(dc);
    EndPaint(m_hWnd, &paint);
    return 0;
}

LRESULT CVuikSplashScreen::OnEraseBkGnd(WPARAM wParam, LPARAM)
{
    PaintPicture(reinterpret_cast<HDC>(wParam));
    return 1;
}

LRESULT CALLBACK CVuikSplashScreen::SplashScreenProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CVuikSplashScreen* self = nullptr;
    if (message == WM_CREATE) {
        const CREATESTRUCTW* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        self = create ? static_cast<CVuikSplashScreen*>(create->lpCreateParams) : nullptr;
        if (self) {
            // Painting may come before CreateWindowExW has returned the handle.
            self->m_hWnd = hwnd;
            SetPropW(hwnd, kObjectProperty, self);
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
    if (message == WM_NCDESTROY) {
        RemovePropW(hwnd, kObjectProperty);
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
    self = static_cast<CVuikSplashScreen*>(GetPropW(hwnd, kObjectProperty));
    if (self) {
        if (message == WM_PAINT)
            return self->OnPaint(wParam, lParam);
        if (message == WM_ERASEBKGND)
            return self->OnEraseBkGnd(wParam, lParam);
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}
