#include "dewarp/lenses/LensMap.h"

#include "dewarp/lenses/BodyTurn.h"
#include "dewarp/lenses/CameraOptics.h"
#include "dewarp/lenses/GivenLens.h"

#include <gtest/gtest.h>

#include <numbers>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;

CCameraOptics OpticsOf(const SLens& rLens, const SImageCircle& rCircle = SImageCircle())
{
    SCameraOptics sSaid;
    sSaid.bOwnLens = true;
    sSaid.sLens = rLens;
    sSaid.sCircle = rCircle;
    return CCameraOptics(sSaid);
}

SDirection Ray(double fOffAxis, double fAzimuth)
{
    const double t = fOffAxis * RADIANS;
    const double p = fAzimuth * RADIANS;
    return {std::sin(t) * std::cos(p), std::sin(t) * std::sin(p), std::cos(t)};
}

double AngleBetween(const SDirection& a, const SDirection& b)
{
    const double x = a.y * b.z - a.z * b.y;
    const double y = a.z * b.x - a.x * b.z;
    const double z = a.x * b.y - a.y * b.x;
    return std::atan2(std::sqrt(x * x + y * y + z * z), a.x * b.x + a.y * b.y + a.z * b.z);
}

void ExpectPlace(const CLensMap& rMap, const SDirection& rRay, double fX, double fY, double fWithin = 1e-9)
{
    double x = 0.0;
    double y = 0.0;
    EXPECT_TRUE(rMap.ToFrame(rRay, x, y));
    EXPECT_NEAR(x, fX, fWithin);
    EXPECT_NEAR(y, fY, fWithin);
}

/// There and back over the lens's field, but for a hair at its edge.
void ExpectRoundTrips(const CLensMap& rMap)
{
    const double fEdge = rMap.Edge() / RADIANS * 0.999;
    for (double t = 0.0; t <= fEdge; t += fEdge / 37.0) {
        for (double p = 0.0; p < 360.0; p += 23.0) {
            double x = 0.0;
            double y = 0.0;
            const SDirection sRay = Ray(t, p);
            rMap.ToFrame(sRay, x, y);
            SDirection sBack;
            ASSERT_TRUE(rMap.ToDirection(x, y, sBack)) << t << " " << p;
            EXPECT_LT(AngleBetween(sRay, sBack), 1e-7) << t << " " << p;
        }
    }
}

} // namespace

TEST(LensMap, ACircleStretchesTheLensToItsRadii)
{
    const CCameraOptics oOptics =
        OpticsOf(SLens::FromModel(LENS_EQUIDISTANT, 200.0), {700.0f, 500.5f, 480.0f, 520.0f});
    const CLensMap oMap(&oOptics, LENS_UNKNOWN, 1920, 1080);
    ExpectPlace(oMap, Ray(0.0, 0.0), 700.0, 500.5);
    ExpectPlace(oMap, Ray(100.0, 0.0), 1180.0, 500.5);
    ExpectPlace(oMap, Ray(50.0, 90.0), 700.0, 240.5);
    ExpectPlace(oMap, Ray(25.0, 180.0), 580.0, 500.5);
    ExpectRoundTrips(oMap);
}

TEST(LensMap, AKnownLensKeepsItsHeightsInACircle)
{
    SCameraOptics sSaid;
    sSaid.sCircle = {960.0f, 540.0f, 600.0f, 600.0f};
    const CCameraOptics oOptics(sSaid);
    const CLensMap oMap(&oOptics, LENS_DSL419, 1920, 1080);
    const SGivenLens& rLens = FindLens(LENS_DSL419);
    const double fHeight = static_cast<double>(rLens.vRange[45]) / static_cast<double>(rLens.vRange[90]);
    ASSERT_EQ(rLens.vDomain[45], 45.0f);
    ExpectPlace(oMap, Ray(45.0, 0.0), 960.0 + 600.0 * fHeight, 540.0, 1e-4);
    ExpectRoundTrips(oMap);
}

