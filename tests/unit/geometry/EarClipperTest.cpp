#include "dewarp/geometry/EarClipper.h"

#include "PolygonCases.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

static TArea AreaOf(const SGTriangle& sTriangle)
{
    return OutlineArea(TPoints(sTriangle.aCorners, sTriangle.aCorners + 3));
}

static TArea Absolute(TArea nArea)
{
    return nArea < 0 ? -nArea : nArea;
}

static TArea SumOfAbsoluteAreas(const std::vector<SGTriangle>& vTriangles)
{
    return std::accumulate(vTriangles.begin(), vTriangles.end(), TArea{0},
                           [](TArea nSum, const SGTriangle& s) { return nSum + Absolute(AreaOf(s)); });
}

static bool Covers(const SGTriangle& sTriangle, const SGPoint& sPlace)
{
    return WindingNumber(TPoints(sTriangle.aCorners, sTriangle.aCorners + 3), sPlace) != 0;
}

static bool IsOnAnyEdge(const std::vector<SGTriangle>& vTriangles, const SGPoint& sPlace)
{
    return std::any_of(vTriangles.begin(), vTriangles.end(), [&sPlace](const SGTriangle& s) {
        return IsOnOutline(TPoints(s.aCorners, s.aCorners + 3), sPlace);
    });
}

static std::ptrdiff_t CountCovering(const std::vector<SGTriangle>& vTriangles, const SGPoint& sPlace)
{
    return std::count_if(vTriangles.begin(), vTriangles.end(),
                         [&sPlace](const SGTriangle& s) { return Covers(s, sPlace); });
}

static TPoints Reversed(TPoints vPoints)
{
    std::reverse(vPoints.begin(), vPoints.end());
    return vPoints;
}

static bool SamePlace(const SGPoint& sA, const SGPoint& sB)
{
    return sA.x == sB.x && sA.y == sB.y;
}

static long long Side(const SGPoint& sA, const SGPoint& sB, const SGPoint& sC)
{
    return (static_cast<long long>(sB.x) - sA.x) * (static_cast<long long>(sC.y) - sA.y) -
           (static_cast<long long>(sB.y) - sA.y) * (static_cast<long long>(sC.x) - sA.x);
}

static bool Blocks(const SGTriangle& sTriangle, const SGPoint& s)
{
    const SGPoint& sA = sTriangle.aCorners[0];
    const SGPoint& sB = sTriangle.aCorners[1];
    const SGPoint& sC = sTriangle.aCorners[2];
    return Side(sA, sB, s) >= 0 && Side(sB, sC, s) >= 0 && Side(sC, sA, s) >= 0 &&
           s.x >= std::min({sA.x, sB.x, sC.x}) && s.x <= std::max({sA.x, sB.x, sC.x}) &&
           s.y >= std::min({sA.y, sB.y, sC.y}) && s.y <= std::max({sA.y, sB.y, sC.y}) && !SamePlace(s, sA) &&
           !SamePlace(s, sB) && !SamePlace(s, sC);
}

static std::size_t After(std::size_t nCorner, std::size_t nPoints)
{
    return nCorner + 1 < nPoints ? nCorner + 1 : 0;
}

static SGTriangle TriangleAt(const TPoints& vRing, std::size_t nCorner)
{
    const std::size_t nBefore = nCorner == 0 ? vRing.size() - 1 : nCorner - 1;
    return {{vRing[nBefore], vRing[nCorner], vRing[After(nCorner, vRing.size())]}};
}

// Ear clipping without any cleverness: one corner after the other, every remaining point looked at.
static std::vector<SGTriangle> WalkPlainly(TPoints vRing)
{
    std::vector<SGTriangle> vTriangles;
    if (OutlineArea(vRing) < 0)
        vRing = Reversed(vRing);
    std::size_t nStart = 1;
    while (vRing.size() > 3) {
        bool bCandidate = false;
        bool bEar = false;
        std::size_t nCut = nStart; // what is cut when a lap finds nothing at all
        std::size_t nCorner = nStart;
        for (std::size_t nStep = 0; nStep < vRing.size() && !bEar; ++nStep) {
            const SGTriangle s = TriangleAt(vRing, nCorner);
            const bool bTurns = Side(s.aCorners[0], s.aCorners[1], s.aCorners[2]) >= 0;
            bEar = bTurns && std::none_of(vRing.begin(), vRing.end(),
                                          [&s](const SGPoint& sPoint) { return Blocks(s, sPoint); });
            if (bEar || (bTurns && !bCandidate))
                nCut = nCorner;
            bCandidate = bCandidate || bTurns;
            nCorner = After(nCorner, vRing.size());
        }
        vTriangles.push_back(TriangleAt(vRing, nCut));
        vRing.erase(vRing.begin() + static_cast<std::ptrdiff_t>(nCut));
        // The follower of the corner cut stands in its place now; the walk goes on one further.
        const std::size_t nFollower = nCut < vRing.size() ? nCut : 0;
        nStart = After(nFollower, vRing.size());
    }
    vTriangles.push_back(TriangleAt(vRing, nStart));
    return vTriangles;
}

