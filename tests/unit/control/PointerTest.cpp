// Mouse and wheel.
#include "dewarp/control/Control.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/views/ViewList.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

class Pointer : public testing::Test
{
protected:
    Pointer()
    {
        oControl.SetFrame(1000, 1000, 1000, true);
        oControl.eRequestedView = VIEW_VCAM;
        oControl.ApplyRequests();
        oControl.AbsolutePTZ(100.0f, 40.0f, 90.0f);
        oControl.ApplyRequests();
    }
    bool Move(int x, int y, bool bLockX = false, bool bLockY = false, bool bInForce = true)
    {
        return oControl.OnMouseMove(x, y, bLockX, bLockY, sPicture, bInForce);
    }

    CReport oReport{DEWARP_LOG_TAG};
    CControl oControl{oReport};
    const SDrawnPicture sPicture = {200, 100};
};

TEST_F(Pointer, MovesNothingWithoutAPressedButton)
{
    EXPECT_FALSE(Move(50, 50));
    oControl.OnMouseDown(10, 10);
    oControl.OnMouseUp();
    EXPECT_FALSE(Move(50, 50));
    EXPECT_EQ(oControl.sParams.fPan, 100.0f);
}

TEST_F(Pointer, DragsByItsStepsSoThatTheWayThereCountsOnce)
{
    oControl.OnMouseDown(10, 10);
    EXPECT_TRUE(Move(20, 15));
    const float fPan = oControl.sParams.fPan;
    const float fTilt = oControl.sParams.fTilt;
    // A camera of 90 degrees over the smaller side of 100 pixels.
    EXPECT_NEAR(fPan, 100.0f + 9.0f, 1e-4f);
    EXPECT_NEAR(fTilt, 40.0f + 4.5f, 1e-4f);
    EXPECT_FALSE(Move(20, 15)) << "no way, no move";
    EXPECT_TRUE(Move(10, 10));
    EXPECT_NEAR(oControl.sParams.fPan, 100.0f, 1e-4f);
    EXPECT_NEAR(oControl.sParams.fTilt, 40.0f, 1e-4f);
}

TEST_F(Pointer, ALockedAxisStaysAndDoesNotJumpWhenItIsFreed)
{
    oControl.OnMouseDown(10, 10);
    EXPECT_TRUE(Move(60, 15, true, false));
    EXPECT_EQ(oControl.sParams.fPan, 100.0f);
    const float fTilt = oControl.sParams.fTilt;
    EXPECT_TRUE(Move(61, 80, false, true));
    EXPECT_EQ(oControl.sParams.fTilt, fTilt);
    EXPECT_NEAR(oControl.sParams.fPan, 100.9f, 1e-4f) << "one pixel, not fifty-one";
    EXPECT_FALSE(Move(90, 90, true, true));
}

TEST_F(Pointer, AViewThatIsNotDrawnYetIsNotDragged)
{
    oControl.OnMouseDown(10, 10);
    EXPECT_FALSE(Move(60, 15, false, false, false));
    EXPECT_EQ(oControl.sParams.fPan, 100.0f);
    EXPECT_TRUE(Move(61, 15)) << "and starts where the pointer is then";
    EXPECT_NEAR(oControl.sParams.fPan, 100.9f, 1e-4f);
}

TEST_F(Pointer, APictureWithoutSizeLosesNoPosition)
{
    for (const SViewEntry& rEntry : ListViews()) {
        oControl.eRequestedView = rEntry.eType;
        oControl.ApplyRequests();
        const float fPan = oControl.sParams.fPan;
        oControl.OnMouseDown(0, 0);
        oControl.OnMouseMove(std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), false, false,
                             {}, true);
        EXPECT_TRUE(std::isfinite(oControl.sParams.fPan)) << rEntry.pName;
        EXPECT_TRUE(std::isfinite(oControl.sParams.fTilt)) << rEntry.pName;
        EXPECT_TRUE(std::isfinite(fPan));
    }
}

TEST_F(Pointer, AWheelStepOfTwelveNarrowsTheViewByOneDegree)
{
    EXPECT_TRUE(oControl.OnMouseWheel(12.0, true));
    EXPECT_EQ(oControl.sParams.fZoom, 89.0f);
    EXPECT_TRUE(oControl.OnMouseWheel(-24.0, true));
    EXPECT_EQ(oControl.sParams.fZoom, 91.0f);
    EXPECT_TRUE(oControl.OnMouseWheel(1e9, true));
    EXPECT_EQ(oControl.sParams.fZoom, 5.0f);
    EXPECT_FALSE(oControl.OnMouseWheel(1e9, true)) << "it is at its end";
    EXPECT_FALSE(oControl.OnMouseWheel(std::numeric_limits<double>::quiet_NaN(), true));
    EXPECT_FALSE(oControl.OnMouseWheel(std::numeric_limits<double>::infinity(), true));
    EXPECT_EQ(oControl.sParams.fZoom, 5.0f);
}
