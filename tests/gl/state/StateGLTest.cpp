// A picture follows from the state of the dewarper, not from its history: after any sequence of calls a frame
// looks as that of a fresh dewarper in the same state.
//
// LUMOR_STATE_SEQUENCES=N in the environment plays N sequences instead of the fixed set, LUMOR_STATE_SEED=N
// begins with that seed, LUMOR_STATE_FAULTS=N goes on until N sequences have failed, and
// LUMOR_STATE_WITHOUT=A|B leaves out calls that read like A or B, to look behind a fault that is known.
#include "tests/fuzz/GLWatch.h"
#include "tests/gl/state/StateCalls.h"
#include "tests/support/EngineDewarper.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Setting.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

static const int SEQUENCES = 120;
static const int MOST_CALLS = 40;
static const int MOST_BYTES = 180;
static const int MOST_FAULTS = 5;

/// True for a call that was to be left out.
static bool IsLeftOut(const SStateCall& rCall)
{
    const char* pWithout = std::getenv("LUMOR_STATE_WITHOUT");
    std::istringstream oWithout(pWithout == nullptr ? "" : pWithout);
    for (std::string strPart; std::getline(oWithout, strPart, '|');)
        if (rCall.strWords.find(strPart) != std::string::npos)
            return true;
    return false;
}

static std::vector<SStateCall> CallsOfSeed(unsigned int nSeed)
{
    std::mt19937 oRandom(nSeed);
    std::vector<unsigned char> vBytes(20 + oRandom() % MOST_BYTES);
    for (unsigned char& rByte : vBytes)
        rByte = static_cast<unsigned char>(oRandom());
    CFuzzBytes oBytes(vBytes.data(), vBytes.size());
    std::vector<SStateCall> vCalls = ReadStateCalls(oBytes, MOST_CALLS);
    std::erase_if(vCalls, IsLeftOut);
    return vCalls;
}

static std::string FaultOf(EDewarpEngine eEngine, const std::vector<SStateCall>& vCalls,
                           int* pCompared = nullptr)
{
    CLogCapture oLog;
    TakeGLErrors();
    CStatePlayer oPlayer(eEngine);
    std::string strFault = oPlayer.Play(vCalls);
    if (pCompared != nullptr)
        *pCompared += oPlayer.Compared();
    oPlayer.Dewarper().StopGL();
    TakeGLErrors();
    return strFault;
}

/// The fault's kind: its words up to the first number or colon.
static std::string KindOf(const std::string& strFault)
{
    return strFault.substr(0, strFault.find_first_of("0123456789:"));
}

/// Leaves calls out, many at once first, as long as a fault of the same kind remains.
static std::vector<SStateCall> Shrunk(EDewarpEngine eEngine, std::vector<SStateCall> vCalls,
                                      const std::string& strFault)
{
    const std::string strKind = KindOf(strFault);
    for (std::size_t nPart = vCalls.size() / 2; nPart > 0;) {
        bool bShorter = false;
        for (std::size_t nAt = 0; nAt + nPart <= vCalls.size();) {
            std::vector<SStateCall> vLess = vCalls;
            const auto oBegin = vLess.begin() + static_cast<std::ptrdiff_t>(nAt);
            vLess.erase(oBegin, oBegin + static_cast<std::ptrdiff_t>(nPart));
            if (KindOf(FaultOf(eEngine, vLess)) == strKind) {
                vCalls = vLess;
                bShorter = true;
            } else {
                ++nAt;
            }
        }
        if (!bShorter || nPart > 1)
            nPart = nPart == 1 ? 0 : nPart / 2;
    }
    return vCalls;
}

static std::string Words(const std::vector<SStateCall>& vCalls)
{
    std::string strWords;
    for (const SStateCall& rCall : vCalls)
        strWords += "    " + rCall.strWords + "\n";
    return strWords;
}

using State = CEngineTest;

TEST_P(State, APictureIsThatOfAFreshDewarperInTheSameState)
{
    const int nSequences = Setting("LUMOR_STATE_SEQUENCES", SEQUENCES);
    const unsigned int nFirst = static_cast<unsigned int>(Setting("LUMOR_STATE_SEED", 1));
    const int nMostFaults = Setting("LUMOR_STATE_FAULTS", MOST_FAULTS);
    int nCompared = 0;
    int nFaults = 0;
    for (unsigned int i = 0; i < static_cast<unsigned int>(nSequences) && nFaults < nMostFaults; ++i) {
        const std::vector<SStateCall> vCalls = CallsOfSeed(nFirst + i);
        const std::string strFault = FaultOf(GetParam(), vCalls, &nCompared);
        if (strFault.empty())
            continue;
        ++nFaults;
        const std::vector<SStateCall> vShrunk = Shrunk(GetParam(), vCalls, strFault);
        ADD_FAILURE() << "seed " << nFirst + i << ": " << FaultOf(GetParam(), vShrunk) << "\n"
                      << Words(vShrunk) << "  shrunk from " << vCalls.size() << " calls";
    }
    std::printf("  %d pictures compared\n", nCompared);
    EXPECT_GT(nCompared, 0);
}

INSTANTIATE_ENGINES(State);
