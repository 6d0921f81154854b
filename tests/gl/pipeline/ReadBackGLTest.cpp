// The drawn frame as bytes.
#include "tests/support/EngineDewarper.h"
#include "tests/support/TestDewarper.h"

#include <gtest/gtest.h>

using ReadBack = CEngineTest;

TEST_P(ReadBack, ThereIsNoImageBeforeTheFirstFrame)
{
    CEngineDewarper oDewarper(GetParam(), 32, 24);
    ASSERT_TRUE(oDewarper.Started());
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    EXPECT_EQ(oDewarper->GetImage(&nSize, &nWidth, &nHeight, &nStride), nullptr);
}

TEST_P(ReadBack, RowsStandInTheSecondHalfAsBGRATopRowFirst)
{
    // An odd height: the halves are rounded up to an even number of rows.
    CEngineDewarper oDewarper(GetParam(), 30, 21);
    ASSERT_TRUE(oDewarper.Started());
    STestImage sPicture(30, 21);
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 30; ++x)
            sPicture.Set(x, y, x * 8, y * 12, 7);
    CTestFrame oFrame(sPicture, IMAGE_FORMAT_RGB24);
    oDewarper->SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pStart = oDewarper->GetImage(&nSize, &nWidth, &nHeight, &nStride);
    ASSERT_NE(pStart, nullptr);
    EXPECT_EQ(nWidth, 30);
    EXPECT_EQ(nHeight, 21);
    EXPECT_EQ(nStride, 120);
    EXPECT_EQ(nSize, 120 * 21);
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

TEST_P(ReadBack, ThePictureIsTheDrawnOneWhateverTheHostBinds)
{
    CEngineDewarper oDewarper(GetParam(), 32, 32);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_RGB24);
    oDewarper->SetViewType(VIEW_FISHEYE);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sFirst = oDewarper.Picture();
    const STestImage sAgain = oDewarper.Picture();
    EXPECT_EQ(CompareImages(sFirst, sAgain).nMax, 0);
    EXPECT_GT(sFirst.At(2, 2)[0], 200) << "the bright mark stands at the top left";
    EXPECT_LT(sFirst.At(29, 29)[0], 50) << "the dark one at the bottom right";
}

TEST_P(ReadBack, TheSameBufferServesUntilALargerTargetNeedsMore)
{
    CEngineDewarper oDewarper(GetParam(), 40, 40);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_GRAY8);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    int anOut[4] = {};
    unsigned char* pFirst = oDewarper->GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]);
    ASSERT_NE(pFirst, nullptr);
    pFirst[0] = 77; // the first half is the caller's
    EXPECT_EQ(oDewarper->GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), pFirst);
    EXPECT_EQ(pFirst[0], 77);
    ASSERT_TRUE(oDewarper->InitTarget(20, 20));
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper->GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), pFirst);
    EXPECT_EQ(anOut[0], 20 * 20 * 4);
    ASSERT_TRUE(oDewarper->InitTarget(64, 40));
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ASSERT_NE(oDewarper->GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), nullptr);
    EXPECT_EQ(anOut[0], 64 * 40 * 4);
}

INSTANTIATE_ENGINES(ReadBack);

TEST(ReadBackBuffer, HoldsTwoPicturesOfTheLargestTarget)
{
    CTestDewarper oDewarper(40, 40);
    ASSERT_TRUE(oDewarper.Started());
    CTestFrame oFrame(AsymmetricPicture(32, 32), IMAGE_FORMAT_GRAY8);
    for (const auto& [nWidth, nHeight, nBytes] :
         {std::tuple{40, 40, 2u * 40 * 40 * 4}, std::tuple{20, 21, 2u * 40 * 40 * 4},
          std::tuple{64, 39, 2u * 64 * 40 * 4}}) {
        ASSERT_TRUE(oDewarper.InitGL(nWidth, nHeight));
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        int anOut[4] = {};
        ASSERT_NE(oDewarper.GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), nullptr);
        EXPECT_EQ(oDewarper.nReadBackCapacity, nBytes);
    }
}

