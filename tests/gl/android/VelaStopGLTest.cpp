// The end of the Android class's GL, and what a restart keeps.
#include "TestVela.h"

#include <EGL/egl.h>

TEST(VelaStop, StopWithoutStartTouchesNoEGL)
{
    CCustomGPUDewarperVela oDewarper;
    CGLRecorder::Get().Start();
    CLogCapture oLog;
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("egl") + CGLRecorder::Get().CountPrefix("gl"), 0);
    ASSERT_EQ(oLog.Lines().size(), 2u);
    ExpectLine(oLog, 0, INFO_PRIORITY, "StopGL: Stop OpenGLES");
}

TEST(VelaStop, StopEndsWhatStartMadeInOrder)
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    const SLiving sBefore;
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(64, 48);
    oInput.Fill(oFrame);
    CTestVela oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
    ASSERT_TRUE(oDewarper.CreateImageF(oInput.get(), oOutput.get()));
    oRecorder.Start();
    CLogCapture oLog;
    EXPECT_TRUE(oDewarper.StopGL());
    ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
    // The fence of the last frame is destroyed once more.
    const char* const aOrder[] = {"eglDestroySyncKHR", "eglDestroyImageKHR", "eglDestroyContext",
                                  "eglDestroySurface", "eglTerminate",       "eglReleaseThread"};
    for (std::size_t i = 0; i + 1 < std::size(aOrder); ++i) {
        EXPECT_GE(oRecorder.Find(aOrder[i]), 0) << aOrder[i];
        EXPECT_LT(oRecorder.Find(aOrder[i]), oRecorder.Find(aOrder[i + 1])) << aOrder[i];
    }
    EXPECT_EQ(oRecorder.Count("eglMakeCurrent"), 0) << "it was current, and is not put away first";
    EXPECT_EQ(SLiving(), sBefore);
    EXPECT_FALSE(oDewarper.bGLStarted);
    EXPECT_EQ(oDewarper.mInputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(oDewarper.mOutputImage, EGL_NO_IMAGE_KHR);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_FALSE(oDewarper.CreateImageF(oInput.get(), oOutput.get()));
    EXPECT_FALSE(oDewarper.DrawGLScene(true));
}

TEST(VelaStop, NothingIsDrawnBeforeTheStart)
{
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    CGLRecorder::Get().Start();
    CLogCapture oLog;
    EXPECT_FALSE(oDewarper.CreateImageF(oInput.get(), oOutput.get()));
    EXPECT_FALSE(oDewarper.CreateImage(oInput.get()));
    EXPECT_FALSE(oDewarper.DrawGLScene(true));
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("gl") + CGLRecorder::Get().CountPrefix("eglCreate"), 0);
    EXPECT_TRUE(oLog.Contains("CreateImageF: Error creating egl image "));
}

TEST(VelaStop, TheFirstFrameIsAtRest)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    CTestVela oDewarper(16, 16);
    ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
    EXPECT_EQ(oDewarper.pParams->fPan, 0.0f);
    EXPECT_EQ(oDewarper.pParams->fTilt, 0.0f);
    EXPECT_EQ(oDewarper.pParams->fZoom, 180.0f);
}

TEST(VelaStop, ARestartKeepsThePosition)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    CTestVela oDewarper(16, 16);
    oDewarper.SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
    oDewarper.AbsolutePTZ(-45.0f, 20.0f, 60.0f);
    ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
    const float fTilt = oDewarper.pParams->fTilt;
    ASSERT_EQ(oDewarper.pParams->fPan, -45.0f);
    oDewarper.StopGL();
    CLogCapture oLog;
    ASSERT_TRUE(oDewarper.StartGL());
    // No view is in force then: what is logged is wrapped, what is kept is not.
    EXPECT_TRUE(oLog.Contains("StartGL: GetPTZ values are: 315.000000, ")) << oLog.Text();
    ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
    EXPECT_EQ(oDewarper.pParams->fPan, -45.0f);
    EXPECT_EQ(oDewarper.pParams->fTilt, fTilt);
    EXPECT_EQ(oDewarper.pParams->fZoom, 60.0f);
}

