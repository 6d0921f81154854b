// Points that can be told by hand, and questions that have no answer.

#include "tests/unit/mapping/PointScene.h"

#include <gtest/gtest.h>
#include <limits>

namespace
{

/// The whole frame, flat.
SPointSetup Flat(int nFrameWidth, int nFrameHeight, int nWidth, int nHeight)
{
    SPointSetup s;
    s.eView = VIEW_FISHEYE;
    s.nFrameWidth = nFrameWidth;
    s.nFrameHeight = nFrameHeight;
    s.nWidth = nWidth;
    s.nHeight = nHeight;
    return s;
}

/// A point of the picture shows a point of the frame, and is where that is shown.
void ExpectPair(CPointScene& rScene, const SPointD& rView, const SPointD& rFrame)
{
    SPointD s;
    ASSERT_TRUE(rScene.ToFrame(rView, s)) << rView.x << ", " << rView.y;
    EXPECT_NEAR(s.x, rFrame.x, 0.001) << rView.x << ", " << rView.y;
    EXPECT_NEAR(s.y, rFrame.y, 0.001) << rView.x << ", " << rView.y;
    ASSERT_TRUE(rScene.ToView(rFrame, s)) << rFrame.x << ", " << rFrame.y;
    EXPECT_NEAR(s.x, rView.x, 0.001) << rFrame.x << ", " << rFrame.y;
    EXPECT_NEAR(s.y, rView.y, 0.001) << rFrame.x << ", " << rFrame.y;
}

void ExpectNothingAt(CPointScene& rScene, const SPointD& rView)
{
    SPointD s;
    EXPECT_FALSE(rScene.ToFrame(rView, s)) << rView.x << ", " << rView.y;
    EXPECT_TRUE(std::isnan(s.x) && std::isnan(s.y));
}

} // namespace

TEST(PointMap, AFlatPictureOfTheFramesSizeIsTheFrame)
{
    CPointScene oScene(Flat(400, 200, 400, 200));
    for (const SPointD& r : {SPointD{0.5, 0.5}, {200.0, 100.0}, {399.5, 199.5}, {3.25, 150.75}})
        ExpectPair(oScene, r, r);
}

TEST(PointMap, BarsShowNothing)
{
    CPointScene oScene(Flat(400, 200, 200, 200));
    ExpectPair(oScene, {100.0, 100.0}, {200.0, 100.0});
    ExpectPair(oScene, {10.0, 60.0}, {20.0, 20.0});
    ExpectNothingAt(oScene, {100.0, 49.9});
    ExpectNothingAt(oScene, {100.0, 150.1});
    oScene.Show(Flat(400, 200, 800, 200));
    ExpectPair(oScene, {210.0, 20.0}, {10.0, 20.0});
    ExpectNothingAt(oScene, {199.9, 100.0});
    ExpectNothingAt(oScene, {600.1, 100.0});
}

TEST(PointMap, APictureEndsWhereItsPixelsDo)
{
    CPointScene oScene(Flat(400, 200, 400, 200));
    SPointD s;
    EXPECT_TRUE(oScene.ToFrame({0.0, 0.0}, s));
    EXPECT_TRUE(oScene.ToFrame({399.999999, 199.999999}, s));
    ExpectNothingAt(oScene, {-1e-9, 100.0});
    ExpectNothingAt(oScene, {200.0, -1e-9});
    ExpectNothingAt(oScene, {400.0, 100.0});
    ExpectNothingAt(oScene, {200.0, 200.0});
    EXPECT_FALSE(oScene.ToView({-0.01, 100.0}, s));
    EXPECT_FALSE(oScene.ToView({200.0, 200.01}, s));
}

TEST(PointMap, FlipsMirror)
{
    SPointSetup s = Flat(400, 200, 400, 200);
    s.bFlipHorizontal = true;
    CPointScene oScene(s);
    ExpectPair(oScene, {10.5, 20.5}, {389.5, 20.5});
    s.bFlipVertical = true;
    oScene.Show(s);
    ExpectPair(oScene, {10.5, 20.5}, {389.5, 179.5});
    oScene.oMap.SetDrawn(oScene.sDecision, false);
    ExpectPair(oScene, {10.5, 20.5}, {10.5, 20.5});
}

TEST(PointMap, TurnsAreClockwise)
{
    SPointSetup s = Flat(400, 200, 200, 400);
    s.nRotation = 90;
    CPointScene oScene(s);
    // The frame's upper left corner is the picture's upper right.
    ExpectPair(oScene, {199.5, 0.5}, {0.5, 0.5});
    ExpectPair(oScene, {190.0, 30.0}, {30.0, 10.0});
    s.nRotation = 270;
    oScene.Show(s);
    ExpectPair(oScene, {0.5, 399.5}, {0.5, 0.5});
}

