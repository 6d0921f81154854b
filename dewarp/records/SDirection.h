/// \file
/// A direction in space, seen from a camera.
#pragma once

#include "platform/Export.h"

#include <limits>

/// x to the right of the frame, y to its top, z along the optical axis, into the scene; of any length but 0.
struct LUMOR_API SDirection
{
    double x = 0.0;
    double y = 0.0;
    double z = 1.0;
};

/// The answer to a question for directions when there are none: no result is a number, pValid (may be null)
/// says false everywhere. Returns 0.
inline int FindNoDirections(SDirection* pResults, bool* pValid, int nCount)
{
    const double fNone = std::numeric_limits<double>::quiet_NaN();
    for (int n = 0; n < nCount; ++n) {
        if (pResults != nullptr)
            pResults[n] = {fNone, fNone, fNone};
        if (pValid != nullptr)
            pValid[n] = false;
    }
    return 0;
}
