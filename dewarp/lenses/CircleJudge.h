/// \file
/// What speaks for a circle that was found in a picture, and against it.
#pragma once

#include "dewarp/lenses/CircleFinder.h"
#include "dewarp/lenses/CircleFit.h"
#include "dewarp/lenses/CirclePicture.h"
#include "dewarp/lenses/CircleRim.h"

/// Shares are of 1.
struct SRimEvidence
{
    double fVisible = 0.0;   ///< of the rim: inside of the frame
    double fSupported = 0.0; ///< of what is visible: light ends at the rim
    double fDark = 0.0;      ///< of what is visible: no light inside either
    double fSurround = 0.0;  ///< of what lies outside of the rim: as dark as the surround
    double fVariety = 0.0; ///< how much neighbouring places inside of the rim differ, in parts of their mean
};

/// A rim and how it was come by; all in frame pixels.
struct STracedRim
{
    SRimFit sFit;
    SRimView sView;
    SRimEvidence sEvidence;
    bool bEllipse = false;
};

/// Thread: any. Fails: only for want of memory.
SRimEvidence WeighRim(const SRimFit& rFit, const SRimView& rView, const SSmallPicture& rPicture,
                      const SSurround& rSurround);

/// The larger, the more speaks for the rim.
double EvidenceScore(const SRimEvidence& rEvidence);

/// Nothing better can be found.
bool IsBeyondDoubt(const STracedRim& rTraced);

/// What is answered for the best rim of a picture.
SFoundCircle JudgeRim(const STracedRim& rTraced, const SLumaPlane& rPlane);
