// Memory that cannot be had, at every place where a frame of the processor engine asks for some: that frame
// is not drawn, the target keeps its bytes, nothing that a mask hides is shown, and the next frame is whole.
#include "tests/support/EngineDewarper.h"
#include "tests/support/HeapCounter.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace
{

using VBytes = std::vector<unsigned char>;

const int WIDTH = 96;
const int HEIGHT = 72;
const unsigned char UNTOUCHED = 0xA5;

struct SFaultCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
    int nFormat;
    EImageFormat eTarget;
    bool bPanes = false; ///< the view, and the fisheye beside it
};

const SFaultCase CASES[] = {
    {"camera to pixels", VIEW_VCAM, MOUNT_CEILING, IMAGE_FORMAT_NV12, IMAGE_FORMAT_BGRA32},
    {"quad to NV12", VIEW_VCAM_QUAD, MOUNT_CEILING, IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_NV12},
    {"triple to YUV420P", VIEW_PANORAMA_TRIPLE, MOUNT_FLOOR, IMAGE_FORMAT_NV21, IMAGE_FORMAT_YUV420P},
    {"wall, packed to NV12", VIEW_PANORAMA_FULL, MOUNT_WALL, IMAGE_FORMAT_RGB24, IMAGE_FORMAT_NV12},
    {"flat to RGBA", VIEW_FISHEYE, MOUNT_CEILING, IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_RGBA32},
    {"panes to NV12", VIEW_VCAM, MOUNT_CEILING, IMAGE_FORMAT_NV12, IMAGE_FORMAT_NV12, true},
};

/// The first ones, then every seventh: each takes a dewarper of its own. LUMOR_SOAK_SECONDS in the
/// environment asks for all.
int NextFault(int nFault)
{
    return nFault + (nFault < 40 || std::getenv("LUMOR_SOAK_SECONDS") != nullptr ? 1 : 7);
}

/// All white: what a mask leaves of it is secret.
CTestFrame Frame(int nFormat)
{
    STestImage sWhite(128, 128);
    std::fill(sWhite.vPixels.begin(), sWhite.vPixels.end(), static_cast<unsigned char>(255));
    return {sWhite, nFormat};
}

class AllocationFaults : public testing::TestWithParam<SFaultCase>
{
protected:
    void SetUp() override
    {
        if (!CanFailAllocations())
            GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    }

    /// A fresh dewarper with everything switched on; a mask hides the whole frame.
    static void Prepare(CEngineDewarper& rDewarper)
    {
        // All work on this thread, whose heap fails.
        rDewarper->SetThreadCount(1);
        rDewarper->SetViewType(GetParam().eView);
        rDewarper->SetMountType(GetParam().eMount);
        rDewarper->SetLensType(LENS_DSL419);
        rDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
        if (GetParam().bPanes) {
            SPane sFirst;
            SPane sSecond;
            sFirst.sRect = {0, 0, WIDTH / 4 * 2, HEIGHT};
            sSecond.sRect = {WIDTH / 4 * 2, 0, WIDTH - WIDTH / 4 * 2, HEIGHT};
            sFirst.eView = GetParam().eView;
            sSecond.eView = VIEW_FISHEYE;
            ASSERT_TRUE(rDewarper->SetPanes({sFirst, sSecond}));
        }
        VBytes vImage(20 * 10 * 4, 0x40);
        ASSERT_EQ(rDewarper->SetOutputOverlay(vImage.data(), 20, 10, 0, {}), 1);
        rDewarper->SetMaskPolygons({{{{-9, -9}, {140, -9}, {140, 140}, {-9, 140}}, 0x000000FF}});
        SGPUString sText;
        sText.strText = "7";
        sText.nHeight = 24;
        sText.nColor = 0x404040FF;
        rDewarper->SetStrings({sText});
    }
    static bool Draw(CEngineDewarper& rDewarper, CTestFrame& rFrame, VBytes& rTarget)
    {
        const bool bYUV =
            GetParam().eTarget == IMAGE_FORMAT_NV12 || GetParam().eTarget == IMAGE_FORMAT_YUV420P;
        return rDewarper->SetTexture(rFrame.Image(), false, nullptr, 1) &&
               rDewarper->DrawTo(rTarget.data(), bYUV ? WIDTH : WIDTH * 4, GetParam().eTarget);
    }
    /// Memory for any target, and a byte behind it.
    static VBytes Target() { return VBytes(WIDTH * HEIGHT * 4 + 1, UNTOUCHED); }
};

} // namespace

