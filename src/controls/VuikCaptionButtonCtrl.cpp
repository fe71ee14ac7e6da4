#include "controls/VuikCaptionButtonCtrl.h"

#include "zcmod/ResHandler.h"
#include "zcmod/ResourceIds.h"
#include "zcmod/VuikGraphics.h"
#include "zcmod/VuikLib.h"
#include "zcmod/VuikResourceManager.h"

namespace {

const UINT kCommandIds[] = {0x8001, 0x8001, 0x8002, 0x8003, 0x8004};

const CVuikCaptionButtonSkinDef kDefaultDefs[] = {
    {{{ZGR_BMP_CAPTION_CLOSE_ALONE_NORMAL},
      {ZGR_BMP_CAPTION_CLOSE_ALONE_HOVER},
      {ZGR_BMP_CAPTION_CLOSE_ALONE_PRESSED}}},
    {{{ZGR_BMP_CAPTION_CLOSE_BESIDE_NORMAL},
      {ZGR_BMP_CAPTION_CLOSE_BESIDE_HOVER},
      {ZGR_BMP_CAPTION_CLOSE_BESIDE_PRESSED}}},
    {{{ZGR_BMP_CAPTION_MAXIMIZE_NORMAL}, {ZGR_BMP_CAPTION_MAXIMIZE_HOVER}, {ZGR_BMP_CAPTION_MAXIMIZE_PRESSED}}},
    {{{ZGR_BMP_CAPTION_MINIMIZE_NORMAL}, {ZGR_BMP_CAPTION_MINIMIZE_HOVER}, {ZGR_BMP_CAPTION_MINIMIZE_PRESSED}}},
    {{{0}, {0}, {0}}},
};

// Pictures of the caption come from a module chosen for the moment of loading; the library's resource
// instance is put back afterwards.
class ResourceInstanceScope {
public:
    explicit ResourceInstanceScope(HINSTANCE module) : m_old(CVuikLib::GetResourceInstance())
    {
        CVuikLib::SetResourceInstance(module);
    }
    ~ResourceInstanceScope() { CVuikLib::SetResourceInstance(m_old); }

private:
    HINSTANCE m_old;
};

}  // namespace

const CVuikCaptionButtonSkinDef CVuikCaptionButtonCtrl::m_RestoreDef = {
    {{ZGR_BMP_CAPTION_RESTORE_NORMAL}, {ZGR_BMP_CAPTION_RESTORE_HOVER}, {ZGR_BMP_CAPTION_RESTORE_PRESSED}}};

// ---- State skin ----------------------------------------------------------------------------------------------

CVuikCaptionButtonStateSkin::CVuikCaptionButtonStateSkin() : m_pBitmap(nullptr)
{
    m_SkinDef.m_nBitmapId = 0;
}

CVuikCaptionButtonStateSkin::~CVuikCaptionButtonStateSkin()
{
    Unload();
}

// The picture is loaded with the layout's mirroring: the whole button buffer is turned round again in a
// right-to-left layout, so the picture shows as it was drawn.
void CVuikCaptionButtonStateSkin::Load()
{
    Unload();
    if (m_SkinDef.m_nBitmapId)
        CVuikResourceManager::LoadBitmapW(&m_pBitmap, CVuikLib::GetResourceInstance(), m_SkinDef.m_nBitmapId, 0,
                                          nullptr);
    Validate();
}

void CVuikCaptionButtonStateSkin::Unload()
{
    if (m_pBitmap)
        CVuikResourceManager::UnloadBitmap(&m_pBitmap);
}

void CVuikCaptionButtonStateSkin::Validate()
{
    m_nStatus = (m_SkinDef.m_nBitmapId && !m_pBitmap) ? StatusInvalid : StatusValid;
}

void CVuikCaptionButtonStateSkin::Draw(CVuikWindow*, CVuikGraphics* graphics, int, int)
{
    if (graphics && m_pBitmap)
        graphics->DrawImage(m_pBitmap, 0, 0);
}

// ---- Skin ----------------------------------------------------------------------------------------------------

CVuikCaptionButtonSkin::CVuikCaptionButtonSkin()
{
    CVuikCaptionButtonSkinDef empty = {};
    SetSkinDef(empty);
}

void CVuikCaptionButtonSkin::SetSkinDef(CVuikCaptionButtonSkinDef def)
{
    m_SkinDef = def;
    for (int i = 0; i < StateCount; ++i)
        m_StateSkins[i].SetSkinDef(def.m_States[i]);
}