TEST(PointMap, WhatIsDrawnLaterLiesAbove)
{
    CPointScene oScene(Flat(400, 200, 400, 200));
    // Once more, half as large, over the middle.
    SFrameDecision d = oScene.sDecision;
    d.nParts = 2;
    d.aParts[1] = d.aParts[0];
    for (int i = 0; i < 8; ++i)
        d.aParts[1].fMVP[i] *= 0.5f;
    oScene.oMap.SetDrawn(d, true);
    SPointD s;
    ASSERT_TRUE(oScene.ToFrame({150.0, 75.0}, s));
    EXPECT_NEAR(s.x, 100.0, 0.001);
    EXPECT_NEAR(s.y, 50.0, 0.001);
    // Seen twice: where it was drawn first. Hidden there: where it is seen.
    ExpectPair(oScene, {50.0, 25.0}, {50.0, 25.0});
    ASSERT_TRUE(oScene.ToView({150.0, 100.0}, s));
    EXPECT_NEAR(s.x, 175.0, 0.001);
    EXPECT_NEAR(s.y, 100.0, 0.001);
}

TEST(PointMap, PartsKeepToTheirPlace)
{
    SPointSetup sQuad = Flat(1000, 1000, 321, 241);
    sQuad.eView = VIEW_VCAM_QUAD;
    CPointScene oScene(sQuad);
    // Quarters leave an odd picture's last column and first row.
    ExpectNothingAt(oScene, {320.5, 120.0});
    ExpectNothingAt(oScene, {160.0, 0.5});
    SPointD s;
    EXPECT_TRUE(oScene.ToFrame({319.5, 1.5}, s));
    // What several quarters show is found in the first of them.
    ASSERT_TRUE(oScene.ToFrame({240.0, 181.0}, s));
    SPointD sPlace;
    ASSERT_TRUE(oScene.ToView(s, sPlace));
    EXPECT_LT(sPlace.x, 160.0);
    EXPECT_LT(sPlace.y, 121.0);
}

TEST(PointMap, RowsCountFromThePicturesTopWhereverTheTargetBegins)
{
    for (const EViewType eView : {VIEW_VCAM_QUAD, VIEW_PANORAMA_FULL, VIEW_PANORAMA_QUARTER}) {
        SPointSetup s = Flat(1000, 1000, 321, 241);
        s.eView = eView;
        s.eMount = eView == VIEW_PANORAMA_FULL ? MOUNT_WALL : MOUNT_CEILING;
        CPointScene oDown(s);
        s.bTopDown = false;
        CPointScene oUp(s);
        int nShown = 0;
        for (int nRow = 0; nRow < 241; nRow += 5)
            for (int nCol = 0; nCol < 321; nCol += 5) {
                const double x = nCol + 0.5;
                const double y = nRow + 0.5;
                SPointD a;
                SPointD b;
                const bool bShown = oDown.ToFrame({x, y}, a);
                ASSERT_EQ(bShown, oUp.ToFrame({x, y}, b)) << s.Words() << x << ", " << y;
                if (!bShown)
                    continue;
                EXPECT_LT(Distance(a, b), 1e-9);
                ++nShown;
            }
        EXPECT_GT(nShown, 500);
    }
}

TEST(PointMap, NothingIsKnownBeforeAPictureIsDrawn)
{
    CPointMap oMap;
    SPointD s;
    bool bValid = true;
    const SPointD sPoint = {1.0, 1.0};
    EXPECT_EQ(oMap.ViewToFrame(&sPoint, &s, &bValid, 1), 0);
    EXPECT_FALSE(bValid);
    EXPECT_TRUE(std::isnan(s.x));
    EXPECT_EQ(oMap.FrameToView(&sPoint, &s, nullptr, 1), 0);
    EXPECT_EQ(oMap.CountBytes(), 0u);
}

