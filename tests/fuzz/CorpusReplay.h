/// \file
/// Runs the inputs that are kept for a fuzz target through the same checks in every build.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

/// Hands every file of a corpus to a target, in the order of their names; returns their number. A check that
/// fails stops the program.
inline int ReplayCorpus(const char* pFolder, int (*pTarget)(const std::uint8_t*, std::size_t))
{
    std::vector<std::filesystem::path> vPaths;
    for (const auto& oEntry : std::filesystem::directory_iterator(std::filesystem::path(TEST_SOURCE_DIR) /
                                                                  "fuzz/corpus" / pFolder))
        vPaths.push_back(oEntry.path());
    std::sort(vPaths.begin(), vPaths.end());
    for (const std::filesystem::path& rPath : vPaths) {
        std::ifstream oFile(rPath, std::ios::binary);
        const std::vector<char> vBytes{std::istreambuf_iterator<char>(oFile),
                                       std::istreambuf_iterator<char>()};
        const std::vector<std::uint8_t> vInput(vBytes.begin(), vBytes.end());
        EXPECT_EQ(pTarget(vInput.data(), vInput.size()), 0) << rPath;
    }
    return static_cast<int>(vPaths.size());
}
