// CNBitmapUtil: eight frame stores of up to 512 frames each, the loaders and writers of the picture formats
// phones use, and the transforms that make new pixels from stored frames.
//
// A frame is a platform bitmap that the store owns. All frames of a store share one geometry, recorded in a
// 24-bit BITMAPINFO header. Pixel buffers are 24-bit blue, green, red in one of three layouts:
//   padded bottom-up  (last image row first, rows padded to 4 bytes): SaveBitmap, the blend buffers, BMP
//   padded top-down   (first row first, padded):                       GetBitmapData, SetBitmapData
//   tight top-down    (first row first, width * 3 bytes a row):        GetBitmapDataNA, SetBitmapDataNA,
//                                                                      CreateBitmapFromData, the decoders
// Failures are returned (null, 0, false, -1). GetLastError gives a last-error word that many failure paths
// leave as it was, so read the result first.
//
// Not thread-safe, also across objects: some working variables are class-wide. Use it on the thread of the
// user interface.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"
#include "zcmod/NBitmapTypes.h"

namespace zcmod {
struct PngImage;
}

class ZCMOD_API CNBitmapUtil {
public:
    // One store: frames exist where their handle is not null.
    struct CNBitmap {
        HBITMAP m_hBitmap[512];
        int m_nDelay[512];    // milliseconds
        BITMAPINFO* m_pInfo;  // geometry of every frame of the store; null until the first frame arrives
        int m_nStride;        // bytes of one padded row: width * 3 rounded up to a multiple of 4
        int m_nSize;          // bytes of one padded frame: height * m_nStride
    };
    typedef ZBUGIFFileStruct CGIFFileStruct;

    CNBitmapUtil();
    ~CNBitmapUtil();
    // Copies are flat: two objects then share the records and both free them. Don't copy a loaded object.
    CNBitmapUtil(const CNBitmapUtil& other);
    CNBitmapUtil& operator=(const CNBitmapUtil& other);

    // ---- Loading --------------------------------------------------------------------------------------------
    // Loads by the file's extension (JPG, BMP, GIF, PNG; any other three letters try WBMP, then OTA) into
    // frame `index` of store `type`, replacing what is there. Returns the frame's handle or null.
    HBITMAP NLoadBitmap(const wchar_t* file, BitmapType type, int index);
    // Loads resource `id` of `module`: a BITMAP resource, or a PNG, WBMP or OTA picture in a resource of a
    // named type. Clears the error when the frame exists afterwards.
    HBITMAP NLoadBitmap(HINSTANCE module, int id, BitmapType type, int index);
    // 1 when the file's first bytes agree with its extension (gif, bmp, png, jpg, jpeg); other extensions
    // need only to open and hold ten bytes.
    static int IsFileValid(const wchar_t* file);

    // ---- The stores ------------------------------------------------------------------------------------------
    HBITMAP GetBitmapHandle(BitmapType type, int index);
    BITMAPINFO* GetBitmapInfo(BitmapType type);
    int GetBitmapWidth(BitmapType type);
    int GetBitmapHeight(BitmapType type);
    int GetBitmapSize(BitmapType type);
    int GetNumberOfBitmaps(BitmapType type);
    // The lowest existing frame, or 0 when there is none.
    int GetFirstBitmapIndex(BitmapType type);
    int GetFrameDelay(BitmapType type, int index);
    // Returns the former delay.
    int SetFrameDelay(BitmapType type, int index, int delay);
    // Frees the frame; the store's header goes with its last frame. Returns the former (now invalid) handle.
    HBITMAP DeleteBitmap(BitmapType type, int index);
    // Frees all eight stores for good: afterwards the object is fit only for destruction.
    void Clear();
    // Shows a frame in a static control (STM_SETIMAGE); the store keeps the bitmap.
    HBITMAP SetBitmap(HWND control, BitmapType type, int index);
    ZBUError GetLastError();

    // Kept for old callers; they do nothing.
    int WideToMulti(const wchar_t* wide, char* multi, int capacity);
    int MultiToWide(const char* multi, wchar_t* wide, int capacity);
    void OutputLastError();
    void OutputDebugMsg(const wchar_t* message);

    // ---- Pixels of one frame -----------------------------------------------------------------------------------
    // Padded top-down, GetBitmapSize bytes.
    BOOL GetBitmapData(BitmapType type, int index, char* buffer);
    BOOL SetBitmapData(BitmapType type, int index, char* buffer);
    // Tight top-down, width * 3 * height bytes.
    BOOL GetBitmapDataNA(BitmapType type, int index, char* buffer);
    BOOL SetBitmapDataNA(BitmapType type, int index, char* buffer);

