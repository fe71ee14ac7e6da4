// CNBitmapUtil as a container and a loader: the stores and their records, the replace rule, the load dispatch,
// the picture-object route, resources, the pixel accessors, saving and the settings.
#include "zcmod/NBitmapUtil.h"

#include <ole2.h>
#include <olectl.h>
#include <shlwapi.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>

#include "frame/DibSection.h"
#include "frame/Handles.h"
#include "image/NBitmapInternal.h"
#include "zcmod/ResHandler.h"

using namespace zcmod;

namespace zcmod {

bool FrameGeometry(int width, int height, int& stride, int& size)
{
    if (width < 1 || height < 1)
        return false;
    const long long rowBytes = ((static_cast<long long>(width) * 3 + 3) / 4) * 4;
    const long long frameBytes = rowBytes * height;
    if (rowBytes > INT_MAX || frameBytes > INT_MAX)
        return false;
    stride = static_cast<int>(rowBytes);
    size = static_cast<int>(frameBytes);
    return true;
}

BITMAPINFO* NewInfo24(int width, int height)
{
    int stride = 0;
    int size = 0;
    if (!FrameGeometry(width, height, stride, size))
        return nullptr;
    auto* info = static_cast<BITMAPINFO*>(calloc(1, sizeof(BITMAPINFOHEADER) + 4));
    if (!info)
        return nullptr;
    info->bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info->bmiHeader.biWidth = width;
    info->bmiHeader.biHeight = height;
    info->bmiHeader.biPlanes = 1;
    info->bmiHeader.biBitCount = 24;
    info->bmiHeader.biCompression = BI_RGB;
    return info;
}

void FreeInfo(BITMAPINFO* info)
{
    free(info);
}

size_t InfoBytes(const BITMAPINFO* info)
{
    const DWORD colours = info->bmiHeader.biClrUsed;
    return sizeof(BITMAPINFOHEADER) + (colours > 1 ? colours * sizeof(RGBQUAD) : sizeof(RGBQUAD));
}

namespace {

// A header record with room for any palette a transfer may write back.
struct TransferInfo {
    BITMAPINFOHEADER header;
    RGBQUAD colours[256];
};

void PrepareTransfer(TransferInfo& transfer, const BITMAPINFO* info, bool topDown)
{
    memset(&transfer, 0, sizeof(transfer));
    transfer.header = info->bmiHeader;
    const DWORD colours = info->bmiHeader.biClrUsed < 256 ? info->bmiHeader.biClrUsed : 256;
    if (colours > 0)
        memcpy(transfer.colours, info->bmiColors, colours * sizeof(RGBQUAD));
    const LONG height = transfer.header.biHeight < 0 ? -transfer.header.biHeight : transfer.header.biHeight;
    transfer.header.biHeight = topDown ? -height : height;
}

}  // namespace

int ReadRows(HBITMAP bitmap, const BITMAPINFO* info, int start, int lines, void* bits, bool topDown)
{
    if (!bitmap || !info || !bits || lines < 1)
        return 0;
    // A frame that is a 24-bit section of the header's size is read in place.
    const int copied = CopySectionRows(bitmap, info->bmiHeader, start, lines, bits, topDown, false);
    if (copied >= 0)
        return copied;
    TransferInfo transfer;
    PrepareTransfer(transfer, info, topDown);
    WindowDC screen(nullptr);
    if (!screen)
        return 0;
    return GetDIBits(screen.Get(), bitmap, static_cast<UINT>(start), static_cast<UINT>(lines), bits,
                     reinterpret_cast<BITMAPINFO*>(&transfer), DIB_RGB_COLORS);
}

int WriteRows(HBITMAP bitmap, const BITMAPINFO* info, int start, int lines, const void* bits, bool topDown)
{
    if (!bitmap || !info || !bits || lines < 1)
        return 0;
    const int copied = CopySectionRows(bitmap, info->bmiHeader, start, lines, const_cast<void*>(bits), topDown, true);
    if (copied >= 0)
        return copied;
    TransferInfo transfer;
    PrepareTransfer(transfer, info, topDown);
    WindowDC screen(nullptr);
    if (!screen)
        return 0;
    return SetDIBits(screen.Get(), bitmap, static_cast<UINT>(start), static_cast<UINT>(lines), bits,
                     reinterpret_cast<BITMAPINFO*>(&transfer), DIB_RGB_COLORS);
}

bool BitmapSize(HBITMAP bitmap, int& width, int& height)
{
    BITMAP bm = {};
    if (!bitmap || GetObjectW(bitmap, sizeof(bm), &bm) == 0)
        return false;
    width = bm.bmWidth;
    height = bm.bmHeight;
    return true;
}

HBITMAP CreateSection24(int width, int height, void** bits)
{
    BITMAPINFO* info = NewInfo24(width, height);
    if (!info)
        return nullptr;
    void* pixels = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    FreeInfo(info);
    if (bitmap && bits)
        *bits = pixels;
    return bitmap;
}

}  // namespace zcmod

