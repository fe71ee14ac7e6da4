#include "zcmod/VuikBaseSkin.h"

CVuikBaseSkin::CVuikBaseSkin() : m_nStatus(StatusUnchecked) {}

void CVuikBaseSkin::Load() {}

void CVuikBaseSkin::Unload() {}

bool CVuikBaseSkin::IsValid()
{
    if (m_nStatus == StatusUnchecked)
        Validate();
    return m_nStatus == StatusValid;
}

void CVuikBaseSkin::Draw(CVuikWindow*, CVuikGraphics*, int, int) {}

void CVuikBaseSkin::Validate()
{
    m_nStatus = StatusInvalid;
}
