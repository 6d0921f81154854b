/// \file
/// A frame's cells into the host's memory, by bands, on as many threads as there are.
#pragma once

#include "dewarp/Dewarper.h"
#include "dewarp/cpu/Colours.h"
#include "dewarp/cpu/PlaneSampler.h"
#include "dewarp/cpu/ViewGrid.h"

/// What one drawing is made of. Owns: nothing.
struct SFrameJob
{
    const SFrameColours* pColours = nullptr;
    const SCellKernels* pKernels = nullptr;
    const CViewGrid* pGrid = nullptr;
    /// BGRA32, RGBA32, NV12 or YUV420P; the latter two for sources without red and blue.
    SFrameTarget sTarget;
    int nFirstRow = 0;                   ///< row of the picture that the target's first row is; even
    SPlaneSampling sSampling = {};       ///< plain: the kernels do
    const CFrameCover* pCover = nullptr; ///< what lies over the frame; null: nothing
};

struct SCellSpan;

/// Draws rows of cells of one part of the view. What no triangle covers becomes transparent black; in YUV,
/// black. Thread: any; rows of cells may be drawn at the same time. Fails: never. Allocates nothing.
class CFrameDraw
{
public:
    explicit CFrameDraw(const SFrameJob& rJob);

    void DrawCellRow(const SPartGrid& rGrid, int nRow) const;
    /// Clears a rectangle of the target that no part covers.
    void Clear(const SGRect& rRect) const;
    /// Whether a pixel beside a part belongs to another one.
    bool IsShared(const SPartGrid& rGrid, int x, int y) const;

private:
    bool IsYUV() const { return m_bYUV; }
    void ClearChroma(const SGRect& rRect) const;
    void DrawRun(const SPartGrid& rGrid, int nRow, int nCol, int nCells) const;
    void DrawCell(const SPartGrid& rGrid, int nRow, int nCol, const SExactCell* pExact) const;
    void FetchAhead(const SExactCell& rNext, const SExactCell& rAfter) const;
    bool DrawLines(const SCellSpan& rSpan, const SExactCell& rCell) const;
    void DrawPartOfLines(const SCellSpan& rSpan, const SExactCell& rCell) const;
    void DrawPixels(const SCellSpan& rSpan, const SGridPoint* pPoints, std::uint64_t nCovered) const;
    void DrawYUV(const SCellSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
                 std::uint64_t nCovered) const;
    void DrawInside(const SCellSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
                    std::uint64_t nCovered) const;
    CPlaneSampler SamplerOf(const SGridPoint* pPoints, std::uint64_t nCovered) const;
    void DrawSampledPixels(const SCellSpan& rSpan, const SGridPoint* pPoints, std::uint64_t nCovered) const;
    void DrawSampledYUV(const SCellSpan& rSpan, const SGridPoint* pPoints, const SGridPoint* pPlaces,
                        std::uint64_t nCovered) const;
    template <int COUNT>
    bool AreInside(const SGridPoint* pPoints, std::uint64_t nUsed) const;
    void PutPixels(const SCellSpan& rSpan, const std::uint32_t* pPixels) const;
    void PutLuma(const SCellSpan& rSpan, const unsigned char* pLuma) const;
    void PutChroma(const SCellSpan& rSpan, const unsigned char (*pChroma)[2]) const;
    bool DrawByKernel(const SCellSpan& rSpan, const SCellPoints& rPoints) const;

    const SFrameJob& m_rJob;
    const SCellJob& m_rCells;
    bool m_bYUV;
    bool m_bKernels; ///< the kernels do for this frame's colours and filter
    unsigned char m_nBlack;
};
