// Histories that once left their mark on a picture, as short as they can be.
#include "tests/gl/state/StateCalls.h"
#include "tests/support/LogCapture.h"

#include "tests/fuzz/GLWatch.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

/// A dewarper with a frame, and calls to it in a row.
class CHistory : public testing::Test
{
protected:
    CHistory() { UseFrame(100); }
    ~CHistory() override
    {
        m_oPlayer.Dewarper().StopGL();
        TakeGLErrors();
    }

    /// A small square frame (100), or one of the size of lens 215 (0) or 239 (2).
    void UseFrame(unsigned char nKind)
    {
        const unsigned char anChoice[] = {0, nKind, 1, 1, 1, 7, 0, 0};
        CFuzzBytes oBytes(anChoice, sizeof anChoice);
        m_sFrame = FrameCall(oBytes);
        Do(m_sFrame);
    }
    void Do(const SStateCall& rCall) { m_strFault += m_oPlayer.Play({rCall}); }
    /// Hands the same frame over again.
    void Frame() { Do(m_sFrame); }
    void Draw() { m_oPlayer.Draw(false); }
    void Show(EViewType eView, EMountType eMount)
    {
        D().SetViewType(eView);
        D().SetMountType(eMount);
        Draw();
    }
    void Restart()
    {
        m_oPlayer.Stop();
        m_oPlayer.Start();
        Frame();
    }
    CCustomGPUDewarperOffscreen& D() { return m_oPlayer.Dewarper(); }
    /// The fault of all calls and of a last frame, which is compared; empty: none.
    std::string Fault()
    {
        m_oPlayer.Draw(true);
        return m_strFault + m_oPlayer.Play({});
    }

    CLogCapture m_oLog;
    CStatePlayer m_oPlayer;
    SStateCall m_sFrame;
    std::string m_strFault;
};

using Histories = CHistory;

TEST_F(Histories, AWallPanoramaFollowsAMountTiltThatChangedBehindAnotherView)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D().SetMountTilt(20.0f);
    Draw();
    D().SetViewType(VIEW_PANORAMA_FULL);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AWallPanoramaFollowsAMountTiltThatChangedOverARestart)
{
    D().SetMountTilt(20.0f);
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Restart();
    Draw();
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D().SetMountTilt(-10.0f);
    Restart();
    Draw();
    D().SetViewType(VIEW_PANORAMA_FULL);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AWallPanoramaIsRolledAfterARestartAsItWasBefore)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    D().AbsolutePTZ(40.0f, 0.0f, 180.0f);
    Draw();
    Restart();
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AWallPanoramaIsRolledAfterItsObjectsWereFreedAsItsPositionSays)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    D().AbsolutePTZ(40.0f, 0.0f, 180.0f);
    Draw();
    m_oPlayer.FreeObjects(false);
    Frame();
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AWallPanoramaFollowsAPanThatChangedBehindAnotherView)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    D().AbsolutePTZ(40.0f, 0.0f, 180.0f);
    Draw();
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D().SetViewType(VIEW_PANORAMA_FULL);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AWallPanoramaFollowsStrictLimitsThatChangedBehindAnotherView)
{
    D().SetMountTilt(20.0f);
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D().SetStrictTiltLimits(false);
    Draw();
    D().SetViewType(VIEW_PANORAMA_FULL);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AWallPanoramaFollowsStrictLimitsThatChangedWithAnotherMount)
{
    D().SetMountTilt(20.0f);
    Show(VIEW_PANORAMA_HALF, MOUNT_WALL);
    Show(VIEW_PANORAMA_HALF, MOUNT_CEILING);
    D().SetStrictTiltLimits(false);
    Draw();
    D().SetMountType(MOUNT_WALL);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AFlatViewKeepsAllRowsAfterAPanoramaOfAWideLens)
{
    UseFrame(0);
    D().SetLensType(LENS_DSL215);
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    D().SetViewType(VIEW_FISHEYE_CIRCULAR);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, ACameraKeepsAllRowsAfterAPanoramaOfAWideLens)
{
    UseFrame(2);
    D().SetLensType(LENS_DSL239);
    Show(VIEW_PANORAMA_DUAL, MOUNT_CEILING);
    D().SetViewType(VIEW_VCAM);
    Draw();
    D().AbsolutePTZ(90.0f, 90.0f, 120.0f);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AWideLensKeepsToTheFrameInAPanoramaThatShowedAnotherLens)
{
    UseFrame(0);
    D().SetLensType(LENS_DSL419);
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    D().SetLensType(LENS_DSL215);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AFlatViewHasNoDepthLimitAfterAnInclinedWallPanorama)
{
    D().SetMountTilt(20.0f);
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    D().SetViewType(VIEW_PANORAMA_DUAL);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, APanoramaPannedBeyondItsRangeIsWhereItsPositionSays)
{
    for (const float fPan : {180.0f, 200.0f, 400.0f, 540.0f, -540.0f, 1000.0f}) {
        Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
        D().AbsolutePTZ(fPan, 0.0f, 180.0f);
        EXPECT_EQ(Fault(), "") << fPan;
    }
}

