// Which cells a grid describes, and which need a position for each pixel.

#include "dewarp/cpu/ViewGrid.h"

#include <algorithm>
#include <cstdlib>

namespace
{

/// A bend that cannot be told: one of its points shows nothing.
const int UNKNOWN_BEND = 32767;

/// Bends of points along three rows (or thrice the same row, shifted).
void BendsOf(const SGridPoint* pA, const SGridPoint* pB, const SGridPoint* pC, int nPoints, short* pBends)
{
    for (int n = 0; n < nPoints; ++n) {
        const int x = std::abs(pA[n].x - 2 * pB[n].x + pC[n].x);
        const int y = std::abs(pA[n].y - 2 * pB[n].y + pC[n].y);
        pBends[n] = static_cast<short>(std::min(std::max(x, y), UNKNOWN_BEND));
    }
}

/// A kink between two points shows in the bends at both: the straight line between them is off by their
/// product over their sum at most.
bool IsStraight(int a, int b, int nMostError)
{
    return std::min(a, b) <= nMostError || (std::max(a, b) != UNKNOWN_BEND && a * b <= nMostError * (a + b));
}

} // namespace

void CViewGrid::FindBends(const SPartGrid& rGrid, const SStrip& rStrip)
{
    const int k = rGrid.PointsPerCell();
    const int nEnd = rStrip.nEnd == rGrid.nRows ? rGrid.nPointRows : rStrip.nEnd * k;
    for (int r = rStrip.nFirst * k; r < nEnd; ++r)
        FindRowBends(rGrid, r);
}

/// Where the grid ends bends are unknown.
void CViewGrid::FindRowBends(const SPartGrid& rGrid, int nRow)
{
    const int nPoints = rGrid.nPointCols;
    const SGridPoint* const p = rGrid.vPoints.data() + rGrid.PointIndex(0, nRow);
    short* const pAlong = m_vBends[0].data() + rGrid.PointIndex(0, nRow);
    short* const pAcross = m_vBends[1].data() + rGrid.PointIndex(0, nRow);
    pAlong[0] = pAlong[nPoints - 1] = UNKNOWN_BEND;
    BendsOf(p, p + 1, p + 2, nPoints - 2, pAlong + 1);
    short* const pInside = m_vInside.data() + rGrid.PointIndex(0, nRow);
    const SInside s = m_sInside;
    for (int n = 0; n < nPoints; ++n)
        pInside[n] = p[n].x >= s.nLeft && p[n].x < s.nRight && p[n].y >= s.nTop && p[n].y < s.nBottom
                         ? short{-1}
                         : short{0};
    if (nRow == 0 || nRow == rGrid.nPointRows - 1)
        std::fill(pAcross, pAcross + nPoints, static_cast<short>(UNKNOWN_BEND));
    else
        BendsOf(p - nPoints, p, p + nPoints, nPoints, pAcross);
}

/// The kind of a cell that no border crosses.
ECellKind CViewGrid::KindOf(const SPartGrid& rGrid, int nCol, int nRow) const
{
    const int k = rGrid.PointsPerCell();
    const std::size_t nWidth = static_cast<std::size_t>(rGrid.nPointCols);
    const std::size_t nFirst = rGrid.PointIndex(nCol * k, nRow * k);
    int nCovered = 0;
    bool bStraight = m_nMostError > 0;
    bool bInside = true;
    for (int j = 0; j <= k; ++j) {
        for (int i = 0; i <= k; ++i) {
            const std::size_t n = nFirst + static_cast<std::size_t>(j) * nWidth + static_cast<std::size_t>(i);
            const SGridPoint& p = rGrid.vPoints[n];
            nCovered += p.x != NOWHERE ? 1 : 0;
            bInside = bInside && m_sInside.Has(p);
            if (i < k)
                bStraight = bStraight && IsStraight(m_vBends[0][n], m_vBends[0][n + 1], m_nMostError);
            if (j < k)
                bStraight = bStraight && IsStraight(m_vBends[1][n], m_vBends[1][n + nWidth], m_nMostError);
        }
    }
    if (nCovered == 0)
        return CELL_EMPTY;
    if (nCovered < (k + 1) * (k + 1) || !bStraight)
        return CELL_EXACT;
    return bInside ? CELL_SMOOTH : CELL_RIM;
}

