// There and back, in every view.

#include "tests/unit/mapping/PointScene.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <random>

namespace
{

const EViewType VIEWS[] = {VIEW_FISHEYE,          VIEW_FISHEYE_CIRCULAR, VIEW_VCAM,
                           VIEW_VCAM_QUAD,        VIEW_PANORAMA_FULL,    VIEW_PANORAMA_HALF,
                           VIEW_PANORAMA_QUARTER, VIEW_PANORAMA_DUAL,    VIEW_PANORAMA_TRIPLE};
const EMountType MOUNTS[] = {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR};
const int LENSES[] = {0, 215, 239, 418, 419};
const int SIZES[][2] = {{640, 360}, {300, 500}, {257, 255}, {1280, 200}};
const int POINTS = 150;

struct SCount
{
    int nPoints = 0;
    int nShown = 0;
    int nElsewhere = 0;
    int nBack = 0;
};

class CRoundTrip : public ::testing::Test
{
protected:
    double Between(double fLow, double fHigh)
    {
        return std::uniform_real_distribution<double>(fLow, fHigh)(m_oRandom);
    }
    int Lot(int nCount) { return std::uniform_int_distribution<int>(0, nCount - 1)(m_oRandom); }

    SPointSetup RandomSetup(EViewType eView, EMountType eMount, int nLens)
    {
        SPointSetup s;
        s.eView = eView;
        s.eMount = eMount;
        s.nLens = nLens;
        s.nFrameWidth = Lot(2) == 0 ? 1920 : 1500 + Lot(500);
        s.nFrameHeight = Lot(2) == 0 ? s.nFrameWidth : 1000 + Lot(500);
        const int* const pSize = SIZES[Lot(4)];
        s.nWidth = pSize[0];
        s.nHeight = pSize[1];
        if (Lot(4) > 0)
            s.sPTZ = {static_cast<float>(Between(-180.0, 180.0)), static_cast<float>(Between(-40.0, 170.0)),
                      static_cast<float>(Between(20.0, 180.0))};
        s.nRotation = 90 * Lot(4);
        s.bFlipHorizontal = Lot(3) == 0;
        s.bFlipVertical = Lot(3) == 0;
        s.fEyeDistance = Lot(2) == 0 ? 0.0f : static_cast<float>(Between(0.0, 1.0));
        s.fMountTilt = Lot(2) == 0 ? 0.0f : static_cast<float>(Between(-30.0, 30.0));
        s.bTopDown = Lot(4) > 0;
        return s;
    }

    void LookAt(CPointScene& rScene, const SPointSetup& s, SCount& rCount)
    {
        for (int i = 0; i < POINTS; ++i) {
            // Pixel centres too, and the corners between pixels.
            SPointD sPoint = {Between(0.0, s.nWidth), Between(0.0, s.nHeight)};
            if (i % 5 == 1)
                sPoint = {std::floor(sPoint.x) + 0.5, std::floor(sPoint.y) + 0.5};
            else if (i % 5 == 2)
                sPoint = {std::floor(sPoint.x), std::floor(sPoint.y)};
            ++rCount.nPoints;
            SPointD sFrame;
            if (!rScene.ToFrame(sPoint, sFrame))
                continue;
            ++rCount.nShown;
            SPointD sView;
            SPointD sAgain;
            if (!rScene.ToView(sFrame, sView) || !rScene.ToFrame(sView, sAgain)) {
                ADD_FAILURE() << s.Words() << ": (" << sPoint.x << ", " << sPoint.y << ") shows (" << sFrame.x
                              << ", " << sFrame.y << "), which is not found";
                continue;
            }
            ASSERT_LE(Distance(sAgain, sFrame), 2e-6) << s.Words();
            ++rCount.nBack;
            if (Distance(sView, sPoint) > 1e-6)
                ++rCount.nElsewhere;
        }
    }

    std::mt19937 m_oRandom{20};
};

} // namespace

TEST_F(CRoundTrip, WhatThePictureShowsIsFoundInIt)
{
    for (const EViewType eView : VIEWS) {
        SCount sCount;
        for (const EMountType eMount : MOUNTS) {
            for (const int nLens : LENSES) {
                const SPointSetup s = RandomSetup(eView, eMount, nLens);
                CPointScene oScene(s);
                LookAt(oScene, s, sCount);
            }
        }
        std::printf("  view %d: %d of %d points show something, %d found, %d at another place\n", eView,
                    sCount.nShown, sCount.nPoints, sCount.nBack, sCount.nElsewhere);
        EXPECT_GT(sCount.nShown, sCount.nPoints / 8);
    }
}

TEST_F(CRoundTrip, WhatIsFoundInThePictureIsShownThere)
{
    int nFound = 0;
    int nAsked = 0;
    for (const EViewType eView : VIEWS)
        for (const EMountType eMount : MOUNTS) {
            const SPointSetup s = RandomSetup(eView, eMount, LENSES[Lot(5)]);
            CPointScene oScene(s);
            for (int i = 0; i < 2 * POINTS; ++i) {
                const SPointD sFrame = {Between(-20.0, s.nFrameWidth + 20.0),
                                        Between(-20.0, s.nFrameHeight + 20.0)};
                SPointD sView;
                SPointD sAgain;
                ++nAsked;
                if (!oScene.ToView(sFrame, sView))
                    continue;
                ++nFound;
                ASSERT_TRUE(oScene.ToFrame(sView, sAgain)) << s.Words();
                ASSERT_LE(Distance(sAgain, sFrame), 2e-6) << s.Words();
            }
        }
    EXPECT_GT(nFound, nAsked / 10);
    EXPECT_LT(nFound, nAsked);
}
