// Every layout of input frames, every stride, every colour space: the drawn colours against arithmetic in
// double precision.
#include "tests/support/EngineDewarper.h"
#include "tests/support/GLRecorder.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

/// A picture in which every pixel differs from its neighbours in every channel.
static STestImage BusyPicture(int nWidth, int nHeight, bool bOpaque = true)
{
    STestImage sImage(nWidth, nHeight);
    unsigned int nState = 12345;
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            int anBytes[4];
            for (int& nByte : anBytes) {
                nState = nState * 1664525u + 1013904223u;
                nByte = static_cast<int>(nState >> 24);
            }
            sImage.Set(x, y, anBytes[0], anBytes[1], anBytes[2], bOpaque ? 255 : anBytes[3]);
        }
    return sImage;
}

/// Largest difference between the drawn picture and what the frame's bytes show, where one target pixel
/// stands for one texel.
static int MostWrong(const STestImage& sPicture, const CTestFrame& oFrame, std::string& strWhere)
{
    int nMost = 0;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x) {
            const FColour aWanted = oFrame.ColourAt(x, y);
            for (std::size_t i = 0; i < 3; ++i) {
                const int nWrong =
                    std::abs(sPicture.At(x, y)[i] - static_cast<int>(std::lround(aWanted[i] * 255.0)));
                if (nWrong > nMost) {
                    nMost = nWrong;
                    strWhere = std::to_string(x) + ", " + std::to_string(y);
                }
            }
        }
    return nMost;
}

static const char* NameOf(int nFormat)
{
    switch (nFormat) {
    case IMAGE_FORMAT_RGB24:
        return "rgb24";
    case IMAGE_FORMAT_BGR24:
        return "bgr24";
    case IMAGE_FORMAT_NV12:
        return "nv12";
    case IMAGE_FORMAT_YUV420P:
        return "yuv420p";
    case IMAGE_FORMAT_RGBA32:
        return "rgba32";
    case IMAGE_FORMAT_BGRA32:
        return "bgra32";
    case IMAGE_FORMAT_GRAY8:
        return "gray8";
    default:
        return "nv21";
    }
}

struct SFormatCase
{
    int nFormat;
    int nWidth;
    int nHeight;
    int nStride; ///< bytes; 0: tight
};

// Strides of 40, 200, 360 and 1080 have chroma rows that are not divisible as the luma rows are; 97 and 100
// cannot be said in pixels of three bytes.
static const SFormatCase FORMATS[] = {
    {IMAGE_FORMAT_RGB24, 32, 18, 0},     {IMAGE_FORMAT_RGB24, 33, 17, 0},
    {IMAGE_FORMAT_RGB24, 30, 10, 97},    {IMAGE_FORMAT_RGB24, 30, 10, 100},
    {IMAGE_FORMAT_RGB24, 30, 10, 128},   {IMAGE_FORMAT_BGR24, 32, 18, 0},
    {IMAGE_FORMAT_BGR24, 31, 9, 95},     {IMAGE_FORMAT_BGR24, 30, 10, 128},
    {IMAGE_FORMAT_NV12, 32, 18, 0},      {IMAGE_FORMAT_NV12, 38, 10, 40},
    {IMAGE_FORMAT_NV12, 40, 10, 40},     {IMAGE_FORMAT_NV12, 196, 8, 200},
    {IMAGE_FORMAT_NV12, 352, 6, 360},    {IMAGE_FORMAT_NV12, 34, 8, 50},
    {IMAGE_FORMAT_NV21, 40, 10, 40},     {IMAGE_FORMAT_NV21, 34, 8, 50},
    {IMAGE_FORMAT_YUV420P, 32, 18, 0},   {IMAGE_FORMAT_YUV420P, 40, 10, 40},
    {IMAGE_FORMAT_YUV420P, 38, 10, 40},  {IMAGE_FORMAT_YUV420P, 200, 8, 200},
    {IMAGE_FORMAT_YUV420P, 360, 6, 360}, {IMAGE_FORMAT_YUV420P, 1080, 4, 1080},
    {IMAGE_FORMAT_YUV420P, 34, 8, 50},   {IMAGE_FORMAT_YUV420P, 36, 8, 37},
    {IMAGE_FORMAT_RGBA32, 32, 18, 0},    {IMAGE_FORMAT_RGBA32, 31, 9, 132},
    {IMAGE_FORMAT_RGBA32, 30, 10, 125},  {IMAGE_FORMAT_BGRA32, 32, 18, 0},
    {IMAGE_FORMAT_BGRA32, 31, 9, 132},   {IMAGE_FORMAT_BGRA32, 30, 10, 126},
    {IMAGE_FORMAT_GRAY8, 32, 18, 0},     {IMAGE_FORMAT_GRAY8, 33, 17, 37},
    {IMAGE_FORMAT_GRAY8, 33, 17, 40},
};

