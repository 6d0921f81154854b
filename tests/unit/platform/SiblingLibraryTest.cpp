#include "platform/SiblingLibrary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

TEST(SiblingLibrary, WhatTheProcessHasIsTakenFirst)
{
    EXPECT_EQ(FindSiblingFunction("libnot_there", "getenv"), reinterpret_cast<void*>(&std::getenv));
}

TEST(SiblingLibrary, ALibraryOrAFunctionThatIsNotThereIsNull)
{
    EXPECT_EQ(FindSiblingFunction("libnot_there", "lumor_no_such_function"), nullptr);
    EXPECT_EQ(FindSiblingFunction("liblumor_dewarp", "lumor_no_such_function"), nullptr);
    EXPECT_EQ(FindSiblingFunction("", ""), nullptr);
}

TEST(SiblingLibrary, NamesEndWithTheVersionOfTheInterface)
{
    EXPECT_EQ(std::string(SharedLibraryEnding()), ".so.0");
}
