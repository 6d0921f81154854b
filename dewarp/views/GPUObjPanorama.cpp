#include "dewarp/views/GPUObjPanorama.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/views/PTZLimits.h"

namespace
{

/// Matrix of one half: projection x view x translation, and half a turn more for a floor camera.
void HalfMatrix(float* pResult, const SDewarpMatrices& rMatrices, float x, float y, bool bFlip)
{
    float aModel[16];
    float aViewModel[16];
    SetIdentityMatrix(aModel);
    TranslateMatrix(aModel, x, y, 0.0f);
    if (bFlip)
        rotateM(aModel, 0, 180.0f, 0.0f, 0.0f, 1.0f);
    MultiplyMatrices(aViewModel, rMatrices.fView, aModel);
    MultiplyMatrices(pResult, rMatrices.fProjection, aViewModel);
}

/// Share of the strip's aspect that a view shows; 0 for views that are not this object's.
float ShownShare(EViewType eView)
{
    switch (static_cast<int>(eView)) {
    case VIEW_PANORAMA_QUARTER:
        return 0.25f;
    case VIEW_PANORAMA_HALF:
        return 0.5f;
    case VIEW_PANORAMA_FULL:
        return 1.0f;
    default:
        return 0.0f;
    }
}

} // namespace

void CCGPUObjPanorama::CheckPTZ(SDewarpParams* pParams)
{
    pParams->fTilt = 0.0f;
    if (pParams->fPan >= 180.0f)
        pParams->fPan -= 360.0f;
    else if (pParams->fPan <= -180.0f)
        pParams->fPan += 360.0f;
    pParams->fZoom = 180.0f;
}

void CCGPUObjPanorama::AdjustPTZ(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* pParams,
                                 SDewarpMatrices* pMatrices, float /*fAspect*/, int /*nRotation*/)
{
    const float x = pParams->fPan * m_fGeometryAspect / -180.0f;
    const bool bFlip = pParams->eMountType == MOUNT_FLOOR;
    float* m = pMatrices->fModel;
    if (bFlip)
        rotateM(m, 0, 180.0f, 0.0f, 0.0f, 1.0f);
    for (int i = 0; i < 4; ++i)
        m[12 + i] += x * m[i];

    const float x1 = bFlip ? -x : x;
    HalfMatrix(m_fUpperMVP, *pMatrices, x1, 1.0f, bFlip);
    // The lower half continues the strip on the side towards which the view was panned.
    float e = pParams->fPan >= 0.0f ? m_fGeometryAspect : -m_fGeometryAspect;
    if (bFlip)
        e = -e;
    HalfMatrix(m_fLowerMVP, *pMatrices, x1 + e, -1.0f, bFlip);
}

void CCGPUObjPanorama::OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                   SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    const float dx = DragPixels(pFrom->x, pTo->x);
    int nWidth = pMatrices->nViewportWidth;
    if (pShader->anClipPlanes[0] != -1)
        nWidth -= 2 * pShader->anClipPlanes[0];
    const float f = pParams->eViewType == VIEW_PANORAMA_FULL ? 360.0f : 180.0f;
    float d = f * dx / static_cast<float>(nWidth);
    if (pParams->eMountType == MOUNT_FLOOR)
        d = -d;
    pParams->fPan = pParams->fPan - d;
}

void CCGPUObjPanorama::CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                                       SShaderProperties* pShader)
{
    const float fShare = ShownShare(pParams->eViewType);
    if (fShare == 0.0f)
        return;
    const float a = m_fGeometryAspect * fShare;
    const float vw = static_cast<float>(pMatrices->nViewportWidth);
    const float vh = static_cast<float>(pMatrices->nViewportHeight);
    int* anPlanes = pShader->anClipPlanesRequested;
    anPlanes[0] = anPlanes[1] = -1;
    if (vw / vh > a) {
        const int nExcess = static_cast<int>(vw - a * vh);
        anPlanes[0] = nExcess / 2;
        anPlanes[1] = pMatrices->nViewportWidth - nExcess / 2;
    }
    anPlanes[2] = anPlanes[3] = -1;
    pShader->bTexCoordClipRequested = NeedsTexCoordClip(pParams->eLensType);
}

void CCGPUObjPanorama::DrawArrays(SDewarpParams* pParams, SDewarpMatrices* /*pMatrices*/,
                                  SShaderProperties* pShader)
{
    if (pParams->eViewType == VIEW_PANORAMA_FULL || pParams->eViewType == VIEW_PANORAMA_HALF) {
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
        return;
    }
    glUniformMatrix4fv(pShader->nMVPMatrixLocation, 1, GL_FALSE, m_fUpperMVP);
    glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
    glUniformMatrix4fv(pShader->nMVPMatrixLocation, 1, GL_FALSE, m_fLowerMVP);
    glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
}

float CCGPUObjPanorama::GetGeometryAspect(SDewarpParams* pParams)
{
    const float fShare = ShownShare(pParams->eViewType);
    return fShare == 0.0f ? 1.0f : m_fGeometryAspect * fShare;
}

float CCGPUObjPanorama::GetScaleMultiplier(SDewarpParams* pParams)
{
    return pParams->eViewType == VIEW_PANORAMA_QUARTER ? 2.0f : 1.0f;
}

void CCGPUObjPanorama::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    if (m_nVertexCount != 0)
        return;
    pGeometry->GeneratePanoramaVertices(pParams->eLensType, pParams->nImageWidth, pParams->nImageHeight);
    UploadMesh(*pGeometry);
}
