#include "Notes.h"

#include <gtest/gtest.h>

namespace
{

/// The names of the options that are remarked upon, in order.
std::string ListNames(const SToolOptions& sOptions, int nFormat = IMAGE_FORMAT_YUV420P)
{
    std::string strNames;
    for (const std::string& strNote : ListIgnoredOptions(sOptions, nFormat))
        strNames += strNote.substr(0, strNote.find(' ')) + " ";
    return strNames;
}

SToolOptions MakeOptions(EViewType eView, EMountType eMount)
{
    SToolOptions sOptions;
    sOptions.eView = eView;
    sOptions.eMount = eMount;
    sOptions.oPan = 10.0f;
    sOptions.oTilt = 10.0f;
    sOptions.oZoom = 90.0f;
    return sOptions;
}

} // namespace

TEST(Notes, PlainOptionsNeedNone)
{
    EXPECT_EQ(ListNames(SToolOptions()), "");
}

TEST(Notes, PanoramasNeitherTiltNorZoom)
{
    for (EViewType eView : {VIEW_PANORAMA_FULL, VIEW_PANORAMA_HALF, VIEW_PANORAMA_QUARTER}) {
        EXPECT_EQ(ListNames(MakeOptions(eView, MOUNT_CEILING)), "--tilt --zoom ");
        EXPECT_EQ(ListNames(MakeOptions(eView, MOUNT_FLOOR)), "--tilt --zoom ");
        EXPECT_EQ(ListNames(MakeOptions(eView, MOUNT_WALL)), "--zoom ");
    }
    EXPECT_EQ(ListNames(MakeOptions(VIEW_PANORAMA_DUAL, MOUNT_CEILING)), "--zoom ");
    EXPECT_EQ(ListNames(MakeOptions(VIEW_PANORAMA_TRIPLE, MOUNT_FLOOR)), "--zoom ");
}

TEST(Notes, CamerasAndFlatViewsMoveInEveryWay)
{
    for (EViewType eView : {VIEW_VCAM, VIEW_VCAM_QUAD, VIEW_FISHEYE, VIEW_FISHEYE_CIRCULAR})
        EXPECT_EQ(ListNames(MakeOptions(eView, MOUNT_CEILING)), "");
}

TEST(Notes, MountTiltCountsInWallPanoramasOnly)
{
    SToolOptions sOptions;
    sOptions.oMountTilt = 20.0f;
    sOptions.bStrictTilt = false;
    EXPECT_EQ(ListNames(sOptions), "--mount-tilt --no-strict-tilt ");
    sOptions.eView = VIEW_PANORAMA_FULL;
    EXPECT_EQ(ListNames(sOptions), "--mount-tilt --no-strict-tilt ");
    sOptions.eMount = MOUNT_WALL;
    EXPECT_EQ(ListNames(sOptions), "");
    sOptions.oMountTilt = 0.0f;
    EXPECT_EQ(ListNames(sOptions), "--no-strict-tilt ");
}

TEST(Notes, FlatViewsTurnAndCamerasHaveAProjection)
{
    SToolOptions sOptions;
    sOptions.oRotation = 90;
    sOptions.oEyeDistance = 0.5f;
    EXPECT_EQ(ListNames(sOptions), "--rotation ");
    sOptions.eView = VIEW_FISHEYE;
    EXPECT_EQ(ListNames(sOptions), "--projection ");
    sOptions.oRotation = 0;
    sOptions.oEyeDistance.reset();
    sOptions.eView = VIEW_VCAM;
    EXPECT_EQ(ListNames(sOptions), "");
}

TEST(Notes, ColorOptionsNeedAnInputTheyCanWorkOn)
{
    SToolOptions sOptions;
    sOptions.oGains = SGains();
    sOptions.oYUVSpace = YUV_SPACE_BT709;
    sOptions.oYUVRange = YUV_RANGE_FULL;
    EXPECT_EQ(ListNames(sOptions, IMAGE_FORMAT_NV12), "");
    EXPECT_EQ(ListNames(sOptions, IMAGE_FORMAT_RGB24), "--yuv-space --yuv-range ");
    EXPECT_EQ(ListNames(sOptions, IMAGE_FORMAT_GRAY8), "--gain --yuv-space --yuv-range ");
}

TEST(Notes, MasksTakeTheInputOverlaysPlace)
{
    SToolOptions sOptions;
    sOptions.strInputOverlay = "a.png";
    EXPECT_EQ(ListNames(sOptions), "");
    sOptions.strMaskFile = "m";
    EXPECT_EQ(ListNames(sOptions), "--input-overlay ");
}

TEST(Notes, CharactersWithoutAGlyphAreTold)
{
    SGPUString sString;
    sString.strText = " plain ~\x7F";
    EXPECT_TRUE(ListUndrawableTexts({sString}).empty());
    sString.strText = "22 \xC2\xB0"
                      "C";
    EXPECT_EQ(ListUndrawableTexts({sString}).size(), 1u);
    sString.strText = "tab\t";
    EXPECT_EQ(ListUndrawableTexts({sString}).size(), 1u);
}

TEST(Notes, ValuesBeyondTheViewsLimitsAreTold)
{
    SToolOptions sOptions = MakeOptions(VIEW_VCAM, MOUNT_CEILING);
    sOptions.oPan = -30.0f;
    sOptions.oTilt = 120.0f;
    const std::vector<std::string> vNotes = ListLimitedPTZ(sOptions, 330.0f, 90.0f, 90.0f);
    ASSERT_EQ(vNotes.size(), 1u);
    EXPECT_EQ(vNotes[0], "--tilt 120 is beyond the view's limits; 90 was taken");
    EXPECT_TRUE(ListLimitedPTZ(SToolOptions(), 90.0f, 0.0f, 180.0f).empty());
}
