#include "platform/DriverTraits.h"

#include <gtest/gtest.h>

// With a context: tests/gl/platform/DriverTraitsGLTest.cpp.
TEST(DriverTraits, WithoutAContextTheyAreAFreshRecord)
{
    const SDriverTraits sTraits = QueryDriverTraits();
    EXPECT_FALSE(sTraits.bKnown);
    EXPECT_TRUE(sTraits.bYUVTarget);
    EXPECT_TRUE(sTraits.bYUVOutput);
    EXPECT_FALSE(sTraits.bPreferHighp);
}
