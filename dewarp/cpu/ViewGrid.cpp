#include "dewarp/cpu/ViewGrid.h"

#include "dewarp/cpu/WorkerPool.h"
#include "dewarp/mapping/ViewRules.h"

#include <algorithm>
#include <cstdlib>

namespace
{

/// A view that would draw more than one in so many cells pixel by pixel gets points twice as dense.
const int DENSE_FROM = 50;
/// Strips are not thinner than so many rows of cells.
const int THINNEST_STRIP = 8;

/// Takes one rectangle away from others.
void Subtract(const SGRect& rCut, std::vector<SGRect>& rRects)
{
    const std::size_t nRects = rRects.size();
    std::size_t nKept = 0;
    for (std::size_t n = 0; n < nRects; ++n) {
        const SGRect r = rRects[n];
        const SGRect s = CommonRect(r, rCut);
        if (s.width == 0 || s.height == 0) {
            rRects[nKept++] = r;
            continue;
        }
        const int nBelow = s.y + s.height;
        const int nBeside = s.x + s.width;
        const SGRect aPieces[] = {{r.x, r.y, r.width, s.y - r.y},
                                  {r.x, nBelow, r.width, r.y + r.height - nBelow},
                                  {r.x, s.y, s.x - r.x, s.height},
                                  {nBeside, s.y, r.x + r.width - nBeside, s.height}};
        for (const SGRect& rPiece : aPieces) {
            if (rPiece.width > 0 && rPiece.height > 0)
                rRects.push_back(rPiece);
        }
    }
    rRects.erase(rRects.begin() + static_cast<std::ptrdiff_t>(nKept),
                 rRects.begin() + static_cast<std::ptrdiff_t>(nRects));
}

} // namespace

void CViewGrid::Build(const SFrameDecision& rDecision, const CMeshIndex& rMesh, const SFrameShape& rFrame,
                      int nThreads)
{
    m_pMesh = &rMesh;
    m_nThreads = nThreads;
    m_nParts = 0;
    m_sCuts = CutsOf(rDecision.sBands, rFrame);
    // Half a pixel in full resolution is a quarter in half resolution, where pixels lie as much further in.
    const int nHalf = POSITION_ONE / 2;
    m_sInside = {nHalf, nHalf, (rFrame.nWidth / 2 * 2 - 1) * POSITION_ONE - nHalf,
                 (rFrame.nHeight / 2 * 2 - 1) * POSITION_ONE - nHalf};
    for (int i = 0; i < rDecision.nParts; ++i)
        m_anPartGrid[i] = LayOut(rDecision.aParts[i], rDecision);
    FindRemainder(rDecision);
    for (int i = 0; i < rDecision.nParts; ++i) {
        if (m_anPartGrid[i] >= 0)
            m_asSources[i].oProjection.Project(rMesh, rDecision.aParts[i], rFrame);
        m_asSources[i].oOptics =
            m_bExactGeometry ? CPixelOptics(rDecision.sMesh, rDecision.aParts[i], rFrame) : CPixelOptics();
    }
    for (int g = 0; g < m_nParts; ++g)
        FillGrid(g, rDecision, CELL_SIDE);
    m_pMesh = nullptr;
}

/// The grid of a part's rectangle, made for the first part that lies there; -1 when nothing of it is seen.
int CViewGrid::LayOut(const SViewPart& rPart, const SFrameDecision& rDecision)
{
    const SGRect sRect = PartRect(rPart, rDecision);
    if (sRect.width < 1 || sRect.height < 1)
        return -1;
    for (int g = 0; g < m_nParts; ++g) {
        const SGRect& r = m_vParts[static_cast<std::size_t>(g)].sRect;
        if (r.x == sRect.x && r.y == sRect.y && r.width == sRect.width && r.height == sRect.height)
            return g;
    }
    if (m_vParts.size() <= static_cast<std::size_t>(m_nParts))
        m_vParts.resize(static_cast<std::size_t>(m_nParts) + 1);
    SPartGrid& rGrid = m_vParts[static_cast<std::size_t>(m_nParts)];
    rGrid.sRect = sRect;
    rGrid.nOriginX = sRect.x & ~1;
    rGrid.nOriginY = sRect.y & ~1;
    rGrid.nCols = (sRect.x + sRect.width - rGrid.nOriginX + CELL_SIDE - 1) / CELL_SIDE;
    rGrid.nRows = (sRect.y + sRect.height - rGrid.nOriginY + CELL_SIDE - 1) / CELL_SIDE;
    return m_nParts++;
}

