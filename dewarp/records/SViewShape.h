/// \file
/// How much of the world some views show.
#pragma once

#include "platform/Export.h"

/// Units: degrees. 0 stands for the view's own.
struct LUMOR_API SViewShape
{
    /// From left to right and from bottom to top, of the views equirectangular, cylindrical and panini;
    /// across of the view panorama. 10 to 360 (panini 300) and 10 to 180 (cylindrical and panini 160).
    float fSpanX = 0.0f;
    float fSpanY = 0.0f;
    /// Upper and lower edge of the panoramas of ceiling and floor cameras, off the optical axis: 90 and 39.6
    /// of their own. A wider lens shows more: its edge is half its field. Up to 170, 5 apart at least.
    float fBandUpper = 0.0f;
    float fBandLower = 0.0f;
    /// Turns the views dual and triple of a floor camera upright, as its other panoramas are.
    bool bFloorFlip = false;

    bool HasBand() const { return fBandUpper != 0.0f; }
    bool operator==(const SViewShape& sOther) const = default;
};
