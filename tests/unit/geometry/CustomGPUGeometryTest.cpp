#include "MeshChecks.h"

#include "tests/support/HeapCounter.h"

#include <limits>
#include <type_traits>
#include <vector>

static_assert(!std::is_copy_constructible_v<CCustomGPUGeometry>);
static_assert(!std::is_polymorphic_v<CCustomGPUGeometry>);

TEST(CustomGPUGeometry, StartsEmpty)
{
    const CCustomGPUGeometry oGeometry;
    EXPECT_EQ(oGeometry.m_pR2ThetaMapping, nullptr);
    EXPECT_EQ(oGeometry.m_pTheta2rMapping, nullptr);
    EXPECT_EQ(oGeometry.m_nR2ThetaLensType, -1);
    EXPECT_EQ(oGeometry.m_nTheta2rLensType, -1);
    EXPECT_EQ(oGeometry.m_pVertices, nullptr);
    EXPECT_EQ(oGeometry.m_pTexCoords, nullptr);
    EXPECT_EQ(oGeometry.m_nVertexCount, 0);
    EXPECT_EQ(oGeometry.m_nBufferSize, 0);
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 1.0f);
}

TEST(CustomGPUGeometry, BuffersGrowToTheSizeAskedForAndNeverShrink)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.CheckBufferSize(10);
    EXPECT_EQ(oGeometry.m_nBufferSize, 10);
    for (int i = 0; i < 30; ++i)
        oGeometry.m_pVertices[i] = static_cast<float>(i);
    for (int i = 0; i < 20; ++i)
        oGeometry.m_pTexCoords[i] = static_cast<float>(-i);
    const float* pVertices = oGeometry.m_pVertices;
    for (int n : {10, 7, 0, -3}) {
        oGeometry.CheckBufferSize(n);
        EXPECT_EQ(oGeometry.m_nBufferSize, 10);
        EXPECT_EQ(oGeometry.m_pVertices, pVertices);
        EXPECT_EQ(oGeometry.m_pVertices[29], 29.0f);
        EXPECT_EQ(oGeometry.m_pTexCoords[19], -19.0f);
    }
    CHeapCounter oCounter;
    oGeometry.CheckBufferSize(11);
    EXPECT_EQ(oCounter.Count(), 2);
    EXPECT_EQ(oGeometry.m_nBufferSize, 11);
}

TEST(CustomGPUGeometry, ScratchBuffersGrowInTheSameWay)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.CheckTemporaryGridBuffer(100);
    oGeometry.CheckSinCosBufferSize(76);
    EXPECT_EQ(oGeometry.m_nTempGridSize, 100);
    EXPECT_EQ(oGeometry.m_nSinCosSize, 76);
    const float* pGrid = oGeometry.m_pTempGrid;
    const float* pSin = oGeometry.m_pSin;
    const float* pCos = oGeometry.m_pCos;
    oGeometry.CheckTemporaryGridBuffer(99);
    oGeometry.CheckSinCosBufferSize(75);
    EXPECT_EQ(oGeometry.m_nTempGridSize, 100);
    EXPECT_EQ(oGeometry.m_nSinCosSize, 76);
    EXPECT_EQ(oGeometry.m_pTempGrid, pGrid);
    EXPECT_EQ(oGeometry.m_pSin, pSin);
    EXPECT_EQ(oGeometry.m_pCos, pCos);
    oGeometry.CheckTemporaryGridBuffer(101);
    oGeometry.CheckSinCosBufferSize(91);
    EXPECT_EQ(oGeometry.m_nTempGridSize, 101);
    EXPECT_EQ(oGeometry.m_nSinCosSize, 91);
    oGeometry.m_pTempGrid[100] = 1.0f;
    oGeometry.m_pSin[90] = 1.0f;
    oGeometry.m_pCos[90] = 1.0f;
}

