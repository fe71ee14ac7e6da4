// The contact search of the recipient box: the phones' contact stores searched through the content access
// interface, each answer remembered per phone in the contact cache.
#include <algorithm>
#include <memory>
#include <unordered_set>

#include <windows.h>

#include <commctrl.h>

#include "device/ConnectivityApi.h"
#include "device/core/ContactFieldTypes.h"
#include "frame/GdiPlus.h"
#include "frame/Handles.h"
#include "recipient/ContactCache.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/DKHLInfoReader.h"
#include "zcmod/VuikWindowBackgroundCtrl.h"
#include "zcmod/RTLHelper.h"
#include "zcmod/ResHandler.h"
#include "zcmod/VuikLib.h"
#include "zcmod/SearchEngineControl.h"

using namespace zcmod::service;

short CSearchEngineControl::m_sSearchLimit = 1;
short CSearchEngineControl::m_sResultLimit = 0;
int CSearchEngineControl::m_iNameOrder = 1;
void* CSearchEngineControl::m_hConnection = nullptr;
std::wstring CSearchEngineControl::m_strCurrentConnectionImei;
void* CSearchEngineControl::m_hDeviceManager = nullptr;
std::vector<std::wstring> CSearchEngineControl::m_vecDeviceSerials;

namespace {

constexpr HRESULT kNoConnection = static_cast<HRESULT>(0x80100010L);

int ReadNameOrder()
{
    const wchar_t* maker = nullptr;
    CDKHL2InfoReader settings;
    if (settings.ReadDKHL() == 0)
        maker = settings.GetUIManufacturer();
    const std::wstring key =
        std::wstring(L"SOFTWARE\\") + (maker && *maker ? maker : L"Zelvo") + L"\\ContactsEditor\\Settings";
    zcmod::RegKey handle;
    DWORD order = 0, type = 0, size = sizeof(order);
    if (RegOpenKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, handle.Put()) != ERROR_SUCCESS ||
        RegQueryValueExW(handle.Get(), L"NameOrder", nullptr, &type, reinterpret_cast<BYTE*>(&order), &size) !=
            ERROR_SUCCESS ||
        type != REG_DWORD)
        return 1;
    return static_cast<int>(order);
}

std::wstring Value(const ContactField& field) { return field.pstrValue ? field.pstrValue : L""; }

// The last non-empty value of a personal sub type, or empty.
std::wstring LastPart(const ContactItem& item, DWORD subType)
{
    std::wstring part;
    for (BYTE i = 0; item.pPersonal && i < item.bPersonalCount; ++i)
        if (item.pPersonal[i].dwFieldSubType == subType && item.pPersonal[i].pstrValue &&
            *item.pPersonal[i].pstrValue)
            part = item.pPersonal[i].pstrValue;
    return part;
}

// The results of a search, each contact string once.
class ResultSet {
public:
    explicit ResultSet(std::vector<std::wstring>& results) : m_results(results), m_present(results.begin(), results.end()) {}
    void Add(const std::wstring& entry)
    {
        if (m_present.insert(entry).second)
            m_results.push_back(entry);
    }

private:
    std::vector<std::wstring>& m_results;
    std::unordered_set<std::wstring> m_present;
};

// One search on the current connection; calls `each` for every match and frees it afterwards.
template <class F>
void FindEach(ContactItem& condition, F&& each)
{
    HCAFIND find = nullptr;
    const HCA connection = static_cast<HCA>(CSearchEngineControl::m_hConnection);
    if (CAFindBegin(connection, 0, &condition, &find) != S_OK || !find) {
        if (find)
            CAFindEnd(find);
        return;
    }
    for (;;) {
        ContactItem item = {};
        item.dwSize = sizeof(ContactItem);
        if (CAFindNext(find, 1, &item) != S_OK)
            break;
        each(item);
        CAFreeItemData(connection, 1, &item);
    }
    CAFindEnd(find);
}

}  // namespace

CSeSkinManager::CSeSkinManager() : m_pBackgroundSkin(nullptr) {}

