#include "dewarp/geometry/MeshBuild.h"

#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/OpticsMesh.h"

SMeshKey MeshKeyOf(EViewMesh eMesh, const SDewarpParams& sParams)
{
    SMeshKey sKey;
    if (eMesh < MESH_FISHEYE || eMesh > MESH_PANORAMA_TRIPLE)
        return sKey;
    sKey.eMesh = eMesh;
    sKey.nImageWidth = sParams.nImageWidth;
    sKey.nImageHeight = sParams.nImageHeight;
    if (eMesh != MESH_FISHEYE) {
        sKey.eLens = sParams.eLensType;
        sKey.pOptics = sParams.pOptics;
    }
    if (eMesh == MESH_PANORAMA_WALL) {
        sKey.fPan = sParams.fPan;
        sKey.fMountTilt = sParams.fMountTilt;
        sKey.bStrict = sParams.bStrictTiltLimits;
    } else if (eMesh == MESH_PANORAMA_DUAL || eMesh == MESH_PANORAMA_TRIPLE) {
        sKey.fPan = sParams.fPan;
        sKey.fTilt = sParams.fTilt;
    }
    return sKey;
}

void BuildMesh(CCustomGPUGeometry& oGeometry, const SMeshKey& sKey)
{
    const int nWidth = sKey.nImageWidth;
    const int nHeight = sKey.nImageHeight;
    if (sKey.pOptics != nullptr && IsOpticsMesh(sKey.eMesh)) {
        BuildOpticsMesh(oGeometry, sKey);
        return;
    }
    switch (sKey.eMesh) {
    case MESH_FISHEYE:
        oGeometry.GenerateFisheyeVertices(nWidth, nHeight);
        break;
    case MESH_FISHEYE_CIRCULAR:
        oGeometry.GenerateCircularFisheyeVertices(sKey.eLens, nWidth, nHeight);
        break;
    case MESH_VCAM:
        oGeometry.GenerateVCAMVertices(sKey.eLens, nWidth, nHeight);
        break;
    case MESH_PANORAMA:
        oGeometry.GeneratePanoramaVertices(sKey.eLens, nWidth, nHeight);
        break;
    case MESH_PANORAMA_WALL:
        oGeometry.GeneratePanoramaWallVertices(sKey.eLens, sKey.fMountTilt, sKey.fPan, sKey.bStrict, nWidth,
                                               nHeight);
        break;
    case MESH_PANORAMA_DUAL:
        oGeometry.GenerateDualPanoramaVertices(sKey.eLens, sKey.fPan, sKey.fTilt, nWidth, nHeight);
        break;
    case MESH_PANORAMA_TRIPLE:
        oGeometry.GenerateTriplePanoramaVertices(sKey.eLens, sKey.fPan, sKey.fTilt, nWidth, nHeight);
        break;
    default:
        oGeometry.m_nVertexCount = 0;
        oGeometry.m_fGeometryAspect = MeshAspect(MESH_NONE, nWidth, nHeight);
        break;
    }
}
