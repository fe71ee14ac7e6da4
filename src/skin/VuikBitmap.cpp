#include "zcmod/VuikBitmap.h"

#include <cstdlib>

#include "frame/Handles.h"
#include "image/NBitmapInternal.h"
#include "zcmod/VuikLib.h"

using namespace zcmod;

namespace {

// Fills `description` of `bitmap`, or clears it for none. When the bitmap can't be measured (a width of 0),
// the geometry of store `type` is written into `fallback` instead.
void Describe(CNBitmapUtil& util, HBITMAP bitmap, BitmapType type, BITMAP& description, BITMAP& fallback)
{
    description = BITMAP();
    if (!bitmap)
        return;
    GetObjectW(bitmap, sizeof(description), &description);
    if (description.bmWidth == 0) {
        fallback.bmWidth = util.GetBitmapWidth(type);
        fallback.bmHeight = util.GetBitmapHeight(type);
    }
}

// Deletes `bitmap` and clears it. Frame 0 of store `type` is deleted through the store, so that the store
// doesn't keep (and later delete again) a dead handle; any other bitmap directly.
void DeleteHandle(CNBitmapUtil& util, HBITMAP& bitmap, BitmapType type)
{
    if (!bitmap)
        return;
    if (util.GetBitmapHandle(type, 0) == bitmap)
        util.DeleteBitmap(type, 0);
    else
        DeleteObject(bitmap);
    bitmap = nullptr;
}

}  // namespace

CVuikBitmap::CVuikBitmap()
    : m_nPrimaryType(BT_IMAGE), m_hPrimary(nullptr), m_bmPrimary(), m_nMaskType(BT_ALPHA), m_hMask(nullptr), m_bmMask()
{
}

CVuikBitmap::~CVuikBitmap()
{
    // Only the stores free bitmaps: one given to Attach and not taken back stays alive.
    m_hPrimary = nullptr;
    m_bmPrimary = BITMAP();
    m_hMask = nullptr;
    m_bmMask = BITMAP();
}

CVuikBitmap::CVuikBitmap(const CVuikBitmap& other)
    : CNBitmapUtil(other),
      m_nPrimaryType(other.m_nPrimaryType),
      m_hPrimary(other.m_hPrimary),
      m_bmPrimary(other.m_bmPrimary),
      m_nMaskType(other.m_nMaskType),
      m_hMask(other.m_hMask),
      m_bmMask(other.m_bmMask)
{
}

CVuikBitmap& CVuikBitmap::operator=(const CVuikBitmap& other)
{
    if (this != &other) {
        CNBitmapUtil::operator=(other);
        m_nPrimaryType = other.m_nPrimaryType;
        m_hPrimary = other.m_hPrimary;
        m_bmPrimary = other.m_bmPrimary;
        m_nMaskType = other.m_nMaskType;
        m_hMask = other.m_hMask;
        m_bmMask = other.m_bmMask;
    }
    return *this;
}

void CVuikBitmap::LoadFromRes(HINSTANCE module, UINT id)
{
    m_nPrimaryType = BT_IMAGE;
    m_nMaskType = BT_ALPHA;
    // A load replaces what the object showed: neither an earlier picture (where this one can't be loaded) nor
    // its transparency plane (where this one has none) may stay.
    for (BitmapType type : {BT_IMAGE, BT_ALPHA, BT_IMAGE_RESIZED, BT_ALPHA_RESIZED})
        DeleteBitmap(type, 0);
    LoadBitmapFromRes(module, static_cast<int>(id), BT_IMAGE, 0);

    // Both scales must differ from 1 for anything to be resized.
    const double scaleX = CVuikLib::GetScaleX();
    const double scaleY = CVuikLib::GetScaleY();
    if (CVuikLib::GetAutoScale() && scaleX != 1.0 && scaleY != 1.0) {
        for (BitmapType type : {BT_IMAGE, BT_ALPHA}) {
            if (GetBitmapHandle(type, 0))
                Resize(type, 0, static_cast<int>(GetBitmapWidth(type) * scaleX),
                       static_cast<int>(GetBitmapHeight(type) * scaleY), 1);
        }
        m_nPrimaryType = BT_IMAGE_RESIZED;
        m_nMaskType = BT_ALPHA_RESIZED;
    }
    SetPrimary(GetBitmapHandle(m_nPrimaryType, 0));
    SetMask(GetBitmapHandle(m_nMaskType, 0));

    // Drawing code is written left to right: in a right-to-left layout the pictures turn round as they load.
    if (CVuikLib::IsLayoutRTL()) {
        if (m_hPrimary)
            CVuikLib::MirrorBitmap(m_hPrimary);
        if (m_hMask)
            CVuikLib::MirrorBitmap(m_hMask);
    }
}

