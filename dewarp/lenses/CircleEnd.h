/// \file
/// How the light of a whole rim ends: at once, blurred, or by fading.
#pragma once

#include "dewarp/lenses/CircleProfile.h"

enum ERimEnd : int
{
    END_UNKNOWN,
    END_SHARP,
    END_BLURRED, ///< a step over some pixels; it ends in its middle
    END_FADING,  ///< it takes longer; it ends where nothing is left
};

struct SRimEnd
{
    ERimEnd eKind = END_UNKNOWN;
    double fDistance = 0.0; ///< pixels outside of the rim that was read
    double fWidth = 0.0;    ///< pixels from the first light to the full one, about
    /// Light at three hundredths of the radius inside of a fading end, in parts of that twice as far inside:
    /// a half where it fades evenly, less where it fades ever more slowly.
    double fEvenness = 1.0;
};

/// Looks at the sum of many sectors: it shows a fading end that one alone does not.
/// rJoint: levels above the surround; fThreshold: what is light there. Units: pixels.
/// Thread: any. Fails: END_UNKNOWN where no light is seen.
SRimEnd FindRimEnd(const SProfile& rJoint, double fRadius, double fThreshold);
