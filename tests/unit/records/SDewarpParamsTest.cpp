#include "dewarp/records/SDewarpParams.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace
{

struct SChange
{
    const char* pName;
    std::function<void(SDewarpParams&)> change;
};

const SChange COMPARED[] = {
    {"pan", [](SDewarpParams& s) { s.fPan = 1.0f; }},
    {"tilt", [](SDewarpParams& s) { s.fTilt = 1.0f; }},
    {"zoom", [](SDewarpParams& s) { s.fZoom = std::nextafter(180.0f, 0.0f); }},
    {"mount tilt", [](SDewarpParams& s) { s.fMountTilt = -1.0f; }},
    {"mount", [](SDewarpParams& s) { s.eMountType = MOUNT_FLOOR; }},
    {"view", [](SDewarpParams& s) { s.eViewType = VIEW_VCAM; }},
    {"strict tilt limits", [](SDewarpParams& s) { s.bStrictTiltLimits = false; }},
};

const SChange IGNORED[] = {
    {"lens", [](SDewarpParams& s) { s.eLensType = LENS_DSL419; }},
    {"width", [](SDewarpParams& s) { s.nImageWidth = 1920; }},
    {"height", [](SDewarpParams& s) { s.nImageHeight = 1920; }},
    {"stride", [](SDewarpParams& s) { s.nImageStride = 1920; }},
};

} // namespace

TEST(SDewarpParams, DefaultsSayThatNothingWasChosen)
{
    const SDewarpParams sParams;
    EXPECT_EQ(sParams.fPan, 0.0f);
    EXPECT_EQ(sParams.fTilt, 0.0f);
    EXPECT_EQ(sParams.fZoom, 180.0f);
    EXPECT_EQ(sParams.fMountTilt, 0.0f);
    EXPECT_TRUE(sParams.bStrictTiltLimits);
    EXPECT_EQ(sParams.eMountType, 1000);
    EXPECT_EQ(sParams.eViewType, 0);
    EXPECT_EQ(sParams.eLensType, -1);
    EXPECT_EQ(sParams.nImageWidth, 0);
    EXPECT_EQ(sParams.nImageHeight, 0);
    EXPECT_EQ(sParams.nImageStride, 0);
}

TEST(SDewarpParams, AuxiliaryRecordsAreAFlatCeilingView)
{
    const SDewarpParams sParams = SDewarpParams::Auxiliary();
    EXPECT_EQ(sParams.fPan, 0.0f);
    EXPECT_EQ(sParams.fTilt, 0.0f);
    EXPECT_EQ(sParams.fZoom, 180.0f);
    EXPECT_EQ(sParams.fMountTilt, 0.0f);
    EXPECT_TRUE(sParams.bStrictTiltLimits);
    EXPECT_EQ(sParams.eMountType, 90);
    EXPECT_EQ(sParams.eViewType, 3);
    EXPECT_EQ(sParams.eLensType, 0);
    EXPECT_EQ(sParams.nImageWidth, 0);
    EXPECT_EQ(sParams.nImageHeight, 0);
    EXPECT_EQ(sParams.nImageStride, 0);
}

TEST(SDewarpParams, EqualRecordsDoNotDiffer)
{
    EXPECT_FALSE(SDewarpParams() != SDewarpParams());
}

TEST(SDewarpParams, EachViewParameterAloneDiffers)
{
    for (const SChange& sChange : COMPARED) {
        SDewarpParams sChanged;
        sChange.change(sChanged);
        EXPECT_TRUE(sChanged != SDewarpParams()) << sChange.pName;
        EXPECT_TRUE(SDewarpParams() != sChanged) << sChange.pName;
        EXPECT_FALSE(sChanged != SDewarpParams(sChanged)) << sChange.pName;
    }
}

TEST(SDewarpParams, LensSizeAndStrideAreNotCompared)
{
    SDewarpParams sAll;
    for (const SChange& sChange : IGNORED) {
        SDewarpParams sChanged;
        sChange.change(sChanged);
        sChange.change(sAll);
        EXPECT_FALSE(sChanged != SDewarpParams()) << sChange.pName;
    }
    EXPECT_FALSE(sAll != SDewarpParams());
}

TEST(SDewarpParams, NaNDiffersFromItsOwnCopy)
{
    for (float SDewarpParams::*pAngle :
         {&SDewarpParams::fPan, &SDewarpParams::fTilt, &SDewarpParams::fZoom, &SDewarpParams::fMountTilt}) {
        SDewarpParams sParams;
        sParams.*pAngle = std::numeric_limits<float>::quiet_NaN();
        const SDewarpParams sCopy = sParams;
        EXPECT_TRUE(sParams != sCopy);
    }
}

TEST(SDewarpParams, ZerosOfBothSignsAreEqual)
{
    SDewarpParams sParams;
    sParams.fPan = -0.0f;
    EXPECT_FALSE(sParams != SDewarpParams());
}
