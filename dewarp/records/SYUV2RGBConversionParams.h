/// \file
/// Choice of the YUV to RGB conversion.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "platform/Export.h"

/// Levels are on the 0..255 scale and count for the limited range only.
struct LUMOR_API SYUV2RGBConversionParams
{
    EYUVSpace eSpace = YUV_SPACE_AUTO;
    EYUVRange eRange = YUV_RANGE_AUTO;
    int nLumaMin = 16;
    int nLumaMax = 235;
    int nChromaMin = 16;

    bool operator==(const SYUV2RGBConversionParams& sOther) const = default;
};