class Formats : public testing::TestWithParam<SEngineCase<SFormatCase>>
{
};

TEST_P(Formats, EveryTexelShowsItsColour)
{
    const SFormatCase& sCase = GetParam().sCase;
    CEngineDewarper oDewarper(GetParam().eEngine, sCase.nWidth, sCase.nHeight);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_FISHEYE);
    const bool bAlpha = sCase.nFormat == IMAGE_FORMAT_RGBA32 || sCase.nFormat == IMAGE_FORMAT_BGRA32;
    CTestFrame oFrame(BusyPicture(sCase.nWidth, sCase.nHeight, !bAlpha), sCase.nFormat, sCase.nStride);
    // The first frame makes the textures, the second only updates them; a third after another size.
    std::string strWhere;
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
        EXPECT_LE(MostWrong(oDewarper.Picture(), oFrame, strWhere), 1) << "frame " << i << " at " << strWhere;
    }
    CTestFrame oOther(BusyPicture(16, 16), sCase.nFormat);
    ASSERT_TRUE(oDewarper.DrawFrame(oOther));
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    EXPECT_LE(MostWrong(oDewarper.Picture(), oFrame, strWhere), 1) << "after another size, at " << strWhere;
    for (const SGLErrorNote& sError : CGLRecorder::Get().TakeErrors())
        EXPECT_EQ(sError.strCall, "glTexSubImage2D") << "only blue-first uploads may be refused";
}

INSTANTIATE_TEST_SUITE_P(Layouts, Formats, testing::ValuesIn(WithBothEngines(FORMATS)),
                         [](const auto& oInfo) {
                             const SFormatCase& s = oInfo.param.sCase;
                             return EngineName(oInfo.param.eEngine) + "_" + NameOf(s.nFormat) + "_" +
                                    std::to_string(s.nWidth) + "x" + std::to_string(s.nHeight) + "_" +
                                    std::to_string(s.nStride);
                         });

using SmallFrames = CEngineTest;

TEST_P(SmallFrames, OfOddSizesDraw)
{
    CEngineDewarper oDewarper(GetParam(), 16, 16);
    ASSERT_TRUE(oDewarper.Started());
    for (const int nFormat :
         {IMAGE_FORMAT_RGB24, IMAGE_FORMAT_BGR24, IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P,
          IMAGE_FORMAT_RGBA32, IMAGE_FORMAT_BGRA32, IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_NV21})
        for (const int nSize : {2, 3, 5, 33})
            for (const EViewType eView :
                 {VIEW_FISHEYE, VIEW_VCAM, VIEW_PANORAMA_FULL, VIEW_PANORAMA_TRIPLE}) {
                CTestFrame oFrame(BusyPicture(nSize, nSize - nSize / 3), nFormat);
                oDewarper->SetViewType(eView);
                EXPECT_TRUE(oDewarper.DrawFrame(oFrame))
                    << NameOf(nFormat) << " " << nSize << " view " << eView;
            }
    for (const SGLErrorNote& sError : CGLRecorder::Get().TakeErrors())
        EXPECT_EQ(sError.strCall, "glTexSubImage2D") << "only blue-first uploads may be refused";
}

using Colours = CEngineTest;

