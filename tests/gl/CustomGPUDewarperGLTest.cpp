// Control operations and what the next frame makes of them.
#include "tests/support/TestDewarper.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

class CustomGPUDewarper : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(oDewarper.Started()); }

    /// Chooses view and mount and draws one frame.
    void Show(EViewType eView, EMountType eMount)
    {
        oDewarper.SetViewType(eView);
        oDewarper.SetMountType(eMount);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    }
    void ExpectPTZ(float fPan, float fTilt, float fZoom)
    {
        EXPECT_EQ(oDewarper.pParams->fPan, fPan);
        EXPECT_EQ(oDewarper.pParams->fTilt, fTilt);
        EXPECT_EQ(oDewarper.pParams->fZoom, fZoom);
    }

    CTestDewarper oDewarper{96, 64};
    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_RGB24};
};

TEST_F(CustomGPUDewarper, DrawsNothingBeforeTheFirstFrame)
{
    EXPECT_FALSE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(CGLRecorder::Get().Count("glDrawArrays"), 0);
}

TEST_F(CustomGPUDewarper, ShowsTheVirtualCameraOfACeilingCameraWhenNothingWasChosen)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.pParams->eViewType, VIEW_VCAM);
    EXPECT_EQ(oDewarper.pParams->eMountType, MOUNT_CEILING);
    ExpectPTZ(90.0f, 0.0f, 180.0f);
}

TEST_F(CustomGPUDewarper, AskingForNoViewWhileNoneIsInForceShowsTheVirtualCamera)
{
    oDewarper.SetViewType(VIEW_UNSET);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.pParams->eViewType, VIEW_VCAM);
    EXPECT_EQ(oDewarper.GetViewType(), VIEW_VCAM);
}

TEST_F(CustomGPUDewarper, AskingForNoViewWhileOneIsInForceShowsTheFisheyeForOneFrame)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    oDewarper.SetViewType(VIEW_UNSET);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.pParams->eViewType, VIEW_UNSET);
    EXPECT_EQ(static_cast<void*>(oDewarper.pActiveViewObject), static_cast<void*>(oDewarper.pFisheye));
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.pParams->eViewType, VIEW_VCAM);
}

TEST_F(CustomGPUDewarper, EveryViewAndMountChoosesItsObject)
{
    struct SRow
    {
        EViewType eView;
        EMountType eMount;
        void* pObject;
    };
    const CCustomGPUDewarper& o = oDewarper;
    const SRow aRows[] = {
        {VIEW_VCAM, MOUNT_CEILING, o.pVCAM},
        {VIEW_VCAM, MOUNT_WALL, o.pVCAM},
        {VIEW_PANORAMA_QUARTER, MOUNT_CEILING, o.pPanorama},
        {VIEW_PANORAMA_QUARTER, MOUNT_WALL, o.pPanoramaWall},
        {VIEW_FISHEYE, MOUNT_FLOOR, o.pFisheye},
        {VIEW_PANORAMA_FULL, MOUNT_FLOOR, o.pPanorama},
        {VIEW_PANORAMA_FULL, MOUNT_WALL, o.pPanoramaWall},
        {VIEW_PANORAMA_HALF, MOUNT_WALL, o.pPanoramaWall},
        {VIEW_PANORAMA_HALF, MOUNT_CEILING, o.pPanorama},
        {VIEW_PANORAMA_DUAL, MOUNT_CEILING, o.pPanoramaDual},
        {VIEW_PANORAMA_TRIPLE, MOUNT_CEILING, o.pPanoramaTriple},
        {VIEW_VCAM_QUAD, MOUNT_FLOOR, o.pVCAM},
        {VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING, o.pFisheyeCircular},
        {static_cast<EViewType>(77), MOUNT_CEILING, o.pFisheye},
    };
    for (const SRow& sRow : aRows) {
        SCOPED_TRACE("view " + std::to_string(sRow.eView) + " mount " + std::to_string(sRow.eMount));
        Show(sRow.eView, sRow.eMount);
        EXPECT_EQ(static_cast<void*>(o.pActiveViewObject), sRow.pObject);
        EXPECT_EQ(CGLRecorder::Get().TakeErrorText(), "");
    }
}

TEST_F(CustomGPUDewarper, EveryViewStartsAtItsOwnPosition)
{
    Show(VIEW_VCAM, MOUNT_WALL);
    ExpectPTZ(90.0f, 90.0f, 180.0f);
    Show(VIEW_VCAM, MOUNT_FLOOR);
    ExpectPTZ(90.0f, 180.0f, 180.0f);
    Show(VIEW_VCAM_QUAD, MOUNT_CEILING);
    ExpectPTZ(90.0f, 0.0f, 180.0f);
    Show(VIEW_PANORAMA_DUAL, MOUNT_CEILING);
    ExpectPTZ(0.0f, 0.0f, 180.0f);
}

