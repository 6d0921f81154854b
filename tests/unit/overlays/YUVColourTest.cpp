#include "dewarp/records/YUVColour.h"

#include "tests/support/TestFrame.h"

#include <gtest/gtest.h>

namespace
{

const EYUVSpace SPACES[] = {YUV_SPACE_BT601, YUV_SPACE_BT709, YUV_SPACE_BT2020, YUV_SPACE_BT601_SCALED};

} // namespace

TEST(YUVColour, ShowsTheColourItWasMadeFrom)
{
    for (const EYUVSpace eSpace : SPACES)
        for (const EYUVRange eRange : {YUV_RANGE_FULL, YUV_RANGE_LIMITED})
            for (unsigned int nRed = 0; nRed < 256; nRed += 51)
                for (unsigned int nGreen = 0; nGreen < 256; nGreen += 51)
                    for (unsigned int nBlue = 0; nBlue < 256; nBlue += 51) {
                        const unsigned int nYUV =
                            ConvertColourToYUV(nRed << 24 | nGreen << 16 | nBlue << 8 | 0x37, eSpace, eRange);
                        const FColour aShown =
                            ColourOfYUV({static_cast<int>(nYUV >> 24), static_cast<int>(nYUV >> 16 & 255),
                                         static_cast<int>(nYUV >> 8 & 255)},
                                        eSpace, eRange == YUV_RANGE_LIMITED);
                        // Half a step of chroma counts up to 2.15 times, half a step of luma 1.16 times; the
                        // scaled space's red and blue lie beyond the end of its chroma.
                        const double fStep = (eSpace == YUV_SPACE_BT601_SCALED ? 6.0 : 1.7) / 255.0;
                        EXPECT_NEAR(aShown[0], nRed / 255.0, fStep) << std::hex << nYUV;
                        EXPECT_NEAR(aShown[1], nGreen / 255.0, fStep) << std::hex << nYUV;
                        EXPECT_NEAR(aShown[2], nBlue / 255.0, fStep) << std::hex << nYUV;
                        EXPECT_EQ(nYUV & 255, 0x37u);
                    }
}

TEST(YUVColour, GreysHaveChromaInTheMiddle)
{
    for (const EYUVSpace eSpace : SPACES) {
        EXPECT_EQ(ConvertColourToYUV(0x000000FF, eSpace, YUV_RANGE_FULL), 0x008080FFu);
        EXPECT_EQ(ConvertColourToYUV(0xFFFFFFFF, eSpace, YUV_RANGE_FULL), 0xFF8080FFu);
        EXPECT_EQ(ConvertColourToYUV(0x00000080, eSpace, YUV_RANGE_LIMITED), 0x10808080u);
        EXPECT_EQ(ConvertColourToYUV(0xFFFFFF00, eSpace, YUV_RANGE_LIMITED), 0xEB808000u);
    }
}

TEST(YUVColour, TheWayBackIsTheViewsOwn)
{
    for (const EYUVSpace eSpace : SPACES)
        for (const EYUVRange eRange : {YUV_RANGE_FULL, YUV_RANGE_LIMITED})
            for (unsigned int i = 0; i < 6 * 6 * 6; ++i) {
                const unsigned int y = i % 6 * 51;
                const unsigned int u = i / 6 % 6 * 51;
                const unsigned int v = i / 36 * 51;
                const unsigned int nColour =
                    ConvertYUVToColour(y << 24 | u << 16 | v << 8 | 9, eSpace, eRange);
                const FColour aExpected =
                    ColourOfYUV({static_cast<int>(y), static_cast<int>(u), static_cast<int>(v)}, eSpace,
                                eRange == YUV_RANGE_LIMITED);
                for (unsigned int k = 0; k < 3; ++k)
                    EXPECT_NEAR(nColour >> (24 - 8 * k) & 255, aExpected[k] * 255.0, 0.51) << y << u << v;
                EXPECT_EQ(nColour & 255, 9u);
            }
}

TEST(YUVColour, UnknownSpacesAndRangesAreBT601AndFull)
{
    const unsigned int nRed = 0xFF0000FF;
    const unsigned int nExpected = ConvertColourToYUV(nRed, YUV_SPACE_BT601, YUV_RANGE_FULL);
    // Red of BT.601: 0.299 of luma, V at its upper end.
    EXPECT_EQ(nExpected >> 24, 76u);
    EXPECT_EQ(nExpected >> 8 & 255, 255u);
    EXPECT_EQ(ConvertColourToYUV(nRed, YUV_SPACE_AUTO, YUV_RANGE_AUTO), nExpected);
    EXPECT_EQ(ConvertColourToYUV(nRed, static_cast<EYUVSpace>(6), static_cast<EYUVRange>(4)), nExpected);
    EXPECT_NE(ConvertColourToYUV(nRed, YUV_SPACE_BT709, YUV_RANGE_AUTO), nExpected);
    EXPECT_NE(ConvertColourToYUV(nRed, YUV_SPACE_BT601, YUV_RANGE_LIMITED), nExpected);
}
