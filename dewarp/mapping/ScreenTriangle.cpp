#include "dewarp/mapping/ScreenTriangle.h"

#include <algorithm>
#include <cmath>

namespace
{

// What lies farther out than so many windows is cut off: the arithmetic of the edges stays exact enough.
const double GUARD = 64.0;

/// Distance inside one of the six planes.
double Inside(const SClipVertex& rVertex, int nPlane)
{
    switch (nPlane) {
    case 0:
        return rVertex.z + rVertex.w;
    case 1:
        return rVertex.w - rVertex.z;
    case 2:
        return GUARD * rVertex.w + rVertex.x;
    case 3:
        return GUARD * rVertex.w - rVertex.x;
    case 4:
        return GUARD * rVertex.w + rVertex.y;
    default:
        return GUARD * rVertex.w - rVertex.y;
    }
}

SClipVertex Between(const SClipVertex& rA, const SClipVertex& rB, double t)
{
    const auto Mix = [t](double a, double b) { return a + (b - a) * t; };
    return {Mix(rA.x, rB.x), Mix(rA.y, rB.y), Mix(rA.z, rB.z),
            Mix(rA.w, rB.w), Mix(rA.u, rB.u), Mix(rA.v, rB.v)};
}

SPlane PlaneOf(const double (&af)[3], const double (&afDX)[2], const double (&afDY)[2], double fInverseArea)
{
    const double a = af[1] - af[0];
    const double b = af[2] - af[0];
    return {af[0], (a * afDY[1] - b * afDY[0]) * fInverseArea, (b * afDX[0] - a * afDX[1]) * fInverseArea};
}

} // namespace

int ClipPolygon(SClipVertex (&aCorners)[MOST_CLIPPED], int nCorners)
{
    SClipVertex aCut[MOST_CLIPPED];
    for (int nPlane = 0; nPlane < 6; ++nPlane) {
        int n = 0;
        for (int i = 0; i < nCorners; ++i) {
            const SClipVertex& rThis = aCorners[i];
            const SClipVertex& rNext = aCorners[(i + 1) % nCorners];
            const double fThis = Inside(rThis, nPlane);
            const double fNext = Inside(rNext, nPlane);
            if (fThis >= 0.0 && n < MOST_CLIPPED)
                aCut[n++] = rThis;
            if ((fThis >= 0.0) != (fNext >= 0.0) && n < MOST_CLIPPED)
                aCut[n++] = Between(rThis, rNext, fThis / (fThis - fNext));
        }
        nCorners = n;
        std::copy(aCut, aCut + n, aCorners);
        if (n < 3)
            return 0;
    }
    return nCorners;
}

bool ClipLine(SClipVertex (&aEnds)[2])
{
    for (int nPlane = 0; nPlane < 6; ++nPlane) {
        const double fA = Inside(aEnds[0], nPlane);
        const double fB = Inside(aEnds[1], nPlane);
        if (!(fA >= 0.0) && !(fB >= 0.0))
            return false;
        if (!(fA >= 0.0))
            aEnds[0] = Between(aEnds[0], aEnds[1], fA / (fA - fB));
        else if (!(fB >= 0.0))
            aEnds[1] = Between(aEnds[0], aEnds[1], fA / (fA - fB));
    }
    return aEnds[0].w > 0.0 && aEnds[1].w > 0.0;
}

bool SScreenTriangle::SetUp(const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC,
                            bool bDepth)
{
    const double afDX[2] = {rB.x - rA.x, rC.x - rA.x};
    const double afDY[2] = {rB.y - rA.y, rC.y - rA.y};
    const double fArea = afDX[0] * afDY[1] - afDX[1] * afDY[0];
    if (!(std::fabs(fArea) > 1e-9))
        return false;
    fTurn = fArea;
    const double fInverseArea = 1.0 / fArea;
    const auto Plane = [&](double a, double b, double c) {
        const double af[3] = {a, b, c};
        return PlaneOf(af, afDX, afDY, fInverseArea);
    };
    afX[0] = rA.x;
    afX[1] = rB.x;
    afX[2] = rC.x;
    afY[0] = rA.y;
    afY[1] = rB.y;
    afY[2] = rC.y;
    sU = Plane(rA.u, rB.u, rC.u);
    sV = Plane(rA.v, rB.v, rC.v);
    bFlat = rA.fInverseW == 1.0 && rB.fInverseW == 1.0 && rC.fInverseW == 1.0;
    if (!bFlat)
        sW = Plane(rA.fInverseW, rB.fInverseW, rC.fInverseW);
    if (bDepth)
        sZ = Plane(rA.z, rB.z, rC.z);
    fLeft = std::min({rA.x, rB.x, rC.x});
    fRight = std::max({rA.x, rB.x, rC.x});
    fTop = std::min({rA.y, rB.y, rC.y});
    fBottom = std::max({rA.y, rB.y, rC.y});
    return true;
}
