// A client of the installed library: initialises it, reads its frame, makes a skin of its own on the
// installed templates (as the README shows), and shuts the library down.
#include <windows.h>

#include <cstdio>

#include <zcmod/VuikBitmap.h>
#include <zcmod/VuikGraphics.h>
#include <zcmod/VuikResourceManager.h>
#include <zcmod/zcmod.h>

namespace {

struct CMySkinDef {
    UINT m_nFaceId;
};

class CMySkin : public CVuikBaseSkinImpl<CMySkin, CMySkinDef> {
public:
    CMySkin() : m_pFace(nullptr) { m_SkinDef.m_nFaceId = 0; }
    ~CMySkin() { Unload(); }
    void Load() override
    {
        Unload();
        CVuikResourceManager::LoadBitmapW(&m_pFace, CVuikLib::GetResourceInstance(), m_SkinDef.m_nFaceId, 0, nullptr);
        Validate();
    }
    void Unload() override
    {
        if (m_pFace)
            CVuikResourceManager::UnloadBitmap(&m_pFace);
    }
    void Validate() override { m_nStatus = (m_SkinDef.m_nFaceId && !m_pFace) ? StatusInvalid : StatusValid; }
    void Draw(CVuikWindow*, CVuikGraphics* g, int width, int height) override
    {
        g->DrawImage(m_pFace, RECT{0, 0, width, height});
    }

private:
    CVuikBitmap* m_pFace;
};

}  // namespace

int main()
{
    CVuikLib::Init(GetModuleHandleW(nullptr), GetModuleHandleW(nullptr));
    CVuikLib::SetLayout(0);
    LOGFONTW font;
    DkhLoadFont(&font);
    const bool faceSet = wcscmp(font.lfFaceName, L"Zelvo Sans Wide") == 0;
    const bool scaled = CVuikLib::GetScaleX() > 0.0 && CVuikLib::GetScaleY() > 0.0;
    const bool noFont = ZCMOD_CreateFontIndirect(&font) == nullptr;

    bool skinned = false;
    {
        CMySkin skin;
        skin.Load();
        CVuikWindowImpl<CMySkin> panel;
        panel.SetSkin(&skin);
        HWND hwnd = panel.Create(L"Static", nullptr, RECT{10, 10, 210, 60}, L"", 0, WS_POPUP, 0, nullptr);
        skinned = hwnd && panel.SkinIsValid();
        if (hwnd)
            DestroyWindow(hwnd);
    }
    ZCMOD_Finalize();
    std::printf("consumer: face=%d scale=%d legacy=%d skin=%d\n", faceSet, scaled, noFont, skinned);
    return faceSet && scaled && noFont && skinned ? 0 : 1;
}
