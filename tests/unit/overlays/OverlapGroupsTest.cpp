#include "dewarp/overlays/OverlapGroups.h"

#include <gtest/gtest.h>

namespace
{

SGPUString Drawn(int x, int y, int w, int h)
{
    SGPUString sString;
    sString.nDrawnX = x;
    sString.nDrawnY = y;
    sString.nDrawnW = w;
    sString.nDrawnH = h;
    sString.nOverlapGroup = 7;
    return sString;
}

std::vector<int> GroupsOf(std::vector<SGPUString> vStrings)
{
    RecomputeOverlapGroups(vStrings);
    std::vector<int> vGroups;
    for (const SGPUString& rString : vStrings)
        vGroups.push_back(rString.nOverlapGroup);
    return vGroups;
}

} // namespace

TEST(OverlapGroups, StringsApartHaveNone)
{
    EXPECT_EQ(GroupsOf({}), std::vector<int>());
    EXPECT_EQ(GroupsOf({Drawn(0, 0, 10, 10), Drawn(10, 0, 10, 10), Drawn(0, 10, 20, 5)}),
              (std::vector<int>{0, 0, 0}));
}

TEST(OverlapGroups, StringsThatCoverNothingOverlapNothing)
{
    EXPECT_EQ(GroupsOf({Drawn(0, 0, 10, 10), Drawn(5, 5, 0, 10), Drawn(5, 5, 10, 0)}),
              (std::vector<int>{0, 0, 0}));
}

TEST(OverlapGroups, EveryPairHasItsNumber)
{
    EXPECT_EQ(GroupsOf({Drawn(0, 0, 10, 10), Drawn(50, 0, 10, 10), Drawn(9, 9, 10, 10), Drawn(59, 0, 5, 5)}),
              (std::vector<int>{1, 2, 1, 2}));
}

TEST(OverlapGroups, AStringBetweenTwoMakesThemOneGroup)
{
    EXPECT_EQ(GroupsOf({Drawn(0, 0, 10, 10), Drawn(18, 0, 10, 10), Drawn(8, 0, 12, 10)}),
              (std::vector<int>{1, 1, 1}));
    // Two groups of two, joined by a fifth.
    const std::vector<int> vGroups = GroupsOf({Drawn(0, 0, 10, 10), Drawn(5, 0, 10, 10), Drawn(30, 0, 10, 10),
                                               Drawn(35, 0, 10, 10), Drawn(12, 0, 20, 10)});
    for (const int nGroup : vGroups)
        EXPECT_EQ(nGroup, vGroups.front());
    EXPECT_NE(vGroups.front(), 0);
}
