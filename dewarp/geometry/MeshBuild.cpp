#include "dewarp/geometry/MeshBuild.h"

#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/OpticsMesh.h"
#include "dewarp/geometry/Surface.h"

SMeshKey MeshKeyOf(EViewMesh eMesh, const SDewarpParams& sParams)
{
    SMeshKey sKey;
    const bool bSurface = IsSurfaceMesh(eMesh);
    if ((eMesh < MESH_FISHEYE || eMesh > MESH_PANORAMA_TRIPLE) && !bSurface)
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
    } else if (eMesh == MESH_PANORAMA) {
        sKey.sShape.fBandUpper = sParams.sShape.fBandUpper;
        sKey.sShape.fBandLower = sParams.sShape.fBandLower;
    } else if (bSurface) {
        sKey.fPan = sParams.fPan;
        sKey.fTilt = sParams.fTilt;
        sKey.fRoll = eMesh == MESH_PANINI ? sParams.fRoll : 0.0f;
        sKey.eMount = sParams.eMountType;
        sKey.fMountTilt = sParams.eMountType == MOUNT_WALL ? sParams.fMountTilt : 0.0f;
        sKey.sShape.fSpanX = sParams.sShape.fSpanX;
        sKey.sShape.fSpanY = sParams.sShape.fSpanY;
    }
    return sKey;
}

void BuildMesh(CCustomGPUGeometry& oGeometry, const SMeshKey& sKey)
{
    const int nWidth = sKey.nImageWidth;
    const int nHeight = sKey.nImageHeight;
    if (NeedsOpticsMesh(sKey)) {
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
