// Several contexts in one process: two dewarpers, a host's own, and the same one made over and over.
#include "HostContext.h"
#include "TestVela.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>
#include <cstdio>
#include <thread>
#include <unistd.h>

namespace
{

struct SJob
{
    EViewType eView;
    float fPan;
};

STestImage DrawnAlone(const SJob& rJob)
{
    CTestFrame oFrame(AsymmetricPicture(96, 96), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(96, 96);
    CTestBuffer oOutput(80, 60);
    oInput.Fill(oFrame);
    CTestVela oDewarper(80, 60);
    oDewarper.SetViewType(rJob.eView);
    oDewarper.AbsolutePTZ(rJob.fPan, 40.0f, 100.0f);
    oDewarper.DrawFrame(oInput, oOutput);
    oDewarper.DrawFrame(oInput, oOutput);
    return oOutput.Texels();
}

#ifdef DEWARP_SANITIZED
const bool CHECKED_MEMORY = true;
#else
const bool CHECKED_MEMORY = false;
#endif

const SJob JOBS[] = {{VIEW_VCAM, 30.0f}, {VIEW_PANORAMA_DUAL, 70.0f}};

long ResidentPages()
{
    std::FILE* const pFile = std::fopen("/proc/self/statm", "r");
    long nTotal = 0;
    long nResident = 0;
    if (pFile == nullptr)
        return 0;
    const int nRead = std::fscanf(pFile, "%ld %ld", &nTotal, &nResident);
    std::fclose(pFile);
    return nRead == 2 ? nResident : 0;
}

} // namespace

TEST(VelaContexts, TwoDewarpersShareAThread)
{
    const STestImage aAlone[] = {DrawnAlone(JOBS[0]), DrawnAlone(JOBS[1])};
    ASSERT_NE(aAlone[0].vPixels, aAlone[1].vPixels);
    CTestFrame oFrame(AsymmetricPicture(96, 96), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(96, 96); // both read the same buffer
    oInput.Fill(oFrame);
    CTestBuffer aOutputs[] = {CTestBuffer(80, 60), CTestBuffer(80, 60)};
    CTestVela aDewarpers[] = {CTestVela(80, 60), CTestVela(80, 60)};
    ASSERT_NE(aDewarpers[0].mContext, aDewarpers[1].mContext);
    for (int i = 0; i < 2; ++i) {
        aDewarpers[i].SetViewType(JOBS[i].eView);
        aDewarpers[i].AbsolutePTZ(JOBS[i].fPan, 40.0f, 100.0f);
    }
    for (int nFrame = 0; nFrame < 3; ++nFrame)
        for (int i = 0; i < 2; ++i)
            ASSERT_TRUE(aDewarpers[i].DrawFrame(oInput, aOutputs[i]));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(aOutputs[i].Texels().vPixels, aAlone[i].vPixels) << i;

    // The first one ends while the second one's context is current: only its own names die.
    const int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
    EXPECT_TRUE(aDewarpers[0].StopGL());
    EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), nContexts - 1);
    EXPECT_EQ(eglGetCurrentContext(), aDewarpers[1].mContext);
    EXPECT_GT(CGLRecorder::Get().LivingGLNames(), 0);
    CGLRecorder::Get().Start();
    ASSERT_TRUE(aDewarpers[1].DrawFrame(oInput, aOutputs[1]));
    EXPECT_EQ(aOutputs[1].Texels().vPixels, aAlone[1].vPixels);
    EXPECT_EQ(CGLRecorder::Get().Count("glCompileShader"), 0);
    EXPECT_EQ(CGLRecorder::Get().Count("eglMakeCurrent"), 0);
    // And comes back.
    ASSERT_TRUE(aDewarpers[0].StartGL());
    ASSERT_TRUE(aDewarpers[0].DrawFrame(oInput, aOutputs[0]));
    EXPECT_EQ(aOutputs[0].Texels().vPixels, aAlone[0].vPixels);
}

TEST(VelaContexts, TwoThreadsHaveADewarperEach)
{
    const STestImage aAlone[] = {DrawnAlone(JOBS[0]), DrawnAlone(JOBS[1])};
    std::vector<STestImage> avDrawn[2];
    std::thread aThreads[2];
    for (int i = 0; i < 2; ++i)
        aThreads[i] = std::thread([i, &avDrawn] {
            for (int n = 0; n < 6; ++n)
                avDrawn[i].push_back(DrawnAlone(JOBS[i]));
        });
    for (std::thread& rThread : aThreads)
        rThread.join();
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(avDrawn[i].size(), 6u);
        for (const STestImage& rDrawn : avDrawn[i])
            EXPECT_EQ(rDrawn.vPixels, aAlone[i].vPixels) << i;
    }
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), 0);
}

TEST(VelaContexts, AContextOfTheHostIsLeftAlone)
{
    const CHostContext oHost;
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    {
        CTestVela oDewarper(16, 16);
        oHost.MakeCurrent();
        ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput)) << "the dewarper finds its own context";
        oHost.MakeCurrent();
        oHost.ExpectUntouched();
        EXPECT_TRUE(oDewarper.StopGL());
        EXPECT_TRUE(oHost.IsCurrent());
        oHost.ExpectUntouched();
        ASSERT_TRUE(oDewarper.StartGL());
        ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
        oHost.MakeCurrent();
    }
    EXPECT_TRUE(oHost.IsCurrent());
    oHost.ExpectUntouched();
}

