/// \file
/// The inner loops of a grid's making: over points and over rows of them.
#pragma once

#include "dewarp/cpu/Grid.h"
#include "dewarp/cpu/ScreenTriangle.h"

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

struct SGridLoops
{
    /// The points that a triangle covers.
    void (*pFillTriangle)(const SScreenTriangle& rTriangle, const SPointWindow& rWindow);
    /// One row's bends, from it and its neighbours (null where the grid ends). nMostError: how far a straight
    /// line may be off, positions; 0: nothing is straight.
    void (*pFindBends)(const SGridPoint* const (&apRows)[3], int nPoints, const SInside& rInside,
                       int nMostError, const SBendRow& rTo);
    /// Between two rows of points: which columns are straight, and which quads are that on all sides and
    /// inside.
    void (*pFindPlain)(const SBendRow& rUpper, const SBendRow& rLower, int nPoints, int nMostError,
                       short* pStraight, short* pPlain);
};

/// The fastest that this processor runs; all give the same grids.
const SGridLoops& BestGridLoops();
const SGridLoops& PlainGridLoops();
/// Null where there are none.
const SGridLoops* AVX2GridLoops();

/// The same as pFillTriangle where something is cut away.
void FillCutTriangle(const SScreenTriangle& rTriangle, const SCuts& rCuts, const SPointWindow& rWindow);