namespace {

// The resource id that ResTypeEnumFunc looks for: class-wide, like the descriptions of the transforms.
int s_nEnumResourceId = 0;

// The three characters after the last dot of a name, or an empty field when there is no dot.
void ExtensionField(const wchar_t* file, wchar_t field[4])
{
    field[0] = field[1] = field[2] = field[3] = 0;
    const wchar_t* dot = wcsrchr(file, L'.');
    if (!dot)
        return;
    for (int i = 0; i < 3 && dot[1 + i]; ++i)
        field[i] = dot[1 + i];
}

// True if, at any dot of the name but its first character, the rest of the name is `ext` (ignoring case).
bool FilenameExtensionCompare(const wchar_t* file, const wchar_t* ext)
{
    if (!file || !file[0])
        return false;
    for (const wchar_t* p = file + 1; *p; ++p) {
        if (*p == L'.' && _wcsicmp(p + 1, ext) == 0)
            return true;
    }
    return false;
}

}  // namespace

// ---- Construction and records -----------------------------------------------------------------------------------

CNBitmapUtil::CNBitmapUtil()
    : m_pStore(),
      m_nLoopCount(0),
      m_nJPEGFactor(50),
      m_bGIFErrorDiffusion(true),
      m_eLastError(ZBU_OK),
      m_crGIFBkColor(0xFFFFFFFF),
      m_nBlendFrame(-1),
      m_pBlendImage(nullptr),
      m_pBlendAlpha(nullptr),
      m_pBlendBackground(nullptr),
      m_pBlendResult(nullptr),
      m_nBlendRows(0),
      m_nBlendSet(0),
      m_nBlendBytes(0)
{
    // A record that can't be allocated stays null: every operation treats that as a missing store.
    for (CNBitmap*& record : m_pStore)
        record = NewRecord();
}

CNBitmapUtil::~CNBitmapUtil()
{
    Clear();
}

CNBitmapUtil::CNBitmapUtil(const CNBitmapUtil& other)
{
    memcpy(static_cast<void*>(this), &other, sizeof(*this));
}

CNBitmapUtil& CNBitmapUtil::operator=(const CNBitmapUtil& other)
{
    if (this != &other)
        memcpy(static_cast<void*>(this), &other, sizeof(*this));
    return *this;
}

CNBitmapUtil::CNBitmap* CNBitmapUtil::NewRecord()
{
    auto* record = new (std::nothrow) CNBitmap;
    if (record)
        memset(record, 0, sizeof(*record));
    return record;
}

void CNBitmapUtil::FreeRecord(CNBitmap* record)
{
    if (!record)
        return;
    for (HBITMAP& frame : record->m_hBitmap) {
        if (frame)
            DeleteObject(frame);
        frame = nullptr;
    }
    FreeInfo(record->m_pInfo);
    delete record;
}

HBITMAP CNBitmapUtil::FrameOf(const CNBitmap* record, int index)
{
    return record && IsFrameIndex(index) ? record->m_hBitmap[index] : nullptr;
}

CNBitmapUtil::CNBitmap* CNBitmapUtil::GetBitmapObject(BitmapType type)
{
    const int t = static_cast<int>(type);
    return t >= 0 && t < kStoreCount ? m_pStore[t] : nullptr;
}

void CNBitmapUtil::SetBitmapObject(BitmapType type, CNBitmap* record)
{
    const int t = static_cast<int>(type);
    if (t >= 0 && t < kStoreCount)
        m_pStore[t] = record;
}

