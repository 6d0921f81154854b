#include "MeshChecks.h"

#include "tests/support/HeapCounter.h"

#include <algorithm>
#include <random>

TEST(MultiPanoramaMesh, CountsAspectsAndBufferSizes)
{
    CCustomGPUGeometry oGeometry;
    EXPECT_EQ(oGeometry.GenerateDualPanoramaVertices(LENS_DSL419, 0.0f, 0.0f, 1920, 1920), 13500);
    EXPECT_EQ(oGeometry.m_nVertexCount, 13500);
    EXPECT_EQ(oGeometry.m_nBufferSize, 13500);
    EXPECT_EQ(oGeometry.m_nTempGridSize, 11780);
    EXPECT_EQ(oGeometry.m_nSinCosSize, 76);
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 2.5f);
    EXPECT_EQ(oGeometry.GenerateTriplePanoramaVertices(LENS_DSL419, 0.0f, 0.0f, 1920, 1920), 20160);
    EXPECT_EQ(oGeometry.m_nVertexCount, 20160);
    EXPECT_EQ(oGeometry.m_nBufferSize, 20160);
    EXPECT_EQ(oGeometry.m_nTempGridSize, 17670);
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 2.5f);
}

TEST(MultiPanoramaMesh, DualStripsTouchInTheMiddle)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateDualPanoramaVertices(LENS_DSL215, 12.0f, 5.0f, 2144, 1944);
    const float* pLastRow = oGeometry.m_pTempGrid + 30 * 380;
    for (int c = 0; c < 76; ++c)
        EXPECT_NEAR(pLastRow[5 * c], 0.0f, 1e-7f);
    EXPECT_EQ(oGeometry.m_pTempGrid[0], -0.8f);
    EXPECT_EQ(oGeometry.m_pTempGrid[38 * 5], 0.8f);
}

/// Texture coordinate where the equidistant lens sees a direction: x right, y up in the image, z along the
/// axis.
static SMeshVertex SeenBy(double x, double y, double z)
{
    const double fRadius = std::atan2(std::hypot(x, y), z) / std::acos(0.0);
    const double fLength = std::hypot(x, y);
    return {0.0f, 0.0f, 0.0f, static_cast<float>(0.5 + 0.5 * fRadius * x / fLength),
            static_cast<float>(0.5 - 0.5 * fRadius * y / fLength)};
}

TEST(MultiPanoramaMesh, RowsAreCirclesAroundATiltedAxis)
{
    // Without rotation a row is the circle of directions (-sin e cos a, -cos e, -sin e sin a).
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateDualPanoramaVertices(LENS_UNKNOWN, 0.0f, -20.0f, 1000, 1000);
    for (int r = 0; r < 31; ++r) {
        const double e = (54.0 - 20.0 + 2.4 * r) * std::acos(-1.0) / 180.0;
        for (int c = 1; c < 37; ++c) {
            const double a = -c * std::acos(-1.0) / 74.0;
            const SMeshVertex s =
                SeenBy(-std::sin(e) * std::cos(a), -std::cos(e), -std::sin(e) * std::sin(a));
            const float* pPoint = oGeometry.m_pTempGrid + 380 * static_cast<std::ptrdiff_t>(r) + 5 * c;
            EXPECT_NEAR(pPoint[3], s.u, 2e-6f);
            EXPECT_NEAR(pPoint[4], s.v, 2e-6f);
        }
    }
}

TEST(MultiPanoramaMesh, TripleWithoutOffsetTurnsTheLeftStripAQuarter)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateTriplePanoramaVertices(LENS_DSL239, 30.0f, 0.0f, 3360, 3000);
    const double a = 3360.0 / 3000.0;
    for (int n = 0; n < 6660; ++n) {
        const SMeshVertex sLeft = VertexAt(oGeometry, n);
        const SMeshVertex sMiddle = VertexAt(oGeometry, 13500 + n);
        ASSERT_FLOAT_EQ(sMiddle.x, sLeft.x + 0.8f);
        ASSERT_EQ(sMiddle.y, sLeft.y);
        ASSERT_NEAR(sMiddle.u, 0.5 - (double(sLeft.v) - 0.5) / a, 1e-6);
        ASSERT_NEAR(sMiddle.v, 0.5 + (double(sLeft.u) - 0.5) * a, 1e-6);
    }
}

