// What the mapping of points says, beside what both engines really draw: of a frame whose texels tell their
// own place each pixel shows the texel that its middle is mapped to.
#include "tests/support/EngineDewarper.h"
#include "tests/support/GLRecorder.h"
#include "tests/support/TestScene.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <thread>

namespace
{

const EViewType VIEWS[] = {VIEW_FISHEYE,          VIEW_FISHEYE_CIRCULAR, VIEW_VCAM,
                           VIEW_VCAM_QUAD,        VIEW_PANORAMA_FULL,    VIEW_PANORAMA_HALF,
                           VIEW_PANORAMA_QUARTER, VIEW_PANORAMA_DUAL,    VIEW_PANORAMA_TRIPLE};
const EMountType MOUNTS[] = {MOUNT_CEILING, MOUNT_WALL, MOUNT_FLOOR};
const int LENSES[] = {LENS_UNKNOWN, LENS_DSL215, LENS_DSL239, LENS_DSL418, LENS_DSL419};
/// Bars at the sides, above and below, and an odd size.
const int SIZES[][2] = {{220, 100}, {90, 200}, {161, 121}};
const int FRAME_SIZES[][2] = {{640, 640}, {800, 600}};

/// Flat views map many middles to borders of texels, where either texel is right: frame pixels.
const double ON_BORDER = 0.001;

struct SPoints
{
    SPoints(int nWidth, int nHeight)
        : vAsked(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight)), vFound(vAsked.size())
    {
        for (std::size_t n = 0; n < vAsked.size(); ++n) {
            const std::size_t nRow = n / static_cast<std::size_t>(nWidth);
            const std::size_t nCol = n % static_cast<std::size_t>(nWidth);
            vAsked[n] = {static_cast<double>(nCol) + 0.5, static_cast<double>(nRow) + 0.5};
        }
    }

    std::vector<SPointD> vAsked;
    std::vector<SPointD> vFound;
};

/// What was found over many pictures of a view.
struct SAgreement
{
    /// Frame pixels between what pixels show and what their middles are mapped to; a texel's place is known
    /// to half a pixel, displacements count from there.
    std::vector<double> vBeyond;
    long nTexels = 0;
    long nOtherColumn = 0; ///< texels beside the one that holds the mapped point
    long nOtherRow = 0;
    long nSeams = 0; ///< pixels at a border of the mesh that show what lies on its other side

    /// Of the texels that are other ones the share is the mean displacement.
    double Mean() const
    {
        return static_cast<double>(nOtherColumn + nOtherRow) / static_cast<double>(nTexels);
    }
};

/// The point that a place beside the frame shows.
SPointD OnFrame(const SPointD& r, const CTestFrame& rFrame)
{
    SImageProperties& rImage = *const_cast<CTestFrame&>(rFrame).Image();
    return {std::clamp(r.x, 0.5, rImage.nWidth - 0.5), std::clamp(r.y, 0.5, rImage.nHeight - 0.5)};
}

class CMappingOfEngine : public CEngineTest
{
protected:
    void Look(CDewarper& rDewarper, CTestFrame& rFrame, const STestImage& sPicture, SAgreement& rAgreement);
    bool IsAtSeam(CDewarper& rDewarper, const SPointD& rPoint, const SPointD& rShown, CTestFrame& rFrame);
    bool IsAtEdge(CDewarper& rDewarper, const SPointD& rPoint, bool bDrawn);
};

/// Whether a point shows something else than the middle, or what the pixel has, a hair beside.
bool CMappingOfEngine::IsAtSeam(CDewarper& rDewarper, const SPointD& rPoint, const SPointD& rShown,
                                CTestFrame& rFrame)
{
    const double fHair = 0.01;
    for (int i = 0; i < 9; ++i) {
        const int nRow = i / 3;
        SPointD s;
        if (!rDewarper.ViewToFrame(rPoint.x + (i % 3 - 1) * fHair, rPoint.y + (nRow - 1) * fHair, s.x, s.y))
            return true;
        s = OnFrame(s, rFrame);
        if (std::abs(s.x - rShown.x) < 1.0 && std::abs(s.y - rShown.y) < 1.0)
            return true;
    }
    return false;
}

bool CMappingOfEngine::IsAtEdge(CDewarper& rDewarper, const SPointD& rPoint, bool bDrawn)
{
    const double fHair = 0.01;
    for (int i = 0; i < 9; ++i) {
        const int nRow = i / 3;
        SPointD s;
        if (rDewarper.ViewToFrame(rPoint.x + (i % 3 - 1) * fHair, rPoint.y + (nRow - 1) * fHair, s.x, s.y) ==
            bDrawn)
            return true;
    }
    return false;
}

