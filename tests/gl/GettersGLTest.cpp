// What a host would have to guess: what the getters say is what frames do.
#include "tests/support/EngineDewarper.h"
#include "tests/support/TestDewarper.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace
{

struct SNamedView
{
    EViewType eType;
    std::string strName;
};

/// Every view there is, as a host finds them.
std::vector<SNamedView> ListViews()
{
    std::vector<SNamedView> vViews;
    for (const std::string& strName : CCustomGPUDewarper::ListViewNames())
        vViews.push_back({CCustomGPUDewarper::FindViewType(strName), strName});
    return vViews;
}

const EMountType MOUNTS[] = {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR};

class Getters : public CEngineTest
{
protected:
    void Show(EViewType eView, EMountType eMount)
    {
        oDewarper->SetViewType(eView);
        oDewarper->SetMountType(eMount);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    }
    /// Where a move ends.
    SPTZ EndOf(float fPan, float fTilt, float fZoom)
    {
        oDewarper->AbsolutePTZ(fPan, fTilt, fZoom);
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        return {oDewarper.Pan(), oDewarper.Tilt(), oDewarper.Zoom()};
    }

    CTestFrame oFrame{AsymmetricPicture(64, 64), IMAGE_FORMAT_GRAY8};
    CEngineDewarper oDewarper{GetParam(), 64, 48};
};

} // namespace

TEST_P(Getters, LimitsAreWhereTheLongestMovesEnd)
{
    for (const SNamedView& rEntry : ListViews())
        for (const EMountType eMount : MOUNTS)
            for (const float fMountTilt : {0.0f, 20.0f, -20.0f})
                for (const bool bStrict : {true, false}) {
                    SCOPED_TRACE(rEntry.strName + " on " + std::to_string(eMount) + " inclined by " +
                                 std::to_string(fMountTilt));
                    oDewarper->SetMountTilt(fMountTilt);
                    oDewarper->SetStrictTiltLimits(bStrict);
                    const SPTZLimits sLimits = oDewarper->GetViewLimits(rEntry.eType, eMount);
                    Show(rEntry.eType, eMount);
                    const SPTZ sHigh = EndOf(1e6f, 1e6f, 1e6f);
                    const SPTZ sLow = EndOf(-1e6f, -1e6f, -1e6f);
                    EXPECT_EQ(sHigh.fTilt, sLimits.sTilt.fHigh);
                    EXPECT_EQ(sLow.fTilt, sLimits.sTilt.fLow);
                    EXPECT_EQ(sHigh.fZoom, sLimits.sZoom.fHigh);
                    EXPECT_EQ(sLow.fZoom, sLimits.sZoom.fLow);
                    if (sLimits.sPan.bPeriodic) {
                        EXPECT_GE(sLimits.sPan.fHigh - sLimits.sPan.fLow, 360.0f);
                    } else {
                        // GetPTZ tells a pan within one turn.
                        EXPECT_EQ(std::remainder(sHigh.fPan - sLimits.sPan.fHigh, 360.0f), 0.0f);
                        EXPECT_EQ(std::remainder(sLow.fPan - sLimits.sPan.fLow, 360.0f), 0.0f);
                    }
                }
}

TEST_P(Getters, TheDefaultPositionIsThatOfTheFirstFrame)
{
    for (const SNamedView& rEntry : ListViews())
        for (const EMountType eMount : MOUNTS) {
            SCOPED_TRACE(rEntry.strName + " on " + std::to_string(eMount));
            CEngineDewarper oFirst(GetParam(), 32, 24);
            oFirst->SetViewType(rEntry.eType);
            oFirst->SetMountType(eMount);
            ASSERT_TRUE(oFirst.DrawFrame(oFrame));
            float afTold[3] = {-1.0f, -1.0f, -1.0f};
            float afDrawn[3] = {-2.0f, -2.0f, -2.0f};
            CCustomGPUDewarper::GetDefaultPTZ(rEntry.eType, eMount, afTold[0], afTold[1], afTold[2]);
            oFirst->GetPTZ(afDrawn[0], afDrawn[1], afDrawn[2]);
            for (int i = 0; i < 3; ++i)
                EXPECT_EQ(afTold[i], afDrawn[i]) << i;
        }
}

