// What no camera delivers: it may look like nothing, but it must not read or write outside an array, and no
// NaN or infinity may get into a mesh.
#include "MeshChecks.h"

#include <limits>
#include <string>
#include <vector>

constexpr float fNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float fInfinity = std::numeric_limits<float>::infinity();
constexpr int nHuge = std::numeric_limits<int>::max();
constexpr int nLowest = std::numeric_limits<int>::lowest();

static const std::vector<int> LENSES = {215, 239, 418, 419, 0, -1, -2, nHuge, nLowest};
static const std::vector<int> SIDES = {nLowest, -7, 0, 1, 2, 3, 640, 16384, nHuge};
static const std::vector<float> ANGLES = {0.0f,      -0.0f,      54.0f, 150.0f, -1e10f, 3.4e38f, -3.4e38f,
                                          fInfinity, -fInfinity, fNaN,  1e-40f, 1e30f,  -720.0f};

static void ExpectSound(const CCustomGPUGeometry& oGeometry, const std::string& strWhat)
{
    EXPECT_EQ(FirstNotFinite(oGeometry), -1) << strWhat;
    EXPECT_TRUE(std::isfinite(oGeometry.m_fGeometryAspect)) << strWhat;
}

static std::string SizeName(int nLens, int nWidth, int nHeight)
{
    return "lens " + std::to_string(nLens) + " size " + std::to_string(nWidth) + "x" +
           std::to_string(nHeight);
}

TEST(HostileInput, SizesOfAnyKindGiveSoundMeshes)
{
    CCustomGPUGeometry oGeometry;
    for (int nLens : LENSES) {
        for (int nWidth : SIDES) {
            for (int nHeight : SIDES) {
                const std::string strName = SizeName(nLens, nWidth, nHeight);
                oGeometry.GenerateFisheyeVertices(nWidth, nHeight);
                ExpectSound(oGeometry, "fisheye " + strName);
                oGeometry.GenerateCircularFisheyeVertices(nLens, nWidth, nHeight);
                ExpectSound(oGeometry, "circular " + strName);
                oGeometry.GeneratePanoramaVertices(nLens, nWidth, nHeight);
                ExpectSound(oGeometry, "panorama " + strName);
                oGeometry.GenerateDualPanoramaVertices(nLens, 12.0f, 34.0f, nWidth, nHeight);
                ExpectSound(oGeometry, "dual " + strName);
                oGeometry.GenerateTriplePanoramaVertices(nLens, 12.0f, 0.0f, nWidth, nHeight);
                ExpectSound(oGeometry, "triple, turned " + strName);
                oGeometry.GenerateTriplePanoramaVertices(nLens, 12.0f, 34.0f, nWidth, nHeight);
                ExpectSound(oGeometry, "triple, remapped " + strName);
            }
        }
    }
}

TEST(HostileInput, SizesOfAnyKindGiveSoundVirtualCameras)
{
    CCustomGPUGeometry oGeometry;
    for (int nLens : {239, 419, 0}) {
        for (int nWidth : SIDES) {
            for (int nHeight : SIDES) {
                oGeometry.GenerateVCAMVertices(nLens, nWidth, nHeight);
                ExpectSound(oGeometry, "virtual camera " + SizeName(nLens, nWidth, nHeight));
                EXPECT_EQ(oGeometry.m_nVertexCount == 0, nWidth < 1 || nHeight < 1);
            }
        }
    }
}

TEST(HostileInput, AnglesOfAnyKindGiveSoundMeshes)
{
    CCustomGPUGeometry oGeometry;
    for (float fFirst : ANGLES) {
        for (float fSecond : ANGLES) {
            const std::string strName = std::to_string(fFirst) + ", " + std::to_string(fSecond);
            oGeometry.GenerateDualPanoramaVertices(LENS_DSL215, fFirst, fSecond, 640, 480);
            ExpectSound(oGeometry, "dual " + strName);
            oGeometry.GenerateTriplePanoramaVertices(LENS_DSL418, fFirst, fSecond, 640, 480);
            ExpectSound(oGeometry, "triple " + strName);
            for (bool bFixed : {false, true}) {
                oGeometry.GeneratePanoramaWallVertices(LENS_DSL239, fFirst, fSecond, bFixed, 640, 480);
                ExpectSound(oGeometry, "wall " + strName);
            }
        }
    }
}

TEST(HostileInput, AngleThatIsNoNumberCountsAsZero)
{
    CCustomGPUGeometry oGeometry;
    SPlainMesh sMesh;
    PlainTriplePanorama(LENS_DSL419, 0.0f, 0.0f, 1920, 1920, sMesh);
    oGeometry.GenerateTriplePanoramaVertices(LENS_DSL419, fNaN, fInfinity, 1920, 1920);
    for (int n = 0; n < oGeometry.m_nVertexCount; ++n) {
        ASSERT_EQ(oGeometry.m_pTexCoords[2 * n], sMesh.vTexCoords[2 * static_cast<std::size_t>(n)]);
        ASSERT_EQ(oGeometry.m_pTexCoords[2 * n + 1], sMesh.vTexCoords[2 * static_cast<std::size_t>(n) + 1]);
    }
}

TEST(HostileInput, WallMeshStaysSoundForSizesOfAnyKind)
{
    CCustomGPUGeometry oGeometry;
    for (int nWidth : SIDES) {
        for (int nHeight : SIDES) {
            oGeometry.GeneratePanoramaWallVertices(LENS_DSL239, 10.0f, 20.0f, false, nWidth, nHeight);
            ExpectSound(oGeometry, "wall " + SizeName(239, nWidth, nHeight));
        }
    }
}

TEST(HostileInput, ImageOfHeightOneSamplesItsCentre)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateDualPanoramaVertices(LENS_DSL419, 10.0f, 20.0f, 640, 1);
    for (int n = 0; n < 2 * oGeometry.m_nVertexCount; ++n)
        ASSERT_EQ(oGeometry.m_pTexCoords[n], 0.5f);
}

TEST(HostileInput, PrimitivesWithoutAnImageStaySound)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.CheckBufferSize(3);
    SGTriangle sTriangle;
    sTriangle.aCorners[1] = {nHuge, nLowest};
    oGeometry.AddTriangle(sTriangle);
    ExpectSound(oGeometry, "triangle");

    oGeometry.m_pVCAMVertices = new float[5];
    for (int nSide : {0, 100}) {
        oGeometry.DetermineRadius(LENS_UNKNOWN, nSide, nSide);
        for (int nMapping = 0; nMapping < 2; ++nMapping) {
            for (float f : {0.0f, 1e30f, fNaN, fInfinity, -3.0f}) {
                oGeometry.AddVertex(0, f, 0.5f);
                for (int i = 0; i < 5; ++i)
                    EXPECT_TRUE(std::isfinite(oGeometry.m_pVCAMVertices[i])) << f << " component " << i;
            }
            oGeometry.GenerateR2ThetaMapping(LENS_UNKNOWN);
        }
    }
}
