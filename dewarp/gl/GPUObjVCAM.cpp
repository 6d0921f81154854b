#include "dewarp/gl/GPUObjVCAM.h"

#include "dewarp/views/ViewList.h"

#include <cstring>

CCGPUObjVCAM::CCGPUObjVCAM() : CCGPUObjView(FindView(VIEW_VCAM, MOUNT_CEILING)) {}

void CCGPUObjVCAM::OnMouseMove(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                               SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    OnMouseMoveWithoutgluUnProject(pFrom, pTo, pParams, pMatrices, pShader);
}

void CCGPUObjVCAM::OnMouseMoveWithoutgluUnProject(SGPoint* pFrom, SGPoint* pTo, SDewarpParams* pParams,
                                                  SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    CCGPUObjView::OnMouseMove(pFrom, pTo, pParams, pMatrices, pShader);
}

void CCGPUObjVCAM::DrawArrays(SDewarpParams* pParams, SDewarpMatrices* pMatrices, SShaderProperties* pShader)
{
    if (pParams->eViewType != VIEW_VCAM_QUAD || pParams->eMountType == MOUNT_WALL) {
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
        return;
    }
    SViewPart aParts[MAX_VIEW_PARTS];
    const int nParts = m_pView->Parts(*pParams, *pMatrices, m_fGeometryAspect, m_bTopDownTarget, aParts);
    for (int i = 0; i < nParts; ++i) {
        const SViewPart& rPart = aParts[i];
        std::memcpy(m_fQuadMatrix, rPart.fMVP, sizeof m_fQuadMatrix);
        glUniformMatrix4fv(pShader->nMVPMatrixLocation, 1, GL_FALSE, m_fQuadMatrix);
        glViewport(rPart.nX, rPart.nY, rPart.nWidth, rPart.nHeight);
        glDrawArrays(m_nPrimitiveMode, 0, m_nVertexCount);
    }
    glViewport(0, 0, 2 * aParts[0].nWidth, 2 * aParts[0].nHeight);
}

float CCGPUObjVCAM::GetEyeDistance(SDewarpParams* /*pParams*/)
{
    return m_pView->EyeDistance(m_fEyeDistance);
}
