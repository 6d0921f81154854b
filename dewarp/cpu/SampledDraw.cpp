// Cells whose pixels take more than four texels.

#include "dewarp/cpu/CellSpan.h"
#include "dewarp/cpu/FrameCover.h"
#include "dewarp/cpu/FrameDraw.h"

#include <bit>
#include <cstring>
#include <limits>

namespace
{

std::int64_t SquareOf(const SGridPoint& r)
{
    return std::int64_t{r.x} * r.x + std::int64_t{r.y} * r.y;
}

SGridPoint Between(const SGridPoint& rFrom, const SGridPoint& rTo)
{
    return {rTo.x - rFrom.x, rTo.y - rFrom.y};
}

/// How far it is from a point to its neighbour along one side of a square of SIDE x SIDE points. Points are
/// taken in pairs, as graphics processors take them; where the other neighbour is much nearer something ends
/// between the pair.
template <int SIDE>
SGridPoint StepOf(const SGridPoint* pPoints, std::uint64_t nCovered, int n, int nPlace, int nOffset)
{
    const bool bSecond = nPlace % 2 != 0;
    const auto Has = [&](int nAt, int nPlaceAt) {
        return nPlaceAt >= 0 && nPlaceAt < SIDE && (nCovered >> nAt & 1) != 0;
    };
    const bool bNext = Has(n + nOffset, nPlace + 1);
    const bool bBefore = Has(n - nOffset, nPlace - 1);
    const SGridPoint sNext = bNext ? Between(pPoints[n], pPoints[n + nOffset]) : SGridPoint();
    const SGridPoint sBefore = bBefore ? Between(pPoints[n - nOffset], pPoints[n]) : SGridPoint();
    if (!bNext || !bBefore)
        return bNext ? sNext : sBefore;
    const SGridPoint& rPair = bSecond ? sBefore : sNext;
    const SGridPoint& rOther = bSecond ? sNext : sBefore;
    return 4 * SquareOf(rOther) < SquareOf(rPair) ? rOther : rPair;
}

/// A point's spot; steps are needed for averages alone.
template <int SIDE>
SSpot SpotOf(const SGridPoint* pPoints, std::uint64_t nCovered, int n, bool bSteps)
{
    if (!bSteps)
        return {pPoints[n], SGridPoint(), SGridPoint()};
    return {pPoints[n], StepOf<SIDE>(pPoints, nCovered, n, n % SIDE, 1),
            StepOf<SIDE>(pPoints, nCovered, n, n / SIDE, SIDE)};
}

} // namespace

/// The sampler of a cell. Where nothing lies over any of its texels, its samples need not look.
CPlaneSampler CFrameDraw::SamplerOf(const SGridPoint* pPoints, std::uint64_t nCovered) const
{
    const CPlaneSampler oAll(m_rJob.sSampling, m_rJob.pCover);
    if (m_rJob.pCover == nullptr || nCovered == 0)
        return oAll;
    std::int32_t nLeft = std::numeric_limits<std::int32_t>::max();
    std::int32_t nTop = nLeft;
    std::int32_t nRight = std::numeric_limits<std::int32_t>::min();
    std::int32_t nBottom = nRight;
    for (; nCovered != 0; nCovered &= nCovered - 1) {
        const SGridPoint& r = pPoints[std::countr_zero(nCovered)];
        nLeft = std::min(nLeft, r.x);
        nTop = std::min(nTop, r.y);
        nRight = std::max(nRight, r.x);
        nBottom = std::max(nBottom, r.y);
    }
    // Half of two steps is the most that a footprint reaches beyond its middle, and a step is at most as long
    // as the whole cell.
    const int nReach = oAll.Reach();
    const int nWide = ((nRight - nLeft) >> POSITION_BITS) + nReach;
    const int nHigh = ((nBottom - nTop) >> POSITION_BITS) + nReach;
    const bool bClear = m_rJob.pCover->IsClear(
        (nLeft >> POSITION_BITS) - nWide, (nTop >> POSITION_BITS) - nHigh, (nRight >> POSITION_BITS) + nWide,
        (nBottom >> POSITION_BITS) + nHigh, m_rCells.nFrameWidth, m_rCells.nFrameHeight);
    return bClear ? CPlaneSampler(m_rJob.sSampling, nullptr) : oAll;
}

