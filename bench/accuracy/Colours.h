/// \file
/// Colours of every input layout, YUV space and range.
#pragma once

#include "dewarp/records/Enumerations.h"

#include <string>
#include <vector>

/// Differences from the exact colour, in 255ths, over all channels of all pixels. The exact colour is not
/// rounded: a correctly rounded picture has a mean of 0.25 and a largest of 0.5.
struct SColourSpread
{
    double fMean = 0.0;
    double fMax = 0.0;
    double fBeyond2 = 0.0; ///< share of bytes that are off by more than 2 from the correctly rounded one
};

struct SColourResult
{
    std::string strLayout;
    std::string strSpace; ///< empty for layouts without YUV
    std::string strRange;
    SColourSpread sNearest;     ///< chance bytes, one target pixel a texel
    SColourSpread sLinear;      ///< the same bytes, enlarged by 4/3 by the linear filter
    SColourSpread sLinearScene; ///< a room, enlarged likewise
    bool IsGood() const;
};

/// Measures one layout after the other.
std::vector<SColourResult> MeasureColours(bool bQuick);