TEST_P(Colours, EverySpaceAndRangeGivesTheColoursOfItsMatrix)
{
    CEngineDewarper oDewarper(GetParam(), 48, 32);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_FISHEYE);
    const STestImage sPicture = BusyPicture(48, 32);
    for (const int nFormat : {IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_NV12, IMAGE_FORMAT_NV21})
        for (const EYUVSpace eSpace :
             {YUV_SPACE_BT601, YUV_SPACE_BT709, YUV_SPACE_BT2020, YUV_SPACE_BT601_SCALED})
            for (const bool bLimited : {false, true}) {
                SCOPED_TRACE(std::string(NameOf(nFormat)) + " space " + std::to_string(eSpace) +
                             (bLimited ? " limited" : " full"));
                CTestFrame oFrame(sPicture, nFormat, 0, eSpace, bLimited);
                oDewarper->SetYUVparams(eSpace, bLimited ? YUV_RANGE_LIMITED : YUV_RANGE_FULL);
                ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
                std::string strWhere;
                EXPECT_LE(MostWrong(oDewarper.Picture(), oFrame, strWhere), 1) << "at " << strWhere;
                if (eSpace == YUV_SPACE_BT601_SCALED)
                    continue; // a frame cannot ask for this one itself
                oDewarper->SetYUVparams(YUV_SPACE_AUTO, YUV_RANGE_AUTO);
                ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
                EXPECT_LE(MostWrong(oDewarper.Picture(), oFrame, strWhere), 1)
                    << "by itself, at " << strWhere;
            }
}

/// A frame of one colour.
static CTestFrame PlainFrame(int nFormat, int nFirst, int nSecond, int nThird)
{
    STestImage sImage(16, 16);
    for (int i = 0; i < 256; ++i)
        sImage.Set(i % 16, i / 16, nFirst, nSecond, nThird);
    return CTestFrame(sImage, nFormat);
}

TEST_P(Colours, TheGainsMultiplyLumaAndChroma)
{
    CEngineDewarper oDewarper(GetParam(), 16, 16);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_FISHEYE);
    oDewarper->SetGains(1.25f, 0.5f);
    CTestFrame oFrame = PlainFrame(IMAGE_FORMAT_YUV420P, 150, 110, 60);
    const double y = oFrame.Image()->pPlane0[0] / 255.0 * 1.25;
    const double u = (oFrame.Image()->pPlane1[0] / 255.0 - 0.5) * 0.5;
    const double v = (oFrame.Image()->pPlane2[0] / 255.0 - 0.5) * 0.5;
    ASSERT_TRUE(oDewarper->SetTexture(oFrame.Image(), true, nullptr, 0));
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    STestImage sPicture = oDewarper.Picture();
    EXPECT_NEAR(sPicture.At(8, 8)[0], 255.0 * (y + 1.402 * v), 1.0);
    EXPECT_NEAR(sPicture.At(8, 8)[1], 255.0 * (y - 0.344 * u - 0.714 * v), 1.0);
    EXPECT_NEAR(sPicture.At(8, 8)[2], 255.0 * (y + 1.772 * u), 1.0);

    // Red, green and blue go to luma and chroma and back.
    CTestFrame oColour = PlainFrame(IMAGE_FORMAT_RGB24, 120, 90, 40);
    const double r = 120 / 255.0;
    const double g = 90 / 255.0;
    const double b = 40 / 255.0;
    const double fLuma = (0.299 * r + 0.587 * g + 0.114 * b) * 1.25;
    const double fU = (-0.169 * r - 0.331 * g + 0.5 * b) * 0.5;
    const double fV = (0.5 * r - 0.419 * g - 0.081 * b) * 0.5;
    ASSERT_TRUE(oDewarper->SetTexture(oColour.Image(), true, nullptr, 0));
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    sPicture = oDewarper.Picture();
    EXPECT_NEAR(sPicture.At(8, 8)[0], 255.0 * (fLuma + 1.4 * fV), 1.0);
    EXPECT_NEAR(sPicture.At(8, 8)[1], 255.0 * (fLuma - 0.343 * fU - 0.711 * fV), 1.0);
    EXPECT_NEAR(sPicture.At(8, 8)[2], 255.0 * (fLuma + 1.765 * fU), 1.0);
}