CSeSkinManager::~CSeSkinManager()
{
    if (m_pBackgroundSkin)
        m_pBackgroundSkin->Unload();
    delete m_pBackgroundSkin;
}

int CSeSkinManager::Initialize(HINSTANCE instance)
{
    const HINSTANCE previous = CVuikLib::GetResourceInstance();
    CVuikLib::SetResourceInstance(instance);
    if (!m_pBackgroundSkin)
        m_pBackgroundSkin = new (std::nothrow) CVuikWindowBackgroundSkin();
    if (m_pBackgroundSkin) {
        m_pBackgroundSkin->SetSkinDef(CVuikWindowBackgroundSkin::m_DefaultSkinDef);
        m_pBackgroundSkin->Load();
    }
    CVuikLib::SetResourceInstance(previous);
    return 1;
}

CSearchEngineControl::CSearchEngineControl(HINSTANCE instance)
    : m_iButtonWidth(50), m_iButtonHeight(50), m_lThreeDimLook(0), m_hInstance(instance),
      m_pSkinManager(new (std::nothrow) CSeSkinManager()), m_iControlCount(1), m_lRecipientMode{0, 1, 2},
      m_sLineCount{1, 1, 1}, m_nEditcontrolWidth(200), m_iBorderWidth(0), m_lFontHeight(14), m_iSystemFontHeight(0),
      m_iNameLen(0), m_bDisableChange(0), m_bDisableSelChange(0), m_wndHostWindow(nullptr), m_ctrlButton(nullptr),
      m_ctrlEditBox(nullptr), m_hEditBox{}, m_pfnEditProc{}, m_pfnButtonProc{}, m_pfnHostProc(nullptr),
      m_pfnListProc(nullptr), m_wndContactListBox(nullptr), m_hFont(nullptr), m_hLabelFont(nullptr),
      m_hRichEditModule(nullptr), m_nSearchTimer(0), m_bAddressOnlyUpdate(false), m_bPasting(false)
{
    zcmod::EnsureGdiPlus();
    m_bDisableChange = 0;
    m_bDisableSelChange = 0;
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    CResHandler* handler = CCommonModuleState::Get().m_pResHandler;
    if (CRTLHelper::IsRTL(handler ? handler->GetLanguageName() : nullptr))
        CVuikLib::SetLayout(1);
    m_nEditcontrolWidth = 400;
    DMAPI_Initialize(kDmapiVersion, 0);
    CAAPI_Initialize(kCaapiVersion, 0);
    VCAPI_Initialize(kVcapiVersion, 0);
    m_iNameOrder = ReadNameOrder();
    if (m_pSkinManager)
        m_pSkinManager->Initialize(m_hInstance ? m_hInstance : GetModuleHandleW(nullptr));
}

CSearchEngineControl::~CSearchEngineControl()
{
    DestroyBox();
    delete m_pSkinManager;
    m_pSkinManager = nullptr;
    if (m_hDeviceManager) {
        LNKACloseDM(static_cast<HLNKADM>(m_hDeviceManager));
        m_hDeviceManager = nullptr;
    }
    zcmod::TheConnectionMapper().CloseAll();
    // The current connection was one of the map's.
    m_hConnection = nullptr;
    m_strCurrentConnectionImei.clear();
    VCAPI_Terminate(0);
    CAAPI_Terminate(0);
    DMAPI_Terminate(0);
}

std::wstring CSearchEngineControl::BuildContactName(const void* contactItem)
{
    const ContactItem& item = *static_cast<const ContactItem*>(contactItem);
    if (item.bPersonalCount == 1 && item.pPersonal)
        return Value(item.pPersonal[0]);
    const std::wstring given = LastPart(item, CA_PERSONAL_FIRST_NAME);
    const std::wstring family = LastPart(item, CA_PERSONAL_LAST_NAME);
    if (!given.empty() && !family.empty())
        return m_iNameOrder == 1 ? given + L" " + family : family + L" " + given;
    return given.empty() ? family : given;
}

