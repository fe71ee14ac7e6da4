// CVuikResourceManager: skin pictures shared by reference count, keyed by module, id and mirror flag, so that
// a picture asked for by many skins is loaded once and freed with its last user.
#pragma once

#include <windows.h>

#include <map>
#include <tuple>
#include <utility>

#include "zcmod/Export.h"

class CVuikBitmap;

class ZCMOD_API CVuikResourceManager {
public:
    // Puts the shared picture (module, id, mirror) into the empty `*slot`, loading it on first use. False when
    // `slot` is null or already holds a picture, or when the picture can't be loaded. A non-zero `mirror`
    // flips the picture once more on top of the right-to-left mirroring of the load. `unused` is ignored.
    static bool LoadBitmapW(CVuikBitmap** slot, HINSTANCE module, UINT id, int mirror, const wchar_t* unused);
    // Releases `*slot` and empties it; the picture is deleted with its last reference. False when the slot is
    // empty or its picture isn't one of the manager's.
    static bool UnloadBitmap(CVuikBitmap** slot);

    // Number of references to the picture of (module, id, mirror); 0 when it isn't loaded.
    static int GetReferenceCount(HINSTANCE module, UINT id, int mirror);

private:
    typedef std::tuple<HINSTANCE, UINT, int> Key;
    struct KeyLess {
        bool operator()(const Key& a, const Key& b) const;
    };
    static std::map<Key, std::pair<CVuikBitmap*, int>, KeyLess> m_mapBitmaps;
};
