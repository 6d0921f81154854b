#include "dewarp/geometry/CustomGPUGeometry.h"

#include "PolygonCases.h"

#include <gtest/gtest.h>

#include <limits>

static SGPolygon Polygon(TPoints vPoints)
{
    SGPolygon sPolygon;
    sPolygon.vPoints = std::move(vPoints);
    sPolygon.nColor = 0xFF000080;
    return sPolygon;
}

// Position of one vertex in pixels again, in twice the precision.
static double PixelX(const CCustomGPUGeometry& oGeometry, int nVertex, int nWidth)
{
    return (static_cast<double>(oGeometry.m_pVertices[3 * nVertex]) + 1.0) / 2.0 * nWidth;
}

static double PixelY(const CCustomGPUGeometry& oGeometry, int nVertex, int nHeight)
{
    return (1.0 - static_cast<double>(oGeometry.m_pVertices[3 * nVertex + 1])) / 2.0 * nHeight;
}

static double MeshArea(const CCustomGPUGeometry& oGeometry, int nWidth, int nHeight)
{
    double fSum = 0.0;
    for (int i = 0; i < oGeometry.m_nVertexCount; i += 3) {
        const double fAX = PixelX(oGeometry, i, nWidth);
        const double fAY = PixelY(oGeometry, i, nHeight);
        fSum +=
            std::fabs((PixelX(oGeometry, i + 1, nWidth) - fAX) * (PixelY(oGeometry, i + 2, nHeight) - fAY) -
                      (PixelY(oGeometry, i + 1, nHeight) - fAY) * (PixelX(oGeometry, i + 2, nWidth) - fAX));
    }
    return fSum;
}

TEST(MaskMesh, CornersOfTheImageAreCornersOfTheView)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateFisheyeMaskVertices(Polygon({{0, 0}, {640, 0}, {640, 480}}), 640, 480);
    ASSERT_EQ(oGeometry.m_nVertexCount, 3);
    static const float POSITIONS[] = {-1.0f, 1.0f, 0.0f, 1.0f, 1.0f, 0.0f, 1.0f, -1.0f, 0.0f};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(oGeometry.m_pVertices[i], POSITIONS[i]) << i;
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(oGeometry.m_pTexCoords[i], 0.0f) << i;
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 640.0f / 480.0f);
    EXPECT_EQ(oGeometry.m_nImageWidth, 640);
    EXPECT_EQ(oGeometry.m_nImageHeight, 480);
}

TEST(MaskMesh, FewerThanThreePointsLeaveNoMeshNotEvenThePreviousOne)
{
    CCustomGPUGeometry oGeometry;
    for (const TPoints& vPoints : {TPoints{}, TPoints{{1, 1}}, TPoints{{1, 1}, {5, 5}}}) {
        oGeometry.GenerateFisheyeMaskVertices(Polygon({{0, 0}, {10, 0}, {0, 10}, {10, 10}}), 100, 50);
        EXPECT_EQ(oGeometry.m_nVertexCount, 6);
        oGeometry.GenerateFisheyeMaskVertices(Polygon(vPoints), 100, 50);
        EXPECT_EQ(oGeometry.m_nVertexCount, 0);
    }
}

TEST(MaskMesh, AnImageWithoutSizeHasNoMask)
{
    static const int SIZES[][2] = {{0, 100}, {100, 0}, {-640, 480}, {640, -480}, {0, 0}};
    CCustomGPUGeometry oGeometry;
    for (const auto& anSize : SIZES) {
        oGeometry.GenerateFisheyeMaskVertices(Polygon({{0, 0}, {10, 0}, {0, 10}}), 100, 50);
        oGeometry.GenerateFisheyeMaskVertices(Polygon({{0, 0}, {10, 0}, {0, 10}}), anSize[0], anSize[1]);
        EXPECT_EQ(oGeometry.m_nVertexCount, 0);
        EXPECT_EQ(oGeometry.m_fGeometryAspect, 2.0f);
    }
}

TEST(MaskMesh, ReservesGenerouslyForFewPointsAndExactlyForMany)
{
    TRandom oRandom(1);
    CCustomGPUGeometry oFew;
    oFew.GenerateFisheyeMaskVertices(Polygon(StarShaped(oRandom, 8, 300)), 640, 480);
    EXPECT_EQ(oFew.m_nBufferSize, 8 * 8 * 3);
    CCustomGPUGeometry oMany;
    oMany.GenerateFisheyeMaskVertices(Polygon(Ribbon(oRandom, 65534, 3000)), 640, 480);
    EXPECT_EQ(oMany.m_nBufferSize, 3 * 65532);
    EXPECT_EQ(oMany.m_nVertexCount, 3 * 65532);
}

TEST(MaskMesh, EverySimplePolygonKeepsItsArea)
{
    TRandom oRandom(2);
    CCustomGPUGeometry oGeometry;
    for (int i = 0; i < 300; ++i) {
        TPoints vPoints = i % 2 == 0 ? StarShaped(oRandom, Between(oRandom, 5, 80), 1400)
                                     : Ribbon(oRandom, Between(oRandom, 4, 80), 700);
        if (i % 3 == 0)
            std::reverse(vPoints.begin(), vPoints.end());
        oGeometry.GenerateFisheyeMaskVertices(Polygon(vPoints), 2048, 1536);
        ASSERT_EQ(oGeometry.m_nVertexCount, 3 * static_cast<int>(vPoints.size() - 2));
        const double fArea = std::fabs(static_cast<double>(OutlineArea(vPoints)));
        // Positions are floats: some millionths of the area.
        ASSERT_NEAR(MeshArea(oGeometry, 2048, 1536), fArea, fArea * 2e-5 + 1.0);
    }
}

TEST(MaskMesh, TheLargestCoordinatesStayFinite)
{
    const int nLow = std::numeric_limits<int>::min();
    const int nHigh = std::numeric_limits<int>::max();
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateFisheyeMaskVertices(
        Polygon({{nLow, nLow}, {nHigh, nLow}, {0, 0}, {nHigh, nHigh}, {nLow, nHigh}}), 1, 1);
    ASSERT_EQ(oGeometry.m_nVertexCount, 9);
    for (int i = 0; i < 27; ++i)
        EXPECT_TRUE(std::isfinite(oGeometry.m_pVertices[i]));
}
