// A long life in a short time: frames without end, a chance control call every 10, a new size or format every
// 500, a restart of GL every 5,000. LUMOR_SOAK_SECONDS says how long (default 20), LUMOR_SOAK_FRAMES how many
// frames at least; LUMOR_SOAK_TIMES makes frame times count.

#include "tests/soak/ReliabilityScene.h"
#include "tests/support/Setting.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace
{

using CClock = std::chrono::steady_clock;

/// Milliseconds that this process has computed, on all its threads: what other processes do does not count.
double ComputedMilliseconds()
{
    timespec sTime = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &sTime);
    return static_cast<double>(sTime.tv_sec) * 1e3 + static_cast<double>(sTime.tv_nsec) * 1e-6;
}

long long ResidentBytes()
{
    long long nTotal = 0;
    long long nResident = 0;
    std::ifstream("/proc/self/statm") >> nTotal >> nResident;
    return nResident * sysconf(_SC_PAGESIZE);
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

/// What frames took: by the clock, computed by all threads of this process, and computed in medians of the
/// frames with the same settings. A quad view takes longer than a fisheye: only the last tells of hiccups.
/// Frames that follow a call build something and are left out there.
class CFrameTimes
{
public:
    CFrameTimes()
    {
        // Touched now: these notes are not to look like growth.
        for (std::vector<double>* pTimes : {&m_vClock, &m_vComputed, &m_vInMedians}) {
            pTimes->assign(1 << 20, 0.0);
            pTimes->clear();
        }
    }
    bool Draw(CTestDewarper& oDewarper, CTestFrame& oFrame, bool bSteady)
    {
        if (!bSteady)
            CloseGroup();
        const CClock::time_point oStart = CClock::now();
        const double fBefore = ComputedMilliseconds();
        const bool bDrawn = oDewarper.DrawFrame(oFrame);
        m_vComputed.push_back(ComputedMilliseconds() - fBefore);
        m_vClock.push_back(std::chrono::duration<double, std::milli>(CClock::now() - oStart).count());
        if (bSteady)
            m_vGroup.push_back(m_vComputed.back());
        return bDrawn;
    }
    /// The 99th percentile of frames in medians of their own settings.
    double Print()
    {
        CloseGroup();
        const double fSteady = Percentile(m_vInMedians, 0.99);
        for (const auto& [pName, pTimes] : {std::pair{"clock", &m_vClock}, {"computed", &m_vComputed}})
            std::printf("%s: median %.2f ms, 99 %% of %zu frames below %.2f ms\n", pName,
                        Percentile(*pTimes, 0.5), pTimes->size(), Percentile(*pTimes, 0.99));
        std::printf("99 %% of %zu steady frames below %.2f, 99.9 %% below %.2f medians of their settings\n",
                    m_vInMedians.size(), fSteady, Percentile(m_vInMedians, 0.999));
        return fSteady;
    }

private:
    void CloseGroup()
    {
        const double fMedian = Percentile(m_vGroup, 0.5);
        for (const double fTime : m_vGroup)
            m_vInMedians.push_back(fTime / fMedian);
        m_vGroup.clear();
    }

    std::vector<double> m_vClock;
    std::vector<double> m_vComputed;
    std::vector<double> m_vGroup;
    std::vector<double> m_vInMedians;
};

/// Memory that is held while GL is stopped, against the first time it was asked for.
class CGrowth
{
public:
    long long HeapBytes() const { return m_nHeap; }
    int Rests() const { return m_nRests; }
    /// Stops GL, looks, and starts it again.
    void Rest(CTestDewarper& oDewarper, long nFrames)
    {
        oDewarper.StopGL();
        malloc_trim(0);
        const long long nHeap = static_cast<long long>(mallinfo2().uordblks);
        const long long nResident = ResidentBytes();
        EXPECT_TRUE(oDewarper.StartGL());
        if (m_nRests++ == 0) {
            m_nFirstHeap = nHeap;
            m_nFirstResident = nResident;
        }
        m_nHeap = nHeap - m_nFirstHeap;
        std::printf("%ld frames: %lld bytes more on the heap, %lld more resident\n", nFrames, m_nHeap,
                    nResident - m_nFirstResident);
    }

private:
    int m_nRests = 0;
    long long m_nFirstHeap = 0;
    long long m_nFirstResident = 0;
    long long m_nHeap = 0;
};

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
    CFrameTimes oTimes;
    CGrowth oGrowth;
    long nCount = 0;
    bool bSteady = false;
    const long nFrames = static_cast<long>(Setting("LUMOR_SOAK_FRAMES", 0.0));
    const CClock::time_point oEnd =
        CClock::now() +
        std::chrono::microseconds(static_cast<long long>(Setting("LUMOR_SOAK_SECONDS", 20.0) * 1e6));
    // Two rests at least: after 1,000 frames, every 5,000 from there, and at the end.
    while (CClock::now() < oEnd || nCount < nFrames || nCount < 2000) {
        if (nCount % 10 == 0) {
            RandomControlCall(oDewarper, oRandom);
            bSteady = false;
        }
        if (nCount % 500 == 0) {
            nFrame = oRandom() % vFrames.size();
            oDewarper.InitGL(40 + static_cast<int>(oRandom() % 60), 40 + static_cast<int>(oRandom() % 60));
            oLog.Clear();
        }
        ASSERT_TRUE(oTimes.Draw(oDewarper, vFrames[nFrame], bSteady)) << "frame " << nCount << "\n"
                                                                      << oLog.Text();
        bSteady = true;
        if (++nCount % 5000 == 1000) {
            oGrowth.Rest(oDewarper, nCount);
            bSteady = false;
        }
    }
    oGrowth.Rest(oDewarper, nCount);
    EXPECT_GE(oGrowth.Rests(), 2);
    EXPECT_LT(oGrowth.HeapBytes(), 1 << 20);
    EXPECT_NO_GL_ERROR();
    const double fMedians = oTimes.Print();
    if (Setting("LUMOR_SOAK_TIMES", 0.0) > 0.0) {
        EXPECT_LE(fMedians, 3.0);
    }
}
