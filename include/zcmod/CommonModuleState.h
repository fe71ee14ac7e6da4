// CCommonModuleState: the one process-wide record that owns the image stores, the resource handler, the
// colour loader and the map of live dialogs, from the library's load until ZCMOD_Finalize.
#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "zcmod/Export.h"

class CNBitmapUtil;
class CResHandler;
class CStrColorLoader;
class CDkhDialog;

class ZCMOD_API CCommonModuleState {
public:
    CCommonModuleState();
    // Runs the release again at process exit; after ZCMOD_Finalize it finds nothing to do.
    ~CCommonModuleState();

    CCommonModuleState(const CCommonModuleState&) = delete;
    CCommonModuleState& operator=(const CCommonModuleState&) = delete;

    // The process-wide record.
    static CCommonModuleState& Get();

    // Replaces the colour loader by a new empty one, but only if one exists.
    void ResetColorLoader();

    // Clears and frees the eight image stores, then the data root, the resource handler, the colour loader
    // and the dialog map, setting each pointer empty as it goes.
    void Release();

    CNBitmapUtil* m_pBitmapPool[8];
    std::wstring* m_pDataRoot;
    CResHandler* m_pResHandler;
    CStrColorLoader* m_pColorLoader;
    std::map<HWND, CDkhDialog*>* m_pDialogMap;
};
