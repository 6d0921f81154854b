#include "dewarp/geometry/MeshBuild.h"

#include "MeshChecks.h"

#include <limits>
#include <vector>

namespace
{

/// Every field different, and none at its default.
SDewarpParams SomeParams()
{
    SDewarpParams sParams;
    sParams.fPan = 31.5f;
    sParams.fTilt = -12.25f;
    sParams.fZoom = 90.0f;
    sParams.fMountTilt = 7.5f;
    sParams.bStrictTiltLimits = false;
    sParams.eMountType = MOUNT_CEILING;
    sParams.eViewType = VIEW_PANORAMA_DUAL;
    sParams.eLensType = LENS_DSL239;
    sParams.nImageWidth = 1120;
    sParams.nImageHeight = 1000;
    sParams.nImageStride = 1152;
    return sParams;
}

using FGenerate = void (*)(CCustomGPUGeometry&, const SDewarpParams&);

/// A mesh, what it depends on, and the generator call that makes it.
struct SMeshCase
{
    EViewMesh eMesh;
    bool bLens;
    bool bPan;
    bool bTilt;
    bool bWall; ///< mount tilt and strictness
    FGenerate pGenerate;
};

const SMeshCase CASES[] = {
    {MESH_FISHEYE, false, false, false, false,
     [](CCustomGPUGeometry& o, const SDewarpParams& s) {
         o.GenerateFisheyeVertices(s.nImageWidth, s.nImageHeight);
     }},
    {MESH_FISHEYE_CIRCULAR, true, false, false, false,
     [](CCustomGPUGeometry& o, const SDewarpParams& s) {
         o.GenerateCircularFisheyeVertices(s.eLensType, s.nImageWidth, s.nImageHeight);
     }},
    {MESH_VCAM, true, false, false, false,
     [](CCustomGPUGeometry& o, const SDewarpParams& s) {
         o.GenerateVCAMVertices(s.eLensType, s.nImageWidth, s.nImageHeight);
     }},
    {MESH_PANORAMA, true, false, false, false,
     [](CCustomGPUGeometry& o, const SDewarpParams& s) {
         o.GeneratePanoramaVertices(s.eLensType, s.nImageWidth, s.nImageHeight);
     }},
    {MESH_PANORAMA_WALL, true, true, false, true,
     [](CCustomGPUGeometry& o, const SDewarpParams& s) {
         o.GeneratePanoramaWallVertices(s.eLensType, s.fMountTilt, s.fPan, s.bStrictTiltLimits, s.nImageWidth,
                                        s.nImageHeight);
     }},
    {MESH_PANORAMA_DUAL, true, true, true, false,
     [](CCustomGPUGeometry& o, const SDewarpParams& s) {
         o.GenerateDualPanoramaVertices(s.eLensType, s.fPan, s.fTilt, s.nImageWidth, s.nImageHeight);
     }},
    {MESH_PANORAMA_TRIPLE, true, true, true, false,
     [](CCustomGPUGeometry& o, const SDewarpParams& s) {
         o.GenerateTriplePanoramaVertices(s.eLensType, s.fPan, s.fTilt, s.nImageWidth, s.nImageHeight);
     }},
};

void ExpectSameMesh(const CCustomGPUGeometry& oLeft, const CCustomGPUGeometry& oRight)
{
    ASSERT_EQ(oLeft.m_nVertexCount, oRight.m_nVertexCount);
    ASSERT_GT(oLeft.m_nVertexCount, 0);
    EXPECT_EQ(oLeft.m_fGeometryAspect, oRight.m_fGeometryAspect);
    const std::size_t n = static_cast<std::size_t>(oLeft.m_nVertexCount);
    EXPECT_EQ(std::memcmp(oLeft.m_pVertices, oRight.m_pVertices, n * 3 * sizeof(float)), 0);
    EXPECT_EQ(std::memcmp(oLeft.m_pTexCoords, oRight.m_pTexCoords, n * 2 * sizeof(float)), 0);
}

} // namespace

