// Every place where a frame asks the driver for something fails once, one place after the other: the desktop
// class.

#include "tests/soak/FaultSweep.h"

#include "tests/gl/android/HostContext.h"
#include "tests/soak/ReliabilityScene.h"

#include <EGL/egl.h>

namespace
{

const int TARGET_WIDTH = 80;
const int TARGET_HEIGHT = 60;

void Prepare(CTestDewarper& oDewarper, EViewType eView)
{
    ASSERT_TRUE(oDewarper.Started());
    oDewarper.SetViewType(eView);
    oDewarper.SetLensType(LENS_DSL419);
    oDewarper.AbsolutePTZ(40.0f, 30.0f, 100.0f);
    SwitchEverythingOn(oDewarper, TARGET_WIDTH, TARGET_HEIGHT);
}

STestImage Golden(EViewType eView, CTestFrame& oFrame)
{
    CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
    Prepare(oDewarper, eView);
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    return oDewarper.Picture();
}

class FaultSweep : public testing::TestWithParam<SFaultKind>
{
};

} // namespace

TEST_P(FaultSweep, EveryFaultOfAFrameIsToldAndTheNextFrameIsRight)
{
    const SFaultKind& rKind = GetParam();
    CTestFrame oFrame(AsymmetricPicture(256, 256), IMAGE_FORMAT_NV12);
    for (const EViewType eView : {VIEW_VCAM_QUAD, VIEW_PANORAMA_DUAL}) {
        const STestImage sGolden = Golden(eView, oFrame);
        int nSkip = 0;
        for (bool bReached = true; bReached; ++nSkip) {
            ASSERT_LT(nSkip, 100);
            SCOPED_TRACE("call " + std::to_string(nSkip) + " of view " + std::to_string(eView));
            CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
            Prepare(oDewarper, eView);
            CLogCapture oLog;
            InjectFault(rKind, nSkip);
            const bool bDrawn = oDewarper.DrawFrame(oFrame);
            bReached = EndFault(rKind, nSkip);
            // One line a fault where the frame is refused; where there was a way around, the picture is the
            // same, or a line tells which pass is missing.
            EXPECT_LE(oLog.Lines().size(), static_cast<std::size_t>(rKind.nTimes)) << oLog.Text();
            const bool bSame = bDrawn && oDewarper.Picture().vPixels == sGolden.vPixels;
            EXPECT_TRUE(bSame || !oLog.Lines().empty());
            if (rKind.nError != 0) {
                EXPECT_TRUE(!bDrawn || bSame) << "memory that lacks fails the frame";
            }
            // What failed may have failed other calls.
            CGLRecorder::Get().TakeErrors();
            oLog.Clear();
            EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
            EXPECT_EQ(oDewarper.Picture().vPixels, sGolden.vPixels);
            EXPECT_EQ(oLog.Text(), "");
            float afPosition[3] = {};
            oDewarper.GetPTZ(afPosition[0], afPosition[1], afPosition[2]);
            EXPECT_EQ(afPosition[0], 40.0f) << "the position is kept";
            EXPECT_NO_GL_ERROR();
        }
        EXPECT_GT(nSkip, 2) << "one place at least";
    }
}

INSTANTIATE_TEST_SUITE_P(Calls, FaultSweep, testing::ValuesIn(FRAME_FAULTS),
                         [](const auto& rInfo) { return std::string(rInfo.param.pInjection); });

TEST(FaultOfMovingMesh, IsToldAndTheNextFrameIsRight)
{
    CTestFrame oFrame(AsymmetricPicture(256, 256), IMAGE_FORMAT_RGB24);
    for (int nSkip = 0; nSkip < 2; ++nSkip) {
        CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        oDewarper.SetViewType(VIEW_PANORAMA_TRIPLE);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        oDewarper.AbsolutePTZ(50.0f, 10.0f, 180.0f);
        CLogCapture oLog;
        CGLRecorder::Get().InjectError("glBufferData", GL_OUT_OF_MEMORY, nSkip);
        EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oLog.Text(), "DrawGLScene: the driver is out of memory\n");
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        CTestDewarper oFresh(TARGET_WIDTH, TARGET_HEIGHT);
        oFresh.SetViewType(VIEW_PANORAMA_TRIPLE);
        oFresh.AbsolutePTZ(50.0f, 10.0f, 180.0f);
        ASSERT_TRUE(oFresh.DrawFrame(oFrame));
        EXPECT_EQ(oDewarper.Picture().vPixels, oFresh.Picture().vPixels);
    }
    EXPECT_NO_GL_ERROR();
}

// A frame of 3 bytes a pixel is stored anew as one of 4 where the driver likes that better.
TEST(FaultOfUpload, OfAWidenedFrameIsToldAndTheNextFrameIsRight)
{
    CTestFrame oFrame(AsymmetricPicture(320, 320), IMAGE_FORMAT_RGB24);
    CTestDewarper oGolden(TARGET_WIDTH, TARGET_HEIGHT);
    ASSERT_TRUE(oGolden.DrawFrame(oFrame));
    for (int nSkip = 0; nSkip < 3; ++nSkip) {
        CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        CLogCapture oLog;
        CGLRecorder::Get().InjectError("glTexImage2D", GL_OUT_OF_MEMORY, nSkip);
        const bool bDrawn = oDewarper.DrawFrame(oFrame);
        CGLRecorder::Get().ClearInjections();
        EXPECT_EQ(bDrawn, oLog.Text().empty()) << oLog.Text();
        EXPECT_TRUE(!bDrawn || oDewarper.Picture().vPixels == oGolden.Picture().vPixels);
        CGLRecorder::Get().TakeErrors();
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oDewarper.Picture().vPixels, oGolden.Picture().vPixels);
    }
    EXPECT_NO_GL_ERROR();
}