CNBitmapUtil::CNBitmap* CNBitmapUtil::PrepareStore(BitmapType type, int width, int height)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record || !record->m_pInfo)
        return record;
    const BITMAPINFOHEADER& header = record->m_pInfo->bmiHeader;
    const LONG storedHeight = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    if (header.biWidth == width && storedHeight == height)
        return record;
    // One geometry per store: a frame of another size takes the store over with a fresh record.
    FreeRecord(record);
    record = NewRecord();
    SetBitmapObject(type, record);
    return record;
}

BITMAPINFO* CNBitmapUtil::CreateBitmapInfoStruct(HBITMAP bitmap)
{
    BITMAP bm = {};
    if (!bitmap || GetObjectW(bitmap, sizeof(bm), &bm) == 0)
        return nullptr;
    int stride = 0;
    int size = 0;
    if (!FrameGeometry(bm.bmWidth, bm.bmHeight, stride, size))
        return nullptr;
    const int bits = bm.bmPlanes * bm.bmBitsPixel;
    DWORD paletteEntries = 0;
    if (bits <= 8) {
        const int colourBits = bits == 1 ? 1 : (bits <= 4 ? 4 : 8);
        // Entries reserved for the palette: the colour-bit count XOR 2 (3, 6 or 10), not a power of two.
        paletteEntries = static_cast<DWORD>(colourBits ^ 2);
    }
    const size_t bytes = sizeof(BITMAPINFOHEADER) + (paletteEntries ? paletteEntries * sizeof(RGBQUAD) : 4);
    auto* info = static_cast<BITMAPINFO*>(calloc(1, bytes));
    if (!info)
        return nullptr;
    info->bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info->bmiHeader.biWidth = bm.bmWidth;
    info->bmiHeader.biHeight = bm.bmHeight;
    info->bmiHeader.biPlanes = bm.bmPlanes;
    info->bmiHeader.biBitCount = 24;
    info->bmiHeader.biCompression = BI_RGB;
    info->bmiHeader.biSizeImage = 0;
    info->bmiHeader.biClrUsed = paletteEntries;
    return info;
}

void CNBitmapUtil::AdoptInfo(CNBitmap* record, BITMAPINFO* info)
{
    if (!info)
        return;
    int stride = 0;
    int size = 0;
    const LONG height = info->bmiHeader.biHeight < 0 ? -info->bmiHeader.biHeight : info->bmiHeader.biHeight;
    if (!record || record->m_pInfo || !FrameGeometry(info->bmiHeader.biWidth, height, stride, size)) {
        FreeInfo(info);
        return;
    }
    record->m_pInfo = info;
    record->m_nStride = stride;
    record->m_nSize = size;
}

BITMAPINFO* CNBitmapUtil::CopyInfo(const BITMAPINFO* info)
{
    if (!info)
        return nullptr;
    const size_t bytes = InfoBytes(info);
    auto* copy = static_cast<BITMAPINFO*>(malloc(bytes));
    if (copy)
        memcpy(copy, info, bytes);
    return copy;
}

// ---- Access to the stores -------------------------------------------------------------------------------------

HBITMAP CNBitmapUtil::GetBitmapHandle(BitmapType type, int index)
{
    return FrameOf(GetBitmapObject(type), index);
}

BITMAPINFO* CNBitmapUtil::GetBitmapInfo(BitmapType type)
{
    CNBitmap* record = GetBitmapObject(type);
    return record ? record->m_pInfo : nullptr;
}

int CNBitmapUtil::GetBitmapWidth(BitmapType type)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record || !record->m_pInfo)
        return SetError(ZBU_NO_BITMAP, 0);
    return record->m_pInfo->bmiHeader.biWidth;
}

int CNBitmapUtil::GetBitmapHeight(BitmapType type)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record)
        return SetError(ZBU_NO_STORE, 0);
    if (!record->m_pInfo)
        return SetError(ZBU_NO_BITMAP, 0);
    const LONG height = record->m_pInfo->bmiHeader.biHeight;
    return height < 0 ? -height : height;
}

int CNBitmapUtil::GetBitmapSize(BitmapType type)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record)
        return SetError(ZBU_NO_STORE, 0);
    if (!record->m_pInfo)
        return SetError(ZBU_NO_BITMAP, 0);
    return record->m_nSize;
}

