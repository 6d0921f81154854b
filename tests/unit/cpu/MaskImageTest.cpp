#include "dewarp/cpu/MaskImage.h"

#include "dewarp/geometry/CustomGPUGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using TPolygons = std::vector<SGPolygon>;

static SGPolygon RandomPolygon(std::mt19937& rRandom, int nWidth, int nHeight)
{
    SGPolygon sPolygon;
    const unsigned int nPoints = 3 + static_cast<unsigned int>(rRandom() % 9);
    for (unsigned int i = 0; i < nPoints; ++i)
        sPolygon.vPoints.push_back(
            {static_cast<int>(rRandom() % static_cast<unsigned int>(2 * nWidth)) - nWidth / 2,
             static_cast<int>(rRandom() % static_cast<unsigned int>(2 * nHeight)) - nHeight / 2});
    sPolygon.nColor = static_cast<unsigned int>(rRandom()) | 1;
    return sPolygon;
}

/// How far a point lies outside of a triangle, in pixels; 0 inside.
static double Outside(const double (&aX)[3], const double (&aY)[3], double x, double y)
{
    const double fTurn = (aX[1] - aX[0]) * (aY[2] - aY[0]) - (aX[2] - aX[0]) * (aY[1] - aY[0]);
    double fFarthest = 0.0;
    for (int i = 0; i < 3; ++i) {
        const int k = (i + 1) % 3;
        const double fSide = (aX[k] - aX[i]) * (y - aY[i]) - (aY[k] - aY[i]) * (x - aX[i]);
        fFarthest = std::max(fFarthest,
                             -std::copysign(fSide, fSide * fTurn) / std::hypot(aX[k] - aX[i], aY[k] - aY[i]));
    }
    return fFarthest;
}

TEST(MaskImage, CoversEveryMiddleThatATriangleOfTheMeshHolds)
{
    std::mt19937 oRandom(11);
    const int nWidth = 97;
    const int nHeight = 61;
    for (int nCase = 0; nCase < 200; ++nCase) {
        SGPolygon sPolygon = RandomPolygon(oRandom, nWidth, nHeight);
        sPolygon.nColor = 0x336699FF;
        CMaskImage oImage;
        CCustomGPUGeometry oGeometry;
        oGeometry.GenerateFisheyeMaskVertices(sPolygon, nWidth, nHeight);
        ASSERT_EQ(oImage.Paint({sPolygon}, nWidth, nHeight), oGeometry.m_nVertexCount > 0);
        for (int y = 0; y < nHeight; ++y)
            for (int x = 0; x < nWidth; ++x) {
                double fNearest = 1e9;
                for (int i = 0; i < oGeometry.m_nVertexCount; i += 3) {
                    double aX[3];
                    double aY[3];
                    for (int k = 0; k < 3; ++k) {
                        const float* p = oGeometry.m_pVertices + 3 * (i + k);
                        aX[k] = (static_cast<double>(p[0]) + 1.0) / 2.0 * nWidth;
                        aY[k] = (1.0 - static_cast<double>(p[1])) / 2.0 * nHeight;
                    }
                    if (std::fabs((aX[1] - aX[0]) * (aY[2] - aY[0]) - (aX[2] - aX[0]) * (aY[1] - aY[0])) >
                        0.5)
                        fNearest = std::min(fNearest, Outside(aX, aY, x + 0.5, y + 0.5));
                }
                const bool bCovered = oImage.At(x, y) != 0;
                if (fNearest < 0.006) {
                    ASSERT_TRUE(bCovered) << nCase << ": " << x << ", " << y;
                } else if (fNearest > 0.009) {
                    ASSERT_FALSE(bCovered) << nCase << ": " << x << ", " << y;
                }
                ASSERT_EQ(oImage.At(x, y), bCovered ? 0xFF996633U : 0U);
            }
    }
}