TEST(FaultOfReadBack, GivesNoImageAndTheNextOneIsRight)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGBA32);
    CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sGolden = oDewarper.Picture();
    ASSERT_FALSE(sGolden.vPixels.empty());
    CLogCapture oLog;
    CGLRecorder::Get().InjectError("glReadPixels", GL_OUT_OF_MEMORY);
    int nNumber = 0;
    EXPECT_EQ(oDewarper.GetImage(&nNumber, &nNumber, &nNumber, &nNumber), nullptr);
    EXPECT_EQ(oLog.Text(), "GetImage: the driver is out of memory\n");
    EXPECT_EQ(oDewarper.Picture().vPixels, sGolden.vPixels);
    EXPECT_NO_GL_ERROR();
}

// A driver that draws into no BGRA texture, and then has no memory for what takes its place.
TEST(FaultOfTarget, LeavesOneLineAndTheNextFrameIsRight)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGBA32);
    CTestDewarper oGolden(TARGET_WIDTH, TARGET_HEIGHT);
    ASSERT_TRUE(oGolden.DrawFrame(oFrame));
    for (const char* pCall : {"glGenRenderbuffers", "glRenderbufferStorage"}) {
        SCOPED_TRACE(pCall);
        CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        CLogCapture oLog;
        CGLRecorder::Get().Inject("glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED);
        CGLRecorder::Get().InjectError(pCall, GL_OUT_OF_MEMORY);
        EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
        CGLRecorder::Get().ClearInjections();
        EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        EXPECT_TRUE(oLog.Contains("no target of that size"));
        CGLRecorder::Get().TakeErrors();
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oDewarper.Picture().vPixels, oGolden.Picture().vPixels);
    }
    EXPECT_NO_GL_ERROR();
}

// What a start can do without.
TEST(FaultOfStart, AWayAroundIsTakenWhereThereIsOne)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_RGBA32);
    CTestDewarper oGolden(TARGET_WIDTH, TARGET_HEIGHT);
    ASSERT_TRUE(oGolden.DrawFrame(oFrame));
    for (const char* pCall :
         {"eglGetDisplay", "eglCreatePbufferSurface", "eglGetProcAddress:eglQueryDevicesEXT",
          "eglGetProcAddress:eglGetPlatformDisplayEXT", "eglGetError"}) {
        SCOPED_TRACE(pCall);
        CLogCapture oLog;
        CGLRecorder::Get().Inject(pCall, 0.0);
        CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        CGLRecorder::Get().ClearInjections();
        EXPECT_TRUE(oDewarper.Started());
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oDewarper.Picture().vPixels, oGolden.Picture().vPixels);
        EXPECT_EQ(oLog.Text(), "");
    }
    EXPECT_NO_GL_ERROR();
}

TEST(FaultOfStart, TheLastStepsAreTold)
{
    CGLRecorder& rRecorder = CGLRecorder::Get();
    const int nContexts = rRecorder.Living(EGL_KIND_CONTEXT);
    CCustomGPUDewarperOffscreen oDewarper;
    ASSERT_TRUE(oDewarper.InitGL(TARGET_WIDTH, TARGET_HEIGHT));
    // The display was found usable; the context proper fails.
    CLogCapture oLog;
    rRecorder.Inject("eglCreateContext", 0.0, 1);
    EXPECT_FALSE(oDewarper.StartGL());
    EXPECT_EQ(oLog.Text(), "StartGL: the OpenGL ES context cannot be made current\n");
    EXPECT_EQ(rRecorder.Living(EGL_KIND_CONTEXT), nContexts);
    rRecorder.ClearInjections();
    EXPECT_TRUE(oDewarper.StartGL());
    oDewarper.StopGL();
    EXPECT_EQ(rRecorder.Living(EGL_KIND_SURFACE), 0);
}

TEST(FaultOfStart, GivesTheHostItsContextBack)
{
    const CHostContext oHost;
    CCustomGPUDewarperOffscreen oDewarper;
    ASSERT_TRUE(oDewarper.InitGL(TARGET_WIDTH, TARGET_HEIGHT));
    for (const char* pCall : {"eglCreateContext", "eglMakeCurrent"}) {
        SCOPED_TRACE(pCall);
        CGLRecorder::Get().Inject(pCall, 0.0, 0, 100);
        EXPECT_FALSE(oDewarper.StartGL());
        CGLRecorder::Get().ClearInjections();
        EXPECT_TRUE(oHost.IsCurrent());
    }
    if (CanFailAllocations()) {
        for (auto [nPlace, bReached] = std::pair(0, true); bReached; ++nPlace) {
            FailAllocation(nPlace);
            const bool bStarted = oDewarper.StartGL();
            bReached = AllocationHasFailed();
            FailAllocation(-1);
            EXPECT_EQ(oHost.IsCurrent(), !bStarted) << "allocation " << nPlace;
        }
    }
    oDewarper.StopGL();
    EXPECT_TRUE(oHost.IsCurrent());
    oHost.ExpectUntouched();
}