int CNBitmapUtil::GetNumberOfBitmaps(CNBitmap* record)
{
    if (!record)
        return 0;
    int count = 0;
    for (HBITMAP frame : record->m_hBitmap)
        count += frame ? 1 : 0;
    return count;
}

int CNBitmapUtil::GetNumberOfBitmaps(BitmapType type)
{
    return GetNumberOfBitmaps(GetBitmapObject(type));
}

int CNBitmapUtil::GetFirstImageIndex(CNBitmap* record)
{
    if (!record)
        return -1;
    for (int i = 0; i < kFramesPerStore; ++i) {
        if (record->m_hBitmap[i])
            return i;
    }
    return -1;
}

int CNBitmapUtil::GetFirstBitmapIndex(BitmapType type)
{
    const int first = GetFirstImageIndex(GetBitmapObject(type));
    return first < 0 ? 0 : first;
}

int CNBitmapUtil::GetFrameDelay(BitmapType type, int index)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record)
        return SetError(ZBU_NO_BITMAP, 0);
    return IsFrameIndex(index) ? record->m_nDelay[index] : 0;
}

int CNBitmapUtil::SetFrameDelay(BitmapType type, int index, int delay)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record)
        return SetError(ZBU_NO_BITMAP, 0);
    if (!IsFrameIndex(index))
        return 0;
    const int former = record->m_nDelay[index];
    record->m_nDelay[index] = delay;
    return former;
}

HBITMAP CNBitmapUtil::DeleteBitmap(CNBitmap* record, int index)
{
    HBITMAP frame = FrameOf(record, index);
    if (!frame)
        return nullptr;
    DeleteObject(frame);
    record->m_hBitmap[index] = nullptr;
    record->m_nDelay[index] = 0;
    if (GetNumberOfBitmaps(record) == 0) {
        // The header goes with the last frame; stride and size keep their values.
        FreeInfo(record->m_pInfo);
        record->m_pInfo = nullptr;
    }
    return frame;
}

HBITMAP CNBitmapUtil::DeleteBitmap(BitmapType type, int index)
{
    return DeleteBitmap(GetBitmapObject(type), index);
}

void CNBitmapUtil::Clear()
{
    for (CNBitmap*& record : m_pStore) {
        FreeRecord(record);
        record = nullptr;
    }
    DeleteAlphaBlendBuffers();
}

HBITMAP CNBitmapUtil::SetBitmap(HWND control, BitmapType type, int index)
{
    if (!control)
        return SetError(ZBU_BAD_ARG1, nullptr);
    HBITMAP frame = GetBitmapHandle(type, index);
    if (frame)
        SendMessageW(control, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(frame));
    return frame;
}

ZBUError CNBitmapUtil::GetLastError()
{
    return m_eLastError;
}

int CNBitmapUtil::WideToMulti(const wchar_t*, char*, int)
{
    return 0;
}
int CNBitmapUtil::MultiToWide(const char*, wchar_t*, int)
{
    return 0;
}
void CNBitmapUtil::OutputLastError() {}
void CNBitmapUtil::OutputDebugMsg(const wchar_t*) {}

// ---- Pixels -----------------------------------------------------------------------------------------------------

CNBitmapUtil::CNBitmap* CNBitmapUtil::TransferRecord(BitmapType type, const char* buffer)
{
    if (!buffer)
        return SetError(ZBU_BAD_ARG2, nullptr);
    CNBitmap* record = GetBitmapObject(type);
    if (!record)
        return SetError(ZBU_NO_STORE, nullptr);
    if (!record->m_pInfo || record->m_nSize < 1)
        return SetError(ZBU_NO_BITMAP, nullptr);
    return record;
}

BOOL CNBitmapUtil::GetBitmapData(BitmapType type, int index, char* buffer)
{
    CNBitmap* record = TransferRecord(type, buffer);
    if (!record)
        return FALSE;
    const int height = GetBitmapHeight(type);
    return ReadRows(FrameOf(record, index), record->m_pInfo, 0, height, buffer, true) > 0;
}

BOOL CNBitmapUtil::SetBitmapData(BitmapType type, int index, char* buffer)
{
    CNBitmap* record = TransferRecord(type, buffer);
    if (!record)
        return FALSE;
    const int height = GetBitmapHeight(type);
    return WriteRows(FrameOf(record, index), record->m_pInfo, 0, height, buffer, true) > 0;
}

