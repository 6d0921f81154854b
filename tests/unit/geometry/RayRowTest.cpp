#include "MeshChecks.h"

#include "dewarp/geometry/RayRow.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

/// A row of random rays, some of them on the axis or in the image plane.
static void FillRandomRow(std::mt19937& oRandom, SRayRow& sRow, int nRays)
{
    std::uniform_real_distribution<float> oPart(-1.0f, 1.0f);
    for (int i = 0; i < nRays; ++i) {
        sRow.fA[i] = oPart(oRandom);
        sRow.fB[i] = oPart(oRandom);
        sRow.fAxis[i] = oPart(oRandom);
        const unsigned int nKind = oRandom() % 16;
        if (nKind < 2)
            sRow.fA[i] = 0.0f;
        if (nKind == 1 || nKind == 3)
            sRow.fB[i] = -0.0f;
        if (nKind == 4)
            sRow.fAxis[i] = -0.0f;
        if (nKind == 5) {
            sRow.fA[i] *= 1e-20f;
            sRow.fB[i] *= 1e-20f;
        }
    }
}

TEST(RayRow, AllWaysGiveTheSameBits)
{
    const ERayPath eBest = BestRayPath();
    std::mt19937 oRandom(99);
    const std::vector<float> vTable = PlainTheta2r(LENS_DSL239);
    for (int i = 0; i < 20000; ++i) {
        SRayRow sExpected;
        const int nRays = 1 + static_cast<int>(oRandom() % SRayRow::nMaxRays);
        FillRandomRow(oRandom, sExpected, nRays);
        SRayRow sRow = sExpected;
        const SRayScale sScale = {0.75f, 1.25f};
        MapRayRowBy(RAY_PATH_LIBRARY, sExpected, nRays, vTable.data(), sScale);
        for (ERayPath ePath : {RAY_PATH_PORTABLE, RAY_PATH_WIDE}) {
            if (ePath > eBest)
                continue;
            MapRayRowBy(ePath, sRow, nRays, vTable.data(), sScale);
            for (int k = 0; k < nRays; ++k) {
                ASSERT_EQ(sRow.fU[k], sExpected.fU[k]) << "way " << ePath;
                ASSERT_EQ(sRow.fV[k], sExpected.fV[k]) << "way " << ePath;
            }
        }
    }
}

TEST(RayRow, RayOnTheAxisTakesTheImageCentre)
{
    const std::vector<float> vTable = PlainTheta2r(LENS_DSL418);
    for (float fAxis : {1.0f, 0.0f, -0.0f, -1.0f}) {
        SRayRow sRow;
        sRow.fAxis[0] = fAxis;
        sRow.fA[0] = -0.0f;
        MapRayRow(sRow, 1, vTable.data(), {1.0f, 1.0f});
        EXPECT_EQ(sRow.fU[0], 0.5f);
        EXPECT_EQ(sRow.fV[0], 0.5f);
    }
}

TEST(RayRow, RaysLandAtTheirFieldAngle)
{
    const std::vector<float> vTable = PlainTheta2r(LENS_UNKNOWN);
    SRayRow sRow;
    for (int i = 0; i < 91; ++i) {
        const double fTheta = 2.0 * i * std::acos(-1.0) / 180.0;
        sRow.fB[i] = static_cast<float>(0.6 * std::sin(fTheta));
        sRow.fA[i] = static_cast<float>(-0.8 * std::sin(fTheta));
        sRow.fAxis[i] = static_cast<float>(std::cos(fTheta));
    }
    MapRayRow(sRow, 90, vTable.data(), {1.0f, 2.0f});
    for (int i = 1; i < 90; ++i) {
        const double fRadius = std::fmin(2.0 * i / 90.0, 1.0);
        EXPECT_NEAR(sRow.fU[i], 0.5 + 0.5 * 0.6 * fRadius, 1e-6);
        EXPECT_NEAR(sRow.fV[i], 0.5 - 0.8 * fRadius, 1e-6);
    }
}

/// Compares own arctangents with the C library's for a block of arguments.
static int CountDifferences(const std::vector<float>& vY, const std::vector<float>& vX)
{
    std::vector<float> vAngle(vY.size());
    ComputeFieldAngles(vY.data(), vX.data(), static_cast<int>(vY.size()), vAngle.data());
    int nDifferent = 0;
    for (std::size_t i = 0; i < vY.size(); ++i)
        nDifferent += vAngle[i] != std::atan2(vY[i], vX[i]) ? 1 : 0;
    return nDifferent;
}

static float FromBits(std::uint32_t nBits)
{
    return std::bit_cast<float>(nBits);
}

// Where the library is another one, arctangents are taken from it and there is nothing to compare. Every
// float was compared once when this was written; the test takes each 997th.
TEST(RayRow, OwnArctangentIsTheLibrarysForRatiosOfAllSizes)
{
    if (BestRayPath() == RAY_PATH_LIBRARY)
        GTEST_SKIP() << "this C library computes arctangents in another way";
    std::vector<float> vY;
    for (std::uint32_t nBits = 1; nBits < 0x7f800000u; nBits += 997)
        vY.push_back(FromBits(nBits));
    EXPECT_EQ(CountDifferences(vY, std::vector<float>(vY.size(), 1.0f)), 0);
    EXPECT_EQ(CountDifferences(vY, std::vector<float>(vY.size(), -1.0f)), 0);
}

TEST(RayRow, OwnArctangentIsTheLibrarysForAnyPair)
{
    if (BestRayPath() == RAY_PATH_LIBRARY)
        GTEST_SKIP() << "this C library computes arctangents in another way";
    std::mt19937 oRandom(3);
    std::vector<float> vY;
    std::vector<float> vX;
    while (vY.size() < 2000000) {
        const float y = FromBits(oRandom() & 0x7fffffffu);
        const float x = FromBits(static_cast<std::uint32_t>(oRandom()));
        if (!std::isfinite(x) || !std::isfinite(y) || (x == 0.0f && y == 0.0f))
            continue;
        vY.push_back(y);
        vX.push_back(x);
    }
    EXPECT_EQ(CountDifferences(vY, vX), 0);
}
