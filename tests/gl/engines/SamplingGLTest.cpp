// How pictures are sampled: kernels against their formulae, averages against pictures drawn eight times as
// large, and masks, under which nothing may shine through.
#include "tests/support/EngineDewarper.h"
#include "tests/support/GLRecorder.h"
#include "tests/support/ReferenceSampling.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <random>

namespace
{

const ESampling SAMPLINGS[] = {SAMPLING_NEAREST, SAMPLING_LINEAR, SAMPLING_CUBIC, SAMPLING_LANCZOS};
const ESampling KERNELS[] = {SAMPLING_CUBIC, SAMPLING_LANCZOS};

SReferenceSetup SetupOf(EViewType eView, int nFrame, int nWidth, int nHeight, double fZoom = 180.0)
{
    SReferenceSetup s;
    s.eView = eView;
    s.nLensType = LENS_DSL419;
    s.nImageWidth = s.nImageHeight = nFrame;
    s.nTargetWidth = nWidth;
    s.nTargetHeight = nHeight;
    s.fZoom = fZoom;
    return s;
}

STestImage NoisePicture(int nSize, int nSeed)
{
    std::mt19937 oRandom(static_cast<unsigned int>(nSeed));
    STestImage sPicture(nSize, nSize);
    for (int y = 0; y < nSize; ++y)
        for (int x = 0; x < nSize; ++x)
            sPicture.Set(x, y, static_cast<int>(oRandom() % 256), static_cast<int>(oRandom() % 256),
                         static_cast<int>(oRandom() % 256));
    return sPicture;
}

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

/// A picture of a frame with a sampling.
STestImage Draw(CEngineDewarper& rDewarper, CTestFrame& rFrame, ESampling eSampling, bool bMinification)
{
    EXPECT_TRUE(rDewarper->SetSampling(eSampling));
    rDewarper->SetMinification(bMinification);
    EXPECT_TRUE(rDewarper.DrawFrame(rFrame));
    return rDewarper.Picture();
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

const int SECRET_FRAME = 300;

/// White where a mask lies, and black elsewhere; the mask as a polygon.
SGPolygon SecretPolygon()
{
    SGPolygon sPolygon;
    sPolygon.vPoints = {{90, 100}, {170, 60}, {230, 130}, {160, 240}};
    sPolygon.nColor = 0x000000FF;
    return sPolygon;
}

/// Texels that the engine's own mask covers are white: those where a white mask shows in a flat view.
STestImage SecretPicture(EDewarpEngine eEngine)
{
    CTestFrame oBlack(STestImage(SECRET_FRAME, SECRET_FRAME), IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(eEngine, SECRET_FRAME, SECRET_FRAME);
    SGPolygon sPolygon = SecretPolygon();
    sPolygon.nColor = 0xFFFFFFFF;
    oDewarper->SetMaskPolygons({sPolygon});
    EXPECT_TRUE(oDewarper.Apply(SetupOf(VIEW_FISHEYE, SECRET_FRAME, SECRET_FRAME, SECRET_FRAME), oBlack));
    return oDewarper.Picture();
}

/// The same secret under an image that lies over the frame.
std::vector<unsigned char> SecretOverlay(const STestImage& sSecret)
{
    std::vector<unsigned char> vOverlay(sSecret.vPixels.size());
    for (std::size_t n = 3; n < vOverlay.size(); n += 4)
        vOverlay[n] = sSecret.vPixels[n - 1];
    return vOverlay;
}

struct SSecretView
{
    EViewType eView;
    int nWidth;
    int nHeight;
    double fZoom;
};

const SSecretView SECRET_VIEWS[] = {
    {VIEW_FISHEYE, 61, 61, 180.0},        {VIEW_FISHEYE, 200, 160, 180.0}, {VIEW_FISHEYE, 240, 200, 60.0},
    {VIEW_PANORAMA_FULL, 240, 40, 180.0}, {VIEW_VCAM, 160, 120, 90.0},
};

/// Pixels that are lighter than in another picture.
int CountLighter(const STestImage& sPicture, const STestImage& sThan)
{
    int nLighter = 0;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x) {
            const unsigned char* const p = sPicture.At(x, y);
            const unsigned char* const q = sThan.At(x, y);
            nLighter += p[0] > q[0] || p[1] > q[1] || p[2] > q[2] ? 1 : 0;
        }
    return nLighter;
}

} // namespace

TEST_P(Sampling, NothingUnderAMaskIsCarriedBesideIt)
{
    const STestImage sSecret = SecretPicture(GetParam());
    std::vector<unsigned char> vOverlay = SecretOverlay(sSecret);
    int nWhite = 0;
    for (const EImageFormat eFormat : {IMAGE_FORMAT_RGB24, IMAGE_FORMAT_NV12}) {
        CTestFrame oFrame(sSecret, eFormat);
        for (const SSecretView& v : SECRET_VIEWS) {
            CEngineDewarper oDewarper(GetParam(), v.nWidth, v.nHeight);
            ASSERT_TRUE(
                oDewarper.Apply(SetupOf(v.eView, SECRET_FRAME, v.nWidth, v.nHeight, v.fZoom), oFrame));
            const STestImage sOpen = Draw(oDewarper, oFrame, SAMPLING_LINEAR, false);
            for (const bool bPolygon : {true, false}) {
                if (bPolygon) {
                    oDewarper->SetMaskPolygons({SecretPolygon()});
                } else {
                    oDewarper->SetMaskPolygons(std::vector<SGPolygon>());
                    oDewarper->SetInputOverlay(vOverlay.data(), SECRET_FRAME, SECRET_FRAME, 0);
                }
                const STestImage sPlain = Draw(oDewarper, oFrame, SAMPLING_LINEAR, false);
                nWhite += CountLighter(sOpen, sPlain);
                for (const ESampling eSampling : {SAMPLING_LINEAR, SAMPLING_CUBIC, SAMPLING_LANCZOS}) {
                    for (const bool bMinification : {false, true}) {
                        const STestImage sPicture = Draw(oDewarper, oFrame, eSampling, bMinification);
                        EXPECT_EQ(CountLighter(sPicture, sPlain), 0)
                            << "view " << v.eView << ", sampling " << eSampling << ", averaged "
                            << bMinification << ", polygon " << bPolygon << ", format " << eFormat;
                    }
                }
            }
        }
    }
    EXPECT_GT(nWhite, 10000) << "the secret must be in the pictures without a mask";
    EXPECT_NO_GL_ERROR();
}

TEST_P(Sampling, MasksFarAwayChangeNothing)
{
    const SReferenceSetup s = SetupOf(VIEW_FISHEYE, 300, 120, 120, 180.0);
    CTestFrame oFrame(NoisePicture(300, 6), IMAGE_FORMAT_NV12);
    CEngineDewarper oDewarper(GetParam(), 120, 120);
    ASSERT_TRUE(oDewarper.Apply(s, oFrame));
    for (const ESampling eSampling : SAMPLINGS) {
        for (const bool bMinification : {false, true}) {
            oDewarper->SetMaskPolygons(std::vector<SGPolygon>());
            const STestImage sOpen = Draw(oDewarper, oFrame, eSampling, bMinification);
            SGPolygon sPolygon;
            sPolygon.vPoints = {{0, 0}, {40, 0}, {40, 40}, {0, 40}};
            sPolygon.nColor = 0x102030FF;
            oDewarper->SetMaskPolygons({sPolygon});
            const STestImage sMasked = Draw(oDewarper, oFrame, eSampling, bMinification);
            int nOther = 0;
            for (int y = 0; y < 120; ++y)
                for (int x = 0; x < 120; ++x)
                    nOther += (x > 24 || y > 24) && sOpen.Word(x, y) != sMasked.Word(x, y) ? 1 : 0;
            EXPECT_EQ(nOther, 0) << "sampling " << eSampling << ", averaged " << bMinification;
            EXPECT_EQ(sMasked.Word(8, 8), 0x102030FFu);
        }
    }
    EXPECT_NO_GL_ERROR();
}

TEST(SamplingOfBothEngines, AgreesOnSmoothScenes)
{
    const SSecretView asViews[] = {
        {VIEW_VCAM, 240, 180, 100.0}, {VIEW_PANORAMA_FULL, 420, 60, 180.0}, {VIEW_FISHEYE, 97, 97, 180.0}};
    for (const EImageFormat eFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_RGB24}) {
        CTestFrame oFrame(SmoothPicture(600), eFormat);
        for (const SSecretView& v : asViews) {
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