TEST(PointMap, NothingIsMadeUnlessItIsAsked)
{
    SPointSetup s = Flat(1000, 1000, 320, 240);
    s.eView = VIEW_VCAM;
    CPointScene oScene(s);
    EXPECT_EQ(oScene.oMap.CountBytes(), 0u);
    EXPECT_EQ(oScene.oMap.ViewToFrame(nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(oScene.oMap.CountBytes(), 0u);
    SPointD sFrame;
    EXPECT_TRUE(oScene.ToFrame({160.0, 120.0}, sFrame));
    EXPECT_GT(oScene.oMap.CountBytes(), 0u);
}

TEST(PointMap, AnswersFollowThePicture)
{
    CPointScene oScene(Flat(400, 200, 400, 200));
    ExpectPair(oScene, {50.0, 50.0}, {50.0, 50.0});
    oScene.Show(Flat(400, 200, 800, 400));
    ExpectPair(oScene, {50.0, 50.0}, {25.0, 25.0});
    oScene.Show(Flat(800, 400, 800, 400));
    ExpectPair(oScene, {50.0, 50.0}, {50.0, 50.0});
}

TEST(PointMap, ManyPointsInPlaceAndWithHoles)
{
    CPointScene oScene(Flat(400, 200, 200, 200));
    SPointD aPoints[3] = {{100.0, 100.0}, {100.0, 10.0}, {10.0, 60.0}};
    bool abValid[3] = {false, true, false};
    EXPECT_EQ(oScene.oMap.ViewToFrame(aPoints, aPoints, abValid, 3), 2);
    EXPECT_TRUE(abValid[0] && !abValid[1] && abValid[2]);
    EXPECT_NEAR(aPoints[2].x, 20.0, 0.001);
    EXPECT_TRUE(std::isnan(aPoints[1].x));
    // What was no point stays none.
    EXPECT_EQ(oScene.oMap.FrameToView(aPoints, aPoints, nullptr, 3), 2);
    EXPECT_NEAR(aPoints[2].y, 60.0, 0.001);
    EXPECT_TRUE(std::isnan(aPoints[1].x));
    EXPECT_EQ(oScene.oMap.ViewToFrame(aPoints, aPoints, abValid, -1), 0);
    EXPECT_EQ(oScene.oMap.ViewToFrame(nullptr, aPoints, abValid, 3), 0);
    EXPECT_FALSE(abValid[0]);
    EXPECT_EQ(oScene.oMap.ViewToFrame(aPoints, nullptr, nullptr, 3), 0);
}

TEST(PointMap, NumbersThatAreNoPlaceHaveNoAnswer)
{
    const double fNone = std::numeric_limits<double>::quiet_NaN();
    const double fFar = std::numeric_limits<double>::infinity();
    const double fMost = std::numeric_limits<double>::max();
    for (const EViewType eView : {VIEW_FISHEYE, VIEW_VCAM, VIEW_VCAM_QUAD, VIEW_PANORAMA_DUAL}) {
        SPointSetup sSetup = Flat(1000, 1000, 320, 240);
        sSetup.eView = eView;
        CPointScene oScene(sSetup);
        for (const double f : {fNone, fFar, -fFar, fMost, -fMost, 1e15, -1e15, 1e9})
            for (const SPointD& r : {SPointD{f, 100.0}, {100.0, f}, {f, f}}) {
                SPointD s;
                EXPECT_FALSE(oScene.ToFrame(r, s)) << f;
                EXPECT_FALSE(oScene.ToView(r, s)) << f;
            }
    }
}

TEST(PointMap, TheSmallestPicturesAndFrames)
{
    CPointScene oScene(Flat(2, 2, 1, 1));
    ExpectPair(oScene, {0.5, 0.5}, {1.0, 1.0});
    oScene.Show(Flat(2, 2, 2, 2));
    ExpectPair(oScene, {1.5, 0.5}, {1.5, 0.5});
    for (const EViewType eView :
         {VIEW_FISHEYE_CIRCULAR, VIEW_VCAM, VIEW_VCAM_QUAD, VIEW_PANORAMA_FULL, VIEW_PANORAMA_HALF,
          VIEW_PANORAMA_QUARTER, VIEW_PANORAMA_DUAL, VIEW_PANORAMA_TRIPLE})
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR})
            for (const int nSide : {1, 2, 3}) {
                SPointSetup s = Flat(2, 2, nSide, nSide);
                s.eView = eView;
                s.eMount = eMount;
                oScene.Show(s);
                for (int n = 0; n < 4 * nSide * nSide; ++n) {
                    const int nRow = n / (2 * nSide);
                    SPointD sFrame;
                    SPointD sView;
                    SPointD sAgain;
                    if (!oScene.ToFrame({n % (2 * nSide) * 0.5 + 0.25, nRow * 0.5 + 0.25}, sFrame))
                        continue;
                    ASSERT_TRUE(oScene.ToView(sFrame, sView)) << s.Words();
                    ASSERT_TRUE(oScene.ToFrame(sView, sAgain)) << s.Words();
                    EXPECT_LT(Distance(sAgain, sFrame), 2e-6) << s.Words();
                }
            }
}
