// Benchmarks of the skin framework: a window with 40 skinned children (each a masked picture stretched over
// the parent's background), painted cold (every back buffer dropped) and warm (buffers kept), each against a
// hand-written window tree of the same shape and pictures that caches one bitmap per window in the same way.
// The number of BitBlt calls of a warm repaint is counted by hooking gdi32's BitBlt in zcmod.dll's import
// table for the run: one per window is the aim.
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "Bench.h"
#include "ImportPatch.h"
#include "zcmod/VuikBaseSkinImpl.h"
#include "zcmod/VuikBitmap.h"
#include "zcmod/VuikButtonImpl.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikWindowImpl.h"

using namespace bench;

namespace {

const int kColumns = 8;
const int kRows = 5;  // 40 children
const int kCell = 60;
const int kPicture = 32;

// A 32 x 32 picture and its mask: a disc, opaque inside, see-through outside, soft at the edge.
struct Picture {
    HBITMAP primary = nullptr;
    HBITMAP mask = nullptr;
    Picture()
    {
        HDC screen = GetDC(nullptr);
        primary = CreateCompatibleBitmap(screen, kPicture, kPicture);
        mask = CreateCompatibleBitmap(screen, kPicture, kPicture);
        HDC dc = CreateCompatibleDC(screen);
        HGDIOBJ old = SelectObject(dc, primary);
        for (int y = 0; y < kPicture; ++y)
            for (int x = 0; x < kPicture; ++x)
                SetPixel(dc, x, y, RGB(40 + x * 6, 90 + y * 4, 200));
        SelectObject(dc, mask);
        for (int y = 0; y < kPicture; ++y)
            for (int x = 0; x < kPicture; ++x) {
                const int d = (x - 16) * (x - 16) + (y - 16) * (y - 16);
                const int m = d < 144 ? 0 : d > 225 ? 255 : (d - 144) * 255 / 81;
                SetPixel(dc, x, y, RGB(m, m, m));
            }
        SelectObject(dc, old);
        DeleteDC(dc);
        ReleaseDC(nullptr, screen);
    }
    ~Picture()
    {
        DeleteObject(primary);
        DeleteObject(mask);
    }
};

// The skins: a vertical two-tone panel and a masked picture stretched over each child.
struct PanelDef {
    COLORREF top, bottom;
};
class PanelSkin : public CVuikBaseSkinImpl<PanelSkin, PanelDef> {
public:
    PanelSkin() { m_SkinDef = PanelDef{RGB(230, 236, 245), RGB(200, 210, 228)}; }
    void Validate() override { m_nStatus = StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        for (int band = 0; band < 16; ++band) {
            const RECT r = {0, height * band / 16, width, height * (band + 1) / 16};
            const int t = band * 255 / 15;
            HBRUSH brush =
                CreateSolidBrush(RGB((GetRValue(m_SkinDef.top) * (255 - t) + GetRValue(m_SkinDef.bottom) * t) / 255,
                                     (GetGValue(m_SkinDef.top) * (255 - t) + GetGValue(m_SkinDef.bottom) * t) / 255,
                                     (GetBValue(m_SkinDef.top) * (255 - t) + GetBValue(m_SkinDef.bottom) * t) / 255));
            FillRect(*graphics, &r, brush);
            DeleteObject(brush);
        }
    }
};

struct BadgeDef {
    int inset;
};
class BadgeSkin : public CVuikBaseSkinImpl<BadgeSkin, BadgeDef> {
public:
    explicit BadgeSkin(CVuikBitmap* picture) : m_pPicture(picture) { m_SkinDef = BadgeDef{4}; }
    void Validate() override { m_nStatus = m_pPicture ? StatusValid : StatusInvalid; }
    void Draw(CVuikWindow*, CVuikGraphics* graphics, int width, int height) override
    {
        const RECT dest = {m_SkinDef.inset, m_SkinDef.inset, width - m_SkinDef.inset, height - m_SkinDef.inset};
        graphics->DrawImage(m_pPicture, dest);
    }
    CVuikBitmap* m_pPicture;
};

class Panel : public CVuikWindowImpl<PanelSkin> {};

class Badge : public CVuikButtonImpl<BadgeSkin> {
public:
    void SizeToContent() override {}

