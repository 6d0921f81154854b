/// \file
/// What control operations refuse. Inside the room only.
#pragma once

#include "platform/Report.h"

#include <cmath>
#include <initializer_list>

/// False, with a log line, when one of the values is not a finite number.
inline bool AreUsable(std::initializer_list<float> vValues, const char* pFunction, CReport& rReport)
{
    for (const float fValue : vValues) {
        if (std::isfinite(fValue))
            continue;
        rReport.Refuse("%s: value is not a finite number", pFunction);
        return false;
    }
    return true;
}