BOOL CNBitmapUtil::GetBitmapDataNA(BitmapType type, int index, char* buffer)
{
    CNBitmap* record = TransferRecord(type, buffer);
    if (!record)
        return FALSE;
    HBITMAP frame = FrameOf(record, index);
    const int width = record->m_pInfo->bmiHeader.biWidth;
    const int height = GetBitmapHeight(type);
    const size_t rowBytes = static_cast<size_t>(width) * 3;
    // A scan line arrives padded; only its width * 3 bytes belong in the tight layout.
    auto* row = static_cast<char*>(malloc(static_cast<size_t>(record->m_nStride)));
    if (!row)
        return FALSE;
    BOOL ok = TRUE;
    for (int y = 0; y < height; ++y) {
        if (ReadRows(frame, record->m_pInfo, height - y - 1, 1, row, false) < 1) {
            ok = FALSE;
            break;
        }
        memcpy(buffer + rowBytes * y, row, rowBytes);
    }
    free(row);
    return ok;
}

BOOL CNBitmapUtil::SetBitmapDataNA(BitmapType type, int index, char* buffer)
{
    CNBitmap* record = TransferRecord(type, buffer);
    if (!record)
        return FALSE;
    HBITMAP frame = FrameOf(record, index);
    const int width = record->m_pInfo->bmiHeader.biWidth;
    const int height = GetBitmapHeight(type);
    const size_t rowBytes = static_cast<size_t>(width) * 3;
    auto* row = static_cast<char*>(calloc(1, static_cast<size_t>(record->m_nStride)));
    if (!row)
        return FALSE;
    BOOL ok = TRUE;
    for (int y = 0; y < height; ++y) {
        memcpy(row, buffer + rowBytes * y, rowBytes);
        if (WriteRows(frame, record->m_pInfo, height - y - 1, 1, row, false) < 1) {
            ok = FALSE;
            break;
        }
    }
    free(row);
    return ok;
}

char* CNBitmapUtil::GetBitmapDataAlloc(BitmapType type, int index)
{
    const int size = GetBitmapSize(type);
    if (size < 1)
        return nullptr;
    auto* buffer = static_cast<char*>(calloc(1, static_cast<size_t>(size)));
    if (buffer)
        GetBitmapData(type, index, buffer);
    return buffer;
}

char* CNBitmapUtil::GetBitmapDataNAAlloc(BitmapType type, int index)
{
    const int size = GetBitmapSize(type);
    if (size < 1)
        return nullptr;
    auto* buffer = static_cast<char*>(calloc(1, static_cast<size_t>(size)));
    if (buffer)
        GetBitmapDataNA(type, index, buffer);
    return buffer;
}

// ---- Loading ----------------------------------------------------------------------------------------------------

HBITMAP CNBitmapUtil::NLoadBitmap(const wchar_t* file, BitmapType type, int index)
{
    if (!file)
        return SetError(ZBU_BAD_ARG1, nullptr);
    if (!IsFrameIndex(index))
        return nullptr;
    DeleteBitmap(type, index);
    LoadBitmapFromFile(file, type, index);
    // A load may have replaced the record: fetch it again.
    return GetBitmapHandle(type, index);
}

HBITMAP CNBitmapUtil::NLoadBitmap(HINSTANCE module, int id, BitmapType type, int index)
{
    if (!module)
        return SetError(ZBU_BAD_ARG1, nullptr);
    if (id == 0)
        return SetError(ZBU_BAD_ARG2, nullptr);
    if (!IsFrameIndex(index))
        return nullptr;
    DeleteBitmap(type, index);
    LoadBitmapFromRes(module, id, type, index);
    HBITMAP frame = GetBitmapHandle(type, index);
    if (frame)
        m_eLastError = ZBU_OK;
    return frame;
}

