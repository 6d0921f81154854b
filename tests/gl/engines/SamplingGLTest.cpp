// How pictures are sampled: kernels against their formulae, averages against pictures drawn eight times as
// large.
#include "SamplingScene.h"
#include "tests/support/GLRecorder.h"
#include "tests/support/ReferenceSampling.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>

namespace
{

/// Waves of forty texels and more.
STestImage SmoothPicture(int nSize)
{
    STestImage sPicture(nSize, nSize);
    for (int y = 0; y < nSize; ++y)
        for (int x = 0; x < nSize; ++x)
            sPicture.Set(x, y, static_cast<int>(127.5 + 100.0 * std::sin(x * 0.15) * std::cos(y * 0.1)),
                         static_cast<int>(127.5 + 100.0 * std::sin(y * 0.15 + x * 0.05)),
                         static_cast<int>(127.5 + 100.0 * std::cos(x * 0.1 - y * 0.06)));
    return sPicture;
}

/// Thin lines on grey: what sparkles in a small view.
STestImage LinesPicture(int nSize)
{
    STestImage sPicture(nSize, nSize);
    for (int y = 0; y < nSize; ++y)
        for (int x = 0; x < nSize; ++x) {
            const bool bLine = (x * 3 + y) % 13 < 3 || (x - y + 4 * nSize) % 17 < 2;
            sPicture.Set(x, y, bLine ? 250 : 30, bLine ? 240 : 60, (x / 2 + y / 3) % 2 != 0 ? 200 : 20);
        }
    return sPicture;
}

/// Mean and largest difference from the kernel's formula at the exact view's places, levels.
struct SOff
{
    double fMean = 0.0;
    double fMax = 0.0;
};

SOff CompareWithKernel(const CReferenceView& rView, const STestImage& sInput, const STestImage& sPicture,
                       ESampling eSampling)
{
    SOff sOff;
    int nPixels = 0;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x) {
            const SReferencePixel sPixel = rView.At(x + 0.5, y + 0.5);
            if (!sPixel.bDrawn || sPicture.At(x, y)[3] == 0)
                continue;
            const FColour aWanted =
                SampleReference(sInput, sPixel.fU * sInput.nWidth, sPixel.fV * sInput.nHeight, eSampling);
            for (std::size_t k = 0; k < 3; ++k) {
                const double fOff = std::abs(aWanted[k] * 255.0 - sPicture.At(x, y)[k]);
                sOff.fMean += fOff / 3.0;
                sOff.fMax = std::max(sOff.fMax, fOff);
            }
            ++nPixels;
        }
    EXPECT_GT(nPixels, sPicture.nWidth * sPicture.nHeight / 4);
    sOff.fMean /= std::max(1, nPixels);
    return sOff;
}

class Sampling : public CEngineTest
{
};

} // namespace

TEST_P(Sampling, SettingsComeBackAndUnknownOnesAreRefused)
{
    CEngineDewarper oDewarper(GetParam(), 32, 32);
    ASSERT_TRUE(oDewarper.Started());
    EXPECT_EQ(oDewarper->GetSampling(), SAMPLING_BY_TYPE);
    EXPECT_FALSE(oDewarper->GetMinification());
    for (const ESampling eSampling : SAMPLINGS) {
        EXPECT_TRUE(oDewarper->SetSampling(eSampling));
        EXPECT_EQ(oDewarper->GetSampling(), eSampling);
    }
    const CLogCapture oLog;
    for (const int n : {-2, 4, 1000}) {
        EXPECT_FALSE(oDewarper->SetSampling(static_cast<ESampling>(n)));
        EXPECT_EQ(oDewarper->GetSampling(), SAMPLING_LANCZOS);
    }
    EXPECT_EQ(oLog.Lines().size(), 3u) << oLog.Text();
    oDewarper->SetMinification(true);
    EXPECT_TRUE(oDewarper->GetMinification());
    EXPECT_TRUE(oDewarper->SetSampling(SAMPLING_BY_TYPE));
    EXPECT_EQ(oDewarper->GetSampling(), SAMPLING_BY_TYPE);
    EXPECT_TRUE(oDewarper->IsDrawRequired());
}

