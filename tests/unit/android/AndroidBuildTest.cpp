// The two builds have the same lists of sources, and the manual's loop is the one that is compiled.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <utility>

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

/// Sources that the CMake build gives to a target, in whichever command.
SNames OtherSources(const std::string& strTarget)
{
    SNames sNames;
    for (const auto& [pList, pPrefix] : {std::pair{"dewarp/CMakeLists.txt", "dewarp/"},
                                         {"dewarp/cpu/CMakeLists.txt", "dewarp/cpu/"},
                                         {"dewarp/mapping/CMakeLists.txt", "dewarp/mapping/"},
                                         {"cmake/GPUFont.cmake", "dewarp/"},
                                         {"platform/CMakeLists.txt", "platform/"}}) {
        const std::string strText = ReadText(pList);
        for (std::size_t n = strText.find(strTarget + ' '); n != std::string::npos;
             n = strText.find(strTarget + ' ', n + 1)) {
            if (n > 0 && strText[n - 1] == '(')
                sNames.merge(SourcesIn(strText.substr(n, strText.find(')', n) - n), pPrefix));
        }
    }
    return Without(sNames, "platform/linux/");
}

/// Sources of a library of the platform build.
SNames AndroidSources(const std::string& strLibrary)
{
    const std::string strText = ReadText("Android.bp");
    const std::size_t nName = strText.find("name: \"" + strLibrary + "\"");
    const std::size_t nBegin = strText.find("srcs: [", nName);
    return nName == std::string::npos
               ? SNames()
               : SourcesIn(strText.substr(nBegin, strText.find(']', nBegin) - nBegin), "");
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

TEST(AndroidBuild, BuildsBothLibrariesOfTheSourcesOfTheOtherBuild)
{
    const SNames sCore = AndroidSources("liblumor_dewarp_core");
    const SNames sLibrary = AndroidSources("liblumor_dewarp");
    EXPECT_GT(sCore.size(), 30u);
    EXPECT_GT(sLibrary.size(), 30u);
    EXPECT_EQ(sCore.count("platform/android/Log.cpp"), 1u);
    EXPECT_EQ(sLibrary.count("dewarp/android/CustomGPUDewarperVela.cpp"), 1u);
    EXPECT_EQ(sLibrary.count("platform/android/EGLExtensions.cpp"), 1u);
    SNames sOtherCore = OtherSources("lumor_dewarp_core_objects");
    sOtherCore.merge(OtherSources("lumor_dewarp_core"));
    EXPECT_EQ(sCore, sOtherCore);
    EXPECT_EQ(sLibrary, OtherSources("lumor_dewarp_objects"));
    SNames sAll = AndroidSources("liblumor_dewarp_core");
    sAll.merge(AndroidSources("liblumor_dewarp"));
    EXPECT_EQ(sAll, SourcesIn(ReadText("Android.bp"), ""));
}

TEST(AndroidBuild, TheFrameLoopOfTheManualIsTheOneThatIsCompiled)
{
    const std::string strManual = FrameLoopIn(ReadText("docs/android.md"));
    EXPECT_NE(strManual, "not found");
    EXPECT_EQ(strManual, FrameLoopIn(ReadText("tests/android_headers/FrameLoop.cpp")));
}