TEST(CustomGPUGeometry, AddVertexAppends)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.CheckBufferSize(2);
    oGeometry.AddVertex(1.0f, 2.0f, 3.0f, 4.0f, 5.0f);
    oGeometry.AddVertex(6.0f, 7.0f, 8.0f, 9.0f, 10.0f);
    EXPECT_EQ(oGeometry.m_nVertexCount, 2);
    EXPECT_EQ(std::vector<float>(oGeometry.m_pVertices, oGeometry.m_pVertices + 6),
              (std::vector<float>{1, 2, 3, 6, 7, 8}));
    EXPECT_EQ(std::vector<float>(oGeometry.m_pTexCoords, oGeometry.m_pTexCoords + 4),
              (std::vector<float>{4, 5, 9, 10}));
}

TEST(CustomGPUGeometry, PixelTriangleBecomesDeviceCoordinatesWithYUp)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.m_nImageWidth = 640;
    oGeometry.m_nImageHeight = 480;
    oGeometry.CheckBufferSize(3);
    SGTriangle sTriangle;
    sTriangle.aCorners[0] = {0, 0};
    sTriangle.aCorners[1] = {640, 480};
    sTriangle.aCorners[2] = {160, -240};
    oGeometry.AddTriangle(sTriangle);
    EXPECT_EQ(std::vector<float>(oGeometry.m_pVertices, oGeometry.m_pVertices + 9),
              (std::vector<float>{-1, 1, 0, 1, -1, 0, -0.5f, 2, 0}));
    EXPECT_EQ(std::vector<float>(oGeometry.m_pTexCoords, oGeometry.m_pTexCoords + 6),
              (std::vector<float>(6, 0.0f)));
    EXPECT_EQ(oGeometry.m_nVertexCount, 3);
}

// Far enough outside every buffer that a write there ends the program.
static const int FAR_OUTSIDE[] = {-(1 << 27), 1 << 27, std::numeric_limits<int>::max()};

TEST(CustomGPUGeometry, VerticesWithoutABufferAreDropped)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.AddVertex(1.0f, 2.0f, 3.0f, 4.0f, 5.0f);
    EXPECT_EQ(oGeometry.m_nVertexCount, 0);
}

TEST(CustomGPUGeometry, VerticesOutsideTheBufferAreDropped)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.CheckBufferSize(2);
    for (const int nCount : FAR_OUTSIDE) {
        oGeometry.m_nVertexCount = nCount;
        oGeometry.AddVertex(1.0f, 2.0f, 3.0f, 4.0f, 5.0f);
        EXPECT_EQ(oGeometry.m_nVertexCount, nCount);
    }
    oGeometry.m_nVertexCount = 1;
    oGeometry.AddVertex(1.0f, 2.0f, 3.0f, 4.0f, 5.0f);
    oGeometry.AddVertex(6.0f, 7.0f, 8.0f, 9.0f, 10.0f);
    EXPECT_EQ(oGeometry.m_nVertexCount, 2) << "the last place is taken, the next is none";
    EXPECT_EQ(oGeometry.m_pVertices[3], 1.0f);
}

TEST(CustomGPUGeometry, PixelTrianglesWithoutABufferAreDropped)
{
    CCustomGPUGeometry oGeometry;
    SGTriangle sTriangle;
    oGeometry.AddTriangle(sTriangle);
    EXPECT_EQ(oGeometry.m_nVertexCount, 0);
}

TEST(CustomGPUGeometry, PixelTrianglesAreAddedWholeOrNotAtAll)
{
    CCustomGPUGeometry oGeometry;
    SGTriangle sTriangle;
    oGeometry.CheckBufferSize(5);
    oGeometry.AddTriangle(sTriangle);
    EXPECT_EQ(oGeometry.m_nVertexCount, 3);
    oGeometry.AddTriangle(sTriangle);
    EXPECT_EQ(oGeometry.m_nVertexCount, 3);
    for (const int nCount : FAR_OUTSIDE) {
        oGeometry.m_nVertexCount = nCount;
        oGeometry.AddTriangle(sTriangle);
        EXPECT_EQ(oGeometry.m_nVertexCount, nCount);
    }
}

/// A generator with a grid whose points are all different.
static void FillNumberedGrid(CCustomGPUGeometry& oGeometry, int nRows, int nRowStride)
{
    oGeometry.CheckTemporaryGridBuffer(nRows * nRowStride);
    for (int i = 0; i < nRows * nRowStride; ++i)
        oGeometry.m_pTempGrid[i] = static_cast<float>(i);
}