TEST_P(Sampling, NearestAndLinearAreThoseOfTheTypes)
{
    const SReferenceSetup s = SetupOf(VIEW_VCAM, 200, 120, 90, 120.0);
    CTestFrame oFrame(NoisePicture(200, 1), IMAGE_FORMAT_NV12);
    CEngineDewarper oDewarper(GetParam(), s.nTargetWidth, s.nTargetHeight);
    ASSERT_TRUE(oDewarper.Started());
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    for (const bool bLinear : {false, true}) {
        oDewarper->SetInterpolationType(bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
        const STestImage sByType = Draw(oDewarper, oFrame, SAMPLING_BY_TYPE, false);
        oDewarper->SetInterpolationType(bLinear ? INTERPOLATION_NEAREST : INTERPOLATION_LINEAR);
        const STestImage sNamed =
            Draw(oDewarper, oFrame, bLinear ? SAMPLING_LINEAR : SAMPLING_NEAREST, false);
        EXPECT_EQ(sByType.vPixels, sNamed.vPixels);
    }
    EXPECT_NO_GL_ERROR();
}

TEST_P(Sampling, KernelsGoThroughTheMiddlesOfTexels)
{
    const SReferenceSetup s = SetupOf(VIEW_FISHEYE, 96, 96, 96);
    const STestImage sInput = NoisePicture(96, 2);
    CTestFrame oFrame(sInput, IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), 96, 96);
    ASSERT_TRUE(oDewarper.Started());
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    for (const ESampling eSampling : KERNELS) {
        for (const bool bMinification : {false, true})
            EXPECT_EQ(CompareImages(sInput, Draw(oDewarper, oFrame, eSampling, bMinification)).nMax, 0);
    }
    EXPECT_NO_GL_ERROR();
}

TEST_P(Sampling, KernelsKeepRamps)
{
    STestImage sInput(96, 96);
    for (int y = 0; y < 96; ++y)
        for (int x = 0; x < 96; ++x)
            sInput.Set(x, y, 20 + 2 * x, 220 - 2 * y, 30 + x + y);
    // Six times as large, so that every part of a texel comes up, and no texel of the edge.
    const SReferenceSetup s = SetupOf(VIEW_FISHEYE, 96, 240, 240, 60.0);
    CTestFrame oFrame(sInput, IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), 240, 240);
    ASSERT_TRUE(oDewarper.Started());
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    for (const ESampling eSampling : KERNELS) {
        const STestImage sPicture = Draw(oDewarper, oFrame, eSampling, false);
        const SOff sOff = CompareWithKernel(CReferenceView(s), sInput, sPicture, SAMPLING_LINEAR);
        std::printf("  sampling %d off a ramp: mean %.3f, max %.3f\n", eSampling, sOff.fMean, sOff.fMax);
        // A level is rounded to the nearest.
        EXPECT_LE(sOff.fMax, eSampling == SAMPLING_CUBIC ? 0.55 : 1.0);
    }
    EXPECT_NO_GL_ERROR();
}

