#include "dewarp/cpu/FrameDraw.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace
{

const unsigned char NEUTRAL = 128;
/// Positions of a 2 x 2 block farther apart than this do not belong together.
const int FAR_APART = 16 * POSITION_ONE;

unsigned char* Row(const SFrameJob& rJob, int nPlane, int y)
{
    const int nRow = y - (nPlane == 0 ? rJob.nFirstRow : rJob.nFirstRow / 2);
    return rJob.sTarget.apPlanes[nPlane] + static_cast<std::ptrdiff_t>(nRow) * rJob.sTarget.anStrides[nPlane];
}

/// Where the chroma of a 2 x 2 block with own positions is taken: their middle, or the first that is covered.
SGridPoint PlaceOf(const SGridPoint* pPoints, std::uint64_t nCovered, int n)
{
    const int an[4] = {n, n + 1, n + CELL_SIDE, n + CELL_SIDE + 1};
    const auto Has = [&](int nPixel) { return (nCovered >> nPixel & 1) != 0; };
    const SGridPoint& a = pPoints[an[0]];
    if (Has(an[0]) && Has(an[1]) && Has(an[2]) && Has(an[3])) {
        std::int64_t x = 0;
        std::int64_t y = 0;
        bool bTogether = true;
        for (const int nPixel : an) {
            const SGridPoint& p = pPoints[nPixel];
            x += p.x;
            y += p.y;
            bTogether = bTogether && std::abs(p.x - a.x) < FAR_APART && std::abs(p.y - a.y) < FAR_APART;
        }
        if (bTogether)
            return {static_cast<std::int32_t>((x + 2) >> 2), static_cast<std::int32_t>((y + 2) >> 2)};
    }
    for (const int nPixel : an) {
        if (Has(nPixel))
            return pPoints[nPixel];
    }
    return {NOWHERE, NOWHERE};
}

/// Whether one of the four pixels of a chroma place is covered.
bool HasPlace(std::uint64_t nCovered, int nPlace)
{
    return (nCovered >> (nPlace / 4 * 2 * CELL_SIDE + nPlace % 4 * 2) & (3U | 3U << CELL_SIDE)) != 0;
}

/// Gives points that are not covered the position of one that is.
template <int POINTS = CELL_PIXELS>
void FillGaps(const SGridPoint* pPoints, std::uint64_t nCovered, SGridPoint* pFilled)
{
    const SGridPoint sAny = pPoints[std::countr_zero(nCovered)];
    for (int n = 0; n < POINTS; ++n)
        pFilled[n] = (nCovered >> n & 1) != 0 ? pPoints[n] : sAny;
}

} // namespace

struct CFrameDraw::SSpan
{
    SSpan(const SPartGrid& rGrid, int nRow, int nCol)
        : nX(rGrid.nOriginX + nCol * CELL_SIDE), nY(rGrid.nOriginY + nRow * CELL_SIDE),
          nLeft(std::max(rGrid.sRect.x - nX, 0)), nTop(std::max(rGrid.sRect.y - nY, 0)),
          nRight(std::min(rGrid.sRect.x + rGrid.sRect.width - nX, CELL_SIDE)),
          nBottom(std::min(rGrid.sRect.y + rGrid.sRect.height - nY, CELL_SIDE))
    {}
    bool IsWhole() const { return nLeft == 0 && nTop == 0 && nRight == CELL_SIDE && nBottom == CELL_SIDE; }
    std::uint64_t Pixels() const
    {
        const std::uint64_t nRow = ((std::uint64_t{1} << (nRight - nLeft)) - 1) << nLeft;
        std::uint64_t nAll = 0;
        for (int y = nTop; y < nBottom; ++y)
            nAll |= nRow << (y * CELL_SIDE);
        return nAll;
    }

    int nX; ///< of the cell's first pixel
    int nY;
    int nLeft; ///< within the cell
    int nTop;
    int nRight;
    int nBottom;
    int nFirstPlaceX = 0; ///< 1: the first column of chroma places belongs to another part
    int nFirstPlaceY = 0;
};