TEST(CustomGPUGeometry, GridIsCutColumnByColumn)
{
    CCustomGPUGeometry oGeometry;
    FillNumberedGrid(oGeometry, 31, 380);
    oGeometry.CheckBufferSize(13500);
    EXPECT_EQ(oGeometry.GenerateTriangles(31, 76, 380, 0), 13500);
    int nVertex = 0;
    for (int j = 0; j < 75; ++j) {
        for (int i = 0; i < 30; ++i) {
            const int anCell[6][2] = {{i, j}, {i + 1, j}, {i + 1, j + 1}, {i + 1, j + 1}, {i, j + 1}, {i, j}};
            for (const int* pCorner : anCell) {
                const float fFirst = static_cast<float>(pCorner[0] * 380 + pCorner[1] * 5);
                const SMeshVertex s = VertexAt(oGeometry, nVertex++);
                ASSERT_EQ(s.x, fFirst);
                ASSERT_EQ(s.y, fFirst + 1.0f);
                ASSERT_EQ(s.z, fFirst + 2.0f);
                ASSERT_EQ(s.u, fFirst + 3.0f);
                ASSERT_EQ(s.v, fFirst + 4.0f);
            }
        }
    }
    EXPECT_EQ(nVertex, 13500);
}

TEST(CustomGPUGeometry, GridIsWrittenFromTheFirstVertexOnAndNotBeyond)
{
    CCustomGPUGeometry oGeometry;
    FillNumberedGrid(oGeometry, 3, 20);
    oGeometry.CheckBufferSize(40);
    for (int i = 0; i < 120; ++i)
        oGeometry.m_pVertices[i] = -1.0f;
    for (int i = 0; i < 80; ++i)
        oGeometry.m_pTexCoords[i] = -1.0f;
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, 20, 7), 7 + 24);
    for (int n = 0; n < 40; ++n) {
        const SMeshVertex s = VertexAt(oGeometry, n);
        const bool bWritten = n >= 7 && n < 31;
        for (float f : {s.x, s.y, s.z, s.u, s.v})
            EXPECT_EQ(f != -1.0f, bWritten) << n;
    }
}

TEST(CustomGPUGeometry, GridWithoutCellsGivesNoVertices)
{
    CCustomGPUGeometry oGeometry;
    FillNumberedGrid(oGeometry, 3, 20);
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 1, 20, 5), 5);
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 0, 20, 5), 5);
    EXPECT_EQ(oGeometry.GenerateTriangles(1, 3, 20, 5), 5);
    EXPECT_EQ(oGeometry.GenerateTriangles(-4, -4, 20, 5), 5);
    EXPECT_EQ(oGeometry.m_pVertices, nullptr);
}

TEST(CustomGPUGeometry, GridWithoutAnOutputBufferGivesNoVertices)
{
    CCustomGPUGeometry oGeometry;
    FillNumberedGrid(oGeometry, 3, 20);
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, 20, 0), 0);
    EXPECT_EQ(oGeometry.m_pVertices, nullptr);
}

TEST(CustomGPUGeometry, OutputBufferWithoutAGridGetsNoVertices)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.CheckBufferSize(24);
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, 20, 0), 0);
}

TEST(CustomGPUGeometry, GridsThatReachOutsideABufferGiveNoVertices)
{
    const int MOST = std::numeric_limits<int>::max();
    CCustomGPUGeometry oGeometry;
    FillNumberedGrid(oGeometry, 3, 20);
    oGeometry.CheckBufferSize(24);
    oGeometry.m_pVertices[0] = -1.0f;
    for (const int nFirst : FAR_OUTSIDE)
        EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, 20, nFirst), nFirst);
    for (const int nStride : FAR_OUTSIDE)
        EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, nStride, 0), 0);
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, 20, 1), 1) << "one vertex too many";
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, 23, 0), 0) << "one float too many";
    EXPECT_EQ(oGeometry.GenerateTriangles(MOST, MOST, MOST, 0), 0);
    EXPECT_EQ(oGeometry.GenerateTriangles(MOST, MOST, 0, 0), 0);
    EXPECT_EQ(oGeometry.GenerateTriangles(2, MOST, 0, 0), 0);
    EXPECT_EQ(oGeometry.m_pVertices[0], -1.0f);
    EXPECT_EQ(oGeometry.GenerateTriangles(3, 3, 22, 0), 24)
        << "the last point ends at the last float but one";
}

