// Inputs of the tool's fuzz targets: a crash or a check that fails ends the program.
#include "tests/fuzz/CorpusReplay.h"

// The targets' entry points, renamed at compile time so that all fit into one program.
extern "C" int FuzzCommandLine(const std::uint8_t* pData, std::size_t nSize);
extern "C" int FuzzLensFile(const std::uint8_t* pData, std::size_t nSize);
extern "C" int FuzzRawFrames(const std::uint8_t* pData, std::size_t nSize);

TEST(CorpusReplay, EveryInputOfTheCommandLineTargetPasses)
{
    EXPECT_GE(ReplayCorpus("command-line", FuzzCommandLine), 20);
}

TEST(CorpusReplay, EveryInputOfTheLensFileTargetPasses)
{
    EXPECT_GE(ReplayCorpus("lens-files", FuzzLensFile), 9);
}

TEST(CorpusReplay, EveryInputOfTheRawFrameTargetPasses)
{
    EXPECT_GE(ReplayCorpus("raw-frames", FuzzRawFrames), 15);
}
