#include "dewarp/cpu/TextLayer.h"

#include "dewarp/tables/GPUFont.h"
#include "tests/support/HeapCounter.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

using TPicture = std::vector<std::uint32_t>;
using TStrings = std::vector<SGPUString>;

static SGPUString Text(const char* pText, int x, int y, int nHeight, unsigned int nColor)
{
    SGPUString sString;
    sString.strText = pText;
    sString.nX = x;
    sString.nY = y;
    sString.nHeight = nHeight;
    sString.nColor = nColor;
    return sString;
}

static SLayerFormat RedFirst()
{
    SLayerFormat sFormat;
    sFormat.bRedFirst = true;
    return sFormat;
}

static TPicture Picture(const CTextLayer& rText, int nWidth, int nHeight, std::uint32_t nBelow = 0xFF30A050)
{
    TPicture vPicture(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight), nBelow);
    rText.BlendPixels(reinterpret_cast<unsigned char*>(vPicture.data()), std::ptrdiff_t{nWidth} * 4, 0,
                      nHeight);
    return vPicture;
}

/// The shape of a glyph, 0..1, at a pixel of one that is nHeight high: linear between the atlas's texels.
static double Shape(char c, int nHeight, int x, int y)
{
    const int nWidth = nHeight * 38 / 64;
    const int nCell = c - 32;
    const auto Texel = [](int nCellAlong, int nPixel, int nPixels, int nTexels) {
        return ((2 * (nCellAlong * nPixels + nPixel) + 1) * nTexels - nPixels) / (2.0 * nPixels);
    };
    const double u = Texel(nCell % GPU_FONT::nCols, x, nWidth, 38);
    const double v = Texel(nCell / GPU_FONT::nCols, y, nHeight, 64);
    double fSum = 0.0;
    for (int i = 0; i < 4; ++i) {
        const double fX = std::floor(u) + i % 2;
        const double fY = std::floor(v) + i / 2;
        const int nX = std::clamp(static_cast<int>(fX), 0, GPU_FONT::nW - 1);
        const int nY = std::clamp(static_cast<int>(fY), 0, GPU_FONT::nH - 1);
        fSum += (1.0 - std::fabs(u - fX)) * (1.0 - std::fabs(v - fY)) *
                GPU_FONT::pGPU_FONT[(std::ptrdiff_t{nY} * GPU_FONT::nW + nX) * 2 + 1] / 255.0;
    }
    return fSum;
}

/// Red, green, blue, alpha, 0..1.
using TPixel = std::array<double, 4>;

static TPixel FromWord(std::uint32_t n)
{
    return {(n & 255) / 255.0, (n >> 8 & 255) / 255.0, (n >> 16 & 255) / 255.0, (n >> 24) / 255.0};
}

/// One sample over what the text's image holds, as its texture keeps it.
static TPixel Over(const TPixel& aOld, const TPixel& aNew)
{
    const TPixel& rLower = aNew[3] >= aOld[3] ? aOld : aNew;
    const TPixel& rHigher = aNew[3] > aOld[3] ? aNew : aOld;
    TPixel aResult;
    for (std::size_t i = 0; i < 3; ++i)
        aResult[i] = std::min(1.0, rLower[i] * (1.0 - rHigher[3]) + rHigher[i]);
    aResult[3] = rHigher[3];
    for (double& r : aResult)
        r = std::round(r * 255.0) / 255.0;
    return aResult;
}

/// Compares text on a plain picture with its formula; strings are anchored at their first corner.
static void Check(const TStrings& vStrings, int nWidth, int nHeight)
{
    CTextLayer oText;
    oText.Build(vStrings, nWidth, nHeight, RedFirst());
    const std::uint32_t nBelow = 0xFF30A050;
    const TPicture vIs = Picture(oText, nWidth, nHeight, nBelow);
    int nUnsure = 0;
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            TPixel aText = {};
            bool bSure = true;
            for (const SGPUString& r : vStrings) {
                const int w = r.nHeight * 38 / 64;
                const int nX = x - r.nX;
                const int nY = y - r.nY;
                if (nX < 0 || nY < 0 || nY >= r.nHeight || nX >= w * static_cast<int>(r.strText.size()))
                    continue;
                const char c = r.strText[static_cast<std::size_t>(nX / w)];
                if (c < 32)
                    continue;
                TPixel aSample = FromWord(__builtin_bswap32(r.nColor));
                aSample[3] *= Shape(c, r.nHeight, nX % w, nY);
                bSure = bSure &&
                        (aSample[3] < 1e-9 || aText[3] == 0.0 || std::fabs(aSample[3] - aText[3]) > 1e-4);
                aText = Over(Over(aText, aSample), {});
            }
            nUnsure += bSure ? 0 : 1;
            const std::uint32_t n = vIs[static_cast<std::size_t>(y * nWidth + x)];
            // A sample half way between two levels may be kept as either; the rest is the blend's rounding.
            for (std::size_t i = 0; bSure && i < 3; ++i)
                ASSERT_NEAR(FromWord(n)[i] * 255.0,
                            (FromWord(nBelow)[i] * (1.0 - aText[3]) + aText[i] * aText[3]) * 255.0, 2.0)
                    << x << ", " << y;
        }
    EXPECT_LT(nUnsure, nWidth * nHeight / 30);
}