void CMappingOfEngine::Look(CDewarper& rDewarper, CTestFrame& rFrame, const STestImage& sPicture,
                            SAgreement& rAgreement)
{
    SPoints sPoints(sPicture.nWidth, sPicture.nHeight);
    const int nPoints = static_cast<int>(sPoints.vAsked.size());
    rDewarper.ViewToFrame(sPoints.vAsked.data(), sPoints.vFound.data(), nullptr, nPoints);
    int nWronglyDrawn = 0;
    for (int n = 0; n < nPoints; ++n) {
        const SPointD& rAsked = sPoints.vAsked[static_cast<std::size_t>(n)];
        const SPointD& rFound = sPoints.vFound[static_cast<std::size_t>(n)];
        const unsigned char* const p = sPicture.At(n % sPicture.nWidth, n / sPicture.nWidth);
        const bool bDrawn = p[3] != 0;
        if (bDrawn != std::isfinite(rFound.x)) {
            nWronglyDrawn += IsAtEdge(rDewarper, rAsked, bDrawn) ? 0 : 1;
            continue;
        }
        if (!bDrawn)
            continue;
        const SPointD sShown = {(p[0] | (p[2] & 15) << 8) + 0.5, (p[1] | (p[2] >> 4) << 8) + 0.5};
        const SPointD sMapped = OnFrame(rFound, rFrame);
        const double x = std::max(0.0, std::abs(sShown.x - sMapped.x) - 0.5);
        const double y = std::max(0.0, std::abs(sShown.y - sMapped.y) - 0.5);
        if (std::max(x, y) > 0.5 && IsAtSeam(rDewarper, rAsked, sShown, rFrame)) {
            ++rAgreement.nSeams;
            continue;
        }
        ++rAgreement.nTexels;
        rAgreement.nOtherColumn += x > ON_BORDER ? 1 : 0;
        rAgreement.nOtherRow += y > ON_BORDER ? 1 : 0;
        rAgreement.vBeyond.push_back(std::hypot(x, y));
    }
    EXPECT_EQ(nWronglyDrawn, 0);
}

/// Requests of a state, each another one than before.
void Ask(CDewarper& d, EViewType eView, EMountType eMount, int nLens, int nState)
{
    d.SetViewType(eView);
    d.SetMountType(eMount);
    d.SetLensType(static_cast<ELensType>(nLens));
    d.SetRotation(nState % 7 == 3 ? 90 * (nState % 4) : 0);
    d.SetFlip(nState % 5 == 1, nState % 5 == 3);
    d.SetEyeDistance(nState % 3 == 1 ? 0.6f : 0.0f);
    d.SetMountTilt(nState % 4 == 2 ? 14.0f : 0.0f);
    // Text, here beside the picture, sends that of the GL engine through a texture that counts its rows from
    // the bottom.
    SGPUString sText;
    sText.strText = ".";
    sText.nY = 5000;
    d.SetStrings(nState % 6 == 4 ? std::vector<SGPUString>{sText} : std::vector<SGPUString>{});
}

} // namespace

TEST_P(CMappingOfEngine, NamesTheTexelThatAPixelShows)
{
    std::vector<CTestFrame> vFrames;
    for (const auto& rSize : FRAME_SIZES)
        vFrames.emplace_back(TexelFrame(rSize[0], rSize[1]), IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), 64, 64);
    ASSERT_TRUE(oDewarper.Started());
    int nState = 0;
    for (const EViewType eView : VIEWS) {
        SAgreement sAgreement;
        for (const EMountType eMount : MOUNTS) {
            for (const int nLens : LENSES) {
                ++nState;
                SCOPED_TRACE("view " + std::to_string(eView) + ", mount " + std::to_string(eMount) +
                             ", lens " + std::to_string(nLens) + ", state " + std::to_string(nState));
                const int* const pSize = SIZES[nState % 3];
                CTestFrame& rFrame = vFrames[static_cast<std::size_t>(nState % 2)];
                oDewarper->InitTarget(pSize[0], pSize[1]);
                Ask(*oDewarper, eView, eMount, nLens, nState);
                ASSERT_TRUE(oDewarper.DrawFrame(rFrame));
                if (nState % 2 == 0) {
                    oDewarper->RelativePTZ(17.0f * static_cast<float>(nState % 9), 11.0f, -60.0f);
                    ASSERT_TRUE(oDewarper.DrawFrame(rFrame));
                }
                Look(*oDewarper, rFrame, oDewarper.Picture(), sAgreement);
            }
        }
        const double fMost = Percentile(sAgreement.vBeyond, 0.999);
        std::printf(
            "  view %d: mean %.4f px, 99.9%% within %.3f px, most %.3f px, of %ld pixels; %ld at seams\n",
            eView, sAgreement.Mean(), fMost, Percentile(sAgreement.vBeyond, 1.0), sAgreement.nTexels,
            sAgreement.nSeams);
        EXPECT_LT(sAgreement.Mean(), 0.05);
        EXPECT_LT(fMost, 0.15);
        EXPECT_LT(sAgreement.nSeams, sAgreement.nTexels / 500);
        EXPECT_GT(sAgreement.nTexels, 60000);
    }
    EXPECT_NO_GL_ERROR();
}