HBITMAP CNBitmapUtil::LoadBitmapFromFile(const wchar_t* file, BitmapType type, int index)
{
    if (!GetBitmapObject(type) || !file || !IsFrameIndex(index))
        return nullptr;
    DeleteAlphaBlendBuffers();

    // The decoder is chosen by the extension's first three characters alone; contents are not looked at.
    wchar_t field[4];
    ExtensionField(file, field);
    if (wcslen(field) != 3)
        return nullptr;

    if (_wcsicmp(field, L"JPG") == 0 || _wcsicmp(field, L"BMP") == 0)
        return LoadBitmapUsingStream(file, type, index);
    if (_wcsicmp(field, L"PNG") == 0)
        return LoadPNGFile(file, type, index);
    if (_wcsicmp(field, L"GIF") == 0) {
        FILE* f = _wfopen(file, L"rb");
        if (!f)
            return nullptr;
        long length = 0;
        if (fseek(f, 0, SEEK_END) == 0)
            length = ftell(f);
        if (length <= 0 || fseek(f, 0, SEEK_SET) != 0) {
            fclose(f);
            return nullptr;
        }
        GlobalMemory memory(GlobalAlloc(GMEM_MOVEABLE, static_cast<SIZE_T>(length)));
        bool read = false;
        if (memory) {
            void* bytes = GlobalLock(memory.Get());
            if (bytes) {
                read = fread(bytes, 1, static_cast<size_t>(length), f) == static_cast<size_t>(length);
                GlobalUnlock(memory.Get());
            }
        }
        fclose(f);
        if (!read)
            return nullptr;
        HBITMAP first = LoadGifPicture(memory.Get(), static_cast<unsigned long>(length), type);
        if (first)
            return first;
        // Fewer than two images: a still GIF is the picture decoder's.
        return LoadBitmapUsingStream(file, type, index);
    }
    HBITMAP frame = LoadWBMPFile(file, type, index);
    if (!frame)
        frame = LoadOTABMPFile(file, type, index);
    return frame;
}

namespace {

template <class T>
void ReleaseCom(T*& p)
{
    if (p) {
        p->Release();
        p = nullptr;
    }
}

int HimetricToPixels(long himetric, int dpi)
{
    const long long pixels = (static_cast<long long>(dpi) * himetric + 1270) / 2540;
    return pixels > INT_MAX || pixels < INT_MIN ? 0 : static_cast<int>(pixels);
}

}  // namespace

HBITMAP CNBitmapUtil::LoadBitmapUsingStream(const wchar_t* file, BitmapType type, int index)
{
    if (!file || !IsFrameIndex(index) || !GetBitmapObject(type))
        return nullptr;
    IStream* stream = nullptr;
    IPicture* picture = nullptr;
    IPersistStream* persist = nullptr;
    IPicture* loaded = nullptr;
    HBITMAP result = nullptr;

    do {
        if (FAILED(SHCreateStreamOnFileW(file, STGM_READ | STGM_SHARE_DENY_WRITE, &stream)))
            break;
        if (FAILED(OleCreatePictureIndirect(nullptr, IID_IPicture, TRUE, reinterpret_cast<void**>(&picture))))
            break;
        if (FAILED(picture->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist))))
            break;
        if (FAILED(persist->Load(stream)))
            break;
        if (FAILED(persist->QueryInterface(IID_IPicture, reinterpret_cast<void**>(&loaded))))
            break;
        OLE_XSIZE_HIMETRIC himetricWidth = 0;
        OLE_YSIZE_HIMETRIC himetricHeight = 0;
        if (FAILED(loaded->get_Width(&himetricWidth)) || FAILED(loaded->get_Height(&himetricHeight)))
            break;

        WindowDC screen(nullptr);
        if (!screen)
            break;
        const int width = HimetricToPixels(himetricWidth, GetDeviceCaps(screen.Get(), LOGPIXELSX));
        const int height = HimetricToPixels(himetricHeight, GetDeviceCaps(screen.Get(), LOGPIXELSY));
        int stride = 0;
        int size = 0;
        if (!FrameGeometry(width, height, stride, size))
            break;
        BitmapHandle bitmap(CreateCompatibleBitmap(screen.Get(), width, height));
        MemoryDC dc(CreateCompatibleDC(screen.Get()));
        if (!bitmap || !dc)
            break;
        bool rendered = false;
        {
            SelectGuard select(dc.Get(), bitmap.Get());
            BrushHandle brush(CreateSolidBrush(m_crGIFBkColor));
            RECT all = {0, 0, width, height};
            if (brush)
                FillRect(dc.Get(), &all, brush.Get());
            rendered = SUCCEEDED(loaded->Render(dc.Get(), 0, 0, width, height, 0, himetricHeight, himetricWidth,
                                                -himetricHeight, nullptr));
        }
        if (!rendered)
            break;

        CNBitmap* record = PrepareStore(type, width, height);
        if (!record)
            break;
        DeleteBitmap(record, index);
        record->m_hBitmap[index] = bitmap.Release();
        if (!record->m_pInfo)
            AdoptInfo(record, CreateBitmapInfoStruct(record->m_hBitmap[index]));
        result = record->m_hBitmap[index];
    } while (false);

    ReleaseCom(loaded);
    ReleaseCom(persist);
    ReleaseCom(picture);
    ReleaseCom(stream);
    return result;
}

