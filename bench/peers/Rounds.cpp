#include "bench/peers/Rounds.h"

#include "bench/Frames.h"
#include "bench/peers/MachineLoad.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{

struct SRound
{
    double fOthers = 0.0;
    std::vector<double> vMilliseconds;
    std::vector<double> vCPU;
};

/// Frames that fill a block, from one measured after a first one that warms up.
std::vector<int> BlockSizes(const std::vector<CPeer*>& vPeers, bool bMoving, double fBlock)
{
    std::vector<int> vSizes;
    for (CPeer* pPeer : vPeers) {
        pPeer->Frames(1, bMoving);
        const double fFrame = MillisecondsOf([&] { pPeer->Frames(2, bMoving); }) / 2.0;
        vSizes.push_back(std::clamp(static_cast<int>(std::lround(fBlock / std::max(fFrame, 0.1))), 1, 40));
    }
    return vSizes;
}

SRound RunRound(const std::vector<CPeer*>& vPeers, const std::vector<int>& vSizes, bool bMoving,
                std::size_t nFirst)
{
    SRound sRound;
    sRound.vMilliseconds.resize(vPeers.size());
    sRound.vCPU.resize(vPeers.size());
    const CMachineLoad oLoad;
    for (std::size_t i = 0; i < vPeers.size(); ++i) {
        const std::size_t n = (nFirst + i) % vPeers.size();
        const CMachineLoad oOwn;
        const double fFrames = vSizes[n];
        sRound.vMilliseconds[n] = MillisecondsOf([&] { vPeers[n]->Frames(vSizes[n], bMoving); }) / fFrames;
        sRound.vCPU[n] = oOwn.OwnMilliseconds() / fFrames;
    }
    sRound.fOthers = oLoad.OthersShare();
    return sRound;
}

} // namespace

SRoundsResult RunRounds(const std::vector<CPeer*>& vPeers, bool bMoving, const SRoundsPlan& rPlan)
{
    const std::vector<int> vSizes = BlockSizes(vPeers, bMoving, rPlan.fBlock);
    std::vector<SRound> vRounds;
    int nQuiet = 0;
    double fLost = 0.0;
    while (nQuiet < rPlan.nRounds &&
           (static_cast<int>(vRounds.size()) < rPlan.nRounds || fLost < rPlan.fPatience * 1000.0)) {
        fLost +=
            MillisecondsOf([&] { vRounds.push_back(RunRound(vPeers, vSizes, bMoving, vRounds.size())); });
        if (vRounds.back().fOthers <= rPlan.fDisturbed) {
            ++nQuiet;
            fLost = 0.0;
        }
    }
    std::stable_sort(vRounds.begin(), vRounds.end(),
                     [](const SRound& rA, const SRound& rB) { return rA.fOthers < rB.fOthers; });
    SRoundsResult sResult;
    sResult.nRepeated = static_cast<int>(vRounds.size()) - rPlan.nRounds;
    vRounds.resize(static_cast<std::size_t>(rPlan.nRounds));
    sResult.fWorstShare = vRounds.back().fOthers;
    for (std::size_t n = 0; n < vPeers.size(); ++n) {
        SPeerTimes sTimes;
        sTimes.strName = vPeers[n]->Name();
        for (const SRound& rRound : vRounds) {
            sTimes.vMilliseconds.push_back(rRound.vMilliseconds[n]);
            sTimes.vCPU.push_back(rRound.vCPU[n]);
        }
        sResult.vTimes.push_back(sTimes);
    }
    return sResult;
}

double MedianRatio(const std::vector<double>& vTimes, const std::vector<double>& vOthers)
{
    std::vector<double> vRatios;
    for (std::size_t i = 0; i < std::min(vTimes.size(), vOthers.size()); ++i)
        vRatios.push_back(vTimes[i] / vOthers[i]);
    return Median(vRatios);
}