static std::vector<SGPoint> Flatten(const std::vector<SGTriangle>& vTriangles)
{
    std::vector<SGPoint> vPoints;
    for (const SGTriangle& sTriangle : vTriangles)
        vPoints.insert(vPoints.end(), sTriangle.aCorners, sTriangle.aCorners + 3);
    return vPoints;
}

static void ExpectSameTriangles(const TPoints& vPoints)
{
    const std::vector<SGPoint> vFast = Flatten(TriangulatePolygon(vPoints));
    const std::vector<SGPoint> vPlain = Flatten(WalkPlainly(vPoints));
    ASSERT_EQ(vFast.size(), vPlain.size());
    for (std::size_t i = 0; i < vFast.size(); ++i) {
        ASSERT_EQ(vFast[i].x, vPlain[i].x) << "corner " << i << " of " << vPoints.size() << " points";
        ASSERT_EQ(vFast[i].y, vPlain[i].y) << "corner " << i << " of " << vPoints.size() << " points";
    }
}

TEST(EarClipper, FewerThanThreePointsGiveNoTriangle)
{
    EXPECT_TRUE(TriangulatePolygon({}).empty());
    EXPECT_TRUE(TriangulatePolygon({{4, 5}}).empty());
    EXPECT_TRUE(TriangulatePolygon({{4, 5}, {8, 9}}).empty());
}

TEST(EarClipper, ATriangleIsItsOwnTriangulationInEitherWinding)
{
    const TPoints vPoints = {{10, 20}, {100, 20}, {55, 80}};
    for (const TPoints& vWinding : {vPoints, Reversed(vPoints)}) {
        const std::vector<SGTriangle> vTriangles = TriangulatePolygon(vWinding);
        ASSERT_EQ(vTriangles.size(), 1U);
        EXPECT_EQ(AreaOf(vTriangles[0]), 90 * 60);
    }
}

TEST(EarClipper, CutsWhatTheWalkCornerByCornerCuts)
{
    TRandom oRandom(11);
    for (int i = 0; i < 1500; ++i) {
        const int nPoints = Between(oRandom, 3, 40);
        ExpectSameTriangles(Scribble(oRandom, nPoints, Between(oRandom, 0, 9))); // touching, repeating, flat
        ExpectSameTriangles(Scribble(oRandom, nPoints, 30000));
        ExpectSameTriangles(Reversed(StarShaped(oRandom, nPoints, 3000)));
        ExpectSameTriangles(Ribbon(oRandom, nPoints + 3, 200));
        if (HasFatalFailure())
            return;
    }
    ExpectSameTriangles(Spiral(60));
    ExpectSameTriangles(Scribble(oRandom, 400, 300));
    ExpectSameTriangles(StarShaped(oRandom, 400, 30000));
}

// Exactly: the areas add up, and every place inside that is on no edge lies in one triangle, outside in none.
static void ExpectExactCover(const TPoints& vPoints, TRandom& oRandom, int nPlaces)
{
    const std::vector<SGTriangle> vTriangles = TriangulatePolygon(vPoints);
    ASSERT_EQ(vTriangles.size(), vPoints.size() - 2);
    ASSERT_TRUE(SumOfAbsoluteAreas(vTriangles) == Absolute(OutlineArea(vPoints)));
    int nLeft = vPoints[0].x;
    int nRight = nLeft;
    int nTop = vPoints[0].y;
    int nBottom = nTop;
    for (const SGPoint& sPoint : vPoints) {
        nLeft = std::min(nLeft, sPoint.x);
        nRight = std::max(nRight, sPoint.x);
        nTop = std::min(nTop, sPoint.y);
        nBottom = std::max(nBottom, sPoint.y);
    }
    for (int i = 0; i < nPlaces; ++i) {
        const SGPoint sPlace{Between(oRandom, nLeft - 2, nRight + 2),
                             Between(oRandom, nTop - 2, nBottom + 2)};
        if (IsOnOutline(vPoints, sPlace) || IsOnAnyEdge(vTriangles, sPlace))
            continue;
        ASSERT_EQ(CountCovering(vTriangles, sPlace), WindingNumber(vPoints, sPlace) != 0 ? 1 : 0)
            << "at " << sPlace.x << ", " << sPlace.y;
    }
}

TEST(EarClipper, CoversStarShapedPolygonsExactlyInBothWindings)
{
    TRandom oRandom(21);
    for (int i = 0; i < 60; ++i) {
        const TPoints vPoints = StarShaped(oRandom, Between(oRandom, 5, 90), 20000);
        ExpectExactCover(vPoints, oRandom, 100);
        ExpectExactCover(Reversed(vPoints), oRandom, 100);
    }
}

TEST(EarClipper, CoversConcavePolygonsExactlyInBothWindings)
{
    TRandom oRandom(22);
    for (int i = 0; i < 60; ++i) {
        const TPoints vPoints = Ribbon(oRandom, Between(oRandom, 4, 90), 400);
        ExpectExactCover(vPoints, oRandom, 100);
        ExpectExactCover(Reversed(vPoints), oRandom, 100);
    }
    ExpectExactCover(Spiral(50), oRandom, 500);
    ExpectExactCover(Reversed(Spiral(51)), oRandom, 500);
}