BOOL CALLBACK CNBitmapUtil::ResTypeEnumFunc(HMODULE module, LPWSTR type, LONG_PTR result)
{
    // Types given by number, and the empty name, are not searched.
    if (IS_INTRESOURCE(type) || !type[0])
        return TRUE;
    HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(s_nEnumResourceId), type);
    if (!found)
        return TRUE;
    *reinterpret_cast<HRSRC*>(result) = found;
    return FALSE;
}

HBITMAP CNBitmapUtil::LoadBitmapFromRes(HINSTANCE module, int id, BitmapType type, int index)
{
    CNBitmap* record = GetBitmapObject(type);
    if (!record)
        return SetError(ZBU_BAD_ARG1, nullptr);
    if (!module)
        return SetError(ZBU_BAD_ARG2, nullptr);
    if (id == 0)
        return SetError(ZBU_BAD_ARG3, nullptr);
    if (!IsFrameIndex(index))
        return nullptr;
    DeleteAlphaBlendBuffers();

    // A BITMAP resource goes straight into the slot.
    HBITMAP bitmap = LoadBitmapW(module, MAKEINTRESOURCEW(id & 0xFFFF));
    if (bitmap) {
        if (record->m_hBitmap[index] && record->m_hBitmap[index] != bitmap)
            DeleteObject(record->m_hBitmap[index]);
        record->m_hBitmap[index] = bitmap;
        if (!record->m_pInfo)
            AdoptInfo(record, CreateBitmapInfoStruct(bitmap));
        return bitmap;
    }

    // Otherwise the first resource of a named type that holds the id.
    HRSRC found = nullptr;
    s_nEnumResourceId = id;
    EnumResourceTypesW(module, ResTypeEnumFunc, reinterpret_cast<LONG_PTR>(&found));
    if (!found)
        return SetError(ZBU_RESOURCE_NOT_FOUND, nullptr);
    HGLOBAL handle = LoadResource(module, found);
    void* bytes = handle ? LockResource(handle) : nullptr;
    const DWORD size = SizeofResource(module, found);
    if (!bytes || size < 1)
        return SetError(ZBU_RESOURCE_EMPTY, nullptr);
    HBITMAP frame = LoadPNGFromMem(static_cast<unsigned char*>(bytes), size, type, index);
    if (frame)
        return frame;

    // Not a PNG: through a temporary file, whose extension sends it to the WBMP and OTA decoders.
    wchar_t folder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    if (length == 0 || length >= MAX_PATH)
        return SetError(ZBU_TEMP_PATH, nullptr);
    if (folder[length - 1] != L'\\') {
        if (length + 1 >= MAX_PATH)
            return SetError(ZBU_TEMP_PATH, nullptr);
        folder[length] = L'\\';
        folder[length + 1] = 0;
    }
    wchar_t name[MAX_PATH] = {};
    if (GetTempFileNameW(folder, L"ZBU", 0, name) == 0)
        return SetError(ZBU_TEMP_FILE, nullptr);
    FILE* f = _wfopen(name, L"wb");
    if (!f) {
        m_eLastError = ZBU_TEMP_FILE;
        _wremove(name);
        return nullptr;
    }
    fwrite(bytes, 1, size, f);
    fclose(f);
    frame = LoadBitmapFromFile(name, type, index);
    _wremove(name);
    return frame;
}

