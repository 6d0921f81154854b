#include "dewarp/cpu/RunLayer.h"

#include "dewarp/records/YUVColour.h"
#include "tests/support/HeapCounter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

static const int WIDTH = 301;
static const int HEIGHT = 40;

using TImage = std::vector<std::uint32_t>;

static std::uint32_t& Pixel(TImage& rImage, int x, int y)
{
    return rImage[static_cast<std::size_t>(y) * WIDTH + static_cast<std::size_t>(x)];
}

static double Byte(std::uint32_t n, int i)
{
    return n >> (8 * i) & 255;
}

/// Holes, long and short runs of one colour, opaque and half transparent pixels.
static TImage MixedImage(unsigned int nSeed)
{
    std::mt19937 oRandom(nSeed);
    TImage vImage;
    while (vImage.size() < std::size_t{WIDTH} * HEIGHT) {
        const auto nKind = oRandom() % 4;
        std::uint32_t nColour = static_cast<std::uint32_t>(oRandom());
        if (nKind == 0)
            nColour &= 0x00FFFFFF;
        if (nKind == 1)
            nColour |= 0xFF000000;
        for (auto n = oRandom() % 90; n > 0; --n)
            vImage.push_back(nKind == 3 ? static_cast<std::uint32_t>(oRandom()) : nColour);
    }
    vImage.resize(std::size_t{WIDTH} * HEIGHT);
    return vImage;
}

static CRunLayer LayerOf(const TImage& rImage, const SLayerFormat& rFormat)
{
    CRunLayer oLayer;
    oLayer.Begin(rFormat);
    for (int y = 0; y < HEIGHT; ++y)
        oLayer.AddRow(y, 0, rImage.data() + std::ptrdiff_t{y} * WIDTH, WIDTH);
    oLayer.Finish();
    return oLayer;
}

static void Blend(const CRunLayer& rLayer, TImage& rTarget, int nFirstRow, int nEndRow, bool bByAlpha = false)
{
    rLayer.BlendPixels(reinterpret_cast<unsigned char*>(rTarget.data()), std::ptrdiff_t{WIDTH} * 4, nFirstRow,
                       nEndRow, bByAlpha);
}

TEST(RunLayer, BlendsPixelsAsTheFormulaSaysInBothOrders)
{
    const TImage vLayer = MixedImage(1);
    for (const bool bRedFirst : {false, true}) {
        SLayerFormat sFormat;
        sFormat.bRedFirst = bRedFirst;
        const TImage vBefore = MixedImage(2);
        TImage vTarget = vBefore;
        Blend(LayerOf(vLayer, sFormat), vTarget, 0, HEIGHT);
        for (std::size_t n = 0; n < vTarget.size(); ++n) {
            const double fAlpha = Byte(vLayer[n], 3) / 255.0;
            for (int i = 0; i < 3; ++i) {
                const double fWanted =
                    Byte(vBefore[n], i) * (1.0 - fAlpha) + Byte(vLayer[n], bRedFirst ? i : 2 - i) * fAlpha;
                // The layer's bytes and the blend's are rounded once each.
                ASSERT_NEAR(Byte(vTarget[n], i), fWanted, 1.0) << n;
            }
            ASSERT_EQ(vTarget[n] >> 24, vBefore[n] >> 24);
        }
    }
}

TEST(RunLayer, CountsAsMuchAsThePicturesAlphaWherePicturesArePremultiplied)
{
    const TImage vLayer = MixedImage(3);
    TImage vBefore = MixedImage(4);
    for (std::uint32_t& rPixel : vBefore)
        rPixel = CRunColours(SLayerFormat()).Pixel(rPixel);
    TImage vTarget = vBefore;
    Blend(LayerOf(vLayer, SLayerFormat()), vTarget, 0, HEIGHT, true);
    for (std::size_t n = 0; n < vTarget.size(); ++n) {
        const double fAlpha = Byte(vLayer[n], 3) / 255.0;
        for (int i = 0; i < 3; ++i)
            ASSERT_NEAR(Byte(vTarget[n], i),
                        Byte(vBefore[n], i) * (1.0 - fAlpha) +
                            Byte(vLayer[n], 2 - i) * fAlpha * Byte(vBefore[n], 3) / 255.0,
                        1.0);
        ASSERT_EQ(vTarget[n] >> 24, vBefore[n] >> 24);
    }
}

