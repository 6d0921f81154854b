// The two builds have one list of sources, and the manual's loop is the one that is compiled.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

namespace
{

using SNames = std::set<std::string>;

std::string ReadText(const std::string& strPath)
{
    std::ifstream oFile(TEST_SOURCE_DIR + std::string("/../") + strPath);
    return std::string(std::istreambuf_iterator<char>(oFile), std::istreambuf_iterator<char>());
}

std::string WithoutComments(const std::string& strText)
{
    std::istringstream oStream(strText);
    std::string strBare;
    std::string strLine;
    while (std::getline(oStream, strLine))
        strBare += strLine.substr(0, std::min(strLine.find('#'), strLine.find("//"))) + '\n';
    return strBare;
}

/// Names of sources within the text, each with a prefix.
SNames SourcesIn(const std::string& strText, const std::string& strPrefix)
{
    std::string strWords = WithoutComments(strText);
    for (char& rCharacter : strWords) {
        if (std::isalnum(static_cast<unsigned char>(rCharacter)) == 0 && rCharacter != '_' &&
            rCharacter != '/' && rCharacter != '.')
            rCharacter = ' ';
    }
    std::istringstream oStream(strWords);
    SNames sNames;
    std::string strWord;
    while (oStream >> strWord) {
        if (strWord.ends_with(".cpp") || strWord.ends_with(".S"))
            sNames.insert(strPrefix + strWord);
    }
    return sNames;
}

SNames Without(SNames sNames, const std::string& strBeginning)
{
    std::erase_if(sNames, [&](const std::string& strName) { return strName.starts_with(strBeginning); });
    return sNames;
}

/// The loop from its first line to its last, without blanks and comments.
std::string FrameLoopIn(const std::string& strText)
{
    const std::size_t nBegin = strText.find("CCustomGPUDewarperVela oDewarper;");
    const std::size_t nEnd = strText.find("oDewarper.StopGL();", nBegin);
    if (nBegin == std::string::npos || nEnd == std::string::npos)
        return "not found";
    std::string strBare = WithoutComments(strText.substr(nBegin, nEnd - nBegin));
    std::erase_if(strBare, [](unsigned char c) { return std::isspace(c) != 0; });
    if (strBare.ends_with("return"))
        strBare.resize(strBare.size() - std::string("return").size());
    return strBare;
}

} // namespace

TEST(AndroidBuild, BuildsTheSourcesOfTheOtherBuild)
{
    SNames sExpected = SourcesIn(ReadText("dewarp/CMakeLists.txt"), "dewarp/");
    sExpected.merge(SourcesIn(ReadText("cmake/GPUFont.cmake"), "dewarp/"));
    sExpected.merge(Without(SourcesIn(ReadText("platform/CMakeLists.txt"), "platform/"), "platform/linux/"));
    const SNames sAndroid = SourcesIn(ReadText("Android.bp"), "");
    EXPECT_GT(sAndroid.size(), 50u);
    EXPECT_EQ(sAndroid.count("dewarp/android/CustomGPUDewarperVela.cpp"), 1u);
    EXPECT_EQ(sAndroid.count("platform/android/EGLExtensions.cpp"), 1u);
    EXPECT_EQ(sAndroid, sExpected);
}

TEST(AndroidBuild, TheFrameLoopOfTheManualIsTheOneThatIsCompiled)
{
    const std::string strManual = FrameLoopIn(ReadText("docs/android.md"));
    EXPECT_NE(strManual, "not found");
    EXPECT_EQ(strManual, FrameLoopIn(ReadText("tests/android_headers/FrameLoop.cpp")));
}
