/// \file
/// What fuzz targets share.
#pragma once

#include "platform/LogSink.h"

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

/// Swallows log lines while it lives: damaged inputs cause millions of them.
class CQuietLog
{
public:
    CQuietLog()
    {
        SetLogSink([](int, const char*, const char*, void*) {}, nullptr);
    }
    ~CQuietLog() { SetLogSink(nullptr, nullptr); }
    CQuietLog(const CQuietLog&) = delete;
    CQuietLog& operator=(const CQuietLog&) = delete;
};
