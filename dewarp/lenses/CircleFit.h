/// \file
/// Circles, and ellipses along the frame's sides, through points of a rim.
#pragma once

#include <span>
#include <vector>

/// Pixels of whatever picture the points are of.
struct SRim
{
    double fCenterX = 0.0;
    double fCenterY = 0.0;
    double fRadiusX = 0.0;
    double fRadiusY = 0.0;

    double Radius() const; ///< of the circle of the same area
};

struct SRimPoint
{
    double fX = 0.0;
    double fY = 0.0;
    double fError = 1.0; ///< pixels that it is off by, about
};

struct SRimFit
{
    bool bGood = false;
    SRim sRim;
    double fSpread = 0.0;     ///< pixels that points of the rim are off by, about
    double fError = 0.0;      ///< pixels: standard error of the worst of centre and radii
    double fRatioError = 0.0; ///< standard error of the ratio of both radii, with an ellipse only
};

/// Pixels that a point lies outside of a rim; negative inside.
double RimDistance(const SRim& rRim, double fX, double fY);

/// The rim that most points agree with: points further away than fReach do not count at all, and those that
/// are off by much more than most others hardly. Thread: any. Fails: bGood is false for too few points or a
/// shape that runs away.
SRimFit FitRim(std::span<const SRimPoint> vPoints, const SRim& rStart, bool bEllipse, double fReach);

/// The rim that passes through the largest number of points, among those of a radius between both limits;
/// tried with points picked by a fixed rule. Thread: any. Fails: bGood is false when no such rim passes
/// through the points tried.
SRimFit GuessRim(std::span<const SRimPoint> vPoints, bool bEllipse, double fLeastRadius, double fMostRadius);