TEST_P(AllocationFaults, FailOneFrameAndNotTheNextAndShowNothingHidden)
{
    CTestFrame oFrame = Frame(GetParam().nFormat);
    VBytes vGolden = Target();
    {
        CEngineDewarper oDewarper(ENGINE_CPU, WIDTH, HEIGHT);
        Prepare(oDewarper);
        ASSERT_TRUE(Draw(oDewarper, oFrame, vGolden));
        ASSERT_NE(vGolden, Target());
    }
    int nFaults = 0;
    for (bool bReached = true; bReached; nFaults = NextFault(nFaults)) {
        SCOPED_TRACE("allocation " + std::to_string(nFaults));
        ASSERT_LT(nFaults, 3000);
        CEngineDewarper oDewarper(ENGINE_CPU, WIDTH, HEIGHT);
        Prepare(oDewarper);
        VBytes vTarget = Target();
        const CLogCapture oLog;
        FailAllocation(nFaults);
        const bool bDrawn = Draw(oDewarper, oFrame, vTarget);
        bReached = AllocationHasFailed();
        FailAllocation(-1);
        ASSERT_EQ(bDrawn, !bReached);
        ASSERT_EQ(oLog.Contains("out of memory"), bReached) << oLog.Text();
        ASSERT_EQ(vTarget, bDrawn ? vGolden : Target())
            << "a frame that is not drawn leaves the target alone";
        ASSERT_EQ(oDewarper.Picture().vPixels.empty(), !bDrawn || GetParam().nFormat != IMAGE_FORMAT_RGB24);
        vTarget = Target();
        ASSERT_TRUE(Draw(oDewarper, oFrame, vTarget));
        ASSERT_EQ(vTarget, vGolden) << "the frame after it";
    }
    std::printf("  %-22s about %d allocations\n", GetParam().pName, nFaults);
    EXPECT_GT(nFaults, 10);
}

/// The same when the first frames were whole: a change, then a frame without memory.
TEST_P(AllocationFaults, OfAChangeLeaveNoHalfChangedPicture)
{
    CTestFrame oFrame = Frame(GetParam().nFormat);
    const auto Change = [](CEngineDewarper& rDewarper) {
        rDewarper->SetMaskPolygons({{{{-9, -9}, {140, -9}, {140, 140}, {-9, 140}}, 0x303030FF}});
        rDewarper->SetLensType(LENS_DSL418);
        rDewarper->AbsolutePTZ(33.0f, 44.0f, 120.0f);
    };
    VBytes vGolden = Target();
    {
        CEngineDewarper oDewarper(ENGINE_CPU, WIDTH, HEIGHT);
        Prepare(oDewarper);
        ASSERT_TRUE(Draw(oDewarper, oFrame, vGolden));
        Change(oDewarper);
        ASSERT_TRUE(Draw(oDewarper, oFrame, vGolden));
    }
    int nFaults = 0;
    for (bool bReached = true; bReached; nFaults = NextFault(nFaults)) {
        SCOPED_TRACE("allocation " + std::to_string(nFaults));
        ASSERT_LT(nFaults, 3000);
        CEngineDewarper oDewarper(ENGINE_CPU, WIDTH, HEIGHT);
        Prepare(oDewarper);
        VBytes vTarget = Target();
        ASSERT_TRUE(Draw(oDewarper, oFrame, vTarget));
        Change(oDewarper);
        const VBytes vBefore = vTarget;
        const CLogCapture oLog;
        FailAllocation(nFaults);
        const bool bDrawn = Draw(oDewarper, oFrame, vTarget);
        bReached = AllocationHasFailed();
        FailAllocation(-1);
        ASSERT_EQ(bDrawn, !bReached);
        ASSERT_EQ(vTarget, bDrawn ? vGolden : vBefore);
        ASSERT_TRUE(Draw(oDewarper, oFrame, vTarget));
        ASSERT_EQ(vTarget, vGolden) << "the frame after it";
    }
}

