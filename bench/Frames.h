/// \file
/// Input frames and timing shared by the benchmarks.
#pragma once

#include "dewarp/records/SImageProperties.h"

#include <vector>

/// A synthetic frame with detail at every scale, in the planes of one format.
class CBenchFrame
{
public:
    CBenchFrame(int nFormat, int nWidth, int nHeight);
    SImageProperties* Image() { return &m_sImage; }

private:
    std::vector<unsigned char> m_vPlanes[3];
    SImageProperties m_sImage;
};

/// Median of times; sorts its copy.
double Median(std::vector<double> vTimes);

/// Milliseconds that pass while a function runs.
template <class F>
double MillisecondsOf(F&& fFunction);

#include <chrono>

template <class F>
double MillisecondsOf(F&& fFunction)
{
    const auto oStart = std::chrono::steady_clock::now();
    fFunction();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - oStart).count();
}
