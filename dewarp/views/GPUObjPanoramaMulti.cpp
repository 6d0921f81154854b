#include "dewarp/views/GPUObjPanoramaMulti.h"

#include "dewarp/views/PTZLimits.h"

void CCGPUObjPanoramaMulti::CheckPTZ(SDewarpParams* pParams)
{
    LimitAngle(pParams->fTilt, -54.0f, 54.0f);
    pParams->fZoom = 180.0f;
}

void CCGPUObjPanoramaMulti::AdjustPTZ(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams,
                                      SDewarpMatrices* /*pMatrices*/, float /*fAspect*/, int /*nRotation*/)
{
    Generate(*pGeometry, *pParams);
    RefillMesh(*pGeometry);
    m_fGeometryAspect = FixedAspect();
}

void CCGPUObjPanoramaMulti::OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                        SDewarpMatrices* pMatrices, SShaderProperties* /*pShader*/)
{
    pParams->fPan = pParams->fPan + pParams->fZoom * DragPixels(pFrom->x, pTo->x) /
                                        static_cast<float>(pMatrices->nViewportWidth);
    pParams->fTilt = pParams->fTilt + pParams->fZoom * DragPixels(pFrom->y, pTo->y) /
                                          static_cast<float>(pMatrices->nViewportHeight);
}

void CCGPUObjPanoramaMulti::CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                                            SShaderProperties* pShader)
{
    CCGPUObjBase::CheckClipPlanes(pParams, pMatrices, pShader);
    pShader->bTexCoordClipRequested = NeedsTexCoordClip(pParams->eLensType);
}

float CCGPUObjPanoramaMulti::GetScaleMultiplier(SDewarpParams* /*pParams*/)
{
    return 0.5f;
}

void CCGPUObjPanoramaMulti::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    if (m_nVertexCount != 0)
        return;
    Generate(*pGeometry, *pParams);
    UploadMesh(*pGeometry);
    m_fGeometryAspect = FixedAspect();
}

void CCGPUObjPanoramaDual::Generate(CCustomGPUGeometry& rGeometry, const SDewarpParams& rParams)
{
    rGeometry.GenerateDualPanoramaVertices(rParams.eLensType, rParams.fPan, rParams.fTilt,
                                           rParams.nImageWidth, rParams.nImageHeight);
}

void CCGPUObjPanoramaTriple::Generate(CCustomGPUGeometry& rGeometry, const SDewarpParams& rParams)
{
    rGeometry.GenerateTriplePanoramaVertices(rParams.eLensType, rParams.fPan, rParams.fTilt,
                                             rParams.nImageWidth, rParams.nImageHeight);
}
