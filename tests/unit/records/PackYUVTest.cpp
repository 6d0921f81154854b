#include "dewarp/records/PackYUV.h"

#include "dewarp/records/YUVColour.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace
{

using VBytes = std::vector<unsigned char>;

const EYUVSpace SPACES[] = {YUV_SPACE_BT601, YUV_SPACE_BT709, YUV_SPACE_BT2020, YUV_SPACE_BT601_SCALED};
const EYUVRange RANGES[] = {YUV_RANGE_FULL, YUV_RANGE_LIMITED};
const unsigned char PADDING = 0xA5;

SYUV2RGBConversionParams Params(EYUVSpace eSpace, EYUVRange eRange)
{
    SYUV2RGBConversionParams sParams;
    sParams.eSpace = eSpace;
    sParams.eRange = eRange;
    return sParams;
}

/// Y, U and V of a picture of one colour.
struct SPacked
{
    int y;
    int u;
    int v;
};

SPacked Pack(const SYUVWeights& rWeights, int nRed, int nGreen, int nBlue)
{
    VBytes vRow;
    for (int i = 0; i < 2; ++i)
        for (const int nByte : {nBlue, nGreen, nRed, 255})
            vRow.push_back(static_cast<unsigned char>(nByte));
    unsigned char aLuma[2] = {};
    unsigned char nU = 0;
    unsigned char nV = 0;
    PackYUVRows(rWeights, vRow.data(), vRow.data(), 2, {aLuma, aLuma, &nU, &nV, 1});
    EXPECT_EQ(aLuma[0], aLuma[1]);
    return {aLuma[0], nU, nV};
}

/// A picture in which every byte counts.
VBytes Noise(int nWidth, int nHeight)
{
    VBytes vPixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4);
    unsigned int n = 12345;
    for (unsigned char& rByte : vPixels) {
        n = n * 1664525U + 1013904223U;
        rByte = static_cast<unsigned char>(n >> 24);
    }
    return vPixels;
}

/// A target whose planes have padding, each in memory of its own.
struct STarget
{
    STarget(EImageFormat eFormat, int nWidth, int nHeight)
    {
        const int nChroma = (nWidth + 1) / 2;
        const int nRows = (nHeight + 1) / 2;
        sTarget.eFormat = eFormat;
        if (eFormat == IMAGE_FORMAT_YUV420P) {
            Add(0, nWidth, nHeight);
            Add(1, nChroma, nRows);
            Add(2, nChroma, nRows);
        } else if (eFormat == IMAGE_FORMAT_NV12) {
            Add(0, nWidth, nHeight);
            Add(1, 2 * nChroma, nRows);
        } else {
            Add(0, 4 * nWidth, nHeight);
        }
    }
    void Add(int nPlane, int nRow, int nRows)
    {
        anRows[nPlane] = nRow;
        sTarget.anStrides[nPlane] = nRow + 3;
        avPlanes[nPlane].assign(static_cast<std::size_t>((nRow + 3) * nRows), PADDING);
        sTarget.apPlanes[nPlane] = avPlanes[nPlane].data();
    }
    int At(int nPlane, int x, int y) const
    {
        return avPlanes[nPlane][static_cast<std::size_t>(y * sTarget.anStrides[nPlane] + x)];
    }
    bool PaddingIsWhole() const
    {
        for (int i = 0; i < 3; ++i)
            for (std::size_t n = 0; n < avPlanes[i].size(); ++n)
                if (static_cast<int>(n) % sTarget.anStrides[i] >= anRows[i] && avPlanes[i][n] != PADDING)
                    return false;
        return true;
    }

    SFrameTarget sTarget;
    VBytes avPlanes[3];
    int anRows[3] = {};
};

} // namespace

TEST(PackYUV, ColoursComeOutAsTheConversionOfSingleColoursHasThem)
{
    int nOther = 0;
    int nTried = 0;
    for (const EYUVSpace eSpace : SPACES)
        for (const EYUVRange eRange : RANGES) {
            const SYUVWeights sWeights = YUVWeightsOf(Params(eSpace, eRange));
            for (unsigned int n = 0; n < 1 << 24; n += 4099) {
                const unsigned int nYUV = ConvertColourToYUV(n << 8, eSpace, eRange);
                const SPacked s = Pack(sWeights, static_cast<int>(n >> 16), static_cast<int>(n >> 8 & 255),
                                       static_cast<int>(n & 255));
                const int nFar = std::max({std::abs(s.y - static_cast<int>(nYUV >> 24)),
                                           std::abs(s.u - static_cast<int>(nYUV >> 16 & 255)),
                                           std::abs(s.v - static_cast<int>(nYUV >> 8 & 255))});
                ASSERT_LE(nFar, 1) << n << " in space " << eSpace << ", range " << eRange;
                nOther += nFar;
                ++nTried;
            }
        }
    // Values that lie half way between two bytes, but for the last digits.
    EXPECT_LT(nOther, nTried / 50);
}

TEST(PackYUV, GreyHasNoChromaAndTheWholeRange)
{
    for (const EYUVSpace eSpace : SPACES) {
        for (int n = 0; n < 256; ++n) {
            const SPacked s = Pack(YUVWeightsOf(Params(eSpace, YUV_RANGE_FULL)), n, n, n);
            EXPECT_EQ(s.y, n);
            EXPECT_EQ(s.u, 128);
            EXPECT_EQ(s.v, 128);
        }
        const SYUVWeights sLimited = YUVWeightsOf(Params(eSpace, YUV_RANGE_LIMITED));
        EXPECT_EQ(Pack(sLimited, 0, 0, 0).y, 16);
        EXPECT_EQ(Pack(sLimited, 255, 255, 255).y, 235);
        EXPECT_EQ(Pack(sLimited, 77, 77, 77).v, 128);
    }
}

