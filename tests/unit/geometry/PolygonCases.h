/// \file
/// Polygons to test with, and what is known about them without triangles.
#pragma once

#include "dewarp/geometry/PointTree.h"
#include "dewarp/records/SGRect.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

using TPoints = std::vector<SGPoint>;

/// Twice the signed area inside a closed outline, by the trapezoids under its edges.
inline TArea OutlineArea(const TPoints& vPoints)
{
    TArea nSum = 0;
    for (std::size_t i = 0; i < vPoints.size(); ++i) {
        const SGPoint& sFrom = vPoints[i];
        const SGPoint& sTo = vPoints[(i + 1) % vPoints.size()];
        nSum += (static_cast<TArea>(sFrom.x) - sTo.x) * (static_cast<TArea>(sFrom.y) + sTo.y);
    }
    return nSum;
}

/// How often an outline winds around a place that is on none of its edges: its crossings of the ray towards
/// growing x, counted with their sense.
inline int WindingNumber(const TPoints& vPoints, const SGPoint& sPlace)
{
    int nWinding = 0;
    for (std::size_t i = 0; i < vPoints.size(); ++i) {
        const SGPoint& sFrom = vPoints[i];
        const SGPoint& sTo = vPoints[(i + 1) % vPoints.size()];
        if ((sFrom.y <= sPlace.y) == (sTo.y <= sPlace.y))
            continue;
        // Where the edge passes the ray's row, times the edge's height.
        const long long nHeight = static_cast<long long>(sTo.y) - sFrom.y;
        const long long nAlong = (static_cast<long long>(sTo.x) - sFrom.x) * (sPlace.y - sFrom.y);
        const long long nAhead = (static_cast<long long>(sPlace.x) - sFrom.x) * nHeight - nAlong;
        if ((nHeight > 0 ? nAhead : -nAhead) < 0)
            nWinding += nHeight > 0 ? 1 : -1;
    }
    return nWinding;
}

/// True when the place lies on the segment.
inline bool IsOnSegment(const SGPoint& sFrom, const SGPoint& sTo, const SGPoint& sPlace)
{
    const long long nDX = static_cast<long long>(sTo.x) - sFrom.x;
    const long long nDY = static_cast<long long>(sTo.y) - sFrom.y;
    const bool bOnLine = nDX * (sPlace.y - sFrom.y) == nDY * (sPlace.x - sFrom.x);
    return bOnLine && sPlace.x >= std::min(sFrom.x, sTo.x) && sPlace.x <= std::max(sFrom.x, sTo.x) &&
           sPlace.y >= std::min(sFrom.y, sTo.y) && sPlace.y <= std::max(sFrom.y, sTo.y);
}

inline bool IsOnOutline(const TPoints& vPoints, const SGPoint& sPlace)
{
    for (std::size_t i = 0; i < vPoints.size(); ++i)
        if (IsOnSegment(vPoints[i], vPoints[(i + 1) % vPoints.size()], sPlace))
            return true;
    return false;
}

using TRandom = std::mt19937;

inline int Between(TRandom& oRandom, int nLeast, int nMost)
{
    return nLeast + static_cast<int>(oRandom() % static_cast<unsigned int>(nMost - nLeast + 1));
}

/// Points anywhere in a square: crossing itself nearly always; in a small square also touching itself, with
/// points on edges and points that come twice.
inline TPoints Scribble(TRandom& oRandom, int nPoints, int nExtent)
{
    TPoints vPoints;
    for (int i = 0; i < nPoints; ++i)
        vPoints.push_back({Between(oRandom, 0, nExtent), Between(oRandom, 0, nExtent)});
    return vPoints;
}

/// Points in falling or rising order of their angle around the middle, at any distance from it: a simple,
/// star-shaped polygon. Directions are distinct as long as nPoints is well below nRadius.
inline TPoints StarShaped(TRandom& oRandom, int nPoints, int nRadius)
{
    TPoints vPoints;
    for (int i = 0; i < nPoints; ++i) {
        const double fAngle = 6.283185307179586 * i / nPoints;
        const double fRadius = Between(oRandom, nRadius / 4, nRadius);
        vPoints.push_back({static_cast<int>(std::lround(fRadius * std::cos(fAngle))),
                           static_cast<int>(std::lround(fRadius * std::sin(fAngle)))});
    }
    return vPoints;
}

/// Two chains from left to right that never meet: a simple, mostly concave polygon of an even number of
/// points.
inline TPoints Ribbon(TRandom& oRandom, int nPoints, int nHeight)
{
    const int nChain = nPoints / 2;
    TPoints vUpper;
    TPoints vLower;
    for (int i = 0; i < nChain; ++i) {
        vUpper.push_back({3 * i, Between(oRandom, 1, nHeight)});
        vLower.push_back({3 * i, Between(oRandom, -nHeight, -1)});
    }
    vUpper.insert(vUpper.end(), vLower.rbegin(), vLower.rend());
    return vUpper;
}

/// A corridor, 4 wide and 10 from turn to turn, that winds outwards at right angles.
inline TPoints Spiral(int nCorners)
{
    static const SGPoint DIRECTIONS[4] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    TPoints vLeft;
    TPoints vRight;
    SGPoint sMiddle;
    for (int i = 0; i < nCorners; ++i) {
        const SGPoint& sFrom = DIRECTIONS[(i + 3) % 4];
        const SGPoint& sTo = DIRECTIONS[i % 4];
        // Half the corridor's width to the left of both directions; the entrance has but one.
        const SGPoint sAside =
            i == 0 ? SGPoint{-2 * sTo.y, 2 * sTo.x} : SGPoint{-2 * (sFrom.y + sTo.y), 2 * (sFrom.x + sTo.x)};
        vLeft.push_back({sMiddle.x + sAside.x, sMiddle.y + sAside.y});
        vRight.push_back({sMiddle.x - sAside.x, sMiddle.y - sAside.y});
        const int nLength = 10 * (i / 2 + 1);
        sMiddle = {sMiddle.x + nLength * sTo.x, sMiddle.y + nLength * sTo.y};
    }
    vLeft.insert(vLeft.end(), vRight.rbegin(), vRight.rend());
    return vLeft;
}
