/// \file
/// Lenses by their textbook formulas, for frames and places that owe nothing to the library.
#pragma once

#include "dewarp/lenses/SLens.h"
#include "tests/support/TestScene.h"

#include <ostream>
#include <string>
#include <vector>

/// A camera: its lens as the library takes it, and the same by formula; where its circle lies, how it hangs.
struct STextbookLens
{
    const char* pName;
    double fHalfField; ///< degrees
    SLens sLens;
    /// Height of an angle in radians, in parts of that at the edge.
    double (*pHeight)(double fAngle);
    /// Degrees within which the rim cannot be told: a pixel there.
    double fRimSlack = 0.2;
};

/// For test names.
void PrintTo(const STextbookLens& rLens, std::ostream* pStream);

/// Frame pixels; degrees.
struct STextbookCamera
{
    int nWidth = 2000;
    int nHeight = 1800;
    double fCenterX = 1000.0;
    double fCenterY = 900.0;
    double fRadiusX = 880.0;
    double fRadiusY = 880.0;
    double fYaw = 0.0;
    double fPitch = 0.0;
    double fRoll = 0.0;
};

/// Every kind of lens that hosts can describe without a calibration.
const std::vector<STextbookLens>& TextbookLenses();

/// A direction of the mount as a turned body sees it.
FVector ToBody(const STextbookCamera& rCamera, const FVector& aMount);
/// Where a direction of the mount lands; false beyond the edge of the lens. fAngle: degrees off the body's
/// axis.
bool Land(const STextbookLens& rLens, const STextbookCamera& rCamera, const FVector& aMount, double& x,
          double& y, double& fAngle);
/// The frame that such a camera makes of a scene; black beyond its circle. nSamples x nSamples a pixel.
STestImage RenderThrough(const STextbookLens& rLens, const STextbookCamera& rCamera, EMountType eMount,
                         const FScene& fScene, int nSamples = 2);
