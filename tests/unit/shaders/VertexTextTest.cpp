#include "dewarp/shaders/VertexText.h"

#include "GoldenTexts.h"

#include <gtest/gtest.h>

namespace
{

const char* const pXLine = "   v_TexCoordinate.x = 1.0 - v_TexCoordinate.x; \n";
const char* const pYLine = "   v_TexCoordinate.y = 1.0 - v_TexCoordinate.y; \n";

std::string Text(int nRotation, bool bHorizontal, bool bVertical)
{
    SVertexTextInput sInput;
    sInput.nRotation = nRotation;
    sInput.bFlipHorizontal = bHorizontal;
    sInput.bFlipVertical = bVertical;
    return VertexText(sInput);
}

bool Contains(const std::string& strText, const char* pPart)
{
    return strText.find(pPart) != std::string::npos;
}

} // namespace

TEST(VertexText, EveryFlipAndRotationIsTheGoldenText)
{
    const std::vector<SGoldenCase> vCases = GoldenCases("vertex");
    ASSERT_EQ(vCases.size(), 6u * 8u);
    for (const SGoldenCase& sCase : vCases) {
        SVertexTextInput sInput;
        sInput.nRotation = sCase.Number(0);
        sInput.bFlipHorizontal = sCase.Flag(1);
        sInput.bFlipVertical = sCase.Flag(2);
        sInput.bInvertY = sCase.Flag(3);
        EXPECT_EQ(VertexText(sInput), sCase.strText) << sCase.strKey;
    }
}

TEST(VertexText, WithoutFlipsTheCoordinateIsHandedOn)
{
    EXPECT_EQ(VertexText(SVertexTextInput()), "#version 310 es            \n"
                                              "uniform mat4 uMVPMatrix;   \n"
                                              "in vec4 vPosition;   \n"
                                              "in vec2 a_TexCoordinate; \n"
                                              "out vec2 v_TexCoordinate;   \n"
                                              "void main()                  \n"
                                              "{                            \n"
                                              "   v_TexCoordinate = a_TexCoordinate; \n"
                                              "   gl_Position = uMVPMatrix * vPosition; \n"
                                              "}                            \n");
}

TEST(VertexText, HorizontalFlipMirrorsYOnAQuarterTurn)
{
    EXPECT_TRUE(Contains(Text(0, true, false), pXLine));
    EXPECT_FALSE(Contains(Text(0, true, false), pYLine));
    EXPECT_FALSE(Contains(Text(90, true, false), pXLine));
    EXPECT_TRUE(Contains(Text(90, true, false), pYLine));
}

TEST(VertexText, BothFlipsMirrorXFirst)
{
    const std::string strText = Text(270, true, true);
    ASSERT_TRUE(Contains(strText, pXLine));
    ASSERT_TRUE(Contains(strText, pYLine));
    EXPECT_LT(strText.find(pXLine), strText.find(pYLine));
}

TEST(VertexText, OddRotationsCountAsQuarterTurns)
{
    EXPECT_EQ(Text(45, true, false), Text(90, true, false));
    EXPECT_EQ(Text(360, false, true), Text(90, false, true));
    EXPECT_NE(Text(45, true, false), Text(0, true, false));
}

TEST(VertexText, InvertedTargetsAreTheLastStatement)
{
    SVertexTextInput sInput;
    const std::string strPlain = VertexText(sInput);
    sInput.bInvertY = true;
    const std::string strEnd = "}                            \n";
    EXPECT_EQ(VertexText(sInput), strPlain.substr(0, strPlain.size() - strEnd.size()) +
                                      "   gl_Position.y = -1.0 * gl_Position.y; \n" + strEnd);
}
