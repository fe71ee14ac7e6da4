// CVuikBaseSkinImpl<Skin, SkinDef>: a skin with its def, a plain copyable record of resource ids, colours
// and fonts, held by value. Header-only: applications derive skins of their own from it.
//
// A leaf skin's Load calls its own Unload, loads each non-zero id through CVuikResourceManager from
// CVuikLib::GetResourceInstance(), and calls Validate; Validate sets status 1, then 2 for any non-zero id
// whose picture is missing. A composite forwards Load, Unload and Validate to its state skins in order.
#pragma once

#include "zcmod/VuikBaseSkin.h"

template <class Skin, class SkinDef>
class CVuikBaseSkinImpl : public CVuikBaseSkin {
public:
    typedef SkinDef DefType;

    CVuikBaseSkinImpl() : m_SkinDef() {}
    virtual ~CVuikBaseSkinImpl() {}

    // Stores a copy. No resource is touched: a new def takes effect at the next Load.
    virtual void SetSkinDef(SkinDef def) { m_SkinDef = def; }
    operator SkinDef() const { return m_SkinDef; }

protected:
    SkinDef m_SkinDef;
};
