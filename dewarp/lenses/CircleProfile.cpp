#include "dewarp/lenses/CircleProfile.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Rises of so many thresholds make a slope.
constexpr double SLOPE_THRESHOLDS = 6.0;

/// Pixels from one place that is tried to the next, and how near the best one is come to.
constexpr double COARSE_STEP = 1.0;
constexpr double FINE_STEP = 0.07;

/// Pixels inside of an edge where its rise is measured.
constexpr double RISE_DISTANCE = 4.0;

/// Between the four pixels around a point; false outside of the frame.
bool Sample(const SLumaPlane& rPlane, double fX, double fY, double& rLevel)
{
    const double fLeft = fX - 0.5;
    const double fTop = fY - 0.5;
    if (!(fLeft >= 0.0 && fTop >= 0.0 && fLeft < rPlane.nWidth - 1 && fTop < rPlane.nHeight - 1))
        return false;
    const int nLeft = static_cast<int>(fLeft);
    const int nTop = static_cast<int>(fTop);
    const unsigned char* const pTop = rPlane.Row(nTop) + nLeft;
    const unsigned char* const pBottom = rPlane.Row(nTop + 1) + nLeft;
    const double fAcross = fLeft - nLeft;
    const double fDown = fTop - nTop;
    const double fUpper = pTop[0] + fAcross * (pTop[1] - pTop[0]);
    const double fLower = pBottom[0] + fAcross * (pBottom[1] - pBottom[0]);
    rLevel = fUpper + fDown * (fLower - fUpper);
    return true;
}

/// A step from 0 to 1 that rises evenly over fBlur pixels, and the slope of 1 a pixel behind it.
void EdgeShape(double fInside, double fBlur, double fPartOfBlur, double& rStep, double& rSlope)
{
    const double fPart = fInside * fPartOfBlur + 0.5;
    rStep = std::clamp(fPart, 0.0, 1.0);
    rSlope = fPart <= 0.0 ? 0.0 : fPart >= 1.0 ? fInside : 0.5 * fPart * fPart * fBlur;
}

/// Sums over a window, and the edge at one place that leaves least.
struct SEdgeSums
{
    double fStepStep = 0.0;
    double fStepSlope = 0.0;
    double fSlopeSlope = 0.0;
    double fStepLevel = 0.0;
    double fSlopeLevel = 0.0;
    double fLevelLevel = 0.0;

    void Add(double fStep, double fSlope, double fLevel)
    {
        fStepStep += fStep * fStep;
        fStepSlope += fStep * fSlope;
        fSlopeSlope += fSlope * fSlope;
        fStepLevel += fStep * fLevel;
        fSlopeLevel += fSlope * fLevel;
        fLevelLevel += fLevel * fLevel;
    }

    /// Sets height and slope, none of them downward outside of what the other makes up for.
    double Solve(double& rHeight, double& rSlope) const
    {
        const double fDeterminant = fStepStep * fSlopeSlope - fStepSlope * fStepSlope;
        rHeight = 0.0;
        rSlope = 0.0;
        if (fDeterminant > 1e-9) {
            rHeight = (fStepLevel * fSlopeSlope - fSlopeLevel * fStepSlope) / fDeterminant;
            rSlope = (fSlopeLevel * fStepStep - fStepLevel * fStepSlope) / fDeterminant;
        }
        if (rHeight <= 0.0) {
            rHeight = 0.0;
            rSlope = fSlopeSlope > 0.0 ? std::max(0.0, fSlopeLevel / fSlopeSlope) : 0.0;
        }
        return fLevelLevel - rHeight * fStepLevel - rSlope * fSlopeLevel;
    }
};

} // namespace

int SProfile::Entry(double fDistance) const
{
    return static_cast<int>(std::lround((fOutward - fDistance) / fStep));
}

void SampleSector(const SLumaPlane& rPlane, const SRim& rRim, double fAngle, double fWidth, double fInward,
                  SProfile& rProfile)
{
    const int nEntries = rProfile.Entry(-fInward) + 1;
    rProfile.vLevels.assign(static_cast<std::size_t>(nEntries), 0.0);
    // One ray a pixel of the rim; of large circles fewer.
    const int nRays = std::clamp(static_cast<int>(std::lround(fWidth * rRim.Radius())), 2, 16);
    std::vector<int> vCounts(static_cast<std::size_t>(nEntries), 0);
    for (int nRay = 0; nRay < nRays; ++nRay) {
        const double fRay = fAngle + fWidth * ((nRay + 0.5) / nRays - 0.5);
        const double fCos = std::cos(fRay);
        const double fSin = std::sin(fRay);
        const double fLength = std::hypot(fCos / rRim.fRadiusX, fSin / rRim.fRadiusY);
        const double fOutX = fCos / (rRim.fRadiusX * fLength);
        const double fOutY = fSin / (rRim.fRadiusY * fLength);
        for (int nEntry = 0; nEntry < nEntries; ++nEntry) {
            const double fOff = rProfile.Distance(nEntry);
            double fLevel = 0.0;
            if (!Sample(rPlane, rRim.fCenterX + rRim.fRadiusX * fCos + fOff * fOutX,
                        rRim.fCenterY + rRim.fRadiusY * fSin + fOff * fOutY, fLevel))
                continue;
            rProfile.vLevels[static_cast<std::size_t>(nEntry)] += fLevel;
            ++vCounts[static_cast<std::size_t>(nEntry)];
        }
    }
    // The entries around the rim itself that all rays reach.
    const int nRim = std::clamp(rProfile.Entry(0.0), 0, nEntries - 1);
    const auto IsWhole = [&](int nEntry) { return vCounts[static_cast<std::size_t>(nEntry)] == nRays; };
    rProfile.nFirst = rProfile.nEnd = nRim;
    if (!IsWhole(nRim))
        return;
    while (rProfile.nFirst > 0 && IsWhole(rProfile.nFirst - 1))
        --rProfile.nFirst;
    while (rProfile.nEnd < nEntries && IsWhole(rProfile.nEnd))
        ++rProfile.nEnd;
    for (double& rLevel : rProfile.vLevels)
        rLevel /= nRays;
}

