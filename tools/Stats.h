/// \file
/// Time spent in the stages of a run.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

/// Stages in the order in which they ended; milliseconds of wall time.
class CStats
{
public:
    /// Ends a stage that began at the end of the one before, or at construction.
    void EndStage(const char* pName) { AddStage(pName, Lap()); }
    /// Milliseconds since the end of the stage before; begins the next.
    double Lap();
    void AddStage(const char* pName, double fMilliseconds) { m_vStages.emplace_back(pName, fMilliseconds); }
    /// One line a stage and the sum.
    std::string Format() const;

private:
    using TClock = std::chrono::steady_clock;
    TClock::time_point m_oBegin = TClock::now();
    std::vector<std::pair<const char*, double>> m_vStages;
};
