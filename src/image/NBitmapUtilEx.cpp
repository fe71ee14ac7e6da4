#include "image/NBitmapUtilEx.h"

#include <cstring>

#include "frame/Handles.h"
#include "image/NBitmapInternal.h"

using namespace zcmod;

CNBitmapUtilEx::CNBitmapUtilEx()
{
    memset(m_bMirrored, 0, sizeof(m_bMirrored));
}

CNBitmapUtilEx::~CNBitmapUtilEx()
{
    Clear();
}

int CNBitmapUtilEx::MirrorBitmap(BitmapType type, int index)
{
    if (type < BT_IMAGE || type > BT_RESULT_RESIZED || !IsFrameIndex(index))
        return 0;
    const int width = GetBitmapWidth(type);
    const int height = GetBitmapHeight(type);
    if (!MirrorSection(type, index, 0, 0, width, height, 1, 0))
        return 0;
    m_bMirrored[type][index] = !m_bMirrored[type][index];
    return 1;
}

int CNBitmapUtilEx::IsMirrored(BitmapType type, int index) const
{
    if (type < BT_IMAGE || type > BT_RESULT_RESIZED || !IsFrameIndex(index))
        return 0;
    return m_bMirrored[type][index];
}

bool CNBitmapUtilEx::PrepareDraw(HDC dc, BitmapType type, int index, int mirror)
{
    if (!dc || !GetBitmapHandle(type, index))
        return false;
    if (mirror && !m_bMirrored[type][index])
        MirrorBitmap(type, index);
    return true;
}

int CNBitmapUtilEx::DrawBitmap(HDC dc, int x, int y, BitmapType type, int index, int mirror)
{
    if (!PrepareDraw(dc, type, index, mirror))
        return 0;
    MemoryDC memory(CreateCompatibleDC(dc));
    if (!memory)
        return 0;
    SelectGuard select(memory.Get(), GetBitmapHandle(type, index));
    return BitBlt(dc, x, y, GetBitmapWidth(type), GetBitmapHeight(type), memory.Get(), 0, 0, SRCCOPY) ? 1 : 0;
}

int CNBitmapUtilEx::DrawBitmap(HDC dc, int x, int y, int width, int height, BitmapType type, int index, int mirror)
{
    if (!PrepareDraw(dc, type, index, mirror))
        return 0;
    MemoryDC memory(CreateCompatibleDC(dc));
    if (!memory)
        return 0;
    SelectGuard select(memory.Get(), GetBitmapHandle(type, index));
    return StretchBlt(dc, x, y, width, height, memory.Get(), 0, 0, GetBitmapWidth(type), GetBitmapHeight(type), SRCCOPY)
               ? 1
               : 0;
}

int CNBitmapUtilEx::DrawBitmap(HDC dc, const RECT* rect, BitmapType type, int index, int mirror)
{
    if (!rect)
        return 0;
    return DrawBitmap(dc, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top, type, index,
                      mirror);
}