void CFrameDraw::DrawSampledPixels(const SCellSpan& rSpan, const SGridPoint* pPoints,
                                   std::uint64_t nCovered) const
{
    std::uint32_t anPixels[CELL_PIXELS] = {};
    const CPlaneSampler oSampler = SamplerOf(pPoints, nCovered);
    const SFrameColours& rColours = *m_rJob.pColours;
    const bool bFine = rColours.sFine.bUsed;
    for (std::uint64_t nLeft = nCovered; nLeft != 0; nLeft &= nLeft - 1) {
        const int n = std::countr_zero(nLeft);
        const SSpot sSpot = SpotOf<CELL_SIDE>(pPoints, nCovered, n, m_rJob.sSampling.bMinification);
        std::uint32_t nRGBA = 0;
        if (m_rCells.eSource == SOURCE_PACKED) {
            nRGBA = oSampler.TakePacked(m_rCells, sSpot);
            nRGBA = bFine ? FinePacked(rColours, nRGBA) : nRGBA;
        } else {
            const SYUVSample sSample = oSampler.TakeYUV(m_rCells, sSpot);
            nRGBA = bFine ? FinePixel(rColours, pPoints[n], sSample) : PlainPixel(m_rCells, sSample);
        }
        anPixels[n] = Ordered(m_rCells, nRGBA);
    }
    PutPixels(rSpan, anPixels);
}

void CFrameDraw::DrawSampledYUV(const SCellSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
                                std::uint64_t nCovered) const
{
    unsigned char anLuma[CELL_PIXELS];
    unsigned char anChroma[CELL_PIXELS / 4][2];
    std::memset(anLuma, m_nBlack, sizeof anLuma);
    std::memset(anChroma, NEUTRAL_CHROMA, sizeof anChroma);
    const CPlaneSampler oSampler = SamplerOf(pPoints, nCovered);
    const SFrameColours& rColours = *m_rJob.pColours;
    const bool bFine = rColours.sFine.bUsed;
    for (std::uint64_t nLeft = nCovered; nLeft != 0; nLeft &= nLeft - 1) {
        const int n = std::countr_zero(nLeft);
        const SSpot sSpot = SpotOf<CELL_SIDE>(pPoints, nCovered, n, m_rJob.sSampling.bMinification);
        anLuma[n] = static_cast<unsigned char>(
            bFine ? FineYUV(rColours, pPoints[n], oSampler.TakeYUV(m_rCells, sSpot)) & 255
                  : static_cast<std::uint32_t>(SampleByte(oSampler.TakeLuma(m_rCells, sSpot))));
    }
    PutLuma(rSpan, anLuma);
    std::uint64_t nPlaces = 0;
    for (int n = 0; n < CELL_PIXELS / 4; ++n)
        nPlaces |= std::uint64_t{HasPlace(nCovered, n)} << n;
    if (m_rCells.eSource == SOURCE_GRAY)
        nPlaces = 0;
    for (std::uint64_t nLeft = nPlaces; nLeft != 0; nLeft &= nLeft - 1) {
        const int n = std::countr_zero(nLeft);
        const SSpot sSpot = SpotOf<CELL_SIDE / 2>(pPlaces, nPlaces, n, m_rJob.sSampling.bMinification);
        SYUVSample sSample;
        if (bFine) {
            const std::uint32_t nYUV = FineYUV(rColours, pPlaces[n], oSampler.TakeYUV(m_rCells, sSpot));
            anChroma[n][0] = static_cast<unsigned char>(nYUV >> 8 & 255);
            anChroma[n][1] = static_cast<unsigned char>(nYUV >> 16 & 255);
            continue;
        }
        oSampler.TakeChroma(m_rCells, sSpot, sSample);
        anChroma[n][0] = static_cast<unsigned char>(SampleByte(sSample.u));
        anChroma[n][1] = static_cast<unsigned char>(SampleByte(sSample.v));
    }
    PutChroma(rSpan, anChroma);
}
