// Every blend against its formula in double precision.
#include "tests/gl/overlays/OverlayTools.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

/// Red, green, blue, alpha, 0..1.
using TPixel = std::array<double, 4>;

static TPixel PixelOf(const unsigned char* p)
{
    return {p[0] / 255.0, p[1] / 255.0, p[2] / 255.0, p[3] / 255.0};
}

static TPixel ColourOf(unsigned int nColor)
{
    return {(nColor >> 24) / 255.0, (nColor >> 16 & 255) / 255.0, (nColor >> 8 & 255) / 255.0,
            (nColor & 255) / 255.0};
}

/// As a texture of 8 bits a channel keeps it.
static TPixel Stored(TPixel aPixel)
{
    for (double& rValue : aPixel)
        rValue = std::round(rValue * 255.0) / 255.0;
    return aPixel;
}

/// P (1 - a) + O a.
static TPixel Over(const TPixel& aPicture, const TPixel& aOver)
{
    TPixel aResult = {0.0, 0.0, 0.0, 1.0};
    for (std::size_t i = 0; i < 3; ++i)
        aResult[i] = aPicture[i] * (1.0 - aOver[3]) + aOver[i] * aOver[3];
    return aResult;
}

/// Largest difference, in 255ths, of a picture from what a function says of each place.
template <class F>
static double Worst(const STestImage& sPicture, F fWanted)
{
    double fWorst = 0.0;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x) {
            const TPixel aWanted = fWanted(x, y);
            const TPixel aIs = PixelOf(sPicture.At(x, y));
            for (std::size_t i = 0; i < 3; ++i)
                fWorst = std::max(fWorst, std::abs(aIs[i] - aWanted[i]) * 255.0);
        }
    return fWorst;
}

/// Every alpha from 0 to 255 beside every kind of colour.
static STestImage AlphaRamp(int nHeight)
{
    STestImage sOverlay = PatternPicture(256, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < 256; ++x)
            sOverlay.At(x, y)[3] = static_cast<unsigned char>((x + y * 3) & 255);
    return sOverlay;
}

using Blending = CEngineTest;

/// What rounding may do to a pixel below some layers. The processor engine keeps a layer multiplied by its
/// alpha in 8 bits, and so rounds twice for each.
static double MostRounding(EDewarpEngine eEngine, int nLayers)
{
    return eEngine == ENGINE_CPU ? nLayers : 1.0;
}

TEST_P(Blending, OverlayImagesByTheirAlpha)
{
    const STestImage sFrame = AsymmetricPicture(256, 64);
    const STestImage sOverlay = AlphaRamp(64);
    const auto Wanted = [&](int x, int y) {
        return Over(PixelOf(sFrame.At(x, y)), PixelOf(sOverlay.At(x, y)));
    };
    SEngineView oView(GetParam(), sFrame);
    SetInput(*oView.oDewarper, sOverlay);
    EXPECT_LE(Worst(oView.Draw(), Wanted), 1.0);
    oView.oDewarper->SetInputOverlay(nullptr, 0, 0, 0);
    SetOutput(*oView.oDewarper, sOverlay);
    const STestImage sPicture = oView.Draw();
    EXPECT_LE(Worst(sPicture, Wanted), 1.0);
    for (int x = 0; x < 256; ++x)
        ASSERT_EQ(sPicture.At(x, 9)[3], 255) << "the alpha of a composed frame is 1";
}

TEST_P(Blending, InputAndOutputOverlayOneAfterTheOther)
{
    const STestImage sFrame = AsymmetricPicture(256, 64);
    const STestImage sInput = AlphaRamp(64);
    STestImage sOutput = PatternPicture(256, 64, 90);
    SEngineView oView(GetParam(), sFrame);
    SetInput(*oView.oDewarper, sInput);
    SetOutput(*oView.oDewarper, sOutput);
    EXPECT_LE(Worst(oView.Draw(),
                    [&](int x, int y) {
                        const TPixel aView = Stored(Over(PixelOf(sFrame.At(x, y)), PixelOf(sInput.At(x, y))));
                        return Over(aView, PixelOf(sOutput.At(x, y)));
                    }),
              MostRounding(GetParam(), 2));
}

