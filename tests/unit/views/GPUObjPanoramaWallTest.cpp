#include "dewarp/gl/GPUObjPanoramaWall.h"

#include "tests/unit/views/ViewCase.h"

#include <gtest/gtest.h>

static float Limited(float fWallAngle, float fTilt, bool bStrict)
{
    CCGPUObjPanoramaWall oView;
    oView.CheckTilt(fWallAngle, fTilt, bStrict);
    return fTilt;
}

TEST(GPUObjPanoramaWall, TheTiltBandFollowsTheCamerasInclination)
{
    for (const bool bStrict : {false, true}) {
        EXPECT_EQ(Limited(0.0f, 60.0f, bStrict), 54.0f);
        EXPECT_EQ(Limited(0.0f, -60.0f, bStrict), -54.0f);
        EXPECT_EQ(Limited(0.0f, 12.0f, bStrict), 12.0f);
    }
    EXPECT_FLOAT_EQ(Limited(30.0f, -90.0f, true), -24.0f);
    EXPECT_FLOAT_EQ(Limited(30.0f, 90.0f, true), 54.0f);
    EXPECT_NEAR(Limited(30.0f, -90.0f, false), 14.971f, 1e-3f);
    EXPECT_FLOAT_EQ(Limited(30.0f, 90.0f, false), 54.0f);
    EXPECT_FLOAT_EQ(Limited(-30.0f, 90.0f, true), 24.0f);
    EXPECT_NEAR(Limited(-30.0f, 90.0f, false), -14.971f, 1e-3f);
    EXPECT_FLOAT_EQ(Limited(-30.0f, -90.0f, false), -54.0f);
    // An empty band: the lower bound wins.
    EXPECT_FLOAT_EQ(Limited(110.0f, 0.0f, true), 56.0f);
}

TEST(GPUObjPanoramaWall, TheZoomIsFixedAndThePanIsFree)
{
    CCGPUObjPanoramaWall oView;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_WALL);
    sCase.SetPTZ(1234.0f, 10.0f, 20.0f);
    oView.CheckPTZ(&sCase.sParams);
    EXPECT_PTZ(sCase, 1234.0f, 10.0f, 180.0f);
    EXPECT_EQ(oView.GetScaleMultiplier(&sCase.sParams), 0.4f);
}

TEST(GPUObjPanoramaWall, TiltMovesTheMeshAgainstTheView)
{
    CCGPUObjPanoramaWall oView;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_WALL);
    sCase.SetPTZ(20.0f, 45.0f, 180.0f);
    sCase.Adjust(oView);
    EXPECT_FLOAT_EQ(sCase.Moved(0, 0, 0, 0), 0.0f);
    EXPECT_FLOAT_EQ(sCase.Moved(0, 0, 0, 1), -0.5f);
    SViewCase sBeyond(VIEW_PANORAMA_FULL, MOUNT_WALL);
    sBeyond.SetPTZ(0.0f, 90.0f, 180.0f);
    sBeyond.Adjust(oView);
    EXPECT_FLOAT_EQ(sBeyond.sParams.fTilt, 54.0f) << "limited once more";
    EXPECT_FLOAT_EQ(sBeyond.Moved(0, 0, 0, 1), -0.6f);
}

TEST(GPUObjPanoramaWall, CutsBandsAboveAndBelowWhereTheTargetIsTooTall)
{
    CCGPUObjPanoramaWall oView;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_WALL, 1920, 1080);
    oView.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[0], -1);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[1], -1);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[2], 156);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[3], 924);
    EXPECT_EQ(sCase.sShader.fClipValueRequested, 0.0f);
    sCase.sMatrices.nViewportWidth = 2560;
    sCase.sMatrices.nViewportHeight = 1000;
    sCase.sParams.fMountTilt = -5.0f;
    oView.CheckClipPlanes(&sCase.sParams, &sCase.sMatrices, &sCase.sShader);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[2], -1);
    EXPECT_EQ(sCase.sShader.anClipPlanesRequested[3], -1);
    EXPECT_EQ(sCase.sShader.fClipValueRequested, 0.475f);
}

TEST(GPUObjPanoramaWall, ADragTiltsByTheShownBandAndPansByTheHeight)
{
    CCGPUObjPanoramaWall oView;
    SViewCase sCase(VIEW_PANORAMA_FULL, MOUNT_WALL, 1000, 500);
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 50, 100);
    EXPECT_PTZ(sCase, 9.0f, 14.4f, 180.0f);
    sCase.sShader.anClipPlanes[2] = 50;
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 0, 100);
    EXPECT_PTZ(sCase, 0.0f, 18.0f, 180.0f);
}
