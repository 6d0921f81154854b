#include "dewarp/lenses/GivenLens.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace
{

const float INFINITE = std::numeric_limits<float>::infinity();

/// A lens of its own rows.
struct SOwnLens
{
    std::vector<float> vAngles;
    std::vector<float> vHeights;

    SGivenLens Lens() const
    {
        SGivenLens sLens;
        sLens.vDomain = vAngles;
        sLens.vRange = vHeights;
        return sLens;
    }
    std::string Fault() const { return FindLensFault(Lens()); }
};

/// Rows that can be drawn with: the ideal lens in other units.
SOwnLens GoodLens()
{
    return {{0.0f, 20.0f, 50.0f, 89.5f, 92.0f}, {0.0f, 40.0f, 100.0f, 179.0f, 184.0f}};
}

} // namespace

TEST(GivenLens, NumbersFindTheirLensAndOthersTheIdealOne)
{
    for (const int nLens : {215, 239, 418, 419})
        EXPECT_EQ(FindLens(nLens).eType, nLens);
    for (const int nLens : {0, -1, -2, 1, 214, 1234, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(FindLens(nLens).eType, LENS_UNKNOWN) << nLens;
        EXPECT_TRUE(FindLens(nLens).vDomain.empty()) << nLens;
        EXPECT_TRUE(FindLens(nLens).vRange.empty()) << nLens;
    }
    EXPECT_EQ(FindLens(215).vDomain.size(), 86u);
    EXPECT_EQ(FindLens(239).vDomain.size(), 101u);
    EXPECT_EQ(FindLens(418).vDomain.size(), 101u);
    EXPECT_EQ(FindLens(419).vDomain.size(), 91u);
    EXPECT_NE(FindLens(239).vRange.data(), FindLens(418).vRange.data());
}

TEST(GivenLens, TheListHoldsEveryLensOnce)
{
    ASSERT_EQ(KnownLenses().size(), 4u);
    for (const SGivenLens& rLens : KnownLenses())
        EXPECT_EQ(&FindLens(rLens.eType), &rLens) << rLens.eType;
}

TEST(GivenLens, OnlyTheWideLensesClipTextureRows)
{
    EXPECT_TRUE(FindLens(LENS_DSL215).bClipRows);
    EXPECT_TRUE(FindLens(LENS_DSL239).bClipRows);
    EXPECT_FALSE(FindLens(LENS_DSL418).bClipRows);
    EXPECT_FALSE(FindLens(LENS_DSL419).bClipRows);
    EXPECT_FALSE(FindLens(LENS_UNKNOWN).bClipRows);
    EXPECT_FALSE(FindLens(1234).bClipRows);
}

TEST(GivenLens, RadiusIsHalfTheSideThatTheCircleFills)
{
    EXPECT_EQ(LensRadius(FindLens(LENS_DSL239), 1000, 801), 500.0f);
    EXPECT_EQ(LensRadius(FindLens(LENS_DSL239), 801, 1000), 400.5f);
    EXPECT_EQ(LensRadius(FindLens(LENS_DSL418), 1000, 801), 400.5f);
    EXPECT_EQ(LensRadius(FindLens(LENS_DSL419), 801, 1000), 500.0f);
    EXPECT_EQ(LensRadius(FindLens(LENS_DSL215), 1000, 801), 500.0f);
    EXPECT_EQ(LensRadius(FindLens(LENS_DSL215), 801, 1000), 500.0f);
    EXPECT_EQ(LensRadius(FindLens(LENS_UNKNOWN), 801, 1000), 500.0f);
    EXPECT_EQ(LensRadius(FindLens(LENS_UNKNOWN), -4, -10), -2.0f);
}

TEST(GivenLens, HeightAtTheRimLiesBetweenTheRowsNextToIt)
{
    EXPECT_EQ(LensRimHeight(FindLens(LENS_DSL419)), FindLens(LENS_DSL419).vRange[90]);
    EXPECT_EQ(LensRimHeight(FindLens(LENS_UNKNOWN)), 90.0f);
    const SGivenLens& rLens = FindLens(LENS_DSL215);
    const double fLow = double(rLens.vRange[81]);
    const double fHigh = double(rLens.vRange[82]);
    EXPECT_NEAR(LensRimHeight(rLens), fLow + (fHigh - fLow) * 0.9 / 1.1, 1e-6);
    EXPECT_FLOAT_EQ(LensRimHeight(GoodLens().Lens()), 180.0f);
}

TEST(GivenLens, RowsOfTheIdealLensGiveItsTables)
{
    const SOwnLens sOwn = {{0.0f, 45.0f, 90.0f}, {0.0f, 1.5f, 3.0f}};
    std::array<float, nAngleEntries> afRows{};
    std::array<float, nAngleEntries> afIdeal{};
    ASSERT_TRUE(FillAngleToRadius(sOwn.Lens(), afRows.data()));
    ASSERT_TRUE(FillAngleToRadius(FindLens(LENS_UNKNOWN), afIdeal.data()));
    for (std::size_t i = 0; i < nAngleEntries; ++i)
        EXPECT_NEAR(afRows[i], afIdeal[i], 1e-6f) << i;
    EXPECT_EQ(afIdeal[45], 0.5f);
    EXPECT_EQ(afIdeal[90], 1.0f);
    EXPECT_EQ(afIdeal[91], 1.0f);
    std::vector<float> vRows(103, -1.0f);
    std::vector<float> vIdeal(103, -1.0f);
    FillRadiusToAngle(sOwn.Lens(), 100.75f, vRows.data());
    FillRadiusToAngle(FindLens(LENS_UNKNOWN), 100.75f, vIdeal.data());
    for (std::size_t k = 0; k < 102; ++k)
        EXPECT_NEAR(vRows[k], vIdeal[k], 1e-4f) << k;
    EXPECT_EQ(vIdeal[100], 90.0f);
    EXPECT_EQ(vIdeal[101], 90.0f);
    EXPECT_EQ(vIdeal[102], -1.0f) << "nothing behind the two end entries";
    EXPECT_EQ(vRows[102], -1.0f);
}

TEST(GivenLens, RadiusStepsAreWholePixelsWithinReason)
{
    EXPECT_EQ(CountRadiusSteps(0.0f), 0);
    EXPECT_EQ(CountRadiusSteps(-7.0f), 0);
    EXPECT_EQ(CountRadiusSteps(std::nanf("")), 0);
    EXPECT_EQ(CountRadiusSteps(100.75f), 100);
    EXPECT_EQ(CountRadiusSteps(1e30f), 1 << 20);
}

TEST(FindLensFault, EveryKnownLensIsGood)
{
    for (const SGivenLens& rLens : KnownLenses())
        EXPECT_EQ(FindLensFault(rLens), "") << rLens.eType;
    EXPECT_EQ(FindLensFault(FindLens(LENS_UNKNOWN)), "");
    EXPECT_EQ(GoodLens().Fault(), "");
}

TEST(FindLensFault, EachKindOfFaultIsNamed)
{
    struct SCase
    {
        const char* pFault;
        SOwnLens sLens;
    };
    const SCase CASES[] = {
        {"as many heights as angles are needed", {{0.0f, 90.0f}, {0.0f}}},
        {"as many heights as angles are needed", {{}, {0.0f, 1.0f}}},
        {"one row is no table", {{0.0f}, {0.0f}}},
        {"angles do not start at 0", {{1.0f, 90.0f}, {0.0f, 1.0f}}},
        {"heights do not start at 0", {{0.0f, 90.0f}, {0.5f, 1.0f}}},
        {"angles do not start at 0", {{std::nanf(""), 90.0f}, {0.0f, 1.0f}}},
        {"angles do not rise at row 2", {{0.0f, 50.0f, 50.0f, 90.0f}, {0.0f, 1.0f, 2.0f, 3.0f}}},
        {"heights do not rise at row 2", {{0.0f, 50.0f, 60.0f, 90.0f}, {0.0f, 1.0f, 0.9f, 3.0f}}},
        {"heights are not finite at row 1", {{0.0f, 50.0f, 90.0f}, {0.0f, std::nanf(""), 3.0f}}},
        {"heights are not finite at row 2", {{0.0f, 50.0f, 90.0f}, {0.0f, 1.0f, INFINITE}}},
        {"angles are not finite at row 1", {{0.0f, INFINITE}, {0.0f, 1.0f}}},
        {"angles do not reach 90 degrees", {{0.0f, 89.99f}, {0.0f, 1.0f}}},
        {"angles go beyond 180 degrees", {{0.0f, 181.0f}, {0.0f, 1.0f}}},
        {"heights are out of proportion", {{0.0f, 90.0f}, {0.0f, 1e31f}}},
        {"heights are out of proportion", {{0.0f, 90.0f}, {0.0f, 1e-31f}}},
    };
    for (const SCase& rCase : CASES)
        EXPECT_EQ(rCase.sLens.Fault(), rCase.pFault);
}

TEST(FindLensFault, WhatItLetsThroughCanBeResampled)
{
    // Rows that pass only just.
    const SOwnLens CASES[] = {
        GoodLens(),
        {{0.0f, 90.0f}, {0.0f, 1.0f}},
        {{0.0f, 180.0f}, {0.0f, 1e30f}},
        {{0.0f, 1e-30f, 90.0f}, {0.0f, 1e-38f, 1e-30f}},
        {{0.0f, 0.5f, 89.0f, 90.0f}, {0.0f, 1e29f, 9e29f, 1e30f}},
    };
    for (const SOwnLens& rOwn : CASES) {
        ASSERT_EQ(rOwn.Fault(), "");
        std::array<float, nAngleEntries> afRadii{};
        ASSERT_TRUE(FillAngleToRadius(rOwn.Lens(), afRadii.data()));
        std::vector<float> vAngles(502);
        FillRadiusToAngle(rOwn.Lens(), 500.5f, vAngles.data());
        for (std::size_t i = 1; i < nAngleEntries; ++i)
            EXPECT_TRUE(std::isfinite(afRadii[i]) && afRadii[i] >= afRadii[i - 1]) << i;
        for (std::size_t k = 1; k < vAngles.size(); ++k)
            EXPECT_TRUE(std::isfinite(vAngles[k]) && vAngles[k] >= vAngles[k - 1]) << k;
    }
}

TEST(FillAngleToRadius, RefusesRowsThatDoNotBracketAnAngle)
{
    const SOwnLens CASES[] = {
        {{0.0f, 40.0f, 80.0f}, {0.0f, 1.0f, 2.0f}},
        {{1.0f, 40.0f, 95.0f}, {0.0f, 1.0f, 2.0f}},
        {{0.0f, std::nanf(""), 95.0f}, {0.0f, 1.0f, 2.0f}},
        {{0.0f}, {0.0f}},
    };
    for (const SOwnLens& rOwn : CASES) {
        std::array<float, nAngleEntries> afRadii{};
        EXPECT_FALSE(FillAngleToRadius(rOwn.Lens(), afRadii.data()));
        EXPECT_NE(rOwn.Fault(), "") << "the door lets in what cannot be resampled";
    }
}
