// Many pictures of every kind: how often the circle is found, how exactly, and that none is found where none
// is.
#include "CirclePictures.h"
#include "PlainPhotographs.h"

#include "dewarp/lenses/CircleFinder.h"
#include "tests/support/Setting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

/// Pictures of each kind: 15 kinds make 210.
constexpr int PICTURES = 9;
constexpr int PHOTOGRAPHS = 4;

/// Circles of about 100 to 270 pixels of radius.
constexpr double SCALE = 0.85;

struct SCount
{
    int nPictures = 0;
    int nRight = 0;
    int nCertain = 0;
    int nWrongButCertain = 0;
    int nFound = 0;
    double fWorst = 0.0; ///< of the right ones, parts of the radius
};

double ErrorOf(const SFoundCircle& rFound, const SCirclePicture& rPicture)
{
    return std::max({std::fabs(rFound.fCenterX - rPicture.fCenterX),
                     std::fabs(rFound.fCenterY - rPicture.fCenterY),
                     std::fabs(rFound.fRadiusX - rPicture.fRadiusX),
                     std::fabs(rFound.fRadiusY - rPicture.fRadiusY)}) /
           std::sqrt(rPicture.fRadiusX * rPicture.fRadiusY);
}

SCount CountScene(ECircleScene eScene)
{
    SCount sCount;
    sCount.nPictures = Setting("LUMOR_CIRCLE_PICTURES", PICTURES);
    for (int n = 0; n < sCount.nPictures; ++n) {
        const SCirclePicture sPicture =
            MakeCirclePicture(eScene, static_cast<unsigned>(n), Setting("LUMOR_CIRCLE_SCALE", SCALE));
        const std::vector<unsigned char> vLuma = DrawCirclePicture(sPicture);
        const SFoundCircle sFound =
            FindImageCircle(vLuma.data(), sPicture.nWidth, sPicture.nHeight, sPicture.nWidth);
        const double fError = ErrorOf(sFound, sPicture);
        const bool bFound = sFound.eCertainty != CIRCLE_NONE;
        const bool bRight = bFound && fError <= LimitOf(eScene);
        sCount.nFound += bFound ? 1 : 0;
        sCount.nRight += bRight ? 1 : 0;
        sCount.nCertain += sFound.eCertainty == CIRCLE_CERTAIN ? 1 : 0;
        sCount.nWrongButCertain += sFound.eCertainty == CIRCLE_CERTAIN && !bRight ? 1 : 0;
        sCount.fWorst = bRight ? std::max(sCount.fWorst, fError) : sCount.fWorst;
        EXPECT_EQ(sFound.strReason.empty(), sFound.eCertainty == CIRCLE_CERTAIN);
        EXPECT_TRUE(bRight || sFound.eCertainty != CIRCLE_CERTAIN)
            << NameOf(eScene) << ", picture " << n << ": off by " << fError;
    }
    return sCount;
}

class CircleScenes : public testing::TestWithParam<int>
{
};

class Photographs : public testing::TestWithParam<int>
{
};

} // namespace

TEST_P(CircleScenes, NineOfTenAreFoundExactlyAndNoneIsWrongButCertain)
{
    const ECircleScene eScene = static_cast<ECircleScene>(GetParam());
    const SCount sCount = CountScene(eScene);
    EXPECT_GE(10 * sCount.nRight, 9 * sCount.nPictures) << NameOf(eScene);
    EXPECT_EQ(sCount.nWrongButCertain, 0) << NameOf(eScene);
    RecordProperty("right", sCount.nRight);
    std::printf("%s: %d of %d right, %d certain, %d not found, worst of the right %.2f %% of the radius\n",
                NameOf(eScene), sCount.nRight, sCount.nPictures, sCount.nCertain,
                sCount.nPictures - sCount.nFound, 100.0 * sCount.fWorst);
}

INSTANTIATE_TEST_SUITE_P(CircleFinder, CircleScenes, testing::Range(0, static_cast<int>(CIRCLE_SCENES)));

TEST(CircleFinder, SharpAndWholeRimsAreCertain)
{
    for (const ECircleScene eScene : {CIRCLE_SHARP, CIRCLE_OFF_CENTRE, CIRCLE_NOISY, CIRCLE_ELLIPSE}) {
        int nCertain = 0;
        for (unsigned n = 100; n < 103; ++n) {
            const SCirclePicture sPicture = MakeCirclePicture(eScene, n, SCALE);
            const std::vector<unsigned char> vLuma = DrawCirclePicture(sPicture);
            const SFoundCircle sFound =
                FindImageCircle(vLuma.data(), sPicture.nWidth, sPicture.nHeight, sPicture.nWidth);
            nCertain += sFound.eCertainty == CIRCLE_CERTAIN ? 1 : 0;
            EXPECT_EQ(sFound.bEllipse, eScene == CIRCLE_ELLIPSE) << NameOf(eScene) << n;
        }
        EXPECT_GE(nCertain, 2) << NameOf(eScene);
    }
}

TEST_P(Photographs, HaveNoCircle)
{
    const EPhotograph ePhotograph = static_cast<EPhotograph>(GetParam());
    const ECircleCertainty eMost = ePhotograph < FIRST_ROUND_PHOTO ? CIRCLE_NONE : CIRCLE_LIKELY;
    const int nPictures = Setting("LUMOR_CIRCLE_PICTURES", PHOTOGRAPHS);
    for (int n = 0; n < nPictures; ++n) {
        const SPhotograph sPhotograph =
            DrawPhotograph(ePhotograph, static_cast<unsigned>(n), Setting("LUMOR_CIRCLE_SCALE", SCALE));
        const SFoundCircle sFound = FindImageCircle(sPhotograph.vLuma.data(), sPhotograph.nWidth,
                                                    sPhotograph.nHeight, sPhotograph.nWidth);
        EXPECT_LE(sFound.eCertainty, eMost)
            << NameOf(ePhotograph) << ", picture " << n << ": " << sFound.fCenterX << " " << sFound.fCenterY
            << " radius " << sFound.fRadiusX;
        EXPECT_FALSE(sFound.strReason.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(CircleFinder, Photographs, testing::Range(0, static_cast<int>(PHOTO_KINDS)));
