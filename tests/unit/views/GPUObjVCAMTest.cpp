#include "dewarp/gl/GPUObjVCAM.h"

#include "tests/unit/views/ViewCase.h"

#include <algorithm>
#include <gtest/gtest.h>

TEST(GPUObjVCAM, LimitsItsPositionByTheMount)
{
    struct SRow
    {
        EMountType eMount;
        float afGiven[3];
        float afWanted[3];
    };
    const SRow aRows[] = {
        {MOUNT_WALL, {-10, -1, 4.9f}, {0, 0, 5}},
        {MOUNT_WALL, {200, 181, 181}, {180, 180, 180}},
        {MOUNT_WALL, {180, 0, 5}, {180, 0, 5}},
        {MOUNT_FLOOR, {500, 45, 90}, {500, 90, 90}},
        {MOUNT_FLOOR, {-500, 190, 90}, {-500, 180, 90}},
        {MOUNT_CEILING, {700, 120, 2}, {700, 90, 5}},
        {MOUNT_CEILING, {-700, -3, 500}, {-700, 0, 180}},
        {static_cast<EMountType>(45), {700, 120, 60}, {700, 90, 60}},
    };
    CCGPUObjVCAM oView;
    for (const SRow& sRow : aRows) {
        SViewCase sCase(VIEW_VCAM, sRow.eMount);
        sCase.SetPTZ(sRow.afGiven[0], sRow.afGiven[1], sRow.afGiven[2]);
        oView.CheckPTZ(&sCase.sParams);
        EXPECT_PTZ(sCase, sRow.afWanted[0], sRow.afWanted[1], sRow.afWanted[2]);
    }
}

/// Checks where the direction that is to be in the middle goes: to -z, straight ahead.
static void ExpectAhead(EMountType eMount, float fPan, float fTilt, float x, float y, float z)
{
    CCGPUObjVCAM oView;
    SViewCase sCase(VIEW_VCAM, eMount);
    sCase.SetPTZ(fPan, fTilt, 90.0f);
    sCase.Adjust(oView);
    EXPECT_NEAR(sCase.Moved(x, y, z, 0), 0.0f, 1e-6f);
    EXPECT_NEAR(sCase.Moved(x, y, z, 1), 0.0f, 1e-6f);
    EXPECT_NEAR(sCase.Moved(x, y, z, 2), -1.0f, 1e-6f);
}

TEST(GPUObjVCAM, PanAndTiltTurnTheSphereByTheMount)
{
    // The sphere's -z is the optical axis, +x and +y are the input picture's right and top.
    ExpectAhead(MOUNT_CEILING, 90, 0, 0, 0, -1);
    ExpectAhead(MOUNT_CEILING, 90, 90, 0, 1, 0);
    ExpectAhead(MOUNT_CEILING, 0, 90, 1, 0, 0);
    ExpectAhead(MOUNT_FLOOR, 90, 180, 0, 0, -1);
    ExpectAhead(MOUNT_FLOOR, 90, 90, 0, -1, 0);
    ExpectAhead(MOUNT_FLOOR, 0, 90, -1, 0, 0);
    ExpectAhead(MOUNT_WALL, 90, 90, 0, 0, -1);
    ExpectAhead(MOUNT_WALL, 90, 180, 0, 1, 0);
    ExpectAhead(MOUNT_WALL, 180, 90, -1, 0, 0);
}

TEST(GPUObjVCAM, AnUnknownMountIsNotTurned)
{
    CCGPUObjVCAM oView;
    SViewCase sCase(VIEW_VCAM, static_cast<EMountType>(45));
    sCase.SetPTZ(33.0f, 44.0f, 90.0f);
    sCase.Adjust(oView);
    EXPECT_EQ(sCase.sMatrices.fModel[0], 1.0f);
    EXPECT_EQ(sCase.sMatrices.fModel[5], 1.0f);
}

TEST(GPUObjVCAM, ADragAcrossTheSmallerSideTurnsByTheZoomAngle)
{
    CCGPUObjVCAM oView;
    SViewCase sCase(VIEW_VCAM, MOUNT_CEILING, 640, 480);
    sCase.SetPTZ(10.0f, 20.0f, 60.0f);
    sCase.Drag(oView, 480, -240);
    EXPECT_PTZ(sCase, 70.0f, -10.0f, 60.0f);
}

TEST(GPUObjVCAM, TheFrustumIsWrittenElementByElement)
{
    CCGPUObjVCAM oView;
    SDewarpMatrices sMatrices;
    oView.SetProjectionMatrix(&sMatrices, -1.0f, 3.0f, -0.5f, 1.5f, 0.5f, 2.0f);
    // Bounds times near: -0.5, 1.5, -0.25, 0.75.
    const float afWanted[16] = {0.5f,         0, 0, 0, 0, 1.0f, 0, 0, 1.0f, 0.5f, -2.5f / 1.5f, -1.0f, 0, 0,
                                -2.0f / 1.5f, 0};
    for (int i = 0; i < 16; ++i)
        EXPECT_FLOAT_EQ(sMatrices.fProjection[i], afWanted[i]) << "element " << i;
}

TEST(GPUObjVCAM, AFrustumThatIsNoneLeavesTheProjectionAsItIs)
{
    CCGPUObjVCAM oView;
    const float afBounds[][6] = {{1, 1, -1, 1, 0.01f, 2}, {-1, 1, 1, 1, 0.01f, 2}, {-1, 1, -1, 1, 0.01f, 0},
                                 {-1, 1, -1, 1, 0, 2},    {-1, 1, -1, 1, 2, 2},    {-1, 1, -1, 1, -0.5f, 2}};
    for (const float(&f)[6] : afBounds) {
        SDewarpMatrices sMatrices;
        std::fill_n(sMatrices.fProjection, 16, 7.0f);
        oView.SetProjectionMatrix(&sMatrices, f[0], f[1], f[2], f[3], f[4], f[5]);
        for (const float fElement : sMatrices.fProjection)
            EXPECT_EQ(fElement, 7.0f);
    }
}

TEST(GPUObjVCAM, TheEyeStandsAtTheCentreUnlessMovedBack)
{
    CCGPUObjVCAM oView;
    SViewCase sCase(VIEW_VCAM, MOUNT_CEILING);
    EXPECT_EQ(oView.GetEyeDistance(&sCase.sParams), 0.0f);
    EXPECT_EQ(oView.GetScaleMultiplier(&sCase.sParams), 1.0f);
}
