#include "dewarp/overlays/MaskPolygonFormat.h"

#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <utility>

using TBytes = std::vector<unsigned char>;
using TPlaces = std::vector<std::pair<int, int>>;

// Parses a copy that ends where the bytes end, so that a step beyond is found by an address sanitizer.
static std::vector<SGPolygon> Parse(const TBytes& vBytes)
{
    const std::unique_ptr<unsigned char[]> pCopy(new unsigned char[vBytes.size()]);
    std::copy(vBytes.begin(), vBytes.end(), pCopy.get());
    return ParseMaskPolygons(pCopy.get(), static_cast<int>(vBytes.size()));
}

static TPlaces Places(const SGPolygon& sPolygon)
{
    TPlaces vPlaces;
    for (const SGPoint& sPoint : sPolygon.vPoints)
        vPlaces.emplace_back(sPoint.x, sPoint.y);
    return vPlaces;
}

static TBytes Joined(TBytes vFirst, const TBytes& vSecond)
{
    vFirst.insert(vFirst.end(), vSecond.begin(), vSecond.end());
    return vFirst;
}

static const TBytes TRIANGLE = {0x00, 0x03, 0x00, 0x0A, 0x00, 0x14, 0x00, 0x64, 0x00,
                                0x14, 0x00, 0x37, 0x00, 0x50, 0xFF, 0x00, 0x00, 0x80};
static const TBytes POINT = {0x00, 0x01, 0xFF, 0xFF, 0x80, 0x00, 0x12, 0x34, 0x56, 0x78};

TEST(MaskPolygonFormat, ReadsATriangle)
{
    const CLogCapture oLog;
    const std::vector<SGPolygon> vPolygons = Parse(TRIANGLE);
    ASSERT_EQ(vPolygons.size(), 1U);
    EXPECT_EQ(Places(vPolygons[0]), (TPlaces{{10, 20}, {100, 20}, {55, 80}}));
    EXPECT_EQ(vPolygons[0].nColor, 0xFF000080U);
    EXPECT_TRUE(oLog.Lines().empty());
}

TEST(MaskPolygonFormat, CoordinatesAreSigned)
{
    const std::vector<SGPolygon> vPolygons = Parse(POINT);
    ASSERT_EQ(vPolygons.size(), 1U);
    EXPECT_EQ(Places(vPolygons[0]), (TPlaces{{-1, -32768}}));
    EXPECT_EQ(vPolygons[0].nColor, 0x12345678U);
}

TEST(MaskPolygonFormat, RecordsBackToBackKeepTheirOrder)
{
    const std::vector<SGPolygon> vPolygons = Parse(Joined(Joined(POINT, TRIANGLE), POINT));
    ASSERT_EQ(vPolygons.size(), 3U);
    EXPECT_EQ(vPolygons[0].vPoints.size(), 1U);
    EXPECT_EQ(vPolygons[1].vPoints.size(), 3U);
    EXPECT_EQ(vPolygons[2].vPoints.size(), 1U);
}

TEST(MaskPolygonFormat, NothingGivesNoMasks)
{
    const CLogCapture oLog;
    EXPECT_TRUE(ParseMaskPolygons(nullptr, 100).empty());
    EXPECT_TRUE(ParseMaskPolygons(TRIANGLE.data(), 0).empty());
    EXPECT_TRUE(ParseMaskPolygons(TRIANGLE.data(), -18).empty());
    EXPECT_TRUE(oLog.Lines().empty());
}

TEST(MaskPolygonFormat, MasksOfTooFewPointsAreKept)
{
    const TBytes vTwoPoints = {0, 2, 0, 1, 0, 1, 0, 5, 0, 5, 1, 2, 3, 4};
    const TBytes vNoPoints = {0, 0, 9, 8, 7, 6};
    const std::vector<SGPolygon> vPolygons = Parse(Joined(vTwoPoints, vNoPoints));
    ASSERT_EQ(vPolygons.size(), 2U);
    EXPECT_EQ(Places(vPolygons[0]), (TPlaces{{1, 1}, {5, 5}}));
    EXPECT_EQ(vPolygons[0].nColor, 0x01020304U);
    EXPECT_TRUE(vPolygons[1].vPoints.empty());
    EXPECT_EQ(vPolygons[1].nColor, 0x09080706U);
}

