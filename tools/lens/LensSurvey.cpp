#include "lens/LensSurvey.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace
{

/// The angle at which a calibration reaches a height in focal lengths, up to its edge.
double AngleOf(const SLens& rLens, double fHeight)
{
    double fLow = 0.0;
    double fHigh = LensEdgeAngle(rLens);
    if (LensHeightAt(rLens, fHigh) <= fHeight)
        return fHigh;
    while (fHigh - fLow > 1e-7) {
        const double fMiddle = 0.5 * (fLow + fHigh);
        (LensHeightAt(rLens, fMiddle) < fHeight ? fLow : fHigh) = fMiddle;
    }
    return fLow;
}

/// Degrees that a calibration's frames show, from side to side and up to the furthest corner; tangential
/// distortion is too little to count here.
void SurveyFrame(const SLens& rLens, SLensSurvey& rSurvey)
{
    const SLensCalibration& c = rLens.sCalibration;
    if (c.nWidth == 0)
        return;
    // From the centre, which counts from the middle of the first pixel, to the frame's sides.
    const double fLeft = (c.fCenterX + 0.5) / c.fFocalX;
    const double fTop = (c.fCenterY + 0.5) / c.fFocalY;
    const double fRight = c.nWidth / c.fFocalX - fLeft;
    const double fBottom = c.nHeight / c.fFocalY - fTop;
    // A centre outside of the frame leaves no side on its left or its right.
    if (std::min({fLeft, fTop, fRight, fBottom}) <= 0.0)
        return;
    rSurvey.fFrameAcross = AngleOf(rLens, fLeft) + AngleOf(rLens, fRight);
    rSurvey.fFrameDown = AngleOf(rLens, fTop) + AngleOf(rLens, fBottom);
    if (!(c.fField > 0.0))
        rSurvey.fEdge = AngleOf(rLens, std::hypot(std::max(fLeft, fRight), std::max(fTop, fBottom)));
}

void SurveySizes(const SLensFile& rFile, SLensSurvey& rSurvey)
{
    const SLens& rLens = rFile.sLens;
    if (rLens.eKind == LENS_KIND_CALIBRATION) {
        SurveyFrame(rLens, rSurvey);
        rSurvey.fPixels = rLens.sCalibration.fFocalX * LensHeightAt(rLens, rSurvey.fEdge);
        return;
    }
    if (rLens.eKind == LENS_KIND_TABLE && rLens.fPixelPitch > 0.0) {
        rSurvey.fMillimetres = rLens.vHeights.back();
        rSurvey.fPixels = rSurvey.fMillimetres / rLens.fPixelPitch;
    }
    if (rFile.oCircle)
        rSurvey.fPixels = static_cast<double>(rFile.oCircle->fRadiusX);
}

SModelComparison Compare(const std::vector<double>& vHeights, double fEdge, ELensModel eModel)
{
    SModelComparison sComparison;
    sComparison.eModel = eModel;
    const SLens sModel = SLens::FromModel(eModel, 2.0 * fEdge);
    sComparison.bPossible = FindLensFault(sModel).empty();
    for (std::size_t i = 0; i < vHeights.size() && sComparison.bPossible; ++i) {
        const double fAngle = fEdge * static_cast<double>(i) / static_cast<double>(vHeights.size());
        const double fDifference = vHeights[i] - LensHeightAt(sModel, fAngle);
        if (std::fabs(fDifference) <= std::fabs(sComparison.fDifference))
            continue;
        sComparison.fDifference = fDifference;
        sComparison.fAngle = fAngle;
    }
    return sComparison;
}

} // namespace

double SurveyHeight(const SLensFile& rFile, const SLensSurvey& rSurvey, double fAngle)
{
    return LensHeightAt(rFile.sLens, fAngle) / rSurvey.fEdgeHeight;
}

double SurveySlope(const SLensFile& rFile, const SLensSurvey& rSurvey, double fAngle)
{
    // Within the lens: beyond its edge the curve is no longer its own.
    const double fStep = 0.01;
    const double fFrom = std::max(std::min(fAngle, rSurvey.fEdge) - fStep, 0.0);
    const double fTo = std::min(fAngle + fStep, rSurvey.fEdge);
    return (SurveyHeight(rFile, rSurvey, fTo) - SurveyHeight(rFile, rSurvey, fFrom)) / (fTo - fFrom);
}

SLensSurvey SurveyLens(const SLensFile& rFile)
{
    SLensSurvey sSurvey;
    sSurvey.fEdge = LensEdgeAngle(rFile.sLens);
    SurveySizes(rFile, sSurvey);
    sSurvey.fEdgeHeight = LensHeightAt(rFile.sLens, sSurvey.fEdge);
    std::vector<double> vHeights;
    const int nSteps = 360;
    vHeights.reserve(nSteps);
    for (int i = 0; i < nSteps; ++i)
        vHeights.push_back(SurveyHeight(rFile, sSurvey, sSurvey.fEdge * i / nSteps));
    for (const ELensModel eModel :
         {LENS_EQUIDISTANT, LENS_EQUISOLID, LENS_STEREOGRAPHIC, LENS_ORTHOGRAPHIC, LENS_RECTILINEAR})
        sSurvey.vModels.push_back(Compare(vHeights, sSurvey.fEdge, eModel));
    return sSurvey;
}

const SModelComparison& NearestModel(const SLensSurvey& rSurvey)
{
    const auto IsNearer = [](const SModelComparison& a, const SModelComparison& b) {
        return a.bPossible && (!b.bPossible || std::fabs(a.fDifference) < std::fabs(b.fDifference));
    };
    return *std::min_element(rSurvey.vModels.begin(), rSurvey.vModels.end(), IsNearer);
}
