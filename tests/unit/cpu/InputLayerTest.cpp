#include "dewarp/cpu/InputLayer.h"

#include "GridScene.h"
#include "dewarp/cpu/CellKernel.h"
#include "dewarp/cpu/MaskImage.h"
#include "dewarp/cpu/OutputLayer.h"
#include "dewarp/cpu/OverlayImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

static const int FRAME = 256;

/// What lies over a pixel of a part, in a picture that was transparent black before: layers as they are.
static std::vector<std::uint32_t> Drawn(const CRunLayer& rLayer, int nWidth, int nHeight)
{
    // Black and white pictures under it tell colour and alpha.
    std::vector<std::uint32_t> vPicture(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight));
    rLayer.BlendPixels(reinterpret_cast<unsigned char*>(vPicture.data()), std::ptrdiff_t{nWidth} * 4, 0,
                       nHeight, false);
    return vPicture;
}

/// A sample in double precision, rounded to bytes; places are 0..1.
template <class TSource>
static std::uint32_t SampleAt(const TSource& rSource, double fX, double fY, bool bLinear)
{
    const double x = std::clamp(fX * rSource.Width() - 0.5, 0.0, rSource.Width() - 1.0);
    const double y = std::clamp(fY * rSource.Height() - 0.5, 0.0, rSource.Height() - 1.0);
    if (!bLinear)
        return rSource.At(static_cast<int>(std::floor(x + 0.5)), static_cast<int>(std::floor(y + 0.5)));
    const int nX = static_cast<int>(x);
    const int nY = static_cast<int>(y);
    const int nRight = std::min(nX + 1, rSource.Width() - 1);
    const int nBelow = std::min(nY + 1, rSource.Height() - 1);
    std::uint32_t n = 0;
    for (int i = 0; i < 32; i += 8) {
        const auto At = [&](int a, int b) { return static_cast<double>(rSource.At(a, b) >> i & 255); };
        const double fUpper = At(nX, nY) * (1.0 - (x - nX)) + At(nRight, nY) * (x - nX);
        const double fLower = At(nX, nBelow) * (1.0 - (x - nX)) + At(nRight, nBelow) * (x - nX);
        n |= static_cast<std::uint32_t>(std::lround(fUpper * (1.0 - (y - nY)) + fLower * (y - nY))) << i;
    }
    return n;
}

/// The same at a position in the frame.
template <class TSource>
static std::uint32_t Sample(const TSource& rSource, const SGridPoint& rPoint, bool bLinear)
{
    return SampleAt(rSource, (static_cast<double>(rPoint.x) / POSITION_ONE + 0.5) / FRAME,
                    (static_cast<double>(rPoint.y) / POSITION_ONE + 0.5) / FRAME, bLinear);
}

/// Compares a view's layers with samples of each pixel.
template <class TSource>
static void Check(const SGridScene& rScene, const TSource& rSource, int nWidth, int nHeight, int nThreads)
{
    SLayerFormat sFormat;
    sFormat.bRedFirst = true;
    for (const bool bLinear : {false, true}) {
        CInputLayer oLayer;
        oLayer.Build(rScene.oGrid, rSource, bLinear, FRAME, FRAME, sFormat, nThreads);
        ASSERT_EQ(oLayer.CountParts(), rScene.oGrid.CountParts());
        for (int nPart = 0; nPart < oLayer.CountParts(); ++nPart) {
            std::vector<std::uint32_t> vWanted(
                static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight), 0);
            ForPixels(rScene.oGrid.Parts()[nPart], [&](int x, int y, const SGridPoint& rPoint) {
                vWanted[static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) +
                        static_cast<std::size_t>(x)] =
                    CRunColours(sFormat).Pixel(Sample(rSource, rPoint, bLinear)) & 0xFFFFFF;
            });
            const std::vector<std::uint32_t> vIs = Drawn(oLayer.Layer(nPart), nWidth, nHeight);
            int nOff = 0;
            for (std::size_t n = 0; n < vIs.size(); ++n) {
                bool bOff = false;
                for (int i = 0; i < 24; i += 8)
                    bOff = bOff || std::abs(static_cast<int>(vIs[n] >> i & 255) -
                                            static_cast<int>(vWanted[n] >> i & 255)) > (bLinear ? 1 : 0);
                nOff += bOff ? 1 : 0;
            }
            // Positions that lie just between two texels go either way where images are stretched.
            EXPECT_LE(nOff, rSource.Width() == FRAME ? 0 : 20) << bLinear << " part " << nPart;
        }
    }
}

