// Exact cells by kernels that take lines.

#include "dewarp/cpu/CellSpan.h"
#include "dewarp/cpu/FrameDraw.h"

#include <cstddef>
#include <cstring>

/// Rows of texels that most exact cells show.
static const int EXACT_ROWS = 20;

/// Has the texels of the next exact cell brought into the cache, and the places of the one after: each lies
/// somewhere else, and waiting for them took as long as drawing.
void CFrameDraw::FetchAhead(const SExactCell& rNext, const SExactCell& rAfter) const
{
    const int nLine = 64;
    const char* const p = reinterpret_cast<const char*>(&rAfter);
    for (int n = 0; n < static_cast<int>(offsetof(SExactCell, sLines) + sizeof(SExactLines)); n += nLine)
        __builtin_prefetch(p + n);
    if (!rNext.bLines)
        return;
    const SExactLines& l = rNext.sLines;
    const SSamplePlane& rFirst = m_rCells.aPlanes[0];
    for (int n = 0; n < EXACT_ROWS; ++n)
        __builtin_prefetch(rFirst.pPixels + (l.y + n) * rFirst.nStride + l.x * rFirst.nPixelBytes);
    const SSamplePlane& rSecond = m_rCells.aPlanes[1];
    for (int n = 0; n < EXACT_ROWS / 2 && rSecond.pPixels != nullptr; ++n)
        __builtin_prefetch(rSecond.pPixels + (l.y / 2 + n) * rSecond.nStride + l.x / 2 * rSecond.nPixelBytes);
}

/// An exact cell by a kernel that takes lines: straight into the target where all of it belongs there.
bool CFrameDraw::DrawLines(const SCellSpan& rSpan, const SExactCell& rCell) const
{
    const SCellKernels& k = *m_rJob.pKernels;
    if (!m_bKernels || k.pLumaLines == nullptr || (m_rCells.eSource == SOURCE_PACKED && !m_rCells.bLinear))
        return false;
    const SFrameTarget& t = m_rJob.sTarget;
    const std::uint64_t nCovered = rCell.nCovered;
    const bool bWhole = nCovered == ~std::uint64_t{0} && rSpan.IsWhole();
    if (!m_bYUV && bWhole) {
        k.pPixelLines(m_rCells, rCell.sLines, TargetRow(m_rJob, 0, rSpan.nY) + std::ptrdiff_t{4} * rSpan.nX,
                      t.anStrides[0]);
    } else if (!m_bYUV) {
        std::uint32_t anPixels[CELL_PIXELS];
        k.pPixelLines(m_rCells, rCell.sLines, reinterpret_cast<unsigned char*>(anPixels), 4 * CELL_SIDE);
        for (int n = 0; n < CELL_PIXELS; ++n)
            anPixels[n] = (nCovered >> n & 1) != 0 ? anPixels[n] : 0;
        PutPixels(rSpan, anPixels);
    } else if (bWhole && m_rCells.eSource != SOURCE_GRAY) {
        const bool bNV = t.eFormat == IMAGE_FORMAT_NV12;
        const int x = bNV ? rSpan.nX : rSpan.nX / 2;
        unsigned char* const apTargets[2] = {TargetRow(m_rJob, 1, rSpan.nY / 2) + x,
                                             bNV ? nullptr : TargetRow(m_rJob, 2, rSpan.nY / 2) + x};
        const std::ptrdiff_t anStrides[2] = {t.anStrides[1], t.anStrides[2]};
        k.pChromaLines(m_rCells, rCell.sLines, apTargets, anStrides);
        k.pLumaLines(m_rCells, rCell.sLines, TargetRow(m_rJob, 0, rSpan.nY) + rSpan.nX, t.anStrides[0]);
    } else {
        DrawPartOfLines(rSpan, rCell);
    }
    return true;
}

/// The same by way of blocks beside the target.
void CFrameDraw::DrawPartOfLines(const SCellSpan& rSpan, const SExactCell& rCell) const
{
    const SCellKernels& k = *m_rJob.pKernels;
    unsigned char anLuma[CELL_PIXELS];
    unsigned char anChroma[CELL_PIXELS / 4][2];
    unsigned char* const apTargets[2] = {anChroma[0], nullptr};
    const std::ptrdiff_t anStrides[2] = {CELL_SIDE, 0};
    if (m_rCells.eSource == SOURCE_GRAY)
        std::memset(anChroma, NEUTRAL_CHROMA, sizeof anChroma);
    else
        k.pChromaLines(m_rCells, rCell.sLines, apTargets, anStrides);
    k.pLumaLines(m_rCells, rCell.sLines, anLuma, CELL_SIDE);
    for (int n = 0; n < CELL_PIXELS; ++n)
        anLuma[n] = (rCell.nCovered >> n & 1) != 0 ? anLuma[n] : m_nBlack;
    for (int n = 0; n < CELL_PIXELS / 4; ++n) {
        if (!HasPlace(rCell.nCovered, n))
            std::memset(anChroma[n], NEUTRAL_CHROMA, sizeof anChroma[n]);
    }
    PutLuma(rSpan, anLuma);
    PutChroma(rSpan, anChroma);
}