TEST(PackYUV, LevelsCountInTheLimitedRangeAlone)
{
    SYUV2RGBConversionParams sParams = Params(YUV_SPACE_BT601, YUV_RANGE_LIMITED);
    sParams.nLumaMin = 200;
    sParams.nLumaMax = 40;
    sParams.nChromaMin = 100;
    SYUVWeights sWeights = YUVWeightsOf(sParams);
    EXPECT_EQ(Pack(sWeights, 0, 0, 0).y, 200);
    EXPECT_EQ(Pack(sWeights, 255, 255, 255).y, 40);
    EXPECT_EQ(Pack(sWeights, 0, 0, 255).u, 155);
    EXPECT_EQ(Pack(sWeights, 255, 255, 0).u, 100);
    sParams.eRange = YUV_RANGE_FULL;
    sWeights = YUVWeightsOf(sParams);
    EXPECT_EQ(Pack(sWeights, 255, 255, 255).y, 255);
    EXPECT_EQ(Pack(sWeights, 0, 0, 255).u, 255);
}

TEST(PackYUV, AutomaticCountsAsBT601AndFull)
{
    const SYUVWeights sAuto = YUVWeightsOf(SYUV2RGBConversionParams());
    const SYUVWeights sFull = YUVWeightsOf(Params(YUV_SPACE_BT601, YUV_RANGE_FULL));
    EXPECT_EQ(Pack(sAuto, 10, 200, 90).u, Pack(sFull, 10, 200, 90).u);
    EXPECT_EQ(sAuto.nY, sFull.nY);
}

TEST(PackYUV, ChromaIsTheMeanOfTheFourPixelsAroundIt)
{
    const SYUVWeights sWeights = YUVWeightsOf(Params(YUV_SPACE_BT709, YUV_RANGE_FULL));
    // Blue beside yellow: grey on the mean.
    const VBytes vPixels = {255, 0, 0, 255, 0, 255, 255, 255, 0, 255, 255, 255, 255, 0, 0, 255};
    STarget oTarget(IMAGE_FORMAT_YUV420P, 2, 2);
    PackPicture(vPixels.data(), 8, 2, 2, sWeights, oTarget.sTarget);
    EXPECT_EQ(oTarget.At(1, 0, 0), 128);
    EXPECT_EQ(oTarget.At(2, 0, 0), 128);
    EXPECT_EQ(oTarget.At(0, 0, 0), oTarget.At(0, 1, 1));
    EXPECT_NE(oTarget.At(0, 0, 0), oTarget.At(0, 1, 0));
}

TEST(PackPicture, OddSizesKeepTheirLastRowAndColumnAndEveryPaddingByte)
{
    const SYUVWeights sWeights = YUVWeightsOf(Params(YUV_SPACE_BT601, YUV_RANGE_LIMITED));
    for (const auto& [nWidth, nHeight] : {std::pair{1, 1}, {7, 5}, {8, 6}, {3, 2}, {2, 3}}) {
        SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
        const VBytes vPixels = Noise(nWidth, nHeight);
        STarget oPlanar(IMAGE_FORMAT_YUV420P, nWidth, nHeight);
        STarget oPairs(IMAGE_FORMAT_NV12, nWidth, nHeight);
        PackPicture(vPixels.data(), nWidth * 4, nWidth, nHeight, sWeights, oPlanar.sTarget);
        PackPicture(vPixels.data(), nWidth * 4, nWidth, nHeight, sWeights, oPairs.sTarget);
        EXPECT_TRUE(oPlanar.PaddingIsWhole());
        EXPECT_TRUE(oPairs.PaddingIsWhole());
        EXPECT_EQ(oPlanar.avPlanes[0], oPairs.avPlanes[0]);
        for (int y = 0; y < (nHeight + 1) / 2; ++y)
            for (int x = 0; x < (nWidth + 1) / 2; ++x) {
                EXPECT_EQ(oPlanar.At(1, x, y), oPairs.At(1, 2 * x, y));
                EXPECT_EQ(oPlanar.At(2, x, y), oPairs.At(1, 2 * x + 1, y));
            }
        const unsigned char* pLast = vPixels.data() + vPixels.size() - 4;
        const SPacked sLast = Pack(sWeights, pLast[2], pLast[1], pLast[0]);
        EXPECT_EQ(oPlanar.At(0, nWidth - 1, nHeight - 1), sLast.y);
        if (nWidth % 2 != 0 && nHeight % 2 != 0) {
            EXPECT_EQ(oPlanar.At(1, nWidth / 2, nHeight / 2), sLast.u);
            EXPECT_EQ(oPlanar.At(2, nWidth / 2, nHeight / 2), sLast.v);
        }
    }
}

TEST(PackPicture, PackedFormatsKeepTheirBytesOrExchangeRedAndBlue)
{
    const VBytes vPixels = Noise(5, 3);
    for (const EImageFormat eFormat : {IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_RGBA32}) {
        STarget oTarget(eFormat, 5, 3);
        PackPicture(vPixels.data(), 20, 5, 3, {}, oTarget.sTarget);
        EXPECT_TRUE(oTarget.PaddingIsWhole());
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 20; ++x) {
                const bool bSwap = eFormat == IMAGE_FORMAT_RGBA32 && x % 4 != 3;
                const int nFrom = bSwap ? x / 4 * 4 + 2 - x % 4 : x;
                EXPECT_EQ(oTarget.At(0, x, y), vPixels[static_cast<std::size_t>(y * 20 + nFrom)]);
            }
    }
}