TEST(RunLayer, BlendsTheRowsThatItIsAskedFor)
{
    const CRunLayer oLayer = LayerOf(MixedImage(5), SLayerFormat());
    TImage vWhole = MixedImage(6);
    TImage vBands = vWhole;
    const TImage vBefore = vWhole;
    Blend(oLayer, vWhole, 0, HEIGHT);
    for (const auto& [nFirst, nEnd] : {std::pair{30, HEIGHT}, std::pair{0, 7}, std::pair{8, 30}})
        Blend(oLayer, vBands, nFirst, nEnd);
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x)
            ASSERT_EQ(Pixel(vBands, x, y),
                      y == 7 ? vBefore[7U * WIDTH + static_cast<std::size_t>(x)] : Pixel(vWhole, x, y));
}

TEST(RunLayer, RunsOfOneColourAreKeptOnce)
{
    CRunLayer oLayer;
    oLayer.Begin(SLayerFormat());
    for (int y = 0; y < 1000; ++y)
        for (int x = 0; x < 1000; x += 8)
            oLayer.AddRun(y, x, 8, 0xFF102030);
    oLayer.Finish();
    EXPECT_LT(oLayer.CountBytes(), 1000U * 100U);
    EXPECT_FALSE(oLayer.IsEmpty());
    oLayer.Begin(SLayerFormat());
    oLayer.AddRun(3, 4, 100, 0x00102030);
    oLayer.Finish();
    EXPECT_TRUE(oLayer.IsEmpty());
}

/// A picture of YUV planes.
struct SPlanes
{
    explicit SPlanes(EImageFormat eFormat, unsigned int nSeed = 7)
        : vBytes(std::size_t{WIDTH + 1} * HEIGHT * 2)
    {
        std::mt19937 oRandom(nSeed);
        for (unsigned char& rByte : vBytes)
            rByte = static_cast<unsigned char>(oRandom());
        const int nChroma = (WIDTH + 1) / 2;
        const int nHalf = eFormat == IMAGE_FORMAT_NV12 ? 1 : 2;
        sTarget.eFormat = eFormat;
        sTarget.apPlanes[0] = vBytes.data();
        sTarget.anStrides[0] = WIDTH;
        sTarget.apPlanes[1] = vBytes.data() + std::ptrdiff_t{WIDTH} * HEIGHT;
        sTarget.anStrides[1] = 2 * nChroma / nHalf;
        sTarget.apPlanes[2] = sTarget.apPlanes[1] + std::ptrdiff_t{nChroma} * HEIGHT / 2;
        sTarget.anStrides[2] = nChroma;
    }
    int Luma(int x, int y) const { return sTarget.apPlanes[0][y * sTarget.anStrides[0] + x]; }
    /// Of a chroma place: 0 U, 1 V.
    int Chroma(int x, int y, int i) const
    {
        return sTarget.eFormat == IMAGE_FORMAT_NV12
                   ? sTarget.apPlanes[1][y * sTarget.anStrides[1] + 2 * x + i]
                   : sTarget.apPlanes[1 + i][y * sTarget.anStrides[1 + i] + x];
    }

    std::vector<unsigned char> vBytes;
    SFrameTarget sTarget;
};

/// Red, green, blue to Y, U, V in double precision, through the inverse of the house's own way back.
struct SYUV
{
    double y;
    double u;
    double v;
};
static SYUV ToYUV(double fRed, double fGreen, double fBlue, bool bLimited)
{
    // BT.601, three decimals.
    const double fU = 0.344 / 1.772;
    const double fV = 0.714 / 1.402;
    const double y = (fGreen + fU * fBlue + fV * fRed) / (1.0 + fU + fV);
    const double fSpan = bLimited ? 223.0 / 255.0 : 1.0;
    return {bLimited ? 16.0 + y * 219.0 / 255.0 : y, 127.5 + (fBlue - y) / 1.772 * fSpan,
            127.5 + (fRed - y) / 1.402 * fSpan};
}

