// The device capability text, and the filter that decides which devices an application supports.
//
// A capability text holds one entry per phone type, in sections, with "key=value" lines. A key may name one
// device by its serial behind ";IMEI:": that line is the device's own and wins over the line of its type.
//
//   PhoneType=Zelvo Z100          which entry is this device's (else: manufacturer, a blank, model)
//   [Zelvo Z100]
//   Manufacturer=Zelvo
//   Model=Z100
//   MemType=Phone,Card
//   MemType;IMEI:350123456789012=Phone
//   FolderNLen=64
//   FileNLen=128
//   CaseSenN=0
//   Object=Contacts,Files
//   Name-Ext=jpg,png,gif
//   Conversion=vcf
//
// Lines starting with ';' or '#' are comments; blanks around keys, values and section names don't count; keys
// and section names compare ignoring case.
//
// A filter is a list of clauses separated by ';':
//   Key=Item     the value of Key, a list separated by ',', holds Item (ignoring case)
//   Key>=N       the value of Key is a number of at least N
//   Key          the value of Key is not empty
// An empty filter passes every device, even one without an entry; otherwise a device needs its entry and
// every clause must hold. A clause that can't be read fails.
//
// Portable: no <windows.h>.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zcmod::device {

// The keys a capability entry is asked for.
constexpr wchar_t kCapPhoneType[] = L"PhoneType";
constexpr wchar_t kCapImei[] = L";IMEI:";
constexpr const wchar_t* kCapabilityKeys[] = {L"MemType",      L"FolderNLen", L"FileNLen", L"CaseSenN",  L"Manufacturer",
                                              L"Model",        L"Object",     L"Name-Ext", L"Conversion"};

class CapabilityText {
public:
    // Reads a capability text; what can't be read is skipped. Texts beyond kMaxText characters are cut there.
    static constexpr size_t kMaxText = 1 << 20;
    void Parse(std::wstring_view text);

    // The phone type named before the first section; empty if none.
    const std::wstring& DeclaredPhoneType() const { return m_phoneType; }
    // The entry a device reads: the declared type, else manufacturer and model.
    std::wstring PhoneTypeOf(std::wstring_view manufacturer, std::wstring_view model) const;
    bool HasEntry(std::wstring_view phoneType) const;

    // The value of `key` for the device `serial` of `phoneType`: its own line first, then its type's.
    bool Find(std::wstring_view phoneType, std::wstring_view key, std::wstring_view serial,
              std::wstring& value) const;

private:
    using Entry = std::map<std::wstring, std::wstring>;  // keys folded to lower case
    std::wstring m_phoneType;
    std::map<std::wstring, Entry> m_entries;  // by folded phone type
};

// Whether a device passes `filter`.
bool PassesFilter(const CapabilityText& capabilities, std::wstring_view phoneType, std::wstring_view serial,
                  std::wstring_view filter);

}  // namespace zcmod::device
