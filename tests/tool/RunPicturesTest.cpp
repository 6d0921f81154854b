#include "ImageReader.h"
#include "ToolRunner.h"

#include <array>
#include <gtest/gtest.h>

namespace
{

const int SIDE = 64;

/// Red, green, blue of the middle of each quarter: top left, top right, bottom left, bottom right.
std::array<SColor, 4> GetQuarters(const TBytes& vRows)
{
    return {GetPixel(vRows, SIDE, SIDE / 4, SIDE / 4), GetPixel(vRows, SIDE, SIDE * 3 / 4, SIDE / 4),
            GetPixel(vRows, SIDE, SIDE / 4, SIDE * 3 / 4), GetPixel(vRows, SIDE, SIDE * 3 / 4, SIDE * 3 / 4)};
}

/// Letters for the colours of the quarters picture.
std::string GetLetters(const TBytes& vRows)
{
    std::string strLetters;
    for (const SColor& sColor : GetQuarters(vRows)) {
        const bool bRed = sColor.nRed > 200;
        const bool bGreen = sColor.nGreen > 200;
        const bool bBlue = sColor.nBlue > 200;
        strLetters += bRed && bGreen && bBlue ? 'W' : bRed ? 'R' : bGreen ? 'G' : bBlue ? 'B' : '?';
    }
    return strLetters;
}

class RunPictures : public testing::Test
{
protected:
    RunPictures()
    {
        SavePNG(m_strGradient, MakeGradient(SIDE, SIDE));
        SavePNG(m_strQuarters, MakeQuarters(SIDE, SIDE));
    }

    TBytes Dewarp(const std::vector<std::string>& vOptions)
    {
        return DewarpRaw(m_oFolder, vOptions, m_strGradient);
    }

    CTempFolder m_oFolder;
    std::string m_strGradient = m_oFolder.Path("gradient.png");
    std::string m_strQuarters = m_oFolder.Path("quarters.png");
};

} // namespace

TEST_F(RunPictures, TheFisheyeViewIsThePictureItself)
{
    const TBytes vRows = Dewarp({"--view", "fisheye", "--interpolation", "nearest"});
    EXPECT_LE(GetLargestDifference(vRows, MakeRaw(MakeGradient(SIDE, SIDE), "bgra")), 1);
}

TEST_F(RunPictures, FlipsAndTurnsShow)
{
    const std::pair<std::vector<std::string>, const char*> aCases[] = {
        {{}, "RGBW"},
        {{"--flip", "h"}, "GRWB"},
        {{"--flip", "v"}, "BWRG"},
        {{"--flip", "hv"}, "WBGR"},
        {{"--rotation", "90"}, "BRWG"},
        {{"--rotation", "180"}, "WBGR"},
        {{"--rotation", "270"}, "GWRB"},
    };
    for (const auto& [vOptions, pLetters] : aCases) {
        std::vector<std::string> vAll = vOptions;
        vAll.insert(vAll.begin(), {"--view", "fisheye"});
        EXPECT_EQ(GetLetters(DewarpRaw(m_oFolder, vAll, m_strQuarters)), pLetters)
            << (vOptions.empty() ? "" : vOptions[0] + " " + vOptions[1]);
    }
}

TEST_F(RunPictures, EveryRawLayoutGivesTheSamePicture)
{
    const SRGBPicture sPicture = MakeGradient(SIDE, SIDE);
    const std::string strRaw = m_oFolder.Path("frame");
    auto DewarpLayout = [&](const std::string& strFormat, int nStride) {
        SaveBytes(strRaw, MakeRaw(sPicture, strFormat, nStride));
        std::string strLayout = strFormat + ":64x64";
        if (nStride > 0)
            strLayout += ":" + std::to_string(nStride);
        return DewarpRaw(m_oFolder, {"--raw", strLayout, "--size", "96x64"}, strRaw);
    };
    const TBytes vReference = Dewarp({"--size", "96x64"});
    ASSERT_EQ(vReference.size(), 96u * 64u * 4u);
    // Strides that are odd, that are no whole pixels and that are not divisible by 4.
    const std::pair<const char*, int> aExact[] = {{"rgb24", 0},  {"rgb24", 193}, {"rgb24", 198},
                                                  {"bgr24", 0},  {"bgr24", 200}, {"rgba", 0},
                                                  {"rgba", 260}, {"bgra", 0},    {"bgra", 272}};
    for (const auto& [pFormat, nStride] : aExact)
        EXPECT_LE(GetLargestDifference(DewarpLayout(pFormat, nStride), vReference), 1)
            << pFormat << " " << nStride;
    const TBytes vPlanar = DewarpLayout("yuv420p", 0);
    // Rounding to 8 bits of Y, U and V, and coefficients of three decimals: 5 of 255.
    EXPECT_LE(GetLargestDifference(vPlanar, vReference), 5);
    const std::pair<const char*, int> aYUV[] = {{"yuv420p", 72}, {"yuv420p", 65}, {"nv12", 0},  {"nv12", 72},
                                                {"nv12", 67},    {"nv21", 0},     {"nv21", 66}, {"nv21", 79}};
    for (const auto& [pFormat, nStride] : aYUV)
        EXPECT_LE(GetLargestDifference(DewarpLayout(pFormat, nStride), vPlanar), 1)
            << pFormat << " " << nStride;
}

