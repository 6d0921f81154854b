// Who draws: chosen, named, and the same picture from either.
#include "ToolRunner.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace
{

const int SIDE = 96;

class RunEngines : public testing::Test
{
protected:
    RunEngines() { SavePNG(m_strInput, MakeGradient(SIDE, SIDE)); }

    std::string LineOf(const std::vector<std::string>& vOptions)
    {
        std::vector<std::string> vAll = vOptions;
        vAll.insert(vAll.end(), {"--size", "80x60", m_strInput, m_strOutput});
        const SToolRun sRun = RunTool(vAll);
        EXPECT_EQ(sRun.nStatus, 0) << sRun.strErrors;
        return sRun.strOutput;
    }

    CTempFolder m_oFolder;
    std::string m_strInput = m_oFolder.Path("in.png");
    std::string m_strOutput = m_oFolder.Path("out.png");
};

} // namespace

TEST_F(RunEngines, TheLineOfTheResultNamesFileSizeAndEngine)
{
    const std::string strBegin = m_strOutput + ": 80x60, ";
    EXPECT_EQ(LineOf({"--engine", "cpu"}).rfind(strBegin + "processor, ", 0), 0u);
    EXPECT_EQ(LineOf({"--engine", "gl"}).rfind(strBegin + "OpenGL ES, ", 0), 0u);
    EXPECT_EQ(LineOf({"--buffers"}).rfind(strBegin + "OpenGL ES, graphic buffers", 0), 0u);
    // The driver of these tests draws on the processor: the library does so faster.
    EXPECT_EQ(LineOf({}), LineOf({"--engine", "cpu"}));
}

TEST_F(RunEngines, ThreadsAreTheProcessorsAlone)
{
    EXPECT_NE(LineOf({"--engine", "cpu", "--threads", "1"}).find(", 1 thread\n"), std::string::npos);
    EXPECT_NE(LineOf({"--engine", "cpu", "--threads", "3"}).find(", 3 threads\n"), std::string::npos);
    for (const char* pWay : {"--engine=gl", "--buffers"})
        EXPECT_EQ(
            RunTool({pWay, "--lens", "ideal", "--threads", "2", "--size", "80x60", m_strInput, m_strOutput})
                .strErrors,
            "lumor-dewarp: note: --threads has no effect: OpenGL ES draws\n")
            << pWay;
}

TEST_F(RunEngines, TheSamePictureComesOut)
{
    const std::vector<std::string> aCases[] = {
        {"--pan", "40", "--tilt", "30", "--zoom", "100"},
        {"--view", "quad", "--tilt", "40"},
        {"--view", "panorama", "--pan", "20"},
        {"--view", "fisheye", "--flip", "h", "--rotation", "90"},
        {"--mount", "wall", "--view", "panorama"},
        {"--view", "fisheye", "--mask", "10,10 80,12 40,70 #A04020FF", "--text", "abc", "--text-at", "4,4"},
    };
    for (const std::vector<std::string>& vCase : aCases) {
        auto Draw = [&](const char* pEngine) {
            std::vector<std::string> vOptions = vCase;
            vOptions.insert(vOptions.end(), {"--engine", pEngine, "--size", "160x96"});
            return DewarpRaw(m_oFolder, vOptions, m_strInput);
        };
        const TBytes vCPU = Draw("cpu");
        const TBytes vGL = Draw("gl");
        ASSERT_EQ(vCPU.size(), vGL.size());
        int nFar = 0;
        for (std::size_t i = 0; i < vCPU.size(); i++)
            nFar += std::abs(vCPU[i] - vGL[i]) > 4;
        // Rims of bars, masks and letters.
        EXPECT_LT(nFar, 160 * 96 * 4 / 100) << vCase[1];
    }
}

TEST_F(RunEngines, WithoutADriverTheProcessorDrawsAndTheOthersSayWhy)
{
    setenv("__EGL_VENDOR_LIBRARY_DIRS", "/nonexistent", 1);
    EXPECT_NE(LineOf({}).find("processor"), std::string::npos);
    for (const char* pWay : {"--engine=gl", "--buffers"}) {
        const SToolRun sRun = RunTool({pWay, "--size", "80x60", m_strInput, m_strOutput});
        EXPECT_EQ(sRun.nStatus, 1);
        EXPECT_EQ(CountLines(sRun.strErrors), 1) << sRun.strErrors;
        EXPECT_NE(sRun.strErrors.find("OpenGL ES 3.1 cannot be started"), std::string::npos)
            << sRun.strErrors;
        EXPECT_EQ(sRun.strOutput, "");
    }
    unsetenv("__EGL_VENDOR_LIBRARY_DIRS");
}
