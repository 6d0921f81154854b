#include "dewarp/lenses/CircleFit.h"

#include "PictureCanvas.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

/// Points of a part of a rim, each off by some pixels, and others anywhere around.
std::vector<SRimPoint> Points(const SRim& rRim, double fFrom, double fTo, double fOff, int nOthers)
{
    CDice oDice(3);
    std::vector<SRimPoint> vPoints;
    vPoints.reserve(200 + static_cast<std::size_t>(nOthers));
    for (int n = 0; n < 200; ++n) {
        const double fAngle = fFrom + (fTo - fFrom) * n / 200.0;
        const double fScale = 1.0 + fOff * static_cast<double>(oDice.Noise()) / rRim.Radius();
        vPoints.push_back({rRim.fCenterX + fScale * rRim.fRadiusX * std::cos(fAngle),
                           rRim.fCenterY + fScale * rRim.fRadiusY * std::sin(fAngle), 1.0});
    }
    for (int n = 0; n < nOthers; ++n)
        vPoints.push_back(
            {oDice.Between(0.0, 2.0 * rRim.fCenterX), oDice.Between(0.0, 2.0 * rRim.fCenterY), 1.0});
    return vPoints;
}

void ExpectRim(const SRim& rRim, const SRim& rExpected, double fNear)
{
    EXPECT_NEAR(rRim.fCenterX, rExpected.fCenterX, fNear);
    EXPECT_NEAR(rRim.fCenterY, rExpected.fCenterY, fNear);
    EXPECT_NEAR(rRim.fRadiusX, rExpected.fRadiusX, fNear);
    EXPECT_NEAR(rRim.fRadiusY, rExpected.fRadiusY, fNear);
}

const SRim CIRCLE = {230.0, 190.0, 150.0, 150.0};
const SRim ELLIPSE = {230.0, 190.0, 180.0, 140.0};

} // namespace

TEST(CircleFit, DistancesArePixelsOutsideOfTheRim)
{
    EXPECT_NEAR(RimDistance(CIRCLE, 230.0 + 153.0, 190.0), 3.0, 1e-9);
    EXPECT_NEAR(RimDistance(CIRCLE, 230.0, 190.0 - 149.0), -1.0, 1e-9);
    EXPECT_NEAR(RimDistance(ELLIPSE, 230.0 + 182.0, 190.0), 2.0, 0.05);
    EXPECT_NEAR(RimDistance(ELLIPSE, 230.0, 190.0 + 139.0), -1.0, 0.05);
}

TEST(CircleFit, ACircleIsFoundAmongAsManyOtherPoints)
{
    const std::vector<SRimPoint> vPoints = Points(CIRCLE, 0.0, 6.28, 0.3, 200);
    const SRimFit sFit = GuessRim(vPoints, false, 50.0, 400.0);
    ASSERT_TRUE(sFit.bGood);
    ExpectRim(sFit.sRim, CIRCLE, 0.15);
}

TEST(CircleFit, AnEllipseIsFoundAmongOtherPoints)
{
    const std::vector<SRimPoint> vPoints = Points(ELLIPSE, 0.0, 6.28, 0.3, 100);
    const SRimFit sFit = GuessRim(vPoints, true, 50.0, 400.0);
    ASSERT_TRUE(sFit.bGood);
    ExpectRim(sFit.sRim, ELLIPSE, 0.2);
}

TEST(CircleFit, ErrorsGrowWhereTheRimIsCut)
{
    const SRimFit sWhole = FitRim(Points(CIRCLE, 0.0, 6.28, 0.3, 0), CIRCLE, true, 3.0);
    const SRimFit sPart = FitRim(Points(CIRCLE, 0.0, 1.5, 0.3, 0), CIRCLE, true, 3.0);
    ASSERT_TRUE(sWhole.bGood);
    ASSERT_TRUE(sPart.bGood);
    EXPECT_LT(sWhole.fRatioError, 0.003);
    EXPECT_GT(sPart.fRatioError, 0.01);
    EXPECT_GT(sPart.fError, 10.0 * sWhole.fError);
}

TEST(CircleFit, TooFewPointsAndALineMakeNoCircle)
{
    EXPECT_FALSE(GuessRim({}, false, 10.0, 400.0).bGood);
    EXPECT_FALSE(FitRim({}, CIRCLE, false, 3.0).bGood);
    std::vector<SRimPoint> vLine;
    vLine.reserve(100);
    for (int n = 0; n < 100; ++n)
        vLine.push_back({static_cast<double>(n), 20.0, 1.0});
    EXPECT_FALSE(GuessRim(vLine, false, 10.0, 400.0).bGood);
    EXPECT_FALSE(GuessRim(vLine, true, 10.0, 400.0).bGood);
}
