// Cameras that the tool does not know.
#include "ToolRunner.h"

#include "FileIO.h"
#include "ImageReader.h"

#include "tests/cpu/TextbookLens.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace
{

double MeanDifference(const TBytes& vFirst, const TBytes& vSecond)
{
    EXPECT_EQ(vFirst.size(), vSecond.size());
    double fSum = 0.0;
    for (std::size_t i = 0; i < std::min(vFirst.size(), vSecond.size()); i++)
        fSum += std::abs(vFirst[i] - vSecond[i]);
    return fSum / static_cast<double>(vFirst.size());
}

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
    float fX = 0.0f;
    float fY = 0.0f;
    float fRadius = 0.0f;
    const std::size_t nAt = sRun.strErrors.find("--circle ");
    ASSERT_EQ(std::sscanf(sRun.strErrors.c_str() + nAt, "--circle %f,%f,%f", &fX, &fY, &fRadius), 3);
    EXPECT_NEAR(fX, 318.0f, 0.6f);
    EXPECT_NEAR(fY, 181.0f, 0.6f);
    EXPECT_NEAR(fRadius, 172.0f, 0.6f);
    const TBytes vGiven = Draw({"--lens", "equidistant:180", "--circle", "318,181,172"});
    EXPECT_LT(MeanDifference(Draw({}), vGiven), 2.0);
    EXPECT_LT(MeanDifference(Draw({"--circle", "auto", "--lens", "equidistant:180"}), vGiven), 2.0);
    // Taken to fill the width it shows something else.
    EXPECT_GT(MeanDifference(Draw({"--lens", "ideal"}), vGiven), 20.0);
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

TEST_F(RunCameras, AViewThatTheLensSeesNothingOfIsNoted)
{
    for (const std::vector<std::string>& vOptions : {std::vector<std::string>{"--circle", "5000,5000,10"},
                                                     {"--lens", "rectilinear:60", "--view", "panorama"}}) {
        std::vector<std::string> vArguments = vOptions;
        vArguments.insert(vArguments.end(), {"--size", "64x64", m_strInput, m_strOutput});
        const SToolRun sRun = RunTool(vArguments);
        EXPECT_EQ(sRun.nStatus, 0);
        EXPECT_NE(sRun.strErrors.find("nothing of this view lies in the light"), std::string::npos)
            << sRun.strErrors;
    }
}

TEST_F(RunCameras, ALensFileBringsLensAndCircle)
{
    const std::string strLens = m_oFolder.Path("lens.json");
    const std::string strText = R"({"model": "equidistant", "field": 180, "circle": [318, 181, 172]})";
    SaveBytes(strLens, TBytes(strText.begin(), strText.end()));
    const TBytes vGiven = Draw({"--lens", "equidistant:180", "--circle", "318,181,172"});
    EXPECT_EQ(Draw({"--lens", strLens}), vGiven);
    EXPECT_NE(Draw({"--lens", strLens, "--circle", "318,181,140"}), vGiven);
    const SToolRun sRun = RunTool({"--lens", m_oFolder.Path("none.json"), m_strInput, m_strOutput});
    EXPECT_EQ(sRun.nStatus, 1);
    EXPECT_EQ(CountLines(sRun.strErrors), 1) << sRun.strErrors;
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
