// Frames drawn into the host's memory: formats, strides, colours, and what is refused.
#include "tests/support/EngineDewarper.h"
#include "tests/support/GLRecorder.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

namespace
{

using VBytes = std::vector<unsigned char>;

const int WIDTH = 33;
const int HEIGHT = 25;
const unsigned char UNTOUCHED = 0xA5;

/// A dewarper with a frame to show.
class DrawTo : public CEngineTest
{
protected:
    void SetUp() override
    {
        pDewarper = CreateDewarper(GetParam(), WIDTH, HEIGHT);
        ASSERT_NE(pDewarper, nullptr);
        ASSERT_TRUE(pDewarper->SetTexture(oFrame.Image(), false, nullptr, 0));
        pDewarper->SetViewType(VIEW_FISHEYE);
    }

    /// Pixels as GetImage has them.
    VBytes Pixels()
    {
        int nSize = 0;
        int nWidth = 0;
        int nHeight = 0;
        int nStride = 0;
        const unsigned char* const pImage = pDewarper->GetImage(&nSize, &nWidth, &nHeight, &nStride);
        if (pImage == nullptr)
            return {};
        const unsigned char* const pRows = pImage + (nHeight + nHeight % 2) * nStride;
        return VBytes(pRows, pRows + nSize);
    }

    CTestFrame oFrame{AsymmetricPicture(48, 48), IMAGE_FORMAT_RGBA32};
    std::unique_ptr<CDewarper> pDewarper;
};

} // namespace

TEST_P(DrawTo, PackedFormatsHoldThePixelsOfGetImage)
{
    for (const EImageFormat eFormat : {IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_RGBA32}) {
        const int nStride = WIDTH * 4 + 5;
        VBytes vTarget(static_cast<std::size_t>(nStride * HEIGHT), UNTOUCHED);
        ASSERT_TRUE(pDewarper->DrawTo(vTarget.data(), nStride, eFormat));
        // The processor engine keeps no second copy of what it drew into the host's memory.
        ASSERT_TRUE(pDewarper->DrawGLScene(false));
        const VBytes vPixels = Pixels();
        ASSERT_FALSE(vPixels.empty());
        for (int y = 0; y < HEIGHT; ++y) {
            for (int x = 0; x < WIDTH * 4; ++x) {
                const bool bSwap = eFormat == IMAGE_FORMAT_RGBA32 && x % 4 != 3;
                const int nFrom = y * WIDTH * 4 + (bSwap ? x / 4 * 4 + 2 - x % 4 : x);
                ASSERT_EQ(vTarget[static_cast<std::size_t>(y * nStride + x)],
                          vPixels[static_cast<std::size_t>(nFrom)]);
            }
            for (int x = WIDTH * 4; x < nStride; ++x)
                ASSERT_EQ(vTarget[static_cast<std::size_t>(y * nStride + x)], UNTOUCHED);
        }
    }
}

TEST_P(DrawTo, OnePieceOfMemoryHoldsThePlanesOneBehindTheOther)
{
    const int nStride = 41;
    const int nChroma = 21;
    const int nRows = (HEIGHT + 1) / 2;
    VBytes vLuma(static_cast<std::size_t>(nStride * HEIGHT), UNTOUCHED);
    VBytes vU(static_cast<std::size_t>(nChroma * nRows), UNTOUCHED);
    VBytes vV = vU;
    SFrameTarget sTarget;
    sTarget.eFormat = IMAGE_FORMAT_YUV420P;
    sTarget.apPlanes[0] = vLuma.data();
    sTarget.apPlanes[1] = vU.data();
    sTarget.apPlanes[2] = vV.data();
    sTarget.anStrides[0] = nStride;
    sTarget.anStrides[1] = sTarget.anStrides[2] = nChroma;
    ASSERT_TRUE(pDewarper->DrawTo(sTarget));
    VBytes vExpected = vLuma;
    vExpected.insert(vExpected.end(), vU.begin(), vU.end());
    vExpected.insert(vExpected.end(), vV.begin(), vV.end());
    vExpected.push_back(UNTOUCHED);
    VBytes vTarget(vExpected.size(), UNTOUCHED);
    ASSERT_TRUE(pDewarper->DrawTo(vTarget.data(), nStride, IMAGE_FORMAT_YUV420P));
    EXPECT_EQ(vTarget, vExpected);

    VBytes vPairs(static_cast<std::size_t>(nStride * (HEIGHT + nRows) + 1), UNTOUCHED);
    ASSERT_TRUE(pDewarper->DrawTo(vPairs.data(), nStride, IMAGE_FORMAT_NV12));
    EXPECT_TRUE(std::equal(vLuma.begin(), vLuma.end(), vPairs.begin()));
    for (int y = 0; y < nRows; ++y)
        for (int x = 0; x < (WIDTH + 1) / 2; ++x) {
            const unsigned char* const pPair = vPairs.data() + nStride * (HEIGHT + y) + 2 * x;
            ASSERT_EQ(pPair[0], vU[static_cast<std::size_t>(y * nChroma + x)]);
            ASSERT_EQ(pPair[1], vV[static_cast<std::size_t>(y * nChroma + x)]);
        }
    EXPECT_EQ(vPairs.back(), UNTOUCHED);
}

