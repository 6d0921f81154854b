// What the two libraries show and need, as the linker left them.
#include "SourceScan.h"
#include "SourceTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <regex>
#include <set>
#include <sstream>

namespace
{

using SNames = std::set<std::string>;

/// What a command prints; empty where there is no such command.
std::string OutputOf(const std::string& strCommand)
{
    std::FILE* const pPipe = popen((strCommand + " 2>/dev/null").c_str(), "r");
    std::string strOutput;
    std::array<char, 4096> acPart = {};
    while (pPipe != nullptr && std::fgets(acPart.data(), acPart.size(), pPipe) != nullptr)
        strOutput += acPart.data();
    if (pPipe != nullptr)
        pclose(pPipe);
    return strOutput;
}

/// Names that a library shows, without their arguments; of the C++ library's own only those that are ours.
/// bStrong: only what no other library may have too.
SNames VisibleNames(const std::string& strLibrary, bool bStrong)
{
    static const std::regex LINE("^[0-9a-f]* *([A-Za-z]) (?:(?:vtable|typeinfo|typeinfo name|VTT) for |"
                                 "(?:non-)?virtual thunk to )?([\\w:~]+).*$");
    std::istringstream oStream(OutputOf("nm -DC --defined-only '" + strLibrary + "'"));
    std::string strLine;
    std::smatch oMatch;
    SNames oNames;
    while (std::getline(oStream, strLine)) {
        const bool bFound = std::regex_match(strLine, oMatch, LINE);
        const std::string strName = bFound ? oMatch[2].str() : strLine;
        const bool bWeak = bFound && std::string("uVW").find(oMatch[1]) != std::string::npos;
        if (!strName.starts_with("std::") && !strName.starts_with("__gnu") && !(bStrong && bWeak))
            oNames.insert(strName);
    }
    return oNames;
}

/// Names that stand behind a mark in our headers.
SNames MarkedNames()
{
    static const std::regex MARKED("LUMOR_(?:INTERNAL_)?API ([^(){};:\\[]*(?:::[^(){};:\\[]*)*)");
    SNames oNames;
    for (const auto& [strPath, strSource] : ReadSources({"dewarp", "platform"}, {".h"})) {
        const std::string strCode = BareCode(strSource);
        for (auto it = std::sregex_iterator(strCode.begin(), strCode.end(), MARKED);
             it != std::sregex_iterator(); ++it) {
            std::istringstream oWords((*it)[1].str());
            std::string strWord;
            std::string strName;
            while (oWords >> strWord)
                strName = strWord == "final" ? strName : strWord;
            oNames.insert(strName.substr(strName.find_first_not_of("*&")));
        }
    }
    return oNames;
}

bool IsMarked(const SNames& oMarked, const std::string& strName)
{
    // A member is shown with its class, or has a mark of its own; contents of namespaces always have.
    const std::size_t nLast = strName.rfind("::");
    return oMarked.contains(strName.substr(0, strName.find("::"))) ||
           (nLast != std::string::npos && oMarked.contains(strName.substr(nLast + 2)));
}

/// Libraries that a library needs itself.
std::string NeededBy(const std::string& strLibrary)
{
    std::istringstream oStream(OutputOf("LC_ALL=C readelf -d '" + strLibrary + "'"));
    std::string strLine;
    std::string strNeeded;
    while (std::getline(oStream, strLine))
        strNeeded += strLine.find("(NEEDED)") != std::string::npos ? strLine + '\n' : "";
    return strNeeded;
}

} // namespace

TEST(Exports, EveryVisibleNameIsMarkedInAHeader)
{
    const SNames oMarked = MarkedNames();
    ASSERT_TRUE(oMarked.contains("CCustomGPUDewarper") && oMarked.contains("AutoDetectLensType"));
    for (const char* pLibrary : {CORE_PATH, LIBRARY_PATH}) {
        SNames oNames = VisibleNames(pLibrary, false);
        if (oNames.empty())
            GTEST_SKIP() << "no nm here";
        EXPECT_GT(oNames.size(), 50u) << pLibrary;
        std::erase_if(oNames, [&](const std::string& strName) {
            // Android's names, supplied where the system has none.
            return strName == "__android_log_print" || strName == "__assert2" ||
                   strName.starts_with("android::") || IsMarked(oMarked, strName);
        });
        EXPECT_EQ(oNames, SNames()) << pLibrary;
    }
}

TEST(Exports, NothingIsInBothLibraries)
{
    const SNames oCore = VisibleNames(CORE_PATH, true);
    const SNames oLibrary = VisibleNames(LIBRARY_PATH, true);
    if (oCore.empty())
        GTEST_SKIP() << "no nm here";
    SNames oBoth;
    std::set_intersection(oCore.begin(), oCore.end(), oLibrary.begin(), oLibrary.end(),
                          std::inserter(oBoth, oBoth.end()));
    EXPECT_EQ(oBoth, SNames());
}

TEST(Exports, TheCoreNeedsNoLibraryThatDraws)
{
    const std::string strCore = NeededBy(CORE_PATH);
    const std::string strLibrary = NeededBy(LIBRARY_PATH);
    if (strCore.empty())
        GTEST_SKIP() << "no readelf here";
    EXPECT_NE(strCore.find("libc.so"), std::string::npos) << strCore;
    for (const char* pOther : {"EGL", "GLES", "libGL", "libdrm", "libgbm", "liblumor_dewarp.so"})
        EXPECT_EQ(strCore.find(pOther), std::string::npos) << pOther;
    for (const char* pNeeded : {"libEGL.so", "libGLESv2.so", "liblumor_dewarp_core.so"})
        EXPECT_NE(strLibrary.find(pNeeded), std::string::npos) << pNeeded;
}

#ifdef TOOL_PATH
TEST(Exports, TheToolStartsWithoutLibrariesThatDraw)
{
    const std::string strTool = NeededBy(TOOL_PATH);
    if (strTool.empty())
        GTEST_SKIP() << "no readelf here";
    EXPECT_NE(strTool.find("liblumor_dewarp_core.so"), std::string::npos) << strTool;
    for (const char* pOther : {"EGL", "GLES", "libGL.", "liblumor_dewarp.so"})
        EXPECT_EQ(strTool.find(pOther), std::string::npos) << pOther;
}
#endif
