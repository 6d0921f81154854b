#include "tests/soak/ReliabilityScene.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

TEST(Threads, ControlThreadAndRenderingThreadShareOneDewarper)
{
    CGLRecorder::Get().Stop();
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12);
    CTestDewarper oDewarper(40, 30);
    ASSERT_TRUE(oDewarper.Started());
    CLogCapture oLog;
    std::atomic<bool> bDone{false};
    std::thread oControl([&] {
        std::mt19937 oRandom(7);
        float fPan = 0.0f;
        float fTilt = 0.0f;
        float fZoom = 0.0f;
        for (int i = 0; i < 10000; ++i) {
            RandomControlCall(oDewarper, oRandom);
            oDewarper.GetPTZ(fPan, fTilt, fZoom);
            oDewarper.GetPTZAnalog(fPan, fTilt, fZoom);
            oDewarper.GetFisheyeRadius();
            oDewarper.GetViewType();
            if (i % 16 == 0)
                std::this_thread::yield();
        }
        bDone = true;
    });
    int nDrawn = 0;
    while (!bDone || nDrawn < 50)
        nDrawn += oDewarper.DrawFrame(oFrame) ? 1 : 0;
    oControl.join();
    EXPECT_GE(nDrawn, 50);
    EXPECT_NO_GL_ERROR();
}

TEST(Threads, DewarpersOnTheirOwnThreadsDrawTheSamePicture)
{
    CTestFrame oFrame(AsymmetricPicture(128, 128), IMAGE_FORMAT_YUV420P);
    const auto Draw = [&oFrame](STestImage& rPicture) {
        CTestDewarper oDewarper(64, 48);
        CTestFrame oOwnFrame = oFrame;
        for (int i = 0; i < 20; ++i)
            oDewarper.DrawFrame(oOwnFrame);
        rPicture = oDewarper.Picture();
    };
    STestImage aPictures[4];
    std::vector<std::thread> vThreads;
    for (STestImage& rPicture : aPictures)
        vThreads.emplace_back([&Draw, &rPicture] { Draw(rPicture); });
    for (std::thread& rThread : vThreads)
        rThread.join();
    for (const STestImage& rPicture : aPictures) {
        ASSERT_FALSE(rPicture.vPixels.empty());
        EXPECT_EQ(rPicture.vPixels, aPictures[0].vPixels);
    }
    EXPECT_NO_GL_ERROR();
}
