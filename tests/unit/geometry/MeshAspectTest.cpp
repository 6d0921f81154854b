#include "MeshChecks.h"

#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/MeshBuild.h"

TEST(MeshAspect, IsWhatTheGeneratorLeaves)
{
    const int SIZES[][2] = {{1920, 1920}, {3360, 3000}, {641, 480}, {480, 641}, {1, 3}, {0, 7}, {7, 0}};
    for (const int(&anSize)[2] : SIZES) {
        for (const int nLens : ALL_LENSES) {
            for (int nMesh = MESH_NONE; nMesh <= MESH_PANORAMA_TRIPLE; ++nMesh) {
                SMeshKey sKey;
                sKey.eMesh = static_cast<EViewMesh>(nMesh);
                sKey.eLens = static_cast<ELensType>(nLens);
                sKey.nImageWidth = anSize[0];
                sKey.nImageHeight = anSize[1];
                CCustomGPUGeometry oGeometry;
                oGeometry.m_fGeometryAspect = -3.0f;
                BuildMesh(oGeometry, sKey);
                EXPECT_TRUE(
                    SameBits(MeshAspect(sKey.eMesh, anSize[0], anSize[1]), oGeometry.m_fGeometryAspect))
                    << "mesh " << nMesh << " lens " << nLens << " " << anSize[0] << "x" << anSize[1];
            }
        }
    }
}

TEST(MeshAspect, FlatFisheyesHaveTheFramesAspectAndTheRestTheirOwn)
{
    EXPECT_EQ(MeshAspect(MESH_FISHEYE, 641, 480), 641.0f / 480.0f);
    EXPECT_EQ(MeshAspect(MESH_FISHEYE_CIRCULAR, 641, 480), 641.0f / 480.0f);
    EXPECT_EQ(MeshAspect(MESH_FISHEYE, 641, 0), 1.0f);
    EXPECT_EQ(MeshAspect(MESH_NONE, 641, 480), 1.0f);
    EXPECT_EQ(MeshAspect(MESH_VCAM, 641, 480), 1.0f);
    EXPECT_EQ(MeshAspect(MESH_PANORAMA, 641, 480), 7.142857f);
    EXPECT_EQ(MeshAspect(MESH_PANORAMA_WALL, 641, 480), 2.5f);
    EXPECT_EQ(MeshAspect(MESH_PANORAMA_DUAL, 641, 480), 2.5f);
    EXPECT_EQ(MeshAspect(MESH_PANORAMA_TRIPLE, 641, 480), 2.5f);
    EXPECT_EQ(MeshAspect(static_cast<EViewMesh>(77), 641, 480), 1.0f);
}
