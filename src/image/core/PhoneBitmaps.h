// The two one-bit phone picture formats, WBMP and OTA (Nokia's over-the-air bitmap). Pixels are 24-bit blue,
// green, red; decoded pixels are tight top-down rows, black 0,0,0 and white 255,255,255.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zcmod {

// The random source of the encoders' thresholds: values 0 to 32,767, as rand() gives.
using RandomSource = int (*)();

// Reads a WBMP multi-byte integer of at most `maxBytes` bytes at `pos`; false if it runs longer or past the end.
bool ReadMultiByteInt(const uint8_t* data, size_t size, size_t& pos, unsigned maxBytes, uint32_t& value);
// Appends `value` as a multi-byte integer: 7-bit groups (at most 5), most significant first.
void WriteMultiByteInt(uint32_t value, std::vector<uint8_t>& out);

// WBMP header: two zero bytes and a file of at least 6 bytes, then width and height of at most two bytes
// each (so at most 16,383), each at least 1. `dataOffset` is where the rows begin.
bool ParseWbmpHeader(const uint8_t* data, size_t size, int& width, int& height, size_t& dataOffset);
// The rows: at least height * ceil(width / 8) bytes after the header (more is ignored); bit 1 is white.
bool DecodeWbmpRows(const uint8_t* data, size_t size, int width, int height, size_t dataOffset,
                    std::vector<uint8_t>& pixels);

// OTA files longer than this are refused unread.
constexpr size_t kOtaMaxFileSize = 8196;
// OTA header: width and height are bytes 1 and 2 (0 when the file is shorter).
void ReadOtaSize(const uint8_t* data, size_t size, int& width, int& height);
// Byte 0 must be 0, byte 3 must be 1, and ceil(width * height / 8) + 4 bytes must be there. The pixels are
// one bit stream across rows; a clear bit is white. Width or height 0 fails.
bool DecodeOta(const uint8_t* data, size_t size, std::vector<uint8_t>& pixels, int& width, int& height);

// Encoders take padded bottom-up pixels (the BMP body: last image row first, rows `stride` bytes apart).
// Each pixel becomes one bit by a random threshold per channel, so two saves of a grey picture differ.
std::vector<uint8_t> EncodeWbmp(const uint8_t* pixels, int width, int height, int stride, RandomSource random);
// Empty when width or height is 256 or more (the format's limit).
std::vector<uint8_t> EncodeOta(const uint8_t* pixels, int width, int height, int stride, RandomSource random);

}  // namespace zcmod
