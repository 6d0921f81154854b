#include "platform/DriverTraits.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

/// A driver that knows no YUV targets.
SDriverTraits WithoutYUV()
{
    SDriverTraits sTraits;
    sTraits.bYUVTarget = false;
    return sTraits;
}

/// A target of plain colours on a driver that knows YUV targets.
SDriverTraits PlainTarget()
{
    SDriverTraits sTraits;
    sTraits.bYUVOutput = false;
    return sTraits;
}

SDriverTraits Highp()
{
    SDriverTraits sTraits;
    sTraits.bPreferHighp = true;
    return sTraits;
}

std::string Adapted(const std::string& strText)
{
    return AdaptShaderText(strText, SDriverTraits());
}

const std::string YUV_TEXT = "#version 310 es \n"
                             "#extension GL_EXT_YUV_target : require \n"
                             "precision mediump float;\n"
                             "uniform __samplerExternal2DY2YEXT uTexture;\n"
                             "in vec2 v_TexCoordinate;  \n"
                             "layout (yuv) out vec4 fragColor; \n"
                             "void main() { fragColor = texture(uTexture, v_TexCoordinate); }\n";

const std::string YUV_PASS_TEXT = "#version 310 es            \n"
                                  "#extension GL_EXT_YUV_target : require \n"
                                  " precision mediump float; \n"
                                  "uniform sampler2D samplerInput;\n"
                                  "layout (yuv) out vec4 vOutputColor; \n";

} // namespace

TEST(ShaderDialect, AFreshRecordLacksNothing)
{
    const SDriverTraits sTraits;
    EXPECT_FALSE(sTraits.bKnown);
    EXPECT_TRUE(sTraits.bYUVTarget);
    EXPECT_TRUE(sTraits.bYUVOutput);
    EXPECT_FALSE(sTraits.bPreferHighp);
    for (const std::string& strText : {YUV_TEXT, YUV_PASS_TEXT, std::string("u = (1-a);"), std::string()})
        EXPECT_EQ(PreferredShaderText(strText, sTraits), strText);
}

TEST(ShaderDialect, IntegralNumbersBecomeFloats)
{
    EXPECT_EQ(Adapted("u = mb_type * clamp(qp-0.5, -0.5, 0.5) + (1-mb_type) * u;        \n"),
              "u = mb_type * clamp(qp-0.5, -0.5, 0.5) + (1.0-mb_type) * u;        \n");
    EXPECT_EQ(Adapted("   y = (y-0)/1;      \n   u = u/1;        \n"),
              "   y = (y-0.0)/1.0;      \n   u = u/1.0;        \n");
    EXPECT_EQ(Adapted("if (gl_FragCoord.z<1) discard;"), "if (gl_FragCoord.z<1.0) discard;");
}

TEST(ShaderDialect, FloatsOfAllFormsStay)
{
    EXPECT_EQ(Adapted("a = 0.5 + .5 + 2. + 1e5 + 1e+06 + 1.5e-07 + 1.0f;"), "");
}

TEST(ShaderDialect, NumbersThatAreNoneStay)
{
    EXPECT_EQ(
        Adapted("#version 310 es            \n#extension GL_EXT_2 : require 3\nvec4 v1 = v2.xyzw; mat4 m;\n"),
        "");
    EXPECT_EQ(Adapted("// 1 of 2\n/* 3 */ float a;"), "");
    EXPECT_EQ(Adapted("a = 1u; b = 0x1F; c = 017;"), "");
}

TEST(ShaderDialect, ArraySizesIndicesAndLocationsStay)
{
    EXPECT_EQ(Adapted("layout (location = 2) in vec4 a[3]; b = a[1] * 2;"),
              "layout (location = 2) in vec4 a[3]; b = a[1] * 2.0;");
}

TEST(ShaderDialect, TextsThatCountInIntegersStay)
{
    EXPECT_EQ(Adapted("for (int i = 0; i < 4; ++i) a += 2.0;"), "");
    EXPECT_EQ(Adapted("ivec2 a = ivec2(1, 2);"), "");
    EXPECT_EQ(Adapted("vec4 a = texelFetch(s, p, 0);"), "");
}

TEST(ShaderDialect, APointAfterAnExponentIsDropped)
{
    EXPECT_EQ(Adapted("   y = 1e+06.0 * y;        \n   u = -1e-07.0 * u;        \n"),
              "   y = 1e+06 * y;        \n   u = -1e-07 * u;        \n");
    EXPECT_EQ(Adapted("a = b.r + 1.0;"), "");
}

TEST(ShaderDialect, SubtractingANegativeNumberIsNoDecrement)
{
    EXPECT_EQ(Adapted("   y = (y--0.0784314)/1.2549;      \n"), "   y = (y- -0.0784314)/1.2549;      \n");
    EXPECT_EQ(Adapted("   y = (y--20)/-3;      \n"), "   y = (y- -20.0)/-3.0;      \n");
    EXPECT_EQ(Adapted("a = b-- - c;"), "");
}

