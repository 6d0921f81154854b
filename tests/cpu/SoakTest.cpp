// A long life of the processor engine in a short time: frames without end, a chance control call every 10, a
// new size or format every 500. LUMOR_SOAK_SECONDS says how long (default 10), LUMOR_SOAK_FRAMES how many
// frames at least.
#include "tests/soak/ReliabilityScene.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/Setting.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>

namespace
{

using CClock = std::chrono::steady_clock;

std::vector<CTestFrame> Frames()
{
    std::vector<CTestFrame> vFrames;
    for (const int nFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32,
                              IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_RGB24, IMAGE_FORMAT_NV21})
        for (const int nSize : {64, 97, 130})
            vFrames.emplace_back(AsymmetricPicture(nSize, nSize - nSize % 4), nFormat);
    return vFrames;
}

/// Everything set back, so that what is held does not depend on the last calls.
void Reset(CDewarper& rDewarper)
{
    rDewarper.SetMaskPolygons(std::vector<SGPolygon>());
    rDewarper.SetStrings(std::vector<SGPUString>());
    rDewarper.SetInputOverlay(nullptr, 0, 0, 0);
    rDewarper.SetOutputOverlay(nullptr, 0, 0, 0, {});
}

long long HeapBytes()
{
    malloc_trim(0);
    return static_cast<long long>(mallinfo2().uordblks);
}

} // namespace

TEST(ProcessorSoak, RunsWithoutErrorAndWithoutGrowing)
{
    std::vector<CTestFrame> vFrames = Frames();
    std::mt19937 oRandom(20240517);
    CEngineDewarper oDewarper(ENGINE_CPU, 100, 100);
    oDewarper->SetLensType(LENS_AUTO);
    CLogCapture oLog;
    std::size_t nFrame = 0;
    long nCount = 0;
    long long nFirstHeap = 0;
    std::vector<unsigned char> vTarget(100 * 100 * 4);
    const long nFrames = static_cast<long>(Setting("LUMOR_SOAK_FRAMES", 0.0));
    const CClock::time_point oEnd =
        CClock::now() +
        std::chrono::milliseconds(static_cast<long long>(Setting("LUMOR_SOAK_SECONDS", 10.0) * 1e3));
    while (CClock::now() < oEnd || nCount < nFrames || nCount < 12000) {
        if (nCount % 10 == 0)
            RandomControlCall(*oDewarper, oRandom);
        if (nCount % 500 == 0) {
            nFrame = oRandom() % vFrames.size();
            ASSERT_TRUE(oDewarper->InitTarget(40 + static_cast<int>(oRandom() % 60),
                                              40 + static_cast<int>(oRandom() % 60)));
            oDewarper->SetThreadCount(static_cast<int>(oRandom() % 4));
            oLog.Clear();
        }
        ASSERT_TRUE(oDewarper.DrawFrame(vFrames[nFrame])) << "frame " << nCount << "\n" << oLog.Text();
        if (nCount % 3 == 0) {
            ASSERT_TRUE(oDewarper->DrawTo(vTarget.data(), 100 * 2, IMAGE_FORMAT_NV12)) << oLog.Text();
        }
        // Arrays grow to their largest size, which takes some ten thousand frames.
        if (++nCount % 6000 == 0) {
            Reset(*oDewarper);
            oLog.Clear();
            if (nCount == 6000)
                nFirstHeap = HeapBytes();
            std::printf("  %ld frames: %lld bytes more on the heap\n", nCount, HeapBytes() - nFirstHeap);
        }
    }
    Reset(*oDewarper);
    oLog.Clear();
    const long long nGained = HeapBytes() - nFirstHeap;
    std::printf("  %ld frames: %lld bytes more on the heap\n", nCount, nGained);
    EXPECT_LT(nGained, 4 << 20);
}