TEST_P(Sampling, PicturesAreWhatTheFormulaeSay)
{
    const SReferenceSetup asSetups[] = {
        SetupOf(VIEW_FISHEYE, 160, 240, 240, 70.0),
        SetupOf(VIEW_FISHEYE, 160, 200, 160, 180.0),
    };
    const STestImage sNoise = NoisePicture(160, 3);
    CTestFrame oFrame(sNoise, IMAGE_FORMAT_RGB24);
    for (const SReferenceSetup& s : asSetups) {
        CEngineDewarper oDewarper(GetParam(), s.nTargetWidth, s.nTargetHeight);
        ASSERT_TRUE(oDewarper.Started());
        ASSERT_TRUE(oDewarper.Apply(s, oFrame));
        for (const ESampling eSampling : {SAMPLING_LINEAR, SAMPLING_CUBIC, SAMPLING_LANCZOS}) {
            const STestImage sPicture = Draw(oDewarper, oFrame, eSampling, false);
            const SOff sOff = CompareWithKernel(CReferenceView(s), sNoise, sPicture, eSampling);
            std::printf("  sampling %d of noise: mean %.3f, max %.2f\n", eSampling, sOff.fMean, sOff.fMax);
            EXPECT_LE(sOff.fMean, 0.6);
        }
    }
    // A view with a mesh of its own stands up to a sixth of a texel aside.
    const SReferenceSetup s = SetupOf(VIEW_PANORAMA_FULL, 300, 350, 50);
    const STestImage sSmooth = SmoothPicture(300);
    CTestFrame oSmooth(sSmooth, IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(GetParam(), s.nTargetWidth, s.nTargetHeight);
    ASSERT_TRUE(oDewarper.Apply(s, oSmooth));
    for (const ESampling eSampling : KERNELS) {
        const STestImage sPicture = Draw(oDewarper, oSmooth, eSampling, false);
        const SOff sOff = CompareWithKernel(CReferenceView(s), sSmooth, sPicture, eSampling);
        std::printf("  sampling %d of a panorama: mean %.3f, max %.2f\n", eSampling, sOff.fMean, sOff.fMax);
        EXPECT_LE(sOff.fMean, 0.6);
    }
    EXPECT_NO_GL_ERROR();
}

namespace
{

/// A view that shrinks, drawn plainly, averaged and in large.
struct SShrinkCase
{
    const char* pName;
    EViewType eView;
    int nWidth;
    int nHeight;
    bool bNoise;
    EImageFormat eFormat;
};

const SShrinkCase SHRINKS[] = {
    {"flat, noise, a fifth", VIEW_FISHEYE, 160, 160, true, IMAGE_FORMAT_RGB24},
    {"flat, lines, a fifth", VIEW_FISHEYE, 160, 160, false, IMAGE_FORMAT_RGB24},
    // The strip's lower rows run around a small circle: they shrink along the circle less than across.
    {"panorama, noise", VIEW_PANORAMA_FULL, 420, 36, true, IMAGE_FORMAT_NV12},
    {"panorama, lines", VIEW_PANORAMA_FULL, 420, 36, false, IMAGE_FORMAT_RGB24},
};

class Shrinking : public testing::TestWithParam<SEngineCase<SShrinkCase>>
{
};

} // namespace

TEST_P(Shrinking, AveragedPicturesAreTenDecibelsBetter)
{
    const SShrinkCase& c = GetParam().sCase;
    const int nFrame = 800;
    const int nLarger = 8;
    CTestFrame oFrame(c.bNoise ? NoisePicture(nFrame, 4) : LinesPicture(nFrame), c.eFormat);
    CEngineDewarper oLarge(GetParam().eEngine, c.nWidth * nLarger, c.nHeight * nLarger);
    ASSERT_TRUE(oLarge.Apply(SetupOf(c.eView, nFrame, c.nWidth * nLarger, c.nHeight * nLarger), oFrame));
    const STestImage sWanted = BoxAverage(Draw(oLarge, oFrame, SAMPLING_LINEAR, false), nLarger);
    CEngineDewarper oDewarper(GetParam().eEngine, c.nWidth, c.nHeight);
    ASSERT_TRUE(oDewarper.Apply(SetupOf(c.eView, nFrame, c.nWidth, c.nHeight), oFrame));
    const double fPlain = CompareImages(sWanted, Draw(oDewarper, oFrame, SAMPLING_LINEAR, false)).fPSNR;
    for (const ESampling eSampling : SAMPLINGS) {
        const STestImage sAveraged = Draw(oDewarper, oFrame, eSampling, true);
        const double fAveraged = CompareImages(sWanted, sAveraged).fPSNR;
        std::printf("  %s: %.1f dB, averaged (sampling %d) %.1f dB: gain %.1f dB\n", c.pName, fPlain,
                    eSampling, fAveraged, fAveraged - fPlain);
        EXPECT_GE(fAveraged - fPlain, 10.0);
        if (HasFailure())
            WritePicture(std::string("shrink ") + c.pName, SideBySide(sWanted, sAveraged));
    }
    EXPECT_NO_GL_ERROR();
}

namespace
{

struct SView
{
    EViewType eView;
    int nWidth;
    int nHeight;
    double fZoom;
};

} // namespace

TEST(SamplingOfBothEngines, AgreesOnSmoothScenes)
{
    const SView asViews[] = {
        {VIEW_VCAM, 240, 180, 100.0}, {VIEW_PANORAMA_FULL, 420, 60, 180.0}, {VIEW_FISHEYE, 97, 97, 180.0}};
    for (const EImageFormat eFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_RGB24}) {
        CTestFrame oFrame(SmoothPicture(600), eFormat);
        for (const SView& v : asViews) {
            CEngineDewarper oGL(ENGINE_GL, v.nWidth, v.nHeight);
            CEngineDewarper oCPU(ENGINE_CPU, v.nWidth, v.nHeight);
            const SReferenceSetup s = SetupOf(v.eView, 600, v.nWidth, v.nHeight, v.fZoom);
            ASSERT_TRUE(oGL.Apply(s, oFrame) && oCPU.Apply(s, oFrame));
            for (const ESampling eSampling : SAMPLINGS) {
                for (const bool bMinification : {false, true}) {
                    const STestImage a = Draw(oGL, oFrame, eSampling, bMinification);
                    const STestImage b = Draw(oCPU, oFrame, eSampling, bMinification);
                    std::vector<double> vOff;
                    for (std::size_t n = 0; n < a.vPixels.size(); ++n)
                        if (a.vPixels[n | 3] == b.vPixels[n | 3])
                            vOff.push_back(std::abs(a.vPixels[n] - b.vPixels[n]));
                    const double fMost = Percentile(vOff, 0.99);
                    std::printf("  view %d, sampling %d, averaged %d: mean %.3f, 99%% %.0f\n", v.eView,
                                eSampling, bMinification, Mean(vOff), fMost);
                    EXPECT_LE(Mean(vOff), 0.5);
                    EXPECT_LE(fMost, 2.0);
                }
            }
        }
    }
    EXPECT_NO_GL_ERROR();
}

INSTANTIATE_ENGINES(Sampling);
INSTANTIATE_TEST_SUITE_P(Cases, Shrinking, testing::ValuesIn(WithBothEngines(SHRINKS)), SEngineCaseName());