TEST(VelaStop, EveryNewContextGetsItsClearColour)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    CTestVela oDewarper(16, 16);
    for (int i = 0; i < 2; ++i) {
        CGLRecorder::Get().Start();
        ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
        ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
        const std::vector<SGLCall> vCalls = CGLRecorder::Get().Named("glClearColor");
        ASSERT_EQ(vCalls.size(), 1u);
        EXPECT_EQ(vCalls[0].aArgs[0], 0.0);
        EXPECT_EQ(vCalls[0].aArgs[1], 0.5);
        EXPECT_EQ(vCalls[0].aArgs[2], 0.5);
        EXPECT_EQ(vCalls[0].aArgs[3], 0.0);
        EXPECT_TRUE(oDewarper.bSceneInitialized);
        ASSERT_TRUE(oDewarper.StartGL()) << "a start while started is a restart";
    }
}

TEST(VelaStop, DrawingWithoutGLIsToldOnceEachTime)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    const auto ExpectOneLine = [&] {
        CLogCapture oLog;
        for (int i = 0; i < 5; ++i)
            EXPECT_FALSE(oDewarper.DrawGLScene(true));
        EXPECT_EQ(oLog.Text(), "DrawGLScene: GL is not started\n");
    };
    ExpectOneLine();
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(oDewarper.StartGL());
        ASSERT_TRUE(oDewarper.CreateImageF(oInput.get(), oOutput.get()));
        CLogCapture oLog;
        EXPECT_TRUE(oDewarper.DrawGLScene(true));
        oDewarper.StopGL();
        EXPECT_FALSE(oLog.Contains("not started"));
        ExpectOneLine();
    }
    // A start that fails is no start.
    CGLRecorder::Get().Inject("eglCreatePbufferSurface", 0.0);
    EXPECT_FALSE(oDewarper.StartGL());
    ExpectOneLine();
}

TEST(VelaStop, AStartWithoutMemoryCanBeStoppedAndTriedAgain)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    std::vector<unsigned char> vGolden;
    {
        CTestVela oGolden(16, 16);
        ASSERT_TRUE(oGolden.DrawFrame(oInput, oOutput));
        vGolden = oOutput.Texels().vPixels;
    }
    const SLiving sBefore;
    int nFaults = 0;
    for (bool bReached = true; bReached; ++nFaults) {
        SCOPED_TRACE("allocation " + std::to_string(nFaults));
        ASSERT_LT(nFaults, 200);
        CGLRecorder::Get().Start();
        {
            CCustomGPUDewarperVela oDewarper;
            oDewarper.InitGL(16, 16);
            CLogCapture oLog;
            FailAllocation(nFaults);
            const bool bStarted = oDewarper.StartGL();
            bReached = AllocationHasFailed();
            FailAllocation(-1);
            EXPECT_EQ(bStarted, !bReached);
            EXPECT_EQ(oLog.Contains("StartGL: out of memory"), bReached) << oLog.Text();
            EXPECT_TRUE(oDewarper.StopGL());
            ASSERT_TRUE(oDewarper.StartGL());
            ASSERT_TRUE(oDewarper.CreateImageF(oInput.get(), oOutput.get()));
            EXPECT_TRUE(oDewarper.DrawGLScene(true));
            EXPECT_EQ(oOutput.Texels().vPixels, vGolden);
        }
        EXPECT_EQ(SLiving(), sBefore);
        EXPECT_EQ(CGLRecorder::Get().Count("eglTerminate"), CGLRecorder::Get().Count("eglInitialize"));
    }
    EXPECT_GT(nFaults, 1) << "a start asks for memory";
    EXPECT_NO_GL_ERROR();
}
