// What the contact search remembers, process-wide: the cache of found and not-found searches per phone, and
// the content access connections per phone and thread. Both have a lock of their own, taken by CAutoLock for
// the length of one lookup or update.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "device/ServiceTypes.h"

// Enters a critical section for the length of a scope; a pointer that does not look usable is skipped.
class CAutoLock {
public:
    explicit CAutoLock(CRITICAL_SECTION* section);
    virtual ~CAutoLock();
    CAutoLock(const CAutoLock&) = delete;
    CAutoLock& operator=(const CAutoLock&) = delete;

private:
    CRITICAL_SECTION* m_pSection;
};

// Found contacts and texts that found nothing, per device serial. Nothing is ever removed: a phone that comes
// back finds its old answers.
class CSeCache {
public:
    // Answers of the lookups.
    enum { kFound = 1, kNothing = 2, kUnknown = 4 };

    CSeCache();
    virtual ~CSeCache();
    CSeCache(const CSeCache&) = delete;
    CSeCache& operator=(const CSeCache&) = delete;

    // Over every serial of `serials`: 4 if any device is unknown, else 1 if any found, else 2; 4 for no
    // serial. `results` holds the last device's hits.
    int LookupName(const std::wstring& text, const std::vector<std::wstring>& serials,
                   std::vector<std::wstring>& results);
    int LookupAddress(const std::wstring& text, const std::vector<std::wstring>& serials,
                      std::vector<std::wstring>& results);
    void AddNotFoundName(const std::wstring& serial, const std::wstring& text);
    void AddNotFoundAddress(const std::wstring& serial, const std::wstring& text);
    // Each contact string under the serial, in its own name order and with its name words swapped.
    void AddFound(const std::wstring& serial, const std::vector<std::wstring>& results);

    static std::wstring MakeKey(const std::wstring& serial, const std::wstring& text);

private:
    // A list of keys in the order they were added, each kept also case-folded, so that the comparisons that
    // ignore case are plain comparisons of folded text, and a set of the folded keys answers "already there".
    struct KeyList {
        std::vector<std::wstring> keys;
        std::vector<std::wstring> folded;
        std::unordered_set<std::wstring> present;
        void Add(const std::wstring& key);
    };

    int LookupNameOn(const std::wstring& serial, const std::wstring& text, std::vector<std::wstring>& results);
    int LookupAddressOn(const std::wstring& serial, const std::wstring& text, std::vector<std::wstring>& results);

    KeyList m_notFoundNames;
    KeyList m_notFoundAddresses;
    KeyList m_found;
    CRITICAL_SECTION m_lock;
};

// The content access connections, one per device and thread, opened on first use.
class CDAConnectionMapper {
public:
    CDAConnectionMapper();
    virtual ~CDAConnectionMapper();
    CDAConnectionMapper(const CDAConnectionMapper&) = delete;
    CDAConnectionMapper& operator=(const CDAConnectionMapper&) = delete;

    // The calling thread's connection to `serial`, opened if there is none; null when it can't be opened.
    HCA GetConnection(const std::wstring& serial);
    // Closes the calling thread's connection to `serial`, if it has one.
    void RemoveConnection(const std::wstring& serial);
    // Closes every connection.
    void CloseAll();

private:
    static std::wstring MakeKey(const std::wstring& serial);

    CRITICAL_SECTION m_lock;
    std::map<std::wstring, HCA> m_connections;
};

namespace zcmod {
// The process's cache and connection map, made when the library loads.
CSeCache& TheContactCache();
CDAConnectionMapper& TheConnectionMapper();
}  // namespace zcmod
