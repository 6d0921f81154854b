// One thread at a time in one dewarper: a lock that does not exclude is found out in debug builds.

#include "dewarp/CustomGPUDewarper.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <ostream>
#include <thread>

namespace
{

/// Its lock is empty, and it calls whoever is given in the middle of every setter.
class CUnlockedDewarper : public CCustomGPUDewarper
{
public:
    void DrawRequired() override
    {
        CCustomGPUDewarper::DrawRequired();
        if (fInside)
            fInside();
    }

    std::function<void()> fInside;
};

/// Its lock excludes other threads and lets its own in again.
class CLockedDewarper : public CCustomGPUDewarper
{
public:
    void Lock() override { m_oMutex.lock(); }
    void Unlock() override { m_oMutex.unlock(); }

private:
    std::recursive_mutex m_oMutex;
};

} // namespace

TEST(OneThread, MayCallItsDewarperFromWithinACall)
{
    CUnlockedDewarper oDewarper;
    int nDepth = 0;
    oDewarper.fInside = [&] {
        if (++nDepth < 5)
            oDewarper.SetMountTilt(static_cast<float>(nDepth));
        EXPECT_EQ(oDewarper.GetViewType(), VIEW_FISHEYE);
        EXPECT_TRUE(oDewarper.IsDrawRequired());
    };
    oDewarper.SetViewType(VIEW_FISHEYE);
    EXPECT_EQ(nDepth, 5);
    EXPECT_EQ(oDewarper.GetMountTilt(), 4.0f);
}

TEST(OneThread, MayFollowAnother)
{
    CUnlockedDewarper oDewarper;
    oDewarper.fInside = [&] { oDewarper.GetViewType(); };
    for (int i = 0; i < 3; ++i) {
        std::thread([&] { oDewarper.SetRotation(90 * i); }).join();
        EXPECT_EQ(oDewarper.GetRotation(), 90 * i);
        oDewarper.SetViewType(VIEW_VCAM);
    }
}

TEST(OneThread, IsSeenToByALock)
{
    CLockedDewarper oDewarper;
    const auto Steer = [&oDewarper] {
        float fPan = 0.0f;
        float fTilt = 0.0f;
        float fZoom = 0.0f;
        for (int i = 0; i < 5000; ++i) {
            oDewarper.RelativePTZ(1.0f, 0.0f, 0.0f);
            oDewarper.GetPTZ(fPan, fTilt, fZoom);
        }
    };
    std::thread oOther(Steer);
    Steer();
    oOther.join();
    EXPECT_TRUE(oDewarper.IsDrawRequired());
}

#ifndef NDEBUG

namespace
{

/// One thread waits inside a setter while this one makes a call.
void CallWhileAnotherIsInside(void (*fCall)(CCustomGPUDewarper& rDewarper))
{
    CUnlockedDewarper oDewarper;
    std::atomic<bool> bInside{false};
    std::atomic<bool> bLetGo{false};
    oDewarper.fInside = [&] {
        bInside = true;
        while (!bLetGo)
            std::this_thread::yield();
    };
    std::thread oOther([&] { oDewarper.SetViewType(VIEW_FISHEYE); });
    while (!bInside)
        std::this_thread::yield();
    fCall(oDewarper);
    bLetGo = true;
    oOther.join();
}

struct SCall
{
    const char* pName;
    void (*fCall)(CCustomGPUDewarper& rDewarper);
};

std::ostream& operator<<(std::ostream& rStream, const SCall& rCall)
{
    return rStream << rCall.pName;
}

const SCall CALLS[] = {
    {"Getter", [](CCustomGPUDewarper& r) { r.GetViewType(); }},
    {"Setter", [](CCustomGPUDewarper& r) { r.SetMountTilt(10.0f); }},
    {"Move", [](CCustomGPUDewarper& r) { r.AbsolutePTZ(1.0f, 2.0f, 3.0f); }},
    {"Mouse", [](CCustomGPUDewarper& r) { r.OnMouseDown(1, 2); }},
    {"Masks", [](CCustomGPUDewarper& r) { r.SetMaskPolygons(std::vector<SGPolygon>()); }},
    {"Frame", [](CCustomGPUDewarper& r) { r.DrawGLScene(false); }},
};

class OneThreadDeathTest : public testing::TestWithParam<SCall>
{
};

} // namespace

TEST_P(OneThreadDeathTest, TwoThreadsInOneDewarperEndTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(CallWhileAnotherIsInside(GetParam().fCall), "\"one thread at a time\" failed");
}

INSTANTIATE_TEST_SUITE_P(Calls, OneThreadDeathTest, testing::ValuesIn(CALLS),
                         [](const auto& rInfo) { return std::string(rInfo.param.pName); });

#endif
