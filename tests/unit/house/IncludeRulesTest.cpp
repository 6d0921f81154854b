#include "IncludeRules.h"

#include "PublicHeaders.h"
#include "RoomOrder.h"
#include "SourceScan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace
{

using VStrings = std::vector<std::string>;

const VStrings CODE = {".h", ".cpp"};

std::string Join(const VStrings& vLines)
{
    std::string strText;
    for (const std::string& strLine : vLines)
        strText += strLine + '\n';
    return strText;
}

/// Folders with code directly below dewarp/, and platform.
std::set<std::string> Rooms()
{
    std::set<std::string> oRooms = {"platform"};
    for (const auto& [strPath, strSource] : ReadSources({"dewarp"}, CODE)) {
        const std::size_t nSlash = strPath.find('/', std::string("dewarp/").size());
        if (nSlash != std::string::npos)
            oRooms.insert(strPath.substr(0, nSlash));
    }
    return oRooms;
}

/// Lines with a condition of the preprocessor that asks for a system.
VStrings SystemConditions(const MSources& oSources)
{
    VStrings vFound;
    for (const auto& [strPath, strSource] : oSources) {
        std::istringstream oStream(WithoutComments(strSource));
        std::string strLine;
        while (std::getline(oStream, strLine)) {
            const std::size_t nHash = strLine.find_first_not_of(" \t");
            const std::size_t nWord = strLine.find_first_not_of(" \t#", nHash);
            if (nWord == std::string::npos || strLine[nHash] != '#' ||
                (strLine.compare(nWord, 2, "if") != 0 && strLine.compare(nWord, 4, "elif") != 0))
                continue;
            for (const char* pSystem : {"ANDROID", "linux", "LINUX", "_WIN32", "__APPLE__", "__unix"}) {
                if (strLine.find(pSystem) != std::string::npos)
                    vFound.push_back(Concatenate({strPath, ": ", strLine}));
            }
        }
    }
    return vFound;
}

/// Calls of functions whose names begin so, with their files.
VStrings Calls(const MSources& oSources, const char* pBeginning)
{
    VStrings vFound;
    for (const auto& [strPath, strSource] : oSources) {
        for (const std::string& strCall : CallsOf(strSource, {pBeginning}))
            vFound.push_back(Concatenate({strPath, ": ", strCall}));
    }
    return vFound;
}

MSources Without(MSources oSources, const VStrings& vBeginnings)
{
    for (const std::string& strBeginning : vBeginnings)
        std::erase_if(oSources, [&](const auto& oEntry) { return oEntry.first.rfind(strBeginning, 0) == 0; });
    return oSources;
}

int NonBlankLines(const std::string& strText)
{
    std::istringstream oStream(strText);
    std::string strLine;
    int nLines = 0;
    while (std::getline(oStream, strLine))
        nLines += strLine.find_first_not_of(" \t\r") != std::string::npos;
    return nLines;
}

} // namespace

TEST(IncludeRules, EveryRoomIncludesOnlyWhatItMay)
{
    const MSources oSources = ReadSources({"dewarp", "platform"}, CODE);
    ASSERT_GT(oSources.size(), 30u);
    EXPECT_EQ(Join(BrokenIncludeRules(oSources, HouseRules())), "");
}

TEST(IncludeRules, NoTwoRoomsNeedEachOther)
{
    EXPECT_EQ(Join(RoomsThatNeedEachOther(ReadSources({"dewarp", "platform"}, CODE))), "");
}

TEST(IncludeRules, MethodsStandInTheRoomOfTheirClass)
{
    EXPECT_EQ(Join(MethodsAwayFromHome(ReadSources({"dewarp", "platform"}, CODE))), "");
}

TEST(IncludeRules, OwnHeadersAreThere)
{
    const MSources oSources = ReadSources({"dewarp", "platform"}, {".h", ".cpp", ".inc"});
    VStrings vMissing;
    for (const auto& [strPath, strSource] : oSources) {
        for (const std::string& strInclude : IncludesOf(strSource)) {
            if (strInclude[0] == '"' && oSources.count(strInclude.substr(1, strInclude.size() - 2)) == 0)
                vMissing.push_back(Concatenate({strPath, ": ", strInclude}));
        }
    }
    EXPECT_EQ(Join(vMissing), "");
}