HRESULT CALLBACK CSearchEngineControl::DeviceNotify(DWORD status, const wchar_t* serial)
{
    if ((status & 0xFFFF) == DEVICE_REMOVED && serial)
        zcmod::TheConnectionMapper().RemoveConnection(serial);
    return S_OK;
}

HRESULT CSearchEngineControl::CheckConnection(std::wstring serial)
{
    if (serial == m_strCurrentConnectionImei)
        return S_OK;
    m_hConnection = zcmod::TheConnectionMapper().GetConnection(serial);
    m_strCurrentConnectionImei = serial;
    return m_hConnection ? S_OK : kNoConnection;
}

HRESULT CSearchEngineControl::CloseConnection() { return kNoConnection; }

int CSearchEngineControl::SearchValues(std::wstring& text, bool byName, std::vector<std::wstring>& results)
{
    if (byName && m_bApplySearchLimit && static_cast<long>(text.size()) < m_sSearchLimit)
        return 0;
    const std::vector<std::wstring> serials = m_vecDeviceSerials;
    CSeCache& cache = zcmod::TheContactCache();
    const int cached = byName ? cache.LookupName(text, serials, results) : cache.LookupAddress(text, serials, results);
    if (cached == CSeCache::kFound)
        return 1;
    if (cached == CSeCache::kNothing)
        return 0;

    HLNKADM dm = static_cast<HLNKADM>(m_hDeviceManager);
    if (!dm) {
        if (LNKAOpenDM(&dm) != S_OK || !dm)
            return results.empty() ? 0 : 1;
        m_hDeviceManager = dm;
        LNKARegisterNotifyCallback(dm, API_REGISTER, DeviceNotify);
    }
    DWORD count = 0;
    const HRESULT counted = LNKAGetDeviceCount(dm, &count);
    if (counted != S_OK) {
        // The service went away and may come back: its handles are stale, so the next search opens anew.
        LNKACloseDM(dm);
        m_hDeviceManager = nullptr;
        zcmod::TheConnectionMapper().CloseAll();
        m_hConnection = nullptr;
        m_strCurrentConnectionImei.clear();
    }
    if (counted != S_OK || count == 0)
        return results.empty() ? 0 : 1;
    m_vecDeviceSerials.clear();
    // The array is ours; what the service puts in it is the service's until LNKAFreeDeviceStructure.
    std::unique_ptr<LNKA_DEVICE[]> devices(new (std::nothrow) LNKA_DEVICE[count]());
    if (!devices)
        return results.empty() ? 0 : 1;
    DWORD got = count;
    if (LNKAGetDevices(dm, &got, devices.get()) == S_OK) {
        got = std::min(got, count);
        for (DWORD i = 0; i < got; ++i) {
            if (!devices[i].pstrSerialNumber)
                continue;
            m_vecDeviceSerials.push_back(devices[i].pstrSerialNumber);
            SearchValues2(devices[i].pstrSerialNumber, text, byName, results);
        }
        LNKAFreeDeviceStructure(got, devices.get());
    }
    return results.empty() ? 0 : 1;
}

