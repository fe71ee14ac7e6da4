#include "recipient/ContactCache.h"

#include <cwchar>
#include <cwctype>

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

namespace {

// Text folded the way the C runtime's case-blind comparisons fold it, one character at a time.
std::wstring Fold(const std::wstring& text)
{
    std::wstring folded(text);
    for (wchar_t& c : folded)
        c = static_cast<wchar_t>(towlower(c));
    return folded;
}

bool BeginsWith(const std::wstring& text, const std::wstring& prefix)
{
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

}  // namespace

void CSeCache::KeyList::Add(const std::wstring& key)
{
    std::wstring foldedKey = Fold(key);
    if (!present.insert(foldedKey).second)
        return;
    keys.push_back(key);
    folded.push_back(std::move(foldedKey));
}

int CSeCache::LookupNameOn(const std::wstring& serial, const std::wstring& text, std::vector<std::wstring>& results)
{
    CAutoLock lock(&m_lock);
    results.clear();
    if (text.empty())
        return kNothing;
    // A name is answered by prefix: every contact stored under a key that begins with this one.
    const std::wstring key = Fold(MakeKey(serial, text));
    const size_t behind = serial.size() + 1;
    for (size_t i = 0; i < m_found.folded.size(); ++i)
        if (BeginsWith(m_found.folded[i], key))
            results.push_back(m_found.keys[i].substr(behind));
    if (!results.empty())
        return kFound;
    // A longer text can't match where a shorter one found nothing.
    for (const std::wstring& entry : m_notFoundNames.folded)
        if (BeginsWith(key, entry))
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
    // An address is answered only by an exact match, of the serial as written and the address without case.
    const std::wstring prefix = serial + L":";
    const std::wstring address = Fold(text);
    for (const std::wstring& entry : m_found.keys) {
        if (!BeginsWith(entry, prefix))
            continue;
        const std::wstring contact = entry.substr(prefix.size());
        std::wstring name, found;
        CSearchEngineControl::GetNameAndAddress(contact, name, found);
        if (Fold(found) == address)
            results.push_back(contact);
    }
    if (!results.empty())
        return kFound;
    return m_notFoundAddresses.present.count(Fold(MakeKey(serial, text))) ? kNothing : kUnknown;
}

void CSeCache::AddNotFoundName(const std::wstring& serial, const std::wstring& text)
{
    CAutoLock lock(&m_lock);
    m_notFoundNames.Add(MakeKey(serial, text));
}

void CSeCache::AddNotFoundAddress(const std::wstring& serial, const std::wstring& text)
{
    CAutoLock lock(&m_lock);
    m_notFoundAddresses.Add(MakeKey(serial, text));
}

void CSeCache::AddFound(const std::wstring& serial, const std::vector<std::wstring>& results)
{
    for (const std::wstring& contact : results) {
        const std::wstring swapped = CSearchEngineControl::SwapNameWords(contact);
        CAutoLock lock(&m_lock);
        m_found.Add(MakeKey(serial, contact));
        m_found.Add(MakeKey(serial, swapped));
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
