#include "dewarp/gl/GPUObjFisheye.h"

#include "tests/unit/views/ViewCase.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(GPUObjFisheye, LimitsItsPosition)
{
    CCGPUObjFisheye oView;
    SViewCase sCase(VIEW_FISHEYE, MOUNT_CEILING);
    sCase.SetPTZ(120.0f, -95.0f, 2.0f);
    oView.CheckPTZ(&sCase.sParams);
    EXPECT_PTZ(sCase, 90.0f, -90.0f, 5.0f);
    sCase.SetPTZ(-91.0f, 95.0f, 200.0f);
    oView.CheckPTZ(&sCase.sParams);
    EXPECT_PTZ(sCase, -90.0f, 90.0f, 180.0f);
    sCase.SetPTZ(90.0f, -90.0f, 5.0f);
    oView.CheckPTZ(&sCase.sParams);
    EXPECT_PTZ(sCase, 90.0f, -90.0f, 5.0f);
}

TEST(GPUObjFisheye, PanMovesLeftAndTiltMovesUp)
{
    CCGPUObjFisheye oView;
    SViewCase sCase(VIEW_FISHEYE, MOUNT_CEILING);
    sCase.SetPTZ(45.0f, 90.0f, 180.0f);
    sCase.Adjust(oView, 1.25f, 0);
    EXPECT_FLOAT_EQ(sCase.Moved(0, 0, 0, 0), -0.625f);
    EXPECT_FLOAT_EQ(sCase.Moved(0, 0, 0, 1), 1.0f);
}

TEST(GPUObjFisheye, ATurnIsClockwiseAndComesAfterTheMoves)
{
    CCGPUObjFisheye oView;
    SViewCase sCase(VIEW_FISHEYE, MOUNT_CEILING);
    sCase.SetPTZ(45.0f, 0.0f, 180.0f);
    sCase.Adjust(oView, 0.8f, 90); // the aspect of the picture as it is shown
    // The picture's top edge points to the right, about the moved middle.
    EXPECT_NEAR(sCase.Moved(0, 1, 0, 0), 1.0f - 0.4f, 1e-6f);
    EXPECT_NEAR(sCase.Moved(0, 1, 0, 1), 0.0f, 1e-6f);
    EXPECT_NEAR(sCase.Moved(1, 0, 0, 1), -1.0f, 1e-6f);
}

TEST(GPUObjFisheye, ADragCarriesThePictureWithThePointer)
{
    CCGPUObjFisheye oView;
    // A picture of 5:4 in a view of 4:3 is fitted by its height: 600 by 480.
    SViewCase sCase(VIEW_FISHEYE, MOUNT_CEILING, 640, 480);
    sCase.SetPTZ(0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 0, 0);
    EXPECT_PTZ(sCase, 0.0f, 0.0f, 180.0f);
    sCase.Drag(oView, 10, 0);
    EXPECT_PTZ(sCase, -10.0f * 180.0f / 600.0f, 0.0f, 180.0f);
    sCase.SetPTZ(0.0f, 0.0f, 90.0f);
    sCase.Drag(oView, 0, 48);
    EXPECT_NEAR(sCase.sParams.fTilt, -std::tan(22.5 * 3.14159265358979 / 180.0) * 18.0, 1e-4);
    // In a tall view it is fitted by its width: 500 by 400.
    SViewCase sTall(VIEW_FISHEYE, MOUNT_CEILING, 500, 900);
    sTall.SetPTZ(0.0f, 0.0f, 180.0f);
    sTall.Drag(oView, 50, 40);
    EXPECT_PTZ(sTall, -18.0f, -18.0f, 180.0f);
}
