// CVuikBaseSkin: the skin contract. A skin turns the resource ids of its def into pictures (Load), checks
// them (Validate) and paints one state of a control (Draw). Its status is 0 until checked, 1 when every
// picture its def asks for is there, 2 otherwise.
#pragma once

#include <windows.h>

#include "zcmod/Export.h"

class CVuikWindow;
class CVuikGraphics;

class ZCMOD_API CVuikBaseSkin {
public:
    enum { StatusUnchecked = 0, StatusValid = 1, StatusInvalid = 2 };

    CVuikBaseSkin();

    // Base behaviour: nothing.
    virtual void Load();
    virtual void Unload();
    // Validates first if the status is still 0; true exactly when the status is then 1.
    virtual bool IsValid();
    // Base behaviour: nothing.
    virtual void Draw(CVuikWindow* window, CVuikGraphics* graphics, int width, int height);
    // Base behaviour: status 2, so a skin that doesn't override this is never valid.
    virtual void Validate();

    int GetStatus() const { return m_nStatus; }

protected:
    // Skins are destroyed through their own class (CVuikBaseSkinImpl adds the virtual destructor).
    ~CVuikBaseSkin() {}

    int m_nStatus;
};
