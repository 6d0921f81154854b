#include "dewarp/cpu/CellTargets.h"

#include <algorithm>
#include <cstring>

namespace
{

/// A part of a distance, to the nearest.
std::int32_t Part(std::int32_t nDistance, int nSteps, int nBits)
{
    return (nDistance * nSteps + (1 << (nBits - 1))) >> nBits;
}

/// Half the bytes of a product, as 16-bit instructions round it.
int Scaled(int nValue, int nFactor)
{
    return (nValue * nFactor + 16384) >> 15;
}

int Saturated(int n)
{
    return std::clamp(n, 0, 255);
}

const int HALF_CHROMA = 8160; // 127.5 levels

} // namespace

void PixelPositions(const SCellPoints& rPoints, SGridPoint* pPositions)
{
    const int nStep = rPoints.nStep;
    const int nBits = nStep == CELL_SIDE ? 3 : 2;
    for (int y = 0; y < CELL_SIDE; ++y) {
        const SGridPoint* const pUpper = rPoints.pFirst + (y / nStep) * rPoints.nRow;
        const SGridPoint* const pLower = pUpper + rPoints.nRow;
        for (int x = 0; x < CELL_SIDE; ++x) {
            const int i = x / nStep;
            const int nAcross = y % nStep;
            const int nAlong = x % nStep;
            const std::int32_t nLeftX = pUpper[i].x + Part(pLower[i].x - pUpper[i].x, nAcross, nBits);
            const std::int32_t nLeftY = pUpper[i].y + Part(pLower[i].y - pUpper[i].y, nAcross, nBits);
            const std::int32_t nRightX =
                pUpper[i + 1].x + Part(pLower[i + 1].x - pUpper[i + 1].x, nAcross, nBits);
            const std::int32_t nRightY =
                pUpper[i + 1].y + Part(pLower[i + 1].y - pUpper[i + 1].y, nAcross, nBits);
            *pPositions++ = {nLeftX + Part(nRightX - nLeftX, nAlong, nBits),
                             nLeftY + Part(nRightY - nLeftY, nAlong, nBits)};
        }
    }
}

void ChromaPlaces(const SCellPoints& rPoints, SGridPoint* pPositions)
{
    // Places lie half a pixel behind every other pixel: in steps of half pixels.
    const int nStep = rPoints.nStep;
    const int nBits = nStep == CELL_SIDE ? 4 : 3;
    for (int j = 0; j < CELL_SIDE / 2; ++j) {
        const int y = 4 * j + 1;
        const SGridPoint* const pUpper = rPoints.pFirst + (y / (2 * nStep)) * rPoints.nRow;
        const SGridPoint* const pLower = pUpper + rPoints.nRow;
        for (int k = 0; k < CELL_SIDE / 2; ++k) {
            const int x = 4 * k + 1;
            const int i = x / (2 * nStep);
            const int nAcross = y % (2 * nStep);
            const int nAlong = x % (2 * nStep);
            const std::int32_t nLeftX = pUpper[i].x + Part(pLower[i].x - pUpper[i].x, nAcross, nBits);
            const std::int32_t nLeftY = pUpper[i].y + Part(pLower[i].y - pUpper[i].y, nAcross, nBits);
            const std::int32_t nRightX =
                pUpper[i + 1].x + Part(pLower[i + 1].x - pUpper[i + 1].x, nAcross, nBits);
            const std::int32_t nRightY =
                pUpper[i + 1].y + Part(pLower[i + 1].y - pUpper[i + 1].y, nAcross, nBits);
            *pPositions++ = {nLeftX + Part(nRightX - nLeftX, nAlong, nBits),
                             nLeftY + Part(nRightY - nLeftY, nAlong, nBits)};
        }
    }
}

int SampleAt(const SSamplePlane& rPlane, int nByte, std::int32_t x, std::int32_t y, bool bLinear)
{
    const auto At = [&](int nX, int nY) {
        return static_cast<int>(rPlane.pPixels[static_cast<std::ptrdiff_t>(nY) * rPlane.nStride +
                                               nX * rPlane.nPixelBytes + nByte]);
    };
    const int nRight = rPlane.nWidth - 1;
    const int nBottom = rPlane.nHeight - 1;
    if (!bLinear)
        return SAMPLE_LEVEL * At(std::clamp((x + POSITION_ONE / 2) >> POSITION_BITS, 0, nRight),
                                 std::clamp((y + POSITION_ONE / 2) >> POSITION_BITS, 0, nBottom));
    x = std::clamp(x, 0, nRight << POSITION_BITS);
    y = std::clamp(y, 0, nBottom << POSITION_BITS);
    const int nX = x >> POSITION_BITS;
    const int nY = y >> POSITION_BITS;
    const int nNextX = std::min(nX + 1, nRight);
    const int nNextY = std::min(nY + 1, nBottom);
    const int fx = ((x & (POSITION_ONE - 1)) * 127 + POSITION_ONE / 2) >> POSITION_BITS;
    const int fy = y & (POSITION_ONE - 1);
    const int nUpper = At(nX, nY) * (127 - fx) + At(nNextX, nY) * fx;
    const int nLower = At(nX, nNextY) * (127 - fx) + At(nNextX, nNextY) * fx;
    return nUpper + (((nLower - nUpper) * fy + POSITION_ONE / 2) >> POSITION_BITS);
}

