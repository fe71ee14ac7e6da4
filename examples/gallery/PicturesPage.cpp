// The pictures page: one picture of each format the library reads, an animated GIF playing from its stored
// frames at their delays, and a strip of transforms made by the image toolkit.
#include <memory>
#include <string>
#include <vector>

#include <zcmod/zcmod.h>

#include "Drawing.h"
#include "GalleryPage.h"

using namespace gallery;

namespace {

std::wstring PicturesFolder()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path);
    return folder.substr(0, folder.find_last_of(L'\\')) + L"\\pictures\\";
}

// Draws frame `index` of store `type` at (x, y).
void DrawFrame(HDC dc, CNBitmapUtil& util, BitmapType type, int index, int x, int y)
{
    HBITMAP frame = util.GetBitmapHandle(type, index);
    if (!frame)
        return;
    HDC memory = CreateCompatibleDC(dc);
    HGDIOBJ old = SelectObject(memory, frame);
    BitBlt(dc, x, y, util.GetBitmapWidth(type), util.GetBitmapHeight(type), memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteDC(memory);
}

struct Picture {
    const wchar_t* file;
    const wchar_t* label;
    std::unique_ptr<CNBitmapUtil> util = std::make_unique<CNBitmapUtil>();
    bool loaded = false;
};

struct Transform {
    std::wstring label;
    std::unique_ptr<CNBitmapUtil> util = std::make_unique<CNBitmapUtil>();
    BitmapType shown = BT_IMAGE;
    bool made = false;
};

class PicturesPage : public GalleryPage {
public:
    const wchar_t* Title() const override { return L"Pictures"; }

    void Enter(HWND /*host*/) override
    {
        if (!m_pictures.empty())
            return;
        const std::wstring folder = PicturesFolder();
        const wchar_t* files[][2] = {{L"photo.jpg", L"JPEG"},        {L"picture.bmp", L"BMP"},
                                     {L"still.gif", L"GIF"},         {L"logo.png", L"PNG with alpha"},
                                     {L"phone.wbmp", L"WBMP"},       {L"phone.ota", L"OTA"}};
        for (const auto& f : files) {
            Picture p;
            p.file = f[0];
            p.label = f[1];
            p.loaded = p.util->NLoadBitmap((folder + f[0]).c_str(), BT_IMAGE, 0) != nullptr;
            m_pictures.push_back(std::move(p));
        }
        // Transparent pixels of the animation show the page's colour instead of the file's background.
        m_spinner->SetGIFBkColor(DkhLoadColor(nullptr, ZGR_COLOR_WINDOW));
        m_spinner->NLoadBitmap((folder + L"spinner.gif").c_str(), BT_IMAGE, 0);
        m_lastTick = GetTickCount();
        MakeTransforms(folder);
    }

    bool Tick() override
    {
        const int frames = m_spinner->GetNumberOfBitmaps(BT_IMAGE);
        if (frames < 2)
            return false;
        const DWORD now = GetTickCount();
        const int delay = m_spinner->GetFrameDelay(BT_IMAGE, m_frame);
        if (static_cast<int>(now - m_lastTick) < (delay > 0 ? delay : 100))
            return false;
        m_lastTick = now;
        // Frames exist where their handle is; step to the next one that does.
        for (int step = 1; step <= 512; ++step) {
            const int next = (m_frame + step) % 512;
            if (m_spinner->GetBitmapHandle(BT_IMAGE, next)) {
                m_frame = next;
                break;
            }
        }
        ++m_framesShown;
        return true;
    }

    void Paint(HDC dc, const RECT& area) override
    {
        const COLORREF window = DkhLoadColor(nullptr, ZGR_COLOR_WINDOW);
        const COLORREF text = DkhLoadColor(nullptr, ZGR_COLOR_TEXT);
        const COLORREF accent = DkhLoadColor(nullptr, ZGR_COLOR_ACCENT);
        Swatch(dc, area, window, window);
        HFONT title = SuiteFont(22, FW_BOLD);
        HFONT body = SuiteFont(13);
        HGDIOBJ old = SelectObject(dc, title);
        const int left = area.left + 24;
        int y = area.top + 16;
        y = Text(dc, left, y, L"Pictures", accent) + 6;
        SelectObject(dc, body);

        // One of each format, as loaded.
        int x = left;
        for (Picture& p : m_pictures) {
            CNBitmapUtil& u = *p.util;
            Text(dc, x, y, p.label, text);
            if (p.loaded)
                DrawFrame(dc, u, BT_IMAGE, 0, x, y + 18);
            else
                Text(dc, x, y + 18, L"(not loaded)", text);
            Text(dc, x, y + 18 + 164, Format(L"%d x %d", u.GetBitmapWidth(BT_IMAGE), u.GetBitmapHeight(BT_IMAGE)),
                 text);
            x += (p.loaded && u.GetBitmapWidth(BT_IMAGE) > 100 ? u.GetBitmapWidth(BT_IMAGE) : 100) + 16;
        }
        y += 18 + 164 + 26;

        // The animated GIF, from its stored frames.
        const int frames = m_spinner->GetNumberOfBitmaps(BT_IMAGE);
        Text(dc, left, y, L"Animated GIF", text);
        DrawFrame(dc, *m_spinner, BT_IMAGE, m_frame, left, y + 18);
        Text(dc, left + 80, y + 26,
             Format(L"frame %d of %d, %d ms; loop count %d", m_frame + 1, frames,
                    m_spinner->GetFrameDelay(BT_IMAGE, m_frame), m_spinner->GetLoopCount()),
             text);
        y += 18 + 64 + 20;

        // Transforms.
        x = left;
        for (Transform& t : m_transforms) {
            CNBitmapUtil& u = *t.util;
            Text(dc, x, y, t.label, text);
            if (t.made)
                DrawFrame(dc, u, t.shown, 0, x, y + 18);
            x += (u.GetBitmapWidth(t.shown) > 120 ? u.GetBitmapWidth(t.shown) : 120) + 16;
        }
        SelectObject(dc, old);
        DeleteObject(title);
        DeleteObject(body);
    }

    std::wstring Verify() override
    {
        for (const Picture& p : m_pictures)
            if (!p.loaded)
                return std::wstring(L"the ") + p.label + L" picture did not load";
        if (m_spinner->GetNumberOfBitmaps(BT_IMAGE) != 12)
            return Format(L"the animated GIF has %d frames, not 12", m_spinner->GetNumberOfBitmaps(BT_IMAGE));
        if (m_framesShown == 0)
            return L"the animation did not advance";
        for (const Transform& t : m_transforms)
            if (!t.made)
                return L"the transform \"" + t.label + L"\" failed";
        return L"";
    }

private:
    void MakeTransforms(const std::wstring& folder)
    {
        const std::wstring photo = folder + L"photo.jpg";
        const std::wstring plasma = folder + L"picture.bmp";

        Transform resized;
        resized.label = L"Resize 50%, smooth";
        resized.shown = BT_IMAGE_RESIZED;
        resized.made = resized.util->NLoadBitmap(photo.c_str(), BT_IMAGE, 0) &&
                       resized.util->ResizeRelative(BT_IMAGE, 0, 50, 50, 1);
        m_transforms.push_back(std::move(resized));

        Transform dithered;
        dithered.label = L"ResizeDither 300% with noise";
        dithered.shown = BT_IMAGE_RESIZED;
        if (dithered.util->NLoadBitmap(plasma.c_str(), BT_IMAGE, 0)) {
            dithered.util->ResizeDither(BT_IMAGE, 0, 30, 20, 60, 40, 180, 120, 48, 128);
            dithered.made = dithered.util->GetBitmapHandle(BT_IMAGE_RESIZED, 0) != nullptr;
        }
        m_transforms.push_back(std::move(dithered));

        Transform mirrored;
        mirrored.label = L"Mirrored";
        if (mirrored.util->NLoadBitmap(plasma.c_str(), BT_IMAGE, 0))
            mirrored.made = mirrored.util->MirrorSection(BT_IMAGE, 0, 0, 0, 120, 80, 1, 0) != 0;
        m_transforms.push_back(std::move(mirrored));

        // The PNG's transparency plane blended over a piece of the photo.
        Transform blended;
        blended.label = L"PNG blended over the photo";
        blended.shown = BT_RESULT;
        CNBitmapUtil& b = *blended.util;
        if (b.NLoadBitmap((folder + L"logo.png").c_str(), BT_IMAGE, 0) && b.GetBitmapHandle(BT_ALPHA, 0)) {
            CNBitmapUtil background;
            HBITMAP photoFrame = background.NLoadBitmap(photo.c_str(), BT_IMAGE, 0);
            HBITMAP piece = photoFrame ? b.CreateBitmapFromBitmapSection(40, 0, 160, 160, photoFrame) : nullptr;
            if (piece && b.CreateBitmapFromHandle(piece, BT_BACKGROUND, 0))
                blended.made = b.AlphaBlendBitmaps(2, 0, 0) > 0;
            if (piece)
                DeleteObject(piece);
        }
        m_transforms.push_back(std::move(blended));

        Transform tiled;
        tiled.label = L"Tiled";
        tiled.shown = BT_RESULT;
        if (tiled.util->NLoadBitmap((folder + L"still.gif").c_str(), BT_IMAGE, 0))
            tiled.made = tiled.util->CreateTiledBitmap(200, 100, BT_IMAGE, 0) != 0;
        m_transforms.push_back(std::move(tiled));
    }

    std::vector<Picture> m_pictures;
    std::unique_ptr<CNBitmapUtil> m_spinner = std::make_unique<CNBitmapUtil>();
    int m_frame = 0;
    int m_framesShown = 0;
    DWORD m_lastTick = 0;
    std::vector<Transform> m_transforms;
};

}  // namespace

std::unique_ptr<GalleryPage> MakePicturesPage() { return std::make_unique<PicturesPage>(); }
