#include "dewarp/records/ColourMatrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

const EYUVSpace SPACES[] = {YUV_SPACE_BT601, YUV_SPACE_BT709, YUV_SPACE_BT2020, YUV_SPACE_BT601_SCALED};

} // namespace

TEST(ColourMatrix, SpacesFollowTheLumaWeightsOfTheirStandards)
{
    struct SStandard
    {
        EYUVSpace eSpace;
        double fRed;
        double fBlue;
    };
    // The exact factors, rounded to three decimals.
    for (const SStandard& s :
         {SStandard{YUV_SPACE_BT601, 0.299, 0.114}, SStandard{YUV_SPACE_BT709, 0.2126, 0.0722},
          SStandard{YUV_SPACE_BT2020, 0.2627, 0.0593}}) {
        const SColourMatrix& rMatrix = ColourMatrixOf(s.eSpace);
        const double fGreen = 1.0 - s.fRed - s.fBlue;
        EXPECT_NEAR(rMatrix.fRedV, 2.0 * (1.0 - s.fRed), 0.00051) << s.eSpace;
        EXPECT_NEAR(rMatrix.fBlueU, 2.0 * (1.0 - s.fBlue), 0.00051) << s.eSpace;
        EXPECT_NEAR(rMatrix.fGreenU, 2.0 * s.fBlue * (1.0 - s.fBlue) / fGreen, 0.00051) << s.eSpace;
        EXPECT_NEAR(rMatrix.fGreenV, 2.0 * s.fRed * (1.0 - s.fRed) / fGreen, 0.00051) << s.eSpace;
    }
}

TEST(ColourMatrix, EverySpaceHasItsOwn)
{
    for (const EYUVSpace eLeft : SPACES) {
        for (const EYUVSpace eRight : SPACES)
            EXPECT_EQ(&ColourMatrixOf(eLeft) == &ColourMatrixOf(eRight), eLeft == eRight);
    }
    EXPECT_EQ(ColourMatrixOf(YUV_SPACE_BT601_SCALED).fRedV, 1.3707f);
    EXPECT_EQ(ColourMatrixOf(YUV_SPACE_BT601_SCALED).fGreenU, 0.3376f);
    EXPECT_EQ(ColourMatrixOf(YUV_SPACE_BT601_SCALED).fGreenV, 0.6980f);
    EXPECT_EQ(ColourMatrixOf(YUV_SPACE_BT601_SCALED).fBlueU, 1.7324f);
}

TEST(ColourMatrix, UnknownSpacesAreBT601)
{
    for (const int nSpace : {0, -1, 5, 6, std::numeric_limits<int>::max()})
        EXPECT_EQ(&ColourMatrixOf(static_cast<EYUVSpace>(nSpace)), &ColourMatrixOf(YUV_SPACE_BT601));
}

TEST(ColourMatrix, AdjustmentComesCloseToItsInput)
{
    const SYUVMatrix& rTo = AdjustmentToYUV();
    const SColourMatrix& rBack = AdjustmentToRGB();
    EXPECT_NE(rBack.fRedV, ColourMatrixOf(YUV_SPACE_BT601).fRedV) << "rounded differently";
    for (int i = 0; i < 27; ++i) {
        const float afRGB[3] = {static_cast<float>(i % 3) / 2.0f, static_cast<float>(i / 3 % 3) / 2.0f,
                                static_cast<float>(i / 9) / 2.0f};
        const auto Weigh = [&](const float(&af)[3]) {
            return af[0] * afRGB[0] + af[1] * afRGB[1] + af[2] * afRGB[2];
        };
        const float y = Weigh(rTo.fY);
        const float u = Weigh(rTo.fU);
        const float v = Weigh(rTo.fV);
        // A step of 8 bits is 0.004.
        EXPECT_NEAR(y + rBack.fRedV * v, afRGB[0], 0.006f);
        EXPECT_NEAR(y - rBack.fGreenU * u - rBack.fGreenV * v, afRGB[1], 0.006f);
        EXPECT_NEAR(y + rBack.fBlueU * u, afRGB[2], 0.006f);
    }
}

TEST(EffectiveYUVSpace, ARequestIsTakenAsItIs)
{
    for (int nReported = -1; nReported <= 7; ++nReported) {
        for (int nRequested = 1; nRequested <= 4; ++nRequested)
            EXPECT_EQ(EffectiveYUVSpace(nRequested, nReported), nRequested);
    }
}

TEST(EffectiveYUVSpace, AutomaticFollowsTheFrameUpToThree)
{
    EXPECT_EQ(EffectiveYUVSpace(0, 1), 1);
    EXPECT_EQ(EffectiveYUVSpace(0, 2), 2);
    EXPECT_EQ(EffectiveYUVSpace(0, 3), 3);
    for (const int nReported : {-1, 0, 4, 5, 6, 100})
        EXPECT_EQ(EffectiveYUVSpace(0, nReported), 1) << nReported;
}

TEST(EffectiveYUVSpace, UnknownRequestsAreTheFirstSpace)
{
    for (const int nRequested : {-1, 5, 6, 2147483647})
        EXPECT_EQ(EffectiveYUVSpace(nRequested, 3), 1) << nRequested;
}

TEST(EffectiveYUVRange, LimitedByRequestOrByFrame)
{
    EXPECT_EQ(EffectiveYUVRange(2, 0), 2);
    EXPECT_EQ(EffectiveYUVRange(2, 1), 2);
    EXPECT_EQ(EffectiveYUVRange(0, 2), 2);
}

TEST(EffectiveYUVRange, EverythingElseIsFull)
{
    for (const int nReported : {-1, 0, 1, 3, 4})
        EXPECT_EQ(EffectiveYUVRange(0, nReported), 1) << nReported;
    for (const int nRequested : {-1, 1, 3, 100})
        EXPECT_EQ(EffectiveYUVRange(nRequested, 2), 1) << nRequested;
}