TEST_P(CMappingOfEngine, KnowsNothingBeforeAFrame)
{
    CEngineDewarper oDewarper(GetParam(), 64, 48);
    ASSERT_TRUE(oDewarper.Started());
    double x = -7.0;
    double y = -8.0;
    EXPECT_FALSE(oDewarper->ViewToFrame(32.0, 24.0, x, y));
    EXPECT_FALSE(oDewarper->FrameToView(32.0, 24.0, x, y));
    EXPECT_EQ(x, -7.0);
    EXPECT_EQ(y, -8.0);
    const SPointD sPoint = {32.0, 24.0};
    SPointD sResult;
    bool bValid = true;
    EXPECT_EQ(oDewarper->ViewToFrame(&sPoint, &sResult, &bValid, 1), 0);
    EXPECT_FALSE(bValid);
    EXPECT_TRUE(std::isnan(sResult.x));
    EXPECT_NO_GL_ERROR();
}

TEST_P(CMappingOfEngine, AnswersForThePictureThatWasDrawnNotForTheNext)
{
    CTestFrame oFrame(TexelFrame(300, 300), IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), 160, 120);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_VCAM);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    SPointD sBefore;
    ASSERT_TRUE(oDewarper->ViewToFrame(80.0, 60.0, sBefore.x, sBefore.y));
    oDewarper->AbsolutePTZ(20.0f, 70.0f, 60.0f);
    oDewarper->RelativePTZ(5.0f, 5.0f, 0.0f);
    oDewarper->SetFlip(true, false);
    oDewarper->SetLensType(LENS_DSL215);
    SPointD s;
    ASSERT_TRUE(oDewarper->ViewToFrame(80.0, 60.0, s.x, s.y));
    EXPECT_EQ(s.x, sBefore.x);
    EXPECT_EQ(s.y, sBefore.y);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    ASSERT_TRUE(oDewarper->ViewToFrame(80.0, 60.0, s.x, s.y));
    EXPECT_GT(std::hypot(s.x - sBefore.x, s.y - sBefore.y), 10.0);
    EXPECT_NO_GL_ERROR();
}

TEST_P(CMappingOfEngine, IsAskedByAnotherThreadWhileFramesAreDrawn)
{
    CTestFrame oFrame(TexelFrame(300, 300), IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), 96, 72);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_VCAM_QUAD);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    std::atomic<bool> bDone{false};
    std::atomic<int> nAnswers{0};
    std::thread oAsking([&] {
        while (!bDone) {
            double x = 0.0;
            double y = 0.0;
            // Several calls: the picture may be another one in between.
            if (oDewarper->ViewToFrame(48.5, 36.5, x, y) && std::isfinite(x) && std::isfinite(y)) {
                oDewarper->FrameToView(x, y, x, y);
                ++nAnswers;
            }
            std::this_thread::yield();
        }
    });
    int nDrawn = 0;
    for (int i = 0; i < 100 || (nAnswers < 20 && i < 10000); ++i) {
        oDewarper->SetViewType(i % 20 < 15 ? VIEW_VCAM_QUAD : VIEW_PANORAMA_DUAL);
        oDewarper->RelativePTZ(1.0f, 0.25f, 0.0f);
        nDrawn += oDewarper.DrawFrame(oFrame) ? 1 : 0;
        // A lock that is taken again at once lets nobody else in.
        std::this_thread::sleep_for(std::chrono::microseconds(300));
    }
    bDone = true;
    oAsking.join();
    EXPECT_GE(nDrawn, 100);
    EXPECT_GE(nAnswers, 20);
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_ENGINES(CMappingOfEngine);
