// The two builds have one list of sources.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace
{

using SNames = std::set<std::string>;

std::string ReadText(const std::string& strPath)
{
    std::ifstream oFile(TEST_SOURCE_DIR + std::string("/../") + strPath);
    return std::string(std::istreambuf_iterator<char>(oFile), std::istreambuf_iterator<char>());
}

/// Words that end in .cpp or .S within the text, without comments, each with a prefix.
SNames SourcesIn(const std::string& strText, const std::string& strPrefix)
{
    static const std::regex oComment("(#|//)[^\n]*");
    static const std::regex oSource("[A-Za-z0-9_/]+\\.(cpp|S)\\b");
    const std::string strBare = std::regex_replace(strText, oComment, "");
    SNames sNames;
    for (std::sregex_iterator i(strBare.begin(), strBare.end(), oSource), oEnd; i != oEnd; ++i)
        sNames.insert(strPrefix + i->str());
    return sNames;
}

SNames Without(SNames sNames, const std::string& strBeginning)
{
    std::erase_if(sNames, [&](const std::string& strName) { return strName.starts_with(strBeginning); });
    return sNames;
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
    // From the loop's first line to its last, however it is indented.
    const auto Bare = [](const std::string& strText) {
        const std::size_t nBegin = strText.find("CCustomGPUDewarperVela oDewarper;");
        const std::size_t nEnd = strText.find("oDewarper.StopGL();", nBegin);
        if (nBegin == std::string::npos || nEnd == std::string::npos)
            return std::string("not found");
        return std::regex_replace(strText.substr(nBegin, nEnd - nBegin), std::regex("\\s+|//[^\n]*|return "),
                                  "");
    };
    EXPECT_EQ(Bare(ReadText("docs/android.md")), Bare(ReadText("tests/android_headers/FrameLoop.cpp")));
    EXPECT_NE(Bare(ReadText("docs/android.md")), "not found");
}
