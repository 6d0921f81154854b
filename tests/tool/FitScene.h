/// \file
/// Measurements as a lens of known size would give them.
#pragma once

#include "lens/FitData.h"
#include "lens/LensFit.h"

#include <random>

/// A lens whose circle of fRadius lies around a centre. Units: degrees and frame pixels.
struct SFitScene
{
    SLens sLens;
    double fCenterX = 970.0;
    double fCenterY = 531.0;
    double fRadius = 520.0;
    double fNoise = 0.0; ///< standard deviation of every coordinate, pixels
    unsigned int nSeed = 1;
};

/// Where a ray lands: degrees off the axis and around it.
SFitPlace PlaceOf(const SFitScene& rScene, double fAngle, double fAzimuth);
/// Rays on nSpokes half planes, each in nSteps steps up to fPart of the edge.
SFitData SpokePoints(const SFitScene& rScene, int nSpokes, int nSteps, double fPart = 0.95);
/// Edges of a room: lines in planes that pass the axis at angles between 15 and 60 degrees.
SFitData RoomLines(const SFitScene& rScene, int nLines, int nPlaces, double fPart = 0.95);
/// Frames of 1920 x 1080, with the scene's circle but for its centre, which is taken for the frame's middle.
SFitSetup SetupOf(const SFitScene& rScene);
