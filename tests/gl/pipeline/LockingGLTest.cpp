// Every operation locks, unlocks on every way out, and asks for a frame where it should.
#include "tests/support/TestDewarper.h"

#include <functional>
#include <gtest/gtest.h>

/// Counts the calls of its hooks.
class CCountingDewarper : public CCustomGPUDewarperOffscreen
{
public:
    void Lock() override
    {
        CCustomGPUDewarperOffscreen::Lock();
        ++nLocks;
        ++nDepth;
    }
    void Unlock() override
    {
        --nDepth;
        CCustomGPUDewarperOffscreen::Unlock();
    }
    void DrawRequired() override
    {
        CCustomGPUDewarperOffscreen::DrawRequired();
        ++nDrawRequests;
        bRequestedUnlocked = bRequestedUnlocked || nDepth == 0;
    }
    void ExchangeOpenglFrontBackBuffers(void* pContext) override
    {
        CCustomGPUDewarperOffscreen::ExchangeOpenglFrontBackBuffers(pContext);
        ++nExchanges;
    }
    bool CheckOSDependentDrawGLSceneInitialization() override
    {
        return bReady && CCustomGPUDewarperOffscreen::CheckOSDependentDrawGLSceneInitialization();
    }

    int nLocks = 0;
    int nDepth = 0;
    int nDrawRequests = 0;
    int nExchanges = 0;
    bool bRequestedUnlocked = false;
    bool bReady = true;
};

struct SOperation
{
    const char* pName;
    bool bAsksForAFrame;
    std::function<void(CCountingDewarper&)> fRun;
};

static std::vector<SOperation> Operations()
{
    return {
        {"SetViewType", true, [](CCountingDewarper& o) { o.SetViewType(VIEW_FISHEYE); }},
        {"GetViewType", false, [](CCountingDewarper& o) { o.GetViewType(); }},
        {"SetMountType", true, [](CCountingDewarper& o) { o.SetMountType(MOUNT_FLOOR); }},
        {"GetMountType", false, [](CCountingDewarper& o) { o.GetMountType(); }},
        {"SetLensType", true, [](CCountingDewarper& o) { o.SetLensType(LENS_DSL215); }},
        {"GetLensType", false, [](CCountingDewarper& o) { o.GetLensType(); }},
        {"SetInterpolationType", true,
         [](CCountingDewarper& o) { o.SetInterpolationType(INTERPOLATION_LINEAR); }},
        {"GetInterpolationType", false, [](CCountingDewarper& o) { o.GetInterpolationType(); }},
        {"SetWireFrame", true, [](CCountingDewarper& o) { o.SetWireFrame(false); }},
        {"SetYUVparams", true, [](CCountingDewarper& o) { o.SetYUVparams(YUV_SPACE_BT709, YUV_RANGE_FULL); }},
        {"SetMountTilt", true, [](CCountingDewarper& o) { o.SetMountTilt(3.0f); }},
        {"SetStrictTiltLimits", true, [](CCountingDewarper& o) { o.SetStrictTiltLimits(false); }},
        {"SetRotation", true, [](CCountingDewarper& o) { o.SetRotation(90); }},
        {"SetFlip", true, [](CCountingDewarper& o) { o.SetFlip(true, true); }},
        {"SetGains", true, [](CCountingDewarper& o) { o.SetGains(1.0f, 1.5f); }},
        {"SetYUVLevels", true, [](CCountingDewarper& o) { o.SetYUVLevels(16, 235, 16); }},
        {"SetLogGLErrors", true, [](CCountingDewarper& o) { o.SetLogGLErrors(false); }},
        {"SetLogShaderCode", true, [](CCountingDewarper& o) { o.SetLogShaderCode(false); }},
        {"SetEyeDistance", true, [](CCountingDewarper& o) { o.SetEyeDistance(0.25f); }},
        {"AbsolutePTZ", true, [](CCountingDewarper& o) { o.AbsolutePTZ(1.0f, 2.0f, 90.0f); }},
        {"RelativePTZ", true, [](CCountingDewarper& o) { o.RelativePTZ(1.0f, 2.0f, -9.0f); }},
        {"OnMouseWheel", true, [](CCountingDewarper& o) { o.OnMouseWheel(24.0); }},
        {"OnMouseDown", false, [](CCountingDewarper& o) { o.OnMouseDown(5, 5); }},
        {"OnMouseMove", true, [](CCountingDewarper& o) { o.OnMouseMove(9, 9, false, false); }},
        {"OnMouseUp", false, [](CCountingDewarper& o) { o.OnMouseUp(); }},
        {"GetPTZ", false,
         [](CCountingDewarper& o) {
             float afPTZ[3];
             o.GetPTZ(afPTZ[0], afPTZ[1], afPTZ[2]);
         }},
        {"GetLastDisplayedTextureTimestamp", false,
         [](CCountingDewarper& o) { o.GetLastDisplayedTextureTimestamp(); }},
        {"GetImage", false,
         [](CCountingDewarper& o) {
             int anOut[4];
             o.GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]);
         }},
        {"DrawGLScene", false, [](CCountingDewarper& o) { o.DrawGLScene(false); }},
    };
}

TEST(Locking, EveryOperationLocksAndUnlocks)
{
    CLogCapture oLog;
    CCountingDewarper oDewarper;
    ASSERT_TRUE(oDewarper.InitGL(32, 32));
    ASSERT_TRUE(oDewarper.StartGL());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    ASSERT_TRUE(oDewarper.DrawGLScene(false));
    for (const SOperation& sOperation : Operations()) {
        SCOPED_TRACE(sOperation.pName);
        oDewarper.nLocks = 0;
        oDewarper.nDrawRequests = 0;
        sOperation.fRun(oDewarper);
        EXPECT_GE(oDewarper.nLocks, 1);
        EXPECT_EQ(oDewarper.nDepth, 0);
        EXPECT_EQ(oDewarper.nDrawRequests > 0, sOperation.bAsksForAFrame);
    }
    EXPECT_FALSE(oDewarper.bRequestedUnlocked);
    EXPECT_TRUE(oDewarper.DrawGLScene(false));
}

TEST(Locking, AFrameThatCannotBeDrawnUnlocksToo)
{
    CLogCapture oLog;
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CCountingDewarper oDewarper;
    EXPECT_FALSE(oDewarper.DrawGLScene(true)); // neither frame nor context
    EXPECT_EQ(oDewarper.nDepth, 0);
    ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
    EXPECT_FALSE(oDewarper.DrawGLScene(true)); // no context
    EXPECT_EQ(oDewarper.nDepth, 0);
    ASSERT_TRUE(oDewarper.InitGL(32, 32));
    ASSERT_TRUE(oDewarper.StartGL());
    oDewarper.bReady = false;
    EXPECT_FALSE(oDewarper.DrawGLScene(true)); // the platform is not ready
    EXPECT_EQ(oDewarper.nDepth, 0);
    oDewarper.bReady = true;
    CGLRecorder::Get().Inject("GL_COMPILE_STATUS", 0.0, 0, 1000);
    EXPECT_FALSE(oDewarper.DrawGLScene(true)); // no program
    EXPECT_EQ(oDewarper.nDepth, 0);
    EXPECT_EQ(oDewarper.nExchanges, 0);
    CGLRecorder::Get().ClearInjections();
    EXPECT_TRUE(oDewarper.DrawGLScene(true));
    EXPECT_EQ(oDewarper.nDepth, 0);
    EXPECT_EQ(oDewarper.nExchanges, 1);
    EXPECT_TRUE(oDewarper.DrawGLScene(false));
    EXPECT_EQ(oDewarper.nExchanges, 1);
}
