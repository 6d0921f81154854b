// Calibrations beside the library that made them.
#include "dewarp/lenses/CameraOptics.h"
#include "dewarp/lenses/LensMap.h"

#include <gtest/gtest.h>

#include <opencv2/calib3d.hpp>
#ifdef LUMOR_HAS_OMNIDIR
#include <opencv2/ccalib/omnidir.hpp>
#endif

#include <numbers>

namespace
{

/// Pixels; the mapping itself is exact.
const double WITHIN = 1e-6;
const double RADIANS = std::numbers::pi / 180.0;

SLensCalibration PlainCalibration()
{
    SLensCalibration s;
    s.nWidth = 1920;
    s.nHeight = 1080;
    s.fFocalX = 612.34;
    s.fFocalY = 609.87;
    s.fCenterX = 951.25;
    s.fCenterY = 547.75;
    return s;
}

CCameraOptics OpticsOf(const SLensCalibration& rCalibration)
{
    SCameraOptics sSaid;
    sSaid.bOwnLens = true;
    sSaid.sLens = SLens::FromCalibration(rCalibration);
    EXPECT_EQ(FindLensFault(sSaid.sLens), "");
    return CCameraOptics(sSaid);
}

/// Unit directions up to an angle off the axis, all around it. Ours have y to the top, OpenCV's downward.
std::vector<SDirection> RaysUpTo(double fMost)
{
    std::vector<SDirection> vRays;
    for (double t = 0.5; t <= fMost; t += 1.5) {
        for (double p = 0.0; p < 360.0; p += 17.0)
            vRays.push_back({std::sin(t * RADIANS) * std::cos(p * RADIANS),
                             std::sin(t * RADIANS) * std::sin(p * RADIANS), std::cos(t * RADIANS)});
    }
    return vRays;
}

/// Their places, middles of pixels at whole numbers, beside ours at halves; and back again.
void ExpectSamePlaces(const CLensMap& rMap, const std::vector<SDirection>& vRays,
                      const std::vector<cv::Point2d>& vPlaces)
{
    ASSERT_EQ(vRays.size(), vPlaces.size());
    double fWorst = 0.0;
    double fWorstBack = 0.0;
    for (std::size_t i = 0; i < vRays.size(); ++i) {
        double x = 0.0;
        double y = 0.0;
        ASSERT_TRUE(rMap.ToFrame(vRays[i], x, y));
        fWorst = std::max(fWorst, std::hypot(x - 0.5 - vPlaces[i].x, y - 0.5 - vPlaces[i].y));
        SDirection d;
        ASSERT_TRUE(rMap.ToDirection(vPlaces[i].x + 0.5, vPlaces[i].y + 0.5, d));
        fWorstBack = std::max(fWorstBack,
                              std::hypot(d.x - vRays[i].x, std::hypot(d.y - vRays[i].y, d.z - vRays[i].z)));
    }
    EXPECT_LT(fWorst, WITHIN);
    EXPECT_LT(fWorstBack, 1e-8);
}

} // namespace

TEST(OpenCVLens, FisheyeRaysLandWhereOpenCVPutsThem)
{
    const double aRadial[][4] = {
        {0.0, 0.0, 0.0, 0.0}, {-0.013, 0.0021, -0.0007, 0.00004}, {0.05, -0.01, 0.003, -0.0005}};
    for (const double(&rRadial)[4] : aRadial) {
        for (const double fAlpha : {0.0, 0.003}) {
            SLensCalibration s = PlainCalibration();
            std::copy(std::begin(rRadial), std::end(rRadial), std::begin(s.afRadial));
            s.fSkew = fAlpha * s.fFocalX;
            const CCameraOptics oOptics = OpticsOf(s);
            const CLensMap oMap(&oOptics, LENS_UNKNOWN, s.nWidth, s.nHeight);
            // OpenCV takes points of a plane before the lens: it does not reach further.
            const std::vector<SDirection> vRays = RaysUpTo(89.0);
            std::vector<cv::Point2d> vPlane;
            for (const SDirection& rRay : vRays)
                vPlane.emplace_back(rRay.x / rRay.z, -rRay.y / rRay.z);
            const cv::Matx33d mCamera(s.fFocalX, 0.0, s.fCenterX, 0.0, s.fFocalY, s.fCenterY, 0.0, 0.0, 1.0);
            const cv::Vec4d vCoefficients(rRadial[0], rRadial[1], rRadial[2], rRadial[3]);
            std::vector<cv::Point2d> vPlaces;
            cv::fisheye::distortPoints(vPlane, vPlaces, mCamera, vCoefficients, fAlpha);
            ExpectSamePlaces(oMap, vRays, vPlaces);
        }
    }
}

#ifdef LUMOR_HAS_OMNIDIR
TEST(OpenCVLens, RaysOfTheUnifiedModelLandWhereOpenCVPutsThem)
{
    const double aTerms[][4] = {
        {0.0, 0.0, 0.0, 0.0}, {-0.02, 0.002, 0.0012, -0.0007}, {0.05, -0.004, -0.002, 0.001}};
    for (const double(&rTerms)[4] : aTerms) {
        for (const double fXi : {0.8, 1.2}) {
            SLensCalibration s = PlainCalibration();
            s.eModel = CALIBRATION_UNIFIED;
            s.fFocalX *= 1.8;
            s.fFocalY *= 1.8;
            s.fSkew = 1.7;
            s.fXi = fXi;
            s.fField = 200.0;
            std::copy(rTerms, rTerms + 2, std::begin(s.afRadial));
            std::copy(rTerms + 2, rTerms + 4, std::begin(s.afTangential));
            const CCameraOptics oOptics = OpticsOf(s);
            const CLensMap oMap(&oOptics, LENS_UNKNOWN, s.nWidth, s.nHeight);
            const std::vector<SDirection> vRays = RaysUpTo(99.0);
            std::vector<cv::Point3d> vPoints;
            for (const SDirection& rRay : vRays)
                vPoints.emplace_back(rRay.x, -rRay.y, rRay.z);
            const cv::Matx33d mCamera(s.fFocalX, s.fSkew, s.fCenterX, 0.0, s.fFocalY, s.fCenterY, 0.0, 0.0,
                                      1.0);
            const cv::Vec4d vCoefficients(rTerms[0], rTerms[1], rTerms[2], rTerms[3]);
            std::vector<cv::Point2d> vPlaces;
            cv::omnidir::projectPoints(vPoints, vPlaces, cv::Vec3d(0.0, 0.0, 0.0), cv::Vec3d(0.0, 0.0, 0.0),
                                       mCamera, fXi, vCoefficients);
            ExpectSamePlaces(oMap, vRays, vPlaces);
        }
    }
}
#endif