double MeanInside(const SProfile& rProfile, double fLeast, double fMost)
{
    const int nFirst = std::clamp(rProfile.Entry(-fLeast), rProfile.nFirst, rProfile.nEnd);
    const int nEnd = std::clamp(rProfile.Entry(-fMost) + 1, nFirst, rProfile.nEnd);
    double fSum = 0.0;
    for (int i = nFirst; i < nEnd; ++i)
        fSum += rProfile.vLevels[static_cast<std::size_t>(i)];
    return nEnd > nFirst ? fSum / (nEnd - nFirst) : 0.0;
}

int FindOnset(const SProfile& rProfile, double fThreshold)
{
    const auto IsLight = [&](int nEntry) {
        const std::size_t n = static_cast<std::size_t>(nEntry);
        return rProfile.vLevels[n - 1] + rProfile.vLevels[n] + rProfile.vLevels[n + 1] > 3.0 * fThreshold;
    };
    for (int i = rProfile.nFirst + 1; i < rProfile.nEnd - 5; ++i) {
        if (IsLight(i) && IsLight(i + 2) && IsLight(i + 4))
            return i;
    }
    return rProfile.nEnd;
}

SProfileEdge PlaceEdge(const SProfile& rProfile, int nOnset, double fOutside, double fThreshold, double fBlur,
                       double fWindow)
{
    const auto Level = [&](int nEntry) {
        return rProfile.vLevels[static_cast<std::size_t>(nEntry)] - fOutside;
    };
    // As far inward as it takes to rise: a few pixels where light ends at once.
    const int nLeast = std::max(2, static_cast<int>(std::lround(fWindow / rProfile.fStep)));
    int nRisen = nOnset;
    while (nRisen < rProfile.nEnd - 1 && Level(nRisen) < SLOPE_THRESHOLDS * (fThreshold - fOutside))
        ++nRisen;
    const int nInward = std::max(nLeast, (nRisen - nOnset) * 3 / 2);
    const int nOutward = std::max(nLeast, (nRisen - nOnset) / 2);
    const int nFirst = std::max(rProfile.nFirst, nOnset - nOutward);
    const int nEnd = std::min(rProfile.nEnd, nOnset + nInward + 1);
    const double fPartOfBlur = 1.0 / fBlur;
    const auto Try = [&](double fPlace) {
        SEdgeSums sSums;
        for (int i = nFirst; i < nEnd; ++i) {
            double fStep = 0.0;
            double fSlope = 0.0;
            EdgeShape(fPlace - rProfile.Distance(i), fBlur, fPartOfBlur, fStep, fSlope);
            sSums.Add(fStep, fSlope, Level(i));
        }
        double fHeight = 0.0;
        double fSlope = 0.0;
        SProfileEdge sEdge;
        sEdge.fDistance = fPlace;
        sEdge.fMisfit = sSums.Solve(fHeight, fSlope);
        sEdge.fRise = fHeight + RISE_DISTANCE * fSlope;
        sEdge.bFound = sEdge.fRise > 0.0;
        return sEdge;
    };
    SProfileEdge sBest;
    const double fInnermost = rProfile.Distance(std::min(nOnset + nLeast / 2, nEnd - 1));
    const double fOutermost = rProfile.Distance(nFirst + 1);
    const int nPlaces = static_cast<int>((fOutermost - fInnermost) / COARSE_STEP) + 1;
    for (int nPlace = 0; nPlace < nPlaces; ++nPlace) {
        const SProfileEdge sEdge = Try(fOutermost - COARSE_STEP * nPlace);
        if (sEdge.bFound && (!sBest.bFound || sEdge.fMisfit < sBest.fMisfit))
            sBest = sEdge;
    }
    // Between the places tried.
    double fStep = COARSE_STEP;
    while (sBest.bFound && fStep > FINE_STEP) {
        fStep *= 0.5;
        for (const double fPlace : {sBest.fDistance - fStep, sBest.fDistance + fStep}) {
            const SProfileEdge sEdge = Try(fPlace);
            if (sEdge.bFound && sEdge.fMisfit < sBest.fMisfit)
                sBest = sEdge;
        }
    }
    return sBest;
}
