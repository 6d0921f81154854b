/// \file
/// The inner loops of a grid's making: over points and over rows of them.
#pragma once

#include "dewarp/cpu/Grid.h"
#include "dewarp/mapping/ScreenTriangle.h"

class CPixelOptics;

/// The points that triangles are drawn into. Owns: nothing.
struct SPointWindow
{
    SGridPoint* pPoints = nullptr; ///< the grid's first
    int nCols = 0;                 ///< points of a row
    int nFirstRow = 0;             ///< of points
    int nLastRow = 0;
    int nStep = CELL_SIDE;
    double fOriginX = 0.0; ///< the first point on the target
    double fOriginY = 0.0;
};

/// Bends of the grid at each point of a row, and what follows from them; flags are 0 or -1.
struct SBendRow
{
    short* pAlong = nullptr; ///< positions, UNKNOWN_BEND at most
    short* pAcross = nullptr;
    short* pInside = nullptr;   ///< samples need no edge
    short* pStraight = nullptr; ///< the grid is straight to the next point
};

/// A bend that cannot be told: one of its points shows nothing.
inline constexpr int UNKNOWN_BEND = 32767;

/// How far a straight line between two points may be off, positions.
struct SStraightRule
{
    int nMostError = 0;
    bool bKinks = true; ///< the grid is that of a mesh; otherwise it bends smoothly
};

struct SGridLoops
{
    /// The points that a triangle covers.
    void (*pFillTriangle)(const SScreenTriangle& rTriangle, const SPointWindow& rWindow);
    /// One row's bends, from it and its neighbours (null where the grid ends).
    void (*pFindBends)(const SGridPoint* const (&apRows)[3], int nPoints, const SInside& rInside,
                       const SStraightRule& rRule, const SBendRow& rTo);
    /// Between two rows of points: which columns are straight, and which quads are that on all sides and
    /// inside.
    void (*pFindPlain)(const SBendRow& rUpper, const SBendRow& rLower, int nPoints,
                       const SStraightRule& rRule, short* pStraight, short* pPlain);
};

/// The fastest that this processor runs, or those that go with the kernels that were asked for; all give the
/// same grids.
const SGridLoops& BestGridLoops();
const SGridLoops& PlainGridLoops();
/// Null where there are none.
const SGridLoops* AVX2GridLoops();

/// The same as pFillTriangle where something is cut away, or positions come from the view's definition (null:
/// from the triangle).
void FillOddTriangle(const SScreenTriangle& rTriangle, const SCuts& rCuts, const CPixelOptics* pOptics,
                     const SPointWindow& rWindow);

/// What a point of a triangle shows; offsets are from the triangle's first corner.
void ShowPoint(const SScreenTriangle& rTriangle, const CPixelOptics* pOptics, double dx, double dy, double& u,
               double& v);
