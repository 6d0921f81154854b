#include "dewarp/cpu/ViewDraw.h"

#include "dewarp/cpu/WorkerPool.h"
#include "dewarp/mapping/ViewRules.h"

void CViewDraw::Prepare(const SFrameDecision& rDecision, CCustomGPUGeometry& rGeometry,
                        const CViewDraw* pOther, bool bExactGeometry, int nThreads)
{
    PrepareMesh(rDecision, rGeometry, pOther);
    if (m_oGrid.IsExactGeometry() != bExactGeometry) {
        m_oGrid.SetExactGeometry(bExactGeometry);
        m_bGridBuilt = false;
    }
    if (m_bGridBuilt && ShowSamePlaces(m_sBuilt, rDecision))
        return;
    // Until it is whole the grid stands for nothing: memory may run out on the way.
    m_bGridBuilt = false;
    ++m_nGridNumber;
    m_oGrid.Build(rDecision, m_pMesh->oIndex, FrameShapeOf(rDecision), nThreads);
    m_sBuilt = rDecision;
    m_bGridBuilt = true;
}

void CViewDraw::PrepareMesh(const SFrameDecision& rDecision, CCustomGPUGeometry& rGeometry,
                            const CViewDraw* pOther)
{
    if (HasMesh(rDecision.sMesh))
        return;
    m_bGridBuilt = false;
    if (pOther != nullptr) {
        m_pMesh = pOther->m_pMesh;
        return;
    }
    if (m_pMesh == nullptr || m_pMesh.use_count() > 1)
        m_pMesh = std::make_shared<SSharedMesh>();
    m_pMesh->sKey = SMeshKey();
    rDecision.pView->BuildMesh(rGeometry, rDecision.sMesh);
    m_pMesh->oIndex.Build(rGeometry, IsFan(rDecision.sMesh));
    m_pMesh->sKey = rDecision.sMesh;
}

void CViewDraw::PrepareLayers(const SLayerPlace& rPlace, const CFrameLayers& rLayers, int nThreads)
{
    SLayerPlace sPlace = rPlace;
    sPlace.sRim = m_sBuilt.sBands.sRim;
    sPlace.nGridNumber = m_nGridNumber;
    m_oLayers.Prepare(sPlace, rLayers, m_oGrid, nThreads);
}

void CViewDraw::Draw(const SFrameJob& rJob, CScratchRows& rScratch, int nThreads) const
{
    const CFrameDraw oDraw(rJob);
    for (const SGRect& rRect : m_oGrid.Remainder())
        oDraw.Clear(rRect);
    for (int g = 0; g < m_oGrid.CountParts(); ++g) {
        const SPartGrid& rGrid = m_oGrid.Parts()[g];
        const CRunLayer& rLayer = m_oLayers.InputLayer(g);
        const CRunLayer& rRim = m_oLayers.RimLayer(g);
        CWorkerPool::Shared().Run(nThreads, rGrid.nRows, [&](int nRow) {
            const int y = rGrid.nOriginY + nRow * CELL_SIDE;
            if (rLayer.HasRows(y, y + CELL_SIDE) || rRim.HasRows(y, y + CELL_SIDE))
                DrawCoveredRow(rJob, rGrid, nRow, rLayer, rRim, rScratch);
            else
                oDraw.DrawCellRow(rGrid, nRow);
        });
    }
}
