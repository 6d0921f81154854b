// Which cells a grid describes, and which need a position for each pixel.

#include "dewarp/cpu/ViewGrid.h"

#include <algorithm>
#include <utility>

/// Bends at one row of points; unknown where the grid ends.
void CViewGrid::FindRowBends(const SPartGrid& rGrid, int nRow, const SBendRow& rTo) const
{
    const SGridPoint* const p = rGrid.vPoints.data() + rGrid.PointIndex(0, nRow);
    const SGridPoint* const apRows[3] = {nRow == 0 ? nullptr : p - rGrid.nPointCols, p,
                                         nRow == rGrid.nPointRows - 1 ? nullptr : p + rGrid.nPointCols};
    BestGridLoops().pFindBends(apRows, rGrid.nPointCols, m_sInside, m_sStraight, rTo);
}

/// The kind of a cell that is not plain.
ECellKind CViewGrid::KindOf(const SPartGrid& rGrid, int nCol, int nRow, const SBendRow* pRows,
                            short* const (&apAcross)[2])
{
    const int k = rGrid.PointsPerCell();
    int nCovered = 0;
    bool bStraight = true;
    bool bInside = true;
    for (int j = 0; j <= k; ++j) {
        for (int i = 0; i <= k; ++i) {
            const int n = nCol * k + i;
            nCovered += rGrid.vPoints[rGrid.PointIndex(n, nRow * k + j)].x != NOWHERE ? 1 : 0;
            bInside = bInside && pRows[j].pInside[n] != 0;
            bStraight =
                bStraight && (i == k || pRows[j].pStraight[n] != 0) && (j == k || apAcross[j][n] != 0);
        }
    }
    if (nCovered == 0)
        return CELL_EMPTY;
    if (nCovered < (k + 1) * (k + 1) || !bStraight)
        return CELL_EXACT;
    return bInside ? CELL_SMOOTH : CELL_RIM;
}

/// Decides the kinds of a strip's cells; rows of bends go round in its scratch, so that they stay in the
/// cache.
int CViewGrid::Classify(SPartGrid& rGrid, int nStrip)
{
    const SStrip sStrip = Strip(rGrid, nStrip);
    const int k = std::min(rGrid.PointsPerCell(), 2); // never more; the analyser cannot know
    const std::size_t nPoints = static_cast<std::size_t>(rGrid.nPointCols);
    short* p = m_vScratch.data() + static_cast<std::size_t>(nStrip) * SCRATCH_ROWS * nPoints;
    const auto Row = [&] { return std::exchange(p, p + nPoints); };
    SBendRow as[3];
    for (SBendRow& rRow : as)
        rRow = {Row(), Row(), Row(), Row()};
    short* const apAcross[2] = {Row(), Row()};
    short* const apPlain[2] = {Row(), Row()};
    int nBent = 0;
    FindRowBends(rGrid, sStrip.nFirst * k, as[0]);
    for (int r = sStrip.nFirst; r < sStrip.nEnd; ++r) {
        for (int j = 0; j < k; ++j) {
            FindRowBends(rGrid, r * k + j + 1, as[j + 1]);
            BestGridLoops().pFindPlain(as[j], as[j + 1], rGrid.nPointCols, m_sStraight, apAcross[j],
                                       apPlain[j]);
        }
        const auto IsPlain = [&](int c) {
            return k == 1 ? apPlain[0][c] != 0
                          : (apPlain[0][2 * c] & apPlain[0][2 * c + 1] & apPlain[1][2 * c] &
                             apPlain[1][2 * c + 1]) != 0;
        };
        unsigned char* const pKinds = rGrid.vKinds.data() + rGrid.CellIndex(0, r);
        int nExact = 0;
        for (int c = 0; c < rGrid.nCols; ++c) {
            if (pKinds[c] == CELL_SMOOTH && !IsPlain(c)) {
                pKinds[c] = KindOf(rGrid, c, r, as, apAcross);
                nBent += pKinds[c] == CELL_EXACT ? 1 : 0;
            }
            nExact += pKinds[c] == CELL_EXACT ? 1 : 0;
        }
        rGrid.vFirstExact[static_cast<std::size_t>(r)] = nExact;
        std::swap(as[0], as[k]);
    }
    return nBent;
}

/// From the number of exact cells in each row to where each row's begin, and room for them.
int CViewGrid::NumberExactCells(SPartGrid& rGrid)
{
    int nExact = 0;
    for (int& rFirst : rGrid.vFirstExact) {
        const int nOfRow = rFirst;
        rFirst = nExact;
        nExact += nOfRow;
    }
    rGrid.vExact.resize(static_cast<std::size_t>(nExact));
    m_vExactOf.resize(rGrid.vKinds.size());
    m_vExactColumns.resize(2 * static_cast<std::size_t>(rGrid.nRows));
    return nExact;
}

/// Which exact cell each cell of a strip is, and between which columns they lie.
void CViewGrid::FindExactCells(SPartGrid& rGrid, const SStrip& rStrip)
{
    for (int r = rStrip.nFirst; r < rStrip.nEnd; ++r) {
        const std::size_t nRow = static_cast<std::size_t>(r);
        int& rLeft = m_vExactColumns[2 * nRow] = rGrid.nCols;
        int& rRight = m_vExactColumns[2 * nRow + 1] = -1;
        int nExact = rGrid.vFirstExact[nRow];
        if (nExact == ExactBefore(rGrid, r + 1))
            continue;
        const unsigned char* const pKinds = rGrid.vKinds.data() + rGrid.CellIndex(0, r);
        for (int c = 0; c < rGrid.nCols; ++c) {
            const bool bExact = pKinds[c] == CELL_EXACT;
            m_vExactOf[rGrid.CellIndex(c, r)] = bExact ? nExact : -1;
            if (!bExact)
                continue;
            SExactCell& rCell = rGrid.vExact[static_cast<std::size_t>(nExact++)];
            rCell.nCovered = 0;
            rCell.bLines = false;
            rLeft = std::min(rLeft, c);
            rRight = c;
        }
    }
}

int CViewGrid::ExactBefore(const SPartGrid& rGrid, int nRow)
{
    return nRow == rGrid.nRows ? static_cast<int>(rGrid.vExact.size())
                               : rGrid.vFirstExact[static_cast<std::size_t>(nRow)];
}