void CSearchEngineControl::SearchValues2(const wchar_t* serial, std::wstring& text, bool byName,
                                         std::vector<std::wstring>& results)
{
    if (!serial || (m_bApplySearchLimit && static_cast<long>(text.size()) < m_sSearchLimit))
        return;
    std::wstring pattern = text;
    bool firstWordOnly = false;
    DWORD kinds[3] = {CA_FIELD_CLASS_NUMBER, CA_FIELD_CLASS_ADDRESS, CA_FIELD_CLASS_ANY};
    if (byName) {
        kinds[0] = CA_PERSONAL_LAST_NAME;
        kinds[1] = CA_PERSONAL_FIRST_NAME;
        kinds[2] = CA_PERSONAL_NAME;
        if (static_cast<long>(text.size()) >= m_sSearchLimit) {
            pattern += L"%";
            const size_t blank = pattern.find(L' ');
            if (blank != std::wstring::npos) {
                pattern = pattern.substr(0, blank) + L"%";
                firstWordOnly = true;
            }
        }
    }

    ResultSet unique(results);
    if (CheckConnection(serial) == S_OK) {
        for (int pass = 0; pass < 2; ++pass) {
            // The second pass finds the text at the beginning of a later word.
            if (pass == 1)
                pattern = L"% " + pattern;
            for (int k = 0; k < 3; ++k) {
                const DWORD kind = kinds[k];
                // The filter is tested on the kind's number alone, for names too.
                if ((kind == 3 && !(m_lAddressFilter & 1)) || (kind == 2 && !(m_lAddressFilter & 2)))
                    continue;
                ContactField field = {sizeof(ContactField), 0, 0, 0, nullptr};
                ContactItem condition = {};
                condition.dwSize = sizeof(ContactItem);
                if (!byName) {
                    field.dwFieldClass = kind;
                    field.dwFieldSubType = CA_FIELD_SUBTYPE_ANY;
                    field.pstrValue = const_cast<wchar_t*>(text.c_str());
                    if (k == 0) {
                        condition.bNumberCount = 1;
                        condition.pNumbers = &field;
                    } else {
                        condition.bAddressCount = 1;
                        condition.pAddresses = &field;
                    }
                    FindEach(condition, [&](const ContactItem& item) {
                        const std::wstring name = BuildContactName(&item);
                        for (BYTE i = 0; item.pNumbers && i < item.bNumberCount; ++i) {
                            const std::wstring value = Value(item.pNumbers[i]);
                            if (!value.empty() && value.compare(0, text.size(), text) == 0)
                                unique.Add(CreateContactString(name, value));
                        }
                    });
                    continue;
                }
                if (pattern.empty())
                    continue;
                field.dwFieldClass = CA_FIELD_CLASS_PERSONAL;
                field.dwFieldSubType = kind;
                field.pstrValue = const_cast<wchar_t*>(pattern.c_str());
                condition.bPersonalCount = 1;
                condition.pPersonal = &field;
                FindEach(condition, [&](const ContactItem& item) {
                    std::wstring primary, alternate;
                    if (item.bPersonalCount == 1 && item.pPersonal) {
                        primary = alternate = Value(item.pPersonal[0]);
                    } else {
                        const std::wstring given = LastPart(item, CA_PERSONAL_FIRST_NAME);
                        const std::wstring family = LastPart(item, CA_PERSONAL_LAST_NAME);
                        if (given.empty() || family.empty()) {
                            primary = alternate = given.empty() ? family : given;
                        } else if (kind == CA_PERSONAL_FIRST_NAME) {
                            primary = given + L" " + family;
                            alternate = family + L" " + given;
                        } else {
                            primary = family + L" " + given;
                            alternate = given + L" " + family;
                        }
                    }
                    if (firstWordOnly && !IsSearchedName(text, primary))
                        return;
                    auto add = [&](const ContactField& entry) {
                        unique.Add(entry.pstrValue ? CreateContactString(primary, entry.pstrValue) : L"");
                    };
                    if (m_lAddressFilter & 1)
                        for (BYTE i = 0; item.pAddresses && i < item.bAddressCount; ++i) {
                            const DWORD sub = item.pAddresses[i].dwFieldSubType;
                            if (sub == CA_ADDRESS_EMAIL || sub == CA_ADDRESS_EMAIL_HOME || sub == CA_ADDRESS_EMAIL_WORK)
                                add(item.pAddresses[i]);
                        }
                    if (m_lAddressFilter & 2)
                        for (BYTE i = 0; item.pNumbers && i < item.bNumberCount; ++i)
                            add(item.pNumbers[i]);
                });
            }
        }
    }

    std::sort(results.begin(), results.end(),
              [](const std::wstring& a, const std::wstring& b) { return WstrCompare(a, b) == 1; });
    CSeCache& cache = zcmod::TheContactCache();
    if (results.empty()) {
        if (text.size() > 2) {
            if (byName)
                cache.AddNotFoundName(serial, text);
            else
                cache.AddNotFoundAddress(serial, text);
        }
    } else {
        cache.AddFound(serial, results);
    }
}
