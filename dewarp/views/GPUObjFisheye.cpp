#include "dewarp/views/GPUObjFisheye.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/views/PTZLimits.h"

#include <cmath>

void CCGPUObjFisheye::CheckPTZ(SDewarpParams* pParams)
{
    LimitAngle(pParams->fTilt, -90.0f, 90.0f);
    LimitAngle(pParams->fPan, -90.0f, 90.0f);
    LimitZoom(pParams->fZoom);
}

void CCGPUObjFisheye::AdjustPTZ(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* pParams,
                                SDewarpMatrices* pMatrices, float fAspect, int nRotation)
{
    float* m = pMatrices->fModel;
    const float y = pParams->fTilt / 90.0f;
    for (int i = 0; i < 4; ++i)
        m[12 + i] += y * m[4 + i];
    const float x = pParams->fPan * fAspect / -90.0f;
    for (int i = 0; i < 4; ++i)
        m[12 + i] += x * m[i];
    if (nRotation != 0)
        rotateM(m, 0, static_cast<float>(-nRotation), 0.0f, 0.0f, 1.0f);
}

void CCGPUObjFisheye::OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                  SDewarpMatrices* pMatrices, SShaderProperties* /*pShader*/)
{
    const float fImageAspect =
        static_cast<float>(pParams->nImageWidth) / static_cast<float>(pParams->nImageHeight);
    float fWidth = static_cast<float>(pMatrices->nViewportWidth);
    float fHeight = static_cast<float>(pMatrices->nViewportHeight);
    const float t = std::tan(pParams->fZoom / 180.0f * 3.1415927f * 0.25f);
    // The picture is fitted into the viewport; the pointer moves over the picture.
    if (fImageAspect > fWidth / fHeight)
        fHeight = fWidth / fImageAspect;
    else
        fWidth = fImageAspect * fHeight;
    const float dx = DragPixels(pFrom->x, pTo->x);
    const float dy = DragPixels(pFrom->y, pTo->y);
    pParams->fPan = pParams->fPan - t * dx * 180.0f / fWidth;
    pParams->fTilt = pParams->fTilt - t * dy * 180.0f / fHeight;
}

void CCGPUObjFisheye::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    const float fAspect =
        static_cast<float>(pParams->nImageWidth) / static_cast<float>(pParams->nImageHeight);
    if (m_nVertexCount != 0 && fAspect == m_fGeometryAspect)
        return;
    if (m_nPrimitiveMode == GL_TRIANGLE_FAN)
        pGeometry->GenerateCircularFisheyeVertices(pParams->eLensType, pParams->nImageWidth,
                                                   pParams->nImageHeight);
    else
        pGeometry->GenerateFisheyeVertices(pParams->nImageWidth, pParams->nImageHeight);
    UploadMesh(*pGeometry);
}
