#include "dewarp/records/SQPInfo.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

namespace
{

/// A record with all arrays, filled with values that tell position and array; the five integers are set.
void Fill(SQPInfo& sInfo, int nHeight, int nStride, unsigned char nSeed)
{
    sInfo.nWidth = nStride - 1;
    sInfo.nHeight = nHeight;
    sInfo.nStride = nStride;
    sInfo.nReserved0 = 70 + nSeed;
    sInfo.nReserved1 = 80 + nSeed;
    const int nEntries = nHeight * nStride;
    sInfo.pQP = new unsigned char[static_cast<std::size_t>(nEntries)];
    sInfo.pMotion = new unsigned int[static_cast<std::size_t>(nEntries)];
    sInfo.pMBType = new unsigned char[static_cast<std::size_t>(nEntries)];
    for (int i = 0; i < nEntries; ++i) {
        sInfo.pQP[i] = static_cast<unsigned char>(nSeed + i);
        sInfo.pMotion[i] = 0x01020304u * static_cast<unsigned int>(i + nSeed);
        sInfo.pMBType[i] = static_cast<unsigned char>(nSeed + 2 * i);
    }
}

void ExpectSameIntegers(const SQPInfo& sA, const SQPInfo& sB)
{
    EXPECT_EQ(sA.nWidth, sB.nWidth);
    EXPECT_EQ(sA.nHeight, sB.nHeight);
    EXPECT_EQ(sA.nStride, sB.nStride);
    EXPECT_EQ(sA.nReserved0, sB.nReserved0);
    EXPECT_EQ(sA.nReserved1, sB.nReserved1);
}

/// Same integers and contents, in memory of their own; arrays that are null in the source are null.
void ExpectCopy(const SQPInfo& sCopy, const SQPInfo& sSource)
{
    ExpectSameIntegers(sCopy, sSource);
    const std::size_t nEntries =
        static_cast<std::size_t>(sSource.nHeight) * static_cast<std::size_t>(sSource.nStride);
    const std::pair<const void*, const void*> aPairs[] = {
        {sCopy.pQP, sSource.pQP}, {sCopy.pMotion, sSource.pMotion}, {sCopy.pMBType, sSource.pMBType}};
    const std::size_t anBytes[] = {nEntries, nEntries * 4, nEntries};
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(aPairs[i].first == nullptr, aPairs[i].second == nullptr) << i;
        if (aPairs[i].second == nullptr)
            continue;
        EXPECT_NE(aPairs[i].first, aPairs[i].second) << i;
        EXPECT_EQ(std::memcmp(aPairs[i].first, aPairs[i].second, anBytes[i]), 0) << i;
    }
}

} // namespace

TEST(SQPInfo, StartsEmpty)
{
    const SQPInfo sInfo;
    EXPECT_EQ(sInfo.pQP, nullptr);
    EXPECT_EQ(sInfo.pMotion, nullptr);
    EXPECT_EQ(sInfo.pMBType, nullptr);
    ExpectSameIntegers(sInfo, SQPInfo());
    EXPECT_EQ(sInfo.nWidth, 0);
}

TEST(SQPInfo, AssignmentCopiesDeeply)
{
    SQPInfo sSource;
    Fill(sSource, 5, 7, 1);
    SQPInfo sCopy;
    sCopy = sSource;
    ExpectCopy(sCopy, sSource);
    const unsigned char nBefore = sCopy.pQP[3];
    sSource.pQP[3] = static_cast<unsigned char>(nBefore + 1);
    EXPECT_EQ(sCopy.pQP[3], nBefore);
}

TEST(SQPInfo, ConstructionCopiesDeeply)
{
    SQPInfo sSource;
    Fill(sSource, 5, 7, 2);
    const SQPInfo sCopy(sSource);
    ExpectCopy(sCopy, sSource);
    const SQPInfo sEmpty{SQPInfo()};
    EXPECT_EQ(sEmpty.pQP, nullptr);
}

TEST(SQPInfo, ASourceWithoutQuantiserFreesTheArraysAndGivesItsIntegers)
{
    SQPInfo sSource;
    Fill(sSource, 2, 3, 3);
    delete[] sSource.pQP;
    sSource.pQP = nullptr; // the other two arrays are still there, and are not copied
    SQPInfo sCopy;
    Fill(sCopy, 5, 7, 4);
    sCopy = sSource;
    EXPECT_EQ(sCopy.pQP, nullptr);
    EXPECT_EQ(sCopy.pMotion, nullptr);
    EXPECT_EQ(sCopy.pMBType, nullptr);
    ExpectSameIntegers(sCopy, sSource);
}

