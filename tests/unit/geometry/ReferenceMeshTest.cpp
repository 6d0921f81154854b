// Meshes against reference.txt, which an independent script computed.
#include "MeshChecks.h"

#include <fstream>
#include <sstream>
#include <string>

namespace
{

struct SReferenceCase
{
    std::string strMesh;
    int nLens = 0;
    int nWidth = 0;
    int nHeight = 0;
    float fA = 0.0f;
    float fB = 0.0f;
    bool bFixed = false;

    std::string Name() const
    {
        std::ostringstream oText;
        oText << strMesh << " lens " << nLens << " " << nWidth << "x" << nHeight << " angles " << fA << " "
              << fB << (bFixed ? " fixed span" : "");
        return oText.str();
    }
};

/// x, y, z, u, v.
using FComponents = std::array<double, 5>;

// Values are of unit scale. Both sides round sines, cosines and arctangents on their own, so each may be one
// unit in the last place off (6e-8), and a coordinate is a sum of a few products of those, scaled by up
// to 1.34 (lens 239 in a 4:3 frame).
constexpr double VERTEX_TOLERANCE = 1e-6;
// The roundings do not lean to one side: on average over a mesh less than a tenth of that remains.
constexpr double MEAN_TOLERANCE = 1e-7;

} // namespace

static void Generate(CCustomGPUGeometry& o, const SReferenceCase& s)
{
    if (s.strMesh == "fisheye")
        o.GenerateFisheyeVertices(s.nWidth, s.nHeight);
    else if (s.strMesh == "circular")
        o.GenerateCircularFisheyeVertices(s.nLens, s.nWidth, s.nHeight);
    else if (s.strMesh == "vcam")
        o.GenerateVCAMVertices(s.nLens, s.nWidth, s.nHeight);
    else if (s.strMesh == "panorama")
        o.GeneratePanoramaVertices(s.nLens, s.nWidth, s.nHeight);
    else if (s.strMesh == "dual")
        o.GenerateDualPanoramaVertices(s.nLens, s.fA, s.fB, s.nWidth, s.nHeight);
    else if (s.strMesh == "triple")
        o.GenerateTriplePanoramaVertices(s.nLens, s.fA, s.fB, s.nWidth, s.nHeight);
    else if (s.strMesh == "wall")
        o.GeneratePanoramaWallVertices(s.nLens, s.fA, s.fB, s.bFixed, s.nWidth, s.nHeight);
    else
        ADD_FAILURE() << "no such mesh: " << s.strMesh;
}

static FComponents ComponentsOf(const CCustomGPUGeometry& oGeometry, int nVertex)
{
    const SMeshVertex s = VertexAt(oGeometry, nVertex);
    return {double(s.x), double(s.y), double(s.z), double(s.u), double(s.v)};
}

/// Reads and compares what follows a case's first line.
static void CompareWithReference(std::istream& oFile, const CCustomGPUGeometry& oGeometry)
{
    constexpr int nSamples = 8;
    int nCount = 0;
    float fAspect = 0.0f;
    FComponents adExpected{};
    ASSERT_TRUE(oFile >> nCount >> fAspect);
    for (double& fSum : adExpected)
        ASSERT_TRUE(oFile >> fSum);
    ASSERT_EQ(oGeometry.m_nVertexCount, nCount);
    EXPECT_FLOAT_EQ(oGeometry.m_fGeometryAspect, fAspect);
    FComponents adSum{};
    double fWeights = 0.0;
    for (int n = 0; n < nCount; ++n) {
        const double fWeight = 1.0 + n % 97;
        const FComponents adVertex = ComponentsOf(oGeometry, n);
        fWeights += fWeight;
        for (std::size_t i = 0; i < 5; ++i)
            adSum[i] += fWeight * adVertex[i];
    }
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_NEAR(adSum[i] / fWeights, adExpected[i] / fWeights, MEAN_TOLERANCE)
            << "mean of component " << i;
    for (int k = 0; k < nSamples; ++k) {
        int nVertex = 0;
        ASSERT_TRUE(oFile >> nVertex);
        for (double& fComponent : adExpected)
            ASSERT_TRUE(oFile >> fComponent);
        ASSERT_LT(nVertex, nCount);
        const FComponents adVertex = ComponentsOf(oGeometry, nVertex);
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_NEAR(adVertex[i], adExpected[i],
                        VERTEX_TOLERANCE * std::fmax(1.0, std::fabs(adExpected[i])))
                << "vertex " << nVertex << " component " << i;
    }
}

TEST(ReferenceMesh, EveryMeshIsTheIndependentlyComputedOne)
{
    std::ifstream oFile(std::string(TEST_SOURCE_DIR) + "/golden/geometry/reference.txt");
    CCustomGPUGeometry oGeometry;
    SReferenceCase s;
    int nCases = 0;
    while (oFile >> s.strMesh >> s.nLens >> s.nWidth >> s.nHeight >> s.fA >> s.fB >> s.bFixed) {
        SCOPED_TRACE(s.Name());
        Generate(oGeometry, s);
        CompareWithReference(oFile, oGeometry);
        if (HasFatalFailure())
            return;
        ++nCases;
    }
    EXPECT_EQ(nCases, 336);
}
