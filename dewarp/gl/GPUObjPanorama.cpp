#include "dewarp/gl/GPUObjPanorama.h"

#include "dewarp/views/PanoramaView.h"
#include "dewarp/views/ViewList.h"

CCGPUObjPanorama::CCGPUObjPanorama() : CCGPUObjView(FindView(VIEW_PANORAMA_FULL, MOUNT_CEILING)) {}

void CCGPUObjPanorama::AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams,
                                 SDewarpMatrices* pMatrices, float fAspect, int nRotation)
{
    CCGPUObjView::AdjustPTZ(pGeometry, pParams, pMatrices, fAspect, nRotation);
    CPanoramaView::HalfMatrices(*pParams, *pMatrices, m_fGeometryAspect, m_fUpperMVP, m_fLowerMVP);
}

void CCGPUObjPanorama::CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                                       SShaderProperties* pShader)
{
    if (CPanoramaView::ShownShare(pParams->eViewType) == 0.0f)
        return;
    const float fDepth = pShader->fClipValueRequested;
    CCGPUObjView::CheckClipPlanes(pParams, pMatrices, pShader);
    pShader->fClipValueRequested = fDepth;
}

void CCGPUObjPanorama::DrawArrays(SDewarpParams* pParams, SDewarpMatrices* /*pMatrices*/,
                                  SShaderProperties* pShader)
{
    if (pParams->eViewType == VIEW_PANORAMA_FULL || pParams->eViewType == VIEW_PANORAMA_HALF) {
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
        return;
    }
    for (const float* pMVP : {m_fUpperMVP, m_fLowerMVP}) {
        glUniformMatrix4fv(pShader->nMVPMatrixLocation, 1, GL_FALSE, pMVP);
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
    }
}