CFrameDraw::CFrameDraw(const SFrameJob& rJob)
    : m_rJob(rJob), m_rCells(rJob.pColours->sJob),
      m_bYUV(rJob.sTarget.eFormat == IMAGE_FORMAT_NV12 || rJob.sTarget.eFormat == IMAGE_FORMAT_YUV420P),
      m_bKernels(!rJob.pColours->sFine.bUsed && m_rCells.nFrameWidth % 2 == 0 &&
                 m_rCells.nFrameHeight % 2 == 0 && m_rCells.nFrameWidth >= 32 && m_rCells.nFrameHeight >= 32),
      m_nBlack(rJob.pColours->nYUVRange == YUV_RANGE_LIMITED ? 16 : 0)
{}

void CFrameDraw::Clear(const SGRect& rRect) const
{
    const std::size_t nWidth = static_cast<std::size_t>(rRect.width);
    for (int y = rRect.y; y < rRect.y + rRect.height; ++y) {
        if (!m_bYUV)
            std::memset(Row(m_rJob, 0, y) + std::ptrdiff_t{4} * rRect.x, 0, nWidth * 4);
        else
            std::memset(Row(m_rJob, 0, y) + rRect.x, m_nBlack, nWidth);
    }
    // Places that are shared with a part are drawn over by it later.
    if (m_bYUV)
        ClearChroma(rRect);
}

void CFrameDraw::ClearChroma(const SGRect& rRect) const
{
    const SFrameTarget& t = m_rJob.sTarget;
    const int nFirst = rRect.x / 2;
    const std::size_t nPlaces = static_cast<std::size_t>((rRect.x + rRect.width + 1) / 2 - nFirst);
    for (int y = rRect.y / 2; y < (rRect.y + rRect.height + 1) / 2; ++y) {
        if (t.eFormat == IMAGE_FORMAT_NV12) {
            std::memset(Row(m_rJob, 1, y) + std::ptrdiff_t{2} * nFirst, NEUTRAL, 2 * nPlaces);
        } else {
            std::memset(Row(m_rJob, 1, y) + nFirst, NEUTRAL, nPlaces);
            std::memset(Row(m_rJob, 2, y) + nFirst, NEUTRAL, nPlaces);
        }
    }
}

bool CFrameDraw::IsShared(const SPartGrid& rGrid, int x, int y) const
{
    for (int g = 0; g < m_rJob.pGrid->CountParts(); ++g) {
        const SGRect& r = m_rJob.pGrid->Parts()[g].sRect;
        if (&m_rJob.pGrid->Parts()[g] != &rGrid && x >= r.x && y >= r.y && x < r.x + r.width &&
            y < r.y + r.height)
            return true;
    }
    return false;
}

void CFrameDraw::DrawCellRow(const SPartGrid& rGrid, int nRow) const
{
    const SSpan sFirst(rGrid, nRow, 0);
    const bool bWholeRow = sFirst.nTop == 0 && sFirst.nBottom == CELL_SIDE;
    const int nFirstWhole = sFirst.nLeft > 0 ? 1 : 0;
    const int nEndWhole = (rGrid.sRect.x + rGrid.sRect.width - rGrid.nOriginX) / CELL_SIDE;
    const unsigned char* const pKinds = rGrid.vKinds.data() + rGrid.CellIndex(0, nRow);
    const SExactCell* pExact = rGrid.vExact.empty()
                                   ? nullptr
                                   : rGrid.vExact.data() + rGrid.vFirstExact[static_cast<std::size_t>(nRow)];
    for (int c = 0; c < rGrid.nCols;) {
        if (pKinds[c] == CELL_SMOOTH && m_bKernels && bWholeRow && c >= nFirstWhole && c < nEndWhole) {
            int nEnd = c + 1;
            while (nEnd < nEndWhole && pKinds[nEnd] == CELL_SMOOTH)
                ++nEnd;
            DrawRun(rGrid, nRow, c, nEnd - c);
            c = nEnd;
            continue;
        }
        DrawCell(rGrid, nRow, c, pExact);
        pExact += pKinds[c] == CELL_EXACT ? 1 : 0;
        ++c;
    }
}

static SCellPoints PointsOf(const SPartGrid& rGrid, int nRow, int nCol)
{
    const int k = rGrid.PointsPerCell();
    return {rGrid.vPoints.data() + rGrid.PointIndex(nCol * k, nRow * k), rGrid.nPointCols, rGrid.nStep};
}