int CNBitmapUtil::IsFileValid(const wchar_t* file)
{
    if (!file)
        return 0;
    FILE* f = _wfopen(file, L"rb");
    if (!f)
        return 0;
    unsigned char head[10] = {};
    if (fread(head, 1, sizeof(head), f) != sizeof(head)) {
        fclose(f);
        return 0;
    }
    int valid = 1;
    if (FilenameExtensionCompare(file, L"gif")) {
        valid = 0;
        if (memcmp(head, "GIF", 3) == 0 && fseek(f, -1, SEEK_END) == 0) {
            unsigned char last = 0;
            valid = fread(&last, 1, 1, f) == 1 && last == 0x3B;
        }
    } else if (FilenameExtensionCompare(file, L"bmp")) {
        valid = head[0] == 'B' && head[1] == 'M';
    } else if (FilenameExtensionCompare(file, L"png")) {
        static const unsigned char signature[8] = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A};
        valid = memcmp(head, signature, sizeof(signature)) == 0;
    } else if (FilenameExtensionCompare(file, L"jpg") || FilenameExtensionCompare(file, L"jpeg")) {
        valid = head[0] == 0xFF && head[1] == 0xD8;
    }
    fclose(f);
    return valid;
}

// ---- Saving -----------------------------------------------------------------------------------------------------

int CNBitmapUtil::SaveBitmap(const wchar_t* file, BitmapFormat format, BitmapType type, int index)
{
    m_eLastError = ZBU_OK;
    if (!file)
        return SetError(ZBU_BAD_ARG1, 0);
    CNBitmap* record = GetBitmapObject(type);
    HBITMAP frame = FrameOf(record, index);
    if (!frame || !record->m_pInfo || record->m_nSize < 1)
        return SetError(ZBU_NO_BITMAP, 0);
    auto* pixels = static_cast<char*>(calloc(1, static_cast<size_t>(record->m_nSize)));
    if (!pixels)
        return 0;
    const int rows = ReadRows(frame, record->m_pInfo, 0, GetBitmapHeight(type), pixels, false);
    if (rows < 1) {
        free(pixels);
        return 0;
    }
    int result = 0;
    switch (format) {
        case BF_JPEG:
        case BF_GIF:
            m_eLastError = ZBU_BAD_FORMAT;
            break;
        case BF_BMP:
            result = EncodeSaveBMP(pixels, record, file);
            break;
        case BF_PNG:
            result = EncodeSavePNG(pixels, record, file);
            break;
        case BF_OTA:
            result = EncodeSaveOTABMP(pixels, record, file);
            break;
        case BF_WBMP:
            result = EncodeSaveWBMP(pixels, record, file);
            break;
        default:
            // An unknown format writes nothing and answers with the rows read.
            result = rows;
            break;
    }
    free(pixels);
    return result;
}

// ---- Settings ---------------------------------------------------------------------------------------------------

COLORREF CNBitmapUtil::SetGIFBkColor(COLORREF color)
{
    const COLORREF former = m_crGIFBkColor;
    m_crGIFBkColor = color;
    return former;
}

int CNBitmapUtil::SetLoopCount(int count)
{
    const int former = m_nLoopCount;
    m_nLoopCount = count;
    return former;
}

int CNBitmapUtil::GetLoopCount()
{
    return m_nLoopCount;
}

bool CNBitmapUtil::SetGIFErrorDiffusion(bool diffusion)
{
    const bool former = m_bGIFErrorDiffusion;
    m_bGIFErrorDiffusion = diffusion;
    return former;
}

// ---- The export -------------------------------------------------------------------------------------------------

HBITMAP ZCMOD_LoadBitmap(UINT id)
{
    HWND desktop = GetDesktopWindow();
    WindowDC desktopDC(desktop);
    CNBitmapUtil util;
    HBITMAP copy = nullptr;
    HMODULE graphics = ZCMOD_GetCommonZGR();
    HBITMAP loaded = graphics ? util.NLoadBitmap(graphics, static_cast<int>(id), BT_IMAGE, 0) : nullptr;
    if (loaded && desktopDC) {
        const int width = util.GetBitmapWidth(BT_IMAGE);
        const int height = util.GetBitmapHeight(BT_IMAGE);
        BitmapHandle made(CreateCompatibleBitmap(desktopDC.Get(), width, height));
        if (made && CopyBitmapPiece(desktopDC.Get(), made.Get(), 0, 0, width, height, loaded, 0, 0))
            copy = made.Release();
    }
    util.Clear();
    return copy;
}
