#include "AssertionCatcher.h"
#include "MeshChecks.h"

#include "dewarp/geometry/VCAMBuild.h"

#include <algorithm>
#include <memory>
#include <vector>

/// Largest distance of a vertex from the unit sphere, and its largest third coordinate.
struct SSphereFit
{
    float fOffSphere = 0.0f;
    float fMaxZ = -1.0f;
};

static SSphereFit FitSphere(const CCustomGPUGeometry& oGeometry)
{
    SSphereFit sFit;
    for (int n = 0; n < oGeometry.m_nVertexCount; ++n) {
        const SMeshVertex s = VertexAt(oGeometry, n);
        sFit.fOffSphere =
            std::max(sFit.fOffSphere, std::fabs(std::sqrt(s.x * s.x + s.y * s.y + s.z * s.z) - 1.0f));
        sFit.fMaxZ = std::max(sFit.fMaxZ, s.z);
    }
    return sFit;
}

TEST(VCAMMesh, SizesByTheThousandStayOnTheSphere)
{
    CCustomGPUGeometry oGeometry;
    std::vector<int> vSides = {2, 3, 4, 5, 7, 10, 16, 31, 63, 100, 128, 255, 480, 512, 640, 719, 992};
    for (int n = 1056; n < 3400; n += 131)
        vSides.push_back(n);
    for (int nLens : ALL_LENSES) {
        for (int nWidth : vSides) {
            for (int nHeight : vSides) {
                oGeometry.GenerateVCAMVertices(nLens, nWidth, nHeight);
                ASSERT_GT(oGeometry.m_nVertexCount, 0);
                ASSERT_EQ(oGeometry.m_nVertexCount % 12, 0);
                const SSphereFit sFit = FitSphere(oGeometry);
                // Seam vertices are moved onto the axes after they were projected.
                ASSERT_LT(sFit.fOffSphere, 1e-6f) << nLens << " " << nWidth << "x" << nHeight;
                // The rim lies a rounding of 90 degrees behind the plane.
                ASSERT_LT(sFit.fMaxZ, 1e-7f) << nLens << " " << nWidth << "x" << nHeight;
            }
        }
    }
}

TEST(VCAMMesh, FrameSizesOfKnownCamerasBuild)
{
    CCustomGPUGeometry oGeometry;
    const int SIZES[][2] = {{1056, 960},  {2144, 1944}, {1488, 1360},   {528, 480},   {1056, 992},
                            {2080, 1960}, {1472, 1384}, {544, 512},     {2528, 2376}, {3200, 3000},
                            {3360, 3000}, {2240, 2000}, {1568, 1400},   {1120, 1000}, {672, 600},
                            {2992, 2992}, {1920, 1920}, {16384, 16384}, {16384, 2},   {2, 16384}};
    SPlainMesh sMesh;
    for (int nLens : ALL_LENSES) {
        for (const int* pSize : SIZES) {
            oGeometry.GenerateVCAMVertices(nLens, pSize[0], pSize[1]);
            PlainVCAM(nLens, pSize[0], pSize[1], sMesh);
            EXPECT_TRUE(SameBits(oGeometry, sMesh)) << nLens << " " << pSize[0] << "x" << pSize[1];
        }
    }
}

/// A generator as a build finds it: tables and scratch buffers ready.
static std::unique_ptr<CCustomGPUGeometry> Prepared(int nLens, int nWidth, int nHeight)
{
    auto pGeometry = std::make_unique<CCustomGPUGeometry>();
    pGeometry->DetermineRadius(nLens, nWidth, nHeight);
    pGeometry->GenerateR2ThetaMapping(nLens);
    pGeometry->CheckTemporaryGridBuffer(1922);
    pGeometry->m_pVCAMVertices = new float[36000 * 5];
    return pGeometry;
}

static CVCAMBuild StartBuild(CCustomGPUGeometry& oGeometry)
{
    return CVCAMBuild(oGeometry,
                      std::min(0.5f * static_cast<float>(oGeometry.m_nImageWidth), oGeometry.m_fRadius),
                      std::min(0.5f * static_cast<float>(oGeometry.m_nImageHeight), oGeometry.m_fRadius));
}

