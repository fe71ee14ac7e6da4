#include "frame/core/DialogTemplate.h"

#include <cstring>
#include <utility>

namespace zcmod {

namespace {

constexpr size_t kPlainHeaderSize = 18;
constexpr size_t kExtendedHeaderSize = 26;
constexpr uint32_t kSetFontStyle = 0x40;  // DS_SETFONT; DS_SHELLFONT includes it

// A bounded little-endian reader over the template's bytes.
class Reader {
public:
    Reader(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    bool Word(uint16_t& value)
    {
        if (m_size - m_pos < 2 || m_pos > m_size)
            return false;
        value = static_cast<uint16_t>(m_data[m_pos] | (m_data[m_pos + 1] << 8));
        m_pos += 2;
        return true;
    }
    bool Short(int16_t& value)
    {
        uint16_t word = 0;
        if (!Word(word))
            return false;
        value = static_cast<int16_t>(word);
        return true;
    }
    bool Dword(uint32_t& value)
    {
        uint16_t low = 0;
        uint16_t high = 0;
        if (!Word(low) || !Word(high))
            return false;
        value = low | (static_cast<uint32_t>(high) << 16);
        return true;
    }
    bool Byte(uint8_t& value)
    {
        if (m_pos >= m_size)
            return false;
        value = m_data[m_pos++];
        return true;
    }
    bool String(std::u16string& text)
    {
        text.clear();
        for (;;) {
            uint16_t c = 0;
            if (!Word(c))
                return false;
            if (c == 0)
                return true;
            text.push_back(static_cast<char16_t>(c));
        }
    }
    // 0x0000: none; 0xFFFF: an ordinal follows; otherwise a string that starts with this word.
    bool Name(TemplateName& name)
    {
        name = TemplateName();
        uint16_t first = 0;
        if (!Word(first))
            return false;
        if (first == 0)
            return true;
        if (first == 0xFFFF) {
            name.isOrdinal = true;
            return Word(name.ordinal);
        }
        name.text.push_back(static_cast<char16_t>(first));
        std::u16string rest;
        if (!String(rest))
            return false;
        name.text += rest;
        return true;
    }
    bool Bytes(size_t count, std::vector<uint8_t>& out)
    {
        if (m_pos > m_size || m_size - m_pos < count)
            return false;
        out.assign(m_data + m_pos, m_data + m_pos + count);
        m_pos += count;
        return true;
    }
    void AlignDword() { m_pos = (m_pos + 3) & ~static_cast<size_t>(3); }

private:
    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

bool ParseItem(Reader& in, bool extended, DialogItemInfo& item)
{
    in.AlignDword();
    if (extended) {
        if (!in.Dword(item.helpId) || !in.Dword(item.exStyle) || !in.Dword(item.style))
            return false;
    } else if (!in.Dword(item.style) || !in.Dword(item.exStyle)) {
        return false;
    }
    if (!in.Short(item.x) || !in.Short(item.y) || !in.Short(item.cx) || !in.Short(item.cy))
        return false;
    if (extended) {
        if (!in.Dword(item.id))
            return false;
    } else {
        uint16_t id = 0;
        if (!in.Word(id))
            return false;
        item.id = id;
    }
    uint16_t extra = 0;
    return in.Name(item.windowClass) && in.Name(item.title) && in.Word(extra) && in.Bytes(extra, item.creationData);
}

}  // namespace

DialogTemplateKind GetDialogTemplateKind(const uint8_t* data, size_t size)
{
    if (!data || size < 4)
        return DialogTemplateKind::Invalid;
    const bool extended = data[2] == 0xFF && data[3] == 0xFF;
    if (size < (extended ? kExtendedHeaderSize : kPlainHeaderSize))
        return DialogTemplateKind::Invalid;
    return extended ? DialogTemplateKind::Extended : DialogTemplateKind::Plain;
}

size_t DialogExStyleOffset(DialogTemplateKind kind) { return kind == DialogTemplateKind::Extended ? 8 : 4; }

bool SetDialogTemplateRtl(uint8_t* data, size_t size)
{
    const DialogTemplateKind kind = GetDialogTemplateKind(data, size);
    if (kind == DialogTemplateKind::Invalid)
        return false;
    // Bit 22 lies in the third byte of the little-endian double word.
    data[DialogExStyleOffset(kind) + 2] |= static_cast<uint8_t>(kLayoutRtlExStyle >> 16);
    return true;
}

bool ParseDialogTemplate(const uint8_t* data, size_t size, DialogTemplateInfo& info)
{
    info = DialogTemplateInfo();
    const DialogTemplateKind kind = GetDialogTemplateKind(data, size);
    if (kind == DialogTemplateKind::Invalid)
        return false;
    const bool extended = kind == DialogTemplateKind::Extended;
    Reader in(data, size);
    uint16_t count = 0;
    if (extended) {
        uint16_t version = 0;
        uint16_t signature = 0;
        if (!in.Word(version) || !in.Word(signature) || !in.Dword(info.helpId) || !in.Dword(info.exStyle) ||
            !in.Dword(info.style))
            return false;
    } else if (!in.Dword(info.style) || !in.Dword(info.exStyle)) {
        return false;
    }
    if (!in.Word(count) || !in.Short(info.x) || !in.Short(info.y) || !in.Short(info.cx) || !in.Short(info.cy))
        return false;
    if (!in.Name(info.menu) || !in.Name(info.windowClass) || !in.Name(info.title))
        return false;
    if (info.style & kSetFontStyle) {
        info.hasFont = true;
        if (!in.Word(info.pointSize))
            return false;
        if (extended && (!in.Word(info.weight) || !in.Byte(info.italic) || !in.Byte(info.charset)))
            return false;
        if (!in.String(info.typeface))
            return false;
    }
    // Items are added as they are read, so that a count that the bytes can't hold costs nothing.
    for (uint16_t i = 0; i < count; ++i) {
        DialogItemInfo item;
        if (!ParseItem(in, extended, item))
            return false;
        info.items.push_back(std::move(item));
    }
    info.kind = kind;
    return true;
}

}  // namespace zcmod
