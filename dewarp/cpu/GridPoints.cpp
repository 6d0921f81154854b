// Triangles into points of the grid, and the cells that their borders and cuts cross.

#include "dewarp/cpu/GridLoops.h"
#include "dewarp/cpu/ViewGrid.h"
#include "dewarp/mapping/ViewRules.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Marks the cells of a strip that a line comes close to; ends in cells.
void MarkLine(double x0, double y0, double x1, double y1, SPartGrid& rGrid, int nFirstRow, int nEndRow)
{
    // A cell interpolates between its pixels and the first ones of the next cells.
    const double fMargin = 0.6 / CELL_SIDE;
    const double fTop = std::min(y0, y1) - fMargin;
    const double fBottom = std::max(y0, y1) + fMargin;
    const int nFirst = static_cast<int>(std::floor(std::max(fTop, static_cast<double>(nFirstRow))));
    const int nLast = static_cast<int>(std::floor(std::min(fBottom, nEndRow - 0.5)));
    for (int r = nFirst; r <= nLast; ++r) {
        double fA = x0;
        double fB = x1;
        if (std::fabs(y1 - y0) > 1e-9) {
            const double fSlope = (x1 - x0) / (y1 - y0);
            const double fLow = std::max(std::min(y0, y1), r - fMargin);
            const double fHigh = std::min(std::max(y0, y1), r + 1 + fMargin);
            fA = x0 + (fLow - y0) * fSlope;
            fB = x0 + (fHigh - y0) * fSlope;
        }
        const double fLeft = std::max(std::min(fA, fB) - fMargin, 0.0);
        const double fRight = std::min(std::max(fA, fB) + fMargin, rGrid.nCols - 0.5);
        if (fRight < 0.0 || fLeft >= rGrid.nCols)
            continue;
        for (int c = static_cast<int>(fLeft); c <= static_cast<int>(fRight); ++c)
            rGrid.vKinds[rGrid.CellIndex(c, r)] = CELL_EXACT;
    }
}

/// Marks all cells of a strip that a triangle may touch.
void MarkBox(const SScreenTriangle& t, SPartGrid& rGrid, int nFirstRow, int nEndRow)
{
    const auto Cell = [](double f, int nOrigin, int nCells) {
        const double fCell = std::clamp((f - 0.5 - nOrigin) / CELL_SIDE, -1.0, static_cast<double>(nCells));
        return static_cast<int>(std::floor(fCell));
    };
    const int nLeft = std::max(Cell(t.fLeft - 1.0, rGrid.nOriginX, rGrid.nCols), 0);
    const int nRight = std::min(Cell(t.fRight + 1.0, rGrid.nOriginX, rGrid.nCols), rGrid.nCols - 1);
    const int nTop = std::max(Cell(t.fTop - 1.0, rGrid.nOriginY, rGrid.nRows), nFirstRow);
    const int nBottom = std::min(Cell(t.fBottom + 1.0, rGrid.nOriginY, rGrid.nRows), nEndRow - 1);
    for (int r = nTop; r <= nBottom; ++r) {
        for (int c = nLeft; c <= nRight; ++c)
            rGrid.vKinds[rGrid.CellIndex(c, r)] = CELL_EXACT;
    }
}

} // namespace

void CViewGrid::FillPoints(const SPartSource& rPart, SPartGrid& rGrid, const SStrip& rStrip) const
{
    const double fFirst = rGrid.nOriginY + rStrip.nFirst * CELL_SIDE - 2.0;
    const double fLast = rGrid.nOriginY + rStrip.nEnd * CELL_SIDE + 2.0;
    SScreenTriangle t;
    rPart.oProjection.Walk(
        *m_pMesh, fFirst, fLast,
        [&](const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC, bool bClipped) {
            if (t.SetUp(rA, rB, rC, m_sCuts.bDepth))
                AddTriangle(t, bClipped, rPart.Optics(), rGrid, rStrip);
        });
}

void CViewGrid::AddTriangle(const SScreenTriangle& t, bool bClipped, const CPixelOptics* pOptics,
                            SPartGrid& rGrid, const SStrip& rStrip) const
{
    bool bGone = false;
    const bool bCut = IsCut(t, m_sCuts, bGone);
    if (bGone)
        return;
    if (bCut || bClipped)
        MarkBox(t, rGrid, rStrip.nFirst, rStrip.nEnd);
    SPointWindow s;
    s.pPoints = rGrid.vPoints.data();
    s.nCols = rGrid.nPointCols;
    s.nFirstRow = rStrip.nFirst * rGrid.PointsPerCell();
    s.nLastRow = rStrip.nEnd == rGrid.nRows ? rGrid.nPointRows - 1 : rStrip.nEnd * rGrid.PointsPerCell() - 1;
    s.nStep = rGrid.nStep;
    s.fOriginX = rGrid.nOriginX + 0.5;
    s.fOriginY = rGrid.nOriginY + 0.5;
    if (bCut || pOptics != nullptr)
        FillOddTriangle(t, bCut ? m_sCuts : SCuts(), pOptics, s);
    else
        BestGridLoops().pFillTriangle(t, s);
}

void CViewGrid::MarkBorders(const CProjection& rProjection, SPartGrid& rGrid, const SStrip& rStrip) const
{
    for (std::size_t n = 0; 2 * n < m_pMesh->vBorders.size(); ++n) {
        SScreenVertex aEnds[2];
        if (!rProjection.Border(*m_pMesh, n, aEnds))
            continue;
        double afX[2];
        double afY[2];
        for (int i = 0; i < 2; ++i) {
            afX[i] = (aEnds[i].x - 0.5 - rGrid.nOriginX) / CELL_SIDE;
            afY[i] = (aEnds[i].y - 0.5 - rGrid.nOriginY) / CELL_SIDE;
        }
        MarkLine(afX[0], afY[0], afX[1], afY[1], rGrid, rStrip.nFirst, rStrip.nEnd);
    }
}
