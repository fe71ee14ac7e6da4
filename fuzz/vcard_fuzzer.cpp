// The stand-in service's vCard reader on arbitrary bytes: never a read outside the input, and every card it
// gives can be written in both versions and read back as one card.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "service/core/Contact.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace zcmod_standin;
    const std::vector<Contact> contacts = ParseVCards(std::string_view(reinterpret_cast<const char*>(data), size));
    for (const Contact& contact : contacts) {
        for (VCardVersion version : {VCardVersion::V21, VCardVersion::V30}) {
            if (ParseVCards(WriteVCard(contact, version)).size() != 1)
                std::abort();
        }
        for (const Field& field : contact.fields)
            MatchesCondition(contact, field.fieldClass, 0, field.value);
    }
    return 0;
}