    // ---- Saving ------------------------------------------------------------------------------------------------
    // Returns the bytes written, or 0. BF_JPEG and BF_GIF are refused with ZBU_BAD_FORMAT.
    int SaveBitmap(const wchar_t* file, BitmapFormat format, BitmapType type, int index);

    // ---- Settings ----------------------------------------------------------------------------------------------
    // Fill colour of GIF frames and pictures (COLORREF); 0xFFFFFFFF lets a GIF's own background apply.
    COLORREF SetGIFBkColor(COLORREF color);
    int SetLoopCount(int count);
    // 1 for a GIF without a looping block or one that loops for ever, n + 1 for one that says n.
    int GetLoopCount();
    bool SetGIFErrorDiffusion(bool diffusion);
    // 0 to 100; returns the former value, or -1 with ZBU_BAD_ARG1 for anything else.
    int SetJPEGCompressionFactor(int factor);

    // ---- Transforms --------------------------------------------------------------------------------------------
    int CreateBitmapFromData(int width, int height, char* data, BitmapType type, int index);
    int CreateBitmapFromHandle(HBITMAP source, BitmapType type, int index);
    // A new bitmap of a piece of `source`, owned by the caller.
    HBITMAP CreateBitmapFromBitmapSection(int x, int y, int width, int height, HBITMAP source);
    int Clone(BitmapType from, int fromIndex, BitmapType to, int toIndex);
    // Stores 0 to 3 resize into store type + 4. Mode 1 is smooth (HALFTONE), any other nearest (COLORONCOLOR).
    int Resize(BitmapType type, int index, int width, int height, int mode);
    int ResizeRelative(BitmapType type, int index, int percentWidth, int percentHeight, int mode);
    // Bilinear resize of a rectangle into store type + 4, with edge-weighted noise when both edgeDivisor and
    // noiseBase are non-zero. Always returns 0.
    int ResizeDither(BitmapType type, int index, int srcX, int srcY, int srcWidth, int srcHeight, int dstWidth,
                     int dstHeight, int edgeDivisor, int noiseBase);
    // Blends image and transparency plane over the background of one set (0: stores 0-3, else 4-7) into its
    // result store. Mode 0 blends and keeps its buffers for the next call, 1 only releases them, 2 blends and
    // releases. Returns the scan lines written, or -1.
    int AlphaBlendBitmaps(int mode, int set, int index);
    // The same over the piece of a larger background at (x, y).
    int AlphaBlendBitmapsBGPos(int mode, int x, int y, int set, int index);
    void AlphaBlendFunction(unsigned char* image, unsigned char* alpha, unsigned char* background,
                            unsigned char* result, int count);
    // Tiles frame `index` of store `type` over width x height into BT_RESULT.
    int CreateTiledBitmap(int width, int height, BitmapType type, int index);
    // Fills the set's background frame, at the image's size, with `color` (COLORREF).
    int CreateColorBackground(unsigned long color, int set, int index);
    // A region (owned by the caller) of every pixel that does not match `color` (0x00RRGGBB) within tolerance.
    HRGN BitmapToRegion(BitmapType type, int index, unsigned long color, unsigned long tolerance);
    int MirrorSection(BitmapType type, int index, int x, int y, int width, int height, int flipX, int flipY);
    // Captures a piece of a window as the set's background frame.
    HBITMAP GetBackgroundStatic(HWND window, int x, int y, int width, int height, int set, int index);
    int SetBitmapStatic(HWND window, int x, int y, int width, int height, BitmapType type, int index, int srcX,
                        int srcY);
    int SetBitmapStaticAlpha(HWND window, int x, int y, int width, int height, BitmapType type, int index, int srcX,
                             int srcY, int alpha);
    // Frees the kept blend buffers; every load does this.
    void DeleteAlphaBlendBuffers();

protected:
    HBITMAP LoadBitmapFromFile(const wchar_t* file, BitmapType type, int index);
    HBITMAP LoadBitmapUsingStream(const wchar_t* file, BitmapType type, int index);
    HBITMAP LoadBitmapFromRes(HINSTANCE module, int id, BitmapType type, int index);

    CNBitmap* GetBitmapObject(BitmapType type);
    void SetBitmapObject(BitmapType type, CNBitmap* record);
    int GetNumberOfBitmaps(CNBitmap* record);
    // The lowest existing frame, or -1 when there is none.
    int GetFirstImageIndex(CNBitmap* record);
    HBITMAP DeleteBitmap(CNBitmap* record, int index);
    // m_nSize bytes allocated with malloc, filled as far as the transfer went; the caller frees them. Null
    // (with the error set) without a header, or when out of memory.
    char* GetBitmapDataAlloc(BitmapType type, int index);
    // The store of a pixel transfer into or out of `buffer`; null, with the error set, when the buffer, the
    // record or its header is missing.
    CNBitmap* TransferRecord(BitmapType type, const char* buffer);
    // Records `error` as the last error and gives back `result`, for the failure paths that set one.
    template <class T>
    T SetError(ZBUError error, T result)
    {
        m_eLastError = error;
        return result;
    }
    char* GetBitmapDataNAAlloc(BitmapType type, int index);