TEST(MaskPolygonFormat, AnIncompleteLastRecordIsDroppedWithOneLogLine)
{
    const TBytes vWhole = Joined(POINT, TRIANGLE);
    for (std::size_t nLength = 1; nLength <= vWhole.size(); ++nLength) {
        CLogCapture oLog;
        const std::vector<SGPolygon> vPolygons =
            Parse(TBytes(vWhole.begin(), vWhole.begin() + static_cast<std::ptrdiff_t>(nLength)));
        const std::size_t nExpected = nLength < POINT.size() ? 0 : nLength < vWhole.size() ? 1 : 2;
        EXPECT_EQ(vPolygons.size(), nExpected) << nLength;
        const bool bWhole = nLength == POINT.size() || nLength == vWhole.size();
        EXPECT_EQ(oLog.Lines().size(), bWhole ? 0U : 1U) << nLength;
    }
}

TEST(MaskPolygonFormat, ACountFarBeyondTheLengthIsDropped)
{
    CLogCapture oLog;
    EXPECT_TRUE(Parse(Joined({0xFF, 0xFF}, TRIANGLE)).empty());
    EXPECT_EQ(oLog.Lines().size(), 1U);
}

TEST(MaskPolygonFormat, TheLongestMaskIsRead)
{
    TBytes vBytes = {0xFF, 0xFF};
    vBytes.resize(2 + 4 * 65535 + 4, 0x01);
    const std::vector<SGPolygon> vPolygons = Parse(vBytes);
    ASSERT_EQ(vPolygons.size(), 1U);
    EXPECT_EQ(vPolygons[0].vPoints.size(), 65535U);
    EXPECT_EQ(vPolygons[0].vPoints.back().y, 0x0101);
    EXPECT_EQ(vPolygons[0].nColor, 0x01010101U);
}

TEST(MaskPolygonFormat, BuildsTheBytesOfATriangle)
{
    SGPolygon sPolygon;
    sPolygon.vPoints = {{10, 20}, {100, 20}, {55, 80}};
    sPolygon.nColor = 0xFF000080;
    EXPECT_EQ(BuildMaskPolygons({sPolygon}), TRIANGLE);
    SGPolygon sPoint;
    sPoint.vPoints = {{-1, -32768}};
    sPoint.nColor = 0x12345678;
    EXPECT_EQ(BuildMaskPolygons({sPoint, sPolygon}), Joined(POINT, TRIANGLE));
    EXPECT_TRUE(BuildMaskPolygons({}).empty());
}

TEST(MaskPolygonFormat, WhatIsBuiltIsReadAgain)
{
    std::mt19937 oRandom(5);
    std::vector<SGPolygon> vPolygons(20);
    for (SGPolygon& sPolygon : vPolygons) {
        sPolygon.vPoints.resize(oRandom() % 50);
        for (SGPoint& sPoint : sPolygon.vPoints)
            sPoint = {static_cast<int>(oRandom() % 65536) - 32768,
                      static_cast<int>(oRandom() % 65536) - 32768};
        sPolygon.nColor = static_cast<unsigned int>(oRandom());
    }
    const std::vector<SGPolygon> vAgain = Parse(BuildMaskPolygons(vPolygons));
    ASSERT_EQ(vAgain.size(), vPolygons.size());
    for (std::size_t i = 0; i < vAgain.size(); ++i) {
        EXPECT_EQ(Places(vAgain[i]), Places(vPolygons[i]));
        EXPECT_EQ(vAgain[i].nColor, vPolygons[i].nColor);
    }
}

TEST(MaskPolygonFormat, WhatDoesNotFitIsRefusedAsAWhole)
{
    SGPolygon sGood;
    sGood.vPoints = {{32767, -32768}, {0, 0}, {1, 1}};
    ASSERT_FALSE(BuildMaskPolygons({sGood}).empty());
    for (const SGPoint& sPoint :
         {SGPoint{32768, 0}, SGPoint{-32769, 0}, SGPoint{0, 32768}, SGPoint{0, -32769}}) {
        CLogCapture oLog;
        SGPolygon sBad = sGood;
        sBad.vPoints[1] = sPoint;
        EXPECT_TRUE(BuildMaskPolygons({sGood, sBad}).empty());
        ASSERT_EQ(oLog.Lines().size(), 1U);
        EXPECT_TRUE(oLog.Contains("mask 1"));
    }
    CLogCapture oLog;
    SGPolygon sLong;
    sLong.vPoints.resize(65535);
    EXPECT_EQ(BuildMaskPolygons({sLong}).size(), 6U + 4 * 65535);
    EXPECT_TRUE(oLog.Lines().empty());
    sLong.vPoints.resize(65536);
    EXPECT_TRUE(BuildMaskPolygons({sLong}).empty());
    EXPECT_EQ(oLog.Lines().size(), 1U);
}