    LRESULT OnPaint(HWND hwnd, UINT, WPARAM, LPARAM) override
    {
        PAINTSTRUCT paint;
        if (!BeginPaint(hwnd, &paint))
            return 0;
        RECT client;
        GetClientRect(hwnd, &client);
        if (SkinIsValid())
            DrawBackBuffer(paint.hdc, client, paint.rcPaint);
        else
            DrawPlaceHolder(paint.hdc);
        EndPaint(hwnd, &paint);
        return 0;
    }
};

const wchar_t* PlainClass(WNDPROC proc, const wchar_t* name)
{
    WNDCLASSEXW wc = {};
    wc.cbSize = sizeof(wc);
    wc.lpfnWndProc = proc;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.lpszClassName = name;
    RegisterClassExW(&wc);
    return name;
}

// The hand-written reference: each window keeps one bitmap of its look, made from the parent's bitmap and its
// own drawing with the same GDI calls (a stretched picture blended through its mask with AlphaBlend), and
// paints with one BitBlt.
struct Reference {
    static Picture* picture;
    static HBITMAP premultiplied;  // the picture with its mask as premultiplied alpha, for AlphaBlend
    struct Cache {
        HBITMAP bitmap = nullptr;
    };
    static Cache* CacheOf(HWND hwnd) { return reinterpret_cast<Cache*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA)); }
    static void Build(HWND hwnd, HDC like)
    {
        Cache* cache = CacheOf(hwnd);
        RECT client;
        GetClientRect(hwnd, &client);
        cache->bitmap = CreateCompatibleBitmap(like, client.right, client.bottom);
        HDC dc = CreateCompatibleDC(like);
        HGDIOBJ old = SelectObject(dc, cache->bitmap);
        HWND parent = GetParent(hwnd);
        if (Cache* under = parent ? CacheOf(parent) : nullptr) {
            if (under->bitmap) {
                POINT corner = {0, 0};
                MapWindowPoints(hwnd, parent, &corner, 1);
                HDC src = CreateCompatibleDC(like);
                HGDIOBJ oldSrc = SelectObject(src, under->bitmap);
                BitBlt(dc, 0, 0, client.right, client.bottom, src, corner.x, corner.y, SRCCOPY);
                SelectObject(src, oldSrc);
                DeleteDC(src);
            }
            HDC src = CreateCompatibleDC(like);
            HGDIOBJ oldSrc = SelectObject(src, premultiplied);
            const BLENDFUNCTION blend = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
            AlphaBlend(dc, 4, 4, client.right - 8, client.bottom - 8, src, 0, 0, kPicture, kPicture, blend);
            SelectObject(src, oldSrc);
            DeleteDC(src);
        } else {
            for (int band = 0; band < 16; ++band) {
                const RECT r = {0, client.bottom * band / 16, client.right, client.bottom * (band + 1) / 16};
                HBRUSH brush = CreateSolidBrush(RGB(230 - band * 2, 236 - band * 2, 245 - band));
                FillRect(dc, &r, brush);
                DeleteObject(brush);
            }
        }
        SelectObject(dc, old);
        DeleteDC(dc);
    }
    static LRESULT CALLBACK Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        Cache* cache = CacheOf(hwnd);
        if (message == WM_ERASEBKGND) {
            if (cache && GetParent(hwnd) && cache->bitmap) {
                DeleteObject(cache->bitmap);
                cache->bitmap = nullptr;
            }
            return 1;
        }
        if (message == WM_PAINT && cache) {
            PAINTSTRUCT paint;
            BeginPaint(hwnd, &paint);
            if (!cache->bitmap)
                Build(hwnd, paint.hdc);
            HDC dc = CreateCompatibleDC(paint.hdc);
            HGDIOBJ old = SelectObject(dc, cache->bitmap);
            const RECT& r = paint.rcPaint;
            BitBlt(paint.hdc, r.left, r.top, r.right - r.left, r.bottom - r.top, dc, r.left, r.top, SRCCOPY);
            SelectObject(dc, old);
            DeleteDC(dc);
            EndPaint(hwnd, &paint);
            return 0;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
};
Picture* Reference::picture = nullptr;
HBITMAP Reference::premultiplied = nullptr;

