// CBTStackInfo: which version of which Bluetooth stack is installed. A finished component that the library
// does not use itself; it is not exported.
#pragma once

#include <windows.h>

class CBTStackInfo {
public:
    enum StackKind { Digianswer = 1, WidComm = 2, Microsoft = 3, Toshiba = 4, BlueSoleil = 5 };

    // Runs the BlueSoleil query once to fill the process-wide cache.
    CBTStackInfo();
    virtual ~CBTStackInfo();

    // Fills `version` and `build` (each of `capacity` wide characters) for the stack `kind`. A result is
    // copied out only when it fits with its terminator. Returns 1 when the stack was found, else 0.
    int GetStackVersion(int kind, wchar_t* version, wchar_t* build, unsigned capacity);

private:
    int GetDigianswerVersion(wchar_t* version, wchar_t* build, unsigned capacity);
    int GetWidCommVersion(wchar_t* version, wchar_t* build, unsigned capacity);
    int GetMicrosoftVersion(wchar_t* version, wchar_t* build, unsigned capacity);
    int GetToshibaVersion(wchar_t* version, unsigned capacity);
    int GetBlueSoleilVersion(wchar_t* version, unsigned capacity);
};