TEST(SQPInfo, ASmallerSourceKeepsTheLargerArrays)
{
    SQPInfo sSource;
    Fill(sSource, 2, 3, 5);
    SQPInfo sCopy;
    Fill(sCopy, 5, 7, 6);
    const unsigned char* const pQP = sCopy.pQP;
    const unsigned int* const pMotion = sCopy.pMotion;
    const unsigned char* const pMBType = sCopy.pMBType;
    const unsigned char nBehind = sCopy.pQP[6];
    const unsigned int nMotionBehind = sCopy.pMotion[6];
    sCopy = sSource;
    EXPECT_EQ(sCopy.pQP, pQP);
    EXPECT_EQ(sCopy.pMotion, pMotion);
    EXPECT_EQ(sCopy.pMBType, pMBType);
    ExpectCopy(sCopy, sSource);
    EXPECT_EQ(sCopy.pQP[6], nBehind); // only the source's six entries were written
    EXPECT_EQ(sCopy.pMotion[6], nMotionBehind);
}

TEST(SQPInfo, ASourceOfTheSameSizeKeepsTheArrays)
{
    SQPInfo sSource;
    Fill(sSource, 3, 4, 7);
    SQPInfo sCopy;
    Fill(sCopy, 4, 3, 8);
    const unsigned char* const pQP = sCopy.pQP;
    sCopy = sSource;
    EXPECT_EQ(sCopy.pQP, pQP);
    ExpectCopy(sCopy, sSource);
}

TEST(SQPInfo, ALargerSourceGetsLargerArrays)
{
    SQPInfo sSource;
    Fill(sSource, 50, 70, 9);
    SQPInfo sCopy;
    Fill(sCopy, 2, 3, 10);
    sCopy = sSource;
    ExpectCopy(sCopy, sSource);
}

TEST(SQPInfo, SizesMayShrinkAndGrowAgain)
{
    SQPInfo sSmall;
    Fill(sSmall, 2, 3, 11);
    SQPInfo sLarge;
    Fill(sLarge, 20, 30, 12);
    SQPInfo sCopy;
    for (int i = 0; i < 3; ++i) {
        sCopy = sLarge;
        ExpectCopy(sCopy, sLarge);
        sCopy = sSmall;
        ExpectCopy(sCopy, sSmall);
    }
}

TEST(SQPInfo, MissingArraysStayMissing)
{
    SQPInfo sSource;
    Fill(sSource, 3, 4, 13);
    delete[] sSource.pMotion;
    sSource.pMotion = nullptr;
    SQPInfo sCopy;
    sCopy = sSource;
    ExpectCopy(sCopy, sSource);
    SQPInfo sFull;
    Fill(sFull, 3, 4, 14);
    sFull = sSource;
    ExpectCopy(sFull, sSource);
    delete[] sSource.pMBType;
    sSource.pMBType = nullptr;
    sFull = sSource;
    ExpectCopy(sFull, sSource);
}

TEST(SQPInfo, MissingArraysComeBackAtTheSizeOfTheOthers)
{
    SQPInfo sWithout;
    Fill(sWithout, 2, 3, 15);
    delete[] sWithout.pMotion;
    sWithout.pMotion = nullptr;
    delete[] sWithout.pMBType;
    sWithout.pMBType = nullptr;
    SQPInfo sLarge;
    Fill(sLarge, 5, 7, 16);
    SQPInfo sSmall;
    Fill(sSmall, 2, 3, 17);
    SQPInfo sCopy;
    sCopy = sWithout;
    sCopy = sSmall;
    ExpectCopy(sCopy, sSmall);
    sCopy = sLarge;
    ExpectCopy(sCopy, sLarge);
}

TEST(SQPInfo, AssigningItselfChangesNothing)
{
    SQPInfo sInfo;
    Fill(sInfo, 3, 4, 18);
    const SQPInfo sBefore(sInfo);
    const unsigned char* const pQP = sInfo.pQP;
    const SQPInfo& sAlias = sInfo;
    sInfo = sAlias;
    EXPECT_EQ(sInfo.pQP, pQP);
    ExpectCopy(sInfo, sBefore);
    SQPInfo sEmpty;
    const SQPInfo& sEmptyAlias = sEmpty;
    sEmpty = sEmptyAlias;
    EXPECT_EQ(sEmpty.pQP, nullptr);
}

TEST(SQPInfo, SizesWithoutEntriesCopyNothing)
{
    for (const int nHeight : {0, -5}) {
        SQPInfo sSource;
        sSource.pQP = new unsigned char[1];
        sSource.nHeight = nHeight;
        sSource.nStride = 8;
        SQPInfo sCopy;
        sCopy = sSource;
        EXPECT_NE(sCopy.pQP, nullptr);
        ExpectSameIntegers(sCopy, sSource);
    }
}
