// What one frame is to show follows from the state in force and the target alone.
#include "dewarp/control/Decision.h"
#include "dewarp/control/Control.h"
#include "dewarp/geometry/Matrix.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/views/ViewList.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace
{

/// A state with a view in force.
struct SState
{
    SState(EViewType eView, EMountType eMount, float fPan = 30.0f, float fTilt = 20.0f)
    {
        oControl.SetFrame(1200, 1000, 1200, true);
        oControl.eRequestedView = eView;
        oControl.eRequestedMount = eMount;
        oControl.eRequestedLens = LENS_DSL419;
        oControl.AbsolutePTZ(fPan, fTilt, 90.0f);
        oControl.ApplyRequests();
    }
    SFrameDecision Decide(const STargetShape& rTarget)
    {
        SFrameDecision d;
        DecideView(oControl, rTarget, d);
        return d;
    }

    CReport oReport{DEWARP_LOG_TAG};
    CControl oControl{oReport};
};

void ExpectSame(const SFrameDecision& a, const SFrameDecision& b)
{
    EXPECT_EQ(a.pView, b.pView);
    EXPECT_TRUE(a.sMesh == b.sMesh);
    EXPECT_EQ(a.fMeshAspect, b.fMeshAspect);
    EXPECT_EQ(a.fImageAspect, b.fImageAspect);
    EXPECT_EQ(std::memcmp(&a.sMatrices, &b.sMatrices, sizeof a.sMatrices), 0);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(a.sBands.anPlanes[i], b.sBands.anPlanes[i]);
    EXPECT_EQ(a.sBands.fDepth, b.sBands.fDepth);
    EXPECT_EQ(a.sBands.bTexCoordRows, b.sBands.bTexCoordRows);
    ASSERT_EQ(a.nParts, b.nParts);
    for (int i = 0; i < a.nParts; ++i)
        EXPECT_EQ(std::memcmp(&a.aParts[i], &b.aParts[i], sizeof a.aParts[i]), 0);
}

} // namespace

TEST(Decision, TheSameStateAndTargetGiveTheSameRecordWhateverItHeldBefore)
{
    std::mt19937 oRandom(5);
    const auto Any = [&](float fLow, float fHigh) {
        return std::uniform_real_distribution<float>(fLow, fHigh)(oRandom);
    };
    SFrameDecision sUsed;
    for (int i = 0; i < 2000; ++i) {
        const SViewEntry& rEntry = ListViews()[oRandom() % ListViews().size()];
        const EMountType aMounts[] = {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR};
        SState s(rEntry.eType, aMounts[oRandom() % 3], Any(-1000.0f, 1000.0f), Any(-200.0f, 200.0f));
        bool bChanged = false;
        s.oControl.SetMountTilt(Any(-60.0f, 60.0f));
        s.oControl.SetRotation(static_cast<int>(oRandom() % 4) * 90, bChanged);
        s.oControl.SetEyeDistance(Any(0.0f, 1.0f));
        s.oControl.sParams.bStrictTiltLimits = oRandom() % 2 == 0;
        const STargetShape sTarget = {1 + static_cast<int>(oRandom() % 900),
                                      1 + static_cast<int>(oRandom() % 900), oRandom() % 2 == 0};
        DecideView(s.oControl, sTarget, sUsed);
        ExpectSame(sUsed, s.Decide(sTarget));
        EXPECT_TRUE(IsDecidedFor(sUsed, s.oControl, sTarget));
        for (const float f : sUsed.sMatrices.fMVP)
            ASSERT_TRUE(std::isfinite(f)) << rEntry.pName;
    }
}

