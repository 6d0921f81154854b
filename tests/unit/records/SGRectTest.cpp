#include "dewarp/records/SGRect.h"

#include <gtest/gtest.h>

TEST(SGRect, TouchingRectanglesDoNotIntersect)
{
    const SGRect sRect{0, 0, 10, 10};
    for (const SGRect& sOther : {SGRect{10, 0, 5, 5}, SGRect{-5, 0, 5, 5}, SGRect{0, 10, 5, 5},
                                 SGRect{0, -5, 5, 5}, SGRect{10, 10, 5, 5}}) {
        EXPECT_FALSE(sRect.Intersect(sOther)) << sOther.x << ' ' << sOther.y;
        EXPECT_FALSE(sOther.Intersect(sRect)) << sOther.x << ' ' << sOther.y;
    }
}

TEST(SGRect, OnePixelInCommonIsEnough)
{
    const SGRect sRect{0, 0, 10, 10};
    for (const SGRect& sOther : {SGRect{9, 9, 5, 5}, SGRect{-4, -4, 5, 5}, SGRect{9, -4, 5, 5},
                                 SGRect{-4, 9, 5, 5}, SGRect{3, 3, 1, 1}, SGRect{-5, -5, 50, 50}}) {
        EXPECT_TRUE(sRect.Intersect(sOther)) << sOther.x << ' ' << sOther.y;
        EXPECT_TRUE(sOther.Intersect(sRect)) << sOther.x << ' ' << sOther.y;
    }
}

TEST(SGRect, OverlapOnOneAxisIsNotEnough)
{
    EXPECT_FALSE((SGRect{0, 0, 10, 10}.Intersect({5, 20, 10, 10})));
    EXPECT_FALSE((SGRect{0, 0, 10, 10}.Intersect({20, 5, 10, 10})));
}

TEST(SGRect, AgreesWithCountingPixels)
{
    // All rectangles with an area on a small grid.
    for (int x = -2; x <= 4; ++x) {
        for (int nWidth = 1; nWidth <= 4; ++nWidth) {
            for (int y = -2; y <= 4; ++y) {
                for (int nHeight = 1; nHeight <= 4; ++nHeight) {
                    int nCommon = 0;
                    for (int nPixelX = x; nPixelX < x + nWidth; ++nPixelX) {
                        for (int nPixelY = y; nPixelY < y + nHeight; ++nPixelY)
                            nCommon += nPixelX >= 0 && nPixelX < 3 && nPixelY >= 1 && nPixelY < 3;
                    }
                    ASSERT_EQ((SGRect{0, 1, 3, 2}.Intersect({x, y, nWidth, nHeight})), nCommon > 0)
                        << x << ' ' << y << ' ' << nWidth << ' ' << nHeight;
                }
            }
        }
    }
}

TEST(SGPolygon, StartsEmptyAndTransparent)
{
    const SGPolygon sPolygon;
    EXPECT_TRUE(sPolygon.vPoints.empty());
    EXPECT_EQ(sPolygon.nColor, 0u);
}
