// Hands on the view: a drag or a turn of the wheel ends in the picture of the position it leads to, and the
// field of view is what zoom and eye distance say.
#include "tests/support/EngineDewarper.h"

#include <cmath>
#include <gtest/gtest.h>

struct SHandCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    int anDrag[2];
    float afMove[3]; ///< change of pan, tilt and zoom that the drag and one wheel step of 120 lead to
};

// Targets of 320 x 200; the positions start inside every limit. Zoom is 120 where it is free.
static const SHandCase HANDS[] = {
    {"camera, ceiling", VIEW_VCAM, MOUNT_CEILING, {20, 10}, {12.0f, 6.0f, -10.0f}},
    {"camera, floor", VIEW_VCAM, MOUNT_FLOOR, {-20, 10}, {-12.0f, 6.0f, -10.0f}},
    {"camera, wall", VIEW_VCAM, MOUNT_WALL, {20, -10}, {12.0f, -6.0f, -10.0f}},
    {"quad", VIEW_VCAM_QUAD, MOUNT_CEILING, {20, 10}, {12.0f, 6.0f, -10.0f}},
    // A square picture is fitted to 200 x 200; a quarter of the zoom angle is 30 degrees.
    {"fisheye", VIEW_FISHEYE, MOUNT_CEILING, {20, 10}, {-10.392305f, -5.1961524f, -10.0f}},
    {"circular", VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING, {-20, 10}, {10.392305f, -5.1961524f, -10.0f}},
    {"full", VIEW_PANORAMA_FULL, MOUNT_CEILING, {32, 10}, {-36.0f, 0.0f, 0.0f}},
    {"full, floor", VIEW_PANORAMA_FULL, MOUNT_FLOOR, {32, 10}, {36.0f, 0.0f, 0.0f}},
    {"half", VIEW_PANORAMA_HALF, MOUNT_CEILING, {32, 10}, {-18.0f, 0.0f, 0.0f}},
    {"quarter", VIEW_PANORAMA_QUARTER, MOUNT_CEILING, {-32, 10}, {18.0f, 0.0f, 0.0f}},
    {"dual", VIEW_PANORAMA_DUAL, MOUNT_CEILING, {32, 10}, {18.0f, 9.0f, 0.0f}},
    {"triple", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, {32, -10}, {18.0f, -9.0f, 0.0f}},
    // Bands of 36 rows above and below leave 128.
    {"wall", VIEW_PANORAMA_FULL, MOUNT_WALL, {20, 16}, {9.0f, 9.0f, 0.0f}},
};

class Hands : public testing::TestWithParam<SEngineCase<SHandCase>>
{
};

TEST_P(Hands, LeadToThePictureOfTheirPosition)
{
    const SHandCase& sCase = GetParam().sCase;
    SReferenceSetup s;
    s.eView = sCase.eView;
    s.eMount = sCase.eMount;
    s.nLensType = 419;
    s.nImageWidth = s.nImageHeight = 256;
    s.nTargetWidth = 320;
    s.nTargetHeight = 200;
    const bool bCamera = s.eView == VIEW_VCAM || s.eView == VIEW_VCAM_QUAD;
    const bool bZooms = bCamera || s.eView == VIEW_FISHEYE || s.eView == VIEW_FISHEYE_CIRCULAR;
    s.fPan = bCamera ? 60.0 : 10.0;
    s.fTilt = bCamera ? (s.eMount == MOUNT_FLOOR ? 140.0 : 40.0) : 0.0;
    s.fZoom = bZooms ? 120.0 : 180.0;
    CTestFrame oFrame(TexelFrame(256, 256), IMAGE_FORMAT_RGB24);
    CEngineDewarper oDragged(GetParam().eEngine, 320, 200);
    ASSERT_TRUE(oDragged.Apply(s, oFrame));
    const STestImage sBefore = oDragged.Picture();
    oDragged->OnMouseDown(100, 90);
    oDragged->OnMouseMove(100 + sCase.anDrag[0], 90 + sCase.anDrag[1], false, false);
    oDragged->OnMouseUp();
    oDragged->OnMouseWheel(120.0);
    ASSERT_TRUE(oDragged->DrawGLScene(false));
    EXPECT_NEAR(std::remainder(oDragged.Pan() - s.fPan - sCase.afMove[0], 360.0), 0.0, 1e-3);
    EXPECT_NEAR(oDragged.Tilt(), s.fTilt + sCase.afMove[1], 1e-3);
    EXPECT_NEAR(oDragged.Zoom(), s.fZoom + sCase.afMove[2], 1e-3);

    CEngineDewarper oPlaced(GetParam().eEngine, 320, 200);
    ASSERT_TRUE(oPlaced.Apply(s, oFrame));
    oPlaced->AbsolutePTZ(oDragged.Pan(), oDragged.Tilt(), oDragged.Zoom());
    ASSERT_TRUE(oPlaced.DrawFrame(oFrame));
    EXPECT_EQ(CompareImages(oDragged.Picture(), oPlaced.Picture()).nMax, 0);
    EXPECT_GT(CompareImages(oDragged.Picture(), sBefore).fMean, 3.0);
}