TEST(MultiPanoramaMesh, TripleWithOffsetTakesTheMiddleStripFromALevelView)
{
    CCustomGPUGeometry oTriple;
    CCustomGPUGeometry oLevel;
    oTriple.GenerateTriplePanoramaVertices(LENS_DSL418, 30.0f, -12.0f, 2144, 1944);
    // The middle strip's rotation is a quarter turn further; the view's angle counts the other way.
    oLevel.GenerateDualPanoramaVertices(LENS_DSL418, 30.0f - 90.0f, 0.0f, 2144, 1944);
    for (int n = 0; n < 6660; ++n) {
        const SMeshVertex sMiddle = VertexAt(oTriple, 13500 + n);
        const SMeshVertex sLevel = VertexAt(oLevel, n);
        ASSERT_NEAR(sMiddle.u, sLevel.u, 2e-6f);
        ASSERT_NEAR(sMiddle.v, sLevel.v, 2e-6f);
        ASSERT_GE(sMiddle.x, -0.4f - 1e-6f);
        ASSERT_LE(sMiddle.x, 0.4f + 1e-6f);
    }
}

TEST(MultiPanoramaMesh, RaysOffTheLensSampleItsRim)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateDualPanoramaVertices(LENS_DSL215, 0.0f, 150.0f, 1920, 1920);
    for (int n = 0; n < oGeometry.m_nVertexCount; ++n) {
        const SMeshVertex s = VertexAt(oGeometry, n);
        ASSERT_LE(std::hypot(s.u - 0.5f, s.v - 0.5f), 0.5f + 1e-6f);
    }
}

TEST(MultiPanoramaMesh, EqualsThePlainTranscriptionForAnyViewLensAndSize)
{
    std::mt19937 oRandom(20240501);
    std::uniform_real_distribution<float> oPan(-720.0f, 720.0f);
    std::uniform_real_distribution<float> oTilt(-60.0f, 60.0f);
    std::uniform_int_distribution<int> oSide(2, 4096);
    std::uniform_int_distribution<std::size_t> oLens(0, ALL_LENSES.size() - 1);
    CCustomGPUGeometry oGeometry;
    SPlainMesh sMesh;
    for (int i = 0; i < 1500; ++i) {
        const int nLens = ALL_LENSES[oLens(oRandom)];
        const int nWidth = oSide(oRandom);
        const int nHeight = oSide(oRandom);
        const float fPan = i % 7 == 0 ? 90.0f * static_cast<float>(i % 11 - 5) : oPan(oRandom);
        const float fTilt = i % 5 == 0 ? 0.0f : oTilt(oRandom);
        if (i % 2 == 0) {
            oGeometry.GenerateDualPanoramaVertices(nLens, fPan, fTilt, nWidth, nHeight);
            PlainDualPanorama(nLens, fPan, fTilt, nWidth, nHeight, sMesh);
        } else {
            oGeometry.GenerateTriplePanoramaVertices(nLens, fPan, fTilt, nWidth, nHeight);
            PlainTriplePanorama(nLens, fPan, fTilt, nWidth, nHeight, sMesh);
        }
        ASSERT_TRUE(SameBits(oGeometry, sMesh)) << "lens " << nLens << " pan " << fPan << " tilt " << fTilt
                                                << " size " << nWidth << "x" << nHeight;
    }
}

TEST(MultiPanoramaMesh, MovingTheViewAllocatesNothing)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateTriplePanoramaVertices(LENS_DSL419, 0.0f, 1.0f, 1920, 1920);
    CHeapCounter oCounter;
    for (int i = 0; i < 20; ++i) {
        const float fAngle = static_cast<float>(i);
        oGeometry.GenerateDualPanoramaVertices(LENS_DSL419, fAngle, -fAngle, 1920, 1920);
        oGeometry.GenerateTriplePanoramaVertices(LENS_DSL419, fAngle, -fAngle, 1920, 1920);
    }
    EXPECT_EQ(oCounter.Count(), 0);
}
