// The capability text and the device filter that decides which phones an application supports.
#include <gtest/gtest.h>

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

TEST(DeviceFilter, DecidesByTheDevicesEntry)
{
    CapabilityText capabilities;
    capabilities.Parse(kText);
    const std::wstring type = capabilities.PhoneTypeOf(L"Other", L"X");
    EXPECT_EQ(type, L"Zelvo Z100") << "the declared type wins over manufacturer and model";
    const struct {
        const wchar_t* filter;
        const wchar_t* serial;
        bool passes;
    } cases[] = {
        {L"", L"", true},
        {L"  ;; ", L"", true},
        {L"MemType=card", L"", true},                  // an item of the list, any case
        {L"MemType=Card", L"350000000000001", false},  // the device's own line wins
        {L"MemType=Phone", L"350000000000001", true},
        {L"MemType=Car", L"", false},  // whole items only
        {L"Object=Contacts;FolderNLen>=64", L"", true},
        {L"Object=Contacts;FolderNLen>=65", L"", false},  // every clause must hold
        {L"FolderNLen>=x", L"", false},                   // unreadable: fails
        {L"FolderNLen>64", L"", false},
        {L"CaseSenN", L"", false},  // present but empty
        {L"Manufacturer", L"", true},
        {L"Conversion", L"", false},       // missing key
        {L"Object=Pictures", L"", false},  // a broken header's lines are no one's
    };
    for (const auto& c : cases)
        EXPECT_EQ(PassesFilter(capabilities, type, c.serial, c.filter), c.passes) << c.filter << " " << c.serial;
}

TEST(DeviceCapabilities, EntryByManufacturerAndModelWithoutADeclaredType)
{
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