HBITMAP Premultiplied(const Picture& picture)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = kPicture;
    info.bmiHeader.biHeight = -kPicture;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    std::vector<DWORD> colour(kPicture * kPicture), mask(kPicture * kPicture);
    HDC screen = GetDC(nullptr);
    GetDIBits(screen, picture.primary, 0, kPicture, colour.data(), &info, DIB_RGB_COLORS);
    GetDIBits(screen, picture.mask, 0, kPicture, mask.data(), &info, DIB_RGB_COLORS);
    void* bits = nullptr;
    HBITMAP result = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    ReleaseDC(nullptr, screen);
    if (!result)
        return nullptr;
    DWORD* out = static_cast<DWORD*>(bits);
    for (int i = 0; i < kPicture * kPicture; ++i) {
        const DWORD a = 255 - (mask[i] & 0xFF);
        const DWORD c = colour[i];
        out[i] = (a << 24) | ((((c >> 16) & 0xFF) * a / 255) << 16) | ((((c >> 8) & 0xFF) * a / 255) << 8) |
                 ((c & 0xFF) * a / 255);
    }
    return result;
}

using zcmod_test::PatchImport;

using BitBltFunction = BOOL(WINAPI*)(HDC, int, int, int, int, HDC, int, int, DWORD);
BitBltFunction g_realBitBlt = nullptr;
long g_bitBlts = 0;

BOOL WINAPI CountingBitBlt(HDC dest, int x, int y, int w, int h, HDC src, int sx, int sy, DWORD rop)
{
    ++g_bitBlts;
    return g_realBitBlt(dest, x, y, w, h, src, sx, sy, rop);
}

void Pump()
{
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&msg);
}

