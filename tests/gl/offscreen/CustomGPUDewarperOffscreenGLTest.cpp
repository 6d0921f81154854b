// The desktop dewarper: start, stop, what it refuses, and who may call when.
#include "tests/support/TestDewarper.h"

#include <EGL/egl.h>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

TEST(CustomGPUDewarperOffscreen, StartsWithoutAWindowSystemAndStopsWithoutATrace)
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    const int nContexts = oRecorder.Living(EGL_KIND_CONTEXT);
    const int nSurfaces = oRecorder.Living(EGL_KIND_SURFACE);
    const int nLost = oRecorder.NamesLostWithContexts();
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    for (int i = 0; i < 20; ++i) {
        CTestDewarper oDewarper(64, 48);
        ASSERT_TRUE(oDewarper.Started());
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        if (i % 2 == 0) { // else the destructor does it
            EXPECT_TRUE(oDewarper.StopGL());
        }
    }
    EXPECT_EQ(oRecorder.LivingGLNames(), 0);
    EXPECT_EQ(oRecorder.NamesLostWithContexts(), nLost);
    EXPECT_EQ(oRecorder.Living(EGL_KIND_CONTEXT), nContexts);
    EXPECT_EQ(oRecorder.Living(EGL_KIND_SURFACE), nSurfaces);
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
}

TEST(CustomGPUDewarperOffscreen, StopMayComeWithoutAStartAndTwice)
{
    CCustomGPUDewarperOffscreen oDewarper;
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_TRUE(oDewarper.InitGL(16, 16));
    EXPECT_TRUE(oDewarper.StartGL());
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_TRUE(oDewarper.StopGL());
}

TEST(CustomGPUDewarperOffscreen, StartingTwiceKeepsOneContext)
{
    const int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
    CTestDewarper oDewarper(32, 32);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper.StartGL();
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_TRUE(oDewarper.StopGL());
    EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), nContexts);
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), 0);
}

TEST(CustomGPUDewarperOffscreen, TargetSizesOutsideTheLimitsAreRefused)
{
    CCustomGPUDewarperOffscreen oDewarper;
    CLogCapture oLog;
    EXPECT_FALSE(oDewarper.InitGL(0, 10));
    EXPECT_FALSE(oDewarper.InitGL(10, -1));
    EXPECT_FALSE(oDewarper.InitGL(16385, 10));
    EXPECT_EQ(oLog.Lines().size(), 3u) << oLog.Text();
    EXPECT_TRUE(oDewarper.InitGL(1, 1));
}

TEST(CustomGPUDewarperOffscreen, ANewTargetReplacesTheOldOne)
{
    CTestDewarper oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const int nNames = CGLRecorder::Get().LivingGLNames();
    for (const int nSize : {16, 200, 33}) {
        ASSERT_TRUE(oDewarper.InitGL(nSize, nSize));
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_EQ(oDewarper.Picture().nWidth, nSize);
        EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), nNames);
    }
    int nWidth = 0;
    int nHeight = 0;
    EXPECT_TRUE(oDewarper.GetTargetWidthHeight(nWidth, nHeight));
    EXPECT_EQ(nWidth, 33);
}

TEST(CustomGPUDewarperOffscreen, GoesOnToTheNextDisplayWhenTheFirstCannotBeHad)
{
    for (const char* pCall : {"eglGetDisplay", "eglInitialize"}) {
        SCOPED_TRACE(pCall);
        CGLRecorder::Get().Inject(pCall, 0.0, 0, 1);
        CTestDewarper oDewarper(16, 16);
        EXPECT_TRUE(oDewarper.Started());
        CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_GRAY8);
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
    }
}

