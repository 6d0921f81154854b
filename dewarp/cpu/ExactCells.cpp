// Cells whose pixels are drawn one by one: the triangles themselves, by the rules of GL.

#include "dewarp/cpu/ViewGrid.h"
#include "dewarp/mapping/ViewRules.h"

#include <algorithm>
#include <cmath>

namespace
{

// Corners are moved to the nearest of so many places in a pixel, as a GPU does: then edges are exact, and
// triangles that share one leave no gap and no overlap.
const double PLACES = 256.0;

/// One edge, inside where its value is not negative.
struct SEdge
{
    std::int64_t nStepX = 0; ///< a pixel to the right
    std::int64_t nStepY = 0;
    std::int64_t nX = 0; ///< a point on it
    std::int64_t nY = 0;
    std::int64_t nBias = 0; ///< -1 for an edge that belongs to its neighbour

    std::int64_t At(int x, int y) const
    {
        const std::int64_t dx = std::int64_t{x} * 256 + 128 - nX;
        const std::int64_t dy = std::int64_t{y} * 256 + 128 - nY;
        return nStepX * dx + nStepY * dy + nBias;
    }
};

struct SEdges
{
    SEdge a[3];
    bool bArea = false;
};

SEdges EdgesOf(const SScreenTriangle& t)
{
    std::int64_t x[3];
    std::int64_t y[3];
    for (int i = 0; i < 3; ++i) {
        x[i] = static_cast<std::int64_t>(std::floor(t.afX[i] * PLACES + 0.5));
        y[i] = static_cast<std::int64_t>(std::floor(t.afY[i] * PLACES + 0.5));
    }
    const std::int64_t nArea = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
    SEdges sEdges;
    sEdges.bArea = nArea != 0;
    const std::int64_t nTurn = nArea > 0 ? 1 : -1;
    for (int k = 0; k < 3; ++k) {
        const int n = k == 2 ? 0 : k + 1;
        SEdge& e = sEdges.a[k];
        e.nStepX = -(y[n] - y[k]) * nTurn;
        e.nStepY = (x[n] - x[k]) * nTurn;
        e.nX = x[k];
        e.nY = y[k];
        e.nBias = IsOwnEdge(e.nStepX, e.nStepY) ? 0 : -1;
    }
    return sEdges;
}

int CellOf(double fPixel, int nOrigin, int nCells)
{
    // Cut off above zero, which is down.
    const double f = std::clamp((fPixel - nOrigin) * (1.0 / CELL_SIDE), -1.0, static_cast<double>(nCells));
    return static_cast<int>(f + 1.0) - 1;
}

} // namespace

void CViewGrid::FillExactCells(const SPartSource& rPart, SPartGrid& rGrid, const SStrip& rStrip) const
{
    // The rectangle round all of them; most triangles lie elsewhere.
    SStrip sRows = {rStrip.nEnd, rStrip.nFirst};
    int nFirst = rGrid.nCols;
    int nLast = -1;
    for (int r = rStrip.nFirst; r < rStrip.nEnd; ++r) {
        const int* const pColumns = &m_vExactColumns[2 * static_cast<std::size_t>(r)];
        if (pColumns[1] < 0)
            continue;
        sRows = {std::min(sRows.nFirst, r), r + 1};
        nFirst = std::min(nFirst, pColumns[0]);
        nLast = std::max(nLast, pColumns[1]);
    }
    if (nLast < 0)
        return;
    const double fTop = rGrid.nOriginY + sRows.nFirst * CELL_SIDE - 2.0;
    const double fBottom = rGrid.nOriginY + sRows.nEnd * CELL_SIDE + 2.0;
    const double fLeft = rGrid.nOriginX + nFirst * CELL_SIDE - 2.0;
    const double fRight = rGrid.nOriginX + (nLast + 1) * CELL_SIDE + 2.0;
    SScreenTriangle t;
    rPart.oProjection.Walk(
        *m_pMesh, fTop, fBottom,
        [&](const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC, bool) {
            if ((rA.x < fLeft && rB.x < fLeft && rC.x < fLeft) ||
                (rA.x > fRight && rB.x > fRight && rC.x > fRight))
                return;
            SExactRange s;
            if (FindRange(rA, rB, rC, rGrid, rStrip, s) && t.SetUp(rA, rB, rC, m_sCuts.bDepth))
                AddExactTriangle(t, s, rPart.Optics(), rGrid);
        });
}

/// A pixel of a cell, or the nearest one.
static int PixelOf(double fPixel, int nOrigin)
{
    return static_cast<int>(std::clamp(fPixel - nOrigin, 0.0, CELL_SIDE - 1.0));
}