TEST_P(Blending, MasksOneOverTheOtherInTheirOrder)
{
    const STestImage sFrame = AsymmetricPicture(96, 80);
    const std::vector<std::pair<SGRect, unsigned int>> vBoxes = {
        {{5, 5, 50, 40}, 0xFF000080},  {{30, 20, 50, 40}, 0x00FF40FF}, {{40, 10, 30, 60}, 0x2060FF30},
        {{0, 50, 96, 20}, 0xFFFFFF01}, {{10, 30, 80, 10}, 0x804020C0}, {{60, 0, 20, 80}, 0xFFFF0000}};
    TPolygons vMasks;
    for (const auto& [sBox, nColor] : vBoxes)
        vMasks.push_back({{{sBox.x, sBox.y},
                           {sBox.x, sBox.y + sBox.height},
                           {sBox.x + sBox.width, sBox.y + sBox.height},
                           {sBox.x + sBox.width, sBox.y}},
                          nColor});
    SEngineView oView(GetParam(), sFrame);
    for (std::size_t n = 1; n <= vMasks.size(); ++n) {
        oView.oDewarper->SetMaskPolygons(
            TPolygons(vMasks.begin(), vMasks.begin() + static_cast<std::ptrdiff_t>(n)));
        const auto Wanted = [&](int x, int y) {
            TPixel aMask = {0.0, 0.0, 0.0, 0.0};
            for (std::size_t k = 0; k < n; ++k) {
                const SGRect& rBox = vBoxes[k].first;
                if (x < rBox.x || y < rBox.y || x >= rBox.x + rBox.width || y >= rBox.y + rBox.height)
                    continue;
                const TPixel aColor = ColourOf(vBoxes[k].second);
                for (std::size_t i = 0; i < 3; ++i)
                    aMask[i] = aMask[i] * (1.0 - aColor[3]) + aColor[i] * aColor[3];
                aMask[3] = std::max(aMask[3], aColor[3]);
                aMask = Stored(aMask);
            }
            return Over(PixelOf(sFrame.At(x, y)), aMask);
        };
        EXPECT_LE(Worst(oView.Draw(), Wanted), 1.0) << n << " masks";
    }
}

TEST_P(Blending, TextByItsAlphaAndCoverage)
{
    const STestImage sFrame = AsymmetricPicture(256, 150);
    for (const bool bToTexture : {false, true}) {
        SEngineView oView(GetParam(), sFrame);
        if (bToTexture)
            SetOutput(*oView.oDewarper, PlainPicture(256, 150, 0));
        for (const unsigned int nAlpha : {255u, 200u, 128u, 60u, 1u, 0u}) {
            const TStrings vStrings = {Text("aW&8", 9, 2, 64, 0xFFC04000u | nAlpha),
                                       Text("half", 3, 80, 32, 0x10A0FF00u | nAlpha)};
            oView.oDewarper->SetStrings(vStrings);
            STestImage sWanted = sFrame;
            DrawText(sWanted, vStrings);
            EXPECT_LE(CompareImages(oView.Draw(), sWanted).nMax, 1) << nAlpha << " " << bToTexture;
        }
    }
}

/// One glyph sample over what the text's image holds already.
static TPixel TextOver(const TPixel& aOld, const TPixel& aNew)
{
    const TPixel& rLower = aNew[3] >= aOld[3] ? aOld : aNew;
    const TPixel& rHigher = aNew[3] > aOld[3] ? aNew : aOld;
    TPixel aResult = {0.0, 0.0, 0.0, std::max(aOld[3], aNew[3])};
    for (std::size_t i = 0; i < 3; ++i)
        aResult[i] = std::min(1.0, rLower[i] * (1.0 - aResult[3]) + rHigher[i]);
    return aResult;
}

