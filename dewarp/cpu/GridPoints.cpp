// Triangles into points of the grid, and the cells that their borders and cuts cross.

#include "dewarp/cpu/ViewGrid.h"

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

/// Where a triangle's edges cross a row.
class CEdges
{
public:
    explicit CEdges(const SScreenTriangle& t)
    {
        for (int k = 0; k < 3; ++k) {
            const int n = k == 2 ? 0 : k + 1;
            SEdge& e = m_aEdges[k];
            const double dx = t.afX[n] - t.afX[k];
            const double dy = t.afY[n] - t.afY[k];
            e.x = t.afX[k];
            e.y = t.afY[k];
            e.nSide = dy == 0.0 ? 0 : (dy > 0.0) == (t.fTurn > 0.0) ? 1 : -1;
            e.fSlope = dy == 0.0 ? (t.fTurn > 0.0 ? dx : -dx) : dx / dy;
        }
    }
    /// Narrows the columns inside at a row; nothing is inside when fHigh < fLow.
    void Span(double y, double& fLow, double& fHigh) const
    {
        for (const SEdge& e : m_aEdges) {
            const double x = e.x + e.fSlope * (y - e.y);
            if (e.nSide > 0)
                fHigh = std::min(fHigh, x);
            else if (e.nSide < 0)
                fLow = std::max(fLow, x);
            else if (e.fSlope * (y - e.y) < 0.0)
                fHigh = fLow - 1.0;
        }
    }

private:
    struct SEdge
    {
        double x;
        double y;
        double fSlope; ///< columns a row; for a level edge, which side of it is inside
        int nSide;     ///< 1: inside is left of it; -1: right; 0: it is level
    };
    SEdge m_aEdges[3];
};

/// Points of one row that a triangle covers.
void FillRow(const SScreenTriangle& t, double dx, double dy, int nStep, int nPoints, SGridPoint* pPoints)
{
    const double fU = t.sU.f + t.sU.fY * dy;
    const double fV = t.sV.f + t.sV.fY * dy;
    const double fW = t.sW.f + t.sW.fY * dy;
    for (int n = 0; n < nPoints; ++n) {
        const double x = dx + static_cast<double>(n * nStep);
        const double f = t.bFlat ? 1.0 : 1.0 / (fW + t.sW.fX * x);
        pPoints[n] = PositionAt((fU + t.sU.fX * x) * f, (fV + t.sV.fX * x) * f);
    }
}

/// The same where something is cut away.
void FillCutRow(const SScreenTriangle& t, const SCuts& rCuts, double dx, double dy, int nStep, int nPoints,
                SGridPoint* pPoints)
{
    for (int n = 0; n < nPoints; ++n) {
        const double x = dx + static_cast<double>(n * nStep);
        double u = 0.0;
        double v = 0.0;
        t.Show(x, dy, u, v);
        if ((!rCuts.bDepth || t.sZ.At(x, dy) >= rCuts.fDepth) &&
            (!rCuts.bRows || (v >= rCuts.fLowestRow && v <= rCuts.fHighestRow)))
            pPoints[n] = PositionAt(u, v);
    }
}

} // namespace

void CViewGrid::FillPoints(const CProjection& rProjection, SPartGrid& rGrid, const SStrip& rStrip) const
{
    const double fFirst = rGrid.nOriginY + rStrip.nFirst * CELL_SIDE - 2.0;
    const double fLast = rGrid.nOriginY + rStrip.nEnd * CELL_SIDE + 2.0;
    SScreenTriangle t;
    rProjection.Walk(
        *m_pMesh, fFirst, fLast,
        [&](const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC, bool bClipped) {
            if (t.SetUp(rA, rB, rC, m_sCuts.bDepth))
                AddTriangle(t, bClipped, rGrid, rStrip);
        });
}

void CViewGrid::AddTriangle(const SScreenTriangle& t, bool bClipped, SPartGrid& rGrid,
                            const SStrip& rStrip) const
{
    bool bGone = false;
    const bool bCut = IsCut(t, m_sCuts, bGone);
    if (bGone)
        return;
    if (bCut || bClipped)
        MarkBox(t, rGrid, rStrip.nFirst, rStrip.nEnd);
    const double fOriginX = rGrid.nOriginX + 0.5;
    const double fOriginY = rGrid.nOriginY + 0.5;
    const double fPerPixel = 1.0 / rGrid.nStep;
    // A hair more on every side: points on an edge belong to both triangles, none falls between.
    const double fHair = 1e-7;
    const int nFirstRow = rStrip.nFirst * rGrid.PointsPerCell();
    const int nLastRow =
        rStrip.nEnd == rGrid.nRows ? rGrid.nPointRows - 1 : rStrip.nEnd * rGrid.PointsPerCell() - 1;
    const int nTop = static_cast<int>(
        std::ceil(std::max((t.fTop - fOriginY) * fPerPixel - fHair, static_cast<double>(nFirstRow))));
    const int nBottom = static_cast<int>(
        std::floor(std::min((t.fBottom - fOriginY) * fPerPixel + fHair, static_cast<double>(nLastRow))));
    if (nTop > nBottom)
        return;
    const CEdges oEdges(t);
    for (int r = nTop; r <= nBottom; ++r) {
        const double y = fOriginY + r * rGrid.nStep;
        double fLow = t.fLeft;
        double fHigh = t.fRight;
        oEdges.Span(std::clamp(y, t.fTop, t.fBottom), fLow, fHigh);
        const int nLeft = static_cast<int>(std::ceil(std::max((fLow - fOriginX) * fPerPixel - fHair, 0.0)));
        const int nRight = static_cast<int>(std::floor(
            std::min((fHigh - fOriginX) * fPerPixel + fHair, static_cast<double>(rGrid.nPointCols - 1))));
        if (nRight < nLeft)
            continue;
        SGridPoint* const pRow = rGrid.vPoints.data() + rGrid.PointIndex(nLeft, r);
        const double dx = fOriginX + nLeft * rGrid.nStep - t.afX[0];
        if (bCut)
            FillCutRow(t, m_sCuts, dx, y - t.afY[0], rGrid.nStep, nRight - nLeft + 1, pRow);
        else
            FillRow(t, dx, y - t.afY[0], rGrid.nStep, nRight - nLeft + 1, pRow);
    }
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
