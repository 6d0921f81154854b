/// \file
/// Input frames and timing shared by the benchmarks.
#pragma once

#include "dewarp/records/SImageProperties.h"

#include <chrono>
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

/// Processor milliseconds of this process so far, all threads together. Differences of it hardly move when
/// other processes want the machine too.
double ProcessorMilliseconds();

/// Milliseconds that pass while a function runs.
template <class F>
double MillisecondsOf(F&& fFunction)
{
    const auto oStart = std::chrono::steady_clock::now();
    fFunction();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - oStart).count();
}

/// Times of one thing that is done again and again.
struct SBenchTimes
{
    std::vector<double> vWall;      ///< milliseconds
    std::vector<double> vProcessor; ///< processor milliseconds, all threads together

    template <class F>
    void Add(F&& fFunction)
    {
        const double fStart = ProcessorMilliseconds();
        vWall.push_back(MillisecondsOf(fFunction));
        vProcessor.push_back(ProcessorMilliseconds() - fStart);
    }
};