TEST_F(RunPictures, GrayFramesComeOutGray)
{
    SRGBPicture sPicture(SIDE, SIDE);
    for (int y = 0; y < SIDE; y++)
        for (int x = 0; x < SIDE; x++)
            sPicture.Set(x, y, {x * 3 + y, x * 3 + y, x * 3 + y});
    SavePNG(m_oFolder.Path("gray.png"), sPicture);
    SaveBytes(m_oFolder.Path("gray"), MakeRaw(sPicture, "gray", 67));
    const TBytes vGray = DewarpRaw(
        m_oFolder, {"--raw", "gray:64x64:67", "--lens", "ideal", "--size", "64x64"}, m_oFolder.Path("gray"));
    EXPECT_LE(GetLargestDifference(vGray, DewarpRaw(m_oFolder, {"--lens", "ideal", "--size", "64x64"},
                                                    m_oFolder.Path("gray.png"))),
              1);
}

TEST_F(RunPictures, PNGAndRawOutputsHoldTheSamePixels)
{
    const TBytes vRows = Dewarp({"--size", "50x30"});
    ASSERT_EQ(vRows.size(), 50u * 30u * 4u);
    const std::string strOutput = m_oFolder.Path("out.png");
    ASSERT_EQ(RunTool({"--size", "50x30", m_strGradient, strOutput}).nStatus, 0);
    const SFrame sFrame = ReadImage(strOutput);
    ASSERT_EQ(sFrame.nWidth, 50);
    ASSERT_EQ(sFrame.nHeight, 30);
    for (int y = 0; y < 30; y++)
        for (int x = 0; x < 50; x++) {
            const SColor sColor = GetPixel(vRows, 50, x, y);
            const unsigned char* pPixel = sFrame.avPlanes[0].data() + (y * 50 + x) * 3;
            ASSERT_EQ(sColor.nRed, pPixel[0]);
            ASSERT_EQ(sColor.nGreen, pPixel[1]);
            ASSERT_EQ(sColor.nBlue, pPixel[2]);
        }
}

TEST_F(RunPictures, ValuesThatAreNotGivenStayTheViewsOwn)
{
    const std::vector<std::string> vSmall = {"--size", "64x48"};
    auto With = [&](std::vector<std::string> vOptions) {
        vOptions.insert(vOptions.begin(), vSmall.begin(), vSmall.end());
        return Dewarp(vOptions);
    };
    // Ceiling cameras start looking down, wall cameras level and straight ahead.
    EXPECT_EQ(With({"--pan", "40"}), With({"--pan", "40", "--tilt", "0", "--zoom", "180"}));
    EXPECT_EQ(With({"--tilt", "50"}), With({"--pan", "90", "--tilt", "50", "--zoom", "180"}));
    EXPECT_EQ(With({"--zoom", "60"}), With({"--pan", "90", "--tilt", "0", "--zoom", "60"}));
    EXPECT_EQ(With({"--mount", "wall", "--pan", "40"}),
              With({"--mount", "wall", "--pan", "40", "--tilt", "90", "--zoom", "180"}));
    EXPECT_EQ(With({"--mount", "floor", "--zoom", "70"}),
              With({"--mount", "floor", "--pan", "90", "--tilt", "180", "--zoom", "70"}));
    EXPECT_NE(With({"--pan", "40"}), With({}));
    EXPECT_NE(With({"--tilt", "50"}), With({}));
    EXPECT_NE(With({"--zoom", "60"}), With({}));
}

