#include "AssertionCatcher.h"
#include "MeshChecks.h"

#include "dewarp/geometry/LensModel.h"
#include "dewarp/tables/LensDistortion.h"

#include <cmath>
#include <limits>

/// Height of a lens at an angle in double precision, in table units.
static double HeightAt(const SGivenLens& rLens, double fDegrees)
{
    std::size_t j = 0;
    while (j + 2 < rLens.vDomain.size() && double(rLens.vDomain[j + 1]) <= fDegrees)
        ++j;
    const double fPart =
        (fDegrees - double(rLens.vDomain[j])) / (double(rLens.vDomain[j + 1]) - double(rLens.vDomain[j]));
    return double(rLens.vRange[j]) + fPart * (double(rLens.vRange[j + 1]) - double(rLens.vRange[j]));
}

/// The last sample, scaled in a straight line to 90 degrees.
static double ScaledRim(const SGivenLens& rLens)
{
    return double(rLens.vRange.back()) * 90.0 / double(rLens.vDomain.back());
}

static void BuildTables(CCustomGPUGeometry& oGeometry, int nLens, int nWidth, int nHeight)
{
    oGeometry.DetermineRadius(nLens, nWidth, nHeight);
    oGeometry.GenerateTheta2rMapping(nLens);
    oGeometry.GenerateR2ThetaMapping(nLens);
}

TEST(LensModel, RadiusFollowsTheSideThatTheLensFills)
{
    CCustomGPUGeometry oGeometry;
    EXPECT_EQ(oGeometry.DetermineRadius(LENS_DSL239, 3360, 3000), 1680.0f);
    EXPECT_EQ(oGeometry.DetermineRadius(LENS_DSL418, 3360, 3000), 1500.0f);
    EXPECT_EQ(oGeometry.DetermineRadius(LENS_DSL419, 3360, 3000), 1500.0f);
    EXPECT_EQ(oGeometry.DetermineRadius(LENS_DSL215, 3360, 3000), 1680.0f);
    EXPECT_EQ(oGeometry.DetermineRadius(LENS_DSL215, 3000, 3361), 1680.5f);
    EXPECT_EQ(oGeometry.DetermineRadius(LENS_UNKNOWN, 640, 480), 320.0f);
    EXPECT_EQ(oGeometry.m_fRadius, 320.0f);
    EXPECT_EQ(oGeometry.m_nImageWidth, 640);
    EXPECT_EQ(oGeometry.m_nImageHeight, 480);
}

TEST(LensModel, UnknownLensIsEquidistant)
{
    for (int nLens : {int(LENS_UNKNOWN), int(LENS_UNSET), int(LENS_AUTO), 1234}) {
        CCustomGPUGeometry oGeometry;
        BuildTables(oGeometry, nLens, 1000, 800);
        for (int i = 0; i < 90; ++i)
            EXPECT_EQ(oGeometry.m_pTheta2rMapping[i], static_cast<float>(i) / 90.0f);
        EXPECT_EQ(oGeometry.m_pTheta2rMapping[90], 1.0f);
        EXPECT_EQ(oGeometry.m_pTheta2rMapping[91], 1.0f);
        for (int k = 0; k < 500; ++k)
            EXPECT_NEAR(oGeometry.m_pR2ThetaMapping[k], 90.0 * k / 500.0, 1e-5);
        EXPECT_EQ(oGeometry.m_pR2ThetaMapping[500], 90.0f);
        EXPECT_EQ(oGeometry.m_pR2ThetaMapping[501], 90.0f);
    }
}

TEST(LensModel, RadiurLensFollowsTheMeasuredHeights)
{
    for (int nLens : {215, 239, 418, 419}) {
        CCustomGPUGeometry oGeometry;
        BuildTables(oGeometry, nLens, 1920, 1920);
        const SGivenLens& rLens = FindLens(nLens);
        for (int i = 0; i < 90; ++i)
            EXPECT_NEAR(oGeometry.m_pTheta2rMapping[i], HeightAt(rLens, i) / ScaledRim(rLens), 3e-7)
                << "lens " << nLens << " at " << i;
        EXPECT_EQ(oGeometry.m_pTheta2rMapping[90], 1.0f);
        EXPECT_EQ(oGeometry.m_pTheta2rMapping[91], 1.0f);
    }
}

