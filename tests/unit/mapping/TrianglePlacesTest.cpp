#include "dewarp/mapping/TrianglePlaces.h"

#include <cmath>
#include <gtest/gtest.h>

namespace
{

/// A corner that shows (u, v), so far away.
SScreenVertex Corner(double x, double y, double u, double v, double fW = 1.0)
{
    return {x, y, 1.0 / fW, u / fW, v / fW, 0.5};
}

SScreenTriangle Triangle(const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC)
{
    SScreenTriangle t;
    EXPECT_TRUE(t.SetUp(rA, rB, rC, false));
    return t;
}

SPointD Only(const SScreenTriangle& t, double u, double v)
{
    SPointD aPlaces[MOST_PLACES];
    EXPECT_EQ(PlacesOf(t, {u, v}, aPlaces), 1);
    return aPlaces[0];
}

} // namespace

TEST(Covers, OneOfTwoTrianglesHasTheEdgeBetweenThem)
{
    // A square cut from corner to corner, each half drawn either way round.
    const SScreenVertex aCorners[4] = {Corner(0, 0, 0, 0), Corner(8, 0, 8, 0), Corner(8, 8, 8, 8),
                                       Corner(0, 8, 0, 8)};
    for (const bool bTurned : {false, true}) {
        const SScreenTriangle a = bTurned ? Triangle(aCorners[0], aCorners[2], aCorners[1])
                                          : Triangle(aCorners[0], aCorners[1], aCorners[2]);
        const SScreenTriangle b = Triangle(aCorners[0], aCorners[2], aCorners[3]);
        for (int n = 0; n < 17 * 17; ++n) {
            const int nRow = n / 17;
            const double x = n % 17 * 0.5;
            const double y = nRow * 0.5;
            EXPECT_EQ(Covers(a, x, y) + Covers(b, x, y), x < 8.0 && y < 8.0 ? 1 : 0) << x << ", " << y;
        }
        for (const SScreenTriangle& t : {a, b}) {
            EXPECT_FALSE(Covers(t, -1e-9, 4.0));
            EXPECT_FALSE(Covers(t, 4.0, -1e-9));
        }
    }
}

TEST(PlacesOf, FlatTrianglesAreTurnedRound)
{
    // Shows (10 + 2 x, 20 + 4 y).
    const SScreenTriangle t = Triangle(Corner(0, 0, 10, 20), Corner(100, 0, 210, 20), Corner(0, 50, 10, 220));
    const SPointD s = Only(t, 10 + 2 * 31.25, 20 + 4 * 7.5);
    EXPECT_NEAR(s.x, 31.25, 1e-12);
    EXPECT_NEAR(s.y, 7.5, 1e-12);
}

TEST(PlacesOf, DistanceCounts)
{
    // Half way along the target an edge that ends three times as far away shows a quarter of the frame's way.
    const SScreenTriangle t = Triangle(Corner(0, 0, 0, 0), Corner(100, 0, 40, 0, 3.0), Corner(0, 100, 0, 40));
    double u = 0.0;
    double v = 0.0;
    t.Show(50.0, 0.0, u, v);
    EXPECT_NEAR(u, 10.0, 1e-12);
    const SPointD s = Only(t, 10.0, 0.0);
    EXPECT_NEAR(s.x, 50.0, 1e-10);
    EXPECT_NEAR(s.y, 0.0, 1e-10);
}

TEST(PlacesOf, WhatIsALineInTheFrameIsFoundAlongTheEdges)
{
    // The upper edge shows one point, as where a panorama meets its pole.
    const SScreenTriangle t = Triangle(Corner(0, 0, 5, 5), Corner(10, 0, 5, 5), Corner(5, 10, 5, 45));
    SPointD aPlaces[MOST_PLACES];
    const int n = PlacesOf(t, {5.0, 25.0}, aPlaces);
    ASSERT_EQ(n, 3);
    EXPECT_NEAR(aPlaces[0].x, 5.0, 1e-12);
    for (int i = 0; i < n; ++i)
        EXPECT_NEAR(aPlaces[i].y, 5.0, 1e-12);
    EXPECT_EQ(PlacesOf(t, {5.1, 25.0}, aPlaces), 0);
    EXPECT_EQ(PlacesOf(t, {5.0, 46.0}, aPlaces), 0);
}

TEST(PlacesOf, WhatIsAPointInTheFrameIsFoundInTheMiddle)
{
    const SScreenTriangle t = Triangle(Corner(0, 0, 5, 5), Corner(9, 0, 5, 5), Corner(0, 9, 5, 5));
    SPointD aPlaces[MOST_PLACES];
    ASSERT_EQ(PlacesOf(t, {5.0, 5.0}, aPlaces), 4);
    EXPECT_NEAR(aPlaces[0].x, 3.0, 1e-12);
    EXPECT_NEAR(aPlaces[0].y, 3.0, 1e-12);
    EXPECT_EQ(PlacesOf(t, {5.0, 5.1}, aPlaces), 0);
}

TEST(OnLattice, CornersOfOnePlaceAreOne)
{
    const SScreenVertex a = OnLattice({100.25 + 3e-5, 7.0 - 2e-5, 0.5, 1.0, 2.0, 0.25});
    EXPECT_EQ(a.x, 100.25);
    EXPECT_EQ(a.y, 7.0);
    EXPECT_EQ(a.fInverseW, 0.5);
    EXPECT_EQ(a.u, 1.0);
    EXPECT_EQ(a.v, 2.0);
    EXPECT_EQ(a.z, 0.25);
}
