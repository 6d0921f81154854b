#include "dewarp/geometry/PointTree.h"
#include "dewarp/geometry/IndexSet.h"

#include "PolygonCases.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

TEST(IndexSet, FindsTheNextMemberAndThenTheFirst)
{
    TRandom oRandom(1);
    for (const std::size_t nSize : {1U, 63U, 64U, 65U, 4096U, 4097U, 20000U}) {
        CIndexSet oSet(nSize);
        std::set<std::size_t> oExpected;
        std::size_t nFound = 0;
        EXPECT_FALSE(oSet.NextFrom(0, nFound));
        for (int i = 0; i < 3000; ++i) {
            const std::size_t nMember = oRandom() % nSize;
            if (oRandom() % 3 == 0) {
                oSet.Insert(nMember);
                oExpected.insert(nMember);
            } else {
                oSet.Remove(nMember);
                oExpected.erase(nMember);
            }
            const std::size_t nFirst = oRandom() % nSize;
            auto oNext = oExpected.lower_bound(nFirst);
            if (oNext == oExpected.end())
                oNext = oExpected.begin();
            ASSERT_EQ(oSet.NextFrom(nFirst, nFound), !oExpected.empty());
            if (!oExpected.empty()) {
                ASSERT_EQ(nFound, *oNext);
            }
        }
    }
}

TEST(DoubleArea, IsPositiveFromXTowardsYAndExactAtTheEnds)
{
    const int nLow = std::numeric_limits<int>::min();
    const int nHigh = std::numeric_limits<int>::max();
    const TArea nSide = static_cast<TArea>(nHigh) - nLow;
    EXPECT_TRUE(DoubleArea({0, 0}, {4, 0}, {0, 3}) == 12);
    EXPECT_TRUE(DoubleArea({0, 0}, {0, 3}, {4, 0}) == -12);
    EXPECT_TRUE(DoubleArea({nLow, nLow}, {nHigh, nLow}, {nHigh, nHigh}) == nSide * nSide);
    EXPECT_TRUE(DoubleArea({nLow, nHigh}, {nHigh, nHigh}, {nHigh, nLow}) == -nSide * nSide);
}

static bool SamePlace(const SGPoint& sA, const SGPoint& sB)
{
    return sA.x == sB.x && sA.y == sB.y;
}

// Inside or on the edge and at no corner, by winding and segments instead of signs of areas.
static bool Counts(const TPoints& vTriangle, const SGPoint& sPlace)
{
    const bool bCorner =
        SamePlace(sPlace, vTriangle[0]) || SamePlace(sPlace, vTriangle[1]) || SamePlace(sPlace, vTriangle[2]);
    return !bCorner && (IsOnOutline(vTriangle, sPlace) || WindingNumber(vTriangle, sPlace) != 0);
}

TEST(PointTree, FindsAPointExactlyWhenOneIsThere)
{
    TRandom oRandom(2);
    for (int i = 0; i < 300; ++i) {
        const int nExtent = i % 3 == 0 ? 6 : 1000; // small: points at corners, on edges, twice
        const TPoints vPoints = Scribble(oRandom, Between(oRandom, 1, 100), nExtent);
        CPointTree oTree(vPoints);
        std::set<std::size_t> oLeft;
        for (std::size_t n = 0; n < vPoints.size(); ++n)
            oLeft.insert(n);
        while (!oLeft.empty()) {
            TPoints vTriangle = Scribble(oRandom, 3, nExtent);
            if (DoubleArea(vTriangle[0], vTriangle[1], vTriangle[2]) < 0)
                std::swap(vTriangle[1], vTriangle[2]);
            const bool bExpected = std::any_of(oLeft.begin(), oLeft.end(),
                                               [&](std::size_t n) { return Counts(vTriangle, vPoints[n]); });
            std::size_t nFound = 0;
            ASSERT_EQ(oTree.FindInside(vTriangle[0], vTriangle[1], vTriangle[2], nFound), bExpected);
            if (bExpected) {
                ASSERT_EQ(oLeft.count(nFound), 1U);
                ASSERT_TRUE(Counts(vTriangle, vPoints[nFound]));
            }
            const std::size_t nGone =
                *std::next(oLeft.begin(), Between(oRandom, 0, static_cast<int>(oLeft.size()) - 1));
            oTree.Remove(nGone);
            oLeft.erase(nGone);
        }
    }
}

TEST(PointTree, LooksNearTheSecondCornerFirst)
{
    // A row of points along the middle of a long triangle.
    TPoints vPoints;
    for (int i = 1; i < 1000; ++i)
        vPoints.push_back({i, 0});
    CPointTree oTree(vPoints);
    std::size_t nFound = 0;
    ASSERT_TRUE(oTree.FindInside({1000, 20}, {0, 0}, {1000, -20}, nFound));
    EXPECT_LT(vPoints[nFound].x, 20);
    const long long nVisits = oTree.GetVisits();
    EXPECT_GT(nVisits, 0);
    ASSERT_TRUE(oTree.FindInside({0, 0}, {1000, -20}, {1000, 20}, nFound));
    EXPECT_GT(vPoints[nFound].x, 980);
    EXPECT_GT(oTree.GetVisits(), nVisits);
}
