// The library's process-wide objects, defined in this one translation unit so that their constructors run in
// the order below when the library loads, and their destructors in the reverse order at process exit. None of
// them touches a window, a file or a font: resource modules and fonts load on first use.
//
// Order:
//   the default def of the plain button skin: the system's text colours and DEFAULT_GUI_FONT as they are when
//   the library loads;
//   the bitmap map of CVuikResourceManager: skin pictures shared by reference count (pictures still in it at
//   exit are dropped with it, not deleted);
//   the tooltip's text colour, COLOR_BTNTEXT as it is when the library loads;
//   the application module object of the window framework;
//   CCommonModuleState: the image stores, the data root, the resource handler, the colour loader and the
//   dialog map.
#include "frame/AppModule.h"
#include "zcmod/CommonModuleState.h"
#include "zcmod/VuikButtonCtrl.h"
#include "zcmod/VuikResourceManager.h"
#include "zcmod/VuikTooltip.h"

CVuikButtonSkinDef CVuikButtonSkin::m_DefaultSkinDef = CVuikButtonSkin::MakeSystemSkinDef();

std::map<CVuikResourceManager::Key, std::pair<CVuikBitmap*, int>, CVuikResourceManager::KeyLess>
    CVuikResourceManager::m_mapBitmaps;

COLORREF CVuikTooltip::m_crTextColor = GetSysColor(COLOR_BTNTEXT);

namespace zcmod {

namespace {
AppModule g_appModule;
}

AppModule& TheAppModule() { return g_appModule; }

}  // namespace zcmod

namespace {
CCommonModuleState g_commonModuleState;
}

CCommonModuleState& CCommonModuleState::Get() { return g_commonModuleState; }