void CFrameDraw::DrawRun(const SPartGrid& rGrid, int nRow, int nCol, int nCells) const
{
    const SCellKernels& k = *m_rJob.pKernels;
    const SFrameTarget& t = m_rJob.sTarget;
    const SCellPoints sPoints = PointsOf(rGrid, nRow, nCol);
    const int x = rGrid.nOriginX + nCol * CELL_SIDE;
    const int y = rGrid.nOriginY + nRow * CELL_SIDE;
    const bool bNV = t.eFormat == IMAGE_FORMAT_NV12;
    if ((m_bYUV && (k.pLuma == nullptr || k.pChroma == nullptr)) || (!m_bYUV && k.pPixels == nullptr)) {
        for (int c = nCol; c < nCol + nCells; ++c)
            DrawCell(rGrid, nRow, c, nullptr);
        return;
    }
    if (!m_bYUV) {
        k.pPixels(m_rCells, sPoints, nCells, Row(m_rJob, 0, y) + std::ptrdiff_t{4} * x, t.anStrides[0]);
        return;
    }
    k.pLuma(m_rCells, sPoints, nCells, Row(m_rJob, 0, y) + x, t.anStrides[0]);
    unsigned char* const apTargets[2] = {Row(m_rJob, 1, y / 2) + (bNV ? x : x / 2),
                                         bNV ? nullptr : Row(m_rJob, 2, y / 2) + x / 2};
    if (m_rCells.eSource == SOURCE_GRAY) {
        ClearChroma({x, y, nCells * CELL_SIDE, CELL_SIDE});
        return;
    }
    const std::ptrdiff_t anStrides[2] = {t.anStrides[1], t.anStrides[2]};
    k.pChroma(m_rCells, sPoints, nCells, apTargets, anStrides);
}

/// A smooth cell whose pixels do not all belong to its part, by way of a block beside the target.
bool CFrameDraw::DrawByKernel(const SSpan& rSpan, const SCellPoints& rPoints) const
{
    const SCellKernels& k = *m_rJob.pKernels;
    if (!m_bKernels || (m_bYUV ? k.pLuma == nullptr || k.pChroma == nullptr : k.pPixels == nullptr))
        return false;
    if (!m_bYUV) {
        std::uint32_t anPixels[CELL_PIXELS];
        k.pPixels(m_rCells, rPoints, 1, reinterpret_cast<unsigned char*>(anPixels), 4 * CELL_SIDE);
        PutPixels(rSpan, anPixels);
        return true;
    }
    unsigned char anLuma[CELL_PIXELS];
    unsigned char anChroma[CELL_PIXELS / 4][2];
    unsigned char* const apTargets[2] = {anChroma[0], nullptr};
    const std::ptrdiff_t anStrides[2] = {CELL_SIDE, 0};
    k.pLuma(m_rCells, rPoints, 1, anLuma, CELL_SIDE);
    if (m_rCells.eSource == SOURCE_GRAY)
        std::memset(anChroma, NEUTRAL, sizeof anChroma);
    else
        k.pChroma(m_rCells, rPoints, 1, apTargets, anStrides);
    PutLuma(rSpan, anLuma);
    PutChroma(rSpan, anChroma);
    return true;
}

void CFrameDraw::DrawCell(const SPartGrid& rGrid, int nRow, int nCol, const SExactCell* pExact) const
{
    SSpan sSpan(rGrid, nRow, nCol);
    sSpan.nFirstPlaceX = sSpan.nLeft > 0 && IsShared(rGrid, rGrid.sRect.x - 1, rGrid.sRect.y) ? 1 : 0;
    sSpan.nFirstPlaceY = sSpan.nTop > 0 && IsShared(rGrid, rGrid.sRect.x, rGrid.sRect.y - 1) ? 1 : 0;
    SGridPoint aPoints[CELL_PIXELS];
    SGridPoint aPlaces[CELL_PIXELS / 4];
    const int nKind = rGrid.vKinds[rGrid.CellIndex(nCol, nRow)];
    std::uint64_t nCovered = sSpan.Pixels();
    const SGridPoint* pPoints = aPoints;
    if (nKind == CELL_SMOOTH || nKind == CELL_RIM) {
        const SCellPoints sPoints = PointsOf(rGrid, nRow, nCol);
        if (nKind == CELL_SMOOTH && DrawByKernel(sSpan, sPoints))
            return;
        PixelPositions(sPoints, aPoints);
        if (m_bYUV)
            ChromaPlaces(sPoints, aPlaces);
    } else if (nKind == CELL_EXACT) {
        nCovered &= pExact->nCovered;
        pPoints = pExact->aPoints;
        for (int n = 0; m_bYUV && n < CELL_PIXELS / 4; ++n)
            aPlaces[n] = PlaceOf(pPoints, nCovered, n / 4 * 2 * CELL_SIDE + n % 4 * 2);
    } else {
        nCovered = 0;
    }
    if (m_bYUV)
        DrawYUV(sSpan, pPoints, aPlaces, nCovered);
    else
        DrawPixels(sSpan, pPoints, nCovered);
}

