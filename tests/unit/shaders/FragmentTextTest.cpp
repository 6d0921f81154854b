#include "dewarp/shaders/FragmentText.h"

#include "GoldenTexts.h"

#include <gtest/gtest.h>

namespace
{

bool Contains(const std::string& strText, const char* pPart)
{
    return strText.find(pPart) != std::string::npos;
}

SFragmentTextInput Format(int nFormat)
{
    SFragmentTextInput sInput;
    sInput.nFormat = nFormat;
    return sInput;
}

} // namespace

TEST(FragmentText, EveryCombinationIsTheGoldenText)
{
    const std::vector<SGoldenCase> vCases = GoldenCases("fragment");
    // Formats, gain, overlay, quantiser, spaces, ranges.
    ASSERT_EQ(vCases.size(), 13u * 2u * 2u * 2u * 4u * 2u);
    for (const SGoldenCase& sCase : vCases) {
        SFragmentTextInput sInput = Format(sCase.Number(0));
        sInput.bGain = sCase.Flag(1);
        sInput.bInputOverlay = sCase.Flag(2);
        sInput.bQPTextures = sCase.Flag(3);
        sInput.nYUVSpace = sCase.Number(4);
        sInput.nYUVRange = sCase.Number(5);
        sInput.strDiscard = pGoldenDiscard;
        EXPECT_EQ(FragmentText(sInput), sCase.strText) << sCase.strKey;
    }
}

TEST(FragmentText, LevelsAreComputedInSinglePrecision)
{
    const std::vector<SGoldenCase> vCases = GoldenCases("levels");
    ASSERT_EQ(vCases.size(), 9u * 3u);
    for (const SGoldenCase& sCase : vCases) {
        SFragmentTextInput sInput = Format(sCase.Number(0));
        sInput.nYUVRange = 2;
        sInput.nLumaMin = sCase.Number(1);
        sInput.nLumaMax = sCase.Number(2);
        sInput.nChromaMin = sCase.Number(3);
        sInput.strDiscard = pGoldenDiscard;
        EXPECT_EQ(FragmentText(sInput), sCase.strText) << sCase.strKey;
    }
}

TEST(FragmentText, GainsAreWrittenWithAPoint)
{
    const std::vector<SGoldenCase> vCases = GoldenCases("gains");
    ASSERT_EQ(vCases.size(), 6u * 5u);
    for (const SGoldenCase& sCase : vCases) {
        SFragmentTextInput sInput = Format(sCase.Number(0));
        sInput.bGain = true;
        sInput.fLumaGain = std::stof(sCase.vWords.at(1));
        sInput.fChromaGain = std::stof(sCase.vWords.at(2));
        sInput.strDiscard = pGoldenDiscard;
        EXPECT_EQ(FragmentText(sInput), sCase.strText) << sCase.strKey;
    }
}

TEST(FragmentText, PlainNV12HoldsNothingElse)
{
    SFragmentTextInput sInput = Format(5);
    sInput.strDiscard = "   discard;\n";
    EXPECT_EQ(FragmentText(sInput), "#version 310 es            \n"
                                    "precision mediump float; \n"
                                    "uniform sampler2D samplerY;\n"
                                    "uniform sampler2D samplerUV;\n"
                                    "in vec2 v_TexCoordinate;  \n"
                                    "out vec4 vOutputColor;     \n"
                                    "void main()\n"
                                    "{\n"
                                    "   discard;\n"
                                    "   float y, u, v; \n"
                                    "   vec4 rgba = vec4(0.0, 0.0, 0.0, 1.0); \n"
                                    "   y = texture(samplerY, v_TexCoordinate).r;        \n"
                                    "   u = texture(samplerUV, v_TexCoordinate).r - 0.5;        \n"
                                    "   v = texture(samplerUV, v_TexCoordinate).a - 0.5;        \n"
                                    "   rgba.r = clamp(y + 1.402 * v, 0.0, 1.0);                    \n"
                                    "   rgba.g = clamp(y - 0.344 * u - 0.714 * v, 0.0, 1.0);      \n"
                                    "   rgba.b = clamp(y + 1.772 * u, 0.0, 1.0);        \n"
                                    "   vOutputColor = rgba;        \n"
                                    "}\n");
}