namespace
{

/// A dewarper with a drawn frame, and its picture.
class ReadBackOfADrawnFrame : public testing::Test
{
protected:
    void SetUp() override
    {
        oDewarper.SetViewType(VIEW_FISHEYE);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        sDrawn = oDewarper.Picture();
        ASSERT_EQ(CompareImages(sDrawn, AsymmetricPicture(32, 24)).nMax, 0);
    }
    /// There is no image, and nothing is written to what would describe one.
    void ExpectNone()
    {
        int anOut[4] = {-1, -2, -3, -4};
        EXPECT_EQ(oDewarper.GetImage(&anOut[0], &anOut[1], &anOut[2], &anOut[3]), nullptr);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(anOut[i], -1 - i);
    }

    CTestDewarper oDewarper{32, 24};
    CTestFrame oFrame{AsymmetricPicture(32, 24), IMAGE_FORMAT_RGB24};
    STestImage sDrawn;
};

} // namespace

TEST_F(ReadBackOfADrawnFrame, IsThatFrameInItsSizeThoughTheNextOneIsToHaveAnother)
{
    for (const auto& [nWidth, nHeight] : {std::pair{64, 48}, std::pair{16, 8}, std::pair{33, 7}}) {
        ASSERT_TRUE(oDewarper.InitGL(nWidth, nHeight));
        const STestImage sAgain = oDewarper.Picture();
        EXPECT_EQ(sAgain.nWidth, 32);
        EXPECT_EQ(sAgain.nHeight, 24);
        EXPECT_EQ(sAgain.vPixels, sDrawn.vPixels);
    }
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.Picture().nWidth, 33);
    EXPECT_EQ(oDewarper.Picture().nHeight, 7);
}

TEST_F(ReadBackOfADrawnFrame, IsNoneAfterARestartUntilAFrameIsDrawn)
{
    ASSERT_TRUE(oDewarper.StopGL());
    ExpectNone();
    ASSERT_TRUE(oDewarper.StartGL());
    ExpectNone();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.Picture().vPixels, sDrawn.vPixels);
}

TEST_F(ReadBackOfADrawnFrame, IsNoneAfterTheObjectsWereFreed)
{
    oDewarper.FreeOpenGLObjects();
    ExpectNone();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.Picture().vPixels, sDrawn.vPixels);
    oDewarper.ReinitializeOpenGLObjects();
    ExpectNone();
}

TEST_F(ReadBackOfADrawnFrame, IsNoneAfterTheTargetOfAnotherSizeCouldNotBeMade)
{
    CLogCapture oLog;
    ASSERT_TRUE(oDewarper.InitGL(64, 48));
    CGLRecorder::Get().Inject("glCheckFramebufferStatus", 0.0, 0, 100);
    EXPECT_FALSE(oDewarper.DrawFrame(oFrame));
    CGLRecorder::Get().ClearInjections();
    ExpectNone();
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper.Picture().nWidth, 64);
}

TEST_F(ReadBackOfADrawnFrame, IsNoneOrTheWholeOneBeforeAfterAFrameThatFailedHalfWay)
{
    CLogCapture oLog;
    SGPUString sText;
    sText.strText = "12:00";
    sText.nHeight = 16;
    int nNone = 0;
    int nFailed = 0;
    for (int nSkip = 0; nSkip < 12; ++nSkip) {
        SCOPED_TRACE(nSkip);
        oDewarper.SetStrings({});
        oDewarper.FreeOpenGLObjects();
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        ASSERT_EQ(oDewarper.Picture().vPixels, sDrawn.vPixels);
        // Text sends the view through textures that are made for it, before and after the view is drawn.
        oDewarper.SetStrings({sText});
        ASSERT_TRUE(oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0));
        CGLRecorder::Get().InjectError("glTexImage2D", 0x0505, nSkip); // GL_OUT_OF_MEMORY
        const bool bDrawn = oDewarper.DrawGLScene(false);
        CGLRecorder::Get().ClearInjections();
        if (bDrawn)
            continue;
        ++nFailed;
        const STestImage sAfter = oDewarper.Picture();
        if (sAfter.vPixels.empty())
            ++nNone;
        else
            EXPECT_EQ(sAfter.vPixels, sDrawn.vPixels);
    }
    EXPECT_GE(nFailed, 3);
    EXPECT_GE(nNone, 1);
    // A texture that got no memory was drawn into until that was found out.
    for (const SGLErrorNote& rError : CGLRecorder::Get().TakeErrors())
        EXPECT_EQ(rError.nError, 0x0506u) << rError.strCall; // GL_INVALID_FRAMEBUFFER_OPERATION
}