TEST(CustomGPUGeometry, SphereVerticesWithoutAListAreDropped)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.AddVertex(0, 1.0f, 2.0f);
    EXPECT_EQ(oGeometry.m_pVCAMVertices, nullptr);
}

TEST(CustomGPUGeometry, SphereTrianglesWithoutAListAreDropped)
{
    CCustomGPUGeometry oGeometry;
    int nIndex = 0;
    oGeometry.AddTriangle(1.0f, 2.0f, 3.0f, 4.0f, nIndex);
    EXPECT_EQ(nIndex, 0);
}

TEST(CustomGPUGeometry, SphereQuadsWithoutAListAreDropped)
{
    CCustomGPUGeometry oGeometry;
    int nIndex = 3;
    oGeometry.AddTrianglesForQuad(1.0f, 2.0f, 3.0f, nIndex);
    EXPECT_EQ(nIndex, 3);
}

TEST(CustomGPUGeometry, CopiesWithoutAListAreDropped)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.ReplicateVertex(0, 1);
    EXPECT_EQ(oGeometry.m_pVCAMVertices, nullptr);
}

namespace
{

/// Room for some sphere vertices of a 1000 x 600 image under the equidistant lens: radius 500.
class CSphereVertices : public testing::Test
{
protected:
    CSphereVertices()
    {
        oGeometry.DetermineRadius(LENS_UNKNOWN, 1000, 600);
        oGeometry.GenerateR2ThetaMapping(LENS_UNKNOWN);
        oGeometry.m_pVCAMVertices =
            new float[5 * static_cast<std::size_t>(CCustomGPUGeometry::nVCAMBufferSize)];
    }
    std::vector<float> Vertex(int n) const
    {
        const float* p = oGeometry.m_pVCAMVertices + 5 * static_cast<std::ptrdiff_t>(n);
        return {p, p + 5};
    }
    /// What a pixel offset must become, in double precision.
    static std::vector<double> Expected(double x, double y)
    {
        const double s = 1.5 - 0.5 * std::hypot(x, y) / 500.0;
        const double fX = std::fmin(std::fmax(s * x, -500.0), 500.0);
        const double fY = std::fmin(std::fmax(s * y, -300.0), 300.0);
        const double fTheta = std::hypot(fX, fY) / 500.0 * std::acos(0.0);
        const double fPhi = std::atan2(fY, fX);
        return {std::sin(fTheta) * std::cos(fPhi), std::sin(fTheta) * std::sin(fPhi), -std::cos(fTheta),
                (fX + 501.0) / 1000.0, (300.0 - fY) / 600.0};
    }
    void ExpectVertex(int n, double x, double y) const
    {
        const std::vector<float> vVertex = Vertex(n);
        const std::vector<double> vExpected = Expected(x, y);
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_NEAR(double(vVertex[i]), vExpected[i], 1e-6) << "vertex " << n << " component " << i;
    }

    CCustomGPUGeometry oGeometry;
};

} // namespace

TEST_F(CSphereVertices, CentreLooksAlongTheAxis)
{
    oGeometry.AddVertex(3, 0.0f, 0.0f);
    EXPECT_EQ(Vertex(3), (std::vector<float>{0.0f, 0.0f, -1.0f, 501.0f / 1000.0f, 0.5f}));
}

TEST_F(CSphereVertices, OffsetsAreStretchedLimitedAndProjected)
{
    const double OFFSETS[][2] = {{-250, 0}, {-500, 0}, {-100, 200}, {-20, 299}, {30, -480}, {-353.5, 353.5}};
    for (const double* pOffset : OFFSETS) {
        oGeometry.AddVertex(0, static_cast<float>(pOffset[0]), static_cast<float>(pOffset[1]));
        ExpectVertex(0, pOffset[0], pOffset[1]);
    }
}

