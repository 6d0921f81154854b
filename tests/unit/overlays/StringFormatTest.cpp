#include "dewarp/overlays/StringFormat.h"

#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

using TBytes = std::vector<unsigned char>;

// Parses a copy that ends where the bytes end, so that a step beyond is found by an address sanitizer.
static std::vector<SGPUString> Parse(const TBytes& vBytes)
{
    const std::unique_ptr<unsigned char[]> pCopy(new unsigned char[vBytes.size()]);
    std::copy(vBytes.begin(), vBytes.end(), pCopy.get());
    return ParseStrings(pCopy.get(), static_cast<int>(vBytes.size()));
}

static TBytes Joined(TBytes vFirst, const TBytes& vSecond)
{
    vFirst.insert(vFirst.end(), vSecond.begin(), vSecond.end());
    return vFirst;
}

static const TBytes LETTERS = {0x00, 0x02, 0x41, 0x42, 0x00, 0x0A, 0x00, 0x14, 0x00,
                               0x20, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00};
// No character; the ends of every number's range.
static const TBytes EXTREMES = {0x00, 0x00, 0xFF, 0xFF, 0x80, 0x00, 0xFF, 0xFF,
                                0x12, 0x34, 0x56, 0x78, 0xFF, 0x80, 0x7F, 0x02};

TEST(StringFormat, ReadsTwoLetters)
{
    const CLogCapture oLog;
    const std::vector<SGPUString> vStrings = Parse(LETTERS);
    ASSERT_EQ(vStrings.size(), 1U);
    const SGPUString& sString = vStrings[0];
    EXPECT_EQ(sString.strText, "AB");
    EXPECT_EQ(sString.nX, 10);
    EXPECT_EQ(sString.nY, 20);
    EXPECT_EQ(sString.nHeight, 32);
    EXPECT_EQ(sString.nColor, 0xFFFFFFFFU);
    EXPECT_EQ(sString.nHAlign, 0);
    EXPECT_EQ(sString.nVAlign, 0);
    EXPECT_EQ(sString.nHRef, 0);
    EXPECT_EQ(sString.nVRef, 0);
    EXPECT_TRUE(oLog.Lines().empty());
}

TEST(StringFormat, PlacesAreSignedHeightAndAlignmentsAreNot)
{
    const std::vector<SGPUString> vStrings = Parse(EXTREMES);
    ASSERT_EQ(vStrings.size(), 1U);
    const SGPUString& sString = vStrings[0];
    EXPECT_TRUE(sString.strText.empty());
    EXPECT_EQ(sString.nX, -1);
    EXPECT_EQ(sString.nY, -32768);
    EXPECT_EQ(sString.nHeight, 65535);
    EXPECT_EQ(sString.nColor, 0x12345678U);
    EXPECT_EQ(sString.nHAlign, 255);
    EXPECT_EQ(sString.nVAlign, 128);
    EXPECT_EQ(sString.nHRef, 127);
    EXPECT_EQ(sString.nVRef, 2);
}

TEST(StringFormat, NothingIsDrawnYet)
{
    for (const SGPUString& sString : Parse(Joined(LETTERS, EXTREMES))) {
        EXPECT_EQ(sString.nDrawnX, 0);
        EXPECT_EQ(sString.nDrawnY, 0);
        EXPECT_EQ(sString.nDrawnW, 0);
        EXPECT_EQ(sString.nDrawnH, 0);
        EXPECT_EQ(sString.nOverlapGroup, 0);
    }
}

TEST(StringFormat, RecordsBackToBackKeepTheirOrder)
{
    const std::vector<SGPUString> vStrings = Parse(Joined(Joined(LETTERS, EXTREMES), LETTERS));
    ASSERT_EQ(vStrings.size(), 3U);
    EXPECT_EQ(vStrings[0].strText, "AB");
    EXPECT_EQ(vStrings[1].nX, -1);
    EXPECT_EQ(vStrings[2].strText, "AB");
}

TEST(StringFormat, NothingGivesNoStrings)
{
    const CLogCapture oLog;
    EXPECT_TRUE(ParseStrings(nullptr, 100).empty());
    EXPECT_TRUE(ParseStrings(LETTERS.data(), 0).empty());
    EXPECT_TRUE(ParseStrings(LETTERS.data(), -1).empty());
    EXPECT_TRUE(oLog.Lines().empty());
}

TEST(StringFormat, EveryByteIsACharacter)
{
    TBytes vBytes = {0x01, 0x00};
    std::string strExpected;
    for (int i = 0; i < 256; ++i) {
        vBytes.push_back(static_cast<unsigned char>(i));
        strExpected.push_back(static_cast<char>(i));
    }
    vBytes.insert(vBytes.end(), LETTERS.begin() + 4, LETTERS.end());
    const std::vector<SGPUString> vStrings = Parse(vBytes);
    ASSERT_EQ(vStrings.size(), 1U);
    EXPECT_EQ(vStrings[0].strText, strExpected);
    EXPECT_EQ(BuildStrings(vStrings), vBytes);
}