TEST(FragmentText, LimitedRangeWritesTheUsualLevels)
{
    SFragmentTextInput sInput = Format(5);
    sInput.nYUVRange = 2;
    EXPECT_TRUE(Contains(FragmentText(sInput), "   y = (y-0.0627451)/0.858824;      \n"
                                               "   u = u/0.87451;        \n"
                                               "   v = v/0.87451;        \n"));
}

TEST(FragmentText, IntegralLevelsGetNoPoint)
{
    SFragmentTextInput sInput = Format(5);
    sInput.nYUVRange = 2;
    sInput.nLumaMin = 0;
    sInput.nLumaMax = 255;
    sInput.nChromaMin = 0;
    EXPECT_TRUE(Contains(FragmentText(sInput), "   y = (y-0)/1;      \n"
                                               "   u = u/1;        \n"
                                               "   v = v/1;        \n"));
}

TEST(FragmentText, FullRangeWritesNoLevels)
{
    EXPECT_FALSE(Contains(FragmentText(Format(5)), "   u = u/"));
}

TEST(FragmentText, GainsOfOneAndOneAndAHalf)
{
    SFragmentTextInput sInput = Format(5);
    sInput.bGain = true;
    sInput.fLumaGain = 1.0f;
    sInput.fChromaGain = 1.5f;
    EXPECT_TRUE(Contains(FragmentText(sInput), "   y = 1.0 * y;        \n"
                                               "   u = 1.5 * u;        \n"
                                               "   v = 1.5 * v;        \n"));
}

TEST(FragmentText, GrayNeverCarriesGains)
{
    SFragmentTextInput sInput = Format(9);
    const std::string strPlain = FragmentText(sInput);
    sInput.bGain = true;
    EXPECT_EQ(FragmentText(sInput), strPlain);
}

TEST(FragmentText, AlphaIsMultipliedInOnlyWithoutGains)
{
    for (const int nFormat : {7, 8}) {
        SFragmentTextInput sInput = Format(nFormat);
        EXPECT_TRUE(Contains(FragmentText(sInput), "   rgba.r = rgba.r * rgba.a;        \n"));
        sInput.bGain = true;
        EXPECT_FALSE(Contains(FragmentText(sInput), "* rgba.a;"));
    }
}

TEST(FragmentText, QuantiserShowsInPlanarFramesOnly)
{
    for (const int nFormat : {0, 4, 5, 7, 8, 9, 10}) {
        SFragmentTextInput sInput = Format(nFormat);
        const std::string strPlain = FragmentText(sInput);
        sInput.bQPTextures = true;
        EXPECT_EQ(FragmentText(sInput), strPlain) << nFormat;
    }
    SFragmentTextInput sInput = Format(6);
    sInput.bQPTextures = true;
    EXPECT_TRUE(Contains(FragmentText(sInput), " + (1-mb_type) * u;        \n"));
}

TEST(FragmentText, FormatsThatCannotBeDrawnGiveNoText)
{
    for (const int nFormat : {1, 2, 3, 11, 12, -1, 2147483647}) {
        SFragmentTextInput sInput = Format(nFormat);
        sInput.strDiscard = "   discard;\n";
        sInput.bInputOverlay = true;
        EXPECT_FALSE(HasFragmentText(nFormat)) << nFormat;
        EXPECT_EQ(FragmentText(sInput), "") << nFormat;
    }
    for (const int nFormat : {0, 4, 5, 6, 7, 8, 9, 10}) {
        EXPECT_TRUE(HasFragmentText(nFormat)) << nFormat;
        EXPECT_NE(FragmentText(Format(nFormat)), "") << nFormat;
    }
}

TEST(FragmentText, DefaultsAreThoseOfTheRecords)
{
    const SFragmentTextInput sInput;
    EXPECT_EQ(sInput.nLumaMin, 16);
    EXPECT_EQ(sInput.nLumaMax, 235);
    EXPECT_EQ(sInput.nChromaMin, 16);
    EXPECT_EQ(sInput.fLumaGain, 1.1765f);
    EXPECT_EQ(sInput.fChromaGain, 2.0f);
}

TEST(FragmentText, ReportedScaledSpaceIsNotTaken)
{
    SFragmentTextInput sInput = Format(5);
    sInput.nYUVSpace = EffectiveYUVSpace(0, 4);
    EXPECT_TRUE(Contains(FragmentText(sInput), "1.402 * v"));
    sInput.nYUVSpace = EffectiveYUVSpace(4, 0);
    EXPECT_TRUE(Contains(FragmentText(sInput), "1.3707 * v"));
}
