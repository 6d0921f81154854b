#include "dewarp/shaders/RimText.h"

#include "dewarp/records/Enumerations.h"
#include "dewarp/shaders/FragmentText.h"
#include "dewarp/shaders/YUVTargetText.h"

#include <gtest/gtest.h>

TEST(RimText, NoEllipseGivesNoText)
{
    EXPECT_EQ(RimText(SRimInput()), "");
}

TEST(RimText, TheEllipseStandsInItsFirstLine)
{
    const std::string strText = RimText({0.5f, 0.25f, 3.5f, 2.0f});
    EXPECT_EQ(strText.substr(0, strText.find('\n') + 1),
              "   highp vec2 rimPlace = (v_TexCoordinate - vec2(0.500000000, 0.250000000)) * "
              "vec2(3.500000000, 2.000000000);\n");
}

TEST(RimText, OnlyTextsWithARimAreOfHighPrecision)
{
    SFragmentTextInput sInput;
    sInput.nFormat = IMAGE_FORMAT_NV12;
    const std::string strPlain = FragmentText(sInput);
    EXPECT_EQ(strPlain.find("highp"), std::string::npos);
    sInput.strRim = RimText({0.5f, 0.5f, 2.0f, 2.0f});
    const std::string strRim = FragmentText(sInput);
    EXPECT_NE(strRim.find("in highp vec2 v_TexCoordinate;"), std::string::npos);
    // Fading comes last, after whatever lies over the frame.
    sInput.bInputOverlay = true;
    const std::string strOverlaid = FragmentText(sInput);
    EXPECT_GT(strOverlaid.find("rgba = rgba * rimCover"), strOverlaid.find("overlay.b * overlay.a"));
}

TEST(RimText, GraphicBuffersFadeToBlack)
{
    const std::string strRim = RimText({0.5f, 0.5f, 2.0f, 2.0f});
    EXPECT_NE(YUVTargetFragmentText(false, false, "", strRim)
                  .find("mix(vec4(0.0, 0.5, 0.5, 0.0), yuvTex, rimCover)"),
              std::string::npos);
    EXPECT_NE(YUVTargetFragmentText(true, false, "", strRim).find("yuvTex * rimCover"), std::string::npos);
}
