// No test is left out by mistake: one that is not built cannot fail.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace
{

std::string Read(const fs::path& rPath)
{
    std::ostringstream oText;
    oText << std::ifstream(rPath).rdbuf();
    return oText.str();
}

bool IsOfName(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
}

/// Whether a text has a word, with nothing of a name beside it.
bool HasWord(const std::string& strText, const std::string& strWord)
{
    for (std::size_t n = strText.find(strWord); n != std::string::npos; n = strText.find(strWord, n + 1)) {
        const std::size_t nEnd = n + strWord.size();
        if ((n == 0 || !IsOfName(strText[n - 1])) && (nEnd == strText.size() || !IsOfName(strText[nEnd])))
            return true;
    }
    return false;
}

std::vector<fs::path> FilesNamed(const std::string& strEnd)
{
    std::vector<fs::path> vFiles;
    for (const fs::directory_entry& rEntry : fs::recursive_directory_iterator(TEST_SOURCE_DIR)) {
        const std::string strName = rEntry.path().filename().string();
        if (strName.size() >= strEnd.size() && strName.ends_with(strEnd))
            vFiles.push_back(rEntry.path());
    }
    return vFiles;
}

} // namespace

TEST(TestTree, EveryFolderOfTestsIsAdded)
{
    int nFolders = 0;
    for (const fs::path& rList : FilesNamed("CMakeLists.txt")) {
        const fs::path oFolder = rList.parent_path();
        if (Read(rList).find("add_dewarp_test(") == std::string::npos || oFolder == fs::path(TEST_SOURCE_DIR))
            continue;
        ++nFolders;
        EXPECT_TRUE(HasWord(Read(oFolder.parent_path() / "CMakeLists.txt"), oFolder.filename().string()))
            << oFolder;
    }
    EXPECT_GT(nFolders, 15);
}

TEST(TestTree, EveryFileOfTestsIsNamed)
{
    std::string strLists;
    for (const fs::path& rList : FilesNamed("CMakeLists.txt"))
        strLists += Read(rList);
    int nFiles = 0;
    for (const fs::path& rFile : FilesNamed("Test.cpp")) {
        ++nFiles;
        EXPECT_TRUE(HasWord(strLists, rFile.filename().string())) << rFile;
    }
    EXPECT_GT(nFiles, 100);
}

TEST(HasWord, NamesAreWhole)
{
    EXPECT_TRUE(HasWord("foreach(sRoom android cpu)", "cpu"));
    EXPECT_TRUE(HasWord("    ../lenses/GivenLensTest.cpp)", "GivenLensTest.cpp"));
    EXPECT_FALSE(HasWord("OldGivenLensTest.cpp GivenLensTest.cppx", "GivenLensTest.cpp"));
    EXPECT_FALSE(HasWord("", "cpu"));
}
