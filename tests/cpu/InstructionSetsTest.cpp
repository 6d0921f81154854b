// The same bytes from every set of instructions, nothing read beside the frame's planes, and nothing written
// beside the target's pixels.
//
// LUMOR_PATH_CASES=N in the environment draws N cases, LUMOR_PATH_SEED=N begins with another one.
#include "tests/cpu/PathDrawing.h"
#include "tests/support/Setting.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>

static const int CASES = 300;

/// Where two pictures differ, in words.
static std::string Difference(const std::vector<unsigned char>& vA, const std::vector<unsigned char>& vB)
{
    std::size_t nFirst = vA.size();
    int nCount = 0;
    for (std::size_t i = 0; i < vA.size(); ++i)
        if (vA[i] != vB[i] && nCount++ == 0)
            nFirst = i;
    return nCount == 0 ? std::string()
                       : std::to_string(nCount) + " of " + std::to_string(vA.size()) + " bytes, first at " +
                             std::to_string(nFirst) + ": " + std::to_string(vA[nFirst]) + " and " +
                             std::to_string(vB[nFirst]);
}

/// Draws the case with the frame at one end of its memory.
static void Check(const SPathCase& rCase, bool bAtEnd, const std::vector<unsigned char>* pWanted,
                  std::vector<unsigned char>& rPicture)
{
    CGuardedFrame oFrame(rCase.nFormat, rCase.sParams.nImageWidth, rCase.sParams.nImageHeight, rCase.nPad,
                         rCase.nSeed, bAtEnd);
    CPathDrawing oDrawing(rCase, oFrame, 1);
    CPathTarget oPlain(rCase, bAtEnd);
    oDrawing.Draw(PlainKernels(), 1, oPlain.Target());
    EXPECT_TRUE(oPlain.IsUntouchedBeside());
    rPicture = oPlain.Bytes();
    if (pWanted != nullptr) {
        EXPECT_EQ(Difference(*pWanted, rPicture), "") << "the place in memory shows";
    }
    for (const SCellKernels* const* pp = ListKernels(); *pp != nullptr; ++pp) {
        CPathTarget oTarget(rCase, bAtEnd);
        oDrawing.Draw(**pp, 1, oTarget.Target());
        EXPECT_TRUE(oTarget.IsUntouchedBeside()) << (*pp)->pName;
        EXPECT_EQ(Difference(rPicture, oTarget.Bytes()), "") << (*pp)->pName;
    }
}

TEST(InstructionSets, GiveTheSameBytes)
{
    const int nCases = Setting("LUMOR_PATH_CASES", CASES);
    std::mt19937 oRandom(static_cast<unsigned int>(Setting("LUMOR_PATH_SEED", 1)));
    std::map<int, long> oKinds;
    for (int i = 0; i < nCases && !testing::Test::HasFailure(); ++i) {
        const SPathCase sCase = RandomCase(oRandom);
        SCOPED_TRACE("case " + std::to_string(i) + ": " + sCase.Words());
        std::vector<unsigned char> vPicture;
        std::vector<unsigned char> vAgain;
        Check(sCase, false, nullptr, vPicture);
        Check(sCase, true, &vPicture, vAgain);
        CGuardedFrame oFrame(sCase.nFormat, sCase.sParams.nImageWidth, sCase.sParams.nImageHeight, 0, 1,
                             true);
        CPathDrawing oDrawing(sCase, oFrame, 1);
        for (int g = 0; g < oDrawing.Grid().CountParts(); ++g)
            for (const unsigned char nKind : oDrawing.Grid().Parts()[g].vKinds)
                ++oKinds[nKind];
    }
    std::printf("  cells: %ld empty, %ld smooth, %ld at the rim, %ld exact\n", oKinds[CELL_EMPTY],
                oKinds[CELL_SMOOTH], oKinds[CELL_RIM], oKinds[CELL_EXACT]);
    for (const int nKind : {CELL_EMPTY, CELL_SMOOTH, CELL_RIM, CELL_EXACT})
        EXPECT_GT(oKinds[nKind], 500) << nKind;
}