    // Before a frame of width x height enters store `type`: a store with a header of another geometry is
    // freed with all its frames and replaced by a fresh record. Returns the store's record.
    CNBitmap* PrepareStore(BitmapType type, int width, int height);
    static CNBitmap* NewRecord();
    static void FreeRecord(CNBitmap* record);
    // The 24-bit header record of a bitmap (see the colour-count rule in the .cpp); null on failure.
    static BITMAPINFO* CreateBitmapInfoStruct(HBITMAP bitmap);
    // Gives `info` to `record` when it has no header yet, setting stride and size; frees it otherwise.
    static void AdoptInfo(CNBitmap* record, BITMAPINFO* info);
    // A copy of a header record (with its palette area); null when out of memory.
    static BITMAPINFO* CopyInfo(const BITMAPINFO* info);
    // The frame of `record` at `index`; null for an index outside 0 to 511 or a missing record.
    static HBITMAP FrameOf(const CNBitmap* record, int index);
    // Finds the first resource of a named type that holds the id being looked for.
    static BOOL CALLBACK ResTypeEnumFunc(HMODULE module, LPWSTR type, LONG_PTR result);

    int CreateBitmapFromData(int width, int height, char* data, CNBitmap* record, int index);

    // GIF
    unsigned GetGIFFileStructure(unsigned char* data, unsigned int size, CGIFFileStruct* info,
                                 unsigned long* background);
    HBITMAP LoadGifPicture(void* memory, unsigned long size, BitmapType type);
    // `size` bounds every read of `data`.
    HBITMAP LoadGIFFileImages(CNBitmap* record, unsigned char* data, unsigned int size, unsigned int count,
                              const CGIFFileStruct& info, unsigned long background);
    int EncodeSaveGIF(CNBitmap* record, const wchar_t* file, int unused);
    // WBMP and OTA
    HBITMAP LoadWBMPFile(const wchar_t* file, BitmapType type, int index);
    HBITMAP LoadOTABMPFile(const wchar_t* file, BitmapType type, int index);
    int EncodeSaveWBMP(char* pixels, CNBitmap* record, const wchar_t* file);
    int EncodeSaveOTABMP(char* pixels, CNBitmap* record, const wchar_t* file);
    // PNG, BMP, JPEG
    HBITMAP LoadPNGFile(const wchar_t* file, BitmapType type, int index);
    HBITMAP LoadPNGFromMem(unsigned char* data, ULONGLONG size, BitmapType type, int index);
    // The common back end: the decoder's verdict and picture into the store. `status` is a zcmod::PngStatus.
    HBITMAP LoadPNG(int status, zcmod::PngImage* image, BitmapType type, int index);
    int EncodeSavePNG(char* pixels, CNBitmap* record, const wchar_t* file);
    int EncodeSaveBMP(char* pixels, CNBitmap* record, const wchar_t* file);
    int EncodeSaveJPEG(char* pixels, CNBitmap* record, const wchar_t* file);

    // Pixel helpers; GetPixel, PutPixel set the class-wide source and destination descriptions.
    static unsigned long MixColors(unsigned long a, unsigned long b, int percent);
    static unsigned long FadeColor(unsigned long color, int factor);
    static int Random(int n);
    static unsigned long GetPixel(int x, int y, char* buffer, int width, int height);
    static int PutPixel(int x, int y, unsigned long color, char* buffer, int width, int height);
    static int GetColorDifRatio(unsigned long a, unsigned long b);
    static int TestColorMatch(unsigned long pixel, unsigned long color, unsigned long tolerance);

    CNBitmap* m_pStore[8];
    int m_nLoopCount;
    int m_nJPEGFactor;
    bool m_bGIFErrorDiffusion;
    ZBUError m_eLastError;
    COLORREF m_crGIFBkColor;
    int m_nBlendFrame;
    unsigned char* m_pBlendImage;
    unsigned char* m_pBlendAlpha;
    unsigned char* m_pBlendBackground;
    unsigned char* m_pBlendResult;
    int m_nBlendRows;
    int m_nBlendSet;
    size_t m_nBlendBytes;  // bytes in each blend buffer, so that a store that changed geometry is noticed
};

// A copy of picture `id` of the common graphics module, owned by the caller; null if there is none.
ZCMOD_EXTERN_C ZCMOD_API HBITMAP ZCMOD_LoadBitmap(UINT id);
