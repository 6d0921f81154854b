#include "ToolRunner.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

static SToolRun RunOnce(const std::string& strProgram, const std::vector<std::string>& vArguments)
{
    const CTempFolder oFolder;
    const std::string strOutput = oFolder.Path("stdout");
    const std::string strErrors = oFolder.Path("stderr");
    posix_spawn_file_actions_t sActions;
    posix_spawn_file_actions_init(&sActions);
    posix_spawn_file_actions_addopen(&sActions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&sActions, 1, strOutput.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&sActions, 2, strErrors.c_str(), O_WRONLY | O_CREAT, 0600);

    std::vector<std::string> vCopies = vArguments;
    vCopies.insert(vCopies.begin(), strProgram);
    std::vector<char*> vPointers;
    for (std::string& strArgument : vCopies)
        vPointers.push_back(strArgument.data());
    vPointers.push_back(nullptr);

    SToolRun sRun;
    pid_t nChild = 0;
    int nStatus = 0;
    if (posix_spawn(&nChild, strProgram.c_str(), &sActions, nullptr, vPointers.data(), environ) == 0 &&
        waitpid(nChild, &nStatus, 0) == nChild)
        sRun.nStatus = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : 1000 + WTERMSIG(nStatus);
    posix_spawn_file_actions_destroy(&sActions);
    const TBytes vOutput = LoadBytes(strOutput);
    const TBytes vErrors = LoadBytes(strErrors);
    sRun.strOutput.assign(vOutput.begin(), vOutput.end());
    sRun.strErrors.assign(vErrors.begin(), vErrors.end());
    return sRun;
}

SToolRun RunProgram(const std::string& strProgram, const std::vector<std::string>& vArguments)
{
    SToolRun sRun = RunOnce(strProgram, vArguments);
    // LeakSanitizer looks at the stacks of the driver's threads while these end, and may fall over one: that
    // run says nothing of the program.
    const char* const pFellOver = "LeakSanitizer has encountered a fatal error";
    for (int i = 0; i < 2 && sRun.strErrors.find(pFellOver) != std::string::npos; ++i)
        sRun = RunOnce(strProgram, vArguments);
    return sRun;
}

SToolRun RunTool(const std::vector<std::string>& vArguments)
{
    return RunProgram(TOOL_PATH, vArguments);
}

TBytes DewarpRaw(const CTempFolder& oFolder, std::vector<std::string> vOptions, const std::string& strInput)
{
    const std::string strOutput = oFolder.Path("result.raw");
    std::error_code oError;
    std::filesystem::remove(strOutput, oError);
    vOptions.push_back(strInput);
    vOptions.push_back(strOutput);
    const SToolRun sRun = RunTool(vOptions);
    EXPECT_EQ(sRun.nStatus, 0) << sRun.strErrors;
    return LoadBytes(strOutput);
}

int CountLines(const std::string& strText)
{
    return static_cast<int>(std::count(strText.begin(), strText.end(), '\n'));
}

SColor GetPixel(const TBytes& vRows, int nWidth, int x, int y)
{
    const std::size_t nFirst =
        (static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) + static_cast<std::size_t>(x)) * 4;
    if (nFirst + 4 > vRows.size())
        return {-1, -1, -1};
    return {vRows[nFirst + 2], vRows[nFirst + 1], vRows[nFirst]};
}

int GetLargestDifference(const TBytes& vFirst, const TBytes& vSecond)
{
    if (vFirst.size() != vSecond.size() || vFirst.empty())
        return 256;
    int nLargest = 0;
    for (std::size_t i = 0; i < vFirst.size(); i++)
        nLargest = std::max(nLargest, std::abs(vFirst[i] - vSecond[i]));
    return nLargest;
}