TEST(StringFormat, AnIncompleteLastRecordIsDroppedWithOneLogLine)
{
    const TBytes vWhole = Joined(EXTREMES, LETTERS);
    for (std::size_t nLength = 1; nLength <= vWhole.size(); ++nLength) {
        CLogCapture oLog;
        const std::vector<SGPUString> vStrings =
            Parse(TBytes(vWhole.begin(), vWhole.begin() + static_cast<std::ptrdiff_t>(nLength)));
        const std::size_t nExpected = nLength < EXTREMES.size() ? 0 : nLength < vWhole.size() ? 1 : 2;
        EXPECT_EQ(vStrings.size(), nExpected) << nLength;
        const bool bWhole = nLength == EXTREMES.size() || nLength == vWhole.size();
        EXPECT_EQ(oLog.Lines().size(), bWhole ? 0U : 1U) << nLength;
    }
}

TEST(StringFormat, ALengthFarBeyondTheBytesIsDropped)
{
    CLogCapture oLog;
    EXPECT_TRUE(Parse(Joined({0xFF, 0xFF}, LETTERS)).empty());
    EXPECT_EQ(oLog.Lines().size(), 1U);
}

TEST(StringFormat, BuildsTheBytesOfTwoLetters)
{
    SGPUString sString;
    sString.strText = "AB";
    sString.nX = 10;
    sString.nY = 20;
    sString.nColor = 0xFFFFFFFF;
    sString.nDrawnX = 99; // not kept
    EXPECT_EQ(BuildStrings({sString}), LETTERS);
    EXPECT_TRUE(BuildStrings({}).empty());
}

TEST(StringFormat, WhatIsBuiltIsReadAgain)
{
    std::mt19937 oRandom(6);
    std::vector<SGPUString> vStrings(30);
    for (SGPUString& sString : vStrings) {
        for (std::size_t n = oRandom() % 40; n > 0; --n)
            sString.strText.push_back(static_cast<char>(oRandom() % 256));
        sString.nX = static_cast<int>(oRandom() % 65536) - 32768;
        sString.nY = static_cast<int>(oRandom() % 65536) - 32768;
        sString.nHeight = static_cast<int>(oRandom() % 65536);
        sString.nColor = static_cast<unsigned int>(oRandom());
        sString.nHAlign = static_cast<int>(oRandom() % 256);
        sString.nVAlign = static_cast<int>(oRandom() % 256);
        sString.nHRef = static_cast<int>(oRandom() % 256);
        sString.nVRef = static_cast<int>(oRandom() % 256);
    }
    const std::vector<SGPUString> vAgain = Parse(BuildStrings(vStrings));
    ASSERT_EQ(vAgain.size(), vStrings.size());
    for (std::size_t i = 0; i < vAgain.size(); ++i)
        EXPECT_FALSE(vAgain[i] != vStrings[i]) << i;
}

struct SFieldCase
{
    const char* pName;
    int SGPUString::*pField;
    int nLeast;
    int nMost;
};

static const SFieldCase FIELDS[] = {
    {"nX", &SGPUString::nX, -32768, 32767},      {"nY", &SGPUString::nY, -32768, 32767},
    {"nHeight", &SGPUString::nHeight, 0, 65535}, {"nHAlign", &SGPUString::nHAlign, 0, 255},
    {"nVAlign", &SGPUString::nVAlign, 0, 255},   {"nHRef", &SGPUString::nHRef, 0, 255},
    {"nVRef", &SGPUString::nVRef, 0, 255},
};

TEST(StringFormat, AFieldThatDoesNotFitRefusesTheWhole)
{
    for (const SFieldCase& sField : FIELDS) {
        CLogCapture oLog;
        SGPUString sString;
        for (const int nValue : {sField.nLeast, sField.nMost}) {
            sString.*sField.pField = nValue;
            EXPECT_FALSE(BuildStrings({sString}).empty()) << sField.pName << " " << nValue;
        }
        EXPECT_TRUE(oLog.Lines().empty());
        for (const int nValue : {sField.nLeast - 1, sField.nMost + 1}) {
            sString.*sField.pField = nValue;
            EXPECT_TRUE(BuildStrings({SGPUString(), sString}).empty()) << sField.pName << " " << nValue;
        }
        EXPECT_EQ(oLog.Lines().size(), 2U) << sField.pName;
        EXPECT_TRUE(oLog.Contains("string 1"));
    }
}

TEST(StringFormat, ATextThatIsTooLongRefusesTheWhole)
{
    const CLogCapture oLog;
    SGPUString sString;
    sString.strText.assign(65535, 'x');
    EXPECT_EQ(BuildStrings({sString}).size(), 16U + 65535);
    sString.strText.push_back('x');
    EXPECT_TRUE(BuildStrings({sString}).empty());
    EXPECT_EQ(oLog.Lines().size(), 1U);
}