/// Marks the quads between two rows of points that are straight and inside beyond doubt.
static void MarkPlain(const short* const (&apRows)[3], std::ptrdiff_t nRow, int nQuads, short nMostError,
                      short* pPlain)
{
    const short* const pAlong = apRows[0];
    const short* const pAcross = apRows[1];
    const short* const pInside = apRows[2];
    for (int n = 0; n < nQuads; ++n) {
        const short a = std::min(pAlong[n], pAlong[n + 1]);
        const short b = std::min(pAlong[n + nRow], pAlong[n + nRow + 1]);
        const short c = std::min(pAcross[n], pAcross[n + nRow]);
        const short d = std::min(pAcross[n + 1], pAcross[n + nRow + 1]);
        const short nWorst = std::max(std::max(a, b), std::max(c, d));
        const short nInside =
            static_cast<short>(pInside[n] & pInside[n + 1] & pInside[n + nRow] & pInside[n + nRow + 1]);
        pPlain[n] = nWorst <= nMostError ? nInside : short{0};
    }
}

int CViewGrid::Classify(SPartGrid& rGrid, const SStrip& rStrip)
{
    const int k = rGrid.PointsPerCell();
    const std::size_t nPoints = static_cast<std::size_t>(rGrid.nPointCols);
    const short nMostError = static_cast<short>(m_nMostError > 0 ? m_nMostError : -1);
    int nBent = 0;
    for (int r = rStrip.nFirst; r < rStrip.nEnd; ++r) {
        // A cell is plain where all its quads are; the flags take the place of bends that are not needed any
        // more.
        short* const pPlain = m_vPlain.data() + static_cast<std::size_t>(r * k) * nPoints;
        for (int j = 0; j < k; ++j) {
            const std::size_t nFirst = rGrid.PointIndex(0, r * k + j);
            const short* const apRows[3] = {m_vBends[0].data() + nFirst, m_vBends[1].data() + nFirst,
                                            m_vInside.data() + nFirst};
            MarkPlain(apRows, rGrid.nPointCols, rGrid.nPointCols - 1, nMostError,
                      pPlain + static_cast<std::size_t>(j) * nPoints);
        }
        unsigned char* const pKinds = rGrid.vKinds.data() + rGrid.CellIndex(0, r);
        for (int c = 0; c < rGrid.nCols; ++c) {
            if (pKinds[c] == CELL_EXACT)
                continue;
            const short* const p = pPlain + static_cast<std::ptrdiff_t>(c) * k;
            const bool bPlain = k == 1 ? p[0] != 0 : (p[0] & p[1] & p[nPoints] & p[nPoints + 1]) != 0;
            pKinds[c] = bPlain ? CELL_SMOOTH : KindOf(rGrid, c, r);
            nBent += pKinds[c] == CELL_EXACT ? 1 : 0;
        }
    }
    return nBent;
}

int CViewGrid::NumberExactCells(SPartGrid& rGrid)
{
    m_vExactOf.resize(rGrid.vKinds.size());
    m_vExactColumns.resize(2 * static_cast<std::size_t>(rGrid.nRows));
    rGrid.vFirstExact.resize(static_cast<std::size_t>(rGrid.nRows));
    int nExact = 0;
    for (int r = 0; r < rGrid.nRows; ++r) {
        const std::size_t nRow = static_cast<std::size_t>(r);
        rGrid.vFirstExact[nRow] = nExact;
        m_vExactColumns[2 * nRow] = rGrid.nCols;
        m_vExactColumns[2 * nRow + 1] = -1;
        const unsigned char* const pKinds = rGrid.vKinds.data() + rGrid.CellIndex(0, r);
        if (std::find(pKinds, pKinds + rGrid.nCols, CELL_EXACT) == pKinds + rGrid.nCols)
            continue;
        for (int c = 0; c < rGrid.nCols; ++c) {
            const bool bExact = pKinds[c] == CELL_EXACT;
            m_vExactOf[rGrid.CellIndex(c, r)] = bExact ? nExact : -1;
            if (!bExact)
                continue;
            ++nExact;
            m_vExactColumns[2 * nRow] = std::min(m_vExactColumns[2 * nRow], c);
            m_vExactColumns[2 * nRow + 1] = c;
        }
    }
    rGrid.vExact.resize(static_cast<std::size_t>(nExact));
    for (SExactCell& rCell : rGrid.vExact) {
        rCell.nCovered = 0;
        rCell.bLines = false;
    }
    return nExact;
}
