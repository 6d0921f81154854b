#include "dewarp/gl/SShaderProperties.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace
{

struct SChange
{
    const char* pName;
    std::function<void(SShaderProperties&)> change;
};

// One of each pair set to a value that its partner does not have.
const SChange TRIGGERS[] = {
    {"reload forced", [](SShaderProperties& s) { s.bForceReload = true; }},
    {"texture rows requested", [](SShaderProperties& s) { s.bTexCoordClipRequested = true; }},
    {"texture rows in force", [](SShaderProperties& s) { s.bTexCoordClip = true; }},
    {"clip plane 0 requested", [](SShaderProperties& s) { s.anClipPlanesRequested[0] = 0; }},
    {"clip plane 1 requested", [](SShaderProperties& s) { s.anClipPlanesRequested[1] = 959; }},
    {"clip plane 2 requested", [](SShaderProperties& s) { s.anClipPlanesRequested[2] = 0; }},
    {"clip plane 3 requested", [](SShaderProperties& s) { s.anClipPlanesRequested[3] = 539; }},
    {"clip plane 0 in force", [](SShaderProperties& s) { s.anClipPlanes[0] = 0; }},
    {"clip plane 1 in force", [](SShaderProperties& s) { s.anClipPlanes[1] = 959; }},
    {"clip plane 2 in force", [](SShaderProperties& s) { s.anClipPlanes[2] = 0; }},
    {"clip plane 3 in force", [](SShaderProperties& s) { s.anClipPlanes[3] = 539; }},
    {"gain requested", [](SShaderProperties& s) { s.bGainRequested = true; }},
    {"gain in force", [](SShaderProperties& s) { s.bGain = true; }},
    {"luma gain requested", [](SShaderProperties& s) { s.fLumaGainRequested = 1.1766f; }},
    {"luma gain in force", [](SShaderProperties& s) { s.fLumaGain = 1.0f; }},
    {"chroma gain requested", [](SShaderProperties& s) { s.fChromaGainRequested = 2.0000002f; }},
    {"chroma gain in force", [](SShaderProperties& s) { s.fChromaGain = 1.0f; }},
    {"space requested", [](SShaderProperties& s) { s.sYUV2RGBRequested.eSpace = YUV_SPACE_BT709; }},
    {"range requested", [](SShaderProperties& s) { s.sYUV2RGBRequested.eRange = YUV_RANGE_LIMITED; }},
    {"luma minimum requested", [](SShaderProperties& s) { s.sYUV2RGBRequested.nLumaMin = 0; }},
    {"luma maximum requested", [](SShaderProperties& s) { s.sYUV2RGBRequested.nLumaMax = 255; }},
    {"chroma minimum requested", [](SShaderProperties& s) { s.sYUV2RGBRequested.nChromaMin = 0; }},
    {"conversion in force", [](SShaderProperties& s) { s.sYUV2RGB.nChromaMin = 17; }},
    {"depth requested", [](SShaderProperties& s) { s.fClipValueRequested = 0.475f; }},
    {"depth in force", [](SShaderProperties& s) { s.fClipValue = 0.475f; }},
    {"overlay present", [](SShaderProperties& s) { s.bInputOverlay = true; }},
    {"overlay in the text", [](SShaderProperties& s) { s.bInputOverlayInShader = true; }},
    {"horizontal flip requested", [](SShaderProperties& s) { s.bFlipHorizontalRequested = true; }},
    {"horizontal flip in force", [](SShaderProperties& s) { s.bFlipHorizontal = true; }},
    {"vertical flip requested", [](SShaderProperties& s) { s.bFlipVerticalRequested = true; }},
    {"vertical flip in force", [](SShaderProperties& s) { s.bFlipVertical = true; }},
    {"not a number",
     [](SShaderProperties& s) {
         s.fLumaGain = s.fLumaGainRequested = std::numeric_limits<float>::quiet_NaN();
     }},
};

// Both of a pair, and what has no partner.
const SChange QUIET[] = {
    {"texture rows", [](SShaderProperties& s) { s.bTexCoordClip = s.bTexCoordClipRequested = true; }},
    {"clip planes",
     [](SShaderProperties& s) {
         for (int i = 0; i < 4; ++i)
             s.anClipPlanes[i] = s.anClipPlanesRequested[i] = 10 + i;
     }},
    {"gain", [](SShaderProperties& s) { s.bGain = s.bGainRequested = true; }},
    {"luma gain", [](SShaderProperties& s) { s.fLumaGain = s.fLumaGainRequested = 3.0f; }},
    {"chroma gain", [](SShaderProperties& s) { s.fChromaGain = s.fChromaGainRequested = 3.0f; }},
    {"conversion",
     [](SShaderProperties& s) {
         s.sYUV2RGB.eSpace = s.sYUV2RGBRequested.eSpace = YUV_SPACE_BT2020;
         s.sYUV2RGB.nLumaMin = s.sYUV2RGBRequested.nLumaMin = 1;
     }},
    {"depth", [](SShaderProperties& s) { s.fClipValue = s.fClipValueRequested = 0.5f; }},
    {"overlay", [](SShaderProperties& s) { s.bInputOverlay = s.bInputOverlayInShader = true; }},
    {"horizontal flip", [](SShaderProperties& s) { s.bFlipHorizontal = s.bFlipHorizontalRequested = true; }},
    {"vertical flip", [](SShaderProperties& s) { s.bFlipVertical = s.bFlipVerticalRequested = true; }},
    {"quantiser textures", [](SShaderProperties& s) { s.bQPTextures = true; }},
    {"texts", [](SShaderProperties& s) { s.strVertexShader = s.strFragmentShader = "x"; }},
    {"names", [](SShaderProperties& s) { s.nProgram = s.nVertexShader = s.nFragmentShader = 7; }},
    {"locations", [](SShaderProperties& s) { s.nPositionLocation = s.nMVPMatrixLocation = 3; }},
    {"zeros of both signs",
     [](SShaderProperties& s) {
         s.fLumaGain = s.fChromaGain = 0.0f;
         s.fLumaGainRequested = s.fChromaGainRequested = -0.0f;
         s.fClipValue = 0.0f;
         s.fClipValueRequested = -0.0f;
     }},
};

} // namespace

