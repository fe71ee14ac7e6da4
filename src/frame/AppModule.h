// The application module object of the window framework: the main thread and its table of message loops.
#pragma once

#include <windows.h>

#include <map>

namespace zcmod {

class MessageLoop;

class AppModule {
public:
    // Notes the calling thread as the main thread and creates the empty message-loop table.
    void Init(HINSTANCE module);
    void Term();

    HINSTANCE Instance() const { return m_hInst; }
    DWORD MainThreadId() const { return m_mainThreadId; }

    bool AddMessageLoop(MessageLoop* loop);
    bool RemoveMessageLoop();
    MessageLoop* GetMessageLoop(DWORD threadId = GetCurrentThreadId()) const;

private:
    HINSTANCE m_hInst = nullptr;
    DWORD m_mainThreadId = 0;
    std::map<DWORD, MessageLoop*>* m_loops = nullptr;
};

// The library's one application module object.
AppModule& TheAppModule();

}  // namespace zcmod