TEST(IncludeRules, UsersOfTheLibraryKeepToInstalledHeadersAndDrawNothingThemselves)
{
    const MSources oUsers =
        ReadSources({"tools", "viewer", "gst", "python", "frei0r", "c"}, {".h", ".cpp", ".c"});
    ASSERT_GT(oUsers.size(), 20u);
    EXPECT_EQ(Join(BrokenUserRules(oUsers, NamesOf(InstalledHeaders()))), "");
}

TEST(IncludeRules, EGLIsCalledOnlyByHostsAndPlatform)
{
    const MSources oSources =
        Without(ReadSources({"dewarp"}, CODE), {"dewarp/android/", "dewarp/hosted/", "dewarp/offscreen/"});
    EXPECT_EQ(Join(Calls(oSources, "egl")), "");
}

TEST(IncludeRules, RoomsWithoutGLCallNoGL)
{
    const MSources oSources =
        ReadSources({"dewarp/records", "dewarp/tables", "dewarp/lenses", "dewarp/geometry", "dewarp/views",
                     "dewarp/control", "dewarp/mapping", "dewarp/overlays", "dewarp/shaders", "dewarp/cpu"},
                    CODE);
    EXPECT_EQ(Join(Calls(oSources, "gl")), "");
}

TEST(IncludeRules, TheLibraryHasNoCodeForOneSystemOnly)
{
    EXPECT_EQ(Join(SystemConditions(ReadSources({"dewarp"}, {".h", ".cpp", ".inc"}))), "");
    EXPECT_EQ(SystemConditions({{"A", "#ifdef B\n # elif defined(__linux__)\n#define ANDROID\n"}}).size(),
              1u);
}

TEST(IncludeRules, FilesStayBelowFourHundredLines)
{
    VStrings vLong;
    for (const auto& [strPath, strSource] : ReadSources({"dewarp", "platform", "tools"}, CODE)) {
        if (CountLines(strSource) > 400)
            vLong.push_back(Concatenate({strPath, ": ", std::to_string(CountLines(strSource))}));
    }
    EXPECT_EQ(Join(vLong), "");
}

TEST(IncludeRules, FunctionsHaveSixtyLinesAtMost)
{
    EXPECT_EQ(Join(LongFunctions(ReadSources({"dewarp", "platform", "tools"}, CODE), 60)), "");
}

TEST(IncludeRules, EveryRoomSaysWhatItMayInclude)
{
    MSources oReadmes = ReadSources({"dewarp", "platform"}, {"README.md"});
    for (const std::string& strRoom : Rooms()) {
        const std::string strReadme = oReadmes[strRoom + "/README.md"];
        EXPECT_GT(NonBlankLines(strReadme), 0) << strRoom << " has no README.md";
        EXPECT_LE(NonBlankLines(strReadme), 10) << strRoom << " says too much";
        EXPECT_NE(strReadme.find("May include"), std::string::npos) << strRoom;
        EXPECT_NE(strReadme.find("Must not include"), std::string::npos) << strRoom;
    }
}

// The rules themselves, tried on sources that break them.

namespace
{

VStrings Broken(const MSources& oSources)
{
    return BrokenIncludeRules(oSources, HouseRules());
}

/// Lines that include these headers below dewarp/.
std::string Includes(const VStrings& vHeaders)
{
    std::string strText;
    for (const std::string& strHeader : vHeaders)
        strText += Concatenate({"#include \"dewarp/", strHeader, "\"\n"});
    return strText;
}

} // namespace

TEST(BrokenIncludeRules, RoomsIncludeThoseBeforeThem)
{
    EXPECT_EQ(Broken({{"dewarp/lenses/A.cpp", Includes({"records/B.h", "tables/B.h", "lenses/B.h"})},
                      {"dewarp/geometry/A.cpp", Includes({"records/B.h", "lenses/B.h", "tables/B.h"})},
                      {"dewarp/views/A.cpp", Includes({"records/B.h", "lenses/B.h", "geometry/B.h"})},
                      {"dewarp/control/A.cpp",
                       Includes({"records/B.h", "lenses/B.h", "geometry/B.h", "views/B.h", "control/B.h"})},
                      {"dewarp/mapping/A.cpp", Includes({"records/B.h", "lenses/B.h", "geometry/B.h",
                                                         "views/B.h", "control/Decision.h", "mapping/B.h"})},
                      {"dewarp/overlays/A.cpp", Includes({"records/B.h", "overlays/B.h"})},
                      {"dewarp/cpu/A.cpp",
                       Includes({"records/B.h", "lenses/B.h", "geometry/B.h", "views/B.h", "control/B.h",
                                 "mapping/B.h", "overlays/B.h", "tables/B.h", "cpu/B.h"})},
                      {"dewarp/CFoo.h", Includes({"control/B.h", "gl/B.h", "tables/B.h"})},
                      {"dewarp/hosted/A.cpp", Includes({"CFoo.h", "gl/B.h", "hosted/B.h"})}}),
              VStrings{});
}

