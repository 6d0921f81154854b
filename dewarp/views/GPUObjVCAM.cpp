#include "dewarp/views/GPUObjVCAM.h"

#include "dewarp/geometry/Matrix.h"
#include "dewarp/views/PTZLimits.h"

#include <algorithm>
#include <cstring>

void CCGPUObjVCAM::CheckPTZ(SDewarpParams* pParams)
{
    if (pParams->eMountType == MOUNT_WALL) {
        LimitAngle(pParams->fPan, 0.0f, 180.0f);
        LimitAngle(pParams->fTilt, 0.0f, 180.0f);
    } else if (pParams->eMountType == MOUNT_FLOOR) {
        LimitAngle(pParams->fTilt, 90.0f, 180.0f);
    } else {
        LimitAngle(pParams->fTilt, 0.0f, 90.0f);
    }
    LimitZoom(pParams->fZoom);
}

void CCGPUObjVCAM::AdjustPTZ(CCustomGPUGeometry* /*pGeometry*/, SDewarpParams* pParams,
                             SDewarpMatrices* pMatrices, float /*fAspect*/, int /*nRotation*/)
{
    float* m = pMatrices->fModel;
    const float a = 90.0f - pParams->fPan;
    switch (static_cast<int>(pParams->eMountType)) {
    case MOUNT_WALL:
        rotateM(m, 0, -(pParams->fTilt - 90.0f), 1.0f, 0.0f, 0.0f);
        rotateM(m, 0, a, 0.0f, 1.0f, 0.0f);
        break;
    case MOUNT_CEILING:
        rotateM(m, 0, pParams->fTilt, -1.0f, 0.0f, 0.0f);
        rotateM(m, 0, a, 0.0f, 0.0f, 1.0f);
        break;
    case MOUNT_FLOOR:
        rotateM(m, 0, -(180.0f - pParams->fTilt), -1.0f, 0.0f, 0.0f);
        rotateM(m, 0, a, 0.0f, 0.0f, 1.0f);
        break;
    default:
        break;
    }
}

void CCGPUObjVCAM::OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                               SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    OnMouseMoveWithoutgluUnProject(pFrom, pTo, pParams, pMatrices, pShader);
}

void CCGPUObjVCAM::OnMouseMoveWithoutgluUnProject(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                                  SDewarpMatrices* pMatrices, SShaderProperties* /*pShader*/)
{
    const int nSmaller = std::min(pMatrices->nViewportWidth, pMatrices->nViewportHeight);
    const float s = pParams->fZoom / static_cast<float>(nSmaller);
    pParams->fPan = pParams->fPan + s * DragPixels(pFrom->x, pTo->x);
    pParams->fTilt = pParams->fTilt + s * DragPixels(pFrom->y, pTo->y);
}

void CCGPUObjVCAM::SetProjectionMatrix(SDewarpMatrices* pMatrices, float fLeft, float fRight, float fBottom,
                                       float fTop, float fNear, float fFar)
{
    const float l = fLeft * fNear;
    const float r = fRight * fNear;
    const float b = fBottom * fNear;
    const float t = fTop * fNear;
    if (l == r || b == t || !(fFar > 0.0f) || !(fNear > 0.0f) || fNear == fFar)
        return;
    float* m = pMatrices->fProjection;
    for (int i = 0; i < 16; ++i)
        m[i] = 0.0f;
    m[0] = 2.0f * fNear / (r - l);
    m[5] = 2.0f * fNear / (t - b);
    // The factor 2 stands here and not in the next line; both are 0 for the symmetric bounds of every frame.
    m[8] = 2.0f * (r + l) / (r - l);
    m[9] = (t + b) / (t - b);
    m[10] = (fNear + fFar) / (fNear - fFar);
    m[11] = -1.0f;
    m[14] = 2.0f * fNear * fFar / (fNear - fFar);
}

void CCGPUObjVCAM::DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    if (pParams->eViewType == VIEW_VCAM_QUAD && pParams->eMountType != MOUNT_WALL)
        DrawQuad(*pMatrices, *pShader);
    else
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
}

void CCGPUObjVCAM::DrawQuad(const SDewarpMatrices& rMatrices, const SShaderProperties& rShader)
{
    std::memcpy(m_fQuadMatrix, rMatrices.fMVP, sizeof(m_fQuadMatrix));
    const int w2 = rMatrices.nViewportWidth / 2;
    const int h2 = rMatrices.nViewportHeight / 2;
    const int nUpperRow = m_bTopDownTarget ? rMatrices.nViewportHeight - 2 * h2 : h2;
    const int nLowerRow = m_bTopDownTarget ? rMatrices.nViewportHeight - h2 : 0;
    // Top left, top right, bottom right, bottom left: clockwise, each turned by a further quarter.
    const int aQuarters[4][2] = {{0, nUpperRow}, {w2, nUpperRow}, {w2, nLowerRow}, {0, nLowerRow}};
    for (const int(&aOrigin)[2] : aQuarters) {
        rotateM(m_fQuadMatrix, 0, -90.0f, 0.0f, 0.0f, 1.0f);
        glUniformMatrix4fv(rShader.nMVPMatrixLocation, 1, GL_FALSE, m_fQuadMatrix);
        glViewport(aOrigin[0], aOrigin[1], w2, h2);
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
    }
    glViewport(0, 0, 2 * w2, 2 * h2);
}

void CCGPUObjVCAM::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    if (m_nVertexCount != 0)
        return;
    pGeometry->GenerateVCAMVertices(pParams->eLensType, pParams->nImageWidth, pParams->nImageHeight);
    UploadMesh(*pGeometry);
}

float CCGPUObjVCAM::GetEyeDistance(SDewarpParams* /*pParams*/)
{
    return m_fEyeDistance;
}
