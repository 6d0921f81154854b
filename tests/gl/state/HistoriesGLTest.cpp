// Histories that once left their mark on a picture, as short as they can be.
#include "tests/gl/state/StateCalls.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/LogCapture.h"

#include "tests/fuzz/GLWatch.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

/// A dewarper with a frame, and calls to it in a row.
class CHistory : public CEngineTest
{
protected:
    /// An operation of the dewarper.
    template <class F>
    auto D(F fCall)
    {
        return m_oPlayer.With(fCall);
    }

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
        D([&](auto& d) { return d.SetViewType(eView); });
        D([&](auto& d) { return d.SetMountType(eMount); });
        Draw();
    }
    void Restart()
    {
        m_oPlayer.Stop();
        m_oPlayer.Start();
        Frame();
    }
    /// The fault of all calls and of a last frame, which is compared; empty: none.
    std::string Fault()
    {
        m_oPlayer.Draw(true);
        return m_strFault + m_oPlayer.Play({});
    }

    CLogCapture m_oLog;
    CStatePlayer m_oPlayer{GetParam()};
    SStateCall m_sFrame;
    std::string m_strFault;
};

using Histories = CHistory;

TEST_P(Histories, AWallPanoramaFollowsAMountTiltThatChangedBehindAnotherView)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D([&](auto& d) { return d.SetMountTilt(20.0f); });
    Draw();
    D([&](auto& d) { return d.SetViewType(VIEW_PANORAMA_FULL); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AWallPanoramaFollowsAMountTiltThatChangedOverARestart)
{
    D([&](auto& d) { return d.SetMountTilt(20.0f); });
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Restart();
    Draw();
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D([&](auto& d) { return d.SetMountTilt(-10.0f); });
    Restart();
    Draw();
    D([&](auto& d) { return d.SetViewType(VIEW_PANORAMA_FULL); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AWallPanoramaIsRolledAfterARestartAsItWasBefore)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    D([&](auto& d) { return d.AbsolutePTZ(40.0f, 0.0f, 180.0f); });
    Draw();
    Restart();
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AWallPanoramaIsRolledAfterItsObjectsWereFreedAsItsPositionSays)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    D([&](auto& d) { return d.AbsolutePTZ(40.0f, 0.0f, 180.0f); });
    Draw();
    m_oPlayer.FreeObjects(false);
    Frame();
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AWallPanoramaFollowsAPanThatChangedBehindAnotherView)
{
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    D([&](auto& d) { return d.AbsolutePTZ(40.0f, 0.0f, 180.0f); });
    Draw();
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D([&](auto& d) { return d.SetViewType(VIEW_PANORAMA_FULL); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AWallPanoramaFollowsStrictLimitsThatChangedBehindAnotherView)
{
    D([&](auto& d) { return d.SetMountTilt(20.0f); });
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Show(VIEW_FISHEYE, MOUNT_WALL);
    D([&](auto& d) { return d.SetStrictTiltLimits(false); });
    Draw();
    D([&](auto& d) { return d.SetViewType(VIEW_PANORAMA_FULL); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AWallPanoramaFollowsStrictLimitsThatChangedWithAnotherMount)
{
    D([&](auto& d) { return d.SetMountTilt(20.0f); });
    Show(VIEW_PANORAMA_HALF, MOUNT_WALL);
    Show(VIEW_PANORAMA_HALF, MOUNT_CEILING);
    D([&](auto& d) { return d.SetStrictTiltLimits(false); });
    Draw();
    D([&](auto& d) { return d.SetMountType(MOUNT_WALL); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AFlatViewKeepsAllRowsAfterAPanoramaOfAWideLens)
{
    UseFrame(0);
    D([&](auto& d) { return d.SetLensType(LENS_DSL215); });
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    D([&](auto& d) { return d.SetViewType(VIEW_FISHEYE_CIRCULAR); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, ACameraKeepsAllRowsAfterAPanoramaOfAWideLens)
{
    UseFrame(2);
    D([&](auto& d) { return d.SetLensType(LENS_DSL239); });
    Show(VIEW_PANORAMA_DUAL, MOUNT_CEILING);
    D([&](auto& d) { return d.SetViewType(VIEW_VCAM); });
    Draw();
    D([&](auto& d) { return d.AbsolutePTZ(90.0f, 90.0f, 120.0f); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AWideLensKeepsToTheFrameInAPanoramaThatShowedAnotherLens)
{
    UseFrame(0);
    D([&](auto& d) { return d.SetLensType(LENS_DSL419); });
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    D([&](auto& d) { return d.SetLensType(LENS_DSL215); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AFlatViewHasNoDepthLimitAfterAnInclinedWallPanorama)
{
    D([&](auto& d) { return d.SetMountTilt(20.0f); });
    Show(VIEW_PANORAMA_FULL, MOUNT_WALL);
    Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    D([&](auto& d) { return d.SetViewType(VIEW_PANORAMA_DUAL); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, APanoramaPannedBeyondItsRangeIsWhereItsPositionSays)
{
    for (const float fPan : {180.0f, 200.0f, 400.0f, 540.0f, -540.0f, 1000.0f}) {
        Show(VIEW_PANORAMA_FULL, MOUNT_CEILING);
        D([&](auto& d) { return d.AbsolutePTZ(fPan, 0.0f, 180.0f); });
        EXPECT_EQ(Fault(), "") << fPan;
    }
}

TEST_P(Histories, ADualPanoramaPannedBeyondItsRangeIsWhereItsPositionSays)
{
    for (const float fPan : {180.0f, 200.0f, 400.0f, 540.0f, -540.0f, 1000.0f}) {
        Show(VIEW_PANORAMA_DUAL, MOUNT_CEILING);
        D([&](auto& d) { return d.AbsolutePTZ(fPan, 0.0f, 180.0f); });
        EXPECT_EQ(Fault(), "") << fPan;
    }
}

TEST_P(Histories, APositionThatIsNoNumberIsRefused)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    D([&](auto& d) { return d.AbsolutePTZ(NAN, 20.0f, 90.0f); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AStepThatIsNoNumberIsRefused)
{
    Show(VIEW_VCAM, MOUNT_CEILING);
    D([&](auto& d) { return d.RelativePTZ(INFINITY, 20.0f, 0.0f); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, ARefusedInputOverlayLeavesThePictureAlone)
{
    unsigned char anPixel[4] = {9, 9, 9, 255};
    Draw();
    EXPECT_EQ(D([&](auto& d) { return d.SetInputOverlay(anPixel, -1, 1, 0); }), 0);
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, ARefusedInputOverlayLeavesTheOverlayThereIs)
{
    SOverlayImage sImage(16, 12, 3);
    EXPECT_EQ(D([&](auto& d) { return d.SetInputOverlay(sImage.vPixels.data(), 16, 12, 0); }), 1);
    m_oPlayer.Given().sInput = sImage;
    Draw();
    EXPECT_EQ(D([&](auto& d) { return d.SetInputOverlay(sImage.vPixels.data(), 16385, 1, 0); }), 0);
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, ARefusedOutputOverlayLeavesTheOverlayThereIs)
{
    SOverlayImage sImage(16, 12, 3);
    EXPECT_EQ(D([&](auto& d) { return d.SetOutputOverlay(sImage.vPixels.data(), 16, 12, 0, {}); }), 1);
    m_oPlayer.Given().sOutput = sImage;
    Draw();
    EXPECT_EQ(D([&](auto& d) { return d.SetOutputOverlay(sImage.vPixels.data(), 16, 0, 0, {}); }), 0);
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, AViewThatIsTakenBackShowsWhatADewarperWithoutAViewShowsAfterOneFrame)
{
    Show(VIEW_FISHEYE, MOUNT_CEILING);
    D([&](auto& d) { return d.SetViewType(VIEW_UNSET); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, ALensThatIsTakenBackOverARestartIsTheLensInForce)
{
    D([&](auto& d) { return d.SetLensType(LENS_DSL418); });
    Show(VIEW_VCAM, MOUNT_CEILING);
    D([&](auto& d) { return d.SetLensType(LENS_UNSET); });
    Restart();
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, ALensThatIsTakenBackBeforeAMoveIsTheLensInForce)
{
    D([&](auto& d) { return d.SetLensType(LENS_DSL418); });
    Show(VIEW_VCAM, MOUNT_CEILING);
    D([&](auto& d) { return d.SetLensType(LENS_UNSET); });
    D([&](auto& d) { return d.AbsolutePTZ(90.0f, 40.0f, 120.0f); });
    EXPECT_EQ(Fault(), "");
}

TEST_P(Histories, LevelsThatLeaveNoRangeGiveTheSamePictureTwice)
{
    D([&](auto& d) { return d.SetYUVparams(YUV_SPACE_BT601, YUV_RANGE_LIMITED); });
    m_oPlayer.Given().eSpace = YUV_SPACE_BT601;
    m_oPlayer.Given().eRange = YUV_RANGE_LIMITED;
    D([&](auto& d) { return d.SetYUVLevels(16, 16, 16); });
    Draw();
    Draw();
    EXPECT_EQ(Fault(), "");
}

INSTANTIATE_ENGINES(Histories);