INSTANTIATE_TEST_SUITE_P(Pictures, AllocationFaults, testing::ValuesIn(CASES),
                         [](const auto& oInfo) { return CleanName(oInfo.param.pName); });

TEST(AllocationFaultsOfSetters, LeaveTheDewarperUsable)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CTestFrame oFrame(AsymmetricPicture(128, 128), IMAGE_FORMAT_YUV420P);
    CEngineDewarper oDewarper(ENGINE_CPU, 64, 48);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    VBytes vPixels(32 * 32 * 4, 128);
    unsigned char aMask[] = {0, 3, 0, 10, 0, 20, 0, 100, 0, 20, 0, 55, 0, 80, 255, 0, 0, 128};
    unsigned char aText[] = {0, 2, 'A', 'B', 0, 10, 0, 20, 0, 32, 255, 255, 255, 255, 0, 0, 0, 0};
    SQPInfo sInfo;
    sInfo.nWidth = sInfo.nHeight = sInfo.nStride = 1;
    sInfo.pQP = new unsigned char[1]();
    for (int nSkip = 0; nSkip < 8; ++nSkip) {
        CLogCapture oLog;
        const auto Try = [&](auto&& fCall) {
            FailAllocation(nSkip);
            fCall();
            FailAllocation(-1);
        };
        Try([&] { oDewarper->SetInputOverlay(vPixels.data(), 32, 32, 0); });
        Try([&] { oDewarper->SetOutputOverlay(vPixels.data(), 32, 32, 0, {}); });
        Try([&] { oDewarper->SetMaskPolygons(aMask, sizeof(aMask)); });
        Try([&] { oDewarper->SetStrings(aText, sizeof(aText)); });
        Try([&] { oDewarper->SetTexture(oFrame.Image(), false, &sInfo, 0); });
        EXPECT_TRUE(oDewarper.DrawFrame(oFrame)) << nSkip;
    }
}

TEST(AllocationFaultsOfQuestions, LeaveThemUnansweredUntilTheyAreAskedAgain)
{
    if (!CanFailAllocations())
        GTEST_SKIP() << "the sanitizer keeps operator new to itself";
    CTestFrame oFrame(AsymmetricPicture(128, 128), IMAGE_FORMAT_NV12);
    SPointD sGolden;
    int nFaults = 0;
    for (bool bReached = true; bReached; ++nFaults) {
        CEngineDewarper oDewarper(ENGINE_CPU, 64, 48);
        oDewarper->SetViewType(VIEW_PANORAMA_DUAL);
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        const CLogCapture oLog;
        const SPointD sPoint = {30.0, 20.0};
        SPointD s = {1.0, 1.0};
        bool bValid = true;
        FailAllocation(nFaults);
        const int nFound = oDewarper->ViewToFrame(&sPoint, &s, &bValid, 1);
        bReached = AllocationHasFailed();
        FailAllocation(-1);
        ASSERT_EQ(nFound, bReached ? 0 : 1) << nFaults;
        ASSERT_EQ(bValid, !bReached);
        ASSERT_EQ(std::isnan(s.x), bReached);
        ASSERT_EQ(oLog.Contains("out of memory"), bReached) << oLog.Text();
        ASSERT_TRUE(oDewarper->ViewToFrame(30.0, 20.0, s.x, s.y));
        if (nFaults > 0) {
            EXPECT_EQ(s.x, sGolden.x);
            EXPECT_EQ(s.y, sGolden.y);
        }
        sGolden = s;
    }
    std::printf("  about %d allocations\n", nFaults);
    EXPECT_GT(nFaults, 10);
}
