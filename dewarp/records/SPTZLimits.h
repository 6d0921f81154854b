/// \file
/// Positions of a view, and how far it may be moved.
#pragma once

#include "platform/Export.h"

/// A position: pan, tilt and zoom, degrees.
struct LUMOR_API SPTZ
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 180.0f;
};

/// How far one of the three may go. Equal bounds: it is fixed there.
struct LUMOR_API SPTZRange
{
    float fLow = 0.0f;
    float fHigh = 0.0f;
    bool bPeriodic = false; ///< goes round; the bounds say where it is wrapped
};

struct LUMOR_API SPTZLimits
{
    SPTZRange sPan;
    SPTZRange sTilt;
    SPTZRange sZoom;
};
