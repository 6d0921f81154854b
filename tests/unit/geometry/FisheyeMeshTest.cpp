#include "MeshChecks.h"

#include <vector>

TEST(FisheyeMesh, RectangleIsTwoTrianglesOverTheWholeFrame)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateFisheyeVertices(640, 480);
    ASSERT_EQ(oGeometry.m_nVertexCount, 6);
    EXPECT_EQ(oGeometry.m_nImageWidth, 640);
    EXPECT_EQ(oGeometry.m_nImageHeight, 480);
    const float a = 640.0f / 480.0f;
    EXPECT_EQ(oGeometry.m_fGeometryAspect, a);
    EXPECT_EQ(std::vector<float>(oGeometry.m_pVertices, oGeometry.m_pVertices + 18),
              (std::vector<float>{-a, 1, 0, -a, -1, 0, a, -1, 0, a, -1, 0, a, 1, 0, -a, 1, 0}));
    EXPECT_EQ(std::vector<float>(oGeometry.m_pTexCoords, oGeometry.m_pTexCoords + 12),
              (std::vector<float>{0, 0, 0, 1, 1, 1, 1, 1, 1, 0, 0, 0}));
}

TEST(FisheyeMesh, FanHasACentreAndAClosedRim)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateCircularFisheyeVertices(LENS_DSL215, 2144, 1944);
    ASSERT_EQ(oGeometry.m_nVertexCount, 182);
    EXPECT_EQ(oGeometry.m_nImageWidth, 2144);
    EXPECT_EQ(oGeometry.m_nImageHeight, 1944);
    const SMeshVertex sCentre = VertexAt(oGeometry, 0);
    EXPECT_EQ(sCentre.x, 0.0f);
    EXPECT_EQ(sCentre.y, 0.0f);
    EXPECT_EQ(sCentre.u, 0.5f);
    EXPECT_EQ(sCentre.v, 0.5f);
    const SMeshVertex sFirst = VertexAt(oGeometry, 1);
    const SMeshVertex sLast = VertexAt(oGeometry, 181);
    EXPECT_NEAR(sFirst.x, sLast.x, 1e-6);
    EXPECT_NEAR(sFirst.y, sLast.y, 1e-6);
}

TEST(FisheyeMesh, SquareFrameCutsTheFanAtItsEdges)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateCircularFisheyeVertices(LENS_DSL419, 1920, 1920);
    EXPECT_EQ(oGeometry.m_fRadius, 960.0f);
    int nCut = 0;
    for (int k = 0; k <= 180; ++k) {
        const double t = 2.0 * k * std::acos(-1.0) / 180.0;
        const double fX = 1.02 * std::cos(t);
        const double fY = 1.02 * std::sin(t);
        const SMeshVertex s = VertexAt(oGeometry, k + 1);
        EXPECT_NEAR(s.x, std::fmin(std::fmax(fX, -1.0), 1.0), 1e-6);
        EXPECT_NEAR(s.y, std::fmin(std::fmax(fY, -1.0), 1.0), 1e-6);
        EXPECT_NEAR(s.u, 0.5 + 0.5 * double(s.x), 1e-6);
        EXPECT_NEAR(s.v, 0.5 - 0.5 * double(s.y), 1e-6);
        EXPECT_EQ(s.z, 0.0f);
        nCut += std::fabs(s.x) == 1.0f || std::fabs(s.y) == 1.0f ? 1 : 0;
    }
    // acos(1 / 1.02) is 11.4 degrees: five points either side of each of four edges, and the edge's middle;
    // the point at 0 degrees comes twice.
    EXPECT_EQ(nCut, 4 * 11 + 1);
}

TEST(FisheyeMesh, WideLensReachesPastTheFrameAndIsCutThere)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateCircularFisheyeVertices(LENS_DSL215, 2144, 1944);
    const float a = 2144.0f / 1944.0f;
    EXPECT_NEAR(a, 1.1029f, 1e-4f);
    EXPECT_EQ(VertexAt(oGeometry, 1).x, a);
    EXPECT_EQ(VertexAt(oGeometry, 1).u, 1.0f);
    EXPECT_EQ(VertexAt(oGeometry, 91).x, -a);
    const double s = 2.0 * 1093.44 / 1944.0;
    EXPECT_GT(s, double(a));
    // At 20 degrees nothing is cut.
    const double t = 20.0 * std::acos(-1.0) / 180.0;
    EXPECT_NEAR(VertexAt(oGeometry, 11).x, s * std::cos(t), 1e-6);
    EXPECT_NEAR(VertexAt(oGeometry, 11).y, s * std::sin(t), 1e-6);
}

TEST(FisheyeMesh, EmptyCircleKeepsItsPoints)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateCircularFisheyeVertices(LENS_DSL239, 0, 480);
    EXPECT_EQ(oGeometry.m_nVertexCount, 182);
    for (int n = 1; n < 182; ++n) {
        EXPECT_EQ(VertexAt(oGeometry, n).x, 0.0f);
        EXPECT_EQ(VertexAt(oGeometry, n).u, 0.5f);
    }
}

TEST(FisheyeMesh, MeshesEqualThePlainTranscription)
{
    CCustomGPUGeometry oGeometry;
    SPlainMesh sMesh;
    for (int nLens : ALL_LENSES) {
        for (int nWidth : {2, 75, 640, 1920, 3360}) {
            for (int nHeight : {2, 75, 480, 1920, 3000}) {
                oGeometry.GenerateCircularFisheyeVertices(nLens, nWidth, nHeight);
                PlainCircularFisheye(nLens, nWidth, nHeight, sMesh);
                EXPECT_TRUE(SameBits(oGeometry, sMesh)) << nLens << " " << nWidth << "x" << nHeight;
            }
        }
    }
}
