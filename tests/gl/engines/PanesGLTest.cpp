// Several views in one picture: each pane is what a dewarper of its own would draw, whatever came before.

#include "tests/gl/engines/PanesScene.h"
#include "tests/support/DewarperSteps.h"
#include "tests/support/EngineDewarper.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using namespace PANES_SCENE;

using CPanesTest = CEngineTest;
INSTANTIATE_ENGINES(CPanesTest);

STestImage White(int nSize)
{
    STestImage sImage(nSize, nSize);
    std::fill(sImage.vPixels.begin(), sImage.vPixels.end(), static_cast<unsigned char>(255));
    return sImage;
}

/// Pixels of a rectangle that are not those of a picture of its size. A driver counts a pane's pixels from
/// another corner, so that what it rounds may be off by a level or two.
int CountDifferences(const STestImage& rPicture, const SGRect& r, const STestImage& rExpected, int nMost)
{
    EXPECT_EQ(rExpected.nWidth, r.width);
    EXPECT_GE(rExpected.nHeight, r.height);
    int nDifferent = 0;
    for (int y = 0; y < r.height; ++y) {
        for (int x = 0; x < r.width; ++x) {
            int nFarthest = 0;
            for (int i = 0; i < 4; ++i)
                nFarthest =
                    std::max(nFarthest, std::abs(rPicture.At(r.x + x, r.y + y)[i] - rExpected.At(x, y)[i]));
            nDifferent += nFarthest > nMost ? 1 : 0;
        }
    }
    return nDifferent;
}

int RoundingOf(EDewarpEngine eEngine)
{
    return eEngine == ENGINE_GL ? 2 : 0;
}

/// An output overlay that is transparent but for a corner.
void LayNothingOver(CEngineDewarper& d, int nWidth, int nHeight)
{
    std::vector<unsigned char> vOverlay(static_cast<std::size_t>(nWidth * nHeight * 4), 0);
    std::fill(vOverlay.end() - 4, vOverlay.end(), static_cast<unsigned char>(255));
    EXPECT_EQ(d->SetOutputOverlay(vOverlay.data(), nWidth, nHeight, 0, {}), 1);
}

/// What a dewarper that knows no panes draws for one.
STestImage DrawAlone(EDewarpEngine eEngine, const SPane& rPane, EMountType eMount, CTestFrame& rFrame,
                     bool bOverlay = false)
{
    CEngineDewarper d(eEngine, rPane.sRect.width, rPane.sRect.height);
    d->SetViewType(rPane.eView);
    d->SetMountType(eMount);
    d->SetInterpolationType(INTERPOLATION_LINEAR);
    d->SetRoll(rPane.fRoll);
    d->SetEyeDistance(rPane.fEyeDistance);
    if (!std::isnan(rPane.fPan))
        d->AbsolutePTZ(rPane.fPan, rPane.fTilt, rPane.fZoom);
    if (bOverlay)
        LayNothingOver(d, rPane.sRect.width, rPane.sRect.height);
    EXPECT_TRUE(d.DrawFrame(rFrame));
    return d.Picture();
}

} // namespace

TEST_P(CPanesTest, EachShowsWhatADewarperOfItsOwnWould)
{
    for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR}) {
        CTestFrame oFrame = NewFrame();
        CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
        const std::vector<SPane> vPanes = AllViews();
        ASSERT_TRUE(d->SetPanes(vPanes));
        d->SetMountType(eMount);
        d->SetInterpolationType(INTERPOLATION_LINEAR);
        ASSERT_TRUE(d.DrawFrame(oFrame));
        const STestImage sPicture = d.Picture();
        for (const SPane& rPane : vPanes)
            EXPECT_EQ(CountDifferences(sPicture, rPane.sRect, DrawAlone(GetParam(), rPane, eMount, oFrame),
                                       RoundingOf(GetParam())),
                      0)
                << "view " << rPane.eView << ", mount " << eMount;
        // Below them there is nothing.
        for (int x = 0; x < WIDTH; ++x)
            EXPECT_EQ(sPicture.Word(x, 155), 0U);
    }
}

