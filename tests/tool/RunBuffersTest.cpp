// The way of a camera's frame, beside the way of planes.
#include "ToolRunner.h"

#include <gtest/gtest.h>

namespace
{

const int SIDE = 96;

class RunBuffers : public testing::Test
{
protected:
    TBytes Dewarp(std::vector<std::string> vOptions, const std::string& strInput, bool bBuffers)
    {
        if (bBuffers)
            vOptions.insert(vOptions.begin(), "--buffers");
        return DewarpRaw(m_oFolder, vOptions, strInput);
    }

    CTempFolder m_oFolder;
};

} // namespace

TEST_F(RunBuffers, TheSamePictureComesOutAsFromPlanes)
{
    const std::vector<std::string> aCases[] = {
        {},
        {"--mount", "floor"},
        {"--mount", "wall", "--zoom", "120"},
        {"--view", "quad", "--tilt", "40"},
        {"--view", "fisheye"},
        {"--view", "panorama", "--pan", "40"},
        {"--view", "dual"},
        {"--pan", "30", "--tilt", "50", "--zoom", "100", "--projection", "0.5"},
        {"--view", "fisheye", "--text", "abc", "--text-color", "#3060C0FF", "--text-height", "40"},
        {"--view", "fisheye", "--mask", "10,10 80,12 40,70 #A04020FF"},
    };
    for (const char* pFormat : {"nv12", "nv21", "yuv420p", "rgb24"}) {
        const std::string strInput = m_oFolder.Path(std::string("in.") + pFormat);
        SaveBytes(strInput, MakeRaw(MakeGradient(SIDE, SIDE), pFormat));
        for (const std::vector<std::string>& vCase : aCases) {
            // Every way of drawing with one layout, every layout with one way.
            if (std::string(pFormat) != "nv12" && !vCase.empty())
                continue;
            std::vector<std::string> vOptions = vCase;
            vOptions.insert(vOptions.begin(), {"--size", "160x96", "--raw", std::string(pFormat) + ":96x96"});
            const TBytes vPlanes = Dewarp(vOptions, strInput, false);
            const TBytes vBuffers = Dewarp(vOptions, strInput, true);
            ASSERT_EQ(vPlanes.size(), vBuffers.size());
            int nFar = 0;
            for (std::size_t i = 0; i < vPlanes.size(); i += 4)
                for (std::size_t k = 0; k < 3; k++)
                    nFar += std::abs(vPlanes[i + k] - vBuffers[i + k]) > 6;
            // Edges of text, masks and pictures: chroma of four pixels is one.
            EXPECT_LT(nFar, 160 * 96 * 3 / 20) << pFormat << " " << (vCase.empty() ? "" : vCase[0]) << " "
                                               << (vCase.empty() ? "" : vCase[1]);
        }
    }
}

TEST_F(RunBuffers, ColoursKeepTheirSpaceAndRange)
{
    const std::string strInput = m_oFolder.Path("in.rgb24");
    SaveBytes(strInput, MakeRaw(MakeQuarters(SIDE, SIDE), "rgb24"));
    for (const char* pSpace : {"bt601", "bt709", "bt2020"})
        for (const char* pRange : {"full", "limited"}) {
            const TBytes vRows = Dewarp(
                {"--raw", "rgb24:96x96", "--view", "fisheye", "--yuv-space", pSpace, "--yuv-range", pRange},
                strInput, true);
            const SColor sRed = GetPixel(vRows, SIDE, 24, 24);
            const SColor sBlue = GetPixel(vRows, SIDE, 24, 72);
            const SColor sWhite = GetPixel(vRows, SIDE, 72, 72);
            EXPECT_GE(sRed.nRed, 250) << pSpace << pRange;
            EXPECT_LE(sRed.nGreen + sRed.nBlue, 8) << pSpace << pRange;
            EXPECT_GE(sBlue.nBlue, 250) << pSpace << pRange;
            EXPECT_LE(sBlue.nRed + sBlue.nGreen, 8) << pSpace << pRange;
            EXPECT_GE(sWhite.nRed + sWhite.nGreen + sWhite.nBlue, 755) << pSpace << pRange;
        }
}

TEST_F(RunBuffers, OddSizesAndOverlaysAreDrawn)
{
    const std::string strInput = m_oFolder.Path("in.rgb24");
    const std::string strOverlay = m_oFolder.Path("overlay.png");
    SaveBytes(strInput, MakeRaw(MakeGradient(95, 77), "rgb24"));
    SavePNGWithAlpha(strOverlay, MakeQuarters(40, 40), 128);
    for (const char* pOption : {"--input-overlay", "--output-overlay"}) {
        const std::vector<std::string> vOptions = {"--raw",  "rgb24:95x77", "--view", "fisheye",
                                                   "--size", "95x77",       pOption,  strOverlay};
        const TBytes vPlanes = Dewarp(vOptions, strInput, false);
        const TBytes vBuffers = Dewarp(vOptions, strInput, true);
        ASSERT_EQ(vPlanes.size(), vBuffers.size());
        for (const int x : {20, 75})
            for (const int y : {15, 60}) {
                const SColor sPlanes = GetPixel(vPlanes, 95, x, y);
                const SColor sBuffers = GetPixel(vBuffers, 95, x, y);
                EXPECT_NEAR(sPlanes.nRed, sBuffers.nRed, 5) << pOption << x << " " << y;
                EXPECT_NEAR(sPlanes.nGreen, sBuffers.nGreen, 5) << pOption << x << " " << y;
                EXPECT_NEAR(sPlanes.nBlue, sBuffers.nBlue, 5) << pOption << x << " " << y;
            }
    }
}

TEST_F(RunBuffers, OptionsWithoutEffectAreNoted)
{
    const std::string strInput = m_oFolder.Path("in.png");
    SavePNG(strInput, MakeGradient(SIDE, SIDE));
    const SToolRun sRun = RunTool({"--buffers", "--lens", "ideal", "--flip", "h", "--gain", "1:1",
                                   "--interpolation", "nearest", strInput, m_oFolder.Path("out.png")});
    EXPECT_EQ(sRun.nStatus, 0) << sRun.strErrors;
    EXPECT_EQ(CountLines(sRun.strErrors), 3) << sRun.strErrors;
    for (const char* pOption : {"--flip", "--gain", "--interpolation nearest"})
        EXPECT_NE(sRun.strErrors.find(std::string(pOption) + " has no effect"), std::string::npos);
}
