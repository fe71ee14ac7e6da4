#include "zcmod/CommonModuleState.h"

#include <new>

#include "frame/Fonts.h"
#include "frame/GdiPlus.h"
#include "zcmod/NBitmapUtil.h"
#include "zcmod/ResHandler.h"
#include "zcmod/VuikLib.h"

CCommonModuleState::CCommonModuleState()
    : m_pBitmapPool(), m_pDataRoot(nullptr), m_pResHandler(nullptr), m_pColorLoader(nullptr), m_pDialogMap(nullptr)
{
    // A failed allocation leaves its pointer empty; the uses that follow it test for that.
    for (CNBitmapUtil*& pool : m_pBitmapPool)
        pool = new (std::nothrow) CNBitmapUtil;
    m_pDataRoot = new (std::nothrow) std::wstring();
    m_pResHandler = new (std::nothrow) CResHandler();
    m_pColorLoader = new (std::nothrow) CStrColorLoader();
    m_pDialogMap = new (std::nothrow) std::map<HWND, CDkhDialog*>();
}

CCommonModuleState::~CCommonModuleState() { Release(); }

void CCommonModuleState::ResetColorLoader()
{
    if (!m_pColorLoader)
        return;
    delete m_pColorLoader;
    m_pColorLoader = new (std::nothrow) CStrColorLoader();
}

void CCommonModuleState::Release()
{
    for (CNBitmapUtil*& pool : m_pBitmapPool) {
        if (pool)
            pool->Clear();
        delete pool;
        pool = nullptr;
    }
    delete m_pDataRoot;
    m_pDataRoot = nullptr;
    delete m_pResHandler;
    m_pResHandler = nullptr;
    delete m_pColorLoader;
    m_pColorLoader = nullptr;
    delete m_pDialogMap;
    m_pDialogMap = nullptr;
}

void ZCMOD_Finalize()
{
    CCommonModuleState::Get().Release();
    zcmod::RemoveSkinFonts();
    zcmod::ShutdownGdiPlus();
}
