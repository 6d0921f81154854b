#include "dewarp/gl/GPUObjView.h"

#include <algorithm>

void RequestBands(const SClipBands& rBands, SShaderProperties& rShader)
{
    std::copy(std::begin(rBands.anPlanes), std::end(rBands.anPlanes), rShader.anClipPlanesRequested);
    rShader.fClipValueRequested = rBands.fDepth;
    rShader.bTexCoordClipRequested = rBands.bTexCoordRows;
}

void CCGPUObjView::CheckPTZ(SDewarpParams* pParams)
{
    m_rView.LimitPTZ(*pParams);
}

void CCGPUObjView::AdjustPTZ(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* pParams,
                             SDewarpMatrices* pMatrices, float fAspect, int nRotation)
{
    m_rView.Move(*pParams, m_fGeometryAspect, fAspect, nRotation, pMatrices->fModel);
}

void CCGPUObjView::OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                               SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    SDrag sDrag = {*pFrom, *pTo, pMatrices->nViewportWidth, pMatrices->nViewportHeight};
    // A flat view or a camera has no bands, and is asked without a program too.
    if (pShader != nullptr) {
        sDrag.nLeftBand = pShader->anClipPlanes[0];
        sDrag.nTopBand = pShader->anClipPlanes[2];
    }
    m_rView.Drag(sDrag, *pParams);
}

void CCGPUObjView::CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                                   SShaderProperties* pShader)
{
    SClipBands sBands =
        m_rView.ClipBands(*pParams, m_fGeometryAspect, pMatrices->nViewportWidth, pMatrices->nViewportHeight);
    RequestBands(sBands, *pShader);
}

void CCGPUObjView::SetProjectionMatrix(SDewarpMatrices* pMatrices, float fLeft, float fRight, float fBottom,
                                       float fTop, float fNear, float fFar)
{
    m_rView.Project({fLeft, fRight, fBottom, fTop, fNear, fFar}, pMatrices->fProjection);
}

float CCGPUObjView::GetGeometryAspect(SDewarpParams* pParams)
{
    return m_rView.Aspect(*pParams, m_fGeometryAspect);
}

float CCGPUObjView::GetScaleMultiplier(SDewarpParams* pParams)
{
    return m_rView.ScaleMultiplier(*pParams);
}

void CCGPUObjView::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    if (m_nVertexCount == 0)
        Rebuild(pGeometry, pParams);
}

float CCGPUObjView::GetEyeDistance(SDewarpParams* /*pParams*/)
{
    return m_rView.EyeDistance(0.0f);
}

void CCGPUObjView::Rebuild(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    const SMeshKey sKey = MeshKeyOf(m_rView.Mesh(), *pParams);
    // Until it is whole the mesh is nobody's: memory may run out on the way.
    m_sBuiltFor = SMeshKey();
    BuildMesh(*pGeometry, sKey);
    if (m_nVertexCount == 0)
        UploadMesh(*pGeometry);
    else
        RefillMesh(*pGeometry);
    if (m_nVertexCount == 0)
        return;
    m_fGeometryAspect = m_rView.MeshAspect(*pParams);
    m_sBuiltFor = sKey;
}
