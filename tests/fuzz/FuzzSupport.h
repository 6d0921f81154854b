/// \file
/// What fuzz targets share.
#pragma once

#include "platform/LogSink.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Stops the program, which the fuzzer reports together with the input.
inline void Require(bool bHolds, const char* pWhat)
{
    if (bHolds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", pWhat);
    std::abort();
}

/// As Require, for a text that must be empty.
inline void RequireNothing(const std::string& strFound, const char* pWhat)
{
    if (strFound.empty())
        return;
    std::fprintf(stderr, "%s: %s\n", pWhat, strFound.c_str());
    std::abort();
}

/// Log lines swallowed so far.
inline std::atomic<unsigned int> nLogLines{0};
/// Inputs begun so far. The watch in FuzzMain.cpp sees by it that one takes too long.
inline std::atomic<unsigned int> nInputsBegun{0};

/// One input. Log lines are counted and swallowed while it runs, for damaged inputs cause millions of them;
/// LUMOR_FUZZ_LOG in the environment shows them.
class CFuzzInput
{
public:
    CFuzzInput()
    {
        nInputsBegun.fetch_add(1, std::memory_order_relaxed);
        SetLogSink(TakeLine, nullptr);
    }
    ~CFuzzInput() { SetLogSink(nullptr, nullptr); }
    CFuzzInput(const CFuzzInput&) = delete;
    CFuzzInput& operator=(const CFuzzInput&) = delete;

private:
    static void TakeLine(int /*nPriority*/, const char* /*pTag*/, const char* pLine, void* /*pUser*/)
    {
        static const bool bShow = std::getenv("LUMOR_FUZZ_LOG") != nullptr;
        nLogLines.fetch_add(1, std::memory_order_relaxed);
        if (bShow)
            std::fprintf(stderr, "%s\n", pLine);
    }
};
