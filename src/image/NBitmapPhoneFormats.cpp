// The WBMP and OTA adapters: whole-file reads into the decoders, frames into the stores, and the encoders'
// output written and checked on disk.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "image/NBitmapInternal.h"
#include "image/core/PhoneBitmaps.h"
#include "zcmod/NBitmapUtil.h"

using namespace zcmod;

namespace {

// The largest WBMP a decoder accepts (two-byte sizes) needs 2 + 2 + 2 header bytes and 16,383 rows of 2,048
// bytes; bytes past that are ignored by the format, so a longer file is read only that far.
constexpr long kWbmpMaxUsefulBytes = 6 + 16383L * 2048;

enum class ReadResult { Ok, OpenFailed, TooLong, ShortRead };

// Reads up to `limit` bytes of a file into a buffer with two zero bytes behind them, so that a look-ahead
// past the end sees zeros. `length` is the file's length; `refuseAbove` refuses longer files unread.
ReadResult ReadWholeFile(const wchar_t* file, long limit, long refuseAbove, std::vector<uint8_t>& bytes, size_t& length)
{
    FILE* f = _wfopen(file, L"rb");
    if (!f)
        return ReadResult::OpenFailed;
    long size = -1;
    if (fseek(f, 0, SEEK_END) == 0)
        size = ftell(f);
    if (size < 0 || fseek(f, 0, SEEK_SET) != 0) {
        fclose(f);
        return ReadResult::ShortRead;
    }
    if (refuseAbove >= 0 && size > refuseAbove) {
        fclose(f);
        return ReadResult::TooLong;
    }
    const long wanted = size < limit ? size : limit;
    bool ok = true;
    try {
        bytes.assign(static_cast<size_t>(wanted) + 2, 0);
    } catch (...) {
        ok = false;
    }
    if (ok && wanted > 0)
        ok = fread(bytes.data(), 1, static_cast<size_t>(wanted), f) == static_cast<size_t>(wanted);
    fclose(f);
    length = static_cast<size_t>(wanted);
    return ok ? ReadResult::Ok : ReadResult::ShortRead;
}

// The error word of a read: the file can't be opened, is too long to be one (unread), or came short.
ZBUError ReadError(ReadResult result)
{
    switch (result) {
    case ReadResult::Ok:
        return ZBU_OK;
    case ReadResult::OpenFailed:
        return ZBU_FILE_OPEN;
    case ReadResult::TooLong:
        return ZBU_BAD_FORMAT;
    default:
        return ZBU_READ_FAILED;
    }
}

// Writes `bytes` to `file` and checks the length of what is on the disk. The byte count, or 0.
int WriteAndVerify(const wchar_t* file, const std::vector<uint8_t>& bytes)
{
    FILE* f = _wfopen(file, L"wb");
    if (!f)
        return 0;
    const size_t written = bytes.empty() ? 0 : fwrite(bytes.data(), 1, bytes.size(), f);
    fclose(f);
    if (written != bytes.size())
        return 0;
    f = _wfopen(file, L"rb");
    if (!f)
        return 0;
    long length = -1;
    if (fseek(f, 0, SEEK_END) == 0)
        length = ftell(f);
    fclose(f);
    if (length < 0 || static_cast<size_t>(length) != bytes.size())
        return 0;
    return static_cast<int>(bytes.size());
}

int RandomNumber()
{
    return rand();
}

}  // namespace

HBITMAP CNBitmapUtil::LoadWBMPFile(const wchar_t* file, BitmapType type, int index)
{
    m_eLastError = ZBU_OK;
    std::vector<uint8_t> bytes;
    size_t length = 0;
    const ZBUError read = ReadError(ReadWholeFile(file, kWbmpMaxUsefulBytes, -1, bytes, length));
    if (read != ZBU_OK)
        return SetError(read, nullptr);
    int width = 0;
    int height = 0;
    size_t dataOffset = 0;
    if (!ParseWbmpHeader(bytes.data(), length, width, height, dataOffset))
        return SetError(ZBU_BAD_FORMAT, nullptr);
    // The store takes the new geometry before the rows are checked.
    CNBitmap* record = PrepareStore(type, width, height);
    std::vector<uint8_t> pixels;
    bool decoded = false;
    try {
        decoded = DecodeWbmpRows(bytes.data(), length, width, height, dataOffset, pixels);
    } catch (...) {
        decoded = false;
    }
    if (!decoded || !CreateBitmapFromData(width, height, reinterpret_cast<char*>(pixels.data()), record, index))
        return SetError(ZBU_BAD_FORMAT, nullptr);
    return FrameOf(record, index);
}

HBITMAP CNBitmapUtil::LoadOTABMPFile(const wchar_t* file, BitmapType type, int index)
{
    m_eLastError = ZBU_OK;
    std::vector<uint8_t> bytes;
    size_t length = 0;
    const ZBUError read = ReadError(
        ReadWholeFile(file, static_cast<long>(kOtaMaxFileSize), static_cast<long>(kOtaMaxFileSize), bytes, length));
    if (read != ZBU_OK)
        return SetError(read, nullptr);
    // The replace rule runs on bytes 1 and 2 before anything else is tested.
    int width = 0;
    int height = 0;
    ReadOtaSize(bytes.data(), length, width, height);
    CNBitmap* record = PrepareStore(type, width, height);
    std::vector<uint8_t> pixels;
    bool decoded = false;
    try {
        decoded = DecodeOta(bytes.data(), length, pixels, width, height);
    } catch (...) {
        decoded = false;
    }
    if (!decoded || !CreateBitmapFromData(width, height, reinterpret_cast<char*>(pixels.data()), record, index))
        return SetError(ZBU_BAD_FORMAT, nullptr);
    return FrameOf(record, index);
}

int CNBitmapUtil::EncodeSaveWBMP(char* pixels, CNBitmap* record, const wchar_t* file)
{
    if (!pixels || !record || !record->m_pInfo || !file)
        return 0;
    const BITMAPINFOHEADER& header = record->m_pInfo->bmiHeader;
    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    std::vector<uint8_t> bytes;
    try {
        bytes = EncodeWbmp(reinterpret_cast<const uint8_t*>(pixels), header.biWidth, height, record->m_nStride,
                           RandomNumber);
    } catch (...) {
        m_eLastError = ZBU_WRITE_FAILED;
        return 0;
    }
    const int written = WriteAndVerify(file, bytes);
    if (written == 0)
        m_eLastError = ZBU_WRITE_FAILED;
    return written;
}

int CNBitmapUtil::EncodeSaveOTABMP(char* pixels, CNBitmap* record, const wchar_t* file)
{
    if (!pixels || !record || !record->m_pInfo || !file)
        return 0;
    const BITMAPINFOHEADER& header = record->m_pInfo->bmiHeader;
    const int height = header.biHeight < 0 ? -header.biHeight : header.biHeight;
    if (header.biWidth >= 256 || height >= 256)
        return SetError(ZBU_TOO_LARGE, 0);
    std::vector<uint8_t> bytes;
    try {
        bytes = EncodeOta(reinterpret_cast<const uint8_t*>(pixels), header.biWidth, height, record->m_nStride,
                          RandomNumber);
    } catch (...) {
        m_eLastError = ZBU_WRITE_FAILED;
        return 0;
    }
    const int written = bytes.empty() ? 0 : WriteAndVerify(file, bytes);
    if (written == 0)
        m_eLastError = ZBU_WRITE_FAILED;
    return written;
}
