#include "dewarp/records/SYUV2RGBConversionParams.h"

#include <gtest/gtest.h>

TEST(SYUV2RGBConversionParams, StartsAutomaticWithTheUsualLevels)
{
    const SYUV2RGBConversionParams sParams;
    EXPECT_EQ(sParams.eSpace, 0);
    EXPECT_EQ(sParams.eRange, 0);
    EXPECT_EQ(sParams.nLumaMin, 16);
    EXPECT_EQ(sParams.nLumaMax, 235);
    EXPECT_EQ(sParams.nChromaMin, 16);
}

TEST(SYUV2RGBConversionParams, EachFieldAloneMakesUnequal)
{
    const SYUV2RGBConversionParams sBase;
    EXPECT_TRUE(sBase == SYUV2RGBConversionParams());
    SYUV2RGBConversionParams aChanged[5];
    aChanged[0].eSpace = YUV_SPACE_BT709;
    aChanged[1].eRange = YUV_RANGE_LIMITED;
    aChanged[2].nLumaMin = 0;
    aChanged[3].nLumaMax = 255;
    aChanged[4].nChromaMin = 0;
    for (const SYUV2RGBConversionParams& sChanged : aChanged)
        EXPECT_FALSE(sBase == sChanged);
}
