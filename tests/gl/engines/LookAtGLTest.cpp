// Directions of points, and views that look where they are told.

#include "tests/support/DewarperSteps.h"
#include "tests/support/EngineDewarper.h"

#include <gtest/gtest.h>

#include <numbers>

namespace
{

const double RADIANS = std::numbers::pi / 180.0;

struct SLookCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    int nLens; ///< 0: ideal; -1: a lens of the host's, 200 degrees in an ellipse off the middle
    bool bOriented = false;
    bool bFlip = false;
    /// Where the view's middle is, in parts of the target.
    double fMiddleX = 0.5;
    double fMiddleY = 0.5;
};

const EMountType C = MOUNT_CEILING;
const EMountType F = MOUNT_FLOOR;
const EMountType W = MOUNT_WALL;

const SLookCase CASES[] = {
    {"camera on a ceiling", VIEW_VCAM, C, 419},
    {"camera on a floor", VIEW_VCAM, F, 215},
    {"camera on a wall", VIEW_VCAM, W, 0},
    {"camera, own lens, turned body", VIEW_VCAM, C, -1, true},
    {"camera on a floor, own lens, mirrored", VIEW_VCAM, F, -1, false, true},
    {"camera on a wall, own lens, turned body", VIEW_VCAM, W, -1, true},
    {"first of four cameras", VIEW_VCAM_QUAD, C, -1, false, false, 0.25, 0.25},
    {"first of four cameras on a floor", VIEW_VCAM_QUAD, F, 419, false, false, 0.25, 0.25},
    {"fisheye", VIEW_FISHEYE, C, 0},
    {"circular", VIEW_FISHEYE_CIRCULAR, W, -1, false, true},
    {"equirectangular on a ceiling", VIEW_EQUIRECTANGULAR, C, -1, true},
    {"equirectangular on a floor", VIEW_EQUIRECTANGULAR, F, 419},
    {"cylindrical on a wall", VIEW_CYLINDRICAL, W, -1},
    {"panini on a wall", VIEW_PANINI, W, 0, true},
    {"panini on a ceiling", VIEW_PANINI, C, -1},
};

class CLookAt : public ::testing::TestWithParam<SEngineCase<SLookCase>>
{
protected:
    void Show(CEngineDewarper& d)
    {
        const SLookCase& s = GetParam().sCase;
        m_pFrame = std::make_unique<CTestFrame>(STestImage(1200, 1000), IMAGE_FORMAT_GRAY8);
        d->SetViewType(s.eView);
        d->SetMountType(s.eMount);
        d->SetLensType(s.nLens < 0 ? LENS_UNKNOWN : static_cast<ELensType>(s.nLens));
        if (s.nLens < 0) {
            ASSERT_TRUE(d->SetLens(SLens::FromModel(LENS_STEREOGRAPHIC, 200.0)));
            ASSERT_TRUE(d->SetImageCircle(560.0f, 510.0f, 500.0f, 470.0f));
        }
        if (s.bOriented) {
            ASSERT_TRUE(d->SetMountOrientation(8.0f, -11.0f, 20.0f));
        }
        d->SetFlip(s.bFlip, s.bFlip);
        ASSERT_TRUE(d.DrawFrame(*m_pFrame));
    }

    std::unique_ptr<CTestFrame> m_pFrame;
};

INSTANTIATE_TEST_SUITE_P(Views, CLookAt, ::testing::ValuesIn(WithBothEngines(CASES)), SEngineCaseName());

double AngleBetween(const SDirection& a, const SDirection& b)
{
    const double x = a.y * b.z - a.z * b.y;
    const double y = a.z * b.x - a.x * b.z;
    const double z = a.x * b.y - a.y * b.x;
    return std::atan2(std::sqrt(x * x + y * y + z * z), a.x * b.x + a.y * b.y + a.z * b.z) / RADIANS;
}

} // namespace

TEST_P(CLookAt, BringsAPointOfTheFrameToTheMiddle)
{
    const SLookCase& s = GetParam().sCase;
    CEngineDewarper d(GetParam().eEngine, 640, 480);
    if (!d.Started())
        GTEST_SKIP();
    Show(d);
    const bool bWall = s.eMount == W;
    // Points that every mount and lens may turn to.
    for (const auto& [x, y] :
         {std::pair(700.0, 420.0), std::pair(480.0, 640.0), std::pair(bWall ? 800.0 : 420.0, 380.0)}) {
        SCOPED_TRACE(std::to_string(x) + ", " + std::to_string(y));
        ASSERT_TRUE(d->LookAt(x, y));
        ASSERT_TRUE(d->DrawGLScene(true));
        double fViewX = 0.0;
        double fViewY = 0.0;
        ASSERT_TRUE(d->FrameToView(x, y, fViewX, fViewY));
        // Cameras of known lenses are drawn through meshes that stand a pixel nearer to the middle.
        const double fWithin = s.eView <= VIEW_VCAM_QUAD && s.nLens >= 0 ? 1.4 : 0.05;
        EXPECT_NEAR(fViewX, 640.0 * s.fMiddleX, fWithin);
        EXPECT_NEAR(fViewY, 480.0 * s.fMiddleY, fWithin);
    }
}

