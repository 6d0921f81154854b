#include "dewarp/gl/GPUObjPolygon.h"

#include <utility>

CCGPUObjPolygon::CCGPUObjPolygon(SGPolygon sPolygon) : m_sPolygon(std::move(sPolygon)) {}

void CCGPUObjPolygon::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    if (m_sPolygon.vPoints.size() < 3)
        return;
    const float fAspect =
        static_cast<float>(pParams->nImageWidth) / static_cast<float>(pParams->nImageHeight);
    if (m_nVertexCount != 0 && fAspect == m_fGeometryAspect)
        return;
    pGeometry->GenerateFisheyeMaskVertices(m_sPolygon, pParams->nImageWidth, pParams->nImageHeight);
    UploadMesh(*pGeometry);
}
