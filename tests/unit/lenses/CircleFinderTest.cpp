#include "dewarp/lenses/CircleFinder.h"

#include "CirclePictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

SFoundCircle Find(const SCirclePicture& rPicture)
{
    const std::vector<unsigned char> vLuma = DrawCirclePicture(rPicture);
    return FindImageCircle(vLuma.data(), rPicture.nWidth, rPicture.nHeight, rPicture.nWidth);
}

SFoundCircle FindIn(const SCanvas& rCanvas)
{
    const std::vector<unsigned char> vLuma = Bytes(rCanvas);
    return FindImageCircle(vLuma.data(), rCanvas.nWidth, rCanvas.nHeight, rCanvas.nWidth);
}

/// A circle that nothing is wrong with.
SCirclePicture Whole()
{
    return MakeCirclePicture(CIRCLE_SHARP, 5, 1.0);
}

} // namespace

TEST(CircleFinder, WhatIsNoPictureHasNoneAndAReason)
{
    const std::vector<unsigned char> vLuma(100 * 100);
    const int nLeast = std::numeric_limits<int>::min();
    const SFoundCircle sFaults[] = {
        FindImageCircle(nullptr, 100, 100, 100),       FindImageCircle(vLuma.data(), 0, 100, 100),
        FindImageCircle(vLuma.data(), 100, 0, 100),    FindImageCircle(vLuma.data(), 100, 100, 99),
        FindImageCircle(vLuma.data(), 100, 100, -100), FindImageCircle(vLuma.data(), nLeast, nLeast, nLeast),
    };
    for (const SFoundCircle& rFound : sFaults) {
        EXPECT_EQ(rFound.eCertainty, CIRCLE_NONE);
        EXPECT_FALSE(rFound.strReason.empty());
        EXPECT_EQ(rFound.fRadiusX, 0.0);
    }
}

TEST(CircleFinder, FramesOfEverySizeCanBeLookedAt)
{
    CDice oDice(1);
    for (const int nWidth : {1, 2, 3, 31, 32, 33, 100, 3000}) {
        for (const int nHeight : {1, 2, 31, 32, 33, 65, 480}) {
            SCanvas sCanvas(nWidth, nHeight, 10.0f);
            for (int i = 0; i < nWidth * nHeight / 2; ++i)
                sCanvas.vLevels[static_cast<std::size_t>(i)] = static_cast<float>(oDice.Between(0.0, 255.0));
            EXPECT_EQ(FindIn(sCanvas).eCertainty, CIRCLE_NONE) << nWidth << " x " << nHeight;
        }
    }
}

TEST(CircleFinder, EmptyPicturesHaveNone)
{
    EXPECT_EQ(FindIn(SCanvas(640, 480, 0.0f)).eCertainty, CIRCLE_NONE);
    EXPECT_EQ(FindIn(SCanvas(640, 480, 255.0f)).eCertainty, CIRCLE_NONE);
    for (const float fLevel : {0.0f, 20.0f, 128.0f}) {
        SCanvas sCanvas(640, 480, fLevel);
        CDice oDice(4);
        AddNoise(sCanvas, oDice, 12.0);
        EXPECT_EQ(FindIn(sCanvas).eCertainty, CIRCLE_NONE) << fLevel;
    }
}

TEST(CircleFinder, ACircleAroundTheWholeFrameHasNoRim)
{
    SCirclePicture sPicture = Whole();
    sPicture.fRadiusX = sPicture.fRadiusY = 2.0 * sPicture.nWidth;
    const SFoundCircle sFound = Find(sPicture);
    EXPECT_EQ(sFound.eCertainty, CIRCLE_NONE);
    EXPECT_FALSE(sFound.strReason.empty());
}

TEST(CircleFinder, ABrightSurroundIsNone)
{
    SCirclePicture sPicture = Whole();
    sPicture.fFloor = 150.0;
    const SFoundCircle sFound = Find(sPicture);
    EXPECT_EQ(sFound.eCertainty, CIRCLE_NONE);
    EXPECT_NE(sFound.strReason.find("no dark surround"), std::string::npos) << sFound.strReason;
}

TEST(CircleFinder, WhatLiesBetweenRowsIsNotLookedAt)
{
    const SCirclePicture sPicture = Whole();
    const std::vector<unsigned char> vLuma = DrawCirclePicture(sPicture);
    const SFoundCircle sTight = Find(sPicture);
    for (const int nStride : {sPicture.nWidth + 1, sPicture.nWidth + 77}) {
        // The last row ends with its last pixel.
        std::vector<unsigned char> vPadded(
            static_cast<std::size_t>(nStride * (sPicture.nHeight - 1) + sPicture.nWidth), 255);
        for (int y = 0; y < sPicture.nHeight; ++y)
            std::copy_n(vLuma.begin() + y * sPicture.nWidth, sPicture.nWidth, vPadded.begin() + y * nStride);
        const SFoundCircle sPadded =
            FindImageCircle(vPadded.data(), sPicture.nWidth, sPicture.nHeight, nStride);
        EXPECT_EQ(sPadded.eCertainty, CIRCLE_CERTAIN);
        EXPECT_EQ(sPadded.fCenterX, sTight.fCenterX);
        EXPECT_EQ(sPadded.fRadiusX, sTight.fRadiusX);
    }
}

TEST(CircleFinder, TheSamePictureGivesTheSameAnswer)
{
    const SCirclePicture sPicture = MakeCirclePicture(CIRCLE_ALL_AT_ONCE, 2, 1.0);
    const SFoundCircle sFirst = Find(sPicture);
    const SFoundCircle sSecond = Find(sPicture);
    EXPECT_EQ(sFirst.fCenterX, sSecond.fCenterX);
    EXPECT_EQ(sFirst.fRadiusX, sSecond.fRadiusX);
    EXPECT_EQ(sFirst.strReason, sSecond.strReason);
}

