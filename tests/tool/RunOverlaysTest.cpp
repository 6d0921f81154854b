#include "ToolRunner.h"

#include <gtest/gtest.h>

namespace
{

const int SIDE = 128;

class RunOverlays : public testing::Test
{
protected:
    RunOverlays()
    {
        SRGBPicture sGray(SIDE, SIDE);
        for (unsigned char& nByte : sGray.vBytes)
            nByte = 100;
        SavePNG(m_strInput, sGray);
    }

    /// The flat view of the gray picture with what is laid over it.
    TBytes Dewarp(std::vector<std::string> vOptions)
    {
        vOptions.insert(vOptions.begin(), {"--view", "fisheye", "--interpolation", "nearest"});
        return DewarpRaw(m_oFolder, vOptions, m_strInput);
    }
    void ExpectColor(const TBytes& vRows, int x, int y, SColor sColor)
    {
        const SColor sIs = GetPixel(vRows, SIDE, x, y);
        EXPECT_NEAR(sIs.nRed, sColor.nRed, 2) << x << "," << y;
        EXPECT_NEAR(sIs.nGreen, sColor.nGreen, 2) << x << "," << y;
        EXPECT_NEAR(sIs.nBlue, sColor.nBlue, 2) << x << "," << y;
    }

    CTempFolder m_oFolder;
    std::string m_strInput = m_oFolder.Path("in.png");
};

} // namespace

TEST_F(RunOverlays, MasksCoverTheirCorner)
{
    const TBytes vRows = Dewarp({"--mask", "0,0 64,0 64,32 0,32 #FF8000FF"});
    ExpectColor(vRows, 5, 5, {255, 128, 0});
    ExpectColor(vRows, 60, 28, {255, 128, 0});
    ExpectColor(vRows, 70, 5, {100, 100, 100});
    ExpectColor(vRows, 5, 40, {100, 100, 100});
    ExpectColor(vRows, 5, 120, {100, 100, 100});
}

TEST_F(RunOverlays, MaskFilesAndMasksAddUp)
{
    // One triangle over the bottom right corner, green.
    SaveBytes(m_oFolder.Path("masks"), {0, 3, 0, 128, 0, 0, 0, 128, 0, 128, 0, 0, 0, 128, 0, 255, 0, 255});
    const TBytes vRows =
        Dewarp({"--mask-file", m_oFolder.Path("masks"), "--mask", "0,0 20,0 20,20 0,20 #0000FF"});
    ExpectColor(vRows, 120, 120, {0, 255, 0});
    ExpectColor(vRows, 10, 10, {0, 0, 255});
    ExpectColor(vRows, 40, 40, {100, 100, 100});
}

TEST_F(RunOverlays, OverlaysLieUpright)
{
    SavePNGWithAlpha(m_oFolder.Path("overlay.png"), MakeQuarters(SIDE, SIDE), 255);
    for (const char* pOption : {"--input-overlay", "--output-overlay"}) {
        const TBytes vRows = Dewarp({pOption, m_oFolder.Path("overlay.png")});
        ExpectColor(vRows, 10, 10, {255, 0, 0});
        ExpectColor(vRows, 117, 10, {0, 255, 0});
        ExpectColor(vRows, 10, 117, {0, 0, 255});
        ExpectColor(vRows, 117, 117, {255, 255, 255});
    }
    SavePNGWithAlpha(m_oFolder.Path("clear.png"), MakeQuarters(SIDE, SIDE), 0);
    for (const char* pOption : {"--input-overlay", "--output-overlay"})
        ExpectColor(Dewarp({pOption, m_oFolder.Path("clear.png")}), 10, 10, {100, 100, 100});
}

TEST_F(RunOverlays, TextsStandWhereTheyArePut)
{
    // Character 127 is a solid block: 32 high, 19 wide.
    const TBytes vTop = Dewarp({"--text", "\x7F", "--text-at", "10,20", "--text-color", "#FF0000"});
    ExpectColor(vTop, 12, 22, {255, 0, 0});
    ExpectColor(vTop, 27, 50, {255, 0, 0});
    ExpectColor(vTop, 12, 16, {100, 100, 100});
    ExpectColor(vTop, 12, 56, {100, 100, 100});
    ExpectColor(vTop, 34, 30, {100, 100, 100});
    ExpectColor(vTop, 12, 127 - 22, {100, 100, 100});
    const TBytes vBottom = Dewarp({"--text", "\x7F", "--text-at", "-10,-20", "--text-align", "right,bottom"});
    ExpectColor(vBottom, 127 - 12, 127 - 22, {255, 255, 255});
    ExpectColor(vBottom, 127 - 12, 127 - 16, {100, 100, 100});
    ExpectColor(vBottom, 127 - 34, 127 - 30, {100, 100, 100});
}

TEST_F(RunOverlays, StringsFilesAreDrawn)
{
    // Character 127 at 10, 20, height 32, blue.
    SaveBytes(m_oFolder.Path("strings"), {0, 1, 127, 0, 10, 0, 20, 0, 32, 0, 0, 255, 255, 0, 0, 0, 0});
    ExpectColor(Dewarp({"--strings-file", m_oFolder.Path("strings")}), 15, 30, {0, 0, 255});
}

TEST_F(RunOverlays, CharactersWithoutAGlyphAreNoted)
{
    const SToolRun sRun =
        RunTool({"--text",
                 "20 \xC2\xB0"
                 "C",
                 "--lens", "ideal", "--size", "64x64", m_strInput, m_oFolder.Path("out.raw")});
    EXPECT_EQ(sRun.nStatus, 0);
    EXPECT_NE(sRun.strErrors.find("note: text '20 "), std::string::npos) << sRun.strErrors;
    EXPECT_EQ(CountLines(sRun.strErrors), 1);
}