TEST_P(DrawTo, YUVGoesOutAsItCameIn)
{
    for (const EYUVSpace eSpace :
         {YUV_SPACE_BT601, YUV_SPACE_BT709, YUV_SPACE_BT2020, YUV_SPACE_BT601_SCALED})
        for (const EYUVRange eRange : {YUV_RANGE_FULL, YUV_RANGE_LIMITED})
            for (const bool bOfTheFrame : {false, true}) {
                if (bOfTheFrame && eSpace == YUV_SPACE_BT601_SCALED)
                    continue; // frames do not say so
                SCOPED_TRACE(std::to_string(eSpace) + " " + std::to_string(eRange));
                VBytes vPlane(48 * 48, 130);
                VBytes vChroma;
                for (int i = 0; i < 24 * 24; ++i)
                    vChroma.insert(vChroma.end(), {110, 150});
                SImageProperties sImage;
                sImage.pPlane0 = vPlane.data();
                sImage.pPlane1 = vChroma.data();
                sImage.nWidth = sImage.nHeight = sImage.nStride = 48;
                sImage.nFormat = IMAGE_FORMAT_NV12;
                sImage.eYUVSpace = bOfTheFrame ? eSpace : YUV_SPACE_AUTO;
                sImage.eYUVRange = bOfTheFrame ? eRange : YUV_RANGE_AUTO;
                pDewarper->SetYUVparams(bOfTheFrame ? YUV_SPACE_AUTO : eSpace,
                                        bOfTheFrame ? YUV_RANGE_AUTO : eRange);
                ASSERT_TRUE(pDewarper->SetTexture(&sImage, false, nullptr, 0));
                const int nStride = WIDTH + 1;
                VBytes vTarget(static_cast<std::size_t>(nStride * (HEIGHT + 13)), UNTOUCHED);
                ASSERT_TRUE(pDewarper->DrawTo(vTarget.data(), nStride, IMAGE_FORMAT_NV12));
                const unsigned char* const pMiddle = vTarget.data() + nStride * (HEIGHT + 6) + 16;
                EXPECT_NEAR(vTarget[static_cast<std::size_t>(nStride * 12 + 16)], 130, 1);
                EXPECT_NEAR(pMiddle[0], 110, 1);
                EXPECT_NEAR(pMiddle[1], 150, 1);
            }
}

TEST_P(DrawTo, WhatIsNoTargetIsRefusedWithOneLineAndNothingIsWritten)
{
    VBytes vTarget(WIDTH * HEIGHT * 4, UNTOUCHED);
    const VBytes vBefore = vTarget;
    SFrameTarget sPlanes;
    sPlanes.apPlanes[0] = vTarget.data();
    sPlanes.anStrides[0] = WIDTH;
    sPlanes.eFormat = IMAGE_FORMAT_NV12;
    CGLRecorder::Get().Start();
    const struct
    {
        std::function<bool()> fDraw;
        const char* pLine;
    } CASES[] = {
        {[&] { return pDewarper->DrawTo(nullptr, WIDTH * 4, IMAGE_FORMAT_BGRA32); },
         "DrawTo: plane 0 of the target is missing"},
        {[&] { return pDewarper->DrawTo(vTarget.data(), WIDTH * 4 - 1, IMAGE_FORMAT_RGBA32); },
         "DrawTo: stride of 131 bytes does not fit rows of 132 bytes in plane 0 of the target"},
        {[&] { return pDewarper->DrawTo(vTarget.data(), -WIDTH * 4, IMAGE_FORMAT_BGRA32); },
         "DrawTo: stride of -132 bytes does not fit rows of 132 bytes in plane 0 of the target"},
        {[&] { return pDewarper->DrawTo(vTarget.data(), WIDTH * 4, IMAGE_FORMAT_NV21); },
         "DrawTo: nothing is drawn in image format 10"},
        // A chroma row of an odd width is a byte longer.
        {[&] { return pDewarper->DrawTo(vTarget.data(), WIDTH, IMAGE_FORMAT_NV12); },
         "DrawTo: stride of 33 bytes does not fit rows of 34 bytes in plane 1 of the target"},
        {[&] { return pDewarper->DrawTo(sPlanes); }, "DrawTo: plane 1 of the target is missing"},
    };
    for (const auto& rCase : CASES) {
        const CLogCapture oLog;
        EXPECT_FALSE(rCase.fDraw());
        ASSERT_EQ(oLog.Lines().size(), 1u) << oLog.Text();
        EXPECT_EQ(oLog.Lines()[0].strText, rCase.pLine);
        EXPECT_EQ(pDewarper->GetLastErrorText(), rCase.pLine);
    }
    EXPECT_EQ(CGLRecorder::Get().CountPrefix("glDraw"), 0);
    CGLRecorder::Get().Stop();
    EXPECT_EQ(vTarget, vBefore);
}

TEST_P(DrawTo, WithoutAFrameNothingIsWritten)
{
    const std::unique_ptr<CDewarper> pEmpty = CreateDewarper(GetParam(), WIDTH, HEIGHT);
    ASSERT_NE(pEmpty, nullptr);
    VBytes vTarget(WIDTH * HEIGHT * 4, UNTOUCHED);
    const VBytes vBefore = vTarget;
    const CLogCapture oLog;
    EXPECT_FALSE(pEmpty->DrawTo(vTarget.data(), WIDTH * 4, IMAGE_FORMAT_BGRA32));
    EXPECT_EQ(vTarget, vBefore);
}

INSTANTIATE_ENGINES(DrawTo);
