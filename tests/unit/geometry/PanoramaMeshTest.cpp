#include "MeshChecks.h"

TEST(PanoramaMesh, BandComesTwiceSideBySide)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GeneratePanoramaVertices(LENS_DSL418, 1920, 1920);
    ASSERT_EQ(oGeometry.m_nVertexCount, 34080);
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 50.0f / 7.0f);
    EXPECT_EQ(oGeometry.m_nBufferSize, 34080);
    EXPECT_EQ(oGeometry.m_nTempGridSize, 15015);
    float fLeft = 0.0f;
    float fRight = 0.0f;
    for (int n = 0; n < 17040; ++n) {
        const SMeshVertex s = VertexAt(oGeometry, n);
        const SMeshVertex sCopy = VertexAt(oGeometry, n + 17040);
        ASSERT_EQ(sCopy.x, s.x + 14.285715f);
        ASSERT_EQ(sCopy.y, s.y);
        ASSERT_EQ(sCopy.z, 0.0f);
        ASSERT_EQ(sCopy.u, s.u);
        ASSERT_EQ(sCopy.v, s.v);
        fLeft = std::fmin(fLeft, s.x);
        fRight = std::fmax(fRight, sCopy.x);
        ASSERT_LE(std::fabs(s.y), 1.0f + 1e-6f);
    }
    EXPECT_EQ(fLeft, -14.285715f);
    EXPECT_NEAR(fRight, 14.285715f, 1e-5f);
}

TEST(PanoramaMesh, UnknownLensHasEvenRings)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GeneratePanoramaVertices(LENS_UNKNOWN, 1200, 1000);
    // Radius 600 over half a height of 500; the first column looks along azimuth 180 degrees: straight up.
    for (int i = 0; i < 21; ++i) {
        const double fDegrees = 90.0 - 50.4 * i / 20.0;
        const double fRing = 600.0 / 500.0 * fDegrees / 90.0;
        const float* pPoint = oGeometry.m_pTempGrid + 715 * static_cast<std::ptrdiff_t>(i);
        EXPECT_NEAR(pPoint[1], 1.0 - 0.1 * i, 1e-6);
        EXPECT_NEAR(pPoint[3], 0.5, 1e-6);
        EXPECT_NEAR(pPoint[4], 0.5 - 0.5 * fRing, 1e-6);
        // A quarter turn later it looks to one side; the frame's width is 1.2 heights.
        const double fPhi = 36.0 / 142.0 * 2.0 * std::acos(-1.0) + std::acos(-1.0);
        EXPECT_NEAR(pPoint[36 * 5 + 3], 0.5 - 0.5 * std::sin(fPhi) * fRing / 1.2, 1e-6);
        EXPECT_NEAR(pPoint[36 * 5 + 4], 0.5 + 0.5 * std::cos(fPhi) * fRing, 1e-6);
    }
}

TEST(PanoramaMesh, EqualsThePlainTranscription)
{
    CCustomGPUGeometry oGeometry;
    SPlainMesh sMesh;
    const int SIZES[][2] = {{1920, 1920}, {2144, 1944}, {640, 480}, {75, 333}, {2, 2}, {16384, 16384}};
    for (int nLens : ALL_LENSES) {
        for (const int* pSize : SIZES) {
            oGeometry.GeneratePanoramaVertices(nLens, pSize[0], pSize[1]);
            PlainPanorama(nLens, pSize[0], pSize[1], sMesh);
            EXPECT_TRUE(SameBits(oGeometry, sMesh)) << nLens << " " << pSize[0] << "x" << pSize[1];
        }
    }
}