TEST_F(CustomGPUDewarper, SwitchingBetweenTheFisheyeViewsKeepsThePosition)
{
    Show(VIEW_FISHEYE, MOUNT_CEILING);
    oDewarper.AbsolutePTZ(10.0f, -20.0f, 100.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    Show(VIEW_FISHEYE_CIRCULAR, MOUNT_CEILING);
    ExpectPTZ(10.0f, -20.0f, 100.0f);
    Show(VIEW_FISHEYE, MOUNT_CEILING);
    ExpectPTZ(10.0f, -20.0f, 100.0f);
}

TEST_F(CustomGPUDewarper, AnyOtherSwitchResetsThePosition)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    oDewarper.AbsolutePTZ(10.0f, 20.0f, 100.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ExpectPTZ(10.0f, 20.0f, 100.0f);
    Show(VIEW_VCAM_QUAD, MOUNT_CEILING);
    ExpectPTZ(90.0f, 0.0f, 180.0f);
    oDewarper.AbsolutePTZ(10.0f, 20.0f, 100.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    Show(VIEW_VCAM_QUAD, MOUNT_FLOOR);
    ExpectPTZ(90.0f, 180.0f, 180.0f);
}

TEST_F(CustomGPUDewarper, AnAbsolutePositionIsLimitedByTheViewAtTheNextFrame)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    oDewarper.AbsolutePTZ(400.0f, 120.0f, 2.0f);
    ExpectPTZ(400.0f, 120.0f, 2.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ExpectPTZ(40.0f, 90.0f, 5.0f); // without the whole turn
}

TEST_F(CustomGPUDewarper, ARelativeMoveAddsAndIsLimitedAtOnce)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    oDewarper.bDrawRequired = false;
    oDewarper.RelativePTZ(15.0f, 100.0f, -30.0f);
    ExpectPTZ(105.0f, 90.0f, 150.0f);
    EXPECT_TRUE(oDewarper.bDrawRequired);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ExpectPTZ(105.0f, 90.0f, 150.0f);
}

TEST_F(CustomGPUDewarper, ARelativeMoveOfNothingFromAllZerosRequestsNothing)
{
    CCustomGPUDewarper oPlain;
    oPlain.pParams->fZoom = 0.0f;
    oPlain.RelativePTZ(0.0f, 0.0f, 0.0f);
    EXPECT_FALSE(oPlain.bDrawRequired);
    EXPECT_FALSE(oPlain.bAbsolutePTZPending);
    EXPECT_TRUE(oPlain.bResetPTZ);
}

TEST_F(CustomGPUDewarper, AnAnalogueSpeedMovesTheViewAtEveryFrameUntilItIsZero)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    oDewarper.AnaloguePTZ(0.5f, 1.5f, -2.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ExpectPTZ(88.0f, 6.0f, 172.0f);
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    ExpectPTZ(86.0f, 12.0f, 164.0f);
    float afSpeed[3] = {};
    oDewarper.GetPTZAnalog(afSpeed[0], afSpeed[1], afSpeed[2]);
    EXPECT_EQ(afSpeed[1], 1.5f);
    oDewarper.AnaloguePTZ(0.0f, 0.0f, 0.0f);
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    ExpectPTZ(86.0f, 12.0f, 164.0f);
}

TEST_F(CustomGPUDewarper, AMouseMoveWithoutAPressedButtonChangesNothing)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    oDewarper.bDrawRequired = false;
    oDewarper.OnMouseMove(30, 20, false, false);
    ExpectPTZ(90.0f, 0.0f, 180.0f);
    EXPECT_FALSE(oDewarper.bDrawRequired);
}

TEST_F(CustomGPUDewarper, ADragMovesByItsStepsAndALockedAxisStays)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    // The zoom angle across the smaller side: 180 / 64 degrees a pixel.
    oDewarper.OnMouseDown(10, 10);
    oDewarper.OnMouseMove(12, 14, false, false);
    EXPECT_FLOAT_EQ(oDewarper.pParams->fPan, 90.0f + 2.0f * 180.0f / 64.0f);
    EXPECT_FLOAT_EQ(oDewarper.pParams->fTilt, 4.0f * 180.0f / 64.0f);
    const float fPan = oDewarper.pParams->fPan;
    oDewarper.OnMouseMove(20, 16, true, false);
    EXPECT_EQ(oDewarper.pParams->fPan, fPan);
    EXPECT_FLOAT_EQ(oDewarper.pParams->fTilt, 6.0f * 180.0f / 64.0f);
    oDewarper.OnMouseMove(21, 30, false, true);
    EXPECT_FLOAT_EQ(oDewarper.pParams->fPan, fPan + 180.0f / 64.0f);
    EXPECT_FLOAT_EQ(oDewarper.pParams->fTilt, 6.0f * 180.0f / 64.0f);
    oDewarper.OnMouseUp();
    oDewarper.OnMouseMove(60, 60, false, false);
    EXPECT_FLOAT_EQ(oDewarper.pParams->fPan, fPan + 180.0f / 64.0f);
}

TEST_F(CustomGPUDewarper, AWheelStepOfTwelveNarrowsTheViewByOneDegree)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    oDewarper.OnMouseWheel(12.0);
    EXPECT_EQ(oDewarper.pParams->fZoom, 179.0f);
    oDewarper.bDrawRequired = false;
    oDewarper.OnMouseWheel(-1200.0);
    EXPECT_EQ(oDewarper.pParams->fZoom, 180.0f);
    EXPECT_TRUE(oDewarper.bDrawRequired);
    oDewarper.bDrawRequired = false;
    oDewarper.OnMouseWheel(-12.0);
    EXPECT_EQ(oDewarper.pParams->fZoom, 180.0f);
    EXPECT_FALSE(oDewarper.bDrawRequired);
}