TEST(SShaderProperties, StartsWithoutProgramAndInAgreement)
{
    const SShaderProperties sShader;
    EXPECT_TRUE(sShader.strVertexShader.empty());
    EXPECT_TRUE(sShader.strFragmentShader.empty());
    EXPECT_EQ(sShader.nVertexShader, 0u);
    EXPECT_EQ(sShader.nFragmentShader, 0u);
    EXPECT_EQ(sShader.nProgram, 0u);
    for (const int nLocation :
         {sShader.nPositionLocation, sShader.nScreenSizeLocation, sShader.nColorLocation,
          sShader.nTexCoordLocation, sShader.nMVPMatrixLocation, sShader.nMultLocation,
          sShader.nPosYMultLocation, sShader.nSampler0Location, sShader.nSampler1Location})
        EXPECT_EQ(nLocation, -1);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(sShader.anClipPlanes[i], -1);
        EXPECT_EQ(sShader.anClipPlanesRequested[i], -1);
    }
    EXPECT_EQ(sShader.fClipValue, 0.0f);
    EXPECT_EQ(sShader.fLumaGain, 1.1765f);
    EXPECT_EQ(sShader.fChromaGain, 2.0f);
    EXPECT_FALSE(sShader.bGain);
    EXPECT_FALSE(sShader.bInputOverlay);
    EXPECT_FALSE(sShader.bQPTextures);
    EXPECT_FALSE(sShader.bForceReload);
    EXPECT_FALSE(sShader.ShouldReloadShaders());
}

TEST(SShaderProperties, EachDifferenceAloneReloads)
{
    for (const SChange& sChange : TRIGGERS) {
        SShaderProperties sShader;
        sChange.change(sShader);
        EXPECT_TRUE(sShader.ShouldReloadShaders()) << sChange.pName;
    }
}

TEST(SShaderProperties, AgreementDoesNotReload)
{
    SShaderProperties sAll;
    for (const SChange& sChange : QUIET) {
        SShaderProperties sShader;
        sChange.change(sShader);
        sChange.change(sAll);
        EXPECT_FALSE(sShader.ShouldReloadShaders()) << sChange.pName;
    }
    EXPECT_FALSE(sAll.ShouldReloadShaders());
}

TEST(SShaderProperties, TheLumaGainIsTheStatedSingle)
{
    // 1.1765 is 0x3F96978D; a gain computed otherwise would be written differently into the text.
    EXPECT_EQ(SShaderProperties().fLumaGain, 0x1.2d2f1ap+0f);
}

TEST(SShaderProperties, FreeWithoutNamesNeedsNoContext)
{
    SShaderProperties sShader;
    sShader.strVertexShader = "kept";
    sShader.nPositionLocation = 4;
    sShader.Free();
    EXPECT_EQ(sShader.nProgram, 0u);
    EXPECT_EQ(sShader.strVertexShader, "kept");
    EXPECT_EQ(sShader.nPositionLocation, 4);
}
