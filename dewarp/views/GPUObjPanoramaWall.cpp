#include "dewarp/views/GPUObjPanoramaWall.h"

#include "dewarp/views/PTZLimits.h"

#include <cmath>

namespace
{

const float WALL_ASPECT = 2.5f;
// Rays behind a tilted camera lie nearer than this framebuffer depth.
const float BEHIND_CAMERA_DEPTH = 0.475f;

} // namespace

void CCGPUObjPanoramaWall::CheckTilt(float fWallAngle, float& fTilt, bool bStrict)
{
    const float a = fWallAngle;
    const float c = std::cos(a * 3.1415927f / 180.0f);
    float fLow = -54.0f;
    float fHigh = 54.0f;
    if (a > 0.0f) {
        fLow = a - 54.0f;
        if (!bStrict)
            fLow = fLow + c * 1.5f * a;
    } else if (a < 0.0f) {
        fHigh = a + 54.0f;
        if (!bStrict)
            fHigh = fHigh + c * 1.5f * a;
    }
    if (fTilt > fHigh)
        fTilt = fHigh;
    if (fTilt < fLow)
        fTilt = fLow;
}

void CCGPUObjPanoramaWall::CheckPTZ(SDewarpParams* pParams)
{
    CheckTilt(pParams->fMountTilt, pParams->fTilt, pParams->bStrictTiltLimits);
    pParams->fZoom = 180.0f;
}

void CCGPUObjPanoramaWall::AdjustPTZ(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* pParams,
                                     SDewarpMatrices* pMatrices, float /*fAspect*/, int /*nRotation*/)
{
    CheckTilt(pParams->fMountTilt, pParams->fTilt, pParams->bStrictTiltLimits);
    float* m = pMatrices->fModel;
    for (int i = 0; i < 4; ++i)
        m[12 + i] -= (pParams->fTilt / 90.0f) * m[4 + i];
}

void CCGPUObjPanoramaWall::OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                       SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    int h = pMatrices->nViewportHeight;
    if (pShader->anClipPlanes[2] != -1)
        h -= 2 * pShader->anClipPlanes[2];
    const float dx = DragPixels(pFrom->x, pTo->x);
    const float dy = DragPixels(pFrom->y, pTo->y);
    pParams->fTilt = pParams->fTilt + dy * 72.0f / static_cast<float>(h);
    // The horizontal step counts by the viewport's height too.
    pParams->fPan =
        pParams->fPan + pParams->fZoom * (dx / static_cast<float>(pMatrices->nViewportHeight)) * 0.5f;
}

void CCGPUObjPanoramaWall::CheckClipPlanes(SDewarpParams* pParams, SDewarpMatrices* pMatrices,
                                           SShaderProperties* pShader)
{
    const float vw = static_cast<float>(pMatrices->nViewportWidth);
    const float vh = static_cast<float>(pMatrices->nViewportHeight);
    int* anPlanes = pShader->anClipPlanesRequested;
    anPlanes[0] = anPlanes[1] = -1;
    anPlanes[2] = anPlanes[3] = -1;
    if (vw / vh < WALL_ASPECT) {
        anPlanes[2] = static_cast<int>(vh - vw / WALL_ASPECT) / 2;
        anPlanes[3] = pMatrices->nViewportHeight - anPlanes[2];
    }
    pShader->bTexCoordClipRequested = NeedsTexCoordClip(pParams->eLensType);
    pShader->fClipValueRequested = pParams->fMountTilt == 0.0f ? 0.0f : BEHIND_CAMERA_DEPTH;
}

float CCGPUObjPanoramaWall::GetScaleMultiplier(SDewarpParams* /*pParams*/)
{
    return 0.4f;
}

void CCGPUObjPanoramaWall::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    if (m_nVertexCount == 0)
        Regenerate(pGeometry, pParams);
}

void CCGPUObjPanoramaWall::Regenerate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    pGeometry->GeneratePanoramaWallVertices(pParams->eLensType, pParams->fMountTilt, pParams->fPan,
                                            pParams->bStrictTiltLimits, pParams->nImageWidth,
                                            pParams->nImageHeight);
    if (m_nVertexCount == 0)
        UploadMesh(*pGeometry);
    else
        RefillMesh(*pGeometry);
    m_fGeometryAspect = WALL_ASPECT;
}
