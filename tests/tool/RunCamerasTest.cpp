// Cameras that the tool does not know.
#include "ToolRunner.h"

#include "FileIO.h"
#include "ImageReader.h"

#include "tests/cpu/TextbookLens.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace
{

/// A room through an equidistant lens of 180 degrees, its circle beside the middle of a wide frame.
class RunCameras : public testing::Test
{
protected:
    static const STestImage& Room()
    {
        static const STextbookCamera CAMERA = {640, 360, 318.0, 181.0, 172.0, 172.0};
        static const STestImage ROOM = RenderThrough(TextbookLenses()[0], CAMERA, MOUNT_CEILING, RoomColour);
        return ROOM;
    }

    void SetUp() override
    {
        SRGBPicture sPicture(640, 360);
        for (int y = 0; y < 360; y++)
            for (int x = 0; x < 640; x++) {
                const unsigned char* p = Room().At(x, y);
                sPicture.Set(x, y, {p[0], p[1], p[2]});
            }
        SavePNG(m_strInput, sPicture);
    }

    TBytes Draw(std::vector<std::string> vOptions)
    {
        vOptions.insert(vOptions.end(), {"--tilt", "50", "--zoom", "120", "--size", "160x90"});
        return DewarpRaw(m_oFolder, vOptions, m_strInput);
    }

    CTempFolder m_oFolder;
    std::string m_strInput = m_oFolder.Path("in.png");
    std::string m_strOutput = m_oFolder.Path("out.png");
};

} // namespace

TEST_F(RunCameras, TheCircleIsFoundAndSaidWithoutAnyOption)
{
    const SToolRun sRun = RunTool({"--size", "64x64", m_strInput, m_strOutput});
    EXPECT_EQ(sRun.nStatus, 0) << sRun.strErrors;
    EXPECT_EQ(CountLines(sRun.strErrors), 1) << sRun.strErrors;
    EXPECT_NE(sRun.strErrors.find("--lens equidistant:180 --circle 318."), std::string::npos)
        << sRun.strErrors;
    const TBytes vGiven = Draw({"--lens", "equidistant:180", "--circle", "318,181,172"});
    EXPECT_LE(GetLargestDifference(Draw({}), vGiven), 40);
    EXPECT_LE(GetLargestDifference(Draw({"--circle", "auto", "--lens", "equidistant:180"}), vGiven), 40);
    // Taken to fill the width it shows something else.
    EXPECT_GT(GetLargestDifference(Draw({"--lens", "ideal"}), vGiven), 100);
}

TEST_F(RunCameras, APictureWithoutACircleIsSaidToHaveNone)
{
    const std::string strPlain = m_oFolder.Path("plain.png");
    SavePNG(strPlain, MakeGradient(200, 150));
    const SToolRun sRun = RunTool({"--size", "64x64", strPlain, m_strOutput});
    EXPECT_EQ(sRun.nStatus, 0);
    EXPECT_NE(sRun.strErrors.find("no circle found"), std::string::npos) << sRun.strErrors;
    const SToolRun sAuto = RunTool({"--circle", "auto", "--size", "64x64", strPlain, m_strOutput});
    EXPECT_EQ(sAuto.nStatus, 1);
    EXPECT_NE(sAuto.strErrors.find("--circle auto: no circle was found"), std::string::npos)
        << sAuto.strErrors;
}

TEST_F(RunCameras, AMapTellsWhereEveryPixelComesFrom)
{
    const std::string strMap = m_oFolder.Path("map");
    const SToolRun sRun =
        RunTool({"--lens", "equidistant:180", "--circle", "318,181,172", "--map", strMap, "--tilt", "0",
                 "--zoom", "180", "--size", "101x51", m_strInput, m_strOutput});
    ASSERT_EQ(sRun.nStatus, 0) << sRun.strErrors;
    const TBytes vX = ReadFile(strMap + "-x.f32", 1 << 20);
    ASSERT_EQ(vX.size(), 101u * 51u * 4u);
    const auto NumberAt = [](const TBytes& vBytes, int x, int y) {
        float f = 0.0f;
        std::memcpy(&f, vBytes.data() + (y * 101 + x) * 4, 4);
        return f;
    };
    // The middle looks along the axis; 0 lies in the middle of the first pixel.
    EXPECT_NEAR(NumberAt(vX, 50, 25), 317.5f, 0.01f);
    EXPECT_NEAR(NumberAt(ReadFile(strMap + "-y.f32", 1 << 20), 50, 25), 180.5f, 0.01f);
    EXPECT_GT(NumberAt(vX, 60, 25), 318.0f);
    // A camera of 90 degrees upright and wide: beside the rim there is nothing.
    const TBytes vPGM = ReadFile(strMap + "-x.pgm", 1 << 20);
    EXPECT_EQ(std::string(vPGM.begin(), vPGM.begin() + 16), "P5\n101 51\n65535\n");
    EXPECT_EQ(vPGM.size(), 16u + 101u * 51u * 2u);
    const std::size_t nMiddle = 16 + (25 * 101 + 60) * 2;
    EXPECT_EQ(vPGM[nMiddle] * 256 + vPGM[nMiddle + 1], std::lround(NumberAt(vX, 60, 25)));
    EXPECT_EQ(ReadImage(strMap + "-x.png").nWidth, 101);
}
