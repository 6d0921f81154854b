#include "dewarp/shaders/PassTexts.h"

#include "GoldenTexts.h"

#include <gtest/gtest.h>

#include <map>

TEST(PassTexts, EveryPassIsTheGoldenText)
{
    const std::map<std::string, const char*> oTexts = {
        {"pTextureToScreenVertex", PASS_TEXT::pTextureToScreenVertex},
        {"pTextureToScreenFragment", PASS_TEXT::pTextureToScreenFragment},
        {"pTextureToTextureVertex", PASS_TEXT::pTextureToTextureVertex},
        {"pTextureToTextureFragment", PASS_TEXT::pTextureToTextureFragment},
        {"pOutputOverlayVertex", PASS_TEXT::pOutputOverlayVertex},
        {"pOutputOverlayFragment", PASS_TEXT::pOutputOverlayFragment},
        {"pMaskVertex", PASS_TEXT::pMaskVertex},
        {"pMaskFragment", PASS_TEXT::pMaskFragment},
        {"pStringVertex", PASS_TEXT::pStringVertex},
        {"pStringFragment", PASS_TEXT::pStringFragment},
        {"pStringCompositeVertex", PASS_TEXT::pStringCompositeVertex},
    };
    const std::vector<SGoldenCase> vCases = GoldenCases("pass");
    ASSERT_EQ(vCases.size(), oTexts.size());
    for (const SGoldenCase& sCase : vCases)
        EXPECT_EQ(oTexts.at(sCase.vWords.at(0)), sCase.strText) << sCase.strKey;
}

TEST(PassTexts, StringCompositionIsTheGoldenText)
{
    const std::vector<SGoldenCase> vCases = GoldenCases("composite");
    ASSERT_EQ(vCases.size(), 2u);
    for (const SGoldenCase& sCase : vCases)
        EXPECT_EQ(StringCompositeFragmentText(sCase.Flag(0)), sCase.strText) << sCase.strKey;
}

TEST(PassTexts, StringCompositionAsksForYUVOnlyOnTheTarget)
{
    EXPECT_NE(StringCompositeFragmentText(false).find("layout (yuv) out"), std::string::npos);
    EXPECT_EQ(StringCompositeFragmentText(true).find("yuv"), std::string::npos);
    EXPECT_EQ(StringCompositeFragmentText(true).find("YUV"), std::string::npos);
}