TEST(LensModel, AngleTableInvertsTheMeasuredHeights)
{
    for (int nLens : {215, 239, 418, 419}) {
        CCustomGPUGeometry oGeometry;
        BuildTables(oGeometry, nLens, 1920, 1920);
        const SGivenLens& rLens = FindLens(nLens);
        const double fRim = HeightAt(rLens, 90.0);
        for (int k = 0; k < 960; ++k)
            EXPECT_NEAR(HeightAt(rLens, double(oGeometry.m_pR2ThetaMapping[k])) / fRim, k / 960.0, 5e-7)
                << "lens " << nLens << " at " << k;
        EXPECT_EQ(oGeometry.m_pR2ThetaMapping[960], 90.0f);
        EXPECT_EQ(oGeometry.m_pR2ThetaMapping[961], 90.0f);
    }
}

TEST(LensModel, DSL419MeetsItsRimInBothTables)
{
    CCustomGPUGeometry oGeometry;
    BuildTables(oGeometry, LENS_DSL419, 1920, 1920);
    const float* pRange = LENS_DISTORTION::fRangeForDSL419;
    for (int i = 0; i < 90; ++i)
        EXPECT_EQ(oGeometry.m_pTheta2rMapping[i], pRange[i] / pRange[90]);
    EXPECT_EQ(oGeometry.m_pR2ThetaMapping[960], 90.0f);
    // Half the rim's height lies between two samples of the measured curve.
    const double fHalf = double(pRange[90]) / 2.0;
    const double fAngle = double(oGeometry.m_pR2ThetaMapping[480]);
    const int m = static_cast<int>(fAngle);
    EXPECT_LE(double(pRange[m]), fHalf);
    EXPECT_GE(double(pRange[m + 1]), fHalf);
}

TEST(LensModel, DSL215TablesAreNotExactInverses)
{
    CCustomGPUGeometry oGeometry;
    BuildTables(oGeometry, LENS_DSL215, 2144, 1944);
    const SGivenLens& rLens = FindLens(LENS_DSL215);
    const double fScaled = double(rLens.vRange[85]) * 90.0 / 93.5;
    const double fPart =
        (90.0 - double(rLens.vDomain[81])) / (double(rLens.vDomain[82]) - double(rLens.vDomain[81]));
    EXPECT_NEAR(double(rLens.vDomain[81]), 89.1, 1e-5);
    const double fBetween =
        double(rLens.vRange[81]) + fPart * (double(rLens.vRange[82]) - double(rLens.vRange[81]));
    EXPECT_GT(fBetween - fScaled, 0.01);
    EXPECT_NEAR(oGeometry.m_pTheta2rMapping[45] * fScaled, HeightAt(rLens, 45.0), 1e-6);
    const double fHeight = HeightAt(rLens, double(oGeometry.m_pR2ThetaMapping[536]));
    EXPECT_NEAR(fHeight, fBetween * 536.0 / 1072.0, 1e-6);
}

TEST(LensModel, TablesAreKeptUntilLensOrRadiusChange)
{
    CCustomGPUGeometry oGeometry;
    BuildTables(oGeometry, LENS_DSL418, 1000, 1000);
    oGeometry.m_pTheta2rMapping[7] = -1.0f;
    oGeometry.m_pR2ThetaMapping[7] = -1.0f;
    BuildTables(oGeometry, LENS_DSL418, 1200, 1000); // this lens fills the height: the same radius
    EXPECT_EQ(oGeometry.m_pTheta2rMapping[7], -1.0f);
    EXPECT_EQ(oGeometry.m_pR2ThetaMapping[7], -1.0f);
    BuildTables(oGeometry, LENS_DSL418, 1000, 1002);
    EXPECT_GT(oGeometry.m_pTheta2rMapping[7], 0.0f);
    EXPECT_GT(oGeometry.m_pR2ThetaMapping[7], 0.0f);
    oGeometry.m_pTheta2rMapping[7] = -1.0f;
    oGeometry.m_pR2ThetaMapping[7] = -1.0f;
    BuildTables(oGeometry, LENS_DSL419, 1000, 1002);
    EXPECT_GT(oGeometry.m_pTheta2rMapping[7], 0.0f);
    EXPECT_GT(oGeometry.m_pR2ThetaMapping[7], 0.0f);
    EXPECT_EQ(oGeometry.m_nTheta2rLensType, LENS_DSL419);
    EXPECT_EQ(oGeometry.m_nR2ThetaLensType, LENS_DSL419);
    EXPECT_EQ(oGeometry.m_fTheta2rRadius, 501.0f);
    EXPECT_EQ(oGeometry.m_fR2ThetaRadius, 501.0f);
}

