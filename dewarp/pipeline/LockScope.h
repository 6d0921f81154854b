/// \file
/// Holds a dewarper's lock for a scope.
#pragma once

#include "dewarp/CustomGPUDewarper.h"

class CLockScope
{
public:
    explicit CLockScope(CCustomGPUDewarper& rDewarper) : m_rDewarper(rDewarper) { m_rDewarper.Lock(); }
    ~CLockScope() { m_rDewarper.Unlock(); }
    CLockScope(const CLockScope&) = delete;
    CLockScope& operator=(const CLockScope&) = delete;

private:
    CCustomGPUDewarper& m_rDewarper;
};