SYUVSample SampleYUV(const SCellJob& rJob, const SGridPoint& rPoint)
{
    SYUVSample s;
    s.y = SampleAt(rJob.aPlanes[0], 0, rPoint.x, rPoint.y, rJob.bLinear);
    if (rJob.eSource == SOURCE_GRAY)
        return s;
    const std::int32_t x = ChromaPosition(rPoint.x, rJob.nFrameWidth);
    const std::int32_t y = ChromaPosition(rPoint.y, rJob.nFrameHeight);
    const bool bPlanar = rJob.eSource == SOURCE_PLANAR;
    s.u = SampleAt(rJob.aPlanes[1], !bPlanar && rJob.bVFirst ? 1 : 0, x, y, rJob.bLinear);
    s.v = SampleAt(rJob.aPlanes[bPlanar ? 2 : 1], bPlanar || rJob.bVFirst ? 0 : 1, x, y, rJob.bLinear);
    return s;
}

std::uint32_t ConvertYUV(const SColourFactors& c, const SYUVSample& rSample)
{
    // From 127 to 64 a level.
    int y = Scaled(rSample.y, 16513);
    int u = Scaled(rSample.u, 16513) - HALF_CHROMA;
    int v = Scaled(rSample.v, 16513) - HALF_CHROMA;
    if (c.bLimited) {
        y -= c.nLumaMin;
        y = std::clamp(y + Scaled(y, c.nLumaPart), 0, 16320);
        u = std::clamp(u + Scaled(u, c.nChromaPart), -HALF_CHROMA, HALF_CHROMA);
        v = std::clamp(v + Scaled(v, c.nChromaPart), -HALF_CHROMA, HALF_CHROMA);
    }
    const int nRed = y + v + Scaled(v, c.nRedV);
    const int nGreen = y - Scaled(u, c.nGreenU) - Scaled(v, c.nGreenV);
    const int nBlue = y + u + Scaled(u, c.nBlueU);
    return static_cast<std::uint32_t>(Saturated((nRed + 32) >> 6)) |
           static_cast<std::uint32_t>(Saturated((nGreen + 32) >> 6)) << 8 |
           static_cast<std::uint32_t>(Saturated((nBlue + 32) >> 6)) << 16 | 0xFF000000U;
}

std::uint32_t SamplePacked(const SCellJob& rJob, const SGridPoint& rPoint)
{
    int anSamples[4] = {0, 0, 0, 255 * SAMPLE_LEVEL};
    for (int i = 0; i < 4; ++i) {
        if (rJob.anChannels[i] >= 0)
            anSamples[i] = SampleAt(rJob.aPlanes[0], rJob.anChannels[i], rPoint.x, rPoint.y, rJob.bLinear);
    }
    return PackSamples(rJob, anSamples);
}

std::uint32_t PackSamples(const SCellJob& rJob, const int* pSamples)
{
    std::uint32_t anBytes[4];
    for (int i = 0; i < 4; ++i)
        anBytes[i] = static_cast<std::uint32_t>(SampleByte(pSamples[i]));
    if (rJob.bPremultiply) {
        for (int i = 0; i < 3; ++i) {
            const std::uint32_t n = anBytes[i] * anBytes[3] + 128;
            anBytes[i] = (n + (n >> 8)) >> 8;
        }
    }
    return anBytes[0] | anBytes[1] << 8 | anBytes[2] << 16 | anBytes[3] << 24;
}

const SCellKernels& PlainKernels()
{
    static const SCellKernels sKernels = {"plain"};
    return sKernels;
}

void PlainPixels(const SCellJob& rJob, const SCellPoints& rPoints, unsigned char* pTarget,
                 std::ptrdiff_t nStride)
{
    SGridPoint aPoints[CELL_PIXELS];
    PixelPositions(rPoints, aPoints);
    for (int n = 0; n < CELL_PIXELS; ++n) {
        const std::uint32_t nPixel = Ordered(rJob, PlainPixel(rJob, aPoints[n]));
        std::memcpy(pTarget + n / CELL_SIDE * nStride + n % CELL_SIDE * 4, &nPixel, sizeof nPixel);
    }
}

std::uint32_t PlainPixel(const SCellJob& rJob, const SGridPoint& rPoint)
{
    if (rJob.eSource == SOURCE_PACKED)
        return SamplePacked(rJob, rPoint);
    return PlainPixel(rJob, SampleYUV(rJob, rPoint));
}

std::uint32_t PlainPixel(const SCellJob& rJob, const SYUVSample& rSample)
{
    if (rJob.eSource != SOURCE_GRAY)
        return ConvertYUV(rJob.sColours, rSample);
    return 0xFF000000U | static_cast<std::uint32_t>(SampleByte(rSample.y)) * 0x010101U;
}

std::int32_t LowestRow(const SCellPoints& rPoints)
{
    const int nLast = CELL_SIDE / rPoints.nStep;
    std::int32_t y = rPoints.pFirst[0].y;
    for (int j = 0; j <= nLast; ++j) {
        for (int i = 0; i <= nLast; ++i)
            y = std::max(y, rPoints.pFirst[j * rPoints.nRow + i].y);
    }
    return y;
}
