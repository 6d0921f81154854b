#include "dewarp/geometry/MeshAspect.h"

#include "dewarp/geometry/MeshInput.h"

float MeshAspect(EViewMesh eMesh, int nWidth, int nHeight)
{
    switch (eMesh) {
    case MESH_FISHEYE:
    case MESH_FISHEYE_CIRCULAR:
        return ImageAspect(nWidth, nHeight);
    case MESH_PANORAMA:
        return 7.142857f;
    case MESH_PANORAMA_WALL:
    case MESH_PANORAMA_DUAL:
    case MESH_PANORAMA_TRIPLE:
        return 2.5f;
    default:
        return 1.0f;
    }
}