TEST(EarClipper, PointsOnStraightEdgesLeaveNoGap)
{
    TRandom oRandom(23);
    TPoints vPoints;
    for (int i = 0; i < 12; ++i)
        vPoints.push_back({i * 10, 0});
    for (int i = 0; i < 12; ++i)
        vPoints.push_back({120, i * 10});
    for (int i = 12; i > 0; --i)
        vPoints.push_back({i * 10, 120});
    vPoints.push_back({0, 120});
    vPoints.push_back({60, 60}); // a notch
    ExpectExactCover(vPoints, oRandom, 3000);
    ExpectExactCover(Reversed(vPoints), oRandom, 3000);
}

static void ExpectWoundPlacesCovered(const TPoints& vPoints, const std::vector<SGTriangle>& vTriangles,
                                     TRandom& oRandom)
{
    ASSERT_EQ(vTriangles.size(), vPoints.size() - 2);
    for (int i = 0; i < 200; ++i) {
        const SGPoint sPlace{Between(oRandom, 0, 5000), Between(oRandom, 0, 5000)};
        if (IsOnOutline(vPoints, sPlace) || IsOnAnyEdge(vTriangles, sPlace) ||
            WindingNumber(vPoints, sPlace) == 0)
            continue;
        ASSERT_GE(CountCovering(vTriangles, sPlace), 1) << "at " << sPlace.x << ", " << sPlace.y;
    }
}

TEST(EarClipper, NothingThatACrossingOutlineWindsAroundStaysUncovered)
{
    TRandom oRandom(31);
    for (int i = 0; i < 200; ++i) {
        const TPoints vPoints = Scribble(oRandom, Between(oRandom, 3, 40), 5000);
        ExpectWoundPlacesCovered(vPoints, TriangulatePolygon(vPoints), oRandom);
    }
}

TEST(EarClipper, NothingStaysUncoveredWhenTheSearchIsCutShort)
{
    TRandom oRandom(32);
    for (int i = 0; i < 100; ++i) {
        TPoints vPoints = StarShaped(oRandom, Between(oRandom, 5, 60), 2500);
        for (SGPoint& sPoint : vPoints)
            sPoint = {sPoint.x + 2500, sPoint.y + 2500};
        for (const long long nMaxVisits : {0LL, 1LL, 50LL})
            ExpectWoundPlacesCovered(vPoints, TriangulatePolygon(vPoints, nMaxVisits), oRandom);
    }
}

TEST(EarClipper, ShapesWithoutAreaGiveTrianglesWithoutArea)
{
    const TPoints vSame(50, SGPoint{7, 7});
    TPoints vLine;
    for (int i = 0; i < 50; ++i)
        vLine.push_back({(i * 17) % 50, 2 * ((i * 17) % 50)});
    const TPoints vThereAndBack = {{0, 0}, {10, 0}, {20, 0}, {10, 0}};
    for (const TPoints& vPoints : {vSame, vLine, vThereAndBack}) {
        const std::vector<SGTriangle> vTriangles = TriangulatePolygon(vPoints);
        EXPECT_EQ(vTriangles.size(), vPoints.size() - 2);
        EXPECT_TRUE(SumOfAbsoluteAreas(vTriangles) == 0);
    }
}

TEST(EarClipper, TheLargestCoordinatesAreExact)
{
    const int nLow = std::numeric_limits<int>::min();
    const int nHigh = std::numeric_limits<int>::max();
    // A square with a notch that reaches one unit over the middle.
    const TPoints vPoints = {{nLow, nLow}, {nHigh, nLow}, {nHigh, nHigh}, {nLow, nHigh}, {1, 0}};
    const TArea nSide = static_cast<TArea>(nHigh) - nLow;
    const TArea nNotch = nSide * (static_cast<TArea>(1) - nLow);
    for (const TPoints& vWinding : {vPoints, Reversed(vPoints)}) {
        const std::vector<SGTriangle> vTriangles = TriangulatePolygon(vWinding);
        ASSERT_EQ(vTriangles.size(), 3U);
        EXPECT_TRUE(SumOfAbsoluteAreas(vTriangles) == 2 * nSide * nSide - nNotch);
    }
}

TEST(EarClipper, TheLongestMaskOfTheByteFormIsCovered)
{
    TRandom oRandom(41);
    const TPoints vRibbon = Ribbon(oRandom, 65534, 30000);
    const std::vector<SGTriangle> vTriangles = TriangulatePolygon(vRibbon);
    EXPECT_EQ(vTriangles.size(), 65532U);
    EXPECT_TRUE(SumOfAbsoluteAreas(vTriangles) == Absolute(OutlineArea(vRibbon)));
    EXPECT_EQ(TriangulatePolygon(Scribble(oRandom, 65535, 32767)).size(), 65533U);
    EXPECT_EQ(TriangulatePolygon(Scribble(oRandom, 65535, 3)).size(), 65533U);
}