TEST(MaskImage, PaintsMasksOverEachOtherInTheirOrder)
{
    const TPolygons vMasks = {{{{5, 5}, {5, 45}, {55, 45}, {55, 5}}, 0xFF000080},
                              {{{30, 20}, {30, 60}, {80, 60}, {80, 20}}, 0x00FF40FF},
                              {{{40, 10}, {40, 70}, {70, 70}, {70, 10}}, 0x2060FF30},
                              {{{0, 0}, {96, 0}, {96, 80}, {0, 80}}, 0x00FF0000},
                              {{{1, 1}, {2, 2}}, 0xFFFFFFFF}};
    CMaskImage oImage;
    ASSERT_TRUE(oImage.Paint(vMasks, 96, 80));
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 96; ++x) {
            std::uint32_t anWanted[4] = {};
            for (std::size_t n = 0; n < 3; ++n) {
                const SGPoint sFrom = vMasks[n].vPoints[0];
                const SGPoint sTo = vMasks[n].vPoints[2];
                if (x < sFrom.x || x >= sTo.x || y < sFrom.y || y >= sTo.y)
                    continue;
                const double fAlpha = (vMasks[n].nColor & 255) / 255.0;
                for (int i = 0; i < 3; ++i)
                    anWanted[i] = static_cast<std::uint32_t>(std::lround(
                        anWanted[i] * (1.0 - fAlpha) + (vMasks[n].nColor >> (24 - 8 * i) & 255) * fAlpha));
                anWanted[3] = std::max(anWanted[3], vMasks[n].nColor & 255);
            }
            ASSERT_EQ(oImage.At(x, y), anWanted[0] | anWanted[1] << 8 | anWanted[2] << 16 | anWanted[3] << 24)
                << x << ", " << y;
        }
}

TEST(MaskImage, AnswersForRectanglesWhatTheirTexelsSay)
{
    std::mt19937 oRandom(12);
    const int nWidth = 150;
    const int nHeight = 130;
    for (int nCase = 0; nCase < 60; ++nCase) {
        TPolygons vMasks;
        for (int i = 0; i < nCase % 4; ++i)
            vMasks.push_back(RandomPolygon(oRandom, nWidth, nHeight));
        CMaskImage oImage;
        if (!oImage.Paint(vMasks, nWidth, nHeight))
            continue;
        for (int i = 0; i < 300; ++i) {
            const int x0 = static_cast<int>(oRandom() % nWidth);
            const int y0 = static_cast<int>(oRandom() % nHeight);
            const int x1 = std::min(nWidth - 1, x0 + static_cast<int>(oRandom() % 40));
            const int y1 = std::min(nHeight - 1, y0 + static_cast<int>(oRandom() % 40));
            std::vector<std::uint32_t> vTexels(static_cast<std::size_t>((x1 - x0 + 1) * (y1 - y0 + 1)), 5);
            oImage.Read(x0, y0, x1, y1, vTexels.data());
            std::size_t n = 0;
            bool bSame = true;
            for (int y = y0; y <= y1; ++y)
                for (int x = x0; x <= x1; ++x) {
                    ASSERT_EQ(vTexels[n], oImage.At(x, y));
                    bSame = bSame && vTexels[n] == vTexels[0];
                    ++n;
                }
            std::uint32_t nColour = 0;
            const ELayerClass eClass = oImage.Classify(x0, y0, x1, y1, nColour);
            ASSERT_EQ(eClass, !bSame ? LAYER_MIXED : vTexels[0] == 0 ? LAYER_NONE : LAYER_SOLID);
            ASSERT_TRUE(eClass != LAYER_SOLID || nColour == vTexels[0]);
        }
    }
}

TEST(MaskImage, AFrameWithAMaskThatHasNoMeshIsNotShown)
{
    CMaskImage oImage;
    EXPECT_TRUE(oImage.Paint({{{{1, 1}, {9, 1}, {5, 9}}, 0xFF}}, 50, 50));
    EXPECT_FALSE(oImage.Paint({{{{1, 1}, {9, 1}, {5, 9}}, 0xFF}}, 0, 50));
    EXPECT_TRUE(oImage.Paint({{{{1, 1}, {9, 1}}, 0xFF}}, 50, 50));
    EXPECT_TRUE(oImage.IsEmpty());
    EXPECT_TRUE(oImage.Paint({}, 50, 50));
    EXPECT_EQ(oImage.At(4, 4), 0U);
}

TEST(MaskImage, TakesMemoryByItsEdgesNotByTheFrame)
{
    CMaskImage oImage;
    ASSERT_TRUE(oImage.Paint({{{{100, 100}, {15000, 200}, {14000, 400}, {300, 500}}, 0xFF}}, 16384, 16384));
    EXPECT_LT(oImage.CountBytes(), 100000U);
}
