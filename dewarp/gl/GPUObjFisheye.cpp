#include "dewarp/gl/GPUObjFisheye.h"

#include "dewarp/geometry/MeshBuild.h"
#include "dewarp/views/ViewList.h"

CCGPUObjFisheye::CCGPUObjFisheye(bool bCircular)
    : CCGPUObjView(FindView(bCircular ? VIEW_FISHEYE_CIRCULAR : VIEW_FISHEYE, MOUNT_CEILING))
{
    if (bCircular)
        m_nPrimitiveMode = GL_TRIANGLE_FAN;
}

void CCGPUObjFisheye::Activate(CCustomGPUGeometry* pGeometry, SDewarpParams* pParams)
{
    const float fAspect =
        static_cast<float>(pParams->nImageWidth) / static_cast<float>(pParams->nImageHeight);
    if (m_nVertexCount != 0 && fAspect == m_fGeometryAspect)
        return;
    const bool bFan = m_nPrimitiveMode == GL_TRIANGLE_FAN;
    const SMeshKey sKey = MeshKeyOf(bFan ? MESH_FISHEYE_CIRCULAR : MESH_FISHEYE, *pParams);
    m_sBuiltFor = SMeshKey();
    BuildMesh(*pGeometry, sKey);
    UploadMesh(*pGeometry);
    if (m_nVertexCount != 0)
        m_sBuiltFor = sKey;
}