void CVuikBitmap::Attach(HBITMAP bitmap)
{
    DeletePrimary();
    m_nPrimaryType = BT_IMAGE;
    SetPrimary(bitmap);
}

void CVuikBitmap::AttachMask(HBITMAP bitmap)
{
    DeleteMask();
    m_nMaskType = BT_ALPHA;
    SetMask(bitmap);
}

HBITMAP CVuikBitmap::Detach()
{
    HBITMAP bitmap = m_hPrimary;
    m_hPrimary = nullptr;
    m_bmPrimary = BITMAP();
    return bitmap;
}

HBITMAP CVuikBitmap::DetachMask()
{
    HBITMAP bitmap = m_hMask;
    m_hMask = nullptr;
    m_bmMask = BITMAP();
    return bitmap;
}

void CVuikBitmap::Mirror()
{
    if (m_hPrimary)
        CVuikLib::MirrorBitmap(m_hPrimary);
    if (m_hMask)
        CVuikLib::MirrorBitmap(m_hMask);
}

DWORD CVuikBitmap::GetPixel(int x, int y)
{
    char* pixels = GetBitmapHandle(m_nPrimaryType, 0) ? GetBitmapDataAlloc(m_nPrimaryType, 0) : nullptr;
    if (!pixels)
        return 0xFFFFFFFF;
    // 3 * x + 4 * y, whatever the picture's width: the number the tab skin samples its background with.
    // A position whose three bytes don't lie in the copy has no pixel.
    const int64_t at = 3ll * x + 4ll * y;
    const int64_t size = GetBitmapSize(m_nPrimaryType);
    DWORD colour = 0xFFFFFFFF;
    if (at >= 0 && at + 3 <= size) {
        const auto* p = reinterpret_cast<const unsigned char*>(pixels) + at;
        colour = p[0] + 256u * p[1] + 65536u * p[2];
    }
    free(pixels);
    return colour;
}

HRGN CVuikBitmap::PrimaryToRegion(DWORD colour, DWORD tolerance)
{
    return BitmapToRegion(m_nPrimaryType, 0, colour, tolerance);
}

HRGN CVuikBitmap::MaskToRegion(DWORD colour, DWORD tolerance)
{
    return BitmapToRegion(m_nMaskType, 0, colour, tolerance);
}

HBITMAP CVuikBitmap::GetBackgroundStaticDC(HDC hdc, int x, int y, int width, int height, int resized, int frame)
{
    if (width < 1)
        return SetError(ZBU_BAD_ARG4, nullptr);
    if (height < 1)
        return SetError(ZBU_BAD_ARG5, nullptr);
    if (!IsFrameIndex(frame))
        return nullptr;
    const BitmapType type = resized == 0 ? BT_BACKGROUND : BT_BACKGROUND_RESIZED;
    // A store of another geometry is replaced whole by an empty one; one of this geometry keeps its frames,
    // and the frame asked for is reused when it exists.
    CNBitmap* record = PrepareStore(type, width, height);
    if (!record)
        return SetError(ZBU_NO_STORE, nullptr);
    HBITMAP bitmap = record->m_hBitmap[frame];
    if (!bitmap) {
        bitmap = CreateCompatibleBitmap(hdc, width, height);
        if (!bitmap)
            return nullptr;
        record->m_hBitmap[frame] = bitmap;
        AdoptInfo(record, CreateBitmapInfoStruct(bitmap));
    }
    MemoryDC dc(CreateCompatibleDC(hdc));
    SelectGuard select(dc.Get(), bitmap);
    BitBlt(dc.Get(), 0, 0, width, height, hdc, x, y, SRCCOPY);
    return bitmap;
}

void CVuikBitmap::SetPrimary(HBITMAP bitmap)
{
    m_hPrimary = bitmap;
    Describe(*this, bitmap, m_nPrimaryType, m_bmPrimary, m_bmPrimary);
}

void CVuikBitmap::SetMask(HBITMAP bitmap)
{
    m_hMask = bitmap;
    // The fallback writes the store's geometry into the primary's description, not the mask's: the picture's
    // size is what callers read, and the mask has the primary's size.
    Describe(*this, bitmap, m_nMaskType, m_bmMask, m_bmPrimary);
}

void CVuikBitmap::DeletePrimary()
{
    DeleteHandle(*this, m_hPrimary, m_nPrimaryType);
}

void CVuikBitmap::DeleteMask()
{
    DeleteHandle(*this, m_hMask, m_nMaskType);
}
