#include "dewarp/gl/GPUObjView.h"

#include "dewarp/gl/PictureRequests.h"
#include "dewarp/views/ViewList.h"

void CCGPUObjView::CheckPTZ(SDewarpParams* pParams)
{
    m_pView->LimitPTZ(*pParams);
}

void CCGPUObjView::AdjustPTZ(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* pParams,
                             SDewarpMatrices* pMatrices, float fAspect, int nRotation)
{
    m_pView->Move(*pParams, m_fGeometryAspect, fAspect, nRotation, pMatrices->fModel);
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
    m_pView->Drag(sDrag, *pParams);
}

void CCGPUObjView::CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                                   SShaderProperties* pShader)
{
    SClipBands sBands =
        m_pView->Bands(*pParams, m_fGeometryAspect, pMatrices->nViewportWidth, pMatrices->nViewportHeight);
    RequestBands(sBands, *pShader);
}

void CCGPUObjView::SetProjectionMatrix(SDewarpMatrices* pMatrices, float fLeft, float fRight, float fBottom,
                                       float fTop, float fNear, float fFar)
{
    m_pView->Project({fLeft, fRight, fBottom, fTop, fNear, fFar}, pMatrices->fProjection);
}

void CCGPUObjView::DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    SViewPart aParts[MAX_VIEW_PARTS];
    const int nParts = m_pView->Parts(*pParams, *pMatrices, m_fGeometryAspect, m_bTopDownTarget, aParts);
    if (nParts == 1) {
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
        return;
    }
    DrawEach(aParts, nParts, *pShader);
    glViewport(0, 0, pMatrices->nViewportWidth, pMatrices->nViewportHeight);
}

void CCGPUObjView::DrawEach(const SViewPart* pParts, int nParts, const SShaderProperties& rShader) const
{
    for (int i = 0; i < nParts; ++i) {
        const SViewPart& rPart = pParts[i];
        glUniformMatrix4fv(rShader.nMVPMatrixLocation, 1, GL_FALSE, rPart.fMVP);
        glViewport(rPart.nX, rPart.nY, rPart.nWidth, rPart.nHeight);
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
    }
}

float CCGPUObjView::GetGeometryAspect(SDewarpParams* pParams)
{
    return m_pView->Aspect(*pParams, m_fGeometryAspect);
}

float CCGPUObjView::GetScaleMultiplier(SDewarpParams* pParams)
{
    return m_pView->ScaleMultiplier(*pParams);
}

void CCGPUObjView::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    if (m_nVertexCount == 0)
        Rebuild(pGeometry, pParams);
}

float CCGPUObjView::GetEyeDistance(SDewarpParams* /*pParams*/)
{
    return m_pView->EyeDistance(0.0f);
}

void CCGPUObjView::Rebuild(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    const SMeshKey sKey = m_pView->MeshKey(*pParams);
    // Until it is whole the mesh is nobody's: memory may run out on the way.
    m_sBuiltFor = SMeshKey();
    m_pView->BuildMesh(*pGeometry, sKey);
    if (m_nVertexCount == 0)
        UploadMesh(*pGeometry);
    else
        RefillMesh(*pGeometry);
    if (m_nVertexCount == 0)
        return;
    m_fGeometryAspect = m_pView->MeshAspect(*pParams);
    m_sBuiltFor = sKey;
}

CCGPUObjAnyView::CCGPUObjAnyView() : CCGPUObjView(FindView(VIEW_FISHEYE, MOUNT_CEILING)) {}
