#include "frame/AppModule.h"

#include <new>

namespace zcmod {

void AppModule::Init(HINSTANCE module)
{
    m_hInst = module;
    m_mainThreadId = GetCurrentThreadId();
    delete m_loops;
    m_loops = new (std::nothrow) std::map<DWORD, MessageLoop*>();
}

void AppModule::Term()
{
    delete m_loops;
    m_loops = nullptr;
}

bool AppModule::AddMessageLoop(MessageLoop* loop)
{
    if (!m_loops || !loop)
        return false;
    return m_loops->emplace(GetCurrentThreadId(), loop).second;
}

bool AppModule::RemoveMessageLoop()
{
    return m_loops && m_loops->erase(GetCurrentThreadId()) > 0;
}

MessageLoop* AppModule::GetMessageLoop(DWORD threadId) const
{
    if (!m_loops)
        return nullptr;
    auto it = m_loops->find(threadId);
    return it == m_loops->end() ? nullptr : it->second;
}

}  // namespace zcmod
