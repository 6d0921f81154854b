// A long life in a short time: frames without end, a chance control call every 10, a new size or format every
// 500, a restart of GL every 5,000. LUMOR_SOAK_SECONDS says how long (default 20).

#include "tests/soak/ReliabilityScene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>

namespace
{

using CClock = std::chrono::steady_clock;

double SoakSeconds()
{
    const char* pSeconds = std::getenv("LUMOR_SOAK_SECONDS");
    return pSeconds != nullptr ? std::atof(pSeconds) : 20.0;
}

std::vector<CTestFrame> Frames()
{
    std::vector<CTestFrame> vFrames;
    for (const int nFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32,
                              IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_RGB24, IMAGE_FORMAT_NV21})
        for (const int nSize : {64, 96, 130})
            vFrames.emplace_back(AsymmetricPicture(nSize, nSize - nSize % 4), nFormat);
    return vFrames;
}

/// Bytes in use on the heap while GL is stopped.
long long BytesAtRest(CTestDewarper& oDewarper)
{
    oDewarper.StopGL();
    malloc_trim(0);
    const long long nBytes = static_cast<long long>(mallinfo2().uordblks);
    EXPECT_TRUE(oDewarper.StartGL());
    return nBytes;
}

/// Work buffers grow to their largest size once: every view is shown before anything is measured.
void ShowEveryView(CTestDewarper& oDewarper, CTestFrame& oFrame)
{
    for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR}) {
        oDewarper.SetMountType(eMount);
        for (int nView = 1; nView <= 9; ++nView) {
            oDewarper.SetViewType(static_cast<EViewType>(nView));
            EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        }
    }
}

} // namespace

TEST(Soak, RunsWithoutErrorAndWithoutGrowing)
{
    // The list of calls would grow without end; errors are still noted.
    CGLRecorder::Get().Stop();
    std::vector<CTestFrame> vFrames = Frames();
    std::mt19937 oRandom(20240517);
    CTestDewarper oDewarper(80, 60);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper.SetLensType(LENS_AUTO);
    CLogCapture oLog;
    ShowEveryView(oDewarper, vFrames.front());
    std::size_t nFrame = 0;
    std::vector<double> vMilliseconds;
    vMilliseconds.reserve(1 << 20);
    long long nBytesEarly = 0;
    long long nBytesLate = 0;
    long nCount = 0;
    const CClock::time_point oEnd =
        CClock::now() + std::chrono::microseconds(static_cast<long long>(SoakSeconds() * 1e6));
    // Two rests at least: the first after 1,000 frames, then one every 5,000.
    bool bRested = false;
    while (CClock::now() < oEnd || !bRested) {
        if (nCount % 10 == 0)
            RandomControlCall(oDewarper, oRandom);
        if (nCount % 500 == 0) {
            nFrame = oRandom() % vFrames.size();
            oDewarper.InitGL(40 + static_cast<int>(oRandom() % 60), 40 + static_cast<int>(oRandom() % 60));
            oLog.Clear();
        }
        const CClock::time_point oStart = CClock::now();
        ASSERT_TRUE(oDewarper.DrawFrame(vFrames[nFrame])) << "frame " << nCount << "\n" << oLog.Text();
        vMilliseconds.push_back(std::chrono::duration<double, std::milli>(CClock::now() - oStart).count());
        ++nCount;
        if (nCount == 1000)
            nBytesEarly = BytesAtRest(oDewarper);
        else if (nCount % 5000 == 1000 || (CClock::now() >= oEnd && nCount > 1000)) {
            nBytesLate = BytesAtRest(oDewarper);
            bRested = true;
            std::printf("%ld frames: %lld bytes more\n", nCount, nBytesLate - nBytesEarly);
        }
    }
    EXPECT_LT(nBytesLate - nBytesEarly, 1 << 20);
    EXPECT_NO_GL_ERROR();
    std::sort(vMilliseconds.begin(), vMilliseconds.end());
    std::printf("%ld frames; median %.2f ms, 99 %% below %.2f ms; heap growth %lld bytes\n", nCount,
                vMilliseconds[vMilliseconds.size() / 2], vMilliseconds[vMilliseconds.size() * 99 / 100],
                nBytesLate - nBytesEarly);
}