TEST(BrokenIncludeRules, NoRoomIncludesOneBehindIt)
{
    for (const auto& [pRoom, pOther] : {std::pair{"records", "tables"},
                                        {"tables", "records"},
                                        {"lenses", "geometry"},
                                        {"geometry", "views"},
                                        {"views", "control"},
                                        {"views", "tables"},
                                        {"views", "overlays"},
                                        {"control", "overlays"},
                                        {"control", "gl"},
                                        {"overlays", "views"},
                                        {"overlays", "geometry"},
                                        {"shaders", "views"},
                                        {"gl", "offscreen"},
                                        {"control", "cpu"},
                                        {"control", "mapping"},
                                        {"mapping", "control"},
                                        {"mapping", "overlays"},
                                        {"mapping", "cpu"},
                                        {"overlays", "cpu"},
                                        {"gl", "cpu"},
                                        {"cpu", "gl"},
                                        {"cpu", "shaders"},
                                        {"cpu", "offscreen"}}) {
        const std::string strPath = Concatenate({"dewarp/", pRoom, "/A.cpp"});
        const VStrings vBroken = Broken({{strPath, Includes({Concatenate({pOther, "/B.h"})})}});
        ASSERT_FALSE(vBroken.empty()) << pRoom << " " << pOther;
        EXPECT_EQ(vBroken.front(), Concatenate({strPath, " may not include \"dewarp/", pOther, "/B.h\""}));
    }
}

TEST(BrokenIncludeRules, GLIsFoundThroughOtherFiles)
{
    for (const char* pRoom : {"records", "tables", "lenses", "geometry", "views", "control", "mapping",
                              "overlays", "shaders", "cpu"}) {
        const std::string strRoom = Concatenate({"dewarp/", pRoom, "/"});
        EXPECT_EQ(Broken({{strRoom + "A.cpp", Concatenate({"#include \"", strRoom, "B.h\"\n"})},
                          {strRoom + "B.h", "#include <GLES3/gl31.h>\n"}}),
                  (VStrings{strRoom + "A.cpp may not reach <GLES3/gl31.h>",
                            strRoom + "B.h may not reach <GLES3/gl31.h>"}));
    }
}

TEST(BrokenIncludeRules, ClocksAndTheLogAreForSomeRoomsOnly)
{
    EXPECT_EQ(Broken({{"dewarp/geometry/A.cpp", "#include <chrono>\n#include <android/log.h>\n"}}).size(),
              2u);
    EXPECT_EQ(Broken({{"dewarp/control/A.cpp", "#include <chrono>\n#include <android/log.h>\n"}}),
              VStrings{"dewarp/control/A.cpp may not reach <chrono>"});
    EXPECT_EQ(Broken({{"dewarp/overlays/A.cpp", "#include <android/log.h>\n"}}), VStrings{});
}

