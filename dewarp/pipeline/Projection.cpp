// From pan, tilt, zoom and target size to matrices and clip bands.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/views/GPUObjPanoramaWall.h"
#include "dewarp/views/GPUObjVCAM.h"

#include <cmath>

namespace
{

const float NEAR_PLANE = 0.01f;
const float FAR_PLANE = 2.0f;

bool IsWallPanorama(const SDewarpParams& rParams)
{
    return rParams.eMountType == MOUNT_WALL &&
           (rParams.eViewType == VIEW_PANORAMA_QUARTER || rParams.eViewType == VIEW_PANORAMA_FULL ||
            rParams.eViewType == VIEW_PANORAMA_HALF);
}

} // namespace

bool CCustomGPUDewarper::SetUpProjection(int nWidth, int nHeight)
{
    const bool bNewSize = nWidth != pMatrices->nViewportWidth || nHeight != pMatrices->nViewportHeight;
    if (!bNewSize && !(*pParams != *pLastDrawnParams) && !bViewSetupRequired)
        return true;
    bViewSetupRequired = false;
    UpdateWallMesh();
    glViewport(0, 0, nWidth, nHeight);
    pMatrices->nViewportWidth = nWidth;
    pMatrices->nViewportHeight = nHeight;
    SetIdentityMatrix(pMatrices->fModel);
    const bool bNewBands = bNewSize || pParams->eLensType != pLastDrawnParams->eLensType ||
                           pParams->eMountType != pLastDrawnParams->eMountType ||
                           pParams->eViewType != pLastDrawnParams->eViewType ||
                           pParams->fMountTilt != pLastDrawnParams->fMountTilt;
    if (bNewBands)
        pActiveViewObject->CheckClipPlanes(pParams, pMatrices, &sMainShader);
    ComputeProjection(nWidth, nHeight);
    if (!CheckMainProgram())
        return false;
    SetIdentityMatrix(pMatrices->fView);
    pVCAM->m_fEyeDistance = fEyeDistance;
    TranslateMatrix(pMatrices->fView, 0.0f, 0.0f, -pActiveViewObject->GetEyeDistance(pParams));
    AdjustPTZ();
    MultiplyMatrices(pMatrices->fModelView, pMatrices->fView, pMatrices->fModel);
    MultiplyMatrices(pMatrices->fMVP, pMatrices->fProjection, pMatrices->fModelView);
    UploadMVP();
    *pLastDrawnParams = *pParams;
    return true;
}

void CCustomGPUDewarper::UpdateWallMesh()
{
    const bool bMoved = pParams->fMountTilt != pLastDrawnParams->fMountTilt ||
                        pParams->fPan != pLastDrawnParams->fPan ||
                        pParams->bStrictTiltLimits != pLastDrawnParams->bStrictTiltLimits;
    if (bMoved && IsWallPanorama(*pParams))
        pPanoramaWall->Regenerate(pGeometry, pParams);
}

void CCustomGPUDewarper::ComputeProjection(int nWidth, int nHeight)
{
    const float a = static_cast<float>(nWidth) / static_cast<float>(nHeight);
    const bool bUpright = nRotation == 0 || nRotation == 180;
    float g = pActiveViewObject->GetGeometryAspect(pParams);
    if (!bUpright)
        g = 1.0f / g;
    const float t = std::tan(pParams->fZoom / 180.0f * 3.1415927f * 0.25f);
    const float f = a <= g ? g / a : 1.0f;
    float m = pActiveViewObject->GetScaleMultiplier(pParams);
    if (!bUpright)
        m = m / g;
    const float s = f * m;
    pActiveViewObject->SetProjectionMatrix(pMatrices, -(t * a * s), t * a * s, -(t * s), t * s, NEAR_PLANE,
                                           FAR_PLANE);
}

void CCustomGPUDewarper::UploadMVP()
{
    glUseProgram(sMainShader.nProgram);
    glUniformMatrix4fv(sMainShader.nMVPMatrixLocation, 1, GL_FALSE, pMatrices->fMVP);
}

bool CCustomGPUDewarper::AdjustPTZ()
{
    float fAspect = 1.0f;
    if (pParams->nImageHeight != 0) {
        const float w = static_cast<float>(pParams->nImageWidth);
        const float h = static_cast<float>(pParams->nImageHeight);
        fAspect = nRotation == 90 || nRotation == 270 ? h / w : w / h;
    }
    if (pActiveViewObject != nullptr)
        pActiveViewObject->AdjustPTZ(pGeometry, pParams, pMatrices, fAspect, nRotation);
    return true;
}
