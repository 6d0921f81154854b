// What is asked for and what is in force: refusals, wrapping, limits, defaults, requests.
#include "dewarp/control/Control.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/views/ViewList.h"
#include "tests/support/LogCapture.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

static const float NONE = std::numeric_limits<float>::quiet_NaN();
static const float ENDLESS = std::numeric_limits<float>::infinity();

class Control : public testing::Test
{
protected:
    Control() { oControl.SetFrame(1000, 1000, 1000, true); }
    /// The view in force, at its default position.
    void Show(EViewType eView, EMountType eMount)
    {
        oControl.eRequestedView = eView;
        oControl.eRequestedMount = eMount;
        oControl.ApplyRequests();
    }
    SPTZ Told()
    {
        SPTZ s;
        oControl.GetPTZ(s.fPan, s.fTilt, s.fZoom);
        return s;
    }
    void ExpectTold(float fPan, float fTilt, float fZoom)
    {
        EXPECT_EQ(Told().fPan, fPan);
        EXPECT_EQ(Told().fTilt, fTilt);
        EXPECT_EQ(Told().fZoom, fZoom);
    }

    CReport oReport{DEWARP_LOG_TAG};
    CControl oControl{oReport};
};

TEST_F(Control, RefusesMovesThatAreNoNumbersWithOneLineEach)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    oControl.AbsolutePTZ(20.0f, 30.0f, 90.0f);
    oControl.ApplyRequests();
    for (const float fBad : {NONE, ENDLESS, -ENDLESS})
        for (int i = 0; i < 3; ++i) {
            const float afPTZ[3] = {i == 0 ? fBad : 1.0f, i == 1 ? fBad : 1.0f, i == 2 ? fBad : 1.0f};
            CLogCapture oLog;
            EXPECT_FALSE(oControl.AbsolutePTZ(afPTZ[0], afPTZ[1], afPTZ[2]));
            ASSERT_EQ(oLog.Lines().size(), 1u);
            EXPECT_EQ(oLog.Lines()[0].strText, "AbsolutePTZ: value is not a finite number");
            EXPECT_FALSE(oControl.RelativePTZ(afPTZ[0], afPTZ[1], afPTZ[2], true));
            ASSERT_EQ(oLog.Lines().size(), 2u);
            EXPECT_EQ(oLog.Lines()[1].strText, "RelativePTZ: value is not a finite number");
            EXPECT_EQ(oReport.LastError(), oLog.Lines()[1].strText);
            EXPECT_FALSE(oControl.bAbsolutePTZPending);
            ExpectTold(20.0f, 30.0f, 90.0f);
        }
}

TEST_F(Control, RefusesSettingsOutsideTheirValues)
{
    CLogCapture oLog;
    bool bChanged = true;
    EXPECT_TRUE(oControl.SetMountTilt(12.0f));
    EXPECT_FALSE(oControl.SetMountTilt(ENDLESS));
    EXPECT_EQ(oControl.sParams.fMountTilt, 12.0f);
    EXPECT_FALSE(oControl.SetRotation(-90, bChanged));
    EXPECT_FALSE(bChanged);
    EXPECT_FALSE(oControl.SetRotation(360, bChanged));
    EXPECT_TRUE(oControl.SetEyeDistance(0.5f));
    EXPECT_FALSE(oControl.SetEyeDistance(NONE));
    EXPECT_EQ(oControl.fEyeDistance, 0.5f);
    EXPECT_EQ(oLog.Lines().size(), 4u) << oLog.Text();
    EXPECT_TRUE(oControl.SetRotation(270, bChanged));
    EXPECT_TRUE(bChanged);
    EXPECT_TRUE(oControl.SetRotation(270, bChanged));
    EXPECT_FALSE(bChanged);
    // Distances beyond the ends are limited, endless ones too.
    oControl.SetEyeDistance(-1.0f);
    EXPECT_EQ(oControl.fEyeDistance, 0.0f);
    oControl.SetEyeDistance(ENDLESS);
    EXPECT_GT(oControl.fEyeDistance, 0.99f);
    EXPECT_LT(oControl.fEyeDistance, 1.0f);
    EXPECT_EQ(oLog.Lines().size(), 4u) << oLog.Text();
}

