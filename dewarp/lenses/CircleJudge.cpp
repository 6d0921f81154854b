#include "dewarp/lenses/CircleJudge.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Pixels, and parts of the radius, that a rim's points may lie beside it; where light fades slowly, so many
/// times what half of them do.
constexpr double NEAR_PIXELS = 1.5;
constexpr double NEAR_PART = 0.004;
constexpr double MOST_NEAR_PART = 0.01;
constexpr double NEAR_SPREADS = 2.5;

/// The surround begins this part of the radius outside of a rim, and is as dark as it is within these levels
/// or standard deviations.
constexpr double MARGIN = 0.02;
constexpr double LEAST_REACH = 2.5;
constexpr double REACH_DEVIATIONS = 4.0;

/// Places along a rim that are compared with the next ones.
constexpr std::size_t PLACES = 24;

/// Below these there is no circle: shares of the visible rim, of what is lit of it, of what lies outside.
constexpr double LEAST_SUPPORT = 0.3;
constexpr double LEAST_LIT_SUPPORT = 0.7;
constexpr double LEAST_SURROUND = 0.7;
/// Few points are enough where they agree this well, in parts of the radius.
constexpr double LEAST_TIGHT_SUPPORT = 0.16;
constexpr double TIGHT_LIT_SUPPORT = 0.55;
constexpr double TIGHT_SPREAD = 0.0015;
constexpr double TIGHT_ERROR = 0.002;
/// The more its points are off by, in parts of the radius, the more of them must be on it.
constexpr double SLOPPY_SPREAD = 0.003;
constexpr double LEAST_SLOPPY_VISIBLE = 0.25;
constexpr double SLOPPY_LIT_SUPPORT = 0.78;
/// Share of the whole rim, and parts of the frame's shorter side and of the radius.
constexpr double LEAST_VISIBLE = 0.1;
constexpr double LEAST_PART = 0.25;
constexpr double MOST_ERROR = 0.005;

/// A circle is certain from here on.
constexpr double CERTAIN_SUPPORT = 0.65;
constexpr double MOST_CERTAIN_DARK = 0.35;
constexpr double CERTAIN_SURROUND = 0.85;
constexpr double CERTAIN_ERROR = 0.002;
constexpr double CERTAIN_RATIO = 0.004;
constexpr double CERTAIN_SPREAD = 0.0025;
constexpr double CERTAIN_EVENNESS = 0.545;
/// Pixels and part of the radius up to which it does not matter whether a rim is blurred or fades, and pixels
/// from which on it fades: no lens blurs that much.
constexpr double SHARP_PIXELS = 3.5;
constexpr double SHARP_PART = 0.008;
constexpr double FADING_PIXELS = 14.0;
constexpr double CERTAIN_PART = 0.28;

/// Scenes differ along the rim by half of their brightness and more; plates, wheels and the moon by a tenth
/// or two.
constexpr double CERTAIN_VARIETY = 0.35;

/// The share of small pixels outside of a rim that are as dark as the surround.
double WeighSurround(const SRim& rRim, const SSmallPicture& rPicture, const SSurround& rSurround)
{
    const double fMargin = std::max(2.0 * rPicture.nScale, MARGIN * rRim.Radius());
    const double fReach = std::max(LEAST_REACH, REACH_DEVIATIONS * rSurround.fNoise);
    const double fPartX = rPicture.nScale / (rRim.fRadiusX + fMargin);
    const double fPartY = rPicture.nScale / (rRim.fRadiusY + fMargin);
    const double fCenterX = rRim.fCenterX / rPicture.nScale - 0.5;
    const double fCenterY = rRim.fCenterY / rPicture.nScale - 0.5;
    int nOutside = 0;
    int nDark = 0;
    for (int nRow = 0; nRow < rPicture.nRows; ++nRow) {
        const double fDown = (nRow - fCenterY) * fPartY;
        for (int nCol = 0; nCol < rPicture.nCols; ++nCol) {
            const double fAcross = (nCol - fCenterX) * fPartX;
            if (fAcross * fAcross + fDown * fDown < 1.0)
                continue;
            ++nOutside;
            if (std::fabs(static_cast<double>(rPicture.At(nCol, nRow)) - rSurround.fLevel) <= fReach)
                ++nDark;
        }
    }
    return nOutside > 0 ? static_cast<double>(nDark) / nOutside : 0.0;
}

/// How much the light inside of the rim differs from one place to the next.
double WeighVariety(const std::vector<const SRimSector*>& vLit)
{
    if (vLit.empty())
        return 0.0;
    double fSum = 0.0;
    double fSteps = 0.0;
    const std::size_t nApart = std::max<std::size_t>(1, vLit.size() / PLACES);
    for (std::size_t i = 0; i < vLit.size(); ++i) {
        fSum += vLit[i]->fLight;
        fSteps += std::fabs(vLit[i]->fLight - vLit[(i + nApart) % vLit.size()]->fLight);
    }
    return fSum > 0.0 ? fSteps / fSum : 0.0;
}