TEST_P(Getters, TheDefaultSizeIsTheFrameOfAFlatViewAndAFixedOneOfOthers)
{
    for (const SNamedView& rEntry : ListViews())
        for (const EMountType eMount : MOUNTS) {
            SCOPED_TRACE(rEntry.strName + " on " + std::to_string(eMount));
            int anSmall[2] = {};
            int anLarge[2] = {};
            CCustomGPUDewarper::GetDefaultSize(rEntry.eType, eMount, 640, 480, anSmall[0], anSmall[1]);
            CCustomGPUDewarper::GetDefaultSize(rEntry.eType, eMount, 3000, 2000, anLarge[0], anLarge[1]);
            const bool bFlat = rEntry.eType == VIEW_FISHEYE || rEntry.eType == VIEW_FISHEYE_CIRCULAR;
            EXPECT_EQ(anSmall[0] == 640 && anSmall[1] == 480, bFlat);
            EXPECT_EQ(anLarge[0] == 3000 && anLarge[1] == 2000, bFlat);
            EXPECT_EQ(anSmall[0] == anLarge[0], !bFlat);
            // A picture of that size can be had.
            CEngineDewarper oSized(GetParam(), anSmall[0], anSmall[1]);
            oSized->SetViewType(rEntry.eType);
            oSized->SetMountType(eMount);
            ASSERT_TRUE(oSized.DrawFrame(oFrame));
            EXPECT_EQ(oSized.Picture().nWidth, anSmall[0]);
            EXPECT_EQ(oSized.Picture().nHeight, anSmall[1]);
        }
}

TEST_P(Getters, TheLensInForceIsTheOneThatWasFound)
{
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_UNSET);
    oDewarper->SetLensType(LENS_AUTO);
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_UNSET) << "a request is not in force yet";
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_UNKNOWN);
    EXPECT_EQ(oDewarper->GetLensType(), LENS_AUTO);
    oDewarper->SetLensType(LENS_DSL418);
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_UNKNOWN);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_DSL418);
    // A move forgets it only until the frame that it comes with.
    oDewarper->AbsolutePTZ(1.0f, 2.0f, 90.0f);
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_DSL418);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_DSL418);
    oDewarper->SetLensType(LENS_AUTO);
    CTestFrame oLarge(AsymmetricPicture(528, 480), IMAGE_FORMAT_GRAY8);
    ASSERT_TRUE(oDewarper.DrawFrame(oLarge));
    EXPECT_EQ(oDewarper->GetLensInForce(), LENS_DSL215);
}

TEST_P(Getters, ViewsHaveNamesByWhichTheyAreFound)
{
    std::set<std::string> oNames;
    for (const std::string& strName : CCustomGPUDewarper::ListViewNames()) {
        EXPECT_TRUE(oNames.insert(strName).second) << strName;
        const EViewType eView = CCustomGPUDewarper::FindViewType(strName);
        EXPECT_NE(eView, VIEW_UNSET) << strName;
        ASSERT_NE(CCustomGPUDewarper::GetViewName(eView), nullptr);
        EXPECT_EQ(strName, CCustomGPUDewarper::GetViewName(eView));
    }
    EXPECT_EQ(oNames.size(), 12u);
    for (const int nView : {0, -1, 10})
        EXPECT_EQ(CCustomGPUDewarper::GetViewName(static_cast<EViewType>(nView)), nullptr);
    for (const char* pName : {"", "VCAM", "vcam ", "panorama-", "nothing"})
        EXPECT_EQ(CCustomGPUDewarper::FindViewType(pName), VIEW_UNSET) << pName;
}

TEST_P(Getters, AFrameIsRequiredAsLongAsASpeedIsSet)
{
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_FALSE(oDewarper->IsDrawRequired());
    for (int i = 0; i < 3; ++i) {
        oDewarper->AnaloguePTZ(i == 0 ? 1.0f : 0.0f, i == 1 ? 1.0f : 0.0f, i == 2 ? -1.0f : 0.0f);
        for (int k = 0; k < 3; ++k) {
            EXPECT_TRUE(oDewarper->IsDrawRequired());
            ASSERT_TRUE(oDewarper->DrawGLScene(false));
        }
        oDewarper->AnaloguePTZ(0.0f, 0.0f, 0.0f);
        EXPECT_FALSE(oDewarper->IsDrawRequired());
    }
    ASSERT_TRUE(oDewarper->SetTexture(oFrame.Image(), false, nullptr, 0));
    EXPECT_TRUE(oDewarper->IsDrawRequired());
}

INSTANTIATE_ENGINES(Getters);

TEST(PanInForce, StaysWithinTheLimitsOfAViewThatGoesRound)
{
    CTestFrame oFrame(AsymmetricPicture(64, 64), IMAGE_FORMAT_GRAY8);
    CTestDewarper oDewarper(64, 48);
    for (const SNamedView& rEntry : ListViews())
        for (const EMountType eMount : MOUNTS) {
            const SPTZLimits sLimits = oDewarper.GetViewLimits(rEntry.eType, eMount);
            if (!sLimits.sPan.bPeriodic)
                continue;
            SCOPED_TRACE(rEntry.strName + " on " + std::to_string(eMount));
            oDewarper.SetViewType(rEntry.eType);
            oDewarper.SetMountType(eMount);
            for (const float fPan : {1e6f, -1e6f, 200.0f, -200.0f}) {
                ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
                oDewarper.AbsolutePTZ(fPan, 0.0f, 180.0f);
                ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
                EXPECT_GE(oDewarper.pParams->fPan, sLimits.sPan.fLow);
                EXPECT_LE(oDewarper.pParams->fPan, sLimits.sPan.fHigh);
            }
        }
}
