/// \file
/// The rim of a circle as the frame itself shows it, sector by sector.
#pragma once

#include "dewarp/lenses/CircleEnd.h"
#include "dewarp/lenses/CircleFit.h"
#include "dewarp/lenses/CirclePicture.h"

#include <vector>

enum ERimSector : int
{
    SECTOR_HIDDEN,  ///< the frame ends before the rim
    SECTOR_DARK,    ///< no light anywhere near the rim
    SECTOR_OUTSIDE, ///< light on both sides of it: text, a logo, a flare, or no rim at all
    SECTOR_EDGE,    ///< dark outside, light inside
};

/// Where the light of one sector ends.
struct SRimSector
{
    ERimSector eKind = SECTOR_HIDDEN;
    SRimPoint sPoint;      ///< of SECTOR_EDGE
    double fOff = 0.0;     ///< pixels that it lies outside of the rim that was read
    double fLight = 0.0;   ///< levels above the surround inside of the rim
    double fOutside = 0.0; ///< levels outside of it
};

/// How far to look on both sides of a rim, in pixels.
struct SRimReach
{
    double fOutward = 0.0;
    double fInward = 0.0;
    double fStep = 1.0;
    int nSectors = 360;
};

struct SRimView
{
    std::vector<SRimSector> vSectors;
    double fNoise = 0.0; ///< standard deviation of what is averaged across one sector
    double fBlur = 0.0;  ///< pixels that the edge is blurred over
    SRimEnd sEnd;        ///< of all sectors together
};

/// Reads all sectors along a rim that is known roughly. Where light ends at once, its end is the middle of
/// the step; where it fades, the place where it has faded to nothing. Units: frame pixels, pixel centres at
/// halves; fSurround and fSurroundNoise: levels of the surround. Thread: any. Fails: only for want of memory.
SRimView ReadRim(const SLumaPlane& rPlane, const SRim& rRim, const SRimReach& rReach, double fSurround);

/// The points of all sectors with an edge.
std::vector<SRimPoint> RimPoints(const SRimView& rView);
