// How pictures are sampled beside masks: nothing under them may shine through.
#include "SamplingScene.h"
#include "tests/support/GLRecorder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{

const int SECRET_FRAME = 300;

class SamplingMasks : public CEngineTest
{
};

/// What hides the secret.
SGPolygon SecretPolygon()
{
    SGPolygon sPolygon;
    sPolygon.vPoints = {{90, 100}, {170, 60}, {230, 130}, {160, 240}};
    sPolygon.nColor = 0x000000FF;
    return sPolygon;
}

/// One colour where the engine's own mask lies, as a flat view shows it, and black elsewhere.
STestImage SecretPicture(EDewarpEngine eEngine, unsigned int nColor)
{
    CTestFrame oBlack(STestImage(SECRET_FRAME, SECRET_FRAME), IMAGE_FORMAT_RGB24);
    CEngineDewarper oDewarper(eEngine, SECRET_FRAME, SECRET_FRAME);
    SGPolygon sPolygon = SecretPolygon();
    sPolygon.nColor = nColor;
    oDewarper->SetMaskPolygons({sPolygon});
    EXPECT_TRUE(oDewarper.Apply(SetupOf(VIEW_FISHEYE, SECRET_FRAME, SECRET_FRAME, SECRET_FRAME), oBlack));
    return oDewarper.Picture();
}

/// The same secret under an image that lies over the frame.
std::vector<unsigned char> SecretOverlay(const STestImage& sSecret)
{
    std::vector<unsigned char> vOverlay(sSecret.vPixels.size());
    for (std::size_t n = 3; n < vOverlay.size(); n += 4)
        vOverlay[n] = sSecret.vPixels[n - 3];
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

/// Pixels whose strongest channel is lighter than in another picture; another channel may be where chroma is
/// left out and luma is not.
int CountLighter(const STestImage& sPicture, const STestImage& sThan)
{
    int nLighter = 0;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x) {
            const unsigned char* const p = sPicture.At(x, y);
            const unsigned char* const q = sThan.At(x, y);
            nLighter += std::max({p[0], p[1], p[2]}) > std::max({q[0], q[1], q[2]}) ? 1 : 0;
        }
    return nLighter;
}

} // namespace

TEST_P(SamplingMasks, NothingUnderAMaskIsCarriedBesideIt)
{
    int nWhite = 0;
    for (const EImageFormat eFormat : {IMAGE_FORMAT_RGB24, IMAGE_FORMAT_NV12}) {
        // White has no chroma, red has.
        const STestImage sSecret =
            SecretPicture(GetParam(), eFormat == IMAGE_FORMAT_NV12 ? 0xFF0000FFU : 0xFFFFFFFFU);
        std::vector<unsigned char> vOverlay = SecretOverlay(sSecret);
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
                for (const ESampling eSampling : SAMPLINGS) {
                    // The nearest chroma of a texel is its neighbours' as well.
                    const STestImage sAtMost =
                        eSampling == SAMPLING_NEAREST ? Draw(oDewarper, oFrame, eSampling, false) : sPlain;
                    for (const bool bMinification : {false, true}) {
                        const STestImage sPicture = Draw(oDewarper, oFrame, eSampling, bMinification);
                        EXPECT_EQ(CountLighter(sPicture, sAtMost), 0)
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

TEST_P(SamplingMasks, MasksFarAwayChangeNothing)
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

INSTANTIATE_ENGINES(SamplingMasks);