TEST_F(RunPictures, EveryViewAndMountDraws)
{
    for (int nView = 1; nView <= 9; nView++)
        for (const char* pMount : {"ceiling", "floor", "wall"}) {
            const TBytes vRows =
                Dewarp({"--view", std::to_string(nView), "--mount", pMount, "--size", "128x96"});
            ASSERT_EQ(vRows.size(), 128u * 96u * 4u);
            // Most of the gradient is lit; bars and corners are black.
            int nLit = 0;
            for (std::size_t i = 0; i < vRows.size(); i += 4)
                nLit += vRows[i + 1] > 40 ? 1 : 0;
            EXPECT_GT(nLit, 128 * 96 / 10) << nView << " " << pMount;
        }
}

TEST_F(RunPictures, GainsBrighten)
{
    const std::vector<std::string> vFlat = {"--view", "fisheye"};
    const SColor sPlain = GetPixel(Dewarp({"--view", "fisheye"}), SIDE, 10, 10);
    const SColor sBright = GetPixel(Dewarp({"--view", "fisheye", "--gain", "1.5:1.5"}), SIDE, 10, 10);
    EXPECT_NEAR(sBright.nRed, sPlain.nRed * 1.5, 3.0);
    EXPECT_NEAR(sBright.nGreen, sPlain.nGreen * 1.5, 3.0);
}

TEST_F(RunPictures, TheLimitedRangeIsStretched)
{
    SaveBytes(m_oFolder.Path("frame"), TBytes(64 * 64 * 3 / 2, 128));
    TBytes vFrame(64 * 64 * 3 / 2, 128);
    std::fill_n(vFrame.begin(), 64 * 64, static_cast<unsigned char>(235));
    SaveBytes(m_oFolder.Path("frame"), vFrame);
    auto GetMiddle = [&](const std::string& strRange) {
        return GetPixel(DewarpRaw(m_oFolder,
                                  {"--raw", "nv12:64x64", "--view", "fisheye", "--yuv-range", strRange},
                                  m_oFolder.Path("frame")),
                        SIDE, 32, 32);
    };
    EXPECT_NEAR(GetMiddle("full").nGreen, 235, 2);
    EXPECT_NEAR(GetMiddle("limited").nGreen, 255, 2);
    EXPECT_NEAR(GetMiddle("auto").nGreen, 235, 2);
}

TEST_F(RunPictures, StatsNameTheStages)
{
    const std::pair<const char*, std::vector<const char*>> aEngines[] = {
        {"cpu", {"decode", "set up", "draw", "encode", "total"}},
        {"gl", {"decode", "set up", "upload and draw", "read back", "encode", "total"}},
    };
    for (const auto& [pEngine, vStages] : aEngines) {
        const SToolRun sRun = RunTool({"--stats", "--engine", pEngine, "--lens", "ideal", "--size", "64x64",
                                       m_strGradient, m_oFolder.Path("out.raw")});
        EXPECT_EQ(sRun.nStatus, 0);
        for (const char* pStage : vStages)
            EXPECT_NE(sRun.strOutput.find(std::string("\n") + pStage), std::string::npos) << pStage;
        EXPECT_EQ(sRun.strErrors, "");
    }
}

TEST_F(RunPictures, TheLogIsShownOnlyOnDemand)
{
    // What GL is given shows only there.
    for (const auto& [pEngine, bShaders] : {std::pair{"cpu", false}, {"gl", true}}) {
        const SToolRun sQuiet = RunTool({"--engine", pEngine, "--lens", "ideal", "--size", "64x64",
                                         m_strGradient, m_oFolder.Path("out.raw")});
        EXPECT_EQ(sQuiet.strErrors, "");
        EXPECT_EQ(CountLines(sQuiet.strOutput), 1);
        const SToolRun sVerbose = RunTool({"--verbose", "--engine", pEngine, "--lens", "ideal", "--size",
                                           "64x64", m_strGradient, m_oFolder.Path("out.raw")});
        EXPECT_EQ(sVerbose.nStatus, 0);
        EXPECT_EQ(sVerbose.strErrors.find("gl_Position") != std::string::npos, bShaders) << pEngine;
    }
    // The library itself has something to say.
    const SToolRun sVerbose = RunTool({"--verbose", "--engine", "gl", "--lens", "ideal", "--size", "64x64",
                                       m_strGradient, m_oFolder.Path("out.raw")});
    EXPECT_NE(sVerbose.strErrors.find("LUMORVIDEOMANAGER_DEWRAP"), std::string::npos);
}

