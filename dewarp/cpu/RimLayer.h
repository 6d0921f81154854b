/// \file
/// The picture's end where the light of the lens ends.
#pragma once

#include "dewarp/cpu/RunLayer.h"
#include "dewarp/cpu/ViewGrid.h"
#include "dewarp/views/View.h"

#include <cstddef>
#include <vector>

/// Where the rim's ellipse or a side of the frame crosses a view: black runs, as opaque as a pixel lies
/// outside. Half of it on the edge itself, which is one pixel of the target wide, as in the shader's text.
/// Owns: a layer for each part of the view; they grow, never shrink. Thread: any, serialised by the host.
/// Fails: throws for lack of memory.
class CRimLayer
{
public:
    void Build(const CViewGrid& rGrid, const SRimCut& rRim, int nFrameWidth, int nFrameHeight,
               const SLayerFormat& rFormat);
    void Clear() { m_nParts = 0; }
    /// The layer of a part; empty for one that is not there.
    const CRunLayer& Layer(int nPart) const
    {
        return nPart < m_nParts ? m_vLayers[static_cast<std::size_t>(nPart)] : m_oNone;
    }
    std::size_t CountBytes() const;

private:
    std::vector<CRunLayer> m_vLayers;
    int m_nParts = 0;
    std::vector<std::uint32_t> m_vPixels; ///< scratch: of one row of cells
    CRunLayer m_oNone;
};