static const EViewType VIEWS[] = {VIEW_VCAM,          VIEW_VCAM_QUAD,    VIEW_FISHEYE, VIEW_FISHEYE_CIRCULAR,
                                  VIEW_PANORAMA_FULL, VIEW_PANORAMA_DUAL};

static CMaskImage Masks()
{
    CMaskImage oMasks;
    EXPECT_TRUE(oMasks.Paint({{{{20, 30}, {120, 40}, {90, 140}}, 0x336699FF},
                              {{{100, 100}, {250, 90}, {200, 230}, {130, 200}}, 0xC0408080},
                              {{{0, 180}, {60, 180}, {60, 256}, {0, 256}}, 0xFFFFFFFF}},
                             FRAME, FRAME));
    return oMasks;
}

TEST(InputLayer, ShowsMasksWhereTheViewShowsTheirTexels)
{
    const CMaskImage oMasks = Masks();
    for (const EViewType eView : VIEWS) {
        SCOPED_TRACE(eView);
        Check(SGridScene(eView, FRAME, 203, 151), oMasks, 203, 151, 1);
    }
}

TEST(InputLayer, ShowsOverlayImagesOfAnySize)
{
    CReport oReport("InputLayer");
    std::mt19937 oRandom(21);
    for (const int nSize : {FRAME, 100, 517}) {
        std::vector<unsigned char> vPixels(static_cast<std::size_t>(nSize) * static_cast<std::size_t>(nSize) *
                                           4);
        for (std::size_t n = 0; n < vPixels.size(); n += 4)
            for (std::size_t i = 0; i < 4; ++i)
                vPixels[n + i] = static_cast<unsigned char>(n / 400 % 3 == 0 ? 0 : oRandom());
        COverlayImage oImage;
        ASSERT_EQ(oImage.Set(vPixels.data(), nSize, nSize, {}, oReport), 1);
        for (const EViewType eView : VIEWS)
            Check(SGridScene(eView, FRAME, 203, 151), oImage, 203, 151, 2);
    }
}

TEST(InputLayer, IsTheSameForAnyNumberOfThreads)
{
    const CMaskImage oMasks = Masks();
    const SGridScene oScene(VIEW_VCAM_QUAD, FRAME, 320, 242);
    CInputLayer oFirst;
    oFirst.Build(oScene.oGrid, oMasks, true, FRAME, FRAME, SLayerFormat(), 1);
    for (const int nThreads : {2, 3, 7}) {
        CInputLayer oOther;
        // Twice: what was built before leaves nothing behind.
        for (int i = 0; i < 2; ++i)
            oOther.Build(oScene.oGrid, oMasks, true, FRAME, FRAME, SLayerFormat(), nThreads);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(Drawn(oFirst.Layer(i), 320, 242), Drawn(oOther.Layer(i), 320, 242));
    }
}

