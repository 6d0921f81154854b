/// \file
/// The vertices of a mesh, seen from one part of a view.
#pragma once

#include "dewarp/mapping/MeshIndex.h"
#include "dewarp/mapping/ScreenTriangle.h"
#include "dewarp/views/View.h"

#include <cstddef>

/// How positions in the frame are counted, and which way round it is.
struct SFrameShape
{
    int nWidth = 0;
    int nHeight = 0;
    bool bMirrorX = false;
    bool bMirrorY = false;

    bool operator==(const SFrameShape& sOther) const = default;
};

/// Where a part is drawn.
SWindow WindowOf(const SViewPart& rPart);

/// Owns: its arrays; they grow, never shrink. Thread: any, serialised by the host. Fails: throws for lack of
/// memory.
class CProjection
{
public:
    /// Brings all vertices to clip space, rows counted from the top, and to the window.
    void Project(const CMeshIndex& rMesh, const SViewPart& rPart, const SFrameShape& rFrame);

    /// Calls rUse(A, B, C, bClipped) for each triangle that may be seen between two rows of the target, in
    /// drawing order; bClipped: a plane has cut it.
    template <class F>
    void Walk(const CMeshIndex& rMesh, double fFirstRow, double fLastRow, F&& rUse) const
    {
        for (std::size_t n = 0; n + 2 < rMesh.vTriangles.size(); n += 3) {
            const std::uint32_t a = rMesh.vTriangles[n];
            const std::uint32_t b = rMesh.vTriangles[n + 1];
            const std::uint32_t c = rMesh.vTriangles[n + 2];
            if ((m_vOutside[a] & m_vOutside[b] & m_vOutside[c] & BEYOND_A_PLANE) != 0)
                continue;
            if (((m_vOutside[a] | m_vOutside[b] | m_vOutside[c]) & NEEDS_CLIPPING) == 0) {
                const SScreenVertex& rA = m_vScreen[a];
                const SScreenVertex& rB = m_vScreen[b];
                const SScreenVertex& rC = m_vScreen[c];
                if ((rA.y < fFirstRow && rB.y < fFirstRow && rC.y < fFirstRow) ||
                    (rA.y > fLastRow && rB.y > fLastRow && rC.y > fLastRow))
                    continue;
                rUse(rA, rB, rC, false);
                continue;
            }
            const SClipVertex aCorners[3] = {m_vClip[a], m_vClip[b], m_vClip[c]};
            ClipTriangle(aCorners, [&](const SClipVertex& rA, const SClipVertex& rB, const SClipVertex& rC) {
                if (rA.w > 0.0 && rB.w > 0.0 && rC.w > 0.0)
                    rUse(OnScreen(rA, m_sWindow), OnScreen(rB, m_sWindow), OnScreen(rC, m_sWindow), true);
            });
        }
    }
    /// Both ends of a border; false when it cannot be seen.
    bool Border(const CMeshIndex& rMesh, std::size_t nBorder, SScreenVertex (&aEnds)[2]) const;

private:
    static constexpr unsigned char BEYOND_A_PLANE = 0x3F;
    static constexpr unsigned char NEEDS_CLIPPING = 0x70;

    SWindow m_sWindow;
    std::vector<SClipVertex> m_vClip;
    std::vector<SScreenVertex> m_vScreen; ///< of those that need no clipping
    /// Bits 0 to 3: beyond a side of the window; 4 and 5: beyond the near and the far plane; 6: far outside.
    std::vector<unsigned char> m_vOutside;
};
