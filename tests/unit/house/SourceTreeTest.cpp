#include "SourceTree.h"

#include <gtest/gtest.h>

using VStrings = std::vector<std::string>;

TEST(SourceTree, IncludesAreFoundAndCommentsAreNot)
{
    EXPECT_EQ(IncludesOf("#include \"dewarp/a.h\"\n  # include <vector> // x\n// #include <b>\n"
                         "/* #include <c>\n#include <d> */\n#include <GLES3/gl31.h>"),
              (VStrings{"\"dewarp/a.h\"", "<vector>", "<GLES3/gl31.h>"}));
}

TEST(SourceTree, OtherDirectivesAreNoIncludes)
{
    EXPECT_EQ(IncludesOf("#define include <a>\n#include MACRO\n#include <open\ninclude <b>\n#\n#includes\n"),
              VStrings{});
}

TEST(SourceTree, CommentSignsWithinLiteralsAreText)
{
    EXPECT_EQ(WithoutComments("a = \"// no /* no\"; // yes\nb = '\"'; /* yes\n */ c;"),
              "a = \"// no /* no\"; \nb = '\"'; \n c;");
    EXPECT_EQ(WithoutComments("a = \"\\\"//\"; n = 1'000; // x"), "a = \"\\\"//\"; n = 1'000; ");
    EXPECT_EQ(WithoutComments("R\"x(/*\\\")\" // )x\" /**/;"), "R\"x(/*\\\")\" // )x\" ;");
    EXPECT_EQ(WithoutComments("R\"(//"), "R\"(//");
    EXPECT_EQ(WithoutComments("/* never closed"), "");
    EXPECT_EQ(WithoutComments("a // b"), "a ");
}

TEST(SourceTree, IncludesAreFollowedThroughOwnFiles)
{
    const MSources oSources = {{"dewarp/a.cpp", "#include \"dewarp/a.h\"\n"},
                               {"dewarp/a.h", "#include \"dewarp/b.h\"\n#include <vector>\n"},
                               {"dewarp/b.h", "#include \"dewarp/a.h\"\n#include <EGL/egl.h>\n"}};
    EXPECT_EQ(IncludesReached(oSources, "dewarp/a.cpp"),
              (VStrings{"\"dewarp/a.h\"", "\"dewarp/b.h\"", "<vector>", "<EGL/egl.h>"}));
    EXPECT_EQ(IncludesReached(oSources, "dewarp/missing.cpp"), VStrings{});
}

TEST(SourceTree, LinesAreCountedWithAnUnfinishedLastOne)
{
    EXPECT_EQ(CountLines(""), 0);
    EXPECT_EQ(CountLines("a\n"), 1);
    EXPECT_EQ(CountLines("a\nb"), 2);
}

TEST(SourceTree, TheRepositoryIsFound)
{
    const MSources oSources = ReadSources({"tests/unit/house", "no such folder"}, {".h"});
    ASSERT_EQ(oSources.count("tests/unit/house/SourceTree.h"), 1u);
    EXPECT_EQ(oSources.count("tests/unit/house/SourceTree.cpp"), 0u);
}