TEST_F(CSphereVertices, TriangleIsTheLowerHalfOfItsCell)
{
    int nIndex = 4;
    oGeometry.AddTriangle(-300.0f, 10.0f, -200.0f, 50.0f, nIndex);
    EXPECT_EQ(nIndex, 7);
    ExpectVertex(4, -300, 10);
    ExpectVertex(5, -200, 10);
    ExpectVertex(6, -200, 50);
}

TEST_F(CSphereVertices, QuadContinuesTheLastTriangle)
{
    int nIndex = 0;
    oGeometry.AddTriangle(-300.0f, 10.0f, -200.0f, 50.0f, nIndex);
    oGeometry.AddTrianglesForQuad(-100.0f, 50.0f, 10.0f, nIndex);
    EXPECT_EQ(nIndex, 9);
    EXPECT_EQ(Vertex(3), Vertex(2));
    EXPECT_EQ(Vertex(4), Vertex(1));
    ExpectVertex(5, -100, 50);
    EXPECT_EQ(Vertex(6), Vertex(4));
    ExpectVertex(7, -100, 10);
    EXPECT_EQ(Vertex(8), Vertex(5));
}

TEST_F(CSphereVertices, QuadStopsAtTheCircle)
{
    int nIndex = 0;
    oGeometry.AddTriangle(-490.0f, 10.0f, -485.0f, 50.0f, nIndex);
    oGeometry.AddTrianglesForQuad(-480.0f, 200.0f, 10.0f, nIndex);
    ExpectVertex(5, -480, 140); // 480, 140, 500
}

TEST_F(CSphereVertices, ReplicateCopiesAllFiveFloats)
{
    oGeometry.AddVertex(1, -120.0f, 40.0f);
    oGeometry.ReplicateVertex(1, 6);
    EXPECT_EQ(Vertex(6), Vertex(1));
}

TEST_F(CSphereVertices, VerticesOutsideTheListAreDropped)
{
    for (const int nOutside : FAR_OUTSIDE)
        oGeometry.AddVertex(nOutside, -120.0f, 40.0f);
    oGeometry.AddVertex(CCustomGPUGeometry::nVCAMBufferSize, -120.0f, 40.0f);
    oGeometry.AddVertex(-1, -120.0f, 40.0f);
    oGeometry.AddVertex(CCustomGPUGeometry::nVCAMBufferSize - 1, -120.0f, 40.0f);
    ExpectVertex(CCustomGPUGeometry::nVCAMBufferSize - 1, -120, 40);
}

TEST_F(CSphereVertices, TrianglesOutsideTheListAreDropped)
{
    const int nEnd = CCustomGPUGeometry::nVCAMBufferSize;
    for (const int nOutside : {FAR_OUTSIDE[0], FAR_OUTSIDE[1], FAR_OUTSIDE[2], -1, nEnd - 2}) {
        int nIndex = nOutside;
        oGeometry.AddTriangle(-300.0f, 10.0f, -200.0f, 50.0f, nIndex);
        EXPECT_EQ(nIndex, nOutside);
    }
    int nIndex = nEnd - 3;
    oGeometry.AddTriangle(-300.0f, 10.0f, -200.0f, 50.0f, nIndex);
    EXPECT_EQ(nIndex, nEnd);
    ExpectVertex(nEnd - 1, -200, 50);
}

TEST_F(CSphereVertices, QuadsOutsideTheListOrWithoutATriangleAreDropped)
{
    const int nEnd = CCustomGPUGeometry::nVCAMBufferSize;
    for (const int nOutside : {FAR_OUTSIDE[0], FAR_OUTSIDE[1], FAR_OUTSIDE[2], 0, 1, nEnd - 5}) {
        int nIndex = nOutside;
        oGeometry.AddTrianglesForQuad(-100.0f, 50.0f, 10.0f, nIndex);
        EXPECT_EQ(nIndex, nOutside);
    }
}

TEST_F(CSphereVertices, CopiesFromOrToOutsideAreDropped)
{
    oGeometry.AddVertex(1, -120.0f, 40.0f);
    for (const int nOutside : FAR_OUTSIDE) {
        oGeometry.ReplicateVertex(nOutside, 1);
        oGeometry.ReplicateVertex(1, nOutside);
    }
    ExpectVertex(1, -120, 40);
}
