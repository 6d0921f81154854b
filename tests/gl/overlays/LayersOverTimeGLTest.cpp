// All layers together, with either engine: changed by another thread, and over a day of clock ticks.
#include "tests/gl/overlays/OverlayTools.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>
#include <atomic>
#include <cstdio>
#include <gtest/gtest.h>
#include <malloc.h>
#include <thread>

static const int WIDTH = 120;
static const int HEIGHT = 90;

/// Every layer at once.
class LayersOverTime : public CEngineTest
{
protected:
    void SetAll()
    {
        SetInput(oDewarper, sInput);
        SetOutput(oDewarper, sOutput);
        oDewarper.SetStrings(vStrings);
    }

    STestImage Wanted(bool bMask) const
    {
        STestImage sWanted = sFrame;
        if (bMask)
            FillRect(sWanted, {20, 30, 40, 20}, 0xFF8000FF);
        else
            Blend(sWanted, sInput);
        DrawText(sWanted, vStrings);
        Blend(sWanted, sOutput);
        return sWanted;
    }

    const STestImage sFrame = AsymmetricPicture(WIDTH, HEIGHT);
    const STestImage sInput = PatternPicture(WIDTH, HEIGHT, 140);
    const STestImage sOutput = [] {
        STestImage sImage = PlainPicture(WIDTH, HEIGHT, 0);
        FillRect(sImage, {100, 0, 20, 60}, 0x40FFFF80);
        return sImage;
    }();
    const TStrings vStrings = {Text("Ag", 4, 5, 64, 0xFFFFFFFF), Text("71", 82, 50, 32, 0x40FF40FF)};
    const TPolygons vMasks = {{{{20, 30}, {60, 30}, {60, 50}, {20, 50}}, 0xFF8000FF}};
    SEngineView oView{GetParam(), sFrame};
    CDewarper& oDewarper = *oView.oDewarper;
};

TEST_P(LayersOverTime, AControlThreadMayChangeEveryLayerWhileFramesAreDrawn)
{
    std::atomic<bool> bStop = false;
    std::atomic<int> nForeign = 0;
    std::thread oControl([&] {
        for (int i = 0; !bStop; ++i) {
            if (i % 3 == 0)
                SetInput(oDewarper, sInput);
            oDewarper.SetMaskPolygons(i % 2 == 0 ? vMasks : TPolygons());
            SetOutput(oDewarper, sOutput, {{i % 50, 3, 40, 20}});
            if (i % 4 == 0)
                oDewarper.SetOutputOverlay(nullptr, 0, 0, 0, {});
            if (i % 5 == 0)
                oDewarper.SetInputOverlay(nullptr, 0, 0, 0);
            TStrings vClock = vStrings;
            vClock[0].strText = std::to_string(i);
            vClock.resize(static_cast<std::size_t>(1 + i % 2));
            oDewarper.SetStrings(vClock);
            nForeign += eglGetCurrentContext() == EGL_NO_CONTEXT ? 0 : 1;
            std::this_thread::yield();
        }
    });
    int nDrawn = 0;
    for (int i = 0; i < 100; ++i)
        nDrawn += oView.oDewarper.DrawFrame(oView.oFrame) ? 1 : 0;
    bStop = true;
    oControl.join();
    EXPECT_EQ(nDrawn, 100);
    EXPECT_EQ(nForeign, 0);
    EXPECT_NO_GL_ERROR() << "no call came from a thread without a context";
    oDewarper.SetMaskPolygons(vMasks);
    SetAll();
    EXPECT_LE(CompareImages(oView.Draw(), Wanted(true)).nMax, 1);
}

using Clock = CEngineTest;

/// Bytes that malloc has given out.
static long long HeapBytes()
{
    return static_cast<long long>(mallinfo2().uordblks) + static_cast<long long>(mallinfo2().hblkhd);
}

// A day has 86,400 seconds; with a sanitizer twenty minutes must do.
#ifdef DEWARP_SANITIZED
static const int SECONDS = 1200;
static const bool OWN_HEAP = false;
#else
static const int SECONDS = 86400;
static const bool OWN_HEAP = true;
#endif

/// Waits for GL to have done what it was told.
static void Finish()
{
    if (eglGetCurrentContext() != EGL_NO_CONTEXT)
        glFinish();
}

TEST_P(Clock, ADayOfSecondsGainsNoNameAndNoMemory)
{
    const STestImage sFrame = AsymmetricPicture(32, 8);
    SEngineView oView(GetParam(), sFrame);
    CDewarper& oDewarper = *oView.oDewarper;
    CGLRecorder::Get().Stop();
    TStrings vStrings = {Text("00:00:00", 0, 0, 8, 0xC0C0C0FF)};
    const auto Tick = [&](int nSecond) {
        char acTime[16];
        std::snprintf(acTime, sizeof acTime, "%02d:%02d:%02d", nSecond / 3600 % 24, nSecond / 60 % 60,
                      nSecond % 60);
        vStrings[0].strText = acTime;
        oDewarper.SetStrings(vStrings);
        return oDewarper.DrawGLScene(true);
    };
    ASSERT_TRUE(oView.oDewarper.DrawFrame(oView.oFrame));
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(Tick(i));
    Finish();
    const STestImage sBefore = oView.oDewarper.Picture();
    const int nNames = CGLRecorder::Get().LivingGLNames();
    const long long nBytes = HeapBytes();
    for (int i = 0; i < SECONDS; ++i)
        ASSERT_TRUE(Tick(200 + i));
    ASSERT_TRUE(Tick(199)); // the time of the first picture again
    Finish();
    EXPECT_EQ(CompareImages(oView.oDewarper.Picture(), sBefore).nMax, 0);
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), nNames);
    const long long nGained = HeapBytes() - nBytes;
    std::printf("  %d updates: %lld bytes of heap gained\n", SECONDS, nGained);
    if (OWN_HEAP) {
        EXPECT_LT(nGained, 4LL * SECONDS) << "the driver may have taken a block or two, not one a tick";
    }
}

INSTANTIATE_ENGINES(LayersOverTime);
INSTANTIATE_ENGINES(Clock);