TEST_F(Control, WrapsAnglesIntoOneTurn)
{
    const float aafAngles[][2] = {{0.0f, 0.0f},      {359.5f, 359.5f}, {360.0f, 0.0f},
                                  {-90.0f, 270.0f},  {720.0f, 0.0f},   {1000.0f, 280.0f},
                                  {-540.0f, 180.0f}, {-1e-8f, 0.0f},   {3.6e7f, 0.0f}};
    for (const float* pAngle : aafAngles)
        EXPECT_EQ(WrapAngle(pAngle[0]), pAngle[1]) << pAngle[0];
    EXPECT_TRUE(std::isnan(WrapAngle(NONE)));
    EXPECT_EQ(WrapAngle(ENDLESS), ENDLESS);
}

TEST_F(Control, ShowsTheVirtualCameraOfACeilingCameraWhenNothingWasChosen)
{
    oControl.ApplyRequests();
    EXPECT_EQ(oControl.sParams.eViewType, VIEW_VCAM);
    EXPECT_EQ(oControl.sParams.eMountType, MOUNT_CEILING);
    ExpectTold(90.0f, 0.0f, 180.0f);
}

TEST_F(Control, EveryViewStartsAtItsDefaultAndAgainWithAPictureOfAnotherSize)
{
    for (const SViewEntry& rEntry : ListViews())
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR}) {
            SCOPED_TRACE(std::string(rEntry.pName) + " on " + std::to_string(eMount));
            oControl.bResetPTZ = true;
            Show(rEntry.eType, eMount);
            const SPTZ sDefault = FindView(rEntry.eType, eMount).DefaultPTZ(eMount);
            ExpectTold(sDefault.fPan, sDefault.fTilt, sDefault.fZoom);
            oControl.RelativePTZ(5.0f, 5.0f, -5.0f, true);
            oControl.ApplyRequests();
            oControl.SetFrame(1000, 1000, 1000, false);
            const SPTZ sMoved = Told();
            oControl.ApplyRequests();
            ExpectTold(sMoved.fPan, sMoved.fTilt, sMoved.fZoom);
            oControl.SetFrame(800, 600, 800, true);
            oControl.ApplyRequests();
            ExpectTold(sDefault.fPan, sDefault.fTilt, sDefault.fZoom);
        }
}

TEST_F(Control, AnAbsoluteMoveBeforeTheFirstFrameOfAViewTakesTheDefaultsPlace)
{
    oControl.eRequestedView = VIEW_VCAM;
    oControl.ApplyViewRequest();
    EXPECT_TRUE(oControl.AbsolutePTZ(33.0f, 44.0f, 55.0f));
    oControl.ApplyRequests();
    // The mount that is put in force with it brings its own position, and the move comes after it.
    ExpectTold(33.0f, 44.0f, 55.0f);
    EXPECT_FALSE(oControl.bAbsolutePTZPending);
}

TEST_F(Control, MovesAreLimitedAtOnceOnlyInTheViewThatIsDrawn)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    EXPECT_TRUE(oControl.RelativePTZ(0.0f, 500.0f, -500.0f, false));
    ExpectTold(90.0f, 500.0f, -320.0f);
    oControl.ApplyRequests();
    ExpectTold(90.0f, 90.0f, 5.0f);
    EXPECT_TRUE(oControl.RelativePTZ(0.0f, -500.0f, 500.0f, true));
    ExpectTold(90.0f, 0.0f, 180.0f);
}

TEST_F(Control, AStepFromAllZerosRequestsNothing)
{
    Show(VIEW_FISHEYE, MOUNT_CEILING);
    oControl.sParams.fPan = oControl.sParams.fTilt = oControl.sParams.fZoom = 0.0f;
    EXPECT_FALSE(oControl.RelativePTZ(1.0f, 2.0f, 50.0f, false));
    EXPECT_FALSE(oControl.bAbsolutePTZPending);
    EXPECT_TRUE(oControl.RelativePTZ(1.0f, 2.0f, 50.0f, false));
    EXPECT_TRUE(oControl.bAbsolutePTZPending);
}

TEST_F(Control, APanOfManyTurnsIsToldAndKeptWithinOne)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    for (const float fPan : {720.0f, 1000.0f, -540.0f, 3.6e7f, -3.6e7f - 4.0f}) {
        oControl.AbsolutePTZ(fPan, 30.0f, 90.0f);
        EXPECT_EQ(Told().fPan, WrapAngle(fPan)) << "before the frame";
        oControl.ApplyRequests();
        EXPECT_EQ(Told().fPan, WrapAngle(fPan)) << "after it";
        EXPECT_LE(std::fabs(oControl.sParams.fPan), 360.0f);
    }
    // The fisheye view shifts instead of turning: what is told is what was asked for.
    Show(VIEW_FISHEYE, MOUNT_CEILING);
    oControl.AbsolutePTZ(-30.0f, 0.0f, 90.0f);
    oControl.ApplyRequests();
    ExpectTold(-30.0f, 0.0f, 90.0f);
}

