#include "tests/soak/ReliabilityScene.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>

namespace
{

const int TARGET_WIDTH = 160;
const int TARGET_HEIGHT = 120;

/// Destroys the current context behind the dewarper's back.
void LoseContext()
{
    const EGLDisplay pDisplay = eglGetCurrentDisplay();
    const EGLContext pContext = eglGetCurrentContext();
    ASSERT_NE(pContext, EGL_NO_CONTEXT);
    eglMakeCurrent(pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(pDisplay, pContext);
}

class ContextLoss : public testing::TestWithParam<EViewType>
{
};

} // namespace

TEST_P(ContextLoss, LeavesPictureAndPositionAsTheyWere)
{
    CTestFrame oFrame(AsymmetricPicture(256, 256), IMAGE_FORMAT_NV12);
    CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper.SetViewType(GetParam());
    oDewarper.SetLensType(LENS_DSL419);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    oDewarper.AbsolutePTZ(40.0f, 30.0f, 100.0f);
    SwitchEverythingOn(oDewarper, TARGET_WIDTH, TARGET_HEIGHT);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sGolden = oDewarper.Picture();
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    oDewarper.GetPTZ(fPan, fTilt, fZoom);
    for (int i = 0; i < (IsLongRun() ? 50 : 10); ++i) {
        LoseContext();
        {
            CLogCapture oLog;
            EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
            EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        }
        ASSERT_TRUE(oDewarper.StartGL());
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        ASSERT_EQ(oDewarper.Picture().vPixels, sGolden.vPixels) << "after loss " << i;
        float afNow[3] = {};
        oDewarper.GetPTZ(afNow[0], afNow[1], afNow[2]);
        EXPECT_EQ(afNow[0], fPan);
        EXPECT_EQ(afNow[1], fTilt);
        EXPECT_EQ(afNow[2], fZoom);
    }
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_TEST_SUITE_P(Views, ContextLoss, testing::Values(VIEW_VCAM_QUAD, VIEW_PANORAMA_DUAL));

TEST(Restart, LeavesNothingBehindAfterManyTimes)
{
    CTestFrame oFrame(AsymmetricPicture(128, 128), IMAGE_FORMAT_YUV420P);
    CTestDewarper oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.Started());
    for (int i = 0; i < (IsLongRun() ? 100 : 20); ++i) {
        SwitchEverythingOn(oDewarper, 64, 48);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        oDewarper.StopGL();
        EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), 0);
        EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), 0);
        ASSERT_TRUE(oDewarper.StartGL());
    }
    EXPECT_NO_GL_ERROR();
}