TEST_F(Histories, ADualPanoramaPannedBeyondItsRangeIsWhereItsPositionSays)
{
    for (const float fPan : {180.0f, 200.0f, 400.0f, 540.0f, -540.0f, 1000.0f}) {
        Show(VIEW_PANORAMA_DUAL, MOUNT_CEILING);
        D().AbsolutePTZ(fPan, 0.0f, 180.0f);
        EXPECT_EQ(Fault(), "") << fPan;
    }
}

TEST_F(Histories, APositionThatIsNoNumberIsRefused)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    D().AbsolutePTZ(NAN, 20.0f, 90.0f);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AStepThatIsNoNumberIsRefused)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    D().RelativePTZ(INFINITY, 20.0f, 0.0f);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, ARefusedInputOverlayLeavesThePictureAlone)
{
    unsigned char anPixel[4] = {9, 9, 9, 255};
    Draw();
    EXPECT_EQ(D().SetInputOverlay(anPixel, -1, 1, 0), 0);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, ARefusedInputOverlayLeavesTheOverlayThereIs)
{
    SOverlayImage sImage(16, 12, 3);
    EXPECT_EQ(D().SetInputOverlay(sImage.vPixels.data(), 16, 12, 0), 1);
    m_oPlayer.Given().sInput = sImage;
    Draw();
    EXPECT_EQ(D().SetInputOverlay(sImage.vPixels.data(), 16385, 1, 0), 0);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, ARefusedOutputOverlayLeavesTheOverlayThereIs)
{
    SOverlayImage sImage(16, 12, 3);
    EXPECT_EQ(D().SetOutputOverlay(sImage.vPixels.data(), 16, 12, 0), 1);
    m_oPlayer.Given().sOutput = sImage;
    Draw();
    EXPECT_EQ(D().SetOutputOverlay(sImage.vPixels.data(), 16, 0, 0), 0);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, AViewThatIsTakenBackShowsWhatADewarperWithoutAViewShowsAfterOneFrame)
{
    Show(VIEW_FISHEYE, MOUNT_CEILING);
    D().SetViewType(VIEW_UNSET);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, ALensThatIsTakenBackOverARestartIsTheLensInForce)
{
    D().SetLensType(LENS_DSL418);
    Show(VIEW_VCAM, MOUNT_CEILING);
    D().SetLensType(LENS_UNSET);
    Restart();
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, ALensThatIsTakenBackBeforeAMoveIsTheLensInForce)
{
    D().SetLensType(LENS_DSL418);
    Show(VIEW_VCAM, MOUNT_CEILING);
    D().SetLensType(LENS_UNSET);
    D().AbsolutePTZ(90.0f, 40.0f, 120.0f);
    EXPECT_EQ(Fault(), "");
}

TEST_F(Histories, LevelsThatLeaveNoRangeGiveTheSamePictureTwice)
{
    D().SetYUVparams(YUV_SPACE_BT601, YUV_RANGE_LIMITED);
    m_oPlayer.Given().eSpace = YUV_SPACE_BT601;
    m_oPlayer.Given().eRange = YUV_RANGE_LIMITED;
    D().SetYUVLevels(16, 16, 16);
    Draw();
    Draw();
    EXPECT_EQ(Fault(), "");
}