TEST(VelaContexts, TheContextIsNotTakenFromAnotherThread)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    CTestVela oDewarper(16, 16);
    ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
    CLogCapture oLog;
    bool bDrawn = true;
    std::thread oThread([&] { bDrawn = oDewarper.DrawGLScene(true); });
    oThread.join();
    EXPECT_FALSE(bDrawn);
    EXPECT_TRUE(oLog.Contains("SetCurrentRenderingContext: the context cannot be made current"));
    EXPECT_TRUE(oDewarper.DrawGLScene(true));
}

TEST(VelaContexts, StoppingOnAnotherThreadTouchesNoForeignNames)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    const int nContexts = CGLRecorder::Get().Living(EGL_KIND_CONTEXT);
    CTestVela oStopped(16, 16);
    ASSERT_TRUE(oStopped.DrawFrame(oInput, oOutput));
    std::thread oThread([&] {
        // The context cannot be had here: its names die with it, those of the one that is current here do
        // not.
        CTestVela oOther(16, 16);
        CTestBuffer oOtherOutput(16, 16);
        ASSERT_TRUE(oOther.DrawFrame(oInput, oOtherOutput));
        CGLRecorder::Get().Start();
        EXPECT_TRUE(oStopped.StopGL());
        EXPECT_EQ(CGLRecorder::Get().CountPrefix("glDelete"), 0) << CGLRecorder::Get().Dump();
        EXPECT_EQ(eglGetCurrentContext(), oOther.mContext);
        ASSERT_TRUE(oOther.DrawFrame(oInput, oOtherOutput));
        EXPECT_EQ(oOtherOutput.Texels().vPixels, oOutput.Texels().vPixels);
    });
    oThread.join();
    eglReleaseThread();
    EXPECT_EQ(CGLRecorder::Get().Living(EGL_KIND_CONTEXT), nContexts);
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), 0);
    // It starts again where its thread may have it.
    ASSERT_TRUE(oStopped.StartGL());
    EXPECT_TRUE(oStopped.DrawFrame(oInput, oOutput));
}

TEST(VelaContexts, StartAndStopTwoHundredTimesLeaveNothing)
{
    CGLRecorder& oRecorder = CGLRecorder::Get();
    const int nLost = oRecorder.NamesLostWithContexts();
    const int aFrames[] = {1, 2, 3, 5, 8, 89};
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    CTestBuffer oOutput(16, 16);
    oInput.Fill(oFrame);
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(16, 16);
    CLogCapture oLog;
    std::vector<unsigned char> vFirst;
    long nPages = 0;
    for (int nCycle = 0; nCycle < 200; ++nCycle) {
        ASSERT_TRUE(oDewarper.StartGL()) << nCycle;
        // One frame in most cycles, the long run once in a while.
        const int nFrames = nCycle % 40 == 39 ? 89 : aFrames[nCycle % 5];
        for (int i = 0; i < nFrames; ++i) {
            ASSERT_TRUE(oDewarper.CreateImageF(oInput.get(), oOutput.get()));
            ASSERT_TRUE(oDewarper.DrawGLScene(true));
            oDewarper.DestroyImage();
        }
        ASSERT_TRUE(oDewarper.StopGL());
        ASSERT_EQ(oRecorder.LivingGLNames(), 0) << nCycle;
        ASSERT_EQ(oRecorder.Living(EGL_KIND_IMAGE), 0) << nCycle;
        ASSERT_EQ(oRecorder.Living(EGL_KIND_CONTEXT), 0) << nCycle;
        ASSERT_EQ(oRecorder.Living(EGL_KIND_SURFACE), 0) << nCycle;
        if (nCycle == 0)
            vFirst = oOutput.Texels().vPixels;
        else
            ASSERT_EQ(oOutput.Texels().vPixels, vFirst) << nCycle;
        oLog.Clear();
        // The recorder's own list of calls is not what is measured.
        oRecorder.Start();
        oRecorder.Stop();
        if (nCycle == 79)
            nPages = ResidentPages();
    }
    EXPECT_EQ(oRecorder.NamesLostWithContexts(), nLost);
    // 120 cycles later: below 2 MB more, 17 kB a cycle. A checker of memory keeps what was freed.
    if (!CHECKED_MEMORY) {
        EXPECT_LT((ResidentPages() - nPages) * sysconf(_SC_PAGESIZE), 2L << 20);
    }
}

TEST(VelaContexts, ABufferMayDieBeforeTheDewarper)
{
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(32, 32);
    oInput.Fill(oFrame);
    CTestVela oDewarper(16, 16);
    int nNames = 0;
    for (int i = 0; i < 5; ++i) {
        CTestBuffer oOutput(16, 16);
        ASSERT_TRUE(oDewarper.DrawFrame(oInput, oOutput));
        if (i == 1)
            nNames = CGLRecorder::Get().LivingGLNames();
    }
    EXPECT_EQ(CGLRecorder::Get().LivingGLNames(), nNames);
    EXPECT_TRUE(oDewarper.DrawGLScene(true)) << "the target's buffer is gone, its texture is not";
}

TEST(VelaContexts, OneDewarpersOutputIsAnothersInput)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12);
    CTestBuffer oInput(64, 64);
    CTestBuffer oBetween(64, 64);
    CTestBuffer oOutput(64, 64);
    oInput.Fill(oFrame);
    CTestVela oFirst(64, 64);
    CTestVela oSecond(64, 64);
    for (CTestVela* pDewarper : {&oFirst, &oSecond})
        pDewarper->SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oFirst.DrawFrame(oInput, oBetween));
    ASSERT_TRUE(oSecond.DrawFrame(oBetween, oOutput));
    EXPECT_LE(CompareImages(oBetween.Texels(), oOutput.Texels()).nMax, 1) << "both show the whole frame";
    EXPECT_LE(CompareImages(oInput.Texels(), oOutput.Texels()).nMax, 2);
}
