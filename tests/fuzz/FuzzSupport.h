/// \file
/// What fuzz targets share.
#pragma once

#include "platform/LogSink.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

/// Stops the program, which the fuzzer reports together with the input.
inline void Require(bool bHolds, const char* pWhat)
{
    if (bHolds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", pWhat);
    std::abort();
}

/// Inputs begun so far. The watch in FuzzMain.cpp sees by it that one takes too long.
inline std::atomic<unsigned int> nInputsBegun{0};

/// One input: log lines are swallowed while it runs, for damaged inputs cause millions of them.
class CFuzzInput
{
public:
    CFuzzInput()
    {
        nInputsBegun.fetch_add(1, std::memory_order_relaxed);
        SetLogSink([](int, const char*, const char*, void*) {}, nullptr);
    }
    ~CFuzzInput() { SetLogSink(nullptr, nullptr); }
    CFuzzInput(const CFuzzInput&) = delete;
    CFuzzInput& operator=(const CFuzzInput&) = delete;
};
