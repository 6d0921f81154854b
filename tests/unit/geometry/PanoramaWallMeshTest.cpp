#include "MeshChecks.h"

#include <algorithm>
#include <random>
#include <vector>

static const float* GridPoint(const CCustomGPUGeometry& oGeometry, int r, int c)
{
    return oGeometry.m_pTempGrid + 455 * static_cast<std::ptrdiff_t>(r) + 5 * static_cast<std::ptrdiff_t>(c);
}

TEST(PanoramaWallMesh, CountAspectAndLayout)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GeneratePanoramaWallVertices(LENS_DSL419, 10.0f, 20.0f, true, 1920, 1920);
    EXPECT_EQ(oGeometry.m_nVertexCount, 48600);
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 2.5f);
    EXPECT_EQ(oGeometry.m_nTempGridSize, 41405);
    EXPECT_EQ(oGeometry.m_nSinCosSize, 91);
    EXPECT_EQ(GridPoint(oGeometry, 0, 0)[0], -1.0f);
    EXPECT_EQ(GridPoint(oGeometry, 0, 0)[1], -1.0f);
    EXPECT_NEAR(GridPoint(oGeometry, 90, 90)[0], 1.0f, 1e-6f);
    EXPECT_EQ(GridPoint(oGeometry, 90, 90)[1], 1.0f);
}

TEST(PanoramaWallMesh, WithoutTiltBothSpansAreTheSame)
{
    CCustomGPUGeometry oFixed;
    CCustomGPUGeometry oWidened;
    oFixed.GeneratePanoramaWallVertices(LENS_DSL418, 0.0f, 25.0f, true, 2144, 1944);
    oWidened.GeneratePanoramaWallVertices(LENS_DSL418, 0.0f, 25.0f, false, 2144, 1944);
    for (int n = 0; n < 48600; ++n) {
        const SMeshVertex s = VertexAt(oFixed, n);
        const SMeshVertex t = VertexAt(oWidened, n);
        ASSERT_NEAR(s.z, t.z, 1e-6f);
        ASSERT_NEAR(s.u, t.u, 2e-6f);
        ASSERT_NEAR(s.v, t.v, 2e-6f);
    }
    for (int c = 0; c < 91; ++c) {
        EXPECT_NEAR(oFixed.m_pSin[c], std::sin(-2.0 * c * std::acos(-1.0) / 180.0), 1e-6);
        EXPECT_NEAR(oFixed.m_pCos[c], std::cos(-2.0 * c * std::acos(-1.0) / 180.0), 1e-6);
    }
    // Straight ahead is the middle of the grid; the first and the last row look along the vertical.
    EXPECT_NEAR(GridPoint(oFixed, 45, 45)[2], -1.0f, 1e-6f);
    EXPECT_NEAR(GridPoint(oFixed, 0, 30)[2], 0.0f, 1e-6f);
    EXPECT_NEAR(GridPoint(oFixed, 90, 30)[2], 0.0f, 1e-6f);
}

TEST(PanoramaWallMesh, TiltWidensBothSpansByTwiceItsSize)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GeneratePanoramaWallVertices(LENS_DSL419, 10.0f, 0.0f, false, 1920, 1920);
    const double fRadian = std::acos(-1.0) / 180.0;
    for (int c = 0; c < 91; ++c) {
        const double fBeta = (10.0 - 200.0 * c / 90.0) * fRadian;
        EXPECT_NEAR(oGeometry.m_pSin[c], std::sin(fBeta), 1e-6);
        EXPECT_NEAR(oGeometry.m_pCos[c], std::cos(fBeta), 1e-6);
        for (int r = 0; r < 91; ++r) {
            const double e = (-20.0 + 200.0 * r / 90.0) * fRadian;
            const double fDepth = std::sin(10.0 * fRadian) * std::cos(e) +
                                  std::cos(10.0 * fRadian) * std::sin(e) * std::sin(fBeta);
            ASSERT_NEAR(GridPoint(oGeometry, r, c)[2], fDepth, 2e-6);
        }
    }
}

TEST(PanoramaWallMesh, NegativeTiltStartsTheRowsAtZero)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GeneratePanoramaWallVertices(LENS_DSL419, -10.0f, 0.0f, false, 1920, 1920);
    const double fRadian = std::acos(-1.0) / 180.0;
    for (int r = 0; r < 91; ++r) {
        const double e = 200.0 * r / 90.0 * fRadian;
        const double fBeta = 10.0 * fRadian;
        const double fDepth = -std::sin(10.0 * fRadian) * std::cos(e) +
                              std::cos(10.0 * fRadian) * std::sin(e) * std::sin(fBeta);
        EXPECT_NEAR(GridPoint(oGeometry, r, 0)[2], fDepth, 2e-6);
    }
}

TEST(PanoramaWallMesh, RaysBehindTheCameraSampleTheRim)
{
    for (int nLens : ALL_LENSES) {
        CCustomGPUGeometry oGeometry;
        oGeometry.GeneratePanoramaWallVertices(nLens, 40.0f, 15.0f, false, 1920, 1920);
        // Just inside the rim some tables reach a little beyond their height at 90 degrees.
        const std::vector<float> vTable = PlainTheta2r(nLens);
        const double fLargest = 0.5 * double(*std::max_element(vTable.begin(), vTable.end()));
        EXPECT_LT(fLargest, 0.505);
        int nBehind = 0;
        for (int n = 0; n < oGeometry.m_nVertexCount; ++n) {
            const SMeshVertex s = VertexAt(oGeometry, n);
            const double fRing = std::hypot(double(s.u) - 0.5, double(s.v) - 0.5);
            if (s.z > 1e-5f) {
                ASSERT_NEAR(fRing, 0.5, 1e-6);
                ++nBehind;
            } else {
                ASSERT_LE(fRing, fLargest + 1e-6);
            }
        }
        EXPECT_GT(nBehind, 5000);
    }
}

TEST(PanoramaWallMesh, EqualsThePlainTranscriptionForAnyTurnLensAndSize)
{
    std::mt19937 oRandom(7);
    std::uniform_real_distribution<float> oAngle(-90.0f, 90.0f);
    std::uniform_int_distribution<int> oSide(2, 4096);
    std::uniform_int_distribution<std::size_t> oLens(0, ALL_LENSES.size() - 1);
    CCustomGPUGeometry oGeometry;
    SPlainMesh sMesh;
    for (int i = 0; i < 250; ++i) {
        const int nLens = ALL_LENSES[oLens(oRandom)];
        const int nWidth = oSide(oRandom);
        const int nHeight = oSide(oRandom);
        const float fTilt = i % 5 == 0 ? 0.0f : oAngle(oRandom);
        const float fTurn = i % 3 == 0 ? 0.0f : oAngle(oRandom);
        const bool bFixed = i % 2 == 0;
        oGeometry.GeneratePanoramaWallVertices(nLens, fTilt, fTurn, bFixed, nWidth, nHeight);
        PlainPanoramaWall(nLens, fTilt, fTurn, bFixed, nWidth, nHeight, sMesh);
        ASSERT_TRUE(SameBits(oGeometry, sMesh)) << "lens " << nLens << " tilt " << fTilt << " turn " << fTurn
                                                << " size " << nWidth << "x" << nHeight;
    }
}
