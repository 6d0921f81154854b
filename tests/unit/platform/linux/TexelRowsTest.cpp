#include "platform/linux/TexelRows.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace
{

using VBytes = std::vector<unsigned char>;

VBytes Random(std::size_t nCount, unsigned int nSeed)
{
    std::mt19937 oRandom(nSeed);
    VBytes v(nCount);
    for (unsigned char& rByte : v)
        rByte = static_cast<unsigned char>(oRandom() & 255);
    return v;
}

std::size_t PairBytes(std::size_t nWidth)
{
    return (nWidth + 1) / 2 * 2;
}

} // namespace

TEST(TexelRows, ExpandingRepeatsChroma)
{
    for (std::size_t nWidth = 1; nWidth <= 70; ++nWidth) {
        for (const bool bVFirst : {false, true}) {
            const VBytes vLuma = Random(nWidth, 1);
            const VBytes vChroma = Random(PairBytes(nWidth), 2);
            VBytes vTexels(nWidth * 4, 7);
            ExpandRow(vLuma.data(), vChroma.data(), bVFirst, static_cast<int>(nWidth), vTexels.data());
            for (std::size_t x = 0; x < nWidth; ++x) {
                const unsigned char* const pPair = &vChroma[x / 2 * 2];
                ASSERT_EQ(vTexels[4 * x], vLuma[x]) << nWidth << " " << x;
                ASSERT_EQ(vTexels[4 * x + 1], pPair[bVFirst ? 1 : 0]) << nWidth << " " << x;
                ASSERT_EQ(vTexels[4 * x + 2], pPair[bVFirst ? 0 : 1]) << nWidth << " " << x;
                ASSERT_EQ(vTexels[4 * x + 3], 255) << nWidth << " " << x;
            }
        }
    }
}

TEST(TexelRows, PackingTakesTheRoundedMean)
{
    for (std::size_t nWidth = 1; nWidth <= 70; ++nWidth) {
        const VBytes aRows[] = {Random(nWidth * 4, 3), Random(nWidth * 4, 4)};
        VBytes aLuma[] = {VBytes(nWidth), VBytes(nWidth)};
        VBytes vUFirst(PairBytes(nWidth));
        VBytes vVFirst(PairBytes(nWidth));
        for (VBytes* pChroma : {&vUFirst, &vVFirst})
            PackRows(aRows[0].data(), aRows[1].data(), static_cast<int>(nWidth), pChroma == &vVFirst,
                     aLuma[0].data(), aLuma[1].data(), pChroma->data());
        for (std::size_t i = 0; i < 2; ++i)
            for (std::size_t x = 0; x < nWidth; ++x)
                ASSERT_EQ(aLuma[i][x], aRows[i][4 * x]) << nWidth << " " << x;
        for (std::size_t x = 0; x < nWidth; x += 2) {
            const std::size_t nRight = x + 1 < nWidth ? x + 1 : x;
            for (std::size_t k = 1; k <= 2; ++k) {
                const int nSum = aRows[0][4 * x + k] + aRows[0][4 * nRight + k] + aRows[1][4 * x + k] +
                                 aRows[1][4 * nRight + k];
                const int nMean = (nSum + 2) / 4;
                ASSERT_EQ(vUFirst[x + k - 1], nMean) << nWidth << " " << x;
                ASSERT_EQ(vVFirst[x + 2 - k], nMean) << nWidth << " " << x;
            }
        }
    }
}

TEST(TexelRows, NothingIsWrittenBeyondTheRow)
{
    for (const std::size_t nWidth : {1u, 2u, 15u, 16u, 17u, 33u}) {
        const VBytes vLuma = Random(nWidth, 5);
        const VBytes vChroma = Random(PairBytes(nWidth), 6);
        VBytes vTexels(nWidth * 4 + 1, 99);
        ExpandRow(vLuma.data(), vChroma.data(), false, static_cast<int>(nWidth), vTexels.data());
        EXPECT_EQ(vTexels.back(), 99);
        VBytes vPackedLuma(nWidth + 1, 99);
        VBytes vPackedChroma(PairBytes(nWidth) + 1, 99);
        PackRows(vTexels.data(), vTexels.data(), static_cast<int>(nWidth), false, vPackedLuma.data(),
                 vPackedLuma.data(), vPackedChroma.data());
        EXPECT_EQ(vPackedLuma.back(), 99);
        EXPECT_EQ(vPackedChroma.back(), 99);
        // What was expanded comes back.
        vPackedLuma.pop_back();
        vPackedChroma.pop_back();
        EXPECT_EQ(vPackedLuma, vLuma);
        EXPECT_EQ(vPackedChroma, vChroma);
    }
}
