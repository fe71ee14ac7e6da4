#include "zcmod/VuikResourceManager.h"

#include <cstdint>
#include <new>

#include "zcmod/VuikBitmap.h"

// m_mapBitmaps is one of the library's process-wide objects: it is defined with the others, in load order, in
// frame/LoadOrder.cpp.

bool CVuikResourceManager::KeyLess::operator()(const Key& a, const Key& b) const
{
    // The module handle is compared as an unsigned value, then the id, then the mirror flag as given.
    const uintptr_t moduleA = reinterpret_cast<uintptr_t>(std::get<0>(a));
    const uintptr_t moduleB = reinterpret_cast<uintptr_t>(std::get<0>(b));
    if (moduleA != moduleB)
        return moduleA < moduleB;
    if (std::get<1>(a) != std::get<1>(b))
        return std::get<1>(a) < std::get<1>(b);
    return std::get<2>(a) < std::get<2>(b);
}

bool CVuikResourceManager::LoadBitmapW(CVuikBitmap** slot, HINSTANCE module, UINT id, int mirror,
                                       const wchar_t* /*unused*/)
{
    // A skin that hasn't released its picture gets nothing new.
    if (!slot || *slot)
        return false;
    const Key key(module, id, mirror);
    auto found = m_mapBitmaps.find(key);
    if (found != m_mapBitmaps.end()) {
        ++found->second.second;
        *slot = found->second.first;
        return true;
    }
    CVuikBitmap* bitmap = new (std::nothrow) CVuikBitmap();
    if (!bitmap)
        return false;
    bitmap->LoadFromRes(module, id);
    if (!bitmap->GetPrimary()) {
        delete bitmap;
        return false;
    }
    // On top of the turn that the load gives in a right-to-left layout: a non-zero flag there gives back the
    // picture as drawn, for pictures that must not turn round.
    if (mirror != 0)
        bitmap->Mirror();
    try {
        m_mapBitmaps.emplace(key, std::make_pair(bitmap, 1));
    } catch (...) {
        delete bitmap;
        return false;
    }
    *slot = bitmap;
    return true;
}

bool CVuikResourceManager::UnloadBitmap(CVuikBitmap** slot)
{
    if (!slot || !*slot)
        return false;
    // The key isn't known here: a linear search for the picture.
    for (auto it = m_mapBitmaps.begin(); it != m_mapBitmaps.end(); ++it) {
        if (it->second.first != *slot)
            continue;
        if (--it->second.second <= 0) {
            delete it->second.first;
            m_mapBitmaps.erase(it);
        }
        *slot = nullptr;
        return true;
    }
    return false;
}

int CVuikResourceManager::GetReferenceCount(HINSTANCE module, UINT id, int mirror)
{
    auto found = m_mapBitmaps.find(Key(module, id, mirror));
    return found == m_mapBitmaps.end() ? 0 : found->second.second;
}
