#include "ToolRunner.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace
{

/// One line on stderr that begins with the tool's name, nothing on stdout, and the given status.
void ExpectRefusal(const std::vector<std::string>& vArguments, int nStatus, const std::string& strPart)
{
    const SToolRun sRun = RunTool(vArguments);
    EXPECT_EQ(sRun.nStatus, nStatus) << strPart << "\n" << sRun.strErrors;
    EXPECT_EQ(CountLines(sRun.strErrors), 1) << sRun.strErrors;
    EXPECT_EQ(sRun.strErrors.rfind("lumor-dewarp: ", 0), 0u) << sRun.strErrors;
    EXPECT_NE(sRun.strErrors.find(strPart), std::string::npos) << strPart << "\n" << sRun.strErrors;
    EXPECT_EQ(sRun.strOutput, "");
}

class RunErrors : public testing::Test
{
protected:
    RunErrors() { SavePNG(m_strInput, MakeGradient(32, 32)); }

    CTempFolder m_oFolder;
    std::string m_strInput = m_oFolder.Path("in.png");
    std::string m_strOutput = m_oFolder.Path("out.png");
};

} // namespace

TEST_F(RunErrors, UsageErrorsEndWithStatus2)
{
    ExpectRefusal({}, 2, "INPUT OUTPUT");
    ExpectRefusal({"--nonsense", m_strInput, m_strOutput}, 2, "--nonsense");
    ExpectRefusal({"--zoom", "nan", m_strInput, m_strOutput}, 2, "--zoom: 'nan'");
    ExpectRefusal({"--size", "0x0", m_strInput, m_strOutput}, 2, "from 2 to 16384");
    ExpectRefusal({"--engine", "opengl", m_strInput, m_strOutput}, 2, "auto, cpu or gl");
    ExpectRefusal({"--threads", "none", m_strInput, m_strOutput}, 2, "--threads: 'none'");
    ExpectRefusal({"--buffers", "--engine", "cpu", m_strInput, m_strOutput}, 2, "leave out --buffers");
    ExpectRefusal({m_strInput, m_oFolder.Path("out.jpg")}, 2, ".png or .raw");
    ExpectRefusal({m_strInput, m_strInput}, 2, "input file itself");
    EXPECT_FALSE(std::filesystem::exists(m_strOutput));
}

TEST_F(RunErrors, MissingAndUnreadableInputsEndWithStatus1)
{
    ExpectRefusal({m_oFolder.Path("no.png"), m_strOutput}, 1, "No such file");
    ExpectRefusal({m_oFolder.Path(""), m_strOutput}, 1, "is a directory");
    SaveBytes(m_oFolder.Path("empty.png"), {});
    ExpectRefusal({m_oFolder.Path("empty.png"), m_strOutput}, 1, "empty.png");
    TBytes vCut = LoadBytes(m_strInput);
    vCut.resize(vCut.size() / 2);
    SaveBytes(m_oFolder.Path("cut.png"), vCut);
    ExpectRefusal({m_oFolder.Path("cut.png"), m_strOutput}, 1, "cut short");
    ExpectRefusal({"--raw", "gray:8x8", m_strInput, m_strOutput}, 1, "but --raw describes 64");
    EXPECT_FALSE(std::filesystem::exists(m_strOutput));
}

TEST_F(RunErrors, OutputsThatCannotBeWrittenEndWithStatus1)
{
    ExpectRefusal({m_strInput, m_oFolder.Path("no/out.png")}, 1, "folder does not exist");
    std::filesystem::create_directory(m_oFolder.Path("folder.png"));
    ExpectRefusal({m_strInput, m_oFolder.Path("folder.png")}, 1, "is a directory");
    std::filesystem::create_symlink("/dev/full", m_oFolder.Path("full.png"));
    ExpectRefusal({"--size", "64x64", m_strInput, m_oFolder.Path("full.png")}, 1, "No space left");
}

TEST_F(RunErrors, OverlayFilesAreCheckedToo)
{
    ExpectRefusal({"--input-overlay", m_oFolder.Path("no.png"), m_strInput, m_strOutput}, 1, "no.png");
    ExpectRefusal({"--mask-file", m_oFolder.Path("no"), m_strInput, m_strOutput}, 1, "No such file");
    // One whole mask of three corners, and two bytes of the next.
    TBytes vMasks = {0, 3, 0, 0, 0, 0, 0, 9, 0, 0, 0, 9, 0, 9, 1, 2, 3, 4, 0, 3};
    SaveBytes(m_oFolder.Path("masks"), vMasks);
    ExpectRefusal({"--mask-file", m_oFolder.Path("masks"), m_strInput, m_strOutput}, 1,
                  "1 whole records and 2 bytes");
    SaveBytes(m_oFolder.Path("strings"), {0, 200, 65});
    ExpectRefusal({"--strings-file", m_oFolder.Path("strings"), m_strInput, m_strOutput}, 1,
                  "0 whole records");
}

TEST_F(RunErrors, OddNamesStayOnOneLine)
{
    ExpectRefusal({m_oFolder.Path("new\nline\x1b.png"), m_strOutput}, 1, "new?line?.png");
}

TEST_F(RunErrors, HelpAndVersionGoToStdout)
{
    const SToolRun sHelp = RunTool({"--help"});
    EXPECT_EQ(sHelp.nStatus, 0);
    EXPECT_NE(sHelp.strOutput.find("--mount-tilt DEGREES"), std::string::npos);
    EXPECT_EQ(sHelp.strErrors, "");
    const SToolRun sVersion = RunTool({"--version"});
    EXPECT_EQ(sVersion.nStatus, 0);
    EXPECT_EQ(sVersion.strOutput.rfind("lumor-dewarp ", 0), 0u);
}

TEST_F(RunErrors, TheContactSheetChecksItsArguments)
{
    const SToolRun sRun = RunProgram(SHEET_PATH, {m_strOutput, m_strInput});
    EXPECT_EQ(sRun.nStatus, 2);
    EXPECT_EQ(CountLines(sRun.strErrors), 1);
}
