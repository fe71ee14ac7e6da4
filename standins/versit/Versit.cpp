// Stand-in for VersitConverter64.dll: versit conversion (VCAPI) between vCards and ContactItems.
//
// Built a second time with VERSIT_PARTIAL, which leaves out VCAPI_Initialize, VCAPI_Terminate and
// ValidateVersitData: the loaders' rules for a library without its start or end function, or without a
// function called.
#include <cstring>

#include "PhoneService.h"

#define VC_EXPORT extern "C" __declspec(dllexport) HRESULT WINAPI

using namespace zcmod_standin;

namespace {

InterfaceState g_vc(VCAPI_VERSION_10);

#ifndef VERSIT_PARTIAL
bool Initialized()
{
    return g_vc.IsInitialized();
}
#else
bool Initialized()
{
    return true;  // nothing to start: this variant has no start function
}
#endif

bool ReadVersit(const CA_DATA_VERSIT* versit, std::vector<Contact>& contacts)
{
    if (!versit || versit->dwSize != sizeof(CA_DATA_VERSIT) || (versit->dwDataLength && !versit->pbVersitObject))
        return false;
    contacts =
        ParseVCards(std::string_view(reinterpret_cast<const char*>(versit->pbVersitObject), versit->dwDataLength));
    return true;
}

}  // namespace

#ifndef VERSIT_PARTIAL
VC_EXPORT VCAPI_Initialize(DWORD version, DWORD)
{
    return g_vc.Initialize(version);
}

VC_EXPORT VCAPI_Terminate(DWORD)
{
    return g_vc.Terminate();
}
#endif

VC_EXPORT VCAPI_GetAPIVersion()
{
    return VCAPI_VERSION_10;
}

// A ContactItem (CA_DATA_FORMAT_STRUCT) as a vCard 2.1, freed by FreeVersitData.
VC_EXPORT ConvertToVersit(DWORD format, const void* data, CA_DATA_VERSIT* versit)
{
    if (!Initialized())
        return LNKA_E_NOT_INITIALIZED;
    if (!data || !versit || versit->dwSize != sizeof(CA_DATA_VERSIT))
        return LNKA_E_INVALID_PARAMETER;
    if (format != CA_DATA_FORMAT_STRUCT)
        return LNKA_E_NOT_SUPPORTED;
    Contact contact;
    if (!ReadContactItem(static_cast<const ContactItem*>(data), contact))
        return LNKA_E_INVALID_PARAMETER;
    const std::string text = WriteVCard(contact, VCardVersion::V21);
    versit->pbVersitObject = static_cast<BYTE*>(HeapZeroed(text.size()));
    if (!versit->pbVersitObject)
        return LNKA_E_OUT_OF_MEMORY;
    std::memcpy(versit->pbVersitObject, text.data(), text.size());
    versit->dwDataLength = static_cast<DWORD>(text.size());
    return LNKA_OK;
}

// The first card of a vCard stream as a ContactItem (CA_DATA_FORMAT_STRUCT), freed by FreeConverterData.
VC_EXPORT ConvertFromVersit(const CA_DATA_VERSIT* versit, DWORD format, void* data)
{
    if (!Initialized())
        return LNKA_E_NOT_INITIALIZED;
    std::vector<Contact> contacts;
    if (!data || !ReadVersit(versit, contacts))
        return LNKA_E_INVALID_PARAMETER;
    if (format != CA_DATA_FORMAT_STRUCT)
        return LNKA_E_NOT_SUPPORTED;
    auto* item = static_cast<ContactItem*>(data);
    if (item->dwSize != sizeof(ContactItem))
        return LNKA_E_INVALID_PARAMETER;
    if (contacts.empty())
        return CA_E_ITEM_NOT_FOUND;
    return FillContactItem(contacts.front(), item);
}

VC_EXPORT FreeConverterData(DWORD format, void* data)
{
    if (!data || format != CA_DATA_FORMAT_STRUCT)
        return LNKA_E_INVALID_PARAMETER;
    FreeContactItem(static_cast<ContactItem*>(data));
    return LNKA_OK;
}

VC_EXPORT FreeVersitData(CA_DATA_VERSIT* versit)
{
    if (!versit)
        return LNKA_E_INVALID_PARAMETER;
    HeapRelease(versit->pbVersitObject);
    versit->pbVersitObject = nullptr;
    versit->dwDataLength = 0;
    return LNKA_OK;
}

#ifndef VERSIT_PARTIAL
// 0 and the format of the object if it holds at least one card.
VC_EXPORT ValidateVersitData(const CA_DATA_VERSIT* versit, DWORD* format)
{
    if (!Initialized())
        return LNKA_E_NOT_INITIALIZED;
    std::vector<Contact> contacts;
    if (!ReadVersit(versit, contacts))
        return LNKA_E_INVALID_PARAMETER;
    if (contacts.empty())
        return CA_E_ITEM_NOT_FOUND;
    if (format)
        *format = CA_DATA_FORMAT_STRUCT;
    return LNKA_OK;
}
#endif

STANDIN_NOT_SUPPORTED(ConvertToVersit2, STANDIN_ARGS_6)