TEST(RunLayer, BlendsPlanesAsTheFormulaSays)
{
    TImage vLayer = MixedImage(8);
    for (const EImageFormat eFormat : {IMAGE_FORMAT_NV12, IMAGE_FORMAT_YUV420P})
        for (const bool bLimited : {false, true}) {
            SLayerFormat sFormat;
            sFormat.bYUV = true;
            sFormat.nYUVRange = bLimited ? YUV_RANGE_LIMITED : YUV_RANGE_FULL;
            const SPlanes oBefore(eFormat);
            SPlanes oAfter(eFormat);
            const CRunLayer oLayer = LayerOf(vLayer, sFormat);
            oLayer.BlendYUV(oAfter.sTarget, 0, 16);
            oLayer.BlendYUV(oAfter.sTarget, 16, HEIGHT);
            for (int y = 0; y < HEIGHT; ++y)
                for (int x = 0; x < WIDTH; ++x) {
                    const std::uint32_t n = Pixel(vLayer, x, y);
                    const double fAlpha = Byte(n, 3) / 255.0;
                    const double fLuma = ToYUV(Byte(n, 0), Byte(n, 1), Byte(n, 2), bLimited).y;
                    ASSERT_NEAR(oAfter.Luma(x, y), oBefore.Luma(x, y) * (1.0 - fAlpha) + fLuma * fAlpha,
                                1.05);
                }
            for (int y = 0; y < HEIGHT / 2; ++y)
                for (int x = 0; x < (WIDTH + 1) / 2; ++x) {
                    double afSum[4] = {};
                    double fMost = 0.0;
                    for (int k = 0; k < 4; ++k) {
                        const int nX = 2 * x + k % 2;
                        if (nX >= WIDTH)
                            continue;
                        const std::uint32_t n = Pixel(vLayer, nX, 2 * y + k / 2);
                        fMost = std::max(fMost, Byte(n, 3) / 255.0);
                        for (int i = 0; i < 4; ++i)
                            afSum[i] += Byte(n, i) * (i < 3 ? Byte(n, 3) : 1.0);
                    }
                    SYUV sMean = {0.0, 0.0, 0.0};
                    if (afSum[3] > 0.0)
                        sMean =
                            ToYUV(afSum[0] / afSum[3], afSum[1] / afSum[3], afSum[2] / afSum[3], bLimited);
                    ASSERT_NEAR(oAfter.Chroma(x, y, 0),
                                oBefore.Chroma(x, y, 0) * (1.0 - fMost) + sMean.u * fMost, 1.05)
                        << x << " " << y;
                    ASSERT_NEAR(oAfter.Chroma(x, y, 1),
                                oBefore.Chroma(x, y, 1) * (1.0 - fMost) + sMean.v * fMost, 1.05);
                }
        }
}

TEST(RunLayer, ChromaNeverLetsAColourThroughBesideAnOpaqueEdge)
{
    SLayerFormat sFormat;
    sFormat.bYUV = true;
    // Black masks that begin and end on every kind of pixel.
    for (int nCase = 0; nCase < 16; ++nCase) {
        CRunLayer oLayer;
        oLayer.Begin(sFormat);
        const int x0 = 20 + nCase % 2;
        const int x1 = 40 + nCase / 2 % 2;
        const int y0 = 10 + nCase / 4 % 2;
        const int y1 = 20 + nCase / 8;
        for (int y = y0; y < y1; ++y)
            oLayer.AddRun(y, x0, x1 - x0, 0xFF000000);
        oLayer.Finish();
        SPlanes oPlanes(IMAGE_FORMAT_NV12);
        oLayer.BlendYUV(oPlanes.sTarget, 0, HEIGHT);
        for (int y = y0; y < y1; ++y)
            for (int x = x0; x < x1; ++x) {
                ASSERT_EQ(oPlanes.Luma(x, y), 0);
                ASSERT_NEAR(oPlanes.Chroma(x / 2, y / 2, 0), 127.5, 0.5) << nCase;
                ASSERT_NEAR(oPlanes.Chroma(x / 2, y / 2, 1), 127.5, 0.5) << nCase;
            }
        EXPECT_EQ(oPlanes.Luma(x0 - 1, y0), SPlanes(IMAGE_FORMAT_NV12).Luma(x0 - 1, y0));
    }
}

