#include "platform/ShaderTokens.h"

#include <gtest/gtest.h>

namespace
{

/// The pieces as "kind:text", blanks left out.
std::vector<std::string> Pieces(const std::string& strText)
{
    static const char aKinds[] = {'b', 'c', 'd', 'w', 'n', 's'};
    std::vector<std::string> vPieces;
    for (const SShaderToken& sToken : SplitShaderText(strText)) {
        if (sToken.eKind != SHADER_TOKEN_BLANKS)
            vPieces.push_back(std::string(1, aKinds[sToken.eKind]) + ':' + sToken.strText);
    }
    return vPieces;
}

using VPieces = std::vector<std::string>;

} // namespace

TEST(ShaderTokens, WordsNumbersAndSigns)
{
    EXPECT_EQ(Pieces("u = (1-mb_type) * vec4x2;"),
              (VPieces{"w:u", "s:=", "s:(", "n:1", "s:-", "w:mb_type", "s:)", "s:*", "w:vec4x2", "s:;"}));
}

TEST(ShaderTokens, NumbersTakeFractionExponentAndSuffix)
{
    EXPECT_EQ(Pieces("0 12 1.5 .5 2. 1e5 1e+06 1.5E-7 1u 0x1F 1.0f 3e"),
              (VPieces{"n:0", "n:12", "n:1.5", "n:.5", "n:2.", "n:1e5", "n:1e+06", "n:1.5E-7", "n:1u",
                       "n:0x1F", "n:1.0f", "n:3e"}));
}

TEST(ShaderTokens, APointAfterAnExponentStartsANumber)
{
    EXPECT_EQ(Pieces("1e+06.0"), (VPieces{"n:1e+06", "n:.0"}));
}

TEST(ShaderTokens, SelectionsAreNotNumbers)
{
    EXPECT_EQ(Pieces("a.x b3.rgb"), (VPieces{"w:a", "s:.", "w:x", "w:b3", "s:.", "w:rgb"}));
}

TEST(ShaderTokens, DirectivesReachToTheLinesEnd)
{
    EXPECT_EQ(Pieces("#version 310 es  \n  #extension GL_X : require \nfloat a;"),
              (VPieces{"d:#version 310 es  ", "d:#extension GL_X : require ", "w:float", "w:a", "s:;"}));
    EXPECT_EQ(Pieces("a # b"), (VPieces{"w:a", "s:#", "w:b"}));
}

TEST(ShaderTokens, CommentsAreOnePiece)
{
    EXPECT_EQ(Pieces("a / b // 1 2\n/* 3\n4 */ c /* 5"),
              (VPieces{"w:a", "s:/", "w:b", "c:// 1 2", "c:/* 3\n4 */", "w:c", "c:/* 5"}));
    EXPECT_EQ(Pieces("/**/#define A\n#define B"), (VPieces{"c:/**/", "d:#define A", "d:#define B"}));
}

TEST(ShaderTokens, PiecesJoinToTheText)
{
    for (const std::string strText :
         {"", " ", "\n", "1", "/", "/*", "#", "\xC3\xA9", "a\r\n#b\r\n1.e+", "1e+", "0x"}) {
        EXPECT_EQ(JoinShaderTokens(SplitShaderText(strText)), strText);
    }
    // Any text at all: pseudo-random ones made of the characters that matter.
    const std::string strAlphabet = "01.eE+-/*#\n ax(";
    unsigned int nState = 1;
    for (int i = 0; i < 5000; ++i) {
        std::string strText;
        for (int n = 0; n < 12; ++n) {
            nState = nState * 1664525u + 1013904223u;
            strText += strAlphabet[(nState >> 16) % strAlphabet.size()];
        }
        ASSERT_EQ(JoinShaderTokens(SplitShaderText(strText)), strText);
    }
}
