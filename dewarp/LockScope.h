/// \file
/// Holds a dewarper's lock for a scope. Inside the library only. Debug builds stop the program when two
/// threads are in one dewarper at once: its lock does not exclude, and nobody else saw to it.
#pragma once

#include "dewarp/CustomGPUDewarper.h"

class CLockScope
{
public:
    explicit CLockScope(CCustomGPUDewarper& rDewarper) : m_rDewarper(rDewarper)
    {
        m_rDewarper.Lock();
#ifndef NDEBUG
        m_rDewarper.EnterLocked();
#endif
    }
    ~CLockScope()
    {
#ifndef NDEBUG
        m_rDewarper.LeaveLocked();
#endif
        m_rDewarper.Unlock();
    }
    CLockScope(const CLockScope&) = delete;
    CLockScope& operator=(const CLockScope&) = delete;

private:
    CCustomGPUDewarper& m_rDewarper;
};
