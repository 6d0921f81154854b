/// \file
/// Masks or an overlay image that lie over the frame, as the view shows them.
#pragma once

#include "dewarp/cpu/RunLayer.h"
#include "dewarp/cpu/ViewGrid.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Samples what lies over the frame where each pixel of the view shows it. Cells that nothing lies on are not
/// looked at, those under one colour are not sampled.
/// Owns: a layer for each part of the view; they grow, never shrink. Thread: any, serialised by the host.
/// Fails: throws for lack of memory, on the caller's thread.
class CInputLayer
{
public:
    /// rSource: a CMaskImage or COverlayImage that is not empty.
    template <class TSource>
    void Build(const CViewGrid& rGrid, const TSource& rSource, bool bLinear, int nFrameWidth,
               int nFrameHeight, const SLayerFormat& rFormat, int nThreads);
    /// Nothing lies over the frame.
    void Clear() { m_nParts = 0; }

    int CountParts() const { return m_nParts; }
    /// The layer of a part; empty for one that is not there.
    const CRunLayer& Layer(int nPart) const { return nPart < m_nParts ? Held(nPart) : m_oNone; }
    bool IsEmpty() const;
    std::size_t CountBytes() const;

private:
    template <class TSource>
    class CSampler;

    /// What one thread makes of some rows of cells.
    struct SStrip
    {
        CRunLayer oLayer;
        std::vector<std::uint32_t> vPixels; ///< of one row of cells
        std::vector<std::uint32_t> vStates; ///< of its cells: as sources have them
        bool bLacksMemory = false;
    };

    const CRunLayer& Held(int nPart) const { return m_vLayers[static_cast<std::size_t>(nPart)]; }
    template <class TSource>
    void BuildPart(const SPartGrid& rGrid, const CSampler<TSource>& rSampler, const SLayerFormat& rFormat,
                   int nThreads, CRunLayer& rLayer);
    template <class TSource>
    static void FillStrip(const SPartGrid& rGrid, const CSampler<TSource>& rSampler, int nFirst, int nEnd,
                          SStrip& rStrip, CRunLayer& rLayer);
    template <class TSource>
    static void SampleCell(const SPartGrid& rGrid, const CSampler<TSource>& rSampler, int nRow, int nCol,
                           int& rExact, SStrip& rStrip);
    static void AddRows(const SPartGrid& rGrid, int nRow, const SStrip& rStrip, CRunLayer& rLayer);

    std::vector<CRunLayer> m_vLayers;
    int m_nParts = 0;
    std::vector<SStrip> m_vStrips;
    CRunLayer m_oNone;
};