void CFrameDraw::DrawPixels(const SSpan& rSpan, const SGridPoint* pPoints, std::uint64_t nCovered) const
{
    std::uint32_t anPixels[CELL_PIXELS] = {};
    if (nCovered != 0 && m_rJob.pKernels->pPixelsAt != nullptr && AreInside(pPoints, nCovered)) {
        SGridPoint aPoints[CELL_PIXELS];
        FillGaps(pPoints, nCovered, aPoints);
        m_rJob.pKernels->pPixelsAt(m_rCells, aPoints, anPixels);
        for (int n = 0; n < CELL_PIXELS; ++n)
            anPixels[n] = (nCovered >> n & 1) != 0 ? anPixels[n] : 0;
        PutPixels(rSpan, anPixels);
        return;
    }
    const bool bFine = m_rJob.pColours->sFine.bUsed;
    for (; nCovered != 0; nCovered &= nCovered - 1) {
        const int n = std::countr_zero(nCovered);
        const std::uint32_t nRGBA =
            bFine ? FinePixel(*m_rJob.pColours, pPoints[n]) : PlainPixel(m_rCells, pPoints[n]);
        anPixels[n] = Ordered(m_rCells, nRGBA);
    }
    PutPixels(rSpan, anPixels);
}

void CFrameDraw::DrawYUV(const SSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
                         std::uint64_t nCovered) const
{
    unsigned char anLuma[CELL_PIXELS];
    unsigned char anChroma[CELL_PIXELS / 4][2];
    std::memset(anLuma, m_nBlack, sizeof anLuma);
    std::memset(anChroma, NEUTRAL, sizeof anChroma);
    if (nCovered != 0 && m_rJob.pKernels->pLumaAt != nullptr && AreInside(pPoints, nCovered)) {
        DrawInside(rSpan, pPoints, pPlaces, nCovered);
        return;
    }
    const bool bFine = m_rJob.pColours->sFine.bUsed;
    for (std::uint64_t n64 = nCovered; n64 != 0; n64 &= n64 - 1) {
        const int n = std::countr_zero(n64);
        anLuma[n] = static_cast<unsigned char>(
            bFine ? FineYUV(*m_rJob.pColours, pPoints[n]) & 255
                  : static_cast<std::uint32_t>(SampleByte(
                        SampleAt(m_rCells.aPlanes[0], 0, pPoints[n].x, pPoints[n].y, m_rCells.bLinear))));
    }
    PutLuma(rSpan, anLuma);
    for (int n = 0; n < CELL_PIXELS / 4 && m_rCells.eSource != SOURCE_GRAY; ++n) {
        if (!HasPlace(nCovered, n))
            continue;
        if (bFine) {
            const std::uint32_t nYUV = FineYUV(*m_rJob.pColours, pPlaces[n]);
            anChroma[n][0] = static_cast<unsigned char>(nYUV >> 8 & 255);
            anChroma[n][1] = static_cast<unsigned char>(nYUV >> 16 & 255);
            continue;
        }
        const SYUVSample s = SampleYUV(m_rCells, pPlaces[n]);
        anChroma[n][0] = static_cast<unsigned char>(SampleByte(s.u));
        anChroma[n][1] = static_cast<unsigned char>(SampleByte(s.v));
    }
    PutChroma(rSpan, anChroma);
}

