#include "dewarp/lenses/CircleFit.h"

#include "dewarp/lenses/CirclePicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace
{

constexpr int FIT_ROUNDS = 12;

/// Neighbouring points share what they are off by: fewer of them are independent.
constexpr double SHARED_ERROR = 2.0;

constexpr std::size_t MOST_UNKNOWNS = 4;

/// Sums of a least-squares fit, and what they are solved to.
struct SNormal
{
    std::array<std::array<double, MOST_UNKNOWNS>, MOST_UNKNOWNS> fMatrix = {};
    std::array<double, MOST_UNKNOWNS> fRight = {};
};

/// The inverse of the upper left nSize rows and columns; false without one.
bool Invert(const SNormal& rNormal, std::size_t nSize,
            std::array<std::array<double, MOST_UNKNOWNS>, MOST_UNKNOWNS>& rInverse)
{
    auto fMatrix = rNormal.fMatrix;
    rInverse = {};
    for (std::size_t i = 0; i < nSize; ++i)
        rInverse[i][i] = 1.0;
    for (std::size_t i = 0; i < nSize; ++i) {
        std::size_t nBest = i;
        for (std::size_t j = i + 1; j < nSize; ++j)
            nBest = std::fabs(fMatrix[j][i]) > std::fabs(fMatrix[nBest][i]) ? j : nBest;
        std::swap(fMatrix[i], fMatrix[nBest]);
        std::swap(rInverse[i], rInverse[nBest]);
        if (!(std::fabs(fMatrix[i][i]) > 1e-12))
            return false;
        const double fScale = 1.0 / fMatrix[i][i];
        for (std::size_t k = 0; k < nSize; ++k) {
            fMatrix[i][k] *= fScale;
            rInverse[i][k] *= fScale;
        }
        for (std::size_t j = 0; j < nSize; ++j) {
            const double fFactor = fMatrix[j][i];
            if (j == i || fFactor == 0.0)
                continue;
            for (std::size_t k = 0; k < nSize; ++k) {
                fMatrix[j][k] -= fFactor * fMatrix[i][k];
                rInverse[j][k] -= fFactor * rInverse[i][k];
            }
        }
    }
    return true;
}

/// Adds a point: its distance and how that changes with centre and radii.
void AddPoint(SNormal& rNormal, const SRim& rRim, const SRimPoint& rPoint, double fWeight, bool bEllipse)
{
    const double fX = (rPoint.fX - rRim.fCenterX) / rRim.fRadiusX;
    const double fY = (rPoint.fY - rRim.fCenterY) / rRim.fRadiusY;
    const double fLength = std::max(1e-9, std::sqrt(fX * fX + fY * fY));
    const double fSlopeX = fX / (rRim.fRadiusX * fLength);
    const double fSlopeY = fY / (rRim.fRadiusY * fLength);
    const double fScale = 1.0 / std::sqrt(fSlopeX * fSlopeX + fSlopeY * fSlopeY);
    const double fDistance = (fLength - 1.0) * fScale;
    // Outward by one of each unknown moves the rim outward by so much.
    std::array<double, MOST_UNKNOWNS> fMoves = {fSlopeX * fScale, fSlopeY * fScale, fX * fSlopeX * fScale,
                                                fY * fSlopeY * fScale};
    std::size_t nSize = MOST_UNKNOWNS;
    if (!bEllipse) {
        fMoves[2] += fMoves[3];
        nSize = 3;
    }
    for (std::size_t i = 0; i < nSize; ++i) {
        rNormal.fRight[i] += fWeight * fMoves[i] * fDistance;
        for (std::size_t j = 0; j < nSize; ++j)
            rNormal.fMatrix[i][j] += fWeight * fMoves[i] * fMoves[j];
    }
}

/// Pixels that points within reach are off by, about.
double Spread(std::span<const SRimPoint> vPoints, const SRim& rRim, double fReach)
{
    std::vector<double> vOff;
    for (const SRimPoint& rPoint : vPoints) {
        const double fOff = std::fabs(RimDistance(rRim, rPoint.fX, rPoint.fY));
        if (fOff < fReach)
            vOff.push_back(fOff);
    }
    return 1.4826 * TakeMedian(vOff);
}

bool IsSensible(const SRim& rRim, const SRim& rStart)
{
    const double fMost = 2.0 * rStart.Radius();
    return std::isfinite(rRim.fCenterX + rRim.fCenterY) && rRim.fRadiusX > 0.25 * rStart.fRadiusX &&
           rRim.fRadiusX < 4.0 * rStart.fRadiusX && rRim.fRadiusY > 0.25 * rStart.fRadiusY &&
           rRim.fRadiusY < 4.0 * rStart.fRadiusY && std::fabs(rRim.fCenterX - rStart.fCenterX) < fMost &&
           std::fabs(rRim.fCenterY - rStart.fCenterY) < fMost;
}

/// One round; fCut: pixels from which on a point no longer counts.
bool ImproveFit(std::span<const SRimPoint> vPoints, SRimFit& rFit, bool bEllipse, double fCut)
{
    SNormal sNormal;
    double fSquares = 0.0;
    double fWeights = 0.0;
    int nUsed = 0;
    for (const SRimPoint& rPoint : vPoints) {
        const double fOff = RimDistance(rFit.sRim, rPoint.fX, rPoint.fY);
        const double fShare = 1.0 - (fOff / fCut) * (fOff / fCut);
        if (fShare <= 0.0)
            continue;
        const double fWeight = fShare * fShare / (rPoint.fError * rPoint.fError);
        AddPoint(sNormal, rFit.sRim, rPoint, fWeight, bEllipse);
        fSquares += fWeight * fOff * fOff;
        fWeights += fWeight;
        ++nUsed;
    }
    const std::size_t nSize = bEllipse ? 4 : 3;
    std::array<std::array<double, MOST_UNKNOWNS>, MOST_UNKNOWNS> fInverse = {};
    if (nUsed < 8 || !Invert(sNormal, nSize, fInverse))
        return false;
    std::array<double, MOST_UNKNOWNS> fStep = {};
    for (std::size_t i = 0; i < nSize; ++i) {
        for (std::size_t j = 0; j < nSize; ++j)
            fStep[i] += fInverse[i][j] * sNormal.fRight[j];
    }
    SRim& rRim = rFit.sRim;
    rRim.fCenterX += fStep[0];
    rRim.fCenterY += fStep[1];
    rRim.fRadiusX += fStep[2];
    rRim.fRadiusY += bEllipse ? fStep[3] : fStep[2];
    // Points that are off by less than said are not believed to be better.
    const double fUnit = SHARED_ERROR * std::max(1.0, std::sqrt(fSquares / std::max(1, nUsed - 4)));
    const double fWorst = std::max({fInverse[0][0], fInverse[1][1], fInverse[2][2], fInverse[3][3]});
    rFit.fError = fUnit * std::sqrt(std::max(0.0, fWorst));
    if (bEllipse) {
        const double fBoth = fInverse[2][2] + fInverse[3][3] - 2.0 * fInverse[2][3];
        rFit.fRatioError = fUnit * std::sqrt(std::max(0.0, fBoth)) / rRim.Radius();
    }
    return fWeights > 0.0;
}

} // namespace

