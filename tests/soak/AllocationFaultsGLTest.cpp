// Memory that cannot be had, at every place where a frame or a setter asks for some.

#include "tests/soak/ReliabilityScene.h"

#include <gtest/gtest.h>

namespace
{

const int TARGET_WIDTH = 160;
const int TARGET_HEIGHT = 120;

STestImage PictureWithoutFaults(EViewType eView, CTestFrame& oFrame)
{
    CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
    oDewarper.SetViewType(eView);
    oDewarper.SetLensType(LENS_DSL419);
    SwitchEverythingOn(oDewarper, TARGET_WIDTH, TARGET_HEIGHT);
    oDewarper.DrawFrame(oFrame);
    oDewarper.DrawFrame(oFrame);
    return oDewarper.Picture();
}

class AllocationFault : public testing::TestWithParam<EViewType>
{
};

} // namespace

TEST_P(AllocationFault, FailsOneFrameAndNotTheNext)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CTestFrame oFrame(AsymmetricPicture(256, 256), IMAGE_FORMAT_NV12);
    const STestImage sGolden = PictureWithoutFaults(GetParam(), oFrame);
    int nFaults = 0;
    // All of the first ones, then every eleventh: each takes a dewarper of its own.
    for (bool bReached = true; bReached; nFaults += nFaults < 10 || IsLongRun() ? 1 : 11) {
        ASSERT_LT(nFaults, 1000);
        CTestDewarper oDewarper(TARGET_WIDTH, TARGET_HEIGHT);
        ASSERT_TRUE(oDewarper.Started());
        oDewarper.SetViewType(GetParam());
        oDewarper.SetLensType(LENS_DSL419);
        SwitchEverythingOn(oDewarper, TARGET_WIDTH, TARGET_HEIGHT);
        CLogCapture oLog;
        FailAllocation(nFaults);
        const bool bDrawn = oDewarper.DrawFrame(oFrame);
        bReached = AllocationHasFailed();
        FailAllocation(-1);
        EXPECT_EQ(bDrawn, !bReached) << "allocation " << nFaults;
        EXPECT_EQ(oLog.Contains("out of memory"), bReached) << oLog.Text();
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << "after allocation " << nFaults;
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame));
        ASSERT_EQ(oDewarper.Picture().vPixels, sGolden.vPixels) << "after allocation " << nFaults;
    }
    EXPECT_GT(nFaults, 5);
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_TEST_SUITE_P(Views, AllocationFault, testing::Values(VIEW_VCAM, VIEW_PANORAMA_TRIPLE));

TEST(AllocationFaultOfSetters, SideInformationThatCannotBeHeldLeavesTheFrameThereWas)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CTestFrame oLarge(AsymmetricPicture(256, 256), IMAGE_FORMAT_YUV420P);
    CTestFrame oSmall(AsymmetricPicture(16, 16), IMAGE_FORMAT_YUV420P);
    SQPInfo sInfo;
    sInfo.nWidth = sInfo.nHeight = sInfo.nStride = 1;
    sInfo.pQP = new unsigned char[1]();
    CTestDewarper oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.SetTexture(oLarge.Image(), false, nullptr, 5));
    CLogCapture oLog;
    FailAllocation(0);
    const bool bTaken = oDewarper.SetTexture(oSmall.Image(), false, &sInfo, 6);
    ASSERT_TRUE(AllocationHasFailed());
    FailAllocation(-1);
    EXPECT_FALSE(bTaken);
    EXPECT_EQ(oLog.Text(), "SetTexture: out of memory\n");
    EXPECT_EQ(static_cast<void*>(oDewarper.pInputPlanes[0]), static_cast<void*>(oLarge.Image()->pPlane0));
    EXPECT_TRUE(oDewarper.DrawGLScene(true));
    CTestDewarper oGolden(64, 48);
    ASSERT_TRUE(oGolden.DrawFrame(oLarge));
    EXPECT_EQ(oDewarper.Picture().vPixels, oGolden.Picture().vPixels);
    EXPECT_NO_GL_ERROR();
}

TEST(AllocationFaultOfSetters, LeavesTheDewarperUsable)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CTestFrame oFrame(AsymmetricPicture(128, 128), IMAGE_FORMAT_NV12);
    CTestDewarper oDewarper(64, 48);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    std::vector<unsigned char> vPixels(32 * 32 * 4, 128);
    unsigned char aMask[] = {0, 3, 0, 10, 0, 20, 0, 100, 0, 20, 0, 55, 0, 80, 255, 0, 0, 128};
    unsigned char aText[] = {0, 2, 'A', 'B', 0, 10, 0, 20, 0, 32, 255, 255, 255, 255, 0, 0, 0, 0};
    for (int nSkip = 0; nSkip < 6; ++nSkip) {
        CLogCapture oLog;
        const auto Try = [&](auto&& fCall) {
            FailAllocation(nSkip);
            fCall();
            FailAllocation(-1);
        };
        Try([&] { oDewarper.SetInputOverlay(vPixels.data(), 32, 32, 0); });
        Try([&] { oDewarper.SetOutputOverlay(vPixels.data(), 32, 32, 0); });
        Try([&] { oDewarper.SetMaskPolygons(aMask, sizeof(aMask)); });
        Try([&] { oDewarper.SetStrings(aText, sizeof(aText)); });
        Try([&] { oDewarper.SetTexture(oFrame.Image(), false, nullptr, 0); });
        int nNumber = 0;
        Try([&] { oDewarper.GetImage(&nNumber, &nNumber, &nNumber, &nNumber); });
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << nSkip;
    }
    EXPECT_NO_GL_ERROR();
}
