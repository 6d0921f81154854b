// The drawn frame as bytes.
#include "tests/support/TestDewarper.h"

#include <gtest/gtest.h>

TEST(ReadBack, ThereIsNoImageBeforeTheFirstFrame)
{
    CTestDewarper oDewarper(32, 24);
    ASSERT_TRUE(oDewarper.Started());
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    EXPECT_EQ(oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride), nullptr);
}

TEST(ReadBack, RowsStandInTheSecondHalfAsBGRATopRowFirst)
{
    // An odd height: the halves are rounded up to an even number of rows.
    CTestDewarper oDewarper(30, 21);
    ASSERT_TRUE(oDewarper.Started());
    STestImage sPicture(30, 21);
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 30; ++x)
            sPicture.Set(x, y, x * 8, y * 12, 7);
    CTestFrame oFrame(sPicture, IMAGE_FORMAT_RGB24);
    oDewarper.SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pStart = oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    ASSERT_NE(pStart, nullptr);
    EXPECT_EQ(nWidth, 30);
    EXPECT_EQ(nHeight, 21);
    EXPECT_EQ(nStride, 120);
    EXPECT_EQ(nSize, 120 * 21);
    EXPECT_EQ(oDewarper.nReadBackCapacity, 2u * 120 * 22);
    const unsigned char* pRows = pStart + 120 * 22;
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 30; ++x) {
            const unsigned char* pPixel = pRows + y * 120 + x * 4;
            ASSERT_EQ(pPixel[0], 7) << x << ", " << y;
            ASSERT_EQ(pPixel[1], y * 12) << x << ", " << y;
            ASSERT_EQ(pPixel[2], x * 8) << x << ", " << y;
            ASSERT_EQ(pPixel[3], 255) << x << ", " << y;
        }
}

TEST(ReadBack, TheSameBufferServesUntilALargerTargetNeedsMore)
{
    CTestDewarper oDewarper(40, 40);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_GRAY8);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    int anOut[4] = {};
    unsigned char* pFirst = oDewarper.GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]);
    ASSERT_NE(pFirst, nullptr);
    pFirst[0] = 77; // the first half is the caller's
    EXPECT_EQ(oDewarper.GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), pFirst);
    EXPECT_EQ(pFirst[0], 77);
    ASSERT_TRUE(oDewarper.InitGL(20, 20));
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), pFirst);
    EXPECT_EQ(anOut[0], 20 * 20 * 4);
    EXPECT_EQ(oDewarper.nReadBackCapacity, 2u * 40 * 40 * 4);
    ASSERT_TRUE(oDewarper.InitGL(64, 40));
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ASSERT_NE(oDewarper.GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), nullptr);
    EXPECT_EQ(oDewarper.nReadBackCapacity, 2u * 64 * 40 * 4);
}

TEST(ReadBack, ThePictureIsTheDrawnOneWhateverTheHostBinds)
{
    CTestDewarper oDewarper(32, 32);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_RGB24);
    oDewarper.SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sFirst = oDewarper.Picture();
    const STestImage sAgain = oDewarper.Picture();
    EXPECT_EQ(CompareImages(sFirst, sAgain).nMax, 0);
    EXPECT_GT(sFirst.At(2, 2)[0], 200) << "the bright mark stands at the top left";
    EXPECT_LT(sFirst.At(29, 29)[0], 50) << "the dark one at the bottom right";
}
