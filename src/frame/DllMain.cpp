// The library's entry: records its own module handle and starts the application module object. Static
// initialisers have run before it (see LoadOrder.cpp).
#include <windows.h>

#include "frame/AppModule.h"
#include "frame/Win32Util.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/)
{
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        zcmod::SetLibraryModule(module);
        zcmod::TheAppModule().Init(module);
        break;
    case DLL_PROCESS_DETACH:
        zcmod::TheAppModule().Term();
        break;
    default:
        break;
    }
    return TRUE;
}