TEST(LensMap, WithoutACircleEachLensHasItsOwnRule)
{
    const CCameraOptics oModel = OpticsOf(SLens::FromModel(LENS_EQUISOLID, 180.0));
    EXPECT_DOUBLE_EQ(CLensMap(&oModel, LENS_UNKNOWN, 1920, 1080).Rim().fRadiusX, 540.0);
    const CCameraOptics oTable = OpticsOf(SLens::FromTable({0.0, 100.0}, {0.0, 1.5}, 0.003));
    const SRimEllipse sRim = CLensMap(&oTable, LENS_UNKNOWN, 1921, 1080).Rim();
    EXPECT_DOUBLE_EQ(sRim.fRadiusX, 500.0);
    EXPECT_DOUBLE_EQ(sRim.fCenterX, 960.5);
    EXPECT_DOUBLE_EQ(CLensMap(nullptr, LENS_DSL419, 1920, 1080).Rim().fRadiusX, 540.0);
    EXPECT_DOUBLE_EQ(CLensMap(nullptr, LENS_UNKNOWN, 1920, 1080).Rim().fRadiusX, 960.0);
}

TEST(LensMap, AMirroredFrameHasItsCircleOnTheOtherSide)
{
    SCameraOptics sSaid;
    sSaid.sCircle = {300.0f, 400.0f, 250.0f, 250.0f};
    sSaid.bMirrorX = true;
    const CCameraOptics oOptics(sSaid);
    const CLensMap oMap(&oOptics, LENS_UNKNOWN, 1000, 800);
    ExpectPlace(oMap, Ray(0.0, 0.0), 700.0, 400.0);
    // To the right in the picture as it is shown.
    ExpectPlace(oMap, Ray(45.0, 0.0), 825.0, 400.0);
    EXPECT_DOUBLE_EQ(oMap.FrameRim().fCenterX, 300.0);
    ExpectRoundTrips(oMap);
}

TEST(LensMap, WhatTheLensDoesNotSeeLandsBeyondItsRim)
{
    const CCameraOptics oOptics =
        OpticsOf(SLens::FromModel(LENS_ORTHOGRAPHIC, 180.0), {500.0f, 500.0f, 400.0f, 400.0f});
    const CLensMap oMap(&oOptics, LENS_UNKNOWN, 1000, 1000);
    double x = 0.0;
    double y = 0.0;
    EXPECT_FALSE(oMap.ToFrame(Ray(91.0, 0.0), x, y));
    EXPECT_GT(x, 900.5);
    EXPECT_NEAR(y, 500.0, 1e-9);
    SDirection d;
    EXPECT_FALSE(oMap.ToDirection(901.0, 500.0, d));
    EXPECT_TRUE(oMap.ToDirection(900.0, 500.0, d));
}

TEST(LensMap, ACalibrationCountsItsPixelsFromTheMiddleOfTheFirst)
{
    SLensCalibration s;
    s.nWidth = 960;
    s.nHeight = 540;
    s.fFocalX = 300.0;
    s.fFocalY = 310.0;
    s.fCenterX = 479.5;
    s.fCenterY = 269.5;
    const CCameraOptics oOptics = OpticsOf(SLens::FromCalibration(s));
    // Frames of twice the size.
    const CLensMap oMap(&oOptics, LENS_UNKNOWN, 1920, 1080);
    ExpectPlace(oMap, Ray(0.0, 0.0), 960.0, 540.0);
    ExpectPlace(oMap, Ray(45.0, 0.0), 960.0 + 600.0 * 45.0 * RADIANS, 540.0);
    ExpectPlace(oMap, Ray(45.0, -90.0), 960.0, 540.0 + 620.0 * 45.0 * RADIANS);
}

TEST(LensMap, CalibrationsComeBackFromTheFrame)
{
    SLensCalibration s;
    s.fFocalX = 612.3;
    s.fFocalY = 609.9;
    s.fCenterX = 951.2;
    s.fCenterY = 547.7;
    s.fSkew = 1.7;
    s.afRadial[0] = -0.013;
    s.afRadial[1] = 0.0021;
    s.afRadial[2] = -0.0007;
    s.afRadial[3] = 0.00004;
    const CCameraOptics oFisheye = OpticsOf(SLens::FromCalibration(s));
    ExpectRoundTrips(CLensMap(&oFisheye, LENS_UNKNOWN, 1920, 1080));
    s.eModel = CALIBRATION_UNIFIED;
    s.fXi = 1.2;
    s.fFocalX = s.fFocalY = 1100.0;
    s.fField = 200.0;
    s.afRadial[0] = -0.02;
    s.afRadial[1] = 0.002;
    s.afTangential[0] = 0.0012;
    s.afTangential[1] = -0.0007;
    const CCameraOptics oUnified = OpticsOf(SLens::FromCalibration(s));
    ExpectRoundTrips(CLensMap(&oUnified, LENS_UNKNOWN, 1920, 1080));
}