void CVuikCaptionButtonSkin::Load()
{
    for (int i = 0; i < StateCount; ++i)
        m_StateSkins[i].Load();
}

void CVuikCaptionButtonSkin::Unload()
{
    for (int i = 0; i < StateCount; ++i)
        m_StateSkins[i].Unload();
}

bool CVuikCaptionButtonSkin::IsValid()
{
    for (int i = 0; i < StateCount; ++i)
        if (!m_StateSkins[i].IsValid())
            return false;
    return true;
}

void CVuikCaptionButtonSkin::Validate()
{
    for (int i = 0; i < StateCount; ++i)
        m_StateSkins[i].Validate();
}

void CVuikCaptionButtonSkin::Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height)
{
    CVuikCaptionButtonCtrl* button = dynamic_cast<CVuikCaptionButtonCtrl*>(window);
    int state = button ? button->GetGraphicalState() : StateNormal;
    if (state < 0 || state >= StateCount)
        state = StateNormal;
    m_StateSkins[state].Draw(window, graphics, width, height);
}

// ---- Control -------------------------------------------------------------------------------------------------

CVuikCaptionButtonCtrl::CVuikCaptionButtonCtrl() : m_nKind(KindClose) {}

CVuikCaptionButtonCtrl::~CVuikCaptionButtonCtrl()
{
    // The window goes before the skin it paints with.
    if (m_hWnd && IsWindow(m_hWnd))
        DestroyWindow(m_hWnd);
    m_Skin.Unload();
}

CVuikCaptionButtonSkinDef CVuikCaptionButtonCtrl::DefaultDef(int kind)
{
    if (kind < KindCloseAlone || kind > KindAppIcon)
        kind = KindAppIcon;
    return kDefaultDefs[kind];
}

HWND CVuikCaptionButtonCtrl::Create(HWND parent, int kind, const RECT& rect)
{
    if (kind < KindCloseAlone || kind > KindAppIcon || !parent)
        return nullptr;
    m_nKind = kind;
    const RECT first = {rect.left, rect.top, rect.left + 50, rect.top + 20};
    HWND hwnd = CVuikWindowImpl<CVuikCaptionButtonSkin>::Create(L"Button", parent, first, L"", kCommandIds[kind],
                                                                WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS,
                                                                WS_EX_NOPARENTNOTIFY, nullptr);
    if (!hwnd)
        return nullptr;
    m_nCtrlId = static_cast<UINT>(GetDlgCtrlID(hwnd));
    SetSkin(&m_Skin);
    if (kind != KindAppIcon)
        LoadDef(kDefaultDefs[kind]);
    return hwnd;
}

void CVuikCaptionButtonCtrl::LoadDef(const CVuikCaptionButtonSkinDef& def)
{
    {
        ResourceInstanceScope scope(ZCMOD_GetCommonZGR());
        m_Skin.SetSkinDef(def);
        m_Skin.Load();
    }
    SizeToContent();
}

void CVuikCaptionButtonCtrl::LoadIcon(HINSTANCE module, UINT bitmapId)
{
    CVuikCaptionButtonSkinDef def = {{{bitmapId}, {bitmapId}, {bitmapId}}};
    {
        ResourceInstanceScope scope(module);
        m_Skin.SetSkinDef(def);
        m_Skin.Load();
    }
    SizeToContent();
}

void CVuikCaptionButtonCtrl::SizeToContent()
{
    CVuikBitmap* normal = m_Skin.State(CVuikCaptionButtonSkin::StateNormal).GetBitmap();
    if (!m_hWnd || !normal)
        return;
    SetWindowPos(m_hWnd, nullptr, 0, 0, normal->GetWidth(), normal->GetHeight(),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

int CVuikCaptionButtonCtrl::GetGraphicalState()
{
    const bool pushed = (m_nState & StatePushed) != 0;
    if (pushed)
        return m_bHover ? CVuikCaptionButtonSkin::StatePressed : CVuikCaptionButtonSkin::StateNormal;
    return m_bHover ? CVuikCaptionButtonSkin::StateHover : CVuikCaptionButtonSkin::StateNormal;
}

LRESULT CVuikCaptionButtonCtrl::OnPaint(HWND hwnd, UINT, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    if (!BeginPaint(hwnd, &paint))
        return 0;
    if (SkinIsValid())
        OnPaint(&paint);
    else
        DrawPlaceHolder(paint.hdc);
    EndPaint(hwnd, &paint);
    return 0;
}
