/// \file
/// Averages of a frame across the rim of a circle, from outside to inside.
#pragma once

#include "dewarp/lenses/CircleFit.h"
#include "dewarp/lenses/CirclePicture.h"

#include <vector>

/// Averages along one sector of a rim: entry i lies fOutward - i * fStep pixels outside of it.
struct SProfile
{
    double fOutward = 0.0;
    double fStep = 1.0;
    int nFirst = 0; ///< entries from here on lie in the frame
    int nEnd = 0;   ///< and up to here
    std::vector<double> vLevels;

    double Distance(int nEntry) const { return fOutward - static_cast<double>(nEntry) * fStep; }
    int Entry(double fDistance) const;
};

/// Where a profile's light ends.
struct SProfileEdge
{
    bool bFound = false;
    double fDistance = 0.0; ///< pixels outside of the rim
    double fRise = 0.0;     ///< levels within a few pixels inside of it
    double fMisfit = 0.0;   ///< sum of squares that the best edge leaves
};

/// Averages one sector of fWidth radians around fAngle; fInward pixels on the inner side of the rim.
/// Thread: any. Fails: only for want of memory.
void SampleSector(const SLumaPlane& rPlane, const SRim& rRim, double fAngle, double fWidth, double fInward,
                  SProfile& rProfile);

/// Mean between two distances inside of the rim, in pixels; 0 of nothing.
double MeanInside(const SProfile& rProfile, double fLeast, double fMost);

/// The outermost entry from which on it stays brighter than fThreshold; nEnd when there is none.
int FindOnset(const SProfile& rProfile, double fThreshold);

/// Places an edge near an onset: a step blurred over fBlur pixels and a slope inside of it, fOutside levels
/// outside. fThreshold: what the onset was found with; fWindow: pixels that are looked at on both sides, at
/// least. Thread: any. Fails: bFound is false where nothing rises.
SProfileEdge PlaceEdge(const SProfile& rProfile, int nOnset, double fOutside, double fThreshold, double fBlur,
                       double fWindow);
