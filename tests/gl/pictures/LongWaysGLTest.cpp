// Positions far round and far out, and such as are none.
#include "tests/support/EngineDewarper.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{

/// The same direction, 0 to 360 degrees.
float WrapAngle(float fAngle)
{
    const float fWrapped = std::fmod(fAngle, 360.0f);
    return fWrapped < 0.0f ? fWrapped + 360.0f : fWrapped;
}

struct SViewCase
{
    EViewType eView;
    EMountType eMount;
};
const SViewCase ROUND_VIEWS[] = {
    {VIEW_PANORAMA_FULL, MOUNT_CEILING}, {VIEW_PANORAMA_FULL, MOUNT_FLOOR},
    {VIEW_PANORAMA_HALF, MOUNT_CEILING}, {VIEW_PANORAMA_QUARTER, MOUNT_FLOOR},
    {VIEW_PANORAMA_DUAL, MOUNT_CEILING}, {VIEW_PANORAMA_TRIPLE, MOUNT_CEILING},
    {VIEW_PANORAMA_FULL, MOUNT_WALL},    {VIEW_VCAM, MOUNT_CEILING},
    {VIEW_VCAM_QUAD, MOUNT_FLOOR},
};

class LongWays : public CEngineTest
{
protected:
    void Show(const SViewCase& rCase)
    {
        oDewarper->SetViewType(rCase.eView);
        oDewarper->SetMountType(rCase.eMount);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    }
    STestImage At(float fPan, float fTilt = 20.0f)
    {
        oDewarper->AbsolutePTZ(fPan, fTilt, 90.0f);
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        return oDewarper.Picture();
    }
    float Pan() { return oDewarper.Pan(); }

    CTestFrame oFrame{AsymmetricPicture(96, 96), IMAGE_FORMAT_RGB24};
    CEngineDewarper oDewarper{GetParam(), 120, 80};
};

} // namespace

TEST_P(LongWays, ManyTurnsShowWhatTheAngleInOneTurnShows)
{
    for (const SViewCase& rCase : ROUND_VIEWS) {
        SCOPED_TRACE("view " + std::to_string(rCase.eView) + " on " + std::to_string(rCase.eMount));
        Show(rCase);
        for (const float fPan : {360.0f, 720.0f, 1000.0f, -540.0f, -1000.0f, 36000090.0f}) {
            const STestImage sFar = At(fPan);
            EXPECT_EQ(Pan(), WrapAngle(fPan));
            EXPECT_EQ(CompareImages(sFar, At(WrapAngle(fPan))).nMax, 0) << fPan;
        }
        EXPECT_GT(CompareImages(At(720.0f), At(1000.0f)).nMax, 20) << "not everything looks alike";
    }
}

TEST_P(LongWays, StepsAddUpBeyondOneTurn)
{
    for (const SViewCase& rCase : ROUND_VIEWS) {
        SCOPED_TRACE("view " + std::to_string(rCase.eView) + " on " + std::to_string(rCase.eMount));
        Show(rCase);
        At(10.0f);
        for (int i = 0; i < 9; ++i) {
            oDewarper->RelativePTZ(130.0f, 0.0f, 0.0f);
            ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        }
        EXPECT_NEAR(Pan(), 100.0f, 1e-3f); // 10 + 9 * 130 - 3 * 360
    }
}

TEST_P(LongWays, AnAutomaticPanNeverStandsStill)
{
    for (const SViewCase& rCase : ROUND_VIEWS) {
        SCOPED_TRACE("view " + std::to_string(rCase.eView) + " on " + std::to_string(rCase.eMount));
        Show(rCase);
        At(0.0f);
        // 10 million degrees in a few frames, then by small steps.
        oDewarper->AnaloguePTZ(-25000.5f, 0.0f, 0.0f);
        for (int i = 0; i < 100; ++i)
            ASSERT_TRUE(oDewarper->DrawGLScene(false));
        oDewarper->AnaloguePTZ(-0.25f, 0.0f, 0.0f);
        STestImage sBefore = oDewarper.Picture();
        for (int i = 0; i < 20; ++i) {
            const float fBefore = Pan();
            EXPECT_TRUE(oDewarper->IsDrawRequired());
            ASSERT_TRUE(oDewarper->DrawGLScene(false));
            EXPECT_NEAR(WrapAngle(Pan() - fBefore), 1.0f, 0.01f);
        }
        EXPECT_GT(CompareImages(oDewarper.Picture(), sBefore).nMax, 5);
        oDewarper->AnaloguePTZ(0.0f, 0.0f, 0.0f);
    }
}

TEST_P(LongWays, NumbersThatAreNoneAreRefusedWithOneLineAndLeaveThePicture)
{
    const float fNone = std::numeric_limits<float>::quiet_NaN();
    const float fEndless = std::numeric_limits<float>::infinity();
    for (const SViewCase& rCase : ROUND_VIEWS) {
        SCOPED_TRACE("view " + std::to_string(rCase.eView) + " on " + std::to_string(rCase.eMount));
        Show(rCase);
        const STestImage sBefore = At(70.0f);
        EXPECT_FALSE(oDewarper->IsDrawRequired());
        for (const float fBad : {fNone, fEndless, -fEndless})
            for (int i = 0; i < 3; ++i) {
                const float afPTZ[3] = {i == 0 ? fBad : 5.0f, i == 1 ? fBad : 5.0f, i == 2 ? fBad : 5.0f};
                CLogCapture oLog;
                oDewarper->AbsolutePTZ(afPTZ[0], afPTZ[1], afPTZ[2]);
                ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
                EXPECT_EQ(oDewarper->GetLastErrorText(), "AbsolutePTZ: value is not a finite number");
                oDewarper->RelativePTZ(afPTZ[0], afPTZ[1], afPTZ[2]);
                ASSERT_EQ(oLog.Lines().size(), 2u) << oLog.Text();
                EXPECT_EQ(oDewarper->GetLastErrorText(), "RelativePTZ: value is not a finite number");
                EXPECT_FALSE(oDewarper->IsDrawRequired());
                ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
                EXPECT_EQ(CompareImages(oDewarper.Picture(), sBefore).nMax, 0);
                EXPECT_EQ(Pan(), 70.0f);
            }
    }
}

INSTANTIATE_ENGINES(LongWays);
