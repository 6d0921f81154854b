#include "dewarp/lenses/CircleTrace.h"

#include "dewarp/lenses/CircleEdges.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Pixels that are wider than high, or the other way round, by less than this cannot be told from square
/// ones.
constexpr double LEAST_RATIO = 0.004;

/// Share of the visible rim that must have been seen for it.
constexpr double WORTHWHILE = 0.14;

/// Part of the frame's shorter side that a radius has at least, while it is searched for.
constexpr double LEAST_RADIUS = 0.15;

/// Reads the rim where it is thought to be and moves it there where it is seen.
bool FollowRim(const SLumaPlane& rPlane, const SSurround& rSurround, const SRimReach& rReach, double fNear,
               STracedRim& rTraced)
{
    rTraced.sView = ReadRim(rPlane, rTraced.sFit.sRim, rReach, rSurround.fLevel);
    rTraced.sFit = FitRim(RimPoints(rTraced.sView), rTraced.sFit.sRim, rTraced.bEllipse, fNear);
    return rTraced.sFit.bGood;
}

/// Whether enough of what was read roughly lies on the rim for a closer look; fNear: pixels.
bool IsWorthwhile(const STracedRim& rTraced, double fNear)
{
    int nVisible = 0;
    int nOnRim = 0;
    for (const SRimSector& rSector : rTraced.sView.vSectors) {
        nVisible += rSector.eKind != SECTOR_HIDDEN ? 1 : 0;
        if (rSector.eKind == SECTOR_EDGE &&
            std::fabs(RimDistance(rTraced.sFit.sRim, rSector.sPoint.fX, rSector.sPoint.fY)) < fNear)
            ++nOnRim;
    }
    return nOnRim > WORTHWHILE * nVisible;
}

SRimReach NarrowReach(double fRadius)
{
    SRimReach sReach;
    sReach.fOutward = std::max(10.0, 0.015 * fRadius);
    sReach.fInward = std::max(16.0, 0.06 * fRadius);
    return sReach;
}

/// Circle or ellipse, whichever the points of the rim show. True when that changes.
bool ChooseShape(STracedRim& rTraced, double fNear)
{
    const SRimFit sEllipse = FitRim(RimPoints(rTraced.sView), rTraced.sFit.sRim, true, fNear);
    if (!sEllipse.bGood)
        return false;
    const double fOff = std::fabs(sEllipse.sRim.fRadiusX / sEllipse.sRim.fRadiusY - 1.0);
    const bool bEllipse = fOff > std::max(LEAST_RATIO, 4.0 * sEllipse.fRatioError);
    const bool bChanged = bEllipse != rTraced.bEllipse;
    if (bEllipse)
        rTraced.sFit = sEllipse;
    else
        rTraced.sFit.fRatioError = sEllipse.fRatioError;
    rTraced.bEllipse = bEllipse;
    return bChanged;
}

/// Weighs a rim that was followed, and moves it to where the light of all sectors together ends.
void FinishRim(const SLumaPlane& rPlane, const SSmallPicture& rPicture, const SSurround& rSurround,
               double fNear, STracedRim& rTraced)
{
    SRim& rRim = rTraced.sFit.sRim;
    rTraced.sView = ReadRim(rPlane, rRim, NarrowReach(rRim.Radius()), rSurround.fLevel);
    const SRimFit sEllipse = FitRim(RimPoints(rTraced.sView), rRim, true, fNear);
    rTraced.sFit.fRatioError = sEllipse.bGood ? sEllipse.fRatioError : 1.0;
    rTraced.sEvidence = WeighRim(rTraced.sFit, rTraced.sView, rPicture, rSurround);
    const SRimEnd& rEnd = rTraced.sView.sEnd;
    if (rEnd.eKind != END_UNKNOWN && std::fabs(rEnd.fDistance) < 2.0 * fNear) {
        rRim.fRadiusX += rEnd.fDistance;
        rRim.fRadiusY += rEnd.fDistance;
    }
}

} // namespace

STracedRim SuggestRim(const SSmallPicture& rPicture, double fThreshold, bool bEllipse)
{
    STracedRim sTraced;
    sTraced.bEllipse = bEllipse;
    sTraced.sFit = GuessRim(FindFirstLight(rPicture, fThreshold), bEllipse,
                            LEAST_RADIUS * std::min(rPicture.nCols, rPicture.nRows),
                            std::hypot(rPicture.nCols, rPicture.nRows));
    SRim& rRim = sTraced.sFit.sRim;
    rRim.fCenterX *= rPicture.nScale;
    rRim.fCenterY *= rPicture.nScale;
    rRim.fRadiusX *= rPicture.nScale;
    rRim.fRadiusY *= rPicture.nScale;
    return sTraced;
}

void TraceRim(const SLumaPlane& rPlane, const SSmallPicture& rPicture, const SSurround& rSurround,
              STracedRim& rTraced)
{
    const double fRadius = rTraced.sFit.sRim.Radius();
    SRimReach sWide;
    sWide.fStep = std::max(1.0, rPicture.nScale / 3.0);
    sWide.fOutward = std::max(10.0, std::max(3.0 * rPicture.nScale, 0.03 * fRadius));
    sWide.fInward = 1.6 * sWide.fOutward;
    const double fNear = std::max(3.0, 0.008 * fRadius);
    rTraced.sFit.bGood = FollowRim(rPlane, rSurround, sWide, 0.8 * sWide.fOutward, rTraced) &&
                         IsWorthwhile(rTraced, 2.0 * fNear + sWide.fStep) &&
                         FollowRim(rPlane, rSurround, NarrowReach(fRadius), 1.5 * fNear, rTraced);
    if (!rTraced.sFit.bGood)
        return;
    const bool bChanged = ChooseShape(rTraced, 1.5 * fNear);
    rTraced.sFit.bGood = FollowRim(rPlane, rSurround, NarrowReach(fRadius), fNear, rTraced) &&
                         (!bChanged || FollowRim(rPlane, rSurround, NarrowReach(fRadius), fNear, rTraced));
    if (rTraced.sFit.bGood)
        FinishRim(rPlane, rPicture, rSurround, fNear, rTraced);
}
