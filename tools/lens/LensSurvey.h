/// \file
/// What a lens is like, in numbers.
#pragma once

#include "LensFile.h"

#include <vector>

/// An ideal lens of the same field beside a lens.
struct SModelComparison
{
    ELensModel eModel = LENS_EQUIDISTANT;
    bool bPossible = false; ///< it can show the field
    double fDifference =
        0.0; ///< the largest, parts of the edge's height; positive where the lens lands further out
    double fAngle = 0.0; ///< where that is, degrees off the axis
};

/// Units: degrees off the axis; heights in parts of the one at the edge.
struct SLensSurvey
{
    double fEdge = 0.0; ///< what the lens describes, or what the frames of a calibration without field show
    double fEdgeHeight = 1.0;  ///< as the library counts it for this lens
    double fPixels = 0.0;      ///< height of the edge, frame pixels, along the rows; 0: not known
    double fMillimetres = 0.0; ///< the same on the sensor; 0: not known
    double fFrameAcross = 0.0; ///< degrees from the frame's left to its right side; 0: not known
    double fFrameDown = 0.0;
    std::vector<SModelComparison> vModels; ///< in the order of ELensModel
};

/// Thread: any. Fails: never for lenses without fault.
SLensSurvey SurveyLens(const SLensFile& rFile);
/// The lens's height, and how much of it a degree takes, in parts of the height at the survey's edge.
double SurveyHeight(const SLensFile& rFile, const SLensSurvey& rSurvey, double fAngle);
double SurveySlope(const SLensFile& rFile, const SLensSurvey& rSurvey, double fAngle);
/// The model that comes nearest.
const SModelComparison& NearestModel(const SLensSurvey& rSurvey);
