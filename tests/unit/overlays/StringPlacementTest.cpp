#include "dewarp/overlays/StringPlacement.h"

#include "dewarp/overlays/SGPUString.h"
#include "dewarp/overlays/StringList.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{

const int VIEW_WIDTH = 401;
const int VIEW_HEIGHT = 301;

/// Three letters of 38 x 64 pixels.
SGPUString Label(int x, int y)
{
    SGPUString sString;
    sString.strText = "abc";
    sString.nHeight = 64;
    sString.nX = x;
    sString.nY = y;
    return sString;
}

SPlacedString Placed(const SGPUString& rString, bool bFlipY = false)
{
    return PlaceString(rString, VIEW_WIDTH, VIEW_HEIGHT, bFlipY);
}

void ExpectDrawn(const SPlacedString& s, int x, int y, int w, int h)
{
    EXPECT_TRUE(s.bVisible);
    EXPECT_EQ(s.sDrawn.x, x);
    EXPECT_EQ(s.sDrawn.y, y);
    EXPECT_EQ(s.sDrawn.width, w);
    EXPECT_EQ(s.sDrawn.height, h);
}

void ExpectNothing(const SPlacedString& s)
{
    EXPECT_FALSE(s.bVisible);
    for (const int n : {s.sDrawn.x, s.sDrawn.y, s.sDrawn.width, s.sDrawn.height})
        EXPECT_EQ(n, 0);
}

} // namespace

TEST(PlaceString, GlyphsAreAsWideAsTheFontsCells)
{
    const SPlacedString s = Placed(Label(10, 20));
    EXPECT_EQ(s.nX, 10);
    EXPECT_EQ(s.nY, 20);
    EXPECT_EQ(s.nGlyphWidth, 38);
    EXPECT_EQ(s.nHeight, 64);
    ExpectDrawn(s, 10, 20, 114, 64);
    SGPUString sSmall = Label(0, 0);
    for (const auto& [nHeight, nWidth] :
         {std::pair{2, 1}, {3, 1}, {5, 2}, {32, 19}, {33, 19}, {8192, 4864}}) {
        sSmall.nHeight = nHeight;
        EXPECT_EQ(Placed(sSmall).nGlyphWidth, nWidth) << nHeight;
    }
}

TEST(PlaceString, AnchorsCountFromEdgesAndMiddlesOfTheTarget)
{
    const long long aX[] = {10, 210, 411};
    const long long aY[] = {-20, 130, 281};
    for (int nRef = 0; nRef < 3; ++nRef) {
        SGPUString sString = Label(10, -20);
        sString.nHRef = nRef;
        sString.nVRef = nRef;
        EXPECT_EQ(Placed(sString).nX, aX[nRef]);
        EXPECT_EQ(Placed(sString).nY, aY[nRef]);
    }
}

TEST(PlaceString, AlignmentTakesTheStringsExtentOrHalfOfIt)
{
    const long long aX[] = {100, 43, -14};
    const long long aY[] = {100, 68, 36};
    for (int nAlign = 0; nAlign < 3; ++nAlign) {
        SGPUString sString = Label(100, 100);
        sString.nHAlign = nAlign;
        sString.nVAlign = nAlign;
        EXPECT_EQ(Placed(sString).nX, aX[nAlign]);
        EXPECT_EQ(Placed(sString).nY, aY[nAlign]);
    }
}

TEST(PlaceString, UnknownAlignmentsAndReferencesCountAsZero)
{
    SGPUString sString = Label(10, 20);
    sString.nHAlign = sString.nVAlign = sString.nHRef = sString.nVRef = 3;
    ExpectDrawn(Placed(sString), 10, 20, 114, 64);
}

TEST(PlaceString, RowsCountFromTheOtherEndWhenFlipped)
{
    ExpectDrawn(Placed(Label(10, 20), true), 10, 301 - 64 - 20, 114, 64);
    ExpectDrawn(Placed(Label(10, -63), true), 10, 300, 114, 64);
    ExpectNothing(Placed(Label(10, -64), true));
}

TEST(PlaceString, StringsThatTouchTheTargetAreVisibleToTheLastPixel)
{
    for (const auto& [x, y] : {std::pair{400, 0}, {-113, 0}, {0, 300}, {0, -63}})
        ExpectDrawn(Placed(Label(x, y)), x, y, 114, 64);
    for (const auto& [x, y] : {std::pair{401, 0}, {-114, 0}, {0, 301}, {0, -64}, {INT_MAX, 0}, {0, INT_MIN}})
        ExpectNothing(Placed(Label(x, y)));
}

TEST(PlaceString, WithoutTextOrAUsableHeightNothingIsDrawn)
{
    for (const int nHeight : {INT_MIN, -1, 0, 1, MOST_TEXT_HEIGHT + 1, INT_MAX}) {
        SGPUString sString = Label(0, 0);
        sString.nHeight = nHeight;
        ExpectNothing(Placed(sString));
    }
    SGPUString sEmpty = Label(0, 0);
    sEmpty.strText.clear();
    ExpectNothing(Placed(sEmpty));
    ExpectNothing(PlaceString(Label(0, 0), 0, 0, false));
}

TEST(PlaceString, VeryLongStringsAreRememberedAsFarAsTheyMayMatter)
{
    SGPUString sString = Label(0, 0);
    sString.nHeight = MOST_TEXT_HEIGHT;
    sString.strText.assign(200000, 'x');
    sString.nHAlign = 1;
    const SPlacedString s = Placed(sString);
    EXPECT_EQ(s.nX, -100000LL * 4864);
    ExpectDrawn(s, -(1 << 28), 0, 1 << 29, MOST_TEXT_HEIGHT);
}

TEST(GlyphOf, CodesFrom32To127HaveTheFontsCells)
{
    for (int nCode = 0; nCode < 256; ++nCode)
        EXPECT_EQ(GlyphOf(static_cast<char>(nCode)), nCode >= 32 && nCode <= 127 ? nCode - 32 : -1) << nCode;
}
