#include "RoomOrder.h"

#include <gtest/gtest.h>

namespace
{

using VStrings = std::vector<std::string>;

const MSources IN_ORDER = {
    {"dewarp/LumorDewarp.h", "#include \"dewarp/CFoo.h\"\n#include \"dewarp/host/Host.h\"\n"},
    {"dewarp/CFoo.h", "#include \"dewarp/a/A.h\"\n"},
    {"dewarp/host/Host.h", "#include \"dewarp/CFoo.h\"\n#include \"dewarp/host/Own.h\"\n"},
    {"dewarp/a/A.h", "#include \"platform/P.h\"\n#include <vector>\n"},
    {"platform/linux/P.cpp", "#include \"platform/P.h\"\n"},
};

} // namespace

TEST(RoomOrder, ARoomIsAFolderBelowTheLibrary)
{
    EXPECT_EQ(RoomOf("dewarp/views/A.h"), "dewarp/views");
    EXPECT_EQ(RoomOf("dewarp/views/deeper/A.h"), "dewarp/views");
    EXPECT_EQ(RoomOf("dewarp/A.h"), "dewarp");
    EXPECT_EQ(RoomOf("dewarp/Dewarper.h"), "dewarp/Dewarper");
    EXPECT_EQ(RoomOf("dewarp/Dewarper.cpp"), "dewarp/Dewarper");
    EXPECT_EQ(RoomOf("dewarp/DewarperState.h"), "dewarp");
    EXPECT_EQ(RoomOf("platform/linux/A.cpp"), "platform");
    EXPECT_EQ(RoomOf("tools/A.cpp"), "tools");
    EXPECT_EQ(RoomOf("A.h"), "A.h");
}

TEST(RoomOrder, RoomsInOrderAreNotReported)
{
    EXPECT_EQ(RoomsThatNeedEachOther(IN_ORDER), VStrings{});
}

TEST(RoomOrder, TwoRoomsThatNeedEachOtherAreBothReported)
{
    MSources oSources = IN_ORDER;
    oSources["dewarp/a/B.cpp"] = "#include \"dewarp/CFoo.h\"\n";
    oSources["dewarp/a/C.cpp"] = "#include \"dewarp/CFoo.h\"\n";
    EXPECT_EQ(
        RoomsThatNeedEachOther(oSources),
        (VStrings{"dewarp and dewarp/a need each other: dewarp/CFoo.h includes \"dewarp/a/A.h\" (1 of 1)",
                  "dewarp/a and dewarp need each other: dewarp/a/B.cpp includes \"dewarp/CFoo.h\" (1 of "
                  "2)"}));
}

TEST(RoomOrder, ACircleOfSeveralRoomsIsReportedAtEveryRoom)
{
    MSources oSources = IN_ORDER;
    oSources["platform/Q.h"] = "#include \"dewarp/host/Host.h\"\n";
    EXPECT_EQ(RoomsThatNeedEachOther(oSources).size(), 4u);
}

TEST(RoomOrder, AMethodAwayFromItsClassIsReported)
{
    const MSources oSources = {
        {"dewarp/CFoo.h",
         "struct SBar;\nclass CFoo\n{\n    void In() {}\n    void Here();\n    void Away();\n};\n"},
        {"dewarp/CFoo.cpp", "void CFoo::Here() {}\n"},
        {"dewarp/a/A.cpp", "namespace\n{\nstruct SLocal\n{\n    void F();\n};\nvoid SLocal::F() {}\n}\n"
                           "CFoo::CFoo() {}\nvoid CFoo::Away()\n{\n    CFoo::Here();\n}\nvoid Free() {}\n"
                           "void SBar::F() {}\nvoid Other::F() {}\n"},
        {"dewarp/b/SBar.h", "struct SBar\n{\n    void F();\n    struct SLocal {};\n};\n"},
        {"dewarp/a/SBar.h", "#include \"dewarp/b/SBar.h\"\nstruct SBar;\n"},
        {"dewarp/a/SPart.h", "struct CFoo::SPart\n{\n    void F();\n};\n"},
    };
    EXPECT_EQ(MethodsAwayFromHome(oSources), (VStrings{"dewarp/a/A.cpp: CFoo::CFoo of a class in dewarp",
                                                       "dewarp/a/A.cpp: CFoo::Away of a class in dewarp",
                                                       "dewarp/a/A.cpp: SBar::F of a class in dewarp/b"}));
}

TEST(RoomOrder, FunctionsAreMeasuredWithTheirSignature)
{
    const MSources oSources = {
        {"tools/A.cpp", "// A\nvoid A(int n,\n       int m)\n{\n    F();\n}\nvoid B() {}\n"}};
    EXPECT_EQ(LongFunctions(oSources, 4), VStrings{"tools/A.cpp:2: A has 5 lines"});
    EXPECT_EQ(LongFunctions(oSources, 5), VStrings{});
}
