// Frames whose planes have strides of their own.

#include "tests/support/DewarperSteps.h"
#include "tests/support/EngineDewarper.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>

namespace
{

using CFramePlanes = CEngineTest;
INSTANTIATE_ENGINES(CFramePlanes);

const int SIDE = 64;

/// A frame's planes once more, each with rows of its own length; a plane ends with its last pixel, and what
/// follows a row is noise.
class CLooseFrame
{
public:
    CLooseFrame(const SImageProperties& rImage, const int (&anStrides)[3])
    {
        const unsigned char* const apFrom[] = {rImage.pPlane0, rImage.pPlane1, rImage.pPlane2};
        const bool bPlanar = rImage.nFormat == IMAGE_FORMAT_YUV420P;
        m_sFrame.nWidth = rImage.nWidth;
        m_sFrame.nHeight = rImage.nHeight;
        m_sFrame.eFormat = static_cast<EImageFormat>(rImage.nFormat);
        m_sFrame.eYUVSpace = rImage.eYUVSpace;
        m_sFrame.eYUVRange = rImage.eYUVRange;
        for (int i = 0; i < 3 && apFrom[i] != nullptr; ++i) {
            const int nFrom = i > 0 && bPlanar ? rImage.nStride / 2 : rImage.nStride;
            const int nBytes = i == 0 ? rImage.nWidth * BytesPerPixel(rImage.nFormat)
                                      : rImage.nWidth / 2 * (bPlanar ? 1 : 2);
            const int nRows = i == 0 ? rImage.nHeight : rImage.nHeight / 2;
            const std::size_t nSize = static_cast<std::size_t>((nRows - 1) * anStrides[i] + nBytes);
            m_apPlanes[i] = std::make_unique<unsigned char[]>(nSize);
            std::memset(m_apPlanes[i].get(), 0xA5, nSize);
            for (int y = 0; y < nRows; ++y)
                std::memcpy(&m_apPlanes[i][static_cast<std::size_t>(y * anStrides[i])],
                            apFrom[i] + static_cast<std::ptrdiff_t>(y) * nFrom,
                            static_cast<std::size_t>(nBytes));
            m_sFrame.apPlanes[i] = m_apPlanes[i].get();
            m_sFrame.anStrides[i] = anStrides[i];
        }
    }
    const SFramePlanes& Planes() const { return m_sFrame; }

private:
    SFramePlanes m_sFrame;
    std::unique_ptr<unsigned char[]> m_apPlanes[3];
};

struct SStrides
{
    int nFormat;
    int anStrides[3];
};

const SStrides STRIDES[] = {
    {IMAGE_FORMAT_NV12, {64, 64, 0}},     {IMAGE_FORMAT_NV12, {80, 66, 0}},
    {IMAGE_FORMAT_NV21, {64, 96, 0}},     {IMAGE_FORMAT_YUV420P, {64, 32, 32}},
    {IMAGE_FORMAT_YUV420P, {71, 64, 64}}, {IMAGE_FORMAT_YUV420P, {96, 37, 48}},
    {IMAGE_FORMAT_RGB24, {200, 0, 0}},    {IMAGE_FORMAT_BGRA32, {300, 0, 0}},
    {IMAGE_FORMAT_GRAY8, {65, 0, 0}},
};

} // namespace

TEST_P(CFramePlanes, ShowWhatTightRowsShow)
{
    for (const EInterpolationType eType : {INTERPOLATION_NEAREST, INTERPOLATION_LINEAR}) {
        for (const SStrides& rStrides : STRIDES) {
            CTestFrame oTight(AsymmetricPicture(SIDE, SIDE), rStrides.nFormat);
            const CLooseFrame oLoose(*oTight.Image(), rStrides.anStrides);
            CEngineDewarper d(GetParam(), 80, 60);
            CEngineDewarper e(GetParam(), 80, 60);
            for (CEngineDewarper* p : {&d, &e}) {
                (*p)->SetInterpolationType(eType);
                (*p)->AbsolutePTZ(30.0f, 45.0f, 110.0f);
            }
            ASSERT_TRUE(d.DrawFrame(oTight, 7));
            ASSERT_TRUE(e->SetFrame(oLoose.Planes(), 7));
            ASSERT_TRUE(e->DrawGLScene(true));
            EXPECT_EQ(d.Picture().vPixels, e.Picture().vPixels)
                << "format " << rStrides.nFormat << ", strides " << rStrides.anStrides[0] << ", "
                << rStrides.anStrides[1];
            EXPECT_EQ(e->GetLastDisplayedTextureTimestamp(), 7u);
            // Both ways of handing a frame over may take turns.
            ASSERT_TRUE(e.DrawFrame(oTight, 8));
            EXPECT_EQ(d.Picture().vPixels, e.Picture().vPixels);
        }
    }
}

TEST_P(CFramePlanes, GainIsTheFrames)
{
    CTestFrame oTight(AsymmetricPicture(SIDE, SIDE), IMAGE_FORMAT_NV12);
    const CLooseFrame oLoose(*oTight.Image(), {80, 66, 0});
    CEngineDewarper d(GetParam(), 40, 30);
    ASSERT_TRUE(d->SetFrame(oLoose.Planes(), 1));
    ASSERT_TRUE(d->DrawGLScene(true));
    const STestImage sPlain = d.Picture();
    SFramePlanes sBright = oLoose.Planes();
    sBright.bGain = true;
    ASSERT_TRUE(d->SetFrame(sBright, 2));
    ASSERT_TRUE(d->DrawGLScene(true));
    EXPECT_NE(d.Picture().vPixels, sPlain.vPixels);
    ASSERT_TRUE(d->SetFrame(oLoose.Planes(), 3));
    ASSERT_TRUE(d->DrawGLScene(true));
    EXPECT_EQ(d.Picture().vPixels, sPlain.vPixels);
}

TEST_P(CFramePlanes, ThatCannotBeDrawnAreRefused)
{
    CTestFrame oTight(AsymmetricPicture(SIDE, SIDE), IMAGE_FORMAT_YUV420P);
    const CLooseFrame oLoose(*oTight.Image(), {64, 32, 32});
    CLogCapture oLog;
    CEngineDewarper d(GetParam(), 40, 30);
    const SFramePlanes& rGood = oLoose.Planes();
    std::vector<SFramePlanes> vBad(8, rGood);
    vBad[0].apPlanes[0] = nullptr;
    vBad[1].apPlanes[2] = nullptr;
    vBad[2].anStrides[0] = 63;
    vBad[3].anStrides[1] = 31;
    vBad[4].anStrides[2] = -32;
    vBad[5].anStrides[2] = std::numeric_limits<int>::max();
    vBad[6].eFormat = static_cast<EImageFormat>(99);
    vBad[7].nWidth = 1;
    for (const SFramePlanes& rBad : vBad) {
        oLog.Clear();
        EXPECT_FALSE(d->SetFrame(rBad, 1));
        EXPECT_TRUE(oLog.Contains("SetFrame: ")) << oLog.Text();
    }
    ASSERT_TRUE(d->SetFrame(rGood, 1));
    EXPECT_TRUE(d->DrawGLScene(true));
}
