#include "platform/Assert.h"

#include "platform/LogSink.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

TEST(AssertDeathTest, ReportsPlaceAndExpressionAndAborts)
{
    EXPECT_EXIT(
        __assert2("dewarp/CustomGPUGeometry", 123, "void Generate(int)", "nColumn < nColumns"),
        testing::KilledBySignal(SIGABRT),
        "dewarp/CustomGPUGeometry:123: void Generate\\(int\\): assertion \"nColumn < nColumns\" failed");
}

TEST(AssertDeathTest, TheLogHearsOfItToo)
{
    const auto die = [] {
        SetLogSink([](int nPriority, const char*, const char* pLine,
                      void*) { std::fprintf(stderr, "sink %d %s\n", nPriority, pLine); },
                   nullptr);
        __assert2("file", 7, "function", "0");
    };
    EXPECT_EXIT(die(), testing::KilledBySignal(SIGABRT),
                "sink 7 file:7: function: assertion \"0\" failed\nfile:7: function: assertion \"0\" failed");
}
