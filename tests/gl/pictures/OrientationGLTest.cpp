// Which way round pictures stand: flips, turns, and the same in every view.
#include "tests/support/EngineDewarper.h"

#include <gtest/gtest.h>

/// The same picture, turned clockwise by quarters, then mirrored.
static STestImage Expected(const STestImage& sPicture, int nQuarters, bool bHorizontal, bool bVertical)
{
    STestImage sResult = sPicture;
    for (int i = 0; i < nQuarters; ++i) {
        STestImage sTurned(sResult.nHeight, sResult.nWidth);
        for (int y = 0; y < sTurned.nHeight; ++y)
            for (int x = 0; x < sTurned.nWidth; ++x) {
                const unsigned char* p = sResult.At(y, sResult.nHeight - 1 - x);
                sTurned.Set(x, y, p[0], p[1], p[2], p[3]);
            }
        sResult = sTurned;
    }
    STestImage sMirrored(sResult.nWidth, sResult.nHeight);
    for (int y = 0; y < sResult.nHeight; ++y)
        for (int x = 0; x < sResult.nWidth; ++x) {
            const unsigned char* p =
                sResult.At(bHorizontal ? sResult.nWidth - 1 - x : x, bVertical ? sResult.nHeight - 1 - y : y);
            sMirrored.Set(x, y, p[0], p[1], p[2], p[3]);
        }
    return sMirrored;
}

using Orientation = CEngineTest;

TEST_P(Orientation, TurnsAndFlipsShowAsAPersonWouldExpect)
{
    const STestImage sPicture = AsymmetricPicture(48, 32);
    CTestFrame oFrame(sPicture, IMAGE_FORMAT_RGB24);
    for (int nQuarters = 0; nQuarters < 4; ++nQuarters)
        for (int nFlips = 0; nFlips < 4; ++nFlips) {
            const bool bHorizontal = (nFlips & 1) != 0;
            const bool bVertical = (nFlips & 2) != 0;
            SCOPED_TRACE("turned by " + std::to_string(90 * nQuarters) + (bHorizontal ? " h" : "") +
                         (bVertical ? " v" : ""));
            const STestImage sWanted = Expected(sPicture, nQuarters, bHorizontal, bVertical);
            CEngineDewarper oDewarper(GetParam(), sWanted.nWidth, sWanted.nHeight);
            ASSERT_TRUE(oDewarper.Started());
            oDewarper->SetViewType(VIEW_FISHEYE);
            oDewarper->SetRotation(90 * nQuarters);
            oDewarper->SetFlip(bHorizontal, bVertical);
            ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
            EXPECT_EQ(CompareImages(oDewarper.Picture(), sWanted).nMax, 0);
        }
}

TEST_P(Orientation, RequestsBetweenFramesTurnThePictureToo)
{
    const STestImage sPicture = AsymmetricPicture(40, 40);
    CTestFrame oFrame(sPicture, IMAGE_FORMAT_NV12);
    CEngineDewarper oDewarper(GetParam(), 40, 40);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sUpright = oDewarper.Picture();
    oDewarper->SetFlip(true, false);
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    EXPECT_EQ(CompareImages(oDewarper.Picture(), Expected(sUpright, 0, true, false)).nMax, 0);
    oDewarper->SetRotation(90);
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    EXPECT_EQ(CompareImages(oDewarper.Picture(), Expected(sUpright, 1, true, false)).nMax, 0);
    oDewarper->SetRotation(270);
    oDewarper->SetFlip(false, true);
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    EXPECT_EQ(CompareImages(oDewarper.Picture(), Expected(sUpright, 3, false, true)).nMax, 0);
    oDewarper->SetRotation(0);
    oDewarper->SetFlip(false, false);
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    EXPECT_EQ(CompareImages(oDewarper.Picture(), sUpright).nMax, 0);
}

TEST_P(Orientation, ARotationThatIsNoQuarterTurnIsRefused)
{
    CEngineDewarper oPlain(GetParam(), 16, 16);
    CLogCapture oLog;
    oPlain->SetRotation(45);
    oPlain->SetRotation(-90);
    EXPECT_EQ(oPlain->GetRotation(), 0);
    EXPECT_EQ(oLog.Lines().size(), 2u);
}

TEST_P(Orientation, PanAndTiltMoveTheFlatPictureAndZoomEnlargesIt)
{
    const STestImage sPicture = AsymmetricPicture(64, 64);
    CTestFrame oFrame(sPicture, IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), 64, 64);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    // 45 degrees are a quarter of the picture: to the left for pan, up for tilt.
    oDewarper->AbsolutePTZ(45.0f, 0.0f, 180.0f);
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    STestImage sMoved = oDewarper.Picture();
    for (int x = 1; x < 47; ++x)
        EXPECT_EQ(sMoved.Word(x, 40), sPicture.Word(x + 16, 40)) << x;
    oDewarper->AbsolutePTZ(0.0f, 45.0f, 180.0f);
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    sMoved = oDewarper.Picture();
    for (int y = 1; y < 47; ++y)
        EXPECT_EQ(sMoved.Word(40, y), sPicture.Word(40, y + 16)) << y;
    EXPECT_EQ(sMoved.At(40, 60)[3], 0) << "nothing is drawn beside the picture";
}

INSTANTIATE_ENGINES(Orientation);