TEST_F(CustomGPUDewarper, ThePanIsReportedWithinOneTurnSaveInTheFisheyeView)
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    Show(VIEW_VCAM, MOUNT_CEILING);
    oDewarper.AbsolutePTZ(-30.0f, 10.0f, 90.0f);
    oDewarper.GetPTZ(fPan, fTilt, fZoom);
    EXPECT_EQ(fPan, 330.0f);
    EXPECT_EQ(oDewarper.pParams->fPan, -30.0f);
    for (const float fWild : {720.0f, 1e10f, -1e10f, 3e38f}) {
        oDewarper.pParams->fPan = fWild;
        oDewarper.GetPTZ(fPan, fTilt, fZoom);
        EXPECT_GE(fPan, 0.0f) << fWild;
        EXPECT_LT(fPan, 360.0f) << fWild;
    }
    oDewarper.pParams->fPan = std::numeric_limits<float>::quiet_NaN();
    oDewarper.GetPTZ(fPan, fTilt, fZoom);
    EXPECT_TRUE(std::isnan(fPan));
    oDewarper.pParams->fPan = std::numeric_limits<float>::infinity();
    oDewarper.GetPTZ(fPan, fTilt, fZoom); // comes back at all

    Show(VIEW_FISHEYE, MOUNT_CEILING);
    oDewarper.AbsolutePTZ(-30.0f, 0.0f, 90.0f);
    oDewarper.GetPTZ(fPan, fTilt, fZoom);
    EXPECT_EQ(fPan, -30.0f);
}

TEST_F(CustomGPUDewarper, AnglesThatAreNoNumbersReachNoMeshAndDrawOn)
{
    const float fNaN = std::numeric_limits<float>::quiet_NaN();
    const float fInfinity = std::numeric_limits<float>::infinity();
    for (const EViewType eView : {VIEW_VCAM, VIEW_PANORAMA_FULL, VIEW_PANORAMA_DUAL, VIEW_PANORAMA_TRIPLE,
                                  VIEW_FISHEYE, VIEW_VCAM_QUAD})
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL})
            for (const float fBad : {fNaN, fInfinity, -fInfinity}) {
                Show(eView, eMount);
                oDewarper.AbsolutePTZ(fBad, fBad, fBad);
                EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
                oDewarper.AbsolutePTZ(10.0f, 10.0f, 90.0f);
                EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
                EXPECT_EQ(CGLRecorder::Get().TakeErrorText(), "");
            }
}

TEST_F(CustomGPUDewarper, ARequestForTheLensOfTheFrameSizeStaysARequest)
{
    CTestFrame oKnown(AsymmetricPicture(512, 512), IMAGE_FORMAT_GRAY8);
    CTestFrame oOther(AsymmetricPicture(528, 480), IMAGE_FORMAT_GRAY8);
    oDewarper.SetLensType(LENS_AUTO);
    ASSERT_TRUE(oDewarper.DrawFrame(oKnown));
    EXPECT_EQ(oDewarper.pParams->eLensType, LENS_DSL419);
    EXPECT_EQ(oDewarper.GetLensType(), LENS_AUTO);
    ASSERT_TRUE(oDewarper.DrawFrame(oOther));
    EXPECT_EQ(oDewarper.pParams->eLensType, LENS_DSL215);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.pParams->eLensType, LENS_UNKNOWN);
}

TEST_F(CustomGPUDewarper, TimestampsAndTheDrawCountFollowTheFrames)
{
    EXPECT_EQ(oDewarper.GetLastDisplayedTextureTimestamp(), 0u);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame, 1234567890123ull));
    EXPECT_EQ(oDewarper.GetLastDisplayedTextureTimestamp(), 1234567890123ull);
    EXPECT_EQ(oDewarper.nDrawCount, 1u);
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 7));
    EXPECT_EQ(oDewarper.GetLastDisplayedTextureTimestamp(), 1234567890123ull);
    EXPECT_TRUE(oDewarper.bDrawRequired);
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(oDewarper.GetLastDisplayedTextureTimestamp(), 7u);
    EXPECT_FALSE(oDewarper.bDrawRequired);
}

TEST_F(CustomGPUDewarper, TheFisheyeRadiusFollowsLensAndFrame)
{
    CTestFrame oWide(AsymmetricPicture(120, 90), IMAGE_FORMAT_GRAY8);
    oDewarper.SetLensType(LENS_DSL419);
    ASSERT_TRUE(oDewarper.DrawFrame(oWide));
    EXPECT_EQ(oDewarper.GetFisheyeRadius(), 45);
    oDewarper.SetLensType(LENS_DSL239);
    ASSERT_TRUE(oDewarper.DrawFrame(oWide));
    EXPECT_EQ(oDewarper.GetFisheyeRadius(), 60);
}
