/// \file
/// The processor engine's rows: beside the GL engine, beside the peers, and beside itself.
#pragma once

#include "bench/peers/Report.h"

/// What to run, and how.
struct SCasesPlan
{
    SRoundsPlan sRounds;
    std::string strOnly; ///< text that a title must have
    int nThreads = 2;    ///< that one contender may use
};

/// Runs the rows whose titles have the text that is asked for, prints them and adds them to the reports.
void RunEngineCases(const SCasesPlan& rPlan, std::vector<SPeerReport>& vReports);
