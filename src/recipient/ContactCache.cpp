#include "recipient/ContactCache.h"

#include <cwchar>

#include "device/ConnectivityApi.h"
#include "zcmod/SearchEngineControl.h"

// --- CAutoLock ---------------------------------------------------------------------------------------------------

CAutoLock::CAutoLock(CRITICAL_SECTION* section) : m_pSection(section)
{
    if (m_pSection && !IsBadCodePtr(reinterpret_cast<FARPROC>(m_pSection)))
        EnterCriticalSection(m_pSection);
}

CAutoLock::~CAutoLock()
{
    if (m_pSection && !IsBadCodePtr(reinterpret_cast<FARPROC>(m_pSection)))
        LeaveCriticalSection(m_pSection);
}

// --- CSeCache ----------------------------------------------------------------------------------------------------

CSeCache::CSeCache() { InitializeCriticalSection(&m_lock); }

CSeCache::~CSeCache() { DeleteCriticalSection(&m_lock); }

std::wstring CSeCache::MakeKey(const std::wstring& serial, const std::wstring& text) { return serial + L":" + text; }

namespace {

int Reduce(const std::vector<int>& codes)
{
    if (codes.empty())
        return CSeCache::kUnknown;
    bool found = false;
    for (int code : codes) {
        if (code == CSeCache::kUnknown)
            return CSeCache::kUnknown;
        found = found || code == CSeCache::kFound;
    }
    return found ? CSeCache::kFound : CSeCache::kNothing;
}

}  // namespace

int CSeCache::LookupName(const std::wstring& text, const std::vector<std::wstring>& serials,
                         std::vector<std::wstring>& results)
{
    std::vector<int> codes;
    for (const std::wstring& serial : serials)
        codes.push_back(LookupNameOn(serial, text, results));
    return Reduce(codes);
}

int CSeCache::LookupAddress(const std::wstring& text, const std::vector<std::wstring>& serials,
                            std::vector<std::wstring>& results)
{
    std::vector<int> codes;
    for (const std::wstring& serial : serials)
        codes.push_back(LookupAddressOn(serial, text, results));
    return Reduce(codes);
}

int CSeCache::LookupNameOn(const std::wstring& serial, const std::wstring& text, std::vector<std::wstring>& results)
{
    CAutoLock lock(&m_lock);
    results.clear();
    if (text.empty())
        return kNothing;
    // A name is answered by prefix: every contact stored under a key that begins with this one.
    const std::wstring key = MakeKey(serial, text);
    const size_t behind = serial.size() + 1;
    for (const std::wstring& entry : m_found)
        if (entry.size() >= key.size() && _wcsnicmp(entry.c_str(), key.c_str(), key.size()) == 0)
            results.push_back(entry.substr(behind));
    if (!results.empty())
        return kFound;
    // A longer text can't match where a shorter one found nothing.
    for (const std::wstring& entry : m_notFoundNames)
        if (key.size() >= entry.size() && _wcsnicmp(key.c_str(), entry.c_str(), entry.size()) == 0)
            return kNothing;
    return kUnknown;
}

int CSeCache::LookupAddressOn(const std::wstring& serial, const std::wstring& text,
                              std::vector<std::wstring>& results)
{
    CAutoLock lock(&m_lock);
    results.clear();
    if (text.empty())
        return kNothing;
    // An address is answered only by an exact match.
    const std::wstring prefix = serial + L":";
    for (const std::wstring& entry : m_found) {
        if (entry.compare(0, prefix.size(), prefix) != 0)
            continue;
        const std::wstring contact = entry.substr(prefix.size());
        std::wstring name, address;
        CSearchEngineControl::GetNameAndAddress(contact, name, address);
        if (_wcsicmp(address.c_str(), text.c_str()) == 0)
            results.push_back(contact);
    }
    if (!results.empty())
        return kFound;
    const std::wstring key = MakeKey(serial, text);
    for (const std::wstring& entry : m_notFoundAddresses)
        if (_wcsicmp(entry.c_str(), key.c_str()) == 0)
            return kNothing;
    return kUnknown;
}

void CSeCache::AddUnique(std::list<std::wstring>& list, const std::wstring& entry)
{
    for (const std::wstring& present : list)
        if (_wcsicmp(present.c_str(), entry.c_str()) == 0)
            return;
    list.push_back(entry);
}

void CSeCache::AddNotFoundName(const std::wstring& serial, const std::wstring& text)
{
    CAutoLock lock(&m_lock);
    AddUnique(m_notFoundNames, MakeKey(serial, text));
}

void CSeCache::AddNotFoundAddress(const std::wstring& serial, const std::wstring& text)
{
    CAutoLock lock(&m_lock);
    AddUnique(m_notFoundAddresses, MakeKey(serial, text));
}

void CSeCache::AddFound(const std::wstring& serial, const std::vector<std::wstring>& results)
{
    for (const std::wstring& contact : results) {
        const std::wstring swapped = CSearchEngineControl::SwapNameWords(contact);
        CAutoLock lock(&m_lock);
        AddUnique(m_found, MakeKey(serial, contact));
        AddUnique(m_found, MakeKey(serial, swapped));
    }
}

// --- CDAConnectionMapper -------------------------------------------------------------------------------------------

CDAConnectionMapper::CDAConnectionMapper() { InitializeCriticalSection(&m_lock); }

CDAConnectionMapper::~CDAConnectionMapper() { DeleteCriticalSection(&m_lock); }

std::wstring CDAConnectionMapper::MakeKey(const std::wstring& serial)
{
    wchar_t thread[32];
    swprintf(thread, 32, L"0x%08x:0x%08x", 1u, static_cast<unsigned>(GetCurrentThreadId()));
    return serial + L":" + thread;
}

HCA CDAConnectionMapper::GetConnection(const std::wstring& serial)
{
    CAutoLock lock(&m_lock);
    const std::wstring key = MakeKey(serial);
    const auto found = m_connections.find(key);
    if (found != m_connections.end())
        return found->second;
    DWORD target = 1;
    HCA connection = nullptr;
    if (zcmod::service::DAOpenCA(serial.c_str(), &target, 1, &connection) == S_OK && connection)
        m_connections[key] = connection;
    else
        connection = nullptr;
    return connection;
}

void CDAConnectionMapper::RemoveConnection(const std::wstring& serial)
{
    CAutoLock lock(&m_lock);
    const auto found = m_connections.find(MakeKey(serial));
    if (found == m_connections.end())
        return;
    if (found->second)
        zcmod::service::DACloseCA(found->second);
    m_connections.erase(found);
}

void CDAConnectionMapper::CloseAll()
{
    CAutoLock lock(&m_lock);
    for (const auto& entry : m_connections)
        if (entry.second)
            zcmod::service::DACloseCA(entry.second);
    m_connections.clear();
}

// --- the process's objects -------------------------------------------------------------------------------------

namespace {
CSeCache g_cache;
CDAConnectionMapper g_mapper;
}  // namespace

namespace zcmod {
CSeCache& TheContactCache() { return g_cache; }
CDAConnectionMapper& TheConnectionMapper() { return g_mapper; }
}  // namespace zcmod