TEST_P(CPanesTest, StandUnderTextAndOutputOverlay)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    const std::vector<SPane> vPanes = AllViews();
    d->SetInterpolationType(INTERPOLATION_LINEAR);
    ASSERT_TRUE(d->SetPanes(vPanes));
    LayNothingOver(d, WIDTH, HEIGHT);
    ASSERT_TRUE(d.DrawFrame(oFrame));
    const STestImage sPicture = d.Picture();
    for (const SPane& rPane : vPanes) {
        const STestImage sAlone = DrawAlone(GetParam(), rPane, MOUNT_CEILING, oFrame, true);
        // The corner of its overlay is not the picture's.
        SGRect sRows = rPane.sRect;
        sRows.height -= 1;
        EXPECT_EQ(CountDifferences(sPicture, sRows, sAlone, 2), 0) << "view " << rPane.eView;
    }
}

TEST_P(CPanesTest, StandAGapApartAndShowItsColour)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    ASSERT_TRUE(d->SetPaneGap(5, 0x12345680));
    ASSERT_TRUE(d->SetPanes({PaneAt(0, 0, 120, 160, VIEW_FISHEYE), PaneAt(120, 0, 120, 160, VIEW_FISHEYE),
                             PaneAt(100, 60, 40, 40, VIEW_FISHEYE)}));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    const STestImage sPicture = d.Picture();
    const unsigned int nGap = 0x12345680;
    for (int x = 0; x < WIDTH; ++x)
        EXPECT_EQ(sPicture.Word(x, 20) == nGap, x >= 118 && x < 123) << x;
    // The one that lies over both has a frame of half a gap.
    for (int x = 98; x < 142; ++x) {
        const bool bFrame = (x >= 100 && x < 103) || (x >= 138 && x < 140);
        EXPECT_EQ(sPicture.Word(x, 80) == nGap, bFrame) << x;
    }
    EXPECT_FALSE(d->SetPaneGap(-1, 0));
}

TEST_P(CPanesTest, SteeringGoesToTheOneUnderThePointer)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    std::vector<SPane> vPanes = {PaneAt(0, 0, 120, 160), PaneAt(120, 0, 120, 160)};
    for (SPane& rPane : vPanes) {
        rPane.fPan = 10.0f;
        rPane.fTilt = 40.0f;
        rPane.fZoom = 60.0f;
    }
    d->SetInterpolationType(INTERPOLATION_LINEAR);
    ASSERT_TRUE(d->SetPanes(vPanes));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    EXPECT_EQ(d->GetSelectedPane(), 0);
    d->OnMouseMove(180, 80, false, false);
    EXPECT_EQ(d->GetSelectedPane(), 1);
    d->OnMouseWheel(120.0);
    d->OnMouseDown(180, 80);
    // A drag keeps its pane, also beyond it.
    d->OnMouseMove(100, 80, false, false);
    d->OnMouseUp();
    ASSERT_TRUE(d.DrawFrame(oFrame));
    const std::vector<SPane> vNow = d->GetPanes();
    EXPECT_EQ(vNow[0].fPan, 10.0f);
    EXPECT_EQ(vNow[0].fZoom, 60.0f);
    EXPECT_NE(vNow[1].fPan, 10.0f);
    EXPECT_EQ(vNow[1].fZoom, 50.0f);
    // As a dewarper of its own is moved by the same pixels.
    CEngineDewarper oAlone(GetParam(), 120, 160);
    oAlone->AbsolutePTZ(10.0f, 40.0f, 60.0f);
    oAlone->SetInterpolationType(INTERPOLATION_LINEAR);
    ASSERT_TRUE(oAlone.DrawFrame(oFrame));
    oAlone->OnMouseWheel(120.0);
    oAlone->OnMouseDown(60, 80);
    oAlone->OnMouseMove(-20, 80, false, false);
    ASSERT_TRUE(oAlone.DrawFrame(oFrame));
    EXPECT_EQ(CountDifferences(d.Picture(), vPanes[1].sRect, oAlone.Picture(), RoundingOf(GetParam())), 0);

    ASSERT_TRUE(d->SelectPane(0));
    EXPECT_FALSE(d->SelectPane(2));
    EXPECT_FALSE(d->SelectPane(-1));
    d->SetViewType(VIEW_PANORAMA_FULL);
    EXPECT_EQ(d->GetViewType(), VIEW_PANORAMA_FULL);
    EXPECT_EQ(d->GetPanes()[0].eView, VIEW_PANORAMA_FULL);
    EXPECT_EQ(d->GetPanes()[1].eView, VIEW_VCAM);
    d->AnaloguePTZ(1.0f, 0.0f, 0.0f);
    ASSERT_TRUE(d->SelectPane(1));
    const float fPan = d.Pan();
    ASSERT_TRUE(d.DrawFrame(oFrame));
    EXPECT_TRUE(d->IsDrawRequired());
    EXPECT_EQ(d.Pan(), fPan);
}

