// A control thread and a thread that draws, on one dewarper of the processor engine.
#include "tests/soak/ReliabilityScene.h"
#include "tests/support/EngineDewarper.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

TEST(ControlThread, SharesOneDewarperWithTheThreadThatDraws)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_NV12);
    CEngineDewarper oDewarper(ENGINE_CPU, 40, 30);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    CLogCapture oLog;
    std::atomic<bool> bDone{false};
    std::thread oControl([&] {
        std::mt19937 oRandom(7);
        float afPTZ[3] = {};
        for (int i = 0; i < 10000; ++i) {
            RandomControlCall(*oDewarper, oRandom);
            oDewarper->GetPTZ(afPTZ[0], afPTZ[1], afPTZ[2]);
            oDewarper->GetPTZAnalog(afPTZ[0], afPTZ[1], afPTZ[2]);
            oDewarper->GetFisheyeRadius();
            oDewarper->GetViewType();
            oDewarper->IsDrawRequired();
            oDewarper->GetLastErrorText();
            if (i % 16 == 0) {
                oDewarper->SetThreadCount(i / 16 % 5);
                std::this_thread::yield();
            }
        }
        bDone = true;
    });
    int nDrawn = 0;
    std::vector<unsigned char> vTarget(40 * 30 * 4);
    while (!bDone || nDrawn < 100) {
        nDrawn += oDewarper.DrawFrame(oFrame) ? 1 : 0;
        nDrawn += oDewarper->DrawTo(vTarget.data(), 40, IMAGE_FORMAT_NV12) ? 1 : 0;
    }
    oControl.join();
    EXPECT_GE(nDrawn, 100);
}