INSTANTIATE_TEST_SUITE_P(Views, Hands, testing::ValuesIn(WithBothEngines(HANDS)), SEngineCaseName());

using FieldOfView = CEngineTest;

/// Field angle, in degrees off the axis, at the middle of the picture's top edge of a camera that looks along
/// the optical axis through an equidistant lens.
static double HalfField(EDewarpEngine eEngine, float fZoom, float fEyeDistance)
{
    SReferenceSetup s;
    s.eView = VIEW_VCAM;
    s.eMount = MOUNT_CEILING;
    s.nLensType = LENS_UNKNOWN;
    s.nImageWidth = s.nImageHeight = 720;
    s.nTargetWidth = 300;
    s.nTargetHeight = 300;
    s.fPan = 90.0;
    s.fZoom = static_cast<double>(fZoom);
    s.fEyeDistance = static_cast<double>(fEyeDistance);
    CEngineDewarper oDewarper(eEngine, 300, 300);
    CTestFrame oFrame(TexelFrame(720, 720), IMAGE_FORMAT_RGB24);
    EXPECT_TRUE(oDewarper.Apply(s, oFrame));
    const STestImage sPicture = oDewarper.Picture();
    // Texel rows of the first two pixel rows, carried on to the edge.
    double afRow[2] = {};
    for (int i = 0; i < 2; ++i) {
        const unsigned char* pPixel = sPicture.At(150, 1 + 8 * i);
        afRow[i] = (pPixel[1] | (pPixel[2] >> 4) << 8) + 0.5;
    }
    const double fEdge = afRow[0] - (afRow[1] - afRow[0]) * 1.5 / 8.0;
    return (360.0 - fEdge) / 360.0 * 90.0;
}

TEST_P(FieldOfView, FollowsZoomAndEyeDistance)
{
    for (const float fZoom : {60.0f, 120.0f, 170.0f}) {
        SCOPED_TRACE(fZoom);
        const double fQuarter = static_cast<double>(fZoom) / 4.0;
        EXPECT_NEAR(HalfField(GetParam(), fZoom, 0.0f), fQuarter, 0.3)
            << "rectilinear: half the zoom angle from edge to edge";
        EXPECT_NEAR(HalfField(GetParam(), fZoom, 1.0f), 2.0 * fQuarter, 0.3)
            << "stereographic: the zoom angle";
        // In between: the angle whose sine, seen from half a radius behind the centre, has the same tangent.
        const double fTangent = std::tan(fQuarter * 3.14159265358979 / 180.0);
        double fAngle = 0.0;
        while (std::sin(fAngle) < fTangent * (0.5 + std::cos(fAngle)))
            fAngle += 1e-4;
        EXPECT_NEAR(HalfField(GetParam(), fZoom, 0.5f), fAngle * 180.0 / 3.14159265358979, 0.3);
    }
}

TEST_P(FieldOfView, TheWholeHalfSphereIsInViewAtAnEyeDistanceOfOne)
{
    SReferenceSetup s;
    s.eView = VIEW_VCAM;
    s.nLensType = 419;
    s.nImageWidth = s.nImageHeight = 256;
    s.nTargetWidth = s.nTargetHeight = 201;
    s.fPan = 90.0;
    s.fEyeDistance = 1.0;
    CEngineDewarper oDewarper(GetParam(), 201, 201);
    CTestFrame oFrame(TexelFrame(256, 256), IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    const STestImage sPicture = oDewarper.Picture();
    int nHoles = 0;
    for (int y = 0; y < 201; ++y)
        for (int x = 0; x < 201; ++x)
            if (std::hypot(x - 100, y - 100) < 98.0 && sPicture.At(x, y)[3] == 0)
                ++nHoles;
    EXPECT_EQ(nHoles, 0) << "nothing is cut away by the far plane, the pole included";
    EXPECT_EQ(sPicture.At(2, 2)[3], 0) << "the circle is whole: the corners are empty";
    EXPECT_NEAR(sPicture.At(100, 1)[1], 1, 2) << "the rim of the circle stands at the picture's edge";
}

INSTANTIATE_ENGINES(FieldOfView);