TEST_F(RunPictures, IgnoredAndLimitedOptionsAreNoted)
{
    const SToolRun sRun = RunTool({"--view", "panorama", "--zoom", "60", "--lens", "ideal", "--size", "64x64",
                                   m_strGradient, m_oFolder.Path("out.raw")});
    EXPECT_EQ(sRun.nStatus, 0);
    EXPECT_EQ(sRun.strErrors, "lumor-dewarp: note: --zoom has no effect: view panorama does not zoom\n");
    const SToolRun sLimited = RunTool(
        {"--tilt", "120", "--lens", "ideal", "--size", "64x64", m_strGradient, m_oFolder.Path("out.raw")});
    EXPECT_EQ(sLimited.strErrors,
              "lumor-dewarp: note: --tilt 120 is beyond the view's limits; 90 was taken\n");
}

TEST_F(RunPictures, TheContactSheetHoldsItsPictures)
{
    const std::string strSheet = m_oFolder.Path("sheet.png");
    const SToolRun sRun = RunProgram(SHEET_PATH, {strSheet, m_strQuarters, "quarters", m_strGradient,
                                                  "gradient", m_strQuarters, "", m_strGradient, "d"});
    ASSERT_EQ(sRun.nStatus, 0) << sRun.strErrors;
    const SFrame sFrame = ReadImage(strSheet);
    // Three tiles of 620 in a row, two rows of 400 and a caption.
    EXPECT_EQ(sFrame.nWidth, 3 * 636 + 16);
    EXPECT_EQ(sFrame.nHeight, 2 * 456 + 16);
    auto Get = [&](int x, int y) {
        const unsigned char* pPixel = sFrame.avPlanes[0].data() + (y * sFrame.nWidth + x) * 3;
        return std::array<int, 3>{pPixel[0], pPixel[1], pPixel[2]};
    };
    // The first tile: its left top is red, its right bottom white; beside it lies the background.
    EXPECT_EQ(Get(16 + 310 - 100, 16 + 100), (std::array<int, 3>{255, 0, 0}));
    EXPECT_EQ(Get(16 + 310 + 100, 16 + 300), (std::array<int, 3>{255, 255, 255}));
    EXPECT_EQ(Get(20, 200), (std::array<int, 3>{32, 32, 32}));
}

TEST_F(RunPictures, PanesStandSideBySide)
{
    const std::vector<std::string> vEach[] = {{"--view", "fisheye"}, {"--tilt", "40", "--zoom", "70"}};
    for (const char* pEngine : {"cpu", "gl"}) {
        std::vector<TBytes> vAlone;
        for (std::vector<std::string> vOptions : vEach) {
            vOptions.insert(vOptions.end(), {"--engine", pEngine, "--size", "64x64"});
            vAlone.push_back(Dewarp(vOptions));
        }
        const TBytes vBoth = Dewarp({"--engine", pEngine, "--pane", "0,0,64,64 view=fisheye", "--pane",
                                     "66,0,64,64 tilt=40 zoom=70", "--pane-gap", "0,#0000FF"});
        ASSERT_EQ(vBoth.size(), 130u * 64u * 4u);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 130; ++x) {
                const SColor sPixel = GetPixel(vBoth, 130, x, y);
                const bool bGap = x == 64 || x == 65;
                const SColor sAlone = bGap ? SColor{0, 0, 255} : GetPixel(vAlone[x > 65], 64, x % 66, y);
                ASSERT_NEAR(sPixel.nRed, sAlone.nRed, 2) << x << ", " << y;
                ASSERT_NEAR(sPixel.nGreen, sAlone.nGreen, 2) << x << ", " << y;
                ASSERT_NEAR(sPixel.nBlue, sAlone.nBlue, 2) << x << ", " << y;
            }
    }
}

TEST_F(RunPictures, WhatAPaneCannotDoIsNoted)
{
    const std::string strOutput = m_oFolder.Path("panes.png");
    const SToolRun sRun = RunTool({"--pane", "0,0,64,64 tilt=150", "--pane", "64,0,64,64 view=panorama",
                                   "--mount-tilt", "20", m_strGradient, strOutput});
    EXPECT_EQ(sRun.nStatus, 0);
    EXPECT_NE(sRun.strErrors.find("pane 1: --tilt 150 is beyond the view's limits; 90 was taken"),
              std::string::npos)
        << sRun.strErrors;
    EXPECT_NE(sRun.strErrors.find("--mount-tilt has no effect"), std::string::npos) << sRun.strErrors;
}