/// Why there is no image circle; empty when there may be one.
const char* FindObjection(const STracedRim& rTraced, const SLumaPlane& rPlane)
{
    const SRimEvidence& rEvidence = rTraced.sEvidence;
    const double fRadius = rTraced.sFit.sRim.Radius();
    const bool bTight =
        rTraced.sFit.fSpread < TIGHT_SPREAD * fRadius && rTraced.sFit.fError < TIGHT_ERROR * fRadius;
    const bool bSloppy = rTraced.sFit.fSpread > SLOPPY_SPREAD * fRadius;
    const double fLitSupport = bTight ? TIGHT_LIT_SUPPORT : bSloppy ? SLOPPY_LIT_SUPPORT : LEAST_LIT_SUPPORT;
    if (rEvidence.fSupported < (bTight ? LEAST_TIGHT_SUPPORT : LEAST_SUPPORT) ||
        rEvidence.fSupported < fLitSupport * (1.0 - rEvidence.fDark))
        return "no round rim";
    if (rEvidence.fSurround < LEAST_SURROUND)
        return "no dark surround";
    if (fRadius < LEAST_PART * std::min(rPlane.nWidth, rPlane.nHeight))
        return "what is round is too small for an image circle";
    if (rEvidence.fVisible < (bSloppy ? LEAST_SLOPPY_VISIBLE : LEAST_VISIBLE) ||
        rTraced.sFit.fError > MOST_ERROR * fRadius)
        return "too little of the rim lies in the frame";
    return "";
}

/// Why a circle is no more than likely; empty when it is certain.
const char* FindDoubt(const STracedRim& rTraced, const SLumaPlane& rPlane)
{
    const SRimEvidence& rEvidence = rTraced.sEvidence;
    const double fRadius = rTraced.sFit.sRim.Radius();
    if (rTraced.sFit.fError > CERTAIN_ERROR * fRadius)
        return "too little of the rim lies in the frame to be sure";
    if (rTraced.sFit.fRatioError > CERTAIN_RATIO)
        return "cannot tell a circle from an ellipse";
    const SRimEnd& rEnd = rTraced.sView.sEnd;
    if (rTraced.sFit.fSpread > std::max(1.0, CERTAIN_SPREAD * fRadius) ||
        (rEnd.eKind == END_FADING && rEnd.fEvenness < CERTAIN_EVENNESS))
        return "the rim fades too slowly to say where it ends";
    if (rEnd.eKind == END_UNKNOWN ||
        (rEnd.fWidth > std::max(SHARP_PIXELS, SHARP_PART * fRadius) && rEnd.fWidth < FADING_PIXELS))
        return "the rim is soft: it may end a few pixels further in or out";
    if (rEvidence.fDark > MOST_CERTAIN_DARK)
        return "much of the rim is dark";
    if (rEvidence.fSupported < CERTAIN_SUPPORT)
        return "light crosses the rim, or ends beside it";
    if (rEvidence.fSurround < CERTAIN_SURROUND)
        return "the surround is not evenly dark";
    if (rEvidence.fVariety < CERTAIN_VARIETY)
        return "alike all around inside of the rim: a round thing on dark ground looks the same";
    if (fRadius < CERTAIN_PART * std::min(rPlane.nWidth, rPlane.nHeight))
        return "small for an image circle";
    return "";
}

} // namespace

SRimEvidence WeighRim(const SRimFit& rFit, const SRimView& rView, const SSmallPicture& rPicture,
                      const SSurround& rSurround)
{
    SRimEvidence sEvidence;
    const double fRadius = rFit.sRim.Radius();
    const double fNear = std::max(
        NEAR_PIXELS, std::clamp(NEAR_SPREADS * rFit.fSpread, NEAR_PART * fRadius, MOST_NEAR_PART * fRadius));
    std::vector<const SRimSector*> vLit;
    int nVisible = 0;
    for (const SRimSector& rSector : rView.vSectors) {
        if (rSector.eKind == SECTOR_HIDDEN)
            continue;
        ++nVisible;
        if (rSector.eKind == SECTOR_DARK)
            sEvidence.fDark += 1.0;
        else if (rSector.eKind == SECTOR_EDGE &&
                 std::fabs(RimDistance(rFit.sRim, rSector.sPoint.fX, rSector.sPoint.fY)) <= fNear)
            vLit.push_back(&rSector);
    }
    if (nVisible == 0)
        return sEvidence;
    sEvidence.fVisible = static_cast<double>(nVisible) / static_cast<double>(rView.vSectors.size());
    sEvidence.fSupported = static_cast<double>(vLit.size()) / nVisible;
    sEvidence.fDark /= nVisible;
    sEvidence.fVariety = WeighVariety(vLit);
    sEvidence.fSurround = WeighSurround(rFit.sRim, rPicture, rSurround);
    return sEvidence;
}

double EvidenceScore(const SRimEvidence& rEvidence)
{
    return rEvidence.fSupported * std::sqrt(rEvidence.fVisible) * rEvidence.fSurround;
}

bool IsBeyondDoubt(const STracedRim& rTraced)
{
    const SRimEvidence& rEvidence = rTraced.sEvidence;
    return rEvidence.fSupported > 0.85 && rEvidence.fSurround > 0.9 &&
           rTraced.sFit.fError < CERTAIN_ERROR * rTraced.sFit.sRim.Radius() &&
           rTraced.sFit.fRatioError < CERTAIN_RATIO;
}

SFoundCircle JudgeRim(const STracedRim& rTraced, const SLumaPlane& rPlane)
{
    SFoundCircle sFound;
    sFound.strReason = FindObjection(rTraced, rPlane);
    if (!sFound.strReason.empty())
        return sFound;
    sFound.strReason = FindDoubt(rTraced, rPlane);
    sFound.eCertainty = sFound.strReason.empty() ? CIRCLE_CERTAIN : CIRCLE_LIKELY;
    const SRim& rRim = rTraced.sFit.sRim;
    sFound.fCenterX = rRim.fCenterX;
    sFound.fCenterY = rRim.fCenterY;
    sFound.fRadiusX = rRim.fRadiusX;
    sFound.fRadiusY = rRim.fRadiusY;
    sFound.bEllipse = rTraced.bEllipse;
    return sFound;
}
