// The same bytes for any number of threads: views, and whole pictures with layers in the host's memory, whose
// other bytes stay untouched.
#include "dewarp/Dewarper.h"
#include "tests/cpu/PathDrawing.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

namespace
{

const int THREADS[] = {1, 2, 3, 7};

/// A host's image: half transparent noise.
struct SImage
{
    SImage(std::mt19937& rRandom, int nMost)
        : nWidth(1 + static_cast<int>(rRandom() % static_cast<unsigned int>(nMost))),
          nHeight(1 + static_cast<int>(rRandom() % static_cast<unsigned int>(nMost))),
          vPixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4)
    {
        for (unsigned char& rByte : vPixels)
            rByte = static_cast<unsigned char>(rRandom());
    }

    int nWidth;
    int nHeight;
    std::vector<unsigned char> vPixels;
};

/// Layers by lot.
void SetLayers(CDewarper& rDewarper, const SPathCase& rCase, std::mt19937& rRandom)
{
    const int nWidth = rCase.sParams.nImageWidth;
    const int nHeight = rCase.sParams.nImageHeight;
    const auto Below = [&](int n) { return static_cast<int>(rRandom() % static_cast<unsigned int>(n)); };
    if (rRandom() % 2 == 0) {
        SImage sImage(rRandom, 90);
        ASSERT_EQ(rDewarper.SetInputOverlay(sImage.vPixels.data(), sImage.nWidth, sImage.nHeight, 0), 1);
    }
    if (rRandom() % 2 == 0) {
        SImage sImage(rRandom, 90);
        ASSERT_EQ(rDewarper.SetOutputOverlay(sImage.vPixels.data(), sImage.nWidth, sImage.nHeight, 0, {}), 1);
    }
    if (rRandom() % 2 == 0) {
        std::vector<SGPolygon> vMasks;
        for (int i = Below(3); i < 3; ++i)
            vMasks.push_back({{{Below(nWidth), Below(nHeight)},
                               {Below(nWidth), Below(nHeight)},
                               {Below(nWidth), Below(nHeight)},
                               {Below(nWidth), Below(nHeight)}},
                              static_cast<unsigned int>(rRandom()) | (i == 0 ? 255U : 0U)});
        rDewarper.SetMaskPolygons(vMasks);
    }
    if (rRandom() % 2 == 0) {
        SGPUString sText;
        sText.strText = "12:34 gate";
        sText.nX = Below(60) - 20;
        sText.nY = Below(60) - 20;
        sText.nHeight = 8 + Below(60);
        sText.nColor = static_cast<unsigned int>(rRandom());
        rDewarper.SetStrings({sText});
    }
}

void SetView(CDewarper& rDewarper, const SPathCase& rCase)
{
    rDewarper.SetViewType(rCase.sParams.eViewType);
    rDewarper.SetMountType(rCase.sParams.eMountType);
    rDewarper.SetLensType(rCase.sParams.eLensType);
    rDewarper.SetMountTilt(rCase.sParams.fMountTilt);
    rDewarper.SetRotation(rCase.nRotation);
    rDewarper.SetFlip(rCase.sPicture.bFlipHorizontal, rCase.sPicture.bFlipVertical);
    rDewarper.SetYUVparams(rCase.sPicture.sYUV2RGB.eSpace, rCase.sPicture.sYUV2RGB.eRange);
    rDewarper.SetInterpolationType(rCase.bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
}

} // namespace

TEST(Threads, GiveTheSameBytes)
{
    std::mt19937 oRandom(2);
    for (int i = 0; i < 120 && !testing::Test::HasFailure(); ++i) {
        const SPathCase sCase = RandomCase(oRandom);
        SCOPED_TRACE("case " + std::to_string(i) + ": " + sCase.Words());
        CGuardedFrame oFrame(sCase.nFormat, sCase.sParams.nImageWidth, sCase.sParams.nImageHeight, sCase.nPad,
                             sCase.nSeed, false);
        std::vector<unsigned char> vPicture;
        for (const int nThreads : THREADS) {
            CPathDrawing oDrawing(sCase, oFrame, nThreads);
            CPathTarget oTarget(sCase, false);
            oDrawing.Draw(BestKernels(), nThreads, oTarget.Target());
            if (nThreads == 1)
                vPicture = oTarget.Bytes();
            EXPECT_TRUE(vPicture == oTarget.Bytes()) << nThreads << " threads";
        }
    }
}

TEST(Threads, GiveTheSameBytesWithLayers)
{
    std::mt19937 oRandom(3);
    int nPictures = 0;
    for (int i = 0; i < 150 && !testing::Test::HasFailure(); ++i) {
        SPathCase sCase = RandomCase(oRandom);
        // Whatever the frame is: packed ones are converted on the way.
        const EImageFormat TARGETS[] = {IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_NV12,
                                        IMAGE_FORMAT_YUV420P};
        sCase.eTarget = TARGETS[i % 4];
        SCOPED_TRACE("case " + std::to_string(i) + ": " + sCase.Words());
        CGuardedFrame oFrame(sCase.nFormat, sCase.sParams.nImageWidth, sCase.sParams.nImageHeight, sCase.nPad,
                             sCase.nSeed, i % 2 == 0);
        const auto nLayers = static_cast<unsigned int>(oRandom());
        std::vector<unsigned char> vFirst;
        for (const int nThreads : THREADS) {
            // A fresh one each time: grid and layers are built by as many threads as draw.
            const std::unique_ptr<CDewarper> pDewarper =
                CreateDewarper(ENGINE_CPU, sCase.nTargetWidth, sCase.nTargetHeight);
            ASSERT_NE(pDewarper, nullptr);
            pDewarper->SetThreadCount(nThreads);
            SetView(*pDewarper, sCase);
            std::mt19937 oLayers(nLayers);
            SetLayers(*pDewarper, sCase, oLayers);
            CPathTarget oTarget(sCase, i % 2 == 0);
            ASSERT_TRUE(pDewarper->SetTexture(oFrame.Image(), false, nullptr, 0));
            ASSERT_TRUE(pDewarper->DrawTo(oTarget.Target())) << pDewarper->GetLastErrorText();
            EXPECT_TRUE(oTarget.IsUntouchedBeside());
            const std::vector<unsigned char> vBytes = oTarget.Bytes();
            if (nThreads == 1)
                vFirst = vBytes;
            EXPECT_TRUE(vBytes == vFirst) << nThreads << " threads";
            ++nPictures;
        }
    }
    EXPECT_EQ(nPictures, 600);
}