TEST_P(Colours, QuantiserValuesTintTheirMacroblocks)
{
    CEngineDewarper oDewarper(GetParam(), 32, 32);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_FISHEYE);
    STestImage sGrey(32, 32);
    for (int i = 0; i < 32 * 32; ++i)
        sGrey.Set(i % 32, i / 32, 128, 128, 128);
    CTestFrame oFrame(sGrey, IMAGE_FORMAT_YUV420P);
    SQPInfo sQP;
    sQP.nWidth = 2;
    sQP.nHeight = 2;
    sQP.nStride = 4;
    sQP.pQP = new unsigned char[8]{10, 40, 9, 9, 10, 20, 9, 9};
    sQP.pMBType = new unsigned char[8]{255, 255, 9, 9, 0, 128, 9, 9};
    sQP.pMotion = new unsigned int[8]();
    ASSERT_TRUE(oDewarper->SetTexture(oFrame.Image(), false, &sQP, 0));
    ASSERT_TRUE(oDewarper->DrawGLScene(false));
    const STestImage sPicture = oDewarper.Picture();
    for (int i = 0; i < 4; ++i) {
        const int nRow = i / 2;
        const int nAt = nRow * 4 + i % 2;
        const double fType = sQP.pMBType[nAt] / 255.0;
        const double fQP = sQP.pQP[nAt] / 255.0 / 0.1;
        const double fGrey = oFrame.Image()->pPlane0[0] / 255.0;
        const double fNeutral = 128 / 255.0 - 0.5;
        const double u = fType * std::clamp(fQP - 0.5, -0.5, 0.5) + (1 - fType) * fNeutral;
        const double v = fType * std::clamp(fQP - 1.5, -0.5, 0.5) + (1 - fType) * fNeutral;
        const double afWanted[3] = {fGrey + 1.402 * v, fGrey - 0.344 * u - 0.714 * v, fGrey + 1.772 * u};
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(sPicture.At(8 + 16 * (i % 2), 8 + 16 * nRow)[k],
                        255.0 * std::clamp(afWanted[k], 0.0, 1.0), 1.5)
                << "block " << i << " channel " << k;
    }
    EXPECT_NO_GL_ERROR();
}

TEST_P(Colours, LinearFilteringMixesNeighboursAndNearestDoesNot)
{
    CEngineDewarper oDewarper(GetParam(), 64, 32);
    ASSERT_TRUE(oDewarper.Started());
    oDewarper->SetViewType(VIEW_FISHEYE);
    STestImage sStripes(16, 8);
    for (int i = 0; i < 16 * 8; ++i)
        sStripes.Set(i % 16, i / 16, i % 2 == 0 ? 200 : 40, 0, 0);
    CTestFrame oFrame(sStripes, IMAGE_FORMAT_RGB24);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sNearest = oDewarper.Picture();
    oDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
    ASSERT_TRUE(oDewarper.DrawFrame(oFrame));
    const STestImage sLinear = oDewarper.Picture();
    for (int x = 4; x < 60; ++x) {
        // Four target pixels a texel; their middles lie 1/8, 3/8, 5/8, 7/8 into it.
        const int nTexel = x / 4;
        const double fPlace = (x + 0.5) / 4.0 - 0.5;
        const int nLeft = static_cast<int>(std::floor(fPlace));
        const double fShare = fPlace - nLeft;
        const auto Level = [](int n) { return n % 2 == 0 ? 200.0 : 40.0; };
        EXPECT_EQ(sNearest.At(x, 16)[0], static_cast<int>(Level(nTexel))) << x;
        EXPECT_NEAR(sLinear.At(x, 16)[0], Level(nLeft) * (1.0 - fShare) + Level(nLeft + 1) * fShare, 2.0)
            << x;
    }
}

INSTANTIATE_ENGINES(SmallFrames);
INSTANTIATE_ENGINES(Colours);
