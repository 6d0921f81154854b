#include "dewarp/records/PackYUV.h"

#include "dewarp/records/ColourMatrix.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace
{

const int FRACTION = 16;
const int PIXEL = 4; // bytes: blue, green, red, alpha
const double ONE = 1 << FRACTION;

int Fixed(double fValue)
{
    return static_cast<int>(std::lround(fValue * ONE));
}

/// Factors of blue minus luma, or of red minus luma, whose sum is 0: grey has no chroma.
void SetChroma(int (&anWeights)[3], double fRed, double fBlue)
{
    anWeights[0] = Fixed(fRed);
    anWeights[2] = Fixed(fBlue);
    anWeights[1] = -anWeights[0] - anWeights[2];
}

unsigned char Byte(int nValue)
{
    return static_cast<unsigned char>(std::clamp(nValue, 0, 255));
}

void PackLuma(const SYUVWeights& r, const unsigned char* pPixels, int nWidth, unsigned char* pLuma)
{
    for (int x = 0; x < nWidth; ++x, pPixels += PIXEL)
        pLuma[x] =
            Byte((r.anY[0] * pPixels[2] + r.anY[1] * pPixels[1] + r.anY[2] * pPixels[0] + r.nY) >> FRACTION);
}

/// The byte of a sum of four pixels.
unsigned char Chroma(const int (&anWeights)[3], int nAdded, int nRed, int nGreen, int nBlue)
{
    const int nSum = anWeights[0] * nRed + anWeights[1] * nGreen + anWeights[2] * nBlue;
    return Byte((nSum + 4 * nAdded) >> (FRACTION + 2));
}

std::ptrdiff_t RowOffset(int nRow, int nStride)
{
    return static_cast<std::ptrdiff_t>(nRow) * nStride;
}

void PackRow(const unsigned char* pPixels, int nWidth, bool bSwap, unsigned char* pRow)
{
    if (!bSwap) {
        std::memcpy(pRow, pPixels, static_cast<std::size_t>(nWidth) * PIXEL);
        return;
    }
    for (int x = 0; x < nWidth; ++x, pPixels += PIXEL, pRow += PIXEL) {
        pRow[0] = pPixels[2];
        pRow[1] = pPixels[1];
        pRow[2] = pPixels[0];
        pRow[3] = pPixels[3];
    }
}

} // namespace

SYUVWeights YUVWeightsOf(const SYUV2RGBConversionParams& rInForce)
{
    const SColourMatrix& rMatrix = ColourMatrixOf(rInForce.eSpace);
    const SLumaShares sShares = LumaSharesOf(rMatrix);
    const double fAll = 1.0 + static_cast<double>(sShares.fBlue) + static_cast<double>(sShares.fRed);
    const double fRed = static_cast<double>(sShares.fRed) / fAll;
    const double fBlue = static_cast<double>(sShares.fBlue) / fAll;
    const bool bLimited = rInForce.eRange == YUV_RANGE_LIMITED;
    const double fLuma = bLimited ? (rInForce.nLumaMax - rInForce.nLumaMin) / 255.0 : 1.0;
    const double fChroma = bLimited ? (255 - 2 * rInForce.nChromaMin) / 255.0 : 1.0;
    const double fU = fChroma / static_cast<double>(rMatrix.fBlueU);
    const double fV = fChroma / static_cast<double>(rMatrix.fRedV);
    SYUVWeights s = {};
    s.anY[0] = Fixed(fRed * fLuma);
    s.anY[2] = Fixed(fBlue * fLuma);
    s.anY[1] = Fixed(fLuma) - s.anY[0] - s.anY[2];
    SetChroma(s.anU, -fRed * fU, (1.0 - fBlue) * fU);
    SetChroma(s.anV, (1.0 - fRed) * fV, -fBlue * fV);
    s.nY = Fixed((bLimited ? rInForce.nLumaMin : 0) + 0.5);
    s.nChroma = Fixed(127.5 + 0.5);
    return s;
}

void PackYUVRows(const SYUVWeights& rWeights, const unsigned char* pUpper, const unsigned char* pLower,
                 int nWidth, const SYUVRows& rRows)
{
    PackLuma(rWeights, pUpper, nWidth, rRows.pUpper);
    if (rRows.pLower != rRows.pUpper)
        PackLuma(rWeights, pLower, nWidth, rRows.pLower);
    unsigned char* pU = rRows.pU;
    unsigned char* pV = rRows.pV;
    for (int x = 0; x < nWidth; x += 2, pU += rRows.nChromaStep, pV += rRows.nChromaStep) {
        // The last column stands for the one that is not there.
        const int nLeft = x * PIXEL;
        const int nRight = x + 1 < nWidth ? nLeft + PIXEL : nLeft;
        int anSums[3];
        for (int i = 0; i < 3; ++i)
            anSums[i] = pUpper[nLeft + i] + pUpper[nRight + i] + pLower[nLeft + i] + pLower[nRight + i];
        *pU = Chroma(rWeights.anU, rWeights.nChroma, anSums[2], anSums[1], anSums[0]);
        *pV = Chroma(rWeights.anV, rWeights.nChroma, anSums[2], anSums[1], anSums[0]);
    }
}

void PackPicture(const unsigned char* pPixels, int nStride, int nWidth, int nHeight,
                 const SYUVWeights& rWeights, const SFrameTarget& rTarget)
{
    const SFrameTarget& t = rTarget;
    const bool bPlanar = t.eFormat == IMAGE_FORMAT_YUV420P;
    if (!bPlanar && t.eFormat != IMAGE_FORMAT_NV12) {
        for (int y = 0; y < nHeight; ++y)
            PackRow(pPixels + RowOffset(y, nStride), nWidth, t.eFormat == IMAGE_FORMAT_RGBA32,
                    t.apPlanes[0] + RowOffset(y, t.anStrides[0]));
        return;
    }
    for (int y = 0; y < nHeight; y += 2) {
        const int nLower = y + 1 < nHeight ? y + 1 : y;
        SYUVRows sRows = {};
        sRows.pUpper = t.apPlanes[0] + RowOffset(y, t.anStrides[0]);
        sRows.pLower = t.apPlanes[0] + RowOffset(nLower, t.anStrides[0]);
        sRows.pU = t.apPlanes[1] + RowOffset(y / 2, t.anStrides[1]);
        sRows.pV = bPlanar ? t.apPlanes[2] + RowOffset(y / 2, t.anStrides[2]) : sRows.pU + 1;
        sRows.nChromaStep = bPlanar ? 1 : 2;
        PackYUVRows(rWeights, pPixels + RowOffset(y, nStride), pPixels + RowOffset(nLower, nStride), nWidth,
                    sRows);
    }
}
