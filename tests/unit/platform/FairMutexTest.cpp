#include "platform/FairMutex.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

TEST(FairMutex, IsTakenAgainByTheThreadThatHoldsIt)
{
    CFairMutex oMutex;
    bool bOther = false;
    {
        const std::lock_guard<CFairMutex> oFirst(oMutex);
        const std::lock_guard<CFairMutex> oSecond(oMutex);
    }
    std::thread([&] {
        const std::lock_guard<CFairMutex> oLock(oMutex);
        bOther = true;
    }).join();
    EXPECT_TRUE(bOther);
}

TEST(FairMutex, ExcludesOtherThreads)
{
    CFairMutex oMutex;
    int nCount = 0;
    const auto Add = [&] {
        for (int i = 0; i < 20000; ++i) {
            const std::lock_guard<CFairMutex> oLock(oMutex);
            ++nCount;
        }
    };
    std::thread oThread(Add);
    Add();
    oThread.join();
    EXPECT_EQ(nCount, 40000);
}

TEST(FairMutex, GoesToTheOneThatWaitsBeforeItIsTakenAgain)
{
    CFairMutex oMutex;
    std::atomic<bool> bDone{false};
    std::atomic<int> nHeld{0};
    std::thread oHog([&] {
        while (!bDone) {
            const std::lock_guard<CFairMutex> oLock(oMutex);
            ++nHeld;
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    while (nHeld == 0)
        std::this_thread::yield();
    int nTurns = 0;
    for (int i = 0; i < 100; ++i) {
        const int nBefore = nHeld;
        while (nHeld == nBefore)
            std::this_thread::yield();
        const int nAsked = nHeld;
        const std::lock_guard<CFairMutex> oLock(oMutex);
        nTurns += nHeld - nAsked;
    }
    // The other comes in between only where this thread was kept from asking.
    EXPECT_LE(nTurns, 25);
    bDone = true;
    oHog.join();
}
