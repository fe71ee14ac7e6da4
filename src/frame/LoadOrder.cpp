// The library's process-wide objects, defined in this one translation unit so that their constructors run in
// the order below when the library loads, and their destructors in the reverse order at process exit. None of
// them touches a window, a file or a font: resource modules and fonts load on first use.
//
// Order:
//   the application module object of the window framework;
//   CCommonModuleState: the image stores, the data root, the resource handler, the colour loader and the
//   dialog map.
#include "frame/AppModule.h"
#include "zcmod/CommonModuleState.h"

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
