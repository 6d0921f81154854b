/// \file
/// Contenders in turn, round after round.
#pragma once

#include "bench/peers/Peer.h"

/// What one contender took, in the order of the rounds that count.
struct SPeerTimes
{
    std::string strName;
    std::vector<double> vMilliseconds; ///< a frame
    std::vector<double> vCPU;          ///< processor milliseconds a frame, all threads together
};

struct SRoundsResult
{
    std::vector<SPeerTimes> vTimes;
    int nRepeated = 0;        ///< rounds that others disturbed
    double fWorstShare = 0.0; ///< of the machine that others had, in a round that counts
};

struct SRoundsPlan
{
    int nRounds = 7;
    double fPatience = 60.0;  ///< seconds for disturbed rounds; then the quietest count
    double fDisturbed = 0.04; ///< share of the machine from which a round counts as disturbed
    double fBlock = 60.0;     ///< milliseconds that a contender works at a time, at least one frame
};

/// Lets the contenders work in turn, a block of frames each, the first of a round being another every time.
/// Rounds in which others used more of the machine than planned are done again. GL and other contexts of the
/// contenders are this thread's.
SRoundsResult RunRounds(const std::vector<CPeer*>& vPeers, bool bMoving, const SRoundsPlan& rPlan);

/// Median over the rounds of one contender's time over another's.
double MedianRatio(const std::vector<double>& vTimes, const std::vector<double>& vOthers);