TEST(CustomGPUDewarperOffscreen, SaysSoWhenNoContextIsToBeHad)
{
    for (const char* pCall : {"eglInitialize", "eglCreateContext", "eglMakeCurrent"}) {
        SCOPED_TRACE(pCall);
        const int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
        CGLRecorder::Get().Inject(pCall, 0.0, 0, 1000);
        CLogCapture oLog;
        CCustomGPUDewarperOffscreen oDewarper;
        ASSERT_TRUE(oDewarper.InitGL(16, 16));
        EXPECT_FALSE(oDewarper.StartGL());
        EXPECT_GE(oLog.Lines().size(), 1u);
        CGLRecorder::Get().ClearInjections();
        EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), nContexts);
        EXPECT_FALSE(oDewarper.DrawGLScene(false));
        // And starts when there is one.
        EXPECT_TRUE(oDewarper.StartGL());
    }
}

TEST(CustomGPUDewarperOffscreen, BadFramesAreRefusedWithOneLineAndTheLastGoodOneIsKept)
{
    CTestDewarper oDewarper(32, 32);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper.SetViewType(VIEW_FISHEYE);
    CTestFrame oGood(AsymmetricPicture(32, 32), IMAGE_FORMAT_YUV420P);
    ASSERT_TRUE(oDewarper.DrawFrame(oGood, 11));
    const STestImage sGood = oDewarper.Picture();

    struct SBad
    {
        const char* pName;
        void (*fSpoil)(SImageProperties&);
    };
    const SBad aBad[] = {
        {"no luma", [](SImageProperties& s) { s.pPlane0 = nullptr; }},
        {"no U", [](SImageProperties& s) { s.pPlane1 = nullptr; }},
        {"no V", [](SImageProperties& s) { s.pPlane2 = nullptr; }},
        {"width 1", [](SImageProperties& s) { s.nWidth = 1; }},
        {"height 0", [](SImageProperties& s) { s.nHeight = 0; }},
        {"negative width", [](SImageProperties& s) { s.nWidth = -32; }},
        {"width 16385",
         [](SImageProperties& s) {
             s.nWidth = 16385;
             s.nStride = 16386;
         }},
        {"format 2", [](SImageProperties& s) { s.nFormat = 2; }},
        {"format 11", [](SImageProperties& s) { s.nFormat = 11; }},
        {"format -1", [](SImageProperties& s) { s.nFormat = -1; }},
        {"short stride", [](SImageProperties& s) { s.nStride = 31; }},
        {"negative stride", [](SImageProperties& s) { s.nStride = -32; }},
    };
    for (const SBad& sBad : aBad) {
        SCOPED_TRACE(sBad.pName);
        STestImage sBlack(32, 32);
        CTestFrame oBad(sBlack, IMAGE_FORMAT_YUV420P);
        sBad.fSpoil(*oBad.Image());
        CLogCapture oLog;
        EXPECT_FALSE(oDewarper.SetTexture(oBad.Image(), false, nullptr, 99));
        EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        EXPECT_TRUE(oDewarper.DrawGLScene(false));
        EXPECT_EQ(CompareImages(sGood, oDewarper.Picture()).nMax, 0);
        EXPECT_EQ(oDewarper.GetLastDisplayedTextureTimestamp(), 11u);
    }
    CLogCapture oLog;
    EXPECT_FALSE(oDewarper.SetTexture(nullptr, false, nullptr, 0));
    EXPECT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
}

TEST(CustomGPUDewarperOffscreen, StridesOfPackedFormatsAreCheckedInBytes)
{
    CTestDewarper oDewarper(32, 32);
    ASSERT_TRUE(oDewarper.Started());
    CLogCapture oLog;
    for (const int nFormat :
         {IMAGE_FORMAT_RGB24, IMAGE_FORMAT_BGR24, IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_BGRA32,
          IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_NV12, IMAGE_FORMAT_NV21}) {
        CTestFrame oFrame(AsymmetricPicture(32, 32), nFormat);
        EXPECT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0)) << nFormat;
        oFrame.Image()->nStride -= 1;
        EXPECT_FALSE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0)) << nFormat;
    }
}

