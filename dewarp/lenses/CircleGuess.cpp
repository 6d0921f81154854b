#include "dewarp/lenses/CircleFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace
{

/// Picks of points. Three of four points are of the rim: one pick of three is enough; one of four: 64 picks.
constexpr int CIRCLE_PICKS = 600;
constexpr int ELLIPSE_PICKS = 1200;

/// Points that a rim is compared with while searching; all others come when it is fitted.
constexpr std::size_t COMPARED_POINTS = 400;

/// Pixels of the small picture that its rim is blurred over.
constexpr double NEAR = 1.5;

/// The widest pixels there are.
constexpr double MOST_RATIO = 1.5;

/// Numbers without a pattern, the same in every run.
class CPicks
{
public:
    explicit CPicks(std::size_t nCount) : m_nCount(nCount) {}

    std::size_t Next()
    {
        m_nState = m_nState * 6364136223846793005ull + 1442695040888963407ull;
        return static_cast<std::size_t>(((m_nState >> 33) * m_nCount) >> 31);
    }

private:
    std::uint64_t m_nState = 88172645463325252ull;
    std::uint64_t m_nCount;
};

/// Solves nSize equations, one a row, right side last; false without one solution.
bool Solve(std::array<std::array<double, 5>, 4>& rRows, std::size_t nSize, std::array<double, 4>& rResult)
{
    for (std::size_t i = 0; i < nSize; ++i) {
        std::size_t nBest = i;
        for (std::size_t j = i + 1; j < nSize; ++j)
            nBest = std::fabs(rRows[j][i]) > std::fabs(rRows[nBest][i]) ? j : nBest;
        std::swap(rRows[i], rRows[nBest]);
        if (!(std::fabs(rRows[i][i]) > 1e-9))
            return false;
        for (std::size_t j = i + 1; j < nSize; ++j) {
            const double fFactor = rRows[j][i] / rRows[i][i];
            for (std::size_t k = i; k <= nSize; ++k)
                rRows[j][k] -= fFactor * rRows[i][k];
        }
    }
    for (std::size_t i = nSize; i-- > 0;) {
        double fSum = rRows[i][nSize];
        for (std::size_t k = i + 1; k < nSize; ++k)
            fSum -= rRows[i][k] * rResult[k];
        rResult[i] = fSum / rRows[i][i];
    }
    return true;
}

/// Coordinates around fMiddle in units of fUnit: x2 + fQuotient y2 + b x + c y + d = 0 through three points
/// for a circle (quotient 1) or four.
bool RimThrough(const std::array<SRimPoint, 4>& rPoints, bool bEllipse, const SRim& rUnit, SRim& rRim)
{
    std::array<std::array<double, 5>, 4> fRows = {};
    const std::size_t nSize = bEllipse ? 4 : 3;
    for (std::size_t i = 0; i < nSize; ++i) {
        const double fX = (rPoints[i].fX - rUnit.fCenterX) / rUnit.fRadiusX;
        const double fY = (rPoints[i].fY - rUnit.fCenterY) / rUnit.fRadiusX;
        fRows[i] = {fX, fY, 1.0, 0.0, 0.0};
        fRows[i][nSize] = bEllipse ? -fX * fX : -fX * fX - fY * fY;
        if (bEllipse)
            fRows[i][3] = fY * fY;
    }
    std::array<double, 4> fResult = {};
    if (!Solve(fRows, nSize, fResult))
        return false;
    const double fQuotient = bEllipse ? fResult[3] : 1.0;
    if (!(fQuotient > 1.0 / (MOST_RATIO * MOST_RATIO) && fQuotient < MOST_RATIO * MOST_RATIO))
        return false;
    const double fX = -0.5 * fResult[0];
    const double fY = -0.5 * fResult[1] / fQuotient;
    const double fSquare = fX * fX + fQuotient * fY * fY - fResult[2];
    if (!(fSquare > 0.0) || !std::isfinite(fSquare))
        return false;
    rRim.fCenterX = rUnit.fCenterX + fX * rUnit.fRadiusX;
    rRim.fCenterY = rUnit.fCenterY + fY * rUnit.fRadiusX;
    rRim.fRadiusX = std::sqrt(fSquare) * rUnit.fRadiusX;
    rRim.fRadiusY = std::sqrt(fSquare / fQuotient) * rUnit.fRadiusX;
    return true;
}

/// How well points agree: 1 for each on the rim, less for those beside it. Distances are those from a circle,
/// stretched; of an ellipse not quite the shortest ones.
double Agreement(std::span<const SRimPoint> vPoints, std::size_t nStep, const SRim& rRim)
{
    const double fPartX = 1.0 / rRim.fRadiusX;
    const double fPartY = 1.0 / rRim.fRadiusY;
    const double fScale = rRim.Radius() / NEAR;
    const double fInner = std::max(0.0, 1.0 - 1.0 / fScale);
    const double fOuter = 1.0 + 1.0 / fScale;
    double fSum = 0.0;
    for (std::size_t i = 0; i < vPoints.size(); i += nStep) {
        const double fX = (vPoints[i].fX - rRim.fCenterX) * fPartX;
        const double fY = (vPoints[i].fY - rRim.fCenterY) * fPartY;
        const double fSquare = fX * fX + fY * fY;
        if (fSquare <= fInner * fInner || fSquare >= fOuter * fOuter)
            continue;
        const double fOff = (std::sqrt(fSquare) - 1.0) * fScale;
        fSum += 1.0 - fOff * fOff;
    }
    return fSum;
}

} // namespace

SRimFit GuessRim(std::span<const SRimPoint> vPoints, bool bEllipse, double fLeastRadius, double fMostRadius)
{
    SRimFit sBest;
    if (vPoints.size() < 12)
        return sBest;
    SRim sUnit;
    for (const SRimPoint& rPoint : vPoints) {
        sUnit.fCenterX += rPoint.fX / static_cast<double>(vPoints.size());
        sUnit.fCenterY += rPoint.fY / static_cast<double>(vPoints.size());
    }
    sUnit.fRadiusX = fMostRadius;
    const std::size_t nStep = vPoints.size() / COMPARED_POINTS + 1;
    CPicks oPicks(vPoints.size());
    double fBest = 0.0;
    std::array<SRimPoint, 4> sPicked;
    const int nPicks = bEllipse ? ELLIPSE_PICKS : CIRCLE_PICKS;
    for (int nPick = 0; nPick < nPicks; ++nPick) {
        for (SRimPoint& rPoint : sPicked)
            rPoint = vPoints[oPicks.Next()];
        SRim sRim;
        if (!RimThrough(sPicked, bEllipse, sUnit, sRim))
            continue;
        const double fRadius = sRim.Radius();
        if (!(fRadius >= fLeastRadius && fRadius <= fMostRadius))
            continue;
        const double fAgreement = Agreement(vPoints, nStep, sRim);
        if (fAgreement > fBest) {
            fBest = fAgreement;
            sBest.sRim = sRim;
        }
    }
    return fBest > 0.0 ? FitRim(vPoints, sBest.sRim, bEllipse, 2.0 * NEAR) : sBest;
}