TEST(VCAMMesh, BandsKeepToTheirRoom)
{
    int nLargest = 0;
    for (int nLens : {LENS_DSL239, LENS_DSL419, LENS_UNKNOWN}) {
        for (int nWidth = 2; nWidth < 4000; nWidth = nWidth * 5 / 4 + 1) {
            for (int nHeight = 2; nHeight < 4000; nHeight = nHeight * 5 / 4 + 1) {
                const auto pGeometry = Prepared(nLens, nWidth, nHeight);
                CVCAMBuild oBuild = StartBuild(*pGeometry);
                oBuild.FillGrid();
                int nBefore = 0;
                for (int j = 0; j < CVCAMBuild::nBands; ++j) {
                    oBuild.BuildBand(j);
                    nLargest = std::max(nLargest, 3 * (oBuild.CountTriangles() - nBefore));
                    nBefore = oBuild.CountTriangles();
                }
            }
        }
    }
    EXPECT_LE(nLargest, CVCAMBuild::nBandVertices);
    EXPECT_GT(nLargest, 0);
}

TEST(VCAMMesh, SquareFrameGridSpansTheCircle)
{
    const auto pGeometry = Prepared(LENS_DSL419, 1920, 1920);
    CVCAMBuild oBuild = StartBuild(*pGeometry);
    oBuild.FillGrid();
    const float* pGrid = pGeometry->m_pTempGrid;
    for (int j = 0; j < 31; ++j) {
        for (int i = 0; i < 31; ++i, pGrid += 2) {
            EXPECT_NEAR(pGrid[0], -960.0f + 32.0f * static_cast<float>(i), 1e-3f);
            EXPECT_NEAR(pGrid[1], 960.0f - 32.0f * static_cast<float>(j), 1e-3f);
            EXPECT_EQ(pGrid[0] == 0.0f, i == 30);
            EXPECT_EQ(pGrid[1] == 0.0f, j == 30);
        }
    }
    for (int j = 0; j < CVCAMBuild::nBands; ++j)
        oBuild.BuildBand(j);
    // A band starts where the circle meets its lower row; a pixel offset d is stretched by 1.5 - d / (2 R),
    // which leaves the circle itself in place.
    for (int j = 0; j < 30; ++j) {
        const double y = 960.0 - 32.0 * (j + 1);
        const double fEdge = -std::sqrt(960.0 * 960.0 - y * y);
        const float* pFirst = pGeometry->m_pVCAMVertices + 600 * 5 * static_cast<std::ptrdiff_t>(j);
        EXPECT_NEAR(pFirst[3], (fEdge + 961.0) / 1920.0, 1e-6);
        EXPECT_NEAR(pFirst[4], (960.0 - y) / 1920.0, 1e-6);
        EXPECT_NEAR(pFirst[2], 0.0, 1e-5);
    }
}

TEST(VCAMMesh, FrameNarrowerThanTheCircleHoldsTheEdgeAtItsSide)
{
    const auto pGeometry = Prepared(LENS_DSL419, 1080, 1920);
    CVCAMBuild oBuild = StartBuild(*pGeometry);
    oBuild.FillGrid();
    EXPECT_EQ(pGeometry->m_pTempGrid[0], -540.0f);
    EXPECT_EQ(pGeometry->m_pTempGrid[1], 960.0f);
    for (int j = 0; j < CVCAMBuild::nBands; ++j)
        oBuild.BuildBand(j);
    // The last bands lie where the circle is wider than the frame: their first vertex is the frame's edge,
    // pushed outwards by the stretch and held at u = 1 / W (the half width has one pixel added).
    const float* pFirst = pGeometry->m_pVCAMVertices + 600 * 5 * 29;
    EXPECT_NEAR(pFirst[3], 1.0f / 1080.0f, 1e-6f);
}