double SRim::Radius() const
{
    return std::sqrt(fRadiusX * fRadiusY);
}

double RimDistance(const SRim& rRim, double fX, double fY)
{
    const double fAcross = (fX - rRim.fCenterX) / rRim.fRadiusX;
    const double fDown = (fY - rRim.fCenterY) / rRim.fRadiusY;
    const double fLength = std::sqrt(fAcross * fAcross + fDown * fDown);
    if (rRim.fRadiusX == rRim.fRadiusY)
        return (fLength - 1.0) * rRim.fRadiusX;
    const double fSlopeX = fAcross / rRim.fRadiusX;
    const double fSlopeY = fDown / rRim.fRadiusY;
    return (fLength - 1.0) * fLength / std::max(1e-12, std::sqrt(fSlopeX * fSlopeX + fSlopeY * fSlopeY));
}

SRimFit FitRim(std::span<const SRimPoint> vPoints, const SRim& rStart, bool bEllipse, double fReach)
{
    SRimFit sFit;
    sFit.sRim = rStart;
    if (!bEllipse)
        sFit.sRim.fRadiusX = sFit.sRim.fRadiusY = rStart.Radius();
    for (int nRound = 0; nRound < FIT_ROUNDS; ++nRound) {
        sFit.fSpread = Spread(vPoints, sFit.sRim, fReach);
        const double fCut = std::clamp(4.7 * sFit.fSpread, std::min(1.0, fReach), fReach);
        if (!ImproveFit(vPoints, sFit, bEllipse, fCut) || !IsSensible(sFit.sRim, rStart))
            return sFit;
    }
    sFit.fSpread = Spread(vPoints, sFit.sRim, fReach);
    sFit.bGood = true;
    return sFit;
}
