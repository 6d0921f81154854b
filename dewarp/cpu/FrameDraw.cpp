#include "dewarp/cpu/FrameDraw.h"

#include "dewarp/cpu/CellSpan.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

namespace
{

/// Gives points that are not covered the position of one that is.
template <int POINTS = CELL_PIXELS>
void FillGaps(const SGridPoint* pPoints, std::uint64_t nCovered, SGridPoint* pFilled)
{
    const SGridPoint sAny = pPoints[std::countr_zero(nCovered)];
    for (int n = 0; n < POINTS; ++n)
        pFilled[n] = (nCovered >> n & 1) != 0 ? pPoints[n] : sAny;
}

/// Kernels count bytes in 32 bits, and look up U and V at once.
bool SuitKernels(const SCellJob& r)
{
    const bool bAlike = r.eSource != SOURCE_PLANAR || r.aPlanes[1].nStride == r.aPlanes[2].nStride;
    const std::int64_t nBytes =
        std::max(r.aPlanes[0].nStride, r.aPlanes[1].nStride) * std::int64_t{r.nFrameHeight};
    return bAlike && nBytes <= std::numeric_limits<std::int32_t>::max() && r.nFrameWidth % 2 == 0 &&
           r.nFrameHeight % 2 == 0 && r.nFrameWidth >= 32 && r.nFrameHeight >= 32;
}

} // namespace

CFrameDraw::CFrameDraw(const SFrameJob& rJob)
    : m_rJob(rJob), m_rCells(rJob.pColours->sJob),
      m_bYUV(rJob.sTarget.eFormat == IMAGE_FORMAT_NV12 || rJob.sTarget.eFormat == IMAGE_FORMAT_YUV420P),
      m_bKernels(rJob.sSampling.IsPlain() && !rJob.pColours->sFine.bUsed && SuitKernels(m_rCells)),
      m_nBlack(rJob.pColours->nYUVRange == YUV_RANGE_LIMITED ? 16 : 0)
{}

void CFrameDraw::Clear(const SGRect& rRect) const
{
    const std::size_t nWidth = static_cast<std::size_t>(rRect.width);
    for (int y = rRect.y; y < rRect.y + rRect.height; ++y) {
        if (!m_bYUV)
            std::memset(TargetRow(m_rJob, 0, y) + std::ptrdiff_t{4} * rRect.x, 0, nWidth * 4);
        else
            std::memset(TargetRow(m_rJob, 0, y) + rRect.x, m_nBlack, nWidth);
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
            std::memset(TargetRow(m_rJob, 1, y) + std::ptrdiff_t{2} * nFirst, NEUTRAL_CHROMA, 2 * nPlaces);
        } else {
            std::memset(TargetRow(m_rJob, 1, y) + nFirst, NEUTRAL_CHROMA, nPlaces);
            std::memset(TargetRow(m_rJob, 2, y) + nFirst, NEUTRAL_CHROMA, nPlaces);
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
    const SCellSpan sFirst(rGrid, nRow, 0);
    const bool bWholeRow = sFirst.nTop == 0 && sFirst.nBottom == CELL_SIDE;
    const int nFirstWhole = sFirst.nLeft > 0 ? 1 : 0;
    const int nEndWhole = (rGrid.sRect.x + rGrid.sRect.width - rGrid.nOriginX) / CELL_SIDE;
    const unsigned char* const pKinds = rGrid.vKinds.data() + rGrid.CellIndex(0, nRow);
    const SExactCell* pExact = rGrid.vExact.empty()
                                   ? nullptr
                                   : rGrid.vExact.data() + rGrid.vFirstExact[static_cast<std::size_t>(nRow)];
    const SExactCell* const pEndExact = rGrid.vExact.data() + rGrid.vExact.size();
    for (int c = 0; c < rGrid.nCols;) {
        if (pKinds[c] == CELL_SMOOTH && m_bKernels && bWholeRow && c >= nFirstWhole && c < nEndWhole) {
            int nEnd = c + 1;
            while (nEnd < nEndWhole && pKinds[nEnd] == CELL_SMOOTH)
                ++nEnd;
            DrawRun(rGrid, nRow, c, nEnd - c);
            c = nEnd;
            continue;
        }
        if (pKinds[c] == CELL_EXACT && pExact + 2 < pEndExact)
            FetchAhead(pExact[1], pExact[2]);
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
        k.pPixels(m_rCells, sPoints, nCells, TargetRow(m_rJob, 0, y) + std::ptrdiff_t{4} * x, t.anStrides[0]);
        return;
    }
    unsigned char* const apTargets[2] = {TargetRow(m_rJob, 1, y / 2) + (bNV ? x : x / 2),
                                         bNV ? nullptr : TargetRow(m_rJob, 2, y / 2) + x / 2};
    const std::ptrdiff_t anStrides[2] = {t.anStrides[1], t.anStrides[2]};
    unsigned char* const pLuma = TargetRow(m_rJob, 0, y) + x;
    if (m_rCells.eSource != SOURCE_GRAY && k.pPlanes != nullptr) {
        k.pPlanes(m_rCells, sPoints, nCells, pLuma, t.anStrides[0], apTargets, anStrides);
        return;
    }
    k.pLuma(m_rCells, sPoints, nCells, pLuma, t.anStrides[0]);
    if (m_rCells.eSource == SOURCE_GRAY) {
        ClearChroma({x, y, nCells * CELL_SIDE, CELL_SIDE});
        return;
    }
    k.pChroma(m_rCells, sPoints, nCells, apTargets, anStrides);
}

/// A smooth cell whose pixels do not all belong to its part, by way of a block beside the target.
bool CFrameDraw::DrawByKernel(const SCellSpan& rSpan, const SCellPoints& rPoints) const
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
        std::memset(anChroma, NEUTRAL_CHROMA, sizeof anChroma);
    else
        k.pChroma(m_rCells, rPoints, 1, apTargets, anStrides);
    PutLuma(rSpan, anLuma);
    PutChroma(rSpan, anChroma);
    return true;
}

