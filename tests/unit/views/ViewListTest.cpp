// The one list of views: names, limits, defaults, sizes.
#include "dewarp/views/ViewList.h"
#include "dewarp/control/Control.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>

namespace
{

const EMountType MOUNTS[] = {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR};

SDewarpParams ParamsOf(EViewType eView, EMountType eMount, float fMountTilt = 0.0f, bool bStrict = true)
{
    SDewarpParams sParams;
    sParams.eViewType = eView;
    sParams.eMountType = eMount;
    sParams.fMountTilt = fMountTilt;
    sParams.bStrictTiltLimits = bStrict;
    sParams.nImageWidth = 1200;
    sParams.nImageHeight = 1000;
    return sParams;
}

/// Calls a function for every view on every mount, inclined and not, strict and not.
template <class F>
void ForEachView(F fView)
{
    for (const SViewEntry& rEntry : ListViews())
        for (const EMountType eMount : MOUNTS)
            for (const float fMountTilt : {0.0f, 20.0f, -35.0f})
                for (const bool bStrict : {true, false}) {
                    SCOPED_TRACE(std::string(rEntry.pName) + " on " + std::to_string(eMount) +
                                 " inclined by " + std::to_string(fMountTilt));
                    fView(FindView(rEntry.eType, eMount),
                          ParamsOf(rEntry.eType, eMount, fMountTilt, bStrict));
                }
}

void ExpectInside(const SPTZRange& rRange, float fValue)
{
    EXPECT_GE(fValue, rRange.fLow);
    EXPECT_LE(fValue, rRange.fHigh);
}

} // namespace

TEST(ViewList, HasEveryViewOnceByTypeAndByName)
{
    std::set<int> oTypes;
    std::set<std::string> oNames;
    for (const SViewEntry& rEntry : ListViews()) {
        EXPECT_TRUE(oTypes.insert(rEntry.eType).second) << rEntry.pName;
        EXPECT_TRUE(oNames.insert(rEntry.pName).second) << rEntry.pName;
        EXPECT_FALSE(std::string(rEntry.pName).empty());
        EXPECT_EQ(&FindView(rEntry.eType, MOUNT_CEILING), rEntry.pView);
        EXPECT_EQ(&FindView(rEntry.eType, MOUNT_FLOOR), rEntry.pView);
        EXPECT_EQ(&FindView(rEntry.eType, MOUNT_WALL), rEntry.pWallView);
    }
    for (int nType = VIEW_VCAM; nType <= VIEW_FISHEYE_CIRCULAR; ++nType)
        EXPECT_EQ(oTypes.count(nType), 1u) << nType;
}

TEST(ViewList, TypesThatAreNotListedShowTheFisheye)
{
    for (const int nType : {0, -1, 10, 1000})
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_WALL, MOUNT_UNSET})
            EXPECT_EQ(FindView(static_cast<EViewType>(nType), eMount).Mesh(), MESH_FISHEYE) << nType;
}

TEST(ViewList, EveryViewStartsInsideItsLimitsAndALimitDoesNotMoveIt)
{
    ForEachView([](const CView& rView, SDewarpParams sParams) {
        // An inclined camera's widened band may leave the horizon out; the first frame is limited to it then.
        if (sParams.fMountTilt != 0.0f && !sParams.bStrictTiltLimits)
            return;
        const SPTZLimits sLimits = rView.Limits(sParams);
        const SPTZ sDefault = rView.DefaultPTZ(sParams.eMountType);
        EXPECT_LE(sLimits.sPan.fLow, sLimits.sPan.fHigh);
        EXPECT_LE(sLimits.sTilt.fLow, sLimits.sTilt.fHigh);
        EXPECT_LE(sLimits.sZoom.fLow, sLimits.sZoom.fHigh);
        ExpectInside(sLimits.sPan, sDefault.fPan);
        ExpectInside(sLimits.sTilt, sDefault.fTilt);
        ExpectInside(sLimits.sZoom, sDefault.fZoom);
        sParams.fPan = sDefault.fPan;
        sParams.fTilt = sDefault.fTilt;
        sParams.fZoom = sDefault.fZoom;
        LimitPosition(rView, sParams);
        EXPECT_EQ(sParams.fPan, sDefault.fPan);
        EXPECT_EQ(sParams.fTilt, sDefault.fTilt);
        EXPECT_EQ(sParams.fZoom, sDefault.fZoom);
    });
}

TEST(ViewList, ALimitedPositionIsInsideAndIsLeftAloneByASecondLimit)
{
    std::mt19937 oRandom(11);
    const auto Any = [&](float fLog) {
        // Sizes of all orders up to that one, either way.
        const float fSize = std::pow(10.0f, std::uniform_real_distribution<float>(-3.0f, fLog)(oRandom));
        return oRandom() % 2 == 0 ? fSize : -fSize;
    };
    ForEachView([&](const CView& rView, SDewarpParams sParams) {
        const SPTZLimits sLimits = rView.Limits(sParams);
        for (int i = 0; i < 1000; ++i) {
            const float fLog = i % 4 == 0 ? 38.0f : 3.0f;
            sParams.fPan = i % 10 == 1 ? 180.0f * static_cast<float>(i / 10 - 50) : Any(fLog);
            sParams.fTilt = Any(fLog);
            sParams.fZoom = Any(fLog);
            const float fPan = sParams.fPan;
            LimitPosition(rView, sParams);
            ASSERT_GE(sParams.fPan, sLimits.sPan.fLow) << fPan;
            ASSERT_LE(sParams.fPan, sLimits.sPan.fHigh) << fPan;
            ASSERT_GE(sParams.fTilt, sLimits.sTilt.fLow);
            ASSERT_LE(sParams.fTilt, sLimits.sTilt.fHigh);
            ASSERT_GE(sParams.fZoom, sLimits.sZoom.fLow);
            ASSERT_LE(sParams.fZoom, sLimits.sZoom.fHigh);
            // A pan that goes round still points the same way.
            if (sLimits.sPan.bPeriodic && std::fabs(fPan) < 1e5f) {
                const float fOff = std::remainder(sParams.fPan - fPan, 360.0f);
                ASSERT_NEAR(fOff, 0.0f, 0.02f) << fPan;
            }
            SDewarpParams sAgain = sParams;
            LimitPosition(rView, sAgain);
            ASSERT_EQ(sAgain.fPan, sParams.fPan) << fPan;
            ASSERT_EQ(sAgain.fTilt, sParams.fTilt);
            ASSERT_EQ(sAgain.fZoom, sParams.fZoom);
        }
    });
}

TEST(ViewList, EveryViewHasADefaultSizeThatItFillsWithoutBars)
{
    ForEachView([](const CView& rView, const SDewarpParams& rParams) {
        int nWidth = 0;
        int nHeight = 0;
        rView.DefaultSize(rParams, nWidth, nHeight);
        ASSERT_GT(nWidth, 0);
        ASSERT_GT(nHeight, 0);
        const SClipBands sBands = rView.ClipBands(rParams, rView.MeshAspect(rParams), nWidth, nHeight);
        // A size in whole pixels may be off the view's aspect by a pixel.
        if (sBands.anPlanes[0] != -1) {
            EXPECT_LE(sBands.anPlanes[0], nWidth / 20);
        }
        if (sBands.anPlanes[2] != -1) {
            EXPECT_LE(sBands.anPlanes[2], nHeight / 20);
        }
    });
}
