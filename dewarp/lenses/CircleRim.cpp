#include "dewarp/lenses/CircleRim.h"

#include "dewarp/lenses/CircleProfile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace
{

/// Light is this many standard deviations above the surround, and this many levels.
constexpr double LIGHT_DEVIATIONS = 4.0;
constexpr double LEAST_LIGHT = 1.2;

/// Pixels looked at on both sides of an edge, at least.
constexpr double WINDOW = 6.0;

/// Pixels of surround that a sector must show.
constexpr double LEAST_OUTSIDE = 3.0;

/// An edge is never known better than to this part of a pixel.
constexpr double LEAST_ERROR = 0.2;

/// Every so many sectors are asked how blurred they are.
constexpr std::size_t ASKED = 10;

/// Sectors whose light ends this near the rim are added up: pixels, and part of what was looked at outside.
constexpr double COMMON_NEAR = 2.0;
constexpr double COMMON_PART = 0.3;

/// Levels that the sum of sectors rises by where light begins, and part of the light inside: less is glow.
constexpr double LEAST_COMMON_LIGHT = 0.25;
constexpr double COMMON_GLOW = 0.005;

/// Levels by which the surround may differ from place to place.
constexpr double MOST_GLOW = 12.0;

/// A sector's profile and what was seen of it.
struct SReading
{
    SProfile sProfile;
    double fOutside = 0.0; ///< level of its outer part
};

std::vector<SReading> SampleAll(const SLumaPlane& rPlane, const SRim& rRim, const SRimReach& rReach)
{
    std::vector<SReading> vReadings(static_cast<std::size_t>(rReach.nSectors));
    const double fWidth = 2.0 * std::numbers::pi / rReach.nSectors;
    double fAngle = 0.5 * fWidth;
    std::vector<double> vOuter;
    for (SReading& rReading : vReadings) {
        SProfile& rProfile = rReading.sProfile;
        rProfile.fStep = rReach.fStep;
        rProfile.fOutward = rReach.fOutward;
        SampleSector(rPlane, rRim, fAngle, fWidth, rReach.fInward, rProfile);
        fAngle += fWidth;
        if (rProfile.nEnd - rProfile.nFirst < 8)
            continue;
        const int nOuter =
            std::clamp(rProfile.Entry(0.4 * rReach.fOutward), rProfile.nFirst + 2, rProfile.nEnd);
        vOuter.assign(rProfile.vLevels.begin() + rProfile.nFirst, rProfile.vLevels.begin() + nOuter);
        rReading.fOutside = TakeMedian(vOuter);
    }
    return vReadings;
}

/// Whether a sector begins in the surround, which may glow a little.
bool IsSurround(const SReading& rReading, double fSurround)
{
    return std::fabs(rReading.fOutside - fSurround) <= MOST_GLOW;
}

/// Standard deviation of one entry, from how much neighbours differ outside of the rim.
double MeasureNoise(const std::vector<SReading>& vReadings, double fSurround)
{
    std::vector<double> vDifferences;
    for (const SReading& rReading : vReadings) {
        const SProfile& rProfile = rReading.sProfile;
        if (!IsSurround(rReading, fSurround))
            continue;
        const int nOuter = std::min(rProfile.Entry(0.4 * rProfile.fOutward), rProfile.nEnd);
        for (int i = rProfile.nFirst; i < nOuter; ++i) {
            vDifferences.push_back(
                std::fabs(rProfile.vLevels[static_cast<std::size_t>(i)] - rReading.fOutside));
        }
    }
    return 1.4826 * TakeMedian(vDifferences);
}

/// Levels that the threshold for light lies above the surround.
double LightAbove(double fNoise)
{
    return std::max(LEAST_LIGHT, LIGHT_DEVIATIONS * fNoise / std::sqrt(3.0));
}

/// The blur with which edges leave least, out of some; every few sectors are asked.
double ChooseBlur(const std::vector<SReading>& vReadings, double fSurround, double fLight, double fRadius)
{
    const std::array<double, 3> fBlurs = {1.5, 3.0, std::max(3.0, 0.006 * fRadius)};
    std::array<int, 3> nVotes = {};
    for (std::size_t i = 0; i < vReadings.size(); i += ASKED) {
        const SProfile& rProfile = vReadings[i].sProfile;
        const int nOnset = FindOnset(rProfile, vReadings[i].fOutside + fLight);
        if (nOnset >= rProfile.nEnd || !IsSurround(vReadings[i], fSurround))
            continue;
        std::array<double, 3> fMisfits = {};
        for (std::size_t n = 0; n < fBlurs.size(); ++n)
            fMisfits[n] = PlaceEdge(rProfile, nOnset, vReadings[i].fOutside, vReadings[i].fOutside + fLight,
                                    fBlurs[n], WINDOW)
                              .fMisfit;
        ++nVotes[static_cast<std::size_t>(std::min_element(fMisfits.begin(), fMisfits.end()) -
                                          fMisfits.begin())];
    }
    return fBlurs[static_cast<std::size_t>(std::max_element(nVotes.begin(), nVotes.end()) - nVotes.begin())];
}

/// Adds up the sectors whose light ends near the rim, and looks how that of the sum does.
void ReadEnd(const std::vector<SReading>& vReadings, double fRadius, SRimView& rView)
{
    const double fNear = std::max(COMMON_NEAR, COMMON_PART * vReadings[0].sProfile.fOutward);
    SProfile sSum = vReadings[0].sProfile;
    std::vector<int> vCounts(sSum.vLevels.size(), 0);
    std::fill(sSum.vLevels.begin(), sSum.vLevels.end(), 0.0);
    int nSectors = 0;
    for (std::size_t n = 0; n < vReadings.size(); ++n) {
        const SRimSector& rSector = rView.vSectors[n];
        const SProfile& rProfile = vReadings[n].sProfile;
        if (rSector.eKind != SECTOR_EDGE || std::fabs(rSector.fOff) > fNear)
            continue;
        ++nSectors;
        for (int i = rProfile.nFirst; i < rProfile.nEnd; ++i) {
            const std::size_t nEntry = static_cast<std::size_t>(i);
            sSum.vLevels[nEntry] += rProfile.vLevels[nEntry] - vReadings[n].fOutside;
            ++vCounts[nEntry];
        }
    }
    if (nSectors < 8)
        return;
    const auto IsCommon = [&](int i) { return vCounts[static_cast<std::size_t>(i)] >= (nSectors + 1) / 2; };
    sSum.nFirst = sSum.nEnd = sSum.Entry(0.0);
    while (sSum.nFirst > 0 && IsCommon(sSum.nFirst - 1))
        --sSum.nFirst;
    while (sSum.nEnd < static_cast<int>(sSum.vLevels.size()) && IsCommon(sSum.nEnd))
        ++sSum.nEnd;
    for (int i = sSum.nFirst; i < sSum.nEnd; ++i)
        sSum.vLevels[static_cast<std::size_t>(i)] /= vCounts[static_cast<std::size_t>(i)];
    const double fThreshold =
        std::max({LEAST_COMMON_LIGHT, LIGHT_DEVIATIONS * rView.fNoise / std::sqrt(nSectors),
                  COMMON_GLOW * MeanInside(sSum, 1.5, 10.0)});
    rView.sEnd = FindRimEnd(sSum, fRadius, fThreshold);
}

SRimSector ReadSector(const SReading& rReading, const SRimView& rView, double fSurround)
{
    const SProfile& rProfile = rReading.sProfile;
    SRimSector sSector;
    if (rProfile.nEnd - rProfile.nFirst < 8 || rProfile.Distance(rProfile.nFirst) < LEAST_OUTSIDE)
        return sSector;
    const double fLight = LightAbove(rView.fNoise);
    sSector.fOutside = rReading.fOutside;
    const double fBase = IsSurround(rReading, fSurround) ? rReading.fOutside : fSurround;
    const int nOnset = FindOnset(rProfile, fBase + fLight);
    if (nOnset >= rProfile.nEnd) {
        sSector.eKind = SECTOR_DARK;
        return sSector;
    }
    sSector.eKind = SECTOR_OUTSIDE;
    if (rProfile.Distance(rProfile.nFirst) - rProfile.Distance(nOnset) < LEAST_OUTSIDE)
        return sSector;
    const SProfileEdge sEdge = PlaceEdge(rProfile, nOnset, fBase, fBase + fLight, rView.fBlur, WINDOW);
    if (!sEdge.bFound || !(sEdge.fRise > 0.0))
        return sSector;
    sSector.eKind = SECTOR_EDGE;
    sSector.fOff = sEdge.fDistance;
    sSector.sPoint.fError = LEAST_ERROR + 2.0 * std::max(rView.fNoise, 0.2) / sEdge.fRise + 0.1 * rView.fBlur;
    sSector.fLight = MeanInside(rProfile, 1.5 - sEdge.fDistance, 10.0 - sEdge.fDistance) - fBase;
    return sSector;
}

} // namespace

