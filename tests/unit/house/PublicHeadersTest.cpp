#include "PublicHeaders.h"

#include "RoomOrder.h"
#include "SourceScan.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using VStrings = std::vector<std::string>;

const char* const UMBRELLA = "dewarp/LumorDewarp.h";

/// Our own headers that a header reaches, itself among them.
std::set<std::string> OwnHeadersReached(const MSources& oSources, const std::string& strPath)
{
    std::set<std::string> oReached = {strPath};
    for (const std::string& strInclude : IncludesReached(oSources, strPath)) {
        if (strInclude[0] == '"')
            oReached.insert(strInclude.substr(1, strInclude.size() - 2));
    }
    return oReached;
}

} // namespace

TEST(PublicHeaders, WhatAnInstalledHeaderIncludesIsInstalled)
{
    const MSources oSources = ReadSources({"dewarp", "platform"}, {".h"});
    const std::set<std::string> oInstalled = NamesOf(InstalledHeaders());
    ASSERT_TRUE(oInstalled.contains(UMBRELLA));
    VStrings vMissing;
    for (const std::string& strHeader : oInstalled) {
        EXPECT_EQ(oSources.count(strHeader), 1u) << strHeader << " is not there";
        for (const std::string& strReached : OwnHeadersReached(oSources, strHeader)) {
            if (!oInstalled.contains(strReached))
                vMissing.push_back(Concatenate({strHeader, " reaches ", strReached}));
        }
    }
    EXPECT_EQ(vMissing, VStrings{});
}

TEST(PublicHeaders, WhatTheUmbrellaDoesNotReachHasItsReason)
{
    const std::set<std::string> oReached =
        OwnHeadersReached(ReadSources({"dewarp", "platform"}, {".h"}), UMBRELLA);
    ASSERT_GT(oReached.size(), 20u);
    VStrings vWithout;
    for (const SInstalledHeader& rHeader : InstalledHeaders()) {
        if (!oReached.contains(rHeader.strPath) && rHeader.strReason.empty())
            vWithout.push_back(rHeader.strPath);
    }
    EXPECT_EQ(vWithout, VStrings{});
}

TEST(PublicHeaders, EverythingInThemIsExportedAndNothingElseIs)
{
    const std::set<std::string> oInstalled = NamesOf(InstalledHeaders());
    VStrings vWrong;
    std::size_t nExported = 0;
    for (const auto& [strPath, strSource] : ReadSources({"dewarp", "platform"}, {".h"})) {
        const bool bInstalled = oInstalled.contains(strPath);
        // Android has its own assertion and log; the names of ours are exported where they are defined.
        if (strPath == "platform/Assert.h" || strPath.starts_with("platform/linux/include/"))
            continue;
        for (const std::string& strName : DeclarationsOf(strSource, bInstalled ? MARK_NONE : MARK_API))
            vWrong.push_back(Concatenate({strPath, ": ", strName}));
        nExported += DeclarationsOf(strSource, MARK_API).size();
    }
    EXPECT_EQ(vWrong, VStrings{});
    EXPECT_GT(nExported, 50u);
}

TEST(PublicHeaders, OnlyTheCoreShowsWhatIsNotInstalled)
{
    const std::set<std::string> oInstalled = NamesOf(InstalledHeaders());
    const std::set<std::string> CORE = {"dewarp/control",    "dewarp/geometry",  "dewarp/mapping",
                                        "dewarp/overlays",   "dewarp/records",   "dewarp/views",
                                        "dewarp/GLEngine.h", "platform/Report.h"};
    VStrings vWrong;
    std::set<std::string> oRooms;
    for (const auto& [strPath, strSource] : ReadSources({"dewarp", "platform"}, {".h"})) {
        const bool bMarked = BareCode(strSource).find("LUMOR_INTERNAL_API") != std::string::npos;
        if (!bMarked || strPath == "platform/Export.h")
            continue;
        const std::string strRoom = CORE.contains(strPath) ? strPath : RoomOf(strPath);
        if (oInstalled.contains(strPath) || !CORE.contains(strRoom))
            vWrong.push_back(strPath);
        oRooms.insert(strRoom);
    }
    EXPECT_EQ(vWrong, VStrings{});
    EXPECT_EQ(oRooms, CORE);
}

TEST(InstalledHeadersIn, LinesWithAHeaderAreRead)
{
    const auto vHeaders =
        InstalledHeadersIn("# dewarp/No.h\nset(A\n    dewarp/B.h\n    platform/C.h # why not\n"
                           "    dewarp/D.cpp\n)\nset(E ui/F.h)\n");
    ASSERT_EQ(vHeaders.size(), 2u);
    EXPECT_EQ(vHeaders[0].strPath, "dewarp/B.h");
    EXPECT_EQ(vHeaders[0].strReason, "");
    EXPECT_EQ(vHeaders[1].strPath, "platform/C.h");
    EXPECT_EQ(vHeaders[1].strReason, "why not");
}

TEST(DeclarationsOf, MarkedAndUnmarkedOnesAreToldApart)
{
    const std::string strHeader =
        "class CAhead;\nstruct LUMOR_API SOne\n{\n    void F();\n};\nclass CTwo final : public "
        "CAhead\n{\n};\n"
        "LUMOR_API std::vector<int> Three(int n,\n                           int m);\nbool Four(); // (\n"
        "inline int Five()\n{\n    return Six();\n}\nenum ESeven : int\n{\n    EIGHT\n};\n"
        "extern LUMOR_API const unsigned char pNine[3]; ///< x\nextern const int nTen;\n"
        "unsigned char* Eleven(int);\nusing F = void (*)(int);\n"
        "class LUMOR_INTERNAL_API CTwelve\n{\n};\nLUMOR_INTERNAL_API int Thirteen(int n);\n";
    EXPECT_EQ(DeclarationsOf(strHeader, MARK_API), (VStrings{"SOne", "Three", "pNine"}));
    EXPECT_EQ(DeclarationsOf(strHeader, MARK_NONE), (VStrings{"CTwo", "Four", "nTen", "Eleven"}));
    EXPECT_EQ(DeclarationsOf(strHeader, MARK_INTERNAL), (VStrings{"CTwelve", "Thirteen"}));
}