TEST(Decision, HoldsForTheStateItWasMadeFromAndNoOther)
{
    const STargetShape sTarget = {640, 480, false};
    SState s(VIEW_VCAM, MOUNT_CEILING);
    EXPECT_FALSE(IsDecidedFor(SFrameDecision(), s.oControl, sTarget)) << "nothing is decided yet";
    const SFrameDecision d = s.Decide(sTarget);
    const auto ExpectStale = [&](const char* pWhat) {
        EXPECT_FALSE(IsDecidedFor(d, s.oControl, sTarget)) << pWhat;
    };
    EXPECT_FALSE(IsDecidedFor(d, s.oControl, {641, 480, false}));
    EXPECT_FALSE(IsDecidedFor(d, s.oControl, {640, 479, false}));
    EXPECT_FALSE(IsDecidedFor(d, s.oControl, {640, 480, true}));
    const SDewarpParams sBefore = s.oControl.sParams;
    s.oControl.sParams.fPan += 1.0f;
    ExpectStale("pan");
    s.oControl.sParams = sBefore;
    s.oControl.sParams.eLensType = LENS_DSL215;
    ExpectStale("lens");
    s.oControl.sParams = sBefore;
    s.oControl.sParams.nImageWidth += 2;
    ExpectStale("frame width");
    s.oControl.sParams = sBefore;
    s.oControl.sParams.fMountTilt = 3.0f;
    ExpectStale("mount tilt");
    s.oControl.sParams = sBefore;
    s.oControl.sParams.bStrictTiltLimits = false;
    ExpectStale("strictness");
    s.oControl.sParams = sBefore;
    bool bChanged = false;
    s.oControl.SetRotation(90, bChanged);
    ExpectStale("rotation");
    s.oControl.SetRotation(0, bChanged);
    s.oControl.SetEyeDistance(0.5f);
    ExpectStale("eye");
    s.oControl.SetEyeDistance(0.0f);
    EXPECT_TRUE(IsDecidedFor(d, s.oControl, sTarget)) << "all is as it was";
}

TEST(Decision, AQuadHasFourQuartersOfTheTargetEachTurnedByAFurtherQuarter)
{
    for (const bool bTopDown : {false, true}) {
        SState s(VIEW_VCAM_QUAD, MOUNT_CEILING);
        const SFrameDecision d = s.Decide({641, 481, bTopDown});
        ASSERT_EQ(d.nParts, 4);
        // Clockwise from the top left. Without a top-down target the upper row is that of the larger y.
        const int nUpper = bTopDown ? 1 : 240;
        const int nLower = bTopDown ? 241 : 0;
        const int aanOrigins[4][2] = {{0, nUpper}, {320, nUpper}, {320, nLower}, {0, nLower}};
        float afTurned[16];
        std::memcpy(afTurned, d.sMatrices.fMVP, sizeof afTurned);
        for (int i = 0; i < 4; ++i) {
            SCOPED_TRACE(i);
            EXPECT_EQ(d.aParts[i].nX, aanOrigins[i][0]);
            EXPECT_EQ(d.aParts[i].nY, aanOrigins[i][1]);
            EXPECT_EQ(d.aParts[i].nWidth, 320);
            EXPECT_EQ(d.aParts[i].nHeight, 240);
            rotateM(afTurned, 0, -90.0f, 0.0f, 0.0f, 1.0f);
            for (int k = 0; k < 16; ++k)
                EXPECT_NEAR(d.aParts[i].fMVP[k], afTurned[k], 1e-5f);
        }
        // After four quarters it looks where the whole view does.
        for (int k = 0; k < 16; ++k)
            EXPECT_NEAR(d.aParts[3].fMVP[k], d.sMatrices.fMVP[k], 1e-4f);
    }
}

TEST(Decision, AQuadOfAWallCameraIsOnePicture)
{
    SState s(VIEW_VCAM_QUAD, MOUNT_WALL, 90.0f, 90.0f);
    const SFrameDecision d = s.Decide({641, 481, false});
    ASSERT_EQ(d.nParts, 1);
    EXPECT_EQ(d.aParts[0].nWidth, 641);
    EXPECT_EQ(d.aParts[0].nHeight, 481);
    EXPECT_EQ(std::memcmp(d.aParts[0].fMVP, d.sMatrices.fMVP, sizeof d.sMatrices.fMVP), 0);
}

TEST(Decision, OnlyTheQuarteredPanoramaIsDrawnInTwoHalves)
{
    for (const SViewEntry& rEntry : ListViews()) {
        SState s(rEntry.eType, MOUNT_CEILING);
        const int nParts = s.Decide({640, 480, false}).nParts;
        const int nWanted = rEntry.eType == VIEW_VCAM_QUAD          ? 4
                            : rEntry.eType == VIEW_PANORAMA_QUARTER ? 2
                                                                    : 1;
        EXPECT_EQ(nParts, nWanted) << rEntry.pName;
    }
}

