// What the controls that bring their own skin share: the theme (the common graphics module) as CVuikLib's
// resource instance for the time of their set-up, put back on every path.
#pragma once

#include <windows.h>

#include "zcmod/ResHandler.h"
#include "zcmod/VuikLib.h"

namespace zcmod {

class ThemeResourceScope {
public:
    ThemeResourceScope() : m_saved(CVuikLib::GetResourceInstance())
    {
        CVuikLib::SetResourceInstance(ZCMOD_GetCommonZGR());
    }
    ~ThemeResourceScope() { CVuikLib::SetResourceInstance(m_saved); }
    ThemeResourceScope(const ThemeResourceScope&) = delete;
    ThemeResourceScope& operator=(const ThemeResourceScope&) = delete;

private:
    HINSTANCE m_saved;
};

}  // namespace zcmod