/// As DrawYUV, by a kernel.
void CFrameDraw::DrawInside(const SSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
                            std::uint64_t nCovered) const
{
    SGridPoint aPoints[CELL_PIXELS];
    unsigned char anLuma[CELL_PIXELS];
    unsigned char anChroma[CELL_PIXELS / 4][2];
    FillGaps(pPoints, nCovered, aPoints);
    m_rJob.pKernels->pLumaAt(m_rCells, aPoints, anLuma);
    for (int n = 0; n < CELL_PIXELS; ++n)
        anLuma[n] = (nCovered >> n & 1) != 0 ? anLuma[n] : m_nBlack;
    PutLuma(rSpan, anLuma);
    std::memset(anChroma, NEUTRAL, sizeof anChroma);
    if (m_rCells.eSource != SOURCE_GRAY) {
        SGridPoint aPlaces[CELL_PIXELS / 4];
        std::uint64_t nPlaces = 0;
        for (int n = 0; n < CELL_PIXELS / 4; ++n)
            nPlaces |= std::uint64_t{HasPlace(nCovered, n)} << n;
        FillGaps<CELL_PIXELS / 4>(pPlaces, nPlaces, aPlaces);
        m_rJob.pKernels->pChromaAt(m_rCells, aPlaces, anChroma[0]);
        for (int n = 0; n < CELL_PIXELS / 4; ++n) {
            if ((nPlaces >> n & 1) == 0)
                std::memset(anChroma[n], NEUTRAL, sizeof anChroma[n]);
        }
    }
    PutChroma(rSpan, anChroma);
}

/// Whether a kernel may sample some positions.
bool CFrameDraw::AreInside(const SGridPoint* pPoints, std::uint64_t nCovered) const
{
    if (!m_bKernels || (m_rCells.eSource == SOURCE_PACKED && !m_rCells.bLinear))
        return false;
    // Half a pixel to spare, for chroma; three bytes a pixel are fetched by eight.
    const int nHalf = POSITION_ONE / 2;
    const int nRows = m_rCells.nFrameHeight - (m_rCells.aPlanes[0].nPixelBytes == 3 ? 2 : 1);
    const int nRight = (m_rCells.nFrameWidth - 1) * POSITION_ONE - nHalf;
    const int nBottom = nRows * POSITION_ONE - nHalf;
    bool bInside = true;
    for (int n = 0; n < CELL_PIXELS; ++n) {
        const SGridPoint& p = pPoints[n];
        const bool bHere = p.x >= nHalf && p.x < nRight && p.y >= nHalf && p.y < nBottom;
        bInside = bInside && (bHere || (nCovered >> n & 1) == 0);
    }
    return bInside;
}

void CFrameDraw::PutPixels(const SSpan& s, const std::uint32_t* pPixels) const
{
    for (int y = s.nTop; y < s.nBottom; ++y)
        std::memcpy(Row(m_rJob, 0, s.nY + y) + std::ptrdiff_t{4} * (s.nX + s.nLeft),
                    pPixels + y * CELL_SIDE + s.nLeft, static_cast<std::size_t>(s.nRight - s.nLeft) * 4);
}

void CFrameDraw::PutLuma(const SSpan& s, const unsigned char* pLuma) const
{
    for (int y = s.nTop; y < s.nBottom; ++y)
        std::memcpy(Row(m_rJob, 0, s.nY + y) + s.nX + s.nLeft, pLuma + y * CELL_SIDE + s.nLeft,
                    static_cast<std::size_t>(s.nRight - s.nLeft));
}

/// Places that have a pixel inside the part; those that another part has begun are its own.
void CFrameDraw::PutChroma(const SSpan& s, const unsigned char (*pChroma)[2]) const
{
    const SFrameTarget& t = m_rJob.sTarget;
    for (int j = std::max(s.nTop / 2, s.nFirstPlaceY); j < (s.nBottom + 1) / 2; ++j) {
        const int y = s.nY / 2 + j;
        for (int i = std::max(s.nLeft / 2, s.nFirstPlaceX); i < (s.nRight + 1) / 2; ++i) {
            const int x = s.nX / 2 + i;
            const unsigned char* const p = pChroma[j * 4 + i];
            if (t.eFormat == IMAGE_FORMAT_NV12) {
                std::memcpy(Row(m_rJob, 1, y) + std::ptrdiff_t{2} * x, p, 2);
            } else {
                Row(m_rJob, 1, y)[x] = p[0];
                Row(m_rJob, 2, y)[x] = p[1];
            }
        }
    }
}