SRimView ReadRim(const SLumaPlane& rPlane, const SRim& rRim, const SRimReach& rReach, double fSurround)
{
    SRimView sView;
    const std::vector<SReading> vReadings = SampleAll(rPlane, rRim, rReach);
    sView.fNoise = MeasureNoise(vReadings, fSurround);
    sView.fBlur = ChooseBlur(vReadings, fSurround, LightAbove(sView.fNoise), rRim.Radius());
    double fAngle = std::numbers::pi / rReach.nSectors;
    for (const SReading& rReading : vReadings) {
        SRimSector sSector = ReadSector(rReading, sView, fSurround);
        const double fCos = std::cos(fAngle);
        const double fSin = std::sin(fAngle);
        const double fLength = std::hypot(fCos / rRim.fRadiusX, fSin / rRim.fRadiusY);
        const double fOff = sSector.fOff;
        sSector.sPoint.fX = rRim.fCenterX + fCos * (rRim.fRadiusX + fOff / (rRim.fRadiusX * fLength));
        sSector.sPoint.fY = rRim.fCenterY + fSin * (rRim.fRadiusY + fOff / (rRim.fRadiusY * fLength));
        sView.vSectors.push_back(sSector);
        fAngle += 2.0 * std::numbers::pi / rReach.nSectors;
    }
    ReadEnd(vReadings, rRim.Radius(), sView);
    return sView;
}

std::vector<SRimPoint> RimPoints(const SRimView& rView)
{
    std::vector<SRimPoint> vPoints;
    for (const SRimSector& rSector : rView.vSectors) {
        if (rSector.eKind == SECTOR_EDGE)
            vPoints.push_back(rSector.sPoint);
    }
    return vPoints;
}