TEST(LensModel, RadiusZeroLeavesTheEndAngleTwice)
{
    for (int nLens : ALL_LENSES) {
        CCustomGPUGeometry oGeometry;
        BuildTables(oGeometry, nLens, 0, 0);
        EXPECT_EQ(oGeometry.m_pR2ThetaMapping[0], 90.0f);
        EXPECT_EQ(oGeometry.m_pR2ThetaMapping[1], 90.0f);
    }
}

TEST(LensModel, HalfPixelOfRadiusEndsAtTheEndAngle)
{
    CCustomGPUGeometry oGeometry;
    BuildTables(oGeometry, LENS_UNKNOWN, 5, 5);
    EXPECT_NEAR(oGeometry.m_pR2ThetaMapping[1], 36.0, 1e-5);
    EXPECT_EQ(oGeometry.m_pR2ThetaMapping[2], 90.0f);
    EXPECT_EQ(oGeometry.m_pR2ThetaMapping[3], 90.0f);
}

TEST(LensModel, FisheyeOffsetBecomesAUnitDirection)
{
    CCustomGPUGeometry oGeometry;
    BuildTables(oGeometry, LENS_UNKNOWN, 1000, 1000);
    for (int nDegrees = -180; nDegrees < 180; nDegrees += 7) {
        for (int nStep = 0; nStep <= 40; ++nStep) {
            const double d = 12.5 * nStep;
            const double fBearing = nDegrees * 3.14159265358979 / 180.0;
            float fX = 0.0f;
            float fY = 0.0f;
            float fZ = 0.0f;
            oGeometry.Fisheye2Sphere(static_cast<float>(d * std::cos(fBearing)),
                                     static_cast<float>(d * std::sin(fBearing)), fX, fY, fZ);
            const double fTheta = d / 500.0 * 3.14159265358979 / 2.0;
            EXPECT_NEAR(fX, std::sin(fTheta) * std::cos(fBearing), 1e-6);
            EXPECT_NEAR(fY, std::sin(fTheta) * std::sin(fBearing), 1e-6);
            EXPECT_NEAR(fZ, std::cos(fTheta), 1e-6);
        }
    }
}

TEST(LensModel, DirectionsBeyondTheTableStayOnTheRim)
{
    CCustomGPUGeometry oGeometry;
    BuildTables(oGeometry, LENS_DSL215, 101, 75);
    for (float d : {50.5f, 51.0f, 51.49f, 52.5f, 1e9f}) {
        float fX = 9.0f;
        float fY = 9.0f;
        float fZ = 9.0f;
        oGeometry.Fisheye2Sphere(d, 0.0f, fX, fY, fZ);
        EXPECT_NEAR(fX, 1.0f, 1e-6f);
        EXPECT_NEAR(fZ, 0.0f, 1e-6f);
    }
    float fX = 9.0f;
    float fY = 9.0f;
    float fZ = 9.0f;
    oGeometry.Fisheye2Sphere(std::numeric_limits<float>::quiet_NaN(), 1.0f, fX, fY, fZ);
    EXPECT_EQ(fX, 0.0f);
    EXPECT_EQ(fY, 0.0f);
    EXPECT_EQ(fZ, 1.0f);
}

TEST(LensModel, LensThatDoesNotBracketAnAngleStopsTheProgram)
{
    const float afDomain[3] = {1.0f, 40.0f, 95.0f};
    const float afRange[3] = {0.0f, 1.0f, 2.0f};
    float afTable[nAngleEntries] = {};
    try {
        FillTheta2r({LENS_UNKNOWN, afDomain, afRange}, afTable);
        FAIL() << "no assertion";
    } catch (const SAssertion& s) {
        EXPECT_EQ(s.strFile, "dewarp/CustomGPUGeometry");
        EXPECT_EQ(s.strFunction, "void CCustomGPUGeometry::GenerateTheta2rMapping(int)");
        EXPECT_EQ(s.strExpression, "theta1 <= i && theta2 > i");
    }
    const float afShort[3] = {0.0f, 40.0f, 80.0f};
    EXPECT_THROW(FillTheta2r({LENS_UNKNOWN, afShort, afRange}, afTable), SAssertion);
}