void CFrameDraw::DrawCell(const SPartGrid& rGrid, int nRow, int nCol, const SExactCell* pExact) const
{
    SCellSpan sSpan(rGrid, nRow, nCol);
    sSpan.nFirstPlaceX = sSpan.nLeft > 0 && IsShared(rGrid, rGrid.sRect.x - 1, rGrid.sRect.y) ? 1 : 0;
    sSpan.nFirstPlaceY = sSpan.nTop > 0 && IsShared(rGrid, rGrid.sRect.x, rGrid.sRect.y - 1) ? 1 : 0;
    const int nKind = rGrid.vKinds[rGrid.CellIndex(nCol, nRow)];
    if (nKind == CELL_EXACT && pExact->bLines && DrawLines(sSpan, *pExact))
        return;
    SGridPoint aPoints[CELL_PIXELS];
    SGridPoint aPlaces[CELL_PIXELS / 4];
    std::uint64_t nCovered = sSpan.Pixels();
    if (nKind == CELL_SMOOTH || nKind == CELL_RIM) {
        const SCellPoints sPoints = PointsOf(rGrid, nRow, nCol);
        if (nKind == CELL_SMOOTH && DrawByKernel(sSpan, sPoints))
            return;
        PixelPositions(sPoints, aPoints);
        if (m_bYUV)
            ChromaPlaces(sPoints, aPlaces);
    } else if (nKind == CELL_EXACT) {
        ExactPositions(*pExact, aPoints);
        for (int n = 0; m_bYUV && n < CELL_PIXELS / 4; ++n)
            aPlaces[n] = ExactPlace(aPoints, pExact->nCovered, n / 4 * 2 * CELL_SIDE + n % 4 * 2);
        nCovered &= pExact->nCovered;
    } else {
        nCovered = 0;
    }
    if (m_bYUV)
        DrawYUV(sSpan, aPoints, aPlaces, nCovered);
    else
        DrawPixels(sSpan, aPoints, nCovered);
}

