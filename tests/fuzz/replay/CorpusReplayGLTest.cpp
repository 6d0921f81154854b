// Inputs of the fuzz targets that draw: a crash, a GL error or a check that fails ends the program.
#include "tests/fuzz/CorpusReplay.h"

// The targets' entry points, renamed at compile time so that they fit into one program.
extern "C" int FuzzControlCalls(const std::uint8_t* pData, std::size_t nSize);
extern "C" int FuzzFrames(const std::uint8_t* pData, std::size_t nSize);

TEST(CorpusReplay, EveryInputOfTheControlCallTargetPasses)
{
    EXPECT_GE(ReplayCorpus("calls", FuzzControlCalls), 20);
}

TEST(CorpusReplay, EveryInputOfTheFrameTargetPasses)
{
    EXPECT_GE(ReplayCorpus("frames", FuzzFrames), 20);
}
