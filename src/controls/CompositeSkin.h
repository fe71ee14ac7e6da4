// What every composite skin of the button families does with its state skins: each part of the def handed to
// its state skin, and Load, Unload and Validate forwarded to each in order; the whole valid when every part is.
#pragma once

#include <cstddef>

namespace zcmod {

template <class StateSkin, class StateDef, std::size_t N>
void SetEachDef(StateSkin (&skins)[N], const StateDef (&defs)[N])
{
    for (std::size_t i = 0; i < N; ++i)
        skins[i].SetSkinDef(defs[i]);
}

template <class StateSkin, std::size_t N>
void LoadEach(StateSkin (&skins)[N])
{
    for (StateSkin& skin : skins)
        skin.Load();
}

template <class StateSkin, std::size_t N>
void UnloadEach(StateSkin (&skins)[N])
{
    for (StateSkin& skin : skins)
        skin.Unload();
}

template <class StateSkin, std::size_t N>
void ValidateEach(StateSkin (&skins)[N])
{
    for (StateSkin& skin : skins)
        skin.Validate();
}

// The first state skin that is not valid ends the test.
template <class StateSkin, std::size_t N>
bool AllValid(StateSkin (&skins)[N])
{
    for (StateSkin& skin : skins)
        if (!skin.IsValid())
            return false;
    return true;
}

}  // namespace zcmod