TEST(LensMap, ACircleOnlyEndsTheLightOfACalibration)
{
    SLensCalibration s;
    s.fFocalX = s.fFocalY = 600.0;
    s.fCenterX = s.fCenterY = 499.5;
    const CCameraOptics oOptics = OpticsOf(SLens::FromCalibration(s), {510.0f, 500.0f, 300.0f, 300.0f});
    const CLensMap oMap(&oOptics, LENS_UNKNOWN, 1000, 1000);
    ExpectPlace(oMap, Ray(10.0, 0.0), 500.0 + 600.0 * 10.0 * RADIANS, 500.0);
    EXPECT_DOUBLE_EQ(oMap.Rim().fCenterX, 510.0);
    SDirection d;
    EXPECT_FALSE(oMap.ToDirection(820.0, 500.0, d));
    EXPECT_TRUE(oMap.ToDirection(800.0, 500.0, d));
}

TEST(LensMap, HalfFieldIsTheLensOrWhatTheFrameHasRoomFor)
{
    const CCameraOptics oInside = OpticsOf(SLens::FromModel(LENS_EQUIDISTANT, 220.0));
    EXPECT_DOUBLE_EQ(CLensMap(&oInside, LENS_UNKNOWN, 1920, 1080).HalfField(), 110.0);
    SLensCalibration s;
    s.fFocalX = s.fFocalY = 1000.0;
    s.fCenterX = 499.5;
    s.fCenterY = 499.5;
    const CCameraOptics oCut = OpticsOf(SLens::FromCalibration(s));
    EXPECT_NEAR(CLensMap(&oCut, LENS_UNKNOWN, 1000, 1000).HalfField(), std::sqrt(0.5) / RADIANS, 1e-6);
}

TEST(BodyTurn, YawLooksRightPitchUpAndRollTurnsClockwise)
{
    const auto ExpectBody = [](const SMountOrientation& rOrientation, const SDirection& rMount,
                               const SDirection& rBody) {
        EXPECT_LT(AngleBetween(CBodyTurn(rOrientation).ToBody(rMount), rBody), 1e-7);
        EXPECT_LT(AngleBetween(CBodyTurn(rOrientation).ToMount(rBody), rMount), 1e-7);
    };
    // What lay to the right comes to stand on the axis.
    ExpectBody({30.0f, 0.0f, 0.0f}, Ray(30.0, 0.0), {0.0, 0.0, 1.0});
    ExpectBody({0.0f, 20.0f, 0.0f}, Ray(20.0, 90.0), {0.0, 0.0, 1.0});
    // The top of the picture is now what was to the right of it.
    ExpectBody({0.0f, 0.0f, 40.0f}, Ray(50.0, 50.0), Ray(50.0, 90.0));
    // In this order: the pitch is about the yawed body's own axis.
    ExpectBody({90.0f, 30.0f, 0.0f}, {std::cos(30.0 * RADIANS), std::sin(30.0 * RADIANS), 0.0},
               {0.0, 0.0, 1.0});
    ExpectBody({90.0f, 0.0f, 90.0f}, {0.0, 0.0, -1.0}, {0.0, 1.0, 0.0});
}

TEST(BodyTurn, LeanIsTheAngleBetweenTheAxes)
{
    EXPECT_NEAR(CBodyTurn({0.0f, 0.0f, 77.0f}).Lean(), 0.0, 1e-6);
    EXPECT_NEAR(CBodyTurn({0.0f, -20.0f, 5.0f}).Lean(), 20.0, 1e-6);
    EXPECT_NEAR(CBodyTurn({60.0f, 60.0f, 0.0f}).Lean(), std::acos(0.25) / RADIANS, 1e-6);
}