TEST(CircleFinder, ACircleThatFillsASquareFrameHasHalfItsSide)
{
    SCirclePicture sPicture = Whole();
    sPicture.nWidth = sPicture.nHeight = 500;
    sPicture.fCenterX = sPicture.fCenterY = sPicture.fRadiusX = sPicture.fRadiusY = 250.0;
    const SFoundCircle sFound = Find(sPicture);
    EXPECT_NE(sFound.eCertainty, CIRCLE_NONE) << sFound.strReason;
    EXPECT_FALSE(sFound.bEllipse);
    EXPECT_NEAR(sFound.fCenterX, 250.0, 0.3);
    EXPECT_NEAR(sFound.fCenterY, 250.0, 0.3);
    EXPECT_NEAR(sFound.fRadiusX, 250.0, 0.3);
    EXPECT_EQ(sFound.fRadiusX, sFound.fRadiusY);
}

TEST(CircleFinder, ALargeFrameIsFoundToAPartOfAPixel)
{
    SCirclePicture sPicture = Whole();
    sPicture.nWidth = 1920;
    sPicture.nHeight = 1080;
    sPicture.fCenterX = 975.3;
    sPicture.fCenterY = 531.8;
    sPicture.fRadiusX = sPicture.fRadiusY = 652.4;
    const SFoundCircle sFound = Find(sPicture);
    EXPECT_EQ(sFound.eCertainty, CIRCLE_CERTAIN) << sFound.strReason;
    EXPECT_NEAR(sFound.fCenterX, sPicture.fCenterX, 0.3);
    EXPECT_NEAR(sFound.fCenterY, sPicture.fCenterY, 0.3);
    EXPECT_NEAR(sFound.fRadiusX, sPicture.fRadiusX, 0.3);
}

TEST(CircleFinder, ABlurredRimEndsInTheMiddleOfTheBlur)
{
    SCirclePicture sPicture = Whole();
    for (const double fBlur : {4.0, 6.0}) {
        sPicture.fBlur = fBlur;
        const SFoundCircle sFound = Find(sPicture);
        EXPECT_EQ(sFound.eCertainty, CIRCLE_LIKELY);
        EXPECT_NEAR(sFound.fRadiusX, sPicture.fRadiusX, 0.005 * sPicture.fRadiusX) << fBlur;
    }
}

TEST(CircleFinder, ARimThatFadesEverMoreSlowlyIsNotCertain)
{
    for (unsigned n = 0; n < 4; ++n) {
        SCirclePicture sPicture = MakeCirclePicture(CIRCLE_DIM, n, 1.0);
        sPicture.fDimPower = 2.5;
        sPicture.fDimEnd = 0.0;
        EXPECT_LE(Find(sPicture).eCertainty, CIRCLE_LIKELY);
    }
}

TEST(CircleFinder, AnEvenSceneIsOnlyLikely)
{
    SCanvas sCanvas(640, 480, 12.0f);
    for (int y = 0; y < 480; ++y) {
        for (int x = 0; x < 640; ++x) {
            if (std::hypot(x + 0.5 - 310.0, y + 0.5 - 236.0) < 200.0)
                sCanvas.At(x, y) = 140.0f;
        }
    }
    CDice oDice(9);
    AddNoise(sCanvas, oDice, 1.5);
    const SFoundCircle sFound = FindIn(sCanvas);
    EXPECT_EQ(sFound.eCertainty, CIRCLE_LIKELY);
    EXPECT_NEAR(sFound.fCenterX, 310.0, 0.3);
    EXPECT_NEAR(sFound.fRadiusX, 200.0, 0.4);
}

TEST(CircleFinder, ASmallDiscIsNone)
{
    SCirclePicture sPicture = Whole();
    sPicture.fRadiusX = sPicture.fRadiusY = 0.2 * sPicture.nHeight;
    const SFoundCircle sFound = Find(sPicture);
    EXPECT_EQ(sFound.eCertainty, CIRCLE_NONE);
    EXPECT_NE(sFound.strReason.find("too small"), std::string::npos) << sFound.strReason;
}

TEST(CircleFinder, TwoCirclesInOneFrameAreNone)
{
    SCirclePicture sPicture = Whole();
    sPicture.nWidth = 480;
    sPicture.nHeight = 480;
    sPicture.fCenterX = sPicture.fCenterY = 240.0;
    sPicture.fRadiusX = sPicture.fRadiusY = 225.0;
    const std::vector<unsigned char> vLuma = DrawCirclePicture(sPicture);
    std::vector<unsigned char> vBoth;
    for (int y = 0; y < 480; ++y) {
        for (int n = 0; n < 2; ++n)
            vBoth.insert(vBoth.end(), vLuma.begin() + y * 480, vLuma.begin() + (y + 1) * 480);
    }
    EXPECT_EQ(FindImageCircle(vBoth.data(), 960, 480, 960).eCertainty, CIRCLE_NONE);
}

TEST(CircleFinder, ItIsSaidWhenACircleCannotBeToldFromAnEllipse)
{
    SCirclePicture sPicture = Whole();
    sPicture.nWidth = 640;
    sPicture.nHeight = 400;
    sPicture.fCenterX = 320.0;
    sPicture.fCenterY = 200.0;
    sPicture.fRadiusX = sPicture.fRadiusY = 345.0;
    const SFoundCircle sFound = Find(sPicture);
    EXPECT_EQ(sFound.eCertainty, CIRCLE_LIKELY);
    EXPECT_EQ(sFound.strReason, "cannot tell a circle from an ellipse");
    EXPECT_NEAR(sFound.fRadiusX, 345.0, 0.005 * 345.0);
}