TEST_P(CLookAt, BringsAPointOfThePictureToTheMiddle)
{
    const SLookCase& s = GetParam().sCase;
    CEngineDewarper d(GetParam().eEngine, 640, 480);
    if (!d.Started())
        GTEST_SKIP();
    Show(d);
    ASSERT_TRUE(d->LookAt(640.0, 460.0));
    ASSERT_TRUE(d->DrawGLScene(true));
    const double fX = 640.0 * s.fMiddleX + 20.0;
    const double fY = 480.0 * s.fMiddleY - 10.0;
    double fFrameX = 0.0;
    double fFrameY = 0.0;
    ASSERT_TRUE(d->ViewToFrame(fX, fY, fFrameX, fFrameY));
    ASSERT_TRUE(d->LookAtView(fX, fY));
    ASSERT_TRUE(d->DrawGLScene(true));
    ASSERT_TRUE(d->FrameToView(fFrameX, fFrameY, fFrameX, fFrameY));
    EXPECT_NEAR(fFrameX, 640.0 * s.fMiddleX, 1.4);
    EXPECT_NEAR(fFrameY, 480.0 * s.fMiddleY, 1.4);
}

TEST_P(CLookAt, DirectionsOfPointsLeadBackToThem)
{
    CEngineDewarper d(GetParam().eEngine, 640, 480);
    if (!d.Started())
        GTEST_SKIP();
    Show(d);
    int nPoints = 0;
    for (double y = 10.5; y < 480.0; y += 40.0) {
        for (double x = 10.5; x < 640.0; x += 40.0) {
            SDirection sFromView;
            SDirection sFromFrame;
            double fFrameX = 0.0;
            double fFrameY = 0.0;
            if (!d->ViewToDirection(x, y, sFromView))
                continue;
            ++nPoints;
            ASSERT_TRUE(d->ViewToFrame(x, y, fFrameX, fFrameY));
            ASSERT_TRUE(d->FrameToDirection(fFrameX, fFrameY, sFromFrame));
            EXPECT_LT(AngleBetween(sFromView, sFromFrame), 1e-6);
            double fBackX = 0.0;
            double fBackY = 0.0;
            ASSERT_TRUE(d->DirectionToView(sFromView, fBackX, fBackY));
            SDirection sAgain;
            ASSERT_TRUE(d->ViewToDirection(fBackX, fBackY, sAgain));
            EXPECT_LT(AngleBetween(sFromView, sAgain), 1e-5);
        }
    }
    EXPECT_GT(nPoints, 20);
}

TEST(Directions, AreThoseOfTheLensAndOfTheTurnedBody)
{
    CEngineDewarper d(ENGINE_CPU, 320, 240);
    CTestFrame oFrame(STestImage(1000, 800), IMAGE_FORMAT_GRAY8);
    SDirection s;
    EXPECT_FALSE(d->FrameToDirection(500.0, 400.0, s)) << "nothing was drawn yet";
    EXPECT_FALSE(d->LookAt(500.0, 400.0));
    ASSERT_TRUE(d->SetLens(SLens::FromModel(LENS_EQUIDISTANT, 200.0)));
    ASSERT_TRUE(d->SetImageCircle(450.0f, 420.0f, 300.0f, 300.0f));
    ASSERT_TRUE(d->SetMountOrientation(0.0f, 30.0f, 0.0f));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    ASSERT_TRUE(d->FrameToDirection(450.0, 420.0, s));
    EXPECT_LT(AngleBetween(s, {0.0, std::sin(30.0 * RADIANS), std::cos(30.0 * RADIANS)}), 1e-5);
    // 150 of 300 pixels to the right are 50 of 100 degrees.
    ASSERT_TRUE(d->FrameToDirection(600.0, 420.0, s));
    const double c = std::cos(50.0 * RADIANS);
    EXPECT_LT(AngleBetween(
                  s, {std::sin(50.0 * RADIANS), c * std::sin(30.0 * RADIANS), c * std::cos(30.0 * RADIANS)}),
              1e-5);
    EXPECT_FALSE(d->FrameToDirection(760.0, 420.0, s)) << "outside of the circle";
    double x = 1.0;
    double y = 2.0;
    EXPECT_FALSE(d->DirectionToView({0.0, 0.0, 0.0}, x, y));
    EXPECT_FALSE(d->DirectionToView({0.0, std::nan(""), 1.0}, x, y));
    EXPECT_EQ(x, 1.0);
    EXPECT_FALSE(d->LookAt(std::nan(""), 3.0));
}

TEST(Directions, StripsSlideToAPointAndPanesRefuseToTurn)
{
    CEngineDewarper d(ENGINE_CPU, 1000, 140);
    CTestFrame oFrame(STestImage(1000, 1000), IMAGE_FORMAT_GRAY8);
    for (const EMountType eMount : {C, F}) {
        d->SetViewType(VIEW_PANORAMA_FULL);
        d->SetMountType(eMount);
        ASSERT_TRUE(d.DrawFrame(oFrame));
        ASSERT_TRUE(d->LookAt(200.0, 380.0));
        ASSERT_TRUE(d->DrawGLScene(true));
        double x = 0.0;
        double y = 0.0;
        ASSERT_TRUE(d->FrameToView(200.0, 380.0, x, y));
        EXPECT_NEAR(x, 500.0, 0.5);
    }
    d->SetViewType(VIEW_PANORAMA_DUAL);
    ASSERT_TRUE(d.DrawFrame(oFrame));
    EXPECT_FALSE(d->LookAt(200.0, 380.0));
}