TEST(InputLayer, IsEmptyWithoutMasksAndForPartsThatAreNotThere)
{
    const SGridScene oScene(VIEW_VCAM, FRAME, 64, 64);
    CInputLayer oLayer;
    oLayer.Build(oScene.oGrid, Masks(), true, FRAME, FRAME, SLayerFormat(), 1);
    EXPECT_FALSE(oLayer.IsEmpty());
    EXPECT_TRUE(oLayer.Layer(1).IsEmpty());
    CMaskImage oNone;
    EXPECT_TRUE(oNone.Paint({}, FRAME, FRAME));
    oLayer.Build(oScene.oGrid, oNone, true, FRAME, FRAME, SLayerFormat(), 1);
    EXPECT_TRUE(oLayer.IsEmpty());
    EXPECT_TRUE(oLayer.Layer(0).IsEmpty());
}

TEST(OverlayImage, AnswersForRectanglesAndTakesWhatRectanglesName)
{
    CReport oReport("OverlayImage");
    COverlayImage oImage;
    std::vector<unsigned char> vPixels(70 * 50 * 4, 200);
    EXPECT_EQ(oImage.Set(vPixels.data(), 0, 50, {}, oReport), 0);
    EXPECT_EQ(oImage.Set(vPixels.data(), 70, 50, {{-5, 10, 25, 20}, {64, 40, 90, 90}}, oReport), 1);
    std::uint32_t nColour = 0;
    EXPECT_EQ(oImage.Classify(0, 0, 69, 9, nColour), LAYER_MIXED) << "blocks are looked at whole";
    EXPECT_EQ(oImage.Classify(32, 0, 63, 49, nColour), LAYER_NONE);
    EXPECT_EQ(oImage.Classify(0, 16, 15, 24, nColour), LAYER_MIXED);
    EXPECT_EQ(oImage.At(19, 29), 0xC8C8C8C8U);
    EXPECT_EQ(oImage.At(20, 29), 0U);
    EXPECT_EQ(oImage.At(69, 49), 0xC8C8C8C8U);
    EXPECT_EQ(oImage.Set(vPixels.data(), 70, 50, {}, oReport), 1);
    EXPECT_EQ(oImage.Classify(0, 0, 69, 49, nColour), LAYER_SOLID);
    EXPECT_EQ(nColour, 0xC8C8C8C8U);
    EXPECT_EQ(oImage.Set(nullptr, 0, 0, {}, oReport), 1);
    EXPECT_TRUE(oImage.IsEmpty());
}

TEST(OutputLayer, StretchesTheImageOverTheTarget)
{
    CReport oReport("OutputLayer");
    std::mt19937 oRandom(31);
    std::vector<unsigned char> vPixels(60 * 40 * 4);
    for (unsigned char& rByte : vPixels)
        rByte = static_cast<unsigned char>(oRandom() % 5 == 0 ? 0 : oRandom());
    COverlayImage oImage;
    ASSERT_EQ(oImage.Set(vPixels.data(), 60, 40, {}, oReport), 1);
    SLayerFormat sFormat;
    sFormat.bRedFirst = true;
    for (const auto& [nWidth, nHeight] : {std::pair{60, 40}, std::pair{131, 97}, std::pair{33, 17}})
        for (const bool bLinear : {false, true}) {
            CRunLayer oLayer;
            BuildOutputLayer(oImage, nWidth, nHeight, bLinear, sFormat, oLayer);
            const std::vector<std::uint32_t> vIs = Drawn(oLayer, nWidth, nHeight);
            for (int y = 0; y < nHeight; ++y)
                for (int x = 0; x < nWidth; ++x) {
                    const std::uint32_t nWanted = CRunColours(sFormat).Pixel(
                        SampleAt(oImage, (x + 0.5) / nWidth, (y + 0.5) / nHeight, bLinear));
                    const std::uint32_t nIs =
                        vIs[static_cast<std::size_t>(y) * static_cast<std::size_t>(nWidth) +
                            static_cast<std::size_t>(x)];
                    for (int i = 0; i < 24; i += 8)
                        ASSERT_NEAR(static_cast<int>(nIs >> i & 255), static_cast<int>(nWanted >> i & 255),
                                    bLinear ? 1 : 0)
                            << x << ", " << y << " of " << nWidth;
                }
        }
}