void CFrameDraw::DrawPixels(const SCellSpan& rSpan, const SGridPoint* pPoints, std::uint64_t nCovered) const
{
    if (!m_rJob.sSampling.IsPlain()) {
        DrawSampledPixels(rSpan, pPoints, nCovered);
        return;
    }
    std::uint32_t anPixels[CELL_PIXELS] = {};
    if (nCovered != 0 && m_rJob.pKernels->pPixelsAt != nullptr && AreInside<CELL_PIXELS>(pPoints, nCovered)) {
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

void CFrameDraw::DrawYUV(const SCellSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
                         std::uint64_t nCovered) const
{
    if (!m_rJob.sSampling.IsPlain()) {
        DrawSampledYUV(rSpan, pPoints, pPlaces, nCovered);
        return;
    }
    unsigned char anLuma[CELL_PIXELS];
    unsigned char anChroma[CELL_PIXELS / 4][2];
    std::memset(anLuma, m_nBlack, sizeof anLuma);
    std::memset(anChroma, NEUTRAL_CHROMA, sizeof anChroma);
    if (nCovered != 0 && m_rJob.pKernels->pLumaAt != nullptr && AreInside<CELL_PIXELS>(pPoints, nCovered) &&
        AreInside<CELL_PIXELS / 4>(pPlaces, PlacesOf(nCovered))) {
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
void CFrameDraw::DrawInside(const SCellSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
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
    std::memset(anChroma, NEUTRAL_CHROMA, sizeof anChroma);
    if (m_rCells.eSource != SOURCE_GRAY) {
        SGridPoint aPlaces[CELL_PIXELS / 4];
        const std::uint64_t nPlaces = PlacesOf(nCovered);
        FillGaps<CELL_PIXELS / 4>(pPlaces, nPlaces, aPlaces);
        m_rJob.pKernels->pChromaAt(m_rCells, aPlaces, anChroma[0]);
        for (int n = 0; n < CELL_PIXELS / 4; ++n) {
            if ((nPlaces >> n & 1) == 0)
                std::memset(anChroma[n], NEUTRAL_CHROMA, sizeof anChroma[n]);
        }
    }
    PutChroma(rSpan, anChroma);
}

/// Whether a kernel may sample the positions whose bits are set. Chroma is asked of its own places: at the
/// end of the target one may stand for pixels of which some are not drawn.
template <int COUNT>
bool CFrameDraw::AreInside(const SGridPoint* pPoints, std::uint64_t nUsed) const
{
    if (!m_bKernels || (m_rCells.eSource == SOURCE_PACKED && !m_rCells.bLinear))
        return false;
    // Half a pixel to spare, for chroma; three bytes a pixel are fetched by eight.
    const int nHalf = POSITION_ONE / 2;
    const int nRows = m_rCells.nFrameHeight - (m_rCells.aPlanes[0].nPixelBytes == 3 ? 2 : 1);
    const SInside sInside = {nHalf, nHalf, (m_rCells.nFrameWidth - 1) * POSITION_ONE - nHalf,
                             nRows * POSITION_ONE - nHalf};
    bool bInside = true;
    for (int n = 0; n < COUNT; ++n)
        bInside = bInside && (sInside.Has(pPoints[n]) || (nUsed >> n & 1) == 0);
    return bInside;
}

void CFrameDraw::PutPixels(const SCellSpan& s, const std::uint32_t* pPixels) const
{
    for (int y = s.nTop; y < s.nBottom; ++y)
        std::memcpy(TargetRow(m_rJob, 0, s.nY + y) + std::ptrdiff_t{4} * (s.nX + s.nLeft),
                    pPixels + y * CELL_SIDE + s.nLeft, static_cast<std::size_t>(s.nRight - s.nLeft) * 4);
}

void CFrameDraw::PutLuma(const SCellSpan& s, const unsigned char* pLuma) const
{
    for (int y = s.nTop; y < s.nBottom; ++y)
        std::memcpy(TargetRow(m_rJob, 0, s.nY + y) + s.nX + s.nLeft, pLuma + y * CELL_SIDE + s.nLeft,
                    static_cast<std::size_t>(s.nRight - s.nLeft));
}

/// Places that have a pixel inside the part; those that another part has begun are its own.
void CFrameDraw::PutChroma(const SCellSpan& s, const unsigned char (*pChroma)[2]) const
{
    const SFrameTarget& t = m_rJob.sTarget;
    for (int j = std::max(s.nTop / 2, s.nFirstPlaceY); j < (s.nBottom + 1) / 2; ++j) {
        const int y = s.nY / 2 + j;
        for (int i = std::max(s.nLeft / 2, s.nFirstPlaceX); i < (s.nRight + 1) / 2; ++i) {
            const int x = s.nX / 2 + i;
            const unsigned char* const p = pChroma[j * 4 + i];
            if (t.eFormat == IMAGE_FORMAT_NV12) {
                std::memcpy(TargetRow(m_rJob, 1, y) + std::ptrdiff_t{2} * x, p, 2);
            } else {
                TargetRow(m_rJob, 1, y)[x] = p[0];
                TargetRow(m_rJob, 2, y)[x] = p[1];
            }
        }
    }
}