TEST(VCAMMesh, HalvesAndQuartersAreMirrorImages)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateVCAMVertices(LENS_DSL215, 2144, 1944);
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 1.0f);
    EXPECT_EQ(oGeometry.m_pVCAMVertices, nullptr);
    double fSumX = 0.0;
    double fSumY = 0.0;
    int nOnAxisX = 0;
    int nOnAxisY = 0;
    for (int n = 0; n < oGeometry.m_nVertexCount; ++n) {
        const SMeshVertex s = VertexAt(oGeometry, n);
        fSumX += double(s.x);
        fSumY += double(s.y);
        if (s.x == 0.0f) {
            EXPECT_EQ(s.u, 0.5f);
            ++nOnAxisX;
        }
        if (s.y == 0.0f) {
            EXPECT_EQ(s.v, 0.5f);
            ++nOnAxisY;
        }
        // The upper half of the sphere is the first half of the list.
        if (n < oGeometry.m_nVertexCount / 2)
            ASSERT_GE(s.y, 0.0f);
        else
            ASSERT_LE(s.y, 0.0f);
    }
    EXPECT_NEAR(fSumX, 0.0, 1e-6);
    EXPECT_NEAR(fSumY, 0.0, 1e-6);
    EXPECT_GE(nOnAxisX, 4 * 30 * 3);
    EXPECT_GE(nOnAxisY, 4 * 30 * 2);
}

TEST(VCAMMesh, WindingIsTheSameWithinAHalf)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateVCAMVertices(LENS_DSL419, 1920, 1920);
    int anTurns[2][2] = {{0, 0}, {0, 0}};
    for (int n = 0; n < oGeometry.m_nVertexCount; n += 3) {
        const SMeshVertex a = VertexAt(oGeometry, n);
        const SMeshVertex b = VertexAt(oGeometry, n + 1);
        const SMeshVertex c = VertexAt(oGeometry, n + 2);
        const double fArea = (double(b.x) - double(a.x)) * (double(c.y) - double(a.y)) -
                             (double(b.y) - double(a.y)) * (double(c.x) - double(a.x));
        if (std::fabs(fArea) > 1e-6)
            ++anTurns[n < oGeometry.m_nVertexCount / 2 ? 0 : 1][fArea > 0.0 ? 1 : 0];
    }
    EXPECT_EQ(anTurns[0][0], 0);
    EXPECT_EQ(anTurns[1][1], 0);
    EXPECT_GT(anTurns[0][1], 2000);
    EXPECT_EQ(anTurns[0][1], anTurns[1][0]);
}

static void ExpectColumnAssertion(CVCAMBuild& oBuild, int nBand)
{
    try {
        oBuild.BuildBand(nBand);
        FAIL() << "no assertion";
    } catch (const SAssertion& s) {
        EXPECT_EQ(s.strFile, "dewarp/CustomGPUGeometry");
        EXPECT_EQ(s.strFunction, "void CCustomGPUGeometry::GenerateVCAMVertices(int, int, int)");
        EXPECT_EQ(s.strExpression, "nGridPointIndex < nGridCols");
    }
}

TEST(VCAMMesh, BandWithoutAColumnInsideTheCircleStopsTheProgram)
{
    const auto pGeometry = Prepared(LENS_DSL419, 1920, 1920);
    CVCAMBuild oBuild = StartBuild(*pGeometry);
    oBuild.FillGrid();
    for (int i = 0; i < 31; ++i)
        pGeometry->m_pTempGrid[2 * i] = -5000.0f;
    ExpectColumnAssertion(oBuild, 0);
}

TEST(VCAMMesh, WalkPastTheLastColumnStopsTheProgram)
{
    const auto pGeometry = Prepared(LENS_DSL419, 1920, 1920);
    CVCAMBuild oBuild = StartBuild(*pGeometry);
    oBuild.FillGrid();
    // Every column inside the circle, and none reaches the circle's edge at the row above.
    for (int i = 0; i < 31; ++i)
        pGeometry->m_pTempGrid[2 * i] = -100.0f + static_cast<float>(i);
    ExpectColumnAssertion(oBuild, 0);
}