TEST_P(Blending, TextOverTextByTheHigherAlpha)
{
    const STestImage sFrame = AsymmetricPicture(200, 100);
    for (const auto& [nFirst, nSecond] :
         {std::pair{0xFF2010FFu, 0x10FF20FFu}, std::pair{0xFF201080u, 0x10FF20FFu},
          std::pair{0xFF2010FFu, 0x10FF2080u}, std::pair{0x80208060u, 0x10902060u}}) {
        const TStrings vStrings = {Text("HAM", 10, 5, 64, nFirst), Text("ox8", 40, 20, 64, nSecond)};
        SEngineView oView(GetParam(), sFrame);
        oView.oDewarper->SetStrings(vStrings);
        const STestImage sPicture = oView.Draw();
        int nSkipped = 0;
        const auto Wanted = [&](int x, int y) {
            TPixel aText = {0.0, 0.0, 0.0, 0.0};
            for (const SGPUString& rString : vStrings) {
                const int nX = x - rString.nX;
                const int nY = y - rString.nY;
                if (nX < 0 || nY < 0 || nX >= static_cast<int>(rString.strText.size()) * 38 || nY >= 64)
                    continue;
                TPixel aSample = ColourOf(rString.nColor);
                const char c = rString.strText[static_cast<std::size_t>(nX / 38)];
                aSample[3] *= Coverage(c, 64, nX % 38, nY) / 255.0;
                // Which of two alphas that are all but equal is the higher is a matter of rounding.
                const bool bSure = aSample[3] == 0.0 || aSample[3] == 1.0 || aText[3] == 0.0 ||
                                   std::abs(aSample[3] - aText[3]) > 0.6 / 255.0;
                if (!bSure) {
                    ++nSkipped;
                    return PixelOf(sPicture.At(x, y));
                }
                aText = Stored(TextOver(aText, aSample));
            }
            return Over(PixelOf(sFrame.At(x, y)), aText);
        };
        EXPECT_LE(Worst(sPicture, Wanted), 1.01);
        EXPECT_LT(nSkipped, 600) << "of 20,000 pixels";
    }
}

TEST_P(Blending, TheOutputOverlayLiesOverTheText)
{
    const STestImage sFrame = AsymmetricPicture(128, 80);
    const TStrings vStrings = {Text("Tx", 9, 2, 64, 0xFFC040D0)};
    const STestImage sOverlay = PatternPicture(128, 80, 100);
    SEngineView oView(GetParam(), sFrame);
    oView.oDewarper->SetStrings(vStrings);
    SetOutput(*oView.oDewarper, sOverlay);
    STestImage sWanted = sFrame;
    DrawText(sWanted, vStrings);
    Blend(sWanted, sOverlay);
    EXPECT_LE(CompareImages(oView.Draw(), sWanted).nMax, MostRounding(GetParam(), 2));
}

TEST_P(Blending, TheFilterChangesNothingWherePixelsLieOnTexels)
{
    const STestImage sFrame = AsymmetricPicture(150, 90);
    const TStrings vStrings = {Text("Wq", 9, 2, 64, 0xFFC040D0), Text("5:07", 70, 55, 32, 0x80FFFFFF)};
    const TPolygons vMasks = {{{{20, 10}, {90, 30}, {40, 80}}, 0x20E0A0FF}};
    for (const bool bOutput : {false, true}) {
        STestImage aPictures[2];
        for (const bool bLinear : {false, true}) {
            SEngineView oView(GetParam(), sFrame);
            oView.oDewarper->SetInterpolationType(bLinear ? INTERPOLATION_LINEAR : INTERPOLATION_NEAREST);
            oView.oDewarper->SetMaskPolygons(vMasks);
            oView.oDewarper->SetStrings(vStrings);
            if (bOutput)
                SetOutput(*oView.oDewarper, PatternPicture(150, 90, 120));
            aPictures[bLinear] = oView.Draw();
        }
        EXPECT_LE(CompareImages(aPictures[0], aPictures[1]).nMax, 1);
    }
}

INSTANTIATE_ENGINES(Blending);
