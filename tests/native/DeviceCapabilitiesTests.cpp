// The capability text and the device filter that decides which phones an application supports.
#include <gtest/gtest.h>

#include <cwchar>
#include <ostream>

#include "device/core/DeviceCapabilities.h"

using namespace zcmod::device;

namespace {

constexpr wchar_t kText[] =
    L"\xFEFF; the phones this suite knows\r\n"
    L"PhoneType = Zelvo Z100\r\n"
    L"[Zelvo Z100]\r\n"
    L"Manufacturer=Zelvo\r\n"
    L"MemType = Phone, Card\r\n"
    L"memtype;imei:350000000000001=Phone\r\n"
    L"FolderNLen=64\r\n"
    L"CaseSenN=\r\n"
    L"Object=Contacts,Files\r\n"
    L"[Zelvo Z200\r\n"
    L"Object=Pictures\r\n"
    L"[Other X]\r\n"
    L"Name-Ext=jpg\r\n";

struct FilterCase {
    const wchar_t* filter;
    const wchar_t* serial;
    bool passes;
};

void PrintTo(const FilterCase& c, std::ostream* out)
{
    *out << '"' << std::string(c.filter, c.filter + std::wcslen(c.filter)) << (c.serial[0] ? "\" own line" : "\"");
}

class DeviceFilter : public ::testing::TestWithParam<FilterCase> {};

TEST_P(DeviceFilter, DecidesByTheDevicesEntry)
{
    CapabilityText capabilities;
    capabilities.Parse(kText);
    const FilterCase& c = GetParam();
    EXPECT_EQ(PassesFilter(capabilities, capabilities.PhoneTypeOf(L"Ignored", L"X"), c.serial, c.filter), c.passes)
        << ::testing::PrintToString(c);
}

INSTANTIATE_TEST_SUITE_P(
    Clauses, DeviceFilter,
    ::testing::Values(FilterCase{L"", L"", true}, FilterCase{L"  ;; ", L"", true},
                      FilterCase{L"MemType=card", L"", true},                   // an item of the list, any case
                      FilterCase{L"MemType=Card", L"350000000000001", false},   // the device's own line wins
                      FilterCase{L"MemType=Phone", L"350000000000001", true},
                      FilterCase{L"MemType=Car", L"", false},                   // whole items only
                      FilterCase{L"Object=Contacts;FolderNLen>=64", L"", true},
                      FilterCase{L"Object=Contacts;FolderNLen>=65", L"", false},  // every clause must hold
                      FilterCase{L"FolderNLen>=x", L"", false},                 // unreadable: fails
                      FilterCase{L"FolderNLen>64", L"", false},
                      FilterCase{L"CaseSenN", L"", false},                      // present but empty
                      FilterCase{L"Manufacturer", L"", true},
                      FilterCase{L"Conversion", L"", false},                    // missing key
                      FilterCase{L"Object=Pictures", L"", false}));             // a broken header's lines are no one's

TEST(DeviceCapabilities, EntryByDeclaredTypeElseManufacturerAndModel)
{
    CapabilityText declared;
    declared.Parse(kText);
    EXPECT_EQ(declared.PhoneTypeOf(L"Other", L"X"), L"Zelvo Z100");

    CapabilityText database;
    database.Parse(L"[Other X]\nName-Ext=jpg\n");
    const std::wstring type = database.PhoneTypeOf(L" Other ", L"X");
    EXPECT_EQ(type, L"Other X");
    std::wstring value;
    EXPECT_TRUE(database.Find(type, L"name-ext", L"", value));
    EXPECT_EQ(value, L"jpg");
    // A device without an entry passes only the empty filter.
    EXPECT_FALSE(PassesFilter(database, L"Zelvo Z9", L"", L"Name-Ext"));
    EXPECT_TRUE(PassesFilter(database, L"Zelvo Z9", L"", L""));
}

}  // namespace
