// Every place where a frame asks the driver or the heap for something fails once, one place after the other:
// the class of graphic buffers.

#include "tests/gl/android/TestVela.h"
#include "tests/soak/FaultSweep.h"
#include "tests/soak/ReliabilityScene.h"

#include <EGL/egl.h>

#include <algorithm>

namespace
{

const int TARGET_WIDTH = 80;
const int TARGET_HEIGHT = 60;

/// Buffers and golden picture of one scene with everything switched on.
class CVelaScene
{
public:
    CVelaScene()
    {
        CTestFrame oFrame(AsymmetricPicture(256, 256), IMAGE_FORMAT_NV12);
        m_oInput.Fill(oFrame);
        CTestVela oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        Prepare(oDewarper);
        EXPECT_TRUE(oDewarper.DrawFrame(m_oInput, m_oOutput));
        m_vGolden = m_oOutput.Texels().vPixels;
    }

    static void Prepare(CTestVela& oDewarper)
    {
        ASSERT_TRUE(oDewarper.Started());
        oDewarper.SetViewType(VIEW_PANORAMA_DUAL);
        oDewarper.SetLensType(LENS_DSL419);
        SwitchEverythingOn(oDewarper, TARGET_WIDTH, TARGET_HEIGHT);
    }

    bool Draw(CTestVela& oDewarper) { return oDewarper.DrawFrame(m_oInput, m_oOutput); }
    bool IsGolden() { return m_oOutput.Texels().vPixels == m_vGolden; }

private:
    CTestBuffer m_oInput{256, 256};
    CTestBuffer m_oOutput{TARGET_WIDTH, TARGET_HEIGHT};
    std::vector<unsigned char> m_vGolden;
};

/// Lines that tell of a fault; the others tell what is done.
int FaultLines(const CLogCapture& oLog)
{
    return static_cast<int>(
        std::count_if(oLog.Lines().begin(), oLog.Lines().end(), [](const SLogLine& rLine) {
            return rLine.nPriority == ERROR_PRIORITY || rLine.strText.find("error") != std::string::npos ||
                   rLine.strText.find("does not") != std::string::npos;
        }));
}

class VelaFaultSweep : public testing::TestWithParam<SFaultKind>
{
};

std::vector<SFaultKind> VelaFaults()
{
    std::vector<SFaultKind> vFaults(std::begin(FRAME_FAULTS), std::end(FRAME_FAULTS));
    vFaults.push_back({"eglCreateImageKHR", "eglCreateImageKHR"});
    vFaults.push_back({"glTexStorage2D", "glTexStorage2D", GL_OUT_OF_MEMORY});
    vFaults.push_back({"glEGLImageTargetTexture2DOES", "glEGLImageTargetTexture2DOES", GL_OUT_OF_MEMORY});
    vFaults.push_back({"glEGLImageTargetRenderbufferStorageOES", "glEGLImageTargetRenderbufferStorageOES",
                       GL_OUT_OF_MEMORY});
    return vFaults;
}

} // namespace

TEST_P(VelaFaultSweep, EveryFaultOfAFrameIsToldAndTheNextFrameIsRight)
{
    const SFaultKind& rKind = GetParam();
    CVelaScene oScene;
    int nSkip = 0;
    for (bool bReached = true; bReached; ++nSkip) {
        ASSERT_LT(nSkip, 100);
        SCOPED_TRACE("call " + std::to_string(nSkip));
        CTestVela oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        CVelaScene::Prepare(oDewarper);
        CLogCapture oLog;
        InjectFault(rKind, nSkip);
        const bool bDrawn = oScene.Draw(oDewarper);
        bReached = EndFault(rKind, nSkip);
        EXPECT_LE(FaultLines(oLog), rKind.nTimes) << oLog.Text();
        const bool bSame = bDrawn && oScene.IsGolden();
        EXPECT_TRUE(bSame || FaultLines(oLog) > 0) << oLog.Text();
        if (rKind.nError != 0) {
            EXPECT_TRUE(!bDrawn || bSame) << "memory that lacks fails the frame";
        }
        CGLRecorder::Get().TakeErrors();
        oLog.Clear();
        EXPECT_TRUE(oScene.Draw(oDewarper));
        EXPECT_TRUE(oScene.IsGolden());
        EXPECT_EQ(FaultLines(oLog), 0) << oLog.Text();
        EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_IMAGE), 0);
        EXPECT_NO_GL_ERROR();
    }
    EXPECT_GT(nSkip, 1) << "one place at least";
}

INSTANTIATE_TEST_SUITE_P(Calls, VelaFaultSweep, testing::ValuesIn(VelaFaults()),
                         [](const auto& rInfo) { return std::string(rInfo.param.pInjection); });

