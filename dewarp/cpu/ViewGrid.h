/// \file
/// From a frame's decision and its mesh to grids of frame positions.
#pragma once

#include "dewarp/control/Decision.h"
#include "dewarp/cpu/Grid.h"
#include "dewarp/cpu/GridLoops.h"
#include "dewarp/cpu/PixelOptics.h"
#include "dewarp/mapping/Projection.h"

/// Rasterises the view's triangles, in their order, into one grid for each rectangle of the target that the
/// view has parts in. Cells that a border of the mesh, a cut or a kink crosses get a position for each pixel
/// from the triangles themselves. The grids are the same for any number of threads.
/// Owns: the grids; they grow, never shrink. Thread: any, serialised by the host. Fails: throws for lack of
/// memory, on the caller's thread.
class CViewGrid
{
public:
    void Build(const SFrameDecision& rDecision, const CMeshIndex& rMesh, const SFrameShape& rFrame,
               int nThreads);

    /// Takes positions from the views' definitions instead of their meshes, from the next grid on: 0.01
    /// pixels from the optics at most, where a mesh is off by 0.16 on average. What is drawn where stays the
    /// mesh's.
    void SetExactGeometry(bool bExact)
    {
        m_bExactGeometry = bExact;
        m_sStraight = bExact ? SStraightRule{OPTICS_ERROR, false} : SStraightRule{MESH_ERROR, true};
    }
    bool IsExactGeometry() const { return m_bExactGeometry; }
    const SPartGrid* Parts() const { return m_vParts.data(); }
    int CountParts() const { return m_nParts; }
    /// Rectangles of the target that no part covers.
    const std::vector<SGRect>& Remainder() const { return m_vRemainder; }
    /// Bytes held.
    std::size_t CountBytes() const;

private:
    /// Rows of cells that one thread fills.
    struct SStrip
    {
        int nFirst;
        int nEnd;
    };

    /// What one part's points come from.
    struct SPartSource
    {
        /// Null where the mesh says it all.
        const CPixelOptics* Optics() const { return oOptics.IsUsed() ? &oOptics : nullptr; }

        CProjection oProjection;
        CPixelOptics oOptics;
    };
    // How far a cell's interpolation may be off, positions, in each direction: 0.06 pixels at a mesh's kinks;
    // a quarter of a hundredth where there are none, so that all four together stay below one.
    static constexpr int MESH_ERROR = 130;
    static constexpr int OPTICS_ERROR = 5;

    int LayOut(const SViewPart& rPart, const SFrameDecision& rDecision);
    void FindRemainder(const SFrameDecision& rDecision);
    void FillGrid(int nGrid, const SFrameDecision& rDecision, int nStep);
    static void SizePoints(SPartGrid& rGrid, int nStep);
    SStrip Strip(const SPartGrid& rGrid, int nStrip) const;

    void FillPoints(const SPartSource& rPart, SPartGrid& rGrid, const SStrip& rStrip) const;
    void AddTriangle(const SScreenTriangle& rTriangle, bool bClipped, const CPixelOptics* pOptics,
                     SPartGrid& rGrid, const SStrip& rStrip) const;
    void MarkBorders(const CProjection& rProjection, SPartGrid& rGrid, const SStrip& rStrip) const;
    /// Decides each cell's kind; returns how many are exact for their bends alone.
    int Classify(SPartGrid& rGrid, int nStrip);
    static ECellKind KindOf(const SPartGrid& rGrid, int nCol, int nRow, const SBendRow* pRows,
                            short* const (&apAcross)[2]);
    void FindRowBends(const SPartGrid& rGrid, int nRow, const SBendRow& rTo) const;
    int NumberExactCells(SPartGrid& rGrid);
    void FindExactCells(SPartGrid& rGrid, const SStrip& rStrip);
    static int ExactBefore(const SPartGrid& rGrid, int nRow);
    void FillExactCells(const SPartSource& rPart, SPartGrid& rGrid, const SStrip& rStrip) const;
    /// Rows and columns of cells, the last ones included.
    struct SExactRange
    {
        int nTop;
        int nBottom;
        int nLeft;
        int nRight;
    };
    bool FindRange(const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC,
                   const SPartGrid& rGrid, const SStrip& rStrip, SExactRange& rRange) const;
    void AddExactTriangle(const SScreenTriangle& rTriangle, const SExactRange& rRange,
                          const CPixelOptics* pOptics, SPartGrid& rGrid) const;

    const CMeshIndex* m_pMesh = nullptr; ///< while a grid is built
    int m_nThreads = 1;
    int m_nStrips = 1;
    SStraightRule m_sStraight{MESH_ERROR, true};
    bool m_bExactGeometry = false;
    std::vector<SPartGrid> m_vParts;
    int m_nParts = 0;
    std::vector<SGRect> m_vRemainder;
    SPartSource m_asSources[MAX_VIEW_PARTS];
    SCuts m_sCuts;
    SInside m_sInside; ///< positions whose samples need no edge, in full and in half resolution
    int m_anPartGrid[MAX_VIEW_PARTS] = {};
    // Scratch.
    static constexpr std::size_t SCRATCH_ROWS = 16;
    std::vector<short> m_vScratch;    ///< for each strip, rows of bends and of flags
    std::vector<int> m_vExactOf;      ///< for each cell, its exact cell
    std::vector<int> m_vExactColumns; ///< for each row of cells, first and last exact column
};
