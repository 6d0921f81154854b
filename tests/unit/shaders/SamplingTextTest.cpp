#include "dewarp/shaders/SamplingText.h"

#include "dewarp/shaders/FragmentText.h"
#include "dewarp/shaders/YUVTargetText.h"

#include <gtest/gtest.h>

namespace
{

bool Contains(const std::string& strText, const std::string& strPart)
{
    return strText.find(strPart) != std::string::npos;
}

SSamplingTextInput InputOf(ESampling eSampling, bool bMinification, bool bOverlay)
{
    SSamplingTextInput sInput;
    sInput.eSampling = eSampling;
    sInput.bMinification = bMinification;
    sInput.bInputOverlay = bOverlay;
    return sInput;
}

const int FORMATS[] = {IMAGE_FORMAT_RGB24,   IMAGE_FORMAT_BGR24,  IMAGE_FORMAT_NV12,  IMAGE_FORMAT_NV21,
                       IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_BGRA32};

} // namespace

TEST(SamplingText, WhatTheFilterDoesNeedsNone)
{
    for (const bool bOverlay : {false, true}) {
        for (const ESampling eSampling : {SAMPLING_BY_TYPE, SAMPLING_NEAREST, SAMPLING_LINEAR}) {
            EXPECT_EQ(SamplingText(InputOf(eSampling, false, bOverlay)), "");
            EXPECT_EQ(SamplingStartText(InputOf(eSampling, false, bOverlay)), "");
            EXPECT_NE(SamplingText(InputOf(eSampling, true, bOverlay)), "");
        }
    }
    SSamplingTextInput sLinear = InputOf(SAMPLING_NEAREST, false, false);
    sLinear.bExternal = true;
    sLinear.nWidth = 640;
    sLinear.nHeight = 480;
    EXPECT_TRUE(Contains(SamplingText(sLinear), "return ivec2(640, 480);"));
    sLinear.eSampling = SAMPLING_LINEAR;
    EXPECT_EQ(SamplingText(sLinear), "");
}

TEST(SamplingText, PlainFragmentTextsAreTheSameWithEverySetting)
{
    for (const int nFormat : FORMATS) {
        SFragmentTextInput sInput;
        sInput.nFormat = nFormat;
        const std::string strPlain = FragmentText(sInput);
        for (const ESampling eSampling : {SAMPLING_NEAREST, SAMPLING_LINEAR}) {
            sInput.eSampling = eSampling;
            EXPECT_EQ(FragmentText(sInput), strPlain);
        }
    }
    EXPECT_EQ(YUVTargetFragmentText(true, true, "", "", {SAMPLING_LINEAR, false, 0, 0}),
              YUVTargetFragmentText(true, true, ""));
}

TEST(SamplingText, EveryPlaneIsTakenByTheFunction)
{
    for (const int nFormat : FORMATS) {
        for (const bool bOverlay : {false, true}) {
            for (const bool bMinification : {false, true}) {
                SFragmentTextInput sInput;
                sInput.nFormat = nFormat;
                sInput.bInputOverlay = bOverlay;
                sInput.eSampling = SAMPLING_CUBIC;
                sInput.bMinification = bMinification;
                const std::string strText = FragmentText(sInput);
                const std::string strMain = strText.substr(strText.find("void main()"));
                EXPECT_TRUE(Contains(strMain, "sampleFrame(sampler"));
                EXPECT_TRUE(Contains(strText, "in highp vec2 v_TexCoordinate;"));
                for (const char* pPlane : {"samplerRGB", "samplerY", "samplerUV", "samplerU", "samplerV"})
                    EXPECT_FALSE(Contains(strMain, std::string("texture(") + pPlane + ",")) << strMain;
                // What lies over the frame is sampled as ever.
                EXPECT_EQ(Contains(strMain, "texture(samplerInputOverlay, v_TexCoordinate)"), bOverlay);
                EXPECT_EQ(Contains(strText, "sampleClear("), bOverlay);
                EXPECT_EQ(Contains(strMain, "dFdx(v_TexCoordinate)"), bMinification);
            }
        }
    }
}

TEST(SamplingText, QuantisersAreSampledAsEver)
{
    SFragmentTextInput sInput;
    sInput.nFormat = IMAGE_FORMAT_YUV420P;
    sInput.bQPTextures = true;
    sInput.eSampling = SAMPLING_LANCZOS;
    const std::string strText = FragmentText(sInput);
    EXPECT_TRUE(Contains(strText, "texture(samplerQP, v_TexCoordinate)"));
    EXPECT_TRUE(Contains(strText, "texture(samplerMBType, v_TexCoordinate)"));
}

TEST(SamplingText, BothChromaChannelsAreTakenAtOnce)
{
    const std::string strText = SampledFetches("   u = texture(samplerUV, v_TexCoordinate).r - 0.5;\n"
                                               "   v = texture(samplerUV, v_TexCoordinate).a - 0.5;\n");
    EXPECT_EQ(strText, "   highp vec4 sampledUV = sampleFrame(samplerUV, v_TexCoordinate);\n"
                       "   u = sampledUV.r - 0.5;\n"
                       "   v = sampledUV.a - 0.5;\n");
}

TEST(SamplingText, FootprintsAreTakenBeforePixelsAreDiscarded)
{
    const std::string strText =
        YUVTargetFragmentText(false, false, "   discard;\n", "", {SAMPLING_LINEAR, true, 0, 0});
    EXPECT_LT(strText.find("dFdx(v_TexCoordinate)"), strText.find("discard;"));
    EXPECT_TRUE(Contains(strText, "sampleFrame(__samplerExternal2DY2YEXT plane"));
    EXPECT_TRUE(Contains(strText, "vec4 yuvTex = sampleFrame(uTexture, v_TexCoordinate);"));
}

TEST(SamplingText, TapsAreSixteenOrThirtySix)
{
    EXPECT_TRUE(Contains(SamplingText(InputOf(SAMPLING_CUBIC, false, false)), "const int taps = 4;"));
    EXPECT_TRUE(Contains(SamplingText(InputOf(SAMPLING_LANCZOS, false, false)), "const int taps = 6;"));
    EXPECT_TRUE(Contains(SamplingText(InputOf(SAMPLING_LANCZOS, false, false)), "before = 2.0;"));
}
