// Frames that take nothing from the heap: steady ones, and moving ones after their first.
#include "tests/support/EngineDewarper.h"
#include "tests/support/HeapCounter.h"

#include <cstdio>
#include <gtest/gtest.h>

namespace
{

const int WIDTH = 168;
const int HEIGHT = 104;
const int FRAME = 160;

struct SViewCase
{
    const char* pName;
    EViewType eView;
    EMountType eMount;
};

const SViewCase VIEWS[] = {
    {"camera", VIEW_VCAM, MOUNT_CEILING},
    {"camera on a wall", VIEW_VCAM, MOUNT_WALL},
    {"quad", VIEW_VCAM_QUAD, MOUNT_CEILING},
    {"fisheye", VIEW_FISHEYE, MOUNT_CEILING},
    {"circular", VIEW_FISHEYE_CIRCULAR, MOUNT_FLOOR},
    {"full", VIEW_PANORAMA_FULL, MOUNT_CEILING},
    {"half", VIEW_PANORAMA_HALF, MOUNT_FLOOR},
    {"quarter", VIEW_PANORAMA_QUARTER, MOUNT_CEILING},
    {"dual", VIEW_PANORAMA_DUAL, MOUNT_CEILING},
    {"triple", VIEW_PANORAMA_TRIPLE, MOUNT_CEILING},
    {"wall", VIEW_PANORAMA_FULL, MOUNT_WALL},
};

class SteadyFrames : public testing::TestWithParam<SViewCase>
{
protected:
    void SetUp() override
    {
        // All work on this thread, whose heap is counted.
        oDewarper->SetThreadCount(1);
        oDewarper->SetViewType(GetParam().eView);
        oDewarper->SetMountType(GetParam().eMount);
        oDewarper->SetLensType(LENS_DSL419);
        oDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
    }
    void SetLayers()
    {
        std::vector<unsigned char> vImage(40 * 30 * 4, 0x70);
        ASSERT_EQ(oDewarper->SetOutputOverlay(vImage.data(), 40, 30, 0, {}), 1);
        oDewarper->SetMaskPolygons(
            {{{{10, 20}, {90, 30}, {60, 120}}, 0x104080FF}, {{{80, 80}, {150, 90}, {100, 140}}, 0xFF404080}});
        SGPUString sText;
        sText.strText = "12:34:56";
        sText.nHeight = 32;
        oDewarper->SetStrings({sText});
    }
    bool Draw(EImageFormat eTarget)
    {
        return oDewarper->SetTexture(oFrame.Image(), false, nullptr, 1) &&
               oDewarper->DrawTo(vTarget.data(), eTarget == IMAGE_FORMAT_NV12 ? WIDTH : WIDTH * 4, eTarget);
    }
    /// What some frames take from the heap; -1: one was not drawn.
    template <class F>
    int HeapOf(int nFrames, EImageFormat eTarget, F fMove)
    {
        bool bDrawn = true;
        CHeapCounter oHeap;
        for (int i = 0; i < nFrames; ++i) {
            fMove(i);
            bDrawn = Draw(eTarget) && bDrawn;
        }
        return bDrawn ? oHeap.Count() : -1;
    }

    CTestFrame oFrame{AsymmetricPicture(FRAME, FRAME), IMAGE_FORMAT_NV12};
    CEngineDewarper oDewarper{ENGINE_CPU, WIDTH, HEIGHT};
    std::vector<unsigned char> vTarget = std::vector<unsigned char>(WIDTH * HEIGHT * 4);
};

} // namespace

TEST_P(SteadyFrames, TakeNothingFromTheHeap)
{
    for (const EImageFormat eTarget : {IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_NV12})
        for (const bool bLayers : {false, true}) {
            if (bLayers)
                SetLayers();
            for (int i = 0; i < 3; ++i)
                ASSERT_TRUE(Draw(eTarget));
            EXPECT_EQ(HeapOf(5, eTarget, [](int) {}), 0)
                << "target " << eTarget << (bLayers ? " with layers" : "");
        }
    ASSERT_TRUE(oDewarper->DrawGLScene(true));
    CHeapCounter oHeap;
    const bool bDrawn =
        oDewarper->SetTexture(oFrame.Image(), false, nullptr, 1) && oDewarper->DrawGLScene(true);
    EXPECT_EQ(oHeap.Count(), 0) << "into the own buffer";
    EXPECT_TRUE(bDrawn);
}

/// Arrays grow as far as a view has needed them, and stay.
TEST_P(SteadyFrames, ThatMoveTakeNothingFromTheHeapOnceTheWayWasGone)
{
    const auto Move = [&](int i) {
        oDewarper->AbsolutePTZ(static_cast<float>(10 + 7 * i), static_cast<float>(30 + i),
                               static_cast<float>(150 - 3 * i));
    };
    for (const bool bLayers : {false, true}) {
        if (bLayers)
            SetLayers();
        const int nFirst = HeapOf(1, IMAGE_FORMAT_BGRA32, Move);
        const int nRest = HeapOf(30, IMAGE_FORMAT_BGRA32, Move);
        std::printf("  %-18s %s: %d allocations with the first frame, %d with the next 30\n",
                    GetParam().pName, bLayers ? "with layers" : "view alone", nFirst, nRest);
        EXPECT_GE(nFirst, 0);
        EXPECT_GE(nRest, 0);
        EXPECT_LE(nRest, 8) << "arrays that grow with what a view needs most";
        EXPECT_EQ(HeapOf(30, IMAGE_FORMAT_BGRA32, Move), 0) << (bLayers ? "with layers" : "view alone");
    }
}

INSTANTIATE_TEST_SUITE_P(Views, SteadyFrames, testing::ValuesIn(VIEWS),
                         [](const auto& oInfo) { return CleanName(oInfo.param.pName); });
