/// \file
/// One view of a picture: all that it is drawn from.
#pragma once

#include "dewarp/control/Decision.h"
#include "dewarp/cpu/FrameDraw.h"
#include "dewarp/cpu/FrameLayers.h"
#include "dewarp/cpu/ScratchRows.h"
#include "dewarp/cpu/ViewGrid.h"
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshKey.h"

#include <memory>

/// A mesh and what it was built for; views that need the same share one.
struct SSharedMesh
{
    SMeshKey sKey;
    CMeshIndex oIndex;
};

/// Mesh, grid and layers of one view, made anew when the decision asks for others.
/// Owns: all of it. Thread: any, serialised by the host; Draw uses the shared pool. Fails: Prepare throws for
/// lack of memory, and what it was at is made again next time. Draw never.
class CViewDraw
{
public:
    /// Mesh and grid stand for a decision. pOther: a view whose mesh may serve, or null.
    void Prepare(const SFrameDecision& rDecision, CCustomGPUGeometry& rGeometry, const CViewDraw* pOther,
                 bool bExactGeometry, int nThreads);
    /// What lies over the frame stands where this view shows it.
    void PrepareLayers(const SLayerPlace& rPlace, const CFrameLayers& rLayers, int nThreads);
    /// Draws into a target as large as the decision's. The grid of the job is this view's.
    void Draw(const SFrameJob& rJob, CScratchRows& rScratch, int nThreads) const;

    const CViewGrid& Grid() const { return m_oGrid; }
    bool HasMesh(const SMeshKey& rKey) const { return m_pMesh != nullptr && m_pMesh->sKey == rKey; }

private:
    void PrepareMesh(const SFrameDecision& rDecision, CCustomGPUGeometry& rGeometry, const CViewDraw* pOther);

    std::shared_ptr<SSharedMesh> m_pMesh;
    CViewGrid m_oGrid;
    CViewLayers m_oLayers;
    SFrameDecision m_sBuilt; ///< what the grid was built for
    bool m_bGridBuilt = false;
    unsigned int m_nGridNumber = 0;
};
