// Panes that come and go: a picture is that of a fresh dewarper in the same state.

#include "tests/gl/engines/PanesScene.h"
#include "tests/support/DewarperSteps.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/GLRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <random>

namespace
{

using namespace PANES_SCENE;
using CPanesStatesTest = CEngineTest;
INSTANTIATE_ENGINES(CPanesStatesTest);

} // namespace

TEST_P(CPanesStatesTest, WhatIsNoPaneIsRefused)
{
    CTestFrame oFrame = NewFrame();
    CLogCapture oLog;
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    const float fNone = std::numeric_limits<float>::infinity();
    const int nMost = std::numeric_limits<int>::max();
    SPane sInfinite = PaneAt(0, 0, 8, 8);
    sInfinite.fTilt = fNone;
    SPane sRolled = PaneAt(0, 0, 8, 8);
    sRolled.fRoll = std::nanf("");
    for (const SPane& rBad :
         {PaneAt(-1, 0, 8, 8), PaneAt(0, 0, 0, 8), PaneAt(0, 0, 8, -8), PaneAt(nMost, 0, nMost, 8),
          PaneAt(0, 16000, 8, 16000), PaneAt(0, 0, 8, 8, static_cast<EViewType>(77)), sInfinite, sRolled})
        EXPECT_FALSE(d->SetPanes({PaneAt(0, 0, 8, 8), rBad}));
    EXPECT_FALSE(d->SetPanes(std::vector<SPane>(17, PaneAt(0, 0, 8, 8))));
    EXPECT_TRUE(d->GetPanes().empty());
    EXPECT_EQ(d->GetSelectedPane(), -1);
    EXPECT_TRUE(d->SetPanes(std::vector<SPane>(16, PaneAt(0, 0, 8, 8))));
    // One without room is left out, which is said once.
    ASSERT_TRUE(d->SetPanes({PaneAt(0, 0, 100, 100), PaneAt(200, 0, 100, 100)}));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    const auto IsAboutRoom = [](const SLogLine& r) {
        return r.strText.find("pane 1 (100 x 100 at 200, 0) has no room in the target (240 x 160)") !=
               std::string::npos;
    };
    EXPECT_EQ(std::count_if(oLog.Lines().begin(), oLog.Lines().end(), IsAboutRoom), 1);
    EXPECT_EQ(d.Picture().Word(220, 50), 0U);
}

TEST_P(CPanesStatesTest, AreWhatAFreshDewarperShowsInTheSameState)
{
    std::mt19937 oRandom(11);
    const auto Lot = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(oRandom); };
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    ASSERT_TRUE(d->SetPaneGap(0, 0x204060FF));
    int nShown = 0;
    EMountType eMount = MOUNT_CEILING;
    int nGap = 0;
    bool bMask = false;
    SGPolygon sMask;
    sMask.nColor = 0xFF00FFFF;
    sMask.vPoints = {{20, 20}, {60, 25}, {50, 70}};
    for (int nStep = 0; nStep < 60; ++nStep) {
        switch (Lot(7)) {
        case 0: {
            std::vector<SPane> vPanes;
            for (int n = Lot(5); n > 0; --n)
                vPanes.push_back(PaneAt(Lot(150), Lot(90), 20 + Lot(70), 20 + Lot(50),
                                        VIEWS[Lot(static_cast<int>(std::size(VIEWS)))]));
            ASSERT_TRUE(d->SetPanes(vPanes));
            break;
        }
        case 1:
            eMount = Lot(2) == 0 ? MOUNT_CEILING : MOUNT_WALL;
            d->SetMountType(eMount);
            break;
        case 2:
            nGap = Lot(9);
            d->SetPaneGap(nGap, 0x204060FF);
            break;
        case 3:
            d->OnMouseDown(Lot(WIDTH), Lot(HEIGHT));
            d->OnMouseMove(Lot(WIDTH), Lot(HEIGHT), false, false);
            d->OnMouseUp();
            break;
        case 4:
            d->RelativePTZ(static_cast<float>(Lot(90)), static_cast<float>(Lot(20)), -5.0f);
            break;
        case 5:
            d->SetViewType(VIEWS[Lot(static_cast<int>(std::size(VIEWS)))]);
            break;
        default:
            bMask = !bMask;
            d->SetMaskPolygons(bMask ? std::vector<SGPolygon>{sMask} : std::vector<SGPolygon>());
        }
        ASSERT_TRUE(d.DrawFrame(oFrame));
        const std::vector<SPane> vNow = d->GetPanes();
        if (vNow.empty())
            continue;
        ++nShown;
        CEngineDewarper oFresh(GetParam(), WIDTH, HEIGHT);
        oFresh->SetMountType(eMount);
        oFresh->SetPaneGap(nGap, 0x204060FF);
        if (bMask)
            oFresh->SetMaskPolygons({sMask});
        ASSERT_TRUE(oFresh->SetPanes(vNow));
        ASSERT_TRUE(oFresh.DrawFrame(oFrame));
        ASSERT_EQ(d.Picture().vPixels, oFresh.Picture().vPixels) << "after step " << nStep;
    }
    EXPECT_GT(nShown, 30);
}

