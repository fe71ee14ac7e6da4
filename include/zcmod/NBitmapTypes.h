// Enumerations and plain records of the image toolkit (CNBitmapUtil). No platform header: the portable core
// uses them too.
#pragma once

#include <stdint.h>

// Selects one of the eight frame stores. Two sets of four: a store t of set 0 resizes into store t + 4.
enum BitmapType {
    BT_IMAGE = 0,               // the image
    BT_ALPHA = 1,               // its transparency plane: 255 - alpha in all three bytes, 0 is opaque
    BT_BACKGROUND = 2,          // the background of a blend
    BT_RESULT = 3,              // the result of a blend or of tiling
    BT_IMAGE_RESIZED = 4,
    BT_ALPHA_RESIZED = 5,
    BT_BACKGROUND_RESIZED = 6,
    BT_RESULT_RESIZED = 7
};

// The encoder that SaveBitmap uses. JPEG and GIF can't be written.
enum BitmapFormat { BF_JPEG = 0, BF_GIF = 1, BF_BMP = 2, BF_PNG = 3, BF_OTA = 4, BF_WBMP = 5 };

// The last-error word of CNBitmapUtil. Many failure paths leave it as it was: read the result first.
enum ZBUError {
    ZBU_OK = 0,
    ZBU_RESOURCE_NOT_FOUND = 1,   // no resource type holds the id
    ZBU_FILE_OPEN = 2,            // a file could not be opened for reading
    ZBU_BAD_FORMAT = 3,           // contents not acceptable, pixels not built, or format not writable
    ZBU_OPERATION_FAILED = 4,
    ZBU_BAD_ARG1 = 5,             // 5 to 12 tell the inputs of one function apart
    ZBU_BAD_ARG2 = 6,
    ZBU_BAD_ARG3 = 7,
    ZBU_BAD_ARG4 = 8,
    ZBU_BAD_ARG5 = 9,
    ZBU_NO_FRAME = 10,            // the frame named for a screen transfer is empty
    ZBU_BAD_ARG7 = 11,            // source x of a screen transfer is negative
    ZBU_BAD_ARG8 = 12,            // source y of a screen transfer is negative
    ZBU_NO_BITMAP = 13,           // the store has no frame or no header record
    ZBU_GDI_FAILED = 14,          // a pixel transfer or stretch failed
    ZBU_NO_IMAGE_FRAME = 15,
    ZBU_NO_ALPHA_FRAME = 16,
    ZBU_NO_BACKGROUND_FRAME = 17,
    ZBU_TOO_LARGE = 19,           // the image exceeds the format's size
    ZBU_WRITE_FAILED = 20,
    ZBU_NO_STORE = 21,            // the store record itself is missing
    ZBU_RESOURCE_EMPTY = 22,
    ZBU_PNG_FAILED = 24,
    ZBU_TEMP_PATH = 25,
    ZBU_READ_FAILED = 26,
    ZBU_TEMP_FILE = 27
    // 18 and 23 are reserved and never set.
};

// The GIF reader's record of one file, indexed by image number; built for one load.
struct ZBUGIFFileStruct {
    uint32_t imageOffset[512];        // offset of the image's 0x2C introducer
    uint32_t imageLength[512];        // bytes from the introducer to the end of its data, terminator included
    uint32_t transparentColor[512];   // 0xFFFFFFFF if none; palette index while parsing; then 0x00RRGGBB
    uint32_t disposal[512];           // disposal method of the frame, 0 to 7
    uint32_t delay[512];              // hundredths of a second
    uint32_t controlBytes[512];       // the graphic control extension's four data bytes as in the file
};