TEST(ShaderDialect, WithoutTheExtensionOutputsArePlain)
{
    EXPECT_EQ(PreferredShaderText(YUV_PASS_TEXT, WithoutYUV()), YUV_PASS_TEXT);
    EXPECT_EQ(AdaptShaderText(YUV_PASS_TEXT, WithoutYUV()), "#version 310 es            \n"
                                                            "\n"
                                                            " precision mediump float; \n"
                                                            "uniform sampler2D samplerInput;\n"
                                                            "out vec4 vOutputColor; \n");
}

TEST(ShaderDialect, WithoutTheExtensionSamplersAreExternal)
{
    EXPECT_EQ(AdaptShaderText(YUV_TEXT, WithoutYUV()),
              "#version 310 es \n"
              "#extension GL_OES_EGL_image_external_essl3 : require\n"
              "precision mediump float;\n"
              "uniform samplerExternalOES uTexture;\n"
              "in vec2 v_TexCoordinate;  \n"
              "out vec4 fragColor; \n"
              "void main() { fragColor = texture(uTexture, v_TexCoordinate); }\n");
}

TEST(ShaderDialect, APlainTargetGetsPlainOutputsAtOnce)
{
    // The driver would take the text and fail to draw.
    const std::string strCopy = PreferredShaderText(YUV_TEXT, PlainTarget());
    EXPECT_EQ(strCopy, "#version 310 es \n"
                       "#extension GL_EXT_YUV_target : require \n"
                       "precision mediump float;\n"
                       "uniform __samplerExternal2DY2YEXT uTexture;\n"
                       "in vec2 v_TexCoordinate;  \n"
                       "out vec4 fragColor; \n"
                       "void main() { fragColor = texture(uTexture, v_TexCoordinate); }\n");
    EXPECT_EQ(AdaptShaderText(YUV_TEXT, PlainTarget()), ""); // has been tried
    EXPECT_EQ(PreferredShaderText("out vec4 a;\n", PlainTarget()), "out vec4 a;\n");
}

TEST(ShaderDialect, HighpIsPreferredWhereItIsFaster)
{
    const std::string strText = "precision mediump float; \nuniform sampler2D s;\nvoid main() {}\n";
    EXPECT_EQ(PreferredShaderText(strText, Highp()),
              "precision highp float; precision highp sampler2D; \nuniform sampler2D s;\nvoid main() {}\n");
    EXPECT_EQ(AdaptShaderText(strText, Highp()), ""); // has been tried
}

TEST(ShaderDialect, PreferredCopiesAreAdaptedToo)
{
    SDriverTraits sTraits = WithoutYUV();
    sTraits.bPreferHighp = true;
    EXPECT_EQ(PreferredShaderText(YUV_TEXT, sTraits),
              "#version 310 es \n"
              "#extension GL_OES_EGL_image_external_essl3 : require\n"
              "precision highp float; precision highp sampler2D; precision highp samplerExternalOES;\n"
              "uniform samplerExternalOES uTexture;\n"
              "in vec2 v_TexCoordinate;  \n"
              "out vec4 fragColor; \n"
              "void main() { fragColor = texture(uTexture, v_TexCoordinate); }\n");
    EXPECT_EQ(PreferredShaderText("precision lowp float; a = 1 - b;", Highp()),
              "precision highp float; precision highp sampler2D; a = 1.0 - b;");
}

TEST(ShaderDialect, TextsWithoutStatedPrecisionAreNotTouchedForSpeed)
{
    const std::string strVertex = "#version 310 es            \nin vec4 vPosition;   \n";
    EXPECT_EQ(PreferredShaderText(strVertex, Highp()), strVertex);
    const std::string strHighp = "precision highp float; a = 1.0;";
    EXPECT_EQ(PreferredShaderText(strHighp, Highp()), strHighp);
}

TEST(ShaderDialect, NothingToReplaceGivesNothing)
{
    EXPECT_EQ(Adapted(""), "");
    EXPECT_EQ(Adapted("#version 310 es\nvoid main() { a = 1.0; }\n"), "");
    EXPECT_EQ(AdaptShaderText("out vec4 a;", WithoutYUV()), "");
}

TEST(ShaderDialect, LinesKeepTheirNumbers)
{
    SDriverTraits sTraits = WithoutYUV();
    for (const bool bHighp : {false, true}) {
        sTraits.bPreferHighp = bHighp;
        for (const std::string& strText : {YUV_TEXT, YUV_PASS_TEXT}) {
            const std::string strCopy =
                bHighp ? PreferredShaderText(strText, sTraits) : AdaptShaderText(strText, sTraits);
            EXPECT_EQ(std::count(strCopy.begin(), strCopy.end(), '\n'),
                      std::count(strText.begin(), strText.end(), '\n'));
        }
    }
}

TEST(ShaderDialect, ACopyNeedsNoSecondAdaption)
{
    for (const std::string& strText :
         {YUV_TEXT, YUV_PASS_TEXT, std::string("y = (y--0)/1; u = 1e+06.0 * u;")}) {
        const std::string strCopy = AdaptShaderText(strText, WithoutYUV());
        ASSERT_NE(strCopy, "");
        EXPECT_EQ(AdaptShaderText(strCopy, WithoutYUV()), "");
    }
}