TEST(Decision, TheHalvesOfThePanoramaLieAboveEachOtherAndShowNeighbouringParts)
{
    for (const float fPan : {30.0f, -30.0f})
        for (const EMountType eMount : {MOUNT_CEILING, MOUNT_FLOOR}) {
            SState s(VIEW_PANORAMA_QUARTER, eMount, fPan);
            const SFrameDecision d = s.Decide({800, 400, false});
            ASSERT_EQ(d.nParts, 2);
            const SViewPart& rUpper = d.aParts[0];
            const SViewPart& rLower = d.aParts[1];
            EXPECT_EQ(rUpper.nWidth, 800);
            EXPECT_EQ(rLower.nHeight, 400);
            // A matrix's last column is where the strip's middle comes to stand.
            EXPECT_GT(rUpper.fMVP[13], rLower.fMVP[13]);
            EXPECT_NEAR(rUpper.fMVP[13], -rLower.fMVP[13], 1e-5f);
            const float fApart = std::fabs(rUpper.fMVP[12] - rLower.fMVP[12]);
            // Half the strip is one mesh aspect wide, of a strip of two.
            EXPECT_NEAR(fApart, d.fMeshAspect * std::fabs(d.sMatrices.fProjection[0]), 1e-3f);
        }
}

TEST(Decision, APanoramaInATargetOfAnotherShapeKeepsBandsFree)
{
    SState s(VIEW_PANORAMA_FULL, MOUNT_CEILING);
    const SFrameDecision sTall = s.Decide({800, 800, false});
    EXPECT_EQ(sTall.sBands.fDepth, 0.0f);
    EXPECT_GE(sTall.fMeshAspect, 1.0f);
    SState sWall(VIEW_PANORAMA_FULL, MOUNT_WALL);
    const SFrameDecision sWallTall = sWall.Decide({500, 500, false});
    EXPECT_EQ(sWallTall.sBands.anPlanes[0], -1);
    EXPECT_EQ(sWallTall.sBands.anPlanes[2], 150) << "a picture of 500 x 200 in the middle";
    EXPECT_EQ(sWallTall.sBands.anPlanes[3], 350);
    const SFrameDecision sWallWide = sWall.Decide({500, 200, false});
    for (const int nPlane : sWallWide.sBands.anPlanes)
        EXPECT_EQ(nPlane, -1) << "all of it is picture";
    sWall.oControl.SetMountTilt(20.0f);
    EXPECT_GT(sWall.Decide({500, 200, false}).sBands.fDepth, 0.0f) << "what lies behind the camera is cut";
}

TEST(Decision, RowsOutsideThePictureAreLeftOutWithTheLensesThatNeedItOnly)
{
    for (const ELensType eLens : {LENS_DSL215, LENS_DSL239, LENS_DSL418, LENS_DSL419, LENS_UNKNOWN}) {
        const bool bWide = eLens == LENS_DSL215 || eLens == LENS_DSL239;
        for (const SViewEntry& rEntry : ListViews()) {
            SState s(rEntry.eType, MOUNT_CEILING);
            s.oControl.eRequestedLens = eLens;
            s.oControl.ApplyRequests();
            const EViewMesh eMesh = s.oControl.View().Mesh();
            const bool bStrip =
                eMesh == MESH_PANORAMA || eMesh == MESH_PANORAMA_DUAL || eMesh == MESH_PANORAMA_TRIPLE;
            EXPECT_EQ(s.Decide({640, 480, false}).sBands.bTexCoordRows, bStrip && bWide)
                << rEntry.pName << ", lens " << eLens;
        }
    }
}

TEST(Decision, AQuarterTurnExchangesTheSidesOfThePicture)
{
    SDewarpParams sParams;
    sParams.nImageWidth = 1200;
    sParams.nImageHeight = 800;
    EXPECT_EQ(ShownImageAspect(sParams, 0), 1.5f);
    EXPECT_EQ(ShownImageAspect(sParams, 180), 1.5f);
    EXPECT_NEAR(ShownImageAspect(sParams, 90), 1.0f / 1.5f, 1e-6f);
    EXPECT_NEAR(ShownImageAspect(sParams, 270), 1.0f / 1.5f, 1e-6f);
    sParams.nImageHeight = 0;
    EXPECT_EQ(ShownImageAspect(sParams, 0), 1.0f);
}