TEST(TextLayer, LettersLookLikeTheFontAtAnyHeight)
{
    for (const unsigned int nAlpha : {255U, 128U, 1U})
        Check({Text("FLgy7", 11, 3, 64, 0xFFC04000 | nAlpha),
               Text("Rotation q4%", 5, 90, 32, 0x20E08000 | nAlpha),
               Text("\x01"
                    "a\x7F",
                    200, 60, 83, 0x80808000 | nAlpha),
               Text("edge", -20, 130, 40, 0xFFFFFF00 | nAlpha)},
              300, 151);
}

TEST(TextLayer, TextOverTextIsDrawnByTheHigherAlpha)
{
    for (const auto& [nFirst, nSecond] :
         {std::pair{0xFF2010FFU, 0x10FF20FFU}, std::pair{0xFF201080U, 0x10FF20FFU},
          std::pair{0xFF2010FFU, 0x10FF2080U}, std::pair{0x80208060U, 0x10902061U}})
        Check({Text("HAM", 10, 5, 64, nFirst), Text("ox8", 40, 20, 64, nSecond),
               Text("third", 60, 40, 31, nFirst)},
              200, 100);
}

TEST(TextLayer, BlocksLieWhereTheirAnchorsSay)
{
    for (int i = 0; i < 81; ++i) {
        SGPUString sString = Text("\x7F\x7F\x7F", 7, -5, 11, 0xFFFF00FF); // 3 x 6 pixels wide
        sString.nHAlign = i % 3;
        sString.nVAlign = i / 3 % 3;
        sString.nHRef = i / 9 % 3;
        sString.nVRef = i / 27;
        CTextLayer oText;
        oText.Build({sString}, 121, 79, RedFirst());
        const int x0 = 7 + sString.nHRef * 121 / 2 - sString.nHAlign * 18 / 2;
        const int y0 = -5 + sString.nVRef * 79 / 2 - sString.nVAlign * 11 / 2;
        const TPicture vIs = Picture(oText, 121, 79);
        for (int y = 0; y < 79; ++y)
            for (int x = 0; x < 121; ++x)
                ASSERT_EQ(vIs[static_cast<std::size_t>(y * 121 + x)],
                          x >= x0 && x < x0 + 18 && y >= y0 && y < y0 + 11 ? 0xFF00FFFFU : 0xFF30A050U)
                    << i << ": " << x << ", " << y;
    }
}

TEST(TextLayer, ThePictureIsOpaqueRoundEachStringsFirstCorner)
{
    CTextLayer oText;
    oText.Build({Text("ab", 50, 40, 10, 0xFF), Text("c", -3, -2, 32, 0xFF), Text("out", 500, 500, 32, 0xFF)},
                200, 100, RedFirst());
    ASSERT_EQ(oText.OpaqueRects().size(), 2U);
    const SGRect sFirst = oText.OpaqueRects()[0]; // 2 x 5 pixels wide
    EXPECT_EQ(sFirst.x, 40);
    EXPECT_EQ(sFirst.y, 30);
    EXPECT_EQ(sFirst.width, 20);
    EXPECT_EQ(sFirst.height, 20);
    const SGRect sSecond = oText.OpaqueRects()[1]; // 19 pixels wide
    EXPECT_EQ(sSecond.x, 0);
    EXPECT_EQ(sSecond.y, 0);
    EXPECT_EQ(sSecond.width, 16);
    EXPECT_EQ(sSecond.height, 30);
}

TEST(TextLayer, OnlyGroupsThatChangedAreDrawnAgain)
{
    TStrings vStrings = {Text("name", 5, 5, 16, 0xFFFFFFFF), Text("12:00", 5, 60, 16, 0xFFFF00FF),
                         Text("over", 20, 65, 16, 0xFF00FFFF), Text("far", 100, 100, 16, 0xFFFFFFFF)};
    CTextLayer oText;
    oText.Build(vStrings, 200, 150, RedFirst());
    EXPECT_EQ(oText.CountDrawn(), 3);
    vStrings[1].strText = "12:01";
    oText.Build(vStrings, 200, 150, RedFirst());
    EXPECT_EQ(oText.CountDrawn(), 1);
    std::swap(vStrings[0], vStrings[3]);
    oText.Build(vStrings, 200, 150, RedFirst());
    EXPECT_EQ(oText.CountDrawn(), 0);
    CTextLayer oAnew;
    oAnew.Build(vStrings, 200, 150, RedFirst());
    EXPECT_EQ(Picture(oText, 200, 150), Picture(oAnew, 200, 150));
    oText.Build(vStrings, 201, 150, RedFirst());
    EXPECT_EQ(oText.CountDrawn(), 3);
    oText.Build({}, 201, 150, RedFirst());
    EXPECT_TRUE(oText.IsEmpty());
    EXPECT_EQ(Picture(oText, 201, 150), TPicture(std::size_t{201 * 150}, 0xFF30A050));
}

TEST(TextLayer, BlendingAllocatesNothing)
{
    CTextLayer oText;
    oText.Build({Text("steady", 5, 5, 32, 0xFFFFFFFF)}, 200, 100, RedFirst());
    TPicture vPicture(20000);
    const CHeapCounter oHeap;
    oText.BlendPixels(reinterpret_cast<unsigned char*>(vPicture.data()), 800, 0, 100);
    EXPECT_EQ(oHeap.Count(), 0);
}