TEST_P(CPanesTest, OneIsTurnedToAPointOfThePicture)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    ASSERT_TRUE(d->SetPanes({PaneAt(0, 0, 120, 160, VIEW_FISHEYE), PaneAt(120, 0, 120, 160)}));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    double fFrameX = 0.0;
    double fFrameY = 0.0;
    ASSERT_TRUE(d->CDewarper::ViewToFrame(200.0, 100.0, fFrameX, fFrameY));
    ASSERT_TRUE(d->LookAtView(200.0, 100.0));
    EXPECT_EQ(d->GetSelectedPane(), 1);
    ASSERT_TRUE(d.DrawFrame(oFrame));
    double x = 0.0;
    double y = 0.0;
    ASSERT_TRUE(d->CDewarper::ViewToFrame(180.0, 80.0, x, y));
    // A virtual camera of a known lens stands a pixel beside the optics.
    EXPECT_NEAR(x, fFrameX, 1.5);
    EXPECT_NEAR(y, fFrameY, 1.5);
}

TEST_P(CPanesTest, PointsAreThoseOfADewarperOfItsOwn)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    std::vector<SPane> vPanes = AllViews();
    // Over the others.
    vPanes.push_back(PaneAt(30, 20, 50, 30, VIEW_PANORAMA_FULL));
    ASSERT_TRUE(d->SetPanes(vPanes));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    int nCompared = 0;
    for (std::size_t n = 0; n < vPanes.size(); ++n) {
        const SGRect& r = vPanes[n].sRect;
        CEngineDewarper oAlone(GetParam(), r.width, r.height);
        oAlone->SetViewType(vPanes[n].eView);
        oAlone->SetRoll(vPanes[n].fRoll);
        oAlone->SetEyeDistance(vPanes[n].fEyeDistance);
        if (!std::isnan(vPanes[n].fPan))
            oAlone->AbsolutePTZ(vPanes[n].fPan, vPanes[n].fTilt, vPanes[n].fZoom);
        ASSERT_TRUE(oAlone.DrawFrame(oFrame));
        for (const double fShare : {0.13, 0.5, 0.81}) {
            const SPointD sInside = {r.width * fShare, r.height * (1.0 - fShare)};
            const SPointD sPoint = {r.x + sInside.x, r.y + sInside.y};
            const SGRect& rTop = vPanes.back().sRect;
            if (n + 1 < vPanes.size() && sPoint.x >= rTop.x && sPoint.x < rTop.x + rTop.width &&
                sPoint.y >= rTop.y && sPoint.y < rTop.y + rTop.height)
                continue;
            SPointD sFrame;
            SPointD sExpected;
            const int nFound = d->ViewToFrame(&sPoint, &sFrame, nullptr, 1);
            EXPECT_EQ(nFound, oAlone->ViewToFrame(&sInside, &sExpected, nullptr, 1));
            if (nFound == 1) {
                EXPECT_NEAR(sFrame.x, sExpected.x, 1e-6);
                EXPECT_NEAR(sFrame.y, sExpected.y, 1e-6);
                ++nCompared;
            }
            SPointD sBack;
            // A point of the frame is found where a pane shows it, and that shows the point again.
            if (nFound == 1 && d->FrameToView(&sFrame, &sBack, nullptr, 1) == 1) {
                SPointD sAgain;
                ASSERT_EQ(d->ViewToFrame(&sBack, &sAgain, nullptr, 1), 1);
                EXPECT_NEAR(sAgain.x, sFrame.x, 1e-4);
                EXPECT_NEAR(sAgain.y, sFrame.y, 1e-4);
            }
        }
    }
    EXPECT_GT(nCompared, 18);
}

TEST_P(CPanesTest, HideWhatIsMaskedInAllOfThem)
{
    CTestFrame oFrame(White(96), IMAGE_FORMAT_RGBA32);
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    ASSERT_TRUE(d->SetPanes(AllViews()));
    SGPolygon sAll;
    sAll.nColor = 0x0000FFFF;
    sAll.vPoints = {{-10, -10}, {200, -10}, {200, 200}, {-10, 200}};
    d->SetMaskPolygons({sAll});
    ASSERT_TRUE(d.DrawFrame(oFrame));
    const STestImage sPicture = d.Picture();
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x)
            ASSERT_LE(sPicture.At(x, y)[0], 0) << x << ", " << y;
}