TEST_F(Control, ASpeedMovesTheViewAtEveryFrameForTenMillionDegrees)
{
    for (const EViewType eView : {VIEW_VCAM, VIEW_PANORAMA_FULL, VIEW_PANORAMA_DUAL, VIEW_PANORAMA_TRIPLE}) {
        SCOPED_TRACE(eView);
        Show(eView, MOUNT_CEILING);
        // A step of 0.5 degrees behind ten million degrees: a float that holds them all would stand still.
        double fWay = 0.0;
        while (fWay < 1e7) {
            EXPECT_TRUE(oControl.AnaloguePTZ(-25000.125f, 0.0f, 0.0f));
            oControl.ApplyRequests();
            fWay += 100000.5;
        }
        EXPECT_TRUE(oControl.AnaloguePTZ(-0.125f, 0.0f, 0.0f));
        for (int i = 0; i < 1000; ++i) {
            const float fBefore = Told().fPan;
            oControl.ApplyRequests();
            ASSERT_NEAR(WrapAngle(Told().fPan - fBefore), 0.5f, 0.01f) << i;
        }
        EXPECT_FALSE(oControl.AnaloguePTZ(0.0f, 0.0f, 0.0f));
        const float fAt = Told().fPan;
        oControl.ApplyRequests();
        EXPECT_EQ(Told().fPan, fAt);
    }
}

TEST_F(Control, SpeedsAreGivenBackAndCountAsMovement)
{
    EXPECT_FALSE(oControl.IsMoving());
    for (int i = 0; i < 3; ++i) {
        const float afSpeed[3] = {i == 0 ? 1.0f : 0.0f, i == 1 ? -0.5f : 0.0f, i == 2 ? 2.0f : 0.0f};
        EXPECT_TRUE(oControl.AnaloguePTZ(afSpeed[0], afSpeed[1], afSpeed[2]));
        EXPECT_TRUE(oControl.IsMoving());
        float afTold[3] = {};
        oControl.GetPTZAnalog(afTold[0], afTold[1], afTold[2]);
        for (int k = 0; k < 3; ++k)
            EXPECT_EQ(afTold[k], afSpeed[k]);
    }
    EXPECT_FALSE(oControl.AnaloguePTZ(0.0f, -0.0f, 0.0f));
    EXPECT_FALSE(oControl.IsMoving());
}

TEST_F(Control, ALensThatIsForgottenByAMoveIsInForceAgainAndNoOther)
{
    oControl.eRequestedLens = LENS_DSL418;
    oControl.eRequestedView = VIEW_VCAM;
    SAppliedRequests sApplied = oControl.ApplyRequests();
    EXPECT_TRUE(sApplied.bNewLens);
    EXPECT_EQ(sApplied.eLensBefore, LENS_UNSET);
    oControl.AbsolutePTZ(10.0f, 10.0f, 90.0f);
    sApplied = oControl.ApplyRequests();
    EXPECT_FALSE(sApplied.bNewLens) << "every mesh is this lens's already";
    EXPECT_EQ(oControl.sParams.eLensType, LENS_DSL418);
    oControl.eRequestedLens = LENS_AUTO;
    sApplied = oControl.ApplyRequests();
    EXPECT_TRUE(sApplied.bNewLens);
    EXPECT_EQ(sApplied.eLensBefore, LENS_DSL418);
    EXPECT_EQ(oControl.sParams.eLensType, LENS_UNKNOWN) << "no lens has frames of 1000 x 1000";
}

TEST_F(Control, WhatIsForgottenIsAppliedAnew)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    EXPECT_FALSE(oControl.ApplyViewRequest());
    EXPECT_FALSE(oControl.ApplyMountRequest());
    oControl.ForgetInForce();
    EXPECT_TRUE(oControl.ApplyMountRequest());
    EXPECT_TRUE(oControl.ApplyViewRequest());
    EXPECT_EQ(oControl.sParams.eViewType, VIEW_PANORAMA_FULL);
    EXPECT_EQ(oControl.sParams.eMountType, MOUNT_WALL);
}
