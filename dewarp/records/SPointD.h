/// \file
/// A place between pixels.
#pragma once

#include "platform/Export.h"

#include <limits>

/// Pixels from the top left corner of a picture or a frame, whose first pixel has its middle at (0.5, 0.5).
struct LUMOR_API SPointD
{
    double x = 0.0;
    double y = 0.0;
};

/// The answer to a question for points when there are none: no result is a number, pValid (may be null) says
/// false everywhere. Returns 0.
inline int FindNoPoints(SPointD* pResults, bool* pValid, int nCount)
{
    const double fNone = std::numeric_limits<double>::quiet_NaN();
    for (int n = 0; n < nCount; ++n) {
        if (pResults != nullptr)
            pResults[n] = {fNone, fNone};
        if (pValid != nullptr)
            pValid[n] = false;
    }
    return 0;
}