TEST(RunLayer, ColoursAreThoseOfTheHousesConversion)
{
    for (const int nSpace : {1, 2, 3, 4})
        for (const int nRange : {1, 2})
            for (const std::uint32_t nRGB :
                 {0x000000U, 0xFFFFFFU, 0xFF0000U, 0x00FF00U, 0x0000FFU, 0x3080D0U}) {
                SLayerFormat sFormat;
                sFormat.bYUV = true;
                sFormat.nYUVSpace = nSpace;
                sFormat.nYUVRange = nRange;
                const std::uint32_t n =
                    0xFF000000U | (nRGB >> 16 & 255) | (nRGB & 0xFF00) | (nRGB << 16 & 0xFF0000);
                const unsigned int nWanted = ConvertColourToYUV(
                    nRGB << 8 | 255, static_cast<EYUVSpace>(nSpace), static_cast<EYUVRange>(nRange));
                const CRunColours oColours(sFormat);
                unsigned char u = 0;
                unsigned char v = 0;
                EXPECT_EQ(oColours.Chroma({n, n, n, n}, u, v), 255);
                EXPECT_NEAR(oColours.Luma(n), static_cast<int>(nWanted >> 24), 1);
                EXPECT_NEAR(u, static_cast<int>(nWanted >> 16 & 255), 1);
                EXPECT_NEAR(v, static_cast<int>(nWanted >> 8 & 255), 1);
            }
}

TEST(RunLayer, AppendedLayersAreOneLayer)
{
    const TImage vLayer = MixedImage(9);
    for (const bool bYUV : {false, true}) {
        SLayerFormat sFormat;
        sFormat.bYUV = bYUV;
        CRunLayer oJoined;
        oJoined.Begin(sFormat);
        for (int nFirst = 0; nFirst < HEIGHT; nFirst += 8) {
            CRunLayer oStrip;
            oStrip.Begin(sFormat);
            for (int y = nFirst; y < nFirst + 8; ++y)
                oStrip.AddRow(y, 0, vLayer.data() + std::ptrdiff_t{y} * WIDTH, WIDTH);
            oStrip.Finish();
            oJoined.Append(oStrip);
        }
        const CRunLayer oWhole = LayerOf(vLayer, sFormat);
        SPlanes oFirst(IMAGE_FORMAT_YUV420P);
        SPlanes oSecond(IMAGE_FORMAT_YUV420P);
        TImage vFirst = vLayer;
        TImage vSecond = vLayer;
        if (bYUV) {
            oJoined.BlendYUV(oFirst.sTarget, 0, HEIGHT);
            oWhole.BlendYUV(oSecond.sTarget, 0, HEIGHT);
        } else {
            Blend(oJoined, vFirst, 0, HEIGHT);
            Blend(oWhole, vSecond, 0, HEIGHT);
        }
        EXPECT_EQ(oFirst.vBytes, oSecond.vBytes);
        EXPECT_EQ(vFirst, vSecond);
    }
}

TEST(RunLayer, BlendingAllocatesNothing)
{
    const TImage vLayer = MixedImage(10);
    SLayerFormat sYUV;
    sYUV.bYUV = true;
    const CRunLayer oPixels = LayerOf(vLayer, SLayerFormat());
    const CRunLayer oPlanes = LayerOf(vLayer, sYUV);
    TImage vTarget = vLayer;
    SPlanes oNV12(IMAGE_FORMAT_NV12);
    SPlanes oPlanar(IMAGE_FORMAT_YUV420P);
    const CHeapCounter oHeap;
    Blend(oPixels, vTarget, 0, HEIGHT);
    Blend(oPixels, vTarget, 0, HEIGHT, true);
    oPlanes.BlendYUV(oNV12.sTarget, 0, HEIGHT);
    oPlanes.BlendYUV(oPlanar.sTarget, 0, HEIGHT);
    EXPECT_EQ(oHeap.Count(), 0);
}
