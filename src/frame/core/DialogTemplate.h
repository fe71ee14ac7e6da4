// Dialog templates of a resource, in the plain layout and the extended one, read and flipped to a
// right-to-left layout as bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zcmod {

// Extended style bit that lays a window out from right to left.
constexpr uint32_t kLayoutRtlExStyle = 0x00400000;

enum class DialogTemplateKind { Invalid, Plain, Extended };

// Tells the layouts apart by the word at byte 2 (0xFFFF: extended). Invalid when the fixed header doesn't fit.
DialogTemplateKind GetDialogTemplateKind(const uint8_t* data, size_t size);
// Byte offset of the 32-bit extended style: 4 in the plain layout, 8 in the extended one.
size_t DialogExStyleOffset(DialogTemplateKind kind);
// Sets the right-to-left layout bit in the template's extended style. False, and nothing written, when the
// fixed header doesn't fit in `size`.
bool SetDialogTemplateRtl(uint8_t* data, size_t size);

// A name or an ordinal, as templates store menus, classes and titles.
struct TemplateName {
    bool isOrdinal = false;
    uint16_t ordinal = 0;
    std::u16string text;  // empty with isOrdinal false: no name
};

struct DialogItemInfo {
    uint32_t helpId = 0;  // extended layout only
    uint32_t style = 0;
    uint32_t exStyle = 0;
    int16_t x = 0, y = 0, cx = 0, cy = 0;
    uint32_t id = 0;  // 16 bits in the plain layout
    TemplateName windowClass;
    TemplateName title;
    std::vector<uint8_t> creationData;
};

struct DialogTemplateInfo {
    DialogTemplateKind kind = DialogTemplateKind::Invalid;
    uint32_t helpId = 0;
    uint32_t style = 0;
    uint32_t exStyle = 0;
    int16_t x = 0, y = 0, cx = 0, cy = 0;
    TemplateName menu;
    TemplateName windowClass;
    TemplateName title;
    bool hasFont = false;
    uint16_t pointSize = 0;
    uint16_t weight = 0;   // extended layout only
    uint8_t italic = 0;    // extended layout only
    uint8_t charset = 0;   // extended layout only
    std::u16string typeface;
    std::vector<DialogItemInfo> items;
};

// Reads a whole template of either layout, every item with its class, title and creation data, each item
// starting on a 4-byte boundary. False when any part would run past `size`.
bool ParseDialogTemplate(const uint8_t* data, size_t size, DialogTemplateInfo& info);

}  // namespace zcmod
