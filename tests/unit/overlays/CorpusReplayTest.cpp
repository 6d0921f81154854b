// The fuzz targets' inputs, run through the same checks in every build. A check that fails stops the program.
#include "tests/fuzz/CorpusReplay.h"

// The targets' entry points, renamed at compile time so that both fit into one program.
extern "C" int FuzzMaskPolygons(const std::uint8_t* pData, std::size_t nSize);
extern "C" int FuzzStrings(const std::uint8_t* pData, std::size_t nSize);

TEST(CorpusReplay, EveryInputOfTheMaskTargetPasses)
{
    EXPECT_GE(ReplayCorpus("mask_polygons", FuzzMaskPolygons), 15);
}

TEST(CorpusReplay, EveryInputOfTheStringTargetPasses)
{
    EXPECT_GE(ReplayCorpus("strings", FuzzStrings), 10);
}