/// Whether an edge leaves the whole cell outside.
static bool IsBeyond(const SEdge& e, int nX, int nY)
{
    const int nLast = CELL_SIDE - 1;
    return e.At(e.nStepX > 0 ? nX + nLast : nX, e.nStepY > 0 ? nY + nLast : nY) < 0;
}

/// The pixels of one cell that a triangle covers.
static void FillCell(const SScreenTriangle& t, const SEdges& rEdges, const SCuts& rCuts,
                     const CPixelOptics* pOptics, int nX, int nY, SExactCell& rCell)
{
    if (IsBeyond(rEdges.a[0], nX, nY) || IsBeyond(rEdges.a[1], nX, nY) || IsBeyond(rEdges.a[2], nX, nY))
        return;
    // Corners have moved by half a place at most.
    const int nLeft = PixelOf(t.fLeft - 1.0, nX);
    const int nRight = PixelOf(t.fRight + 1.0, nX);
    const int nBottom = PixelOf(t.fBottom + 1.0, nY);
    for (int y = PixelOf(t.fTop - 1.0, nY); y <= nBottom; ++y) {
        std::int64_t an[3];
        for (int k = 0; k < 3; ++k)
            an[k] = rEdges.a[k].At(nX + nLeft, nY + y);
        for (int x = nLeft; x <= nRight; ++x) {
            const bool bOutside = (an[0] | an[1] | an[2]) < 0;
            for (int k = 0; k < 3; ++k)
                an[k] += rEdges.a[k].nStepX * 256;
            if (bOutside)
                continue;
            const double dx = nX + x + 0.5 - t.afX[0];
            const double dy = nY + y + 0.5 - t.afY[0];
            double u = 0.0;
            double v = 0.0;
            ShowPoint(t, pOptics, dx, dy, u, v);
            if (!rCuts.Keep(t, dx, dy, v))
                continue;
            const int n = y * CELL_SIDE + x;
            rCell.nCovered |= std::uint64_t{1} << n;
            rCell.aPoints[n] = PositionAt(u, v);
        }
    }
}

/// The cells that a triangle may touch. False: none of them is exact.
bool CViewGrid::FindRange(const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC,
                          const SPartGrid& rGrid, const SStrip& rStrip, SExactRange& rRange) const
{
    const auto Least = [](double a, double b, double c) { return std::min(std::min(a, b), c) - 1.0; };
    const auto Most = [](double a, double b, double c) { return std::max(std::max(a, b), c) + 1.0; };
    rRange = {std::max(CellOf(Least(rA.y, rB.y, rC.y), rGrid.nOriginY, rGrid.nRows), rStrip.nFirst),
              std::min(CellOf(Most(rA.y, rB.y, rC.y), rGrid.nOriginY, rGrid.nRows), rStrip.nEnd - 1),
              std::max(CellOf(Least(rA.x, rB.x, rC.x), rGrid.nOriginX, rGrid.nCols), 0),
              std::min(CellOf(Most(rA.x, rB.x, rC.x), rGrid.nOriginX, rGrid.nCols), rGrid.nCols - 1)};
    for (int r = rRange.nTop; r <= rRange.nBottom; ++r) {
        const int* const pColumns = &m_vExactColumns[2 * static_cast<std::size_t>(r)];
        const int nLast = std::min(rRange.nRight, pColumns[1]);
        for (int c = std::max(rRange.nLeft, pColumns[0]); c <= nLast; ++c) {
            if (rGrid.vKinds[rGrid.CellIndex(c, r)] == CELL_EXACT)
                return true;
        }
    }
    return false;
}

void CViewGrid::AddExactTriangle(const SScreenTriangle& t, const SExactRange& rRange,
                                 const CPixelOptics* pOptics, SPartGrid& rGrid) const
{
    bool bGone = false;
    const bool bCut = IsCut(t, m_sCuts, bGone);
    const SEdges sEdges = EdgesOf(t);
    if (bGone || !sEdges.bArea)
        return;
    for (int r = rRange.nTop; r <= rRange.nBottom; ++r) {
        for (int c = rRange.nLeft; c <= rRange.nRight; ++c) {
            if (rGrid.vKinds[rGrid.CellIndex(c, r)] != CELL_EXACT)
                continue;
            const int nExact = m_vExactOf[rGrid.CellIndex(c, r)];
            FillCell(t, sEdges, bCut ? m_sCuts : SCuts(), pOptics, rGrid.nOriginX + c * CELL_SIDE,
                     rGrid.nOriginY + r * CELL_SIDE, rGrid.vExact[static_cast<std::size_t>(nExact)]);
        }
    }
}
