#include "dewarp/mapping/TrianglePlaces.h"

#include "dewarp/mapping/FramePosition.h"

#include <algorithm>
#include <cmath>

namespace
{

const double LATTICE = 4096.0;
/// Frame pixels within which a position lies on a line.
const double ON_LINE = 1e-7;

/// A corner of a triangle, and what it shows.
struct SCorner
{
    double x;
    double y;
    double fInverseW;
    SPointD sPosition;
};

SCorner CornerOf(const SScreenTriangle& t, int k)
{
    SCorner c = {t.afX[k], t.afY[k], 1.0, {}};
    const double dx = c.x - t.afX[0];
    const double dy = c.y - t.afY[0];
    c.fInverseW = t.bFlat ? 1.0 : t.sW.At(dx, dy);
    t.Show(dx, dy, c.sPosition.x, c.sPosition.y);
    return c;
}

/// Where an edge shows a position; false when it does not.
bool PlaceOnEdge(const SCorner& a, const SCorner& b, const SPointD& rPosition, SPointD& rPlace)
{
    const double u = b.sPosition.x - a.sPosition.x;
    const double v = b.sPosition.y - a.sPosition.y;
    const double fSquare = u * u + v * v;
    const double fU = rPosition.x - a.sPosition.x;
    const double fV = rPosition.y - a.sPosition.y;
    double f = 0.5;
    if (fSquare > ON_LINE * ON_LINE)
        f = std::clamp((fU * u + fV * v) / fSquare, 0.0, 1.0);
    if (!(std::hypot(fU - f * u, fV - f * v) <= ON_LINE * POSITION_ONE))
        return false;
    // The share of the frame's line is that of the target's times the corners' depths.
    const double fShare = f * a.fInverseW / (b.fInverseW * (1.0 - f) + a.fInverseW * f);
    rPlace = {a.x + (b.x - a.x) * fShare, a.y + (b.y - a.y) * fShare};
    return std::isfinite(fShare);
}

int PlacesOnEdges(const SScreenTriangle& t, const SPointD& rPosition, SPointD (&aPlaces)[MOST_PLACES])
{
    const SCorner aCorners[3] = {CornerOf(t, 0), CornerOf(t, 1), CornerOf(t, 2)};
    SPointD sSum;
    int n = 0;
    for (int k = 0; k < 3; ++k) {
        SPointD sPlace;
        if (!PlaceOnEdge(aCorners[k], aCorners[(k + 1) % 3], rPosition, sPlace))
            continue;
        sSum = {sSum.x + sPlace.x, sSum.y + sPlace.y};
        aPlaces[++n] = sPlace;
    }
    if (n == 0)
        return 0;
    // First of all the middle, which is inside.
    aPlaces[0] = {sSum.x / n, sSum.y / n};
    return n + 1;
}

} // namespace

SScreenVertex OnLattice(const SScreenVertex& rVertex)
{
    SScreenVertex s = rVertex;
    s.x = std::floor(s.x * LATTICE + 0.5) / LATTICE;
    s.y = std::floor(s.y * LATTICE + 0.5) / LATTICE;
    return s;
}

bool Covers(const SScreenTriangle& t, double x, double y)
{
    for (int k = 0; k < 3; ++k) {
        int a = k;
        int b = k == 2 ? 0 : k + 1;
        double fTurn = t.fTurn > 0.0 ? 1.0 : -1.0;
        // Both triangles at an edge count from the same end: one's value is the other's, negated.
        if (t.afX[b] < t.afX[a] || (t.afX[b] == t.afX[a] && t.afY[b] < t.afY[a])) {
            std::swap(a, b);
            fTurn = -fTurn;
        }
        const double fStepX = -(t.afY[b] - t.afY[a]) * fTurn;
        const double fStepY = (t.afX[b] - t.afX[a]) * fTurn;
        const double f = fStepX * (x - t.afX[a]) + fStepY * (y - t.afY[a]);
        if (!(f > 0.0) && !(f == 0.0 && IsOwnEdge(fStepX, fStepY)))
            return false;
    }
    return true;
}

int PlacesOf(const SScreenTriangle& t, const SPointD& rPosition, SPointD (&aPlaces)[MOST_PLACES])
{
    const double u = rPosition.x;
    const double v = rPosition.y;
    const SPlane sW = t.bFlat ? SPlane{1.0, 0.0, 0.0} : t.sW;
    const double a = t.sU.fX - u * sW.fX;
    const double b = t.sU.fY - u * sW.fY;
    const double c = t.sV.fX - v * sW.fX;
    const double d = t.sV.fY - v * sW.fY;
    const double fU = u * sW.f - t.sU.f;
    const double fV = v * sW.f - t.sV.f;
    const double fDeterminant = a * d - b * c;
    // What is no more than the rounding of its parts is nothing.
    const auto Size = [&](double fSlope, double fPosition, double fSlopeW) {
        return std::fabs(fSlope) + std::fabs(fPosition * fSlopeW);
    };
    const double fSize =
        Size(t.sU.fX, u, sW.fX) * Size(t.sV.fY, v, sW.fY) + Size(t.sU.fY, u, sW.fY) * Size(t.sV.fX, v, sW.fX);
    if (!(std::fabs(fDeterminant) > 1e-12 * fSize))
        return PlacesOnEdges(t, rPosition, aPlaces);
    aPlaces[0] = {t.afX[0] + (fU * d - b * fV) / fDeterminant, t.afY[0] + (a * fV - fU * c) / fDeterminant};
    return std::isfinite(aPlaces[0].x) && std::isfinite(aPlaces[0].y) ? 1 : 0;
}