void PaintCases(std::vector<Row>& rows)
{
    CVuikLib::SetInstance(GetModuleHandleW(nullptr));
    Picture picture;
    CVuikBitmap bitmap;
    bitmap.Attach(picture.primary);
    bitmap.AttachMask(picture.mask);
    PanelSkin panelSkin;
    BadgeSkin badgeSkin(&bitmap);
    const int width = kColumns * kCell;
    const int height = kRows * kCell;

    Panel panel;
    std::vector<Badge> badges(kColumns * kRows);
    panel.SetSkin(&panelSkin);
    panel.Create(PlainClass(DefWindowProcW, L"ZcmodBenchPanel"), nullptr, RECT{0, 0, width, height}, L"", 0,
                 WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0, nullptr);
    for (int i = 0; i < kColumns * kRows; ++i) {
        const int x = (i % kColumns) * kCell + 6;
        const int y = (i / kColumns) * kCell + 6;
        badges[i].Create(L"Button", panel.m_hWnd, RECT{x, y, x + kCell - 12, y + kCell - 12}, L"", 100 + i,
                         WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, 0, nullptr);
        badges[i].SetSkin(&badgeSkin);
    }
    Pump();

    Reference::picture = &picture;
    Reference::premultiplied = Premultiplied(picture);
    const wchar_t* refClass = PlainClass(Reference::Proc, L"ZcmodBenchReference");
    std::vector<Reference::Cache> caches(kColumns * kRows + 1);
    HWND reference = CreateWindowExW(0, refClass, L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, width + 10, 0, width,
                                     height, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    SetWindowLongPtrW(reference, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&caches[0]));
    for (int i = 0; i < kColumns * kRows; ++i) {
        const int x = (i % kColumns) * kCell + 6;
        const int y = (i / kColumns) * kCell + 6;
        HWND child = CreateWindowExW(0, refClass, L"", WS_CHILD | WS_VISIBLE, x, y, kCell - 12, kCell - 12, reference,
                                     nullptr, GetModuleHandleW(nullptr), nullptr);
        SetWindowLongPtrW(child, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&caches[i + 1]));
    }
    Pump();

    const UINT cold = RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW;
    // A warm repaint is every window invalidated without erase (as when uncovered: no state has changed), then
    // painted. RedrawWindow with RDW_ALLCHILDREN alone would erase the children under Wine, which drops a
    // button's buffer by design.
    auto repaintWarm = [](HWND top) {
        InvalidateRect(top, nullptr, FALSE);
        for (HWND child = GetWindow(top, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            InvalidateRect(child, nullptr, FALSE);
        return RedrawWindow(top, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN) != FALSE;
    };
    const TimingPair coldTimes = TimeBoth(
        [&] {
            SendMessageW(panel.m_hWnd, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0);
            return RedrawWindow(panel.m_hWnd, nullptr, nullptr, cold) != FALSE;
        },
        [&] {
            if (caches[0].bitmap) {
                DeleteObject(caches[0].bitmap);
                caches[0].bitmap = nullptr;
            }
            return RedrawWindow(reference, nullptr, nullptr, cold) != FALSE;
        });
    AddTimes(rows, "cold paint (all buffers built)", "40 children, 480x300", coldTimes.ours, coldTimes.reference,
             "hand-written cache");
    const TimingPair warmTimes =
        TimeBoth([&] { return repaintWarm(panel.m_hWnd); }, [&] { return repaintWarm(reference); });
    AddTimes(rows, "warm paint (buffers kept)", "40 children, 480x300", warmTimes.ours, warmTimes.reference,
             "hand-written cache");

    // BitBlt calls of zcmod.dll during one warm repaint.
    HMODULE library = GetModuleHandleW(L"zcmod.dll");
    g_realBitBlt = reinterpret_cast<BitBltFunction>(
        PatchImport(library, "gdi32.dll", "BitBlt", reinterpret_cast<void*>(CountingBitBlt)));
    if (g_realBitBlt) {
        g_bitBlts = 0;
        repaintWarm(panel.m_hWnd);
        const long warmBlts = g_bitBlts;
        g_bitBlts = 0;
        SendMessageW(panel.m_hWnd, WM_VUIK_INVALIDATE_BACKBUFFER, 0, 0);
        RedrawWindow(panel.m_hWnd, nullptr, nullptr, cold);
        const long coldBlts = g_bitBlts;
        PatchImport(library, "gdi32.dll", "BitBlt", reinterpret_cast<void*>(g_realBitBlt));
        rows.push_back({"BitBlt calls, warm repaint", "41 windows", Format("%.0f", warmBlts), "41 (one per window)",
                        Format("%.2f", warmBlts / 41.0)});
        rows.push_back({"BitBlt calls, cold repaint", "41 windows", Format("%.0f", coldBlts), "-", "-"});
    } else {
        rows.push_back({"BitBlt calls, warm repaint", "41 windows", "import not found", "-", "-"});
    }

    DestroyWindow(reference);
    for (Reference::Cache& c : caches)
        if (c.bitmap)
            DeleteObject(c.bitmap);
    DeleteObject(Reference::premultiplied);
    DestroyWindow(panel.m_hWnd);
    // The pictures belong to `picture`: give them back before the bitmap object goes.
    bitmap.Detach();
    bitmap.DetachMask();
}

}  // namespace

ZCMOD_BENCH_CASE("30-skin-paint", PaintCases);
