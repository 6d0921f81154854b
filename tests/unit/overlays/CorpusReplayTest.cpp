// The fuzz targets' inputs, run through the same checks in every build. A check that fails stops the program.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

// The targets' entry points, renamed at compile time so that both fit into one program.
extern "C" int FuzzMaskPolygons(const std::uint8_t* pData, std::size_t nSize);
extern "C" int FuzzStrings(const std::uint8_t* pData, std::size_t nSize);

static int Replay(const char* pFolder, int (*pTarget)(const std::uint8_t*, std::size_t))
{
    int nInputs = 0;
    for (const auto& oEntry : std::filesystem::directory_iterator(std::filesystem::path(TEST_SOURCE_DIR) /
                                                                  "fuzz/corpus" / pFolder)) {
        std::ifstream oFile(oEntry.path(), std::ios::binary);
        const std::vector<char> vBytes{std::istreambuf_iterator<char>(oFile),
                                       std::istreambuf_iterator<char>()};
        const std::vector<std::uint8_t> vInput(vBytes.begin(), vBytes.end());
        EXPECT_EQ(pTarget(vInput.data(), vInput.size()), 0) << oEntry.path();
        ++nInputs;
    }
    return nInputs;
}

TEST(CorpusReplay, EveryInputOfTheMaskTargetPasses)
{
    EXPECT_GE(Replay("mask_polygons", FuzzMaskPolygons), 15);
}

TEST(CorpusReplay, EveryInputOfTheStringTargetPasses)
{
    EXPECT_GE(Replay("strings", FuzzStrings), 10);
}