TEST(BrokenIncludeRules, ShaderTextKnowsFormatsAndColourMatricesOnly)
{
    EXPECT_EQ(Broken({{"dewarp/shaders/A.cpp", "#include \"dewarp/CustomGPUDewarper.h\"\n"}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/shaders/A.cpp", Includes({"records/SShaderProperties.h"})}}).size(), 1u);
    EXPECT_EQ(
        Broken({{"dewarp/shaders/A.cpp", Includes({"records/Enumerations.h", "records/ColourMatrix.h"})}}),
        VStrings{});
}

TEST(BrokenIncludeRules, DrawingKnowsDecisionsAndNoHost)
{
    EXPECT_EQ(Broken({{"dewarp/gl/A.cpp", "#include <EGL/egl.h>\n"}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/gl/A.cpp", "#include <ui/GraphicBuffer.h>\n"}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/gl/A.cpp", Includes({"control/SFrameDecision.h", "views/B.h"})}}), VStrings{});
    EXPECT_EQ(Broken({{"dewarp/gl/A.cpp", Includes({"control/Requests.h"})}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/gl/A.cpp", Includes({"gl/B.h"})},
                      {"dewarp/gl/B.h", Includes({"CustomGPUDewarper.h"})}})
                  .size(),
              3u);
    EXPECT_EQ(Broken({{"dewarp/gl/A.cpp", "#include \"platform/Display.h\"\n"},
                      {"platform/Display.h", "#include <EGL/egl.h>\n"}}),
              VStrings{"dewarp/gl/A.cpp may not reach <EGL/egl.h>"});
}

TEST(BrokenIncludeRules, TheProcessorEngineKnowsItsInterfaceAndNothingThatHolds)
{
    EXPECT_EQ(Broken({{"dewarp/cpu/A.h", Includes({"Dewarper.h"})}}), VStrings{});
    EXPECT_EQ(Broken({{"dewarp/cpu/A.cpp", Includes({"CreateDewarper.h"})}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/cpu/A.cpp", "#include \"platform/Display.h\"\n"}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/cpu/A.cpp", "#include <immintrin.h>\n"}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/cpu/CellAVX2.cpp", "#include <immintrin.h>\n"}}), VStrings{});
}

TEST(BrokenIncludeRules, InterfaceAndChoiceOfTheEnginesReachNoGL)
{
    for (const char* pFile : {"dewarp/Dewarper.h", "dewarp/CreateDewarper.cpp", "dewarp/GLEngineApart.cpp"}) {
        EXPECT_EQ(Broken({{pFile, "#include <GLES3/gl31.h>\n"}}).size(), 1u) << pFile;
        EXPECT_EQ(Broken({{pFile, Includes({"CustomGPUDewarper.h"})}}).size(), 1u) << pFile;
        EXPECT_EQ(Broken({{pFile, Includes({"offscreen/GLDewarper.h"})}}).size(), 1u) << pFile;
    }
}

TEST(BrokenIncludeRules, HostsKnowNoOtherHost)
{
    for (const char* pHost : {"android", "offscreen", "hosted"}) {
        EXPECT_EQ(Broken({{Concatenate({"dewarp/", pHost, "/A.cpp"}),
                           Includes({"android/B.h", "offscreen/B.h", "hosted/B.h"})}})
                      .size(),
                  2u);
    }
    EXPECT_EQ(Broken({{"dewarp/CFoo.cpp", Includes({"offscreen/B.h"})}}).size(), 1u);
    EXPECT_EQ(Broken({{"dewarp/LumorDewarp.h", Includes({"offscreen/B.h", "hosted/B.h"})}}), VStrings{});
}

TEST(BrokenIncludeRules, ThePlatformKnowsNoDewarper)
{
    EXPECT_EQ(Broken({{"platform/A.cpp", "#include \"dewarp/records/LogTag.h\"\n"}}).size(), 2u);
    EXPECT_EQ(Broken({{"platform/A.cpp", "#include \"platform/linux/B.h\"\n"}}).size(), 1u);
}

TEST(BrokenIncludeRules, FilesOutsideEveryRoomAreReported)
{
    EXPECT_EQ(Broken({{"elsewhere/A.cpp", ""}}), VStrings{"elsewhere/A.cpp belongs to no room"});
}

TEST(BrokenUserRules, WhatIsInstalledMayBeIncluded)
{
    EXPECT_EQ(BrokenUserRules({{"tools/A.cpp", "#include \"dewarp/LumorDewarp.h\"\n#include \"B.h\"\n"
                                               "#include \"platform/LogSink.h\"\n#include <CLI/CLI.hpp>\n"
                                               "// glClear()\nvoid Glow() { glow(); }\n"}},
                              {"dewarp/LumorDewarp.h", "platform/LogSink.h"}),
              VStrings{});
}

TEST(BrokenUserRules, SourcesAndTheLibrarysOwnBusinessAreReported)
{
    EXPECT_EQ(BrokenUserRules({{"gst/A.cpp", "#include \"../dewarp/B.h\"\n#include \"B.cpp\"\n"
                                             "#include \"dewarp/gl/B.h\"\n#include \"platform/linux/B.h\"\n"
                                             "#include \"tests/support/TestImage.h\"\n"}},
                              {"dewarp/LumorDewarp.h"})
                  .size(),
              5u);
}

TEST(BrokenUserRules, GLAndEGLAreReported)
{
    EXPECT_EQ(
        BrokenUserRules({{"viewer/A.cpp", "#include <GLES3/gl31.h>\n#include <EGL/egl.h>\n"
                                          "void F() { glClear(1); eglTerminate(p); }\n"}},
                        {}),
        (VStrings{"viewer/A.cpp may not include <GLES3/gl31.h>", "viewer/A.cpp may not include <EGL/egl.h>",
                  "viewer/A.cpp may not call glClear", "viewer/A.cpp may not call eglTerminate"}));
}