TEST_P(CPanesStatesTest, LeaveTheOneViewAsItWas)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    d->SetViewType(VIEW_PANORAMA_DUAL);
    ASSERT_TRUE(d.DrawFrame(oFrame));
    d->AnaloguePTZ(0.5f, 0.0f, 0.0f);
    d->RelativePTZ(20.0f, 0.0f, 0.0f);
    d->AnaloguePTZ(0.0f, 0.0f, 0.0f);
    ASSERT_TRUE(d.DrawFrame(oFrame));
    const STestImage sBefore = d.Picture();
    ASSERT_TRUE(d->SetPanes(AllViews()));
    d->AbsolutePTZ(10.0f, 10.0f, 40.0f);
    ASSERT_TRUE(d.DrawFrame(oFrame));
    EXPECT_NE(d.Picture().vPixels, sBefore.vPixels);
    ASSERT_TRUE(d->SetPanes({}));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    EXPECT_EQ(d.Picture().vPixels, sBefore.vPixels);
    EXPECT_EQ(d->GetViewType(), VIEW_PANORAMA_DUAL);
}

TEST_P(CPanesStatesTest, OddOnesInYUVAreThoseOfThePicture)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(GetParam(), WIDTH, HEIGHT);
    d->SetPaneGap(3, 0xFF8000FF);
    for (const int nOdd : {0, 1}) {
        ASSERT_TRUE(d->SetPanes({PaneAt(0, 0, 120 + nOdd, 160, VIEW_FISHEYE),
                                 PaneAt(120 + nOdd, 0, 120 - nOdd, 160, VIEW_PANORAMA_FULL)}));
        ASSERT_TRUE(d.DrawFrame(oFrame));
        const STestImage sPicture = d.Picture();
        std::vector<unsigned char> vNV12(static_cast<std::size_t>(WIDTH * HEIGHT * 3 / 2));
        ASSERT_TRUE(d->CDewarper::DrawTo(vNV12.data(), WIDTH, IMAGE_FORMAT_NV12));
        // Luma of the gap, and of pixels beside it: BT.601, full range, as the frame.
        for (const int x : {60, 119 + nOdd, 121 + nOdd, 200}) {
            const unsigned char* an = sPicture.At(x, 80);
            const double fLuma = 0.299 * an[0] + 0.587 * an[1] + 0.114 * an[2];
            EXPECT_NEAR(vNV12[static_cast<std::size_t>(80 * WIDTH + x)], fLuma, 3.0) << x;
        }
    }
}

TEST(PanesGL, AreDrawnFromOneUploadWithoutMakingAnything)
{
    CTestFrame oFrame = NewFrame();
    CEngineDewarper d(ENGINE_GL, WIDTH, HEIGHT);
    std::vector<SPane> vPanes = AllViews();
    vPanes.push_back(PaneAt(0, 100, 30, 30, VIEW_VCAM));
    ASSERT_TRUE(d->SetPanes(vPanes));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    ASSERT_TRUE(d.DrawFrame(oFrame));
    CGLRecorder& rRecorder = CGLRecorder::Get();
    rRecorder.Start();
    for (int n = 0; n < 3; ++n) {
        d->OnMouseMove(5, 105, false, false);
        d->RelativePTZ(1.0f, 0.0f, 0.0f);
        ASSERT_TRUE(d.DrawFrame(oFrame));
    }
    rRecorder.Stop();
    EXPECT_EQ(rRecorder.CountPrefix("glGen"), 0);
    EXPECT_EQ(rRecorder.CountPrefix("glCreate"), 0);
    EXPECT_EQ(rRecorder.CountPrefix("glDelete"), 0);
    EXPECT_EQ(rRecorder.Count("glBufferData"), 0);
    EXPECT_EQ(rRecorder.CountPrefix("glTexSubImage"), 2 * 3) << "luma and chroma of each frame";
}
