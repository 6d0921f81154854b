// Every EGL and GL call that can fail is made to fail once: the result says so, the log has a line, and the
// next good call works.

#include "tests/soak/ReliabilityScene.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>
#include <gtest/gtest.h>

namespace
{

struct SFault
{
    const char* pCall;
    double fResult;
    const char* pLogLine; ///< part of the line that must appear
};

// Display faults hit every platform that is tried.
const SFault START_FAULTS[] = {
    {"eglInitialize", EGL_FALSE, "StartGL: no EGL display"},
    {"eglChooseConfig", EGL_FALSE, "StartGL: no EGL display"},
    {"eglBindAPI", EGL_FALSE, "StartGL: no EGL display"},
    {"eglCreateContext", 0.0, "StartGL: no EGL display"},
    {"eglMakeCurrent", EGL_FALSE, "StartGL: the OpenGL ES context cannot be made current"},
};

class StartFault : public testing::TestWithParam<SFault>
{
};

} // namespace

TEST_P(StartFault, IsReportedAndTheNextStartWorks)
{
    CGLRecorder& rRecorder = CGLRecorder::Get();
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGBA32);
    CCustomGPUDewarperOffscreen oDewarper;
    ASSERT_TRUE(oDewarper.InitGL(32, 32));
    {
        CLogCapture oLog;
        rRecorder.Inject(GetParam().pCall, GetParam().fResult, 0, 100);
        EXPECT_FALSE(oDewarper.StartGL());
        rRecorder.ClearInjections();
        EXPECT_TRUE(oLog.Contains(GetParam().pLogLine)) << oLog.Text();
        EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        EXPECT_FALSE(oDewarper.DrawGLScene(true));
    }
    EXPECT_EQ(rRecorder.Living(EGL_KIND_CONTEXT), 0);
    ASSERT_TRUE(oDewarper.StartGL());
    oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0);
    EXPECT_TRUE(oDewarper.DrawGLScene(true));
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_TEST_SUITE_P(Calls, StartFault, testing::ValuesIn(START_FAULTS));

TEST(FrameFault, MainProgramThatDoesNotBuildFailsTheFrameOnly)
{
    for (const char* pQuery : {"GL_COMPILE_STATUS", "GL_LINK_STATUS"}) {
        CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12);
        CTestDewarper oDewarper(32, 32);
        ASSERT_TRUE(oDewarper.Started());
        {
            CLogCapture oLog;
            // The given text and its adapted copy both fail.
            CGLRecorder::Get().Inject(pQuery, GL_FALSE, 0, 2);
            EXPECT_FALSE(oDewarper.DrawFrame(oFrame)) << pQuery;
            CGLRecorder::Get().ClearInjections();
        }
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << pQuery;
        EXPECT_NO_GL_ERROR();
    }
}

TEST(FrameFault, RebuildThatFailsRefusesTheFrameAndIsTriedAgainWhenSomethingChanges)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12);
    CTestDewarper oDewarper(32, 32);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    CLogCapture oLog;
    oDewarper.SetFlip(true, false);
    CGLRecorder::Get().Inject("GL_COMPILE_STATUS", GL_FALSE, 0, 4);
    EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
    EXPECT_FALSE(oDewarper.DrawFrame(oFrame)) << "tried once more";
    CGLRecorder::Get().ClearInjections();
    CGLRecorder::Get().Start();
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(CGLRecorder::Get().Count("glCompileShader"), 0) << "nothing changed";
    EXPECT_EQ(oLog.Lines().size(), 3u) << "the driver's words twice and ours once" << oLog.Text();
    EXPECT_EQ(oDewarper.GetLastErrorText(), "DrawGLScene: the view's program could not be built");
    oDewarper.SetFlip(true, true);
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_NO_GL_ERROR();
}

TEST(FrameFault, ProgramWithClipBandsThatDoesNotBuildRefusesTheFrame)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12);
    CTestDewarper oDewarper(64, 64);
    oDewarper.SetMountType(MOUNT_WALL);
    oDewarper.SetViewType(VIEW_PANORAMA_FULL);
    CGLRecorder::Get().Start();
    CGLRecorder::Get().Inject("GL_LINK_STATUS", GL_FALSE);
    CLogCapture oLog;
    EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(CGLRecorder::Get().Count("glLinkProgram"), 1) << "the bands are known before it is made";
    EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    EXPECT_TRUE(oLog.Contains("LoadShaderPrograms: the program does not link: ")) << oLog.Text();
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << "a first program is tried for at every frame";
    EXPECT_EQ(CGLRecorder::Get().Count("glLinkProgram"), 2);
    EXPECT_NO_GL_ERROR();
}

TEST(FrameFault, TargetThatIsNotCompleteFailsTheFrameAndIsTriedAgain)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12);
    CTestDewarper oDewarper(32, 32);
    {
        CLogCapture oLog;
        CGLRecorder::Get().Inject("glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED, 0, 2);
        EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
        CGLRecorder::Get().ClearInjections();
        EXPECT_TRUE(oLog.Contains("no target of that size")) << oLog.Text();
    }
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_NO_GL_ERROR();
}

TEST(FrameFault, PassProgramsThatDoNotBuildLeaveTheViewOnTheTarget)
{
    CTestFrame oFrame(AsymmetricPicture(256, 256), IMAGE_FORMAT_RGBA32);
    CTestDewarper oDewarper(160, 120);
    oDewarper.SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    SwitchEverythingOn(oDewarper, 160, 120);
    for (int nSkip = 0; nSkip < 14; ++nSkip) {
        oDewarper.FreeOpenGLObjects();
        CLogCapture oLog;
        CGLRecorder::Get().Inject("GL_COMPILE_STATUS", GL_FALSE, nSkip, 2);
        oDewarper.DrawFrame(oFrame);
        CGLRecorder::Get().ClearInjections();
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << nSkip;
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << nSkip;
    }
    const STestImage sAfter = oDewarper.Picture();
    CTestDewarper oFresh(160, 120);
    oFresh.SetViewType(VIEW_FISHEYE);
    SwitchEverythingOn(oFresh, 160, 120);
    ASSERT_TRUE(oFresh.DrawFrame(oFrame));
    EXPECT_EQ(sAfter.vPixels, oFresh.Picture().vPixels);
    EXPECT_NO_GL_ERROR();
}

TEST(FrameFault, ReadBackOfBGRAThatIsRefusedFallsBackToRGBA)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGBA32);
    CTestDewarper oDewarper(32, 32);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    CGLRecorder::Get().InjectError("glReadPixels", GL_INVALID_OPERATION);
    const STestImage sFallBack = oDewarper.Picture();
    CGLRecorder::Get().ClearInjections();
    CGLRecorder::Get().TakeErrors();
    CTestDewarper oOther(32, 32);
    ASSERT_TRUE(oOther.DrawFrame(oFrame));
    EXPECT_EQ(sFallBack.vPixels, oOther.Picture().vPixels);
}
