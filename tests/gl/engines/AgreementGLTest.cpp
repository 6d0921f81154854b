// The processor engine draws what the GL engine draws: in whatever state sequences of calls lead to.
//
// LUMOR_AGREEMENT_STATES=N in the environment looks at N states instead of a few hundred, LUMOR_STATE_SEED=N
// begins with the sequence of that seed.
#include "tests/fuzz/GLWatch.h"
#include "tests/gl/engines/StateJudge.h"
#include "tests/gl/state/StateCalls.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Setting.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

static const int STATES = 250;
static const int MOST_CALLS = 40;
static const int MOST_BYTES = 180;
static const int MOST_FAULTS = 5;

static std::vector<SStateCall> CallsOfSeed(unsigned int nSeed)
{
    std::mt19937 oRandom(nSeed);
    std::vector<unsigned char> vBytes(20 + oRandom() % MOST_BYTES);
    for (unsigned char& rByte : vBytes)
        rByte = static_cast<unsigned char>(oRandom());
    CFuzzBytes oBytes(vBytes.data(), vBytes.size());
    return ReadStateCalls(oBytes, MOST_CALLS);
}

TEST(Agreement, OfBothEnginesInEveryStateThatCallsLeadTo)
{
    const int nStates = Setting("LUMOR_AGREEMENT_STATES", STATES);
    unsigned int nSeed = static_cast<unsigned int>(Setting("LUMOR_STATE_SEED", 1));
    SJudged sAll;
    int nFaults = 0;
    for (; sAll.nStates < nStates && nFaults < MOST_FAULTS; ++nSeed) {
        const CLogCapture oLog;
        TakeGLErrors();
        CStatePlayer oPlayer(ENGINE_CPU);
        oPlayer.SetLook([&](CStatePlayer& rPlayer) {
            CStateJudge oJudge(rPlayer);
            const std::string strFault = oJudge.Judge();
            sAll.Add(oJudge.Judged());
            if (!strFault.empty())
                rPlayer.Fail(strFault);
        });
        const std::vector<SStateCall> vCalls = CallsOfSeed(nSeed);
        const std::string strFault = oPlayer.Play(vCalls);
        oPlayer.Dewarper().StopGL();
        TakeGLErrors();
        if (strFault.empty())
            continue;
        ++nFaults;
        ADD_FAILURE() << "seed " << nSeed << ": " << strFault;
    }
    std::printf(
        "  %d states: %d within the bounds of each other, %d by the reference (GL %.1f dB, processor %.1f "
        "dB at worst), %d steep\n",
        sAll.nStates, sAll.nDirect, sAll.nByReference, sAll.fWorstGL, sAll.fWorstProcessor, sAll.nSteep);
    std::printf(
        "  of %lld pixels %lld beside edges, %lld on borders of texels, %lld masked by more than GL\n",
        sAll.nPixels, sAll.nEdges, sAll.nBorders, sAll.nMasked);
    EXPECT_GE(sAll.nDirect, sAll.nStates * 8 / 10);
    EXPECT_LT(sAll.nBorders, sAll.nPixels / 5);
    EXPECT_LT(sAll.nEdges, sAll.nPixels / 10);
}