TEST(MeshKey, BuildsTheMeshOfTheParameters)
{
    for (const SMeshCase& rCase : CASES) {
        SCOPED_TRACE(rCase.eMesh);
        const SDewarpParams sParams = SomeParams();
        CCustomGPUGeometry oBuilt;
        CCustomGPUGeometry oExpected;
        BuildMesh(oBuilt, MeshKeyOf(rCase.eMesh, sParams));
        rCase.pGenerate(oExpected, sParams);
        ExpectSameMesh(oBuilt, oExpected);
    }
}

TEST(MeshKey, ChangesWithWhatTheMeshDependsOnAndWithNothingElse)
{
    for (const SMeshCase& rCase : CASES) {
        SCOPED_TRACE(rCase.eMesh);
        const SMeshKey sKey = MeshKeyOf(rCase.eMesh, SomeParams());
        EXPECT_TRUE(sKey == MeshKeyOf(rCase.eMesh, SomeParams()));
        const auto Changes = [&](auto fnChange) {
            SDewarpParams sParams = SomeParams();
            fnChange(sParams);
            return !(MeshKeyOf(rCase.eMesh, sParams) == sKey);
        };
        EXPECT_TRUE(Changes([](SDewarpParams& s) { ++s.nImageWidth; }));
        EXPECT_TRUE(Changes([](SDewarpParams& s) { ++s.nImageHeight; }));
        EXPECT_EQ(Changes([](SDewarpParams& s) { s.eLensType = LENS_DSL215; }), rCase.bLens);
        EXPECT_EQ(Changes([](SDewarpParams& s) { s.fPan += 1.0f; }), rCase.bPan);
        EXPECT_EQ(Changes([](SDewarpParams& s) { s.fTilt += 1.0f; }), rCase.bTilt);
        EXPECT_EQ(Changes([](SDewarpParams& s) { s.fMountTilt += 1.0f; }), rCase.bWall);
        EXPECT_EQ(Changes([](SDewarpParams& s) { s.bStrictTiltLimits = true; }), rCase.bWall);
        EXPECT_FALSE(Changes([](SDewarpParams& s) { s.fZoom += 1.0f; }));
        EXPECT_FALSE(Changes([](SDewarpParams& s) { s.eMountType = MOUNT_WALL; }));
        EXPECT_FALSE(Changes([](SDewarpParams& s) { s.eViewType = VIEW_VCAM; }));
        EXPECT_FALSE(Changes([](SDewarpParams& s) { ++s.nImageStride; }));
    }
}

TEST(MeshKey, TellsMeshesOfTheSameParametersApart)
{
    for (const SMeshCase& rLeft : CASES) {
        for (const SMeshCase& rRight : CASES)
            EXPECT_EQ(MeshKeyOf(rLeft.eMesh, SomeParams()) == MeshKeyOf(rRight.eMesh, SomeParams()),
                      rLeft.eMesh == rRight.eMesh);
    }
}

TEST(MeshKey, AnglesAreTheSameWhenTheirBitsAre)
{
    SDewarpParams sParams = SomeParams();
    for (float SDewarpParams::*pAngle : {&SDewarpParams::fPan, &SDewarpParams::fTilt}) {
        sParams.*pAngle = std::numeric_limits<float>::quiet_NaN();
        EXPECT_TRUE(MeshKeyOf(MESH_PANORAMA_DUAL, sParams) == MeshKeyOf(MESH_PANORAMA_DUAL, sParams));
        sParams.*pAngle = 0.0f;
        const SMeshKey sZero = MeshKeyOf(MESH_PANORAMA_DUAL, sParams);
        sParams.*pAngle = -0.0f;
        EXPECT_FALSE(MeshKeyOf(MESH_PANORAMA_DUAL, sParams) == sZero);
    }
}

TEST(MeshKey, NoMeshDependsOnNothingAndHasNoVertices)
{
    for (const int nMesh : {int(MESH_NONE), -1, 8, 1234}) {
        const SMeshKey sKey = MeshKeyOf(static_cast<EViewMesh>(nMesh), SomeParams());
        EXPECT_TRUE(sKey == SMeshKey());
        CCustomGPUGeometry oGeometry;
        oGeometry.GenerateFisheyeVertices(640, 480);
        BuildMesh(oGeometry, sKey);
        EXPECT_EQ(oGeometry.m_nVertexCount, 0);
        EXPECT_EQ(oGeometry.m_fGeometryAspect, 1.0f);
    }
}