TEST(CustomGPUDewarperOffscreen, TwoDewarpersOnOneThreadKeepApart)
{
    CTestFrame oBright(AsymmetricPicture(32, 32), IMAGE_FORMAT_RGB24);
    STestImage sDarkPicture(32, 32);
    for (int i = 0; i < 32 * 32; ++i)
        sDarkPicture.Set(i % 32, i / 32, 20, 30, 40);
    CTestFrame oDark(sDarkPicture, IMAGE_FORMAT_RGB24);
    const int nLost = CGLRecorder::Get().NamesLostWithContexts();
    CTestDewarper oFirst(32, 32);
    ASSERT_TRUE(oFirst.Started());
    oFirst.SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oFirst.DrawFrame(oBright));
    const STestImage sBright = oFirst.Picture();
    const int nOfOne = CGLRecorder::Get().LivingGLNames();
    {
        CTestDewarper oSecond(32, 32);
        ASSERT_TRUE(oSecond.Started());
        oSecond.SetViewType(VIEW_FISHEYE);
        ASSERT_TRUE(oSecond.DrawFrame(oDark));
        // Each draws and reads its own, whichever context is current.
        ASSERT_TRUE(oFirst.DrawGLScene(false));
        EXPECT_EQ(oSecond.Picture().At(16, 16)[2], 40);
        EXPECT_EQ(CompareImages(sBright, oFirst.Picture()).nMax, 0);
    } // dies while the first one's context is current
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), nOfOne);
    EXPECT_EQ(CGLRecorder::Get().NamesLostWithContexts(), nLost);
    ASSERT_TRUE(oFirst.DrawFrame(oBright));
    EXPECT_EQ(CompareImages(sBright, oFirst.Picture()).nMax, 0);
    EXPECT_NO_GL_ERROR();
}

TEST(CustomGPUDewarperOffscreen, AControlThreadMaySteerWhileFramesAreDrawn)
{
    CTestDewarper oDewarper(48, 32);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    std::atomic<bool> bStop = false;
    std::atomic<int> nSteps = 0;
    std::thread oControl([&] {
        float afPTZ[3] = {};
        while (!bStop) {
            const int i = nSteps++;
            oDewarper.SetViewType(static_cast<EViewType>(1 + i % 9));
            oDewarper.SetFlip(i % 2 == 0, i % 3 == 0);
            oDewarper.RelativePTZ(1.0f, 0.5f, -0.5f);
            oDewarper.OnMouseDown(i % 40, 3);
            oDewarper.OnMouseMove(i % 30, 5, false, false);
            oDewarper.OnMouseUp();
            oDewarper.SetTexture(oFrame.Image(), i % 2 == 0, nullptr, static_cast<unsigned long long>(i));
            oDewarper.GetPTZ(afPTZ[0], afPTZ[1], afPTZ[2]);
            oDewarper.SetMaskPolygons({{{{1, 1}, {20, 1}, {10, 20}}, 0xFF0000FFu}});
            oDewarper.SetStrings(std::vector<SGPUString>(static_cast<std::size_t>(i % 2)));
            std::this_thread::yield();
        }
    });
    int nDrawn = 0;
    for (int i = 0; i < 60; ++i)
        nDrawn += oDewarper.DrawGLScene(false) ? 1 : 0;
    bStop = true;
    oControl.join();
    EXPECT_EQ(nDrawn, 60);
    EXPECT_GT(nSteps, 0);
    EXPECT_NO_GL_ERROR();
}

TEST(CustomGPUDewarperOffscreen, TheLockNestsAndExcludes)
{
    CCustomGPUDewarperOffscreen oDewarper;
    oDewarper.Lock();
    oDewarper.Lock();
    std::atomic<bool> bDone = false;
    std::thread oControl([&] {
        oDewarper.SetViewType(VIEW_FISHEYE);
        bDone = true;
    });
    oDewarper.Unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(bDone);
    oDewarper.Unlock();
    oControl.join();
    EXPECT_TRUE(bDone);
    EXPECT_EQ(oDewarper.GetViewType(), VIEW_FISHEYE);
}