void CViewGrid::FindRemainder(const SFrameDecision& rDecision)
{
    m_vRemainder.assign(1, {0, 0, rDecision.sTarget.nWidth, rDecision.sTarget.nHeight});
    for (int g = 0; g < m_nParts; ++g)
        Subtract(m_vParts[static_cast<std::size_t>(g)].sRect, m_vRemainder);
}

void CViewGrid::SizePoints(SPartGrid& rGrid, int nStep)
{
    rGrid.nStep = nStep;
    rGrid.nPointCols = rGrid.nCols * rGrid.PointsPerCell() + 1;
    rGrid.nPointRows = rGrid.nRows * rGrid.PointsPerCell() + 1;
    rGrid.vPoints.resize(rGrid.PointIndex(0, rGrid.nPointRows));
    rGrid.vKinds.resize(rGrid.CellIndex(0, rGrid.nRows));
    rGrid.vFirstExact.resize(static_cast<std::size_t>(rGrid.nRows));
}

CViewGrid::SStrip CViewGrid::Strip(const SPartGrid& rGrid, int nStrip) const
{
    return {rGrid.nRows * nStrip / m_nStrips, rGrid.nRows * (nStrip + 1) / m_nStrips};
}

void CViewGrid::FillGrid(int nGrid, const SFrameDecision& rDecision, int nStep)
{
    SPartGrid& rGrid = m_vParts[static_cast<std::size_t>(nGrid)];
    CWorkerPool& rPool = CWorkerPool::Shared();
    m_nStrips = std::clamp(rGrid.nRows / THINNEST_STRIP, 1, m_nThreads);
    SizePoints(rGrid, nStep);
    const auto EachPart = [&](auto&& rUse) {
        for (int i = 0; i < rDecision.nParts; ++i) {
            if (m_anPartGrid[i] == nGrid)
                rUse(m_asSources[i]);
        }
    };
    rPool.Run(m_nThreads, m_nStrips, [&](int nStrip) {
        const SStrip sStrip = Strip(rGrid, nStrip);
        const int nLastRow = nStrip == m_nStrips - 1 ? rGrid.nPointRows : sStrip.nEnd * rGrid.PointsPerCell();
        std::fill(rGrid.vPoints.data() + rGrid.PointIndex(0, sStrip.nFirst * rGrid.PointsPerCell()),
                  rGrid.vPoints.data() + rGrid.PointIndex(0, nLastRow), SGridPoint{NOWHERE, NOWHERE});
        std::fill(rGrid.vKinds.data() + rGrid.CellIndex(0, sStrip.nFirst),
                  rGrid.vKinds.data() + rGrid.CellIndex(0, sStrip.nEnd), CELL_SMOOTH);
        EachPart([&](const SPartSource& rPart) {
            FillPoints(rPart, rGrid, sStrip);
            MarkBorders(rPart.oProjection, rGrid, sStrip);
        });
    });
    m_vScratch.resize(static_cast<std::size_t>(m_nStrips) * SCRATCH_ROWS *
                      static_cast<std::size_t>(rGrid.nPointCols));
    std::atomic<int> nBent{0};
    rPool.Run(m_nThreads, m_nStrips, [&](int nStrip) { nBent.fetch_add(Classify(rGrid, nStrip)); });
    if (nStep == CELL_SIDE && nBent > rGrid.nCols * rGrid.nRows / DENSE_FROM) {
        FillGrid(nGrid, rDecision, CELL_SIDE / 2);
        return;
    }
    if (NumberExactCells(rGrid) == 0)
        return;
    rPool.Run(m_nThreads, m_nStrips, [&](int nStrip) {
        const SStrip sStrip = Strip(rGrid, nStrip);
        FindExactCells(rGrid, sStrip);
        EachPart([&](const SPartSource& rPart) { FillExactCells(rPart, rGrid, sStrip); });
        for (int n = ExactBefore(rGrid, sStrip.nFirst); n < ExactBefore(rGrid, sStrip.nEnd); ++n)
            SetLines(rGrid.vExact[static_cast<std::size_t>(n)], m_sInside);
    });
}

std::size_t CViewGrid::CountBytes() const
{
    std::size_t nBytes = 0;
    for (const SPartGrid& rGrid : m_vParts)
        nBytes += rGrid.vPoints.capacity() * sizeof(SGridPoint) + rGrid.vKinds.capacity() +
                  rGrid.vExact.capacity() * sizeof(SExactCell) + rGrid.vFirstExact.capacity() * sizeof(int);
    return nBytes + m_vScratch.capacity() * sizeof(short) + m_vExactOf.capacity() * sizeof(int);
}