TEST(VelaFaultOfStart, AFramebufferThatCannotBeMadeIsToldAndTheNextStartWorks)
{
    CVelaScene oScene;
    for (const char* pCall : {"glGenFramebuffers", "glGenRenderbuffers"}) {
        SCOPED_TRACE(pCall);
        const SLiving sBefore;
        {
            CCustomGPUDewarperVela oDewarper;
            oDewarper.InitGL(TARGET_WIDTH, TARGET_HEIGHT);
            CLogCapture oLog;
            CGLRecorder::Get().InjectError(pCall, GL_OUT_OF_MEMORY);
            EXPECT_FALSE(oDewarper.StartGL());
            CGLRecorder::Get().ClearInjections();
            CGLRecorder::Get().TakeErrors();
            EXPECT_EQ(FaultLines(oLog), 1) << oLog.Text();
            EXPECT_FALSE(oDewarper.DrawGLScene(true));
            EXPECT_TRUE(oDewarper.StartGL());
        }
        EXPECT_EQ(SLiving(), sBefore);
    }
    CTestVela oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
    CVelaScene::Prepare(oDewarper);
    EXPECT_TRUE(oScene.Draw(oDewarper));
    EXPECT_TRUE(oScene.IsGolden());
    EXPECT_NO_GL_ERROR();
}

TEST(VelaFaultOfStart, AContextOfTheSecondTryMayFailToo)
{
    static const char szOld[] = "OpenGL ES 2.0";
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(TARGET_WIDTH, TARGET_HEIGHT);
    CGLRecorder& rRecorder = CGLRecorder::Get();
    // Current, let go of for its version, current no more.
    rRecorder.Inject("glGetString", NumberOfPointer(szOld));
    rRecorder.Inject("eglMakeCurrent", 0.0, 2);
    EXPECT_FALSE(oDewarper.StartGL());
    rRecorder.ClearInjections();
    EXPECT_TRUE(oDewarper.StartGL());
}

TEST(VelaFaultOfStart, AVersionThatCannotBeReadIsTrusted)
{
    static const char szOdd[] = "three and a bit";
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(TARGET_WIDTH, TARGET_HEIGHT);
    CGLRecorder::Get().Start();
    CGLRecorder::Get().Inject("glGetString", NumberOfPointer(szOdd));
    EXPECT_TRUE(oDewarper.StartGL());
    EXPECT_EQ(CGLRecorder::Get().Count("eglCreateContext"), 1);
}

// Ten times, 50 in a long run, the context goes behind the dewarper's back and is made anew.
TEST(VelaContextLoss, LeavesPictureAndPositionAsTheyWere)
{
    CVelaScene oScene;
    CTestVela oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
    CVelaScene::Prepare(oDewarper);
    ASSERT_TRUE(oScene.Draw(oDewarper));
    float afBefore[3] = {};
    oDewarper.GetPTZ(afBefore[0], afBefore[1], afBefore[2]);
    for (int i = 0; i < (IsLongRun() ? 50 : 10); ++i) {
        SCOPED_TRACE(i);
        eglMakeCurrent(oDewarper.mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(oDewarper.mDisplay, oDewarper.mContext);
        CLogCapture oLog;
        EXPECT_FALSE(oScene.Draw(oDewarper));
        EXPECT_EQ(FaultLines(oLog), 2) << "the image, and the context once" << oLog.Text();
        ASSERT_TRUE(oDewarper.StartGL());
        ASSERT_TRUE(oScene.Draw(oDewarper));
        ASSERT_TRUE(oScene.Draw(oDewarper));
        ASSERT_TRUE(oScene.IsGolden());
        float afAfter[3] = {};
        oDewarper.GetPTZ(afAfter[0], afAfter[1], afAfter[2]);
        for (int k = 0; k < 3; ++k)
            EXPECT_EQ(afAfter[k], afBefore[k]);
    }
    EXPECT_NO_GL_ERROR();
}

// The fence has no result: a line must do.
TEST(VelaFaultOfReadBack, LeavesALineAndTheNextFrameIsRight)
{
    CVelaScene oScene;
    CTestVela oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
    CVelaScene::Prepare(oDewarper);
    CLogCapture oLog;
    CGLRecorder::Get().InjectError("glReadPixels", GL_OUT_OF_MEMORY);
    oScene.Draw(oDewarper);
    EXPECT_EQ(FaultLines(oLog), 1) << oLog.Text();
    EXPECT_TRUE(oLog.Contains("eglClientWaitSyncKHR: the driver is out of memory"));
    oLog.Clear();
    EXPECT_TRUE(oScene.Draw(oDewarper));
    EXPECT_TRUE(oScene.IsGolden());
    EXPECT_EQ(FaultLines(oLog), 0) << oLog.Text();
    EXPECT_NO_GL_ERROR();
}

TEST(VelaAllocationFault, FailsOneFrameAndNotTheNext)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CVelaScene oScene;
    int nFaults = 0;
    for (bool bReached = true; bReached; nFaults += nFaults < 10 || IsLongRun() ? 1 : 11) {
        ASSERT_LT(nFaults, 1000);
        SCOPED_TRACE("allocation " + std::to_string(nFaults));
        CTestVela oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        CVelaScene::Prepare(oDewarper);
        CLogCapture oLog;
        FailAllocation(nFaults);
        const bool bDrawn = oScene.Draw(oDewarper);
        bReached = AllocationHasFailed();
        FailAllocation(-1);
        EXPECT_EQ(bDrawn, !bReached);
        EXPECT_EQ(oLog.Contains("out of memory"), bReached) << oLog.Text();
        EXPECT_TRUE(oScene.Draw(oDewarper));
        EXPECT_TRUE(oScene.IsGolden());
        EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_IMAGE), 0);
    }
    EXPECT_GT(nFaults, 5);
    EXPECT_NO_GL_ERROR();
}
