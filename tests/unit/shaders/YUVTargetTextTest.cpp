#include "dewarp/shaders/YUVTargetText.h"

#include "GoldenTexts.h"

#include <gtest/gtest.h>

TEST(YUVTargetText, VertexTextsAreTheGoldenTexts)
{
    const std::vector<SGoldenCase> vCases = GoldenCases("yuvvertex");
    ASSERT_EQ(vCases.size(), 2u);
    for (const SGoldenCase& sCase : vCases)
        EXPECT_EQ(YUVTargetVertexText(sCase.Flag(0)), sCase.strText) << sCase.strKey;
}

TEST(YUVTargetText, FragmentTextsAreTheGoldenTexts)
{
    const std::vector<SGoldenCase> vCases = GoldenCases("yuvfragment");
    ASSERT_EQ(vCases.size(), 4u);
    for (const SGoldenCase& sCase : vCases)
        EXPECT_EQ(YUVTargetFragmentText(sCase.Flag(0), sCase.Flag(1), pGoldenDiscard), sCase.strText)
            << sCase.strKey;
}

TEST(YUVTargetText, OnlyTheTargetIsTurnedUpsideDown)
{
    const char* const pLine = "   gl_Position.y = -1.0 * gl_Position.y; \n";
    EXPECT_NE(YUVTargetVertexText(false).find(pLine), std::string::npos);
    EXPECT_EQ(YUVTargetVertexText(true).find(pLine), std::string::npos);
}

TEST(YUVTargetText, OutputFollowsTheTarget)
{
    EXPECT_NE(YUVTargetFragmentText(true, false, "").find("\nout vec4 fragColor; \n"), std::string::npos);
    EXPECT_NE(YUVTargetFragmentText(false, false, "").find("\nlayout (yuv) out vec4 fragColor; \n"),
              std::string::npos);
}

TEST(YUVTargetText, DiscardStandsBeforeTheFirstSample)
{
    const std::string strText = YUVTargetFragmentText(false, true, "   discard;\n");
    EXPECT_NE(strText.find("void main()\n{\n   discard;\n   vec4 yuvTex = texture("), std::string::npos);
}
